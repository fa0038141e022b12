// Starting the programs of a machine description (configure, update steps,
// checks), and the language the suite was installed in.
#pragma once

#include <string>

// What Execute returns when the program never ran or gave no exit code.
inline constexpr int kExecuteNoExitCode = -98765;

struct ExecuteRequest {
    std::string exec_line;   // the program; macros allowed
    std::string working_dir; // macros allowed
    std::string arguments;   // may be empty; macros allowed
    bool wait = true;        // wait for the end and fetch the exit code
};

// Starts the program without a shell. The exit code when waiting, else (and on
// any failure) kExecuteNoExitCode.
int Execute(const ExecuteRequest& request);

// "install_language" of the suite's settings in the registry, or "EN".
std::string GetInstallLanguage();
