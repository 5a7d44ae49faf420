// array::Add against std::vector::push_back, and hash lookups against std::map.
#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

#include "qor/tools/container/array.h"
#include "qor/tools/container/btree.h"
#include "qor/tools/string.h"

using namespace qor::tools;
using namespace qor::tools::container;

namespace {

void ArrayAdd(benchmark::State &state) {
    for (auto _ : state) {
        array<int> a(0, int(state.range(1)));
        for (int i = 0; i < state.range(0); ++i) a.Add(i);
        benchmark::DoNotOptimize(static_cast<int *>(a));
    }
}
void VectorPushBack(benchmark::State &state) {
    for (auto _ : state) {
        std::vector<int> v;
        for (int i = 0; i < state.range(0); ++i) v.push_back(i);
        benchmark::DoNotOptimize(v.data());
    }
}

// Column-name-like keys: a common prefix, then distinct Latin and kana units.
std::vector<std::u16string> Keys(int n) {
    std::vector<std::u16string> keys;
    for (int i = 0; i < n; ++i) {
        std::u16string k = u"column_";
        for (int v = i; v > 0 || k.size() == 7; v /= 26) k += char16_t(u'a' + v % 26);
        k += char16_t(0x3042 + i % 80);
        keys.push_back(k);
    }
    return keys;
}

void HashFind(benchmark::State &state) {
    auto keys = Keys(int(state.range(0)));
    std::vector<string> probes;
    hash<string, int, pif::none, 2> tree;
    int value = 1;
    for (auto &k : keys) {
        probes.emplace_back(k.c_str());
        tree.Set(probes.back(), &value);
    }
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(tree.Find(probes[i]));
        if (++i == probes.size()) i = 0;
    }
}
void MapFind(benchmark::State &state) {
    auto keys = Keys(int(state.range(0)));
    std::map<std::u16string, int *> map;
    int value = 1;
    for (auto &k : keys) map[k] = &value;
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(map.find(keys[i]));
        if (++i == keys.size()) i = 0;
    }
}

}  // namespace

BENCHMARK(ArrayAdd)->Args({1000, 10})->Args({1000, 1000})->Args({100000, 10})->Args({100000, 100000});
BENCHMARK(VectorPushBack)->Arg(1000)->Arg(100000);
BENCHMARK(HashFind)->Arg(10)->Arg(1000)->Arg(100000);
BENCHMARK(MapFind)->Arg(10)->Arg(1000)->Arg(100000);
