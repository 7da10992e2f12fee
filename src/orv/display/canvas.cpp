// The canvas: clip, graphic contexts of make-ups, and the line, area and text primitives.
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/makeup.h"
#include "orv/resource.h"
#include "orv/view.h"

// Xlib after the library headers: its macros (Above, Below, None) would break them.
#include <X11/Xlib.h>
#include <X11/Xutil.h>

int OrvDrawModeFunction(OrvDrawMode mode) {
    switch (mode) {
        case OrvOrMode:
            return GXor;
        case OrvAndMode:
            return GXand;
        case OrvXorMode:
            return GXxor;
        case OrvInvertMode:
            return GXinvert;
        case OrvCopyInvertedMode:
            return GXcopyInverted;
        case OrvOrInvertedMode:
            return GXorInverted;
        case OrvAndInvertedMode:
            return GXandInverted;
        case OrvEquivMode:
            return GXequiv;
        default:
            return GXcopy;
    }
}

void SetDepth1Mode(const OrvCanvas* canvas, OrvDrawMode mode, unsigned long on) {
    if (!canvas || !canvas->director || mode == OrvCopyMode) return;
    // Exclusive equivalence has no one-bit meaning of its own: it toggles like xor.
    int function = GXcopy;
    if (on) function = mode == OrvEquivMode ? GXxor : OrvDrawModeFunction(mode);
    GC gc = (GC)canvas->director->defaultDepth1MakeUp(canvas);
    XSetFunction((Display*)canvas->director->display, gc, function);
}

// Growing static buffers, never freed: they serve every draw call.
template <class T>
static T* growBuffer(T*& buffer, unsigned& capacity, unsigned n) {
    if (n > capacity) {
        unsigned c = capacity ? capacity : 64;
        while (c < n) c *= 2;
        T* b = (T*)realloc(buffer, sizeof(T) * c);
        if (!b) return nullptr;
        buffer = b;
        capacity = c;
    }
    return buffer;
}

static XPoint* xPointBuffer(unsigned n) {
    static XPoint* buffer = nullptr;
    static unsigned capacity = 0;
    return growBuffer(buffer, capacity, n);
}

static XRectangle* xRectBuffer(unsigned n) {
    static XRectangle* buffer = nullptr;
    static unsigned capacity = 0;
    return growBuffer(buffer, capacity, n);
}

static inline Display* displayOf(const OrvCanvas* c) {
    return (Display*)c->director->display;
}

// ---------------------------------------------------------------- life

OrvCanvas::OrvCanvas(OrvDirector* d, unsigned long w, unsigned long h, void* dr)
    : width(w ? w : 1), height(h ? h : 1), drawable((unsigned long)dr), director(d), depth(0),
      name(nullptr), clip(25), style(0), preparing(0), colormap(0), visual(nullptr),
      sharesRootResources(0) {
    initializeVisual();
}

void OrvCanvas::initializeVisual() {
    if (!director) return;
    unsigned size = 0;
    colormap = director->defaultColormap(size);
    visual = director->defaultVisual();
    depth = director->depth;
    sharesRootResources = 1;
}

const OrvCanvas* OrvCanvas::resourceCanvas() const {
    if (sharesRootResources && director && director->rootCanvas) return director->rootCanvas;
    return this;
}

unsigned long OrvCanvas::contextDrawable() const {
    return resourceCanvas()->drawable;
}

