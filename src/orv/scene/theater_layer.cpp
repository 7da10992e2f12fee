// One layer of a theater: its actors in drawing order, and its visibility and
// selectability in each scene that shows the theater.
#include "orv/theater.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "orv/actor.h"
#include "orv/resource.h"
#include "orv/scene.h"
#include "../stage/link_chains.h"
#include "theater_internal.h"

#include "pick_tree.h"

namespace {

// The projected box of the actor, as the scene's matrices place it.
bool meets(const OrvActor* actor, const OrvScene* scene, const Orv2dRect& box) {
    Orv2dRegion region(Orv2dRegion::EmbeddedCount);
    actor->bboxToScene(region,
                       actor->isInvariant() ? &scene->invariantToScene : &scene->worldToScene, 1);
    return region.intersects(box);
}

// An actor whose background colour lets light through.
bool transparent(const OrvActor* actor) {
    const OrvColor* color = actor->makeUp ? actor->makeUp->background() : nullptr;
    return color && color->transparency() != 1.0f;
}

}  // namespace

OrvTheaterLayer::OrvTheaterLayer(OrvTheater* owner, unsigned short layerNumber)
    : theater(owner), actors(nullptr), count(0), capacity(0), number(layerNumber) {
    capacity = 4;
    actors = (OrvActor**)calloc(capacity, sizeof(OrvActor*));
}

OrvTheaterLayer::~OrvTheaterLayer() {
    _OrvFreeLayerPickTree_(pickTree);
    free(actors);
}

void OrvTheaterLayer::grow() {
    capacity *= 2;
    actors = (OrvActor**)realloc(actors, capacity * sizeof(OrvActor*));
}

void OrvTheaterLayer::append(OrvActor* actor) {
    // One slot always stays free.
    if (capacity == count + 1) grow();
    actors[count++] = actor;
}

void OrvTheaterLayer::insert(OrvActor* actor) {
    if (capacity == count + 1) grow();
    memmove(actors + 1, actors, count * sizeof(OrvActor*));
    actors[0] = actor;
    count++;
}

int OrvTheaterLayer::position(const OrvActor* actor) const {
    for (unsigned i = 0; i < count; i++)
        if (actors[i] == actor) return (int)i;
    return -1;
}

void OrvTheaterLayer::remove(OrvActor* actor) {
    int i = position(actor);
    if (i < 0) return;
    memmove(actors + i, actors + i + 1, (count - (unsigned)i - 1) * sizeof(OrvActor*));
    count--;
}

void OrvTheaterLayer::push(OrvActor* actor) {
    if (position(actor) < 0) return;
    remove(actor);
    append(actor);
}

void OrvTheaterLayer::pop(OrvActor* actor) {
    if (position(actor) < 0) return;
    remove(actor);
    insert(actor);
}

void OrvTheaterLayer::apply(void (*function)(OrvActor*, void*), void* data) {
    for (unsigned i = 0; i < count; i++) function(actors[i], data);
}

void OrvTheaterLayer::empty(unsigned long deleteThem) {
    OrvKey* keys[2] = {OrvTheaterFromKey(), OrvTheaterToKey()};
    // Taken out first, so that an actor going away finds no layer holding it.
    unsigned n = count;
    OrvActor** all = actors;
    count = 0;
    capacity = 0;
    actors = nullptr;
    for (int links = 1; links >= 0; links--) {
        for (unsigned i = 0; i < n; i++) {
            OrvActor* actor = all[i];
            if (!actor || (theater->isLink(actor) ? 1 : 0) != links) continue;
            actor->setTheater(nullptr);
            // The link tables are the theater's: they go with the actors, deleted or not.
            for (OrvKey* key : keys) {
                OrvLinkChainFree(OrvLinkChain(actor, key));
                actor->removeUserProperty(key);
            }
            if (deleteThem) delete actor;
        }
    }
    free(all);
    if (!theater->destroying) {
        capacity = 4;
        actors = (OrvActor**)calloc(capacity, sizeof(OrvActor*));
    }
}

// ---------------------------------------------------------------------------
// Per scene
// ---------------------------------------------------------------------------

void OrvTheaterLayer::append(const OrvScene* scene, unsigned long flags) {
    if (!sceneFlags.replace(scene, (void*)(uintptr_t)flags))
        sceneFlags.append(scene, (void*)(uintptr_t)flags);
}

void OrvTheaterLayer::remove(const OrvScene* scene) {
    sceneFlags.remove(scene);
}

static void setFlag(OrvAList& flags, const OrvScene* scene, uintptr_t bit, unsigned long on) {
    if (!flags.find(scene)) return;
    uintptr_t word = (uintptr_t)flags.get(scene);
    flags.replace(scene, (void*)(on ? word | bit : word & ~bit));
}

void OrvTheaterLayer::setVisible(const OrvScene* scene, unsigned long on) {
    setFlag(sceneFlags, scene, VisibleBit, on);
}

unsigned long OrvTheaterLayer::isVisible(const OrvScene* scene) const {
    return ((uintptr_t) const_cast<OrvAList&>(sceneFlags).get(scene) & VisibleBit) ? 1 : 0;
}

void OrvTheaterLayer::setSelectable(const OrvScene* scene, unsigned long on) {
    setFlag(sceneFlags, scene, SelectableBit, on);
}

unsigned long OrvTheaterLayer::isSelectable(const OrvScene* scene) const {
    return ((uintptr_t) const_cast<OrvAList&>(sceneFlags).get(scene) & SelectableBit) ? 1 : 0;
}

// ---------------------------------------------------------------------------
// Drawing
// ---------------------------------------------------------------------------

void OrvTheaterLayer::draw(const OrvScene* scene, const Orv2dRegion* region) {
    Orv2dRect box = region ? region->bbox : Orv2dRect();
    for (unsigned i = 0; i < count; i++) {
        OrvActor* actor = actors[i];
        if (!actor->isVisible()) continue;
        if (region && !meets(actor, scene, box)) continue;
        actor->render3d(scene);
    }
}

void OrvTheaterLayer::drawTransparency(const OrvScene* scene, const Orv2dRegion* region,
                                       unsigned long opaque, OrvList* transparentOnes) {
    Orv2dRect box = region ? region->bbox : Orv2dRect();
    for (unsigned i = 0; i < count; i++) {
        OrvActor* actor = actors[i];
        if (!actor->isVisible()) continue;
        if (region && !meets(actor, scene, box)) continue;
        bool clear = transparent(actor);
        if (transparentOnes && clear)
            transparentOnes->append(actor);
        else if (clear != (opaque != 0))
            actor->render3d(scene);
    }
}
