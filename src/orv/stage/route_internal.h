// Shared by the routing sources of stages and theaters: the walk over all
// stages, the records of which stage and which theater of a director hold the
// highlighted actor, the focus walk, and the tables of named callbacks.
#ifndef ORV_STAGE_ROUTE_INTERNAL_H
#define ORV_STAGE_ROUTE_INTERNAL_H

#include <string>

class OrvDirector;
class OrvStage;
class OrvTheater;
class OrvActor;
class OrvAList;
class OrvCallback;

// Calls visit on every view of every director whose class name is exactly
// "OrvStage": a subclass of stage with a name of its own is left out.
void OrvForEachPlainStage(void (*visit)(OrvStage*, void*), void* data);

// The stage of the director that has a highlighted actor, or null.
OrvStage* OrvGetHighlightStage(const OrvDirector* director);
void OrvSetHighlightStage(OrvDirector* director, OrvStage* stage);
// The same for the theater of the director that has one.
OrvTheater* OrvGetHighlightTheater(const OrvDirector* director);
void OrvSetHighlightTheater(OrvDirector* director, OrvTheater* theater);

// Where an actor stands in reading order: by y, then by x.
struct OrvReadingPlace {
    double x, y;
};
// The actor that can take the focus (a role, sensitive, visible) and follows
// the focus in reading order (direction 1) or precedes it (direction -1); past
// the last one the walk wraps to the first. The later in the walk wins a tie.
OrvActor* OrvFocusStep(OrvActor** all, unsigned count, OrvActor* focus, int direction,
                       OrvReadingPlace (*placeOf)(const OrvActor*));

// Tables of callbacks by name (an interned key to a counted OrvCallback*).
void OrvRegisterCallback(OrvAList& table, const char* name, OrvCallback* callback);
OrvCallback* OrvFindCallback(const OrvAList& table, const char* name);
void OrvRemoveCallback(OrvAList& table, const char* name);
// The callback named by the actor in the table, else the actor's own one.
void OrvRunCallback(const OrvAList& table, OrvActor* actor);
// Drops every entry, releasing its callback.
void OrvReleaseCallbacks(OrvAList& table);

// Actors as the text of the persistent format (2D or 3D), for the clipboard;
// empty without actors.
std::string OrvActorsText(OrvActor* const* actors, unsigned count, unsigned long is2d);

#endif
