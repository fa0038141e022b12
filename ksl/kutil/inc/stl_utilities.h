// Small functions on byte strings: formatting, numbers, command-line quoting,
// base64, byte order marks and line splitting.
//
// Text is bytes; nothing here converts character sets. Failures give false, -1
// or an empty result with a line in the error trace (formatting: the error log).
#pragma once

#include "errtrace.h"

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace korv {

// printf into a new string of any length; empty on failure.
std::string stl_string_format(const char* format, ...) KORV_PRINTF_LIKE(1, 2);
std::string stl_string_format_va(const char* format, va_list args) KORV_PRINTF_LIKE(1, 0);
// printf into `target`, replacing it. Returns the length, or -1 (target empty).
int stl_string_format(std::string& target, const char* format, ...) KORV_PRINTF_LIKE(2, 3);

// Replaces every occurrence of `search`, going on behind each inserted text.
// Returns the number of replacements; an empty `search` replaces nothing.
std::size_t stl_string_replace(std::string& text, const std::string& search,
                               const std::string& replacement);

// ASCII letters only.
void stl_string_to_lower(std::string& text);
// Cuts a trailing comment introduced by "//", then one by "/*", then one by ";",
// as values in the system's ini files carry them.
void stl_string_strip_comment(std::string& text);
// Takes every white space character out.
void stl_string_remove_white_space(std::string& text);
// True if `text` is exactly one of `words`.
inline bool stl_string_is_one_of(const std::string& text,
                                 std::initializer_list<const char*> words) {
    for (const char* word : words)
        if (text == word)
            return true;
    return false;
}

// strtol base 10 held to 32 bits (saturating, errno ERANGE) and strtod. The value
// is stored whatever happens. With `whole` the text must be used up entirely;
// without, at least one character must have been converted. So an empty text
// passes the `whole` test (value 0) and fails the other.
bool stl_string_to_long(const std::string& text, std::int32_t& value, bool whole);
bool stl_string_to_double(const std::string& text, double& value, bool whole);

// Decimal text of an integer.
std::string stl_number_to_string(int value);
std::string stl_number_to_string(unsigned int value);
std::string stl_number_to_string(long value);
std::string stl_number_to_string(unsigned long value);
std::string stl_number_to_string(long long value);
std::string stl_number_to_string(unsigned long long value);

// "%.*lf", then trailing zeros behind a decimal point and a bare point removed:
// 1.50 with 3 decimals gives "1.5", 2.0 gives "2", 100 with 0 decimals "100".
std::string stl_double_to_string(double value, int decimals);

// Protects a word for a command line: '"' and '\' get a '\' before them, and the
// whole is put in quotes if it holds a blank behind its first special character.
void stl_string_quote_space(std::string& text);
// The inverse. Fails (string unchanged) on a blank before any quote or backslash,
// a backslash before anything but '"' or '\', and a quote left open. A blank
// behind the first quote or backslash is kept even outside quotes: "a" b -> a b.
bool stl_string_unquote_space(std::string& text);

// Base64 in place. Decoding ignores trailing NUL bytes; on failure the string is
// emptied.
bool stl_encode_base64(std::string& text);
bool stl_decode_base64(std::string& text);

// 0 none, 1 UTF-8, 2 UTF-16 BE, 3 UTF-16 LE, 4 UTF-32 BE, 5 UTF-32 LE.
int detect_byte_order_mark(const void* bytes, std::size_t length);

// Lines ended by CR, LF or CR LF, up to the first NUL. A final line ending adds
// no empty line; empty lines before it are kept.
std::vector<std::string> split_lines(std::string_view text);

} // namespace korv
