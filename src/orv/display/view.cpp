// Views: window creation, window-manager properties, geometry, the default
// handlers and the application callbacks.
#include "orv/view.h"
#include "orv/director.h"
#include "orv/makeup.h"
#include "orv/resource.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>

// Shared by 2D and 3D views, so names stay unique in the process.
static int viewCounter = 0;

static const long kViewEventMask =
    KeyPressMask | KeyReleaseMask | ButtonPressMask | ButtonReleaseMask | EnterWindowMask |
    LeaveWindowMask | PointerMotionMask | ButtonMotionMask | ExposureMask | StructureNotifyMask;

static Display* dpyOf(const OrvView* v) {
    return (Display*)v->director->display;
}

OrvView::OrvView(OrvDirector* d, const Orv2dRect& rect, const char* title, unsigned viewStyle,
                 unsigned long shown)
    : OrvCanvas(d, rect.w, rect.h, nullptr) {
    initFields(d, rect, viewStyle, shown);
    if (viewStyle & OrvViewGL)
        init3d(title, 0);
    else
        init2d(title, 0);
}

OrvView::OrvView(OrvView* parentView, const Orv2dRect& rect, unsigned viewStyle,
                 unsigned long shown)
    : OrvCanvas(parentView->director, rect.w, rect.h, nullptr) {
    initFields(parentView->director, rect, viewStyle, shown);
    parent = parentView;
    if (viewStyle & OrvViewGL)
        init3d(nullptr, parentView->window());
    else
        init2d(nullptr, parentView->window());
}

OrvView::OrvView(OrvDirector* d, void* parentWindow, const Orv2dRect& rect, unsigned viewStyle,
                 unsigned long shown)
    : OrvCanvas(d, rect.w, rect.h, nullptr) {
    initFields(d, rect, viewStyle, shown);
    if (viewStyle & OrvViewGL)
        init3d(nullptr, (unsigned long)parentWindow);
    else
        init2d(nullptr, (unsigned long)parentWindow);
}

OrvView::OrvView(OrvDirector* d, void* window) : OrvCanvas(d, 1, 1, nullptr) {
    Display* dpy = (Display*)d->display;
    Window root;
    int gx = 0, gy = 0;
    unsigned int w = 1, h = 1, bw, dep;
    XGetGeometry(dpy, (Window)window, &root, &gx, &gy, &w, &h, &bw, &dep);
    initFields(d, Orv2dRect(gx, gy, w, h), 0, 1);
    ownsWindow = 0;
    nameView();
    XSelectInput(dpy, (Window)window, kViewEventMask);
    drawable = (unsigned long)window;
    director->addView(this);
    setBackground(director->defaultBackground);
    makeGhost();
}

void OrvView::initFields(OrvDirector* d, const Orv2dRect& rect, unsigned viewStyle,
                         unsigned long shown) {
    director = d;
    parent = nullptr;
    x = rect.x;
    y = rect.y;
    width = rect.w ? rect.w : 1;
    height = rect.h ? rect.h : 1;
    style = viewStyle;
    mapFlag = 1;
    visible = shown ? 1 : 0;
    cursor = nullptr;
    background = nullptr;
    bitmap = nullptr;
    backgroundMakeUp = nullptr;
    ghostMakeUp = nullptr;
    ownsWindow = 1;
    reserved = 0;
    iconBitmapField = nullptr;
    iconMask = nullptr;
    grabbed = 0;
    glContext = nullptr;
    sensitive = 1;
}

void OrvView::nameView() {
    char text[32];
    snprintf(text, sizeof text, "v%d", viewCounter++);
    free(name);
    name = (char*)malloc(strlen(text) + 1);
    strcpy(name, text);
}

