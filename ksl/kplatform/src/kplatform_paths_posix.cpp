#include "kplatform_paths.h"

#include "file_state.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <dirent.h>
#include <mutex>
#include <sys/stat.h>
#include <unordered_map>

namespace korv::platform {
namespace {

bool is_drive_prefix(std::string_view path) {
    const bool letter =
        !path.empty() && ((path[0] >= 'a' && path[0] <= 'z') || (path[0] >= 'A' && path[0] <= 'Z'));
    return letter && path.size() >= 2 && path[1] == ':';
}

std::string folded(std::string_view name) {
    std::string key(name);
    for (char& c : key)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c | 0x20);
    return key;
}

// The names of a folder by their ASCII-folded form, kept for the run so that a
// large folder is read once however many names are looked up in it. An index
// is used only while its folder shows the state it was read in: any later
// change, this process's or another's, moves its times. Several names that fold alike
// can only arise on a case-sensitive file system: the exact one wins, else the
// smallest, so that the answer does not depend on directory order.
struct Match {
    std::string smallest;
    bool several = false;
};

struct FolderIndex {
    FileState state;
    std::unordered_map<std::string, Match> names;
};

struct Indexes {
    std::mutex mutex;
    std::unordered_map<std::string, FolderIndex> folders;
    std::size_t reads = 0;
};

Indexes& indexes() {
    static Indexes* all = new Indexes; // outlives every static destructor
    return *all;
}

// A folder changed this recently may change again within the same tick of the
// file system's clock without its times showing it: its listing is not kept.
// A listing that is kept was read well after the last change, so any change
// after the reading gets later times.
bool settled(const struct stat& st) {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const auto nanoseconds = [](const timespec& t) {
        return static_cast<long long>(t.tv_sec) * 1000000000LL + t.tv_nsec;
    };
    constexpr long long kTick = 50'000'000; // well above any kernel's tick
    const long long last = std::max(nanoseconds(st.st_mtim), nanoseconds(st.st_ctim));
    return nanoseconds(now) - last > kTick;
}

// Reads the listing of `folder`, whose state the caller has just seen.
bool read_index(const std::string& folder, const struct stat& st, FolderIndex& index) {
    DIR* dir = ::opendir(folder.c_str());
    if (!dir)
        return false;
    index.state = FileState::of(st);
    index.names.clear();
    while (const dirent* entry = ::readdir(dir)) {
        const std::string_view name(entry->d_name);
        auto [it, added] = index.names.try_emplace(folded(name), Match{std::string(name)});
        if (!added) {
            it->second.several = true;
            if (name < it->second.smallest)
                it->second.smallest.assign(name);
        }
    }
    ::closedir(dir);
    return true;
}

void pick(const std::string& folder, const Match& match, std::string_view name,
          std::string& found) {
    struct stat st;
    if (match.several && ::lstat((folder + '/').append(name).c_str(), &st) == 0)
        found.assign(name);
    else
        found = match.smallest;
}

enum class Lookup { Found, Missing, Unreadable };

// The entry of `folder` (whose state is `st`) whose name equals `name`
// ignoring ASCII case.
Lookup find_ignoring_case(const std::string& folder, const struct stat& st, std::string_view name,
                          std::string& found) {
    Indexes& all = indexes();
    std::unique_lock lock(all.mutex);
    auto it = all.folders.find(folder);
    if (it == all.folders.end() || !(it->second.state == FileState::of(st))) {
        FolderIndex fresh;
        ++all.reads;
        if (!read_index(folder, st, fresh))
            return Lookup::Unreadable;
        if (!settled(st)) {
            all.folders.erase(folder);
            lock.unlock();
            const auto hit = fresh.names.find(folded(name));
            if (hit == fresh.names.end())
                return Lookup::Missing;
            pick(folder, hit->second, name, found);
            return Lookup::Found;
        }
        it = all.folders.insert_or_assign(folder, std::move(fresh)).first;
    }
    const auto hit = it->second.names.find(folded(name));
    if (hit == it->second.names.end())
        return Lookup::Missing;
    const Match match = hit->second;
    lock.unlock();
    pick(folder, match, name, found);
    return Lookup::Found;
}

} // namespace

bool make_native_folders(const std::string& native) {
    // Mostly the folder, or all but its last part, is there already.
    if (native.empty() || ::mkdir(native.c_str(), 0777) == 0 || errno == EEXIST)
        return true;
    if (errno != ENOENT)
        return false;
    const std::size_t slash = native.find_last_not_of('/', native.rfind('/'));
    if (slash == std::string::npos || native.rfind('/') == std::string::npos)
        return false;
    if (!make_native_folders(native.substr(0, slash + 1)))
        return false;
    return ::mkdir(native.c_str(), 0777) == 0 || errno == EEXIST;
}

