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
    using E = ActiveSectionError;
    const std::string written = BuildActiveSectionString({"U", "", "S 1:vertical,S2", "C"});
    EXPECT_EQ(written, "DRIVEUNIT[U],TABLE[],MEASURESTAND[S 1:vertical,S2],CONTROL[C]");
    const std::string longest(1023, 'x');
    const struct {
        std::string text;
        E error;
        std::string parts; // unit|table|stand|control as read
    } cases[] = {
        {written, E::None, "U||S 1:vertical,S2|C"},
        // Leading blanks skipped, trailing kept; absent table and stand in lower case.
        {"DRIVEUNIT [ X ],CONTROL[c1]", E::None, "X |no Table|no Stand|c1"},
        // Keywords and brackets are searched in the raw text.
        {"DRIVEUNIT[MYTABLE[7]],TABLE[real]", E::None, "MYTABLE[7|7|no Stand|"},
        {"DRIVEUNIT X,TABLE[t]", E::None, "t|t|no Stand|"},
        // The control has no error, only a wrong value.
        {"DRIVEUNIT[U],CONTROL[open", E::None, "U|no Table|no Stand|open"},
        {"DRIVEUNIT[U],CONTROLX,TABLE[t]", E::None, "U|t|no Stand|t"},
        {"DRIVEUNIT[" + longest + "]", E::None, longest + "|no Table|no Stand|"},
        {"DRIVEUNIT[" + longest + "x]", E::DriveUnit, ""},
        {"TABLE[t]", E::DriveUnit, ""},
        {"DRIVEUNIT X", E::DriveUnit, ""},
        {"DRIVEUNIT[   ", E::DriveUnit, ""},
        {"DRIVEUNIT[u],TABLE", E::Table, ""},
        {"DRIVEUNIT[u],MEASURESTAND[s", E::Stand, ""},
    };
    for (const auto& c : cases) {
        ActiveSection p;
        ASSERT_EQ(ScanActiveSection(c.text, p), c.error) << c.text;
        if (c.error == E::None) {
            EXPECT_EQ(p.drive_unit + "|" + p.table + "|" + p.stand + "|" + p.control, c.parts);
        }
    }
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
