#include "kplatform_process.h"

#include "command_line.h"
#include "kplatform_module.h"
#include "kplatform_paths.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace korv::platform {
namespace {

bool ends_with_exe(std::string_view name) {
    if (name.size() <= 4)
        return false;
    const std::string_view tail = name.substr(name.size() - 4);
    return tail[0] == '.' && (tail[1] | 0x20) == 'e' && (tail[2] | 0x20) == 'x' &&
           (tail[3] | 0x20) == 'e';
}

bool is_regular_file(const std::string& path) {
    struct stat st;
    return ::stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

std::string current_directory() {
    char buffer[PATH_MAX];
    return ::getcwd(buffer, sizeof buffer) ? std::string(buffer) : std::string(".");
}

// The host file for a program name, tried as given and without ".exe".
bool find_in(const std::string& folder, std::string_view name, std::string& found) {
    std::string candidate =
        native_path(folder.empty() ? std::string(name) : folder + "/" + std::string(name));
    if (!candidate.empty() && candidate.front() != '/')
        candidate = current_directory() + "/" + candidate;
    if (is_regular_file(candidate)) {
        found = candidate;
        return true;
    }
    if (ends_with_exe(name))
        return find_in(folder, name.substr(0, name.size() - 4), found);
    return false;
}

bool find_program(std::string_view name, std::string& found) {
    if (name.empty())
        return false;
    const bool has_folder =
        name.find_first_of("\\/") != std::string_view::npos || (name.size() >= 2 && name[1] == ':');
    if (has_folder)
        return find_in({}, name, found);
    const std::string exe = executable_path();
    if (!exe.empty() && find_in(exe.substr(0, exe.rfind('/')), name, found))
        return true;
    if (find_in(current_directory(), name, found))
        return true;
    const char* path = std::getenv("PATH");
    for (std::string_view rest = path ? path : ""; !rest.empty();) {
        const std::size_t colon = rest.find(':');
        const std::string folder(rest.substr(0, colon));
        if (!folder.empty() && find_in(folder, name, found))
            return true;
        if (colon == std::string_view::npos)
            break;
        rest.remove_prefix(colon + 1);
    }
    return false;
}

// Closes every descriptor from 3 up but `keep`, in the child after fork.
void close_inherited(int keep) {
#ifdef SYS_close_range
    if (keep > 3 && ::syscall(SYS_close_range, 3u, static_cast<unsigned>(keep - 1), 0u) != 0)
        keep = -1;
    if (keep >= 3 && ::syscall(SYS_close_range, static_cast<unsigned>(keep + 1), ~0u, 0u) == 0)
        return;
#endif
    const long limit = std::min(::sysconf(_SC_OPEN_MAX), 65536L);
    for (int fd = 3; fd < limit; ++fd)
        if (fd != keep)
            ::close(fd);
}

} // namespace

Process::~Process() {
    if (m_process > 0 && !m_ended)
        ::waitpid(static_cast<pid_t>(m_process), &m_status,
                  WNOHANG); // reaps it if it is already gone
}

bool Process::start(std::string_view command_line, std::string_view working_dir) {
    m_error = 0;
    m_program.clear();
    if (m_process > 0 && !m_ended) {
        m_error = EBUSY;
        return false;
    }
    m_process = -1;
    m_ended = false;

    // The program: the quoted first word, or the shortest prefix up to a
    // blank that names a file.
    std::vector<std::string> argv;
    std::size_t rest = 0;
    if (!command_line.empty() && command_line.front() == '"') {
        const std::size_t close = command_line.find('"', 1);
        const std::string_view name = command_line.substr(
            1, close == std::string_view::npos ? std::string_view::npos : close - 1);
        rest = close == std::string_view::npos ? command_line.size() : close + 1;
        if (find_program(name, m_program))
            argv.emplace_back(name);
    } else {
        for (std::size_t end = 0; end <= command_line.size(); ++end) {
            if (end < command_line.size() && !is_blank(command_line[end]))
                continue;
            const std::string_view name = command_line.substr(0, end);
            if (find_program(name, m_program)) {
                argv.emplace_back(name);
                rest = end;
                break;
            }
        }
    }
    if (argv.empty()) {
        m_program.clear();
        m_error = ENOENT;
        return false;
    }
    split_arguments(command_line.substr(rest), argv);

    std::vector<char*> args;
    for (std::string& arg : argv)
        args.push_back(arg.data());
    args.push_back(nullptr);
    const std::string folder = working_dir.empty() ? std::string() : native_path(working_dir);

    int report[2];
    if (::pipe2(report, O_CLOEXEC) != 0) {
        m_error = errno;
        return false;
    }
    const pid_t pid = ::fork();
    if (pid < 0) {
        m_error = errno;
        ::close(report[0]);
        ::close(report[1]);
        return false;
    }
    if (pid == 0) {
        // Only async-signal-safe calls from here on.
        ::close(report[0]);
        int error = 0;
        if (!folder.empty() && ::chdir(folder.c_str()) != 0) {
            error = errno;
        } else {
            close_inherited(report[1]);
            ::execv(m_program.c_str(), args.data());
            error = errno;
        }
        [[maybe_unused]] const ssize_t put = ::write(report[1], &error, sizeof error);
        ::_exit(127);
    }
    ::close(report[1]);
    int error = 0;
    ssize_t got;
    do {
        got = ::read(report[0], &error, sizeof error);
    } while (got < 0 && errno == EINTR);
    ::close(report[0]);
    if (got == static_cast<ssize_t>(sizeof error)) {
        // The exec failed: the child has ended already.
        while (::waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
        }
        m_error = error;
        return false;
    }
    m_process = pid;
    return true;
}

bool Process::wait() {
    if (m_process <= 0)
        return false;
    while (!m_ended) {
        if (::waitpid(static_cast<pid_t>(m_process), &m_status, 0) == m_process)
            m_ended = true;
        else if (errno != EINTR)
            return false;
    }
    return true;
}

bool Process::exit_code(std::uint32_t& code) const {
    if (!m_ended || !WIFEXITED(m_status))
        return false;
    code = static_cast<std::uint32_t>(WEXITSTATUS(m_status));
    return true;
}

} // namespace korv::platform
