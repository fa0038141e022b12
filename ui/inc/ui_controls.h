// The control classes: typed handles on the controls of a dialog, bound with
// DDX_Control or SubclassDlgItem. Each forwards to the control's state and
// tells the host of every change.
#pragma once

#include "ui_window.h"

#include <string>

namespace korv::ui {

class CStatic : public CWnd {};

class CEdit : public CWnd {};

class CButton : public CWnd {
public:
    // BST_UNCHECKED, BST_CHECKED or BST_INDETERMINATE; 0 without a control.
    int GetCheck() const;
    void SetCheck(int check);
};

class CBitmapButton : public CButton {
public:
    // Names the images of the up, down, focused and disabled looks.
    bool LoadBitmaps(const std::string& up, const std::string& down = {},
                     const std::string& focus = {}, const std::string& disabled = {});
    // Binds control `id` of `parent` and loads the images named by its caption
    // with "U", "D", "F" and "X" appended.
    bool AutoLoad(int id, CWnd* parent);
};

class CRichEditCtrl : public CWnd {
public:
    // Returns the colour before; `system_colour` goes back to the default.
    COLORREF SetBackgroundColor(bool system_colour, COLORREF colour);
};

// What list and combo boxes share. Indexes and results as the platform's:
// LB_ERR (= CB_ERR) for a bad index or without a control.
class CListControl : public CWnd {
public:
    int GetCount() const;
    int GetCurSel() const;
    // -1 clears the selection (and answers LB_ERR).
    int SetCurSel(int index);
    // Sorted insertion when the control sorts.
    int AddString(const std::string& text);
    int InsertString(int index, const std::string& text);
    // Returns the count left.
    int DeleteString(int index);
    void ResetContent();
    // Case-insensitive search after `start_after` (-1: from the top), going round.
    int FindString(int start_after, const std::string& prefix) const;
    int FindStringExact(int start_after, const std::string& text) const;
    // FindString, then selects what it found.
    int SelectString(int start_after, const std::string& prefix);
    int SetItemData(int index, DWORD_PTR data);
    DWORD_PTR GetItemData(int index) const;

protected:
    int item_text(int index, std::string& text) const;
    int item_text_length(int index) const;
};

class CListBox : public CListControl {
public:
    int GetText(int index, std::string& text) const { return item_text(index, text); }
    int GetTextLen(int index) const { return item_text_length(index); }
};

class CComboBox : public CListControl {
public:
    int GetLBText(int index, std::string& text) const { return item_text(index, text); }
    int GetLBTextLen(int index) const { return item_text_length(index); }
    // Reserving room changes nothing here; answers the number of items asked for.
    int InitStorage(int items, unsigned /*bytes*/) const { return IsWindow() ? items : CB_ERR; }
};

} // namespace korv::ui
