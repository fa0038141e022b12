// The three diagnostic channels: the trace, the error log and the error trace.
//
// Every message starts with the name of the function that writes it, and goes
// with the source location that the macros below add.
//
//   KTRACE(5, "%s(): start", __func__);           level-filtered trace line
//   KERRLOG("Expand(): ... failed (%s)", why);      lasting error log entry
//   KERRTRACE("KIniData::Open(): Close() failed");  line in the error trace
//
// A function at the top of a chain of failures wraps the risky call:
//
//   KErrTrace_BeginContext();
//   bool ok = risky();
//   if (!ok) KERRTRACE_DUMP("Caller(): risky() failed"); else KErrTrace_ClearContext();
//   KErrTrace_EndContext();
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#ifndef KORV_MODULE
#define KORV_MODULE "RigCfg"
#endif

// mingw's "printf" checks the formats of the system's C runtime; the program
// uses the standard ones there too.
#ifdef __MINGW32__
#define KORV_PRINTF_LIKE(fmt, args) __attribute__((format(gnu_printf, fmt, args)))
#else
#define KORV_PRINTF_LIKE(fmt, args) __attribute__((format(printf, fmt, args)))
#endif

// Trace.
int _KTrace_TestLevel(const char* module, int level);
int _KTrace_Location(const char* source_path, int line);
void _KTrace_Always(const char* format, ...) KORV_PRINTF_LIKE(1, 2);
// Sets the level of one module for the rest of the run (until reset_log_settings).
void _KTrace_SetLevel(const char* module, int level);

// Error log.
void _KErrLog_Location(int unused, const char* source_path, int line);
void _KErrLog_Add(const char* format, ...) KORV_PRINTF_LIKE(1, 2);

// Error trace: a stack of nested contexts per thread. Lines go to the innermost
// context; ClearContext and DumpContextToKErrLog act on it; EndContext closes it
// and hands the lines still in it to the context outside.
void KErrTrace_BeginContext();
void KErrTrace_EndContext();
void KErrTrace_ClearContext();
void _KErrTrace_Location(int unused, const char* source_path, int line);
void _KErrTrace_Add(const char* format, ...) KORV_PRINTF_LIKE(1, 2);
void _KErrTrace_DumpContextToKErrLog(const char* format, ...) KORV_PRINTF_LIKE(1, 2);

#define KTRACE(level, ...)                                                                         \
    do {                                                                                           \
        if (_KTrace_TestLevel(KORV_MODULE, (level)) && _KTrace_Location(__FILE__, __LINE__))       \
            _KTrace_Always(__VA_ARGS__);                                                           \
    } while (0)

#define KERRLOG(...)                                                                               \
    do {                                                                                           \
        _KErrLog_Location(0, __FILE__, __LINE__);                                                  \
        _KErrLog_Add(__VA_ARGS__);                                                                 \
    } while (0)

#define KERRTRACE(...)                                                                             \
    do {                                                                                           \
        _KErrTrace_Location(0, __FILE__, __LINE__);                                                \
        _KErrTrace_Add(__VA_ARGS__);                                                               \
    } while (0)

#define KERRTRACE_DUMP(...)                                                                        \
    do {                                                                                           \
        _KErrTrace_Location(0, __FILE__, __LINE__);                                                \
        _KErrTrace_DumpContextToKErrLog(__VA_ARGS__);                                              \
    } while (0)

namespace korv::diag {

enum class Channel { Trace, ErrorLog };

// One line as it reaches a channel, before it is stamped and written.
struct LogRecord {
    Channel channel;
    std::string module; // trace: the module asked; error log: the program
    int level;          // trace level; 0 for the error log
    std::string source_path;
    int line;
    std::string text;
};

// Every record also goes to the observer, if one is set. For tests and for
// hosts that show diagnostics; pass an empty function to remove it.
void set_log_observer(std::function<void(const LogRecord&)> observer);

// Forget the chosen log destination and trace levels, so that the next line
// reads KORV_LOG_DIR and KORV_TRACE again.
void reset_log_settings();

// The lines of the innermost error trace context of this thread, oldest first.
std::vector<std::string> error_trace_lines();

// The name the error log gives the program: "RigCfg" unless set.
void set_program_name(std::string_view name);

} // namespace korv::diag
