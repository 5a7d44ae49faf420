// database::session: the connection to one database. It runs SQL, makes and
// drops tables and indexes, carries the transaction state, and caches the
// column set and a ready-made command of each table it is asked about.
//
//   database::session db;
//   if (!db.OpenFromProfile(u"app.ini")) return;    // [sql] server, database, user, password, driver
//   database::command &orders = db.Table(u"orders", true);
//
// The database is reached through ODBC: the driver is SQL Server's (FreeTDS)
// unless the profile's key "driver", Driver(), or the environment variable
// QORTOOLS_ODBC_DRIVER names another ("PostgreSQL Unicode", "SQLite3"). With
// SQLite the database is a file path. A failed connection shows the notice
// "SQL Serverに接続できません。..." and answers false.
#pragma once

#include "qor/tools/export.h"

#include <memory>
#include <string>
#include <vector>

#include "qor/tools/container/array.h"
#include "qor/tools/container/btree.h"
#include "qor/tools/database/column.h"
#include "qor/tools/string.h"

namespace qor::tools {
class IOpenRowset;  // the provider's session
}

namespace qor::tools::database {

class command;

// Isolation levels for StartTransaction.
inline constexpr long ISOLATIONLEVEL_READUNCOMMITTED = 0x100;
inline constexpr long ISOLATIONLEVEL_READCOMMITTED = 0x1000;
inline constexpr long ISOLATIONLEVEL_REPEATABLEREAD = 0x10000;
inline constexpr long ISOLATIONLEVEL_SERIALIZABLE = 0x100000;

class QOR_TOOLS_API session {
public:
    // Lists of SQL pieces: column definitions, key or index columns.
    using texts = container::array<string, container::pif::array::object>;

    // A session on no database yet.
    session();
    // Open, and exception("OLD DB Session Open") when it fails.
    session(char16_t const *server, char16_t const *database, char16_t const *user, char16_t const *password);
    // Copies share the connection.
    session(session const &other);
    session &operator=(session const &other);
    virtual ~session();

    // Connects through the driver given by Driver (each value passed as it
    // stands); on failure a notice names server, database and user, and
    // LastError keeps the driver's words. OpenFromProfile reads the values
    // (and the driver) from the [sql] section of an INI file.
    virtual bool Open(char16_t const *server, char16_t const *database, char16_t const *user,
                      char16_t const *password);
    virtual bool OpenFromProfile(char16_t const *path);
    // Runs SQL (a script of several statements too); creates a table from
    // column definitions and key columns, an index, or drops a table.
    virtual bool Execute(char16_t const *sql);
    virtual bool CreateTable(char16_t const *table, texts &columns, texts &keys);
    virtual bool CreateIndex(char16_t const *table, char16_t const *index, texts &columns, bool unique);
    virtual bool DropTable(char16_t const *table);

    // The column set of a table, and the session's own command on it; both
    // are made on first use and kept.
    column *LoadColumn(char16_t const *table);
    command &Table(char16_t const *table, bool updatable);
    // Transactions: EndTransaction() commits unless TransactoinError was
    // called inside (then it rolls back); TransactoinError keeps its text
    // and throws exception("OLD DB Transaction").
    bool StartTransaction(long isolation = ISOLATIONLEVEL_READCOMMITTED);
    void EndTransaction();
    void EndTransaction(bool commit);
    [[noreturn]] void TransactoinError(char16_t const *format, ...);
    [[noreturn]] void TransactoinError(int code, char16_t const *format, ...);

    // The values of the last Open, and whether a connection is open.
    string const &ServerName() const noexcept { return mServer; }
    string const &DatabaseName() const noexcept { return mDatabase; }
    string const &UserName() const noexcept { return mUser; }
    bool IsOpen() const noexcept;
    // The ODBC driver for the next Open.
    void Driver(char16_t const *driver) { mDriver = driver; }
    string const &Driver() const noexcept { return mDriver; }
    // Every statement sent on this connection (the last 1,000); a failed one
    // is followed by a line "-- failed: " and the driver's diagnostics.
    std::vector<std::u16string> StatementLog() const;
    // The driver's diagnostic records of the last failure on this connection
    // (a failed Open included), one a line: "[state] native: message".
    string LastError() const;

    // State bits: inside a transaction, a write failed inside it.
    static constexpr std::uint32_t kTransaction = 1, kTransactionError = 2;

protected:
    friend IOpenRowset *ProviderOf(session const &s);

    std::shared_ptr<IOpenRowset> mSession;
    container::hash<string, column, container::pif::object, 2> mColumns;
    container::hash<string, command, container::pif::object, 2> mCommands;
    string mServer;
    string mDatabase;
    string mUser;
    string mError;
    std::uint32_t mState = 0;
    string mDriver;
    string mOpenError;  // the driver's words on a failed Open
};

}  // namespace qor::tools::database
