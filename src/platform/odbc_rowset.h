// A result of the provider layer, read whole into a client-side static cursor:
// its columns (ordinal 0 is the bookmark) and rows, with the OLE DB moves over
// them (bookmarks count rows from 1 and never move), rows copied into a
// record's layout, and rows written back as parameterised INSERT, UPDATE and
// DELETE keyed on the primary key or on the row identity.
//
// Rows are fetched in blocks into bound column arrays and kept column by
// column (odbc_cells.h); a result with a blob column is read row by row.
#pragma once

#include <sql.h>

#include <cstdint>
#include <string>
#include <vector>

#include "odbc_cells.h"

namespace qor::tools::platform::odbc {

class connection;

class rowset {
public:
    rowset(connection &owner, std::u16string table);
    rowset(rowset const &) = delete;
    rowset &operator=(rowset const &) = delete;
    virtual ~rowset() = default;

    std::vector<column_desc> const &Columns() const noexcept { return mColumns; }
    std::int64_t Rows() const noexcept { return mRows; }
    std::u16string const &Table() const noexcept { return mTable; }

    HRESULT RestartPosition();
    // Fetches one row `offset` rows from the next fetch position, forward or backward.
    HRESULT GetNextRows(std::int64_t offset, bool forward, HROW &row);
    HRESULT GetData(HROW row, std::vector<DBBINDING> const &bindings, unsigned char *buffer) const;
    HRESULT InsertRow(std::vector<DBBINDING> const &bindings, unsigned char const *buffer, HROW *row);
    HRESULT SetData(HROW row, std::vector<DBBINDING> const &bindings, unsigned char const *buffer);
    HRESULT DeleteRow(HROW row);
    // Lets go of the cached rows (once a record set holds copies of them);
    // the count stays, and later fetches find nothing.
    void Release();

    // Reads the current result of `stmt` whole; with `identity`, its last
    // column is each row's identity, kept beside the row.
    HRESULT _Read(SQLHSTMT stmt, bool wide, bool identity);
    // One value of the cache, as it was read.
    cell _Cell(std::size_t row, std::size_t ordinal) const { return mStore.Get(row, ordinal); }

private:
    HRESULT _ReadBlocks(SQLHSTMT stmt, bool wide);
    HRESULT _ReadRows(SQLHSTMT stmt, bool wide);
    void _Bind(std::vector<DBBINDING> const &bindings, unsigned char const *buffer, std::vector<std::size_t> &ordinals,
               std::vector<cell> &values) const;
    void _Types(std::vector<std::size_t> const &ordinals, std::vector<DBTYPE> &types,
                std::vector<short> &sqlTypes) const;
    // The condition that finds a row again: its primary key, or its identity.
    HRESULT _Where(std::size_t row, std::u16string &clause, std::vector<cell> &values, std::vector<DBTYPE> &types,
                   std::vector<short> &sqlTypes) const;
    // Whether an insert of these columns leaves nothing for the database to
    // fill in (no default, no generated key), so the row need not be read back.
    bool _IsComplete(std::vector<std::size_t> const &ordinals) const;
    bool _IsLive(HROW row) const noexcept;

    connection &mOwner;
    std::u16string mTable;
    std::vector<column_desc> mColumns;
    cell_store mStore;  // column i of the store is ordinal i; the identity follows the last
    std::vector<std::uint8_t> mDeleted;
    std::int64_t mRows = 0;
    bool mIdentity = false;
    bool mReleased = false;
    std::int64_t mNext = 0;
    bool mAtStart = true;
};

}  // namespace qor::tools::platform::odbc

namespace qor::tools {

// A result, by the name the database classes give it: the library's stand-in
// for OLE DB's IRowset.
class IRowset final : public platform::odbc::rowset {
public:
    using rowset::rowset;
};

}  // namespace qor::tools
