#include "last_error.h"

#include <cerrno>

#include "qor/tools/platform/kernel.h"

namespace qor::tools::platform {

DWORD ErrorOf(int error) noexcept {
    switch (error) {
        case 0: return ERROR_SUCCESS;
        case ENOENT: return ERROR_FILE_NOT_FOUND;
        case ENOTDIR: return ERROR_PATH_NOT_FOUND;
        case EMFILE:
        case ENFILE: return ERROR_TOO_MANY_OPEN_FILES;
        case EACCES:
        case EPERM: return ERROR_ACCESS_DENIED;
        case EBADF: return ERROR_INVALID_HANDLE;
        case ENOMEM: return ERROR_NOT_ENOUGH_MEMORY;
        case EXDEV: return ERROR_NOT_SAME_DEVICE;
        case EROFS: return ERROR_WRITE_PROTECT;
        case EIO: return ERROR_GEN_FAILURE;
        case EEXIST: return ERROR_ALREADY_EXISTS;
        case EINVAL: return ERROR_INVALID_PARAMETER;
        case ENOSPC:
        case EDQUOT:
        case EFBIG: return ERROR_DISK_FULL;
        case ENOTEMPTY: return ERROR_DIR_NOT_EMPTY;
        case EBUSY: return ERROR_BUSY;
        case ENAMETOOLONG: return ERROR_FILENAME_EXCED_RANGE;
        case EISDIR: return ERROR_DIRECTORY;
        case ELOOP: return ERROR_CANT_RESOLVE_FILENAME;
        default: return ERROR_IO_DEVICE;
    }
}

bool KeepErrno() noexcept {
    SetLastError(ErrorOf(errno));
    return false;
}

}  // namespace qor::tools::platform
