#include "log_capture.h"
#include "stl_utilities.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>

using korv::stl_string_format;
using korv::testing::LogCapture;

namespace {

std::string format_through_va(const char* format, ...) KORV_PRINTF_LIKE(1, 2);
std::string format_through_va(const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::string text = korv::stl_string_format_va(format, args);
    va_end(args);
    return text;
}

TEST(StlStringFormat, AnyLengthAroundTheStackBuffer) {
    LogCapture log;
    EXPECT_EQ(stl_string_format("%d-%s-%.2f", 42, "x", 1.5), "42-x-1.50");
    EXPECT_EQ(stl_string_format("%s", ""), "");
    // 1023 characters fit the stack buffer with their NUL, 1024 do not.
    for (std::size_t length : {1022u, 1023u, 1024u, 1025u, 4096u, 300000u}) {
        const std::string body(length - 2, 'q');
        EXPECT_EQ(stl_string_format("<%s>", body.c_str()), "<" + body + ">") << length;
        EXPECT_EQ(format_through_va("<%s>", body.c_str()), "<" + body + ">") << length;
        std::string target = "old";
        EXPECT_EQ(stl_string_format(target, "<%s>", body.c_str()), static_cast<int>(length));
        EXPECT_EQ(target, "<" + body + ">") << length;
    }
    EXPECT_TRUE(log.errors().empty());
}

TEST(StlStringFormat, TargetMayBeAnArgument) {
    for (std::size_t length : {10u, 5000u}) {
        std::string text(length, 'a');
        const std::string expected = "[" + text + "]";
        EXPECT_EQ(stl_string_format(text, "[%s]", text.c_str()), static_cast<int>(length + 2));
        EXPECT_EQ(text, expected);
    }
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
    EXPECT_EQ(log.errors(), (std::vector<std::string>{
                                "stl_string_format(): stl_string_format() failed: " + why,
                                "stl_string_format(): stl_string_format() failed: " + why,
                                "stl_string_format_va(): stl_string_format_va() failed: " + why}));
}

} // namespace
