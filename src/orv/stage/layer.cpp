// A stage layer: an array of actors in painting order, with the paint and
// hit walks that the stage runs over it.
#include <cstdlib>
#include <cstring>

#include "orv/layer.h"
#include "orv/stage.h"

OrvStageLayer::OrvStageLayer(OrvStage* forStage, unsigned short layerNumber)
    : stage(forStage), actors(nullptr), count(0), capacity(0), visible(1), enabled(1),
      number(layerNumber), block(nullptr), offset(0) {
    init();
}

OrvStageLayer::~OrvStageLayer() {
    if (actors) {
        deleteActors(0);
        free(block);
        block = actors = nullptr;
        offset = 0;
        count = 0;
    }
    if (stage && !stage->destroying) stage->layers.remove(this);
}

void OrvStageLayer::init() {
    capacity = 4;
    count = 0;
    offset = 0;
    block = actors = (OrvActor**)calloc(capacity, sizeof(OrvActor*));
}

void OrvStageLayer::grow() {
    uint32_t larger = capacity ? capacity * 2 : 4;
    OrvActor** next = (OrvActor**)calloc(larger, sizeof(OrvActor*));
    if (actors) memcpy(next, actors, count * sizeof(OrvActor*));
    free(block);
    block = actors = next;
    offset = 0;
    capacity = larger;
}

void OrvStageLayer::compact() {
    if (!offset) return;
    memmove(block, actors, count * sizeof(OrvActor*));
    memset(block + count, 0, offset * sizeof(OrvActor*));
    actors = block;
    offset = 0;
}

void OrvStageLayer::append(OrvActor* actor) {
    if (!actors) init();
    // One slot always stays free.
    if (capacity == count + 1) grow();
    if (offset + count >= capacity) compact();
    actors[count++] = actor;
}

void OrvStageLayer::insert(OrvActor* actor) {
    if (!actors) init();
    if (capacity == count + 1) grow();
    if (offset) {
        actors--;
        offset--;
    } else {
        memmove(actors + 1, actors, count * sizeof(OrvActor*));
    }
    actors[0] = actor;
    count++;
}

int OrvStageLayer::remove(OrvActor* actor) {
    int i = position(actor);
    if (i < 0) return 0;
    // Whichever side of the gap is shorter closes it; the order stays.
    uint32_t below = (uint32_t)i, above = count - (uint32_t)i - 1;
    if (below < above) {
        memmove(actors + 1, actors, below * sizeof(OrvActor*));
        actors[0] = nullptr;
        actors++;
        offset++;
        count--;
    } else {
        memmove(actors + i, actors + i + 1, above * sizeof(OrvActor*));
        actors[--count] = nullptr;
    }
    return 1;
}

int OrvStageLayer::position(const OrvActor* actor) const {
    if (!actors) return -1;
    for (uint32_t i = 0; i < count; i++)
        if (actors[i] == actor) return (int)i;
    return -1;
}

int OrvStageLayer::moveTo(OrvActor* actor, uint32_t index) {
    int at = position(actor);
    if (at < 0) return 0;
    if (index >= count) index = count - 1;
    uint32_t from = (uint32_t)at;
    if (from == index) return 0;
    if (from < index)
        memmove((void*)&actors[from], (void*)&actors[from + 1], (index - from) * sizeof(OrvActor*));
    else
        memmove((void*)&actors[index + 1], (void*)&actors[index],
                (from - index) * sizeof(OrvActor*));
    actors[index] = actor;
    return 1;
}

int OrvStageLayer::pop(OrvActor* actor) {
    if (count == 0) return 0;
    int i = position(actor);
    if (i < 0 || (uint32_t)i == count - 1) return 0;
    // An exchange: the last actor drops to the popped one's place.
    actors[i] = actors[count - 1];
    actors[count - 1] = actor;
    return 1;
}

int OrvStageLayer::push(OrvActor*) {
    // The exchange with the bottom actor would ask for an empty layer that
    // holds the actor above index 0, which cannot be: push changes nothing.
    return 0;
}

void OrvStageLayer::apply(OrvActorFunction function, void* data) {
    for (uint32_t i = 0; i < count; i++) function(actors[i], data);
}

// Hit order is the reverse of paint order: the last actor painted is on top.
OrvActor* OrvStageLayer::contains(const Orv2dPoint& point, const Orv2dMatrix* matrix,
                                  unsigned long withRole, const char* type) const {
    if (count == 0 || !visible) return nullptr;
    for (int i = (int)count - 1; i >= 0; i--) {
        OrvActor* actor = actors[i];
        if (withRole && !actor->getRole()) continue;
        if (type && !actor->isSubtypeOf(type)) continue;
        if (!actor->isVisible() || !actor->isSelectable()) continue;
        if (actor->contains2d(point, matrix)) return actor;
    }
    return nullptr;
}

OrvActor* OrvStageLayer::containsDragger(const Orv2dPoint& point, const Orv2dMatrix* matrix,
                                         unsigned long withRole, const char* type) const {
    if (count == 0 || !visible) return nullptr;
    Orv2dRegion handles(25);
    for (int i = (int)count - 1; i >= 0; i--) {
        OrvActor* actor = actors[i];
        if (withRole && !actor->getRole()) continue;
        if (type && !actor->isSubtypeOf(type)) continue;
        if (!actor->isVisible() || !actor->isSelected()) continue;
        actor->draggerRegions2d(handles, matrix);
        for (unsigned short k = 0; k < handles.count; k++)
            if (handles.rectangle(k).contains(point)) return actor;
    }
    return nullptr;
}

void OrvStageLayer::draw(OrvCanvas* canvas, const Orv2dMatrix* matrix, const Orv2dRegion* region) {
    // Most actors of a large layer are only tested against the region, and
    // the test waits on the actor's memory: fetch a few actors ahead.
    const uint32_t ahead = 8;
    for (uint32_t i = 0; i < count; i++) {
        if (i + ahead < count) __builtin_prefetch(actors[i + ahead]);
        OrvActor* actor = actors[i];
        if (!actor->isVisible()) continue;
        if (region && !actor->intersects2d(*region, matrix)) continue;
        // Handles lie under the actor they belong to.
        if (actor->isSelected()) actor->draggerDraw2d(canvas, matrix);
        actor->draw2d(canvas, matrix);
    }
}

void OrvStageLayer::deleteActors(unsigned long dropLinkProperties) {
    // Walk a copy: removing an actor changes the array. Links go first, since
    // removing an actor would otherwise remove its links a second time.
    uint32_t n = count;
    OrvActor** copy = (OrvActor**)malloc((n + 1) * sizeof(OrvActor*));
    memcpy(copy, actors, n * sizeof(OrvActor*));
    for (int pass = 0; pass < 2; pass++) {
        for (uint32_t i = 0; i < n; i++) {
            OrvActor* actor = copy[i];
            if (!actor) continue;
            if (pass == 0 && !actor->getProperty(OrvLinkBit)) continue;
            if (dropLinkProperties && stage) {
                actor->removeUserProperty(stage->fromKey);
                actor->removeUserProperty(stage->toKey);
            }
            if (stage) stage->remove(actor, 0);
            delete actor;
            copy[i] = nullptr;
        }
    }
    free(copy);
}

void OrvStageLayer::empty(unsigned long deleteAll) {
    if (actors && deleteAll) deleteActors(1);
    free(block);
    block = actors = nullptr;
    offset = 0;
    count = 0;
    capacity = 0;
    if (!stage || !stage->destroying) init();
}
