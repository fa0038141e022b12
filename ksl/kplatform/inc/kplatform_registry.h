// The registry calls the foundation uses, with the signatures and answers of
// their Win32 namesakes; on Windows they are the real calls on the real
// registry, where the 32-bit view flag picks the 32-bit view.
//
// On POSIX every root lives in one text file, $KORV_ROOT/registry.reg, in the
// registry editor's export format ("Windows Registry Editor Version 5.00" or
// "REGEDIT4"). Key paths and value names compare ignoring ASCII case. A
// missing file is an empty registry. A write rewrites the whole file through
// a temporary file and a rename, under an advisory lock on
// $KORV_ROOT/registry.reg.lock, so readers in other processes see the whole
// old or the whole new file. A malformed file reads as empty, refuses writes
// with ERROR_BADDB and is never rewritten; registry_file_problem() tells what
// is wrong with it. The 32-bit view flag is accepted and has no meaning here.
#pragma once

#include "kplatform_winerror.h"

#include <string>

namespace korv::platform {

struct HKEY__;
using HKEY = HKEY__*;
using REGSAM = DWORD;

// The predefined roots, with the values Win32 gives them.
inline HKEY const HKEY_CLASSES_ROOT = reinterpret_cast<HKEY>(std::uintptr_t{0x80000000});
inline HKEY const HKEY_CURRENT_USER = reinterpret_cast<HKEY>(std::uintptr_t{0x80000001});
inline HKEY const HKEY_LOCAL_MACHINE = reinterpret_cast<HKEY>(std::uintptr_t{0x80000002});
inline HKEY const HKEY_USERS = reinterpret_cast<HKEY>(std::uintptr_t{0x80000003});
inline HKEY const HKEY_CURRENT_CONFIG = reinterpret_cast<HKEY>(std::uintptr_t{0x80000005});

// Value types.
inline constexpr DWORD REG_NONE = 0;
inline constexpr DWORD REG_SZ = 1;
inline constexpr DWORD REG_EXPAND_SZ = 2;
inline constexpr DWORD REG_BINARY = 3;
inline constexpr DWORD REG_DWORD = 4;
inline constexpr DWORD REG_DWORD_BIG_ENDIAN = 5;
inline constexpr DWORD REG_LINK = 6;
inline constexpr DWORD REG_MULTI_SZ = 7;
inline constexpr DWORD REG_QWORD = 11;

// Access rights. A handle may do only what it was opened for.
inline constexpr REGSAM KEY_QUERY_VALUE = 0x0001;
inline constexpr REGSAM KEY_SET_VALUE = 0x0002;
inline constexpr REGSAM KEY_CREATE_SUB_KEY = 0x0004;
inline constexpr REGSAM KEY_ENUMERATE_SUB_KEYS = 0x0008;
inline constexpr REGSAM KEY_NOTIFY = 0x0010;
inline constexpr REGSAM KEY_WOW64_64KEY = 0x0100;
inline constexpr REGSAM KEY_WOW64_32KEY = 0x0200;
inline constexpr REGSAM KEY_READ = 0x20019;
inline constexpr REGSAM KEY_WRITE = 0x20006;
inline constexpr REGSAM KEY_ALL_ACCESS = 0xF003F;

// Dispositions of RegCreateKeyExA.
inline constexpr DWORD REG_CREATED_NEW_KEY = 1;
inline constexpr DWORD REG_OPENED_EXISTING_KEY = 2;

LONG RegOpenKeyExA(HKEY key, const char* sub_key, DWORD options, REGSAM desired, HKEY* result);
// Creates the key and every missing key above it. `key_class` and `security`
// are ignored.
LONG RegCreateKeyExA(HKEY key, const char* sub_key, DWORD reserved, char* key_class, DWORD options,
                     REGSAM desired, const void* security, HKEY* result, DWORD* disposition);
// The old form: all access, no disposition.
LONG RegCreateKeyA(HKEY key, const char* sub_key, HKEY* result);
LONG RegCloseKey(HKEY key);

// A null or empty name is the key's default value. With `data` null only type
// and size are given; a `size` too small gives ERROR_MORE_DATA and the size
// needed. Strings come back as stored, with their terminator if they have one.
LONG RegQueryValueExA(HKEY key, const char* name, DWORD* reserved, DWORD* type, BYTE* data,
                      DWORD* size);
LONG RegSetValueExA(HKEY key, const char* name, DWORD reserved, DWORD type, const BYTE* data,
                    DWORD size);
LONG RegDeleteValueA(HKEY key, const char* name);
// A key that still has sub-keys gives ERROR_ACCESS_DENIED, as on Windows.
LONG RegDeleteKeyExA(HKEY key, const char* sub_key, REGSAM desired, DWORD reserved);

// `name_size` counts characters with the terminator on entry and without it
// on return. `last_write_time` is left alone.
LONG RegEnumValueA(HKEY key, DWORD index, char* name, DWORD* name_size, DWORD* reserved,
                   DWORD* type, BYTE* data, DWORD* data_size);
LONG RegEnumKeyExA(HKEY key, DWORD index, char* name, DWORD* name_size, DWORD* reserved,
                   char* key_class, DWORD* class_size, void* last_write_time);
LONG RegQueryInfoKeyA(HKEY key, char* key_class, DWORD* class_size, DWORD* reserved,
                      DWORD* sub_keys, DWORD* max_sub_key_len, DWORD* max_class_len, DWORD* values,
                      DWORD* max_value_name_len, DWORD* max_value_len, DWORD* security_descriptor,
                      void* last_write_time);

// The host path of the registry file: $KORV_ROOT/registry.reg; empty on
// Windows, where the registry is the system's.
std::string registry_file_path();

// What is wrong with the registry file, once per state of the file that was
// found malformed. `serial` grows with each such finding and is 0 while none
// was made, so a caller can report each finding once.
struct RegistryFileProblem {
    unsigned long serial = 0;
    std::string path;
    unsigned line = 0; // 1-based; 0 if the problem is with the file as a whole
    std::string reason;
};
// Never a finding on Windows.
RegistryFileProblem registry_file_problem();

} // namespace korv::platform
