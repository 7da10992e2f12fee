// editor: a small drawing editor on one stage.
//
//   editor                 opens a window on $DISPLAY; use it with the mouse:
//                          s select (click, shift-click, rubber band, move,
//                          handles), m move, r reshape by handles, c create
//                          rectangles, l link two shapes (drag from one to the
//                          other), b the same with a bent link, u bring the
//                          selection to the front; Alt-Z undoes and Alt-Y
//                          redoes every edit; Delete, control-X, -C, -V, -D,
//                          -A, -B, arrows and control-Z (zoom)/-U/-O as usual;
//                          q quits.
//   editor --script DIR    drives itself with XTest, writes a screenshot of
//                          each step as DIR/editor-NN-step.ppm, and exits.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/time.h>

#include <string>

#include <orv/orvis.h>

// Only the scripted session speaks to X itself: XTest plays the mouse and the keyboard.
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

// Drag out a rectangle: a new filled rectangle in the current colour.
class CreateRectangleProducer : public OrvRectangleProducer {
public:
    OrvMakeUp* makeUp;
    CreateRectangleProducer(OrvStage* forStage, OrvMakeUp* look)
        : OrvRectangleProducer(forStage), makeUp(look) {}
    void activate2d(const Orv2dRect& r) override {
        if (r.w < 3 || r.h < 3) return;  // a click makes nothing
        OrvActor* a = new OrvFilledRectangle(stage->director, r, makeUp);
        stage->deSelect();
        OrvEditAppend(stage, a, 0);
        a->setSelected(1);
    }
    const char* className() const override { return "CreateRectangle"; }
};

struct Editor {
    OrvDirector* director = nullptr;
    OrvStage* stage = nullptr;
    OrvSelectProducer* select = nullptr;
    OrvMoveProducer* move = nullptr;
    OrvReshapeProducer* reshape = nullptr;
    CreateRectangleProducer* create = nullptr;
    OrvMakeLinkProducer* link = nullptr;
    OrvMakeOneLinkProducer* bentLink = nullptr;
    OrvUndoStack history;
    int quit = 0;

    void mode(OrvProducer* p, const char* name) {
        stage->setProducer(p);
        std::string title = std::string("Orvis editor - ") + name;
        stage->setTitle(title.c_str());
    }
};

// One key, one mode.
class ModeAccelerator : public OrvAccelerator {
public:
    Editor* editor;
    OrvProducer* producer;
    const char* name;
    ModeAccelerator(Editor* e, unsigned short onKey, OrvProducer* p, const char* modeName)
        : OrvAccelerator(OrvKeyDown, onKey, 0), editor(e), producer(p), name(modeName) {}
    int input2d(OrvStage*, const OrvEvent&) override {
        editor->mode(producer, name);
        return 1;
    }
};

// Brings the selected actors to the front of their layer, one undoable step each.
class FrontAccelerator : public OrvAccelerator {
public:
    FrontAccelerator() : OrvAccelerator(OrvKeyDown, 'u', 0) {}
    int input2d(OrvStage* stage, const OrvEvent&) override {
        unsigned n = 0;
        OrvActor** selected = stage->selections(n);
        for (unsigned i = 0; i < n; i++) OrvEditPop(stage, selected[i]);
        delete[] selected;
        return 1;
    }
};

class QuitAccelerator : public OrvAccelerator {
public:
    Editor* editor;
    QuitAccelerator(Editor* e) : OrvAccelerator(OrvKeyDown, 'q', 0), editor(e) {}
    int input2d(OrvStage*, const OrvEvent&) override {
        editor->quit = 1;
        return 1;
    }
};

class QuitOnClose : public OrvExitCallback {
public:
    Editor* editor;
    explicit QuitOnClose(Editor* e) : editor(e) {}
    void exit(OrvStage*) override { editor->quit = 1; }
};

static OrvMakeUp* Colour(OrvDirector* d, const char* name) {
    OrvMakeUp* m = d->makeUpForeground(d->defaultMakeUp, d->color(name));
    OrvCount(m);
    return m;
}

