// Shared by the routing sources: the walk over all stages and the record of
// which stage of a director holds the highlighted actor.
#ifndef ORV_STAGE_ROUTE_INTERNAL_H
#define ORV_STAGE_ROUTE_INTERNAL_H

class OrvDirector;
class OrvStage;

// Calls visit on every view of every director whose class name is exactly
// "OrvStage": a subclass of stage with a name of its own is left out.
void OrvForEachPlainStage(void (*visit)(OrvStage*, void*), void* data);

// The stage of the director that has a highlighted actor, or null.
OrvStage* OrvGetHighlightStage(const OrvDirector* director);
void OrvSetHighlightStage(OrvDirector* director, OrvStage* stage);

#endif
