#include "kplatform_module.h"

#include <windows.h>

namespace korv::platform {

std::string executable_path() {
    static const std::string path = [] {
        std::string name(MAX_PATH, '\0');
        for (;;) {
            const DWORD length =
                ::GetModuleFileNameA(nullptr, name.data(), static_cast<DWORD>(name.size()));
            if (length == 0)
                return std::string();
            if (length < name.size()) {
                name.resize(length);
                return name;
            }
            name.resize(name.size() * 2);
        }
    }();
    return path;
}

std::uint32_t GetModuleFileNameA(HMODULE module, char* name, std::uint32_t size) {
    return ::GetModuleFileNameA(static_cast<::HMODULE>(module), name, size);
}

} // namespace korv::platform