std::string korv_root() {
    const char* root = std::getenv("KORV_ROOT");
    std::string result = (root && *root) ? root : "/var/lib/korv";
    while (result.size() > 1 && result.back() == '/')
        result.pop_back();
    return result;
}

std::string native_path(std::string_view path, Presence* presence) {
    std::string result;
    if (is_drive_prefix(path)) {
        result = korv_root();
        result += "/drive_";
        result += static_cast<char>(path[0] | 0x20);
        path.remove_prefix(2);
        if (path.empty())
            return result;
        result += '/';
    } else if (!path.empty() && is_path_separator(path[0])) {
        result = "/";
    }

    // Collect the components in Windows order of appearance.
    const std::size_t base = result.size();
    std::size_t pos = 0;
    while (pos < path.size()) {
        while (pos < path.size() && is_path_separator(path[pos]))
            ++pos;
        std::size_t end = pos;
        while (end < path.size() && !is_path_separator(path[end]))
            ++end;
        if (end > pos) {
            if (result.size() > base && result.back() != '/')
                result += '/';
            result.append(path.substr(pos, end - pos));
        }
        pos = end;
    }
    if (result.empty())
        return path.empty() ? std::string() : std::string(".");

    // Fast path: the path exists as written, which is the common case.
    Presence unused;
    Presence& found_here = presence ? *presence : unused;
    found_here = Presence::Unknown;
    struct stat st;
    if (::lstat(result.c_str(), &st) == 0) {
        if (!S_ISLNK(st.st_mode))
            found_here = Presence::Present;
        return result;
    }

    // The deepest folder above that exists as written; below it, each name
    // is looked up ignoring case in its folder's listing. Once a name is
    // missing altogether the rest is new and keeps the case given.
    std::size_t known = result.size();
    bool found_folder = false;
    while (known > base) {
        known = result.rfind('/', known - 1);
        if (known == std::string::npos || known < base) {
            known = base;
            break;
        }
        const std::string folder = result.substr(0, known == 0 ? 1 : known);
        if (::stat(folder.c_str(), &st) == 0) {
            found_folder = S_ISDIR(st.st_mode);
            break;
        }
    }
    std::string walked = result.substr(0, known);
    if (!found_folder) {
        // Nothing above exists as written: start from the root of the path.
        walked = result.substr(0, base);
        known = base;
        const std::string start = walked.empty() ? std::string(".") : walked;
        if (::stat(start.c_str(), &st) != 0 || !S_ISDIR(st.st_mode))
            return result;
    }
    std::size_t at = known;
    while (at < result.size() && result[at] == '/')
        ++at;
    // `st` is the state of the folder `walked` while `folder_exists`.
    bool folder_exists = true;
    bool below_known = true; // the first name below `known`, missing as written
    while (at < result.size()) {
        std::size_t end = result.find('/', at);
        if (end == std::string::npos)
            end = result.size();
        const std::string_view component(result.data() + at, end - at);
        const bool last = end == result.size();
        const std::string folder = walked.empty() ? std::string(".") : walked;
        if (!walked.empty() && walked.back() != '/')
            walked += '/';
        Lookup lookup = Lookup::Unreadable;
        struct stat entry;
        bool entry_known = false;
        if (folder_exists && component != "." && component != "..") {
            std::string found;
            if (!below_known && ::lstat((walked + std::string(component)).c_str(), &entry) == 0) {
                entry_known = true;
                lookup = Lookup::Found;
                found.assign(component);
            } else {
                lookup = find_ignoring_case(folder, st, component, found);
            }
            if (lookup == Lookup::Found)
                walked += found;
            else
                walked.append(component);
            // Missing from a folder that exists: nothing below can exist.
            if (lookup == Lookup::Missing)
                found_here = Presence::Absent;
        } else {
            walked.append(component);
        }
        below_known = false;
        at = end + 1;
        if (last) {
            if (entry_known && !S_ISLNK(entry.st_mode))
                found_here = Presence::Present;
            break;
        }
        if (!folder_exists)
            continue;
        if (lookup == Lookup::Missing)
            folder_exists = false;
        else if (entry_known && S_ISDIR(entry.st_mode))
            st = entry; // a folder, not a link to one
        else
            folder_exists = ::stat(walked.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
    }
    return walked;
}

std::size_t folder_listings_read() {
    Indexes& all = indexes();
    std::lock_guard lock(all.mutex);
    return all.reads;
}

} // namespace korv::platform
