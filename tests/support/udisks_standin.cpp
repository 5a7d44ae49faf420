#include "support/udisks_standin.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <condition_variable>
#include <cstdlib>
#include <map>

namespace qor::tools::testing {

namespace {

constexpr char kIntrospection[] = R"(<node>
  <interface name='org.freedesktop.DBus.ObjectManager'>
    <method name='GetManagedObjects'><arg type='a{oa{sa{sv}}}' direction='out'/></method>
  </interface>
  <interface name='org.freedesktop.UDisks2.Filesystem'>
    <method name='Unmount'><arg type='a{sv}' direction='in'/></method>
  </interface>
  <interface name='org.freedesktop.UDisks2.Drive'>
    <method name='Eject'><arg type='a{sv}' direction='in'/></method>
    <method name='PowerOff'><arg type='a{sv}' direction='in'/></method>
  </interface>
</node>)";

constexpr char kRoot[] = "/org/freedesktop/UDisks2";
constexpr char kBlocks[] = "/org/freedesktop/UDisks2/block_devices/";
constexpr char kDrives[] = "/org/freedesktop/UDisks2/drives/";

struct block_def {
    char const *name, *device, *drive, *mount;
};
constexpr block_def kBlockDefs[] = {
    {"sdb1", "/dev/sdb1", "Stick", "/media/stick"},
    {"sdb2", "/dev/sdb2", "Stick", "/media/stick2"},
    {"sr0", "/dev/sr0", "Disc", "/media/disc"},
    {"sda1", "/dev/sda1", "Disk", "/mnt/data"},
};

struct drive_def {
    char const *name, *bus;
    bool removable, optical, powerOff;
};
constexpr drive_def kDriveDefs[] = {
    {"Stick", "usb", true, false, true},
    {"Disc", "", true, true, false},
    {"Disk", "sata", false, false, false},
};

GVariant *Bytes(char const *text) { return g_variant_new_bytestring(text); }

std::string Leaf(char const *path) {
    std::string p = path;
    return p.substr(p.rfind('/') + 1);
}

}  // namespace

struct standin_access {
    static GVariant *Objects(udisks_standin &s) {
        std::lock_guard guard(s.mLock);
        GVariantBuilder all;
        g_variant_builder_init(&all, G_VARIANT_TYPE("a{oa{sa{sv}}}"));
        for (block_def const &b : kBlockDefs) {
            GVariantBuilder interfaces, block, fs, points;
            g_variant_builder_init(&interfaces, G_VARIANT_TYPE("a{sa{sv}}"));
            g_variant_builder_init(&block, G_VARIANT_TYPE("a{sv}"));
            g_variant_builder_add(&block, "{sv}", "Device", Bytes(b.device));
            g_variant_builder_add(&block, "{sv}", "Drive",
                                  g_variant_new_object_path((std::string(kDrives) + b.drive).c_str()));
            g_variant_builder_add(&interfaces, "{sa{sv}}", "org.freedesktop.UDisks2.Block", &block);
            g_variant_builder_init(&points, G_VARIANT_TYPE("aay"));
            if (!s.mUnmounted.count(b.name)) g_variant_builder_add(&points, "@ay", Bytes(b.mount));
            g_variant_builder_init(&fs, G_VARIANT_TYPE("a{sv}"));
            g_variant_builder_add(&fs, "{sv}", "MountPoints", g_variant_builder_end(&points));
            g_variant_builder_add(&interfaces, "{sa{sv}}", "org.freedesktop.UDisks2.Filesystem", &fs);
            g_variant_builder_add(&all, "{oa{sa{sv}}}", (std::string(kBlocks) + b.name).c_str(), &interfaces);
        }
        for (drive_def const &d : kDriveDefs) {
            GVariantBuilder interfaces, drive;
            g_variant_builder_init(&interfaces, G_VARIANT_TYPE("a{sa{sv}}"));
            g_variant_builder_init(&drive, G_VARIANT_TYPE("a{sv}"));
            g_variant_builder_add(&drive, "{sv}", "ConnectionBus", g_variant_new_string(d.bus));
            g_variant_builder_add(&drive, "{sv}", "Removable", g_variant_new_boolean(d.removable));
            g_variant_builder_add(&drive, "{sv}", "MediaRemovable", g_variant_new_boolean(d.removable));
            g_variant_builder_add(&drive, "{sv}", "Optical", g_variant_new_boolean(d.optical));
            g_variant_builder_add(&drive, "{sv}", "CanPowerOff", g_variant_new_boolean(d.powerOff));
            g_variant_builder_add(&interfaces, "{sa{sv}}", "org.freedesktop.UDisks2.Drive", &drive);
            g_variant_builder_add(&all, "{oa{sa{sv}}}", (std::string(kDrives) + d.name).c_str(), &interfaces);
        }
        return g_variant_new("(a{oa{sa{sv}}})", &all);
    }

