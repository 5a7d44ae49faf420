#include "qor/tools/database/record.h"

#include <cstdint>
#include <cstring>
#include <new>

#include "view_slab.h"

namespace qor::tools::database {

record::~record() {
    _ReleaseField();
    _ForgetView();
    mFields.Release();
}

// A view's bytes belong to its rset: the buffer lets go of them unfreed. The
// fields of a view that its rset made stand in the rset's slab (their array
// carries the mark): they end in place and the array lets go of their block,
// so that it is neither freed nor grown out of.
void record::_ForgetView() {
    auto &fields = *mFields.Body();
    if (fields.Reference()) {
        fields.Destroy(0);
        fields.mElement = nullptr;
        fields.mSize = fields.mCapacity = 0;
        fields.Reference(false);
    }
    if (!mBuffer.Reference()) return;
    mBuffer.Body()->mElement = nullptr;
    mBuffer.Body()->mSize = 0;
    mBuffer.Reference(false);
}

void record::_ReleaseField() {
    if (mColumn.IsEmpty() || mColumn->Unknown() == 0) return;
    for (int i = 0; i < mFields.Size(); ++i) {
        field &f = mFields[i];
        if (!(f._Kind() & column::info::kUnknown) || !f.mValue) continue;
        f.Release();
    }
}

void record::_FieldSetup(bool addRef) {
    unsigned char *row = mBuffer.Data();
    mFields.Size(Columns());
    for (int i = 0; i < Columns(); ++i) mFields[i].Setup(row, mColumn->Info(i), addRef);
}

void record::_Create(column *columns, bool shared) {
    _ReleaseField();
    if (!shared) mFields.Size(0);
    _ForgetView();
    if (columns != mColumn.Get()) {
        mColumn.Attach(columns, shared);
    } else {
        mColumn.Reference(shared);
    }
    mBuffer.Size(RecordSize(), false);
    mBuffer.Clear();
    _FieldSetup(false);
}

void record::_Copy(record const &source) {
    _ReleaseField();
    mColumn = source.mColumn;
    _ForgetView();
    mBuffer.Size(source.mBuffer.Size(), false);
    if (source.mBuffer.Data() && mBuffer.Data()) {
        std::memcpy(mBuffer.Data(), source.mBuffer.Data(), std::size_t(mBuffer.Size()));
    }
    mFields.Size(0);
    if (mColumn.IsEmpty() || !mBuffer.Data()) return;
    _FieldSetup(true);
}

void record::ReferenceRecord(record &source, unsigned char *row) {
    _ReleaseField();
    mColumn = source.mColumn;
    _ForgetView();
    mBuffer.Release();
    mBuffer.Body()->mElement = row;
    mBuffer.Body()->mSize = RecordSize();
    mBuffer.Reference(true);
    mFields.Size(0);
    _FieldSetup(false);
}

record::record(record const &source, unsigned char *row, container::base::buffer *buffer,
               container::base::array<field, container::pif::array::object> *fields)
    : mBuffer(buffer), mColumn(source.mColumn), mFields(fields) {
    buffer->mElement = row;
    buffer->mSize = RecordSize();
    buffer->Reference(true);
    _FieldSetup(false);
}

void record::Clear() {
    _ReleaseField();
    mBuffer.Clear();
}

void record::LoadBlob() {
    if (mColumn.IsEmpty() || mColumn->Blob() == 0) return;
    for (int i = 0; i < mFields.Size(); ++i) {
        if (mFields[i].IsBlob()) mFields[i].LoadBlob();
    }
}

void record::FieldCopy(record &source) {
    for (int i = 0; i < mFields.Size(); ++i) {
        column::info const *info = mFields[i].Info();
        if (!info || !source.IsField(info->mName.Safe())) continue;
        mFields[i] = source.Field(info->mName.Safe());
    }
}

void record::StatusOK() {
    for (int i = 0; i < mFields.Size(); ++i) mFields[i].Status() = DBSTATUS_S_OK;
}

bool record::operator==(record const &other) const noexcept {
    unsigned char const *a = mBuffer.Data(), *b = other.mBuffer.Data();
    if (a == b) return true;
    if (!a || !b || mBuffer.Size() != other.mBuffer.Size()) return false;
    return std::memcmp(a, b, std::size_t(mBuffer.Size())) == 0;
}

// ---------------------------------------------------------------- rset

rset::rset(int size) : container::array<record, container::pif::array::object>(size, 10) {}

rset::rset(rset const &other) : container::array<record, container::pif::array::object>(0, 10) { _Copy(other); }

rset &rset::operator=(rset const &other) {
    if (&other != this) _Copy(other);
    return *this;
}

// Null when the rows would not fit in one block (more than 2 GB) or there is
// no memory for them. The records are made in place, as views on bodies and
// fields from one slab (see view_slab.h): nothing is allocated per row.
unsigned char *rset::Setup(record &source, int rows) {
    Clear();
    int size = source.RecordSize();
    if (rows < 0 || size < 0 || std::int64_t(rows) * size > INT32_MAX) return nullptr;
    mRows.Size(rows * size, true);
    if (rows > 0 && size > 0 && !mRows.Data()) return nullptr;
    unsigned char *start = mRows.Data();
    if (rows == 0) return start;
    detail::view_slab *slab = detail::view_slab::Make(rows, source.Columns());
    if (!slab) return nullptr;
    struct hold {
        detail::view_slab *mSlab;
        ~hold() { mSlab->Give(); }
    } held{slab};
    auto &records = *mBody;
    container::pif::array::object::FreeBlock(records.Regrow(rows));
    for (int i = 0; i < rows; ++i) {
        unsigned char *row = start + std::size_t(i) * std::size_t(size);
        new (&records.mElement[i]) record(source, row, slab->Buffer(i), slab->Fields(i));
        records.mSize = i + 1;
    }
    return start;
}

void rset::Clear() {
    Release();
    mRows.Clear();
}

void rset::_Copy(rset const &source) {
    Clear();
    Size(source.Size());
    for (int i = 0; i < source.Size(); ++i) Get(i) = source.Get(i);
}

}  // namespace qor::tools::database
