// Placeholder until the picking half is merged: the declaration that
// orv/pick.h gives, so that the line actors link. Goes at integration.
#ifndef ORV_PENDING_LINES_H
#define ORV_PENDING_LINES_H

#include "orv/geometry.h"

class OrvScene;
class OrvActor;

unsigned long OrvPick3dLine(const Orv2dPoint& point, const Orv3dPoint& from, const Orv3dPoint& to,
                            const OrvScene* scene, const OrvActor* actor);

#endif
