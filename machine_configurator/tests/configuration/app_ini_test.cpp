#include "rigcfg_files_fixture.h"

using namespace rigcfg_test;

namespace {

constexpr const char* kFreshRigCfg = "[General]\r\ndel_log_file=1\r\nktrace_level=4\r\n";

bool level_on(int level) {
    return _KTrace_TestLevel("RigCfg", level) != 0;
}

using AppIni = FilesTest;

TEST_F(AppIni, TraceLevelFromTheFileHeldToItsRange) {
    auto dlg = make_dialog(ProductTypeMidspan);
    dlg->ReadAppIniFile();
    EXPECT_EQ(read("RigCfg.ini"), kFreshRigCfg);
    EXPECT_TRUE(level_on(4) && !level_on(5));
    EXPECT_TRUE(own_errors().empty());

    write("RigCfg.ini", "[General]\r\ndel_log_file=0\r\nktrace_level=9\r\n");
    age("RigCfg.ini");
    const auto before = mtime("RigCfg.ini");
    dlg->ReadAppIniFile();
    EXPECT_TRUE(level_on(5) && !level_on(6)); // held to 5
    EXPECT_EQ(mtime("RigCfg.ini"), before);

    write("RigCfg.ini", "[General]\r\ndel_log_file=1\r\nktrace_level=-1\r\n");
    dlg->ReadAppIniFile();
    EXPECT_TRUE(level_on(0) && !level_on(1));

    // What parsed before a bad line is used, and saved with the missing key.
    write("RigCfg.ini", "[General]\r\nktrace_level=2\r\nnot an entry\r\nmore=1\r\n");
    dlg->ReadAppIniFile();
    EXPECT_TRUE(level_on(2) && !level_on(3));
    EXPECT_EQ(read("RigCfg.ini"), "[General]\r\nktrace_level=2\r\ndel_log_file=1\r\n");
}

TEST_F(AppIni, ConfigurationSectionInAMidspanRun) {
    auto dlg = make_dialog(ProductTypeMidspan);
    write("RigCfg.ini", std::string(kFreshRigCfg) + "[Configuration]\r\nmachine=A\r\n");
    dlg->ReadAppIniFile();
    EXPECT_TRUE(log.has_error("CfgIniFileMachinIni(): invalid korctrl type #0"));
    EXPECT_FALSE(exists("mtmachineloader.ini"));

    // korctrl turns the run into a KorECon run, and reading writes the machine tree.
    write("RigCfg.ini", std::string(kFreshRigCfg) +
                            "[Configuration]\r\nkorctrl = kor econ ; comment\r\nmachine=XY\r\n"
                            "order_no=1234\r\nproduct_group=FORM\r\n");
    dlg->ReadAppIniFile();
    EXPECT_EQ(dlg->m_productType, ProductTypeKorECon);
    EXPECT_EQ(dlg->m_actDriveUnit, "XY:Order-No:1234");
    EXPECT_EQ(read("mtmachineloader.ini"), "[MachineTree]\r\nroot=korecon\r\n");
}

TEST_F(AppIni, ReadFillsRecordAndStrings) {
    auto dlg = make_dialog(ProductTypeKorECon);
    write("RigCfg.ini", "[Configuration]\r\nkorctrl=korecon\r\nmachine= Kor Shaft 3 // x\r\n"
                        "order_no=12 34\r\nproduct_group=KORSHAFT\r\n"
                        "folder=C:\\machines\\Kor Shaft 3 ;old\r\nproxy=cameraproxy\r\n");
    dlg->m_actControl = "ctl";
    dlg->INICfgFileIO(kApp, 0);
    const ActiveConfigRecord& r = dlg->m_record;
    EXPECT_EQ(r.machine + "|" + r.order_no + "|" + r.product_group + "|" + r.folder + "|" + r.proxy,
              "KorShaft3|1234|KORSHAFT|C:\\machines\\Kor Shaft 3 |cameraproxy");
    EXPECT_EQ(dlg->m_actGroup + "|" + dlg->m_actDriveUnit + "|" + dlg->m_actProxy + "|" +
                  dlg->m_actTable + "|" + dlg->m_actStand + "|" + dlg->m_actControl,
              "KORSHAFT|KorShaft3:Order-No:1234|cameraproxy|No Table|No Stand|");
    EXPECT_TRUE(own_errors().empty());
    EXPECT_EQ(read("mtmachineloader.ini"),
              "[MachineTree]\r\nroot=cameraproxy\r\ncameraproxy=korecon,qidcamera\r\n");
}

TEST_F(AppIni, MissingKeysAndSectionDegrade) {
    auto dlg = make_dialog(ProductTypeKorECon);
    write("RigCfg.ini", kFreshRigCfg);
    EXPECT_TRUE(dlg->CfgIniFileMachinIni(2, nullptr));
    EXPECT_FALSE(dlg->CfgIniFileMachinIni(0, nullptr));
    EXPECT_TRUE(in_error_trace("CfgIniFileMachinIni(): expected section [doesn't exist] "));

    write("RigCfg.ini", "[Configuration]\r\nmachine=M 1\r\n");
    dlg->m_record = {"", "", "", "old", "old"};
    dlg->m_actTable = "T";
    dlg->m_actStand = "S";
    EXPECT_TRUE(dlg->CfgIniFileMachinIni(0, nullptr));
    EXPECT_EQ(dlg->m_record.product_group, "FORM");
    EXPECT_EQ(dlg->m_record.folder + dlg->m_record.proxy, "");
    EXPECT_TRUE(
        log.has_error("CfgIniFileMachinIni(): GetStringEntry(Configuration, proxy) failed"));
    // No order number: the bare machine name, table and stand as they were.
    EXPECT_EQ(dlg->m_actDriveUnit, "M1");
    EXPECT_EQ(dlg->m_actTable + dlg->m_actStand, "TS");
}

TEST_F(AppIni, WriteStoresTheRecordByteForByte) {
    auto dlg = make_dialog(ProductTypeKorECon);
    write("RigCfg.ini", kFreshRigCfg);
    dlg->m_actDriveUnit = "KorShaft 3:Typ:1234";
    dlg->m_actGroup = "KORSHAFT";
    dlg->m_iniFolder = "C:\\machines\\KorShaft 3";
    dlg->m_actProxy = "cameraproxy";
    dlg->INICfgFileIO(kApp, 1);
    EXPECT_EQ(read("RigCfg.ini"),
              "[Configuration]\r\nkorctrl=korecon\r\nmachine=KorShaft 3\r\norder_no=1234\r\n"
              "product_group=KORSHAFT\r\nfolder=C:\\machines\\KorShaft 3\r\nproxy=cameraproxy\r\n" +
                  std::string(kFreshRigCfg));
    EXPECT_TRUE(own_errors().empty());

    // Two tokens: the failure is logged and the old record saved.
    dlg->m_actDriveUnit = "VD 120:COM1";
    EXPECT_FALSE(dlg->CfgIniFileMachinIni(1, nullptr));
    EXPECT_TRUE(in_error_trace("CfgIniFileMachinIni(): ConvertDrvunitStringToNewFormat()failed"));
    EXPECT_TRUE(contains(read("RigCfg.ini"), "machine=KorShaft 3\r\norder_no=1234\r\n"));
}

TEST_F(AppIni, ConvertIniAddsTheGroupOnce) {
    auto dlg = make_dialog(ProductTypeMidspan);
    dlg->ConvertIni(kApp);
    EXPECT_EQ(read("sp_load.ini"), "[General]\r\nactive=CONTOUR/SURFACE\r\n");

    write("sp_load.ini", "[General]\r\nactive_section=DRIVEUNIT[KMQ 2]\r\n[Device]\r\nx=1\r\n");
    dlg->ConvertIni(kApp);
    EXPECT_EQ(read("sp_load.ini"), "[Device]\r\nx=1\r\n[General]\r\n"
                                   "active_section=DRIVEUNIT[KMQ 2]\r\nactive=FORM\r\n");
    write("sp_load.ini", "[General]\r\nactive_section=DRIVEUNIT[ShapeScan]\r\n");
    dlg->ConvertIni(kApp);
    EXPECT_TRUE(contains(read("sp_load.ini"), "active=FORM"));
    write("sp_load.ini", "[General]\r\nactive_section=DRIVEUNIT[kmq 2]\r\n");
    dlg->ConvertIni(kApp);
    EXPECT_TRUE(contains(read("sp_load.ini"), "active=CONTOUR/SURFACE"));

    write("sp_load.ini", "[General]\r\nactive = KORSIM\r\n[A]\r\n");
    age("sp_load.ini");
    const auto before = mtime("sp_load.ini");
    dlg->ConvertIni(kApp);
    EXPECT_EQ(mtime("sp_load.ini"), before);
}

// The board type is read in the control file tests.
TEST_F(AppIni, DynamicPath) {
    auto dlg = make_dialog(ProductTypeKorECon);
    std::string path = "stale";
    EXPECT_FALSE(dlg->GetKorEConDynamicIniPath(path));
    EXPECT_EQ(path, "");
    write("korecon.ini", "[configuration]\r\ndynamic_path= C:\\dyn\\KMX 7\r\n");
    ASSERT_TRUE(dlg->GetKorEConDynamicIniPath(path));
    EXPECT_EQ(path, " C:\\dyn\\KMX 7");
}

} // namespace
