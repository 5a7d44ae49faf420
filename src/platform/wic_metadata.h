// The metadata query reader and writer over the library's EXIF block. Query
// paths name IFD0 ("/app1/{ushort=0}" or "/app1/ifd"), the EXIF sub-IFD
// ("/app1/{ushort=0}/{ushort=34665}" or "/app1/ifd/exif"), IFD1
// ("/app1/{ushort=1}" or "/app1/thumb"), a tag in one of them ("/{ushort=271}"),
// IFD1's thumbnail ("/{}") and an IFD's padding ("/PaddingSchema:padding").
// Value types map to field types both ways (VT_LPSTR and ASCII, VT_BLOB and
// UNDEFINED, VT_UI8 and RATIONAL with the numerator in the low half, VT_UI2
// and SHORT, VT_UI4 and LONG, VT_I4 and SLONG, VT_I8 and SRATIONAL, ...).
// Padding is accepted and remembered; it reserves nothing, since the block is
// written whole each time.
#pragma once

#include <cstdint>
#include <memory>
#include <set>

#include "exif_block.h"
#include "qor/tools/platform/wincodec.h"

namespace qor::tools::platform::wic {

struct metadata {
    exif::block mBlock;
    std::set<std::uint16_t> mPadding;  // the directories that asked for padding
};

// A reader of `data` from its root, for a frame of container `format`.
IWICMetadataQueryReader *NewReader(std::shared_ptr<metadata const> data, GUID const &format);
// A writer of `data` from its root.
IWICMetadataQueryWriter *NewWriter(std::shared_ptr<metadata> data, GUID const &format);

}  // namespace qor::tools::platform::wic
