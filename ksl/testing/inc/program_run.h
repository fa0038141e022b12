// Runs a built program as a test's child process and keeps what it said.
#pragma once

#include "scratch_dir.h"

#include <string>
#include <vector>

namespace korv::testing {

struct ProgramRun {
    int code; // the exit code as a caller sees it (on POSIX its low 8 bits); -1 for a signal
    std::string out;
    std::string err;
};

// Runs `program` with `args`; its standard output and error go through the
// files "out" and "err" of `io`, and come back with lines ending in '\n'.
ProgramRun run_program(const char* program, const std::vector<std::string>& args,
                       const ScratchDir& io);

} // namespace korv::testing
