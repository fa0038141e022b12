#include "wizard/caldat_records.h"

#include <bit>
#include <cstring>
#include <limits>

static_assert(std::numeric_limits<double>::is_iec559, "the data file holds IEEE doubles");

std::int32_t CaldatGetInt32(const unsigned char* bytes) {
    const std::uint32_t value = std::uint32_t(bytes[0]) | std::uint32_t(bytes[1]) << 8 |
                                std::uint32_t(bytes[2]) << 16 | std::uint32_t(bytes[3]) << 24;
    return static_cast<std::int32_t>(value);
}

void CaldatPutInt32(unsigned char* bytes, std::int32_t value) {
    const auto bits = static_cast<std::uint32_t>(value);
    for (int i = 0; i < 4; ++i)
        bytes[i] = static_cast<unsigned char>(bits >> (8 * i));
}

double CaldatGetDouble(const unsigned char* bytes) {
    std::uint64_t bits = 0;
    for (int i = 7; i >= 0; --i)
        bits = bits << 8 | bytes[i];
    return std::bit_cast<double>(bits);
}

void CaldatPutDouble(unsigned char* bytes, double value) {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    for (int i = 0; i < 8; ++i)
        bytes[i] = static_cast<unsigned char>(bits >> (8 * i));
}

std::string_view CaldatKeyText(const char (&field)[kCaldatKeySize]) {
    const void* end = std::memchr(field, '\0', kCaldatKeySize);
    return {field,
            end ? static_cast<std::size_t>(static_cast<const char*>(end) - field) : kCaldatKeySize};
}

bool CaldatSetKeyText(char (&field)[kCaldatKeySize], std::string_view text) {
    if (text.size() > kCaldatKeyMaxLength || text.find('\0') != std::string_view::npos)
        return false;
    std::memset(field, 0, kCaldatKeySize);
    std::memcpy(field, text.data(), text.size());
    return true;
}
