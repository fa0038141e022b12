#include "kplatform_registry.h"

#include "file_state.h"

#include "kplatform_paths.h"
#include "kplatform_regfile.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_set>

namespace korv::platform {

struct HKEY__ {
    std::string path; // root spelled canonically
    REGSAM access = 0;
};

namespace {

using regfile::Key;
using regfile::Registry;
using regfile::Value;

// The registry as last read, for as long as the file keeps its state.
struct Snapshot {
    std::string path;
    FileState state;
    std::shared_ptr<const Registry> data = std::make_shared<Registry>();
    bool usable = true; // false for a file that is malformed or can't be read
};

std::mutex g_mutex; // guards everything below; held for the length of each call
std::unordered_set<HKEY> g_handles;
Snapshot g_snapshot;
bool g_loaded = false;
RegistryFileProblem g_problem;

const std::pair<HKEY, const char*> kRoots[] = {{HKEY_CLASSES_ROOT, "HKEY_CLASSES_ROOT"},
                                               {HKEY_CURRENT_USER, "HKEY_CURRENT_USER"},
                                               {HKEY_LOCAL_MACHINE, "HKEY_LOCAL_MACHINE"},
                                               {HKEY_USERS, "HKEY_USERS"},
                                               {HKEY_CURRENT_CONFIG, "HKEY_CURRENT_CONFIG"}};

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
    char buffer[65536];
    for (;;) {
        const ssize_t got = ::read(fd, buffer, sizeof buffer);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0) {
            error = errno;
            ::close(fd);
            return false;
        }
        if (got == 0)
            break;
        text.append(buffer, static_cast<std::size_t>(got));
    }
    ::close(fd);
    return true;
}

void note_problem(const std::string& path, unsigned line, std::string reason) {
    g_problem.serial += 1;
    g_problem.path = path;
    g_problem.line = line;
    g_problem.reason = std::move(reason);
}

