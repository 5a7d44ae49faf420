// The handle bodies and fields of an rset's view records, made in one block
// for all rows.
//
// A record needs two bodies (its byte buffer and its field array) and a block
// of fields; made one by one they are three allocations a row, and as many
// frees when the set is cleared. Here they stand in entries of one slab. Each
// body is an ordinary counted body of a final subclass whose operator delete
// hands its entry back to the slab, so a body outlives its rset if a handle
// still holds it, and the slab goes with the last body, whenever that is.
//
// A field array whose block stands in a slab carries the reference mark (which
// an array of objects does not otherwise use): record::_ForgetView ends those
// fields in place and lets go of the block before the array could free it or
// grow out of it.
//
// The last slab to empty is kept for the next rset that fits in it (one slab,
// of at most kSpareBytes): a large block freed and made again for every record
// set is a region the allocator may hand back to the system and fault in
// again page by page, which costs more than the fetch itself.
#pragma once

#include <cstddef>

#include "qor/tools/container/array.h"
#include "qor/tools/container/buffer.h"
#include "qor/tools/database/field.h"

namespace qor::tools::database::detail {

using field_body = container::base::array<field, container::pif::array::object>;

class view_slab;

class view_buffer final : public container::base::buffer {
public:
    static void operator delete(void *p) noexcept;
};

class view_fields final : public field_body {
public:
    static void operator delete(void *p) noexcept;
};

class view_slab {
public:
    // A slab of `rows` entries of `columns` fields each, or null when there is
    // no memory for it. The maker holds it until it calls Give, so that a body
    // lost while the records are being made cannot free it under the maker.
    static view_slab *Make(int rows, int columns) noexcept;

    // Entry `i`'s bodies, made anew; each counts until its last handle goes.
    // The field array comes with room for the columns, and no field yet.
    view_buffer *Buffer(int i) noexcept;
    view_fields *Fields(int i) noexcept;

    // A body of the slab (or the maker's hold) has gone: the last frees the
    // slab, or keeps it as the spare.
    void Give() noexcept;

    static constexpr std::size_t kSpareBytes = std::size_t(64) << 20;

private:
    // An entry; the row's fields follow it.
    struct entry {
        view_slab *mSlab;
        alignas(view_buffer) unsigned char mBuffer[sizeof(view_buffer)];
        alignas(view_fields) unsigned char mFields[sizeof(view_fields)];
    };
    friend class view_buffer;
    friend class view_fields;

    view_slab() = default;
    static std::size_t Stride(int columns) noexcept;
    entry *At(int i) noexcept {
        return reinterpret_cast<entry *>(reinterpret_cast<unsigned char *>(this + 1) + std::size_t(i) * mStride);
    }
    static view_slab *Of(void *body, std::size_t offset) noexcept {
        return reinterpret_cast<entry *>(static_cast<unsigned char *>(body) - offset)->mSlab;
    }

    alignas(std::max_align_t) std::size_t mLive = 1;
    std::size_t mBytes = 0;   // the block's size, header included
    std::size_t mStride = 0;  // an entry and its fields
    int mColumns = 0;
};

}  // namespace qor::tools::database::detail
