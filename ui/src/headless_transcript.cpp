#include "ui_headless_transcript.h"

#include "ui_headless_script.h"
#include "ui_message_box.h"

#include <memory>

namespace korv::ui {

namespace {

std::string dialog_line(const char* word, const CDialog& dialog) {
    std::string text = std::string(word) + " " + std::to_string(dialog.template_id()) + " " +
                       quote_text(dialog.window().text);
    if (!dialog.window().enabled)
        text += " disabled";
    return text;
}

} // namespace

Transcript::Sink Transcript::file_sink(std::FILE* file, bool owned) {
    std::shared_ptr<std::FILE> out(file, [owned](std::FILE* f) {
        if (owned)
            std::fclose(f);
    });
    return [out](const std::string& line) {
        std::fwrite(line.data(), 1, line.size(), out.get());
        std::fputc('\n', out.get());
        std::fflush(out.get());
    };
}

void Transcript::flush_held() {
    if (m_holding) {
        m_holding = false;
        m_sink(std::string(static_cast<std::size_t>(2 * m_heldDepth), ' ') + m_held);
    }
}

void Transcript::event(int depth, std::string line) {
    flush_held();
    m_holding = true;
    m_heldDepth = depth;
    m_held = "> " + std::move(line);
}

void Transcript::refuse(std::string why) {
    if (!m_holding)
        return;
    m_held = "! " + m_held.substr(2) + ": " + why;
    flush_held();
}

void Transcript::line(int depth, const std::string& text) {
    flush_held();
    m_sink(std::string(static_cast<std::size_t>(2 * depth), ' ') + text);
}

void Transcript::opened(int depth, const CDialog& dialog) {
    line(depth, dialog_line("open", dialog));
}

void Transcript::ended(int depth, const CDialog& dialog, int result) {
    line(depth, "end " + std::to_string(dialog.template_id()) + " -> " + std::to_string(result));
}

void Transcript::message_box(int depth, const std::string& text, unsigned type, int answer,
                             bool answered) {
    std::string box = "message box ";
    if (const char* icon = message_box_icon(type); *icon)
        box += std::string(icon) + " ";
    box += message_box_buttons(type).name;
    const char* name = answer_name(answer);
    box += " " + quote_text(text) + " -> " + (name ? name : std::to_string(answer));
    if (!answered)
        box += " (no answer in the script)";
    line(depth, box);
}

void Transcript::dump(int depth, const CDialog& dialog) {
    line(depth, dialog_line("dump", dialog));
    dump_controls(depth + 1, dialog);
}

void Transcript::dump_controls(int depth, const CDialog& dialog) {
    for (const ControlState& c : dialog.controls()) {
        std::string text = (c.id == IDC_STATIC ? std::string("-") : std::to_string(c.id)) + " " +
                           control_kind_name(c.kind) + " " + quote_text(c.window_text());
        if (!c.enabled)
            text += " disabled";
        if (!c.visible)
            text += " hidden";
        if (c.check == BST_CHECKED)
            text += " checked";
        else if (c.check == BST_INDETERMINATE)
            text += " indeterminate";
        if (c.has_items())
            text += " items " + std::to_string(c.items.size()) + " selection " +
                    std::to_string(c.selection);
        if (dialog.tool_tips_active() && !c.tip.empty())
            text += " tip " + quote_text(c.tip);
        line(depth, text);
        for (std::size_t i = 0; i < c.items.size(); ++i) {
            std::string item = std::to_string(i) + " " + quote_text(c.items[i].text);
            if (c.items[i].data != 0)
                item += " data " + std::to_string(c.items[i].data);
            line(depth + 1, item);
        }
    }
    for (const CDialog* child : dialog.child_dialogs()) {
        if (!child->window().visible)
            continue;
        line(depth, dialog_line("dialog", *child));
        dump_controls(depth + 1, *child);
    }
}

} // namespace korv::ui
