// Load and save throughput of KIniData on a generated file of about 20 MB, with
// the baselines measured in the same run: the raw read of the same bytes, the
// fast file reader's line loop, SimpleIni and inih. The repeated runs reuse a
// warm heap; loads in fresh child processes, the best of as many, show the
// cold cost and the peak memory, as growth of the resident set.
//
//   kinidata_bench [--mb N] [--reps N] [--keep]
#include "KIniData_template_core.h"
#include "bench_data.h"
#include "fastfile.h"

#define SI_NO_CONVERSION
#define SI_IMPLEMENTATION // the packaged header keeps its definitions behind this
#include <SimpleIni.h>
#include <ini.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

// Best of `reps` runs of `body`, in seconds; `prepare` runs untimed before each.
double best_of(int reps, const std::function<void()>& prepare, const std::function<void()>& body) {
    double best = 1e30;
    for (int i = 0; i < reps; ++i) {
        prepare();
        const auto start = Clock::now();
        body();
        const std::chrono::duration<double> took = Clock::now() - start;
        best = std::min(best, took.count());
    }
    return best;
}

// Resident set figures of this process from /proc, in bytes; -1 if unknown.
long long status_bytes(const char* field) {
    FILE* status = std::fopen("/proc/self/status", "r");
    if (!status)
        return -1;
    char line[256];
    long long kib = -1;
    const std::size_t length = std::strlen(field);
    while (std::fgets(line, sizeof line, status))
        if (std::strncmp(line, field, length) == 0 && line[length] == ':')
            kib = std::atoll(line + length + 1);
    std::fclose(status);
    return kib < 0 ? -1 : kib * 1024;
}

int inih_count(void* user, const char*, const char*, const char*) {
    ++*static_cast<std::size_t*>(user);
    return 1;
}

// Child mode: load the file one way in this fresh process, and print how long
// that took and how far the resident set grew.
int memory_mode(const std::string& kind, const std::string& path) {
    const long long before = status_bytes("VmRSS");
    const auto start = Clock::now();
    if (kind == "kinidata" || kind == "kinidata+content") {
        korv::KIniData ini;
        if (!ini.Open(path))
            return 2;
        if (kind == "kinidata+content" && ini.GetContentString().empty())
            return 2;
    } else if (kind == "simpleini") {
        CSimpleIniCaseA ini;
        if (ini.LoadFile(path.c_str()) < 0)
            return 2;
    } else {
        return 2;
    }
    // Measured before the destructors run: the peak is what the load needed.
    const std::chrono::duration<double> took = Clock::now() - start;
    std::printf("%lld %.6f\n", status_bytes("VmHWM") - before, took.count());
    return 0;
}

struct FreshLoad {
    long long growth = -1; // bytes
    double seconds = 0;
};

// Runs this program in memory mode and returns what it reports; growth -1 on failure.
FreshLoad fresh_load(const char* kind, const std::string& path) {
    FreshLoad result;
    int pipe_fds[2];
    if (pipe(pipe_fds) != 0)
        return result;
    const pid_t child = fork();
    if (child == 0) {
        dup2(pipe_fds[1], STDOUT_FILENO);
        close(pipe_fds[0]);
        close(pipe_fds[1]);
        execl("/proc/self/exe", "kinidata_bench", "--memory", kind, path.c_str(),
              static_cast<char*>(nullptr));
        _exit(127);
    }
    close(pipe_fds[1]);
    char reply[128] = {};
    std::size_t used = 0;
    ssize_t got;
    while (used + 1 < sizeof reply &&
           (got = read(pipe_fds[0], reply + used, sizeof reply - 1 - used)) > 0)
        used += static_cast<std::size_t>(got);
    close(pipe_fds[0]);
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0 &&
        std::sscanf(reply, "%lld %lf", &result.growth, &result.seconds) != 2)
        result.growth = -1;
    return result;
}

void print_row(const char* what, double seconds, double megabytes) {
    std::printf("  %-50s %9.2f ms %9.1f MB/s\n", what, seconds * 1e3, megabytes / seconds);
}

} // namespace

