#include "kplatform_paths.h"

#include <cerrno>
#include <cstdlib>
#include <dirent.h>
#include <strings.h>
#include <sys/stat.h>

namespace korv::platform {
namespace {

bool exists(const std::string& path) {
    struct stat st;
    return ::lstat(path.c_str(), &st) == 0;
}

bool is_drive_prefix(std::string_view path) {
    const bool letter =
        !path.empty() && ((path[0] >= 'a' && path[0] <= 'z') || (path[0] >= 'A' && path[0] <= 'Z'));
    return letter && path.size() >= 2 && path[1] == ':';
}

// The one entry of `folder` whose name equals `name` ignoring ASCII case.
// Several candidates can only arise on a case-sensitive file system; the
// smallest name wins so that the answer does not depend on directory order.
bool find_ignoring_case(const std::string& folder, std::string_view name, std::string& found) {
    DIR* dir = ::opendir(folder.empty() ? "." : folder.c_str());
    if (!dir)
        return false;
    bool hit = false;
    while (const dirent* entry = ::readdir(dir)) {
        const std::string_view candidate(entry->d_name);
        if (candidate.size() != name.size())
            continue;
        if (::strncasecmp(candidate.data(), name.data(), name.size()) != 0)
            continue;
        if (!hit || candidate < found)
            found.assign(candidate);
        hit = true;
    }
    ::closedir(dir);
    return hit;
}

} // namespace

bool make_native_folders(const std::string& native) {
    for (std::size_t at = 1; at <= native.size(); ++at) {
        if (at != native.size() && native[at] != '/')
            continue;
        const std::string part = native.substr(0, at);
        if (::mkdir(part.c_str(), 0777) != 0 && errno != EEXIST)
            return false;
    }
    return true;
}

std::string korv_root() {
    const char* root = std::getenv("KORV_ROOT");
    std::string result = (root && *root) ? root : "/var/lib/korv";
    while (result.size() > 1 && result.back() == '/')
        result.pop_back();
    return result;
}

std::string native_path(std::string_view path) {
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
    if (exists(result))
        return result;

    // Walk component by component, taking a case-insensitive match where the
    // exact name is missing. Once a folder is missing the rest is new.
    std::string walked = result.substr(0, base);
    std::size_t at = base;
    bool folder_exists = true;
    while (at < result.size()) {
        std::size_t end = result.find('/', at);
        if (end == std::string::npos)
            end = result.size();
        const std::string_view component(result.data() + at, end - at);
        std::string candidate = walked;
        if (!candidate.empty() && candidate.back() != '/')
            candidate += '/';
        const std::size_t name_at = candidate.size();
        candidate.append(component);
        if (folder_exists && !exists(candidate) && component != "." && component != "..") {
            std::string found;
            std::string folder = walked.empty() ? std::string(".") : walked;
            if (find_ignoring_case(folder, component, found))
                candidate.replace(name_at, std::string::npos, found);
            else
                folder_exists = false;
        }
        walked = std::move(candidate);
        at = end + 1;
    }
    return walked;
}

} // namespace korv::platform
