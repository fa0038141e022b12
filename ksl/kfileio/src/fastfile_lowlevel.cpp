#include "fastfile_lowlevel.h"

#include "errtrace.h"
#include "fastfile.h"

#include <cstdint>

namespace korv::detail {
namespace {

// The most one platform read or write takes.
constexpr std::size_t kMaxPerCall = 0xFFFFFFFFu;

} // namespace

bool read64(platform::FileHandle file, void* buffer, std::size_t size, std::size_t& count) {
    count = 0;
    auto* target = static_cast<char*>(buffer);
    do {
        const std::size_t want = size - count < kMaxPerCall ? size - count : kMaxPerCall;
        std::uint32_t got = 0;
        if (!platform::read_file(file, target + count, static_cast<std::uint32_t>(want), got)) {
            KERRTRACE("%s(): ReadFile() failed: %u", "read64", platform::last_error());
            return false;
        }
        count += got;
        // read_file stops short only at the end of the file: asking again
        // would cost a call that reads nothing.
        if (got < want)
            break;
    } while (count < size);
    return true;
}

bool write64(platform::FileHandle file, const void* data, std::size_t size, std::size_t& count) {
    count = 0;
    const auto* source = static_cast<const char*>(data);
    do {
        const std::size_t want = size - count < kMaxPerCall ? size - count : kMaxPerCall;
        std::uint32_t put = 0;
        if (!platform::write_file(file, source + count, static_cast<std::uint32_t>(want), put)) {
            KERRTRACE("%s(): WriteFile() failed: %u", "write64", platform::last_error());
            return false;
        }
        count += put;
        if (put == 0)
            break;
    } while (count < size);
    return true;
}

bool openfile(const std::string& path, platform::FileHandle& file) {
    file = platform::open_file(path, platform::Access::Read, platform::Disposition::OpenExisting);
    if (file == platform::INVALID_FILE_HANDLE) {
        KERRTRACE("openfile(): CreateFile(\"%s\") failed: %d", path.c_str(),
                  static_cast<int>(platform::last_error()));
        return false;
    }
    return true;
}

platform::FileHandle openwritefile(const std::string& path, int mode) {
    platform::Access access = platform::Access::Write;
    platform::Disposition disposition;
    switch (mode & ~(KFF_FLUSH | KFF_ATOMIC)) {
    case KFF_CREATE_NEW:
        disposition = platform::Disposition::CreateNew;
        break;
    case KFF_APPEND:
        access = platform::Access::Append;
        disposition = platform::Disposition::OpenAlways;
        break;
    case KFF_REPLACE:
        disposition = platform::Disposition::CreateAlways;
        break;
    default:
        KERRTRACE("openwritefile(): unknown mode %d for %s", mode, path.c_str());
        return platform::INVALID_FILE_HANDLE;
    }
    const platform::FileHandle file =
        platform::open_file(path, access, disposition, (mode & KFF_FLUSH) != 0);
    if (file == platform::INVALID_FILE_HANDLE)
        KERRTRACE("%s(): CreateFile(%s, ...) failed: %u", "openwritefile", path.c_str(),
                  platform::last_error());
    return file;
}

} // namespace korv::detail
