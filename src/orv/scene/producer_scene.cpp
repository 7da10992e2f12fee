// Producers in a scene: the scene form of the base class, and the 3D machines
// of the move, rectangle, select-rectangle and select producers. They follow
// the 2D ones; points are window pixels of the scene, picks go through the
// theater, and ghosts are drawn by the scene.
#include "orv/producer.h"

#include <cstdlib>

#include "orv/actor.h"
#include "orv/director.h"
#include "orv/scene.h"
#include "orv/stage.h"
#include "orv/theater.h"

// ---------------------------------------------------------------------------
// The base class in a scene
// ---------------------------------------------------------------------------

OrvProducer::OrvProducer(OrvScene* forScene, OrvProducer* previousProducer)
    : scene(forScene), theater(nullptr), stage(nullptr), previous(previousProducer) {
    if (forScene) forScene->producers.append(this);
}

OrvDirector* OrvProducer::sceneDirector() const {
    return scene && scene->getMakeUp() ? scene->getMakeUp()->director : nullptr;
}

void OrvProducer::setScene(OrvScene* s) {
    if (s && s == scene && !stage) return;
    if (theater) {
        OrvTheater* t = theater;
        theater = nullptr;
        t->remove(this);
    }
    if (stage) {
        stage->producers.remove(this);
        if (stage->producer == this) stage->setProducer(nullptr);
        stage = nullptr;
    }
    // A scene that is going deletes its list itself.
    if (scene && scene != s && !scene->destroying) scene->producers.remove(this);
    scene = s;
}

const Orv3dMatrix* OrvProducer::toScene(unsigned long invariant) const {
    if (!scene) return nullptr;
    return invariant ? &scene->invariantToScene : &scene->worldToScene;
}

const Orv3dMatrix* OrvProducer::toWorld(unsigned long invariant) const {
    if (!scene) return nullptr;
    return invariant ? &scene->sceneToInvariant : &scene->sceneToWorld;
}

static Orv2dRect OrvNormalisedRect(const Orv2dPoint& a, const Orv2dPoint& b) {
    Orv2dRect r;
    r.x = a.x < b.x ? a.x : b.x;
    r.y = a.y < b.y ? a.y : b.y;
    r.w = (unsigned)labs((long)b.x - (long)a.x);
    r.h = (unsigned)labs((long)b.y - (long)a.y);
    return r;
}

// ---------------------------------------------------------------------------
// Move
// ---------------------------------------------------------------------------

OrvMoveProducer::OrvMoveProducer(OrvScene* forScene, OrvProducer* previousProducer)
    : OrvProducer(forScene, previousProducer), immediate(0), mask(1), active(0), wasSelected(0),
      gesture(0), pickDepth(0), pickInvariant(0) {}

Orv3dPoint OrvMoveProducer::unproject(long x, long y) const {
    Orv3dPoint p((float)x, (float)y, pickDepth);
    const Orv3dMatrix* m = toWorld(pickInvariant);
    if (m) m->apply(p);
    return p;
}

int OrvMoveProducer::input3d(const OrvEvent& event) {
    if (!scene || !theater || !(event.key & mask)) return 0;
    Orv2dPoint p((int32_t)event.x, (int32_t)event.y);
    switch (event.type) {
        case OrvButtonDown: {
            start = current = p;
            OrvActor* a = theater->contains(p, scene, 0, 0, nullptr);
            if (!a) {
                theater->deSelect();
                return 0;
            }
            if (event.modifiers == OrvShiftModifier) {
                a->setSelected(1);  // shift adds to the selection
                return 1;
            }
            if (!a->isSelected()) {
                theater->beginDrawing();
                theater->deSelect();
                a->setSelected(1);
                theater->flushDrawing(1);
                wasSelected = 0;
            } else {
                wasSelected = 1;
            }
            if (!a->isMoveable()) return 1;
            // The depth in the window of the picked point: what lies there stays
            // under the pointer, in perspective too.
            pickInvariant = a->isInvariant();
            const OrvPick3dRecord& record = director()->pick3dRecord();
            Orv3dPoint picked =
                record.scene == scene && record.actor == a ? record.point : a->bbox3d(1).center();
            toScene(pickInvariant)->apply(picked);
            pickDepth = picked.z;
            start3d = current3d = unproject(p.x, p.y);
            active = 1;
            return 1;
        }
        case OrvButtonDragged:
            if (!active) return 0;
            if (!immediate) {
                expose3d(nullptr);
                current = p;
                current3d = unproject(p.x, p.y);
                expose3d(nullptr);
            } else {
                current = p;
                current3d = unproject(p.x, p.y);
                activate3d(start3d, current3d);
                start = current;
                start3d = current3d;
            }
            return 1;
        case OrvButtonUp:
            if (!active) return 0;
            if (immediate) {
                active = 0;
                return 0;
            }
            expose3d(nullptr);
            active = 0;
            if (current == start) {
                // A plain click on a selected actor deselects everything.
                if (wasSelected) theater->deSelect();
                return 0;
            }
            activate3d(start3d, current3d);
            return 0;  // declined, so that accelerators may see the release
        default:
            return 0;
    }
}

