// The program's dialogs in real windows, on an X server of the tests' own,
// used as a service engineer uses them: clicks, keys and list choices on the
// widgets, over a scratch copy of the example installation.
#include "main_dialog/CfgHistory.h"
#include "main_dialog/RigCfgDlg.h"
#include "qt_test_support.h"
#include "rigcfg_files_fixture.h"
#include "wizard/FacDiskNameIoDlg.h"
#include "wizard/WizardDlg.h"

#include "kplatform_module.h"
#include "ktranslate.h"
#include "ui_dialog_template.h"

#include <QCheckBox>
#include <QComboBox>
#include <QListWidget>
#include <QMessageBox>
#include <QRadioButton>
#include <QTest>

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

using qt_test::Driver;
using rigcfg_test::contains;
using D = CMidSpanCfgDlg;
constexpr int kWizard = CWizardDlg::IDD;
constexpr int kNext = 1;
constexpr int kBack = 1013;
constexpr const char* kKorEConPrograms = "C:\\Program Files\\Korv\\KorECon\\";

// The visible widget of control `id`: wizard pages share ids, and only the
// page on show counts.
QWidget* shown(QWidget* window, int id) {
    const QString name = QStringLiteral("control%1").arg(id);
    for (QWidget* w : window->findChildren<QWidget*>(name))
        if (w->isVisible())
            return w;
    ADD_FAILURE() << "no visible control " << id;
    return nullptr;
}

// Check boxes and radio buttons take a click on their box or text only,
// which starts at their left edge; buttons anywhere.
// What a label, an edit or a drop-down list shows.
std::string text_shown(QWidget* window, int id) {
    QWidget* w = shown(window, id);
    if (auto* combo = qobject_cast<QComboBox*>(w))
        return combo->currentText().toStdString();
    return w ? w->property("text").toString().toStdString() : std::string();
}

void click(QWidget* window, int id) {
    QWidget* w = shown(window, id);
    if (!w)
        return;
    const bool boxed = qobject_cast<QCheckBox*>(w) || qobject_cast<QRadioButton*>(w);
    QTest::mouseClick(w, Qt::LeftButton, {},
                      boxed ? QPoint(6, w->height() / 2) : w->rect().center());
}

// Chooses an item as a person does: a click in a list, arrow keys in a
// drop-down list. An empty `text` takes the item at `index`.
void choose(QWidget* window, int id, const QString& text, int index = -1) {
    QWidget* w = shown(window, id);
    if (auto* list = qobject_cast<QListWidget*>(w)) {
        if (!text.isEmpty()) {
            const auto found = list->findItems(text, Qt::MatchExactly);
            ASSERT_FALSE(found.isEmpty()) << text.toStdString();
            index = list->row(found.first());
        }
        ASSERT_LT(index, list->count());
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualItemRect(list->item(index)).center());
    } else if (auto* combo = qobject_cast<QComboBox*>(w)) {
        if (!text.isEmpty())
            index = combo->findText(text);
        ASSERT_GE(index, 0) << text.toStdString();
        combo->setFocus();
        QTest::keyClick(combo, Qt::Key_Home);
        for (int i = 0; i < index; ++i)
            QTest::keyClick(combo, Qt::Key_Down);
        EXPECT_EQ(combo->currentIndex(), index);
    } else {
        ADD_FAILURE() << "control " << id << " is no list";
    }
}

class RigCfgWindow : public rigcfg_test::ExamplesTest {
protected:
    void SetUp() override {
        ExamplesTest::SetUp();
        std::string why;
        ASSERT_TRUE(qt_test::start_x_server(why)) << why;
        ASSERT_TRUE(qt_test::install_qt_host(why)) << why;
        // The texts a person reads: the catalogues beside the program.
        const std::string exe = korv::platform::executable_path();
        Translate_init("", exe.substr(0, exe.find_last_of('/') + 1), "en", "RigCfg");
        TheCfgHistory().Reset();
    }

    // The main dialog of `type` on the example installation, driven by `steps`.
    int RunMain(ProductType type, Driver& steps) {
        const bool korecon = type == ProductTypeKorECon;
        dlg = std::make_unique<CMidSpanCfgDlg>(type, korecon ? kKorECon : kMidspan,
                                               korecon ? kKorEConPrograms : kMidspan, nullptr);
        steps.start();
        const int result = dlg->DoModal();
        EXPECT_TRUE(steps.done());
        return result;
    }

