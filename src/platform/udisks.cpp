// The disk service's objects are read in one GetManagedObjects call: block
// devices (their device file, their drive, their file system's mount points)
// and drives (bus, removable, optical, power off). Methods are called with
// no options and a timeout, so that a service that hangs cannot hang us.
#include "udisks.h"

#include <gio/gio.h>

#include <map>
#include <vector>

#include "qor/tools/platform/drives.h"

namespace qor::tools::platform::udisks {

namespace {

constexpr char kService[] = "org.freedesktop.UDisks2";
constexpr int kTimeout = 30000;

struct block {
    std::string mPath;
    std::string mDevice;
    std::string mDrive;
    bool mFilesystem = false;
    bool mMounted = false;
};

struct drive_info {
    std::string mBus;
    bool mRemovable = false;
    bool mOptical = false;
    bool mCanPowerOff = false;
};

struct objects {
    std::vector<block> mBlocks;
    std::map<std::string, drive_info> mDrives;
};

// A private connection: the shared one would end the process if the bus
// went away under it.
GDBusConnection *Bus() {
    gchar *address = g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr);
    if (!address) return nullptr;
    auto flags = GDBusConnectionFlags(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                      G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    GDBusConnection *bus = g_dbus_connection_new_for_address_sync(address, flags, nullptr, nullptr, nullptr);
    g_free(address);
    return bus;
}

std::string Bytes(GVariant *value) {
    gsize n = 0;
    auto const *p = static_cast<char const *>(g_variant_get_fixed_array(value, &n, 1));
    std::string s(p ? p : "", n);
    if (!s.empty() && s.back() == '\0') s.pop_back();
    return s;
}

bool Boolean(GVariant *properties, char const *name) {
    gboolean value = FALSE;
    return g_variant_lookup(properties, name, "b", &value) && value;
}

void ReadInterfaces(char const *path, GVariant *interfaces, objects &out) {
    GVariantIter iter;
    g_variant_iter_init(&iter, interfaces);
    char const *name = nullptr;
    GVariant *properties = nullptr;
    block b{path, "", "", false, false};
    bool isBlock = false;
    while (g_variant_iter_loop(&iter, "{&s@a{sv}}", &name, &properties)) {
        std::string interface = name;
        if (interface == "org.freedesktop.UDisks2.Block") {
            isBlock = true;
            if (GVariant *device = g_variant_lookup_value(properties, "Device", G_VARIANT_TYPE_BYTESTRING)) {
                b.mDevice = Bytes(device);
                g_variant_unref(device);
            }
            char const *drive = nullptr;
            if (g_variant_lookup(properties, "Drive", "&o", &drive)) b.mDrive = drive;
        } else if (interface == "org.freedesktop.UDisks2.Filesystem") {
            b.mFilesystem = true;
            if (GVariant *points = g_variant_lookup_value(properties, "MountPoints", G_VARIANT_TYPE("aay"))) {
                b.mMounted = g_variant_n_children(points) > 0;
                g_variant_unref(points);
            }
        } else if (interface == "org.freedesktop.UDisks2.Drive") {
            drive_info d;
            char const *bus = nullptr;
            if (g_variant_lookup(properties, "ConnectionBus", "&s", &bus)) d.mBus = bus;
            d.mRemovable = Boolean(properties, "Removable") || Boolean(properties, "MediaRemovable");
            d.mOptical = Boolean(properties, "Optical");
            d.mCanPowerOff = Boolean(properties, "CanPowerOff");
            out.mDrives[path] = d;
        }
    }
    if (isBlock) out.mBlocks.push_back(b);
}

bool Read(GDBusConnection *bus, objects &out) {
    GVariant *reply = g_dbus_connection_call_sync(bus, kService, "/org/freedesktop/UDisks2",
                                                  "org.freedesktop.DBus.ObjectManager", "GetManagedObjects", nullptr,
                                                  G_VARIANT_TYPE("(a{oa{sa{sv}}})"), G_DBUS_CALL_FLAGS_NO_AUTO_START,
                                                  kTimeout, nullptr, nullptr);
    if (!reply) return false;
    GVariant *all = g_variant_get_child_value(reply, 0);
    GVariantIter iter;
    g_variant_iter_init(&iter, all);
    char const *path = nullptr;
    GVariant *interfaces = nullptr;
    while (g_variant_iter_loop(&iter, "{&o@a{sa{sv}}}", &path, &interfaces)) ReadInterfaces(path, interfaces, out);
    g_variant_unref(all);
    g_variant_unref(reply);
    return true;
}

bool Call(GDBusConnection *bus, std::string const &path, char const *interface, char const *method) {
    GVariant *reply = g_dbus_connection_call_sync(bus, kService, path.c_str(), interface, method,
                                                  g_variant_new("(a{sv})", nullptr), nullptr,
                                                  G_DBUS_CALL_FLAGS_NO_AUTO_START, kTimeout, nullptr, nullptr);
    if (!reply) return false;
    g_variant_unref(reply);
    return true;
}

// The service's objects and a connection, for one operation.
class session {
public:
    session() : mBus(Bus()) { mRead = mBus && Read(mBus, mObjects); }
    session(session const &) = delete;
    session &operator=(session const &) = delete;
    ~session() {
        if (mBus) g_object_unref(mBus);
    }
    bool Ready() const { return mRead; }
    block const *BlockOf(std::string const &device) const {
        for (block const &b : mObjects.mBlocks) {
            if (!device.empty() && b.mDevice == device) return &b;
        }
        return nullptr;
    }
    drive_info const *DriveOf(block const &b) const {
        auto found = mObjects.mDrives.find(b.mDrive);
        return found == mObjects.mDrives.end() ? nullptr : &found->second;
    }
    std::vector<block> const &Blocks() const { return mObjects.mBlocks; }
    GDBusConnection *Connection() const { return mBus; }

private:
    GDBusConnection *mBus;
    objects mObjects;
    bool mRead = false;
};

bool UnmountBlock(session const &s, block const &b) {
    if (!b.mFilesystem || !b.mMounted) return true;
    return Call(s.Connection(), b.mPath, "org.freedesktop.UDisks2.Filesystem", "Unmount");
}

}  // namespace

unsigned DriveType(std::string const &device) {
    session s;
    block const *b = s.Ready() ? s.BlockOf(device) : nullptr;
    drive_info const *d = b ? s.DriveOf(*b) : nullptr;
    if (!d) return DRIVE_UNKNOWN;
    if (d->mOptical) return DRIVE_CDROM;
    return d->mRemovable ? DRIVE_REMOVABLE : DRIVE_FIXED;
}

bool EjectUsbDrive(std::string const &device) {
    session s;
    block const *b = s.Ready() ? s.BlockOf(device) : nullptr;
    drive_info const *d = b ? s.DriveOf(*b) : nullptr;
    if (!d || d->mBus != "usb" || !d->mRemovable) return false;
    for (block const &other : s.Blocks()) {
        if (other.mDrive == b->mDrive && !UnmountBlock(s, other)) return false;
    }
    bool ejected = Call(s.Connection(), b->mDrive, "org.freedesktop.UDisks2.Drive", "Eject");
    if (ejected && d->mCanPowerOff) Call(s.Connection(), b->mDrive, "org.freedesktop.UDisks2.Drive", "PowerOff");
    return ejected;
}

bool Unmount(std::string const &device) {
    session s;
    block const *b = s.Ready() ? s.BlockOf(device) : nullptr;
    return b && UnmountBlock(s, *b);
}

bool EjectDrive(std::string const &device) {
    session s;
    block const *b = s.Ready() ? s.BlockOf(device) : nullptr;
    return b && !b->mDrive.empty() && Call(s.Connection(), b->mDrive, "org.freedesktop.UDisks2.Drive", "Eject");
}

}  // namespace qor::tools::platform::udisks
