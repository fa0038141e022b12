#include "wizard/wizard_fixture.h"

namespace {

using namespace wiztest;

// The radio buttons of page 0, by group index.
constexpr int kGroupRadios[] = {1021, 1022, 1024, 1098, 1099, 1100, 1101, 1105, 1106};

// Every route of the page list: group, the "control=" word and the product type.
struct Route {
    int group;
    const char* control;
    int productType;
    std::vector<int> forward, back;
    const char* key; // the group the wizard returns
};

// clang-format off
const Route kRoutes[] = {
    {0, "", 0, {0, 1, 2, 3, 4, 31}, {31, 4, 3, 2, 1, 0}, "CONTOUR/SURFACE"},
    {0, "korecon", 1, {0, 5, 7, 31}, {31, 7, 5, 0}, "KORSURF"},
    {0, "Korecon", 0, {0, 1, 2, 3, 4, 31}, {31, 4, 3, 2, 1, 0}, "CONTOUR/SURFACE"},
    {1, "", 0, {0, 8, 10, 31}, {31, 9, 8, 0}, "FORM"},
    {1, "korecon", 1, {0, 8, 10, 11, 31}, {31, 9, 8, 0}, "FORM"},
    {1, "", 2, {0, 8, 10, 11, 31}, {31, 9, 8, 0}, "FORM"},
    {2, "", 0, {0, 12, 13, 14, 31}, {31, 14, 13, 12, 0}, "KORSIM"},
    {3, "", 0, {0, 15, 16, 17, 31}, {31, 17, 16, 15, 0}, "KORSHAFT"},
    {4, "", 0, {0, 18, 19, 31}, {31, 19, 18, 0}, "PRECIKOR"},
    {5, "", 0, {0, 20, 21, 31}, {31, 21, 20, 0}, "KORGEAR"},
    {6, "", 0, {0, 22, 23, 24, 31}, {31, 24, 23, 22, 0}, "KOROPTO"},
    {7, "", 0, {0, 25, 26, 27, 31}, {31, 27, 26, 25, 0}, "PLATFORM_COMPONENTS"},
    {8, "", 0, {0, 28, 29, 30, 31}, {31, 30, 29, 28, 0}, "KORGEOMETRY"},
};
// clang-format on

class CustomWizardTest : public WizardFixture {
protected:
    // Clicks `id` until `stop`, from page 0 with `group` chosen when it is one; the pages seen.
    // Interfaces and drive unit left open are set to COM1 and the first unit on the way.
    std::vector<int> Walk(int id, int stop, int group = -1) {
        if (group >= 0)
            Click(kGroupRadios[group]);
        std::vector<int> seen{wiz->m_curPage};
        while (wiz->m_curPage != stop && seen.size() <= kWizPageCount) {
            if (id == IDOK && !NextEnabled() && wiz->m_curPage == 1)
                ChooseInterfaces(true, false, false);
            if (id == IDOK && !NextEnabled() && wiz->m_curPage == 2)
                Select(UnitCombo(0), 1);
            Click(id);
            seen.push_back(wiz->m_curPage);
        }
        return seen;
    }
};

// The links between the pages show in the walks and the order number tests.
TEST_F(CustomWizardTest, PageListOrderAndIds) {
    CCustomWizardDlg wizard(&dlg);
    {
        WizardPageList pages(wizard);
        ASSERT_EQ(wizard.GetPageCount(), kWizPageCount);
        const std::vector<int> ids = {130, 153, 169, 132, 168, 154, 155, 156, 154, 155, 156,
                                      170, 154, 156, 170, 154, 156, 170, 154, 156, 154, 156,
                                      154, 156, 170, 154, 156, 170, 154, 156, 170, 152};
        EXPECT_EQ(wizard.m_dialogIds, ids);
    }
    EXPECT_EQ(wizard.GetPage(32), nullptr);
    EXPECT_TRUE(log.has_error("GetPage(): invalid page index 32 of 32 pages"));
}

// FORM of the Midspan family, KorShaft with its "Typ", the short KorECon text with its proxy.
TEST_F(CustomWizardTest, MachineSummariesAndResultStrings) {
    AddMachine("Other", kSheetKorSim, "123", kTableManual);
    AddMachine("M", kSheetForm, "123", kTableAutomatic, "C:\\m");
    AddMachine("S", kSheetKorShaft, "9", kTableNone, "C:\\s");
    AddMachine("S", kSheetKorSim, "9", kTableManual, "C:\\wrong group");
    const std::string form = "product group:.txt\n    FORM\n\nmachine.txt:\n    M\n"
                             "    Order No.:.txt 123\n\n";
    const std::string stands = "\n\nmeasurement stand(s):.txt\n    \n    No Stand";
    const Strings formResults = {"FORM", "M:Order-No:123", "automatic",          "No Stand", "M",
                                 "123",  "C:\\m",          "C:\\m\\machine.ini", ""};
    struct Case {
        ProductType type;
        int group, proxy; // -1: page 11 is never shown, its default counts
        std::string summary;
        Strings results;
        std::string resultProxy;
    };
    // clang-format off
    const Case cases[] = {
        {ProductTypeMidspan, 1, -1, form + "centering and tilting table:.txt\n    automatic" + stands, formResults, "korecon"},
        {ProductTypeMidspan, 3, -1, "product group:.txt\n    KORSHAFT\n\nmachine.txt:\n    S\n    Typ.txt 9\n\n"
            "centering and tilting table:.txt\n    No Table" + stands,
         {"KORSHAFT", "S:Order-No:9", "No Table", "No Stand", "S", "9", "C:\\s", "C:\\s\\machine.ini", ""}, "korecon"},
        {ProductTypeKorECon, 1, 0, form + "Proxy:.txt\n    no_proxy.txt\n", formResults, "korecon"},
        {ProductTypeKorECon, 1, 4, form + "Proxy:.txt\n    cncproxy\n", formResults, "cncproxy"},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.group << " " << c.proxy);
        dlg.m_productType = c.type;
        const Result r = Run([&] {
            Walk(IDOK, c.proxy >= 0 ? 11 : kWizSummaryPage, c.group);
            if (c.proxy >= 0) {
                Select(CWizProxies::IDC_PROXIES, c.proxy);
                Click(IDOK);
            }
            Click(IDOK);
        });
        EXPECT_EQ(r.code, IDOK);
        EXPECT_EQ(r.summary, c.summary);
        const Strings got = {r.group,   r.driveUnit, r.table, r.stand,  r.machine,
                             r.orderNo, r.folder,    r.file,  r.control};
        EXPECT_EQ(got, c.results);
        EXPECT_EQ(r.proxy, c.resultProxy);
    }
}

