#include "kplatform_file.h"
#include "kplatform_module.h"
#include "kplatform_version.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

using namespace korv::platform;

namespace {

std::string exe_name() {
    const std::string path = executable_path();
    return path.substr(path.rfind('/') + 1);
}

std::vector<unsigned char> load(const std::string& file) {
    DWORD handle = 77;
    const DWORD size = GetFileVersionInfoSizeA(file.c_str(), &handle);
    EXPECT_EQ(handle, 0u);
    if (size == 0)
        return {};
    std::vector<unsigned char> block(size);
    EXPECT_TRUE(GetFileVersionInfoA(file.c_str(), 0, size, block.data()));
    return block;
}

std::string query(const std::vector<unsigned char>& block, const char* name) {
    void* value = nullptr;
    unsigned size = 0;
    if (!VerQueryValueA(block.data(), name, &value, &size))
        return "<none>";
    EXPECT_EQ(size, std::strlen(static_cast<const char*>(value)) + 1);
    return static_cast<const char*>(value);
}

} // namespace

TEST(Version, TheRunningExecutableCarriesTheBuildTable) {
    // As the framework names it: the base name with ".EXE", any case.
    const std::vector<unsigned char> block = load(exe_name() + ".EXE");
    ASSERT_FALSE(block.empty());

    // The translation table is read in the ksystem version test.
    void* value = nullptr;
    unsigned size = 0;
    const std::string prefix = "\\StringFileInfo\\040904b0\\";
    EXPECT_EQ(query(block, (prefix + "ProductName").c_str()),
              KORV_TEST_PRODUCT_KORECON ? "KorECon" : "Midspan Plugin");
    char version[32];
    std::snprintf(version, sizeof version, "%d.%02d-%d", KORV_TEST_VERSION_MAJOR,
                  KORV_TEST_VERSION_MINOR, KORV_TEST_VERSION_PATCH);
    EXPECT_EQ(query(block, (prefix + "FileVersion").c_str()), version);
    EXPECT_EQ(query(block, (prefix + "productversion").c_str()), version);
    EXPECT_EQ(query(block, (prefix + "Comments").c_str()), "<none>");
    EXPECT_EQ(query(block, "\\StringFileInfo\\04070000\\ProductName"), "<none>");
    EXPECT_EQ(query(block, "\\StringFileInfo\\ProductName"), "<none>");

    ASSERT_TRUE(VerQueryValueA(block.data(), "\\", &value, &size));
    ASSERT_EQ(size, sizeof(VS_FIXEDFILEINFO));
    VS_FIXEDFILEINFO fixed;
    std::memcpy(&fixed, value, sizeof fixed);
    EXPECT_EQ(fixed.dwSignature, 0xFEEF04BDu);
    EXPECT_EQ(fixed.dwFileVersionMS >> 16, static_cast<DWORD>(KORV_TEST_VERSION_MAJOR));
    EXPECT_EQ(fixed.dwFileVersionMS & 0xFFFF, static_cast<DWORD>(KORV_TEST_VERSION_MINOR));
    EXPECT_EQ(fixed.dwFileVersionLS >> 16, static_cast<DWORD>(KORV_TEST_VERSION_PATCH));

    // The full path, with or without ".exe", names it too.
    EXPECT_FALSE(load(executable_path()).empty());
    EXPECT_FALSE(load(executable_path() + ".exe").empty());
}

TEST(Version, OtherFilesHaveNone) {
    korv::testing::ScratchDir dir;
    dir.write("other.exe", "MZ");
    EXPECT_TRUE(load(dir / "other.exe").empty());
    EXPECT_EQ(last_error(), static_cast<std::uint32_t>(ENODATA));
    EXPECT_TRUE(load(dir / "missing.exe").empty());
    EXPECT_EQ(last_error(), static_cast<std::uint32_t>(ENOENT));
    EXPECT_TRUE(load("").empty());

    const char junk[64] = "not a version block";
    void* value = nullptr;
    unsigned size = 5;
    EXPECT_FALSE(VerQueryValueA(junk, "\\", &value, &size));
    EXPECT_EQ(size, 0u);

    const std::vector<unsigned char> block = load(exe_name());
    ASSERT_FALSE(block.empty());
    std::vector<unsigned char> small(block.size() - 1);
    EXPECT_FALSE(
        GetFileVersionInfoA(exe_name().c_str(), 0, static_cast<DWORD>(small.size()), small.data()));
}

TEST(Module, FileNameIsTheRealExecutablePath) {
    char name[4096];
    const std::uint32_t length = GetModuleFileNameA(nullptr, name, sizeof name);
    ASSERT_GT(length, 0u);
    EXPECT_EQ(length, std::strlen(name));
    EXPECT_EQ(name, executable_path());
    EXPECT_EQ(name[0], '/');

    char small[5] = "zzzz";
    EXPECT_EQ(GetModuleFileNameA(nullptr, small, 4), 4u);
    EXPECT_EQ(std::string(small), executable_path().substr(0, 3));
    EXPECT_EQ(last_error(), static_cast<std::uint32_t>(ERANGE));
    EXPECT_EQ(GetModuleFileNameA(nullptr, small, 0), 0u);
    EXPECT_EQ(GetModuleFileNameA(reinterpret_cast<HMODULE>(1), name, sizeof name), 0u);
}
