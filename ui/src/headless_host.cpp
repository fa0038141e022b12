#include "ui_headless_host.h"

#include "ui_dialog.h"
#include "ui_message_box.h"

#include <fstream>
#include <limits>
#include <sstream>

namespace korv::ui {

HeadlessHost::HeadlessHost(std::vector<ScriptEvent> events, Transcript::Sink sink)
    : m_events(std::move(events)), m_transcript(std::move(sink)) {}

std::unique_ptr<HeadlessHost> HeadlessHost::from_files(const std::string& script_path,
                                                       const std::string& transcript_path,
                                                       std::string& why) {
    std::ifstream in(script_path, std::ios::binary);
    if (!in) {
        why = "the script " + script_path + " cannot be read";
        return nullptr;
    }
    std::ostringstream text;
    text << in.rdbuf();
    std::vector<ScriptEvent> events;
    std::string error;
    if (!parse_ui_script(text.str(), events, error)) {
        why = "the script " + script_path + " has an error in " + error;
        return nullptr;
    }
    Transcript::Sink sink;
    if (transcript_path.empty()) {
        sink = Transcript::file_sink(stdout, false);
    } else {
        std::FILE* file = std::fopen(transcript_path.c_str(), "w");
        if (!file) {
            why = "the transcript " + transcript_path + " cannot be created";
            return nullptr;
        }
        sink = Transcript::file_sink(file, true);
    }
    return std::make_unique<HeadlessHost>(std::move(events), std::move(sink));
}

HeadlessHost::~HeadlessHost() {
    for (const ScriptEvent& answer : m_answers)
        m_transcript.line(0, "! " + format_event(answer) + " (line " + std::to_string(answer.line) +
                                 ") was not used");
    if (m_next < m_events.size())
        m_transcript.line(0, "! " + std::to_string(m_events.size() - m_next) +
                                 " events from line " + std::to_string(m_events[m_next].line) +
                                 " were not used");
}

void HeadlessHost::DialogOpened(CDialog& dialog) {
    m_transcript.opened(m_depth++, dialog);
}

void HeadlessHost::DialogEnded(CDialog& dialog, int result) {
    m_transcript.ended(--m_depth, dialog, result);
}

void HeadlessHost::RunModal(CDialog& dialog) {
    while (!dialog.modal_ended()) {
        if (m_next == m_events.size()) {
            close_at_end(dialog);
            return;
        }
        deliver(dialog, m_events[m_next++]);
    }
}

void HeadlessHost::close_at_end(CDialog& modal) {
    m_transcript.line(m_depth, "> close (end of the script)");
    modal.UserClose();
    if (!modal.modal_ended()) {
        m_transcript.line(m_depth, "! " + std::to_string(modal.template_id()) +
                                       " stayed open and was ended with 2");
        modal.EndDialog(IDCANCEL);
    }
}

void HeadlessHost::deliver(CDialog& modal, const ScriptEvent& e) {
    using Kind = ScriptEvent::Kind;
    switch (e.kind) {
    case Kind::Answer:
        m_answers.push_back(e);
        return;
    case Kind::Dump:
        m_transcript.dump(m_depth, modal);
        return;
    case Kind::Close:
        m_transcript.line(m_depth, "> close");
        modal.UserClose();
        return;
    default:
        break;
    }
    std::string echo = format_event(e);
    CDialog* target = modal.find_input_target(e.id);
    if (target && target != &modal)
        echo += " (in " + std::to_string(target->template_id()) + ")";
    m_transcript.event(m_depth, echo);
    if (!target) {
        m_transcript.refuse(input_result_text(InputResult::NoSuchControl));
        return;
    }
    int index = e.index;
    if (e.by_text) {
        // An item that is not there is one past the end: refused as no such item,
        // after the checks of the control itself.
        const ControlState* control = target->find_control(e.id);
        index = control->find_string_exact(-1, e.text);
        if (index == LB_ERR)
            index = std::numeric_limits<int>::max();
    }
    InputResult result = InputResult::Done;
    switch (e.kind) {
    case Kind::Click:
        result = target->UserClick(e.id);
        break;
    case Kind::DoubleClick:
        result = target->UserDoubleClick(e.id, index);
        break;
    case Kind::Select:
        result = target->UserSelect(e.id, index);
        break;
    case Kind::Check:
        result = target->UserCheck(e.id, e.on);
        break;
    case Kind::SetText:
        result = target->UserSetText(e.id, e.text);
        break;
    default:
        break;
    }
    if (result != InputResult::Done)
        m_transcript.refuse(input_result_text(result));
}

int HeadlessHost::ShowMessageBox(const std::string& text, unsigned type) {
    if (m_answers.empty() && m_next < m_events.size() &&
        m_events[m_next].kind == ScriptEvent::Kind::Answer)
        m_answers.push_back(m_events[m_next++]);
    const MessageBoxButtons& buttons = message_box_buttons(type);
    int answer = buttons.close_answer;
    bool answered = false;
    if (!m_answers.empty()) {
        const ScriptEvent given = m_answers.front();
        m_answers.pop_front();
        if (buttons.offers(given.answer)) {
            answer = given.answer;
            answered = true;
        } else {
            m_transcript.line(m_depth, "! " + format_event(given) + " (line " +
                                           std::to_string(given.line) +
                                           "): the box has no such button");
        }
    }
    m_transcript.message_box(m_depth, text, type, answer, answered);
    return answer;
}

} // namespace korv::ui
