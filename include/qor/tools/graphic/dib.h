// graphic::dib: the plain pixel buffer that image code works on, 32 bits a
// pixel (blue, green, red, alpha in memory), rows from top to bottom, each
// row starting 16-byte aligned at the default stride. It owns its memory
// (Alloc, the size constructor, Clone) or only refers to someone else's (the
// pointer constructor, Reference): the locks of both image stacks are a dib
// on the bitmap's own memory. Writing a file goes through direct2d::wic.
//
//   graphic::dib buffer(640, 480, 0);        // stride 2560
//   std::uint32_t *row = reinterpret_cast<std::uint32_t *>(buffer.Data() + y * buffer.Stride());
//   buffer.Save(u"/tmp/out.png");
//
// The plain copy constructor and operator= copy the fields, the block too:
// meant for locks, which own nothing. The bool forms are the safe copies.
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/align16.h"

namespace qor::tools::graphic {

class QOR_TOOLS_API dib : public align16 {
public:
    dib() noexcept = default;
    // A stride of 0 chooses width x 4 rounded up to a multiple of 16.
    dib(int width, int height, int stride) { Alloc(width, height, stride); }
    dib(int width, int height, int stride, unsigned char *data) noexcept
        : align16(data, height * stride), mWidth(width), mHeight(height), mStride(stride) {}
    dib(dib const &other, bool copy) { Clone(other, copy); }
    dib(dib const &) = default;
    dib &operator=(dib const &) = default;
    ~dib() override = default;

    // Reallocates only on a change of shape; new pixels are not cleared.
    void Alloc(int width, int height, int stride);
    void Reference(unsigned char *data, int width, int height, int stride);
    void Release();
    int Width() const noexcept { return mWidth; }
    int Height() const noexcept { return mHeight; }
    int Stride() const noexcept { return mStride; }
    // Copies this buffer's size in bytes from `other`, whatever its shape.
    void Copy(dib const &other);
    // Copies row by row at each buffer's stride: this buffer's width and height.
    void SafeCopy(dib const &other);
    void Clone(dib const &other, bool copy);
    // Same width, height and stride (the pixels are not compared).
    bool IsEqual(dib const &other) const noexcept;
    // Writes the pixels (taken as premultiplied) as an image file of the
    // format the extension names; fails as direct2d::wic::Save does.
    void Save(char16_t const *path);

protected:
    int mWidth = 0;
    int mHeight = 0;
    int mStride = 0;
};

}  // namespace qor::tools::graphic
