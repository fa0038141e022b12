// The running executable.
#pragma once

#include <string>

namespace korv::platform {

// The real path of the running executable, in host form; empty if unknown.
std::string executable_path();

} // namespace korv::platform
