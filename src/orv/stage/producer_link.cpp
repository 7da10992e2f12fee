// The producers that make links: a drag from one actor to another shows a
// line by exclusive or and selects the ends; the release makes the link.
#include "orv/director.h"
#include "orv/link.h"
#include "orv/makeup.h"
#include "orv/stage.h"
#include "orv/undo.h"

#include "producer_internal.h"

OrvMakeLinkProducer::OrvMakeLinkProducer(OrvStage* forStage, OrvProducer* previousProducer,
                                         unsigned short withButton, OrvMakeUp* look)
    : OrvProducer(forStage, previousProducer), from(nullptr), to(nullptr), ghostErased(1),
      button(withButton), makeUp(look) {
    OrvCount(makeUp);
}

OrvMakeLinkProducer::~OrvMakeLinkProducer() {
    OrvRelease(makeUp);
}

OrvActor* OrvMakeLinkProducer::pick(const Orv2dPoint& point) const {
    OrvActor* a = stage->contains(point, nullptr, 0, nullptr);
    return a && a->isSelectable() ? a : nullptr;
}

int OrvMakeLinkProducer::input2d(const OrvEvent& event) {
    Orv2dPoint point(event.x, event.y);
    switch (event.type) {
        case OrvButtonDown: {
            if (event.button != button) return 0;
            OrvActor* a = pick(point);
            if (!a || stage->isLink(a) || !acceptFrom(a)) return 0;
            a->setSelected(1);
            from = a;
            to = nullptr;
            start = current = point;
            ghostErased = 1;
            return 1;
        }
        case OrvButtonDragged: {
            if (event.button != button || !from) return 0;
            if (!(point == current)) {
                if (!ghostErased) expose2d(nullptr);
                ghostErased = 0;
                current = point;
                expose2d(nullptr);
            }
            OrvActor* a = pick(point);
            if (a && !stage->isLink(a) && a != from && acceptTo(a)) {
                a->setSelected(1);
                // The previous end is selected again, not deselected: kept so.
                if (to && to != a) to->setSelected(1);
                to = a;
                return 1;
            }
            if (to) to->setSelected(0);
            to = nullptr;
            return 1;
        }
        case OrvButtonUp: {
            // The ghost goes before start and current are cleared, so the
            // exclusive-or line is drawn over itself and leaves nothing.
            if (event.button == button && !ghostErased && from) expose2d(nullptr);
            start = current = Orv2dPoint();
            if (event.button != button) return 0;
            if (!from && !to) {
                ghostErased = 1;
                return 1;
            }
            stage->beginDrawing();
            if (from) from->setSelected(0);
            if (to) to->setSelected(0);
            if (from && to) activate2d(from, to);
            stage->flushDrawing(1);
            from = to = nullptr;
            callPrevious();
            ghostErased = 1;
            return 1;
        }
        default:
            return 0;
    }
}

// For a moment the shared default make-up draws by exclusive or.
void OrvMakeLinkProducer::expose2d(const Orv2dRegion* region) {
    if (!from || (start == current)) return;
    OrvMakeUp* look = director()->defaultMakeUp;
    int opened = OrvPrepareIfNone(stage, region);
    look->setMode(OrvXorMode);
    ghost2d(look, start, current);
    look->setMode(OrvCopyMode);
    if (opened) stage->end();
}

void OrvMakeLinkProducer::ghost2d(const OrvMakeUp* look, const Orv2dPoint& a, const Orv2dPoint& b) {
    stage->line(look, a, b);
}

void OrvMakeLinkProducer::activate2d(OrvActor* fromActor, OrvActor* toActor) {
    OrvEditAppend(stage, new OrvLinkImage(director(), fromActor, toActor, 1, 1.0f, makeUp));
}

unsigned long OrvMakeLinkProducer::acceptFrom(OrvActor*) {
    return 1;
}
unsigned long OrvMakeLinkProducer::acceptTo(OrvActor*) {
    return 1;
}

void OrvMakeLinkProducer::abort() {
    from = to = nullptr;
    start = current = Orv2dPoint();
    ghostErased = 1;
}

void OrvMakeLinkProducer::init() {
    abort();
}

void OrvMakeOneLinkProducer::activate2d(OrvActor* fromActor, OrvActor* toActor) {
    OrvEditAppend(stage, new OrvOneLinkImage(director(), fromActor, toActor, 1, 1.0f, makeUp));
}

void OrvMakeDoubleLinkProducer::activate2d(OrvActor* fromActor, OrvActor* toActor) {
    OrvEditAppend(stage, new OrvDoubleLinkImage(director(), fromActor, toActor, 1, 1.0f, makeUp));
}
