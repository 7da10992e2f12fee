// The GL engine of a scene: the rendering state of a frame from beginRendering
// to endRendering, the camera's matrices, viewport and scissor, clearing, and
// showing the back buffer by a swap or, for a partial frame, by a copy.
#include "orv/scene.h"

#include <cstring>

#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/resource.h"
#include "orv/view.h"

// GL after the library headers, whose names Xlib's macros would break.
#include <GL/gl.h>
#include <GL/glx.h>

namespace {

Display* displayOf(const OrvScene* scene) {
    return (Display*)scene->makeUp->director->display;
}

// Transposed into one static array: GL takes matrices by columns.
void loadMatrix(const Orv3dMatrix& m) {
    static float columns[16];
    m.transpose(columns);
    glLoadMatrixf(columns);
}

typedef void (*CopySubBufferProc)(Display*, GLXDrawable, int, int, int, int);

// GLX_MESA_copy_sub_buffer of the display's screen, or null where it is not offered.
CopySubBufferProc copySubBuffer(Display* dpy) {
    static Display* known = nullptr;
    static CopySubBufferProc proc = nullptr;
    if (dpy == known) return proc;
    known = dpy;
    proc = nullptr;
    const char* extensions = glXQueryExtensionsString(dpy, DefaultScreen(dpy));
    const char* name = "GLX_MESA_copy_sub_buffer";
    size_t n = strlen(name);
    for (const char* p = extensions; p && (p = strstr(p, name)); p += n) {
        bool whole = (p == extensions || p[-1] == ' ') && (p[n] == ' ' || p[n] == 0);
        if (whole) {
            proc = (CopySubBufferProc)glXGetProcAddress((const GLubyte*)"glXCopySubBufferMESA");
            break;
        }
    }
    return proc;
}

}  // namespace

void* OrvScene::context() const {
    return interior ? interior->glContext : nullptr;
}

unsigned long OrvScene::drawingCanvas() const {
    return interior ? interior->window() : 0;
}

unsigned long OrvScene::renderTexture() const {
    return textureAllowed && textureOn_;
}

unsigned long OrvScene::renderTextureCoordinate(const OrvMakeUp* look) const {
    return renderTexture() && look && look->texture();
}

void OrvScene::beginRendering(const Orv2dRegion*) {
    OrvDirector* director = makeUp->director;
    if (!drawingCanvas() || !getTheater()) return;
    Display* dpy = displayOf(this);
    if (director->currentScene == this) {
        // Another window may have taken the context away since (a view made or closed).
        if (glXGetCurrentContext() == (GLXContext)context() &&
            glXGetCurrentDrawable() == (GLXDrawable)drawingCanvas())
            return;
        director->currentScene = nullptr;
    }
    if (director->currentScene) director->currentScene->endRendering();
    director->currentScene = this;
    glXMakeCurrent(dpy, (GLXDrawable)drawingCanvas(), (GLXContext)context());
    lastMakeUp = nullptr;
    lastMakeUpLines = 0;
    contextActive = 1;
    portholeChanged = 1;
    glDisable(GL_SCISSOR_TEST);
    glDrawBuffer(doubleBuffer ? GL_BACK : GL_FRONT);
    if (dithering)
        glEnable(GL_DITHER);
    else
        glDisable(GL_DITHER);
    for (int i = 0; i < 8; i++) glDisable(GL_LIGHT0 + i);
    if (transparencyType != OrvTransparencyNone) {
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    } else {
        glDisable(GL_BLEND);
    }
    if (lightAllowed) {
        // Fixed lights go before any camera: they stay with the viewer.
        glDisable(GL_LIGHTING);
        float W, H;
        windowSize(W, H);
        glViewport(0, 0, (GLsizei)W, (GLsizei)H);
        Orv3dRect r(0, 0, W, H);
        OrvCamera* camera = currentCamera();
        if (camera && camera->keepRatio()) r.square(1);
        // On the projection as it stands: renderProjectionMatrix replaces it before any drawing.
        glMatrixMode(GL_PROJECTION);
        glOrtho(r.x, r.x + r.w, r.y, r.y + r.h, 0, 1);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        unsigned short index = 0;
        for (OrvLink* l = lights.first; l; l = l->next, index++) {
            OrvLight* light = (OrvLight*)l->value;
            if (light && light->fixed()) light->render3d(index, this);
        }
        OrvEnvironment* model = environment_ ? environment_ : director->defaultEnvironment;
        if (model) model->render3d(this);
    }
    glEnable(GL_NORMALIZE);
    if (zBuffer && (interactiveMode & OrvInteractiveFull))
        glEnable(GL_DEPTH_TEST);
    else
        glDisable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glPointSize(3);
}

