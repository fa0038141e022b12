// Message boxes, shown by the active host. Usable from anywhere above the
// dialog model; a run that shows no box never chooses a host.
#pragma once

#include "ui_defs.h"

#include <string>

namespace korv::ui {

// Buttons.
inline constexpr unsigned MB_OK = 0x00;
inline constexpr unsigned MB_OKCANCEL = 0x01;
inline constexpr unsigned MB_ABORTRETRYIGNORE = 0x02;
inline constexpr unsigned MB_YESNOCANCEL = 0x03;
inline constexpr unsigned MB_YESNO = 0x04;
inline constexpr unsigned MB_RETRYCANCEL = 0x05;
inline constexpr unsigned MB_TYPEMASK = 0x0F;
// Icons.
inline constexpr unsigned MB_ICONERROR = 0x10;
inline constexpr unsigned MB_ICONSTOP = MB_ICONERROR;
inline constexpr unsigned MB_ICONQUESTION = 0x20;
inline constexpr unsigned MB_ICONWARNING = 0x30;
inline constexpr unsigned MB_ICONINFORMATION = 0x40;
inline constexpr unsigned MB_ICONMASK = 0xF0;
// Which button is the default: the first unless one of these says otherwise.
inline constexpr unsigned MB_DEFBUTTON1 = 0x000;
inline constexpr unsigned MB_DEFBUTTON2 = 0x100;
inline constexpr unsigned MB_DEFBUTTON3 = 0x200;
inline constexpr unsigned MB_DEFMASK = 0xF00;

// Shows `text` with the buttons and icon of `nType` and returns the button
// chosen: IDOK, IDCANCEL, IDYES, IDNO, ... 0 with an error log line if no host
// can show it. `nIDHelp` is unused.
int AfxMessageBox(const std::string& text, unsigned nType = MB_OK, unsigned nIDHelp = 0);

// What the buttons of a box type are, for hosts.
struct MessageBoxButtons {
    const char* name; // "ok", "ok-cancel", "yes-no", ...
    int answers[3];   // IDOK ... IDNO, in button order
    int count;
    int close_answer; // a box closed without a choice: Cancel where it has
                      // one, else OK, No or Abort
    bool offers(int answer) const;
};
const MessageBoxButtons& message_box_buttons(unsigned nType);
// The index of the default button among the box's buttons: MB_DEFBUTTON2 and
// MB_DEFBUTTON3 where the box has that many, else the first.
int message_box_default_index(unsigned nType);
// "error", "question", "warning", "information", or "" for none.
const char* message_box_icon(unsigned nType);

// "ok", "cancel", "abort", "retry", "ignore", "yes", "no"; null for others.
const char* answer_name(int answer);
// The answer with this name; 0 if none.
int answer_from_name(const std::string& name);

} // namespace korv::ui
