// Ellipses and arcs, outlined or filled. Under a matrix that keeps the axes
// they are the X arcs of their mapped box; under a rotation they are tested in
// their own space and drawn as polygons.
#include "orv/canvas.h"
#include "orv/makeup.h"
#include "orv/shapes.h"
#include "orv/stream.h"
#include "shapes_geometry.h"

ORV_DEFINE_CLASS_INIT(OrvEllipse, "OrvActor", OrvEllipse::read)
ORV_DEFINE_CLASS_INIT(OrvFilledEllipse, "OrvEllipse", OrvFilledEllipse::read)
ORV_DEFINE_CLASS_INIT(OrvArc, "OrvEllipse", OrvArc::read)

OrvEllipse::OrvEllipse(OrvDirector* director, const Orv2dRect& box, OrvMakeUp* look)
    : OrvActor(director, look), rect(box) {}

OrvEllipse::OrvEllipse(const OrvEllipse& source) : OrvActor(source), rect(source.rect) {}

OrvActor* OrvEllipse::copy() const {
    return new OrvEllipse(*this);
}
OrvClassInfo* OrvEllipse::classInfo() const {
    return _classInfo;
}

// Persistent form: the box.

OrvActor* OrvEllipse::read(OrvIStream& in) {
    return new OrvEllipse(in);
}

void OrvEllipse::write(OrvOStream& out) const {
    OrvActor::write(out);
    out.writeComments("OrvEllipse class", 1);
    out << rect;
}

OrvEllipse::OrvEllipse(OrvIStream& in) : OrvActor(in), rect() {
    in >> rect;
}

static unsigned long isPie(const OrvEllipse* e) {
    return e->isFilled() && e->makeUp && e->makeUp->arcMode() == 0 &&
           e->endAngle() - e->startAngle() < 360;
}

Orv2dRect OrvEllipse::bbox2d(const Orv2dMatrix* matrix) const {
    Orv2dRect box;
    if (OrvKeepsAxes(matrix)) {
        Orv2dRect r = rect;
        if (matrix) matrix->apply(r);
        OrvComputeArcBBox(r, startAngle(), endAngle(), box);
        // A pie reaches the centre, which the arc's own box may leave out.
        if (isPie(this))
            box.extendBy(Orv2dRect(r.x + (int32_t)(r.w >> 1), r.y + (int32_t)(r.h >> 1), 1, 1));
    } else {
        unsigned n = 0;
        Orv2dPoint* p = OrvEllipsePoints(rect, startAngle(), endAngle(), isPie(this), matrix, n);
        box = OrvPointsBox(n, p);
    }
    return isFilled() ? box : OrvGrowRect(box, OrvHalfLineWidth(makeUp));
}

void OrvEllipse::draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) {
    if (OrvKeepsAxes(matrix)) {
        canvas->arc(makeUp, rect, startAngle(), endAngle(), isFilled(), matrix);
        return;
    }
    unsigned n = 0;
    Orv2dPoint* p = OrvEllipsePoints(rect, startAngle(), endAngle(), isPie(this), matrix, n);
    canvas->polyLine(makeUp, n, p, isFilled());
}

void OrvEllipse::apply2d(const Orv2dMatrix& matrix) {
    matrix.apply(rect);
}

unsigned long OrvEllipse::contains2d(const Orv2dPoint& point, const Orv2dMatrix* matrix) {
    if (isSelected() && dragger2d(point, matrix)) return 1;
    Orv2dRect r = rect;
    Orv2dPoint p = point;
    if (OrvKeepsAxes(matrix)) {
        if (matrix) matrix->apply(r);
    } else if (!matrix->inverse(p)) {
        return 0;
    }
    if (isFilled())
        return OrvPointInFilledArc(p, r, startAngle(), endAngle(),
                                   (OrvArcMode)(makeUp ? makeUp->arcMode() : 0));
    return OrvPointInArc(p, r, startAngle(), endAngle());
}

void OrvEllipse::setRect(const Orv2dRect& r) {
    if (r == rect) return;
    beginDrawing(1);
    rect = r;
    flushDrawing(1);
}

OrvFilledEllipse::OrvFilledEllipse(OrvDirector* director, const Orv2dRect& box, OrvMakeUp* look)
    : OrvEllipse(director, box, look) {}

OrvFilledEllipse::OrvFilledEllipse(const OrvFilledEllipse& source) : OrvEllipse(source) {}

OrvActor* OrvFilledEllipse::copy() const {
    return new OrvFilledEllipse(*this);
}
OrvClassInfo* OrvFilledEllipse::classInfo() const {
    return _classInfo;
}

// Persistent form: the parent's, then the class comment.

OrvActor* OrvFilledEllipse::read(OrvIStream& in) {
    return new OrvFilledEllipse(in);
}

void OrvFilledEllipse::write(OrvOStream& out) const {
    OrvEllipse::write(out);
    out.writeComments("OrvFilledEllipse class", 1);
}

OrvFilledEllipse::OrvFilledEllipse(OrvIStream& in) : OrvEllipse(in) {}

OrvArc::OrvArc(OrvDirector* director, const Orv2dRect& box, float startDegrees, float endDegrees,
               unsigned long solid, OrvMakeUp* look)
    : OrvEllipse(director, box, look), start(startDegrees), end(endDegrees), filled(solid) {}

OrvArc::OrvArc(const OrvArc& source)
    : OrvEllipse(source), start(source.start), end(source.end), filled(source.filled) {}

OrvActor* OrvArc::copy() const {
    return new OrvArc(*this);
}
OrvClassInfo* OrvArc::classInfo() const {
    return _classInfo;
}

// Persistent form: the ellipse's, then the angles and whether it is filled.

OrvActor* OrvArc::read(OrvIStream& in) {
    return new OrvArc(in);
}

void OrvArc::write(OrvOStream& out) const {
    OrvEllipse::write(out);
    out.writeComments("OrvArc class", 1);
    out << start;
    out << end;
    out << filled;
}

OrvArc::OrvArc(OrvIStream& in) : OrvEllipse(in), start(0), end(360), filled(0) {
    in >> start;
    in >> end;
    in >> filled;
}

void OrvArc::setAngles(float s, float e) {
    if (s == start && e == end) return;
    beginDrawing(1);
    start = s;
    end = e;
    flushDrawing(1);
}

unsigned long OrvEllipse::copyGeometry(const OrvActor& source) {
    if (source.classInfo() != classInfo()) return 0;
    const OrvEllipse& s = (const OrvEllipse&)source;
    rect = s.rect;
    return 1;
}

unsigned long OrvArc::copyGeometry(const OrvActor& source) {
    if (source.classInfo() != classInfo()) return 0;
    const OrvArc& s = (const OrvArc&)source;
    rect = s.rect;
    start = s.start;
    end = s.end;
    return 1;
}
