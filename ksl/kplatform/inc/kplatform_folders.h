// Folders: whether one exists, making one, and the current directory. Paths
// are Windows-style or host form.
#pragma once

#include <cstdint>
#include <string>

namespace korv::platform {

bool folder_exists(const std::string& path);
// Makes one folder; its parent must exist. False if it exists already.
bool create_folder(const std::string& path);
// The current directory in host form.
bool current_folder(std::string& out);
bool set_current_folder(const std::string& path);

// What makes a folder the same folder under any of its names (links, case,
// a relative path): device and inode on POSIX, volume serial number and file
// index on Windows. A walk compares them to not follow a link back up.
struct FolderId {
    std::uint64_t volume = 0;
    std::uint64_t index = 0;
    bool operator==(const FolderId&) const = default;
};
bool folder_id(const std::string& path, FolderId& out);

} // namespace korv::platform
