#include "rigcfg_files_fixture.h"

#include <filesystem>

using namespace rigcfg_test;
namespace fs = std::filesystem;

namespace {

constexpr const char* kLoadIniAfterReset =
    "[1]\r\nProbeSystemName=\r\nProbeSystemSerialNo=\r\n[DriveUnit]\r\nIndex=1\r\n";

class LoaderIni : public FilesTest {
protected:
    void SetUp() override {
        FilesTest::SetUp();
        fs::create_directories(host("SP_SUPPORT"));
        dlg = make_dialog(ProductTypeMidspan);
    }
    void write_sp_load(const std::string& activeSection, const std::string& active) {
        // The loader's configuration file, so that the catalogue build finds its keys.
        write("loader.cfg", "[TABLE]\r\nfile=t.ini\r\n[MEASURESTAND]\r\nfile=s.ini\r\n");
        write("sp_load.ini", "[General]\r\ncfg_path=loader.cfg\r\nactive_section=" + activeSection +
                                 "\r\nactive=" + active + "\r\n");
    }
    void set_members(const std::string& group, const std::string& unit) {
        dlg->m_actGroup = group;
        dlg->m_actDriveUnit = unit;
        dlg->m_actTable = "automatic";
        dlg->m_actStand = "SZ 750 D:vertical";
        dlg->m_actControl = "ctl";
    }
    std::unique_ptr<CMidSpanCfgDlg> dlg;
};

TEST_F(LoaderIni, ReadTakesTheWholeActiveSection) {
    write_sp_load("DRIVEUNIT[VD 120:COM1],TABLE[T 1],MEASURESTAND[SZ 750 D:vertical,S2],CONTROL[c]",
                  "CONTOUR");
    dlg->m_actProxy = "kept";
    dlg->INICfgFileIO(kApp, 0);
    EXPECT_TRUE(boxes.empty());
    EXPECT_TRUE(own_errors().empty()); // no window: the refresh logs nothing
    EXPECT_EQ(dlg->m_actGroup, "CONTOUR/SURFACE");
    EXPECT_EQ(dlg->m_actDriveUnit + "|" + dlg->m_actTable + "|" + dlg->m_actStand + "|" +
                  dlg->m_actControl + "|" + dlg->m_actProxy,
              "VD 120:COM1|T 1|SZ 750 D:vertical,S2|c|kept");
    EXPECT_EQ(dlg->m_standDisplay, "SZ 750 D:vertical, S2");
}

TEST_F(LoaderIni, MissingFileShowsTwoTranslatedSentencesAndChangesNothing) {
    root.write("locale/de/RigCfg.po",
               slurp(source_tree() / "machine_configurator/locale/de/config.po"));
    Translate_init("", root.path(), "de", "RigCfg");
    write("SP_SUPPORT/load.ini", "[x]\r\na=1\r\n");
    set_members("FORM", "U");
    dlg->INICfgFileIO(kApp, 1);
    Translate_init("", root / "none", "en", "RigCfg");
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].text, "Fehler: Die INI-Datei 'sp_load.ini' wurde nicht gefunden.\n\n"
                             "Bitte wählen Sie das Verzeichnis der zugehörigen Loader-DLL aus.");
    EXPECT_FALSE(exists("sp_load.ini"));
    EXPECT_EQ(read("SP_SUPPORT/load.ini"), "[x]\r\na=1\r\n");
}

TEST_F(LoaderIni, EachRejectedReadHasItsBoxAndChangesNothing) {
    const struct {
        std::string section, active;
        const char* box;
    } cases[] = {
        {"?", "FORM", "No active configuration could be found in INI file.msg"},
        {"DRIVEUNIT[U]", "", "File: 'cfg_path' [Device] 'active=' no product group defined.msg"},
        {"DRIVEUNIT[U", "FORM",
         "Found invalid configuration string format or no valid drive unit defined!.msg"},
        // 2000 bytes are cut by the read buffer, and the value loses its bracket.
        {"DRIVEUNIT[U],TABLE[" + std::string(2000, 't') + "]", "FORM",
         "Found invalid configuration string format or no valid table unit defined.msg"},
        {"DRIVEUNIT[U],MEASURESTAND", "FORM",
         "Found invalid configuration string format or no valid measurestand unit defined.msg"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.box);
        write_sp_load(c.section, c.active);
        const std::string before = read("sp_load.ini");
        set_members("G0", "U0");
        boxes.clear();
        dlg->INICfgFileIO(kApp, 0);
        ASSERT_EQ(boxes.size(), 1u);
        EXPECT_EQ(boxes[0].text, c.box);
        EXPECT_EQ(dlg->m_actGroup + dlg->m_actDriveUnit + dlg->m_actTable, "G0U0automatic");
        EXPECT_EQ(read("sp_load.ini"), before);
    }
}

