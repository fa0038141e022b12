#include "po_catalog.h"

namespace korv::diag::detail {
namespace {

// The contents of one quoted string starting at `text[at]` == '"'.
std::string unquote(std::string_view text, std::size_t at) {
    std::string out;
    for (std::size_t i = at + 1; i < text.size() && text[i] != '"'; ++i) {
        char c = text[i];
        if (c == '\\' && i + 1 < text.size()) {
            switch (text[++i]) {
            case 'n':
                c = '\n';
                break;
            case 't':
                c = '\t';
                break;
            case 'r':
                c = '\r';
                break;
            case '"':
                c = '"';
                break;
            case '\\':
                c = '\\';
                break;
            default:
                out += '\\';
                c = text[i];
                break;
            }
        }
        out += c;
    }
    return out;
}

std::string_view trim(std::string_view line) {
    while (!line.empty() && (line.front() == ' ' || line.front() == '\t'))
        line.remove_prefix(1);
    while (!line.empty() && (line.back() == ' ' || line.back() == '\t' || line.back() == '\r'))
        line.remove_suffix(1);
    return line;
}

} // namespace

PoCatalog parse_po(std::string_view text) {
    PoCatalog catalog;
    enum class Field { None, Id, Str, Other } field = Field::None;
    std::string id, str;
    bool fuzzy = false, have_entry = false;

    auto flush = [&] {
        if (have_entry && !fuzzy && !id.empty() && !str.empty())
            catalog[id] = str;
        id.clear();
        str.clear();
        fuzzy = have_entry = false;
        field = Field::None;
    };

    std::size_t at = 0;
    while (at < text.size()) {
        std::size_t end = text.find('\n', at);
        if (end == std::string_view::npos)
            end = text.size();
        const std::string_view line = trim(text.substr(at, end - at));
        at = end + 1;

        if (line.empty()) {
            flush();
        } else if (line.front() == '#') {
            if (field == Field::Str || field == Field::Other)
                flush();
            if (line.starts_with("#,") && line.find("fuzzy") != std::string_view::npos)
                fuzzy = true;
        } else if (line.front() == '"') {
            if (field == Field::Id)
                id += unquote(line, 0);
            else if (field == Field::Str)
                str += unquote(line, 0);
        } else if (line.starts_with("msgid ")) {
            if (field == Field::Str || field == Field::Other)
                flush();
            field = Field::Id;
            have_entry = true;
            id = unquote(line, line.find('"'));
        } else if (line.starts_with("msgstr ")) {
            field = Field::Str;
            str = unquote(line, line.find('"'));
        } else {
            // msgctxt, msgid_plural, msgstr[n]: not used by this program.
            field = Field::Other;
            fuzzy = true;
        }
    }
    flush();
    return catalog;
}

} // namespace korv::diag::detail
