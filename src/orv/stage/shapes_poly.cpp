// Polylines and polygons: open or closed paths through a list of points,
// with one handle per vertex.
#include <cstdlib>
#include <cstring>

#include "orv/canvas.h"
#include "orv/makeup.h"
#include "orv/shapes.h"
#include "orv/stream.h"
#include "shapes_geometry.h"

ORV_DEFINE_CLASS_INIT(Orv2dPolyline, "OrvActor", Orv2dPolyline::read)
ORV_DEFINE_CLASS_INIT(Orv2dPolygon, "Orv2dPolyline", Orv2dPolygon::read)

static Orv2dPoint* copyPoints(unsigned int n, const Orv2dPoint* source) {
    Orv2dPoint* points = (Orv2dPoint*)malloc((n ? n : 1) * sizeof(Orv2dPoint));
    if (n) memcpy((void*)points, (const void*)source, n * sizeof(Orv2dPoint));
    return points;
}

Orv2dPolyline::Orv2dPolyline(OrvDirector* director, unsigned int pointCount,
                             const Orv2dPoint* vertices, OrvMakeUp* look)
    : OrvActor(director, look), count(pointCount), points(copyPoints(pointCount, vertices)) {}

Orv2dPolyline::Orv2dPolyline(const Orv2dPolyline& source)
    : OrvActor(source), count(source.count), points(copyPoints(source.count, source.points)) {}

Orv2dPolyline::~Orv2dPolyline() {
    free((void*)points);
}

OrvActor* Orv2dPolyline::copy() const {
    return new Orv2dPolyline(*this);
}
OrvClassInfo* Orv2dPolyline::classInfo() const {
    return _classInfo;
}

// Persistent form: the count, then one point a line.

OrvActor* Orv2dPolyline::read(OrvIStream& in) {
    return new Orv2dPolyline(in);
}

void Orv2dPolyline::write(OrvOStream& out) const {
    OrvActor::write(out);
    out.writeComments("Orv2dPolyline class", 1);
    out << count;
    for (unsigned int i = 0; i < count; i++) out << points[i];
}

Orv2dPolyline::Orv2dPolyline(OrvIStream& in)
    : OrvActor(in), count(0), points((Orv2dPoint*)malloc(sizeof(Orv2dPoint))) {
    unsigned int n = 0;
    in >> n;
    // The array grows with the points actually read, so a count that the file
    // cannot back costs nothing.
    unsigned int capacity = 1;
    for (unsigned int i = 0; i < n && in.stream; i++) {
        unsigned long faults = in.faults;
        Orv2dPoint p;
        in >> p;
        if (in.faults != faults || !in.stream) return;
        if (count == capacity) {
            Orv2dPoint* grown =
                (Orv2dPoint*)realloc((void*)points, 2 * capacity * sizeof(Orv2dPoint));
            if (!grown) return;
            points = grown;
            capacity *= 2;
        }
        points[count++] = p;
    }
}

Orv2dPoint* Orv2dPolyline::mapped(const Orv2dMatrix* matrix) const {
    Orv2dPoint* p = OrvShapePoints(count + 1);
    for (unsigned int i = 0; i < count; i++) p[i] = OrvMapPoint(points[i], matrix);
    return p;
}

Orv2dRect Orv2dPolyline::bbox2d(const Orv2dMatrix* matrix) const {
    if (!count) return Orv2dRect();
    return OrvGrowRect(OrvPointsBox(count, mapped(matrix)), OrvHalfLineWidth(makeUp) + 1);
}

void Orv2dPolyline::draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) {
    canvas->polyLine(makeUp, count, points, 0, matrix);
}

void Orv2dPolyline::apply2d(const Orv2dMatrix& matrix) {
    for (unsigned int i = 0; i < count; i++) matrix.apply(points[i]);
}

unsigned long Orv2dPolyline::contains2d(const Orv2dPoint& point, const Orv2dMatrix* matrix) {
    if (isSelected() && dragger2d(point, matrix)) return 1;
    if (!count) return 0;
    return OrvPointInPolyline(point, count, mapped(matrix)) != -1;
}

