// What the scenes of a process share: the matrix and render-face stacks that
// invariant actors and shadows nest, the process-wide switches of the
// rendering passes, the projection of invariant actors, and the marker
// bitmaps compiled once per director into its root context's lists.
#include "orv/director.h"
#include "orv/scene.h"

#include <GL/gl.h>
#include <GL/glx.h>
#include <X11/Xlib.h>
#include <cstring>

// Invariant space has y downward, like window pixels.
Orv3dMatrix OrvScene::_invariantProjection(1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);

unsigned long OrvAllowSwapForGhost = 1;

static unsigned long forceImmediateMode = 0;

void OrvForceImmediateMode(unsigned long on) {
    forceImmediateMode = on;
}

unsigned long OrvForceImmediateMode() {
    return forceImmediateMode;
}

// ---------------------------------------------------------------------------
// Stacks: fixed depths, one counter each starting at -1; no locking (one thread)
// ---------------------------------------------------------------------------

enum {
    MatrixDepth = 32,
    RenderFaceDepth = 500
};

static double modelViewStack[MatrixDepth][16];
static int modelViewTop = -1;
static double projectionStack[MatrixDepth][16];
static int projectionTop = -1;

struct RenderFaceRecord {
    unsigned long invariant;
    const Orv3dMatrix* matrix;
    unsigned long flag;
};
static RenderFaceRecord renderFaceStack[RenderFaceDepth];
static int renderFaceTop = -1;

unsigned long OrvPushModelView() {
    if (modelViewTop >= MatrixDepth - 1)
        return OrvError("## ModelView stack : internal error (stack overflow).");
    glGetDoublev(GL_MODELVIEW_MATRIX, modelViewStack[++modelViewTop]);
    return 1;
}

unsigned long OrvPopModelView() {
    if (modelViewTop < 0) return OrvError("## ModelView stack : internal error (stack underflow).");
    glLoadMatrixd(modelViewStack[modelViewTop--]);
    return 1;
}

unsigned long OrvPushProjection() {
    if (projectionTop >= MatrixDepth - 1)
        return OrvError("## Projection stack : internal error (stack overflow).");
    glGetDoublev(GL_PROJECTION_MATRIX, projectionStack[++projectionTop]);
    return 1;
}

unsigned long OrvPopProjection() {
    if (projectionTop < 0)
        return OrvError("## Projection stack : internal error (stack underflow).");
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixd(projectionStack[projectionTop--]);
    glMatrixMode(GL_MODELVIEW);
    return 1;
}

unsigned long OrvPushRenderFace(const OrvScene* scene) {
    if (renderFaceTop >= RenderFaceDepth - 1)
        return OrvError("## Render face stack : internal error (stack overflow).");
    RenderFaceRecord& r = renderFaceStack[++renderFaceTop];
    r.invariant = scene->renderInvariant;
    r.matrix = scene->renderMatrix;
    r.flag = scene->renderFaceFlag;
    scene->cullValid = 0;  // the words are about to change
    return 1;
}

unsigned long OrvPopRenderFace(const OrvScene* scene) {
    if (renderFaceTop < 0)
        return OrvError("## Render face stack : internal error (stack underflow).");
    const RenderFaceRecord& r = renderFaceStack[renderFaceTop--];
    scene->renderInvariant = r.invariant;
    scene->renderMatrix = r.matrix;
    scene->renderFaceFlag = r.flag;
    scene->cullValid = 0;
    return 1;
}

// ---------------------------------------------------------------------------
// Markers: types 1 to 5 (plus, cross, square, diamond, filled square), scales 0 to 7
// ---------------------------------------------------------------------------

enum {
    MarkerTypes = 5,
    MarkerScales = 8,
    MarkerLists = MarkerTypes * MarkerScales
};

// The side in pixels that a make-up's markerSize gives for the scale (0 counts as 1).
static unsigned markerSide(unsigned short scale) {
    return 2 + 2u * (scale ? scale : 1);
}