int main(int argc, char** argv) {
    // Failures of the container go to standard error rather than a log folder.
    setenv("KORV_LOG_DIR", "-", 0);
    if (argc == 4 && std::strcmp(argv[1], "--memory") == 0)
        return memory_mode(argv[2], argv[3]);

    std::size_t megabytes = 20;
    int reps = 5;
    bool keep = false;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--mb") == 0 && i + 1 < argc)
            megabytes = std::strtoul(argv[++i], nullptr, 10);
        else if (std::strcmp(argv[i], "--reps") == 0 && i + 1 < argc)
            reps = std::max(1, std::atoi(argv[++i]));
        else if (std::strcmp(argv[i], "--keep") == 0)
            keep = true;
        else {
            std::fprintf(stderr, "usage: kinidata_bench [--mb N] [--reps N] [--keep]\n");
            return 2;
        }
    }

    char folder[] = "/tmp/kinidata_bench.XXXXXX";
    if (!mkdtemp(folder)) {
        std::perror("mkdtemp");
        return 1;
    }
    const std::string path = std::string(folder) + "/bench.ini";
    const std::string saved = std::string(folder) + "/saved.ini";
    {
        const std::string text = korv::bench::make_ini_text(megabytes * 1000 * 1000);
        if (korv::KFastFile_WriteAtOnce(path, text.data(), text.size(), korv::KFF_REPLACE) < 0) {
            std::fprintf(stderr, "cannot write %s\n", path.c_str());
            return 1;
        }
    }

    std::string bytes;
    const std::int64_t size = korv::KFastFile_ReadAtOnce(path, bytes); // also warms the cache
    const double mb = static_cast<double>(size) / 1e6;
    std::size_t line_count = 0;
    for (char c : bytes)
        line_count += c == '\n';
    bytes = std::string();

    std::printf("file: %s, %.1f MB, %zu lines; best of %d runs\n", path.c_str(), mb, line_count,
                reps);

    const auto nothing = [] {};
    const double raw = best_of(reps, nothing, [&] {
        std::string data;
        korv::KFastFile_ReadAtOnce(path, data);
    });
    const double scan = best_of(reps, nothing, [&] {
        korv::KFastFileReader reader(path);
        std::string line;
        std::size_t lines = 0;
        while (!reader.IsEOF()) {
            reader.ReadLine(line);
            ++lines;
        }
        if (lines == 0)
            std::abort();
    });

    std::unique_ptr<korv::KIniData> ini;
    const double open = best_of(
        reps, [&] { ini = std::make_unique<korv::KIniData>(); },
        [&] {
            if (!ini->Open(path))
                std::abort();
        });
    std::string content;
    const double content_time = best_of(
        reps, [&] { content = std::string(); }, [&] { content = ini->GetContentString(); });
    ini->file_name = saved;
    const double save = best_of(reps, nothing, [&] {
        if (!ini->Save())
            std::abort();
    });
    const double raw_write = best_of(reps, nothing, [&] {
        if (korv::KFastFile_WriteAtOnce(saved, content.data(), content.size(), korv::KFF_REPLACE) <
            0)
            std::abort();
    });
    // Save's second half: the LF to CR LF conversion on the way to the file.
    const double write_lines = best_of(reps, nothing, [&] {
        if (korv::KFastFile_WriteLinesAtOnce(saved, content.data(), content.size(),
                                             korv::KFF_REPLACE) < 0)
            std::abort();
    });
    const std::size_t sections = ini->section_map.size();
    ini.reset();

    std::unique_ptr<CSimpleIniCaseA> simple;
    const double simpleini = best_of(
        reps, [&] { simple = std::make_unique<CSimpleIniCaseA>(); },
        [&] {
            if (simple->LoadFile(path.c_str()) < 0)
                std::abort();
        });
    std::size_t simple_sections = 0;
    {
        CSimpleIniCaseA::TNamesDepend names;
        simple->GetAllSections(names);
        simple_sections = names.size();
    }
    simple.reset();

    std::size_t inih_entries = 0;
    const double inih = best_of(
        reps, [&] { inih_entries = 0; },
        [&] {
            if (ini_parse(path.c_str(), inih_count, &inih_entries) != 0)
                std::abort();
        });

    std::printf("sections: KIniData %zu, SimpleIni %zu; inih reported %zu entries\n\n", sections,
                simple_sections, inih_entries);
    std::printf("throughput (MB of the file per second):\n");
    print_row("raw read (KFastFile_ReadAtOnce)", raw, mb);
    print_row("KFastFileReader::ReadLine loop", scan, mb);
    print_row("KIniData Open", open, mb);
    print_row("KIniData GetContentString", content_time, mb);
    print_row("KIniData Open + GetContentString", open + content_time, mb);
    print_row("KIniData Save", save, mb);
    print_row("KFastFile_WriteLinesAtOnce of the content", write_lines, mb);
    print_row("raw write of the content (KFastFile_WriteAtOnce)", raw_write, mb);
    print_row("SimpleIni LoadFile (case-sensitive, no conversion)", simpleini, mb);
    print_row("inih ini_parse (counting handler)", inih, mb);

    std::printf("\nratios (time of one over the other):\n");
    std::printf("  KIniData Open / SimpleIni LoadFile        %6.2f  (below 1: KIniData faster)\n",
                open / simpleini);
    std::printf("  KIniData Open / raw read                  %6.2f\n", open / raw);
    std::printf("  KIniData Open + content / raw read        %6.2f\n", (open + content_time) / raw);
    std::printf("  KIniData Open / ReadLine loop             %6.2f\n", open / scan);
    std::printf("  ReadLine loop / raw read                  %6.2f\n", scan / raw);
    std::printf("  KIniData Open / inih                      %6.2f\n", open / inih);
    std::printf("  KIniData Save / raw write                 %6.2f\n", save / raw_write);
    std::printf("  WriteLinesAtOnce / raw write              %6.2f\n", write_lines / raw_write);

    std::printf("\none load in a fresh process (heap pages not yet faulted in), best of %d, with\n"
                "the growth of its resident set over the file size:\n",
                reps);
    const struct {
        const char* kind;
        const char* what;
    } loads[] = {{"kinidata", "KIniData Open"},
                 {"kinidata+content", "KIniData Open + GetContentString"},
                 {"simpleini", "SimpleIni LoadFile"}};
    // Rounds take the three kinds in turn, so that a busy moment of the machine
    // falls on all of them alike.
    constexpr std::size_t kinds = sizeof loads / sizeof loads[0];
    FreshLoad best[kinds];
    for (int round = 0; round < reps; ++round) {
        for (std::size_t k = 0; k < kinds; ++k) {
            if (round > 0 && best[k].growth < 0)
                continue;
            const FreshLoad one = fresh_load(loads[k].kind, path);
            if (round == 0 || one.growth < 0 || one.seconds < best[k].seconds)
                best[k] = one;
        }
    }
    double fresh_seconds[kinds] = {};
    for (std::size_t k = 0; k < kinds; ++k) {
        const FreshLoad& fresh = best[k];
        const auto& load = loads[k];
        fresh_seconds[k] = fresh.growth < 0 ? 0 : fresh.seconds;
        if (fresh.growth < 0)
            std::printf("  %-50s not measured\n", load.what);
        else
            std::printf("  %-50s %9.2f ms %9.1f MB/s %7.1f MB peak %5.2f x file\n", load.what,
                        fresh.seconds * 1e3, mb / fresh.seconds,
                        static_cast<double>(fresh.growth) / 1e6,
                        static_cast<double>(fresh.growth) / static_cast<double>(size));
    }
    if (fresh_seconds[0] > 0 && fresh_seconds[2] > 0)
        std::printf(
            "  KIniData Open / SimpleIni LoadFile, fresh   %6.2f  (below 1: KIniData faster)\n",
            fresh_seconds[0] / fresh_seconds[2]);

    if (!keep) {
        std::remove(path.c_str());
        std::remove(saved.c_str());
        rmdir(folder);
    } else {
        std::printf("\nkept %s\n", folder);
    }
    return 0;
}
