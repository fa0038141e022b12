#include "kplatform_library.h"

#include <windows.h>

namespace korv::platform {

void* load_library(const std::string& path, std::string& why) {
    const HMODULE library = ::LoadLibraryA(path.c_str());
    if (!library)
        why = "error " + std::to_string(::GetLastError());
    return library;
}

void* library_symbol(void* library, const char* name) {
    return reinterpret_cast<void*>(::GetProcAddress(static_cast<HMODULE>(library), name));
}

} // namespace korv::platform
