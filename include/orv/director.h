// The director: one connection to an X display and everything shared under
// it (windows by id, timers, work procedures, the GL root context, the file
// search path, the named resources). Several directors may live at once;
// the wait step serves them all.
#ifndef ORV_DIRECTOR_H
#define ORV_DIRECTOR_H

#include "orv/base.h"
#include "orv/geometry.h"
#include "orv/event.h"
#include "orv/makeup.h"

class OrvCanvas;
class OrvView;
class OrvBitmap;
class OrvRole;
class OrvTheater;
class OrvScene;
class OrvColor;
class OrvPattern;
class OrvLineStyle;
class OrvCursor;
class OrvRasterFont;
class OrvVectorialFont;
class OrvMakeUp;
class OrvTotalMakeUp;
class OrvMakeUpHashTable;
class OrvTextureHashTable;
class OrvEnvironment;
struct OrvRGB;
class OrvMessageDatabase;
class OrvImage;
class OrvActor;
class OrvStage;
class OrvBalloonTimer;
class OrvBalloonStage;
class OrvPolygon;

// What a pick found: a face, a line or an actor's box.
enum OrvPickType {
    OrvPickNone = 0,  // a cleared record
    OrvPickFace = 1,
    OrvPickLine = 2,
    OrvPickBox = 4
};

// The last successful pick, held by the director. The point is in world
// coordinates (in invariant space for an invariant actor).
struct OrvPick3dRecord {
    const OrvScene* scene = nullptr;
    OrvPickType type = OrvPickNone;
    OrvActor* actor = nullptr;
    const OrvPolygon* polygon = nullptr;  // null when the hit was no face
    Orv3dPoint point;
    long vertexIndex = -1;  // -1 when none
    long edgeIndex = -1;
};

class OrvDirector {
public:
    OrvDirector(const OrvDirector&) = delete;
    OrvDirector& operator=(const OrvDirector&) = delete;
    unsigned int markerLists;  // first of the 40 GL marker lists, 0 until a 3D view makes them
    unsigned short glVersion;  // 10, or 11 when GL_VERSION says "1.1"
    void* display;             // Display*

    // ----- Named resources and make-ups ------------------------------------
    // Tables, lists and defaults of the shared drawing resources; they are
    // filled by initResources() and emptied by closeResources().
    OrvStringHashTable* colors;
    OrvList* images;  // OrvImage, found by name
    OrvStringHashTable* fonts;
    OrvStringHashTable* vfonts;
    OrvMakeUpHashTable* makeUps;
    OrvTextureHashTable* textures;
    OrvAList colorNames;  // further names of colours: name, colour
    OrvList* bitmaps;
    OrvList* cursors;
    OrvList* patterns;
    OrvList* lineStyles;
    OrvList* environments;
    OrvMakeUp* defaultMakeUp;
    OrvMakeUp* wideMakeUp;  // the default make-up with line width 4
    OrvRasterFont* defaultFont;
    OrvVectorialFont* defaultVectorialFont;
    OrvColor* defaultBackground;
    OrvColor* defaultForeground;
    OrvPattern* solidPattern;
    OrvCursor* defaultCursor;
    OrvLineStyle* solidLineStyle;
    OrvAList depth1Contexts;        // X graphic contexts of depth 1, by canvas
    OrvAList depth8Contexts;        // and of depth 8
    OrvBitmap* screenBufferBitmap;  // the shared off-screen buffer of screenBuffer()
    OrvTotalMakeUp* tmpMakeUpObject;
    void* tmpTextureObject;
    OrvEnvironment* defaultEnvironment;
    OrvMakeUp* balloonMakeUp;      // the default make-up on "wheat" in Helvetica 10
    OrvImage* defaultImageObject;  // made at first use by defaultImage(), counted
    unsigned long makeUpLookups, makeUpCreations;

    // Makes the default resources (called by init()).
    void initResources();
    // Creates the empty tables (called by initSlots()).
    void initResourceSlots();
    // Releases every table and what lies in it; only after close() began.
    void closeResources();

