#include "kplatform_version.h"

#include "kplatform_file.h"
#include "kplatform_module.h"
#include "kplatform_paths.h"
#include "kplatform_version_table.h"

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <vector>

namespace korv::platform {
namespace {

// The block: magic, total size, fixed info, translation, string count, then
// the strings as "name\0value\0" pairs.
constexpr char kMagic[4] = {'K', 'V', 'E', 'R'};
constexpr std::size_t kSizeAt = 4;
constexpr std::size_t kFixedAt = 8;
constexpr std::size_t kTranslationAt = kFixedAt + sizeof(VS_FIXEDFILEINFO);
constexpr std::size_t kCountAt = kTranslationAt + 4;
constexpr std::size_t kStringsAt = kCountAt + 4;

// US English, Unicode code page: what resource compilers write by default.
constexpr WORD kLanguage = 0x0409;
constexpr WORD kCodePage = 0x04b0;

const std::vector<char>& own_block() {
    static const std::vector<char> block = [] {
        const std::pair<const char*, const char*> strings[] = {
            {"CompanyName", "Korv"},
            {"FileDescription", "RigCfg machine configuration"},
            {"FileVersion", KORV_VERSION_TEXT},
            {"InternalName", "RigCfg"},
            {"LegalCopyright", "Copyright (C) Korv"},
            {"OriginalFilename", "RigCfg.exe"},
            {"ProductName", KORV_VERSION_PRODUCT_NAME},
            {"ProductVersion", KORV_VERSION_TEXT},
        };
        std::vector<char> out(kStringsAt);
        std::memcpy(out.data(), kMagic, sizeof kMagic);
        VS_FIXEDFILEINFO fixed{};
        fixed.dwSignature = 0xFEEF04BD;
        fixed.dwStrucVersion = 0x00010000;
        fixed.dwFileVersionMS = (DWORD{KORV_VERSION_MAJOR} << 16) | DWORD{KORV_VERSION_MINOR};
        fixed.dwFileVersionLS = DWORD{KORV_VERSION_PATCH} << 16;
        fixed.dwProductVersionMS = fixed.dwFileVersionMS;
        fixed.dwProductVersionLS = fixed.dwFileVersionLS;
        fixed.dwFileFlagsMask = 0x3F;
        fixed.dwFileOS = 0x00040004; // VOS_NT_WINDOWS32
        fixed.dwFileType = 1;        // VFT_APP
        std::memcpy(out.data() + kFixedAt, &fixed, sizeof fixed);
        const WORD translation[2] = {kLanguage, kCodePage};
        std::memcpy(out.data() + kTranslationAt, translation, sizeof translation);
        const auto count = static_cast<DWORD>(std::size(strings));
        std::memcpy(out.data() + kCountAt, &count, sizeof count);
        for (const auto& [name, value] : strings) {
            out.insert(out.end(), name, name + std::strlen(name) + 1);
            out.insert(out.end(), value, value + std::strlen(value) + 1);
        }
        const auto size = static_cast<DWORD>(out.size());
        std::memcpy(out.data() + kSizeAt, &size, sizeof size);
        return out;
    }();
    return block;
}

bool equal_ignoring_case(std::string_view a, std::string_view b) {
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const auto fold = [](char c) {
            return (c >= 'A' && c <= 'Z') ? static_cast<char>(c | 0x20) : c;
        };
        if (fold(a[i]) != fold(b[i]))
            return false;
    }
    return true;
}

std::string_view without_exe(std::string_view name) {
    if (name.size() > 4 && equal_ignoring_case(name.substr(name.size() - 4), ".exe"))
        name.remove_suffix(4);
    return name;
}

std::string_view base_name(std::string_view path) {
    const std::size_t slash = path.find_last_of("\\/");
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

bool same_file(const std::string& native, const struct stat& exe) {
    struct stat st;
    return ::stat(native.c_str(), &st) == 0 && st.st_dev == exe.st_dev && st.st_ino == exe.st_ino;
}

// True if `file` names the running executable; else last_error() tells
// whether it is missing (ENOENT) or just another file (ENODATA).
bool names_running_executable(const char* file) {
    set_last_error(ENOENT);
    if (!file || !*file)
        return false;
    const std::string exe_path = executable_path();
    struct stat exe;
    if (exe_path.empty() || ::stat(exe_path.c_str(), &exe) != 0)
        return false;
    const std::string_view name(file);
    if (name.find_first_of("\\/") == std::string_view::npos) {
        if (equal_ignoring_case(without_exe(name), without_exe(base_name(exe_path))))
            return true;
    } else {
        // Programs here have no ".exe", so a name with one also means the name without it.
        const std::string native = native_path(name);
        if (same_file(native, exe) || same_file(native_path(without_exe(name)), exe))
            return true;
        struct stat st;
        if (::stat(native.c_str(), &st) != 0)
            return false;
    }
    set_last_error(ENODATA);
    return false;
}

} // namespace

DWORD GetFileVersionInfoSizeA(const char* file, DWORD* handle) {
    if (handle)
        *handle = 0;
    if (!names_running_executable(file))
        return 0;
    return static_cast<DWORD>(own_block().size());
}

BOOL GetFileVersionInfoA(const char* file, DWORD /*handle*/, DWORD size, void* data) {
    if (!data || !names_running_executable(file))
        return 0;
    const std::vector<char>& block = own_block();
    if (size < block.size()) {
        set_last_error(ENOBUFS);
        return 0;
    }
    std::memcpy(data, block.data(), block.size());
    return 1;
}

BOOL VerQueryValueA(const void* block, const char* sub_block, void** buffer, unsigned* size) {
    if (size)
        *size = 0;
    if (!block || !sub_block || !buffer)
        return 0;
    const char* bytes = static_cast<const char*>(block);
    if (std::memcmp(bytes, kMagic, sizeof kMagic) != 0)
        return 0;
    DWORD total = 0;
    std::memcpy(&total, bytes + kSizeAt, sizeof total);

    std::vector<std::string_view> parts;
    for (std::string_view rest(sub_block); !rest.empty();) {
        const std::size_t slash = rest.find('\\');
        if (slash != 0)
            parts.push_back(rest.substr(0, slash));
        if (slash == std::string_view::npos)
            break;
        rest.remove_prefix(slash + 1);
    }
    auto answer = [&](std::size_t at, std::size_t length) {
        *buffer = const_cast<char*>(bytes + at);
        if (size)
            *size = static_cast<unsigned>(length);
        return 1;
    };
    if (parts.empty())
        return answer(kFixedAt, sizeof(VS_FIXEDFILEINFO));
    if (parts.size() == 2 && equal_ignoring_case(parts[0], "VarFileInfo") &&
        equal_ignoring_case(parts[1], "Translation"))
        return answer(kTranslationAt, 4);
    if (parts.size() != 3 || !equal_ignoring_case(parts[0], "StringFileInfo"))
        return 0;
    WORD translation[2];
    std::memcpy(translation, bytes + kTranslationAt, sizeof translation);
    char language[16];
    std::snprintf(language, sizeof language, "%04x%04x", translation[0], translation[1]);
    if (!equal_ignoring_case(parts[1], language))
        return 0;
    DWORD count = 0;
    std::memcpy(&count, bytes + kCountAt, sizeof count);
    std::size_t at = kStringsAt;
    for (DWORD i = 0; i < count && at < total; ++i) {
        const std::string_view name(bytes + at);
        const std::size_t value_at = at + name.size() + 1;
        const std::string_view value(bytes + value_at);
        if (equal_ignoring_case(name, parts[2]))
            return answer(value_at, value.size() + 1);
        at = value_at + value.size() + 1;
    }
    return 0;
}

} // namespace korv::platform
