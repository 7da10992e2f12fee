// The line actors: paths through their points, the dashed polyline, the walls' grids by pixels;
// their picking; their saved forms whole, cut anywhere and spoilt.
#include "../theater/theater_support.h"

#include <cmath>

#include "orv/lines3d.h"

#include "orv/pick.h"

class Lines3dTest : public TheaterTest {
protected:
    std::vector<OrvActor*> owned;  // not in the theater
    OrvMakeUp* green = nullptr;
    void SetUp() override {
        TheaterTest::SetUp();
        if (!director) return;
        green = director->makeUpForeground(director->defaultMakeUp, director->color("green"));
        OrvCount(green);
        look(Orv3dPoint(0, 0, 5), Orv3dVector(0, 1, 0));
    }
    void TearDown() override {
        for (OrvActor* a : owned) delete a;
        if (director) OrvRelease(green);
        TheaterTest::TearDown();
    }
    // Orthographic, on the origin; toWindow tells where a point lands.
    void look(const Orv3dPoint& eye, const Orv3dVector& up) {
        scene->currentCamera()->lookAt(eye, Orv3dPoint(0, 0, 0), up);
        scene->currentCamera()->orthographic(Orv3dRect(-1.5f, -1, 3, 2), 1, 10);
    }
    template <class T>
    T* show(T* actor) {
        theater->append(actor, 0);
        theater->drawAll(scene, nullptr, 1);
        settle();
        return actor;
    }
    // Whether a pixel within one of the world point's pixel shows the colour.
    bool near(const Orv3dPoint& p, unsigned long color) {
        Orv3dPoint w = toWindow(scene, p);
        for (int dy = -1; dy <= 1; dy++)
            for (int dx = -1; dx <= 1; dx++)
                if (pixel(scene, (int)w.x + dx, (int)w.y + dy) == color) return true;
        return false;
    }
};

static const Orv3dPoint controls[7] = {{-1.2f, -0.6f, 0}, {-0.8f, 0.7f, 0}, {-0.2f, 0.8f, 0},
                                       {0, 0, 0},         {0.3f, -0.8f, 0}, {0.8f, -0.7f, 0},
                                       {1.2f, 0.5f, 0}};

static Orv3dPoint mix(std::initializer_list<float> w, const Orv3dPoint* p) {
    Orv3dPoint r(0, 0, 0);
    for (float f : w) r = Orv3dPoint(r.x + f * p->x, r.y + f * p->y, r.z + f * p->z), p++;
    return r;
}

// Both paths pass through their own points (all the spline's, the Bézier path's segment ends)
// exactly and on screen; between, the middle of each piece is where the curve's formula says;
// a Bézier handle is off the curve. Moving the points moves the pixels.
TEST_F(Lines3dTest, PathsPassThroughTheirPoints) {
    Orv3dSplinePath* spline = new Orv3dSplinePath(director, 7, controls, 6, green);
    Orv3dCurvePath* curve = new Orv3dCurvePath(director, 7, controls, 6, green);
    const struct {
        Orv3dSplinePath* path;
        unsigned stride;  // between the controls it passes through
        Orv3dPoint half;  // the path at t = 1/2 of the span from the second point
    } rows[] = {{spline, 1, mix({-1 / 16.f, 9 / 16.f, 9 / 16.f, -1 / 16.f}, controls)},
                {curve, 3, mix({1 / 8.f, 3 / 8.f, 3 / 8.f, 1 / 8.f}, controls)}};
    for (const auto& row : rows) {
        show(row.path);
        const Orv3dPoint* p = row.path->points();
        ASSERT_EQ(6 / row.stride * 6 + 1, row.path->count());
        for (unsigned c = 0; c < 7; c += row.stride) {
            EXPECT_EQ(controls[c], p[c / row.stride * 6]) << c;
            EXPECT_TRUE(near(controls[c], 0x00ff00)) << c;
        }
        Orv3dPoint h = p[row.path == spline ? 9 : 3];
        EXPECT_LT(std::fabs(h.x - row.half.x) + std::fabs(h.y - row.half.y), 1e-5);
        EXPECT_TRUE(near(h, 0x00ff00));
        EXPECT_EQ(row.path == spline, near(controls[1], 0x00ff00));  // a handle is off the curve
        theater->remove(row.path, 0);
        owned.push_back(row.path);
    }
    std::string said = OrvTestOutput([&] { curve->setControlPoints(6, controls + 1); });
    EXPECT_EQ("Orv3dCurvePath : 2 control points ignored.\n", said);
    EXPECT_EQ(4u, curve->controlCount());
    EXPECT_EQ(controls[4], curve->points()[6]);
    show(spline);
    spline->setControlPoints(2, controls + 3);
    settle();
    EXPECT_FALSE(near(controls[0], 0x00ff00));
    EXPECT_TRUE(near(mix({0.5f, 0.5f}, controls + 3), 0x00ff00));
    theater->remove(spline, 0);
}

