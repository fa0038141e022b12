#include "kplatform_system.h"

#include <windows.h>

#include <cstdlib>

namespace korv::platform {

int process_id() {
    return static_cast<int>(::GetCurrentProcessId());
}

bool local_time(std::time_t seconds, std::tm& out) {
    return ::localtime_s(&out, &seconds) == 0;
}

// The C runtime's copy, which getenv reads, and the process's own block,
// which CreateProcess hands on, must both change.
bool set_environment(const std::string& name, const char* value) {
    const std::string entry = name + "=" + (value ? value : "");
    return ::_putenv(entry.c_str()) == 0 && ::SetEnvironmentVariableA(name.c_str(), value) != 0;
}

} // namespace korv::platform
