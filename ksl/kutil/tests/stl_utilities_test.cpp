// The string helpers: formatting, numbers, lines, quoting, base64.
#include "log_capture.h"
#include "stl_utilities.h"
#include "trace_context.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <random>
#include <tuple>

using namespace korv;
using korv::testing::LogCapture;
using Lines = std::vector<std::string>;

namespace {

class StlText : public korv::testing::TraceContextTest {};

std::string format_through_va(const char* format, ...) KORV_PRINTF_LIKE(1, 2);
std::string format_through_va(const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::string text = korv::stl_string_format_va(format, args);
    va_end(args);
    return text;
}

TEST(StlStringFormat, AnyLengthAroundTheStackBufferAndTheTargetAsArgument) {
    LogCapture log;
    EXPECT_EQ(stl_string_format("%d-%s-%.2f", 42, "x", 1.5), "42-x-1.50");
    EXPECT_EQ(stl_string_format("%s", ""), "");
    // 1023 characters fit the stack buffer with their NUL, 1024 do not.
    for (std::size_t length : {1022u, 1023u, 1024u, 1025u, 4096u, 300000u}) {
        const std::string body(length - 2, 'q');
        EXPECT_EQ(stl_string_format("<%s>", body.c_str()), "<" + body + ">") << length;
        EXPECT_EQ(format_through_va("<%s>", body.c_str()), "<" + body + ">") << length;
        std::string target = body;
        EXPECT_EQ(stl_string_format(target, "<%s>", target.c_str()), static_cast<int>(length));
        EXPECT_EQ(target, "<" + body + ">") << length;
    }
    EXPECT_TRUE(log.errors().empty());
}

TEST(StlStringFormat, LibraryFailureIsLoggedWithTheErrorText) {
    // In the C locale a wide character beyond ASCII has no byte form.
    const wchar_t unconvertible[] = {static_cast<wchar_t>(0x20AC), 0};
    const std::string why = std::strerror(EILSEQ);
    LogCapture log;
    EXPECT_EQ(stl_string_format("x%lsy", unconvertible), "");
    std::string target = "old";
    EXPECT_EQ(stl_string_format(target, "x%lsy", unconvertible), -1);
    EXPECT_EQ(target, "");
    EXPECT_EQ(format_through_va("x%lsy", unconvertible), "");
    EXPECT_EQ(log.errors(),
              (Lines{"stl_string_format(): stl_string_format() failed: " + why,
                     "stl_string_format(): stl_string_format() failed: " + why,
                     "stl_string_format_va(): stl_string_format_va() failed: " + why}));
}

TEST(SplitLines, EndingsAndEmptyLines) {
    const std::pair<std::string, Lines> cases[] = {{"", {}},
                                                   {"a", {"a"}},
                                                   {"a\r\nb\nc\rd", {"a", "b", "c", "d"}},
                                                   {"a\n", {"a"}},
                                                   {"a\r\n", {"a"}},
                                                   {"a\r", {"a"}},
                                                   {"a\n\n", {"a", ""}},
                                                   {"\n", {""}},
                                                   {"\r\n\r\n", {"", ""}},
                                                   {"a\r\n\r\nb", {"a", "", "b"}},
                                                   {"a\n\rb", {"a", "", "b"}},
                                                   {"\r\r\n", {"", ""}},
                                                   {"  x \t\r\n", {"  x \t"}}};
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(split_lines(text), expected) << ::testing::PrintToString(text);
}

TEST(SplitLines, StopsAtTheFirstNul) {
    EXPECT_EQ(split_lines(std::string_view("a\nb\0c\nd", 7)), (Lines{"a", "b"}));
    EXPECT_EQ(split_lines(std::string_view("a\r\0\nb", 5)), (Lines{"a"}));
    EXPECT_EQ(split_lines(std::string_view("\0a\nb", 4)), Lines{});
}

TEST(DetectByteOrderMark, MarksAndTheLengthsThatHoldThem) {
    struct Case {
        const char* bytes;
        std::size_t length;
        int expected;
    };
    const Case cases[] = {{"\xEF\xBB\xBFx", 4, 1}, {"\xEF\xBB\xBF", 3, 1},
                          {"\xEF\xBB", 2, 0},      {"\xFE\xFFx", 3, 2},
                          {"\xFF\xFEx", 3, 3},     {"\xFF\xFE", 2, 3},
                          {"\xFE", 1, 0},          {"\0\0\xFE\xFF", 4, 4},
                          {"\0\0\xFE", 3, 0},      {"\xFF\xFE\0\0", 4, 5},
                          {"\xFF\xFE\0\0", 3, 3},  {"\xFE\xFF\0\0", 4, 2},
                          {"[sec]", 5, 0},         {"", 0, 0}};
    for (const Case& c : cases)
        EXPECT_EQ(detect_byte_order_mark(c.bytes, c.length), c.expected)
            << ::testing::PrintToString(std::string(c.bytes, c.length));
    EXPECT_EQ(detect_byte_order_mark(nullptr, 4), 0);
}

// An empty text passes the whole test: the conversion ends at its end.
struct LongCase {
    const char* text;
    std::int32_t value;
    bool whole;
    bool partial;
};

TEST(StlStringToLong, WholeAndPartialConversion) {
    const LongCase cases[] = {{"123", 123, true, true},
                              {" -42", -42, true, true},
                              {"+7", 7, true, true},
                              {"12abc", 12, false, true},
                              {"12 ", 12, false, true},
                              {"abc", 0, false, false},
                              {"", 0, true, false},
                              {"-", 0, false, false},
                              {"0x10", 0, false, true},
                              {"-2147483648", INT32_MIN, true, true},
                              {"2147483647", INT32_MAX, true, true}};
    for (const LongCase& c : cases) {
        for (bool whole : {true, false}) {
            std::int32_t value = 99;
            errno = 0;
            EXPECT_EQ(stl_string_to_long(c.text, value, whole), whole ? c.whole : c.partial)
                << c.text;
            EXPECT_EQ(value, c.value) << c.text;
            EXPECT_EQ(errno, 0) << c.text;
        }
    }
    std::int32_t value = 0;
    EXPECT_FALSE(stl_string_to_long(std::string("5\0", 2), value, true));
    EXPECT_EQ(value, 5);
}

TEST(StlStringToLong, SaturatesAtThirtyTwoBits) {
    const std::pair<const char*, std::int32_t> cases[] = {{"2147483648", INT32_MAX},
                                                          {"4294967296", INT32_MAX},
                                                          {"-2147483649", INT32_MIN},
                                                          {"-4294967297", INT32_MIN},
                                                          {"99999999999999999999999", INT32_MAX},
                                                          {"-99999999999999999999999", INT32_MIN}};
    for (const auto& [text, expected] : cases) {
        std::int32_t value = 0;
        errno = 0;
        EXPECT_TRUE(stl_string_to_long(text, value, true)) << text;
        EXPECT_EQ(value, expected) << text;
        EXPECT_EQ(errno, ERANGE) << text;
    }
}

TEST(StlStringToDouble, WholeAndPartialConversion) {
    // text, value, whole, partial; an empty text ends exactly at its end
    const std::tuple<const char*, double, bool, bool> cases[] = {{"1.25", 1.25, true, true},
                                                                 {" -2e3", -2000, true, true},
                                                                 {"3.5mm", 3.5, false, true},
                                                                 {"mm", 0, false, false},
                                                                 {"", 0, true, false}};
    for (const auto& [text, expected, whole, partial] : cases) {
        for (bool as_whole : {true, false}) {
            double value = 99;
            EXPECT_EQ(stl_string_to_double(text, value, as_whole), as_whole ? whole : partial)
                << text;
            EXPECT_EQ(value, expected) << text;
        }
    }
}

TEST(StlNumberToString, EveryIntegerTypeAtItsLimits) {
    EXPECT_EQ(stl_number_to_string(INT_MIN), "-2147483648");
    EXPECT_EQ(stl_number_to_string(UINT_MAX), "4294967295");
    EXPECT_EQ(stl_number_to_string(LONG_MIN), std::to_string(LONG_MIN));
    EXPECT_EQ(stl_number_to_string(ULONG_MAX), std::to_string(ULONG_MAX));
    EXPECT_EQ(stl_number_to_string(LLONG_MIN), "-9223372036854775808");
    EXPECT_EQ(stl_number_to_string(ULLONG_MAX), "18446744073709551615");
}

TEST(StlDoubleToString, TrailingZerosGoOnlyBehindThePoint) {
    EXPECT_EQ(stl_double_to_string(1.50, 3), "1.5");
    EXPECT_EQ(stl_double_to_string(2.0, 2), "2");
    EXPECT_EQ(stl_double_to_string(100, 2), "100");
    EXPECT_EQ(stl_double_to_string(1234.5678, 2), "1234.57");
    EXPECT_EQ(stl_double_to_string(-0.25, 1), "-0.2");
    EXPECT_EQ(stl_double_to_string(1e21, 1), "1000000000000000000000");
    // Precision beyond the stack buffer of the formatter.
    EXPECT_EQ(stl_double_to_string(0.5, 1500), "0.5");
}

std::string replaced(std::string text, const std::string& search, const std::string& with,
                     std::size_t expected_count) {
    EXPECT_EQ(stl_string_replace(text, search, with), expected_count) << text;
    return text;
}

TEST(StlStringReplace, ReplacesEveryOccurrenceOnceAndGoesOnBehindIt) {
    EXPECT_EQ(replaced("a.b.c.", ".", "::", 3), "a::b::c::");
    EXPECT_EQ(replaced("%ROOT%\\x\\%ROOT%", "%ROOT%", "C:", 2), "C:\\x\\C:");
    EXPECT_EQ(replaced("aa", "a", "aa", 2), "aaaa");
    EXPECT_EQ(replaced("aaa", "aa", "b", 1), "ba");
    EXPECT_EQ(replaced("abc", "x", "y", 0), "abc");
    EXPECT_EQ(replaced("abc", "", "y", 0), "abc");
    EXPECT_EQ(replaced("abc", "abc", "", 1), "");
    std::string many;
    for (int i = 0; i < 100000; ++i)
        many += "ab";
    EXPECT_EQ(replaced(many, "b", "", 100000), std::string(100000, 'a')); // no quadratic walk
}

TEST(StlStringToLower, OnlyAsciiLetters) {
    std::string text = "AbC-XYZ_09\xC4\xD6@[";
    stl_string_to_lower(text);
    EXPECT_EQ(text, "abc-xyz_09\xC4\xD6@[");
}

TEST(StlStringQuoteSpace, QuotesOnlyWhatNeedsIt) {
    const std::pair<std::string, std::string> cases[] = {
        {"plain", "plain"},
        {"", ""},
        {"a b", "\"a b\""},
        {"a\"b", "a\\\"b"},
        {"a\\b", "a\\\\b"},
        {"C:\\Program Files\\x", "\"C:\\\\Program Files\\\\x\""},
        {"say \"hi\"", "\"say \\\"hi\\\"\""},
        {" ", "\" \""}};
    for (const auto& [text, expected] : cases) {
        std::string quoted = text;
        stl_string_quote_space(quoted);
        EXPECT_EQ(quoted, expected) << text;
    }
}

TEST_F(StlText, UnquoteSucceeds) {
    const std::pair<std::string, std::string> cases[] = {
        {"plain", "plain"},
        {"\"a b\"", "a b"},
        {"\\\"x", "\"x"},
        {"a\\\\b", "a\\b"},
        {"ab\"c d\"e", "abc de"},
        {"\"\"", ""},
        // A blank behind the first quote is kept even outside the quotes.
        {"\"a\" b", "a b"},
        {"\\\\ x", "\\ x"},
        // Escapes inside quotes, as quoting writes them.
        {"\"x \\\\\\\" y\"", "x \\\" y"},
        {"\"\\\\\\\\server\\\\share x\"", "\\\\server\\share x"}};
    for (const auto& [text, expected] : cases) {
        std::string unquoted = text;
        EXPECT_TRUE(stl_string_unquote_space(unquoted)) << text;
        EXPECT_EQ(unquoted, expected) << text;
    }
    EXPECT_TRUE(take_trace().empty());
}

TEST_F(StlText, UnquoteFailsAndLeavesTheString) {
    const std::string space = "stl_string_unquote_space(): found unquoted space";
    const std::string lonely = "stl_string_unquote_space(): can't unquote a lonely backslash";
    const std::string open = "stl_string_unquote_space(): no closing quote found";
    const std::pair<std::string, std::string> cases[] = {
        {"a b", space},    {" \"a\"", space}, {"\\a", lonely},  {"\\", lonely},
        {"\"a\\\"", open}, {"\"a", open},     {"x\"a b", open}, {"\"a\\ b\"", lonely}};
    for (const auto& [text, message] : cases) {
        std::string unquoted = text;
        EXPECT_FALSE(stl_string_unquote_space(unquoted)) << text;
        EXPECT_EQ(unquoted, text);
        EXPECT_EQ(take_trace(), Lines{message}) << text;
    }
}

TEST_F(StlText, Base64StringsRoundTripWithEmbeddedNuls) {
    std::string word = "foobar";
    EXPECT_TRUE(stl_encode_base64(word));
    EXPECT_EQ(word, "Zm9vYmFy");
    EXPECT_EQ(std::strlen(word.c_str()), word.size());

    std::mt19937 random(7);
    for (std::size_t length = 0; length <= 300; ++length) {
        std::string data(length, '\0');
        for (char& c : data)
            c = static_cast<char>(random() % 3 == 0 ? 0 : random());
        std::string text = data;
        ASSERT_TRUE(stl_encode_base64(text));
        ASSERT_EQ(text.size(), (length + 2) / 3 * 4);
        ASSERT_TRUE(stl_decode_base64(text));
        ASSERT_EQ(text, data) << length;
    }
    EXPECT_TRUE(take_trace().empty());
}

TEST_F(StlText, Base64DecodeOfStrings) {
    std::string text("QQ==\0\0", 6);
    EXPECT_TRUE(stl_decode_base64(text));
    EXPECT_EQ(text, "A");
    text = std::string("\0", 1);
    EXPECT_TRUE(stl_decode_base64(text));
    EXPECT_EQ(text, "");
    EXPECT_TRUE(take_trace().empty());

    text = "QQ=";
    EXPECT_FALSE(stl_decode_base64(text));
    EXPECT_EQ(text, "");
    EXPECT_TRUE(traced("stl_decode_base64(): KBase64_Decode(3) failed (18446744073709551615)"));
}

} // namespace

TEST(StlStrip, CommentsGoInTheirOrderAndWhiteSpaceGoesEverywhere) {
    std::string text = "a b ; c // d";
    korv::stl_string_strip_comment(text);
    EXPECT_EQ(text, "a b ");
    text = "x/*y;z";
    korv::stl_string_strip_comment(text);
    EXPECT_EQ(text, "x");
    text = " M\tF U\r\n100 \v";
    korv::stl_string_remove_white_space(text);
    EXPECT_EQ(text, "MFU100");
}
