#include "kplatform_registry.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

#include <cstring>
#include <sys/wait.h>
#include <tuple>
#include <unistd.h>

using namespace korv::platform;
using korv::testing::ScratchRoot;

namespace {

// Opens a key of HKEY_LOCAL_MACHINE and closes it at the end.
class Key {
public:
    Key(const char* path, REGSAM access = KEY_READ) {
        m_result = RegOpenKeyExA(HKEY_LOCAL_MACHINE, path, 0, access, &m_key);
    }
    ~Key() {
        if (m_key)
            RegCloseKey(m_key);
    }
    LONG result() const { return m_result; }
    HKEY get() const { return m_key; }

private:
    HKEY m_key = nullptr;
    LONG m_result;
};

struct Read {
    LONG result;
    DWORD type;
    std::string data;
};

Read read(const char* key_path, const char* name) {
    Key key(key_path);
    if (key.result() != ERROR_SUCCESS)
        return {key.result(), 0, {}};
    DWORD type = 0;
    DWORD size = 0;
    LONG result = RegQueryValueExA(key.get(), name, nullptr, &type, nullptr, &size);
    if (result != ERROR_SUCCESS)
        return {result, 0, {}};
    std::string data(size, '\0');
    result = RegQueryValueExA(key.get(), name, nullptr, &type, reinterpret_cast<BYTE*>(data.data()),
                              &size);
    return {result, type, data};
}

LONG write(const char* key_path, const char* name, DWORD type, const std::string& data) {
    HKEY key = nullptr;
    LONG result = RegCreateKeyExA(HKEY_LOCAL_MACHINE, key_path, 0, nullptr, 0, KEY_WRITE, nullptr,
                                  &key, nullptr);
    if (result != ERROR_SUCCESS)
        return result;
    result = RegSetValueExA(key, name, 0, type, reinterpret_cast<const BYTE*>(data.data()),
                            static_cast<DWORD>(data.size()));
    RegCloseKey(key);
    return result;
}

std::string sz(const std::string& text) {
    return text + '\0';
}

const char* const kExport = "Windows Registry Editor Version 5.00\r\n"
                            "\r\n"
                            "; written by hand\r\n"
                            "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korv\\KorWin\\Main]\r\n"
                            "\"TargetDir\"=\"d:\\\\korwin \\\"x\\\"\"\r\n"
                            "@=\"default\"\r\n"
                            "\"Count\"=dword:0000002a\r\n"
                            "\"Blob\"=hex:01,ff,\\\r\n"
                            "  10\r\n"
                            "\"Big\"=hex(b):08,07,06,05,04,03,02,01\r\n"
                            "\"Path\"=hex(2):25,00,41,00,25,00,00,00\r\n"
                            "\"Wide\"=hex(7):61,00,3b,26,00,00,00,00\r\n"
                            "\r\n";

} // namespace

