#include "ui_headless_script.h"

#include "ui_message_box.h"

#include <charconv>

namespace korv::ui {

namespace {

struct Token {
    enum class Type { Word, Number, Text } type;
    std::string value;
    int number = 0;
};

bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\r';
}

// Splits one line into words, numbers and quoted texts.
bool tokenize(std::string_view line, std::vector<Token>& tokens, std::string& error) {
    tokens.clear();
    std::size_t i = 0;
    while (i < line.size()) {
        if (is_blank(line[i])) {
            ++i;
            continue;
        }
        if (line[i] == '"') {
            std::string text;
            bool closed = false;
            for (++i; i < line.size(); ++i) {
                char c = line[i];
                if (c == '"') {
                    closed = true;
                    ++i;
                    break;
                }
                if (c == '\\') {
                    if (++i == line.size())
                        break;
                    switch (line[i]) {
                    case 'n':
                        c = '\n';
                        break;
                    case 'r':
                        c = '\r';
                        break;
                    case 't':
                        c = '\t';
                        break;
                    case '\\':
                    case '"':
                        c = line[i];
                        break;
                    default:
                        error = std::string("unknown escape \\") + line[i];
                        return false;
                    }
                }
                text += c;
            }
            if (!closed) {
                error = "text without its closing quote";
                return false;
            }
            tokens.push_back({Token::Type::Text, std::move(text)});
            continue;
        }
        const std::size_t start = i;
        while (i < line.size() && !is_blank(line[i]) && line[i] != '"')
            ++i;
        const std::string_view word = line.substr(start, i - start);
        int number = 0;
        const auto [end, ec] = std::from_chars(word.data(), word.data() + word.size(), number);
        if (ec == std::errc() && end == word.data() + word.size())
            tokens.push_back({Token::Type::Number, std::string(word), number});
        else
            tokens.push_back({Token::Type::Word, std::string(word)});
    }
    return true;
}

using Kind = ScriptEvent::Kind;

struct Grammar {
    const char* word;
    Kind kind;
};

const Grammar kEvents[] = {
    {"click", Kind::Click},     {"dblclick", Kind::DoubleClick},
    {"select", Kind::Select},   {"check", Kind::Check},
    {"settext", Kind::SetText}, {"answer", Kind::Answer},
    {"close", Kind::Close},     {"dump", Kind::Dump},
};

const char* event_word(Kind kind) {
    for (const Grammar& g : kEvents)
        if (g.kind == kind)
            return g.word;
    return "?";
}

// Reads the arguments of one event; `error` says what is wrong.
bool parse_arguments(const std::vector<Token>& t, ScriptEvent& e, std::string& error) {
    const std::size_t n = t.size();
    auto is = [&](std::size_t i, Token::Type type) { return i < n && t[i].type == type; };
    const bool needs_id = e.kind != Kind::Answer && e.kind != Kind::Close && e.kind != Kind::Dump;
    if (needs_id) {
        if (!is(1, Token::Type::Number)) {
            error = std::string(event_word(e.kind)) + " needs a control id";
            return false;
        }
        e.id = t[1].number;
    }
    std::size_t used = needs_id ? 2 : 1;
    switch (e.kind) {
    case Kind::Select:
    case Kind::DoubleClick:
        if (is(2, Token::Type::Number) && t[2].number >= 0) {
            e.index = t[2].number;
            used = 3;
        } else if (is(2, Token::Type::Text)) {
            e.by_text = true;
            e.text = t[2].value;
            used = 3;
        } else if (e.kind == Kind::Select || n > 2) {
            error = std::string(event_word(e.kind)) + " needs an item index or a text in quotes";
            return false;
        }
        break;
    case Kind::Check:
        if (n > 2) {
            if (!is(2, Token::Type::Word) || (t[2].value != "on" && t[2].value != "off")) {
                error = "check takes on or off";
                return false;
            }
            e.on = t[2].value == "on";
            used = 3;
        }
        break;
    case Kind::SetText:
        if (!is(2, Token::Type::Text)) {
            error = "settext needs a text in quotes";
            return false;
        }
        e.text = t[2].value;
        used = 3;
        break;
    case Kind::Answer:
        e.answer = is(1, Token::Type::Word) ? answer_from_name(t[1].value) : 0;
        if (!e.answer) {
            error = "answer takes ok, cancel, yes, no, abort, retry or ignore";
            return false;
        }
        used = 2;
        break;
    default:
        break;
    }
    if (used < n) {
        error = "unexpected " +
                (t[used].type == Token::Type::Text ? quote_text(t[used].value) : t[used].value);
        return false;
    }
    return true;
}

} // namespace

bool parse_ui_script(std::string_view script, std::vector<ScriptEvent>& events,
                     std::string& error) {
    events.clear();
    std::vector<Token> tokens;
    int line_no = 0;
    std::size_t pos = 0;
    while (pos < script.size()) {
        std::size_t end = script.find('\n', pos);
        if (end == std::string_view::npos)
            end = script.size();
        const std::string_view line = script.substr(pos, end - pos);
        pos = end + 1;
        ++line_no;
        const std::size_t first = line.find_first_not_of(" \t\r");
        if (first == std::string_view::npos || line[first] == '#')
            continue;
        std::string why;
        if (!tokenize(line, tokens, why)) {
            error = "line " + std::to_string(line_no) + ": " + why;
            return false;
        }
        ScriptEvent event;
        event.line = line_no;
        bool known = false;
        for (const Grammar& g : kEvents)
            if (tokens[0].type == Token::Type::Word && tokens[0].value == g.word) {
                event.kind = g.kind;
                known = true;
            }
        if (!known) {
            why = "unknown event " + (tokens[0].type == Token::Type::Text
                                          ? quote_text(tokens[0].value)
                                          : tokens[0].value);
        }
        if (!known || !parse_arguments(tokens, event, why)) {
            error = "line " + std::to_string(line_no) + ": " + why;
            return false;
        }
        events.push_back(std::move(event));
    }
    return true;
}

std::string format_event(const ScriptEvent& e) {
    std::string line = event_word(e.kind);
    switch (e.kind) {
    case Kind::Answer:
        return line + " " + answer_name(e.answer);
    case Kind::Close:
    case Kind::Dump:
        return line;
    default:
        break;
    }
    line += " " + std::to_string(e.id);
    if (e.kind == Kind::Check)
        line += e.on ? " on" : " off";
    else if (e.by_text || e.kind == Kind::SetText)
        line += " " + quote_text(e.text);
    else if (e.index >= 0)
        line += " " + std::to_string(e.index);
    return line;
}

std::string quote_text(std::string_view text) {
    std::string out;
    out.reserve(text.size() + 2);
    out += '"';
    for (char c : text) {
        switch (c) {
        case '\\':
            out += "\\\\";
            break;
        case '"':
            out += "\\\"";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\t':
            out += "\\t";
            break;
        default:
            out += c;
        }
    }
    out += '"';
    return out;
}

} // namespace korv::ui
