// Bézier flattening, hit tests on lines, polygons and arcs, and arrow heads.
// Results live in shared static buffers: the library runs in one thread.
#include "orv/region.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>

static float orvDeltaLine = 8.0f;
int32_t Orvarrow_deltax = 8;
int32_t Orvarrow_deltay = 4;
float _OrvFilledBezierHeight_ = 0.1f;

void OrvSetDeltaLine(float delta) {
    orvDeltaLine = delta;
}
float OrvGetDeltaLine() {
    return orvDeltaLine;
}

void OrvSetArrowDelta(unsigned long x, unsigned long y) {
    Orvarrow_deltax = (int32_t)x;
    Orvarrow_deltay = (int32_t)y;
}

int OrvVersion() {
    return 1;
}

// ---------------------------------------------------------------------------
// Flattening
// ---------------------------------------------------------------------------

namespace {

struct OrvDPoint {
    double x, y;
};

inline OrvDPoint mid(const OrvDPoint& a, const OrvDPoint& b) {
    return {(a.x + b.x) / 2, (a.y + b.y) / 2};
}

// The growing point buffer of all flattenings; never freed.
Orv2dPoint* bezierPoints = nullptr;
unsigned bezierCapacity = 0;
unsigned bezierCount = 0;

void reservePoints(unsigned need) {
    if (need <= bezierCapacity) return;
    if (bezierCapacity == 0) {
        bezierCapacity = need;
        bezierPoints = (Orv2dPoint*)std::malloc(bezierCapacity * sizeof(Orv2dPoint));
        return;
    }
    while (bezierCapacity < need) bezierCapacity *= 2;
    bezierPoints = (Orv2dPoint*)std::realloc(bezierPoints, bezierCapacity * sizeof(Orv2dPoint));
}

inline Orv2dPoint roundPoint(const OrvDPoint& p) {
    return Orv2dPoint(OrvRound((float)p.x), OrvRound((float)p.y));
}

void appendSegment(const OrvDPoint& a, const OrvDPoint& b) {
    reservePoints(bezierCount + 2);
    if (bezierCount == 0) bezierPoints[bezierCount++] = roundPoint(a);
    bezierPoints[bezierCount++] = roundPoint(b);
}

// Q within one pixel of the chord a–b: (twice the triangle's area)² ≤ |ab|².
inline bool isFlat(const OrvDPoint& q, const OrvDPoint& a, const OrvDPoint& b) {
    double ex = b.x - a.x, ey = b.y - a.y;
    double area2 = ex * (q.y - a.y) - ey * (q.x - a.x);
    return area2 * area2 <= 1.0 * (ex * ex + ey * ey);
}

// Halves at t = 1/2; the left half recurses, the right half loops.
void flattenCubic(OrvDPoint p0, OrvDPoint p1, OrvDPoint p2, OrvDPoint p3) {
    for (;;) {
        OrvDPoint l1 = mid(p0, p1), k = mid(p1, p2), r2 = mid(p2, p3);
        OrvDPoint l2 = mid(l1, k), r1 = mid(k, r2);
        OrvDPoint m = mid(l2, r1);
        if (!isFlat(l2, p0, m))
            flattenCubic(p0, l1, l2, m);
        else
            appendSegment(p0, m);
        if (isFlat(r2, m, p3)) {
            appendSegment(m, p3);
            return;
        }
        p0 = m;
        p1 = r1;
        p2 = r2;
    }
}

inline OrvDPoint dp(const Orv2dPoint& p) {
    return {(double)p.x, (double)p.y};
}

void cubic(const Orv2dPoint& a, const Orv2dPoint& b, const Orv2dPoint& c, const Orv2dPoint& d) {
    flattenCubic(dp(a), dp(b), dp(c), dp(d));
}

void line(const Orv2dPoint& a, const Orv2dPoint& b) {
    appendSegment(dp(a), dp(b));
}

// The full cubic segments; returns the last start point.
unsigned flattenFullSegments(unsigned n, const Orv2dPoint* p) {
    bezierCount = 0;
    reservePoints(n + 2);
    unsigned i = 0;
    for (unsigned k = 0; k < (n - 1) / 3; k++, i += 3) cubic(p[i], p[i + 1], p[i + 2], p[i + 3]);
    return i;
}

}  // namespace

