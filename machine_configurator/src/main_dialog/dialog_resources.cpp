#include "application/RigCfg.h"
#include "main_dialog/RigCfgDlg.h"
#include "ui_dialog_template.h"
#include "wizard/wizard_resources.h"

using korv::ui::ControlKind;
namespace style = korv::ui::style;

namespace {

void RegisterMainDialog() {
    using D = CMidSpanCfgDlg;
    using K = ControlKind;
    // The lines only show values; the proxy line shares its place with the
    // table line, since the two never show together.
    const unsigned shown = style::read_only;
    korv::ui::register_dialog_template(
        {D::IDD,
         "RigCfg.dlghead",
         320,
         200,
         {
             {D::IDC_HEADER, K::Bitmap, "9999", {0, 0, 320, 40}},
             {D::IDC_HEADER_CAPTION,
              K::StaticText,
              "activated measurement configuration:.txt",
              {10, 10, 220, 10}},
             {D::IDC_FRAME_TOP, K::Frame, "", {7, 45, 306, 105}},
             {D::IDC_WORKDIR, K::StaticText, "", {14, 52, 292, 10}},
             {korv::ui::IDC_STATIC, K::StaticText, "product group:.txt", {14, 68, 90, 10}},
             {D::IDC_GROUP, K::Edit, "", {110, 66, 196, 12}, shown},
             {D::IDC_UNIT_LABEL, K::StaticText, "drive unit:.txt", {14, 84, 90, 10}},
             {D::IDC_UNIT, K::Edit, "", {110, 82, 196, 12}, shown},
             {D::IDC_CONTROL, K::Edit, "", {110, 98, 196, 12}, shown},
             {D::IDC_TABLE_LABEL, K::StaticText, "measurement table:.txt", {14, 116, 90, 10}},
             {D::IDC_TABLE, K::Edit, "", {110, 114, 196, 12}, shown},
             {D::IDC_STAND_LABEL, K::StaticText, "measurement stand:.txt", {14, 132, 90, 10}},
             {D::IDC_STAND, K::Edit, "", {110, 130, 196, 12}, shown},
             {D::IDC_PROXY_LABEL, K::StaticText, "Proxy:.txt", {14, 116, 90, 10}},
             {D::IDC_PROXY, K::Edit, "", {110, 114, 196, 12}, shown},
             {D::IDC_PROXY_VALUE, K::Edit, "", {110, 130, 196, 12}, shown | style::hidden},
             {D::IDC_FRAME_BOTTOM, K::Frame, "", {7, 155, 306, 38}},
             {D::IDC_NEW, K::Button, "New.but", {14, 170, 50, 14}},
             {D::IDC_UNDO, K::BitmapButton, "Undo", {70, 170, 20, 14}},
             {D::IDC_REDO, K::BitmapButton, "Redo", {94, 170, 20, 14}},
             {D::IDC_VERSION, K::StaticText, "", {124, 173, 120, 10}},
             {D::IDC_END, K::DefaultButton, "End.but", {256, 170, 50, 14}},
         }});
}

void RegisterAboutBox() {
    using K = ControlKind;
    korv::ui::register_dialog_template(
        {CAboutDlg::IDD,
         "About RigCfg.dlghead",
         200,
         60,
         {
             {korv::ui::IDC_STATIC, K::Bitmap, "128", {10, 10, 20, 20}},
             {CAboutDlg::IDC_VERSION, K::StaticText, "", {40, 15, 100, 10}},
             {korv::ui::IDOK, K::DefaultButton, "OK.but", {143, 40, 50, 14}},
         }});
}

} // namespace

void RegisterDialogResources() {
    RegisterMainDialog();
    RegisterAboutBox();
    RegisterWizardResources();
}
