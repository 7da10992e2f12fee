// Who gets an input event of a stage: callbacks, the producer, the
// accelerators, and the actors by grab, focus and hit; with the focus,
// highlight and enter/leave bookkeeping that goes with it.
#include <cstdlib>
#include <cstring>

#include "orv/actor.h"
#include "orv/director.h"
#include "orv/producer.h"
#include "orv/role.h"
#include "orv/stage.h"
#include "orv/theater.h"
#include "route_internal.h"

static int OrvIsUsable(const OrvActor* a) {
    return a && a->isSensitive() && a->isVisible();
}

// What "send to" means for an actor: its role's answer, 0 without a role.
static int OrvSendToRole(OrvActor* a, const OrvEvent& event, OrvStage* stage) {
    OrvRole* role = a->getRole();
    return role ? (role->input2d(a, event, stage) != 0) : 0;
}

// ---------------------------------------------------------------------------
// The walk over stages and the highlight record
// ---------------------------------------------------------------------------

void OrvForEachPlainStage(void (*visit)(OrvStage*, void*), void* data) {
    OrvList* directors = OrvGetAllDirectors();
    if (!directors) return;
    for (OrvLink* d = directors->first; d; d = d->next) {
        OrvHashTable* views = ((OrvDirector*)d->value)->views;
        if (!views) continue;
        // Collected first: a visit may change the table.
        OrvList stages;
        for (unsigned i = 0; i < views->size; i++) {
            if (!views->buckets[i]) continue;
            for (OrvAListItem* item = views->buckets[i]->first; item; item = item->next) {
                OrvView* view = (OrvView*)item->value;
                const char* name = view ? view->className() : nullptr;
                if (name && !strcmp(name, "OrvStage")) stages.append(view);
            }
        }
        for (OrvLink* l = stages.first; l; l = l->next) visit((OrvStage*)l->value, data);
    }
}

// Director to the stage that holds its highlighted actor.
static OrvAList* OrvHighlightStages() {
    static OrvAList* table = new OrvAList();
    return table;
}

OrvStage* OrvGetHighlightStage(const OrvDirector* director) {
    return (OrvStage*)OrvHighlightStages()->get(director);
}

// A stage that dies while it holds the highlight is forgotten.
static void OrvForgetHighlightStage(OrvView* view, void*) {
    OrvAList* table = OrvHighlightStages();
    for (OrvAListItem* item = table->first; item; item = item->next)
        if (item->value == (void*)view) item->value = nullptr;
}

void OrvSetHighlightStage(OrvDirector* director, OrvStage* stage) {
    OrvAList* table = OrvHighlightStages();
    // Asked on every motion: nothing to do, and nothing allocated, when unchanged.
    if (table->find(director) && table->get(director) == stage) return;
    if (!table->replace(director, stage)) table->insert(director, stage);
    if (stage) {
        stage->removeDestroy(OrvForgetHighlightStage);
        stage->onDestroy(OrvForgetHighlightStage, nullptr);
    }
}

// Director to the theater that holds its highlighted actor. A theater that
// goes forgets itself here (OrvTheater's destructor).
static OrvAList* OrvHighlightTheaters() {
    static OrvAList* table = new OrvAList();
    return table;
}

OrvTheater* OrvGetHighlightTheater(const OrvDirector* director) {
    return (OrvTheater*)OrvHighlightTheaters()->get(director);
}

void OrvSetHighlightTheater(OrvDirector* director, OrvTheater* theater) {
    OrvAList* table = OrvHighlightTheaters();
    if (table->find(director) && table->get(director) == theater) return;
    if (!table->replace(director, theater)) table->insert(director, theater);
}

// ---------------------------------------------------------------------------
// The order of offers
// ---------------------------------------------------------------------------

void OrvStage::handleInput(const OrvEvent& event) {
    if (event.type != OrvLeaveWindow)
        director->runBalloonTimer(this, event);
    else
        director->suspendBalloonTimer();
    callInput(event);
    if (producer) {
        if (!producer->input2d(event)) dispatchToAccelerators(event);
        if (event.type == OrvPointerMoved) {
            // Highlight goes on under a producer, for actors with or without a role.
            Orv2dPoint p(event.x, event.y);
            OrvActor* a = contains(p, nullptr, 0, nullptr);
            if (!OrvIsUsable(a)) a = nullptr;
            setHighlighted(p, a);
        }
    } else if (!dispatchToActors(event)) {
        dispatchToAccelerators(event);
    }
    OrvStage* hs = OrvGetHighlightStage(director);
    if (event.type == OrvLeaveWindow && hs) {
        hs->setCursor(nullptr);
        hs->setHighlighted(Orv2dPoint(event.globalX, event.globalY), nullptr);
    }
    // The pointer is on a stage, so no actor of a scene is under it.
    OrvTheater* ht = OrvGetHighlightTheater(director);
    if (ht) ht->setHighlighted(Orv2dPoint(event.x, event.y), nullptr);
}