// A polyline without a make-up of its own is dashed (two pixels on, two off); with a solid one
// it is whole. A line moved by setLine leaves its old pixels.
TEST_F(Lines3dTest, PolylineWithoutMakeUpIsDashed) {
    const Orv3dPoint ends[2] = {{-1, 0.5f, 0}, {1, 0.5f, 0}};
    Orv3dPoint start = toWindow(scene, ends[0]);
    OrvMakeUp* solid = director->makeUpForeground(director->defaultMakeUp, director->color("red"));
    for (OrvMakeUp* given : {(OrvMakeUp*)nullptr, solid}) {
        Orv3dPolyline* line = show(new Orv3dPolyline(director, 2, ends, given));
        OrvMakeUp* dashed =
            director->makeUpLineStyle(director->defaultMakeUp, director->lineStyle("dash"));
        EXPECT_EQ(given ? given : dashed, line->getMakeUp());
        line->setMakeUp(director->makeUpForeground(line->getMakeUp(), director->color("white")));
        settle();
        std::string row;  // 80 pixels inside the row that the line lit
        for (int y = (int)start.y - 1; y <= (int)start.y + 1 && row.find('#') == row.npos; y++) {
            row.clear();
            for (int x = (int)start.x + 8; x < (int)start.x + 88; x++)
                row += pixel(scene, x, y) == 0xffffff ? '#' : '.';
        }
        size_t on = std::count(row.begin(), row.end(), '#');
        EXPECT_EQ(given ? row.size() : row.size() / 2, on) << row;
        EXPECT_EQ(std::string::npos, row.find(given ? "." : "###")) << row;
        delete line;
    }
    Orv3dLine* line = show(new Orv3dLine(director, ends[0], ends[1], green));
    line->setLine(Orv3dPoint(-1, -0.5f, 0), Orv3dPoint(1, -0.5f, 0));
    settle();
    EXPECT_FALSE(near(Orv3dPoint(0, 0.5f, 0), 0x00ff00));
    EXPECT_TRUE(near(Orv3dPoint(0, -0.5f, 0), 0x00ff00));
}

// Each wall seen face on: the edges of every 0.4-unit cell are drawn and its middle is not. The
// three walls draw what the three single walls draw.
TEST_F(Lines3dTest, WallsAreGridsOfTheirCellSize) {
    const Orv3dPoint eyes[3] = {{5, 0, 0}, {0, 5, 0}, {0, 0, 5}};
    const Orv3dVector ups[3] = {{0, 1, 0}, {0, 0, 1}, {0, 1, 0}};
    const Orv3dPoint corner(-0.8f, -0.8f, -0.8f);
    for (int axis = 0; axis < 3; axis++) {
        look(eyes[axis], ups[axis]);
        Orv3dWall* wall = show(new Orv3dWall(director, corner, 4, 0.4f, (OrvWallAxis)axis, green));
        auto at = [&](float u, float v) {  // the wall's point u, v from the corner
            Orv3dPoint p = corner;
            (axis == 0 ? p.y : p.x) += u, (axis == 2 ? p.y : p.z) += v;
            return near(p, 0x00ff00);
        };
        for (int i = 0; i < 4; i++)
            for (int j = 0; j < 4; j++) {
                EXPECT_FALSE(at(0.4f * i + 0.2f, 0.4f * j + 0.2f)) << axis << ": " << i << "," << j;
                EXPECT_TRUE(at(0.4f * i, 0.4f * j + 0.2f)) << axis << ": " << i << "," << j;
                EXPECT_TRUE(at(0.4f * i + 0.2f, 0.4f * j)) << axis << ": " << i << "," << j;
            }
        EXPECT_TRUE(at(1.6f, 1.6f) && !at(1.7f, 1.7f)) << axis;
        delete wall;
    }
    look(Orv3dPoint(3, 2, 4), Orv3dVector(0, 1, 0));
    for (int axis = 0; axis < 3; axis++)
        show(new Orv3dWall(director, corner, 4, 0.4f, (OrvWallAxis)axis, green));
    std::vector<unsigned long> three = snapshot(scene->interior);
    theater->empty(1);
    Orv3dWalls* walls = show(new Orv3dWalls(director, corner, 4, 0.4f, green));
    EXPECT_TRUE(three == snapshot(scene->interior));
    EXPECT_LT(1000, std::count(three.begin(), three.end(), 0x00ff00ul));
    EXPECT_EQ(Orv3dVolume(-0.8f, -0.8f, -0.8f, 1.6f, 1.6f, 1.6f), walls->bbox3d(0));
}

