#include "errtrace.h"
#include "fastfile.h"
#include "fastfile_lowlevel.h"
#include "fileops.h"

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

// CR LF and a lone CR become LF, in place; the new length.
std::size_t lines_to_lf(char* text, std::size_t size) {
    std::size_t out = 0;
    for (std::size_t in = 0; in < size; ++in) {
        if (text[in] == '\r') {
            text[out++] = '\n';
            if (in + 1 < size && text[in + 1] == '\n')
                ++in;
        } else {
            text[out++] = text[in];
        }
    }
    return out;
}

// LF and a lone CR become CR LF; `out` holds twice `size`. The new length.
std::size_t lines_to_crlf(const char* text, std::size_t size, char* out) {
    std::size_t length = 0;
    for (std::size_t in = 0; in < size; ++in) {
        const char c = text[in];
        if (c == '\r' || c == '\n') {
            out[length++] = '\r';
            out[length++] = '\n';
            if (c == '\r' && in + 1 < size && text[in + 1] == '\n')
                ++in;
        } else {
            out[length++] = c;
        }
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

// Writes all of `data`, flushes if asked and the write went well, and closes
// in any case; false if any step failed.
bool write_and_close(platform::FileHandle file, const void* data, std::size_t size, bool flush,
                     std::size_t& written) {
    bool ok = detail::write64(file, data, size, written);
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

std::int64_t write_plain(const std::string& path, const void* data, std::size_t size, int mode,
                         bool flush) {
    const platform::FileHandle file = detail::openwritefile(path, mode);
    if (file == platform::INVALID_FILE_HANDLE) {
        KERRTRACE("%s(): openwritefile(%s, %d) failed", "KFastFile_WriteAtOnce", path.c_str(),
                  mode);
        return -1;
    }
    std::size_t written = 0;
    return write_and_close(file, data, size, flush, written) ? static_cast<std::int64_t>(written)
                                                             : -1;
}

// Writes a temporary file beside the target, so that the rename stays on one
// volume and readers see the whole old file or the whole new one.
std::int64_t write_atomic(const std::string& path, const void* data, std::size_t size) {
    // The folder part is never longer than the path.
    std::unique_ptr<char[]> folder(new (std::nothrow) char[path.size() + 1]);
    if (!folder) {
        KERRTRACE("KFastFile_WriteAtOnce(): malloc() failed");
        return -1;
    }
    if (!file_dirname(path.c_str(), folder.get()))
        folder[0] = '\0';
    std::string temp_name;
    if (!platform::temp_file_name(folder.get(), "ffw", temp_name)) {
        KERRTRACE("KFastFile_WriteAtOnce(): GetTempFileName() failed:%u", platform::last_error());
        return -1;
    }
    const platform::FileHandle file = detail::openwritefile(temp_name, KFF_REPLACE);
    if (file == platform::INVALID_FILE_HANDLE) {
        KERRTRACE("%s(): openwritefile(%s, %d) failed", "KFastFile_WriteAtOnce", path.c_str(),
                  KFF_REPLACE);
        return -1;
    }
    std::size_t written = 0;
    bool failed = !write_and_close(file, data, size, true, written);
    // The rename runs after a failed write too, as it always has.
    if (!file_rename(temp_name, path)) {
        KERRTRACE("KFastFile_WriteAtOnce(): file_rename(%s,%s) failed: %s", temp_name.c_str(),
                  path.c_str(), platform::error_text(platform::last_error()).c_str());
        failed = true;
    }
    return failed ? -1 : static_cast<std::int64_t>(written);
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
    const bool flush = (mode & KFF_FLUSH) != 0;
    mode &= ~KFF_FLUSH;
    if (mode == (KFF_REPLACE | KFF_ATOMIC))
        return write_atomic(path, data, size);
    return write_plain(path, data, size, mode, flush);
}

std::int64_t KFastFile_WriteLinesAtOnce(const std::string& path, const char* data, std::size_t size,
                                        int mode) {
    // Every byte becomes two at most.
    const std::size_t room = size > SIZE_MAX / 2 ? 0 : (size ? 2 * size : 1);
    MallocBuffer converted(room ? static_cast<char*>(std::malloc(room)) : nullptr);
    if (!converted) {
        KERRTRACE("KFastFile_WriteLinesAtOnce(): malloc(%zu) failed: %.50s", size * 2,
                  std::strerror(ENOMEM));
        return -1;
    }
    const std::size_t length = lines_to_crlf(data, size, converted.get());
    const std::int64_t written = KFastFile_WriteAtOnce(path, converted.get(), length, mode);
    if (written < 0) {
        KERRTRACE("KFastFile_WriteLinesAtOnce(): KFastFile_WriteAtOnce(\"%s\",..,%zu,%d) failed",
                  path.c_str(), length, mode);
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