    static void Method(GDBusConnection *, char const *, char const *path, char const *, char const *method,
                       GVariant *, GDBusMethodInvocation *invocation, gpointer self) {
        auto &s = *static_cast<udisks_standin *>(self);
        std::string name = method;
        if (name == "GetManagedObjects") {
            g_dbus_method_invocation_return_value(invocation, Objects(s));
            return;
        }
        std::string leaf = Leaf(path);
        bool busy = false;
        {
            std::lock_guard guard(s.mLock);
            s.mCalls.push_back(name + " " + leaf);
            busy = name == "Unmount" && s.mBusy.count(leaf);
            if (name == "Unmount" && !busy) s.mUnmounted.insert(leaf);
        }
        if (busy) {
            g_dbus_method_invocation_return_dbus_error(invocation, "org.freedesktop.UDisks2.Error.DeviceBusy",
                                                       "Target is busy");
            return;
        }
        g_dbus_method_invocation_return_value(invocation, nullptr);
    }
};

udisks_standin::udisks_standin(bool serve) : mServe(serve) {
    gchar *argv[] = {const_cast<gchar *>("dbus-daemon"), const_cast<gchar *>("--session"),
                     const_cast<gchar *>("--nofork"), const_cast<gchar *>("--print-address=1"), nullptr};
    gint out = -1;
    if (!g_spawn_async_with_pipes(nullptr, argv, nullptr, GSpawnFlags(G_SPAWN_SEARCH_PATH | G_SPAWN_DO_NOT_REAP_CHILD),
                                  nullptr, nullptr, &mDaemon, nullptr, &out, nullptr, nullptr)) {
        return;
    }
    char c = 0;
    while (::read(out, &c, 1) == 1 && c != '\n') mAddress += c;
    ::close(out);
    if (mAddress.empty()) return;
    ::setenv("DBUS_SYSTEM_BUS_ADDRESS", mAddress.c_str(), 1);
    if (!mServe) {
        mReady = true;
        return;
    }
    std::mutex started;
    std::condition_variable signal;
    bool done = false;
    mThread = std::thread([&] {
        mContext = g_main_context_new();
        g_main_context_push_thread_default(mContext);
        mLoop = g_main_loop_new(mContext, FALSE);
        Serve();
        {
            std::lock_guard guard(started);
            done = true;
        }
        signal.notify_one();
        if (mReady) g_main_loop_run(mLoop);
        g_main_context_pop_thread_default(mContext);
    });
    std::unique_lock wait(started);
    signal.wait(wait, [&] { return done; });
}

void udisks_standin::Serve() {
    auto flags = GDBusConnectionFlags(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                      G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    mBus = g_dbus_connection_new_for_address_sync(mAddress.c_str(), flags, nullptr, nullptr, nullptr);
    GDBusConnection *bus = mBus;
    if (!bus) return;
    GDBusNodeInfo *node = g_dbus_node_info_new_for_xml(kIntrospection, nullptr);
    static GDBusInterfaceVTable const table = {standin_access::Method, nullptr, nullptr, {}};
    g_dbus_connection_register_object(bus, kRoot, node->interfaces[0], &table, this, nullptr, nullptr);
    for (block_def const &b : kBlockDefs) {
        g_dbus_connection_register_object(bus, (std::string(kBlocks) + b.name).c_str(), node->interfaces[1], &table,
                                          this, nullptr, nullptr);
    }
    for (drive_def const &d : kDriveDefs) {
        g_dbus_connection_register_object(bus, (std::string(kDrives) + d.name).c_str(), node->interfaces[2], &table,
                                          this, nullptr, nullptr);
    }
    g_dbus_node_info_unref(node);
    GVariant *reply = g_dbus_connection_call_sync(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                  "org.freedesktop.DBus", "RequestName",
                                                  g_variant_new("(su)", "org.freedesktop.UDisks2", 4u), nullptr,
                                                  G_DBUS_CALL_FLAGS_NONE, 5000, nullptr, nullptr);
    if (reply) g_variant_unref(reply);
    mReady = reply != nullptr;
}

udisks_standin::~udisks_standin() {
    if (mThread.joinable()) {
        if (mReady) g_main_context_invoke(mContext, [](gpointer loop) {
            g_main_loop_quit(static_cast<GMainLoop *>(loop));
            return G_SOURCE_REMOVE;
        }, mLoop);
        mThread.join();
    }
    if (mBus) {
        g_dbus_connection_close_sync(mBus, nullptr, nullptr);
        g_object_unref(mBus);
    }
    if (mLoop) g_main_loop_unref(mLoop);
    if (mContext) g_main_context_unref(mContext);
    if (mDaemon) {
        ::kill(mDaemon, SIGTERM);
        ::waitpid(mDaemon, nullptr, 0);
        g_spawn_close_pid(mDaemon);
    }
    ::unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
}

std::vector<std::string> udisks_standin::Calls() {
    std::lock_guard guard(mLock);
    return mCalls;
}

void udisks_standin::Busy(std::string const &block) {
    std::lock_guard guard(mLock);
    mBusy.insert(block);
}

}  // namespace qor::tools::testing
