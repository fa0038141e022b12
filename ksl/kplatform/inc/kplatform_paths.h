// Windows-style paths on the host file system.
//
// The program builds and keeps paths in Windows form ("C:\\ProgramData\\Korv").
// Only the file layer turns them into host paths, through native_path().
#pragma once

#include <cstddef>
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
//   A folder's listing is read once and kept while the folder is unchanged.
// - A relative path stays relative.
// `presence`, if given, tells what the lookup learnt on the way: Present for an
// entry that is not a symbolic link, Absent when a name is missing from a
// folder that exists, Unknown otherwise.
enum class Presence { Unknown, Present, Absent };
std::string native_path(std::string_view path, Presence* presence = nullptr);

// How many folder listings the lookups ignoring case have read in this
// process, for tests and benchmarks.
std::size_t folder_listings_read();

// Creates a host folder and every missing folder above it.
bool make_native_folders(const std::string& native);

// True for '\\' and '/'.
inline bool is_path_separator(char c) {
    return c == '\\' || c == '/';
}

} // namespace korv::platform
