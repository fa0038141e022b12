// The event script of the headless host: one event a line, '#' starts a
// comment line, blank lines are ignored. docs/headless-host.md describes it.
//
//   click 1014
//   select 1023 "KMQ6100"
//   dblclick 1023 0
//   check 1026 on
//   settext 1037 "YD 25"
//   answer yes
//   close
//   dump
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace korv::ui {

struct ScriptEvent {
    enum class Kind { Click, DoubleClick, Select, Check, SetText, Answer, Close, Dump };

    Kind kind = Kind::Dump;
    int line = 0; // in the script, from 1
    int id = 0;
    int index = -1;       // select and dblclick by index; -1 for dblclick without item
    bool by_text = false; // select and dblclick by text
    std::string text;     // the item text, or the text typed
    bool on = true;       // check
    int answer = 0;       // IDOK ... IDNO
};

// Parses a whole script. False, with `error` naming the line, at the first line
// that is no event.
bool parse_ui_script(std::string_view script, std::vector<ScriptEvent>& events, std::string& error);

// The event as the script line that gives it.
std::string format_event(const ScriptEvent& event);

// `text` in double quotes, with backslash, quote, line feed, carriage return
// and tab escaped as \\ \" \n \r \t; the form strings have in scripts and
// transcripts.
std::string quote_text(std::string_view text);

} // namespace korv::ui
