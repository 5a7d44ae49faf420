// Icons (and cursors): the first image of the directory, a bitmap with its
// AND mask or an embedded PNG. Written as one image: a 32-bit bitmap with
// its mask up to 256 pixels a side, a PNG beyond.
#include "codec_bytes.h"
#include "codec_formats.h"

namespace qor::tools::platform::codec {


surface DecodeIco(unsigned char const *data, std::size_t size) {
    bytes in{data, size};
    if (Sniff(data, size) != format::ico || !in.Has(0, 6 + 16) || in.U16(4) == 0) return nullptr;
    std::uint32_t length = in.U32(6 + 8), at = in.U32(6 + 12);
    if (!in.Has(at, length) || length < 12) return nullptr;
    unsigned char const *image = data + at;
    if (Sniff(image, length) == format::png) return DecodePng(image, length);
    return DecodeDib(image, length, 0, true);
}

bool EncodeIco(cairo_surface_t *image, std::string &out) {
    int width = cairo_image_surface_get_width(image), height = cairo_image_surface_get_height(image);
    std::string body;
    bool small = width <= 256 && height <= 256;
    if (small) {
        AppendDib(image, true, body);
    } else if (!EncodePng(image, body)) {
        return false;
    }
    writer w(out);
    w.U16(0), w.U16(1), w.U16(1);  // reserved, icon, one image
    out += char(small && width < 256 ? width : 0);  // 0 stands for 256 (or more)
    out += char(small && height < 256 ? height : 0);
    w.U16(0);  // no palette, reserved
    w.U16(1), w.U16(32);
    w.U32(std::uint32_t(body.size()));
    w.U32(6 + 16);
    out += body;
    return true;
}

}  // namespace qor::tools::platform::codec
