#include "kplatform_version.h"

#include <windows.h>

// The VERSIONINFO resource that windres compiled into the program.
namespace korv::platform {

DWORD GetFileVersionInfoSizeA(const char* file, DWORD* handle) {
    ::DWORD zero = 0;
    const DWORD size = ::GetFileVersionInfoSizeA(file, &zero);
    if (handle)
        *handle = 0;
    return size;
}

BOOL GetFileVersionInfoA(const char* file, DWORD handle, DWORD size, void* data) {
    return ::GetFileVersionInfoA(file, handle, size, data);
}

BOOL VerQueryValueA(const void* block, const char* sub_block, void** buffer, unsigned* size) {
    return ::VerQueryValueA(block, sub_block, buffer, size);
}

} // namespace korv::platform
