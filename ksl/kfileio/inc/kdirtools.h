// Directories: single levels, whole trees, and a walk with callbacks.
// Paths may be Windows-style. Failures answer false and leave lines in the
// error trace.
#pragma once

#include <string>
#include <vector>

namespace korv {

bool dir_exists(const std::string& path);
// One level; false if it exists already or its parent is missing.
bool dir_mk(const std::string& path);
// The working directory (a host path here).
bool dir_getwd(std::string& out);
// Changes the working directory. Reports true in every case, as the callers
// have always seen it; they test the folder before.
bool dir_setwd(const std::string& path);

// Creates the directory and every missing one above it. A relative path is
// taken below the working directory.
bool createDirectoryRecursive(const std::string& path);

// A callback of the walk: its data and the full path of a directory or file
// (the walked path, '\\' and the name). False ends the walk.
using DirWalkCallback = bool (*)(void* data, const std::string& path);

// Flag of iterateDirectory: descend into each directory after its callback.
inline constexpr int KDIR_RECURSIVE = 2;

// Calls `on_directory` for each directory and `on_file` for each file in
// `path` (either may be null), in the order the platform lists them, "." and
// ".." left out. A folder below that can't be read is logged and skipped, and
// the result is false at the end; a callback's false ends the walk at once.
bool iterateDirectory(const std::string& path, int flags, DirWalkCallback on_directory,
                      void* directory_data, DirWalkCallback on_file, void* file_data);

// Copies a directory's content into `target` through the callbacks, which get
// an argument list: the target folder that matches the entry's folder, "keep"
// or "discard" for the permissions, and "overwrite" if set. With `recursive`
// the walk descends, and a target inside the source is refused before
// anything is copied; without it, only the files at the top are handed over.
bool copy_directory(const std::string& source, const std::string& target, bool recursive, bool keep,
                    bool overwrite, DirWalkCallback on_file, DirWalkCallback on_directory);

// Into a new directory `target`, which must not exist yet.
bool copyDirectory(const std::string& source, const std::string& target, bool recursive, bool keep);
// Merges into `target`, which is created if missing; files are overwritten
// and permissions kept.
bool copyDirectory(const std::string& source, const std::string& target);

// Callbacks for the walk.
// File callback of a copy: data is the argument list above. The file is
// replaced only with "overwrite"; with "keep" it takes the source's mode.
bool copyFile(void* arguments, const std::string& source);
// Directory callback of a copy: makes the matching directory under the
// target; one that exists already is fine.
bool create_directory(void* arguments, const std::string& source);
// Removes the file.
bool deleteFile(void* unused, const std::string& path);
// Appends the path to the std::vector<std::string> given as data.
bool addEntry(void* list_of_entries, const std::string& path);

} // namespace korv
