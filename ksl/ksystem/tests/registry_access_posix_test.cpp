#include "kregistry.h"
#include "log_capture.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace korv;
using korv::platform::HKEY_CURRENT_USER;
using korv::platform::HKEY_LOCAL_MACHINE;
using korv::testing::LogCapture;
using korv::testing::ScratchRoot;

namespace {

const char* const kSettings = "Software\\Korv\\hub32\\settings";

void write_raw(const char* key, const char* value, DWORD type, const std::string& data) {
    platform::HKEY handle = nullptr;
    ASSERT_EQ(platform::RegCreateKeyA(HKEY_LOCAL_MACHINE, key, &handle), platform::ERROR_SUCCESS);
    ASSERT_EQ(platform::RegSetValueExA(handle, value, 0, type,
                                       reinterpret_cast<const platform::BYTE*>(data.data()),
                                       static_cast<DWORD>(data.size())),
              platform::ERROR_SUCCESS);
    platform::RegCloseKey(handle);
}

struct Box {
    std::string text;
    std::string caption;
    unsigned type = 0;
    int shown = 0;
};

} // namespace

TEST(RegistryAccess, ReadStringReportsSizes) {
    ScratchRoot root;
    ASSERT_TRUE(RegWriteString(HKEY_LOCAL_MACHINE, kSettings, "install_language", "DE"));

    char buffer[256];
    DWORD size = sizeof buffer;
    ASSERT_TRUE(RegReadString(HKEY_LOCAL_MACHINE, "SOFTWARE\\KORV\\HUB32\\SETTINGS",
                              "Install_Language", buffer, size));
    EXPECT_STREQ(buffer, "DE");
    EXPECT_EQ(size, 3u);

    // Too small: false, and the size needed.
    char tiny[2];
    size = sizeof tiny;
    EXPECT_FALSE(RegReadString(HKEY_LOCAL_MACHINE, kSettings, "install_language", tiny, size));
    EXPECT_EQ(size, 3u);

    // A missing key or value, or another type: false and size 0.
    size = sizeof buffer;
    EXPECT_FALSE(RegReadString(HKEY_LOCAL_MACHINE, "Software\\None", "x", buffer, size));
    EXPECT_EQ(size, 0u);
    write_raw(kSettings, "number", platform::REG_DWORD, std::string("\1\0\0\0", 4));
    size = sizeof buffer;
    EXPECT_FALSE(RegReadString(HKEY_LOCAL_MACHINE, kSettings, "number", buffer, size));
    EXPECT_EQ(size, 0u);
    size = sizeof buffer;
    EXPECT_FALSE(RegReadString(HKEY_CURRENT_USER, kSettings, "install_language", buffer, size));
    EXPECT_EQ(size, 0u);
}

TEST(RegistryAccess, AStringOfExactlyTheCapacityLosesItsLastByte) {
    ScratchRoot root;
    write_raw(kSettings, "raw", platform::REG_SZ, "abcd"); // stored without terminator
    char buffer[4];
    DWORD size = sizeof buffer;
    ASSERT_TRUE(RegReadString(HKEY_LOCAL_MACHINE, kSettings, "raw", buffer, size));
    EXPECT_EQ(size, 4u);
    EXPECT_STREQ(buffer, "abc");

    char wide[16];
    std::memset(wide, 'x', sizeof wide);
    size = sizeof wide;
    ASSERT_TRUE(RegReadString(HKEY_LOCAL_MACHINE, kSettings, "raw", wide, size));
    EXPECT_STREQ(wide, "abcd");
}

TEST(RegistryAccess, ReadStringLMUsesRingsOfBuffers) {
    ScratchRoot root;
    for (int i = 0; i < 17; ++i)
        ASSERT_TRUE(RegWriteString(HKEY_LOCAL_MACHINE, "K", ("v" + std::to_string(i)).c_str(),
                                   ("text" + std::to_string(i)).c_str()));
    const char* first = RegReadStringLM("K", "v0");
    EXPECT_STREQ(first, "text0");
    for (int i = 1; i < 16; ++i)
        EXPECT_STREQ(RegReadStringLM("K", ("v" + std::to_string(i)).c_str()),
                     ("text" + std::to_string(i)).c_str());
    EXPECT_STREQ(first, "text0"); // good for the next 15 reads
    EXPECT_STREQ(RegReadStringLM("K", "v16"), "text16");
    EXPECT_STRNE(first, "text0"); // the 17th read took its buffer again

    const std::string large(3000, 'L');
    const std::string huge(70000, 'H');
    ASSERT_TRUE(RegWriteString(HKEY_LOCAL_MACHINE, "K", "large", large.c_str()));
    ASSERT_TRUE(RegWriteString(HKEY_LOCAL_MACHINE, "K", "huge", huge.c_str()));
    EXPECT_EQ(RegReadStringLM("K", "large"), large);
    EXPECT_EQ(RegReadStringLM("K", "huge"), huge);
    const std::string edge(259, 'e'); // 260 bytes with terminator: one more than the small buffer
    ASSERT_TRUE(RegWriteString(HKEY_LOCAL_MACHINE, "K", "edge", edge.c_str()));
    EXPECT_EQ(RegReadStringLM("K", "edge"), edge);

    EXPECT_STREQ(RegReadStringLM("K", "missing"), "");
    EXPECT_STREQ(RegReadStringLM("Nowhere", "v0", "dflt"), "dflt");
    write_raw("K", "number", platform::REG_DWORD, std::string("\1\0\0\0", 4));
    EXPECT_STREQ(RegReadStringLM("K", "number", "dflt"), "dflt");
}

