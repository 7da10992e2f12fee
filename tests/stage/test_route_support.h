// Shared pieces of the input tests: a director and a mapped stage on the test
// server, boxes with roles, roles and accelerators that record what they are
// offered, and XTest gestures run through the library's own loop.
#ifndef ORV_TEST_ROUTE_SUPPORT_H
#define ORV_TEST_ROUTE_SUPPORT_H

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

// The library's headers come before Xlib's, whose macros they must not meet.
#include "orv/actor.h"
#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/layer.h"
#include "orv/makeup.h"
#include "orv/producer.h"
#include "orv/resource.h"
#include "orv/role.h"
#include "orv/stage.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>

#include "orv_xtest.h"
#include "test_stage_support.h"  // PrivateXServer

// A filled rectangle in its make-up's foreground; apply2d moves and scales it.
class RouteBox : public OrvActor {
public:
    Orv2dRect box;
    RouteBox(OrvDirector* d, OrvMakeUp* m, const Orv2dRect& r) : OrvActor(d, m), box(r) {}
    RouteBox(const RouteBox& o) : OrvActor(o), box(o.box) {}
    OrvActor* copy() const override { return new RouteBox(*this); }
    Orv2dRect bbox2d(const Orv2dMatrix* matrix) const override {
        Orv2dRect r = box;
        if (matrix) matrix->apply(r);
        return r;
    }
    void draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) override {
        canvas->rectangle(makeUp, box, 1, matrix);
    }
    void apply2d(const Orv2dMatrix& m) override { m.apply(box); }
};

// One offer as a role or an accelerator saw it.
struct Offer {
    std::string who;
    OrvEventType type;
    OrvActor* actor;
    long x, y;
    unsigned short key, modifiers;
};

typedef std::vector<Offer> OfferLog;

// A role that records every offer and answers as told.
class RecordingRole : public OrvRole {
public:
    OfferLog* log;
    std::string name;
    int answer = 1;
    int pointerMoves = 0;
    RecordingRole(OfferLog* log, const char* name) : log(log), name(name) {}
    int input2d(OrvActor* a, const OrvEvent& e, OrvStage*) override {
        log->push_back(Offer{name, e.type, a, e.x, e.y, e.key, e.modifiers});
        return answer;
    }
    const char* className() const override { return "RecordingRole"; }
    int allowPointerMoved() const override { return pointerMoves; }
};

class RecordingAccelerator : public OrvAccelerator {
public:
    OfferLog* log;
    RecordingAccelerator(OfferLog* log, OrvEventType t, unsigned short k, unsigned short m)
        : OrvAccelerator(t, k, m), log(log) {}
    int input2d(OrvStage*, const OrvEvent& e) override {
        log->push_back(Offer{"accelerator", e.type, nullptr, e.x, e.y, e.key, e.modifiers});
        return 1;
    }
};

class RecordingProducer : public OrvProducer {
public:
    OfferLog* log;
    int answer = 1;
    int inits = 0, aborts = 0;
    RecordingProducer(OrvStage* s, OfferLog* log) : OrvProducer(s), log(log) {}
    int input2d(const OrvEvent& e) override {
        log->push_back(Offer{"producer", e.type, nullptr, e.x, e.y, e.key, e.modifiers});
        return answer;
    }
    void init() override { inits++; }
    void abort() override { aborts++; }
    const char* className() const override { return "Recording"; }
};

class CountingCallback : public OrvCallback {
public:
    int* calls;
    OrvActor** last;
    CountingCallback(int* calls, OrvActor** last = nullptr) : calls(calls), last(last) {}
    void activate(OrvActor* a) override {
        (*calls)++;
        if (last) *last = a;
    }
};

class RouteTest : public ::testing::Test {
protected:
    PrivateXServer server;
    OrvDirector* director = nullptr;
    OrvStage* stage = nullptr;
    Display* dpy = nullptr;
    OrvMakeUp* red = nullptr;
    OrvMakeUp* blue = nullptr;
    unsigned long background = 0;
    OfferLog log;

