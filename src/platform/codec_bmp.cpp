// BMP and the bitmaps inside icons, read and written by the library: the
// core, info, V4 and V5 headers; 1, 4 and 8 bits with a colour table, 16 and
// 32 bits with bit fields, 24 bits; bottom-up and top-down rows. A 32-bit
// bitmap has alpha when its header gives an alpha mask. Written as 32-bit
// with a V5 header and an alpha mask, rows bottom-up.
#include <cstring>
#include <vector>

#include "codec_formats.h"
#include "codec_pixels.h"
#include "codec_bytes.h"

namespace qor::tools::platform::codec {

namespace {

constexpr std::uint32_t kRgb = 0, kBitFields = 3, kAlphaBitFields = 6;

struct dib_header {
    std::uint32_t mSize = 0;
    std::int64_t mWidth = 0, mHeight = 0;
    unsigned mBits = 0;
    std::uint32_t mCompression = kRgb;
    std::uint32_t mColours = 0;
    std::uint32_t mMasks[4] = {0, 0, 0, 0};  // red, green, blue, alpha
};

bool ReadHeader(bytes const &in, dib_header &h) {
    h.mSize = in.U32(0);
    if (h.mSize == 12) {  // the OS/2 core header
        h.mWidth = in.U16(4);
        h.mHeight = std::int16_t(in.U16(6));
        h.mBits = in.U16(10);
        return in.Has(0, 12);
    }
    if (h.mSize < 40 || !in.Has(0, 40)) return false;
    h.mWidth = std::int32_t(in.U32(4));
    h.mHeight = std::int32_t(in.U32(8));
    h.mBits = in.U16(14);
    h.mCompression = in.U32(16);
    h.mColours = in.U32(32);
    if (h.mSize >= 52 && in.Has(0, 56)) {
        for (int i = 0; i < (h.mSize >= 56 ? 4 : 3); ++i) h.mMasks[i] = in.U32(40 + std::size_t(i) * 4);
    }
    return true;
}

// A value of `mask`'s bits scaled to 0..255.
unsigned Channel(std::uint32_t value, std::uint32_t mask) {
    if (!mask) return 255;
    int shift = 0;
    while (!((mask >> shift) & 1)) ++shift;
    std::uint32_t top = mask >> shift, v = (value & mask) >> shift;
    return unsigned((std::uint64_t(v) * 255 + top / 2) / top);
}

bool DefaultMasks(dib_header &h) {
    if (h.mBits == 16) {
        h.mMasks[0] = 0x7c00, h.mMasks[1] = 0x03e0, h.mMasks[2] = 0x001f;
    } else {
        h.mMasks[0] = 0xff0000, h.mMasks[1] = 0xff00, h.mMasks[2] = 0xff;
    }
    h.mMasks[3] = 0;
    return true;
}

}  // namespace

surface DecodeDib(unsigned char const *data, std::size_t size, std::size_t pixelsAt, bool icon) {
    bytes in{data, size};
    dib_header h;
    if (!ReadHeader(in, h)) return nullptr;
    bool topDown = h.mHeight < 0;
    std::int64_t height = topDown ? -h.mHeight : h.mHeight;
    if (icon) height /= 2;  // an icon's height counts its AND mask too
    if (h.mWidth < 1 || height < 1 || h.mWidth > kMaxSide || height > kMaxSide) return nullptr;
    bool masked = h.mCompression == kBitFields || h.mCompression == kAlphaBitFields;
    if (h.mCompression != kRgb && !masked) return nullptr;  // run-length and embedded formats are not read
    if (h.mCompression == kBitFields && h.mSize == 40) {
        for (int i = 0; i < 3; ++i) h.mMasks[i] = in.U32(40 + std::size_t(i) * 4);
    }
    if (h.mCompression == kRgb) DefaultMasks(h);
    unsigned bits = h.mBits;
    if (bits != 1 && bits != 4 && bits != 8 && bits != 16 && bits != 24 && bits != 32) return nullptr;
    bool alpha = bits == 32 && h.mMasks[3] != 0;
    // The colour table follows the header (and its masks, for a bit-fields info header).
    std::size_t tableAt = h.mSize + (h.mCompression == kBitFields && h.mSize == 40 ? 12 : 0);
    std::size_t entry = h.mSize == 12 ? 3 : 4;
    std::uint32_t colours = bits <= 8 ? (h.mColours && h.mColours < (1u << bits) ? h.mColours : 1u << bits) : 0;
    if (pixelsAt == 0) pixelsAt = tableAt + colours * entry;
    std::vector<std::uint32_t> table(colours);
    for (std::uint32_t i = 0; i < colours; ++i) {
        std::size_t at = tableAt + i * entry;
        if (!in.Has(at, 3)) return nullptr;
        table[i] = Premultiplied(data[at + 2], data[at + 1], data[at], 255);
    }
    int width = int(h.mWidth);
    std::size_t stride = (std::size_t(width) * bits + 31) / 32 * 4;
    std::size_t maskStride = (std::size_t(width) + 31) / 32 * 4;
    if (!in.Has(pixelsAt, stride * std::size_t(height))) return nullptr;
    surface out = NewSurface(width, int(height));
    if (!out) return nullptr;
    if (icon && bits == 32 && h.mCompression == kRgb) {
        // An icon's 32-bit colours carry alpha in their fourth byte, unless it is 0 throughout.
        h.mMasks[3] = 0xff000000u;
        alpha = false;
        for (std::size_t i = 3; i < stride * std::size_t(height) && !alpha; i += 4) alpha = data[pixelsAt + i] != 0;
        if (!alpha) h.mMasks[3] = 0;
    }
    for (int y = 0; y < int(height); ++y) {
        unsigned char const *src = data + pixelsAt + stride * std::size_t(topDown ? y : int(height) - 1 - y);
        std::uint32_t *row = Row(out.get(), y);
        for (int x = 0; x < width; ++x) {
            if (bits <= 8) {
                std::size_t bit = std::size_t(x) * bits;
                unsigned index = (src[bit / 8] >> (8 - bits - bit % 8)) & ((1u << bits) - 1);
                row[x] = index < colours ? table[index] : 0xff000000u;
            } else if (bits == 24) {
                row[x] = Premultiplied(src[x * 3 + 2], src[x * 3 + 1], src[x * 3], 255);
            } else {
                std::uint32_t v = bits == 16 ? std::uint32_t(src[x * 2] | src[x * 2 + 1] << 8)
                                             : std::uint32_t(src[x * 4] | src[x * 4 + 1] << 8 | src[x * 4 + 2] << 16 |
                                                             std::uint32_t(src[x * 4 + 3]) << 24);
                unsigned a = alpha ? Channel(v, h.mMasks[3]) : 255;
                row[x] = Premultiplied(Channel(v, h.mMasks[0]), Channel(v, h.mMasks[1]), Channel(v, h.mMasks[2]), a);
            }
        }
    }
    // An icon without alpha of its own is cut out by its AND mask (set bits are transparent).
    std::size_t maskAt = pixelsAt + stride * std::size_t(height);
    if (icon && !alpha && in.Has(maskAt, maskStride * std::size_t(height))) {
        for (int y = 0; y < int(height); ++y) {
            unsigned char const *mask = data + maskAt + maskStride * std::size_t(topDown ? y : int(height) - 1 - y);
            std::uint32_t *row = Row(out.get(), y);
            for (int x = 0; x < width; ++x) {
                bool clear = (mask[x / 8] >> (7 - x % 8)) & 1;
                if (clear) row[x] = 0;
            }
        }
    }
    cairo_surface_mark_dirty(out.get());
    return out;
}

surface DecodeBmp(unsigned char const *data, std::size_t size) {
    bytes in{data, size};
    if (Sniff(data, size) != format::bmp || !in.Has(0, 14 + 12)) return nullptr;
    std::uint32_t pixelsAt = in.U32(10);
    if (pixelsAt < 14 || pixelsAt >= size) return nullptr;
    return DecodeDib(data + 14, size - 14, pixelsAt - 14, false);
}

void AppendDib(cairo_surface_t *image, bool icon, std::string &out) {
    int width = cairo_image_surface_get_width(image), height = cairo_image_surface_get_height(image);
    std::size_t pixels = std::size_t(width) * std::size_t(height) * 4;
    std::size_t maskStride = (std::size_t(width) + 31) / 32 * 4;
    std::uint32_t headerSize = icon ? 40 : 124;
    std::size_t imageSize = pixels + (icon ? maskStride * std::size_t(height) : 0);
    writer w(out);
    w.U32(headerSize);
    w.U32(std::uint32_t(width));
    w.U32(std::uint32_t(icon ? height * 2 : height));
    w.U16(1);
    w.U16(32);
    w.U32(icon ? kRgb : kBitFields);
    w.U32(std::uint32_t(imageSize));
    w.U32(2835), w.U32(2835);  // 72 dots an inch
    w.U32(0), w.U32(0);
    if (!icon) {
        w.U32(0x00ff0000), w.U32(0x0000ff00), w.U32(0x000000ff), w.U32(0xff000000);
        w.U32(0x73524742);  // 'sRGB'
        w.Zeros(36 + 12);   // end points and gamma
        w.U32(4);           // rendering intent: perceptual
        w.Zeros(12);        // no profile
    }
    for (int y = height - 1; y >= 0; --y) {
        std::uint32_t const *row = Row(image, y);
        for (int x = 0; x < width; ++x) {
            std::uint8_t bgra[4];
            Straight(row[x], bgra);
            out.append(reinterpret_cast<char const *>(bgra), 4);
        }
    }
    if (icon) {
        for (int y = height - 1; y >= 0; --y) {
            std::string mask(maskStride, '\0');
            std::uint32_t const *row = Row(image, y);
            for (int x = 0; x < width; ++x) {
                if ((row[x] >> 24) == 0) mask[std::size_t(x) / 8] = char(mask[std::size_t(x) / 8] | (0x80 >> (x % 8)));
            }
            out += mask;
        }
    }
}

bool EncodeBmp(cairo_surface_t *image, std::string &out) {
    std::string dib;
    AppendDib(image, false, dib);
    writer w(out);
    w.U16(0x4d42);  // "BM"
    w.U32(std::uint32_t(14 + dib.size()));
    w.U32(0);
    w.U32(14 + 124);
    out += dib;
    return true;
}

}  // namespace qor::tools::platform::codec
