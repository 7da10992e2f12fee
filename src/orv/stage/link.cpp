// Links between actors: their shapes computed from the boxes of their ends,
// drawing, hit tests and saved forms, for the straight, one-bend and two-bend
// kinds.
#include "orv/link.h"
#include "orv/canvas.h"
#include "orv/makeup.h"
#include "orv/region.h"
#include "orv/stage.h"
#include "orv/stream.h"

#include <cstring>

#include "shapes_geometry.h"

ORV_DEFINE_CLASS_INIT(OrvLinkImage, "OrvActor", OrvLinkImage::read)
ORV_DEFINE_CLASS_INIT(OrvOneLinkImage, "OrvLinkImage", OrvOneLinkImage::read)
ORV_DEFINE_CLASS_INIT(OrvDoubleLinkImage, "OrvLinkImage", OrvDoubleLinkImage::read)

// The shared buffer must hold the two-bend link's seven points.
static const unsigned orvLinkPointsMax = 7;

static int64_t right(const Orv2dRect& r) {
    return (int64_t)r.x + r.w;
}
static int64_t bottom(const Orv2dRect& r) {
    return (int64_t)r.y + r.h;
}
static int32_t centreX(const Orv2dRect& r) {
    return r.x + (int32_t)(r.w >> 1);
}
static int32_t centreY(const Orv2dRect& r) {
    return r.y + (int32_t)(r.h >> 1);
}

// ----- OrvLinkImage ------------------------------------------------------------

OrvLinkImage::OrvLinkImage(OrvDirector* director, OrvActor* fromActor, OrvActor* toActor,
                           unsigned long isOriented, float headPosition, OrvMakeUp* look)
    : OrvActor(director, look), from(fromActor), to(toActor), oriented(isOriented),
      position(headPosition) {
    removeProperty(OrvResizeableBit);
    removeProperty(OrvMoveableBit);
    setProperty(OrvLinkBit);
}

OrvLinkImage::OrvLinkImage(const OrvLinkImage& source)
    : OrvActor(source), from(source.from), to(source.to), oriented(source.oriented),
      position(source.position) {
    removeProperty(OrvResizeableBit);
    removeProperty(OrvMoveableBit);
    setProperty(OrvLinkBit);
}

OrvActor* OrvLinkImage::copy() const {
    return new OrvLinkImage(*this);
}
OrvClassInfo* OrvLinkImage::classInfo() const {
    return _classInfo;
}

Orv2dPoint* OrvLinkImage::getLink2dPoints(unsigned int& count, const Orv2dMatrix* matrix) const {
    count = 0;
    if (!from || !to) return nullptr;
    Orv2dRect f = from->bbox2d(matrix), t = to->bbox2d(matrix);
    Orv2dPoint* p = OrvAllocLinkPoints(orvLinkPointsMax);
    count = 2;
    // The order of the tests is asymmetric on purpose: the third compares with
    // the middle of t, the fourth with the bottom of f.
    if (t.x >= right(f)) {
        p[0] = Orv2dPoint((int32_t)right(f), centreY(f));
        p[1] = Orv2dPoint(t.x, centreY(t));
    } else if (f.x >= right(t)) {
        p[0] = Orv2dPoint(f.x, centreY(f));
        p[1] = Orv2dPoint((int32_t)right(t), centreY(t));
    } else if ((int64_t)f.y >= (int64_t)t.y + (t.h >> 1)) {
        p[0] = Orv2dPoint(centreX(f), f.y);
        p[1] = Orv2dPoint(centreX(t), (int32_t)bottom(t));
    } else if (t.y >= bottom(f)) {
        p[0] = Orv2dPoint(centreX(f), (int32_t)bottom(f));
        p[1] = Orv2dPoint(centreX(t), t.y);
    } else {
        p[0] = Orv2dPoint(centreX(f), centreY(f));
        p[1] = Orv2dPoint(centreX(t), centreY(t));
    }
    return p;
}

void OrvLinkImage::arrowPoints(const Orv2dPoint* p, Orv2dPoint* arrow) const {
    unsigned n = pathPoints();
    OrvComputeArrow(p[n - 2], p[n - 1], position, arrow);
}

