// The main dialog run in-process over a scratch copy of the example
// installation, with a host that lets each test act on the open dialog.
#include "rigcfg_files_fixture.h"

#include "kplatform_module.h"
#include "kversioninfo.h"

#include <deque>
#include <functional>
#include <map>

namespace fs = std::filesystem;
using namespace korv::ui;
using rigcfg_test::Box;
using rigcfg_test::contains;
using rigcfg_test::text_of;

namespace {

const char* const kConfirm =
    "You are about to change the active configuration setting! Are you sure to proceed?.msg";

// A few translations, so that the tests see which texts are translated.
const char* const kCatalogue = "msgid \"Machine Configuration.txt\"\nmsgstr \"Configuration\"\n"
                               "msgid \"machine:.txt\"\nmsgstr \"Machine:\"\n"
                               "msgid \"drive unit:.txt\"\nmsgstr \"Drive unit:\"\n"
                               "msgid \"Typ.txt\"\nmsgstr \"Type\"\n"
                               "msgid \"no_proxy.txt\"\nmsgstr \"no proxy\"\n"
                               "msgid \"cncproxy\"\nmsgstr \"CNC proxy\"\n"
                               "msgid \"No Table\"\nmsgstr \"no table\"\n";

// The application ini of a KorECon installation with one active machine.
std::string korecon_ini(const std::string& group, const std::string& machine,
                        const std::string& order, const std::string& proxy) {
    return "[General]\r\nktrace_level=4\r\n[Configuration]\r\nkorctrl=korecon\r\nmachine=" +
           machine + "\r\norder_no=" + order + "\r\nproduct_group=" + group +
           "\r\nfolder=C:\\Program Files\\Korv\\KorECon\\KorShaft\\machines\\" + machine + "\\" +
           order + "\r\nproxy=" + proxy + "\r\n";
}

// Runs `body` on the open main dialog, then ends it as its close box would
// unless `body` ended it. Boxes take the queued answers, else their close answer.
class DrivingHost : public Host {
public:
    std::function<void(CMidSpanCfgDlg&)> body;
    std::deque<int> answers;
    std::vector<Box> boxes;
    std::vector<std::string> opened; // nested dialogs: "<id> <text of the version line>"

    void DialogOpened(CDialog&) override {}
    void RunModal(CDialog& d) override {
        if (d.template_id() == CMidSpanCfgDlg::IDD) {
            if (body)
                body(static_cast<CMidSpanCfgDlg&>(d));
        } else {
            opened.push_back(std::to_string(d.template_id()) + " " +
                             text_of(d, CAboutDlg::IDC_VERSION));
        }
        if (!d.modal_ended())
            d.UserClose();
    }
    void DialogEnded(CDialog&, int) override {}
    int ShowMessageBox(const std::string& text, unsigned type) override {
        boxes.push_back({text, type});
        if (answers.empty())
            return message_box_buttons(type).close_answer;
        const int answer = answers.front();
        answers.pop_front();
        return answer;
    }
};

class MainDialog : public rigcfg_test::ExamplesTest {
protected:
    void SetUp() override {
        ExamplesTest::SetUp();
        root.write("locale/en/RigCfg.po", kCatalogue);
        Translate_init("", root.path(), "en", "RigCfg");
        auto owned = std::make_unique<DrivingHost>();
        host = owned.get();
        install_host(std::move(owned));
        _KTrace_SetLevel("RigCfg", 5);
    }

    // Runs the dialog of `type` over the examples; the dialog stays for a look after.
    int run(ProductType type, std::function<void(CMidSpanCfgDlg&)> body) {
        const char* folder = type == ProductTypeKorECon ? kKorECon : kMidspan;
        dlg = std::make_unique<CMidSpanCfgDlg>(type, folder, folder, nullptr);
        host->body = std::move(body);
        return dlg->DoModal();
    }

