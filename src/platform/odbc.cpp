#include "odbc.h"

#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include <cmath>
#include <cstring>
#include <memory>

#include "../text_case.h"
#include "../utf8.h"
#include "memory_stream.h"
#include "text_codec.h"

namespace qor::tools::platform::odbc {

namespace {

constexpr std::size_t kMaxText = 4000;  // long text columns are cut to this many characters in a row slot

bool Ok(SQLRETURN r) { return r == SQL_SUCCESS || r == SQL_SUCCESS_WITH_INFO; }

using detail::AsciiLower;

std::string Utf8(std::u16string const &s) { return detail::ToUtf8(s); }

std::u16string Wide(char const *s, std::size_t n) {
    std::u16string out;
    detail::Utf8ToUtf16(s, n, out);
    return out;
}

// The OLE DB type a result column reads as, from its ODBC type.
DBTYPE TypeOf(SQLSMALLINT sqlType) {
    switch (sqlType) {
        case SQL_INTEGER: return DBTYPE_I4;
        case SQL_SMALLINT:
        case SQL_TINYINT: return DBTYPE_I2;
        case SQL_BIGINT: return DBTYPE_I8;
        case SQL_REAL: return DBTYPE_R4;
        case SQL_FLOAT:
        case SQL_DOUBLE: return DBTYPE_R8;
        case SQL_NUMERIC:
        case SQL_DECIMAL: return DBTYPE_NUMERIC;
        case SQL_CHAR:
        case SQL_VARCHAR:
        case SQL_LONGVARCHAR:
        case SQL_WCHAR:
        case SQL_WVARCHAR:
        case SQL_WLONGVARCHAR: return DBTYPE_WSTR;
        case SQL_TYPE_TIMESTAMP:
        case SQL_TIMESTAMP:
        case SQL_TYPE_DATE:
        case SQL_DATE: return DBTYPE_DBTIMESTAMP;
        case SQL_BINARY:
        case SQL_VARBINARY:
        case SQL_LONGVARBINARY: return DBTYPE_BYTES;
        case SQL_BIT: return DBTYPE_BOOL;
        default: return DBTYPE_WSTR;
    }
}

enum class reading { whole, real, text, bytes, stamp };

reading ReadingOf(DBTYPE type) {
    switch (type) {
        case DBTYPE_I2:
        case DBTYPE_I4:
        case DBTYPE_I8:
        case DBTYPE_UI2:
        case DBTYPE_UI4:
        case DBTYPE_BOOL: return reading::whole;
        case DBTYPE_R4:
        case DBTYPE_R8: return reading::real;
        case DBTYPE_BYTES: return reading::bytes;
        case DBTYPE_DBTIMESTAMP: return reading::stamp;
        default: return reading::text;
    }
}

std::int64_t AsWhole(cell const &c) {
    if (auto *i = std::get_if<std::int64_t>(&c)) return *i;
    if (auto *d = std::get_if<double>(&c)) return std::isfinite(*d) ? std::int64_t(*d) : 0;
    if (auto *t = std::get_if<std::u16string>(&c)) return std::strtoll(Utf8(*t).c_str(), nullptr, 10);
    return 0;
}

double AsReal(cell const &c) {
    if (auto *i = std::get_if<std::int64_t>(&c)) return double(*i);
    if (auto *d = std::get_if<double>(&c)) return *d;
    if (auto *t = std::get_if<std::u16string>(&c)) return std::strtod(Utf8(*t).c_str(), nullptr);
    return 0;
}

std::u16string AsText(cell const &c) {
    if (auto *t = std::get_if<std::u16string>(&c)) return *t;
    if (auto *i = std::get_if<std::int64_t>(&c)) {
        std::string s = std::to_string(*i);
        return std::u16string(s.begin(), s.end());
    }
    if (auto *d = std::get_if<double>(&c)) {
        char s[64];
        std::snprintf(s, sizeof s, "%.15g", *d);
        return std::u16string(s, s + std::strlen(s));
    }
    return {};
}

template <typename T>
void Put(unsigned char *buffer, DBBYTEOFFSET offset, T value) {
    std::memcpy(buffer + offset, &value, sizeof value);
}

template <typename T>
T Take(unsigned char const *buffer, DBBYTEOFFSET offset) {
    T value;
    std::memcpy(&value, buffer + offset, sizeof value);
    return value;
}

// RAII for one statement handle.
struct statement {
    SQLHSTMT mHandle = SQL_NULL_HSTMT;
    explicit statement(SQLHDBC dbc) { SQLAllocHandle(SQL_HANDLE_STMT, dbc, &mHandle); }
    ~statement() {
        if (mHandle) SQLFreeHandle(SQL_HANDLE_STMT, mHandle);
    }
    SQLHSTMT Release() {
        SQLHSTMT h = mHandle;
        mHandle = SQL_NULL_HSTMT;
        return h;
    }
};

}  // namespace

// ---------------------------------------------------------------- dialect

std::u16string dialect::LockHint(bool updatable) const {
    if (mKind != kind::sqlserver) return u"";
    return updatable ? u"with (updlock,rowlock)" : u"with (nolock)";
}

std::u16string dialect::Select(std::u16string const &table, std::u16string const &hint,
                               std::u16string const &condition, bool withCondition) const {
    std::u16string sql = u"select * from " + table + u" " + hint;
    if (withCondition) sql += u" " + condition;
    return sql;
}

std::u16string dialect::SelectTop(int top, std::u16string const &table, std::u16string const &hint,
                                  std::u16string const &condition, bool withCondition) const {
    std::string n = std::to_string(top);
    std::u16string count(n.begin(), n.end());
    if (mKind == kind::sqlserver) {
        std::u16string sql = u"select top " + count + u" * from " + table + u" " + hint;
        if (withCondition) sql += u" " + condition;
        return sql;
    }
    return Select(table, hint, condition, withCondition) + u" limit " + count;
}

std::u16string dialect::SelectNone(std::u16string const &table) const {
    if (mKind == kind::sqlserver) return u"select top 0 * from " + table;
    return u"select * from " + table + u" limit 0";
}

std::u16string dialect::Count(std::u16string const &table, std::u16string const &condition,
                              bool withCondition) const {
    std::u16string sql = u"select count(*) from " + table + (mKind == kind::sqlserver ? u" with(nolock)" : u"");
    if (withCondition) sql += u" " + condition;
    return sql;
}

std::u16string dialect::CountColumn(std::u16string const &column, std::u16string const &table, bool distinct,
                                    std::u16string const &condition, bool withCondition) const {
    std::u16string quantifier = distinct ? u"distinct" : (mKind == kind::sqlite ? u"" : u"all");
    std::u16string sql = u"select count(" + quantifier + u" " + column + u") from " + table +
                         (mKind == kind::sqlserver ? u" with(nolock)" : u"");
    if (withCondition) sql += u" " + condition;
    return sql;
}

std::u16string dialect::PrimaryKeyClause(std::u16string const &table) const {
    return u",constraint PK_" + table + (mKind == kind::sqlserver ? u" primary key clustered (" : u" primary key (");
}

// ---------------------------------------------------------------- connection

connection::~connection() {
    _CloseStatement();
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

namespace {

// Splits a batch at the semicolons outside quotes and comments (SQLite's driver
// runs one statement per call). Empty statements are dropped.
std::vector<std::u16string> SplitBatch(std::u16string const &sql) {
    std::vector<std::u16string> parts;
    std::u16string current;
    auto flush = [&] {
        if (current.find_first_not_of(u" \t\r\n") != std::u16string::npos) parts.push_back(current);
        current.clear();
    };
    for (std::size_t i = 0; i < sql.size(); ++i) {
        char16_t c = sql[i];
        if (c == u'\'' || c == u'"') {
            std::size_t end = sql.find(c, i + 1);
            if (end == std::u16string::npos) end = sql.size() - 1;
            current += sql.substr(i, end - i + 1);
            i = end;
        } else if (c == u'-' && i + 1 < sql.size() && sql[i + 1] == u'-') {
            std::size_t end = sql.find(u'\n', i);
            i = end == std::u16string::npos ? sql.size() : end;
            current += u'\n';
        } else if (c == u'/' && i + 1 < sql.size() && sql[i + 1] == u'*') {
            std::size_t end = sql.find(u"*/", i + 2);
            i = end == std::u16string::npos ? sql.size() : end + 1;
            current += u' ';
        } else if (c == u';') {
            flush();
        } else {
            current += c;
        }
    }
    flush();
    return parts;
}

}  // namespace

void connection::_Note(std::u16string const &sql) {
    if (mLog.size() >= 1000) mLog.erase(mLog.begin());
    mLog.push_back(sql);
}

HRESULT connection::Open(std::u16string const &driver, std::u16string const &server, std::u16string const &database,
                         std::u16string const &user, std::u16string const *password) {
    std::u16string name = AsciiLower(driver);
    if (name.find(u"sqlite") != std::u16string::npos) {
        mDialect = dialect(dialect::kind::sqlite);
        mWide = false;
    } else if (name.find(u"postgres") != std::u16string::npos) {
        mDialect = dialect(dialect::kind::postgresql);
    } else {
        mDialect = dialect(dialect::kind::sqlserver);
    }
    std::u16string text = u"Driver={" + driver + u"};";
    if (mDialect.Kind() == dialect::kind::sqlite) {
        text += u"Database=" + database + u";Timeout=5000;";
    } else {
        std::u16string host = server, port;
        std::size_t split = host.find_last_of(u",:");
        if (split != std::u16string::npos) {
            port = host.substr(split + 1);
            host = host.substr(0, split);
        }
        text += u"Server=" + host + u";";
        if (!port.empty()) text += u"Port=" + port + u";";
        text += u"Database=" + database + u";Uid=" + user + u";";
        if (password) text += u"Pwd={" + *password + u"};";
        if (mDialect.Kind() == dialect::kind::sqlserver) text += u"ClientCharset=UTF-8;";
    }
    SQLHENV env = nullptr;
    SQLHDBC dbc = nullptr;
    if (!Ok(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &env))) return E_FAIL;
    SQLSetEnvAttr(env, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
    SQLAllocHandle(SQL_HANDLE_DBC, env, &dbc);
    SQLSetConnectAttr(dbc, SQL_ATTR_LOGIN_TIMEOUT, reinterpret_cast<SQLPOINTER>(10), 0);
    SQLRETURN r;
    if (mWide) {
        std::u16string in = text;
        r = SQLDriverConnectW(dbc, nullptr, reinterpret_cast<SQLWCHAR *>(in.data()), SQLSMALLINT(in.size()), nullptr,
                              0, nullptr, SQL_DRIVER_NOPROMPT);
    } else {
        std::string in = Utf8(text);
        r = SQLDriverConnect(dbc, nullptr, reinterpret_cast<SQLCHAR *>(in.data()), SQLSMALLINT(in.size()), nullptr, 0,
                             nullptr, SQL_DRIVER_NOPROMPT);
    }
    if (!Ok(r)) {
        SQLFreeHandle(SQL_HANDLE_DBC, dbc);
        SQLFreeHandle(SQL_HANDLE_ENV, env);
        return E_FAIL;
    }
    mEnv = env;
    mDbc = dbc;
    return S_OK;
}

namespace {

SQLRETURN Prepare(SQLHSTMT stmt, std::u16string const &sql, bool wide) {
    if (wide) {
        std::u16string text = sql;
        return SQLPrepareW(stmt, reinterpret_cast<SQLWCHAR *>(text.data()), SQLINTEGER(text.size()));
    }
    std::string text = Utf8(sql);
    return SQLPrepare(stmt, reinterpret_cast<SQLCHAR *>(text.data()), SQLINTEGER(text.size()));
}

SQLRETURN Direct(SQLHSTMT stmt, std::u16string const &sql, bool wide) {
    if (wide) {
        std::u16string text = sql;
        return SQLExecDirectW(stmt, reinterpret_cast<SQLWCHAR *>(text.data()), SQLINTEGER(text.size()));
    }
    std::string text = Utf8(sql);
    return SQLExecDirect(stmt, reinterpret_cast<SQLCHAR *>(text.data()), SQLINTEGER(text.size()));
}

// The columns of the current result of `stmt`, with ordinal 0 the bookmark.
std::vector<column_desc> Describe(SQLHSTMT stmt, bool wide) {
    std::vector<column_desc> columns(1);
    columns[0].mType = DBTYPE_UI4;
    columns[0].mSize = 4;
    columns[0].mFlags = DBCOLUMNFLAGS_ISBOOKMARK | DBCOLUMNFLAGS_ISFIXEDLENGTH;
    SQLSMALLINT count = 0;
    SQLNumResultCols(stmt, &count);
    for (SQLSMALLINT i = 1; i <= count; ++i) {
        column_desc c;
        SQLSMALLINT type = 0, digits = 0, nullable = 0, length = 0;
        SQLULEN size = 0;
        if (wide) {
            SQLWCHAR name[256] = {};
            SQLDescribeColW(stmt, SQLUSMALLINT(i), name, 255, &length, &type, &size, &digits, &nullable);
            c.mName = reinterpret_cast<char16_t *>(name);
        } else {
            SQLCHAR name[512] = {};
            SQLDescribeCol(stmt, SQLUSMALLINT(i), name, 511, &length, &type, &size, &digits, &nullable);
            c.mName = Wide(reinterpret_cast<char *>(name), std::strlen(reinterpret_cast<char *>(name)));
        }
        c.mType = TypeOf(type);
        c.mSize = size;
        if (c.mType == DBTYPE_WSTR && (c.mSize == 0 || c.mSize > kMaxText)) c.mSize = kMaxText;
        c.mPrecision = std::uint8_t(size > 255 ? 255 : size);
        c.mScale = std::uint8_t(digits < 0 ? 0 : digits);
        SQLLEN automatic = 0, updatable = SQL_ATTR_WRITE;
        SQLColAttribute(stmt, SQLUSMALLINT(i), SQL_DESC_AUTO_UNIQUE_VALUE, nullptr, 0, nullptr, &automatic);
        SQLColAttribute(stmt, SQLUSMALLINT(i), SQL_DESC_UPDATABLE, nullptr, 0, nullptr, &updatable);
        if (!automatic && updatable != SQL_ATTR_READONLY) c.mFlags |= DBCOLUMNFLAGS_WRITE;
        if (nullable == SQL_NULLABLE) c.mFlags |= DBCOLUMNFLAGS_ISNULLABLE | DBCOLUMNFLAGS_MAYBENULL;
        if (c.mType == DBTYPE_BYTES) c.mFlags |= DBCOLUMNFLAGS_ISLONG;
        columns.push_back(c);
    }
    return columns;
}

// Reads column `i` of the current row.
cell ReadCell(SQLHSTMT stmt, SQLUSMALLINT i, DBTYPE type, bool wide) {
    SQLLEN indicator = 0;
    switch (ReadingOf(type)) {
        case reading::whole: {
            SQLBIGINT v = 0;
            if (!Ok(SQLGetData(stmt, i, SQL_C_SBIGINT, &v, sizeof v, &indicator)) || indicator == SQL_NULL_DATA) {
                return std::monostate{};
            }
            return std::int64_t(v);
        }
        case reading::real: {
            double v = 0;
            if (!Ok(SQLGetData(stmt, i, SQL_C_DOUBLE, &v, sizeof v, &indicator)) || indicator == SQL_NULL_DATA) {
                return std::monostate{};
            }
            return v;
        }
        case reading::stamp: {
            SQL_TIMESTAMP_STRUCT t{};
            if (!Ok(SQLGetData(stmt, i, SQL_C_TYPE_TIMESTAMP, &t, sizeof t, &indicator)) || indicator == SQL_NULL_DATA) {
                return std::monostate{};
            }
            return timestamp{{SQLSMALLINT(t.year), t.month, t.day, t.hour, t.minute, t.second, t.fraction}};
        }
        case reading::bytes: {
            std::string bytes;
            char chunk[8192];
            for (;;) {
                SQLRETURN r = SQLGetData(stmt, i, SQL_C_BINARY, chunk, sizeof chunk, &indicator);
                if (r == SQL_NO_DATA) break;
                if (!Ok(r) || indicator == SQL_NULL_DATA) return bytes.empty() ? cell(std::monostate{}) : cell(bytes);
                std::size_t got = (indicator == SQL_NO_TOTAL || std::size_t(indicator) > sizeof chunk) ? sizeof chunk
                                                                                                         : std::size_t(indicator);
                bytes.append(chunk, got);
                if (r == SQL_SUCCESS) break;
            }
            return bytes;
        }
        case reading::text: {
            if (wide) {
                std::u16string text;
                SQLWCHAR chunk[2048];
                for (;;) {
                    SQLRETURN r = SQLGetData(stmt, i, SQL_C_WCHAR, chunk, sizeof chunk, &indicator);
                    if (r == SQL_NO_DATA) break;
                    if (!Ok(r) || indicator == SQL_NULL_DATA) return text.empty() ? cell(std::monostate{}) : cell(text);
                    text += reinterpret_cast<char16_t *>(chunk);
                    if (r == SQL_SUCCESS) break;
                }
                return text;
            }
            std::string text;
            char chunk[4096];
            for (;;) {
                SQLRETURN r = SQLGetData(stmt, i, SQL_C_CHAR, chunk, sizeof chunk, &indicator);
                if (r == SQL_NO_DATA) break;
                if (!Ok(r) || indicator == SQL_NULL_DATA) return text.empty() ? cell(std::monostate{}) : cell(Wide(text.data(), text.size()));
                text += chunk;
                if (r == SQL_SUCCESS) break;
            }
            return Wide(text.data(), text.size());
        }
    }
    return std::monostate{};
}

// Parameter storage that lives until the statement has run.
struct parameters {
    std::vector<std::unique_ptr<unsigned char[]>> mBuffers;
    std::vector<SQLLEN> mIndicators;
};

SQLSMALLINT SqlTypeOf(DBTYPE type) {
    switch (ReadingOf(type)) {
        case reading::whole: return SQL_BIGINT;
        case reading::real: return SQL_DOUBLE;
        case reading::bytes: return SQL_LONGVARBINARY;
        case reading::stamp: return SQL_TYPE_TIMESTAMP;
        case reading::text: return SQL_WVARCHAR;
    }
    return SQL_WVARCHAR;
}

bool BindAll(SQLHSTMT stmt, std::vector<cell> const &values, std::vector<DBTYPE> const &types, bool wide,
             parameters &keep) {
    keep.mIndicators.assign(values.size(), 0);
    for (std::size_t k = 0; k < values.size(); ++k) {
        cell const &v = values[k];
        SQLUSMALLINT number = SQLUSMALLINT(k + 1);
        SQLLEN &indicator = keep.mIndicators[k];
        SQLRETURN r;
        auto store = [&](void const *data, std::size_t size) {
            keep.mBuffers.emplace_back(new unsigned char[size ? size : 1]);
            if (size) std::memcpy(keep.mBuffers.back().get(), data, size);
            return keep.mBuffers.back().get();
        };
        if (std::holds_alternative<std::monostate>(v)) {
            indicator = SQL_NULL_DATA;
            SQLSMALLINT sqlType = SqlTypeOf(types[k]);
            if (!wide && sqlType == SQL_WVARCHAR) sqlType = SQL_VARCHAR;
            r = SQLBindParameter(stmt, number, SQL_PARAM_INPUT, SQL_C_CHAR, sqlType, 1, 0, nullptr, 0, &indicator);
        } else if (auto *i = std::get_if<std::int64_t>(&v)) {
            r = SQLBindParameter(stmt, number, SQL_PARAM_INPUT, SQL_C_SBIGINT, SQL_BIGINT, 0, 0, store(i, sizeof *i),
                                 0, nullptr);
        } else if (auto *d = std::get_if<double>(&v)) {
            r = SQLBindParameter(stmt, number, SQL_PARAM_INPUT, SQL_C_DOUBLE, SQL_DOUBLE, 0, 0, store(d, sizeof *d), 0,
                                 nullptr);
        } else if (auto *t = std::get_if<std::u16string>(&v)) {
            if (wide) {
                indicator = SQLLEN(t->size() * 2);
                r = SQLBindParameter(stmt, number, SQL_PARAM_INPUT, SQL_C_WCHAR, SQL_WVARCHAR,
                                     t->empty() ? 1 : t->size(), 0, store(t->data(), t->size() * 2),
                                     indicator, &indicator);
            } else {
                std::string u = Utf8(*t);
                indicator = SQLLEN(u.size());
                r = SQLBindParameter(stmt, number, SQL_PARAM_INPUT, SQL_C_CHAR, SQL_VARCHAR, u.empty() ? 1 : u.size(),
                                     0, store(u.data(), u.size()), indicator, &indicator);
            }
        } else if (auto *b = std::get_if<std::string>(&v)) {
            indicator = SQLLEN(b->size());
            r = SQLBindParameter(stmt, number, SQL_PARAM_INPUT, SQL_C_BINARY, SQL_LONGVARBINARY,
                                 b->empty() ? 1 : b->size(), 0, store(b->data(), b->size()), indicator, &indicator);
        } else {
            DBTIMESTAMP const &s = std::get<timestamp>(v).mValue;
            SQL_TIMESTAMP_STRUCT stamp{s.year, s.month, s.day, s.hour, s.minute, s.second, s.fraction};
            r = SQLBindParameter(stmt, number, SQL_PARAM_INPUT, SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP, 23, 3,
                                 store(&stamp, sizeof stamp), 0, nullptr);
        }
        if (!Ok(r)) return false;
    }
    return true;
}

}  // namespace

HRESULT connection::Execute(std::u16string const &sql) {
    if (!mDbc) return E_FAIL;
    mKeyCache.clear();  // the statement may have changed a table's key
    _Note(sql);
    statement stmt(mDbc);
    SQLRETURN r = Direct(stmt.mHandle, sql, mWide);
    return (Ok(r) || r == SQL_NO_DATA) ? S_OK : E_FAIL;
}

std::u16string connection::_IdentityColumn() const {
    if (mDialect.Kind() == dialect::kind::sqlite) return u"rowid";
    if (mDialect.Kind() == dialect::kind::postgresql) return u"ctid::text";
    return {};
}

HRESULT connection::_Read(void *handle, std::u16string const &table, bool identity, std::shared_ptr<rowset> &result) {
    auto *stmt = static_cast<SQLHSTMT>(handle);
    auto rows = std::make_shared<rowset>(*this, table);
    rows->mColumns = Describe(stmt, mWide);
    std::size_t identityColumn = 0;
    if (identity && rows->mColumns.size() > 1) {
        identityColumn = rows->mColumns.size() - 1;
        rows->mColumns.pop_back();
        rows->mIdentity = true;
    }
    for (;;) {
        SQLRETURN r = SQLFetch(stmt);
        if (r == SQL_NO_DATA) break;
        if (!Ok(r)) return E_FAIL;
        rowset::cached row;
        row.mCells.resize(rows->mColumns.size());
        for (std::size_t i = 1; i < rows->mColumns.size(); ++i) {
            row.mCells[i] = ReadCell(stmt, SQLUSMALLINT(i), rows->mColumns[i].mType, mWide);
        }
        if (identityColumn) row.mIdentity = ReadCell(stmt, SQLUSMALLINT(identityColumn), DBTYPE_WSTR, mWide);
        rows->mRows.push_back(std::move(row));
    }
    result = rows;
    return S_OK;
}

HRESULT connection::Query(std::u16string const &sql, std::u16string const &table, std::shared_ptr<rowset> &result) {
    result.reset();
    _CloseStatement();
    if (!mDbc) return E_FAIL;
    _Note(sql);
    std::u16string first = sql;
    std::vector<std::u16string> rest;
    // A table without a primary key: its rows are found again by their identity.
    bool identity = false;
    std::u16string prefix = u"select * from " + table;
    std::vector<std::u16string> keys;
    if (!table.empty() && !_IdentityColumn().empty() && AsciiLower(sql.substr(0, prefix.size())) == AsciiLower(prefix) &&
        (sql.size() == prefix.size() || sql[prefix.size()] == u' ') && SUCCEEDED(PrimaryKeys(table, keys)) &&
        keys.empty()) {
        first = u"select *, " + _IdentityColumn() + u" from " + table + sql.substr(prefix.size());
        identity = true;
    }
    if (mDialect.Kind() == dialect::kind::sqlite) {
        rest = SplitBatch(sql);
        if (rest.size() > 1) {
            first = rest.front();
            rest.erase(rest.begin());
        } else {
            rest.clear();
        }
    }
    statement stmt(mDbc);
    SQLRETURN r = Direct(stmt.mHandle, first, mWide);
    if (!Ok(r) && r != SQL_NO_DATA) return E_FAIL;
    SQLSMALLINT columns = 0;
    SQLNumResultCols(stmt.mHandle, &columns);
    HRESULT hr = columns == 0 ? S_OK : _Read(stmt.mHandle, table, identity, result);  // no columns: no result set
    if (FAILED(hr)) return hr;
    mPending = stmt.Release();
    mBatch = std::move(rest);
    return S_OK;
}

HRESULT connection::NextResult(std::shared_ptr<rowset> &result) {
    result.reset();
    if (!mPending) return E_FAIL;
    auto *stmt = static_cast<SQLHSTMT>(mPending);
    while (!mBatch.empty()) {
        std::u16string next = mBatch.front();
        mBatch.erase(mBatch.begin());
        SQLFreeStmt(stmt, SQL_CLOSE);
        SQLRETURN r = Direct(stmt, next, mWide);
        if (!Ok(r) && r != SQL_NO_DATA) {
            _CloseStatement();
            return E_FAIL;
        }
        SQLSMALLINT columns = 0;
        SQLNumResultCols(stmt, &columns);
        if (columns > 0) return _Read(stmt, std::u16string(), false, result);
    }
    if (mDialect.Kind() == dialect::kind::sqlite) {
        _CloseStatement();
        return E_FAIL;
    }
    for (;;) {
        SQLRETURN r = SQLMoreResults(stmt);
        if (r == SQL_NO_DATA) {
            _CloseStatement();
            return E_FAIL;
        }
        if (!Ok(r)) {
            _CloseStatement();
            return E_FAIL;
        }
        SQLSMALLINT columns = 0;
        SQLNumResultCols(stmt, &columns);
        if (columns > 0) return _Read(stmt, std::u16string(), false, result);
    }
}

HRESULT connection::TableColumns(std::u16string const &table, std::vector<column_desc> &columns) {
    columns.clear();
    if (!mDbc) return E_FAIL;
    statement stmt(mDbc);
    std::u16string sql = u"select * from " + table + u" where 1 = 0";
    if (!Ok(Direct(stmt.mHandle, sql, mWide))) return E_FAIL;
    columns = Describe(stmt.mHandle, mWide);
    return S_OK;
}

HRESULT connection::PrimaryKeys(std::u16string const &table, std::vector<std::u16string> &keys) {
    keys.clear();
    if (!mDbc) return E_FAIL;
    for (auto const &[name, known] : mKeyCache) {
        if (name == table) {
            keys = known;
            return S_OK;
        }
    }
    std::shared_ptr<rowset> rows;
    std::u16string sql;
    if (mDialect.Kind() == dialect::kind::sqlite) {
        sql = u"select name from pragma_table_info('" + table + u"') where pk > 0 order by pk";
    } else if (mDialect.Kind() == dialect::kind::postgresql) {
        sql = u"select a.attname from pg_index i join pg_attribute a on a.attrelid = i.indrelid and a.attnum = any(i.indkey) "
              u"where i.indisprimary and i.indrelid = to_regclass('" + table + u"') "
              u"order by array_position(i.indkey::int2[], a.attnum)";
    } else {
        sql = u"select c.name from sys.index_columns ic join sys.indexes i on i.object_id = ic.object_id and "
              u"i.index_id = ic.index_id join sys.columns c on c.object_id = ic.object_id and c.column_id = ic.column_id "
              u"where i.is_primary_key = 1 and ic.object_id = object_id('" + table + u"') order by ic.key_ordinal";
    }
    for (char16_t c : table) {
        if (c == u'\'') return E_FAIL;  // table names are never quoted: refuse what would break the statement
    }
    statement stmt(mDbc);
    if (!Ok(Direct(stmt.mHandle, sql, mWide))) return E_FAIL;
    while (Ok(SQLFetch(stmt.mHandle))) {
        cell name = ReadCell(stmt.mHandle, 1, DBTYPE_WSTR, mWide);
        if (auto *t = std::get_if<std::u16string>(&name)) keys.push_back(*t);
    }
    mKeyCache.emplace_back(table, keys);
    return S_OK;
}

HRESULT connection::StartTransaction(long isolation) {
    if (!mDbc) return E_FAIL;
    if (mDialect.Kind() != dialect::kind::sqlite) {
        SQLULEN level = SQL_TXN_READ_COMMITTED;
        if (isolation == 0x100) level = SQL_TXN_READ_UNCOMMITTED;
        if (isolation == 0x10000) level = SQL_TXN_REPEATABLE_READ;
        if (isolation == 0x100000) level = SQL_TXN_SERIALIZABLE;
        if (!mInTransaction) SQLSetConnectAttr(mDbc, SQL_ATTR_TXN_ISOLATION, reinterpret_cast<SQLPOINTER>(level), 0);
    }
    if (!Ok(SQLSetConnectAttr(mDbc, SQL_ATTR_AUTOCOMMIT, reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_OFF), 0))) {
        return E_FAIL;
    }
    mInTransaction = true;
    return S_OK;
}

HRESULT connection::EndTransaction(bool commit) {
    if (!mDbc) return XACT_E_NOTRANSACTION;
    _CloseStatement();
    SQLRETURN r = SQLEndTran(SQL_HANDLE_DBC, mDbc, commit ? SQL_COMMIT : SQL_ROLLBACK);
    SQLSetConnectAttr(mDbc, SQL_ATTR_AUTOCOMMIT, reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_ON), 0);
    mInTransaction = false;
    return Ok(r) ? S_OK : E_FAIL;
}

