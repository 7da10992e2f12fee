// The calls by which a stage reaches the actors that hold a window of their
// own (frames, which live in the gadgets above this layer). The gadgets fill
// them in when the library loads; a null call means that no such actor exists.
#ifndef ORV_STAGE_EMBEDDED_VIEWS_H
#define ORV_STAGE_EMBEDDED_VIEWS_H

class OrvActor;

struct OrvEmbeddedViewCalls {
    // Moves and sizes the actor's window to where the actor now stands; nothing for other actors.
    void (*follow)(OrvActor* actor);
    // Saves the actor's interior stage to the actor's own file, when it has both.
    void (*saveInterior)(OrvActor* actor);
};

extern OrvEmbeddedViewCalls OrvEmbeddedViews;

#endif