    // Colours: by name ("#RGB", "#RRGGBB", "#RRRRGGGGBBBB" or an X name), by value, by HSV or HLS.
    virtual OrvColor* color(const char* name, unsigned long flag = 0);
    virtual OrvColor* color(float r, float g, float b, unsigned long flag = 0);
    virtual OrvColor* colorHSV(float h, float s, float v, unsigned long flag = 0);
    virtual OrvColor* colorHLS(float h, float l, float s, unsigned long flag = 0);
    // Raster fonts: "%family-size-BIU[-foundry]" or an X font name.
    virtual OrvRasterFont* font(const char* name);
    virtual OrvRasterFont* systemFont(const char* name);
    virtual OrvRasterFont* font(const char* family, unsigned short size, OrvFontStyle style,
                                const char* foundry = nullptr);
    virtual OrvPattern* pattern(const char* name) const;
    virtual OrvPattern* pattern(const char* name, unsigned long width, unsigned long height,
                                const unsigned char* data);
    virtual OrvCursor* cursor(const char* name);
    virtual OrvMakeUp* makeUp(OrvColor* background, OrvColor* foreground, OrvLineStyle* lineStyle,
                              unsigned short lineWidth, OrvPattern* pattern, OrvRasterFont* font,
                              OrvBitmap* colorPattern, OrvFillStyle fillStyle, OrvArcMode arcMode,
                              OrvFillRule fillRule, OrvVectorialFont* vfont,
                              unsigned long distinguish, unsigned long smooth, OrvCullingMode cull,
                              OrvFaceStyle frontStyle, OrvFaceStyle backStyle,
                              OrvMarkerType markerType, unsigned short markerScale,
                              OrvTexture* texture);
    virtual OrvMakeUp* makeUpBackground(const OrvMakeUp* base, OrvColor* color);
    virtual OrvMakeUp* makeUpForeground(const OrvMakeUp* base, OrvColor* color);
    virtual OrvMakeUp* makeUpPattern(const OrvMakeUp* base, OrvPattern* pattern);
    virtual OrvMakeUp* makeUpLineStyle(const OrvMakeUp* base, OrvLineStyle* lineStyle);
    virtual OrvMakeUp* makeUpLineWidth(const OrvMakeUp* base, unsigned short width);
    virtual OrvMakeUp* makeUpFont(const OrvMakeUp* base, OrvRasterFont* font);
    virtual OrvMakeUp* makeUpColorPattern(const OrvMakeUp* base, OrvBitmap* colorPattern);
    virtual OrvMakeUp* makeUpFillStyle(const OrvMakeUp* base, OrvFillStyle fillStyle);
    virtual OrvMakeUp* makeUpArcMode(const OrvMakeUp* base, OrvArcMode arcMode);
    virtual OrvMakeUp* makeUpFillRule(const OrvMakeUp* base, OrvFillRule fillRule);
    virtual OrvMakeUp* makeUpSmooth(const OrvMakeUp* base, unsigned long smooth);
    virtual OrvMakeUp* makeUpDistinguish(const OrvMakeUp* base, unsigned long distinguish);
    virtual OrvMakeUp* makeUpCull(const OrvMakeUp* base, OrvCullingMode cull);
    virtual OrvMakeUp* makeUpFrontStyle(const OrvMakeUp* base, OrvFaceStyle style);
    virtual OrvMakeUp* makeUpBackStyle(const OrvMakeUp* base, OrvFaceStyle style);
    virtual OrvMakeUp* makeUpMarkerType(const OrvMakeUp* base, OrvMarkerType type);
    virtual OrvMakeUp* makeUpMarkerScale(const OrvMakeUp* base, unsigned short scale);
    virtual OrvMakeUp* makeUpVectorialFont(const OrvMakeUp* base, OrvVectorialFont* vfont);
    virtual OrvMakeUp* makeUpTexture(const OrvMakeUp* base, OrvTexture* texture);
    virtual OrvLineStyle* lineStyle(unsigned short count, const unsigned char* dashes,
                                    unsigned short offset = 0, unsigned short pattern = 0xFFFF);
    virtual OrvLineStyle* lineStyle(const char* name) const;
    virtual OrvCursor* positionToCursor(OrvPosition position);
    virtual OrvBitmap* bitmap(const char* name) const;
    virtual OrvBitmap* readBitmap(const OrvCanvas* canvas, const char* file);
    virtual OrvBitmap* readAsciiBitmap(const OrvCanvas* canvas, const char* file);
    // Writes an image as a portable map: "P1"/"P4" for the bits of a one-bit or two-bit
    // file, "P2"/"P5" for luminance and for what a grey map gave, "P3"/"P6" otherwise (alpha
    // is lost); `raw` chooses the binary form, `bottomUp` turns the rows (held bottom first)
    // back to the file's order. 1 on success, 0 after a report.
    virtual unsigned long writeImage(const char* file, const OrvImage* image, unsigned long raw = 1,
                                     unsigned long bottomUp = 1);

