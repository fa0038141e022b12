// The New button end to end in-process: the main dialog and the wizard over a
// scratch copy of the example installation, driven by a headless script; what
// the members, the history and the files hold afterwards.
#include "application/RigCfg.h"
#include "log_capture.h"
#include "main_dialog/CfgHistory.h"
#include "main_dialog/RigCfgDlg.h"
#include "scratch_dir.h"
#include "source_tree.h"

#include "ktranslate.h"
#include "ui_headless_host.h"
#include "ui_host_selection.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr const char* kMidspan = "C:\\ProgramData\\Korv\\Midspan Plugin\\";
constexpr const char* kKorEConData = "C:\\ProgramData\\Korv\\KorECon\\";
constexpr const char* kKorEConPrograms = "C:\\Program Files\\Korv\\KorECon\\";
const std::string kMidspanHost = "drive_c/ProgramData/Korv/Midspan Plugin/";
const std::string kKorEConHost = "drive_c/ProgramData/Korv/KorECon/";

// Group 0 over the example catalogue: COM1, VD 120, the second table, the
// first stand, then Back from the summary and Next again.
const char* const kContourWalk = "click 1014\n"
                                 "click 1021\nclick 1\n"
                                 "check 1026\nclick 1\n"
                                 "select 1090 \"VD 120\"\nclick 1\n"
                                 "select 1067 1\nclick 1\n"
                                 "click 1\n"
                                 "click 1013\nclick 1\n"
                                 "click 1\n";

class NewConfiguration : public ::testing::Test {
protected:
    void SetUp() override {
        const fs::path examples = rigcfg_test::source_tree() / "examples";
        ASSERT_TRUE(fs::is_directory(examples));
        fs::copy(examples, root.path(), fs::copy_options::recursive);
        Translate_init("", root / "none", "en", "RigCfg");
        RegisterDialogResources();
    }
    void TearDown() override { korv::ui::reset_host_selection(); }

    // Runs the main dialog of `type` under `script`; the dialog stays for a look.
    // Every event of the script must have been taken.
    int Run(ProductType type, const std::string& script) {
        std::vector<korv::ui::ScriptEvent> events;
        std::string error;
        EXPECT_TRUE(korv::ui::parse_ui_script(script, events, error)) << error;
        transcript.clear();
        korv::ui::install_host(std::make_unique<korv::ui::HeadlessHost>(
            std::move(events), [this](const std::string& line) { transcript += line + "\n"; }));
        const bool korecon = type == ProductTypeKorECon;
        dlg = std::make_unique<CMidSpanCfgDlg>(type, korecon ? kKorEConData : kMidspan,
                                               korecon ? kKorEConPrograms : kMidspan, nullptr);
        const int result = dlg->DoModal();
        korv::ui::reset_host_selection(); // the transcript is complete
        EXPECT_EQ(transcript.find("! "), std::string::npos) << transcript;
        return result;
    }