// Hits on the segments and grid lines, misses beside them, recorded as line hits of the actor.
TEST_F(Lines3dTest, PickedAlongTheirLines) {
    const Orv3dPoint zig[3] = {{-1, -0.5f, 0}, {0, 0.5f, 0}, {1, -0.5f, 0}}, low(-1, -1, 0);
    const struct {
        OrvActor* actor;
        Orv3dPoint hit, miss;
    } rows[] = {
        {new Orv3dLine(director, zig[0], zig[1], green), {-0.5f, 0, 0}, {-0.5f, 0.25f, 0}},
        {new Orv3dPolyline(director, 3, zig, green), {0.5f, 0, 0}, {0.5f, 0.25f, 0}},
        {new Orv3dSplinePath(director, 3, zig, 4, green), {0, 0.5f, 0}, {0, 0.75f, 0}},
        {new Orv3dWall(director, low, 5, 0.4f, OrvWallZ, green), {-0.2f, 0, 0}, {-0.4f, 0, 0}},
        {new Orv3dWalls(director, low, 5, 0.4f, green), {0.2f, -0.3f, 0}, {0, -0.4f, 0}}};
    for (const auto& row : rows) {
        owned.push_back(row.actor);
        Orv3dPoint h = toWindow(scene, row.hit), m = toWindow(scene, row.miss);
        EXPECT_EQ(1u, row.actor->contains3d(Orv2dPoint((long)h.x, (long)h.y), scene));
        EXPECT_EQ(OrvPickLine, director->pick3dRecord().type);
        EXPECT_EQ(row.actor, director->pick3dRecord().actor) << row.actor->className();
        EXPECT_EQ(0u, row.actor->contains3d(Orv2dPoint((long)m.x, (long)m.y), scene));
    }
}

// ---------------------------------------------------------------------------
// Saved forms
// ---------------------------------------------------------------------------

typedef XTest Lines3dStreamTest;

// Every class (one turned, two sharing a make-up, an empty polyline, which is said on reading
// but kept), read back or copied: the same text again; cut anywhere, the objects before the cut
// and a message; spoilt items named.
TEST_F(Lines3dStreamTest, ReadBackWholeCutOrSpoilt) {
    OrvMakeUp* wide = director->makeUpLineWidth(director->defaultMakeUp, 3);
    const std::vector<OrvActor*> all = {new Orv3dLine(director, controls[0], controls[1], wide),
                                        new Orv3dPolyline(director, 3, controls, nullptr),
                                        new Orv3dSplinePath(director, 4, controls + 1, 5, wide),
                                        new Orv3dCurvePath(director, 7, controls, 3),
                                        new Orv3dWall(director, controls[2], 4, 0.25f, OrvWallY),
                                        new Orv3dWalls(director, controls[3], 2, 1.5f),
                                        new Orv3dPolyline(director, 0, nullptr, nullptr)};
    all[0]->rotateZ(30, 0);
    std::string text = saved3d(all);
    EXPECT_NE(std::string::npos, text.find("\t% Orv3dWall class\n\tpoint3d\t-0.2 0.8 0\n\tuiData\t4"
                                           "\n\tfData\t0.25\n\tulData\t1\n}\n"))
        << text;
    std::vector<OrvActor*> copies;
    for (OrvActor* a : all) copies.push_back(a->copy());
    EXPECT_EQ(text, saved3d(copies));
    for (OrvActor* a : copies) delete a;
    expectEveryCut(director, all, "Orv3dLine", "Orv3dPolyline : Polyline with 0 points\n");
    expectSpoilt(director, text,
                 {{"point3d", "point3x", "OrvIStream : Bad data.\n", 0},
                  {"uiData\t4", "uiDatum\t4", "OrvIStream : Bad data.\n", 2},
                  {"ulData\t1", "ulData\t7", "Orv3dWall::Orv3dWall : Bad axis (7).\n", 4},
                  {"fData\t1.5", "fData\tx", "OrvIStream : bad separator.\n", 5}});
    for (OrvActor* a : all) delete a;
}
