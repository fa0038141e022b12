#include "errtrace.h"
#include "fastfile.h"
#include "fastfile_lowlevel.h"
#include "fastfile_scan.h"

#include <cstring>

namespace korv {

const char* KFastFile_FindLineEnd(const char* begin, const char* end) {
    return detail::find_first_of2(begin, end, '\r', '\n');
}

KFastFileReader::KFastFileReader() = default;

KFastFileReader::KFastFileReader(const std::string& path) {
    KErrTrace_BeginContext();
    if (!Open(path))
        KERRTRACE_DUMP("KFastFileReader::KFastFileReader(): Open(\"%s\") failed", path.c_str());
    else
        KErrTrace_ClearContext();
    KErrTrace_EndContext();
}

KFastFileReader::~KFastFileReader() {
    KErrTrace_BeginContext();
    if (!Close())
        KERRTRACE_DUMP("KFastFileReader::~KFastFileReader(): Close() failed");
    else
        KErrTrace_ClearContext();
    KErrTrace_EndContext();
}

bool KFastFileReader::Open(const std::string& path) {
    if (IsOpen() && !Close()) {
        KERRTRACE("KFastFileReader::Open(): Close() failed");
        return false;
    }
    if (!detail::openfile(path, file_handle)) {
        KERRTRACE("KFastFileReader::Open(): openfile(\"%s\") failed: %d", path.c_str(),
                  static_cast<int>(platform::last_error()));
        return false;
    }
    state = 0;
    file_name = path;
    cursor = buffer_end = buffer_start;
    return true;
}

bool KFastFileReader::Close() {
    if (!IsOpen())
        return true;
    const bool closed = platform::close_file(file_handle);
    if (!closed)
        KERRTRACE("KFastFileReader::Close(): CloseHandle() failed: %d",
                  static_cast<int>(platform::last_error()));
    // The handle is gone either way; the object is closed.
    file_handle = platform::INVALID_FILE_HANDLE;
    state = -1;
    file_name.clear();
    cursor = buffer_end = buffer_start;
    return closed;
}

bool KFastFileReader::fill_buffer() {
    std::size_t got = 0;
    if (!detail::read64(file_handle, buffer, KFF_BUFFER_SIZE, got)) {
        KERRTRACE("KFastFileReader::fill_buffer(): read64() failed");
        return false;
    }
    if (got > 0) {
        cursor = buffer;
        buffer_end = buffer + got;
    }
    return true;
}

std::int64_t KFastFileReader::read_from_buffer(void* target, std::size_t size) {
    if (!IsOpen()) {
        KERRTRACE("KFastFileReader::read_from_buffer(): no open file");
        return -1;
    }
    auto* out = static_cast<char*>(target);
    const auto held = static_cast<std::size_t>(buffer_end - cursor);
    if (size <= held) {
        std::memcpy(out, cursor, size);
        cursor += size;
        return static_cast<std::int64_t>(size);
    }
    std::memcpy(out, cursor, held);
    cursor = buffer_end;
    std::size_t done = held;
    const std::size_t rest = size - held;
    if (rest < KFF_BUFFER_SIZE) {
        if (!fill_buffer()) {
            KERRTRACE("KFastFileReader::read_from_buffer(): fill_buffer() failed");
            return -1;
        }
        const auto delivered = static_cast<std::size_t>(buffer_end - cursor);
        const std::size_t take = rest < delivered ? rest : delivered;
        std::memcpy(out + done, cursor, take);
        cursor += take;
        done += take;
    } else {
        // A long read goes past the window, straight into the target.
        std::size_t got = 0;
        if (!detail::read64(file_handle, out + done, rest, got)) {
            KERRTRACE("KFastFileReader::read_from_buffer(): read64(..,%u,..) failed",
                      static_cast<unsigned>(rest));
            return -1;
        }
        done += got;
    }
    return static_cast<std::int64_t>(done);
}

int KFastFileReader::read_char_from_buffer(char& c) {
    if (!IsOpen()) {
        KERRTRACE("KFastFileReader::read_char_from_buffer(): no open file");
        return -1;
    }
    if (cursor >= buffer_end) {
        if (!fill_buffer()) {
            KERRTRACE("KFastFileReader::read_char_from_buffer(): fill_buffer() failed");
            return -1;
        }
        if (cursor >= buffer_end)
            return 0;
    }
    c = *cursor++;
    return 1;
}

std::int64_t KFastFileReader::Read(void* target, std::size_t size) {
    const std::int64_t count = read_from_buffer(target, size);
    if (count < 0)
        KERRTRACE("KFastFileReader::Read(): read_from_buffer() failed");
    return count;
}

bool KFastFileReader::ReadLine(std::string& line) {
    line.clear();
    for (;;) {
        if (cursor >= buffer_end) {
            if (!fill_buffer()) {
                KERRTRACE("KFastFileReader::ReadLine(STL): fill_buffer() failed");
                return false;
            }
            if (cursor >= buffer_end)
                return true;
        }
        char* const end = detail::find_first_of2(cursor, buffer_end, '\r', '\n');
        line.append(cursor, end);
        cursor = end;
        if (end == buffer_end)
            continue;
        ++cursor;
        if (*end == '\r') {
            // The LF of a CR LF pair may start the next window.
            if (cursor >= buffer_end && !fill_buffer()) {
                KERRTRACE("KFastFileReader::ReadLine(STL):fill_buffer() failed");
                return false;
            }
            if (cursor < buffer_end && *cursor == '\n')
                ++cursor;
        }
        return true;
    }
}

int KFastFileReader::copy_until(char* target, std::size_t max, char stop1, char stop2,
                                std::size_t& count) {
    count = 0;
    while (count < max) {
        if (cursor >= buffer_end) {
            if (!fill_buffer())
                return -2;
            if (cursor >= buffer_end)
                break;
        }
        const std::size_t room = max - count;
        const auto held = static_cast<std::size_t>(buffer_end - cursor);
        char* const end = cursor + (held < room ? held : room);
        char* const at = detail::find_first_of2(cursor, end, stop1, stop2);
        std::memcpy(target + count, cursor, static_cast<std::size_t>(at - cursor));
        count += static_cast<std::size_t>(at - cursor);
        cursor = at;
        if (at < end) {
            ++cursor;
            target[count] = '\0';
            return static_cast<unsigned char>(*at);
        }
    }
    target[count] = '\0';
    return -1;
}

std::int64_t KFastFileReader::ReadLine(char* target, std::size_t max) {
    std::size_t count = 0;
    const int stop = copy_until(target, max, '\r', '\n', count);
    if (stop == -2) {
        KERRTRACE("KFastFileReader::ReadLine(): fill_buffer() failed");
        return -1;
    }
    if (stop == '\r') {
        // The LF of a CR LF pair may start the next window.
        if (cursor >= buffer_end && !fill_buffer()) {
            KERRTRACE("KFastFileReader::ReadLine(): fill_buffer() failed");
            return -1;
        }
        if (cursor < buffer_end && *cursor == '\n')
            ++cursor;
    }
    return static_cast<std::int64_t>(count);
}

std::int64_t KFastFileReader::ReadString(char* target, std::size_t max, char terminator) {
    std::size_t count = 0;
    if (copy_until(target, max, terminator, terminator, count) == -2) {
        KERRTRACE("KFastFileReader::ReadString(): fill_buffer() failed");
        return -1;
    }
    return static_cast<std::int64_t>(count);
}

int KFastFileReader::ReadChar(char& c) {
    const int result = read_char_from_buffer(c);
    if (result < 0)
        KERRTRACE("KFastFileReader::ReadChar(): read_char_from_buffer() failed");
    return result;
}

int KFastFileReader::ReadCharNL(char& c) {
    const int result = read_char_from_buffer(c);
    if (result < 0) {
        KERRTRACE("KFastFileReader::ReadCharNL: read_char_from_buffer() #1 failed");
        return -1;
    }
    if (result == 0 || c != '\r')
        return result;
    c = '\n';
    char next = 0;
    const int behind = read_char_from_buffer(next);
    if (behind < 0) {
        KERRTRACE("KFastFileReader::ReadCharNL(): read_char_from_buffer() #2 failed");
        return -1;
    }
    if (behind == 1 && next != '\n' && !UnReadChar()) {
        KERRTRACE("KFastFileReader::ReadCharNL(): UnReadChar() failed");
        return -1;
    }
    return 1;
}

bool KFastFileReader::UnReadChar() {
    if (cursor <= buffer_start) {
        KERRTRACE("KFastFileReader::UnReadChar(): can't rewind");
        return false;
    }
    --cursor;
    return true;
}

std::int64_t KFastFileReader::read_value(void* value, std::size_t size, const char* operation) {
    const std::int64_t count = read_from_buffer(value, size);
    if (count < 0)
        KERRTRACE("KFastFileReader::%s(): read_from_buffer() failed", operation);
    return count;
}

std::int64_t KFastFileReader::ReadInt(std::int32_t& value) {
    return read_value(&value, sizeof value, "ReadInt");
}
std::int64_t KFastFileReader::ReadLong(std::int32_t& value) {
    return read_value(&value, sizeof value, "ReadLong");
}
std::int64_t KFastFileReader::ReadFloat(float& value) {
    return read_value(&value, sizeof value, "ReadFloat");
}
std::int64_t KFastFileReader::ReadShort(std::int16_t& value) {
    return read_value(&value, sizeof value, "ReadShort");
}
std::int64_t KFastFileReader::ReadDouble(double& value) {
    return read_value(&value, sizeof value, "ReadDouble");
}

bool KFastFileReader::IsEOF() {
    if (!IsOpen()) {
        KERRLOG("KFastFileReader::IsEOF(): no open file");
        return true;
    }
    if (cursor >= buffer_end) {
        KErrTrace_BeginContext();
        if (!fill_buffer())
            KERRLOG("KFastFileReader::IsEOF(): fill_buffer() failed");
        KErrTrace_ClearContext();
        KErrTrace_EndContext();
    }
    return cursor >= buffer_end;
}

} // namespace korv
