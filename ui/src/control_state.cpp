#include "ui_control_state.h"

#include <cstddef>

namespace korv::ui {

namespace {

char lower(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c | 0x20) : c;
}

// <0, 0, >0 like strcmp, ASCII case ignored, as list boxes sort.
int compare_nocase(const std::string& a, const std::string& b) {
    const std::size_t n = a.size() < b.size() ? a.size() : b.size();
    for (std::size_t i = 0; i < n; ++i) {
        const unsigned char x = static_cast<unsigned char>(lower(a[i]));
        const unsigned char y = static_cast<unsigned char>(lower(b[i]));
        if (x != y)
            return x < y ? -1 : 1;
    }
    return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

bool starts_with_nocase(const std::string& text, const std::string& prefix) {
    if (prefix.size() > text.size())
        return false;
    for (std::size_t i = 0; i < prefix.size(); ++i)
        if (lower(text[i]) != lower(prefix[i]))
            return false;
    return true;
}

} // namespace

ControlState::ControlState(const ControlTemplate& t)
    : id(t.id), kind(t.kind), styles(t.styles), caption(t.caption) {
    text = t.caption;
    enabled = !t.has(style::disabled);
    visible = !t.has(style::hidden);
    rect = t.rect.rect();
}

bool ControlState::is_button() const {
    switch (kind) {
    case ControlKind::Button:
    case ControlKind::DefaultButton:
    case ControlKind::BitmapButton:
    case ControlKind::CheckBox:
    case ControlKind::RadioButton:
        return true;
    default:
        return false;
    }
}

std::string ControlState::window_text() const {
    if (kind == ControlKind::ComboBox)
        return valid_index(selection) ? items[static_cast<std::size_t>(selection)].text
                                      : std::string();
    return text;
}

void ControlState::set_window_text(const std::string& value) {
    if (kind != ControlKind::ComboBox)
        text = value;
}

int ControlState::item_count() const {
    return has_items() ? static_cast<int>(items.size()) : LB_ERR;
}

int ControlState::add_string(const std::string& value) {
    if (!has_items())
        return LB_ERR;
    if (!has(style::sorted))
        return insert_string(-1, value);
    // After the last item that does not sort behind the new one.
    int index = static_cast<int>(items.size());
    int low = 0;
    while (low < index) {
        const int mid = low + (index - low) / 2;
        if (compare_nocase(items[static_cast<std::size_t>(mid)].text, value) <= 0)
            low = mid + 1;
        else
            index = mid;
    }
    return insert_string(index, value);
}

int ControlState::insert_string(int index, const std::string& value) {
    if (!has_items())
        return LB_ERR;
    const int count = static_cast<int>(items.size());
    if (index == -1)
        index = count;
    if (index < 0 || index > count)
        return LB_ERR;
    items.insert(items.begin() + index, ListItem{value, 0});
    if (selection >= index)
        ++selection; // the selected item stays selected
    return index;
}

int ControlState::delete_string(int index) {
    if (!has_items() || !valid_index(index))
        return LB_ERR;
    items.erase(items.begin() + index);
    if (selection == index)
        selection = -1;
    else if (selection > index)
        --selection;
    return static_cast<int>(items.size());
}

void ControlState::reset_content() {
    items.clear();
    selection = -1;
}

int ControlState::find(int start_after, const std::string& value, bool exact) const {
    if (!has_items() || items.empty())
        return LB_ERR;
    const int count = static_cast<int>(items.size());
    if (start_after < -1 || start_after >= count)
        start_after = -1;
    for (int step = 1; step <= count; ++step) {
        const int i = (start_after + step) % count;
        const std::string& text = items[static_cast<std::size_t>(i)].text;
        if (exact ? compare_nocase(text, value) == 0 : starts_with_nocase(text, value))
            return i;
    }
    return LB_ERR;
}

int ControlState::find_string(int start_after, const std::string& prefix) const {
    return find(start_after, prefix, false);
}

int ControlState::find_string_exact(int start_after, const std::string& value) const {
    return find(start_after, value, true);
}

int ControlState::get_text(int index, std::string& out) const {
    if (!has_items() || !valid_index(index))
        return LB_ERR;
    out = items[static_cast<std::size_t>(index)].text;
    return static_cast<int>(out.size());
}

int ControlState::set_cur_sel(int index) {
    if (!has_items())
        return LB_ERR;
    if (index == -1) {
        selection = -1;
        return LB_ERR;
    }
    if (!valid_index(index))
        return LB_ERR;
    selection = index;
    return index;
}

int ControlState::set_item_data(int index, DWORD_PTR data) {
    if (!has_items() || !valid_index(index))
        return LB_ERR;
    items[static_cast<std::size_t>(index)].data = data;
    return 0;
}

DWORD_PTR ControlState::get_item_data(int index) const {
    if (!has_items() || !valid_index(index))
        return static_cast<DWORD_PTR>(LB_ERR);
    return items[static_cast<std::size_t>(index)].data;
}

} // namespace korv::ui
