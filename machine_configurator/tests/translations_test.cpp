#include "source_tree.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <sstream>

using rigcfg_test::slurp;
using rigcfg_test::source_tree;

namespace {

// msgid -> msgstr of the plain one-line pairs of every catalogue part of one
// language; a key held by two parts is reported, as the joined catalogue
// would keep only one of its texts.
std::map<std::string, std::string> read_catalogue(const std::filesystem::path& folder) {
    std::map<std::string, std::string> entries;
    for (const auto& part : std::filesystem::directory_iterator(folder)) {
        if (part.path().extension() != ".po")
            continue;
        std::istringstream in(slurp(part.path()));
        std::string id;
        for (std::string line; std::getline(in, line);) {
            if (line.rfind("msgid \"", 0) == 0)
                id = line.substr(7, line.size() - 8);
            else if (line.rfind("msgstr \"", 0) == 0 && !id.empty()) {
                EXPECT_TRUE(entries.emplace(id, line.substr(8, line.size() - 9)).second)
                    << id << " again in " << part.path();
            }
        }
    }
    return entries;
}

// Every translation key in the program's sources, wizard included; literals
// split over lines are joined first.
std::set<std::string> keys_in_sources(const std::filesystem::path& src) {
    std::set<std::string> keys;
    const std::regex joined("\"\\s*\\n\\s*\"");
    const std::regex key("\"([^\"\\n]*\\.(msg|txt|but))\"");
    for (const auto& entry : std::filesystem::recursive_directory_iterator(src)) {
        if (!entry.is_regular_file() ||
            entry.path().filename().string().find("catalogue") != std::string::npos)
            continue;
        const std::string text = std::regex_replace(slurp(entry.path()), joined, "");
        for (auto it = std::sregex_iterator(text.begin(), text.end(), key);
             it != std::sregex_iterator(); ++it)
            keys.insert((*it)[1]);
    }
    return keys;
}

TEST(Translations, EveryKeyHasAnEnglishAndAGermanText) {
    const std::filesystem::path root = source_tree();
    ASSERT_FALSE(root.empty());
    const std::set<std::string> keys = keys_in_sources(root / "machine_configurator/src");
    EXPECT_GE(keys.size(), 60u);
    const auto en = read_catalogue(root / "machine_configurator/locale/en");
    const auto de = read_catalogue(root / "machine_configurator/locale/de");
    for (const std::string& key : keys) {
        ASSERT_TRUE(en.count(key)) << key;
        ASSERT_TRUE(de.count(key)) << key;
        EXPECT_FALSE(en.at(key).empty()) << key;
        EXPECT_FALSE(de.at(key).empty()) << key;
        // Names and labels may read the same in both; sentences may not.
        if (key.ends_with(".msg")) {
            EXPECT_NE(de.at(key), en.at(key)) << key;
        }
    }
}

} // namespace
