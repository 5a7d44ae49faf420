#include "qor/tools/direct2d/wic.h"

#include <cstdint>
#include <cstring>
#include <vector>

#include "qor/tools/direct2d/factory.h"
#include "qor/tools/exception.h"
#include "direct2d/target_properties.h"
#include "qor/tools/file/operations.h"
#include "platform/file_system.h"

namespace qor::tools::direct2d {

namespace {

IWICImagingFactory *Imaging() {
    factory *f = factory::Instance();
    return f ? f->WICFactory() : nullptr;
}

}  // namespace

wic::wic(char16_t const *path) { Load(path, nullptr); }

wic::wic(IWICBitmap *bitmap, char16_t const *path) : xptr(bitmap, false) {
    if (path) Body()->mPath = path;
}

wic::wic(int width, int height) { Create(width, height); }

wic::wic(float width, float height) { Create(width, height); }

void wic::Create(int width, int height) {
    Release();
    IWICImagingFactory *imaging = Imaging();
    IWICBitmap *bitmap = nullptr;
    if (!imaging || width < 0 || height < 0 ||
        FAILED(imaging->CreateBitmap(UINT(width), UINT(height), GUID_WICPixelFormat32bppPBGRA, WICBitmapCacheOnLoad,
                                     &bitmap))) {
        throw exception(u"wic create bitmap");
    }
    Attach(bitmap, false);
}

void wic::Create(float width, float height) { Create(int(width), int(height)); }

void wic::Load(char16_t const *path, exif *record) {
    IWICBitmap *bitmap = decoder().Load(path, record);
    if (!bitmap) throw exception(u"wic bitmap load <%s>", path);
    Attach(bitmap, false);
    Body()->mPath = path;
}

void wic::LoadExif(char16_t const *path, exif *record) { decoder().LoadExif(path, record); }

void wic::Save(float quality, char16_t const *path, exif *record) {
    if (path) Body()->mPath = path;
    if (path && platform::Exists(path) && !platform::IsDirectory(path)) file::_ClearReadOnly(path);
    if (IsEmpty() || Body()->mPath.IsEmpty()) return;
    string target = Body()->mPath;
    if (encoder().Save(Get(), target, record, quality) < 0) throw exception(u"wic bitmap save");
}

void wic::Save(char16_t const *path, exif *record) { Save(1.0f, path, record); }

wic wic::Scale(float width, float height) { return Scale(Get(), width, height); }

wic wic::Scale(sizef const &size) { return Scale(Get(), size.width, size.height); }

wic wic::Scale(IWICBitmap *bitmap, float width, float height) {
    UINT iw = 0, ih = 0;
    if (!bitmap || FAILED(bitmap->GetSize(&iw, &ih))) throw exception(u"direct2d exception");
    float sx = width / float(iw), sy = height / float(ih);
    float s = sy > sx ? sx : sy;
    float nw = float(iw) * s, nh = float(ih) * s;
    if (!(nw > 1.0f)) nw = 1.0f;
    if (!(nh > 1.0f)) nh = 1.0f;
    wic result;
    result.Create(nw, nh);
    target<ID2D1RenderTarget> t = result.CreateRenderTarget();
    t->BeginDraw();
    container::comptr<ID2D1Bitmap> image;
    t->CreateBitmapFromWicBitmap(bitmap, nullptr, image.Addr());
    D2D1_RECT_F box = D2D1::RectF(0, 0, nw, nh);
    if (image) t->DrawBitmap(image, &box, 1.0f, D2D1_BITMAP_INTERPOLATION_MODE_LINEAR, nullptr);
    t->EndDraw();
    return result;
}

target<ID2D1RenderTarget> wic::CreateRenderTarget() {
    factory *f = factory::Instance();
    target<ID2D1RenderTarget> t;
    if (!f || !f->Factory() || IsEmpty() ||
        FAILED(f->Factory()->CreateWicBitmapRenderTarget(Get(), TargetProperties(), t.Addr()))) {
        throw exception(u"wic create render target");
    }
    return t;
}

// Runs of pixels that differ from the key, with the edges as the region code
// has always made them: a run that ends before the row's end loses its first
// and its last pixel. The pixel behind the last row's end lies outside the
// bitmap and counts as one that differs.
HRGN wic::CreateRegion(unsigned long color) {
    sizef size = Size();
    int width = int(size.width), height = int(size.height);
    lock pixels(*this, WICBitmapLockWrite);
    if (!pixels.Data()) width = height = 0;
    auto key = std::uint32_t(color);
    auto at = [&](int x, int y) -> std::uint32_t {
        if (y == height - 1 && x >= width) return ~key;
        auto const *row = reinterpret_cast<std::uint32_t const *>(pixels.Data() + std::ptrdiff_t(y) * pixels.Stride());
        return row[x];
    };
    std::vector<RECTL> runs;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width;) {
            if (at(x, y) == key) {
                ++x;
                continue;
            }
            int start = x;
            while (x < width && at(x + 1, y) != key) ++x;
            runs.push_back(RECTL{start + 1, y, x, y + 1});
            ++x;
        }
    }
    DWORD bytes = DWORD((runs.size() + 2) * 16);
    std::vector<unsigned char> block(bytes);
    auto *data = reinterpret_cast<RGNDATA *>(block.data());
    data->rdh = RGNDATAHEADER{32, RDH_RECTANGLES, DWORD(runs.size()), bytes, RECTL{0, 0, width, height}};
    if (!runs.empty()) std::memcpy(data->Buffer, runs.data(), runs.size() * sizeof(RECTL));
    return ExtCreateRegion(nullptr, bytes, data);
}

void wic::Clone(wic &source) {
    Release();
    if (source.IsEmpty()) return;
    sizef size = source.Size();
    Create(size.width, size.height);
    {
        lock from(source, WICBitmapLockRead);
        lock to(*this, WICBitmapLockWrite);
        to.Clone(from, true);
    }
    Body()->mPath = source.Body()->mPath;
}

sizef wic::Size() {
    UINT width = 0, height = 0;
    if (IsEmpty() || FAILED(Get()->GetSize(&width, &height))) return sizef(0, 0);
    return sizef(float(width), float(height));
}

string wic::Path() { return Body()->mPath; }

}  // namespace qor::tools::direct2d
