// JPEG through libjpeg-turbo: decoded straight into the surface's rows as
// BGRA (grey and YCbCr by the library, CMYK here); encoded from straight
// colours with an optional APP1 segment right after the start of image.
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <jpeglib.h>
#include <jerror.h>

#include "codec_formats.h"
#include "codec_pixels.h"

namespace qor::tools::platform::codec {

namespace {

// libjpeg reports a fatal error by calling error_exit, which by default ends
// the process: here it jumps back to the call instead, and nothing is printed.
struct quiet_errors {
    jpeg_error_mgr mManager;
    std::jmp_buf mJump;
    bool mTruncated = false;
};

void Fail(j_common_ptr info) { std::longjmp(reinterpret_cast<quiet_errors *>(info->err)->mJump, 1); }

void Note(j_common_ptr info, int level) {
    auto *errors = reinterpret_cast<quiet_errors *>(info->err);
    // A file that ends early is filled with grey by the library: it is not a picture.
    if (level < 0 && errors->mManager.msg_code == JWRN_JPEG_EOF) errors->mTruncated = true;
}

void Silent(j_common_ptr) {}

void Quiet(quiet_errors &errors) {
    jpeg_std_error(&errors.mManager);
    errors.mManager.error_exit = Fail;
    errors.mManager.emit_message = Note;
    errors.mManager.output_message = Silent;
}

// 1, 2, 4 or 8: the largest reduction that still covers the box.
unsigned Reduction(unsigned width, unsigned height, int boxWidth, int boxHeight) {
    if (boxWidth <= 0 || boxHeight <= 0) return 1;
    unsigned reduction = 1;
    while (reduction < 8 && width / (reduction * 2) >= unsigned(boxWidth) &&
           height / (reduction * 2) >= unsigned(boxHeight)) {
        reduction *= 2;
    }
    return reduction;
}

void CmykRow(unsigned char const *cmyk, std::uint32_t *row, unsigned width, bool inverted) {
    for (unsigned x = 0; x < width; ++x, cmyk += 4) {
        unsigned c = cmyk[0], m = cmyk[1], y = cmyk[2], k = cmyk[3];
        if (!inverted) c = 255 - c, m = 255 - m, y = 255 - y, k = 255 - k;
        row[x] = Premultiplied(Scale255(c, k), Scale255(m, k), Scale255(y, k), 255);
    }
}

// The part of the decode that may jump back: no object with a destructor lives here.
bool Read(jpeg_decompress_struct &info, quiet_errors &errors, unsigned char const *data, std::size_t size,
          int boxWidth, int boxHeight, cairo_surface_t *&out, unsigned char *&scratch) {
    if (setjmp(errors.mJump)) return false;
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, data, static_cast<unsigned long>(size));
    if (jpeg_read_header(&info, TRUE) != JPEG_HEADER_OK) return false;
    bool cmyk = info.jpeg_color_space == JCS_CMYK || info.jpeg_color_space == JCS_YCCK;
    info.out_color_space = cmyk ? JCS_CMYK : JCS_EXT_BGRA;
    info.scale_num = 1;
    info.scale_denom = Reduction(info.image_width, info.image_height, boxWidth, boxHeight);
    jpeg_calc_output_dimensions(&info);
    if (info.output_width > unsigned(kMaxSide) || info.output_height > unsigned(kMaxSide)) return false;
    out = NewSurface(int(info.output_width), int(info.output_height)).release();
    if (!out) return false;
    if (cmyk) scratch = static_cast<unsigned char *>(std::malloc(std::size_t(info.output_width) * 4));
    if (cmyk && !scratch) return false;
    jpeg_start_decompress(&info);
    while (info.output_scanline < info.output_height) {
        std::uint32_t *row = Row(out, int(info.output_scanline));
        JSAMPROW target = cmyk ? scratch : reinterpret_cast<JSAMPROW>(row);
        if (jpeg_read_scanlines(&info, &target, 1) != 1) return false;
        if (cmyk) CmykRow(scratch, row, info.output_width, info.saw_Adobe_marker);
        if (errors.mTruncated) return false;
    }
    jpeg_finish_decompress(&info);
    return !errors.mTruncated;
}

// The header part of MeasureJpeg, which may jump back like Read.
bool ReadHeader(jpeg_decompress_struct &info, quiet_errors &errors, unsigned char const *data, std::size_t size,
                std::size_t &headerEnd) {
    if (setjmp(errors.mJump)) return false;
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, data, static_cast<unsigned long>(size));
    if (jpeg_read_header(&info, TRUE) != JPEG_HEADER_OK) return false;
    headerEnd = size - info.src->bytes_in_buffer;
    return true;
}

