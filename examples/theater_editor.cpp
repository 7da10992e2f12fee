// theater_editor: a small 3D editor. One scene on a stage shows a theater
// holding three cubes standing on a chequered floor, y up. The select
// producer serves the scene: a click selects what is under the pointer
// (shift-click adds to the selection), a drag on a selected object moves the
// selection in the view plane, a drag on empty space selects what the
// rectangle holds. With the pointer in the scene, the theater's keys:
//   control-D duplicate, Delete delete, control-A / control-B select all /
//   none, control-C / -X / -V copy, cut, paste, control-Z / -U zoom in / out,
//   arrows pan, control-R a quarter turn, control-F fit, control-O the default
//   camera, 1 to 6 the front, back, top, bottom, left and right views,
//   control-K double buffering, control-L selectability, control-N a count;
//   s saves the theater and its view to FILE, o reopens FILE, q quits.
//
//   theater_editor [FILE]          opens a window on $DISPLAY (FILE defaults to
//                                  theater_editor.orv).
//   theater_editor --script DIR    drives itself with XTest: selects, moves,
//                                  duplicates, deletes, changes views, saves to
//                                  DIR/theater_editor.orv, clears the theater
//                                  and reopens the file (its view with it),
//                                  writing a screenshot before and after the
//                                  steps as DIR/theater_editor-NN-step.ppm;
//                                  exits 0 when the reopened theater holds what
//                                  was saved.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/time.h>

#include <orv/orvis.h>

// Only the scripted session speaks to X itself: XTest plays the mouse and the keyboard.
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

struct Editor {
    OrvDirector* director = nullptr;
    OrvStage* stage = nullptr;
    OrvScene* scene = nullptr;
    OrvTheater* theater = nullptr;
    OrvActor* cubes[3] = {nullptr, nullptr, nullptr};
    std::string file = "theater_editor.orv";
    int quit = 0;
};

// ---------------------------------------------------------------------------
// The theater's contents
// ---------------------------------------------------------------------------

