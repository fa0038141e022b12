#include "program_run.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace korv::testing {

ProgramRun run_program(const char* program, const std::vector<std::string>& args,
                       const ScratchDir& io) {
    const std::string out = io / "out", err = io / "err";
    const pid_t child = fork();
    if (child == 0) {
        const int out_fd = open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        const int err_fd = open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (out_fd < 0 || err_fd < 0 || dup2(out_fd, 1) < 0 || dup2(err_fd, 2) < 0)
            _exit(126);
        std::vector<char*> argv{const_cast<char*>(program)};
        for (const std::string& arg : args)
            argv.push_back(const_cast<char*>(arg.c_str()));
        argv.push_back(nullptr);
        execv(program, argv.data());
        _exit(127);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, io.read("out"), io.read("err")};
}

} // namespace korv::testing
