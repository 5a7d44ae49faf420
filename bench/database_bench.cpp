// RecordSet of 100,000 rows against a raw ODBC fetch of the same query, and
// inserts per second, on SQLite and (when QORTOOLS_TEST_PG names a server, as
// scripts/test-env.sh does) on PostgreSQL.
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <sql.h>
#include <sqlext.h>
#include <unistd.h>

#include <climits>
#include <clocale>
#include <cstring>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "memory_growth.h"
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
        static std::string const file = "/tmp/qorbench-" + std::to_string(::getpid()) + ".db";
        static struct remover {
            ~remover() { ::unlink(file.c_str()); }
        } const removeAtExit;
        t = {u"SQLite3", u"local", std::u16string(file.begin(), file.end()), u"u", u"",
             "Driver={SQLite3};Database=" + file + ";Timeout=5000;"};
        return true;
    }
    char const *server = std::getenv("QORTOOLS_TEST_PG");
    if (!server) return false;
    std::string s = server, host = s.substr(0, s.find(':')), port = s.substr(s.find(':') + 1);
    t = {u"PostgreSQL Unicode", std::u16string(s.begin(), s.end()), u"testdb", u"tester", u"testpw",
         "Driver={PostgreSQL Unicode};Server=" + host + ";Port=" + port +
             ";Database=testdb;Uid=tester;Pwd=testpw;UseServerSidePrepare=0;"};  // as the library connects
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

// The benchmark table, filled once a backend and run.
bool Prepare(int which, target &t) {
    static bool filled[2] = {false, false};
    std::setlocale(LC_ALL, "C.UTF-8");
    if (!Target(which, t)) return false;
    if (filled[which]) return true;
    session db;
    if (!Open(db, t)) return false;
    Fill(db);
    filled[which] = true;
    return true;
}

// Both record set benchmarks run on a heap that glibc neither trims nor maps
// large blocks for: freed memory stays for the next round. With glibc's
// defaults, whether a freed block of 10-40 MB goes back to the system (and is
// faulted in again, page by page, at several microseconds a fault on this VM)
// depends on the order of frees in the whole process, and either side moved
// by up to 3x between runs, which measured the heap's history rather than the
// fetch. The memory benchmark goes back to fixed default thresholds.
void SteadyHeap() {
    ::mallopt(M_MMAP_MAX, 0);
    ::mallopt(M_TRIM_THRESHOLD, INT_MAX);
}

void DefaultHeap() {
    ::mallopt(M_MMAP_MAX, 65536);
    ::mallopt(M_MMAP_THRESHOLD, 128 * 1024);
    ::mallopt(M_TRIM_THRESHOLD, 128 * 1024);
}

void RecordSet(benchmark::State &state) {
    SteadyHeap();
    target t;
    session db;
    if (!Prepare(int(state.range(0)), t) || !Open(db, t)) return state.SkipWithError("no database");
    command all(db, u"bench", false);
    for (auto _ : state) {
        rset rows;
        if (all.RecordSet(rows, u"order by id") != kRows) return state.SkipWithError("short result");
    }
    state.SetItemsProcessed(state.iterations() * kRows);
}

// The anchor: the same query fetched straight from the driver in blocks of
// rows into bound row arrays, every row kept in a vector of such rows.
struct raw_row {
    SQLINTEGER mId;
    SQLLEN mIdLength;
    SQLWCHAR mName[41];
    SQLLEN mNameLength;
    double mScore;
    SQLLEN mScoreLength;
};

class raw_connection {
public:
    explicit raw_connection(target const &t) {
        SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &mEnv);
        SQLSetEnvAttr(mEnv, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
        SQLAllocHandle(SQL_HANDLE_DBC, mEnv, &mDbc);
        mOpen = SQL_SUCCEEDED(SQLDriverConnect(mDbc, nullptr, (SQLCHAR *)t.mConnect.c_str(), SQL_NTS, nullptr, 0,
                                               nullptr, SQL_DRIVER_NOPROMPT));
    }
    ~raw_connection() {
        if (mOpen) SQLDisconnect(mDbc);
        SQLFreeHandle(SQL_HANDLE_DBC, mDbc);
        SQLFreeHandle(SQL_HANDLE_ENV, mEnv);
    }
    bool IsOpen() const { return mOpen; }

