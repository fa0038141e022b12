#include "wizard/FacDiskNameIoDlg.h"
#include "wizard/WizNewPage1.h"
#include "wizard/WizNewPage2a.h"
#include "wizard/WizNewPage2b.h"
#include "wizard/WizNewPageForm1.h"
#include "wizard/WizNewPageForm2.h"
#include "wizard/WizProxies.h"
#include "wizard/machine_page_resources.h"

using korv::ui::ControlKind;
namespace style = korv::ui::style;

namespace {

// Pages fill the frame's placeholder.
constexpr int kPageWidth = 306;
constexpr int kPageHeight = 140;

void Add(int id, const char* caption, int cx, int cy,
         std::vector<korv::ui::ControlTemplate> controls) {
    korv::ui::register_dialog_template({id, caption, cx, cy, std::move(controls)});
}

} // namespace

void RegisterMachinePageResources() {
    using K = ControlKind;
    constexpr int S = korv::ui::IDC_STATIC;

    Add(CWizNewPage1::IDD, "", kPageWidth, kPageHeight,
        {
            {S, K::StaticText, "Define product group:.txt", {10, 5, 200, 10}},
            {1021, K::RadioButton, "KorSurf.txt", {20, 20, 120, 10}, style::group},
            {1022, K::RadioButton, "KorForm.txt", {20, 32, 120, 10}},
            {1024, K::RadioButton, "KorSim.txt", {20, 44, 120, 10}},
            {1098, K::RadioButton, "KorShaft.txt", {20, 56, 120, 10}},
            {1099, K::RadioButton, "Precikor.txt", {20, 68, 120, 10}},
            {1100, K::RadioButton, "KorGear.txt", {20, 80, 120, 10}},
            {1101, K::RadioButton, "KorOpto.txt", {20, 92, 120, 10}},
            {1105, K::RadioButton, "Platform Components.txt", {20, 104, 120, 10}},
            {1106, K::RadioButton, "KorGeometry.txt", {20, 116, 120, 10}},
        });

    Add(CWizNewPage2a::IDD, "", kPageWidth, kPageHeight,
        {
            {CWizNewPage2a::IDC_CAPTION,
             K::StaticText,
             "Define Drive unit(s) from list:.txt",
             {10, 5, 280, 10}},
            {CWizNewPage2a::IDC_OFFERED, K::ListBox, "", {10, 20, 120, 110}, style::vscroll},
            {CWizNewPage2a::IDC_CHOSEN, K::ListBox, "", {160, 20, 120, 110}, style::vscroll},
            {CWizNewPage2a::IDC_ADD, K::Button, ">>", {135, 65, 20, 14}},
            {CWizNewPage2a::IDC_DELETE, K::BitmapButton, "Delete", {284, 20, 18, 18}},
            {CWizNewPage2a::IDC_UP, K::BitmapButton, "Up", {284, 45, 18, 18}},
            {CWizNewPage2a::IDC_DOWN, K::BitmapButton, "Down", {284, 70, 18, 18}},
        });

    Add(CWizNewPageForm1::IDD, "", kPageWidth, kPageHeight,
        {
            {S, K::StaticText, "Define source of FORM parameter settings:.txt", {10, 5, 280, 10}},
            {CWizNewPageForm1::IDC_NEW_INSTALLATION,
             K::RadioButton,
             "new installation.txt",
             {20, 20, 200, 10},
             style::group},
            {CWizNewPageForm1::IDC_FORM_PC_DATA,
             K::RadioButton,
             "use Form-PC data.txt",
             {20, 32, 200, 10}},
            {1046, K::Frame, "Next step:.txt", {10, 50, 280, 45}, style::group},
            {CWizNewPageForm1::IDC_READ_FACTORY_DISK,
             K::RadioButton,
             "read factory disk.txt",
             {20, 62, 200, 10},
             style::group},
            {CWizNewPageForm1::IDC_EDIT_NEW_DATA,
             K::RadioButton,
             "edit new data.txt",
             {20, 76, 200, 10}},
        });

    Add(CFacDiskNameIoDlg::IDD, "Factory disk.dlghead", 260, 120,
        {
            {S,
             K::StaticText,
             "Error:\tNo appropriate Drive Unit found in specified file!.txt",
             {10, 8, 240, 10}},
            {S, K::StaticText, "Found Drive Unit:.txt", {10, 26, 80, 10}},
            {CFacDiskNameIoDlg::IDC_FOUND_DRIVE_UNIT, K::StaticText, "", {95, 26, 155, 10}},
            {S, K::StaticText, "Drive Unit specified:.txt", {10, 44, 80, 10}},
            {CFacDiskNameIoDlg::IDC_SPECIFIED_DRIVE_UNIT, K::Edit, "", {95, 42, 155, 12}},
            {S, K::StaticText, "Button <OK>:\t\tscan file again..txt", {10, 64, 240, 10}},
            {S, K::StaticText, "Button <Cancel>:\tabort operation..txt", {10, 76, 240, 10}},
            {korv::ui::IDOK, K::Button, "OK.but", {70, 98, 50, 14}},
            {korv::ui::IDCANCEL, K::Button, "Cancel.but", {140, 98, 50, 14}},
        });

    // The only page of this height.
    Add(CWizNewPageForm2::IDD, "", kPageWidth, 159,
        {
            {CWizNewPageForm2::IDC_ORDER_LABEL, K::StaticText, "Order No.:.txt", {10, 10, 80, 10}},
            {CWizNewPageForm2::IDC_ORDER_NUMBERS,
             K::ComboBox,
             "",
             {95, 8, 150, 80},
             style::vscroll},
            {CWizNewPageForm2::IDC_CONTROL_LABEL, K::StaticText, "Control.txt", {10, 30, 80, 10}},
            {CWizNewPageForm2::IDC_CONTROLS, K::ComboBox, "", {95, 28, 150, 60}},
        });

    Add(CWizNewPage2b::IDD, "Port number.txt", 120, 60,
        {
            {CWizNewPage2b::IDC_PORTS, K::ComboBox, "", {10, 10, 100, 60}, style::sorted},
            {CWizNewPage2b::IDC_PORT_OK, K::DefaultButton, "OK.but", {10, 40, 45, 14}},
            {CWizNewPage2b::IDC_PORT_CANCEL, K::Button, "Cancel.but", {65, 40, 45, 14}},
        });

    Add(CWizProxies::IDD, "", kPageWidth, kPageHeight,
        {
            {S, K::StaticText, "Proxy:.txt", {10, 10, 60, 10}},
            {CWizProxies::IDC_PROXIES, K::ComboBox, "", {75, 8, 150, 100}, style::vscroll},
        });
}
