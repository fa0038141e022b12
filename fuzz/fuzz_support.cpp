#include "fuzz_support.h"

#include "errtrace.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

namespace korv::fuzz {
namespace {

std::string g_scratch;

void remove_scratch() {
    std::error_code ignored;
    std::filesystem::remove_all(g_scratch, ignored);
}

} // namespace

const std::string& scratch() {
    if (g_scratch.empty()) {
        // Memory rather than disk unless told otherwise: the harnesses write and
        // sync files on every input.
        const char* tmpdir = std::getenv("TMPDIR");
        std::filesystem::path base = tmpdir && *tmpdir ? std::filesystem::path(tmpdir)
                                     : std::filesystem::is_directory("/dev/shm")
                                         ? std::filesystem::path("/dev/shm")
                                         : std::filesystem::temp_directory_path();
        std::string pattern = (base / "korv-fuzz-XXXXXX").string();
        if (!::mkdtemp(pattern.data())) {
            std::perror("mkdtemp");
            std::abort();
        }
        g_scratch = pattern;
        ::setenv("KORV_ROOT", g_scratch.c_str(), 1);
        ::setenv("KORV_CONFIGPATH", "C:\\ProgramData", 1);
        ::setenv("KORV_LOG_DIR", (g_scratch + "/log").c_str(), 1);
        // Level 0 keeps the trace quiet; messages are still formatted for the error log.
        ::setenv("KORV_TRACE", "0", 1);
        ::unsetenv("KORV_UI_SCRIPT");
        korv::diag::reset_log_settings();
        std::atexit(remove_scratch);
    }
    return g_scratch;
}

void write_file(const std::string& path, std::string_view bytes) {
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ignored);
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string read_file(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void remove_tree(const std::string& path) {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

void trim_logs() {
    static unsigned count = 0;
    if (++count % 1024 != 0)
        return;
    korv::diag::reset_log_settings();
    remove_tree(scratch() + "/log");
}

ErrTraceScope::ErrTraceScope() {
    KErrTrace_BeginContext();
}

ErrTraceScope::~ErrTraceScope() {
    KErrTrace_ClearContext();
    KErrTrace_EndContext();
}

std::vector<std::string_view> split_parts(const std::uint8_t* data, std::size_t size,
                                          std::initializer_list<std::string_view> separators) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::vector<std::string_view> parts(separators.size() + 1);
    std::size_t at = 0;
    std::size_t part = 0;
    for (const std::string_view separator : separators) {
        const std::string cut = "\n" + std::string(separator) + "\n";
        const std::size_t end = text.find(cut, at);
        if (end == std::string_view::npos)
            break;
        parts[part++] = text.substr(at, end + 1 - at);
        at = end + cut.size();
    }
    parts[part] = text.substr(at);
    return parts;
}

void fail(const char* file, int line, const char* condition, const char* format, ...) {
    std::fprintf(stderr, "%s:%d: check failed: %s\n  ", file, line, condition);
    va_list args;
    va_start(args, format);
    std::vfprintf(stderr, format, args);
    va_end(args);
    std::fputc('\n', stderr);
    std::abort();
}

} // namespace korv::fuzz
