// The session and the command against real databases: SQLite files, and a
// PostgreSQL server that scripts/test.sh starts on loopback (QORTOOLS_TEST_PG).
// The same test code runs on both.
#include "qor/tools/database/command.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <fstream>
#include <string>

#include "platform/odbc_dialect.h"
#include "qor/tools/exception.h"
#include "qor/tools/platform/notice.h"
#include "support/temp_dir.h"

using namespace qor::tools;
using namespace qor::tools::database;

namespace {

struct notices {
    notices() {
        mOld = SetNoticeHook([this](char16_t const *text, char16_t const *caption, unsigned type) {
            mText = text;
            mCaption = caption;
            mType = type;
            ++mCount;
            return IDOK;
        });
    }
    ~notices() { SetNoticeHook(mOld); }
    notice_hook mOld;
    std::u16string mText, mCaption;
    unsigned mType = 0;
    int mCount = 0;
};

std::u16string Text(char const *s) { return std::u16string(s, s + std::strlen(s)); }

class Database : public ::testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        std::setlocale(LC_ALL, "C.UTF-8");
        if (GetParam() == "postgres") {
            char const *server = std::getenv("QORTOOLS_TEST_PG");
            if (!server) GTEST_SKIP() << "no PostgreSQL server (scripts/test.sh starts one as root)";
            mDb.Driver(u"PostgreSQL Unicode");
            ASSERT_TRUE(mDb.Open(Text(server).c_str(), u"testdb", u"tester", u"testpw"));
        } else {
            mDb.Driver(u"SQLite3");
            ASSERT_TRUE(mDb.Open(u"embedded", mDir.Wide("test.db").c_str(), u"tester", u""));
        }
        mDb.DropTable(u"people");
        session::texts columns, keys;
        std::u16string definitions[] = {u"id integer not null", u"name varchar(20)", u"score float",
                                        u"photo " + Blob(), u"最終更新日付 integer", u"最終更新時刻 integer"};
        for (auto const &c : definitions) columns.Add(string(c.c_str()));
        keys.Add(string(u"id"));
        ASSERT_TRUE(mDb.CreateTable(u"people", columns, keys));
    }
    void TearDown() override {
        if (mDb.IsOpen()) mDb.DropTable(u"people");
    }
    std::u16string Blob() const { return GetParam() == "postgres" ? u"bytea" : u"blob"; }
    void Fill(command &c, int rows) {
        for (int i = 1; i <= rows; ++i) {
            c.Clear();
            c[u"id"] = i;
            c[u"name"] = string::Formatter(u"name%d", i).Safe();
            c[u"score"] = i * 1.5;
            c.Insert(false);
        }
    }
    qor::tools::testing::temp_dir mDir;
    session mDb;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Backends, Database, ::testing::Values("sqlite", "postgres"));

TEST_P(Database, SchemaColumnsKeysAndCaches) {
    column *c = mDb.LoadColumn(u"people");
    EXPECT_EQ(mDb.LoadColumn(u"people"), c);
    ASSERT_EQ(c->Columns(), 7);  // the bookmark first
    EXPECT_TRUE(c->Info(0)->mName.IsEmpty());
    EXPECT_EQ(c->Info(u"id")->mType, DBTYPE_I4);
    EXPECT_EQ(c->Info(u"name")->mType, DBTYPE_WSTR);
    EXPECT_EQ(c->Info(u"name")->mSize, 42u);
    EXPECT_EQ(c->Info(u"score")->mType, DBTYPE_R8);
    EXPECT_EQ(c->Info(u"photo")->mKind, 7u);
    EXPECT_TRUE(c->IsUseReadOnly());
    EXPECT_TRUE(c->PrimaryKeys() == u"where id = %d");
    EXPECT_EQ(&mDb.Table(u"people", false), &mDb.Table(u"people", true));  // the first one stays
}

