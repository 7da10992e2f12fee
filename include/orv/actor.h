// Actors: everything that can be shown on a stage or in a theater, their state
// flags, user properties, their registration with the class registry, their
// change protocol and their 2D geometry, focus and selection handles.
#ifndef ORV_ACTOR_H
#define ORV_ACTOR_H

#include <cstdint>

#include "orv/base.h"
#include "orv/geometry.h"
#include "orv/region.h"
#include "orv/makeup.h"
#include "orv/classinfo.h"

class OrvActor;
class OrvStage;
class OrvTheater;
class OrvScene;
class OrvRole;
class OrvEngine;
class OrvCallback;
class OrvIStream;
class OrvOStream;
class OrvBitmap;

// ---------------------------------------------------------------------------
// Registration of a class with the registry of the stream
// ---------------------------------------------------------------------------

// Registration guard: every translation unit that includes a class's header
// holds one guard object, and the first constructor to run makes the record.
// So a class is registered before any file that uses it runs its own static
// initialisation, whatever the link order.
#define ORV_DECLARE_CLASS_INIT(Class)                                                              \
    class orvinit##Class {                                                                         \
    public:                                                                                        \
        orvinit##Class();                                                                          \
        static int _counter;                                                                       \
    };                                                                                             \
    static orvinit##Class orvinit##Class##Object;

#define ORV_DEFINE_CLASS_INIT(Class, ParentName, Reader)                                           \
    int orvinit##Class::_counter = 0;                                                              \
    OrvClassInfo* Class::_classInfo = 0;                                                           \
    orvinit##Class::orvinit##Class() {                                                             \
        if (_counter++ == 0)                                                                       \
            Class::_classInfo =                                                                    \
                OrvInsertNewType(#Class, new OrvClassInfo(#Class, ParentName, Reader));            \
    }

// The members every persistent actor class declares: the reader constructor,
// copying, its registry entry and its persistent form. Use it in a public section.
#define ORV_PERSISTENT_ACTOR(Class)                                                                \
    explicit Class(OrvIStream& stream);                                                            \
    OrvActor* copy() const override;                                                               \
    OrvClassInfo* classInfo() const override;                                                      \
    void write(OrvOStream& stream) const override;                                                 \
    static OrvActor* read(OrvIStream& stream);                                                     \
    static OrvClassInfo* _classInfo;

// ---------------------------------------------------------------------------
// State flags: bit numbers of OrvActor::flags. The numbering is a file format.
// ---------------------------------------------------------------------------

enum {
    OrvVisibleBit = 1,
    OrvSelectedBit = 2,
    OrvSelectableBit = 3,
    OrvMoveableBit = 4,
    OrvResizeableBit = 5,
    OrvSensitiveBit = 6,
    OrvLinkBit = 7,
    OrvPrettyMarkBit = 8,
    OrvHasNameBit = 9,
    OrvHasRoleBit = 10,
    OrvHasCallbackNameBit = 11,
    OrvHasSecondaryCallbackNameBit = 12,
    OrvHasEngineBit = 13,
    OrvFocusBit = 14,
    OrvInvertedBit = 15,
    OrvImmediateBit = 16,
    OrvHighlightedBit = 17,
    OrvAttachmentsFollowBit = 18,
    OrvZBufferBit = 19,
    OrvLightBit = 20,
    OrvTrackBallBit = 21,
    OrvHighlightAllowedBit = 22,
    OrvInvariantBit = 23,
    OrvFastFaceBit = 24,
    OrvTextureBit = 25,
    OrvBalloonFollowsBit = 26
};

// Visible, selectable, moveable, resizeable, sensitive, z-buffer, light,
// fast faces and texture.
#define ORV_ACTOR_DEFAULT_FLAGS 0x0318007Au

// While non-zero (during a repaint) setters change state but invalidate nothing.
unsigned long OrvForgetUpdateDrawing();
void OrvForgetUpdateDrawing(unsigned long on);

// ---------------------------------------------------------------------------
// Selection handles
// ---------------------------------------------------------------------------

// The record of one press on a handle. One instance is shared by all actors,
// so only one 2D drag is under way at a time.
class Orv2dDragger {
public:
    const Orv2dMatrix* matrix;  // the matrix with which the handle was found
    OrvPosition position;       // which handle; 0 for none
    unsigned long dragging;     // 1 between button down and up
    int32_t index;              // handle number, -1 for none
    Orv2dPoint point;           // the handle's centre

    Orv2dDragger() : matrix(nullptr), position(0), dragging(0), index(-1) {}
    virtual ~Orv2dDragger() {}

    virtual unsigned long onButtonDown(const Orv2dPoint& point, const Orv2dMatrix* matrix);
    virtual unsigned long onButtonDragged(const Orv2dPoint& from, Orv2dPoint& to);
    virtual unsigned long onButtonUp();
    virtual const char* className() const;
};

