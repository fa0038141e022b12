#include "stl_utilities.h"

namespace korv {

int detect_byte_order_mark(const void* bytes, std::size_t length) {
    if (bytes == nullptr)
        return 0;
    const auto* b = static_cast<const unsigned char*>(bytes);
    // UTF-32 first: its little-endian mark starts with the UTF-16 one.
    if (length >= 4) {
        if (b[0] == 0x00 && b[1] == 0x00 && b[2] == 0xFE && b[3] == 0xFF)
            return 4;
        if (b[0] == 0xFF && b[1] == 0xFE && b[2] == 0x00 && b[3] == 0x00)
            return 5;
    }
    if (length >= 3 && b[0] == 0xEF && b[1] == 0xBB && b[2] == 0xBF)
        return 1;
    if (length >= 2) {
        if (b[0] == 0xFE && b[1] == 0xFF)
            return 2;
        if (b[0] == 0xFF && b[1] == 0xFE)
            return 3;
    }
    return 0;
}

std::vector<std::string> split_lines(std::string_view text) {
    text = text.substr(0, text.find('\0'));
    const char* const begin = text.data();
    const char* const end = begin + text.size();

    // Counted first, so that the vector is allocated once even for big files.
    std::size_t count = 0;
    for (const char* p = begin; p != end; ++p) {
        if (*p == '\n' || (*p == '\r' && (p + 1 == end || p[1] != '\n')))
            ++count;
    }
    if (!text.empty() && text.back() != '\n' && text.back() != '\r')
        ++count;

    std::vector<std::string> lines;
    lines.reserve(count);
    const char* start = begin;
    for (const char* p = begin; p != end; ++p) {
        if (*p != '\n' && *p != '\r')
            continue;
        lines.emplace_back(start, p);
        if (*p == '\r' && p + 1 != end && p[1] == '\n')
            ++p;
        start = p + 1;
    }
    if (start != end)
        lines.emplace_back(start, end);
    return lines;
}

} // namespace korv
