// The commands of kini, apart from the process around them so that they read
// their arguments from a list and write to the streams they are given.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace korv::kini {

inline constexpr int KINI_EXIT_OK = 0;
inline constexpr int KINI_EXIT_NOT_FOUND = 1; // the section or key is not there
inline constexpr int KINI_EXIT_FAILURE = 2; // usage, or a file that cannot be read, parsed or saved

// Runs one command line, without the program name. Output goes to `out`,
// diagnostics to `err`; the result is the exit code.
int run(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

} // namespace korv::kini
