#include "kplatform_library.h"

#include <dlfcn.h>

namespace korv::platform {

void* load_library(const std::string& path, std::string& why) {
    void* library = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        const char* error = ::dlerror();
        why = error ? error : "unknown error";
    }
    return library;
}

void* library_symbol(void* library, const char* name) {
    return ::dlsym(library, name);
}

} // namespace korv::platform
