// The producer base class and the move and reshape producers.
#include "orv/undo.h"
#include "orv/producer.h"

#include <cstdlib>

#include "orv/actor.h"
#include "orv/director.h"
#include "orv/stage.h"
#include "orv/theater.h"
#include "producer_internal.h"

// ---------------------------------------------------------------------------
// The base class
// ---------------------------------------------------------------------------

OrvProducer::OrvProducer(OrvStage* forStage, OrvProducer* previousProducer)
    : scene(nullptr), theater(nullptr), stage(forStage), previous(previousProducer) {
    if (forStage) forStage->producers.append(this);
}

OrvProducer::~OrvProducer() {
    if (stage) {
        stage->producers.remove(this);
        if (stage->producer == this) stage->setProducer(nullptr);
    }
    // Out of the scene's list and, where it is current, out of the theater.
    if (scene || theater) setScene(nullptr);
}

int OrvProducer::input2d(const OrvEvent&) {
    return 0;
}
int OrvProducer::input3d(const OrvEvent&) {
    return 0;
}
void OrvProducer::expose2d(const Orv2dRegion*) {}
void OrvProducer::expose3d(const Orv2dRegion*) {}
void OrvProducer::abort() {}
void OrvProducer::init() {}

void OrvProducer::setTheater(OrvTheater* t) {
    if (!scene) {
        OrvError("OrvProducer::theater : Must be a scene producer.\n");
        return;
    }
    if (t && !t->scenes.find(scene)) {
        OrvError("OrvProducer::theater : Producer scene isn't connected to theater.\n");
        return;
    }
    theater = t;
}

OrvDirector* OrvProducer::director() const {
    if (theater) return theater->director;
    if (stage) return stage->director;
    if (scene) return sceneDirector();
    return previous ? previous->director() : nullptr;
}

const Orv2dMatrix* OrvProducer::toStage() const {
    return stage ? stage->transformer : nullptr;
}

void OrvProducer::setStage(OrvStage* s) {
    if (s == stage) return;
    if (scene || theater) setScene(nullptr);
    if (stage) {
        stage->producers.remove(this);
        if (stage->producer == this) stage->setProducer(nullptr);
    }
    stage = s;
    if (s) s->producers.append(this);
}

void OrvProducer::callPrevious() {
    if (previous && stage) stage->setProducer(previous);
}

Orv2dPoint OrvProducer::unmap(const Orv2dPoint& p) const {
    Orv2dPoint q = p;
    const Orv2dMatrix* m = toStage();
    if (m) m->inverse(q);
    return q;
}

Orv2dPoint OrvProducer::map(const Orv2dPoint& p) const {
    Orv2dPoint q = p;
    const Orv2dMatrix* m = toStage();
    if (m) m->apply(q);
    return q;
}

Orv2dPoint OrvProducer::snapped(long x, long y) const {
    return unmap(stage->snapToGrid(Orv2dPoint(x, y)));
}

// ---------------------------------------------------------------------------
// Move
// ---------------------------------------------------------------------------

OrvMoveProducer::OrvMoveProducer(OrvStage* forStage, OrvProducer* previousProducer)
    : OrvProducer(forStage, previousProducer), immediate(0), mask(1), active(0), wasSelected(0),
      gesture(0), pickDepth(0), pickInvariant(0) {}

int OrvMoveProducer::input2d(const OrvEvent& event) {
    if (!(event.key & mask)) return 0;
    switch (event.type) {
        case OrvButtonDown: {
            Orv2dPoint p(event.x, event.y);
            start = p;
            OrvActor* a = stage->contains(p, toStage(), 0, nullptr);
            if (!a) {
                stage->deSelect();
                return 0;
            }
            if (event.modifiers == 0x100) {
                a->setSelected(1);  // shift adds to the selection
                return 1;
            }
            if (!a->isSelected()) {
                stage->beginDrawing();
                stage->deSelect();
                a->setSelected(1);
                stage->flushDrawing(1);
                wasSelected = 0;
            } else {
                wasSelected = 1;
            }
            if (!a->isMoveable()) return 1;
            active = 1;
            gesture = OrvNewGesture();
            start = current = snapped(p.x, p.y);
            return 1;
        }
        case OrvButtonDragged:
            if (!active) return 0;
            if (!immediate) {
                expose2d(nullptr);
                current = snapped(event.x, event.y);
                expose2d(nullptr);
            } else {
                current = snapped(event.x, event.y);
                activate2d(Orv2dPoint(current.x - start.x, current.y - start.y));
                start = current;
            }
            return 1;
        case OrvButtonUp: {
            if (!active) return 0;
            if (immediate) {
                active = 0;
                return 0;
            }
            expose2d(nullptr);
            active = 0;
            Orv2dPoint delta(current.x - start.x, current.y - start.y);
            if (!delta.x && !delta.y) {
                // A plain click on a selected actor deselects everything.
                if (wasSelected) stage->deSelect();
                return 0;
            }
            activate2d(delta);
            return 0;  // declined, so that accelerators may see the release
        }
        default:
            return 0;
    }
}

