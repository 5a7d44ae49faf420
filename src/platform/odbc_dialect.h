// What differs between the databases behind the provider layer: the SQL the
// library builds itself, the connection string, how text travels, the row
// identity of a table without a key, how a batch is run, how a table's key
// is asked for, which isolation levels exist, and how an inserted row is read
// back. Every "which database is this" question of the provider is answered
// here, and nowhere else.
#pragma once

#include <string>
#include <vector>

namespace qor::tools::platform::odbc {

class dialect {
public:
    enum class kind { sqlserver, postgresql, sqlite };

    explicit dialect(kind k = kind::sqlserver) : mKind(k) {}
    // The dialect of an ODBC driver, by its name.
    static dialect ForDriver(std::u16string const &driver);
    kind Kind() const noexcept { return mKind; }

    // ---- statements the library builds (SQL Server's are the original texts)
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

    // ---- the connection
    // The connection string, every value quoted the ODBC way ({...}, a '}'
    // doubled), so that no character of a value can be read as syntax. The
    // SQLite driver reads no quotes: its database goes as it stands, and a
    // path it would misread (one with ';') is reached through an alias.
    std::u16string ConnectionString(std::u16string const &driver, std::u16string const &server,
                                    std::u16string const &database, std::u16string const &user,
                                    std::u16string const *password) const;
    // Whether SQL text and text values travel as UTF-16 (the W functions) or,
    // for a driver without them, as UTF-8.
    bool IsWide() const noexcept { return mKind != kind::sqlite; }
    // Whether a database path must be reached through an alias (a link).
    bool NeedsAlias(std::u16string const &database) const {
        return mKind == kind::sqlite && database.find(u';') != std::u16string::npos;
    }
    // Whether the driver types an expression column by the value in its first
    // row (SQLite says INTEGER for max() of a 64-bit column), so that an
    // integer expression must be read as 64 bits.
    bool TypesExpressionsByValue() const noexcept { return mKind == kind::sqlite; }
    // Whether the database knows the isolation levels an application asks for.
    bool HasIsolationLevels() const noexcept { return mKind != kind::sqlite; }

    // ---- scripts
    // The statements of a script, when the driver runs one statement a call
    // (SQLite): split at the semicolons outside quotes, comments and trigger
    // bodies (BEGIN ... END). A driver that runs scripts itself gets it whole.
    std::vector<std::u16string> Statements(std::u16string const &sql) const;
    // The statements that make a split script all or nothing (a savepoint
    // around it), or none when the script does its own transaction control.
    struct guard {
        std::u16string mBegin, mCommit, mRollback;
    };
    guard ScriptGuard(std::vector<std::u16string> const &statements) const;

    // ---- keys and row identities
    // The statement that lists the primary key columns of `table` in order.
    std::u16string PrimaryKeysQuery(std::u16string const &table) const;
    // The expression of a row's identity, selected beside the columns of a
    // table without a key (empty: the database has none).
    std::u16string IdentityColumn() const;
    // The condition that finds a row again by its identity (one parameter),
    // and whether that parameter is a number (else text).
    std::u16string IdentityCondition() const;
    bool IdentityIsNumber() const noexcept { return mKind == kind::sqlite; }
    // Whether an update gives a row a new identity (read again after it).
    bool UpdateMovesIdentity() const noexcept { return mKind == kind::postgresql; }

    // ---- inserted rows
    // How a row that needs reading back (generated keys, defaults) is read:
    // by a clause on the insert itself, or by a statement after it.
    bool InsertReturns() const noexcept { return mKind == kind::postgresql; }
    std::u16string ReturningClause(std::u16string const &extra) const;
    std::u16string ReturningSuffix(std::u16string const &extra) const;  // for an update: the identity
    std::u16string LastInserted(std::u16string const &table, std::u16string const &extra) const;

private:
    kind mKind;
};

}  // namespace qor::tools::platform::odbc
