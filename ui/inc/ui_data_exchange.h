// Data exchange between a dialog's members and its controls, run by
// UpdateData through DoDataExchange:
//
//   void CWizNewPage2::DoDataExchange(CDataExchange* pDX) {
//       DDX_Control(pDX, 1027, m_switchButton);
//       DDX_Check(pDX, 1026, m_com1);
//       DDX_Radio(pDX, 1027, m_switch);
//   }
//
// A helper that finds no control logs it and fails the exchange; so does a
// dialog's own Fail(). After a failure the helpers do nothing and UpdateData
// answers false, as the platform stops at the first failure.
#pragma once

#include "ui_dialog.h"

#include <string>

namespace korv::ui {

class CDataExchange {
public:
    CDataExchange(CDialog* pDlgWnd, bool bSaveAndValidate)
        : m_bSaveAndValidate(bSaveAndValidate), m_pDlgWnd(pDlgWnd) {}

    bool m_bSaveAndValidate; // true: controls to members
    CDialog* m_pDlgWnd;

    // Refuses the exchange.
    void Fail() { m_failed = true; }
    bool failed() const { return m_failed; }
    // The control `id` for `helper`; null, with the exchange failed and an
    // error log line, if there is none. Null without a line after a failure.
    ControlState* PrepareCtrl(int id, const char* helper);

private:
    bool m_failed = false;
};

// The control's text with `value`. A combo box's text is its selected item's,
// and putting a text into a combo box changes nothing.
void DDX_Text(CDataExchange* pDX, int id, std::string& value);
// The check state (BST_...) of a check box or radio button with `value`.
void DDX_Check(CDataExchange* pDX, int id, int& value);
// The radio group that starts at control `id` with `value`, the index of the
// checked button among the group's radio buttons, -1 for none. The group runs
// to the next control that starts a group.
void DDX_Radio(CDataExchange* pDX, int id, int& value);
// Binds `control` to the control `id`; in both directions.
void DDX_Control(CDataExchange* pDX, int id, CWnd& control);

} // namespace korv::ui