TEST(Registry, MissingOrEmptyFileIsAnEmptyRegistry) {
    ScratchRoot root;
    const unsigned long before = registry_file_problem().serial;
    EXPECT_EQ(Key("SOFTWARE").result(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Key("").result(), ERROR_SUCCESS); // the root itself always opens
    root.write("registry.reg", " \r\n");
    EXPECT_EQ(Key("A").result(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(write("A", "v", REG_SZ, sz("1")), ERROR_SUCCESS);
    EXPECT_EQ(read("A", "v").data, sz("1"));
    EXPECT_EQ(registry_file_problem().serial, before);
}

TEST(Registry, ReadsEveryTypeOfAnExportIgnoringCase) {
    ScratchRoot root;
    root.write("registry.reg", kExport);
    // UTF-16 data of the 5.00 format reads as single bytes, as the ANSI calls see it.
    const std::tuple<const char*, DWORD, std::string> values[] = {
        {"targetdir", REG_SZ, sz("d:\\korwin \"x\"")},
        {nullptr, REG_SZ, sz("default")},
        {"", REG_SZ, sz("default")},
        {"COUNT", REG_DWORD, std::string("\x2a\0\0\0", 4)},
        {"Blob", REG_BINARY, "\x01\xff\x10"},
        {"Big", REG_QWORD, "\x08\x07\x06\x05\x04\x03\x02\x01"},
        {"Path", REG_EXPAND_SZ, sz("%A%")},
        {"Wide", REG_MULTI_SZ, std::string("a?\0\0", 4)}};
    for (const auto& [name, type, data] : values) {
        const Read value = read("software\\KORV\\korwin\\main", name);
        EXPECT_EQ(value.result, ERROR_SUCCESS) << (name ? name : "null");
        EXPECT_EQ(value.type, type) << (name ? name : "null");
        EXPECT_EQ(value.data, data) << (name ? name : "null");
    }
    // Keys above a written key exist, though the file has no line for them.
    EXPECT_EQ(Key("SOFTWARE\\Korv").result(), ERROR_SUCCESS);
    EXPECT_EQ(Key("SOFTWARE\\Korv\\Other").result(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(read("SOFTWARE\\Korv\\KorWin\\Main", "missing").result, ERROR_FILE_NOT_FOUND);

    // Too small a buffer: the size needed, and nothing copied.
    Key key("SOFTWARE\\Korv\\KorWin\\Main");
    char small[4] = {'?', '?', '?', '?'};
    DWORD size = sizeof small;
    DWORD type = 0;
    EXPECT_EQ(RegQueryValueExA(key.get(), "TargetDir", nullptr, &type,
                               reinterpret_cast<BYTE*>(small), &size),
              ERROR_MORE_DATA);
    EXPECT_EQ(size, sz("d:\\korwin \"x\"").size());
    EXPECT_EQ(type, REG_SZ);
    EXPECT_EQ(small[0], '?');
    EXPECT_EQ(RegQueryValueExA(key.get(), "TargetDir", nullptr, nullptr,
                               reinterpret_cast<BYTE*>(small), nullptr),
              ERROR_INVALID_PARAMETER);
}

TEST(Registry, OtherHeadersCommentsAndBlanksRead) {
    ScratchRoot root;
    root.write("registry.reg",
               "\xEF\xBB\xBFREGEDIT4\n\n[HKEY_LOCAL_MACHINE\\A]\n  \"x\" = \"1\"  \n"
               "\"p\"=hex(2):41,42,00\n[-HKEY_LOCAL_MACHINE\\B]\n");
    EXPECT_EQ(read("A", "x").data, sz("1"));
    // REGEDIT4 keeps single-byte data for expandable strings.
    EXPECT_EQ(read("A", "p").data, sz("AB"));

    // An export saved as UTF-16 with its byte order mark.
    std::string wide = "\xFF\xFE";
    for (char c :
         std::string("Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\W]\r\n"
                     "\"v\"=\"w\"\r\n"))
        wide += std::string{c, '\0'};
    root.write("registry.reg", wide);
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "W", 0, KEY_READ, &key), ERROR_SUCCESS);
    char text[8];
    DWORD size = sizeof text;
    EXPECT_EQ(RegQueryValueExA(key, "v", nullptr, nullptr, reinterpret_cast<BYTE*>(text), &size),
              ERROR_SUCCESS);
    EXPECT_STREQ(text, "w");
    RegCloseKey(key);
}

TEST(Registry, WritesTheExportFormat) {
    ScratchRoot root;
    DWORD disposition = 0;
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Korv\\hub32\\settings", 0, nullptr, 0,
                              KEY_WRITE | KEY_WOW64_32KEY, nullptr, &key, &disposition),
              ERROR_SUCCESS);
    EXPECT_EQ(disposition, REG_CREATED_NEW_KEY);
    auto set = [&](const char* name, DWORD type, const std::string& data) {
        return RegSetValueExA(key, name, 0, type, reinterpret_cast<const BYTE*>(data.data()),
                              static_cast<DWORD>(data.size()));
    };
    ASSERT_EQ(set("install_language", REG_SZ, sz("DE")), ERROR_SUCCESS);
    ASSERT_EQ(set("Odd \"name\"", REG_SZ, sz("a\\b\"c")), ERROR_SUCCESS);
    ASSERT_EQ(set("n", REG_DWORD, std::string("\x34\x12\0\0", 4)), ERROR_SUCCESS);
    // A string without terminator can't be written in quotes and goes as hex(1).
    ASSERT_EQ(set("raw", REG_SZ, "ab"), ERROR_SUCCESS);
    RegCloseKey(key);

    EXPECT_EQ(root.read("registry.reg"), "Windows Registry Editor Version 5.00\r\n"
                                         "\r\n"
                                         "[HKEY_LOCAL_MACHINE\\SOFTWARE]\r\n"
                                         "\r\n"
                                         "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korv]\r\n"
                                         "\r\n"
                                         "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korv\\hub32]\r\n"
                                         "\r\n"
                                         "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korv\\hub32\\settings]\r\n"
                                         "\"install_language\"=\"DE\"\r\n"
                                         "\"Odd \\\"name\\\"\"=\"a\\\\b\\\"c\"\r\n"
                                         "\"n\"=dword:00001234\r\n"
                                         "\"raw\"=hex(1):61,62\r\n"
                                         "\r\n");

    // Opening an existing key writes nothing.
    ASSERT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, "software\\korv", 0, nullptr, 0, KEY_READ,
                              nullptr, &key, &disposition),
              ERROR_SUCCESS);
    EXPECT_EQ(disposition, REG_OPENED_EXISTING_KEY);
    RegCloseKey(key);
}

