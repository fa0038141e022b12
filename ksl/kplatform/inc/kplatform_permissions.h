// Whether a file may be written, as the read-only attribute says it: on POSIX
// a file without its owner's write bit counts as read-only even for a user
// who could write it anyway.
#pragma once

#include <string>

namespace korv::platform {

// True for an existing file that is neither read-only nor refused to this
// process.
bool file_writable(const std::string& path);
// Clears the read-only state (on POSIX: read and write for the owner only).
bool make_file_writable(const std::string& path);
// Gives `to` the read-only state (on POSIX: the permission bits) of `from`.
bool copy_file_permissions(const std::string& from, const std::string& to);

} // namespace korv::platform
