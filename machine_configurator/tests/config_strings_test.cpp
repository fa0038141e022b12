#include "RigCfgDlg.h"
#include "log_capture.h"

#include <gtest/gtest.h>

#include <string>

TEST(GroupKey, TwoFoldsDifferOnlyInKorSurf) {
    EXPECT_EQ(NormaliseGroupKey("CONTOUR"), "CONTOUR/SURFACE");
    EXPECT_EQ(NormaliseGroupKey("CONTOUR/SURFACE"), "CONTOUR/SURFACE");
    EXPECT_EQ(NormaliseGroupKey("SURFACE"), "CONTOUR/SURFACE");
    EXPECT_EQ(NormaliseGroupKey("form"), "CONTOUR/SURFACE"); // case-sensitive
    EXPECT_EQ(NormaliseGroupKey(""), "CONTOUR/SURFACE");
    for (const char* key : {"FORM", "KORSIM", "KORSHAFT", "KORGEAR", "KOROPTO",
                            "PLATFORM_COMPONENTS", "PRECIKOR", "KORSURF", "KORGEOMETRY"}) {
        EXPECT_EQ(NormaliseGroupKey(key), key);
        if (std::string(key) != "KORSURF") {
            EXPECT_EQ(NormaliseGroupKeyAtStart(key), key);
        }
    }
    EXPECT_EQ(NormaliseGroupKeyAtStart("KORSURF"), "CONTOUR/SURFACE");
    EXPECT_EQ(NormaliseGroupKeyAtStart("CONTOUR"), "CONTOUR/SURFACE");
}

TEST(StringHelpers, TokensDropEmptyPiecesAndCommentsGo) {
    EXPECT_EQ(TokenizeString("A::Order-No::7", ":"),
              (std::vector<std::string>{"A", "Order-No", "7"}));
    EXPECT_EQ(TokenizeString(":::", ":"), std::vector<std::string>{});
    EXPECT_EQ(TokenizeString("VD 120,,,,,,,:COM1:switch", ":"),
              (std::vector<std::string>{"VD 120,,,,,,,", "COM1", "switch"}));
    EXPECT_EQ(StripCommentAndWhitespace(" Kor Shaft ; note"), "KorShaft");
    EXPECT_EQ(StripCommentAndWhitespace("KECPU // board /* x"), "KECPU");
    EXPECT_EQ(StripComment("C:\\a b ; c"), "C:\\a b ");
    EXPECT_EQ(StripWhitespace("\ta b\r\n"), "ab");
}

TEST(ActiveSection, WriterFormIsExact) {
    EXPECT_EQ(BuildActiveSectionString({"VD 120:COM1", "T 1", "SZ 750 D:vertical,S2", ""}),
              "DRIVEUNIT[VD 120:COM1],TABLE[T 1],MEASURESTAND[SZ 750 D:vertical,S2],CONTROL[]");
    ActiveSection parts;
    ASSERT_EQ(ScanActiveSection(BuildActiveSectionString({"U", "T", "S", "C"}), parts),
              ActiveSectionError::None);
    EXPECT_EQ(parts.drive_unit, "U");
    EXPECT_EQ(parts.table, "T");
    EXPECT_EQ(parts.stand, "S");
    EXPECT_EQ(parts.control, "C");
}

