// Cost of the stage's drawing cycle on the X server in $DISPLAY (run it on
// Xvfb): a full repaint and the move of one small actor on stages of 10^3,
// 10^4 and 10^5 mixed actors, against the same primitives sent by plain
// Xlib calls as the floor, and the same actors inside one OrvIndexedSet.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "orv/actor.h"
#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/layer.h"
#include "orv/makeup.h"
#include "orv/resource.h"
#include "orv/shapes.h"
#include "orv/stage.h"

#include <X11/Xlib.h>

namespace {

const unsigned kWidth = 1000, kHeight = 800;
long gDraws = 0;  // draw2d calls of the counting actors below

// Only draw2d is counted: a counting intersects2d would add its own call to
// every actor a repaint looks at, the very cost being measured.
template <class Shape>
class Counting : public Shape {
public:
    using Shape::Shape;
    void draw2d(OrvCanvas* c, const Orv2dMatrix* m) override {
        gDraws++;
        Shape::draw2d(c, m);
    }
};
typedef Counting<OrvFilledRectangle> BenchRect;
typedef Counting<OrvLine> BenchLine;
typedef Counting<OrvLabel> BenchLabel;

// One primitive of the scene, kept so that the Xlib floor sends the same.
struct Item {
    int kind;  // 0 filled rectangle, 1 line, 2 label
    int x, y, w, h;
};

// A free column at the right edge of the window, where the mover of the
// walk benchmarks lies alone.
const int kFreeColumn = 960;

// The spot that the expose benchmarks repaint, and the margin around it that
// their random actors keep clear of (labels reach up by their ascent).
const Orv2dRect kSpot(300, 300, 20, 20);
const int kSpotMargin = 24;

bool nearSpot(const Item& it) {
    Orv2dRect box(it.x, it.y - kSpotMargin, (unsigned)(it.w + kSpotMargin),
                  (unsigned)(it.h + kSpotMargin));
    Orv2dRect grown(kSpot.x - kSpotMargin, kSpot.y - kSpotMargin, kSpot.w + 2 * kSpotMargin,
                    kSpot.h + 2 * kSpotMargin);
    return box.intersects(grown);
}

// n items of the given kinds (-1: all three in turn) spread over `scale`
// times the window in each direction, the free column excepted. With
// `fixedSpot`, the random items stay clear of the exposed spot and the last
// three are one of each kind inside it, so that every size repaints the same.
std::vector<Item> makeItems(unsigned n, int kind, double scale, bool fixedSpot = false) {
    std::vector<Item> items;
    items.reserve(n);
    unsigned seed = 12345;
    auto next = [&seed]() {
        seed = seed * 1103515245u + 12345u;
        return (seed >> 8) & 0xffffff;
    };
    unsigned spanX = (unsigned)((kFreeColumn - 30) * scale),
             spanY = (unsigned)((kHeight - 30) * scale);
    unsigned random = fixedSpot ? n - 3 : n;
    while (items.size() < random) {
        Item it;
        it.kind = kind < 0 ? (int)(items.size() % 3) : kind;
        it.x = (int)(next() % spanX);
        it.y = (int)(next() % spanY) + 14;
        it.w = 4 + (int)(next() % 16);
        it.h = 4 + (int)(next() % 12);
        if (fixedSpot && nearSpot(it)) continue;
        items.push_back(it);
    }
    if (fixedSpot) {
        items.push_back(Item{0, kSpot.x + 2, kSpot.y + 2, 8, 8});
        items.push_back(Item{1, kSpot.x + 4, kSpot.y + 4, 12, 10});
        items.push_back(Item{2, kSpot.x + 1, kSpot.y + 16, 0, 0});
    }
    return items;
}

struct World {
    OrvDirector* director = nullptr;
    OrvMakeUp* makeUps[3] = {nullptr, nullptr, nullptr};

