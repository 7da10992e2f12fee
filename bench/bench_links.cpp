// Cost of links on the X server in $DISPLAY (run it on Xvfb): moving a hub
// that 1,000 links join to the rest must repaint only the damaged area, and
// a move step on a stage of 10^4 actors and 2*10^4 links is set against the
// same move on the same stage with no links, in the same run.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "orv/director.h"
#include "orv/link.h"
#include "orv/makeup.h"
#include "orv/region.h"
#include "orv/shapes.h"
#include "orv/stage.h"

#include <X11/Xlib.h>

namespace {

const unsigned kWidth = 1000, kHeight = 800;
long gDraws = 0;

class CountingBox : public OrvFilledRectangle {
public:
    using OrvFilledRectangle::OrvFilledRectangle;
    void draw2d(OrvCanvas* c, const Orv2dMatrix* m) override {
        gDraws++;
        OrvFilledRectangle::draw2d(c, m);
    }
};

class CountingLink : public OrvLinkImage {
public:
    using OrvLinkImage::OrvLinkImage;
    void draw2d(OrvCanvas* c, const Orv2dMatrix* m) override {
        gDraws++;
        OrvLinkImage::draw2d(c, m);
    }
};

// The area that each repaint covers, summed.
class AreaHook : public OrvStageHook {
public:
    double area = 0;
    void beforeDraw(const OrvCanvas*, const Orv2dMatrix*, const Orv2dRegion* r) override {
        if (!r) {
            area += (double)kWidth * kHeight;
            return;
        }
        for (unsigned short i = 0; i < r->count; i++) {
            Orv2dRect b = r->rectangle(i);
            area += (double)b.w * b.h;
        }
    }
};

OrvDirector* director() {
    static OrvDirector* d = new OrvDirector("bench_links", nullptr, 0, nullptr);
    return d;
}

struct Graph {
    OrvStage* stage;
    std::vector<OrvActor*> nodes;
    AreaHook* hook;

    // n boxes on a grid; `links` links, each node to its right and lower
    // neighbours as a diagram has them; with a hub, node 0 sits in the middle
    // and every link ends there.
    Graph(unsigned n, unsigned links, bool hub) {
        OrvDirector* d = director();
        OrvMakeUp* look = d->makeUpForeground(d->defaultMakeUp, d->color("steel blue"));
        stage = new OrvStage(d, Orv2dRect(0, 0, kWidth, kHeight), "bench", 0, 1);
        XSync((Display*)d->display, False);
        hook = new AreaHook;
        stage->install(hook);
        stage->beginDrawing();
        unsigned side = 1;
        while (side * side < n) side++;
        for (unsigned i = 0; i < n; i++) {
            int x = (int)((i % side) * (kWidth - 20) / side),
                y = (int)((i / side) * (kHeight - 20) / side);
            if (hub && i == 0) x = kWidth / 2, y = kHeight / 2;
            OrvActor* a = new CountingBox(d, Orv2dRect(x, y, 6, 6), look);
            stage->append(a, 0);
            nodes.push_back(a);
        }
        for (unsigned i = 0; i < links; i++) {
            OrvActor* f = hub ? nodes[1 + i % (n - 1)] : nodes[(i / 2) % n];
            unsigned k = i / 2, next = i % 2 ? k + side : k + 1;
            OrvActor* t = hub ? nodes[0] : nodes[next % n];
            stage->append(new CountingLink(d, f, t, 0, 1.0f, look), 1);
        }
        stage->abortDrawing();
        stage->drawAll(nullptr, 1);
        XSync((Display*)d->display, False);
    }
    ~Graph() { delete stage; }
};

// One move step: a nest around the change, as every setter makes it.
void moveBy(OrvActor* a, int dx) {
    a->beginDrawing(1);
    ((OrvRectangle*)a)->rect.x += dx;
    a->flushDrawing(1);
}

void BM_MoveHubWithLinks(benchmark::State& state) {
    Graph g(1001, 1000, true);
    OrvActor* hub = g.nodes[0];
    int dx = 1;
    gDraws = 0;
    g.hook->area = 0;
    for (auto _ : state) {
        moveBy(hub, dx);
        dx = -dx;
        XSync((Display*)director()->display, False);
    }
    state.counters["draws_per_move"] = benchmark::Counter((double)gDraws / state.iterations());
    state.counters["repainted_of_window"] =
        benchmark::Counter(g.hook->area / state.iterations() / ((double)kWidth * kHeight));
}

// The same node moved on a stage of n actors with 2n links and with none.
void moveStep(benchmark::State& state, bool withLinks) {
    unsigned n = (unsigned)state.range(0);
    Graph g(n, withLinks ? 2 * n : 0, false);
    // A node in the middle of a row, away from the links that wrap to the next row.
    OrvActor* a = g.nodes[n / 2 + 50];
    int dx = 1;
    gDraws = 0;
    for (auto _ : state) {
        moveBy(a, dx);
        dx = -dx;
        XSync((Display*)director()->display, False);
    }
    state.counters["draws_per_move"] = benchmark::Counter((double)gDraws / state.iterations());
}

void BM_MoveWithLinks(benchmark::State& state) {
    moveStep(state, true);
}
void BM_MoveWithoutLinks(benchmark::State& state) {
    moveStep(state, false);
}

}  // namespace

BENCHMARK(BM_MoveHubWithLinks)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_MoveWithoutLinks)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_MoveWithLinks)->Arg(10000)->Unit(benchmark::kMicrosecond);

int main(int argc, char** argv) {
    if (!getenv("DISPLAY")) {
        fprintf(stderr, "bench_links: needs an X server in DISPLAY (Xvfb)\n");
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
