// Text helpers shared by the source files of the ini container.
#pragma once

#include "KIniData_template_core.h"

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

namespace korv::kini_detail {

// For the printf-style messages, which need a terminated string.
inline std::string to_text(std::string_view view) {
    return std::string(view);
}

inline std::size_t first_non_blank(std::string_view text) {
    std::size_t first = 0;
    while (first < text.size() && kini_is_blank(text[first]))
        ++first;
    return first;
}

inline const char* out_of_memory_text() {
    return std::strerror(ENOMEM);
}

} // namespace korv::kini_detail
