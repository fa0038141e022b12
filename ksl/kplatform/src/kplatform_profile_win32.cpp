#include "kplatform_profile.h"

#include <windows.h>

namespace korv::platform {
namespace {

// The system resolves a bare name against the Windows folder; callers mean
// the current directory, as everywhere else.
std::string full_path(const char* file) {
    if (!file)
        return {};
    char buffer[MAX_PATH * 4];
    const DWORD length = ::GetFullPathNameA(file, sizeof buffer, buffer, nullptr);
    return length > 0 && length < sizeof buffer ? std::string(buffer, length) : std::string(file);
}

} // namespace

DWORD GetPrivateProfileStringA(const char* section, const char* key, const char* fallback,
                               char* buffer, DWORD size, const char* file) {
    const std::string path = full_path(file);
    return ::GetPrivateProfileStringA(section, key, fallback, buffer, size,
                                      file ? path.c_str() : nullptr);
}

BOOL WritePrivateProfileStringA(const char* section, const char* key, const char* value,
                                const char* file) {
    const std::string path = full_path(file);
    return ::WritePrivateProfileStringA(section, key, value, file ? path.c_str() : nullptr);
}

} // namespace korv::platform
