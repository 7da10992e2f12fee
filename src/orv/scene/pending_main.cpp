// Placeholder bodies so that the headers link while the interaction half is written.
// Each piece of work removes the bodies it implements; the file goes at integration.
#include "orv/theater.h"

int OrvTheater::dispatchToAccelerators(OrvScene*, const OrvEvent&) {
    return 0;
}
void OrvTheater::setFocus(OrvActor*) {}
void OrvTheater::moveFocusAfter() {}
void OrvTheater::moveFocusBefore() {}
OrvActor* OrvTheater::getHighlighted() const {
    return nullptr;
}
void OrvTheater::setHighlighted(const Orv2dPoint&, OrvActor*) {}
void OrvTheater::callCallback(OrvActor*, OrvScene*) const {}
void OrvTheater::cut() {}
void OrvTheater::copy() {}
void OrvTheater::paste(const Orv3dPoint&, unsigned long) {}
void OrvTheater::save(const char*, const OrvScene*) {}
void OrvTheater::save(std::ostream&, const OrvScene*) {}
unsigned long OrvTheater::read(const char*, OrvScene*&, int) {
    return 0;
}
unsigned long OrvTheater::read(std::istream&, OrvScene*&, int) {
    return 0;
}
