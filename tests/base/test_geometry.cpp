// Points, rectangles, volumes and planes.
#include "orv/geometry.h"

#include <gtest/gtest.h>

#include <cmath>

TEST(Geometry, RoundingIsHalfAwayFromZero) {
    EXPECT_EQ(OrvRound(0.5), 1);
    EXPECT_EQ(OrvRound(-0.5), -1);
    EXPECT_EQ(OrvRound(1.5), 2);
    EXPECT_EQ(OrvRound(-1.5), -2);
    EXPECT_EQ(OrvRound(0.49999), 0);
    EXPECT_EQ(OrvRound(-0.49999), 0);
    EXPECT_EQ(OrvRound(-0.4), 0);  // not floor(v + 0.5)
    EXPECT_EQ(OrvRound(-2.6), -3);
}

TEST(Geometry, PointDefaultsAndEquality) {
    Orv2dPoint p;
    EXPECT_EQ(p.x, 0);
    EXPECT_EQ(p.y, 0);
    EXPECT_TRUE(Orv2dPoint(3, -4) == Orv2dPoint(3, -4));
    EXPECT_TRUE(Orv2dPoint(3, -4) != Orv2dPoint(-4, 3));
    Orv2dRect r;
    EXPECT_EQ(r, Orv2dRect(0, 0, 0, 0));
    Orv3dPoint q;
    EXPECT_EQ(q, Orv3dPoint(0, 0, 0));
    static_assert(sizeof(Orv2dPoint) == 8, "two 32-bit coordinates");
    static_assert(sizeof(Orv2dRect) == 16, "point plus two 32-bit sizes");
    static_assert(sizeof(Orv3dMatrix) == 64, "sixteen floats");
}

TEST(Geometry, RectContainsIsInclusiveOnAllSides) {
    Orv2dRect r(10, 20, 30, 40);
    EXPECT_TRUE(r.contains(Orv2dPoint(10, 20)));
    EXPECT_TRUE(r.contains(Orv2dPoint(40, 60)));
    EXPECT_TRUE(r.contains(Orv2dPoint(40, 20)));
    EXPECT_TRUE(r.contains(Orv2dPoint(25, 60)));
    EXPECT_FALSE(r.contains(Orv2dPoint(9, 30)));
    EXPECT_FALSE(r.contains(Orv2dPoint(41, 30)));
    EXPECT_FALSE(r.contains(Orv2dPoint(20, 19)));
    EXPECT_FALSE(r.contains(Orv2dPoint(20, 61)));

    // Negative origins must not be mixed with the unsigned sizes.
    Orv2dRect n(-10, -10, 5, 5);
    EXPECT_TRUE(n.contains(Orv2dPoint(-5, -5)));
    EXPECT_FALSE(n.contains(Orv2dPoint(-4, -5)));
    EXPECT_FALSE(n.contains(Orv2dPoint(0, 0)));

    EXPECT_TRUE(r.contains(Orv2dRect(10, 20, 30, 40)));
    EXPECT_TRUE(r.contains(Orv2dRect(15, 25, 5, 5)));
    EXPECT_FALSE(r.contains(Orv2dRect(15, 25, 26, 5)));
    EXPECT_FALSE(r.contains(Orv2dRect(15, 25, 5, 36)));
    EXPECT_FALSE(r.contains(Orv2dRect(9, 25, 5, 5)));
}

TEST(Geometry, RectIntersectsIsStrict) {
    Orv2dRect a(0, 0, 10, 10);
    EXPECT_FALSE(a.intersects(Orv2dRect(10, 0, 10, 10)));  // shares an edge
    EXPECT_FALSE(a.intersects(Orv2dRect(0, 10, 10, 10)));
    EXPECT_FALSE(a.intersects(Orv2dRect(-10, -10, 10, 10)));  // shares a corner
    EXPECT_TRUE(a.contains(Orv2dPoint(10, 5)));               // while the edge is inside
    EXPECT_TRUE(a.intersects(Orv2dRect(9, 9, 10, 10)));
    EXPECT_TRUE(a.intersects(Orv2dRect(-5, -5, 6, 6)));
    EXPECT_TRUE(a.intersects(Orv2dRect(2, 2, 3, 3)));
    EXPECT_TRUE(Orv2dRect(-20, -20, 5, 5).intersects(Orv2dRect(-18, -18, 1, 1)));
}

