// Where the lines and index names of the ini container live: a container's
// lines and names come from its arena, a section made on its own and a line
// made with plain new use the heap, and every line is deleted through the base
// class. Run under the address sanitizer, a piece handed out twice, freed into
// the wrong place or used after its arena went shows up here.
#include "KIniData_template_core.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using korv::KIniData;
using korv::KIniDataEntry;
using korv::KIniDataLine;
using korv::KIniDataSection;

namespace {

// A section of `lines` lines that mixes entries, comments and blank lines.
std::string section_text(const std::string& name, int lines) {
    std::string text = "[" + name + "]\n";
    for (int i = 0; i < lines; ++i) {
        if (i % 7 == 3)
            text += "; note " + std::to_string(i) + "\n";
        else if (i % 11 == 5)
            text += "  \n";
        else
            text +=
                "key" + std::to_string(i) + " = value of " + name + " " + std::to_string(i) + "\n";
    }
    return text;
}

} // namespace

TEST(KIniDataArena, LoadedSectionsOfEverySizeKeepTheirLinesInOrder) {
    // Around the ten reserved slots, and far past them.
    std::string text = "; top\n";
    for (const char* lines : {"000", "001", "009", "010", "011", "040", "300"})
        text += section_text(std::string("s") + lines, std::stoi(lines));
    KIniData ini;
    ASSERT_TRUE(ini.SetContentString(text));
    EXPECT_EQ(ini.GetContentString(), text); // the names are in sorted order
    EXPECT_EQ(ini.GetSection("s300")->line_vec.size(), 301u);
    EXPECT_EQ(ini.GetSection("s300")->line_vec[0], ini.GetSection("s300"));
}

TEST(KIniDataArena, ChangesReuseFreedPiecesWithoutMixingThemUp) {
    KIniData ini;
    ASSERT_TRUE(ini.SetContentString(section_text("a", 20) + section_text("b", 20)));
    // Entries, names and sections of several sizes freed and made again, many times.
    for (int round = 0; round < 200; ++round) {
        const std::string name = "n" + std::string(round % 23, 'x') + std::to_string(round);
        ASSERT_TRUE(ini.SetStringEntry("a", name, std::string(round % 50, 'v')));
        ASSERT_TRUE(ini.SetLongEntry("c" + std::to_string(round % 5), "k", round));
        if (round > 0) {
            const std::string previous =
                "n" + std::string((round - 1) % 23, 'x') + std::to_string(round - 1);
            ASSERT_TRUE(ini.DeleteEntry("a", previous));
        }
        if (round % 5 == 4) {
            ASSERT_TRUE(ini.DeleteSection("c" + std::to_string(round % 5)));
        }
    }
    KIniData expected;
    ASSERT_TRUE(expected.SetContentString(section_text("a", 20) + "n" + std::string(199 % 23, 'x') +
                                          "199=" + std::string(199 % 50, 'v') + "\n" +
                                          section_text("b", 20) +
                                          "[c0]\nk=195\n[c1]\nk=196\n[c2]\nk=197\n[c3]\nk=198\n"));
    EXPECT_EQ(ini.GetContentString(), expected.GetContentString());
    EXPECT_EQ(ini.GetEntryCount("a"), 16u); // 15 entries of the section text and the new one
}

TEST(KIniDataArena, IndexNamesDoNotDependOnTheLineText) {
    KIniData ini;
    ASSERT_TRUE(ini.SetContentString("[s]\nshort=1\n  spaced name =2\n"));
    KIniDataEntry* entry = ini.GetSection("s")->GetEntry("short");
    ASSERT_NE(entry, nullptr);
    // Far longer values move the line's text elsewhere, more than once.
    for (std::size_t length : {100u, 5000u, 3u})
        entry->SetValue(std::string(length, 'z'));
    entry->line = "rewritten=entirely";
    EXPECT_TRUE(ini.SetStringEntry("s", "spaced name", std::string(300, 'y')));
    EXPECT_EQ(ini.GetEntryNames("s"), (std::vector<std::string>{"short", "spaced name"}));
    EXPECT_TRUE(ini.HasEntry("s", "short"));

    ASSERT_TRUE(ini.RenameSection("s", "t"));
    EXPECT_TRUE(ini.HasEntry("t", "spaced name"));
    EXPECT_TRUE(ini.DeleteEntry("t", "spaced name"));
    EXPECT_EQ(ini.GetEntryNames("t"), std::vector<std::string>{"short"});
}

TEST(KIniDataArena, SectionsAndLinesMadeOnTheirOwnLiveOnTheHeap) {
    // A section outside any container keeps its entries and names itself.
    std::unique_ptr<KIniDataLine> section(new KIniDataSection("[own]"));
    auto* own = static_cast<KIniDataSection*>(section.get());
    for (int i = 0; i < 30; ++i)
        ASSERT_TRUE(own->SetLongEntry("k" + std::to_string(i), i));
    ASSERT_TRUE(own->DeleteEntry("k7"));
    ASSERT_TRUE(own->SetStringEntry("k7", "again"));
    EXPECT_EQ(own->line_vec.size(), 31u);
    std::string value;
    EXPECT_TRUE(own->GetStringEntry("k7", value));
    EXPECT_EQ(value, "again");
    section.reset(); // through the base

    KIniDataSection on_stack("[stack]");
    ASSERT_TRUE(on_stack.SetStringEntry("a", "1"));

    std::unique_ptr<KIniDataLine> plain(new KIniDataEntry("x=1", 2));
    EXPECT_EQ(static_cast<KIniDataEntry*>(plain.get())->GetValue(), "1");
}

TEST(KIniDataArena, ALineTakenOutOfItsContainerOutlivesIt) {
    auto ini = std::make_unique<KIniData>();
    ASSERT_TRUE(ini->SetContentString("; kept\n[s]\nk=value\n"));
    KIniDataLine* comment = ini->line_vec[0];
    ini->line_vec.clear();
    KIniDataSection* section = ini->GetSection("s");
    KIniDataLine* entry = section->line_vec[1];
    section->line_vec.pop_back();
    section->entry_map.clear();
    ini.reset();
    EXPECT_EQ(comment->line, "; kept");
    EXPECT_EQ(entry->line, "k=value");
    delete comment;
    delete entry; // the last piece out takes the arena with it
}
