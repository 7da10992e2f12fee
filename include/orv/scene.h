// Scenes: 3D views of a theater. A scene is a frame on a stage whose interior
// is a GL child window; it holds the cameras, the matrices between world and
// window, the rendering settings and the drawing operations actors call
// while a frame is drawn.
#ifndef ORV_SCENE_H
#define ORV_SCENE_H

#include "orv/frame.h"
#include "orv/camera.h"
#include "orv/light.h"
#include "orv/theater.h"
#include "orv/vertex.h"

class OrvCanvas;

typedef unsigned long OrvTransparencyType;
enum {
    OrvTransparencyNone = 0,    // layers in order, no blending
    OrvTransparencyBlend = 1,   // layers in order, blending on
    OrvTransparencyLayers = 2,  // each layer twice: opaque actors, then the others
    OrvTransparencySorted = 3   // opaque first, then the others farthest first
};

typedef unsigned long OrvInteractiveMode;
enum {
    OrvInteractiveFull = 1,             // actors in full, depth test on
    OrvInteractiveNoDepth = 2,          // actors in full
    OrvInteractiveLines = 4,            // faces forced to lines
    OrvInteractiveInvariantBoxes = 16,  // invariant actors as boxes
    OrvInteractiveBoxes = 32            // other actors as boxes
};

class OrvScene;

// Keeps a scene's scroll bars in step with the theater's contents and camera.
// x and y are the origin of the contents in the window at the last adjustment, in bar units.
class OrvFrameTheaterHook : public OrvTheaterHook {
public:
    OrvFrame* frame;
    long x, y;

    explicit OrvFrameTheaterHook(OrvFrame* frame);
    void contents() override;
    // Only for a camera of the frame's scene.
    void orientation(const OrvCamera* camera) override;
    void mapping(const OrvCamera* camera) override;
    unsigned long deletedByTheater() override;  // 0: the frame owns it
};

class OrvScene : public OrvFrame {
public:
    OrvList cameras;  // owned OrvCamera*; a removed one leaves a null entry
    unsigned currentCameraIndex;
    Orv3dMatrix worldToScene;  // world to window pixels
    Orv3dMatrix sceneToWorld;
    Orv3dMatrix viewportInverse;  // window pixels to normalised device coordinates
    Orv3dMatrix invariantToScene;
    Orv3dMatrix sceneToInvariant;
    Orv3dRect porthole_;  // the viewport as a fraction of the window, from the bottom left
    unsigned long portholeChanged;
    unsigned long buffersEqual;
    Orv3dRect currentScissor;
    unsigned long mappingValid;
    Orv2dRegion invalidRegion;  // what waits to be redrawn
    unsigned drawingDepth;
    Orv3dPoint centre, centreCopy;
    unsigned long zBuffer;
    mutable const OrvMakeUp* lastMakeUp;
    mutable unsigned long lastMakeUpLines;
    mutable unsigned long immediateDrawing;
    unsigned long contextActive;
    OrvEnvironment* environment_;  // counted, may be null
    unsigned long lightAllowed;
    OrvList lights;  // OrvLight*, owned
    unsigned long textureAllowed;
    unsigned long dithering;
    OrvTransparencyType transparencyType;
    unsigned long useScissor;
    float repaintThreshold;
    OrvMakeUp* focusMakeUp_;      // counted
    OrvMakeUp* highlightMakeUp_;  // counted
    OrvMakeUp* highlightRender;   // counted
    mutable const OrvMakeUp* shadowMakeUp;
    mutable unsigned long textureOn_;
    OrvInteractiveMode interactiveMode;
    unsigned long roleProducerAcc;
    mutable unsigned long renderInvariant;
    mutable const Orv3dMatrix* renderMatrix;
    mutable unsigned long renderFaceFlag;
    OrvList producers;  // owned
    unsigned long destroying;
    // The GL material in force: front diffuse, ambient, specular, emissive, then back.
    mutable OrvRGB material[8];
    mutable float frontShininess, backShininess, frontAlpha, backAlpha;
    mutable unsigned long materialTwoSided, colorInMaterial, emissiveSet;
    unsigned long meterStarted;
    mutable unsigned long meterFrames, meterTriangles;
    double meterStartTime;
    unsigned long meterCounting;

