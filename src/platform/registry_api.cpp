// The registry calls over the store: handles are numbers in a table (a
// predefined root stands for itself), each naming a root and a key id, so
// that a handle closed twice or never opened finds nothing.
#include <cstring>
#include <mutex>
#include <unordered_map>

#include "registry_store.h"
#include "utf8.h"

namespace qor::tools {

namespace {

using platform::reg::key_id;
using platform::reg::store;
using platform::reg::value;

// The store is kept with the key, so that a key stays in the file it was opened in.
struct open_key {
    store *mStore;
    key_id mId;
};

std::mutex gKeysLock;
std::unordered_map<std::uintptr_t, open_key> gKeys;
std::uintptr_t gLastKey = 0x1000;

bool Lookup(HKEY handle, open_key &key) {
    if (store *root = store::Of(handle)) {
        key = {root, 0};
        return true;
    }
    std::lock_guard guard(gKeysLock);
    auto found = gKeys.find(reinterpret_cast<std::uintptr_t>(handle));
    if (found == gKeys.end()) return false;
    key = found->second;
    return true;
}

HKEY NewHandle(open_key const &key) {
    std::lock_guard guard(gKeysLock);
    gKeys.emplace(++gLastKey, key);
    return reinterpret_cast<HKEY>(gLastKey);
}

std::string Utf8(char16_t const *text) { return text ? detail::ToUtf8(text) : std::string(); }

LSTATUS Opened(HKEY base, char16_t const *path, bool create, HKEY *result, DWORD *disposition) {
    if (!result) return LSTATUS(ERROR_INVALID_PARAMETER);
    *result = nullptr;
    open_key key;
    if (!Lookup(base, key)) return LSTATUS(ERROR_INVALID_HANDLE);
    key_id id = 0;
    bool created = false;
    LSTATUS status = key.mStore->Resolve(key.mId, Utf8(path), create, id, &created);
    if (status != 0) return status;
    if (disposition) *disposition = created ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
    *result = NewHandle({key.mStore, id});
    return LSTATUS(ERROR_SUCCESS);
}

// Copies `bytes` into a caller's buffer of `*size` bytes (none when `data` is null).
LSTATUS Answer(value const &v, DWORD *type, std::uint8_t *data, DWORD *size) {
    if (type) *type = v.mType;
    if (!size) return data ? LSTATUS(ERROR_INVALID_PARAMETER) : LSTATUS(ERROR_SUCCESS);
    DWORD room = *size;
    *size = DWORD(v.mData.size());
    if (!data) return LSTATUS(ERROR_SUCCESS);
    if (room < v.mData.size()) return LSTATUS(ERROR_MORE_DATA);
    std::memcpy(data, v.mData.data(), v.mData.size());
    return LSTATUS(ERROR_SUCCESS);
}

LSTATUS Name(std::string const &utf8, char16_t *name, DWORD *length) {
    if (!name || !length) return LSTATUS(ERROR_INVALID_PARAMETER);
    std::u16string wide = detail::ToUtf16(utf8);
    if (wide.size() + 1 > *length) {
        *length = DWORD(wide.size() + 1);
        return LSTATUS(ERROR_MORE_DATA);
    }
    std::memcpy(name, wide.c_str(), (wide.size() + 1) * sizeof(char16_t));
    *length = DWORD(wide.size());
    return LSTATUS(ERROR_SUCCESS);
}

}  // namespace

LSTATUS RegOpenKeyExW(HKEY key, char16_t const *path, DWORD, DWORD, HKEY *result) {
    return Opened(key, path, false, result, nullptr);
}

LSTATUS RegCreateKeyExW(HKEY key, char16_t const *path, DWORD, char16_t *, DWORD, DWORD, void const *, HKEY *result,
                        DWORD *disposition) {
    return Opened(key, path, true, result, disposition);
}

LSTATUS RegCloseKey(HKEY key) {
    if (store::Of(key)) return LSTATUS(ERROR_SUCCESS);
    std::lock_guard guard(gKeysLock);
    return gKeys.erase(reinterpret_cast<std::uintptr_t>(key)) ? LSTATUS(ERROR_SUCCESS) : LSTATUS(ERROR_INVALID_HANDLE);
}

LSTATUS RegSetValueExW(HKEY handle, char16_t const *name, DWORD, DWORD type, std::uint8_t const *data, DWORD size) {
    open_key key;
    if (!Lookup(handle, key)) return LSTATUS(ERROR_INVALID_HANDLE);
    if (!data && size) return LSTATUS(ERROR_INVALID_PARAMETER);
    value v{Utf8(name), type, data ? std::string(reinterpret_cast<char const *>(data), size) : std::string()};
    return key.mStore->Set(key.mId, v);
}

LSTATUS RegQueryValueExW(HKEY handle, char16_t const *name, DWORD *, DWORD *type, std::uint8_t *data, DWORD *size) {
    open_key key;
    if (!Lookup(handle, key)) return LSTATUS(ERROR_INVALID_HANDLE);
    value v;
    LSTATUS status = key.mStore->Get(key.mId, Utf8(name), v);
    return status == 0 ? Answer(v, type, data, size) : status;
}

LSTATUS RegDeleteValueW(HKEY handle, char16_t const *name) {
    open_key key;
    if (!Lookup(handle, key)) return LSTATUS(ERROR_INVALID_HANDLE);
    return key.mStore->Delete(key.mId, Utf8(name));
}

LSTATUS RegDeleteKeyW(HKEY handle, char16_t const *path) {
    open_key key;
    if (!Lookup(handle, key)) return LSTATUS(ERROR_INVALID_HANDLE);
    if (!path || !*path) return LSTATUS(ERROR_ACCESS_DENIED);
    return key.mStore->DeleteKey(key.mId, Utf8(path));
}

LSTATUS RegEnumValueW(HKEY handle, DWORD index, char16_t *name, DWORD *nameLength, DWORD *, DWORD *type,
                      std::uint8_t *data, DWORD *size) {
    open_key key;
    if (!Lookup(handle, key)) return LSTATUS(ERROR_INVALID_HANDLE);
    value v;
    LSTATUS status = key.mStore->EnumValue(key.mId, index, v);
    if (status != 0) return status;
    status = Name(v.mName, name, nameLength);
    return status == 0 ? Answer(v, type, data, size) : status;
}

LSTATUS RegEnumKeyExW(HKEY handle, DWORD index, char16_t *name, DWORD *nameLength, DWORD *, char16_t *keyClass,
                      DWORD *classLength, void *) {
    open_key key;
    if (!Lookup(handle, key)) return LSTATUS(ERROR_INVALID_HANDLE);
    std::string found;
    LSTATUS status = key.mStore->EnumKey(key.mId, index, found);
    if (status != 0) return status;
    if (keyClass && classLength && *classLength) keyClass[0] = 0;
    if (classLength) *classLength = 0;
    return Name(found, name, nameLength);
}

}  // namespace qor::tools
