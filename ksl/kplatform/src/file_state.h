// What identifies one state of a file on disk, for caches that must notice
// when another process has changed the file.
#pragma once

#include <sys/stat.h>

namespace korv::platform {

struct FileState {
    bool exists = false;
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    timespec modified{};
    timespec changed{};

    static FileState of(const struct stat& st) {
        return {true, st.st_dev, st.st_ino, st.st_size, st.st_mtim, st.st_ctim};
    }

    bool operator==(const FileState& other) const {
        return exists == other.exists && device == other.device && inode == other.inode &&
               size == other.size && same(modified, other.modified) && same(changed, other.changed);
    }

private:
    static bool same(const timespec& a, const timespec& b) {
        return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
    }
};

} // namespace korv::platform
