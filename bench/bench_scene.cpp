// Frames of a 1000 by 800 scene on a real X server with Mesa's GLX: 10^5 lit
// triangles as one face-set actor, and as 10^3 actors of 100 triangles with
// matrices of their own, drawn through the display-list pass and in
// immediate mode. The floors are the same triangles written by hand in plain
// GL in the same run: immediate mode, and one display list an actor, with the
// same matrices and the same light. Last, moving one small actor in a
// theater of 10^4 (a scissored frame and a partial copy) against a full frame
// of that theater. Each iteration is one whole frame, finished (glFinish).
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <ctime>
#include <random>
#include <vector>

#include "orv/actor3d.h"
#include "orv/director.h"
#include "orv/scene.h"
#include "orv/stage.h"
#include "orv/theater.h"

#include <GL/gl.h>
#include <GL/glx.h>
#include <X11/Xlib.h>

namespace {

const int W = 1000, H = 800;

// Triangles of one actor: points three by three with one normal each.
struct Mesh {
    std::vector<Orv3dPoint> points;
    std::vector<Orv3dVector> normals;
};

Mesh SmallTriangles(unsigned count, float spread, std::mt19937& random) {
    std::uniform_real_distribution<float> place(-spread, spread), jitter(-0.02f, 0.02f);
    Mesh m;
    for (unsigned i = 0; i < count; i++) {
        Orv3dPoint c(place(random), place(random), place(random));
        Orv3dPoint a(c.x + jitter(random), c.y + jitter(random), c.z);
        Orv3dPoint b(c.x + 0.02f, c.y + jitter(random), c.z + jitter(random));
        Orv3dPoint d(c.x + jitter(random), c.y + 0.02f, c.z + jitter(random));
        m.points.push_back(a);
        m.points.push_back(b);
        m.points.push_back(d);
        Orv3dVector u(b.x - a.x, b.y - a.y, b.z - a.z), v(d.x - a.x, d.y - a.y, d.z - a.z);
        Orv3dVector n(u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x);
        m.normals.push_back(n);
    }
    return m;
}

// The same triangles as a face set: faces of three points, each with its normal.
OrvFaceSet* FaceSetOf(const Mesh& m) {
    unsigned n = (unsigned)m.normals.size();
    Orv3dPoint* p = new Orv3dPoint[3 * n];
    for (unsigned i = 0; i < 3 * n; i++) p[i] = m.points[i];
    OrvShare* points = new OrvShare(3 * n, p, 0, 1);
    points->lock();
    OrvFaceSet* set = new OrvFaceSet(0);
    for (unsigned i = 0; i < n; i++) {
        unsigned index[3] = {3 * i, 3 * i + 1, 3 * i + 2};
        OrvFace* f = new OrvFace;
        f->setIndexed(points, nullptr, nullptr, nullptr, nullptr);
        f->setIndex(0, 3, index, nullptr, nullptr, nullptr, nullptr);
        f->normal(&m.normals[i]);
        set->add(f);
    }
    points->unLock();
    set->computeBBox();
    return set;
}

struct Setup {
    OrvDirector* director = nullptr;
    OrvStage* stage = nullptr;
    OrvScene* scene = nullptr;
    Display* dpy = nullptr;
    OrvTheater* one = nullptr;    // 10^5 triangles in one actor
    OrvTheater* many = nullptr;   // 10^3 actors of 100
    OrvTheater* crowd = nullptr;  // 10^4 small actors
    OrvTheater* shown = nullptr;
    Mesh oneMesh;
    std::vector<Mesh> manyMeshes;
    std::vector<Orv3dMatrix> manyMatrices;
    std::vector<GLuint> handLists;
    Orv3dActor* mover = nullptr;

