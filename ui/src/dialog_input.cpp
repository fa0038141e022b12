// What a user can do to a dialog. A user can act only on a control that is
// there, enabled and visible, in a dialog that is enabled and visible.
#include "ui_dialog.h"

namespace korv::ui {

const char* input_result_text(InputResult result) {
    switch (result) {
    case InputResult::Done:
        return "done";
    case InputResult::Unchanged:
        return "unchanged";
    case InputResult::NoSuchControl:
        return "no such control";
    case InputResult::Disabled:
        return "disabled";
    case InputResult::Hidden:
        return "hidden";
    case InputResult::NotApplicable:
        return "not for this kind of control";
    case InputResult::NoSuchItem:
        return "no such item";
    case InputResult::ReadOnly:
        return "read-only";
    }
    return "?";
}

InputResult CDialog::input_control(int id, ControlState*& control) const {
    control = const_cast<CDialog*>(this)->find_control(id);
    if (!control)
        return InputResult::NoSuchControl;
    bool hidden = !control->visible;
    bool disabled = !control->enabled;
    for (const CDialog* d = this; d; d = d->m_parentDialog) {
        hidden = hidden || !d->m_window.visible;
        disabled = disabled || !d->m_window.enabled;
    }
    if (hidden)
        return InputResult::Hidden;
    return disabled ? InputResult::Disabled : InputResult::Done;
}

CDialog* CDialog::find_input_target(int id) {
    for (CDialog* child : m_children)
        if (child->m_window.visible)
            if (CDialog* target = child->find_input_target(id))
                return target;
    return find_control(id) ? this : nullptr;
}

InputResult CDialog::UserClick(int id) {
    ControlState* control = nullptr;
    if (InputResult r = input_control(id, control); r != InputResult::Done)
        return r;
    if (!control->is_button())
        return InputResult::NotApplicable;
    if (control->kind == ControlKind::CheckBox)
        CheckDlgButton(id, control->check == BST_CHECKED ? BST_UNCHECKED : BST_CHECKED);
    else if (control->kind == ControlKind::RadioButton) {
        const std::size_t index = static_cast<std::size_t>(control - m_controls.data());
        for (std::size_t member : radio_group(index))
            set_check_at(member, member == index ? BST_CHECKED : BST_UNCHECKED);
    }
    OnCommand(id, BN_CLICKED);
    return InputResult::Done;
}

InputResult CDialog::UserSelect(int id, int index) {
    ControlState* control = nullptr;
    if (InputResult r = input_control(id, control); r != InputResult::Done)
        return r;
    if (!control->has_items())
        return InputResult::NotApplicable;
    if (index < 0 || index >= control->item_count())
        return InputResult::NoSuchItem;
    control->set_cur_sel(index);
    control_changed(id);
    OnCommand(id, control->kind == ControlKind::ListBox ? LBN_SELCHANGE : CBN_SELCHANGE);
    return InputResult::Done;
}

InputResult CDialog::UserDoubleClick(int id, int index) {
    ControlState* control = nullptr;
    if (InputResult r = input_control(id, control); r != InputResult::Done)
        return r;
    if (control->kind != ControlKind::ListBox)
        return InputResult::NotApplicable;
    if (index != -1)
        if (InputResult r = UserSelect(id, index); r != InputResult::Done)
            return r;
    // The first notification may have closed the dialog or removed the list.
    if (find_control(id))
        OnCommand(id, LBN_DBLCLK);
    return InputResult::Done;
}

InputResult CDialog::UserCheck(int id, bool checked) {
    ControlState* control = nullptr;
    if (InputResult r = input_control(id, control); r != InputResult::Done)
        return r;
    if (control->kind != ControlKind::CheckBox && control->kind != ControlKind::RadioButton)
        return InputResult::NotApplicable;
    if ((control->check == BST_CHECKED) == checked)
        return InputResult::Unchanged;
    if (control->kind == ControlKind::RadioButton && !checked)
        return InputResult::NotApplicable;
    return UserClick(id);
}

InputResult CDialog::UserSetText(int id, const std::string& text) {
    ControlState* control = nullptr;
    if (InputResult r = input_control(id, control); r != InputResult::Done)
        return r;
    if (control->kind != ControlKind::Edit && control->kind != ControlKind::RichEdit)
        return InputResult::NotApplicable;
    if (control->has(style::read_only))
        return InputResult::ReadOnly;
    control->text = text;
    control_changed(id);
    OnCommand(id, EN_CHANGE);
    return InputResult::Done;
}

void CDialog::UserClose() {
    OnCommand(IDCANCEL, BN_CLICKED);
}

InputResult CDialog::UserResize(unsigned type, int cx, int cy) {
    if (!m_created)
        return InputResult::NoSuchControl;
    if (type == SIZE_MINIMIZED)
        return InputResult::Unchanged;
    if (cx < 0 || cy < 0)
        return InputResult::NotApplicable;
    CRect& r = m_window.rect;
    if (r.Width() == cx && r.Height() == cy)
        return InputResult::Unchanged;
    r.right = r.left + cx;
    r.bottom = r.top + cy;
    OnSize(type, cx, cy);
    return InputResult::Done;
}

} // namespace korv::ui
