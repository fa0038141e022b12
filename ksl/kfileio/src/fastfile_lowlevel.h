// The file calls under the fast file classes and the whole-file functions.
#pragma once

#include "kplatform_file.h"

#include <cstddef>
#include <string>

namespace korv::detail {

// Reads up to `size` bytes; above 32 bits in several calls, stopping at the
// end of the file.
bool read64(platform::FileHandle file, void* buffer, std::size_t size, std::size_t& count);
// Writes all `size` bytes, above 32 bits in several calls.
bool write64(platform::FileHandle file, const void* data, std::size_t size, std::size_t& count);
// Opens an existing file for reading; others may read and write meanwhile.
bool openfile(const std::string& path, platform::FileHandle& file);
// Opens for writing by a KFF_ mode; others may read meanwhile. The invalid
// handle on failure.
platform::FileHandle openwritefile(const std::string& path, int mode);

} // namespace korv::detail
