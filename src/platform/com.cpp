#include "qor/tools/platform/com.h"

#include <cstdlib>

#include "wic_factory.h"

namespace qor::tools {

namespace {
thread_local int tInitialized = 0;
}

HRESULT CoInitialize(void *) { return tInitialized++ == 0 ? S_OK : S_FALSE; }

void CoUninitialize() {
    if (tInitialized > 0) --tInitialized;
}

// The one class registered: the imaging factory, made on a thread that has
// initialised COM, as on the platform.
HRESULT CoCreateInstance(GUID const &clsid, IUnknown *outer, DWORD, REFIID iid, void **out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (!(clsid == CLSID_WICImagingFactory2 || clsid == CLSID_WICImagingFactory)) return REGDB_E_CLASSNOTREG;
    if (outer) return CLASS_E_NOAGGREGATION;
    if (tInitialized == 0) return CO_E_NOTINITIALIZED;
    IWICImagingFactory *factory = platform::wic::NewFactory();
    HRESULT result = factory->QueryInterface(iid, out);
    factory->Release();
    return result;
}

HRESULT CLSIDFromProgID(char16_t const *, GUID *clsid) {
    if (clsid) *clsid = GUID_NULL;
    return CO_E_CLASSSTRING;
}

void *CoTaskMemAlloc(std::size_t bytes) { return std::malloc(bytes ? bytes : 1); }
void *CoTaskMemRealloc(void *block, std::size_t bytes) { return std::realloc(block, bytes ? bytes : 1); }
void CoTaskMemFree(void *block) { std::free(block); }

}  // namespace qor::tools
