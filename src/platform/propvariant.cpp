#include "qor/tools/platform/propvariant.h"

#include <cstring>

namespace qor::tools {

void PropVariantInit(PROPVARIANT *value) {
    if (value) std::memset(value, 0, sizeof *value);
}

HRESULT PropVariantClear(PROPVARIANT *value) {
    if (!value) return E_INVALIDARG;
    switch (value->vt) {
    case VT_LPSTR: CoTaskMemFree(value->pszVal); break;
    case VT_LPWSTR: CoTaskMemFree(value->pwszVal); break;
    case VT_BLOB: CoTaskMemFree(value->blob.pBlobData); break;
    case VT_UNKNOWN:
        if (value->punkVal) value->punkVal->Release();
        break;
    default:
        if (value->vt & VT_VECTOR) CoTaskMemFree(value->ca.pElems);
        break;
    }
    std::memset(value, 0, sizeof *value);
    return S_OK;
}

void VariantInit(VARIANT *value) { PropVariantInit(value); }
HRESULT VariantClear(VARIANT *value) { return PropVariantClear(value); }

}  // namespace qor::tools