    // flag: the frame's interiorVisible; a null make-up is the director's default.
    OrvScene(OrvDirector* director, const Orv2dRect& box, unsigned long flag,
             OrvMakeUp* look = nullptr);
    // Copies the settings and the cameras; shares the make-ups, copies the lights.
    OrvScene(const OrvScene& source);
    ORV_PERSISTENT_ACTOR(OrvScene)
    ~OrvScene() override;

    // ----- Cameras ---------------------------------------------------------------
    // Stores a copy in the first free entry; returns its index.
    unsigned add(const OrvCamera& camera);
    unsigned cameraCardinal() const;  // entries, null ones too
    // That camera, or the current one for a free or missing entry.
    OrvCamera* getCamera(unsigned index) const;
    OrvCamera* currentCamera() const;
    void useCamera(unsigned index);
    void removeCamera(unsigned index);
    void removeAllCameras();
    // Called by a camera of this scene: recompute and redraw when it is the current one.
    void updateSceneOrientation(const OrvCamera* camera);
    void updateSceneMapping(const OrvCamera* camera);
    void updateSceneRatio(const OrvCamera* camera);

    // ----- Settings (each ends rendering; most redraw) -------------------------------
    void useZBuffer(unsigned long on);
    void allowLighting(unsigned long on);
    void allowTexture(unsigned long on);
    void dither(unsigned long on);
    void setTransparencyType(OrvTransparencyType type);
    void add(OrvLight* light);  // the scene owns it
    void remove(OrvLight* light);
    void removeLights(unsigned long deleteThem);
    OrvLight* getLight(unsigned short index) const;
    void environment(OrvEnvironment* environment);
    OrvEnvironment* environment() const { return environment_; }
    void focusMakeUp(OrvMakeUp* makeUp);
    void highlightMakeUp(OrvMakeUp* makeUp);
    // The viewport from a rectangle's size (x and y are ignored); 0 when it
    // would leave the window, or without a window.
    unsigned long porthole(const Orv2dRect& rect);
    // Recomputes the matrices between world, device and window.
    void computeWorldScene();
    unsigned long contextOk() const { return 1; }

    // ----- Performance meter ------------------------------------------------------
    void startPerformanceMeter();
    void stopPerformanceMeter();
    void startToCountOffPerformanceMeter();
    unsigned long isPerformanceMeterStarted() const { return meterStarted; }
    unsigned long startToCountPerformanceMeter() const { return meterCounting; }
    unsigned long trianglesPerFrame() const;
    unsigned long framesPerSecond() const;
    unsigned long trianglesPerSecond() const;

    // ----- Collecting what to redraw -------------------------------------------------
    void beginDrawingTheater();
    void abortDrawingTheater();
    void invalidateTheater(const OrvActor* actor);
    void invalidateTheater(const Orv2dRect& rect);
    void invalidateTheater(const Orv2dRegion& region);
    // Draws what was collected when the outermost call ends.
    void flushDrawingTheater(OrvTheater* theater, unsigned long clear);
    void wait() const;

    // ----- Family 5: drawing during a frame ---------------------------------------
    virtual void points(const OrvMakeUp* makeUp, unsigned count, const Orv3dPoint* points,
                        const unsigned* index) const;
    virtual void markers(const OrvMakeUp* makeUp, unsigned count, const Orv3dPoint* points,
                         const unsigned* index) const;
    virtual void line(const OrvMakeUp* makeUp, const Orv3dPoint& from, const Orv3dPoint& to) const;
    virtual void polyLine(const OrvMakeUp* makeUp, unsigned count, const Orv3dPoint* points,
                          unsigned indexCount, const unsigned* index) const;
    // Wire frame of the volume.
    virtual void box(const OrvMakeUp* makeUp, const Orv3dVolume& volume) const;
    virtual void rectangle(const OrvMakeUp* makeUp, const Orv3dPoint& p1, const Orv3dPoint& p2,
                           const Orv3dPoint& p3, const Orv3dPoint& p4, unsigned long filled) const;
    virtual void polygon(const OrvMakeUp* makeUp, const OrvPolygon* polygon, const OrvRGB* color,
                         const Orv3dVector* normal, unsigned long closed) const;
    virtual void polygon(const OrvMakeUp* makeUp, const OrvFaceSet* faceSet,
                         unsigned long closed) const;
    virtual void series(const OrvMakeUp* makeUp, const OrvSeries* series, const OrvRGB* faceColors,
                        const OrvColor* const* faceMaterials) const;
    // Applies the make-up only.
    virtual void bitblit(const OrvMakeUp* makeUp, const OrvCanvas* canvas, const Orv2dRect& rect,
                         const Orv2dPoint& point) const;
    // Draws the actor flattened onto the plane along the light's direction.
    virtual void shadow(const OrvMakeUp* makeUp, const OrvActor* actor, const Orv3dPlane& plane,
                        const Orv3dVector& light) const;

