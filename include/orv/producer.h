// Producers: the interaction modes of a stage or a scene. The current one has
// the first offer of every input event and may draw a ghost by exclusive or.
#ifndef ORV_PRODUCER_H
#define ORV_PRODUCER_H

#include "orv/base.h"
#include "orv/geometry.h"
#include "orv/canvas.h"
#include "orv/event.h"

class OrvActor;
class OrvStage;
class OrvScene;
class OrvTheater;
class OrvDirector;
class OrvMakeUp;
class Orv2dRegion;
class Orv2dMatrix;
struct Orv3dMatrix;

class OrvProducer {
public:
    OrvScene* scene;  // null for a stage producer
    OrvTheater* theater;
    OrvStage* stage;  // null for a scene producer
    OrvProducer* previous;

    // Appended to the stage's producers, which the stage deletes.
    explicit OrvProducer(OrvStage* forStage, OrvProducer* previousProducer = nullptr);
    // Appended to the scene's producers, which the scene deletes.
    explicit OrvProducer(OrvScene* forScene, OrvProducer* previousProducer = nullptr);
    OrvProducer(const OrvProducer&) = delete;
    OrvProducer& operator=(const OrvProducer&) = delete;
    virtual ~OrvProducer();

    virtual int input2d(const OrvEvent& event);
    virtual int input3d(const OrvEvent& event);
    virtual void expose2d(const Orv2dRegion* region);
    virtual void expose3d(const Orv2dRegion* region);
    virtual void abort();
    virtual void init();
    virtual void setTheater(OrvTheater* theater);
    virtual const char* className() const = 0;
    // Whether a gesture is under way; an owner asks this of its sub-producers.
    virtual unsigned long isActive() const { return 0; }

    OrvDirector* director() const;
    // The stage's transformer; null for identity or without a stage.
    const Orv2dMatrix* toStage() const;
    void setStage(OrvStage* stage);
    // Leaves the stage or scene it served (and the theater, where it was current) for
    // the scene; unlike setStage, it does not join the scene's list of producers.
    void setScene(OrvScene* scene);
    // The scene's matrices from world (or, with invariant, invariant space) to the
    // window, and back; null without a scene.
    const Orv3dMatrix* toScene(unsigned long invariant) const;
    const Orv3dMatrix* toWorld(unsigned long invariant) const;
    // Makes the previous producer current again.
    void callPrevious();

protected:
    // A point of the window mapped back through the inverse of the transformer.
    Orv2dPoint unmap(const Orv2dPoint& p) const;
    // A point of the stage's space mapped through the transformer.
    Orv2dPoint map(const Orv2dPoint& p) const;
    // The stage's snapToGrid, then mapped back.
    Orv2dPoint snapped(long x, long y) const;
    // The director of the scene.
    OrvDirector* sceneDirector() const;
};

// Moves the selections: a press picks and selects, a drag shows a ghost of
// the selections' box, the release applies the translation.
class OrvMoveProducer : public OrvProducer {
public:
    unsigned long immediate;
    unsigned short mask;
    unsigned long active;
    unsigned long wasSelected;
    Orv2dPoint start, current;
    // In a scene: the points under the pointer at the press and now, in world space (the
    // picked actor's space when it is invariant), at the window depth of the picked point.
    Orv3dPoint start3d, current3d;
    unsigned long gesture;        // of the drag under way: its steps undo as one
    float pickDepth;              // that window depth
    unsigned long pickInvariant;  // the picked actor is invariant

    explicit OrvMoveProducer(OrvStage* forStage, OrvProducer* previousProducer = nullptr);
    explicit OrvMoveProducer(OrvScene* forScene, OrvProducer* previousProducer = nullptr);
    int input2d(const OrvEvent& event) override;
    void expose2d(const Orv2dRegion* region) override;
    // In a scene the ghost is the box of the selections, drawn by boxGhost.
    int input3d(const OrvEvent& event) override;
    void expose3d(const Orv2dRegion* region) override;
    void abort() override;
    const char* className() const override { return "Move"; }
    unsigned long isActive() const override { return active; }
    virtual void activate2d(const Orv2dPoint& delta);
    // Translates each selected actor by to - from.
    virtual void activate3d(const Orv3dPoint& from, const Orv3dPoint& to);

private:
    // The point under a window point at the picked depth.
    Orv3dPoint unproject(long x, long y) const;
};

// Resizes a selected actor by one of its eight handles.
class OrvReshapeProducer : public OrvProducer {
public:
    OrvPosition position;
    unsigned long immediate;
    unsigned short mask;
    OrvActor* actor;
    Orv2dPoint point;       // the moving corner, in the stage's space
    unsigned long gesture;  // of the drag under way: its steps undo as one
    Orv3dPoint point3d;
    OrvProducer* polylineEditor;  // owned; edits the vertices of polylines