Orv2dPoint* OrvCreateOpenBezier(unsigned n, const Orv2dPoint* p, unsigned& outCount) {
    if (n == 0) {
        bezierCount = 0;
        reservePoints(2);
        outCount = 0;
        return bezierPoints;
    }
    unsigned i = flattenFullSegments(n, p);
    switch (n - i) {
        case 2:
            line(p[i], p[i + 1]);
            break;
        case 3:
            cubic(p[i], p[i + 1], p[i + 1], p[i + 2]);
            break;
        default:
            break;
    }
    outCount = bezierCount;
    return bezierPoints;
}

Orv2dPoint* OrvCreateClosedBezier(unsigned n, const Orv2dPoint* p, unsigned& outCount) {
    if (n == 0) {
        bezierCount = 0;
        reservePoints(2);
        outCount = 0;
        return bezierPoints;
    }
    unsigned i = flattenFullSegments(n, p);
    switch (n - i) {
        case 1:
            if (n > 1) line(p[i], p[0]);
            break;
        case 2:
            if (n > 2)
                cubic(p[i], p[i + 1], p[i + 1], p[0]);
            else
                line(p[0], p[1]);
            break;
        case 3:
            cubic(p[i], p[i + 1], p[i + 2], p[0]);
            break;
        default:
            break;
    }
    outCount = bezierCount;
    return bezierPoints;
}

// ---------------------------------------------------------------------------
// Hit tests
// ---------------------------------------------------------------------------

// The box is grown by the truncated delta, but the distance test uses the
// delta itself, not its square: 8 means about 2.83 pixels off the line.
bool OrvPointInLine(const Orv2dPoint& p, const Orv2dPoint& a, const Orv2dPoint& b) {
    int64_t grow = (int64_t)orvDeltaLine;
    int64_t x0 = a.x < b.x ? a.x : b.x, x1 = a.x < b.x ? b.x : a.x;
    int64_t y0 = a.y < b.y ? a.y : b.y, y1 = a.y < b.y ? b.y : a.y;
    if (p.x < x0 - grow || p.x > x1 + grow || p.y < y0 - grow || p.y > y1 + grow) return false;
    int64_t dx = (int64_t)b.x - a.x, dy = (int64_t)b.y - a.y;
    float f = (float)(((int64_t)p.x - a.x) * dy) - (float)(((int64_t)p.y - a.y) * dx);
    return f * f <= orvDeltaLine * (float)(dx * dx + dy * dy);
}

int OrvPointInPolyline(const Orv2dPoint& p, unsigned n, Orv2dPoint* pts) {
    for (unsigned i = 0; i + 1 < n; i++)
        if (OrvPointInLine(p, pts[i], pts[i + 1])) return (int)i;
    return -1;
}

int OrvPointInBezier(const Orv2dPoint& p, unsigned n, Orv2dPoint* controls) {
    if (n < 3) return OrvPointInPolyline(p, n, controls);
    unsigned count;
    Orv2dPoint* pts = OrvCreateOpenBezier(n, controls, count);
    return OrvPointInPolyline(p, count, pts);
}

bool OrvIntersectHorizontal(const Orv2dPoint& p, const Orv2dPoint& a, const Orv2dPoint& b) {
    int64_t s =
        ((int64_t)b.y - a.y) * ((int64_t)a.x - p.x) + ((int64_t)p.y - a.y) * ((int64_t)b.x - a.x);
    if (a.y < b.y) return a.y <= p.y && p.y < b.y && s >= 0;
    return b.y <= p.y && p.y < a.y && s < 0;
}