TEST_F(CustomWizardTest, ContourSummaryDriveUnitsTableAndStands) {
    const std::uint32_t anywhere = kSheetContour | kSheetCom1 | kSheetCom2 | kSheetSwitch;
    AddMachine("A", anywhere, "", kTableNone, "C:\\first");
    AddMachine("B", anywhere, "", kTableNone, "C:\\second");
    AddTable("T1");
    AddStand("H", kStandHorizontal); // offered as "H (hor.)" and "H"
    AddStand("P", 0);
    struct Case {
        bool com1, onSwitch, com2;
        std::vector<std::pair<int, int>> picks; // unit row, item (1 "A", 2 "B")
        int secondStand;                        // item of the second stand row
        std::string driveUnit, units, stand, stands;
    };
    // clang-format off
    const Case cases[] = {
        {true, false, false, {{0, 1}}, -1, "A:COM1", "    COM1: A", "H:horizontal", ""},
        {false, false, true, {{0, 2}}, -1, "B:COM2", "    COM2: B", "H:horizontal", ""},
        {true, false, true, {{0, 1}, {1, 2}}, 2, "A:COM1,B:COM2", "    COM1: A\n    COM2: B", "H:horizontal,P", "    ,P"},
        {true, true, false, {{0, 1}, {4, 2}}, 1, "A,,,,B,,,:COM1:switch", "    COM1(switch): A,,,,B,,,", "H:horizontal,H", "    ,H"},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(c.driveUnit);
        const Result r = Run([&] {
            Click(IDOK);
            ChooseInterfaces(c.com1, c.onSwitch, c.com2);
            Click(IDOK);
            for (const auto& [row, item] : c.picks)
                Select(UnitCombo(row), item);
            Walk(IDOK, 4);
            if (c.secondStand >= 0)
                Select(CWizMeasureStands::kRowIds[1].combo, c.secondStand);
            Walk(IDOK, kWizSummaryPage);
            Click(IDOK);
        });
        EXPECT_EQ(r.code, IDOK);
        EXPECT_EQ(r.group, "CONTOUR/SURFACE");
        EXPECT_EQ(r.driveUnit, c.driveUnit);
        EXPECT_EQ(r.table, "T1");
        EXPECT_EQ(r.stand, c.stand);
        // The first sheet of the catalogue, whichever unit was chosen.
        EXPECT_EQ(r.folder, "C:\\first");
        EXPECT_EQ(r.proxy, "");
        EXPECT_EQ(r.summary, "product group:.txt\n    CONTOUR/SURFACE\n\ndrive unit(s).txt:\n" +
                                 c.units +
                                 "\n\nmeasurement table:.txt\n    T1\n\nmeasurement stand(s):.txt\n"
                                 "    H (hor.)" +
                                 c.stands);
    }
}

