#include "kplatform_module.h"

#include "kplatform_file.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace korv::platform {

std::string executable_path() {
    // The kernel's link already names the file with every link resolved; a
    // run asks for it several times, so it is read once.
    static const std::string path = [] {
        char resolved[PATH_MAX];
        const ssize_t length = ::readlink("/proc/self/exe", resolved, sizeof resolved);
        return length > 0 && length < static_cast<ssize_t>(sizeof resolved)
                   ? std::string(resolved, static_cast<std::size_t>(length))
                   : std::string();
    }();
    return path;
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
