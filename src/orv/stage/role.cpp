// Roles: the registry of shared instances, the button and toggle machines,
// and the per-actor move and reshape roles.
#include "orv/undo.h"
#include "orv/role.h"

#include <cstdlib>
#include <cstring>

#include "orv/actor.h"
#include "orv/director.h"
#include "orv/stage.h"
#include "orv/theater.h"
#include "route_internal.h"

OrvStringHashTable* OrvRole::_roles = nullptr;
int orvinitOrvRole::_counter = 0;

orvinitOrvRole::orvinitOrvRole() {
    if (_counter++) return;
    OrvRegisterRoleInstance(new OrvButtonRole());
    OrvRegisterRoleInstance(new OrvToggleRole());
    OrvRegisterRoleInstance(new OrvMoveRole());
    OrvRegisterRoleInstance(new OrvReshapeRole());
}

void OrvRegisterRoleInstance(OrvRole* role) {
    if (!role) return;
    if (!OrvRole::_roles) OrvRole::_roles = new OrvStringHashTable(1000);
    OrvRole::_roles->put(role->className(), role);
}

OrvRole* OrvGetRole(const char* name) {
    if (!name || !OrvRole::_roles) return nullptr;
    return (OrvRole*)OrvRole::_roles->get(name);
}

// ---------------------------------------------------------------------------
// Callbacks
// ---------------------------------------------------------------------------

void OrvCallback::activate(OrvActor*) {}

void OrvExitCallback::exit(OrvStage* stage) {
    if (stage) delete stage->director;
    OrvExit(0);
}

// ---------------------------------------------------------------------------
// The base role
// ---------------------------------------------------------------------------

static void OrvDropRoleIn(OrvStage* stage, void* role) {
    unsigned count = 0;
    OrvActor** actors = stage->objects(count);
    for (unsigned i = 0; i < count; i++)
        if (actors[i]->getRole() == role) actors[i]->setRole((OrvRole*)nullptr);
    delete[] actors;
}

OrvRole::~OrvRole() {
    OrvForEachPlainStage(OrvDropRoleIn, this);
    OrvList* directors = OrvGetAllDirectors();
    if (directors)
        for (OrvLink* d = directors->first; d; d = d->next) ((OrvDirector*)d->value)->remove(this);
    // The class name is out of reach here: look the instance up by value.
    if (_roles)
        for (unsigned i = 0; i < _roles->size; i++) {
            OrvAList* bucket = _roles->buckets[i];
            for (OrvAListItem* item = bucket ? bucket->first : nullptr; item; item = item->next)
                if (item->value == this) {
                    _roles->remove((const char*)item->key);
                    return;
                }
        }
}

int OrvRole::input2d(OrvActor*, const OrvEvent&, OrvStage*) {
    return 0;
}
int OrvRole::input3d(OrvActor*, const OrvEvent&, OrvTheater*, OrvScene*) {
    return 0;
}

// ---------------------------------------------------------------------------
// Button and toggle
// ---------------------------------------------------------------------------

static int OrvIsActivationKey(unsigned short key) {
    return key == 32 || key == 13;
}

int OrvButtonRole::input2d(OrvActor* actor, const OrvEvent& event, OrvStage* stage) {
    // A button number and a key code share the field, so both meet the mask.
    if (!(event.key & mask)) return 0;
    switch (event.type) {
        case OrvButtonDown:
            actor->invert();
            pressed = 1;
            return 1;
        case OrvButtonDragged: {
            Orv2dPoint p(event.x, event.y);
            const Orv2dMatrix* m = stage->transformer;
            followPointer(actor, pressed, actor->contains2d(p, m));
            return 1;
        }
        case OrvButtonUp:
            if (pressed) {
                pressed = 0;
                actor->invert();
                validate(actor, stage);
            }
            return 1;
        case OrvKeyDown:
            if (!OrvIsActivationKey(event.key)) return 0;
            pressed = 1;
            actor->invert();
            return 1;
        case OrvKeyUp:
            if (!pressed) return 0;
            pressed = 0;
            actor->invert();
            validate(actor, stage);
            return 1;
        default:
            return 0;
    }
}

void OrvButtonRole::validate(OrvActor* actor, OrvStage* stage) {
    stage->callCallback(actor);
}

int OrvRole::followPointer(OrvActor* actor, unsigned long& pressed, unsigned long inside) {
    if ((pressed != 0) == (inside != 0)) return 0;
    pressed = inside ? 1 : 0;
    actor->invert();
    return 1;
}

void OrvButtonRole::validate(OrvActor* actor, OrvTheater* theater, OrvScene* scene) {
    if (theater) theater->callCallback(actor, scene);
}

int OrvToggleRole::input2d(OrvActor* actor, const OrvEvent& event, OrvStage* stage) {
    if (!(event.key & mask)) return 0;
    switch (event.type) {
        case OrvButtonDown:
            actor->invert();
            pressed = 1;
            return 1;
        case OrvButtonDragged: {
            Orv2dPoint p(event.x, event.y);
            const Orv2dMatrix* m = stage->transformer;
            return followPointer(actor, pressed, actor->contains2d(p, m));
        }
        case OrvButtonUp:
            if (!pressed) return 0;
            pressed = 0;
            validate(actor, stage);  // no second invert: the look stays toggled
            return 1;
        case OrvKeyDown:
            if (!OrvIsActivationKey(event.key)) return 0;
            actor->invert();
            validate(actor, stage);
            return 1;
        default:
            return 0;
    }
}

void OrvToggleRole::validate(OrvActor* actor, OrvStage* stage) {
    stage->callCallback(actor);
}
void OrvToggleRole::validate(OrvActor* actor, OrvTheater* theater, OrvScene* scene) {
    if (theater) theater->callCallback(actor, scene);
}