OrvCanvas::~OrvCanvas() {
    free(name);
    name = nullptr;
    // Only a canvas that realises resources itself has realisations to give back.
    if (!director || resourceCanvas() != this) return;
    OrvDirector* d = director;
    if (d->makeUps) {
        for (unsigned long i = 0; i < d->makeUps->size; i++)
            if (d->makeUps->buckets[i])
                for (OrvLink* l = d->makeUps->buckets[i]->first; l; l = l->next)
                    ((OrvMakeUp*)l->value)->remove(this);
    }
    if (d->tmpMakeUpObject) d->tmpMakeUpObject->remove(this);
    if (d->fonts) {
        for (unsigned i = 0; i < d->fonts->size; i++)
            if (d->fonts->buckets[i])
                for (OrvAListItem* it = d->fonts->buckets[i]->first; it; it = it->next)
                    ((OrvRasterFont*)it->value)->remove(this);
    }
    if (d->lineStyles)
        for (OrvLink* l = d->lineStyles->first; l; l = l->next)
            ((OrvLineStyle*)l->value)->remove(this);
    if (d->patterns)
        for (OrvLink* l = d->patterns->first; l; l = l->next) ((OrvPattern*)l->value)->remove(this);
    if (d->cursors)
        for (OrvLink* l = d->cursors->first; l; l = l->next) ((OrvCursor*)l->value)->remove(this);
    if (d->colors) {
        for (unsigned i = 0; i < d->colors->size; i++)
            if (d->colors->buckets[i])
                for (OrvAListItem* it = d->colors->buckets[i]->first; it; it = it->next)
                    ((OrvColor*)it->value)->remove(this);
    }
    // Once the director closes, its own shutdown frees the contexts.
    if (d->display && !d->closed) {
        if (d->depth1Contexts.find(this)) {
            XFreeGC((Display*)d->display, (GC)d->depth1Contexts.get(this));
            d->depth1Contexts.remove(this);
        }
        if (d->depth8Contexts.find(this)) {
            XFreeGC((Display*)d->display, (GC)d->depth8Contexts.get(this));
            d->depth8Contexts.remove(this);
        }
    }
}

unsigned long OrvCanvas::isABitmap() const {
    return 0;
}
unsigned long OrvCanvas::isPrintDevice() const {
    return 0;
}
const char* OrvCanvas::className() const {
    return "OrvCanvas";
}

// ---------------------------------------------------------------- clip

void OrvCanvas::setClip(const Orv2dRegion* region) {
    if (!region || region->isEmpty() || region->bbox.w == 0 || region->bbox.h == 0)
        clip = Orv2dRegion(25);
    else
        clip = *region;
    // The flag does not say for which canvas a context's clip is right: all must be sent again.
    if (director && director->makeUps) {
        for (unsigned long i = 0; i < director->makeUps->size; i++)
            if (director->makeUps->buckets[i])
                for (OrvLink* l = director->makeUps->buckets[i]->first; l; l = l->next)
                    ((OrvMakeUp*)l->value)->clipValid = 0;
    }
    // The views' ghosts stand outside the table but share the same contexts' fate.
    if (director && director->views) {
        for (unsigned i = 0; i < director->views->size; i++)
            if (director->views->buckets[i])
                for (OrvAListItem* it = director->views->buckets[i]->first; it; it = it->next) {
                    OrvView* v = (OrvView*)it->value;
                    if (v->ghostMakeUp) v->ghostMakeUp->clipValid = 0;
                }
    }
}

void OrvCanvas::getClip(Orv2dRegion& region) const {
    region = clip;
}

const Orv2dRegion* OrvCanvas::getClip() const {
    return clip.isEmpty() ? nullptr : &clip;
}

void OrvCanvas::prepare(const Orv2dRegion* region) {
    setClip(region);
    if (preparing) OrvPrint(" OrvCanvas::prepare must call ::end after ::before\n");
    preparing = 1;
}

void OrvCanvas::end() {
    setClip(nullptr);
    if (preparing)
        preparing = 0;
    else
        OrvPrint("OrvCanvas::end must call ::before before ::end \n");
}

void OrvCanvas::testClip(const OrvMakeUp* makeUp) const {
    if (!makeUp || makeUp->clipValid) return;
    makeUp->clipValid = 1;
    GC gc = (GC)makeUp->internal(this);
    if (!gc) return;
    if (clip.isEmpty()) {
        XSetClipMask(displayOf(this), gc, None);
        return;
    }
    XRectangle* r = xRectBuffer(clip.count);
    for (unsigned i = 0; i < clip.count; i++) {
        const Orv2dRect& c = clip.rectangle((unsigned short)i);
        r[i].x = (short)c.x;
        r[i].y = (short)c.y;
        r[i].width = (unsigned short)c.w;
        r[i].height = (unsigned short)c.h;
    }
    XSetClipRectangles(displayOf(this), gc, 0, 0, r, clip.count, Unsorted);
}

// ---------------------------------------------------------------- primitives

