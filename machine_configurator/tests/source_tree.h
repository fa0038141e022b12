// Where the source tree is, as the build tree above the test binary names it.
#pragma once

#include "kplatform_module.h"
#include "scratch_dir.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace rigcfg_test {

// Empty if no CMakeCache.txt above the test binary names it.
inline std::filesystem::path source_tree() {
    namespace fs = std::filesystem;
    for (fs::path dir = fs::path(korv::platform::executable_path()).parent_path();
         !dir.empty() && dir != dir.root_path(); dir = dir.parent_path()) {
        std::ifstream cache(dir / "CMakeCache.txt");
        for (std::string line; std::getline(cache, line);)
            if (line.rfind("CMAKE_HOME_DIRECTORY:INTERNAL=", 0) == 0)
                return korv::testing::build_tree_path(line.substr(line.find('=') + 1));
    }
    return {};
}

// The bytes of a file; empty if it cannot be read.
inline std::string slurp(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

} // namespace rigcfg_test
