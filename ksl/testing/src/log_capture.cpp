#include "log_capture.h"

namespace korv::testing {

LogCapture::LogCapture() {
    diag::set_log_observer([this](const diag::LogRecord& record) { m_records.push_back(record); });
}

LogCapture::~LogCapture() {
    diag::set_log_observer({});
}

std::vector<std::string> LogCapture::errors() const {
    std::vector<std::string> texts;
    for (const diag::LogRecord& record : m_records)
        if (record.channel == diag::Channel::ErrorLog)
            texts.push_back(record.text);
    return texts;
}

std::vector<std::string> LogCapture::traces() const {
    std::vector<std::string> texts;
    for (const diag::LogRecord& record : m_records)
        if (record.channel == diag::Channel::Trace)
            texts.push_back(record.text);
    return texts;
}

bool LogCapture::has_error(const std::string& part) const {
    for (const diag::LogRecord& record : m_records)
        if (record.channel == diag::Channel::ErrorLog &&
            record.text.find(part) != std::string::npos)
            return true;
    return false;
}

} // namespace korv::testing
