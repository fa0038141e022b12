#include "ui_headless_script.h"

#include "ui_defs.h"

#include <gtest/gtest.h>

using namespace korv::ui;

namespace {

std::vector<std::string> reformat(const std::string& script) {
    std::vector<ScriptEvent> events;
    std::string error;
    EXPECT_TRUE(parse_ui_script(script, events, error)) << error;
    std::vector<std::string> lines;
    for (const ScriptEvent& e : events)
        lines.push_back(std::to_string(e.line) + ": " + format_event(e));
    return lines;
}

std::string error_of(const std::string& script) {
    std::vector<ScriptEvent> events;
    std::string error;
    EXPECT_FALSE(parse_ui_script(script, events, error));
    return error;
}

} // namespace

TEST(HeadlessScript, EveryEventParsesAndFormatsBack) {
    const std::string script = "# a comment with a \" quote\r\n"
                               "\n"
                               "  click 1014\r\n"
                               "dblclick 1023\n"
                               "dblclick 1023 2\n"
                               "dblclick 1023 \"KMQ 6100\"\n"
                               "select 1058 0\n"
                               "select 1058 \"a \\\"b\\\" \\\\ c\\n\\t\"\n"
                               "check 1026\n"
                               "check -1 off\n"
                               "settext 1037 \"\"\n"
                               "answer yes\n"
                               "answer ok\n"
                               "close\n"
                               "dump";
    EXPECT_EQ(reformat(script), (std::vector<std::string>{
                                    "3: click 1014", "4: dblclick 1023", "5: dblclick 1023 2",
                                    "6: dblclick 1023 \"KMQ 6100\"", "7: select 1058 0",
                                    "8: select 1058 \"a \\\"b\\\" \\\\ c\\n\\t\"",
                                    "9: check 1026 on", "10: check -1 off", "11: settext 1037 \"\"",
                                    "12: answer yes", "13: answer ok", "14: close", "15: dump"}));
}

TEST(HeadlessScript, ABadLineIsNamedAndRefusesTheScript) {
    EXPECT_EQ(error_of("click 1\nclik 2"), "line 2: unknown event clik");
    EXPECT_EQ(error_of("click"), "line 1: click needs a control id");
    EXPECT_EQ(error_of("click 1x"), "line 1: click needs a control id");
    EXPECT_EQ(error_of("click 1 2"), "line 1: unexpected 2");
    EXPECT_EQ(error_of("select 5"), "line 1: select needs an item index or a text in quotes");
    EXPECT_EQ(error_of("select 5 -2"), "line 1: select needs an item index or a text in quotes");
    EXPECT_EQ(error_of("dblclick 5 word"),
              "line 1: dblclick needs an item index or a text in quotes");
    EXPECT_EQ(error_of("check 5 maybe"), "line 1: check takes on or off");
    EXPECT_EQ(error_of("settext 5 plain"), "line 1: settext needs a text in quotes");
    EXPECT_EQ(error_of("settext 5 \"open"), "line 1: text without its closing quote");
    EXPECT_EQ(error_of("settext 5 \"\\q\""), "line 1: unknown escape \\q");
    EXPECT_EQ(error_of("answer maybe"),
              "line 1: answer takes ok, cancel, yes, no, abort, retry or ignore");
    EXPECT_EQ(error_of("dump \"x\""), "line 1: unexpected \"x\"");
}
