// The ini container against real files: what survives a load and save, what a
// load refuses and with which words, and the state flags on the way.
#include "KIniData_template_core.h"
#include "log_capture.h"
#include "scratch_dir.h"
#include "trace_context.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

using korv::KIniData;
using korv::testing::LogCapture;
using korv::testing::ScratchDir;

namespace {

class KIniDataFile : public korv::testing::TraceContextTest {
protected:
    ScratchDir dir;
};

TEST_F(KIniDataFile, RoundTripKeepsLinesSortsSectionsAndWritesCrLf) {
    dir.write("in.ini", "\xEF\xBB\xBF; top comment\r\n"
                        "\r\n"
                        "   \r\n"
                        "[b]\r"
                        "x = 1 ; c\n"
                        "# belongs to b\n"
                        "[a] trailing\r\n"
                        "\tkey  =  v  \r\n"
                        "\n"
                        "[B]\n"
                        "k=v");
    KIniData ini;
    ASSERT_TRUE(ini.Open(dir / "in.ini"));
    EXPECT_TRUE(ini.is_open && !ini.file_missing && ini.in_sync);
    ASSERT_TRUE(ini.Save());
    EXPECT_EQ(dir.read("in.ini"), "; top comment\r\n"
                                  "   \r\n"
                                  "[B]\r\n"
                                  "k=v\r\n"
                                  "[a] trailing\r\n"
                                  "\tkey  =  v  \r\n"
                                  "[b]\r\n"
                                  "x = 1 ; c\r\n"
                                  "# belongs to b\r\n");
    std::string value;
    EXPECT_TRUE(ini.GetStringEntry("a", "key", value));
    EXPECT_EQ(value, "  v  ");
}

TEST_F(KIniDataFile, SectionsSortByteWiseUpperBeforeLowerShorterFirst) {
    dir.write("s.ini", "[b]\n[a]\n[\xC3\xA4]\n[ab]\n[B]\n[]\n");
    KIniData ini;
    ASSERT_TRUE(ini.Open(dir / "s.ini"));
    EXPECT_EQ(ini.GetContentString(), "[]\n[B]\n[a]\n[ab]\n[b]\n[\xC3\xA4]\n");
    EXPECT_EQ(ini.GetSectionNames(),
              (std::vector<std::string>{"", "B", "a", "ab", "b", "\xC3\xA4"}));
}

TEST_F(KIniDataFile, AbsentOrEmptyFilesOpenEmptyAndSaveCreatesThem) {
    KIniData ini;
    ASSERT_TRUE(ini.Open(dir / "new.ini"));
    EXPECT_TRUE(ini.is_open && ini.file_missing && !ini.in_sync);
    std::string value = "untouched";
    EXPECT_FALSE(ini.GetStringEntry("s", "k", value));
    EXPECT_EQ(value, "untouched");
    ASSERT_TRUE(ini.SetStringEntry("s", "k", "v"));
    ASSERT_TRUE(ini.Save());
    EXPECT_TRUE(!ini.file_missing && ini.in_sync);
    EXPECT_EQ(dir.read("new.ini"), "[s]\r\nk=v\r\n");

    // A file without content opens in sync and saves empty.
    for (const char* bytes : {"", "\xEF\xBB\xBF\r\n", "\n\n\r\n"}) {
        dir.write("e.ini", bytes);
        KIniData empty;
        ASSERT_TRUE(empty.Open(dir / "e.ini"));
        EXPECT_TRUE(empty.in_sync && !empty.file_missing);
        ASSERT_TRUE(empty.Save());
        EXPECT_EQ(dir.read("e.ini"), "");
    }
}

TEST_F(KIniDataFile, WideByteOrderMarksAreRefused) {
    for (const std::string& bytes :
         {std::string("\xFF\xFE[\0s\0]\0\r\0\n\0", 12), std::string("\xFE\xFF\0[\0s\0]", 8),
          std::string("\0\0\xFE\xFF\0\0\0[", 8), std::string("\xFF\xFE\0\0[\0\0\0", 8)}) {
        dir.write("w.ini", bytes);
        KIniData ini;
        EXPECT_FALSE(ini.Open(dir / "w.ini"));
        EXPECT_FALSE(ini.is_open);
        EXPECT_EQ(ini.error_text, "UTF16/32 Unicode format not supported.");
        EXPECT_EQ(dir.read("w.ini"), bytes);
    }
}

TEST_F(KIniDataFile, LoadStopsWithTheParsersWords) {
    // content, error text, failing line
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"[s]\n[abc\n", "no matching ']' found in \"[abc\"", "[abc"},
        {"[\n", "no matching ']' found in \"[\"", "["},
        {"[abc]\nk=1\n[abc] again\n", "Section [abc] seen twice", "[abc] again"},
        {"[s] x\nnovalue\n", "No '=' found in \"novalue\" in section [s] x", "novalue"},
        {"[s]\n  [abc]\n", "No '=' found in \"  [abc]\" in section [s]", "  [abc]"},
        {"[s]\n=5\n", "No entry name found before '=' in \"=5\" in section [s]", "=5"},
        {"[s]\n \t=5\n", "No entry name found before '=' in \" \t=5\" in section [s]", " \t=5"},
        {"; ok\nkey=1\n[s]\n", "Possible entry \"key=1\" found before first section", "key=1"},
        {"  [abc]\n", "Possible entry \"  [abc]\" found before first section", "  [abc]"},
        {"[s]\nkey =1\nkey=2\n", "Entry \"key\" seen twice in section [s]", "key=2"}};
    for (const auto& [content, error_text, failing_line] : cases) {
        dir.write("bad.ini", content);
        KIniData ini;
        EXPECT_FALSE(ini.Open(dir / "bad.ini"));
        EXPECT_TRUE(!ini.is_open && !ini.file_missing && ini.file_name == dir / "bad.ini");
        EXPECT_EQ(ini.error_text, error_text);
        EXPECT_EQ(take_trace().back(),
                  std::string("KIniData::Open(): parse_line(") + failing_line + ") failed");
    }
    // Replacing walks the lines, and a relaxed line without '=' stops the walk.
    dir.write("bad.ini", "[s]\nbare\na=1\na=2\n");
    KIniData ini(korv::KINI_REPLACE_ENTRIES | korv::KINI_RELAXED_LINES);
    EXPECT_FALSE(ini.Open(dir / "bad.ini"));
    EXPECT_EQ(ini.error_text, "Entry \"a\" deleting previous version failed");
}

