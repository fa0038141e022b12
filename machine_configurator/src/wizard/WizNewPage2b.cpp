#include "wizard/WizNewPage2b.h"

#include "main_dialog/RigCfgDlg.h"
#include "wizard/port_units.h"

CWizNewPage2b::CWizNewPage2b() : CDialog(IDD) {
    MapCommand(korv::ui::BN_CLICKED, IDC_PORT_OK, [this] { OnOK(); });
    MapCommand(korv::ui::BN_CLICKED, IDC_PORT_CANCEL, [this] { OnCancel(); });
}

void CWizNewPage2b::DoDataExchange(korv::ui::CDataExchange* pDX) {
    korv::ui::DDX_Control(pDX, IDC_PORTS, m_ports);
}

bool CWizNewPage2b::OnInitDialog() {
    CDialog::OnInitDialog();
    korv::ui::Translate(this, 0, "RigCfg");
    SetWindowText(TranslateText("Port number.txt"));
    const char* first = nullptr;
    if (g_unitPortClass == 0) {
        for (const char* port : {"Port1", "Port2", "Port3", "Port4"})
            m_ports.AddString(port);
        first = "Port1";
    } else if (g_unitPortClass == 1) {
        for (const char* port : {"Port5", "Port6", "Port7", "Port8"})
            m_ports.AddString(port);
        first = "Port5";
    }
    m_ports.DeleteString(4);
    if (first)
        m_ports.SetCurSel(m_ports.FindStringExact(-1, first));
    return true;
}

void CWizNewPage2b::OnOK() {
    EndDialog(m_ports.GetCurSel());
}

void CWizNewPage2b::OnCancel() {
    EndDialog(-1);
}
