// Images on GL: the display list that loads an image as the current texture,
// scaled to powers of two and, with mipmaps, every level down to 1 by 1.
#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/image.h"
#include "orv/view.h"

#include <cstdlib>
#include <cstring>

#include <GL/gl.h>
#include <GL/glx.h>
#include <X11/Xlib.h>

// The nearest power of two, ties going up, at most 2048.
static unsigned long textureSize(unsigned long size) {
    unsigned long p = 1;
    while (p < size) p <<= 1;
    unsigned long r = p - size <= size - p / 2 ? p : p / 2;
    if (r > 2048) r = 2048;
    return r ? r : 1;
}

// Rows whose length is odd get a padding byte, for the unpack alignment of 2.
static unsigned char* alignedRows(const unsigned char* data, unsigned long w, unsigned long h,
                                  unsigned long channels, int& copied) {
    unsigned long row = w * channels;
    copied = 0;
    if (!(row & 1) || h < 2) return const_cast<unsigned char*>(data);
    unsigned char* out = (unsigned char*)calloc((row + 1) * h, 1);
    if (!out) return nullptr;
    for (unsigned long y = 0; y < h; y++) memcpy(out + y * (row + 1), data + y * row, row);
    copied = 1;
    return out;
}

static void sendLevel(int level, unsigned long w, unsigned long h, unsigned long channels,
                      GLenum format, const unsigned char* data) {
    int copied = 0;
    unsigned char* rows = alignedRows(data, w, h, channels, copied);
    if (!rows) return;
    glTexImage2D(GL_TEXTURE_2D, level, (GLint)channels, (GLsizei)w, (GLsizei)h, 0, format,
                 GL_UNSIGNED_BYTE, rows);
    if (copied) free(rows);
}

void OrvImage::createInternalImage(unsigned long list) const {
    if (!pixels || !width || !height) return;
    if (list) glNewList((GLuint)list, GL_COMPILE);
    glPixelTransferf(GL_RED_SCALE, 1);
    glPixelTransferf(GL_GREEN_SCALE, 1);
    glPixelTransferf(GL_BLUE_SCALE, 1);
    glPixelTransferf(GL_ALPHA_SCALE, 1);
    glPixelTransferf(GL_RED_BIAS, 0);
    glPixelTransferf(GL_GREEN_BIAS, 0);
    glPixelTransferf(GL_BLUE_BIAS, 0);
    glPixelTransferf(GL_ALPHA_BIAS, 0);
    static const GLenum store[12] = {
        GL_UNPACK_SWAP_BYTES,  GL_UNPACK_LSB_FIRST, GL_UNPACK_ROW_LENGTH, GL_UNPACK_SKIP_ROWS,
        GL_UNPACK_SKIP_PIXELS, GL_UNPACK_ALIGNMENT, GL_PACK_SWAP_BYTES,   GL_PACK_LSB_FIRST,
        GL_PACK_ROW_LENGTH,    GL_PACK_SKIP_ROWS,   GL_PACK_SKIP_PIXELS,  GL_PACK_ALIGNMENT};
    GLint saved[12];
    for (int i = 0; i < 12; i++) glGetIntegerv(store[i], &saved[i]);
    for (int i = 0; i < 5; i++) glPixelStorei(store[i], 0);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 2);

    static const GLenum formats[5] = {0, GL_LUMINANCE, GL_LUMINANCE_ALPHA, GL_RGB, GL_RGBA};
    unsigned long channels = type >= 1 && type <= 4 ? type : 3;
    GLenum format = formats[channels];
    // Bits read from a one-bit or two-bit file go to GL as bytes.
    unsigned char* expanded = nullptr;
    const unsigned char* source = pixels;
    if (isPacked()) {
        expanded = (unsigned char*)malloc((size_t)width * height * channels);
        if (expanded) {
            for (unsigned long y = 0; y < height; y++)
                for (unsigned long x = 0; x < width; x++) {
                    unsigned char c[4];
                    pixel(x, y, c);
                    memcpy(expanded + (y * width + x) * channels, c, channels);
                }
        }
        source = expanded;
    }
    unsigned long w = textureSize(width), h = textureSize(height);
    unsigned char* level = nullptr;
    if (source && (w != width || h != height)) {
        level = (unsigned char*)malloc((size_t)w * h * channels);
        if (level && !OrvScaleImage(type, channels, w, h, level, width, height, source)) {
            free(level);
            level = nullptr;
        }
    } else if (source && mipmap) {
        level = (unsigned char*)malloc((size_t)w * h * channels);
        if (level) memcpy(level, source, (size_t)w * h * channels);
    }
    if (!mipmap) {
        if (level)
            sendLevel(0, w, h, channels, format, level);
        else if (source && w == width && h == height)
            sendLevel(0, w, h, channels, format, source);
    } else if (level) {
        for (int n = 0;; n++) {
            sendLevel(n, w, h, channels, format, level);
            if (w == 1 && h == 1) break;
            unsigned long nw = w > 1 ? w / 2 : 1, nh = h > 1 ? h / 2 : 1;
            unsigned char* half = (unsigned char*)malloc((size_t)nw * nh * channels);
            if (!half || !OrvScaleImage(type, channels, nw, nh, half, w, h, level)) {
                free(half);
                break;
            }
            free(level);
            level = half;
            w = nw;
            h = nh;
        }
    }
    free(level);
    free(expanded);
    for (int i = 0; i < 12; i++) glPixelStorei(store[i], saved[i]);
    if (list) glEndList();
}

unsigned long OrvImage::internal(const OrvCanvas* canvas) const {
    if (!director) return 0;
    if (!canvas) {
        // Inside a scene's rendering the image goes straight to the current texture.
        if (director->currentScene) createInternalImage(0);
        return 0;
    }
    // One list serves every canvas: they share the director's root context.
    if (internals.first) return (unsigned long)internals.first->value;
    if (!(canvas->style & OrvViewGL) && strcmp(canvas->className(), "OrvView") != 0) return 0;
    Display* dpy = (Display*)director->display;
    int madeCurrent = 0;
    if (!director->currentScene) {
        if (!director->rootContext || !canvas->drawable ||
            !glXMakeCurrent(dpy, (GLXDrawable)canvas->drawable, (GLXContext)director->rootContext))
            return 0;
        madeCurrent = 1;
    }
    GLuint list = glGenLists(1);
    if (!list) {
        OrvPrint("OrvImage::internal : Can't create image display list.\n");
    } else {
        createInternalImage(list);
        const_cast<OrvAList&>(internals).append(canvas, (void*)(unsigned long)list);
    }
    if (madeCurrent) glXMakeCurrent(dpy, None, nullptr);
    return list;
}
