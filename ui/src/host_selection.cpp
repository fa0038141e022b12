#include "ui_host_selection.h"

#include "errtrace.h"
#include "kplatform_library.h"
#include "kplatform_module.h"
#include "ui_headless_host.h"

#include <cstdio>
#include <cstdlib>

namespace korv::ui {

namespace {

struct Selection {
    bool chosen = false;
    std::unique_ptr<Host> host;
    std::string why_none;
};

Selection& selection() {
    static Selection s;
    return s;
}

std::string module_beside_executable() {
    const std::string exe = korv::platform::executable_path();
    const std::size_t slash = exe.find_last_of("/\\");
    return (slash == std::string::npos ? std::string() : exe.substr(0, slash + 1)) + kToolkitModule;
}

void choose(Selection& s) {
    s.chosen = true;
    if (const char* script = std::getenv("KORV_UI_SCRIPT"); script && *script) {
        const char* transcript = std::getenv("KORV_UI_TRANSCRIPT");
        s.host = HeadlessHost::from_files(script, transcript ? transcript : "", s.why_none);
        if (s.host)
            KTRACE(4, "active_host(): headless host runs the script %s", script);
        return;
    }
    const std::string module = module_beside_executable();
    std::string why;
    s.host = load_toolkit_host(module, why);
    if (s.host)
        KTRACE(4, "active_host(): dialogs are shown by %s", module.c_str());
    else
        s.why_none = "KORV_UI_SCRIPT is not set and " + why;
}

// A person at a terminal sees nothing of the error log: one line says why.
void tell_no_host(const std::string& why) {
    const std::string exe = korv::platform::executable_path();
    const std::size_t slash = exe.find_last_of("/\\");
    const std::string name = slash == std::string::npos ? exe : exe.substr(slash + 1);
    std::fprintf(stderr, "%s: no dialog can be shown: %s\n", name.empty() ? "ui" : name.c_str(),
                 why.c_str());
}

} // namespace

Host* active_host() {
    Selection& s = selection();
    if (!s.chosen) {
        choose(s);
        if (!s.host)
            tell_no_host(s.why_none);
    }
    return s.host.get();
}

Host* loaded_host() {
    return selection().host.get();
}

const std::string& host_unavailable_reason() {
    return selection().why_none;
}

std::unique_ptr<Host> load_toolkit_host(const std::string& path, std::string& why) {
    // The module stays loaded for the rest of the run: its host lives until exit.
    std::string failure;
    void* module = korv::platform::load_library(path, failure);
    if (!module) {
        why = "the toolkit module " + path + " could not be loaded (" + failure + ")";
        return nullptr;
    }
    auto factory =
        reinterpret_cast<HostFactory>(korv::platform::library_symbol(module, kHostEntryPoint));
    if (!factory) {
        why = "the toolkit module " + path + " has no " + kHostEntryPoint;
        return nullptr;
    }
    std::unique_ptr<Host> host(factory(kHostAbi));
    if (host)
        return host;
    auto refusal = reinterpret_cast<HostRefusal>(
        korv::platform::library_symbol(module, kHostRefusalEntryPoint));
    const char* reason = refusal ? refusal() : nullptr;
    if (reason && *reason)
        why = "the toolkit module " + path + " cannot show dialogs: " + reason;
    else
        why =
            "the toolkit module " + path + " refused interface version " + std::to_string(kHostAbi);
    return host;
}

void install_host(std::unique_ptr<Host> host) {
    Selection& s = selection();
    s.chosen = true;
    s.host = std::move(host);
    s.why_none = s.host ? std::string() : std::string("no host was installed");
}

void reset_host_selection() {
    selection() = Selection{};
}

} // namespace korv::ui
