// Points, rectangles, volumes and planes.
#include "orv/geometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace {

// Tests answer as a string of 1 and 0, one character per case.
template <class T, class Test>
std::string answers(std::initializer_list<T> cases, Test test) {
    std::string s;
    for (const T& c : cases) s += test(c) ? '1' : '0';
    return s;
}

}  // namespace

TEST(Geometry, RoundingIsHalfAwayFromZero) {
    EXPECT_EQ(
        std::vector<long>({1, -1, 2, -2, 0, 0, 0, -3}),
        std::vector<long>({OrvRound(0.5), OrvRound(-0.5), OrvRound(1.5), OrvRound(-1.5),
                           OrvRound(0.49999), OrvRound(-0.49999), OrvRound(-0.4), OrvRound(-2.6)}));
    EXPECT_EQ(Orv2dRect(), Orv2dRect(0, 0, 0, 0));
    static_assert(sizeof(Orv2dPoint) == 8 && sizeof(Orv2dRect) == 16 && sizeof(Orv3dMatrix) == 64,
                  "32-bit coordinates and sizes, sixteen floats");
}

TEST(Geometry, RectContainsIsInclusiveIntersectsIsStrict) {
    const Orv2dRect r(10, 20, 30, 40), n(-10, -10, 5, 5), a(0, 0, 10, 10);
    auto in = [&](const Orv2dPoint& p) { return r.contains(p); };
    EXPECT_EQ(
        "1111"
        "0000",
        answers<Orv2dPoint>(
            {{10, 20}, {40, 60}, {40, 20}, {25, 60}, {9, 30}, {41, 30}, {20, 19}, {20, 61}}, in));
    // Negative origins must not be mixed with the unsigned sizes.
    auto inN = [&](const Orv2dPoint& p) { return n.contains(p); };
    EXPECT_EQ("100", answers<Orv2dPoint>({{-5, -5}, {-4, -5}, {0, 0}}, inN));
    auto holds = [&](const Orv2dRect& x) { return r.contains(x); };
    EXPECT_EQ(
        "11000",
        answers<Orv2dRect>(
            {{10, 20, 30, 40}, {15, 25, 5, 5}, {15, 25, 26, 5}, {15, 25, 5, 36}, {9, 25, 5, 5}},
            holds));
    // Sharing an edge or a corner is not intersecting, while the edge is inside.
    auto meets = [&](const Orv2dRect& x) { return a.intersects(x); };
    EXPECT_EQ("000111", answers<Orv2dRect>({{10, 0, 10, 10},
                                            {0, 10, 10, 10},
                                            {-10, -10, 10, 10},
                                            {9, 9, 10, 10},
                                            {-5, -5, 6, 6},
                                            {2, 2, 3, 3}},
                                           meets));
    EXPECT_EQ(std::make_pair(a.contains(Orv2dPoint(10, 5)),
                             Orv2dRect(-20, -20, 5, 5).intersects(Orv2dRect(-18, -18, 1, 1))),
              std::make_pair(true, true));
}

TEST(Geometry, RectIntersectionAndExtension) {
    Orv2dRect a(0, 0, 10, 10), b(0, 0, 10, 10), c(0, 0, 10, 10);
    a.intersection(Orv2dRect(5, -5, 10, 10));
    b.intersection(Orv2dRect(20, 30, 5, 5));  // the larger origins, no size
    c.intersection(Orv2dRect(2, 20, 3, 3));
    EXPECT_EQ(std::vector<Orv2dRect>({{5, 0, 5, 5}, {20, 30, 0, 0}, {2, 20, 3, 0}}),
              std::vector<Orv2dRect>({a, b, c}));
    // A zero width takes no part; an empty receiver becomes the argument; a zero height does.
    Orv2dRect e(0, 0, 10, 10), f(5, 5, 0, 99), g(0, 0, 10, 10);
    e.extendBy(Orv2dRect(100, 100, 0, 50));
    f.extendBy(Orv2dRect(-3, 7, 2, 4));
    g.extendBy(Orv2dRect(20, 5, 5, 0));
    EXPECT_EQ(std::vector<Orv2dRect>({{0, 0, 10, 10}, {-3, 7, 2, 4}, {0, 0, 25, 10}}),
              std::vector<Orv2dRect>({e, f, g}));
    e.extendBy(Orv2dRect(-5, 20, 3, 1));
    EXPECT_EQ(e, Orv2dRect(-5, 0, 15, 21));
    // Points move the sides; no emptiness test: the origin 0,0 takes part.
    Orv2dRect p(10, 10, 5, 5), z;
    p.extendBy(Orv2dPoint(4, 12));
    p.extendBy(Orv2dPoint(30, 40));
    p.extendBy(Orv2dPoint(8, 12));
    z.extendBy(Orv2dPoint(5, -3));
    EXPECT_EQ(std::vector<Orv2dRect>({{4, 10, 26, 30}, {0, -3, 5, 3}}),
              std::vector<Orv2dRect>({p, z}));
}

