#include "RigCfg.h"
#include "RigCfgDlg.h"
#include "ktranslate.h"
#include "log_capture.h"
#include "scratch_dir.h"
#include "ui_host.h"
#include "ui_host_selection.h"
#include "wizard/CustomWizardDlg.h"
#include "wizard/WizNewPage1.h"
#include "wizard/WizNewPage2a.h"
#include "wizard/WizNewPageForm1.h"
#include "wizard/WizNewPageForm2.h"
#include "wizard/WizNewPageLast.h"
#include "wizard/WizProxies.h"
#include "wizard/WizardPageList.h"
#include "wizard/wizard_resources.h"
#include "wizard/wizard_routing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace {

using korv::ui::CDialog;
using korv::ui::IDOK;
using korv::ui::InputResult;

// The radio buttons of page 0, by group index.
constexpr int kGroupRadios[] = {1021, 1022, 1024, 1098, 1099, 1100, 1101, 1105, 1106};
constexpr int kUnitRows[] = {1090, 1091, 1092, 1093, 1094, 1095, 1096, 1097};
constexpr int kStandRows[] = {1067, 1068};

class BodyHost : public korv::ui::Host {
public:
    std::function<void()> body;
    std::size_t pagesAtEnd = 0;
    void DialogOpened(CDialog&) override {}
    void RunModal(CDialog& dialog) override {
        if (body)
            body();
        if (!dialog.modal_ended())
            dialog.EndDialog(korv::ui::IDCANCEL);
    }
    // The pages are to be gone before the wizard's own window goes.
    void DialogEnded(CDialog& dialog, int) override { pagesAtEnd = dialog.child_dialogs().size(); }
    int ShowMessageBox(const std::string&, unsigned) override { return IDOK; }
};

// What a run left on the wizard.
struct Result {
    int code = 0;
    std::string group, driveUnit, table, stand, control, proxy, machine, orderNo, folder, file;
    std::string summary;
};

// The wizard with the real page list over hand-made sheets; translations are
// the keys themselves.
class CustomWizardTest : public ::testing::Test {
protected:
    void SetUp() override {
        RegisterWizardResources();
        auto host = std::make_unique<BodyHost>();
        m_host = host.get();
        korv::ui::install_host(std::move(host));
        Translate_init("", root / "none", "en", "RigCfg");
        dlg.m_machineSheets = std::make_unique<MachineSheetList>();
        dlg.m_tableSheets = std::make_unique<TableSheetList>();
        dlg.m_standSheets = std::make_unique<StandSheetList>();
    }
    void TearDown() override {
        Translate_init("", root / "none", "en", "RigCfg");
        korv::ui::reset_host_selection();
    }

    void AddMachine(const char* name, std::uint32_t flags, const char* orderNo = "",
                    std::int32_t tableMode = kTableNone, const std::string& folder = "") {
        auto sheet = std::make_unique<MachineDataSheet>();
        std::strcpy(sheet->name, name);
        std::strcpy(sheet->order_no, orderNo);
        sheet->flags = flags;
        sheet->table_mode = tableMode;
        sheet->folder = folder;
        sheet->ini_path = folder.empty() ? "" : folder + "\\machine.ini";
        dlg.m_machineSheets->push_back(std::move(sheet));
    }
    void AddTable(const char* name) {
        auto sheet = std::make_unique<TableDataSheet>();
        std::strcpy(sheet->name, name);
        dlg.m_tableSheets->push_back(std::move(sheet));
    }
    void AddStand(const char* name, std::int32_t position) {
        auto sheet = std::make_unique<StandDataSheet>();
        std::strcpy(sheet->name, name);
        sheet->position = position;
        dlg.m_standSheets->push_back(std::move(sheet));
    }

    // Runs the wizard with `body` inside it and keeps what it left.
    Result Run(const std::function<void()>& body) {
        Result r;
        CCustomWizardDlg wizard(&dlg);
        WizardPageList pages(wizard);
        wiz = &wizard;
        m_host->body = body;
        r.code = wizard.DoModal();
        m_host->body = nullptr;
        wiz = nullptr;
        r = {r.code,
             wizard.m_resGroup,
             wizard.m_resDriveUnit,
             wizard.m_resTable,
             wizard.m_resStand,
             wizard.m_resControl,
             wizard.m_resProxy,
             wizard.m_resMachine,
             wizard.m_resOrderNo,
             wizard.m_resIniFolder,
             wizard.m_resIniFile,
             wizard.GetPageAs<CWizNewPageLast>(kWizSummaryPage)->m_summary};
        pagesLeftOpen = static_cast<int>(m_host->pagesAtEnd);
        return r;
    }

