// The profile calls, which read and write single entries of ini files, with
// the behaviour of Windows' own:
// - section and key names compare ignoring ASCII case; spaces around the
//   names asked for are ignored;
// - in the file, blanks (space, tab, vertical tab) around names and values
//   are dropped, and a value in matching single or double quotes comes back
//   without them;
// - a line whose first non-blank character is ';' is a comment, but a ';'
//   later in a line is part of the name or value; text before the first
//   section and behind a section's ']' is ignored;
// - the first of several equal sections or keys counts;
// - a missing file, section or key gives the default, without its trailing
//   spaces;
// - a value longer than the buffer is cut to fit with its terminator.
// Writes change the text in place: a value is replaced on its line, a new key
// goes behind the last key of its section, a new section at the end of the
// file, which is created if missing (its folder is not). The file is replaced
// whole (replace_file), and a file that is not writable is refused. New lines end in
// CR LF. A relative path resolves against the current directory. Paths may be
// Windows-style. A parsed file is kept until its size or time stamps change.
#pragma once

#include "kplatform_winerror.h"

namespace korv::platform {

// The value of `key` in `section`, or the default. A null `section` lists
// the section names, a null `key` the keys of the section, each followed by
// a NUL and the list by another; a list cut to fit ends in two NULs. The
// result is the number of bytes copied without the (last) terminator:
// `size` - 1 for a cut value, `size` - 2 for a cut list.
DWORD GetPrivateProfileStringA(const char* section, const char* key, const char* fallback,
                               char* buffer, DWORD size, const char* file);

// Sets `key` in `section` to `value`. A null `value` removes the key, a null
// `key` the whole section (its comment lines stay). All null forgets the
// parsed files and answers false, as Windows does when it flushes its cache.
// False on failure with last_error() set.
BOOL WritePrivateProfileStringA(const char* section, const char* key, const char* value,
                                const char* file);

} // namespace korv::platform
