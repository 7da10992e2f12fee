// Quadtree of actors: leaves split into four when full, actors that straddle
// a node's centre stay at that node, and the root doubles towards what falls
// outside it.
#include <cstdlib>
#include <cstring>

#include "orv/layer.h"

unsigned int OrvDefaultQuadtreeMax = 40;

static int _optimizeMode = 0;

void OrvSetOptimizeMode(int on) {
    _optimizeMode = on;
}
int OrvGetOptimizeMode() {
    return _optimizeMode;
}

static uint32_t shortSide(const Orv2dRect& r) {
    return r.w < r.h ? r.w : r.h;
}

OrvQuadtree::OrvQuadtree()
    : topLeft(nullptr), topRight(nullptr), bottomLeft(nullptr), bottomRight(nullptr), head(nullptr),
      tail(nullptr), count(0), internal(0), max(0), held(nullptr), heldCount(0), heldCapacity(0) {}

OrvQuadtree::OrvQuadtree(unsigned int leafCapacity, const Orv2dRect* area)
    : topLeft(nullptr), topRight(nullptr), bottomLeft(nullptr), bottomRight(nullptr), head(nullptr),
      tail(nullptr), count(0), internal(0), max(leafCapacity),
      box(area ? *area : Orv2dRect(-100000, -100000, 200000, 200000)), held(nullptr), heldCount(0),
      heldCapacity(0) {}

OrvQuadtree::~OrvQuadtree() {
    delete head;  // the links that follow go with it
    free(held);
    delete topLeft;
    delete topRight;
    delete bottomLeft;
    delete bottomRight;
}

// ---------------------------------------------------------------------------
// Positions and children
// ---------------------------------------------------------------------------

unsigned int OrvQuadtree::findPos(const Orv2dRect& r) const {
    if (shortSide(box) < ORV_QUADTREE_MIN_SIDE) return OrvQuadHere;
    int64_t mx = (int64_t)box.x + (box.w >> 1), my = (int64_t)box.y + (box.h >> 1);
    unsigned int horizontal;
    if (r.x >= mx)
        horizontal = OrvQuadRight;
    else if (r.right() <= mx)
        horizontal = OrvQuadLeft;
    else
        return OrvQuadHere;
    if (r.y < my && my < r.bottom()) return OrvQuadHere;
    return horizontal + (r.y < my ? OrvQuadTop : OrvQuadBottom);
}

unsigned int OrvQuadtree::findPos(const Orv2dPoint& p) const {
    if (shortSide(box) < ORV_QUADTREE_MIN_SIDE) return OrvQuadHere;
    int64_t mx = (int64_t)box.x + (box.w >> 1), my = (int64_t)box.y + (box.h >> 1);
    return (p.x < mx ? OrvQuadLeft : OrvQuadRight) + (p.y < my ? OrvQuadTop : OrvQuadBottom);
}

// The right and bottom children take the odd pixel.
Orv2dRect OrvQuadtree::childBox(unsigned int position) const {
    int32_t mx = box.x + (int32_t)(box.w >> 1), my = box.y + (int32_t)(box.h >> 1);
    uint32_t leftW = box.w >> 1, topH = box.h >> 1;
    uint32_t rightW = (uint32_t)(box.right() - mx), bottomH = (uint32_t)(box.bottom() - my);
    switch (position) {
        case OrvQuadTopLeft:
            return Orv2dRect(box.x, box.y, leftW, topH);
        case OrvQuadTopRight:
            return Orv2dRect(mx, box.y, rightW, topH);
        case OrvQuadBottomLeft:
            return Orv2dRect(box.x, my, leftW, bottomH);
        case OrvQuadBottomRight:
            return Orv2dRect(mx, my, rightW, bottomH);
    }
    return Orv2dRect();
}

OrvQuadtree*& OrvQuadtree::childSlot(unsigned int position) {
    switch (position) {
        case OrvQuadTopLeft:
            return topLeft;
        case OrvQuadTopRight:
            return topRight;
        case OrvQuadBottomLeft:
            return bottomLeft;
        default:
            return bottomRight;
    }
}

OrvQuadtree* OrvQuadtree::child(unsigned int position) const {
    switch (position) {
        case OrvQuadTopLeft:
            return topLeft;
        case OrvQuadTopRight:
            return topRight;
        case OrvQuadBottomLeft:
            return bottomLeft;
        case OrvQuadBottomRight:
            return bottomRight;
    }
    return nullptr;
}

