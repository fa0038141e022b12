#include "kplatform_profile.h"
#include "rigcfg_files_fixture.h"

#include <filesystem>
#include <fstream>

using namespace rigcfg_test;

namespace {

constexpr const char* kLoadIniAfterReset =
    "[1]\r\nProbeSystemName=\r\nProbeSystemSerialNo=\r\n[DriveUnit]\r\nIndex=1\r\n";

std::string profile(const std::string& file, const char* key) {
    char buffer[4096] = {};
    korv::platform::GetPrivateProfileStringA("General", key, "<none>", buffer, sizeof buffer,
                                             file.c_str());
    return buffer;
}

class LoaderIni : public FilesTest {
protected:
    void SetUp() override {
        FilesTest::SetUp();
        std::filesystem::create_directories(host("SP_SUPPORT"));
        dlg = make_dialog(ProductTypeMidspan);
    }
    std::string sp_load() const { return std::string(kApp) + "sp_load.ini"; }
    void write_sp_load(const std::string& activeSection, const std::string& active) {
        // The loader's configuration file, so that the catalogue build finds its keys.
        write("loader.cfg", "[TABLE]\r\nfile=tables.ini\r\n[MEASURESTAND]\r\nfile=stands.ini\r\n");
        write("sp_load.ini", "[General]\r\ncfg_path=loader.cfg\r\nactive_section=" + activeSection +
                                 "\r\nactive=" + active + "\r\n");
    }
    void set_members() {
        dlg->m_actGroup = "FORM";
        dlg->m_actDriveUnit = "KMQ 1:Order-No:4711";
        dlg->m_actTable = "automatic";
        dlg->m_actStand = "SZ 750 D:vertical";
        dlg->m_actControl = "ctl";
    }
    void expect_members_untouched() const {
        EXPECT_EQ(dlg->m_actGroup, "G0");
        EXPECT_EQ(dlg->m_actDriveUnit, "U0");
        EXPECT_EQ(dlg->m_actTable, "T0");
        EXPECT_EQ(dlg->m_actStand, "S0");
    }
    void preset_members() {
        dlg->m_actGroup = "G0";
        dlg->m_actDriveUnit = "U0";
        dlg->m_actTable = "T0";
        dlg->m_actStand = "S0";
    }

    std::unique_ptr<CMidSpanCfgDlg> dlg;
};

TEST_F(LoaderIni, ReadTakesTheWholeActiveSection) {
    write_sp_load("DRIVEUNIT[VD 120:COM1],TABLE[T 1],MEASURESTAND[SZ 750 D:vertical,S2],CONTROL[c]",
                  "CONTOUR");
    dlg->m_actProxy = "kept";
    dlg->INICfgFileIO(kApp, 0);
    EXPECT_TRUE(boxes.empty());
    EXPECT_EQ(dlg->m_actGroup, "CONTOUR/SURFACE");
    EXPECT_EQ(dlg->m_actDriveUnit, "VD 120:COM1");
    EXPECT_EQ(dlg->m_actTable, "T 1");
    EXPECT_EQ(dlg->m_actStand, "SZ 750 D:vertical,S2");
    EXPECT_EQ(dlg->m_actControl, "c");
    EXPECT_EQ(dlg->m_actProxy, "kept");
    EXPECT_EQ(dlg->m_standDisplay, "SZ 750 D:vertical, S2");
    EXPECT_TRUE(own_errors().empty());
    // No window: the refresh stays on the members' side and logs nothing.
    EXPECT_FALSE(dlg->has_window());

    write_sp_load("DRIVEUNIT[X],CONTROL[]", "SURFACE");
    dlg->INICfgFileIO(kApp, 0);
    EXPECT_EQ(dlg->m_actGroup, "CONTOUR/SURFACE");
    EXPECT_EQ(dlg->m_actTable, "no Table");
    EXPECT_EQ(dlg->m_actStand, "no Stand");
}

TEST_F(LoaderIni, MissingFileShowsTwoSentencesAndCreatesNothing) {
    dlg->INICfgFileIO(kApp, 0);
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].text, "Error: INI-file 'sp_load.ini' could not be found.msg\n\n"
                             "Select the directory where the specific Loader DLL is.msg");
    EXPECT_EQ(boxes[0].type, korv::ui::MB_ICONERROR);
    EXPECT_TRUE(
        log.has_error(std::string("INICfgFileIO(): can't find file ") + kApp + "sp_load.ini"));
    EXPECT_FALSE(exists("sp_load.ini"));
    // A write stops at the same check, and load.ini is left alone.
    write("SP_SUPPORT/load.ini", "[x]\r\na=1\r\n");
    set_members();
    dlg->INICfgFileIO(kApp, 1);
    EXPECT_EQ(boxes.size(), 2u);
    EXPECT_EQ(read("SP_SUPPORT/load.ini"), "[x]\r\na=1\r\n");
}

