// Starting a program, as CreateProcess does it: no shell, one command line
// that the Windows rules split, a working directory, and on request a wait
// for the end and the exit code. On Windows it is CreateProcess itself, with
// WaitForSingleObject and GetExitCodeProcess.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace korv::platform {

// The arguments of a command line by the rules of the Windows C runtime:
// blanks separate; double quotes group, and "" inside quotes is a literal
// quote that ends the quoting; 2n backslashes before a quote give n
// backslashes and the quote groups, 2n + 1 give n and a literal quote; other
// backslashes stay. The first argument, the program, ends at the first blank
// outside quotes and takes no escapes.
std::vector<std::string> split_command_line(std::string_view command_line);

class Process {
public:
    Process() = default;
    // Neither waits for nor ends the program.
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    // Starts the program that begins the command line, in `working_dir` (the
    // current directory if empty); both may be Windows-style. The program is
    // found as CreateProcess finds it: an unquoted path with blanks is tried
    // at each blank from the left; a name without a folder is looked for
    // beside the running executable, in the current directory and along
    // PATH; a name ending in ".exe" also matches the name without it. False
    // with error() set if it can't be started: a missing program, folder or
    // permission.
    bool start(std::string_view command_line, std::string_view working_dir);

    // Blocks until the program has ended. False if it isn't running.
    bool wait();
    // The exit code once the program has ended by itself (on POSIX only its
    // low 8 bits); false while it runs or if a signal ended it.
    bool exit_code(std::uint32_t& code) const;

    // Why the start failed (errno on POSIX, the Win32 code on Windows), 0 if
    // it did not.
    int error() const { return m_error; }
    // The host path of the program that was started.
    const std::string& program() const { return m_program; }

private:
    std::intptr_t m_process = -1; // the pid, or the process HANDLE on Windows
    bool m_ended = false;
    int m_status = 0;
    int m_error = 0;
    std::string m_program;
};

} // namespace korv::platform
