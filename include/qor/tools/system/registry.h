// system::registry: one open key of the registry store, with static forms
// that open, act and close in one call; registry::data: one typed value.
// Failures are false results (or nothing, for deletes); nothing throws.
//
//   system::registry::SetInteger(HKEY_CURRENT_USER, u"Software\\App", u"Width", 1024);
//   int width = system::registry::GetInteger(HKEY_CURRENT_USER, u"Software\\App", u"Width", 800);
//   system::registry key(HKEY_CURRENT_USER, u"Software\\App", true);
//   key.Set(u"Name", system::registry::data(u"写真"));
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/platform/registry.h"
#include "qor/tools/string.h"

namespace qor::tools::system {

class QOR_TOOLS_API registry {
public:
    // A value and its type: the constructor's argument type picks the type
    // (int and unsigned long REG_DWORD, long long REG_QWORD, texts REG_SZ,
    // double and bytes REG_BINARY); the conversions read it back by type.
    class QOR_TOOLS_API data {
    public:
        // No value (type 0), or a value of the argument's type; copies own
        // their bytes.
        data() = default;
        data(int value) { Set(value); }
        data(unsigned long value) { Set(value); }
        data(long long value) { Set(value); }
        data(char16_t const *text) { Set(text); }
        data(char const *text) { Set(text); }
        data(double value) { Set(value); }
        data(void const *bytes, unsigned long size) { Set(bytes, size); }
        data(data const &other) { _Copy(other.mType, other.mBytes, other.mSize); }
        data &operator=(data const &other);
        virtual ~data();

        // Replaces the value (and its type) as the constructors make it.
        void Set(int value);
        void Set(unsigned long value);
        void Set(long long value);
        void Set(char16_t const *text);
        void Set(char const *text);
        void Set(double value);
        void Set(void const *bytes, unsigned long size);

        // The value read as the asked type: 0 or null when it holds another.
        operator int() const;
        operator unsigned long() const;
        operator long long() const;
        operator char16_t const *() const;
        operator char const *() const;
        operator double() const;
        operator void *() const { return mBytes; }
        // The REG_ type, the size in bytes and the bytes themselves.
        unsigned long Type() const { return mType; }
        int Size() const { return mSize; }
        unsigned char *Data() const { return mBytes; }

    protected:
        friend class registry;
        void _Alloc(unsigned long type, int size);
        void _Copy(unsigned long type, void const *bytes, int size);

        unsigned long mType = 0;
        unsigned char *mBytes = nullptr;
        int mSize = 0;
    };

    // No key open, or the key at `path` under `root` opened (made first when
    // `create`).
    registry() = default;
    registry(HKEY root, char16_t const *path, bool create);
    // Copies share the key, and each closes it at its end.
    registry(registry const &) = default;
    registry &operator=(registry const &) = default;
    virtual ~registry() { Close(); }

    // Opens a key, opens it made when missing, or closes it.
    bool Open(HKEY root, char16_t const *path);
    bool Create(HKEY root, char16_t const *path);
    void Close();
    // Writes or reads a value of the open key; deletes a value or a subkey
    // (one without subkeys of its own).
    bool Set(char16_t const *name, data const &value);
    bool Get(char16_t const *name, data &value) const;
    void Delete(char16_t const *name);
    void DeleteKey(char16_t const *name);
    // Deletes every value, asking for the first again and again; stops when
    // the first cannot be deleted.
    void DeleteAll();
    // Deletes every subkey (each must have none of its own) the same way.
    void DeleteKeyAll();

    // The same in one call each: open (made when writing), act, close.
    static bool Set(HKEY root, char16_t const *path, char16_t const *name, data const &value);
    static bool SetText(HKEY root, char16_t const *path, char16_t const *name, char16_t const *text);
    static bool SetInteger(HKEY root, char16_t const *path, char16_t const *name, int value);
    static bool Get(HKEY root, char16_t const *path, char16_t const *name, data &value);
    // `fallback` when the value cannot be read; empty (0) when it is of another type.
    static string GetText(HKEY root, char16_t const *path, char16_t const *name, char16_t const *fallback);
    static int GetInteger(HKEY root, char16_t const *path, char16_t const *name, int fallback);
    // Deletes a value; makes the subkey `name` of `path`; deletes it (it must
    // have no subkeys), or with DeleteKeyAll deletes its values and subkeys
    // (one level) and then it.
    static void Delete(HKEY root, char16_t const *path, char16_t const *name);
    static bool CreateKey(HKEY root, char16_t const *path, char16_t const *name);
    static void DeleteKey(HKEY root, char16_t const *path, char16_t const *name);
    static void DeleteKeyAll(HKEY root, char16_t const *path, char16_t const *name);

    HKEY mKey = nullptr;  // the open key (null when none)

protected:
    bool _Open(HKEY root, char16_t const *path);
    bool _Create(HKEY root, char16_t const *path);
};

}  // namespace qor::tools::system
