// The provider layer behind the database client, over ODBC (unixODBC): a
// connection chosen by driver, statements whose results are read whole into a
// client-side static cursor (bookmarks count rows from 1 and never move), the
// OLE DB style moves over that cursor, rows written back as parameterised
// INSERT, UPDATE and DELETE keyed on the primary key, columns and primary keys
// of a table, local transactions and further results.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "qor/tools/platform/oledb.h"

namespace qor::tools::platform::odbc {

// The SQL the library builds itself, per database.
class dialect {
public:
    enum class kind { sqlserver, postgresql, sqlite };
    explicit dialect(kind k = kind::sqlserver) : mKind(k) {}
    kind Kind() const noexcept { return mKind; }

    std::u16string LockHint(bool updatable) const;
    std::u16string Select(std::u16string const &table, std::u16string const &hint, std::u16string const &condition,
                          bool withCondition) const;
    std::u16string SelectTop(int top, std::u16string const &table, std::u16string const &hint,
                             std::u16string const &condition, bool withCondition) const;
    std::u16string SelectNone(std::u16string const &table) const;
    std::u16string Count(std::u16string const &table, std::u16string const &condition, bool withCondition) const;
    std::u16string CountColumn(std::u16string const &column, std::u16string const &table, bool distinct,
                               std::u16string const &condition, bool withCondition) const;
    std::u16string PrimaryKeyClause(std::u16string const &table) const;

private:
    kind mKind;
};

// One value of a cached row.
struct timestamp {
    DBTIMESTAMP mValue;
};
using cell = std::variant<std::monostate, std::int64_t, double, std::u16string, std::string, timestamp>;
//                         null           whole         real    text            bytes        date and time

struct column_desc {
    std::u16string mName;
    DBTYPE mType = 0;     // the OLE DB type the column reads as
    std::uint64_t mSize = 0;
    DWORD mFlags = 0;     // DBCOLUMNFLAGS
    std::uint8_t mPrecision = 0;
    std::uint8_t mScale = 0;
};

class connection;

// A result read whole: its columns (ordinal 0 is the bookmark) and rows.
class rowset {
public:
    rowset(connection &owner, std::u16string table);

    std::vector<column_desc> const &Columns() const noexcept { return mColumns; }
    std::int64_t Rows() const noexcept { return std::int64_t(mRows.size()); }
    std::u16string const &Table() const noexcept { return mTable; }

    HRESULT RestartPosition();
    // Fetches one row `offset` rows from the next fetch position, forward or backward.
    HRESULT GetNextRows(std::int64_t offset, bool forward, HROW &row);
    HRESULT GetData(HROW row, std::vector<DBBINDING> const &bindings, unsigned char *buffer) const;
    HRESULT InsertRow(std::vector<DBBINDING> const &bindings, unsigned char const *buffer, HROW *row);
    HRESULT SetData(HROW row, std::vector<DBBINDING> const &bindings, unsigned char const *buffer);
    HRESULT DeleteRow(HROW row);

private:
    friend class connection;
    struct cached {
        std::vector<cell> mCells;  // by ordinal; [0] unused
        cell mIdentity;            // the row identity of a table without a key (rowid, ctid)
        bool mDeleted = false;
    };
    HRESULT _Bind(std::vector<DBBINDING> const &bindings, unsigned char const *buffer,
                  std::vector<std::size_t> &ordinals, std::vector<cell> &values) const;
    std::vector<DBTYPE> _Types(std::vector<std::size_t> const &ordinals) const;
    // The condition that finds `row` again: its primary key, or its row identity.
    HRESULT _Where(cached const &row, std::u16string &clause, std::vector<cell> &values,
                   std::vector<DBTYPE> &types) const;

    connection &mOwner;
    std::u16string mTable;
    std::vector<column_desc> mColumns;
    std::vector<cached> mRows;
    bool mIdentity = false;  // rows carry their identity (the table has no primary key)
    std::int64_t mNext = 0;
    bool mAtStart = true;
};

class connection {
public:
    connection() = default;
    connection(connection const &) = delete;
    connection &operator=(connection const &) = delete;
    ~connection();

    // Connects through `driver` (an ODBC driver name such as "PostgreSQL Unicode", "SQLite3", "FreeTDS").
    HRESULT Open(std::u16string const &driver, std::u16string const &server, std::u16string const &database,
                 std::u16string const &user, std::u16string const *password);
    bool IsOpen() const noexcept { return mDbc != nullptr; }
    dialect const &Dialect() const noexcept { return mDialect; }

    // Runs a statement whose results are not wanted.
    HRESULT Execute(std::u16string const &sql);
    // Runs a statement and reads its first result; `table` names the table for writes.
    HRESULT Query(std::u16string const &sql, std::u16string const &table, std::shared_ptr<rowset> &result);
    // The next result of the last Query, or S_FALSE when there is none.
    HRESULT NextResult(std::shared_ptr<rowset> &result);
    HRESULT TableColumns(std::u16string const &table, std::vector<column_desc> &columns);
    HRESULT PrimaryKeys(std::u16string const &table, std::vector<std::u16string> &keys);
    HRESULT StartTransaction(long isolation);
    HRESULT EndTransaction(bool commit);

    // Every statement sent, in order (the last 1,000), for tests and diagnostics.
    std::vector<std::u16string> const &Log() const noexcept { return mLog; }

    // Runs a parameterised statement; with `returned`, reads the row it gives.
    HRESULT _Run(std::u16string const &sql, std::vector<cell> const &parameters, std::vector<DBTYPE> const &types,
                 std::vector<cell> *returned, std::vector<column_desc> const *columns, std::int64_t *affected);
    // The SQL that selects the identity of a row of a table without a primary key.
    std::u16string _IdentityColumn() const;
    // The first column of the first row of a statement, beside any open result.
    HRESULT Scalar(std::u16string const &sql, std::int64_t &value);

private:
    HRESULT _Read(void *statement, std::u16string const &table, bool identity, std::shared_ptr<rowset> &result);

    void _Note(std::u16string const &sql);
    void _CloseStatement();

    void *mEnv = nullptr;
    void *mDbc = nullptr;
    void *mPending = nullptr;  // the statement of the last Query, for further results
    std::vector<std::u16string> mBatch;  // SQLite: the statements of a batch still to run
    dialect mDialect;
    bool mWide = true;
    bool mInTransaction = false;
    std::vector<std::u16string> mLog;
    std::vector<std::pair<std::u16string, std::vector<std::u16string>>> mKeyCache;
};

}  // namespace qor::tools::platform::odbc
