// The running process: its id, the local time, and its environment.
#pragma once

#include <ctime>
#include <string>

namespace korv::platform {

int process_id();
// `seconds` broken down in the local time zone.
bool local_time(std::time_t seconds, std::tm& out);
// Sets or, with a null value, removes a variable of this process's
// environment, as children inherit it.
bool set_environment(const std::string& name, const char* value);

} // namespace korv::platform
