#include "kplatform_registry.h"

#include "kplatform_regstore.h"

#include <algorithm>
#include <cstring>
#include <mutex>
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

std::unordered_set<HKEY> g_handles; // guarded by regstore::mutex()

const std::pair<HKEY, const char*> kRoots[] = {{HKEY_CLASSES_ROOT, "HKEY_CLASSES_ROOT"},
                                               {HKEY_CURRENT_USER, "HKEY_CURRENT_USER"},
                                               {HKEY_LOCAL_MACHINE, "HKEY_LOCAL_MACHINE"},
                                               {HKEY_USERS, "HKEY_USERS"},
                                               {HKEY_CURRENT_CONFIG, "HKEY_CURRENT_CONFIG"}};

const char* root_name(HKEY key) {
    for (const auto& root : kRoots)
        if (root.first == key)
            return root.second;
    return nullptr;
}

// The path and rights behind a handle; false for a handle that isn't open.
bool resolve(HKEY key, std::string& path, REGSAM& access) {
    if (const char* root = root_name(key)) {
        path = root;
        access = KEY_ALL_ACCESS;
        return true;
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

HKEY new_handle(std::string path, REGSAM access) {
    HKEY handle = new HKEY__{std::move(path), access};
    g_handles.insert(handle);
    return handle;
}

// How a call treats the key it works on.
enum class Presence {
    Opened,    // the key behind the handle; ERROR_KEY_DELETED once it has gone
    Named,     // a key named below the handle; ERROR_FILE_NOT_FOUND if missing
    Creatable, // a key named below the handle, made if missing: no line break in its name
};

// What a call needs: the rights its handle must hold and how it treats the key.
struct Access {
    REGSAM rights;
    Presence presence;
};

// One call on a key. Holds the registry mutex while it lives and checks, in
// this order, that the handle is open, that it holds the rights, that a name
// to be created has no line break, and that the name below the handle is
// well formed; status() gives the first rule broken. read() and change()
// then check that the key is there.
class KeyCall {
public:
    KeyCall(HKEY key, const char* sub_key, Access access)
        : m_lock(regstore::mutex()), m_presence(access.presence) {
        std::string base;
        REGSAM held = 0;
        if (!resolve(key, base, held))
            m_status = ERROR_INVALID_HANDLE;
        else if ((held & access.rights) != access.rights)
            m_status = ERROR_ACCESS_DENIED;
        else if (m_presence == Presence::Creatable && has_line_break(sub_key))
            m_status = ERROR_INVALID_PARAMETER;
        else
            m_status = join(base, sub_key, m_path);
    }

    LONG status() const { return m_status; }
    const std::string& path() const { return m_path; }

    // Whether the key is in the registry as the file holds it now.
    bool present() const { return regstore::current()->exists(m_path); }

    // Runs `read` on the registry as the file holds it now.
    template <typename Read> LONG read(Read body) const {
        if (m_status != ERROR_SUCCESS)
            return m_status;
        const auto registry = regstore::current();
        if (!there(*registry))
            return missing();
        return body(*registry);
    }

    // Runs `change` on a copy of the registry taken under the file lock and
    // writes the copy back if `change` says it changed anything.
    template <typename Change> LONG change(Change body) const {
        if (m_status != ERROR_SUCCESS)
            return m_status;
        return regstore::modify([&](Registry& registry, bool& changed) -> LONG {
            if (!there(registry))
                return missing();
            return body(registry, changed);
        });
    }

private:
    bool there(const Registry& registry) const {
        return m_presence == Presence::Creatable || registry.exists(m_path);
    }
    LONG missing() const {
        return m_presence == Presence::Opened ? ERROR_KEY_DELETED : ERROR_FILE_NOT_FOUND;
    }

    std::lock_guard<std::mutex> m_lock;
    Presence m_presence;
    LONG m_status = ERROR_SUCCESS;
    std::string m_path;
};

constexpr Access kQuery{KEY_QUERY_VALUE, Presence::Opened};
constexpr Access kEnumerate{KEY_ENUMERATE_SUB_KEYS, Presence::Opened};
constexpr Access kSet{KEY_SET_VALUE, Presence::Opened};
constexpr Access kByName{0, Presence::Named};
constexpr Access kCreate{0, Presence::Creatable};

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

// Keys carry no class here: an empty one.
void no_class(char* key_class, DWORD* class_size) {
    if (key_class && class_size && *class_size > 0)
        key_class[0] = '\0';
    if (class_size)
        *class_size = 0;
}

} // namespace

LONG RegOpenKeyExA(HKEY key, const char* sub_key, DWORD /*options*/, REGSAM desired, HKEY* result) {
    if (!result)
        return ERROR_INVALID_PARAMETER;
    *result = nullptr;
    const KeyCall call(key, sub_key, kByName);
    return call.read([&](const Registry&) {
        *result = new_handle(call.path(), desired);
        return ERROR_SUCCESS;
    });
}

LONG RegCreateKeyExA(HKEY key, const char* sub_key, DWORD /*reserved*/, char* /*key_class*/,
                     DWORD /*options*/, REGSAM desired, const void* /*security*/, HKEY* result,
                     DWORD* disposition) {
    if (!result || !sub_key)
        return ERROR_INVALID_PARAMETER;
    *result = nullptr;
    const KeyCall call(key, sub_key, kCreate);
    if (call.status() != ERROR_SUCCESS)
        return call.status();
    bool created = false;
    if (!call.present()) {
        const LONG made = call.change([&](Registry& registry, bool& changed) {
            Key* made_key = nullptr;
            changed = registry.create(call.path(), made_key);
            created = changed;
            return ERROR_SUCCESS;
        });
        if (made != ERROR_SUCCESS)
            return made;
    }
    if (disposition)
        *disposition = created ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
    *result = new_handle(call.path(), desired);
    return ERROR_SUCCESS;
}

LONG RegCreateKeyA(HKEY key, const char* sub_key, HKEY* result) {
    return RegCreateKeyExA(key, sub_key ? sub_key : "", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                           result, nullptr);
}

LONG RegCloseKey(HKEY key) {
    std::lock_guard lock(regstore::mutex());
    if (root_name(key))
        return ERROR_SUCCESS;
    if (!key || g_handles.erase(key) == 0)
        return ERROR_INVALID_HANDLE;
    delete key;
    return ERROR_SUCCESS;
}

LONG RegQueryValueExA(HKEY key, const char* name, DWORD* /*reserved*/, DWORD* type, BYTE* data,
                      DWORD* size) {
    const KeyCall call(key, nullptr, kQuery);
    return call.read([&](const Registry& registry) {
        const Key* section = registry.find(call.path());
        const Value* value = section ? section->find_value(name ? name : "") : nullptr;
        if (!value)
            return ERROR_FILE_NOT_FOUND;
        if (type)
            *type = value->type;
        return copy_out(value->data, data, size);
    });
}

LONG RegSetValueExA(HKEY key, const char* name, DWORD /*reserved*/, DWORD type, const BYTE* data,
                    DWORD size) {
    const KeyCall call(key, nullptr, kSet);
    if (call.status() != ERROR_SUCCESS)
        return call.status();
    if ((!data && size > 0) || has_line_break(name))
        return ERROR_INVALID_PARAMETER;
    Value value;
    value.name = name ? name : "";
    value.type = type;
    if (size > 0)
        value.data.assign(reinterpret_cast<const char*>(data), size);
    return call.change([&](Registry& registry, bool& changed) {
        Key* section = nullptr;
        registry.create(call.path(), section);
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
    const KeyCall call(key, nullptr, kSet);
    const std::string wanted = name ? name : "";
    return call.change([&](Registry& registry, bool& changed) {
        Key* section = registry.find(call.path());
        const Value* value = section ? section->find_value(wanted) : nullptr;
        if (!value)
            return ERROR_FILE_NOT_FOUND;
        section->values.erase(section->values.begin() + (value - section->values.data()));
        changed = true;
        return ERROR_SUCCESS;
    });
}

LONG RegDeleteKeyExA(HKEY key, const char* sub_key, REGSAM /*desired*/, DWORD /*reserved*/) {
    if (!sub_key)
        return ERROR_INVALID_PARAMETER;
    const KeyCall call(key, sub_key, kByName);
    if (call.status() != ERROR_SUCCESS)
        return call.status();
    if (call.path().find('\\') == std::string::npos)
        return ERROR_ACCESS_DENIED; // a root can't go
    return call.change([&](Registry& registry, bool& changed) {
        if (registry.has_sub_keys(call.path()))
            return ERROR_ACCESS_DENIED;
        registry.remove(call.path());
        changed = true;
        return ERROR_SUCCESS;
    });
}

LONG RegEnumValueA(HKEY key, DWORD index, char* name, DWORD* name_size, DWORD* /*reserved*/,
                   DWORD* type, BYTE* data, DWORD* data_size) {
    const KeyCall call(key, nullptr, kQuery);
    return call.read([&](const Registry& registry) {
        const Key* section = registry.find(call.path());
        if (!section || index >= section->values.size())
            return ERROR_NO_MORE_ITEMS;
        const Value& value = section->values[index];
        if (const LONG copied = copy_name(value.name, name, name_size); copied != ERROR_SUCCESS)
            return copied;
        if (type)
            *type = value.type;
        return copy_out(value.data, data, data_size);
    });
}

LONG RegEnumKeyExA(HKEY key, DWORD index, char* name, DWORD* name_size, DWORD* /*reserved*/,
                   char* key_class, DWORD* class_size, void* /*last_write_time*/) {
    const KeyCall call(key, nullptr, kEnumerate);
    return call.read([&](const Registry& registry) {
        const std::vector<std::string> names = registry.sub_keys(call.path());
        if (index >= names.size())
            return ERROR_NO_MORE_ITEMS;
        if (const LONG copied = copy_name(names[index], name, name_size); copied != ERROR_SUCCESS)
            return copied;
        no_class(key_class, class_size);
        return ERROR_SUCCESS;
    });
}

LONG RegQueryInfoKeyA(HKEY key, char* key_class, DWORD* class_size, DWORD* /*reserved*/,
                      DWORD* sub_keys, DWORD* max_sub_key_len, DWORD* max_class_len, DWORD* values,
                      DWORD* max_value_name_len, DWORD* max_value_len, DWORD* security_descriptor,
                      void* /*last_write_time*/) {
    const KeyCall call(key, nullptr, kQuery);
    return call.read([&](const Registry& registry) {
        const std::vector<std::string> names = registry.sub_keys(call.path());
        DWORD longest_key = 0;
        for (const std::string& sub : names)
            longest_key = std::max(longest_key, static_cast<DWORD>(sub.size()));
        DWORD count = 0;
        DWORD longest_name = 0;
        DWORD longest_data = 0;
        if (const Key* section = registry.find(call.path())) {
            count = static_cast<DWORD>(section->values.size());
            for (const Value& value : section->values) {
                longest_name = std::max(longest_name, static_cast<DWORD>(value.name.size()));
                longest_data = std::max(longest_data, static_cast<DWORD>(value.data.size()));
            }
        }
        no_class(key_class, class_size);
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
    });
}

} // namespace korv::platform
