// The factory disk dialog and the directory check, run by the headless host.
#include "errtrace.h"
#include "ktranslate.h"
#include "scratch_dir.h"
#include "source_tree.h"
#include "ui_dialog_template.h"
#include "ui_headless_host.h"
#include "ui_host_selection.h"
#include "wizard/CustomWizardDlg.h"
#include "wizard/FacDiskNameIoDlg.h"
#include "wizard/wizard_resources.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

class FormDataDialogs : public ::testing::Test {
protected:
    void SetUp() override {
        RegisterWizardResources();
        Translate_init("", root / "none", "en", "RigCfg");
    }
    void TearDown() override {
        korv::ui::reset_host_selection();
        Translate_init("", root / "none", "en", "RigCfg");
        KErrTrace_ClearContext();
    }

    // The program's German texts of this concern, as the only catalogue.
    void German() {
        const fs::path part =
            rigcfg_test::source_tree() / "machine_configurator/locale/de/form_data.po";
        const std::string text = rigcfg_test::slurp(part);
        ASSERT_FALSE(text.empty()) << part;
        root.write("locale/de/RigCfg.po", text);
        Translate_init("", root.path(), "de", "RigCfg");
    }
    // From now on dialogs and boxes follow `script`; the transcript grows.
    void Script(const std::string& script) {
        std::vector<korv::ui::ScriptEvent> events;
        std::string error;
        ASSERT_TRUE(korv::ui::parse_ui_script(script, events, error)) << error;
        korv::ui::install_host(std::make_unique<korv::ui::HeadlessHost>(
            std::move(events), [this](const std::string& line) { transcript += line + "\n"; }));
    }
    bool Has(const std::string& line) const { return transcript.find(line) != std::string::npos; }

    korv::testing::ScratchRoot root;
    std::string transcript;
};

TEST_F(FormDataDialogs, FactoryDiskTemplateHoldsEveryTextWithItsTabs) {
    const korv::ui::DialogTemplate* dialog = korv::ui::find_dialog_template(CFacDiskNameIoDlg::IDD);
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->caption, "Factory disk.dlghead");
    using K = korv::ui::ControlKind;
    const struct {
        int id;
        K kind;
        const char* caption;
    } expected[] = {
        {-1, K::StaticText, "Error:\tNo appropriate Drive Unit found in specified file!.txt"},
        {-1, K::StaticText, "Found Drive Unit:.txt"},
        {1001, K::StaticText, ""},
        {-1, K::StaticText, "Drive Unit specified:.txt"},
        {1037, K::Edit, ""},
        {-1, K::StaticText, "Button <OK>:\t\tscan file again..txt"},
        {-1, K::StaticText, "Button <Cancel>:\tabort operation..txt"},
        {1, K::Button, "OK.but"},
        {2, K::Button, "Cancel.but"},
    };
    ASSERT_EQ(dialog->controls.size(), std::size(expected));
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        const korv::ui::ControlTemplate& control = dialog->controls[i];
        EXPECT_EQ(control.id, expected[i].id == -1 ? korv::ui::IDC_STATIC : expected[i].id) << i;
        EXPECT_EQ(control.kind, expected[i].kind) << i;
        EXPECT_EQ(control.caption, expected[i].caption) << i;
    }
}

TEST_F(FormDataDialogs, FactoryDiskDialogShowsTheFoundUnitAndTakesTheNamedOne) {
    German();
    const struct {
        const char* script;
        int result;
        const char* specified; // afterwards
    } runs[] = {
        {"dump\nsettext 1037 \"VD 140\"\nclick 1\n", 1, "VD 140"},
        {"settext 1037 \"VD 140\"\nclick 2\n", 2, "typed before"},
        {"settext 1037 \"\"\nclick 1\n", 1, ""},
        {"", 2, "typed before"}, // the script runs out: the close box
    };
    for (const auto& run : runs) {
        transcript.clear();
        Script(run.script);
        CFacDiskNameIoDlg dialog;
        dialog.m_foundDriveUnit = "KMX 100 A";
        dialog.m_specifiedDriveUnit = "typed before";
        EXPECT_EQ(dialog.DoModal(), run.result) << run.script;
        EXPECT_EQ(dialog.m_specifiedDriveUnit, run.specified) << run.script;
        EXPECT_EQ(dialog.m_foundDriveUnit, "KMX 100 A");
        EXPECT_TRUE(Has("open 164 \"Factory disk.dlghead\"")) << transcript;
        EXPECT_EQ(transcript.find("! "), std::string::npos) << transcript;
        korv::ui::reset_host_selection();
    }
    // What the first run showed: translated captions, tabs kept, the names untouched.
    Script("dump\n");
    CFacDiskNameIoDlg dialog;
    dialog.m_foundDriveUnit = "Found.txt"; // a name, not a key
    transcript.clear();
    dialog.DoModal();
    for (const char* line : {"dump 164 \"Werksdiskette\"",
                             "- static \"Fehler:\\tIn der angegebenen Datei wurde keine passende "
                             "Antriebseinheit gefunden!\"",
                             "1001 static \"Found.txt\"", "1037 edit \"\"",
                             "- static \"Schaltfl\xC3\xA4"
                             "che <OK>:\\t\\tDatei erneut durchsuchen.\"",
                             "- static \"Schaltfl\xC3\xA4"
                             "che <Abbrechen>:\\tVorgang abbrechen.\"",
                             "1 button \"OK.but\"", "2 button \"Cancel.but\""})
        EXPECT_TRUE(Has(line)) << line << "\n" << transcript;
}