void OrvMoveProducer::expose2d(const Orv2dRegion*) {
    if (immediate || !active) return;
    Orv2dPoint a = map(start), b = map(current);
    if (a.x == b.x && a.y == b.y) return;
    Orv2dRect r = stage->bboxSelections(toStage());
    r.x += b.x - a.x;
    r.y += b.y - a.y;
    // Drawn by exclusive or: a second call erases it.
    int opened = OrvPrepareIfNone(stage, nullptr);
    stage->rectangle(stage->ghostMakeUp, r, 0);
    if (opened) stage->end();
}

struct _OrvTranslation_ {
    Orv2dMatrix matrix;
};

static void OrvTranslateOne(OrvActor* actor, void* data) {
    actor->beginDrawing(1);
    actor->apply2d(((_OrvTranslation_*)data)->matrix);
    actor->flushDrawing(1);
}

void OrvMoveProducer::activate2d(const Orv2dPoint& delta) {
    _OrvTranslation_ t{Orv2dMatrix(delta)};
    unsigned n = 0;
    OrvActor** moved = stage->selections(n);
    OrvEditBeginGeometry(stage, moved, n);
    stage->beginDrawing();
    stage->applyToSelections(OrvTranslateOne, &t);
    stage->flushDrawing(1);
    OrvEditEndGeometry(stage, "Move", gesture);
    delete[] moved;
}

void OrvMoveProducer::abort() {
    // No erasure: a running ghost is left to the next repaint.
    active = 0;
}

// ---------------------------------------------------------------------------
// Reshape
// ---------------------------------------------------------------------------

OrvReshapeProducer::OrvReshapeProducer(OrvStage* forStage, OrvProducer* previousProducer)
    : OrvProducer(forStage, previousProducer), position(0), immediate(0), mask(1), actor(nullptr),
      gesture(0), polylineEditor(nullptr) {}

OrvReshapeProducer::~OrvReshapeProducer() {
    delete polylineEditor;
}

void OrvReshapeProducer::setPolylineEditor(OrvProducer* editor) {
    if (editor == polylineEditor) return;
    delete polylineEditor;
    polylineEditor = editor;
    if (editor && stage) stage->producers.remove(editor);  // owned here, not by the stage
}

int OrvReshapeProducer::editorActive() const {
    return polylineEditor && polylineEditor->isActive();
}

Orv2dRect OrvReshapeProducer::computeBox(const Orv2dRect& b, const Orv2dPoint& p,
                                         OrvPosition position) {
    long bx = b.x, by = b.y, bw = (long)b.w, bh = (long)b.h;
    long fx, fy, mx, my;  // fixed and moving corners
    switch (position) {
        case 5:
            fx = bx + bw;
            fy = by + bh;
            mx = p.x;
            my = p.y;
            break;
        case 9:
            fx = bx + bw;
            fy = by;
            mx = p.x;
            my = p.y;
            break;
        case 6:
            fx = bx;
            fy = by + bh;
            mx = p.x;
            my = p.y;
            break;
        case 10:
            fx = bx;
            fy = by;
            mx = p.x;
            my = p.y;
            break;
        case 4:
            fx = bx + bw;
            fy = by + bh;
            mx = bx;
            my = p.y;
            break;
        case 8:
            fx = bx;
            fy = by;
            mx = bx + bw;
            my = p.y;
            break;
        case 1:
            fx = bx + bw;
            fy = by + bh;
            mx = p.x;
            my = by;
            break;
        case 2:
            fx = bx;
            fy = by;
            mx = p.x;
            my = by + bh;
            break;
        default:
            return b;
    }
    Orv2dRect r;
    r.x = fx < mx ? fx : mx;
    r.y = fy < my ? fy : my;
    r.w = (unsigned)labs(mx - fx);
    r.h = (unsigned)labs(my - fy);
    return r;
}

