// Buffered reading and writing through an 8192-byte window, and whole-file
// reading and writing in one go. A whole-file replace goes through the
// platform's replace_file, so that no crash leaves a torn file. Failures
// answer -1 or false and leave lines in the error trace.
#pragma once

#include "kplatform_file.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace korv {

// Write modes: one base value plus the flush and atomic bits.
inline constexpr int KFF_CREATE_NEW = 0; // fails if the file exists
inline constexpr int KFF_APPEND = 1;     // opens or creates, writes at the end
inline constexpr int KFF_REPLACE = 2;    // writer: creates or truncates; whole-file: see below
inline constexpr int KFF_FLUSH = 4;      // writer: write-through; whole-file: flush before close
inline constexpr int KFF_ATOMIC = 8;     // whole-file: what KFF_REPLACE does anyway

inline constexpr std::size_t KFF_BUFFER_SIZE = 8192;

// What reader and writer share. The window is a member, so an object on the
// stack allocates nothing for it; it points into itself and cannot be copied.
class KFastFileBase {
public:
    KFastFileBase(const KFastFileBase&) = delete;
    KFastFileBase& operator=(const KFastFileBase&) = delete;

    bool IsOpen() const { return state == 0; }
    const std::string& FileName() const { return file_name; }

protected:
    KFastFileBase() = default;
    ~KFastFileBase() = default;

    char buffer[KFF_BUFFER_SIZE];
    char* buffer_end = buffer; // reader: behind the valid bytes; writer: behind the buffer
    char* cursor = buffer;     // next byte to read or write
    platform::FileHandle file_handle = platform::INVALID_FILE_HANDLE;
    std::int32_t state = -1; // all ones if closed, 0 if open
    std::string file_name;
};

class KFastFileReader : public KFastFileBase {
public:
    KFastFileReader();
    explicit KFastFileReader(const std::string& path);
    virtual ~KFastFileReader();

    bool Open(const std::string& path);
    bool Close();

    // Bytes read, fewer at the end of the file, or -1.
    std::int64_t Read(void* target, std::size_t size);
    // One line without its ending (CR LF, LF or a lone CR). True also at the
    // end of the file with an empty line: loops test IsEOF.
    bool ReadLine(std::string& line);
    // At most `max` bytes of a line, NUL-terminated: `target` holds max + 1.
    // A line longer than `max` is cut, and its rest comes with the next call.
    std::int64_t ReadLine(char* target, std::size_t max);
    // Up to `max` bytes or up to `terminator`, which is consumed and not
    // counted; NUL-terminated: `target` holds max + 1.
    std::int64_t ReadString(char* target, std::size_t max, char terminator);
    // 1, 0 at the end of the file, -1.
    int ReadChar(char& c);
    // As ReadChar, with CR LF and a lone CR read as LF.
    int ReadCharNL(char& c);
    // Steps back one byte within the window.
    bool UnReadChar();

    // Raw values in native byte order; the count read or -1.
    std::int64_t ReadInt(std::int32_t& value);
    std::int64_t ReadLong(std::int32_t& value);
    std::int64_t ReadFloat(float& value);
    std::int64_t ReadShort(std::int16_t& value);
    std::int64_t ReadDouble(double& value);

    // Reads ahead when the window is used up; a read error counts as the end.
    bool IsEOF();

protected:
    // Refills the window; at the end of the file it delivers nothing and
    // leaves the window as it is, still answering true.
    virtual bool fill_buffer();

    char* const buffer_start = buffer; // limits UnReadChar

private:
    std::int64_t read_from_buffer(void* target, std::size_t size);
    int read_char_from_buffer(char& c);
    std::int64_t read_value(void* value, std::size_t size, const char* operation);
    // Copies bytes to `target` until `max` bytes, the end of the file, or a
    // byte equal to `stop1` or `stop2`, which is consumed. The stop byte, or
    // -1 without one, or -2 if a refill failed.
    int copy_until(char* target, std::size_t max, char stop1, char stop2, std::size_t& count);
};

class KFastFileWriter : public KFastFileBase {
public:
    KFastFileWriter();
    KFastFileWriter(const std::string& path, int mode);
    virtual ~KFastFileWriter();

    bool Open(const std::string& path, int mode);
    // Writes out the window, whatever comes of that, and closes. False only
    // if the close fails.
    bool Close();

    int WriteChar(char c);
    // An LF goes out as CR LF.
    int WriteCharNL(char c);
    std::int64_t WriteString(std::string_view text);
    std::int64_t WriteStringNL(std::string_view text);
    // The text and CR LF; a text holding an LF is refused. The result counts
    // the line ending as one byte.
    std::int64_t WriteLine(std::string_view text);
    std::int64_t WriteLineNL(std::string_view text);

    std::int64_t WriteInt(std::int32_t value);
    std::int64_t WriteLong(std::int32_t value);
    std::int64_t WriteFloat(float value);
    std::int64_t WriteShort(std::int16_t value);
    std::int64_t WriteDouble(double value);

    // Writes out the window, then fails while the handle is valid (see the
    // source); nothing in the program relies on it.
    bool Flush();

private:
    bool write_to_buffer(const void* data, std::size_t size);
    bool write_to_disk(const void* data, std::size_t size);
    std::int64_t write_value(const void* value, std::size_t size, const char* operation);
};

// The first CR or LF in [begin, end), or `end`: the scan under ReadLine, for
// callers that split text they hold.
const char* KFastFile_FindLineEnd(const char* begin, const char* end);

// Whole files. Paths may be Windows-style.
std::int64_t KFastFile_ReadAtOnce(const std::string& path, char* buffer, std::size_t size);
// The string is sized to the file first and emptied on failure.
std::int64_t KFastFile_ReadAtOnce(const std::string& path, std::string& out);
// As ReadAtOnce, then CR LF and a lone CR become LF; the length after that.
std::int64_t KFastFile_ReadLinesAtOnce(const std::string& path, char* buffer, std::size_t size);
std::int64_t KFastFile_ReadLinesAtOnce(const std::string& path, std::string& out);
// Bytes written or -1. KFF_REPLACE, with or without KFF_ATOMIC, writes a
// temporary file beside the target, flushes it and renames it over the
// target; a failed write leaves the target as it was (platform::replace_file).
std::int64_t KFastFile_WriteAtOnce(const std::string& path, const void* data, std::size_t size,
                                   int mode);
// LF and a lone CR become CR LF first; bytes written after that, or -1.
std::int64_t KFastFile_WriteLinesAtOnce(const std::string& path, const char* data, std::size_t size,
                                        int mode);
// A whole copy in memory; time stamps and attributes do not travel.
bool KFastFile_CopyFile(const std::string& source, const std::string& target, int mode);

} // namespace korv