    // As a user does it, on the wizard or its visible page.
    CDialog* Target(int id) const {
        CDialog* target = wiz->find_input_target(id);
        return target ? target : wiz;
    }
    void Click(int id) { ASSERT_EQ(Target(id)->UserClick(id), InputResult::Done) << id; }
    void Check(int id, bool on) { Target(id)->UserCheck(id, on); }
    void Select(int id, int index) {
        ASSERT_EQ(Target(id)->UserSelect(id, index), InputResult::Done) << id << " " << index;
    }
    // Next until the summary, from page 0 with group `group` chosen; the pages seen.
    std::vector<int> WalkForward(int group) {
        Click(kGroupRadios[group]);
        std::vector<int> seen{wiz->m_curPage};
        while (wiz->m_curPage != kWizSummaryPage && seen.size() <= kWizPageCount) {
            Click(IDOK);
            seen.push_back(wiz->m_curPage);
        }
        return seen;
    }
    std::vector<int> WalkBack() {
        std::vector<int> seen{wiz->m_curPage};
        while (wiz->m_curPage > 0 && seen.size() <= kWizPageCount) {
            Click(CWizardDlg::IDC_BACK);
            seen.push_back(wiz->m_curPage);
        }
        return seen;
    }
    std::string NextText() const {
        std::string text;
        wiz->GetDlgItemText(IDOK, text);
        return text;
    }
    bool BackEnabled() const { return wiz->GetDlgItem(CWizardDlg::IDC_BACK)->IsWindowEnabled(); }

    korv::testing::ScratchRoot root;
    korv::testing::LogCapture log;
    CMidSpanCfgDlg dlg{ProductTypeMidspan, "", "", nullptr};
    BodyHost* m_host = nullptr;
    CCustomWizardDlg* wiz = nullptr;
    int pagesLeftOpen = -1;
};

TEST_F(CustomWizardTest, PageListOrderTitlesAndIds) {
    // A group page's key is translated when the list is built, a bare title only when shown.
    root.write("locale/de/RigCfg.po", "msgid \"Maschinentyp.txt\"\nmsgstr \"Maschinenart\"\n\n"
                                      "msgid \"product group\"\nmsgstr \"Produktgruppe\"\n");
    Translate_init("", root.path(), "de", "RigCfg");
    CCustomWizardDlg wizard(&dlg);
    {
        WizardPageList pages(wizard);
        ASSERT_EQ(wizard.GetPageCount(), kWizPageCount);
        const std::vector<int> ids = {130, 153, 169, 132, 168, 154, 155, 156, 154, 155, 156,
                                      170, 154, 156, 170, 154, 156, 170, 154, 156, 154, 156,
                                      154, 156, 170, 154, 156, 170, 154, 156, 170, 152};
        EXPECT_EQ(wizard.m_dialogIds, ids);
        EXPECT_EQ(wizard.m_titles[0], "product group");
        EXPECT_EQ(wizard.m_titles[4], "measurement stand");
        EXPECT_EQ(wizard.m_titles[6], "KorSurf: DataSource.txt");
        EXPECT_EQ(wizard.m_titles[11], "KorForm: choose_proxy.txt");
        EXPECT_EQ(wizard.m_titles[26], "Platform: Zusatzparameter.txt");
        EXPECT_EQ(wizard.m_titles[28], "KorGeometry: Maschinenart");
        EXPECT_EQ(wizard.m_titles[5], "KorSurf: Maschinenart");
        EXPECT_EQ(wizard.m_titles[31], "summary");
        // Order number pages: their own index, their group's machine and source page.
        const std::vector<std::pair<int, int>> own = {
            {7, 7}, {10, 10}, {13, 12}, {16, 15}, {19, 19}, {21, 21}, {23, 23}, {26, 26}, {29, 29}};
        for (const auto& [at, index] : own) {
            auto* form = wizard.GetPageAs<CWizNewPageForm2>(at);
            ASSERT_TRUE(form) << at;
            EXPECT_EQ(form->m_pageIndex, index);
            const int machineAt = at == 7 || at == 10 ? at - 2 : at - 1;
            EXPECT_EQ(form->m_pMachinePage, wizard.GetPageAs<CWizNewPage2a>(machineAt)) << at;
            EXPECT_EQ(form->m_pSourcePage,
                      at == 7 || at == 10 ? wizard.GetPageAs<CWizNewPageForm1>(at - 1) : nullptr);
        }
        EXPECT_EQ(wizard.GetPageAs<CWizNewPage2a>(25)->m_groupKey, "PLATFORM_COMPONENTS");
    }
    EXPECT_EQ(wizard.GetPage(32), nullptr);
    EXPECT_TRUE(log.has_error("GetPage(): invalid page index 32 of 32 pages"));
}

