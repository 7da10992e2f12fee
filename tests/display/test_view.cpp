// Views and decoded events on a real X server, with input made by XTest.
#include <X11/Xatom.h>

#include "orv_fixtures.h"

namespace {

std::string fetchName(Display* dpy, Window w) {
    char* name = nullptr;
    if (!XFetchName(dpy, w, &name) || !name) return "";
    std::string s = name;
    XFree(name);
    return s;
}

Window parentOf(Display* dpy, Window w) {
    Window root, parent, *kids = nullptr;
    unsigned n = 0;
    XQueryTree(dpy, w, &root, &parent, &kids, &n);
    if (kids) XFree(kids);
    return parent;
}

XEvent exposeOf(Window w, int x, int y, int width, int height, int count) {
    XEvent e{};
    e.xexpose = XExposeEvent{Expose, 0, False, nullptr, w, x, y, width, height, count};
    return e;
}

// XTest button events as button, 1 to press or 0 to release, delay in ms; and so on.
void buttons(Display* raw, std::initializer_list<int> steps) {
    for (const int* p = steps.begin(); p + 2 < steps.end(); p += 3)
        OrvTestButton(raw, p[0], p[1] != 0, p[2]);
}

}  // namespace

TEST_F(ViewTest, TopLevelWindowAndWindowManagerProperties) {
    open("Orvis window", Orv2dRect(60, 70, 220, 160));
    EXPECT_EQ(Orv2dRect(60, 70, 220, 160), v->bbox());
    EXPECT_EQ(std::vector<int>({1, 1, 1, 1}),
              std::vector<int>({(int)v->mapFlag, (int)v->visible, (int)v->ownsWindow,
                                (int)v->sharesRootResources}));
    Atom* protocols = nullptr;
    int n = 0;
    ASSERT_TRUE(XGetWMProtocols(raw, v->window(), &protocols, &n));
    EXPECT_EQ(std::vector<Atom>({XInternAtom(raw, "WM_DELETE_WINDOW", False)}),
              std::vector<Atom>(protocols, protocols + n));
    XFree(protocols);
    XWindowAttributes a;
    XGetWindowAttributes(raw, v->window(), &a);
    EXPECT_TRUE(a.border_width == 1 && a.bit_gravity == NorthWestGravity);
    v->setTitle("Renamed");
    XSync(dpy, False);
    EXPECT_EQ(fetchName(raw, v->window()), "Renamed");
    // An invisible view maps on show.
    OrvView* w = new OrvView(director, Orv2dRect(0, 0, 10, 10), "second", 0, 0);
    EXPECT_FALSE(w->isViewable());
    w->show();
    EXPECT_TRUE(OrvTestWaitViewable(raw, w->window()));
    // Override redirect and transient styles.
    OrvView* menu = new OrvView(director, Orv2dRect(5, 5, 30, 30), "menu",
                                OrvViewOverrideRedirect | OrvViewTransient);
    XGetWindowAttributes(raw, menu->window(), &a);
    Window transientFor = 0;
    XGetTransientForHint(raw, menu->window(), &transientFor);
    EXPECT_TRUE(a.override_redirect && !a.border_width && transientFor == DefaultRootWindow(raw));
}

TEST_F(ViewTest, ChildrenAndDestruction) {
    open("parent", Orv2dRect(30, 30, 300, 200));
    OrvView* c1 = new OrvView(v, Orv2dRect(10, 20, 50, 40));
    OrvView* c2 = new OrvView(v, Orv2dRect(100, 20, 50, 40));
    OrvView* grandchild = new OrvView(c1, Orv2dRect(5, 5, 10, 10));
    EXPECT_EQ(parentOf(raw, c1->window()), v->window());
    XWindowAttributes a;
    XGetWindowAttributes(raw, c1->window(), &a);
    EXPECT_EQ(std::vector<int>({10, 20, 0}), std::vector<int>({a.x, a.y, a.border_width}));
    EXPECT_TRUE(OrvTestWaitViewable(raw, grandchild->window()));
    Orv2dRect g = grandchild->globalBBox();
    EXPECT_EQ(Orv2dPoint(30 + 1 + 10 + 5, 30 + 1 + 20 + 5), Orv2dPoint(g.x, g.y));
    // Only the nearest parent clips.
    OrvView* edge = new OrvView(v, Orv2dRect(280, 190, 50, 40));
    EXPECT_EQ(Orv2dRect(0, 0, 20, 10), edge->bboxVisible());
    delete edge;
    // A child that deletes its sibling while it goes is not deleted twice.
    ViewLog l1, l2, lg;
    l1.listen(c1);
    l2.listen(c2);
    lg.listen(grandchild);
    c1->onDestroy([](OrvView* self, void*) { delete (OrvView*)self->parent->children.last->value; },
                  nullptr);
    Window w1 = c1->window(), wg = grandchild->window();
    delete v;
    EXPECT_EQ(std::vector<int>({1, 1, 1, 1}),
              std::vector<int>({l1.destroys, l2.destroys, lg.destroys, log.destroys}));
    XSync(dpy, False);
    EXPECT_FALSE(director->findView(w1) || XGetWindowAttributes(raw, wg, &a));
}

