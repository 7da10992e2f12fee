// The pool against malloc, list edits and string table lookups.
#include "orv/base.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

static void BM_PoolAllocRelease(benchmark::State& state) {
    OrvMemoryManager* pool = OrvGetMemoryManager();
    const unsigned size = (unsigned)state.range(0);
    std::vector<void*> blocks(256);
    for (auto _ : state) {
        for (void*& b : blocks) b = pool->alloc(size);
        benchmark::DoNotOptimize(blocks.data());
        for (void* b : blocks) pool->release(b, size);
    }
    state.SetItemsProcessed(state.iterations() * blocks.size());
}
BENCHMARK(BM_PoolAllocRelease)->Arg(16)->Arg(24)->Arg(64);

static void BM_MallocFree(benchmark::State& state) {
    const size_t size = (size_t)state.range(0);
    std::vector<void*> blocks(256);
    for (auto _ : state) {
        for (void*& b : blocks) b = malloc(size);
        benchmark::DoNotOptimize(blocks.data());
        for (void* b : blocks) free(b);
    }
    state.SetItemsProcessed(state.iterations() * blocks.size());
}
BENCHMARK(BM_MallocFree)->Arg(16)->Arg(24)->Arg(64);

static void BM_ListAppendRemove(benchmark::State& state) {
    const int n = (int)state.range(0);
    std::vector<int> values(n);
    for (auto _ : state) {
        OrvList list;
        for (int i = 0; i < n; i++) list.append(&values[i]);
        // Removing from the head is the cheap case; the walk is what costs.
        for (int i = 0; i < n; i++) list.remove(&values[i]);
        benchmark::DoNotOptimize(list.first);
    }
    state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_ListAppendRemove)->Arg(64)->Arg(1024);

static void BM_ListRemoveFromTail(benchmark::State& state) {
    const int n = (int)state.range(0);
    std::vector<int> values(n);
    for (auto _ : state) {
        OrvList list;
        for (int i = 0; i < n; i++) list.append(&values[i]);
        for (int i = n - 1; i >= 0; i--) list.remove(&values[i]);
        benchmark::DoNotOptimize(list.first);
    }
    state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_ListRemoveFromTail)->Arg(64)->Arg(1024);

static std::vector<std::string> makeNames(int n) {
    std::vector<std::string> names;
    char buffer[32];
    for (int i = 0; i < n; i++) {
        snprintf(buffer, sizeof buffer, "orvName%d", i);
        names.push_back(buffer);
    }
    return names;
}

static void BM_StringHashPut(benchmark::State& state) {
    std::vector<std::string> names = makeNames((int)state.range(0));
    for (auto _ : state) {
        OrvStringHashTable table(1000);
        for (const std::string& name : names) table.put(name.c_str(), (void*)&name);
        benchmark::DoNotOptimize(table.cardinal);
    }
    state.SetItemsProcessed(state.iterations() * names.size());
}
BENCHMARK(BM_StringHashPut)->Arg(100)->Arg(1000);

static void BM_StringHashGet(benchmark::State& state) {
    std::vector<std::string> names = makeNames((int)state.range(0));
    OrvStringHashTable table(1000);
    for (const std::string& name : names) table.put(name.c_str(), (void*)&name);
    for (auto _ : state) {
        for (const std::string& name : names) benchmark::DoNotOptimize(table.get(name.c_str()));
    }
    state.SetItemsProcessed(state.iterations() * names.size());
}
BENCHMARK(BM_StringHashGet)->Arg(100)->Arg(1000);

BENCHMARK_MAIN();
