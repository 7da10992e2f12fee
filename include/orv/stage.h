// OrvStage: a window that shows 2D actors in numbered layers and repaints
// what changed, once per outermost nest of beginDrawing/flushDrawing.
#ifndef ORV_STAGE_H
#define ORV_STAGE_H

#include "orv/base.h"
#include "orv/geometry.h"
#include "orv/region.h"
#include "orv/view.h"

#include <iosfwd>

class OrvActor;
class OrvStageLayer;
class OrvAccelerator;
class OrvProducer;
class OrvCallback;
class OrvExitCallback;
class OrvBitmap;
class OrvCanvas;
class OrvMakeUp;
class OrvStage;
class OrvScene;
class OrvLinkImage;
class OrvUndoStack;
class OrvTheater;

// Observer of a stage's drawing cycle and contents. Every default does
// nothing; a hook whose deletedByStage() is true dies with its stage.
class OrvStageHook {
public:
    OrvStage* stage;

    OrvStageHook();
    virtual ~OrvStageHook();
    virtual void beforeDraw(const OrvCanvas*, const Orv2dMatrix*, const Orv2dRegion*);
    virtual void afterDraw(const OrvCanvas*, const Orv2dMatrix*, const Orv2dRegion*);
    virtual void producer(OrvProducer* newProducer, OrvProducer* oldProducer);
    virtual void transformer(const Orv2dMatrix* newMatrix, const Orv2dMatrix* oldMatrix);
    virtual void contents();
    virtual void stageResized();
    virtual void afterCopy(const OrvCanvas*, const Orv2dMatrix*, const Orv2dRegion*);
    virtual void invalidateActorCall(const OrvActor*);
    virtual unsigned long deletedByStage() const;
};

// Dots at regular steps in stage coordinates, drawn under the layers.
class OrvStageGrid {
public:
    OrvMakeUp* makeUp;
    Orv2dPoint origin;
    unsigned long spacingX, spacingY;
    unsigned long everyX, everyY;
    unsigned long active;
    unsigned long snapping;

    OrvStageGrid(OrvMakeUp*, const Orv2dPoint& origin, unsigned long spacingX,
                 unsigned long spacingY, unsigned long snapping, unsigned long active,
                 unsigned long everyX, unsigned long everyY);
    virtual ~OrvStageGrid();
    virtual Orv2dPoint snap(const Orv2dPoint&);
    virtual void draw(OrvCanvas*, const Orv2dMatrix*, const Orv2dRegion&);
};

// Switches of the drawing cycle: hooks are told only while both are set.
extern unsigned int OrvAllowCallContentsChanged;
extern unsigned int OrvAllowHooksUpdated;

class OrvStage : public OrvView {
public:
    OrvList layers;           // OrvStageLayer*, drawn in list order
    OrvList selectionList;    // OrvActor*, in order of selection (selections() copies it)
    Orv2dRegion invalidated;  // what the flush of the outermost nest repaints
    unsigned int nesting;
    Orv2dMatrix* transformer;  // null means identity; owned
    OrvList accelerators;
    OrvProducer* producer;
    OrvList producers;
    OrvActor* pressedActor;
    OrvKey* fromKey;
    OrvKey* toKey;
    OrvActor* pointerActor;
    OrvActor* focusActor;
    OrvActor* highlightedActor;
    unsigned long focusEnabled;
    unsigned long highlightEnabled;
    OrvActor* grabActor;
    unsigned long resizeContents;
    OrvAList callbacks;
    OrvList hooks;       // OrvStageHook*
    OrvStageGrid* grid;  // owned
    unsigned long destroying;
    OrvUndoStack* undoStack;  // not owned; null records no history
    OrvExitCallback* exitCallback;

    // Drawing cycle
    OrvStage(OrvDirector*, const Orv2dRect&, const char* title, unsigned int viewStyle,
             unsigned long shown);
    OrvStage(OrvView* parentView, const Orv2dRect&, unsigned long shown);
    OrvStage(OrvDirector*, void* parentWindow, const Orv2dRect&, unsigned long shown);
    OrvStage(OrvDirector*, void* window);
    ~OrvStage() override;