    OrvColor* nearestColor(unsigned short r, unsigned short g, unsigned short b,
                           unsigned* distance) const;
    void addColorName(OrvColor* color, const char* name);
    void removeColorNames(OrvColor* color);
    void remove(OrvColor* color);
    void colorTable(unsigned short* r, unsigned short* g, unsigned short* b,
                    const OrvCanvas* canvas) const;
    void indexToRGB(unsigned pixel, float& r, float& g, float& b) const;
    unsigned long numberOfColors() const;
    // Puts a font in the table and realises it, loading the X font `loadName`.
    int addFont(OrvRasterFont* font, const char* loadName = nullptr);
    const int* fontSizes(const char* family, OrvFontStyle style, int& count,
                         const char* foundry = nullptr) const;

    // The image of that name, read from a portable-map file through the search path at
    // the first request; the default image for a null or empty name and for every failure,
    // so the result is never null. The director holds it; a keeper counts it.
    OrvImage* image(const char* name, unsigned long mipmap = 0);
    // A 16 by 16 picture, made at first use, named "defaultOrvisImage".
    OrvImage* defaultImage();
    // Enters an image in `images` (its constructor does); nothing when it is there.
    void addImage(OrvImage* image);
    // The image of that name in `images`, or null.
    OrvImage* findImage(const char* name) const;

    OrvMakeUp* copyMakeUp(const OrvMakeUp* base);
    OrvMakeUp* tmpMakeUp();
    void addMakeUp(OrvMakeUp* makeUp);
    void remove(OrvMakeUp* makeUp);
    // Plain X graphic contexts of depth 1 and 8 for a canvas, made at first use, not make-ups:
    // the names are kept as they are for behaviour compatibility.
    unsigned long defaultDepth1MakeUp(const OrvCanvas* canvas);
    unsigned long defaultDepth8MakeUp(const OrvCanvas* canvas);
    // The shared off-screen bitmap, at least width by height.
    OrvBitmap* screenBuffer(unsigned long width, unsigned long height);

protected:
    void initFonts();
    void initColors();
    void initPatterns();
    void initLineStyles();
    void initCursors();
    OrvRasterFont* font(const char* family, unsigned short size, const char* resolution,
                        OrvFontStyle style, const char* foundry);

public:
    // ----- end of named resources and make-ups ------------------------------

    OrvList* timers;
    OrvList* roles;
    OrvList* theaters;
    OrvList* workProcedures;
    OrvHashTable* views;  // OrvView by X window id
    char* name;           // application name, never null
    int ownsDisplay;
    int screenWidth, screenHeight;
    unsigned short depth;
    OrvCanvas* rootCanvas;
    char* path;  // colon-separated directories
    int connectionNumber;
    unsigned short doubleClickPeriod;  // milliseconds
    OrvEvent lastButtonEvent;          // the last button press, for double clicks
    int closed;
    OrvList* grabbedViews;
    OrvScene* currentScene;
    unsigned long colormap;        // Colormap
    void* visual;                  // Visual*
    OrvMessageDatabase* database;  // the messages of OrvGetMessage, 11 buckets
    OrvKey* language;              // ORVLANG, or "english"
    void* rootContext;             // GLXContext, root of the shared display lists
    int doNotOptimize;

    OrvDirector(const char* appName, const char* displayName, int argc, char** argv);
    OrvDirector(void* xDisplay, const char* appName);
    virtual ~OrvDirector();

    void close();

    // X resources under the application's name, then under "Orv".
    const char* resource(const char* key, const char* defaultValue) const;

    void setPath(const char* p);
    void appendToPath(const char* d);
    void prependToPath(const char* d);
    const char* findInPath(const char* file) const;

    OrvView* view(const char* name) const;
    OrvView* view(const Orv2dPoint& rootPoint) const;
    void addView(OrvView* view);
    void removeView(OrvView* view);
    OrvView* findView(unsigned long window) const;

    void add(OrvBitmap* bitmap);
    void remove(OrvBitmap* bitmap);
    void add(OrvTimer* timer);
    void remove(OrvTimer* timer);
    void add(OrvRole* role);
    void remove(OrvRole* role);
    void add(OrvTheater* theater);
    void remove(OrvTheater* theater);
    void add(OrvWorkProcedure* proc);
    void remove(OrvWorkProcedure* proc);

    void movePointer(const Orv2dPoint& rootPoint) const;
    void translatePointer(long dx, long dy) const;
    // Root coordinates and the modifiers mask of the pointer; 0 when it is on another screen.
    int queryPointer(long& x, long& y, unsigned short& modifiers) const;
    void bell(int volume) const;
    void setClipboard(const char* text, int length = 0) const;
    char* getClipboard(int& length) const;
    void flush() const;
    void synchronize(int on) const;
    unsigned long defaultColormap(unsigned& size) const;
    void* defaultVisual() const;
    const char* systemName() const { return "x11"; }

