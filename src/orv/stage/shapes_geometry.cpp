// Helpers shared by the basic shapes.
#include "shapes_geometry.h"

#include <cmath>
#include <cstdlib>

#include "orv/makeup.h"

Orv2dPoint* OrvShapePoints(unsigned n) {
    static Orv2dPoint* buffer = nullptr;
    static unsigned capacity = 0;
    if (n > capacity) {
        unsigned larger = capacity ? capacity : n + 2;
        while (larger < n) larger *= 2;
        buffer = (Orv2dPoint*)realloc((void*)buffer, larger * sizeof(Orv2dPoint));
        capacity = larger;
    }
    return buffer;
}

Orv2dRect OrvPointsBox(unsigned n, const Orv2dPoint* points) {
    if (!n) return Orv2dRect();
    int32_t x0 = points[0].x, x1 = x0, y0 = points[0].y, y1 = y0;
    for (unsigned i = 1; i < n; i++) {
        if (points[i].x < x0) x0 = points[i].x;
        if (points[i].x > x1) x1 = points[i].x;
        if (points[i].y < y0) y0 = points[i].y;
        if (points[i].y > y1) y1 = points[i].y;
    }
    return Orv2dRect(x0, y0, (uint32_t)((int64_t)x1 - x0), (uint32_t)((int64_t)y1 - y0));
}

int OrvHalfLineWidth(const OrvMakeUp* makeUp) {
    return makeUp ? makeUp->lineWidth() / 2 : 0;
}

Orv2dPoint* OrvEllipsePoints(const Orv2dRect& rect, float start, float end, unsigned long pie,
                             const Orv2dMatrix* m, unsigned& count) {
    // One step per 5 degrees keeps a large ellipse within a pixel or so.
    float sweep = end - start;
    if (sweep > 360) sweep = 360;
    unsigned steps = (unsigned)std::ceil(std::fabs(sweep) / 5.0f);
    if (steps < 1) steps = 1;
    Orv2dPoint* points = OrvShapePoints(steps + 2);
    double rx = rect.w / 2.0, ry = rect.h / 2.0;
    double cx = rect.x + rx, cy = rect.y + ry;
    count = 0;
    for (unsigned i = 0; i <= steps; i++) {
        double a = (start + sweep * i / steps) * ORV_DEG_TO_RAD;
        points[count++] = OrvMapPoint(
            Orv2dPoint(OrvRound(cx + std::cos(a) * rx), OrvRound(cy - std::sin(a) * ry)), m);
    }
    if (pie) points[count++] = OrvMapPoint(Orv2dPoint(OrvRound(cx), OrvRound(cy)), m);
    return points;
}