TEST_P(Database, InsertSelectMoveUpdateDelete) {
    command &people = mDb.Table(u"people", true);
    Fill(people, 5);
    EXPECT_EQ(people.Count(), 5);
    ASSERT_TRUE(people.Select(u"where id >= %d order by id", 2));
    EXPECT_EQ(people.Rows(), 4);
    EXPECT_EQ(people.Position(), -1);
    ASSERT_TRUE(people.MoveFirst());
    EXPECT_EQ(people.Position(), 0);
    EXPECT_EQ(int(people[u"id"]), 2);
    ASSERT_TRUE(people.MoveNext());
    ASSERT_TRUE(people.MoveNext());
    EXPECT_EQ(int(people[u"id"]), 4);
    ASSERT_TRUE(people.MoveNext(-1, true));  // one row back from the row just fetched
    EXPECT_EQ(int(people[u"id"]), 3);
    ASSERT_TRUE(people.MoveLast());
    EXPECT_EQ(int(people[u"id"]), 5);
    EXPECT_FALSE(people.MoveNext());
    EXPECT_EQ(int(people[u"id"]), 0);  // the row is cleared
    EXPECT_EQ(people.Position(), -1);
    ASSERT_TRUE(people.MoveAt(1));
    EXPECT_EQ(int(people[u"id"]), 3);
    EXPECT_DOUBLE_EQ(double(people[u"score"]), 4.5);

    people[u"name"] = u"更新された名前";
    people.Update();
    people.MoveAt(2);
    people.Delete();
    ASSERT_TRUE(people.Select(u"where id = %d", 3));
    ASSERT_TRUE(people.MoveNext());
    EXPECT_EQ(std::u16string(static_cast<char16_t const *>(people[u"name"])), u"更新された名前");
    EXPECT_GT(int(people[u"最終更新日付"]), 20200101);  // stamped by the write
    EXPECT_EQ(people.Count(), 4);
    EXPECT_EQ(people.Count(u"where score > %f", 3.0), 2);
    EXPECT_EQ(people.CountColumn(u"name", true), 4);
    EXPECT_EQ(people.CountColumn(u"name", u"where id < 3", false), 2);
    EXPECT_TRUE(people.PrimaryKeyString(&mDb) == u"id=3");
    people.Delete(u"where id > 3");
    EXPECT_EQ(people.Count(), 3);
    people.DeleteAll();
    EXPECT_EQ(people.Count(), 0);
}

TEST_P(Database, InsertKeepThenUpdate) {
    command &people = mDb.Table(u"people", true);
    people.Clear();
    people[u"id"] = 7;
    people[u"name"] = u"first";
    people.Insert(true);
    people[u"name"] = u"second";
    people.Update();
    ASSERT_TRUE(people.Select(u"where id = 7"));
    ASSERT_TRUE(people.MoveNext());
    EXPECT_EQ(std::u16string(static_cast<char16_t const *>(people[u"name"])), u"second");
    people.Renewal(true);
}

TEST_P(Database, TablesWithoutAKeyUseTheRowIdentity) {
    session::texts columns, none;
    columns.Add(string(u"name varchar(20)"));
    columns.Add(string(u"n integer"));
    mDb.DropTable(u"loose");
    ASSERT_TRUE(mDb.CreateTable(u"loose", columns, none));
    {
        command loose(mDb, u"loose", true);
        for (int i = 0; i < 3; ++i) {
            loose.Clear();
            loose[u"name"] = u"same";  // no column tells the rows apart
            loose[u"n"] = i;
            loose.Insert(false);
        }
        ASSERT_TRUE(loose.Select(u"order by n"));
        ASSERT_TRUE(loose.MoveAt(1));
        loose[u"name"] = u"changed";
        loose.Update();
        loose[u"n"] = 10;
        loose.Update();  // again, after the row identity may have moved
        ASSERT_TRUE(loose.MoveAt(2));
        loose.Delete();
        EXPECT_EQ(loose.Count(), 2);
        EXPECT_EQ(loose.Count(u"where name = 'changed' and n = 10"), 1);
        EXPECT_EQ(loose.Columns(), 3);  // the identity is not a column of the record
    }
    mDb.DropTable(u"loose");
}

