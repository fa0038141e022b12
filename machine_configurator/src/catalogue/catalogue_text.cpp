#include "catalogue_text.h"

#include "main_dialog/RigCfgDlg.h"

#include "kplatform_profile.h"

namespace {

bool is_blank(char c) {
    return c == ' ' || c == '\t';
}

} // namespace

std::string catalogue_trim_value(const std::string& raw) {
    const std::string stripped = StripComment(raw);
    std::string_view value = stripped;
    while (!value.empty() && is_blank(value.front()))
        value.remove_prefix(1);
    while (!value.empty() && is_blank(value.back()))
        value.remove_suffix(1);
    return std::string(value);
}

std::string catalogue_join(const std::string& folder, std::string_view name) {
    std::string path = folder;
    if (!path.empty() && path.back() != '\\' && path.back() != '/')
        path += '\\';
    path += name;
    return path;
}

std::string catalogue_profile(const std::string& section, const std::string& key,
                              const char* fallback, const std::string& file, std::size_t size) {
    char buffer[1024];
    if (size > sizeof buffer)
        size = sizeof buffer;
    korv::platform::GetPrivateProfileStringA(section.c_str(), key.c_str(), fallback, buffer,
                                             static_cast<korv::platform::DWORD>(size),
                                             file.c_str());
    return buffer;
}
