// Whole-file replacement that a crash cannot tear. Every writer that rewrites
// a file goes through here: the new bytes go to a temporary file in the
// target's folder, are flushed to the disk, and the temporary file is renamed
// over the target. A reader, or a run killed at any moment, finds the old file
// or the new one, never a mix. The folders are flushed once each, at the end
// of the run, so that their renames too are on the disk.
//
// The temporary file is named ".~<target name>.<pid>.<8 hex digits>.tmp" (the
// target's name cut so that the whole fits a file name). A process killed
// before its rename leaves one behind; the next replacement of the same target
// in the same folder removes those whose process no longer runs (the folder is
// looked at once per run).
#pragma once

#include "kplatform_file.h"

#include <functional>
#include <string>
#include <string_view>

namespace korv::platform {

// Writes the new content through the handle; false if a write failed, with
// last_error() set. It neither flushes nor closes.
using ContentWriter = std::function<bool(FileHandle)>;

// Where a replacement failed.
enum class ReplaceStep {
    None,
    Target, // not writable (owner write bit off, or no write access), a folder, not a file
    Create, // the temporary file could not be created or given the target's bits
    Write,
    Flush,
    Close,
    Rename,
};
struct ReplaceFailure {
    ReplaceStep step = ReplaceStep::None;
    std::string temp; // the temporary file's path, once there was one
};

// Replaces the file at `path` (Windows-style or host form) with what `write`
// puts out. A symbolic link is followed and the file it names is replaced. A
// new file gets the bits an ordinary create gives; an existing one keeps its
// permission bits, and its owner where the process may set it. On failure the
// temporary file is removed, the target keeps its old bytes, `failure` (if
// given) tells where, and false comes back with last_error() set.
bool replace_file(const std::string& path, const ContentWriter& write,
                  ReplaceFailure* failure = nullptr);
bool replace_file(const std::string& path, std::string_view content,
                  ReplaceFailure* failure = nullptr);

// Flushes every folder a replacement renamed into since the last call. Runs by
// itself when the process exits normally.
void flush_replaced_folders();

} // namespace korv::platform
