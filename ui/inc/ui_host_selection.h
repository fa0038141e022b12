// Which host shows dialogs. Chosen once, at the first modal dialog or message
// box, so that a run that shows nothing never loads a toolkit:
//   1. KORV_UI_SCRIPT names a script: the headless host runs it, writing the
//      transcript to KORV_UI_TRANSCRIPT, or to standard output if unset;
//   2. otherwise the toolkit module beside the executable, kToolkitModule;
//   3. otherwise none: DoModal answers -1 and AfxMessageBox 0, each with an
//      error log line giving host_unavailable_reason().
#pragma once

#include "ui_host.h"

#include <memory>
#include <string>

namespace korv::ui {

#ifdef _WIN32
inline constexpr const char* kToolkitModule = "rigcfg_ui_qt.dll";
#else
inline constexpr const char* kToolkitModule = "librigcfg_ui_qt.so";
#endif

// The host, chosen now if not yet; null if none can show dialogs.
Host* active_host();
// The host if one was chosen already; never chooses. For change notifications.
Host* loaded_host();
// Why active_host() found none; empty otherwise.
const std::string& host_unavailable_reason();

// Loads the module at `path` and asks it for its host; null with `why` set if
// the module cannot be loaded, lacks the entry point or refuses the ABI.
std::unique_ptr<Host> load_toolkit_host(const std::string& path, std::string& why);

// Makes `host` the active one, in place of any choice (tests, embedding).
void install_host(std::unique_ptr<Host> host);
// Forgets the choice, so that the next active_host() chooses again.
void reset_host_selection();

} // namespace korv::ui
