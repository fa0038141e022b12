#include "ui_dialog.h"

#include "errtrace.h"
#include "ktranslate.h"
#include "ui_data_exchange.h"
#include "ui_host_selection.h"

#include <algorithm>

namespace korv::ui {

CDialog::CDialog(int nIDTemplate, CWnd* pParentWnd)
    : m_nIDTemplate(nIDTemplate), m_pParentWnd(pParentWnd) {}

CDialog::~CDialog() {
    // What derived classes added is destroyed already: no host hears of this.
    if (m_created)
        destroy_window(false);
}

WindowState* CDialog::state() const {
    return m_created ? &m_window : nullptr;
}

void CDialog::changed() const {
    if (Host* host = m_created ? loaded_host() : nullptr)
        host->WindowChanged(*this);
}

void CDialog::control_changed(int id) const {
    if (Host* host = m_created ? loaded_host() : nullptr)
        host->ControlChanged(*this, id);
}

void CDialog::visibility_changed(bool visible) {
    OnShowWindow(visible, 0);
}

bool CDialog::create_window(int nIDTemplate, const char* caller) {
    if (m_created) {
        KERRLOG("%s(): dialog %d is open already", caller, m_nIDTemplate);
        return false;
    }
    const DialogTemplate* dialog = find_dialog_template(nIDTemplate);
    if (!dialog) {
        KERRLOG("%s(): no dialog template %d", caller, nIDTemplate);
        return false;
    }
    m_nIDTemplate = nIDTemplate;
    m_window = WindowState{dialog->caption, true, true, CRect{0, 0, dialog->cx, dialog->cy}};
    m_controls.clear();
    m_controls.reserve(dialog->controls.size());
    for (const ControlTemplate& control : dialog->controls)
        m_controls.emplace_back(control);
    m_toolTipsActive = false;
    m_created = true;
    return true;
}

void CDialog::destroy_window(bool notify) {
    while (!m_children.empty())
        m_children.back()->destroy_window(notify);
    if (notify)
        OnDestroy(); // from the destructor the derived part is gone already
    if (m_parentDialog) {
        auto& siblings = m_parentDialog->m_children;
        siblings.erase(std::remove(siblings.begin(), siblings.end(), this), siblings.end());
        if (notify)
            m_parentDialog->changed();
        m_parentDialog = nullptr;
    }
    if (notify)
        changed(); // the host still sees the controls
    m_controls.clear();
    m_created = false;
    if (m_modalRunning)
        m_modalEnded = true; // a destroyed window ends its modal run
}

int CDialog::DoModal() {
    Host* host = active_host();
    if (!host) {
        KERRLOG("DoModal(): no dialog can be shown, dialog %d: %s", m_nIDTemplate,
                host_unavailable_reason().c_str());
        return -1;
    }
    if (m_modalRunning) {
        KERRLOG("DoModal(): dialog %d runs already", m_nIDTemplate);
        return -1;
    }
    // The owner takes no input while this runs, as on the platform.
    CDialog* owner = dynamic_cast<CDialog*>(m_pParentWnd);
    const bool disable_owner = owner && owner->IsWindowEnabled();
    if (disable_owner)
        owner->EnableWindow(false);
    int result = -1;
    if (create_window(m_nIDTemplate, "DoModal")) {
        KTRACE(5, "DoModal(): dialog %d opened", m_nIDTemplate);
        m_modalRunning = true;
        m_modalEnded = false;
        m_nModalResult = -1;
        host->DialogOpened(*this);
        OnInitDialog();
        if (!m_modalEnded)
            host->RunModal(*this);
        result = m_nModalResult;
        host->DialogEnded(*this, result);
        if (m_created)
            destroy_window(true);
        m_modalRunning = false;
        KTRACE(5, "DoModal(): dialog %d ended with %d", m_nIDTemplate, result);
    }
    if (disable_owner)
        owner->EnableWindow(true);
    return result;
}

bool CDialog::Create(int nIDTemplate, CWnd* pParentWnd) {
    CDialog* parent = dynamic_cast<CDialog*>(pParentWnd);
    if (!parent || !parent->has_window()) {
        KERRLOG("Create(): dialog %d needs an open parent dialog", nIDTemplate);
        return false;
    }
    if (!create_window(nIDTemplate, "Create"))
        return false;
    m_pParentWnd = pParentWnd;
    m_window.visible = false;
    m_parentDialog = parent;
    parent->m_children.push_back(this);
    parent->changed();
    OnInitDialog();
    return true;
}

bool CDialog::DestroyWindow() {
    if (!m_created)
        return false;
    destroy_window(true);
    return true;
}

void CDialog::EndDialog(int nResult) {
    m_nModalResult = nResult;
    m_modalEnded = true;
}

bool CDialog::UpdateData(bool bSaveAndValidate) {
    if (!m_created) {
        KERRLOG("UpdateData(): dialog %d has no window", m_nIDTemplate);
        return false;
    }
    CDataExchange dx(this, bSaveAndValidate);
    DoDataExchange(&dx);
    return !dx.failed();
}

void CDialog::DoDataExchange(CDataExchange* /*pDX*/) {}

bool CDialog::OnInitDialog() {
    UpdateData(false);
    return true;
}

void CDialog::OnOK() {
    if (!UpdateData(true))
        return;
    EndDialog(IDOK);
}

void CDialog::OnCancel() {
    EndDialog(IDCANCEL);
}

ControlState* CDialog::find_control(int id) {
    if (id == IDC_STATIC)
        return nullptr;
    for (ControlState& control : m_controls)
        if (control.id == id)
            return &control;
    return nullptr;
}

const ControlState* CDialog::find_control(int id) const {
    return const_cast<CDialog*>(this)->find_control(id);
}

CWnd* CDialog::GetDlgItem(int id) const {
    if (!find_control(id))
        return nullptr;
    std::unique_ptr<CWnd>& handle = m_itemHandles[id];
    if (!handle) {
        handle = std::make_unique<CWnd>();
        handle->m_owner = const_cast<CDialog*>(this);
        handle->m_id = id;
    }
    return handle.get();
}

void CDialog::SetDlgItemText(int id, const std::string& text) {
    if (CWnd* item = GetDlgItem(id))
        item->SetWindowText(text);
}

int CDialog::GetDlgItemText(int id, std::string& text) const {
    text.clear();
    if (const CWnd* item = GetDlgItem(id))
        item->GetWindowText(text);
    return static_cast<int>(text.size());
}

void CDialog::CheckDlgButton(int id, int check) {
    if (const ControlState* control = find_control(id))
        set_check_at(static_cast<std::size_t>(control - m_controls.data()), check);
}

void CDialog::set_check_at(std::size_t index, int check) {
    if (index < m_controls.size() && m_controls[index].check != check) {
        m_controls[index].check = check;
        control_changed(m_controls[index].id);
    }
}

int CDialog::IsDlgButtonChecked(int id) const {
    const ControlState* control = find_control(id);
    return control ? control->check : BST_UNCHECKED;
}

void CDialog::CheckRadioButton(int first, int last, int check) {
    for (const ControlState& control : m_controls)
        if (control.id != IDC_STATIC && control.id >= first && control.id <= last)
            CheckDlgButton(control.id, control.id == check ? BST_CHECKED : BST_UNCHECKED);
}

int CDialog::GetCheckedRadioButton(int first, int last) const {
    for (const ControlState& control : m_controls)
        if (control.id != IDC_STATIC && control.id >= first && control.id <= last &&
            control.check == BST_CHECKED)
            return control.id;
    return 0;
}

std::vector<std::size_t> CDialog::radio_group(std::size_t index) const {
    std::vector<std::size_t> group;
    if (index >= m_controls.size())
        return group;
    std::size_t first = index;
    while (first > 0 && !m_controls[first].has(style::group))
        --first;
    for (std::size_t i = first; i < m_controls.size(); ++i) {
        if (i > first && m_controls[i].has(style::group))
            break;
        if (m_controls[i].kind == ControlKind::RadioButton)
            group.push_back(i);
    }
    return group;
}

void CDialog::set_tool_tips_active(bool active) {
    if (m_toolTipsActive != active) {
        m_toolTipsActive = active;
        changed();
    }
}

void CDialog::SetIcon(int icon_id, bool /*big_icon*/) {
    if (m_look.icon != icon_id) {
        m_look.icon = icon_id;
        changed();
    }
}

void CDialog::set_look(DialogLook look) {
    m_look = std::move(look);
    changed();
}

int CDialog::OnNcHitTest(int x, int y) const {
    const CRect& r = m_window.rect;
    return x >= 0 && y >= 0 && x < r.Width() && y < r.Height() ? HTCLIENT : HTNOWHERE;
}

void CDialog::MapCommand(int code, int id, std::function<void()> handler) {
    m_commands.push_back({code, id, std::move(handler)});
}

bool CDialog::OnCommand(int id, int code) {
    for (const CommandEntry& entry : m_commands) {
        if (entry.code == code && entry.id == id) {
            entry.handler();
            return true;
        }
    }
    if (code == BN_CLICKED && id == IDOK) {
        OnOK();
        return true;
    }
    if (code == BN_CLICKED && id == IDCANCEL) {
        OnCancel();
        return true;
    }
    return false;
}

void Translate(CWnd* window, int /*flags*/, const std::string& domain) {
    CDialog* dialog = dynamic_cast<CDialog*>(window);
    if (!dialog || !dialog->m_created)
        return;
    if (!dialog->m_window.text.empty())
        dialog->SetWindowText(::Translate(dialog->m_window.text, 0, nullptr, domain));
    for (ControlState& control : dialog->m_controls) {
        const bool is_key = control.kind != ControlKind::Bitmap && !control.has_items();
        if (!is_key || control.text.empty())
            continue;
        control.text = ::Translate(control.text, 0, nullptr, domain);
        dialog->control_changed(control.id);
    }
}

} // namespace korv::ui
