#include "odbc_connection.h"

#include <sqlext.h>
#include <sqlucode.h>

#include <unistd.h>

#include <algorithm>
#include <cstdlib>

#include "../text_case.h"
#include "../utf8.h"
#include "odbc_statement.h"
#include "path.h"

namespace qor::tools::platform::odbc {

namespace {

constexpr std::size_t kLogSize = 1000;
constexpr std::size_t kPreparedKept = 64;

SQLHSTMT Statement(void *handle) { return static_cast<SQLHSTMT>(handle); }

bool Finished(SQLRETURN r) { return Ok(r) || r == SQL_NO_DATA; }

}  // namespace

connection::~connection() {
    _CloseStatement();
    _ForgetPrepared();
    if (mDbc) {
        if (mInTransaction) SQLEndTran(SQL_HANDLE_DBC, mDbc, SQL_ROLLBACK);
        SQLDisconnect(mDbc);
        SQLFreeHandle(SQL_HANDLE_DBC, mDbc);
    }
    if (mEnv) SQLFreeHandle(SQL_HANDLE_ENV, mEnv);
}

void connection::_CloseStatement() {
    if (mPending) SQLFreeHandle(SQL_HANDLE_STMT, mPending);
    mPending = nullptr;
    mBatch.clear();
}

void connection::_ForgetPrepared() {
    for (auto &[sql, handle] : mPrepared) SQLFreeHandle(SQL_HANDLE_STMT, handle);
    mPrepared.clear();
}

void connection::_Note(std::u16string const &sql) {
    if (mLog.size() >= kLogSize) mLog.pop_front();
    mLog.push_back(sql);
}

HRESULT connection::_Fail(SQLSMALLINT kind, void *handle) {
    mLastError = Diagnostics(kind, handle);
    if (!mLastError.empty()) _Note(u"-- failed: " + mLastError);
    return E_FAIL;
}

namespace {

// A link in a private folder to a database path the driver would misread;
// gone with this object (the database, once open, does not need it).
class alias {
public:
    explicit alias(std::u16string const &path) {
        char folder[] = "/tmp/qortools-alias-XXXXXX";
        if (!::mkdtemp(folder)) return;
        mFolder = folder;
        std::string target = PathBytes(path.c_str());
        if (!target.empty() && target[0] != '/') {
            char here[4096];
            if (::getcwd(here, sizeof here)) target = std::string(here) + "/" + target;
        }
        mLink = mFolder + "/database";
        if (::symlink(target.c_str(), mLink.c_str()) != 0) mLink.clear();
    }
    alias(alias const &) = delete;
    alias &operator=(alias const &) = delete;
    ~alias() {
        if (!mLink.empty()) ::unlink(mLink.c_str());
        if (!mFolder.empty()) ::rmdir(mFolder.c_str());
    }
    std::u16string Path() const { return PathText(mLink.c_str()); }

private:
    std::string mFolder, mLink;
};

}  // namespace

HRESULT connection::Open(std::u16string const &driver, std::u16string const &server, std::u16string const &database,
                         std::u16string const &user, std::u16string const *password) {
    mDialect = dialect::ForDriver(driver);
    std::unique_ptr<alias> link;
    if (mDialect.NeedsAlias(database)) link = std::make_unique<alias>(database);
    std::u16string text = mDialect.ConnectionString(driver, server, link ? link->Path() : database, user, password);
    SQLHENV env = nullptr;
    SQLHDBC dbc = nullptr;
    if (!Ok(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &env))) return E_FAIL;
    SQLSetEnvAttr(env, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
    SQLAllocHandle(SQL_HANDLE_DBC, env, &dbc);
    SQLSetConnectAttr(dbc, SQL_ATTR_LOGIN_TIMEOUT, reinterpret_cast<SQLPOINTER>(10), 0);
    SQLRETURN r;
    if (mDialect.IsWide()) {
        r = SQLDriverConnectW(dbc, nullptr, reinterpret_cast<SQLWCHAR *>(text.data()), SQLSMALLINT(text.size()),
                              nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT);
    } else {
        std::string in = detail::ToUtf8(text);
        r = SQLDriverConnect(dbc, nullptr, reinterpret_cast<SQLCHAR *>(in.data()), SQLSMALLINT(in.size()), nullptr, 0,
                             nullptr, SQL_DRIVER_NOPROMPT);
    }
    if (!Ok(r)) {
        _Fail(SQL_HANDLE_DBC, dbc);
        SQLFreeHandle(SQL_HANDLE_DBC, dbc);
        SQLFreeHandle(SQL_HANDLE_ENV, env);
        return E_FAIL;
    }
    mEnv = env;
    mDbc = dbc;
    mLastError.clear();
    return S_OK;
}

HRESULT connection::Execute(std::u16string const &sql) {
    if (!mDbc) return E_FAIL;
    mKeyCache.clear();  // the statements may change a table's key
    _ForgetPrepared();  // ... or the table a kept statement is about
    _Note(sql);
    statement stmt(mDbc);
    std::vector<std::u16string> statements = mDialect.Statements(sql);
    dialect::guard guard = mDialect.ScriptGuard(statements);
    bool wide = mDialect.IsWide();
    auto run = [&](std::u16string const &one) {
        SQLFreeStmt(stmt.Handle(), SQL_CLOSE);
        return Finished(stmt.Direct(one, wide));
    };
    if (!guard.mBegin.empty() && !run(guard.mBegin)) return _Fail(SQL_HANDLE_STMT, stmt.Handle());
    for (std::u16string const &one : statements) {
        if (run(one)) continue;
        HRESULT failed = _Fail(SQL_HANDLE_STMT, stmt.Handle());
        if (!guard.mRollback.empty()) {
            run(guard.mRollback);
            run(guard.mCommit);
        }
        return failed;
    }
    if (!guard.mCommit.empty() && !run(guard.mCommit)) return _Fail(SQL_HANDLE_STMT, stmt.Handle());
    mLastError.clear();
    return S_OK;
}

HRESULT connection::_Result(void *handle, std::u16string const &table, bool identity,
                            std::shared_ptr<IRowset> &result) {
    auto rows = std::make_shared<IRowset>(*this, table);
    if (FAILED(rows->_Read(Statement(handle), mDialect.IsWide(), identity))) return _Fail(SQL_HANDLE_STMT, handle);
    result = rows;
    return S_OK;
}

HRESULT connection::Query(std::u16string const &sql, std::u16string const &table, std::shared_ptr<IRowset> &result) {
    result.reset();
    _CloseStatement();
    if (!mDbc) return E_FAIL;
    _Note(sql);
    // A table without a primary key: its rows are found again by their identity.
    std::u16string first = sql;
    bool identity = false;
    std::u16string prefix = u"select * from " + table;
    std::u16string column = mDialect.IdentityColumn();
    std::vector<std::u16string> keys;
    if (!table.empty() && !column.empty() && detail::AsciiLower(sql.substr(0, prefix.size())) == detail::AsciiLower(prefix) &&
        (sql.size() == prefix.size() || sql[prefix.size()] == u' ') && SUCCEEDED(PrimaryKeys(table, keys)) &&
        keys.empty()) {
        first = u"select *, " + column + u" from " + table + sql.substr(prefix.size());
        identity = true;
    }
    std::vector<std::u16string> rest = mDialect.Statements(first);
    if (rest.size() > 1) {
        first = rest.front();
        rest.erase(rest.begin());
    } else {
        rest.clear();
    }
    statement stmt(mDbc);
    if (!Finished(stmt.Direct(first, mDialect.IsWide()))) return _Fail(SQL_HANDLE_STMT, stmt.Handle());
    SQLSMALLINT columns = 0;
    SQLNumResultCols(stmt.Handle(), &columns);
    if (columns > 0 && FAILED(_Result(stmt.Handle(), table, identity, result))) return E_FAIL;
    mPending = stmt.Release();
    mBatch = std::move(rest);
    mLastError.clear();
    return S_OK;
}

HRESULT connection::NextResult(std::shared_ptr<IRowset> &result) {
    result.reset();
    if (!mPending) return E_FAIL;
    SQLHSTMT stmt = Statement(mPending);
    bool wide = mDialect.IsWide();
    // A script the driver cannot run whole: its statements one by one.
    while (!mBatch.empty()) {
        std::u16string next = mBatch.front();
        mBatch.erase(mBatch.begin());
        SQLFreeStmt(stmt, SQL_CLOSE);
        SQLRETURN r = wide ? SQLExecDirectW(stmt, reinterpret_cast<SQLWCHAR *>(next.data()), SQLINTEGER(next.size()))
                           : [&] {
                                 std::string text = detail::ToUtf8(next);
                                 return SQLExecDirect(stmt, reinterpret_cast<SQLCHAR *>(text.data()),
                                                      SQLINTEGER(text.size()));
                             }();
        if (!Finished(r)) {
            HRESULT failed = _Fail(SQL_HANDLE_STMT, stmt);
            _CloseStatement();
            return failed;
        }
        SQLSMALLINT columns = 0;
        SQLNumResultCols(stmt, &columns);
        if (columns > 0) return _Result(stmt, std::u16string(), false, result);
    }
    for (;;) {
        SQLRETURN r = SQLMoreResults(stmt);
        if (!Ok(r)) {
            if (r != SQL_NO_DATA) _Fail(SQL_HANDLE_STMT, stmt);
            _CloseStatement();
            return E_FAIL;
        }
        SQLSMALLINT columns = 0;
        SQLNumResultCols(stmt, &columns);
        if (columns > 0) return _Result(stmt, std::u16string(), false, result);
    }
}

HRESULT connection::TableColumns(std::u16string const &table, std::vector<column_desc> &columns) {
    columns.clear();
    if (!mDbc) return E_FAIL;
    std::shared_ptr<IRowset> rows;
    statement stmt(mDbc);
    if (!Ok(stmt.Direct(u"select * from " + table + u" where 1 = 0", mDialect.IsWide()))) {
        return _Fail(SQL_HANDLE_STMT, stmt.Handle());
    }
    if (FAILED(_Result(stmt.Handle(), table, false, rows))) return E_FAIL;
    columns = rows->Columns();
    return S_OK;
}

HRESULT connection::PrimaryKeys(std::u16string const &table, std::vector<std::u16string> &keys) {
    keys.clear();
    if (!mDbc) return E_FAIL;
    auto known = mKeyCache.find(table);
    if (known != mKeyCache.end()) {
        keys = known->second;
        return S_OK;
    }
    if (table.find(u'\'') != std::u16string::npos) return E_FAIL;  // names are never quoted: refuse what breaks
    statement stmt(mDbc);
    if (!Ok(stmt.Direct(mDialect.PrimaryKeysQuery(table), mDialect.IsWide()))) {
        return _Fail(SQL_HANDLE_STMT, stmt.Handle());
    }
    std::shared_ptr<IRowset> rows;
    if (FAILED(_Result(stmt.Handle(), table, false, rows))) return E_FAIL;
    for (std::int64_t i = 0; i < rows->Rows(); ++i) {
        std::u16string name(64, u'\0');
        DBBINDING b{};
        b.iOrdinal = 1;
        b.wType = DBTYPE_WSTR;
        b.cbMaxLen = name.size() * 2;
        b.dwPart = DBPART_VALUE;
        HROW row = 0;
        rows->GetNextRows(0, true, row);
        rows->GetData(row, {b}, reinterpret_cast<unsigned char *>(name.data()));
        name.resize(std::char_traits<char16_t>::length(name.c_str()));
        keys.push_back(name);
    }
    mKeyCache.emplace(table, keys);
    return S_OK;
}

HRESULT connection::StartTransaction(long isolation) {
    if (!mDbc) return E_FAIL;
    if (mDialect.HasIsolationLevels() && !mInTransaction) {
        SQLULEN level = SQL_TXN_READ_COMMITTED;
        if (isolation == 0x100) level = SQL_TXN_READ_UNCOMMITTED;
        if (isolation == 0x10000) level = SQL_TXN_REPEATABLE_READ;
        if (isolation == 0x100000) level = SQL_TXN_SERIALIZABLE;
        SQLSetConnectAttr(mDbc, SQL_ATTR_TXN_ISOLATION, reinterpret_cast<SQLPOINTER>(level), 0);
    }
    if (!Ok(SQLSetConnectAttr(mDbc, SQL_ATTR_AUTOCOMMIT, reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_OFF), 0))) {
        return _Fail(SQL_HANDLE_DBC, mDbc);
    }
    mInTransaction = true;
    return S_OK;
}