void OrvView::init2d(const char* title, unsigned long parentWindow) {
    sharesRootResources = 1;
    nameView();
    Display* dpy = dpyOf(this);
    Window root = RootWindow(dpy, DefaultScreen(dpy));
    XSetWindowAttributes a;
    memset(&a, 0, sizeof a);
    unsigned long mask =
        CWBackPixel | CWEventMask | CWColormap | CWBorderPixel | CWBitGravity | CWWinGravity;
    a.background_pixel = director->defaultBackground
                             ? director->defaultBackground->index(director->rootCanvas)
                             : WhitePixel(dpy, DefaultScreen(dpy));
    a.event_mask = kViewEventMask;
    unsigned size;
    a.colormap = director->defaultColormap(size);
    a.border_pixel = 0;
    a.bit_gravity = NorthWestGravity;
    a.win_gravity = NorthWestGravity;
    int topLevel = !parentWindow;
    unsigned borderWidth = topLevel ? 1 : 0;
    if (topLevel && (style & OrvViewOverrideRedirect)) {
        a.override_redirect = True;
        mask |= CWOverrideRedirect;
        borderWidth = 0;
    }
    if (topLevel && (style & OrvViewSaveUnder)) {
        a.save_under = True;
        mask |= CWSaveUnder;
    }
    Window w = XCreateWindow(dpy, topLevel ? root : (Window)parentWindow, (int)x, (int)y,
                             (unsigned)width, (unsigned)height, borderWidth, director->depth,
                             InputOutput, (Visual*)director->visual, mask, &a);
    drawable = w;
    finishWindow(title, parentWindow);
}

// The steps shared by 2D and GL windows once the X window exists.
void OrvView::finishWindow(const char* title, unsigned long parentWindow) {
    Display* dpy = dpyOf(this);
    Window root = RootWindow(dpy, DefaultScreen(dpy));
    Window w = (Window)drawable;
    if (!parentWindow) {
        Window list[2] = {w, root};
        XSetWMColormapWindows(dpy, root, list, 2);
        if (style & OrvViewOverrideRedirect) XRaiseWindow(dpy, w);
        const char* t = title ? title : "";
        XTextProperty text;
        text.value = (unsigned char*)t;
        text.encoding = XA_STRING;
        text.format = 8;
        text.nitems = strlen(t);
        XSizeHints sizeHints;
        memset(&sizeHints, 0, sizeof sizeHints);
        sizeHints.flags = USPosition | PSize;
        sizeHints.x = (int)x;
        sizeHints.y = (int)y;
        sizeHints.width = (int)width;
        sizeHints.height = (int)height;
        XWMHints wmHints;
        memset(&wmHints, 0, sizeof wmHints);
        wmHints.flags = InputHint | StateHint;
        wmHints.input = True;
        wmHints.initial_state = NormalState;
        XClassHint classHint;
        classHint.res_name = (char*)t;
        classHint.res_class = (char*)t;
        XSetWMProperties(dpy, w, &text, &text, nullptr, 0, &sizeHints, &wmHints, &classHint);
        if (style & OrvViewTransient) XSetTransientForHint(dpy, w, root);
        Atom del = XInternAtom(dpy, "WM_DELETE_WINDOW", False);
        XChangeProperty(dpy, w, XInternAtom(dpy, "WM_PROTOCOLS", False), XA_ATOM, 32,
                        PropModeReplace, (unsigned char*)&del, 1);
    } else {
        if (parent) parent->children.append(this);
        Window top = (Window)parentWindow;
        for (OrvView* p = parent; p; p = p->parent) top = p->window();
        Window list[2] = {w, top};
        XSetWMColormapWindows(dpy, top, list, 2);
    }
    if (visible) XMapWindow(dpy, w);
    director->addView(this);
    setBackground(director->defaultBackground);
    if (parent) parent->childNotifyAdd(this);
    makeGhost();
}

OrvView::~OrvView() {
    handleDestroy();
    if (parent) {
        parent->childNotifyRemove(this);
        parent->children.remove(this);
        parent = nullptr;
    }
    if (drawable) director->removeView(this);
    OrvRelease(background);
    background = nullptr;
    OrvRelease(cursor);
    cursor = nullptr;
    if (iconBitmapField) iconBitmapField->unLock();
    director->unGrab(this);
    OrvList copy;
    for (OrvLink* l = children.first; l; l = l->next) copy.append(l->value);
    for (OrvLink* l = copy.first; l; l = l->next) {
        int still = 0;
        for (OrvLink* k = children.first; k; k = k->next)
            if (k->value == l->value) still = 1;
        if (still) delete (OrvView*)l->value;
    }
    if (drawable) {
        closeContext();
        if (ownsWindow) XDestroyWindow(dpyOf(this), (Window)drawable);
        drawable = 0;
    }
    delete bitmap;
    bitmap = nullptr;
    OrvRelease(backgroundMakeUp);
    backgroundMakeUp = nullptr;
}

Orv2dPoint OrvView::position() const {
    return Orv2dPoint((int)x, (int)y);
}

Orv2dRect OrvView::bbox() const {
    return Orv2dRect((int)x, (int)y, (unsigned)width, (unsigned)height);
}

