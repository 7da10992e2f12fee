// What the frame and decor tests share: a stage on an X server of the test's
// own (XTest moves the one pointer), gestures run through the library's loop,
// pixel reads with XGetImage, and a hook that counts repaints.
#ifndef ORV_TEST_FRAME_SUPPORT_H
#define ORV_TEST_FRAME_SUPPORT_H

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

// The library's headers come before Xlib's, whose macros they must not meet.
#include "orv/actor.h"
#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/frame.h"
#include "orv/makeup.h"
#include "orv/resource.h"
#include "orv/stage.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include "orv_xtest.h"

// An Xvfb of one 640 by 480 screen of 24 bits, for one test.
class FrameXServer {
public:
    pid_t pid = -1;
    std::string name;

    bool start() {
        int fds[2];
        if (pipe(fds) != 0) return false;
        pid = fork();
        if (pid < 0) return false;
        if (pid == 0) {
            close(fds[0]);
            int devnull = open("/dev/null", O_RDWR);
            dup2(devnull, 1);
            dup2(devnull, 2);
            char fd[16];
            snprintf(fd, sizeof fd, "%d", fds[1]);
            execlp("Xvfb", "Xvfb", "-displayfd", fd, "-screen", "0", "640x480x24", "-nolisten",
                   "tcp", "-noreset", "-fp",
                   "/usr/share/fonts/X11/misc,/usr/share/fonts/X11/75dpi/:unscaled,"
                   "/usr/share/fonts/X11/100dpi/:unscaled,built-ins",
                   (char*)nullptr);
            _exit(127);
        }
        close(fds[1]);
        // The server writes its display number once it accepts clients.
        std::string number;
        struct pollfd p = {fds[0], POLLIN, 0};
        char c;
        while (poll(&p, 1, 10000) > 0 && read(fds[0], &c, 1) == 1 && c != '\n') number += c;
        close(fds[0]);
        if (number.empty()) {
            stop();
            return false;
        }
        name = ":" + number;
        return true;
    }
    void stop() {
        if (pid > 0) {
            kill(pid, SIGTERM);
            waitpid(pid, nullptr, 0);
        }
        pid = -1;
    }
    ~FrameXServer() { stop(); }
};

inline long frameNowMs() {
    using namespace std::chrono;
    return (long)duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
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

class FrameTest : public ::testing::Test {
protected:
    FrameXServer server;
    OrvDirector* director = nullptr;
    OrvStage* stage = nullptr;
    Display* dpy = nullptr;
    std::string savedDisplay;
    long lastPress = 0;

    void SetUp() override {
        const char* shown = getenv("DISPLAY");
        if (!shown) GTEST_SKIP() << "no DISPLAY";
        savedDisplay = shown;
        if (server.start()) setenv("DISPLAY", server.name.c_str(), 1);
        director = new OrvDirector("testframes", nullptr, 0, nullptr);
        dpy = (Display*)director->display;
        stage = new OrvStage(director, Orv2dRect(0, 0, 400, 300), "frames", 0, 1);
        ASSERT_TRUE(OrvTestWaitViewable(dpy, stage->window()));
        settle();
    }
    void TearDown() override {
        delete stage;
        delete director;
        if (!savedDisplay.empty()) setenv("DISPLAY", savedDisplay.c_str(), 1);
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
        XSync(dpy, False);
        return OrvTestRGB(dpy, view->window(), x, y);
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

// A decor with a border and a title, in grey, on the stage.
inline OrvDecor* OrvTestDecor(OrvDirector* d, const Orv2dRect& r, OrvMakeUp* m) {
    OrvDecor* decor = new OrvDecor(d, r, m);
    decor->showTitleBar("Title", 22);
    decor->showDecoration(7);
    return decor;
}

#endif
