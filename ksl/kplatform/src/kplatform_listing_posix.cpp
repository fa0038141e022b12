#include "kplatform_listing.h"

#include "kplatform_paths.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace korv::platform {

bool FolderListing::open(const std::string& folder) {
    close();
    const std::string native = native_path(folder);
    DIR* dir = ::opendir(native.empty() ? "." : native.c_str());
    if (!dir) {
        set_last_error(static_cast<std::uint32_t>(errno));
        return false;
    }
    m_handle = dir;
    return true;
}

bool FolderListing::next(FolderEntry& entry) {
    auto* dir = static_cast<DIR*>(m_handle);
    if (!dir)
        return false;
    errno = 0;
    const dirent* found = ::readdir(dir);
    if (!found) {
        set_last_error(static_cast<std::uint32_t>(errno));
        return false;
    }
    entry.name = found->d_name;
    bool folder = found->d_type == DT_DIR;
    // Only file systems that don't fill d_type, and links, cost a stat.
    if (found->d_type == DT_UNKNOWN || found->d_type == DT_LNK) {
        struct stat st;
        folder = ::fstatat(::dirfd(dir), found->d_name, &st, 0) == 0 && S_ISDIR(st.st_mode);
    }
    entry.attributes = 0;
    if (folder)
        entry.attributes |= FILE_ATTR_DIRECTORY;
    if (entry.name[0] == '.' && entry.name != "." && entry.name != "..")
        entry.attributes |= FILE_ATTR_HIDDEN;
    if (entry.attributes == 0)
        entry.attributes = FILE_ATTR_NORMAL;
    return true;
}

void FolderListing::close() {
    if (m_handle) {
        ::closedir(static_cast<DIR*>(m_handle));
        m_handle = nullptr;
    }
    m_first_pending = false;
}

} // namespace korv::platform
