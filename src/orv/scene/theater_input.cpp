// Who gets an input event of a scene: the balloon timer first, then the
// accelerators, the scene's producer and the actors, in one of two orders that
// the scene's roleProducerAcc chooses; the actors by grab, focus and hit, with
// the highlight and enter/leave bookkeeping; and the producers of the scenes.
#include "orv/theater.h"

#include <cstring>

#include "orv/actor.h"
#include "orv/balloon.h"
#include "orv/director.h"
#include "orv/producer.h"
#include "orv/role.h"
#include "orv/scene.h"
#include "orv/view.h"
#include "orv/gadgets/balloon_theater.h"

namespace {

int usable(const OrvActor* a) {
    return a && a->isSensitive() && a->isVisible();
}

// What "send to" means for an actor: its role's answer, 0 without a role.
int sendToRole(OrvActor* a, const OrvEvent& event, OrvTheater* theater, OrvScene* scene) {
    OrvRole* role = a ? a->getRole() : nullptr;
    return role ? (role->input3d(a, event, theater, scene) != 0) : 0;
}

// The balloon timer's pick in a scene, once it has made sure that the theater and
// the scene it noted are still there.
OrvActor* balloonPick(OrvDirector* director, OrvTheater* theater, OrvScene* scene,
                      const Orv2dPoint& point) {
    if (!director->theaters || !director->theaters->find(theater)) return nullptr;
    if (!theater->scenes.find(scene) || scene->destroying) return nullptr;
    return theater->contains(point, scene, 0, 0, nullptr);
}

struct _OrvBalloonPickInstaller_ {
    _OrvBalloonPickInstaller_() { OrvBalloonTheaterPick = balloonPick; }
} balloonPickInstaller;

}  // namespace

// ---------------------------------------------------------------------------
// The order of offers
// ---------------------------------------------------------------------------

void OrvTheater::handleInput(OrvView* view, const OrvEvent& event) {
    // A view that holds the director's grab receives all input: events of this window
    // reach the theater only while no other view holds it.
    OrvView* grab = director->grabView();
    if ((grab && grab != view) || destroying) return;
    OrvScene* scene = sceneOfView(view);
    if (scene) {
        if (event.type == OrvLeaveWindow)
            director->suspendBalloonTimer();
        else
            director->runBalloonTimer(this, scene, event);
        OrvProducer* producer = getProducer(scene);
        if (scene->roleProducerAcc) {
            // The accelerators first; the actors follow whatever they said.
            if (dispatchToAccelerators(scene, event))
                dispatchToActors(scene, event);
            else if (!producer || !producer->input3d(event))
                dispatchToActors(scene, event);
        } else if (producer) {
            if (!producer->input3d(event)) dispatchToActors(scene, event);
            if (event.type == OrvPointerMoved) {
                // Highlight goes on under a producer, for actors with or without a role.
                Orv2dPoint p((int32_t)event.x, (int32_t)event.y);
                setHighlighted(p, contains(p, scene, 0, 1, nullptr));
            }
        } else if (!dispatchToAccelerators(scene, event)) {
            dispatchToActors(scene, event);
        }
    }
    OrvBalloonStage* balloon = director->balloonStage;
    if (balloon) {
        if (event.type == OrvLeaveWindow)
            director->hideBalloon();
        else
            balloon->move(Orv2dPoint((int32_t)event.globalX, (int32_t)event.globalY));
    }
}

