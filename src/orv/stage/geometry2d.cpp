// The 2D geometry that every actor derives from its box: repaint box, hit
// tests, focus ring and the eight selection handles.
#include "orv/actor.h"
#include "orv/canvas.h"

// Position codes of the eight handles: corners first, then the sides.
static const OrvPosition _handlePositions[8] = {5, 9, 6, 10, 1, 2, 4, 8};

// ---------------------------------------------------------------------------
// Orv2dDragger
// ---------------------------------------------------------------------------

unsigned long Orv2dDragger::onButtonDown(const Orv2dPoint&, const Orv2dMatrix*) {
    dragging = 1;
    return 1;
}

unsigned long Orv2dDragger::onButtonDragged(const Orv2dPoint& from, Orv2dPoint& to) {
    to = from;
    return dragging;
}

unsigned long Orv2dDragger::onButtonUp() {
    dragging = 0;
    return 0;
}

const char* Orv2dDragger::className() const {
    return "default2dDragger";
}

// ---------------------------------------------------------------------------
// Boxes and hit tests
// ---------------------------------------------------------------------------

Orv2dRect OrvActor::bbox2d(const Orv2dMatrix*) const {
    return Orv2dRect();
}

Orv2dRect OrvActor::bbox2dToStage(const Orv2dMatrix* matrix) const {
    Orv2dRect r = bbox2d(matrix);
    // A selected actor's handles stick out by half their size.
    if (isSelected()) {
        r.x -= ORV_HANDLE_SIZE / 2;
        r.y -= ORV_HANDLE_SIZE / 2;
        r.w += ORV_HANDLE_SIZE;
        r.h += ORV_HANDLE_SIZE;
    }
    return r;
}

unsigned long OrvActor::contains2d(const Orv2dPoint& point, const Orv2dMatrix* matrix) {
    if (isSelected() && dragger2d(point, matrix)) return 1;
    return bbox2d(matrix).contains(point);
}

unsigned long OrvActor::intersects2d(const Orv2dRegion& region, const Orv2dMatrix* matrix) const {
    return region.intersects(bbox2dToStage(matrix));
}

unsigned long OrvActor::inside2d(const Orv2dRegion& region, const Orv2dMatrix* matrix) const {
    return region.contains(bbox2dToStage(matrix));
}

void OrvActor::apply2d(const Orv2dMatrix&) {}

void OrvActor::draw2d(OrvCanvas*, const Orv2dMatrix*) {}

// ---------------------------------------------------------------------------
// Focus
// ---------------------------------------------------------------------------

void OrvActor::drawFocus2d(OrvCanvas* canvas, const OrvMakeUp* m, const Orv2dMatrix* matrix) {
    Orv2dRect r = bbox2d(matrix);
    canvas->rectangle(m, r, 0);
    canvas->rectangle(m, Orv2dRect(r.x - 1, r.y - 1, r.w + 2, r.h + 2), 0);
}

void OrvActor::computeFocusRegion2d(Orv2dRegion& region, const Orv2dMatrix* matrix) {
    Orv2dRect r = bbox2d(matrix);
    // Only the height is tested: a low box is taken whole, a narrow one in strips.
    if (r.h < 8) {
        region.extendBy(r);
        return;
    }
    region.extendBy(Orv2dRect(r.x - 1, r.y - 1, r.w + 2, 2));
    region.extendBy(Orv2dRect(r.x - 1, (int32_t)(r.y + r.h), r.w + 2, 2));
    region.extendBy(Orv2dRect(r.x - 1, r.y + 2, 2, r.h - 3));
    region.extendBy(Orv2dRect((int32_t)(r.x + r.w), r.y + 2, 2, r.h - 3));
}

// ---------------------------------------------------------------------------
// Handles
// ---------------------------------------------------------------------------

Orv2dPoint* OrvActor::handlesOf(const Orv2dRect& b) {
    static Orv2dPoint handles[8];
    int32_t right = (int32_t)(b.x + b.w), bottom = (int32_t)(b.y + b.h);
    int32_t midX = b.x + (int32_t)(b.w >> 1), midY = b.y + (int32_t)(b.h >> 1);
    handles[0] = Orv2dPoint(b.x, b.y);
    handles[1] = Orv2dPoint(b.x, bottom);
    handles[2] = Orv2dPoint(right, b.y);
    handles[3] = Orv2dPoint(right, bottom);
    handles[4] = Orv2dPoint(b.x, midY);
    handles[5] = Orv2dPoint(right, midY);
    handles[6] = Orv2dPoint(midX, b.y);
    handles[7] = Orv2dPoint(midX, bottom);
    return handles;
}

static Orv2dRect handleSquare(const Orv2dPoint& p) {
    return Orv2dRect(p.x - ORV_HANDLE_SIZE / 2, p.y - ORV_HANDLE_SIZE / 2, ORV_HANDLE_SIZE,
                     ORV_HANDLE_SIZE);
}

Orv2dPoint* OrvActor::draggerVertex2d(unsigned int& count, const Orv2dMatrix* matrix) {
    count = 8;
    return handlesOf(bbox2d(matrix));
}

void OrvActor::draggerDraw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) {
    // A handle drawn by exclusive or would erase itself.
    if (makeUp->mode == OrvXorMode || makeUp->mode == OrvEquivMode) return;
    unsigned int count = 0;
    Orv2dPoint* points = draggerVertex2d(count, matrix);
    for (unsigned int i = 0; i < count; i++) canvas->rectangle(makeUp, handleSquare(points[i]), 1);
}

void OrvActor::draggerRegions2d(Orv2dRegion& region, const Orv2dMatrix* matrix) {
    region.count = 0;
    unsigned int count = 0;
    Orv2dPoint* points = draggerVertex2d(count, matrix);
    for (unsigned int i = 0; i < count; i++) region.extendBy(handleSquare(points[i]));
}

Orv2dDragger* OrvActor::dragger2d(const Orv2dPoint& point, const Orv2dMatrix* matrix) {
    if (!isSelected()) return nullptr;
    unsigned int count = 0;
    Orv2dPoint* points = draggerVertex2d(count, matrix);
    // Other handles than the eight need their own dragger2d.
    if (count != 8) return nullptr;
    // Corners come first, so where the squares of a small actor overlap a corner wins.
    for (int i = 0; i < 8; i++) {
        if (!handleSquare(points[i]).contains(point)) continue;
        Orv2dDragger& d = _default2dDragger;
        d.position = _handlePositions[i];
        d.index = i;
        d.point = points[i];
        d.matrix = matrix;
        return &d;
    }
    return nullptr;
}

unsigned long OrvActor::copyGeometry(const OrvActor&) {
    return 0;
}
