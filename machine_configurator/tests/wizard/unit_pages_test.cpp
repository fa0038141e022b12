#include "RigCfgDlg.h"
#include "ktranslate.h"
#include "log_capture.h"
#include "scratch_dir.h"
#include "ui_host.h"
#include "ui_host_selection.h"
#include "wizard/WizDriveUnits.h"
#include "wizard/WizMeasureStands.h"
#include "wizard/WizNewPage2.h"
#include "wizard/WizNewPage3.h"
#include "wizard/WizNewPage4.h"
#include "wizard/WizardDlg.h"
#include "wizard/unit_page_resources.h"
#include "wizard/wizard_resources.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace {

using Strings = std::vector<std::string>;
using korv::ui::CDialog;

constexpr int kCom1 = CWizNewPage2::IDC_COM1;
constexpr int kCom2 = CWizNewPage2::IDC_COM2;
constexpr int kSingle = CWizNewPage2::IDC_SINGLE;
constexpr int kSwitch = CWizNewPage2::IDC_SWITCH;

// Runs a body inside the open wizard, then ends it.
class BodyHost : public korv::ui::Host {
public:
    std::function<void()> body;
    void DialogOpened(CDialog&) override {}
    void RunModal(CDialog& dialog) override {
        if (body)
            body();
        if (!dialog.modal_ended())
            dialog.EndDialog(korv::ui::IDCANCEL);
    }
    void DialogEnded(CDialog&, int) override {}
    int ShowMessageBox(const std::string&, unsigned) override { return korv::ui::IDOK; }
};

// The interface path of the wizard (pages 1 to 4) over hand-made sheets.
class UnitPagesTest : public ::testing::Test {
protected:
    void SetUp() override {
        RegisterWizardResources();
        RegisterUnitPageResources();
        auto host = std::make_unique<BodyHost>();
        m_host = host.get();
        korv::ui::install_host(std::move(host));
        // Port labels are translated, the "Driveunit" labels are not, even with a text for them.
        root.write("locale/de/RigCfg.po", "msgid \"Port number.txt\"\nmsgstr \"Anschluss\"\n\n"
                                          "msgid \"No Driveunit.txt\"\nmsgstr \"Keine\"\n\n"
                                          "msgid \"Driveunit 1\"\nmsgstr \"Antrieb 1\"\n");
        Translate_init("", root.path(), "de", "RigCfg");
        dlg.m_machineSheets = std::make_unique<MachineSheetList>();
        dlg.m_tableSheets = std::make_unique<TableSheetList>();
        dlg.m_standSheets = std::make_unique<StandSheetList>();
        g_interfaceMode = 0;
    }
    void TearDown() override {
        Translate_init("", root / "none", "en", "RigCfg");
        korv::ui::reset_host_selection();
    }

    void AddUnit(const char* name, std::uint32_t flags, std::uint8_t cnc = 0) {
        auto sheet = std::make_unique<MachineDataSheet>();
        std::strcpy(sheet->name, name);
        sheet->flags = flags;
        sheet->cnc = cnc;
        dlg.m_machineSheets->push_back(std::move(sheet));
    }
    void AddTable(const char* name, std::uint8_t cnc = 0) {
        auto sheet = std::make_unique<TableDataSheet>();
        std::strcpy(sheet->name, name);
        sheet->cnc = cnc;
        dlg.m_tableSheets->push_back(std::move(sheet));
    }
    void AddStand(const char* name, std::int32_t position, std::uint8_t cnc = 0) {
        auto sheet = std::make_unique<StandDataSheet>();
        std::strcpy(sheet->name, name);
        sheet->position = position;
        sheet->cnc = cnc;
        dlg.m_standSheets->push_back(std::move(sheet));
    }

    // Opens a wizard with a placeholder at 0 and pages 1 to 4, runs `body` on it.
    void Run(const std::function<void()>& body) {
        CWizardDlg wizard(&dlg);
        CWizNewPage2 interfaces(&wizard);
        CWizDriveUnits units(&wizard);
        CWizNewPage3 table(&wizard);
        CWizMeasureStands stands(&wizard);
        wizard.AddPage("product group", nullptr, 130);
        wizard.AddPage("interfaces", &interfaces, CWizNewPage2::IDD);
        wizard.AddPage("drive units", &units, CWizDriveUnits::IDD);
        wizard.AddPage("measurement table", &table, CWizNewPage3::IDD);
        wizard.AddPage("measurement stand", &stands, CWizMeasureStands::IDD);
        wiz = &wizard;
        p1 = &interfaces;
        p2 = &units;
        p3 = &table;
        p4 = &stands;
        m_host->body = body;
        wizard.DoModal();
        m_host->body = nullptr;
        wiz = nullptr;
    }

