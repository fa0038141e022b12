// The New button end to end in-process: the main dialog and the wizard over a
// scratch copy of the example installation, driven by a headless script; what
// the members, the history and the files hold afterwards.
#include "rigcfg_files_fixture.h"

#include "ui_headless_host.h"

namespace fs = std::filesystem;

namespace {

using rigcfg_test::contains;

constexpr const char* kKorEConPrograms = "C:\\Program Files\\Korv\\KorECon\\";

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

class NewConfiguration : public rigcfg_test::ExamplesTest {
protected:
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
        dlg = std::make_unique<CMidSpanCfgDlg>(type, korecon ? kKorECon : kMidspan,
                                               korecon ? kKorEConPrograms : kMidspan, nullptr);
        const int result = dlg->DoModal();
        korv::ui::reset_host_selection(); // the transcript is complete
        EXPECT_EQ(transcript.find("! "), std::string::npos) << transcript;
        return result;
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
    EXPECT_TRUE(
        contains(file(kMidspanHost + "sp_load.ini"),
                 "active_section=DRIVEUNIT[VD 120:COM1],TABLE[Rotary Table TB 50],"
                 "MEASURESTAND[SZ 750 D:horizontal],CONTROL[]\r\nactive=CONTOUR/SURFACE\r\n"));
    // Only a form group touches the form loader's file.
    EXPECT_EQ(file(kMidspanHost + "form_load.ini"), example(kMidspanHost + "form_load.ini"));
}

TEST_F(NewConfiguration, ACancelOrAnUnfinishedWizardChangesNothing) {
    for (const char* script : {"click 1014\nclick 2\n", "click 1014\nclick 1021\nclick 1\n"}) {
        SCOPED_TRACE(script);
        Run(ProductTypeMidspan, script);
        EXPECT_EQ(dlg->m_wizardResult, 2);
        EXPECT_EQ(Snapshots().size(), 1u);
        EXPECT_EQ(file(kMidspanHost + "sp_load.ini"), example(kMidspanHost + "sp_load.ini"));
        EXPECT_TRUE(contains(file(kMidspanHost + "SP_SUPPORT/load.ini"), "ProbeSystemName=TK 300"));
    }
}

TEST_F(NewConfiguration, FormRunOfTheMidspanFamilyWritesTheFormLoaderFirst) {
    Run(ProductTypeMidspan, "click 1014\nclick 1022\nclick 1\nclick 1\n"
                            "select 1058 1\nclick 1\nclick 1\n");
    EXPECT_EQ(dlg->m_actGroup + "|" + dlg->m_actDriveUnit + "|" + dlg->m_actStand,
              "FORM|MFU 100:Order-No:6420101|No Stand");
    EXPECT_EQ(Snapshots().back().group, "FORM");
    const std::string form = file(kMidspanHost + "form_load.ini");
    EXPECT_TRUE(contains(form, "active_section=MFU 100:Order-No:6420101,,Table-manuell\r\n"));
    EXPECT_TRUE(contains(form, "ini_folder=" + dlg->m_iniFolder + "\r\n"));
    EXPECT_TRUE(contains(file(kMidspanHost + "sp_load.ini"),
                         "active_section=DRIVEUNIT[MFU 100:Order-No:6420101],TABLE[manual],"
                         "MEASURESTAND[No Stand],CONTROL[]\r\nactive=FORM\r\n"));
}

TEST_F(NewConfiguration, KorEConRunWritesTheAppIniThenTheControlFiles) {
    Run(ProductTypeKorECon, "click 1014\nclick 1098\nclick 1\n"
                            "select 1023 0\nclick 1029\nclick 1\n"
                            "click 1\nselect 1067 \"cncproxy\"\nclick 1\nclick 1\n");
    EXPECT_EQ(dlg->m_actGroup + "|" + dlg->m_actProxy, "KORSHAFT|cncproxy");
    EXPECT_TRUE(contains(dlg->m_iniFolder, "KorShaft\\machines\\KSH 300\\8300001"));
    EXPECT_TRUE(
        contains(file(kKorEConHost + "RigCfg.ini"),
                 "machine=KSH 300\r\norder_no=8300001\r\nproduct_group=KORSHAFT\r\nfolder=" +
                     dlg->m_iniFolder + "\r\nproxy=cncproxy\r\n"));
    // The control files follow the new machine; no form loader file in this family.
    EXPECT_NE(file(kKorEConHost + "korecon.ini"), example(kKorEConHost + "korecon.ini"));
    EXPECT_FALSE(fs::exists(root / (kKorEConHost + "form_load.ini")));
}

} // namespace