TEST_F(LoaderIni, MissingCfgPathStopsBeforeReading) {
    write("sp_load.ini", "[General]\r\nactive_section=DRIVEUNIT[U]\r\nactive=FORM\r\n");
    preset_members();
    dlg->INICfgFileIO(kApp, 0);
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].text,
              "Error: Entry 'cfg_path' in section [General] of INI file could not be found.msg");
    EXPECT_TRUE(log.has_error("INICfFileIO(): could not found [GENERAL] cfg_path= in "));
    expect_members_untouched();
}

TEST_F(LoaderIni, ReadOnlyFileIsMadeWritable) {
    write_sp_load("DRIVEUNIT[U]", "FORM");
    std::filesystem::permissions(host("sp_load.ini"), std::filesystem::perms::owner_read,
                                 std::filesystem::perm_options::replace);
    dlg->INICfgFileIO(kApp, 0);
    EXPECT_EQ(dlg->m_actDriveUnit, "U");
    EXPECT_TRUE(has_trace("INICfgFileIO(): change acces of file "));
    const auto perms = std::filesystem::status(host("sp_load.ini")).permissions();
    EXPECT_EQ(perms, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(LoaderIni, EachRejectedReadHasItsBoxAndChangesNothing) {
    const struct {
        std::string section;
        std::string active;
        const char* box;
        const char* trace;
    } cases[] = {
        {"?", "FORM", "No active configuration could be found in INI file.msg",
         "ReadSpLoadIni(): could not found [GENERAL] active_section= in "},
        {"DRIVEUNIT[U]", "", "File: 'cfg_path' [Device] 'active=' no product group defined.msg",
         "ReadSpLoadIni(): could not found [DEVICE] active= in "},
        {"DRIVEUNIT[U", "FORM",
         "Found invalid configuration string format or no valid drive unit defined!.msg",
         "ReadSpLoadIni(): Found invalid configuration string format or no valid drive unit "
         "defined "},
        {"DRIVEUNIT X", "FORM",
         "Found invalid configuration string format or no valid drive unit defined!.msg",
         "no valid drive unit defined "},
        // A value of 2000 bytes is cut by the read buffer and loses its bracket.
        {"DRIVEUNIT[" + std::string(2000, 'x') + "]", "FORM",
         "Found invalid configuration string format or no valid drive unit defined!.msg",
         "no valid drive unit defined "},
        {"DRIVEUNIT[U],TABLE[" + std::string(2000, 't') + "]", "FORM",
         "Found invalid configuration string format or no valid table unit defined.msg",
         "ReadSpLoadIni(): Found invalid configuration string format or no valid table unit "
         "defined "},
        {"DRIVEUNIT[U],TABLE[t],MEASURESTAND", "FORM",
         "Found invalid configuration string format or no valid measurestand unit defined.msg",
         "ReadSpLoadIni(): Found invalid configuration string format or no valid measurestand "
         "unit defined "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.section.substr(0, 40));
        write_sp_load(c.section, c.active);
        const std::string before = read("sp_load.ini");
        preset_members();
        boxes.clear();
        log.clear();
        dlg->INICfgFileIO(kApp, 0);
        ASSERT_EQ(boxes.size(), 1u);
        EXPECT_EQ(boxes[0].text, c.box);
        EXPECT_TRUE(log.has_error(c.trace));
        EXPECT_TRUE(log.has_error("INICfgFileIO(): ReadSpLoadIni("));
        EXPECT_TRUE(log.has_error("INICfgFileIO() failed"));
        expect_members_untouched();
        EXPECT_EQ(read("sp_load.ini"), before);
    }
}

TEST_F(LoaderIni, WriteStoresTheSectionAndResetsLoadIni) {
    write_sp_load("DRIVEUNIT[old]", "CONTOUR");
    write("SP_SUPPORT/load.ini", "[1]\r\nProbeSystemName=TS 1\r\nProbeSystemSerialNo=99\r\n"
                                 "[Extra]\r\nkeep=no\r\n[DriveUnit]\r\nIndex=3\r\n");
    set_members();
    dlg->INICfgFileIO(kApp, 1);
    EXPECT_TRUE(boxes.empty());
    EXPECT_EQ(profile(host("sp_load.ini"), "active_section"),
              "DRIVEUNIT[KMQ 1:Order-No:4711],TABLE[automatic],MEASURESTAND[SZ 750 "
              "D:vertical],CONTROL[ctl]");
    EXPECT_EQ(profile(host("sp_load.ini"), "active"), "FORM");
    EXPECT_EQ(profile(host("sp_load.ini"), "cfg_path"), "loader.cfg");
    EXPECT_EQ(read("SP_SUPPORT/load.ini"), kLoadIniAfterReset);

    // What was written reads back as it was.
    auto again = make_dialog(ProductTypeMidspan);
    again->INICfgFileIO(kApp, 0);
    EXPECT_EQ(again->m_actDriveUnit, dlg->m_actDriveUnit);
    EXPECT_EQ(again->m_actTable, dlg->m_actTable);
    EXPECT_EQ(again->m_actStand, dlg->m_actStand);
    EXPECT_EQ(again->m_actControl, dlg->m_actControl);
    EXPECT_EQ(again->m_actGroup, dlg->m_actGroup);
}

TEST_F(LoaderIni, EmptyDriveUnitWritesNothingButStillResets) {
    write_sp_load("DRIVEUNIT[old]", "CONTOUR");
    const std::string before = read("sp_load.ini");
    write("SP_SUPPORT/load.ini", "[1]\r\nProbeSystemName=TS 1\r\n");
    set_members();
    dlg->m_actDriveUnit.clear();
    dlg->INICfgFileIO(kApp, 1);
    EXPECT_TRUE(boxes.empty());
    EXPECT_EQ(read("sp_load.ini"), before);
    EXPECT_EQ(read("SP_SUPPORT/load.ini"), kLoadIniAfterReset);
    EXPECT_TRUE(log.has_error("INICfgFileIO(): WriteSpLoadIni("));
}

TEST_F(LoaderIni, FailedWriteShowsItsBox) {
    set_members();
    const std::string path = std::string(kApp) + "missing\\sp_load.ini";
    EXPECT_FALSE(dlg->WriteSpLoadIni(path));
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].text, "Error: Writing of new configuration to INI file failed.msg");
    EXPECT_TRUE(in_error_trace("INICfgFileIo(): writing active configuration to file '" + path +
                               "' failed"));
    EXPECT_FALSE(exists("missing"));
}

