// database::command: a cursor on a table or on the result of free SQL. It is a
// record (its row is the current row), builds the SQL, runs it, moves through
// the rows and writes rows back.
//
//   command &people = db.Table(u"people", true);
//   if (people.Select(u"where age > %d order by id", 20)) {
//       while (people.MoveNext()) use(int(people[u"id"]));
//   }
//   people[u"name"] = u"佐藤";
//   people.Update();                         // throws exception("OLD DB Update") on failure
//
// Rows are read whole into a client-side cursor: Rows() is known after each
// Select, bookmarks count rows from 1 and never move, and moves in both
// directions work on every database.
#pragma once

#include "qor/tools/export.h"

#include <cstdarg>
#include <cstdint>
#include <memory>
#include <vector>

#include "qor/tools/database/record.h"
#include "qor/tools/database/session.h"

namespace qor::tools {
class IRowset;  // the provider's result
}

namespace qor::tools::database {

class QOR_TOOLS_API command : public record {
public:
    // The bits of Options(): set by Open and the switches below.
    enum option : std::uint32_t {
        optServerCursor = 1,
        optBlobAutoLoad = 2,
        optUnknownHold = 4,
        optTable = 8,
        optRebind = 16,
        optPosition = 32,
        optUpdatable = 64,
    };

    // A command on nothing yet: Open it on a table or use it for free SQL.
    command();
    // Open, and exception("OLD DB Command Open") when it fails.
    command(session &s, char16_t const *table, bool updatable);
    // Copies take the table, options and current row, not the cursor.
    command(command const &other);
    command &operator=(command const &other);
    ~command() override;

    // Binds the command to `table` of `s` (null or empty: free SQL) and reads
    // its columns; false when the table cannot be read. Close lets go of the
    // cursor and the binding.
    virtual bool Open(session &s, char16_t const *table, bool updatable);
    virtual void Close();

    // Switches: a server-side cursor (rows are read whole on every database
    // all the same), blobs loaded as rows arrive, interface pointers in rows
    // kept (AddRef) across writes, and a table hint added to built SELECTs.
    void ServerCursol(bool on) { _Option(optServerCursor, on); }
    void BlobAutoLoad(bool on) { _Option(optBlobAutoLoad, on); }
    void UknownHold(bool on) { _Option(optUnknownHold, on); }
    void LockHint(char16_t const *hint) { mHint = hint; }

    // Runs a query and places the cursor before its first row; false when it
    // fails. On a table the text is what follows the table's SELECT (a
    // `where` or `order by` clause, printf-formatted); on free SQL it is the
    // whole statement. SelectTop reads at most `top` rows; RecordSet reads
    // every row into `out` and answers their number (0 on failure).
    bool Select();
    bool Select(char16_t const *format, ...);
    bool SelectV(char16_t const *format, va_list args);
    bool SelectTop(int top);
    bool SelectTop(int top, char16_t const *format, ...);
    int RecordSet(rset &out, char16_t const *format, ...);
    int RecordSetV(rset &out, char16_t const *format, va_list args);

    // Moves the cursor and reads the row into the command's fields; false past
    // either end. MoveNext(offset, forward) skips `offset` rows either way,
    // MoveAt goes to a row by its index from 0, NextResult goes on to the
    // next result of a batch. Rows() is the result's row count (-1 before a
    // query), Position() the current row's index.
    bool MoveFirst();
    bool MoveLast();
    bool MoveNext();
    bool MoveNext(int offset, bool forward);
    bool MoveAt(int index);
    bool NextResult();
    int Rows() const noexcept { return int(mRows); }
    int Position() const noexcept { return mPosition; }

    // Writes a row (the command's own or another record in the table's
    // layout); each throws exception("OLD DB Insert"), "OLD DB Update" or
    // "OLD DB Delete" on failure. `keep` makes the inserted row the current
    // one; Renewal updates when `exists` and inserts otherwise. Delete with a
    // condition and DeleteAll run a DELETE on the table and end the query.
    void Insert(record &row, bool keep);
    void Insert(bool keep = false) { Insert(*this, keep); }
    void Update(record &row);
    void Update() { Update(*this); }
    void Renewal(bool exists) { exists ? Update() : Insert(false); }
    void Delete();
    void Delete(char16_t const *condition);
    void DeleteAll();

    // Counts rows of the table (with a printf-formatted condition), values of
    // a column (distinct ones on request), or answers the number that a
    // statement of one value gives; 0 when the query fails.
    long Count();
    long Count(char16_t const *format, ...);
    long CountColumn(char16_t const *column, bool distinct);
    long CountColumn(char16_t const *column, char16_t const *condition, bool distinct);
    long CountRecord(char16_t const *sql);

    // The session's transaction: EndTransaction commits unless a write failed
    // inside it, in which case it rolls back.
    bool StartTransaction(long isolation = ISOLATIONLEVEL_READCOMMITTED);
    void EndTransaction();

    // The last SQL text run, and the option bits.
    string const &Sql() const noexcept { return mSql; }
    std::uint32_t Options() const noexcept { return mOptions; }

protected:
    bool _SelectAndNext();
    bool _SelectMinimum();
    HRESULT _OpenRowset();
    HRESULT _BindColumn(bool table);
    column *_CreateColumnSet();
    HRESULT _CreateAccessor();
    void _CloseRowset();
    HRESULT _MoveRow(std::int64_t offset, bool forward);
    void _MoveRowAfter(record &row);
    void _ClearRow();
    void _ReleaseRow();
    void _ReleaseAccessor() { mAccessor.clear(); }
    void _ClearResult() { mRows = mPosition = -1; }
    virtual void _RenewalBefore(record &row, int mode);
    virtual void _RenewalAfter(record &row, int mode);

    std::shared_ptr<IRowset> mRowset;
    HROW mRow = 0;
    std::vector<DBBINDING> mAccessor;
    session *mSession = nullptr;
    std::int64_t mRows = -1;
    std::int32_t mPosition = -1;
    std::int32_t mResult = -1;
    string mSql;
    string mCondition;
    string mHint;
    std::uint32_t mOptions = optRebind | optPosition;

private:
    void _Option(std::uint32_t bit, bool on) { mOptions = on ? (mOptions | bit) : (mOptions & ~bit); }
    bool _Has(std::uint32_t bit) const noexcept { return (mOptions & bit) != 0; }
    bool _Move(HRESULT restart, std::int64_t offset, bool forward);
    std::u16string _TableName() const;
};

}  // namespace qor::tools::database
