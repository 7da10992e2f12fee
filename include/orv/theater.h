// Theaters: the 3D container. A theater owns its actors in layers and shows
// them in any number of scenes, each through its own camera.
#ifndef ORV_THEATER_H
#define ORV_THEATER_H

#include "orv/base.h"
#include "orv/geometry.h"
#include "orv/region.h"
#include "orv/event.h"

#include <iosfwd>

class OrvDirector;
class OrvActor;
class OrvScene;
class OrvStage;
class OrvTheater;
class OrvCamera;
class OrvProducer;
class OrvAccelerator;
class OrvView;
class OrvCallback;
class OrvLinkImage;
struct _OrvLayerPickTree_;  // the hierarchy of a layer's actors, made by its first pick

// The observer of a theater. Every call does nothing by default.
class OrvTheaterHook {
public:
    OrvTheater* theater;  // set by OrvTheater::install

    OrvTheaterHook();
    virtual ~OrvTheaterHook();
    virtual void beforeDraw(const OrvScene* scene, const Orv2dRegion* region);
    virtual void afterDraw(const OrvScene* scene, const Orv2dRegion* region);
    virtual void producer(OrvProducer* oldProducer, OrvProducer* newProducer);
    virtual void contents();
    virtual void orientation(const OrvCamera* camera);
    virtual void mapping(const OrvCamera* camera);
    // 1 forces whole, unscissored frames in that scene.
    virtual unsigned long doNotOptimizeSceneReDraws(const OrvScene* scene);
    virtual void afterCopy(const OrvScene* scene, const Orv2dRegion* region);
    // 1 (the default): the theater deletes the hook when it goes.
    virtual unsigned long deletedByTheater();
};

// One layer of a theater, with its visibility and selectability per scene.
class OrvTheaterLayer {
public:
    enum {
        VisibleBit = 2,
        SelectableBit = 4
    };
    OrvTheater* theater;
    OrvAList sceneFlags;  // const OrvScene* -> word
    OrvActor** actors;
    unsigned count, capacity;
    unsigned short number;

    OrvTheaterLayer(OrvTheater* theater, unsigned short number);
    OrvTheaterLayer(const OrvTheaterLayer&) = delete;
    OrvTheaterLayer& operator=(const OrvTheaterLayer&) = delete;
    virtual ~OrvTheaterLayer();

    void append(OrvActor* actor);
    void insert(OrvActor* actor);  // at the front
    void push(OrvActor* actor);    // to the end (drawn last)
    void pop(OrvActor* actor);     // to the front
    void remove(OrvActor* actor);
    int position(const OrvActor* actor) const;  // -1 when absent
    OrvActor* object(unsigned i) const { return i < count ? actors[i] : nullptr; }
    void apply(void (*function)(OrvActor*, void*), void* data);
    // With deleteThem, link actors go first, then the others.
    void empty(unsigned long deleteThem);

    void setVisible(const OrvScene* scene, unsigned long on);
    unsigned long isVisible(const OrvScene* scene) const;
    void setSelectable(const OrvScene* scene, unsigned long on);
    unsigned long isSelectable(const OrvScene* scene) const;
    // Adds or replaces the scene's word.
    void append(const OrvScene* scene, unsigned long flags);
    void remove(const OrvScene* scene);

    // Renders the visible actors whose projected box meets the region's box (all without one).
    void draw(const OrvScene* scene, const Orv2dRegion* region);
    // The hierarchy of the actors' boxes that contains goes through; made by
    // the first pick, owned.
    mutable _OrvLayerPickTree_* pickTree = nullptr;
    // Renders the actors that are opaque (opaque 1) or transparent (opaque 0); with a
    // list, draws the opaque ones and lists the transparent ones instead.
    void drawTransparency(const OrvScene* scene, const Orv2dRegion* region, unsigned long opaque,
                          OrvList* transparent);

private:
    void grow();
};

class OrvTheater {
public:
    OrvList scenes;  // OrvScene*, connected, not owned
    OrvList layers;  // OrvTheaterLayer*, owned, back to front
    OrvList hooks;   // OrvTheaterHook*
    OrvList accelerators;
    OrvAList callbacks;
    OrvDirector* director;
    OrvActor* pressed;
    OrvActor* lastMoved;
    OrvActor* grabbed;
    OrvActor* focus;
    OrvActor* highlighted = nullptr;  // the actor highlighted under the pointer
    unsigned long anyFocus;
    unsigned long selectionOwner;
    OrvAList selections_;   // each selected actor to itself: what selectionList holds, in order
    OrvList selectionList;  // the selected actors, in order of selection
    unsigned beginDrawingDepth;
    unsigned long lockedFlush;
    unsigned long destroying;

    explicit OrvTheater(OrvDirector* director);
    OrvTheater(const OrvTheater&) = delete;
    OrvTheater& operator=(const OrvTheater&) = delete;
    virtual ~OrvTheater();
    virtual const char* className() const;  // "OrvTheater"

