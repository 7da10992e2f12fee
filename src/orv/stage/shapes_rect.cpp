// Rectangles, outlined or filled, with square or rounded corners.
#include <cmath>

#include "orv/canvas.h"
#include "orv/makeup.h"
#include "orv/shapes.h"
#include "orv/stream.h"
#include "shapes_geometry.h"

ORV_DEFINE_CLASS_INIT(OrvRectangle, "OrvActor", OrvRectangle::read)
ORV_DEFINE_CLASS_INIT(OrvFilledRectangle, "OrvRectangle", OrvFilledRectangle::read)

OrvRectangle::OrvRectangle(OrvDirector* director, const Orv2dRect& box, OrvMakeUp* look,
                           unsigned short cornerRadius)
    : OrvActor(director, look), rect(box), radius(cornerRadius) {}

OrvRectangle::OrvRectangle(const OrvRectangle& source)
    : OrvActor(source), rect(source.rect), radius(source.radius) {}

OrvActor* OrvRectangle::copy() const {
    return new OrvRectangle(*this);
}
OrvClassInfo* OrvRectangle::classInfo() const {
    return _classInfo;
}

// Persistent form: the rectangle, then the radius of the corners.

OrvActor* OrvRectangle::read(OrvIStream& in) {
    return new OrvRectangle(in);
}

void OrvRectangle::write(OrvOStream& out) const {
    OrvActor::write(out);
    out.writeComments("OrvRectangle class", 1);
    out << rect;
    out << radius;
}

OrvRectangle::OrvRectangle(OrvIStream& in) : OrvActor(in), rect(), radius(0) {
    in >> rect;
    in >> radius;
}

Orv2dPoint* OrvRectangle::outline(const Orv2dMatrix* matrix, unsigned& count) const {
    unsigned r = radius;
    if (r > rect.w / 2) r = rect.w / 2;
    if (r > rect.h / 2) r = rect.h / 2;
    int32_t left = rect.x, top = rect.y, right = (int32_t)rect.right(),
            bottom = (int32_t)rect.bottom();
    if (r == 0) {
        Orv2dPoint* p = OrvShapePoints(4);
        p[0] = OrvMapPoint(Orv2dPoint(left, top), matrix);
        p[1] = OrvMapPoint(Orv2dPoint(right, top), matrix);
        p[2] = OrvMapPoint(Orv2dPoint(right, bottom), matrix);
        p[3] = OrvMapPoint(Orv2dPoint(left, bottom), matrix);
        count = 4;
        return p;
    }
    // Quarter circles counter-clockwise from the top right corner.
    const unsigned steps = 8;
    const int32_t cx[4] = {right - (int32_t)r, left + (int32_t)r, left + (int32_t)r,
                           right - (int32_t)r};
    const int32_t cy[4] = {top + (int32_t)r, top + (int32_t)r, bottom - (int32_t)r,
                           bottom - (int32_t)r};
    Orv2dPoint* p = OrvShapePoints(4 * (steps + 1));
    count = 0;
    for (unsigned corner = 0; corner < 4; corner++) {
        for (unsigned i = 0; i <= steps; i++) {
            double a = (90.0 * corner + 90.0 * i / steps) * ORV_DEG_TO_RAD;
            Orv2dPoint q(cx[corner] + OrvRound(std::cos(a) * r),
                         cy[corner] - OrvRound(std::sin(a) * r));
            p[count++] = OrvMapPoint(q, matrix);
        }
    }
    return p;
}

Orv2dRect OrvRectangle::bbox2d(const Orv2dMatrix* matrix) const {
    Orv2dRect box;
    if (OrvKeepsAxes(matrix)) {
        box = rect;
        if (matrix) matrix->apply(box);
    } else {
        unsigned n = 0;
        Orv2dPoint* p = outline(matrix, n);
        box = OrvPointsBox(n, p);
    }
    return isFilled() ? box : OrvGrowRect(box, OrvHalfLineWidth(makeUp));
}

void OrvRectangle::draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) {
    if (radius == 0 && OrvKeepsAxes(matrix)) {
        canvas->rectangle(makeUp, rect, isFilled(), matrix);
        return;
    }
    unsigned n = 0;
    Orv2dPoint* p = outline(matrix, n);
    if (!isFilled()) {
        p = OrvShapePoints(n + 1);  // the same array, kept when it grows
        p[n] = p[0];
        n++;
    }
    canvas->polyLine(makeUp, n, p, isFilled());
}

void OrvRectangle::apply2d(const Orv2dMatrix& matrix) {
    matrix.apply(rect);
}

unsigned long OrvRectangle::contains2d(const Orv2dPoint& point, const Orv2dMatrix* matrix) {
    if (isSelected() && dragger2d(point, matrix)) return 1;
    // Square corners under a matrix that keeps the axes: the mapped box
    // answers for a filled one, and rejects at once for an outline. Hit tests
    // run on every motion and in every index query.
    if (radius == 0 && OrvKeepsAxes(matrix)) {
        Orv2dRect r = rect;
        if (matrix) matrix->apply(r);
        if (isFilled()) return r.contains(point);
        if (!OrvGrowRect(r, (int)OrvGetDeltaLine()).contains(point)) return 0;
    }
    unsigned n = 0;
    Orv2dPoint* p = outline(matrix, n);
    if (isFilled()) return OrvPointInPolygon(point, n, p) != -1;
    Orv2dPoint* closed = OrvShapePoints(n + 1);
    closed[n] = closed[0];
    return OrvPointInPolyline(point, n + 1, closed) != -1;
}

void OrvRectangle::setRect(const Orv2dRect& r) {
    if (r == rect) return;
    beginDrawing(1);
    rect = r;
    flushDrawing(1);
}

void OrvRectangle::setRadius(unsigned short r) {
    if (r == radius) return;
    beginDrawing(1);
    radius = r;
    flushDrawing(1);
}

OrvFilledRectangle::OrvFilledRectangle(OrvDirector* director, const Orv2dRect& box, OrvMakeUp* look,
                                       unsigned short cornerRadius)
    : OrvRectangle(director, box, look, cornerRadius) {}

OrvFilledRectangle::OrvFilledRectangle(const OrvFilledRectangle& source) : OrvRectangle(source) {}

OrvActor* OrvFilledRectangle::copy() const {
    return new OrvFilledRectangle(*this);
}
OrvClassInfo* OrvFilledRectangle::classInfo() const {
    return _classInfo;
}

// Persistent form: the parent's, then the class comment.

OrvActor* OrvFilledRectangle::read(OrvIStream& in) {
    return new OrvFilledRectangle(in);
}

void OrvFilledRectangle::write(OrvOStream& out) const {
    OrvRectangle::write(out);
    out.writeComments("OrvFilledRectangle class", 1);
}

OrvFilledRectangle::OrvFilledRectangle(OrvIStream& in) : OrvRectangle(in) {}

unsigned long OrvRectangle::copyGeometry(const OrvActor& source) {
    if (source.classInfo() != classInfo()) return 0;
    const OrvRectangle& s = (const OrvRectangle&)source;
    rect = s.rect;
    radius = s.radius;
    return 1;
}
