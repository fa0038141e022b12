#include "kplatform_shell_folders.h"

#include <windows.h>

#include <shlobj.h>

namespace korv::platform {

bool special_folder(int csidl, std::string& out) {
    char path[MAX_PATH];
    if (!::SHGetSpecialFolderPathA(nullptr, path, csidl, FALSE))
        return false;
    out = path;
    return true;
}

bool SHGetSpecialFolderPathA(void* owner, char* path, int csidl, bool create) {
    return ::SHGetSpecialFolderPathA(static_cast<HWND>(owner), path, csidl, create) != 0;
}

} // namespace korv::platform
