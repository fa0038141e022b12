// The running executable.
#pragma once

#include <cstdint>
#include <string>

namespace korv::platform {

using HMODULE = void*;

// The real path of the running executable, in host form; empty if unknown.
std::string executable_path();

// As on Windows: a null module is the running executable, whose real path is
// copied into `name`. The result is the length copied without the terminator;
// a buffer too small gets the path cut to `size` - 1 bytes and terminated, the
// result is `size` and last_error() ERANGE. 0 on failure, with last_error()
// set; no other module exists here.
std::uint32_t GetModuleFileNameA(HMODULE module, char* name, std::uint32_t size);

} // namespace korv::platform
