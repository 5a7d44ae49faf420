// database::column: the columns of one table or result, and with them the
// packed binary layout of one row. Per column: a value slot of mSize bytes at
// mOffset, a 4-byte status slot behind it and, for blobs, an 8-byte length
// slot; no alignment anywhere. Binary columns hold a stream pointer, numeric
// ones text of up to 31 characters; types without behaviour get a value slot
// of width 0. Built once (from a result's DBCOLUMNINFO array, or from a
// table's schema through a session) and read-only afterwards; copies share.
#pragma once

#include "qor/tools/export.h"

#include <cstdint>

#include "qor/tools/container/array.h"
#include "qor/tools/container/btree.h"
#include "qor/tools/platform/oledb.h"
#include "qor/tools/string.h"

namespace qor::tools::database {

class session;

class QOR_TOOLS_API column {
public:
    // One column's description.
    class info {
    public:
        // A plain value: copied member by member.
        info() = default;
        info(info const &) = default;
        info &operator=(info const &) = default;

        // The value slot and the status slot of this column in a row.
        void *Field(unsigned char const *record) const noexcept {
            return const_cast<unsigned char *>(record) + mOffset;
        }
        unaligned<DWORD> Status(unsigned char const *record) const noexcept {
            return unaligned<DWORD>(const_cast<unsigned char *>(record) + mOffset + mSize);
        }
        // The length slot, or null when the column has none.
        void *Length(unsigned char const *record) const noexcept {
            return (mKind & kLength) ? const_cast<unsigned char *>(record) + mOffset + mSize + 4 : nullptr;
        }
        // Whether the column may not be written.
        bool IsReadOnly() const noexcept {
            return (mFlags & (DBCOLUMNFLAGS_WRITE | DBCOLUMNFLAGS_WRITEUNKNOWN)) == 0;
        }

        // Bits of mKind: the column has a length slot, is a blob, holds an
        // interface pointer.
        static constexpr std::uint32_t kLength = 1, kBlob = 2, kUnknown = 4;

        std::int32_t mIndex = -1;   // position in the column set, from 0
        string mName;               // the column's name
        std::int32_t mOrdinal = 0;  // the database's column number
        std::uint16_t mType = 0;    // DBTYPE_ value
        std::uint32_t mSize = 0;    // bytes of the value slot
        std::int32_t mOffset = 0;   // where the value slot starts in a row
        std::uint32_t mFlags = 0;   // DBCOLUMNFLAGS_ bits
        std::uint8_t mPrecision = 0;  // digits of a numeric column
        std::uint8_t mScale = 0;      // digits behind the point
        DBOBJECT mObject{};         // the interface a blob column is read through
        std::uint32_t mKind = 0;    // kLength, kBlob, kUnknown
    };

    // No columns; the columns of `table` read through `s`; or those that a
    // result describes. Copies share nothing but are plain copies.
    column() = default;
    column(session &s, char16_t const *table);
    column(unsigned long count, tagDBCOLUMNINFO *columns);
    column(column const &) = default;
    column &operator=(column const &) = default;
    virtual ~column() = default;

    // A column by index (not checked) or by name (null when missing), and
    // whether the name exists.
    info *Info(int index) const noexcept { return mInfos[index]; }
    info *Info(char16_t const *name) const { return mIndexByName.Find(string(name)); }
    bool IsInfo(char16_t const *name) const { return Info(name) != nullptr; }
    // The number of columns, the bytes of a row, the numbers of blob and
    // interface columns, whether some column is read-only, the table's name
    // and its primary key columns (comma-separated).
    int Columns() const noexcept { return mInfos.Size(); }
    int RecordSize() const noexcept { return mRecordSize; }
    int Blob() const noexcept { return mBlob; }
    int Unknown() const noexcept { return mUnknown; }
    bool IsUseReadOnly() const noexcept { return mUseReadOnly; }
    string const &TableName() const noexcept { return mTableName; }
    string const &PrimaryKeys() const noexcept { return mPrimaryKeys; }
    // The bindings of every column to its slots in a row.
    void CreateBindData(container::array<tagDBBINDING, container::pif::array::object> &bindings) const;

protected:
    friend class session;
    void _Add(char16_t const *name, int ordinal, unsigned short type, unsigned long size, unsigned long flags,
              unsigned char precision, unsigned char scale);
    void _LoadPrimaryKeys(session &s);

    container::set<info, container::pif::set::object> mInfos;
    container::hash<string, info, container::pif::none, 2> mIndexByName;
    std::int32_t mRecordSize = 0;
    bool mUseReadOnly = false;
    std::int32_t mBlob = 0;
    std::int32_t mUnknown = 0;
    string mTableName;
    string mPrimaryKeys;
};

}  // namespace qor::tools::database
