// Opens a window with a title, prints every event it receives, and quits
// when the window manager asks it to close.
//
//   window                      interactive: close the window to quit
//   window --selftest OUT.ppm   drives itself with XTest input, writes a
//                               screenshot of the window and exits
#include <orv/orvis.h>

#include <cstdio>
#include <cstring>

// Only the self-test speaks to X itself: XTest plays the mouse and the keyboard, a raw
// ClientMessage plays the window manager, and a few raw rectangles stand for an application's
// own drawing.
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

static const char* typeName(OrvEventType t) {
    static const char* const names[] = {
        "?",           "KeyUp",        "KeyDown",       "ButtonDown",  "ButtonUp",   "EnterWindow",
        "LeaveWindow", "PointerMoved", "ButtonDragged", "Expose",      "Configure",  "FocusIn",
        "FocusOut",    "Destroyed",    "ClientMessage", "DoubleClick", "EnterActor", "LeaveActor",
        "Mapped",      "Unmapped",     "Visibility",    "Quit",        "Ignored"};
    return t >= 0 && t <= OrvIgnored ? names[t] : "?";
}

static int events = 0;

static void onInput(OrvView*, const OrvEvent& e, void*) {
    events++;
    printf("%-13s x=%ld y=%ld global=%ld,%ld modifiers=0x%04x", typeName(e.type), e.x, e.y,
           e.globalX, e.globalY, e.modifiers);
    if (e.type == OrvKeyDown || e.type == OrvKeyUp)
        printf(" key=%u", e.key);
    else if (e.type == OrvClientMessage)
        printf(" data=\"%s\"", e.data);
    else
        printf(" button=%u", e.button);
    if (e.type == OrvDoubleClick) printf(" count=%u", e.count);
    printf("\n");
    fflush(stdout);
}

static void onExpose(OrvView* v, const Orv2dRegion* r, void*) {
    printf("Expose        %u rectangle(s) on %s\n", r ? (unsigned)r->count : 0u, v->name);
    fflush(stdout);
}

static void onResize(OrvView*, const Orv2dRect& o, const Orv2dRect& n, void*) {
    printf("Resize        %ux%u -> %ux%u\n", o.w, o.h, n.w, n.h);
    fflush(stdout);
}

static void onQuit(OrvView* v, void*) {
    printf("Quit          the window manager closed %s; %d input events seen\n", v->name, events);
    fflush(stdout);
    OrvExit(0);
}

// Scripted input for a headless run, one step per timer tick.
struct SelfTest : OrvTimer {
    OrvView* view;
    const char* shot;
    int step = 0;
    SelfTest(OrvDirector* d, OrvView* v, const char* shotPath)
        : OrvTimer(d, 0, 60), view(v), shot(shotPath) {
        oneShot = 0;
    }
    void pointerAt(int x, int y) {
        Display* dpy = (Display*)director->display;
        int rx, ry;
        Window child;
        XTranslateCoordinates(dpy, view->window(), DefaultRootWindow(dpy), x, y, &rx, &ry, &child);
        XTestFakeMotionEvent(dpy, DefaultScreen(dpy), rx, ry, 0);
    }
    void activate() override {
        Display* dpy = (Display*)director->display;
        Window w = view->window();
        switch (step++) {
            case 0:
                pointerAt(40, 30);
                break;
            case 1:
                XTestFakeButtonEvent(dpy, 1, True, 0);
                XTestFakeButtonEvent(dpy, 1, False, 10);
                break;
            case 2:
                XTestFakeButtonEvent(dpy, 1, True, 0);
                XTestFakeButtonEvent(dpy, 1, False, 10);
                break;
            case 3:
                XTestFakeButtonEvent(dpy, 3, True, 0);
                for (int i = 1; i <= 8; i++) pointerAt(40 + 15 * i, 30 + 8 * i);
                XTestFakeButtonEvent(dpy, 3, False, 0);
                break;
            case 4:
                XSetInputFocus(dpy, w, RevertToParent, CurrentTime);
                XTestFakeKeyEvent(dpy, XKeysymToKeycode(dpy, XK_o), True, 0);
                XTestFakeKeyEvent(dpy, XKeysymToKeycode(dpy, XK_o), False, 0);
                break;
            case 5:
                paint();
                break;
            case 6:
                screenshot();
                break;
            default: {
                // The same close a window manager sends.
                XEvent e;
                memset(&e, 0, sizeof e);
                e.type = ClientMessage;
                e.xclient.window = w;
                e.xclient.message_type = XInternAtom(dpy, "WM_PROTOCOLS", False);
                e.xclient.format = 32;
                e.xclient.data.l[0] = XInternAtom(dpy, "WM_DELETE_WINDOW", False);
                XSendEvent(dpy, w, False, 0, &e);
                suspend();
            }
        }
        XFlush(dpy);
    }
    // A few bands so that the screenshot shows something beyond the background.
    void paint() {
        Display* dpy = (Display*)director->display;
        GC gc = XCreateGC(dpy, view->window(), 0, nullptr);
        unsigned long colors[] = {0xC03030, 0x30A030, 0x3050C0};
        for (int i = 0; i < 3; i++) {
            XSetForeground(dpy, gc, colors[i]);
            XFillRectangle(dpy, view->window(), gc, 20 + 90 * i, 60, 70, 100);
        }
        XSetForeground(dpy, gc, 0);
        XDrawString(dpy, view->window(), gc, 20, 190, "orvis window example", 20);
        XFreeGC(dpy, gc);
    }
    void screenshot() {
        if (OrvSaveViewPPM(view, shot))
            printf("screenshot    %s\n", shot);
        else
            printf("could not write %s\n", shot);
    }
};

int main(int argc, char** argv) {
    const char* shot = nullptr;
    if (argc >= 2 && strcmp(argv[1], "--selftest") == 0) shot = argc >= 3 ? argv[2] : "window.ppm";
    OrvDirector* director = new OrvDirector("window", nullptr, argc, argv);
    OrvView* view = new OrvView(director, Orv2dRect(100, 100, 320, 220), "Orvis window");
    view->onInput(onInput, nullptr);
    view->onExpose(onExpose, nullptr);
    view->onResize(onResize, nullptr);
    view->onQuit(onQuit, nullptr);
    printf("window %s (0x%lx) \"Orvis window\"; close it to quit\n", view->name, view->window());
    if (shot) (new SelfTest(director, view, shot))->run();
    OrvPlay();
}