TEST_F(LoaderIni, WriteStoresTheSectionAndResetsLoadIni) {
    write_sp_load("DRIVEUNIT[old]", "CONTOUR");
    write("SP_SUPPORT/load.ini", "[1]\r\nProbeSystemName=TS 1\r\n[Extra]\r\nkeep=no\r\n");
    set_members("FORM", "KMQ 1:Order-No:4711");
    dlg->INICfgFileIO(kApp, 1);
    EXPECT_TRUE(boxes.empty());
    EXPECT_EQ(value("sp_load.ini", "General", "active_section"),
              "DRIVEUNIT[KMQ 1:Order-No:4711],TABLE[automatic],"
              "MEASURESTAND[SZ 750 D:vertical],CONTROL[ctl]");
    EXPECT_EQ(value("sp_load.ini", "General", "active"), "FORM");
    EXPECT_EQ(value("sp_load.ini", "General", "cfg_path"), "loader.cfg");
    EXPECT_EQ(read("SP_SUPPORT/load.ini"), kLoadIniAfterReset);

    // An empty drive unit writes nothing, and the reset comes all the same.
    const std::string before = read("sp_load.ini");
    write("SP_SUPPORT/load.ini", "[1]\r\nProbeSystemName=TS 1\r\n");
    dlg->m_actDriveUnit.clear();
    dlg->INICfgFileIO(kApp, 1);
    EXPECT_TRUE(boxes.empty());
    EXPECT_EQ(read("sp_load.ini"), before);
    EXPECT_EQ(read("SP_SUPPORT/load.ini"), kLoadIniAfterReset);
}

TEST_F(LoaderIni, FailedWritesShowTheirBoxes) {
    set_members("FORM", "U");
    const std::string sp = std::string(kApp) + "missing\\sp_load.ini";
    EXPECT_FALSE(dlg->WriteSpLoadIni(sp));
    dlg->WriteFormLoadIni(std::string(kApp) + "missing\\form_load.ini");
    ASSERT_EQ(boxes.size(), 4u);
    EXPECT_EQ(boxes[0].text, "Error: Writing of new configuration to INI file failed.msg");
    EXPECT_EQ(boxes[1].text,
              "Error: Writing of new measurement configuration to 'form_load.ini' file failed.msg");
    EXPECT_EQ(boxes[2].text, "Error: Writing of new configuration to CFG file failed.msg");
    EXPECT_EQ(boxes[3].text, boxes[2].text);
    EXPECT_FALSE(exists("missing"));
}

// What a new file holds shows in the form run of the New button.
TEST_F(LoaderIni, ReadOnlyFormLoadFileIsOpenedUpAndRewritten) {
    set_members("FORM", "KMQ 1:Order-No:4711");
    write("form_load.ini", "[General]\r\nini_file=A.ini\r\n");
    fs::permissions(host("form_load.ini"), fs::perms::owner_read, fs::perm_options::replace);
    dlg->m_iniFile = "B.ini";
    dlg->WriteFormLoadIni(std::string(kApp) + "form_load.ini");
    EXPECT_EQ(value("form_load.ini", "General", "ini_file"), "B.ini");
    EXPECT_EQ(value("form_load.ini", "General", "active_section"),
              "KMQ 1:Order-No:4711,,Table-automatic");
    EXPECT_TRUE(boxes.empty());
}

TEST_F(LoaderIni, ResetFailuresAreDumpedAndLeaveTheFile) {
    write("SP_SUPPORT/load.ini", "[1]\r\nno equals sign\r\n");
    dlg->ResetLoadIni();
    EXPECT_TRUE(
        log.has_error(std::string("ResetLoadIni() for ") + kApp + "SP_SUPPORT\\load.ini failed"));
    EXPECT_EQ(read("SP_SUPPORT/load.ini"), "[1]\r\nno equals sign\r\n");

    fs::remove_all(host("SP_SUPPORT"));
    dlg->ResetLoadIni();
    EXPECT_TRUE(log.has_error("ResetLoadIni(): mini::Save() failed"));
}

} // namespace
