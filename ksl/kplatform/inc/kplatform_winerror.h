// The Win32 types and error codes that the registry and version calls answer
// with, so that their callers read the same on every platform.
#pragma once

#include <cstdint>
#include <string>

namespace korv::platform {

using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using LONG = std::int32_t;
using BOOL = int;

inline constexpr LONG ERROR_SUCCESS = 0;
inline constexpr LONG ERROR_FILE_NOT_FOUND = 2;
inline constexpr LONG ERROR_PATH_NOT_FOUND = 3;
inline constexpr LONG ERROR_ACCESS_DENIED = 5;
inline constexpr LONG ERROR_INVALID_HANDLE = 6;
inline constexpr LONG ERROR_NOT_ENOUGH_MEMORY = 8;
inline constexpr LONG ERROR_WRITE_PROTECT = 19;
inline constexpr LONG ERROR_INVALID_PARAMETER = 87;
inline constexpr LONG ERROR_DISK_FULL = 112;
inline constexpr LONG ERROR_INSUFFICIENT_BUFFER = 122;
inline constexpr LONG ERROR_BAD_PATHNAME = 161;
inline constexpr LONG ERROR_MORE_DATA = 234;
inline constexpr LONG ERROR_NO_MORE_ITEMS = 259;
inline constexpr LONG ERROR_BADDB = 1009;
inline constexpr LONG ERROR_BADKEY = 1010;
inline constexpr LONG ERROR_CANTOPEN = 1011;
inline constexpr LONG ERROR_CANTREAD = 1012;
inline constexpr LONG ERROR_CANTWRITE = 1013;
inline constexpr LONG ERROR_REGISTRY_IO_FAILED = 1016;
inline constexpr LONG ERROR_KEY_DELETED = 1018;
inline constexpr LONG ERROR_RESOURCE_TYPE_NOT_FOUND = 1813;

// The system's text for a Win32 error code, as FormatMessageA gives it with
// FORMAT_MESSAGE_FROM_SYSTEM: one sentence followed by CR LF. An unknown code
// gives an empty text, as FormatMessageA fails for it.
std::string win32_error_text(DWORD code);

// The Win32 code that stands for an errno value of a failed file operation
// (POSIX only: on Windows the codes are Win32 codes already).
LONG win32_error_from_errno(int error);

// The Win32 code for an error code of this platform: errno mapped as above on
// POSIX, the code itself on Windows.
LONG win32_error_of(std::uint32_t error);

} // namespace korv::platform