    // ----- Drawing -----------------------------------------------------------
    // Draws the scene (the region only, or all); clear says whether to clear first.
    virtual void drawAll(OrvScene* scene, const Orv2dRegion* region, unsigned long clear);
    // The same in every scene.
    virtual void drawAll(const Orv2dRegion* region, unsigned long clear);
    // Redraws the actor's projected box in each scene, or records it while a scene collects.
    virtual void draw(OrvActor* actor, unsigned long clear);
    // Draws the focus box of the focus actor.
    virtual void drawFocus(OrvScene* scene);
    virtual OrvActor* getFocus() const;
    // Called by a scene when its current camera turned or its projection changed.
    virtual void orientationChanged(const OrvCamera* camera);
    virtual void mappingChanged(const OrvCamera* camera);
    // The view callbacks that connect installs: redraw each scene of the view
    // in the region; after a new size, the first scene's porthole and a full frame.
    virtual void handleExpose(OrvView* view, const Orv2dRegion* region);
    virtual void handleResize(OrvView* view, const Orv2dRect& oldRect, const Orv2dRect& newRect);

    void beginDrawing();
    void flushDrawing(unsigned long clear);
    void abortDrawing();
    // Marks the actor's projected box (and, with links, its linked actors') in every scene.
    void invalidate(const OrvActor* actor, unsigned long links);
    void invalidate(const Orv2dRect& rect);
    void invalidate(const Orv2dRegion& region);
    void setZBuffer(unsigned long on);
    unsigned long initContext(OrvScene* scene);  // 1: contexts belong to views
    void closeContext(OrvScene* scene);

    // ----- Contents ------------------------------------------------------------
    void append(OrvActor* actor, unsigned layer = 0);
    void insert(OrvActor* actor, unsigned layer = 0);
    void remove(OrvActor* actor, unsigned long redraw = 1);
    void remove(OrvActor** actors, unsigned count, unsigned long redraw = 1);
    void push(OrvActor* actor);
    void pop(OrvActor* actor);
    // The layer of that number, made (with those below it) when missing.
    OrvTheaterLayer* layer(unsigned number, unsigned long create = 1);
    OrvTheaterLayer* getLayer(const OrvActor* actor) const;
    unsigned long isLink(const OrvActor* actor) const;
    unsigned long isVisible(const OrvActor* actor) const;
    unsigned cardinal() const;
    // New array (delete[] by the caller), back to front; null when empty.
    OrvActor** objects(unsigned& count) const;
    OrvActor* object(const char* name) const;
    void apply(void (*function)(OrvActor*, void*), void* data);
    // Removes every actor, deleting them with deleteThem.
    void empty(unsigned long deleteThem);
    // The box of all actors, through their matrices (world) or not.
    Orv3dVolume contentsBBox(unsigned long world) const;
    // That box projected into the scene's window.
    Orv2dRect contentsBBoxMapped(const OrvScene* scene) const;
    void contentsChanged();

    // ----- Scenes -------------------------------------------------------------
    // A scene already on a stage.
    void connect(OrvScene* scene);
    // Lays the scene on the stage at the layer, then connects it.
    void connect(OrvScene* scene, OrvStage* stage, unsigned layer);
    void disconnect(OrvScene* scene);
    void setVisible(OrvScene* scene, unsigned long on);
    unsigned long isVisible(const OrvScene* scene) const;
    void setSelectable(OrvScene* scene, unsigned long on);
    unsigned long isSelectable(const OrvScene* scene) const;
    // The scene shown in that view, or null.
    OrvScene* sceneOfView(const void* view) const;
    // Hears the expose and resize of the scene's window, once; and no longer.
    void listen(OrvScene* scene);
    void stopListening(OrvScene* scene);

    // ----- Picking ---------------------------------------------------------------
    // The actor under a window point of the scene, nearest the eye, among those
    // that have a role (role 1), may be highlighted (highlightable 1) and are
    // of the type (null for any); the director's pick record tells where.
    OrvActor* contains(const Orv2dPoint& point, const OrvScene* scene, unsigned long role,
                       unsigned long highlightable, const char* type) const;
    // The same over the handle regions of selected actors only.
    OrvActor* containsDragger(const Orv2dPoint& point, const OrvScene* scene, unsigned long role,
                              unsigned long highlightable, const char* type) const;

    // ----- Input, focus and highlight ------------------------------------------------
    // The scene's view callback: balloons, then accelerators, producers and actors.
    virtual void handleInput(OrvView* view, const OrvEvent& event);
    // The first accelerator that matches takes the event; 1 when one did.
    virtual int dispatchToAccelerators(OrvScene* scene, const OrvEvent& event);
    // Focus keys, the grabbing actor, the focus actor or the actor under the pointer.
    virtual int dispatchToActors(OrvScene* scene, const OrvEvent& event);
    int nofocusDispatch(OrvScene* scene, const OrvEvent& event);
    virtual void setFocus(OrvActor* actor);
    virtual void moveFocusAfter();
    virtual void moveFocusBefore();
    void sendFocusIn(OrvScene* scene, OrvActor* actor);
    void sendFocusOut(OrvScene* scene, OrvActor* actor);
    virtual OrvActor* getHighlighted() const;
    virtual void setHighlighted(const Orv2dPoint& point, OrvActor* actor);

