#include "sample_dialogs.h"

#include "ui_headless_host.h"
#include "ui_host_selection.h"

#include <gtest/gtest.h>

using namespace sample;

namespace {

// Runs the sample dialog under `script`; the transcript lines land in `lines`.
struct ScriptRun {
    std::vector<std::string> lines;
    int result = 0;
    SampleDlg dialog;

    explicit ScriptRun(const std::string& script) {
        std::vector<ScriptEvent> events;
        std::string error;
        EXPECT_TRUE(parse_ui_script(script, events, error)) << error;
        register_templates();
        install_host(std::make_unique<HeadlessHost>(
            std::move(events), [this](const std::string& line) { lines.push_back(line); }));
    }
    ~ScriptRun() { reset_host_selection(); }
    // Runs the dialog, then ends the host, whose last words join the transcript.
    const std::vector<std::string>& run() {
        result = dialog.DoModal();
        reset_host_selection();
        return lines;
    }
};

} // namespace

TEST(HeadlessHost, ScriptDrivesNestedDialogsAndBoxes) {
    ScriptRun r("settext 523 \"Ann\"\n"
                "select 525 \"banana\"\n"
                "dblclick 525 0\n"
                "select 526 1\n"
                "check 511\n"
                "click 512\n"
                "click 529\n"
                "answer yes\n"
                "click 528\n"
                "check 612\n"
                "click 1\n"
                "settext 614 \"deep\"\n"
                "dump\n"
                "click 615\n"
                "click 1\n"
                "click 1\n"
                "answer no\n"
                "click 529\n"
                "click 1\n"
                "dump\n"
                "\n"
                "click 2\n");
    const std::vector<std::string> expected = {
        "open 500 \"Sample.dlghead\"",
        "  > settext 523 \"Ann\"",
        "  > select 525 \"banana\"",
        "  > dblclick 525 0",
        "  > select 526 1",
        "  > check 511 on",
        "  > click 512",
        "  > click 529",
        "  message box question yes-no \"Proceed?\" -> yes",
        "  > click 528",
        "  open 600 \"Pages.dlghead\"",
        "    > check 612 on (in 610)",
        "    > click 1",
        "    > settext 614 \"deep\" (in 611)",
        // The frame and its current page only.
        "    dump 600 \"Pages.dlghead\"",
        "      1 default button \"Next.but\"",
        "      2 button \"Cancel.but\"",
        "      601 button \"Back.but\"",
        "      602 frame \"\" hidden",
        "      dialog 611 \"\"",
        "        614 edit \"deep\"",
        "        615 button \"Nested.but\"",
        "    > click 615 (in 611)",
        "    open 700 \"Plain.dlghead\"",
        "      > click 1",
        "    end 700 -> 1",
        "    > click 1",
        "  end 600 -> 1",
        "  > click 529",
        "  message box question yes-no \"Proceed?\" -> no",
        "  > click 1",
        "end 500 -> 1",
        "! 2 events from line 20 were not used",
    };
    EXPECT_EQ(r.run(), expected);
    EXPECT_EQ(r.result, IDOK);
    EXPECT_TRUE(r.dialog.m_name == "Ann" && r.dialog.m_option == 1 && r.dialog.m_choice == 0);
    EXPECT_EQ(r.dialog.notes, (std::vector<std::string>{"name changed", "fruit 1", "fruit 0",
                                                        "double apple", "number two", "option 1"}));
}

