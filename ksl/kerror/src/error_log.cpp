#include "log_sink.h"

#include <cstdarg>

namespace {

struct PendingLocation {
    const char* source_path = "";
    int line = 0;
};
thread_local PendingLocation t_location;

} // namespace

void _KErrLog_Location(int /*unused*/, const char* source_path, int line) {
    t_location.source_path = source_path ? source_path : "";
    t_location.line = line;
}

void _KErrLog_Add(const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::string text = korv::diag::detail::vformat(format, args);
    va_end(args);
    korv::diag::detail::write_record({korv::diag::Channel::ErrorLog, "", 0, t_location.source_path,
                                      t_location.line, std::move(text)});
}