Orv2dRect OrvReshapeProducer::compute2d() const {
    return computeBox(actor->bbox2d(toStage()), map(point), position);
}

// The new box in the actor's own space.
static Orv2dRect OrvUnmapRect(const Orv2dMatrix* m, Orv2dRect r) {
    if (m) m->inverse(r);
    return r;
}

int OrvReshapeProducer::input2d(const OrvEvent& event) {
    if (editorActive()) return polylineEditor->input2d(event);
    Orv2dPoint p(event.x, event.y);
    switch (event.type) {
        case OrvButtonDown: {
            OrvActor* poly = stage->contains(p, toStage(), 0, "Orv2dPolyline");
            if (poly && poly->isSelected() && polylineEditor) {
                actor = nullptr;
                return polylineEditor->input2d(event);
            }
            if (!(event.key & mask)) return 0;
            OrvActor* a = stage->containsDragger(p, toStage(), 0, nullptr);
            if (!a || !a->isSelected()) {
                actor = nullptr;
                return 0;
            }
            Orv2dDragger* dragger = a->dragger2d(p, toStage());
            if (!dragger || !a->isResizeable() || !dragger->position) {
                actor = nullptr;
                return 0;
            }
            position = dragger->position;
            stage->setCursor(director()->positionToCursor(position));
            actor = a;
            gesture = OrvNewGesture();
            point = unmap(p);
            expose2d(nullptr);
            return 1;
        }
        case OrvPointerMoved: {
            OrvActor* poly = stage->contains(p, toStage(), 0, "Orv2dPolyline");
            if (poly && poly->isSelected() && polylineEditor) return polylineEditor->input2d(event);
            OrvActor* a = stage->containsDragger(p, toStage(), 0, nullptr);
            Orv2dDragger* dragger = a && a->isSelected() ? a->dragger2d(p, toStage()) : nullptr;
            if (dragger) {
                stage->setCursor(director()->positionToCursor(dragger->position));
                return 1;
            }
            stage->setCursor(nullptr);
            return 0;
        }
        case OrvKeyDown:
            return polylineEditor ? polylineEditor->input2d(event) : 0;
        case OrvButtonDragged:
            if (!actor) return 0;
            if (!immediate) {
                expose2d(nullptr);
                point = snapped(p.x, p.y);
                expose2d(nullptr);
            } else {
                point = snapped(p.x, p.y);
                activate2d(actor, OrvUnmapRect(toStage(), compute2d()));
            }
            return 1;
        case OrvButtonUp: {
            if (!actor) return 0;
            stage->setCursor(nullptr);
            if (!immediate) expose2d(nullptr);
            point = snapped(p.x, p.y);
            Orv2dRect r = OrvUnmapRect(toStage(), compute2d());
            OrvActor* a = actor;
            actor = nullptr;
            activate2d(a, r);
            return 1;
        }
        default:
            return 0;
    }
}

void OrvReshapeProducer::expose2d(const Orv2dRegion* region) {
    if (!actor || immediate) return;
    // The ghost of a reshape is the actor itself, drawn by exclusive or.
    Orv2dRect r = compute2d();
    Orv2dMatrix m = OrvCompute2dMatrix(actor->bbox2d(nullptr), r);
    int opened = OrvPrepareIfNone(stage, region);
    actor->setMode(OrvXorMode);
    actor->draw2d(stage, &m);
    actor->setMode(OrvCopyMode);
    if (opened) stage->end();
}

void OrvReshapeProducer::activate2d(OrvActor* a, const Orv2dRect& r) {
    OrvEditBeginGeometry(stage, &a, 1);
    stage->beginDrawing();
    a->beginDrawing(1);
    a->apply2d(OrvCompute2dMatrix(a->bbox2d(nullptr), r));
    a->flushDrawing(1);
    stage->flushDrawing(1);
    OrvEditEndGeometry(stage, "Reshape", gesture);
    stage->contentsChanged();
}

void OrvReshapeProducer::activate3d(OrvActor*, const Orv3dPoint&, const Orv3dPoint&) {}

void OrvReshapeProducer::abort() {
    actor = nullptr;
    if (polylineEditor) polylineEditor->abort();
}

void OrvReshapeProducer::init() {
    actor = nullptr;
    if (polylineEditor) polylineEditor->init();
}

void OrvRotateProducer::activate3d(const Orv3dPoint&, const Orv3dPoint&) {}
