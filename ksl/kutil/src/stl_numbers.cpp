#include "stl_utilities.h"

#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <limits>

namespace korv {
namespace {

bool conversion_done(const std::string& text, const char* end, bool whole) {
    if (whole)
        return end == text.c_str() + text.size();
    return end != text.c_str();
}

// The text a default-formatted stream gives in the classic locale, without its cost.
template <typename Integer> std::string integer_text(Integer value) {
    char digits[std::numeric_limits<Integer>::digits10 + 3];
    const auto result = std::to_chars(digits, digits + sizeof digits, value);
    return std::string(digits, result.ptr);
}

} // namespace

bool stl_string_to_long(const std::string& text, std::int32_t& value, bool whole) {
    char* end = nullptr;
    // A long is 32 bits in every file interface: saturate as a 32-bit strtol would.
    const long long wide = std::strtoll(text.c_str(), &end, 10);
    if (wide > std::numeric_limits<std::int32_t>::max()) {
        value = std::numeric_limits<std::int32_t>::max();
        errno = ERANGE;
    } else if (wide < std::numeric_limits<std::int32_t>::min()) {
        value = std::numeric_limits<std::int32_t>::min();
        errno = ERANGE;
    } else {
        value = static_cast<std::int32_t>(wide);
    }
    return conversion_done(text, end, whole);
}

bool stl_string_to_double(const std::string& text, double& value, bool whole) {
    char* end = nullptr;
    value = std::strtod(text.c_str(), &end);
    return conversion_done(text, end, whole);
}

std::string stl_number_to_string(int value) {
    return integer_text(value);
}
std::string stl_number_to_string(unsigned int value) {
    return integer_text(value);
}
std::string stl_number_to_string(long value) {
    return integer_text(value);
}
std::string stl_number_to_string(unsigned long value) {
    return integer_text(value);
}
std::string stl_number_to_string(long long value) {
    return integer_text(value);
}
std::string stl_number_to_string(unsigned long long value) {
    return integer_text(value);
}

std::string stl_double_to_string(double value, int decimals) {
    std::string text = stl_string_format("%.*lf", decimals, value);
    // Zeros are dropped only behind a decimal point, so "100" stays.
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (!text.empty() && text.back() == '.')
            text.pop_back();
    }
    return text;
}

} // namespace korv
