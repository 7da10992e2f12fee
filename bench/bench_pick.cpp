// Clicks through OrvTheater::contains on an 800 by 600 scene seen in
// perspective: one face-set actor of 10^4, 10^5 and 10^6 triangles (a bumpy
// terrain), and a theater of 10^4 actors of 100 triangles each with matrices
// of their own. Each is timed with the hierarchies (the library's default),
// with them off (the walk over every actor and face), and against a floor
// written here: a plain loop that projects every triangle with worldToScene
// and tests the pixel. Then the building of a mesh's hierarchy with its
// bytes per triangle, and a check run first: random clicks, in perspective
// and orthographic, with culling and every face style, whose records must be
// the same with the hierarchies and without.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <random>
#include <vector>

#include "orv/actor3d.h"
#include "orv/director.h"
#include "orv/pick.h"
#include "orv/scene.h"
#include "orv/stage.h"
#include "orv/theater.h"

#include <X11/Xlib.h>

namespace {

const int W = 800, H = 600;

// A grid of rows by columns cells over the square from (x, y) of side `side`,
// two counter-clockwise triangles a cell.
struct Terrain {
    std::vector<Orv3dPoint> points;
    std::vector<unsigned> index;  // three a triangle

    Terrain(unsigned rows, unsigned columns, float x, float y, float side, std::mt19937& random) {
        std::uniform_real_distribution<float> bump(-0.04f, 0.04f);
        for (unsigned r = 0; r <= rows; r++)
            for (unsigned c = 0; c <= columns; c++)
                points.emplace_back(x + side * c / columns, y + side * r / rows,
                                    0.15f * std::sin(6 * (x + side * c / columns)) *
                                            std::cos(5 * (y + side * r / rows)) +
                                        bump(random));
        for (unsigned r = 0; r < rows; r++)
            for (unsigned c = 0; c < columns; c++) {
                unsigned a = r * (columns + 1) + c, b = a + 1, d = a + columns + 1, e = d + 1;
                index.insert(index.end(), {a, b, e, a, e, d});
            }
    }
    unsigned triangles() const { return (unsigned)index.size() / 3; }
    OrvFaceSet* faceSet() const {
        Orv3dPoint* copy = new Orv3dPoint[points.size()];
        std::copy(points.begin(), points.end(), copy);
        OrvShare* share = new OrvShare((unsigned)points.size(), copy, 0, 1);
        share->lock();
        OrvFaceSet* set = new OrvFaceSet(0);
        for (size_t i = 0; i < index.size(); i += 3) {
            OrvFace* f = new OrvFace;
            f->setIndexed(share, nullptr, nullptr, nullptr, nullptr);
            f->setIndex(0, 3, &index[i], nullptr, nullptr, nullptr, nullptr);
            set->add(f);
        }
        share->unLock();
        return set;
    }
};

struct Model {
    OrvTheater* theater = nullptr;
    std::vector<Terrain> meshes;
    std::vector<Orv3dMatrix> matrices;  // identity for the single mesh
    std::vector<Orv3dActorFaceSet*> actors;
    unsigned triangles = 0;
};

struct Setup {
    OrvDirector* director = nullptr;
    OrvStage* stage = nullptr;
    OrvScene* scene = nullptr;
    Model single[3];  // 10^4, 10^5, 10^6
    Model crowd;
    std::vector<Orv2dPoint> clicks;

