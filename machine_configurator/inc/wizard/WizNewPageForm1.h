// The source of the form parameters (pages 6 and 9). Nothing reads the choice.
#pragma once

#include "ui_framework.h"

#include <cstdint>

class CWizardDlg;

class CWizNewPageForm1 : public korv::ui::CDialog {
public:
    static constexpr int IDD = 155;
    static constexpr int IDC_NEW_INSTALLATION = 1043;
    static constexpr int IDC_FORM_PC_DATA = 1045;
    static constexpr int IDC_READ_FACTORY_DISK = 1047;
    static constexpr int IDC_EDIT_NEW_DATA = 1048;

    explicit CWizNewPageForm1(CWizardDlg* pWizard);

    CWizardDlg* m_pWizard;
    korv::ui::CButton m_factoryDiskButton;
    std::int32_t m_source = 0;
    std::int32_t m_nextStep = 1;

protected:
    void DoDataExchange(korv::ui::CDataExchange* pDX) override;
    bool OnInitDialog() override;

private:
    // A new installation has no factory disk to read.
    void ApplySourceRule();
};
