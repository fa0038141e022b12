// Page 1 of the wizard: which serial interfaces the drive units use and
// whether a switch box hangs on the first one.
#pragma once

#include "ui_framework.h"
#include "wizard/WizardPage.h"

#include <cstdint>

class CWizardDlg;

// The interfaces last chosen on a CWizNewPage2, for the machine page's filter:
// 1 first only (also with a switch box), 2 second only, 3 both. Starts at 0,
// never reset, and left as it was when neither interface is chosen.
extern std::int32_t g_interfaceMode;

class CWizNewPage2 : public CWizardPage {
public:
    static constexpr int IDD = 153;
    static constexpr int kPageIndex = 1;
    static constexpr int IDC_COM1 = 1026;
    static constexpr int IDC_SINGLE = 1027;
    static constexpr int IDC_COM2 = 1028;
    static constexpr int IDC_SWITCH = 1034;

    explicit CWizNewPage2(CWizardDlg* pWizard);

    // Pulls the choice, enables the switch radio only with the first interface,
    // clears the second interface under a switch box, pushes, writes g_interfaceMode.
    void UpdateInterfaceControls();
    // Enables the frame's Next when at least one interface is chosen.
    void UpdateNextButton();

    // 0 switch box on the first interface (also with nothing chosen), 1 first
    // only, 2 second only, 3 both.
    int GetInterfaceMode() const;
    bool IsSwitchChosen() const;
    bool IsFirstInterfaceAlone() const;
    bool IsSecondInterfaceChosen() const;

    korv::ui::CButton m_singleButton;
    std::int32_t m_com1 = 0;
    std::int32_t m_com2 = 0;
    std::int32_t m_switch = 0;

protected:
    void DoDataExchange(korv::ui::CDataExchange* pDX) override;
    bool OnInitDialog() override;
    void OnShowWindow(bool bShow, unsigned nStatus) override;

private:
    void OnInterfaceClicked();
};

// Page 1 of `pWizard`; null, with an error log line, when it is missing.
CWizNewPage2* GetInterfacePage(const CWizardDlg* pWizard);
