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
    enum option : std::uint32_t {
        optServerCursor = 1,
        optBlobAutoLoad = 2,
        optUnknownHold = 4,
        optTable = 8,
        optRebind = 16,
        optPosition = 32,
        optUpdatable = 64,
    };

    command();
    // Open, and exception("OLD DB Command Open") when it fails.
    command(session &s, char16_t const *table, bool updatable);
    command(command const &other);
    command &operator=(command const &other);
    ~command() override;

    virtual bool Open(session &s, char16_t const *table, bool updatable);
    virtual void Close();

    void ServerCursol(bool on) { _Option(optServerCursor, on); }
    void BlobAutoLoad(bool on) { _Option(optBlobAutoLoad, on); }
    void UknownHold(bool on) { _Option(optUnknownHold, on); }
    void LockHint(char16_t const *hint) { mHint = hint; }

    bool Select();
    bool Select(char16_t const *format, ...);
    bool SelectV(char16_t const *format, va_list args);
    bool SelectTop(int top);
    bool SelectTop(int top, char16_t const *format, ...);
    int RecordSet(rset &out, char16_t const *format, ...);
    int RecordSetV(rset &out, char16_t const *format, va_list args);

    bool MoveFirst();
    bool MoveLast();
    bool MoveNext();
    bool MoveNext(int offset, bool forward);
    bool MoveAt(int index);
    bool NextResult();
    int Rows() const noexcept { return int(mRows); }
    int Position() const noexcept { return mPosition; }

    void Insert(record &row, bool keep);
    void Insert(bool keep = false) { Insert(*this, keep); }
    void Update(record &row);
    void Update() { Update(*this); }
    void Renewal(bool exists) { exists ? Update() : Insert(false); }
    void Delete();
    void Delete(char16_t const *condition);
    void DeleteAll();

    long Count();
    long Count(char16_t const *format, ...);
    long CountColumn(char16_t const *column, bool distinct);
    long CountColumn(char16_t const *column, char16_t const *condition, bool distinct);
    long CountRecord(char16_t const *sql);

    bool StartTransaction(long isolation = ISOLATIONLEVEL_READCOMMITTED);
    void EndTransaction();

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
