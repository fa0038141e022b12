#include "fileops.h"

#include "errtrace.h"
#include "kplatform_file.h"
#include "kplatform_paths.h"

#include <cstring>

namespace korv {

bool file_exists(const std::string& path) {
    return platform::path_exists(path);
}

int file_kind(const std::string& path) {
    platform::FileInfo info;
    if (!platform::find_first_file_info(path, info))
        return -1;
    if (info.attributes & platform::FILE_ATTR_DIRECTORY)
        return FILE_KIND_DIRECTORY;
    if (info.attributes & (platform::FILE_ATTR_HIDDEN | platform::FILE_ATTR_SYSTEM))
        return FILE_KIND_HIDDEN;
    return FILE_KIND_FILE;
}

std::int64_t file_size(const std::string& path) {
    platform::FileInfo info;
    if (!platform::get_file_info(path, info))
        return -1;
    return (info.attributes & platform::FILE_ATTR_DIRECTORY) ? 0 : info.size;
}

bool file_is_regular(const std::string& path) {
    platform::FileInfo info;
    return platform::get_file_info(path, info) &&
           (info.attributes & platform::FILE_ATTR_DIRECTORY) == 0;
}

bool file_remove(const std::string& path) {
    return platform::delete_file(path);
}

bool file_rename(const std::string& from, const std::string& to) {
    if (!platform::move_file_replace(from, to)) {
        KERRTRACE("file_rename(): MoveFileEx(%s,%s) failed: %u", from.c_str(), to.c_str(),
                  platform::last_error());
        return false;
    }
    return true;
}

char* file_dirname(const char* path, char* target) {
    if (!path || !target)
        return nullptr;
    std::size_t at = std::strlen(path);
    while (at > 0 && !platform::is_path_separator(path[at - 1]))
        --at;
    if (at == 0)
        return nullptr;
    std::memmove(target, path, at - 1);
    target[at - 1] = '\\';
    target[at] = '\0';
    return target;
}

bool file_is_absolute(const std::string& path) {
    if (path.empty())
        return false;
    if (platform::is_path_separator(path[0]))
        return true;
    const char c = path[0];
    return path.size() >= 2 && path[1] == ':' && ((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'));
}

} // namespace korv
