// Drive letters on Linux. "C:" is the root of the file system. Mounts of
// removable and optical block devices take the letters from D: on, in the
// order of their mount points (sorted as bytes), as the mount table stands
// at the call; an application may instead tie a letter to a mount point
// itself, which then wins (and may name the block device behind it, for a
// mount the table does not show). Paths that begin with a letter reach its
// mount point; file::_DriveOf and file::device see the same letters.
//
//   SetDriveLetter(u'U', "/media/stick", nullptr);
//   GetDriveTypeW(u"U:\\");          // DRIVE_REMOVABLE
#pragma once

#include "qor/tools/export.h"

#include <cstdint>

#include "qor/tools/platform/types.h"

namespace qor::tools {

inline constexpr unsigned DRIVE_UNKNOWN = 0;
inline constexpr unsigned DRIVE_NO_ROOT_DIR = 1;
inline constexpr unsigned DRIVE_REMOVABLE = 2;
inline constexpr unsigned DRIVE_FIXED = 3;
inline constexpr unsigned DRIVE_REMOTE = 4;
inline constexpr unsigned DRIVE_CDROM = 5;
inline constexpr unsigned DRIVE_RAMDISK = 6;

union ULARGE_INTEGER {
    std::uint64_t QuadPart;
};

// Ties `letter` to `mountPoint` (null: forgets the application's tie), and
// to `device` (a block device such as "/dev/sdb1") when given.
QOR_TOOLS_API void SetDriveLetter(char16_t letter, char const *mountPoint, char const *device);
// The type of the drive whose root is "X:", "X:\" or "X:/": removable and
// optical by the block device (as the device service or the kernel tells),
// remote for network file systems, a RAM disk for tmpfs, no root for a
// letter with nothing behind it.
QOR_TOOLS_API unsigned GetDriveTypeW(char16_t const *root);
// Bytes free for the caller, in all, and free in all (every free block); false
// for a letter with nothing behind it.
QOR_TOOLS_API bool GetDiskFreeSpaceExW(char16_t const *root, ULARGE_INTEGER *available, ULARGE_INTEGER *total,
                                       ULARGE_INTEGER *free);

}  // namespace qor::tools