    Setup() {
        if (!getenv("DISPLAY")) return;
        director = new OrvDirector("bench_scene", nullptr, 0, nullptr);
        dpy = (Display*)director->display;
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
        OrvCamera* camera = scene->currentCamera();
        camera->lookAt(Orv3dPoint(0, 0, 4), Orv3dPoint(0, 0, 0), Orv3dVector(0, 1, 0));
        camera->perspective(45, 1, 1, 20);
        scene->add(new OrvDirectionalLight(OrvRGB(1, 1, 1), 1, Orv3dVector(0.3f, 0.4f, 1)));

        std::mt19937 random(7);
        one = new OrvTheater(director);
        oneMesh = SmallTriangles(100000, 1.2f, random);
        one->append(new Orv3dActorFaceSet(director, FaceSetOf(oneMesh), nullptr));

        many = new OrvTheater(director);
        std::uniform_real_distribution<float> place(-1.1f, 1.1f);
        for (int i = 0; i < 1000; i++) {
            manyMeshes.push_back(SmallTriangles(100, 0.1f, random));
            Orv3dActorFaceSet* a =
                new Orv3dActorFaceSet(director, FaceSetOf(manyMeshes.back()), nullptr);
            a->translate(place(random), place(random), place(random), 0);
            a->rotateZ(i % 90, 1);
            manyMatrices.push_back(*a->to3dWorld());
            many->append(a);
        }

        crowd = new OrvTheater(director);
        for (int i = 0; i < 10000; i++) {
            Mesh quad = SmallTriangles(2, 0.01f, random);
            Orv3dActorFaceSet* a = new Orv3dActorFaceSet(director, FaceSetOf(quad), nullptr);
            a->translate(-1.4f + 0.028f * (i % 100), -1.1f + 0.022f * (i / 100), 0, 0);
            crowd->append(a);
            if (i == 5050) mover = a;
        }
    }
    ~Setup() {
        if (!director) return;
        show(nullptr);
        if (!handLists.empty()) glDeleteLists(handLists[0], (GLsizei)handLists.size());
        delete one;
        delete many;
        delete crowd;
        delete stage;
        delete director;
    }
    void show(OrvTheater* t) {
        if (shown == t) return;
        if (shown) shown->disconnect(scene);
        shown = t;
        if (t) t->connect(scene);
    }
    void libraryFrame(OrvTheater* t, unsigned long immediate) {
        show(t);
        OrvForceImmediateMode(immediate);
        t->drawAll(scene, nullptr, 1);
        OrvForceImmediateMode(0);
        glFinish();
    }