// ---------------------------------------------------------------------------
// Balloons
// ---------------------------------------------------------------------------

// What a balloon shows for an actor after the pointer rested on it: held
// under the user property "BalloonKey".
struct OrvBalloonData {
    char* label;           // owned; may be null when there is a bitmap
    OrvBitmap* bitmap;     // locked while held
    OrvPosition position;  // of the bitmap against the label
    unsigned short space;  // between label and bitmap
};

// Side of a handle's square, centred on its point.
#define ORV_HANDLE_SIZE 8

// ---------------------------------------------------------------------------
// Actor
// ---------------------------------------------------------------------------

class OrvActor {
public:
    OrvAList* userProperties;  // made on first use
    uint32_t flags;
    unsigned short layer;
    OrvMakeUp* makeUp;  // counted, never null after construction

    OrvActor(OrvDirector* director, OrvMakeUp* look = nullptr);
    OrvActor(const OrvActor& source);
    OrvActor(OrvIStream& stream);
    OrvActor& operator=(const OrvActor&) = delete;

    // 1. destructor
    virtual ~OrvActor();

    // 2. state setters
    virtual void setSelected(unsigned long on);
    virtual void setLayer(unsigned short layer);
    virtual void setVisible(unsigned long on);
    virtual void setFocus(unsigned long on);
    virtual void setSensitive(unsigned long on);
    virtual void setInverted(unsigned long on);

    // 3. identity
    virtual void setName(const char* name);
    virtual void setRole(OrvRole* role);
    virtual void setEngine(OrvEngine* engine);

    // 4. make-up attributes
    virtual void setBackground(OrvColor* color);
    virtual void setForeground(OrvColor* color);
    virtual void setFont(OrvRasterFont* font);
    virtual void setColorPattern(OrvBitmap* bitmap);
    virtual void setPattern(OrvPattern* pattern);
    virtual void setOverwrite(unsigned long on);
    virtual void setMode(OrvDrawMode mode);
    virtual void setFillStyle(OrvFillStyle style);
    virtual void setLineStyle(OrvLineStyle* style);
    virtual void setLineWidth(unsigned short width);
    virtual void setPlaneMask(unsigned int mask);
    virtual void setArcMode(OrvArcMode mode);
    virtual void setFillRule(OrvFillRule rule);
    virtual void setMakeUp(OrvMakeUp* makeUp);
    virtual void setSmooth(unsigned long on);
    virtual void setDistinguish(unsigned long on);
    virtual void setCull(OrvCullingMode mode);
    virtual void setFrontStyle(OrvFaceStyle style);
    virtual void setBackStyle(OrvFaceStyle style);
    virtual void setMarkerType(OrvMarkerType type);
    virtual void setMarkerScale(const float& scale);
    virtual void setVectorialFont(OrvVectorialFont* font);
    virtual void setTexture(OrvTexture* texture);

    // 5. notification, mapping, highlight and the change protocol
    virtual void notifyOnMakeUpChanged();
    virtual void invert();
    virtual void map(void (*function)(OrvActor*, void*), void* data);
    virtual void mapReferences(void (*function)(OrvActor*, void*), void* data);
    virtual const char* defaultRole() const;
    virtual unsigned long setHighlighted(unsigned long on, const Orv2dPoint& point,
                                         unsigned long redraw);
    virtual void allowHighlight(unsigned long on);
    virtual void beginDrawing(unsigned long withLinks);
    virtual void flushDrawing(unsigned long withLinks);

    // 6. copying and identity of the class
    virtual OrvActor* copy() const;
    virtual OrvClassInfo* classInfo() const;
    virtual void write(OrvOStream& stream) const;
    virtual Orv2dPoint beforeMappingBalloon(const Orv2dPoint& point);

