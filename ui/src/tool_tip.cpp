#include "ui_tool_tip.h"

#include "errtrace.h"
#include "ui_dialog.h"

namespace korv::ui {

bool CDlgToolTipCtrl::Create(CWnd* parent, unsigned /*style*/) {
    CDialog* dialog = dynamic_cast<CDialog*>(parent);
    if (!dialog || !dialog->has_window()) {
        KERRLOG("CDlgToolTipCtrl::Create(): the parent is no open dialog");
        return false;
    }
    m_parent = dialog;
    m_parent->set_tool_tips_active(true);
    return true;
}

bool CDlgToolTipCtrl::AddTool(int id, const std::string& text) {
    ControlState* control = m_parent ? m_parent->find_control(id) : nullptr;
    if (!control)
        return false;
    control->tip = text;
    m_parent->control_changed(id);
    return true;
}

void CDlgToolTipCtrl::Activate(bool activate) {
    if (m_parent)
        m_parent->set_tool_tips_active(activate);
}

} // namespace korv::ui
