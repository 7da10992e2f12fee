// Views and decoded events on a real X server, with input made by XTest.
#include <gtest/gtest.h>

#include "orv/director.h"
#include "orv/region.h"
#include "orv/view.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>
#include <cstdlib>
#include <cstring>

#include <string>
#include <vector>

#include "orv_xtest.h"

namespace {

#define REQUIRE_X()                                                                                \
    if (!getenv("DISPLAY")) GTEST_SKIP() << "no DISPLAY"

struct Log {
    std::vector<OrvEvent> input;
    std::vector<std::vector<Orv2dRect>> exposes;
    std::vector<std::pair<Orv2dRect, Orv2dRect>> resizes;
    int quits = 0;
    int destroys = 0;

    int countType(OrvEventType t) const {
        int n = 0;
        for (const OrvEvent& e : input) n += e.type == t;
        return n;
    }
    const OrvEvent* last(OrvEventType t) const {
        for (auto i = input.rbegin(); i != input.rend(); ++i)
            if (i->type == t) return &*i;
        return nullptr;
    }
};

void logInput(OrvView*, const OrvEvent& e, void* data) {
    ((Log*)data)->input.push_back(e);
}
void logExpose(OrvView*, const Orv2dRegion* r, void* data) {
    std::vector<Orv2dRect> rects;
    for (unsigned short i = 0; r && i < r->count; i++) rects.push_back(r->rectangle(i));
    ((Log*)data)->exposes.push_back(rects);
}
void logResize(OrvView*, const Orv2dRect& o, const Orv2dRect& n, void* data) {
    ((Log*)data)->resizes.push_back({o, n});
}
void logQuit(OrvView*, void* data) {
    ((Log*)data)->quits++;
}
void logDestroy(OrvView*, void* data) {
    ((Log*)data)->destroys++;
}

void listen(OrvView* v, Log* log) {
    v->onInput(logInput, log);
    v->onExpose(logExpose, log);
    v->onResize(logResize, log);
    v->onQuit(logQuit, log);
    v->onDestroy(logDestroy, log);
}

// A director, a mapped top-level view that hears everything, a raw connection.
struct Fixture {
    OrvTestInputLock lock;
    OrvDirector* d;
    OrvView* v;
    Display* raw;
    Log log;
    Fixture(const char* title, const Orv2dRect& r) {
        d = new OrvDirector("viewtest", nullptr, 0, nullptr);
        v = new OrvView(d, r, title);
        listen(v, &log);
        raw = OrvTestOpenDisplay();
        OrvTestWaitViewable(raw, v->window());
        XRaiseWindow(raw, v->window());
        OrvTestRunFor(30);  // the first expose and the map
        log = Log();
    }
    ~Fixture() {
        XCloseDisplay(raw);
        delete d;
    }
    bool runUntil(const std::function<bool()>& f, int ms = 3000) {
        XSync(raw, False);
        return OrvTestRunUntil(f, ms);
    }
};

std::string fetchName(Display* dpy, Window w) {
    char* name = nullptr;
    if (!XFetchName(dpy, w, &name) || !name) return "";
    std::string s = name;
    XFree(name);
    return s;
}

}  // namespace

TEST(View, TopLevelWindowAndWindowManagerProperties) {
    REQUIRE_X();
    Fixture f("Orvis window", Orv2dRect(60, 70, 220, 160));
    OrvView* v = f.v;
    EXPECT_EQ(v->parent, nullptr);
    EXPECT_EQ(v->x, 60);
    EXPECT_EQ(v->y, 70);
    EXPECT_EQ(v->width, 220u);
    EXPECT_EQ(v->height, 160u);
    EXPECT_EQ(v->mapFlag, 1);
    EXPECT_EQ(v->visible, 1);
    EXPECT_EQ(v->ownsWindow, 1);
    EXPECT_EQ(v->sharesRootResources, 1);
    EXPECT_TRUE(v->isViewable());
    EXPECT_EQ(fetchName(f.raw, v->window()), "Orvis window");
    char* icon = nullptr;
    ASSERT_TRUE(XGetIconName(f.raw, v->window(), &icon));
    EXPECT_STREQ(icon, "Orvis window");
    XFree(icon);
    XClassHint ch;
    ASSERT_TRUE(XGetClassHint(f.raw, v->window(), &ch));
    EXPECT_STREQ(ch.res_name, "Orvis window");
    EXPECT_STREQ(ch.res_class, "Orvis window");
    XFree(ch.res_name);
    XFree(ch.res_class);
    Atom* protocols = nullptr;
    int n = 0;
    ASSERT_TRUE(XGetWMProtocols(f.raw, v->window(), &protocols, &n));
    ASSERT_EQ(n, 1);
    EXPECT_EQ(protocols[0], XInternAtom(f.raw, "WM_DELETE_WINDOW", False));
    XFree(protocols);
    XSizeHints hints;
    long supplied;
    ASSERT_TRUE(XGetWMNormalHints(f.raw, v->window(), &hints, &supplied));
    EXPECT_EQ(hints.flags & (USPosition | PSize), USPosition | PSize);
    XWindowAttributes a;
    XGetWindowAttributes(f.raw, v->window(), &a);
    EXPECT_EQ(a.border_width, 1);
    EXPECT_EQ(a.all_event_masks & 172159, 172159);
    EXPECT_EQ(a.bit_gravity, NorthWestGravity);

    v->setTitle("Renamed");
    v->setIconTitle("Icon");
    XSync((Display*)f.d->display, False);
    EXPECT_EQ(fetchName(f.raw, v->window()), "Renamed");
    ASSERT_TRUE(XGetIconName(f.raw, v->window(), &icon));
    EXPECT_STREQ(icon, "Icon");
    XFree(icon);
    // No window manager runs here: not iconified.
    EXPECT_EQ(v->isIconified(), 0);
    EXPECT_EQ(CheckWinMgrState(f.d->display, v->window()), nullptr);

    // Generated names, by a process-wide counter.
    OrvView* w = new OrvView(f.d, Orv2dRect(0, 0, 10, 10), "second", 0, 0);
    int first = atoi(v->name + 1), second = atoi(w->name + 1);
    EXPECT_EQ(v->name[0], 'v');
    EXPECT_EQ(second, first + 1);
    EXPECT_EQ(f.d->view(w->name), w);
    EXPECT_FALSE(w->isViewable()) << "made invisible";
    w->show();
    EXPECT_TRUE(OrvTestWaitViewable(f.raw, w->window()));
    w->hide();
    XSync((Display*)f.d->display, False);
    EXPECT_FALSE(w->isViewable());
    delete w;

    // Override redirect and transient styles.
    OrvView* menu = new OrvView(f.d, Orv2dRect(5, 5, 30, 30), "menu",
                                OrvViewOverrideRedirect | OrvViewTransient);
    XGetWindowAttributes(f.raw, menu->window(), &a);
    EXPECT_TRUE(a.override_redirect);
    EXPECT_EQ(a.border_width, 0);
    Window transientFor = 0;
    EXPECT_TRUE(XGetTransientForHint(f.raw, menu->window(), &transientFor));
    EXPECT_EQ(transientFor, DefaultRootWindow(f.raw));
    menu->setTopMost(v);
    XSync((Display*)f.d->display, False);
    XGetTransientForHint(f.raw, menu->window(), &transientFor);
    EXPECT_EQ(transientFor, v->window());
    delete menu;
}

