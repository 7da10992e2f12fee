// The stage's numbered layers, and the quadtree of actors with the actor that
// wraps one (OrvIndexedSet) for collections too large to walk at each repaint.
#ifndef ORV_LAYER_H
#define ORV_LAYER_H

#include <cstddef>
#include <cstdint>

#include "orv/actor.h"

class OrvStage;
class OrvCanvas;

// Called on each actor of a walk, with the caller's data.
typedef void (*OrvActorFunction)(OrvActor*, void*);

// ---------------------------------------------------------------------------
// Layer: an array of actors in painting order
// ---------------------------------------------------------------------------

class OrvStageLayer {
public:
    OrvStage* stage;
    OrvActor** actors;  // index 0 is painted first and lies at the back
    uint32_t count;
    uint32_t capacity;      // 4 after init; one slot is always kept free
    unsigned long visible;  // a hidden layer is neither painted nor hit
    unsigned long enabled;  // kept for the application; no operation here reads it
    unsigned short number;

    OrvStageLayer(OrvStage* forStage, unsigned short layerNumber);
    OrvStageLayer(const OrvStageLayer&) = delete;
    OrvStageLayer& operator=(const OrvStageLayer&) = delete;
    // Deletes the actors and leaves the stage's list, unless the stage is going.
    ~OrvStageLayer();

    void init();
    void grow();
    void append(OrvActor* actor);
    void insert(OrvActor* actor);
    int remove(OrvActor* actor);
    int position(const OrvActor* actor) const;
    // Moves one of the layer's actors to that place in painting order (the
    // top for an index past the end); 1 when it moved. Undo puts actors back so.
    int moveTo(OrvActor* actor, uint32_t index);
    // To the top by exchange with the last actor: not a rotation.
    int pop(OrvActor* actor);
    // Does nothing, ever: the exchange with the bottom actor cannot be reached.
    int push(OrvActor* actor);
    void apply(OrvActorFunction function, void* data);
    OrvActor* contains(const Orv2dPoint& point, const Orv2dMatrix* matrix, unsigned long withRole,
                       const char* type) const;
    OrvActor* containsDragger(const Orv2dPoint& point, const Orv2dMatrix* matrix,
                              unsigned long withRole, const char* type) const;
    void draw(OrvCanvas* canvas, const Orv2dMatrix* matrix, const Orv2dRegion* region);
    void empty(unsigned long deleteActors);

private:
    // The allocation that `actors` points into, `offset` slots from its start.
    // Taking an actor from near the bottom moves the start up rather than
    // shifting all above it, so emptying a large layer from the bottom is
    // linear. Capacity counts the slots of the whole allocation.
    OrvActor** block;
    uint32_t offset;

    // Moves the actors back to the start of the allocation.
    void compact();
    // Removes, deletes and clears the entries of the array copy, links first.
    void deleteActors(unsigned long dropLinkProperties);
};

// ---------------------------------------------------------------------------
// Quadtree of actors, in the actors' own coordinates
// ---------------------------------------------------------------------------

// Leaves split when they hold this many actors.
extern unsigned int OrvDefaultQuadtreeMax;

// With the mode set, add and remove skip their membership test (twice as fast,
// but a wrong call goes unnoticed).
void OrvSetOptimizeMode(int on);
int OrvGetOptimizeMode();

// Position codes: sums of right 1, left 2, top 4, bottom 8; 65535 stays here.
enum {
    OrvQuadRight = 1,
    OrvQuadLeft = 2,
    OrvQuadTop = 4,
    OrvQuadBottom = 8,
    OrvQuadTopLeft = 6,
    OrvQuadTopRight = 5,
    OrvQuadBottomLeft = 10,
    OrvQuadBottomRight = 9,
    OrvQuadHere = 65535
};

// Below this short side a node neither splits nor passes anything down.
#define ORV_QUADTREE_MIN_SIDE 6

class OrvQuadtree : public OrvPooled {
public:
    OrvQuadtree* topLeft;
    OrvQuadtree* topRight;
    OrvQuadtree* bottomLeft;
    OrvQuadtree* bottomRight;
    OrvLink* head;  // actors held at this node itself
    OrvLink* tail;
    uint32_t count;     // actors at this node and below
    uint32_t internal;  // 1 once the node has split
    uint32_t max;       // leaf capacity before a split; the same in all nodes
    Orv2dRect box;

