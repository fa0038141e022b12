// Runs of the built program over a scratch copy of the example installation,
// for the tests that kill it or make its file system fail: the files of the
// installation as they stand, and the program started with the fault shim.
#pragma once

#include "scratch_dir.h"

#include <map>
#include <string>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace korv::faults {

// Where the example installation keeps the files the silent courses write and
// read, below its root, and the two courses as the suite starts them.
inline const std::string kMidspan = "drive_c/ProgramData/Korv/Midspan Plugin/";
inline const std::string kKorECon = "drive_c/ProgramData/Korv/KorECon/";
inline const std::string kMachines = "drive_c/ProgramData/Korv/KorSystemConfig/machines/";
inline const std::vector<std::string> kCopy = {"file=VD_140.ini", "variant=6140001"};
inline const std::vector<std::string> kCreate = {"control=korecon", "file=KMX_100_create.ini",
                                                 "variant=9100100"};

// Every regular file below the installation's root by its path there, with
// its bytes.
using Files = std::map<std::string, std::string>;

// The leftover of a replacement that never reached its rename: the target's
// name, or empty if `name` is no such leftover.
std::string temp_target(const std::string& name);

struct Run {
    std::vector<std::string> args;
    std::vector<std::pair<std::string, std::string>> env; // added to the program's environment
    bool shim = false;                                    // preload the fault shim
    bool as_nobody = false; // as root: drop to the unprivileged user "nobody"
};

class Installation {
public:
    Installation();

    const std::string& root() const { return m_root; }
    // Host path of `relative` below the root.
    std::string operator/(const std::string& relative) const { return m_root + "/" + relative; }
    const korv::testing::ScratchDir& scratch() const { return m_dir; }

    Files files() const;
    // Puts back `files`: changed and missing ones get their bytes again, others
    // go, except leftovers of replacements, which are kept for the program to clear.
    void restore(const Files& files) const;
    void write(const std::string& relative, const std::string& bytes) const;
    std::string read(const std::string& relative) const;

    // Starts the program; its pid. Standard output and error go to files in
    // the scratch folder named by `tag`.
    pid_t start(const Run& run, const std::string& tag = "run") const;
    // Runs the program to its end after emptying the log; the wait status.
    int run(const Run& run) const;
    // Everything in the log folder.
    std::string log() const;
    void clear_log() const;

private:
    korv::testing::ScratchDir m_dir;
    std::string m_root;
    std::string m_log;
};

// The exit code as the suite's tools see it, or -1000 - signal for a run
// that a signal ended.
int exit_code(int status);
int wait_for(pid_t pid);

} // namespace korv::faults
