#include "kplatform_file.h"

#include "kplatform_paths.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <sys/stat.h>
#include <unistd.h>

namespace korv::platform {
namespace {

thread_local std::uint32_t t_last_error = 0;

// Records errno as the last error and answers `result`, for one-line failures.
template <typename T> T fail_with_errno(T result) {
    t_last_error = static_cast<std::uint32_t>(errno);
    return result;
}

template <typename T> T fail_with(int code, T result) {
    t_last_error = static_cast<std::uint32_t>(code);
    return result;
}

// One read(2) or write(2) takes at most this much, well below every limit.
constexpr std::size_t kMaxChunk = std::size_t{1} << 30;

bool is_hidden_name(const char* name) {
    return name[0] == '.' && std::strcmp(name, ".") != 0 && std::strcmp(name, "..") != 0;
}

bool info_of_native(const std::string& native, const char* name, FileInfo& info) {
    struct stat st;
    if (::stat(native.c_str(), &st) != 0)
        return fail_with_errno(false);
    info.attributes = 0;
    info.size = 0;
    if (S_ISDIR(st.st_mode))
        info.attributes |= FILE_ATTR_DIRECTORY;
    else
        info.size = static_cast<std::int64_t>(st.st_size);
    if (is_hidden_name(name))
        info.attributes |= FILE_ATTR_HIDDEN;
    if (info.attributes == 0)
        info.attributes = FILE_ATTR_NORMAL;
    return true;
}

const char* last_component(const std::string& native) {
    const std::size_t slash = native.rfind('/');
    return native.c_str() + (slash == std::string::npos ? 0 : slash + 1);
}

} // namespace

std::uint32_t last_error() {
    return t_last_error;
}
void set_last_error(std::uint32_t code) {
    t_last_error = code;
}
std::string error_text(std::uint32_t code) {
    return std::strerror(static_cast<int>(code));
}

FileHandle open_file(const std::string& path, Access access, Disposition disposition,
                     bool write_through) {
    int flags = O_CLOEXEC;
    switch (access) {
    case Access::Read:
        flags |= O_RDONLY;
        break;
    case Access::Write:
        flags |= O_WRONLY;
        break;
    case Access::Append:
        flags |= O_WRONLY | O_APPEND;
        break;
    }
    switch (disposition) {
    case Disposition::CreateNew:
        flags |= O_CREAT | O_EXCL;
        break;
    case Disposition::OpenAlways:
        flags |= O_CREAT;
        break;
    case Disposition::CreateAlways:
        flags |= O_CREAT | O_TRUNC;
        break;
    case Disposition::OpenExisting:
        break;
    }
    if (write_through)
        flags |= O_DSYNC;
    Presence presence;
    const std::string native = native_path(path, &presence);
    if (presence == Presence::Absent && disposition == Disposition::OpenExisting)
        return fail_with(ENOENT, INVALID_FILE_HANDLE);
    int fd;
    do
        fd = ::open(native.c_str(), flags, 0666);
    while (fd < 0 && errno == EINTR);
    if (fd < 0)
        return fail_with_errno(INVALID_FILE_HANDLE);
    // A directory opens for reading here, but a file handle never names one.
    struct stat st;
    const int code = ::fstat(fd, &st) != 0 ? errno : S_ISDIR(st.st_mode) ? EISDIR : 0;
    if (code != 0) {
        ::close(fd);
        return fail_with(code, INVALID_FILE_HANDLE);
    }
    return fd;
}

bool read_file(FileHandle file, void* buffer, std::uint32_t size, std::uint32_t& done) {
    done = 0;
    if (file < 0)
        return fail_with(EBADF, false);
    auto* target = static_cast<char*>(buffer);
    while (done < size) {
        const std::size_t want = std::min<std::size_t>(size - done, kMaxChunk);
        const ssize_t got = ::read(static_cast<int>(file), target + done, want);
        if (got < 0) {
            if (errno == EINTR)
                continue;
            return fail_with_errno(false);
        }
        if (got == 0)
            break;
        done += static_cast<std::uint32_t>(got);
    }
    return true;
}

bool write_file(FileHandle file, const void* data, std::uint32_t size, std::uint32_t& done) {
    done = 0;
    if (file < 0)
        return fail_with(EBADF, false);
    const auto* source = static_cast<const char*>(data);
    while (done < size) {
        const std::size_t want = std::min<std::size_t>(size - done, kMaxChunk);
        const ssize_t put = ::write(static_cast<int>(file), source + done, want);
        if (put < 0) {
            if (errno == EINTR)
                continue;
            return fail_with_errno(false);
        }
        if (put == 0)
            return fail_with(EIO, false);
        done += static_cast<std::uint32_t>(put);
    }
    return true;
}

bool flush_file(FileHandle file) {
    if (file < 0)
        return fail_with(EBADF, false);
    return ::fsync(static_cast<int>(file)) == 0 || fail_with_errno(false);
}

bool close_file(FileHandle file) {
    if (file < 0)
        return fail_with(EBADF, false);
    // After EINTR the descriptor is gone all the same on Linux.
    return ::close(static_cast<int>(file)) == 0 || errno == EINTR || fail_with_errno(false);
}

bool temp_file_name(const std::string& folder, const std::string& prefix, std::string& out) {
    const std::string native_folder = folder.empty() ? std::string(".") : native_path(folder);
    const std::string stem = prefix.substr(0, 3);
    // Start from the clock, as the unique number 0 asks, and count on past names in use.
    const auto ticks = std::chrono::steady_clock::now().time_since_epoch().count();
    const unsigned start = static_cast<unsigned>(ticks ^ ::getpid()) & 0xFFFF;
    for (unsigned step = 0; step <= 0xFFFF; ++step) {
        const unsigned unique = (start + step) & 0xFFFF;
        if (unique == 0)
            continue;
        char name[16];
        std::snprintf(name, sizeof name, "%04X.tmp", unique);
        const std::string file_name = stem + name;
        const std::string native = native_folder + "/" + file_name;
        int fd;
        do
            fd = ::open(native.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        while (fd < 0 && errno == EINTR);
        if (fd < 0) {
            if (errno == EEXIST)
                continue;
            return fail_with_errno(false);
        }
        ::close(fd);
        out = folder;
        if (!out.empty() && !is_path_separator(out.back()))
            out += '\\';
        out += file_name;
        return true;
    }
    return fail_with(EEXIST, false);
}

bool move_file_replace(const std::string& from, const std::string& to) {
    const std::string native_from = native_path(from);
    const std::string native_to = native_path(to);
    return ::rename(native_from.c_str(), native_to.c_str()) == 0 || fail_with_errno(false);
}

bool delete_file(const std::string& path) {
    const std::string native = native_path(path);
    return ::unlink(native.c_str()) == 0 || fail_with_errno(false);
}

bool path_exists(const std::string& path) {
    Presence presence;
    const std::string native = native_path(path, &presence);
    if (presence != Presence::Unknown)
        return presence == Presence::Present || fail_with(ENOENT, false);
    return ::access(native.c_str(), F_OK) == 0 || fail_with_errno(false);
}

bool get_file_info(const std::string& path, FileInfo& info) {
    const std::string native = native_path(path);
    return info_of_native(native, last_component(native), info);
}

bool find_first_file_info(const std::string& pattern, FileInfo& info) {
    const std::string native = native_path(pattern);
    const char* name = last_component(native);
    if (!std::strpbrk(name, "*?"))
        return info_of_native(native, name, info);

    const std::string folder(native.c_str(), name);
    DIR* dir = ::opendir(folder.empty() ? "." : folder.c_str());
    if (!dir)
        return fail_with_errno(false);
    // Several entries can match; the smallest name is taken so that the answer
    // does not depend on directory order.
    std::string first;
    bool hit = false;
    while (const dirent* entry = ::readdir(dir)) {
        if (::fnmatch(name, entry->d_name, FNM_CASEFOLD) != 0)
            continue;
        if (!hit || std::strcmp(entry->d_name, first.c_str()) < 0)
            first = entry->d_name;
        hit = true;
    }
    ::closedir(dir);
    if (!hit)
        return fail_with(ENOENT, false);
    return info_of_native(folder + first, first.c_str(), info);
}

} // namespace korv::platform
