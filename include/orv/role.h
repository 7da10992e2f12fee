// Behaviour attached to actors (roles), bindings of events to actions on a
// stage (accelerators), and the callbacks that roles and stages run.
#ifndef ORV_ROLE_H
#define ORV_ROLE_H

#include "orv/base.h"
#include "orv/geometry.h"
#include "orv/canvas.h"
#include "orv/event.h"

class OrvActor;
class OrvStage;
class OrvTheater;
class OrvScene;

// ---------------------------------------------------------------------------
// Callbacks
// ---------------------------------------------------------------------------

// Counted: whoever keeps a pointer adds one, whoever lets go calls OrvRelease.
class OrvCallback {
public:
    void* data;  // for the subclass's own use
    int count;

    OrvCallback() : data(nullptr), count(0) {}
    OrvCallback(const OrvCallback&) = delete;
    OrvCallback& operator=(const OrvCallback&) = delete;
    virtual ~OrvCallback() {}
    virtual void activate(OrvActor* actor);
};

inline void OrvCount(OrvCallback* c) {
    if (c) c->count++;
}
inline void OrvRelease(OrvCallback* c) {
    if (c && --c->count < 1) delete c;
}

// Run by a stage asked to quit by the window manager.
class OrvExitCallback : public OrvCallback {
public:
    // The default deletes the stage's director and ends the process.
    virtual void exit(OrvStage* stage);
};

// ---------------------------------------------------------------------------
// Roles: one shared instance per class name
// ---------------------------------------------------------------------------

class OrvRole {
public:
    unsigned short mask;  // the buttons (or key bits) it answers to

    explicit OrvRole(unsigned short buttonMask = 1) : mask(buttonMask) {}
    OrvRole(const OrvRole&) = delete;
    OrvRole& operator=(const OrvRole&) = delete;
    // Takes itself off every actor of every stage that uses it.
    virtual ~OrvRole();
    virtual int input2d(OrvActor* actor, const OrvEvent& event, OrvStage* stage);
    virtual int input3d(OrvActor* actor, const OrvEvent& event, OrvTheater* theater,
                        OrvScene* scene);
    virtual const char* className() const = 0;
    virtual int allowPointerMoved() const { return 0; }

    static OrvStringHashTable* _roles;  // made on first registration

protected:
    // A drag of a pressing button or toggle: inverted on leaving the actor and
    // again on coming back; 1 when the look changed.
    static int followPointer(OrvActor* actor, unsigned long& pressed, unsigned long inside);
};

// Files the role under its className(); the caller keeps it alive.
void OrvRegisterRoleInstance(OrvRole* role);
// The shared role of that name, or null.
OrvRole* OrvGetRole(const char* name);

// A push button: inverted while pressed, validated on release inside.
class OrvButtonRole : public OrvRole {
public:
    unsigned long pressed;

    OrvButtonRole() : pressed(0) {}
    int input2d(OrvActor* actor, const OrvEvent& event, OrvStage* stage) override;
    // The same machine in a scene; the press grabs the theater's pointer events
    // until the release.
    int input3d(OrvActor* actor, const OrvEvent& event, OrvTheater* theater,
                OrvScene* scene) override;
    const char* className() const override { return "Button"; }
    virtual void validate(OrvActor* actor, OrvStage* stage);
    virtual void validate(OrvActor* actor, OrvTheater* theater, OrvScene* scene);
};

// A toggle: each completed click flips the look and validates.
class OrvToggleRole : public OrvRole {
public:
    unsigned long pressed;

    OrvToggleRole() : pressed(0) {}
    int input2d(OrvActor* actor, const OrvEvent& event, OrvStage* stage) override;
    // The same machine in a scene, grabbing as the button does.
    int input3d(OrvActor* actor, const OrvEvent& event, OrvTheater* theater,
                OrvScene* scene) override;
    const char* className() const override { return "Toggle"; }
    virtual void validate(OrvActor* actor, OrvStage* stage);
    virtual void validate(OrvActor* actor, OrvTheater* theater, OrvScene* scene);
};

// Drags one actor by itself, without a producer.
class OrvMoveRole : public OrvRole {
public:
    unsigned long immediate;  // 1: the actor follows the pointer; 0: a ghost does
    unsigned long active;
    Orv2dPoint start, current;
    // In a scene: the points under the pointer at the press and now, in the actor's
    // parent space (world, or invariant space), at the window depth of the picked point.
    Orv3dPoint start3d, current3d;
    unsigned long gesture;  // of the drag under way: its steps undo as one
    float pickDepth;        // that window depth