void OrvCanvas::polyLine(const OrvMakeUp* makeUp, unsigned long count, const Orv2dPoint* pts,
                         unsigned long filled, const Orv2dMatrix* matrix) {
    if (!makeUp || !pts || count == 0) return;
    Orv2dPoint* p = OrvAllocPoints((unsigned)count);
    for (unsigned long i = 0; i < count; i++) {
        p[i] = pts[i];
        if (matrix) matrix->apply(p[i]);
    }
    XPoint* x = xPointBuffer((unsigned)count);
    unsigned n = 0;
    for (unsigned long i = 0; i < count; i++) {
        if (n && x[n - 1].x == (short)p[i].x && x[n - 1].y == (short)p[i].y) continue;
        x[n].x = (short)p[i].x;
        x[n].y = (short)p[i].y;
        n++;
    }
    if (n < 2) return;
    testClip(makeUp);
    GC gc = (GC)makeUp->internal(this);
    if (!gc) return;
    if (filled)
        XFillPolygon(displayOf(this), drawable, gc, x, n, Complex, CoordModeOrigin);
    else
        XDrawLines(displayOf(this), drawable, gc, x, n, CoordModeOrigin);
}

void OrvCanvas::points(const OrvMakeUp* makeUp, unsigned long count, const Orv2dPoint* pts,
                       const Orv2dMatrix* matrix) {
    if (!makeUp || !pts || count == 0) return;
    XPoint* x = xPointBuffer((unsigned)count);
    for (unsigned long i = 0; i < count; i++) {
        Orv2dPoint p = pts[i];
        if (matrix) matrix->apply(p);
        x[i].x = (short)p.x;
        x[i].y = (short)p.y;
    }
    testClip(makeUp);
    GC gc = (GC)makeUp->internal(this);
    if (gc) XDrawPoints(displayOf(this), drawable, gc, x, (int)count, CoordModeOrigin);
}

void OrvCanvas::line(const OrvMakeUp* makeUp, const Orv2dPoint& from, const Orv2dPoint& to,
                     const Orv2dMatrix* matrix) {
    Orv2dPoint p[2] = {from, to};
    polyLine(makeUp, 2, p, 0, matrix);
}

void OrvCanvas::rectangle(const OrvMakeUp* makeUp, const Orv2dRect& rect, unsigned long filled,
                          const Orv2dMatrix* matrix) {
    if (!makeUp) return;
    Orv2dRect r = rect;
    if (matrix) matrix->apply(r);
    testClip(makeUp);
    GC gc = (GC)makeUp->internal(this);
    if (!gc) return;
    if (filled) {
        XFillRectangle(displayOf(this), drawable, gc, r.x, r.y, r.w, r.h);
    } else {
        // The outline stays inside the rectangle.
        unsigned w = r.w < 2 ? 1 : r.w - 1;
        unsigned h = r.h < 2 ? 1 : r.h - 1;
        XDrawRectangle(displayOf(this), drawable, gc, r.x, r.y, w, h);
    }
}

void OrvCanvas::arc(const OrvMakeUp* makeUp, const Orv2dRect& rect, float start, float end,
                    unsigned long filled, const Orv2dMatrix* matrix) {
    if (!makeUp) return;
    Orv2dRect r = rect;
    if (matrix) matrix->apply(r);
    if (r.w < 2) r.w = 2;
    if (r.h < 2) r.h = 2;
    // The second angle is an end, not an extent.
    int a1 = (int)lrint(start * 64.0);
    int a2 = (int)lrint(end * 64.0);
    testClip(makeUp);
    GC gc = (GC)makeUp->internal(this);
    if (!gc) return;
    if (filled)
        XFillArc(displayOf(this), drawable, gc, r.x, r.y, r.w, r.h, a1, a2 - a1);
    else
        XDrawArc(displayOf(this), drawable, gc, r.x, r.y, r.w, r.h, a1, a2 - a1);
}

