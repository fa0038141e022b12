#include "kplatform_file.h"
#include "kplatform_profile.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using namespace korv::platform;
using korv::testing::ScratchDir;
using korv::testing::ScratchRoot;

namespace {

std::string get(const char* section, const char* key, const std::string& file,
                const char* fallback = "<default>", DWORD size = 256) {
    std::string buffer(size, '\x7f');
    const DWORD n =
        GetPrivateProfileStringA(section, key, fallback, buffer.data(), size, file.c_str());
    return buffer.substr(0, n);
}

bool put(const char* section, const char* key, const char* value, const std::string& file) {
    return WritePrivateProfileStringA(section, key, value, file.c_str()) != 0;
}

} // namespace

TEST(ProfileRead, NamesBlanksQuotesAndComments) {
    ScratchDir dir;
    dir.write("a.ini", "junk=before any section\r\n"
                       "[General]\r\n"
                       "  Key One  =  value  \r\n"
                       "\tTabbed\t=\tx\t\r\n"
                       "\v[ Spaced ]  \r\n"
                       "k=v\r\n"
                       "[Q]\r\n"
                       "double=\"quoted value\"\r\n"
                       "single=  'single'  \r\n"
                       "inner=\" keeps blanks \"\r\n"
                       "mixed=\"mismatch'\r\n"
                       "nested=\"\"twice\"\"\r\n"
                       "one=\"\r\n"
                       "middle=a \"b\" c\r\n"
                       "[S]\r\n"
                       ";c=1\r\n"
                       "  ;d=2\r\n"
                       "e=x ;not a comment\r\n"
                       "f;g=3\r\n"
                       "#h=4\r\n"
                       "[T]behind=5\r\n"
                       "t=6\r\n");
    auto values = [&](const char* section, std::initializer_list<const char*> keys) {
        std::vector<std::string> found;
        for (const char* key : keys)
            found.push_back(get(section, key, dir / "a.ini"));
        return found;
    };
    using Values = std::vector<std::string>;
    // Names ignore case and spaces, only spaces.
    EXPECT_EQ(values("general", {"KEY ONE", "tabbed", "\tTabbed", "value"}),
              (Values{"value", "x", "<default>", "<default>"}));
    EXPECT_EQ(get("  General  ", "  key one ", dir / "a.ini"), "value");
    EXPECT_EQ(get("spaced", "k", dir / "a.ini"), "v");
    EXPECT_EQ(get("", "junk", dir / "a.ini"), "<default>");
    // Matching quotes are dropped.
    EXPECT_EQ(values("Q", {"double", "single", "inner", "mixed", "nested", "one", "middle"}),
              (Values{"quoted value", "single", " keeps blanks ", "\"mismatch'", "\"twice\"", "\"",
                      "a \"b\" c"}));
    // Only a leading ';' comments.
    EXPECT_EQ(values("S", {";c", "c", "d", "e", "f;g", "#h"}),
              (Values{"<default>", "<default>", "<default>", "x ;not a comment", "3", "4"}));
    EXPECT_EQ(values("T", {"behind", "t"}), (Values{"<default>", "6"}));
}

TEST(ProfileRead, FirstOfEqualSectionsAndKeysCounts) {
    ScratchDir dir;
    dir.write("d.ini", "[A]\r\nk=first\r\nK=second\r\n[a]\r\nk=third\r\nonly=later\r\n[B]\r\n");
    const std::string file = dir / "d.ini";
    EXPECT_EQ(get("A", "k", file), "first");
    EXPECT_EQ(get("A", "only", file), "<default>");
    EXPECT_EQ(get(nullptr, nullptr, file), std::string("A\0a\0B\0", 6));
    EXPECT_EQ(get("a", nullptr, file), std::string("k\0K\0", 4));
    EXPECT_EQ(get("B", nullptr, file), "");
    EXPECT_EQ(get("missing", nullptr, file), "");
}

