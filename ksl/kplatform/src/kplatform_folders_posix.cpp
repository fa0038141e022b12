#include "kplatform_file.h"
#include "kplatform_folders.h"
#include "kplatform_paths.h"

#include <cerrno>
#include <climits>
#include <sys/stat.h>
#include <unistd.h>

namespace korv::platform {

bool folder_exists(const std::string& path) {
    struct stat st;
    return !path.empty() && ::stat(native_path(path).c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool create_folder(const std::string& path) {
    if (!path.empty() && ::mkdir(native_path(path).c_str(), 0777) == 0)
        return true;
    set_last_error(static_cast<std::uint32_t>(path.empty() ? ENOENT : errno));
    return false;
}

bool current_folder(std::string& out) {
    char buffer[PATH_MAX];
    if (!::getcwd(buffer, sizeof buffer))
        return false;
    out = buffer;
    return true;
}

bool set_current_folder(const std::string& path) {
    return ::chdir(native_path(path).c_str()) == 0;
}

bool folder_id(const std::string& path, FolderId& out) {
    struct stat st;
    if (::stat(native_path(path).c_str(), &st) != 0) {
        set_last_error(static_cast<std::uint32_t>(errno));
        return false;
    }
    out.volume = static_cast<std::uint64_t>(st.st_dev);
    out.index = static_cast<std::uint64_t>(st.st_ino);
    return true;
}

} // namespace korv::platform
