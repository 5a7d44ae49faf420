// Reduction of a picture by whole factors, each output pixel the mean of a
// block of kx by ky input pixels (premultiplied, so the mean is exact in
// colour and coverage). It stands before a smooth scaler when a picture
// shrinks to a fraction of its size: the scaler then works on few pixels.
#pragma once

#include "codec.h"

namespace qor::tools::platform {

// The picture reduced to (width / kx) by (height / ky); the last columns and
// rows that fill no whole block are left out. Null when nothing is left or
// kx is above 64.
codec::surface BoxReduce(cairo_surface_t *image, int kx, int ky);

}  // namespace qor::tools::platform
