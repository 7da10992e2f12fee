// Drawing tests on both screens of the test server: a director per screen, white sheets
// to draw on, make-ups by colour name, and pixel reads with XGetImage.
#ifndef ORV_TEST_PIXELS_H
#define ORV_TEST_PIXELS_H

#include <gtest/gtest.h>
#include <cstdlib>

#include <string>

#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/makeup.h"
#include "orv/resource.h"

// Xlib after the library headers, whose names its macros would break.
#include <X11/Xlib.h>
#include <X11/Xutil.h>

// Runs each test on the 24-bit TrueColor screen (DISPLAY) and on the 8-bit PseudoColor
// screen (ORV_TEST_DISPLAY8), where pixels read back as colormap indices.
class OrvScreenTest : public testing::TestWithParam<const char*> {
protected:
    OrvDirector* d = nullptr;
    Display* dpy = nullptr;

    void SetUp() override {
        const char* name = getenv(GetParam());
        if (!name || !*name) GTEST_SKIP() << GetParam() << " is not set";
        // One connection stays open for the whole process: when its last client goes, the server
        // resets and refuses the next connection for a moment.
        static Display* keeper = XOpenDisplay(name);
        (void)keeper;
        d = new OrvDirector("drawtest", name, 0, nullptr);
        dpy = (Display*)d->display;
    }
    void TearDown() override { delete d; }

    unsigned long mask() const { return d->depth >= 32 ? ~0UL : (1UL << d->depth) - 1; }

    // The pixel at x, y of a canvas (an index on the 8-bit screen).
    unsigned long pixel(const OrvCanvas* c, int x, int y) const {
        XImage* im = XGetImage(dpy, c->drawable, x, y, 1, 1, AllPlanes, ZPixmap);
        if (!im) return ~0UL;
        unsigned long p = XGetPixel(im, 0, 0) & mask();
        XDestroyImage(im);
        return p;
    }
    // How many pixels of a rectangle of the canvas have that value.
    int countPixels(const OrvCanvas* c, const Orv2dRect& r, unsigned long value) const {
        XImage* im = XGetImage(dpy, c->drawable, r.x, r.y, r.w, r.h, AllPlanes, ZPixmap);
        if (!im) return -1;
        int n = 0;
        for (unsigned y = 0; y < r.h; y++)
            for (unsigned x = 0; x < r.w; x++) n += (XGetPixel(im, x, y) & mask()) == value;
        XDestroyImage(im);
        return n;
    }
    unsigned long px(const char* colorName) {
        return d->color(colorName)->index(d->rootCanvas) & mask();
    }

    // The default make-up in these colours.
    OrvMakeUp* paint(const char* fg, const char* bg = "white") {
        return d->makeUpBackground(d->makeUpForeground(d->defaultMakeUp, d->color(fg)),
                                   d->color(bg));
    }
    // A white bitmap of the director's depth, without clip.
    OrvBitmap* sheet(unsigned long w = 100, unsigned long h = 100) {
        OrvBitmap* b = new OrvBitmap(d->rootCanvas, w, h, d->depth);
        b->setClip(nullptr);
        b->rectangle(paint("white"), Orv2dRect(0, 0, w, h), 1);
        return b;
    }
};

// The pixel of a canvas of any depth (a bit of a depth-1 bitmap).
inline unsigned long OrvBitmapPixelForTest(OrvDirector* d, const OrvCanvas* c, int x, int y = 0) {
    XImage* im = XGetImage((Display*)d->display, c->drawable, x, y, 1, 1, AllPlanes, ZPixmap);
    if (!im) return ~0UL;
    unsigned long p = XGetPixel(im, 0, 0);
    XDestroyImage(im);
    return p;
}

#define ORV_ON_BOTH_SCREENS(suite)                                                                 \
    INSTANTIATE_TEST_SUITE_P(Screens, suite, testing::Values("DISPLAY", "ORV_TEST_DISPLAY8"))

#endif