// Whether an end-of-image marker follows `from`: the entropy-coded data
// cannot hold one (a 0xFF there is always followed by 0x00 or a restart).
bool EndsAfter(unsigned char const *data, std::size_t size, std::size_t from) {
    for (std::size_t i = size; i >= from + 2; --i) {
        if (data[i - 2] == 0xff && data[i - 1] == 0xd9) return true;
    }
    return false;
}

bool IsOpaque(std::uint32_t const *row, JDIMENSION width) {
    std::uint32_t all = 0xffffffffu;
    for (JDIMENSION x = 0; x < width; ++x) all &= row[x];
    return (all >> 24) == 0xff;
}

struct encode_state {
    std::vector<unsigned char> mRow;
    unsigned char *mBuffer = nullptr;
    unsigned long mSize = 0;
};

bool Write(jpeg_compress_struct &info, quiet_errors &errors, cairo_surface_t *image, options const &o,
           encode_state &state) {
    if (setjmp(errors.mJump)) return false;
    jpeg_create_compress(&info);
    jpeg_mem_dest(&info, &state.mBuffer, &state.mSize);
    info.image_width = JDIMENSION(cairo_image_surface_get_width(image));
    info.image_height = JDIMENSION(cairo_image_surface_get_height(image));
    info.input_components = 4;
    info.in_color_space = JCS_EXT_BGRA;
    jpeg_set_defaults(&info);
    double q = o.mQuality == o.mQuality ? o.mQuality : 0.0;  // NaN as 0
    q = q < 0 ? 0 : q > 1 ? 1 : q;
    jpeg_set_quality(&info, int(q * 100 + 0.5), TRUE);
    bool app1 = !o.mApp1.empty();
    if (app1) info.write_JFIF_header = FALSE;  // the APP1 segment comes straight after the start of image
    jpeg_start_compress(&info, TRUE);
    if (app1) {
        jpeg_write_marker(&info, JPEG_APP0 + 1, reinterpret_cast<JOCTET const *>(o.mApp1.data()),
                          unsigned(o.mApp1.size()));
    }
    while (info.next_scanline < info.image_height) {
        std::uint32_t *row = Row(image, int(info.next_scanline));
        // An opaque row is its own straight colours: it goes as it stands.
        JSAMPROW line = reinterpret_cast<JSAMPROW>(row);
        if (!IsOpaque(row, info.image_width)) {
            for (JDIMENSION x = 0; x < info.image_width; ++x) Straight(row[x], &state.mRow[x * 4]);
            line = state.mRow.data();
        }
        jpeg_write_scanlines(&info, &line, 1);
    }
    jpeg_finish_compress(&info);
    return true;
}

}  // namespace

surface DecodeJpeg(unsigned char const *data, std::size_t size, int boxWidth, int boxHeight) {
    if (Sniff(data, size) != format::jpeg) return nullptr;
    jpeg_decompress_struct info{};
    quiet_errors errors;
    Quiet(errors);
    info.err = &errors.mManager;
    cairo_surface_t *out = nullptr;
    unsigned char *scratch = nullptr;
    bool ok = Read(info, errors, data, size, boxWidth, boxHeight, out, scratch);
    jpeg_destroy_decompress(&info);
    std::free(scratch);
    surface result(out);
    if (!ok) return nullptr;
    cairo_surface_mark_dirty(result.get());
    return result;
}

bool EncodeJpeg(cairo_surface_t *image, options const &o, std::string &out) {
    if (o.mApp1.size() > 65533) return false;  // one segment holds at most this much
    jpeg_compress_struct info{};
    quiet_errors errors;
    Quiet(errors);
    info.err = &errors.mManager;
    encode_state state;
    state.mRow.resize(std::size_t(cairo_image_surface_get_width(image)) * 4);
    bool ok = Write(info, errors, image, o, state);
    jpeg_destroy_compress(&info);
    if (ok) out.assign(reinterpret_cast<char const *>(state.mBuffer), state.mSize);
    std::free(state.mBuffer);
    return ok;
}

bool MeasureJpeg(unsigned char const *data, std::size_t size, int &width, int &height) {
    if (Sniff(data, size) != format::jpeg) return false;
    jpeg_decompress_struct info{};
    quiet_errors errors;
    Quiet(errors);
    info.err = &errors.mManager;
    std::size_t headerEnd = 0;
    bool ok = ReadHeader(info, errors, data, size, headerEnd) && !info.progressive_mode &&
              info.image_width <= unsigned(kMaxSide) && info.image_height <= unsigned(kMaxSide) &&
              std::int64_t(info.image_width) * info.image_height <= kMaxPixels && EndsAfter(data, size, headerEnd);
    width = int(info.image_width);
    height = int(info.image_height);
    jpeg_destroy_decompress(&info);
    return ok && width > 0 && height > 0;
}

}  // namespace qor::tools::platform::codec
