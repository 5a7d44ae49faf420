// The disk service (UDisks2) on the system bus, through GIO: what kind of
// drive holds a block device, and the orderly ways to let go of one. Every
// call is silent: without the service (or the bus) nothing happens and the
// answers are "unknown" and false.
#pragma once

#include <string>

namespace qor::tools::platform::udisks {

// DRIVE_CDROM, DRIVE_REMOVABLE or DRIVE_FIXED for the drive of a block
// device ("/dev/sdb1"); DRIVE_UNKNOWN when the service does not know it.
unsigned DriveType(std::string const &device);

// The USB road: when the device's drive is on USB and removable, every
// mounted file system of that drive (any partition) is unmounted, then the
// drive is ejected and, where it offers it, powered off. False when the
// drive is not such a one, or a step failed.
bool EjectUsbDrive(std::string const &device);

// The optical road, one step at a time: unmount the device's file system
// (true also when it is not mounted), and eject its drive.
bool Unmount(std::string const &device);
bool EjectDrive(std::string const &device);

}  // namespace qor::tools::platform::udisks
