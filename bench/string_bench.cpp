// qor::tools::string against std::u16string (each `X_Anchor` is the anchor of
// `X`): copying, appending short pieces, searching forwards and backwards in
// texts of 16 to 100,000 units, and replacing 100 matches.
#include <benchmark/benchmark.h>

#include <string>

#include "qor/tools/string.h"

using qor::tools::string;

namespace {

std::u16string Sample(int n) {
    std::u16string s;
    for (int i = 0; i < n; ++i) s += u"lorem ipsum 日本語 ";
    return s;
}

// A text of `units` units with the needle at its end (or its start, for the
// backward search), so that the whole text is searched.
std::u16string Haystack(int units, bool needleFirst) {
    std::u16string filler;
    while (int(filler.size()) < units - 6) filler += u"lorem ipsum 日本語 n";
    filler.resize(std::size_t(units > 6 ? units - 6 : 0));
    return needleFirst ? u"needle" + filler : filler + u"needle";
}

void Copy(benchmark::State &state) {
    string s(Sample(int(state.range(0))).c_str());
    for (auto _ : state) {
        string copy(s);
        benchmark::DoNotOptimize(copy.Area());
    }
}
void Copy_Anchor(benchmark::State &state) {
    std::u16string s(Sample(int(state.range(0))));
    for (auto _ : state) {
        std::u16string copy(s);
        benchmark::DoNotOptimize(copy.data());
    }
}

void AddShort(benchmark::State &state) {
    for (auto _ : state) {
        string s;
        for (int i = 0; i < state.range(0); ++i) s += u"ab";
        benchmark::DoNotOptimize(s.Area());
    }
}
void AddShort_Anchor(benchmark::State &state) {
    for (auto _ : state) {
        std::u16string s;
        for (int i = 0; i < state.range(0); ++i) s += u"ab";
        benchmark::DoNotOptimize(s.data());
    }
}

void Find(benchmark::State &state) {
    string s(Haystack(int(state.range(0)), false).c_str());
    for (auto _ : state) benchmark::DoNotOptimize(s.Find(u"needle"));
}
void Find_Anchor(benchmark::State &state) {
    std::u16string s(Haystack(int(state.range(0)), false));
    for (auto _ : state) benchmark::DoNotOptimize(s.find(u"needle"));
}

void FindReverse(benchmark::State &state) {
    string s(Haystack(int(state.range(0)), true).c_str());
    for (auto _ : state) benchmark::DoNotOptimize(s.FindReverse(u"needle"));
}
void FindReverse_Anchor(benchmark::State &state) {
    std::u16string s(Haystack(int(state.range(0)), true));
    for (auto _ : state) benchmark::DoNotOptimize(s.rfind(u"needle"));
}

void Replace(benchmark::State &state) {
    string source(Sample(int(state.range(0))).c_str());
    for (auto _ : state) {
        string s(source);
        s.Replace(u"ipsum", u"dolor sit");
        benchmark::DoNotOptimize(s.Area());
    }
}
// A find-and-append loop: one pass to find, one to build.
void Replace_Anchor(benchmark::State &state) {
    std::u16string source(Sample(int(state.range(0))));
    std::u16string_view from(u"ipsum"), to(u"dolor sit");
    for (auto _ : state) {
        std::u16string s;
        std::size_t done = 0;
        for (std::size_t p = source.find(from); p != source.npos; p = source.find(from, done)) {
            s.append(source, done, p - done).append(to);
            done = p + from.size();
        }
        s.append(source, done);
        benchmark::DoNotOptimize(s.data());
    }
}

}  // namespace

BENCHMARK(Copy)->Arg(1)->Arg(100);
BENCHMARK(Copy_Anchor)->Arg(1)->Arg(100);
BENCHMARK(AddShort)->Arg(10)->Arg(1000);
BENCHMARK(AddShort_Anchor)->Arg(10)->Arg(1000);
BENCHMARK(Find)->Arg(16)->Arg(100)->Arg(1000)->Arg(100000);
BENCHMARK(Find_Anchor)->Arg(16)->Arg(100)->Arg(1000)->Arg(100000);
BENCHMARK(FindReverse)->Arg(16)->Arg(100)->Arg(1000)->Arg(100000);
BENCHMARK(FindReverse_Anchor)->Arg(16)->Arg(100)->Arg(1000)->Arg(100000);
BENCHMARK(Replace)->Arg(100);
BENCHMARK(Replace_Anchor)->Arg(100);
