// The fixture of the 3D tests: a private X server with a director (XTest), a
// 500x260 stage holding a 300x200 scene at (20, 30) on a black background,
// connected to a theater (room at the right for a second); GLBox, an actor that draws itself with
// raw GL and logs its draws; and reads of a scene's pixels from the window.
#ifndef ORV_THEATER_SUPPORT_H
#define ORV_THEATER_SUPPORT_H

#include "orv_fixtures.h"

#include "orv/actor3d.h"
#include "orv/camera.h"
#include "orv/scene.h"
#include "orv/theater.h"

#include <GL/gl.h>
#include <GL/glx.h>

#include <cmath>

// The front face (the volume's top z) of an axis box, in flat colour unlit, or in a white lit
// material when `lit` (light shows where it falls, unwashed by emission), in cells by cells
// quads. Moves through the theater's change protocol.
class GLBox : public OrvActor {
public:
    Orv3dVolume volume;
    float rgb[3];
    std::string name;
    mutable int draws = 0;
    Log* log = nullptr;  // the names of the boxes drawn, in order, when set
    bool lit = false;
    int cells = 1;

    GLBox(OrvDirector* d, const Orv3dVolume& v, unsigned long color, const char* n = "",
          OrvMakeUp* m = nullptr)
        : OrvActor(d, m), volume(v), name(n) {
        for (int i = 0; i < 3; i++) rgb[i] = ((color >> (16 - 8 * i)) & 0xff) / 255.0f;
    }
    void draw3d(const OrvScene*) const override {
        draws++;
        if (log) log->push_back(name);
        const float white[4] = {1, 1, 1, 1}, black[4] = {0, 0, 0, 1};
        if (lit) {
            glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE, white);
            glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, black);
            glMaterialfv(GL_FRONT_AND_BACK, GL_EMISSION, black);
            glNormal3f(0, 0, 1);
        } else {
            glDisable(GL_LIGHTING);
            glColor3fv(rgb);
        }
        const Orv3dVolume& v = volume;
        float z = v.z + v.d, w = v.w / cells, h = v.h / cells;
        glBegin(GL_QUADS);
        for (int i = 0; i < cells * cells; i++) {
            float x = v.x + w * (i % cells), y = v.y + h * (i / cells);
            glVertex3f(x, y, z);
            glVertex3f(x + w, y, z);
            glVertex3f(x + w, y + h, z);
            glVertex3f(x, y + h, z);
        }
        glEnd();
    }
    Orv3dVolume bbox3d(unsigned long world) const override {
        Orv3dVolume v = volume;
        if (world && to3dWorld()) to3dWorld()->apply(v);
        return v;
    }
    void moveTo(float x, float y) {
        OrvTheater* t = getTheater();
        t->beginDrawing();
        t->invalidate(this, 0);
        volume.x = x;
        volume.y = y;
        t->invalidate(this, 0);
        t->flushDrawing(1);
    }
};

// The square (-1, -1) to (1, 1) at z 0 in 80 by 80 lit quads.
inline GLBox* litSheet(OrvDirector* d) {
    GLBox* sheet = new GLBox(d, Orv3dVolume(-1, -1, 0, 2, 2, 0), 0);
    sheet->lit = true, sheet->cells = 80;
    return sheet;
}

// A 3D actor showing its volume's face at the volume's z in its make-up, unlit, that counts how
// often its shape is drawn. With `rect` set, that is its box in any window, and it keeps the
// matrix and the grow flag it was asked with.
class BoxActor : public Orv3dActor {
public:
    Orv3dVolume volume;
    mutable int draws = 0;
    Orv2dRect rect;
    mutable const Orv3dMatrix* asked = nullptr;
    mutable unsigned long grow = 9;
    BoxActor(OrvDirector* d, const Orv3dVolume& v, OrvMakeUp* m = nullptr)
        : Orv3dActor(d, m), volume(v) {
        removeProperty(OrvLightBit);
    }
    void draw3d(const OrvScene* s) const override {
        draws++;
        const Orv3dVolume& v = volume;
        s->rectangle(makeUp, Orv3dPoint(v.x, v.y, v.z), Orv3dPoint(v.x + v.w, v.y, v.z),
                     Orv3dPoint(v.x + v.w, v.y + v.h, v.z), Orv3dPoint(v.x, v.y + v.h, v.z), 1);
    }
    Orv3dVolume bbox3d(unsigned long world) const override {
        Orv3dVolume v = volume;
        if (world && matrix) matrix->apply(v);
        return v;
    }
    void bboxToScene(Orv2dRegion& r, const Orv3dMatrix* m, unsigned long g) const override {
        if (!rect.w) return Orv3dActor::bboxToScene(r, m, g);
        asked = m, grow = g;
        r.extendBy(rect);
    }
};

