// The quadtree against a brute-force walk over the same actors, in the same
// run: building the tree, a point query (contains) and a window query
// (applyIntersect), for 10^4, 10^5 and 10^6 small rectangles spread over a
// large area; and the memory per actor, the rectangle plus its share of the
// tree. No X server is needed: the actors are hit-tested, never drawn.
//
// Run with --benchmark_repetitions=5 --benchmark_report_aggregates_only=true
// for medians.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <random>
#include <vector>

#include "orv/layer.h"
#include "orv/shapes.h"

namespace {

// Side of the square the actors lie in: the tree's default box (-100000 to
// 100000), or 8 times wider, where the root grows by doubling and fewer
// actors straddle the centre lines that a point query passes.
const int kAreas[2] = {200000, 1600000};
const int kWindow = 2000;        // side of the window queries
const unsigned kQueries = 4096;  // points and windows, cycled through

struct Data {
    std::vector<OrvActor*> actors;
    std::vector<Orv2dPoint> points;  // half inside some actor, half anywhere
    std::vector<Orv2dRect> windows;
    OrvQuadtree* tree = nullptr;
};

Data& data(unsigned n, int wide = 0) {
    static std::map<std::pair<unsigned, int>, Data> cache;
    Data& d = cache[std::make_pair(n, wide)];
    if (!d.actors.empty()) return d;
    const int kArea = kAreas[wide];
    std::mt19937 rng(12345 + n);
    d.actors.reserve(n);
    for (unsigned i = 0; i < n; i++) {
        int x = (int)(rng() % (kArea - 40)) - kArea / 2;
        int y = (int)(rng() % (kArea - 40)) - kArea / 2;
        unsigned w = 2 + rng() % 19, h = 2 + rng() % 19;
        d.actors.push_back(new OrvFilledRectangle(nullptr, Orv2dRect(x, y, w, h)));
    }
    for (unsigned i = 0; i < kQueries; i++) {
        if (i % 2) {
            d.points.push_back(
                Orv2dPoint((int)(rng() % kArea) - kArea / 2, (int)(rng() % kArea) - kArea / 2));
        } else {
            const Orv2dRect& r = ((OrvRectangle*)d.actors[rng() % n])->rect;
            d.points.push_back(Orv2dPoint(r.x + (int)(rng() % r.w), r.y + (int)(rng() % r.h)));
        }
        d.windows.push_back(Orv2dRect((int)(rng() % (kArea - kWindow)) - kArea / 2,
                                      (int)(rng() % (kArea - kWindow)) - kArea / 2, kWindow,
                                      kWindow));
    }
    d.tree = new OrvQuadtree(OrvDefaultQuadtreeMax, nullptr);
    for (OrvActor* a : d.actors) d.tree->add(a);
    return d;
}

void countTree(const OrvQuadtree* t, size_t& nodes, size_t& links) {
    if (!t) return;
    nodes++;
    for (OrvLink* l = t->head; l; l = l->next) links++;
    countTree(t->topLeft, nodes, links);
    countTree(t->topRight, nodes, links);
    countTree(t->bottomLeft, nodes, links);
    countTree(t->bottomRight, nodes, links);
}

void count(OrvActor*, void* data) {
    (*(long*)data)++;
}

void BM_Build(benchmark::State& state) {
    Data& d = data((unsigned)state.range(0), (int)state.range(2));
    OrvSetOptimizeMode((int)state.range(1));
    for (auto _ : state) {
        OrvQuadtree* t = new OrvQuadtree(OrvDefaultQuadtreeMax, nullptr);
        for (OrvActor* a : d.actors) t->add(a);
        benchmark::DoNotOptimize(t->count);
        state.PauseTiming();
        delete t;
        state.ResumeTiming();
    }
    OrvSetOptimizeMode(0);
    size_t nodes = 0, links = 0;
    countTree(d.tree, nodes, links);
    double n = (double)d.actors.size();
    state.counters["ns_per_actor"] = benchmark::Counter(
        n * state.iterations(), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.counters["nodes"] = (double)nodes;
    // The tree's share: its nodes, one pooled link per actor and the arrays
    // that the queries walk.
    double treeBytes = (double)d.tree->memoryUse();
    state.counters["tree_bytes_per_actor"] = treeBytes / n;
    state.counters["actor_bytes"] = (double)sizeof(OrvRectangle);
    state.counters["bytes_per_actor"] = sizeof(OrvRectangle) + treeBytes / n;
}

// How many actors a point query asks at most: the lists along its path.
long actorsOnPath(const OrvQuadtree* node, const Orv2dPoint& p) {
    long n = 0;
    while (node && node->box.contains(p)) {
        for (OrvLink* l = node->head; l; l = l->next) n++;
        unsigned position = node->findPos(p);
        if (position == OrvQuadHere) break;
        node = node->child(position);
    }
    return n;
}

void BM_PointTree(benchmark::State& state) {
    Data& d = data((unsigned)state.range(0), (int)state.range(1));
    long onPath = 0;
    for (const Orv2dPoint& p : d.points) onPath += actorsOnPath(d.tree, p);
    state.counters["actors_on_path"] = (double)onPath / d.points.size();
    unsigned i = 0;
    long hits = 0;
    for (auto _ : state) {
        const Orv2dPoint& p = d.points[i++ % kQueries];
        OrvActor* a = d.tree->contains(p, p, nullptr);
        hits += a != nullptr;
        benchmark::DoNotOptimize(a);
    }
    state.counters["hit_ratio"] = (double)hits / state.iterations();
}

void BM_PointBrute(benchmark::State& state) {
    Data& d = data((unsigned)state.range(0), (int)state.range(1));
    unsigned i = 0;
    long hits = 0;
    for (auto _ : state) {
        const Orv2dPoint& p = d.points[i++ % kQueries];
        OrvActor* found = nullptr;
        for (OrvActor* a : d.actors)
            if (a->contains2d(p, nullptr)) {
                found = a;
                break;
            }
        hits += found != nullptr;
        benchmark::DoNotOptimize(found);
    }
    state.counters["hit_ratio"] = (double)hits / state.iterations();
}

void BM_WindowTree(benchmark::State& state) {
    Data& d = data((unsigned)state.range(0));
    unsigned i = 0;
    long found = 0;
    for (auto _ : state) {
        Orv2dRegion region(d.windows[i++ % kQueries]);
        d.tree->applyIntersect(region, region, count, &found, nullptr);
    }
    state.counters["actors_per_window"] = (double)found / state.iterations();
}

void BM_WindowBrute(benchmark::State& state) {
    Data& d = data((unsigned)state.range(0));
    unsigned i = 0;
    long found = 0;
    for (auto _ : state) {
        Orv2dRegion region(d.windows[i++ % kQueries]);
        for (OrvActor* a : d.actors)
            if (a->intersects2d(region, nullptr)) found++;
    }
    state.counters["actors_per_window"] = (double)found / state.iterations();
}

}  // namespace

// Arguments: N; for the build, the optimize mode (which leaves out the
// membership test); then 0 for the default area, 1 for the wide one.
BENCHMARK(BM_Build)
    ->ArgsProduct({{10000, 100000, 1000000}, {0, 1}, {0}})
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(BM_PointTree)
    ->ArgsProduct({{10000, 100000, 1000000}, {0, 1}})
    ->Unit(benchmark::kNanosecond);
BENCHMARK(BM_PointBrute)
    ->ArgsProduct({{10000, 100000, 1000000}, {0, 1}})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_WindowTree)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_WindowBrute)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
