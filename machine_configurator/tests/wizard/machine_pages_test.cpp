// The product, machine, order number, form source and proxy pages inside a
// running wizard frame, driven through a host that runs a test body.
#include "RigCfg.h"
#include "RigCfgDlg.h"
#include "errtrace.h"
#include "log_capture.h"
#include "scratch_dir.h"
#include "ui_host.h"
#include "ui_host_selection.h"
#include "wizard/WizNewPage1.h"
#include "wizard/WizNewPage2.h"
#include "wizard/WizNewPage2a.h"
#include "wizard/WizNewPageForm1.h"
#include "wizard/WizNewPageForm2.h"
#include "wizard/WizProxies.h"
#include "wizard/WizardDlg.h"
#include "wizard/machine_page_resources.h"
#include "wizard/port_units.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

using namespace korv::ui;

namespace {

constexpr int kPageCount = 32;

// Runs `body` inside the wizard's modal run; answers the port dialog with
// `portAnswer` (-1: its close box) and records message boxes.
class PageHost : public Host {
public:
    std::function<void()> body;
    int portAnswer = -1;
    std::vector<std::pair<std::string, unsigned>> boxes;

    void DialogOpened(CDialog&) override {}
    void RunModal(CDialog& dialog) override {
        if (dialog.template_id() == CWizardDlg::IDD && body)
            body();
        else if (portAnswer >= 0 && dialog.UserSelect(1059, portAnswer) == InputResult::Done)
            dialog.UserClick(1060);
        if (!dialog.modal_ended())
            dialog.UserClose();
    }
    void DialogEnded(CDialog&, int) override {}
    int ShowMessageBox(const std::string& text, unsigned type) override {
        boxes.emplace_back(text, type);
        return IDOK;
    }
};

std::vector<std::string> Items(const CListControl& list) {
    std::vector<std::string> items;
    for (int i = 0; i < list.GetCount(); ++i) {
        std::string text;
        if (auto* box = dynamic_cast<const CListBox*>(&list))
            box->GetText(i, text);
        else
            static_cast<const CComboBox&>(list).GetLBText(i, text);
        items.push_back(text);
    }
    return items;
}

class MachinePagesTest : public ::testing::Test {
protected:
    void SetUp() override {
        RegisterDialogResources();
        RegisterMachinePageResources();
        auto owned = std::make_unique<PageHost>();
        host = owned.get();
        install_host(std::move(owned));
        g_machineListSnapshot = {};
        dlg.m_machineSheets = std::make_unique<MachineSheetList>();
        BuildPages();
    }
    void TearDown() override {
        reset_host_selection();
        KErrTrace_ClearContext();
    }

    void AddSheet(const char* name, std::uint32_t flags, const char* orderNo = "") {
        auto sheet = std::make_unique<MachineDataSheet>();
        SetSheetText(sheet->name, name, "name");
        SetSheetText(sheet->order_no, orderNo, "order_no");
        sheet->flags = flags;
        dlg.m_machineSheets->push_back(std::move(sheet));
    }

