// CDialog: a dialog built from its template, with the state of every control.
//
// The program's dialogs derive from it and are written as on the platform:
// members change first, UpdateData(false) pushes them into the controls
// through DoDataExchange, UpdateData(true) pulls them back. Handlers are
// found by notification code and control id:
//
//   MapCommand(BN_CLICKED, 1016, [this] { OnButtonUndo(); });
//
// A dialog runs modally with DoModal, through the active host, or lives as a
// child inside another (Create, as wizard pages do).
#pragma once

#include "ui_controls.h"
#include "ui_dialog_look.h"
#include "ui_dialog_template.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace korv::ui {

class CDataExchange;

// What became of one user action; everything but Done and Unchanged means the
// action could not be taken and nothing changed.
enum class InputResult {
    Done,
    Unchanged,     // the control already was so
    NoSuchControl, // not in the dialog or one of its visible children
    Disabled,      // the control or its dialog is disabled
    Hidden,        // the control or its dialog is hidden
    NotApplicable, // the control's kind does not take this action
    NoSuchItem,    // no item with this index or text
    ReadOnly,
};

// "no such control", "disabled", ...; "done" for Done.
const char* input_result_text(InputResult result);

class CDialog : public CWnd {
public:
    explicit CDialog(int nIDTemplate, CWnd* pParentWnd = nullptr);
    CDialog() : CDialog(0) {}
    ~CDialog() override;

    // Creates the dialog from its template, runs OnInitDialog and lets the active
    // host run it until EndDialog; then destroys it and returns the result.
    // -1, with an error log line saying why, if no host can show dialogs, the
    // template is missing or the dialog is already open.
    virtual int DoModal();
    // Creates the dialog hidden, as a child of `pParentWnd` (an open dialog), at
    // 0,0 of its client area, and runs OnInitDialog.
    bool Create(int nIDTemplate, CWnd* pParentWnd);
    // Destroys the window, child dialogs first. The object stays.
    bool DestroyWindow();
    // Ends the modal run, after the handler that called it returns.
    void EndDialog(int nResult);
    // Runs DoDataExchange: true pulls the controls into the members, false
    // pushes the members into the controls. False if the dialog has no window
    // or the exchange failed.
    bool UpdateData(bool bSaveAndValidate = true);

    // The control with this id, or null if there is none (IDC_STATIC never
    // names one). The handle stays valid as long as the dialog object.
    CWnd* GetDlgItem(int id) const;
    void SetDlgItemText(int id, const std::string& text);
    int GetDlgItemText(int id, std::string& text) const;
    void CheckDlgButton(int id, int check);
    int IsDlgButtonChecked(int id) const;
    // Checks `check` and unchecks the other buttons with ids from `first` to `last`.
    void CheckRadioButton(int first, int last, int check);
    // The checked button with an id from `first` to `last`, or 0.
    int GetCheckedRadioButton(int first, int last) const;
    CWnd* GetParent() const { return m_pParentWnd; }

    // Message map: a notification `code` from control `id` runs `handler`.
    // Entries are tried in the order they were added.
    void MapCommand(int code, int id, std::function<void()> handler);
    // Runs the first handler mapped to `code` and `id`. Without one, a click on
    // IDOK runs OnOK and one on IDCANCEL runs OnCancel. True if something ran.
    virtual bool OnCommand(int id, int code);

    // The window icon, `icon_id` naming its image; one image serves both sizes.
    void SetIcon(int icon_id, bool big_icon);
    // What the dialog draws besides its controls. The object keeps it, not the
    // window, so a constructor may set it.
    const DialogLook& look() const { return m_look; }
    void set_look(DialogLook look);

    // Where a point of the client area (dialog units) lies: HTCLIENT, or a
    // part of the frame that a user can drag, such as HTBOTTOMRIGHT.
    virtual int OnNcHitTest(int x, int y) const;
    // The limits a user may size the window within.
    virtual void OnGetMinMaxInfo(SizeLimits& /*limits*/) const {}

