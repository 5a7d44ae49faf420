// RecordSet of 100,000 rows against a raw ODBC fetch of the same query, and
// inserts per second, on SQLite and (when QORTOOLS_TEST_PG names a server, as
// scripts/test-env.sh does) on PostgreSQL.
#include <benchmark/benchmark.h>
#include <sql.h>
#include <sqlext.h>
#include <unistd.h>

#include <clocale>
#include <cstdlib>
#include <string>

#include "qor/tools/database/command.h"

using namespace qor::tools;
using namespace qor::tools::database;

namespace {

constexpr int kRows = 100000;

struct target {
    std::u16string mDriver, mServer, mDatabase, mUser, mPassword;
    std::string mConnect;
};

bool Target(int which, target &t) {
    if (which == 0) {
        std::string file = "/tmp/qorbench-" + std::to_string(::getpid()) + ".db";
        t = {u"SQLite3", u"local", std::u16string(file.begin(), file.end()), u"u", u"",
             "Driver={SQLite3};Database=" + file + ";Timeout=5000;"};
        return true;
    }
    char const *server = std::getenv("QORTOOLS_TEST_PG");
    if (!server) return false;
    std::string s = server, host = s.substr(0, s.find(':')), port = s.substr(s.find(':') + 1);
    t = {u"PostgreSQL Unicode", std::u16string(s.begin(), s.end()), u"testdb", u"tester", u"testpw",
         "Driver={PostgreSQL Unicode};Server=" + host + ";Port=" + port + ";Database=testdb;Uid=tester;Pwd=testpw;"};
    return true;
}

bool Open(session &db, target const &t) {
    db.Driver(t.mDriver.c_str());
    return db.Open(t.mServer.c_str(), t.mDatabase.c_str(), t.mUser.c_str(), t.mPassword.c_str());
}

void Create(session &db) {
    db.DropTable(u"bench");
    session::texts columns, keys;
    columns.Add(string(u"id integer not null"));
    columns.Add(string(u"name varchar(40)"));
    columns.Add(string(u"score float"));
    keys.Add(string(u"id"));
    db.CreateTable(u"bench", columns, keys);
}

void Inserts(benchmark::State &state) {
    std::setlocale(LC_ALL, "C.UTF-8");
    target t;
    session db;
    if (!Target(int(state.range(0)), t) || !Open(db, t)) return state.SkipWithError("no database");
    int id = 0;
    for (auto _ : state) {
        state.PauseTiming();
        Create(db);
        command people(db, u"bench", true);
        state.ResumeTiming();
        db.StartTransaction();
        for (int i = 0; i < 10000; ++i) {
            people.Clear();
            people[u"id"] = ++id;
            people[u"name"] = u"東京都千代田区";
            people[u"score"] = i * 0.5;
            people.Insert(false);
        }
        db.EndTransaction(true);
    }
    state.SetItemsProcessed(state.iterations() * 10000);
    db.DropTable(u"bench");
}

void Fill(session &db) {
    Create(db);
    db.StartTransaction();
    command rows(db, u"bench", true);
    for (int i = 0; i < kRows; ++i) {
        rows.Clear();
        rows[u"id"] = i;
        rows[u"name"] = u"東京都千代田区丸の内";
        rows[u"score"] = i * 0.25;
        rows.Insert(false);
    }
    db.EndTransaction(true);
}

void RecordSet(benchmark::State &state) {
    std::setlocale(LC_ALL, "C.UTF-8");
    target t;
    session db;
    if (!Target(int(state.range(0)), t) || !Open(db, t)) return state.SkipWithError("no database");
    Fill(db);
    command all(db, u"bench", false);
    for (auto _ : state) {
        rset rows;
        if (all.RecordSet(rows, u"order by id") != kRows) return state.SkipWithError("short result");
    }
    state.SetItemsProcessed(state.iterations() * kRows);
}

void RawOdbcFetch(benchmark::State &state) {
    target t;
    if (!Target(int(state.range(0)), t)) return state.SkipWithError("no database");
    {
        session db;
        if (!Open(db, t)) return state.SkipWithError("no database");
        Fill(db);
    }
    SQLHENV env;
    SQLHDBC dbc;
    SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &env);
    SQLSetEnvAttr(env, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
    SQLAllocHandle(SQL_HANDLE_DBC, env, &dbc);
    SQLDriverConnect(dbc, nullptr, (SQLCHAR *)t.mConnect.c_str(), SQL_NTS, nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT);
    for (auto _ : state) {
        SQLHSTMT stmt;
        SQLAllocHandle(SQL_HANDLE_STMT, dbc, &stmt);
        SQLExecDirect(stmt, (SQLCHAR *)"select * from bench order by id", SQL_NTS);
        SQLINTEGER id;
        SQLWCHAR name[41];
        double score;
        SQLLEN a, b, c;
        SQLBindCol(stmt, 1, SQL_C_SLONG, &id, 0, &a);
        SQLBindCol(stmt, 2, SQL_C_WCHAR, name, sizeof name, &b);
        SQLBindCol(stmt, 3, SQL_C_DOUBLE, &score, 0, &c);
        int n = 0;
        while (SQL_SUCCEEDED(SQLFetch(stmt))) ++n;
        SQLFreeHandle(SQL_HANDLE_STMT, stmt);
        if (n != kRows) return state.SkipWithError("short result");
    }
    SQLDisconnect(dbc);
    SQLFreeHandle(SQL_HANDLE_DBC, dbc);
    SQLFreeHandle(SQL_HANDLE_ENV, env);
    state.SetItemsProcessed(state.iterations() * kRows);
}

}  // namespace

// Argument 0: SQLite; 1: PostgreSQL.
BENCHMARK(Inserts)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(RecordSet)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(RawOdbcFetch)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(3);
