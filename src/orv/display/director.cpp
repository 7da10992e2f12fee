// Construction, shutdown, search path, X resources and the window table of
// the director.
#include "orv/director.h"
#include "orv/canvas.h"
#include "orv/view.h"
#include "orv/message.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

static OrvList* allDirectors = nullptr;

OrvList* OrvGetAllDirectors() {
    return allDirectors;
}

void OrvExit(int status) {
    exit(status);
}

int OrvWindowsVersion() {
    return 0;
}

const char* OrvGetSystem() {
    return "x11";
}

static int listHas(const OrvList* l, const void* v) {
    for (OrvLink* k = l ? l->first : nullptr; k; k = k->next)
        if (k->value == v) return 1;
    return 0;
}

static void collectViews(const OrvHashTable* table, OrvList& out) {
    for (unsigned i = 0; i < table->size; i++)
        for (OrvAListItem* it = table->buckets[i] ? table->buckets[i]->first : nullptr; it;
             it = it->next)
            out.append(it->value);
}

static char* copyString(const char* s) {
    if (!s) return nullptr;
    size_t n = strlen(s) + 1;
    char* c = (char*)malloc(n);
    memcpy(c, s, n);
    return c;
}

// The display descriptor's input handler: drain and dispatch the queue.
static void readDisplay(int, void* data) {
    ((const OrvDirector*)data)->readAndDispatchEvents();
}

OrvDirector::OrvDirector(const char* appName, const char* displayName, int argc, char** argv)
    : display(nullptr) {
    initSlots();
    ownsDisplay = 1;
    systemInit(appName, displayName, argc, argv);
    closed = 0;
}

OrvDirector::OrvDirector(void* xDisplay, const char* appName) : display(nullptr) {
    initSlots();
    ownsDisplay = 0;
    display = xDisplay;
    systemInit(appName, nullptr, 0, nullptr);
    closed = 0;
}

void OrvDirector::initSlots() {
    markerLists = 0;
    glVersion = 10;
    initResourceSlots();
    timers = new OrvList;
    roles = new OrvList;
    theaters = new OrvList;
    workProcedures = new OrvList;
    views = new OrvHashTable(1000);
    name = nullptr;
    ownsDisplay = 0;
    screenWidth = screenHeight = 0;
    depth = 0;
    rootCanvas = nullptr;
    path = copyString(".");
    connectionNumber = -1;
    doubleClickPeriod = 200;
    memset(&lastButtonEvent, 0, sizeof lastButtonEvent);
    lastButtonEvent.type = OrvIgnored;
    closed = 0;
    grabbedViews = nullptr;
    currentScene = nullptr;
    colormap = 0;
    visual = nullptr;
    database = nullptr;
    language = nullptr;
    rootContext = nullptr;
    doNotOptimize = 0;
    balloonShown = 1;
    balloonDelay = 1000;
    balloonHideDelay = 5000;
    balloonTimer = nullptr;
    balloonStage = nullptr;
}

void OrvDirector::systemInit(const char* appName, const char* displayName, int, char**) {
    if (!display) {
        display = XOpenDisplay(displayName && *displayName ? displayName : nullptr);
        if (!display) {
            OrvError("## Orvis : Can't open display.\n##         (Check your DISPLAY variable)\n");
            // The process ends here on purpose; hand back what the slots took first.
            closed = 1;
            closeResources();
            delete timers;
            delete roles;
            delete theaters;
            delete workProcedures;
            delete views;
            free(path);
            timers = roles = theaters = workProcedures = nullptr;
            views = nullptr;
            path = nullptr;
            fflush(stdout);
            OrvExit(0);
        }
    }
    Display* dpy = (Display*)display;
    name = copyString(appName ? appName : "Orv");
    if (!allDirectors) allDirectors = new OrvList;
    allDirectors->insert(this);
    connectionNumber = ConnectionNumber(dpy);
    OrvRegisterInput(connectionNumber, readDisplay, this, nullptr);
    XSetIOErrorHandler((XIOErrorHandler)OrvXIOError);
    XSetErrorHandler((XErrorHandler)OrvXError);
    screenWidth = DisplayWidth(dpy, DefaultScreen(dpy));
    screenHeight = DisplayHeight(dpy, DefaultScreen(dpy));
    unsigned long rootDrawable = initializeVisual();
    rootCanvas = new OrvCanvas(this, screenWidth, screenHeight, nullptr);
    rootCanvas->depth = depth;
    rootCanvas->director = this;
    rootCanvas->drawable = rootDrawable;
    // The root canvas realises resources on itself: it is what the others share.
    rootCanvas->sharesRootResources = 0;
    init();
    lastButtonEvent.type = OrvIgnored;
    doubleClickPeriod = 200;
    initContext();
}

