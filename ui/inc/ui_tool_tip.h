// Tool tips of a dialog's controls.
//
//   m_toolTip.Create(this);
//   m_toolTip.AddTool(1014, Translate("configuration wizard.txt", 0, nullptr, domain));
//   m_toolTip.Activate(true);
//
// A tip belongs to its control's window and goes when the dialog's window goes.
// The tool tip control must not outlive its parent dialog object; as a member
// of the dialog class it does not.
#pragma once

#include <string>

namespace korv::ui {

class CDialog;
class CWnd;

class CDlgToolTipCtrl {
public:
    // Attaches the tips to `parent`, an open dialog. Active from here on, as on
    // the platform. `style` is unused.
    bool Create(CWnd* parent, unsigned style = 0);
    // Sets the tip of control `id` of the parent; false if there is no such control.
    bool AddTool(int id, const std::string& text);
    // Shows or stops showing the parent's tips.
    void Activate(bool activate);

private:
    CDialog* m_parent = nullptr;
};

} // namespace korv::ui
