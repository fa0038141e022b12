#include "common.h"

#include "errtrace.h"
#include "kplatform_shell_folders.h"
#include "kregistry.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>
#include <vector>

namespace {

using korv::platform::MAX_PATH;

struct Macro {
    std::string name; // lower case
    std::string value;
};

// Process-wide and unguarded: the first call must not race another.
std::vector<Macro> g_expandTable;

std::string lower(const std::string& text) {
    std::string out = text;
    for (char& c : out)
        c = (c >= 'A' && c <= 'Z') ? static_cast<char>(c | 0x20) : c;
    return out;
}

// One folder into the shared buffer; on failure the buffer keeps what it held.
std::string folder(char* path, int csidl, const char* name) {
    if (!korv::platform::SHGetSpecialFolderPathA(nullptr, path, csidl, false))
        KERRLOG("Expand(): SHGetSpecialFolderPath failed for %s (%s)", name, std::strerror(errno));
    return path;
}

// A REG_SZ setting of HKEY_LOCAL_MACHINE. An empty text counts as missing,
// since an empty value would stop the replacement from moving on.
bool setting(const char* key, const char* value, std::string& out) {
    char buffer[MAX_PATH];
    korv::DWORD size = sizeof buffer;
    if (!korv::RegReadString(korv::platform::HKEY_LOCAL_MACHINE, key, value, buffer, size) ||
        !*buffer)
        return false;
    out = buffer;
    return true;
}

void fill_table() {
    char path[MAX_PATH] = "";
    const std::string program_files =
        folder(path, korv::platform::CSIDL_PROGRAM_FILES, "CSIDL_PROGRAM_FILES");
    const std::string program_files_x86 =
        folder(path, korv::platform::CSIDL_PROGRAM_FILESX86, "CSIDL_PROGRAM_FILESX86");
    const std::string common_data =
        folder(path, korv::platform::CSIDL_COMMON_APPDATA, "CSIDL_COMMON_APPDATA");
    const std::string common_files_x86 = folder(path, korv::platform::CSIDL_PROGRAM_FILES_COMMONX86,
                                                "CSIDL_PROGRAM_FILES_COMMONX86");

    std::string korwin = program_files + "\\korv\\korwin";
    std::string product_infos = program_files + "\\korv\\korwin\\product_infos";
    std::string userdata = "c:\\korv";
    std::string target;
    if (setting("SOFTWARE\\Korv\\KorWin\\Main", "TargetDir", target)) {
        korwin = target;
        product_infos = target + "\\product_infos";
    } else {
        KERRLOG("Expand(): get registry key TargetDir failed. Using default korwin folders !!!");
    }
    if (!setting("SOFTWARE\\Korv\\Hub32\\volatile", "UserData", userdata))
        KERRLOG("Expand(): get registry key UserData failed. Using default korwin folders !!!");

    std::pair<const char*, std::string> entries[] = {
        {"<korecon>", program_files + "\\korv\\korecon"},
        {"<powerpcctrl>", program_files_x86 + "\\korv\\powerpcctrl"},
        {"<midspan>", program_files_x86 + "\\korv\\midspan plugin"},
        {"<korctrltools>", program_files + "\\korv\\korctrltools"},
        {"<mtsurf>", program_files_x86 + "\\korv\\mtsurf"},
        {"<mtmillikor>", program_files_x86 + "\\korv\\mtmillikor"},
        {"<appdata>", common_data},
        {"<hub32>", common_files_x86 + "\\korv\\hub32"},
        {"<korwin>", korwin},
        {"<product_infos>", product_infos},
        {"$(program_files)", program_files},
        {"$(program_files_x86)", program_files_x86},
        {"<korwin_userdata>", userdata},
    };
    for (auto& [name, value] : entries)
        g_expandTable.push_back({name, std::move(value)});
}

// Positions come from a lower-cased copy of the text as it was before this
// macro's turn, and that copy isn't updated after a replacement.
void replace(std::string& result, const Macro& macro) {
    const std::string copy = lower(result);
    std::size_t at = copy.find(macro.name);
    while (at != std::string::npos) {
        if (at > result.size())
            break; // the text has shrunk below the old position
        result.replace(at, macro.name.size(), macro.value);
        at = copy.find(macro.name, at + std::max<std::size_t>(macro.value.size(), 1));
    }
}

} // namespace

std::string Expand(const std::string& text) {
    if (g_expandTable.empty())
        fill_table();
    std::string result = text;
    for (const Macro& macro : g_expandTable)
        replace(result, macro);
    return result;
}

void Expand_ClearTable() {
    g_expandTable.clear();
}
