// Placeholder bodies of other pieces of the theater that input needs to link and to
// be tried: the pick record, picking by projected boxes, selection read from the
// actors' flags, and the accelerator list. The file goes at integration.
#include "orv/theater.h"

#include "orv/actor.h"
#include "orv/director.h"
#include "orv/role.h"
#include "orv/scene.h"

static OrvPick3dRecord pendingRecord = {nullptr,      OrvPickBox, nullptr, nullptr,
                                        Orv3dPoint(), -1,         -1};

void OrvDirector::setPick3dRecord(const OrvScene* scene, OrvPickType type, OrvActor* actor,
                                  const OrvPolygon* polygon, const Orv3dPoint* point,
                                  long vertexIndex, long edgeIndex) {
    pendingRecord = {scene,       type,     actor, polygon, point ? *point : Orv3dPoint(),
                     vertexIndex, edgeIndex};
}

const OrvPick3dRecord& OrvDirector::pick3dRecord() const {
    return pendingRecord;
}

void OrvDirector::clearPick3dRecord() {
    pendingRecord = {nullptr, OrvPickBox, nullptr, nullptr, Orv3dPoint(), -1, -1};
}

// The nearest actor whose projected box holds the point, by the depth of its box's centre.
OrvActor* OrvTheater::contains(const Orv2dPoint& point, const OrvScene* scene, unsigned long role,
                               unsigned long highlightable, const char* type) const {
    if (!scene) return nullptr;
    OrvActor* best = nullptr;
    float bestDepth = 0;
    for (OrvLink* l = layers.first; l; l = l->next) {
        OrvTheaterLayer* layer = (OrvTheaterLayer*)l->value;
        if (!layer->isVisible(scene)) continue;
        for (unsigned i = layer->count; i-- > 0;) {
            OrvActor* a = layer->actors[i];
            if (!a->isVisible() || (role && !a->getRole()) ||
                (highlightable && !a->isHighlightAllowed()) || (type && !a->isSubtypeOf(type)))
                continue;
            const Orv3dMatrix* m =
                a->isInvariant() ? &scene->invariantToScene : &scene->worldToScene;
            Orv2dRegion region;
            a->bboxToScene(region, m, 1);
            if (!region.contains(point)) continue;
            Orv3dPoint c = a->bbox3d(1).center();
            m->apply(c);
            if (!best || c.z < bestDepth) {
                best = a;
                bestDepth = c.z;
            }
        }
    }
    if (best) {
        Orv3dPoint c = best->bbox3d(1).center();
        director->setPick3dRecord(scene, OrvPickBox, best, nullptr, &c, -1, -1);
    }
    return best;
}

void OrvTheater::deSelect() {
    unsigned count = 0;
    OrvActor** all = objects(count);
    beginDrawing();
    for (unsigned i = 0; i < count; i++)
        if (all[i]->isSelected()) all[i]->setSelected(0);
    flushDrawing(1);
    delete[] all;
}

OrvActor** OrvTheater::selections(unsigned& count) const {
    unsigned n = 0;
    OrvActor** all = objects(n);
    count = 0;
    for (unsigned i = 0; i < n; i++)
        if (all[i]->isSelected()) all[count++] = all[i];
    if (!count) {
        delete[] all;
        return nullptr;
    }
    return all;
}

void OrvTheater::applyToSelections(void (*function)(OrvActor*, void*), void* data) {
    unsigned count = 0;
    OrvActor** selected = selections(count);
    for (unsigned i = 0; i < count; i++) function(selected[i], data);
    delete[] selected;
}

void OrvTheater::add(OrvAccelerator* accelerator) {
    if (accelerator) accelerators.append(accelerator);
}
