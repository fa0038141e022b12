// The ini container in memory: reading, setting, deleting and renaming, the
// behaviour bits, and copies.
#include "KIniData_template_core.h"
#include "trace_context.h"

#include <gtest/gtest.h>

#include <climits>
#include <sstream>
#include <string>
#include <vector>

using korv::KIniData;

namespace {

class KIniDataEdit : public korv::testing::TraceContextTest {
protected:
    // A container holding `text`, in sync as if just loaded.
    static KIniData loaded(const std::string& text, std::uint32_t flags = 0) {
        KIniData ini(flags);
        EXPECT_TRUE(ini.SetContentString(text));
        ini.in_sync = true;
        return ini;
    }
};

TEST_F(KIniDataEdit, ValuesAreReadAsTheyStand) {
    KIniData ini = loaded("[s]\n"
                          "a=b=c\n"
                          "key = 5 ; five\n"
                          "empty=\n"
                          "port=12abc\n"
                          "big=99999999999\n"
                          "small=-99999999999\n"
                          "d= 2.5e3x\n"
                          "two words =x\n"
                          "Key=upper\n");
    // name asked for, its text; lookups drop trailing blanks
    const std::pair<const char*, const char*> strings[] = {
        {"a", "b=c"},       {"key", " 5 ; five"}, {"key \t ", " 5 ; five"},
        {"two words", "x"}, {"Key", "upper"},     {"empty", ""}};
    for (const auto& [name, expected] : strings) {
        std::string text;
        EXPECT_TRUE(ini.GetStringEntry("s", name, text)) << name;
        EXPECT_EQ(text, expected) << name;
    }
    EXPECT_FALSE(ini.HasEntry("s", "key ")); // tests don't trim
    const std::pair<const char*, std::int32_t> longs[] = {
        {"key", 5}, {"port", 12}, {"big", INT32_MAX}, {"small", INT32_MIN}};
    std::int32_t value = 42;
    EXPECT_FALSE(ini.GetLongEntry("s", "empty", value));
    EXPECT_EQ(value, 0);
    for (const auto& [name, expected] : longs) {
        EXPECT_TRUE(ini.GetLongEntry("s", name, value)) << name;
        EXPECT_EQ(value, expected) << name;
    }
    std::int64_t wide = 0;
    EXPECT_TRUE(ini.GetLongLongEntry("s", "big", wide));
    EXPECT_EQ(wide, 99999999999LL);
    double real = 0;
    EXPECT_TRUE(ini.GetDoubleEntry("s", "d", real));
    EXPECT_EQ(real, 2500.0);

    value = 7;
    EXPECT_FALSE(ini.GetLongEntry("s", "missing", value));
    EXPECT_FALSE(ini.GetLongEntry("t", "key", value));
    EXPECT_EQ(value, 7);
    EXPECT_EQ(ini.GetEntryCount("s"), 9u);
    EXPECT_EQ(ini.GetEntryCount("t"), 0u);
    std::vector<std::string> names{"stale"};
    ini.GetEntryNames("t", names);
    EXPECT_TRUE(names.empty());
    EXPECT_EQ(ini.GetEntryNames("s").front(), "Key"); // map order, not file order
    EXPECT_TRUE(trace().empty());
}

TEST_F(KIniDataEdit, SettingKeepsWhatStandsBeforeTheValue) {
    KIniData ini = loaded("[s]\n"
                          "key = 5 ; five\n"
                          "; trailing comment\n"
                          "[z]\n");
    ASSERT_TRUE(ini.SetLongEntry("s", "key", 7));
    EXPECT_FALSE(ini.in_sync);
    ASSERT_TRUE(ini.SetStringEntry("s", "new  ", "v"));
    ASSERT_TRUE(ini.SetDoubleEntry("m", "d", 0.1));
    ASSERT_TRUE(ini.SetLongLongEntry("m", "ll", -9000000000LL));
    ASSERT_TRUE(ini.SetLongEntry("m", "l", INT32_MIN));
    ASSERT_TRUE(ini.SetStringEntry("m", "lines", "a\nb"));
    EXPECT_EQ(ini.GetContentString(), "[m]\n"
                                      "d=0.10000000000000001\n"
                                      "ll=-9000000000\n"
                                      "l=-2147483648\n"
                                      "lines=a\nb\n"
                                      "[s]\n"
                                      "key =7\n"
                                      "; trailing comment\n"
                                      "new=v\n"
                                      "[z]\n");
    ASSERT_TRUE(ini.SetStringEntry("s", "new", "w"));
    EXPECT_EQ(ini.GetEntryCount("s"), 2u);
}

TEST_F(KIniDataEdit, CommentNamesAreRefusedByEverySetter) {
    KIniData ini = loaded("[s]\n");
    EXPECT_FALSE(ini.SetStringEntry("s", ";x", "v"));
    EXPECT_EQ(ini.error_text, "cannot add comment as an entry: \";x=v\"");
    EXPECT_FALSE(ini.SetLongEntry("s", " #x", 5));
    EXPECT_FALSE(ini.SetLongLongEntry("s", "\t/x", 6));
    EXPECT_FALSE(ini.SetDoubleEntry("new", "*x", 0.5));
    EXPECT_EQ(ini.error_text, "cannot add comment as an entry: \"*x=0.5\"");
    EXPECT_TRUE(ini.in_sync);
    EXPECT_FALSE(ini.HasSection("new"));
    EXPECT_EQ(ini.GetContentString(), "[s]\n");
}

TEST_F(KIniDataEdit, DeleteEntryTakesOnlyTheEntrysOwnLine) {
    KIniData ini = loaded("[s]\n; about a\na = 1\nb=2\n");
    ASSERT_TRUE(ini.DeleteEntry("s", "a"));
    EXPECT_FALSE(ini.in_sync);
    EXPECT_EQ(ini.GetContentString(), "[s]\n; about a\nb=2\n");
    EXPECT_FALSE(ini.HasEntry("s", "a"));

    EXPECT_FALSE(ini.DeleteEntry("s", "b ")); // no trimming here
    EXPECT_FALSE(ini.DeleteEntry("t", "b"));
    EXPECT_TRUE(ini.HasEntry("s", "b"));

    // The walk for the entry's line stops at a line it cannot read.
    KIniData relaxed = loaded("[s]\nbare words\nb=2\n[t]\n=5\nb=2\n", korv::KINI_RELAXED_LINES);
    take_trace();
    EXPECT_FALSE(relaxed.DeleteEntry("s", "b"));
    EXPECT_EQ(trace().front(), "KIniDataSectionT::DeleteEntry(): no '=' found in \"bare words\"");
    EXPECT_FALSE(relaxed.DeleteEntry("s", "bare words")); // its own line stops the walk
    EXPECT_FALSE(relaxed.DeleteEntry("t", "b"));
    EXPECT_EQ(trace()[4], "KIniDataSectionT::DeleteEntry(): no entry name in \"=5\"");
    EXPECT_EQ(relaxed.GetEntryCount("s") + relaxed.GetEntryCount("t"), 4u);
}

TEST_F(KIniDataEdit, RenameSectionMovesTheLinesUnderANewHeader) {
    KIniData ini = loaded("[a] old text\nk=1\n; c\n[m]\n");
    ASSERT_TRUE(ini.RenameSection("a", "z"));
    EXPECT_FALSE(ini.in_sync);
    EXPECT_EQ(ini.GetContentString(), "[m]\n[z]\nk=1\n; c\n");
    std::string value;
    EXPECT_TRUE(ini.GetStringEntry("z", "k", value));
    ASSERT_TRUE(ini.SetStringEntry("z", "n", "2"));
    ASSERT_TRUE(ini.DeleteEntry("z", "k"));
    EXPECT_EQ(ini.GetContentString(), "[m]\n[z]\n; c\nn=2\n");

    EXPECT_FALSE(ini.RenameSection("nothing", "m")); // the target is tested first
    EXPECT_TRUE(trace().back().ends_with("(): section \"m\" already exists"));
    EXPECT_FALSE(ini.RenameSection("nothing", "y"));
}

TEST_F(KIniDataEdit, AddAndDeleteSections) {
    KIniData ini = loaded("[b]\nk=1\n");
    ASSERT_TRUE(ini.AddSection("b"));
    EXPECT_TRUE(ini.in_sync);
    ASSERT_TRUE(ini.AddSection("a"));
    EXPECT_FALSE(ini.in_sync);
    EXPECT_EQ(ini.GetContentString(), "[a]\n[b]\nk=1\n");
    ASSERT_TRUE(ini.DeleteSection("b"));
    EXPECT_FALSE(ini.DeleteSection("b"));
    EXPECT_EQ(ini.GetContentString(), "[a]\n");
}

TEST_F(KIniDataEdit, BehaviourBits) {
    KIniData relaxed = loaded("[s]\n  bare line  \n=5\n", korv::KINI_RELAXED_LINES);
    std::string value;
    EXPECT_TRUE(relaxed.GetStringEntry("s", "bare line", value));
    EXPECT_EQ(value, "  bare line  ");
    EXPECT_TRUE(relaxed.GetStringEntry("s", "", value));
    EXPECT_EQ(value, "5");

    KIniData sections = loaded("[a]\nx=1\n[b]\n[a]\ny=2\nno equals\n", korv::KINI_REPLACE_SECTIONS);
    EXPECT_EQ(sections.GetContentString(), "[a]\ny=2\nno equals\n[b]\n");

    KIniData entries = loaded("[s]\na=1\n; c\nb=2\na =3\n", korv::KINI_REPLACE_ENTRIES);
    EXPECT_EQ(entries.GetContentString(), "[s]\n; c\nb=2\na =3\n");
}

TEST_F(KIniDataEdit, SetContentStringKeepsEmptyLinesAndStopsAtTheFirstBadLine) {
    KIniData ini;
    ini.is_open = true;
    ini.file_missing = false;
    ini.in_sync = true;
    const char text[] = "; c\r\n\r\n[s]\rk=v\n\n\0ignored";
    ASSERT_TRUE(ini.SetContentString(std::string_view(text, sizeof text - 1)));
    EXPECT_TRUE(!ini.in_sync && ini.is_open && !ini.file_missing);
    EXPECT_EQ(ini.GetContentString(), "; c\n\n[s]\nk=v\n\n");
    EXPECT_FALSE(ini.SetContentString("[s]\nk=1\nbad\n[t]\n"));
    EXPECT_EQ(ini.GetContentString(), "[s]\nk=1\n");
}

TEST_F(KIniDataEdit, CopiesAreIndependentAndCompareByText) {
    KIniData source = loaded("; c\n[s]\nk = 1\n", korv::KINI_RELAXED_LINES);
    source.file_name = "C:\\x.ini";
    source.file_missing = false;
    source.error_text = "earlier";
    KIniData copy(source);
    EXPECT_EQ(copy.GetContentString(), source.GetContentString());
    EXPECT_TRUE(copy.file_name == "C:\\x.ini" && copy.flags == korv::KINI_RELAXED_LINES &&
                copy.error_text == "earlier" && copy.in_sync && !copy.file_missing);
    EXPECT_TRUE(copy == source);
    ASSERT_TRUE(copy.SetStringEntry("s", "k", "2"));
    EXPECT_TRUE(copy != source);
    std::string value;
    EXPECT_TRUE(source.GetStringEntry("s", "k", value));
    EXPECT_EQ(value, " 1");

    KIniData assigned = loaded("[other]\n");
    assigned = copy;
    EXPECT_TRUE(assigned == copy);
    EXPECT_FALSE(assigned.in_sync);
    assigned = *&assigned;
    std::ostringstream out;
    out << assigned;
    EXPECT_EQ(out.str(), "; c\n[s]\nk =2\n");
}

} // namespace
