#include "wizard/WizNewPage2.h"

#include "errtrace.h"
#include "wizard/WizardDlg.h"

std::int32_t g_interfaceMode = 0;

CWizNewPage2::CWizNewPage2(CWizardDlg* pWizard) : CWizardPage(IDD, pWizard) {
    for (int id : {IDC_COM1, IDC_COM2, IDC_SINGLE, IDC_SWITCH})
        MapCommand(korv::ui::BN_CLICKED, id, [this] { OnInterfaceClicked(); });
}

void CWizNewPage2::DoDataExchange(korv::ui::CDataExchange* pDX) {
    korv::ui::DDX_Control(pDX, IDC_SINGLE, m_singleButton);
    korv::ui::DDX_Check(pDX, IDC_COM1, m_com1);
    korv::ui::DDX_Check(pDX, IDC_COM2, m_com2);
    korv::ui::DDX_Radio(pDX, IDC_SINGLE, m_switch);
}

bool CWizNewPage2::OnInitDialog() {
    CDialog::OnInitDialog();
    korv::ui::Translate(this, 0, "RigCfg");
    UpdateInterfaceControls();
    return true;
}

void CWizNewPage2::OnShowWindow(bool bShow, unsigned /*nStatus*/) {
    if (bShow)
        UpdateNextButton();
}

void CWizNewPage2::OnInterfaceClicked() {
    UpdateInterfaceControls();
    UpdateNextButton();
}

void CWizNewPage2::UpdateInterfaceControls() {
    UpdateData(true);
    if (korv::ui::CWnd* switchRadio = GetDlgItem(IDC_SWITCH))
        switchRadio->EnableWindow(m_com1 != 0);
    // A switch box takes the first interface and rules out the second.
    if (IsSwitchChosen())
        m_com2 = 0;
    UpdateData(false);
    if (m_com1 && !m_com2)
        g_interfaceMode = 1;
    else if (!m_com1 && m_com2)
        g_interfaceMode = 2;
    else if (m_com1 && m_com2)
        g_interfaceMode = 3;
}

void CWizNewPage2::UpdateNextButton() {
    if (!m_pWizard)
        return;
    UpdateData(true);
    m_pWizard->EnableDlgItem(korv::ui::IDOK, m_com1 != 0 || m_com2 != 0);
    UpdateData(false);
}

bool CWizNewPage2::IsSwitchChosen() const {
    return m_com1 != 0 && m_switch == 1;
}

bool CWizNewPage2::IsFirstInterfaceAlone() const {
    return m_com1 != 0 && m_switch != 1;
}

bool CWizNewPage2::IsSecondInterfaceChosen() const {
    return m_com2 != 0;
}

int CWizNewPage2::GetInterfaceMode() const {
    if (IsSwitchChosen())
        return 0;
    if (IsFirstInterfaceAlone())
        return IsSecondInterfaceChosen() ? 3 : 1;
    return IsSecondInterfaceChosen() ? 2 : 0;
}

CWizNewPage2* GetInterfacePage(const CWizardDlg* pWizard) {
    auto* page =
        pWizard ? dynamic_cast<CWizNewPage2*>(pWizard->GetPage(CWizNewPage2::kPageIndex)) : nullptr;
    if (!page)
        KERRLOG("GetInterfacePage(): the wizard has no interface page at #%d",
                CWizNewPage2::kPageIndex);
    return page;
}
