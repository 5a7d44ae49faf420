// file::device: ejects removable media by drive letter, and tells a drive's
// free space. A USB stick is ejected through the disk service (its file
// systems unmounted, the drive ejected and powered off); optical media are
// unmounted and ejected, with 20 attempts half a second apart while the
// volume is busy. Nothing is reported: a failed eject leaves the drive as it
// was. Drive letters are those of qor/tools/platform/drives.h.
//
//   file::device::Eject(u'E');                 // whatever the drive is
//   long long free = file::device::DiskFree(u'C');
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/platform/drives.h"
#include "qor/tools/string.h"

namespace qor::tools::file {

class QOR_TOOLS_API device {
public:
    // Nothing to hold: copies are alike.
    device() = default;
    device(device const &) = default;
    device &operator=(device const &) = default;
    virtual ~device() = default;

    // Ejects the drive of `letter` by its type; as a USB stick; as optical
    // media. Nothing is reported.
    static void Eject(char16_t letter);
    void EjectUsbMemory(char16_t letter);
    void EjectCDROM(char16_t letter);
    // Every free byte of the drive's file system (not only the caller's); 0
    // for a letter with nothing behind it.
    static long long DiskFree(char16_t letter);

    // The open volume: the block device of an optical drive, or empty.
    string mVolume;

protected:
    void _OpenVolume(char16_t letter);
    void _CloseVolume();
    bool _LockVolume();
    bool _DismountVolume();
    bool _AutoEjectVolume();
};

// The drive's type, where a fixed drive from F: on counts as removable.
QOR_TOOLS_API unsigned _DriveType(char16_t const *root);

}  // namespace qor::tools::file
