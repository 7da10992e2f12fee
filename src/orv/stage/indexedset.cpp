// An actor that holds many actors in a quadtree, so that a repaint costs what
// lies in the clip and a hit test what lies under the point.
#include "orv/canvas.h"
#include "orv/layer.h"
#include "orv/stream.h"

ORV_DEFINE_CLASS_INIT(OrvIndexedSet, "OrvActor", OrvIndexedSet::read)

OrvIndexedSet::OrvIndexedSet(OrvDirector* director, unsigned short max, OrvMakeUp* m)
    : OrvActor(director, m), quadtree(new OrvQuadtree(max ? max : OrvDefaultQuadtreeMax, nullptr)) {
}

// A copy holds no actors: only the look travels.
OrvIndexedSet::OrvIndexedSet(const OrvIndexedSet& source)
    : OrvActor(source), quadtree(new OrvQuadtree(OrvDefaultQuadtreeMax, nullptr)) {}

// The set owns what its tree holds: nothing else keeps the actors it read.
OrvIndexedSet::~OrvIndexedSet() {
    if (quadtree) quadtree->empty(1);
}

OrvActor* OrvIndexedSet::copy() const {
    return new OrvIndexedSet(*this);
}

OrvClassInfo* OrvIndexedSet::classInfo() const {
    return _classInfo;
}

void OrvIndexedSet::map(OrvActorFunction function, void* data) {
    quadtree->apply(function, data);
}

static void extendByActor(OrvActor* actor, void* data) {
    ((Orv2dRect*)data)->extendBy(actor->bbox2d(nullptr));
}

Orv2dRect OrvIndexedSet::bbox2d(const Orv2dMatrix* matrix) const {
    if (box.w == 0) quadtree->apply(extendByActor, &box);
    Orv2dRect r = box;
    if (matrix) matrix->apply(r);
    return r;
}

struct _OrvDrawTarget_ {
    OrvCanvas* canvas;
    const Orv2dMatrix* matrix;
};

static void drawActor(OrvActor* actor, void* data) {
    _OrvDrawTarget_* target = (_OrvDrawTarget_*)data;
    actor->draw2d(target->canvas, target->matrix);
}

void OrvIndexedSet::draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) {
    _OrvDrawTarget_ target = {canvas, matrix};
    const Orv2dRegion* clip = canvas->getClip();
    if (!clip) {
        quadtree->apply(drawActor, &target);
        return;
    }
    // The tree is in the actors' own space: take the clip back there.
    Orv2dRegion local(*clip);
    if (matrix) local.inverse(*matrix);
    quadtree->applyIntersect(local, *clip, drawActor, &target, matrix);
}

void OrvIndexedSet::apply2d(const Orv2dMatrix&) {}

OrvActor* OrvIndexedSet::whichContains(const Orv2dPoint& point, const Orv2dMatrix* matrix) {
    Orv2dPoint local = point;
    if (matrix) matrix->inverse(local);
    return quadtree->contains(local, point, matrix);
}

unsigned long OrvIndexedSet::contains2d(const Orv2dPoint& point, const Orv2dMatrix* matrix) {
    return whichContains(point, matrix) != nullptr;
}

// Persistent form: the actor's keys, the number of actors in the tree, then
// each of them as an object block of its own.

OrvActor* OrvIndexedSet::read(OrvIStream& stream) {
    return new OrvIndexedSet(stream);
}

static void writeMember(OrvActor* actor, void* data) {
    ((OrvOStream*)data)->write(actor);
}

void OrvIndexedSet::write(OrvOStream& out) const {
    OrvActor::write(out);
    out << (unsigned int)quadtree->count;
    quadtree->apply(writeMember, &out);
}

OrvIndexedSet::OrvIndexedSet(OrvIStream& in)
    : OrvActor(in), quadtree(new OrvQuadtree(OrvDefaultQuadtreeMax, nullptr)), box() {
    unsigned int count = 0;
    in >> count;
    // Members are read until the count is reached or one fails; a failure is
    // seen by the reader, which then drops the whole set.
    for (unsigned int i = 0; i < count && in.stream; i++) {
        OrvActor* actor = in.read();
        if (!actor) return;
        quadtree->add(actor);
    }
    box.w = 0;
    bbox2d(nullptr);
}
