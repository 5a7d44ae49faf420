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
        info() = default;
        info(info const &) = default;
        info &operator=(info const &) = default;

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
        bool IsReadOnly() const noexcept {
            return (mFlags & (DBCOLUMNFLAGS_WRITE | DBCOLUMNFLAGS_WRITEUNKNOWN)) == 0;
        }

        static constexpr std::uint32_t kLength = 1, kBlob = 2, kUnknown = 4;

        std::int32_t mIndex = -1;
        string mName;
        std::int32_t mOrdinal = 0;
        std::uint16_t mType = 0;
        std::uint32_t mSize = 0;
        std::int32_t mOffset = 0;
        std::uint32_t mFlags = 0;
        std::uint8_t mPrecision = 0;
        std::uint8_t mScale = 0;
        DBOBJECT mObject{};
        std::uint32_t mKind = 0;
    };

    column() = default;
    column(session &s, char16_t const *table);
    column(unsigned long count, tagDBCOLUMNINFO *columns);
    column(column const &) = default;
    column &operator=(column const &) = default;
    virtual ~column() = default;

    info *Info(int index) const noexcept { return mInfos[index]; }
    info *Info(char16_t const *name) const { return mIndexByName.Find(string(name)); }
    bool IsInfo(char16_t const *name) const { return Info(name) != nullptr; }
    int Columns() const noexcept { return mInfos.Size(); }
    int RecordSize() const noexcept { return mRecordSize; }
    int Blob() const noexcept { return mBlob; }
    int Unknown() const noexcept { return mUnknown; }
    bool IsUseReadOnly() const noexcept { return mUseReadOnly; }
    string const &TableName() const noexcept { return mTableName; }
    string const &PrimaryKeys() const noexcept { return mPrimaryKeys; }
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
