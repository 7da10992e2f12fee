// Bitmaps (canvases on pixmaps) and the copies between drawables, straight and transformed.
#include <cstdlib>
#include <cstring>

#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/makeup.h"
#include "orv/resource.h"

// Xlib after the library headers: its macros (Above, Below, None) would break them.
#include <X11/Xlib.h>
#include <X11/Xutil.h>

static inline Display* displayOf(const OrvCanvas* c) {
    return (Display*)c->director->display;
}

// A plain context for putting images of `depth` on drawables of that depth, clip cleared.
static GC contextForDepth(const OrvCanvas* canvas, unsigned depth) {
    OrvDirector* d = canvas->director;
    if (depth == 1) return (GC)d->defaultDepth1MakeUp(canvas);
    if (depth == d->depth && d->defaultMakeUp) {
        GC gc = (GC)d->defaultMakeUp->internal(canvas);
        if (gc) {
            XSetClipMask((Display*)d->display, gc, None);
            d->defaultMakeUp->clipValid = 0;
        }
        return gc;
    }
    if (depth == 8) return (GC)d->defaultDepth8MakeUp(canvas);
    return nullptr;
}

// Gives a context the canvas's clip, or none.
static void sendClip(Display* dpy, GC gc, const Orv2dRegion& clip) {
    if (clip.isEmpty()) {
        XSetClipMask(dpy, gc, None);
        return;
    }
    XRectangle* r = (XRectangle*)malloc(sizeof(XRectangle) * clip.count);
    if (!r) return;
    for (unsigned i = 0; i < clip.count; i++) {
        const Orv2dRect& c = clip.rectangle((unsigned short)i);
        r[i].x = (short)c.x;
        r[i].y = (short)c.y;
        r[i].width = (unsigned short)c.w;
        r[i].height = (unsigned short)c.h;
    }
    XSetClipRectangles(dpy, gc, 0, 0, r, clip.count, Unsorted);
    free(r);
}

// ---------------------------------------------------------------- OrvBitmap

OrvBitmap::OrvBitmap(const OrvCanvas* canvas, unsigned long w, unsigned long h, unsigned long d)
    : OrvCanvas(canvas->director, w, h, nullptr), lockCount(0), mask(nullptr) {
    depth = (unsigned short)d;
    Display* dpy = displayOf(this);
    Drawable on = canvas->drawable ? canvas->drawable : DefaultRootWindow(dpy);
    drawable = XCreatePixmap(dpy, on, width, height, depth);
    director->add(this);
}

OrvBitmap::~OrvBitmap() {
    if (director) director->remove(this);
    if (drawable && director && director->display) XFreePixmap(displayOf(this), drawable);
    drawable = 0;
    while (colors.first) {
        OrvColor* c = (OrvColor*)colors.first->value;
        colors.remove(c);
        OrvRelease(c);
    }
    if (mask) {
        // The bitmap counted its mask with its own locks: let go of them.
        OrvBitmap* m = mask;
        mask = nullptr;
        m->unLock();
    }
}

unsigned long OrvBitmap::isABitmap() const {
    return 1;
}
unsigned long OrvBitmap::isPrintDevice() const {
    return 0;
}
const char* OrvBitmap::className() const {
    return "OrvBitmap";
}

void OrvBitmap::lock() {
    for (OrvBitmap* b = this; b; b = b->mask) b->lockCount++;
}

void OrvBitmap::unLock() {
    for (OrvBitmap* b = this; b; b = b->mask) {
        if (b->lockCount >= 2) {
            b->lockCount--;
            continue;
        }
        delete b;
        return;
    }
}

void OrvBitmap::setMask(OrvBitmap* m) {
    if (!m || m == this || m == mask) return;
    if (mask) {
        OrvPrint("OrvBitmap::setMask : Can't initialize transparent mask twice. \n");
        return;
    }
    mask = m;
    m->lockCount += lockCount;
    if (m->depth != 1) return;
    // Clear the picture where the mask is 0, so that or-ing it in shows only the masked part.
    Display* dpy = displayOf(this);
    XGCValues v;
    v.function = GXand;
    v.foreground = ~0UL;
    v.background = 0;
    GC gc = XCreateGC(dpy, drawable, GCFunction | GCForeground | GCBackground, &v);
    unsigned w = width < m->width ? width : m->width;
    unsigned h = height < m->height ? height : m->height;
    XCopyPlane(dpy, m->drawable, drawable, gc, 0, 0, w, h, 0, 0, 1);
    XFreeGC(dpy, gc);
}

unsigned char* OrvBitmap::getBits(unsigned long& size, const Orv2dRect& rect) const {
    size = 0;
    if (rect.w == 0 || rect.h == 0) return nullptr;
    XImage* image =
        XGetImage(displayOf(this), drawable, rect.x, rect.y, rect.w, rect.h, AllPlanes, ZPixmap);
    if (!image) return nullptr;
    size = (unsigned long)image->bytes_per_line * image->height;
    unsigned char* bits = new unsigned char[size ? size : 1];
    memcpy(bits, image->data, size);
    XDestroyImage(image);
    return bits;
}