    OrvMoveRole();
    int input2d(OrvActor* actor, const OrvEvent& event, OrvStage* stage) override;
    // The drag in the view plane through the picked point, grabbing the theater's
    // pointer events until the release.
    int input3d(OrvActor* actor, const OrvEvent& event, OrvTheater* theater,
                OrvScene* scene) override;
    const char* className() const override { return "Move"; }
    virtual void validate2d(OrvActor* actor, OrvStage* stage, const Orv2dPoint& delta);
    // Translates the actor by the delta.
    virtual void validate3d(OrvActor* actor, OrvTheater* theater, const Orv3dPoint& delta);
    virtual void ghost2d(OrvStage* stage, OrvActor* actor);
    // The box of the actor where the drag would put it, by boxGhost.
    virtual void ghost3d(OrvScene* scene, OrvActor* actor);
};

// Resizes one actor symmetrically about its centre, without handles.
class OrvReshapeRole : public OrvRole {
public:
    unsigned long active;
    Orv2dRect box;          // the new box, in the actor's space
    Orv2dRect ghost;        // the same through the stage's transformer
    unsigned long gesture;  // of the gesture under way: its steps undo as one

    OrvReshapeRole();
    int input2d(OrvActor* actor, const OrvEvent& event, OrvStage* stage) override;
    const char* className() const override { return "Reshape"; }
    virtual void validate2d(OrvActor* actor, OrvStage* stage, const Orv2dRect& box);
    virtual void ghost2d(const Orv2dRect& rect, OrvStage* stage);

    // The box centred on the actor's centre with a corner at the point.
    static Orv2dRect symmetricBox(const Orv2dRect& bbox, const Orv2dPoint& p);
};

// Makes the shared roles of this family exactly once, whatever the order of
// static initialisation of the translation units that use them.
class orvinitOrvRole {
public:
    orvinitOrvRole();
    static int _counter;
};
static orvinitOrvRole _orvinitOrvRole;

// ---------------------------------------------------------------------------
// Accelerators
// ---------------------------------------------------------------------------

// Modifiers of 32768 accept any state; 0 accepts none.
enum {
    OrvAnyModifiers = 32768
};

class OrvAccelerator {
public:
    OrvEventType type;
    unsigned short key;
    unsigned short modifiers;

    OrvAccelerator(OrvEventType onType, unsigned short onKey, unsigned short onModifiers)
        : type(onType), key(onKey), modifiers(onModifiers) {}
    OrvAccelerator(const OrvAccelerator&) = delete;
    OrvAccelerator& operator=(const OrvAccelerator&) = delete;
    // Unlinks itself from every stage and every theater that holds it.
    virtual ~OrvAccelerator();
    virtual int match(const OrvEvent& event) const;
    virtual int input2d(OrvStage* stage, const OrvEvent& event);
    virtual int input3d(OrvTheater* theater, OrvScene* scene, const OrvEvent& event);
};

class OrvZoomAccelerator : public OrvAccelerator {
public:
    unsigned long in;  // read by the 3D form only
    float factor;
    OrvZoomAccelerator(OrvEventType onType, unsigned short onKey, unsigned short onModifiers,
                       unsigned long zoomIn, float zoomFactor)
        : OrvAccelerator(onType, onKey, onModifiers), in(zoomIn), factor(zoomFactor) {}
    int input2d(OrvStage* stage, const OrvEvent& event) override;
    int input3d(OrvTheater* theater, OrvScene* scene, const OrvEvent& event) override;
};

class OrvTranslateAccelerator : public OrvAccelerator {
public:
    OrvPosition direction;  // 1 left, 2 right, 4 up, 8 down
    float divisor;          // of the visible size; 0.0 means 8.0
    OrvTranslateAccelerator(OrvEventType onType, unsigned short onKey, unsigned short onModifiers,
                            OrvPosition towards, float sizeDivisor)
        : OrvAccelerator(onType, onKey, onModifiers), direction(towards), divisor(sizeDivisor) {}
    int input2d(OrvStage* stage, const OrvEvent& event) override;
    int input3d(OrvTheater* theater, OrvScene* scene, const OrvEvent& event) override;
};

class OrvIdentityAccelerator : public OrvAccelerator {
public:
    using OrvAccelerator::OrvAccelerator;
    int input2d(OrvStage* stage, const OrvEvent& event) override;
    int input3d(OrvTheater* theater, OrvScene* scene, const OrvEvent& event) override;
};

class OrvDuplicateAccelerator : public OrvAccelerator {
public:
    using OrvAccelerator::OrvAccelerator;
    int input2d(OrvStage* stage, const OrvEvent& event) override;
    int input3d(OrvTheater* theater, OrvScene* scene, const OrvEvent& event) override;
};