TEST_F(CustomWizardTest, UnknownGroupIsLoggedAndTakenAsTheFirst) {
    AddMachine("A", kSheetContour | kSheetCom1);
    const Result r = Run([&] {
        // Set past page 0, whose radio group would take it back.
        wiz->SetCurSel(1);
        Page<CWizNewPage1>(0)->m_group = 12;
        wiz->SetCurSel(kWizSummaryPage);
        wiz->EnableDlgItem(CWizardDlg::IDC_BACK, true);
        Click(CWizardDlg::IDC_BACK);
        EXPECT_EQ(wiz->m_curPage, 4);
        Click(IDCANCEL);
    });
    EXPECT_TRUE(log.has_error("SetCurSel(): unknown product group #12"));
    EXPECT_TRUE(log.has_error("OnBack(): unknown product group #12"));
    EXPECT_EQ(r.group, "CONTOUR/SURFACE");
    EXPECT_EQ(r.code, IDCANCEL);
    EXPECT_EQ(host->pagesAtEnd, 0u);
    // Next from page 0 too; a group only matters on page 0 and the summary.
    EXPECT_EQ(NextPageIndex(0, 9, "", 0), 1);
    EXPECT_TRUE(log.has_error("OnOK()(): unknown product group #9"));
    log.clear();
    EXPECT_EQ(NextPageIndex(2, 9, "", 0), 3);
    // The form source page, met only going back, leads on to the order numbers.
    EXPECT_EQ(NextPageIndex(9, 1, "", 0), 10);
    EXPECT_EQ(BackPageIndex(2, 9, ""), 1);
    EXPECT_TRUE(log.errors().empty());
}

// Every route through the real pages, forward to the summary and back.
TEST_F(CustomWizardTest, HeadlessWalksOfEveryRoute) {
    CMidSpanCfgApp app;
    dlg.m_pApp = &app;
    for (std::uint32_t bits : {kSheetContour | kSheetCom1, kSheetKorSurf, kSheetForm, kSheetKorSim,
                               kSheetKorShaft, kSheetPrecikor, kSheetKorGear, kSheetKorOpto,
                               kSheetPlatformComponents, kSheetKorGeometry})
        AddMachine("M", bits, "1");
    for (const Route& route : kRoutes) {
        SCOPED_TRACE(testing::Message()
                     << route.key << " '" << route.control << "' " << route.productType);
        app.m_cmdInfo.m_control = route.control;
        dlg.m_productType = static_cast<ProductType>(route.productType);
        const Result r = Run([&] {
            EXPECT_FALSE(BackEnabled());
            EXPECT_EQ(Walk(IDOK, kWizSummaryPage, route.group), route.forward);
            EXPECT_EQ(text_of(*wiz, IDOK), "Finish.but");
            EXPECT_EQ(text_of(*wiz, CWizardDlg::IDC_TITLE), "summary");
            EXPECT_EQ(Walk(CWizardDlg::IDC_BACK, 0), route.back);
            EXPECT_EQ(text_of(*wiz, IDOK), "Next.but");
            EXPECT_EQ(Walk(IDOK, kWizSummaryPage, route.group), route.forward);
            Click(IDOK);
        });
        EXPECT_EQ(r.code, IDOK);
        EXPECT_EQ(r.group, route.key);
        EXPECT_EQ(r.driveUnit, route.forward[1] == 1 ? "M:COM1" : "M:Order-No:1");
        EXPECT_EQ(host->pagesAtEnd, 0u);
    }
    dlg.m_pApp = nullptr;
}

// The page a run opens on for "productgroup=" and "machine="; page 0 opens on the active group.
TEST_F(CustomWizardTest, Presets) {
    CMidSpanCfgApp app;
    dlg.m_pApp = &app;
    dlg.m_actGroup = "KORGEAR";
    AddMachine("M", kSheetForm, "1");
    struct Case {
        const char* productgroup;
        const char* mode;
        int page, group;
    };
    // clang-format off
    const Case cases[] = {
        {"", "", 0, 5}, {"SURFACE", "", 1, 0}, {"KORSURF", "", 1, 0}, {"FORM", "", 10, 1},
        {"KORSIM", "", 0, 2}, {"KORSHAFT", "", 0, 3}, {"PRECIKOR", "", 0, 4}, {"KORGEAR", "", 0, 5},
        {"KOROPTO", "", 0, 6}, {"PLATFORM_COMPONENTS", "", 0, 7}, {"KORGEOMETRY", "", 0, 8},
        {"form", "", 0, 5}, {"FORM ", "", 0, 5}, {"FORM", "new", 1, 0}, {"", "new", 1, 0},
        {"CONTOUR/SURFACE", "copy", 0, 5},
    };
    // clang-format on
    app.m_cmdInfo.m_machine = "Preset machine";
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.productgroup << " " << c.mode);
        app.m_cmdInfo.m_productgroup = c.productgroup;
        app.m_machineEntry.configure.mode = c.mode;
        Run([&] {
            EXPECT_EQ(wiz->m_curPage, c.page);
            EXPECT_EQ(g_wizCurrentPage, c.page);
            EXPECT_EQ(Page<CWizNewPage1>(0)->m_group, c.group);
            // The jump leaves Back as page 0 left it.
            EXPECT_FALSE(BackEnabled());
            EXPECT_EQ(Page<CWizNewPage2a>(8)->GetChosenMachine(),
                      c.page == 10 ? "Preset machine" : "M");
        });
    }
    dlg.m_pApp = nullptr;
}

} // namespace
