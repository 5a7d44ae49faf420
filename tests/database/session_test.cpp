// The session against real databases (SQLite files, and the PostgreSQL server
// that scripts/test.sh starts on loopback, QORTOOLS_TEST_PG): connection values
// taken as values, scripts, 64-bit results, and the driver's diagnostics.
#include "qor/tools/database/session.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "qor/tools/database/command.h"
#include "qor/tools/platform/notice.h"
#include "support/temp_dir.h"

using namespace qor::tools;
using namespace qor::tools::database;

namespace {

std::u16string Text(char const *s) { return std::u16string(s, s + std::strlen(s)); }

// Notices of a failed connection are kept quiet here.
struct quiet {
    quiet() { mOld = SetNoticeHook([](char16_t const *, char16_t const *, unsigned) { return IDOK; }); }
    ~quiet() { SetNoticeHook(mOld); }
    notice_hook mOld;
};

class Session : public ::testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        std::setlocale(LC_ALL, "C.UTF-8");
        if (GetParam() == "postgres") {
            char const *server = std::getenv("QORTOOLS_TEST_PG");
            if (!server) GTEST_SKIP() << "no PostgreSQL server (scripts/test.sh starts one as root)";
            mServer = Text(server);
            mDb.Driver(u"PostgreSQL Unicode");
            ASSERT_TRUE(mDb.Open(mServer.c_str(), u"testdb", u"tester", u"testpw"));
        } else {
            mDb.Driver(u"SQLite3");
            ASSERT_TRUE(mDb.Open(u"embedded", mDir.Wide("test.db").c_str(), u"tester", u""));
        }
    }
    bool IsPostgres() const { return GetParam() == "postgres"; }
    qor::tools::testing::temp_dir mDir;
    session mDb;
    std::u16string mServer;
    quiet mQuiet;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Backends, Session, ::testing::Values("sqlite", "postgres"));

// ---------------------------------------------------------------- values, not syntax

TEST_P(Session, ConnectionValuesAreTakenAsValues) {
    std::u16string odd = u"odd;db{}= 日本";
    session db;
    if (IsPostgres()) {
        // The role and database with these names are made by scripts/test-env.sh.
        db.Driver(u"PostgreSQL Unicode");
        ASSERT_TRUE(db.Open(mServer.c_str(), odd.c_str(), u"odd;user{}= 日本", u"pa}ss;w{= 日本"));
        EXPECT_TRUE(db.Execute(u"create table here (a integer)"));
        EXPECT_TRUE(db.Execute(u"drop table here"));
        session wrong;
        wrong.Driver(u"PostgreSQL Unicode");
        EXPECT_FALSE(wrong.Open(mServer.c_str(), odd.c_str(), u"odd;user{}= 日本", u"pa}ss;w{="));
        EXPECT_NE(wrong.LastError().Find(u"password authentication failed"), -1);
        return;
    }
    // The SQLite file of exactly this name, not "music" or an empty other one.
    std::u16string file = mDir.Wide("music;2024 {a}=b 日本.db");
    db.Driver(u"SQLite3");
    ASSERT_TRUE(db.Open(u"a;b", file.c_str(), u"u;{}=", u"p}w;"));
    EXPECT_TRUE(db.Execute(u"create table here (a integer)"));
    EXPECT_TRUE(std::filesystem::exists(mDir.Path("music;2024 {a}=b 日本.db")));
    EXPECT_FALSE(std::filesystem::exists(mDir.Path("music")));
    session again;
    again.Driver(u"SQLite3");
    ASSERT_TRUE(again.Open(u"x", file.c_str(), u"y", nullptr));
    command here(again, u"here", false);
    EXPECT_TRUE(here.Select());  // the table made above is in this very file
}

// ---------------------------------------------------------------- scripts

