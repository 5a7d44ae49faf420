#include "qor/tools/database/command.h"

#include <cstring>
#include <ctime>

#include "provider.h"
#include "qor/tools/exception.h"

namespace qor::tools::database {

namespace {

constexpr int kInsert = 1, kUpdate = 2, kDelete = 4;

// The names of the two stamp columns, made once for the process.
string const &DateColumn() {
    static string const name(u"最終更新日付");
    return name;
}

string const &TimeColumn() {
    static string const name(u"最終更新時刻");
    return name;
}

}  // namespace

command::command() : mSql(256, false), mCondition(128, false) {}

command::command(session &s, char16_t const *table, bool updatable) : command() {
    if (!Open(s, table, updatable)) throw exception(0, u"OLD DB Command Open");
}

command::command(command const &other)
    : record(other), mRowset(other.mRowset), mRow(other.mRow), mAccessor(other.mAccessor), mSession(other.mSession),
      mRows(other.mRows), mPosition(other.mPosition), mResult(other.mResult), mSql(other.mSql),
      mCondition(other.mCondition), mHint(other.mHint), mOptions(other.mOptions) {}

command &command::operator=(command const &other) {
    if (&other == this) return *this;
    record::operator=(other);
    mRowset = other.mRowset;
    mRow = other.mRow;
    mAccessor = other.mAccessor;
    mSession = other.mSession;
    mRows = other.mRows;
    mPosition = other.mPosition;
    mResult = other.mResult;
    mSql = other.mSql;
    mCondition = other.mCondition;
    mHint = other.mHint;
    mOptions = other.mOptions;
    return *this;
}

command::~command() { command::Close(); }

namespace {

IOpenRowset *ProviderOf(session const *s) { return s ? database::ProviderOf(*s) : nullptr; }

platform::odbc::dialect DialectOf(session const &s) {
    IOpenRowset *provider = database::ProviderOf(s);
    return provider ? provider->Dialect() : platform::odbc::dialect();
}

}  // namespace

std::u16string command::_TableName() const {
    return mColumn.IsEmpty() ? std::u16string() : std::u16string(mColumn->TableName().Safe());
}

bool command::Open(session &s, char16_t const *table, bool updatable) {
    Close();
    mSession = &s;
    mOptions &= ~optTable;
    mOptions |= optRebind;
    bool named = table && *table;
    if (named) mOptions |= optTable;
    _Option(optUpdatable, named && updatable);
    mHint = string(DialectOf(s).LockHint(_Has(optUpdatable)).c_str());
    if (named) {
        _Create(s.LoadColumn(table), true);
        mOptions &= ~optRebind;
    }
    if (_Has(optUpdatable)) {
        mSql = string(DialectOf(s).SelectNone(table).c_str());
        return _OpenRowset() == S_OK;
    }
    return true;
}

void command::_CloseRowset() {
    if (!mRowset) return;
    mRows = mPosition = -1;
    _ReleaseAccessor();
    _ClearRow();
    mRowset.reset();
}

void command::Close() {
    _CloseRowset();
}

// ---------------------------------------------------------------- statements

HRESULT command::_OpenRowset() {
    if (mRowset) mResult = -1;
    _CloseRowset();
    IOpenRowset *c = ProviderOf(mSession);
    if (!c) return E_FAIL;
    std::shared_ptr<IRowset> rows;
    HRESULT hr = c->Query(mSql.Safe(), _Has(optTable) ? _TableName() : std::u16string(), rows);
    if (FAILED(hr)) return hr;
    mRowset = rows;
    if (!mRowset) return hr;  // a statement without a result set
    mRows = mRowset->Rows();
    mResult = 0;
    return _BindColumn(_Has(optTable));
}

column *command::_CreateColumnSet() {
    if (!mRowset) return nullptr;
    auto const &columns = mRowset->Columns();
    std::vector<tagDBCOLUMNINFO> infos(columns.size());
    std::vector<std::u16string> names(columns.size());
    for (std::size_t i = 0; i < columns.size(); ++i) {
        names[i] = columns[i].mName;
        infos[i] = tagDBCOLUMNINFO{};
        infos[i].pwszName = i == 0 ? nullptr : names[i].data();
        infos[i].iOrdinal = i;
        infos[i].dwFlags = columns[i].mFlags;
        infos[i].ulColumnSize = columns[i].mSize;
        infos[i].wType = columns[i].mType;
        infos[i].bPrecision = columns[i].mPrecision;
        infos[i].bScale = columns[i].mScale;
    }
    return new column((unsigned long)infos.size(), infos.data());
}

HRESULT command::_BindColumn(bool table) {
    if (!(table && !_Has(optRebind))) {
        column *columns = table ? mSession->LoadColumn(_TableName().c_str()) : _CreateColumnSet();
        if (!columns) return E_FAIL;
        _Create(columns, table);
    }
    _Option(optRebind, !_Has(optTable));
    return _CreateAccessor();
}

HRESULT command::_CreateAccessor() {
    if (!mRowset || mColumn.IsEmpty()) return E_FAIL;
    container::array<tagDBBINDING> bindings;
    mColumn->CreateBindData(bindings);
    mAccessor.assign(bindings.begin(), bindings.end());
    return S_OK;
}

bool command::Select() {
    if (!_Has(optTable)) return false;
    mSql = string(DialectOf(*mSession).Select(_TableName(), mHint.Safe(), u"", false).c_str());
    return _OpenRowset() == S_OK;
}

bool command::Select(char16_t const *format, ...) {
    va_list args;
    va_start(args, format);
    bool ok = SelectV(format, args);
    va_end(args);
    return ok;
}

bool command::SelectV(char16_t const *format, va_list args) {
    mCondition.FormatV(format, args);
    if (_Has(optTable)) {
        mSql = string(DialectOf(*mSession).Select(_TableName(), mHint.Safe(), mCondition.Safe(), true).c_str());
    } else {
        mSql = mCondition;
    }
    return _OpenRowset() == S_OK;
}

bool command::SelectTop(int top) {
    if (!_Has(optTable)) return false;
    mSql = string(DialectOf(*mSession).SelectTop(top, _TableName(), mHint.Safe(), u"", false).c_str());
    return _OpenRowset() == S_OK;
}

bool command::SelectTop(int top, char16_t const *format, ...) {
    va_list args;
    va_start(args, format);
    mCondition.FormatV(format, args);
    va_end(args);
    if (_Has(optTable)) {
        mSql = string(DialectOf(*mSession).SelectTop(top, _TableName(), mHint.Safe(), mCondition.Safe(), true).c_str());
    } else {
        mSql = mCondition;
    }
    return _OpenRowset() == S_OK;
}

bool command::_SelectMinimum() {
    mSql = string(DialectOf(*mSession).SelectNone(_TableName()).c_str());
    return _OpenRowset() == S_OK;
}

bool command::_SelectAndNext() {
    if (_OpenRowset() != S_OK) return false;
    _ClearRow();
    return _MoveRow(0, true) == S_OK;
}

// ---------------------------------------------------------------- moves

void command::_ClearRow() {
    mPosition = -1;
    mRow = 0;
    _ReleaseField();
    mBuffer.Clear();
}

void command::_ReleaseRow() {
    mPosition = -1;
    mRow = 0;
}

HRESULT command::_MoveRow(std::int64_t offset, bool forward) {
    if (!mRowset) return E_FAIL;
    HRESULT hr = mRowset->GetNextRows(offset, forward, mRow);
    if (hr != S_OK) return hr;
    hr = mRowset->GetData(mRow, mAccessor, mBuffer.Data());
    if (FAILED(hr)) return hr;
    if (_Has(optPosition) && Columns() > 0) mPosition = mFields[0]._CastI4() - 1;
    _MoveRowAfter(*this);
    return hr;
}

void command::_MoveRowAfter(record &row) {
    if (_Has(optBlobAutoLoad)) row.LoadBlob();
}

bool command::_Move(HRESULT restart, std::int64_t offset, bool forward) {
    _ClearRow();
    if (!mRowset || restart != S_OK) return false;
    return _MoveRow(offset, forward) == S_OK;
}

bool command::MoveFirst() { return _Move(mRowset ? mRowset->RestartPosition() : E_FAIL, 0, true); }

bool command::MoveLast() { return _Move(mRowset ? mRowset->RestartPosition() : E_FAIL, -1, true); }

bool command::MoveAt(int index) { return _Move(mRowset ? mRowset->RestartPosition() : E_FAIL, index, true); }

bool command::MoveNext() { return _Move(S_OK, 0, true); }

bool command::MoveNext(int offset, bool forward) {
    std::int64_t o = offset < 0 ? std::int64_t(offset) - 1 : offset;
    return _Move(S_OK, o, forward);
}

bool command::NextResult() {
    if (mRowset) mResult = -1;
    _CloseRowset();
    IOpenRowset *c = ProviderOf(mSession);
    std::shared_ptr<IRowset> rows;
    if (!c || c->NextResult(rows) != S_OK || !rows) return false;
    mRowset = rows;
    mRows = mRowset->Rows();
    ++mResult;
    _Create(_CreateColumnSet(), false);
    _Option(optRebind, !_Has(optTable));
    HRESULT hr = _CreateAccessor();
    mOptions |= optRebind;
    return hr == S_OK;
}

int command::RecordSet(rset &out, char16_t const *format, ...) {
    va_list args;
    va_start(args, format);
    int n = RecordSetV(out, format, args);
    va_end(args);
    return n;
}

int command::RecordSetV(rset &out, char16_t const *format, va_list args) {
    out.Clear();
    if (!SelectV(format, args) || mRows < 1) return out.Size();
    unsigned char *block = out.Setup(*this, int(mRows));
    if (!block) {
        out.Clear();
        mRowset->Release();
        return 0;
    }
    mRowset->RestartPosition();
    int size = RecordSize();
    for (int i = 0; i < int(mRows); ++i) {
        HROW row = 0;
        if (mRowset->GetNextRows(0, true, row) != S_OK) break;
        if (FAILED(mRowset->GetData(row, mAccessor, block + std::size_t(i) * std::size_t(size)))) break;
        _MoveRowAfter(out[i]);
    }
    // The rows are the record set's now, as the batch's row handles were
    // released: the cursor's copy goes.
    mRowset->Release();
    return out.Size();
}

// ---------------------------------------------------------------- writing

void command::_RenewalBefore(record &row, int mode) {
    if (mode == kDelete) return;
    if (row.IsField(DateColumn()) && row.IsField(TimeColumn())) {
        std::time_t now = std::time(nullptr);
        std::tm t{};
        localtime_r(&now, &t);
        row[DateColumn()] = long(((t.tm_year + 1900) * 100 + t.tm_mon + 1) * 100 + t.tm_mday);
        row[TimeColumn()] = long((t.tm_hour * 100 + t.tm_min) * 100 + t.tm_sec);
    }
    for (int i = 0; i < row.Columns(); ++i) {
        if (row.Info(i)->IsReadOnly()) row.Status(i) = DBSTATUS_S_IGNORE;
    }
    if (row.IsUseUnknown() && _Has(optUnknownHold)) {
        for (int i = 0; i < row.Columns(); ++i) {
            if (row.Info(i)->mType == DBTYPE_IUNKNOWN) row[i].AddRef();
        }
    }
}

void command::_RenewalAfter(record &row, int mode) {
    for (int i = 0; i < row.Columns(); ++i) {
        if (!(row.Info(i)->mKind & column::info::kUnknown)) continue;
        if ((row.IsUseUnknown() && !_Has(optUnknownHold)) || mode == kDelete) row[i].ReleaseOther();
    }
}

void command::Insert(record &row, bool keep) {
    _RenewalBefore(row, kInsert);
    HRESULT hr = E_FAIL;
    if (mRowset && _Has(optUpdatable) && row.RecordBuffer()) {
        if (keep) {
            _ReleaseRow();
            hr = mRowset->InsertRow(mAccessor, row.RecordBuffer(), &mRow);
        } else {
            hr = mRowset->InsertRow(mAccessor, row.RecordBuffer(), nullptr);
        }
    }
    _RenewalAfter(row, kInsert);
    if (hr != S_OK) throw exception(0, u"OLD DB Insert");
}

void command::Update(record &row) {
    _RenewalBefore(row, kUpdate);
    HRESULT hr = E_FAIL;
    if (mRowset && _Has(optUpdatable) && row.RecordBuffer()) hr = mRowset->SetData(mRow, mAccessor, row.RecordBuffer());
    _RenewalAfter(row, kUpdate);
    if (hr != S_OK) throw exception(0, u"OLD DB Update");
}

void command::Delete() {
    _RenewalBefore(*this, kDelete);
    HRESULT hr = (mRowset && _Has(optUpdatable)) ? mRowset->DeleteRow(mRow) : E_FAIL;
    _RenewalAfter(*this, kDelete);
    if (hr != S_OK) throw exception(0, u"OLD DB Delete");
}

void command::Delete(char16_t const *condition) {
    std::u16string table = _TableName();
    if (table.empty()) return;
    _ClearRow();
    mRows = mPosition = mResult = -1;
    mSession->Execute(string::Formatter(u"delete from %s %s", table.c_str(), string::Safe(condition)));
}

void command::DeleteAll() {
    std::u16string table = _TableName();
    if (table.empty()) return;
    _ClearRow();
    mRows = mPosition = mResult = -1;
    mSession->Execute(string::Formatter(u"delete from %s", table.c_str()));
}

// ---------------------------------------------------------------- counting

long command::CountRecord(char16_t const *sql) {
    IOpenRowset *c = ProviderOf(mSession);
    std::int64_t value = 0;
    if (!c || !sql || c->Scalar(sql, value) != S_OK) return 0;
    return long(std::int32_t(value));
}

long command::Count() {
    if (!_Has(optTable)) return 0;
    mSql = string(DialectOf(*mSession).Count(_TableName(), u"", false).c_str());
    return CountRecord(mSql);
}

long command::Count(char16_t const *format, ...) {
    va_list args;
    va_start(args, format);
    mCondition.FormatV(format, args);
    va_end(args);
    std::u16string table = _TableName();
    if (table.empty()) {
        mSql = mCondition;
    } else {
        mSql = string(DialectOf(*mSession).Count(table, mCondition.Safe(), true).c_str());
    }
    return CountRecord(mSql);
}

long command::CountColumn(char16_t const *column, bool distinct) {
    if (!_Has(optTable)) return 0;
    mSql = string(DialectOf(*mSession).CountColumn(string::Safe(column), _TableName(), distinct, u"", false).c_str());
    return CountRecord(mSql);
}

long command::CountColumn(char16_t const *column, char16_t const *condition, bool distinct) {
    if (!_Has(optTable)) return 0;
    string sql(DialectOf(*mSession)
                   .CountColumn(string::Safe(column), _TableName(), distinct, string::Safe(condition), true)
                   .c_str());
    return CountRecord(sql);
}

bool command::StartTransaction(long isolation) { return mSession && mSession->StartTransaction(isolation); }

void command::EndTransaction() {
    if (mSession) mSession->EndTransaction();
}

}  // namespace qor::tools::database
