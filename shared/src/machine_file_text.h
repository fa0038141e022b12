// Text rules of the machine description files: comments behind values, lists,
// and the file name of a .loc companion.
#pragma once

#include <string>
#include <vector>

namespace machine_file {

// Cuts a trailing comment introduced by "//", then one by "/*", then one by ";".
void strip_comment(std::string& text);
// Blanks and tabs off both ends.
void trim_blanks(std::string& text);
// Every white space character out.
void remove_white_space(std::string& text);

// A list value: comment cut (when asked), white space removed, '_' turned
// into a blank, split at ',', empty pieces dropped. "A_B, C" gives "A B", "C".
std::vector<std::string> read_list(std::string value, bool cut_comment);

// `text` split at `separator`, empty pieces dropped, nothing trimmed.
std::vector<std::string> split_nonempty(const std::string& text, char separator);

// The pieces with `separator` between them.
std::string join(const std::vector<std::string>& pieces, const char* separator);

// Every occurrence of `search` (ASCII case ignored) replaced by `replacement`.
std::string replace_ignoring_case(const std::string& text, const std::string& search,
                                  const std::string& replacement);

} // namespace machine_file
