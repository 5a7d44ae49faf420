// Column sets built by hand for the database tests, and a COM object that
// counts its references.
#pragma once

#include "qor/tools/database/column.h"
#include "qor/tools/platform/com.h"

namespace qor::tools::testing {

class layout : public database::column {
public:
    layout &Add(char16_t const *name, unsigned short type, unsigned long size = 0,
                unsigned long flags = DBCOLUMNFLAGS_WRITE) {
        _Add(name, Columns(), type, size, flags, 0, 0);
        return *this;
    }
    layout &Bookmark() {
        _Add(nullptr, 0, DBTYPE_UI4, 4, DBCOLUMNFLAGS_ISBOOKMARK | DBCOLUMNFLAGS_ISFIXEDLENGTH, 10, 255);
        return *this;
    }
};

struct counted_unknown : IUnknown {
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
    virtual ~counted_unknown() = default;
    ULONG mCount = 1;
};

}  // namespace qor::tools::testing
