#include "kplatform_replace.h"

#include "kplatform_paths.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <mutex>
#include <set>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_map>
#include <vector>

namespace korv::platform {
namespace {

constexpr std::string_view kTempLead = ".~";
constexpr std::string_view kTempTail = ".tmp";
constexpr std::size_t kHexDigits = 8;
// What the temporary name adds to the target's: lead, '.', pid, '.', hex, tail.
constexpr std::size_t kTempExtra = 2 + 1 + 10 + 1 + kHexDigits + 4;
constexpr std::size_t kNameMax = 255;
constexpr int kMaxLinks = 40;
constexpr int kMaxAttempts = 100;

bool fail(int code) {
    set_last_error(static_cast<std::uint32_t>(code != 0 ? code : EIO));
    return false;
}

// Follows symbolic links until `native` names no link; ELOOP for a cycle.
bool resolve_links(std::string& native) {
    for (int hops = 0; hops < kMaxLinks; ++hops) {
        struct stat st;
        if (::lstat(native.c_str(), &st) != 0 || !S_ISLNK(st.st_mode))
            return true;
        std::string target(PATH_MAX, '\0');
        const ssize_t length = ::readlink(native.c_str(), target.data(), target.size());
        if (length < 0)
            return fail(errno);
        target.resize(static_cast<std::size_t>(length));
        const std::size_t slash = native.rfind('/');
        if (target.empty() || target[0] != '/')
            target.insert(0,
                          slash == std::string::npos ? std::string() : native.substr(0, slash + 1));
        native = std::move(target);
    }
    return fail(ELOOP);
}

// ".~<name>.": the start of every temporary name of the target.
std::string temp_stem(std::string_view name) {
    std::string stem(kTempLead);
    stem.append(name.substr(0, kNameMax - kTempExtra));
    stem += '.';
    return stem;
}

// The pid of a temporary name's rest, "<pid>.<8 hex digits>.tmp"; 0 for any
// other shape, so that another target's files never match.
pid_t pid_of(std::string_view rest) {
    std::size_t at = 0;
    long pid = 0;
    while (at < rest.size() && rest[at] >= '0' && rest[at] <= '9') {
        pid = pid * 10 + (rest[at++] - '0');
        if (pid > INT_MAX)
            return 0;
    }
    if (at == 0 || rest.size() != at + 1 + kHexDigits + kTempTail.size() || rest[at] != '.')
        return 0;
    for (std::size_t i = at + 1; i < at + 1 + kHexDigits; ++i)
        if (!((rest[i] >= '0' && rest[i] <= '9') || (rest[i] >= 'a' && rest[i] <= 'f')))
            return 0;
    return rest.substr(at + 1 + kHexDigits) == kTempTail ? static_cast<pid_t>(pid) : 0;
}

// What this run has done in each folder it replaced files in: the leftovers of
// killed processes it saw there (listed once; files of killed runs do not
// appear while this one runs), and whether the folder awaits its flush.
struct Folders {
    std::mutex mutex;
    std::unordered_map<std::string, std::vector<std::string>> leftovers;
    std::set<std::string> unflushed;
    bool flush_at_exit = false;
};

Folders& folders() {
    static Folders* all = new Folders; // still there when exit flushes
    return *all;
}

// Removes what killed processes left of this target's replacements. A file
// whose process still runs, or might (another user's), stays.
void remove_stale(const std::string& folder, const std::string& stem) {
    Folders& all = folders();
    std::lock_guard lock(all.mutex);
    auto [seen, first] = all.leftovers.try_emplace(folder);
    if (first) {
        DIR* dir = ::opendir(folder.c_str());
        if (!dir)
            return;
        while (const dirent* entry = ::readdir(dir))
            if (std::string_view(entry->d_name).substr(0, kTempLead.size()) == kTempLead)
                seen->second.emplace_back(entry->d_name);
        ::closedir(dir);
    }
    const pid_t self = ::getpid();
    auto& names = seen->second;
    for (auto name = names.begin(); name != names.end();) {
        if (name->size() <= stem.size() || name->compare(0, stem.size(), stem) != 0) {
            ++name;
            continue;
        }
        const pid_t pid = pid_of(std::string_view(*name).substr(stem.size()));
        if (pid <= 0 || pid == self || ::kill(pid, 0) == 0 || errno != ESRCH) {
            ++name;
            continue;
        }
        ::unlink((folder + '/' + *name).c_str());
        name = names.erase(name);
    }
}

std::uint32_t next_random() {
    // splitmix64; uniqueness comes from O_EXCL, this only makes clashes rare.
    thread_local std::uint64_t state =
        static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count()) ^
        (static_cast<std::uint64_t>(::getpid()) << 32) ^ reinterpret_cast<std::uintptr_t>(&state);
    std::uint64_t z = (state += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return static_cast<std::uint32_t>(z ^ (z >> 31));
}

// Creates the temporary file; a descriptor, or -1 with errno set.
int create_temp(const std::string& folder, const std::string& stem, std::string& temp) {
    for (int attempt = 0; attempt < kMaxAttempts; ++attempt) {
        char tail[48];
        std::snprintf(tail, sizeof tail, "%ld.%08x.tmp", static_cast<long>(::getpid()),
                      static_cast<unsigned>(next_random()));
        temp = folder + "/" + stem + tail;
        int fd;
        do
            fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        while (fd < 0 && errno == EINTR);
        if (fd >= 0 || errno != EEXIST)
            return fd;
    }
    errno = EEXIST;
    return -1;
}

// The renames are put on the disk once per folder, when the run ends (or when
// flush_replaced_folders is called): the files are whole either way, and a
// run that replaces several files of one folder pays one flush for them.
void flush_later(const std::string& folder) {
    Folders& all = folders();
    std::lock_guard lock(all.mutex);
    all.unflushed.insert(folder);
    if (!all.flush_at_exit)
        all.flush_at_exit = std::atexit([] { flush_replaced_folders(); }) == 0;
}

} // namespace

bool replace_file(const std::string& path, const ContentWriter& write, ReplaceFailure* failure) {
    ReplaceFailure unused;
    ReplaceFailure& report = failure ? *failure : unused;
    ReplaceStep& step = report.step;
    std::string& temp = report.temp;
    temp.clear();
    step = ReplaceStep::Target;
    std::string native = native_path(path);
    if (native.empty())
        return fail(ENOENT);
    if (!resolve_links(native))
        return false;
    struct stat old;
    const bool exists = ::stat(native.c_str(), &old) == 0;
    if (!exists && errno != ENOENT)
        return fail(errno);
    if (exists) {
        if (S_ISDIR(old.st_mode))
            return fail(EISDIR);
        if (!S_ISREG(old.st_mode))
            return fail(EINVAL);
        // Like the read-only attribute: without its owner's write bit a file is
        // not writable, also for a user who could write it anyway.
        if ((old.st_mode & S_IWUSR) == 0 || ::access(native.c_str(), W_OK) != 0)
            return fail(EACCES);
    }

    const std::size_t slash = native.rfind('/');
    const std::string folder = slash == std::string::npos ? std::string(".")
                               : slash == 0               ? std::string("/")
                                                          : native.substr(0, slash);
    const std::string stem =
        temp_stem(slash == std::string::npos ? std::string_view(native)
                                             : std::string_view(native).substr(slash + 1));
    remove_stale(folder, stem);

    step = ReplaceStep::Create;
    int fd = create_temp(folder, stem, temp);
    if (fd < 0)
        return fail(errno);
    const auto abandon = [&](ReplaceStep at, int code) {
        if (fd >= 0)
            ::close(fd);
        ::unlink(temp.c_str());
        step = at;
        return fail(code);
    };
    if (exists) {
        // The owner travels only where the process may give files away.
        if ((old.st_uid != ::geteuid() || old.st_gid != ::getegid()) &&
            ::fchown(fd, old.st_uid, old.st_gid) != 0 && errno != EPERM)
            return abandon(ReplaceStep::Create, errno);
        if (::fchmod(fd, old.st_mode & 07777) != 0)
            return abandon(ReplaceStep::Create, errno);
    }
    set_last_error(0);
    if (!write(fd))
        return abandon(ReplaceStep::Write, static_cast<int>(last_error()));
    if (::fsync(fd) != 0)
        return abandon(ReplaceStep::Flush, errno);
    const int closed = ::close(fd);
    fd = -1; // gone even when close reports an error
    if (closed != 0 && errno != EINTR)
        return abandon(ReplaceStep::Close, errno);
    if (::rename(temp.c_str(), native.c_str()) != 0)
        return abandon(ReplaceStep::Rename, errno);
    flush_later(folder);
    step = ReplaceStep::None;
    set_last_error(0);
    return true;
}

void flush_replaced_folders() {
    Folders& all = folders();
    std::set<std::string> pending;
    {
        std::lock_guard lock(all.mutex);
        pending.swap(all.unflushed);
    }
    // A folder that cannot be flushed does not fail anything: its new files
    // are in place already.
    for (const std::string& folder : pending) {
        const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (fd < 0)
            continue;
        ::fsync(fd);
        ::close(fd);
    }
}

} // namespace korv::platform