TEST(Registry, EveryTypeSurvivesAWriteAndAFreshRead) {
    const std::tuple<const char*, DWORD, std::string> values[] = {
        {"s", REG_SZ, sz("text")},
        {"", REG_SZ, sz("default")},
        {"e", REG_EXPAND_SZ, sz("%x%")},
        {"m", REG_MULTI_SZ, std::string("a\0b\0\0", 5)},
        {"q", REG_QWORD, "\1\2\3\4\5\6\7\x08"},
        {"bin", REG_BINARY, std::string(100, '\x5a')},
        {"none", REG_NONE, ""},
        {"lines", REG_SZ, sz("a\r\nb")},
        {"short", REG_DWORD, "\1\2"}};
    std::string text;
    {
        ScratchRoot root;
        for (const auto& [name, type, data] : values)
            ASSERT_EQ(write("A\\B", name, type, data), ERROR_SUCCESS) << name;
        text = root.read("registry.reg");
    }
    // Long hex data is wrapped as the registry editor does it.
    EXPECT_NE(text.find(",\\\r\n  5a"), std::string::npos);
    ScratchRoot fresh;
    fresh.write("registry.reg", text);
    for (const auto& [name, type, data] : values) {
        const Read value = read("A\\B", name);
        EXPECT_EQ(value.result, ERROR_SUCCESS) << name;
        EXPECT_EQ(value.type, type) << name;
        EXPECT_EQ(value.data, data) << name;
    }
    EXPECT_EQ(read("A\\B", nullptr).data, sz("default"));
}

TEST(Registry, AWriteKeepsTheRestOfTheFile) {
    ScratchRoot root;
    root.write("registry.reg",
               "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Keep]\r\n\"k\"=\"v\"\r\n\r\n"
               "[HKEY_LOCAL_MACHINE\\X]\r\n\"old\"=\"1\"\r\n\r\n[HKEY_USERS\\Z]\r\n\r\n");
    ASSERT_EQ(write("X\\Y", "new", REG_SZ, sz("2")), ERROR_SUCCESS);
    ASSERT_EQ(write("x", "OLD", REG_SZ, sz("3")), ERROR_SUCCESS);
    // The header stays, the new key follows its parent, the value keeps its spelling.
    EXPECT_EQ(root.read("registry.reg"),
              "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Keep]\r\n\"k\"=\"v\"\r\n\r\n"
              "[HKEY_LOCAL_MACHINE\\X]\r\n\"old\"=\"3\"\r\n\r\n"
              "[HKEY_LOCAL_MACHINE\\X\\Y]\r\n\"new\"=\"2\"\r\n\r\n"
              "[HKEY_USERS\\Z]\r\n\r\n");
    // A change made by another writer is seen.
    root.write("registry.reg", "REGEDIT4\n[HKEY_LOCAL_MACHINE\\K]\n\"v\"=\"22\"\n");
    EXPECT_EQ(read("K", "v").data, sz("22"));
}

