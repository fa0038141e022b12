// The Windows C runtime's rules for splitting a command line, shared by the
// process starters of both platforms.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace korv::platform {

inline bool is_blank(char c) {
    return c == ' ' || c == '\t';
}

// The arguments behind the program, appended to `out`.
void split_arguments(std::string_view text, std::vector<std::string>& out);

} // namespace korv::platform