void OrvMoveProducer::expose3d(const Orv2dRegion* region) {
    if (immediate || !active || !scene || !theater || current == start) return;
    unsigned count = 0;
    OrvActor** selected = theater->selections(count);
    if (!selected) return;
    Orv3dVolume box = selected[0]->bbox3d(1);
    for (unsigned i = 1; i < count; i++) box.extendBy(selected[i]->bbox3d(1));
    delete[] selected;
    Orv3dPoint corners[8];
    box.getVertex(corners, Orv3dMatrix());
    const Orv3dMatrix* m = toScene(pickInvariant);
    for (Orv3dPoint& c : corners) {
        Orv4dPoint q(c.x + current3d.x - start3d.x, c.y + current3d.y - start3d.y,
                     c.z + current3d.z - start3d.z, 1);
        m->apply(q);
        // A corner behind the eye has no place in the window: no ghost.
        if (q.w <= 1e-6f) return;
        c = q.to3dPoint();
    }
    if (region) scene->ghostClip(region);
    scene->boxGhost(corners, region ? 1 : 0);
}

struct _OrvTranslation3d_ {
    Orv3dPoint delta;
};

static void OrvTranslateOne3d(OrvActor* actor, void* data) {
    const Orv3dPoint& d = ((_OrvTranslation3d_*)data)->delta;
    actor->translate(d.x, d.y, d.z, 1);
}

void OrvMoveProducer::activate3d(const Orv3dPoint& from, const Orv3dPoint& to) {
    if (!theater) return;
    _OrvTranslation3d_ t{Orv3dPoint(to.x - from.x, to.y - from.y, to.z - from.z)};
    theater->beginDrawing();
    theater->applyToSelections(OrvTranslateOne3d, &t);
    theater->flushDrawing(1);
    theater->contentsChanged();
}

// ---------------------------------------------------------------------------
// Reshape (its handles in a scene come with the trackball's draggers)
// ---------------------------------------------------------------------------

OrvReshapeProducer::OrvReshapeProducer(OrvScene* forScene, OrvProducer* previousProducer)
    : OrvProducer(forScene, previousProducer), position(0), immediate(0), mask(1), actor(nullptr),
      gesture(0), polylineEditor(nullptr) {}

// ---------------------------------------------------------------------------
// Rectangle and select rectangle
// ---------------------------------------------------------------------------

OrvRectangleProducer::OrvRectangleProducer(OrvScene* forScene, OrvProducer* previousProducer)
    : OrvProducer(forScene, previousProducer), active(0), mask(1), ghostClipSet(0) {}