unsigned long OrvDirector::initializeVisual() {
    Display* dpy = (Display*)display;
    int screen = DefaultScreen(dpy);
    Window root = RootWindow(dpy, screen);
    if (DefaultDepth(dpy, screen) != 8) {
        XVisualInfo tmpl;
        memset(&tmpl, 0, sizeof tmpl);
        tmpl.screen = screen;
        tmpl.depth = 8;
        tmpl.c_class = PseudoColor;
        int n = 0;
        XVisualInfo* vi =
            XGetVisualInfo(dpy, VisualScreenMask | VisualDepthMask | VisualClassMask, &tmpl, &n);
        if (vi && n > 0) {
            depth = vi->depth;
            visual = vi->visual;
            colormap = XCreateColormap(dpy, root, vi->visual, AllocNone);
            XSetWindowAttributes a;
            memset(&a, 0, sizeof a);
            a.background_pixmap = None;
            a.border_pixel = 0;
            a.colormap = colormap;
            Window w = XCreateWindow(dpy, root, 0, 0, 1, 1, 0, depth, InputOutput, vi->visual,
                                     CWBackPixmap | CWBorderPixel | CWColormap, &a);
            XFree(vi);
            return w;
        }
        if (vi) XFree(vi);
    }
    depth = DefaultDepth(dpy, screen);
    colormap = DefaultColormap(dpy, screen);
    visual = DefaultVisual(dpy, screen);
    return root;
}

void OrvDirector::init() {
    const char* env = getenv("ORVPATH");
    if (env) prependToPath(env);
    const char* res = resource("OrvPath", nullptr);
    if (res) prependToPath(res);
    const char* home = getenv("ORVHOME");
    if (home) {
        static const char* const dirs[] = {"%s/data/orv",     "%s/data/icons",
                                           "%s/data/vfont",   "%s/data/material",
                                           "%s/data/texture", "%s/data/zedtorv"};
        for (const char* d : dirs) {
            size_t n = strlen(home) + strlen(d) + 1;
            char* p = (char*)malloc(n);
            snprintf(p, n, d, home);
            prependToPath(p);
            free(p);
        }
    }
    initDatabase();
    grabbedViews = new OrvList;
    initResources();
    if (getenv("ORVDONOTOPTIMIZE")) doNotOptimize = 1;
}

OrvDirector::~OrvDirector() {
    if (display && !closed) close();
    free(path);
    path = nullptr;
    delete timers;
    delete roles;
    delete theaters;
    delete views;
}

void OrvDirector::close() {
    if (closed) return;
    closed = 1;
    // The messages go first, before any resource.
    delete database;
    database = nullptr;
    Display* dpy = (Display*)display;
    // Timers stop before anything they might touch goes away.
    for (OrvLink* l = timers ? timers->first : nullptr; l;) {
        OrvLink* next = l->next;
        ((OrvTimer*)l->value)->suspend();
        l = next;
    }
    for (OrvAListItem* i = depth1Contexts.first; i; i = i->next)
        if (i->value) XFreeGC(dpy, (GC)i->value);
    delete screenBufferBitmap;
    screenBufferBitmap = nullptr;
    free(name);
    name = nullptr;
    currentScene = nullptr;
    closeResources();
    if (rootCanvas) {
        if (rootCanvas->drawable == RootWindow(dpy, DefaultScreen(dpy))) {
            XDestroyWindow(dpy, rootCanvas->drawable);
            rootCanvas->drawable = 0;
        }
        if (colormap != DefaultColormap(dpy, DefaultScreen(dpy))) XFreeColormap(dpy, colormap);
        delete rootCanvas;
        rootCanvas = nullptr;
    }
    systemClose();
    delete grabbedViews;
    grabbedViews = nullptr;
    delete workProcedures;
    workProcedures = nullptr;
}

void OrvDirector::systemClose() {
    Display* dpy = (Display*)display;
    if (allDirectors) allDirectors->remove(this);
    OrvUnRegisterInput(connectionNumber);
    XSetCloseDownMode(dpy, DestroyAll);
    if (ownsDisplay) {
        XCloseDisplay(dpy);
        display = nullptr;
    }
}