    // ----- Family 7: engine of the scene ------------------------------------------------
    // Share of the window (onScreen) and of the actor (visible) that the actor covers.
    virtual void levelOfDetail(const OrvActor* actor, float& onScreen, float& visible) const;
    virtual void setInteractiveMode(OrvInteractiveMode mode);
    // Shows the back buffer: the region alone when scissored, else by a swap.
    virtual unsigned long bitblit(const Orv2dRegion& region, unsigned long flag);
    virtual void installTheaterHook(OrvTheater* theater);
    virtual unsigned long isInvalidatingTheater() const { return drawingDepth; }
    // The hand-made cull test of a face drawn immediately: 1 draw, 0 culled.
    virtual unsigned long renderFace(OrvCullingMode mode, const Orv3dPoint* points3d,
                                     const Orv4dPoint* points4d, const unsigned* index,
                                     unsigned count) const;
    virtual void show();
    virtual void hide();
    virtual void onQuit(OrvCallback* callback);
    virtual void beginRendering(const Orv2dRegion* region);
    virtual void flushRendering();
    virtual void endRendering();
    virtual void renderProjectionMatrix(const Orv2dRegion* region);
    virtual void renderClear(const Orv2dRegion* region);
    virtual void* context() const;                // the GLX context
    virtual unsigned long drawingCanvas() const;  // the X window, 0 without a view
    virtual unsigned long renderTextureCoordinate(const OrvMakeUp* makeUp) const;
    virtual unsigned long renderTexture() const;
    virtual unsigned long isOffScreenRenderer() const { return 0; }

    // ----- Family 6: ghosts --------------------------------------------------------------
    // Rubber-band feedback drawn by exclusive or on the window, over what GL drew: a
    // second call with the same arguments takes it away. Points are window pixels;
    // clipSet 1 says the caller has clipped the ghost already (ghostClip), otherwise
    // the ghost is clipped to the window.
    virtual void lineGhost(const Orv2dPoint& from, const Orv2dPoint& to, unsigned long clipSet = 0);
    virtual void polyLineGhost(unsigned long count, const Orv2dPoint* points,
                               unsigned long clipSet = 0);
    // Angles in degrees; the second is an end, not an extent.
    virtual void arcGhost(const Orv2dRect& box, float start, float end, unsigned long clipSet = 0);
    virtual void stringGhost(const Orv2dPoint& point, const char* text, unsigned long clipSet = 0);
    virtual void bezierGhost(unsigned long count, const Orv2dPoint* points,
                             unsigned long clipSet = 0);
    virtual void rectangleGhost(const Orv2dRect& box, unsigned long clipSet = 0);
    // A box from its eight projected corners, the near face (0 to 3) first, in the
    // order of Orv3dVolume::getVertex; only the edges that show are drawn.
    virtual void boxGhost(const Orv2dPoint* eight, unsigned long clipSet = 0);
    // The same from window points (x, y and depth), truncated to pixels.
    virtual void boxGhost(const Orv3dPoint* eight, unsigned long clipSet = 0);
    // Clips the ghosts to the bounding box of the region until the next ghost ends
    // (null takes the clip away): what a partial redraw repainted.
    void ghostClip(const Orv2dRegion* region);