int OrvRectangleProducer::input3d(const OrvEvent& event) {
    if (!scene) return 0;
    switch (event.type) {
        case OrvButtonDown:
            if (event.modifiers & (OrvMod3Modifier | OrvLockModifier)) {
                OrvDirector* d = director();
                if (d) d->bell(0);
                return 0;
            }
            if (!(event.key & mask) || event.modifiers) return 0;
            start = end = Orv2dPoint((int32_t)event.x, (int32_t)event.y);
            start3d = end3d = Orv3dPoint((float)start.x, (float)start.y, 0);
            active = 1;
            return 1;
        case OrvButtonDragged: {
            if (!active || !(event.modifiers & (mask | OrvShiftModifier))) return 0;
            expose3d(nullptr);
            Orv2dPoint e((int32_t)event.x, (int32_t)event.y);
            if (event.modifiers & OrvShiftModifier) {
                // Shift forces a square.
                long dx = (long)e.x - start.x, dy = (long)e.y - start.y;
                long adx = labs(dx), ady = labs(dy);
                long side = adx < ady ? adx : ady;
                if (dx && dy)
                    e = Orv2dPoint((int32_t)(start.x + dx * side / adx),
                                   (int32_t)(start.y + dy * side / ady));
            }
            end = e;
            end3d = Orv3dPoint((float)end.x, (float)end.y, 0);
            expose3d(nullptr);
            return 1;
        }
        case OrvButtonUp:
            if (!active) return 0;
            expose3d(nullptr);
            active = 0;
            activate3d(OrvNormalisedRect(start, end));  // a zero-size rectangle is delivered too
            return 1;
        default:
            return 0;
    }
}

void OrvRectangleProducer::expose3d(const Orv2dRegion* region) {
    if (!scene || !active || start == end) return;
    if (region) {
        scene->ghostClip(region);
        ghostClipSet = 1;
    }
    ghost3d(OrvNormalisedRect(start, end));
    ghostClipSet = 0;
}

void OrvRectangleProducer::ghost3d(const Orv2dRect& rect) {
    if (scene) scene->rectangleGhost(rect, ghostClipSet);
}

void OrvSelectRectangleProducer::activate3d(const Orv2dRect& rect) {
    if (!scene || !theater) return;
    Orv2dRegion region(25);
    region.extendBy(rect);
    unsigned count = 0;
    OrvActor** all = theater->objects(count);
    theater->beginDrawing();
    theater->deSelect();
    for (unsigned i = 0; i < count; i++) {
        OrvActor* a = all[i];
        OrvTheaterLayer* layer = theater->getLayer(a);
        if (!a->isVisible() || !layer || !layer->isVisible(scene)) continue;
        if (a->inside3d(region, toScene(a->isInvariant())) && !a->isSelected()) a->setSelected(1);
    }
    theater->flushDrawing(1);
    delete[] all;
}

// ---------------------------------------------------------------------------
// Select
// ---------------------------------------------------------------------------

void OrvSelectProducer::adopt(OrvProducer* p) {
    if (stage) stage->producers.remove(p);
    if (scene) scene->producers.remove(p);
}

OrvSelectProducer::OrvSelectProducer(OrvScene* forScene, OrvProducer* previousProducer)
    : OrvProducer(forScene, previousProducer), move(new OrvMoveProducer(forScene)),
      reshape(new OrvReshapeProducer(forScene)), selectRectangle(nullptr),
      pick3d(new OrvSelectRectangleProducer(forScene)), rotate3d(nullptr), extra(nullptr),
      inUse(nullptr), mask1(1), mask2(2) {
    adopt(move);
    adopt(reshape);
    adopt(pick3d);
}

int OrvSelectProducer::input3d(const OrvEvent& event) {
    if (extra && extra->isActive() && extra->input3d(event)) {
        inUse = nullptr;
        return 1;
    }
    switch (event.type) {
        case OrvButtonDown: {
            if (!(event.key & (mask1 | mask2)) || !scene || !theater) return 0;
            Orv2dPoint p((int32_t)event.x, (int32_t)event.y);
            OrvActor* a = theater->contains(p, scene, 0, 0, nullptr);
            inUse = a ? (OrvProducer*)move : pick3d;
            return inUse ? inUse->input3d(event) : 0;
        }
        case OrvButtonUp: {
            if (!(event.key & (mask1 | mask2))) return 0;
            OrvProducer* p = inUse;
            inUse = nullptr;
            return p ? p->input3d(event) : 0;
        }
        case OrvPointerMoved:
        case OrvKeyDown:
            return reshape ? reshape->input3d(event) : 0;
        default:
            return inUse ? inUse->input3d(event) : 0;
    }
}

void OrvSelectProducer::expose3d(const Orv2dRegion* region) {
    if (inUse) inUse->expose3d(region);
}
