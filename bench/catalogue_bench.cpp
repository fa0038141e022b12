// The catalogue build over a generated installation of machine folders, beside
// the raw read of the same machine.ini files in the same run. Printed per size:
// the time per machine of both, their ratio, and how the time per machine grows
// from the smallest size to each larger one (1.0 is linear).
//
//   catalogue_bench [--reps N] [--keep] [sizes...]      default sizes 1000 10000
#include "catalogue/data_sheets.h"

#include "kplatform_paths.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
namespace fs = std::filesystem;

const char* const kWork = "C:\\work\\";

// The product roots and the group of their machines.
const struct {
    const char* root;
    const char* group;
} kRoots[] = {
    {"form_support", "FORM"},
    {"KorSurf", "KORSURF"},
    {"KorShaft", "KORSHAFT"},
    {"KorGear", "KORGEAR"},
    {"KorOpto", "KOROPTO"},
    {"KorGeometry", "KORGEOMETRY"},
    {"platform_components", "PLATFORM_COMPONENTS"},
    {"Length_Support", "PRECIKOR"},
};

double best_of(int reps, const std::function<void()>& body) {
    double best = 1e30;
    for (int i = 0; i < reps; ++i) {
        const auto start = Clock::now();
        body();
        const std::chrono::duration<double> took = Clock::now() - start;
        best = std::min(best, took.count());
    }
    return best;
}

// `count` machines spread over the product roots below `work` (a host path),
// one order number folder each, with a machine.ini that looks like a real one.
// Returns the host paths of the machine.ini files.
std::vector<std::string> make_installation(const fs::path& work, std::size_t count) {
    std::vector<std::string> files;
    files.reserve(count);
    char name[32];
    char order[32];
    for (std::size_t i = 0; i < count; ++i) {
        const auto& root = kRoots[i % std::size(kRoots)];
        std::snprintf(name, sizeof name, "M %06zu", i);
        std::snprintf(order, sizeof order, "%zu", 6000000 + i);
        const fs::path folder = work / root.root / "machines" / name / order;
        fs::create_directories(folder);
        const fs::path file = folder / "machine.ini";
        std::ofstream out(file, std::ios::binary);
        out << "; Measuring station " << name << "\r\n"
            << "[MACHINE]\r\nOrderNo=" << order << "\r\nProductGroup=" << root.group
            << "\r\nXY_Table=" << (i % 3 == 0 ? "automatic" : "manual")
            << "\r\nDLL=station.dll\r\nBoardType=PCI-2\r\n"
            << "[" << name << "]\r\nHIDE=" << (i % 50 == 0 ? 1 : 0)
            << "\r\nConfigGroup=" << (i % 4 == 0 ? "CNC" : "") << "\r\n";
        files.push_back(file.string());
    }
    return files;
}

// Reads every file whole, the way any reader has to at least.
std::size_t read_raw(const std::vector<std::string>& files) {
    std::size_t total = 0;
    char buffer[4096];
    for (const std::string& file : files) {
        const int fd = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
        if (fd < 0)
            continue;
        for (ssize_t got; (got = ::read(fd, buffer, sizeof buffer)) > 0;)
            total += static_cast<std::size_t>(got);
        ::close(fd);
    }
    return total;
}

} // namespace

int main(int argc, char** argv) {
    int reps = 5;
    bool keep = false;
    std::vector<std::size_t> sizes;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--reps") == 0 && i + 1 < argc)
            reps = std::max(1, std::atoi(argv[++i]));
        else if (std::strcmp(argv[i], "--keep") == 0)
            keep = true;
        else
            sizes.push_back(static_cast<std::size_t>(std::atol(argv[i])));
    }
    if (sizes.empty())
        sizes = {1000, 10000};

    std::string scratch = (fs::temp_directory_path() / "catalogue-bench-XXXXXX").string();
    if (!::mkdtemp(scratch.data())) {
        std::perror("mkdtemp");
        return 1;
    }
    ::setenv("KORV_ROOT", scratch.c_str(), 1);
    ::setenv("KORV_LOG_DIR", scratch.c_str(), 1);
    // The alias folder must exist for a build to succeed; it holds no alias.
    fs::create_directories(
        korv::platform::native_path("C:\\ProgramData\\Korv\\KorSystemConfig\\machines"));

    std::printf("%9s %12s %12s %12s %8s %8s\n", "machines", "build ms", "us/machine", "raw us/mach",
                "ratio", "growth");
    double first_per_machine = 0;
    int status = 0;
    for (const std::size_t count : sizes) {
        const fs::path work = fs::path(scratch) / "drive_c" / "work";
        fs::remove_all(work);
        const std::vector<std::string> files = make_installation(work, count);

        std::unique_ptr<MachineSheetList> machines;
        std::unique_ptr<TableSheetList> tables;
        std::unique_ptr<StandSheetList> stands;
        bool built = true;
        const double build = best_of(reps, [&] {
            built = BuildDataSheets(false, kWork, "", machines, tables, stands) && built;
        });
        std::size_t bytes = 0;
        const double raw = best_of(reps, [&] { bytes = read_raw(files); });

        const std::size_t hidden = (count + 49) / 50;
        if (!built || !machines || machines->size() != count - hidden || bytes == 0) {
            std::fprintf(stderr, "catalogue of %zu machines is wrong: %zu sheets\n", count,
                         machines ? machines->size() : 0);
            status = 1;
        }
        const double per_machine = build / static_cast<double>(count);
        if (first_per_machine == 0)
            first_per_machine = per_machine;
        std::printf("%9zu %12.1f %12.2f %12.2f %8.2f %8.2f\n", count, build * 1e3,
                    per_machine * 1e6, raw / static_cast<double>(count) * 1e6, build / raw,
                    per_machine / first_per_machine);
        FreeDataSheets(machines, tables, stands);
    }
    if (keep)
        std::printf("installation kept in %s\n", scratch.c_str());
    else
        fs::remove_all(scratch);
    return status;
}
