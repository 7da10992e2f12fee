// Images on GL: the display list made at the first use on a GL view and shared, the picture it
// loads read back from the texture, the power-of-two sizes and the mip levels it sends.
#include "image_support.h"

#include "orv/image.h"

// GL after the library headers.
#include <GL/gl.h>
#include <GL/glx.h>

namespace {

class ImageGL : public OrvScreenTest {
protected:
    OrvView* v = nullptr;
    GLuint texture = 0;
    TempDir dir;

    void SetUp() override {
        OrvScreenTest::SetUp();
        if (d && d->rootContext) v = new OrvView(d, Orv2dRect(10, 10, 64, 64), "gl", OrvViewGL);
        if (!v || !v->glContext) GTEST_SKIP() << "no GL on this screen";
        ASSERT_TRUE(OrvTestWaitViewable(dpy, v->window()));
    }
    void TearDown() override {
        if (dpy) glXMakeCurrent(dpy, None, nullptr);
        delete v;
        OrvScreenTest::TearDown();
    }

    OrvImage* make(const char* name, OrvImageType type, unsigned w, unsigned h,
                   const unsigned char* bytes, unsigned long mipmap = 0) {
        unsigned char* px = (unsigned char*)malloc((size_t)w * h * type);
        memcpy(px, bytes, (size_t)w * h * type);
        return new OrvImage(d, name, type, w, h, px, mipmap);
    }

    // The texels of the texture that `list` loads, on the view, in that format.
    std::vector<int> texels(unsigned long list, GLenum format = GL_RGB) {
        glXMakeCurrent(dpy, (GLXDrawable)v->window(), (GLXContext)v->glContext);
        // A fresh texture object each time, so that no level of an earlier picture shows.
        if (texture) glDeleteTextures(1, &texture);
        glGenTextures(1, &texture);
        glBindTexture(GL_TEXTURE_2D, texture);
        glCallList((GLuint)list);
        GLint h = 0;
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_HEIGHT, &h);
        std::vector<unsigned char> bytes((size_t)levelWidth(0) * h * (format == GL_RGB ? 3 : 1));
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glGetTexImage(GL_TEXTURE_2D, 0, format, GL_UNSIGNED_BYTE, bytes.data());
        return std::vector<int>(bytes.begin(), bytes.end());
    }
    int levelWidth(int level) {
        GLint w = 0;
        glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_WIDTH, &w);
        return w;
    }
};
INSTANTIATE_TEST_SUITE_P(Screen, ImageGL, testing::Values("DISPLAY"));

TEST_P(ImageGL, OneListForEveryGLCanvasLoadingThePicture) {
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
    EXPECT_EQ(texels(list), std::vector<int>(px, px + 24));
    delete flat;
}

TEST_P(ImageGL, PowerOfTwoSizesMipLevelsBitsAndNoListDuringAScene) {
    // Sizes go to the nearest power of two, ties upward: 3 and 6 to 4 and 8, 5 to 4.
    struct Case {
        unsigned w, h;
        unsigned long mipmap;
        int widths[4];  // of levels 0 to 3, 0 where there is none
    } cases[] = {
        {3, 5, 0, {4, 0, 0, 0}}, {6, 1, 0, {8, 0, 0, 0}},   {4, 2, 1, {4, 2, 1, 0}},
        {1, 1, 1, {1, 0, 0, 0}}, {12, 3, 1, {16, 8, 4, 2}},
    };
    unsigned char grey[64 * 3];
    for (unsigned i = 0; i < sizeof grey; i++) grey[i] = (unsigned char)(i * 7);
    for (const Case& c : cases) {
        std::string name = "sized" + std::to_string(&c - cases);
        unsigned long list = make(name.c_str(), OrvImageRGB, c.w, c.h, grey, c.mipmap)->internal(v);
        ASSERT_NE(list, 0u);
        texels(list);
        for (int level = 0; level < 4; level++)
            EXPECT_EQ(levelWidth(level), c.widths[level]) << name << " level " << level;
    }
    // One column of odd rows (three bytes): each row arrives whole.
    const unsigned char column[6] = {255, 0, 0, 0, 0, 255};
    EXPECT_EQ(texels(make("column", OrvImageRGB, 1, 2, column)->internal(v)),
              std::vector<int>(column, column + 6));
    // Bits of a portable bitmap go to GL as luminance, white where clear; its rows are turned
    // bottom first.
    writeFile(dir / "bits.pbm", "P1\n4 2\n1 0 0 1\n0 0 1 1\n");
    OrvImage* bits = d->image((dir / "bits.pbm").c_str());
    ASSERT_EQ(bits->type, OrvImageLuminance);
    EXPECT_EQ(texels(bits->internal(v), GL_LUMINANCE),
              std::vector<int>({255, 255, 0, 0, 0, 255, 255, 0}));
    // During a scene the image goes straight to GL, in the current context.
    const unsigned char small[12] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    OrvImage* straight = make("straight", OrvImageRGB, 2, 2, small);
    glXMakeCurrent(dpy, (GLXDrawable)v->window(), (GLXContext)v->glContext);
    glTexImage2D(GL_TEXTURE_2D, 0, 3, 8, 8, 0, GL_RGB, GL_UNSIGNED_BYTE, nullptr);
    ASSERT_EQ(levelWidth(0), 8);
    // Only whether a scene renders matters here, not which.
    d->currentScene = reinterpret_cast<OrvScene*>(d);
    EXPECT_EQ(straight->internal(nullptr), 0u);
    d->currentScene = nullptr;
    EXPECT_EQ(levelWidth(0), 2) << "sent at once, without a list";
    EXPECT_EQ(straight->internals.first, nullptr);
    EXPECT_EQ(glXGetCurrentContext(), (GLXContext)v->glContext) << "the scene's context stays";
}

}  // namespace
