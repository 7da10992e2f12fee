// The roles in a scene: the button and toggle machines of the stage, and the
// move role's drag in the view plane through the picked point. A press grabs
// the theater's pointer events for the actor until the release, so that the
// drag and the release come back to the role wherever the pointer goes.
#include "orv/role.h"

#include "orv/actor.h"
#include "orv/director.h"
#include "orv/scene.h"
#include "orv/theater.h"

namespace {

int isActivationKey(unsigned short key) {
    return key == 32 || key == 13;
}

void grab(OrvTheater* theater, OrvActor* actor) {
    theater->grabbed = actor;
}

void release(OrvTheater* theater, OrvActor* actor) {
    if (theater->grabbed == actor) theater->grabbed = nullptr;
}

const Orv3dMatrix* toScene(const OrvScene* scene, const OrvActor* actor) {
    return actor->isInvariant() ? &scene->invariantToScene : &scene->worldToScene;
}

const Orv3dMatrix* toWorld(const OrvScene* scene, const OrvActor* actor) {
    return actor->isInvariant() ? &scene->sceneToInvariant : &scene->sceneToWorld;
}

}  // namespace

// ---------------------------------------------------------------------------
// Button and toggle
// ---------------------------------------------------------------------------

int OrvButtonRole::input3d(OrvActor* actor, const OrvEvent& event, OrvTheater* theater,
                           OrvScene* scene) {
    // A button number and a key code share the field, so both meet the mask.
    if (!(event.key & mask)) return 0;
    switch (event.type) {
        case OrvButtonDown:
            grab(theater, actor);
            actor->invert();
            pressed = 1;
            return 1;
        case OrvButtonDragged: {
            Orv2dPoint p((int32_t)event.x, (int32_t)event.y);
            followPointer(actor, pressed, actor->contains3d(p, scene));
            return 1;
        }
        case OrvButtonUp:
            release(theater, actor);
            if (pressed) {
                pressed = 0;
                actor->invert();
                validate(actor, theater, scene);
            }
            return 1;
        case OrvKeyDown:
            if (!isActivationKey(event.key)) return 0;
            pressed = 1;
            actor->invert();
            return 1;
        case OrvKeyUp:
            if (!pressed) return 0;
            pressed = 0;
            actor->invert();
            validate(actor, theater, scene);
            return 1;
        default:
            return 0;
    }
}

int OrvToggleRole::input3d(OrvActor* actor, const OrvEvent& event, OrvTheater* theater,
                           OrvScene* scene) {
    if (!(event.key & mask)) return 0;
    switch (event.type) {
        case OrvButtonDown:
            grab(theater, actor);
            actor->invert();
            pressed = 1;
            return 1;
        case OrvButtonDragged: {
            Orv2dPoint p((int32_t)event.x, (int32_t)event.y);
            return followPointer(actor, pressed, actor->contains3d(p, scene));
        }
        case OrvButtonUp:
            release(theater, actor);
            if (!pressed) return 0;
            pressed = 0;
            validate(actor, theater, scene);  // no second invert: the look stays toggled
            return 1;
        case OrvKeyDown:
            if (!isActivationKey(event.key)) return 0;
            actor->invert();
            validate(actor, theater, scene);
            return 1;
        default:
            return 0;
    }
}

// ---------------------------------------------------------------------------
// Move role
// ---------------------------------------------------------------------------

int OrvMoveRole::input3d(OrvActor* actor, const OrvEvent& event, OrvTheater* theater,
                         OrvScene* scene) {
    if (!(event.key & mask)) return 0;
    if (!actor->isMoveable()) return 1;
    Orv2dPoint p((int32_t)event.x, (int32_t)event.y);
    const Orv3dMatrix* back = toWorld(scene, actor);
    switch (event.type) {
        case OrvButtonDown: {
            // The depth in the window of the picked point: what lies there stays under
            // the pointer, in perspective too.
            const OrvPick3dRecord& record = theater->director->pick3dRecord();
            Orv3dPoint picked = record.scene == scene && record.actor == actor
                                    ? record.point
                                    : actor->bbox3d(1).center();
            toScene(scene, actor)->apply(picked);
            pickDepth = picked.z;
            start = current = p;
            start3d = Orv3dPoint((float)p.x, (float)p.y, pickDepth);
            back->apply(start3d);
            current3d = start3d;
            active = 1;
            grab(theater, actor);
            ghost3d(scene, actor);
            return 1;
        }
        case OrvButtonDragged:
            if (!active) return 0;
            if (!immediate) ghost3d(scene, actor);
            current = p;
            current3d = Orv3dPoint((float)p.x, (float)p.y, pickDepth);
            back->apply(current3d);
            if (!immediate) {
                ghost3d(scene, actor);
            } else {
                validate3d(actor, theater,
                           Orv3dPoint(current3d.x - start3d.x, current3d.y - start3d.y,
                                      current3d.z - start3d.z));
                start = current;
                start3d = current3d;
            }
            return 1;
        case OrvButtonUp:
            if (!active) return 0;
            release(theater, actor);
            if (!immediate) {
                ghost3d(scene, actor);
                if (!(current == start))
                    validate3d(actor, theater,
                               Orv3dPoint(current3d.x - start3d.x, current3d.y - start3d.y,
                                          current3d.z - start3d.z));
            }
            active = 0;
            return 1;
        default:
            return 0;
    }
}

void OrvMoveRole::validate3d(OrvActor* actor, OrvTheater* theater, const Orv3dPoint& delta) {
    actor->translate(delta.x, delta.y, delta.z, 1);
    if (theater) theater->contentsChanged();
}

void OrvMoveRole::ghost3d(OrvScene* scene, OrvActor* actor) {
    if (immediate || !active || current == start) return;
    Orv3dPoint corners[8];
    actor->bbox3d(1).getVertex(corners, Orv3dMatrix());
    const Orv3dMatrix* m = toScene(scene, actor);
    for (Orv3dPoint& c : corners) {
        Orv4dPoint q(c.x + current3d.x - start3d.x, c.y + current3d.y - start3d.y,
                     c.z + current3d.z - start3d.z, 1);
        m->apply(q);
        // A corner behind the eye has no place in the window: no ghost.
        if (q.w <= 1e-6f) return;
        c = q.to3dPoint();
    }
    scene->boxGhost(corners, 0);
}
