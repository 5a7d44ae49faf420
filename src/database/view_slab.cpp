#include "view_slab.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace qor::tools::database::detail {

namespace {

// The emptied slab kept for reuse, or null.
std::atomic<view_slab *> gSpare{nullptr};

}  // namespace

void view_buffer::operator delete(void *p) noexcept {
    view_slab::Of(p, offsetof(view_slab::entry, mBuffer))->Give();
}

void view_fields::operator delete(void *p) noexcept {
    view_slab::Of(p, offsetof(view_slab::entry, mFields))->Give();
}

std::size_t view_slab::Stride(int columns) noexcept {
    static_assert(sizeof(entry) % alignof(field) == 0, "the fields follow an entry");
    return sizeof(entry) + std::size_t(columns) * sizeof(field);
}

view_slab *view_slab::Make(int rows, int columns) noexcept {
    if (rows < 1 || columns < 0) return nullptr;
    std::size_t bytes = sizeof(view_slab) + std::size_t(rows) * Stride(columns);
    view_slab *slab = gSpare.exchange(nullptr, std::memory_order_acquire);
    if (!slab || slab->mBytes < bytes) {
        std::free(slab);
        void *block = std::malloc(bytes);
        if (!block) return nullptr;
        slab = ::new (block) view_slab();
        slab->mBytes = bytes;
    }
    slab->mLive = 1;
    slab->mStride = Stride(columns);
    slab->mColumns = columns;
    return slab;
}

view_buffer *view_slab::Buffer(int i) noexcept {
    ++mLive;
    At(i)->mSlab = this;
    return ::new (At(i)->mBuffer) view_buffer();
}

view_fields *view_slab::Fields(int i) noexcept {
    ++mLive;
    At(i)->mSlab = this;
    auto *fields = ::new (At(i)->mFields) view_fields();
    fields->mElement = reinterpret_cast<field *>(At(i) + 1);
    fields->mCapacity = mColumns;
    fields->Reference(true);
    return fields;
}

void view_slab::Give() noexcept {
    if (--mLive > 0) return;
    if (mBytes <= kSpareBytes) {
        std::free(gSpare.exchange(this, std::memory_order_acq_rel));
        return;
    }
    std::free(this);
}

}  // namespace qor::tools::database::detail