    static World& get() {
        static World w;
        if (!w.director) {
            w.director = new OrvDirector("bench_stage", nullptr, 0, nullptr);
            const char* colors[3] = {"steel blue", "dark green", "black"};
            for (int i = 0; i < 3; i++) {
                w.makeUps[i] = w.director->makeUpForeground(w.director->defaultMakeUp,
                                                            w.director->color(colors[i]));
                OrvCount(w.makeUps[i]);
            }
        }
        return w;
    }
    Display* dpy() const { return (Display*)director->display; }
    void sync() const { XSync(dpy(), False); }
};

OrvActor* makeActor(World& w, const Item& it) {
    switch (it.kind) {
        case 0:
            return new BenchRect(w.director, Orv2dRect(it.x, it.y, it.w, it.h), w.makeUps[0]);
        case 1:
            return new BenchLine(w.director, Orv2dPoint(it.x, it.y),
                                 Orv2dPoint(it.x + it.w, it.y + it.h), w.makeUps[1]);
        default:
            return new BenchLabel(w.director, "abc", Orv2dPoint(it.x, it.y), OrvLeft, w.makeUps[2]);
    }
}

// A mapped stage of the benchmark's size, with the actors in two layers or
// inside one indexed set, and one small mover on top.
struct Scene {
    OrvStage* stage = nullptr;
    std::vector<Item> items;
    std::vector<OrvActor*> actors;
    OrvActor* mover = nullptr;
    OrvIndexedSet* set = nullptr;

    Scene(unsigned n, bool indexed, int kind = -1, double scale = 1.0,
          Orv2dPoint moverAt = Orv2dPoint(970, 400), bool fixedSpot = false) {
        World& w = World::get();
        items = makeItems(n, kind, scale, fixedSpot);
        stage = new OrvStage(w.director, Orv2dRect(0, 0, kWidth, kHeight), "bench", 0, 1);
        w.sync();
        set = indexed ? new OrvIndexedSet(w.director, 0, nullptr) : nullptr;
        stage->beginDrawing();
        for (unsigned i = 0; i < n; i++) {
            OrvActor* a = makeActor(w, items[i]);
            actors.push_back(a);
            if (set)
                set->quadtree->add(a);
            else
                stage->append(a, i & 1);
        }
        if (set) {
            set->invalidateBox();
            stage->append(set, 0);
        }
        mover = new BenchRect(w.director, Orv2dRect(moverAt.x, moverAt.y, 6, 6), w.makeUps[0]);
        stage->append(mover, 1);
        stage->abortDrawing();
        stage->drawAll(nullptr, 1);
        w.sync();
    }
    ~Scene() { delete stage; }

    // Moves the mover two pixels right and back, one nest each time.
    void move(bool right) {
        static const Orv2dMatrix toRight(Orv2dPoint(2, 0)), toLeft(Orv2dPoint(-2, 0));
        mover->beginDrawing(1);
        mover->apply2d(right ? toRight : toLeft);
        mover->flushDrawing(1);
    }
    // What a move has to draw, counted apart: the mover and the actors whose
    // boxes meet its old and new places (which overlap, so the region is one
    // rectangle), grown by the one pixel of the repaint.
    unsigned overlapping() const {
        Orv2dRect b = mover->bbox2d(nullptr);
        Orv2dRect span(b.x - 1, b.y - 1, b.w + 4, b.h + 2);
        unsigned k = 1;
        for (OrvActor* a : actors)
            if (a->bbox2dToStage(nullptr).intersects(span)) k++;
        return k;
    }
};

// The actors whose intersects2d a repaint of the region asks: in layers,
// all of them; in an indexed set, those listed at the nodes that the walk
// enters and does not take whole.
long listedOnWalk(const OrvQuadtree* t, const Orv2dRegion& local) {
    if (!t || local.contains(t->box) || !local.intersects(t->box)) return 0;
    long n = 0;
    for (OrvLink* l = t->head; l; l = l->next) n++;
    return n + listedOnWalk(t->topLeft, local) + listedOnWalk(t->topRight, local) +
           listedOnWalk(t->bottomLeft, local) + listedOnWalk(t->bottomRight, local);
}

void setCounters(benchmark::State& state, long draws, unsigned n, long tests = -1) {
    state.counters["draw2d_per_op"] =
        benchmark::Counter((double)draws / (double)state.iterations());
    if (tests >= 0) state.counters["tests_per_op"] = (double)tests;
    state.counters["actors"] = n;
}

void BM_FullRepaint(benchmark::State& state) {
    unsigned n = (unsigned)state.range(0);
    Scene scene(n, false);
    World& w = World::get();
    gDraws = 0;
    for (auto _ : state) {
        scene.stage->drawAll(nullptr, 1);
        w.sync();
    }
    setCounters(state, gDraws, n);
}

// The same primitives through plain Xlib on the stage's window: one GC per
// kind, the labels in the font of the library's default make-up.
struct XlibPainter {
    Display* dpy;
    Window win;
    GC gcs[3];
    XFontSet fontSet = nullptr;

