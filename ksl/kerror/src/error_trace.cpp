#include "log_sink.h"

#include <cstdarg>
#include <vector>

namespace {

struct TraceLine {
    std::string source_path;
    int line;
    std::string text;
};

// A context holds at most this many lines; a chain is a handful deep, so more
// means a loop that adds without ever clearing, and the oldest lines (the root
// cause) are the ones worth keeping.
constexpr std::size_t kMaxLinesPerContext = 256;

struct Context {
    std::vector<TraceLine> lines;
    std::size_t dropped = 0;

    void add(TraceLine line) {
        if (lines.size() < kMaxLinesPerContext)
            lines.push_back(std::move(line));
        else
            ++dropped;
    }
};

struct ThreadTrace {
    std::vector<Context> stack{1}; // element 0 is the context outside every Begin
    const char* source_path = "";
    int line = 0;
};
thread_local ThreadTrace t_trace;

Context& innermost() {
    return t_trace.stack.back();
}

} // namespace

void KErrTrace_BeginContext() {
    t_trace.stack.emplace_back();
}

void KErrTrace_EndContext() {
    if (t_trace.stack.size() <= 1)
        return;
    Context closed = std::move(t_trace.stack.back());
    t_trace.stack.pop_back();
    for (TraceLine& line : closed.lines)
        innermost().add(std::move(line));
    innermost().dropped += closed.dropped;
}

void KErrTrace_ClearContext() {
    innermost().lines.clear();
    innermost().dropped = 0;
}

void _KErrTrace_Location(int /*unused*/, const char* source_path, int line) {
    t_trace.source_path = source_path ? source_path : "";
    t_trace.line = line;
}

void _KErrTrace_Add(const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::string text = korv::diag::detail::vformat(format, args);
    va_end(args);
    innermost().add({t_trace.source_path, t_trace.line, std::move(text)});
}

void _KErrTrace_DumpContextToKErrLog(const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::string text = korv::diag::detail::vformat(format, args);
    va_end(args);
    using korv::diag::Channel;
    Context& context = innermost();
    for (TraceLine& line : context.lines)
        korv::diag::detail::write_record({Channel::ErrorLog, "", 0, std::move(line.source_path),
                                          line.line, std::move(line.text)});
    if (context.dropped)
        korv::diag::detail::write_record({Channel::ErrorLog, "", 0, t_trace.source_path,
                                          t_trace.line,
                                          std::to_string(context.dropped) + " more lines dropped"});
    korv::diag::detail::write_record(
        {Channel::ErrorLog, "", 0, t_trace.source_path, t_trace.line, std::move(text)});
    KErrTrace_ClearContext();
}

std::vector<std::string> korv::diag::error_trace_lines() {
    std::vector<std::string> texts;
    for (const TraceLine& line : innermost().lines)
        texts.push_back(line.text);
    return texts;
}
