// Collects what reaches the trace and the error log while it lives.
#pragma once

#include "errtrace.h"

#include <string>
#include <vector>

namespace korv::testing {

class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    const std::vector<diag::LogRecord>& records() const { return m_records; }
    // The texts of the error log, oldest first.
    std::vector<std::string> errors() const;
    // The texts of the trace, oldest first.
    std::vector<std::string> traces() const;
    // True if some error log text contains `part`.
    bool has_error(const std::string& part) const;
    void clear() { m_records.clear(); }

private:
    std::vector<diag::LogRecord> m_records;
};

} // namespace korv::testing
