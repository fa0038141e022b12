#include "kplatform_replace.h"

#include <windows.h>

#include <algorithm>

namespace korv::platform {
namespace {

bool fail(ReplaceStep& step, ReplaceStep at, DWORD code) {
    step = at;
    ::SetLastError(code);
    return false;
}

} // namespace

bool replace_file(const std::string& path, const ContentWriter& write, ReplaceFailure* failure) {
    ReplaceFailure unused;
    ReplaceFailure& report = failure ? *failure : unused;
    ReplaceStep& step = report.step;
    std::string& temp = report.temp;
    temp.clear();
    step = ReplaceStep::Target;
    if (path.empty())
        return fail(step, ReplaceStep::Target, ERROR_PATH_NOT_FOUND);
    const DWORD old = ::GetFileAttributesA(path.c_str());
    const bool exists = old != INVALID_FILE_ATTRIBUTES;
    if (!exists && ::GetLastError() != ERROR_FILE_NOT_FOUND)
        return false;
    if (exists && (old & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)))
        return fail(step, ReplaceStep::Target, ERROR_ACCESS_DENIED);

    const std::size_t slash = path.find_last_of("\\/");
    const std::string folder = slash == std::string::npos             ? std::string(".")
                               : slash == 0 || path[slash - 1] == ':' ? path.substr(0, slash + 1)
                                                                      : path.substr(0, slash);
    step = ReplaceStep::Create;
    char name[MAX_PATH];
    if (!::GetTempFileNameA(folder.c_str(), "krv", 0, name))
        return false;
    temp = name;
    // The new file carries the old one's attributes (hidden, archive...).
    if (exists && !::SetFileAttributesA(temp.c_str(), old)) {
        const DWORD code = ::GetLastError();
        ::DeleteFileA(temp.c_str());
        return fail(step, ReplaceStep::Create, code);
    }
    HANDLE file = ::CreateFileA(temp.c_str(), GENERIC_WRITE, 0, nullptr, TRUNCATE_EXISTING,
                                FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        const DWORD code = ::GetLastError();
        ::DeleteFileA(temp.c_str());
        return fail(step, ReplaceStep::Create, code);
    }
    const auto abandon = [&](ReplaceStep at, DWORD code) {
        if (file != INVALID_HANDLE_VALUE)
            ::CloseHandle(file);
        ::DeleteFileA(temp.c_str());
        return fail(step, at, code);
    };
    ::SetLastError(0);
    if (!write(reinterpret_cast<FileHandle>(file)))
        return abandon(ReplaceStep::Write, ::GetLastError());
    if (!::FlushFileBuffers(file))
        return abandon(ReplaceStep::Flush, ::GetLastError());
    const BOOL closed = ::CloseHandle(file);
    file = INVALID_HANDLE_VALUE;
    if (!closed)
        return abandon(ReplaceStep::Close, ::GetLastError());
    if (!::MoveFileExA(temp.c_str(), path.c_str(),
                       MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        return abandon(ReplaceStep::Rename, ::GetLastError());
    step = ReplaceStep::None;
    ::SetLastError(0);
    return true;
}

// The rename above is written through to the disk before it returns: no
// folder waits for a flush here.
void flush_replaced_folders() {}

} // namespace korv::platform