TEST_P(Session, ExecuteRunsAWholeScriptOrNoneOfIt) {
    mDb.DropTable(u"s1");
    mDb.DropTable(u"s2");
    ASSERT_TRUE(mDb.Execute(u"create table s1 (a integer); create table s2 (a integer, b integer);\n"
                            u"insert into s1 values (1); insert into s1 values (2) -- a comment; not a statement"));
    command s1(mDb, u"s1", false);
    EXPECT_EQ(s1.Count(), 2);
    if (!IsPostgres()) {
        // A trigger body holds statements of its own: it is one statement.
        ASSERT_TRUE(mDb.Execute(u"create trigger copy after insert on s1 begin\n"
                                u"  insert into s2 values (new.a, 0);\n"
                                u"  update s2 set b = case when b = 0 then 1 else 2 end where a = new.a;\n"
                                u"end; insert into s1 values (3);"));
        command s2(mDb, u"s2", false);
        EXPECT_EQ(s2.Count(u"where a = 3 and b = 1"), 1);
    }
    // A script that fails part way leaves nothing of itself.
    EXPECT_FALSE(mDb.Execute(u"insert into s1 values (10); insert into no_such_table values (1);"));
    EXPECT_NE(mDb.LastError().Find(u"no_such_table"), -1);
    EXPECT_EQ(s1.Count(u"where a = 10"), 0);
    EXPECT_TRUE(mDb.LastError().IsEmpty());  // the diagnostics are those of the last statement
    ASSERT_TRUE(mDb.StartTransaction());
    EXPECT_FALSE(mDb.Execute(u"insert into s1 values (11); insert into no_such_table values (1);"));
    mDb.EndTransaction(!IsPostgres());  // PostgreSQL has abandoned the transaction: it must roll back
    EXPECT_EQ(s1.Count(u"where a = 11"), 0);
    mDb.DropTable(u"s1");
    mDb.DropTable(u"s2");
}

// ---------------------------------------------------------------- the same numbers on every backend

TEST_P(Session, AggregatesReadTheSameEverywhere) {
    mDb.DropTable(u"n");
    ASSERT_TRUE(mDb.Execute(u"create table n (v bigint, w integer)"));
    ASSERT_TRUE(mDb.Execute(u"insert into n values (5000000000, 1); insert into n values (2, 2); "
                            u"insert into n values (3, 3)"));
    command totals(mDb, nullptr, false);
    ASSERT_TRUE(totals.Select(u"select count(*) as c, sum(w) as s, max(v) as m, sum(v) as t from n"));
    ASSERT_TRUE(totals.MoveNext());
    EXPECT_EQ(int(totals[u"c"]), 3);
    EXPECT_EQ(int(totals[u"s"]), 6);
    EXPECT_DOUBLE_EQ(double(totals[u"m"]), 5000000000.0);
    EXPECT_DOUBLE_EQ(double(totals[u"t"]), 5000000005.0);
    EXPECT_STREQ(static_cast<char const *>(totals[u"t"]), "5000000005");
    command table(mDb, u"n", true);
    EXPECT_EQ(table.Count(), 3);
    ASSERT_TRUE(table.Select(u"where w = 1"));
    ASSERT_TRUE(table.MoveNext());
    EXPECT_STREQ(static_cast<char const *>(table[u"v"]), "5000000000");
    table[u"v"] = 6000000000.0;  // a number past 32 bits, written back as its text
    table.Update();
    EXPECT_EQ(table.Count(u"where v = 6000000000"), 1);
    mDb.DropTable(u"n");
}

// ---------------------------------------------------------------- the driver's words

TEST_P(Session, FailuresKeepTheDriversDiagnostics) {
    EXPECT_FALSE(mDb.Execute(u"select * from no_such_table_here"));
    string error = mDb.LastError();
    EXPECT_NE(error.Find(u"no_such_table_here"), -1);
    EXPECT_EQ(error[0], u'[');  // "[state] native: message"
    auto log = mDb.StatementLog();
    ASSERT_GE(log.size(), 2u);
    EXPECT_EQ(log[log.size() - 2], u"select * from no_such_table_here");
    EXPECT_EQ(log.back().find(u"-- failed: ["), 0u);
    EXPECT_TRUE(mDb.Execute(u"select 1"));
    EXPECT_TRUE(mDb.LastError().IsEmpty());  // a success clears it
    session nowhere;
    nowhere.Driver(IsPostgres() ? u"PostgreSQL Unicode" : u"No Such Driver");
    EXPECT_FALSE(nowhere.Open(u"127.0.0.1:1", u"db", u"u", u"p"));
    EXPECT_FALSE(nowhere.LastError().IsEmpty());
}