TEST(ActiveSection, ScannerIsLoose) {
    ActiveSection parts;
    // Leading blanks skipped, trailing kept; absent table and stand in lower case.
    ASSERT_EQ(ScanActiveSection("DRIVEUNIT [ X ],CONTROL[c1]", parts), ActiveSectionError::None);
    EXPECT_EQ(parts.drive_unit, "X ");
    EXPECT_EQ(parts.table, "no Table");
    EXPECT_EQ(parts.stand, "no Stand");
    EXPECT_EQ(parts.control, "c1");

    // A keyword inside an earlier value is found first.
    ASSERT_EQ(ScanActiveSection("DRIVEUNIT[MYTABLE[7]],TABLE[real]", parts),
              ActiveSectionError::None);
    EXPECT_EQ(parts.drive_unit, "MYTABLE[7");
    EXPECT_EQ(parts.table, "7");

    // The bracket is looked for anywhere behind the keyword.
    ASSERT_EQ(ScanActiveSection("DRIVEUNIT X,TABLE[t]", parts), ActiveSectionError::None);
    EXPECT_EQ(parts.drive_unit, "t");
    EXPECT_EQ(parts.table, "t");

    // The control scan has no error, only a wrong value.
    ASSERT_EQ(ScanActiveSection("DRIVEUNIT[U],CONTROL", parts), ActiveSectionError::None);
    EXPECT_EQ(parts.control, "");
    ASSERT_EQ(ScanActiveSection("DRIVEUNIT[U],CONTROL[open", parts), ActiveSectionError::None);
    EXPECT_EQ(parts.control, "open");
    ASSERT_EQ(ScanActiveSection("DRIVEUNIT[U],CONTROLX,TABLE[t]", parts), ActiveSectionError::None);
    EXPECT_EQ(parts.control, "t");
}

TEST(ActiveSection, ScannerErrorsNameTheFailingPart) {
    ActiveSection parts;
    parts.drive_unit = "kept";
    EXPECT_EQ(ScanActiveSection("TABLE[t]", parts), ActiveSectionError::DriveUnit);
    EXPECT_EQ(ScanActiveSection("DRIVEUNIT X", parts), ActiveSectionError::DriveUnit);
    EXPECT_EQ(ScanActiveSection("DRIVEUNIT[   ", parts), ActiveSectionError::DriveUnit);
    EXPECT_EQ(ScanActiveSection("DRIVEUNIT[abc", parts), ActiveSectionError::DriveUnit);
    EXPECT_EQ(ScanActiveSection("DRIVEUNIT[" + std::string(1024, 'x') + "]", parts),
              ActiveSectionError::DriveUnit);
    EXPECT_EQ(ScanActiveSection("DRIVEUNIT[" + std::string(1023, 'x') + "]", parts),
              ActiveSectionError::None);
    EXPECT_EQ(ScanActiveSection("DRIVEUNIT[u],TABLE", parts), ActiveSectionError::Table);
    EXPECT_EQ(ScanActiveSection("DRIVEUNIT[u],TABLE[t],MEASURESTAND[s", parts),
              ActiveSectionError::Stand);
}

TEST(OtherForms, FormLoadTableStandAndMachineDisplay) {
    EXPECT_EQ(BuildFormLoadString("KMQ 1:Order-No:5", "automatic"),
              "KMQ 1:Order-No:5,,Table-automatic");
    EXPECT_EQ(BuildFormLoadString("U", "Automatic"), "U,,Table-manuell");
    EXPECT_EQ(BuildFormLoadString("U", "No Table"), "U,,Table-manuell");

    EXPECT_EQ(TableStringFromKind(1), "manual");
    EXPECT_EQ(TableStringFromKind(2), "automatic");
    EXPECT_EQ(TableStringFromKind(0), "No Table");
    EXPECT_EQ(TableStringFromKind(3), "No Table");

    std::string stand;
    ASSERT_TRUE(StandStringFromListText("SZ 750 D (vert.)", stand));
    EXPECT_EQ(stand, "SZ 750 D:vertical");
    ASSERT_TRUE(StandStringFromListText("Stand 2 (hor.)", stand));
    EXPECT_EQ(stand, "Stand 2:horizontal");
    ASSERT_TRUE(StandStringFromListText("Plain", stand));
    EXPECT_EQ(stand, "Plain");
    stand = "before";
    {
        korv::testing::LogCapture log;
        EXPECT_FALSE(StandStringFromListText(std::string(256, 's') + " (hor.)", stand));
        EXPECT_EQ(log.errors().size(), 1u);
    }
    EXPECT_EQ(stand, "before");
    ASSERT_TRUE(StandStringFromListText(std::string(255, 's') + " (hor.)", stand));
    EXPECT_EQ(stand.size(), 255u + 11u);

    // No catalogue is loaded here, so pieces translate to themselves.
    EXPECT_EQ(BuildStandDisplay(",SZ 750 D:vertical,,Stand 2:horizontal"),
              "SZ 750 D:vertical, Stand 2:horizontal");
    EXPECT_EQ(BuildStandDisplay(""), "");

    std::string display = "old";
    ASSERT_TRUE(BuildMachineDisplay("KorShaft 3:Order-No:1234", "Type", display));
    EXPECT_EQ(display, "KorShaft 3:Type:1234");
    EXPECT_FALSE(BuildMachineDisplay("KorShaft 3:Order-No", "Type", display));
    EXPECT_EQ(display, "KorShaft 3:Type:1234");
}

