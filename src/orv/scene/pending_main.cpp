// Placeholder bodies so that the headers link while the 3D half is written.
// Each piece of work removes the bodies it implements; the file goes at integration.
#include "orv/actor.h"
#include "orv/director.h"
#include "orv/light.h"

OrvEnvironment* OrvDirector::environment(const OrvRGB&, float, float, float, float, unsigned long,
                                         unsigned long) {
    return nullptr;
}
void OrvActor::drawStructure(const OrvScene*) {}
unsigned long OrvActor::drawInteractive(const OrvScene*) {
    return 0;
}
const Orv3dMatrix* OrvActor::to3dWorld() const {
    return nullptr;
}
void OrvActor::to3dWorld(const Orv3dMatrix*) {}
void OrvActor::rotateX(const double&, unsigned long) {}
void OrvActor::rotateY(const double&, unsigned long) {}
void OrvActor::rotateZ(const double&, unsigned long) {}
void OrvActor::rotate(const Orv3dPoint&, const Orv3dPoint&, const double&, unsigned long) {}
void OrvActor::translate(const float&, const float&, const float&, unsigned long) {}
void OrvActor::scale(const float&, const float&, const float&, unsigned long) {}
void OrvActor::build3dMatrix(const Orv3dPoint&, const Orv3dVector&, const double&, const double&,
                             const double&, const Orv3dVector&, unsigned long) {}
void OrvActor::drawFocus3d(const OrvScene*, const OrvMakeUp*) const {}
void OrvActor::draw3d(const OrvScene*) const {}
Orv3dVolume OrvActor::bbox3d(unsigned long) const {
    return Orv3dVolume();
}
unsigned long OrvActor::contains3d(const Orv2dPoint&, const OrvScene*) const {
    return 0;
}
unsigned long OrvActor::intersects3d(const Orv2dRegion&, const Orv3dMatrix*) const {
    return 0;
}
unsigned long OrvActor::inside3d(const Orv2dRegion&, const Orv3dMatrix*) const {
    return 0;
}
void OrvActor::draggerRegions3d(Orv2dRegion&, const Orv3dMatrix*) const {}
void OrvActor::draggerDraw3d(const OrvScene*) const {}
void OrvMakeUp::render(const OrvScene*, unsigned long) const {}
