// The entries of one folder, as FindFirstFile and FindNextFile give them:
// one pass, in the file system's order, with each entry's name and enough of
// its attributes to tell a folder from a file without asking again.
#pragma once

#include "kplatform_file.h"

#include <cstdint>
#include <string>

namespace korv::platform {

struct FolderEntry {
    std::string name;
    // FILE_ATTR_DIRECTORY for a folder (on POSIX also a link to one),
    // FILE_ATTR_HIDDEN for a name starting with '.' on POSIX, FILE_ATTR_NORMAL
    // when neither applies.
    std::uint32_t attributes = FILE_ATTR_NORMAL;

    bool is_folder() const { return (attributes & FILE_ATTR_DIRECTORY) != 0; }
};

class FolderListing {
public:
    FolderListing() = default;
    ~FolderListing() { close(); }
    FolderListing(const FolderListing&) = delete;
    FolderListing& operator=(const FolderListing&) = delete;

    // Starts listing `folder` (Windows-style or host path; empty is the current
    // directory). False, with last_error() set, if it can't be read.
    bool open(const std::string& folder);
    // The next entry; "." and ".." come as the platform gives them. False at
    // the end, or on a read error (then last_error() is not 0).
    bool next(FolderEntry& entry);
    void close();

private:
    void* m_handle = nullptr; // DIR* here, the find handle on Windows
    FolderEntry m_first;      // Windows: what the first find answered
    bool m_first_pending = false;
};

} // namespace korv::platform
