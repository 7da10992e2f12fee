// Shared pieces of the gadget tests: a stage on an X server of the test's
// own (the pointer is shared, and XTest moves it), gestures run through the
// library's loop, and callbacks that write what they see into one log.
#ifndef ORV_TEST_GADGET_SUPPORT_H
#define ORV_TEST_GADGET_SUPPORT_H

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
#include "orv/makeup.h"
#include "orv/relief.h"
#include "orv/resource.h"
#include "orv/role.h"
#include "orv/stage.h"
#include "orv/value.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include "orv_xtest.h"

// An Xvfb of one 24-bit screen, started for one test and stopped after it.
class GadgetXServer {
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
    ~GadgetXServer() { stop(); }
};

inline long nowMs() {
    using namespace std::chrono;
    return (long)duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

// What the callbacks saw, in order: "name value".
typedef std::vector<std::string> GadgetLog;

// Writes its name and the gadget's value (or checked state) into the log.
class LogCallback : public OrvCallback {
public:
    GadgetLog* log;
    std::string tag;
    LogCallback(GadgetLog* into, const char* name) : log(into), tag(name) {}
    void activate(OrvActor* actor) override {
        long v = -1;
        if (OrvScrollBar* bar = dynamic_cast<OrvScrollBar*>(actor))
            v = bar->value;
        else if (OrvSlider* slider = dynamic_cast<OrvSlider*>(actor))
            v = slider->value;
        else if (actor)
            v = (long)actor->isInverted();
        log->push_back(tag + " " + std::to_string(v));
    }
};

class GadgetStage : public ::testing::Test {
protected:
    GadgetXServer server;
    OrvDirector* director = nullptr;
    OrvStage* stage = nullptr;
    Display* dpy = nullptr;
    GadgetLog log;
    std::string savedDisplay;
    long lastPress = 0;

    void SetUp() override {
        const char* shown = getenv("DISPLAY");
        if (!shown) GTEST_SKIP() << "no DISPLAY";
        savedDisplay = shown;
        if (server.start()) setenv("DISPLAY", server.name.c_str(), 1);
        director = new OrvDirector("testgadgets", nullptr, 0, nullptr);
        dpy = (Display*)director->display;
        stage = new OrvStage(director, Orv2dRect(0, 0, 320, 240), "gadgets", 0, 1);
        ASSERT_TRUE(OrvTestWaitViewable(dpy, stage->window()));
        OrvTestRunFor(30);
    }
    void TearDown() override {
        delete stage;
        delete director;
        if (!savedDisplay.empty()) setenv("DISPLAY", savedDisplay.c_str(), 1);
    }

    // Both callbacks of a gadget write into the log: the secondary one is
    // the drag of value gadgets, the primary one their valueChanged.
    void watch(OrvActor* a, const char* primary = "changed", const char* secondary = "drag") {
        a->setCallback(new LogCallback(&log, primary));
        a->setSecondaryCallback(new LogCallback(&log, secondary));
    }

    void move(int x, int y) {
        OrvTestMoveIn(dpy, stage->window(), x, y);
        settle();
    }
    // A press comes after the double-click period of the one before, so that
    // it is a press and not a double click; quick() skips that wait.
    void press(int x, int y, bool quick = false) {
        move(x, y);
        if (!quick) OrvTestRunUntil([&] { return nowMs() - lastPress > 260; }, 400);
        lastPress = nowMs();
        OrvTestButton(dpy, 1, true);
        settle();
    }
    void release() {
        OrvTestButton(dpy, 1, false);
        settle();
    }
    void click(int x, int y, bool quick = false) {
        press(x, y, quick);
        release();
    }
    // Runs the loop until the server has sent everything the gestures made.
    void settle() {
        XSync(dpy, False);
        OrvTestRunFor(40);
    }
    unsigned long rgb(int x, int y) {
        XSync(dpy, False);
        return OrvTestRGB(dpy, stage->window(), x, y);
    }
    unsigned long rgbOf(OrvMakeUp* m) { return m->foreground()->index(stage) & 0xFFFFFF; }
    std::string joined() const {
        std::string s;
        for (const std::string& e : log) s += (s.empty() ? "" : ", ") + e;
        return s;
    }
};

#endif
