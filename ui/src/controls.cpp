#include "ui_controls.h"

namespace korv::ui {

int CButton::GetCheck() const {
    const ControlState* c = control();
    return c ? c->check : BST_UNCHECKED;
}

void CButton::SetCheck(int check) {
    if (ControlState* c = control(); c && c->check != check) {
        c->check = check;
        changed();
    }
}

bool CBitmapButton::LoadBitmaps(const std::string& up, const std::string& down,
                                const std::string& focus, const std::string& disabled) {
    ControlState* c = control();
    if (!c || up.empty())
        return false;
    c->images = {up, down, focus, disabled};
    changed();
    return true;
}

bool CBitmapButton::AutoLoad(int id, CWnd* parent) {
    if (!SubclassDlgItem(id, parent))
        return false;
    const std::string name = control()->window_text();
    return LoadBitmaps(name + "U", name + "D", name + "F", name + "X");
}

COLORREF CRichEditCtrl::SetBackgroundColor(bool system_colour, COLORREF colour) {
    ControlState* c = control();
    if (!c)
        return 0;
    const COLORREF before = c->background;
    c->background = system_colour ? ControlState::kSystemColour : colour;
    changed();
    return before;
}

int CListControl::GetCount() const {
    const ControlState* c = control();
    return c ? c->item_count() : LB_ERR;
}

int CListControl::GetCurSel() const {
    const ControlState* c = control();
    return c && c->has_items() ? c->selection : LB_ERR;
}

int CListControl::SetCurSel(int index) {
    ControlState* c = control();
    if (!c)
        return LB_ERR;
    const int result = c->set_cur_sel(index);
    changed();
    return result;
}

int CListControl::AddString(const std::string& text) {
    ControlState* c = control();
    if (!c)
        return LB_ERR;
    const int result = c->add_string(text);
    changed();
    return result;
}

int CListControl::InsertString(int index, const std::string& text) {
    ControlState* c = control();
    if (!c)
        return LB_ERR;
    const int result = c->insert_string(index, text);
    changed();
    return result;
}

int CListControl::DeleteString(int index) {
    ControlState* c = control();
    if (!c)
        return LB_ERR;
    const int result = c->delete_string(index);
    changed();
    return result;
}

void CListControl::ResetContent() {
    if (ControlState* c = control(); c && c->has_items()) {
        c->reset_content();
        changed();
    }
}

int CListControl::FindString(int start_after, const std::string& prefix) const {
    const ControlState* c = control();
    return c ? c->find_string(start_after, prefix) : LB_ERR;
}

int CListControl::FindStringExact(int start_after, const std::string& text) const {
    const ControlState* c = control();
    return c ? c->find_string_exact(start_after, text) : LB_ERR;
}

int CListControl::SelectString(int start_after, const std::string& prefix) {
    const int index = FindString(start_after, prefix);
    return index == LB_ERR ? LB_ERR : SetCurSel(index);
}

int CListControl::SetItemData(int index, DWORD_PTR data) {
    ControlState* c = control();
    return c ? c->set_item_data(index, data) : LB_ERR;
}

DWORD_PTR CListControl::GetItemData(int index) const {
    const ControlState* c = control();
    return c ? c->get_item_data(index) : static_cast<DWORD_PTR>(LB_ERR);
}

int CListControl::item_text(int index, std::string& text) const {
    const ControlState* c = control();
    return c ? c->get_text(index, text) : LB_ERR;
}

int CListControl::item_text_length(int index) const {
    std::string text;
    return item_text(index, text);
}

} // namespace korv::ui
