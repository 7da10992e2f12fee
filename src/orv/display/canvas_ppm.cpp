// Screenshots: a canvas's pixels read back from the server and written as a binary PPM.
#include <cstdio>

#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/view.h"

// Xlib after the library headers: its macros (Above, Below, None) would break them.
#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace {

// One channel of a TrueColor pixel, scaled to 0..255 whatever the width of its mask.
unsigned char channel(unsigned long pixel, unsigned long mask) {
    if (!mask) return 0;
    unsigned shift = 0;
    while (!((mask >> shift) & 1)) shift++;
    unsigned long top = mask >> shift;
    unsigned long value = (pixel & mask) >> shift;
    return (unsigned char)(top == 255 ? value : value * 255 / top);
}

// Turns the pixel values of an image into RGB bytes: through the masks on a TrueColor visual,
// through the colormap on any other (indexed screens read back colormap indices), and a bit of
// a depth-1 canvas is black when set.
class _OrvPixelColours_ {
public:
    _OrvPixelColours_(Display* display, const OrvCanvas* of) : dpy(display), canvas(of) {
        Visual* v = (Visual*)of->visual;
        trueColor = of->depth > 1 && v && v->c_class == TrueColor;
        if (trueColor) {
            red = v->red_mask;
            green = v->green_mask;
            blue = v->blue_mask;
        }
    }
    _OrvPixelColours_(const _OrvPixelColours_&) = delete;
    _OrvPixelColours_& operator=(const _OrvPixelColours_&) = delete;

    void rgb(unsigned long p, unsigned char* out) {
        if (canvas->depth == 1) {
            out[0] = out[1] = out[2] = (p & 1) ? 0 : 255;
        } else if (trueColor) {
            out[0] = channel(p, red);
            out[1] = channel(p, green);
            out[2] = channel(p, blue);
        } else {
            p &= 255;
            if (!known[p]) {
                cache[p].pixel = p;
                XQueryColor(dpy, (Colormap)canvas->colormap, &cache[p]);
                known[p] = true;
            }
            out[0] = (unsigned char)(cache[p].red >> 8);
            out[1] = (unsigned char)(cache[p].green >> 8);
            out[2] = (unsigned char)(cache[p].blue >> 8);
        }
    }

private:
    Display* dpy;
    const OrvCanvas* canvas;
    bool trueColor;
    unsigned long red = 0, green = 0, blue = 0;
    XColor cache[256] = {};
    bool known[256] = {};
};

}  // namespace

int OrvSaveViewPPM(const OrvCanvas* canvas, const char* file) {
    if (!canvas || !canvas->director || !canvas->director->display || !canvas->drawable)
        return OrvError("## OrvSaveViewPPM : no canvas to read.\n");
    if (!file) return OrvError("## OrvSaveViewPPM : no file name.\n");
    // A window that does not show has no pixels to give: asking would be an X error. A plain
    // canvas on a window (the root canvas) is not a view and is read as it is.
    const OrvView* view = dynamic_cast<const OrvView*>(canvas);
    if (view && !view->isViewable())
        return OrvError("## OrvSaveViewPPM : the window of %s is not viewable.\n",
                        canvas->name ? canvas->name : "the canvas");
    Display* dpy = (Display*)canvas->director->display;
    unsigned long w = canvas->width, h = canvas->height;
    XImage* image = XGetImage(dpy, canvas->drawable, 0, 0, w, h, AllPlanes, ZPixmap);
    if (!image) return OrvError("## OrvSaveViewPPM : cannot read the pixels of the canvas.\n");
    FILE* out = fopen(file, "wb");
    if (!out) {
        XDestroyImage(image);
        return OrvError("## OrvSaveViewPPM : cannot open '%s' for writing.\n", file);
    }
    fprintf(out, "P6\n%lu %lu\n255\n", w, h);
    _OrvPixelColours_ colours(dpy, canvas);
    unsigned char* row = new unsigned char[3 * w];
    for (unsigned long y = 0; y < h; y++) {
        for (unsigned long x = 0; x < w; x++)
            colours.rgb(XGetPixel(image, (int)x, (int)y), row + 3 * x);
        fwrite(row, 1, 3 * w, out);
    }
    delete[] row;
    XDestroyImage(image);
    int written = !ferror(out);
    if (fclose(out) != 0) written = 0;
    if (!written) return OrvError("## OrvSaveViewPPM : cannot write '%s'.\n", file);
    return 1;
}