    // Page 1 as a user sets it: the check boxes, and the radio group while it is enabled.
    void Choose(bool com1, bool onSwitch, bool com2) {
        wiz->SetCurSel(1);
        Input(kCom1).UserCheck(kCom1, com1);
        const int radio = onSwitch ? kSwitch : kSingle;
        if (com1)
            Input(radio).UserClick(radio);
        Input(kCom2).UserCheck(kCom2, com2);
    }
    // Where a user's action on control `id` goes: the page shown, else the frame.
    CDialog& Input(int id) {
        CDialog* target = wiz->find_input_target(id);
        return target ? *target : *wiz;
    }
    bool NextEnabled() const { return wiz->GetDlgItem(korv::ui::IDOK)->IsWindowEnabled(); }
    void Select(int id, int index) {
        ASSERT_EQ(Input(id).UserSelect(id, index), korv::ui::InputResult::Done)
            << id << " " << index;
    }
    static Strings Labels(const std::array<InterfaceRow, 8>& rows, int count) {
        Strings labels;
        for (int i = 0; i < count; ++i) {
            std::string text;
            rows[static_cast<std::size_t>(i)].m_label.GetWindowText(text);
            labels.push_back(text);
        }
        return labels;
    }
    static Strings ComboItems(const korv::ui::CComboBox& combo) {
        Strings items(static_cast<std::size_t>(combo.GetCount()));
        for (int i = 0; i < combo.GetCount(); ++i)
            combo.GetLBText(i, items[static_cast<std::size_t>(i)]);
        return items;
    }

    korv::testing::ScratchRoot root;
    korv::testing::LogCapture log;
    CMidSpanCfgDlg dlg{ProductTypeMidspan, "", "", nullptr};
    BodyHost* m_host = nullptr;
    CWizardDlg* wiz = nullptr;
    CWizNewPage2* p1 = nullptr;
    CWizDriveUnits* p2 = nullptr;
    CWizNewPage3* p3 = nullptr;
    CWizMeasureStands* p4 = nullptr;
};

TEST_F(UnitPagesTest, InterfaceChoiceGivesModeGlobalWordAndNext) {
    struct Case {
        const char* what;
        std::vector<std::pair<int, bool>> checks; // in the order a user sets them
        int mode;
        int global; // 99: left as it was
        int com2;
        bool switchEnabled;
        bool next;
    };
    // clang-format off
    const std::vector<Case> cases = {
        {"nothing", {}, 0, 99, 0, false, false},
        {"first", {{kCom1, true}}, 1, 1, 0, true, true},
        {"second", {{kCom2, true}}, 2, 2, 1, false, true},
        {"both", {{kCom1, true}, {kCom2, true}}, 3, 3, 1, true, true},
        {"switch", {{kCom1, true}, {kSwitch, true}}, 0, 1, 0, true, true},
        {"second under a switch", {{kCom1, true}, {kSwitch, true}, {kCom2, true}}, 0, 1, 0, true, true},
        {"first cleared under a switch", {{kCom1, true}, {kSwitch, true}, {kCom1, false}, {kCom2, true}}, 2, 2, 1, false, true},
        {"first cleared again", {{kCom1, true}, {kCom1, false}}, 0, 1, 0, false, false},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        g_interfaceMode = 99;
        Run([&] {
            wiz->SetCurSel(1);
            for (const auto& [id, on] : c.checks)
                EXPECT_EQ(Input(id).UserCheck(id, on), korv::ui::InputResult::Done) << id;
            EXPECT_EQ(p1->GetInterfaceMode(), c.mode);
            EXPECT_EQ(g_interfaceMode, c.global);
            EXPECT_EQ(p1->m_com2, c.com2);
            EXPECT_EQ(p1->IsDlgButtonChecked(kCom2), c.com2);
            EXPECT_EQ(p1->GetDlgItem(kSwitch)->IsWindowEnabled(), c.switchEnabled);
            EXPECT_EQ(NextEnabled(), c.next);
        });
    }
    // The radio keeps the switch while it is disabled.
    Run([&] {
        Choose(true, true, false);
        Input(kCom1).UserCheck(kCom1, false);
        EXPECT_EQ(p1->m_switch, 1);
        EXPECT_FALSE(p1->IsSwitchChosen());
    });
}

