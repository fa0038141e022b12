#include "common_app_data.h"

#include "errtrace.h"
#include "kdirtools.h"
#include "kplatform_shell_folders.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace korv {
namespace {

bool copy_to(const std::string& text, char* buffer, std::size_t size, const char* function) {
    if (!buffer || text.size() >= size) {
        KERRTRACE("%s(): folder name too long (%zu <= %zu)", function, size, text.size());
        return false;
    }
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return true;
}

} // namespace

bool GetCommonAppDataFolder(std::string& out) {
    if (const char* moved = std::getenv("KORV_CONFIGPATH")) {
        out = moved;
        return true;
    }
    char path[platform::MAX_PATH];
    if (!platform::SHGetSpecialFolderPathA(nullptr, path, platform::CSIDL_COMMON_APPDATA, false)) {
        KERRTRACE("GetCommonAppDataFolder() failed %s", std::strerror(errno));
        return false;
    }
    out = path;
    return true;
}

bool GetCommonAppDataFolderForProduct(std::string& out, const char* first, const char* name,
                                      bool create) {
    if (!name || !*name) {
        KERRTRACE("GetCommonAppDataFolderForProduct(): no company name");
        return false;
    }
    std::string folder;
    if (!GetCommonAppDataFolder(folder)) {
        KERRTRACE("GetCommonAppDataFolderForProduct(): GetCommonAppDataFolder() failed");
        return false;
    }
    folder += '\\';
    if (first && *first) {
        folder += first;
        folder += '\\';
    }
    folder += name;
    folder += '\\';
    out = folder;
    if (create && !createDirectoryRecursive(folder)) {
        KERRTRACE("GetCommonAppDataFolderForProduct createDirectoryRecursive(%s) failed",
                  folder.c_str());
        return false;
    }
    return true;
}

bool GetCommonAppDataFolderProduct(char* buffer, std::size_t size, const char* first,
                                   const char* name, bool create) {
    std::string folder;
    if (!GetCommonAppDataFolderForProduct(folder, first, name, create)) {
        KERRTRACE("GetCommonAppDataFolderProduct(): GetCommonAppDataFolderForProduct() failed");
        return false;
    }
    return copy_to(folder, buffer, size, "GetCommonAppDataFolderProduct");
}

bool get_cache_data_folder(std::string& out) {
    char path[platform::MAX_PATH];
    if (!platform::SHGetSpecialFolderPathA(nullptr, path, platform::CSIDL_LOCAL_APPDATA, false)) {
        KERRTRACE("get_cache_data_folder() failed %s", std::strerror(errno));
        return false;
    }
    out = path;
    return true;
}

bool GetCacheDataFolderProduct(std::string& out, const char* company, const char* product,
                               bool create) {
    const char* const function = "korv::GetCacheDataFolderProduct";
    if (!company || !*company) {
        KERRTRACE("%s(): company name is empty", function);
        return false;
    }
    if (!product || !*product) {
        KERRTRACE("%s(): product name is empty", function);
        return false;
    }
    std::string folder;
    if (!get_cache_data_folder(folder)) {
        KERRTRACE("%s(): get_cache_data_folder(%s) failed", function, folder.c_str());
        return false;
    }
    folder += '\\';
    folder += company;
    folder += '\\';
    folder += product;
    folder += '\\';
    out = folder;
    if (create && !createDirectoryRecursive(folder)) {
        KERRTRACE("%s(): createDirectoryRecursive(%s) failed", function, folder.c_str());
        return false;
    }
    return true;
}

bool GetCacheDataFolderProduct(char* buffer, std::size_t size, const char* company,
                               const char* product, bool create) {
    std::string folder;
    if (!GetCacheDataFolderProduct(folder, company, product, create))
        return false;
    return copy_to(folder, buffer, size, "GetCacheDataFolderProduct");
}

} // namespace korv
