#include "kplatform_shell_folders.h"

#include "kplatform_paths.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <pwd.h>
#include <unistd.h>

namespace korv::platform {
namespace {

std::string user_name() {
    if (const char* user = std::getenv("USER"); user && *user)
        return user;
    if (const passwd* pw = ::getpwuid(::getuid()); pw && pw->pw_name)
        return pw->pw_name;
    return "user";
}

} // namespace

bool special_folder(int csidl, std::string& out) {
    switch (csidl) {
    case CSIDL_COMMON_APPDATA:
        out = "C:\\ProgramData";
        return true;
    case CSIDL_PROGRAM_FILES:
        out = "C:\\Program Files";
        return true;
    case CSIDL_PROGRAM_FILESX86:
        out = "C:\\Program Files (x86)";
        return true;
    case CSIDL_PROGRAM_FILES_COMMONX86:
        out = "C:\\Program Files (x86)\\Common Files";
        return true;
    case CSIDL_LOCAL_APPDATA:
        out = "C:\\Users\\" + user_name() + "\\AppData\\Local";
        return true;
    default:
        errno = EINVAL;
        return false;
    }
}

bool SHGetSpecialFolderPathA(void* /*owner*/, char* path, int csidl, bool create) {
    std::string folder;
    if (!path || !special_folder(csidl, folder))
        return false;
    if (folder.size() >= static_cast<std::size_t>(MAX_PATH)) {
        errno = ENAMETOOLONG;
        return false;
    }
    if (create && !make_native_folders(native_path(folder)))
        return false;
    std::memcpy(path, folder.c_str(), folder.size() + 1);
    return true;
}

} // namespace korv::platform