// Counts the frames and keeps the region of the last one; forces whole frames when asked.
class CountingHook : public OrvTheaterHook {
public:
    int before = 0, copies = 0, contentsCalls = 0;
    unsigned long whole = 0;
    Orv2dRegion last;
    void beforeDraw(const OrvScene*, const Orv2dRegion* r) override {
        before++;
        if (r) last = *r;
    }
    void afterCopy(const OrvScene*, const Orv2dRegion*) override { copies++; }
    void contents() override { contentsCalls++; }
    unsigned long doNotOptimizeSceneReDraws(const OrvScene*) override { return whole; }
};

class TheaterTest : public XTest {
protected:
    OrvStage* stage = nullptr;
    OrvTheater* theater = nullptr;
    OrvScene* scene = nullptr;
    OrvMakeUp* black = nullptr;
    void SetUp() override {
        XTest::SetUp();
        if (!director) return;
        black = director->makeUpBackground(director->defaultMakeUp, director->color("black"));
        OrvCount(black);
        stage = new OrvStage(director, Orv2dRect(0, 0, 500, 260), "theater", 0, 1);
        EXPECT_TRUE(OrvTestWaitViewable(dpy, stage->window()));
        theater = new OrvTheater(director);
        scene = newScene(Orv2dRect(20, 30, 300, 200));
    }
    void TearDown() override {
        delete theater;
        delete stage;
        if (director) OrvRelease(black);
        XTest::TearDown();
    }
    // A double-buffered scene on the stage, connected to the theater and shown.
    OrvScene* newScene(const Orv2dRect& r, unsigned long doubleBuffer = 1) {
        OrvScene* s = new OrvScene(director, r, 1, black);
        s->useDoubleBuffer(doubleBuffer);
        theater->connect(s, stage, 0);
        EXPECT_TRUE(OrvTestWaitViewable(dpy, s->drawingCanvas()));
        settle();
        return s;
    }
    GLBox* box(const Orv3dVolume& v, unsigned long color = 0xff0000, const char* name = "",
               unsigned layer = 0) {
        GLBox* b = new GLBox(director, v, color, name);
        theater->append(b, layer);
        return b;
    }
    void settle(int ms = 60) {
        XSync(dpy, False);
        OrvTestRunFor(ms);
    }
    void frame() { theater->drawAll(scene, nullptr, 1); }
    OrvMakeUp* paint(const char* foreground) {
        return director->makeUpForeground(director->defaultMakeUp, director->color(foreground));
    }
    // Button 1 pressed at (x0, y0) of the stage, moved there in four steps to (x1, y1), released.
    void drag(int x0, int y0, int x1, int y1) {
        OrvTestMoveIn(dpy, stage->window(), x0, y0);
        settle(20);
        OrvTestButton(dpy, 1, true);
        for (int i = 1; i <= 4; i++) {
            settle(20);
            OrvTestMoveIn(dpy, stage->window(), x0 + (x1 - x0) * i / 4, y0 + (y1 - y0) * i / 4);
        }
        settle(20);
        OrvTestButton(dpy, 1, false);
        settle(100);
    }
    // The window's pixel as 0xRRGGBB.
    unsigned long pixel(OrvScene* s, int x, int y) {
        glFinish();
        return rgbOf(s->drawingCanvas(), x, y);
    }
    // Where the window is brightest: the middle of the pixels within 1 of its greatest green,
    // in window coordinates (a pixel's centre is at half units).
    Orv3dPoint brightest(OrvScene* s) {
        glFinish();
        std::vector<unsigned long> all = snapshot(s->interior);
        unsigned long top = 0, w = s->interior->width;
        for (unsigned long p : all) top = std::max(top, p >> 8 & 255);
        double x = 0, y = 0, n = 0;
        for (size_t i = 0; i < all.size(); i++)
            if ((all[i] >> 8 & 255) + 1 >= top) x += i % w + 0.5, y += i / w + 0.5, n++;
        return Orv3dPoint((float)(x / n), (float)(y / n), 0);
    }
    // A world point in window pixels, as the scene's matrix puts it.
    Orv3dPoint toWindow(OrvScene* s, Orv3dPoint p) {
        s->worldToScene.apply(p);
        return p;
    }
    // The pixel of the fixture's scene that holds a world point (or an invariant one).
    Orv2dPoint pixelOf(Orv3dPoint p, bool invariant = false) {
        (invariant ? scene->invariantToScene : scene->worldToScene).apply(p);
        return Orv2dPoint((int)std::floor(p.x), (int)std::floor(p.y));
    }
    // Whether the pixels of the window around a world point show the colour (inside) or
    // the background (outside, `m` pixels away from the square's projected box).
    void expectSquare(OrvScene* s, const Orv3dVolume& v, unsigned long color, int m = 3) {
        Orv3dPoint a = toWindow(s, Orv3dPoint(v.x, v.y, v.z + v.d));
        Orv3dPoint b = toWindow(s, Orv3dPoint(v.x + v.w, v.y + v.h, v.z + v.d));
        int x0 = (int)std::min(a.x, b.x), x1 = (int)std::max(a.x, b.x);
        int y0 = (int)std::min(a.y, b.y), y1 = (int)std::max(a.y, b.y);
        // The middle and two corners within, four points beside the edges without.
        const int x[] = {(x0 + x1) / 2, x0 + m, x1 - m, x0 - m, x1 + m, x0, x1},
                  y[] = {(y0 + y1) / 2, y0 + m, y1 - m, y0, y1, y0 - m, y1 + m};
        for (int i = 0; i < 7; i++)
            EXPECT_EQ(i < 3 ? color : 0u, pixel(s, x[i], y[i]))
                << "at " << x[i] << "," << y[i] << " of the square " << x0 << "," << y0 << " to "
                << x1 << "," << y1;
    }
};

