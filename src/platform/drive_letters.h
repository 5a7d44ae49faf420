// What stands behind a drive letter: its mount point, the block device
// mounted there, and the file system's type.
#pragma once

#include <string>

namespace qor::tools::platform::drives {

struct drive {
    std::string mMountPoint;  // empty: nothing behind the letter
    std::string mDevice;      // the block device, or empty
    std::string mFsType;
};

drive Of(char16_t letter);
// The letter's root in a path ("D:" → "/media/disc"), empty when unmapped.
std::string MountPointOf(char16_t letter);

}  // namespace qor::tools::platform::drives