// Whether pixel (i, j), counted from the bitmap's lower left corner, belongs to
// the marker. Shapes are centred on pixel (c, c), which glBitmap puts on the
// pixel that holds the raster position; an even side leaves one pixel more
// below and to the left of it.
static bool markerPixel(OrvMarkerType type, int side, int i, int j) {
    int c = side / 2, di = i - c, dj = j - c;
    int ai = di < 0 ? -di : di, aj = dj < 0 ? -dj : dj;
    switch (type) {
        case 1:
            return di == 0 || dj == 0;
        case 2:
            return ai == aj;
        case 3:
            return i == 0 || j == 0 || i == side - 1 || j == side - 1;
        case 4:
            return ai + aj == c - 1;
        case 5:
            return true;
    }
    return false;
}

// Issues the marker's glBitmap at the raster position, rows one byte aligned.
static void drawMarkerBitmap(OrvMarkerType type, unsigned short scale) {
    int side = (int)markerSide(scale);
    int stride = (side + 7) / 8;
    unsigned char bits[16 * 2];
    memset(bits, 0, sizeof bits);
    for (int j = 0; j < side; j++)
        for (int i = 0; i < side; i++)
            if (markerPixel(type, side, i, j))
                bits[j * stride + i / 8] |= (unsigned char)(0x80 >> (i % 8));
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glPixelStorei(GL_UNPACK_SKIP_ROWS, 0);
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
    glPixelStorei(GL_UNPACK_LSB_FIRST, GL_FALSE);
    glBitmap(side, side, (float)(side / 2), (float)(side / 2), 0, 0, bits);
    glPopClientAttrib();
}

static bool markerKnown(OrvMarkerType type, unsigned short scale) {
    return type >= 1 && type <= MarkerTypes && scale < MarkerScales;
}

void _OrvCreateOGLMarkerFonts(unsigned base) {
    for (OrvMarkerType type = 1; type <= MarkerTypes; type++)
        for (unsigned short scale = 0; scale < MarkerScales; scale++) {
            glNewList(base + (type - 1) * MarkerScales + scale, GL_COMPILE);
            drawMarkerBitmap(type, scale);
            glEndList();
        }
}

unsigned OrvDirector::marker(OrvMarkerType type, unsigned short scale) const {
    if (!markerLists || !markerKnown(type, scale)) return 0;
    return markerLists + (unsigned)(type - 1) * MarkerScales + scale;
}

void OrvDirector::immediateMarker(OrvMarkerType type, unsigned short scale) const {
    if (markerKnown(type, scale)) drawMarkerBitmap(type, scale);
}

// Lists belong to the share group, so the root context must be current to
// delete them; when the views are gone it has no window left, and an unmapped
// one-pixel window of the same visual stands in for one.
void _OrvDeleteOGLMarkerFonts(OrvDirector* director) {
    unsigned base = director->markerLists;
    director->markerLists = 0;
    if (!base || !director->rootContext) return;
    Display* dpy = (Display*)director->display;
    XVisualInfo* vi =
        glXChooseVisual(dpy, DefaultScreen(dpy), const_cast<int*>(director->get3dRendererConfig()));
    if (!vi) return;
    Window root = RootWindow(dpy, vi->screen);
    XSetWindowAttributes a;
    a.colormap = XCreateColormap(dpy, root, vi->visual, AllocNone);
    a.border_pixel = 0;
    Window window = XCreateWindow(dpy, root, 0, 0, 1, 1, 0, vi->depth, InputOutput, vi->visual,
                                  CWColormap | CWBorderPixel, &a);
    if (glXMakeCurrent(dpy, window, (GLXContext)director->rootContext)) {
        glDeleteLists(base, MarkerLists);
        glFinish();
    }
    glXMakeCurrent(dpy, None, nullptr);
    XDestroyWindow(dpy, window);
    XFreeColormap(dpy, a.colormap);
    XFree(vi);
}