    // `rows` rows inserted one statement each, in one transaction, through a
    // statement prepared once with its parameters bound once.
    void Insert(int &id, int rows) const {
        SQLINTEGER key = 0;
        SQLWCHAR name[8];
        std::memcpy(name, u"東京都千代田区", sizeof name);
        SQLLEN nameLength = sizeof name;
        double score = 0;
        SQLHSTMT stmt;
        SQLSetConnectAttr(mDbc, SQL_ATTR_AUTOCOMMIT, reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_OFF), 0);
        SQLAllocHandle(SQL_HANDLE_STMT, mDbc, &stmt);
        SQLPrepare(stmt, (SQLCHAR *)"insert into bench (id, name, score) values (?, ?, ?)", SQL_NTS);
        SQLBindParameter(stmt, 1, SQL_PARAM_INPUT, SQL_C_SLONG, SQL_INTEGER, 0, 0, &key, 0, nullptr);
        SQLBindParameter(stmt, 2, SQL_PARAM_INPUT, SQL_C_WCHAR, SQL_WVARCHAR, 40, 0, name, sizeof name, &nameLength);
        SQLBindParameter(stmt, 3, SQL_PARAM_INPUT, SQL_C_DOUBLE, SQL_DOUBLE, 0, 0, &score, 0, nullptr);
        for (int i = 0; i < rows; ++i) {
            key = ++id;
            score = i * 0.5;
            SQLExecute(stmt);
        }
        SQLFreeHandle(SQL_HANDLE_STMT, stmt);
        SQLEndTran(SQL_HANDLE_DBC, mDbc, SQL_COMMIT);
        SQLSetConnectAttr(mDbc, SQL_ATTR_AUTOCOMMIT, reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_ON), 0);
    }

    std::vector<raw_row> Fetch() const {
        constexpr SQLULEN kBlock = 1024;
        std::vector<raw_row> rows, block(kBlock);
        SQLULEN fetched = 0;
        SQLHSTMT stmt;
        SQLAllocHandle(SQL_HANDLE_STMT, mDbc, &stmt);
        SQLSetStmtAttr(stmt, SQL_ATTR_ROW_BIND_TYPE, reinterpret_cast<SQLPOINTER>(sizeof(raw_row)), 0);
        SQLSetStmtAttr(stmt, SQL_ATTR_ROW_ARRAY_SIZE, reinterpret_cast<SQLPOINTER>(kBlock), 0);
        SQLSetStmtAttr(stmt, SQL_ATTR_ROWS_FETCHED_PTR, &fetched, 0);
        SQLExecDirect(stmt, (SQLCHAR *)"select * from bench order by id", SQL_NTS);
        raw_row &first = block[0];
        SQLBindCol(stmt, 1, SQL_C_SLONG, &first.mId, 0, &first.mIdLength);
        SQLBindCol(stmt, 2, SQL_C_WCHAR, first.mName, sizeof first.mName, &first.mNameLength);
        SQLBindCol(stmt, 3, SQL_C_DOUBLE, &first.mScore, 0, &first.mScoreLength);
        while (SQL_SUCCEEDED(SQLFetch(stmt))) rows.insert(rows.end(), block.begin(), block.begin() + long(fetched));
        SQLFreeHandle(SQL_HANDLE_STMT, stmt);
        return rows;
    }

private:
    SQLHENV mEnv = nullptr;
    SQLHDBC mDbc = nullptr;
    bool mOpen = false;
};

void RecordSet_Anchor(benchmark::State &state) {
    SteadyHeap();
    target t;
    if (!Prepare(int(state.range(0)), t)) return state.SkipWithError("no database");
    raw_connection raw(t);
    if (!raw.IsOpen()) return state.SkipWithError("no database");
    for (auto _ : state) {
        if (raw.Fetch().size() != kRows) return state.SkipWithError("short result");
    }
    state.SetItemsProcessed(state.iterations() * kRows);
}

// The anchor of Inserts: the same rows through the driver directly.
void Inserts_Anchor(benchmark::State &state) {
    std::setlocale(LC_ALL, "C.UTF-8");
    target t;
    session db;
    if (!Target(int(state.range(0)), t) || !Open(db, t)) return state.SkipWithError("no database");
    raw_connection raw(t);
    if (!raw.IsOpen()) return state.SkipWithError("no database");
    int id = 0;
    for (auto _ : state) {
        state.PauseTiming();
        Create(db);
        state.ResumeTiming();
        raw.Insert(id, 10000);
    }
    state.SetItemsProcessed(state.iterations() * 10000);
    db.DropTable(u"bench");
}

// Memory of a record set of 100,000 rows over that of the raw fetch keeping its rows.
void RecordSetMemory(benchmark::State &state) {
    DefaultHeap();
    target t;
    if (!Prepare(int(state.range(0)), t)) return state.SkipWithError("no database");
    double ours = 0, raw = 0;
    for (auto _ : state) {
        ours = GrowthMegabytes(
            [&] {
                auto db = std::make_unique<session>();
                Open(*db, t);
                command(*db, u"bench", false).Count();  // the first statement's costs are not the rows'
                return db;
            },
            [](session &db) {
                rset rows;
                command(db, u"bench", false).RecordSet(rows, u"order by id");
            });
        raw = GrowthMegabytes([&] { return std::make_unique<raw_connection>(t); },
                              [](raw_connection &c) { c.Fetch(); });
    }
    state.counters["recordset_MB"] = ours;
    state.counters["raw_MB"] = raw;
    state.counters["memory_ratio"] = raw > 0 ? ours / raw : 0;
}

}  // namespace

// Argument 0: SQLite; 1: PostgreSQL.
BENCHMARK(Inserts)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();
BENCHMARK(Inserts_Anchor)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();
BENCHMARK(RecordSet)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(RecordSet_Anchor)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(RecordSetMemory)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(1);
