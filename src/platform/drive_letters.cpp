// The letters: the application's ties first, then the mount table's
// removable and optical mounts from D: on, sorted by mount point.
#include "drive_letters.h"

#include <sys/statvfs.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <map>
#include <mutex>
#include <sstream>
#include <vector>

#include "qor/tools/platform/drives.h"
#include "udisks.h"

namespace qor::tools::platform::drives {

namespace {

std::mutex gTiesLock;
std::map<char, drive> gTies;

char Upper(char16_t letter) {
    return letter < 128 ? char(std::toupper(int(letter))) : '\0';
}

// "\040" and the like in the mount table's fields.
std::string Unescaped(std::string const &field) {
    std::string out;
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size() && std::isdigit(static_cast<unsigned char>(field[i + 1]))) {
            out += char(std::stoi(field.substr(i + 1, 3), nullptr, 8));
            i += 3;
        } else {
            out += field[i];
        }
    }
    return out;
}

std::vector<drive> Mounts() {
    std::vector<drive> mounts;
    std::ifstream table("/proc/self/mounts");
    std::string line;
    while (std::getline(table, line)) {
        std::istringstream fields(line);
        std::string device, point, type;
        if (fields >> device >> point >> type) mounts.push_back({Unescaped(point), Unescaped(device), type});
    }
    return mounts;
}

// The whole disk of a partition's kernel name ("sdb1" → "sdb"), by sysfs.
std::string DiskOf(std::string const &name) {
    std::ifstream partition("/sys/class/block/" + name + "/partition");
    if (!partition) return name;
    std::string disk = name;
    while (!disk.empty() && std::isdigit(static_cast<unsigned char>(disk.back()))) disk.pop_back();
    if (disk.size() > 1 && disk.back() == 'p' && std::isdigit(static_cast<unsigned char>(disk[disk.size() - 2]))) {
        disk.pop_back();  // nvme0n1p2, mmcblk0p1
    }
    return disk;
}

std::string Base(std::string const &device) { return device.substr(device.rfind('/') + 1); }

bool Removable(std::string const &device) {
    if (device.rfind("/dev/", 0) != 0) return false;
    std::string name = Base(device);
    if (name.rfind("sr", 0) == 0) return true;
    std::ifstream flag("/sys/class/block/" + DiskOf(name) + "/removable");
    int removable = 0;
    return flag >> removable && removable == 1;
}

}  // namespace

drive Of(char16_t letter) {
    char upper = Upper(letter);
    if (upper < 'A' || upper > 'Z') return {};
    {
        std::lock_guard guard(gTiesLock);
        auto tied = gTies.find(upper);
        if (tied != gTies.end()) return tied->second;
    }
    std::vector<drive> mounts = Mounts();
    if (upper == 'C') {
        for (drive const &m : mounts) {
            if (m.mMountPoint == "/") return m;
        }
        return {"/", "", ""};
    }
    std::vector<drive> removable;
    for (drive const &m : mounts) {
        if (Removable(m.mDevice)) removable.push_back(m);
    }
    std::sort(removable.begin(), removable.end(),
              [](drive const &a, drive const &b) { return a.mMountPoint < b.mMountPoint; });
    std::size_t index = std::size_t(upper - 'D');
    if (upper < 'D' || index >= removable.size()) return {};
    return removable[index];
}

std::string MountPointOf(char16_t letter) { return Of(letter).mMountPoint; }

}  // namespace qor::tools::platform::drives

namespace qor::tools {

namespace {

char16_t LetterOf(char16_t const *root) {
    if (!root || !root[0] || root[1] != u':') return 0;
    return root[0];
}

bool Remote(std::string const &type) {
    static char const *const kRemote[] = {"nfs", "nfs4", "cifs", "smb3", "smbfs", "fuse.sshfs", "9p", "afs", "ceph"};
    return std::find_if(std::begin(kRemote), std::end(kRemote), [&](char const *t) { return type == t; }) !=
           std::end(kRemote);
}

}  // namespace

void SetDriveLetter(char16_t letter, char const *mountPoint, char const *device) {
    char upper = letter < 128 ? char(std::toupper(int(letter))) : '\0';
    if (upper < 'A' || upper > 'Z') return;
    std::lock_guard guard(platform::drives::gTiesLock);
    if (!mountPoint) {
        platform::drives::gTies.erase(upper);
        return;
    }
    std::string fsType;
    std::string dev = device ? device : "";
    if (dev.empty()) {
        for (auto const &m : platform::drives::Mounts()) {
            if (m.mMountPoint == mountPoint) {
                dev = m.mDevice;
                fsType = m.mFsType;
            }
        }
    }
    platform::drives::gTies[upper] = {mountPoint, dev, fsType};
}

unsigned GetDriveTypeW(char16_t const *root) {
    char16_t letter = LetterOf(root);
    if (!letter) return DRIVE_NO_ROOT_DIR;
    platform::drives::drive d = platform::drives::Of(letter);
    if (d.mMountPoint.empty()) return DRIVE_NO_ROOT_DIR;
    if (Remote(d.mFsType)) return DRIVE_REMOTE;
    if (d.mFsType == "tmpfs" || d.mFsType == "ramfs") return DRIVE_RAMDISK;
    unsigned byService = platform::udisks::DriveType(d.mDevice);
    if (byService != DRIVE_UNKNOWN) return byService;
    if (platform::drives::Removable(d.mDevice)) {
        return platform::drives::Base(d.mDevice).rfind("sr", 0) == 0 ? DRIVE_CDROM : DRIVE_REMOVABLE;
    }
    return DRIVE_FIXED;
}

bool GetDiskFreeSpaceExW(char16_t const *root, ULARGE_INTEGER *available, ULARGE_INTEGER *total, ULARGE_INTEGER *free) {
    char16_t letter = LetterOf(root);
    std::string point = letter ? platform::drives::MountPointOf(letter) : std::string();
    struct statvfs s {};
    if (point.empty() || ::statvfs(point.c_str(), &s) != 0) return false;
    if (available) available->QuadPart = std::uint64_t(s.f_bavail) * s.f_frsize;
    if (total) total->QuadPart = std::uint64_t(s.f_blocks) * s.f_frsize;
    if (free) free->QuadPart = std::uint64_t(s.f_bfree) * s.f_frsize;
    return true;
}

}  // namespace qor::tools
