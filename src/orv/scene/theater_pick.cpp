// Which actor of a theater lies under a point of one of its scenes. Layers
// are asked from back to front and the actors of a layer from the last drawn
// to the first; among the hits the one nearest the eye wins (by the window
// depth of the point the pick recorded), the first found on a tie. A selected
// actor's handles answer for their layer at once. Large layers ask their
// hierarchy which actors may be hit; the order and the answer stay the walk's.
#include <vector>

#include "orv/actor.h"
#include "orv/director.h"
#include "orv/scene.h"
#include "orv/theater.h"

#include "pick_tree.h"

namespace {
struct Found {
    bool any = false;
    OrvPick3dRecord record;
    float z = 0;
};
}  // namespace

static const Orv3dMatrix& toSceneOf(const OrvScene* scene, const OrvActor* actor) {
    return actor->isInvariant() ? scene->invariantToScene : scene->worldToScene;
}

static bool considered(const OrvActor* actor, unsigned long role, unsigned long highlightable,
                       const char* type) {
    if (role && !actor->getRole()) return false;
    if (highlightable && !actor->isHighlightAllowed()) return false;
    if (type && !actor->isSubtypeOf(type)) return false;
    return actor->isVisible() && actor->isSelectable();
}

static bool onHandle(const OrvActor* actor, const Orv2dPoint& point, const OrvScene* scene) {
    Orv2dRegion handles(Orv2dRegion::EmbeddedCount);
    actor->draggerRegions3d(handles, &toSceneOf(scene, actor));
    for (unsigned short k = 0; k < handles.count; k++)
        if (handles.rectangle(k).contains(point)) return true;
    return false;
}

// A hit without a point of its own stands at the centre of the actor's box.
static OrvPick3dRecord boxRecord(const OrvScene* scene, OrvActor* actor) {
    OrvPick3dRecord r;
    r.scene = scene;
    r.type = OrvPickBox;
    r.actor = actor;
    r.point = actor->bbox3d(1).center();
    return r;
}

static void keep(Found& found, const OrvPick3dRecord& record, const OrvScene* scene) {
    Orv3dPoint q = record.point;
    toSceneOf(scene, record.actor).apply(q);
    if (found.any && !(q.z < found.z)) return;
    found.any = true;
    found.record = record;
    found.z = q.z;
}

static void pickLayer(const OrvTheaterLayer* layer, const Orv2dPoint& point, const OrvScene* scene,
                      unsigned long role, unsigned long highlightable, const char* type,
                      bool handlesOnly, OrvDirector* director, Found& found) {
    for (unsigned i = layer->count; i-- > 0;) {
        OrvActor* actor = layer->actors[i];
        if (!actor->isSelected() || !considered(actor, role, highlightable, type)) continue;
        if (onHandle(actor, point, scene)) {
            keep(found, boxRecord(scene, actor), scene);
            return;
        }
    }
    if (handlesOnly) return;
    static std::vector<uint32_t> numbers;
    std::vector<uint32_t> mine;
    mine.swap(numbers);  // an actor's own pick may come back here
    if (!_OrvLayerPickCandidates_(layer, point, scene->worldToScene, mine)) {
        mine.resize(layer->count);
        for (unsigned i = 0; i < layer->count; i++) mine[i] = layer->count - 1 - i;
    }
    for (uint32_t i : mine) {
        if (i >= layer->count) continue;
        OrvActor* actor = layer->actors[i];
        if (!considered(actor, role, highlightable, type)) continue;
        director->clearPick3dRecord();
        if (!actor->contains3d(point, scene)) continue;
        const OrvPick3dRecord& r = director->pick3dRecord();
        keep(found, r.actor == actor ? r : boxRecord(scene, actor), scene);
    }
    mine.swap(numbers);
}

static OrvActor* pickActor(const OrvTheater* theater, const Orv2dPoint& point,
                           const OrvScene* scene, unsigned long role, unsigned long highlightable,
                           const char* type, bool handlesOnly) {
    OrvDirector* director = theater->director;
    if (!scene || !director) return nullptr;
    Found best;
    for (OrvLink* l = theater->layers.first; l; l = l->next) {
        const OrvTheaterLayer* layer = (const OrvTheaterLayer*)l->value;
        if (!layer->count || !layer->isVisible(scene)) continue;
        Found found;
        pickLayer(layer, point, scene, role, highlightable, type, handlesOnly, director, found);
        if (found.any && (!best.any || found.z < best.z)) best = found;
    }
    if (!best.any) {
        director->clearPick3dRecord();
        return nullptr;
    }
    const OrvPick3dRecord& r = best.record;
    director->setPick3dRecord(r.scene, r.type, r.actor, r.polygon, &r.point, r.vertexIndex,
                              r.edgeIndex);
    return r.actor;
}

OrvActor* OrvTheater::contains(const Orv2dPoint& point, const OrvScene* scene, unsigned long role,
                               unsigned long highlightable, const char* type) const {
    return pickActor(this, point, scene, role, highlightable, type, false);
}

OrvActor* OrvTheater::containsDragger(const Orv2dPoint& point, const OrvScene* scene,
                                      unsigned long role, unsigned long highlightable,
                                      const char* type) const {
    return pickActor(this, point, scene, role, highlightable, type, true);
}