    // The event loop (see event.h).
    void waitAndDispatchEvents() const;
    void readAndDispatchEvents() const;
    int hasEvents() const;
    void grab(OrvView* view);
    void unGrab(OrvView* view);
    int isGrabbed(OrvView* view) const;
    OrvView* grabView() const;
    void setDoubleClickPeriod(unsigned short ms) { doubleClickPeriod = ms; }
    unsigned short getDoubleClickPeriod() const { return doubleClickPeriod; }
    const OrvEvent& lastEvent() const { return lastButtonEvent; }
    OrvEvent& lastEvent() { return lastButtonEvent; }

    // ----- Balloons: the label that appears when the pointer rests on an actor ----
    unsigned long balloonShown;      // balloons appear at all; 1 at start
    unsigned long balloonDelay;      // ms of rest before one appears; 1000
    unsigned long balloonHideDelay;  // ms it stays; 5000
    OrvBalloonTimer* balloonTimer;   // made on first use
    OrvBalloonStage* balloonStage;   // the balloon's window, made on first use

    // Told of each event a stage sees: hides any balloon and starts the wait again.
    void runBalloonTimer(OrvStage* stage, const OrvEvent& event);
    // The same for an event in a scene of a theater: the balloon that comes is that of
    // the theater's actor under the pointer, at the pointer's screen position.
    void runBalloonTimer(OrvTheater* theater, OrvScene* scene, const OrvEvent& event);
    // Shows the actor's balloon at a point of the screen, whole; 0 when it has none.
    unsigned long mapBalloon(OrvActor* actor, const Orv2dPoint& point);
    // Balloons on or off; hides any shown.
    void showBalloon(unsigned long on);
    void hideBalloon();
    // Hides any balloon and stops the wait, forgetting where the pointer was.
    void suspendBalloonTimer();
    // The make-up of balloons to come and of the one shown; counted.
    void setBalloonMakeUp(OrvMakeUp* makeUp);
    void setBalloonDelays(unsigned long showMs, unsigned long hideMs);

    // ----- The pick record ---------------------------------------------------------
    // Fills the record; a null point leaves (0, 0, 0).
    void setPick3dRecord(const OrvScene* scene, OrvPickType type, OrvActor* actor,
                         const OrvPolygon* polygon, const Orv3dPoint* point, long vertexIndex,
                         long edgeIndex);
    const OrvPick3dRecord& pick3dRecord() const { return pickRecord; }
    // Back to no scene, type 0, no actor or polygon, (0, 0, 0) and indices -1.
    void clearPick3dRecord();
    OrvPick3dRecord pickRecord;

    // ----- 3D defaults ---------------------------------------------------------
    // Makes an environment and appends it to the list (never shared by content).
    virtual OrvEnvironment* environment(const OrvRGB& ambient, float intensity, float constant,
                                        float linear, float quadratic, unsigned long infinite,
                                        unsigned long backAndFront);
    const OrvRGB& defaultAmbientColor() const;
    const OrvRGB& defaultDiffuseColor() const;
    const OrvRGB& defaultSpecularColor() const;
    const OrvRGB& defaultEmissiveColor() const;
    float defaultShininess() const { return 0.2f; }
    float defaultTransparency() const { return 1.0f; }
    // The marker display list of a type (1 to 5) and scale (0 to 7); 0 without lists.
    unsigned marker(OrvMarkerType type, unsigned short scale) const;
    // The same bitmap at the raster position, without a list.
    void immediateMarker(OrvMarkerType type, unsigned short scale) const;

    // GL: the zero-ended glXChooseVisual attribute list, and the root context.
    virtual const int* get3dRendererConfig() const;
    virtual unsigned long initializeVisual();
    void initContext();
    void closeContext();
    // Sets the language from ORVLANG (or "english"), makes the database, and reads
    // the file named by ORVDB (or "orv.dbm") when the search path finds it.
    void initDatabase();

protected:
    void initSlots();
    void systemInit(const char* appName, const char* displayName, int argc, char** argv);
    void init();
    void systemClose();
    // Parts of closeResources that belong to the loop and the windows.
    void closeRolesAndViews();
    void closeTimers();
};

// The list of all directors, null before the first one.
OrvList* OrvGetAllDirectors();
[[noreturn]] void OrvExit(int status);
int OrvWindowsVersion();
// The text of a message in the director's language, or the name itself when
// there is none.
const char* OrvGetMessage(OrvDirector* director, const char* name);
const char* OrvGetSystem();

#endif
