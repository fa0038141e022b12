#include "kdirtools.h"

#include "errtrace.h"
#include "fileops.h"
#include "kplatform_folders.h"
#include "kplatform_listing.h"
#include "kplatform_paths.h"

#include <algorithm>
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

// The folders from the start of a walk down to the one being listed, by
// device and inode: a link back to one of them is not followed.
using Ancestors = std::vector<platform::FolderId>;

bool leads_back(const std::string& path, const Ancestors& ancestors) {
    platform::FolderId id;
    return platform::folder_id(path, id) &&
           std::find(ancestors.begin(), ancestors.end(), id) != ancestors.end();
}

Walk walk(const std::string& path, const Callbacks& callbacks, Ancestors& ancestors) {
    std::string base = path;
    while (base.size() > 1 && platform::is_path_separator(base.back()) &&
           !(base.size() == 3 && base[1] == ':'))
        base.pop_back();
    const bool ends_in_separator = !base.empty() && platform::is_path_separator(base.back());
    const std::string pattern = base + (ends_in_separator ? "*" : "\\*");
    platform::FolderListing listing;
    if (pattern.size() >= kMaxPath || !listing.open(base.empty() ? "." : base)) {
        KERRTRACE("iterateDirectory(): FindFirstFile(%s) == INVALID_HANDLE_VALUE", pattern.c_str());
        return Walk::Failed;
    }

    platform::FolderId self;
    if (!platform::folder_id(base.empty() ? "." : base, self))
        self = {};
    ancestors.push_back(self);

    Walk result = Walk::Done;
    for (;;) {
        platform::FolderEntry entry;
        if (!listing.next(entry)) {
            if (platform::last_error() != 0) {
                KERRTRACE("iterateDirectory(): GetLastError() != ERROR_NO_MORE_FILES");
                result = Walk::Failed;
            }
            break;
        }
        if (entry.name == "." || entry.name == "..")
            continue;
        const std::string full = base + (ends_in_separator ? "" : "\\") + entry.name;
        if (entry.is_folder()) {
            if (callbacks.on_directory && !callbacks.on_directory(callbacks.directory_data, full)) {
                KERRTRACE("iterateDirectory(): directory callback failed for %s", full.c_str());
                result = Walk::Stopped;
                break;
            }
            if ((callbacks.flags & KDIR_RECURSIVE) && leads_back(full, ancestors)) {
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
