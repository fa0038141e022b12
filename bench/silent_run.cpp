// Silent runs of the real program beside /bin/true, started alternately in the
// same run so that both see the same machine. For each course (a silent create
// and a silent copy on a scratch copy of the example installation) it prints
// the median wall time of both, their ratio, the system calls of one run and
// the flushes among them, and the ratio without the flushes: the median less
// the flush count times the cost of one flush measured here (a small file and
// its folder, the pair a crash-safe write pays).
//
//   silent_run --rigcfg PATH --examples DIR [--runs N]
//
// The system calls are counted by strace -f -c when strace is on the PATH;
// without it the count is left out.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <spawn.h>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace {

using Clock = std::chrono::steady_clock;
namespace fs = std::filesystem;

// Starts `argv` with stdout and stderr on /dev/null, waits; seconds taken, or
// -1 if it could not start or did not end with `expected`.
double run_once(const std::vector<std::string>& argv, int expected) {
    std::vector<char*> args;
    for (const std::string& a : argv)
        args.push_back(const_cast<char*>(a.c_str()));
    args.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    const auto start = Clock::now();
    pid_t pid = 0;
    const int failed = ::posix_spawn(&pid, args[0], &actions, nullptr, args.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failed != 0)
        return -1;
    int status = 0;
    ::waitpid(pid, &status, 0);
    const std::chrono::duration<double> took = Clock::now() - start;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != expected)
        return -1;
    return took.count();
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t n = values.size();
    return n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

bool on_path(const char* program) {
    const char* path = std::getenv("PATH");
    std::stringstream folders(path ? path : "");
    for (std::string folder; std::getline(folders, folder, ':');)
        if (::access((fs::path(folder) / program).c_str(), X_OK) == 0)
            return true;
    return false;
}

struct Calls {
    long total = -1;
    long flushes = 0;
};

// The system calls of one run, from strace's summary table.
Calls count_calls(const std::vector<std::string>& argv, const fs::path& scratch) {
    Calls calls;
    if (!on_path("strace"))
        return calls;
    const fs::path summary = scratch / "strace.txt";
    std::vector<std::string> traced = {"/usr/bin/env", "strace", "-f",
                                       "-c",           "-o",     summary.string()};
    traced.insert(traced.end(), argv.begin(), argv.end());
    if (run_once(traced, 0) < 0)
        return calls;
    std::ifstream in(summary);
    for (std::string line; std::getline(in, line);) {
        std::istringstream fields(line);
        std::vector<std::string> words;
        for (std::string w; fields >> w;)
            words.push_back(w);
        // "% time seconds usecs/call calls [errors] syscall"; the total row
        // ends in "total".
        if (words.size() < 5 || !std::isdigit(static_cast<unsigned char>(words[0][0])))
            continue;
        const long count = std::atol(words[3].c_str());
        if (words.back() == "total")
            calls.total = count;
        else if (words.back() == "fsync" || words.back() == "fdatasync")
            calls.flushes += count;
    }
    return calls;
}

// What one crash-safe write's flushes cost here: a small file, then its folder.
double flush_cost(const fs::path& scratch, int reps) {
    std::vector<double> took;
    const fs::path file = scratch / "flush.probe";
    for (int i = 0; i < reps; ++i) {
        const int fd = ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        const int dir = ::open(scratch.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (fd < 0 || dir < 0 || ::write(fd, "[general]\r\nkey=value\r\n", 22) != 22)
            return -1;
        const auto start = Clock::now();
        ::fsync(fd);
        ::fsync(dir);
        const std::chrono::duration<double> t = Clock::now() - start;
        took.push_back(t.count());
        ::close(fd);
        ::close(dir);
    }
    return median(took) / 2; // per flush
}

} // namespace

int main(int argc, char** argv) {
    std::string rigcfg;
    std::string examples;
    int runs = 30;
    for (int i = 1; i + 1 < argc; i += 2) {
        if (std::strcmp(argv[i], "--rigcfg") == 0)
            rigcfg = argv[i + 1];
        else if (std::strcmp(argv[i], "--examples") == 0)
            examples = argv[i + 1];
        else if (std::strcmp(argv[i], "--runs") == 0)
            runs = std::max(1, std::atoi(argv[i + 1]));
    }
    if (rigcfg.empty() || examples.empty()) {
        std::fprintf(stderr, "usage: silent_run --rigcfg PATH --examples DIR [--runs N]\n");
        return 2;
    }
    std::string scratch_name = (fs::temp_directory_path() / "silent-run-XXXXXX").string();
    if (!::mkdtemp(scratch_name.data())) {
        std::perror("mkdtemp");
        return 1;
    }
    const fs::path scratch = scratch_name;
    const fs::path root = scratch / "root";
    std::error_code error;
    fs::copy(examples, root, fs::copy_options::recursive, error);
    if (error) {
        std::fprintf(stderr, "can't copy %s: %s\n", examples.c_str(), error.message().c_str());
        return 1;
    }
    ::setenv("KORV_ROOT", root.c_str(), 1);
    ::unsetenv("KORV_LOG_DIR");
    ::unsetenv("KORV_UI_SCRIPT");
    ::unsetenv("DISPLAY");

    const struct {
        const char* name;
        std::vector<std::string> argv;
    } courses[] = {
        {"create", {rigcfg, "control=korecon", "file=KMX_100_create.ini", "variant=9100100"}},
        {"copy", {rigcfg, "file=VD_140.ini", "variant=6140001"}},
    };
    const double flush = flush_cost(scratch, 50);
    std::printf("one flush here: %.3f ms; /bin/true and each course %d times, alternating\n\n",
                flush * 1e3, runs);
    std::printf("%-8s %10s %10s %7s %7s %8s %13s\n", "course", "true ms", "run ms", "ratio",
                "calls", "flushes", "ratio w/o fl");
    int status = 0;
    for (const auto& course : courses) {
        run_once(course.argv, 0); // the first run makes what later ones find
        std::vector<double> baseline;
        std::vector<double> measured;
        for (int i = 0; i < runs; ++i) {
            const double t = run_once({"/bin/true"}, 0);
            const double r = run_once(course.argv, 0);
            if (t < 0 || r < 0) {
                std::fprintf(stderr, "%s: a run failed\n", course.name);
                status = 1;
                break;
            }
            baseline.push_back(t);
            measured.push_back(r);
        }
        if (measured.empty())
            continue;
        const Calls calls = count_calls(course.argv, scratch);
        const double base = median(baseline);
        const double run = median(measured);
        const double without = run - static_cast<double>(calls.flushes) * flush;
        std::printf("%-8s %10.3f %10.3f %7.2f %7ld %8ld %13.2f\n", course.name, base * 1e3,
                    run * 1e3, run / base, calls.total, calls.flushes, without / base);
    }
    fs::remove_all(scratch, error);
    return status;
}
