// The headless host: runs dialogs from an event script and writes what
// happened to a transcript, for tests and for the suite's tools.
//
// Events go to the innermost modal dialog, to a control of its visible child
// dialogs first (a wizard's current page), then to its own. An event that a
// user could not give (no such control, disabled, hidden, wrong kind) is
// reported and changes nothing. An "answer" is kept for the next message box;
// a box takes the answer that waits, or the one right behind the event that
// caused it. When the script runs out, every open dialog is closed as by its
// close box, and a box without an answer is closed the same way.
#pragma once

#include "ui_headless_script.h"
#include "ui_headless_transcript.h"
#include "ui_host.h"

#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace korv::ui {

class HeadlessHost : public Host {
public:
    HeadlessHost(std::vector<ScriptEvent> events, Transcript::Sink sink);
    // Reads the script at `script_path` and writes the transcript to
    // `transcript_path`, or to standard output if it is empty. Null, with
    // `why` set, if the script cannot be read or parsed or the transcript
    // cannot be created.
    static std::unique_ptr<HeadlessHost> from_files(const std::string& script_path,
                                                    const std::string& transcript_path,
                                                    std::string& why);
    // Reports what the script held that no dialog took.
    ~HeadlessHost() override;

    void DialogOpened(CDialog& dialog) override;
    void RunModal(CDialog& dialog) override;
    void DialogEnded(CDialog& dialog, int result) override;
    int ShowMessageBox(const std::string& text, unsigned type) override;

private:
    void deliver(CDialog& modal, const ScriptEvent& event);
    void close_at_end(CDialog& modal);

    std::vector<ScriptEvent> m_events;
    std::size_t m_next = 0;
    std::deque<ScriptEvent> m_answers; // read before their box came
    Transcript m_transcript;
    int m_depth = 0; // open modal dialogs
};

} // namespace korv::ui
