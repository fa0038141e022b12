// The product group, machine, order number and form source pages in a running wizard.
#include "kplatform_folders.h"
#include "wizard/wizard_fixture.h"

#include <array>
#include <filesystem>

namespace {

using namespace wiztest;
using M = CWizNewPage2a;

class MachinePagesTest : public WizardFixture {
protected:
    // Chooses `machine` on machine page `index` the way a user does.
    void Choose(int index, const std::string& machine) {
        auto* page = Page<M>(index);
        wiz->SetCurSel(index);
        page->m_chosen.ResetContent();
        Select(M::IDC_OFFERED, page->m_offered.FindStringExact(-1, machine));
        Click(M::IDC_ADD);
        ASSERT_EQ(page->GetChosenMachine(), machine);
    }
};

TEST_F(MachinePagesTest, MachineListsKeepSheetOrderNameEachMachineOnceAndTakeASingleOne) {
    AddMachine("Zeta", kSheetKorSim, "1");
    AddMachine("Alpha", kSheetKorSim | kSheetForm, "2");
    dlg.m_machineSheets->push_back(nullptr);
    AddMachine("Zeta", kSheetKorSim, "3");
    AddMachine("Form only", kSheetForm, "4");
    AddMachine("Geo", kSheetKorGeometry, "5");
    AddMachine("Everything", 0xFFFFFFFFu & ~(kSheetKorOpto | kSheetKorShaft));
    AddMachine("Shaft 1", kSheetKorShaft, "S-1");
    AddMachine("Shaft 1", kSheetKorShaft, "S-2");
    const std::pair<int, Strings> offered[] = {
        {12, {"Zeta", "Alpha", "Everything"}},
        {8, {"Alpha", "Form only", "Everything"}},
        {28, {"Geo", "Everything"}},
        {22, {}},
    };
    // The caption follows the active group, not the page's.
    for (const char* active : {"KORSURF", "KORSHAFT"}) {
        dlg.m_actGroup = active;
        const std::string caption = std::string(active) == "KORSURF"
                                        ? "Define Drive unit(s) from list:.txt"
                                        : "Select a machine from the list:.txt";
        Run([&] {
            for (const auto& [index, names] : offered) {
                EXPECT_EQ(Items(Page<M>(index)->m_offered), names) << index;
                EXPECT_EQ(Page<M>(index)->m_offered.GetCurSel(), korv::ui::LB_ERR) << index;
                EXPECT_EQ(text_of(*Page<M>(index), M::IDC_CAPTION), caption) << index;
                wiz->SetCurSel(index);
                EXPECT_FALSE(NextEnabled()) << index;
            }
            // One machine at a time: a second is refused, Delete empties the page.
            wiz->SetCurSel(12);
            Page<M>(12)->UserDoubleClick(M::IDC_OFFERED, 0);
            Select(M::IDC_OFFERED, 1);
            Click(M::IDC_ADD);
            EXPECT_EQ(Items(Page<M>(12)->m_chosen), Strings{"Zeta"});
            Select(M::IDC_CHOSEN, 0);
            Click(M::IDC_DELETE);
            EXPECT_FALSE(NextEnabled());
            // A single candidate is chosen at once.
            EXPECT_EQ(Items(Page<M>(15)->m_chosen), Strings{"Shaft 1"});
            EXPECT_EQ(Page<M>(15)->m_offered.GetCurSel(), korv::ui::LB_ERR);
            wiz->SetCurSel(15);
            EXPECT_TRUE(NextEnabled());
            EXPECT_TRUE(BackEnabled());
        });
    }
}

TEST_F(MachinePagesTest, OrderNumbersAndControlsOfTheChosenMachine) {
    AddMachine("Sim A", kSheetKorSim, "S-1");
    AddMachine("Sim A", kSheetForm, "F-1");
    AddMachine("Sim A", kSheetKorSim, "");
    AddMachine("Sim B", kSheetKorSim, "S-2");
    AddMachine("Sim A", kSheetKorSim, "S-3");
    AddMachine("Sim A", kSheetKorSim, "S-1");
    AddMachine("Geo", kSheetKorGeometry, "G-1");
    AddMachine("Geo", kSheetKorSim, "G-2");
    AddMachine("Bare", kSheetKorGeometry);
    AddMachine("Shaft", kSheetKorShaft, "T-1");
    for (const char* name : {"KMQ6100", "ShapeScan6100", "KMQ6200"}) {
        AddMachine(name, kSheetForm, "F");
        AddMachine(name, kSheetKorSim, "S");
    }
    struct Case {
        int machinePage, orderPage;
        const char* machine;
        Strings orders;
        bool controls;
    };
    const Case cases[] = {
        {12, 13, "Sim A", {"S-1", "S-3", "S-1"}, false}, // equal numbers stay
        {12, 13, "Sim B", {"S-2"}, false},
        {8, 10, "Sim A", {"F-1"}, false},
        {12, 13, "Geo", {"G-2"}, false},
        {28, 29, "Geo", {"G-1", "G-2"}, false}, // matched on the name alone
        {28, 29, "Bare", {}, false},
        {15, 16, "Shaft", {"T-1"}, false}, // the label "Type" belongs to no page
        {8, 10, "KMQ6100", {"F"}, true},
        {8, 10, "ShapeScan6100", {"F"}, true},
        {8, 10, "KMQ6200", {"F"}, false},
        {12, 13, "KMQ6100", {"S"}, false}, // only the KorForm page offers controls
    };
    Run([&] {
        for (const Case& c : cases) {
            SCOPED_TRACE(testing::Message() << c.machine << " " << c.orderPage);
            Choose(c.machinePage, c.machine);
            wiz->SetCurSel(c.orderPage);
            auto* page = Page<CWizNewPageForm2>(c.orderPage);
            EXPECT_EQ(Items(page->m_orderNumbers), c.orders);
            EXPECT_EQ(page->GetOrderNumberText(), c.orders.empty() ? "" : c.orders[0]);
            EXPECT_EQ(text_of(*page, CWizNewPageForm2::IDC_ORDER_LABEL), "Order No.:.txt");
            for (int id : {CWizNewPageForm2::IDC_CONTROLS, CWizNewPageForm2::IDC_CONTROL_LABEL})
                EXPECT_EQ(page->GetDlgItem(id)->IsWindowVisible(), c.controls);
            EXPECT_EQ(Items(page->m_controls).size(), c.controls ? 2u : 0u);
            if (c.controls) {
                EXPECT_EQ(page->GetControlText(), "KorControl KMQ RF");
                Select(CWizNewPageForm2::IDC_CONTROLS, 1);
                EXPECT_EQ(page->GetControlText(), "KorForm IF-KS-K");
            }
        }
        // A machine page with nothing chosen gives no order numbers.
        Page<M>(12)->m_chosen.ResetContent();
        wiz->SetCurSel(13);
        EXPECT_EQ(Page<CWizNewPageForm2>(13)->m_orderNumbers.GetCount(), 0);
    });
}

TEST_F(MachinePagesTest, FormSourceNewInstallationForcesNewData) {
    using F = CWizNewPageForm1;
    Run([&] {
        auto* page = Page<F>(9);
        wiz->SetCurSel(9);
        const auto factoryDisk = [&] { return page->GetDlgItem(F::IDC_READ_FACTORY_DISK); };
        EXPECT_FALSE(factoryDisk()->IsWindowEnabled());
        EXPECT_EQ(page->IsDlgButtonChecked(F::IDC_EDIT_NEW_DATA), korv::ui::BST_CHECKED);
        EXPECT_EQ(page->UserClick(F::IDC_READ_FACTORY_DISK), InputResult::Disabled);
        Click(F::IDC_FORM_PC_DATA);
        Click(F::IDC_READ_FACTORY_DISK);
        EXPECT_EQ(page->m_nextStep, 0);
        EXPECT_EQ(page->m_source, 1);
        Click(F::IDC_NEW_INSTALLATION);
        EXPECT_FALSE(factoryDisk()->IsWindowEnabled());
        EXPECT_EQ(page->IsDlgButtonChecked(F::IDC_EDIT_NEW_DATA), korv::ui::BST_CHECKED);
    });
}

TEST_F(MachinePagesTest, PortUnitClassIsTheFirstFoundInTheName) {
    const std::pair<const char*, int> names[] = {
        {"PZK 20", 1},        {"XD 120", 1},        {"YD 120 CNC", 0},    {"WD 130", 0},
        {"my YD 25 unit", 1}, {"PQK QCV", 0},       {"PQK", 1},           {"VD120", 0},
        {"PZK 120", 1},       {"YD 30 compact", 1}, {"YD 30 Compact", 0}, {"yd 25", 0},
    };
    // A name of no class keeps the class before it.
    for (const auto& [name, unitClass] : names) {
        EXPECT_EQ(ClassifyPortUnit(name), unitClass) << name;
        EXPECT_EQ(g_unitPortClass, unitClass) << name;
    }
}

TEST_F(MachinePagesTest, InterfaceFilterByModeAndCapacity) {
    korv::testing::ScratchDir cwd;
    cwd.write("SP_Support/DriveUnit.dat", "[U1]\r\ninterface=COM1\r\n"
                                          "[U2]\r\ninterface = COM2 and switch\r\n"
                                          "[U3]\r\ninterface=switch;COM2;COM1\r\n"
                                          "[U5]\r\ninterface=com1 Switch\r\n");
    for (const char* unit : {"U1", "U2", "U3", "U4", "U5"})
        AddMachine(unit, kSheetKorSim);
    struct Case {
        int mode, capacity;
        Strings kept;
    };
    const Case cases[] = {
        {1, 1, {"U1", "U3"}}, {0, 8, {"U1", "U2", "U3", "U4", "U5"}},
        {1, 8, {"U2", "U3"}}, {2, 1, {"U2", "U3"}},
        {3, 1, {"U1", "U3"}}, {3, 8, {"U2", "U3"}},
        {2, 8, {"U2", "U3"}}, {1, 4, {"U1", "U2", "U3", "U4", "U5"}},
    };
    const std::string before = std::filesystem::current_path().string();
    ASSERT_TRUE(korv::platform::set_current_folder(cwd.path()));
    Run([&] {
        auto* page = Page<M>(12);
        for (const Case& c : cases) {
            g_interfaceMode = c.mode;
            page->m_capacity = c.capacity;
            page->FilterByInterface(); // each run starts from the first list
            EXPECT_EQ(Items(page->m_offered), c.kept) << c.mode << "/" << c.capacity;
        }
        // Off page 2 the buttons' update leaves the list alone.
        g_interfaceMode = 1;
        page->m_capacity = 1;
        page->FilterByInterface();
        page->m_capacity = 8;
        wiz->SetCurSel(12);
        EXPECT_EQ(Items(page->m_offered), (Strings{"U1", "U3"}));
    });
    ASSERT_TRUE(korv::platform::set_current_folder(before));
}

TEST_F(MachinePagesTest, SlotModePutsUnitsOnTheirPortsAndKeepsThemInTheirHalf) {
    AddMachine("QCV 1", kSheetKorSim);
    AddMachine("PQK 2", kSheetKorSim);
    Run([&] {
        auto* page = Page<M>(12);
        wiz->SetCurSel(12);
        page->m_capacity = M::kSlotCapacity;
        host->portAnswer = 1; // Port2, or Port6 for a class 1 unit
        page->UserDoubleClick(M::IDC_OFFERED, 0);
        page->UserDoubleClick(M::IDC_OFFERED, 1);
        host->portAnswer = -1;
        page->UserDoubleClick(M::IDC_OFFERED, 0); // cancelled
        EXPECT_EQ(Items(page->m_chosen), (Strings{"", "QCV 1", "", "", "", "PQK 2", "", ""}));
        EXPECT_TRUE(NextEnabled());

        // Each click moves one row; the unit stops at the edge of its half.
        const std::array<int, 3> moves[] = {{1, M::IDC_DOWN, 2}, {2, M::IDC_DOWN, 3},
                                            {3, M::IDC_DOWN, 3}, {5, M::IDC_UP, 4},
                                            {4, M::IDC_UP, 4},   {4, M::IDC_DOWN, 5}};
        for (const auto& [row, button, to] : moves) {
            Select(M::IDC_CHOSEN, row);
            Click(button);
            EXPECT_EQ(page->m_chosen.GetCurSel(), to) << row;
        }
        Select(M::IDC_CHOSEN, 3);
        Click(M::IDC_DELETE);
        EXPECT_EQ(Items(page->m_chosen), (Strings{"", "", "", "", "", "PQK 2", "", ""}));
    });
}

} // namespace