TEST(View, ChildrenAndDestruction) {
    REQUIRE_X();
    Fixture f("parent", Orv2dRect(30, 30, 300, 200));
    OrvView* c1 = new OrvView(f.v, Orv2dRect(10, 20, 50, 40));
    OrvView* c2 = new OrvView(f.v, Orv2dRect(100, 20, 50, 40));
    OrvView* grandchild = new OrvView(c1, Orv2dRect(5, 5, 10, 10));
    EXPECT_EQ(c1->parent, f.v);
    EXPECT_EQ(f.v->children.length(), 2u);
    EXPECT_EQ(c1->children.length(), 1u);
    Window root, parentW, *kids = nullptr;
    unsigned nk = 0;
    XQueryTree(f.raw, c1->window(), &root, &parentW, &kids, &nk);
    if (kids) XFree(kids);
    EXPECT_EQ(parentW, f.v->window());
    XWindowAttributes a;
    XGetWindowAttributes(f.raw, c1->window(), &a);
    EXPECT_EQ(a.x, 10);
    EXPECT_EQ(a.y, 20);
    EXPECT_EQ(a.border_width, 0);
    EXPECT_TRUE(OrvTestWaitViewable(f.raw, grandchild->window()));
    Orv2dRect g = grandchild->globalBBox();
    EXPECT_EQ(g.x, 30 + 1 + 10 + 5);
    EXPECT_EQ(g.y, 30 + 1 + 20 + 5);
    // Only the nearest parent clips.
    OrvView* edge = new OrvView(f.v, Orv2dRect(280, 190, 50, 40));
    Orv2dRect vis = edge->bboxVisible();
    EXPECT_EQ(vis.x, 0);
    EXPECT_EQ(vis.y, 0);
    EXPECT_EQ(vis.w, 20u);
    EXPECT_EQ(vis.h, 10u);
    delete edge;

    // A child that deletes its sibling while it goes is not deleted twice.
    Log l1, l2, lg;
    listen(c1, &l1);
    listen(c2, &l2);
    listen(grandchild, &lg);
    c1->onDestroy([](OrvView* self, void*) { delete (OrvView*)self->parent->children.last->value; },
                  nullptr);
    Window w1 = c1->window(), wg = grandchild->window();
    delete f.v;
    f.v = nullptr;
    EXPECT_EQ(l1.destroys, 1);
    EXPECT_EQ(l2.destroys, 1);
    EXPECT_EQ(lg.destroys, 1);
    EXPECT_EQ(f.log.destroys, 1);
    EXPECT_EQ(f.d->findView(w1), nullptr);
    EXPECT_EQ(f.d->findView(wg), nullptr);
    XSync((Display*)f.d->display, False);
    EXPECT_FALSE(XGetWindowAttributes(f.raw, wg, &a));
}