void OrvCanvas::bezier(const OrvMakeUp* makeUp, unsigned long count, const Orv2dPoint* pts,
                       unsigned long filled, const Orv2dMatrix* matrix) {
    if (!makeUp || !pts || count == 0) return;
    Orv2dPoint* p = OrvAllocLinkPoints((unsigned)count);
    for (unsigned long i = 0; i < count; i++) {
        p[i] = pts[i];
        if (matrix) matrix->apply(p[i]);
    }
    if (count < 3) {
        polyLine(makeUp, count, p, filled, nullptr);
        return;
    }
    unsigned n = 0;
    Orv2dPoint* curve = filled ? OrvCreateClosedBezier((unsigned)count, p, n)
                               : OrvCreateOpenBezier((unsigned)count, p, n);
    polyLine(makeUp, n, curve, filled, nullptr);
}

// ---------------------------------------------------------------- text

void OrvCanvas::string(const OrvMakeUp* makeUp, const Orv2dPoint& point, const char* text,
                       int length, OrvPosition position, unsigned long mnemonic,
                       const Orv2dMatrix* matrix) {
    if (!makeUp || !text) return;
    Orv2dPoint p = point;
    if (matrix) matrix->apply(p);
    testClip(makeUp);
    if (length < 1) length = (int)strlen(text);
    OrvRasterFont* font = makeUp->font();
    if (!font) return;
    Orv2dRect box = font->bbox(text, length, 1);
    int shift = 0;
    if (position == OrvRight)
        shift = (int)box.w;
    else if (position == OrvCenter)
        shift = (int)box.w / 2;
    XFontSet fs = (XFontSet)font->internal(this);
    GC gc = (GC)makeUp->internal(this);
    if (!fs || !gc) return;
    Display* dpy = displayOf(this);
    int x = p.x - shift;
    XmbDrawString(dpy, drawable, fs, gc, x, p.y, text, length);

    if (mnemonic < 1 || mnemonic > (unsigned long)length) return;
    int from = mnemonic == 1 ? 0 : XmbTextEscapement(fs, text, (int)mnemonic - 1);
    int to = XmbTextEscapement(fs, text, (int)mnemonic);
    int w = to - from;
    if (w <= 0) return;
    // The underline tapers to the right, as deep as the font's descent allows.
    int descent = font->box.y + (int)font->box.h;
    XFillRectangle(dpy, drawable, gc, x + from, p.y + 1, (unsigned)w, 1);
    if (descent >= 2) {
        int w2 = w / 2 ? w / 2 : 1;
        XFillRectangle(dpy, drawable, gc, x + from, p.y + 2, (unsigned)w2, 1);
        if (descent >= 3) {
            int w3 = w2 / 2 ? w2 / 2 : 1;
            XFillRectangle(dpy, drawable, gc, x + from, p.y + 3, (unsigned)w3, 1);
        }
    }
}

void OrvCanvas::string(const OrvMakeUp* makeUp, const Orv2dMatrix& matrix, const char* text,
                       int length, const Orv2dRegion* region) {
    if (!makeUp || !text) return;
    if (length < 1) length = (int)strlen(text);
    OrvRasterFont* font = makeUp->font();
    if (!font) return;
    Orv2dRect box = font->bbox(text, length, 0);
    if (box.w == 0 || box.h == 0) return;
    XFontSet fs = (XFontSet)font->internal(this);
    if (!fs) return;
    OrvBitmap* bitmap = new OrvBitmap(this, box.w, box.h, 1);
    Display* dpy = displayOf(this);
    GC gc1 = (GC)director->defaultDepth1MakeUp(this);
    XSetForeground(dpy, gc1, 0);
    XFillRectangle(dpy, bitmap->drawable, gc1, 0, 0, box.w, box.h);
    XSetForeground(dpy, gc1, 1);
    XmbDrawString(dpy, bitmap->drawable, fs, gc1, 0, -box.y, text, length);
    bitblit(makeUp, matrix, bitmap, 1, region);
    delete bitmap;
}

char** OrvTextToLabels(const char* text, unsigned& count) {
    static char** labels = nullptr;
    static unsigned labelCapacity = 0;
    static unsigned used = 0;
    for (unsigned i = 0; i < used; i++) free(labels[i]);
    used = 0;
    count = 0;
    if (!text || !*text) return labels;
    const char* p = text;
    while (*p) {
        const char* nl = strchr(p, '\n');
        size_t n = nl ? (size_t)(nl - p) : strlen(p);
        if (!growBuffer(labels, labelCapacity, used + 1)) break;
        char* s = (char*)malloc(n + 1);
        memcpy(s, p, n);
        s[n] = 0;
        labels[used++] = s;
        if (!nl) break;
        p = nl + 1;
    }
    count = used;
    return labels;
}