OrvQuadtree* OrvQuadtree::makeChild(unsigned int position) {
    OrvQuadtree*& slot = childSlot(position);
    if (!slot) {
        Orv2dRect b = childBox(position);
        slot = new OrvQuadtree(max, &b);
    }
    return slot;
}

// ---------------------------------------------------------------------------
// The list held at a node
// ---------------------------------------------------------------------------

void OrvQuadtree::appendHere(OrvActor* actor) {
    OrvLink* link = new OrvLink(actor);
    if (tail)
        tail->next = link;
    else
        head = link;
    tail = link;
    if (heldCount == heldCapacity) {
        uint32_t larger = heldCapacity ? heldCapacity * 2 : 4;
        held = (OrvActor**)realloc(held, larger * sizeof(OrvActor*));
        heldCapacity = larger;
    }
    held[heldCount++] = actor;
}

int OrvQuadtree::removeHere(OrvActor* actor) {
    OrvLink* previous = nullptr;
    for (OrvLink* l = head; l; previous = l, l = l->next) {
        if (l->value != actor) continue;
        if (previous)
            previous->next = l->next;
        else
            head = l->next;
        if (tail == l) tail = previous;
        l->next = nullptr;
        delete l;
        // The array keeps the list's order, so the first match is the same entry.
        for (uint32_t i = 0; i < heldCount; i++) {
            if (held[i] != actor) continue;
            memmove(held + i, held + i + 1, (heldCount - i - 1) * sizeof(OrvActor*));
            heldCount--;
            break;
        }
        return 1;
    }
    return 0;
}

int OrvQuadtree::holdsHere(const OrvActor* actor) const {
    for (uint32_t i = 0; i < heldCount; i++)
        if (held[i] == actor) return 1;
    return 0;
}

// How far ahead a walk over a node's array fetches actors: far enough to hide
// a miss behind the tests of the actors before it.
static const uint32_t kPrefetchAhead = 4;

static inline void prefetchActor(OrvActor* const* held, uint32_t i, uint32_t n) {
    if (i + kPrefetchAhead < n) {
        const char* p = (const char*)held[i + kPrefetchAhead];
        __builtin_prefetch(p);
        __builtin_prefetch(p + 63);
    }
}

// ---------------------------------------------------------------------------
// Adding
// ---------------------------------------------------------------------------

int OrvQuadtree::add(OrvActor* actor) {
    Orv2dRect r = actor->bbox2d(nullptr);
    if (!_optimizeMode && insideP(actor))
        return OrvError("Quadtree::add: %s [%d %d %d %d] Already in quadtree\n", actor->className(),
                        r.x, r.y, r.w, r.h);
    if (!box.contains(r)) {
        if (internal)
            growToRect(r);
        else
            box.extendBy(r);
    }
    nodeAdd(actor, r);
    return 1;
}

void OrvQuadtree::nodeAdd(OrvActor* actor, const Orv2dRect& r) {
    OrvQuadtree* node = this;
    for (;;) {
        node->count++;
        if (!node->internal) {
            // A leaf too small to split holds whatever comes.
            if (node->count < node->max || shortSide(node->box) < ORV_QUADTREE_MIN_SIDE) {
                node->appendHere(actor);
                return;
            }
            node->internal = 1;
            node->appendHere(actor);
            OrvLink* list = node->head;
            node->head = node->tail = nullptr;
            node->heldCount = 0;
            node->nodeAddList(list);
            delete list;
            return;
        }
        unsigned int position = node->findPos(r);
        if (position == OrvQuadHere) {
            node->appendHere(actor);
            return;
        }
        node = node->makeChild(position);
    }
}

void OrvQuadtree::nodeAddList(OrvLink* list) {
    for (OrvLink* l = list; l; l = l->next) {
        OrvActor* actor = (OrvActor*)l->value;
        Orv2dRect r = actor->bbox2d(nullptr);
        unsigned int position = findPos(r);
        if (position == OrvQuadHere)
            appendHere(actor);
        else
            makeChild(position)->nodeAdd(actor, r);
    }
}

// ---------------------------------------------------------------------------
// Growth
// ---------------------------------------------------------------------------

