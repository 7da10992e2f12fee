// From X events to OrvEvent records and on to the views' handlers: decoding,
// dispatch by window, expose merging and drag compression.
#include "orv/director.h"
#include "orv/region.h"
#include "orv/view.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <cstdio>
#include <cstring>

int orv_compress_drag_events = 1;
static unsigned long fastSkipMotion = 1;

unsigned long OrvFastSkipMotionEvents() {
    return fastSkipMotion;
}
void OrvFastSkipMotionEvents(unsigned long on) {
    fastSkipMotion = on;
}

unsigned short OrvMapModifiers(unsigned int s) {
    unsigned short m = 0;
    if (s & Button1Mask) m |= OrvButton1Modifier;
    if (s & Button2Mask) m |= OrvButton2Modifier;
    if (s & Button3Mask) m |= OrvButton3Modifier;
    if (s & Button4Mask) m |= OrvButton4Modifier;
    if (s & ShiftMask) m |= OrvShiftModifier;
    if (s & ControlMask) m |= OrvControlModifier;
    if (s & Mod4Mask) m |= OrvMod4Modifier;
    if (s & Mod1Mask) m |= OrvMod1Modifier;
    if (s & Mod3Mask) m |= OrvMod3Modifier;
    if (s & LockMask) m |= OrvLockModifier;
    if (s & Mod2Mask) m |= OrvMod2Modifier;
    return m;
}

static unsigned short mapButton(unsigned int b) {
    switch (b) {
        case 1:
            return 1;
        case 2:
            return 2;
        case 3:
            return 4;
        case 4:
            return 8;
        default:
            return 0;
    }
}

// The codes of the keys that give no text, by their X names.
static OrvStringHashTable* functionKeys() {
    static OrvStringHashTable* table = nullptr;
    if (table) return table;
    table = new OrvStringHashTable(1000);
    static char fnames[20][4];
    for (int i = 0; i < 20; i++) {
        snprintf(fnames[i], sizeof fnames[i], "F%d", i);
        table->put(fnames[i], (void*)(long)(512 + i));
    }
    static const struct {
        const char* name;
        long code;
    } keys[] = {{"F21", 561},          {"F22", 572},      {"Print", 572},   {"F27", 554},
                {"Home", 554},         {"F29", 556},      {"Prior", 556},   {"F33", 555},
                {"F35", 557},          {"Next", 557},     {"Up", 550},      {"Left", 551},
                {"Down", 552},         {"Right", 553},    {"Insert", 558},  {"hpInsertLine", 558},
                {"hpDeleteLine", 559}, {"Help", 560},     {"Menu", 560},    {"Shift_L", 562},
                {"Shift_R", 563},      {"Alt_L", 564},    {"Alt_R", 565},   {"Control_L", 566},
                {"Control_R", 567},    {"Meta_L", 568},   {"Meta_R", 569},  {"Num_Lock", 570},
                {"Caps_Lock", 571},    {"Select", 573},   {"Execute", 574}, {"Break", 575},
                {"Cancel", 576},       {"hpSystem", 577}, {"hpUser", 578},  {"Delete", 127},
                {"hpDeleteChar", 127}};
    for (const auto& k : keys) table->put(k.name, (void*)k.code);
    return table;
}

static void parseKey(XKeyEvent* k, OrvEvent& event) {
    event.time = k->time;
    event.x = k->x;
    event.y = k->y;
    event.modifiers = OrvMapModifiers(k->state);
    char buffer[100];
    KeySym sym = 0;
    int n = XLookupString(k, buffer, sizeof buffer, &sym, nullptr);
    if (n > 0) {
        unsigned char c = (unsigned char)buffer[0];
        event.key = c;
        if (c < 32)
            event.modifiers &= ~OrvControlModifier;
        else
            event.modifiers &= ~(OrvShiftModifier | OrvControlModifier);
        return;
    }
    const char* symName = XKeysymToString(sym);
    void* code = symName ? functionKeys()->get(symName) : nullptr;
    event.key = code ? (unsigned short)(long)code : (unsigned short)(sym & 0xFFFF);
}

static int sameClickSeries(const OrvEvent& last, const OrvEvent& e, unsigned short period) {
    return last.button == e.button && (unsigned long)(e.time - last.time) < period &&
           last.window == e.window && last.modifiers == e.modifiers;
}