    void SetUp() override {
        if (!getenv("DISPLAY")) GTEST_SKIP() << "no DISPLAY";
        // A server of the test's own: XTest moves the one pointer of a server,
        // so tests running side by side on a shared one would steer each other.
        if (server.start()) setenv("DISPLAY", server.name.c_str(), 1);
        director = new OrvDirector("testroute", nullptr, 0, nullptr);
        dpy = (Display*)director->display;
        // Tests click faster than a person: quick presses must stay single clicks.
        director->setDoubleClickPeriod(0);
        red = director->makeUpForeground(director->defaultMakeUp, director->color("red"));
        blue = director->makeUpForeground(director->defaultMakeUp, director->color("blue"));
        OrvCount(red);
        OrvCount(blue);
        stage = newStage(Orv2dRect(0, 0, 300, 200));
        background = rgb(299, 199);
    }
    void TearDown() override {
        // Release every button and put the pointer away, so the next test starts clean.
        if (dpy) {
            OrvTestMoveRoot(dpy, 1200, 1000);
            XSync(dpy, False);
        }
        delete stage;
        if (director) {
            OrvRelease(red);
            OrvRelease(blue);
            delete director;
        }
    }
    OrvStage* newStage(const Orv2dRect& r, OrvDirector* d = nullptr) {
        OrvStage* s = new OrvStage(d ? d : director, r, "route", 0, 1);
        EXPECT_TRUE(OrvTestWaitViewable((Display*)(d ? d : director)->display, s->window()));
        OrvTestRunFor(30);
        return s;
    }
    unsigned long rgb(int x, int y, OrvStage* s = nullptr) {
        XSync(dpy, False);
        return OrvTestRGB(dpy, (s ? s : stage)->window(), x, y);
    }
    RouteBox* box(long x, long y, unsigned long w, unsigned long h, OrvMakeUp* m = nullptr,
                  OrvStage* s = nullptr) {
        RouteBox* b = new RouteBox(director, m ? m : red, Orv2dRect(x, y, w, h));
        (s ? s : stage)->append(b, 0);
        return b;
    }
    // The library's loop, for a while, so that what XTest sent is handled.
    void settle(int ms = 60) {
        XSync(dpy, False);
        OrvTestRunFor(ms);
    }
    void moveTo(int x, int y, OrvStage* s = nullptr) {
        OrvTestMoveIn(dpy, (s ? s : stage)->window(), x, y);
        settle(30);
    }
    void press(int x, int y, unsigned button = 1) {
        moveTo(x, y);
        OrvTestButton(dpy, button, true);
        settle(30);
    }
    void release(unsigned button = 1) {
        OrvTestButton(dpy, button, false);
        settle(30);
    }
    // A press, motions in steps, and the release at the end.
    void drag(int x0, int y0, int x1, int y1, unsigned button = 1, int steps = 4) {
        press(x0, y0, button);
        for (int i = 1; i <= steps; i++)
            moveTo(x0 + (x1 - x0) * i / steps, y0 + (y1 - y0) * i / steps);
        release(button);
    }
    void click(int x, int y, unsigned button = 1) {
        press(x, y, button);
        release(button);
    }
    // A key typed on the stage, with an optional modifier held.
    void type(unsigned long keysym, unsigned long modifier = 0, OrvStage* s = nullptr) {
        OrvTestFocus(dpy, (s ? s : stage)->window());
        OrvTestType(dpy, keysym, modifier);
        settle(40);
    }
    int count(OrvEventType t, const std::string& who = "") const {
        int n = 0;
        for (const Offer& o : log)
            if (o.type == t && (who.empty() || o.who == who)) n++;
        return n;
    }
    // Every pixel of the window, row by row.
    std::vector<unsigned long> snapshot(OrvStage* s = nullptr) {
        OrvStage* st = s ? s : stage;
        XSync(dpy, False);
        XImage* im = XGetImage(dpy, st->window(), 0, 0, st->width, st->height, AllPlanes, ZPixmap);
        std::vector<unsigned long> v;
        for (unsigned long y = 0; y < st->height; y++)
            for (unsigned long x = 0; x < st->width; x++)
                v.push_back(XGetPixel(im, x, y) & 0xffffff);
        XDestroyImage(im);
        return v;
    }
    // Whether the window holds exactly what a fresh repaint paints: no ghost left.
    bool sameAsRepaint(OrvStage* s = nullptr) {
        OrvStage* st = s ? s : stage;
        std::vector<unsigned long> before = snapshot(st);
        st->drawAll(nullptr, 1);
        return before == snapshot(st);
    }
    // How many pixels of the window differ from the background.
    int foreignPixels(int x0, int y0, int w, int h, OrvStage* s = nullptr) {
        XSync(dpy, False);
        XImage* im = XGetImage(dpy, (s ? s : stage)->window(), x0, y0, w, h, AllPlanes, ZPixmap);
        int n = 0;
        for (int y = 0; y < h; y++)
            for (int x = 0; x < w; x++)
                if ((XGetPixel(im, x, y) & 0xffffff) != background) n++;
        XDestroyImage(im);
        return n;
    }
};

#endif
