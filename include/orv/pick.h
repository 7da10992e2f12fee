// Picking in a scene's window: lines by their projection, and the switch and
// figures of the hierarchies that keep picks on large meshes and crowded
// theaters quick. Faces are picked through OrvPolygon::pick and its kin
// (orv/vertex.h), actors through OrvTheater::contains; every successful pick
// leaves its answer in the director's pick record (orv/director.h).
#ifndef ORV_PICK_H
#define ORV_PICK_H

#include "orv/geometry.h"
#include "orv/makeup.h"

class OrvActor;
class OrvScene;

// Picks the segment from `from` to `to`, placed by the actor's matrix (and
// in invariant space for an invariant actor), drawn in the actor's style:
// the front style when its make-up distinguishes the sides, else the back
// style, filled without an actor. 1 on a hit, with the record holding type
// OrvPickLine, the actor, the point of the segment under the pointer and, as
// the edge number, the end nearer to it; 0 without a scene, and 0 with the
// record cleared on a miss.
unsigned long OrvPick3dLine(const Orv2dPoint& point, const Orv3dPoint& from, const Orv3dPoint& to,
                            const OrvScene* scene, const OrvActor* actor);

// The segment's ends through `matrix` (when given) and the scene's matrix
// (the invariant one with `invariant`), tested against the window point
// within OrvGetDeltaLine() as the 2D line test does. On a hit `result` is
// the point of the segment under the pointer (world or invariant space) and
// the answer is the end nearer to it: 0 for `from`, 1 for `to`. -1 on a
// miss, without a scene, or for the hidden style OrvFaceHidden.
long OrvCloseTo(Orv3dPoint& result, const Orv2dPoint& point, const Orv3dPoint& from,
                const Orv3dPoint& to, const OrvScene* scene, const Orv3dMatrix* matrix,
                const OrvFaceStyle& style, const unsigned long& invariant);

// Face sets and series of many faces are picked through a bounding-volume
// hierarchy built at their first pick, and each theater layer keeps one over
// its actors; the answers are those of testing every face and every actor in
// turn. Off, every pick walks all faces and all actors. On at start.
void OrvUsePickHierarchy(unsigned long on);
unsigned long OrvUsePickHierarchy();

// What the hierarchies have cost so far.
struct OrvPickHierarchyStats {
    unsigned long meshBuilds;   // mesh hierarchies built since start
    unsigned long layerBuilds;  // layer hierarchies built since start
    unsigned long meshFaces;    // faces under the mesh hierarchies alive now
    unsigned long meshBytes;    // bytes those hierarchies hold
    unsigned long layerActors;  // actors under the layer hierarchies alive now
    unsigned long layerBytes;   // bytes those hierarchies hold
};
OrvPickHierarchyStats OrvGetPickHierarchyStats();

#endif
