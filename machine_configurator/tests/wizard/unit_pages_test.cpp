// The interface path of the wizard: interfaces, drive units, table and stands (pages 1 to 4).
#include "wizard/wizard_fixture.h"

namespace {

using namespace wiztest;

constexpr int kCom1 = CWizNewPage2::IDC_COM1;
constexpr int kCom2 = CWizNewPage2::IDC_COM2;
constexpr int kSwitch = CWizNewPage2::IDC_SWITCH;

class UnitPagesTest : public WizardFixture {
protected:
    CWizNewPage2* P1() const { return Page<CWizNewPage2>(1); }
    CWizDriveUnits* P2() const { return Page<CWizDriveUnits>(2); }
    CWizNewPage3* P3() const { return Page<CWizNewPage3>(3); }
    CWizMeasureStands* P4() const { return Page<CWizMeasureStands>(4); }
    // Interfaces, then one pick per row of page 2, then on to page `to`.
    void Choose(bool com1, bool onSwitch, bool com2, const std::vector<int>& picks, int to) {
        ChooseInterfaces(com1, onSwitch, com2);
        wiz->SetCurSel(2);
        for (std::size_t row = 0; row < picks.size(); ++row)
            Select(UnitCombo(row), picks[row]);
        for (int page = 3; page <= to; ++page)
            wiz->SetCurSel(page);
    }
    static Strings Labels(const std::array<InterfaceRow, 8>& rows, std::size_t count) {
        Strings labels(count);
        for (std::size_t i = 0; i < count; ++i)
            rows[i].m_label.GetWindowText(labels[i]);
        return labels;
    }
};

TEST_F(UnitPagesTest, InterfaceChoiceGivesModeGlobalWordAndNext) {
    struct Case {
        const char* what;
        std::vector<std::pair<int, bool>> checks; // in the order a user sets them
        int mode, global /* 99: left as it was */, com2;
        bool switchEnabled, next;
    };
    // clang-format off
    const Case cases[] = {
        {"nothing", {}, 0, 99, 0, false, false},
        {"first", {{kCom1, true}}, 1, 1, 0, true, true},
        {"second", {{kCom2, true}}, 2, 2, 1, false, true},
        {"both", {{kCom1, true}, {kCom2, true}}, 3, 3, 1, true, true},
        {"second under a switch", {{kCom1, true}, {kSwitch, true}, {kCom2, true}}, 0, 1, 0, true, true},
        {"first cleared under a switch", {{kCom1, true}, {kSwitch, true}, {kCom1, false}, {kCom2, true}}, 2, 2, 1, false, true},
        {"first cleared again", {{kCom1, true}, {kCom1, false}}, 0, 1, 0, false, false},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Run([&] {
            g_interfaceMode = 99;
            wiz->SetCurSel(1);
            for (const auto& [id, on] : c.checks)
                EXPECT_EQ(Input(id).UserCheck(id, on), InputResult::Done) << id;
            EXPECT_EQ(P1()->GetInterfaceMode(), c.mode);
            EXPECT_EQ(g_interfaceMode, c.global);
            EXPECT_EQ(P1()->IsDlgButtonChecked(kCom2), c.com2);
            EXPECT_EQ(P1()->GetDlgItem(kSwitch)->IsWindowEnabled(), c.switchEnabled);
            EXPECT_EQ(NextEnabled(), c.next);
        });
    }
}

TEST_F(UnitPagesTest, DriveUnitRowsAndCandidatesFollowTheMode) {
    // Port labels are translated, the "Driveunit" labels are not, even with a text for them.
    root.write("locale/de/RigCfg.po", "msgid \"Port number.txt\"\nmsgstr \"Anschluss\"\n\n"
                                      "msgid \"No Driveunit.txt\"\nmsgstr \"Keine\"\n\n"
                                      "msgid \"Driveunit 1\"\nmsgstr \"Antrieb 1\"\n");
    Translate_init("", root.path(), "de", "RigCfg");
    AddMachine("A", kSheetContour | kSheetCom1);
    AddMachine("B", kSheetSurface | kSheetCom2 | kSheetSwitch);
    AddMachine("C", kSheetContour | kSheetCom1 | kSheetCom2 | kSheetSwitch);
    AddMachine("D", kSheetForm | kSheetCom1 | kSheetSwitch);
    dlg.m_machineSheets->push_back(nullptr);
    AddMachine("E", kSheetSurface | kSheetCom1 | kSheetSwitch);
    struct Case {
        bool com1, onSwitch, com2;
        Strings labels; // one per row in use
        Strings com1List;
        std::vector<int> needed; // the rows Next waits for
    };
    const Strings first = {"Keine", "A", "C", "E"}, second = {"Keine", "B", "C"};
    const Strings ports = {"Anschluss 1", "Anschluss 2", "Anschluss 3", "Anschluss 4",
                           "Anschluss 5", "Anschluss 6", "Anschluss 7", "Anschluss 8"};
    const Case cases[] = {
        {true, false, false, {"Driveunit 1"}, first, {0}},
        {false, false, true, {"Driveunit 2"}, first, {0}},
        {true, false, true, {"Driveunit 1", "Driveunit 2"}, first, {0, 1}},
        {true, true, false, ports, {"Keine", "C", "E"}, {6}}, // switch units only, one will do
    };
    for (const Case& c : cases) {
        const int rows = static_cast<int>(c.labels.size());
        SCOPED_TRACE(rows);
        Run([&] {
            Choose(c.com1, c.onSwitch, c.com2, {}, 2);
            EXPECT_EQ(P2()->m_rowCount, rows);
            EXPECT_EQ(Labels(P2()->m_rows, rows), c.labels);
            // Each row shows its interface's list; in mode 0 ports 1-4 the first, 5-8 the second.
            const auto listOf = [&](int i) {
                return (rows == 8 ? i >= 4 : c.labels[std::size_t(i)] == "Driveunit 2")
                           ? second
                           : c.com1List;
            };
            for (int i = 0; i < 8; ++i) {
                const auto& combo = P2()->m_rows[static_cast<std::size_t>(i)].m_combo;
                EXPECT_EQ(combo.IsWindowVisible(), i < rows) << i;
                if (i < rows) {
                    EXPECT_EQ(Items(combo), listOf(i)) << i;
                }
            }
            for (int row : c.needed) {
                EXPECT_FALSE(NextEnabled()) << row;
                Select(UnitCombo(row), 1);
                EXPECT_EQ(P2()->GetRowText(row), listOf(row)[1]);
            }
            EXPECT_TRUE(NextEnabled());
            Select(UnitCombo(c.needed.back()), 0);
            EXPECT_FALSE(NextEnabled());
        });
    }
}

TEST_F(UnitPagesTest, TheSameModeKeepsTheRowsAnotherRebuildsThem) {
    AddMachine("A", kSheetContour | kSheetCom1 | kSheetSwitch);
    AddMachine("C", kSheetContour | kSheetCom1 | kSheetCom2 | kSheetSwitch);
    Run([&] {
        Choose(true, false, false, {}, 2);
        // Back and forward with nothing chosen: page 1 enabled Next and page 2 leaves it.
        ChooseInterfaces(true, false, false);
        wiz->SetCurSel(2);
        EXPECT_TRUE(NextEnabled());
        Select(UnitCombo(0), 1);
        ChooseInterfaces(true, false, true);
        ChooseInterfaces(true, false, false);
        wiz->SetCurSel(2);
        EXPECT_EQ(P2()->GetRowText(0), "A");
        ChooseInterfaces(true, false, true);
        wiz->SetCurSel(2);
        EXPECT_EQ(P2()->m_builtMode, 3);
        EXPECT_EQ(P2()->GetRowText(0), "");
        EXPECT_EQ(P2()->FindDriveUnit("C"), dlg.m_machineSheets->at(1).get());
        EXPECT_EQ(P2()->FindDriveUnit("c"), nullptr);
    });
}

// CNC tables need one CNC unit off the switch box; stands go by position, table and unit.
TEST_F(UnitPagesTest, TablesAndStandsFollowTheUnits) {
    const std::uint32_t anywhere = kSheetContour | kSheetCom1 | kSheetCom2 | kSheetSwitch;
    AddMachine("QCV", anywhere, "", kTableNone, "", 1);
    AddMachine("VD120", anywhere);
    AddMachine("XD 260", anywhere, "", kTableNone, "", 1);
    AddTable("Table");
    dlg.m_tableSheets->push_back(nullptr);
    AddTable("CNC table", 1);
    AddTable("TB 300");
    AddStand("H", kStandHorizontal);
    AddStand("V", kStandVertical, 1);
    dlg.m_standSheets->push_back(nullptr);
    AddStand("HV", kStandHorizontal | kStandVertical);
    AddStand("Bare", 0, 1);
    AddStand("SZ 750 D", kStandVertical, 1);
    AddStand("HB 40", 0);
    struct Case {
        bool onSwitch, com2;
        std::vector<int> picks; // items chosen in unit rows 0, 1, ...
        Strings tables;
        int table;
        Strings stands; // of stand row 0
    };
    const Strings cnc = {"Table", "CNC table", "TB 300"}, plain = {"Table", "TB 300"};
    const Strings all = {"H (hor.)", "H", "V (vert.)", "HV (hor.)", "HV (vert.)", "Bare"};
    const auto with = [&](Strings more) {
        more.insert(more.begin(), all.begin(), all.end());
        return more;
    };
    // clang-format off
    const Case cases[] = {
        {false, false, {1}, cnc, 0, with({"SZ 750 D (vert.)", "HB 40"})},
        {false, false, {2}, plain, 0, with({"HB 40"})},  // only some units take "SZ 750 D"
        {false, false, {3}, cnc, 2, with({"SZ 750 D (vert.)"})}, // no "HB" on a "TB" table
        {false, false, {1}, cnc, 1, {"V (vert.)", "Bare", "SZ 750 D (vert.)"}},
        {true, false, {1}, plain, 0, with({"SZ 750 D (vert.)", "HB 40"})},
        {false, true, {1, 1}, plain, 0, with({"SZ 750 D (vert.)", "HB 40"})},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.picks[0] << " " << c.onSwitch << c.com2 << c.table);
        Run([&] {
            Choose(true, c.onSwitch, c.com2, c.picks, 3);
            EXPECT_EQ(Items(P3()->m_tableCombo), c.tables);
            Select(CWizNewPage3::IDC_TABLES, c.table);
            wiz->SetCurSel(4);
            EXPECT_EQ(P4()->m_rows[0].m_items, c.stands);
            EXPECT_EQ(Labels(P4()->m_rows, 1), Strings{P2()->GetRowText(0)});
            EXPECT_EQ(P4()->GetStandText(0), c.stands[0]);
        });
    }
    // The table is kept over a visit; once no longer offered, the first takes its place.
    Run([&] {
        Choose(true, false, false, {1}, 3);
        EXPECT_FALSE(P3()->IsCncTable());
        Select(CWizNewPage3::IDC_TABLES, 1);
        wiz->SetCurSel(4);
        EXPECT_TRUE(P3()->IsCncTable());
        wiz->SetCurSel(3);
        EXPECT_EQ(P3()->GetTableName(), "CNC table");
        Choose(true, false, false, {0}, 3);
        EXPECT_EQ(P3()->GetTableName(), "Table");
    });
}

