// Placeholder bodies so that the headers link while the interaction half is written.
// Each piece of work removes the bodies it implements; the file goes at integration.
#include "orv/theater.h"

void OrvTheater::handleInput(OrvView*, const OrvEvent&) {}
int OrvTheater::dispatchToActors(OrvScene*, const OrvEvent&) {
    return 0;
}
