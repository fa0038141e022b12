// Registry access: a few free functions over the platform's registry, all
// guarded by one process-wide lock held for the length of each call (but
// RegValueExists). Keys are text paths below a root; reads see the 32-bit
// view of the registry, as the suite's 32-bit programs do.
//
// Nothing here logs, with two exceptions: RegReportError, which shows its
// message, and a registry file that can't be read, which is reported once in
// the error log by the call that first meets it.
#pragma once

#include "kplatform_registry.h"

#include <functional>
#include <string>
#include <vector>

namespace korv {

using platform::DWORD;
using platform::HKEY;
using platform::LONG;

// Shows a message box: text, caption and type (MB_ flags). The dialog layer
// installs one; without it the message goes to the error log.
using RegMessageBoxHook =
    std::function<void(const std::string& text, const std::string& caption, unsigned type)>;
void RegSetMessageBoxHook(RegMessageBoxHook hook);

// The type RegReportError shows its message with: MB_ICONWARNING.
inline constexpr unsigned kRegErrorBoxType = 0x30;

// A REG_SZ value into `buffer`; `size` holds its capacity on entry. True with
// `size` the length read (terminator included) and the last byte of the
// capacity forced to zero. A value that doesn't fit gives false with `size`
// the length needed; any other failure or type gives false and `size` 0.
bool RegReadString(HKEY root, const char* key, const char* value, char* buffer, DWORD& size);

// A REG_SZ value of HKEY_LOCAL_MACHINE, or `fallback` (the empty string in
// the two-argument form). The text lives in one of 16 buffers used in turn
// (8 larger ones for values of 260 bytes or more, one heap block for 65535
// or more), so it stays good for the next 15 reads of a short value.
const char* RegReadStringLM(const char* key, const char* value);
const char* RegReadStringLM(const char* key, const char* value, const char* fallback);

// Writes a REG_SZ value; the key is created if it can't be opened.
bool RegWriteString(HKEY root, const char* key, const char* value, const char* text);

// A double as 8 bytes of REG_BINARY.
double RegReadDouble(HKEY root, const char* key, const char* value, double fallback);
bool RegWriteDouble(HKEY root, const char* key, const char* value, double number);

// A REG_QWORD. The read asks for 4 bytes only, so a genuine 8-byte value
// gives the fallback; the suite's tools rely on this as it is.
bool RegWriteLongLong(HKEY root, const char* key, const char* value, long long number);
long long RegReadLongLong(HKEY root, const char* key, const char* value, long long fallback);

// HKEY_LOCAL_MACHINE only.
bool RegDeleteValue(const char* key, const char* value);
bool RegValueExists(const char* key, const char* value);
// False for a null or missing key; other failures also go to RegReportError.
bool RegDeleteKey(const char* key);

// Every value of a key: name, type, a copy of its data and its size, in
// parallel, and the names of the sub-keys if `sub_keys` is given.
bool RegEnumValues(HKEY root, const char* key, std::vector<std::string>& names,
                   std::vector<DWORD>& types, std::vector<std::vector<unsigned char>>& data,
                   std::vector<DWORD>& sizes, std::vector<std::string>* sub_keys);

// True for 0 and 259 (no more items). Any other code is shown as the system's
// text for it, caption "Registry access error", warning icon; false.
bool RegReportError(LONG code);

} // namespace korv
