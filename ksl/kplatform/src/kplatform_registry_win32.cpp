#include "kplatform_registry.h"

#include <windows.h>

// The real registry. Handles and the predefined roots have the same values on
// both sides; only the integer types of the sizes differ (DWORD is unsigned
// long here), so every in-out size goes through a local of the system's type.
namespace korv::platform {
namespace {

::HKEY sys(HKEY key) {
    return reinterpret_cast<::HKEY>(key);
}

// An optional in-out DWORD of ours as the system's.
class Size {
public:
    explicit Size(DWORD* ours) : m_ours(ours), m_value(ours ? *ours : 0) {}
    ~Size() {
        if (m_ours)
            *m_ours = static_cast<DWORD>(m_value);
    }
    Size(const Size&) = delete;
    Size& operator=(const Size&) = delete;
    ::DWORD* get() { return m_ours ? &m_value : nullptr; }

private:
    DWORD* m_ours;
    ::DWORD m_value;
};

} // namespace

LONG RegOpenKeyExA(HKEY key, const char* sub_key, DWORD options, REGSAM desired, HKEY* result) {
    ::HKEY opened = nullptr;
    const LONG code = ::RegOpenKeyExA(sys(key), sub_key, options, desired, &opened);
    if (result)
        *result = reinterpret_cast<HKEY>(opened);
    return code;
}

LONG RegCreateKeyExA(HKEY key, const char* sub_key, DWORD reserved, char* key_class, DWORD options,
                     REGSAM desired, const void* security, HKEY* result, DWORD* disposition) {
    ::HKEY created = nullptr;
    Size how(disposition);
    const LONG code = ::RegCreateKeyExA(
        sys(key), sub_key, reserved, key_class, options, desired,
        static_cast<SECURITY_ATTRIBUTES*>(const_cast<void*>(security)), &created, how.get());
    if (result)
        *result = reinterpret_cast<HKEY>(created);
    return code;
}

LONG RegCreateKeyA(HKEY key, const char* sub_key, HKEY* result) {
    ::HKEY created = nullptr;
    const LONG code = ::RegCreateKeyA(sys(key), sub_key, &created);
    if (result)
        *result = reinterpret_cast<HKEY>(created);
    return code;
}

LONG RegCloseKey(HKEY key) {
    return ::RegCloseKey(sys(key));
}

LONG RegQueryValueExA(HKEY key, const char* name, DWORD* reserved, DWORD* type, BYTE* data,
                      DWORD* size) {
    Size kind(type);
    Size length(size);
    return ::RegQueryValueExA(sys(key), name, reinterpret_cast<::DWORD*>(reserved), kind.get(),
                              data, length.get());
}

LONG RegSetValueExA(HKEY key, const char* name, DWORD reserved, DWORD type, const BYTE* data,
                    DWORD size) {
    return ::RegSetValueExA(sys(key), name, reserved, type, data, size);
}

LONG RegDeleteValueA(HKEY key, const char* name) {
    return ::RegDeleteValueA(sys(key), name);
}

LONG RegDeleteKeyExA(HKEY key, const char* sub_key, REGSAM desired, DWORD reserved) {
    return ::RegDeleteKeyExA(sys(key), sub_key, desired, reserved);
}

LONG RegEnumValueA(HKEY key, DWORD index, char* name, DWORD* name_size, DWORD* reserved,
                   DWORD* type, BYTE* data, DWORD* data_size) {
    Size name_length(name_size);
    Size kind(type);
    Size data_length(data_size);
    return ::RegEnumValueA(sys(key), index, name, name_length.get(),
                           reinterpret_cast<::DWORD*>(reserved), kind.get(), data,
                           data_length.get());
}

LONG RegEnumKeyExA(HKEY key, DWORD index, char* name, DWORD* name_size, DWORD* reserved,
                   char* key_class, DWORD* class_size, void* last_write_time) {
    Size name_length(name_size);
    Size class_length(class_size);
    return ::RegEnumKeyExA(sys(key), index, name, name_length.get(),
                           reinterpret_cast<::DWORD*>(reserved), key_class, class_length.get(),
                           static_cast<FILETIME*>(last_write_time));
}

LONG RegQueryInfoKeyA(HKEY key, char* key_class, DWORD* class_size, DWORD* reserved,
                      DWORD* sub_keys, DWORD* max_sub_key_len, DWORD* max_class_len, DWORD* values,
                      DWORD* max_value_name_len, DWORD* max_value_len, DWORD* security_descriptor,
                      void* last_write_time) {
    Size class_length(class_size);
    Size keys(sub_keys);
    Size key_length(max_sub_key_len);
    Size max_class(max_class_len);
    Size value_count(values);
    Size value_name_length(max_value_name_len);
    Size value_length(max_value_len);
    Size descriptor(security_descriptor);
    return ::RegQueryInfoKeyA(
        sys(key), key_class, class_length.get(), reinterpret_cast<::DWORD*>(reserved), keys.get(),
        key_length.get(), max_class.get(), value_count.get(), value_name_length.get(),
        value_length.get(), descriptor.get(), static_cast<FILETIME*>(last_write_time));
}

// The registry is the system's: there is no file of ours to report on.
std::string registry_file_path() {
    return {};
}

RegistryFileProblem registry_file_problem() {
    return {};
}

} // namespace korv::platform
