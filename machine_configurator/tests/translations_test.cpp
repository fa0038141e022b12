#include "kplatform_module.h"
#include "ktranslate.h"
#include "rigcfg_files_fixture.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>

using namespace rigcfg_test;

namespace {

std::string slurp(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// The source tree, as the build tree above the test binary names it.
std::filesystem::path source_root() {
    std::filesystem::path dir =
        std::filesystem::path(korv::platform::executable_path()).parent_path();
    for (; !dir.empty() && dir != dir.root_path(); dir = dir.parent_path()) {
        std::istringstream cache(slurp(dir / "CMakeCache.txt"));
        for (std::string line; std::getline(cache, line);)
            if (line.rfind("CMAKE_HOME_DIRECTORY:INTERNAL=", 0) == 0)
                return line.substr(line.find('=') + 1);
    }
    return {};
}

// msgid -> msgstr of the plain one-line pairs a catalogue part holds.
std::map<std::string, std::string> read_po(const std::filesystem::path& file) {
    std::map<std::string, std::string> entries;
    std::istringstream in(slurp(file));
    std::string id;
    for (std::string line; std::getline(in, line);) {
        if (line.rfind("msgid \"", 0) == 0)
            id = line.substr(7, line.size() - 8);
        else if (line.rfind("msgstr \"", 0) == 0)
            entries[id] = line.substr(8, line.size() - 9);
    }
    return entries;
}

// Every translation key in the sources of the active configuration; literals
// split over lines are joined first.
std::set<std::string> keys_in_sources(const std::filesystem::path& src) {
    std::set<std::string> keys;
    const std::regex joined("\"\\s*\\n\\s*\"");
    const std::regex key("\"([^\"\\n]*\\.(msg|txt|but))\"");
    for (const auto& entry : std::filesystem::directory_iterator(src)) {
        const std::string name = entry.path().filename().string();
        if (name.rfind("RigCfgDlg", 0) != 0 || name.find("catalogue") != std::string::npos)
            continue;
        const std::string text = std::regex_replace(slurp(entry.path()), joined, "");
        for (auto it = std::sregex_iterator(text.begin(), text.end(), key);
             it != std::sregex_iterator(); ++it)
            keys.insert((*it)[1]);
    }
    return keys;
}

TEST(Translations, EveryKeyHasAnEnglishAndAGermanText) {
    const std::filesystem::path root = source_root();
    ASSERT_FALSE(root.empty());
    const std::set<std::string> keys = keys_in_sources(root / "machine_configurator/src");
    EXPECT_GE(keys.size(), 12u);
    const auto en = read_po(root / "machine_configurator/locale/en/config.po");
    const auto de = read_po(root / "machine_configurator/locale/de/config.po");
    for (const std::string& key : keys) {
        ASSERT_TRUE(en.count(key)) << key;
        ASSERT_TRUE(de.count(key)) << key;
        EXPECT_FALSE(en.at(key).empty()) << key;
        EXPECT_NE(de.at(key), en.at(key)) << key;
    }
}

class TranslatedBoxes : public FilesTest {
protected:
    void TearDown() override {
        Translate_init("", root / "none", "en", "RigCfg");
        FilesTest::TearDown();
    }
};

TEST_F(TranslatedBoxes, BoxesShowTheGermanText) {
    const std::filesystem::path source = source_root();
    ASSERT_FALSE(source.empty());
    root.write("locale/de/RigCfg.po", slurp(source / "machine_configurator/locale/de/config.po"));
    Translate_init("", root.path(), "de", "RigCfg");
    auto dlg = make_dialog(ProductTypeMidspan);
    dlg->INICfgFileIO(kApp, 0);
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].text, "Fehler: Die INI-Datei 'sp_load.ini' wurde nicht gefunden.\n\n"
                             "Bitte wählen Sie das Verzeichnis der zugehörigen Loader-DLL aus.");
}

} // namespace
