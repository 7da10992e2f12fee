// Undo and redo of the edits that producers, roles and accelerators make on
// a stage: creation, deletion, moves, reshapes, links, cut, paste and layer
// changes. A stack serves one stage or several (a director's stages, as the
// application chooses); a stage records only while a stack is set on it.
//
// Keys: the default accelerators already use control-Z (zoom in), so the
// undo pair defaults to Alt-Z (undo) and Alt-Y (redo); any other keys can be
// given to installUndoAccelerators.
#ifndef ORV_UNDO_H
#define ORV_UNDO_H

#include "orv/base.h"
#include "orv/event.h"
#include "orv/geometry.h"
#include "orv/role.h"

class OrvActor;
class OrvStage;
class OrvUndoStack;

// One step of the history. A command owns the actors it holds out of the
// stage (a deleted actor, an undone creation) and deletes them with itself.
class OrvUndoCommand {
public:
    OrvStage* stage;
    const char* name;  // "Move", "Delete", ...: static text for menus

    OrvUndoCommand(OrvStage* onStage, const char* label) : stage(onStage), name(label) {}
    OrvUndoCommand(const OrvUndoCommand&) = delete;
    OrvUndoCommand& operator=(const OrvUndoCommand&) = delete;
    virtual ~OrvUndoCommand() {}
    // Puts the stage back as it was before the step, and again after it.
    virtual void undo() = 0;
    virtual void redo() = 0;
    // Takes in a newer step of the same gesture; true when it did (the newer
    // step is then deleted by the stack).
    virtual bool mergeWith(OrvUndoCommand* newer);
};

typedef void (*OrvUndoChanged)(OrvUndoStack*, void*);

class OrvUndoStack {
public:
    unsigned limit;  // the oldest steps go beyond it; 0 keeps every step

    explicit OrvUndoStack(unsigned depth = 100);
    OrvUndoStack(const OrvUndoStack&) = delete;
    OrvUndoStack& operator=(const OrvUndoStack&) = delete;
    // Deletes its steps and detaches from every stage that uses it.
    ~OrvUndoStack();

    // Takes the step, forgets what could be redone, merges with the top step
    // when both belong to one gesture, and drops the oldest past the limit.
    void push(OrvUndoCommand* command);
    // 1 when a step was undone (redone), 0 when there was none.
    unsigned long undo();
    unsigned long redo();
    unsigned long canUndo() const { return done.first != nullptr; }
    unsigned long canRedo() const { return undone.first != nullptr; }
    unsigned count() const { return done.length(); }
    unsigned redoCount() const { return undone.length(); }
    // The names of the steps that undo and redo would take, or null.
    const char* undoName() const;
    const char* redoName() const;
    void clear();
    void setLimit(unsigned depth);

    // Steps pushed between these two make one step of the given name.
    void beginMacro(const char* name);
    void endMacro();
    // Whether undo or redo is under way: edits made then are not recorded.
    unsigned long isReplaying() const { return replaying; }

    // Called after every change of what can be undone or redone, so that an
    // application can grey its menu items.
    void onChange(OrvUndoChanged function, void* data);
    void removeChange(OrvUndoChanged function);

    // Used by OrvStage::setUndoStack and its destructor.
    void attach(OrvStage* stage);
    void detach(OrvStage* stage);
    // Drops every step of the stage: called when one of its actors is deleted
    // outside the recorded edits, since a step might still name it.
    void forget(OrvStage* stage);

private:
    OrvList done;    // newest first
    OrvList undone;  // next to redo first
    OrvList stages;
    OrvAList changeCallbacks;
    class _OrvUndoMacro_* macro;
    unsigned macroDepth;
    unsigned long replaying;
    class _OrvGeometryStep_* pending;  // between begin and end of a geometry edit
    void changed();
    unsigned long replay(OrvList& from, OrvList& to, bool forward);
    void drop(OrvList& list, OrvStage* only);
    void trim();
    friend void OrvEditBeginGeometry(OrvStage*, OrvActor* const*, unsigned int);
    friend void OrvEditEndGeometry(OrvStage*, const char*, unsigned long);
};

// Recording helpers: each records on the stage's stack when it has one and
// no undo is replaying, and otherwise only does the edit.

// Appends the actor (a link joins its ends' tables) and records its creation.
void OrvEditAppend(OrvStage* stage, OrvActor* actor, unsigned int layer = 0);
// Removes the actors with their links. With a stack they are kept by the
// step; without one they are deleted.
void OrvEditRemove(OrvStage* stage, OrvActor** actors, unsigned int count, const char* name);
// Around a change of geometry of the actors (move, reshape, turn): begin
// takes their shapes before, end records the step. A non-zero gesture makes
// the steps of one gesture merge into one (a drag in many moves).
void OrvEditBeginGeometry(OrvStage* stage, OrvActor* const* actors, unsigned int count);
void OrvEditEndGeometry(OrvStage* stage, const char* name, unsigned long gesture = 0);
// Moves the actor to another layer, or to the top of its own, and records it.
void OrvEditSetLayer(OrvStage* stage, OrvActor* actor, unsigned short layer);
void OrvEditPop(OrvStage* stage, OrvActor* actor);
// A new gesture number for OrvEditEndGeometry.
unsigned long OrvNewGesture();

// Undo and redo bound to a key; installUndoAccelerators puts them on a stage.
class OrvUndoAccelerator : public OrvAccelerator {
public:
    unsigned long redoing;
    OrvUndoAccelerator(OrvEventType onType, unsigned short onKey, unsigned short onModifiers,
                       unsigned long redo);
    int input2d(OrvStage* stage, const OrvEvent& event) override;
};

#endif