TEST(View, ForeignWindowsAreWrappedNotDestroyed) {
    REQUIRE_X();
    OrvTestInputLock lock;
    OrvDirector d("foreign", nullptr, 0, nullptr);
    Display* raw = OrvTestOpenDisplay();
    Window w = XCreateSimpleWindow(raw, DefaultRootWindow(raw), 44, 55, 120, 90, 0, 0, 0);
    XMapWindow(raw, w);
    XSync(raw, False);
    OrvView* v = new OrvView(&d, (void*)w);
    EXPECT_EQ(v->ownsWindow, 0);
    EXPECT_EQ(v->style, 0u);
    EXPECT_EQ(v->visible, 1);
    EXPECT_EQ(v->x, 44);
    EXPECT_EQ(v->y, 55);
    EXPECT_EQ(v->width, 120u);
    EXPECT_EQ(v->height, 90u);
    EXPECT_EQ(d.findView(w), v);
    // It hears the window's input now.
    Log log;
    listen(v, &log);
    OrvTestMoveIn(raw, w, 7, 8);
    OrvTestClick(raw, 1);
    XSync(raw, False);
    EXPECT_TRUE(OrvTestRunUntil([&] { return log.countType(OrvButtonUp) == 1; }));
    delete v;
    XSync((Display*)d.display, False);
    XWindowAttributes a;
    EXPECT_TRUE(XGetWindowAttributes(raw, w, &a)) << "the window is still there";

    // A child of a foreign window.
    OrvView* inside = new OrvView(&d, (void*)w, Orv2dRect(3, 4, 20, 20));
    Window root, parentW, *kids = nullptr;
    unsigned nk = 0;
    XQueryTree(raw, inside->window(), &root, &parentW, &kids, &nk);
    if (kids) XFree(kids);
    EXPECT_EQ(parentW, w);
    delete inside;
    XSync((Display*)d.display, False);
    XDestroyWindow(raw, w);
    XCloseDisplay(raw);
}

TEST(View, ResizeMoveAndConfigureEvents) {
    REQUIRE_X();
    Fixture f("sizes", Orv2dRect(100, 100, 200, 100));
    OrvView* v = f.v;
    // A programmatic resize configures the window; the size is stored, and the
    // callbacks told, when the configure event comes back.
    EXPECT_EQ(v->resize(0, 0), 1);
    EXPECT_EQ(v->width, 200u);
    XWindowAttributes a;
    XSync((Display*)f.d->display, False);
    XGetWindowAttributes(f.raw, v->window(), &a);
    EXPECT_EQ(a.width, 1);
    EXPECT_EQ(a.height, 1);
    ASSERT_TRUE(f.runUntil([&] { return !f.log.resizes.empty(); }));
    OrvTestRunFor(30);
    ASSERT_EQ(f.log.resizes.size(), 1u);
    EXPECT_EQ(f.log.resizes[0].first.w, 200u);
    EXPECT_EQ(f.log.resizes[0].second.w, 1u);
    EXPECT_EQ(f.log.resizes[0].second.h, 1u);
    EXPECT_EQ(v->width, 1u);
    EXPECT_EQ(v->resize(1, 1), 0) << "unchanged";
    EXPECT_EQ(v->move(Orv2dPoint(100, 100)), 0);
    EXPECT_EQ(v->move(Orv2dPoint(120, 110)), 1);
    // All four fields at once: the position is stored, the size waits for the event.
    f.log = Log();
    EXPECT_EQ(v->moveResize(Orv2dRect(130, 115, 250, 140)), 1);
    EXPECT_EQ(v->x, 130);
    EXPECT_EQ(v->width, 1u);
    XSync((Display*)f.d->display, False);
    XGetWindowAttributes(f.raw, v->window(), &a);
    EXPECT_EQ(a.x, 130);
    EXPECT_EQ(a.y, 115);
    EXPECT_EQ(a.width, 250);
    EXPECT_EQ(a.height, 140);
    ASSERT_TRUE(f.runUntil([&] { return v->width == 250u; }));
    OrvTestRunFor(50);
    ASSERT_EQ(f.log.resizes.size(), 1u);
    EXPECT_EQ(f.log.resizes[0].second.h, 140u);
    f.log = Log();

    // Another client resizes: the handler stores it and the callback hears old and new.
    XResizeWindow(f.raw, v->window(), 300, 180);
    ASSERT_TRUE(f.runUntil([&] { return !f.log.resizes.empty(); }));
    EXPECT_EQ(f.log.resizes[0].first.w, 250u);
    EXPECT_EQ(f.log.resizes[0].first.h, 140u);
    EXPECT_EQ(f.log.resizes[0].second.w, 300u);
    EXPECT_EQ(f.log.resizes[0].second.h, 180u);
    EXPECT_EQ(v->width, 300u);
    EXPECT_EQ(v->height, 180u);
    // A pure move reaches the stored position but no callback.
    f.log = Log();
    XMoveWindow(f.raw, v->window(), 40, 50);
    XSync(f.raw, False);
    ASSERT_TRUE(f.runUntil([&] { return v->x == 40 && v->y == 50; }));
    OrvTestRunFor(30);
    EXPECT_TRUE(f.log.resizes.empty());
    EXPECT_EQ(v->bbox().x, 40);
    EXPECT_EQ(v->position().y, 50);
}