TEST_F(FormDataDialogs, EnsureDirectoryExistsAsksCreatesAndRefuses) {
    enum What { Nothing, Directory, File, NoParent };
    const std::string ask = "question yes-no ", error = "error ok ";
    const std::string create = "The directory does not exist. Create it now.msg\n'@'";
    const std::string exists = "s \n\"A directory with the name.msg\"\n already exists.msg\n@";
    const std::string failed = "Cannot create the directory.msg \n\"@\"";
    const struct {
        What what;
        bool askIfExists, askToCreate;
        const char* answer;
        int result;
        bool directoryAfter;
        std::string box; // its kind and text, @ the path; empty: none
    } cases[] = {
        {Nothing, false, true, "yes", 0, true, ask + create},
        {Nothing, true, true, "no", -1, false, ask + create},
        {Nothing, true, false, "", 0, true, ""},
        {Directory, false, true, "", 0, true, ""},
        {Directory, true, false, "yes", 0, true, ask + exists},
        {Directory, true, true, "no", -1, true, ask + exists},
        {File, true, true, "", -1, false, error + failed},
        {NoParent, false, false, "", -1, false, error + failed},
    };
    int n = 0;
    for (const auto& c : cases) {
        const std::string name = "case" + std::to_string(n++);
        const std::string path = "C:\\Projects\\" + name + (c.what == NoParent ? "\\deeper" : "");
        const std::string host = root / ("drive_c/Projects/" + name);
        fs::create_directories(root / "drive_c/Projects");
        if (c.what == Directory)
            fs::create_directories(host);
        if (c.what == File)
            root.write("drive_c/Projects/" + name, "x");
        transcript.clear();
        Script(c.answer[0] ? std::string("answer ") + c.answer + "\n" : "");
        CCustomWizardDlg wizard(nullptr);
        EXPECT_EQ(wizard.EnsureDirectoryExists(path, c.askIfExists, c.askToCreate), c.result)
            << name;
        korv::ui::reset_host_selection();
        EXPECT_EQ(fs::is_directory(c.what == NoParent ? host + "/deeper" : host), c.directoryAfter)
            << name;
        if (c.box.empty()) {
            EXPECT_EQ(transcript.find("message box"), std::string::npos) << name << transcript;
        } else {
            const std::size_t at = c.box.find(' ', c.box.find(' ') + 1) + 1;
            std::string text = c.box.substr(at);
            text.replace(text.find('@'), 1, path);
            const std::string line = "message box " + c.box.substr(0, at) +
                                     korv::ui::quote_text(text) + " -> " +
                                     (c.answer[0] ? c.answer : "ok");
            EXPECT_TRUE(Has(line)) << name << "\n" << line << "\n" << transcript;
        }
        EXPECT_EQ(transcript.find("! "), std::string::npos) << name << transcript;
    }
}

TEST_F(FormDataDialogs, DirectoryMessagesAreTranslatedAndTheFourthTextNeverShows) {
    German();
    fs::create_directories(root / "drive_c/Projects/old");
    Script("answer yes\n");
    CCustomWizardDlg wizard(nullptr);
    EXPECT_EQ(wizard.EnsureDirectoryExists("C:\\Projects\\old", true, true), 0);
    korv::ui::reset_host_selection();
    EXPECT_TRUE(Has("message box question yes-no " +
                    korv::ui::quote_text("s \n\"Ein Verzeichnis mit dem Namen\"\n existiert "
                                         "bereits.\nC:\\Projects\\old") +
                    " -> yes"))
        << transcript;
    EXPECT_EQ(transcript.find("fortsetzen"), std::string::npos);

    transcript.clear();
    root.write("drive_c/Projects/file", "");
    Script("");
    EXPECT_EQ(wizard.EnsureDirectoryExists("C:\\Projects\\file", false, false), -1);
    korv::ui::reset_host_selection();
    EXPECT_TRUE(Has("message box error ok " +
                    korv::ui::quote_text("Das Verzeichnis kann nicht angelegt werden \n"
                                         "\"C:\\Projects\\file\"")))
        << transcript;
}

} // namespace