TEST(Geometry, RectIntersectionInPlace) {
    Orv2dRect a(0, 0, 10, 10);
    a.intersection(Orv2dRect(5, -5, 10, 10));
    EXPECT_EQ(a, Orv2dRect(5, 0, 5, 5));

    Orv2dRect b(0, 0, 10, 10);
    b.intersection(Orv2dRect(20, 30, 5, 5));
    EXPECT_EQ(b.x, 20);  // the larger origins
    EXPECT_EQ(b.y, 30);
    EXPECT_EQ(b.w, 0u);
    EXPECT_EQ(b.h, 0u);

    Orv2dRect c(0, 0, 10, 10);
    c.intersection(Orv2dRect(2, 20, 3, 3));
    EXPECT_EQ(c, Orv2dRect(2, 20, 3, 0));
}

TEST(Geometry, RectExtendByRectTreatsZeroWidthAsEmpty) {
    Orv2dRect a(0, 0, 10, 10);
    a.extendBy(Orv2dRect(100, 100, 0, 50));  // zero width changes nothing
    EXPECT_EQ(a, Orv2dRect(0, 0, 10, 10));

    Orv2dRect e(5, 5, 0, 99);  // an empty receiver becomes the argument
    e.extendBy(Orv2dRect(-3, 7, 2, 4));
    EXPECT_EQ(e, Orv2dRect(-3, 7, 2, 4));

    a.extendBy(Orv2dRect(-5, 20, 3, 1));
    EXPECT_EQ(a, Orv2dRect(-5, 0, 15, 21));

    Orv2dRect f(0, 0, 10, 10);  // zero height with a width takes part
    f.extendBy(Orv2dRect(20, 5, 5, 0));
    EXPECT_EQ(f, Orv2dRect(0, 0, 25, 10));
}

TEST(Geometry, RectExtendByPointMovesTheSides) {
    Orv2dRect r(10, 10, 5, 5);
    r.extendBy(Orv2dPoint(4, 12));
    EXPECT_EQ(r, Orv2dRect(4, 10, 11, 5));
    r.extendBy(Orv2dPoint(30, 40));
    EXPECT_EQ(r, Orv2dRect(4, 10, 26, 30));
    r.extendBy(Orv2dPoint(8, 12));  // inside: unchanged
    EXPECT_EQ(r, Orv2dRect(4, 10, 26, 30));

    Orv2dRect z;  // no emptiness test: the origin 0,0 takes part
    z.extendBy(Orv2dPoint(5, -3));
    EXPECT_EQ(z, Orv2dRect(0, -3, 5, 3));
}

TEST(Geometry, PointConversions) {
    Orv2dPoint p = Orv3dPoint(-1.7f, 2.9f, 8).to2dPoint();
    EXPECT_EQ(p, Orv2dPoint(-1, 2));  // truncated, not rounded
    Orv4dPoint h = Orv3dPoint(1, 2, 3).to4dPoint();
    EXPECT_EQ(h, Orv4dPoint(1, 2, 3, 1));
    Orv3dPoint q = Orv4dPoint(2, 4, 6, 2).to3dPoint();
    EXPECT_EQ(q, Orv3dPoint(1, 2, 3));

    Orv3dPoint big = Orv4dPoint(1, 2, -3, 0).to3dPoint();
    EXPECT_TRUE(std::isfinite(big.x));
    EXPECT_FLOAT_EQ(big.x, 1 / 1e-6f);
    EXPECT_FLOAT_EQ(big.y, 2 / 1e-6f);
    EXPECT_FLOAT_EQ(big.z, -3 / 1e-6f);
    Orv3dPoint tiny = Orv4dPoint(1, 0, 0, -5e-7f).to3dPoint();
    EXPECT_FLOAT_EQ(tiny.x, 1 / 1e-6f);  // the replacement is +1e-6, whatever the sign
}