// The frame of every clipped drawing: prepares the canvas when the caller has not, narrows the
// clip to `narrow` when given, and on leaving puts back the clip the canvas had before (which
// the caller holds, having narrowed from it) and ends what it prepared.
class _OrvClipScope_ {
public:
    _OrvClipScope_(OrvCanvas* on, const Orv2dRegion& callersClip, const Orv2dRegion* narrow)
        : canvas(on), kept(callersClip), narrowed(narrow != nullptr), wasPreparing(on->preparing) {
        if (!wasPreparing) canvas->prepare(nullptr);
        if (narrowed) canvas->setClip(narrow);
    }
    ~_OrvClipScope_() {
        if (narrowed) canvas->setClip(&kept);
        if (!wasPreparing) canvas->end();
    }
    _OrvClipScope_(const _OrvClipScope_&) = delete;
    _OrvClipScope_& operator=(const _OrvClipScope_&) = delete;

private:
    OrvCanvas* canvas;
    const Orv2dRegion& kept;
    int narrowed;
    int wasPreparing;
};

// Draws `text` with `string` inside `rect`, clipping when it does not fit.
void OrvCanvas::clipString(const OrvMakeUp* makeUp, const Orv2dRect& rect, const char* text,
                           int length, OrvPosition position, unsigned long mnemonic,
                           const Orv2dMatrix* matrix) {
    if (!makeUp || !text) return;
    if (position != OrvLeft && position != OrvRight && position != OrvCenter) position = OrvCenter;
    Orv2dRect r = rect;
    if (matrix) matrix->apply(r);
    if (r.w == 0 || r.h == 0) return;
    OrvRasterFont* font = makeUp->font();
    if (!font) return;
    Orv2dRegion kept(clip);
    unsigned lines = 0;
    char** labels = OrvTextToLabels(text, lines);
    if (lines == 0) return;
    int descentExtent = font->box.y + (int)font->box.h;

    // The clip that keeps the text inside the rectangle, when it does not fit.
    Orv2dRegion newClip(25);
    int needClip = 0;
    auto makeClip = [&]() -> int {
        needClip = 1;
        if (!kept.isEmpty()) {
            newClip = kept;
            newClip.intersection(r);
            newClip.bbox.intersection(r);
            int any = 0;
            for (unsigned i = 0; i < newClip.count; i++)
                if (newClip.rectangle((unsigned short)i).w &&
                    newClip.rectangle((unsigned short)i).h)
                    any = 1;
            return any;
        }
        newClip = Orv2dRegion(r, 25);
        return 1;
    };

    if (lines == 1) {
        if (length < 1) length = (int)strlen(text);
        Orv2dRect box = font->bbox(text, length, mnemonic);
        int y = r.y + ((int)r.h + (int)font->box.h) / 2 - descentExtent;
        int x = r.x + (int)r.w / 2;
        if (position == OrvLeft)
            x = r.x;
        else if (position == OrvRight)
            x = r.x + (int)r.w;
        if ((box.w > r.w || box.h > r.h) && !makeClip()) return;
        const char* shown = text;
        int mark = 0;
        if (mnemonic) {
            mark = font->mnemonicPosition(text, length);
            if (mark > 0) {
                shown = font->mnemonicString(text, length);
                length = (int)strlen(shown);
            } else {
                mark = 0;
            }
        }
        _OrvClipScope_ scope(this, kept, needClip ? &newClip : nullptr);
        string(makeUp, Orv2dPoint(x, y), shown, length, position, (unsigned long)mark, nullptr);
        return;
    }

    int lineHeight = (int)font->box.h;
    int total = (int)lines * lineHeight;
    int top = r.y;
    if (total < (int)r.h) top = r.y + ((int)r.h - total) / 2;
    unsigned widest = 0;
    for (unsigned long i = 0; i < lines; i++) {
        Orv2dRect b = font->bbox(labels[i], 0, mnemonic);
        if (b.w > widest) widest = b.w;
    }
    if ((widest > r.w || total > (int)r.h) && !makeClip()) return;
    int shift = widest < r.w ? (int)(r.w - widest) / 2 : 0;
    int x = r.x;
    if (position == OrvRight)
        x = r.x + (int)r.w;
    else if (position == OrvCenter)
        x = r.x + (int)widest / 2 + shift;
    _OrvClipScope_ scope(this, kept, needClip ? &newClip : nullptr);
    int y = top - font->box.y;
    for (unsigned long i = 0; i < lines; i++) {
        const char* shown = labels[i];
        int mark = 0;
        if (mnemonic) {
            mark = font->mnemonicPosition(shown, 0);
            if (mark > 0)
                shown = font->mnemonicString(shown, 0);
            else
                mark = 0;
        }
        string(makeUp, Orv2dPoint(x, y), shown, 0, position, (unsigned long)mark, nullptr);
        y += lineHeight;
    }
}