TEST(ProfileRead, BuffersAndDefaults) {
    ScratchDir dir;
    dir.write("b.ini", "[A]\r\nk=abcdef\r\nempty=\r\nnoequals\r\n[BB]\r\n[CCC]\r\n");
    const std::string file = dir / "b.ini";

    char buffer[8] = "0000000";
    EXPECT_EQ(GetPrivateProfileStringA("A", "k", "", buffer, 4, file.c_str()), 3u);
    EXPECT_STREQ(buffer, "abc");
    EXPECT_EQ(GetPrivateProfileStringA("A", "k", "", buffer, 1, file.c_str()), 0u);
    EXPECT_STREQ(buffer, "");
    buffer[0] = 'x';
    EXPECT_EQ(GetPrivateProfileStringA("A", "k", "", buffer, 0, file.c_str()), 0u);
    EXPECT_EQ(buffer[0], 'x');
    EXPECT_EQ(GetPrivateProfileStringA("A", "k", "", nullptr, 10, file.c_str()), 0u);
    EXPECT_EQ(GetPrivateProfileStringA("A", "k", "", buffer, 7, file.c_str()), 6u);

    EXPECT_EQ(get("A", "empty", file), "");
    EXPECT_EQ(get("A", "noequals", file), "");
    // Defaults lose trailing spaces only, and are cut like values.
    EXPECT_EQ(get("A", "missing", file, " dflt  "), " dflt");
    EXPECT_EQ(get("A", "missing", file, "tab\t"), "tab\t");
    EXPECT_EQ(get("A", "missing", file, nullptr), "");
    EXPECT_EQ(get("A", "missing", file, "abcdef", 3), "ab");

    // A cut list keeps size - 2 bytes and ends in two NULs.
    std::string list(6, '\x7f');
    EXPECT_EQ(GetPrivateProfileStringA(nullptr, nullptr, "", list.data(), 6, file.c_str()), 4u);
    EXPECT_EQ(list, std::string("A\0BB\0\0", 6));
    EXPECT_EQ(GetPrivateProfileStringA(nullptr, nullptr, "", list.data(), 1, file.c_str()), 0u);
    EXPECT_EQ(list[0], '\0');

    // A missing file, or a folder, gives the default.
    set_last_error(0);
    EXPECT_EQ(get("A", "k", dir / "none.ini", "dflt"), "dflt");
    EXPECT_EQ(last_error(), static_cast<std::uint32_t>(ENOENT));
    EXPECT_EQ(get("A", "k", dir.path(), "dflt"), "dflt");
}

TEST(ProfileRead, WindowsPathsAndCaseOfFileNames) {
    ScratchRoot root;
    root.write("drive_c/Korv/SP_Support/Load.ini", "[General]\r\nactive=1\r\n");
    EXPECT_EQ(get("General", "active", "C:\\korv\\SP_SUPPORT\\load.ini"), "1");
    EXPECT_TRUE(put("General", "active", "2", "c:/KORV/sp_support\\LOAD.INI"));
    EXPECT_EQ(root.read("drive_c/Korv/SP_Support/Load.ini"), "[General]\r\nactive=2\r\n");
}

TEST(ProfileRead, BinaryBytesAndLongLines) {
    ScratchDir dir;
    const std::string long_value(100000, 'x');
    dir.write("bin.ini", std::string("[A]\r\nk=\x01\0\xff\r\n", 12) + "\x80\xfe garbage line\r\n" +
                             "long=" + long_value + "\r\nafter=1\r\n");
    const std::string file = dir / "bin.ini";
    EXPECT_EQ(get("A", "after", file), "1");
    EXPECT_EQ(get("A", "k", file), std::string("\x01\0\xff", 3));
    EXPECT_EQ(get("A", "long", file, "", 260), std::string(259, 'x'));
    EXPECT_EQ(get("A", "long", file, "", 100001), long_value);

    EXPECT_TRUE(put("A", "after", "2", file));
    EXPECT_EQ(get("A", "long", file, "", 100001), long_value);
    EXPECT_EQ(get("A", "after", file), "2");
    dir.write("bin.ini", "[A]\r\nafter=3\r\n"); // a change made by another writer
    EXPECT_EQ(get("A", "after", file), "3");
}

TEST(ProfileWrite, CreatesTheFileButNotItsFolder) {
    ScratchDir dir;
    EXPECT_TRUE(put("Sec", "key", "value", dir / "new.ini"));
    EXPECT_EQ(dir.read("new.ini"), "[Sec]\r\nkey=value\r\n");
    EXPECT_TRUE(put("  Other  ", "  k  ", "  v  ", dir / "new.ini"));
    EXPECT_EQ(dir.read("new.ini"), "[Sec]\r\nkey=value\r\n[Other]\r\nk=  v  \r\n");
    EXPECT_EQ(get("other", "K", dir / "new.ini"), "v");

    EXPECT_FALSE(put("Sec", "key", "value", dir / "no/such/folder.ini"));
    EXPECT_EQ(last_error(), static_cast<std::uint32_t>(ENOENT));
    EXPECT_FALSE(put(nullptr, "key", "value", dir / "new.ini"));
    EXPECT_FALSE(put("Sec", "key", "value", dir.path()));

    // Without its owner's write bit a file is refused, also for root, and stays as it was.
    ::chmod((dir / "new.ini").c_str(), 0444);
    EXPECT_FALSE(put("Sec", "key", "changed", dir / "new.ini"));
    EXPECT_EQ(last_error(), static_cast<std::uint32_t>(EACCES));
    EXPECT_EQ(get("Sec", "key", dir / "new.ini"), "value");
}

