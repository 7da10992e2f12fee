// The reader and the writer hold actors as opaque pointers: they make them
// through the class registry and reach them through these calls, which the
// actor class fills in when it registers itself. So the format needs no
// header of the stage.
#ifndef ORV_STREAM_ACTOR_CALLS_H
#define ORV_STREAM_ACTOR_CALLS_H

class OrvActor;
class OrvKey;
class OrvOStream;

struct _OrvActorCalls_ {
    const char* (*className)(const OrvActor*);
    // The actor's virtual write: its body of keys.
    void (*write)(const OrvActor*, OrvOStream&);
    void (*mapReferences)(OrvActor*, void (*function)(OrvActor*, void*), void* data);
    // Deletes through the virtual destructor.
    void (*destroy)(OrvActor*);
    // The user properties, which hold the numbers during a write.
    int (*hasUserProperty)(OrvActor*, const OrvKey*);
    void* (*getUserProperty)(OrvActor*, const OrvKey*);
    void (*setUserProperty)(OrvActor*, const OrvKey*, void*);
    int (*removeUserProperty)(OrvActor*, const OrvKey*);
};

// All null until the first actor class registers.
extern _OrvActorCalls_ OrvActorCalls;

#endif