void OrvDirector::closeRolesAndViews() {
    // Roles and theaters are owned by the 2D and 3D object models, which take
    // them out of these lists as they go; what is left here is only dropped.
    if (roles) {
        delete roles;
        roles = new OrvList;
    }
    if (workProcedures) {
        OrvList copy;
        for (OrvLink* l = workProcedures->first; l; l = l->next) copy.append(l->value);
        for (OrvLink* l = copy.first; l; l = l->next) {
            OrvWorkProcedure* w = (OrvWorkProcedure*)l->value;
            if (!listHas(workProcedures, w)) continue;
            workProcedures->remove(w);
            if (--w->count < 1) delete w;
        }
    }
    if (views) {
        OrvList copy;
        collectViews(views, copy);
        for (OrvLink* l = copy.first; l; l = l->next) {
            OrvView* v = (OrvView*)l->value;
            if (views->get((void*)v->window()) == v) delete v;
        }
        delete views;
        views = nullptr;
    }
    if (theaters) {
        delete theaters;
        theaters = new OrvList;
    }
    closeContext();
}

void OrvDirector::closeTimers() {
    if (!timers) return;
    OrvList copy;
    for (OrvLink* l = timers->first; l; l = l->next) copy.append(l->value);
    for (OrvLink* l = copy.first; l; l = l->next)
        if (listHas(timers, l->value)) delete (OrvTimer*)l->value;
}

const char* OrvDirector::resource(const char* key, const char* defaultValue) const {
    Display* dpy = (Display*)display;
    char* v = XGetDefault(dpy, name ? name : "Orv", key);
    if (!v || !*v) v = XGetDefault(dpy, "Orv", key);
    if (!v) return defaultValue;
    size_t n = strlen(v);
    while (n > 0 && (v[n - 1] == ' ' || v[n - 1] == '\t')) v[--n] = 0;
    return n ? v : defaultValue;
}

void OrvDirector::setPath(const char* p) {
    free(path);
    path = copyString(p);
}

void OrvDirector::appendToPath(const char* d) {
    if (!path) return setPath(d);
    if (!d) return;
    size_t n = strlen(path) + strlen(d) + 2;
    char* p = (char*)malloc(n);
    snprintf(p, n, "%s:%s", path, d);
    free(path);
    path = p;
}

void OrvDirector::prependToPath(const char* d) {
    if (!path) return setPath(d);
    if (!d) return;
    size_t n = strlen(path) + strlen(d) + 2;
    char* p = (char*)malloc(n);
    snprintf(p, n, "%s:%s", d, path);
    free(path);
    path = p;
}

const char* OrvDirector::findInPath(const char* file) const {
    static char* buffer = nullptr;
    static size_t capacity = 0;
    if (!file || !*file) return nullptr;
    if (!path || file[0] == '/') return access(file, R_OK) == 0 ? file : nullptr;
    size_t flen = strlen(file);
    const char* p = path;
    for (;;) {
        const char* colon = strchr(p, ':');
        size_t len = colon ? (size_t)(colon - p) : strlen(p);
        size_t elen = len;
        if (elen > 0 && p[elen - 1] == '/') elen--;
        size_t need = elen + 1 + flen + 1;
        if (need > capacity) {
            size_t c = capacity ? capacity : 256;
            while (c < need) c *= 2;
            buffer = (char*)realloc(buffer, c);
            capacity = c;
        }
        memcpy(buffer, p, elen);
        buffer[elen] = '/';
        memcpy(buffer + elen + 1, file, flen + 1);
        if (access(buffer, R_OK) == 0) return buffer;
        if (!colon) return nullptr;
        p = colon + 1;
    }
}

OrvView* OrvDirector::view(const char* viewName) const {
    if (!viewName || !views) return nullptr;
    for (unsigned i = 0; i < views->size; i++)
        for (OrvAListItem* it = views->buckets[i] ? views->buckets[i]->first : nullptr; it;
             it = it->next) {
            OrvView* v = (OrvView*)it->value;
            if (v->name && strcmp(v->name, viewName) == 0) return v;
        }
    return nullptr;
}

OrvView* OrvDirector::view(const Orv2dPoint& p) const {
    Display* dpy = (Display*)display;
    Window root = DefaultRootWindow(dpy);
    Window from = root, child = 0;
    int x = p.x, y = p.y, tx, ty;
    Window deepest = 0;
    while (XTranslateCoordinates(dpy, from, from, x, y, &tx, &ty, &child) && child) {
        int cx, cy;
        Window dummy;
        XTranslateCoordinates(dpy, from, child, x, y, &cx, &cy, &dummy);
        from = child;
        x = cx;
        y = cy;
        deepest = child;
    }
    return deepest ? findView(deepest) : nullptr;
}