// ---------------------------------------------------------------------------
// Move role
// ---------------------------------------------------------------------------

OrvMoveRole::OrvMoveRole() : immediate(0), active(0), gesture(0), pickDepth(0) {}

static Orv2dPoint OrvUnmapSnapped(OrvStage* stage, const OrvEvent& event) {
    Orv2dPoint p = stage->snapToGrid(Orv2dPoint(event.x, event.y));
    if (stage->transformer) stage->transformer->inverse(p);
    return p;
}

int OrvMoveRole::input2d(OrvActor* actor, const OrvEvent& event, OrvStage* stage) {
    if (!(event.key & mask)) return 0;
    if (!actor->isMoveable()) return 1;
    switch (event.type) {
        case OrvButtonDown:
            start = current = OrvUnmapSnapped(stage, event);
            active = 1;
            gesture = OrvNewGesture();
            ghost2d(stage, actor);
            return 1;
        case OrvButtonDragged:
            if (!active) return 0;
            if (!immediate) {
                ghost2d(stage, actor);
                current = OrvUnmapSnapped(stage, event);
                ghost2d(stage, actor);
            } else {
                current = OrvUnmapSnapped(stage, event);
                Orv2dPoint delta(current.x - start.x, current.y - start.y);
                OrvEditBeginGeometry(stage, &actor, 1);
                actor->beginDrawing(1);
                validate2d(actor, stage, delta);
                actor->flushDrawing(1);
                OrvEditEndGeometry(stage, "Move", gesture);
                start = current;
            }
            return 1;
        case OrvButtonUp:
            if (!active) return 0;
            if (!immediate) {
                ghost2d(stage, actor);
                Orv2dPoint delta(current.x - start.x, current.y - start.y);
                if (delta.x || delta.y) {
                    OrvEditBeginGeometry(stage, &actor, 1);
                    actor->beginDrawing(1);
                    validate2d(actor, stage, delta);
                    actor->flushDrawing(1);
                    OrvEditEndGeometry(stage, "Move", gesture);
                }
            }
            active = 0;
            return 1;
        default:
            return 0;
    }
}

void OrvMoveRole::validate2d(OrvActor* actor, OrvStage* stage, const Orv2dPoint& delta) {
    actor->apply2d(Orv2dMatrix(delta));
    stage->contentsChanged();
}

void OrvMoveRole::ghost2d(OrvStage* stage, OrvActor* actor) {
    if (immediate || !active) return;
    Orv2dPoint a = start, b = current;
    if (stage->transformer) {
        stage->transformer->apply(a);
        stage->transformer->apply(b);
    }
    if (a.x == b.x && a.y == b.y) return;
    Orv2dMatrix m;
    if (stage->transformer) m = *stage->transformer;
    m.compose(Orv2dMatrix(Orv2dPoint(b.x - a.x, b.y - a.y)));
    stage->prepare(nullptr);
    actor->setMode(OrvXorMode);
    actor->draw2d(stage, &m);
    actor->setMode(OrvCopyMode);
    stage->end();
}

// ---------------------------------------------------------------------------
// Reshape role
// ---------------------------------------------------------------------------

OrvReshapeRole::OrvReshapeRole() : active(0), gesture(0) {}

Orv2dRect OrvReshapeRole::symmetricBox(const Orv2dRect& b, const Orv2dPoint& p) {
    long cx = b.x + (long)(b.w / 2), cy = b.y + (long)(b.h / 2);
    long hw = labs(cx - p.x), hh = labs(cy - p.y);
    Orv2dRect r;
    r.x = p.x < cx ? p.x : 2 * cx - p.x;
    r.y = p.y < cy ? p.y : 2 * cy - p.y;
    r.w = 2 * hw;
    r.h = 2 * hh;
    return r;
}

int OrvReshapeRole::input2d(OrvActor* actor, const OrvEvent& event, OrvStage* stage) {
    if (!(event.key & mask)) return 0;
    Orv2dPoint p(event.x, event.y);
    if (stage->transformer) stage->transformer->inverse(p);
    switch (event.type) {
        case OrvButtonDown:
            box = symmetricBox(actor->bbox2d(nullptr), p);
            active = 1;
            gesture = OrvNewGesture();
            ghost = box;
            if (stage->transformer) stage->transformer->apply(ghost);
            ghost2d(ghost, stage);
            return 1;
        case OrvButtonDragged:
            if (!active) return 0;
            ghost2d(ghost, stage);
            box = symmetricBox(actor->bbox2d(nullptr), p);
            ghost = box;
            if (stage->transformer) stage->transformer->apply(ghost);
            ghost2d(ghost, stage);
            return 1;
        case OrvButtonUp:
            if (!active) return 0;
            ghost2d(ghost, stage);
            OrvEditBeginGeometry(stage, &actor, 1);
            actor->beginDrawing(1);
            validate2d(actor, stage, box);
            actor->flushDrawing(1);
            OrvEditEndGeometry(stage, "Reshape", gesture);
            active = 0;
            return 1;
        default:
            return 0;
    }
}

void OrvReshapeRole::validate2d(OrvActor* actor, OrvStage* stage, const Orv2dRect& r) {
    actor->apply2d(OrvCompute2dMatrix(actor->bbox2d(nullptr), r));
    stage->contentsChanged();
}

void OrvReshapeRole::ghost2d(const Orv2dRect& rect, OrvStage* stage) {
    if (!rect.w || !rect.h) return;
    stage->prepare(nullptr);
    stage->rectangle(stage->ghostMakeUp, rect, 0);
    stage->end();
}