void OrvScene::renderProjectionMatrix(const Orv2dRegion* region) {
    OrvCamera* camera = currentCamera();
    if (!drawingCanvas() || !camera) return;
    glMatrixMode(GL_PROJECTION);
    loadMatrix(camera->mapping());
    glMatrixMode(GL_MODELVIEW);
    loadMatrix(camera->orientation());
    if (portholeChanged) {
        Orv3dRect square = viewportRect(1);
        glViewport((GLint)square.x, (GLint)square.y, (GLsizei)square.w, (GLsizei)square.h);
        glScissor((GLint)square.x, (GLint)square.y, (GLsizei)square.w, (GLsizei)square.h);
        portholeChanged = 0;
        currentScissor = square;
    }
    Orv3dRect r = viewportRect(0);
    if (region && region->count) {
        float W, H;
        windowSize(W, H);
        const Orv2dRect& b = region->bbox;
        // GL counts rows from the bottom.
        r.intersection(
            Orv3dRect((float)b.x, H - (float)(b.y + (int64_t)b.h), (float)b.w, (float)b.h));
    }
    if (!isOffScreenRenderer() && useScissor) {
        glEnable(GL_SCISSOR_TEST);
        if (!(r == currentScissor)) {
            glScissor((GLint)r.x, (GLint)r.y, (GLsizei)r.w, (GLsizei)r.h);
            currentScissor = r;
        }
    } else {
        glDisable(GL_SCISSOR_TEST);
    }
    if (!lightAllowed) {
        glDisable(GL_LIGHTING);
        return;
    }
    // The other lights come after the camera: they are placed in the world.
    glEnable(GL_LIGHTING);
    unsigned short index = 0;
    for (OrvLink* l = lights.first; l; l = l->next, index++) {
        OrvLight* light = (OrvLight*)l->value;
        if (light && !light->fixed()) light->render3d(index, this);
    }
}

void OrvScene::renderClear(const Orv2dRegion*) {
    OrvColor* background = makeUp->background();
    if (!background) background = makeUp->director->defaultBackground;
    if (background) glClearColor(background->red, background->green, background->blue, 0);
    GLbitfield what = GL_COLOR_BUFFER_BIT;
    if (zBuffer && (interactiveMode & OrvInteractiveFull)) what |= GL_DEPTH_BUFFER_BIT;
    glClear(what);
}

void OrvScene::endRendering() {
    OrvDirector* director = makeUp->director;
    if (!drawingCanvas() || director->currentScene != this) return;
    // The context stays current: the next frame of this scene needs no switch.
    contextActive = 0;
    director->currentScene = nullptr;
}

void OrvScene::flushRendering() {
    glFlush();
}

void OrvScene::wait() const {
    glFinish();
    glXWaitGL();
    glXWaitX();
}

// Copies the box (window coordinates) between the buffers: back to front by the
// extension where it exists, since GL's own copy into the front buffer of a
// double-buffered window spoils the rest of the window on some servers.
static unsigned long copyBox(const OrvScene* scene, const Orv2dRect& box, unsigned long toFront) {
    OrvView* view = scene->interior;
    Orv2dRect r = box;
    r.intersection(Orv2dRect(0, 0, (uint32_t)view->width, (uint32_t)view->height));
    if (r.w == 0 || r.h == 0) return 0;
    Display* dpy = displayOf(scene);
    CopySubBufferProc copy = toFront ? copySubBuffer(dpy) : nullptr;
    if (!copy) {
        OrvCamera* camera = scene->currentCamera();
        return _OrvBitBlit_(view, r, toFront, camera ? camera->keepRatio() : 0);
    }
    int y = (int)view->height - (int)(r.y + (int64_t)r.h);
    copy(dpy, (GLXDrawable)view->window(), r.x, y, (int)r.w, (int)r.h);
    return 1;
}

unsigned long OrvScene::bitblit(const Orv2dRegion& region, unsigned long flag) {
    if (!contextActive) return OrvError("OrvScene::bitblit : Bad rendering context.\n");
    if (!doubleBuffer || !drawingCanvas()) return 0;
    if (!isOffScreenRenderer() && useScissor) {
        copyBox(this, region.bbox, flag);
    } else {
        buffersEqual = !buffersEqual;
        glXSwapBuffers(displayOf(this), (GLXDrawable)drawingCanvas());
    }
    return 1;
}

void OrvScene::swapForGhost() {
    if (!OrvAllowSwapForGhost || !interior || !drawingCanvas() || buffersEqual || !doubleBuffer)
        return;
    Display* dpy = displayOf(this);
    GLXContext previous = glXGetCurrentContext();
    GLXDrawable previousDrawable = glXGetCurrentDrawable();
    glXMakeCurrent(dpy, (GLXDrawable)drawingCanvas(), (GLXContext)context());
    // The window's picture into both buffers, so that a ghost over it can be taken away
    // by copying either one.
    copyBox(this, Orv2dRect(0, 0, (uint32_t)interior->width, (uint32_t)interior->height), 1);
    buffersEqual = 1;
    glXSwapBuffers(dpy, (GLXDrawable)drawingCanvas());
    if (previous != (GLXContext)context() || previousDrawable != (GLXDrawable)drawingCanvas()) {
        if (previous)
            glXMakeCurrent(dpy, previousDrawable, previous);
        else
            glXMakeCurrent(dpy, None, nullptr);
    }
}