TEST_F(UnitPagesTest, DriveUnitRowsAndCandidatesFollowTheMode) {
    AddUnit("A", kSheetContour | kSheetCom1);
    AddUnit("B", kSheetSurface | kSheetCom2 | kSheetSwitch);
    AddUnit("C", kSheetContour | kSheetCom1 | kSheetCom2 | kSheetSwitch);
    AddUnit("D", kSheetForm | kSheetCom1 | kSheetSwitch);
    dlg.m_machineSheets->push_back(nullptr);
    AddUnit("E", kSheetSurface | kSheetCom1 | kSheetSwitch);
    struct Case {
        bool com1, onSwitch, com2;
        Strings labels; // one per row in use
        Strings com1List, com2List;
    };
    const Strings first = {"Keine", "A", "C", "E"}, second = {"Keine", "B", "C"};
    // clang-format off
    const std::vector<Case> cases = {
        {true, false, false, {"Driveunit 1"}, first, second},
        {false, false, true, {"Driveunit 2"}, first, second},
        {true, false, true, {"Driveunit 1", "Driveunit 2"}, first, second},
        {true, true, false, {"Anschluss 1", "Anschluss 2", "Anschluss 3", "Anschluss 4",
                             "Anschluss 5", "Anschluss 6", "Anschluss 7", "Anschluss 8"},
         {"Keine", "C", "E"}, second},
    };
    // clang-format on
    for (const Case& c : cases) {
        const int rows = static_cast<int>(c.labels.size());
        SCOPED_TRACE(rows);
        Run([&] {
            Choose(c.com1, c.onSwitch, c.com2);
            wiz->SetCurSel(2);
            EXPECT_EQ(p2->m_rowCount, rows);
            EXPECT_EQ(Labels(p2->m_rows, rows), c.labels);
            EXPECT_EQ(p2->m_listCom1, c.com1List);
            EXPECT_EQ(p2->m_listCom2, c.com2List);
            // Each row shows its interface's list; in mode 0 ports 1-4 the first, 5-8 the second.
            for (int i = 0; i < 8; ++i) {
                const korv::ui::CComboBox& combo = p2->m_rows[static_cast<std::size_t>(i)].m_combo;
                EXPECT_EQ(combo.IsWindowVisible(), i < rows) << i;
                if (i >= rows)
                    continue;
                const bool fromSecond =
                    rows == 8 ? i >= 4 : c.labels[static_cast<std::size_t>(i)] == "Driveunit 2";
                EXPECT_EQ(ComboItems(combo), fromSecond ? c.com2List : c.com1List) << i;
            }
            EXPECT_FALSE(NextEnabled());
        });
    }
}

TEST_F(UnitPagesTest, NextOnTheDriveUnitPageCountsChosenRows) {
    AddUnit("C", kSheetContour | kSheetCom1 | kSheetCom2 | kSheetSwitch);
    Run([&] {
        Choose(true, false, true);
        wiz->SetCurSel(2);
        Select(1090, 1);
        EXPECT_FALSE(NextEnabled());
        Select(1091, 1);
        EXPECT_TRUE(NextEnabled());
        EXPECT_EQ(p2->GetRowText(1), "C");
        EXPECT_EQ(p2->CountSelected(), 2);
    });
    Run([&] {
        Choose(true, true, false);
        wiz->SetCurSel(2);
        Select(1096, 1);
        EXPECT_TRUE(NextEnabled());
        EXPECT_EQ(p2->GetRowText(6), "C");
        EXPECT_EQ(p2->GetRowText(0), "");
        Select(1096, 0);
        EXPECT_FALSE(NextEnabled());
    });
}

TEST_F(UnitPagesTest, SameModeKeepsTheChoicesAnotherModeRebuilds) {
    AddUnit("A", kSheetContour | kSheetCom1);
    AddUnit("B", kSheetContour | kSheetCom2);
    Run([&] {
        Choose(true, false, false);
        wiz->SetCurSel(2);
        EXPECT_FALSE(NextEnabled());
        // Back and forward with nothing chosen: page 1 enabled Next and page 2 leaves it.
        wiz->SetCurSel(1);
        wiz->SetCurSel(2);
        EXPECT_TRUE(NextEnabled());
        Select(1090, 1);
        wiz->SetCurSel(1);
        Input(kCom2).UserCheck(kCom2, true);
        Input(kCom2).UserCheck(kCom2, false);
        wiz->SetCurSel(2);
        EXPECT_EQ(p2->GetRowText(0), "A");
        wiz->SetCurSel(1);
        Input(kCom2).UserCheck(kCom2, true);
        wiz->SetCurSel(2);
        EXPECT_EQ(p2->m_builtMode, 3);
        EXPECT_EQ(p2->GetRowText(0), "");
        EXPECT_EQ(p2->FindDriveUnit("B"), dlg.m_machineSheets->at(1).get());
        EXPECT_EQ(p2->FindDriveUnit("b"), nullptr);
    });
}

