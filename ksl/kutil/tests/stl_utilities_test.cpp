#include "errtrace.h"
#include "stl_utilities.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

using namespace korv;

namespace {

// Each test runs in its own error trace context and reads the lines from it.
class StlText : public ::testing::Test {
protected:
    void SetUp() override { KErrTrace_BeginContext(); }
    void TearDown() override {
        KErrTrace_ClearContext();
        KErrTrace_EndContext();
    }
    static std::vector<std::string> trace() { return korv::diag::error_trace_lines(); }
};

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
    EXPECT_EQ(replaced(many, "b", "", 100000), std::string(100000, 'a'));
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
        {"\\\\ x", "\\ x"}};
    for (const auto& [text, expected] : cases) {
        std::string unquoted = text;
        EXPECT_TRUE(stl_string_unquote_space(unquoted)) << text;
        EXPECT_EQ(unquoted, expected) << text;
    }
    EXPECT_TRUE(trace().empty());
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
        EXPECT_EQ(trace(), std::vector<std::string>{message}) << text;
        KErrTrace_ClearContext();
    }
}

TEST_F(StlText, QuoteThenUnquoteGivesTheWordBack) {
    for (std::string word : {"a b", "a\"b", "\\", "\"", "  ", "x \\\" y", "\\\\server\\share x"}) {
        std::string text = word;
        stl_string_quote_space(text);
        EXPECT_TRUE(stl_string_unquote_space(text)) << word;
        EXPECT_EQ(text, word);
    }
}

TEST_F(StlText, Base64StringsRoundTripWithEmbeddedNuls) {
    std::string empty;
    EXPECT_TRUE(stl_encode_base64(empty));
    EXPECT_EQ(empty, "");
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
    EXPECT_TRUE(trace().empty());
}

TEST_F(StlText, Base64DecodeOfStrings) {
    std::string text("QQ==\0\0", 6);
    EXPECT_TRUE(stl_decode_base64(text));
    EXPECT_EQ(text, "A");
    text = "QQ=A";
    EXPECT_TRUE(stl_decode_base64(text));
    EXPECT_EQ(text, std::string("A\0", 2));
    text = std::string("\0", 1);
    EXPECT_TRUE(stl_decode_base64(text));
    EXPECT_EQ(text, "");
    EXPECT_TRUE(trace().empty());

    text = "QUJD\r\nQQ";
    EXPECT_FALSE(stl_decode_base64(text));
    EXPECT_EQ(text, "");
    text = "QQ=";
    EXPECT_FALSE(stl_decode_base64(text));
    EXPECT_EQ(text, "");
    EXPECT_EQ(trace(),
              (std::vector<std::string>{
                  "KBase64_Decode(): illegal character 0xffffffff read, terminating",
                  "stl_decode_base64(): KBase64_Decode(8) failed (18446744073709551615)",
                  "KBase64_Decode(): source_len has to be multiple of 4, not 3",
                  "stl_decode_base64(): KBase64_Decode(3) failed (18446744073709551615)"}));
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