    const char* className() const override;
    void handleExpose(const Orv2dRegion*) override;
    void handleResize(const Orv2dRect& oldRect, const Orv2dRect& newRect) override;

    virtual void drawAll(const Orv2dRegion*, unsigned long erase);
    virtual void draw(OrvActor*, unsigned long erase);
    virtual void fitToContents();
    // The stage's actors in the text format, and back; reading appends the
    // actors read, in `layer` unless it is -1, and gives the saved size.
    virtual void save(std::ostream& out);
    virtual void save(const char* file);
    virtual unsigned long read(const char* file, Orv2dRect& size, int layer);
    virtual unsigned long read(std::istream& in, Orv2dRect& size, int layer);
    virtual void applyResize(float fx, float fy);
    virtual OrvActor* getFocus() const;
    virtual void drawFocus(OrvCanvas*, const Orv2dMatrix*);

    void beginDrawing();
    void flushDrawing(unsigned long erase);
    void abortDrawing();
    void invalidate(const OrvActor*, unsigned long withLinks);
    void invalidate(const Orv2dRect&);
    void invalidate(const Orv2dRegion&);
    void useDoubleBuffer(unsigned long on);
    OrvBitmap* hasDoubleBuffer() const;
    void bufferedDraw(const Orv2dRect&);
    void bufferedDraw(const Orv2dRegion&);
    void bufferedDraw(OrvBitmap* target, const Orv2dPoint& at);
    // Grid, visible layers and focus on a canvas, as every repaint paints them.
    void paintLayers(OrvCanvas*, const Orv2dMatrix*, const Orv2dRegion*);

    void addTransformer(const Orv2dMatrix&);
    void toStage(const Orv2dMatrix*);
    const Orv2dMatrix* toStage() const;
    void translate(long dx, long dy);
    void zoom(const Orv2dPoint&, float sx, float sy);
    void fitTransformerToContents();
    Orv2dRect contentsBBox(const Orv2dMatrix*) const;
    Orv2dRect bboxSelections(const Orv2dMatrix*) const;
    unsigned long clean(OrvActor*, unsigned long deleteIt);
    void empty(unsigned long deleteActors);

    void install(OrvStageHook*);
    void remove(OrvStageHook*);
    void setGrid(OrvStageGrid*);
    Orv2dPoint snapToGrid(const Orv2dPoint&) const;

    void beforeDraw(const OrvCanvas*, const Orv2dMatrix*, const Orv2dRegion*);
    void afterDraw(const OrvCanvas*, const Orv2dMatrix*, const Orv2dRegion*);
    void afterCopy(const OrvCanvas*, const Orv2dMatrix*, const Orv2dRegion*);
    void producerChanged(OrvProducer* newProducer, OrvProducer* oldProducer);
    void transformerChanged(const Orv2dMatrix* newMatrix, const Orv2dMatrix* oldMatrix);
    void stageResized();
    void invalidateActorCall(const OrvActor*);
    void contentsChanged();

    // Layers and membership
    // The layer numbered n; with create, the missing layers up to n are made.
    OrvStageLayer* layer(unsigned int n, unsigned long create = 0) const;
    OrvStageLayer* getLayer(const OrvActor* actor) const;
    void append(OrvActor* actor, unsigned int layer = 0);
    void insert(OrvActor* actor, unsigned int layer = 0);
    void remove(OrvActor* actor, unsigned long deleteIt);
    void remove(OrvActor** actors, unsigned int n, unsigned long deleteIt);
    unsigned long pop(OrvActor* actor);
    unsigned long push(OrvActor* actor);
    unsigned long makeLayer(OrvActor* actor, unsigned short n);
    unsigned long isVisible(const OrvActor* actor) const;
    // Hit test from the highest layer down; a null matrix means the transformer.
    OrvActor* contains(const Orv2dPoint& point, const Orv2dMatrix* matrix = nullptr,
                       unsigned long withRole = 0, const char* type = nullptr) const;
    OrvActor* containsDragger(const Orv2dPoint& point, const Orv2dMatrix* matrix = nullptr,
                              unsigned long withRole = 0, const char* type = nullptr) const;
    void apply(void (*function)(OrvActor*, void*), void* data);
    void applyToSelections(void (*function)(OrvActor*, void*), void* data);
    void makeSelected(OrvActor* actor);
    void deSelect();
    OrvActor* selection(unsigned int n) const;
    // The selected actors in order of selection, then a null: a new array, free with delete[];
    // null when nothing is selected.
    OrvActor** selections(unsigned int& count) const;
    // All actors, layer by layer from the bottom, then a null: a new array, free with delete[];
    // null when the stage is empty.
    OrvActor** objects(unsigned int& count) const;
    OrvActor* object(const char* actorName) const;
    unsigned int cardinal() const;
    unsigned long isLink(const OrvActor* actor) const;

