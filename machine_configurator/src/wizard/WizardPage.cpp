#include "wizard/WizardPage.h"

#include "wizard/WizardDlg.h"

CWizardPage::CWizardPage(int idd, CWizardDlg* pWizard)
    : CDialog(idd, pWizard), m_pWizard(pWizard) {}
