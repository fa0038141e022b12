// The version resource of a program, read by the calls that read it on
// Windows. Here only the running executable has one: the table compiled in
// from the build (product name, file and product version), in a block of this
// platform's own layout that VerQueryValueA reads. A Win32 build maps the
// calls to the real ones.
#pragma once

#include "kplatform_winerror.h"

namespace korv::platform {

struct VS_FIXEDFILEINFO {
    DWORD dwSignature; // 0xFEEF04BD
    DWORD dwStrucVersion;
    DWORD dwFileVersionMS;
    DWORD dwFileVersionLS;
    DWORD dwProductVersionMS;
    DWORD dwProductVersionLS;
    DWORD dwFileFlagsMask;
    DWORD dwFileFlags;
    DWORD dwFileOS;
    DWORD dwFileType;
    DWORD dwFileSubtype;
    DWORD dwFileDateMS;
    DWORD dwFileDateLS;
};

// The size of the version block of `file`, 0 if it has none (last_error()
// ENOENT for a missing file, ENODATA for one without a resource). `handle`
// becomes 0. A name without a folder is looked for as the running executable
// would be found: its base name, ".exe" or not, ignoring case.
DWORD GetFileVersionInfoSizeA(const char* file, DWORD* handle);
// Copies the block; fails if `size` is too small for it.
BOOL GetFileVersionInfoA(const char* file, DWORD handle, DWORD size, void* data);
// "\\" gives the VS_FIXEDFILEINFO, "\\VarFileInfo\\Translation" the language
// and code page pair, "\\StringFileInfo\\<language><code page>\\<name>" a
// string with `size` counting its terminator. Names match ignoring case.
BOOL VerQueryValueA(const void* block, const char* sub_block, void** buffer, unsigned* size);

} // namespace korv::platform