void OrvCanvas::clipBitmap(const OrvMakeUp* makeUp, const Orv2dRect& rect, const OrvBitmap* bitmap,
                           OrvPosition position, unsigned long mask, const Orv2dMatrix* matrix) {
    if (!makeUp || !bitmap) return;
    if (position != OrvLeft && position != OrvRight && position != OrvCenter) position = OrvCenter;
    Orv2dRect r = rect;
    if (matrix) matrix->apply(r);
    if (r.w == 0 || r.h == 0) return;
    Orv2dRegion kept(clip);
    int y = r.y + ((int)r.h - (int)bitmap->height) / 2;
    int x = r.x + ((int)r.w - (int)bitmap->width) / 2;
    if (position == OrvLeft)
        x = r.x;
    else if (position == OrvRight)
        x = r.x + (int)r.w - (int)bitmap->width;
    int needClip = bitmap->width > r.w || bitmap->height > r.h;
    Orv2dRegion newClip(r, 25);
    if (needClip && !kept.isEmpty()) {
        newClip = kept;
        newClip.intersection(r);
        newClip.bbox.intersection(r);
        if (newClip.bbox.w == 0 || newClip.bbox.h == 0) return;
    }
    _OrvClipScope_ scope(this, kept, needClip ? &newClip : nullptr);
    bitblit(makeUp, bitmap, Orv2dRect(0, 0, bitmap->width, bitmap->height), Orv2dPoint(x, y), mask,
            nullptr);
}

void OrvCanvas::clipStringBitmap(const OrvMakeUp* makeUp, const Orv2dRect& rect, const char* text,
                                 const OrvBitmap* bitmap, int length, unsigned long mnemonic,
                                 OrvPosition position, OrvPosition bitmapPosition,
                                 const Orv2dMatrix* matrix) {
    if (!makeUp) return;
    if (!bitmap) {
        clipString(makeUp, rect, text, length, position, mnemonic, matrix);
        return;
    }
    if (!text || !*text) {
        clipBitmap(makeUp, rect, bitmap, position, 1, matrix);
        return;
    }
    if (position != OrvLeft && position != OrvRight && position != OrvCenter) position = OrvCenter;
    Orv2dRect r = rect;
    if (matrix) matrix->apply(r);
    if (r.w == 0 || r.h == 0) return;
    OrvRasterFont* font = makeUp->font();
    if (!font) return;
    Orv2dRect box = font->bbox(text, length, mnemonic);
    unsigned bw = bitmap->width, bh = bitmap->height;
    int side = bitmapPosition == OrvLeft || bitmapPosition == OrvRight;
    // The pair's extent: side by side or stacked.
    unsigned pw = side ? bw + box.w : (bw > box.w ? bw : box.w);
    unsigned ph = side ? (bh > box.h ? bh : box.h) : bh + box.h;
    int px = r.x + ((int)r.w - (int)pw) / 2;
    if (position == OrvLeft)
        px = r.x;
    else if (position == OrvRight)
        px = r.x + (int)r.w - (int)pw;
    int py = r.y + ((int)r.h - (int)ph) / 2;
    Orv2dRect bitmapRect, textRect;
    if (side) {
        int bx = bitmapPosition == OrvLeft ? px : px + (int)box.w;
        int tx = bitmapPosition == OrvLeft ? px + (int)bw : px;
        bitmapRect = Orv2dRect(bx, py, bw, ph);
        textRect = Orv2dRect(tx, py, box.w, ph);
    } else {
        int by = bitmapPosition == OrvBottom ? py + (int)box.h : py;
        int ty = bitmapPosition == OrvBottom ? py : py + (int)bh;
        bitmapRect = Orv2dRect(px, by, pw, bh);
        textRect = Orv2dRect(px, ty, pw, box.h);
    }
    Orv2dRegion kept(clip);
    int needClip = pw > r.w || ph > r.h;
    Orv2dRegion newClip(r, 25);
    if (needClip && !kept.isEmpty()) {
        newClip = kept;
        newClip.intersection(r);
        newClip.bbox.intersection(r);
        if (newClip.bbox.w == 0 || newClip.bbox.h == 0) return;
    }
    _OrvClipScope_ scope(this, kept, needClip ? &newClip : nullptr);
    clipBitmap(makeUp, bitmapRect, bitmap, OrvCenter, 1, nullptr);
    clipString(makeUp, textRect, text, length, OrvCenter, mnemonic, nullptr);
}

