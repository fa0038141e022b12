#include "wizard/FacDiskNameIoDlg.h"

CFacDiskNameIoDlg::CFacDiskNameIoDlg(korv::ui::CWnd* pParent) : CDialog(IDD, pParent) {}

void CFacDiskNameIoDlg::DoDataExchange(korv::ui::CDataExchange* pDX) {
    korv::ui::DDX_Text(pDX, IDC_SPECIFIED_DRIVE_UNIT, m_specifiedDriveUnit);
    korv::ui::DDX_Text(pDX, IDC_FOUND_DRIVE_UNIT, m_foundDriveUnit);
}

bool CFacDiskNameIoDlg::OnInitDialog() {
    // The captions are translated before the names are pushed: a drive unit
    // name is no key.
    korv::ui::Translate(this, 0, "RigCfg");
    return CDialog::OnInitDialog();
}