    XlibPainter(Display* d, Window w) : dpy(d), win(w) {
        unsigned long pixels[3] = {0x4682b4, 0x006400, 0x000000};
        for (int i = 0; i < 3; i++) {
            gcs[i] = XCreateGC(dpy, win, 0, nullptr);
            XSetForeground(dpy, gcs[i], pixels[i]);
        }
        char** missing = nullptr;
        int missingCount = 0;
        char* defaultString = nullptr;
        fontSet = XCreateFontSet(dpy, "-*-courier-medium-r-normal--12-*-*-*-*-*-*-*,fixed",
                                 &missing, &missingCount, &defaultString);
        if (missing) XFreeStringList(missing);
    }
    ~XlibPainter() {
        if (fontSet) XFreeFontSet(dpy, fontSet);
        for (int i = 0; i < 3; i++) XFreeGC(dpy, gcs[i]);
    }
    void paint(const std::vector<Item>& items) {
        XClearWindow(dpy, win);
        for (const Item& it : items) {
            if (it.kind == 0)
                XFillRectangle(dpy, win, gcs[0], it.x, it.y, it.w, it.h);
            else if (it.kind == 1)
                XDrawLine(dpy, win, gcs[1], it.x, it.y, it.x + it.w, it.y + it.h);
            else if (fontSet)
                XmbDrawString(dpy, win, fontSet, gcs[2], it.x, it.y, "abc", 3);
            else
                XDrawString(dpy, win, gcs[2], it.x, it.y, "abc", 3);
        }
        XSync(dpy, False);
    }
};

void BM_XlibFloor(benchmark::State& state) {
    unsigned n = (unsigned)state.range(0);
    Scene scene(n, false);
    World& w = World::get();
    XlibPainter floor(w.dpy(), scene.stage->window());
    for (auto _ : state) floor.paint(scene.items);
    state.counters["actors"] = n;
}

// The full repaint and the floor in turn within each iteration, so that a
// machine whose load drifts weighs on both alike; the counter is the median
// of the per-iteration ratios.
void BM_RepaintOverFloor(benchmark::State& state) {
    unsigned n = (unsigned)state.range(0);
    Scene scene(n, false);
    World& w = World::get();
    XlibPainter floor(w.dpy(), scene.stage->window());
    std::vector<double> ratios;
    for (auto _ : state) {
        auto t0 = std::chrono::steady_clock::now();
        scene.stage->drawAll(nullptr, 1);
        w.sync();
        auto t1 = std::chrono::steady_clock::now();
        floor.paint(scene.items);
        auto t2 = std::chrono::steady_clock::now();
        ratios.push_back(std::chrono::duration<double>(t1 - t0).count() /
                         std::chrono::duration<double>(t2 - t1).count());
    }
    std::sort(ratios.begin(), ratios.end());
    state.counters["ratio"] = ratios.empty() ? 0.0 : ratios[ratios.size() / 2];
    state.counters["actors"] = n;
}

// One small actor alone in the free column moves by two pixels: the cost is
// the walk over every actor of the layers, none of which is drawn.
void BM_MoveOneAlone(benchmark::State& state) {
    unsigned n = (unsigned)state.range(0);
    int kind = (int)state.range(1);
    Scene scene(n, false, kind);
    World& w = World::get();
    gDraws = 0;
    bool right = true;
    for (auto _ : state) {
        scene.move(right);
        w.sync();
        right = !right;
    }
    setCounters(state, gDraws, n, scene.stage->cardinal());
    state.counters["kind"] = kind;
}

// The same move amid the actors: only those it overlaps are drawn.
void BM_MoveOneCrowded(benchmark::State& state) {
    unsigned n = (unsigned)state.range(0);
    Scene scene(n, false, -1, 1.0, Orv2dPoint(500, 400));
    World& w = World::get();
    unsigned expected = scene.overlapping();
    gDraws = 0;
    bool right = true;
    for (auto _ : state) {
        scene.move(right);
        w.sync();
        right = !right;
    }
    setCounters(state, gDraws, n, scene.stage->cardinal());
    state.counters["overlapping"] = expected;
}

// An expose of 20 by 20 pixels. The actors fill a world that grows with
// their number, at the same density, and the exposed spot holds the same
// three actors at every size; in one indexed set the cost then stays flat,
// in plain layers it grows.
void exposeBench(benchmark::State& state, bool indexed) {
    unsigned n = (unsigned)state.range(0);
    double scale = sqrt((double)n / 1000.0);
    Scene scene(n, indexed, -1, scale, Orv2dPoint(970, 400), true);
    World& w = World::get();
    Orv2dRegion region(kSpot, 25);
    gDraws = 0;
    for (auto _ : state) {
        scene.stage->handleExpose(&region);
        w.sync();
    }
    // Besides the set's walk, the layers' own actors: the set and the mover.
    setCounters(state, gDraws, n,
                indexed ? listedOnWalk(scene.set->quadtree, region) + scene.stage->cardinal()
                        : scene.stage->cardinal());
}
void BM_IndexedExpose(benchmark::State& state) {
    exposeBench(state, true);
}
void BM_LayerExpose(benchmark::State& state) {
    exposeBench(state, false);
}

// Building a stage of n actors in two layers and deleting it: per actor, the
// cost should not grow with n (appending to a layer must not search another,
// and emptying a layer from the bottom must not shift what is above).
void BM_BuildAndDelete(benchmark::State& state) {
    unsigned n = (unsigned)state.range(0);
    World& w = World::get();
    std::vector<Item> items = makeItems(n, 0, 1.0);
    OrvStage* stage = new OrvStage(w.director, Orv2dRect(0, 0, kWidth, kHeight), "build", 0, 1);
    w.sync();
    for (auto _ : state) {
        stage->beginDrawing();
        for (unsigned i = 0; i < n; i++) stage->append(makeActor(w, items[i]), i & 1);
        stage->abortDrawing();
        stage->empty(1);
    }
    delete stage;
    state.counters["ns_per_actor"] = benchmark::Counter(
        (double)n * state.iterations(), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

}  // namespace

BENCHMARK(BM_BuildAndDelete)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(300000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FullRepaint)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_XlibFloor)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RepaintOverFloor)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_MoveOneAlone)
    ->Args({1000, -1})
    ->Args({10000, -1})
    ->Args({100000, -1})
    ->Args({100000, 0})
    ->Args({100000, 1})
    ->Args({100000, 2})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_MoveOneCrowded)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_LayerExpose)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_IndexedExpose)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

int main(int argc, char** argv) {
    if (!getenv("DISPLAY")) {
        fprintf(stderr, "bench_stage: needs an X server in DISPLAY (Xvfb)\n");
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