TEST(View, ExposeErasesMergesAndCallsBack) {
    REQUIRE_X();
    Fixture f("expose", Orv2dRect(200, 300, 160, 120));
    OrvView* v = f.v;
    Display* dpy = (Display*)f.d->display;
    unsigned long bg = OrvTestPixel(f.raw, v->window(), 80, 60);
    // Paint it over from outside, then ask for three exposures at once.
    GC gc = XCreateGC(f.raw, v->window(), 0, nullptr);
    XSetForeground(f.raw, gc, bg ^ 0xFFFFFF);
    XFillRectangle(f.raw, v->window(), gc, 0, 0, 160, 120);
    XSync(f.raw, False);
    EXPECT_EQ(OrvTestPixel(f.raw, v->window(), 15, 15), bg ^ 0xFFFFFF);
    XClearArea(f.raw, v->window(), 10, 10, 20, 20, True);
    XClearArea(f.raw, v->window(), 100, 10, 20, 20, True);
    XClearArea(f.raw, v->window(), 10, 80, 30, 20, True);
    XSync(f.raw, False);
    OrvTestRunFor(50);
    ASSERT_EQ(f.log.exposes.size(), 1u) << "one region for the three";
    ASSERT_EQ(f.log.exposes[0].size(), 3u);
    EXPECT_EQ(f.log.exposes[0][1].x, 100);
    EXPECT_EQ(f.log.exposes[0][2].w, 30u);

    // The handler cleared the exposed area before the callbacks ran.
    f.log = Log();
    XFillRectangle(f.raw, v->window(), gc, 0, 0, 160, 120);
    XSync(f.raw, False);
    XEvent e;
    memset(&e, 0, sizeof e);
    e.type = Expose;
    e.xexpose.window = v->window();
    // A series: the first of count 1 stands alone; the last (count 0) merges what follows.
    int counts[] = {1, 0, 0};
    int xs[] = {5, 50, 120};
    for (int i = 0; i < 3; i++) {
        e.xexpose.x = xs[i];
        e.xexpose.y = 5;
        e.xexpose.width = 10;
        e.xexpose.height = 10;
        e.xexpose.count = counts[i];
        XSendEvent(f.raw, v->window(), False, ExposureMask, &e);
    }
    XSync(f.raw, False);
    OrvTestRunFor(50);
    ASSERT_EQ(f.log.exposes.size(), 2u);
    EXPECT_EQ(f.log.exposes[0].size(), 1u);
    EXPECT_EQ(f.log.exposes[1].size(), 2u);
    XSync(dpy, False);
    EXPECT_EQ(OrvTestPixel(f.raw, v->window(), 8, 8), bg);
    EXPECT_EQ(OrvTestPixel(f.raw, v->window(), 125, 8), bg);
    EXPECT_EQ(OrvTestPixel(f.raw, v->window(), 30, 8), bg ^ 0xFFFFFF) << "outside the exposed area";

    // Exposes reach an insensitive view; input does not.
    v->setSensitive(0);
    EXPECT_EQ(v->isSensitive(), 0);
    f.log = Log();
    XClearArea(f.raw, v->window(), 0, 0, 10, 10, True);
    OrvTestMoveIn(f.raw, v->window(), 20, 20);
    OrvTestClick(f.raw, 1);
    XSync(f.raw, False);
    OrvTestRunFor(60);
    EXPECT_EQ(f.log.exposes.size(), 1u);
    EXPECT_TRUE(f.log.input.empty());
    v->setSensitive(1);
    // erase by rectangle on request, with exposures.
    f.log = Log();
    v->erase(Orv2dRect(1, 2, 3, 4), 1);
    ASSERT_TRUE(f.runUntil([&] { return !f.log.exposes.empty(); }));
    EXPECT_EQ(f.log.exposes[0][0].x, 1);
    EXPECT_EQ(f.log.exposes[0][0].h, 4u);
    XFreeGC(f.raw, gc);
}

TEST(View, ButtonsModifiersAndMotion) {
    REQUIRE_X();
    Fixture f("buttons", Orv2dRect(400, 200, 200, 150));
    OrvView* v = f.v;
    Display* raw = f.raw;
    OrvTestMoveIn(raw, v->window(), 30, 40);
    ASSERT_TRUE(f.runUntil([&] { return f.log.countType(OrvPointerMoved) > 0; }));
    const OrvEvent* m = f.log.last(OrvPointerMoved);
    EXPECT_EQ(m->x, 30);
    EXPECT_EQ(m->y, 40);
    EXPECT_EQ(m->globalX, 400 + 1 + 30);
    EXPECT_EQ(m->globalY, 200 + 1 + 40);
    EXPECT_EQ(m->button, 0);
    EXPECT_EQ(m->window, v->window());
    EXPECT_GE(f.log.countType(OrvEnterWindow), 1);

    // Buttons 1, 2, 3 and 4 are 1, 2, 4 and 8; shift is 0x100.
    unsigned short expected[] = {0, 1, 2, 4, 8};
    for (unsigned b = 1; b <= 4; b++) {
        f.log = Log();
        OrvTestKey(raw, XK_Shift_L, true);
        OrvTestButton(raw, b, true, 300);  // apart in time: no double click
        OrvTestButton(raw, b, false);
        OrvTestKey(raw, XK_Shift_L, false);
        ASSERT_TRUE(f.runUntil([&] { return f.log.countType(OrvButtonUp) == 1; })) << b;
        const OrvEvent* down = f.log.last(OrvButtonDown);
        const OrvEvent* up = f.log.last(OrvButtonUp);
        ASSERT_NE(down, nullptr);
        EXPECT_EQ(down->button, expected[b]);
        EXPECT_EQ(down->modifiers, OrvShiftModifier) << "the state before the press";
        EXPECT_EQ(down->x, 30);
        EXPECT_EQ(up->button, expected[b]);
        EXPECT_EQ(up->modifiers, OrvShiftModifier) << "its own bit removed";
    }
    // A release with another button still held keeps that one's bit.
    f.log = Log();
    OrvTestButton(raw, 1, true, 300);
    OrvTestButton(raw, 3, true);
    OrvTestButton(raw, 3, false);
    OrvTestButton(raw, 1, false);
    ASSERT_TRUE(f.runUntil([&] { return f.log.countType(OrvButtonUp) == 2; }));
    EXPECT_EQ(f.log.input.back().modifiers, 0);
    const OrvEvent* firstUp = nullptr;
    for (const OrvEvent& e : f.log.input)
        if (e.type == OrvButtonUp && !firstUp) firstUp = &e;
    EXPECT_EQ(firstUp->button, 4);
    EXPECT_EQ(firstUp->modifiers, OrvButton1Modifier);

    // Leaving the window.
    OrvTestMoveRoot(raw, 1270, 1020);
    ASSERT_TRUE(f.runUntil([&] { return f.log.countType(OrvLeaveWindow) == 1; }));
}

