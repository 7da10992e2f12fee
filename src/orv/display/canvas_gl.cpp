// Copies between the front and back buffers of a GL view, for partial repaints.
#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/view.h"

// GL after the library headers, whose names Xlib's macros would break.
#include <GL/gl.h>

unsigned long _OrvBitBlit_(const OrvView* view, const Orv2dRect& rect, unsigned long direction,
                           unsigned long) {
    if (!view || !view->window()) return 0;
    Orv2dRect r = rect;
    r.intersection(Orv2dRect(0, 0, view->width, view->height));
    if (r.w == 0 || r.h == 0) return 0;

    // Whatever would alter the copied pixels is off during the copy.
    static const GLenum capabilities[6] = {GL_DEPTH_TEST, GL_TEXTURE_2D,      GL_TEXTURE_1D,
                                           GL_BLEND,      GL_POLYGON_STIPPLE, GL_LINE_STIPPLE};
    GLboolean enabled[6];
    for (int i = 0; i < 6; i++) {
        enabled[i] = glIsEnabled(capabilities[i]);
        if (enabled[i]) glDisable(capabilities[i]);
    }
    GLdouble modelview[16], projection[16], viewport[4], scissor[4];
    glGetDoublev(GL_MODELVIEW_MATRIX, modelview);
    glGetDoublev(GL_PROJECTION_MATRIX, projection);
    glGetDoublev(GL_VIEWPORT, viewport);
    glGetDoublev(GL_SCISSOR_BOX, scissor);
    GLboolean scissorOn = glIsEnabled(GL_SCISSOR_TEST);
    if (scissorOn) glDisable(GL_SCISSOR_TEST);

    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glViewport(0, 0, (GLsizei)view->width, (GLsizei)view->height);
    glMatrixMode(GL_PROJECTION);
    glOrtho(0, (GLdouble)view->width, 0, (GLdouble)view->height, -1, 1);
    glMatrixMode(GL_MODELVIEW);

    glReadBuffer(direction ? GL_BACK : GL_FRONT);
    glDrawBuffer(direction ? GL_FRONT : GL_BACK);
    // GL counts rows from the bottom.
    GLint y = (GLint)view->height - (GLint)(r.y + r.h);
    glRasterPos2i(r.x, y);
    glCopyPixels(r.x, y, (GLsizei)r.w, (GLsizei)r.h, GL_COLOR);
    glDrawBuffer(GL_BACK);
    glReadBuffer(GL_BACK);

    glMatrixMode(GL_PROJECTION);
    glLoadMatrixd(projection);
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixd(modelview);
    glViewport((GLint)viewport[0], (GLint)viewport[1], (GLsizei)viewport[2], (GLsizei)viewport[3]);
    glScissor((GLint)scissor[0], (GLint)scissor[1], (GLsizei)scissor[2], (GLsizei)scissor[3]);
    if (scissorOn) glEnable(GL_SCISSOR_TEST);
    for (int i = 0; i < 6; i++)
        if (enabled[i]) glEnable(capabilities[i]);
    glFlush();
    return 1;
}
