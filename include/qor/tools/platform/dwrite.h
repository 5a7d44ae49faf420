// The text component's factory, COM-shaped with the Windows name and id; the
// library makes it over Pango. Text formats and layouts are made through it.
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/platform/com.h"

namespace qor::tools {

enum DWRITE_FACTORY_TYPE : DWORD { DWRITE_FACTORY_TYPE_SHARED = 0, DWRITE_FACTORY_TYPE_ISOLATED = 1 };

inline constexpr IID IID_IDWriteFactory = {0xb859ee5a, 0xd838, 0x4b5b, {0xa2, 0xe8, 0x1a, 0xdc, 0x7d, 0x93, 0xdb, 0x48}};

struct QOR_TOOLS_API IDWriteFactory : IUnknown {
    static constexpr IID const &iid = IID_IDWriteFactory;

protected:
    ~IDWriteFactory() = default;
};

QOR_TOOLS_API HRESULT DWriteCreateFactory(DWRITE_FACTORY_TYPE type, REFIID iid, IUnknown **factory);

}  // namespace qor::tools