TEST(View, DoubleAndTripleClicks) {
    REQUIRE_X();
    Fixture f("clicks", Orv2dRect(500, 500, 150, 100));
    Display* raw = f.raw;
    OrvTestMoveIn(raw, f.v->window(), 20, 20);
    f.runUntil([&] { return f.log.countType(OrvPointerMoved) > 0; });
    f.log = Log();
    // Four quick presses: down, double, triple, and down again.
    OrvTestButton(raw, 1, true, 400);
    OrvTestButton(raw, 1, false, 10);
    for (int i = 0; i < 3; i++) {
        OrvTestButton(raw, 1, true, 30);
        OrvTestButton(raw, 1, false, 10);
    }
    ASSERT_TRUE(f.runUntil([&] { return f.log.countType(OrvButtonUp) == 4; }));
    std::vector<std::pair<int, int>> presses;
    for (const OrvEvent& e : f.log.input)
        if (e.type == OrvButtonDown || e.type == OrvDoubleClick)
            presses.push_back({e.type, e.count});
    ASSERT_EQ(presses.size(), 4u);
    EXPECT_EQ(presses[0], std::make_pair((int)OrvButtonDown, 0));
    EXPECT_EQ(presses[1], std::make_pair((int)OrvDoubleClick, 2));
    EXPECT_EQ(presses[2], std::make_pair((int)OrvDoubleClick, 3));
    EXPECT_EQ(presses[3], std::make_pair((int)OrvButtonDown, 0));
    EXPECT_EQ(f.d->lastEvent().type, OrvButtonDown);
    EXPECT_EQ(f.log.last(OrvDoubleClick)->button, 1);

    // Another modifier state, another button, or too slow: no double click.
    f.log = Log();
    OrvTestButton(raw, 1, true, 400);
    OrvTestButton(raw, 1, false, 10);
    OrvTestKey(raw, XK_Control_L, true, 10);
    OrvTestButton(raw, 1, true, 10);
    OrvTestButton(raw, 1, false, 10);
    OrvTestKey(raw, XK_Control_L, false, 0);
    OrvTestButton(raw, 2, true, 10);
    OrvTestButton(raw, 2, false, 10);
    OrvTestButton(raw, 2, true, 300);
    OrvTestButton(raw, 2, false, 10);
    ASSERT_TRUE(f.runUntil([&] { return f.log.countType(OrvButtonUp) == 4; }));
    EXPECT_EQ(f.log.countType(OrvDoubleClick), 0);
    EXPECT_EQ(f.log.countType(OrvButtonDown), 4);
    // A longer period makes the slow pair a double click.
    f.d->setDoubleClickPeriod(1000);
    EXPECT_EQ(f.d->getDoubleClickPeriod(), 1000);
    f.log = Log();
    OrvTestButton(raw, 3, true, 10);
    OrvTestButton(raw, 3, false, 10);
    OrvTestButton(raw, 3, true, 300);
    OrvTestButton(raw, 3, false, 10);
    ASSERT_TRUE(f.runUntil([&] { return f.log.countType(OrvButtonUp) == 2; }));
    EXPECT_EQ(f.log.countType(OrvDoubleClick), 1);
    EXPECT_EQ(f.log.last(OrvDoubleClick)->button, 4);
}

TEST(View, DragsAreCompressedToTheNewest) {
    REQUIRE_X();
    Fixture f("drags", Orv2dRect(300, 300, 300, 200));
    Display* raw = f.raw;
    Window w = f.v->window();
    for (int compress = 1; compress >= 0; compress--) {
        orv_compress_drag_events = compress;
        OrvTestMoveIn(raw, w, 10, 10);
        OrvTestButton(raw, 1, true, 300);  // not a double click of the last round
        XSync(raw, False);
        ASSERT_TRUE(f.runUntil([&] { return f.log.countType(OrvButtonDown) == 1; }));
        f.log = Log();
        for (int i = 1; i <= 12; i++) OrvTestMoveIn(raw, w, 10 + 10 * i, 10 + 5 * i);
        XSync(raw, False);
        XSync((Display*)f.d->display, False);
        ASSERT_TRUE(f.runUntil([&] {
            const OrvEvent* d = f.log.last(OrvButtonDragged);
            return d && d->x == 130;
        }));
        const OrvEvent* d = f.log.last(OrvButtonDragged);
        EXPECT_EQ(d->y, 70);
        EXPECT_EQ(d->button, 1);
        EXPECT_EQ(d->modifiers, OrvButton1Modifier);
        if (compress)
            EXPECT_EQ(f.log.countType(OrvButtonDragged), 1);
        else
            EXPECT_EQ(f.log.countType(OrvButtonDragged), 12);
        OrvTestButton(raw, 1, false);
        XSync(raw, False);
        ASSERT_TRUE(f.runUntil([&] { return f.log.countType(OrvButtonUp) == 1; }));
        f.log = Log();
    }
    orv_compress_drag_events = 1;
    // A drag with the second and third buttons held names the third.
    OrvTestButton(raw, 2, true);
    OrvTestButton(raw, 3, true);
    OrvTestMoveIn(raw, w, 50, 60);
    ASSERT_TRUE(f.runUntil([&] { return f.log.countType(OrvButtonDragged) >= 1; }));
    EXPECT_EQ(f.log.last(OrvButtonDragged)->button, 4);
    EXPECT_EQ(f.log.last(OrvButtonDragged)->modifiers, OrvButton2Modifier | OrvButton3Modifier);
    OrvTestButton(raw, 3, false);
    OrvTestButton(raw, 2, false);
    XSync(raw, False);
    OrvTestRunFor(30);
}

