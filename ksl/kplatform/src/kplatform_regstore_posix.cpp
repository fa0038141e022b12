#include "kplatform_regstore.h"

#include "file_state.h"
#include "read_to_end.h"

#include "kplatform_paths.h"
#include "kplatform_registry.h"
#include "kplatform_replace.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace korv::platform {

namespace {

using regfile::Registry;

// The registry as last read, for as long as the file keeps its state.
struct Snapshot {
    std::string path;
    FileState state;
    std::shared_ptr<const Registry> data = std::make_shared<Registry>();
    bool usable = true; // false for a file that is malformed or can't be read
};

std::mutex g_mutex; // guards everything below
Snapshot g_snapshot;
bool g_loaded = false;
RegistryFileProblem g_problem;

bool stat_file(const std::string& path, FileState& state, int& error) {
    struct stat st;
    state = FileState{};
    if (::stat(path.c_str(), &st) != 0) {
        error = errno;
        return error == ENOENT;
    }
    state = FileState::of(st);
    return true;
}

bool read_all(const std::string& path, std::string& text, int& error) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        error = errno;
        return false;
    }
    struct stat st;
    if (::fstat(fd, &st) == 0 && st.st_size > 0)
        text.reserve(static_cast<std::size_t>(st.st_size));
    const bool read = read_to_end(fd, text);
    if (!read)
        error = errno;
    ::close(fd);
    return read;
}

void note_problem(const std::string& path, unsigned line, std::string reason) {
    g_problem.serial += 1;
    g_problem.path = path;
    g_problem.line = line;
    g_problem.reason = std::move(reason);
}

// The file as it is now, read again only when it has changed since the last
// look. Caller holds g_mutex.
const Snapshot& snapshot() {
    const std::string path = registry_file_path();
    FileState state;
    int error = 0;
    if (!stat_file(path, state, error)) {
        // The file can't even be looked at: an empty registry that can't be written.
        if (!g_loaded || g_snapshot.path != path || g_snapshot.usable) {
            note_problem(path, 0, std::string("cannot be looked at: ") + std::strerror(error));
            g_snapshot = Snapshot{path, state, std::make_shared<Registry>(), false};
            g_loaded = true;
        }
        return g_snapshot;
    }
    if (g_loaded && g_snapshot.path == path && g_snapshot.state == state)
        return g_snapshot;

    Snapshot fresh{path, state, nullptr, true};
    auto data = std::make_shared<Registry>();
    if (state.exists) {
        std::string text;
        unsigned line = 0;
        std::string reason;
        if (!read_all(path, text, error)) {
            note_problem(path, 0, std::string("cannot be read: ") + std::strerror(error));
            data = std::make_shared<Registry>();
            fresh.usable = false;
        } else if (!regfile::parse(text, *data, line, reason)) {
            note_problem(path, line, std::move(reason));
            data = std::make_shared<Registry>();
            fresh.usable = false;
        }
    }
    fresh.data = std::move(data);
    g_snapshot = std::move(fresh);
    g_loaded = true;
    return g_snapshot;
}

// Holds the advisory lock on the registry while it lives.
class FileLock {
public:
    explicit FileLock(const std::string& folder) {
        if (!make_native_folders(folder)) {
            m_error = errno;
            return;
        }
        const std::string path = folder + "/registry.reg.lock";
        m_fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
        if (m_fd < 0) {
            m_error = errno;
            return;
        }
        while (::flock(m_fd, LOCK_EX) != 0) {
            if (errno != EINTR) {
                m_error = errno;
                return;
            }
        }
    }
    ~FileLock() {
        if (m_fd >= 0)
            ::close(m_fd); // releases the lock
    }
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    int error() const { return m_error; }

private:
    int m_fd = -1;
    int m_error = 0;
};

} // namespace

std::mutex& regstore::mutex() {
    return g_mutex;
}

std::shared_ptr<const Registry> regstore::current() {
    return snapshot().data;
}

LONG regstore::modify(const std::function<LONG(Registry&, bool&)>& change) {
    FileLock lock(korv_root());
    if (lock.error())
        return win32_error_from_errno(lock.error());
    const Snapshot& now = snapshot();
    if (!now.usable)
        return ERROR_BADDB;
    Registry copy = *now.data;
    bool changed = false;
    const LONG result = change(copy, changed);
    if (result != ERROR_SUCCESS || !changed)
        return result;

    const std::string path = now.path;
    if (!replace_file(path, regfile::serialise(copy)))
        return win32_error_from_errno(static_cast<int>(last_error()));
    FileState state;
    int error = 0;
    if (stat_file(path, state, error)) {
        g_snapshot = Snapshot{path, state, std::make_shared<Registry>(std::move(copy)), true};
        g_loaded = true;
    } else {
        g_loaded = false;
    }
    return ERROR_SUCCESS;
}

std::string registry_file_path() {
    return korv_root() + "/registry.reg";
}

RegistryFileProblem registry_file_problem() {
    std::lock_guard lock(g_mutex);
    return g_problem;
}

} // namespace korv::platform
