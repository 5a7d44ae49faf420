// qor::tools::string against std::u16string: copy, appending short pieces,
// search and replace.
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

void QorCopy(benchmark::State &state) {
    string s(Sample(int(state.range(0))).c_str());
    for (auto _ : state) {
        string copy(s);
        benchmark::DoNotOptimize(copy.Area());
    }
}
void StdCopy(benchmark::State &state) {
    std::u16string s(Sample(int(state.range(0))));
    for (auto _ : state) {
        std::u16string copy(s);
        benchmark::DoNotOptimize(copy.data());
    }
}

void QorAddShort(benchmark::State &state) {
    for (auto _ : state) {
        string s;
        for (int i = 0; i < state.range(0); ++i) s += u"ab";
        benchmark::DoNotOptimize(s.Area());
    }
}
void StdAddShort(benchmark::State &state) {
    for (auto _ : state) {
        std::u16string s;
        for (int i = 0; i < state.range(0); ++i) s += u"ab";
        benchmark::DoNotOptimize(s.data());
    }
}

void QorFind(benchmark::State &state) {
    string s((Sample(int(state.range(0))) + u"needle").c_str());
    for (auto _ : state) benchmark::DoNotOptimize(s.Find(u"needle"));
}
void StdFind(benchmark::State &state) {
    std::u16string s(Sample(int(state.range(0))) + u"needle");
    for (auto _ : state) benchmark::DoNotOptimize(s.find(u"needle"));
}

void QorReplace(benchmark::State &state) {
    string source(Sample(int(state.range(0))).c_str());
    for (auto _ : state) {
        string s(source);
        s.Replace(u"ipsum", u"dolor sit");
        benchmark::DoNotOptimize(s.Area());
    }
}
void StdReplace(benchmark::State &state) {
    std::u16string source(Sample(int(state.range(0))));
    for (auto _ : state) {
        std::u16string s(source);
        for (std::size_t p = s.find(u"ipsum"); p != s.npos; p = s.find(u"ipsum", p + 9)) s.replace(p, 5, u"dolor sit");
        benchmark::DoNotOptimize(s.data());
    }
}

}  // namespace

BENCHMARK(QorCopy)->Arg(1)->Arg(100);
BENCHMARK(StdCopy)->Arg(1)->Arg(100);
BENCHMARK(QorAddShort)->Arg(10)->Arg(1000);
BENCHMARK(StdAddShort)->Arg(10)->Arg(1000);
BENCHMARK(QorFind)->Arg(100);
BENCHMARK(StdFind)->Arg(100);
BENCHMARK(QorReplace)->Arg(100);
BENCHMARK(StdReplace)->Arg(100);
