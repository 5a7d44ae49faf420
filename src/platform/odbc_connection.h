// The connection of the provider layer, over ODBC (unixODBC): an environment
// and a connection chosen by driver, statements whose results are read whole
// (odbc_rowset.h), further results, a table's columns and primary keys, local
// transactions, prepared statements kept for the writes that repeat, the log
// of every statement sent, and the driver's words on the last failure.
#pragma once

#include <sql.h>

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "odbc_cells.h"
#include "odbc_dialect.h"
#include "odbc_rowset.h"

namespace qor::tools::platform::odbc {

class connection {
public:
    connection() = default;
    connection(connection const &) = delete;
    connection &operator=(connection const &) = delete;
    virtual ~connection();

    // Connects through `driver` (an ODBC driver name such as "PostgreSQL Unicode", "SQLite3", "FreeTDS").
    HRESULT Open(std::u16string const &driver, std::u16string const &server, std::u16string const &database,
                 std::u16string const &user, std::u16string const *password);
    bool IsOpen() const noexcept { return mDbc != nullptr; }
    dialect const &Dialect() const noexcept { return mDialect; }

    // Runs SQL whose results are not wanted: a script of several statements
    // runs whole (inside a transaction, all of it or, when one fails, none).
    HRESULT Execute(std::u16string const &sql);
    // Runs a statement and reads its first result; `table` names the table for writes.
    HRESULT Query(std::u16string const &sql, std::u16string const &table, std::shared_ptr<IRowset> &result);
    // The next result of the last Query, or E_FAIL when there is none.
    HRESULT NextResult(std::shared_ptr<IRowset> &result);
    HRESULT TableColumns(std::u16string const &table, std::vector<column_desc> &columns);
    HRESULT PrimaryKeys(std::u16string const &table, std::vector<std::u16string> &keys);
    HRESULT StartTransaction(long isolation);
    HRESULT EndTransaction(bool commit);
    // The first column of the first row of a statement, beside any open result.
    HRESULT Scalar(std::u16string const &sql, std::int64_t &value);

    // Every statement sent, in order (the last 1,000); a failed one is
    // followed by the driver's diagnostics.
    std::vector<std::u16string> Log() const { return std::vector<std::u16string>(mLog.begin(), mLog.end()); }
    // The driver's diagnostic records of the last failure, "[state] native:
    // message" a line; empty after a success.
    std::u16string const &LastError() const noexcept { return mLastError; }

    // Runs a parameterised statement (prepared once and kept, when `keep`);
    // with `returned`, reads the row it gives into `columns`' readings.
    HRESULT _Run(std::u16string const &sql, std::vector<cell> const &values, std::vector<DBTYPE> const &types,
                 std::vector<short> const &sqlTypes, bool keep, std::vector<cell> *returned,
                 std::vector<column_desc> const *columns, std::int64_t *affected);

private:
    HRESULT _Fail(SQLSMALLINT kind, void *handle);
    HRESULT _Result(void *statement, std::u16string const &table, bool identity, std::shared_ptr<IRowset> &result);
    void _Note(std::u16string const &sql);
    void _CloseStatement();
    void _ForgetPrepared();

    void *mEnv = nullptr;
    void *mDbc = nullptr;
    void *mPending = nullptr;  // the statement of the last Query, for further results
    std::vector<std::u16string> mBatch;  // the statements of a script still to run
    dialect mDialect;
    bool mInTransaction = false;
    std::deque<std::u16string> mLog;
    std::u16string mLastError;
    std::map<std::u16string, std::vector<std::u16string>> mKeyCache;
    std::map<std::u16string, void *> mPrepared;  // statements kept by their SQL
};

}  // namespace qor::tools::platform::odbc

namespace qor::tools {

// The provider's session, by the name the database classes give it: the
// library's stand-in for OLE DB's IOpenRowset.
class IOpenRowset final : public platform::odbc::connection {};

}  // namespace qor::tools