// The path is copied out of the shared buffer at once: drawing and the
// arrow may use other shared buffers before the points are done with.
bool OrvLinkImage::shape(const Orv2dMatrix* matrix, Orv2dPoint* path, unsigned int& n,
                         Orv2dPoint* arrow) const {
    unsigned int count = 0;
    Orv2dPoint* p = getLink2dPoints(count, matrix);
    n = pathPoints();
    if (!p || count < n) return false;
    memcpy(path, p, (count < orvLinkPointsMax ? count : orvLinkPointsMax) * sizeof(Orv2dPoint));
    if (oriented) arrowPoints(path, arrow);
    return true;
}

// The box of the first and last points, with the head; grown by the stroke so
// that a level link still has an area to repaint.
Orv2dRect OrvLinkImage::bbox2d(const Orv2dMatrix* matrix) const {
    Orv2dPoint path[orvLinkPointsMax], arrow[3];
    unsigned int n = 0;
    if (!shape(matrix, path, n, arrow)) return Orv2dRect();
    Orv2dRect box = OrvSegmentBox(path[0], path[n - 1]);
    if (oriented) box.extendBy(OrvPointsBox(3, arrow));
    return OrvGrowRect(box, OrvHalfLineWidth(makeUp) + 1);
}

void OrvLinkImage::draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) {
    Orv2dPoint path[orvLinkPointsMax], arrow[3];
    unsigned int n = 0;
    if (!shape(matrix, path, n, arrow)) return;
    canvas->polyLine(makeUp, n, path, 0);
    if (oriented) canvas->polyLine(makeUp, 3, arrow, 1);
}

unsigned long OrvLinkImage::contains2d(const Orv2dPoint& point, const Orv2dMatrix* matrix) {
    if (dragger2d(point, matrix)) return 1;
    Orv2dPoint path[orvLinkPointsMax], arrow[3];
    unsigned int n = 0;
    if (!shape(matrix, path, n, arrow)) return 0;
    if (oriented && OrvPointInPolygon(point, 3, arrow) != -1) return 1;
    for (unsigned i = 0; i + 1 < n; i++)
        if (OrvPointInLine(point, path[i], path[i + 1])) return 1;
    return 0;
}

void OrvLinkImage::map(void (*function)(OrvActor*, void*), void* data) {
    if (from) function(from, data);
    if (to) function(to, data);
}

void OrvLinkImage::mapReferences(void (*function)(OrvActor*, void*), void* data) {
    if (from) function(from, data);
    if (to) function(to, data);
}

void OrvLinkImage::setFrom(OrvActor* actor) {
    if (actor == from) return;
    beginDrawing(1);
    from = actor;
    flushDrawing(1);
}

void OrvLinkImage::setTo(OrvActor* actor) {
    if (actor == to) return;
    beginDrawing(1);
    to = actor;
    flushDrawing(1);
}

void OrvLinkImage::setOriented(unsigned long on) {
    if (on == oriented) return;
    beginDrawing(1);
    oriented = on;
    flushDrawing(1);
}

void OrvLinkImage::setPosition(float where) {
    if (where == position) return;
    beginDrawing(1);
    position = where;
    flushDrawing(1);
}

// Persistent form: the actor's, then oriented, position and the numbers of
// the two ends, which the writer has numbered before the link.

OrvActor* OrvLinkImage::read(OrvIStream& in) {
    return new OrvLinkImage(in);
}

void OrvLinkImage::write(OrvOStream& out) const {
    OrvActor::write(out);
    out.writeComments("OrvLinkImage class ...", 1);
    out << oriented;
    out << position;
    out.key("fromTo");
    out.writeIndex(from);
    out.writeIndex(to);
    out.stream << '\n';
}

