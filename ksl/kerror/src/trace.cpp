#include "log_sink.h"

#include <cstdarg>

namespace {

// The three trace calls come in order on one thread: level, location, text.
struct PendingTrace {
    const char* module = "";
    int level = 0;
    const char* source_path = "";
    int line = 0;
};
thread_local PendingTrace t_pending;

} // namespace

int _KTrace_TestLevel(const char* module, int level) {
    if (level > korv::diag::detail::trace_level(module ? module : ""))
        return 0;
    t_pending.module = module ? module : "";
    t_pending.level = level;
    return 1;
}

int _KTrace_Location(const char* source_path, int line) {
    t_pending.source_path = source_path ? source_path : "";
    t_pending.line = line;
    return 1;
}

void _KTrace_Always(const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::string text = korv::diag::detail::vformat(format, args);
    va_end(args);
    korv::diag::detail::write_record({korv::diag::Channel::Trace, t_pending.module, t_pending.level,
                                      t_pending.source_path, t_pending.line, std::move(text)});
}

void _KTrace_SetLevel(const char* module, int level) {
    korv::diag::detail::set_trace_level(module ? module : "", level);
}