TEST(RegistryAccess, NumbersAndTheKeptLongLongAsymmetry) {
    ScratchRoot root;
    ASSERT_TRUE(RegWriteDouble(HKEY_CURRENT_USER, "Software\\Korv\\n", "d", 2.5));
    EXPECT_EQ(RegReadDouble(HKEY_CURRENT_USER, "Software\\Korv\\n", "d", -1), 2.5);
    EXPECT_EQ(RegReadDouble(HKEY_CURRENT_USER, "Software\\Korv\\n", "missing", -1), -1);
    ASSERT_TRUE(RegWriteString(HKEY_CURRENT_USER, "Software\\Korv\\n", "s", "12345678"));
    EXPECT_EQ(RegReadDouble(HKEY_CURRENT_USER, "Software\\Korv\\n", "s", -1), -1);

    ASSERT_TRUE(RegWriteLongLong(HKEY_LOCAL_MACHINE, "Software\\Korv\\n", "q", 0x123456789LL));
    EXPECT_EQ(RegReadLongLong(HKEY_LOCAL_MACHINE, "Software\\Korv\\n", "q", -7), -7);
    // A REG_QWORD of 4 bytes is what the read can take.
    write_raw("Software\\Korv\\n", "q4", platform::REG_QWORD, std::string("\x2a\0\0\0", 4));
    EXPECT_EQ(RegReadLongLong(HKEY_LOCAL_MACHINE, "Software\\Korv\\n", "q4", -7), 42);
}

TEST(RegistryAccess, DeletesAndTests) {
    ScratchRoot root;
    ASSERT_TRUE(RegWriteString(HKEY_LOCAL_MACHINE, "A\\B", "v", "1"));
    EXPECT_TRUE(RegValueExists("a\\b", "V"));
    EXPECT_FALSE(RegValueExists("a\\b", "w"));
    EXPECT_TRUE(RegDeleteValue("A\\B", "v"));
    EXPECT_FALSE(RegValueExists("A\\B", "v"));
    EXPECT_FALSE(RegDeleteValue("A\\B", "v"));

    Box box;
    RegSetMessageBoxHook([&](const std::string& text, const std::string& caption, unsigned type) {
        box = {text, caption, type, box.shown + 1};
    });
    EXPECT_FALSE(RegDeleteKey(nullptr));
    EXPECT_FALSE(RegDeleteKey("A\\Missing"));
    EXPECT_EQ(box.shown, 0);         // "not found" is no error to show
    EXPECT_FALSE(RegDeleteKey("A")); // it still has a sub-key
    EXPECT_EQ(box.shown, 1);
    EXPECT_EQ(box.text, "Access is denied.\r\n");
    EXPECT_EQ(box.caption, "Registry access error");
    EXPECT_EQ(box.type, 48u);
    EXPECT_TRUE(RegDeleteKey("A\\B"));
    EXPECT_TRUE(RegDeleteKey("A"));
    RegSetMessageBoxHook(nullptr);
}

TEST(RegistryAccess, ReportErrorGoesToTheLogWithoutAMessageBox) {
    LogCapture log;
    EXPECT_TRUE(RegReportError(0));
    EXPECT_TRUE(RegReportError(259));
    EXPECT_TRUE(log.errors().empty());
    EXPECT_FALSE(RegReportError(5));
    ASSERT_EQ(log.errors().size(), 1u);
    EXPECT_EQ(log.errors()[0], "RegReportError(): Registry access error 5: Access is denied.");
}

TEST(RegistryAccess, EnumeratesAKey) {
    ScratchRoot root;
    ASSERT_TRUE(RegWriteString(HKEY_LOCAL_MACHINE, "E", "s", "text"));
    ASSERT_TRUE(RegWriteDouble(HKEY_LOCAL_MACHINE, "E", "d", 1.0));
    ASSERT_TRUE(RegWriteString(HKEY_LOCAL_MACHINE, "E\\Sub", "x", "1"));

    std::vector<std::string> names{"stale"};
    std::vector<DWORD> types;
    std::vector<std::vector<unsigned char>> data;
    std::vector<DWORD> sizes;
    std::vector<std::string> sub_keys;
    ASSERT_TRUE(RegEnumValues(HKEY_LOCAL_MACHINE, "E", names, types, data, sizes, &sub_keys));
    EXPECT_EQ(names, (std::vector<std::string>{"s", "d"}));
    EXPECT_EQ(types, (std::vector<DWORD>{platform::REG_SZ, platform::REG_BINARY}));
    EXPECT_EQ(sizes, (std::vector<DWORD>{5, 8}));
    EXPECT_EQ(std::string(data[0].begin(), data[0].end()), std::string("text", 5));
    EXPECT_EQ(sub_keys, (std::vector<std::string>{"Sub"}));
    EXPECT_FALSE(RegEnumValues(HKEY_LOCAL_MACHINE, "None", names, types, data, sizes, nullptr));
    EXPECT_TRUE(names.empty());
}

TEST(RegistryAccess, AMalformedFileIsReportedOnce) {
    ScratchRoot root;
    root.write("registry.reg", "REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\A]\r\n\"v\"=\"1\"\r\ngarbage\r\n");
    LogCapture log;
    EXPECT_STREQ(RegReadStringLM("A", "v", "empty"), "empty");
    EXPECT_STREQ(RegReadStringLM("A", "v", "empty"), "empty");
    EXPECT_FALSE(RegWriteString(HKEY_LOCAL_MACHINE, "A", "v", "2"));
    ASSERT_EQ(log.errors().size(), 1u);
    EXPECT_EQ(log.errors()[0], "RegReadStringLM(): registry file \"" + root.path() +
                                   "/registry.reg\" reads as empty: line 4: unrecognised line");
    EXPECT_EQ(root.read("registry.reg"),
              "REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\A]\r\n\"v\"=\"1\"\r\ngarbage\r\n");
}