void OrvBitmap::setBits(const Orv2dRect& rect, const unsigned char* data, unsigned long size,
                        unsigned short pad, unsigned long lsbFirst) {
    if (!data || rect.w == 0 || rect.h == 0) return;
    Display* dpy = displayOf(this);
    // Xlib refuses a row shorter than the pad would ask for: describe the rows with the
    // smallest pad, then state the pad that was given.
    XImage* image = XCreateImage(dpy, DefaultVisual(dpy, DefaultScreen(dpy)), depth, ZPixmap, 0,
                                 nullptr, rect.w, rect.h, 8, (int)(size / rect.h));
    if (!image) return;
    image->bitmap_pad = pad;
    image->data = (char*)data;
    image->byte_order = MSBFirst;
    image->bitmap_bit_order = lsbFirst ? LSBFirst : MSBFirst;
    image->bitmap_unit = depth <= 8 ? 8 : 32;
    image->bits_per_pixel = depth == 1 ? 1 : depth <= 8 ? 8 : 32;
    GC gc = contextForDepth(this, depth);
    if (gc) XPutImage(dpy, drawable, gc, image, 0, 0, rect.x, rect.y, rect.w, rect.h);
    image->data = nullptr;
    XDestroyImage(image);
}

void OrvBitmap::useColor(OrvColor* c) {
    if (!c || colors.find(c)) return;
    colors.append(c);
    OrvCount(c);
}

// ---------------------------------------------------------------- straight copy

void OrvCanvas::bitblit(const OrvMakeUp* makeUp, const OrvCanvas* source, const Orv2dRect& rect,
                        const Orv2dPoint& point, unsigned long mask, const Orv2dMatrix* matrix) {
    if (!makeUp || !source) return;
    Orv2dPoint p = point;
    if (matrix) matrix->apply(p);
    if (depth < source->depth) {
        OrvError("## Error can't copy pixmap's with different depth.\n");
        return;
    }
    Orv2dRect r = rect;
    r.intersection(Orv2dRect(0, 0, source->width, source->height));
    if (r.w == 0 || r.h == 0) {
        OrvPrint("## Region outside size of the pixmap.<%d, %d, %d, %d> <%d, %d, %d, %d>\n", rect.x,
                 rect.y, (int)rect.w, (int)rect.h, 0, 0, (int)source->width, (int)source->height);
        return;
    }
    const OrvBitmap* sourceMask = nullptr;
    if (source->isABitmap()) sourceMask = ((const OrvBitmap*)source)->mask;
    if (source->depth == 1 || (sourceMask && sourceMask->depth == 1)) mask = 1;
    copyArea(makeUp, source->drawable, source->depth, sourceMask, r, p, mask);
}

void OrvCanvas::copyArea(const OrvMakeUp* makeUp, unsigned long src, unsigned short sourceDepth,
                         const OrvBitmap* sourceMask, const Orv2dRect& r, const Orv2dPoint& p,
                         unsigned long mask) {
    Display* dpy = displayOf(this);
    GC gc = (GC)makeUp->internal(this);
    if (!gc) return;
    if (mask && makeUp->mode != OrvXorMode) {
        if (sourceDepth == 1) {
            // The source as clip mask of a fill: the foreground paints where it has ones.
            XSetClipOrigin(dpy, gc, p.x - r.x, p.y - r.y);
            XSetClipMask(dpy, gc, src);
            XFillRectangle(dpy, drawable, gc, p.x, p.y, r.w, r.h);
            XSetClipOrigin(dpy, gc, 0, 0);
            XSetClipMask(dpy, gc, None);
            makeUp->clipValid = 0;
            return;
        }
        if (sourceMask && sourceMask->depth == 1 && sourceDepth == 8 && depth == 8) {
            // Punch the mask out of the destination, then or the picture in.
            GC gc8 = (GC)director->defaultDepth8MakeUp(this);
            sendClip(dpy, gc8, clip);
            XGCValues v;
            v.function = GXand;
            v.foreground = 0;
            v.background = 0xFF;
            XChangeGC(dpy, gc8, GCFunction | GCForeground | GCBackground, &v);
            XCopyPlane(dpy, sourceMask->drawable, drawable, gc8, r.x, r.y, r.w, r.h, p.x, p.y, 1);
            OrvMakeUp* m = const_cast<OrvMakeUp*>(makeUp);
            OrvDrawMode old = m->mode;
            m->setMode(OrvOrMode);
            testClip(makeUp);
            XCopyArea(dpy, src, drawable, gc, r.x, r.y, r.w, r.h, p.x, p.y);
            m->setMode(old);
            return;
        }
        if (sourceMask && sourceMask->depth == 1 && sourceDepth == depth) {
            // Deeper screens: the mask clips a plain copy.
            XSetClipOrigin(dpy, gc, p.x - r.x, p.y - r.y);
            XSetClipMask(dpy, gc, sourceMask->drawable);
            XCopyArea(dpy, src, drawable, gc, r.x, r.y, r.w, r.h, p.x, p.y);
            XSetClipOrigin(dpy, gc, 0, 0);
            XSetClipMask(dpy, gc, None);
            makeUp->clipValid = 0;
            return;
        }
    }
    testClip(makeUp);
    unsigned short directorDepth = director->depth;
    if (directorDepth == 1 || (directorDepth == sourceDepth && sourceDepth >= 2) ||
        (sourceDepth == depth && sourceDepth >= 2)) {
        XCopyArea(dpy, src, drawable, gc, r.x, r.y, r.w, r.h, p.x, p.y);
    } else if (depth <= sourceDepth) {
        GC gc1 = (GC)director->defaultDepth1MakeUp(this);
        XCopyPlane(dpy, src, drawable, gc1, r.x, r.y, r.w, r.h, p.x, p.y, 1);
    } else {
        XCopyPlane(dpy, src, drawable, gc, r.x, r.y, r.w, r.h, p.x, p.y, 1);
    }
}

