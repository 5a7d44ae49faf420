// The registry store: 100,000 SetInteger and GetInteger calls of the static
// form on one key (each opens the key, acts in one transaction and closes
// it), against SQLite used bare for the same rows (a prepared upsert or
// select, one transaction a call).
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "qor/tools/system/registry.h"

using namespace qor::tools;

namespace {

constexpr int kCalls = 100000;

std::string const &Folder() {
    static std::string folder = [] {
        char pattern[] = "/tmp/qor-registry-bench-XXXXXX";
        std::string made = ::mkdtemp(pattern);
        ::setenv("QORTOOLS_REGISTRY_DIR", made.c_str(), 1);
        std::atexit([] { std::filesystem::remove_all(Folder()); });
        return made;
    }();
    return folder;
}

std::vector<std::u16string> const &Names() {
    static std::vector<std::u16string> names = [] {
        std::vector<std::u16string> made;
        for (int i = 0; i < 1000; ++i) {
            std::string n = "value" + std::to_string(i);
            made.emplace_back(n.begin(), n.end());
        }
        return made;
    }();
    return names;
}

void SetInteger(benchmark::State &state) {
    Folder();
    for (auto _ : state) {
        for (int i = 0; i < kCalls; ++i) {
            system::registry::SetInteger(HKEY_CURRENT_USER, u"Software\\Bench", Names()[i % 1000].c_str(), i);
        }
    }
    state.SetItemsProcessed(state.iterations() * kCalls);
}

void GetInteger(benchmark::State &state) {
    Folder();
    system::registry::SetInteger(HKEY_CURRENT_USER, u"Software\\Bench", Names()[0].c_str(), 1);
    for (auto _ : state) {
        long long sum = 0;
        for (int i = 0; i < kCalls; ++i) {
            sum += system::registry::GetInteger(HKEY_CURRENT_USER, u"Software\\Bench", Names()[i % 1000].c_str(), 0);
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * kCalls);
}

// The same file settings and rows, SQLite alone.
struct bare {
    bare() {
        std::string path = Folder() + "/bare.db";
        sqlite3_open(path.c_str(), &mDb);
        sqlite3_exec(mDb,
                     "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL;"
                     "CREATE TABLE IF NOT EXISTS vals(key INTEGER, name TEXT, type INTEGER, data BLOB, UNIQUE(key, name));",
                     nullptr, nullptr, nullptr);
    }
    ~bare() { sqlite3_close(mDb); }
    sqlite3 *mDb = nullptr;
};

void SetInteger_Anchor(benchmark::State &state) {
    bare db;
    sqlite3_stmt *upsert = nullptr;
    sqlite3_prepare_v2(db.mDb,
                       "INSERT INTO vals VALUES (1, ?, 4, ?) ON CONFLICT(key, name) DO UPDATE SET data = excluded.data",
                       -1, &upsert, nullptr);
    std::vector<std::string> names;
    for (int i = 0; i < 1000; ++i) names.push_back("value" + std::to_string(i));
    for (auto _ : state) {
        for (int i = 0; i < kCalls; ++i) {
            std::int32_t value = i;
            sqlite3_bind_text(upsert, 1, names[i % 1000].c_str(), -1, SQLITE_STATIC);
            sqlite3_bind_blob(upsert, 2, &value, 4, SQLITE_TRANSIENT);
            sqlite3_step(upsert);
            sqlite3_reset(upsert);
        }
    }
    sqlite3_finalize(upsert);
    state.SetItemsProcessed(state.iterations() * kCalls);
}

void GetInteger_Anchor(benchmark::State &state) {
    bare db;
    sqlite3_exec(db.mDb, "INSERT OR IGNORE INTO vals VALUES (1, 'value0', 4, x'01000000')", nullptr, nullptr, nullptr);
    sqlite3_stmt *select = nullptr;
    sqlite3_prepare_v2(db.mDb, "SELECT type, data FROM vals WHERE key = 1 AND name = ?", -1, &select, nullptr);
    std::vector<std::string> names;
    for (int i = 0; i < 1000; ++i) names.push_back("value" + std::to_string(i));
    for (auto _ : state) {
        long long sum = 0;
        for (int i = 0; i < kCalls; ++i) {
            sqlite3_bind_text(select, 1, names[i % 1000].c_str(), -1, SQLITE_STATIC);
            if (sqlite3_step(select) == SQLITE_ROW && sqlite3_column_bytes(select, 1) == 4) {
                std::int32_t value;
                std::memcpy(&value, sqlite3_column_blob(select, 1), 4);
                sum += value;
            }
            sqlite3_reset(select);
        }
        benchmark::DoNotOptimize(sum);
    }
    sqlite3_finalize(select);
    state.SetItemsProcessed(state.iterations() * kCalls);
}

}  // namespace

BENCHMARK(SetInteger)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(SetInteger_Anchor)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(GetInteger)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(GetInteger_Anchor)->Unit(benchmark::kMillisecond)->Iterations(1);
