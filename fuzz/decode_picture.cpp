// Fuzzes one picture decoder (chosen by QOR_FUZZ_DECODER when this target is
// built) and, for what it reads, writing it back in the same format and
// reading that again.
#include <cairo.h>

#include <cstdint>
#include <string>

#include "platform/codec.h"
#include "platform/codec_formats.h"

using namespace qor::tools::platform::codec;

namespace {

surface Read(std::uint8_t const *data, std::size_t size) {
#if QOR_FUZZ_DECODER == 1
    return DecodeJpeg(data, size, size % 7 == 0 ? 16 : 0, 16);
#elif QOR_FUZZ_DECODER == 2
    return DecodePng(data, size);
#elif QOR_FUZZ_DECODER == 3
    return DecodeTiff(data, size);
#elif QOR_FUZZ_DECODER == 4
    return DecodeGif(data, size);
#elif QOR_FUZZ_DECODER == 5
    return DecodeBmp(data, size);
#else
    return DecodeIco(data, size);
#endif
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
    surface image = Read(data, size);
    if (!image) return 0;
    if (cairo_image_surface_get_width(image.get()) * cairo_image_surface_get_height(image.get()) > 65536) return 0;
    std::string again;
    format f = Sniff(data, size);
    if (f == format::unknown || !Encode(f, image.get(), {}, again)) __builtin_trap();
    if (!Decode(reinterpret_cast<unsigned char const *>(again.data()), again.size())) __builtin_trap();
    return 0;
}