TEST(Registry, MalformedFileReadsEmptyIsReportedOnceAndNeverRewritten) {
    ScratchRoot root;
    const std::string garbage =
        "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_LOCAL_MACHINE\\A]\r\n"
        "\"x\"=\"1\"\r\nthis is not a registry line\r\n\x01\x02\xff\r\n";
    root.write("registry.reg", garbage);
    const unsigned long before = registry_file_problem().serial;

    EXPECT_EQ(read("A", "x").result, ERROR_FILE_NOT_FOUND);
    const RegistryFileProblem problem = registry_file_problem();
    EXPECT_EQ(problem.serial, before + 1);
    EXPECT_EQ(problem.line, 5u);
    EXPECT_EQ(problem.path, root.path() + "/registry.reg");
    EXPECT_FALSE(problem.reason.empty());

    EXPECT_EQ(read("A", "x").result, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(registry_file_problem().serial, before + 1);

    EXPECT_EQ(write("A", "y", REG_SZ, sz("2")), ERROR_BADDB);
    EXPECT_EQ(root.read("registry.reg"), garbage);

    // Each kind of damage is found.
    for (const char* text : {"not a header\r\n", "REGEDIT4\r\n\"x\"=\"outside a key\"\r\n",
                             "REGEDIT4\r\n[HKEY_NOWHERE\\A]\r\n", "REGEDIT4\r\n[HKEY_USERS\\A\r\n",
                             "REGEDIT4\r\n[HKEY_USERS\\A]\r\n\"x\"=dword:123456789\r\n",
                             "REGEDIT4\r\n[HKEY_USERS\\A]\r\n\"x\"=hex:1,2g\r\n",
                             "REGEDIT4\r\n[HKEY_USERS\\A]\r\n\"x\"=hex:01,\\\r\n",
                             "REGEDIT4\r\n[HKEY_USERS\\A]\r\n\"x=\"1\"\r\n"}) {
        const unsigned long serial = registry_file_problem().serial;
        root.write("registry.reg", text);
        HKEY key = nullptr;
        EXPECT_EQ(RegOpenKeyExA(HKEY_USERS, "A", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND) << text;
        EXPECT_EQ(registry_file_problem().serial, serial + 1) << text;
    }

    // Mended, it reads again.
    root.write("registry.reg", "REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\A]\r\n\"x\"=\"fine\"\r\n");
    EXPECT_EQ(read("A", "x").data, sz("fine"));
}

TEST(Registry, DeletesValuesAndKeys) {
    ScratchRoot root;
    ASSERT_EQ(write("A\\B\\C", "v", REG_SZ, sz("1")), ERROR_SUCCESS);
    ASSERT_EQ(write("A\\B", "w", REG_SZ, sz("2")), ERROR_SUCCESS);

    {
        Key key("A\\B", KEY_WRITE);
        EXPECT_EQ(RegDeleteValueA(key.get(), "W"), ERROR_SUCCESS);
        EXPECT_EQ(RegDeleteValueA(key.get(), "w"), ERROR_FILE_NOT_FOUND);
    }

    EXPECT_EQ(RegDeleteKeyExA(HKEY_LOCAL_MACHINE, "A\\B", KEY_WOW64_32KEY, 0), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegDeleteKeyExA(HKEY_LOCAL_MACHINE, "a\\b\\c", KEY_WOW64_32KEY, 0), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteKeyExA(HKEY_LOCAL_MACHINE, "A\\B\\C", 0, 0), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegDeleteKeyExA(HKEY_LOCAL_MACHINE, "A\\B", 0, 0), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteKeyExA(HKEY_LOCAL_MACHINE, nullptr, 0, 0), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegDeleteKeyExA(HKEY_LOCAL_MACHINE, "", 0, 0), ERROR_ACCESS_DENIED);
    EXPECT_EQ(Key("A").result(), ERROR_SUCCESS);
}

TEST(Registry, HandlesDoOnlyWhatTheyWereOpenedFor) {
    ScratchRoot root;
    ASSERT_EQ(write("A", "v", REG_SZ, sz("1")), ERROR_SUCCESS);
    Key reader("A", KEY_READ);
    EXPECT_EQ(RegSetValueExA(reader.get(), "v", 0, REG_SZ, reinterpret_cast<const BYTE*>("2"), 2),
              ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegDeleteValueA(reader.get(), "v"), ERROR_ACCESS_DENIED);
    Key writer("A", KEY_WRITE);
    DWORD size = 0;
    EXPECT_EQ(RegQueryValueExA(writer.get(), "v", nullptr, nullptr, nullptr, &size),
              ERROR_ACCESS_DENIED);

    // A handle whose key another writer removed answers so.
    EXPECT_EQ(RegDeleteKeyExA(HKEY_LOCAL_MACHINE, "A", 0, 0), ERROR_SUCCESS);
    EXPECT_EQ(RegQueryValueExA(reader.get(), "v", nullptr, nullptr, nullptr, &size),
              ERROR_KEY_DELETED);

    HKEY bogus = reinterpret_cast<HKEY>(std::uintptr_t{0x1234});
    EXPECT_EQ(RegQueryValueExA(bogus, "v", nullptr, nullptr, nullptr, &size), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegCloseKey(bogus), ERROR_INVALID_HANDLE);
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "\\A", 0, KEY_READ, &key), ERROR_BAD_PATHNAME);
    EXPECT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, "A\\\\B", 0, nullptr, 0, KEY_WRITE, nullptr, &key,
                              nullptr),
              ERROR_BAD_PATHNAME);
    EXPECT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, "A\nB", 0, nullptr, 0, KEY_WRITE, nullptr, &key,
                              nullptr),
              ERROR_INVALID_PARAMETER);
}

