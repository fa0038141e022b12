// One row of the drive unit and stand pages: a label, a combo box and the
// untranslated strings behind the combo box's items.
#pragma once

#include "ui_framework.h"

#include <string>
#include <vector>

struct InterfaceRow {
    // Binds the row to its two controls on `page`; false, with an error log
    // line, when one is missing.
    bool Bind(korv::ui::CDialog* page, int labelId, int comboId);

    // Stores `items` (one empty string if there are none), labels the row,
    // shows the translated items and selects the first.
    void FillRow(const std::string& label, const std::vector<std::string>& items);
    // Selects the first item and hides label and combo box.
    void Reset();
    // The stored string at the selected index; empty when nothing valid is selected.
    std::string SelectedItem() const;

    korv::ui::CStatic m_label;
    korv::ui::CComboBox m_combo;
    std::vector<std::string> m_items;
};

// Label and combo box ids of one row.
struct InterfaceRowIds {
    int label;
    int combo;
};