// ---------------------------------------------------------------- relief

void OrvCanvas::reliefRectangle(const OrvMakeUp* frame, const OrvMakeUp* surface,
                                const OrvMakeUp* light, const OrvMakeUp* dark,
                                const Orv2dRect& rect, unsigned long thickness,
                                unsigned long drawFrame, const Orv2dMatrix* matrix) {
    Orv2dRect r = rect;
    if (matrix) matrix->apply(r);
    int x = r.x, y = r.y, w = (int)r.w, h = (int)r.h, t = (int)thickness;
    if (t == 0 || 2 * t >= w || 2 * t >= h) {
        rectangle(surface, r, 1, nullptr);
    } else {
        Orv2dPoint upper[6] = {
            Orv2dPoint(x, y),         Orv2dPoint(x + w, y),         Orv2dPoint(x + w - t, y + t),
            Orv2dPoint(x + t, y + t), Orv2dPoint(x + t, y + h - t), Orv2dPoint(x, y + h)};
        polyLine(light, 6, upper, 1, nullptr);
        Orv2dPoint lower[6] = {Orv2dPoint(x + w - t, y + t), Orv2dPoint(x + w, y),
                               Orv2dPoint(x + w, y + h),     Orv2dPoint(x, y + h),
                               Orv2dPoint(x + t, y + h - t), Orv2dPoint(x + w - t, y + h - t)};
        polyLine(dark, 6, lower, 1, nullptr);
        rectangle(surface, Orv2dRect(x + t, y + t, (unsigned)(w - 2 * t), (unsigned)(h - 2 * t)), 1,
                  nullptr);
    }
    if (drawFrame) rectangle(frame, r, 0, nullptr);
}

void OrvCanvas::reliefDiamond(const OrvMakeUp* frame, const OrvMakeUp* surface,
                              const OrvMakeUp* light, const OrvMakeUp* dark, const Orv2dRect& rect,
                              unsigned long thickness, unsigned long drawFrame,
                              const Orv2dMatrix* matrix) {
    Orv2dRect r = rect;
    if (matrix) matrix->apply(r);
    int x = r.x, y = r.y, w = (int)r.w, h = (int)r.h, t = (int)thickness;
    int cx = x + w / 2, cy = y + h / 2;
    Orv2dPoint upper[6] = {Orv2dPoint(x, cy),         Orv2dPoint(cx, y),     Orv2dPoint(x + w, cy),
                           Orv2dPoint(x + w - t, cy), Orv2dPoint(cx, y + t), Orv2dPoint(x + t, cy)};
    polyLine(light, 6, upper, 1, nullptr);
    Orv2dPoint lower[6] = {Orv2dPoint(x, cy),         Orv2dPoint(x + t, cy),
                           Orv2dPoint(cx, y + h - t), Orv2dPoint(x + w - t, cy),
                           Orv2dPoint(x + w, cy),     Orv2dPoint(cx, y + h)};
    polyLine(dark, 6, lower, 1, nullptr);
    Orv2dPoint inner[4] = {Orv2dPoint(x + t, cy), Orv2dPoint(cx, y + t), Orv2dPoint(x + w - t, cy),
                           Orv2dPoint(cx, y + h - t)};
    polyLine(surface, 4, inner, 1, nullptr);
    if (drawFrame) {
        // The lower-left edge stays undrawn.
        Orv2dPoint outline[4] = {Orv2dPoint(x, cy), Orv2dPoint(cx, y), Orv2dPoint(x + w, cy),
                                 Orv2dPoint(cx, y + h)};
        polyLine(frame, 4, outline, 0, nullptr);
    }
}

