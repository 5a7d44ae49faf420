// file::device against a stand-in of the disk service on a private D-Bus
// bus (a real USB stick cannot be plugged in here): which drives are ejected
// and how, what is left alone, a busy optical volume, a missing service; and
// the letters' types, free space and paths.
#include <gtest/gtest.h>
#include <sys/statvfs.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "qor/tools/file/device.h"
#include "qor/tools/file/operations.h"
#include "support/temp_dir.h"
#include "support/udisks_standin.h"

using namespace qor::tools;
namespace qt = qor::tools::testing;
using Calls = std::vector<std::string>;

namespace {

class Device : public ::testing::Test {
protected:
    void TearDown() override {
        for (char16_t letter : {u'U', u'V', u'E', u'D', u'G', u'M'}) SetDriveLetter(letter, nullptr, nullptr);
    }
};

}  // namespace

TEST_F(Device, TheUsbRoadUnmountsEveryPartitionAndEjectsThatDrive) {
    qt::udisks_standin service;
    ASSERT_TRUE(service.Running());
    SetDriveLetter(u'U', "/media/stick2", "/dev/sdb2");  // the second partition: the drive matches all the same
    EXPECT_EQ(GetDriveTypeW(u"U:\\"), DRIVE_REMOVABLE);
    file::device::Eject(u'U');
    EXPECT_EQ(service.Calls(), (Calls{"Unmount sdb1", "Unmount sdb2", "Eject Stick", "PowerOff Stick"}));
}

TEST_F(Device, FixedDisksAreLeftAlone) {
    qt::udisks_standin service;
    ASSERT_TRUE(service.Running());
    SetDriveLetter(u'D', "/mnt/data", "/dev/sda1");
    EXPECT_EQ(GetDriveTypeW(u"D:"), DRIVE_FIXED);
    EXPECT_EQ(file::_DriveType(u"d:"), DRIVE_FIXED);
    file::device::Eject(u'D');
    SetDriveLetter(u'G', "/mnt/data", "/dev/sda1");  // fixed, but from F: on it counts as removable
    EXPECT_EQ(file::_DriveType(u"G:"), DRIVE_REMOVABLE);
    file::device::Eject(u'G');  // the USB road finds no USB drive holding it
    file::device().EjectCDROM(u'G');  // not optical: no volume
    EXPECT_EQ(service.Calls(), Calls{});
}

TEST_F(Device, AnOpticalDiscIsUnmountedAndEjected) {
    qt::udisks_standin service;
    ASSERT_TRUE(service.Running());
    SetDriveLetter(u'E', "/media/disc", "/dev/sr0");
    EXPECT_EQ(GetDriveTypeW(u"E:/"), DRIVE_CDROM);
    file::device::Eject(u'E');
    EXPECT_EQ(service.Calls(), (Calls{"Unmount sr0", "Eject Disc"}));
}

TEST_F(Device, ABusyVolumeGetsTwentyAttemptsAndNoEject) {
    qt::udisks_standin service;
    ASSERT_TRUE(service.Running());
    service.Busy("sr0");
    SetDriveLetter(u'V', "/media/disc", "/dev/sr0");
    auto start = std::chrono::steady_clock::now();
    file::device().EjectCDROM(u'V');
    auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(service.Calls(), Calls(20, "Unmount sr0"));
    EXPECT_GE(waited, std::chrono::milliseconds(9500));  // 20 attempts, half a second apart
}

TEST_F(Device, AMissingServiceIsSilent) {
    qt::udisks_standin busOnly(false);
    ASSERT_TRUE(busOnly.Running());
    SetDriveLetter(u'U', "/media/stick", "/dev/sdb1");
    EXPECT_EQ(GetDriveTypeW(u"U:"), DRIVE_FIXED);  // neither the service nor the kernel knows the device
    file::device::Eject(u'U');
    file::device().EjectUsbMemory(u'U');
}

TEST_F(Device, FreeSpaceAndPathsFollowTheLetters) {
    struct statvfs root {};
    ASSERT_EQ(::statvfs("/", &root), 0);
    long long expected = (long long)root.f_bfree * (long long)root.f_frsize;
    EXPECT_NEAR(double(file::device::DiskFree(u'C')), double(expected), 64.0 * 1024 * 1024);
    EXPECT_EQ(file::device::DiskFree(u'Q'), 0);
    EXPECT_EQ(GetDriveTypeW(u"Q:"), DRIVE_NO_ROOT_DIR);
    EXPECT_EQ(GetDriveTypeW(u"C:\\"), DRIVE_FIXED);
    EXPECT_EQ(GetDriveTypeW(nullptr), DRIVE_NO_ROOT_DIR);

    qt::temp_dir dir;
    SetDriveLetter(u'M', dir.Path().c_str(), nullptr);
    std::ofstream(dir.Path("seen.txt")) << "x";
    file::CreateFolder(u"M:\\made\\deeper");
    EXPECT_TRUE(std::filesystem::is_directory(dir.Path("made/deeper")));
    file::_CopyFile(u"m:/seen.txt", u"M:\\made\\copy.txt", false);
    EXPECT_TRUE(std::filesystem::is_regular_file(dir.Path("made/copy.txt")));
    EXPECT_EQ(std::u16string(file::_DriveOf(u"M:\\seen.txt")), u"M:");
    EXPECT_GT(file::device::DiskFree(u'M'), 0);
}