TEST(Registry, EnumeratesValuesAndSubKeys) {
    ScratchRoot root;
    root.write("registry.reg",
               "REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\P]\r\n\"one\"=\"1\"\r\n"
               "\"two\"=dword:00000002\r\n[HKEY_LOCAL_MACHINE\\P\\Sub1]\r\n"
               "[HKEY_LOCAL_MACHINE\\P\\sub2\\deep]\r\n[HKEY_LOCAL_MACHINE\\P\\SUB1\\x]\r\n");
    Key key("P");
    DWORD sub_keys = 0, values = 0, longest_name = 0, longest_data = 0, longest_key = 0;
    ASSERT_EQ(RegQueryInfoKeyA(key.get(), nullptr, nullptr, nullptr, &sub_keys, &longest_key,
                               nullptr, &values, &longest_name, &longest_data, nullptr, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ((std::vector<DWORD>{sub_keys, longest_key, values, longest_name, longest_data}),
              (std::vector<DWORD>{2, 4, 2, 3, 4}));

    // Names, types and sub-keys are walked in the ksystem enumeration test.
    char name[8];
    DWORD name_size = 3; // no room for the terminator
    EXPECT_EQ(RegEnumValueA(key.get(), 0, name, &name_size, nullptr, nullptr, nullptr, nullptr),
              ERROR_MORE_DATA);
    name_size = sizeof name;
    EXPECT_EQ(RegEnumValueA(key.get(), 2, name, &name_size, nullptr, nullptr, nullptr, nullptr),
              ERROR_NO_MORE_ITEMS);
    name_size = sizeof name;
    ASSERT_EQ(RegEnumKeyExA(key.get(), 1, name, &name_size, nullptr, nullptr, nullptr, nullptr),
              ERROR_SUCCESS);
    EXPECT_STREQ(name, "sub2"); // the first spelling of a key counts
}

TEST(Registry, WritersInTwoProcessesLoseNothing) {
    ScratchRoot root;
    constexpr int kWrites = 40;
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    const char* who = child == 0 ? "child" : "parent";
    bool ok = true;
    for (int i = 0; i < kWrites; ++i) {
        const std::string name = std::string(who) + std::to_string(i);
        ok = write("Race", name.c_str(), REG_SZ, sz(name)) == ERROR_SUCCESS && ok;
    }
    if (child == 0)
        ::_exit(ok ? 0 : 1);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_TRUE(ok);
    Key key("Race");
    DWORD values = 0;
    ASSERT_EQ(RegQueryInfoKeyA(key.get(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                               &values, nullptr, nullptr, nullptr, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(values, 2u * kWrites);
}