    // 7. 2D geometry, focus and handles; all answer in the transformed space
    virtual Orv2dPoint* draggerVertex2d(unsigned int& count, const Orv2dMatrix* matrix);
    virtual void draggerDraw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix);
    virtual void draggerRegions2d(Orv2dRegion& region, const Orv2dMatrix* matrix);
    virtual Orv2dDragger* dragger2d(const Orv2dPoint& point, const Orv2dMatrix* matrix);
    virtual Orv2dRect bbox2dToStage(const Orv2dMatrix* matrix) const;
    virtual unsigned long intersects2d(const Orv2dRegion& region, const Orv2dMatrix* matrix) const;
    virtual unsigned long inside2d(const Orv2dRegion& region, const Orv2dMatrix* matrix) const;
    virtual void drawFocus2d(OrvCanvas* canvas, const OrvMakeUp* makeUp, const Orv2dMatrix* matrix);
    virtual void computeFocusRegion2d(Orv2dRegion& region, const Orv2dMatrix* matrix);
    virtual void draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix);
    virtual void apply2d(const Orv2dMatrix& matrix);
    // Takes the geometry (never the identity, make-up or flags) of an actor of
    // the same class, with no repaint: the caller nests it. 0 when the class
    // cannot, as here; undo then maps the actor back by the inverse matrix.
    virtual unsigned long copyGeometry(const OrvActor& source);
    virtual Orv2dRect bbox2d(const Orv2dMatrix* matrix) const;
    virtual unsigned long contains2d(const Orv2dPoint& point, const Orv2dMatrix* matrix);

    // 8. container
    virtual void setStage(OrvStage* stage);
    virtual OrvStage* getStage() const;
    virtual void setDefaultAttachments(long flag);

    // 9. the 3D flags that the change protocol covers
    virtual void immediate(unsigned long on);
    virtual void takeAPicture();
    virtual void setZBuffer(unsigned long on);
    virtual void set3dFastFaceRendering(unsigned long on);
    virtual void setInvariant(unsigned long on);
    virtual void lightOn(unsigned long on);
    virtual void textureOn(unsigned long on);
    virtual void trackBallSelection(unsigned long on);
    virtual void notifyOn3dMatrixChanged();

    // 10. theater
    virtual void setTheater(OrvTheater* theater);
    virtual OrvTheater* getTheater() const;

    // 11. the 3D half: drawing passes, matrix, box and picking in a scene
    // One pass of a frame: immediate, through a display list, or as a box.
    virtual void render3d(const OrvScene* scene);
    // Pushes the matrices and flags of the actor, then draws it with draw3d.
    virtual void drawImmediate(const OrvScene* scene);
    // The display-list pass; here, as for every actor without a list, drawImmediate.
    virtual void drawStructure(const OrvScene* scene);
    // In interactive frames, draws the actor's box instead; 1 when it did.
    virtual unsigned long drawInteractive(const OrvScene* scene);
    // The actor's matrix to the world; null is the identity.
    virtual const Orv3dMatrix* to3dWorld() const;
    virtual void to3dWorld(const Orv3dMatrix* matrix);
    // Matrix steps (accumulate 0 replaces the matrix, 1 concatenates the step after it).
    virtual void rotateX(const double& degrees, unsigned long accumulate);
    virtual void rotateY(const double& degrees, unsigned long accumulate);
    virtual void rotateZ(const double& degrees, unsigned long accumulate);
    virtual void rotate(const Orv3dPoint& p1, const Orv3dPoint& p2, const double& degrees,
                        unsigned long accumulate);
    virtual void translate(const float& x, const float& y, const float& z,
                           unsigned long accumulate);
    virtual void scale(const float& x, const float& y, const float& z, unsigned long accumulate);
    virtual void build3dMatrix(const Orv3dPoint& centre, const Orv3dVector& translation,
                               const double& rx, const double& ry, const double& rz,
                               const Orv3dVector& scale, unsigned long accumulate);
    // Adds the projection of bbox3d(1) through `matrix` to `region`, grown by
    // 2 pixels a side when grow is 1; the whole window when a corner is behind the eye.
    virtual void bboxToScene(Orv2dRegion& region, const Orv3dMatrix* matrix,
                             unsigned long grow) const;
    // The box of bbox3d(1) in the make-up.
    virtual void drawFocus3d(const OrvScene* scene, const OrvMakeUp* makeUp) const;
    // What the actor is: the scene's drawing operations. Nothing by default.
    virtual void draw3d(const OrvScene* scene) const;
    // The actor's volume; with world, through its matrix.
    virtual Orv3dVolume bbox3d(unsigned long world) const;
    // Hit in the projected box by default.
    virtual unsigned long contains3d(const Orv2dPoint& point, const OrvScene* scene) const;
    virtual unsigned long intersects3d(const Orv2dRegion& region, const Orv3dMatrix* matrix) const;
    virtual unsigned long inside3d(const Orv2dRegion& region, const Orv3dMatrix* matrix) const;
    // Handles in a scene: their window rectangles and their drawing. None here.
    virtual void draggerRegions3d(Orv2dRegion& region, const Orv3dMatrix* matrix) const;
    virtual void draggerDraw3d(const OrvScene* scene) const;

    // Flags as a public vocabulary: bit n modulo 32, no redraw, no notification.
    void setProperty(unsigned char n) { flags |= (uint32_t)1 << (n % 32); }
    void removeProperty(unsigned char n) { flags &= ~((uint32_t)1 << (n % 32)); }
    unsigned long getProperty(unsigned char n) const { return (flags >> (n % 32)) & 1; }

    unsigned long isVisible() const { return getProperty(OrvVisibleBit); }
    unsigned long isSelected() const { return getProperty(OrvSelectedBit); }
    unsigned long isSelectable() const { return getProperty(OrvSelectableBit); }
    unsigned long isMoveable() const { return getProperty(OrvMoveableBit); }
    unsigned long isResizeable() const { return getProperty(OrvResizeableBit); }
    unsigned long isSensitive() const { return getProperty(OrvSensitiveBit); }
    unsigned long isFocus() const { return getProperty(OrvFocusBit); }
    unsigned long isInverted() const { return getProperty(OrvInvertedBit); }
    unsigned long isImmediate() const { return getProperty(OrvImmediateBit); }
    unsigned long isHighlighted() const { return getProperty(OrvHighlightedBit); }
    unsigned long hasZBuffer() const { return getProperty(OrvZBufferBit); }
    unsigned long isLightOn() const { return getProperty(OrvLightBit); }
    unsigned long trackBallSelection() const { return getProperty(OrvTrackBallBit); }
    unsigned long isHighlightAllowed() const { return getProperty(OrvHighlightAllowedBit); }
    unsigned long isInvariant() const { return getProperty(OrvInvariantBit); }
    unsigned long is3dFastFaceRendering() const { return getProperty(OrvFastFaceBit); }
    unsigned long isTextureOn() const { return getProperty(OrvTextureBit); }

    // Flag only: no redraw.
    void setSelectable(unsigned long on) { setBit(OrvSelectableBit, on); }
    void setMoveable(unsigned long on) { setBit(OrvMoveableBit, on); }
    void setResizeable(unsigned long on) { setBit(OrvResizeableBit, on); }

    unsigned short getLayer() const { return layer; }
    OrvMakeUp* getMakeUp() const { return makeUp; }

    const char* className() const;
    // Whether this actor's class is the named one or descends from it.
    unsigned long isSubtypeOf(const char* name) const;

    const char* getName() const;
    OrvRole* getRole() const;
    // A null or empty name takes the role away.
    void setRole(const char* name);
    OrvEngine* getEngine() const;
    OrvCallback* getCallback() const;
    void setCallback(OrvCallback* callback);
    OrvKey* getCallbackName() const;
    void setCallbackName(OrvKey* name);
    OrvCallback* getSecondaryCallback() const;
    void setSecondaryCallback(OrvCallback* callback);
    OrvKey* getSecondaryCallbackName() const;
    void setSecondaryCallbackName(OrvKey* name);

    void setUserProperty(const OrvKey* key, void* value);
    void* getUserProperty(const OrvKey* key);
    int removeUserProperty(const OrvKey* key);
    int hasUserProperty(const OrvKey* key);

    // The stage to redraw in: the own stage, else the one a composite lent.
    OrvStage* drawingStage();

    // The balloon of this actor; a null label with a null bitmap takes it away.
    void setBalloonData(const char* label, OrvBitmap* bitmap, OrvPosition position,
                        unsigned short space);
    const char* getBalloonLabel() const;
    OrvBitmap* getBalloonBitmap() const;
    OrvPosition getBalloonLabelBitmapPosition() const;
    unsigned short getBalloonLabelBitmapSpace() const;
    // The record, or null.
    const OrvBalloonData* getBalloonData() const;

    static OrvClassInfo* _classInfo;
    static OrvKey* _inVirtualStage;  // "ActorInVirtualStage"
    static Orv2dDragger _default2dDragger;
    static OrvActor* read(OrvIStream& stream);