TEST(Geometry, SphericalCoordinates) {
    Orv3dVector v;
    v.setSpherical(90, 90, 2);
    EXPECT_NEAR(v.x, 0, 1e-6);
    EXPECT_NEAR(v.y, 2, 1e-6);
    EXPECT_NEAR(v.z, 0, 1e-6);
    v.setSpherical(0, 0, 3);
    EXPECT_NEAR(v.z, 3, 1e-6);

    double az, po;
    float r;
    Orv3dVector(0, -1, 0).getSpherical(az, po, r);
    EXPECT_NEAR(az, 270, 1e-9);
    EXPECT_NEAR(po, 90, 1e-9);
    EXPECT_FLOAT_EQ(r, 1);
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
    Orv3dVector(-1, 1, 0).getSpherical(az, po, r);
    EXPECT_NEAR(az, 135, 1e-9);
    Orv3dVector(-1, -1, 0).getSpherical(az, po, r);
    EXPECT_NEAR(az, 225, 1e-9);
    Orv3dVector(0, 0, -2).getSpherical(az, po, r);
    EXPECT_EQ(az, 0);
    EXPECT_NEAR(po, 180, 1e-9);
    EXPECT_FLOAT_EQ(r, 2);
    Orv3dVector(0, 0, 0).getSpherical(az, po, r);
    EXPECT_EQ(az, 0);
    EXPECT_EQ(po, 0);
    EXPECT_EQ(r, 0);

    Orv3dVector w;
    w.setSpherical(200, 130, 5);
    w.getSpherical(az, po, r);
    EXPECT_NEAR(az, 200, 1e-4);
    EXPECT_NEAR(po, 130, 1e-4);
    EXPECT_NEAR(r, 5, 1e-5);
}

TEST(Geometry, FloatRect) {
    Orv3dRect r(0, 0, 10, 4);
    EXPECT_TRUE(r.contains(0.0f, 0.0f));
    EXPECT_TRUE(r.contains(10.0f, 4.0f));
    EXPECT_FALSE(r.contains(10.01f, 4.0f));
    EXPECT_TRUE(r.contains(Orv3dRect(1, 1, 9, 3)));
    EXPECT_FALSE(r.contains(Orv3dRect(1, 1, 9, 3.5f)));

    Orv3dRect in = r;
    in.square(1);
    EXPECT_EQ(in, Orv3dRect(3, 0, 4, 4));
    Orv3dRect out = r;
    out.square(0);
    EXPECT_EQ(out, Orv3dRect(0, -3, 10, 10));

    Orv3dRect e(1, 1, 1, 1);
    e.extendBy(-1.0f, 5.0f);
    EXPECT_EQ(e, Orv3dRect(-1, 1, 3, 4));
    e.extendBy(Orv3dRect(0, -2, 10, 1));
    EXPECT_EQ(e, Orv3dRect(-1, -2, 11, 7));

    Orv3dRect i(0, 0, 10, 10);
    i.intersection(Orv3dRect(5, 5, 10, 10));
    EXPECT_EQ(i, Orv3dRect(5, 5, 5, 5));
    i.intersection(Orv3dRect(20, 0, 1, 100));
    EXPECT_EQ(i.w, 0);
    EXPECT_EQ(i.h, 5);
}

TEST(Geometry, Volume) {
    Orv3dVolume v(0, 0, 0, 2, 3, 4);
    EXPECT_TRUE(v.contains(Orv3dPoint(2, 3, 4)));
    EXPECT_TRUE(v.contains(Orv3dPoint(0, 0, 0)));
    EXPECT_FALSE(v.contains(Orv3dPoint(1, 1, 4.01f)));
    EXPECT_TRUE(v.contains(Orv3dVolume(0.5f, 0.5f, 0.5f, 1, 1, 1)));
    EXPECT_FALSE(v.contains(Orv3dVolume(0.5f, 0.5f, 0.5f, 1, 1, 4)));

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
    const Orv3dPoint expected[8] = {{10, 0, 0}, {10, 2, 0}, {11, 2, 0}, {11, 0, 0},
                                    {10, 0, 3}, {10, 2, 3}, {11, 2, 3}, {11, 0, 3}};
    for (int i = 0; i < 8; i++) EXPECT_EQ(c[i], expected[i]) << "corner " << i;
}

