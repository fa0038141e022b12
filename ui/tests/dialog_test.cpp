#include "sample_dialogs.h"

#include "ktranslate.h"
#include "log_capture.h"
#include "scratch_dir.h"
#include "ui_host_selection.h"

#include <gtest/gtest.h>

using namespace sample;
using korv::testing::LogCapture;

namespace {

// Runs `dialog` modally under a callback host; `body` sees it open.
int run(CDialog& dialog, std::function<void(CDialog&)> body, CallbackHost** out_host = nullptr) {
    auto host = std::make_unique<CallbackHost>();
    host->body = std::move(body);
    if (out_host)
        *out_host = host.get();
    install_host(std::move(host));
    return dialog.DoModal();
}

} // namespace

class DialogTest : public ::testing::Test {
protected:
    void SetUp() override { register_templates(); }
    void TearDown() override { reset_host_selection(); }
};

TEST_F(DialogTest, TemplatesWithTwinIdsAreRefusedAndOthersReplaced) {
    LogCapture log;
    std::vector<ControlTemplate> twins = {{5, ControlKind::Button, "a", {}},
                                          {IDC_STATIC, ControlKind::StaticText, "", {}},
                                          {IDC_STATIC, ControlKind::StaticText, "", {}},
                                          {5, ControlKind::Edit, "", {}}};
    EXPECT_FALSE(register_dialog_template({900, "x", 10, 10, std::move(twins)}));
    EXPECT_TRUE(log.has_error("dialog 900 has two controls with id 5"));
    EXPECT_EQ(find_dialog_template(900), nullptr);

    ASSERT_TRUE(register_dialog_template({901, "one", 10, 10, {}}));
    const DialogTemplate* first = find_dialog_template(901);
    ASSERT_TRUE(register_dialog_template({901, "two", 10, 10, {}}));
    EXPECT_EQ(find_dialog_template(901), first) << "a pointer handed out stays valid";
    EXPECT_EQ(first->caption, "two");
}

TEST_F(DialogTest, WithoutAWindowEverythingAnswersNothingAndNothingCrashes) {
    LogCapture log;
    SampleDlg dialog;
    EXPECT_EQ(dialog.GetDlgItem(kName), nullptr);
    EXPECT_FALSE(dialog.UpdateData(false));
    EXPECT_TRUE(log.has_error("UpdateData(): dialog 500 has no window"));
    EXPECT_EQ(dialog.m_fruits.AddString("x"), LB_ERR);
    EXPECT_EQ(dialog.m_fruits.GetCurSel(), LB_ERR);
    EXPECT_FALSE(dialog.m_fruits.IsWindow());
    std::string text = "kept";
    dialog.GetDlgItemText(kName, text);
    EXPECT_EQ(text, "");
    dialog.SetDlgItemText(kName, "ignored");
    EXPECT_EQ(dialog.UserClick(IDOK), InputResult::NoSuchControl);
}

TEST_F(DialogTest, ModalRunGivesTheResultAndTheControlsLiveOnlyMeanwhile) {
    SampleDlg dialog;
    CallbackHost* host = nullptr;
    const int result = run(
        dialog,
        [](CDialog& d) {
            EXPECT_NE(d.GetDlgItem(kName), nullptr);
            EXPECT_EQ(d.GetDlgItem(IDC_STATIC), nullptr) << "IDC_STATIC names no control";
            EXPECT_EQ(d.GetDlgItem(4711), nullptr);
            d.EndDialog(IDYES);
        },
        &host);
    EXPECT_EQ(result, IDYES);
    EXPECT_EQ(host->calls, (std::vector<std::string>{"opened 500", "ended 500 6"}));
    EXPECT_FALSE(dialog.has_window());
    EXPECT_EQ(dialog.GetDlgItem(kName), nullptr);
}

TEST_F(DialogTest, MissingTemplateAndSecondRunFail) {
    LogCapture log;
    CDialog unknown(4242);
    EXPECT_EQ(run(unknown, nullptr), -1);
    EXPECT_TRUE(log.has_error("DoModal(): no dialog template 4242"));

    SampleDlg dialog;
    int inner = 0;
    run(dialog, [&](CDialog& d) { inner = d.DoModal(); });
    EXPECT_EQ(inner, -1);
    EXPECT_TRUE(log.has_error("DoModal(): dialog 500 runs already"));
}