// ---------------------------------------------------------------- transformed copy

void OrvCanvas::bitblit(const OrvMakeUp* makeUp, const Orv2dMatrix& matrix, const OrvCanvas* source,
                        unsigned long mask, const Orv2dRegion* region) {
    if (!makeUp || !source) return;
    Orv2dMatrix inverse;
    if (!matrix.computeInverse(inverse)) return;
    int sw = (int)source->width, sh = (int)source->height;
    Orv2dPoint corners[4] = {Orv2dPoint(0, 0), Orv2dPoint(sw, 0), Orv2dPoint(0, sh),
                             Orv2dPoint(sw, sh)};
    int x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    for (int i = 0; i < 4; i++) {
        matrix.apply(corners[i]);
        if (i == 0 || corners[i].x < x0) x0 = corners[i].x;
        if (i == 0 || corners[i].y < y0) y0 = corners[i].y;
        if (i == 0 || corners[i].x > x1) x1 = corners[i].x;
        if (i == 0 || corners[i].y > y1) y1 = corners[i].y;
    }
    Orv2dRect target(x0, y0, (unsigned)(x1 - x0), (unsigned)(y1 - y0));
    target.intersection(Orv2dRect(0, 0, width, height));
    if (region && !region->isEmpty()) target.intersection(region->bbox);
    if (target.w == 0 || target.h == 0) return;

    Display* dpy = displayOf(this);
    XImage* in = XGetImage(dpy, source->drawable, 0, 0, sw, sh, AllPlanes, ZPixmap);
    if (!in) return;
    unsigned short d = source->depth;
    int pad = d == 1 ? 8 : 32;
    XImage* out = XCreateImage(dpy, DefaultVisual(dpy, DefaultScreen(dpy)), d, ZPixmap, 0, nullptr,
                               target.w, target.h, pad, 0);
    if (!out) {
        XDestroyImage(in);
        return;
    }
    out->data = (char*)calloc((size_t)out->bytes_per_line * target.h, 1);
    unsigned long outside = 0;
    if (d != 1 && director->defaultBackground) outside = director->defaultBackground->index(this);
    // Each target pixel takes the source pixel that the inverse mapping sends it to.
    for (unsigned j = 0; j < target.h; j++) {
        for (unsigned i = 0; i < target.w; i++) {
            Orv2dPoint q(target.x + (int)i, target.y + (int)j);
            inverse.apply(q);
            unsigned long pixel = outside;
            if (q.x >= 0 && q.x < sw && q.y >= 0 && q.y < sh) pixel = XGetPixel(in, q.x, q.y);
            XPutPixel(out, (int)i, (int)j, pixel);
        }
    }
    XDestroyImage(in);
    Pixmap tmp = XCreatePixmap(dpy, drawable, target.w, target.h, d);
    GC put = contextForDepth(this, d);
    if (put) XPutImage(dpy, tmp, put, out, 0, 0, 0, 0, target.w, target.h);
    XDestroyImage(out);

    Orv2dRect all(0, 0, target.w, target.h);
    Orv2dPoint at(target.x, target.y);
    if (!mask) {
        int narrower = d < depth;
        if (narrower) SetDepth1Mode(this, makeUp->mode, 1);
        copyArea(makeUp, tmp, d, nullptr, all, at, 0);
        if (narrower) SetDepth1Mode(this, makeUp->mode, 0);
    } else {
        copyArea(makeUp, tmp, d, nullptr, all, at, d == 1 ? 1 : 0);
    }
    XFreePixmap(dpy, tmp);
}
