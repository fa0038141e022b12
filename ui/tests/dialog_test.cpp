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
    // No host is chosen until a dialog or a box must be shown.
    EXPECT_EQ(loaded_host(), nullptr);
    EXPECT_TRUE(host_unavailable_reason().empty());
}

TEST_F(DialogTest, ModalRunGivesTheResultAndRefusesAMissingTemplateOrASecondRun) {
    LogCapture log;
    CDialog unknown(4242);
    EXPECT_EQ(run(unknown, nullptr), -1);
    EXPECT_TRUE(log.has_error("DoModal(): no dialog template 4242"));

    SampleDlg dialog;
    CallbackHost* host = nullptr;
    const int result = run(
        dialog,
        [](CDialog& d) {
            EXPECT_NE(d.GetDlgItem(kName), nullptr);
            EXPECT_EQ(d.GetDlgItem(IDC_STATIC), nullptr) << "IDC_STATIC names no control";
            EXPECT_EQ(d.GetDlgItem(4711), nullptr);
            EXPECT_EQ(d.DoModal(), -1);
            d.EndDialog(IDYES);
        },
        &host);
    EXPECT_EQ(result, IDYES);
    EXPECT_TRUE(log.has_error("DoModal(): dialog 500 runs already"));
    EXPECT_EQ(host->calls, (std::vector<std::string>{"opened 500", "ended 500 6"}));
    EXPECT_FALSE(dialog.has_window());
    EXPECT_EQ(dialog.GetDlgItem(kName), nullptr);
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
        EXPECT_EQ(d.find_control(kUndo)->images,
                  (std::vector<std::string>{"UndoU", "UndoD", "UndoF", "UndoX"}));
        EXPECT_EQ(d.find_control(kSummary)->background, 0xC0C0C0u);
        EXPECT_TRUE(d.tool_tips_active()); // the items and the tip show in the dump test
    });
    Translate_init("", dir.path(), "en", "sample");
}

// The user's pick unchecks the rest of its group; the code's range takes every button in it.
TEST_F(DialogTest, RadioButtonsByTheUserAndByTheCode) {
    SampleDlg dialog;
    run(dialog, [&](CDialog& d) {
        d.CheckDlgButton(kMiddleCheck, BST_CHECKED);
        d.CheckDlgButton(kOtherGroup, BST_CHECKED);
        EXPECT_EQ(d.UserCheck(kFirst, true), InputResult::Done);
        EXPECT_EQ(d.IsDlgButtonChecked(kSecond), BST_UNCHECKED);
        EXPECT_EQ(d.IsDlgButtonChecked(kMiddleCheck), BST_CHECKED) << "a check box joins no group";
        EXPECT_EQ(d.IsDlgButtonChecked(kOtherGroup), BST_CHECKED) << "the next group starts there";
        EXPECT_EQ(d.UserCheck(kMiddleCheck, false), InputResult::Done);
        EXPECT_EQ(d.IsDlgButtonChecked(kMiddleCheck), BST_UNCHECKED);
        d.CheckRadioButton(kFirst, kThird, kThird);
        EXPECT_EQ(d.GetCheckedRadioButton(kFirst, kThird), kThird);
        ASSERT_TRUE(d.UpdateData(true));
        EXPECT_EQ(dialog.m_choice, 2) << "the check box is no member";
        d.CheckRadioButton(kFirst, kThird, 0);
        d.UpdateData(true);
        EXPECT_EQ(dialog.m_choice, -1) << "no radio button checked";
        EXPECT_EQ(d.GetCheckedRadioButton(kFirst, kThird), 0);
    });
}

// A helper that fails, or the dialog's own refusal, stops the exchange there.
class BrokenExchange : public CDialog {
public:
    std::string first = "a";
    std::string last = "b";
    int fault = 0; // a missing control, a radio group that starts elsewhere, a refusal
    BrokenExchange() : CDialog(kSampleDialog) {}

protected:
    void DoDataExchange(CDataExchange* pDX) override {
        DDX_Text(pDX, kName, first);
        int choice = 0;
        if (fault == 0)
            DDX_Text(pDX, 999, first);
        else if (fault == 1)
            DDX_Radio(pDX, kSecond, choice);
        else
            pDX->Fail();
        DDX_Text(pDX, kFixedText, last);
    }
};

TEST_F(DialogTest, AFailedExchangeStopsAtTheFailureAndAnswersFalse) {
    const char* const errors[] = {"DDX_Text(): dialog 500 has no control 999",
                                  "DDX_Radio(): control 513 of dialog 500 starts no radio group"};
    BrokenExchange dialog;
    run(dialog, [&](CDialog& d) {
        for (int fault : {0, 1, 2}) {
            LogCapture log;
            dialog.fault = fault;
            d.SetDlgItemText(kName, "A" + std::to_string(fault));
            d.SetDlgItemText(kFixedText, "B");
            EXPECT_FALSE(d.UpdateData(true)) << fault;
            EXPECT_EQ(dialog.first, "A" + std::to_string(fault));
            EXPECT_EQ(dialog.last, "b") << "helpers after the failure do nothing";
            if (fault < 2)
                EXPECT_TRUE(log.has_error(errors[fault])) << fault;
            else
                EXPECT_TRUE(log.errors().empty()) << "a refusal of the dialog's own is no error";
        }
    });
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
