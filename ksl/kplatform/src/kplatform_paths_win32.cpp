#include "kplatform_paths.h"

#include <windows.h>

namespace korv::platform {

// Windows has the drives themselves: no folder stands for them.
std::string korv_root() {
    return {};
}

// Paths are used as they are; the file system itself ignores case.
std::string native_path(std::string_view path, Presence* presence) {
    if (presence)
        *presence = Presence::Unknown;
    return std::string(path);
}

std::size_t folder_listings_read() {
    return 0;
}

bool make_native_folders(const std::string& native) {
    // A drive ("C:") or a share's root can't be created and needn't be.
    for (std::size_t at = 1; at <= native.size(); ++at) {
        if (at != native.size() && !is_path_separator(native[at]))
            continue;
        if (is_path_separator(native[at - 1]) || native[at - 1] == ':')
            continue;
        const std::string part = native.substr(0, at);
        if (!::CreateDirectoryA(part.c_str(), nullptr) &&
            ::GetLastError() != ERROR_ALREADY_EXISTS &&
            (::GetFileAttributesA(part.c_str()) & FILE_ATTRIBUTE_DIRECTORY) == 0)
            return false;
    }
    return true;
}

} // namespace korv::platform
