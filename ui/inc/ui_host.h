// The host: what shows dialogs and message boxes to a user, or to a script.
//
// The model calls a host in this order for each modal dialog:
//   DialogOpened (controls exist, OnInitDialog comes next)
//   RunModal     (after OnInitDialog, unless it ended the dialog already)
//   DialogEnded  (controls still exist, unless a handler destroyed the window)
// A handler that opens another modal dialog does so from within RunModal, so
// runs nest. Input goes to the model through the CDialog::User... operations,
// which hosts share so that every host obeys the same rules.
#pragma once

#include <string>

namespace korv::ui {

class CDialog;

class Host {
public:
    virtual ~Host() = default;

    virtual void DialogOpened(CDialog& dialog) = 0;
    // Returns once `dialog` has ended (dialog.modal_ended()).
    virtual void RunModal(CDialog& dialog) = 0;
    virtual void DialogEnded(CDialog& dialog, int result) = 0;
    // Shows a message box; `type` combines MB_ flags. Returns the button chosen.
    // (Not named MessageBox: the Windows headers make that a macro.)
    virtual int ShowMessageBox(const std::string& text, unsigned type) = 0;

    // A control or a dialog window changed: its state, or, for a dialog, its
    // caption, visibility, place, or which children and controls it has.
    virtual void ControlChanged(const CDialog& /*dialog*/, int /*id*/) {}
    virtual void WindowChanged(const CDialog& /*dialog*/) {}
};

// A toolkit host lives in a module loaded at run time. The module exports
//   extern "C" korv::ui::Host* korv_ui_create_host(int abi);
// which answers null unless `abi` equals its own kHostAbi. The model owns the
// host it returns and deletes it at exit.
inline constexpr int kHostAbi = 1;
inline constexpr const char* kHostEntryPoint = "korv_ui_create_host";
using HostFactory = Host* (*)(int abi);

} // namespace korv::ui
