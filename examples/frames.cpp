// frames: a stage holding two frames, windows that stand on it as actors.
// The left one shows a drawing larger than itself through its scroll bars;
// the right one holds a few notes. Drag a frame by its title, resize it by
// its border, iconify it with the box at the right of its title (a double
// click on the icon restores it), and rest the pointer on a shape for its
// balloon.
//
//   frames                opens a window on $DISPLAY; q quits.
//   frames --shots DIR    drives itself with XTest, writes a screenshot of
//                         each step as DIR/frames-NN-step.ppm, and exits.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/time.h>

#include <orv/orvis.h>

// Only the scripted session speaks to X itself: XTest plays the mouse.
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

struct Gallery {
    OrvDirector* director = nullptr;
    OrvStage* stage = nullptr;
    OrvFrame* drawing = nullptr;
    OrvFrame* notes = nullptr;
    int quit = 0;
};

class QuitAccelerator : public OrvAccelerator {
public:
    Gallery* gallery;
    explicit QuitAccelerator(Gallery* g) : OrvAccelerator(OrvKeyDown, 'q', 0), gallery(g) {}
    int input2d(OrvStage*, const OrvEvent&) override {
        gallery->quit = 1;
        return 1;
    }
};

class QuitCallback : public OrvExitCallback {
public:
    Gallery* gallery;
    explicit QuitCallback(Gallery* g) : gallery(g) {}
    void exit(OrvStage*) override { gallery->quit = 1; }
};

static OrvMakeUp* Paint(OrvDirector* d, const char* fg, const char* bg = "white") {
    return d->makeUpBackground(d->makeUpForeground(d->defaultMakeUp, d->color(fg)), d->color(bg));
}

// A street map of sorts, 760 by 560: blocks, a river and their names.
static void Draw(OrvDirector* d, OrvStage* s) {
    const char* colours[] = {"light blue", "khaki", "pale green", "light pink", "lavender"};
    for (int row = 0; row < 4; row++)
        for (int col = 0; col < 5; col++) {
            Orv2dRect r(20 + col * 150, 20 + row * 135, 120, 100);
            OrvActor* block = new OrvFilledRectangle(d, r, Paint(d, colours[(row + col) % 5]));
            char tip[64];
            snprintf(tip, sizeof tip, "Block %c%d", 'A' + row, col + 1);
            block->setBalloonData(tip, nullptr, OrvRight, 2);
            s->append(block);
            s->append(
                new OrvLabel(d, tip, Orv2dPoint(r.x + 8, r.y + 20), OrvLeft, Paint(d, "black")));
        }
    Orv2dPoint river[] = {Orv2dPoint(6, 300), Orv2dPoint(200, 260), Orv2dPoint(420, 330),
                          Orv2dPoint(600, 280), Orv2dPoint(760, 320)};
    OrvMakeUp* water = d->makeUpLineWidth(Paint(d, "steel blue"), 6);
    Orv2dPolyline* line = new Orv2dPolyline(d, 5, river, water);
    line->setBalloonData("The river", nullptr, OrvRight, 2);
    s->append(line, 1);
}

static void Build(Gallery& g) {
    OrvDirector* d = g.director;
    g.stage = new OrvStage(d, Orv2dRect(40, 40, 660, 420), "Orvis frames", 0, 1);
    g.stage->setBackground(d->color("gray85"));
    g.stage->add(new QuitAccelerator(&g));
    g.stage->onExit(new QuitCallback(&g));

    g.drawing = new OrvFrame(d, Orv2dRect(20, 20, 360, 300), 1, Paint(d, "black", "white"));
    g.drawing->showTitleBar("Map", 22);
    g.drawing->showDecoration(7);
    g.drawing->showScrollBars(1, 1, OrvBottom, OrvLeft, 16);  // 1: the vertical bar on the right
    g.drawing->setDecorationColor(d->color("light steel blue"));
    g.stage->append(g.drawing);
    Draw(d, g.drawing->getInteriorStage());

    g.notes = new OrvFrame(d, Orv2dRect(400, 60, 240, 200), 1, Paint(d, "black", "ivory"));
    g.notes->showTitleBar("Notes", 22);
    g.notes->showDecoration(7);
    g.notes->setDecorationColor(d->color("tan"));
    g.stage->append(g.notes);
    OrvStage* inside = g.notes->getInteriorStage();
    const char* lines[] = {"Drag a title to move", "Drag a border to resize", "Right box: iconify",
                           "Double click: restore", "q quits"};
    for (int i = 0; i < 5; i++)
        inside->append(new OrvLabel(d, lines[i], Orv2dPoint(10, 24 + 24 * i), OrvLeft,
                                    Paint(d, "dark slate gray")));
    OrvActor* tip = new OrvReliefLabel(d, Orv2dRect(420, 300, 200, 40), "Rest the pointer here", 2,
                                       Paint(d, "black", "light yellow"));
    tip->setBalloonData("Balloons show after a second of rest", nullptr, OrvRight, 2);
    g.stage->append(tip);
}

// ---------------------------------------------------------------------------
// The scripted session
// ---------------------------------------------------------------------------

static long NowMs() {
    struct timeval tv;
    gettimeofday(&tv, nullptr);
    return tv.tv_sec * 1000L + tv.tv_usec / 1000;
}

