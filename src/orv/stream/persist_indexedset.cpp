// The persistent form of OrvIndexedSet: the actor's keys, the number of
// actors in the tree, then each of them as an object block of its own.
#include "orv/actor.h"
#include "orv/layer.h"
#include "orv/stream.h"

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
