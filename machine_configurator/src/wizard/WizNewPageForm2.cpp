#include "wizard/WizNewPageForm2.h"

#include "errtrace.h"
#include "main_dialog/RigCfgDlg.h"
#include "wizard/WizNewPage2a.h"
#include "wizard/WizardDlg.h"

#include <cstring>

namespace {

// The KorForm page's own index; only there is a control offered.
constexpr std::int32_t kKorFormPageIndex = 10;
// No page holds this index (the KorShaft page was given 15), so the label
// "Type.txt" never shows.
constexpr std::int32_t kTypeLabelPageIndex = 16;

bool OffersControlChoice(const std::string& machine) {
    return machine == "KMQ6100" || machine == "ShapeScan6100";
}

} // namespace

CWizNewPageForm2::CWizNewPageForm2(std::int32_t pageIndex, CWizardDlg* pWizard,
                                   CWizNewPageForm1* pSourcePage, CWizNewPage2a* pMachinePage)
    : CDialog(IDD, pWizard), m_pageIndex(pageIndex), m_pWizard(pWizard), m_pSourcePage(pSourcePage),
      m_pMachinePage(pMachinePage) {}

void CWizNewPageForm2::DoDataExchange(korv::ui::CDataExchange* pDX) {
    korv::ui::DDX_Control(pDX, IDC_ORDER_NUMBERS, m_orderNumbers);
    korv::ui::DDX_Control(pDX, IDC_CONTROLS, m_controls);
}

bool CWizNewPageForm2::OnInitDialog() {
    CDialog::OnInitDialog();
    korv::ui::Translate(this, 0, "RigCfg");
    m_orderNumbers.InitStorage(256, 16);
    return true;
}

void CWizNewPageForm2::OnShowWindow(bool bShow, unsigned /*nStatus*/) {
    if (!bShow)
        return;
    FillOrderNumbers();
    ShowControlChoice();
}

void CWizNewPageForm2::ShowControlChoice() {
    for (int id : {IDC_CONTROLS, IDC_CONTROL_LABEL})
        if (korv::ui::CWnd* control = GetDlgItem(id))
            control->ShowWindow(korv::ui::SW_HIDE);
    m_controls.ResetContent();
    if (m_pageIndex != kKorFormPageIndex) {
        // Names no control of this page; kept as the page always did it.
        SetDlgItemText(korv::ui::IDC_STATIC, TranslateText("Maschinentyp auswaehlen.txt"));
        m_controls.SetCurSel(0);
        return;
    }
    const std::string machine = m_pMachinePage ? m_pMachinePage->GetChosenMachine() : "";
    if (OffersControlChoice(machine)) {
        for (int id : {IDC_CONTROLS, IDC_CONTROL_LABEL})
            if (korv::ui::CWnd* control = GetDlgItem(id))
                control->ShowWindow(korv::ui::SW_SHOW);
        m_controls.AddString("KorControl KMQ RF");
        m_controls.AddString("KorForm IF-KS-K");
    }
    m_controls.SetCurSel(0);
}

void CWizNewPageForm2::FillOrderNumbers() {
    if (m_pageIndex == kTypeLabelPageIndex)
        SetDlgItemText(IDC_ORDER_LABEL, TranslateText("Type.txt"));
    const CMidSpanCfgDlg* main = m_pWizard ? m_pWizard->m_pParent : nullptr;
    if (!main || !main->m_machineSheets)
        return;
    if (!m_pMachinePage) {
        KERRLOG("FillOrderNumbers(): page #%d has no machine page", m_pageIndex);
        return;
    }
    const std::string machine = m_pMachinePage->GetChosenMachine();
    m_orderNumbers.ResetContent();
    const std::uint32_t mask = m_pMachinePage->GetGroupMask();
    // Equal order numbers are not merged.
    for (const auto& sheet : *main->m_machineSheets) {
        if (!sheet || (sheet->flags & mask) == 0 || sheet->order_no[0] == '\0')
            continue;
        if (machine != std::string(sheet->name, strnlen(sheet->name, sizeof sheet->name)))
            continue;
        m_orderNumbers.AddString(
            std::string(sheet->order_no, strnlen(sheet->order_no, sizeof sheet->order_no)));
    }
    m_orderNumbers.SetCurSel(0);
}

std::string CWizNewPageForm2::GetControlText() const {
    std::string text;
    const int sel = m_controls.GetCurSel();
    if (sel < 0 || m_controls.GetLBText(sel, text) == korv::ui::CB_ERR)
        return {};
    return text;
}

std::string CWizNewPageForm2::GetOrderNumberText() const {
    std::string text;
    m_orderNumbers.GetWindowText(text);
    return text;
}
