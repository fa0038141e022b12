#include "kplatform_module.h"

#include <climits>
#include <cstdlib>

namespace korv::platform {

std::string executable_path() {
    char resolved[PATH_MAX];
    if (!::realpath("/proc/self/exe", resolved))
        return {};
    return resolved;
}

} // namespace korv::platform
