// Modules loaded at run time and the functions they export.
#pragma once

#include <string>

namespace korv::platform {

// The module, kept loaded for the rest of the run; null with `why` set if it
// could not be loaded.
void* load_library(const std::string& path, std::string& why);
// The exported symbol, or null.
void* library_symbol(void* library, const char* name);

} // namespace korv::platform
