// CWnd: what dialogs and controls have in common.
//
// A CWnd of a control is a handle: it names a control of a dialog by id and
// finds its state on each call, so it never dangles. Without a window (the
// dialog is not open, or has no such control) every operation does nothing and
// answers false, empty or an error value, as the platform's calls do for a
// window that does not exist.
//
// There is no painting: hosts show the state as it stands, so code has nothing
// to invalidate or redraw.
#pragma once

#include "ui_control_state.h"

#include <string>

namespace korv::ui {

class CDialog;

class CWnd {
public:
    CWnd() = default;
    virtual ~CWnd() = default;
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;

    // True while the window exists.
    bool IsWindow() const { return state() != nullptr; }
    // The control id; 0 for a dialog and for a handle that names nothing.
    int GetDlgCtrlID() const { return m_id; }
    // Makes this handle name control `id` of `parent`, a dialog. True if the
    // control exists now.
    bool SubclassDlgItem(int id, CWnd* parent);

    // True if the window was disabled before.
    bool EnableWindow(bool enable);
    bool IsWindowEnabled() const;
    // SW_HIDE hides, anything else shows. True if the window was visible before.
    bool ShowWindow(int nCmdShow);
    bool IsWindowVisible() const;
    void SetWindowText(const std::string& text);
    void GetWindowText(std::string& text) const;
    int GetWindowTextLength() const;
    // In the client coordinates of the dialog that holds the window; a
    // top-level dialog is at 0,0.
    void GetWindowRect(CRect* rect) const;
    void MoveWindow(const CRect& rect);
    // Moves and sizes as the flags allow; SWP_SHOWWINDOW and SWP_HIDEWINDOW also
    // show or hide. `insert_after` is ignored: the model has no z-order.
    bool SetWindowPos(const CWnd* insert_after, int x, int y, int cx, int cy, unsigned flags);

    // Disable and enable the window while another modal run owns the user.
    virtual void BeginModalState() { EnableWindow(false); }
    virtual void EndModalState() { EnableWindow(true); }

protected:
    // The state behind this window; null without one.
    virtual WindowState* state() const;
    // The state of the control this handle names; null for dialogs.
    ControlState* control() const;
    // Tells the host that the window changed.
    virtual void changed() const;
    // Called when a show or hide changed the visibility.
    virtual void visibility_changed(bool /*visible*/) {}

private:
    friend class CDialog;
    CDialog* m_owner = nullptr;
    int m_id = 0;
};

} // namespace korv::ui