void OrvDirector::addView(OrvView* v) {
    if (views) views->put((void*)v->window(), v);
}

void OrvDirector::removeView(OrvView* v) {
    if (views) views->remove((void*)v->window());
}

OrvView* OrvDirector::findView(unsigned long window) const {
    return views ? (OrvView*)views->get((void*)window) : nullptr;
}

void OrvDirector::add(OrvBitmap* b) {
    if (bitmaps) bitmaps->append(b);
}
void OrvDirector::remove(OrvBitmap* b) {
    if (bitmaps) bitmaps->remove(b);
}
void OrvDirector::add(OrvTimer* t) {
    if (timers) timers->append(t);
}
void OrvDirector::remove(OrvTimer* t) {
    if (timers) timers->remove(t);
}
void OrvDirector::add(OrvRole* r) {
    if (roles) roles->append(r);
}
void OrvDirector::remove(OrvRole* r) {
    if (roles) roles->remove(r);
}
void OrvDirector::add(OrvTheater* t) {
    if (theaters) theaters->append(t);
}
void OrvDirector::remove(OrvTheater* t) {
    if (theaters) theaters->remove(t);
}
void OrvDirector::add(OrvWorkProcedure* w) {
    if (!workProcedures || listHas(workProcedures, w)) return;
    workProcedures->append(w);
    w->count++;
}
void OrvDirector::remove(OrvWorkProcedure* w) {
    if (!workProcedures || !workProcedures->remove(w)) return;
    if (--w->count < 1) delete w;
}

void OrvDirector::movePointer(const Orv2dPoint& p) const {
    Display* dpy = (Display*)display;
    XWarpPointer(dpy, None, DefaultRootWindow(dpy), 0, 0, 0, 0, p.x, p.y);
    XFlush(dpy);
}

void OrvDirector::translatePointer(long dx, long dy) const {
    Display* dpy = (Display*)display;
    XWarpPointer(dpy, None, None, 0, 0, 0, 0, (int)dx, (int)dy);
    XFlush(dpy);
}

int OrvDirector::queryPointer(long& x, long& y, unsigned short& modifiers) const {
    Display* dpy = (Display*)display;
    Window root, child;
    int rx = 0, ry = 0, wx, wy;
    unsigned int mask = 0;
    int same = XQueryPointer(dpy, DefaultRootWindow(dpy), &root, &child, &rx, &ry, &wx, &wy, &mask);
    x = rx;
    y = ry;
    modifiers = OrvMapModifiers(mask);
    return same;
}

void OrvDirector::bell(int volume) const {
    if (volume < -100) volume = -100;
    if (volume > 100) volume = 100;
    XBell((Display*)display, volume);
}

void OrvDirector::setClipboard(const char* text, int length) const {
    if (!text) return;
    XStoreBytes((Display*)display, text, length ? length : (int)strlen(text));
}

char* OrvDirector::getClipboard(int& length) const {
    static char* buffer = nullptr;
    static int capacity = 0;
    int n = 0;
    char* bytes = XFetchBytes((Display*)display, &n);
    length = 0;
    if (!bytes) return nullptr;
    if (n + 1 > capacity) {
        capacity = n + 1;
        buffer = (char*)realloc(buffer, capacity);
    }
    memcpy(buffer, bytes, n);
    buffer[n] = 0;
    XFree(bytes);
    length = n;
    return buffer;
}

void OrvDirector::flush() const {
    XFlush((Display*)display);
}

void OrvDirector::synchronize(int on) const {
    XSynchronize((Display*)display, on);
}

unsigned long OrvDirector::defaultColormap(unsigned& size) const {
    if (rootCanvas) {
        size = 1u << rootCanvas->depth;
        return rootCanvas->colormap;
    }
    size = 1u << depth;
    return colormap;
}

void* OrvDirector::defaultVisual() const {
    return visual;
}

void OrvDirector::grab(OrvView* v) {
    if (grabbedViews) grabbedViews->insert(v);
}

void OrvDirector::unGrab(OrvView* v) {
    if (grabbedViews) grabbedViews->remove(v);
}

int OrvDirector::isGrabbed(OrvView* v) const {
    return grabbedViews && listHas(grabbedViews, v) ? 1 : 0;
}

OrvView* OrvDirector::grabView() const {
    return grabbedViews && grabbedViews->first ? (OrvView*)grabbedViews->first->value : nullptr;
}