HRESULT connection::Scalar(std::u16string const &sql, std::int64_t &value) {
    value = 0;
    if (!mDbc) return E_FAIL;
    _Note(sql);
    statement stmt(mDbc);
    if (!Ok(Direct(stmt.mHandle, sql, mWide)) || !Ok(SQLFetch(stmt.mHandle))) return E_FAIL;
    cell c = ReadCell(stmt.mHandle, 1, DBTYPE_I4, mWide);
    value = AsWhole(c);
    return S_OK;
}

HRESULT connection::_Run(std::u16string const &sql, std::vector<cell> const &values, std::vector<DBTYPE> const &types,
                         std::vector<cell> *returned, std::vector<column_desc> const *columns, std::int64_t *affected) {
    if (!mDbc || types.size() != values.size()) return E_FAIL;
    _Note(sql);
    statement stmt(mDbc);
    if (!Ok(Prepare(stmt.mHandle, sql, mWide))) return E_FAIL;
    parameters keep;
    if (!BindAll(stmt.mHandle, values, types, mWide, keep)) return E_FAIL;
    SQLRETURN r = SQLExecute(stmt.mHandle);
    if (r == SQL_NO_DATA) {
        if (affected) *affected = 0;
        return returned ? E_FAIL : S_OK;
    }
    if (!Ok(r)) return E_FAIL;
    if (affected) {
        SQLLEN count = 0;
        SQLRowCount(stmt.mHandle, &count);
        *affected = count;
    }
    if (returned && columns) {
        if (!Ok(SQLFetch(stmt.mHandle))) return E_FAIL;
        returned->assign(columns->size(), std::monostate{});
        for (std::size_t i = 1; i < columns->size(); ++i) {
            (*returned)[i] = ReadCell(stmt.mHandle, SQLUSMALLINT(i), (*columns)[i].mType, mWide);
        }
    }
    return S_OK;
}