// A cube of side 1 standing on y = 0 with its corner at the origin, each face
// of the colour, outward, with its normal so that the lights shade it.
static OrvActor* Cube(OrvDirector* d, const OrvRGB& colour) {
    Orv3dPoint* p = new Orv3dPoint[8];
    for (unsigned i = 0; i < 8; i++)
        p[i] = Orv3dPoint(i & 1 ? 1.0f : 0.0f, i & 2 ? 1.0f : 0.0f, i & 4 ? 1.0f : 0.0f);
    OrvShare* points = new OrvShare(8, p, 0, 1);
    points->lock();
    OrvFaceSet* set = new OrvFaceSet(0);
    const unsigned quads[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4},
                                  {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
    for (const auto& q : quads) {
        OrvFace* f = new OrvFace;
        f->setIndexed(points, nullptr, nullptr, nullptr, nullptr);
        f->setIndex(0, 4, q, nullptr, nullptr, nullptr, nullptr);
        f->color(&colour);
        set->add(f);
    }
    points->unLock();
    set->computeFacesNormals();
    return new Orv3dActorFaceSet(d, set);
}

// A floor of n by n quads, size across, centred on the origin in y = 0, facing up, chequered.
static OrvActor* Floor(OrvDirector* d, unsigned n, float size) {
    Orv3dPoint* p = new Orv3dPoint[(n + 1) * (n + 1)];
    for (unsigned r = 0; r <= n; r++)
        for (unsigned c = 0; c <= n; c++)
            p[r * (n + 1) + c] =
                Orv3dPoint(size * ((float)c / n - 0.5f), 0, size * (0.5f - (float)r / n));
    OrvSeries* series = new OrvSeries(OrvQuadMesh, n, n);
    series->setNonIndexed(new OrvShare((n + 1) * (n + 1), p, 0, 1), nullptr, nullptr, nullptr,
                          nullptr);
    series->computeFacesNormals();
    OrvRGB* colours = new OrvRGB[n * n];
    for (unsigned r = 0; r < n; r++)
        for (unsigned c = 0; c < n; c++)
            colours[r * n + c] =
                (r + c) % 2 ? OrvRGB(0.4f, 0.45f, 0.5f) : OrvRGB(0.65f, 0.68f, 0.7f);
    OrvMakeUp* flat = d->makeUpSmooth(d->defaultMakeUp, 0);
    return new Orv3dShape(d, series, new OrvShare(n * n, colours, 0, 1), nullptr, flat);
}

static void Populate(Editor& e) {
    OrvDirector* d = e.director;
    e.theater->append(Floor(d, 8, 6.0f), 0);
    const OrvRGB colours[3] = {OrvRGB(0.85f, 0.2f, 0.15f), OrvRGB(0.2f, 0.7f, 0.3f),
                               OrvRGB(0.2f, 0.35f, 0.85f)};
    const float places[3][2] = {{-2.2f, 0}, {-0.5f, -1.6f}, {1.3f, 0.6f}};
    for (int i = 0; i < 3; i++) {
        e.cubes[i] = Cube(d, colours[i]);
        e.cubes[i]->translate(places[i][0], 0, places[i][1], 0);
        e.theater->append(e.cubes[i], 1);
    }
}

// ---------------------------------------------------------------------------
// The editor's own keys: save, reopen, quit
// ---------------------------------------------------------------------------

// Looks from the front and above, orthographic: the fit key then frames everything.
static void DefaultView(OrvCamera* camera) {
    camera->lookAt(Orv3dPoint(0, 6.5f, 9), Orv3dPoint(0, 0, 0), Orv3dVector(0, 1, 0));
    camera->orthographic(Orv3dRect(-3.2f, -3.2f, 6.4f, 6.4f), 1, 40);
}

static void Save(Editor& e) {
    e.theater->save(e.file.c_str(), e.scene);
    printf("theater_editor: %u objects saved to %s\n", e.theater->cardinal(), e.file.c_str());
}

// Replaces the contents by the file's, and the view by the one saved with them.
static void Reopen(Editor& e) {
    e.theater->empty(1);
    OrvScene* saved = nullptr;
    if (!e.theater->read(e.file.c_str(), saved, -1)) return;
    if (saved) {
        unsigned old = e.scene->currentCameraIndex;
        e.scene->useCamera(e.scene->add(*saved->currentCamera()));
        e.scene->removeCamera(old);
        delete saved;
    }
    printf("theater_editor: %u objects read from %s\n", e.theater->cardinal(), e.file.c_str());
}

class EditorKey : public OrvAccelerator {
public:
    Editor* editor;
    EditorKey(Editor* e, unsigned short onKey) : OrvAccelerator(OrvKeyDown, onKey, 0), editor(e) {}
    int input3d(OrvTheater*, OrvScene*, const OrvEvent& event) override {
        if (event.key == 's') Save(*editor);
        if (event.key == 'o') Reopen(*editor);
        if (event.key == 'q') editor->quit = 1;
        return 1;
    }
};

class QuitCallback : public OrvExitCallback {
public:
    Editor* editor;
    explicit QuitCallback(Editor* e) : editor(e) {}
    void exit(OrvStage*) override { editor->quit = 1; }
};

static void Build(Editor& e) {
    OrvDirector* d = e.director;
    e.stage = new OrvStage(d, Orv2dRect(40, 40, 620, 480), "Orvis theater editor", 0, 1);
    e.stage->onExit(new QuitCallback(&e));
    e.theater = new OrvTheater(d);
    Populate(e);

    OrvMakeUp* sky = d->makeUpBackground(d->defaultMakeUp, d->color("midnight blue"));
    e.scene = new OrvScene(d, Orv2dRect(10, 10, 600, 460), 1, sky);
    e.scene->useDoubleBuffer(1);
    e.theater->connect(e.scene, e.stage, 0);
    DefaultView(e.scene->currentCamera());
    e.scene->environment(d->environment(OrvRGB(0.3f, 0.3f, 0.35f), 1, 1, 0, 0, 0, 1));
    // A lamp up in the world, at the right of the viewer.
    OrvLight* lamp = new OrvPointLight(OrvRGB(1, 1, 0.9f), 1, Orv3dPoint(4, 8, 5));
    lamp->fixed(0);
    e.scene->add(lamp);
    // And a softer one that stays with the viewer, so that every view shows its faces.
    e.scene->add(new OrvDirectionalLight(OrvRGB(0.4f, 0.4f, 0.4f), 1, Orv3dVector(0.3f, 0.4f, 1)));

    // Objects are selected and moved in the scene by the select producer.
    e.theater->setSelectable(e.scene, 1);
    e.theater->setProducer(new OrvSelectProducer(e.scene));
    e.theater->installAccelerators(0);
    for (unsigned short key : {'s', 'o', 'q'}) e.theater->add(new EditorKey(&e, key));
    // Keys go to the accelerators first, the mouse to the producer: without this
    // a scene with a producer offers nothing to its accelerators.
    e.scene->roleProducerAcc = 1;
    e.stage->show();
}

// ---------------------------------------------------------------------------
// The scripted session
// ---------------------------------------------------------------------------

static long NowMs() {
    struct timeval tv;
    gettimeofday(&tv, nullptr);
    return tv.tv_sec * 1000L + tv.tv_usec / 1000;
}

// Runs the library's loop for a while, so that sent input is handled.
static void Pump(Editor& e, int ms) {
    Display* dpy = (Display*)e.director->display;
    long end = NowMs() + ms;
    do {
        XSync(dpy, False);
        e.director->readAndDispatchEvents();
        struct timeval tv = {0, 2000};
        select(0, nullptr, nullptr, nullptr, &tv);
    } while (NowMs() < end);
}

static unsigned Selected(Editor& e) {
    unsigned n = 0;
    delete[] e.theater->selections(n);
    return n;
}

static void Shot(Editor& e, const char* dir, int& n, const char* step) {
    Pump(e, 120);
    char path[1024];
    snprintf(path, sizeof path, "%s/theater_editor-%02d-%s.ppm", dir, n++, step);
    if (!OrvSaveViewPPM(e.stage, path)) {
        fprintf(stderr, "theater_editor: cannot write %s\n", path);
        return;
    }
    printf("theater_editor: %s: %u objects, %u selected -> %s\n", step, e.theater->cardinal(),
           Selected(e), path);
}

struct Script {
    Editor& e;
    Display* dpy;
    explicit Script(Editor& ed) : e(ed), dpy((Display*)ed.director->display) {}
    // The scene's window point where an object's box centre is drawn.
    Orv2dPoint at(OrvActor* a) {
        Orv3dPoint p = a->bbox3d(1).center();
        e.scene->worldToScene.apply(p);
        return Orv2dPoint((long)p.x, (long)p.y);
    }
    void moveTo(long x, long y) {
        Window child;
        int rx, ry;
        XTranslateCoordinates(dpy, (Window)e.scene->drawingCanvas(), DefaultRootWindow(dpy), (int)x,
                              (int)y, &rx, &ry, &child);
        XTestFakeMotionEvent(dpy, DefaultScreen(dpy), rx, ry, 0);
        Pump(e, 20);
    }
    void button(bool down) {
        XTestFakeButtonEvent(dpy, 1, down, 0);
        Pump(e, 20);
    }
    void click(const Orv2dPoint& p) {
        moveTo(p.x, p.y);
        button(true);
        button(false);
    }
    void drag(const Orv2dPoint& from, long dx, long dy) {
        moveTo(from.x, from.y);
        button(true);
        for (int i = 1; i <= 6; i++) moveTo(from.x + dx * i / 6, from.y + dy * i / 6);
        button(false);
    }
    void key(KeySym k, KeySym modifier = 0) {
        XSetInputFocus(dpy, (Window)e.scene->drawingCanvas(), RevertToParent, CurrentTime);
        if (modifier) XTestFakeKeyEvent(dpy, XKeysymToKeycode(dpy, modifier), True, 0);
        XTestFakeKeyEvent(dpy, XKeysymToKeycode(dpy, k), True, 0);
        XTestFakeKeyEvent(dpy, XKeysymToKeycode(dpy, k), False, 0);
        if (modifier) XTestFakeKeyEvent(dpy, XKeysymToKeycode(dpy, modifier), False, 0);
        Pump(e, 60);
    }
};

static int RunScript(Editor& e, const char* dir) {
    int ok;
    if (!XQueryExtension((Display*)e.director->display, "XTEST", &ok, &ok, &ok)) {
        fprintf(stderr, "theater_editor: the X server has no XTEST extension\n");
        return 1;
    }
    e.file = std::string(dir) + "/theater_editor.orv";
    // The script clicks faster than a person: its quick presses are single clicks.
    e.director->setDoubleClickPeriod(0);
    Script s(e);
    int n = 0;
    Pump(e, 300);
    Shot(e, dir, n, "start");
    s.click(s.at(e.cubes[0]));  // the red cube
    Shot(e, dir, n, "select");
    s.drag(s.at(e.cubes[0]), 90, -40);  // moved in the view plane
    Shot(e, dir, n, "move");
    s.key(XK_d, XK_Control_L);  // a copy, a tenth of its size further, selected
    Shot(e, dir, n, "duplicate");
    s.click(s.at(e.cubes[2]));  // the blue cube alone
    s.key(XK_Delete);
    Shot(e, dir, n, "delete");
    s.key(XK_3);  // from the top (+y)
    Shot(e, dir, n, "top-view");
    s.key(XK_6);  // from the right (+x)
    Shot(e, dir, n, "right-view");
    s.key(XK_f, XK_Control_L);  // all of it, from the front (+z), then twice as large
    s.key(XK_z, XK_Control_L);
    Shot(e, dir, n, "fit-zoom");
    s.key(XK_3);
    s.key(XK_s);  // the theater and this view
    Shot(e, dir, n, "saved");
    unsigned saved = e.theater->cardinal();
    s.key(XK_o, XK_Control_L);  // the default camera
    s.key(XK_a, XK_Control_L);  // and everything away
    s.key(XK_Delete);
    Shot(e, dir, n, "emptied");
    s.key(XK_o);  // back as saved, seen as saved
    Shot(e, dir, n, "reopened");
    s.key(XK_q);
    if (e.theater->cardinal() != saved || saved != 4) {
        fprintf(stderr, "theater_editor: %u objects saved, %u read back (4 expected)\n", saved,
                e.theater->cardinal());
        return 1;
    }
    return e.quit ? 0 : 1;
}

int main(int argc, char** argv) {
    const char* script = nullptr;
    Editor e;
    for (int i = 1; i < argc; i++) {
        if (!strcmp(argv[i], "--script") && i + 1 < argc)
            script = argv[++i];
        else
            e.file = argv[i];
    }
    e.director = new OrvDirector("theater_editor", nullptr, argc, argv);
    Build(e);
    int status = 0;
    if (script) {
        status = RunScript(e, script);
    } else {
        while (!e.quit && !e.director->closed) e.director->waitAndDispatchEvents();
    }
    delete e.theater;
    delete e.stage;
    delete e.director;
    return status;
}
