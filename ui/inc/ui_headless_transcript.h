// The transcript of the headless host: what a user would have seen, one line
// each, indented two blanks for each open modal dialog. docs/headless-host.md
// describes the lines.
#pragma once

#include "ui_dialog.h"

#include <cstdio>
#include <functional>
#include <string>

namespace korv::ui {

class Transcript {
public:
    // Receives each line, without its line end.
    using Sink = std::function<void(const std::string& line)>;

    explicit Transcript(Sink sink) : m_sink(std::move(sink)) {}
    // Writes lines to `file`, flushed one by one so that a crash loses none;
    // closes it at the end if `owned`.
    static Sink file_sink(std::FILE* file, bool owned);

    // An event that was applied. Held back until the next line, so that a
    // refusal can replace it: the line of an event comes before whatever the
    // event caused.
    void event(int depth, std::string line);
    // Replaces the held event line by the reason it was refused.
    void refuse(std::string why);
    void line(int depth, const std::string& text);

    void opened(int depth, const CDialog& dialog);
    void ended(int depth, const CDialog& dialog, int result);
    void message_box(int depth, const std::string& text, unsigned type, int answer, bool answered);
    // The dialog, its controls and its visible child dialogs.
    void dump(int depth, const CDialog& dialog);

private:
    void flush_held();
    void dump_controls(int depth, const CDialog& dialog);

    Sink m_sink;
    bool m_holding = false;
    int m_heldDepth = 0;
    std::string m_held;
};

} // namespace korv::ui
