// Straight lines, with or without arrow heads.
#include "orv/canvas.h"
#include "orv/makeup.h"
#include "orv/shapes.h"
#include "orv/stream.h"
#include "shapes_geometry.h"

ORV_DEFINE_CLASS_INIT(OrvLine, "OrvActor", OrvLine::read)
ORV_DEFINE_CLASS_INIT(OrvArrowLine, "OrvLine", OrvArrowLine::read)

OrvLine::OrvLine(OrvDirector* director, const Orv2dPoint& fromPoint, const Orv2dPoint& toPoint,
                 OrvMakeUp* look)
    : OrvActor(director, look), from(fromPoint), to(toPoint) {}

OrvLine::OrvLine(const OrvLine& source) : OrvActor(source), from(source.from), to(source.to) {}

OrvActor* OrvLine::copy() const {
    return new OrvLine(*this);
}
OrvClassInfo* OrvLine::classInfo() const {
    return _classInfo;
}

// Persistent form: the two ends.

OrvActor* OrvLine::read(OrvIStream& in) {
    return new OrvLine(in);
}

void OrvLine::write(OrvOStream& out) const {
    OrvActor::write(out);
    out.writeComments("OrvLine class", 1);
    out << from;
    out << to;
}

OrvLine::OrvLine(OrvIStream& in) : OrvActor(in), from(), to() {
    in >> from;
    in >> to;
}

// One pixel more than the stroke, so that a vertical or horizontal line still
// has a box with area to repaint.
Orv2dRect OrvLine::bbox2d(const Orv2dMatrix* matrix) const {
    return OrvGrowRect(OrvSegmentBox(OrvMapPoint(from, matrix), OrvMapPoint(to, matrix)),
                       OrvHalfLineWidth(makeUp) + 1);
}

void OrvLine::draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) {
    canvas->line(makeUp, from, to, matrix);
}

void OrvLine::apply2d(const Orv2dMatrix& matrix) {
    matrix.apply(from);
    matrix.apply(to);
}

unsigned long OrvLine::contains2d(const Orv2dPoint& point, const Orv2dMatrix* matrix) {
    if (isSelected() && dragger2d(point, matrix)) return 1;
    return OrvPointInLine(point, OrvMapPoint(from, matrix), OrvMapPoint(to, matrix));
}

void OrvLine::setPoints(const Orv2dPoint& f, const Orv2dPoint& t) {
    if (f == from && t == to) return;
    beginDrawing(1);
    from = f;
    to = t;
    flushDrawing(1);
}

OrvArrowLine::OrvArrowLine(OrvDirector* director, const Orv2dPoint& fromPoint,
                           const Orv2dPoint& toPoint, OrvMakeUp* look, unsigned long arrowEnds)
    : OrvLine(director, fromPoint, toPoint, look), arrows(arrowEnds) {}

OrvArrowLine::OrvArrowLine(const OrvArrowLine& source) : OrvLine(source), arrows(source.arrows) {}

OrvActor* OrvArrowLine::copy() const {
    return new OrvArrowLine(*this);
}
OrvClassInfo* OrvArrowLine::classInfo() const {
    return _classInfo;
}

// Persistent form: the line's, then which ends carry a head.

OrvActor* OrvArrowLine::read(OrvIStream& in) {
    return new OrvArrowLine(in);
}

void OrvArrowLine::write(OrvOStream& out) const {
    OrvLine::write(out);
    out.writeComments("OrvArrowLine class", 1);
    out << arrows;
}

OrvArrowLine::OrvArrowLine(OrvIStream& in) : OrvLine(in), arrows(OrvArrowAtEnd) {
    in >> arrows;
}

void OrvArrowLine::head(unsigned long atEnd, const Orv2dMatrix* matrix, Orv2dPoint out[3]) const {
    Orv2dPoint f = OrvMapPoint(from, matrix), t = OrvMapPoint(to, matrix);
    if (atEnd)
        OrvComputeArrow(f, t, 1.0f, out);
    else
        OrvComputeArrow(t, f, 1.0f, out);
}

Orv2dRect OrvArrowLine::bbox2d(const Orv2dMatrix* matrix) const {
    Orv2dRect box = OrvLine::bbox2d(matrix);
    Orv2dPoint h[3];
    for (unsigned long end = 0; end < 2; end++) {
        if (!(arrows & (end ? OrvArrowAtEnd : OrvArrowAtStart))) continue;
        head(end, matrix, h);
        box.extendBy(OrvGrowRect(OrvPointsBox(3, h), 1));
    }
    return box;
}

void OrvArrowLine::draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) {
    OrvLine::draw2d(canvas, matrix);
    Orv2dPoint h[3];
    for (unsigned long end = 0; end < 2; end++) {
        if (!(arrows & (end ? OrvArrowAtEnd : OrvArrowAtStart))) continue;
        head(end, matrix, h);
        canvas->polyLine(makeUp, 3, h, 1);
    }
}

unsigned long OrvArrowLine::contains2d(const Orv2dPoint& point, const Orv2dMatrix* matrix) {
    if (OrvLine::contains2d(point, matrix)) return 1;
    Orv2dPoint h[3];
    for (unsigned long end = 0; end < 2; end++) {
        if (!(arrows & (end ? OrvArrowAtEnd : OrvArrowAtStart))) continue;
        head(end, matrix, h);
        if (OrvPointInPolygon(point, 3, h) != -1) return 1;
    }
    return 0;
}

unsigned long OrvLine::copyGeometry(const OrvActor& source) {
    if (source.classInfo() != classInfo()) return 0;
    const OrvLine& s = (const OrvLine&)source;
    from = s.from;
    to = s.to;
    return 1;
}

unsigned long OrvArrowLine::copyGeometry(const OrvActor& source) {
    if (source.classInfo() != classInfo()) return 0;
    const OrvArrowLine& s = (const OrvArrowLine&)source;
    from = s.from;
    to = s.to;
    arrows = s.arrows;
    return 1;
}
