#include "qor/tools/platform/com.h"

#include <cstdlib>

namespace qor::tools {

namespace {
thread_local int tInitialized = 0;
}

HRESULT CoInitialize(void *) { return tInitialized++ == 0 ? S_OK : S_FALSE; }

void CoUninitialize() {
    if (tInitialized > 0) --tInitialized;
}

HRESULT CoCreateInstance(GUID const &, IUnknown *, DWORD, REFIID, void **out) {
    if (out) *out = nullptr;
    return REGDB_E_CLASSNOTREG;
}

HRESULT CLSIDFromProgID(char16_t const *, GUID *clsid) {
    if (clsid) *clsid = GUID_NULL;
    return CO_E_CLASSSTRING;
}

void *CoTaskMemAlloc(std::size_t bytes) { return std::malloc(bytes ? bytes : 1); }
void *CoTaskMemRealloc(void *block, std::size_t bytes) { return std::realloc(block, bytes ? bytes : 1); }
void CoTaskMemFree(void *block) { std::free(block); }

}  // namespace qor::tools
