// Values of the dialog framework, with the numbers the Windows platform gives
// them, so that code and resources read as they would there.
#pragma once

#include <cstdint>

namespace korv::ui {

// Dialog and message box results.
inline constexpr int IDOK = 1;
inline constexpr int IDCANCEL = 2;
inline constexpr int IDABORT = 3;
inline constexpr int IDRETRY = 4;
inline constexpr int IDIGNORE = 5;
inline constexpr int IDYES = 6;
inline constexpr int IDNO = 7;

// The id of controls that nobody addresses; such controls are never found by id.
inline constexpr int IDC_STATIC = -1;

// Notification codes, sent with the control id to the dialog that owns the control.
inline constexpr int BN_CLICKED = 0;
inline constexpr int LBN_SELCHANGE = 1;
inline constexpr int LBN_DBLCLK = 2;
inline constexpr int CBN_SELCHANGE = 1;
inline constexpr int CBN_DBLCLK = 2;
inline constexpr int EN_CHANGE = 0x0300;

// Check states of check boxes and radio buttons.
inline constexpr int BST_UNCHECKED = 0;
inline constexpr int BST_CHECKED = 1;
inline constexpr int BST_INDETERMINATE = 2;

// List and combo box errors.
inline constexpr int LB_ERR = -1;
inline constexpr int CB_ERR = -1;

// ShowWindow commands: anything but SW_HIDE shows.
inline constexpr int SW_HIDE = 0;
inline constexpr int SW_SHOWNORMAL = 1;
inline constexpr int SW_SHOW = 5;

// SetWindowPos flags; the model has no z-order, so SWP_NOZORDER changes nothing.
inline constexpr unsigned SWP_NOSIZE = 0x0001;
inline constexpr unsigned SWP_NOMOVE = 0x0002;
inline constexpr unsigned SWP_NOZORDER = 0x0004;
inline constexpr unsigned SWP_SHOWWINDOW = 0x0040;
inline constexpr unsigned SWP_HIDEWINDOW = 0x0080;

// OnSize types.
inline constexpr unsigned SIZE_RESTORED = 0;
inline constexpr unsigned SIZE_MINIMIZED = 1;
inline constexpr unsigned SIZE_MAXIMIZED = 2;

// Hit test answers.
inline constexpr int HTNOWHERE = 0;
inline constexpr int HTCLIENT = 1;
inline constexpr int HTBOTTOMRIGHT = 17;

using COLORREF = std::uint32_t;
// The data a program keeps with a list item.
using DWORD_PTR = std::uintptr_t;

// A rectangle in dialog units. The model has no screen: window rectangles are
// in the client coordinates of the dialog that holds the window.
struct CRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    bool operator==(const CRect&) const = default;
};

} // namespace korv::ui
