#include "scratch_dir.h"

#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <stdexcept>

namespace korv::testing {
namespace {

namespace fs = std::filesystem;

// The wine prefix as this process sees it: wine shows the host's root as Z:.
std::string prefix_folder() {
    const char* prefix = std::getenv("WINEPREFIX");
    if (!prefix || *prefix != '/')
        throw std::runtime_error("ScratchRoot runs under wine only: WINEPREFIX is not set");
    return build_tree_path(prefix);
}

// The folders of C: that tests add to.
const char* const kWatched[] = {"C:\\", "C:\\ProgramData", "C:\\Program Files",
                                "C:\\Program Files (x86)", "C:\\Program Files (x86)\\Common Files"};

std::vector<std::string> entries(const std::string& prefix) {
    std::vector<std::string> all;
    std::vector<std::string> folders(std::begin(kWatched), std::end(kWatched));
    folders.push_back(prefix);
    for (const std::string& folder : folders) {
        std::error_code error;
        for (const auto& entry : fs::directory_iterator(folder, error))
            all.push_back(entry.path().string());
    }
    std::sort(all.begin(), all.end());
    return all;
}

void forget_registry() {
    for (const REGSAM view : {KEY_WOW64_64KEY, KEY_WOW64_32KEY}) {
        HKEY software = nullptr;
        if (::RegOpenKeyExA(HKEY_LOCAL_MACHINE, "Software", 0, KEY_ALL_ACCESS | view, &software) ==
            ERROR_SUCCESS) {
            ::RegDeleteTreeA(software, "Korv");
            ::RegCloseKey(software);
        }
    }
    ::RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Korv");
}

void remove_added(const std::string& prefix, const std::vector<std::string>& before) {
    for (const std::string& entry : entries(prefix)) {
        if (std::binary_search(before.begin(), before.end(), entry))
            continue;
        // wine's own registry files, while it saves them, are not the test's.
        const std::string name = fs::path(entry).filename().string();
        if (name.size() > 7 && name.compare(0, 3, "reg") == 0 &&
            name.compare(name.size() - 4, 4, ".tmp") == 0)
            continue;
        std::error_code ignored;
        for (auto it = fs::recursive_directory_iterator(entry, ignored);
             it != fs::recursive_directory_iterator(); it.increment(ignored))
            ::SetFileAttributesA(it->path().string().c_str(), FILE_ATTRIBUTE_NORMAL);
        fs::remove_all(entry, ignored);
    }
}

} // namespace

std::string build_tree_path(const std::string& host) {
    if (host.empty() || host[0] != '/')
        return host;
    std::string path = "Z:" + host;
    std::replace(path.begin(), path.end(), '/', '\\');
    return path;
}

ScratchRoot::ScratchRoot() : ScratchDir(prefix_folder()) {
    // A run that was killed may have left its installation behind.
    for (const char* left : {"C:\\Korv", "C:\\ProgramData\\Korv", "C:\\Program Files\\Korv",
                             "C:\\Program Files (x86)\\Korv"}) {
        std::error_code ignored;
        fs::remove_all(left, ignored);
    }
    // Beside wine's own files the prefix holds only what a test put there.
    for (const auto& entry : fs::directory_iterator(path())) {
        const std::string name = entry.path().filename().string();
        if (name != "drive_c" && name != "dosdevices" && name != "system.reg" &&
            name != "user.reg" && name != "userdef.reg" && name != ".update-timestamp" &&
            name != "wineserver" && name.compare(0, 3, "reg") != 0) {
            std::error_code ignored;
            fs::remove_all(entry.path(), ignored);
        }
    }
    forget_registry();
    m_before = entries(path());
}

ScratchRoot::~ScratchRoot() {
    remove_added(path(), m_before);
    forget_registry();
}

namespace {

// Into the 32-bit view, where the suite's programs keep their keys and where
// the program reads them.
void import_registry(const std::string& file) {
    std::string line = "reg.exe import \"" + file + "\" /reg:32";
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION info{};
    if (!::CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr,
                          nullptr, &startup, &info))
        throw std::runtime_error("reg could not be started");
    ::WaitForSingleObject(info.hProcess, INFINITE);
    ::CloseHandle(info.hThread);
    ::CloseHandle(info.hProcess);
}

} // namespace

void ScratchRoot::set_registry(const std::string& export_text) const {
    write("registry.reg", export_text);
    forget_registry();
    import_registry(*this / "registry.reg");
}

void ScratchRoot::install(const std::string& tree) const {
    // File by file: the target's folders exist already (drive_c is C:).
    for (const auto& entry : fs::recursive_directory_iterator(tree)) {
        const fs::path target = fs::path(path()) / fs::relative(entry.path(), tree);
        if (entry.is_directory())
            fs::create_directories(target);
        else
            fs::copy_file(entry.path(), target, fs::copy_options::overwrite_existing);
    }
    import_registry(*this / "registry.reg");
}

} // namespace korv::testing