    // The page list of a run, with only the pages of this test's kinds.
    void BuildPages() {
        const std::pair<int, const char*> machinePages[] = {
            {5, "KORSURF"},     {8, "FORM"},     {12, "KORSIM"},  {15, "KORSHAFT"},
            {18, "PRECIKOR"},   {20, "KORGEAR"}, {22, "KOROPTO"}, {25, "PLATFORM_COMPONENTS"},
            {28, "KORGEOMETRY"}};
        // List index, own index, source page, machine page.
        const int orderPages[][4] = {{7, 7, 6, 5},     {10, 10, 9, 8},   {13, 12, -1, 12},
                                     {16, 15, -1, 15}, {19, 19, -1, 18}, {21, 21, -1, 20},
                                     {23, 23, -1, 22}, {26, 26, -1, 25}, {29, 29, -1, 28}};
        std::vector<CDialog*> pages(kPageCount, nullptr);
        auto keep = [&](int index, std::unique_ptr<CDialog> page) {
            pages[static_cast<std::size_t>(index)] = page.get();
            owned.push_back(std::move(page));
        };
        keep(0, std::make_unique<CWizNewPage1>(&wizard));
        for (const auto& [index, key] : machinePages)
            keep(index, std::make_unique<CWizNewPage2a>(&wizard, key));
        for (int index : {6, 9})
            keep(index, std::make_unique<CWizNewPageForm1>(&wizard));
        for (const auto& row : orderPages)
            keep(row[0],
                 std::make_unique<CWizNewPageForm2>(
                     row[1], &wizard, row[2] < 0 ? nullptr : Page<CWizNewPageForm1>(pages, row[2]),
                     Page<CWizNewPage2a>(pages, row[3])));
        for (int index : {11, 14, 17, 24, 27, 30})
            keep(index, std::make_unique<CWizProxies>(&wizard));
        for (int i = 0; i < kPageCount; ++i)
            wizard.AddPage("page " + std::to_string(i), pages[static_cast<std::size_t>(i)],
                           pages[static_cast<std::size_t>(i)]
                               ? pages[static_cast<std::size_t>(i)]->template_id()
                               : 0);
    }
    template <class T> static T* Page(const std::vector<CDialog*>& pages, int index) {
        return dynamic_cast<T*>(pages[static_cast<std::size_t>(index)]);
    }
    template <class T> T* Page(int index) const { return dynamic_cast<T*>(wizard.GetPage(index)); }

    // Runs the wizard with `body` inside it.
    void Run(std::function<void()> body) {
        bool ran = false;
        host->body = [&] {
            body();
            ran = true;
        };
        wizard.DoModal();
        ASSERT_TRUE(ran);
    }
    bool NextEnabled() const { return wizard.GetDlgItem(IDOK)->IsWindowEnabled(); }
    // Chooses `machine` on machine page `index` the way a user does.
    void Choose(int index, const std::string& machine) {
        auto* page = Page<CWizNewPage2a>(index);
        wizard.SetCurSel(index);
        page->m_chosen.ResetContent();
        ASSERT_EQ(page->UserSelect(CWizNewPage2a::IDC_OFFERED,
                                   page->m_offered.FindStringExact(-1, machine)),
                  InputResult::Done);
        ASSERT_EQ(page->UserClick(CWizNewPage2a::IDC_ADD), InputResult::Done);
        ASSERT_EQ(page->GetChosenMachine(), machine);
    }

