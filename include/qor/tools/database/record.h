// database::record: one row, as a byte buffer in the layout of its column set,
// with one field per column pointing into it. database::rset: records that are
// views into one shared block of rows, fetched in one pass.
//
//   record r = cmd;                 // a deep copy of the current row
//   int id = r[u"id"];
//   r[u"name"] = u"東京";
//
// Interface pointers in the row belong to the fields (one reference each):
// copies AddRef them and _ReleaseField gives them back, so a byte copy is not
// a record copy.
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/container/array.h"
#include "qor/tools/container/buffer.h"
#include "qor/tools/container/sptr.h"
#include "qor/tools/database/column.h"
#include "qor/tools/database/field.h"

namespace qor::tools::database {

class session;

class QOR_TOOLS_API record {
public:
    // An empty record (no columns); a copy owns its own row bytes, fields and
    // a count of each interface pointer in them.
    record() = default;
    record(record const &other) { _Copy(other); }
    record &operator=(record const &other) {
        if (&other != this) _Copy(other);
        return *this;
    }
    virtual ~record();

    // Zero-fills the row (giving back the interfaces in it); LoadBlob reads
    // every blob column of the row.
    void Clear();
    void LoadBlob();
    // The row's bytes, their size, the number of columns, the column set and
    // the description of a column by index or name.
    unsigned char *RecordBuffer() const noexcept { return mBuffer.Data(); }
    int RecordSize() const noexcept { return mColumn.IsEmpty() ? 0 : mColumn->RecordSize(); }
    int Columns() const noexcept { return mColumn.IsEmpty() ? 0 : mColumn->Columns(); }
    container::sptr<column> &Column() noexcept { return mColumn; }
    column::info *Info(int index) const noexcept { return mColumn->Info(index); }
    column::info *Info(char16_t const *name) const { return mColumn->Info(name); }
    // Whether a column of that name exists, whether there is no row, and
    // whether the columns include read-only ones, blobs or interfaces.
    bool IsField(char16_t const *name) const { return !mColumn.IsEmpty() && mColumn->IsInfo(name); }
    bool IsEmpty() const noexcept { return mBuffer.Data() == nullptr; }
    bool IsUseReadOnly() const noexcept { return !mColumn.IsEmpty() && mColumn->IsUseReadOnly(); }
    bool IsUseBlob() const noexcept { return !mColumn.IsEmpty() && mColumn->Blob() > 0; }
    bool IsUseUnknown() const noexcept { return !mColumn.IsEmpty() && mColumn->Unknown() > 0; }
    // The field of a column by index (not checked).
    field &Field(int index) const noexcept { return mFields[index]; }
    field &operator[](int index) const noexcept { return mFields[index]; }
    // The field of the column of that name; the name must exist (IsField).
    field &Field(char16_t const *name) const { return mFields[Info(name)->mIndex]; }
    field &operator[](char16_t const *name) const { return Field(name); }
    // A column's status slot (DBSTATUS_S_OK, _ISNULL, ...) and length slot.
    unaligned<DWORD> Status(int index) const noexcept { return mFields[index].Status(); }
    unaligned<DWORD> Status(char16_t const *name) const { return Field(name).Status(); }
    unaligned<std::uint64_t> Length(int index) const noexcept { return mFields[index].Length(); }
    unaligned<std::uint64_t> Length(char16_t const *name) const { return Field(name).Length(); }
    // Copies the fields that `source` has by name; sets every status to OK;
    // the primary key's values as SQL text; makes this record a view of
    // `row` in `source`'s columns; compares the row bytes.
    void FieldCopy(record &source);
    void StatusOK();
    string PrimaryKeyString(session *s);
    void ReferenceRecord(record &source, unsigned char *row);
    bool operator==(record const &other) const noexcept;

protected:
    void _Create(column *columns, bool shared);
    void _Copy(record const &source);
    void _FieldSetup(bool addRef);
    void _ReleaseField();

    container::buffer mBuffer;
    container::sptr<column> mColumn;
    container::array<field, container::pif::array::object> mFields;

private:
    friend class rset;
    // A view of `row` in `source`'s columns on bodies that its rset made.
    QOR_TOOLS_LOCAL record(record const &source, unsigned char *row, container::base::buffer *buffer,
                           container::base::array<field, container::pif::array::object> *fields);

    void _ForgetView();
};

// Records that are views into one block of rows, filled in one pass by
// command::RecordSet.
class QOR_TOOLS_API rset : public container::array<record, container::pif::array::object> {
public:
    // `size` empty records; copies are deep (each record owns its row).
    explicit rset(int size = 100);
    rset(rset const &other);
    rset &operator=(rset const &other);
    ~rset() override { Clear(); }

    // The record at `index` (not checked).
    record &operator[](int index) const noexcept { return Get(index); }
    // Prepares `rows` records as views into one block; returns the block's start.
    unsigned char *Setup(record &source, int rows);
    // Lets go of every record and zero-fills the rows' block, which stays
    // until the next Setup; Rows is that block.
    void Clear();
    unsigned char *Rows() const noexcept { return mRows.Data(); }

protected:
    void _Copy(rset const &source);

    container::buffer mRows;
};

}  // namespace qor::tools::database
