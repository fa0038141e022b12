#include "kplatform_listing.h"
#include "kplatform_paths.h"

#include <windows.h>

namespace korv::platform {
namespace {

void fill(const WIN32_FIND_DATAA& data, FolderEntry& entry) {
    entry.name = data.cFileName;
    const std::uint32_t kept =
        data.dwFileAttributes & (FILE_ATTR_HIDDEN | FILE_ATTR_SYSTEM | FILE_ATTR_DIRECTORY);
    entry.attributes = kept == 0 ? FILE_ATTR_NORMAL : kept;
}

} // namespace

bool FolderListing::open(const std::string& folder) {
    close();
    std::string pattern = folder.empty() ? std::string(".") : folder;
    if (!is_path_separator(pattern.back()))
        pattern += '\\';
    pattern += '*';
    WIN32_FIND_DATAA data;
    const HANDLE find = ::FindFirstFileA(pattern.c_str(), &data);
    if (find == INVALID_HANDLE_VALUE)
        return false;
    m_handle = find;
    fill(data, m_first);
    m_first_pending = true;
    return true;
}

bool FolderListing::next(FolderEntry& entry) {
    if (!m_handle)
        return false;
    if (m_first_pending) {
        m_first_pending = false;
        entry = m_first;
        return true;
    }
    WIN32_FIND_DATAA data;
    if (!::FindNextFileA(static_cast<HANDLE>(m_handle), &data)) {
        // The end is not an error.
        if (::GetLastError() == ERROR_NO_MORE_FILES)
            ::SetLastError(0);
        return false;
    }
    fill(data, entry);
    return true;
}

void FolderListing::close() {
    if (m_handle) {
        ::FindClose(static_cast<HANDLE>(m_handle));
        m_handle = nullptr;
    }
    m_first_pending = false;
}

} // namespace korv::platform