    // Links: each joined actor keeps the links that start and end at it.
    // Pushes the link on the front of its ends' lists; append calls it.
    void addLink(OrvLinkImage* link);
    // Takes the link out of both lists.
    void removeLink(OrvLinkImage* link);
    // Removes (and with deleteThem deletes) every link at the actor, and the
    // links that end on those links, in a nest.
    void removeLinks(OrvActor* actor, unsigned long deleteThem);
    unsigned int fromLinksCardinal(OrvActor* actor) const;
    unsigned int toLinksCardinal(OrvActor* actor) const;
    // The nth link starting (ending) at the actor, from the newest, or null.
    OrvLinkImage* linkFrom(OrvActor* actor, unsigned int n) const;
    OrvLinkImage* linkTo(OrvActor* actor, unsigned int n) const;

    // Undo: the stack that records this stage's edits (shared or not, the
    // application keeps it), or null to record none.
    void setUndoStack(OrvUndoStack* stack);
    // Binds undo and redo to keys; by default Alt-Z and Alt-Y, since control-Z
    // zooms in among the default accelerators.
    void installUndoAccelerators(unsigned short undoKey = 'z',
                                 unsigned short undoModifiers = 0x0800,
                                 unsigned short redoKey = 'y',
                                 unsigned short redoModifiers = 0x0800);

    // Event routing
    void handleInput(const OrvEvent& event) override;
    void handleQuit() override;
    virtual void setFocus(OrvActor* actor);
    virtual void moveFocusAfter();
    virtual void moveFocusBefore();
    virtual void callCallback(OrvActor* actor) const;
    virtual void cut();
    virtual void copy();
    virtual void paste(const Orv2dPoint& where, unsigned long select);
    virtual int dispatchToAccelerators(const OrvEvent& event);
    virtual int dispatchToActors(const OrvEvent& event);
    virtual OrvActor* getHighlighted() const;
    virtual void setHighlighted(const Orv2dPoint& point, OrvActor* actor);
    // For a stage with focus handling off and no focus actor.
    int nofocusDispatch(const OrvEvent& event);
    void sendFocusIn(OrvActor* actor);
    void sendFocusOut(OrvActor* actor);
    void add(OrvAccelerator* accelerator);
    unsigned long remove(OrvAccelerator* accelerator);
    void removeAccelerators(unsigned long deleteThem);
    // A key or modifiers of 0 matches anything.
    void deleteAccelerators(OrvEventType type, unsigned short key, unsigned short modifiers);
    // The default table: zoom, scroll, select, delete, cut, copy, paste...
    void installAccelerators(unsigned long readOnly);
    // Counted; a later registration under a name shadows the earlier one.
    void registerCallback(const char* callbackName, OrvCallback* callback);
    OrvCallback* getCallback(const char* callbackName) const;
    void removeCallback(const char* callbackName);
    void onExit(OrvExitCallback* callback);
    void setProducer(OrvProducer* producer);
    // Like setProducer, without init() and without telling the hooks.
    void pushProducer(OrvProducer* producer);
    void remove(OrvProducer* producer);
    OrvProducer* getProducer() const;
    // Drops callbacks, the exit callback and accelerators; the destructor's share.
    void releaseInput();

private:
    void init();
    void collapseInvalidated();
    void transformerReplaced(const Orv2dMatrix* oldMatrix);
    // Deletes every link of every layer, all out of the tables before any is
    // deleted, so that emptying layers one by one meets no link whose end is gone.
    void deleteLinks();
};

#endif
