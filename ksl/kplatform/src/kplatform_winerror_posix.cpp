#include "kplatform_winerror.h"

#include <cerrno>

namespace korv::platform {

std::string win32_error_text(DWORD code) {
    const char* text = nullptr;
    switch (static_cast<LONG>(code)) {
    case ERROR_SUCCESS:
        text = "The operation completed successfully.";
        break;
    case ERROR_FILE_NOT_FOUND:
        text = "The system cannot find the file specified.";
        break;
    case ERROR_PATH_NOT_FOUND:
        text = "The system cannot find the path specified.";
        break;
    case ERROR_ACCESS_DENIED:
        text = "Access is denied.";
        break;
    case ERROR_INVALID_HANDLE:
        text = "The handle is invalid.";
        break;
    case ERROR_NOT_ENOUGH_MEMORY:
        text = "Not enough memory resources are available to process this command.";
        break;
    case ERROR_WRITE_PROTECT:
        text = "The media is write protected.";
        break;
    case ERROR_INVALID_PARAMETER:
        text = "The parameter is incorrect.";
        break;
    case ERROR_DISK_FULL:
        text = "There is not enough space on the disk.";
        break;
    case ERROR_INSUFFICIENT_BUFFER:
        text = "The data area passed to a system call is too small.";
        break;
    case ERROR_BAD_PATHNAME:
        text = "The specified path is invalid.";
        break;
    case ERROR_MORE_DATA:
        text = "More data is available.";
        break;
    case ERROR_NO_MORE_ITEMS:
        text = "No more data is available.";
        break;
    case ERROR_BADDB:
        text = "The configuration registry database is corrupt.";
        break;
    case ERROR_BADKEY:
        text = "The configuration registry key is invalid.";
        break;
    case ERROR_CANTOPEN:
        text = "The configuration registry key could not be opened.";
        break;
    case ERROR_CANTREAD:
        text = "The configuration registry key could not be read.";
        break;
    case ERROR_CANTWRITE:
        text = "The configuration registry key could not be written.";
        break;
    case ERROR_REGISTRY_IO_FAILED:
        text = "An I/O operation initiated by the registry failed unrecoverably. The registry "
               "could not read in, or write out, or flush, one of the files that contain the "
               "system's image of the registry.";
        break;
    case ERROR_KEY_DELETED:
        text = "Illegal operation attempted on a registry key that has been marked for deletion.";
        break;
    case ERROR_RESOURCE_TYPE_NOT_FOUND:
        text = "The specified resource type cannot be found in the image file.";
        break;
    default:
        return {};
    }
    return std::string(text) + "\r\n";
}

LONG win32_error_from_errno(int error) {
    switch (error) {
    case 0:
        return ERROR_SUCCESS;
    case ENOENT:
        return ERROR_FILE_NOT_FOUND;
    case ENOTDIR:
        return ERROR_PATH_NOT_FOUND;
    case EACCES:
    case EPERM:
    case EISDIR:
        return ERROR_ACCESS_DENIED;
    case ENOMEM:
        return ERROR_NOT_ENOUGH_MEMORY;
    case EROFS:
        return ERROR_WRITE_PROTECT;
    case ENOSPC:
    case EDQUOT:
        return ERROR_DISK_FULL;
    case ENAMETOOLONG:
        return ERROR_BAD_PATHNAME;
    default:
        return ERROR_REGISTRY_IO_FAILED;
    }
}

LONG win32_error_of(std::uint32_t error) {
    return win32_error_from_errno(static_cast<int>(error));
}

} // namespace korv::platform
