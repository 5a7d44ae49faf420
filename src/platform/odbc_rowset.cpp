#include "odbc_rowset.h"

#include <sqlext.h>
#include <sqlucode.h>

#include <algorithm>
#include <cstring>

#include "../text_case.h"
#include "../utf8.h"
#include "odbc_connection.h"
#include "odbc_statement.h"
#include "text_codec.h"

namespace qor::tools::platform::odbc {

namespace {

constexpr HRESULT DB_E_DELETEDROW = static_cast<HRESULT>(0x80040E23u);
constexpr std::size_t kBlockBytes = std::size_t(1) << 20;  // the bound arrays of one block of rows

template <typename T>
T Take(unsigned char const *buffer, DBBYTEOFFSET offset) {
    T value;
    std::memcpy(&value, buffer + offset, sizeof value);
    return value;
}

// Whether column `i` of the current result is computed rather than read from a table.
bool IsExpression(SQLHSTMT stmt, SQLUSMALLINT i) {
    SQLCHAR table[8] = {};
    SQLSMALLINT length = 0;
    SQLColAttribute(stmt, i, SQL_DESC_TABLE_NAME, table, sizeof table, &length, nullptr);
    return length == 0;
}

// The columns of the current result of `stmt`, with ordinal 0 the bookmark.
// With `widenExpressions`, integer expressions are read as 64-bit numbers.
std::vector<column_desc> Describe(SQLHSTMT stmt, bool wide, bool widenExpressions) {
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
            c.mName = detail::ToUtf16(reinterpret_cast<char *>(name));
        }
        if (widenExpressions && type == SQL_INTEGER && IsExpression(stmt, SQLUSMALLINT(i))) type = SQL_BIGINT;
        c.mSqlType = type;
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

// The units a text column keeps: one more than its slot holds, so that a
// value cut here still reads as cut.
std::size_t KeptUnits(column_desc const &c) {
    std::size_t units = c.mSize == 0 || c.mSize > kMaxText ? kMaxText : std::size_t(c.mSize);
    return units + 1;
}

// One column's bound array for a block of rows.
struct bound {
    reading mReading;
    std::size_t mWidth = 0;  // bytes a row
    std::vector<unsigned char> mData;
    std::vector<SQLLEN> mIndicators;
    std::size_t mUnits = 0;  // texts: units kept
};

}  // namespace

rowset::rowset(connection &owner, std::u16string table) : mOwner(owner), mTable(std::move(table)) {}

// ---------------------------------------------------------------- reading a result

HRESULT rowset::_Read(SQLHSTMT stmt, bool wide, bool identity) {
    mColumns = Describe(stmt, wide, mOwner.Dialect().TypesExpressionsByValue());
    if (identity && mColumns.size() > 1) {
        mColumns.back().mType = DBTYPE_WSTR;  // kept as text beside the row, not shown as a column
        mIdentity = true;
    }
    std::vector<reading> readings;
    for (column_desc const &c : mColumns) readings.push_back(ReadingOf(c.mType));
    mStore.Reset(readings);
    bool blobs = std::any_of(mColumns.begin() + 1, mColumns.end(),
                             [](column_desc const &c) { return ReadingOf(c.mType) == reading::bytes; });
    HRESULT hr = blobs ? _ReadRows(stmt, wide) : _ReadBlocks(stmt, wide);
    if (mIdentity) mColumns.pop_back();
    mRows = std::int64_t(mStore.Rows());
    mDeleted.assign(std::size_t(mRows), 0);
    return hr;
}

HRESULT rowset::_ReadBlocks(SQLHSTMT stmt, bool wide) {
    std::size_t count = mColumns.size();
    std::vector<bound> columns(count);
    std::size_t rowWidth = 0;
    for (std::size_t i = 1; i < count; ++i) {
        bound &b = columns[i];
        b.mReading = ReadingOf(mColumns[i].mType);
        switch (b.mReading) {
            case reading::whole: b.mWidth = sizeof(SQLBIGINT); break;
            case reading::real: b.mWidth = sizeof(double); break;
            case reading::stamp: b.mWidth = sizeof(SQL_TIMESTAMP_STRUCT); break;
            default:
                b.mUnits = KeptUnits(mColumns[i]);
                // UTF-8 from a driver without the W calls: at most three bytes a unit.
                b.mWidth = wide ? (b.mUnits + 1) * sizeof(SQLWCHAR) : b.mUnits * 3 + 1;
                break;
        }
        rowWidth += b.mWidth + sizeof(SQLLEN);
    }
    SQLULEN block = std::clamp<std::size_t>(kBlockBytes / (rowWidth ? rowWidth : 1), 1, 1024);
    SQLULEN fetched = 0;
    SQLSetStmtAttr(stmt, SQL_ATTR_ROW_BIND_TYPE, reinterpret_cast<SQLPOINTER>(SQL_BIND_BY_COLUMN), 0);
    SQLSetStmtAttr(stmt, SQL_ATTR_ROW_ARRAY_SIZE, reinterpret_cast<SQLPOINTER>(block), 0);
    SQLSetStmtAttr(stmt, SQL_ATTR_ROWS_FETCHED_PTR, &fetched, 0);
    for (std::size_t i = 1; i < count; ++i) {
        bound &b = columns[i];
        b.mData.resize(b.mWidth * block);
        b.mIndicators.resize(block);
        SQLSMALLINT type = b.mReading == reading::whole  ? SQL_C_SBIGINT
                           : b.mReading == reading::real ? SQL_C_DOUBLE
                           : b.mReading == reading::stamp ? SQL_C_TYPE_TIMESTAMP
                           : wide                         ? SQL_C_WCHAR
                                                          : SQL_C_CHAR;
        if (!Ok(SQLBindCol(stmt, SQLUSMALLINT(i), type, b.mData.data(), SQLLEN(b.mWidth), b.mIndicators.data()))) {
            return E_FAIL;
        }
    }
    std::u16string converted;
    for (;;) {
        SQLRETURN r = SQLFetch(stmt);
        if (r == SQL_NO_DATA) break;
        if (!Ok(r)) return E_FAIL;
        std::size_t first = mStore.Rows();
        mStore.AddRows(std::size_t(fetched));
        for (std::size_t i = 1; i < count; ++i) {
            bound const &b = columns[i];
            for (std::size_t k = 0; k < fetched; ++k) {
                SQLLEN indicator = b.mIndicators[k];
                if (indicator == SQL_NULL_DATA) continue;
                unsigned char const *value = b.mData.data() + k * b.mWidth;
                std::size_t row = first + k;
                switch (b.mReading) {
                    case reading::whole: mStore.SetWhole(row, i, Take<SQLBIGINT>(value, 0)); break;
                    case reading::real: mStore.SetReal(row, i, Take<double>(value, 0)); break;
                    case reading::stamp: {
                        auto t = Take<SQL_TIMESTAMP_STRUCT>(value, 0);
                        mStore.SetStamp(row, i, {SQLSMALLINT(t.year), t.month, t.day, t.hour, t.minute, t.second,
                                                 t.fraction});
                        break;
                    }
                    default:
                        if (wide) {
                            auto const *text = reinterpret_cast<char16_t const *>(value);
                            std::size_t n = std::char_traits<char16_t>::length(text);
                            mStore.SetText(row, i, text, std::min(n, b.mUnits));
                        } else {
                            auto const *text = reinterpret_cast<char const *>(value);
                            converted.clear();
                            detail::Utf8ToUtf16(text, std::strlen(text), converted);
                            mStore.SetText(row, i, converted.data(), std::min(converted.size(), b.mUnits));
                        }
                        break;
                }
            }
        }
    }
    SQLFreeStmt(stmt, SQL_UNBIND);
    SQLSetStmtAttr(stmt, SQL_ATTR_ROW_ARRAY_SIZE, reinterpret_cast<SQLPOINTER>(1), 0);
    SQLSetStmtAttr(stmt, SQL_ATTR_ROWS_FETCHED_PTR, nullptr, 0);
    return S_OK;
}

// Row by row, with SQLGetData: for results that hold blobs.
HRESULT rowset::_ReadRows(SQLHSTMT stmt, bool wide) {
    std::size_t count = mColumns.size();
    std::u16string text;
    std::string bytes;
    for (;;) {
        SQLRETURN r = SQLFetch(stmt);
        if (r == SQL_NO_DATA) return S_OK;
        if (!Ok(r)) return E_FAIL;
        std::size_t row = mStore.Rows();
        mStore.AddRows(1);
        for (std::size_t i = 1; i < count; ++i) {
            SQLUSMALLINT number = SQLUSMALLINT(i);
            SQLLEN indicator = 0;
            switch (ReadingOf(mColumns[i].mType)) {
                case reading::whole: {
                    SQLBIGINT v = 0;
                    if (Ok(SQLGetData(stmt, number, SQL_C_SBIGINT, &v, sizeof v, &indicator)) &&
                        indicator != SQL_NULL_DATA) {
                        mStore.SetWhole(row, i, v);
                    }
                    break;
                }
                case reading::real: {
                    double v = 0;
                    if (Ok(SQLGetData(stmt, number, SQL_C_DOUBLE, &v, sizeof v, &indicator)) &&
                        indicator != SQL_NULL_DATA) {
                        mStore.SetReal(row, i, v);
                    }
                    break;
                }
                case reading::stamp: {
                    SQL_TIMESTAMP_STRUCT t{};
                    if (Ok(SQLGetData(stmt, number, SQL_C_TYPE_TIMESTAMP, &t, sizeof t, &indicator)) &&
                        indicator != SQL_NULL_DATA) {
                        mStore.SetStamp(row, i, {SQLSMALLINT(t.year), t.month, t.day, t.hour, t.minute, t.second,
                                                 t.fraction});
                    }
                    break;
                }
                case reading::bytes: {
                    bytes.clear();
                    char chunk[8192];
                    bool null = false;
                    for (;;) {
                        SQLRETURN g = SQLGetData(stmt, number, SQL_C_BINARY, chunk, sizeof chunk, &indicator);
                        if (g == SQL_NO_DATA) break;
                        if (!Ok(g) || indicator == SQL_NULL_DATA) {
                            null = bytes.empty();
                            break;
                        }
                        std::size_t got = (indicator == SQL_NO_TOTAL || std::size_t(indicator) > sizeof chunk)
                                              ? sizeof chunk
                                              : std::size_t(indicator);
                        bytes.append(chunk, got);
                        if (g == SQL_SUCCESS) break;
                    }
                    if (!null) mStore.SetBytes(row, i, bytes.data(), bytes.size());
                    break;
                }
                case reading::text: {
                    text.clear();
                    bool null = false;
                    for (;;) {
                        SQLRETURN g;
                        if (wide) {
                            SQLWCHAR chunk[2048];
                            g = SQLGetData(stmt, number, SQL_C_WCHAR, chunk, sizeof chunk, &indicator);
                            if (Ok(g) && indicator != SQL_NULL_DATA) text += reinterpret_cast<char16_t *>(chunk);
                        } else {
                            char chunk[4096];
                            g = SQLGetData(stmt, number, SQL_C_CHAR, chunk, sizeof chunk, &indicator);
                            if (Ok(g) && indicator != SQL_NULL_DATA) detail::Utf8ToUtf16(chunk, std::strlen(chunk), text);
                        }
                        if (g == SQL_NO_DATA) break;
                        if (!Ok(g) || indicator == SQL_NULL_DATA) {
                            null = text.empty();
                            break;
                        }
                        if (g == SQL_SUCCESS) break;
                    }
                    if (!null) mStore.SetText(row, i, text.data(), std::min(text.size(), KeptUnits(mColumns[i])));
                    break;
                }
            }
        }
    }
}

void rowset::Release() {
    mStore.Release();
    std::vector<std::uint8_t>().swap(mDeleted);
    mReleased = true;
}

// ---------------------------------------------------------------- the cursor

HRESULT rowset::RestartPosition() {
    mNext = 0;
    mAtStart = true;
    return S_OK;
}

HRESULT rowset::GetNextRows(std::int64_t offset, bool forward, HROW &row) {
    row = 0;
    if (mReleased) return DB_S_ENDOFROWSET;
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

bool rowset::_IsLive(HROW row) const noexcept {
    return !mReleased && row > 0 && row <= HROW(mStore.Rows()) && !mDeleted[row - 1];
}

HRESULT rowset::GetData(HROW row, std::vector<DBBINDING> const &bindings, unsigned char *buffer) const {
    if (mReleased || row == 0 || row > HROW(mStore.Rows())) return DB_E_BADROWHANDLE;
    if (mDeleted[row - 1]) return DB_E_DELETEDROW;
    std::size_t at = std::size_t(row - 1);
    for (DBBINDING const &b : bindings) {
        DWORD status = DBSTATUS_S_OK;
        std::size_t ordinal = std::size_t(b.iOrdinal);
        if (ordinal == 0) {
            if (b.cbMaxLen >= 4) std::memcpy(buffer + b.obValue, &row, 4);
        } else if (ordinal >= mColumns.size()) {
            status = DBSTATUS_E_UNAVAILABLE;
        } else {
            status = mStore.Put(at, ordinal, b, buffer);
        }
        if (b.dwPart & DBPART_STATUS) std::memcpy(buffer + b.obStatus, &status, sizeof status);
    }
    return S_OK;
}

// ---------------------------------------------------------------- writing back

void rowset::_Bind(std::vector<DBBINDING> const &bindings, unsigned char const *buffer,
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
}

void rowset::_Types(std::vector<std::size_t> const &ordinals, std::vector<DBTYPE> &types,
                    std::vector<short> &sqlTypes) const {
    for (std::size_t o : ordinals) {
        types.push_back(mColumns[o].mType);
        sqlTypes.push_back(mColumns[o].mSqlType);
    }
}

HRESULT rowset::_Where(std::size_t row, std::u16string &clause, std::vector<cell> &values, std::vector<DBTYPE> &types,
                       std::vector<short> &sqlTypes) const {
    std::vector<std::u16string> keys;
    if (mTable.empty() || FAILED(mOwner.PrimaryKeys(mTable, keys))) return E_FAIL;
    dialect const &d = mOwner.Dialect();
    if (keys.empty()) {
        std::size_t identity = mColumns.size();
        if (!mIdentity || mStore.IsNull(row, identity)) return E_FAIL;
        clause = d.IdentityCondition();
        cell id = mStore.Get(row, identity);
        values.push_back(d.IdentityIsNumber() ? cell(AsWhole(id)) : id);
        types.push_back(d.IdentityIsNumber() ? DBTYPE_I8 : DBTYPE_WSTR);
        sqlTypes.push_back(0);
        return S_OK;
    }
    for (std::size_t k = 0; k < keys.size(); ++k) {
        std::size_t found = 0;
        for (std::size_t i = 1; i < mColumns.size(); ++i) {
            if (detail::AsciiLower(mColumns[i].mName) == detail::AsciiLower(keys[k])) found = i;
        }
        if (!found) return E_FAIL;
        clause += (k ? u" and " : u"") + mColumns[found].mName + u"=?";
        values.push_back(mStore.Get(row, found));
        types.push_back(mColumns[found].mType);
        sqlTypes.push_back(mColumns[found].mSqlType);
    }
    return S_OK;
}

bool rowset::_IsComplete(std::vector<std::size_t> const &ordinals) const {
    if (mIdentity) return false;  // the new row's identity must be read
    for (std::size_t i = 1; i < mColumns.size(); ++i) {
        if (std::find(ordinals.begin(), ordinals.end(), i) == ordinals.end()) return false;
    }
    return true;
}

HRESULT rowset::InsertRow(std::vector<DBBINDING> const &bindings, unsigned char const *buffer, HROW *row) {
    if (mTable.empty() || mReleased) return E_FAIL;
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
    std::vector<DBTYPE> types;
    std::vector<short> sqlTypes;
    _Types(ordinals, types, sqlTypes);
    dialect const &d = mOwner.Dialect();
    // A row that the database completes (defaults, generated keys, its
    // identity) is read back; one given whole is known already.
    std::vector<column_desc> wanted = mColumns;
    std::u16string extra;
    if (mIdentity) {
        wanted.push_back(column_desc{u"identity", DBTYPE_WSTR, 64, 0, 0, 0, 0});
        extra = u", " + d.IdentityColumn();
    }
    std::vector<cell> inserted;
    HRESULT hr;
    if (_IsComplete(ordinals)) {
        hr = mOwner._Run(sql, values, types, sqlTypes, true, nullptr, nullptr, nullptr);
    } else if (d.InsertReturns()) {
        hr = mOwner._Run(sql + d.ReturningClause(extra), values, types, sqlTypes, true, &inserted, &wanted, nullptr);
    } else {
        hr = mOwner._Run(sql, values, types, sqlTypes, true, nullptr, nullptr, nullptr);
        std::u16string last = d.LastInserted(mTable, extra);
        if (SUCCEEDED(hr) && !last.empty()) mOwner._Run(last, {}, {}, {}, true, &inserted, &wanted, nullptr);
    }
    if (FAILED(hr)) return hr;
    std::size_t at = mStore.Rows();
    mStore.AddRows(1);
    mDeleted.push_back(0);
    ++mRows;
    if (inserted.size() == wanted.size()) {
        for (std::size_t i = 1; i < wanted.size(); ++i) mStore.Set(at, i, inserted[i]);
    } else {
        for (std::size_t k = 0; k < ordinals.size(); ++k) mStore.Set(at, ordinals[k], values[k]);
    }
    if (row) *row = HROW(mStore.Rows());
    return S_OK;
}

HRESULT rowset::SetData(HROW row, std::vector<DBBINDING> const &bindings, unsigned char const *buffer) {
    if (!_IsLive(row)) return DB_E_BADROWHANDLE;
    std::size_t at = std::size_t(row - 1);
    std::vector<std::size_t> ordinals;
    std::vector<cell> values;
    _Bind(bindings, buffer, ordinals, values);
    if (ordinals.empty()) return S_OK;
    std::u16string where;
    std::vector<cell> all = values;
    std::vector<DBTYPE> types;
    std::vector<short> sqlTypes;
    _Types(ordinals, types, sqlTypes);
    if (FAILED(_Where(at, where, all, types, sqlTypes))) return E_FAIL;
    std::u16string sql = u"update " + mTable + u" set ";
    for (std::size_t k = 0; k < ordinals.size(); ++k) sql += (k ? u"," : u"") + mColumns[ordinals[k]].mName + u"=?";
    sql += u" where " + where;
    std::int64_t affected = 0;
    HRESULT hr;
    dialect const &d = mOwner.Dialect();
    if (mIdentity && d.UpdateMovesIdentity()) {
        std::vector<column_desc> wanted(2, column_desc{u"identity", DBTYPE_WSTR, 64, 0, 0, 0, 0});
        std::vector<cell> returned;
        hr = mOwner._Run(sql + d.ReturningSuffix(d.IdentityColumn()), all, types, sqlTypes, true, &returned, &wanted,
                         nullptr);
        if (SUCCEEDED(hr) && returned.size() == 2) mStore.Set(at, mColumns.size(), returned[1]);
        affected = SUCCEEDED(hr) ? 1 : 0;
    } else {
        hr = mOwner._Run(sql, all, types, sqlTypes, true, nullptr, nullptr, &affected);
    }
    if (FAILED(hr) || affected < 1) return FAILED(hr) ? hr : DB_E_ERRORSOCCURRED;
    for (std::size_t k = 0; k < ordinals.size(); ++k) mStore.Set(at, ordinals[k], values[k]);
    return S_OK;
}

HRESULT rowset::DeleteRow(HROW row) {
    if (!_IsLive(row)) return DB_E_BADROWHANDLE;
    std::size_t at = std::size_t(row - 1);
    std::u16string where;
    std::vector<cell> values;
    std::vector<DBTYPE> types;
    std::vector<short> sqlTypes;
    if (FAILED(_Where(at, where, values, types, sqlTypes))) return E_FAIL;
    std::int64_t affected = 0;
    HRESULT hr = mOwner._Run(u"delete from " + mTable + u" where " + where, values, types, sqlTypes, true, nullptr,
                             nullptr, &affected);
    if (FAILED(hr) || affected < 1) return FAILED(hr) ? hr : DB_E_ERRORSOCCURRED;
    mDeleted[at] = 1;
    return S_OK;
}

}  // namespace qor::tools::platform::odbc
