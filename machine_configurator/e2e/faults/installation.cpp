#include "installation.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <grp.h>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace fs = std::filesystem;

namespace korv::faults {
namespace {

constexpr uid_t kNobody = 65534;

bool has_name(const std::string& entry, const char* name) {
    const std::size_t length = std::strlen(name);
    return entry.size() > length && entry.compare(0, length, name) == 0 && entry[length] == '=';
}

// The environment of a run: this one's, less what would change the program's
// course, plus the installation's and the run's own settings.
std::vector<std::string> environment_of(const Installation& inst, const std::string& log,
                                        const Run& run) {
    std::vector<std::string> env;
    for (char** entry = environ; *entry; ++entry) {
        const std::string text = *entry;
        bool drop = false;
        for (const char* name :
             {"KORV_ROOT", "KORV_LOG_DIR", "KORV_UI_SCRIPT", "KORV_UI_TRANSCRIPT",
              "KORV_CONFIGPATH", "DISPLAY", "WAYLAND_DISPLAY", "LD_PRELOAD", "ASAN_OPTIONS"})
            drop = drop || has_name(text, name);
        if (!drop)
            env.push_back(text);
    }
    env.push_back("KORV_ROOT=" + inst.root());
    env.push_back("KORV_LOG_DIR=" + log);
    // No script and no window: a message box goes to the error log.
    env.push_back("KORV_UI_SCRIPT=");
    env.push_back("KORV_TRACE=RigCfg=5");
    if (run.shim) {
        env.push_back(std::string("LD_PRELOAD=") + KORV_FAULT_SHIM);
        // The shim comes before the sanitizer's runtime; a kill leaves nothing to check.
        env.push_back("ASAN_OPTIONS=verify_asan_link_order=0");
    }
    for (const auto& setting : run.env) {
        const std::string& name = setting.first;
        std::erase_if(env,
                      [&name](const std::string& entry) { return has_name(entry, name.c_str()); });
        env.push_back(name + "=" + setting.second);
    }
    return env;
}

void drop_to_nobody() {
    if (::geteuid() != 0)
        return;
    if (::setgroups(0, nullptr) != 0 || ::setgid(kNobody) != 0 || ::setuid(kNobody) != 0)
        ::_exit(120);
}

} // namespace

std::string temp_target(const std::string& name) {
    static const std::regex shape(R"(\.~(.+)\.[0-9]+\.[0-9a-f]{8}\.tmp)");
    std::smatch match;
    return std::regex_match(name, match, shape) ? match[1].str() : std::string();
}

Installation::Installation() {
    m_root = m_dir / "root";
    m_log = m_dir / "log";
    fs::copy(RIGCFG_EXAMPLES, m_root, fs::copy_options::recursive);
    fs::create_directories(m_log);
    // An unprivileged run must reach the installation and write its log.
    fs::permissions(m_dir.path(), fs::perms::owner_all | fs::perms::group_read |
                                      fs::perms::group_exec | fs::perms::others_read |
                                      fs::perms::others_exec);
    fs::permissions(m_log, fs::perms::all);
}

Files Installation::files() const {
    Files files;
    for (auto it = fs::recursive_directory_iterator(m_root);
         it != fs::recursive_directory_iterator(); ++it) {
        if (it->is_symlink() || !it->is_regular_file())
            continue;
        files[fs::relative(it->path(), m_root).string()] =
            read(fs::relative(it->path(), m_root).string());
    }
    return files;
}

void Installation::restore(const Files& files) const {
    const Files now = this->files();
    for (const auto& [path, bytes] : now)
        if (!files.count(path) && temp_target(fs::path(path).filename().string()).empty())
            fs::remove(*this / path);
    for (const auto& [path, bytes] : files) {
        const auto it = now.find(path);
        if (it == now.end() || it->second != bytes)
            write(path, bytes);
    }
}

void Installation::write(const std::string& relative, const std::string& bytes) const {
    const fs::path file = *this / relative;
    fs::create_directories(file.parent_path());
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string Installation::read(const std::string& relative) const {
    std::ifstream in(*this / relative, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

pid_t Installation::start(const Run& run, const std::string& tag) const {
    std::vector<std::string> args{RIGCFG_EXE};
    args.insert(args.end(), run.args.begin(), run.args.end());
    const std::vector<std::string> env = environment_of(*this, m_log, run);
    std::vector<char*> argv, envp;
    for (const std::string& arg : args)
        argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);
    for (const std::string& entry : env)
        envp.push_back(const_cast<char*>(entry.c_str()));
    envp.push_back(nullptr);
    const std::string out = m_dir / (tag + ".out");
    const std::string err = m_dir / (tag + ".err");

    const pid_t pid = ::fork();
    if (pid < 0)
        throw std::runtime_error("fork failed");
    if (pid == 0) {
        const int out_fd = ::open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
        const int err_fd = ::open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
        if (out_fd < 0 || err_fd < 0 || ::dup2(out_fd, 1) < 0 || ::dup2(err_fd, 2) < 0 ||
            ::chdir(m_dir.path().c_str()) != 0)
            ::_exit(121);
        if (run.as_nobody)
            drop_to_nobody();
        ::execve(argv[0], argv.data(), envp.data());
        ::_exit(122);
    }
    return pid;
}

int Installation::run(const Run& run) const {
    clear_log();
    return wait_for(start(run));
}

std::string Installation::log() const {
    std::string all;
    for (const auto& file : fs::directory_iterator(m_log)) {
        std::ifstream in(file.path(), std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        all += text.str();
    }
    return all;
}

void Installation::clear_log() const {
    for (const auto& file : fs::directory_iterator(m_log))
        fs::remove(file.path());
}

int exit_code(int status) {
    if (WIFEXITED(status))
        return WEXITSTATUS(status);
    return WIFSIGNALED(status) ? -1000 - WTERMSIG(status) : -2000;
}

int wait_for(pid_t pid) {
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0)
        if (errno != EINTR)
            return -1;
    return status;
}

} // namespace korv::faults
