#include "ui_window.h"

#include "ui_dialog.h"

namespace korv::ui {

WindowState* CWnd::state() const {
    return m_owner ? m_owner->find_control(m_id) : nullptr;
}

ControlState* CWnd::control() const {
    return m_owner ? m_owner->find_control(m_id) : nullptr;
}

void CWnd::changed() const {
    if (m_owner)
        m_owner->control_changed(m_id);
}

bool CWnd::SubclassDlgItem(int id, CWnd* parent) {
    m_owner = dynamic_cast<CDialog*>(parent);
    m_id = id;
    return control() != nullptr;
}

bool CWnd::EnableWindow(bool enable) {
    WindowState* s = state();
    if (!s)
        return false;
    const bool was_disabled = !s->enabled;
    if (s->enabled != enable) {
        s->enabled = enable;
        changed();
    }
    return was_disabled;
}

bool CWnd::IsWindowEnabled() const {
    const WindowState* s = state();
    return s && s->enabled;
}

bool CWnd::ShowWindow(int nCmdShow) {
    WindowState* s = state();
    if (!s)
        return false;
    const bool was_visible = s->visible;
    const bool visible = nCmdShow != SW_HIDE;
    if (was_visible != visible) {
        s->visible = visible;
        changed();
        visibility_changed(visible);
    }
    return was_visible;
}

bool CWnd::IsWindowVisible() const {
    const WindowState* s = state();
    return s && s->visible;
}

void CWnd::SetWindowText(const std::string& text) {
    if (ControlState* c = control()) {
        c->set_window_text(text);
        changed();
    } else if (WindowState* s = state()) {
        s->text = text;
        changed();
    }
}

void CWnd::GetWindowText(std::string& text) const {
    if (const ControlState* c = control())
        text = c->window_text();
    else if (const WindowState* s = state())
        text = s->text;
    else
        text.clear();
}

int CWnd::GetWindowTextLength() const {
    std::string text;
    GetWindowText(text);
    return static_cast<int>(text.size());
}

void CWnd::GetWindowRect(CRect* rect) const {
    const WindowState* s = state();
    *rect = s ? s->rect : CRect{};
}

void CWnd::MoveWindow(const CRect& rect) {
    if (WindowState* s = state()) {
        s->rect = rect;
        changed();
    }
}

bool CWnd::SetWindowPos(const CWnd* /*insert_after*/, int x, int y, int cx, int cy,
                        unsigned flags) {
    WindowState* s = state();
    if (!s)
        return false;
    CRect r = s->rect;
    if (!(flags & SWP_NOMOVE))
        r = {x, y, x + r.Width(), y + r.Height()};
    if (!(flags & SWP_NOSIZE))
        r = {r.left, r.top, r.left + cx, r.top + cy};
    MoveWindow(r);
    if (flags & SWP_SHOWWINDOW)
        ShowWindow(SW_SHOW);
    else if (flags & SWP_HIDEWINDOW)
        ShowWindow(SW_HIDE);
    return true;
}

} // namespace korv::ui
