// OrvStage: the observers of the drawing cycle and the grid.
#include "orv/stage.h"

#include "orv/actor.h"
#include "orv/canvas.h"
#include "orv/makeup.h"
#include "orv/resource.h"

OrvStageHook::OrvStageHook() : stage(nullptr) {}

OrvStageHook::~OrvStageHook() {
    if (stage) stage->remove(this);
}

void OrvStageHook::beforeDraw(const OrvCanvas*, const Orv2dMatrix*, const Orv2dRegion*) {}
void OrvStageHook::afterDraw(const OrvCanvas*, const Orv2dMatrix*, const Orv2dRegion*) {}
void OrvStageHook::producer(OrvProducer*, OrvProducer*) {}
void OrvStageHook::transformer(const Orv2dMatrix*, const Orv2dMatrix*) {}
void OrvStageHook::contents() {}
void OrvStageHook::stageResized() {}
void OrvStageHook::afterCopy(const OrvCanvas*, const Orv2dMatrix*, const Orv2dRegion*) {}
void OrvStageHook::invalidateActorCall(const OrvActor*) {}
unsigned long OrvStageHook::deletedByStage() const {
    return 0;
}

void OrvStage::install(OrvStageHook* hook) {
    if (!hook || hook->stage == this) return;
    if (hook->stage) {
        OrvError("OrvStage::install : Can't connect the same hook object twice.\n");
        return;
    }
    hook->stage = this;
    hooks.append(hook);
}

void OrvStage::remove(OrvStageHook* hook) {
    if (!hook) return;
    hook->stage = nullptr;
    hooks.remove(hook);
}

// Each dispatcher takes the next link before the call, so that a hook may
// remove itself while it is told.
#define ORV_EACH_HOOK(call)                                                                        \
    if (!OrvAllowHooksUpdated) return;                                                             \
    for (OrvLink* l = hooks.first, *next; l; l = next) {                                           \
        next = l->next;                                                                            \
        ((OrvStageHook*)l->value)->call;                                                           \
    }

void OrvStage::beforeDraw(const OrvCanvas* c, const Orv2dMatrix* m, const Orv2dRegion* r) {
    ORV_EACH_HOOK(beforeDraw(c, m, r));
}
void OrvStage::afterDraw(const OrvCanvas* c, const Orv2dMatrix* m, const Orv2dRegion* r) {
    ORV_EACH_HOOK(afterDraw(c, m, r));
}
void OrvStage::afterCopy(const OrvCanvas* c, const Orv2dMatrix* m, const Orv2dRegion* r) {
    ORV_EACH_HOOK(afterCopy(c, m, r));
}
void OrvStage::producerChanged(OrvProducer* newProducer, OrvProducer* oldProducer) {
    ORV_EACH_HOOK(producer(newProducer, oldProducer));
}
void OrvStage::transformerChanged(const Orv2dMatrix* newMatrix, const Orv2dMatrix* oldMatrix) {
    ORV_EACH_HOOK(transformer(newMatrix, oldMatrix));
}
void OrvStage::stageResized() {
    ORV_EACH_HOOK(stageResized());
}
void OrvStage::invalidateActorCall(const OrvActor* actor) {
    ORV_EACH_HOOK(invalidateActorCall(actor));
}
void OrvStage::contentsChanged() {
    if (!OrvAllowCallContentsChanged) return;
    ORV_EACH_HOOK(contents());
}

#undef ORV_EACH_HOOK

OrvStageGrid::OrvStageGrid(OrvMakeUp* m, const Orv2dPoint& o, unsigned long sx, unsigned long sy,
                           unsigned long snap, unsigned long on, unsigned long ex, unsigned long ey)
    : makeUp(m), origin(o), spacingX(sx), spacingY(sy), everyX(ex), everyY(ey), active(on),
      snapping(snap) {
    OrvCount(makeUp);
}

OrvStageGrid::~OrvStageGrid() {
    OrvRelease(makeUp);
}

Orv2dPoint OrvStageGrid::snap(const Orv2dPoint& p) {
    if (!snapping || spacingX == 0 || spacingY == 0) return p;
    // Unsigned division, as stored distances are: left of the origin goes wrong.
    unsigned long nx = (unsigned long)(p.x - origin.x) + (spacingX >> 1);
    unsigned long ny = (unsigned long)(p.y - origin.y) + (spacingY >> 1);
    Orv2dPoint q;
    q.x = origin.x + (long)((nx / spacingX) * spacingX);
    q.y = origin.y + (long)((ny / spacingY) * spacingY);
    return q;
}

void OrvStageGrid::draw(OrvCanvas* canvas, const Orv2dMatrix* matrix, const Orv2dRegion& region) {
    if (!active || spacingX == 0 || spacingY == 0) return;
    unsigned long ex = everyX ? everyX : 1, ey = everyY ? everyY : 1;
    long dx = (long)(spacingX * ex), dy = (long)(spacingY * ey);
    Orv2dPoint p0(0, 0), p1(dx, dy);
    if (matrix) {
        matrix->apply(p0);
        matrix->apply(p1);
    }
    long sdx = p1.x - p0.x, sdy = p1.y - p0.y;
    if (sdx < 0) sdx = -sdx;
    if (sdy < 0) sdy = -sdy;
    if (sdx < 4 || sdy < 4) return;  // denser than that is noise
    Orv2dRect box = region.bbox;
    if (matrix && !matrix->inverse(box)) return;
    // First and last grid lines inside the box.
    long x0 = origin.x + ((box.x - origin.x) / dx) * dx;
    if (x0 < box.x) x0 += dx;
    long y0 = origin.y + ((box.y - origin.y) / dy) * dy;
    if (y0 < box.y) y0 += dy;
    long x1 = box.x + (long)box.w, y1 = box.y + (long)box.h;
    if (x0 > x1 || y0 > y1) return;
    unsigned long cols = (unsigned long)((x1 - x0) / dx) + 1,
                  rows = (unsigned long)((y1 - y0) / dy) + 1;
    Orv2dPoint* points = OrvAllocPoints((unsigned)((cols + 2) * (rows + 2)));
    unsigned n = 0;
    for (long y = y0; y <= y1; y += dy)
        for (long x = x0; x <= x1; x += dx) {
            Orv2dPoint p(x, y);
            if (matrix) matrix->apply(p);
            points[n++] = p;
        }
    canvas->points(makeUp, n, points, nullptr);
}

void OrvStage::setGrid(OrvStageGrid* g) {
    if (g == grid) return;
    delete grid;
    grid = g;
    beginDrawing();
    invalidate(Orv2dRect(0, 0, width, height));
    flushDrawing(1);
}

Orv2dPoint OrvStage::snapToGrid(const Orv2dPoint& p) const {
    if (!grid) return p;
    Orv2dPoint q = p;
    if (transformer) transformer->inverse(q);
    q = grid->snap(q);
    if (transformer) transformer->apply(q);
    return q;
}
