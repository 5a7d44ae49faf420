#include "qor/tools/gdiplus/target.h"

namespace qor::tools::gdiplus {

void target::Create(HWND window) { Attach(new Gdiplus::Graphics(window), false); }

void target::Create(HDC context) { Attach(new Gdiplus::Graphics(context), false); }

void target::Create(image &picture) {
    mSurface = picture;
    Attach(new Gdiplus::Graphics(mSurface.Get()), false);
}

void target::Create(CRect const &rect, int format) { Create(rect.right - rect.left, rect.bottom - rect.top, format); }

void target::Create(int width, int height, int format) {
    mSurface.Create(width, height, format);
    Create(mSurface);
}

// Eight strokes, each on its own, all attempted whatever happens.
void target::DrawRoundRect(Gdiplus::Pen const *pen, Gdiplus::RectF const &rect, float rx, float ry) {
    Gdiplus::Graphics *graphics = Get();
    if (!graphics) return;
    float x = rect.X, y = rect.Y, w = rect.Width, h = rect.Height, dx = 2 * rx, dy = 2 * ry;
    graphics->DrawArc(pen, x, y, dx, dy, 180, 90);
    graphics->DrawLine(pen, x + rx, y, x + w - rx, y);
    graphics->DrawArc(pen, x + w - dx, y, dx, dy, 270, 90);
    graphics->DrawLine(pen, x + w, y + ry, x + w, y + h - ry);
    graphics->DrawArc(pen, x + w - dx, y + h - dy, dx, dy, 0, 90);
    graphics->DrawLine(pen, x + rx, y + h, x + w - rx, y + h);
    graphics->DrawArc(pen, x, y + h - dy, dx, dy, 90, 90);
    graphics->DrawLine(pen, x, y + ry, x, y + h - ry);
}

void target::DrawRoundRect(Gdiplus::Pen const *pen, int x, int y, int width, int height, int rx, int ry) {
    DrawRoundRect(pen, Gdiplus::RectF(float(x), float(y), float(width), float(height)), float(rx), float(ry));
}

target::selector::selector(HDC context, void *object)
    : mDc(context), mPrevious(object ? SelectObject(context, object) : nullptr) {}

target::selector::selector(HDC context, CGdiObject *object)
    : mDc(context), mPrevious(SelectObject(context, object ? object->m_hObject : nullptr)) {}

target::selector::~selector() {
    if (mPrevious) SelectObject(mDc, mPrevious);
}

target::dc::dc(target &owner) : mOwner(&owner), mHandle(owner.IsEmpty() ? nullptr : owner->GetHDC()) {}

target::dc::~dc() {
    if (!mOwner->IsEmpty()) (*mOwner)->ReleaseHDC(mHandle);
}

}  // namespace qor::tools::gdiplus
