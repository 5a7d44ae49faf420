#include "qor/tools/database/session.h"

#include <cstdarg>
#include <cstdlib>

#include "provider.h"
#include "platform/profile.h"
#include "qor/tools/database/command.h"
#include "qor/tools/database/record.h"
#include "qor/tools/exception.h"
#include "qor/tools/platform/notice.h"
#include "qor/tools/string_converter.h"

namespace qor::tools::database {

namespace {

constexpr char16_t kTitle[] = u"SQL <基本処理 OLE DB>";

string DefaultDriver() {
    if (char const *env = std::getenv("QORTOOLS_ODBC_DRIVER"); env && *env) return string(env);
    return string(u"FreeTDS");
}

std::u16string Text(string const &s) { return std::u16string(s.Safe()); }

string Join(session::texts &parts) {
    string joined;
    for (int i = 0; i < parts.Size(); ++i) {
        if (i) joined += u",";
        joined += parts[i];
    }
    return joined;
}

}  // namespace

session::session() : mDriver(DefaultDriver()) {}

session::session(char16_t const *server, char16_t const *database, char16_t const *user, char16_t const *password)
    : mDriver(DefaultDriver()) {
    if (!Open(server, database, user, password)) throw exception(0, u"OLD DB Session Open");
}

session::session(session const &other)
    : mSession(other.mSession), mColumns(other.mColumns), mCommands(other.mCommands), mServer(other.mServer),
      mDatabase(other.mDatabase), mUser(other.mUser), mError(other.mError), mState(other.mState & 3),
      mDriver(other.mDriver) {}

session &session::operator=(session const &other) {
    if (&other == this) return *this;
    mSession = other.mSession;
    mColumns = other.mColumns;
    mCommands = other.mCommands;
    mServer = other.mServer;
    mDatabase = other.mDatabase;
    mUser = other.mUser;
    mError = other.mError;
    mState = other.mState & 3;
    mDriver = other.mDriver;
    return *this;
}

session::~session() {
    // The connection goes first; cached commands keep their own results.
    mSession.reset();
}

bool session::IsOpen() const noexcept { return mSession && mSession->IsOpen(); }

IOpenRowset *ProviderOf(session const &s) { return s.mSession.get(); }

namespace {

platform::odbc::dialect DialectOf(session const &s) {
    IOpenRowset *provider = ProviderOf(s);
    return provider ? provider->Dialect() : platform::odbc::dialect();
}

}  // namespace

std::vector<std::u16string> session::StatementLog() const {
    return mSession ? mSession->Log() : std::vector<std::u16string>();
}

string session::LastError() const { return mSession ? string(mSession->LastError()) : mOpenError; }

bool session::Open(char16_t const *server, char16_t const *database, char16_t const *user, char16_t const *password) {
    mServer = server;
    mDatabase = database;
    mUser = user;
    auto next = std::make_shared<IOpenRowset>();
    std::u16string secret = password ? std::u16string(password) : std::u16string();
    HRESULT hr = next->Open(Text(mDriver), Text(mServer), Text(mDatabase), Text(mUser), password ? &secret : nullptr);
    mOpenError = next->LastError();
    if (hr == S_OK) {
        mSession = next;
        return true;
    }
    string text = string::Formatter(u"SQL Serverに接続できません。\n<サーバー=%s,データベース=%s,ユーザー=%s>",
                                    mServer.Safe(), mDatabase.Safe(), mUser.Safe());
    MessageBoxW(nullptr, text, kTitle, MB_ICONERROR);
    return false;
}

bool session::OpenFromProfile(char16_t const *path) {
    std::u16string password = platform::GetPrivateProfileString(u"sql", u"password", u"", path, 64);
    std::u16string server = platform::GetPrivateProfileString(u"sql", u"server", u"", path, 64);
    std::u16string database = platform::GetPrivateProfileString(u"sql", u"database", u"", path, 64);
    std::u16string user = platform::GetPrivateProfileString(u"sql", u"user", u"", path, 64);
    std::u16string driver = platform::GetPrivateProfileString(u"sql", u"driver", u"", path, 64);
    if (server.empty() || database.empty() || user.empty()) {
        MessageBoxW(nullptr, string::Formatter(u"SQL接続情報が取得できません。\n<%s>", string::Safe(path)), kTitle,
                    MB_ICONERROR);
        return false;
    }
    if (!driver.empty()) mDriver = driver.c_str();
    return Open(server.c_str(), database.c_str(), user.c_str(), password.c_str());
}

bool session::Execute(char16_t const *sql) {
    if (!mSession || !sql) return false;
    return mSession->Execute(sql) == S_OK;
}

bool session::CreateTable(char16_t const *table, texts &columns, texts &keys) {
    string sql = string::Formatter(u"create table %s (", string::Safe(table)) + Join(columns);
    if (keys.Size() > 0) {
        sql += string(DialectOf(*this).PrimaryKeyClause(string::Safe(table)).c_str());
        sql += Join(keys) + u")";
    }
    sql += u")";
    return Execute(sql);
}

bool session::CreateIndex(char16_t const *table, char16_t const *index, texts &columns, bool unique) {
    string sql = string::Formatter(u"create %s index %s on %s (", unique ? u"unique" : u"", string::Safe(index),
                                   string::Safe(table));
    sql += Join(columns) + u")";
    return Execute(sql);
}

bool session::DropTable(char16_t const *table) {
    return Execute(string::Formatter(u"drop table %s", string::Safe(table)));
}

column *session::LoadColumn(char16_t const *table) {
    string key(table);
    if (column *found = mColumns.Find(key)) return found;
    auto *made = new column(*this, table);
    mColumns.Set(key, made);
    return made;
}

command &session::Table(char16_t const *table, bool updatable) {
    string key(table);
    if (command *found = mCommands.Find(key)) return *found;
    auto *made = new command(*this, table, updatable);
    mCommands.Set(key, made);
    return *made;
}

bool session::StartTransaction(long isolation) {
    mState = (mState | kTransaction) & ~kTransactionError;
    mError.Empty();
    return mSession && mSession->StartTransaction(isolation) == S_OK;
}

void session::EndTransaction(bool commit) {
    if (!(mState & kTransaction)) return;
    if (mSession) mSession->EndTransaction(commit);
    mState &= ~kTransaction;
}

void session::EndTransaction() {
    if (mState & kTransaction) EndTransaction((mState & kTransactionError) == 0);
}

void session::TransactoinError(char16_t const *format, ...) {
    mState |= kTransactionError;
    va_list args;
    va_start(args, format);
    mError.FormatV(format, args);
    va_end(args);
    throw exception(0, u"OLD DB Transaction");
}

void session::TransactoinError(int code, char16_t const *format, ...) {
    mState |= kTransactionError;
    va_list args;
    va_start(args, format);
    mError.FormatV(format, args);
    va_end(args);
    throw new exception(code);
}

// ---------------------------------------------------------------- a table's columns

column::column(session &s, char16_t const *table) : mTableName(table) {
    _Add(nullptr, 0, DBTYPE_UI4, 4, DBCOLUMNFLAGS_ISBOOKMARK | DBCOLUMNFLAGS_ISFIXEDLENGTH, 10, 255);
    std::vector<platform::odbc::column_desc> columns;
    if (!ProviderOf(s) || !table || ProviderOf(s)->TableColumns(table, columns) != S_OK) return;
    for (std::size_t i = 1; i < columns.size(); ++i) {
        auto const &c = columns[i];
        _Add(c.mName.c_str(), int(i), c.mType, static_cast<unsigned long>(c.mSize), c.mFlags, c.mPrecision,
             c.mScale);
    }
    _LoadPrimaryKeys(s);
}

void column::_LoadPrimaryKeys(session &s) {
    std::vector<std::u16string> keys;
    if (!ProviderOf(s) || ProviderOf(s)->PrimaryKeys(mTableName.Safe(), keys) != S_OK) return;
    string text(u"where ");
    for (std::size_t k = 0; k < keys.size(); ++k) {
        info *e = Info(keys[k].c_str());
        if (!e) {
            mPrimaryKeys.Empty();
            return;
        }
        string term = e->mName;
        switch (e->mType) {
            case DBTYPE_I4:
            case DBTYPE_UI4: term += u" = %d"; break;
            case DBTYPE_R8: term += u" = %f"; break;
            case DBTYPE_STR:
            case DBTYPE_WSTR: term += u" = '%s'"; break;
            default: break;
        }
        if (k > 0) text += u" and ";
        text += term;
    }
    mPrimaryKeys = text;
}

string record::PrimaryKeyString(session *s) {
    std::vector<std::u16string> keys;
    if (!s || mColumn.IsEmpty() || !ProviderOf(*s) ||
        ProviderOf(*s)->PrimaryKeys(mColumn->TableName().Safe(), keys) != S_OK || keys.empty()) {
        return string();
    }
    string text;
    for (std::size_t k = 0; k < keys.size(); ++k) {
        column::info *e = mColumn->Info(keys[k].c_str());
        if (!e) return string();
        if (k > 0) text += u",";
        text += e->mName + u"=";
        field &f = mFields[e->mIndex];
        switch (e->mType) {
            case DBTYPE_I4:
            case DBTYPE_UI4: text += string::Formatter(u"%d", f._CastI4()); break;
            case DBTYPE_R8: text += string::Formatter(u"%.0f", f._CastR8()); break;
            case DBTYPE_STR: text += string(f._CastString()); break;
            case DBTYPE_WSTR: text += f._CastStringW(); break;
            default: break;
        }
    }
    return text;
}

}  // namespace qor::tools::database
