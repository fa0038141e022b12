// The commands of caldat, apart from the process around them so that they read
// their arguments from a list and write to the streams they are given.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace caldat {

inline constexpr int kExitOk = 0;
inline constexpr int kExitProblems = 1; // the pair holds damage, or the key is not there
inline constexpr int kExitFailure = 2;  // usage, or a pair that cannot be opened

// Runs one command line, without the program name. Output goes to `out`,
// diagnostics to `err`; the result is the exit code.
int run(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

} // namespace caldat
