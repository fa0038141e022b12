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
#include <vector>

namespace korv::ui {

class CDialog;

// A directory chooser's rules, for the host that shows it (CDirSelDialog).
class DirectoryChooser {
public:
    enum class Text { LookIn, FileName, FileType, Ok, Cancel };
    // What a name typed into the name field does when confirmed.
    enum class NameAction { Refuse, Open, Refresh };

    virtual ~DirectoryChooser() = default;
    virtual std::string caption() const = 0;
    // The folders chosen before, the newest first.
    virtual std::vector<std::string> history() const = 0;
    // The translated text of a label or button.
    virtual std::string text(Text which) const = 0;
    // The name field was confirmed with `name`; `is_directory` if it names one.
    virtual NameAction name_entered(const std::string& name, bool is_directory) const = 0;
    // The user chose `folder`, with `folder_box` the folders the box holds.
    // False keeps the chooser open (nothing was chosen); true ends it with IDOK.
    virtual bool accept(const std::string& folder, const std::vector<std::string>& folder_box) = 0;
};

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
    // Shows a directory chooser: IDOK once chooser.accept() took a folder,
    // IDCANCEL if the user cancelled, -1 if this host has none.
    virtual int ChooseDirectory(DirectoryChooser& /*chooser*/) { return -1; }

    // A control or a dialog window changed: its state, or, for a dialog, its
    // caption, visibility, place, or which children and controls it has.
    virtual void ControlChanged(const CDialog& /*dialog*/, int /*id*/) {}
    virtual void WindowChanged(const CDialog& /*dialog*/) {}
};

// A toolkit host lives in a module loaded at run time. The module exports
//   extern "C" korv::ui::Host* korv_ui_create_host(int abi);
// which answers null unless `abi` equals its own kHostAbi. The model owns the
// host it returns and deletes it at exit. A module that can show nothing here
// (no display) answers null and may explain why through
//   extern "C" const char* korv_ui_host_refusal();
inline constexpr int kHostAbi = 2;
inline constexpr const char* kHostEntryPoint = "korv_ui_create_host";
inline constexpr const char* kHostRefusalEntryPoint = "korv_ui_host_refusal";
using HostFactory = Host* (*)(int abi);
using HostRefusal = const char* (*)();

} // namespace korv::ui
