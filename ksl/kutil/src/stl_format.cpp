#include "stl_utilities.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace korv {
namespace {

// Formats into `out`, which must not be an argument of the format. The common
// short text costs one allocation, that of the result. Returns the length, or
// -1 with errno from the C library.
int format_into(std::string& out, const char* format, va_list args) {
    char buffer[1024];
    va_list again;
    va_copy(again, args);
    const int needed = std::vsnprintf(buffer, sizeof buffer, format, args);
    int result = needed;
    if (needed >= 0 && static_cast<std::size_t>(needed) < sizeof buffer) {
        out.assign(buffer, static_cast<std::size_t>(needed));
    } else if (needed >= 0) {
        // The string holds room for the NUL behind its length.
        out.resize(static_cast<std::size_t>(needed));
        result = std::vsnprintf(out.data(), out.size() + 1, format, again);
        if (result < 0)
            out.clear();
    }
    va_end(again);
    return result;
}

// format_into for both forms of stl_string_format, which report a failure alike.
int format_reported(std::string& text, const char* format, va_list args) {
    const int length = format_into(text, format, args);
    if (length < 0) {
        const int error = errno;
        KERRLOG("%s(): stl_string_format() failed: %s", "stl_string_format", std::strerror(error));
    }
    return length;
}

} // namespace

std::string stl_string_format_va(const char* format, va_list args) {
    std::string text;
    if (format_into(text, format, args) < 0) {
        const int error = errno;
        KERRLOG("%s(): stl_string_format_va() failed: %s", "stl_string_format_va",
                std::strerror(error));
    }
    return text;
}

std::string stl_string_format(const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::string text;
    format_reported(text, format, args);
    va_end(args);
    return text;
}

int stl_string_format(std::string& target, const char* format, ...) {
    va_list args;
    va_start(args, format);
    // Formatted aside first: the target may be one of the arguments.
    std::string text;
    const int length = format_reported(text, format, args);
    va_end(args);
    target = std::move(text);
    return length;
}

} // namespace korv