    // One wizard step: act on the page on show, with a picture of it first.
    void Page(Driver& steps, const std::string& shot, std::function<void(QWidget*)> act) {
        steps.on_dialog(kWizard, [shot, act = std::move(act)](QWidget* w) {
            EXPECT_FALSE(w->windowTitle().contains(".txt")) << w->windowTitle().toStdString();
            if (!shot.empty())
                qt_test::save_shot(w, shot);
            act(w);
        });
    }

    // Answers the confirmation of Undo or Redo with `button`.
    static void Confirm(Driver& steps, QMessageBox::StandardButton button) {
        steps.on_box([button](QMessageBox* box) {
            EXPECT_EQ(box->icon(), QMessageBox::Information); // as the dialog asks
            QTest::mouseClick(box->button(button), Qt::LeftButton);
        });
    }

    std::string Loader() const { return file(kMidspanHost + "sp_load.ini"); }
};

TEST_F(RigCfgWindow, MidspanNewWithBackThenUndoAndRedoWriteTheLoaderFile) {
    const std::string walked = "DRIVEUNIT[VD 120:COM1],TABLE[Rotary Table TB 50],"
                               "MEASURESTAND[SZ 750 D:horizontal]";
    const std::string started = "DRIVEUNIT[VD 120:COM1],TABLE[No Table],"
                                "MEASURESTAND[SZ 750 D:vertical]";
    Driver steps;
    steps.on_dialog(D::IDD, [](QWidget* w) {
        EXPECT_FALSE(w->windowIcon().isNull());
        EXPECT_FALSE(w->windowTitle().contains(".dlghead"));
        EXPECT_FALSE(shown(w, D::IDC_UNDO)->isEnabled()); // one snapshot
        qt_test::save_shot(w, "main_dialog");
        click(w, D::IDC_NEW);
    });
    Page(steps, "wizard_product_group", [](QWidget* w) {
        click(w, 1021);
        click(w, kNext);
    });
    Page(steps, "wizard_interfaces", [](QWidget* w) {
        click(w, 1026);
        click(w, kNext);
    });
    Page(steps, "wizard_drive_units", [](QWidget* w) {
        choose(w, 1090, "VD 120");
        click(w, kNext);
    });
    Page(steps, "wizard_table", [](QWidget* w) {
        choose(w, 1067, {}, 1);
        click(w, kNext);
    });
    Page(steps, "wizard_stands", [](QWidget* w) { click(w, kNext); });
    Page(steps, "wizard_summary", [](QWidget* w) { click(w, kBack); });
    Page(steps, "", [](QWidget* w) { click(w, kNext); });
    Page(steps, "", [](QWidget* w) { click(w, kNext); }); // Finish
    steps.on_dialog(D::IDD, [&](QWidget* w) {
        EXPECT_TRUE(contains(Loader(), walked));
        EXPECT_EQ(text_shown(w, D::IDC_TABLE), "Rotary Table TB 50");
        click(w, D::IDC_UNDO);
    });
    Confirm(steps, QMessageBox::No);
    steps.on_dialog(D::IDD, [&](QWidget* w) {
        EXPECT_TRUE(contains(Loader(), walked));
        click(w, D::IDC_UNDO);
    });
    Confirm(steps, QMessageBox::Yes);
    steps.on_dialog(D::IDD, [&](QWidget* w) {
        EXPECT_TRUE(contains(Loader(), started));
        EXPECT_FALSE(shown(w, D::IDC_UNDO)->isEnabled());
        click(w, D::IDC_REDO);
    });
    Confirm(steps, QMessageBox::Yes);
    steps.on_dialog(D::IDD, [&](QWidget* w) {
        EXPECT_TRUE(contains(Loader(), walked));
        QTest::keyClick(w, Qt::Key_Escape);
    });
    EXPECT_EQ(RunMain(ProductTypeMidspan, steps), korv::ui::IDCANCEL);
}

