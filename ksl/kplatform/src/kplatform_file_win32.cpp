#include "kplatform_file.h"
#include "kplatform_paths.h"

#include <windows.h>

namespace korv::platform {
namespace {

HANDLE handle_of(FileHandle file) {
    return reinterpret_cast<HANDLE>(file);
}

// Only the bits callers ask about; the rest (archive, indexed...) would make
// an ordinary file look unlike one.
std::uint32_t attributes_of(DWORD raw) {
    const std::uint32_t kept = raw & (FILE_ATTR_HIDDEN | FILE_ATTR_SYSTEM | FILE_ATTR_DIRECTORY);
    return kept == 0 ? FILE_ATTR_NORMAL : kept;
}

std::int64_t size_of(DWORD raw, DWORD high, DWORD low) {
    if (raw & FILE_ATTRIBUTE_DIRECTORY)
        return 0;
    return static_cast<std::int64_t>((static_cast<std::uint64_t>(high) << 32) | low);
}

} // namespace

std::uint32_t last_error() {
    return ::GetLastError();
}

void set_last_error(std::uint32_t code) {
    ::SetLastError(code);
}

std::string error_text(std::uint32_t code) {
    char* text = nullptr;
    const DWORD length = ::FormatMessageA(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
        nullptr, code, 0, reinterpret_cast<char*>(&text), 0, nullptr);
    std::string result =
        length && text ? std::string(text, length) : "error " + std::to_string(code);
    ::LocalFree(text);
    while (!result.empty() && (result.back() == '\n' || result.back() == '\r'))
        result.pop_back();
    return result;
}

FileHandle open_file(const std::string& path, Access access, Disposition disposition,
                     bool write_through) {
    DWORD rights = GENERIC_READ;
    DWORD share = FILE_SHARE_READ;
    switch (access) {
    case Access::Read:
        share |= FILE_SHARE_WRITE;
        break;
    case Access::Write:
        rights = GENERIC_WRITE;
        break;
    case Access::Append:
        rights = FILE_APPEND_DATA;
        break;
    }
    DWORD create = OPEN_EXISTING;
    switch (disposition) {
    case Disposition::CreateNew:
        create = CREATE_NEW;
        break;
    case Disposition::OpenAlways:
        create = OPEN_ALWAYS;
        break;
    case Disposition::CreateAlways:
        create = CREATE_ALWAYS;
        break;
    case Disposition::OpenExisting:
        break;
    }
    const DWORD flags = FILE_ATTRIBUTE_NORMAL | (write_through ? FILE_FLAG_WRITE_THROUGH : 0);
    // Without FILE_FLAG_BACKUP_SEMANTICS a directory does not open.
    const HANDLE file = ::CreateFileA(path.c_str(), rights, share, nullptr, create, flags, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return INVALID_FILE_HANDLE;
    return reinterpret_cast<FileHandle>(file);
}

bool read_file(FileHandle file, void* buffer, std::uint32_t size, std::uint32_t& done) {
    done = 0;
    auto* target = static_cast<char*>(buffer);
    while (done < size) {
        DWORD got = 0;
        if (!::ReadFile(handle_of(file), target + done, size - done, &got, nullptr))
            return false;
        if (got == 0)
            break;
        done += got;
    }
    return true;
}

bool write_file(FileHandle file, const void* data, std::uint32_t size, std::uint32_t& done) {
    done = 0;
    const auto* source = static_cast<const char*>(data);
    while (done < size) {
        DWORD put = 0;
        if (!::WriteFile(handle_of(file), source + done, size - done, &put, nullptr))
            return false;
        if (put == 0) {
            ::SetLastError(ERROR_WRITE_FAULT);
            return false;
        }
        done += put;
    }
    return true;
}

bool flush_file(FileHandle file) {
    return ::FlushFileBuffers(handle_of(file)) != 0;
}

bool close_file(FileHandle file) {
    return ::CloseHandle(handle_of(file)) != 0;
}

bool temp_file_name(const std::string& folder, const std::string& prefix, std::string& out) {
    char buffer[MAX_PATH];
    const std::string stem = prefix.substr(0, 3);
    if (!::GetTempFileNameA(folder.empty() ? "." : folder.c_str(), stem.c_str(), 0, buffer))
        return false;
    // The folder as the caller gave it, so that names keep their form.
    const std::string full(buffer);
    const std::size_t slash = full.find_last_of("\\/");
    out = folder;
    if (!out.empty() && !is_path_separator(out.back()))
        out += '\\';
    out += slash == std::string::npos ? full : full.substr(slash + 1);
    return true;
}

bool move_file_replace(const std::string& from, const std::string& to) {
    return ::MoveFileExA(from.c_str(), to.c_str(),
                         MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
}

bool delete_file(const std::string& path) {
    return ::DeleteFileA(path.c_str()) != 0;
}

bool path_exists(const std::string& path) {
    return ::GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool get_file_info(const std::string& path, FileInfo& info) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!::GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data))
        return false;
    info.attributes = attributes_of(data.dwFileAttributes);
    info.size = size_of(data.dwFileAttributes, data.nFileSizeHigh, data.nFileSizeLow);
    return true;
}

bool find_first_file_info(const std::string& pattern, FileInfo& info) {
    WIN32_FIND_DATAA data;
    const HANDLE find = ::FindFirstFileA(pattern.c_str(), &data);
    if (find == INVALID_HANDLE_VALUE)
        return false;
    ::FindClose(find);
    info.attributes = attributes_of(data.dwFileAttributes);
    info.size = size_of(data.dwFileAttributes, data.nFileSizeHigh, data.nFileSizeLow);
    return true;
}

} // namespace korv::platform