int OrvStage::dispatchToActors(const OrvEvent& event) {
    if (grabActor) {
        OrvRole* role = grabActor->getRole();
        if (role) role->input2d(grabActor, event, this);
        return 1;
    }
    const unsigned long E = focusEnabled;
    OrvActor* F = focusActor;
    if (event.type == OrvKeyUp && event.key == OrvTabKey && E) {
        // The focus moves on the release, so the press can go elsewhere.
        if (event.modifiers & 0x100)
            moveFocusBefore();
        else
            moveFocusAfter();
        return 1;
    }
    Orv2dPoint p(event.x, event.y);
    switch (event.type) {
        case OrvKeyUp:
        case OrvKeyDown: {
            if (!E && !F) return nofocusDispatch(event);
            if (F) return OrvSendToRole(F, event, this);
            OrvActor* hit = contains(p, nullptr, 1, nullptr);
            if (!hit || !OrvIsUsable(hit)) return 0;
            return OrvSendToRole(hit, event, this);
        }
        case OrvButtonUp:
        case OrvButtonDragged:
            if (!E && !F) return nofocusDispatch(event);
            if (F) return OrvSendToRole(F, event, this);
            return 0;
        case OrvButtonDown: {
            if (!E && !F) return nofocusDispatch(event);
            OrvActor* a = (E || !F) ? contains(p, nullptr, 1, nullptr) : F;
            if (!OrvIsUsable(a)) a = nullptr;
            if (!a || !a->getRole()) {
                setFocus(nullptr);
                return 0;
            }
            setFocus(a);
            return OrvSendToRole(a, event, this);
        }
        case OrvDoubleClick: {
            OrvActor* hit = contains(p, nullptr, 1, nullptr);
            if (!OrvIsUsable(hit)) return 0;
            return OrvSendToRole(hit, event, this);
        }
        case OrvPointerMoved: {
            OrvActor* old = pointerActor;
            OrvActor* a = contains(p, nullptr, 1, nullptr);
            if (!OrvIsUsable(a)) a = nullptr;
            setHighlighted(p, a);
            pointerActor = a;
            if (a == old) {
                if (!a) return 0;
                OrvRole* role = a->getRole();
                if (role && role->allowPointerMoved()) return role->input2d(a, event, this) != 0;
                return 0;
            }
            if (old && old->getRole()) {
                OrvEvent leave = event;
                leave.type = OrvLeaveActor;
                old->getRole()->input2d(old, leave, this);
            }
            if (!a) return 0;
            if (a->getRole()) {
                OrvEvent enter = event;
                enter.type = OrvEnterActor;
                return a->getRole()->input2d(a, enter, this) != 0;
            }
            return 0;
        }
        default:
            return 0;
    }
}

int OrvStage::nofocusDispatch(const OrvEvent& event) {
    OrvActor* target;
    switch (event.type) {
        case OrvButtonUp:
        case OrvButtonDragged:
            target = pressedActor;
            break;
        case OrvKeyUp:
        case OrvKeyDown:
        case OrvButtonDown:
        case OrvDoubleClick:
            target = contains(Orv2dPoint(event.x, event.y), nullptr, 0, nullptr);
            break;
        default:
            return 0;
    }
    if (event.type == OrvButtonDown && !(event.modifiers & 0xF)) pressedActor = target;
    if (!target || !target->isSensitive() || !target->getRole()) return 0;
    return target->getRole()->input2d(target, event, this);
}

// ---------------------------------------------------------------------------
// Focus
// ---------------------------------------------------------------------------

static void OrvSendFocusEvent(OrvStage* stage, OrvActor* actor, OrvEventType type) {
    OrvRole* role = actor ? actor->getRole() : nullptr;
    if (!role) return;
    OrvEvent event;
    memset((void*)&event, 0, sizeof event);
    event.type = type;
    role->input2d(actor, event, stage);
}

