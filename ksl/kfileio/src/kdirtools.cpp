#include "kdirtools.h"

#include "errtrace.h"
#include "fileops.h"
#include "kplatform_file.h"
#include "kplatform_folders.h"
#include "kplatform_paths.h"

#include <cstring>

namespace korv {
namespace {

bool is_drive(const std::string& part) {
    return part.size() == 2 && part[1] == ':' &&
           ((part[0] >= 'a' && part[0] <= 'z') || (part[0] >= 'A' && part[0] <= 'Z'));
}

} // namespace

bool dir_exists(const std::string& path) {
    return platform::folder_exists(path);
}

bool dir_mk(const std::string& path) {
    return platform::create_folder(path);
}

bool dir_getwd(std::string& out) {
    return platform::current_folder(out);
}

bool dir_setwd(const std::string& path) {
    platform::set_current_folder(path);
    return true;
}

bool createDirectoryRecursive(const std::string& path) {
    if (dir_exists(path))
        return true;
    std::string full = path;
    if (!file_is_absolute(path)) {
        std::string cwd;
        if (!dir_getwd(cwd)) {
            KERRTRACE("%s(): dir_getwd() failed", "korv::createDirectoryRecursive");
            return false;
        }
        full = cwd + "\\" + path;
    }

    std::vector<std::string> parts;
    for (std::size_t at = 0; at < full.size();) {
        const std::size_t end = full.find_first_of("\\/", at);
        const std::size_t stop = end == std::string::npos ? full.size() : end;
        if (stop > at)
            parts.push_back(full.substr(at, stop - at));
        at = stop + 1;
    }
    if (parts.empty() || (parts.size() == 1 && is_drive(parts[0]))) {
        KERRTRACE("%s(): Malformed path \"%s\"", "korv::createDirectoryRecursive", path.c_str());
        return false;
    }

    std::string walked = platform::is_path_separator(full[0]) ? "\\" : "";
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i > 0)
            walked += '\\';
        walked += parts[i];
        if (i == 0 && is_drive(parts[0])) {
            // A drive always exists on Windows; here it is a folder below the root.
            platform::make_native_folders(platform::native_path(walked));
            continue;
        }
        if (dir_exists(walked))
            continue;
        if (!dir_mk(walked)) {
            const std::uint32_t error = platform::last_error();
            if (dir_exists(walked))
                continue; // made by someone else meanwhile
            KERRTRACE("createDirectoryRecursive(): dir_mk(%s) failed", walked.c_str());
            KERRTRACE("createDirectoryRecursive(): want to create \"%s\"", path.c_str());
            KERRTRACE("createDirectoryRecursive(): system error: [%u] \"%s\"", error,
                      platform::error_text(error).c_str());
            return false;
        }
    }
    return true;
}

} // namespace korv
