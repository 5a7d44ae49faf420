#include "qor/tools/gdiplus/bdc.h"

namespace qor::tools::gdiplus {

bdc::bdc(HDC context, CRect &rect, _BP_BUFFERFORMAT format) {
    mPaintBuffer = BeginBufferedPaint(context, &rect, format, nullptr, &mDc);
    mTarget.Create(mDc);
}

bdc::bdc(HDC context, CRect &rect, image const &picture) : bdc(context, rect, BPBF_TOPDOWNDIB) { Transfer(picture); }

void bdc::Transfer(image const &picture) {
    if (mTarget.IsEmpty()) return;
    mTarget->DrawImage(picture.Get(), 0, 0);
}

bdc::~bdc() { EndBufferedPaint(mPaintBuffer, 1); }

}  // namespace qor::tools::gdiplus