    // ----- The floors: plain GL, the same camera, light and matrices -------------
    void handBegin() {
        scene->endRendering();
        glXMakeCurrent(dpy, (GLXDrawable)scene->drawingCanvas(), (GLXContext)scene->context());
        glDrawBuffer(GL_BACK);
        glDisable(GL_SCISSOR_TEST);
        glViewport(0, 0, W, H);
        float m[16];
        glMatrixMode(GL_PROJECTION);
        scene->currentCamera()->mapping().transpose(m);
        glLoadMatrixf(m);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        float direction[4] = {0.3f, 0.4f, 1, 0}, white[4] = {1, 1, 1, 1};
        glLightfv(GL_LIGHT0, GL_POSITION, direction);
        glLightfv(GL_LIGHT0, GL_DIFFUSE, white);
        glEnable(GL_LIGHT0);
        glEnable(GL_LIGHTING);
        glEnable(GL_NORMALIZE);
        glEnable(GL_DEPTH_TEST);
        scene->currentCamera()->orientation().transpose(m);
        glLoadMatrixf(m);
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    }
    void handEnd() {
        glXSwapBuffers(dpy, (GLXDrawable)scene->drawingCanvas());
        glFinish();
    }
    static void triangles(const Mesh& mesh) {
        glBegin(GL_TRIANGLES);
        for (size_t i = 0; i < mesh.normals.size(); i++) {
            glNormal3fv(&mesh.normals[i].x);
            for (int k = 0; k < 3; k++) glVertex3fv(&mesh.points[3 * i + k].x);
        }
        glEnd();
    }
    void handImmediateOne() {
        handBegin();
        triangles(oneMesh);
        handEnd();
    }
    void handImmediateMany() {
        handBegin();
        for (size_t i = 0; i < manyMeshes.size(); i++) {
            float m[16];
            manyMatrices[i].transpose(m);
            glPushMatrix();
            glMultMatrixf(m);
            triangles(manyMeshes[i]);
            glPopMatrix();
        }
        handEnd();
    }
    void handListsOne() {
        handBegin();
        if (handLists.empty()) makeLists();
        glCallList(handLists[0]);
        handEnd();
    }
    void handListsMany() {
        handBegin();
        if (handLists.empty()) makeLists();
        for (size_t i = 0; i < manyMeshes.size(); i++) {
            float m[16];
            manyMatrices[i].transpose(m);
            glPushMatrix();
            glMultMatrixf(m);
            glCallList(handLists[1 + i]);
            glPopMatrix();
        }
        handEnd();
    }
    void makeLists() {
        GLuint base = glGenLists((GLsizei)(1 + manyMeshes.size()));
        for (size_t i = 0; i <= manyMeshes.size(); i++) {
            handLists.push_back(base + (GLuint)i);
            glNewList(base + (GLuint)i, GL_COMPILE);
            triangles(i == 0 ? oneMesh : manyMeshes[i - 1]);
            glEndList();
        }
    }
};

Setup* setup() {
    static Setup s;
    return s.director ? &s : nullptr;
}

void Report(benchmark::State& state, double triangles) {
    state.counters["frames/s"] =
        benchmark::Counter(1, benchmark::Counter::kIsIterationInvariantRate);
    state.counters["triangles/s"] =
        benchmark::Counter(triangles, benchmark::Counter::kIsIterationInvariantRate);
}

void BM_OneActor_ListPass(benchmark::State& state) {
    Setup* s = setup();
    if (!s) return state.SkipWithError("no DISPLAY");
    for (auto _ : state) s->libraryFrame(s->one, 0);
    Report(state, 1e5);
}
void BM_OneActor_HandLists(benchmark::State& state) {
    Setup* s = setup();
    if (!s) return state.SkipWithError("no DISPLAY");
    for (auto _ : state) s->handListsOne();
    Report(state, 1e5);
}
void BM_OneActor_ImmediatePass(benchmark::State& state) {
    Setup* s = setup();
    if (!s) return state.SkipWithError("no DISPLAY");
    for (auto _ : state) s->libraryFrame(s->one, 1);
    Report(state, 1e5);
}
void BM_OneActor_HandImmediate(benchmark::State& state) {
    Setup* s = setup();
    if (!s) return state.SkipWithError("no DISPLAY");
    for (auto _ : state) s->handImmediateOne();
    Report(state, 1e5);
}
void BM_ManyActors_ListPass(benchmark::State& state) {
    Setup* s = setup();
    if (!s) return state.SkipWithError("no DISPLAY");
    for (auto _ : state) s->libraryFrame(s->many, 0);
    Report(state, 1e5);
}
void BM_ManyActors_HandLists(benchmark::State& state) {
    Setup* s = setup();
    if (!s) return state.SkipWithError("no DISPLAY");
    for (auto _ : state) s->handListsMany();
    Report(state, 1e5);
}
void BM_ManyActors_ImmediatePass(benchmark::State& state) {
    Setup* s = setup();
    if (!s) return state.SkipWithError("no DISPLAY");
    for (auto _ : state) s->libraryFrame(s->many, 1);
    Report(state, 1e5);
}
void BM_ManyActors_HandImmediate(benchmark::State& state) {
    Setup* s = setup();
    if (!s) return state.SkipWithError("no DISPLAY");
    for (auto _ : state) s->handImmediateMany();
    Report(state, 1e5);
}

// One small actor of 10^4 moved: its old and new boxes are repainted under a
// scissor and copied to the front; against a whole frame of the same theater.
void BM_Crowd_MoveOne(benchmark::State& state) {
    Setup* s = setup();
    if (!s) return state.SkipWithError("no DISPLAY");
    s->libraryFrame(s->crowd, 0);
    float step = 0.004f;
    for (auto _ : state) {
        s->mover->translate(step, 0, 0, 1);
        step = -step;
        glFinish();
    }
}
void BM_Crowd_FullFrame(benchmark::State& state) {
    Setup* s = setup();
    if (!s) return state.SkipWithError("no DISPLAY");
    for (auto _ : state) s->libraryFrame(s->crowd, 0);
}

}  // namespace

BENCHMARK(BM_OneActor_ListPass)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_OneActor_HandLists)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_OneActor_ImmediatePass)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_OneActor_HandImmediate)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ManyActors_ListPass)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ManyActors_HandLists)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ManyActors_ImmediatePass)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ManyActors_HandImmediate)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_Crowd_MoveOne)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_Crowd_FullFrame)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_MAIN();
