#include "log_sink.h"

#include "kplatform_paths.h"
#include "kplatform_shell_folders.h"
#include "kplatform_system.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <map>
#include <mutex>

namespace korv::diag {
namespace detail {
namespace {

struct Settings {
    bool loaded = false;
    bool to_stderr = false;
    std::string folder; // host path, no trailing '/'
    FILE* trace_file = nullptr;
    FILE* error_file = nullptr;
    bool open_failed = false;
    int default_level = 3;
    std::map<std::string, int> module_levels;
    std::string program = "RigCfg";
    std::function<void(const LogRecord&)> observer;
};

std::mutex g_mutex;

Settings& settings() {
    static Settings* s = new Settings; // never destroyed: logging may run at exit
    return *s;
}

void close_files(Settings& s) {
    if (s.trace_file)
        std::fclose(s.trace_file);
    if (s.error_file)
        std::fclose(s.error_file);
    s.trace_file = s.error_file = nullptr;
}

void parse_levels(Settings& s, const char* levels) {
    std::string text = levels ? levels : "";
    std::size_t at = 0;
    while (at <= text.size()) {
        std::size_t end = text.find(',', at);
        if (end == std::string::npos)
            end = text.size();
        const std::string item = text.substr(at, end - at);
        const std::size_t eq = item.find('=');
        char* stop = nullptr;
        if (eq == std::string::npos) {
            const long level = std::strtol(item.c_str(), &stop, 10);
            if (!item.empty() && *stop == '\0')
                s.default_level = static_cast<int>(level);
        } else {
            const std::string value = item.substr(eq + 1);
            const long level = std::strtol(value.c_str(), &stop, 10);
            if (!value.empty() && *stop == '\0')
                s.module_levels[item.substr(0, eq)] = static_cast<int>(level);
        }
        at = end + 1;
    }
}

std::string default_log_folder() {
    // The common data folder, moved by KORV_CONFIGPATH like all common data.
    std::string common;
    const char* moved = std::getenv("KORV_CONFIGPATH");
    if (moved && *moved)
        common = moved;
    else
        platform::special_folder(platform::CSIDL_COMMON_APPDATA, common);
    return platform::native_path(common + "\\Korv\\log");
}

void load(Settings& s) {
    if (s.loaded)
        return;
    s.loaded = true;
    const char* dir = std::getenv("KORV_LOG_DIR");
    if (dir && std::string(dir) == "-") {
        s.to_stderr = true;
    } else {
        s.to_stderr = false;
        s.folder = (dir && *dir) ? platform::native_path(dir) : default_log_folder();
    }
    s.default_level = 3;
    s.module_levels.clear();
    parse_levels(s, std::getenv("KORV_TRACE"));
}

FILE* open_channel(Settings& s, Channel channel) {
    if (s.to_stderr || s.open_failed)
        return stderr;
    FILE*& file = channel == Channel::Trace ? s.trace_file : s.error_file;
    if (!file) {
        const std::string name =
            s.folder + (channel == Channel::Trace ? "/trace.log" : "/error.log");
        if (platform::make_native_folders(s.folder))
            file = std::fopen(name.c_str(), "a");
        if (!file) {
            // Diagnostics must never be lost silently: fall back to standard error.
            std::fprintf(stderr, "rigcfg: cannot open log file %s, logging to standard error\n",
                         name.c_str());
            s.open_failed = true;
            return stderr;
        }
    }
    return file;
}

std::string time_stamp() {
    using namespace std::chrono;
    const auto now = system_clock::now();
    const std::time_t seconds = system_clock::to_time_t(now);
    const auto millis = duration_cast<milliseconds>(now.time_since_epoch()).count() % 1000;
    std::tm local{};
    korv::platform::local_time(seconds, local);
    char text[96];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d.%03d", local.tm_year + 1900,
                  local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec,
                  static_cast<int>(millis));
    return text;
}

} // namespace

std::string vformat(const char* format, va_list args) {
    char small[512];
    va_list copy;
    va_copy(copy, args);
    const int needed = std::vsnprintf(small, sizeof small, format, copy);
    va_end(copy);
    if (needed < 0)
        return format;
    if (static_cast<std::size_t>(needed) < sizeof small)
        return std::string(small, static_cast<std::size_t>(needed));
    std::string text(static_cast<std::size_t>(needed), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, args);
    return text;
}

void write_record(const LogRecord& record) {
    std::lock_guard lock(g_mutex);
    Settings& s = settings();
    load(s);
    if (s.observer)
        s.observer(record);
    FILE* out = open_channel(s, record.channel);
    const std::string stamp = time_stamp();
    if (record.channel == Channel::Trace)
        std::fprintf(out, "%s [%d] %s T%d %s(%d): %s\n", stamp.c_str(),
                     korv::platform::process_id(), record.module.c_str(), record.level,
                     record.source_path.c_str(), record.line, record.text.c_str());
    else
        std::fprintf(out, "%s [%d] %s ERR %s(%d): %s\n", stamp.c_str(),
                     korv::platform::process_id(), s.program.c_str(), record.source_path.c_str(),
                     record.line, record.text.c_str());
    std::fflush(out);
}

int trace_level(const std::string& module) {
    std::lock_guard lock(g_mutex);
    Settings& s = settings();
    load(s);
    const auto it = s.module_levels.find(module);
    return it == s.module_levels.end() ? s.default_level : it->second;
}

void set_trace_level(const std::string& module, int level) {
    std::lock_guard lock(g_mutex);
    Settings& s = settings();
    load(s);
    s.module_levels[module] = level;
}

} // namespace detail

void set_log_observer(std::function<void(const LogRecord&)> observer) {
    std::lock_guard lock(detail::g_mutex);
    detail::settings().observer = std::move(observer);
}

void reset_log_settings() {
    std::lock_guard lock(detail::g_mutex);
    detail::Settings& s = detail::settings();
    detail::close_files(s);
    s.loaded = false;
    s.open_failed = false;
}

void set_program_name(std::string_view name) {
    std::lock_guard lock(detail::g_mutex);
    detail::settings().program = std::string(name);
}

} // namespace korv::diag
