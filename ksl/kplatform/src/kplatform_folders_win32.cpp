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

bool folder_id(const std::string& path, FolderId& out) {
    // A folder opens only with backup semantics; asking no access is enough.
    const HANDLE folder =
        ::CreateFileA(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                      nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (folder == INVALID_HANDLE_VALUE)
        return false;
    BY_HANDLE_FILE_INFORMATION info;
    const bool ok = ::GetFileInformationByHandle(folder, &info) != 0;
    ::CloseHandle(folder);
    if (!ok)
        return false;
    out.volume = info.dwVolumeSerialNumber;
    out.index = (std::uint64_t{info.nFileIndexHigh} << 32) | info.nFileIndexLow;
    return true;
}

} // namespace korv::platform
