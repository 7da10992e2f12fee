// Images on GL: the display list made at the first use on a GL view and shared,
// the picture it loads read back through a textured square, the power-of-two
// sizes and the mip levels it sends.
#include "image_support.h"

#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/image.h"
#include "orv/view.h"
#include "orv_xtest.h"

// GL after the library headers.
#include <GL/gl.h>
#include <GL/glx.h>

namespace {

class ImageGL : public testing::Test {
protected:
    OrvDirector* d = nullptr;
    OrvView* v = nullptr;
    Display* dpy = nullptr;
    GLuint texture = 0;
    TempDir dir;

    void SetUp() override {
        const char* name = getenv("DISPLAY");
        if (!name || !*name) GTEST_SKIP() << "no DISPLAY";
        static Display* keeper = XOpenDisplay(name);
        (void)keeper;
        d = new OrvDirector("imagegl", name, 0, nullptr);
        dpy = (Display*)d->display;
        if (d->rootContext) v = new OrvView(d, Orv2dRect(10, 10, 64, 64), "gl", OrvViewGL);
        if (!v || !v->glContext) GTEST_SKIP() << "no GL on this screen";
        ASSERT_TRUE(OrvTestWaitViewable(dpy, v->window()));
    }
    void TearDown() override {
        if (dpy) glXMakeCurrent(dpy, None, nullptr);
        delete v;
        delete d;
    }

    OrvImage* make(const char* name, OrvImageType type, unsigned w, unsigned h,
                   const unsigned char* bytes, unsigned long mipmap = 0) {
        unsigned char* px = (unsigned char*)malloc((size_t)w * h * type);
        memcpy(px, bytes, (size_t)w * h * type);
        return new OrvImage(d, name, type, w, h, px, mipmap);
    }

    // Draws the view full of the texture that `list` loads, texels picked as they are.
    void drawTextured(unsigned long list) {
        glXMakeCurrent(dpy, (GLXDrawable)v->window(), (GLXContext)v->glContext);
        glViewport(0, 0, 64, 64);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glDisable(GL_DEPTH_TEST);
        glClearColor(0, 0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        // A fresh texture object each time, so that no level of an earlier picture shows.
        if (texture) glDeleteTextures(1, &texture);
        glGenTextures(1, &texture);
        glBindTexture(GL_TEXTURE_2D, texture);
        glCallList((GLuint)list);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
        glEnable(GL_TEXTURE_2D);
        glBegin(GL_QUADS);
        glTexCoord2f(0, 0);
        glVertex2f(-1, -1);
        glTexCoord2f(1, 0);
        glVertex2f(1, -1);
        glTexCoord2f(1, 1);
        glVertex2f(1, 1);
        glTexCoord2f(0, 1);
        glVertex2f(-1, 1);
        glEnd();
        glDisable(GL_TEXTURE_2D);
        glFinish();
    }
    unsigned long rgbAt(int x, int y) {
        unsigned char c[4];
        glReadBuffer(GL_BACK);
        glReadPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, c);
        return ((unsigned long)c[0] << 16) | (c[1] << 8) | c[2];
    }
    int levelWidth(int level) {
        GLint w = 0;
        glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_WIDTH, &w);
        return w;
    }
};

TEST_F(ImageGL, OneListForEveryGLCanvasLoadingThePicture) {
    // Four by two, bottom row first as GL takes it.
    const unsigned char px[24] = {255, 0,   0,   0,   255, 0,   0,  0,  255, 255, 255, 0,
                                  0,   255, 255, 255, 0,   255, 10, 20, 30,  200, 100, 50};
    OrvImage* im = make("quad", OrvImageRGB, 4, 2, px);
    OrvBitmap* flat = new OrvBitmap(d->rootCanvas, 4, 4, d->depth);
    EXPECT_EQ(im->internal(flat), 0u) << "a 2D canvas makes no list";
    EXPECT_EQ(im->internal(nullptr), 0u);
    unsigned long list = im->internal(v);
    ASSERT_NE(list, 0u);
    EXPECT_EQ(im->internal(v), list);
    EXPECT_EQ(im->internal(flat), list) << "once made, the list serves every canvas";
    EXPECT_EQ(glXGetCurrentContext(), nullptr) << "the root context was let go";
    drawTextured(list);
    EXPECT_EQ(levelWidth(0), 4);
    const unsigned long expect[2][4] = {{0xFF0000, 0x00FF00, 0x0000FF, 0xFFFF00},
                                        {0x00FFFF, 0xFF00FF, 0x0A141E, 0xC86432}};
    for (int j = 0; j < 2; j++)
        for (int i = 0; i < 4; i++)
            EXPECT_EQ(rgbAt(i * 16 + 8, j * 32 + 16), expect[j][i]) << i << "," << j;
    delete flat;
}