OrvLinkImage::OrvLinkImage(OrvIStream& in)
    : OrvActor(in), from(nullptr), to(nullptr), oriented(1), position(1.0f) {
    in >> oriented;
    in >> position;
    char buffer[1024];
    in.nextItem();
    in.word(buffer);
    if (strcmp(buffer, "fromTo")) {
        OrvError("OrvLinkImage : Bad key (%s %s) \n", buffer, "fromTo");
        return;
    }
    from = in.readIndex();
    to = in.readIndex();
    // A number that names no object read before reads as null: the link then
    // joins nothing, and the stage that reads it leaves it out.
    if (!from || !to) OrvError("OrvLinkImage : an end is missing, the link is left out\n");
}

// ----- OrvOneLinkImage ---------------------------------------------------------

OrvOneLinkImage::OrvOneLinkImage(OrvDirector* director, OrvActor* fromActor, OrvActor* toActor,
                                 unsigned long isOriented, float headPosition, OrvMakeUp* look)
    : OrvLinkImage(director, fromActor, toActor, isOriented, headPosition, look), orientation(0) {}

OrvOneLinkImage::OrvOneLinkImage(const OrvOneLinkImage& source)
    : OrvLinkImage(source), orientation(source.orientation) {}

OrvActor* OrvOneLinkImage::copy() const {
    return new OrvOneLinkImage(*this);
}
OrvClassInfo* OrvOneLinkImage::classInfo() const {
    return _classInfo;
}

// The three points from a to b with a right angle, horizontal or vertical first.
static void oneBend(const Orv2dRect& a, const Orv2dRect& b, unsigned long vertical, Orv2dPoint* p) {
    bool bAbove = (int64_t)b.y < bottom(a);
    if (!vertical) {
        p[0] = Orv2dPoint((int32_t)right(a), centreY(a));
        p[1] = Orv2dPoint(centreX(b), centreY(a));
        p[2] = bAbove ? Orv2dPoint(centreX(b), (int32_t)bottom(b)) : Orv2dPoint(centreX(b), b.y);
    } else {
        p[0] = bAbove ? Orv2dPoint(centreX(a), a.y) : Orv2dPoint(centreX(a), (int32_t)bottom(a));
        p[1] = Orv2dPoint(centreX(a), centreY(b));
        p[2] = Orv2dPoint(b.x, centreY(b));
    }
}

Orv2dPoint* OrvOneLinkImage::getLink2dPoints(unsigned int& count, const Orv2dMatrix* matrix) const {
    count = 0;
    if (!from || !to) return nullptr;
    Orv2dRect f = from->bbox2d(matrix), t = to->bbox2d(matrix);
    Orv2dPoint* p = OrvAllocLinkPoints(orvLinkPointsMax);
    count = 3;
    bool overlapY = (int64_t)t.y < bottom(f) && (int64_t)f.y < bottom(t);
    if (t.x >= right(f) && !overlapY) {
        oneBend(f, t, orientation, p);
    } else {
        // Worked out from t to f, then turned round so the list still starts at from.
        oneBend(t, f, orientation, p);
        Orv2dPoint first = p[0];
        p[0] = p[2];
        p[2] = first;
    }
    return p;
}

void OrvOneLinkImage::setOrientation(OrvPosition direction) {
    unsigned long vertical = direction == OrvVertical ? 1 : 0;
    if (vertical == orientation) return;
    beginDrawing(1);
    orientation = vertical;
    flushDrawing(1);
}

// Persistent form: the link's, then the orientation.

OrvActor* OrvOneLinkImage::read(OrvIStream& in) {
    return new OrvOneLinkImage(in);
}

void OrvOneLinkImage::write(OrvOStream& out) const {
    OrvLinkImage::write(out);
    out.writeComments("OrvOneLinkImage class ...", 1);
    out << orientation;
}

OrvOneLinkImage::OrvOneLinkImage(OrvIStream& in) : OrvLinkImage(in), orientation(0) {
    in >> orientation;
}

// ----- OrvDoubleLinkImage ------------------------------------------------------

OrvDoubleLinkImage::OrvDoubleLinkImage(OrvDirector* director, OrvActor* fromActor,
                                       OrvActor* toActor, unsigned long isOriented,
                                       float headPosition, OrvMakeUp* look)
    : OrvLinkImage(director, fromActor, toActor, isOriented, headPosition, look) {}

