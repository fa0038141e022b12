#include "wizard/InterfaceRow.h"

#include "errtrace.h"
#include "main_dialog/RigCfgDlg.h"

bool InterfaceRow::Bind(korv::ui::CDialog* page, int labelId, int comboId) {
    const bool bound =
        m_label.SubclassDlgItem(labelId, page) && m_combo.SubclassDlgItem(comboId, page);
    if (!bound)
        KERRLOG("InterfaceRow::Bind(): controls %d/%d are missing", labelId, comboId);
    return bound;
}

void InterfaceRow::FillRow(const std::string& label, const std::vector<std::string>& items) {
    m_items = items;
    if (m_items.empty())
        m_items.emplace_back();
    m_label.SetWindowText(label);
    m_combo.ResetContent();
    for (const std::string& item : m_items)
        m_combo.AddString(TranslateText(item));
    m_label.ShowWindow(korv::ui::SW_SHOW);
    m_combo.ShowWindow(korv::ui::SW_SHOW);
    m_combo.SetCurSel(0);
}

void InterfaceRow::Reset() {
    m_combo.SetCurSel(0);
    m_combo.ShowWindow(korv::ui::SW_HIDE);
    m_label.ShowWindow(korv::ui::SW_HIDE);
}

std::string InterfaceRow::SelectedItem() const {
    const int sel = m_combo.GetCurSel();
    if (sel < 0 || sel >= static_cast<int>(m_items.size()))
        return {};
    return m_items[static_cast<std::size_t>(sel)];
}
