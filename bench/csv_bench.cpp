// CSV load and save in both encodings on a ~50 MB table of Japanese text,
// each against the same work written plainly (its `_Anchor`): read the file,
// split lines and cells, decode them to UTF-16 (or the reverse), with the
// standard library and iconv. Also UTF-8 <-> UTF-16 conversion. Throughput is
// in bytes of the file.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <iconv.h>

#include <clocale>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "qor/tools/file/csv.h"
#include "qor/tools/string_converter.h"

using namespace qor::tools;

namespace {

std::u16string Path(char const *name) {
    std::string p = std::string("/dev/shm/qorbench-") + std::to_string(::getpid()) + "-" + name;
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

// ---------------------------------------------------------------- the plain counterparts

using table_t = std::vector<std::vector<std::u16string>>;

std::string ReadAll(std::u16string const &path) {
    std::string p(path.begin(), path.end()), bytes;
    FILE *f = std::fopen(p.c_str(), "rb");
    std::fseek(f, 0, SEEK_END);
    bytes.resize(std::size_t(std::ftell(f)));
    std::fseek(f, 0, SEEK_SET);
    if (std::fread(bytes.data(), 1, bytes.size(), f) != bytes.size()) bytes.clear();
    std::fclose(f);
    return bytes;
}

std::u16string Decode(std::string const &bytes) {
    iconv_t cd = iconv_open("UTF-16LE", "UTF-8");
    std::u16string text(bytes.size(), u'\0');
    char *in = const_cast<char *>(bytes.data()), *out = reinterpret_cast<char *>(text.data());
    std::size_t inLeft = bytes.size(), outLeft = text.size() * 2;
    iconv(cd, &in, &inLeft, &out, &outLeft);
    iconv_close(cd);
    text.resize(text.size() - outLeft / 2);
    return text;
}

// Lines end at LF (a CR before it dropped); cells at comma or tab.
table_t Split(std::u16string const &text) {
    table_t rows;
    std::size_t at = 0;
    while (at < text.size()) {
        std::size_t end = text.find(u'\n', at);
        if (end == text.npos) end = text.size();
        std::size_t last = end > at && text[end - 1] == u'\r' ? end - 1 : end;
        auto &row = rows.emplace_back();
        std::size_t cell = at;
        for (std::size_t i = at; i < last; ++i) {
            if (text[i] == u',' || text[i] == u'\t') {
                row.emplace_back(text, cell, i - cell);
                cell = i + 1;
            }
        }
        if (cell < last) row.emplace_back(text, cell, last - cell);
        at = end + 1;
    }
    return rows;
}

// Writes cell by cell through stdio: UTF-8 from one iconv handle, CR LF.
void CsvSave_Anchor(benchmark::State &state) {
    auto path = Path("save-plain.csv");
    auto source = Path("source16.csv");
    file::csv(Table()).SaveUnicode(source.c_str());
    std::string bytes = ReadAll(source);
    std::u16string text((bytes.size() - 2) / 2, u'\0');
    std::memcpy(text.data(), bytes.data() + 2, text.size() * 2);
    table_t rows = Split(text);
    std::string p(path.begin(), path.end());
    iconv_t cd = iconv_open("UTF-8", "UTF-16LE");
    std::string cell(1024, '\0');
    for (auto _ : state) {
        FILE *f = std::fopen(p.c_str(), "wb");
        for (auto const &row : rows) {
            for (auto const &c : row) {
                char *in = reinterpret_cast<char *>(const_cast<char16_t *>(c.data())), *out = cell.data();
                std::size_t inLeft = c.size() * 2, outLeft = cell.size();
                iconv(cd, &in, &inLeft, &out, &outLeft);
                std::fwrite(cell.data(), 1, cell.size() - outLeft, f);
                std::fputc(',', f);
            }
            std::fputs("\r\n", f);
        }
        std::fclose(f);
    }
    iconv_close(cd);
    state.SetBytesProcessed(state.iterations() * FileBytes(path));
    std::remove(p.c_str());
    std::remove(std::string(source.begin(), source.end()).c_str());
}

void CsvLoad_Anchor(benchmark::State &state) {
    std::setlocale(LC_ALL, "C.UTF-8");
    auto path = Path("load-plain.csv");
    file::csv(Table()).Save(path.c_str());
    for (auto _ : state) {
        table_t rows = Split(Decode(ReadAll(path)));
        benchmark::DoNotOptimize(rows.size());
    }
    state.SetBytesProcessed(state.iterations() * FileBytes(path));
    std::remove(std::string(path.begin(), path.end()).c_str());
}

// Writes cell by cell through stdio, in UTF-16LE after a byte-order mark.
void CsvSaveUnicode_Anchor(benchmark::State &state) {
    auto path = Path("save16-plain.csv");
    auto source = Path("source16.csv");
    file::csv(Table()).SaveUnicode(source.c_str());
    std::string bytes = ReadAll(source);
    std::u16string text((bytes.size() - 2) / 2, u'\0');
    std::memcpy(text.data(), bytes.data() + 2, text.size() * 2);
    table_t rows = Split(text);
    std::string p(path.begin(), path.end());
    char16_t const bom = 0xFEFF, comma = u',', lf = u'\n';
    for (auto _ : state) {
        FILE *f = std::fopen(p.c_str(), "wb");
        std::fwrite(&bom, 2, 1, f);
        for (auto const &row : rows) {
            for (auto const &c : row) {
                std::fwrite(c.data(), 2, c.size(), f);
                std::fwrite(&comma, 2, 1, f);
            }
            std::fwrite(&lf, 2, 1, f);
        }
        std::fclose(f);
    }
    state.SetBytesProcessed(state.iterations() * FileBytes(path));
    std::remove(p.c_str());
    std::remove(std::string(source.begin(), source.end()).c_str());
}

void CsvLoadUnicode_Anchor(benchmark::State &state) {
    auto path = Path("load16-plain.csv");
    file::csv(Table()).SaveUnicode(path.c_str());
    for (auto _ : state) {
        std::string bytes = ReadAll(path);
        std::u16string text((bytes.size() - 2) / 2, u'\0');
        std::memcpy(text.data(), bytes.data() + 2, text.size() * 2);
        table_t rows = Split(text);
        benchmark::DoNotOptimize(rows.size());
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
BENCHMARK(CsvSave_Anchor)->Unit(benchmark::kMillisecond);
BENCHMARK(CsvLoad)->Unit(benchmark::kMillisecond);
BENCHMARK(CsvLoad_Anchor)->Unit(benchmark::kMillisecond);
BENCHMARK(CsvSaveUnicode)->Unit(benchmark::kMillisecond);
BENCHMARK(CsvSaveUnicode_Anchor)->Unit(benchmark::kMillisecond);
BENCHMARK(CsvLoadUnicode)->Unit(benchmark::kMillisecond);
BENCHMARK(CsvLoadUnicode_Anchor)->Unit(benchmark::kMillisecond);
BENCHMARK(Utf16ToUtf8)->Unit(benchmark::kMicrosecond);
BENCHMARK(Utf8ToUtf16)->Unit(benchmark::kMicrosecond);