TEST_P(Database, ValuesTravelAsParameters) {
    command &people = mDb.Table(u"people", true);
    people.Clear();
    people[u"id"] = 1;
    // Quotes, a backslash before a quote, markers and comment openers: what a
    // driver that writes values into the statement itself must escape.
    char16_t const *hostile = u"O'Brien\\'\";?$1--/*東京";
    people[u"name"] = hostile;
    people.Insert(false);
    for (auto const &sql : mDb.StatementLog()) EXPECT_EQ(sql.find(u"O'Brien"), std::u16string::npos);
    ASSERT_TRUE(people.Select(u"where id = 1"));
    ASSERT_TRUE(people.MoveNext());
    EXPECT_EQ(std::u16string(static_cast<char16_t const *>(people[u"name"])), hostile);
}

TEST_P(Database, BlobsRoundTripAndRecordSets) {
    command &people = mDb.Table(u"people", true);
    std::string picture(100000, '\0');
    for (std::size_t i = 0; i < picture.size(); ++i) picture[i] = char(i * 31);
    people.Clear();
    people[u"id"] = 1;
    people[u"photo"].SetBlob(picture.data(), int(picture.size()));
    people.Insert(false);
    EXPECT_EQ(people[u"photo"].GetBlob(), nullptr);  // given to the provider with the write
    Fill(people, 0);
    people.Clear();
    people[u"id"] = 2;
    people.Insert(false);

    people.BlobAutoLoad(true);
    rset rows;
    ASSERT_EQ(people.RecordSet(rows, u"order by id"), 2);
    EXPECT_EQ(rows[0][u"photo"].GetBlobSize(), int(picture.size()));
    EXPECT_EQ(std::memcmp(rows[0][u"photo"].GetBlob(), picture.data(), picture.size()), 0);
    EXPECT_EQ(int(rows[1][u"id"]), 2);
    EXPECT_TRUE(rows[1][u"photo"].IsNull() || rows[1][u"photo"].GetBlobSize() == 0);
    people.BlobAutoLoad(false);
    EXPECT_EQ(people.RecordSet(rows, u"where id > 100"), 0);
}

TEST_P(Database, FailuresAndTheProcessGoesOn) {
    command &people = mDb.Table(u"people", true);
    Fill(people, 1);
    people.Clear();
    people[u"id"] = 1;
    try {
        people.Insert(false);
        FAIL() << "a key conflict must throw";
    } catch (exception const &e) {
        EXPECT_TRUE(e.mMessage == u"OLD DB Insert");
        EXPECT_EQ(e.mCode, 0);
    }
    EXPECT_FALSE(mDb.Execute(u"select * from no_such_table"));
    EXPECT_FALSE(people.Select(u"where no_such_column = 1"));
    EXPECT_EQ(people.Count(u"where no_such_column = 1"), 0);
    EXPECT_EQ(people.Count(), 1);
    command readOnly(mDb, u"people", false);
    ASSERT_TRUE(readOnly.Select());
    ASSERT_TRUE(readOnly.MoveNext());
    EXPECT_THROW(readOnly.Update(), exception);
    command freeSql(mDb, nullptr, false);
    ASSERT_TRUE(freeSql.Select(u"select id, name from people"));
    EXPECT_EQ(freeSql.Columns(), 3);
    EXPECT_TRUE(freeSql.MoveNext());
    EXPECT_EQ(int(freeSql[u"id"]), 1);
    EXPECT_FALSE(freeSql.NextResult());

    // A batch of statements gives its results one after another.
    ASSERT_TRUE(freeSql.Select(u"select id from people; select 'a;b' as text, 2 as two -- the end"));
    ASSERT_TRUE(freeSql.MoveNext());
    EXPECT_EQ(int(freeSql[u"id"]), 1);
    ASSERT_TRUE(freeSql.NextResult());
    EXPECT_EQ(freeSql.Rows(), 1);
    ASSERT_TRUE(freeSql.MoveNext());
    EXPECT_EQ(int(freeSql[u"two"]), 2);
    EXPECT_EQ(std::u16string(static_cast<char16_t const *>(freeSql[u"text"])), u"a;b");
    EXPECT_FALSE(freeSql.NextResult());
    EXPECT_EQ(freeSql.Columns(), 3);  // the column set stays, zeroed
}