void OrvStage::sendFocusIn(OrvActor* actor) {
    OrvSendFocusEvent(this, actor, OrvFocusIn);
}
void OrvStage::sendFocusOut(OrvActor* actor) {
    OrvSendFocusEvent(this, actor, OrvFocusOut);
}

void OrvStage::setFocus(OrvActor* actor) {
    if (!focusEnabled) return;
    if (actor && (!actor->isSensitive() || !actor->isVisible())) return;
    if (actor == focusActor) return;
    beginDrawing();
    Orv2dRegion region(25);
    if (focusActor) {
        focusActor->computeFocusRegion2d(region, transformer);
        sendFocusOut(focusActor);
    }
    if (actor) {
        actor->computeFocusRegion2d(region, transformer);
        sendFocusIn(actor);
    }
    focusActor = actor;
    invalidate(region);
    flushDrawing(1);
}

static int OrvCanTakeFocus(const OrvActor* a) {
    return a->getRole() && OrvIsUsable(a);
}

// Reading order: by y, then by x.
static int OrvCompareReading(const OrvReadingPlace& a, const OrvReadingPlace& b) {
    if (a.y != b.y) return a.y < b.y ? -1 : 1;
    if (a.x != b.x) return a.x < b.x ? -1 : 1;
    return 0;
}

OrvActor* OrvFocusStep(OrvActor** all, unsigned count, OrvActor* focus, int direction,
                       OrvReadingPlace (*placeOf)(const OrvActor*)) {
    OrvActor* best = nullptr;
    OrvReadingPlace bestPlace{0, 0};
    if (focus) {
        OrvReadingPlace f = placeOf(focus);
        for (unsigned i = 0; i < count; i++) {
            OrvActor* a = all[i];
            if (a == focus || !OrvCanTakeFocus(a)) continue;
            OrvReadingPlace p = placeOf(a);
            if (direction * OrvCompareReading(p, f) < 0) continue;
            if (!best || direction * OrvCompareReading(p, bestPlace) <= 0) {
                best = a;
                bestPlace = p;
            }
        }
        if (best) return best;
    }
    for (unsigned i = 0; i < count; i++) {
        OrvActor* a = all[i];
        if (!OrvCanTakeFocus(a)) continue;
        OrvReadingPlace p = placeOf(a);
        if (!best || direction * OrvCompareReading(p, bestPlace) <= 0) {
            best = a;
            bestPlace = p;
        }
    }
    return best;
}

// On a stage, the corner of the actor's own box.
static OrvReadingPlace OrvStagePlace(const OrvActor* a) {
    Orv2dRect b = a->bbox2d(nullptr);
    return OrvReadingPlace{(double)b.x, (double)b.y};
}

void OrvStage::moveFocusAfter() {
    unsigned count = 0;
    OrvActor** all = objects(count);
    if (!all) return;
    OrvActor* next = OrvFocusStep(all, count, focusActor, 1, OrvStagePlace);
    delete[] all;
    if (next && next != focusActor) setFocus(next);
}

void OrvStage::moveFocusBefore() {
    unsigned count = 0;
    OrvActor** all = objects(count);
    if (!all) return;
    OrvActor* previous = OrvFocusStep(all, count, focusActor, -1, OrvStagePlace);
    delete[] all;
    if (previous && previous != focusActor) setFocus(previous);
}

// ---------------------------------------------------------------------------
// Highlight
// ---------------------------------------------------------------------------

OrvActor* OrvStage::getHighlighted() const {
    return highlightedActor;
}

void OrvStage::setHighlighted(const Orv2dPoint& point, OrvActor* actor) {
    OrvDirector* d = director;
    OrvStage* other = OrvGetHighlightStage(d);
    if (other && other != this) other->setHighlighted(point, nullptr);
    if (!highlightEnabled) return;
    if (!actor) {
        if (highlightedActor) {
            OrvActor* old = highlightedActor;
            highlightedActor = nullptr;
            old->setHighlighted(0, point, 1);
        }
        OrvSetHighlightStage(d, nullptr);
        return;
    }
    if (!OrvIsUsable(actor)) return;
    if (actor != highlightedActor) {
        if (highlightedActor) highlightedActor->setHighlighted(0, point, 1);
        highlightedActor = actor;
    }
    actor->setHighlighted(1, point, 1);
    OrvSetHighlightStage(d, this);
}