TEST_F(DialogTest, InitDialogPushesMembersTranslatesAndFillsControls) {
    korv::testing::ScratchDir dir;
    dir.write("locale/de/sample.po", "msgid \"Option.txt\"\nmsgstr \"Auswahl\"\n\n"
                                     "msgid \"Sample.dlghead\"\nmsgstr \"Beispiel\"\n");
    Translate_init("", dir.path(), "de", "sample");
    SampleDlg dialog;
    dialog.m_name = "Ann";
    dialog.m_choice = 2;
    run(dialog, [&](CDialog& d) {
        std::string text;
        d.GetWindowText(text);
        EXPECT_EQ(text, "Beispiel");
        EXPECT_EQ(d.find_control(kOption)->text, "Auswahl");
        EXPECT_EQ(d.find_control(kOption)->caption, "Option.txt");
        EXPECT_EQ(d.find_control(kPicture)->text, "9999") << "image names are no keys";
        d.GetDlgItemText(kName, text);
        EXPECT_EQ(text, "Ann");
        EXPECT_EQ(d.IsDlgButtonChecked(kThird), BST_CHECKED)
            << "the check box between the radio buttons does not count";
        EXPECT_EQ(d.IsDlgButtonChecked(kFirst), BST_UNCHECKED);
        EXPECT_EQ(d.IsDlgButtonChecked(kOtherGroup), BST_UNCHECKED);
        EXPECT_EQ(d.find_control(kUndo)->images,
                  (std::vector<std::string>{"UndoU", "UndoD", "UndoF", "UndoX"}));
        EXPECT_EQ(d.find_control(kSummary)->background, 0xC0C0C0u);
        EXPECT_TRUE(d.tool_tips_active()); // the items and the tip show in the dump test
    });
    Translate_init("", dir.path(), "en", "sample");
}

TEST_F(DialogTest, ExchangePullsControlsIntoMembers) {
    SampleDlg dialog;
    run(dialog, [&](CDialog& d) {
        d.SetDlgItemText(kName, "Bob");
        d.CheckDlgButton(kOption, BST_CHECKED);
        d.CheckRadioButton(kFirst, kThird, kSecond);
        ASSERT_TRUE(d.UpdateData(true));
        EXPECT_EQ(dialog.m_name, "Bob");
        EXPECT_EQ(dialog.m_option, 1);
        EXPECT_EQ(dialog.m_choice, 1);
        d.CheckRadioButton(kFirst, kThird, 0);
        d.UpdateData(true);
        EXPECT_EQ(dialog.m_choice, -1) << "no radio button checked";
        EXPECT_EQ(d.GetCheckedRadioButton(kFirst, kThird), 0);
    });
}

class BrokenExchange : public CDialog {
public:
    std::string first = "a";
    std::string last = "b";
    bool refuse = false;
    BrokenExchange() : CDialog(kPlainDialog) {}

protected:
    void DoDataExchange(CDataExchange* pDX) override {
        DDX_Text(pDX, IDOK, first);
        if (refuse)
            pDX->Fail();
        else
            DDX_Text(pDX, 999, first);
        DDX_Text(pDX, IDCANCEL, last);
    }
};

TEST_F(DialogTest, AFailedExchangeStopsAtTheFailureAndAnswersFalse) {
    LogCapture log;
    BrokenExchange dialog;
    run(dialog, [&](CDialog& d) {
        d.SetDlgItemText(IDOK, "A");
        d.SetDlgItemText(IDCANCEL, "B");
        EXPECT_FALSE(d.UpdateData(true));
        EXPECT_EQ(dialog.first, "A");
        EXPECT_EQ(dialog.last, "b") << "helpers after the failure do nothing";
        EXPECT_TRUE(log.has_error("DDX_Text(): dialog 700 has no control 999"));
        dialog.refuse = true;
        log.clear();
        EXPECT_FALSE(d.UpdateData(true));
        EXPECT_TRUE(log.errors().empty()) << "a refusal of the dialog's own is no error";
    });
}

TEST_F(DialogTest, RadioExchangeNeedsTheStartOfAGroup) {
    class WrongRadio : public CDialog {
    public:
        int value = 0;
        WrongRadio() : CDialog(kSampleDialog) {}
        void DoDataExchange(CDataExchange* pDX) override { DDX_Radio(pDX, kSecond, value); }
    };
    LogCapture log;
    WrongRadio dialog;
    run(dialog, [](CDialog& d) { EXPECT_FALSE(d.UpdateData(true)); });
    EXPECT_TRUE(log.has_error("DDX_Radio(): control 513 of dialog 500 starts no radio group"));
}