TEST(HistoryEntry, FixedFieldsAreCutNotOverrun) {
    CfgHistoryEntry entry;
    EXPECT_EQ(entry.group, "CONTOUR/SURFACE");
    CfgHistoryEntry::set_text(entry.stand, std::string(2000, 'x'));
    EXPECT_EQ(std::string(entry.stand), std::string(255, 'x'));
    EXPECT_EQ(entry.table[0], '\0'); // the neighbour is untouched
    CfgHistoryEntry::set_text(entry.stand, "short");
    EXPECT_STREQ(entry.stand, "short");
}

class ConvertDrvunit : public ::testing::Test {
protected:
    CMidSpanCfgDlg dlg{ProductTypeKorECon, "C:\\data\\", "C:\\data\\", nullptr};
    ActiveConfigRecord record{"old_no", "old_machine", "OLDGROUP", "old_folder", "old_proxy"};
};

TEST_F(ConvertDrvunit, ThreeTokensFillTheRecord) {
    ASSERT_TRUE(dlg.ConvertDrvunitStringToNewFormat("A::Order-No::7", "FORM", "F:\\m", "", record));
    EXPECT_EQ(record.machine, "A");
    EXPECT_EQ(record.order_no, "7");
    EXPECT_EQ(record.product_group, "FORM");
    EXPECT_EQ(record.folder, "F:\\m");
    EXPECT_EQ(record.proxy, ""); // always taken, also when empty

    // Empty group and folder keep what the record held; the middle token is never read.
    ASSERT_TRUE(dlg.ConvertDrvunitStringToNewFormat("B:OrderNo:8", "", "", "cncproxy", record));
    EXPECT_EQ(record.machine, "B");
    EXPECT_EQ(record.order_no, "8");
    EXPECT_EQ(record.product_group, "FORM");
    EXPECT_EQ(record.folder, "F:\\m");
    EXPECT_EQ(record.proxy, "cncproxy");

    // Interface forms with three tokens pass, with nonsense in the record.
    ASSERT_TRUE(dlg.ConvertDrvunitStringToNewFormat("A:COM1,B:COM2", "", "", "", record));
    EXPECT_EQ(record.machine, "A");
    EXPECT_EQ(record.order_no, "COM2");
}

TEST_F(ConvertDrvunit, OtherCountsFailWithTheMembersTextAndLeaveTheRecord) {
    dlg.m_actDriveUnit = "member text";
    const ActiveConfigRecord before = record;
    for (const char* text : {"A:B", "A:Order-No:", "VD 120:COM1", "a:b:c:d", ""}) {
        korv::testing::LogCapture log;
        EXPECT_FALSE(dlg.ConvertDrvunitStringToNewFormat(text, "FORM", "x", "p", record)) << text;
        ASSERT_EQ(log.errors().size(), 1u);
        EXPECT_EQ(log.errors()[0],
                  "CfgIniFileMachinIni(): invalid data for m_actDriveUnit ='member text");
    }
    EXPECT_EQ(record.machine, before.machine);
    EXPECT_EQ(record.order_no, before.order_no);
    EXPECT_EQ(record.product_group, before.product_group);
    EXPECT_EQ(record.folder, before.folder);
    EXPECT_EQ(record.proxy, before.proxy);
}