// Runs with a zero delta, so only points exactly on an edge count as on it.
int OrvPointInPolygon(const Orv2dPoint& p, unsigned n, Orv2dPoint* pts) {
    if (n == 0) return -1;
    float saved = orvDeltaLine;
    orvDeltaLine = 0;
    int result;
    if (OrvPointInLine(p, pts[n - 1], pts[0])) {
        result = (int)n - 1;
    } else {
        bool odd = OrvIntersectHorizontal(p, pts[n - 1], pts[0]);
        result = -2;
        for (unsigned i = 0; i + 1 < n; i++) {
            if (OrvPointInLine(p, pts[i], pts[i + 1])) {
                result = (int)i + 1;
                break;
            }
            if (OrvIntersectHorizontal(p, pts[i], pts[i + 1])) odd = !odd;
        }
        if (result == -2) result = odd ? (int)n : -1;
    }
    orvDeltaLine = saved;
    return result;
}

int OrvPointInFilledBezier(const Orv2dPoint& p, unsigned n, Orv2dPoint* controls) {
    if (n < 3) return OrvPointInPolygon(p, n, controls);
    unsigned count;
    Orv2dPoint* pts = OrvCreateClosedBezier(n, controls, count);
    return OrvPointInPolygon(p, count, pts);
}

// ---------------------------------------------------------------------------
// Arrows
// ---------------------------------------------------------------------------

void OrvComputeArrow(const Orv2dPoint& from, const Orv2dPoint& to, float position,
                     Orv2dPoint* out) {
    int64_t dltx = Orvarrow_deltax, dlty = Orvarrow_deltay;
    if (from.y == to.y) {
        int64_t len = (int64_t)to.x - from.x;
        int64_t d = len < 0 ? -dltx : dltx;
        out[0] = Orv2dPoint(from.x + OrvRound((float)len * position), from.y);
        int32_t bx = from.x + OrvRound((float)(len - d) * position);
        out[1] = Orv2dPoint(bx, (int32_t)(from.y - dlty));
        out[2] = Orv2dPoint(bx, (int32_t)(from.y + dlty));
        return;
    }
    if (from.x == to.x) {
        int64_t len = (int64_t)to.y - from.y;
        int64_t d = len < 0 ? -dltx : dltx;
        out[0] = Orv2dPoint(from.x, from.y + OrvRound((float)len * position));
        int32_t by = from.y + OrvRound((float)(len - d) * position);
        out[1] = Orv2dPoint((int32_t)(from.x + dlty), by);
        out[2] = Orv2dPoint((int32_t)(from.x - dlty), by);
        return;
    }
    float dx = (float)((int64_t)to.x - from.x), dy = (float)((int64_t)to.y - from.y);
    float len = (float)std::sqrt((double)dx * dx + (double)dy * dy);
    float ux = dx / len, uy = dy / len;
    out[0] =
        Orv2dPoint(from.x + OrvRound(len * ux * position), from.y + OrvRound(len * uy * position));
    float l = len - (float)dltx;
    float bx = (float)from.x + l * ux * position;
    float by = (float)from.y + l * uy * position;
    float nx = (float)OrvRound((float)dlty * uy);
    float ny = (float)OrvRound((float)dlty * ux);
    out[1] = Orv2dPoint(OrvRound(bx - nx), OrvRound(by + ny));
    out[2] = Orv2dPoint(OrvRound(bx + nx), OrvRound(by - ny));
}

// ---------------------------------------------------------------------------
// Arcs
// ---------------------------------------------------------------------------

// The point of an ellipse at an angle in degrees, counter-clockwise on the
// y-down screen. The four axis angles are exact.
static Orv2dPoint orvArcPoint(int64_t cx, int64_t cy, int64_t rx, int64_t ry, double degrees) {
    while (degrees < 0) degrees += 360;
    while (degrees >= 360) degrees -= 360;
    if (degrees == 0) return Orv2dPoint((int32_t)(cx + rx), (int32_t)cy);
    if (degrees == 90) return Orv2dPoint((int32_t)cx, (int32_t)(cy - ry));
    if (degrees == 180) return Orv2dPoint((int32_t)(cx - rx), (int32_t)cy);
    if (degrees == 270) return Orv2dPoint((int32_t)cx, (int32_t)(cy + ry));
    double a = degrees * M_PI / 180;
    return Orv2dPoint((int32_t)(cx + (int64_t)(std::cos(a) * (double)rx)),
                      (int32_t)(cy - (int64_t)(std::sin(a) * (double)ry)));
}

