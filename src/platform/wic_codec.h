// The decoders, encoders and format converter behind the imaging factory.
#pragma once

#include <memory>

#include "wic_bitmap.h"

namespace qor::tools::platform::wic {

// A decoder of an encoded picture: its header is read at once, and a picture
// that cannot be decoded later (anything but a sequential JPEG read to its
// end marker) is decoded at once. WINCODEC_ERR_COMPONENTNOTFOUND for bytes of
// no known format, WINCODEC_ERR_BADIMAGE for a picture that does not read whole.
HRESULT NewDecoder(std::shared_ptr<encoded const> picture, IWICBitmapDecoder **decoder);
// An encoder of one of the six containers; WINCODEC_ERR_COMPONENTNOTFOUND otherwise.
HRESULT NewEncoder(GUID const &container, IWICBitmapEncoder **encoder);
IWICFormatConverter *NewConverter();
// A bitmap of a source's pixels: a decoded frame (or a converter on one)
// hands its pixels over, or, with WICBitmapCacheOnDemand, its encoded bytes
// for a decode at the first use; any other source is copied.
HRESULT BitmapFromSource(IWICBitmapSource *source, WICBitmapCreateCacheOption option, IWICBitmap **out);

codec::format FormatOf(GUID const &container);
GUID ContainerOf(codec::format f);

}  // namespace qor::tools::platform::wic