void OrvInstanceDecodeEvent(const OrvDirector* director, void* xevent, OrvEvent& event) {
    XEvent* x = (XEvent*)xevent;
    memset(&event, 0, sizeof event);
    event.window = x->xany.window;
    switch (x->type) {
        case KeyPress:
        case KeyRelease:
            event.type = x->type == KeyPress ? OrvKeyDown : OrvKeyUp;
            parseKey(&x->xkey, event);
            event.globalX = x->xkey.x_root;
            event.globalY = x->xkey.y_root;
            break;
        case ButtonPress:
        case ButtonRelease: {
            XButtonEvent& b = x->xbutton;
            event.type = x->type == ButtonPress ? OrvButtonDown : OrvButtonUp;
            event.time = b.time;
            event.x = b.x;
            event.y = b.y;
            event.globalX = b.x_root;
            event.globalY = b.y_root;
            event.button = mapButton(b.button);
            event.modifiers = OrvMapModifiers(b.state);
            if (x->type == ButtonRelease) {
                // The button bits of modifiers are the button values themselves.
                event.modifiers &= ~event.button;
                break;
            }
            OrvEvent& last = const_cast<OrvDirector*>(director)->lastEvent();
            if (last.type == OrvButtonDown &&
                sameClickSeries(last, event, director->doubleClickPeriod)) {
                event.type = OrvDoubleClick;
                event.count = 2;
            } else if (last.type == OrvDoubleClick && last.count == 2 &&
                       sameClickSeries(last, event, director->doubleClickPeriod)) {
                event.type = OrvDoubleClick;
                event.count = 3;
            }
            last = event;
            break;
        }
        case EnterNotify:
        case LeaveNotify: {
            XCrossingEvent& c = x->xcrossing;
            event.type = x->type == EnterNotify ? OrvEnterWindow : OrvLeaveWindow;
            event.time = c.time;
            event.x = c.x;
            event.y = c.y;
            event.globalX = c.x_root;
            event.globalY = c.y_root;
            event.modifiers = OrvMapModifiers(c.state);
            break;
        }
        case MotionNotify: {
            XMotionEvent& m = x->xmotion;
            event.time = m.time;
            event.x = m.x;
            event.y = m.y;
            event.globalX = m.x_root;
            event.globalY = m.y_root;
            event.modifiers = OrvMapModifiers(m.state);
            unsigned short held = event.modifiers & 0x000F;
            if (!held) {
                event.type = OrvPointerMoved;
                event.button = 0;
            } else {
                event.type = OrvButtonDragged;
                if (held & 1) event.button = 1;
                if (held & 2) event.button = 2;
                if (held & 4) event.button = 4;
            }
            break;
        }
        case Expose:
            event.type = OrvExpose;
            event.x = x->xexpose.x;
            event.y = x->xexpose.y;
            event.width = x->xexpose.width;
            event.height = x->xexpose.height;
            event.count = (unsigned short)x->xexpose.count;
            break;
        case GraphicsExpose:
            event.type = OrvExpose;
            event.x = x->xgraphicsexpose.x;
            event.y = x->xgraphicsexpose.y;
            event.width = x->xgraphicsexpose.width;
            event.height = x->xgraphicsexpose.height;
            event.count = (unsigned short)x->xgraphicsexpose.count;
            break;
        case ConfigureNotify: {
            XConfigureEvent& c = x->xconfigure;
            event.type = OrvConfigure;
            event.x = c.x;
            event.y = c.y;
            event.width = c.width;
            event.height = c.height;
            event.button = (unsigned short)c.send_event;
            if (!c.send_event) {
                int gx = 0, gy = 0;
                Window child;
                XTranslateCoordinates(c.display, c.window, DefaultRootWindow(c.display), 0, 0, &gx,
                                      &gy, &child);
                event.globalX = gx;
                event.globalY = gy;
            }
            break;
        }
        case FocusIn:
            event.type = OrvFocusIn;
            break;
        case FocusOut:
            event.type = OrvFocusOut;
            break;
        case DestroyNotify:
            event.type = OrvDestroyed;
            break;
        case MapNotify:
            event.type = OrvMapped;
            break;
        case UnmapNotify:
            event.type = OrvUnmapped;
            event.button = 1;
            break;
        case VisibilityNotify:
            event.type = OrvVisibility;
            event.button = (unsigned short)x->xvisibility.state;
            break;
        case ClientMessage: {
            Atom del = XInternAtom(x->xclient.display, "WM_DELETE_WINDOW", False);
            if ((Atom)x->xclient.data.l[0] == del) {
                event.type = OrvQuit;
            } else {
                event.type = OrvClientMessage;
                memcpy(event.data, x->xclient.data.b, sizeof event.data);
                event.data[sizeof event.data - 1] = 0;
            }
            break;
        }
        default:
            event.type = OrvIgnored;
            break;
    }
}

void OrvDirector::readAndDispatchEvents() const {
    Display* dpy = (Display*)display;
    XEvent x;
    while (XPending(dpy)) {
        XNextEvent(dpy, &x);
        OrvInstanceDispatchEvent(this, &x);
    }
}

int OrvDirector::hasEvents() const {
    return XPending((Display*)display);
}