    explicit OrvReshapeProducer(OrvStage* forStage, OrvProducer* previousProducer = nullptr);
    explicit OrvReshapeProducer(OrvScene* forScene, OrvProducer* previousProducer = nullptr);
    ~OrvReshapeProducer() override;
    int input2d(const OrvEvent& event) override;
    void expose2d(const Orv2dRegion* region) override;
    void abort() override;
    void init() override;
    const char* className() const override { return "Reshape"; }
    unsigned long isActive() const override { return actor != nullptr; }
    virtual void activate2d(OrvActor* actor, const Orv2dRect& rect);
    virtual void activate3d(OrvActor* actor, const Orv3dPoint& from, const Orv3dPoint& to);

    // The new box in window space, from the handle's position and the point.
    Orv2dRect compute2d() const;
    // compute2d for any box, point and handle position.
    static Orv2dRect computeBox(const Orv2dRect& b, const Orv2dPoint& p, OrvPosition position);
    // Replaces the owned polyline editor.
    void setPolylineEditor(OrvProducer* editor);

private:
    int editorActive() const;
};

// Rotation exists only in a scene.
class OrvRotateProducer : public OrvProducer {
public:
    explicit OrvRotateProducer(OrvStage* forStage, OrvProducer* previousProducer = nullptr)
        : OrvProducer(forStage, previousProducer) {}
    const char* className() const override { return "Rotate"; }
    virtual void activate3d(const Orv3dPoint& from, const Orv3dPoint& to);
};

// Drags out a rectangle and hands it to activate2d.
class OrvRectangleProducer : public OrvProducer {
public:
    Orv2dPoint start, end;  // in the stage's space; in a scene, window points
    Orv3dPoint start3d, end3d;
    unsigned long active;
    unsigned short mask;
    unsigned long ghostClipSet;  // 1 while expose3d has clipped the ghost to its region

    explicit OrvRectangleProducer(OrvStage* forStage, OrvProducer* previousProducer = nullptr);
    explicit OrvRectangleProducer(OrvScene* forScene, OrvProducer* previousProducer = nullptr);
    int input2d(const OrvEvent& event) override;
    void expose2d(const Orv2dRegion* region) override;
    int input3d(const OrvEvent& event) override;
    void expose3d(const Orv2dRegion* region) override;
    const char* className() const override { return "DragRectangle"; }
    unsigned long isActive() const override { return active; }
    virtual void ghost2d(const OrvMakeUp* makeUp, const Orv2dRect& rect);
    virtual void activate2d(const Orv2dRect& rect);
    // The scene's rectangleGhost of the window rectangle.
    virtual void ghost3d(const Orv2dRect& rect);
    virtual void activate3d(const Orv2dRect& rect);
};

// Rubber-band selection: what lies inside the rectangle becomes the selection.
class OrvSelectRectangleProducer : public OrvRectangleProducer {
public:
    explicit OrvSelectRectangleProducer(OrvStage* forStage, OrvProducer* previousProducer = nullptr)
        : OrvRectangleProducer(forStage, previousProducer) {}
    explicit OrvSelectRectangleProducer(OrvScene* forScene, OrvProducer* previousProducer = nullptr)
        : OrvRectangleProducer(forScene, previousProducer) {}
    const char* className() const override { return "DragSelectRectangle"; }
    void activate2d(const Orv2dRect& rect) override;
    // Selects the actors of the theater that lie inside3d the window rectangle.
    void activate3d(const Orv2dRect& rect) override;
};

// The usual editing mode: a press on a handle reshapes, on an actor moves,
// on empty space drags a selection rectangle.
class OrvSelectProducer : public OrvProducer {
public:
    OrvMoveProducer* move;
    OrvReshapeProducer* reshape;
    OrvSelectRectangleProducer* selectRectangle;  // null in a scene: pick3d serves there
    OrvProducer* pick3d;                          // used only in a scene: its selection rectangle
    OrvProducer* rotate3d;                        // used only in a scene
    OrvProducer* extra;                           // asked first while it is active
    OrvProducer* inUse;                           // the sub-producer of the running gesture
    unsigned short mask1, mask2;

    explicit OrvSelectProducer(OrvStage* forStage, OrvProducer* previousProducer = nullptr);
    explicit OrvSelectProducer(OrvScene* forScene, OrvProducer* previousProducer = nullptr);
    ~OrvSelectProducer() override;
    int input2d(const OrvEvent& event) override;
    void expose2d(const Orv2dRegion* region) override;
    int input3d(const OrvEvent& event) override;
    void expose3d(const Orv2dRegion* region) override;
    void abort() override;
    void init() override;
    void setTheater(OrvTheater* theater) override;
    const char* className() const override { return "Select"; }
    // Replaces the owned extra producer; it is asked first while it is active.
    void setExtra(OrvProducer* producer);

private:
    // Takes a sub-producer out of the list of the stage or scene, which would delete it.
    void adopt(OrvProducer* producer);
};

#endif
