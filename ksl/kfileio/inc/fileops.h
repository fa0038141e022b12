// Plain operations on single files. Paths may be Windows-style.
#pragma once

#include <cstdint>
#include <string>

namespace korv {

// Answers of file_kind.
inline constexpr int FILE_KIND_DIRECTORY = 'd';
inline constexpr int FILE_KIND_HIDDEN = ' '; // hidden or system
inline constexpr int FILE_KIND_FILE = '-';

// True if something exists at the path, file or directory.
bool file_exists(const std::string& path);
// 'd', ' ' or '-', or -1 if nothing is found. The last component may hold
// wildcards; the first entry that matches answers.
int file_kind(const std::string& path);
// Size in bytes; 0 for a directory, -1 if nothing is found.
std::int64_t file_size(const std::string& path);
// Exists, has a size, and is no directory.
bool file_is_regular(const std::string& path);
bool file_remove(const std::string& path);
// Replaces an existing target.
bool file_rename(const std::string& from, const std::string& to);
// The folder part of `path` with one '\\' behind it, in `target`, which must
// hold strlen(path) + 1 bytes. Null, and `target` untouched, if the path has
// no separator.
char* file_dirname(const char* path, char* target);
// Starts with a separator, or with a drive letter and ':'.
bool file_is_absolute(const std::string& path);

} // namespace korv
