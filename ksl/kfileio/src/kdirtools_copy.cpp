#include "kdirtools.h"

#include "errtrace.h"
#include "fastfile.h"
#include "fileops.h"
#include "kplatform_file.h"
#include "kplatform_paths.h"
#include "kplatform_permissions.h"

#include <cerrno>
#include <cstring>

namespace korv {
namespace {

using Arguments = std::vector<std::string>;

std::string base_name(const std::string& path) {
    const std::size_t slash = path.find_last_of("\\/");
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string without_trailing_separators(std::string path) {
    while (path.size() > 1 && platform::is_path_separator(path.back()))
        path.pop_back();
    return path;
}

// The host form with '/' and no trailing separator, absolute.
std::string comparable(const std::string& path) {
    std::string native = platform::native_path(path);
    if (!native.empty() && native[0] != '/') {
        std::string cwd;
        dir_getwd(cwd);
        native = cwd + "/" + native;
    }
    while (native.size() > 1 && native.back() == '/')
        native.pop_back();
    return native;
}

bool is_below(const std::string& inner, const std::string& outer) {
    const std::string a = comparable(inner);
    const std::string b = comparable(outer);
    return a.size() > b.size() && a.compare(0, b.size(), b) == 0 &&
           (a[b.size()] == '/' || b == "/");
}

// What copy_directory hands its callbacks: the argument list, with the target
// folder of each entry's own folder in front.
struct CopyContext {
    std::string source;
    Arguments arguments;
    DirWalkCallback on_file;
    DirWalkCallback on_directory;

    Arguments for_entry(const std::string& path) const {
        Arguments entry = arguments;
        const std::size_t name_at = path.find_last_of("\\/");
        if (name_at != std::string::npos && name_at > source.size())
            entry[0] += path.substr(source.size(), name_at - source.size());
        return entry;
    }
};

bool forward_file(void* data, const std::string& path) {
    const auto* context = static_cast<const CopyContext*>(data);
    Arguments entry = context->for_entry(path);
    return context->on_file(&entry, path);
}

bool forward_directory(void* data, const std::string& path) {
    const auto* context = static_cast<const CopyContext*>(data);
    Arguments entry = context->for_entry(path);
    return context->on_directory(&entry, path);
}

} // namespace

bool copy_directory(const std::string& source, const std::string& target, bool recursive, bool keep,
                    bool overwrite, DirWalkCallback on_file, DirWalkCallback on_directory) {
    if (recursive && is_below(target, source)) {
        KERRTRACE("copy_directory(): cannot recursively copy directories because 'target' is a "
                  "subdirectory of 'source' (%s,%s).",
                  source.c_str(), target.c_str());
        return false;
    }
    CopyContext context{without_trailing_separators(source), {target}, on_file, on_directory};
    context.arguments.push_back(keep ? "keep" : "discard");
    if (overwrite)
        context.arguments.push_back("overwrite");
    if (recursive)
        return iterateDirectory(context.source, KDIR_RECURSIVE,
                                on_directory ? forward_directory : nullptr, &context,
                                on_file ? forward_file : nullptr, &context);
    return iterateDirectory(context.source, 0, nullptr, nullptr, on_file ? forward_file : nullptr,
                            &context);
}

bool copyDirectory(const std::string& source, const std::string& target, bool recursive,
                   bool keep) {
    if (file_exists(target)) {
        KERRTRACE("copyDirectory(): directory \"%s\" already exist", target.c_str());
        return false;
    }
    if (!dir_mk(target)) {
        KERRTRACE("copyDirectory(): dir_mk(%s) failed", target.c_str());
        return false;
    }
    if (!copy_directory(source, target, recursive, keep, false, copyFile, create_directory)) {
        KERRTRACE("copyDirectory(): copy_directory(%s,%s) failed", source.c_str(), target.c_str());
        return false;
    }
    return true;
}

bool copyDirectory(const std::string& source, const std::string& target) {
    if (!createDirectoryRecursive(target)) {
        KERRTRACE("copyDirectory(): createDirectoryRecursive(%s) failed", target.c_str());
        return false;
    }
    if (!copy_directory(source, target, true, true, true, copyFile, create_directory)) {
        KERRTRACE("copyDirectory(): copy_directory(%s,%s) failed", source.c_str(), target.c_str());
        return false;
    }
    return true;
}

bool copyFile(void* arguments, const std::string& source) {
    const auto* list = static_cast<const Arguments*>(arguments);
    if (!list || list->size() < 2) {
        KERRTRACE("%s(): no argument list provided", "korv::copyFile");
        return false;
    }
    const std::string target = (*list)[0] + "\\" + base_name(source);
    // Without "overwrite" an existing target stays and the copy fails.
    const int mode =
        list->size() > 2 && (*list)[2] == "overwrite" ? KFF_REPLACE + KFF_ATOMIC : KFF_CREATE_NEW;
    if (!KFastFile_CopyFile(source, target, mode)) {
        KERRTRACE("copyFile(): KFastFile_CopyFile(%s, %s) failed", source.c_str(), target.c_str());
        return false;
    }
    if ((*list)[1] == "discard")
        return true;
    if (!platform::copy_file_permissions(source, target)) {
        KERRTRACE("%s(): copying the permissions of %s to %s failed: %s", "korv::copyFile",
                  source.c_str(), target.c_str(),
                  platform::error_text(platform::last_error()).c_str());
        return false;
    }
    return true;
}

bool create_directory(void* arguments, const std::string& source) {
    const auto* list = static_cast<const Arguments*>(arguments);
    if (!list || list->empty()) {
        KERRTRACE("%s(): no argument list provided", "create_directory");
        return false;
    }
    const std::string target = (*list)[0] + "\\" + base_name(source);
    if (dir_exists(target) || dir_mk(target))
        return true;
    KERRTRACE("create_directory(): dir_mk(%s) failed", target.c_str());
    return false;
}

} // namespace korv
