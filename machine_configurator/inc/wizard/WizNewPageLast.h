// The summary page (the last of the list): what is about to be configured,
// as a read-only text. The text is built by the wizard on arrival.
#pragma once

#include "ui_framework.h"
#include "wizard/WizardPage.h"

#include <string>

class CWizardDlg;

class CWizNewPageLast : public CWizardPage {
public:
    static constexpr int IDD = 152;
    static constexpr int IDC_SUMMARY = 1009;
    static constexpr korv::ui::COLORREF kBackground = 0xC0C0C0;

    explicit CWizNewPageLast(CWizardDlg* pWizard);

    std::string m_summary;
    korv::ui::CRichEditCtrl m_summaryCtrl;

protected:
    void DoDataExchange(korv::ui::CDataExchange* pDX) override;
    bool OnInitDialog() override;
};