TEST(View, KeysAndTheirCodes) {
    REQUIRE_X();
    Fixture f("keys", Orv2dRect(700, 300, 150, 100));
    Display* raw = f.raw;
    OrvTestMoveIn(raw, f.v->window(), 20, 25);
    OrvTestFocus(raw, f.v->window());
    f.runUntil([&] { return f.log.countType(OrvPointerMoved) > 0; });
    struct Case {
        unsigned long sym, mod;
        unsigned short key, modifiers;
    } cases[] = {
        {XK_a, 0, 'a', 0},
        {XK_a, XK_Shift_L, 'A', 0},  // printable: neither shift nor control
        {XK_a, XK_Control_L, 1, 0},  // a control character arrives as itself
        {XK_F1, 0, 513, 0},
        {XK_Left, 0, 551, 0},
        {XK_Home, XK_Shift_L, 554, OrvShiftModifier},
        {XK_Next, 0, 557, 0},
        {XK_Delete, 0, 127, 0},
        {XK_Return, 0, 13, 0},
    };
    for (const Case& c : cases) {
        f.log = Log();
        OrvTestType(raw, c.sym, c.mod);
        ASSERT_TRUE(f.runUntil([&] {
            for (const OrvEvent& e : f.log.input)
                if (e.type == OrvKeyUp && e.key == c.key) return true;
            return false;
        })) << XKeysymToString(c.sym);
        const OrvEvent* down = nullptr;
        for (const OrvEvent& e : f.log.input)
            if (e.type == OrvKeyDown && e.key == c.key) down = &e;
        ASSERT_NE(down, nullptr) << XKeysymToString(c.sym);
        EXPECT_EQ(down->modifiers, c.modifiers) << XKeysymToString(c.sym);
        EXPECT_EQ(down->x, 20);
        EXPECT_EQ(down->y, 25);
    }
    // The modifier key itself has a code of its own.
    f.log = Log();
    OrvTestType(raw, XK_Shift_L);
    ASSERT_TRUE(f.runUntil([&] { return f.log.countType(OrvKeyUp) == 1; }));
    EXPECT_EQ(f.log.last(OrvKeyDown)->key, 562);
    // The release of shift reports shift held (the state before the event).
    EXPECT_EQ(f.log.last(OrvKeyUp)->modifiers, OrvShiftModifier);
}

TEST(View, WindowManagerCloseAndClientMessages) {
    REQUIRE_X();
    Fixture f("quit", Orv2dRect(10, 600, 120, 80));
    XEvent e;
    memset(&e, 0, sizeof e);
    e.type = ClientMessage;
    e.xclient.window = f.v->window();
    e.xclient.message_type = XInternAtom(f.raw, "WM_PROTOCOLS", False);
    e.xclient.format = 32;
    e.xclient.data.l[0] = XInternAtom(f.raw, "WM_DELETE_WINDOW", False);
    XSendEvent(f.raw, f.v->window(), False, 0, &e);
    ASSERT_TRUE(f.runUntil([&] { return f.log.quits == 1; }));
    EXPECT_TRUE(f.log.input.empty());
    EXPECT_TRUE(f.v->isViewable()) << "the default leaves the window";
    memset(&e, 0, sizeof e);
    e.type = ClientMessage;
    e.xclient.window = f.v->window();
    e.xclient.message_type = XInternAtom(f.raw, "ORV_TEST", False);
    e.xclient.format = 8;
    memcpy(e.xclient.data.b, "hello, orvis world!!", 20);
    XSendEvent(f.raw, f.v->window(), False, 0, &e);
    ASSERT_TRUE(f.runUntil([&] { return f.log.countType(OrvClientMessage) == 1; }));
    EXPECT_STREQ(f.log.last(OrvClientMessage)->data, "hello, orvis world!");
    EXPECT_EQ(f.log.quits, 1);

    // Unmapping and mapping come as their own events; a destroy from outside deletes the view.
    XUnmapWindow(f.raw, f.v->window());
    ASSERT_TRUE(f.runUntil([&] { return f.log.countType(OrvUnmapped) == 1; }));
    EXPECT_EQ(f.log.last(OrvUnmapped)->button, 1);
    XMapWindow(f.raw, f.v->window());
    ASSERT_TRUE(f.runUntil([&] { return f.log.countType(OrvMapped) == 1; }));
    Window w = f.v->window();
    XDestroyWindow(f.raw, w);
    ASSERT_TRUE(f.runUntil([&] { return f.log.destroys == 1; }));
    EXPECT_EQ(f.d->findView(w), nullptr);
    f.v = nullptr;
}

