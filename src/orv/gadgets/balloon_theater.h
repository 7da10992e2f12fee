// How the balloon timer finds the actor under the pointer in a scene: the theater's
// picking lives above the gadgets, so the scene side fills this in at load time.
#ifndef ORV_GADGETS_BALLOON_THEATER_H
#define ORV_GADGETS_BALLOON_THEATER_H

#include "orv/geometry.h"

class OrvActor;
class OrvDirector;
class OrvTheater;
class OrvScene;

// The actor of the theater under a window point of the scene, or null, also when the
// theater or the scene is no longer there.
extern OrvActor* (*OrvBalloonTheaterPick)(OrvDirector* director, OrvTheater* theater,
                                          OrvScene* scene, const Orv2dPoint& point);

#endif
