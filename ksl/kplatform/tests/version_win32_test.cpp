// The VERSIONINFO resource that windres compiled into this test program.
#include "kplatform_module.h"
#include "kplatform_version.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

using namespace korv::platform;

TEST(VersionWin32, TheResourceCarriesTheProjectVersion) {
    const std::string self = executable_path();
    DWORD handle = 77;
    const DWORD size = GetFileVersionInfoSizeA(self.c_str(), &handle);
    ASSERT_GT(size, 0u);
    EXPECT_EQ(handle, 0u);
    std::vector<unsigned char> block(size);
    ASSERT_TRUE(GetFileVersionInfoA(self.c_str(), 0, size, block.data()));

    void* value = nullptr;
    unsigned length = 0;
    ASSERT_TRUE(VerQueryValueA(block.data(), "\\", &value, &length));
    ASSERT_EQ(length, sizeof(VS_FIXEDFILEINFO));
    const auto* fixed = static_cast<const VS_FIXEDFILEINFO*>(value);
    EXPECT_EQ(fixed->dwSignature, 0xFEEF04BDu);
    EXPECT_EQ(fixed->dwFileVersionMS,
              (DWORD{KORV_TEST_VERSION_MAJOR} << 16) | DWORD{KORV_TEST_VERSION_MINOR});
    EXPECT_EQ(fixed->dwProductVersionLS, DWORD{KORV_TEST_VERSION_PATCH} << 16);

    ASSERT_TRUE(
        VerQueryValueA(block.data(), "\\StringFileInfo\\040904b0\\ProductName", &value, &length));
    EXPECT_STREQ(static_cast<const char*>(value),
                 KORV_TEST_PRODUCT_KORECON ? "KorECon" : "Midspan Plugin");
    ASSERT_TRUE(
        VerQueryValueA(block.data(), "\\StringFileInfo\\040904b0\\FileVersion", &value, &length));
    char expected[16];
    std::snprintf(expected, sizeof expected, "%d.%02d-%d", KORV_TEST_VERSION_MAJOR,
                  KORV_TEST_VERSION_MINOR, KORV_TEST_VERSION_PATCH);
    EXPECT_STREQ(static_cast<const char*>(value), expected);
    EXPECT_FALSE(
        VerQueryValueA(block.data(), "\\StringFileInfo\\040904b0\\NoSuchName", &value, &length));
}