    DrivingHost* host = nullptr;
};

bool visible(const CDialog& d, int id) {
    return d.find_control(id)->visible;
}
bool enabled(const CDialog& d, int id) {
    return d.find_control(id)->enabled;
}

// End takes the configuration shown, reading the display form back.
TEST_F(MainDialog, StartUpShowsTheActiveConfigurationAsTheFamilyAndGroupAskAndEndTakesIt) {
    using D = CMidSpanCfgDlg;
    const struct {
        const char* name;
        ProductType type;
        std::string app_ini; // KorECon only
        const char *unit_label, *unit;
        bool table_lines;
        const char* proxy; // null: the proxy line is hidden
    } cases[] = {
        {"Midspan", ProductTypeMidspan, "", "Drive unit:", "VD 120:COM1", true, nullptr},
        {"KorShaft", ProductTypeKorECon, korecon_ini("KORSHAFT", "KSH 300", "8300001", ""),
         "Machine:", "KSH300:Type:8300001", false, "no proxy"},
        {"Form", ProductTypeKorECon, korecon_ini("FORM", "MFU 110", "42", "cncproxy"),
         "Machine:", "MFU110:Order-No:42", false, "CNC proxy"},
        {"KorGear", ProductTypeKorECon, korecon_ini("KORGEAR", "KMX 100", "9100100", "cncproxy"),
         "Machine:", "KMX100:Order-No:9100100", false, nullptr},
        {"KorSurf", ProductTypeKorECon, korecon_ini("KORSURF", "KS 1", "7", "korecon"),
         "Drive unit:", "KS1:Order-No:7", false, nullptr},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        if (!c.app_ini.empty())
            root.write(kKorEConHost + "RigCfg.ini", c.app_ini);
        const int result = run(c.type, [&](CMidSpanCfgDlg& d) {
            EXPECT_EQ(d.window().text, "Configuration");
            EXPECT_EQ(text_of(d, D::IDC_WORKDIR),
                      c.type == ProductTypeKorECon ? kKorECon : kMidspan);
            EXPECT_EQ(text_of(d, D::IDC_UNIT_LABEL), c.unit_label);
            EXPECT_EQ(text_of(d, D::IDC_UNIT), c.unit);
            EXPECT_EQ(text_of(d, D::IDC_VERSION), "v" + korv::FileVersionInfo().GetFileVersion());
            for (int id : {D::IDC_TABLE_LABEL, D::IDC_TABLE, D::IDC_STAND_LABEL, D::IDC_STAND})
                EXPECT_EQ(visible(d, id), c.table_lines) << id;
            for (int id : {D::IDC_PROXY, D::IDC_PROXY_LABEL})
                EXPECT_EQ(visible(d, id), c.proxy != nullptr) << id;
            if (c.proxy) {
                EXPECT_EQ(text_of(d, D::IDC_PROXY), c.proxy);
            }
            if (c.table_lines) { // translated on show, read back as stored
                EXPECT_EQ(text_of(d, D::IDC_TABLE), "no table");
                EXPECT_EQ(text_of(d, D::IDC_STAND), "SZ 750 D:vertical");
                d.UpdateData(true);
                EXPECT_EQ(d.m_actTable, "No Table");
            }
            // The hidden line carries the proxy as stored.
            EXPECT_FALSE(visible(d, D::IDC_PROXY_VALUE));
            EXPECT_EQ(text_of(d, D::IDC_PROXY_VALUE), d.m_actProxy);
            // One snapshot: nothing to step to.
            EXPECT_FALSE(enabled(d, D::IDC_UNDO));
            EXPECT_FALSE(enabled(d, D::IDC_REDO));
            EXPECT_EQ(enabled(d, D::IDC_NEW), d.m_machineSheets != nullptr);
            d.UserClick(D::IDC_END);
        });
        EXPECT_EQ(result, IDOK);
        // The middle token of the display form is never read.
        EXPECT_EQ(dlg->m_actDriveUnit, c.unit);
    }
    EXPECT_TRUE(host->boxes.empty());
}

TEST_F(MainDialog, UndoAndRedoAskFirstAndWriteTheLoaderFileOnlyOnYes) {
    using D = CMidSpanCfgDlg;
    const std::string loader = kMidspanHost + "sp_load.ini";
    const std::string load = kMidspanHost + "SP_SUPPORT/load.ini";
    const struct {
        int button;
        int answer;
        const char* unit; // in the file after the step; null: the file is untouched
        bool undo, redo;  // enabled after the step
    } steps[] = {
        {D::IDC_UNDO, IDNO, nullptr, true, false},
        {D::IDC_UNDO, IDYES, "VD 140:COM2", true, true},
        {D::IDC_REDO, IDNO, nullptr, true, true},
        {D::IDC_REDO, IDYES, "VD 150:COM3", true, false},
    };
    run(ProductTypeMidspan, [&](CMidSpanCfgDlg& d) {
        // Two wizard results, as OnButtonNew leaves them in the ring.
        for (const char* unit : {"VD 140:COM2", "VD 150:COM3"}) {
            CfgHistoryEntry e;
            CfgHistoryEntry::set_text(e.drive_unit, unit);
            CfgHistoryEntry::set_text(e.table, "manual");
            CfgHistoryEntry::set_text(e.stand, "S 2");
            TheCfgHistory().Push(e);
        }
        d.m_actControl = "CTRL 1";
        d.RefreshHistoryButtons();
        for (const auto& step : steps) {
            SCOPED_TRACE(std::to_string(step.button) + " " + answer_name(step.answer));
            rigcfg_test::age(root / loader);
            const auto stamp = fs::last_write_time(root / loader);
            host->answers = {step.answer};
            ASSERT_EQ(d.UserClick(step.button), InputResult::Done);
            ASSERT_FALSE(host->boxes.empty());
            EXPECT_EQ(host->boxes.back().text, kConfirm);
            EXPECT_EQ(host->boxes.back().type, 0x44u); // yes/no, question
            if (!step.unit) {
                EXPECT_EQ(fs::last_write_time(root / loader), stamp);
            } else {
                EXPECT_EQ(text_of(d, D::IDC_UNIT), step.unit);
                // The control string stays that of the newest configuration.
                EXPECT_TRUE(contains(file(loader),
                                     std::string("DRIVEUNIT[") + step.unit +
                                         "],TABLE[manual],MEASURESTAND[S 2],CONTROL[CTRL 1]"));
                EXPECT_FALSE(contains(file(load), "TK 300")); // load.ini reset
            }
            EXPECT_EQ(enabled(d, D::IDC_UNDO), step.undo);
            EXPECT_EQ(enabled(d, D::IDC_REDO), step.redo);
        }
    });
    EXPECT_EQ(host->boxes.size(), 4u);
}

TEST_F(MainDialog, KorEConUndoWritesTheAppIniAndKeepsLabelsAndLines) {
    using D = CMidSpanCfgDlg;
    root.write(kKorEConHost + "RigCfg.ini", korecon_ini("KORSHAFT", "KSH 300", "8300001", ""));
    run(ProductTypeKorECon, [&](CMidSpanCfgDlg& d) {
        CfgHistoryEntry gear;
        gear.group = "KORGEAR";
        CfgHistoryEntry::set_text(gear.drive_unit, "KMX 100:Order-No:9100100");
        gear.folder = "C:\\Program Files\\Korv\\KorECon\\KorGear\\machines\\KMX 100\\9100100";
        TheCfgHistory().Push(gear);
        d.RefreshHistoryButtons();
        host->answers = {IDYES, IDYES};
        d.UserClick(D::IDC_UNDO);
        EXPECT_TRUE(contains(file(kKorEConHost + "RigCfg.ini"), "product_group=KORSHAFT"));
        d.UserClick(D::IDC_REDO);
        EXPECT_TRUE(contains(file(kKorEConHost + "RigCfg.ini"),
                             "machine=KMX 100\r\norder_no=9100100\r\nproduct_group=KORGEAR"));
        EXPECT_TRUE(
            contains(file(kKorEConHost + "korecon.ini"), "KorGear\\machines\\KMX 100\\9100100"));
        // A step across groups redoes neither labels nor lines.
        EXPECT_EQ(text_of(d, D::IDC_UNIT_LABEL), "Machine:");
        EXPECT_TRUE(visible(d, D::IDC_PROXY));
        EXPECT_EQ(text_of(d, D::IDC_UNIT), "KMX 100:Order-No:9100100");
    });
}

// The example's KorECon folder has no application ini.
TEST_F(MainDialog, WithoutAConfigurationEndRefusesAndATwoTokenMachineIsShownRaw) {
    const int result = run(ProductTypeKorECon, [&](CMidSpanCfgDlg& d) {
        d.UserClick(CMidSpanCfgDlg::IDC_END);
        EXPECT_FALSE(d.modal_ended());
        d.m_actGroup = "KORSHAFT";
        d.m_actDriveUnit = "KSH 300:8300001";
        d.OnInitDlg();
        EXPECT_EQ(text_of(d, CMidSpanCfgDlg::IDC_UNIT), "KSH 300:8300001");
        // New needs the catalogue, and only About opens the about box.
        ASSERT_TRUE(enabled(d, CMidSpanCfgDlg::IDC_NEW));
        d.FreeCfgDataStructure();
        d.RefreshHistoryButtons();
        EXPECT_EQ(d.UserClick(CMidSpanCfgDlg::IDC_NEW), InputResult::Disabled);
        d.OnSysCommand(0xF060, 0); // close
        d.OnSysCommand(0x13, 0);   // the low bits are the system's
    });
    EXPECT_EQ(result, IDCANCEL);
    ASSERT_EQ(host->boxes.size(), 1u);
    EXPECT_EQ(host->boxes[0].text, "Bitte waehlen Sie eine Konfiguration aus.msg");
    EXPECT_EQ(host->boxes[0].type, MB_ICONERROR);
    EXPECT_TRUE(log.has_error("OnInitDlg(): aprsing error m_actDriveUnit = 'KSH 300:8300001'"));
    EXPECT_EQ(host->opened,
              (std::vector<std::string>{"100 " + korv::FileVersionInfo().GetFileVersion()}));
}

TEST_F(MainDialog, LongUnitTextsAreCutInTheFirstSnapshot) {
    const std::string stand(300, 'S');
    root.write(kMidspanHost + "sp_load.ini",
               "[General]\r\ncfg_path=sp_config.ini\r\nactive_section=DRIVEUNIT[VD 120:COM1],"
               "TABLE[No Table],MEASURESTAND[" +
                   stand + "],CONTROL[]\r\nactive=CONTOUR/SURFACE\r\n");
    run(ProductTypeMidspan, [&](CMidSpanCfgDlg& d) { EXPECT_EQ(d.m_actStand, stand); });
    const CfgHistory& history = TheCfgHistory();
    EXPECT_EQ(std::string(history.entries[history.current].stand), stand.substr(0, 255));
}

// Every image a dialog template names lies beside the program, as a window
// host looks it up: ignoring case, as resource names do.
TEST(DialogImages, EveryImageATemplateNamesIsThere) {
    RegisterDialogResources();
    const fs::path res = fs::path(korv::platform::executable_path()).parent_path() / "res";
    std::map<std::string, fs::path> files;
    for (const auto& entry : fs::directory_iterator(res)) {
        std::string stem = entry.path().stem().string();
        std::transform(stem.begin(), stem.end(), stem.begin(), ::toupper);
        files[stem] = entry.path();
    }
    std::vector<std::string> named;
    for (int id = 1; id < 2000; ++id)
        if (const DialogTemplate* t = find_dialog_template(id))
            for (const ControlTemplate& c : t->controls) {
                if (c.kind == ControlKind::Bitmap)
                    named.push_back(c.caption);
                else if (c.kind == ControlKind::BitmapButton)
                    for (const char* look : {"U", "D", "X"})
                        named.push_back(c.caption + look);
            }
    ASSERT_GE(named.size(), 8u);
    for (std::string name : named) {
        std::transform(name.begin(), name.end(), name.begin(), ::toupper);
        ASSERT_TRUE(files.count(name)) << name;
        const std::string magic = rigcfg_test::slurp(files[name]).substr(0, 2);
        EXPECT_TRUE(magic == "BM" || magic == "\x89P") << name;
    }
}

} // namespace
