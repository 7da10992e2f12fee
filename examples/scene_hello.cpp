// scene_hello: one theater shown in two scenes on a stage. The left scene
// looks through a perspective camera, the right one through an orthographic
// camera from above. The theater holds a smooth torus (a face set, smoothed
// by crease angle) and a wavy chequered sheet (a quad-mesh series with a
// colour a face); both are drawn through display lists and lit by a point
// light and a directional light. A timer turns the torus over: each turn
// moves only its matrix, so its display list is compiled once.
//
//   scene_hello                opens a window on $DISPLAY; q quits.
//   scene_hello --shot FILE    lets the torus turn for a second, writes the
//                              stage as a PPM and exits.
#include <cmath>
#include <cstdio>
#include <cstring>
#include <sys/time.h>

#include <orv/orvis.h>

static const unsigned ringSides = 32, tubeSides = 16;

// A torus round the z axis, every face indexed into one array of points and
// coloured, so that lights shade it.
static OrvFaceSet* Torus(float major, float minor) {
    Orv3dPoint* p = new Orv3dPoint[ringSides * tubeSides];
    for (unsigned i = 0; i < ringSides; i++)
        for (unsigned j = 0; j < tubeSides; j++) {
            double u = 2 * M_PI * i / ringSides, v = 2 * M_PI * j / tubeSides;
            double r = major + minor * std::cos(v);
            p[i * tubeSides + j] = Orv3dPoint((float)(r * std::cos(u)), (float)(r * std::sin(u)),
                                              (float)(minor * std::sin(v)));
        }
    OrvShare* points = new OrvShare(ringSides * tubeSides, p, 0, 1);
    points->lock();
    OrvFaceSet* set = new OrvFaceSet(0);
    const OrvRGB gold(0.9f, 0.65f, 0.2f);
    for (unsigned i = 0; i < ringSides; i++)
        for (unsigned j = 0; j < tubeSides; j++) {
            unsigned i1 = (i + 1) % ringSides, j1 = (j + 1) % tubeSides;
            unsigned index[4] = {i * tubeSides + j, i1 * tubeSides + j, i1 * tubeSides + j1,
                                 i * tubeSides + j1};
            OrvFace* f = new OrvFace;
            f->setIndexed(points, nullptr, nullptr, nullptr, nullptr);
            f->setIndex(0, 4, index, nullptr, nullptr, nullptr, nullptr);
            f->color(&gold);
            set->add(f);
        }
    points->unLock();
    set->computeFacesNormals();
    set->computeVerticeNormals(40);
    return set;
}

// A sheet of n by n quads on the plane z = 0 with a gentle wave, chequered.
static Orv3dShape* Sheet(OrvDirector* d, unsigned n, float size) {
    Orv3dPoint* p = new Orv3dPoint[(n + 1) * (n + 1)];
    for (unsigned r = 0; r <= n; r++)
        for (unsigned c = 0; c <= n; c++) {
            float x = size * ((float)c / n - 0.5f), y = size * ((float)r / n - 0.5f);
            p[r * (n + 1) + c] = Orv3dPoint(x, y, 0.15f * std::sin(x * 2) * std::cos(y * 2));
        }
    OrvSeries* series = new OrvSeries(OrvQuadMesh, n, n);
    series->setNonIndexed(new OrvShare((n + 1) * (n + 1), p, 0, 1), nullptr, nullptr, nullptr,
                          nullptr);
    series->computeFacesNormals();
    series->computeVerticeNormals(60);
    OrvRGB* colors = new OrvRGB[n * n];
    for (unsigned r = 0; r < n; r++)
        for (unsigned c = 0; c < n; c++)
            colors[r * n + c] =
                (r + c) % 2 ? OrvRGB(0.25f, 0.45f, 0.8f) : OrvRGB(0.85f, 0.9f, 0.95f);
    // Flat shading keeps each face's colour whole: a strip shares vertices between faces.
    OrvMakeUp* flat = d->makeUpSmooth(d->defaultMakeUp, 0);
    return new Orv3dShape(d, series, new OrvShare(n * n, colors, 0, 1), nullptr, flat);
}

