// Hot paths of the 2D side: region accumulation, integer point mapping,
// Bézier flattening and hit testing.
#include "orv/region.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

// Many small scattered rectangles, as a stage invalidates them under motion.
static std::vector<Orv2dRect> scattered(int n) {
    std::vector<Orv2dRect> rects;
    unsigned seed = 12345;
    for (int i = 0; i < n; i++) {
        seed = seed * 1103515245u + 12345u;
        int x = (int)((seed >> 8) % 2000);
        seed = seed * 1103515245u + 12345u;
        int y = (int)((seed >> 8) % 2000);
        rects.push_back(Orv2dRect(x, y, 8 + (seed % 24), 8 + ((seed >> 4) % 24)));
    }
    return rects;
}

// Up to 25 rectangles: no heap allocation at all.
static void BM_RegionAddEmbedded(benchmark::State& state) {
    std::vector<Orv2dRect> rects = scattered(25);
    for (auto _ : state) {
        Orv2dRegion r;
        for (const Orv2dRect& rect : rects) r.extendBy(rect);
        benchmark::DoNotOptimize(r.count);
    }
    state.SetItemsProcessed(state.iterations() * (int64_t)rects.size());
}
BENCHMARK(BM_RegionAddEmbedded);

// Many rectangles with the collapse of the redraw code past 32 members.
static void BM_RegionAddCollapsing(benchmark::State& state) {
    std::vector<Orv2dRect> rects = scattered((int)state.range(0));
    for (auto _ : state) {
        Orv2dRegion r;
        for (const Orv2dRect& rect : rects) {
            r.extendBy(rect);
            if (r.count > 32) {
                Orv2dRect box = r.bbox;
                r.count = 0;
                r.extendBy(box);
            }
        }
        benchmark::DoNotOptimize(r.count);
    }
    state.SetItemsProcessed(state.iterations() * (int64_t)rects.size());
}
BENCHMARK(BM_RegionAddCollapsing)->Arg(1000);

static void BM_RegionContains(benchmark::State& state) {
    Orv2dRegion r;
    for (const Orv2dRect& rect : scattered(25)) r.extendBy(rect);
    int i = 0;
    for (auto _ : state) {
        Orv2dPoint p((i * 37) % 2000, (i * 91) % 2000);
        benchmark::DoNotOptimize(r.contains(p));
        i++;
    }
}
BENCHMARK(BM_RegionContains);

static void transformPoints(benchmark::State& state, const Orv2dMatrix& m) {
    std::vector<Orv2dPoint> pts(1024);
    for (int i = 0; i < 1024; i++) pts[i] = Orv2dPoint(i * 3 - 1500, 700 - i * 2);
    for (auto _ : state) {
        for (Orv2dPoint& p : pts) {
            Orv2dPoint q = p;
            m.apply(q);
            benchmark::DoNotOptimize(q);
        }
    }
    state.SetItemsProcessed(state.iterations() * (int64_t)pts.size());
}

static void BM_Matrix2dApplyDiagonal(benchmark::State& state) {
    transformPoints(state, Orv2dMatrix(1.5f, 0, 0, 0.75f, 10, -20));
}
BENCHMARK(BM_Matrix2dApplyDiagonal);

static void BM_Matrix2dApplyRotated(benchmark::State& state) {
    transformPoints(state, Orv2dMatrix(Orv2dPoint(100, 100), 30));
}
BENCHMARK(BM_Matrix2dApplyRotated);

static void BM_Matrix3dApply(benchmark::State& state) {
    Orv3dMatrix m;
    m.build(Orv3dPoint(1, 2, 3), Orv3dVector(4, 5, 6), 10, 20, 30, Orv3dVector(1, 2, 3));
    std::vector<Orv3dPoint> pts(1024);
    for (int i = 0; i < 1024; i++) pts[i] = Orv3dPoint((float)i, (float)-i, (float)(i % 7));
    for (auto _ : state) {
        for (const Orv3dPoint& p : pts) {
            Orv3dPoint q = p;
            m.apply(q);
            benchmark::DoNotOptimize(q);
        }
    }
    state.SetItemsProcessed(state.iterations() * (int64_t)pts.size());
}
BENCHMARK(BM_Matrix3dApply);

// A wavy open curve of 3·k + 1 control points.
static std::vector<Orv2dPoint> wave(int segments, int amplitude) {
    std::vector<Orv2dPoint> c;
    for (int i = 0; i <= segments * 3; i++)
        c.push_back(Orv2dPoint(i * 20, (i % 2) ? amplitude : -amplitude));
    return c;
}

static void BM_BezierFlatten(benchmark::State& state) {
    std::vector<Orv2dPoint> c = wave((int)state.range(0), 200);
    unsigned n = 0;
    for (auto _ : state) {
        Orv2dPoint* p = OrvCreateOpenBezier((unsigned)c.size(), c.data(), n);
        benchmark::DoNotOptimize(p);
    }
    state.counters["points"] = n;
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_BezierFlatten)->Arg(1)->Arg(100);

static void BM_PointInBezier(benchmark::State& state) {
    std::vector<Orv2dPoint> c = wave(20, 200);
    int i = 0;
    for (auto _ : state) {
        Orv2dPoint p((i * 13) % 1200, (i * 7) % 400 - 200);
        benchmark::DoNotOptimize(OrvPointInBezier(p, (unsigned)c.size(), c.data()));
        i++;
    }
}
BENCHMARK(BM_PointInBezier);

static void BM_PointInPolygon(benchmark::State& state) {
    std::vector<Orv2dPoint> poly;
    for (int i = 0; i < 64; i++) {
        double a = i * 3.14159265358979 / 32;
        int r = (i % 2) ? 200 : 120;
        poly.push_back(Orv2dPoint((int)(300 + r * std::cos(a)), (int)(300 + r * std::sin(a))));
    }
    int i = 0;
    for (auto _ : state) {
        Orv2dPoint p((i * 13) % 600, (i * 7) % 600);
        benchmark::DoNotOptimize(OrvPointInPolygon(p, (unsigned)poly.size(), poly.data()));
        i++;
    }
}
BENCHMARK(BM_PointInPolygon);

BENCHMARK_MAIN();
