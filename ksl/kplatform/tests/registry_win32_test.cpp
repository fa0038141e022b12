// The registry calls over the real registry: sizes come back through the
// calls' own types, and the 32-bit view flag picks the 32-bit view.
#include "kplatform_registry.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

using namespace korv::platform;

namespace {

constexpr const char* kKey = "Software\\Korv\\RegistryTest";

HKEY create(const char* path, REGSAM view) {
    HKEY key = nullptr;
    DWORD disposition = 0;
    EXPECT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, path, 0, nullptr, 0, KEY_ALL_ACCESS | view,
                              nullptr, &key, &disposition),
              ERROR_SUCCESS);
    EXPECT_EQ(disposition, DWORD{REG_CREATED_NEW_KEY});
    return key;
}

std::string read_text(REGSAM view, const char* name) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, kKey, 0, KEY_READ | view, &key) != ERROR_SUCCESS)
        return "<no key>";
    char text[64] = "";
    DWORD size = sizeof text;
    DWORD type = 0;
    const LONG code =
        RegQueryValueExA(key, name, nullptr, &type, reinterpret_cast<BYTE*>(text), &size);
    RegCloseKey(key);
    return code == ERROR_SUCCESS && type == REG_SZ ? std::string(text) : "<no value>";
}

} // namespace

TEST(RegistryWin32, ThirtyTwoBitViewIsItsOwnView) {
    korv::testing::ScratchRoot root;
    HKEY narrow = create(kKey, KEY_WOW64_32KEY);
    const char value[] = "narrow";
    ASSERT_EQ(RegSetValueExA(narrow, "view", 0, REG_SZ, reinterpret_cast<const BYTE*>(value),
                             sizeof value),
              ERROR_SUCCESS);
    RegCloseKey(narrow);
    EXPECT_EQ(read_text(KEY_WOW64_32KEY, "view"), "narrow");
    EXPECT_EQ(read_text(KEY_WOW64_64KEY, "view"), "<no key>");
}

TEST(RegistryWin32, SizesTypesAndEnumerationComeBack) {
    korv::testing::ScratchRoot root;
    HKEY key = create(kKey, KEY_WOW64_64KEY);
    const char text[] = "C:\\Program Files\\Korv";
    const DWORD number = 0x12345678;
    ASSERT_EQ(RegSetValueExA(key, "TargetDir", 0, REG_SZ, reinterpret_cast<const BYTE*>(text),
                             sizeof text),
              ERROR_SUCCESS);
    ASSERT_EQ(RegSetValueExA(key, "Count", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number),
                             sizeof number),
              ERROR_SUCCESS);
    HKEY child = nullptr;
    ASSERT_EQ(RegCreateKeyA(key, "Child", &child), ERROR_SUCCESS);
    RegCloseKey(child);

    // Too small a buffer: ERROR_MORE_DATA and the size needed.
    char small[4];
    DWORD size = sizeof small;
    DWORD type = 0;
    EXPECT_EQ(
        RegQueryValueExA(key, "TargetDir", nullptr, &type, reinterpret_cast<BYTE*>(small), &size),
        ERROR_MORE_DATA);
    EXPECT_EQ(size, DWORD{sizeof text});
    DWORD got = 0;
    size = sizeof got;
    EXPECT_EQ(RegQueryValueExA(key, "count", nullptr, &type, reinterpret_cast<BYTE*>(&got), &size),
              ERROR_SUCCESS);
    EXPECT_EQ(type, DWORD{REG_DWORD});
    EXPECT_EQ(got, number);

    DWORD sub_keys = 0, values = 0, longest_name = 0;
    EXPECT_EQ(RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, &sub_keys, nullptr, nullptr, &values,
                               &longest_name, nullptr, nullptr, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(sub_keys, 1u);
    EXPECT_EQ(values, 2u);
    EXPECT_EQ(longest_name, DWORD{std::strlen("TargetDir")});

    char name[32];
    DWORD name_size = sizeof name;
    EXPECT_EQ(RegEnumKeyExA(key, 0, name, &name_size, nullptr, nullptr, nullptr, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(std::string(name), "Child");
    EXPECT_EQ(name_size, 5u);
    name_size = sizeof name;
    EXPECT_EQ(RegEnumKeyExA(key, 1, name, &name_size, nullptr, nullptr, nullptr, nullptr),
              ERROR_NO_MORE_ITEMS);

    EXPECT_EQ(RegDeleteKeyExA(key, "Child", KEY_WOW64_64KEY, 0), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteValueA(key, "Count"), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteValueA(key, "Count"), ERROR_FILE_NOT_FOUND);
    RegCloseKey(key);
    EXPECT_EQ(registry_file_problem().serial, 0u);
}