// Turns an actor over in place, a few degrees about its own x axis at each tick,
// 1.5 above the sheet.
class Turner : public OrvTimer {
public:
    OrvActor* actor;
    double angle = 30;
    unsigned long ticks = 0;
    Turner(OrvDirector* d, OrvActor* a) : OrvTimer(d, 0, 40), actor(a) {
        oneShot = 0;
        place();
    }
    void place() {
        actor->build3dMatrix(Orv3dPoint(0, 0, 0), Orv3dVector(0, 0, 1.5f), angle, 0, 0,
                             Orv3dVector(1, 1, 1), 0);
    }
    void activate() override {
        angle += 4;
        place();
        ticks++;
    }
};

class QuitAccelerator : public OrvAccelerator {
public:
    int* quit;
    explicit QuitAccelerator(int* q) : OrvAccelerator(OrvKeyDown, 'q', 0), quit(q) {}
    int input2d(OrvStage*, const OrvEvent&) override {
        *quit = 1;
        return 1;
    }
};

static long NowMs() {
    struct timeval tv;
    gettimeofday(&tv, nullptr);
    return tv.tv_sec * 1000L + tv.tv_usec / 1000;
}

int main(int argc, char** argv) {
    const char* shot = argc > 2 && strcmp(argv[1], "--shot") == 0 ? argv[2] : nullptr;
    OrvDirector* d = new OrvDirector("scene_hello", nullptr, argc, argv);
    if (!d->display) {
        fprintf(stderr, "scene_hello: no display\n");
        return 1;
    }
    int quit = 0;
    OrvStage* stage = new OrvStage(d, Orv2dRect(40, 40, 820, 420), "Orvis scenes", 0, 1);
    stage->setBackground(d->color("gray80"));
    stage->add(new QuitAccelerator(&quit));

    OrvTheater* theater = new OrvTheater(d);
    OrvFaceSet* torusFaces = Torus(1.0f, 0.35f);
    Orv3dActorFaceSet* torus = new Orv3dActorFaceSet(d, torusFaces, nullptr);
    theater->append(torus);
    theater->append(Sheet(d, 16, 4.0f));

    OrvMakeUp* dark = d->makeUpBackground(d->defaultMakeUp, d->color("midnight blue"));
    OrvMakeUp* pale = d->makeUpBackground(d->defaultMakeUp, d->color("gray20"));
    OrvScene* left = new OrvScene(d, Orv2dRect(10, 10, 400, 400), 1, dark);
    OrvScene* right = new OrvScene(d, Orv2dRect(420, 10, 390, 400), 1, pale);
    theater->connect(left, stage, 0);
    theater->connect(right, stage, 0);

    // Left: perspective, from the front and above.
    OrvCamera* eye = left->currentCamera();
    eye->lookAt(Orv3dPoint(0, -6.5f, 3.5f), Orv3dPoint(0, 0, 0.6f), Orv3dVector(0, 0, 1));
    eye->perspective(40, 1, 1, 30);
    // Right: orthographic, straight down.
    OrvCamera* top = right->currentCamera();
    top->lookAt(Orv3dPoint(0, 0, 6), Orv3dPoint(0, 0, 0), Orv3dVector(0, 1, 0));
    top->orthographic(Orv3dRect(-2.2f, -2.2f, 4.4f, 4.4f), 1, 12);

    OrvEnvironment* ambient = d->environment(OrvRGB(0.25f, 0.25f, 0.3f), 1, 1, 0, 0, 0, 1);
    for (OrvScene* s : {left, right}) {
        s->environment(ambient);
        s->add(new OrvPointLight(OrvRGB(1, 1, 0.9f), 1, Orv3dPoint(3, -3, 5)));
        OrvLight* sky = new OrvDirectionalLight(OrvRGB(0.4f, 0.4f, 0.5f), 1, Orv3dVector(-1, 1, 2));
        sky->fixed(0);
        s->add(sky);
    }

    stage->show();
    Turner* turner = new Turner(d, torus);  // the director deletes what is left of its timers
    turner->run(0, 40);
    long end = NowMs() + 1000;
    while (!quit && !d->closed) {
        if (shot && NowMs() >= end) break;
        d->readAndDispatchEvents();
        OrvDispatchToTimers();
        struct timeval tv = {0, 5000};
        select(0, nullptr, nullptr, nullptr, &tv);
    }
    int status = 0;
    if (shot) {
        if (!OrvSaveViewPPM(stage, shot)) {
            fprintf(stderr, "scene_hello: cannot write %s\n", shot);
            status = 1;
        } else {
            printf("scene_hello: %lu turns of the torus -> %s\n", turner->ticks, shot);
        }
    }
    delete turner;
    delete theater;
    delete stage;
    delete d;
    return status;
}
