// Where the trace and the error log lines go, and how a line looks there.
#pragma once

#include "errtrace.h"

#include <cstdarg>
#include <string>

namespace korv::diag::detail {

std::string vformat(const char* format, va_list args);

// Stamps and writes one record: to trace.log or error.log in the log folder,
// or to standard error when KORV_LOG_DIR is "-". Also hands it to the observer.
void write_record(const LogRecord& record);

// The trace level that applies to `module`: KORV_TRACE holds a default level
// and/or "module=level" pairs, separated by commas; the default is 3.
int trace_level(const std::string& module);
void set_trace_level(const std::string& module, int level);

} // namespace korv::diag::detail