// ---------------------------------------------------------------- rowset

rowset::rowset(connection &owner, std::u16string table) : mOwner(owner), mTable(std::move(table)) {}

HRESULT rowset::RestartPosition() {
    mNext = 0;
    mAtStart = true;
    return S_OK;
}

HRESULT rowset::GetNextRows(std::int64_t offset, bool forward, HROW &row) {
    row = 0;
    std::int64_t n = Rows();
    // Right after a restart the position is both before the first row and after the last.
    std::int64_t base = (mAtStart && offset < 0) ? n : mNext;
    std::int64_t index = forward ? base + offset : base + offset - 1;
    if (index < 0 || index >= n) return DB_S_ENDOFROWSET;
    mAtStart = false;
    mNext = forward ? index + 1 : index;
    row = HROW(index + 1);
    return S_OK;
}

HRESULT rowset::GetData(HROW row, std::vector<DBBINDING> const &bindings, unsigned char *buffer) const {
    if (row == 0 || row > HROW(Rows())) return DB_E_BADROWHANDLE;
    cached const &r = mRows[row - 1];
    if (r.mDeleted) return static_cast<HRESULT>(0x80040E23u);  // DB_E_DELETEDROW
    for (DBBINDING const &b : bindings) {
        DWORD status = DBSTATUS_S_OK;
        std::size_t ordinal = std::size_t(b.iOrdinal);
        if (ordinal == 0) {
            if (b.cbMaxLen >= 4) Put<std::uint32_t>(buffer, b.obValue, std::uint32_t(row));
        } else if (ordinal >= r.mCells.size()) {
            status = DBSTATUS_E_UNAVAILABLE;
        } else if (std::holds_alternative<std::monostate>(r.mCells[ordinal])) {
            status = DBSTATUS_S_ISNULL;
        } else {
            cell const &c = r.mCells[ordinal];
            switch (b.wType) {
                case DBTYPE_I2:
                case DBTYPE_UI2:
                    if (b.cbMaxLen >= 2) Put<std::int16_t>(buffer, b.obValue, std::int16_t(AsWhole(c)));
                    break;
                case DBTYPE_I4:
                case DBTYPE_UI4: Put<std::int32_t>(buffer, b.obValue, std::int32_t(AsWhole(c))); break;
                case DBTYPE_R4: Put<float>(buffer, b.obValue, float(AsReal(c))); break;
                case DBTYPE_R8: Put<double>(buffer, b.obValue, AsReal(c)); break;
                case DBTYPE_WSTR: {
                    std::u16string t = AsText(c);
                    std::size_t room = b.cbMaxLen / 2;
                    if (room == 0) break;
                    if (t.size() >= room) {
                        t.resize(room - 1);
                        status = DBSTATUS_S_TRUNCATED;
                    }
                    std::memcpy(buffer + b.obValue, t.c_str(), (t.size() + 1) * 2);
                    break;
                }
                case DBTYPE_STR: {
                    std::string t;
                    std::u16string wide = AsText(c);
                    platform::Utf16ToLocale(wide.data(), wide.size(), t);
                    if (b.cbMaxLen == 0) break;
                    if (t.size() >= b.cbMaxLen) {
                        t.resize(b.cbMaxLen - 1);
                        status = DBSTATUS_S_TRUNCATED;
                    }
                    std::memcpy(buffer + b.obValue, t.c_str(), t.size() + 1);
                    break;
                }
                case DBTYPE_DBTIMESTAMP:
                    if (auto *t = std::get_if<timestamp>(&c)) Put<DBTIMESTAMP>(buffer, b.obValue, t->mValue);
                    break;
                case DBTYPE_IUNKNOWN: {
                    std::string const *bytes = std::get_if<std::string>(&c);
                    std::string empty;
                    if (!bytes) bytes = &empty;
                    IStream *s = CreateMemoryStream(bytes->data(), bytes->size());
                    Put<void *>(buffer, b.obValue, static_cast<ISequentialStream *>(s));
                    if (b.dwPart & DBPART_LENGTH) Put<std::uint64_t>(buffer, b.obLength, bytes->size());
                    break;
                }
                default: break;
            }
        }
        if (b.dwPart & DBPART_STATUS) Put<DWORD>(buffer, b.obStatus, status);
    }
    return S_OK;
}

