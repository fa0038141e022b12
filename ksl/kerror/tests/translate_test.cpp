#include "ktranslate.h"
#include "scratch_dir.h"

#include <filesystem>
#include <gtest/gtest.h>

using korv::testing::ScratchDir;

TEST(Translate, ReadsPoFilesOfTheLanguageInLowerCase) {
    ScratchDir dir;
    dir.write("locale/de/RigCfg.po", "# comment\n"
                                     "msgid \"\"\n"
                                     "msgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n\n"
                                     "msgid \"Undo.but\"\n"
                                     "msgstr \"R\\u00fcckg\"\n\n"
                                     "msgid \"long.msg\"\n"
                                     "msgstr \"\"\n"
                                     "\"line one\\n\"\n"
                                     "\"line \\\"two\\\"\"\n\n"
                                     "#, fuzzy\n"
                                     "msgid \"fuzzy.txt\"\n"
                                     "msgstr \"unsure\"\n\n"
                                     "msgid \"empty.txt\"\n"
                                     "msgstr \"\"\n");
    Translate_init("", dir.path(), "DE", "RigCfg");
    int found = -1;
    EXPECT_EQ(Translate("long.msg", 0, &found, "RigCfg"), "line one\nline \"two\"");
    EXPECT_EQ(found, 1);
    EXPECT_EQ(Translate("Undo.but", 0, nullptr, "RigCfg"), "R\\u00fcckg");
    EXPECT_EQ(Translate("fuzzy.txt", 0, &found, "RigCfg"), "fuzzy.txt");
    EXPECT_EQ(found, 0);
    EXPECT_EQ(Translate("empty.txt", 0, nullptr, "RigCfg"), "empty.txt");
    EXPECT_EQ(Translate("Undo.but", 0, nullptr, "OtherDomain"), "Undo.but");
    EXPECT_EQ(Translate("", 0, nullptr, "RigCfg"), "");

    Translate_init("", dir.path(), "fr", "RigCfg");
    EXPECT_EQ(Translate("long.msg", 0, nullptr, "RigCfg"), "long.msg");

    // A second init reads the file again: a changed file is taken as it is now,
    // a removed one leaves no translation behind.
    Translate_init("", dir.path(), "de", "RigCfg");
    EXPECT_EQ(Translate("Undo.but", 0, nullptr, "RigCfg"), "R\\u00fcckg");
    dir.write("locale/de/RigCfg.po", "msgid \"Undo.but\"\nmsgstr \"Zur\"\n");
    Translate_init("", dir.path(), "de", "RigCfg");
    EXPECT_EQ(Translate("Undo.but", 0, nullptr, "RigCfg"), "Zur");
    EXPECT_EQ(Translate("long.msg", 0, nullptr, "RigCfg"), "long.msg");
    std::filesystem::remove(dir.path() + "/locale/de/RigCfg.po");
    Translate_init("", dir.path(), "de", "RigCfg");
    EXPECT_EQ(Translate("Undo.but", 0, nullptr, "RigCfg"), "Undo.but");
}
