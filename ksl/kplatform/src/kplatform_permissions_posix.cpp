#include "kplatform_file.h"
#include "kplatform_paths.h"
#include "kplatform_permissions.h"

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace korv::platform {

bool file_writable(const std::string& path) {
    const std::string native = native_path(path);
    struct stat info {};
    return ::stat(native.c_str(), &info) == 0 && (info.st_mode & S_IWUSR) != 0 &&
           ::access(native.c_str(), W_OK) == 0;
}

bool make_file_writable(const std::string& path) {
    if (::chmod(native_path(path).c_str(), S_IRUSR | S_IWUSR) == 0)
        return true;
    set_last_error(static_cast<std::uint32_t>(errno));
    return false;
}

bool copy_file_permissions(const std::string& from, const std::string& to) {
    struct stat st;
    if (::stat(native_path(from).c_str(), &st) == 0 &&
        ::chmod(native_path(to).c_str(), st.st_mode & 07777) == 0)
        return true;
    set_last_error(static_cast<std::uint32_t>(errno));
    return false;
}

} // namespace korv::platform