HRESULT rowset::_Bind(std::vector<DBBINDING> const &bindings, unsigned char const *buffer,
                      std::vector<std::size_t> &ordinals, std::vector<cell> &values) const {
    for (DBBINDING const &b : bindings) {
        std::size_t ordinal = std::size_t(b.iOrdinal);
        if (ordinal == 0 || ordinal >= mColumns.size()) continue;
        DWORD status = (b.dwPart & DBPART_STATUS) ? Take<DWORD>(buffer, b.obStatus) : DBSTATUS_S_OK;
        if (status == DBSTATUS_S_IGNORE) continue;
        cell value;
        if (status != DBSTATUS_S_ISNULL) {
            switch (b.wType) {
                case DBTYPE_I2: value = std::int64_t(Take<std::int16_t>(buffer, b.obValue)); break;
                case DBTYPE_UI2: value = std::int64_t(Take<std::uint16_t>(buffer, b.obValue)); break;
                case DBTYPE_I4: value = std::int64_t(Take<std::int32_t>(buffer, b.obValue)); break;
                case DBTYPE_UI4: value = std::int64_t(Take<std::uint32_t>(buffer, b.obValue)); break;
                case DBTYPE_R4: value = double(Take<float>(buffer, b.obValue)); break;
                case DBTYPE_R8: value = Take<double>(buffer, b.obValue); break;
                case DBTYPE_WSTR: {
                    auto const *text = reinterpret_cast<char16_t const *>(buffer + b.obValue);
                    std::size_t n = 0;
                    while (n < b.cbMaxLen / 2 && text[n]) ++n;
                    value = std::u16string(text, n);
                    break;
                }
                case DBTYPE_STR: {
                    auto const *text = reinterpret_cast<char const *>(buffer + b.obValue);
                    std::u16string wide;
                    platform::LocaleToUtf16(text, strnlen(text, b.cbMaxLen), wide);
                    value = wide;
                    break;
                }
                case DBTYPE_DBTIMESTAMP: value = timestamp{Take<DBTIMESTAMP>(buffer, b.obValue)}; break;
                case DBTYPE_IUNKNOWN: {
                    auto *s = Take<ISequentialStream *>(buffer, b.obValue);
                    if (!s) break;
                    std::string bytes;
                    char chunk[8192];
                    ULONG done = 0;
                    do {
                        done = 0;
                        s->Read(chunk, sizeof chunk, &done);
                        bytes.append(chunk, done);
                    } while (done == sizeof chunk);
                    s->Release();  // the provider takes over one reference of a storage object
                    value = bytes;
                    break;
                }
                default: continue;
            }
        }
        ordinals.push_back(ordinal);
        values.push_back(value);
    }
    return S_OK;
}

