// The latency of a click in a scene on a real X server (XTest): from the
// press sent to the server to the role's input3d of the actor under the
// pointer, in a theater of 10^4 actors of 100 triangles with matrices of
// their own. The path is the scene window's input callback, the theater's
// handleInput, its dispatch and its pick. The release is sent after each
// press and served outside the timing.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <vector>

#include "orv/actor3d.h"
#include "orv/director.h"
#include "orv/role.h"
#include "orv/scene.h"
#include "orv/stage.h"
#include "orv/theater.h"

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

namespace {

typedef std::chrono::steady_clock Clock;

// Notes the moment a press reaches it.
class StampRole : public OrvRole {
public:
    Clock::time_point pressed;
    bool got = false;
    int input3d(OrvActor*, const OrvEvent& event, OrvTheater*, OrvScene*) override {
        if (event.type == OrvButtonDown) {
            pressed = Clock::now();
            got = true;
        }
        return 1;
    }
    const char* className() const override { return "BenchStamp"; }
};

// A square of 10 by 10 cells, two triangles a cell, on z = 0.
OrvFaceSet* Square(float side) {
    const unsigned n = 10;
    Orv3dPoint* p = new Orv3dPoint[(n + 1) * (n + 1)];
    for (unsigned r = 0; r <= n; r++)
        for (unsigned c = 0; c <= n; c++)
            p[r * (n + 1) + c] = Orv3dPoint(side * c / n, side * r / n, 0);
    OrvShare* points = new OrvShare((n + 1) * (n + 1), p, 0, 1);
    points->lock();
    OrvFaceSet* set = new OrvFaceSet(0);
    for (unsigned r = 0; r < n; r++)
        for (unsigned c = 0; c < n; c++) {
            unsigned a = r * (n + 1) + c, b = a + 1, d = a + n + 1, e = d + 1;
            const unsigned tri[2][3] = {{a, b, e}, {a, e, d}};
            for (const auto& t : tri) {
                OrvFace* f = new OrvFace;
                f->setIndexed(points, nullptr, nullptr, nullptr, nullptr);
                f->setIndex(0, 3, t, nullptr, nullptr, nullptr, nullptr);
                set->add(f);
            }
        }
    points->unLock();
    set->computeBBox();
    return set;
}

struct Setup {
    OrvDirector* director = nullptr;
    Display* dpy = nullptr;
    OrvStage* stage = nullptr;
    OrvScene* scene = nullptr;
    OrvTheater* theater = nullptr;
    StampRole role;

    Setup() {
        if (!getenv("DISPLAY")) return;
        director = new OrvDirector("bench_input3d", nullptr, 0, nullptr);
        dpy = (Display*)director->display;
        director->showBalloon(0);
        director->setDoubleClickPeriod(0);
        OrvRegisterRoleInstance(&role);
        stage = new OrvStage(director, Orv2dRect(0, 0, 820, 620), "bench", 0, 1);
        scene = new OrvScene(director, Orv2dRect(10, 10, 800, 600), 1, nullptr);
        theater = new OrvTheater(director);
        theater->beginDrawing();  // one frame for all the appends
        for (int i = 0; i < 10000; i++) {
            Orv3dActorFaceSet* a = new Orv3dActorFaceSet(director, Square(0.018f), nullptr);
            a->translate(-1 + 0.02f * (i % 100), -1 + 0.02f * (i / 100), 0, 0);
            a->setRole(&role);
            theater->append(a);
        }
        theater->connect(scene, stage, 0);
        theater->flushDrawing(1);
        for (int i = 0; i < 400; i++) {
            XSync(dpy, False);
            director->readAndDispatchEvents();
            XWindowAttributes a;
            XGetWindowAttributes(dpy, (Window)scene->drawingCanvas(), &a);
            if (a.map_state == IsViewable && i > 40) break;
            struct timespec ts = {0, 5000000};
            nanosleep(&ts, nullptr);
        }
    }
    ~Setup() {
        if (!director) return;
        delete theater;
        delete stage;
        delete director;
    }
    // Serves events until the role is told, or a second has gone.
    bool serveUntilPressed() {
        Clock::time_point end = Clock::now() + std::chrono::seconds(1);
        while (!role.got) {
            director->readAndDispatchEvents();
            if (Clock::now() > end) return false;
        }
        return true;
    }
    void serveFor(int ms) {
        Clock::time_point end = Clock::now() + std::chrono::milliseconds(ms);
        XSync(dpy, False);
        while (Clock::now() < end) director->readAndDispatchEvents();
    }
};

Setup* setup() {
    static Setup s;
    return s.director ? &s : nullptr;
}

void BM_PressToInput3d(benchmark::State& state) {
    Setup* s = setup();
    if (!s) return state.SkipWithError("no DISPLAY");
    // The middle of an actor near the window's centre, in root coordinates.
    Orv3dPoint p(0.009f, 0.009f, 0);
    s->scene->worldToScene.apply(p);
    Window child;
    int rx, ry;
    XTranslateCoordinates(s->dpy, (Window)s->scene->drawingCanvas(), DefaultRootWindow(s->dpy),
                          (int)p.x, (int)p.y, &rx, &ry, &child);
    XTestFakeMotionEvent(s->dpy, DefaultScreen(s->dpy), rx, ry, 0);
    s->serveFor(50);
    for (auto _ : state) {
        s->role.got = false;
        Clock::time_point sent = Clock::now();
        XTestFakeButtonEvent(s->dpy, 1, True, 0);
        XFlush(s->dpy);
        if (!s->serveUntilPressed()) return state.SkipWithError("the press never arrived");
        state.SetIterationTime(std::chrono::duration<double>(s->role.pressed - sent).count());
        state.PauseTiming();
        XTestFakeButtonEvent(s->dpy, 1, False, 0);
        s->serveFor(5);
        state.ResumeTiming();
    }
}

}  // namespace

BENCHMARK(BM_PressToInput3d)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(200);
BENCHMARK_MAIN();