Orv2dPoint* Orv2dPolyline::draggerVertex2d(unsigned int& n, const Orv2dMatrix* matrix) {
    n = count;
    return mapped(matrix);
}

Orv2dDragger* Orv2dPolyline::dragger2d(const Orv2dPoint& point, const Orv2dMatrix* matrix) {
    if (!isSelected()) return nullptr;
    unsigned int n = 0;
    Orv2dPoint* p = draggerVertex2d(n, matrix);
    for (unsigned int i = 0; i < n; i++) {
        Orv2dRect square(p[i].x - ORV_HANDLE_SIZE / 2, p[i].y - ORV_HANDLE_SIZE / 2,
                         ORV_HANDLE_SIZE, ORV_HANDLE_SIZE);
        if (!square.contains(point)) continue;
        // A vertex is no side of a box: its handle is the centre kind.
        Orv2dDragger& d = _default2dDragger;
        d.position = OrvCenter;
        d.index = (int32_t)i;
        d.point = p[i];
        d.matrix = matrix;
        return &d;
    }
    return nullptr;
}

void Orv2dPolyline::setPoints(unsigned int n, const Orv2dPoint* source) {
    beginDrawing(1);
    Orv2dPoint* next = copyPoints(n, source);
    free((void*)points);
    points = next;
    count = n;
    flushDrawing(1);
}

void Orv2dPolyline::setPoint(unsigned int index, const Orv2dPoint& point) {
    if (index >= count || points[index] == point) return;
    beginDrawing(1);
    points[index] = point;
    flushDrawing(1);
}

Orv2dPolygon::Orv2dPolygon(OrvDirector* director, unsigned int pointCount,
                           const Orv2dPoint* vertices, unsigned long solid, OrvMakeUp* look)
    : Orv2dPolyline(director, pointCount, vertices, look), filled(solid) {}

Orv2dPolygon::Orv2dPolygon(const Orv2dPolygon& source)
    : Orv2dPolyline(source), filled(source.filled) {}

OrvActor* Orv2dPolygon::copy() const {
    return new Orv2dPolygon(*this);
}
OrvClassInfo* Orv2dPolygon::classInfo() const {
    return _classInfo;
}

// Persistent form: the polyline's, then whether it is filled.

OrvActor* Orv2dPolygon::read(OrvIStream& in) {
    return new Orv2dPolygon(in);
}

void Orv2dPolygon::write(OrvOStream& out) const {
    Orv2dPolyline::write(out);
    out.writeComments("Orv2dPolygon class", 1);
    out << filled;
}

Orv2dPolygon::Orv2dPolygon(OrvIStream& in) : Orv2dPolyline(in), filled(0) {
    in >> filled;
}

void Orv2dPolygon::draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) {
    if (!count) return;
    Orv2dPoint* p = mapped(matrix);
    if (filled) {
        canvas->polyLine(makeUp, count, p, 1);
        return;
    }
    p[count] = p[0];  // mapped leaves room for the closing point
    canvas->polyLine(makeUp, count + 1, p, 0);
}

unsigned long Orv2dPolygon::contains2d(const Orv2dPoint& point, const Orv2dMatrix* matrix) {
    if (isSelected() && dragger2d(point, matrix)) return 1;
    if (!count) return 0;
    Orv2dPoint* p = mapped(matrix);
    if (filled) return OrvPointInPolygon(point, count, p) != -1;
    p[count] = p[0];
    return OrvPointInPolyline(point, count + 1, p) != -1;
}

void Orv2dPolygon::setFilled(unsigned long on) {
    if ((filled != 0) == (on != 0)) return;
    beginDrawing(0);
    filled = on;
    flushDrawing(0);
}

// A polygon takes a polyline's points too: both hold a count and an array.
unsigned long Orv2dPolyline::copyGeometry(const OrvActor& source) {
    if (!source.isSubtypeOf("Orv2dPolyline")) return 0;
    const Orv2dPolyline& s = (const Orv2dPolyline&)source;
    Orv2dPoint* next = copyPoints(s.count, s.points);
    free((void*)points);
    points = next;
    count = s.count;
    return 1;
}
