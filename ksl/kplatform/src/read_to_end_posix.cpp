#include "read_to_end.h"

#include <cerrno>
#include <unistd.h>

namespace korv::platform {

bool read_to_end(int fd, std::string& text) {
    char buffer[65536];
    for (;;) {
        const ssize_t got = ::read(fd, buffer, sizeof buffer);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return got == 0;
        text.append(buffer, static_cast<std::size_t>(got));
    }
}

} // namespace korv::platform
