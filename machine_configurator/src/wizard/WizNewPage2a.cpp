#include "wizard/WizNewPage2a.h"

#include "errtrace.h"
#include "main_dialog/RigCfgDlg.h"
#include "wizard/WizNewPage2b.h"
#include "wizard/WizardDlg.h"
#include "wizard/port_units.h"

#include <array>
#include <cstring>
#include <set>

namespace {

constexpr std::uint32_t kAllGroups = 0xFFFFFFFFu;

// Per group key: the sheet bit that puts a machine into the page's list, and
// the mask its order numbers are matched with. KorGeometry matches order
// numbers on the machine name alone.
struct GroupBits {
    const char* key;
    std::uint32_t listBit;
    std::uint32_t orderMask;
};
constexpr std::array<GroupBits, 9> kGroupBits{{
    {"FORM", kSheetForm, kSheetForm},
    {"KORSIM", kSheetKorSim, kSheetKorSim},
    {"KORSHAFT", kSheetKorShaft, kSheetKorShaft},
    {"KORGEAR", kSheetKorGear, kSheetKorGear},
    {"KOROPTO", kSheetKorOpto, kSheetKorOpto},
    {"PLATFORM_COMPONENTS", kSheetPlatformComponents, kSheetPlatformComponents},
    {"KORGEOMETRY", kSheetKorGeometry, kAllGroups},
    {"PRECIKOR", kSheetPrecikor, kSheetPrecikor},
    {"KORSURF", kSheetKorSurf, kSheetKorSurf},
}};

const GroupBits* FindGroupBits(const std::string& key) {
    for (const GroupBits& entry : kGroupBits)
        if (key == entry.key)
            return &entry;
    return nullptr;
}

// Active groups whose machine pages ask for a machine rather than drive units.
constexpr std::array<const char*, 8> kMachineCaptionGroups{
    "FORM",        "KORSIM", "KORSHAFT", "KORGEAR", "KOROPTO", "PRECIKOR", "PLATFORM_COMPONENTS",
    "KORGEOMETRY",
};

std::string ListText(const korv::ui::CListBox& list, int index) {
    std::string text;
    if (list.GetText(index, text) == korv::ui::LB_ERR)
        text.clear();
    return text;
}

} // namespace

CWizNewPage2a::CWizNewPage2a(CWizardDlg* pWizard, const std::string& groupKey)
    : CWizardPage(IDD, pWizard), m_groupKey(groupKey) {
    using korv::ui::BN_CLICKED;
    MapCommand(BN_CLICKED, IDC_ADD, [this] { AddMachine(); });
    MapCommand(korv::ui::LBN_DBLCLK, IDC_OFFERED, [this] { AddMachine(); });
    MapCommand(BN_CLICKED, IDC_DELETE, [this] { OnDelete(); });
    MapCommand(BN_CLICKED, IDC_UP, [this] { OnMove(-1); });
    MapCommand(BN_CLICKED, IDC_DOWN, [this] { OnMove(+1); });
}

CMidSpanCfgDlg* CWizNewPage2a::MainDialog() const {
    return m_pWizard ? m_pWizard->m_pParent : nullptr;
}

void CWizNewPage2a::DoDataExchange(korv::ui::CDataExchange* pDX) {
    korv::ui::DDX_Control(pDX, IDC_CHOSEN, m_chosen);
    korv::ui::DDX_Control(pDX, IDC_OFFERED, m_offered);
    korv::ui::DDX_Control(pDX, IDC_DELETE, m_deleteButton);
    korv::ui::DDX_Control(pDX, IDC_UP, m_upButton);
    korv::ui::DDX_Control(pDX, IDC_DOWN, m_downButton);
}

bool CWizNewPage2a::OnInitDialog() {
    CDialog::OnInitDialog();
    korv::ui::Translate(this, 0, "RigCfg");
    // The caption follows the active configuration's group, not the page's.
    if (const CMidSpanCfgDlg* main = MainDialog()) {
        for (const char* group : kMachineCaptionGroups)
            if (main->m_actGroup == group) {
                SetDlgItemText(IDC_CAPTION, TranslateText("Select a machine from the list:.txt"));
                break;
            }
    }
    m_deleteButton.LoadBitmaps("DELETEU", "DELETED");
    m_upButton.LoadBitmaps("UPU", "UPD");
    m_downButton.LoadBitmaps("DOWNU", "DOWND");
    FillMachineList();
    // A single candidate needs no choice.
    if (m_offered.GetCount() == 1) {
        m_offered.SetCurSel(0);
        AddMachine();
        m_offered.SetCurSel(-1);
    }
    return true;
}

