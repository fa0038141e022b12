#include "stl_utilities.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <climits>

using namespace korv;

namespace {

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
    double value = 0;
    EXPECT_TRUE(stl_string_to_double("1.25", value, true));
    EXPECT_EQ(value, 1.25);
    EXPECT_TRUE(stl_string_to_double(" -2e3", value, true));
    EXPECT_EQ(value, -2000.0);
    EXPECT_FALSE(stl_string_to_double("3.5mm", value, true));
    EXPECT_EQ(value, 3.5);
    EXPECT_TRUE(stl_string_to_double("3.5mm", value, false));
    EXPECT_FALSE(stl_string_to_double("mm", value, false));
    EXPECT_EQ(value, 0.0);
    // Nothing to convert ends exactly at the end of an empty text.
    EXPECT_TRUE(stl_string_to_double("", value, true));
    EXPECT_FALSE(stl_string_to_double("", value, false));
}

TEST(StlNumberToString, EveryIntegerTypeAtItsLimits) {
    EXPECT_EQ(stl_number_to_string(0), "0");
    EXPECT_EQ(stl_number_to_string(INT_MIN), "-2147483648");
    EXPECT_EQ(stl_number_to_string(UINT_MAX), "4294967295");
    EXPECT_EQ(stl_number_to_string(-1L), "-1");
    EXPECT_EQ(stl_number_to_string(LONG_MIN), std::to_string(LONG_MIN));
    EXPECT_EQ(stl_number_to_string(ULONG_MAX), std::to_string(ULONG_MAX));
    EXPECT_EQ(stl_number_to_string(LLONG_MIN), "-9223372036854775808");
    EXPECT_EQ(stl_number_to_string(ULLONG_MAX), "18446744073709551615");
    EXPECT_EQ(stl_number_to_string(std::size_t{1234567}), "1234567");
}

TEST(StlDoubleToString, TrailingZerosGoOnlyBehindThePoint) {
    EXPECT_EQ(stl_double_to_string(1.50, 3), "1.5");
    EXPECT_EQ(stl_double_to_string(2.0, 2), "2");
    EXPECT_EQ(stl_double_to_string(100, 0), "100");
    EXPECT_EQ(stl_double_to_string(100, 2), "100");
    EXPECT_EQ(stl_double_to_string(1234.5678, 2), "1234.57");
    EXPECT_EQ(stl_double_to_string(-0.25, 1), "-0.2");
    EXPECT_EQ(stl_double_to_string(1e21, 1), "1000000000000000000000");
    // Precision beyond the stack buffer of the formatter.
    EXPECT_EQ(stl_double_to_string(0.5, 1500), "0.5");
}

} // namespace
