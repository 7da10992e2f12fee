// The rectangle producers and the select producer that combines move,
// reshape and rubber-band selection.
#include "orv/producer.h"

#include <cstdlib>

#include "orv/actor.h"
#include "orv/director.h"
#include "orv/stage.h"
#include "producer_internal.h"

static Orv2dRect OrvNormalised(const Orv2dPoint& a, const Orv2dPoint& b) {
    Orv2dRect r;
    r.x = a.x < b.x ? a.x : b.x;
    r.y = a.y < b.y ? a.y : b.y;
    r.w = (unsigned)labs((long)b.x - (long)a.x);
    r.h = (unsigned)labs((long)b.y - (long)a.y);
    return r;
}

// ---------------------------------------------------------------------------
// Rectangle
// ---------------------------------------------------------------------------

OrvRectangleProducer::OrvRectangleProducer(OrvStage* forStage, OrvProducer* previousProducer)
    : OrvProducer(forStage, previousProducer), active(0), mask(1), ghostClipSet(0) {}

int OrvRectangleProducer::input2d(const OrvEvent& event) {
    switch (event.type) {
        case OrvButtonDown:
            if (event.modifiers & 0x3000) {
                director()->bell(0);
                return 0;
            }
            if (!(event.key & mask) || event.modifiers) return 0;
            start = end = snapped(event.x, event.y);
            active = 1;
            return 1;
        case OrvButtonDragged: {
            if (!active || !(event.modifiers & (mask | 0x100))) return 0;
            expose2d(nullptr);
            Orv2dPoint e = stage->snapToGrid(Orv2dPoint(event.x, event.y));
            if (event.modifiers & 0x100) {
                // Shift forces a square, measured as seen on the window.
                Orv2dPoint s = map(start);
                long dx = (long)e.x - s.x, dy = (long)e.y - s.y;
                long adx = labs(dx), ady = labs(dy);
                long side = adx < ady ? adx : ady;
                if (dx && dy) e = Orv2dPoint(s.x + dx * side / adx, s.y + dy * side / ady);
            }
            end = unmap(e);
            expose2d(nullptr);
            return 1;
        }
        case OrvButtonUp:
            if (!active) return 0;
            expose2d(nullptr);
            active = 0;
            activate2d(OrvNormalised(start, end));  // a zero-size rectangle is delivered too
            return 1;
        default:
            return 0;
    }
}

void OrvRectangleProducer::expose2d(const Orv2dRegion* region) {
    if (!active || (start.x == end.x && start.y == end.y)) return;
    Orv2dPoint a = map(start), b = map(end);
    int opened = OrvPrepareIfNone(stage, region);
    ghost2d(stage->ghostMakeUp, OrvNormalised(a, b));
    if (opened) stage->end();
}

void OrvRectangleProducer::ghost2d(const OrvMakeUp* makeUp, const Orv2dRect& rect) {
    stage->rectangle(makeUp, rect, 0);
}

void OrvRectangleProducer::activate2d(const Orv2dRect&) {}
void OrvRectangleProducer::activate3d(const Orv2dRect&) {}

struct _OrvInsideTest_ {
    Orv2dRegion* region;
};

static void OrvSelectIfInside(OrvActor* actor, void* data) {
    // The test has no matrix: it is made in the actors' own space.
    if (actor->inside2d(*((_OrvInsideTest_*)data)->region, nullptr) && !actor->isSelected())
        actor->setSelected(1);
}

void OrvSelectRectangleProducer::activate2d(const Orv2dRect& rect) {
    Orv2dRegion region(25);
    region.extendBy(rect);
    _OrvInsideTest_ test{&region};
    stage->beginDrawing();
    stage->deSelect();
    stage->apply(OrvSelectIfInside, &test);
    stage->flushDrawing(1);
}

// ---------------------------------------------------------------------------
// Select
// ---------------------------------------------------------------------------

// Sub-producers belong to the select producer, not to the stage's list.
template <class P>
static P* OrvOwnedBy(OrvStage* stage, P* p) {
    if (stage) stage->producers.remove(p);
    return p;
}

OrvSelectProducer::OrvSelectProducer(OrvStage* forStage, OrvProducer* previousProducer)
    : OrvProducer(forStage, previousProducer),
      move(OrvOwnedBy(forStage, new OrvMoveProducer(forStage))),
      reshape(OrvOwnedBy(forStage, new OrvReshapeProducer(forStage))),
      selectRectangle(OrvOwnedBy(forStage, new OrvSelectRectangleProducer(forStage))),
      pick3d(nullptr), rotate3d(nullptr), extra(nullptr), inUse(nullptr), mask1(1), mask2(2) {}

OrvSelectProducer::~OrvSelectProducer() {
    OrvProducer* subs[] = {move, reshape, selectRectangle, pick3d, rotate3d, extra};
    for (OrvProducer* p : subs) {
        if (p) p->stage = nullptr;  // already out of the stage's list
        delete p;
    }
}

void OrvSelectProducer::setExtra(OrvProducer* p) {
    if (p == extra) return;
    if (extra) {
        extra->stage = nullptr;
        delete extra;
    }
    extra = p;
    if (p) adopt(p);
}

int OrvSelectProducer::input2d(const OrvEvent& event) {
    if (extra && extra->isActive()) {
        if (extra->input2d(event)) {
            inUse = nullptr;
            return 1;
        }
    }
    switch (event.type) {
        case OrvButtonDown: {
            if (!(event.key & (mask1 | mask2))) return 0;
            Orv2dPoint p(event.x, event.y);
            OrvActor* a = stage->contains(p, toStage(), 0, nullptr);
            if (a && a->dragger2d(p, toStage()))
                inUse = reshape;
            else if (a && reshape->polylineEditor && a->isSubtypeOf("Orv2dPolyline") &&
                     (event.key & ((OrvReshapeProducer*)reshape)->mask))
                inUse = reshape;
            else if (a)
                inUse = move;
            else
                inUse = selectRectangle;
            return inUse ? inUse->input2d(event) : 0;
        }
        case OrvButtonUp: {
            if (!(event.key & (mask1 | mask2))) return 0;
            OrvProducer* p = inUse;
            inUse = nullptr;
            return p ? p->input2d(event) : 0;
        }
        case OrvPointerMoved:
        case OrvKeyDown:
            // So that the cursor follows the handles without a press.
            return reshape->input2d(event);
        default:
            return inUse ? inUse->input2d(event) : 0;
    }
}

void OrvSelectProducer::expose2d(const Orv2dRegion* region) {
    if (inUse) inUse->expose2d(region);
}

void OrvSelectProducer::abort() {
    inUse = nullptr;
    OrvProducer* subs[] = {move, reshape, selectRectangle, pick3d, rotate3d, extra};
    for (OrvProducer* p : subs)
        if (p) p->abort();
}

void OrvSelectProducer::init() {
    inUse = nullptr;
    OrvProducer* subs[] = {move, reshape, selectRectangle, pick3d, rotate3d, extra};
    for (OrvProducer* p : subs)
        if (p) p->init();
}

void OrvSelectProducer::setTheater(OrvTheater* t) {
    OrvProducer::setTheater(t);
    OrvProducer* subs[] = {move, reshape, selectRectangle, pick3d, rotate3d, extra};
    for (OrvProducer* p : subs)
        if (p) p->setTheater(t);
}