int OrvTheater::dispatchToActors(OrvScene* scene, const OrvEvent& event) {
    if (!scene) return 0;
    if (!anyFocus && event.type == OrvKeyUp && event.key == OrvTabKey && focus) {
        // The focus moves on the release, so the press can go elsewhere.
        if (event.modifiers & OrvShiftModifier)
            moveFocusBefore();
        else
            moveFocusAfter();
        return 1;
    }
    Orv2dPoint p((int32_t)event.x, (int32_t)event.y);
    switch (event.type) {
        case OrvKeyUp:
        case OrvKeyDown: {
            if (!focus && !grabbed) return nofocusDispatch(scene, event);
            if (grabbed) return sendToRole(grabbed, event, this, scene);
            // With the focus set, keys go to the actor under the pointer.
            OrvActor* hit = contains(p, scene, 1, 0, nullptr);
            return usable(hit) ? sendToRole(hit, event, this, scene) : 0;
        }
        case OrvButtonUp:
        case OrvButtonDragged:
            if (!focus && !grabbed) return nofocusDispatch(scene, event);
            return grabbed ? sendToRole(grabbed, event, this, scene) : 0;
        case OrvButtonDown: {
            if (!focus && !grabbed) return nofocusDispatch(scene, event);
            OrvActor* a = focus || !grabbed ? contains(p, scene, 1, 0, nullptr) : grabbed;
            if (!usable(a) || !a->getRole()) {
                setFocus(nullptr);
                return 0;
            }
            // The role's press runs in a nest that it may take over by clearing
            // lockedFlush; otherwise the nest ends here, drawing the press at once.
            lockedFlush = 1;
            beginDrawing();
            setFocus(a);
            int answer = sendToRole(a, event, this, scene);
            if (lockedFlush) {
                lockedFlush = 0;
                flushDrawing(1);
            }
            return answer;
        }
        case OrvDoubleClick: {
            OrvActor* a = focus || !grabbed ? contains(p, scene, 1, 0, nullptr) : grabbed;
            return usable(a) ? sendToRole(a, event, this, scene) : 0;
        }
        case OrvPointerMoved: {
            OrvActor* old = lastMoved;
            OrvActor* a = contains(p, scene, 1, 0, nullptr);
            if (!usable(a)) a = nullptr;
            setHighlighted(p, a);
            lastMoved = a;
            if (a == old) {
                if (!a) return 0;
                OrvRole* role = a->getRole();
                if (role && role->allowPointerMoved())
                    return role->input3d(a, event, this, scene) != 0;
                return 0;
            }
            if (old && old->getRole()) {
                OrvEvent leave = event;
                leave.type = OrvLeaveActor;
                old->getRole()->input3d(old, leave, this, scene);
            }
            if (!a || !a->getRole()) return 0;
            OrvEvent enter = event;
            enter.type = OrvEnterActor;
            return a->getRole()->input3d(a, enter, this, scene) != 0;
        }
        default:
            return 0;
    }
}

int OrvTheater::nofocusDispatch(OrvScene* scene, const OrvEvent& event) {
    OrvActor* target;
    switch (event.type) {
        case OrvButtonUp:
        case OrvButtonDragged:
            target = pressed;
            break;
        case OrvKeyUp:
        case OrvKeyDown:
        case OrvButtonDown:
        case OrvDoubleClick:
            target = contains(Orv2dPoint((int32_t)event.x, (int32_t)event.y), scene, 0, 0, nullptr);
            break;
        default:
            return 0;
    }
    if (event.type == OrvButtonDown && !event.modifiers) pressed = target;
    if (!target || !target->isSensitive() || !target->getRole()) return 0;
    return sendToRole(target, event, this, scene);
}

// ---------------------------------------------------------------------------
// Producers: one current producer a scene
// ---------------------------------------------------------------------------

OrvProducer* OrvTheater::getProducer(const OrvScene* scene) const {
    return scene ? (OrvProducer*)const_cast<OrvAList&>(sceneProducers).get(scene) : nullptr;
}

void OrvTheater::setProducer(OrvProducer* p) {
    if (!p) {
        // None in any scene.
        while (sceneProducers.first) {
            OrvAListItem* item = sceneProducers.first;
            OrvProducer* old = (OrvProducer*)item->value;
            sceneProducers.remove(item->key);
            if (old) old->abort();
            if (!destroying) producerChanged(old, nullptr);
        }
        return;
    }
    if (!p->scene) {
        OrvError("OrvTheater::setProducer : Must be a scene producer.\n");
        return;
    }
    OrvProducer* old = getProducer(p->scene);
    if (old == p) return;
    p->setTheater(this);
    if (p->theater != this) return;
    setFocus(nullptr);
    if (old) old->abort();
    if (!sceneProducers.replace(p->scene, p)) sceneProducers.append(p->scene, p);
    p->init();
    if (!destroying) producerChanged(old, p);
}

void OrvTheater::pushProducer(OrvProducer* p) {
    if (!p) return;
    if (!p->scene) {
        OrvError("OrvTheater::pushProducer : Must be a scene producer.\n");
        return;
    }
    OrvProducer* old = getProducer(p->scene);
    if (old == p) return;
    p->setTheater(this);
    if (p->theater != this) return;
    // Unlike setProducer: no init and no word to the hooks.
    if (old) old->abort();
    p->previous = old;
    if (!sceneProducers.replace(p->scene, p)) sceneProducers.append(p->scene, p);
}

void OrvTheater::remove(OrvProducer* p) {
    if (!p) return;
    for (OrvAListItem* item = sceneProducers.first; item; item = item->next) {
        if (item->value != p) continue;
        sceneProducers.remove(item->key);
        p->abort();
        if (!destroying) producerChanged(p, nullptr);
        return;
    }
}