TEST_F(ViewTest, ForeignWindowsAreWrappedNotDestroyed) {
    Window w = XCreateSimpleWindow(raw, DefaultRootWindow(raw), 44, 55, 120, 90, 0, 0, 0);
    XMapWindow(raw, w);
    XSync(raw, False);
    OrvView* foreign = new OrvView(director, (void*)w);
    EXPECT_EQ(foreign->ownsWindow + foreign->style, 0u);
    EXPECT_TRUE(foreign->bbox() == Orv2dRect(44, 55, 120, 90) && director->findView(w) == foreign);
    // It hears the window's input now.
    log.listen(foreign);
    OrvTestMoveIn(raw, w, 7, 8);
    OrvTestClick(raw, 1);
    EXPECT_TRUE(runUntil([&] { return log.count(OrvButtonUp) == 1; }));
    delete foreign;
    XSync(dpy, False);
    XWindowAttributes a;
    EXPECT_TRUE(XGetWindowAttributes(raw, w, &a)) << "the window is still there";
    XDestroyWindow(raw, w);
}

TEST_F(ViewTest, ResizeMoveAndConfigureEvents) {
    open("sizes", Orv2dRect(100, 100, 200, 100));
    // A programmatic resize configures the window; the size is stored, and the
    // callbacks told, when the configure event comes back.
    EXPECT_TRUE(v->resize(0, 0) == 1 && v->width == 200u);
    XWindowAttributes a;
    XSync(dpy, False);
    XGetWindowAttributes(raw, v->window(), &a);
    EXPECT_EQ(Orv2dPoint(1, 1), Orv2dPoint(a.width, a.height));
    ASSERT_TRUE(runUntil([&] { return !log.resizes.empty(); }));
    OrvTestRunFor(30);
    ASSERT_EQ(log.resizes.size(), 1u);
    EXPECT_EQ(Orv2dRect(100, 100, 200, 100), log.resizes[0].first);
    EXPECT_EQ(Orv2dPoint(1, 1), Orv2dPoint(log.resizes[0].second.w, log.resizes[0].second.h));
    EXPECT_EQ(v->resize(1, 1) + v->move(Orv2dPoint(100, 100)), 0) << "unchanged";
    // All four fields at once: the position is stored, the size waits for the event.
    log = ViewLog();
    EXPECT_EQ(v->moveResize(Orv2dRect(130, 115, 250, 140)), 1);
    EXPECT_EQ(Orv2dPoint(130, 1), Orv2dPoint(v->x, v->width));
    XSync(dpy, False);
    XGetWindowAttributes(raw, v->window(), &a);
    EXPECT_EQ(Orv2dRect(130, 115, 250, 140), Orv2dRect(a.x, a.y, a.width, a.height));
    ASSERT_TRUE(runUntil([&] { return v->width == 250u; }));
    OrvTestRunFor(50);
    EXPECT_EQ(log.resizes.size(), 1u);
    log = ViewLog();
    // Another client resizes: the handler stores it and the callback hears old and new.
    XResizeWindow(raw, v->window(), 300, 180);
    ASSERT_TRUE(runUntil([&] { return !log.resizes.empty(); }));
    EXPECT_EQ(Orv2dRect(130, 115, 250, 140), log.resizes[0].first);
    EXPECT_EQ(Orv2dPoint(300, 180), Orv2dPoint(log.resizes[0].second.w, log.resizes[0].second.h));
    EXPECT_EQ(Orv2dPoint(300, 180), Orv2dPoint(v->width, v->height));
    // A pure move reaches the stored position but no callback.
    log = ViewLog();
    XMoveWindow(raw, v->window(), 40, 50);
    ASSERT_TRUE(runUntil([&] { return v->x == 40 && v->y == 50; }));
    OrvTestRunFor(30);
    EXPECT_TRUE(log.resizes.empty());
}

