// The line actors: paths through their points, the dashed polyline, the walls' grids by pixels;
// their picking; their saved forms whole, cut anywhere and spoilt.
#include "../theater/theater_support.h"

#include <cmath>

#include "orv/lines3d.h"

#if __has_include("orv/pick.h")
#include "orv/pick.h"
#define ORV_PICK_MERGED 1
#endif

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
    // Orthographic, 100 pixels a unit, the origin in the middle of the window.
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
    if (!director) return;
    Orv3dSplinePath* spline = new Orv3dSplinePath(director, 7, controls, 6, green);
    Orv3dCurvePath* curve = new Orv3dCurvePath(director, 7, controls, 6, green);
    const struct {
        Orv3dSplinePath* path;
        std::vector<unsigned> through;
        Orv3dPoint half;  // the path at t = 1/2 of the span from the second point
    } rows[] = {
        {spline, {0, 1, 2, 3, 4, 5, 6}, mix({-1 / 16.f, 9 / 16.f, 9 / 16.f, -1 / 16.f}, controls)},
        {curve, {0, 3, 6}, mix({1 / 8.f, 3 / 8.f, 3 / 8.f, 1 / 8.f}, controls)}};
    for (const auto& row : rows) {
        show(row.path);
        const Orv3dPoint* p = row.path->points();
        ASSERT_EQ((row.through.size() - 1) * 6 + 1, row.path->count());
        for (size_t i = 0; i < row.through.size(); i++) {
            EXPECT_EQ(controls[row.through[i]], p[i * 6]) << i;
            EXPECT_TRUE(near(controls[row.through[i]], 0x00ff00)) << i;
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
    if (!director) return;
    const Orv3dPoint ends[2] = {{-1, 0.5f, 0}, {1, 0.5f, 0}};
    Orv3dPoint start = toWindow(scene, ends[0]);
    OrvMakeUp* solid = director->makeUpForeground(director->defaultMakeUp, director->color("red"));
    for (OrvMakeUp* given : {(OrvMakeUp*)nullptr, solid}) {
        Orv3dPolyline* line = show(new Orv3dPolyline(director, 2, ends, given));
        EXPECT_EQ(
            given ? given
                  : director->makeUpLineStyle(director->defaultMakeUp, director->lineStyle("dash")),
            line->getMakeUp());
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

// Each wall seen face on: every cell's edges are drawn and its middle is not, 40 pixels a cell
// (0.4 units). The three walls draw what the three single walls draw.
TEST_F(Lines3dTest, WallsAreGridsOfTheirCellSize) {
    if (!director) return;
    const Orv3dPoint eyes[3] = {{5, 0, 0}, {0, 5, 0}, {0, 0, 5}};
    const Orv3dVector ups[3] = {{0, 1, 0}, {0, 0, 1}, {0, 1, 0}};
    const Orv3dPoint corner(-0.8f, -0.8f, -0.8f);
    for (int axis = 0; axis < 3; axis++) {
        look(eyes[axis], ups[axis]);
        Orv3dWall* wall = show(new Orv3dWall(director, corner, 4, 0.4f, (OrvWallAxis)axis, green));
        for (int i = 0; i < 4; i++)
            for (int j = 0; j < 4; j++) {
                // The middle of cell i, j, and of its edges before it on either axis.
                Orv3dPoint at[3] = {corner, corner, corner};
                for (int k = 0; k < 3; k++) {
                    (axis == 0 ? at[k].y : at[k].x) += 0.4f * i + (k == 1 ? 0 : 0.2f);
                    (axis == 2 ? at[k].y : at[k].z) += 0.4f * j + (k == 2 ? 0 : 0.2f);
                    EXPECT_EQ(k > 0, near(at[k], 0x00ff00)) << axis << ": " << i << "," << j;
                }
            }
        delete wall;
    }
    look(Orv3dPoint(3, 2, 4), Orv3dVector(0, 1, 0));
    std::vector<unsigned long> single[2];
    Orv3dWalls* walls = new Orv3dWalls(director, corner, 4, 0.4f, green);
    for (int k = 0; k < 2; k++) {
        if (k) show(walls);
        for (int axis = 0; !k && axis < 3; axis++)
            show(new Orv3dWall(director, corner, 4, 0.4f, (OrvWallAxis)axis, green));
        single[k] = snapshot(scene->interior);
        if (!k) theater->empty(1);
    }
    EXPECT_TRUE(single[0] == single[1]);
    EXPECT_LT(1000, std::count(single[1].begin(), single[1].end(), 0x00ff00ul));
    EXPECT_EQ(Orv3dVolume(-0.8f, -0.8f, -0.8f, 1.6f, 1.6f, 1.6f), walls->bbox3d(0));
}

// Hits on the segments and grid lines, misses beside them, recorded as line hits of the actor.
TEST_F(Lines3dTest, PickedAlongTheirLines) {
    if (!director) return;
#ifndef ORV_PICK_MERGED
    GTEST_SKIP() << "needs OrvPick3dLine";
#else
    const Orv3dPoint zig[3] = {{-1, -0.5f, 0}, {0, 0.5f, 0}, {1, -0.5f, 0}};
    OrvActor* actors[] = {new Orv3dLine(director, zig[0], zig[1], green),
                          new Orv3dPolyline(director, 3, zig, green),
                          new Orv3dSplinePath(director, 3, zig, 4, green),
                          new Orv3dWall(director, Orv3dPoint(-1, -1, 0), 5, 0.4f, OrvWallZ, green),
                          new Orv3dWalls(director, Orv3dPoint(-1, -1, 0), 5, 0.4f, green)};
    const struct {
        Orv3dPoint hit, miss;
    } at[] = {{{-0.5f, 0, 0}, {-0.5f, 0.1f, 0}},
              {{0.5f, 0, 0}, {0.5f, 0.1f, 0}},
              {{0, 0.5f, 0}, {0, 0.6f, 0}},
              {{-0.2f, 0.1f, 0}, {-0.1f, 0.1f, 0}},
              {{0.2f, -0.3f, 0}, {-0.1f, -0.3f, 0}}};
    for (int i = 0; i < 5; i++) {
        owned.push_back(actors[i]);
        Orv3dPoint h = toWindow(scene, at[i].hit), m = toWindow(scene, at[i].miss);
        EXPECT_EQ(1u, actors[i]->contains3d(Orv2dPoint((long)h.x, (long)h.y), scene)) << i;
        EXPECT_EQ(OrvPickLine, director->pick3dRecord().type) << i;
        EXPECT_EQ(actors[i], director->pick3dRecord().actor) << i;
        EXPECT_EQ(0u, actors[i]->contains3d(Orv2dPoint((long)m.x, (long)m.y), scene)) << i;
    }
#endif
}