// ---------------------------------------------------------------------------
// Callbacks and quitting
// ---------------------------------------------------------------------------

void OrvRegisterCallback(OrvAList& table, const char* callbackName, OrvCallback* callback) {
    OrvKey* key = OrvGetKey(callbackName, 1);
    if (!callback) {
        // The entry stays, emptied, so that nothing can release it twice.
        for (OrvAListItem* item = table.first; item; item = item->next)
            if (item->key == key) {
                OrvCallback* old = (OrvCallback*)item->value;
                item->value = nullptr;
                OrvRelease(old);
                break;
            }
    } else {
        OrvCount(callback);
    }
    // Inserted in front: a later registration shadows an earlier one.
    table.insert(key, callback);
}

OrvCallback* OrvFindCallback(const OrvAList& table, const char* callbackName) {
    OrvKey* key = OrvGetKey(callbackName, 0);
    if (!key) return nullptr;
    return (OrvCallback*)const_cast<OrvAList&>(table).get(key);
}

void OrvRemoveCallback(OrvAList& table, const char* callbackName) {
    OrvKey* key = OrvGetKey(callbackName, 0);
    if (!key) return;
    OrvCallback* c = (OrvCallback*)table.get(key);
    table.remove(key);
    OrvRelease(c);
}

void OrvRunCallback(const OrvAList& table, OrvActor* actor) {
    if (!actor) return;
    OrvKey* callbackKey = actor->getCallbackName();
    if (callbackKey) {
        OrvCallback* c = (OrvCallback*)const_cast<OrvAList&>(table).get(callbackKey);
        if (c) {
            c->activate(actor);
            return;
        }
    }
    OrvCallback* own = actor->getCallback();
    if (own) own->activate(actor);
}

void OrvReleaseCallbacks(OrvAList& table) {
    while (table.first) {
        OrvAListItem* item = table.first;
        OrvCallback* c = (OrvCallback*)item->value;
        table.first = item->next;
        item->next = nullptr;
        delete item;
        OrvRelease(c);
    }
}

void OrvStage::registerCallback(const char* callbackName, OrvCallback* callback) {
    OrvRegisterCallback(callbacks, callbackName, callback);
}

OrvCallback* OrvStage::getCallback(const char* callbackName) const {
    return OrvFindCallback(callbacks, callbackName);
}

void OrvStage::removeCallback(const char* callbackName) {
    OrvRemoveCallback(callbacks, callbackName);
}

void OrvStage::callCallback(OrvActor* actor) const {
    OrvRunCallback(callbacks, actor);
}

void OrvStage::onExit(OrvExitCallback* callback) {
    if (callback == exitCallback) return;
    OrvCount(callback);
    OrvExitCallback* old = exitCallback;
    exitCallback = callback;
    OrvRelease(old);
}

void OrvStage::handleQuit() {
    if (exitCallback)
        exitCallback->exit(this);
    else
        OrvView::handleQuit();
}

// ---------------------------------------------------------------------------
// Producers
// ---------------------------------------------------------------------------

void OrvStage::setProducer(OrvProducer* p) {
    if (p == producer) return;
    if (p && p->scene) {
        OrvError("OrvStage::setProducer : Must be a stage producer.\n");
        return;
    }
    if (p) setFocus(nullptr);
    OrvProducer* old = producer;
    if (old) old->abort();
    producer = p;
    if (p) p->init();
    if (!destroying) producerChanged(p, old);
}

void OrvStage::pushProducer(OrvProducer* p) {
    if (p && p->scene) {
        OrvError("OrvStage::pushProducer : Must be a stage producer.\n");
        return;
    }
    // Unlike setProducer: no init and no word to the hooks.
    if (producer) producer->abort();
    if (p) p->previous = producer;
    producer = p;
}

void OrvStage::remove(OrvProducer* p) {
    if (p && p == producer) setProducer(nullptr);
}

OrvProducer* OrvStage::getProducer() const {
    return producer;
}

void OrvStage::releaseInput() {
    if (OrvGetHighlightStage(director) == this) OrvSetHighlightStage(director, nullptr);
    OrvReleaseCallbacks(callbacks);
    OrvRelease(exitCallback);
    exitCallback = nullptr;
    removeAccelerators(1);
}
