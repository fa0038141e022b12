// Reading what is left of an open file, for the stand-ins that parse whole files.
#pragma once

#include <string>

namespace korv::platform {

// Appends everything left to read from `fd` to `text`, retrying interrupted
// reads; false, with errno set, on a read error. The descriptor stays open.
bool read_to_end(int fd, std::string& text);

} // namespace korv::platform
