// CResizingDialog: a dialog whose controls follow its size. Each managed
// control is one word: its id in the low 16 bits and RESIZE_ flags above.
//
//   AddControl(1120 | RESIZE_SIZE_X | RESIZE_SIZE_Y);
//   AddControl(IDOK | RESIZE_MOVE_X | RESIZE_MOVE_Y);
//
// The window starts at its template's size, which is also its smallest; it
// grows only in width. Its last size is kept in the application profile under
// GetProfileSection() as "CX" and "CY" (dialog units) and comes back at the
// next opening.
#pragma once

#include "ui_dialog.h"

#include <string>
#include <vector>

namespace korv::ui {

inline constexpr unsigned RESIZE_MOVE_X = 0x10000; // moves right by the growth in width
inline constexpr unsigned RESIZE_MOVE_Y = 0x20000; // moves down by the growth in height
inline constexpr unsigned RESIZE_SIZE_X = 0x40000; // the right edge moves; wins over MOVE_X
inline constexpr unsigned RESIZE_SIZE_Y = 0x80000; // the bottom edge moves; wins over MOVE_Y

class CResizingDialog : public CDialog {
public:
    explicit CResizingDialog(int nIDTemplate, CWnd* pParentWnd = nullptr);

    // Appends a control word; returns its index.
    int AddControl(unsigned entry);
    // The profile section of the remembered size: the dialog id as "%x".
    virtual void GetProfileSection(std::string& section) const;

    int OnNcHitTest(int x, int y) const override;
    void OnGetMinMaxInfo(SizeLimits& limits) const override;
    // Where the gripper lies: the bottom right corner of the client area.
    CRect gripper_rect() const;

    bool m_bRememberSize = true;
    bool m_bDrawGripper = true;

    // The gripper's size in dialog units, that of a scroll bar's arrow.
    static constexpr int kGripperCx = 11;
    static constexpr int kGripperCy = 10;

protected:
    bool OnInitDialog() override;
    void OnSize(unsigned type, int cx, int cy) override;
    void OnDestroy() override;

private:
    int m_minWidth = 0;
    int m_minHeight = 0;
    int m_lastWidth = 0;
    int m_lastHeight = 0;
    bool m_resized = false;
    std::vector<unsigned> m_controls;
    unsigned m_dialogId;
};

} // namespace korv::ui