void OrvQuadtree::growToRect(const Orv2dRect& r) {
    growToPoint(Orv2dPoint(r.x, r.y));
    growToPoint(Orv2dPoint((int32_t)r.right(), (int32_t)r.bottom()));
}

void OrvQuadtree::growToPoint(const Orv2dPoint& p) {
    if (box.contains(p)) return;
    unsigned int horizontal = box.x >= p.x ? OrvQuadLeft : OrvQuadRight;
    unsigned int vertical = box.y >= p.y ? OrvQuadTop : OrvQuadBottom;
    unsigned int position = horizontal + vertical;
    OrvLink* savedHead = head;
    OrvLink* savedTail = tail;
    OrvActor** savedHeld = held;
    uint32_t savedCount = heldCount, savedCapacity = heldCapacity;
    head = tail = nullptr;
    held = nullptr;
    heldCount = heldCapacity = 0;
    // A box without area would never grow.
    if (box.w == 0) box.w = 1;
    if (box.h == 0) box.h = 1;
    while (!box.contains(p)) {
        OrvQuadtree* copy = new OrvQuadtree();
        copy->topLeft = topLeft;
        copy->topRight = topRight;
        copy->bottomLeft = bottomLeft;
        copy->bottomRight = bottomRight;
        copy->count = count;
        copy->internal = internal;
        copy->max = max;
        copy->box = box;
        copy->head = savedHead;
        copy->tail = savedTail;
        copy->held = savedHeld;
        copy->heldCount = savedCount;
        copy->heldCapacity = savedCapacity;
        // Later copies start empty.
        savedHead = savedTail = nullptr;
        savedHeld = nullptr;
        savedCount = savedCapacity = 0;
        uint32_t oldW = box.w, oldH = box.h;
        box.w *= 2;
        box.h *= 2;
        if (horizontal == OrvQuadLeft) box.x -= (int32_t)oldW;
        if (vertical == OrvQuadTop) box.y -= (int32_t)oldH;
        topLeft = topRight = bottomLeft = bottomRight = nullptr;
        // The old root becomes the child on the side away from the point.
        switch (position) {
            case OrvQuadBottomLeft:
                topRight = copy;
                break;
            case OrvQuadBottomRight:
                topLeft = copy;
                break;
            case OrvQuadTopLeft:
                bottomRight = copy;
                break;
            case OrvQuadTopRight:
                bottomLeft = copy;
                break;
            default:
                delete copy;
                OrvError("## No pos for Point in ResizeBBox");
                internal = 1;
                return;
        }
    }
    internal = 1;
}

// ---------------------------------------------------------------------------
// Removing and membership
// ---------------------------------------------------------------------------

int OrvQuadtree::remove(OrvActor* actor) {
    Orv2dRect r = actor->bbox2d(nullptr);
    if (!_optimizeMode && !insideP(actor))
        return OrvError("Quadtree::remove: Object %s [%d %d %d %d] not in quadtree \n",
                        actor->className(), r.x, r.y, r.w, r.h);
    nodeRemove(actor, r);
    return 1;
}

void OrvQuadtree::nodeRemove(OrvActor* actor, const Orv2dRect& r) {
    count--;  // even when the actor is not found
    if (!internal) {
        removeHere(actor);
        return;
    }
    unsigned int position = findPos(r);
    if (position == OrvQuadHere) {
        removeHere(actor);
    } else {
        OrvQuadtree*& slot = childSlot(position);
        if (slot) {
            slot->nodeRemove(actor, r);
            if (slot->count == 0) {
                delete slot;
                slot = nullptr;
            }
        }
    }
    if (!topLeft && !topRight && !bottomLeft && !bottomRight) internal = 0;
}

int OrvQuadtree::insideP(OrvActor* actor) const {
    return nodeInsideP(actor, actor->bbox2d(nullptr));
}

int OrvQuadtree::nodeInsideP(const OrvActor* actor, const Orv2dRect& r) const {
    const OrvQuadtree* node = this;
    for (;;) {
        if (!node->box.intersects(r)) return 0;
        if (!node->internal) return node->holdsHere(actor);
        unsigned int position = node->findPos(r);
        if (position == OrvQuadHere) return node->holdsHere(actor);
        node = node->child(position);
        if (!node) return 0;
    }
}

