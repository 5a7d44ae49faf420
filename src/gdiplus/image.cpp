#include "qor/tools/gdiplus/image.h"

#include "qor/tools/exception.h"

namespace qor::tools::gdiplus {

void image::Create(int width, int height, int format) { Attach(new Gdiplus::Bitmap(width, height, format), false); }

void image::Load(char16_t const *path) {
    Gdiplus::Bitmap *bitmap = decoder().Load(path);
    if (!bitmap) throw exception(u"gdiplus image load");
    Attach(bitmap, false);
    Body()->mPath = path;
}

void image::Load(HBITMAP source) {
    auto *bitmap = new Gdiplus::Bitmap(source, nullptr);
    if (!bitmap || bitmap->GetLastStatus() != Gdiplus::Ok) {
        delete bitmap;
        throw exception(u"gdiplus image load");
    }
    Attach(bitmap, false);
    Body()->mPath.Empty();
}

// The encoder is chosen by the path given, not the stored one.
void image::Save(char16_t const *path) {
    if (path) Body()->mPath = path;
    if (IsEmpty() || Body()->mPath.IsEmpty()) return;
    if (encoder().Save(Get(), path) != Gdiplus::Ok) throw exception(u"gdiplus image save");
}

Gdiplus::Size image::Size() {
    if (IsEmpty()) return {0, 0};
    return {int(Get()->GetWidth()), int(Get()->GetHeight())};
}

}  // namespace qor::tools::gdiplus