TEST_F(ViewTest, ExposeErasesMergesAndCallsBack) {
    open("expose", Orv2dRect(200, 300, 160, 120));
    Window w = v->window();
    unsigned long bg = OrvTestPixel(raw, w, 80, 60), paint = bg ^ 0xFFFFFF;
    // Paint it over from outside, then ask for three exposures at once.
    GC gc = XCreateGC(raw, w, 0, nullptr);
    XSetForeground(raw, gc, paint);
    XFillRectangle(raw, w, gc, 0, 0, 160, 120);
    XClearArea(raw, w, 10, 10, 20, 20, True);
    XClearArea(raw, w, 100, 10, 20, 20, True);
    XClearArea(raw, w, 10, 80, 30, 20, True);
    XSync(raw, False);
    OrvTestRunFor(50);
    ASSERT_EQ(log.exposes.size(), 1u) << "one region for the three";
    ASSERT_EQ(log.exposes[0].size(), 3u);
    EXPECT_EQ(Orv2dRect(100, 10, 20, 20), log.exposes[0][1]);
    // A series: the first of count 1 stands alone; the last (count 0) merges what follows. The
    // handler cleared the exposed area before the callbacks ran.
    log = ViewLog();
    XFillRectangle(raw, w, gc, 0, 0, 160, 120);
    XFreeGC(raw, gc);
    for (XEvent e : {exposeOf(w, 5, 5, 10, 10, 1), exposeOf(w, 50, 5, 10, 10, 0),
                     exposeOf(w, 120, 5, 10, 10, 0)})
        XSendEvent(raw, w, False, ExposureMask, &e);
    XSync(raw, False);
    OrvTestRunFor(50);
    ASSERT_EQ(log.exposes.size(), 2u);
    EXPECT_EQ(std::vector<size_t>({1, 2}),
              std::vector<size_t>({log.exposes[0].size(), log.exposes[1].size()}));
    XSync(dpy, False);
    EXPECT_EQ(std::vector<unsigned long>({bg, bg, paint}),
              std::vector<unsigned long>({OrvTestPixel(raw, w, 8, 8), OrvTestPixel(raw, w, 125, 8),
                                          OrvTestPixel(raw, w, 30, 8)}));
    // Exposes reach an insensitive view; input does not.
    v->setSensitive(0);
    log = ViewLog();
    XClearArea(raw, w, 0, 0, 10, 10, True);
    OrvTestMoveIn(raw, w, 20, 20);
    OrvTestClick(raw, 1);
    XSync(raw, False);
    OrvTestRunFor(60);
    EXPECT_TRUE(log.exposes.size() == 1u && log.input.empty());
    v->setSensitive(1);
    // erase by rectangle on request, with exposures.
    log = ViewLog();
    v->erase(Orv2dRect(1, 2, 3, 4), 1);
    ASSERT_TRUE(runUntil([&] { return !log.exposes.empty(); }));
    EXPECT_EQ(Orv2dRect(1, 2, 3, 4), log.exposes[0][0]);
}

TEST_F(ViewTest, ButtonsModifiersAndMotion) {
    open("buttons", Orv2dRect(400, 200, 200, 150));
    OrvTestMoveIn(raw, v->window(), 30, 40);
    ASSERT_TRUE(runUntil([&] { return log.count(OrvPointerMoved) > 0; }));
    const OrvEvent* m = log.last(OrvPointerMoved);
    EXPECT_EQ(std::vector<long>({30, 40, 400 + 1 + 30, 200 + 1 + 40, 0}),
              std::vector<long>({m->x, m->y, m->globalX, m->globalY, m->button}));
    EXPECT_GE(log.count(OrvEnterWindow), 1);
    // Buttons 1, 2, 3 and 4 are 1, 2, 4 and 8; shift is 0x100, the state before the press.
    const unsigned short expected[] = {0, 1, 2, 4, 8};
    for (unsigned b = 1; b <= 4; b++) {
        log = ViewLog();
        OrvTestKey(raw, XK_Shift_L, true);
        OrvTestButton(raw, b, true, 300);  // apart in time: no double click
        OrvTestButton(raw, b, false);
        OrvTestKey(raw, XK_Shift_L, false);
        ASSERT_TRUE(runUntil([&] { return log.count(OrvButtonUp) == 1; })) << b;
        const OrvEvent *down = log.last(OrvButtonDown), *up = log.last(OrvButtonUp);
        ASSERT_NE(down, nullptr);
        EXPECT_EQ(std::vector<long>({expected[b], OrvShiftModifier, 30, expected[b]}),
                  std::vector<long>({down->button, down->modifiers, down->x, up->button}));
        EXPECT_EQ(up->modifiers, OrvShiftModifier) << "its own bit removed";
    }
    // A release with another button still held keeps that one's bit.
    log = ViewLog();
    buttons(raw, {1, 1, 300, 3, 1, 0, 3, 0, 0, 1, 0, 0});
    ASSERT_TRUE(runUntil([&] { return log.count(OrvButtonUp) == 2; }));
    const OrvEvent* firstUp = nullptr;
    for (const OrvEvent& e : log.input)
        if (e.type == OrvButtonUp && !firstUp) firstUp = &e;
    EXPECT_EQ(Orv2dPoint(4, OrvButton1Modifier), Orv2dPoint(firstUp->button, firstUp->modifiers));
    EXPECT_EQ(log.input.back().modifiers, 0);
    OrvTestMoveRoot(raw, 1270, 1020);  // leaving the window
    ASSERT_TRUE(runUntil([&] { return log.count(OrvLeaveWindow) == 1; }));
}

