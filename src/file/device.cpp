#include "qor/tools/file/device.h"

#include <cctype>
#include <thread>

#include "platform/drive_letters.h"
#include "platform/udisks.h"
#include "utf8.h"

namespace qor::tools::file {

namespace {

constexpr int kAttempts = 20;
constexpr auto kPause = std::chrono::milliseconds(500);

string Root(char16_t letter) {
    char16_t root[] = {letter, u':', u'/', 0};
    return string(root);
}

std::string DeviceOf(char16_t letter) { return platform::drives::Of(letter).mDevice; }

}  // namespace

unsigned _DriveType(char16_t const *root) {
    unsigned type = GetDriveTypeW(root);
    if (type != DRIVE_FIXED || !root || !root[0]) return type;
    char16_t upper = root[0] < 128 ? char16_t(std::toupper(int(root[0]))) : root[0];
    return upper >= u'F' && upper <= u'Z' ? DRIVE_REMOVABLE : DRIVE_FIXED;
}

void device::_OpenVolume(char16_t letter) {
    mVolume.Empty();
    if (_DriveType(Root(letter)) != DRIVE_CDROM) return;
    std::string block = DeviceOf(letter);
    if (!block.empty()) mVolume = string(detail::ToUtf16(block).c_str());
}

void device::_CloseVolume() { mVolume.Empty(); }

// Locking the volume is unmounting it: it fails while the volume is in use.
bool device::_LockVolume() {
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        if (platform::udisks::Unmount(detail::ToUtf8(mVolume.Safe()))) return true;
        std::this_thread::sleep_for(kPause);
    }
    return false;
}

bool device::_DismountVolume() { return platform::udisks::Unmount(detail::ToUtf8(mVolume.Safe())); }

bool device::_AutoEjectVolume() { return platform::udisks::EjectDrive(detail::ToUtf8(mVolume.Safe())); }

void device::EjectCDROM(char16_t letter) {
    _OpenVolume(letter);
    if (mVolume.IsEmpty()) return;
    if (_LockVolume() && _DismountVolume()) _AutoEjectVolume();
    _CloseVolume();
}

void device::EjectUsbMemory(char16_t letter) {
    std::string block = DeviceOf(letter);
    if (!block.empty()) platform::udisks::EjectUsbDrive(block);
}

void device::Eject(char16_t letter) {
    device d;
    switch (_DriveType(string(char16_t(letter)) + u":")) {
        case DRIVE_REMOVABLE: d.EjectUsbMemory(letter); break;
        case DRIVE_CDROM: d.EjectCDROM(letter); break;
        default: break;
    }
}

long long device::DiskFree(char16_t letter) {
    ULARGE_INTEGER available{0}, total{0}, free{0};
    GetDiskFreeSpaceExW(string(char16_t(letter)) + u":", &available, &total, &free);
    return static_cast<long long>(free.QuadPart);
}

}  // namespace qor::tools::file
