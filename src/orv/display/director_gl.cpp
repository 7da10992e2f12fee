// The director's GL root context, whose display lists every GL view shares.
#include "orv/director.h"

#include <GL/gl.h>
#include <GL/glx.h>
#include <X11/Xlib.h>

const int* OrvDirector::get3dRendererConfig() const {
    static const int config[] = {GLX_RGBA,
                                 GLX_DOUBLEBUFFER,
                                 GLX_RED_SIZE,
                                 1,
                                 GLX_GREEN_SIZE,
                                 1,
                                 GLX_BLUE_SIZE,
                                 1,
                                 GLX_DEPTH_SIZE,
                                 1,
                                 0};
    return config;
}

void OrvDirector::initContext() {
    Display* dpy = (Display*)display;
    XVisualInfo* vi =
        glXChooseVisual(dpy, DefaultScreen(dpy), const_cast<int*>(get3dRendererConfig()));
    if (!vi) {
        OrvPrint("OrvDirector::initContext : Can't find a visual.\n");
        rootContext = nullptr;
        return;
    }
    rootContext = glXCreateContext(dpy, vi, nullptr, True);
    XFree(vi);
}

void OrvDirector::closeContext() {
    if (!rootContext) return;
    Display* dpy = (Display*)display;
    // The marker lists live in the share group and go with its last context.
    markerLists = 0;
    glXDestroyContext(dpy, (GLXContext)rootContext);
    glXMakeCurrent(dpy, None, nullptr);
    rootContext = nullptr;
}