TEST_F(UnitPagesTest, CncTablesNeedOneCncUnitOffTheSwitchBox) {
    AddUnit("CNC", kSheetContour | kSheetCom1 | kSheetCom2 | kSheetSwitch, 1);
    AddUnit("Plain", kSheetContour | kSheetCom1 | kSheetCom2 | kSheetSwitch);
    AddTable("Table");
    dlg.m_tableSheets->push_back(nullptr);
    AddTable("CNC table", 1);
    struct Case {
        const char* what;
        bool onSwitch, com2;
        std::vector<int> picks; // units chosen in rows 0, 1, ...
        Strings tables;
    };
    const std::vector<Case> cases = {
        {"CNC unit", false, false, {1}, {"Table", "CNC table"}},
        {"plain unit", false, false, {2}, {"Table"}},
        {"CNC unit on a switch box", true, false, {1}, {"Table"}},
        {"two units", false, true, {1, 1}, {"Table"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Run([&] {
            Choose(true, c.onSwitch, c.com2);
            wiz->SetCurSel(2);
            for (std::size_t row = 0; row < c.picks.size(); ++row)
                Select(CWizDriveUnits::kRowIds[row].combo, c.picks[row]);
            wiz->SetCurSel(3);
            EXPECT_EQ(ComboItems(p3->m_tableCombo), c.tables);
            EXPECT_EQ(p3->GetTableName(), "Table");
        });
    }
}

TEST_F(UnitPagesTest, TableChoiceIsKeptOverAVisit) {
    AddUnit("CNC", kSheetContour | kSheetCom1, 1);
    AddTable("Table");
    AddTable("CNC table", 1);
    Run([&] {
        Choose(true, false, false);
        wiz->SetCurSel(2);
        Select(1090, 1);
        wiz->SetCurSel(3);
        EXPECT_FALSE(p3->IsCncTable());
        Select(CWizNewPage3::IDC_TABLES, 1);
        wiz->SetCurSel(4);
        EXPECT_EQ(p3->m_lastTable, "CNC table");
        EXPECT_TRUE(p3->IsCncTable());
        wiz->SetCurSel(3);
        EXPECT_EQ(p3->m_tableCombo.GetCurSel(), 1);
        // The unit gone, the CNC table is no longer offered: the first takes its place.
        wiz->SetCurSel(2);
        Select(1090, 0);
        wiz->SetCurSel(3);
        EXPECT_EQ(p3->GetTableName(), "Table");
    });
    dlg.m_tableSheets->clear();
    Run([&] {
        Choose(true, false, false);
        wiz->SetCurSel(3);
        log.clear();
        EXPECT_EQ(p3->GetTableName(), "");
        EXPECT_TRUE(log.has_error("GetTableName()"));
    });
}

TEST_F(UnitPagesTest, StandsByPositionTableAndUnit) {
    for (const char* unit : {"QCV", "VD120", "XD 260"})
        AddUnit(unit, kSheetContour | kSheetCom1, 1);
    AddStand("H", kStandHorizontal);
    AddStand("V", kStandVertical, 1);
    dlg.m_standSheets->push_back(nullptr);
    AddStand("HV", kStandHorizontal | kStandVertical);
    AddStand("Bare", 0, 1);
    AddStand("SZ 750 D", kStandVertical, 1);
    AddStand("HB 40", 0);
    struct Case {
        const char* table;
        std::uint8_t tableCnc;
        int unit; // item of row 0
        Strings stands;
    };
    // clang-format off
    const std::vector<Case> cases = {
        {"Table", 0, 1, {"H (hor.)", "H", "V (vert.)", "HV (hor.)", "HV (vert.)", "Bare", "SZ 750 D (vert.)", "HB 40"}},
        {"Table", 0, 2, {"H (hor.)", "H", "V (vert.)", "HV (hor.)", "HV (vert.)", "Bare", "HB 40"}},
        {"TB 300", 0, 3, {"H (hor.)", "H", "V (vert.)", "HV (hor.)", "HV (vert.)", "Bare", "SZ 750 D (vert.)"}},
        {"Table", 1, 1, {"V (vert.)", "Bare", "SZ 750 D (vert.)"}},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.table) + " " + std::to_string(c.unit));
        dlg.m_tableSheets->clear();
        AddTable(c.table, c.tableCnc);
        Run([&] {
            Choose(true, false, false);
            wiz->SetCurSel(2);
            Select(1090, c.unit);
            wiz->SetCurSel(3);
            wiz->SetCurSel(4);
            EXPECT_EQ(p4->m_rowCount, 1);
            EXPECT_EQ(p4->m_rows[0].m_items, c.stands);
            EXPECT_EQ(Labels(p4->m_rows, 1), Strings{p2->GetRowText(0)});
            EXPECT_EQ(p4->GetStandText(0), c.stands[0]);
        });
    }
}

