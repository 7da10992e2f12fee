#include "orv/director.h"
#include "orv/view.h"

#include "orv_xtest.h"

#include <X11/extensions/XTest.h>
#include <X11/keysym.h>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <cstring>
#include <sys/file.h>
#include <sys/select.h>
#include <sys/time.h>
#include <unistd.h>

#include <string>

static long nowMs() {
    struct timeval tv;
    gettimeofday(&tv, nullptr);
    return tv.tv_sec * 1000L + tv.tv_usec / 1000;
}

Display* OrvTestOpenDisplay(const char* name) {
    const char* dn = name ? name : getenv("DISPLAY");
    if (!dn) return nullptr;
    return XOpenDisplay(dn);
}

bool OrvTestWaitViewable(Display* dpy, Window window, int timeoutMs) {
    long end = nowMs() + timeoutMs;
    do {
        XWindowAttributes a;
        if (XGetWindowAttributes(dpy, window, &a) && a.map_state == IsViewable) return true;
        OrvTestRunFor(2);
    } while (nowMs() < end);
    return false;
}

bool OrvTestWaitMapNotify(Display* dpy, Window window, int timeoutMs) {
    long end = nowMs() + timeoutMs;
    XEvent ev;
    while (nowMs() < end) {
        while (XCheckTypedWindowEvent(dpy, window, MapNotify, &ev)) return true;
        struct timeval tv = {0, 2000};
        int fd = ConnectionNumber(dpy);
        fd_set set;
        FD_ZERO(&set);
        FD_SET(fd, &set);
        select(fd + 1, &set, nullptr, nullptr, &tv);
    }
    return false;
}

unsigned long OrvTestPixel(Display* dpy, Drawable d, int x, int y) {
    XImage* im = XGetImage(dpy, d, x, y, 1, 1, AllPlanes, ZPixmap);
    if (!im) return ~0UL;
    unsigned long p = XGetPixel(im, 0, 0);
    XDestroyImage(im);
    return p;
}

unsigned long OrvTestRGB(Display* dpy, Drawable d, int x, int y) {
    return OrvTestPixel(dpy, d, x, y) & 0xFFFFFF;
}

void OrvTestMoveRoot(Display* dpy, int x, int y, unsigned long delayMs) {
    XTestFakeMotionEvent(dpy, DefaultScreen(dpy), x, y, delayMs);
    XFlush(dpy);
}

void OrvTestMoveIn(Display* dpy, Window window, int x, int y, unsigned long delayMs) {
    int rx = 0, ry = 0;
    Window child;
    XTranslateCoordinates(dpy, window, DefaultRootWindow(dpy), x, y, &rx, &ry, &child);
    OrvTestMoveRoot(dpy, rx, ry, delayMs);
}

void OrvTestButton(Display* dpy, unsigned button, bool press, unsigned long delayMs) {
    XTestFakeButtonEvent(dpy, button, press ? True : False, delayMs);
    XFlush(dpy);
}

void OrvTestClick(Display* dpy, unsigned button, unsigned long delayMs) {
    OrvTestButton(dpy, button, true, delayMs);
    OrvTestButton(dpy, button, false, 0);
}

void OrvTestKey(Display* dpy, unsigned long keysym, bool press, unsigned long delayMs) {
    KeyCode code = XKeysymToKeycode(dpy, (KeySym)keysym);
    XTestFakeKeyEvent(dpy, code, press ? True : False, delayMs);
    XFlush(dpy);
}

void OrvTestType(Display* dpy, unsigned long keysym, unsigned long modifierKeysym) {
    if (modifierKeysym) OrvTestKey(dpy, modifierKeysym, true);
    OrvTestKey(dpy, keysym, true);
    OrvTestKey(dpy, keysym, false);
    if (modifierKeysym) OrvTestKey(dpy, modifierKeysym, false);
    XSync(dpy, False);
}

void OrvTestFocus(Display* dpy, Window window) {
    XSetInputFocus(dpy, window, RevertToParent, CurrentTime);
    XSync(dpy, False);
}

static void flushAllDirectors() {
    OrvList* all = OrvGetAllDirectors();
    if (!all) return;
    for (OrvLink* l = all->first; l; l = l->next) {
        OrvDirector* d = (OrvDirector*)l->value;
        XFlush((Display*)d->display);
        d->readAndDispatchEvents();
    }
}

bool OrvTestRunUntil(const std::function<bool()>& done, int timeoutMs) {
    long end = nowMs() + timeoutMs;
    for (;;) {
        flushAllDirectors();
        OrvDispatchToTimers();
        if (done()) return true;
        if (nowMs() >= end) return false;
        struct timeval tv = {0, 1000};
        select(0, nullptr, nullptr, nullptr, &tv);
    }
}

void OrvTestRunFor(int ms) {
    OrvTestRunUntil([] { return false; }, ms);
}

bool OrvTestWritePPM(Display* dpy, Window window, const char* path) {
    OrvList* all = OrvGetAllDirectors();
    for (OrvLink* l = all ? all->first : nullptr; l; l = l->next) {
        OrvDirector* d = (OrvDirector*)l->value;
        if ((Display*)d->display != dpy) continue;
        if (OrvView* v = d->findView(window)) return OrvSaveViewPPM(v, path) == 1;
    }
    return false;
}

OrvTestInputLock::OrvTestInputLock() : fd(-1) {
    std::string path = "/tmp/orv-xinput-";
    const char* dn = getenv("DISPLAY");
    for (const char* c = dn ? dn : "none"; *c; c++) path += (*c == '/' ? '_' : *c);
    fd = open(path.c_str(), O_RDWR | O_CREAT, 0666);
    if (fd >= 0) flock(fd, LOCK_EX);
}

OrvTestInputLock::~OrvTestInputLock() {
    if (fd >= 0) {
        flock(fd, LOCK_UN);
        close(fd);
    }
}