TEST_P(Database, TransactionsCommitAndRollBack) {
    command &people = mDb.Table(u"people", true);
    ASSERT_TRUE(mDb.StartTransaction(ISOLATIONLEVEL_READCOMMITTED));
    Fill(people, 2);
    mDb.EndTransaction(true);
    EXPECT_EQ(people.Count(), 2);

    mDb.EndTransaction();  // outside a transaction: nothing
    ASSERT_TRUE(people.StartTransaction());
    people.Clear();
    people[u"id"] = 3;
    people.Insert(false);
    EXPECT_THROW(mDb.TransactoinError(u"step %d failed", 3), exception);
    people.EndTransaction();  // the reported error aborts
    EXPECT_EQ(people.Count(), 2);

    ASSERT_TRUE(mDb.StartTransaction());
    try {
        mDb.TransactoinError(42, u"with a code");
    } catch (exception *e) {
        EXPECT_EQ(e->mCode, 42);
        EXPECT_TRUE(e->mMessage.IsEmpty());
        delete e;
    }
    mDb.EndTransaction();
    ASSERT_TRUE(mDb.StartTransaction());  // a new transaction forgets the error
    people.Clear();
    people[u"id"] = 4;
    people.Insert(false);
    mDb.EndTransaction();
    EXPECT_EQ(people.Count(), 3);
}

// Inside a transaction a write that fails is undone alone: the rows before
// and after it are committed, on every backend.
TEST_P(Database, AFailedWriteInATransactionIsUndoneAlone) {
    command &people = mDb.Table(u"people", true);
    ASSERT_TRUE(mDb.StartTransaction());
    Fill(people, 2);
    people.Clear();
    people[u"id"] = 1;  // taken
    EXPECT_THROW(people.Insert(false), exception);
    people.Clear();
    people[u"id"] = 3;
    people.Insert(false);
    mDb.EndTransaction(true);
    EXPECT_EQ(people.Count(), 3);
}

TEST_P(Database, DroppedConnectionLeavesNothingHalfWritten) {
    if (GetParam() != "postgres") GTEST_SKIP() << "a server connection to drop";
    command &people = mDb.Table(u"people", true);
    ASSERT_TRUE(mDb.StartTransaction());
    Fill(people, 3);
    session killer;
    killer.Driver(u"PostgreSQL Unicode");
    ASSERT_TRUE(killer.Open(Text(std::getenv("QORTOOLS_TEST_PG")).c_str(), u"testdb", u"tester", u"testpw"));
    EXPECT_TRUE(killer.Execute(u"select pg_terminate_backend(pid) from pg_stat_activity "
                               u"where datname = 'testdb' and pid <> pg_backend_pid()"));
    mDb.EndTransaction(true);  // the commit fails quietly
    EXPECT_FALSE(people.Select());
    command check(killer, u"people", false);
    EXPECT_EQ(check.Count(), 0);
    EXPECT_TRUE(killer.DropTable(u"people"));
}

TEST(Session, ConnectionFailuresShowTheNotice) {
    notices seen;
    session db;
    db.Driver(u"PostgreSQL Unicode");
    EXPECT_FALSE(db.Open(u"127.0.0.1:1", u"nodb", u"nobody", u"wrong"));
    EXPECT_EQ(seen.mCount, 1);
    EXPECT_EQ(seen.mText, u"SQL Serverに接続できません。\n<サーバー=127.0.0.1:1,データベース=nodb,ユーザー=nobody>");
    EXPECT_EQ(seen.mCaption, u"SQL <基本処理 OLE DB>");
    EXPECT_EQ(seen.mType, 16u);
    EXPECT_TRUE(db.ServerName() == u"127.0.0.1:1");  // the names are stored first

    qor::tools::testing::temp_dir dir;
    dir.Write("p.ini", "[other]\nserver=x\n");
    EXPECT_FALSE(db.OpenFromProfile(dir.Wide("p.ini").c_str()));
    EXPECT_EQ(seen.mText, u"SQL接続情報が取得できません。\n<" + dir.Wide("p.ini") + u">");

    ::setenv("QORTOOLS_ODBC_DRIVER", "PostgreSQL Unicode", 1);
    try {
        session failing(u"127.0.0.1:1", u"nodb", u"nobody", u"x");
        FAIL();
    } catch (exception const &e) {
        EXPECT_TRUE(e.mMessage == u"OLD DB Session Open");
    }
    ::unsetenv("QORTOOLS_ODBC_DRIVER");
}