TEST_F(LoaderIni, InvalidTypeIsLogged) {
    write_sp_load("DRIVEUNIT[U]", "FORM");
    dlg->INICfgFileIO(kApp, 2);
    EXPECT_TRUE(log.has_error("INICfgFileIO(): invalid type #2"));
    EXPECT_EQ(dlg->m_actDriveUnit, "");
}

TEST_F(LoaderIni, ResetFailuresAreDumpedAndLeaveTheFile) {
    // A load.ini that does not parse stays as it is.
    write("SP_SUPPORT/load.ini", "[1]\r\nno equals sign here\r\n");
    dlg->ResetLoadIni();
    EXPECT_TRUE(
        log.has_error(std::string("ResetLoadIni() for ") + kApp + "SP_SUPPORT\\load.ini failed"));
    EXPECT_EQ(read("SP_SUPPORT/load.ini"), "[1]\r\nno equals sign here\r\n");

    // Without its folder the save fails.
    std::filesystem::remove_all(host("SP_SUPPORT"));
    log.clear();
    dlg->ResetLoadIni();
    EXPECT_TRUE(log.has_error("ResetLoadIni(): mini::Save() failed"));
    EXPECT_TRUE(log.has_error("ResetLoadIni() for "));
    EXPECT_FALSE(exists("SP_SUPPORT"));
}