    Setup() {
        if (!getenv("DISPLAY")) return;
        director = new OrvDirector("bench_pick", nullptr, 0, nullptr);
        Display* dpy = (Display*)director->display;
        director->showBalloon(0);
        stage = new OrvStage(director, Orv2dRect(0, 0, W + 20, H + 20), "bench", 0, 1);
        scene = new OrvScene(director, Orv2dRect(10, 10, W, H), 1, nullptr);
        stage->append(scene);
        for (int i = 0; i < 200; i++) {
            XSync(dpy, False);
            director->readAndDispatchEvents();
            XWindowAttributes a;
            XGetWindowAttributes(dpy, (Window)scene->drawingCanvas(), &a);
            if (a.map_state == IsViewable) break;
            struct timespec ts = {0, 5000000};
            nanosleep(&ts, nullptr);
        }
        perspective();

        std::mt19937 random(22);
        const unsigned shapes[3][2] = {{50, 100}, {250, 200}, {500, 1000}};
        for (int k = 0; k < 3; k++) {
            Model& m = single[k];
            m.meshes.emplace_back(shapes[k][0], shapes[k][1], -1, -1, 2, random);
            m.matrices.emplace_back();
            add(m, new Orv3dActorFaceSet(director, m.meshes.back().faceSet()));
        }
        for (int i = 0; i < 10000; i++) {
            crowd.meshes.emplace_back(5, 10, 0, 0, 0.02f, random);
            Orv3dActorFaceSet* a = new Orv3dActorFaceSet(director, crowd.meshes.back().faceSet());
            a->translate(-1 + 0.02f * (i % 100), -1 + 0.02f * (i / 100), 0, 0);
            crowd.matrices.push_back(*a->to3dWorld());
            add(crowd, a);
        }
        // Points of the terrain, so that most clicks fall on it.
        std::uniform_real_distribution<float> place(-0.95f, 0.95f);
        for (int i = 0; i < 512; i++) {
            Orv3dPoint p(place(random), place(random), 0);
            scene->worldToScene.apply(p);
            clicks.emplace_back((int)p.x, (int)p.y);
        }
    }
    ~Setup() {
        if (!director) return;
        for (Model& m : single) delete m.theater;
        delete crowd.theater;
        delete stage;
        delete director;
    }
    void add(Model& m, Orv3dActorFaceSet* a) {
        if (!m.theater) {
            m.theater = new OrvTheater(director);
            // Shown in the scene without being drawn there: picking needs no pixels.
            m.theater->layer(0)->append(scene, OrvTheaterLayer::VisibleBit |
                                                   OrvTheaterLayer::SelectableBit);
        }
        m.theater->append(a);
        m.actors.push_back(a);
        m.triangles += m.meshes.back().triangles();
    }
    void perspective() {
        OrvCamera* c = scene->currentCamera();
        c->lookAt(Orv3dPoint(0, -2.2f, 2.2f), Orv3dPoint(0, 0, 0), Orv3dVector(0, 0, 1));
        c->perspective(45, (float)W / H, 1, 20);
    }
    void orthographic() {
        OrvCamera* c = scene->currentCamera();
        c->lookAt(Orv3dPoint(0.3f, -1, 3), Orv3dPoint(0, 0, 0), Orv3dVector(0, 1, 0));
        c->orthographic(Orv3dRect(-1.2f, -0.9f, 2.4f, 1.8f), -10, 10);
    }

