// A stand-in for the disk service (UDisks2), for tests of ejecting: a
// private D-Bus daemon (made the process's system bus through
// DBUS_SYSTEM_BUS_ADDRESS) and, on it, a small service in a thread of its
// own that exports a USB stick of two partitions (/dev/sdb1, /dev/sdb2), an
// optical drive (/dev/sr0) and a fixed disk (/dev/sda1) with their Block,
// Filesystem and Drive objects, and records every method call it receives.
// A real USB stick cannot be plugged into a test machine; this is the
// system boundary the library talks to.
#pragma once

#include <gio/gio.h>

#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace qor::tools::testing {

class udisks_standin {
public:
    // With `serve` false only the bus runs: a service that is not there.
    explicit udisks_standin(bool serve = true);
    udisks_standin(udisks_standin const &) = delete;
    udisks_standin &operator=(udisks_standin const &) = delete;
    ~udisks_standin();

    bool Running() const { return mReady; }
    // "Unmount sdb1", "Eject Stick", "PowerOff Stick", ... in order.
    std::vector<std::string> Calls();
    // Unmounting this block ("sr0") fails as a busy volume does.
    void Busy(std::string const &block);

private:
    void Serve();

    GPid mDaemon = 0;
    std::string mAddress;
    bool mServe;
    bool mReady = false;
    std::thread mThread;
    GMainContext *mContext = nullptr;
    GMainLoop *mLoop = nullptr;
    GDBusConnection *mBus = nullptr;
    std::mutex mLock;
    std::vector<std::string> mCalls;
    std::set<std::string> mBusy;
    std::set<std::string> mUnmounted;

    friend struct standin_access;
};

}  // namespace qor::tools::testing