TEST(HeadlessHost, EventsAUserCouldNotGiveAreReportedAndChangeNothing) {
    ScriptRun r("click 4711\n"
                "click 530\n"
                "click 522\n"
                "settext 524 \"x\"\n"
                "select 525 \"kiwi\"\n"
                "select 525 9\n"
                "dblclick 526 0\n"
                "click 523\n"
                "check 513 off\n"
                "check 513 on\n");
    const auto& lines = r.run();
    const std::vector<std::string> expected = {
        "open 500 \"Sample.dlghead\"",
        "  ! click 4711: no such control",
        "  ! click 530: disabled",
        "  ! click 522: hidden",
        "  ! settext 524 \"x\": read-only",
        "  ! select 525 \"kiwi\": no such item",
        "  ! select 525 9: no such item",
        "  ! dblclick 526 0: not for this kind of control",
        "  ! click 523: not for this kind of control",
        "  ! check 513 off: not for this kind of control",
        "  ! check 513 on: unchanged",
        "  > close (end of the script)",
        "end 500 -> 2",
    };
    EXPECT_EQ(lines, expected);
    EXPECT_TRUE(r.dialog.notes.empty());
    EXPECT_EQ(r.result, IDCANCEL);
}

// The explicit close ends the innermost dialog, the end of the script every other.
TEST(HeadlessHost, AnswersWaitForTheirBoxAndUnfitOrMissingOnesClose) {
    ScriptRun r("answer ok\n"
                "click 529\n"
                "click 529\n"
                "click 1\n"
                "answer cancel\n"
                "answer yes\n"
                "click 528\n"
                "click 1\n"
                "click 615\n"
                "close\n");
    const std::string no_answer = " (no answer in the script)";
    EXPECT_EQ(r.run(), (std::vector<std::string>{
                           "open 500 \"Sample.dlghead\"",
                           "  > click 529",
                           "  ! answer ok (line 1): the box has no such button",
                           "  message box question yes-no \"Proceed?\" -> no" + no_answer,
                           "  > click 529",
                           "  message box question yes-no \"Proceed?\" -> no" + no_answer,
                           "  > click 1",
                           "  ! answer cancel (line 5): the box has no such button",
                           "  message box error ok \"Name missing.msg\" -> ok" + no_answer,
                           "  > click 528",
                           "  open 600 \"Pages.dlghead\"",
                           "    > click 1",
                           "    > click 615 (in 611)",
                           "    open 700 \"Plain.dlghead\"",
                           "      > close",
                           "    end 700 -> 2",
                           "    > close (end of the script)",
                           "  end 600 -> 2",
                           "  > close (end of the script)",
                           "end 500 -> 2",
                           "! answer yes (line 6) was not used",
                       }));
}

TEST(HeadlessHost, DumpShowsStateItemsAndTips) {
    // One line of each kind of control and state.
    ScriptRun r("click 511\ndump\n");
    const auto& all = r.run();
    for (const char* line :
         {"  dump 500 \"Sample.dlghead\"", "    1 default button \"OK.but\"",
          "    510 bitmap button \"Undo\"", "    511 check box \"Option.txt\" checked",
          "    513 radio button \"Second.txt\" checked", "    - static \"Name:.txt\"",
          "    521 bitmap \"9999\"", "    522 frame \"\" hidden", "    524 edit \"fixed\"",
          "    525 list box \"\" items 3 selection -1", "      1 \"Banana\" data 66",
          "    526 combo box \"one\" items 2 selection 0", "    527 rich edit \"\"",
          "    528 button \"Pages.but\" tip \"Opens the pages\"",
          "    530 button \"Never.but\" disabled"})
        EXPECT_NE(std::find(all.begin(), all.end(), line), all.end()) << line;
}

TEST(HeadlessHost, ADialogThatRefusesToCloseIsEndedAtTheEndOfTheScript) {
    class Stubborn : public CDialog {
    public:
        Stubborn() : CDialog(kPlainDialog) {}

    protected:
        void OnCancel() override {}
    };
    register_templates();
    std::vector<std::string> lines;
    install_host(std::make_unique<HeadlessHost>(std::vector<ScriptEvent>{},
                                                [&](const std::string& l) { lines.push_back(l); }));
    Stubborn dialog;
    EXPECT_EQ(dialog.DoModal(), IDCANCEL);
    reset_host_selection();
    EXPECT_EQ(lines, (std::vector<std::string>{
                         "open 700 \"Plain.dlghead\"", "  > close (end of the script)",
                         "  ! 700 stayed open and was ended with 2", "end 700 -> 2"}));
}
