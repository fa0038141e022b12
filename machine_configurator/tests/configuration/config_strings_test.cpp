#include "log_capture.h"
#include "main_dialog/RigCfgDlg.h"

#include <gtest/gtest.h>

#include <string>

TEST(ConfigStrings, GroupKeyFoldsDifferOnlyInKorSurf) {
    for (const char* key : {"CONTOUR", "CONTOUR/SURFACE", "SURFACE", "form", ""}) {
        EXPECT_EQ(NormaliseGroupKey(key), "CONTOUR/SURFACE") << key;
        EXPECT_EQ(NormaliseGroupKeyAtStart(key), "CONTOUR/SURFACE") << key;
    }
    for (const char* key : {"FORM", "KORSIM", "KORSHAFT", "KORGEAR", "KOROPTO",
                            "PLATFORM_COMPONENTS", "PRECIKOR", "KORGEOMETRY"}) {
        EXPECT_EQ(NormaliseGroupKey(key), key);
        EXPECT_EQ(NormaliseGroupKeyAtStart(key), key);
    }
    EXPECT_EQ(NormaliseGroupKey("KORSURF"), "KORSURF");
    EXPECT_EQ(NormaliseGroupKeyAtStart("KORSURF"), "CONTOUR/SURFACE");
}

TEST(ConfigStrings, ActiveSectionWriterAndLooseScanner) {
    const std::string written = BuildActiveSectionString({"U", "", "S 1:vertical,S2", "C"});
    EXPECT_EQ(written, "DRIVEUNIT[U],TABLE[],MEASURESTAND[S 1:vertical,S2],CONTROL[C]");
    ActiveSection p;
    ASSERT_EQ(ScanActiveSection(written, p), ActiveSectionError::None);
    EXPECT_EQ(p.table, "");
    EXPECT_EQ(p.stand, "S 1:vertical,S2");

    // Leading blanks skipped, trailing kept; absent table and stand in lower case.
    ASSERT_EQ(ScanActiveSection("DRIVEUNIT [ X ],CONTROL[c1]", p), ActiveSectionError::None);
    EXPECT_EQ(p.drive_unit, "X ");
    EXPECT_EQ(p.table, "no Table");
    EXPECT_EQ(p.stand, "no Stand");
    EXPECT_EQ(p.control, "c1");
    // Keywords and brackets are searched in the raw text.
    ASSERT_EQ(ScanActiveSection("DRIVEUNIT[MYTABLE[7]],TABLE[real]", p), ActiveSectionError::None);
    EXPECT_EQ(p.drive_unit, "MYTABLE[7");
    EXPECT_EQ(p.table, "7");
    ASSERT_EQ(ScanActiveSection("DRIVEUNIT X,TABLE[t]", p), ActiveSectionError::None);
    EXPECT_EQ(p.drive_unit, "t");
    // The control has no error, only a wrong value.
    ASSERT_EQ(ScanActiveSection("DRIVEUNIT[U],CONTROL[open", p), ActiveSectionError::None);
    EXPECT_EQ(p.control, "open");
    ASSERT_EQ(ScanActiveSection("DRIVEUNIT[U],CONTROLX,TABLE[t]", p), ActiveSectionError::None);
    EXPECT_EQ(p.control, "t");

    EXPECT_EQ(ScanActiveSection("TABLE[t]", p), ActiveSectionError::DriveUnit);
    EXPECT_EQ(ScanActiveSection("DRIVEUNIT X", p), ActiveSectionError::DriveUnit);
    EXPECT_EQ(ScanActiveSection("DRIVEUNIT[   ", p), ActiveSectionError::DriveUnit);
    EXPECT_EQ(ScanActiveSection("DRIVEUNIT[" + std::string(1024, 'x') + "]", p),
              ActiveSectionError::DriveUnit);
    EXPECT_EQ(ScanActiveSection("DRIVEUNIT[" + std::string(1023, 'x') + "]", p),
              ActiveSectionError::None);
    EXPECT_EQ(ScanActiveSection("DRIVEUNIT[u],TABLE", p), ActiveSectionError::Table);
    EXPECT_EQ(ScanActiveSection("DRIVEUNIT[u],MEASURESTAND[s", p), ActiveSectionError::Stand);
}

TEST(ConfigStrings, FormLoadStandAndMachineDisplay) {
    EXPECT_EQ(BuildFormLoadString("K:Order-No:5", "automatic"), "K:Order-No:5,,Table-automatic");
    EXPECT_EQ(BuildFormLoadString("U", "Automatic"), "U,,Table-manuell");

    std::string stand;
    ASSERT_TRUE(StandStringFromListText("SZ 750 D (vert.)", stand));
    EXPECT_EQ(stand, "SZ 750 D:vertical");
    ASSERT_TRUE(StandStringFromListText(std::string(255, 's') + " (hor.)", stand));
    EXPECT_EQ(stand, std::string(255, 's') + ":horizontal");
    {
        korv::testing::LogCapture log;
        EXPECT_FALSE(StandStringFromListText(std::string(256, 's') + " (hor.)", stand));
        EXPECT_EQ(log.errors().size(), 1u);
    }
    // No catalogue is loaded here, so pieces translate to themselves.
    EXPECT_EQ(BuildStandDisplay(",SZ 750 D:vertical,,S 2"), "SZ 750 D:vertical, S 2");

    std::string display = "old";
    ASSERT_TRUE(BuildMachineDisplay("KorShaft 3:Order-No:1234", "Type", display));
    EXPECT_EQ(display, "KorShaft 3:Type:1234");
    EXPECT_FALSE(BuildMachineDisplay("KorShaft 3:Order-No", "Type", display));
    EXPECT_EQ(display, "KorShaft 3:Type:1234");
}

std::string joined(const ActiveConfigRecord& r) {
    return r.order_no + "|" + r.machine + "|" + r.product_group + "|" + r.folder + "|" + r.proxy;
}

TEST(ConfigStrings, ConvertDrvunitNeedsExactlyThreeTokens) {
    CMidSpanCfgDlg dlg(ProductTypeKorECon, "C:\\d\\", "C:\\d\\", nullptr);
    ActiveConfigRecord record{"no", "machine", "GROUP", "folder", "proxy"};
    ASSERT_TRUE(dlg.ConvertDrvunitStringToNewFormat("A::Order-No::7", "", "", "", record));
    // Empty texts keep group and folder; the proxy is always taken.
    EXPECT_EQ(joined(record), "7|A|GROUP|folder|");
    ASSERT_TRUE(dlg.ConvertDrvunitStringToNewFormat("B:x:8", "FORM", "F", "cncproxy", record));

    // Failures leave the record and name the member, not the argument, with no closing quote.
    dlg.m_actDriveUnit = "member text";
    for (const char* text : {"A:B", "A:Order-No:", "VD 120:COM1", "a:b:c:d"}) {
        korv::testing::LogCapture log;
        EXPECT_FALSE(dlg.ConvertDrvunitStringToNewFormat(text, "KORSIM", "x", "p", record));
        EXPECT_EQ(log.errors(), std::vector<std::string>{"CfgIniFileMachinIni(): invalid data for "
                                                         "m_actDriveUnit ='member text"});
    }
    EXPECT_EQ(joined(record), "8|B|FORM|F|cncproxy");
}
