#include "RigCfg.h"
#include "RigCfgDlg.h"
#include "ui_dialog_template.h"

using korv::ui::ControlKind;

void RegisterDialogResources() {
    // The main dialog; its controls come with the dialog's own code.
    korv::ui::register_dialog_template(
        {CMidSpanCfgDlg::IDD,
         "Machine Configuration.dlghead",
         320,
         200,
         {
             {korv::ui::IDOK, ControlKind::DefaultButton, "OK.but", {209, 179, 50, 14}},
             {korv::ui::IDCANCEL, ControlKind::Button, "Cancel.but", {263, 179, 50, 14}},
         }});
}
