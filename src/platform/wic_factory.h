// The imaging factory object that CoCreateInstance makes for
// CLSID_WICImagingFactory and CLSID_WICImagingFactory2.
#pragma once

#include "qor/tools/platform/wincodec.h"

namespace qor::tools::platform::wic {

IWICImagingFactory *NewFactory();

}  // namespace qor::tools::platform::wic