TEST_F(ImageGL, PowerOfTwoSizesMipLevelsAndBits) {
    // Sizes go to the nearest power of two, ties upward: 3 and 6 to 4 and 8, 5 to 4.
    struct Case {
        unsigned w, h;
        unsigned long mipmap;
        int widths[4];  // of levels 0 to 3, 0 where there is none
    };
    const Case cases[] = {
        {3, 5, 0, {4, 0, 0, 0}}, {6, 1, 0, {8, 0, 0, 0}},   {4, 2, 1, {4, 2, 1, 0}},
        {1, 1, 1, {1, 0, 0, 0}}, {12, 3, 1, {16, 8, 4, 2}},
    };
    unsigned char grey[64 * 3];
    for (unsigned i = 0; i < sizeof grey; i++) grey[i] = (unsigned char)(i * 7);
    int n = 0;
    for (const Case& c : cases) {
        OrvImage* im =
            make(("sized" + std::to_string(n++)).c_str(), OrvImageRGB, c.w, c.h, grey, c.mipmap);
        unsigned long list = im->internal(v);
        ASSERT_NE(list, 0u);
        drawTextured(list);
        for (int level = 0; level < 4; level++)
            EXPECT_EQ(levelWidth(level), c.widths[level])
                << c.w << "x" << c.h << " level " << level;
    }
    // One column of odd rows (three bytes): each row arrives whole.
    const unsigned char column[6] = {255, 0, 0, 0, 0, 255};
    unsigned long list = make("column", OrvImageRGB, 1, 2, column)->internal(v);
    drawTextured(list);
    EXPECT_EQ(rgbAt(32, 16), 0xFF0000u);
    EXPECT_EQ(rgbAt(32, 48), 0x0000FFu);
    // Bits of a portable bitmap go to GL as luminance, black where set; its rows are turned
    // bottom first.
    writeFile(dir / "bits.pbm", "P1\n4 2\n1 0 0 1\n0 0 1 1\n");
    OrvImage* bits = d->image((dir / "bits.pbm").c_str());
    ASSERT_EQ(bits->type, OrvImageLuminance);
    drawTextured(bits->internal(v));
    const unsigned long expect[2][4] = {{0xFFFFFF, 0xFFFFFF, 0, 0}, {0, 0xFFFFFF, 0xFFFFFF, 0}};
    for (int j = 0; j < 2; j++)
        for (int i = 0; i < 4; i++)
            EXPECT_EQ(rgbAt(i * 16 + 8, j * 32 + 16), expect[j][i]) << i << "," << j;
}

TEST_F(ImageGL, DuringASceneTheImageGoesStraightToGL) {
    const unsigned char px[12] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    OrvImage* im = make("straight", OrvImageRGB, 2, 2, px);
    glXMakeCurrent(dpy, (GLXDrawable)v->window(), (GLXContext)v->glContext);
    glTexImage2D(GL_TEXTURE_2D, 0, 3, 8, 8, 0, GL_RGB, GL_UNSIGNED_BYTE, nullptr);
    ASSERT_EQ(levelWidth(0), 8);
    // Only whether a scene renders matters here, not which.
    d->currentScene = reinterpret_cast<OrvScene*>(d);
    EXPECT_EQ(im->internal(nullptr), 0u);
    d->currentScene = nullptr;
    EXPECT_EQ(levelWidth(0), 2) << "sent at once, without a list";
    EXPECT_EQ(im->internals.first, nullptr);
    EXPECT_EQ(glXGetCurrentContext(), (GLXContext)v->glContext) << "the scene's context stays";
}

}  // namespace
