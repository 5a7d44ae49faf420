#include "support/picture_files.h"

#include <cstdio>
#include <cstdint>

#include <gif_lib.h>
#include <tiffio.h>

namespace qor::tools::testing {

namespace {

int GifWrite(GifFileType *gif, GifByteType const *data, int n) {
    static_cast<std::string *>(gif->UserData)->append(reinterpret_cast<char const *>(data), std::size_t(n));
    return n;
}

}  // namespace

std::string MakeAnimatedGif() {
    std::string out;
    int error = 0;
    GifFileType *gif = EGifOpen(&out, GifWrite, &error);
    GifColorType colours[4] = {{0, 0, 0}, {255, 0, 0}, {0, 255, 0}, {0, 0, 255}};
    ColorMapObject *map = GifMakeMapObject(4, colours);
    EGifSetGifVersion(gif, true);
    EGifPutScreenDesc(gif, 6, 4, 2, 0, map);
    GraphicsControlBlock control{};
    control.TransparentColor = 0;
    GifByteType extension[4];
    EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, int(EGifGCBToExtension(&control, extension)), extension);
    EGifPutImageDesc(gif, 1, 1, 4, 2, true, nullptr);
    GifPixelType top[4] = {1, 1, 0, 2}, bottom[4] = {2, 2, 2, 1};
    EGifPutLine(gif, top, 4);  // two rows interlaced: row 0 in the first pass, row 1 in the last
    EGifPutLine(gif, bottom, 4);
    EGifPutImageDesc(gif, 0, 0, 6, 4, false, nullptr);
    GifPixelType blue[6] = {3, 3, 3, 3, 3, 3};
    for (int y = 0; y < 4; ++y) EGifPutLine(gif, blue, 6);
    GifFreeMapObject(map);
    EGifCloseFile(gif, &error);
    return out;
}

std::string MakeTiffPages(char const *path) {
    TIFF *t = TIFFOpen(path, "w");
    for (int page = 0; page < 2; ++page) {
        TIFFSetField(t, TIFFTAG_IMAGEWIDTH, 3u);
        TIFFSetField(t, TIFFTAG_IMAGELENGTH, 2u);
        TIFFSetField(t, TIFFTAG_BITSPERSAMPLE, 16);
        TIFFSetField(t, TIFFTAG_SAMPLESPERPIXEL, 1);
        TIFFSetField(t, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
        TIFFSetField(t, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        for (std::uint32_t y = 0; y < 2; ++y) {
            std::uint16_t row[3] = {0, std::uint16_t(page ? 0 : 0x8080), 0xffff};
            TIFFWriteScanline(t, row, y, 0);
        }
        TIFFWriteDirectory(t);
    }
    TIFFClose(t);
    FILE *f = std::fopen(path, "rb");
    std::string out;
    char buffer[4096];
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, f)) > 0;) out.append(buffer, n);
    std::fclose(f);
    std::remove(path);
    return out;
}

}  // namespace qor::tools::testing
