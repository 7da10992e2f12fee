// Events decoded and dispatched per second through OrvInstanceDispatchEvent,
// and the cost of the wait step with 100 running timers. Rates are in wall
// time, since the X server takes part in some of them. Needs $DISPLAY.
#include <benchmark/benchmark.h>

#include "orv/director.h"
#include "orv/region.h"
#include "orv/view.h"

#include <X11/Xlib.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <vector>

namespace {

OrvDirector* director = nullptr;
OrvView* view = nullptr;
long delivered = 0;

void countInput(OrvView*, const OrvEvent&, void*) {
    delivered++;
}
void countExpose(OrvView*, const Orv2dRegion*, void*) {
    delivered++;
}

void setUp() {
    if (director) return;
    director = new OrvDirector("bench", nullptr, 0, nullptr);
    view = new OrvView(director, Orv2dRect(10, 10, 200, 150), "bench");
    view->onInput(countInput, nullptr);
    view->onExpose(countExpose, nullptr);
    XSync((Display*)director->display, False);
    director->readAndDispatchEvents();
}

XEvent baseEvent(int type) {
    XEvent e;
    memset(&e, 0, sizeof e);
    e.type = type;
    e.xany.display = (Display*)director->display;
    e.xany.window = view->window();
    return e;
}

void finish(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations());
    state.counters["delivered"] = (double)delivered;
    delivered = 0;
}

// Plain motion: decoded, then the drag compression looks at the queue
// (with its XSync round trip) before the view's handler runs.
void BM_DispatchMotion(benchmark::State& state) {
    setUp();
    orv_compress_drag_events = (int)state.range(0);
    XEvent e = baseEvent(MotionNotify);
    int i = 0;
    for (auto _ : state) {
        e.xmotion.x = i & 127;
        e.xmotion.y = (i >> 7) & 127;
        e.xmotion.time = i++;
        OrvInstanceDispatchEvent(director, &e);
    }
    orv_compress_drag_events = 1;
    finish(state);
}
BENCHMARK(BM_DispatchMotion)->Arg(1)->Arg(0)->ArgName("compress")->UseRealTime();

// Button presses and releases, with the double-click test on every press.
void BM_DispatchButton(benchmark::State& state) {
    setUp();
    XEvent press = baseEvent(ButtonPress), release = baseEvent(ButtonRelease);
    press.xbutton.button = release.xbutton.button = 1;
    release.xbutton.state = Button1Mask;
    unsigned long t = 0;
    for (auto _ : state) {
        press.xbutton.time = t;
        release.xbutton.time = t + 5;
        t += 1000;
        OrvInstanceDispatchEvent(director, &press);
        OrvInstanceDispatchEvent(director, &release);
    }
    state.SetItemsProcessed(state.iterations() * 2);
    state.counters["delivered"] = (double)delivered;
    delivered = 0;
}
BENCHMARK(BM_DispatchButton)->UseRealTime();

// The last expose of a series: a region is built, the queue is searched for
// more exposes, the area is cleared and the callback runs.
void BM_DispatchExpose(benchmark::State& state) {
    setUp();
    XEvent e = baseEvent(Expose);
    e.xexpose.width = 20;
    e.xexpose.height = 10;
    int i = 0;
    for (auto _ : state) {
        e.xexpose.x = (i++ & 7) * 20;
        OrvInstanceDispatchEvent(director, &e);
    }
    XSync((Display*)director->display, False);
    finish(state);
}
BENCHMARK(BM_DispatchExpose)->UseRealTime();

struct IdleTimer : OrvTimer {
    IdleTimer(OrvDirector* d) : OrvTimer(d, 3600, 0) {}
    void activate() override {}
};

// The wait step without waiting, with 100 timers running (none due): it reads
// the clock once and looks at each schedule record.
void BM_WaitStep100Timers(benchmark::State& state) {
    setUp();
    std::vector<IdleTimer*> timers;
    for (int i = 0; i < state.range(0); i++) {
        timers.push_back(new IdleTimer(director));
        timers.back()->run();
    }
    for (auto _ : state) OrvDispatchToTimers();
    for (IdleTimer* t : timers) delete t;
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_WaitStep100Timers)->Arg(0)->Arg(100)->ArgName("timers")->UseRealTime();

struct AlwaysBusy : OrvWorkProcedure {
    int doWork(OrvDirector*) override { return 1; }
};

// The full waiting step (XPending, work procedure, select with a zero
// timeout because the work procedure is busy, timers) with 100 timers.
void BM_WaitingStep100Timers(benchmark::State& state) {
    setUp();
    std::vector<IdleTimer*> timers;
    for (int i = 0; i < state.range(0); i++) {
        timers.push_back(new IdleTimer(director));
        timers.back()->run();
    }
    AlwaysBusy* busy = new AlwaysBusy;
    director->add(busy);
    for (auto _ : state) director->waitAndDispatchEvents();
    director->remove(busy);
    for (IdleTimer* t : timers) delete t;
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_WaitingStep100Timers)->Arg(0)->Arg(100)->ArgName("timers")->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
    if (!getenv("DISPLAY")) {
        printf("bench_dispatch needs an X display (DISPLAY)\n");
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    delete director;
    return 0;
}
