#include "kplatform_permissions.h"

#include <windows.h>

namespace korv::platform {

bool file_writable(const std::string& path) {
    const DWORD attributes = ::GetFileAttributesA(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES ||
        (attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY)) != 0)
        return false;
    // The attribute is not the whole story: the file's security may refuse.
    const HANDLE file = ::CreateFileA(path.c_str(), GENERIC_WRITE,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    ::CloseHandle(file);
    return true;
}

bool make_file_writable(const std::string& path) {
    const DWORD attributes = ::GetFileAttributesA(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES &&
           ::SetFileAttributesA(path.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY}) != 0;
}

bool copy_file_permissions(const std::string& from, const std::string& to) {
    const DWORD source = ::GetFileAttributesA(from.c_str());
    const DWORD target = ::GetFileAttributesA(to.c_str());
    if (source == INVALID_FILE_ATTRIBUTES || target == INVALID_FILE_ATTRIBUTES)
        return false;
    const DWORD kept =
        (target & ~DWORD{FILE_ATTRIBUTE_READONLY}) | (source & FILE_ATTRIBUTE_READONLY);
    return ::SetFileAttributesA(to.c_str(), kept == 0 ? FILE_ATTRIBUTE_NORMAL : kept) != 0;
}

} // namespace korv::platform
