#include "errtrace.h"
#include "fastfile.h"
#include "fastfile_lowlevel.h"
#include "fastfile_scan.h"
#include "fileops.h"
#include "kplatform_replace.h"

#include <cerrno>
#include <cinttypes>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

namespace korv {
namespace {

struct FreeDeleter {
    void operator()(void* p) const { std::free(p); }
};
using MallocBuffer = std::unique_ptr<char[], FreeDeleter>;

// CR LF and a lone CR become LF, in place; the new length. Runs between
// endings move in one piece.
std::size_t lines_to_lf(char* text, std::size_t size) {
    const char* in = text;
    const char* const end = text + size;
    char* out = text;
    for (;;) {
        const char* stop = detail::find_first_of2(in, end, '\r', '\n');
        const auto run = static_cast<std::size_t>(stop - in);
        if (out != in)
            std::memmove(out, in, run);
        out += run;
        if (stop == end)
            break;
        const char ending = *stop; // `out` may be about to overwrite it
        *out++ = '\n';
        in = stop + 1;
        if (ending == '\r' && in < end && *in == '\n')
            ++in;
    }
    return static_cast<std::size_t>(out - text);
}

// LF and a lone CR become CR LF, from `in` on into `out`, until the input ends
// or `room` is used up; `in` moves past what was taken. The bytes produced. The
// scan never looks further than the room allows, so a long run without line
// endings costs no more than its length.
std::size_t lines_to_crlf(const char*& in, const char* end, char* out, std::size_t room) {
    char* at = out;
    char* const out_end = out + room;
    while (in < end) {
        const auto left = static_cast<std::size_t>(out_end - at);
        const char* limit = static_cast<std::size_t>(end - in) > left ? in + left : end;
        const char* stop = detail::find_first_of2(in, limit, '\r', '\n');
        const auto run = static_cast<std::size_t>(stop - in);
        std::memcpy(at, in, run);
        at += run;
        in = stop;
        if (stop == limit || out_end - at < 2)
            break;
        *at++ = '\r';
        *at++ = '\n';
        ++in;
        if (*stop == '\r' && in < end && *in == '\n')
            ++in;
    }
    return static_cast<std::size_t>(at - out);
}

// The length of `size` bytes once LF and a lone CR have become CR LF.
std::size_t crlf_length(const char* in, std::size_t size) {
    const char* const end = in + size;
    std::size_t length = 0;
    while (in < end) {
        const char* stop = detail::find_first_of2(in, end, '\r', '\n');
        length += static_cast<std::size_t>(stop - in);
        if (stop == end)
            break;
        length += 2;
        in = stop + 1;
        if (*stop == '\r' && in < end && *in == '\n')
            ++in;
    }
    return length;
}

bool resize_nothrow(std::string& text, std::int64_t size) {
    try {
        text.resize(static_cast<std::size_t>(size));
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

// The whole file into `out`, sized to the file first; `caller` names the
// public function in the trace.
std::int64_t read_whole(const char* caller, const std::string& path, std::string& out) {
    const std::int64_t size = file_size(path);
    if (size < 0) {
        KERRTRACE("%s(): file_size(\"%s\") returned %" PRId64, caller, path.c_str(), size);
        out.clear();
        return -1;
    }
    const std::int64_t count =
        resize_nothrow(out, size) ? KFastFile_ReadAtOnce(path, out.data(), out.size()) : -1;
    if (count < 0) {
        KERRTRACE("%s(): KFastFile_ReadAtOnce(\"%s\",..,%" PRId64 ") failed", caller, path.c_str(),
                  size);
        out.clear();
        return -1;
    }
    out.resize(static_cast<std::size_t>(count));
    return count;
}

// Puts the bytes of a file out through `body(file, written)`, which is false
// if a write failed; flushes if asked and the writes went well, and closes in
// any case. False if any step failed.
template <class Body>
bool write_and_close(platform::FileHandle file, Body& body, bool flush, std::size_t& written) {
    bool ok = body(file, written);
    if (!ok)
        KERRTRACE("%s(): write64() failed", "KFastFile_WriteAtOnce");
    if (ok && flush && !platform::flush_file(file)) {
        KERRTRACE("%s(): FlushFileBuffers() failed: %u", "KFastFile_WriteAtOnce",
                  platform::last_error());
        ok = false;
    }
    if (!platform::close_file(file)) {
        KERRTRACE("%s(): CloseHandle() failed: %u", "KFastFile_WriteAtOnce",
                  platform::last_error());
        ok = false;
    }
    return ok;
}

template <class Body>
std::int64_t write_plain(const std::string& path, int mode, bool flush, Body& body) {
    const platform::FileHandle file = detail::openwritefile(path, mode);
    if (file == platform::INVALID_FILE_HANDLE) {
        KERRTRACE("%s(): openwritefile(%s, %d) failed", "KFastFile_WriteAtOnce", path.c_str(),
                  mode);
        return -1;
    }
    std::size_t written = 0;
    return write_and_close(file, body, flush, written) ? static_cast<std::int64_t>(written) : -1;
}

// Replaces the target through a temporary file beside it, flushed and renamed
// over it: readers and a run killed part-way see the whole old file or the
// whole new one, and a failed write leaves the old one in place.
template <class Body> std::int64_t write_replacing(const std::string& path, Body& body) {
    std::size_t written = 0;
    const auto put = [&](platform::FileHandle file) { return body(file, written); };
    platform::ReplaceFailure failed;
    if (platform::replace_file(path, put, &failed))
        return static_cast<std::int64_t>(written);
    const std::uint32_t error = platform::last_error();
    switch (failed.step) {
    case platform::ReplaceStep::Target:
        KERRTRACE("%s(): CreateFile(%s, ...) failed: %u", "openwritefile", path.c_str(), error);
        KERRTRACE("%s(): openwritefile(%s, %d) failed", "KFastFile_WriteAtOnce", path.c_str(),
                  KFF_REPLACE);
        break;
    case platform::ReplaceStep::Create:
        KERRTRACE("KFastFile_WriteAtOnce(): GetTempFileName() failed:%u", error);
        break;
    case platform::ReplaceStep::Write:
        KERRTRACE("%s(): write64() failed", "KFastFile_WriteAtOnce");
        break;
    case platform::ReplaceStep::Flush:
        KERRTRACE("%s(): FlushFileBuffers() failed: %u", "KFastFile_WriteAtOnce", error);
        break;
    case platform::ReplaceStep::Close:
        KERRTRACE("%s(): CloseHandle() failed: %u", "KFastFile_WriteAtOnce", error);
        break;
    case platform::ReplaceStep::Rename:
    case platform::ReplaceStep::None:
        KERRTRACE("KFastFile_WriteAtOnce(): file_rename(%s,%s) failed: %s", failed.temp.c_str(),
                  path.c_str(), platform::error_text(error).c_str());
        break;
    }
    return -1;
}

// The whole-file write by mode: every replace goes through a temporary file
// (the atomic bit asks for nothing more), and always flushes.
template <class Body> std::int64_t write_by_mode(const std::string& path, int mode, Body& body) {
    const bool flush = (mode & KFF_FLUSH) != 0;
    mode &= ~KFF_FLUSH;
    if ((mode & ~KFF_ATOMIC) == KFF_REPLACE)
        return write_replacing(path, body);
    return write_plain(path, mode, flush, body);
}

} // namespace

std::int64_t KFastFile_ReadAtOnce(const std::string& path, char* buffer, std::size_t size) {
    platform::FileHandle file;
    if (!detail::openfile(path, file)) {
        KERRTRACE("KFastFile_ReadAtOnce(): openfile(\"%s\") failed.", path.c_str());
        return -1;
    }
    std::size_t count = 0;
    if (!detail::read64(file, buffer, size, count)) {
        KERRTRACE("KFastFile_ReadAtOnce(): ReadFile(..,%zu,..) failed for \"%s\"", size,
                  path.c_str());
        platform::close_file(file);
        return -1;
    }
    if (!platform::close_file(file)) {
        KERRTRACE("KFastFile_ReadAtOnce(): CloseHandle() failed for \"%s\": %d", path.c_str(),
                  static_cast<int>(platform::last_error()));
        return -1;
    }
    return static_cast<std::int64_t>(count);
}

std::int64_t KFastFile_ReadAtOnce(const std::string& path, std::string& out) {
    return read_whole("KFastFile_ReadAtOnce", path, out);
}

std::int64_t KFastFile_ReadLinesAtOnce(const std::string& path, char* buffer, std::size_t size) {
    const std::int64_t count = KFastFile_ReadAtOnce(path, buffer, size);
    if (count < 0) {
        KERRTRACE("KFastFile_ReadLinesAtOnce(): KFastFile_ReadAtOnce(\"%s\",..,%zu) failed",
                  path.c_str(), size);
        return -1;
    }
    return static_cast<std::int64_t>(lines_to_lf(buffer, static_cast<std::size_t>(count)));
}

std::int64_t KFastFile_ReadLinesAtOnce(const std::string& path, std::string& out) {
    const std::int64_t count = read_whole("KFastFile_ReadLinesAtOnce", path, out);
    if (count < 0)
        return -1;
    out.resize(lines_to_lf(out.data(), out.size()));
    return static_cast<std::int64_t>(out.size());
}

std::int64_t KFastFile_WriteAtOnce(const std::string& path, const void* data, std::size_t size,
                                   int mode) {
    auto body = [data, size](platform::FileHandle file, std::size_t& written) {
        return detail::write64(file, data, size, written);
    };
    return write_by_mode(path, mode, body);
}

std::int64_t KFastFile_WriteLinesAtOnce(const std::string& path, const char* data, std::size_t size,
                                        int mode) {
    // Converted a piece at a time, so that a large text needs no second copy
    // of itself. Every byte becomes two at most.
    constexpr std::size_t kPiece = 64 * 1024;
    const std::size_t room = size > kPiece / 2 ? kPiece : (size ? 2 * size : 2);
    MallocBuffer converted(static_cast<char*>(std::malloc(room)));
    if (!converted) {
        KERRTRACE("KFastFile_WriteLinesAtOnce(): malloc(%zu) failed: %.50s", room,
                  std::strerror(ENOMEM));
        return -1;
    }
    auto body = [&](platform::FileHandle file, std::size_t& written) {
        written = 0;
        const char* in = data;
        const char* const end = data + size;
        while (in < end) {
            const std::size_t length = lines_to_crlf(in, end, converted.get(), room);
            std::size_t put = 0;
            const bool ok = detail::write64(file, converted.get(), length, put);
            written += put;
            if (!ok)
                return false;
        }
        return true;
    };
    const std::int64_t written = write_by_mode(path, mode, body);
    if (written < 0) {
        KERRTRACE("KFastFile_WriteLinesAtOnce(): KFastFile_WriteAtOnce(\"%s\",..,%zu,%d) failed",
                  path.c_str(), crlf_length(data, size), mode);
        return -1;
    }
    return written;
}

bool KFastFile_CopyFile(const std::string& source, const std::string& target, int mode) {
    const std::int64_t size = file_size(source);
    if (size < 0) {
        KERRTRACE("KFastFile_CopyFile(): file_size(\"%s\") failed", source.c_str());
        return false;
    }
    // A directory has size 0 and so gives an empty target.
    std::unique_ptr<char[]> content;
    std::int64_t count = 0;
    if (size > 0) {
        content.reset(new (std::nothrow) char[static_cast<std::size_t>(size)]);
        count = content
                    ? KFastFile_ReadAtOnce(source, content.get(), static_cast<std::size_t>(size))
                    : -1;
        if (count < 0) {
            KERRTRACE("KFastFile_CopyFile(): KFastFile_ReadAtOnce(\"%s\",..,%" PRId64 ") failed",
                      source.c_str(), size);
            return false;
        }
    }
    if (KFastFile_WriteAtOnce(target, content ? content.get() : "", static_cast<std::size_t>(count),
                              mode) < 0) {
        KERRTRACE("KFastFile_CopyFile(): KFastFile_WriteAtOnce(\"%s\",..,%" PRId64 ",%d) failed",
                  target.c_str(), size, mode);
        return false;
    }
    return true;
}

} // namespace korv
