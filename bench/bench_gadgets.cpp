// Cost of the bevel: a stage of 1,000 gadgets repainted in full, against the
// same count of plain filled rectangles in the same boxes, on the X server in
// $DISPLAY (run it on Xvfb). The gadgets are relief rectangles (bevel only),
// buttons (bevel and text) and scroll bars (frame, arrows, trough, thumb).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "orv/director.h"
#include "orv/makeup.h"
#include "orv/relief.h"
#include "orv/shapes.h"
#include "orv/stage.h"
#include "orv/value.h"

#include <X11/Xlib.h>

namespace {

// 1,000 cells over 1,000 by 800 pixels: 40 by 25 cells of 25 by 32 pixels,
// or for scroll bars, which need length for their arrows and trough, 20 by
// 50 cells of 50 by 16.
const unsigned kWidth = 1000, kHeight = 800, kCount = 1000;

Orv2dRect cell(unsigned i, bool long_) {
    if (long_) return Orv2dRect((i % 20) * 50 + 1, (i / 20) * 16 + 1, 48, 14);
    return Orv2dRect((i % 40) * 25 + 1, (i / 40) * 32 + 1, 23, 30);
}

enum Kind {
    kPlain = 0,
    kRelief = 1,
    kButton = 2,
    kScrollBar = 3
};

struct World {
    OrvDirector* director = nullptr;
    OrvMakeUp* look = nullptr;

    static World& get() {
        static World w;
        if (!w.director) {
            w.director = new OrvDirector("bench_gadgets", nullptr, 0, nullptr);
            w.look = w.director->makeUpBackground(
                w.director->makeUpForeground(w.director->defaultMakeUp, w.director->color("black")),
                w.director->color("gray75"));
            OrvCount(w.look);
        }
        return w;
    }
    Display* dpy() const { return (Display*)director->display; }
    void sync() const { XSync(dpy(), False); }
};

// A stage filled with one kind of actor, one in each cell.
struct Scene {
    OrvStage* stage;

    // Plain rectangles lie in the boxes that `like` would have.
    explicit Scene(Kind kind, Kind like) {
        World& w = World::get();
        stage = new OrvStage(w.director, Orv2dRect(0, 0, kWidth, kHeight), "bench", 0, 1);
        stage->beginDrawing();
        for (unsigned i = 0; i < kCount; i++) {
            Orv2dRect box = cell(i, like == kScrollBar);
            OrvActor* a = nullptr;
            switch (kind) {
                case kPlain:
                    a = new OrvFilledRectangle(w.director, box, w.look);
                    break;
                case kRelief:
                    a = new OrvReliefRectangle(w.director, box, 2, w.look);
                    break;
                case kButton:
                    a = new OrvReliefLabel(w.director, box, "OK", 2, w.look);
                    break;
                case kScrollBar:
                    a = new OrvScrollBar(w.director, box, OrvHorizontal, 2, w.look);
                    break;
            }
            stage->append(a);
        }
        stage->flushDrawing(1);
        w.sync();
    }
    ~Scene() { delete stage; }
    double repaint() {
        auto t0 = std::chrono::steady_clock::now();
        stage->drawAll(nullptr, 1);
        World::get().sync();
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    }
};

const char* const kNames[] = {"plain rectangles", "relief rectangles", "buttons", "scroll bars"};

void BM_FullRepaint(benchmark::State& state) {
    Scene scene((Kind)state.range(0), (Kind)state.range(0));
    for (auto _ : state) scene.repaint();
    state.SetLabel(kNames[state.range(0)]);
    state.counters["actors"] = kCount;
}

// A gadget stage and the plain one in the same boxes in turn within each
// iteration, so that a drifting load weighs on both alike; the counter is the
// median ratio. The time is that of both repaints.
void BM_OverPlain(benchmark::State& state) {
    Scene gadgets((Kind)state.range(0), (Kind)state.range(0));
    Scene plain(kPlain, (Kind)state.range(0));
    std::vector<double> ratios;
    for (auto _ : state) {
        double g = gadgets.repaint();
        double p = plain.repaint();
        ratios.push_back(g / p);
    }
    std::sort(ratios.begin(), ratios.end());
    state.counters["ratio"] = ratios.empty() ? 0.0 : ratios[ratios.size() / 2];
    state.SetLabel(kNames[state.range(0)]);
}

}  // namespace

BENCHMARK(BM_FullRepaint)->DenseRange(0, 3)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_OverPlain)->DenseRange(1, 3)->Unit(benchmark::kMicrosecond);

int main(int argc, char** argv) {
    if (!getenv("DISPLAY")) {
        fprintf(stderr, "bench_gadgets: needs an X server in DISPLAY (Xvfb)\n");
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
