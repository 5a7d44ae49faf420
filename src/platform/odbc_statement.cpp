#include "odbc_statement.h"

#include <sqlext.h>
#include <sqlucode.h>

#include <cstring>

#include "../utf8.h"

namespace qor::tools::platform::odbc {

namespace {

SQLSMALLINT SqlTypeOf(DBTYPE type) {
    switch (ReadingOf(type)) {
        case reading::whole: return SQL_BIGINT;
        case reading::real: return SQL_DOUBLE;
        case reading::bytes: return SQL_LONGVARBINARY;
        case reading::stamp: return SQL_TYPE_TIMESTAMP;
        case reading::text: return type == DBTYPE_NUMERIC ? SQL_NUMERIC : SQL_WVARCHAR;
    }
    return SQL_WVARCHAR;
}

// "6000000000.000000" (a double written into a number's text) as
// "6000000000", which an integer column takes; false for any other text.
bool WholeNumber(std::u16string const &text, std::u16string &whole) {
    std::size_t point = text.find(u'.');
    if (point == std::u16string::npos) return false;
    if (text.find_first_not_of(u'0', point + 1) != std::u16string::npos) return false;
    whole = text.substr(0, point);
    return true;
}

}  // namespace

std::u16string Diagnostics(SQLSMALLINT kind, SQLHANDLE handle) {
    std::u16string text;
    for (SQLSMALLINT record = 1;; ++record) {
        SQLWCHAR state[6] = {}, message[1024] = {};
        SQLINTEGER native = 0;
        SQLSMALLINT length = 0;
        SQLRETURN r = SQLGetDiagRecW(kind, handle, record, state, &native, message, 1023, &length);
        if (!Ok(r)) break;
        std::string number = std::to_string(native);
        if (!text.empty()) text += u"\n";
        text += u"[" + std::u16string(reinterpret_cast<char16_t *>(state)) + u"] " +
                std::u16string(number.begin(), number.end()) + u": " +
                std::u16string(reinterpret_cast<char16_t *>(message));
    }
    return text;
}

statement::statement(SQLHDBC dbc) { SQLAllocHandle(SQL_HANDLE_STMT, dbc, &mHandle); }

statement::~statement() {
    if (mHandle) SQLFreeHandle(SQL_HANDLE_STMT, mHandle);
}

SQLHSTMT statement::Release() noexcept {
    SQLHSTMT h = mHandle;
    mHandle = SQL_NULL_HSTMT;
    return h;
}

SQLRETURN statement::Prepare(SQLHSTMT stmt, std::u16string const &sql, bool wide) {
    if (wide) {
        std::u16string text = sql;
        return SQLPrepareW(stmt, reinterpret_cast<SQLWCHAR *>(text.data()), SQLINTEGER(text.size()));
    }
    std::string text = detail::ToUtf8(sql);
    return SQLPrepare(stmt, reinterpret_cast<SQLCHAR *>(text.data()), SQLINTEGER(text.size()));
}

SQLRETURN statement::Direct(SQLHSTMT stmt, std::u16string const &sql, bool wide) {
    if (wide) {
        std::u16string text = sql;
        return SQLExecDirectW(stmt, reinterpret_cast<SQLWCHAR *>(text.data()), SQLINTEGER(text.size()));
    }
    std::string text = detail::ToUtf8(sql);
    return SQLExecDirect(stmt, reinterpret_cast<SQLCHAR *>(text.data()), SQLINTEGER(text.size()));
}

bool parameters::Bind(SQLHSTMT stmt, std::vector<cell> const &values, std::vector<DBTYPE> const &types,
                      std::vector<short> const &sqlTypes, bool wide) {
    mBuffers.clear();
    mIndicators.assign(values.size(), 0);
    auto store = [&](void const *data, std::size_t size) {
        mBuffers.emplace_back(new unsigned char[size ? size : 1]);
        if (size) std::memcpy(mBuffers.back().get(), data, size);
        return mBuffers.back().get();
    };
    for (std::size_t k = 0; k < values.size(); ++k) {
        cell const &v = values[k];
        SQLUSMALLINT number = SQLUSMALLINT(k + 1);
        SQLLEN &indicator = mIndicators[k];
        // The column's own type where the driver told it (a bigint, a numeric), so
        // that the server converts nothing it could refuse.
        SQLSMALLINT sqlType = k < sqlTypes.size() && sqlTypes[k] ? sqlTypes[k] : SqlTypeOf(types[k]);
        SQLRETURN r;
        if (std::holds_alternative<std::monostate>(v)) {
            indicator = SQL_NULL_DATA;
            if (!wide && sqlType == SQL_WVARCHAR) sqlType = SQL_VARCHAR;
            r = SQLBindParameter(stmt, number, SQL_PARAM_INPUT, SQL_C_CHAR, sqlType, 1, 0, nullptr, 0, &indicator);
        } else if (auto *i = std::get_if<std::int64_t>(&v)) {
            r = SQLBindParameter(stmt, number, SQL_PARAM_INPUT, SQL_C_SBIGINT, SQL_BIGINT, 0, 0,
                                 store(i, sizeof *i), 0, nullptr);
        } else if (auto *d = std::get_if<double>(&v)) {
            r = SQLBindParameter(stmt, number, SQL_PARAM_INPUT, SQL_C_DOUBLE, SQL_DOUBLE, 0, 0,
                                 store(d, sizeof *d), 0, nullptr);
        } else if (auto *given = std::get_if<std::u16string>(&v)) {
            // A number in its text form goes as a number of as many digits as it has.
            std::u16string const *t = given;
            std::u16string whole;
            if (sqlType == SQL_BIGINT && WholeNumber(*given, whole)) t = &whole;
            bool numeric = sqlType == SQL_NUMERIC || sqlType == SQL_DECIMAL || sqlType == SQL_BIGINT;
            if (!numeric) sqlType = wide ? SQL_WVARCHAR : SQL_VARCHAR;
            std::size_t point = t->find(u'.');
            SQLULEN size = numeric ? 38 : (t->empty() ? 1 : t->size());
            SQLSMALLINT scale = numeric && point != std::u16string::npos ? SQLSMALLINT(t->size() - point - 1) : 0;
            if (wide) {
                indicator = SQLLEN(t->size() * 2);
                r = SQLBindParameter(stmt, number, SQL_PARAM_INPUT, SQL_C_WCHAR, sqlType, size, scale,
                                     store(t->data(), t->size() * 2), indicator, &indicator);
            } else {
                std::string u = detail::ToUtf8(*t);
                indicator = SQLLEN(u.size());
                if (!numeric) size = u.empty() ? 1 : u.size();
                r = SQLBindParameter(stmt, number, SQL_PARAM_INPUT, SQL_C_CHAR, sqlType, size, scale,
                                     store(u.data(), u.size()), indicator, &indicator);
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

}  // namespace qor::tools::platform::odbc
