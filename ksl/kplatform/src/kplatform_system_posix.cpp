#include "kplatform_system.h"

#include <cstdlib>
#include <unistd.h>

namespace korv::platform {

int process_id() {
    return static_cast<int>(::getpid());
}

bool local_time(std::time_t seconds, std::tm& out) {
    return ::localtime_r(&seconds, &out) != nullptr;
}

bool set_environment(const std::string& name, const char* value) {
    return (value ? ::setenv(name.c_str(), value, 1) : ::unsetenv(name.c_str())) == 0;
}

} // namespace korv::platform
