// The 2D side's small computational geometry: regions of rectangles to
// redraw, Bézier flattening, hit tests with one global tolerance, arrow heads
// and the colour conversions behind relief shades.
#ifndef ORV_REGION_H
#define ORV_REGION_H

#include "orv/geometry.h"

#include <cstdint>

// ---------------------------------------------------------------------------
// Orv2dRegion
// ---------------------------------------------------------------------------

// A bounding box plus a list of rectangles. Up to 25 rectangles live in the
// region itself, so the ordinary redraw allocates nothing; the storage in use
// is chosen by the capacity alone: below 26 the embedded array, from 26 on
// the heap array. Overlapping additions extend a member instead of adding.
class Orv2dRegion {
public:
    enum {
        EmbeddedCount = 25
    };

    Orv2dRect bbox;    // union of everything added
    int16_t capacity;  // rectangles that fit now
    uint16_t count;    // rectangles in use
    Orv2dRect embedded[EmbeddedCount];
    Orv2dRect* heap;  // owned, used while capacity is 26 or more

    explicit Orv2dRegion(short capacity = EmbeddedCount);
    Orv2dRegion(const Orv2dRect& rect, short capacity = EmbeddedCount);
    Orv2dRegion(const Orv2dRegion& other);
    Orv2dRegion& operator=(const Orv2dRegion& other);
    ~Orv2dRegion() {
        if (capacity > EmbeddedCount) delete[] heap;
    }

    bool usesHeap() const { return capacity > EmbeddedCount; }
    Orv2dRect* rectangles() { return usesHeap() ? heap : embedded; }
    const Orv2dRect* rectangles() const { return usesHeap() ? heap : embedded; }
    // No bounds test.
    Orv2dRect& rectangle(unsigned short index) { return rectangles()[index]; }
    const Orv2dRect& rectangle(unsigned short index) const { return rectangles()[index]; }
    bool isEmpty() const { return count == 0; }

    // First addition starts the box; an intersecting rectangle extends the
    // first member it meets (no merging follows); any other is appended,
    // growing the capacity by one when full.
    void extendBy(const Orv2dRect& rect) {
        if (count == 0) {
            bbox = rect;
            rectangles()[count++] = rect;
            return;
        }
        Orv2dRect* r = rectangles();
        if (bbox.intersects(rect)) {
            for (unsigned i = 0; i < count; i++) {
                if (r[i].intersects(rect)) {
                    bbox.extendBy(rect);
                    r[i].extendBy(rect);
                    return;
                }
            }
        }
        if (count >= capacity) r = growByOne();
        bbox.extendBy(rect);
        r[count++] = rect;
    }

    bool contains(const Orv2dPoint& p) const {
        if (count == 0 || !bbox.contains(p)) return false;
        const Orv2dRect* r = rectangles();
        for (unsigned i = 0; i < count; i++)
            if (r[i].contains(p)) return true;
        return false;
    }
    // True only when one single member holds the whole rectangle.
    bool contains(const Orv2dRect& rect) const {
        if (count == 0 || !bbox.contains(rect)) return false;
        const Orv2dRect* r = rectangles();
        for (unsigned i = 0; i < count; i++)
            if (r[i].contains(rect)) return true;
        return false;
    }
    bool intersects(const Orv2dRect& rect) const {
        if (count == 0 || !bbox.intersects(rect)) return false;
        const Orv2dRect* r = rectangles();
        for (unsigned i = 0; i < count; i++)
            if (r[i].intersects(rect)) return true;
        return false;
    }
    // Members that turn empty stay in the list with zero size.
    void intersection(const Orv2dRect& rect);
    void apply(const Orv2dMatrix& m);
    void inverse(const Orv2dMatrix& m);
    void translate(const long dx, const long dy);
    // Origins stay.
    void grow(const long dw, const long dh);

private:
    Orv2dRect* growByOne();
};

