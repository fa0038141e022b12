// Files by handle: the few calls the buffered file layer needs, each standing
// for one Win32 call (CreateFile, ReadFile, WriteFile, FlushFileBuffers,
// CloseHandle, GetTempFileName, MoveFileEx, GetFileAttributesEx, FindFirstFile,
// DeleteFile, GetLastError). A Win32 build fills the same interface.
//
// Every path is Windows-style or host form; it goes through native_path().
// A failing call answers false or an invalid value and sets last_error().
#pragma once

#include <cerrno>
#include <cstdint>
#include <string>

namespace korv::platform {

// A descriptor here, a HANDLE on Windows; both fit and both use -1 as invalid.
using FileHandle = std::intptr_t;
inline constexpr FileHandle INVALID_FILE_HANDLE = -1;

// What the open does when the file exists or not.
enum class Disposition {
    CreateNew,    // create; fails if the file exists
    OpenAlways,   // open, or create if missing
    CreateAlways, // create, or truncate if it exists
    OpenExisting, // open; fails if the file is missing
};

// What the handle may do, and what others may do meanwhile.
enum class Access {
    Read,   // read; others may read and write
    Write,  // write from the start; others may read
    Append, // every write goes to the end; others may read
};

// Opens a file, never a directory. `write_through`: a write returns only
// once its data is on the disk. Handles are not inherited by child processes.
FileHandle open_file(const std::string& path, Access access, Disposition disposition,
                     bool write_through = false);

// Like ReadFile and WriteFile: at most 4294967295 bytes per call. A read
// delivers fewer bytes than asked only at the end of the file.
bool read_file(FileHandle file, void* buffer, std::uint32_t size, std::uint32_t& done);
bool write_file(FileHandle file, const void* data, std::uint32_t size, std::uint32_t& done);

// Puts what was written on the disk.
bool flush_file(FileHandle file);
bool close_file(FileHandle file);

// Creates a unique empty file "<prefix>XXXX.tmp" in `folder` (at most three
// characters of the prefix, XXXX upper-case hex) and gives its name: `folder`
// as given, a '\\' unless it ends in a separator, the file name. An empty
// folder is the current directory, and the name stands alone.
bool temp_file_name(const std::string& folder, const std::string& prefix, std::string& out);

// Renames a file on one volume, replacing an existing target.
bool move_file_replace(const std::string& from, const std::string& to);

// Deletes a file; fails for a directory.
bool delete_file(const std::string& path);

// True if something exists at the path (a file or a directory).
bool path_exists(const std::string& path);

inline constexpr std::uint32_t FILE_ATTR_HIDDEN = 0x02;
inline constexpr std::uint32_t FILE_ATTR_SYSTEM = 0x04;
inline constexpr std::uint32_t FILE_ATTR_DIRECTORY = 0x10;
inline constexpr std::uint32_t FILE_ATTR_NORMAL = 0x80;
inline constexpr std::uint32_t FILE_ATTR_INVALID = 0xFFFFFFFF;

// Attributes and size. A directory has size 0. On POSIX a name starting with
// '.' counts as hidden; nothing counts as system.
struct FileInfo {
    std::uint32_t attributes = FILE_ATTR_INVALID;
    std::int64_t size = 0;
};
bool get_file_info(const std::string& path, FileInfo& info);

// The info of the first entry that matches `pattern`, whose last component may
// hold the wildcards '*' and '?' (matched ignoring case, as Windows does).
bool find_first_file_info(const std::string& pattern, FileInfo& info);

// The error of this thread's last failed call (errno here, GetLastError there).
std::uint32_t last_error();
// True for the error of a call that found nothing at its path.
inline bool is_missing_error(std::uint32_t code) {
#ifdef _WIN32
    return code == 2 || code == 3; // ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND
#else
    return code == ENOENT || code == ENOTDIR;
#endif
}
void set_last_error(std::uint32_t code);
// A readable text for an error code.
std::string error_text(std::uint32_t code);

} // namespace korv::platform