TEST(View, DispatchEntryPoints) {
    REQUIRE_X();
    Fixture f("dispatch", Orv2dRect(10, 10, 50, 50));
    XEvent e;
    memset(&e, 0, sizeof e);
    e.type = ButtonPress;
    e.xbutton.display = (Display*)f.d->display;
    e.xbutton.window = f.v->window();
    e.xbutton.button = 2;
    e.xbutton.x = 3;
    e.xbutton.y = 4;
    e.xbutton.time = 1000;
    EXPECT_EQ(OrvDispatchEvent(&e), 1);
    ASSERT_EQ(f.log.countType(OrvButtonDown), 1);
    EXPECT_EQ(f.log.last(OrvButtonDown)->button, 2);
    EXPECT_EQ(f.log.last(OrvButtonDown)->time, 1000u);
    e.xbutton.window = 12345;
    EXPECT_EQ(OrvInstanceDispatchEvent(f.d, &e), 0);
    // An event of a display no director holds.
    e.xbutton.display = f.raw;
    EXPECT_EQ(OrvDispatchEvent(&e), 1);
    EXPECT_EQ(f.log.countType(OrvButtonDown), 1);
    EXPECT_TRUE(f.d->hasEvents() >= 0);

    OrvEvent decoded;
    e.type = 200;  // not an event X knows here
    OrvInstanceDecodeEvent(f.d, &e, decoded);
    EXPECT_EQ(decoded.type, OrvIgnored);
    EXPECT_EQ(OrvMapModifiers(Button5Mask | Mod5Mask), 0);
    EXPECT_EQ(OrvMapModifiers(ShiftMask | LockMask | ControlMask | Mod1Mask | Mod2Mask | Mod3Mask |
                              Mod4Mask | Button1Mask | Button2Mask | Button3Mask | Button4Mask),
              0x7F0F);
    EXPECT_EQ(OrvMapModifiers(Mod4Mask), 0x0400);
    EXPECT_EQ(OrvMapModifiers(Mod1Mask), 0x0800);
    EXPECT_EQ(OrvMapModifiers(Mod3Mask), 0x1000);
    EXPECT_EQ(OrvMapModifiers(LockMask), 0x2000);
    EXPECT_EQ(OrvMapModifiers(Mod2Mask), 0x4000);
    EXPECT_EQ(OrvFastSkipMotionEvents(), 1u);
    OrvFastSkipMotionEvents(0);
    EXPECT_EQ(OrvFastSkipMotionEvents(), 0u);
    OrvFastSkipMotionEvents(1);
}

TEST(View, GLWindowSharesTheRootContext) {
    REQUIRE_X();
    OrvDirector d("glview", nullptr, 0, nullptr);
    ASSERT_NE(d.rootContext, nullptr);
    OrvView* v = new OrvView(&d, Orv2dRect(50, 50, 100, 80), "gl", OrvViewGL);
    EXPECT_NE(v->glContext, nullptr);
    EXPECT_EQ(v->sharesRootResources, 0);
    EXPECT_NE(d.markerLists, 0u) << "the marker lists are made with the first GL view";
    EXPECT_EQ(d.findView(v->window()), v);
    Display* raw = OrvTestOpenDisplay();
    EXPECT_TRUE(OrvTestWaitViewable(raw, v->window()));
    EXPECT_EQ(fetchName(raw, v->window()), "gl");
    OrvView* child = new OrvView(v, Orv2dRect(5, 5, 20, 20), OrvViewGL);
    EXPECT_NE(child->glContext, nullptr);
    delete v;
    XCloseDisplay(raw);
}

TEST(View, BackgroundCursorGhostIconAndBackingBitmap) {
    REQUIRE_X();
    Fixture f("looks", Orv2dRect(150, 650, 120, 90));
    OrvDirector* d = f.d;
    OrvView* v = f.v;
    Window w = v->window();
    ASSERT_NE(d->defaultBackground, nullptr);
    EXPECT_EQ(v->background, d->defaultBackground);
    ASSERT_NE(v->backgroundMakeUp, nullptr);
    EXPECT_EQ(v->backgroundMakeUp->foreground(), d->defaultBackground);
    EXPECT_EQ(v->backgroundMakeUp->background(), d->defaultForeground);
    ASSERT_NE(v->ghostMakeUp, nullptr);
    EXPECT_EQ(v->ghostMakeUp->mode, (OrvDrawMode)OrvXorMode);

    // A new background: counted once, sent to X, and the background make-up follows.
    OrvColor* red = d->color("red");
    ASSERT_NE(red, nullptr);
    OrvCount(red);
    int held = red->count;
    v->setBackground(red);
    EXPECT_EQ(red->count, held + 2) << "held by the view and by its background make-up";
    v->setBackground(red);
    EXPECT_EQ(red->count, held + 2) << "the current colour changes nothing";
    EXPECT_EQ(v->backgroundMakeUp->foreground(), red);
    v->erase(0);
    XSync((Display*)d->display, False);
    EXPECT_EQ(OrvTestRGB(f.raw, w, 5, 5), 0xFF0000u);

    OrvCursor* cross = d->cursor("cross");
    ASSERT_NE(cross, nullptr);
    int c0 = cross->count;
    v->setCursor(cross);
    v->setCursor(cross);
    EXPECT_EQ(cross->count, c0 + 1);
    v->setCursor(nullptr);
    EXPECT_EQ(cross->count, c0);
    EXPECT_EQ(v->cursor, nullptr);

    OrvBitmap* icon = new OrvBitmap(d->rootCanvas, 16, 16, 1);
    v->iconBitmap(icon, nullptr);
    EXPECT_EQ(icon->lockCount, 1u);
    XSync((Display*)d->display, False);
    XWMHints* hints = XGetWMHints(f.raw, w);
    ASSERT_NE(hints, nullptr);
    EXPECT_TRUE(hints->flags & IconPixmapHint);
    EXPECT_FALSE(hints->flags & IconMaskHint);
    EXPECT_EQ(hints->icon_pixmap, (Pixmap)icon->drawable);
    XFree(hints);

    // The backing bitmap: the view's size, painted with the background, rebuilt on resize.
    v->useBitmap(1);
    ASSERT_NE(v->bitmap, nullptr);
    EXPECT_EQ(v->bitmap->width, 120u);
    EXPECT_EQ(v->bitmap->height, 90u);
    EXPECT_EQ(v->bitmap->depth, v->depth);
    XSync((Display*)d->display, False);
    EXPECT_EQ(OrvTestRGB(f.raw, v->bitmap->drawable, 60, 45), 0xFF0000u);
    XResizeWindow(f.raw, w, 140, 100);
    ASSERT_TRUE(f.runUntil([&] { return v->width == 140; }));
    EXPECT_EQ(v->bitmap->width, 140u);
    EXPECT_EQ(v->bitmap->height, 100u);
    // With a backing bitmap an expose leaves the window to the subclass.
    GC gc = XCreateGC(f.raw, w, 0, nullptr);
    XSetForeground(f.raw, gc, 0x00FF00);
    XFillRectangle(f.raw, w, gc, 0, 0, 140, 100);
    XFreeGC(f.raw, gc);
    f.log = Log();
    XEvent e;
    memset(&e, 0, sizeof e);
    e.type = Expose;
    e.xexpose.window = w;
    e.xexpose.width = 50;
    e.xexpose.height = 50;
    XSendEvent(f.raw, w, False, ExposureMask, &e);
    ASSERT_TRUE(f.runUntil([&] { return f.log.exposes.size() == 1; }));
    EXPECT_EQ(OrvTestRGB(f.raw, w, 10, 10), 0x00FF00u);
    v->useBitmap(0);
    EXPECT_EQ(v->bitmap, nullptr);
    OrvRelease(red);
}