TEST(Session, ProfileOpensSQLiteAndBuildsTheStatements) {
    qor::tools::testing::temp_dir dir;
    dir.Write("p.ini", "; comment\n[SQL]\nServer = local\ndatabase=" + dir.Path("p.db") +
                           "\nuser=u\npassword=\ndriver=SQLite3\n");
    session db;
    ASSERT_TRUE(db.OpenFromProfile(dir.Wide("p.ini").c_str()));
    session::texts columns, keys, none;
    columns.Add(string(u"a int not null"));
    columns.Add(string(u"b text"));
    keys.Add(string(u"a"));
    EXPECT_TRUE(db.CreateTable(u"t", columns, keys));
    EXPECT_EQ(db.StatementLog().back(), u"create table t (a int not null,b text,constraint PK_t primary key (a))");
    session::texts index;
    index.Add(string(u"b"));
    EXPECT_TRUE(db.CreateIndex(u"t", u"ix", index, false));
    EXPECT_EQ(db.StatementLog().back(), u"create  index ix on t (b)");
    EXPECT_FALSE(db.CreateTable(u"t2", none, none));
    auto log = db.StatementLog();
    EXPECT_EQ(log[log.size() - 2], u"create table t2 ()");
    // The driver's words on the failure follow it in the log, and stay as the last error.
    EXPECT_EQ(log.back().find(u"-- failed: [HY000]"), 0u);
    EXPECT_NE(db.LastError().Find(u"syntax error"), -1);
    EXPECT_TRUE(db.DropTable(u"t"));
    EXPECT_EQ(db.StatementLog().back(), u"drop table t");
}

TEST(Dialect, SqlServerTextsExactly) {
    using qor::tools::platform::odbc::dialect;
    dialect sqlserver;
    EXPECT_EQ(sqlserver.SelectTop(5, u"t", sqlserver.LockHint(false), u"", false), u"select top 5 * from t with (nolock)");
    EXPECT_EQ(sqlserver.Select(u"t", sqlserver.LockHint(true), u"where id = 3", true),
              u"select * from t with (updlock,rowlock) where id = 3");
    EXPECT_EQ(sqlserver.Select(u"t", u"", u"where x", true), u"select * from t  where x");  // an empty hint
    EXPECT_EQ(sqlserver.SelectNone(u"t"), u"select top 0 * from t");
    EXPECT_EQ(sqlserver.Count(u"t", u"where a = 1", true), u"select count(*) from t with(nolock) where a = 1");
    EXPECT_EQ(sqlserver.CountColumn(u"c", u"t", false, u"", false), u"select count(all c) from t with(nolock)");
    EXPECT_EQ(sqlserver.CountColumn(u"c", u"t", true, u"where 1", true),
              u"select count(distinct c) from t with(nolock) where 1");
    EXPECT_EQ(sqlserver.PrimaryKeyClause(u"t"), u",constraint PK_t primary key clustered (");
    dialect postgres(dialect::kind::postgresql), sqlite(dialect::kind::sqlite);
    EXPECT_EQ(postgres.SelectTop(5, u"t", postgres.LockHint(false), u"order by a", true),
              u"select * from t  order by a limit 5");
    EXPECT_EQ(sqlite.CountColumn(u"c", u"t", false, u"", false), u"select count( c) from t");
    EXPECT_EQ(postgres.SelectNone(u"t"), u"select * from t limit 0");
}