    korv::testing::LogCapture log;
    PageHost* host = nullptr;
    CMidSpanCfgDlg dlg{ProductTypeMidspan, "C:\\App\\", "C:\\App\\", nullptr};
    CWizardDlg wizard{&dlg};
    std::vector<std::unique_ptr<CDialog>> owned;
};

TEST_F(MachinePagesTest, ProductGroupKeysAndPreset) {
    const std::pair<const char*, int> keys[] = {{"SURFACE", 0},
                                                {"KORSURF", 0},
                                                {"FORM", 1},
                                                {"KORSIM", 2},
                                                {"KORSHAFT", 3},
                                                {"PRECIKOR", 4},
                                                {"KORGEAR", 5},
                                                {"KOROPTO", 6},
                                                {"PLATFORM_COMPONENTS", 7},
                                                {"KORGEOMETRY", 8},
                                                {"CONTOUR/SURFACE", -1},
                                                {"form", -1},
                                                {"FORM ", -1},
                                                {"", -1}};
    dlg.m_actGroup = "KORGEAR";
    Run([&] {
        auto* page = Page<CWizNewPage1>(0);
        EXPECT_EQ(page->m_group, 5); // opens on the active group
        EXPECT_EQ(page->IsDlgButtonChecked(1100), BST_CHECKED);
        EXPECT_TRUE(NextEnabled());
        EXPECT_FALSE(wizard.GetDlgItem(CWizardDlg::IDC_BACK)->IsWindowEnabled());
        for (const auto& [key, index] : keys) {
            page->m_group = 3;
            page->SelectProductGroup(key);
            EXPECT_EQ(CWizNewPage1::IsKnownProductGroup(key), index >= 0) << key;
            EXPECT_EQ(page->m_group, index >= 0 ? index : 3) << key;
        }
        page->UserClick(1106);
        EXPECT_EQ(page->m_group, 8);
    });
}

TEST_F(MachinePagesTest, MachineListsKeepSheetOrderAndNameEachMachineOnce) {
    AddSheet("Zeta", kSheetKorSim, "1");
    AddSheet("Alpha", kSheetKorSim | kSheetForm, "2");
    dlg.m_machineSheets->push_back(nullptr);
    AddSheet("Zeta", kSheetKorSim, "3");
    AddSheet("Form only", kSheetForm, "4");
    AddSheet("Geo", kSheetKorGeometry, "5");
    AddSheet("Everything", 0xFFFFFFFFu & ~kSheetKorOpto);
    dlg.m_actGroup = "KORSURF";
    Run([&] {
        const std::pair<int, std::vector<std::string>> offered[] = {
            {12, {"Zeta", "Alpha", "Everything"}},
            {8, {"Alpha", "Form only", "Everything"}},
            {28, {"Geo", "Everything"}},
            {22, {}},
        };
        for (const auto& [index, names] : offered) {
            auto* page = Page<CWizNewPage2a>(index);
            EXPECT_EQ(Items(page->m_offered), names) << index;
            EXPECT_EQ(page->m_offered.GetCurSel(), LB_ERR) << index;
            std::string caption;
            page->GetDlgItemText(CWizNewPage2a::IDC_CAPTION, caption);
            EXPECT_EQ(caption, "Define Drive unit(s) from list:.txt") << index;
            wizard.SetCurSel(index);
            EXPECT_FALSE(NextEnabled()) << index;
        }
    });
}

TEST_F(MachinePagesTest, SingleCandidateIsChosenAtOnce) {
    AddSheet("Shaft 1", kSheetKorShaft, "S-1");
    AddSheet("Shaft 1", kSheetKorShaft, "S-2");
    dlg.m_actGroup = "KORSHAFT";
    Run([&] {
        auto* page = Page<CWizNewPage2a>(15);
        EXPECT_EQ(Items(page->m_chosen), std::vector<std::string>{"Shaft 1"});
        EXPECT_EQ(page->m_offered.GetCurSel(), LB_ERR);
        std::string caption;
        page->GetDlgItemText(CWizNewPage2a::IDC_CAPTION, caption);
        EXPECT_EQ(caption, "Select a machine from the list:.txt");
        wizard.SetCurSel(15);
        EXPECT_TRUE(NextEnabled());
        EXPECT_TRUE(wizard.GetDlgItem(CWizardDlg::IDC_BACK)->IsWindowEnabled());
    });
}

TEST_F(MachinePagesTest, OneMachineAtATime) {
    AddSheet("Sim A", kSheetKorSim, "1");
    AddSheet("Sim B", kSheetKorSim, "2");
    Run([&] {
        auto* page = Page<CWizNewPage2a>(12);
        wizard.SetCurSel(12);
        page->UserClick(CWizNewPage2a::IDC_ADD); // nothing selected
        EXPECT_EQ(page->m_chosen.GetCount(), 0);
        page->UserDoubleClick(CWizNewPage2a::IDC_OFFERED, 0);
        EXPECT_TRUE(NextEnabled());
        page->UserSelect(CWizNewPage2a::IDC_OFFERED, 1);
        page->UserClick(CWizNewPage2a::IDC_ADD);
        EXPECT_EQ(Items(page->m_chosen), std::vector<std::string>{"Sim A"});
        EXPECT_EQ(page->m_offered.GetCount(), 2);
        // Up and down move nothing in a list of one.
        page->UserSelect(CWizNewPage2a::IDC_CHOSEN, 0);
        page->UserClick(CWizNewPage2a::IDC_DOWN);
        page->UserClick(CWizNewPage2a::IDC_UP);
        EXPECT_EQ(page->m_chosen.GetCurSel(), 0);
        page->UserClick(CWizNewPage2a::IDC_DELETE);
        EXPECT_EQ(page->m_chosen.GetCount(), 0);
        EXPECT_FALSE(NextEnabled());
        page->UserClick(CWizNewPage2a::IDC_ADD);
        EXPECT_EQ(Items(page->m_chosen), std::vector<std::string>{"Sim B"});

        // More chosen than allowed: emptied, with a message.
        page->CheckCapacity();
        EXPECT_TRUE(host->boxes.empty());
        page->m_capacity = 2;
        page->UserDoubleClick(CWizNewPage2a::IDC_OFFERED, 0);
        page->m_capacity = 1;
        page->CheckCapacity();
        EXPECT_EQ(page->m_chosen.GetCount(), 0);
        ASSERT_EQ(host->boxes.size(), 1u);
        EXPECT_EQ(host->boxes[0].first, "The interface properties have been changed.msg");
        EXPECT_EQ(host->boxes[0].second, MB_ICONINFORMATION);
    });
}

TEST_F(MachinePagesTest, OrderNumbersOfTheChosenMachine) {
    AddSheet("Sim A", kSheetKorSim, "S-1");
    AddSheet("Sim A", kSheetForm, "F-1");
    AddSheet("Sim A", kSheetKorSim, "");
    AddSheet("Sim B", kSheetKorSim, "S-2");
    AddSheet("Sim A", kSheetKorSim, "S-3");
    AddSheet("Sim A", kSheetKorSim, "S-1");
    AddSheet("Geo", kSheetKorGeometry, "G-1");
    AddSheet("Geo", kSheetKorSim, "G-2");
    AddSheet("Bare", kSheetKorGeometry);
    struct Case {
        int machinePage, orderPage;
        const char* machine;
        std::vector<std::string> orders;
    };
    const Case cases[] = {
        {12, 13, "Sim A", {"S-1", "S-3", "S-1"}}, // equal numbers stay
        {12, 13, "Sim B", {"S-2"}},
        {8, 10, "Sim A", {"F-1"}},
        {12, 13, "Geo", {"G-2"}},
        {28, 29, "Geo", {"G-1", "G-2"}}, // matched on the name alone
        {28, 29, "Bare", {}},
    };
    Run([&] {
        for (const Case& c : cases) {
            Choose(c.machinePage, c.machine);
            wizard.SetCurSel(c.orderPage);
            auto* page = Page<CWizNewPageForm2>(c.orderPage);
            EXPECT_EQ(Items(page->m_orderNumbers), c.orders) << c.machine;
            EXPECT_EQ(page->GetOrderNumberText(), c.orders.empty() ? "" : c.orders[0]);
            std::string label;
            page->GetDlgItemText(CWizNewPageForm2::IDC_ORDER_LABEL, label);
            EXPECT_EQ(label, "Order No.:.txt");
        }
        // A machine page with nothing chosen gives no order numbers.
        Page<CWizNewPage2a>(12)->m_chosen.ResetContent();
        wizard.SetCurSel(13);
        EXPECT_EQ(Page<CWizNewPageForm2>(13)->m_orderNumbers.GetCount(), 0);
    });
}

TEST_F(MachinePagesTest, ControlChoiceOnlyForTwoKorFormMachines) {
    for (const char* name : {"KMQ6100", "ShapeScan6100", "KMQ6200"}) {
        AddSheet(name, kSheetForm, "F");
        AddSheet(name, kSheetKorSim, "S");
    }
    struct Case {
        int machinePage, orderPage;
        const char* machine;
        bool offered;
    };
    const Case cases[] = {
        {8, 10, "KMQ6100", true},
        {8, 10, "ShapeScan6100", true},
        {8, 10, "KMQ6200", false},
        {12, 13, "KMQ6100", false},
    };
    Run([&] {
        for (const Case& c : cases) {
            Choose(c.machinePage, c.machine);
            wizard.SetCurSel(c.orderPage);
            auto* page = Page<CWizNewPageForm2>(c.orderPage);
            for (int id : {CWizNewPageForm2::IDC_CONTROLS, CWizNewPageForm2::IDC_CONTROL_LABEL})
                EXPECT_EQ(page->GetDlgItem(id)->IsWindowVisible(), c.offered) << c.machine;
            EXPECT_EQ(page->GetControlText(), c.offered ? "KorControl KMQ RF" : "") << c.machine;
            if (c.offered) {
                EXPECT_EQ(Items(page->m_controls),
                          (std::vector<std::string>{"KorControl KMQ RF", "KorForm IF-KS-K"}));
                page->UserSelect(CWizNewPageForm2::IDC_CONTROLS, 1);
                EXPECT_EQ(page->GetControlText(), "KorForm IF-KS-K");
            }
        }
    });
}

TEST_F(MachinePagesTest, ProxiesDefaultToTheControlItselfPerPage) {
    Run([&] {
        auto* form = Page<CWizProxies>(11);
        auto* sim = Page<CWizProxies>(14);
        EXPECT_EQ(form->GetProxyName(), "korecon");
        std::string shown;
        form->m_pProxyBox->GetLBText(0, shown);
        EXPECT_EQ(shown, "no_proxy.txt");
        wizard.SetCurSel(11);
        form->UserSelect(CWizProxies::IDC_PROXIES, 3);
        EXPECT_EQ(form->GetProxyName(), "interpolcncproxy");
        form->UserSelect(CWizProxies::IDC_PROXIES, 8);
        EXPECT_EQ(form->GetProxyName(), "twiproxy");
        EXPECT_EQ(sim->GetProxyName(), "korecon");
        sim->m_pProxyBox->SetCurSel(-1);
        EXPECT_EQ(sim->GetProxyName(), "");
        form->m_proxyValues.resize(8);
        EXPECT_EQ(form->GetProxyName(), "");
    });
}

TEST_F(MachinePagesTest, FormSourceNewInstallationForcesNewData) {
    Run([&] {
        auto* page = Page<CWizNewPageForm1>(9);
        wizard.SetCurSel(9);
        CWnd* factoryDisk = page->GetDlgItem(CWizNewPageForm1::IDC_READ_FACTORY_DISK);
        EXPECT_FALSE(factoryDisk->IsWindowEnabled());
        EXPECT_EQ(page->IsDlgButtonChecked(CWizNewPageForm1::IDC_EDIT_NEW_DATA), BST_CHECKED);
        EXPECT_EQ(page->UserClick(CWizNewPageForm1::IDC_READ_FACTORY_DISK), InputResult::Disabled);

        page->UserClick(CWizNewPageForm1::IDC_FORM_PC_DATA);
        EXPECT_TRUE(factoryDisk->IsWindowEnabled());
        page->UserClick(CWizNewPageForm1::IDC_READ_FACTORY_DISK);
        EXPECT_EQ(page->m_nextStep, 0);
        EXPECT_EQ(page->m_source, 1);

        page->UserClick(CWizNewPageForm1::IDC_NEW_INSTALLATION);
        EXPECT_FALSE(factoryDisk->IsWindowEnabled());
        EXPECT_EQ(page->m_nextStep, 1);
        EXPECT_EQ(page->IsDlgButtonChecked(CWizNewPageForm1::IDC_EDIT_NEW_DATA), BST_CHECKED);
    });
}

TEST(PortUnits, FirstClassFoundInTheNameDecides) {
    const std::pair<const char*, int> names[] = {
        {"PZK 20", 1},        {"XD 120", 1},        {"YD 120 CNC", 0},    {"WD 130", 0},
        {"my YD 25 unit", 1}, {"PQK QCV", 0},       {"PQK", 1},           {"VD120", 0},
        {"PZK 120", 1},       {"YD 30 compact", 1}, {"YD 30 Compact", 0}, {"yd 25", 0},
    };
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
        AddSheet(unit, kSheetKorSim);
    struct Case {
        int mode, capacity;
        std::vector<std::string> kept;
    };
    const Case cases[] = {
        {1, 1, {"U1", "U3"}}, {0, 8, {"U1", "U2", "U3", "U4", "U5"}},
        {1, 8, {"U2", "U3"}}, {2, 1, {"U2", "U3"}},
        {2, 8, {"U2", "U3"}}, {3, 1, {"U1", "U3"}},
        {3, 8, {"U2", "U3"}}, {0, 1, {"U1", "U2", "U3", "U4", "U5"}},
    };
    const std::string before = std::filesystem::current_path();
    ASSERT_EQ(::chdir(cwd.path().c_str()), 0);
    const std::int32_t savedMode = g_interfaceMode;
    Run([&] {
        auto* page = Page<CWizNewPage2a>(12);
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
        wizard.SetCurSel(12);
        page->UpdateMachineButtons();
        EXPECT_EQ(Items(page->m_offered), (std::vector<std::string>{"U1", "U3"}));
    });
    g_interfaceMode = savedMode;
    ASSERT_EQ(::chdir(before.c_str()), 0);
}

TEST_F(MachinePagesTest, SlotModePutsUnitsOnTheirPortsAndKeepsThemInTheirHalf) {
    AddSheet("QCV 1", kSheetKorSim);
    AddSheet("PQK 2", kSheetKorSim);
    Run([&] {
        auto* page = Page<CWizNewPage2a>(12);
        wizard.SetCurSel(12);
        page->m_capacity = CWizNewPage2a::kSlotCapacity;
        host->portAnswer = 1; // Port2, or Port6 for a class 1 unit
        page->UserDoubleClick(CWizNewPage2a::IDC_OFFERED, 0);
        page->UserDoubleClick(CWizNewPage2a::IDC_OFFERED, 1);
        host->portAnswer = -1;
        page->UserDoubleClick(CWizNewPage2a::IDC_OFFERED, 0); // cancelled
        EXPECT_EQ(Items(page->m_chosen),
                  (std::vector<std::string>{"", "QCV 1", "", "", "", "PQK 2", "", ""}));
        EXPECT_TRUE(NextEnabled());

        // Each click moves one row; the unit stops at the edge of its half.
        const std::pair<int, int> moves[] = {
            {1, CWizNewPage2a::IDC_DOWN}, {2, CWizNewPage2a::IDC_DOWN},
            {3, CWizNewPage2a::IDC_DOWN}, {5, CWizNewPage2a::IDC_UP},
            {4, CWizNewPage2a::IDC_UP},   {4, CWizNewPage2a::IDC_DOWN},
        };
        const int expected[] = {2, 3, 3, 4, 4, 5};
        for (std::size_t i = 0; i < std::size(moves); ++i) {
            page->UserSelect(CWizNewPage2a::IDC_CHOSEN, moves[i].first);
            page->UserClick(moves[i].second);
            EXPECT_EQ(page->m_chosen.GetCurSel(), expected[i]) << i;
        }
        EXPECT_EQ(Items(page->m_chosen),
                  (std::vector<std::string>{"", "", "", "QCV 1", "", "PQK 2", "", ""}));
        page->UserSelect(CWizNewPage2a::IDC_CHOSEN, 3);
        page->UserClick(CWizNewPage2a::IDC_DELETE);
        EXPECT_EQ(Items(page->m_chosen),
                  (std::vector<std::string>{"", "", "", "", "", "PQK 2", "", ""}));
    });
}

} // namespace