std::vector<DBTYPE> rowset::_Types(std::vector<std::size_t> const &ordinals) const {
    std::vector<DBTYPE> types;
    for (std::size_t o : ordinals) types.push_back(mColumns[o].mType);
    return types;
}

HRESULT rowset::_Where(cached const &row, std::u16string &clause, std::vector<cell> &values,
                       std::vector<DBTYPE> &types) const {
    std::vector<std::u16string> keys;
    if (mTable.empty() || FAILED(mOwner.PrimaryKeys(mTable, keys))) return E_FAIL;
    if (keys.empty()) {
        if (!mIdentity || std::holds_alternative<std::monostate>(row.mIdentity)) return E_FAIL;
        bool sqlite = mOwner.Dialect().Kind() == dialect::kind::sqlite;
        clause = sqlite ? u"rowid=?" : u"ctid=cast(? as tid)";
        values.push_back(sqlite ? cell(AsWhole(row.mIdentity)) : row.mIdentity);
        types.push_back(sqlite ? DBTYPE_I8 : DBTYPE_WSTR);
        return S_OK;
    }
    for (std::size_t k = 0; k < keys.size(); ++k) {
        std::size_t found = 0;
        for (std::size_t i = 1; i < mColumns.size(); ++i) {
            if (AsciiLower(mColumns[i].mName) == AsciiLower(keys[k])) found = i;
        }
        if (!found || found >= row.mCells.size()) return E_FAIL;
        clause += (k ? u" and " : u"") + mColumns[found].mName + u"=?";
        values.push_back(row.mCells[found]);
        types.push_back(mColumns[found].mType);
    }
    return S_OK;
}

