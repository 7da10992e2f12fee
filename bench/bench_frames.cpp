// Dragging a frame by its title on a real X server (XTest): the time of one
// motion step, from the motion sent to the server having drawn everything
// the step caused (the stage's repaint, the interior window's move and any
// exposure of it), for a frame of 400 by 300 whose interior holds 1,000
// actors. In the same run, the same steps for a plain filled rectangle of the
// same size dragged by a live move role: what moving anything that large costs.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <vector>

#include "orv/actor.h"
#include "orv/director.h"
#include "orv/frame.h"
#include "orv/makeup.h"
#include "orv/role.h"
#include "orv/shapes.h"
#include "orv/stage.h"

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

namespace {

typedef std::chrono::steady_clock Clock;

// Counts the repaints of the stage it is installed on.
class RepaintCounter : public OrvStageHook {
public:
    long repaints = 0;
    void beforeDraw(const OrvCanvas*, const Orv2dMatrix*, const Orv2dRegion*) override {
        repaints++;
    }
    unsigned long deletedByStage() const override { return 1; }
};

struct Setup {
    OrvDirector* director = nullptr;
    OrvStage* stage = nullptr;
    Display* dpy = nullptr;
    Setup() {
        if (!getenv("DISPLAY")) return;
        director = new OrvDirector("bench_frames", nullptr, 0, nullptr);
        dpy = (Display*)director->display;
        director->setDoubleClickPeriod(0);
        director->showBalloon(0);  // no timer to serve between the steps
        stage = new OrvStage(director, Orv2dRect(0, 0, 800, 600), "bench", 0, 1);
        stage->focusEnabled = 0;  // no focus ring: the move alone is measured
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
    // Runs the loop until the condition holds, then until the server has sent
    // back all that the step caused; false after a second.
    template <class F>
    bool step(F done) {
        Clock::time_point end = Clock::now() + std::chrono::seconds(1);
        XFlush(dpy);
        while (!done()) {
            director->readAndDispatchEvents();
            if (Clock::now() > end) return false;
        }
        for (;;) {
            XSync(dpy, False);
            if (!XPending(dpy)) return true;
            director->readAndDispatchEvents();
        }
    }
};

// Drags `actor` by the point (x, y) back and forth by 4 pixels a step and
// records the time of each step.
void dragSteps(benchmark::State& state, Setup& s, OrvActor* actor, int x, int y) {
    s.moveIn(x, y);
    s.step([] { return true; });
    XTestFakeButtonEvent(s.dpy, 1, True, 0);
    s.step([] { return true; });
    std::vector<double> us;
    long n = 0;
    for (auto _ : state) {
        int32_t before = actor->bbox2d(nullptr).x;
        Clock::time_point sent = Clock::now();
        s.moveIn(x + (n % 2 ? 0 : 4), y);
        if (!s.step([&] { return actor->bbox2d(nullptr).x != before; })) {
            state.SkipWithError("motion not delivered");
            break;
        }
        us.push_back(std::chrono::duration<double, std::micro>(Clock::now() - sent).count());
        n++;
    }
    XTestFakeButtonEvent(s.dpy, 1, False, 0);
    s.step([] { return true; });
    if (!us.empty()) {
        std::sort(us.begin(), us.end());
        state.counters["median_us"] = us[us.size() / 2];
        state.counters["p90_us"] = us[std::min(us.size() - 1, (size_t)(us.size() * 0.9))];
        state.counters["p99_us"] = us[std::min(us.size() - 1, (size_t)(us.size() * 0.99))];
    }
}

void BM_DragFrameOf1000Actors(benchmark::State& state) {
    Setup s;
    if (!s.director) {
        state.SkipWithError("no DISPLAY");
        return;
    }
    OrvFrame* frame = new OrvFrame(s.director, Orv2dRect(100, 100, 400, 300), 1);
    frame->showTitleBar("Bench", 22);
    frame->showDecoration(7);
    s.stage->append(frame);
    OrvStage* inside = frame->getInteriorStage();
    if (!inside) {
        state.SkipWithError("no interior");
        return;
    }
    OrvMakeUp* m =
        s.director->makeUpForeground(s.director->defaultMakeUp, s.director->color("steel blue"));
    inside->beginDrawing();
    // 40 by 25 small boxes over the interior of 386 by 264.
    for (int i = 0; i < 1000; i++)
        inside->append(new OrvFilledRectangle(
            s.director, Orv2dRect(2 + (i % 40) * 9, 2 + (i / 40) * 10, 7, 8), m));
    inside->flushDrawing(1);
    RepaintCounter* counter = new RepaintCounter;
    inside->install(counter);
    // The title's area that moves the frame.
    dragSteps(state, s, frame, 300, 100 + 7 + 11);
    state.counters["actors"] = (double)inside->cardinal();
    // The window moves with its pixels: its actors are not painted again.
    state.counters["interior_repaints"] = (double)counter->repaints;
}
BENCHMARK(BM_DragFrameOf1000Actors)->Iterations(400)->UseRealTime()->Unit(benchmark::kMicrosecond);

void BM_DragPlainRectangleOfTheSameSize(benchmark::State& state) {
    Setup s;
    if (!s.director) {
        state.SkipWithError("no DISPLAY");
        return;
    }
    OrvMakeUp* m =
        s.director->makeUpForeground(s.director->defaultMakeUp, s.director->color("steel blue"));
    OrvActor* plate = new OrvFilledRectangle(s.director, Orv2dRect(100, 100, 400, 300), m);
    OrvMoveRole live;  // the title bar's move is live too
    live.immediate = 1;
    plate->setRole(&live);
    s.stage->append(plate);
    dragSteps(state, s, plate, 300, 118);
    plate->setRole((OrvRole*)nullptr);
}
BENCHMARK(BM_DragPlainRectangleOfTheSameSize)
    ->Iterations(400)
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
