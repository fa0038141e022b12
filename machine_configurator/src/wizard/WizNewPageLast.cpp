#include "wizard/WizNewPageLast.h"

#include "wizard/WizardDlg.h"

using namespace korv::ui;

CWizNewPageLast::CWizNewPageLast(CWizardDlg* pWizard) : CWizardPage(IDD, pWizard) {}

void CWizNewPageLast::DoDataExchange(CDataExchange* pDX) {
    CDialog::DoDataExchange(pDX);
    DDX_Text(pDX, IDC_SUMMARY, m_summary);
    DDX_Control(pDX, IDC_SUMMARY, m_summaryCtrl);
}

bool CWizNewPageLast::OnInitDialog() {
    CDialog::OnInitDialog();
    Translate(this, 0, "RigCfg");
    m_summaryCtrl.SetBackgroundColor(false, kBackground);
    return true;
}