HRESULT rowset::InsertRow(std::vector<DBBINDING> const &bindings, unsigned char const *buffer, HROW *row) {
    if (mTable.empty()) return E_FAIL;
    std::vector<std::size_t> ordinals;
    std::vector<cell> values;
    _Bind(bindings, buffer, ordinals, values);
    std::u16string names, marks;
    for (std::size_t k = 0; k < ordinals.size(); ++k) {
        names += (k ? u"," : u"") + mColumns[ordinals[k]].mName;
        marks += k ? u",?" : u"?";
    }
    std::u16string sql = ordinals.empty() ? u"insert into " + mTable + u" default values"
                                          : u"insert into " + mTable + u" (" + names + u") values (" + marks + u")";
    // The inserted row is read back, defaults and generated keys included (and its identity).
    std::vector<column_desc> wanted = mColumns;
    std::u16string extra;
    if (mIdentity) {
        wanted.push_back(column_desc{u"identity", DBTYPE_WSTR, 64, 0, 0, 0});
        extra = u", " + mOwner._IdentityColumn();
    }
    cached inserted;
    HRESULT hr;
    dialect::kind kind = mOwner.Dialect().Kind();
    std::vector<DBTYPE> types = _Types(ordinals);
    if (kind == dialect::kind::postgresql) {
        hr = mOwner._Run(sql + u" returning *" + extra, values, types, &inserted.mCells, &wanted, nullptr);
    } else {
        hr = mOwner._Run(sql, values, types, nullptr, nullptr, nullptr);
        if (SUCCEEDED(hr) && kind == dialect::kind::sqlite) {
            mOwner._Run(u"select *" + extra + u" from " + mTable + u" where rowid = last_insert_rowid()", {}, {},
                        &inserted.mCells, &wanted, nullptr);
        }
    }
    if (FAILED(hr)) return hr;
    if (mIdentity && inserted.mCells.size() == wanted.size()) {
        inserted.mIdentity = inserted.mCells.back();
        inserted.mCells.pop_back();
    }
    if (inserted.mCells.size() != mColumns.size()) {
        inserted.mCells.assign(mColumns.size(), std::monostate{});
        for (std::size_t k = 0; k < ordinals.size(); ++k) inserted.mCells[ordinals[k]] = values[k];
    }
    mRows.push_back(std::move(inserted));
    if (row) *row = HROW(mRows.size());
    return S_OK;
}

