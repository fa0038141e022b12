// What a control holds while its dialog is open: text, enabled, visible, check,
// items with their data, selection. Dialogs own these; programs reach them
// through the control classes and hosts read them to show or to script them.
#pragma once

#include "ui_defs.h"
#include "ui_dialog_template.h"

#include <string>
#include <vector>

namespace korv::ui {

// What every window has: a dialog or a control.
struct WindowState {
    std::string text;
    bool enabled = true;
    bool visible = true;
    CRect rect;
};

struct ListItem {
    std::string text;
    DWORD_PTR data = 0;
};

struct ControlState : WindowState {
    int id = IDC_STATIC;
    ControlKind kind = ControlKind::StaticText;
    unsigned styles = 0;
    std::string caption; // as in the template, before any translation
    int check = BST_UNCHECKED;
    std::vector<ListItem> items;
    int selection = -1;
    std::string tip;                     // tool tip text, see CDlgToolTipCtrl
    std::vector<std::string> images;     // bitmap names of a bitmap button
    COLORREF background = kSystemColour; // rich edit background

    static constexpr COLORREF kSystemColour = 0xFFFFFFFFu;

    explicit ControlState(const ControlTemplate& t);

    bool has(unsigned s) const { return (styles & s) != 0; }
    bool has_items() const { return kind == ControlKind::ListBox || kind == ControlKind::ComboBox; }
    bool is_button() const;

    // The window text: for a combo box the selected item's text, or empty.
    std::string window_text() const;
    // Sets the window text; a combo box has no text of its own and ignores it.
    void set_window_text(const std::string& value);

    // List and combo box items. All answer LB_ERR for a control without items
    // and for an index outside the list.
    int item_count() const;
    // Appends, or inserts in sorted place (ASCII case ignored, after equal items)
    // when the control sorts. Returns the index.
    int add_string(const std::string& value);
    // Inserts at `index` (-1 appends) without sorting. Returns the index.
    int insert_string(int index, const std::string& value);
    // Returns the count left.
    int delete_string(int index);
    void reset_content();
    // The first item after `start_after` (-1: from the top), going round to the
    // top, that begins with `prefix` (FindString) or equals `value` (FindStringExact),
    // ASCII case ignored.
    int find_string(int start_after, const std::string& prefix) const;
    int find_string_exact(int start_after, const std::string& value) const;
    int get_text(int index, std::string& out) const;
    // -1 clears the selection and answers LB_ERR; an index outside the list
    // answers LB_ERR and leaves the selection.
    int set_cur_sel(int index);
    int set_item_data(int index, DWORD_PTR data);
    DWORD_PTR get_item_data(int index) const;

private:
    bool valid_index(int index) const {
        return index >= 0 && index < static_cast<int>(items.size());
    }
    int find(int start_after, const std::string& value, bool exact) const;
};

} // namespace korv::ui
