// The port dialog of the machine page's slot mode: which switch box port a
// unit hangs on, offered by the unit's port class.
#pragma once

#include "ui_framework.h"

class CWizNewPage2b : public korv::ui::CDialog {
public:
    static constexpr int IDD = 167;
    static constexpr int IDC_PORTS = 1059;
    static constexpr int IDC_PORT_OK = 1060;
    static constexpr int IDC_PORT_CANCEL = 1061;

    // DoModal answers the index of the chosen port within its class, or -1.
    CWizNewPage2b();

    korv::ui::CComboBox m_ports;

protected:
    void DoDataExchange(korv::ui::CDataExchange* pDX) override;
    bool OnInitDialog() override;
    void OnOK() override;
    void OnCancel() override;
};
