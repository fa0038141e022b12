#include "ui_resizing_dialog.h"

#include "errtrace.h"
#include "ui_winapp.h"

#include <cstdio>

namespace korv::ui {

CResizingDialog::CResizingDialog(int nIDTemplate, CWnd* pParentWnd)
    : CDialog(nIDTemplate, pParentWnd), m_dialogId(static_cast<unsigned>(nIDTemplate)) {
    DialogLook look;
    look.sizable = true;
    look.gripper = m_bDrawGripper;
    set_look(look);
}

int CResizingDialog::AddControl(unsigned entry) {
    m_controls.push_back(entry);
    return static_cast<int>(m_controls.size()) - 1;
}

void CResizingDialog::GetProfileSection(std::string& section) const {
    char text[16];
    std::snprintf(text, sizeof text, "%x", m_dialogId);
    section = text;
}

bool CResizingDialog::OnInitDialog() {
    CDialog::OnInitDialog();
    if (look().gripper != m_bDrawGripper) {
        DialogLook changed = look();
        changed.gripper = m_bDrawGripper;
        set_look(changed);
    }
    // The size it was created with is the smallest, and the first size event.
    m_minWidth = window().rect.Width();
    m_minHeight = window().rect.Height();
    OnSize(SIZE_RESTORED, m_minWidth, m_minHeight);
    if (!m_bRememberSize)
        return false;
    CWinApp* app = AfxGetApp();
    if (!app)
        return false;
    std::string section;
    GetProfileSection(section);
    int cx = app->GetProfileInt(section, "CX", 0);
    int cy = app->GetProfileInt(section, "CY", 0);
    if (cx == 0 || cy == 0)
        return false;
    // The limits hold for a size from the profile as for a user's.
    SizeLimits limits;
    OnGetMinMaxInfo(limits);
    cx = cx < limits.min_cx ? limits.min_cx : cx;
    cy = cy < limits.min_cy ? limits.min_cy
                            : (limits.max_cy && cy > limits.max_cy ? limits.max_cy : cy);
    SetWindowPos(nullptr, 0, 0, cx, cy, SWP_NOMOVE | SWP_NOZORDER);
    OnSize(SIZE_RESTORED, cx, cy);
    return false;
}

void CResizingDialog::OnGetMinMaxInfo(SizeLimits& limits) const {
    if (m_minWidth == 0)
        return;
    limits.min_cx = m_minWidth;
    limits.min_cy = m_minHeight;
    limits.max_cy = m_minHeight;
}

void CResizingDialog::OnSize(unsigned type, int cx, int cy) {
    if (type == SIZE_MINIMIZED)
        return;
    const int dx = cx - m_lastWidth;
    const int dy = cy - m_lastHeight;
    if (m_lastWidth != 0) {
        m_resized = true;
        for (const unsigned entry : m_controls) {
            CWnd* control = GetDlgItem(static_cast<int>(entry & 0xFFFF));
            if (!control || (entry & 0xFFFF0000u) == 0)
                continue;
            CRect r;
            control->GetWindowRect(&r);
            if (entry & RESIZE_SIZE_X)
                r.right += dx;
            else if (entry & RESIZE_MOVE_X) {
                r.left += dx;
                r.right += dx;
            }
            if (entry & RESIZE_SIZE_Y)
                r.bottom += dy;
            else if (entry & RESIZE_MOVE_Y) {
                r.top += dy;
                r.bottom += dy;
            }
            control->MoveWindow(r);
        }
    }
    m_lastWidth = cx;
    m_lastHeight = cy;
}

CRect CResizingDialog::gripper_rect() const {
    const CRect& r = window().rect;
    return {r.Width() - kGripperCx, r.Height() - kGripperCy, r.Width(), r.Height()};
}

int CResizingDialog::OnNcHitTest(int x, int y) const {
    const int hit = CDialog::OnNcHitTest(x, y);
    if (hit != HTCLIENT || !m_bDrawGripper)
        return hit;
    const CRect g = gripper_rect();
    return x >= g.left && x < g.right && y >= g.top && y < g.bottom ? HTBOTTOMRIGHT : hit;
}

void CResizingDialog::OnDestroy() {
    if (m_bRememberSize && m_resized && m_lastWidth != 0 && m_lastHeight != 0) {
        if (CWinApp* app = AfxGetApp()) {
            std::string section;
            GetProfileSection(section);
            app->WriteProfileInt(section, "CX", window().rect.Width());
            app->WriteProfileInt(section, "CY", window().rect.Height());
        } else {
            KERRLOG("OnDestroy(): no application profile keeps the size of dialog %u", m_dialogId);
        }
    }
    m_minWidth = m_minHeight = m_lastWidth = m_lastHeight = 0;
    m_resized = false;
    CDialog::OnDestroy();
}

} // namespace korv::ui
