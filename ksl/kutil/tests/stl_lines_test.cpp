#include "stl_utilities.h"

#include <gtest/gtest.h>

using korv::detect_byte_order_mark;
using korv::split_lines;
using Lines = std::vector<std::string>;

namespace {

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
        EXPECT_EQ(split_lines(text), expected) << testing::PrintToString(text);
}

TEST(SplitLines, StopsAtTheFirstNul) {
    EXPECT_EQ(split_lines(std::string_view("a\nb\0c\nd", 7)), (Lines{"a", "b"}));
    EXPECT_EQ(split_lines(std::string_view("a\r\0\nb", 5)), (Lines{"a"}));
    EXPECT_EQ(split_lines(std::string_view("\0a\nb", 4)), Lines{});
}

TEST(SplitLines, BigTextIsAllocatedOnce) {
    std::string text;
    const int count = 100001;
    for (int i = 0; i < count; ++i)
        text += (i % 3 == 0) ? "key=value\r\n" : (i % 3 == 1 ? "\n" : "[section]\r");
    const Lines lines = split_lines(text);
    ASSERT_EQ(lines.size(), static_cast<std::size_t>(count));
    EXPECT_EQ(lines.capacity(), lines.size());
    EXPECT_EQ(lines[99999], "key=value");
    EXPECT_EQ(lines[100000], "");
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
            << testing::PrintToString(std::string(c.bytes, c.length));
    EXPECT_EQ(detect_byte_order_mark(nullptr, 4), 0);
}

} // namespace
