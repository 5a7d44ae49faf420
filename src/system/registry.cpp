#include "qor/tools/system/registry.h"

#include <cstdlib>
#include <cstring>

namespace qor::tools::system {

namespace {

bool Ok(LSTATUS status) { return status == LSTATUS(ERROR_SUCCESS); }

// The child key's path: "path\name".
string Child(char16_t const *path, char16_t const *name) {
    string joined;
    joined.Format(u"%s\\%s", path ? path : u"", name ? name : u"");
    return joined;
}

}  // namespace

registry::data &registry::data::operator=(data const &other) {
    if (this != &other) _Copy(other.mType, other.mBytes, other.mSize);
    return *this;
}

registry::data::~data() { std::free(mBytes); }

// Two zero bytes more than the size, so that a text stored without its
// terminator still ends.
void registry::data::_Alloc(unsigned long type, int size) {
    mType = type;
    if (size == mSize && mBytes) return;
    std::free(mBytes);
    mBytes = size > 0 ? static_cast<unsigned char *>(std::calloc(std::size_t(size) + 2, 1)) : nullptr;
    mSize = mBytes ? size : 0;
}

void registry::data::_Copy(unsigned long type, void const *bytes, int size) {
    _Alloc(type, size);
    if (!mBytes) return;
    if (bytes) {
        std::memcpy(mBytes, bytes, std::size_t(mSize));
    } else {
        std::memset(mBytes, 0, std::size_t(mSize));
    }
}

void registry::data::Set(int value) { _Copy(REG_DWORD, &value, 4); }

void registry::data::Set(unsigned long value) {
    auto low = std::uint32_t(value);
    _Copy(REG_DWORD, &low, 4);
}

void registry::data::Set(long long value) { _Copy(REG_QWORD, &value, 8); }

void registry::data::Set(char16_t const *text) {
    char16_t const *t = text ? text : u"";
    _Copy(REG_SZ, t, int((std::char_traits<char16_t>::length(t) + 1) * sizeof(char16_t)));
}

void registry::data::Set(char const *text) {
    char const *t = text ? text : "";
    _Copy(REG_SZ, t, int(std::strlen(t) + 1));
}

void registry::data::Set(double value) { _Copy(REG_BINARY, &value, 8); }

void registry::data::Set(void const *bytes, unsigned long size) { _Copy(REG_BINARY, bytes, int(size)); }

registry::data::operator int() const {
    std::int32_t value = 0;
    if ((mType == REG_DWORD || mType == REG_DWORD_BIG_ENDIAN) && mSize >= 4) std::memcpy(&value, mBytes, 4);
    return value;
}

registry::data::operator unsigned long() const { return static_cast<std::uint32_t>(operator int()); }

registry::data::operator long long() const {
    long long value = 0;
    if (mType == REG_QWORD && mSize >= 8) std::memcpy(&value, mBytes, 8);
    return value;
}

registry::data::operator char16_t const *() const {
    return mType == REG_SZ || mType == REG_EXPAND_SZ ? reinterpret_cast<char16_t const *>(mBytes) : nullptr;
}

registry::data::operator char const *() const {
    return mType == REG_SZ || mType == REG_EXPAND_SZ ? reinterpret_cast<char const *>(mBytes) : nullptr;
}

// A binary value shorter than a double reads as 0.0 rather than past its end.
registry::data::operator double() const {
    double value = 0.0;
    if (mType == REG_BINARY && mSize >= 8) std::memcpy(&value, mBytes, 8);
    return value;
}

registry::registry(HKEY root, char16_t const *path, bool create) {
    if (create) {
        _Create(root, path);
    } else {
        _Open(root, path);
    }
}

bool registry::_Open(HKEY root, char16_t const *path) {
    return Ok(RegOpenKeyExW(root, path, 0, KEY_ALL_ACCESS, &mKey));
}

bool registry::_Create(HKEY root, char16_t const *path) {
    return Ok(RegCreateKeyExW(root, path, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr, &mKey, nullptr));
}

bool registry::Open(HKEY root, char16_t const *path) {
    Close();
    return _Open(root, path);
}

bool registry::Create(HKEY root, char16_t const *path) {
    Close();
    return _Create(root, path);
}

void registry::Close() {
    if (!mKey) return;
    RegCloseKey(mKey);
    mKey = nullptr;
}

bool registry::Set(char16_t const *name, data const &value) {
    return Ok(RegSetValueExW(mKey, name, 0, DWORD(value.Type()), value.Data(), DWORD(value.Size())));
}

// Type and size first, then the bytes into a zeroed buffer of that size.
bool registry::Get(char16_t const *name, data &value) const {
    DWORD type = 0, size = 0;
    if (!Ok(RegQueryValueExW(mKey, name, nullptr, &type, nullptr, &size))) return false;
    value._Copy(type, nullptr, int(size));
    return Ok(RegQueryValueExW(mKey, name, nullptr, &type, value.Data(), &size));
}

void registry::Delete(char16_t const *name) { RegDeleteValueW(mKey, name); }

void registry::DeleteKey(char16_t const *name) { RegDeleteKeyW(mKey, name); }

void registry::DeleteAll() {
    char16_t name[1024];
    for (;;) {
        DWORD length = 1024;
        if (!Ok(RegEnumValueW(mKey, 0, name, &length, nullptr, nullptr, nullptr, nullptr))) return;
        if (!Ok(RegDeleteValueW(mKey, name))) return;
    }
}

void registry::DeleteKeyAll() {
    char16_t name[1024];
    for (;;) {
        DWORD length = 1024;
        if (!Ok(RegEnumKeyExW(mKey, 0, name, &length, nullptr, nullptr, nullptr, nullptr))) return;
        if (!Ok(RegDeleteKeyW(mKey, name))) return;
    }
}

bool registry::Set(HKEY root, char16_t const *path, char16_t const *name, data const &value) {
    return registry(root, path, true).Set(name, value);
}

bool registry::SetText(HKEY root, char16_t const *path, char16_t const *name, char16_t const *text) {
    return Set(root, path, name, data(text));
}

bool registry::SetInteger(HKEY root, char16_t const *path, char16_t const *name, int value) {
    return Set(root, path, name, data(value));
}

bool registry::Get(HKEY root, char16_t const *path, char16_t const *name, data &value) {
    return registry(root, path, false).Get(name, value);
}

string registry::GetText(HKEY root, char16_t const *path, char16_t const *name, char16_t const *fallback) {
    string result(fallback);
    data value;
    if (!Get(root, path, name, value)) return result;
    char16_t const *text = value;
    return text ? string(text) : string();
}

int registry::GetInteger(HKEY root, char16_t const *path, char16_t const *name, int fallback) {
    data value;
    if (!Get(root, path, name, value)) return fallback;
    return int(value);
}

void registry::Delete(HKEY root, char16_t const *path, char16_t const *name) {
    registry(root, path, false).Delete(name);
}

bool registry::CreateKey(HKEY root, char16_t const *path, char16_t const *name) {
    registry key;
    return key._Create(root, Child(path, name));
}

void registry::DeleteKey(HKEY root, char16_t const *path, char16_t const *name) {
    registry(root, path, false).DeleteKey(name);
}

void registry::DeleteKeyAll(HKEY root, char16_t const *path, char16_t const *name) {
    registry child(root, Child(path, name), false);
    child.DeleteAll();
    child.DeleteKeyAll();
    registry(root, path, false).DeleteKey(name);
}

}  // namespace qor::tools::system
