#include "application/CustomCommandLineInfo.h"

#include <algorithm>
#include <cstring>
#include <iterator>

void CCustomCommandLineInfo::ParseParam(const char* param, bool /*flag*/, bool /*last*/) {
    // Tried in this order; the first key the argument begins with takes it.
    const struct {
        const char* key;
        std::string CCustomCommandLineInfo::*field;
    } keys[] = {
        {"control=", &CCustomCommandLineInfo::m_control},
        {"cwd=", &CCustomCommandLineInfo::m_cwd},
        {"lang=", &CCustomCommandLineInfo::m_lang},
        {"productgroup=", &CCustomCommandLineInfo::m_productgroup},
        {"machine=", &CCustomCommandLineInfo::m_machine},
        {"file=", &CCustomCommandLineInfo::m_file},
        {"variant=", &CCustomCommandLineInfo::m_variant},
        {"proxy=", &CCustomCommandLineInfo::m_proxy},
        {"alias_machine_name=", &CCustomCommandLineInfo::m_alias_machine_name},
        {"alias_variant=", &CCustomCommandLineInfo::m_alias_variant},
    };
    if (!param)
        return;
    for (const auto& [key, field] : keys) {
        const std::size_t length = std::strlen(key);
        if (std::strncmp(param, key, length) != 0)
            continue;
        this->*field = param + length;
        // Callers quote paths with blanks; the quotes are no part of the name.
        if (field == &CCustomCommandLineInfo::m_file)
            std::erase(m_file, '"');
        return;
    }
}