TEST_F(ViewTest, DoubleAndTripleClicks) {
    open("clicks", Orv2dRect(500, 500, 150, 100));
    OrvTestMoveIn(raw, v->window(), 20, 20);
    runUntil([&] { return log.count(OrvPointerMoved) > 0; });
    log = ViewLog();
    // Four quick presses: down, double, triple, and down again.
    buttons(raw, {1, 1, 400, 1, 0, 10, 1, 1, 30, 1, 0, 10, 1, 1, 30, 1, 0, 10, 1, 1, 30, 1, 0, 10});
    ASSERT_TRUE(runUntil([&] { return log.count(OrvButtonUp) == 4; }));
    std::vector<std::pair<int, int>> presses;
    for (const OrvEvent& e : log.input)
        if (e.type == OrvButtonDown || e.type == OrvDoubleClick)
            presses.push_back({e.type, e.count});
    EXPECT_EQ(
        presses,
        (std::vector<std::pair<int, int>>{
            {OrvButtonDown, 0}, {OrvDoubleClick, 2}, {OrvDoubleClick, 3}, {OrvButtonDown, 0}}));
    EXPECT_TRUE(director->lastEvent().type == OrvButtonDown &&
                log.last(OrvDoubleClick)->button == 1);
    // Another modifier state, another button, or too slow: no double click.
    log = ViewLog();
    buttons(raw, {1, 1, 400, 1, 0, 10});
    OrvTestKey(raw, XK_Control_L, true, 10);
    buttons(raw, {1, 1, 10, 1, 0, 10});
    OrvTestKey(raw, XK_Control_L, false, 0);
    buttons(raw, {2, 1, 10, 2, 0, 10, 2, 1, 300, 2, 0, 10});
    ASSERT_TRUE(runUntil([&] { return log.count(OrvButtonUp) == 4; }));
    EXPECT_EQ(Orv2dPoint(0, 4), Orv2dPoint(log.count(OrvDoubleClick), log.count(OrvButtonDown)));
}

TEST_F(ViewTest, DragsAreCompressedToTheNewest) {
    open("drags", Orv2dRect(300, 300, 300, 200));
    Window w = v->window();
    for (int compress = 1; compress >= 0; compress--) {
        orv_compress_drag_events = compress;
        OrvTestMoveIn(raw, w, 10, 10);
        OrvTestButton(raw, 1, true, 300);  // not a double click of the last round
        ASSERT_TRUE(runUntil([&] { return log.count(OrvButtonDown) == 1; }));
        log = ViewLog();
        for (int i = 1; i <= 12; i++) OrvTestMoveIn(raw, w, 10 + 10 * i, 10 + 5 * i);
        XSync(raw, False);
        XSync(dpy, False);
        ASSERT_TRUE(runUntil([&] {
            const OrvEvent* d = log.last(OrvButtonDragged);
            return d && d->x == 130;
        }));
        const OrvEvent* d = log.last(OrvButtonDragged);
        EXPECT_EQ(std::vector<long>({70, 1, OrvButton1Modifier}),
                  std::vector<long>({d->y, d->button, d->modifiers}));
        EXPECT_EQ(log.count(OrvButtonDragged), compress ? 1 : 12);
        OrvTestButton(raw, 1, false);
        ASSERT_TRUE(runUntil([&] { return log.count(OrvButtonUp) == 1; }));
        log = ViewLog();
    }
    orv_compress_drag_events = 1;
    // A drag with the second and third buttons held names the third.
    OrvTestButton(raw, 2, true);
    OrvTestButton(raw, 3, true);
    OrvTestMoveIn(raw, w, 50, 60);
    ASSERT_TRUE(runUntil([&] { return log.count(OrvButtonDragged) >= 1; }));
    const OrvEvent* both = log.last(OrvButtonDragged);
    EXPECT_TRUE(both->button == 4 && both->modifiers == (OrvButton2Modifier | OrvButton3Modifier));
    OrvTestButton(raw, 3, false);
    OrvTestButton(raw, 2, false);
}

