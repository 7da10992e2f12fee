// The keys of a theater's link tables, shared by the theater's sources.
#ifndef ORV_SCENE_THEATER_INTERNAL_H
#define ORV_SCENE_THEATER_INTERNAL_H

#include "orv/base.h"

// "T_from": on each actor, the chain of the links of a theater that start there.
OrvKey* OrvTheaterFromKey();
// "T_to": the chain of those that end there.
OrvKey* OrvTheaterToKey();

#endif