int OrvDispatchEvent(void* xevent) {
    XEvent* x = (XEvent*)xevent;
    OrvList* all = OrvGetAllDirectors();
    const OrvDirector* found = nullptr;
    for (OrvLink* l = all ? all->first : nullptr; l; l = l->next)
        if (((OrvDirector*)l->value)->display == (void*)x->xany.display)
            found = (OrvDirector*)l->value;
    if (!found) return 1;
    return OrvInstanceDispatchEvent(found, xevent);
}

int OrvInstanceDispatchEvent(const OrvDirector* director, void* xevent) {
    OrvView* view = director->findView(((XEvent*)xevent)->xany.window);
    if (!view) return 0;
    OrvViewManageEvent(view, xevent);
    return 1;
}

void OrvViewManageEvent(OrvView* view, void* xevent) {
    OrvEvent event;
    OrvInstanceDecodeEvent(view->director, xevent, event);
    switch (event.type) {
        case OrvIgnored:
            return;
        case OrvQuit:
            view->handleQuit();
            return;
        case OrvConfigure: {
            Orv2dRect newRect(event.x, event.y, event.width, event.height);
            Orv2dRect oldRect = view->bbox();
            view->handleResize(oldRect, newRect);
            return;
        }
        case OrvExpose: {
            Orv2dRegion region(25);
            OrvCompressExposures(view, region, event, xevent);
            view->handleExpose(&region);
            return;
        }
        case OrvDestroyed:
            // The server has already destroyed the window.
            view->ownsWindow = 0;
            delete view;
            return;
        default:
            break;
    }
    if (!view->isSensitive()) return;
    if (event.type == OrvPointerMoved || event.type == OrvButtonDragged)
        OrvFastSkipMotionEvents(view, event);
    OrvView* grabbing = view->director->grabView();
    if (grabbing)
        grabbing->handleInput(event);
    else
        view->handleInput(event);
}

namespace {
struct ExposeFilter {
    int waitForLast;
    int sawOther;
    Window window;
};

Bool exposePredicate(Display*, XEvent* e, XPointer arg) {
    ExposeFilter* f = (ExposeFilter*)arg;
    if (e->type != Expose && e->type != GraphicsExpose) {
        f->sawOther = 1;
        return False;
    }
    if (!f->waitForLast && f->sawOther) return False;
    return e->xany.window == f->window ? True : False;
}

int exposeCount(const XEvent& e) {
    return e.type == Expose ? e.xexpose.count : e.xgraphicsexpose.count;
}
}  // namespace

static Orv2dRect eventRect(const OrvEvent& e) {
    return Orv2dRect(e.x, e.y, e.width, e.height);
}

void OrvCompressExposures(OrvView* view, Orv2dRegion& region, const OrvEvent& event, void* xevent) {
    region.extendBy(eventRect(event));
    if (exposeCount(*(XEvent*)xevent) != 0) return;
    Display* dpy = (Display*)view->director->display;
    ExposeFilter filter = {1, 0, (Window)view->window()};
    int count = 0;
    XEvent next;
    OrvEvent decoded;
    for (;;) {
        if (XCheckIfEvent(dpy, &next, exposePredicate, (XPointer)&filter)) {
            count = exposeCount(next);
        } else if (count == 0) {
            return;
        } else {
            XIfEvent(dpy, &next, exposePredicate, (XPointer)&filter);
            count = exposeCount(next);
        }
        OrvInstanceDecodeEvent(view->director, &next, decoded);
        region.extendBy(eventRect(decoded));
    }
}

int OrvFastSkipMotionEvents(OrvView* view, OrvEvent& event) {
    if (!orv_compress_drag_events) return 0;
    Display* dpy = (Display*)view->director->display;
    XFlush(dpy);
    XSync(dpy, False);
    XEvent x, last;
    int taken = 0;
    while (XCheckWindowEvent(dpy, (Window)view->window(), ButtonMotionMask, &x)) {
        last = x;
        taken = 1;
    }
    if (!taken) return 0;
    OrvInstanceDecodeEvent(view->director, &last, event);
    return 1;
}

int OrvSkipMotionEvents(OrvView* view, OrvEvent& event, void* xevent) {
    if (fastSkipMotion) return OrvFastSkipMotionEvents(view, event);
    XEvent* x = (XEvent*)xevent;
    if (!orv_compress_drag_events || !x || x->type != MotionNotify) return 0;
    Display* dpy = (Display*)view->director->display;
    int skipped = 0;
    while (XPending(dpy)) {
        XEvent peek;
        XPeekEvent(dpy, &peek);
        if (peek.type != MotionNotify || peek.xmotion.window != x->xmotion.window ||
            peek.xmotion.subwindow != x->xmotion.subwindow)
            break;
        XNextEvent(dpy, x);
        skipped = 1;
    }
    if (skipped) OrvInstanceDecodeEvent(view->director, x, event);
    return skipped;
}
