// A page of the wizard that belongs to its frame: Enter and Escape inside the
// page do nothing, since Next, Back and Cancel are the frame's buttons.
#pragma once

#include "ui_framework.h"

class CWizardDlg;

class CWizardPage : public korv::ui::CDialog {
public:
    CWizardPage(int idd, CWizardDlg* pWizard);

    CWizardDlg* m_pWizard;

protected:
    void OnOK() override {}
    void OnCancel() override {}
};
