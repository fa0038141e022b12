// Folders: whether one exists, making one, and the current directory. Paths
// are Windows-style or host form.
#pragma once

#include <string>

namespace korv::platform {

bool folder_exists(const std::string& path);
// Makes one folder; its parent must exist. False if it exists already.
bool create_folder(const std::string& path);
// The current directory in host form.
bool current_folder(std::string& out);
bool set_current_folder(const std::string& path);

} // namespace korv::platform
