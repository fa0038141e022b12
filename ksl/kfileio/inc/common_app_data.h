// Where the system keeps its common data and its caches.
#pragma once

#include <cstddef>
#include <string>

namespace korv {

// The common data folder: the value of KORV_CONFIGPATH if it is set, as it
// is and even if empty, which moves all common data of the system; else the
// platform's (C:\ProgramData).
bool GetCommonAppDataFolder(std::string& out);

// The common data folder, '\\', `first` and '\\' if given, `name` and '\\';
// with `create` the folders are made.
bool GetCommonAppDataFolderForProduct(std::string& out, const char* first, const char* name,
                                      bool create);
// The same into a buffer of `size` bytes; fails if it doesn't fit.
bool GetCommonAppDataFolderProduct(char* buffer, std::size_t size, const char* first,
                                   const char* name, bool create);

// The user's local data folder; KORV_CONFIGPATH doesn't move it.
bool get_cache_data_folder(std::string& out);

// The local data folder, '\\', `company`, '\\', `product`, '\\'.
bool GetCacheDataFolderProduct(std::string& out, const char* company, const char* product,
                               bool create);
bool GetCacheDataFolderProduct(char* buffer, std::size_t size, const char* company,
                               const char* product, bool create);

} // namespace korv
