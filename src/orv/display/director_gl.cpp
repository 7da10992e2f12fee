// The director's GL root context, whose display lists every GL view shares.
#include "orv/director.h"

#include <GL/gl.h>
#include <GL/glx.h>
#include <X11/Xlib.h>

#ifdef ORV_KEEP_GL_DRIVER_LOADED
#include <dlfcn.h>
#include <link.h>

// Sanitizer builds only. Mesa unloads its driver when the display closes, so a
// leak report at exit could not name the driver's frames, and the suppressions
// that excuse the driver's own start-up allocations could not match them. Every
// object loaded by then is marked never to be unloaded.
static int orvPinLoadedObject(struct dl_phdr_info* info, size_t, void*) {
    if (info->dlpi_name && info->dlpi_name[0])
        dlopen(info->dlpi_name, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
    return 0;
}

// Pins again once a context exists, since creating it may load more.
static void orvKeepGLDriverLoaded(bool contextMade = false) {
    static bool pinnedWithContext = false;
    if (pinnedWithContext) return;
    pinnedWithContext = contextMade;
    dl_iterate_phdr(orvPinLoadedObject, nullptr);
}
#endif

// Deletes the 40 marker lists of the director's share group (the scene side makes them).
void _OrvDeleteOGLMarkerFonts(OrvDirector* director);

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
#ifdef ORV_KEEP_GL_DRIVER_LOADED
    // Even a screen without GL visuals has loaded the driver by now.
    orvKeepGLDriverLoaded();
#endif
    if (!vi) {
        OrvPrint("OrvDirector::initContext : Can't find a visual.\n");
        rootContext = nullptr;
        return;
    }
    rootContext = glXCreateContext(dpy, vi, nullptr, True);
    XFree(vi);
#ifdef ORV_KEEP_GL_DRIVER_LOADED
    if (rootContext) orvKeepGLDriverLoaded(true);
#endif
}

void OrvDirector::closeContext() {
    if (!rootContext) return;
    Display* dpy = (Display*)display;
    _OrvDeleteOGLMarkerFonts(this);
    glXDestroyContext(dpy, (GLXContext)rootContext);
    glXMakeCurrent(dpy, None, nullptr);
    rootContext = nullptr;
}