TEST_F(ViewTest, KeysAndTheirCodes) {
    open("keys", Orv2dRect(700, 300, 150, 100));
    OrvTestMoveIn(raw, v->window(), 20, 25);
    OrvTestFocus(raw, v->window());
    runUntil([&] { return log.count(OrvPointerMoved) > 0; });
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
        {XK_Shift_L, 0, 562, 0},  // the modifier key itself has a code of its own
    };
    for (const Case& c : cases) {
        log = ViewLog();
        OrvTestType(raw, c.sym, c.mod);
        const OrvEvent *down = nullptr, *up = nullptr;
        ASSERT_TRUE(runUntil([&] {
            for (const OrvEvent& e : log.input)
                if (e.key == c.key) (e.type == OrvKeyDown ? down : up) = &e;
            return down && up;
        })) << XKeysymToString(c.sym);
        EXPECT_EQ(down->modifiers, c.modifiers) << XKeysymToString(c.sym);
        EXPECT_EQ(Orv2dPoint(20, 25), Orv2dPoint(down->x, down->y));
        // The release of shift reports shift held (the state before the event).
        EXPECT_EQ(up->modifiers, c.sym == XK_Shift_L ? (int)OrvShiftModifier : up->modifiers);
    }
}

TEST_F(ViewTest, WindowManagerCloseAndClientMessages) {
    open("quit", Orv2dRect(10, 600, 120, 80));
    XEvent e{};
    e.type = ClientMessage;
    e.xclient.window = v->window();
    e.xclient.message_type = XInternAtom(raw, "WM_PROTOCOLS", False);
    e.xclient.format = 32;
    e.xclient.data.l[0] = XInternAtom(raw, "WM_DELETE_WINDOW", False);
    XSendEvent(raw, v->window(), False, 0, &e);
    ASSERT_TRUE(runUntil([&] { return log.quits == 1; }));
    EXPECT_TRUE(log.input.empty() && v->isViewable()) << "the default leaves the window";
    e.xclient.message_type = XInternAtom(raw, "ORV_TEST", False);
    e.xclient.format = 8;
    memcpy(e.xclient.data.b, "hello, orvis world!!", 20);
    XSendEvent(raw, v->window(), False, 0, &e);
    ASSERT_TRUE(runUntil([&] { return log.count(OrvClientMessage) == 1; }));
    EXPECT_TRUE(!strcmp(log.last(OrvClientMessage)->data, "hello, orvis world!") && log.quits == 1);
    // Unmapping and mapping come as their own events; a destroy from outside deletes the view.
    XUnmapWindow(raw, v->window());
    ASSERT_TRUE(runUntil([&] { return log.count(OrvUnmapped) == 1; }));
    EXPECT_EQ(log.last(OrvUnmapped)->button, 1);
    XMapWindow(raw, v->window());
    ASSERT_TRUE(runUntil([&] { return log.count(OrvMapped) == 1; }));
    Window w = v->window();
    XDestroyWindow(raw, w);
    ASSERT_TRUE(runUntil([&] { return log.destroys == 1; }));
    EXPECT_EQ(director->findView(w), nullptr);
}

