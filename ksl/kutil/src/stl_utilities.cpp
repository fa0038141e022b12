#include "stl_utilities.h"

#include <cctype>

#include <algorithm>

namespace korv {

std::size_t stl_string_replace(std::string& text, const std::string& search,
                               const std::string& replacement) {
    if (search.empty())
        return 0;
    std::size_t found = text.find(search);
    if (found == std::string::npos)
        return 0;
    // Built aside, so that many replacements stay linear. Searching on behind
    // each replacement means one that holds the search text cannot loop.
    std::string result;
    result.reserve(text.size());
    std::size_t count = 0;
    std::size_t from = 0;
    do {
        result.append(text, from, found - from);
        result += replacement;
        from = found + search.size();
        ++count;
        found = text.find(search, from);
    } while (found != std::string::npos);
    result.append(text, from);
    text = std::move(result);
    return count;
}

void stl_string_to_lower(std::string& text) {
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    }
}

void stl_string_quote_space(std::string& text) {
    const std::size_t first = text.find_first_of("\"\\ ");
    if (first == std::string::npos)
        return;
    const bool quote = text.find(' ', first) != std::string::npos;
    std::string result;
    result.reserve(text.size() + 8);
    if (quote)
        result += '"';
    for (const char c : text) {
        if (c == '"' || c == '\\')
            result += '\\';
        result += c;
    }
    if (quote)
        result += '"';
    text = std::move(result);
}

bool stl_string_unquote_space(std::string& text) {
    std::size_t pos = text.find_first_of("\"\\ ");
    if (pos == std::string::npos)
        return true;
    // Only the first special character is tested for a blank; blanks behind it are
    // kept whether quoted or not.
    if (text[pos] == ' ') {
        KERRTRACE("stl_string_unquote_space(): found unquoted space");
        return false;
    }
    std::string result(text, 0, pos);
    bool quoted = false;
    while (pos < text.size()) {
        const char c = text[pos];
        if (c == '"') {
            quoted = !quoted;
            ++pos;
        } else if (c == '\\') {
            if (pos + 1 == text.size() || (text[pos + 1] != '"' && text[pos + 1] != '\\')) {
                KERRTRACE("stl_string_unquote_space(): can't unquote a lonely backslash");
                return false;
            }
            result += text[pos + 1];
            pos += 2;
        } else {
            const std::size_t next = std::min(text.find_first_of("\"\\", pos), text.size());
            result.append(text, pos, next - pos);
            pos = next;
        }
    }
    if (quoted) {
        KERRTRACE("stl_string_unquote_space(): no closing quote found");
        return false;
    }
    text = std::move(result);
    return true;
}

void stl_string_strip_comment(std::string& text) {
    for (const char* marker : {"//", "/*", ";"}) {
        const std::size_t at = text.find(marker);
        if (at != std::string::npos)
            text.erase(at);
    }
}

void stl_string_remove_white_space(std::string& text) {
    std::erase_if(text, [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; });
}

} // namespace korv