Orv2dRect OrvView::globalBBox() const {
    Display* dpy = dpyOf(this);
    int gx = 0, gy = 0;
    Window child;
    XTranslateCoordinates(dpy, (Window)drawable, DefaultRootWindow(dpy), 0, 0, &gx, &gy, &child);
    return Orv2dRect(gx, gy, (unsigned)width, (unsigned)height);
}

Orv2dRect OrvView::bboxVisible() const {
    Orv2dRect r(0, 0, (unsigned)width, (unsigned)height);
    if (!parent) return r;
    long x0 = -x, y0 = -y, x1 = x0 + (long)parent->width, y1 = y0 + (long)parent->height;
    long ax = x0 > 0 ? x0 : 0, ay = y0 > 0 ? y0 : 0;
    long bx = x1 < (long)width ? x1 : (long)width, by = y1 < (long)height ? y1 : (long)height;
    if (bx <= ax || by <= ay) return Orv2dRect(0, 0, 0, 0);
    return Orv2dRect((int)ax, (int)ay, (unsigned)(bx - ax), (unsigned)(by - ay));
}

static void setNormalHints(Display* dpy, Window w, long x, long y, unsigned long width,
                           unsigned long height) {
    XSizeHints h;
    memset(&h, 0, sizeof h);
    h.flags = USPosition | PSize;
    h.x = (int)x;
    h.y = (int)y;
    h.width = (int)width;
    h.height = (int)height;
    XSetWMNormalHints(dpy, w, &h);
}

int OrvView::move(const Orv2dPoint& p) {
    if (p.x == x && p.y == y) return 0;
    XWindowChanges c;
    c.x = p.x;
    c.y = p.y;
    XConfigureWindow(dpyOf(this), (Window)drawable, CWX | CWY, &c);
    if (!parent) setNormalHints(dpyOf(this), (Window)drawable, p.x, p.y, width, height);
    x = p.x;
    y = p.y;
    return 1;
}

int OrvView::resize(unsigned long w, unsigned long h) {
    if (w < 2) w = 1;
    if (h < 2) h = 1;
    if (w == width && h == height) return 0;
    XWindowChanges c;
    c.width = (int)w;
    c.height = (int)h;
    XConfigureWindow(dpyOf(this), (Window)drawable, CWWidth | CWHeight, &c);
    if (!parent) setNormalHints(dpyOf(this), (Window)drawable, x, y, w, h);
    // The size is stored when the configure event comes back through
    // handleResize, which then tells the resize callbacks.
    return 1;
}

int OrvView::moveResize(const Orv2dRect& r) {
    int samePos = r.x == x && r.y == y;
    int sameSize = r.w == width && r.h == height;
    if (samePos && sameSize) return 0;
    if (samePos) return resize(r.w, r.h);
    if (sameSize) return move(Orv2dPoint(r.x, r.y));
    unsigned long w = r.w < 2 ? 1 : r.w, h = r.h < 2 ? 1 : r.h;
    XWindowChanges c;
    c.x = r.x;
    c.y = r.y;
    c.width = (int)w;
    c.height = (int)h;
    XConfigureWindow(dpyOf(this), (Window)drawable, CWX | CWY | CWWidth | CWHeight, &c);
    if (!parent) setNormalHints(dpyOf(this), (Window)drawable, r.x, r.y, w, h);
    // As in resize, the new size arrives with the configure event.
    x = r.x;
    y = r.y;
    return 1;
}

void OrvView::setBackground(OrvColor* color) {
    if (color == background) return;
    if (color && !(style & OrvViewGL) && drawable)
        XSetWindowBackground(dpyOf(this), (Window)drawable, color->index(this));
    OrvRelease(background);
    background = color;
    OrvCount(background);
    OrvRelease(backgroundMakeUp);
    backgroundMakeUp = nullptr;
    if (color && director->defaultMakeUp) {
        backgroundMakeUp =
            director->makeUp(director->defaultForeground, color, nullptr, 0, nullptr, nullptr,
                             nullptr, 0, OrvArcPieSlice, 0, nullptr, 0, 1, 1, 4, 4, 1, 2, nullptr);
        OrvCount(backgroundMakeUp);
    }
}

void OrvView::setCursor(OrvCursor* c) {
    if (c == cursor) return;
    if (drawable) {
        if (c)
            XDefineCursor(dpyOf(this), (Window)drawable, (Cursor)c->internal(this));
        else
            XUndefineCursor(dpyOf(this), (Window)drawable);
    }
    OrvRelease(cursor);
    cursor = c;
    OrvCount(cursor);
}