HRESULT rowset::SetData(HROW row, std::vector<DBBINDING> const &bindings, unsigned char const *buffer) {
    if (row == 0 || row > HROW(Rows()) || mRows[row - 1].mDeleted) return DB_E_BADROWHANDLE;
    cached &target = mRows[row - 1];
    std::vector<std::size_t> ordinals;
    std::vector<cell> values;
    _Bind(bindings, buffer, ordinals, values);
    if (ordinals.empty()) return S_OK;
    std::u16string where;
    std::vector<cell> all = values;
    std::vector<DBTYPE> types = _Types(ordinals);
    if (FAILED(_Where(target, where, all, types))) return E_FAIL;
    std::u16string sql = u"update " + mTable + u" set ";
    for (std::size_t k = 0; k < ordinals.size(); ++k) sql += (k ? u"," : u"") + mColumns[ordinals[k]].mName + u"=?";
    sql += u" where " + where;
    std::int64_t affected = 0;
    HRESULT hr;
    bool moves = mIdentity && mOwner.Dialect().Kind() == dialect::kind::postgresql;  // an update moves a ctid
    if (moves) {
        std::vector<column_desc> wanted(2, column_desc{u"identity", DBTYPE_WSTR, 64, 0, 0, 0});
        std::vector<cell> returned;
        hr = mOwner._Run(sql + u" returning ctid::text", all, types, &returned, &wanted, nullptr);
        if (SUCCEEDED(hr) && returned.size() == 2) target.mIdentity = returned[1];
        affected = SUCCEEDED(hr) ? 1 : 0;
    } else {
        hr = mOwner._Run(sql, all, types, nullptr, nullptr, &affected);
    }
    if (FAILED(hr) || affected < 1) return FAILED(hr) ? hr : DB_E_ERRORSOCCURRED;
    for (std::size_t k = 0; k < ordinals.size(); ++k) target.mCells[ordinals[k]] = values[k];
    return S_OK;
}

HRESULT rowset::DeleteRow(HROW row) {
    if (row == 0 || row > HROW(Rows()) || mRows[row - 1].mDeleted) return DB_E_BADROWHANDLE;
    cached &target = mRows[row - 1];
    std::u16string where;
    std::vector<cell> values;
    std::vector<DBTYPE> types;
    if (FAILED(_Where(target, where, values, types))) return E_FAIL;
    std::int64_t affected = 0;
    HRESULT hr = mOwner._Run(u"delete from " + mTable + u" where " + where, values, types, nullptr, nullptr, &affected);
    if (FAILED(hr) || affected < 1) return FAILED(hr) ? hr : DB_E_ERRORSOCCURRED;
    target.mDeleted = true;
    return S_OK;
}

}  // namespace qor::tools::platform::odbc
