// Tagged values of the platform's property interfaces: PROPVARIANT (metadata
// values), VARIANT with PROPBAG2 and IPropertyBag2 (encoder options), and
// IEnumString (names of a metadata level), with the Windows type numbers.
//
//   PROPVARIANT v;
//   PropVariantInit(&v);
//   if (SUCCEEDED(reader->GetMetadataByName(u"/app1/{ushort=0}/{ushort=271}", &v)) && v.vt == VT_LPSTR)
//       use(v.pszVal);
//   PropVariantClear(&v);   // frees text, blobs and vectors, releases interfaces
#pragma once

#include "qor/tools/export.h"

#include <cstdint>

#include "qor/tools/platform/com.h"

namespace qor::tools {

using VARTYPE = std::uint16_t;

enum VARENUM : VARTYPE {
    VT_EMPTY = 0, VT_NULL = 1, VT_I2 = 2, VT_I4 = 3, VT_R4 = 4, VT_R8 = 5, VT_BSTR = 8, VT_BOOL = 11,
    VT_UNKNOWN = 13, VT_I1 = 16, VT_UI1 = 17, VT_UI2 = 18, VT_UI4 = 19, VT_I8 = 20, VT_UI8 = 21,
    VT_LPSTR = 30, VT_LPWSTR = 31, VT_BLOB = 65, VT_VECTOR = 0x1000
};

struct QOR_TOOLS_API BLOB {
    ULONG cbSize;
    std::uint8_t *pBlobData;
};

// A counted vector of elements (VT_VECTOR | type); every CA* of Windows has this shape.
struct QOR_TOOLS_API CAPROP {
    ULONG cElems;
    void *pElems;
};

struct QOR_TOOLS_API tagPROPVARIANT {
    VARTYPE vt;
    std::uint16_t wReserved1, wReserved2, wReserved3;
    union {
        std::int8_t cVal;
        std::uint8_t bVal;
        std::int16_t iVal;
        std::uint16_t uiVal;
        std::int32_t lVal;
        std::uint32_t ulVal;
        std::int64_t hVal;
        std::uint64_t uhVal;
        float fltVal;
        double dblVal;
        char *pszVal;
        char16_t *pwszVal;
        BLOB blob;
        IUnknown *punkVal;
        CAPROP ca;
    };
};
using PROPVARIANT = tagPROPVARIANT;

// A VARIANT has the same head and the same value slots as a PROPVARIANT.
using VARIANT = tagPROPVARIANT;

QOR_TOOLS_API void PropVariantInit(PROPVARIANT *value);
// Frees what the value owns (CoTaskMemAlloc'd text, blob and vector elements;
// a reference on an interface) and leaves it VT_EMPTY.
QOR_TOOLS_API HRESULT PropVariantClear(PROPVARIANT *value);
QOR_TOOLS_API void VariantInit(VARIANT *value);
QOR_TOOLS_API HRESULT VariantClear(VARIANT *value);

struct QOR_TOOLS_API PROPBAG2 {
    DWORD dwType;
    VARTYPE vt;
    std::uint16_t cfType;
    DWORD dwHint;
    char16_t *pstrName;
    CLSID clsid;
};

struct IErrorLog;

inline constexpr IID IID_IPropertyBag2 = {0x22F55882, 0x280B, 0x11d0, {0xA8, 0xA9, 0x00, 0xA0, 0xC9, 0x0C, 0x20, 0x04}};
inline constexpr IID IID_IEnumString = {0x00000101, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

struct QOR_TOOLS_API IPropertyBag2 : IUnknown {
    static constexpr IID const &iid = IID_IPropertyBag2;
    virtual HRESULT Read(ULONG count, PROPBAG2 *bags, IErrorLog *log, VARIANT *values, HRESULT *errors) = 0;
    virtual HRESULT Write(ULONG count, PROPBAG2 *bags, VARIANT *values) = 0;
    virtual HRESULT CountProperties(ULONG *count) = 0;
    // The names of the infos are CoTaskMemAlloc'd: the caller frees them.
    virtual HRESULT GetPropertyInfo(ULONG first, ULONG count, PROPBAG2 *infos, ULONG *done) = 0;

protected:
    ~IPropertyBag2() = default;
};

struct QOR_TOOLS_API IEnumString : IUnknown {
    static constexpr IID const &iid = IID_IEnumString;
    // The names are CoTaskMemAlloc'd: the caller frees them.
    virtual HRESULT Next(ULONG count, char16_t **names, ULONG *done) = 0;
    virtual HRESULT Skip(ULONG count) = 0;
    virtual HRESULT Reset() = 0;
    virtual HRESULT Clone(IEnumString **out) = 0;

protected:
    ~IEnumString() = default;
};

}  // namespace qor::tools