TEST_F(LoaderIni, FormLoadFileIsCreatedAndWritten) {
    set_members();
    dlg->m_iniFolder = "C:\\machines\\KMQ 1";
    dlg->m_iniFile = "KMQ 1.ini";
    const std::string path = std::string(kApp) + "form_load.ini";
    dlg->WriteFormLoadIni(path);
    EXPECT_TRUE(log.has_error("OnButtonNew(): can't find file " + path));
    EXPECT_TRUE(boxes.empty());
    EXPECT_EQ(profile(host("form_load.ini"), "active_section"),
              "KMQ 1:Order-No:4711,,Table-automatic");
    EXPECT_EQ(profile(host("form_load.ini"), "ini_folder"), "C:\\machines\\KMQ 1");
    EXPECT_EQ(profile(host("form_load.ini"), "ini_file"), "KMQ 1.ini");

    // An existing read-only file is opened up and rewritten in place.
    std::filesystem::permissions(host("form_load.ini"), std::filesystem::perms::owner_read,
                                 std::filesystem::perm_options::replace);
    dlg->m_actTable = "Automatic";
    log.clear();
    dlg->WriteFormLoadIni(path);
    EXPECT_FALSE(log.has_error("can't find file"));
    EXPECT_TRUE(has_trace("OnButtonNew(): change acces of file " + path));
    EXPECT_EQ(profile(host("form_load.ini"), "active_section"),
              "KMQ 1:Order-No:4711,,Table-manuell");
}

TEST_F(LoaderIni, FormLoadFailuresShowABoxPerKey) {
    set_members();
    dlg->m_iniFolder = "F";
    const std::string path = std::string(kApp) + "missing\\form_load.ini";
    dlg->WriteFormLoadIni(path);
    ASSERT_EQ(boxes.size(), 3u);
    EXPECT_EQ(boxes[0].text,
              "Error: Writing of new measurement configuration to 'form_load.ini' file failed.msg");
    EXPECT_EQ(boxes[1].text, "Error: Writing of new configuration to CFG file failed.msg");
    EXPECT_EQ(boxes[2].text, boxes[1].text);
    EXPECT_TRUE(log.has_error("OnButtonNew(): Writing of new measurement configuration to '" +
                              path + "' failed"));
    EXPECT_EQ(log.errors().back(),
              "INICfgFileIo(): writing ini file folder 'F' to filer '" + path + "' failed");
}

// The real headless host, chosen through the environment as a run would.
TEST_F(LoaderIni, BoxReachesTheHeadlessTranscript) {
    korv::ui::reset_host_selection();
    root.write("script.txt", "answer ok\n");
    korv::testing::ScopedEnv script("KORV_UI_SCRIPT", root / "script.txt");
    korv::testing::ScopedEnv transcript("KORV_UI_TRANSCRIPT", root / "transcript.txt");
    dlg->INICfgFileIO(kApp, 0);
    korv::ui::reset_host_selection();
    EXPECT_EQ(root.read("transcript.txt"),
              "message box error ok \"Error: INI-file 'sp_load.ini' could not be found.msg\\n\\n"
              "Select the directory where the specific Loader DLL is.msg\" -> ok\n");
}

} // namespace