// Faces of `corners` points each, indexed into one locked copy of the points.
inline OrvFaceSet* indexedFaces(const std::vector<Orv3dPoint>& p,
                                const std::vector<unsigned>& index, unsigned corners) {
    Orv3dPoint* copy = new Orv3dPoint[p.size()];
    std::copy(p.begin(), p.end(), copy);
    OrvShare* points = new OrvShare((unsigned)p.size(), copy, 0, 1);
    points->lock();
    OrvFaceSet* set = new OrvFaceSet(0);
    for (size_t i = 0; i + corners <= index.size(); i += corners) {
        OrvFace* f = new OrvFace;
        f->setIndexed(points, nullptr, nullptr, nullptr, nullptr);
        f->setIndex(0, corners, &index[i], nullptr, nullptr, nullptr, nullptr);
        set->add(f);
    }
    points->unLock();
    return set;
}

// The 3D text of these actors, without the date line.
inline std::string saved3d(const std::vector<OrvActor*>& list) {
    std::ostringstream out;
    OrvOStream writer(out);
    writer.write((unsigned)list.size(), list.data(), 0);
    writer.eof();
    return out.str().substr(out.str().find('\n'));
}

// What a text of saved3d gives back, up to the first object that could not be read, and what
// was said meanwhile; the caller deletes the objects.
inline std::vector<OrvActor*> read3d(OrvDirector* d, const std::string& text, std::string& said) {
    std::istringstream in("% Orvis 1 date" + text);
    OrvIStream reader(d, in);
    unsigned n = 0;
    OrvActor** read = nullptr;
    said = OrvTestOutput([&] { read = reader.read(n, 0); });
    std::vector<OrvActor*> result;
    for (unsigned i = 0; read && i < n && read[i]; i++) result.push_back(read[i]);
    delete[] read;
    return result;
}

// The text of `all` cut at every offset from `from` on: the objects whole before the cut read
// back to their own text, with a message unless all were whole (then `whole` is what is said).
inline void expectEveryCut(OrvDirector* d, const std::vector<OrvActor*>& all, const char* from,
                           const std::string& whole) {
    const std::string text = saved3d(all);
    std::vector<size_t> ends;  // just after each object's closing brace
    for (size_t at = text.find("\n}\n"); at != std::string::npos; at = text.find("\n}\n", at + 1))
        ends.push_back(at + 2);
    ASSERT_EQ(all.size(), ends.size());
    for (size_t cut = text.find(from); cut <= text.size(); cut++) {
        size_t n = std::count_if(ends.begin(), ends.end(), [&](size_t e) { return e <= cut; });
        std::string said;
        std::vector<OrvActor*> read = read3d(d, text.substr(0, cut), said);
        ASSERT_EQ(n, read.size()) << "cut at " << cut;
        if (n == all.size())
            EXPECT_EQ(whole, said);
        else
            EXPECT_NE("", said) << "cut at " << cut;
        EXPECT_EQ(saved3d(std::vector<OrvActor*>(all.begin(), all.begin() + n)), saved3d(read));
        for (OrvActor* a : read) delete a;
    }
}

// A saved text with `from` replaced by `to`: how many objects are read before the fault, and
// the message.
struct Spoilt3d {
    const char *from, *to, *message;
    size_t whole;
};
inline void expectSpoilt(OrvDirector* d, const std::string& text,
                         std::initializer_list<Spoilt3d> rows) {
    for (const Spoilt3d& s : rows) {
        std::string bad = text, said;
        bad.replace(bad.find(s.from), strlen(s.from), s.to);
        std::vector<OrvActor*> read = read3d(d, bad, said);
        EXPECT_EQ(s.whole, read.size()) << s.to;
        EXPECT_NE(std::string::npos, said.find(s.message)) << said;
        for (OrvActor* a : read) delete a;
    }
}

#endif