void OrvComputeArcBBox(const Orv2dRect& rect, float start, float end, Orv2dRect& out) {
    int64_t rx = rect.w >> 1, ry = rect.h >> 1;
    int64_t cx = rect.x + rx, cy = rect.y + ry;
    Orv2dPoint a = orvArcPoint(cx, cy, rx, ry, start);
    Orv2dPoint b = orvArcPoint(cx, cy, rx, ry, end);
    int64_t x0 = a.x < b.x ? a.x : b.x, x1 = a.x < b.x ? b.x : a.x;
    int64_t y0 = a.y < b.y ? a.y : b.y, y1 = a.y < b.y ? b.y : a.y;
    if ((start <= 90 && 90 <= end) || end > 450) y0 = rect.y;
    if ((start <= 180 && 180 <= end) || end > 540) x0 = rect.x;
    if ((start <= 270 && 270 <= end) || end > 630) y1 = rect.bottom();
    if (end >= 360) x1 = rect.right();
    out.x = (int32_t)x0;
    out.y = (int32_t)y0;
    out.w = (uint32_t)(x1 - x0);
    out.h = (uint32_t)(y1 - y0);
    if (out.w == 0) out.w = 1;
    if (out.h == 0) out.h = 1;
}

// Steps 3 to 5 of both arc tests: is the direction (dx, dy) within the sweep.
static bool orvInSweep(int64_t cx, int64_t cy, int64_t rx, int64_t ry, int64_t dx, int64_t dy,
                       float start, float end) {
    if (end - start >= 360) return true;
    Orv2dPoint a = orvArcPoint(cx, cy, rx, ry, start);
    Orv2dPoint b = orvArcPoint(cx, cy, rx, ry, end);
    int sa = dx * (a.y - cy) - (a.x - cx) * dy >= 0 ? 1 : -1;
    int sb = dx * (b.y - cy) - (b.x - cx) * dy >= 0 ? 1 : -1;
    if (end - start >= 180) return sa * sb > 0 || sa > 0;
    return sa * sb < 0 && sa > 0;
}

bool OrvPointInArc(const Orv2dPoint& p, const Orv2dRect& rect, float start, float end) {
    if (!rect.contains(p) || rect.h == 0) return false;
    int64_t rx = rect.w >> 1, ry = rect.h >> 1;
    int64_t cx = rect.x + rx, cy = rect.y + ry;
    int64_t dx = p.x - cx, dy = p.y - cy;
    // A one-pixel-high rectangle has ry 0: the quotient is then infinite and
    // the point misses unless it lies on the axis.
    double ey = (double)dy * (double)rx / (double)ry;
    double d = std::sqrt((double)(dx * dx) + ey * ey);
    if (std::fabs(d - (double)rx) > orvDeltaLine) return false;
    return orvInSweep(cx, cy, rx, ry, dx, dy, start, end);
}

bool OrvPointInFilledArc(const Orv2dPoint& p, const Orv2dRect& rect, float start, float end,
                         OrvArcMode) {
    if (!rect.contains(p) || rect.h == 0) return false;
    int64_t rx = rect.w >> 1, ry = rect.h >> 1;
    int64_t cx = rect.x + rx, cy = rect.y + ry;
    int64_t dx = p.x - cx, dy = p.y - cy;
    uint64_t ea = (uint64_t)std::floor(((double)rx + orvDeltaLine) * ((double)rx + orvDeltaLine));
    uint64_t eb = (uint64_t)std::floor(((double)ry + orvDeltaLine) * ((double)ry + orvDeltaLine));
    if (ea * eb < ea * (uint64_t)(dy * dy) + eb * (uint64_t)(dx * dx)) return false;
    return orvInSweep(cx, cy, rx, ry, dx, dy, start, end);
}