TEST_F(UnitPagesTest, StandRowsOnlyForPortsWithAUnitAndFreshOnEveryArrival) {
    AddMachine("YD 25", kSheetContour | kSheetCom1 | kSheetCom2 | kSheetSwitch);
    AddMachine("QCV", kSheetContour | kSheetCom1 | kSheetCom2 | kSheetSwitch);
    AddTable("Table");
    AddStand("H", kStandHorizontal);
    AddStand("SZ 750 D", 0);
    Run([&] {
        Choose(true, true, false, {0, 2, 0, 0, 1}, 4);
        EXPECT_EQ(P4()->m_rowCount, 2);
        EXPECT_EQ(Labels(P4()->m_rows, 2), (Strings{"QCV", "YD 25"}));
        EXPECT_EQ(P4()->m_rows[0].m_items, (Strings{"H (hor.)", "H", "SZ 750 D"}));
        EXPECT_EQ(P4()->m_rows[1].m_items, (Strings{"H (hor.)", "H"}));
        EXPECT_FALSE(P4()->m_rows[2].m_combo.IsWindowVisible());
        Select(CWizMeasureStands::kRowIds[0].combo, 2);
        EXPECT_EQ(P4()->GetStandText(0), "SZ 750 D");
        wiz->SetCurSel(3);
        wiz->SetCurSel(4);
        EXPECT_EQ(P4()->GetStandText(0), "H (hor.)");
    });
    // Modes 1 to 3 build their rows also for an empty unit; no stand leaves one empty item.
    dlg.m_standSheets->clear();
    Run([&] {
        Choose(true, false, true, {}, 4);
        EXPECT_EQ(P4()->m_rowCount, 2);
        EXPECT_EQ(Labels(P4()->m_rows, 2), (Strings{"", ""}));
        EXPECT_EQ(Items(P4()->m_rows[1].m_combo), Strings{""});
    });
}

} // namespace