void OrvView::show() {
    director->suspendBalloonTimer();
    visible = 1;
    XMapWindow(dpyOf(this), (Window)drawable);
}

void OrvView::hide() {
    visible = 0;
    Display* dpy = dpyOf(this);
    if (parent)
        XUnmapWindow(dpy, (Window)drawable);
    else
        XWithdrawWindow(dpy, (Window)drawable, DefaultScreen(dpy));
}

void OrvView::iconify() {
    Display* dpy = dpyOf(this);
    XIconifyWindow(dpy, (Window)drawable, DefaultScreen(dpy));
}

int OrvView::isViewable() const {
    XWindowAttributes a;
    if (!XGetWindowAttributes(dpyOf(this), (Window)drawable, &a)) return 0;
    return a.map_state == IsViewable;
}

void OrvView::raise() {
    if (drawable) XRaiseWindow(dpyOf(this), (Window)drawable);
}

void OrvView::lower() {
    if (drawable) XLowerWindow(dpyOf(this), (Window)drawable);
}

void OrvView::handleExpose(const Orv2dRegion* region) {
    if (!bitmap && !(style & OrvViewGL)) {
        if (region)
            erase(region, 0);
        else
            erase(0);
    }
    callExpose(region);
}

void OrvView::handleInput(const OrvEvent& event) {
    callInput(event);
}

void OrvView::handleResize(const Orv2dRect& oldRect, const Orv2dRect& newRect) {
    x = newRect.x;
    y = newRect.y;
    width = newRect.w ? newRect.w : 1;
    height = newRect.h ? newRect.h : 1;
    if (bitmap && (bitmap->width != width || bitmap->height != height)) {
        useBitmap(0);
        useBitmap(1);
    }
    if (oldRect.w != newRect.w || oldRect.h != newRect.h) callResize(oldRect, newRect);
}

void OrvView::handleQuit() {
    callQuit();
}

void OrvView::handleDestroy() {
    callDestroy();
}

void OrvView::erase(const Orv2dRect& r, int exposures) {
    XClearArea(dpyOf(this), (Window)drawable, r.x, r.y, r.w, r.h, exposures ? True : False);
}

void OrvView::erase(const Orv2dRegion* region, int exposures) {
    if (!region) return erase(exposures);
    for (unsigned short i = 0; i < region->count; i++) erase(region->rectangle(i), exposures);
}

void OrvView::erase(int exposures) {
    XClearArea(dpyOf(this), (Window)drawable, 0, 0, 0, 0, exposures ? True : False);
}

int OrvView::grab(OrvCursor* c) {
    OrvCursor* use = c ? c : director->defaultCursor;
    Cursor xc = use ? (Cursor)use->internal(this) : None;
    int r = XGrabPointer(dpyOf(this), (Window)drawable, False,
                         ButtonPressMask | ButtonReleaseMask | PointerMotionMask | ButtonMotionMask,
                         GrabModeAsync, GrabModeAsync, None, xc, CurrentTime);
    if (r != GrabSuccess) return 0;
    grabbed = 1;
    return 1;
}

void OrvView::unGrab() {
    XUngrabPointer(dpyOf(this), CurrentTime);
    grabbed = 0;
}

// ----- callbacks ----------------------------------------------------------

void OrvView::onExpose(OrvExposeCallback f, void* data) {
    exposeCallbacks.append((void*)f, data);
}
void OrvView::onResize(OrvResizeCallback f, void* data) {
    resizeCallbacks.append((void*)f, data);
}
void OrvView::onInput(OrvInputCallback f, void* data) {
    inputCallbacks.append((void*)f, data);
}
void OrvView::onQuit(OrvViewCallback f, void* data) {
    quitCallbacks.append((void*)f, data);
}
void OrvView::onDestroy(OrvViewCallback f, void* data) {
    destroyCallbacks.append((void*)f, data);
}
void OrvView::removeExpose(OrvExposeCallback f) {
    exposeCallbacks.remove((void*)f);
}
void OrvView::removeResize(OrvResizeCallback f) {
    resizeCallbacks.remove((void*)f);
}
void OrvView::removeInput(OrvInputCallback f) {
    inputCallbacks.remove((void*)f);
}
void OrvView::removeQuit(OrvViewCallback f) {
    quitCallbacks.remove((void*)f);
}
void OrvView::removeDestroy(OrvViewCallback f) {
    destroyCallbacks.remove((void*)f);
}

