#include "wizard/WizNewPage1.h"

#include "main_dialog/RigCfgDlg.h"
#include "wizard/WizardDlg.h"

#include <array>

namespace {

// The keys a preset may name, by product group index; "SURFACE" and "KORSURF"
// both stand for group 0.
struct GroupKey {
    const char* key;
    std::int32_t index;
};
constexpr std::array<GroupKey, 10> kGroupKeys{{
    {"SURFACE", 0},
    {"KORSURF", 0},
    {"FORM", 1},
    {"KORSIM", 2},
    {"KORSHAFT", 3},
    {"PRECIKOR", 4},
    {"KORGEAR", 5},
    {"KOROPTO", 6},
    {"PLATFORM_COMPONENTS", 7},
    {"KORGEOMETRY", 8},
}};

// The radio buttons of the group, by product group index.
constexpr std::array<int, 9> kGroupButtons{1021, 1022, 1024, 1098, 1099, 1100, 1101, 1105, 1106};

const GroupKey* FindGroupKey(const std::string& key) {
    for (const GroupKey& entry : kGroupKeys)
        if (key == entry.key)
            return &entry;
    return nullptr;
}

} // namespace

CWizNewPage1::CWizNewPage1(CWizardDlg* pWizard) : CWizardPage(IDD, pWizard) {
    for (int id : kGroupButtons)
        MapCommand(korv::ui::BN_CLICKED, id, [this] { UpdateData(true); });
}

bool CWizNewPage1::IsKnownProductGroup(const std::string& key) {
    return FindGroupKey(key) != nullptr;
}

void CWizNewPage1::SelectProductGroup(const std::string& key) {
    if (const GroupKey* entry = FindGroupKey(key)) {
        m_group = entry->index;
        UpdateData(false);
    }
}

void CWizNewPage1::DoDataExchange(korv::ui::CDataExchange* pDX) {
    korv::ui::DDX_Control(pDX, IDC_GROUP_FIRST, m_groupButton);
    korv::ui::DDX_Radio(pDX, IDC_GROUP_FIRST, m_group);
}

bool CWizNewPage1::OnInitDialog() {
    korv::ui::Translate(this, 0, "RigCfg");
    // The page opens on the active group.
    if (m_pWizard && m_pWizard->m_pParent)
        SelectProductGroup(m_pWizard->m_pParent->m_actGroup);
    return CDialog::OnInitDialog();
}

void CWizNewPage1::OnShowWindow(bool bShow, unsigned /*nStatus*/) {
    if (!bShow || !m_pWizard)
        return;
    m_pWizard->EnableDlgItem(CWizardDlg::IDC_BACK, false);
    m_pWizard->EnableDlgItem(korv::ui::IDOK, true);
}
