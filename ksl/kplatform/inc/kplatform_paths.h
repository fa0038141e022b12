// Windows-style paths on the host file system.
//
// The program builds and keeps paths in Windows form ("C:\\ProgramData\\Korv").
// Only the file layer turns them into host paths, through native_path().
#pragma once

#include <string>
#include <string_view>

namespace korv::platform {

// The folder that stands for the drives: $KORV_ROOT, or /var/lib/korv.
std::string korv_root();

// The host path for a Windows-style or host path.
// - '\\' and '/' both separate; repeated separators collapse.
// - A drive letter "X:" at the start maps to $KORV_ROOT/drive_x (lower case).
// - A component that does not exist with its exact case is replaced by the
//   entry of its folder that matches ignoring ASCII case, if there is one;
//   components that do not exist at all keep the case given, for creation.
// - A relative path stays relative.
std::string native_path(std::string_view path);

// Creates a host folder and every missing folder above it.
bool make_native_folders(const std::string& native);

// True for '\\' and '/'.
inline bool is_path_separator(char c) {
    return c == '\\' || c == '/';
}

} // namespace korv::platform