class OrvFitTransformerAccelerator : public OrvAccelerator {
public:
    using OrvAccelerator::OrvAccelerator;
    int input2d(OrvStage* stage, const OrvEvent& event) override;
    int input3d(OrvTheater* theater, OrvScene* scene, const OrvEvent& event) override;
};

class OrvRotateAccelerator : public OrvAccelerator {
public:
    using OrvAccelerator::OrvAccelerator;
    int input2d(OrvStage* stage, const OrvEvent& event) override;
    int input3d(OrvTheater* theater, OrvScene* scene, const OrvEvent& event) override;
};

class OrvSelectAccelerator : public OrvAccelerator {
public:
    unsigned long select;
    OrvSelectAccelerator(OrvEventType onType, unsigned short onKey, unsigned short onModifiers,
                         unsigned long selectAll)
        : OrvAccelerator(onType, onKey, onModifiers), select(selectAll) {}
    int input2d(OrvStage* stage, const OrvEvent& event) override;
    int input3d(OrvTheater* theater, OrvScene* scene, const OrvEvent& event) override;
};

class OrvDeleteAccelerator : public OrvAccelerator {
public:
    unsigned long readOnly;  // a read-only stage keeps its actors
    OrvDeleteAccelerator(OrvEventType onType, unsigned short onKey, unsigned short onModifiers,
                         unsigned long stageReadOnly)
        : OrvAccelerator(onType, onKey, onModifiers), readOnly(stageReadOnly) {}
    int input2d(OrvStage* stage, const OrvEvent& event) override;
    int input3d(OrvTheater* theater, OrvScene* scene, const OrvEvent& event) override;
};

class OrvCutAccelerator : public OrvAccelerator {
public:
    unsigned long readOnly;  // a read-only stage keeps its actors
    OrvCutAccelerator(OrvEventType onType, unsigned short onKey, unsigned short onModifiers,
                      unsigned long stageReadOnly)
        : OrvAccelerator(onType, onKey, onModifiers), readOnly(stageReadOnly) {}
    int input2d(OrvStage* stage, const OrvEvent& event) override;
    int input3d(OrvTheater* theater, OrvScene* scene, const OrvEvent& event) override;
};

class OrvCopyAccelerator : public OrvAccelerator {
public:
    using OrvAccelerator::OrvAccelerator;
    int input2d(OrvStage* stage, const OrvEvent& event) override;
    int input3d(OrvTheater* theater, OrvScene* scene, const OrvEvent& event) override;
};

class OrvPasteAccelerator : public OrvAccelerator {
public:
    using OrvAccelerator::OrvAccelerator;
    int input2d(OrvStage* stage, const OrvEvent& event) override;
    int input3d(OrvTheater* theater, OrvScene* scene, const OrvEvent& event) override;
};

class OrvCountAccelerator : public OrvAccelerator {
public:
    using OrvAccelerator::OrvAccelerator;
    int input2d(OrvStage* stage, const OrvEvent& event) override;
    int input3d(OrvTheater* theater, OrvScene* scene, const OrvEvent& event) override;
};

// The theater's own: on a stage they do nothing.

// Toggles the double buffering of the scene.
class OrvUseDoubleBufferingAccelerator : public OrvAccelerator {
public:
    using OrvAccelerator::OrvAccelerator;
    int input3d(OrvTheater* theater, OrvScene* scene, const OrvEvent& event) override;
};

// Looks at the theater's contents from one side (the name is the one files and
// programs know).
class OrvLooakAtAccelerator : public OrvAccelerator {
public:
    OrvPosition position;  // OrvFront, OrvBack, OrvTop, OrvBottom, OrvLeft, OrvRight
    float margin;          // 0: the largest side of the contents' box
    OrvLooakAtAccelerator(OrvEventType onType, unsigned short onKey, unsigned short onModifiers,
                          OrvPosition side, float eyeMargin)
        : OrvAccelerator(onType, onKey, onModifiers), position(side), margin(eyeMargin) {}
    int input3d(OrvTheater* theater, OrvScene* scene, const OrvEvent& event) override;
};

// Toggles the trackball selection of each selected actor.
class OrvTrackBallAccelerator : public OrvAccelerator {
public:
    using OrvAccelerator::OrvAccelerator;
    int input3d(OrvTheater* theater, OrvScene* scene, const OrvEvent& event) override;
};

// Toggles whether the theater's actors may be selected in the scene.
class OrvSelectableAccelerator : public OrvAccelerator {
public:
    using OrvAccelerator::OrvAccelerator;
    int input3d(OrvTheater* theater, OrvScene* scene, const OrvEvent& event) override;
};

// The key that moves the focus on its release.
extern unsigned short OrvTabKey;

#endif
