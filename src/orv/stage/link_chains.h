// The chains behind the link tables of stages and theaters: on each joined
// actor, under a container's key, an OrvLink chain of the links that start
// (or end) there, the newest at the head.
#ifndef ORV_STAGE_LINK_CHAINS_H
#define ORV_STAGE_LINK_CHAINS_H

#include "orv/actor.h"

// The chain of the actor under the key; null without one.
OrvLink* OrvLinkChain(OrvActor* actor, OrvKey* key);
// Puts the link at the head of the actor's chain.
void OrvLinkChainPush(OrvActor* actor, OrvKey* key, OrvActor* link);
// Takes the link out of the actor's chain; an empty chain leaves no property behind.
void OrvLinkChainTake(OrvActor* actor, OrvKey* key, OrvActor* link);
// Frees the nodes of a chain, not the links.
void OrvLinkChainFree(OrvLink* chain);

#endif
