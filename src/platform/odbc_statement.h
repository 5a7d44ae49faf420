// Statements of the provider layer: a handle that frees itself, SQL sent as
// the driver wants it (UTF-16, or UTF-8 for a driver without the W calls),
// parameters bound from values, and the driver's diagnostic records of a
// failed call read into one text.
#pragma once

#include <sql.h>

#include <memory>
#include <string>
#include <vector>

#include "odbc_cells.h"

namespace qor::tools::platform::odbc {

inline bool Ok(SQLRETURN r) { return r == SQL_SUCCESS || r == SQL_SUCCESS_WITH_INFO; }

// Every diagnostic record of `handle`, one a line: "[state] native: message".
std::u16string Diagnostics(SQLSMALLINT kind, SQLHANDLE handle);

class statement {
public:
    explicit statement(SQLHDBC dbc);
    statement(statement const &) = delete;
    statement &operator=(statement const &) = delete;
    ~statement();

    SQLHSTMT Handle() const noexcept { return mHandle; }
    SQLHSTMT Release() noexcept;

    SQLRETURN Prepare(std::u16string const &sql, bool wide) { return Prepare(mHandle, sql, wide); }
    SQLRETURN Direct(std::u16string const &sql, bool wide) { return Direct(mHandle, sql, wide); }
    static SQLRETURN Prepare(SQLHSTMT stmt, std::u16string const &sql, bool wide);
    static SQLRETURN Direct(SQLHSTMT stmt, std::u16string const &sql, bool wide);

private:
    SQLHSTMT mHandle = SQL_NULL_HSTMT;
};

// The values of one execution's parameters, bound onto a statement; the
// storage lives as long as this object, which outlives the execution.
class parameters {
public:
    // Binds `values` as parameters 1.. (typed by `types`, the columns' OLE DB
    // types, and `sqlTypes`, the driver's where known).
    bool Bind(SQLHSTMT stmt, std::vector<cell> const &values, std::vector<DBTYPE> const &types,
              std::vector<short> const &sqlTypes, bool wide);

private:
    std::vector<std::unique_ptr<unsigned char[]>> mBuffers;
    std::vector<SQLLEN> mIndicators;
};

}  // namespace qor::tools::platform::odbc
