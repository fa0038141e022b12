// A gettext .po file read into a table of message ids and their translations.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

namespace korv::diag::detail {

using PoCatalog = std::unordered_map<std::string, std::string>;

// Parses the text of a .po file: msgid/msgstr pairs, strings continued over
// several quoted lines, C escapes. Entries with an empty msgstr, the header
// (empty msgid), fuzzy entries and plural forms are left out.
PoCatalog parse_po(std::string_view text);

} // namespace korv::diag::detail
