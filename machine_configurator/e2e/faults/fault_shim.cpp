// Preloaded into a run of the program (LD_PRELOAD) to make the file system
// fail on cue. The environment says how:
//   KORV_FAULT_KILL_AT=N       the process kills itself (SIGKILL) at its Nth
//                              call that changes files: an open for writing,
//                              a write, a flush, chmod or chown, a rename, an
//                              unlink, a mkdir. A write is cut: half of its
//                              bytes go out first.
//   KORV_FAULT_COUNT_TO=FILE   at exit, the number of such calls goes to FILE.
//   KORV_FAULT_ENOSPC_AFTER=N  once N bytes in all have gone to regular files,
//                              writes to them fail with ENOSPC; the write that
//                              crosses the mark goes out in part.
//   KORV_FAULT_LOG_TO=FILE     each flush and rename goes to FILE as a line,
//                              "fsync\tPATH" or "rename\tFROM\tTO", in order.
// Only calls that the program makes through the dynamic linker are seen, not
// those inside the C library (stdio's log lines). The program has one thread.
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

long env_number(const char* name) {
    const char* text = std::getenv(name);
    return text && *text ? std::strtol(text, nullptr, 10) : -1;
}

struct Settings {
    long kill_at = env_number("KORV_FAULT_KILL_AT");
    long enospc_after = env_number("KORV_FAULT_ENOSPC_AFTER");
    const char* count_to = std::getenv("KORV_FAULT_COUNT_TO");
    const char* log_to = std::getenv("KORV_FAULT_LOG_TO");
};

Settings& settings() {
    static Settings s;
    return s;
}

long g_calls = 0;
long g_written = 0;

template <class F> F real(const char* name) {
    return reinterpret_cast<F>(::dlsym(RTLD_NEXT, name));
}

using WriteFn = ssize_t (*)(int, const void*, size_t);

WriteFn real_write() {
    static const WriteFn fn = real<WriteFn>("write");
    return fn;
}

// Counts a call that changes files; true if the process is to die at it.
bool due() {
    ++g_calls;
    return settings().kill_at > 0 && g_calls == settings().kill_at;
}

[[noreturn]] void die() {
    ::raise(SIGKILL);
    ::_exit(137);
}

// How much of `size` may go to `fd` before the disk is full; -1 if nothing may.
long room(int fd, size_t size) {
    if (settings().enospc_after < 0)
        return static_cast<long>(size);
    struct stat st;
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode))
        return static_cast<long>(size);
    const long left = settings().enospc_after - g_written;
    if (left <= 0) {
        errno = ENOSPC;
        return -1;
    }
    return left < static_cast<long>(size) ? left : static_cast<long>(size);
}

void note_written(int fd, ssize_t count) {
    struct stat st;
    if (count > 0 && settings().enospc_after >= 0 && ::fstat(fd, &st) == 0 && S_ISREG(st.st_mode))
        g_written += count;
}

bool opens_for_writing(int flags) {
    return (flags & (O_WRONLY | O_RDWR | O_CREAT | O_TRUNC)) != 0;
}

__attribute__((destructor)) void report_count() {
    if (!settings().count_to)
        return;
    using OpenFn = int (*)(const char*, int, ...);
    const int fd = real<OpenFn>("open")(settings().count_to, O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (fd < 0)
        return;
    char text[32];
    const int length = std::snprintf(text, sizeof text, "%ld\n", g_calls);
    if (real_write()(fd, text, static_cast<size_t>(length)) != length)
        std::fprintf(stderr, "fault shim: cannot write %s\n", settings().count_to);
    ::close(fd);
}

} // namespace

// The stand-ins carry the C library's symbol names through asm labels, so that
// they do not clash with the headers' declarations of the same functions.
#define KORV_FAULT_SYMBOL(ret, name, params)                                                       \
    extern "C" ret fault_##name params __asm__(#name);                                             \
    ret fault_##name params

KORV_FAULT_SYMBOL(ssize_t, write, (int fd, const void* data, size_t size)) {
    if (due()) {
        if (size > 1)
            real_write()(fd, data, size / 2);
        die();
    }
    const long allowed = room(fd, size);
    if (allowed < 0)
        return -1;
    const ssize_t put = real_write()(fd, data, static_cast<size_t>(allowed));
    note_written(fd, put);
    return put;
}

namespace {

ssize_t cut_pwrite(const char* name, int fd, const void* data, size_t size, off_t offset) {
    using Fn = ssize_t (*)(int, const void*, size_t, off_t);
    const Fn fn = real<Fn>(name);
    if (due()) {
        if (size > 1)
            fn(fd, data, size / 2, offset);
        die();
    }
    const long allowed = room(fd, size);
    if (allowed < 0)
        return -1;
    const ssize_t put = fn(fd, data, static_cast<size_t>(allowed), offset);
    note_written(fd, put);
    return put;
}

} // namespace

KORV_FAULT_SYMBOL(ssize_t, pwrite, (int fd, const void* data, size_t size, off_t offset)) {
    return cut_pwrite("pwrite", fd, data, size, offset);
}

KORV_FAULT_SYMBOL(ssize_t, pwrite64, (int fd, const void* data, size_t size, off_t offset)) {
    return cut_pwrite("pwrite64", fd, data, size, offset);
}

