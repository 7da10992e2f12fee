// Helpers shared by the tests that talk to a real X server: a private
// connection, pixel reads with XGetImage, XTest input, and running the
// library's loop until a condition holds.
#ifndef ORV_TEST_XTEST_H
#define ORV_TEST_XTEST_H

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <functional>

// A raw connection to $DISPLAY (or `name`); null when none can be opened.
Display* OrvTestOpenDisplay(const char* name = nullptr);

// Polls (on `dpy`) until `window` is viewable; false after `timeoutMs`.
bool OrvTestWaitViewable(Display* dpy, Window window, int timeoutMs = 3000);

// Blocks on `dpy` until a MapNotify for `window` arrives (StructureNotify
// must be selected on that connection); false after `timeoutMs`.
bool OrvTestWaitMapNotify(Display* dpy, Window window, int timeoutMs = 3000);

// The pixel value at x, y of a drawable.
unsigned long OrvTestPixel(Display* dpy, Drawable d, int x, int y);
// The pixel as 0xRRGGBB on a 24-bit TrueColor drawable.
unsigned long OrvTestRGB(Display* dpy, Drawable d, int x, int y);

// XTest input. Coordinates of OrvTestMoveIn are in the window; `delayMs`
// is passed to the server so that events get distinct timestamps.
void OrvTestMoveRoot(Display* dpy, int x, int y, unsigned long delayMs = 0);
void OrvTestMoveIn(Display* dpy, Window window, int x, int y, unsigned long delayMs = 0);
void OrvTestButton(Display* dpy, unsigned button, bool press, unsigned long delayMs = 0);
void OrvTestClick(Display* dpy, unsigned button, unsigned long delayMs = 0);
// Presses or releases the key of a keysym (XK_a, XK_Shift_L, ...).
void OrvTestKey(Display* dpy, unsigned long keysym, bool press, unsigned long delayMs = 0);
// Press and release of one key, with an optional modifier key held around it.
void OrvTestType(Display* dpy, unsigned long keysym, unsigned long modifierKeysym = 0);
// Gives the keyboard focus to a window (no window manager runs on the test server).
void OrvTestFocus(Display* dpy, Window window);

// Runs the library's wait step without blocking (all directors: X events,
// work procedures, timers, other descriptors) until `done` returns true;
// false after `timeoutMs`.
bool OrvTestRunUntil(const std::function<bool()>& done, int timeoutMs = 3000);
// Runs the loop for that long.
void OrvTestRunFor(int ms);

// Held by a test while it moves the pointer or types: test processes run in
// parallel on one server and share its pointer and keyboard. An flock on a
// file named after $DISPLAY, released by the destructor.
class OrvTestInputLock {
public:
    OrvTestInputLock();
    ~OrvTestInputLock();
    OrvTestInputLock(const OrvTestInputLock&) = delete;
    OrvTestInputLock& operator=(const OrvTestInputLock&) = delete;

private:
    int fd;
};

// Writes the pixels of the library's view on that window as a binary PPM, through
// OrvSaveViewPPM. False when no director on `dpy` has a view there, or on failure.
bool OrvTestWritePPM(Display* dpy, Window window, const char* path);

#endif
