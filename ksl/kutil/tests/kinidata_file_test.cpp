// The ini container against real files: what survives a load and save, what a
// load refuses and with which words, and the state flags on the way.
#include "KIniData_template_core.h"
#include "log_capture.h"
#include "scratch_dir.h"
#include "trace_context.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
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
        {"[s]\nkey =1\nkey=2\n", "Entry \"key\" seen twice in section [s]", "key=2"},
        // A repeat is told at the first line that repeats, before any later
        // fault of the section and before the next section is looked at.
        {"[s]\nz=1\na=1\nz=2\na=2\n", "Entry \"z\" seen twice in section [s]", "z=2"},
        {"[s]\nk=1\nk=2\nk=3\nnovalue\n", "Entry \"k\" seen twice in section [s]", "k=2"},
        {"[s]\nk=1\nk=2\n[s]\n", "Entry \"k\" seen twice in section [s]", "k=2"}};
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

TEST_F(KIniDataFile, ARepeatedNameKeepsOnlyTheLinesBeforeIt) {
    dir.write("bad.ini", "[a]\nx=0\n[s]\nk=1\n; c\nm=2\nk=3\nn=4\n[t]\ny=5\n");
    KIniData ini;
    EXPECT_FALSE(ini.Open(dir / "bad.ini"));
    EXPECT_EQ(ini.GetContentString(), "[a]\nx=0\n[s]\nk=1\n; c\nm=2\n");
    EXPECT_EQ(ini.GetEntryNames("s"), (std::vector<std::string>{"k", "m"}));
    std::string value;
    EXPECT_TRUE(ini.GetStringEntry("s", "k", value));
    EXPECT_EQ(value, "1");
}

TEST_F(KIniDataFile, MissingAndUnreadablePathsAnswerAsBefore) {
    KIniData ini;
    ASSERT_TRUE(ini.Open(dir / "none.ini"));
    EXPECT_TRUE(ini.is_open && ini.file_missing);
    EXPECT_TRUE(trace().empty());
    // Something is there but it can't be read: the open's own words, once.
    dir.write("folder.ini/inside", "");
    EXPECT_FALSE(ini.Open(dir / "folder.ini"));
    EXPECT_TRUE(!ini.is_open && !ini.file_missing);
    const std::vector<std::string> lines = trace();
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0].rfind("openfile(): CreateFile(\"", 0), 0u);
    EXPECT_EQ(lines[1].rfind("KFastFileReader::Open(): openfile(\"", 0), 0u);
    EXPECT_EQ(lines[2], "KIniData::Open(): KFastFileReader::Open() failed");
}

// A file is read in growing blocks; lines that cross from one block to the
// next, a line longer than a block, and a file that ends on a block's last
// byte read as the same lines as the text split in one piece.
TEST_F(KIniDataFile, LinesAcrossReadBlocksComeWhole) {
    const char* const endings[] = {"\r\n", "\n", "\r"};
    std::string text = "; head\r\n";
    for (int i = 0; i < 9000; ++i) {
        if (i % 40 == 0)
            text += "[s" + std::to_string(i / 40) + "]" + endings[i % 3];
        text += "k" + std::to_string(i) + "=" + std::to_string(i) + std::string(i % 17, ' ');
        text += i == 700 ? "x" + std::string(70000, 'v') : "";
        text += endings[(i / 3) % 3];
    }
    for (const std::size_t size : {std::size_t(16384), std::size_t(16385), text.size() + 10}) {
        std::string bytes = text.substr(0, std::min(size, text.size()));
        // Up to `size`, the last line a comment without a line ending.
        bytes.erase(bytes.find_last_of("\r\n") + 1);
        bytes += "; " + std::string(size - bytes.size() - 2, 'p');
        ASSERT_EQ(bytes.size(), size);
        dir.write("blocks.ini", bytes);
        KIniData loaded;
        ASSERT_TRUE(loaded.Open(dir / "blocks.ini")) << loaded.error_text;
        KIniData split;
        ASSERT_TRUE(split.SetContentString(bytes));
        EXPECT_EQ(loaded.GetContentString(), split.GetContentString()) << size;
        std::int32_t number = 0;
        EXPECT_EQ(loaded.GetLongEntry("s0", "k1", number) && number == 1, true);
    }
    KIniData loaded;
    ASSERT_TRUE(loaded.Open(dir / "blocks.ini"));
    std::string value;
    ASSERT_TRUE(loaded.GetStringEntry("s17", "k700", value));
    EXPECT_EQ(value, "700" + std::string(700 % 17, ' ') + "x" + std::string(70000, 'v'));
    std::int32_t number = 0;
    EXPECT_TRUE(loaded.GetLongEntry("s224", "k8999", number));
    EXPECT_EQ(number, 8999);
}

// Numbers are read up to the end of their own line, never into the next one.
TEST_F(KIniDataFile, ValuesEndWithTheirLine) {
    dir.write("n.ini", "[s]\r\nblank= \r\n 5=x\r\nlast=12");
    KIniData ini;
    ASSERT_TRUE(ini.Open(dir / "n.ini"));
    std::int32_t number = 42;
    EXPECT_FALSE(ini.GetLongEntry("s", "blank", number));
    EXPECT_EQ(number, 0);
    double real = 1;
    EXPECT_FALSE(ini.GetDoubleEntry("s", "blank", real));
    EXPECT_TRUE(ini.GetLongEntry("s", "last", number));
    EXPECT_EQ(number, 12);
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
