#include "wizard/wizard_resources.h"

#include "ui_dialog_template.h"
#include "wizard/WizNewPageLast.h"
#include "wizard/WizardDlg.h"
#include "wizard/machine_page_resources.h"
#include "wizard/unit_page_resources.h"

using korv::ui::ControlKind;
namespace style = korv::ui::style;

void RegisterWizardResources() {
    korv::ui::register_dialog_template(
        {CWizardDlg::IDD,
         "Machine Configuration.txt",
         320,
         200,
         {
             {korv::ui::IDOK, ControlKind::DefaultButton, "Next.but", {209, 179, 50, 14}},
             {korv::ui::IDCANCEL, ControlKind::Button, "Cancel.but", {263, 179, 50, 14}},
             {CWizardDlg::IDC_BACK,
              ControlKind::Button,
              "Back.but",
              {155, 179, 50, 14},
              style::disabled},
             {CWizardDlg::IDC_PLACEHOLDER,
              ControlKind::Frame,
              "",
              {7, 32, 306, 140},
              style::hidden},
             {CWizardDlg::IDC_HEADER, ControlKind::Bitmap, "9999", {0, 0, 320, 28}},
             {CWizardDlg::IDC_TITLE, ControlKind::StaticText, "", {0, 0, 250, 12}},
         }});
    korv::ui::register_dialog_template(
        {CWizNewPageLast::IDD,
         "",
         305,
         140,
         {
             {korv::ui::IDC_STATIC,
              ControlKind::StaticText,
              "Check subsequent configuration:.txt",
              {5, 4, 295, 10}},
             {CWizNewPageLast::IDC_SUMMARY,
              ControlKind::RichEdit,
              "",
              {5, 17, 295, 118},
              style::multi_line | style::read_only | style::vscroll | style::hscroll},
         }});
    RegisterMachinePageResources();
    RegisterUnitPageResources();
}