// Runs the library's loop for a while: events, then the timers that came due.
static void Pump(Gallery& g, int ms) {
    Display* dpy = (Display*)g.director->display;
    long end = NowMs() + ms;
    do {
        XSync(dpy, False);
        g.director->readAndDispatchEvents();
        OrvDispatchToTimers();
        struct timeval tv = {0, 2000};
        select(0, nullptr, nullptr, nullptr, &tv);
    } while (NowMs() < end);
}

static void Shot(Gallery& g, const char* dir, int n, const char* step) {
    Pump(g, 100);
    char path[1024];
    snprintf(path, sizeof path, "%s/frames-%02d-%s.ppm", dir, n, step);
    if (!OrvSaveViewPPM(g.stage, path)) {
        fprintf(stderr, "frames: cannot write %s\n", path);
        return;
    }
    Orv2dRect a = g.drawing->bbox2d(nullptr), b = g.notes->bbox2d(nullptr);
    printf("frames: step %d, %s: map at %d,%d %ux%u (scrolled %ld,%ld), notes at %d,%d%s -> %s\n",
           n, step, a.x, a.y, a.w, a.h, g.drawing->hScrollBar->value, g.drawing->vScrollBar->value,
           b.x, b.y, g.notes->isIconified() ? ", iconified" : "", path);
}

struct Script {
    Gallery& g;
    Display* dpy;
    explicit Script(Gallery& gallery) : g(gallery), dpy((Display*)gallery.director->display) {}
    void moveTo(int x, int y) {
        Window child;
        int rx, ry;
        XTranslateCoordinates(dpy, g.stage->window(), DefaultRootWindow(dpy), x, y, &rx, &ry,
                              &child);
        XTestFakeMotionEvent(dpy, DefaultScreen(dpy), rx, ry, 0);
        Pump(g, 15);
    }
    void button(bool down) {
        XTestFakeButtonEvent(dpy, 1, down, 0);
        Pump(g, 15);
    }
    void drag(int x0, int y0, int x1, int y1) {
        moveTo(x0, y0);
        Pump(g, 250);  // after the double-click period of the press before
        button(true);
        for (int i = 1; i <= 6; i++) moveTo(x0 + (x1 - x0) * i / 6, y0 + (y1 - y0) * i / 6);
        button(false);
    }
    void click(int x, int y) {
        moveTo(x, y);
        Pump(g, 250);
        button(true);
        button(false);
    }
    void doubleClick(int x, int y) {
        moveTo(x, y);
        Pump(g, 250);
        for (int i = 0; i < 2; i++) {
            XTestFakeButtonEvent(dpy, 1, True, 0);
            XTestFakeButtonEvent(dpy, 1, False, 0);
            Pump(g, 20);
        }
    }
};

static int RunScript(Gallery& g, const char* dir) {
    int ok;
    if (!XQueryExtension((Display*)g.director->display, "XTEST", &ok, &ok, &ok)) {
        fprintf(stderr, "frames: the X server has no XTEST extension\n");
        return 1;
    }
    Script s(g);
    int n = 0;
    Pump(g, 300);
    Shot(g, dir, n++, "start");
    // The map: its right arrow, a press in the trough, then the thumbs dragged.
    for (int i = 0; i < 5; i++) s.click(20 + 353 - 16 + 8, 20 + 300 - 7 - 8);
    s.drag(120, 20 + 300 - 15, 200, 20 + 300 - 15);
    s.drag(20 + 353 - 8, 120, 20 + 353 - 8, 180);
    Shot(g, dir, n++, "scrolled");
    // The notes, dragged down by their title.
    s.drag(500, 60 + 18, 500, 60 + 18 + 160);
    Shot(g, dir, n++, "moved");
    // The map, larger by its bottom-right corner.
    s.drag(20 + 360 - 3, 20 + 300 - 3, 20 + 375 - 3, 20 + 395 - 3);
    Shot(g, dir, n++, "resized");
    // The notes, iconified by the box right of their title, then restored.
    Orv2dRect notes = g.notes->bbox2d(nullptr);
    s.click(notes.x + notes.w - 7 - 22 - 11, notes.y + 7 + 11);
    Shot(g, dir, n++, "iconified");
    s.doubleClick(notes.x + 10, notes.y + 10);
    Shot(g, dir, n++, "restored");
    // The pointer rests on a block of the map: its balloon comes after a second.
    s.moveTo(170, 130);
    Pump(g, 1300);
    // The balloon is a window of its own above the stage: the screen shows both.
    char path[1024];
    snprintf(path, sizeof path, "%s/frames-%02d-balloon.ppm", dir, n++);
    OrvBalloonStage* balloon = g.director->balloonStage;
    if (balloon && balloon->isViewable() && OrvSaveViewPPM(g.director->rootCanvas, path))
        printf("frames: step %d, balloon \"%s\" at %d,%d of the screen -> %s\n", n - 1,
               balloon->label->getLabel(), balloon->globalBBox().x, balloon->globalBBox().y, path);
    else
        printf("frames: no balloon came\n");
    return balloon && balloon->isViewable() ? 0 : 1;
}

int main(int argc, char** argv) {
    const char* shots = nullptr;
    for (int i = 1; i < argc; i++)
        if (!strcmp(argv[i], "--shots") && i + 1 < argc) shots = argv[++i];
    Gallery g;
    g.director = new OrvDirector("frames", nullptr, argc, argv);
    Build(g);
    int status = 0;
    if (shots) {
        status = RunScript(g, shots);
    } else {
        while (!g.quit) g.director->waitAndDispatchEvents();
    }
    delete g.stage;
    delete g.director;
    return status;
}
