// CSV load and save in both encodings on a ~50 MB table of Japanese text, and
// UTF-8 <-> UTF-16 conversion. Throughput is in bytes of the file.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <clocale>
#include <cstdio>
#include <string>

#include "qor/tools/file/csv.h"
#include "qor/tools/string_converter.h"

using namespace qor::tools;

namespace {

std::u16string Path(char const *name) {
    std::string p = std::string("/tmp/qorbench-") + std::to_string(::getpid()) + "-" + name;
    return std::u16string(p.begin(), p.end());
}

long long FileBytes(std::u16string const &path) {
    std::string p(path.begin(), path.end());
    FILE *f = std::fopen(p.c_str(), "rb");
    if (!f) return 0;
    std::fseek(f, 0, SEEK_END);
    long long n = std::ftell(f);
    std::fclose(f);
    return n;
}

// About 50 MB as UTF-8: 200,000 rows of 8 cells of mixed Japanese and numbers.
file::csv const &Table() {
    static file::csv table = [] {
        file::csv t;
        t.Rows(200000);
        for (int r = 0; r < t.Rows(); ++r) {
            auto &row = t[r];
            row.Size(8);
            for (int c = 0; c < 8; ++c) {
                row[c] = string::Formatter(c % 2 ? u"%d.%02d" : u"東京都千代田区丸の内%d丁目ﾃｽﾄ", r * 8 + c, c);
            }
        }
        return t;
    }();
    return table;
}

void CsvSave(benchmark::State &state) {
    std::setlocale(LC_ALL, "C.UTF-8");
    auto path = Path("save.csv");
    file::csv table = Table();
    for (auto _ : state) table.Save(path.c_str());
    state.SetBytesProcessed(state.iterations() * FileBytes(path));
    std::remove(std::string(path.begin(), path.end()).c_str());
}

void CsvLoad(benchmark::State &state) {
    std::setlocale(LC_ALL, "C.UTF-8");
    auto path = Path("load.csv");
    file::csv(Table()).Save(path.c_str());
    for (auto _ : state) {
        file::csv table;
        table.Load(path.c_str());
        benchmark::DoNotOptimize(table.Rows());
    }
    state.SetBytesProcessed(state.iterations() * FileBytes(path));
    std::remove(std::string(path.begin(), path.end()).c_str());
}

void CsvSaveUnicode(benchmark::State &state) {
    auto path = Path("save16.csv");
    file::csv table = Table();
    for (auto _ : state) table.SaveUnicode(path.c_str());
    state.SetBytesProcessed(state.iterations() * FileBytes(path));
    std::remove(std::string(path.begin(), path.end()).c_str());
}

void CsvLoadUnicode(benchmark::State &state) {
    auto path = Path("load16.csv");
    file::csv(Table()).SaveUnicode(path.c_str());
    for (auto _ : state) {
        file::csv table;
        table.LoadUnicode(path.c_str());
        benchmark::DoNotOptimize(table.Rows());
    }
    state.SetBytesProcessed(state.iterations() * FileBytes(path));
    std::remove(std::string(path.begin(), path.end()).c_str());
}

std::u16string JapaneseText() {
    std::u16string s;
    while (s.size() < 1 << 20) s += u"日本語のテキストと ASCII text が混在する行です。";
    return s;
}

void Utf16ToUtf8(benchmark::State &state) {
    std::u16string text = JapaneseText();
    string::converter c;
    for (auto _ : state) benchmark::DoNotOptimize(c.Utf8(text.c_str()));
    state.SetBytesProcessed(state.iterations() * long(text.size() * 2));
}

void Utf8ToUtf16(benchmark::State &state) {
    std::u16string text = JapaneseText();
    string::converter c;
    std::string utf8 = c.Utf8(text.c_str());
    for (auto _ : state) benchmark::DoNotOptimize(c.Utf8(utf8.c_str()));
    state.SetBytesProcessed(state.iterations() * long(utf8.size()));
}

}  // namespace

BENCHMARK(CsvSave)->Unit(benchmark::kMillisecond);
BENCHMARK(CsvLoad)->Unit(benchmark::kMillisecond);
BENCHMARK(CsvSaveUnicode)->Unit(benchmark::kMillisecond);
BENCHMARK(CsvLoadUnicode)->Unit(benchmark::kMillisecond);
BENCHMARK(Utf16ToUtf8)->Unit(benchmark::kMicrosecond);
BENCHMARK(Utf8ToUtf16)->Unit(benchmark::kMicrosecond);
