#include "wizard/CustomWizardDlg.h"

#include "application/RigCfg.h"
#include "main_dialog/RigCfgDlg.h"
#include "wizard/WizNewPage1.h"
#include "wizard/WizNewPage2a.h"
#include "wizard/wizard_routing.h"

using namespace korv::ui;

namespace {

// The machine page of group 1, on which a preset names the machine.
constexpr int kFormMachinePage = 8;
// Group 1's order number page, where a preset with a machine starts.
constexpr int kFormOrderPage = 10;

} // namespace

CCustomWizardDlg::CCustomWizardDlg(CMidSpanCfgDlg* pParent)
    : CWizardDlg(pParent), m_pMainDlg(pParent) {}

std::string CCustomWizardDlg::PresetGroup() const {
    const CMidSpanCfgApp* app = m_pMainDlg ? m_pMainDlg->m_pApp : nullptr;
    if (!app)
        return {};
    if (app->m_machineEntry.configure.mode == "new")
        return "SURFACE";
    return app->m_cmdInfo.m_productgroup;
}

std::string CCustomWizardDlg::PresetMachine() const {
    const CMidSpanCfgApp* app = m_pMainDlg ? m_pMainDlg->m_pApp : nullptr;
    return app ? app->m_cmdInfo.m_machine : std::string();
}

bool CCustomWizardDlg::OnInitDialog() {
    CWizardDlg::OnInitDialog();
    m_toolTip.Create(this);
    m_toolTip.AddTool(IDOK, TranslateText("next page or finish wizard.txt"));
    m_toolTip.AddTool(IDCANCEL, TranslateText("Abbrechen.but"));
    m_toolTip.AddTool(IDC_BACK, TranslateText("previous page.txt"));
    m_toolTip.Activate(true);

    // A preset skips the first page for the first two groups only; the jump
    // goes through SetCurSel, so Back stays as page 0 left it.
    const std::string preset = PresetGroup();
    if (!CWizNewPage1::IsKnownProductGroup(preset))
        return true;
    auto* groups = GetPageAs<CWizNewPage1>(0);
    if (!groups)
        return true;
    groups->SelectProductGroup(preset);
    if (groups->m_group == 0) {
        SetCurSel(1);
    } else if (groups->m_group == 1) {
        if (auto* machines = GetPageAs<CWizNewPage2a>(kFormMachinePage))
            machines->SetChosenMachine(PresetMachine());
        SetCurSel(kFormOrderPage);
    }
    return true;
}

void CCustomWizardDlg::SetCurSel(int index) {
    CWizardDlg::SetCurSel(index);
    if (index == kWizSummaryPage)
        BuildSummary();
}