HRESULT connection::EndTransaction(bool commit) {
    if (!mDbc) return XACT_E_NOTRANSACTION;
    _CloseStatement();
    SQLRETURN r = SQLEndTran(SQL_HANDLE_DBC, mDbc, commit ? SQL_COMMIT : SQL_ROLLBACK);
    HRESULT hr = Ok(r) ? S_OK : _Fail(SQL_HANDLE_DBC, mDbc);
    SQLSetConnectAttr(mDbc, SQL_ATTR_AUTOCOMMIT, reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_ON), 0);
    mInTransaction = false;
    return hr;
}

HRESULT connection::Scalar(std::u16string const &sql, std::int64_t &value) {
    value = 0;
    std::vector<column_desc> columns(2);
    columns[1].mType = DBTYPE_NUMERIC;
    std::vector<cell> row;
    HRESULT hr = _Run(sql, {}, {}, {}, false, &row, &columns, nullptr);
    if (SUCCEEDED(hr) && row.size() == 2) value = AsWhole(row[1]);
    return hr;
}

HRESULT connection::_Run(std::u16string const &sql, std::vector<cell> const &values, std::vector<DBTYPE> const &types,
                         std::vector<short> const &sqlTypes, bool keep, std::vector<cell> *returned,
                         std::vector<column_desc> const *columns, std::int64_t *affected) {
    if (!mDbc || types.size() != values.size()) return E_FAIL;
    _Note(sql);
    // The writes a command repeats (the same INSERT for every row) are
    // prepared once and kept for the connection.
    std::unique_ptr<statement> owned;
    SQLHSTMT stmt = nullptr;
    auto kept = keep ? mPrepared.find(sql) : mPrepared.end();
    if (kept != mPrepared.end()) {
        stmt = Statement(kept->second);
        SQLFreeStmt(stmt, SQL_CLOSE);
        SQLFreeStmt(stmt, SQL_RESET_PARAMS);
    } else {
        owned = std::make_unique<statement>(mDbc);
        stmt = owned->Handle();
        if (keep) {
            if (!Ok(owned->Prepare(sql, mDialect.IsWide()))) return _Fail(SQL_HANDLE_STMT, stmt);
            if (mPrepared.size() >= kPreparedKept) _ForgetPrepared();
            mPrepared.emplace(sql, owned->Release());
        }
    }
    parameters bound;
    if (!bound.Bind(stmt, values, types, sqlTypes, mDialect.IsWide())) return _Fail(SQL_HANDLE_STMT, stmt);
    // A statement run once goes directly: one round trip, and psqlodbc loses
    // the memory of a prepared statement that the server refuses.
    SQLRETURN r = keep ? SQLExecute(stmt) : statement::Direct(stmt, sql, mDialect.IsWide());
    if (r == SQL_NO_DATA) {
        if (affected) *affected = 0;
        return returned ? E_FAIL : S_OK;
    }
    if (!Ok(r)) return _Fail(SQL_HANDLE_STMT, stmt);
    if (affected) {
        SQLLEN count = 0;
        SQLRowCount(stmt, &count);
        *affected = count;
    }
    if (returned && columns) {
        IRowset row(*this, std::u16string());
        if (FAILED(row._Read(stmt, mDialect.IsWide(), false)) || row.Rows() < 1) return _Fail(SQL_HANDLE_STMT, stmt);
        returned->assign(columns->size(), std::monostate{});
        std::size_t n = std::min(columns->size(), row.Columns().size());
        for (std::size_t i = 1; i < n; ++i) (*returned)[i] = row._Cell(0, i);
    }
    SQLFreeStmt(stmt, SQL_CLOSE);
    mLastError.clear();
    return S_OK;
}

}  // namespace qor::tools::platform::odbc
