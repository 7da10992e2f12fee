// Input benchmarks on a real X server (XTest):
//  - latency from an XTest button press to the role's input2d (median and
//    99th percentile over many presses);
//  - motion events per second handled by the move producer on a stage of
//    10^4 actors, each motion a full round: XTest, the loop, the producer's
//    ghost erased and redrawn.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <vector>

#include "orv/actor.h"
#include "orv/director.h"
#include "orv/makeup.h"
#include "orv/producer.h"
#include "orv/role.h"
#include "orv/stage.h"

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

namespace {

typedef std::chrono::steady_clock Clock;

class Box : public OrvActor {
public:
    Orv2dRect box;
    Box(OrvDirector* d, OrvMakeUp* m, const Orv2dRect& r) : OrvActor(d, m), box(r) {}
    Orv2dRect bbox2d(const Orv2dMatrix* m) const override {
        Orv2dRect r = box;
        if (m) m->apply(r);
        return r;
    }
    void draw2d(OrvCanvas* c, const Orv2dMatrix* m) override { c->rectangle(makeUp, box, 1, m); }
    void apply2d(const Orv2dMatrix& m) override { m.apply(box); }
};

// Notes the moment its actor is pressed.
class StampRole : public OrvRole {
public:
    Clock::time_point pressedAt;
    int presses = 0;
    int input2d(OrvActor*, const OrvEvent& e, OrvStage*) override {
        if (e.type == OrvButtonDown) {
            pressedAt = Clock::now();
            presses++;
        }
        return 1;
    }
    const char* className() const override { return "BenchStamp"; }
};

// Counts the drags it handles.
class CountingMove : public OrvMoveProducer {
public:
    long drags = 0;
    explicit CountingMove(OrvStage* s) : OrvMoveProducer(s) {}
    int input2d(const OrvEvent& e) override {
        if (e.type == OrvButtonDragged) drags++;
        return OrvMoveProducer::input2d(e);
    }
};

struct Setup {
    OrvDirector* director = nullptr;
    OrvStage* stage = nullptr;
    Display* dpy = nullptr;
    Setup() {
        if (!getenv("DISPLAY")) return;
        director = new OrvDirector("bench_input", nullptr, 0, nullptr);
        dpy = (Display*)director->display;
        director->setDoubleClickPeriod(0);  // presses in a row stay presses
        stage = new OrvStage(director, Orv2dRect(0, 0, 640, 480), "bench", 0, 1);
        for (int i = 0; i < 200; i++) {
            XSync(dpy, False);
            director->readAndDispatchEvents();
            XWindowAttributes a;
            XGetWindowAttributes(dpy, stage->window(), &a);
            if (a.map_state == IsViewable) break;
            struct timespec ts = {0, 5000000};
            nanosleep(&ts, nullptr);
        }
    }
    ~Setup() {
        delete stage;
        delete director;
    }
    void moveIn(int x, int y) {
        Window child;
        int rx, ry;
        XTranslateCoordinates(dpy, stage->window(), DefaultRootWindow(dpy), x, y, &rx, &ry, &child);
        XTestFakeMotionEvent(dpy, DefaultScreen(dpy), rx, ry, 0);
    }
    // Runs the loop until the condition holds (or a second has passed).
    template <class F>
    bool pumpUntil(F done) {
        Clock::time_point end = Clock::now() + std::chrono::seconds(1);
        XFlush(dpy);
        while (!done()) {
            director->readAndDispatchEvents();
            if (Clock::now() > end) return false;
        }
        return true;
    }
};

void BM_PressToRoleLatency(benchmark::State& state) {
    Setup s;
    if (!s.director) {
        state.SkipWithError("no DISPLAY");
        return;
    }
    OrvMakeUp* m = s.director->defaultMakeUp;
    Box* b = new Box(s.director, m, Orv2dRect(100, 100, 200, 150));
    StampRole role;
    b->setRole(&role);
    s.stage->append(b, 0);
    s.stage->focusEnabled = 0;  // no focus ring to paint: the route alone is measured
    s.moveIn(150, 150);
    XSync(s.dpy, False);
    s.director->readAndDispatchEvents();
    std::vector<double> us;
    for (auto _ : state) {
        int before = role.presses;
        Clock::time_point sent = Clock::now();
        XTestFakeButtonEvent(s.dpy, 1, True, 0);
        if (!s.pumpUntil([&] { return role.presses > before; })) {
            state.SkipWithError("press not delivered");
            break;
        }
        us.push_back(std::chrono::duration<double, std::micro>(role.pressedAt - sent).count());
        XTestFakeButtonEvent(s.dpy, 1, False, 0);
        XSync(s.dpy, False);
        s.director->readAndDispatchEvents();
    }
    if (!us.empty()) {
        std::sort(us.begin(), us.end());
        state.counters["median_us"] = us[us.size() / 2];
        state.counters["p99_us"] = us[std::min(us.size() - 1, (size_t)(us.size() * 0.99))];
    }
    b->setRole((OrvRole*)nullptr);
}
BENCHMARK(BM_PressToRoleLatency)->Iterations(2000)->UseRealTime()->Unit(benchmark::kMicrosecond);

void BM_MoveProducerMotionsOn10kActors(benchmark::State& state) {
    Setup s;
    if (!s.director) {
        state.SkipWithError("no DISPLAY");
        return;
    }
    OrvMakeUp* m = s.director->defaultMakeUp;
    // 100 by 100 small boxes over the window.
    s.stage->beginDrawing();
    for (int i = 0; i < 10000; i++)
        s.stage->append(
            new Box(s.director, m, Orv2dRect(2 + (i % 100) * 6, 2 + (i / 100) * 4, 4, 2)), 0);
    s.stage->flushDrawing(1);
    CountingMove* move = new CountingMove(s.stage);
    s.stage->setProducer(move);
    s.moveIn(3 + 50 * 6, 3 + 50 * 4);
    XTestFakeButtonEvent(s.dpy, 1, True, 0);
    s.pumpUntil([&] { return move->active != 0; });
    long n = 0;
    for (auto _ : state) {
        long before = move->drags;
        s.moveIn(200 + (int)(n % 200), 150 + (int)(n % 100));
        n++;
        if (!s.pumpUntil([&] { return move->drags > before; })) {
            state.SkipWithError("motion not delivered");
            break;
        }
    }
    XTestFakeButtonEvent(s.dpy, 1, False, 0);
    XSync(s.dpy, False);
    s.director->readAndDispatchEvents();
    state.counters["motions_per_s"] = benchmark::Counter((double)n, benchmark::Counter::kIsRate);
    state.counters["actors"] = (double)s.stage->cardinal();
}
BENCHMARK(BM_MoveProducerMotionsOn10kActors)
    ->Iterations(3000)
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
