// GL windows: the context of a 3D view, sharing the director's root context,
// and the marker lists made once per director.
#include "orv/director.h"
#include "orv/view.h"

#include <GL/gl.h>
#include <GL/glx.h>
#include <X11/Xlib.h>
#include <cstring>

// Builds the 40 marker display lists from `base` (the 3D side supplies them).
void _OrvCreateOGLMarkerFonts(unsigned int base) __attribute__((weak));

void OrvView::init3d(const char* title, unsigned long parentWindow) {
    sharesRootResources = 0;
    nameView();
    Display* dpy = (Display*)director->display;
    int screen = DefaultScreen(dpy);
    Window parentW = parentWindow ? (Window)parentWindow : RootWindow(dpy, screen);
    XWindowAttributes pa;
    if (XGetWindowAttributes(dpy, parentW, &pa)) screen = XScreenNumberOfScreen(pa.screen);
    XVisualInfo* vi =
        glXChooseVisual(dpy, screen, const_cast<int*>(director->get3dRendererConfig()));
    if (vi) {
        glContext = glXCreateContext(dpy, vi, (GLXContext)director->rootContext, True);
        if (glContext) {
            colormap = XCreateColormap(dpy, RootWindow(dpy, screen), vi->visual, AllocNone);
            visual = vi->visual;
            depth = (unsigned short)vi->depth;
        }
    }
    XSetWindowAttributes a;
    memset(&a, 0, sizeof a);
    a.border_pixel = 0;
    a.bit_gravity = NorthWestGravity;
    a.win_gravity = NorthWestGravity;
    a.event_mask = KeyPressMask | KeyReleaseMask | ButtonPressMask | ButtonReleaseMask |
                   EnterWindowMask | LeaveWindowMask | PointerMotionMask | ButtonMotionMask |
                   ExposureMask | StructureNotifyMask;
    a.colormap = colormap;
    drawable =
        XCreateWindow(dpy, parentW, (int)x, (int)y, (unsigned)width, (unsigned)height,
                      parentWindow ? 0 : 1, depth, InputOutput, (Visual*)visual,
                      CWBorderPixel | CWBitGravity | CWWinGravity | CWEventMask | CWColormap, &a);
    finishWindow(title, parentWindow);
    if (vi) XFree(vi);
    initContext();
}

void OrvView::initContext() {
    if (director->markerLists || !director->rootContext || !drawable) return;
    Display* dpy = (Display*)director->display;
    if (!glXMakeCurrent(dpy, (GLXDrawable)drawable, (GLXContext)director->rootContext)) return;
    GLuint base = glGenLists(40);
    if (!base) {
        OrvPrint("OrvView::initContext : Can't create marker list.\n");
    } else {
        director->markerLists = base;
        if (_OrvCreateOGLMarkerFonts) _OrvCreateOGLMarkerFonts(base);
        const char* version = (const char*)glGetString(GL_VERSION);
        if (version && strncmp(version, "1.1", 3) == 0) director->glVersion = 11;
    }
    glXMakeCurrent(dpy, None, nullptr);
}

void OrvView::closeContext() {
    if (glContext) {
        Display* dpy = (Display*)director->display;
        XFreeColormap(dpy, colormap);
        glXMakeCurrent(dpy, (GLXDrawable)drawable, (GLXContext)glContext);
        glXDestroyContext(dpy, (GLXContext)glContext);
        glXMakeCurrent(dpy, None, nullptr);
        glContext = nullptr;
        colormap = 0;
    }
    deleteGhost();
}
