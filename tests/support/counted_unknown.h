// A COM object for tests that counts its references and can record its deletion.
#pragma once

#include "qor/tools/platform/com.h"

namespace qor::tools::testing {

struct counted_unknown : IUnknown {
    counted_unknown() = default;
    explicit counted_unknown(bool *deleted) : mDeleted(deleted) {}
    virtual ~counted_unknown() {
        if (mDeleted) *mDeleted = true;
    }
    HRESULT QueryInterface(REFIID, void **out) override {
        *out = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return ++mCount; }
    ULONG Release() override {
        ULONG n = --mCount;
        if (n == 0) delete this;
        return n;
    }
    ULONG mCount = 1;
    bool *mDeleted = nullptr;
};

}  // namespace qor::tools::testing
