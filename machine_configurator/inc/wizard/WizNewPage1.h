// Page 0 of the wizard: the product group, as a group of nine radio buttons.
#pragma once

#include "ui_framework.h"
#include "wizard/WizardPage.h"

#include <cstdint>
#include <string>

class CWizardDlg;

class CWizNewPage1 : public CWizardPage {
public:
    static constexpr int IDD = 130;
    // The first radio button; the group's value is the product group index.
    static constexpr int IDC_GROUP_FIRST = 1021;

    explicit CWizNewPage1(CWizardDlg* pWizard);

    // True for the group keys a preset may name, compared whole and with case.
    static bool IsKnownProductGroup(const std::string& key);
    // Sets m_group for a known key and pushes it to the radio buttons; any
    // other key leaves it as it is.
    void SelectProductGroup(const std::string& key);

    korv::ui::CButton m_groupButton;
    std::int32_t m_group = 0;

protected:
    void DoDataExchange(korv::ui::CDataExchange* pDX) override;
    bool OnInitDialog() override;
    void OnShowWindow(bool bShow, unsigned nStatus) override;
};
