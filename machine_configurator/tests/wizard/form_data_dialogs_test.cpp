// The factory disk dialog and the directory check, run by the headless host.
#include "ktranslate.h"
#include "scratch_dir.h"
#include "source_tree.h"
#include "ui_headless_host.h"
#include "ui_host_selection.h"
#include "wizard/CustomWizardDlg.h"
#include "wizard/FacDiskNameIoDlg.h"
#include "wizard/wizard_resources.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

class FormDataDialogs : public ::testing::Test {
protected:
    void SetUp() override { RegisterWizardResources(); }
    void TearDown() override {
        korv::ui::reset_host_selection();
        Translate_init("", root / "none", "en", "RigCfg");
    }
    // Only the German texts of this concern; other keys stay keys.
    void Language(const char* language) {
        root.write("locale/de/RigCfg.po",
                   rigcfg_test::slurp(rigcfg_test::source_tree() /
                                      "machine_configurator/locale/de/form_data.po"));
        Translate_init("", root.path(), language, "RigCfg");
    }
    // Dialogs and boxes from now on follow `script`; the transcript starts anew.
    void Script(const std::string& script) {
        std::vector<korv::ui::ScriptEvent> events;
        std::string error;
        ASSERT_TRUE(korv::ui::parse_ui_script(script, events, error)) << error;
        transcript.clear();
        korv::ui::install_host(std::make_unique<korv::ui::HeadlessHost>(
            std::move(events), [this](const std::string& line) { transcript += line + "\n"; }));
    }
    bool Has(const std::string& text) const { return transcript.find(text) != std::string::npos; }

    korv::testing::ScratchRoot root;
    std::string transcript;
};

TEST_F(FormDataDialogs, FactoryDiskDialogShowsTheFoundUnitAndTakesTheNamedOne) {
    Language("de");
    for (auto [script, result, specified] :
         {std::tuple{"dump\nsettext 1037 \"VD 140\"\nclick 1\n", 1, "VD 140"},
          {"settext 1037 \"VD 140\"\nclick 2\n", 2, "before"},
          {"", 2, "before"}}) {
        Script(script);
        CFacDiskNameIoDlg dialog;
        dialog.m_specifiedDriveUnit = "before";
        EXPECT_EQ(dialog.DoModal(), result) << script;
        EXPECT_EQ(dialog.m_specifiedDriveUnit, specified) << script;
        korv::ui::reset_host_selection();
    }
    Script("dump\n");
    CFacDiskNameIoDlg dialog;
    dialog.m_foundDriveUnit = "Found Drive Unit:.txt"; // a name, though it reads like a key
    dialog.DoModal();
    // The keys with their tabs found their texts, which keep theirs.
    for (const char* line : {"dump 164 \"Werksdiskette\"\n",
                             "- static \"Fehler:\\tIn der angegebenen Datei wurde keine passende "
                             "Antriebseinheit gefunden!\"\n",
                             "1001 static \"Found Drive Unit:.txt\"\n", "1037 edit \"\"\n",
                             "- static \"Schaltfl\xC3\xA4"
                             "che <OK>:\\t\\tDatei erneut durchsuchen.\"\n",
                             "- static \"Schaltfl\xC3\xA4"
                             "che <Abbrechen>:\\tVorgang abbrechen.\"\n"})
        EXPECT_TRUE(Has(line)) << line << transcript;
}

TEST_F(FormDataDialogs, EnsureDirectoryExistsAsksCreatesAndRefuses) {
    enum What { Nothing, Directory, File, NoParent };
    const std::string ask = "question yes-no ", error = "error ok ";
    const std::string create = "The directory does not exist. Create it now.msg\n'@'";
    const std::string exists = "s \n\"A directory with the name.msg\"\n already exists.msg\n@";
    const std::string german = "s \n\"Ein Verzeichnis mit dem Namen\"\n existiert bereits.\n@";
    const std::string failed = "Cannot create the directory.msg \n\"@\"";
    const struct {
        What what;
        bool askIfExists, askToCreate;
        const char* answer;
        int result;
        bool directoryAfter;
        std::string box; // "<icon> <buttons> " and the text, @ for the path; empty: none
        const char* language = "en";
    } cases[] = {
        {Nothing, false, true, "yes", 0, true, ask + create},
        {Nothing, true, true, "no", -1, false, ask + create},
        {Nothing, true, false, "", 0, true, ""},
        {Directory, false, true, "", 0, true, ""},
        {Directory, true, false, "yes", 0, true, ask + exists},
        {Directory, true, true, "no", -1, true, ask + exists},
        {Directory, true, true, "yes", 0, true, ask + german, "de"},
        {File, true, true, "", -1, false, error + failed},
        {NoParent, false, false, "", -1, false, error + failed},
    };
    int n = 0;
    for (const auto& c : cases) {
        const std::string name = "case" + std::to_string(n++);
        const std::string host = root / ("drive_c/Projects/" + name);
        std::filesystem::create_directories(root / "drive_c/Projects");
        if (c.what == Directory)
            std::filesystem::create_directories(host);
        if (c.what == File)
            root.write("drive_c/Projects/" + name, "x");
        Language(c.language);
        Script(c.answer[0] ? std::string("answer ") + c.answer + "\n" : "");
        const std::string path = "C:\\Projects\\" + name + (c.what == NoParent ? "\\deeper" : "");
        EXPECT_EQ(
            CCustomWizardDlg(nullptr).EnsureDirectoryExists(path, c.askIfExists, c.askToCreate),
            c.result)
            << name;
        korv::ui::reset_host_selection();
        EXPECT_EQ(std::filesystem::is_directory(c.what == NoParent ? host + "/deeper" : host),
                  c.directoryAfter)
            << name;
        std::string expected = "message box";
        if (!c.box.empty()) {
            const std::size_t text = c.box.find(' ', c.box.find(' ') + 1) + 1;
            std::string body = c.box.substr(text);
            body.replace(body.find('@'), 1, path);
            expected += " " + c.box.substr(0, text) + korv::ui::quote_text(body) + " -> " +
                        (c.answer[0] ? c.answer : "ok");
        }
        EXPECT_EQ(Has(expected), !c.box.empty()) << name << "\n" << expected << "\n" << transcript;
    }
}

} // namespace
