#include "kplatform_winerror.h"

#include <windows.h>

namespace korv::platform {

std::string win32_error_text(DWORD code) {
    char* text = nullptr;
    const ::DWORD length = ::FormatMessageA(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
        nullptr, code, 0, reinterpret_cast<char*>(&text), 0, nullptr);
    std::string result = length && text ? std::string(text, length) : std::string();
    ::LocalFree(text);
    return result;
}

LONG win32_error_of(std::uint32_t error) {
    return static_cast<LONG>(error);
}

} // namespace korv::platform
