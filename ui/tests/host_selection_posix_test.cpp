#include "sample_dialogs.h"

#include "log_capture.h"
#include "scratch_dir.h"
#include "ui_host_selection.h"

#include <gtest/gtest.h>

using namespace sample;
using korv::testing::LogCapture;
using korv::testing::ScopedEnv;
using korv::testing::ScratchDir;

class HostSelection : public ::testing::Test {
protected:
    void SetUp() override {
        register_templates();
        reset_host_selection();
    }
    void TearDown() override { reset_host_selection(); }
};

TEST_F(HostSelection, WithoutScriptOrModuleDialogsAndBoxesFailWithAReason) {
    ScopedEnv no_script("KORV_UI_SCRIPT", "");
    LogCapture log;
    SampleDlg dialog;
    EXPECT_EQ(dialog.DoModal(), -1);
    EXPECT_FALSE(dialog.has_window());
    ASSERT_EQ(log.errors().size(), 1u);
    const std::string line = log.errors()[0];
    EXPECT_NE(line.find("DoModal(): no dialog can be shown, dialog 500: KORV_UI_SCRIPT is not set "
                        "and the toolkit module "),
              std::string::npos)
        << line;
    EXPECT_NE(line.find(kToolkitModule), std::string::npos);
    EXPECT_EQ(AfxMessageBox("Lost?", MB_OK), 0);
    EXPECT_TRUE(log.has_error("AfxMessageBox(): no message box can be shown"));
    EXPECT_TRUE(log.has_error("Lost?"));
}

TEST_F(HostSelection, AScriptChoosesTheHeadlessHostAndItsTranscriptFileUnlessItIsBroken) {
    ScratchDir dir;
    dir.write("broken.txt", "click 1\npress 2\n");
    dir.write("events.txt", "settext 523 \"Zoe\"\nclick 1\n");
    LogCapture log;
    SampleDlg dialog;
    for (const char* bad : {"broken.txt", "none.txt"}) {
        ScopedEnv script("KORV_UI_SCRIPT", dir / bad);
        EXPECT_EQ(dialog.DoModal(), -1) << bad;
        reset_host_selection();
    }
    EXPECT_TRUE(log.has_error("line 2: unknown event press"));
    EXPECT_TRUE(log.has_error("none.txt cannot be read"));

    ScopedEnv script("KORV_UI_SCRIPT", dir / "events.txt");
    ScopedEnv transcript("KORV_UI_TRANSCRIPT", dir / "out.txt");
    EXPECT_EQ(dialog.DoModal(), IDOK);
    EXPECT_EQ(dialog.m_name, "Zoe");
    EXPECT_EQ(dir.read("out.txt"), "open 500 \"Sample.dlghead\"\n  > settext 523 \"Zoe\"\n"
                                   "  > click 1\nend 500 -> 1\n");
}

TEST_F(HostSelection, AToolkitModuleIsLoadedAndShowsTheDialogs) {
    std::string why;
    std::unique_ptr<Host> host = load_toolkit_host(UI_TEST_HOST_MODULE, why);
    ASSERT_NE(host, nullptr) << why;
    install_host(std::move(host));
    SampleDlg dialog;
    EXPECT_EQ(dialog.DoModal(), 42);
    EXPECT_EQ(AfxMessageBox("Sure?", MB_YESNO), IDYES);

    EXPECT_EQ(load_toolkit_host("/nonexistent/module.so", why), nullptr);
    EXPECT_NE(why.find("/nonexistent/module.so could not be loaded"), std::string::npos) << why;
    // A library without the entry point.
    EXPECT_EQ(load_toolkit_host("libm.so.6", why), nullptr);
    EXPECT_EQ(why, "the toolkit module libm.so.6 has no korv_ui_create_host");
}
