// Fuzzes a picture's road through the imaging component: the decoder (a
// JPEG's header read at once, the pixels later), the metadata tree walked
// whole, and the bitmap decoded at a reduced size and in full.
#include <cstdint>
#include <cstring>
#include <memory>

#include "platform/wic_codec.h"
#include "qor/tools/container/sptr.h"

using namespace qor::tools;
using namespace qor::tools::platform;

namespace {

void Walk(IWICMetadataQueryReader *reader, int depth) {
    container::comptr<IEnumString> names;
    if (depth > 4 || FAILED(reader->GetEnumerator(names.Addr()))) return;
    char16_t *name = nullptr;
    ULONG got = 0;
    while (names->Next(1, &name, &got) == S_OK) {
        PROPVARIANT value;
        PropVariantInit(&value);
        if (SUCCEEDED(reader->GetMetadataByName(name, &value)) && value.vt == VT_UNKNOWN) {
            container::comptr<IWICMetadataQueryReader> inner;
            if (SUCCEEDED(value.punkVal->QueryInterface(IID_IWICMetadataQueryReader,
                                                        reinterpret_cast<void **>(inner.Addr())))) {
                Walk(inner, depth + 1);
            }
        }
        PropVariantClear(&value);
        CoTaskMemFree(name);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
    auto picture = std::make_shared<wic::encoded>();
    picture->mData = std::make_unique<char[]>(size);
    if (size) std::memcpy(picture->mData.get(), data, size);
    picture->mSize = size;
    container::comptr<IWICBitmapDecoder> decoder;
    if (FAILED(wic::NewDecoder(picture, decoder.Addr()))) return 0;
    container::comptr<IWICBitmapFrameDecode> frame;
    if (FAILED(decoder->GetFrame(0, frame.Addr()))) __builtin_trap();
    container::comptr<IWICMetadataQueryReader> reader;
    if (SUCCEEDED(frame->GetMetadataQueryReader(reader.Addr()))) Walk(reader, 0);
    container::comptr<IWICBitmap> bitmap;
    if (FAILED(wic::BitmapFromSource(frame, WICBitmapCacheOnDemand, bitmap.Addr()))) return 0;
    if (cairo_surface_t *small = static_cast<wic::bitmap *>(bitmap.Get())->SurfaceForBox(16, 16)) {
        cairo_surface_destroy(small);
    }
    container::comptr<IWICBitmapLock> lock;
    if (FAILED(bitmap->Lock(nullptr, WICBitmapLockRead, lock.Addr()))) __builtin_trap();
    return 0;
}
