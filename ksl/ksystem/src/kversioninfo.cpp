#include "kversioninfo.h"

#include "kplatform_file.h"
#include "kplatform_module.h"
#include "kplatform_paths.h"
#include "kplatform_profile.h"
#include "kplatform_version.h"
#include "kregistry.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace korv {
namespace {

std::string own_file_name() {
    std::string name = platform::executable_path();
    name.erase(0, name.rfind('/') + 1);
    if (const std::size_t dot = name.rfind('.'); dot != std::string::npos && dot > 0)
        name.erase(dot);
    return name + ".EXE";
}

// The text between two positions, empty where the positions make none.
std::string part(const std::string& text, std::size_t from, std::size_t to) {
    if (from == std::string::npos || from > text.size())
        return {};
    if (to == std::string::npos || to < from)
        to = text.size();
    return text.substr(from, to - from);
}

} // namespace

FileVersionInfo::FileVersionInfo() {
    Load(own_file_name());
}

FileVersionInfo::FileVersionInfo(const std::string& file) {
    Load(file);
}

FileVersionInfo::~FileVersionInfo() {
    delete[] m_block;
}

void FileVersionInfo::Load(const std::string& file) {
    platform::DWORD handle = 0;
    const platform::DWORD size = platform::GetFileVersionInfoSizeA(file.c_str(), &handle);
    if (size == 0 || handle != 0)
        return;
    m_block = new unsigned char[size];
    if (!platform::GetFileVersionInfoA(file.c_str(), 0, size, m_block)) {
        delete[] m_block;
        m_block = nullptr;
        return;
    }
    void* translation = nullptr;
    unsigned length = 0;
    if (platform::VerQueryValueA(m_block, "\\VarFileInfo\\Translation", &translation, &length) &&
        length >= 4) {
        platform::WORD pair[2];
        std::memcpy(pair, translation, sizeof pair);
        char text[16];
        std::snprintf(text, sizeof text, "%04x%04x", pair[0], pair[1]);
        m_language = text;
    }
}

std::string FileVersionInfo::GetValue(const std::string& name) const {
    if (!m_block)
        return {};
    const std::string query = "\\StringFileInfo\\" + m_language + "\\" + name;
    void* value = nullptr;
    unsigned length = 0;
    if (!platform::VerQueryValueA(m_block, query.c_str(), &value, &length) || !value)
        return {};
    return static_cast<const char*>(value);
}

std::string FileVersionInfo::GetServicePackText() const {
    const std::string file =
        std::string(RegReadStringLM("Software\\Korv\\Hub32\\volatile", "root")) +
        "\\version_sr.txt";
    if (!platform::path_exists(file))
        return {};
    char text[259];
    platform::GetPrivateProfileStringA("Version", "ServicePack", "", text, sizeof text,
                                       file.c_str());
    return *text ? std::string("SP ") + text : std::string();
}

std::string FileVersionInfo::GetProductVersionText() const {
    std::string text = GetValue("ProductVersion");
    const std::string service_pack = GetServicePackText();
    if (!service_pack.empty())
        text += " " + service_pack;
    return text;
}

long FileVersionInfo::GetVersionNumber() const {
    return VersionNumberFromText(GetProductVersionText());
}

long VersionNumberFromText(const std::string& raw) {
    std::string text;
    for (char c : raw)
        if (c != ' ' && c != '\t')
            text += (c >= 'A' && c <= 'Z') ? static_cast<char>(c | 0x20) : c;
    const std::size_t point = text.find('.');
    const std::size_t dash = text.find('-');
    const std::size_t sp = text.find("sp");
    const long a = std::atol(part(text, 0, point).c_str());
    const long b =
        std::atol(part(text, point == std::string::npos ? point : point + 1, dash).c_str());
    const long c = std::atol(part(text, dash == std::string::npos ? dash : dash + 1, sp).c_str());
    const long d =
        sp == std::string::npos ? 0 : std::atol(part(text, sp + 2, std::string::npos).c_str());
    return ((a * 100 + b) * 100 + c) * 100 + d;
}

} // namespace korv