protected:
    void setBit(unsigned char n, unsigned long on) {
        if (on)
            setProperty(n);
        else
            removeProperty(n);
    }
    // Steps 2 to 5 of a make-up attribute change: swap in the shared make-up
    // that the director gave for the new value.
    void swapMakeUp(OrvMakeUp* next, unsigned long withLinks);
    // The handles of a box, in the shared array of eight points.
    static Orv2dPoint* handlesOf(const Orv2dRect& box);
    // A flag setter with the change protocol around the change.
    void changeFlag(unsigned char n, unsigned long on, unsigned long withLinks);
    // The balloon's part of the persistent form, after the engine.
    void readBalloon(OrvIStream& in);
};

ORV_DECLARE_CLASS_INIT(OrvActor)

// Keys of the user properties that actors hold; made once, by the first use. These global names
// (no prefix, an "A" at the end) are kept as they are for file/behaviour compatibility.
extern OrvKey* callbackA;
extern OrvKey* secondaryCallbackA;
extern OrvKey* callbackNameA;
extern OrvKey* secondaryCallbackNameA;
extern OrvKey* nameA;
extern OrvKey* roleA;  // the key "P_baheviour": misspelt, kept as it is for file compatibility
extern OrvKey* engineA;

// "BalloonKey": the key of an actor's balloon record.
OrvKey* OrvBalloonKey();

// "P_layer" and "T_layer": the stage and the theater that hold an actor.
OrvKey* OrvStageKey();
OrvKey* OrvTheaterKey();

#endif
