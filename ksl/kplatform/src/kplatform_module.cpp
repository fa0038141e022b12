#include "kplatform_module.h"

#include "kplatform_file.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

namespace korv::platform {

std::string executable_path() {
    char resolved[PATH_MAX];
    if (!::realpath("/proc/self/exe", resolved))
        return {};
    return resolved;
}

std::uint32_t GetModuleFileNameA(HMODULE module, char* name, std::uint32_t size) {
    if (module || !name) {
        set_last_error(EINVAL);
        return 0;
    }
    const std::string path = executable_path();
    if (path.empty()) {
        set_last_error(ENOENT);
        return 0;
    }
    if (size == 0) {
        set_last_error(ERANGE);
        return 0;
    }
    if (path.size() >= size) {
        std::memcpy(name, path.data(), size - 1);
        name[size - 1] = '\0';
        set_last_error(ERANGE);
        return size;
    }
    std::memcpy(name, path.c_str(), path.size() + 1);
    set_last_error(0);
    return static_cast<std::uint32_t>(path.size());
}

} // namespace korv::platform