TEST(Geometry, PointConversionsAndSphericalCoordinates) {
    // The 2D point is truncated.
    EXPECT_EQ(std::make_tuple(Orv3dPoint(-1.7f, 2.9f, 8).to2dPoint(),
                              Orv3dPoint(1, 2, 3).to4dPoint(), Orv4dPoint(2, 4, 6, 2).to3dPoint()),
              std::make_tuple(Orv2dPoint(-1, 2), Orv4dPoint(1, 2, 3, 1), Orv3dPoint(1, 2, 3)));
    // A zero or tiny w is replaced by +1e-6, whatever its sign.
    EXPECT_FLOAT_EQ(Orv4dPoint(1, 2, -3, 0).to3dPoint().z, -3 / 1e-6f);
    EXPECT_FLOAT_EQ(Orv4dPoint(1, 0, 0, -5e-7f).to3dPoint().x, 1 / 1e-6f);
    // Spherical coordinates: azimuth in 0..360, polar angle from +z, both ways.
    Orv3dVector v;
    double az, po;
    float r;
    Orv3dVector(1, -1, 0).getSpherical(az, po, r);
    EXPECT_NEAR(az, 315, 1e-9);
    EXPECT_NEAR(po, 90, 1e-9) << "the float radius must not push asin past 1";
    // Every finite non-zero vector has finite angles.
    for (float x : {1.0f, -1.0f, 0.1f, 3e5f, 7e-3f})
        for (float y : {-1.0f, 1.0f, 0.3f, -2e4f})
            for (float z : {0.0f, 1e-7f, -1e-7f}) {
                Orv3dVector(x, y, z).getSpherical(az, po, r);
                EXPECT_TRUE(std::isfinite(az) && std::isfinite(po)) << x << " " << y << " " << z;
            }
    Orv3dVector(-1, -1, 0).getSpherical(az, po, r);
    EXPECT_NEAR(az, 225, 1e-9);
    Orv3dVector(0, 0, -2).getSpherical(az, po, r);
    EXPECT_EQ(std::vector<double>({0, 180, 2}), std::vector<double>({az, po, r}));
    v.setSpherical(200, 130, 5);
    v.getSpherical(az, po, r);
    EXPECT_NEAR(az + po, 330, 1e-4);
}

TEST(Geometry, FloatRectAndVolume) {
    Orv3dRect r(0, 0, 10, 4), in = r, out = r;
    EXPECT_EQ(std::make_pair(r.contains(10.0f, 4.0f), r.contains(10.01f, 4.0f)),
              std::make_pair(true, false));
    in.square(1);
    out.square(0);
    EXPECT_EQ(std::make_pair(in, out),
              std::make_pair(Orv3dRect(3, 0, 4, 4), Orv3dRect(0, -3, 10, 10)));
    Orv3dRect e(1, 1, 1, 1);
    e.extendBy(-1.0f, 5.0f);
    e.extendBy(Orv3dRect(0, -2, 10, 1));
    EXPECT_EQ(e, Orv3dRect(-1, -2, 11, 7));
    Orv3dVolume v(0, 0, 0, 2, 3, 4);
    EXPECT_EQ(std::make_pair(v.contains(Orv3dPoint(2, 3, 4)), v.contains(Orv3dPoint(1, 1, 4.01f))),
              std::make_pair(true, false));
    // A zero-extent volume is a point and takes part in the union.
    Orv3dVolume p(1, 1, 1, 0, 0, 0);
    p.extendBy(Orv3dPoint(3, -1, 2));
    EXPECT_EQ(p, Orv3dVolume(1, -1, 1, 2, 2, 1));
    p.extendBy(Orv3dVolume(-1, 0, 0, 1, 1, 1));
    EXPECT_EQ(p, Orv3dVolume(-1, -1, 0, 4, 2, 2));
    Orv3dPoint c[8];
    Orv3dMatrix shift;
    shift.translate(10, 0, 0);
    Orv3dVolume(0, 0, 0, 1, 2, 3).getVertex(c, shift);
    const float corners[8][3] = {{10, 0, 0}, {10, 2, 0}, {11, 2, 0}, {11, 0, 0},
                                 {10, 0, 3}, {10, 2, 3}, {11, 2, 3}, {11, 0, 3}};
    for (int i = 0; i < 8; i++)
        EXPECT_EQ(c[i], Orv3dPoint(corners[i][0], corners[i][1], corners[i][2])) << i;
}