TEST_F(RigCfgWindow, FormWalkWithBackWritesTheFormLoaderThenTheLoader) {
    Driver steps;
    steps.on_dialog(D::IDD, [](QWidget* w) { click(w, D::IDC_NEW); });
    Page(steps, "", [](QWidget* w) {
        click(w, 1022);
        click(w, kNext);
    });
    Page(steps, "wizard_form_source", [](QWidget* w) { click(w, kNext); });
    Page(steps, "wizard_form_order_numbers", [](QWidget* w) {
        choose(w, 1058, {}, 1);
        click(w, kNext);
    });
    Page(steps, "wizard_form_summary", [](QWidget* w) { click(w, kBack); });
    // Back from this summary leads to the page of the parameters' source.
    Page(steps, "wizard_form_parameter_source", [](QWidget* w) { click(w, kNext); });
    // The order numbers are offered afresh, the first one chosen.
    Page(steps, "", [](QWidget* w) {
        EXPECT_EQ(text_shown(w, 1058), "6420100");
        choose(w, 1058, {}, 1);
        click(w, kNext);
    });
    Page(steps, "", [](QWidget* w) { click(w, kNext); });
    // Enter ends the main dialog with OK: a configuration stands.
    steps.on_dialog(D::IDD, [](QWidget* w) { QTest::keyClick(w, Qt::Key_Return); });
    EXPECT_EQ(RunMain(ProductTypeMidspan, steps), korv::ui::IDOK);
    EXPECT_TRUE(contains(file(kMidspanHost + "form_load.ini"),
                         "active_section=MFU 100:Order-No:6420101,,Table-manuell\r\n"));
    EXPECT_TRUE(contains(Loader(), "DRIVEUNIT[MFU 100:Order-No:6420101],TABLE[manual],"
                                   "MEASURESTAND[No Stand],CONTROL[]\r\nactive=FORM\r\n"));
}

TEST_F(RigCfgWindow, KorEConWalkWithAProxyWritesTheAppIni) {
    Driver steps;
    steps.on_dialog(D::IDD, [](QWidget* w) {
        qt_test::save_shot(w, "main_dialog_korecon");
        click(w, D::IDC_NEW);
    });
    Page(steps, "wizard_korecon_product_group", [](QWidget* w) {
        click(w, 1098);
        click(w, kNext);
    });
    Page(steps, "wizard_machines", [](QWidget* w) {
        choose(w, 1023, {}, 0);
        click(w, 1029);
        click(w, kNext);
    });
    Page(steps, "wizard_order_number", [](QWidget* w) { click(w, kNext); });
    Page(steps, "wizard_proxies", [](QWidget* w) {
        choose(w, 1067, "cncproxy");
        click(w, kNext);
    });
    Page(steps, "wizard_korecon_summary", [](QWidget* w) { click(w, kNext); });
    steps.on_dialog(D::IDD, [](QWidget* w) { QTest::keyClick(w, Qt::Key_Escape); });
    EXPECT_EQ(RunMain(ProductTypeKorECon, steps), korv::ui::IDCANCEL);
    EXPECT_TRUE(contains(file(kKorEConHost + "RigCfg.ini"),
                         "machine=KSH 300\r\norder_no=8300001\r\nproduct_group=KORSHAFT\r\n"));
    EXPECT_TRUE(contains(file(kKorEConHost + "RigCfg.ini"), "proxy=cncproxy\r\n"));
}

TEST_F(RigCfgWindow, TheAboutBoxShowsTheVersionAndEndsWithOk) {
    CAboutDlg about;
    Driver steps;
    steps.on_dialog(CAboutDlg::IDD, [](QWidget* w) {
        EXPECT_TRUE(contains(text_shown(w, CAboutDlg::IDC_VERSION), "6.05"));
        qt_test::save_shot(w, "about_box");
        QTest::keyClick(w, Qt::Key_Return);
    });
    steps.start();
    EXPECT_EQ(about.DoModal(), korv::ui::IDOK);
    EXPECT_TRUE(steps.done());
}

TEST_F(RigCfgWindow, TheFactoryDiskDialogTakesTheTypedNameOnOk) {
    CFacDiskNameIoDlg dialog;
    dialog.m_foundDriveUnit = "MFU 9";
    Driver steps;
    steps.on_dialog(CFacDiskNameIoDlg::IDD, [](QWidget* w) {
        EXPECT_EQ(text_shown(w, CFacDiskNameIoDlg::IDC_FOUND_DRIVE_UNIT), "MFU 9");
        // The texts keep their tabs, which the window shows as such.
        bool tab = false;
        for (QWidget* label : w->findChildren<QWidget*>(QStringLiteral("control-1")))
            tab = tab || label->property("text").toString().contains('\t');
        EXPECT_TRUE(tab);
        qt_test::save_shot(w, "factory_disk");
        QTest::keyClicks(shown(w, CFacDiskNameIoDlg::IDC_SPECIFIED_DRIVE_UNIT), "MFU 100");
        click(w, korv::ui::IDOK);
    });
    steps.start();
    EXPECT_EQ(dialog.DoModal(), korv::ui::IDOK);
    EXPECT_TRUE(steps.done());
    EXPECT_EQ(dialog.m_specifiedDriveUnit, "MFU 100");
}