    std::string File(const std::string& relative) const { return root.read(relative); }
    std::string Example(const std::string& relative) const {
        std::ifstream in(rigcfg_test::source_tree() / "examples" / relative, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }
    // The snapshots from the oldest reachable to the current one.
    static std::vector<CfgHistoryEntry> Snapshots() {
        const CfgHistory& history = TheCfgHistory();
        std::vector<CfgHistoryEntry> out;
        for (std::int32_t i = history.oldest;; i = (i + 1) % CfgHistory::kSize) {
            out.push_back(history.entries[i]);
            if (i == history.current)
                break;
        }
        return out;
    }

    korv::testing::ScratchRoot root;
    korv::testing::LogCapture log;
    std::unique_ptr<CMidSpanCfgDlg> dlg;
    std::string transcript;
};

TEST_F(NewConfiguration, ContourRunWritesTheLoaderFilesAndAddsOneSnapshotPerOk) {
    // The same choices twice: each OK is a snapshot of its own.
    Run(ProductTypeMidspan, std::string(kContourWalk) + kContourWalk);
    EXPECT_EQ(dlg->m_wizardResult, 1);
    // The contour summary takes the folder of the catalogue's first sheet.
    EXPECT_FALSE(dlg->m_iniFolder.empty());
    const auto text = [](const CfgHistoryEntry& e) {
        return e.group + "|" + e.drive_unit + "|" + e.table + "|" + e.stand + "|" + e.folder;
    };
    const std::vector<CfgHistoryEntry> snapshots = Snapshots();
    ASSERT_EQ(snapshots.size(), 3u);
    EXPECT_EQ(text(snapshots[1]), text(snapshots[2]));
    EXPECT_EQ(text(snapshots[2]), "CONTOUR/SURFACE|VD 120:COM1|Rotary Table TB 50|"
                                  "SZ 750 D:horizontal|" +
                                      dlg->m_iniFolder);
    EXPECT_TRUE(TheCfgHistory().CanUndo());
    EXPECT_FALSE(TheCfgHistory().CanRedo());

    const std::string loader = File(kMidspanHost + "sp_load.ini");
    EXPECT_NE(loader.find("active_section=DRIVEUNIT[VD 120:COM1],TABLE[Rotary Table TB 50],"
                          "MEASURESTAND[SZ 750 D:horizontal],CONTROL[]\r\n"
                          "active=CONTOUR/SURFACE\r\n"),
              std::string::npos)
        << loader;
    EXPECT_NE(File(kMidspanHost + "SP_SUPPORT/load.ini").find("ProbeSystemName=\r\n"),
              std::string::npos);
    // Only a form group touches the form loader's file.
    EXPECT_EQ(File(kMidspanHost + "form_load.ini"), Example(kMidspanHost + "form_load.ini"));
}

TEST_F(NewConfiguration, ACancelOrAnUnfinishedWizardChangesNothing) {
    for (const char* script : {"click 1014\nclick 2\n", "click 1014\nclick 1021\nclick 1\n"}) {
        SCOPED_TRACE(script);
        Run(ProductTypeMidspan, script);
        EXPECT_EQ(dlg->m_wizardResult, 2);
        EXPECT_EQ(Snapshots().size(), 1u);
        EXPECT_EQ(File(kMidspanHost + "sp_load.ini"), Example(kMidspanHost + "sp_load.ini"));
        EXPECT_NE(File(kMidspanHost + "SP_SUPPORT/load.ini").find("ProbeSystemName=TK 300"),
                  std::string::npos);
    }
}

TEST_F(NewConfiguration, FormRunOfTheMidspanFamilyWritesTheFormLoaderFirst) {
    Run(ProductTypeMidspan, "click 1014\nclick 1022\nclick 1\nclick 1\n"
                            "select 1058 1\nclick 1\nclick 1\n");
    EXPECT_EQ(dlg->m_actGroup, "FORM");
    EXPECT_EQ(dlg->m_actDriveUnit, "MFU 100:Order-No:6420101");
    EXPECT_EQ(dlg->m_actStand, "No Stand");
    EXPECT_EQ(Snapshots().back().group, "FORM");

    const std::string form = File(kMidspanHost + "form_load.ini");
    EXPECT_NE(form.find("active_section=MFU 100:Order-No:6420101,,Table-manuell\r\n"),
              std::string::npos)
        << form;
    EXPECT_NE(form.find("ini_folder=" + dlg->m_iniFolder + "\r\n"), std::string::npos) << form;
    EXPECT_NE(File(kMidspanHost + "sp_load.ini")
                  .find("active_section=DRIVEUNIT[MFU 100:Order-No:6420101],TABLE[manual],"
                        "MEASURESTAND[No Stand],CONTROL[]\r\nactive=FORM\r\n"),
              std::string::npos);
}

TEST_F(NewConfiguration, KorEConRunWritesTheAppIniThenTheControlFiles) {
    Run(ProductTypeKorECon, "click 1014\nclick 1098\nclick 1\n"
                            "select 1023 0\nclick 1029\nclick 1\n"
                            "click 1\nselect 1067 \"cncproxy\"\nclick 1\nclick 1\n");
    EXPECT_EQ(dlg->m_actGroup, "KORSHAFT");
    EXPECT_EQ(dlg->m_actProxy, "cncproxy");
    EXPECT_EQ(dlg->m_record.folder, dlg->m_iniFolder);
    EXPECT_NE(dlg->m_iniFolder.find("KorShaft\\machines\\KSH 300\\8300001"), std::string::npos)
        << dlg->m_iniFolder;

    const std::string app = File(kKorEConHost + "RigCfg.ini");
    for (const char* line : {"machine=KSH 300\r\n", "order_no=8300001\r\n",
                             "product_group=KORSHAFT\r\n", "proxy=cncproxy\r\n"})
        EXPECT_NE(app.find(line), std::string::npos) << line << app;
    // The control files follow the new machine; no form loader file in this family.
    EXPECT_NE(File(kKorEConHost + "korecon.ini"), Example(kKorEConHost + "korecon.ini"));
    EXPECT_FALSE(fs::exists(root / (kKorEConHost + "form_load.ini")));
}

} // namespace