void OrvView::callExpose(const Orv2dRegion* region) {
    for (OrvAListItem* i = exposeCallbacks.first; i;) {
        OrvAListItem* next = i->next;
        ((OrvExposeCallback)i->key)(this, region, i->value);
        i = next;
    }
}

void OrvView::callResize(const Orv2dRect& oldRect, const Orv2dRect& newRect) {
    for (OrvAListItem* i = resizeCallbacks.first; i;) {
        OrvAListItem* next = i->next;
        ((OrvResizeCallback)i->key)(this, oldRect, newRect, i->value);
        i = next;
    }
}

void OrvView::callInput(const OrvEvent& event) {
    for (OrvAListItem* i = inputCallbacks.first; i;) {
        OrvAListItem* next = i->next;
        ((OrvInputCallback)i->key)(this, event, i->value);
        i = next;
    }
}

void OrvView::callQuit() {
    for (OrvAListItem* i = quitCallbacks.first; i;) {
        OrvAListItem* next = i->next;
        ((OrvViewCallback)i->key)(this, i->value);
        i = next;
    }
}

void OrvView::callDestroy() {
    for (OrvAListItem* i = destroyCallbacks.first; i;) {
        OrvAListItem* next = i->next;
        ((OrvViewCallback)i->key)(this, i->value);
        i = next;
    }
}

// ----- window manager -----------------------------------------------------

void OrvView::setTitle(const char* title) {
    XStoreName(dpyOf(this), (Window)drawable, title ? title : "");
}

void OrvView::setIconTitle(const char* title) {
    XSetIconName(dpyOf(this), (Window)drawable, title ? title : "");
}

void OrvView::iconBitmap(OrvBitmap* icon, OrvBitmap* mask) {
    OrvBitmap* oldIcon = iconBitmapField;
    OrvBitmap* oldMask = iconMask;
    iconBitmapField = icon;
    iconMask = mask;
    if (icon) icon->lock();
    if (mask) mask->lock();
    if (oldIcon) oldIcon->unLock();
    if (oldMask) oldMask->unLock();
    if (!icon) return;
    static XWMHints hints;
    hints.flags = IconPixmapHint;
    hints.icon_pixmap = (Pixmap)icon->drawable;
    if (mask) {
        hints.flags |= IconMaskHint;
        hints.icon_mask = (Pixmap)mask->drawable;
    }
    XSetWMHints(dpyOf(this), (Window)drawable, &hints);
}

void* CheckWinMgrState(void* display, unsigned long window) {
    Display* dpy = (Display*)display;
    Atom state = XInternAtom(dpy, "WM_STATE", False);
    Atom type = 0;
    int format = 0;
    unsigned long items = 0, after = 0;
    unsigned char* data = nullptr;
    if (XGetWindowProperty(dpy, (Window)window, state, 0, 1, False, state, &type, &format, &items,
                           &after, &data) != Success)
        return nullptr;
    if (type == state && items == 1) return data;
    if (data) XFree(data);
    return nullptr;
}

int OrvView::isIconified() const {
    void* data = CheckWinMgrState(director->display, drawable);
    if (!data) return 0;
    int iconic = ((long*)data)[0] == IconicState;
    XFree(data);
    return iconic;
}

void OrvView::useBitmap(unsigned long on) {
    if (on) {
        if (bitmap) return;
        bitmap = new OrvBitmap(this, width, height, depth);
        if (backgroundMakeUp)
            bitmap->rectangle(backgroundMakeUp, Orv2dRect(0, 0, (unsigned)width, (unsigned)height),
                              1);
    } else {
        delete bitmap;
        bitmap = nullptr;
    }
}

void OrvView::setTopMost(OrvView* v) {
    if (v && drawable && v->drawable)
        XSetTransientForHint(dpyOf(this), (Window)drawable, (Window)v->drawable);
}

void OrvView::makeGhost() {
    if (ghostMakeUp || !director->defaultMakeUp) return;
    ghostMakeUp = new Orv2dMakeUp(director->defaultMakeUp);
    ghostMakeUp->countResources();
    ghostMakeUp->setMode(OrvXorMode);
    makeMakeUp(ghostMakeUp, 1);
}

void OrvView::deleteGhost() {
    delete ghostMakeUp;
    ghostMakeUp = nullptr;
}