// Every dialog of the resource source, sixteen, alone in a window of its own.
TEST_F(RigCfgWindow, EveryTemplateOpensWithItsDesignedLayout) {
    int opened = 0;
    for (int id = 1; id < 1000; ++id) {
        const korv::ui::DialogTemplate* t = korv::ui::find_dialog_template(id);
        if (!t)
            continue;
        SCOPED_TRACE(id);
        korv::ui::CDialog dialog(id);
        Driver steps;
        steps.on_dialog(id, [t](QWidget* w) {
            qt_test::expect_template_layout(w, *t, true);
            const std::vector<QWidget*> widgets = qt_test::template_widgets(w, *t);
            for (std::size_t i = 0; i < widgets.size(); ++i) {
                if (widgets[i]) {
                    EXPECT_EQ(widgets[i]->isVisibleTo(w),
                              !t->controls[i].has(korv::ui::style::hidden))
                        << t->controls[i].id;
                }
            }
            QTest::keyClick(w, Qt::Key_Escape);
        });
        steps.start();
        EXPECT_EQ(dialog.DoModal(), korv::ui::IDCANCEL);
        EXPECT_TRUE(steps.done());
        ++opened;
    }
    EXPECT_EQ(opened, 16);
}

// The built program started as a person starts it, on the tests' X server;
// xdotool finds its windows and presses keys as a keyboard would.
class RigCfgOnTheDisplay : public rigcfg_test::ExamplesTest {
protected:
    void SetUp() override {
        ExamplesTest::SetUp();
        std::string why;
        ASSERT_TRUE(qt_test::start_x_server(why)) << why;
        ASSERT_EQ(std::system("xdotool version >/dev/null 2>&1"), 0) << "xdotool is missing";
    }
    void TearDown() override {
        if (m_pid > 0) {
            ::kill(m_pid, SIGKILL);
            ::waitpid(m_pid, nullptr, 0);
        }
        ExamplesTest::TearDown();
    }

    // Starts rigcfg with `args`, no script, its logs at trace level 5 in log/.
    void Start(std::vector<std::string> args, const char* extra_env = nullptr) {
        const std::string exe = korv::platform::executable_path();
        const std::string program = exe.substr(0, exe.find_last_of('/') + 1) + "rigcfg";
        const std::string log = root / "log";
        m_pid = ::fork();
        if (m_pid == 0) {
            ::unsetenv("KORV_UI_SCRIPT");
            ::setenv("KORV_LOG_DIR", log.c_str(), 1);
            ::setenv("KORV_TRACE", "5", 1);
#ifdef UI_QT_LSAN_SUPPRESSIONS
            ::setenv("LSAN_OPTIONS", "suppressions=" UI_QT_LSAN_SUPPRESSIONS, 1);
#endif
            if (extra_env)
                ::putenv(const_cast<char*>(extra_env));
            const std::string err = root / "stderr.txt";
            std::freopen(err.c_str(), "w", stderr);
            std::vector<char*> argv{const_cast<char*>(program.c_str())};
            for (std::string& a : args)
                argv.push_back(a.data());
            argv.push_back(nullptr);
            ::execv(program.c_str(), argv.data());
            ::_exit(127);
        }
    }

    // The exit code as a caller sees it.
    int Wait() {
        int status = 0;
        ::waitpid(m_pid, &status, 0);
        m_pid = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1000;
    }

    // The program's one visible window, once there is one; empty after 20 s.
    std::string VisibleWindow() const {
        const std::string command = "timeout 20 xdotool search --sync --onlyvisible --pid " +
                                    std::to_string(m_pid) + " 2>/dev/null | head -n 1";
        std::string id;
        if (FILE* out = ::popen(command.c_str(), "r")) {
            char line[64] = {};
            if (std::fgets(line, sizeof line, out))
                id = line;
            ::pclose(out);
        }
        while (!id.empty() && (id.back() == '\n' || id.back() == '\r'))
            id.pop_back();
        return id;
    }

    static void Press(const std::string& window, const char* key) {
        const std::string command =
            "xdotool windowfocus --sync " + window + " key " + key + " >/dev/null 2>&1";
        EXPECT_EQ(std::system(command.c_str()), 0) << command;
    }

    std::string Trace() const {
        return file("log/trace.log");
    }

    pid_t m_pid = -1;
};