// ---------------------------------------------------------------------------
// Queries
// ---------------------------------------------------------------------------

void OrvQuadtree::apply(OrvActorFunction function, void* data) {
    for (uint32_t i = 0; i < heldCount; i++) {
        prefetchActor(held, i, heldCount);
        function(held[i], data);
    }
    if (topLeft) topLeft->apply(function, data);
    if (topRight) topRight->apply(function, data);
    if (bottomLeft) bottomLeft->apply(function, data);
    if (bottomRight) bottomRight->apply(function, data);
}

void OrvQuadtree::applyIntersect(const Orv2dRegion& local, const Orv2dRegion& clip,
                                 OrvActorFunction function, void* data, const Orv2dMatrix* matrix) {
    // A node wholly inside needs no test of its actors.
    if (local.contains(box)) {
        apply(function, data);
        return;
    }
    if (!local.intersects(box)) return;
    for (uint32_t i = 0; i < heldCount; i++) {
        prefetchActor(held, i, heldCount);
        if (held[i]->intersects2d(clip, matrix)) function(held[i], data);
    }
    if (topLeft) topLeft->applyIntersect(local, clip, function, data, matrix);
    if (topRight) topRight->applyIntersect(local, clip, function, data, matrix);
    if (bottomLeft) bottomLeft->applyIntersect(local, clip, function, data, matrix);
    if (bottomRight) bottomRight->applyIntersect(local, clip, function, data, matrix);
}

void OrvQuadtree::applyInside(const Orv2dRegion& local, const Orv2dRegion& clip,
                              OrvActorFunction function, void* data, const Orv2dMatrix* matrix) {
    applyInsideNode(local, clip, function, data, matrix);
}

// Only the actors of the first node reached see the matrix: below it the
// walk passes none. Callers have relied on that.
void OrvQuadtree::applyInsideNode(const Orv2dRegion& local, const Orv2dRegion& clip,
                                  OrvActorFunction function, void* data,
                                  const Orv2dMatrix* matrix) {
    if (local.contains(box)) {
        apply(function, data);
        return;
    }
    if (!local.intersects(box)) return;
    for (uint32_t i = 0; i < heldCount; i++) {
        prefetchActor(held, i, heldCount);
        if (held[i]->inside2d(clip, matrix)) function(held[i], data);
    }
    if (topLeft) topLeft->applyInsideNode(local, clip, function, data, nullptr);
    if (topRight) topRight->applyInsideNode(local, clip, function, data, nullptr);
    if (bottomLeft) bottomLeft->applyInsideNode(local, clip, function, data, nullptr);
    if (bottomRight) bottomRight->applyInsideNode(local, clip, function, data, nullptr);
}

OrvActor* OrvQuadtree::contains(const Orv2dPoint& local, const Orv2dPoint& original,
                                const Orv2dMatrix* matrix) {
    OrvQuadtree* node = this;
    while (node && node->box.contains(local)) {
        OrvActor* const* actors = node->held;
        for (uint32_t i = 0, n = node->heldCount; i < n; i++) {
            prefetchActor(actors, i, n);
            if (actors[i]->contains2d(original, matrix)) return actors[i];
        }
        unsigned int position = node->findPos(local);
        if (position == OrvQuadHere) return nullptr;
        node = node->child(position);
    }
    return nullptr;
}

size_t OrvQuadtree::memoryUse() const {
    // One link per actor held: the array mirrors the list.
    size_t bytes =
        sizeof(OrvQuadtree) + heldCapacity * sizeof(OrvActor*) + heldCount * sizeof(OrvLink);
    const OrvQuadtree* children[4] = {topLeft, topRight, bottomLeft, bottomRight};
    for (const OrvQuadtree* c : children)
        if (c) bytes += c->memoryUse();
    return bytes;
}

void OrvQuadtree::empty(unsigned long deleteActors) {
    if (deleteActors)
        for (OrvLink* l = head; l; l = l->next) delete (OrvActor*)l->value;
    delete head;
    head = tail = nullptr;
    OrvQuadtree* children[4] = {topLeft, topRight, bottomLeft, bottomRight};
    topLeft = topRight = bottomLeft = bottomRight = nullptr;
    for (OrvQuadtree* c : children)
        if (c) c->empty(deleteActors);
    delete this;
}
