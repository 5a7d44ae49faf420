// Pixel conversions shared by the codecs: colours with straight alpha into
// the premultiplied words of an ARGB32 surface and back.
#pragma once

#include <cstdint>

namespace qor::tools::platform::codec {

inline std::uint8_t Scale255(unsigned value, unsigned alpha) {
    unsigned t = value * alpha + 128;
    return std::uint8_t((t + (t >> 8)) >> 8);  // value * alpha / 255, rounded
}

// A premultiplied ARGB32 word of a straight-alpha colour.
inline std::uint32_t Premultiplied(unsigned r, unsigned g, unsigned b, unsigned a) {
    if (a == 255) return 0xff000000u | (r << 16) | (g << 8) | b;
    if (a == 0) return 0;
    return (std::uint32_t(a) << 24) | (std::uint32_t(Scale255(r, a)) << 16) | (std::uint32_t(Scale255(g, a)) << 8) |
           Scale255(b, a);
}

// The straight-alpha bytes B, G, R, A of a premultiplied ARGB32 word.
inline void Straight(std::uint32_t word, std::uint8_t *bgra) {
    unsigned a = word >> 24;
    unsigned r = (word >> 16) & 0xff, g = (word >> 8) & 0xff, b = word & 0xff;
    if (a != 255 && a != 0) {
        r = (r * 255 + a / 2) / a;
        g = (g * 255 + a / 2) / a;
        b = (b * 255 + a / 2) / a;
        if (r > 255) r = 255;
        if (g > 255) g = 255;
        if (b > 255) b = 255;
    }
    bgra[0] = std::uint8_t(b);
    bgra[1] = std::uint8_t(g);
    bgra[2] = std::uint8_t(r);
    bgra[3] = std::uint8_t(a);
}

}  // namespace qor::tools::platform::codec
