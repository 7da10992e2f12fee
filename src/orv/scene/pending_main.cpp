// Placeholder bodies so that the headers link while the 3D half is written.
// Each piece of work removes the bodies it implements; the file goes at integration.
#include "orv/actor.h"
#include "orv/director.h"
#include "orv/light.h"

OrvEnvironment* OrvDirector::environment(const OrvRGB&, float, float, float, float, unsigned long,
                                         unsigned long) {
    return nullptr;
}
void OrvMakeUp::render(const OrvScene*, unsigned long) const {}
