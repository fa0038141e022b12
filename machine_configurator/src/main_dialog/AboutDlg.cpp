#include "main_dialog/RigCfgDlg.h"

#include "kversioninfo.h"

bool CAboutDlg::OnInitDialog() {
    korv::ui::CDialog::OnInitDialog();
    korv::ui::Translate(this, 0, "RigCfg");
    SetDlgItemText(IDC_VERSION, korv::FileVersionInfo().GetFileVersion());
    return true;
}