TEST_F(CustomWizardTest, FormSummaryOfTheMidspanFamilyAndFinish) {
    AddMachine("Other", kSheetKorSim, "123", kTableManual);
    AddMachine("M", kSheetForm, "123", kTableAutomatic, "C:\\m");
    std::vector<int> forward, back;
    const Result r = Run([&] {
        forward = WalkForward(1);
        EXPECT_EQ(NextText(), "Finish.but");
        std::string title;
        wiz->GetDlgItemText(CWizardDlg::IDC_TITLE, title);
        EXPECT_EQ(title, "summary");
        back = WalkBack();
        EXPECT_EQ(NextText(), "Next.but");
        WalkForward(1);
        Click(IDOK);
    });
    EXPECT_EQ(forward, (std::vector<int>{0, 8, 10, 31}));
    EXPECT_EQ(back, (std::vector<int>{31, 9, 8, 0}));
    EXPECT_EQ(r.code, IDOK);
    EXPECT_EQ(pagesLeftOpen, 0);
    EXPECT_EQ(r.summary, "product group:.txt\n"
                         "    FORM\n"
                         "\n"
                         "machine.txt:\n"
                         "    M\n"
                         "    Order No.:.txt 123\n"
                         "\n"
                         "centering and tilting table:.txt\n"
                         "    automatic\n"
                         "\n"
                         "measurement stand(s):.txt\n"
                         "    \n"
                         "    No Stand");
    EXPECT_EQ(r.group, "FORM");
    EXPECT_EQ(r.driveUnit, "M:Order-No:123");
    EXPECT_EQ(r.table, "automatic");
    EXPECT_EQ(r.stand, "No Stand");
    EXPECT_EQ(r.machine, "M");
    EXPECT_EQ(r.orderNo, "123");
    EXPECT_EQ(r.folder, "C:\\m");
    EXPECT_EQ(r.file, "C:\\m\\machine.ini");
    EXPECT_EQ(r.control, "");
    // Page 11 was never shown; its default selection still counts.
    EXPECT_EQ(r.proxy, "korecon");
}

TEST_F(CustomWizardTest, KorEConShowsTheShortTextWithTheProxy) {
    dlg.m_productType = ProductTypeKorECon;
    AddMachine("M", kSheetForm, "123", kTableAutomatic);
    struct Case {
        int proxyIndex;
        std::string proxy;
        std::string shown;
    };
    for (const Case& c : {Case{0, "korecon", "no_proxy.txt"}, Case{4, "cncproxy", "cncproxy"}}) {
        const Result r = Run([&] {
            Click(kGroupRadios[1]);
            Click(IDOK);
            Click(IDOK);
            Click(IDOK);
            ASSERT_EQ(wiz->m_curPage, 11);
            Select(CWizProxies::IDC_PROXIES, c.proxyIndex);
            Click(IDOK);
        });
        EXPECT_EQ(r.summary, "product group:.txt\n    FORM\n\nmachine.txt:\n    M\n"
                             "    Order No.:.txt 123\n\nProxy:.txt\n    " +
                                 c.shown + "\n");
        EXPECT_EQ(r.proxy, c.proxy);
        EXPECT_EQ(r.table, "automatic");
        EXPECT_EQ(r.code, korv::ui::IDCANCEL);
    }
}

TEST_F(CustomWizardTest, KorShaftSaysTypeAndNoTable) {
    AddMachine("S", kSheetKorShaft, "9", kTableNone, "C:\\s");
    AddMachine("S", kSheetKorSim, "9", kTableManual, "C:\\wrong group");
    const Result r = Run([&] { WalkForward(3); });
    EXPECT_EQ(r.summary, "product group:.txt\n    KORSHAFT\n\nmachine.txt:\n    S\n"
                         "    Typ.txt 9\n\ncentering and tilting table:.txt\n    No Table\n\n"
                         "measurement stand(s):.txt\n    \n    No Stand");
    EXPECT_EQ(r.table, "No Table");
    EXPECT_EQ(r.folder, "C:\\s");
    EXPECT_EQ(r.proxy, "korecon");
}

