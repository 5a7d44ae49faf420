// The reference counting and interface lookup that every COM object of the
// library shares: an object implements one chain of interfaces (Top and the
// interfaces it derives from, named in Bases) and deletes itself when the
// last reference goes.
//
//   class bitmap final : public com_object<IWICBitmap, IWICBitmapSource> { ... };
//   IWICBitmap *b = new bitmap(...);   // one reference, the caller's
#pragma once

#include <atomic>

#include "qor/tools/platform/com.h"

namespace qor::tools::platform {

template <typename Top, typename... Bases>
class com_object : public Top {
public:
    HRESULT QueryInterface(REFIID riid, void **out) override {
        if (!out) return E_POINTER;
        *out = nullptr;
        if (!(riid == IID_IUnknown || riid == Top::iid || ((riid == Bases::iid) || ...))) return E_NOINTERFACE;
        *out = static_cast<Top *>(this);
        AddRef();
        return S_OK;
    }
    ULONG AddRef() override { return ++mReferences; }
    ULONG Release() override {
        ULONG left = --mReferences;
        if (left == 0) delete this;
        return left;
    }

protected:
    com_object() = default;
    virtual ~com_object() = default;

private:
    std::atomic<ULONG> mReferences{1};
};

// Hands `object` out through a COM out-parameter (the caller's reference).
template <typename I, typename T>
HRESULT HandOut(T *object, I **out) {
    if (!out) {
        if (object) object->Release();
        return E_POINTER;
    }
    *out = object;
    return object ? S_OK : E_OUTOFMEMORY;
}

}  // namespace qor::tools::platform