TEST_F(RigCfgOnTheDisplay, WithoutAScriptTheMainDialogShowsAndEscapeEndsWithTwo) {
    Start({});
    const std::string window = VisibleWindow();
    ASSERT_FALSE(window.empty()) << Trace();
    EXPECT_TRUE(contains(Trace(), "DoModal(): dialog 102 opened"));
    Press(window, "Escape");
    EXPECT_EQ(Wait(), 2);
    EXPECT_EQ(file(kMidspanHost + "sp_load.ini"), example(kMidspanHost + "sp_load.ini"));
}

// Where the dynamic loader bound the C++ runtime symbols that `from` (a part of
// an object's path) takes: object path by symbol, from an LD_DEBUG=bindings log.
std::map<std::string, std::set<std::string>> runtime_bindings(const std::string& log,
                                                              const std::string& from) {
    static const std::regex binding(
        R"(binding file (\S+) \[\d+\] to (\S+) \[\d+\]: \w+ symbol `([^']+)')");
    static const std::regex runtime(
        R"(^(_Z(n|d|St|NSt|NKSt|TVN10__cxxabiv|TISt|TVSt)|__cxa_(?!atexit|finalize|thread_atexit)|__gxx_|__dynamic_cast).*)");
    std::map<std::string, std::set<std::string>> found;
    std::istringstream lines(log);
    std::smatch m;
    for (std::string line; std::getline(lines, line);)
        // A template instance the object holds itself is its own code.
        if (std::regex_search(line, m, binding) && contains(m[1].str(), from) &&
            m[1].str() != m[2].str() && std::regex_match(m[3].str(), runtime))
            found[m[3].str()].insert(m[2].str());
    return found;
}

TEST_F(RigCfgOnTheDisplay, TheWindowModuleSharesTheProgramsCppRuntime) {
    if (!RIGCFG_RUNTIME_IN_PROGRAM)
        GTEST_SKIP() << "this build's program takes the shared C++ runtime, as the module does";
    Start({}, "LD_DEBUG=bindings");
    const std::string window = VisibleWindow();
    ASSERT_FALSE(window.empty()) << Trace();
    Press(window, "Escape");
    EXPECT_EQ(Wait(), 2);
    const auto module = runtime_bindings(file("stderr.txt"), "librigcfg_ui_qt.so");
    ASSERT_FALSE(module.empty()) << "no binding of the module's seen";
    // Every runtime symbol the module takes binds to the program's copy, none
    // to the shared runtime that the toolkit brings along.
    for (const auto& [symbol, targets] : module)
        for (const std::string& target : targets)
            EXPECT_NE(target.find("/rigcfg"), std::string::npos)
                << symbol << " bound to " << target;
}

TEST_F(RigCfgOnTheDisplay, AProductGroupOpensTheWizardOverTheMainDialog) {
    Start({"productgroup=FORM"});
    const std::string window = VisibleWindow();
    ASSERT_FALSE(window.empty()) << Trace();
    // The wizard is the innermost run, opened while the main dialog starts.
    const std::string trace = Trace();
    EXPECT_TRUE(contains(trace, "DoModal(): dialog 102 opened"));
    EXPECT_TRUE(contains(trace, "DoModal(): dialog 103 opened"));
    EXPECT_FALSE(contains(trace, "DoModal(): dialog 103 ended"));
    // Cancelling the wizard that the command line asked for ends the run.
    Press(window, "Escape");
    EXPECT_EQ(Wait(), 2);
    EXPECT_TRUE(contains(Trace(), "dialog 103 ended with 2\n"));
    EXPECT_TRUE(contains(Trace(), "dialog 102 ended with 2\n"));
}

TEST_F(RigCfgOnTheDisplay, ASilentCreateLoadsNoWindowToolkit) {
    Start({"control=korecon", "file=KMX_100_create.ini", "variant=9100100"}, "LD_DEBUG=files");
    EXPECT_EQ(Wait(), 0);
    const std::string loaded = file("stderr.txt");
    EXPECT_TRUE(contains(loaded, "file=libc.so")); // the loader did report
    // Where the program holds the C++ runtime, a silent run maps no shared one.
    EXPECT_EQ(contains(loaded, "libstdc++"), !RIGCFG_RUNTIME_IN_PROGRAM) << loaded;
    EXPECT_FALSE(contains(loaded, "libQt6")) << loaded;
    EXPECT_FALSE(contains(loaded, "librigcfg_ui_qt")) << loaded;
}

} // namespace

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
