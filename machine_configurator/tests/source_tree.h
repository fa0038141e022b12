// Where the source tree is, as the build tree above the test binary names it.
#pragma once

#include "kplatform_module.h"

#include <filesystem>
#include <fstream>
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
                return line.substr(line.find('=') + 1);
    }
    return {};
}

} // namespace rigcfg_test
