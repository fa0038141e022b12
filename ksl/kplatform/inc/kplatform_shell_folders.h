// The shell's special folders, answered in Windows form so that every literal
// Windows path of the system and these folders land in one tree.
#pragma once

#include <string>

namespace korv::platform {

inline constexpr int CSIDL_LOCAL_APPDATA = 0x001c;
inline constexpr int CSIDL_COMMON_APPDATA = 0x0023;
inline constexpr int CSIDL_PROGRAM_FILES = 0x0026;
inline constexpr int CSIDL_PROGRAM_FILESX86 = 0x002a;
inline constexpr int CSIDL_PROGRAM_FILES_COMMONX86 = 0x002c;

inline constexpr int MAX_PATH = 260;

// The folder in Windows form: "C:\\ProgramData", "C:\\Program Files",
// "C:\\Program Files (x86)", "C:\\Program Files (x86)\\Common Files",
// "C:\\Users\\<user>\\AppData\\Local". False for an unknown folder id.
bool special_folder(int csidl, std::string& out);

// The shell call itself: `path` holds MAX_PATH bytes. With `create` the folder
// is made if it is missing. `owner` is unused, as no window is ever shown.
bool SHGetSpecialFolderPathA(void* owner, char* path, int csidl, bool create);

} // namespace korv::platform
