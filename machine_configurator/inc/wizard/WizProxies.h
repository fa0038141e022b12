// The proxy page: a fixed list of proxies, the same for every group.
#pragma once

#include "ui_framework.h"
#include "wizard/WizardPage.h"

#include <string>
#include <vector>

class CWizardDlg;

class CWizProxies : public CWizardPage {
public:
    static constexpr int IDD = 170;
    static constexpr int IDC_PROXIES = 1067;

    explicit CWizProxies(CWizardDlg* pWizard);

    // The value at the selected index; empty for an index outside the list.
    std::string GetProxyName() const;

    std::vector<std::string> m_proxyValues;
    korv::ui::CComboBox* m_pProxyBox = nullptr;

protected:
    bool OnInitDialog() override;

private:
    korv::ui::CComboBox m_proxyBox;
};