    // All fields 0.
    OrvQuadtree();
    // A null area means -100000, -100000, 200000, 200000.
    OrvQuadtree(unsigned int leafCapacity, const Orv2dRect* area);
    OrvQuadtree(const OrvQuadtree&) = delete;
    OrvQuadtree& operator=(const OrvQuadtree&) = delete;
    // Frees the lists and the children, not the actors.
    ~OrvQuadtree();

    int add(OrvActor* actor);
    int remove(OrvActor* actor);
    int insideP(OrvActor* actor) const;

    void apply(OrvActorFunction function, void* data);
    void applyIntersect(const Orv2dRegion& local, const Orv2dRegion& clip,
                        OrvActorFunction function, void* data, const Orv2dMatrix* matrix);
    void applyInside(const Orv2dRegion& local, const Orv2dRegion& clip, OrvActorFunction function,
                     void* data, const Orv2dMatrix* matrix);
    OrvActor* contains(const Orv2dPoint& local, const Orv2dPoint& original,
                       const Orv2dMatrix* matrix);
    // Frees everything, this node included: the caller must not touch it after.
    void empty(unsigned long deleteActors);
    // Bytes held by this node and those below it: nodes, links and arrays,
    // not the actors.
    size_t memoryUse() const;

    // Doubles the root towards the point until its box holds it.
    void growToPoint(const Orv2dPoint& p);
    void growToRect(const Orv2dRect& r);
    unsigned int findPos(const Orv2dRect& r) const;
    unsigned int findPos(const Orv2dPoint& p) const;
    // The box of the child for a position code.
    Orv2dRect childBox(unsigned int position) const;
    OrvQuadtree* child(unsigned int position) const;

private:
    // The actors of this node's list again, in the same order, packed in one
    // array: queries walk it in memory order and fetch the next actors while
    // asking the current one, where the links would cost a miss each.
    OrvActor** held;
    uint32_t heldCount;
    uint32_t heldCapacity;

    OrvQuadtree*& childSlot(unsigned int position);
    OrvQuadtree* makeChild(unsigned int position);
    void appendHere(OrvActor* actor);
    int removeHere(OrvActor* actor);
    int holdsHere(const OrvActor* actor) const;
    void nodeAdd(OrvActor* actor, const Orv2dRect& r);
    void nodeAddList(OrvLink* list);
    void nodeRemove(OrvActor* actor, const Orv2dRect& r);
    int nodeInsideP(const OrvActor* actor, const Orv2dRect& r) const;
    void applyInsideNode(const Orv2dRegion& local, const Orv2dRegion& clip,
                         OrvActorFunction function, void* data, const Orv2dMatrix* matrix);
};

// ---------------------------------------------------------------------------
// An actor that holds a quadtree of actors
// ---------------------------------------------------------------------------

class OrvIndexedSet : public OrvActor {
public:
    OrvQuadtree* quadtree;
    mutable Orv2dRect box;  // recomputed when its width is 0

    OrvIndexedSet(OrvDirector* director, unsigned short max = 0, OrvMakeUp* makeUp = nullptr);
    OrvIndexedSet(const OrvIndexedSet& source);
    ORV_PERSISTENT_ACTOR(OrvIndexedSet)
    // Deletes the actors of the tree with it.
    ~OrvIndexedSet() override;

    void map(OrvActorFunction function, void* data) override;
    void draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) override;
    void apply2d(const Orv2dMatrix& matrix) override;
    Orv2dRect bbox2d(const Orv2dMatrix* matrix) const override;
    unsigned long contains2d(const Orv2dPoint& point, const Orv2dMatrix* matrix) override;

    // The tree is open to the application: add through it, then call
    // invalidateBox so that the set's box is computed again.
    OrvActor* whichContains(const Orv2dPoint& point, const Orv2dMatrix* matrix);
    void invalidateBox() { box.w = 0; }
};

ORV_DECLARE_CLASS_INIT(OrvIndexedSet)

#endif
