#include "wizard/WizNewPage4.h"

#include "main_dialog/RigCfgDlg.h"
#include "wizard/WizardDlg.h"

using korv::ui::BN_CLICKED;

CWizNewPage4::CWizNewPage4(CWizardDlg* pWizard) : CWizardPage(IDD, pWizard) {
    MapCommand(BN_CLICKED, IDC_ADD, [this] { OnAdd(); });
    MapCommand(korv::ui::LBN_DBLCLK, IDC_OFFERED, [this] { OnAdd(); });
    MapCommand(BN_CLICKED, IDC_DELETE, [this] { OnDelete(); });
    MapCommand(BN_CLICKED, IDC_UP, [this] { OnMove(-1); });
    MapCommand(BN_CLICKED, IDC_DOWN, [this] { OnMove(+1); });
}

bool CWizNewPage4::OnInitDialog() {
    CDialog::OnInitDialog();
    korv::ui::Translate(this, 0, "RigCfg");
    m_chosen.SubclassDlgItem(IDC_CHOSEN, this);
    m_offered.SubclassDlgItem(IDC_OFFERED, this);
    m_deleteButton.SubclassDlgItem(IDC_DELETE, this);
    m_deleteButton.LoadBitmaps("DELETEU", "DELETED");
    m_upButton.SubclassDlgItem(IDC_UP, this);
    m_upButton.LoadBitmaps("UPU", "UPD");
    m_downButton.SubclassDlgItem(IDC_DOWN, this);
    m_downButton.LoadBitmaps("DOWNU", "DOWND");
    m_standNames.clear();
    return true;
}

void CWizNewPage4::AddStandName(const std::string& name) {
    m_standNames.push_back(name);
    m_offered.AddString(TranslateText(name));
}

void CWizNewPage4::OnAdd() {
    const int sel = m_offered.GetCurSel();
    const int chosen = m_chosen.GetCount();
    if (m_noStandChosen || sel < 0 || chosen >= kMaxChosen)
        return;
    std::string text;
    m_offered.GetText(sel, text);
    m_chosen.SetItemData(m_chosen.AddString(text), static_cast<korv::ui::DWORD_PTR>(sel));
    m_offered.SetCurSel(-1);
    UpdateButtons();
    // "No Stand" stands alone.
    if (sel == 0)
        m_noStandChosen = true;
    if (m_noStandChosen && chosen >= 1)
        m_chosen.DeleteString(0);
}

void CWizNewPage4::OnDelete() {
    const int sel = m_chosen.GetCurSel();
    if (sel < 0)
        return;
    std::string text;
    m_chosen.GetText(sel, text);
    m_chosen.DeleteString(sel);
    if (text == TranslateText("No Stand"))
        m_noStandChosen = false;
    m_chosen.SetCurSel(-1);
    UpdateButtons();
}

void CWizNewPage4::OnMove(int step) {
    const int sel = m_chosen.GetCurSel();
    const int target = sel + step;
    if (sel < 0 || target < 0 || target >= m_chosen.GetCount())
        return;
    std::string text;
    m_chosen.GetText(sel, text);
    const korv::ui::DWORD_PTR data = m_chosen.GetItemData(sel);
    m_chosen.DeleteString(sel);
    m_chosen.SetItemData(m_chosen.InsertString(target, text), data);
    m_chosen.SetCurSel(target);
}

void CWizNewPage4::UpdateButtons() {
    if (!m_pWizard)
        return;
    m_pWizard->EnableDlgItem(CWizardDlg::IDC_BACK, true);
    m_pWizard->EnableDlgItem(korv::ui::IDOK, m_chosen.GetCount() >= 1);
}