TEST_F(KIniDataFile, ErrorTextIsBoundedAndTraceTextCut) {
    const std::string long_line(3000, 'x');
    dir.write("long.ini", long_line + "\n");
    KIniData ini;
    EXPECT_FALSE(ini.Open(dir / "long.ini"));
    EXPECT_EQ(ini.error_text.size(), 1023u);
    EXPECT_EQ(ini.error_text.substr(0, 16), "Possible entry \"");
    const std::vector<std::string> lines = trace();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0], "KIniData::parse_line(): " + ini.error_text.substr(0, 70));
    EXPECT_EQ(lines[1], "KIniData::Open(): parse_line(" + long_line.substr(0, 60) + ") failed");
}

TEST_F(KIniDataFile, FailedLoadKeepsWhatWasParsedAndTheEarlierSyncFlag) {
    dir.write("good.ini", "[a]\nk=1\n");
    dir.write("bad.ini", "; c\n[z]\nk=1\nbroken\n[b]\n");
    KIniData ini;
    ASSERT_TRUE(ini.Open(dir / "good.ini"));
    EXPECT_FALSE(ini.Open(dir / "bad.ini"));
    EXPECT_TRUE(ini.in_sync); // Close leaves it; only a complete load sets it
    EXPECT_EQ(ini.GetContentString(), "; c\n[z]\nk=1\n");
    EXPECT_FALSE(ini.Reopen());
}

TEST_F(KIniDataFile, CloseReopenAndStates) {
    dir.write("r.ini", "[s]\nk=1\n");
    KIniData ini;
    EXPECT_FALSE(ini.Reopen());
    ASSERT_TRUE(ini.Open(dir / "r.ini"));
    ASSERT_TRUE(ini.SetStringEntry("s", "k", "2"));
    EXPECT_FALSE(ini.in_sync);
    dir.write("r.ini", "[t]\nk=3\n");
    ASSERT_TRUE(ini.Reopen());
    EXPECT_TRUE(ini.in_sync);
    EXPECT_EQ(ini.GetContentString(), "[t]\nk=3\n");
    ASSERT_TRUE(ini.Close());
    EXPECT_TRUE(!ini.is_open && ini.file_missing && ini.in_sync);
    EXPECT_EQ(ini.file_name, "");
    EXPECT_EQ(ini.GetContentString(), "");
}

TEST_F(KIniDataFile, SaveModesWriteTheSameBytesAndAFailedSaveIsReported) {
    for (std::uint32_t flags : {0u, korv::KINI_SAVE_FLUSH, korv::KINI_SAVE_ATOMIC,
                                korv::KINI_SAVE_FLUSH | korv::KINI_SAVE_ATOMIC}) {
        dir.write("m.ini", "[s]\nk=old\n");
        KIniData ini(flags);
        ASSERT_TRUE(ini.Open(dir / "m.ini"));
        ASSERT_TRUE(ini.SetStringEntry("s", "k", "new"));
        ASSERT_TRUE(ini.Save()) << flags;
        EXPECT_EQ(dir.read("m.ini"), "[s]\r\nk=new\r\n");
    }
    KIniData ini;
    ASSERT_TRUE(ini.Open(dir / "no_such_folder/x.ini"));
    ini.SetStringEntry("s", "k", "v");
    EXPECT_FALSE(ini.Save());
    EXPECT_TRUE(!ini.in_sync && ini.file_missing);
    EXPECT_EQ(trace().back(), "KIniData::Save(): KFastFile_WriteLinesAtOnce(\"" +
                                  (dir / "no_such_folder/x.ini").substr(0, 40) + "\") failed");
}

TEST_F(KIniDataFile, PathConstructorLogsAFailedOpenAndStaysUsable) {
    dir.write("bad.ini", "oops\n");
    LogCapture log;
    {
        KIniData ini(dir / "bad.ini");
        EXPECT_FALSE(ini.is_open);
        EXPECT_EQ(log.errors().back(),
                  "KIniData::KIniData(): Open(\"" + dir / "bad.ini" + "\") failed");
        EXPECT_TRUE(trace().empty());
        EXPECT_TRUE(ini.SetStringEntry("s", "k", "v"));
    }
    dir.write("good.ini", "[s]\nk=v\n");
    KIniData opened(dir / "good.ini");
    EXPECT_TRUE(opened.is_open);
    KIniData stored(dir / "good.ini", korv::KINI_NO_OPEN);
    EXPECT_FALSE(stored.is_open);
    EXPECT_EQ(stored.file_name, dir / "good.ini");
    EXPECT_EQ(stored.GetContentString(), "");
    EXPECT_EQ(log.errors().size(), 3u);
}

} // namespace
