#include "wizard/WizNewPageForm1.h"

#include "wizard/WizardDlg.h"

CWizNewPageForm1::CWizNewPageForm1(CWizardDlg* pWizard)
    : CDialog(IDD, pWizard), m_pWizard(pWizard) {
    for (int id :
         {IDC_NEW_INSTALLATION, IDC_FORM_PC_DATA, IDC_READ_FACTORY_DISK, IDC_EDIT_NEW_DATA})
        MapCommand(korv::ui::BN_CLICKED, id, [this] { ApplySourceRule(); });
}

void CWizNewPageForm1::DoDataExchange(korv::ui::CDataExchange* pDX) {
    korv::ui::DDX_Control(pDX, IDC_READ_FACTORY_DISK, m_factoryDiskButton);
    korv::ui::DDX_Radio(pDX, IDC_NEW_INSTALLATION, m_source);
    korv::ui::DDX_Radio(pDX, IDC_READ_FACTORY_DISK, m_nextStep);
}

bool CWizNewPageForm1::OnInitDialog() {
    CDialog::OnInitDialog();
    korv::ui::Translate(this, 0, "RigCfg");
    ApplySourceRule();
    return true;
}

void CWizNewPageForm1::ApplySourceRule() {
    UpdateData(true);
    m_factoryDiskButton.EnableWindow(m_source != 0);
    if (m_source == 0)
        m_nextStep = 1;
    UpdateData(false);
}
