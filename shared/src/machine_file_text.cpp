#include "machine_file_text.h"

#include "stl_utilities.h"

#include <algorithm>
#include <cctype>

namespace machine_file {
namespace {

char lower(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c | 0x20) : c;
}

} // namespace

void strip_comment(std::string& text) {
    korv::stl_string_strip_comment(text);
}

void trim_blanks(std::string& text) {
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos) {
        text.clear();
        return;
    }
    text.erase(text.find_last_not_of(" \t") + 1);
    text.erase(0, first);
}

void remove_white_space(std::string& text) {
    korv::stl_string_remove_white_space(text);
}

std::vector<std::string> read_list(std::string value, bool cut_comment) {
    if (cut_comment)
        strip_comment(value);
    remove_white_space(value);
    std::replace(value.begin(), value.end(), '_', ' ');
    return split_nonempty(value, ',');
}

std::vector<std::string> split_nonempty(const std::string& text, char separator) {
    std::vector<std::string> pieces;
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = text.find(separator, start);
        if (end == std::string::npos)
            end = text.size();
        if (end > start)
            pieces.emplace_back(text, start, end - start);
        start = end + 1;
    }
    return pieces;
}

std::string join(const std::vector<std::string>& pieces, const char* separator) {
    std::string text;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (i)
            text += separator;
        text += pieces[i];
    }
    return text;
}

std::string replace_ignoring_case(const std::string& text, const std::string& search,
                                  const std::string& replacement) {
    if (search.empty())
        return text;
    std::string out;
    out.reserve(text.size());
    std::size_t i = 0;
    while (i < text.size()) {
        const bool hit = text.size() - i >= search.size() &&
                         std::equal(search.begin(), search.end(), text.begin() + i,
                                    [](char a, char b) { return lower(a) == lower(b); });
        if (hit) {
            out += replacement;
            i += search.size();
        } else {
            out += text[i++];
        }
    }
    return out;
}

} // namespace machine_file