void CWizNewPage2a::OnShowWindow(bool bShow, unsigned /*nStatus*/) {
    if (bShow)
        UpdateMachineButtons();
}

std::uint32_t CWizNewPage2a::GetGroupMask() const {
    const GroupBits* bits = FindGroupBits(m_groupKey);
    return bits ? bits->orderMask : kAllGroups;
}

void CWizNewPage2a::FillMachineList() {
    const CMidSpanCfgDlg* main = MainDialog();
    const GroupBits* bits = FindGroupBits(m_groupKey);
    if (!main || !main->m_machineSheets || !bits)
        return;
    // A machine with several order numbers has several sheets but one row.
    std::set<std::string> names;
    for (const auto& sheet : *main->m_machineSheets) {
        if (!sheet || (sheet->flags & bits->listBit) == 0)
            continue;
        std::string name(sheet->name, strnlen(sheet->name, sizeof sheet->name));
        if (!names.insert(name).second)
            continue;
        m_offered.AddString(name);
        m_offered.SetCurSel(-1);
    }
}

void CWizNewPage2a::AddMachine() {
    const int sel = m_offered.GetCurSel();
    if (m_capacity == kSlotCapacity) {
        AddToSlot(sel >= 0 ? ListText(m_offered, sel) : std::string());
        return;
    }
    if (sel < 0 || m_chosen.GetCount() >= m_capacity)
        return;
    m_chosen.AddString(ListText(m_offered, sel));
    m_chosen.SetCurSel(-1);
    UpdateMachineButtons();
}

void CWizNewPage2a::AddToSlot(const std::string& text) {
    if (m_filled == 0) {
        for (int row = 0; row < kSlotCapacity; ++row)
            m_chosen.AddString("");
        m_filled = kSlotCapacity;
    }
    if (m_offered.GetCurSel() >= 0)
        ClassifyPortUnit(text);
    CWizNewPage2b portDialog;
    int row = portDialog.DoModal();
    if (row == -1)
        return;
    // The dialog counts within the class; class 1 units start at port 5.
    if (g_unitPortClass == 1)
        row += 4;
    if (row < 0 || row >= m_chosen.GetCount()) {
        KERRLOG("AddMachine(): port row %d outside the %d slots", row, m_chosen.GetCount());
        return;
    }
    m_chosen.DeleteString(row);
    m_chosen.InsertString(row, text);
    m_chosen.SetCurSel(-1);
    UpdateMachineButtons();
}

void CWizNewPage2a::OnDelete() {
    const int sel = m_chosen.GetCurSel();
    if (sel < 0)
        return;
    m_chosen.DeleteString(sel);
    if (m_capacity == kSlotCapacity)
        m_chosen.InsertString(sel, "");
    m_chosen.SetCurSel(-1);
    UpdateMachineButtons();
}

void CWizNewPage2a::OnMove(int step) {
    const int sel = m_chosen.GetCurSel();
    if (sel < 0)
        return;
    const std::string text = ListText(m_chosen, sel);
    const std::int32_t unitClass = ClassifyPortUnit(text);
    const int count = m_chosen.GetCount();
    // Class 0 units keep to rows 0 to 3 and class 1 units to rows 4 to 7 of
    // a full switch box.
    const int first = unitClass == 1 ? 4 : 0;
    const int last = unitClass == 1 ? count - 1 : count - 5;
    const bool moves = step < 0 ? sel > first : sel < last;
    if (!moves)
        return;
    m_chosen.DeleteString(sel);
    m_chosen.InsertString(sel + step, text);
    m_chosen.SetCurSel(sel + step);
}

void CWizNewPage2a::UpdateMachineButtons() {
    if (g_wizCurrentPage == 2)
        FilterByInterface();
    UpdateData(true);
    if (m_pWizard) {
        m_pWizard->EnableDlgItem(CWizardDlg::IDC_BACK, true);
        m_pWizard->EnableDlgItem(korv::ui::IDOK, m_chosen.GetCount() >= 1);
    }
    UpdateData(false);
}

void CWizNewPage2a::CheckCapacity() {
    if (m_chosen.GetCount() <= m_capacity)
        return;
    m_chosen.ResetContent();
    korv::ui::AfxMessageBox(TranslateText("The interface properties have been changed.msg"),
                            korv::ui::MB_ICONINFORMATION);
}

void CWizNewPage2a::SetChosenMachine(const std::string& name) {
    m_chosen.ResetContent();
    m_chosen.AddString(name);
}

std::string CWizNewPage2a::GetChosenMachine() const {
    return ListText(m_chosen, 0);
}
