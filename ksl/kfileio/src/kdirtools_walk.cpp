#include "kdirtools.h"

#include "errtrace.h"
#include "fileops.h"
#include "kplatform_paths.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace korv {
namespace {

constexpr std::size_t kMaxPath = 260;

enum class Walk { Done, Failed, Stopped };

struct Callbacks {
    int flags;
    DirWalkCallback on_directory;
    void* directory_data;
    DirWalkCallback on_file;
    void* file_data;
};

bool is_directory(const std::string& folder_native, const dirent& entry) {
    if (entry.d_type == DT_DIR)
        return true;
    if (entry.d_type != DT_UNKNOWN && entry.d_type != DT_LNK)
        return false;
    struct stat st;
    const std::string native = folder_native + "/" + entry.d_name;
    return ::stat(native.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

// The folders from the start of a walk down to the one being listed, by
// device and inode: a link back to one of them is not followed.
using Ancestors = std::vector<std::pair<dev_t, ino_t>>;

bool leads_back(const std::string& native, const Ancestors& ancestors) {
    struct stat st;
    if (::stat(native.c_str(), &st) != 0)
        return false;
    for (const auto& [device, inode] : ancestors)
        if (device == st.st_dev && inode == st.st_ino)
            return true;
    return false;
}

Walk walk(const std::string& path, const Callbacks& callbacks, Ancestors& ancestors) {
    std::string base = path;
    while (base.size() > 1 && platform::is_path_separator(base.back()) &&
           !(base.size() == 3 && base[1] == ':'))
        base.pop_back();
    const bool ends_in_separator = !base.empty() && platform::is_path_separator(base.back());
    const std::string pattern = base + (ends_in_separator ? "*" : "\\*");
    const std::string native = platform::native_path(base.empty() ? "." : base);
    DIR* dir = pattern.size() < kMaxPath ? ::opendir(native.c_str()) : nullptr;
    if (!dir) {
        KERRTRACE("iterateDirectory(): FindFirstFile(%s) == INVALID_HANDLE_VALUE", pattern.c_str());
        return Walk::Failed;
    }

    struct stat self;
    if (::fstat(::dirfd(dir), &self) == 0)
        ancestors.emplace_back(self.st_dev, self.st_ino);
    else
        ancestors.emplace_back(0, 0);

    Walk result = Walk::Done;
    for (;;) {
        errno = 0;
        const dirent* entry = ::readdir(dir);
        if (!entry) {
            if (errno != 0) {
                KERRTRACE("iterateDirectory(): GetLastError() != ERROR_NO_MORE_FILES");
                result = Walk::Failed;
            }
            break;
        }
        if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0)
            continue;
        const std::string full = base + (ends_in_separator ? "" : "\\") + entry->d_name;
        if (is_directory(native, *entry)) {
            if (callbacks.on_directory && !callbacks.on_directory(callbacks.directory_data, full)) {
                KERRTRACE("iterateDirectory(): directory callback failed for %s", full.c_str());
                result = Walk::Stopped;
                break;
            }
            if ((callbacks.flags & KDIR_RECURSIVE) &&
                leads_back(native + "/" + entry->d_name, ancestors)) {
                KTRACE(2, "iterateDirectory(): %s leads back to a folder above it, not entered",
                       full.c_str());
            } else if (callbacks.flags & KDIR_RECURSIVE) {
                const Walk below = walk(full, callbacks, ancestors);
                if (below == Walk::Stopped) {
                    result = Walk::Stopped;
                    break;
                }
                if (below == Walk::Failed)
                    result = Walk::Failed; // go on with the rest, fail at the end
            }
        } else if (callbacks.on_file && !callbacks.on_file(callbacks.file_data, full)) {
            KERRTRACE("iterateDirectory(): file callback failed for %s", full.c_str());
            result = Walk::Stopped;
            break;
        }
    }
    ::closedir(dir);
    ancestors.pop_back();
    return result;
}

} // namespace

bool iterateDirectory(const std::string& path, int flags, DirWalkCallback on_directory,
                      void* directory_data, DirWalkCallback on_file, void* file_data) {
    Ancestors ancestors;
    return walk(path, Callbacks{flags, on_directory, directory_data, on_file, file_data},
                ancestors) == Walk::Done;
}

bool deleteFile(void* /*unused*/, const std::string& path) {
    if (file_remove(path))
        return true;
    KERRTRACE("deleteFile(): file_remove(%s) failed ", path.c_str());
    return false;
}

bool addEntry(void* list_of_entries, const std::string& path) {
    if (!list_of_entries) {
        KERRTRACE("addEntry(): no vector<string> *listOfEntries provided");
        return false;
    }
    static_cast<std::vector<std::string>*>(list_of_entries)->push_back(path);
    return true;
}

} // namespace korv