OrvDoubleLinkImage::OrvDoubleLinkImage(const OrvDoubleLinkImage& source) : OrvLinkImage(source) {}

OrvActor* OrvDoubleLinkImage::copy() const {
    return new OrvDoubleLinkImage(*this);
}
OrvClassInfo* OrvDoubleLinkImage::classInfo() const {
    return _classInfo;
}

Orv2dPoint* OrvDoubleLinkImage::getLink2dPoints(unsigned int& count,
                                                const Orv2dMatrix* matrix) const {
    count = 0;
    if (!from || !to) return nullptr;
    Orv2dRect f = from->bbox2d(matrix), t = to->bbox2d(matrix);
    Orv2dPoint* p = OrvAllocLinkPoints(orvLinkPointsMax);
    count = 7;
    int64_t dx = (int64_t)centreX(f) - centreX(t), dy = (int64_t)centreY(f) - centreY(t);
    if (dx < 0) dx = -dx;
    if (dy < 0) dy = -dy;
    Orv2dPoint s, e;
    int flag = dy >= dx;
    if (!flag) {
        if (t.y >= bottom(f) && (t.x >= right(f) || f.x >= right(t))) {
            s = Orv2dPoint(centreX(f), (int32_t)bottom(f));
            e = Orv2dPoint(centreX(t), t.y);
        } else {
            s = Orv2dPoint(centreX(f), f.y);
            e = Orv2dPoint(centreX(t), (int32_t)bottom(t));
        }
    } else {
        if (right(f) <= t.x && (bottom(f) <= t.y || bottom(t) <= f.y)) {
            s = Orv2dPoint((int32_t)right(f), centreY(f));
            e = Orv2dPoint(t.x, centreY(t));
        } else {
            s = Orv2dPoint(f.x, centreY(f));
            e = Orv2dPoint((int32_t)right(t), centreY(t));
        }
    }
    int32_t ax = Orvarrow_deltax, ay = Orvarrow_deltay;
    p[0] = s;
    p[3] = e;
    if (flag) {
        int32_t mx = (int32_t)(((int64_t)s.x + e.x) / 2);
        p[1] = Orv2dPoint(mx, s.y);
        p[2] = Orv2dPoint(mx, e.y);
        int32_t k = e.x >= s.x ? 1 : -1;
        p[4] = Orv2dPoint(e.x - k * ax, e.y - k * ay);
        p[5] = Orv2dPoint(e.x - k * ax, e.y + k * ay);
    } else {
        int32_t my = (int32_t)(((int64_t)s.y + e.y) / 2);
        p[1] = Orv2dPoint(s.x, my);
        p[2] = Orv2dPoint(e.x, my);
        int32_t k = e.y >= s.y ? 1 : -1;
        p[4] = Orv2dPoint(e.x - k * ay, e.y - k * ax);
        p[5] = Orv2dPoint(e.x + k * ay, e.y - k * ax);
    }
    p[6] = e;
    return p;
}

// The head was laid out with the path, at its fixed size.
void OrvDoubleLinkImage::arrowPoints(const Orv2dPoint* p, Orv2dPoint* arrow) const {
    arrow[0] = p[4];
    arrow[1] = p[5];
    arrow[2] = p[6];
}

unsigned long OrvDoubleLinkImage::isDirect(const Orv2dMatrix* matrix) const {
    if (!from || !to) return 0;
    Orv2dRect f = from->bbox2d(matrix), t = to->bbox2d(matrix);
    return (int64_t)f.x < right(t) && (int64_t)t.x < right(f) && (int64_t)f.y < bottom(t) &&
           (int64_t)t.y < bottom(f);
}

// Persistent form: the link's and the class comment.

OrvActor* OrvDoubleLinkImage::read(OrvIStream& in) {
    return new OrvDoubleLinkImage(in);
}

void OrvDoubleLinkImage::write(OrvOStream& out) const {
    OrvLinkImage::write(out);
    out.writeComments("OrvDoubleLinkImage class ...", 1);
}

OrvDoubleLinkImage::OrvDoubleLinkImage(OrvIStream& in) : OrvLinkImage(in) {}