    // Makes both buffers hold the picture before a ghost is drawn on it.
    void swapForGhost();
    void restoreCurrentMaterial() const;
    void restoreCurrentEmissiveMaterial() const;

    // ----- Frame, actor and 3D actor members it overrides -------------------------------
    OrvView* buildStage(OrvStage* stage, const Orv2dRect& box) const override;
    void make(OrvStage* stage, const Orv2dMatrix* matrix) override;
    OrvStage* getInteriorStage() const override;  // null: the interior is a GL view
    void useDoubleBuffer(unsigned long on) override;
    void adjust() override;
    void adjustScrollBars() override;
    void setBackground(OrvColor* color) override;
    void setDefaultAttachments(long flag) override;
    void beginDrawing(unsigned long withLinks) override;
    void flushDrawing(unsigned long withLinks) override;
    void setTheater(OrvTheater* theater) override;
    // The window's own rectangle, as far as its parent shows it; empty without a window.
    Orv2dRect bboxVisible() const override;
    // Also hooks the bars to the theater when the scene has one.
    unsigned long showScrollBars(unsigned long horizontal, unsigned long vertical,
                                 OrvPosition hPosition, OrvPosition vPosition,
                                 unsigned short width) override;

    static Orv3dMatrix _invariantProjection;  // y downward, for invariant actors

    // What renderFace projects through: the scene's matrix times the actor's,
    // made at the first face and kept until the render-face words or the world
    // matrices change (one product a vertex instead of two).
    mutable Orv3dMatrix cullMatrix;
    mutable unsigned long cullValid;
    mutable const Orv3dMatrix* cullSource;  // the renderMatrix it was made with
    mutable unsigned long cullInvariant;    // and the renderInvariant

protected:
    OrvFrameTheaterHook* theaterHook;  // owned
    // Sets every field to its start value; adds no camera.
    void initScene();
    // The viewport rectangle in window pixels, squared when the camera keeps its ratio.
    Orv3dRect viewportRect(unsigned long squared) const;
    // The window's size: the view's, or the box's off the screen.
    void windowSize(float& width, float& height) const;
    // What the scroll bars range over: the contents mapped into the window, with the window.
    Orv2dRect scrolledArea() const;
    // After a change of the current camera: matrices, the theater's hooks, a full frame.
    void cameraSwitched();
    // A full frame when a theater shows itself here.
    void redrawAll();
};

// A scene on a top-level stage of its own.
class OrvTopScene : public OrvScene {
public:
    OrvStage* stage;            // owned, unless it goes first
    OrvCallback* quitCallback;  // counted; told when the window is closed

    OrvTopScene(OrvDirector* director, const Orv2dRect& rect, const char* title,
                unsigned long flag);
    OrvTopScene(OrvDirector* director, void* window, const Orv2dRect& rect, unsigned long flag);
    OrvTopScene(OrvDirector* director, void* window);
    explicit OrvTopScene(const OrvScene& source);
    ~OrvTopScene() override;
    void show() override;
    void hide() override;
    void onQuit(OrvCallback* callback) override;
    // The stage's exit callback.
    virtual void onExit(OrvExitCallback* callback);
};

// Process-wide stacks; each returns 1, or 0 after its overflow or underflow message.
unsigned long OrvPushModelView();
unsigned long OrvPopModelView();
unsigned long OrvPushProjection();
unsigned long OrvPopProjection();
unsigned long OrvPushRenderFace(const OrvScene* scene);
unsigned long OrvPopRenderFace(const OrvScene* scene);

// While on, no actor compiles or uses a display list.
void OrvForceImmediateMode(unsigned long on);
unsigned long OrvForceImmediateMode();
// While on (the default), a make-up change recompiles an actor's display list.
void OrvUpdateDisplayListOnMakeUpChanged(unsigned long on);
unsigned long OrvUpdateDisplayListOnMakeUpChanged();
// Whether a ghost may swap buffers first (1 at start).
extern unsigned long OrvAllowSwapForGhost;

// The 40 marker display lists from `base`: types 1 to 5 times scales 0 to 7.
void _OrvCreateOGLMarkerFonts(unsigned base);

ORV_DECLARE_CLASS_INIT(OrvScene)

#endif
