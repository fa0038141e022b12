#include "wizard/WizProxies.h"

#include "main_dialog/RigCfgDlg.h"
#include "wizard/WizardDlg.h"

#include <array>

namespace {

// What the list shows (a translation key) and the proxy it stands for.
// "korecon" is the control answering itself, with no proxy between.
struct ProxyEntry {
    const char* shown;
    const char* value;
};
constexpr std::array<ProxyEntry, 9> kProxies{{
    {"no_proxy.txt", "korecon"},
    {"cameraproxy", "cameraproxy"},
    {"interpolproxy", "interpolproxy"},
    {"interpolcncproxy", "interpolcncproxy"},
    {"cncproxy", "cncproxy"},
    {"fiberproxy", "fiberproxy"},
    {"m2kortalk", "m2kortalk"},
    {"korcommission_cameraproxy", "korcommission_cameraproxy"},
    {"twiproxy", "twiproxy"},
}};

} // namespace

CWizProxies::CWizProxies(CWizardDlg* pWizard) : CWizardPage(IDD, pWizard) {}

bool CWizProxies::OnInitDialog() {
    CDialog::OnInitDialog();
    m_proxyBox.SubclassDlgItem(IDC_PROXIES, this);
    m_pProxyBox = &m_proxyBox;
    m_proxyValues.clear();
    for (const ProxyEntry& proxy : kProxies) {
        m_pProxyBox->AddString(TranslateText(proxy.shown));
        m_proxyValues.emplace_back(proxy.value);
    }
    m_pProxyBox->SetCurSel(0);
    korv::ui::Translate(this, 0, "RigCfg");
    return true;
}

std::string CWizProxies::GetProxyName() const {
    const int sel = m_pProxyBox ? m_pProxyBox->GetCurSel() : korv::ui::CB_ERR;
    if (sel < 0 || sel >= static_cast<int>(m_proxyValues.size()))
        return {};
    return m_proxyValues[static_cast<std::size_t>(sel)];
}
