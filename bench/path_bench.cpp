// Path lookups ignoring case in one folder of many entries, beside the exact
// lookup of the same names in the same run: the folder's listing is read once,
// then each lookup costs about what an exact one does.
//
//   path_bench [entries]        default 10000
#include "kplatform_paths.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
namespace fs = std::filesystem;

double seconds_since(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

} // namespace

int main(int argc, char** argv) {
    const long entries = argc > 1 ? std::max(1L, std::atol(argv[1])) : 10000;
    std::string scratch = (fs::temp_directory_path() / "path-bench-XXXXXX").string();
    if (!::mkdtemp(scratch.data())) {
        std::perror("mkdtemp");
        return 1;
    }
    ::setenv("KORV_ROOT", scratch.c_str(), 1);
    const fs::path folder = fs::path(scratch) / "drive_c" / "Machines";
    fs::create_directories(folder);
    std::vector<std::string> exact;
    std::vector<std::string> other_case;
    for (long i = 0; i < entries; ++i) {
        const std::string name = "Machine_" + std::to_string(i) + ".ini";
        std::ofstream(folder / name) << "";
        exact.push_back("C:\\Machines\\" + name);
        std::string upper = name;
        std::transform(upper.begin(), upper.end(), upper.begin(),
                       [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
        other_case.push_back("C:\\Machines\\" + upper);
    }
    // A folder changed a moment ago is read again at each lookup; this one is
    // left to settle, as an installation's folders are.
    std::this_thread::sleep_for(std::chrono::milliseconds(200));

    std::size_t hits = 0;
    auto start = Clock::now();
    for (const std::string& path : exact)
        hits += korv::platform::native_path(path).size() > 0;
    const double exact_time = seconds_since(start);

    const std::size_t reads_before = korv::platform::folder_listings_read();
    start = Clock::now();
    hits += korv::platform::native_path(other_case[0]).size() > 0;
    const double first_time = seconds_since(start);
    start = Clock::now();
    for (std::size_t i = 1; i < other_case.size(); ++i)
        hits += korv::platform::native_path(other_case[i]).size() > 0;
    const double rest_time = seconds_since(start);
    const std::size_t reads = korv::platform::folder_listings_read() - reads_before;

    const double n = static_cast<double>(entries);
    std::printf("folder of %ld entries, each looked up once as written and once in upper case\n",
                entries);
    std::printf("  exact lookups                 %10.2f us each\n", exact_time / n * 1e6);
    std::printf("  first lookup ignoring case    %10.2f us (reads the listing)\n",
                first_time * 1e6);
    std::printf("  further lookups ignoring case %10.2f us each\n", rest_time / (n - 1) * 1e6);
    std::printf("  ratio further / exact         %10.2f\n",
                (rest_time / (n - 1)) / (exact_time / n));
    std::printf("  listings read                 %10zu\n", reads);
    fs::remove_all(scratch);
    return reads == 1 && hits == 2 * static_cast<std::size_t>(entries) ? 0 : 1;
}