TEST(View, DecodingOfTheRemainingKinds) {
    REQUIRE_X();
    Fixture f("decode", Orv2dRect(420, 40, 80, 60));
    XEvent e;
    OrvEvent out;
    memset(&e, 0, sizeof e);
    e.xany.display = (Display*)f.d->display;
    e.xany.window = f.v->window();
    e.type = VisibilityNotify;
    e.xvisibility.state = VisibilityPartiallyObscured;
    OrvInstanceDecodeEvent(f.d, &e, out);
    EXPECT_EQ(out.type, OrvVisibility);
    EXPECT_EQ(out.button, VisibilityPartiallyObscured);
    EXPECT_EQ(out.window, f.v->window());
    e.type = FocusIn;
    OrvInstanceDecodeEvent(f.d, &e, out);
    EXPECT_EQ(out.type, OrvFocusIn);
    e.type = FocusOut;
    OrvInstanceDecodeEvent(f.d, &e, out);
    EXPECT_EQ(out.type, OrvFocusOut);
    memset(&e, 0, sizeof e);
    e.type = GraphicsExpose;
    e.xgraphicsexpose.display = (Display*)f.d->display;
    e.xgraphicsexpose.drawable = f.v->window();
    e.xgraphicsexpose.x = 3;
    e.xgraphicsexpose.y = 4;
    e.xgraphicsexpose.width = 5;
    e.xgraphicsexpose.height = 6;
    e.xgraphicsexpose.count = 2;
    OrvInstanceDecodeEvent(f.d, &e, out);
    EXPECT_EQ(out.type, OrvExpose);
    EXPECT_EQ(out.width, 5);
    EXPECT_EQ(out.count, 2);
    // A configure sent by a client carries its flag and no root position.
    memset(&e, 0, sizeof e);
    e.type = ConfigureNotify;
    e.xconfigure.display = (Display*)f.d->display;
    e.xconfigure.window = e.xconfigure.event = f.v->window();
    e.xconfigure.send_event = True;
    e.xconfigure.x = 7;
    e.xconfigure.width = 80;
    e.xconfigure.height = 60;
    OrvInstanceDecodeEvent(f.d, &e, out);
    EXPECT_EQ(out.type, OrvConfigure);
    EXPECT_EQ(out.button, 1);
    EXPECT_EQ(out.globalX, 0);
    e.xconfigure.send_event = False;
    OrvInstanceDecodeEvent(f.d, &e, out);
    EXPECT_EQ(out.button, 0);
    EXPECT_EQ(out.globalX, 420 + 1);
    EXPECT_EQ(out.globalY, 40 + 1);
}

TEST(View, SlowMotionSkippingTakesTheNewestOfTheSameWindow) {
    REQUIRE_X();
    Fixture f("skip", Orv2dRect(520, 420, 200, 150));
    Display* dpy = (Display*)f.d->display;
    Window w = f.v->window();
    OrvTestMoveIn(f.raw, w, 5, 5);
    f.runUntil([&] { return f.log.countType(OrvPointerMoved) > 0; });
    for (int i = 1; i <= 6; i++) OrvTestMoveIn(f.raw, w, 5 + 10 * i, 5 + i);
    XSync(f.raw, False);
    XSync(dpy, False);
    XEvent x;
    do XNextEvent(dpy, &x);
    while (x.type != MotionNotify);
    OrvEvent e;
    OrvInstanceDecodeEvent(f.d, &x, e);
    EXPECT_EQ(e.x, 15);
    OrvFastSkipMotionEvents(0);
    EXPECT_EQ(OrvSkipMotionEvents(f.v, e, &x), 1);
    EXPECT_EQ(e.type, OrvPointerMoved);
    EXPECT_EQ(e.x, 65);
    EXPECT_EQ(e.y, 11);
    EXPECT_EQ(x.xmotion.x, 65);
    EXPECT_EQ(OrvSkipMotionEvents(f.v, e, &x), 0) << "nothing left to skip";
    orv_compress_drag_events = 0;
    EXPECT_EQ(OrvSkipMotionEvents(f.v, e, &x), 0);
    EXPECT_EQ(OrvFastSkipMotionEvents(f.v, e), 0);
    orv_compress_drag_events = 1;
    OrvFastSkipMotionEvents(1);
}
