// What a scene draws with during a frame, read back from GL and from the back buffer before
// any swap: make-up state and materials, the hand-made cull test, the process-wide stacks, the
// level of detail, shadows, markers, series and face sets.
#include "theater_support.h"

#include "orv/vertex.h"

#include <cmath>

namespace {

// Vertex data on an owned copy of the points.
template <class T>
void setPoints(T& data, const std::vector<Orv3dPoint>& p) {
    Orv3dPoint* a = new Orv3dPoint[p.size()];
    std::copy(p.begin(), p.end(), a);
    data.setNonIndexed(new OrvShare((unsigned)p.size(), a, 0, 1), nullptr, nullptr, nullptr,
                       nullptr);
}

// Polygon modes, line stipple and pattern, line width, shade model, culling and its face,
// polygon stipple.
std::vector<int> glState() {
    GLint v[9];
    float width;
    glGetIntegerv(GL_POLYGON_MODE, v);
    glGetIntegerv(GL_LINE_STIPPLE_PATTERN, v + 3);
    glGetFloatv(GL_LINE_WIDTH, &width);
    glGetIntegerv(GL_SHADE_MODEL, v + 5);
    glGetIntegerv(GL_CULL_FACE_MODE, v + 7);
    v[2] = glIsEnabled(GL_LINE_STIPPLE), v[4] = (int)width, v[6] = glIsEnabled(GL_CULL_FACE);
    v[8] = glIsEnabled(GL_POLYGON_STIPPLE);
    return std::vector<int>(v, v + 9);
}

// Draws straight into the back buffer of the fixture's scene, white, unlit and without depth.
class RenderTest : public TheaterTest {
protected:
    int W = 0, H = 0;
    void SetUp() override {
        TheaterTest::SetUp();
        if (!director) return;
        W = (int)scene->interior->width, H = (int)scene->interior->height;
        scene->beginRendering(nullptr);
        scene->renderProjectionMatrix(nullptr);
        glDisable(GL_DEPTH_TEST);
        glDisable(GL_LIGHTING);
        clear();
    }
    void TearDown() override {
        if (scene) scene->endRendering();
        TheaterTest::TearDown();
    }
    void clear() {
        glClearColor(1, 1, 1, 0);
        glClear(GL_COLOR_BUFFER_BIT);
    }
    // Lighting without ambient light, with a white light from the viewer when asked.
    void light(bool front) {
        const float dark[4] = {0, 0, 0, 1}, toward[4] = {0, 0, 1, 0};
        glEnable(GL_LIGHTING);
        glLightModelfv(GL_LIGHT_MODEL_AMBIENT, dark);
        for (int i = 0; i < 8; i++) glDisable(GL_LIGHT0 + i);
        glPushMatrix();
        glLoadIdentity();
        glLightfv(GL_LIGHT0, GL_POSITION, toward);
        glPopMatrix();
        if (front) glEnable(GL_LIGHT0);
    }
    // A window pixel (y downward) of the back buffer against 0xRRGGBB, within 1.
    void expectPixel(const Orv2dPoint& at, unsigned long want) {
        unsigned char p[3];
        glReadPixels(at.x, H - 1 - at.y, 1, 1, GL_RGB, GL_UNSIGNED_BYTE, p);
        unsigned long got = (unsigned long)p[0] << 16 | p[1] << 8 | p[2];
        for (int s = 0; s < 24; s += 8)
            EXPECT_LE(std::abs((int)((got >> s) & 255) - (int)((want >> s) & 255)), 1)
                << "pixel " << at.x << "," << at.y << " is " << std::hex << got << " not " << want;
    }
    Orv3dPoint world(int x, int y) {  // at the pixel's centre
        Orv3dPoint p(x + 0.5f, y + 0.5f, 0.5f);
        scene->sceneToWorld.apply(p);
        return p;
    }
};

TEST_F(RenderTest, MakeUpLeavesTheGLStateOfItsAttributesOnceForRepeats) {
    const int F = GL_FILL, L = GL_LINE, P = GL_POINT, S = GL_SMOOTH, B = GL_BACK,
              FB = GL_FRONT_AND_BACK;
    struct {
        const char *style, *pattern;
        std::vector<int> set;    // width, smooth, cull, front and back style, distinguish, mode
        std::vector<int> state;  // as glState reads it
    } rows[] = {
        {"dash", "3d_grey1", {3, 0, 2, 4, 4, 0, 3}, {F, F, 1, 0xCCCC, 3, GL_FLAT, 1, GL_FRONT, 1}},
        {"solid", "solid", {1, 1, 1, 4, 4, 0, 3}, {F, F, 0, 0xCCCC, 1, S, 1, B, 0}},
        {"solid", "solid", {0, 1, 3, 4, 4, 0, 3}, {F, F, 0, 0xCCCC, 1, S, 1, FB, 0}},
        {"solid", "solid", {1, 1, 0, 4, 4, 0, 3}, {F, F, 0, 0xCCCC, 1, S, 0, FB, 0}},
        {"solid", "solid", {1, 1, 1, 2, 1, 0, 3}, {L, L, 0, 0xCCCC, 1, S, 1, B, 0}},
        {"solid", "solid", {1, 1, 1, 2, 1, 1, 3}, {L, P, 0, 0xCCCC, 1, S, 1, B, 0}},
        {"solid", "solid", {1, 1, 1, 4, 1, 1, 7}, {L, L, 0, 0xCCCC, 1, S, 1, B, 0}},  // wire frame
    };
    OrvDirector* d = director;
    OrvMakeUp* m = nullptr;
    for (const auto& r : rows) {
        const std::vector<int>& v = r.set;
        m = d->makeUpLineWidth(d->makeUpLineStyle(d->defaultMakeUp, d->lineStyle(r.style)), v[0]);
        m = d->makeUpCull(d->makeUpSmooth(d->makeUpPattern(m, d->pattern(r.pattern)), v[1]), v[2]);
        m = d->makeUpDistinguish(d->makeUpBackStyle(d->makeUpFrontStyle(m, v[3]), v[4]), v[5]);
        scene->setInteractiveMode(v[6]);
        m->render(scene, 0);
        EXPECT_EQ(r.state, glState()) << "row " << &r - rows;
        GLubyte stipple[128];
        glGetPolygonStipple(stipple);
        EXPECT_TRUE(!r.state[8] || !memcmp(stipple, d->pattern(r.pattern)->data, 128));
    }
    // The same make-up again sets only the wire frame; another flag sets all again.
    const int again[][4] = {{7, 0, L, 5}, {3, 0, P, 5}, {3, 1, F, 1}};  // mode, flag, results
    for (const auto& a : again) {
        scene->setInteractiveMode(a[0]);
        glLineWidth(5);
        glPolygonMode(GL_FRONT_AND_BACK, GL_POINT);
        m->render(scene, a[1]);
        EXPECT_EQ(std::make_tuple(a[2], a[3]), std::make_tuple(glState()[0], glState()[4])) << a[0];
    }
    float color[4];
    glColor3f(0, 0, 1);
    m->render(scene, 1);
    glGetFloatv(GL_CURRENT_COLOR, color);
    EXPECT_EQ(m->foreground()->blue, color[2]);
}

TEST_F(RenderTest, PlainColoursShineFaceColoursDoNotAndOpenFacesAreLineStrips) {
    OrvMakeUp* red = paint("red");
    OrvMakeUp* two = director->makeUpBackground(red, director->color("blue"));
    two = director->makeUpDistinguish(two, 1);
    light(false);
    struct {
        OrvMakeUp* m;
        GLenum face, name;
        float v[4];
    } rows[] = {
        {red, GL_FRONT, GL_DIFFUSE, {1, 0, 0, 1}},      {red, GL_BACK, GL_EMISSION, {1, 0, 0, 1}},
        {red, GL_BACK, GL_AMBIENT, {.2f, .2f, .2f, 1}}, {red, GL_FRONT, GL_SPECULAR, {0, 0, 0, 1}},
        {red, GL_FRONT, GL_SHININESS, {25.6f}},         {two, GL_FRONT, GL_EMISSION, {1, 0, 0, 1}},
        {two, GL_BACK, GL_EMISSION, {0, 0, 1, 1}},      {two, GL_BACK, GL_DIFFUSE, {0, 0, 1, 1}}};
    for (const auto& r : rows) {
        r.m->render(scene, 0);
        float v[4] = {0, 0, 0, 0};
        glGetMaterialfv(r.face, r.name, v);
        for (int k = 0; k < (r.name == GL_SHININESS ? 1 : 4); k++)
            EXPECT_NEAR(r.v[k], v[k], 1e-5) << "row " << &r - rows;
    }
    // Squares of 40 pixels at x 70, 120 and 170: turning left, left with a colour, right.
    std::vector<Orv3dPoint> square[3];
    OrvFace* faces[3];
    const OrvRGB green(0, 1, 0), blue(0, 0, 1);
    for (int i = 0, x = 70; i < 3; i++, x += 50) {
        square[i] = {world(x, 60), world(x + 40, 60), world(x + 40, 20), world(x, 20)};
        if (i == 2) std::reverse(square[i].begin() + 1, square[i].end());
        setPoints(*(faces[i] = new OrvFace), square[i]);
    }
    faces[1]->color(&green);
    faces[2]->color(&blue);
    OrvFaceSet set(3, faces[0], faces[1], faces[2]);
    scene->polygon(red, &set, 1);
    expectPixel({90, 40}, 0xff0000);
    expectPixel({140, 40}, 0x000000);  // no light: the default emission alone
    expectPixel({190, 40}, 0xffffff);
    float v[4];
    glGetMaterialfv(GL_FRONT, GL_EMISSION, v);
    EXPECT_EQ(1, v[0]) << "the make-up's material is put back";
    glDisable(GL_LIGHTING);
    clear();
    scene->polygon(red, &set, 0);
    const int open[][3] = {{90, 60, 0xff0000},
                           {90, 40, 0xffffff},
                           {70, 40, 0xffffff},
                           {140, 60, 0x00ff00},
                           {170, 40, 0x0000ff}};
    for (const auto& p : open) expectPixel({p[0], p[1]}, (unsigned long)p[2]);
    const unsigned loop[5] = {0, 1, 2, 3, 0};
    scene->polyLine(paint("black"), 4, square[0].data(), 5, loop);
    expectPixel({70, 40}, 0x000000);  // the index closes it
}

TEST_F(RenderTest, RenderFaceCullsByTheTurnOfTheProjectedFace) {
    const Orv3dPoint ccw[3] = {{0, 0, 0}, {.5f, 0, 0}, {0, .5f, 0}},
                     cw[3] = {ccw[0], ccw[2], ccw[1]};
    const Orv4dPoint ccw4[3] = {{0, 0, 0, 2}, {1, 0, 0, 2}, {0, 1, 0, 2}};
    const unsigned back[3] = {0, 2, 1};
    Orv3dMatrix turn;
    turn.rotateY(180);
    // flag, invariant, turned, mode, then the answers for the ccw and the cw face
    const int rows[][6] = {{1, 0, 0, 0, 1, 1}, {1, 0, 0, 1, 1, 0}, {1, 0, 0, 2, 0, 1},
                           {1, 0, 0, 3, 0, 0}, {1, 0, 1, 1, 0, 1}, {1, 1, 0, 1, 0, 1},
                           {0, 0, 0, 1, 1, 1}, {0, 0, 0, 3, 1, 1}};
    for (const auto& r : rows) {
        scene->renderFaceFlag = r[0];
        scene->renderInvariant = r[1];
        scene->renderMatrix = r[2] ? &turn : nullptr;
        // Faces given by 4D points or turned by an index answer as the ccw one.
        EXPECT_EQ(r[4], (int)scene->renderFace(r[3], ccw, nullptr, nullptr, 3)) << &r - rows;
        EXPECT_EQ(r[5], (int)scene->renderFace(r[3], cw, nullptr, nullptr, 3)) << &r - rows;
        EXPECT_EQ(r[4], (int)scene->renderFace(r[3], nullptr, ccw4, nullptr, 3)) << &r - rows;
        EXPECT_EQ(r[4], (int)scene->renderFace(r[3], cw, nullptr, back, 3)) << &r - rows;
    }
}

TEST_F(RenderTest, StacksDropThe33rdMatrixAndThe501stRenderFace) {
    struct {
        GLenum mode, query;
        unsigned long (*push)();
        unsigned long (*pop)();
        std::string name;
    } rows[] = {
        {GL_MODELVIEW, GL_MODELVIEW_MATRIX, OrvPushModelView, OrvPopModelView, "ModelView"},
        {GL_PROJECTION, GL_PROJECTION_MATRIX, OrvPushProjection, OrvPopProjection, "Projection"}};
    for (const auto& r : rows) {
        std::string says = "## " + r.name + " stack : internal error (stack ";
        for (int i = 1; i <= 33; i++) {
            glMatrixMode(r.mode);
            glLoadIdentity();
            glTranslatef((float)i, 0, 0);
            glMatrixMode(GL_MODELVIEW);
            EXPECT_EQ(i < 33 ? "" : says + "overflow).",
                      OrvTestOutput([&] { EXPECT_EQ(i < 33, r.push()); }));
        }
        for (int i = 32; i >= 0; i--) {
            EXPECT_EQ(i ? "" : says + "underflow).",
                      OrvTestOutput([&] { EXPECT_EQ(i > 0, r.pop()); }));
            float m[16];
            glGetFloatv(r.query, m);
            EXPECT_EQ((float)std::max(i, 1), m[12]) << r.name;
        }
    }
    Orv3dMatrix m;
    std::string said = OrvTestOutput([&] {
        for (unsigned long i = 0; i <= 500; i++) {
            scene->renderFaceFlag = i, scene->renderInvariant = i & 1;
            scene->renderMatrix = (i & 2) ? &m : nullptr;
            EXPECT_EQ(i < 500, OrvPushRenderFace(scene));
        }
        for (unsigned long i = 501; i-- > 0;) {
            EXPECT_EQ(i > 0, OrvPopRenderFace(scene));
            unsigned long k = i ? i - 1 : 0;
            ASSERT_EQ(std::make_tuple(k, k & 1, (k & 2) ? &m : nullptr),
                      std::make_tuple(scene->renderFaceFlag, scene->renderInvariant,
                                      scene->renderMatrix));
        }
    });
    EXPECT_EQ("## Render face stack : internal error (stack overflow).## Render face stack : "
              "internal error (stack underflow).",
              said);
}

TEST_F(RenderTest, LevelOfDetailSharesTheActorsWindowBoxWithTheWindow) {
    BoxActor actor(director, Orv3dVolume(-.25f, -.25f, .5f, .5f, .5f, 0), paint("red"));
    struct {
        Orv2dRect rect;
        unsigned long invariant;
        float onScreen, visible;
    } rows[] = {{Orv2dRect(0, 0, W / 2, H / 2), 0, .25f, 1},
                {Orv2dRect(W / 2, 0, W, H), 1, .5f, .5f},
                {Orv2dRect(W + 5, 0, 10, 10), 0, 0, 0}};
    for (const auto& r : rows) {
        actor.rect = r.rect;
        r.invariant ? actor.setProperty(OrvInvariantBit) : actor.removeProperty(OrvInvariantBit);
        float onScreen = -1, visible = -1;
        scene->levelOfDetail(&actor, onScreen, visible);
        EXPECT_NEAR(r.onScreen, onScreen, 1e-6);
        EXPECT_NEAR(r.visible, visible, 1e-6);
        EXPECT_EQ(
            std::make_tuple(r.invariant ? &scene->invariantToScene : &scene->worldToScene, 0ul),
            std::make_tuple(actor.asked, actor.grow));
    }
}

TEST_F(RenderTest, ShadowFlattensTheActorAlongTheLightOntoThePlane) {
    BoxActor actor(director, Orv3dVolume(-.25f, -.25f, .5f, .5f, .5f, 0), paint("red"));
    OrvMakeUp* blue = director->makeUpCull(paint("blue"), OrvCullNone);
    float before[16], after[16];
    glGetFloatv(GL_MODELVIEW_MATRIX, before);
    scene->shadow(blue, &actor, Orv3dPlane(0, 0, 1, 0), Orv3dVector(1, 0, -1));
    glGetFloatv(GL_MODELVIEW_MATRIX, after);
    EXPECT_EQ(0, memcmp(before, after, sizeof before));
    actor.draw3d(scene);
    // The square at z 0.5 falls half a unit to the right on z = 0.
    const float x[4] = {0, .5f, -.4f, .85f};
    const unsigned long want[4] = {0xff0000, 0x0000ff, 0xffffff, 0xffffff};
    for (int i = 0; i < 4; i++) expectPixel(pixelOf({x[i], .1f, 0}), want[i]);
    clear();
    EXPECT_EQ("", OrvTestOutput([&] {
                  scene->shadow(blue, &actor, Orv3dPlane(0, 0, 1, 0), Orv3dVector(1, 0, 0));
              }));
    expectPixel(pixelOf({0, 0, 0}), 0xffffff);
}

TEST_F(RenderTest, MarkersOfEachTypeAndScaleAreTheFortyListsCentredOnTheirPoints) {
    unsigned base = director->markerLists;
    ASSERT_NE(0u, base);
    EXPECT_EQ(base + 2 * 8 + 5, director->marker(3, 5));
    EXPECT_EQ(0u, director->marker(6, 2) + director->marker(1, 8));
    Orv2dPoint corner = pixelOf({-1, 1, 0});  // cells of 20 pixels from the viewport's corner
    ASSERT_GE(std::min(W, H), 170);
    for (OrvMarkerType t = 1; t <= 5; t++)
        for (unsigned short s = 0; s < 8; s++) {
            OrvMakeUp* m = director->makeUpMarkerType(paint("black"), t);
            Orv3dPoint p = world(corner.x + 10 + 20 * s, corner.y + 10 + 20 * (t - 1));
            scene->markers(director->makeUpMarkerScale(m, s), 1, &p, nullptr);
        }
    std::vector<unsigned char> rgb(3 * W * H);
    glReadPixels(0, 0, W, H, GL_RGB, GL_UNSIGNED_BYTE, rgb.data());
    for (int t = 1; t <= 5; t++)
        for (int s = 0; s < 8; s++) {
            // The pixels set in the cell and their box, against the shape's count and box.
            int side = 2 + 2 * (s ? s : 1), c = side / 2, in = t == 4 ? 1 : 0;
            int cx = corner.x + 10 + 20 * s, cy = corner.y + 10 + 20 * (t - 1);
            std::vector<int> got = {0, W, -1, H, -1};
            for (int y = cy - 10; y < cy + 10; y++)
                for (int x = cx - 10; x < cx + 10; x++)
                    if (rgb[3 * ((H - 1 - y) * W + x)] < 128)
                        got = {got[0] + 1, std::min(got[1], x), std::max(got[2], x),
                               std::min(got[3], y), std::max(got[4], y)};
            const int counts[5] = {2 * side - 1, 2 * side - 2, 4 * side - 4, 4 * c - 4,
                                   side * side};
            std::vector<int> want = {counts[t - 1], cx - c + in, cx + c - 1, cy - c + 1,
                                     cy + c - in};
            EXPECT_EQ(want, got) << "type " << t << " scale " << s;
        }
    director->closeContext();
    glXMakeCurrent(dpy, scene->drawingCanvas(), (GLXContext)scene->context());
    EXPECT_FALSE(glIsList(base + 39)) << "the director's lists go with its context";
    EXPECT_EQ(0u, director->markerLists);
}

TEST_F(RenderTest, SeriesLitFromTheFrontShowEachFrontFaceInItsColour) {
    struct {
        OrvSeriesType kind;
        unsigned data1, data2;
        const char *points, *faces;  // x y pairs; faces in the numbering of the series
    } rows[] = {
        {OrvTriStrip, 0, 0, "-.9 .5 -.9 -.5 -.3 .5 -.3 -.5 .3 .5", "012 213 234"},
        {OrvRowsTriStrip, 0, 2, "-.9 -.3 -.9 -.9 -.3 -.3 -.3 -.9 .1 .7 .1 .1 .7 .7 .7 .1",
         "012 213 456 657"},
        {OrvTriFan, 0, 0, "0 0 .8 0 0 .8 -.8 0 0 -.8", "012 023 034"},
        {OrvFaces, 4, 0, "-.9 -.4 -.1 -.4 -.1 .4 -.9 .4 .1 -.4 .9 -.4 .9 .4 .1 .4", "0123 4567"},
        {OrvFaces, 5, 0, "0 .8 -.76 .25 -.47 -.65 .47 -.65 .76 .25", "01234"},
        {OrvQuadMesh, 2, 2, "-.6 -.6 0 -.6 .6 -.6 -.6 0 0 0 .6 0 -.6 .6 0 .6 .6 .6",
         "0143 1254 3476 4587"},
    };
    const OrvRGB palette[4] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}};
    const unsigned long rgb[4] = {0xff0000, 0x00ff00, 0x0000ff, 0xff00ff};
    OrvMakeUp* flat = director->makeUpSmooth(paint("black"), 0);  // back faces culled
    light(true);
    for (const auto& r : rows) {
        SCOPED_TRACE(r.faces);
        std::vector<Orv3dPoint> points;
        std::istringstream in(r.points), faces(r.faces);
        for (float x, y; in >> x >> y;) points.push_back(Orv3dPoint(x, y, 0));
        clear();
        OrvSeries series(r.kind, r.data1, r.data2);
        setPoints(series, points);
        ASSERT_EQ(1u, series.computeFacesNormals());
        scene->startPerformanceMeter();
        scene->series(flat, &series, palette, nullptr);
        unsigned f = 0, triangles = 0;
        for (std::string face; faces >> face; f++) {
            float x = 0, y = 0;
            for (char v : face)
                x += points[v - '0'].x / face.size(), y += points[v - '0'].y / face.size();
            expectPixel(pixelOf({x, y, 0}), rgb[f]);
            triangles += (unsigned)face.size() - 2;
        }
        EXPECT_EQ("--->>>>> Triangles : " + std::to_string(triangles) + " \n",
                  OrvTestOutput([&] { scene->stopPerformanceMeter(); }));
    }
}

}  // namespace
