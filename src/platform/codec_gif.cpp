// GIF through giflib: the first frame composed onto a transparent canvas of
// the logical screen's size (its offset, its colour table, its transparent
// index); written as one frame of at most 255 colours from giflib's
// quantiser, with index 255 for pixels that are mostly transparent.
#include <algorithm>
#include <cstring>
#include <unordered_map>
#include <vector>

#include <gif_lib.h>

#include "codec_bytes.h"
#include "codec_formats.h"
#include "codec_pixels.h"

namespace qor::tools::platform::codec {

namespace {

int ReadBytes(GifFileType *gif, GifByteType *out, int n) {
    return int(static_cast<source *>(gif->UserData)->Take(out, std::size_t(n < 0 ? 0 : n)));
}

int WriteBytes(GifFileType *gif, GifByteType const *in, int n) {
    static_cast<std::string *>(gif->UserData)->append(reinterpret_cast<char const *>(in), std::size_t(n));
    return n;
}

struct gif_close {
    void operator()(GifFileType *g) const noexcept {
        int error = 0;
        DGifCloseFile(g, &error);
    }
};

// Reads records up to the first image, keeping its graphic control block.
bool FirstImage(GifFileType *gif, GraphicsControlBlock &control) {
    control.TransparentColor = NO_TRANSPARENT_COLOR;
    for (;;) {
        GifRecordType type;
        if (DGifGetRecordType(gif, &type) == GIF_ERROR) return false;
        if (type == IMAGE_DESC_RECORD_TYPE) return DGifGetImageDesc(gif) != GIF_ERROR;
        if (type == TERMINATE_RECORD_TYPE) return false;
        if (type != EXTENSION_RECORD_TYPE) continue;
        int code = 0;
        GifByteType *block = nullptr;
        if (DGifGetExtension(gif, &code, &block) == GIF_ERROR) return false;
        while (block) {
            if (code == GRAPHICS_EXT_FUNC_CODE && block[0] >= 4) DGifExtensionToGCB(block[0], block + 1, &control);
            code = 0;
            if (DGifGetExtensionNext(gif, &block) == GIF_ERROR) return false;
        }
    }
}

// The rows of the frame in file order: interlaced frames come in four passes.
std::vector<int> RowOrder(int height, bool interlaced) {
    std::vector<int> order;
    if (!interlaced) {
        for (int y = 0; y < height; ++y) order.push_back(y);
        return order;
    }
    static constexpr int kStart[] = {0, 4, 2, 1}, kStep[] = {8, 8, 4, 2};
    for (int pass = 0; pass < 4; ++pass) {
        for (int y = kStart[pass]; y < height; y += kStep[pass]) order.push_back(y);
    }
    return order;
}

// The colours of a picture of at most 255 of them, each kept exactly (the
// quantiser keeps five bits of each channel); false when there are more.
bool ExactPalette(std::vector<GifByteType> const &red, std::vector<GifByteType> const &green,
                  std::vector<GifByteType> const &blue, std::vector<bool> const &clear,
                  std::vector<GifByteType> &indices, std::vector<GifColorType> &palette) {
    std::unordered_map<std::uint32_t, GifByteType> seen;
    for (std::size_t i = 0; i < red.size(); ++i) {
        if (clear[i]) continue;
        std::uint32_t key = std::uint32_t(red[i]) << 16 | std::uint32_t(green[i]) << 8 | blue[i];
        auto found = seen.find(key);
        if (found == seen.end()) {
            if (seen.size() == 255) return false;
            GifByteType index = GifByteType(seen.size());
            palette[index] = {red[i], green[i], blue[i]};
            found = seen.emplace(key, index).first;
        }
        indices[i] = found->second;
    }
    return true;
}

}  // namespace

surface DecodeGif(unsigned char const *data, std::size_t size) {
    if (Sniff(data, size) != format::gif) return nullptr;  // giflib reads any "GIF" as a version
    source bytes{data, size};
    int error = 0;
    std::unique_ptr<GifFileType, gif_close> gif(DGifOpen(&bytes, ReadBytes, &error));
    if (!gif) return nullptr;
    GraphicsControlBlock control{};
    if (!FirstImage(gif.get(), control)) return nullptr;
    GifImageDesc const &frame = gif->Image;
    ColorMapObject const *colours = frame.ColorMap ? frame.ColorMap : gif->SColorMap;
    if (!colours || frame.Width <= 0 || frame.Height <= 0) return nullptr;
    int width = std::max(gif->SWidth, frame.Left + frame.Width), height = std::max(gif->SHeight, frame.Top + frame.Height);
    surface out = NewSurface(width, height);
    if (!out) return nullptr;
    std::vector<GifPixelType> line(std::size_t(frame.Width));
    for (int y : RowOrder(frame.Height, frame.Interlace)) {
        if (DGifGetLine(gif.get(), line.data(), frame.Width) == GIF_ERROR) return nullptr;
        std::uint32_t *row = Row(out.get(), frame.Top + y) + frame.Left;
        for (int x = 0; x < frame.Width; ++x) {
            int index = line[std::size_t(x)];
            if (index == control.TransparentColor || index >= colours->ColorCount) continue;
            GifColorType const &c = colours->Colors[index];
            row[x] = Premultiplied(c.Red, c.Green, c.Blue, 255);
        }
    }
    cairo_surface_mark_dirty(out.get());
    return out;
}

bool EncodeGif(cairo_surface_t *image, std::string &out) {
    int width = cairo_image_surface_get_width(image), height = cairo_image_surface_get_height(image);
    if (width > 65535 || height > 65535) return false;
    std::size_t n = std::size_t(width) * std::size_t(height);
    std::vector<GifByteType> red(n), green(n), blue(n), indices(n);
    std::vector<bool> clear(n);
    bool anyClear = false;
    for (int y = 0; y < height; ++y) {
        std::uint32_t const *row = Row(image, y);
        for (int x = 0; x < width; ++x) {
            std::size_t i = std::size_t(y) * std::size_t(width) + std::size_t(x);
            std::uint8_t bgra[4];
            Straight(row[x], bgra);
            blue[i] = bgra[0], green[i] = bgra[1], red[i] = bgra[2];
            clear[i] = bgra[3] < 128;
            anyClear = anyClear || clear[i];
        }
    }
    std::vector<GifColorType> palette(256);
    if (!ExactPalette(red, green, blue, clear, indices, palette)) {
        int count = 255;
        if (GifQuantizeBuffer(unsigned(width), unsigned(height), &count, red.data(), green.data(), blue.data(),
                              indices.data(), palette.data()) == GIF_ERROR) {
            return false;
        }
    }
    for (std::size_t i = 0; i < n; ++i) {
        if (clear[i]) indices[i] = 255;
    }
    int error = 0;
    GifFileType *gif = EGifOpen(&out, WriteBytes, &error);
    if (!gif) return false;
    ColorMapObject *map = GifMakeMapObject(256, palette.data());
    bool ok = map != nullptr;
    if (ok && anyClear) {
        EGifSetGifVersion(gif, true);  // the control block is a GIF89a extension
        GraphicsControlBlock control{};
        control.DisposalMode = DISPOSAL_UNSPECIFIED;
        control.DelayTime = 0;
        control.TransparentColor = 255;
        GifByteType extension[4];
        std::size_t length = EGifGCBToExtension(&control, extension);
        ok = EGifPutScreenDesc(gif, width, height, 8, 0, map) != GIF_ERROR &&
             EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, int(length), extension) != GIF_ERROR;
    } else if (ok) {
        ok = EGifPutScreenDesc(gif, width, height, 8, 0, map) != GIF_ERROR;
    }
    ok = ok && EGifPutImageDesc(gif, 0, 0, width, height, false, nullptr) != GIF_ERROR;
    for (int y = 0; ok && y < height; ++y) {
        ok = EGifPutLine(gif, &indices[std::size_t(y) * std::size_t(width)], width) != GIF_ERROR;
    }
    GifFreeMapObject(map);
    int closeError = 0;
    if (EGifCloseFile(gif, &closeError) == GIF_ERROR) ok = false;
    return ok;
}

}  // namespace qor::tools::platform::codec