    // The floor: each triangle through the scene's matrix (times the actor's,
    // made once an actor), its pixels' floors, and the pixel tested against
    // its three edges; the nearest hit's depth.
    float floorPick(const Model& m, const Orv2dPoint& p) const {
        float best = 2;
        for (size_t a = 0; a < m.meshes.size(); a++) {
            Orv3dMatrix full = scene->worldToScene * m.matrices[a];
            const Terrain& t = m.meshes[a];
            for (size_t i = 0; i < t.index.size(); i += 3) {
                Orv3dPoint q[3] = {t.points[t.index[i]], t.points[t.index[i + 1]],
                                   t.points[t.index[i + 2]]};
                int64_t x[3], y[3];
                for (int k = 0; k < 3; k++) {
                    full.apply(q[k]);
                    x[k] = (int64_t)std::floor(q[k].x);
                    y[k] = (int64_t)std::floor(q[k].y);
                }
                int64_t e[3];
                for (int k = 0; k < 3; k++) {
                    int n = (k + 1) % 3;
                    e[k] = (x[n] - x[k]) * (p.y - y[k]) - (y[n] - y[k]) * (p.x - x[k]);
                }
                bool in =
                    (e[0] >= 0 && e[1] >= 0 && e[2] >= 0) || (e[0] <= 0 && e[1] <= 0 && e[2] <= 0);
                if (in && q[0].z < best) best = q[0].z;
            }
        }
        return best;
    }
};

Setup* setup() {
    static Setup s;
    return s.director ? &s : nullptr;
}

Model* model(Setup* s, int64_t which) {
    return which < 3 ? &s->single[which] : &s->crowd;
}

void Label(benchmark::State& state, const Model& m) {
    state.SetLabel(std::to_string(m.actors.size()) + " actors, " + std::to_string(m.triangles) +
                   " triangles");
}

void BM_Contains(benchmark::State& state) {
    Setup* s = setup();
    if (!s) return state.SkipWithError("no DISPLAY");
    Model& m = *model(s, state.range(0));
    OrvUsePickHierarchy(state.range(1));
    s->perspective();
    m.theater->contains(s->clicks[0], s->scene, 0, 0, nullptr);  // builds what it needs
    size_t i = 0, hits = 0;
    for (auto _ : state) {
        OrvActor* a =
            m.theater->contains(s->clicks[i++ % s->clicks.size()], s->scene, 0, 0, nullptr);
        hits += a != nullptr;
        benchmark::DoNotOptimize(a);
    }
    OrvUsePickHierarchy(1);
    state.counters["hit"] = (double)hits / (double)state.iterations();
    Label(state, m);
}

void BM_Floor(benchmark::State& state) {
    Setup* s = setup();
    if (!s) return state.SkipWithError("no DISPLAY");
    Model& m = *model(s, state.range(0));
    s->perspective();
    size_t i = 0;
    for (auto _ : state) {
        float z = s->floorPick(m, s->clicks[i++ % s->clicks.size()]);
        benchmark::DoNotOptimize(z);
    }
    Label(state, m);
}

// The hierarchy of the mesh built again, and one pick through it.
void BM_BuildMeshHierarchy(benchmark::State& state) {
    Setup* s = setup();
    if (!s) return state.SkipWithError("no DISPLAY");
    Model& m = *model(s, state.range(0));
    s->perspective();
    OrvFaceSet* faces = m.actors[0]->faces;
    for (auto _ : state) {
        faces->dropPickTree();
        benchmark::DoNotOptimize(faces->pick(s->clicks[0], s->scene, m.actors[0]));
    }
    OrvPickHierarchyStats before = OrvGetPickHierarchyStats();
    faces->dropPickTree();
    OrvPickHierarchyStats after = OrvGetPickHierarchyStats();
    state.counters["bytes/triangle"] =
        (double)(before.meshBytes - after.meshBytes) / (double)(before.meshFaces - after.meshFaces);
    faces->pick(s->clicks[0], s->scene, m.actors[0]);
    Label(state, m);
}

// Random clicks, each answered with the hierarchies and without; every field
// of the two records must be the same.
void BM_CheckSameRecords(benchmark::State& state) {
    Setup* s = setup();
    if (!s) return state.SkipWithError("no DISPLAY");
    Model& m = *model(s, state.range(0));
    const int clicks = (int)state.range(1);
    const unsigned long styles[][3] = {{0, 4, 4}, {1, 4, 4}, {2, 4, 4}, {0, 2, 2},
                                       {0, 1, 1}, {0, 4, 2}, {1, 1, 4}, {2, 8, 2}};
    std::mt19937 random(7);
    std::uniform_int_distribution<int> x(0, W - 1), y(0, H - 1);
    int differ = 0, hits = 0, done = 0;
    for (auto _ : state) {
        for (int camera = 0; camera < 2; camera++) {
            camera ? s->orthographic() : s->perspective();
            for (const auto& st : styles) {
                for (OrvActor* a : m.actors) {
                    a->setCull(st[0]);
                    a->setFrontStyle(st[1]);
                    a->setBackStyle(st[2]);
                }
                for (int i = 0; i < clicks / 16; i++, done++) {
                    Orv2dPoint p(x(random), y(random));
                    OrvUsePickHierarchy(1);
                    OrvActor* fast = m.theater->contains(p, s->scene, 0, 0, nullptr);
                    OrvPick3dRecord r = s->director->pick3dRecord();
                    OrvUsePickHierarchy(0);
                    OrvActor* slow = m.theater->contains(p, s->scene, 0, 0, nullptr);
                    const OrvPick3dRecord& w = s->director->pick3dRecord();
                    hits += slow != nullptr;
                    differ += fast != slow || r.type != w.type || r.actor != w.actor ||
                              r.polygon != w.polygon || r.point != w.point ||
                              r.vertexIndex != w.vertexIndex || r.edgeIndex != w.edgeIndex;
                }
            }
        }
    }
    OrvUsePickHierarchy(1);
    for (OrvActor* a : m.actors) {
        a->setCull(OrvCullBack);
        a->setFrontStyle(OrvFaceFilled);
        a->setBackStyle(OrvFaceFilled);
    }
    s->perspective();
    state.counters["clicks"] = done;
    state.counters["hits"] = hits;
    state.counters["different"] = differ;
    if (differ) state.SkipWithError("records differ");
    Label(state, m);
}

}  // namespace

// Models: 0, 1, 2 the single meshes of 10^4, 10^5, 10^6 triangles; 3 the crowd.
// The check runs once; each timing is taken five times, with median and spread.
BENCHMARK(BM_CheckSameRecords)
    ->Args({0, 10000})
    ->Args({1, 2000})
    ->Args({2, 160})
    ->Args({3, 320})
    ->Iterations(1)
    ->Unit(benchmark::kSecond);
BENCHMARK(BM_Contains)
    ->ArgsProduct({{0, 1, 2, 3}, {1}})
    ->ArgNames({"model", "hierarchy"})
    ->Repetitions(5)
    ->ReportAggregatesOnly(true)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Contains)
    ->ArgsProduct({{0, 1, 2, 3}, {0}})
    ->ArgNames({"model", "hierarchy"})
    ->Repetitions(5)
    ->ReportAggregatesOnly(true)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Floor)
    ->DenseRange(0, 3)
    ->ArgName("model")
    ->Repetitions(5)
    ->ReportAggregatesOnly(true)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BuildMeshHierarchy)
    ->DenseRange(0, 2)
    ->ArgName("model")
    ->Repetitions(5)
    ->ReportAggregatesOnly(true)
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