TEST_F(DialogTest, ChildDialogsSitInTheirPlaceholderAndHearShowAndHide) {
    SampleDlg owner;
    PagesDlg pages(&owner);
    run(owner, [&](CDialog& d) {
        if (&d == &owner) {
            EXPECT_EQ(pages.DoModal(), IDCANCEL);
            EXPECT_TRUE(owner.IsWindowEnabled());
            return;
        }
        EXPECT_FALSE(owner.IsWindowEnabled()) << "the owner is disabled while another runs";
        ASSERT_EQ(d.child_dialogs().size(), 2u);
        CRect rect;
        pages.page1.GetWindowRect(&rect);
        EXPECT_EQ(rect, (CRect{5, 5, 195, 95}));
        EXPECT_TRUE(pages.page1.IsWindowVisible());
        EXPECT_FALSE(pages.page2.IsWindowVisible());
        EXPECT_EQ(d.find_input_target(kPageCheck), &pages.page1);
        EXPECT_EQ(d.find_input_target(kPageEdit), nullptr) << "page 2 is hidden";
        EXPECT_EQ(d.find_input_target(IDOK), &d);
        EXPECT_EQ(pages.page2.UserClick(kNested), InputResult::Hidden) << "its page is hidden";
        EXPECT_EQ(owner.UserClick(kAsk), InputResult::Disabled) << "its dialog is disabled";
        d.UserClick(IDOK); // next page
        EXPECT_EQ(d.find_input_target(kPageEdit), &pages.page2);
        d.UserClick(kBack);
        d.UserClick(IDCANCEL);
        EXPECT_EQ(d.child_dialogs().size(), 1u) << "cancel destroyed page 1";
    });
    EXPECT_EQ(pages.page1.shows, (std::vector<std::string>{"show", "hide", "show"}));
    EXPECT_EQ(pages.page2.shows, (std::vector<std::string>{"show", "hide"}));
    EXPECT_FALSE(pages.page2.has_window()) << "children go with their parent";
}

// What each refusal looks like in a script run is in headless_host_test; here the
// states that change while the dialog runs.
TEST_F(DialogTest, UserInputObeysStateAndKind) {
    SampleDlg dialog;
    run(dialog, [&](CDialog& d) {
        EXPECT_EQ(d.UserClick(kOption), InputResult::Done);
        EXPECT_EQ(d.UserCheck(kOption, true), InputResult::Unchanged);
        EXPECT_EQ(d.UserCheck(kOption, false), InputResult::Done);
        EXPECT_EQ(d.UserCheck(kFirst, true), InputResult::Done);
        EXPECT_EQ(d.UserCheck(kFirst, false), InputResult::NotApplicable);
        EXPECT_EQ(d.IsDlgButtonChecked(kSecond), BST_UNCHECKED) << "the group is unchecked";
        EXPECT_EQ(d.IsDlgButtonChecked(kMiddleCheck), BST_UNCHECKED);
        d.GetDlgItem(kNumbers)->EnableWindow(false);
        EXPECT_EQ(d.UserSelect(kNumbers, 0), InputResult::Disabled);
        d.GetDlgItem(kFruits)->ShowWindow(SW_HIDE);
        EXPECT_EQ(d.UserSelect(kFruits, 0), InputResult::Hidden);
    });
    EXPECT_EQ(dialog.notes, (std::vector<std::string>{"option 1", "option 0"}));
}

TEST_F(DialogTest, HostsHearOfEveryChange) {
    SampleDlg dialog;
    CallbackHost* host = nullptr;
    run(
        dialog,
        [&](CDialog& d) {
            host->record_changes = true;
            dialog.m_fruits.AddString("date");
            d.SetDlgItemText(kStatus, "x");
            d.GetDlgItem(kAsk)->EnableWindow(false);
            d.CheckDlgButton(kOption, BST_CHECKED);
            d.SetWindowText("title");
            host->record_changes = false;
        },
        &host);
    EXPECT_EQ(std::vector<std::string>(host->calls.begin() + 1, host->calls.end() - 1),
              (std::vector<std::string>{"changed 500/525", "changed 500/520", "changed 500/529",
                                        "changed 500/511", "window 500"}));
}
