#include "kplatform_folders.h"

#include <windows.h>

namespace korv::platform {

bool folder_exists(const std::string& path) {
    const DWORD attributes = ::GetFileAttributesA(path.c_str());
    return !path.empty() && attributes != INVALID_FILE_ATTRIBUTES &&
           (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool create_folder(const std::string& path) {
    return !path.empty() && ::CreateDirectoryA(path.c_str(), nullptr) != 0;
}

bool current_folder(std::string& out) {
    const DWORD size = ::GetCurrentDirectoryA(0, nullptr);
    if (size == 0)
        return false;
    std::string buffer(size, '\0');
    const DWORD length = ::GetCurrentDirectoryA(size, buffer.data());
    if (length == 0 || length >= size)
        return false;
    buffer.resize(length);
    out = std::move(buffer);
    return true;
}

bool set_current_folder(const std::string& path) {
    return ::SetCurrentDirectoryA(path.c_str()) != 0;
}

} // namespace korv::platform