    // ----- Selection, callbacks, clipboard --------------------------------------------
    void deSelect();
    // New array (delete[] by the caller); null when nothing is selected.
    OrvActor** selections(unsigned& count) const;
    OrvActor* selection(unsigned index) const;
    // The selections' projected box in the scene's window.
    Orv2dRect bboxSelections(const OrvScene* scene) const;
    // Told by an actor whose selected state changed.
    void makeSelected(OrvActor* actor);
    // Moves the actor to layer number (made when missing); 1 done.
    unsigned long makeLayer(OrvActor* actor, unsigned short number);
    // Takes the actor out of the theater's tables (focus, grab, selection...),
    // deleting it with deleteIt; 1 when it was there.
    unsigned long clean(OrvActor* actor, unsigned long deleteIt);
    void applyToSelections(void (*function)(OrvActor*, void*), void* data);
    // A theater has no grid: the point itself.
    Orv3dPoint snapToGrid(const Orv3dPoint& point) const { return point; }
    virtual void callCallback(OrvActor* actor, OrvScene* scene) const;
    void registerCallback(const char* name, OrvCallback* callback);
    OrvCallback* getCallback(const char* name) const;
    void removeCallback(const char* name);
    // The selections to the X clipboard as .orv text; cut removes them too.
    virtual void cut();
    virtual void copy();
    // Reads the clipboard's actors into layer 0, their box's centre at where; select selects them.
    virtual void paste(const Orv3dPoint& where, unsigned long select);

    // ----- Links ------------------------------------------------------------------
    // Each joined actor holds, under the keys "T_from" and "T_to", the chain of the
    // links that start and end there, newest first; append and remove keep them.
    void addLink(OrvLinkImage* link);
    void removeLink(OrvLinkImage* link);
    // Takes the links that start or end at the actor out of the theater (and the
    // links that end on those), deleting them with deleteThem.
    void removeLinks(OrvActor* actor, unsigned long deleteThem);
    unsigned fromLinksCardinal(OrvActor* actor) const;
    unsigned toLinksCardinal(OrvActor* actor) const;
    // The nth link, counted from the newest, or null.
    OrvLinkImage* linkFrom(OrvActor* actor, unsigned n) const;
    OrvLinkImage* linkTo(OrvActor* actor, unsigned n) const;
    // Removes and deletes every link, all out of the tables before the first goes.
    void deleteLinks();

    // ----- Accelerators and producers ------------------------------------------------
    void add(OrvAccelerator* accelerator);
    void remove(OrvAccelerator* accelerator);
    // Deletes them all with deleteThem, else only forgets them.
    void removeAccelerators(unsigned long deleteThem);
    void deleteAccelerators(OrvEventType type, unsigned short key, unsigned short modifiers);
    // The 26 default keys; flag adds the trackball's.
    void installAccelerators(unsigned long flag);
    // The current producer of the producer's scene (null: none in any scene).
    void setProducer(OrvProducer* producer);
    void pushProducer(OrvProducer* producer);
    void remove(OrvProducer* producer);
    OrvProducer* getProducer(const OrvScene* scene) const;
    OrvAList sceneProducers;  // const OrvScene* -> its current OrvProducer*

    // ----- Files --------------------------------------------------------------------
    // The 3D stream: the actors, then the default scene when one is given.
    virtual void save(const char* file, const OrvScene* defaultScene = nullptr);
    virtual void save(std::ostream& out, const OrvScene* defaultScene = nullptr);
    // Appends what the stream holds (at layer when it is not negative); the default
    // scene comes back through scene (null without one). 1 read, 0 after the message.
    virtual unsigned long read(const char* file, OrvScene*& scene, int layer);
    virtual unsigned long read(std::istream& in, OrvScene*& scene, int layer);
    unsigned long read(const char* file, int layer);
    unsigned long read(std::istream& in, int layer);

    // ----- Hooks ----------------------------------------------------------------
    void install(OrvTheaterHook* hook);
    void remove(OrvTheaterHook* hook);
    void beforeDraw(const OrvScene* scene, const Orv2dRegion* region);
    void afterDraw(const OrvScene* scene, const Orv2dRegion* region);
    void producerChanged(OrvProducer* oldProducer, OrvProducer* newProducer);
    void afterCopy(const OrvScene* scene, const Orv2dRegion* region);
    unsigned long doNotOptimizeSceneReDraws(const OrvScene* scene) const;

protected:
    void init();
    void drawAllInternal(OrvScene* scene, const Orv2dRegion* region);
    // An actor that came in: its links and its selection enter the tables.
    void welcome(OrvActor* actor);
    // An actor that leaves: no input field, selection, highlight or link table names it.
    void forget(OrvActor* actor);
    // All actors leave: the input fields, the highlight and the selections are cleared.
    void forgetAll();
    // The destructor's share: forgetAll, and the callbacks released.
    void releaseInput();
};

#endif