// ---------------------------------------------------------------- realisation

int OrvCanvas::makeMakeUp(const OrvMakeUp* makeUp, unsigned long ghost) {
    Display* dpy = displayOf(this);
    const OrvCanvas* key = resourceCanvas();
    unsigned long on = contextDrawable();
    XGCValues v;
    memset(&v, 0, sizeof v);
    if (ghost) {
        XWindowAttributes wa;
        Screen* screen = DefaultScreenOfDisplay(dpy);
        if (XGetWindowAttributes(dpy, on, &wa) && wa.screen) screen = wa.screen;
        v.background = BlackPixelOfScreen(screen);
        v.foreground = BlackPixelOfScreen(screen) ^ WhitePixelOfScreen(screen);
    } else {
        OrvColor* fg = makeUp->foreground();
        OrvColor* bg = makeUp->background();
        v.foreground = fg ? fg->index(this) : 0;
        v.background = bg ? bg->index(this) : 0;
        // A context made after an exclusive mode was set draws as setMode would have left it.
        if (makeUp->mode == OrvXorMode || makeUp->mode == OrvEquivMode)
            v.foreground ^= v.background;
    }
    OrvLineStyle* ls = makeUp->lineStyle();
    int dashed = ls && ls != director->solidLineStyle && ls->dashCount > 0;
    v.line_width = makeUp->lineWidth();
    v.line_style = (ls && ls != director->solidLineStyle) ? LineOnOffDash : LineSolid;
    v.function = OrvDrawModeFunction(makeUp->mode);
    v.plane_mask = makeUp->planeMask;
    unsigned long mask = 63;
    OrvBitmap* tile = makeUp->colorPattern();
    if (tile) {
        mask |= GCTile;
        v.tile = tile->drawable;
    }
    OrvPattern* pattern = makeUp->pattern();
    if (pattern) {
        OrvBitmap* stipple = pattern->bitmap(this);
        if (stipple) {
            mask |= GCStipple;
            v.stipple = stipple->drawable;
        }
    }
    OrvFillStyle fs = makeUp->fillStyle();
    if (fs == OrvFillTiled)
        v.fill_style = FillTiled;
    else if (fs == OrvFillStippled)
        v.fill_style = FillStippled;
    else
        v.fill_style =
            (pattern && pattern != director->solidPattern) ? FillOpaqueStippled : FillSolid;
    // Without the pixmap the style has nothing to draw with.
    if ((v.fill_style == FillTiled && !(mask & GCTile)) ||
        ((v.fill_style == FillStippled || v.fill_style == FillOpaqueStippled) &&
         !(mask & GCStipple)))
        v.fill_style = FillSolid;
    v.fill_rule = makeUp->fillRule() ? WindingRule : EvenOddRule;
    v.arc_mode = makeUp->arcMode() ? ArcChord : ArcPieSlice;
    v.graphics_exposures = 1;
    v.subwindow_mode = makeUp->overwrite ? IncludeInferiors : ClipByChildren;
    GC gc = XCreateGC(dpy, on, mask | 0x418300, &v);
    if (!gc) return 0;
    if (dashed) XSetDashes(dpy, gc, ls->offset, (const char*)ls->dashes, ls->dashCount);
    const_cast<OrvMakeUp*>(makeUp)->add(key, (unsigned long)gc);
    return 1;
}

int OrvCanvas::makePattern(OrvPattern* pattern) {
    const OrvCanvas* key = resourceCanvas();
    OrvBitmap* b = new OrvBitmap(key, pattern->width, pattern->height, 1);
    unsigned long size = ((pattern->width + 1) >> 3) * pattern->height;
    b->setBits(Orv2dRect(0, 0, pattern->width, pattern->height), pattern->data, size, 32, 0);
    pattern->add(key, (unsigned long)b);
    return 1;
}