TEST_F(ViewTest, DispatchDecodingAndModifiers) {
    open("dispatch", Orv2dRect(420, 40, 80, 60));
    XEvent e{};
    e.type = ButtonPress;
    e.xbutton.display = dpy;
    e.xbutton.window = v->window();
    e.xbutton.button = 2;
    e.xbutton.time = 1000;
    EXPECT_EQ(OrvDispatchEvent(&e), 1);
    ASSERT_EQ(log.count(OrvButtonDown), 1);
    EXPECT_TRUE(log.last(OrvButtonDown)->button == 2 && log.last(OrvButtonDown)->time == 1000u);
    e.xbutton.window = 12345;
    EXPECT_EQ(OrvInstanceDispatchEvent(director, &e), 0);
    e.xbutton.display = raw;  // an event of a display no director holds
    EXPECT_TRUE(OrvDispatchEvent(&e) == 1 && log.count(OrvButtonDown) == 1);
    // The kinds without input of their own.
    OrvEvent out;
    auto decoded = [&](int type) {
        e.type = type;
        OrvInstanceDecodeEvent(director, &e, out);
        return std::vector<long>({out.type, out.button, out.width, out.count, out.globalX});
    };
    e = XEvent{};
    e.xany.display = dpy;
    e.xany.window = v->window();
    EXPECT_EQ(decoded(200)[0], OrvIgnored);
    // A configure sent by a client carries its flag and no root position.
    e = XEvent{};
    e.xconfigure.display = dpy;
    e.xconfigure.window = e.xconfigure.event = v->window();
    e.xconfigure.send_event = True;
    EXPECT_EQ(decoded(ConfigureNotify), std::vector<long>({OrvConfigure, 1, 0, 0, 0}));
    e.xconfigure.send_event = False;
    EXPECT_EQ(decoded(ConfigureNotify)[4], 420 + 1);
    // Modifier bits: Button5 and Mod5 have none.
    EXPECT_EQ(std::vector<unsigned short>({0, 0x030F, 0x0400, 0x0800, 0x1000, 0x2000, 0x4000}),
              std::vector<unsigned short>({OrvMapModifiers(Button5Mask | Mod5Mask),
                                           OrvMapModifiers(ShiftMask | ControlMask | Button1Mask |
                                                           Button2Mask | Button3Mask | Button4Mask),
                                           OrvMapModifiers(Mod4Mask), OrvMapModifiers(Mod1Mask),
                                           OrvMapModifiers(Mod3Mask), OrvMapModifiers(LockMask),
                                           OrvMapModifiers(Mod2Mask)}));
}

TEST_F(ViewTest, BackgroundCursorGhostAndBackingBitmap) {
    open("looks", Orv2dRect(150, 650, 120, 90));
    Window w = v->window();
    EXPECT_TRUE(v->backgroundMakeUp->foreground() == director->defaultBackground &&
                v->ghostMakeUp->mode == OrvXorMode);
    // A new background: counted by the view and its background make-up, sent to X.
    OrvColor* red = director->color("red");
    OrvCount(red);
    int held = red->count;
    v->setBackground(red);
    v->setBackground(red);  // the current colour changes nothing
    EXPECT_TRUE(red->count == held + 2 && v->backgroundMakeUp->foreground() == red);
    v->erase(0);
    EXPECT_EQ(rgbOf(w, 5, 5), 0xFF0000u);
    OrvCursor* cross = director->cursor("cross");
    int c0 = cross->count;
    v->setCursor(cross);
    v->setCursor(cross);
    EXPECT_EQ(cross->count, c0 + 1);
    v->setCursor(nullptr);
    EXPECT_EQ(cross->count, c0);
    // The backing bitmap: the view's size and depth, painted with the background, rebuilt on
    // resize; an expose then leaves the window to the subclass.
    v->useBitmap(1);
    ASSERT_TRUE(v->bitmap && v->bitmap->depth == v->depth);
    EXPECT_EQ(rgbOf(v->bitmap->drawable, 60, 45), 0xFF0000u);
    XResizeWindow(raw, w, 140, 100);
    ASSERT_TRUE(runUntil([&] { return v->width == 140; }));
    EXPECT_EQ(Orv2dPoint(140, 100), Orv2dPoint(v->bitmap->width, v->bitmap->height));
    GC gc = XCreateGC(raw, w, 0, nullptr);
    XSetForeground(raw, gc, 0x00FF00);
    XFillRectangle(raw, w, gc, 0, 0, 140, 100);
    XFreeGC(raw, gc);
    log = ViewLog();
    XEvent e = exposeOf(w, 0, 0, 50, 50, 0);
    XSendEvent(raw, w, False, ExposureMask, &e);
    ASSERT_TRUE(runUntil([&] { return log.exposes.size() == 1; }));
    EXPECT_EQ(rgbOf(w, 10, 10), 0x00FF00u);
    v->useBitmap(0);
    EXPECT_EQ(v->bitmap, nullptr);
    OrvRelease(red);
}