    // --- The model, for hosts and data exchange.
    int template_id() const { return m_nIDTemplate; }
    bool has_window() const { return m_created; }
    const std::vector<ControlState>& controls() const { return m_controls; }
    ControlState* find_control(int id);
    const ControlState* find_control(int id) const;
    // Caption, enabled, visible and rectangle of the dialog itself.
    const WindowState& window() const { return m_window; }
    // Child dialogs, in the order they were created.
    const std::vector<CDialog*>& child_dialogs() const { return m_children; }
    bool modal_running() const { return m_modalRunning; }
    bool modal_ended() const { return m_modalEnded; }
    int modal_result() const { return m_nModalResult; }
    bool tool_tips_active() const { return m_toolTipsActive; }
    void set_tool_tips_active(bool active);
    // Tells the active host, if one is loaded, that a control changed.
    void control_changed(int id) const;
    // The radio buttons of the group that control `index` (of controls()) is in,
    // as indexes of controls().
    std::vector<std::size_t> radio_group(std::size_t index) const;
    // Sets the check of control `index` of controls(), which may have no id.
    void set_check_at(std::size_t index, int check);

    // --- What a user does. Each acts on a control of this dialog only if it
    // and the dialog can take user input, then sends the notification a user
    // would cause.
    // The dialog that owns control `id` among this dialog and its visible child
    // dialogs, children first; null if none does.
    CDialog* find_input_target(int id);
    // Buttons: BN_CLICKED. A check box toggles, a radio button is checked and the
    // others of its group unchecked, before the notification.
    InputResult UserClick(int id);
    // List boxes: selects item `index` (unless -1) as UserSelect, then LBN_DBLCLK.
    InputResult UserDoubleClick(int id, int index);
    // List and combo boxes: selects the item, then LBN_SELCHANGE or CBN_SELCHANGE.
    InputResult UserSelect(int id, int index);
    // Check boxes and radio buttons: clicks unless it already is so. Radio
    // buttons cannot be unchecked by a user.
    InputResult UserCheck(int id, bool checked);
    // Edit and rich edit controls that are not read-only: EN_CHANGE.
    InputResult UserSetText(int id, const std::string& text);
    // The close box: a click on IDCANCEL, whether or not the control exists.
    void UserClose();
    // The user sized the window, whose client area is now `cx` by `cy` dialog
    // units (`type` SIZE_...): OnSize follows unless nothing changed. A
    // minimised window keeps its size.
    InputResult UserResize(unsigned type, int cx, int cy);

protected:
    virtual void DoDataExchange(CDataExchange* pDX);
    // Pushes the members into the controls. True asks the host to focus the
    // first control; the model has no focus.
    virtual bool OnInitDialog();
    // Pulls the members back and ends the dialog with IDOK, unless that fails.
    virtual void OnOK();
    virtual void OnCancel();
    // A child dialog was shown or hidden.
    virtual void OnShowWindow(bool /*bShow*/, unsigned /*nStatus*/) {}
    // The client area is now `cx` by `cy` dialog units.
    virtual void OnSize(unsigned /*type*/, int /*cx*/, int /*cy*/) {}
    // The window is about to go; its controls are still there.
    virtual void OnDestroy() {}

    WindowState* state() const override;
    void changed() const override;
    void visibility_changed(bool visible) override;

private:
    friend void Translate(CWnd* window, int flags, const std::string& domain);
    bool create_window(int nIDTemplate, const char* caller);
    void destroy_window(bool notify);
    // The control for a user action, or why there is none.
    InputResult input_control(int id, ControlState*& control) const;

    struct CommandEntry {
        int code;
        int id;
        std::function<void()> handler;
    };

    int m_nIDTemplate;
    CWnd* m_pParentWnd;
    bool m_created = false;
    mutable WindowState m_window;
    std::vector<ControlState> m_controls;
    mutable std::map<int, std::unique_ptr<CWnd>> m_itemHandles;
    CDialog* m_parentDialog = nullptr; // the dialog this one was created in
    std::vector<CDialog*> m_children;
    std::vector<CommandEntry> m_commands;
    bool m_modalRunning = false;
    bool m_modalEnded = false;
    int m_nModalResult = -1;
    bool m_toolTipsActive = false;
    DialogLook m_look;
};

// Replaces the caption of `window`, a dialog, and the texts of its controls,
// each a translation key, by their translations in `domain`. Bitmaps, list and
// combo boxes are left alone: their texts are no keys. `flags` is unused.
void Translate(CWnd* window, int flags, const std::string& domain);

} // namespace korv::ui