static void Build(Editor& e) {
    OrvDirector* d = e.director;
    e.stage = new OrvStage(d, Orv2dRect(40, 40, 480, 360), "Orvis editor - select", 0, 1);
    OrvStage* s = e.stage;
    s->append(new OrvFilledRectangle(d, Orv2dRect(40, 40, 120, 80), Colour(d, "red")), 0);
    s->append(new OrvFilledRectangle(d, Orv2dRect(220, 60, 90, 120), Colour(d, "blue")), 0);
    s->append(new OrvFilledEllipse(d, Orv2dRect(60, 200, 140, 90), Colour(d, "forest green")), 0);
    s->append(new OrvRectangle(d, Orv2dRect(340, 220, 100, 100), Colour(d, "black")), 0);
    s->append(new OrvLine(d, Orv2dPoint(330, 40), Orv2dPoint(450, 160), Colour(d, "black")), 0);
    // A small linked diagram: the links lie in layer 1, over the shapes.
    OrvStageLayer* shapes = s->layer(0, 0);
    OrvMakeUp* ink = Colour(d, "dark slate gray");
    s->append(new OrvLinkImage(d, shapes->actors[0], shapes->actors[1], 1, 1.0f, ink), 1);
    s->append(new OrvOneLinkImage(d, shapes->actors[0], shapes->actors[2], 1, 1.0f, ink), 1);
    s->append(new OrvDoubleLinkImage(d, shapes->actors[1], shapes->actors[3], 1, 1.0f, ink), 1);

    e.select = new OrvSelectProducer(s);
    e.move = new OrvMoveProducer(s);
    e.reshape = new OrvReshapeProducer(s);
    e.create = new CreateRectangleProducer(s, Colour(d, "orange"));
    e.link = new OrvMakeLinkProducer(s, e.select, 1, ink);
    e.bentLink = new OrvMakeOneLinkProducer(s, e.select, 1, ink);
    // Mode keys first: the earliest added wins.
    s->add(new ModeAccelerator(&e, 's', e.select, "select"));
    s->add(new ModeAccelerator(&e, 'm', e.move, "move"));
    s->add(new ModeAccelerator(&e, 'r', e.reshape, "reshape"));
    s->add(new ModeAccelerator(&e, 'c', e.create, "create rectangle"));
    s->add(new ModeAccelerator(&e, 'l', e.link, "link"));
    s->add(new ModeAccelerator(&e, 'b', e.bentLink, "bent link"));
    s->add(new FrontAccelerator());
    s->add(new QuitAccelerator(&e));
    s->installAccelerators(0);
    s->setUndoStack(&e.history);
    s->installUndoAccelerators();
    s->onExit(new QuitOnClose(&e));
    e.mode(e.select, "select");
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

static void Shot(Editor& e, const char* dir, int n, const char* step) {
    Pump(e, 80);
    char path[1024];
    snprintf(path, sizeof path, "%s/editor-%02d-%s.ppm", dir, n, step);
    if (!OrvSaveViewPPM(e.stage, path)) {
        fprintf(stderr, "editor: cannot write %s\n", path);
        return;
    }
    printf("editor: step %d, %s: %u actors, %u selected -> %s\n", n, step, e.stage->cardinal(),
           e.stage->selectionList.length(), path);
}

struct Script {
    Editor& e;
    Display* dpy;
    Script(Editor& ed) : e(ed), dpy((Display*)ed.director->display) {}
    void moveTo(int x, int y) {
        Window child;
        int rx, ry;
        XTranslateCoordinates(dpy, e.stage->window(), DefaultRootWindow(dpy), x, y, &rx, &ry,
                              &child);
        XTestFakeMotionEvent(dpy, DefaultScreen(dpy), rx, ry, 0);
        Pump(e, 15);
    }
    void button(bool down) {
        XTestFakeButtonEvent(dpy, 1, down, 0);
        Pump(e, 15);
    }
    void drag(int x0, int y0, int x1, int y1) {
        moveTo(x0, y0);
        button(true);
        for (int i = 1; i <= 6; i++) moveTo(x0 + (x1 - x0) * i / 6, y0 + (y1 - y0) * i / 6);
        button(false);
    }
    void click(int x, int y) {
        moveTo(x, y);
        button(true);
        button(false);
    }
    void key(KeySym k, KeySym modifier = 0) {
        XSetInputFocus(dpy, e.stage->window(), RevertToParent, CurrentTime);
        if (modifier) XTestFakeKeyEvent(dpy, XKeysymToKeycode(dpy, modifier), True, 0);
        XTestFakeKeyEvent(dpy, XKeysymToKeycode(dpy, k), True, 0);
        XTestFakeKeyEvent(dpy, XKeysymToKeycode(dpy, k), False, 0);
        if (modifier) XTestFakeKeyEvent(dpy, XKeysymToKeycode(dpy, modifier), False, 0);
        Pump(e, 30);
    }
    // A click on empty space first: a click on what is already selected
    // would deselect everything.
    void pick(int x, int y) {
        click(470, 350);
        click(x, y);
    }
    void shiftClick(int x, int y) {
        moveTo(x, y);
        XTestFakeKeyEvent(dpy, XKeysymToKeycode(dpy, XK_Shift_L), True, 0);
        button(true);
        button(false);
        XTestFakeKeyEvent(dpy, XKeysymToKeycode(dpy, XK_Shift_L), False, 0);
        Pump(e, 15);
    }
};

static int RunScript(Editor& e, const char* dir) {
    int ok;
    if (!XQueryExtension((Display*)e.director->display, "XTEST", &ok, &ok, &ok)) {
        fprintf(stderr, "editor: the X server has no XTEST extension\n");
        return 1;
    }
    // The script clicks faster than a person: its quick presses are single clicks.
    e.director->setDoubleClickPeriod(0);
    Script s(e);
    int n = 0;
    Pump(e, 200);
    Shot(e, dir, n++, "start");
    s.click(100, 80);  // the red rectangle
    Shot(e, dir, n++, "select-click");
    s.shiftClick(260, 120);  // and the blue one
    Shot(e, dir, n++, "shift-click");
    s.click(470, 350);         // empty space: nothing selected
    s.drag(20, 20, 330, 300);  // rubber band round red, blue and green
    Shot(e, dir, n++, "rubber-band");
    s.drag(100, 80, 140, 110);  // move the three together
    Shot(e, dir, n++, "move");
    s.pick(280, 130);  // blue only
    s.key(XK_r);
    s.drag(220 + 40 + 90, 60 + 30 + 120, 400, 330);  // its bottom-right handle, after the move
    Shot(e, dir, n++, "reshape");
    s.key(XK_c);
    s.drag(20, 300, 120, 350);
    Shot(e, dir, n++, "create-rectangle");
    s.key(XK_s);
    s.pick(70, 325);            // the new rectangle
    s.key(XK_d, XK_Control_L);  // duplicate it
    Shot(e, dir, n++, "duplicate");
    s.key(XK_c, XK_Control_L);
    s.moveTo(360, 20);
    s.key(XK_v, XK_Control_L);
    Shot(e, dir, n++, "copy-paste");
    s.pick(380, 30);  // the pasted copy
    s.key(XK_Delete);
    Shot(e, dir, n++, "delete");
    s.pick(340, 250);  // the outlined square, on its outline
    s.key(XK_x, XK_Control_L);
    Shot(e, dir, n++, "cut");
    s.key(XK_l);
    s.drag(60, 320, 390, 100);  // from the created rectangle to the line
    Shot(e, dir, n++, "link");
    s.key(XK_z, XK_Alt_L);
    s.key(XK_z, XK_Alt_L);
    Shot(e, dir, n++, "undo-twice");
    s.key(XK_y, XK_Alt_L);
    Shot(e, dir, n++, "redo");
    s.key(XK_q);
    return e.quit ? 0 : 1;
}

int main(int argc, char** argv) {
    const char* script = nullptr;
    for (int i = 1; i < argc; i++)
        if (!strcmp(argv[i], "--script") && i + 1 < argc) script = argv[++i];
    Editor e;
    e.director = new OrvDirector("editor", nullptr, argc, argv);
    Build(e);
    int status = 0;
    if (script) {
        status = RunScript(e, script);
    } else {
        while (!e.quit) e.director->waitAndDispatchEvents();
    }
    delete e.stage;
    delete e.director;
    return status;
}
