// The library's own minimal COM: GUID, IUnknown, ISequentialStream and IStream
// with the Windows layout and interface ids, and the few runtime calls the
// library makes. Reference counting follows COM: AddRef and Release return the
// new count and the object deletes itself at 0.
#pragma once

#include "qor/tools/export.h"

#include <cstddef>
#include <cstdint>

#include "qor/tools/platform/types.h"

namespace qor::tools {

struct QOR_TOOLS_API GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
    friend bool operator==(GUID const &a, GUID const &b) noexcept {
        return a.Data1 == b.Data1 && a.Data2 == b.Data2 && a.Data3 == b.Data3 &&
               a.Data4[0] == b.Data4[0] && a.Data4[1] == b.Data4[1] && a.Data4[2] == b.Data4[2] &&
               a.Data4[3] == b.Data4[3] && a.Data4[4] == b.Data4[4] && a.Data4[5] == b.Data4[5] &&
               a.Data4[6] == b.Data4[6] && a.Data4[7] == b.Data4[7];
    }
};
using _GUID = GUID;
using IID = GUID;
using CLSID = GUID;
using REFIID = GUID const &;

inline constexpr GUID GUID_NULL = {0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 0}};
inline constexpr IID IID_IUnknown = {0x00000000, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_ISequentialStream = {0x0c733a30, 0x2a1c, 0x11ce, {0xad, 0xe5, 0x00, 0xaa, 0x00, 0x44, 0x77, 0x3d}};
inline constexpr IID IID_IStream = {0x0000000c, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

struct QOR_TOOLS_API IUnknown {
    static constexpr IID const &iid = IID_IUnknown;
    virtual HRESULT QueryInterface(REFIID riid, void **out) = 0;
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;

protected:
    ~IUnknown() = default;
};

struct QOR_TOOLS_API ISequentialStream : IUnknown {
    static constexpr IID const &iid = IID_ISequentialStream;
    virtual HRESULT Read(void *out, ULONG count, ULONG *done) = 0;
    virtual HRESULT Write(void const *data, ULONG count, ULONG *done) = 0;

protected:
    ~ISequentialStream() = default;
};

enum STREAM_SEEK : DWORD { STREAM_SEEK_SET = 0, STREAM_SEEK_CUR = 1, STREAM_SEEK_END = 2 };

struct QOR_TOOLS_API IStream : ISequentialStream {
    static constexpr IID const &iid = IID_IStream;
    virtual HRESULT Seek(std::int64_t move, DWORD origin, std::uint64_t *position) = 0;
    virtual HRESULT SetSize(std::uint64_t size) = 0;
    virtual HRESULT Stat(std::uint64_t *size) = 0;

protected:
    ~IStream() = default;
};

// The interface id of an interface type, for templates such as comptr.
template <typename T>
constexpr IID const &__uuidof_() noexcept { return T::iid; }

inline constexpr DWORD CLSCTX_INPROC_SERVER = 1;
inline constexpr DWORD CLSCTX_ALL = 23;

// A thread-local initialisation count; there is nothing else to set up.
QOR_TOOLS_API HRESULT CoInitialize(void *reserved);
QOR_TOOLS_API void CoUninitialize();
// No class factories are registered: the answer is REGDB_E_CLASSNOTREG.
QOR_TOOLS_API HRESULT CoCreateInstance(GUID const &clsid, IUnknown *outer, DWORD context, REFIID iid, void **out);
// No ProgIDs are registered: the answer is CO_E_CLASSSTRING.
QOR_TOOLS_API HRESULT CLSIDFromProgID(char16_t const *progid, GUID *clsid);

QOR_TOOLS_API void *CoTaskMemAlloc(std::size_t bytes);
QOR_TOOLS_API void *CoTaskMemRealloc(void *block, std::size_t bytes);
QOR_TOOLS_API void CoTaskMemFree(void *block);

}  // namespace qor::tools