TEST_F(CustomWizardTest, ContourSummaryDriveUnitsTableAndStands) {
    const std::uint32_t anywhere = kSheetContour | kSheetCom1 | kSheetCom2 | kSheetSwitch;
    AddMachine("A", anywhere, "", kTableNone, "C:\\first");
    AddMachine("B", anywhere, "", kTableNone, "C:\\second");
    AddTable("T1");
    AddStand("H", kStandHorizontal);
    AddStand("P", 0);
    struct Case {
        const char* what;
        bool com1, onSwitch, com2;
        std::vector<std::pair<int, int>> picks; // row, item (1 "A", 2 "B")
        std::string driveUnit;
        std::string units;
    };
    const std::vector<Case> cases = {
        {"first", true, false, false, {{0, 1}}, "A:COM1", "    COM1: A"},
        {"second", false, false, true, {{0, 2}}, "B:COM2", "    COM2: B"},
        {"both", true, false, true, {{0, 1}, {1, 2}}, "A:COM1,B:COM2", "    COM1: A\n    COM2: B"},
        {"switch",
         true,
         true,
         false,
         {{0, 1}, {4, 2}},
         "A,,,,B,,,:COM1:switch",
         "    COM1(switch): A,,,,B,,,"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const Result r = Run([&] {
            Click(IDOK);
            ASSERT_EQ(wiz->m_curPage, 1);
            Check(1026, c.com1);
            if (c.onSwitch)
                Click(1034);
            Check(1028, c.com2);
            Click(IDOK);
            for (const auto& [row, item] : c.picks)
                Select(kUnitRows[row], item);
            Click(IDOK);
            Click(IDOK);
            ASSERT_EQ(wiz->m_curPage, 4);
            // Stand texts: "H (hor.)", "H", "P".
            Select(kStandRows[0], 0);
            if (c.picks.size() > 1)
                Select(kStandRows[1], 2);
            Click(IDOK);
            Click(IDOK);
        });
        const bool two = c.picks.size() > 1;
        EXPECT_EQ(r.code, IDOK);
        EXPECT_EQ(r.group, "CONTOUR/SURFACE");
        EXPECT_EQ(r.driveUnit, c.driveUnit);
        EXPECT_EQ(r.table, "T1");
        EXPECT_EQ(r.stand, two ? "H:horizontal,P" : "H:horizontal");
        EXPECT_EQ(r.folder, "C:\\first");
        EXPECT_EQ(r.control, "");
        EXPECT_EQ(r.proxy, "");
        EXPECT_EQ(r.summary, "product group:.txt\n    CONTOUR/SURFACE\n\ndrive unit(s).txt:\n" +
                                 c.units +
                                 "\n\nmeasurement table:.txt\n    T1\n\nmeasurement stand(s):.txt\n"
                                 "    H (hor.)" +
                                 (two ? "    ,P" : ""));
    }
}

TEST_F(CustomWizardTest, UnknownGroupIsLoggedAndTakenAsTheFirst) {
    AddMachine("A", kSheetContour | kSheetCom1);
    const Result r = Run([&] {
        // Set past page 0, whose radio group would take it back.
        wiz->SetCurSel(1);
        wiz->GetPageAs<CWizNewPage1>(0)->m_group = 12;
        wiz->SetCurSel(kWizSummaryPage);
        wiz->EnableDlgItem(CWizardDlg::IDC_BACK, true);
        Click(CWizardDlg::IDC_BACK);
        EXPECT_EQ(wiz->m_curPage, 4);
        Click(korv::ui::IDCANCEL);
    });
    EXPECT_TRUE(log.has_error("SetCurSel(): unknown product group #12"));
    EXPECT_TRUE(log.has_error("OnBack(): unknown product group #12"));
    EXPECT_EQ(r.group, "CONTOUR/SURFACE");
    EXPECT_EQ(r.code, korv::ui::IDCANCEL);
    EXPECT_EQ(pagesLeftOpen, 0);
}

// Every group's run through the real pages, forward to the summary and back.
TEST_F(CustomWizardTest, HeadlessWalksOfTheMachineGroups) {
    CMidSpanCfgApp app;
    dlg.m_pApp = &app;
    const std::uint32_t groupBits[] = {
        kSheetKorSurf,    kSheetForm,    kSheetKorSim,  kSheetKorShaft,
        kSheetPrecikor,   kSheetKorGear, kSheetKorOpto, kSheetPlatformComponents,
        kSheetKorGeometry};
    for (std::uint32_t bits : groupBits)
        AddMachine("M", bits, "1");
    struct Case {
        int group;
        const char* control;
        ProductType type;
        std::vector<int> forward;
        std::vector<int> back;
        const char* key;
    };
    const std::vector<Case> cases = {
        {0, "korecon", ProductTypeKorECon, {0, 5, 7, 31}, {31, 7, 5, 0}, "KORSURF"},
        {1, "", ProductTypeKorECon, {0, 8, 10, 11, 31}, {31, 9, 8, 0}, "FORM"},
        {2, "", ProductTypeMidspan, {0, 12, 13, 14, 31}, {31, 14, 13, 12, 0}, "KORSIM"},
        {3, "", ProductTypeMidspan, {0, 15, 16, 17, 31}, {31, 17, 16, 15, 0}, "KORSHAFT"},
        {4, "", ProductTypeMidspan, {0, 18, 19, 31}, {31, 19, 18, 0}, "PRECIKOR"},
        {5, "", ProductTypeMidspan, {0, 20, 21, 31}, {31, 21, 20, 0}, "KORGEAR"},
        {6, "", ProductTypeMidspan, {0, 22, 23, 24, 31}, {31, 24, 23, 22, 0}, "KOROPTO"},
        {7,
         "",
         ProductTypeMidspan,
         {0, 25, 26, 27, 31},
         {31, 27, 26, 25, 0},
         "PLATFORM_COMPONENTS"},
        {8, "", ProductTypeMidspan, {0, 28, 29, 30, 31}, {31, 30, 29, 28, 0}, "KORGEOMETRY"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.key);
        app.m_cmdInfo.m_control = c.control;
        dlg.m_productType = c.type;
        std::vector<int> forward, back, again;
        const Result r = Run([&] {
            EXPECT_FALSE(BackEnabled());
            forward = WalkForward(c.group);
            back = WalkBack();
            again = WalkForward(c.group);
            Click(IDOK);
        });
        EXPECT_EQ(forward, c.forward);
        EXPECT_EQ(back, c.back);
        EXPECT_EQ(again, c.forward);
        EXPECT_EQ(r.code, IDOK);
        EXPECT_EQ(r.group, c.key);
        EXPECT_EQ(r.driveUnit, "M:Order-No:1");
        EXPECT_EQ(pagesLeftOpen, 0);
    }
    dlg.m_pApp = nullptr;
}

TEST_F(CustomWizardTest, PresetsAndToolTips) {
    CMidSpanCfgApp app;
    dlg.m_pApp = &app;
    AddMachine("M", kSheetForm, "1");
    struct Case {
        const char* productgroup;
        const char* mode;
        int page;
        int group;
    };
    const std::vector<Case> cases = {
        {"", "", 0, 0},        {"SURFACE", "", 1, 0},
        {"KORSURF", "", 1, 0}, {"FORM", "", 10, 1},
        {"KORSIM", "", 0, 2},  {"KORGEOMETRY", "", 0, 8},
        {"form", "", 0, 0},    {"FORM", "new", 1, 0},
        {"", "new", 1, 0},     {"CONTOUR/SURFACE", "copy", 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.productgroup << " " << c.mode);
        app.m_cmdInfo.m_productgroup = c.productgroup;
        app.m_cmdInfo.m_machine = "Preset machine";
        app.m_machineEntry.configure.mode = c.mode;
        Run([&] {
            EXPECT_EQ(wiz->m_curPage, c.page);
            EXPECT_EQ(g_wizCurrentPage, c.page);
            EXPECT_EQ(wiz->GetPageAs<CWizNewPage1>(0)->m_group, c.group);
            if (c.page != 10)
                EXPECT_FALSE(BackEnabled());
            else
                EXPECT_EQ(wiz->GetPageAs<CWizNewPage2a>(8)->GetChosenMachine(), "Preset machine");
            EXPECT_TRUE(wiz->tool_tips_active());
            EXPECT_EQ(wiz->find_control(IDOK)->tip, "next page or finish wizard.txt");
            EXPECT_EQ(wiz->find_control(korv::ui::IDCANCEL)->tip, "Abbrechen.but");
            EXPECT_EQ(wiz->find_control(CWizardDlg::IDC_BACK)->tip, "previous page.txt");
        });
    }
    dlg.m_pApp = nullptr;
}

} // namespace