// The registry as the file holds it now; reads the file again only when it
// has changed since the last look. Caller holds g_mutex.
const Snapshot& current() {
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

// The path and rights behind a handle; false for a handle that isn't open.
bool resolve(HKEY key, std::string& path, REGSAM& access) {
    for (const auto& root : kRoots) {
        if (root.first == key) {
            path = root.second;
            access = KEY_ALL_ACCESS;
            return true;
        }
    }
    if (!key || g_handles.count(key) == 0)
        return false;
    path = key->path;
    access = key->access;
    return true;
}

bool has_line_break(const char* text) {
    return text && std::strpbrk(text, "\r\n");
}

// The key below `base` named by `sub_key`: null or empty is `base` itself; a
// trailing backslash is ignored; a leading one or an empty name is refused.
LONG join(const std::string& base, const char* sub_key, std::string& path) {
    path = base;
    if (!sub_key || !*sub_key)
        return ERROR_SUCCESS;
    std::string_view rest(sub_key);
    if (rest.front() == '\\')
        return ERROR_BAD_PATHNAME;
    if (rest.back() == '\\')
        rest.remove_suffix(1);
    std::size_t at = 0;
    while (at <= rest.size()) {
        std::size_t end = rest.find('\\', at);
        if (end == std::string_view::npos)
            end = rest.size();
        if (end == at)
            return ERROR_BAD_PATHNAME;
        path += '\\';
        path.append(rest.substr(at, end - at));
        at = end + 1;
    }
    return ERROR_SUCCESS;
}

// The full path of `sub_key` below the key behind the handle `key`.
LONG key_path(HKEY key, const char* sub_key, std::string& path) {
    std::string base;
    REGSAM ignored = 0;
    if (!resolve(key, base, ignored))
        return ERROR_INVALID_HANDLE;
    return join(base, sub_key, path);
}

HKEY new_handle(std::string path, REGSAM access) {
    HKEY handle = new HKEY__{std::move(path), access};
    g_handles.insert(handle);
    return handle;
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

bool write_all(int fd, const std::string& text) {
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t put = ::write(fd, text.data() + done, text.size() - done);
        if (put < 0 && errno == EINTR)
            continue;
        if (put <= 0)
            return false;
        done += static_cast<std::size_t>(put);
    }
    return true;
}

// Writes the registry beside the file and renames it over the file.
LONG replace_file(const std::string& path, const Registry& registry, mode_t mode) {
    std::string temp = path + ".XXXXXX";
    const int fd = ::mkostemp(temp.data(), O_CLOEXEC);
    if (fd < 0)
        return win32_error_from_errno(errno);
    const std::string text = regfile::serialise(registry);
    bool ok = ::fchmod(fd, mode) == 0 && write_all(fd, text) && ::fsync(fd) == 0;
    int error = ok ? 0 : errno;
    if (::close(fd) != 0 && ok) {
        ok = false;
        error = errno;
    }
    if (ok && ::rename(temp.c_str(), path.c_str()) != 0) {
        ok = false;
        error = errno;
    }
    if (!ok) {
        ::unlink(temp.c_str());
        return win32_error_from_errno(error);
    }
    return ERROR_SUCCESS;
}

// Runs `change` on a copy of the registry as the file holds it under the
// lock, and writes the copy back if `change` says it changed anything.
// Caller holds g_mutex.
template <typename Change> LONG modify(Change change) {
    FileLock lock(korv_root());
    if (lock.error())
        return win32_error_from_errno(lock.error());
    const Snapshot& snapshot = current();
    if (!snapshot.usable)
        return ERROR_BADDB;
    Registry copy = *snapshot.data;
    bool changed = false;
    const LONG result = change(copy, changed);
    if (result != ERROR_SUCCESS || !changed)
        return result;

    mode_t mode = 0644;
    struct stat st;
    if (snapshot.state.exists && ::stat(snapshot.path.c_str(), &st) == 0)
        mode = st.st_mode & 07777;
    const std::string path = snapshot.path;
    const LONG written = replace_file(path, copy, mode);
    if (written != ERROR_SUCCESS)
        return written;
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

LONG copy_out(const std::string& bytes, BYTE* data, DWORD* size) {
    if (data && !size)
        return ERROR_INVALID_PARAMETER;
    if (!size)
        return ERROR_SUCCESS;
    const auto needed = static_cast<DWORD>(bytes.size());
    if (data && *size < needed) {
        *size = needed;
        return ERROR_MORE_DATA;
    }
    if (data && needed > 0)
        std::memcpy(data, bytes.data(), needed);
    *size = needed;
    return ERROR_SUCCESS;
}

// A name into a caller's buffer of `*size` characters with the terminator.
LONG copy_name(const std::string& text, char* name, DWORD* size) {
    if (!name || !size)
        return ERROR_INVALID_PARAMETER;
    if (*size <= text.size())
        return ERROR_MORE_DATA;
    std::memcpy(name, text.c_str(), text.size() + 1);
    *size = static_cast<DWORD>(text.size());
    return ERROR_SUCCESS;
}

} // namespace

std::string registry_file_path() {
    return korv_root() + "/registry.reg";
}

RegistryFileProblem registry_file_problem() {
    std::lock_guard lock(g_mutex);
    return g_problem;
}

LONG RegOpenKeyExA(HKEY key, const char* sub_key, DWORD /*options*/, REGSAM desired, HKEY* result) {
    std::lock_guard lock(g_mutex);
    if (!result)
        return ERROR_INVALID_PARAMETER;
    *result = nullptr;
    std::string path;
    if (const LONG found = key_path(key, sub_key, path); found != ERROR_SUCCESS)
        return found;
    if (!current().data->exists(path))
        return ERROR_FILE_NOT_FOUND;
    *result = new_handle(std::move(path), desired);
    return ERROR_SUCCESS;
}

LONG RegCreateKeyExA(HKEY key, const char* sub_key, DWORD /*reserved*/, char* /*key_class*/,
                     DWORD /*options*/, REGSAM desired, const void* /*security*/, HKEY* result,
                     DWORD* disposition) {
    std::lock_guard lock(g_mutex);
    if (!result || !sub_key)
        return ERROR_INVALID_PARAMETER;
    *result = nullptr;
    std::string base;
    REGSAM ignored = 0;
    if (!resolve(key, base, ignored))
        return ERROR_INVALID_HANDLE;
    if (has_line_break(sub_key))
        return ERROR_INVALID_PARAMETER;
    std::string path;
    if (const LONG joined = join(base, sub_key, path); joined != ERROR_SUCCESS)
        return joined;
    bool created = false;
    if (!current().data->exists(path)) {
        const LONG made = modify([&](Registry& registry, bool& changed) {
            Key* made_key = nullptr;
            changed = registry.create(path, made_key);
            created = changed;
            return ERROR_SUCCESS;
        });
        if (made != ERROR_SUCCESS)
            return made;
    }
    if (disposition)
        *disposition = created ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
    *result = new_handle(std::move(path), desired);
    return ERROR_SUCCESS;
}

LONG RegCreateKeyA(HKEY key, const char* sub_key, HKEY* result) {
    return RegCreateKeyExA(key, sub_key ? sub_key : "", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                           result, nullptr);
}

LONG RegCloseKey(HKEY key) {
    std::lock_guard lock(g_mutex);
    for (const auto& root : kRoots)
        if (root.first == key)
            return ERROR_SUCCESS;
    if (!key || g_handles.erase(key) == 0)
        return ERROR_INVALID_HANDLE;
    delete key;
    return ERROR_SUCCESS;
}

LONG RegQueryValueExA(HKEY key, const char* name, DWORD* /*reserved*/, DWORD* type, BYTE* data,
                      DWORD* size) {
    std::lock_guard lock(g_mutex);
    std::string path;
    REGSAM access = 0;
    if (!resolve(key, path, access))
        return ERROR_INVALID_HANDLE;
    if (!(access & KEY_QUERY_VALUE))
        return ERROR_ACCESS_DENIED;
    const Registry& registry = *current().data;
    if (!registry.exists(path))
        return ERROR_KEY_DELETED;
    const Key* section = registry.find(path);
    const Value* value = section ? section->find_value(name ? name : "") : nullptr;
    if (!value)
        return ERROR_FILE_NOT_FOUND;
    if (type)
        *type = value->type;
    return copy_out(value->data, data, size);
}

LONG RegSetValueExA(HKEY key, const char* name, DWORD /*reserved*/, DWORD type, const BYTE* data,
                    DWORD size) {
    std::lock_guard lock(g_mutex);
    std::string path;
    REGSAM access = 0;
    if (!resolve(key, path, access))
        return ERROR_INVALID_HANDLE;
    if (!(access & KEY_SET_VALUE))
        return ERROR_ACCESS_DENIED;
    if ((!data && size > 0) || has_line_break(name))
        return ERROR_INVALID_PARAMETER;
    Value value;
    value.name = name ? name : "";
    value.type = type;
    if (size > 0)
        value.data.assign(reinterpret_cast<const char*>(data), size);
    return modify([&](Registry& registry, bool& changed) {
        if (!registry.exists(path))
            return ERROR_KEY_DELETED;
        Key* section = nullptr;
        registry.create(path, section);
        Value* old = section->find_value(value.name);
        if (old && old->type == value.type && old->data == value.data)
            return ERROR_SUCCESS;
        changed = true;
        if (old) {
            old->type = value.type;
            old->data = std::move(value.data);
        } else {
            section->values.push_back(std::move(value));
        }
        return ERROR_SUCCESS;
    });
}

LONG RegDeleteValueA(HKEY key, const char* name) {
    std::lock_guard lock(g_mutex);
    std::string path;
    REGSAM access = 0;
    if (!resolve(key, path, access))
        return ERROR_INVALID_HANDLE;
    if (!(access & KEY_SET_VALUE))
        return ERROR_ACCESS_DENIED;
    const std::string wanted = name ? name : "";
    return modify([&](Registry& registry, bool& changed) {
        if (!registry.exists(path))
            return ERROR_KEY_DELETED;
        Key* section = registry.find(path);
        const Value* value = section ? section->find_value(wanted) : nullptr;
        if (!value)
            return ERROR_FILE_NOT_FOUND;
        section->values.erase(section->values.begin() + (value - section->values.data()));
        changed = true;
        return ERROR_SUCCESS;
    });
}

LONG RegDeleteKeyExA(HKEY key, const char* sub_key, REGSAM /*desired*/, DWORD /*reserved*/) {
    std::lock_guard lock(g_mutex);
    if (!sub_key)
        return ERROR_INVALID_PARAMETER;
    std::string path;
    if (const LONG found = key_path(key, sub_key, path); found != ERROR_SUCCESS)
        return found;
    if (path.find('\\') == std::string::npos)
        return ERROR_ACCESS_DENIED; // a root can't go
    return modify([&](Registry& registry, bool& changed) {
        if (!registry.exists(path))
            return ERROR_FILE_NOT_FOUND;
        if (registry.has_sub_keys(path))
            return ERROR_ACCESS_DENIED;
        registry.remove(path);
        changed = true;
        return ERROR_SUCCESS;
    });
}

LONG RegEnumValueA(HKEY key, DWORD index, char* name, DWORD* name_size, DWORD* /*reserved*/,
                   DWORD* type, BYTE* data, DWORD* data_size) {
    std::lock_guard lock(g_mutex);
    std::string path;
    REGSAM access = 0;
    if (!resolve(key, path, access))
        return ERROR_INVALID_HANDLE;
    if (!(access & KEY_QUERY_VALUE))
        return ERROR_ACCESS_DENIED;
    const Registry& registry = *current().data;
    if (!registry.exists(path))
        return ERROR_KEY_DELETED;
    const Key* section = registry.find(path);
    if (!section || index >= section->values.size())
        return ERROR_NO_MORE_ITEMS;
    const Value& value = section->values[index];
    if (const LONG copied = copy_name(value.name, name, name_size); copied != ERROR_SUCCESS)
        return copied;
    if (type)
        *type = value.type;
    return copy_out(value.data, data, data_size);
}

LONG RegEnumKeyExA(HKEY key, DWORD index, char* name, DWORD* name_size, DWORD* /*reserved*/,
                   char* key_class, DWORD* class_size, void* /*last_write_time*/) {
    std::lock_guard lock(g_mutex);
    std::string path;
    REGSAM access = 0;
    if (!resolve(key, path, access))
        return ERROR_INVALID_HANDLE;
    if (!(access & KEY_ENUMERATE_SUB_KEYS))
        return ERROR_ACCESS_DENIED;
    const Registry& registry = *current().data;
    if (!registry.exists(path))
        return ERROR_KEY_DELETED;
    const std::vector<std::string> names = registry.sub_keys(path);
    if (index >= names.size())
        return ERROR_NO_MORE_ITEMS;
    if (const LONG copied = copy_name(names[index], name, name_size); copied != ERROR_SUCCESS)
        return copied;
    if (key_class && class_size && *class_size > 0)
        key_class[0] = '\0';
    if (class_size)
        *class_size = 0;
    return ERROR_SUCCESS;
}

LONG RegQueryInfoKeyA(HKEY key, char* key_class, DWORD* class_size, DWORD* /*reserved*/,
                      DWORD* sub_keys, DWORD* max_sub_key_len, DWORD* max_class_len, DWORD* values,
                      DWORD* max_value_name_len, DWORD* max_value_len, DWORD* security_descriptor,
                      void* /*last_write_time*/) {
    std::lock_guard lock(g_mutex);
    std::string path;
    REGSAM access = 0;
    if (!resolve(key, path, access))
        return ERROR_INVALID_HANDLE;
    if (!(access & KEY_QUERY_VALUE))
        return ERROR_ACCESS_DENIED;
    const Registry& registry = *current().data;
    if (!registry.exists(path))
        return ERROR_KEY_DELETED;
    const std::vector<std::string> names = registry.sub_keys(path);
    DWORD longest_key = 0;
    for (const std::string& sub : names)
        longest_key = std::max(longest_key, static_cast<DWORD>(sub.size()));
    DWORD count = 0;
    DWORD longest_name = 0;
    DWORD longest_data = 0;
    if (const Key* section = registry.find(path)) {
        count = static_cast<DWORD>(section->values.size());
        for (const Value& value : section->values) {
            longest_name = std::max(longest_name, static_cast<DWORD>(value.name.size()));
            longest_data = std::max(longest_data, static_cast<DWORD>(value.data.size()));
        }
    }
    if (key_class && class_size && *class_size > 0)
        key_class[0] = '\0';
    if (class_size)
        *class_size = 0;
    if (sub_keys)
        *sub_keys = static_cast<DWORD>(names.size());
    if (max_sub_key_len)
        *max_sub_key_len = longest_key;
    if (max_class_len)
        *max_class_len = 0;
    if (values)
        *values = count;
    if (max_value_name_len)
        *max_value_name_len = longest_name;
    if (max_value_len)
        *max_value_len = longest_data;
    if (security_descriptor)
        *security_descriptor = 0;
    return ERROR_SUCCESS;
}

} // namespace korv::platform
