// Shared pieces of the drawing-cycle tests: a director on the test server,
// a stage that counts its repaints and erases, and a box actor that counts
// its draw2d calls and remembers on which canvas it was drawn.
#ifndef ORV_TEST_STAGE_SUPPORT_H
#define ORV_TEST_STAGE_SUPPORT_H

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
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
#include "orv/stage.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include "orv_xtest.h"

// A filled rectangle in its make-up's foreground.
class TestBox : public OrvActor {
public:
    Orv2dRect box;
    int draws = 0;
    const OrvCanvas* lastCanvas = nullptr;
    std::vector<const OrvCanvas*>* canvases = nullptr;

    TestBox(OrvDirector* d, OrvMakeUp* m, const Orv2dRect& r) : OrvActor(d, m), box(r) {}

    Orv2dRect bbox2d(const Orv2dMatrix* matrix) const override {
        Orv2dRect r = box;
        if (matrix) matrix->apply(r);
        return r;
    }
    void draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) override {
        draws++;
        lastCanvas = canvas;
        if (canvases) canvases->push_back(canvas);
        canvas->rectangle(makeUp, box, 1, matrix);
    }
    // The change protocol around a move, as every geometric setter has it.
    void moveTo(long x, long y) {
        beginDrawing(1);
        box.x = x;
        box.y = y;
        flushDrawing(1);
    }
};

// Counts the repaints and the erasures of the window itself.
class CountingStage : public OrvStage {
public:
    int drawAlls = 0;
    int windowErases = 0;

    CountingStage(OrvDirector* d, const Orv2dRect& r) : OrvStage(d, r, "test", 0, 1) {}
    void drawAll(const Orv2dRegion* region, unsigned long erase) override {
        drawAlls++;
        OrvStage::drawAll(region, erase);
    }
    void erase(const Orv2dRect& r, int exposures) override {
        windowErases++;
        OrvStage::erase(r, exposures);
    }
    void erase(const Orv2dRegion* r, int exposures) override {
        windowErases++;
        OrvStage::erase(r, exposures);
    }
    void erase(int exposures) override {
        windowErases++;
        OrvStage::erase(exposures);
    }
};

// Records what the hooks of the drawing cycle were told.
class RecordingHook : public OrvStageHook {
public:
    int before = 0, after = 0, copies = 0, invalidations = 0, contentsCalls = 0, resized = 0,
        transformers = 0;
    const OrvCanvas* drawCanvas = nullptr;
    const OrvCanvas* copyCanvas = nullptr;
    Orv2dRegion lastRegion;
    void beforeDraw(const OrvCanvas* c, const Orv2dMatrix*, const Orv2dRegion* r) override {
        before++;
        drawCanvas = c;
        if (r) lastRegion = *r;
    }
    void afterDraw(const OrvCanvas*, const Orv2dMatrix*, const Orv2dRegion*) override { after++; }
    void afterCopy(const OrvCanvas* c, const Orv2dMatrix*, const Orv2dRegion*) override {
        copies++;
        copyCanvas = c;
    }
    void invalidateActorCall(const OrvActor*) override { invalidations++; }
    void contents() override { contentsCalls++; }
    void stageResized() override { resized++; }
    void transformer(const Orv2dMatrix*, const Orv2dMatrix*) override { transformers++; }
    unsigned long deletedByStage() const override { return 1; }
};

// An X server of the test's own. Test processes run side by side on the
// suite's server, where another test's window may lie over the one whose
// pixels are read; on a server of its own a window is never covered.
class PrivateXServer {
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
    ~PrivateXServer() { stop(); }
};

class StageTest : public ::testing::Test {
protected:
    PrivateXServer server;
    OrvDirector* director = nullptr;
    CountingStage* stage = nullptr;
    Display* dpy = nullptr;
    OrvMakeUp* red = nullptr;
    OrvMakeUp* blue = nullptr;
    unsigned long background = 0;

    void SetUp() override {
        if (!getenv("DISPLAY")) GTEST_SKIP() << "no DISPLAY";
        // Without Xvfb at hand the suite's server serves, covered or not.
        if (server.start()) setenv("DISPLAY", server.name.c_str(), 1);
        director = new OrvDirector("teststage", nullptr, 0, nullptr);
        dpy = (Display*)director->display;
        red = director->makeUpForeground(director->defaultMakeUp, director->color("red"));
        blue = director->makeUpForeground(director->defaultMakeUp, director->color("blue"));
        OrvCount(red);
        OrvCount(blue);
        stage = new CountingStage(director, Orv2dRect(0, 0, 200, 150));
        ASSERT_TRUE(OrvTestWaitViewable(dpy, stage->window()));
        OrvTestRunFor(30);
        background = rgb(199, 149);
    }
    void TearDown() override {
        delete stage;
        if (director) {
            OrvRelease(red);
            OrvRelease(blue);
            delete director;
        }
    }
    unsigned long rgb(int x, int y) {
        XSync(dpy, False);
        return OrvTestRGB(dpy, stage->window(), x, y);
    }
    TestBox* box(long x, long y, unsigned long w, unsigned long h, OrvMakeUp* m = nullptr,
                 unsigned layer = 0) {
        TestBox* b = new TestBox(director, m ? m : red, Orv2dRect(x, y, w, h));
        stage->append(b, layer);
        return b;
    }
    // Forgets what the setup drew, so a test counts only its own repaints.
    void resetCounts(const std::vector<TestBox*>& boxes) {
        for (TestBox* b : boxes) b->draws = 0;
        stage->drawAlls = 0;
        stage->windowErases = 0;
    }
};

#endif
