// The headless host's event script: the parser, the writer of an event (each
// event written must parse back to itself), and a run of the events against
// a sample application of nested dialogs, pages and message boxes.
#include "sample_dialogs.h"

#include "fuzz_support.h"
#include "ui_headless_host.h"
#include "ui_host_selection.h"

using namespace korv::ui;

namespace {

bool same(const ScriptEvent& a, const ScriptEvent& b) {
    return a.kind == b.kind && a.id == b.id && a.index == b.index && a.by_text == b.by_text &&
           a.text == b.text && a.on == b.on && a.answer == b.answer;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    korv::fuzz::scratch();
    korv::fuzz::trim_logs();
    const korv::fuzz::ErrTraceScope context;
    const std::string_view script(reinterpret_cast<const char*>(data), size);
    std::vector<ScriptEvent> events;
    std::string error;
    if (!parse_ui_script(script, events, error))
        return 0;

    for (const ScriptEvent& event : events) {
        const std::string line = format_event(event);
        std::vector<ScriptEvent> again;
        FUZZ_CHECK(parse_ui_script(line, again, error), "written event \"%s\" does not parse: %s",
                   line.c_str(), error.c_str());
        FUZZ_CHECK(again.size() == 1 && same(again.front(), event),
                   "written event \"%s\" reads back differently", line.c_str());
    }

    // A long script only repeats what a short one does, at a higher cost.
    if (events.size() > 64)
        events.resize(64);
    sample::register_templates();
    std::size_t lines = 0;
    install_host(std::make_unique<HeadlessHost>(std::move(events),
                                                [&lines](const std::string&) { ++lines; }));
    sample::SampleDlg dialog;
    const int result = dialog.DoModal();
    FUZZ_CHECK(result == IDOK || result == IDCANCEL, "the dialog ended with %d", result);
    reset_host_selection();
    FUZZ_CHECK(lines > 0, "no transcript");
    return 0;
}
