// Locks on bitmaps: a copy of an area in the format asked for, written back
// when a write lock ends. Each lock is a record of its own, found again by
// the lock record's Reserved field, that refers to the bitmap's pixels
// weakly: a lock that outlives its bitmap ends without touching anything.
#include <cstdint>
#include <memory>
#include <mutex>
#include <new>
#include <unordered_map>
#include <vector>

#include "gdip_objects.h"
#include "gdip_pixels.h"

namespace qor::tools::Gdiplus {

namespace {

struct lock_record {
    std::weak_ptr<pixel_store> mPixels;
    GpBitmap *mBitmap;  // compared, never read: it may be gone
    PixelFormat mBitmapFormat;
    int mBitmapWidth, mBitmapHeight;
    Rect mRect;
    UINT mFlags;
    PixelFormat mFormat;
    std::vector<BYTE> mBuffer;
    BYTE *mScan0;
    INT mStride;
};

std::mutex gLock;
std::unordered_map<UINT_PTR, std::unique_ptr<lock_record>> gRecords;
UINT_PTR gNext = 0;

std::unique_ptr<lock_record> TakeRecord(UINT_PTR key, GpBitmap *bitmap) {
    std::lock_guard guard(gLock);
    auto found = gRecords.find(key);
    if (found == gRecords.end() || (bitmap && found->second->mBitmap != bitmap)) return nullptr;
    std::unique_ptr<lock_record> record = std::move(found->second);
    gRecords.erase(found);
    return record;
}

}  // namespace

Status GdipBitmapLockBits(GpBitmap *bitmap, Rect const *rect, UINT flags, PixelFormat format, BitmapData *data) {
    if (!bitmap || !data || !IsKnownFormat(format) || !(flags & (ImageLockModeRead | ImageLockModeWrite))) {
        return InvalidParameter;
    }
    Rect area = rect ? *rect : Rect(0, 0, bitmap->mWidth, bitmap->mHeight);
    if (area.X < 0 || area.Y < 0 || area.Width < 1 || area.Height < 1 || area.X > bitmap->mWidth - area.Width ||
        area.Y > bitmap->mHeight - area.Height) {
        return InvalidParameter;
    }
    if (bitmap->mPixels->mLocked) return WrongState;
    auto record = std::unique_ptr<lock_record>(new (std::nothrow) lock_record{
        bitmap->mPixels, bitmap, bitmap->mFormat, bitmap->mWidth, bitmap->mHeight, area, flags, format, {}, nullptr, 0});
    if (!record) return OutOfMemory;
    if (flags & ImageLockModeUserInputBuf) {
        if (!data->Scan0 || std::abs(std::int64_t(data->Stride)) < std::int64_t(area.Width) * BytesPerPixel(format)) {
            return InvalidParameter;
        }
        record->mScan0 = static_cast<BYTE *>(data->Scan0);
        record->mStride = data->Stride;
    } else {
        record->mStride = (area.Width * BytesPerPixel(format) + 3) & ~3;
        try {
            record->mBuffer.resize(std::size_t(record->mStride) * area.Height);
        } catch (std::bad_alloc const &) {
            return OutOfMemory;
        }
        record->mScan0 = record->mBuffer.data();
    }
    if (flags & ImageLockModeRead) {
        pixel_access pixels(*bitmap);
        for (int y = 0; y < area.Height; ++y) {
            pixels.ReadRow(area.Y + y, area.X, area.Width, record->mScan0 + std::ptrdiff_t(y) * record->mStride, format);
        }
    }
    data->Width = UINT(area.Width);
    data->Height = UINT(area.Height);
    data->Stride = record->mStride;
    data->PixelFormat = format;
    data->Scan0 = record->mScan0;
    bitmap->mPixels->mLocked = true;
    std::lock_guard guard(gLock);
    data->Reserved = ++gNext;
    gRecords.emplace(data->Reserved, std::move(record));
    return Ok;
}

Status GdipBitmapUnlockBits(GpBitmap *bitmap, BitmapData *data) {
    if (!data) return InvalidParameter;
    std::unique_ptr<lock_record> record = TakeRecord(data->Reserved, bitmap);
    if (!record) return WrongState;
    std::shared_ptr<pixel_store> pixels = record->mPixels.lock();
    if (!pixels) return Ok;
    pixels->mLocked = false;
    if (!(record->mFlags & ImageLockModeWrite)) return Ok;
    // The bitmap object may be gone; a stand-in of its shape writes the pixels.
    GpBitmap shape(pixels, record->mBitmapFormat, record->mBitmapWidth, record->mBitmapHeight);
    pixel_access access(shape);
    Rect const &area = record->mRect;
    for (int y = 0; y < area.Height; ++y) {
        access.WriteRow(area.Y + y, area.X, area.Width, record->mScan0 + std::ptrdiff_t(y) * record->mStride,
                        record->mFormat);
    }
    return Ok;
}

}  // namespace qor::tools::Gdiplus