TEST_F(UnitPagesTest, StandRowsOnlyForPortsWithAUnitAndFreshOnEveryArrival) {
    AddUnit("YD 25", kSheetContour | kSheetCom1 | kSheetCom2 | kSheetSwitch);
    AddUnit("QCV", kSheetContour | kSheetCom1 | kSheetCom2 | kSheetSwitch);
    AddTable("Table");
    AddStand("H", kStandHorizontal);
    AddStand("SZ 750 D", 0);
    Run([&] {
        Choose(true, true, false);
        wiz->SetCurSel(2);
        Select(1091, 2);
        Select(1094, 1);
        wiz->SetCurSel(3);
        wiz->SetCurSel(4);
        EXPECT_EQ(p4->m_rowCount, 2);
        EXPECT_EQ(Labels(p4->m_rows, 2), (Strings{"QCV", "YD 25"}));
        EXPECT_EQ(p4->m_rows[0].m_items, (Strings{"H (hor.)", "H", "SZ 750 D"}));
        EXPECT_EQ(p4->m_rows[1].m_items, (Strings{"H (hor.)", "H"}));
        EXPECT_FALSE(p4->m_rows[2].m_combo.IsWindowVisible());
        Select(CWizMeasureStands::kRowIds[0].combo, 2);
        EXPECT_EQ(p4->GetStandText(0), "SZ 750 D");
        wiz->SetCurSel(3);
        wiz->SetCurSel(4);
        EXPECT_EQ(p4->GetStandText(0), "H (hor.)");
    });
    // Modes 1 to 3 build their rows also for an empty unit; no stand leaves one empty item.
    dlg.m_standSheets->clear();
    Run([&] {
        Choose(true, false, true);
        wiz->SetCurSel(2);
        wiz->SetCurSel(3);
        wiz->SetCurSel(4);
        EXPECT_EQ(p4->m_rowCount, 2);
        EXPECT_EQ(Labels(p4->m_rows, 2), (Strings{"", ""}));
        EXPECT_EQ(p4->m_rows[1].m_items, Strings{""});
        EXPECT_EQ(ComboItems(p4->m_rows[1].m_combo), Strings{""});
    });
}

TEST_F(UnitPagesTest, ListFormOfTheStandPageTakesTwoOrNoStandAlone) {
    CWizardDlg wizard(&dlg);
    CWizNewPage4 page(&wizard);
    wizard.AddPage("product group", nullptr, 130);
    wizard.AddPage("measurement stand", &page, CWizNewPage4::IDD);
    wiz = &wizard;
    m_host->body = [&] {
        wizard.SetCurSel(1);
        for (const char* name : {"No Stand", "S1", "S2"})
            page.AddStandName(name);
        const auto chosen = [&] {
            Strings texts(static_cast<std::size_t>(page.m_chosen.GetCount()));
            for (int i = 0; i < page.m_chosen.GetCount(); ++i)
                page.m_chosen.GetText(i, texts[static_cast<std::size_t>(i)]);
            return texts;
        };
        const auto take = [&](int item) { page.UserDoubleClick(CWizNewPage4::IDC_OFFERED, item); };
        const auto act = [&](int button, int row) {
            page.UserSelect(CWizNewPage4::IDC_CHOSEN, row);
            page.UserClick(button);
        };
        take(1);
        take(2);
        take(1);
        EXPECT_EQ(chosen(), (Strings{"S1", "S2"}));
        EXPECT_TRUE(NextEnabled());
        act(CWizNewPage4::IDC_UP, 1);
        EXPECT_EQ(chosen(), (Strings{"S2", "S1"}));
        EXPECT_EQ(page.m_chosen.GetItemData(1), 1u);
        act(CWizNewPage4::IDC_DELETE, 0);
        take(0);
        EXPECT_EQ(chosen(), Strings{"No Stand"});
        take(2);
        EXPECT_EQ(chosen(), Strings{"No Stand"});
        act(CWizNewPage4::IDC_DELETE, 0);
        EXPECT_FALSE(NextEnabled());
        take(2);
        EXPECT_EQ(chosen(), Strings{"S2"});
    };
    wizard.DoModal();
    m_host->body = nullptr;
}

} // namespace