KORV_FAULT_SYMBOL(ssize_t, writev, (int fd, const struct iovec* vector, int count)) {
    using Fn = ssize_t (*)(int, const struct iovec*, int);
    static const Fn fn = real<Fn>("writev");
    if (due())
        die();
    size_t total = 0;
    for (int i = 0; i < count; ++i)
        total += vector[i].iov_len;
    const long allowed = room(fd, total);
    if (allowed < 0)
        return -1;
    if (static_cast<size_t>(allowed) < total) {
        // Only the first piece, cut to what is left: a short write, as a full disk gives.
        const size_t first = vector[0].iov_len < static_cast<size_t>(allowed)
                                 ? vector[0].iov_len
                                 : static_cast<size_t>(allowed);
        const ssize_t put = real_write()(fd, vector[0].iov_base, first);
        note_written(fd, put);
        return put;
    }
    const ssize_t put = fn(fd, vector, count);
    note_written(fd, put);
    return put;
}

namespace {

using OpenFn = int (*)(const char*, int, ...);
using OpenAtFn = int (*)(int, const char*, int, ...);

mode_t mode_argument(int flags, va_list args) {
    return (flags & (O_CREAT | O_TMPFILE)) ? static_cast<mode_t>(va_arg(args, int)) : 0;
}

} // namespace

#define KORV_FAULT_OPEN(name)                                                                      \
    KORV_FAULT_SYMBOL(int, name, (const char* path, int flags, ...)) {                             \
        static const OpenFn fn = real<OpenFn>(#name);                                              \
        va_list args;                                                                              \
        va_start(args, flags);                                                                     \
        const mode_t mode = mode_argument(flags, args);                                            \
        va_end(args);                                                                              \
        if (opens_for_writing(flags) && due())                                                     \
            die();                                                                                 \
        return fn(path, flags, mode);                                                              \
    }

#define KORV_FAULT_OPENAT(name)                                                                    \
    KORV_FAULT_SYMBOL(int, name, (int dir, const char* path, int flags, ...)) {                    \
        static const OpenAtFn fn = real<OpenAtFn>(#name);                                          \
        va_list args;                                                                              \
        va_start(args, flags);                                                                     \
        const mode_t mode = mode_argument(flags, args);                                            \
        va_end(args);                                                                              \
        if (opens_for_writing(flags) && due())                                                     \
            die();                                                                                 \
        return fn(dir, path, flags, mode);                                                         \
    }

KORV_FAULT_OPEN(open)
KORV_FAULT_OPEN(open64)
KORV_FAULT_OPENAT(openat)
KORV_FAULT_OPENAT(openat64)

// The calls below change files without writing bytes: each may be the one to die at.
#define KORV_FAULT_PASS(ret, name, params, args)                                                   \
    KORV_FAULT_SYMBOL(ret, name, params) {                                                         \
        using Fn = ret(*) params;                                                                  \
        static const Fn fn = real<Fn>(#name);                                                      \
        if (due())                                                                                 \
            die();                                                                                 \
        return fn args;                                                                            \
    }

namespace {

// Appends one line to the log of flushes and renames, if one was asked for.
void log_line(const char* what, const char* first, const char* second = nullptr) {
    if (!settings().log_to)
        return;
    static const int fd =
        real<OpenFn>("open")(settings().log_to, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (fd < 0)
        return;
    char line[3 * 4096 + 32];
    const int length = second
                           ? std::snprintf(line, sizeof line, "%s\t%s\t%s\n", what, first, second)
                           : std::snprintf(line, sizeof line, "%s\t%s\n", what, first);
    if (length > 0 && static_cast<size_t>(length) < sizeof line) [[maybe_unused]]
        const ssize_t put = real_write()(fd, line, static_cast<size_t>(length));
}

void log_flush(int fd) {
    if (!settings().log_to)
        return;
    char link[64];
    char path[4096] = {};
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
    const ssize_t length = ::readlink(link, path, sizeof path - 1);
    log_line("fsync", length > 0 ? path : "?");
}

} // namespace

#define KORV_FAULT_FLUSH(name)                                                                     \
    KORV_FAULT_SYMBOL(int, name, (int fd)) {                                                       \
        using Fn = int (*)(int);                                                                   \
        static const Fn fn = real<Fn>(#name);                                                      \
        if (due())                                                                                 \
            die();                                                                                 \
        log_flush(fd);                                                                             \
        return fn(fd);                                                                             \
    }

KORV_FAULT_FLUSH(fsync)
KORV_FAULT_FLUSH(fdatasync)
KORV_FAULT_PASS(int, fchmod, (int fd, mode_t mode), (fd, mode))
KORV_FAULT_PASS(int, chmod, (const char* path, mode_t mode), (path, mode))
KORV_FAULT_PASS(int, fchown, (int fd, uid_t owner, gid_t group), (fd, owner, group))
KORV_FAULT_PASS(int, ftruncate, (int fd, off_t length), (fd, length))
KORV_FAULT_SYMBOL(int, rename, (const char* from, const char* to)) {
    using Fn = int (*)(const char*, const char*);
    static const Fn fn = real<Fn>("rename");
    if (due())
        die();
    const int result = fn(from, to);
    if (result == 0)
        log_line("rename", from, to);
    return result;
}
KORV_FAULT_PASS(int, renameat, (int from_dir, const char* from, int to_dir, const char* to),
                (from_dir, from, to_dir, to))
KORV_FAULT_PASS(int, renameat2,
                (int from_dir, const char* from, int to_dir, const char* to, unsigned flags),
                (from_dir, from, to_dir, to, flags))
KORV_FAULT_PASS(int, unlink, (const char* path), (path))
KORV_FAULT_PASS(int, unlinkat, (int dir, const char* path, int flags), (dir, path, flags))
KORV_FAULT_PASS(int, mkdir, (const char* path, mode_t mode), (path, mode))
