// The string utilities that read outside text: the number parsers, the
// command-line quoting, comment stripping, byte order marks and line splitting.
#include "fuzz_support.h"
#include "stl_utilities.h"

#include <cmath>
#include <cstdio>

using namespace korv;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const korv::fuzz::ErrTraceScope context;
    korv::fuzz::Choices choices(data, size);
    const int decimals = choices.byte() % 20;
    const std::string text(reinterpret_cast<const char*>(data), size);

    std::int32_t whole_value = 0, prefix_value = 0;
    const bool whole = stl_string_to_long(text, whole_value, true);
    const bool prefix = stl_string_to_long(text, prefix_value, false);
    if (whole && !text.empty())
        FUZZ_CHECK(prefix && prefix_value == whole_value, "whole number %d read as prefix %d",
                   whole_value, prefix_value);
    std::int32_t back = 0;
    FUZZ_CHECK(stl_string_to_long(stl_number_to_string(prefix_value), back, true) &&
                   back == prefix_value,
               "%d does not read back", prefix_value);

    double number = 0;
    if (stl_string_to_double(text, number, false) && std::isfinite(number)) {
        char exact[64];
        std::snprintf(exact, sizeof exact, "%.17g", number);
        double again = 0;
        FUZZ_CHECK(stl_string_to_double(exact, again, true) && again == number,
                   "%s does not read back", exact);
        const std::string rounded = stl_double_to_string(number, decimals);
        FUZZ_CHECK(stl_string_to_double(rounded, again, true), "\"%s\" is no number",
                   rounded.c_str());
    }

    // Quoting is undone by unquoting.
    std::string quoted = text;
    stl_string_quote_space(quoted);
    std::string unquoted = quoted;
    FUZZ_CHECK(stl_string_unquote_space(unquoted) && unquoted == text,
               "quoted text does not unquote to itself");
    std::string raw = text;
    if (!stl_string_unquote_space(raw))
        FUZZ_CHECK(raw == text, "a failed unquote changed the text");

    std::string stripped = text;
    stl_string_strip_comment(stripped);
    FUZZ_CHECK(text.compare(0, stripped.size(), stripped) == 0, "comment strip is no prefix");
    std::string compact = text;
    stl_string_remove_white_space(compact);
    std::string lower = text;
    stl_string_to_lower(lower);
    FUZZ_CHECK(lower.size() == text.size(), "lower case changed the length");

    const int bom = detect_byte_order_mark(data, size);
    FUZZ_CHECK(bom >= 0 && bom <= 5, "byte order mark %d", bom);
    std::size_t line_bytes = 0;
    for (const std::string& line : split_lines(text)) {
        FUZZ_CHECK(line.find_first_of("\r\n", 0) == std::string::npos, "line holds a line end");
        line_bytes += line.size();
    }
    FUZZ_CHECK(line_bytes <= text.size(), "lines hold more than the text");
    (void)stl_string_format("%s|%.*s", text.c_str(), static_cast<int>(text.size()), text.data());
    return 0;
}
