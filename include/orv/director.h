// The director: one connection to an X display and everything shared under
// it (windows by id, timers, work procedures, the GL root context, the file
// search path, the named resources). Several directors may live at once;
// the wait step serves them all.
#ifndef ORV_DIRECTOR_H
#define ORV_DIRECTOR_H

#include "orv/base.h"
#include "orv/geometry.h"
#include "orv/event.h"

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
class OrvMessageDatabase;

class OrvDirector {
public:
  unsigned int markerLists;    // first of the 40 GL marker lists, 0 until a 3D view makes them
  unsigned short glVersion;    // 10, or 11 when GL_VERSION says "1.1"
  void* display;               // Display*

  // ----- Named resources and make-ups ------------------------------------
  // Tables, lists and defaults of the shared drawing resources; they are
  // filled by initResources() and emptied by closeResources().
  OrvStringHashTable* colors;
  OrvList* images;
  OrvStringHashTable* fonts;
  OrvStringHashTable* vfonts;
  OrvMakeUpHashTable* makeUps;
  OrvTextureHashTable* textures;
  OrvAList colorNames;
  OrvList* bitmaps;
  OrvList* cursors;
  OrvList* patterns;
  OrvList* lineStyles;
  OrvList* environments;
  OrvMakeUp* defaultMakeUp;
  OrvMakeUp* wideMakeUp;
  OrvRasterFont* defaultFont;
  OrvVectorialFont* defaultVectorialFont;
  OrvColor* defaultBackground;
  OrvColor* defaultForeground;
  OrvPattern* solidPattern;
  OrvCursor* defaultCursor;
  OrvLineStyle* solidLineStyle;
  OrvAList depth1Contexts;     // X graphic contexts of depth 1, by canvas
  OrvAList depth8Contexts;     // and of depth 8
  OrvBitmap* screenBufferBitmap;  // the shared off-screen buffer of screenBuffer()
  OrvTotalMakeUp* tmpMakeUpObject;
  void* tmpTextureObject;
  OrvEnvironment* defaultEnvironment;

  // Makes the tables above and the default resources (called by init()).
  void initResources();
  // Creates the empty tables (called by initSlots()).
  void initResourceSlots();
  // Releases every table and what lies in it; only after close() began.
  void closeResources();
  // ----- end of named resources and make-ups ------------------------------

  OrvList* timers;
  OrvList* roles;
  OrvList* theaters;
  OrvList* workProcedures;
  OrvHashTable* views;         // OrvView by X window id
  char* name;                  // application name, never null
  int ownsDisplay;
  int screenWidth, screenHeight;
  unsigned short depth;
  OrvCanvas* rootCanvas;
  char* path;                  // colon-separated directories
  int connectionNumber;
  unsigned short doubleClickPeriod;  // milliseconds
  OrvEvent lastButtonEvent;    // the last button press, for double clicks
  int closed;
  OrvList* grabbedViews;
  OrvScene* currentScene;
  unsigned long colormap;      // Colormap
  void* visual;                // Visual*
  OrvMessageDatabase* database;
  OrvKey* language;
  void* rootContext;           // GLXContext, root of the shared display lists
  int doNotOptimize;

  OrvDirector(const char* name, const char* displayName, int argc, char** argv);
  OrvDirector(void* display, const char* name);
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

  // GL: the zero-ended glXChooseVisual attribute list, and the root context.
  virtual const int* get3dRendererConfig() const;
  virtual unsigned long initializeVisual();
  void initContext();
  void closeContext();

protected:
  void initSlots();
  void systemInit(const char* name, const char* displayName, int argc, char** argv);
  void init();
  void systemClose();
  // Parts of closeResources that belong to the loop and the windows.
  void closeRolesAndViews();
  void closeTimers();

private:
  OrvDirector(const OrvDirector&);
  OrvDirector& operator=(const OrvDirector&);
};

// The list of all directors, null before the first one.
OrvList* OrvGetAllDirectors();
[[noreturn]] void OrvExit(int status);
int OrvWindowsVersion();
const char* OrvGetSystem();

#endif
