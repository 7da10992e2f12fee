// A view is a canvas on an X window: top-level with title and window-manager
// protocol, a child of another view, a child of a foreign window, a wrapper
// of an existing window, or a GL window. Decoded events reach it through
// five virtual handlers which by default call the application's callbacks.
#ifndef ORV_VIEW_H
#define ORV_VIEW_H

#include "orv/base.h"
#include "orv/geometry.h"
#include "orv/region.h"
#include "orv/event.h"
#include "orv/canvas.h"

class OrvDirector;
class OrvCursor;
class OrvColor;
class OrvBitmap;
class OrvMakeUp;
class Orv2dMakeUp;

// Bits of the style word.
enum {
    OrvViewOverrideRedirect = 1,
    OrvViewTransient = 2,
    OrvViewSaveUnder = 4,
    OrvViewGL = 8
};

typedef void (*OrvExposeCallback)(OrvView*, const Orv2dRegion*, void*);
typedef void (*OrvResizeCallback)(OrvView*, const Orv2dRect& oldRect, const Orv2dRect& newRect,
                                  void*);
typedef void (*OrvInputCallback)(OrvView*, const OrvEvent&, void*);
typedef void (*OrvViewCallback)(OrvView*, void*);

class OrvView : public OrvCanvas {
public:
    OrvView(const OrvView&) = delete;
    OrvView& operator=(const OrvView&) = delete;
    OrvView* parent;
    long x, y;
    int mapFlag;
    int visible;
    OrvCursor* cursor;
    OrvColor* background;
    OrvList children;
    OrvAList exposeCallbacks;
    OrvAList resizeCallbacks;
    OrvAList inputCallbacks;
    OrvAList quitCallbacks;
    OrvAList destroyCallbacks;
    OrvBitmap* bitmap;
    OrvMakeUp* backgroundMakeUp;
    Orv2dMakeUp* ghostMakeUp;
    int ownsWindow;
    long reserved;
    OrvBitmap* iconBitmapField;
    OrvBitmap* iconMask;
    int grabbed;
    void* glContext;  // GLXContext
    int sensitive;

    // A top-level view.
    OrvView(OrvDirector*, const Orv2dRect& rect, const char* title, unsigned viewStyle = 0,
            unsigned long shown = 1);
    // A child view.
    OrvView(OrvView* parentView, const Orv2dRect& rect, unsigned viewStyle = 0,
            unsigned long shown = 1);
    // A child of a foreign X window.
    OrvView(OrvDirector*, void* parentWindow, const Orv2dRect& rect, unsigned viewStyle = 0,
            unsigned long shown = 1);
    // Wraps an existing window, which it never destroys.
    OrvView(OrvDirector*, void* window);
    ~OrvView() override;

    unsigned long window() const { return (unsigned long)drawable; }

    virtual Orv2dPoint position() const;
    virtual Orv2dRect bbox() const;
    virtual Orv2dRect globalBBox() const;
    virtual Orv2dRect bboxVisible() const;
    virtual int move(const Orv2dPoint& p);
    virtual int resize(unsigned long w, unsigned long h);
    virtual int moveResize(const Orv2dRect& r);
    virtual void setBackground(OrvColor* color);
    virtual void setCursor(OrvCursor* cursor);
    virtual void show();
    virtual void hide();
    virtual void iconify();
    virtual int isViewable() const;
    virtual void raise();
    virtual void lower();
    virtual int isAMenu() const { return 0; }
    virtual void handleExpose(const Orv2dRegion* region);
    virtual void handleInput(const OrvEvent& event);
    virtual void handleResize(const Orv2dRect& oldRect, const Orv2dRect& newRect);
    virtual void handleQuit();
    virtual void handleDestroy();
    virtual void erase(const Orv2dRect& rect, int exposures);
    virtual void erase(const Orv2dRegion* region, int exposures);
    virtual void erase(int exposures);
    virtual void childNotifyAdd(OrvView*) {}
    virtual void childNotifyRemove(OrvView*) {}
    virtual int grab(OrvCursor* cursor = nullptr);
    virtual void unGrab();

    void onExpose(OrvExposeCallback f, void* data);
    void onResize(OrvResizeCallback f, void* data);
    void onInput(OrvInputCallback f, void* data);
    void onQuit(OrvViewCallback f, void* data);
    void onDestroy(OrvViewCallback f, void* data);
    void removeExpose(OrvExposeCallback f);
    void removeResize(OrvResizeCallback f);
    void removeInput(OrvInputCallback f);
    void removeQuit(OrvViewCallback f);
    void removeDestroy(OrvViewCallback f);
    void callExpose(const Orv2dRegion* region);
    void callResize(const Orv2dRect& oldRect, const Orv2dRect& newRect);
    void callInput(const OrvEvent& event);
    void callQuit();
    void callDestroy();

    int isSensitive() const { return sensitive; }
    void setSensitive(unsigned long on) { sensitive = on ? 1 : 0; }
    void setTitle(const char* title);
    void setIconTitle(const char* title);
    void iconBitmap(OrvBitmap* icon, OrvBitmap* mask);
    int isIconified() const;
    void useBitmap(unsigned long on);
    void setTopMost(OrvView* view);
    int setFocus() { return 0; }
    void makeGhost();
    void deleteGhost();
    void initContext();
    void closeContext();

protected:
    void initFields(OrvDirector*, const Orv2dRect& rect, unsigned viewStyle, unsigned long shown);
    void init2d(const char* title, unsigned long parentWindow);
    void init3d(const char* title, unsigned long parentWindow);
    void nameView();
    void finishWindow(const char* title, unsigned long parentWindow);
};

// The WM_STATE property of a window (to be freed with XFree), or null. The name, without the
// prefix, is kept as it is for behaviour compatibility.
void* CheckWinMgrState(void* display, unsigned long window);

#endif
