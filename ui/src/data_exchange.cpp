#include "ui_data_exchange.h"

#include "errtrace.h"

namespace korv::ui {

ControlState* CDataExchange::PrepareCtrl(int id, const char* helper) {
    if (m_failed)
        return nullptr;
    ControlState* control = m_pDlgWnd->find_control(id);
    if (!control) {
        KERRLOG("%s(): dialog %d has no control %d", helper, m_pDlgWnd->template_id(), id);
        Fail();
    }
    return control;
}

void DDX_Text(CDataExchange* pDX, int id, std::string& value) {
    if (!pDX->PrepareCtrl(id, "DDX_Text"))
        return;
    CWnd* item = pDX->m_pDlgWnd->GetDlgItem(id);
    if (pDX->m_bSaveAndValidate)
        item->GetWindowText(value);
    else
        item->SetWindowText(value);
}

void DDX_Check(CDataExchange* pDX, int id, int& value) {
    ControlState* control = pDX->PrepareCtrl(id, "DDX_Check");
    if (!control)
        return;
    if (pDX->m_bSaveAndValidate) {
        value = control->check;
        return;
    }
    if (value < BST_UNCHECKED || value > BST_INDETERMINATE) {
        KTRACE(2, "DDX_Check(): value %d of control %d taken as unchecked", value, id);
        value = BST_UNCHECKED;
    }
    pDX->m_pDlgWnd->CheckDlgButton(id, value);
}

void DDX_Radio(CDataExchange* pDX, int id, int& value) {
    ControlState* first = pDX->PrepareCtrl(id, "DDX_Radio");
    if (!first)
        return;
    CDialog* dialog = pDX->m_pDlgWnd;
    const std::size_t start = static_cast<std::size_t>(first - dialog->controls().data());
    if (first->kind != ControlKind::RadioButton || (start > 0 && !first->has(style::group))) {
        KERRLOG("DDX_Radio(): control %d of dialog %d starts no radio group", id,
                dialog->template_id());
        pDX->Fail();
        return;
    }
    const std::vector<std::size_t> group = dialog->radio_group(start);
    if (pDX->m_bSaveAndValidate) {
        value = -1;
        for (std::size_t i = 0; i < group.size(); ++i)
            if (dialog->controls()[group[i]].check == BST_CHECKED) {
                value = static_cast<int>(i);
                break;
            }
        return;
    }
    for (std::size_t i = 0; i < group.size(); ++i)
        dialog->set_check_at(group[i], static_cast<int>(i) == value ? BST_CHECKED : BST_UNCHECKED);
}

void DDX_Control(CDataExchange* pDX, int id, CWnd& control) {
    if (pDX->PrepareCtrl(id, "DDX_Control"))
        control.SubclassDlgItem(id, pDX->m_pDlgWnd);
}

} // namespace korv::ui