TEST(Geometry, PlaneSidesAndLineIntersection) {
    Orv3dPlane pl;
    pl.build(Orv3dPoint(0, 0, 5), Orv3dPoint(2, 0, 5), Orv3dPoint(0, 3, 5));
    EXPECT_EQ(std::vector<float>({0, 0, 1, -5}), std::vector<float>({pl.a, pl.b, pl.c, pl.d}));
    // 0x1000 above, 0x2000 on (within 1e-6), 0x4000 below.
    Orv3dPlane z(0, 0, 1, 0);
    EXPECT_EQ(std::vector<unsigned long>({0x1000, 0x4000, 0x2000, 0x2000, 0x1000, 0x4000}),
              std::vector<unsigned long>(
                  {pl.whichSide(Orv3dPoint(0, 0, 6)), pl.whichSide(Orv3dPoint(0, 0, 4)),
                   pl.whichSide(Orv3dPoint(7, 7, 5)), z.whichSide(Orv3dPoint(0, 0, 5e-7f)),
                   z.whichSide(Orv3dPoint(0, 0, 2e-6f)), z.whichSide(Orv3dPoint(0, 0, -2e-6f))}));
    // Segments: one end on the plane takes the other's side; across it is 0x8000 or 0x10000.
    const Orv3dPoint up(0, 0, 1), on(0, 0, 0), down(0, 0, -1);
    EXPECT_EQ(std::vector<unsigned long>(
                  {0x1000, 0x1000, 0x1000, 0x4000, 0x4000, 0x2000, 0x8000, 0x10000}),
              std::vector<unsigned long>({z.whichSide(up, up), z.whichSide(up, on),
                                          z.whichSide(on, up), z.whichSide(down, on),
                                          z.whichSide(on, down), z.whichSide(on, on),
                                          z.whichSide(up, down), z.whichSide(down, up)}));
    Orv3dPlane degenerate;  // collinear points leave a zero normal
    degenerate.build(Orv3dPoint(0, 0, 0), Orv3dPoint(1, 1, 1), Orv3dPoint(2, 2, 2));
    EXPECT_EQ(degenerate.whichSide(Orv3dPoint(100, -3, 7)), 0x2000u);
    // From a point on the plane, or parallel to it: no usable intersection, out untouched.
    // Reversed: the end on the plane is the answer, with the other end's side.
    const struct {
        Orv3dPoint from, to;
        unsigned long side;
        Orv3dPoint out;
    } lines[] = {{{1, 1, 0}, {1, 1, 3}, 0x2000, {-9, -9, -9}},
                 {{0, 0, 1}, {5, 5, 2}, 0x2000, {-9, -9, -9}},
                 {{1, 1, 3}, {1, 1, 0}, 0x1000, {1, 1, 0}},
                 {{0, 0, -1}, {4, 2, 3}, 0x4000, {1, 0.5f, 0}},
                 {{2, 0, 2}, {2, 4, -2}, 0x1000, {2, 2, 0}}};
    for (const auto& l : lines) {
        Orv3dPoint out(-9, -9, -9);
        EXPECT_EQ(std::make_pair(z.lineIntersection(out, l.from, l.to), out),
                  std::make_pair(l.side, l.out));
    }
}
