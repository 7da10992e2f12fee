// What the frame and decor tests share: the suite's XTest with a 400x300 stage,
// gestures spaced past the double-click period, colours of make-ups, and a hook
// that counts repaints.
#ifndef ORV_TEST_FRAME_SUPPORT_H
#define ORV_TEST_FRAME_SUPPORT_H

#include <chrono>
#include <string>
#include <vector>

// The library's headers come before Xlib's, whose macros they must not meet.
#include "orv/frame.h"
#include "orv/shapes.h"
#include "orv_fixtures.h"

inline long frameNowMs() {
    using namespace std::chrono;
    return (long)duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

inline std::string str(const Orv2dRect& r) {
    return std::to_string(r.x) + "," + std::to_string(r.y) + " " + std::to_string(r.w) + "x" +
           std::to_string(r.h);
}

// Counts repaints of a stage and keeps the box of each region painted.
class PaintCounter : public OrvStageHook {
public:
    int invalidations = 0;
    std::vector<Orv2dRect> painted;
    void invalidateActorCall(const OrvActor*) override { invalidations++; }
    void beforeDraw(const OrvCanvas*, const Orv2dMatrix*, const Orv2dRegion* region) override {
        painted.push_back(region ? region->bbox : Orv2dRect());
    }
    unsigned long deletedByStage() const override { return 1; }
    void clear() {
        invalidations = 0;
        painted.clear();
    }
};

class FrameTest : public XTest {
protected:
    OrvStage* stage = nullptr;
    OrvFrame* frame = nullptr;
    OrvStage* inside = nullptr;
    long lastPress = 0;

    void SetUp() override {
        XTest::SetUp();
        if (!director) return;
        stage = new OrvStage(director, Orv2dRect(0, 0, 400, 300), "frames", 0, 1);
        ASSERT_TRUE(OrvTestWaitViewable(dpy, stage->window()));
        settle();
    }
    void TearDown() override {
        delete stage;
        XTest::TearDown();
    }
    // A make-up of the default one in these colours.
    OrvMakeUp* look(const char* fg, const char* bg) {
        return director->makeUpBackground(
            director->makeUpForeground(director->defaultMakeUp, director->color(fg)),
            director->color(bg));
    }
    unsigned long rgbOf(const OrvMakeUp* m) { return m->foreground()->index(stage) & 0xFFFFFF; }
    unsigned long rgbOf(const char* colorName) {
        return director->color(colorName)->index(stage) & 0xFFFFFF;
    }
    unsigned long rgb(int x, int y) { return rgbIn(stage, x, y); }
    unsigned long rgbIn(const OrvView* view, int x, int y) {
        return XTest::rgbOf(view->window(), x, y);
    }
    // A grey frame at 40, 30 of 240 by 180, with a red box at 10, 10 of its interior.
    void standFrame(unsigned long interiorVisible = 1) {
        frame = new OrvFrame(director, Orv2dRect(40, 30, 240, 180), interiorVisible,
                             look("black", "white"));
        frame->showTitleBar("Inside", 22);
        frame->showDecoration(7);
        frame->setDecorationColor(director->color("gray"));
        stage->append(frame);
        settle();
        inside = frame->getInteriorStage();
        if (inside) {
            inside->append(
                new OrvFilledRectangle(director, Orv2dRect(10, 10, 30, 20), look("red", "red")));
            settle();
        }
    }
    // The child window's place in its parent and whether it shows, as the server has them.
    Orv2dRect serverBox(const OrvView* v) {
        XSync(dpy, False);
        XWindowAttributes a;
        XGetWindowAttributes(dpy, v->window(), &a);
        return Orv2dRect(a.x, a.y, (uint32_t)a.width, (uint32_t)a.height);
    }
    bool viewable(const OrvView* v) {
        XSync(dpy, False);
        XWindowAttributes a;
        return XGetWindowAttributes(dpy, v->window(), &a) && a.map_state == IsViewable;
    }
    // Runs the loop until the server has sent everything asked so far.
    void settle(int ms = 40) {
        XSync(dpy, False);
        OrvTestRunFor(ms);
    }
    void move(int x, int y) {
        OrvTestMoveIn(dpy, stage->window(), x, y);
        settle();
    }
    // A press after the double-click period of the one before, so that it is a press.
    void press(int x, int y) {
        move(x, y);
        OrvTestRunUntil([&] { return frameNowMs() - lastPress > 260; }, 400);
        lastPress = frameNowMs();
        OrvTestButton(dpy, 1, true);
        settle();
    }
    void release() {
        OrvTestButton(dpy, 1, false);
        settle();
    }
    void click(int x, int y) {
        press(x, y);
        release();
    }
    // A drag of button 1 from one point to another in steps.
    void drag(int x0, int y0, int x1, int y1, int steps = 4) {
        press(x0, y0);
        for (int i = 1; i <= steps; i++)
            move(x0 + (x1 - x0) * i / steps, y0 + (y1 - y0) * i / steps);
        release();
    }
};

// The actors of a stage, in its order.
inline std::vector<OrvActor*> OrvTestObjects(OrvStage* s) {
    unsigned n = 0;
    OrvActor** all = s->objects(n);
    std::vector<OrvActor*> v(all, all + n);
    delete[] all;
    return v;
}

// Where the test data lie: ORV_TEST_DATA, or the source tree's tests/data.
inline std::string OrvTestData(const char* sub) {
    const char* dir = getenv("ORV_TEST_DATA");
    return std::string(dir ? dir : "tests/data") + "/" + sub;
}

// A decor with a border and a title, in grey, on the stage.
inline OrvDecor* OrvTestDecor(OrvDirector* d, const Orv2dRect& r, OrvMakeUp* m) {
    OrvDecor* decor = new OrvDecor(d, r, m);
    decor->showTitleBar("Title", 22);
    decor->showDecoration(7);
    return decor;
}

#endif