TEST(Geometry, PlaneBuildAndSides) {
    Orv3dPlane pl;
    pl.build(Orv3dPoint(0, 0, 5), Orv3dPoint(2, 0, 5), Orv3dPoint(0, 3, 5));
    EXPECT_FLOAT_EQ(pl.a, 0);
    EXPECT_FLOAT_EQ(pl.b, 0);
    EXPECT_FLOAT_EQ(pl.c, 1);  // normalised
    EXPECT_FLOAT_EQ(pl.d, -5);
    EXPECT_EQ(pl.whichSide(Orv3dPoint(0, 0, 6)), 0x1000u);
    EXPECT_EQ(pl.whichSide(Orv3dPoint(0, 0, 4)), 0x4000u);
    EXPECT_EQ(pl.whichSide(Orv3dPoint(7, 7, 5)), 0x2000u);

    Orv3dPlane z(0, 0, 1, 0);
    EXPECT_EQ(z.whichSide(Orv3dPoint(0, 0, 5e-7f)), 0x2000u);
    EXPECT_EQ(z.whichSide(Orv3dPoint(0, 0, 2e-6f)), 0x1000u);
    EXPECT_EQ(z.whichSide(Orv3dPoint(0, 0, -2e-6f)), 0x4000u);

    const Orv3dPoint up(0, 0, 1), on(0, 0, 0), down(0, 0, -1);
    EXPECT_EQ(z.whichSide(up, up), 0x1000u);
    EXPECT_EQ(z.whichSide(up, on), 0x1000u);
    EXPECT_EQ(z.whichSide(on, up), 0x1000u);
    EXPECT_EQ(z.whichSide(down, down), 0x4000u);
    EXPECT_EQ(z.whichSide(down, on), 0x4000u);
    EXPECT_EQ(z.whichSide(on, down), 0x4000u);
    EXPECT_EQ(z.whichSide(on, on), 0x2000u);
    EXPECT_EQ(z.whichSide(up, down), 0x8000u);
    EXPECT_EQ(z.whichSide(down, up), 0x10000u);

    Orv3dPlane degenerate;  // collinear points leave a zero normal
    degenerate.build(Orv3dPoint(0, 0, 0), Orv3dPoint(1, 1, 1), Orv3dPoint(2, 2, 2));
    EXPECT_EQ(degenerate.a, 0);
    EXPECT_EQ(degenerate.b, 0);
    EXPECT_EQ(degenerate.c, 0);
    EXPECT_EQ(degenerate.d, 0);
    EXPECT_EQ(degenerate.whichSide(Orv3dPoint(100, -3, 7)), 0x2000u);
}

TEST(Geometry, PlaneLineIntersection) {
    Orv3dPlane z(0, 0, 1, 0);
    const Orv3dPoint untouched(-9, -9, -9);
    Orv3dPoint out = untouched;

    // From a point on the plane: no usable intersection, out untouched.
    EXPECT_EQ(z.lineIntersection(out, Orv3dPoint(1, 1, 0), Orv3dPoint(1, 1, 3)), 0x2000u);
    EXPECT_EQ(out, untouched);
    // Reversed: the end on the plane is the answer, with the other end's side.
    EXPECT_EQ(z.lineIntersection(out, Orv3dPoint(1, 1, 3), Orv3dPoint(1, 1, 0)), 0x1000u);
    EXPECT_EQ(out, Orv3dPoint(1, 1, 0));

    out = untouched;
    EXPECT_EQ(z.lineIntersection(out, Orv3dPoint(0, 0, 1), Orv3dPoint(5, 5, 2)), 0x2000u);
    EXPECT_EQ(out, untouched);

    EXPECT_EQ(z.lineIntersection(out, Orv3dPoint(0, 0, -1), Orv3dPoint(4, 2, 3)), 0x4000u);
    EXPECT_FLOAT_EQ(out.x, 1);
    EXPECT_FLOAT_EQ(out.y, 0.5f);
    EXPECT_FLOAT_EQ(out.z, 0);
    EXPECT_EQ(z.lineIntersection(out, Orv3dPoint(2, 0, 2), Orv3dPoint(2, 4, -2)), 0x1000u);
    EXPECT_EQ(out, Orv3dPoint(2, 2, 0));
}