// ---------------------------------------------------------------------------
// Curves and hit tests
// ---------------------------------------------------------------------------

// Arc fill mode of a make-up: zero fills as a pie slice, non-zero as a chord.
enum OrvArcMode {
    OrvArcPieSlice = 0,
    OrvArcChord = 1
};

// Tolerance of the line and arc hit tests, 8.0 at start.
void OrvSetDeltaLine(float delta);
float OrvGetDeltaLine();

// Arrow head length along the line (8) and half width (4), signed. The names, with their
// lower-case "arrow", are kept as they are for behaviour compatibility.
extern int32_t Orvarrow_deltax;
extern int32_t Orvarrow_deltay;
void OrvSetArrowDelta(unsigned long x, unsigned long y);

// How finely the vector fonts flatten filled glyphs. The name, bracketed like a file-local one,
// is kept as it is for behaviour compatibility.
extern float _OrvFilledBezierHeight_;

int OrvVersion();

// Flattened points in a buffer shared by all calls, valid until the next
// flattening. Cubic segments from points 3k..3k+3; a short remainder becomes
// a line or a cubic with a doubled control point, see the source.
Orv2dPoint* OrvCreateOpenBezier(unsigned n, const Orv2dPoint* controls, unsigned& outCount);
Orv2dPoint* OrvCreateClosedBezier(unsigned n, const Orv2dPoint* controls, unsigned& outCount);

bool OrvPointInLine(const Orv2dPoint& p, const Orv2dPoint& a, const Orv2dPoint& b);
// Index of the first segment hit, or -1.
int OrvPointInPolyline(const Orv2dPoint& p, unsigned n, Orv2dPoint* pts);
int OrvPointInBezier(const Orv2dPoint& p, unsigned n, Orv2dPoint* controls);
// Does the ray to the right of p cross the edge a→b (half-open in y).
bool OrvIntersectHorizontal(const Orv2dPoint& p, const Orv2dPoint& a, const Orv2dPoint& b);
// -1 outside, n strictly inside, otherwise the index of the edge p lies on.
int OrvPointInPolygon(const Orv2dPoint& p, unsigned n, Orv2dPoint* pts);
int OrvPointInFilledBezier(const Orv2dPoint& p, unsigned n, Orv2dPoint* controls);

// out[0] the tip, out[1] and out[2] the base corners.
void OrvComputeArrow(const Orv2dPoint& from, const Orv2dPoint& to, float position, Orv2dPoint* out);
// Angles in degrees, counter-clockwise on the y-down screen; end may pass 360.
void OrvComputeArcBBox(const Orv2dRect& rect, float start, float end, Orv2dRect& out);
bool OrvPointInArc(const Orv2dPoint& p, const Orv2dRect& rect, float start, float end);
// The mode is not consulted: a chord is tested as a pie.
bool OrvPointInFilledArc(const Orv2dPoint& p, const Orv2dRect& rect, float start, float end,
                         OrvArcMode mode);

// ---------------------------------------------------------------------------
// Colours
// ---------------------------------------------------------------------------

// HSV hue in degrees (0 to 360); HLS hue from 0 to 1. Everything else 0 to 1.
void OrvRGBToHSV(float r, float g, float b, float& h, float& s, float& v);
void OrvHSVToRGB(float h, float s, float v, float& r, float& g, float& b);
void OrvRGBToHLS(float r, float g, float b, float& h, float& l, float& s);
void OrvHLSToRGB(float h, float l, float s, float& r, float& g, float& b);

// The three relief shades of a colour as HSV: [0] the lit edge, [1] the
// shaded edge, [2] the pressed face. The hue is the base hue; saturation and
// value are capped at 1. OrvComputeReliefColors asks the director for these.
struct OrvReliefShades {
    float h;
    float s[3];
    float v[3];
};
void OrvComputeReliefShades(float r, float g, float b, OrvReliefShades& out);

#endif