TEST(ProfileWrite, ValuesReplaceInPlaceAndNewKeysFollowTheLastKey) {
    ScratchDir dir;
    dir.write("r.ini", "; head\r\n[Sec]\r\n  Key = old  \r\nother=1\r\n[Next]\r\nKey=keep\r\n");
    EXPECT_TRUE(put("SEC", "KEY", "new", dir / "r.ini"));
    EXPECT_EQ(dir.read("r.ini"), "; head\r\n[Sec]\r\nKey=new\r\nother=1\r\n[Next]\r\nKey=keep\r\n");

    dir.write("n.ini", "[A]\r\na=1\r\n;trailing note\r\n\r\n[B]\r\nb=1\r\n");
    EXPECT_TRUE(put("a", "z", "2", dir / "n.ini"));
    EXPECT_TRUE(put("A", "y", "3", dir / "n.ini"));
    EXPECT_EQ(dir.read("n.ini"),
              "[A]\r\na=1\r\nz=2\r\ny=3\r\n;trailing note\r\n\r\n[B]\r\nb=1\r\n");

    dir.write("e.ini", "[A]\r\n[B]\r\nb=1");
    EXPECT_TRUE(put("A", "k", "v", dir / "e.ini"));
    EXPECT_TRUE(put("B", "c", "2", dir / "e.ini"));
    EXPECT_TRUE(put("C", "d", "3", dir / "e.ini"));
    EXPECT_EQ(dir.read("e.ini"), "[A]\r\nk=v\r\n[B]\r\nb=1\r\nc=2\r\n[C]\r\nd=3\r\n");

    // A file with LF endings keeps them; what is added ends in CR LF.
    dir.write("lf.ini", "[A]\na=1\n");
    EXPECT_TRUE(put("A", "b", "2", dir / "lf.ini"));
    EXPECT_EQ(dir.read("lf.ini"), "[A]\na=1\nb=2\r\n");
}

TEST(ProfileWrite, RemovesKeysAndSections) {
    ScratchDir dir;
    dir.write("d.ini", "[A]\r\n;note\r\na=1\r\nb=2\r\n[B]\r\nb=2\r\n");
    EXPECT_TRUE(put("A", "A", nullptr, dir / "d.ini"));
    EXPECT_EQ(dir.read("d.ini"), "[A]\r\n;note\r\nb=2\r\n[B]\r\nb=2\r\n");
    EXPECT_TRUE(put("A", "missing", nullptr, dir / "d.ini"));
    EXPECT_TRUE(put("a", nullptr, nullptr, dir / "d.ini"));
    EXPECT_EQ(dir.read("d.ini"), ";note\r\n[B]\r\nb=2\r\n");
    EXPECT_TRUE(put("gone", nullptr, nullptr, dir / "d.ini"));
    EXPECT_EQ(dir.read("d.ini"), ";note\r\n[B]\r\nb=2\r\n");
    // All null flushes the cache and answers false, as on Windows.
    EXPECT_EQ(WritePrivateProfileStringA(nullptr, nullptr, nullptr, nullptr), 0);
}

TEST(ProfileWrite, RelativePathsResolveAgainstTheCurrentDirectory) {
    ScratchDir dir;
    char old[PATH_MAX];
    ASSERT_NE(::getcwd(old, sizeof old), nullptr);
    ASSERT_EQ(::chdir(dir.path().c_str()), 0);
    const bool written = put("A", "k", "v", "rel.ini");
    const std::string read_back = get("A", "k", "rel.ini");
    ASSERT_EQ(::chdir(old), 0);
    EXPECT_TRUE(written);
    EXPECT_EQ(read_back, "v");
    EXPECT_EQ(dir.read("rel.ini"), "[A]\r\nk=v\r\n");
}
