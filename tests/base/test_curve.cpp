// Bézier flattening, hit tests, arrow heads and arcs.
#include "orv/region.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

std::vector<Orv2dPoint> open(std::vector<Orv2dPoint> controls) {
    unsigned n = 0;
    Orv2dPoint* p = OrvCreateOpenBezier((unsigned)controls.size(), controls.data(), n);
    return std::vector<Orv2dPoint>(p, p + n);
}

std::vector<Orv2dPoint> closed(std::vector<Orv2dPoint> controls) {
    unsigned n = 0;
    Orv2dPoint* p = OrvCreateClosedBezier((unsigned)controls.size(), controls.data(), n);
    return std::vector<Orv2dPoint>(p, p + n);
}

// Restores the application-wide tolerances whatever a test does.
class Curve : public testing::Test {
protected:
    void TearDown() override {
        OrvSetDeltaLine(8.0f);
        OrvSetArrowDelta(8, 4);
    }
};

}  // namespace

TEST_F(Curve, ModuleDefaults) {
    EXPECT_EQ(OrvGetDeltaLine(), 8.0f);
    EXPECT_EQ(Orvarrow_deltax, 8u);
    EXPECT_EQ(Orvarrow_deltay, 4u);
    EXPECT_EQ(_OrvFilledBezierHeight_, 0.1f);
    EXPECT_EQ(OrvVersion(), 1);
    OrvSetArrowDelta(10, 5);
    EXPECT_EQ(Orvarrow_deltax, 10u);
    EXPECT_EQ(Orvarrow_deltay, 5u);
}

TEST_F(Curve, OpenBezierShortInputs) {
    EXPECT_TRUE(open({}).empty());
    EXPECT_TRUE(open({{5, 5}}).empty());
    EXPECT_EQ(open({{1, 2}, {30, 40}}), (std::vector<Orv2dPoint>{{1, 2}, {30, 40}}));
    // Three points: one cubic with the middle point doubled. Only the control
    // point next to each end is tested for flatness, hence the asymmetry.
    EXPECT_EQ(open({{0, 0}, {50, 100}, {100, 0}}), (std::vector<Orv2dPoint>{{0, 0},
                                                                            {17, 33},
                                                                            {30, 56},
                                                                            {40, 70},
                                                                            {45, 74},
                                                                            {50, 75},
                                                                            {55, 74},
                                                                            {60, 70},
                                                                            {70, 56},
                                                                            {100, 0}}));
    // A straight cubic is flat at once: P0, the midpoint, P3.
    EXPECT_EQ(open({{0, 0}, {10, 0}, {20, 0}, {30, 0}}),
              (std::vector<Orv2dPoint>{{0, 0}, {15, 0}, {30, 0}}));
}

TEST_F(Curve, OpenBezierCubics) {
    EXPECT_EQ(open({{0, 0}, {0, 100}, {100, 100}, {100, 0}}), (std::vector<Orv2dPoint>{{0, 0},
                                                                                       {1, 18},
                                                                                       {4, 33},
                                                                                       {9, 46},
                                                                                       {16, 56},
                                                                                       {23, 64},
                                                                                       {32, 70},
                                                                                       {41, 74},
                                                                                       {50, 75},
                                                                                       {59, 74},
                                                                                       {68, 70},
                                                                                       {77, 64},
                                                                                       {84, 56},
                                                                                       {91, 46},
                                                                                       {96, 33},
                                                                                       {99, 18},
                                                                                       {100, 0}}));
    EXPECT_EQ(
        open({{0, 0}, {10, 40}, {-20, 30}, {5, -7}}),
        (std::vector<Orv2dPoint>{
            {0, 0}, {2, 13}, {1, 21}, {-1, 25}, {-3, 25}, {-5, 22}, {-5, 15}, {-2, 6}, {5, -7}}));

    // Counted from the last start point, two points remain: a straight
    // segment, the shared point stored once.
    EXPECT_EQ(open({{0, 0}, {10, 0}, {20, 0}, {30, 0}, {99, 99}}),
              (std::vector<Orv2dPoint>{{0, 0}, {15, 0}, {30, 0}, {99, 99}}));
    // Three remain: a cubic with a doubled middle point.
    EXPECT_EQ(open({{0, 0}, {10, 0}, {20, 0}, {30, 0}, {40, 0}, {50, 0}}),
              (std::vector<Orv2dPoint>{{0, 0}, {15, 0}, {30, 0}, {40, 0}, {50, 0}}));
    // One remains: nothing more.
    EXPECT_EQ(open({{0, 0}, {10, 0}, {20, 0}, {30, 0}, {40, 0}, {50, 0}, {60, 0}}),
              (std::vector<Orv2dPoint>{{0, 0}, {15, 0}, {30, 0}, {45, 0}, {60, 0}}));
}

TEST_F(Curve, ClosedBezier) {
    EXPECT_TRUE(closed({{5, 5}}).empty());
    EXPECT_EQ(closed({{1, 1}, {9, 9}}), (std::vector<Orv2dPoint>{{1, 1}, {9, 9}}));
    // One cubic, then the straight closing edge from the last point to the first.
    std::vector<Orv2dPoint> four = closed({{0, 0}, {0, 100}, {100, 100}, {100, 0}});
    ASSERT_EQ(four.size(), 18u);
    EXPECT_EQ(four[16], Orv2dPoint(100, 0));
    EXPECT_EQ(four[17], Orv2dPoint(0, 0));
    EXPECT_EQ(closed({{0, 0}, {40, 0}, {40, 40}, {0, 40}, {-20, 20}}),
              (std::vector<Orv2dPoint>{{0, 0},
                                       {13, 2},
                                       {23, 6},
                                       {28, 13},
                                       {30, 20},
                                       {28, 27},
                                       {23, 34},
                                       {13, 38},
                                       {0, 40},
                                       {-11, 28},
                                       {-14, 24},
                                       {-15, 20},
                                       {-11, 12},
                                       {0, 0}}));
    // Three points: a cubic back to the start.
    EXPECT_EQ(closed({{0, 0}, {60, 0}, {60, 60}}), (std::vector<Orv2dPoint>{{0, 0},
                                                                            {20, 2},
                                                                            {34, 8},
                                                                            {42, 16},
                                                                            {45, 23},
                                                                            {44, 25},
                                                                            {42, 26},
                                                                            {34, 25},
                                                                            {20, 17},
                                                                            {0, 0}}));
    // Two remain after a cubic: a cubic back to the start, the last point doubled.
    std::vector<Orv2dPoint> five = closed({{0, 0}, {10, 0}, {20, 0}, {30, 0}, {30, 30}});
    EXPECT_EQ(five.back(), Orv2dPoint(0, 0));
    EXPECT_GT(five.size(), 5u);
}

TEST_F(Curve, SharedBufferGrows) {
    std::vector<Orv2dPoint> controls;
    for (int i = 0; i < 301; i++) controls.push_back(Orv2dPoint(i * 10, (i % 2) ? 400 : -400));
    unsigned n1 = 0, n2 = 0;
    Orv2dPoint* p1 = OrvCreateOpenBezier((unsigned)controls.size(), controls.data(), n1);
    EXPECT_GT(n1, 301u);
    EXPECT_EQ(p1[0], controls.front());
    EXPECT_EQ(p1[n1 - 1], controls.back());
    Orv2dPoint* p2 = OrvCreateOpenBezier(2, controls.data(), n2);
    EXPECT_EQ(p1, p2);  // the same storage, overwritten
    EXPECT_EQ(n2, 2u);
}

TEST_F(Curve, PointInLineTolerance) {
    const Orv2dPoint a(0, 0), b(100, 0);
    // f² ≤ 8·|ab|²: 2 pixels off is in, 3 is out (about 2.83).
    EXPECT_TRUE(OrvPointInLine(Orv2dPoint(50, 2), a, b));
    EXPECT_TRUE(OrvPointInLine(Orv2dPoint(50, -2), a, b));
    EXPECT_FALSE(OrvPointInLine(Orv2dPoint(50, 3), a, b));
    // The box is grown by 8 along the line.
    EXPECT_TRUE(OrvPointInLine(Orv2dPoint(-8, 0), a, b));
    EXPECT_FALSE(OrvPointInLine(Orv2dPoint(-9, 0), a, b));
    EXPECT_TRUE(OrvPointInLine(Orv2dPoint(108, 0), a, b));
    EXPECT_FALSE(OrvPointInLine(Orv2dPoint(109, 0), a, b));
    // A diagonal: distance 2.12 in, 2.83 on the edge in, 3.54 out.
    EXPECT_TRUE(OrvPointInLine(Orv2dPoint(52, 49), Orv2dPoint(0, 0), Orv2dPoint(100, 100)));
    EXPECT_TRUE(OrvPointInLine(Orv2dPoint(52, 48), Orv2dPoint(0, 0), Orv2dPoint(100, 100)));
    EXPECT_FALSE(OrvPointInLine(Orv2dPoint(53, 48), Orv2dPoint(0, 0), Orv2dPoint(100, 100)));

    // Zero length: every point of the box is on it.
    EXPECT_TRUE(OrvPointInLine(Orv2dPoint(13, 13), Orv2dPoint(5, 5), Orv2dPoint(5, 5)));
    EXPECT_FALSE(OrvPointInLine(Orv2dPoint(14, 5), Orv2dPoint(5, 5), Orv2dPoint(5, 5)));

    OrvSetDeltaLine(0);
    EXPECT_TRUE(OrvPointInLine(Orv2dPoint(50, 0), a, b));
    EXPECT_FALSE(OrvPointInLine(Orv2dPoint(50, 1), a, b));
    EXPECT_FALSE(OrvPointInLine(Orv2dPoint(101, 0), a, b));
    OrvSetDeltaLine(32.5f);  // the box grows by the truncation, 32
    EXPECT_TRUE(OrvPointInLine(Orv2dPoint(132, 0), a, b));
    EXPECT_FALSE(OrvPointInLine(Orv2dPoint(133, 0), a, b));
    EXPECT_EQ(OrvGetDeltaLine(), 32.5f);
}

TEST_F(Curve, PolylineAndBezierHits) {
    Orv2dPoint pts[] = {{0, 0}, {10, 0}, {10, 10}};
    EXPECT_EQ(OrvPointInPolyline(Orv2dPoint(5, 0), 3, pts), 0);
    EXPECT_EQ(OrvPointInPolyline(Orv2dPoint(10, 5), 3, pts), 1);
    EXPECT_EQ(OrvPointInPolyline(Orv2dPoint(10, 0), 3, pts), 0);  // first hit wins
    EXPECT_EQ(OrvPointInPolyline(Orv2dPoint(50, 50), 3, pts), -1);
    EXPECT_EQ(OrvPointInPolyline(Orv2dPoint(0, 0), 1, pts), -1);

    EXPECT_EQ(OrvPointInBezier(Orv2dPoint(0, 0), 1, pts), -1);
    EXPECT_EQ(OrvPointInBezier(Orv2dPoint(5, 1), 2, pts), 0);
    // Flattened as (0,0) (15,0) (30,0): indexes are those of flattened segments.
    Orv2dPoint line[] = {{0, 0}, {10, 0}, {20, 0}, {30, 0}};
    EXPECT_EQ(OrvPointInBezier(Orv2dPoint(20, 0), 4, line), 0);
    EXPECT_EQ(OrvPointInBezier(Orv2dPoint(25, 0), 4, line), 1);
    EXPECT_EQ(OrvPointInBezier(Orv2dPoint(25, 9), 4, line), -1);
    Orv2dPoint arch[] = {{0, 0}, {0, 100}, {100, 100}, {100, 0}};
    EXPECT_EQ(OrvPointInBezier(Orv2dPoint(50, 75), 4, arch), 7);
    EXPECT_EQ(OrvPointInBezier(Orv2dPoint(50, 50), 4, arch), -1);
}

TEST_F(Curve, IntersectHorizontalIsHalfOpen) {
    const Orv2dPoint a(10, 0), b(10, 10);
    EXPECT_TRUE(OrvIntersectHorizontal(Orv2dPoint(5, 5), a, b));
    EXPECT_FALSE(OrvIntersectHorizontal(Orv2dPoint(15, 5), a, b));
    EXPECT_TRUE(OrvIntersectHorizontal(Orv2dPoint(5, 0), a, b));
    EXPECT_FALSE(OrvIntersectHorizontal(Orv2dPoint(5, 10), a, b));
    EXPECT_TRUE(OrvIntersectHorizontal(Orv2dPoint(5, 5), b, a));  // upward edge
    EXPECT_FALSE(OrvIntersectHorizontal(Orv2dPoint(15, 5), b, a));
    EXPECT_TRUE(OrvIntersectHorizontal(Orv2dPoint(5, 0), b, a));
    EXPECT_FALSE(OrvIntersectHorizontal(Orv2dPoint(5, 10), b, a));
    EXPECT_FALSE(OrvIntersectHorizontal(Orv2dPoint(0, 3), Orv2dPoint(5, 3), Orv2dPoint(9, 3)));
    // A slanted edge: the side of the point decides.
    EXPECT_TRUE(OrvIntersectHorizontal(Orv2dPoint(4, 5), Orv2dPoint(0, 0), Orv2dPoint(10, 10)));
    EXPECT_FALSE(OrvIntersectHorizontal(Orv2dPoint(6, 5), Orv2dPoint(0, 0), Orv2dPoint(10, 10)));
}

TEST_F(Curve, PointInPolygon) {
    Orv2dPoint sq[] = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
    EXPECT_EQ(OrvPointInPolygon(Orv2dPoint(5, 5), 4, sq), 4);
    EXPECT_EQ(OrvPointInPolygon(Orv2dPoint(15, 5), 4, sq), -1);
    EXPECT_EQ(OrvPointInPolygon(Orv2dPoint(-1, 5), 4, sq), -1);  // the app's delta is ignored
    EXPECT_EQ(OrvPointInPolygon(Orv2dPoint(0, 5), 4, sq), 3);    // on the closing edge
    EXPECT_EQ(OrvPointInPolygon(Orv2dPoint(5, 0), 4, sq), 1);    // edge 0→1
    EXPECT_EQ(OrvPointInPolygon(Orv2dPoint(10, 5), 4, sq), 2);
    EXPECT_EQ(OrvPointInPolygon(Orv2dPoint(0, 0), 4, sq), 3);  // a vertex is on an edge
    EXPECT_EQ(OrvPointInPolygon(Orv2dPoint(10, 0), 4, sq), 1);
    EXPECT_EQ(OrvPointInPolygon(Orv2dPoint(1, 1), 4, sq), 4);

    OrvSetDeltaLine(5.5f);
    EXPECT_EQ(OrvPointInPolygon(Orv2dPoint(11, 5), 4, sq), -1);
    EXPECT_EQ(OrvPointInPolygon(Orv2dPoint(0, 5), 4, sq), 3);
    EXPECT_EQ(OrvGetDeltaLine(), 5.5f);  // restored on both exits

    // A concave polygon: the notch is outside.
    Orv2dPoint u[] = {{0, 0}, {30, 0}, {30, 30}, {20, 30}, {20, 10}, {10, 10}, {10, 30}, {0, 30}};
    EXPECT_EQ(OrvPointInPolygon(Orv2dPoint(15, 20), 8, u), -1);
    EXPECT_EQ(OrvPointInPolygon(Orv2dPoint(5, 20), 8, u), 8);
    EXPECT_EQ(OrvPointInPolygon(Orv2dPoint(25, 20), 8, u), 8);
    EXPECT_EQ(OrvPointInPolygon(Orv2dPoint(15, 5), 8, u), 8);
    // A ray through a vertex counts once.
    Orv2dPoint diamond[] = {{10, 0}, {20, 10}, {10, 20}, {0, 10}};
    EXPECT_EQ(OrvPointInPolygon(Orv2dPoint(5, 10), 4, diamond), 4);
    EXPECT_EQ(OrvPointInPolygon(Orv2dPoint(-5, 10), 4, diamond), -1);
    EXPECT_EQ(OrvPointInPolygon(Orv2dPoint(0, 0), 4, diamond), -1);

    EXPECT_EQ(OrvPointInFilledBezier(Orv2dPoint(5, 5), 2, sq),
              -1);  // two points: a degenerate polygon
    EXPECT_EQ(OrvPointInFilledBezier(Orv2dPoint(5, 0), 2, sq), 1);
    Orv2dPoint blob[] = {{0, 0}, {0, 100}, {100, 100}, {100, 0}};
    EXPECT_EQ(OrvPointInFilledBezier(Orv2dPoint(50, 40), 4, blob), 18);
    EXPECT_EQ(OrvPointInFilledBezier(Orv2dPoint(50, 80), 4, blob), -1);
    EXPECT_EQ(OrvPointInFilledBezier(Orv2dPoint(50, 0), 4, blob), 17);  // on the closing edge
}

TEST_F(Curve, ArrowHeads) {
    Orv2dPoint out[3];
    OrvComputeArrow(Orv2dPoint(0, 0), Orv2dPoint(100, 0), 1, out);
    EXPECT_EQ(out[0], Orv2dPoint(100, 0));
    EXPECT_EQ(out[1], Orv2dPoint(92, -4));
    EXPECT_EQ(out[2], Orv2dPoint(92, 4));
    OrvComputeArrow(Orv2dPoint(0, 0), Orv2dPoint(100, 0), 0.5f, out);  // head shrinks too
    EXPECT_EQ(out[0], Orv2dPoint(50, 0));
    EXPECT_EQ(out[1], Orv2dPoint(46, -4));
    OrvComputeArrow(Orv2dPoint(100, 0), Orv2dPoint(0, 0), 1, out);
    EXPECT_EQ(out[0], Orv2dPoint(0, 0));
    EXPECT_EQ(out[1], Orv2dPoint(8, -4));
    EXPECT_EQ(out[2], Orv2dPoint(8, 4));
    OrvComputeArrow(Orv2dPoint(0, 0), Orv2dPoint(-5, 0), 0.5f, out);  // -2.5 → -3, 1.5 → 2
    EXPECT_EQ(out[0], Orv2dPoint(-3, 0));
    EXPECT_EQ(out[1], Orv2dPoint(2, -4));

    OrvComputeArrow(Orv2dPoint(0, 0), Orv2dPoint(0, 100), 1, out);
    EXPECT_EQ(out[0], Orv2dPoint(0, 100));
    EXPECT_EQ(out[1], Orv2dPoint(4, 92));
    EXPECT_EQ(out[2], Orv2dPoint(-4, 92));
    OrvComputeArrow(Orv2dPoint(3, 50), Orv2dPoint(3, 0), 1, out);
    EXPECT_EQ(out[0], Orv2dPoint(3, 0));
    EXPECT_EQ(out[1], Orv2dPoint(7, 8));

    OrvComputeArrow(Orv2dPoint(0, 0), Orv2dPoint(30, 40), 1, out);
    EXPECT_EQ(out[0], Orv2dPoint(30, 40));
    EXPECT_EQ(out[1], Orv2dPoint(22, 36));  // base (25.2, 33.6) ∓ (3, 2)
    EXPECT_EQ(out[2], Orv2dPoint(28, 32));
    OrvComputeArrow(Orv2dPoint(10, 10), Orv2dPoint(-20, -30), 0.5f, out);
    EXPECT_EQ(out[0], Orv2dPoint(-5, -10));
    EXPECT_EQ(out[1], Orv2dPoint(0, -9));  // base (-2.6, -6.8), n (-3, -2)
    EXPECT_EQ(out[2], Orv2dPoint(-6, -5));

    OrvSetArrowDelta(20, 10);
    OrvComputeArrow(Orv2dPoint(0, 0), Orv2dPoint(100, 0), 1, out);
    EXPECT_EQ(out[1], Orv2dPoint(80, -10));
    EXPECT_EQ(out[2], Orv2dPoint(80, 10));
}

TEST_F(Curve, ArcBoundingBox) {
    Orv2dRect out;
    OrvComputeArcBBox(Orv2dRect(0, 0, 100, 50), 0, 360, out);
    EXPECT_EQ(out, Orv2dRect(0, 0, 100, 50));
    OrvComputeArcBBox(Orv2dRect(0, 0, 100, 50), 0, 90, out);
    EXPECT_EQ(out, Orv2dRect(50, 0, 50, 25));
    OrvComputeArcBBox(Orv2dRect(0, 0, 100, 50), 90, 180, out);
    EXPECT_EQ(out, Orv2dRect(0, 0, 50, 25));
    OrvComputeArcBBox(Orv2dRect(0, 0, 100, 50), 180, 270, out);
    EXPECT_EQ(out, Orv2dRect(0, 25, 50, 25));
    OrvComputeArcBBox(Orv2dRect(0, 0, 100, 100), 0, 45, out);  // (100,50) and (85,15)
    EXPECT_EQ(out, Orv2dRect(85, 15, 15, 35));
    OrvComputeArcBBox(Orv2dRect(0, 0, 100, 100), 300, 420, out);  // passes 360
    EXPECT_EQ(out.x + (int)out.w, 100);
    EXPECT_EQ(out.y, 7);  // 90 is not within 300..420: the top is the end point's
    OrvComputeArcBBox(Orv2dRect(0, 0, 100, 100), 300, 460, out);  // end > 450
    EXPECT_EQ(out.y, 0);
    OrvComputeArcBBox(Orv2dRect(7, 9, 0, 0), 45, 45, out);  // a point: 1 by 1
    EXPECT_EQ(out, Orv2dRect(7, 9, 1, 1));
    OrvComputeArcBBox(Orv2dRect(0, 0, 100, 50), 0, 0, out);  // a horizontal nothing
    EXPECT_EQ(out, Orv2dRect(100, 25, 1, 1));
}

TEST_F(Curve, PointInArc) {
    const Orv2dRect r(0, 0, 100, 100);
    EXPECT_TRUE(OrvPointInArc(Orv2dPoint(100, 50), r, 0, 360));
    EXPECT_TRUE(OrvPointInArc(Orv2dPoint(50, 3), r, 0, 360));
    EXPECT_FALSE(OrvPointInArc(Orv2dPoint(50, 50), r, 0, 360));
    EXPECT_TRUE(OrvPointInArc(Orv2dPoint(92, 50), r, 0, 360));    // 8 from the ring
    EXPECT_FALSE(OrvPointInArc(Orv2dPoint(91, 50), r, 0, 360));   // 9 from the ring
    EXPECT_FALSE(OrvPointInArc(Orv2dPoint(101, 50), r, 0, 360));  // outside the rect
    EXPECT_FALSE(OrvPointInArc(Orv2dPoint(0, 0), Orv2dRect(0, 0, 10, 0), 0, 360));

    // A quarter, counter-clockwise on the screen from 3 o'clock to 12.
    EXPECT_TRUE(OrvPointInArc(Orv2dPoint(85, 15), r, 0, 90));
    EXPECT_FALSE(OrvPointInArc(Orv2dPoint(15, 15), r, 0, 90));
    EXPECT_FALSE(OrvPointInArc(Orv2dPoint(85, 85), r, 0, 90));
    // Three quarters (the 180-or-more branch).
    EXPECT_TRUE(OrvPointInArc(Orv2dPoint(15, 15), r, 0, 270));
    EXPECT_TRUE(OrvPointInArc(Orv2dPoint(3, 67), r, 0, 270));  // at about 200 degrees
    EXPECT_FALSE(OrvPointInArc(Orv2dPoint(3, 67), r, 0, 90));
    EXPECT_FALSE(OrvPointInArc(Orv2dPoint(3, 67), r, 180, 190));
    EXPECT_TRUE(OrvPointInArc(Orv2dPoint(3, 67), r, 190, 210));
    EXPECT_FALSE(OrvPointInArc(Orv2dPoint(85, 85), r, 0, 270));
    EXPECT_TRUE(OrvPointInArc(Orv2dPoint(3, 50), r, 0, 270));
    // A half turn takes the branch of 180 or more: both ends are in.
    EXPECT_TRUE(OrvPointInArc(Orv2dPoint(3, 50), r, 0, 180));
    EXPECT_TRUE(OrvPointInArc(Orv2dPoint(97, 50), r, 0, 180));
    EXPECT_TRUE(OrvPointInArc(Orv2dPoint(50, 3), r, 0, 180));
    EXPECT_FALSE(OrvPointInArc(Orv2dPoint(50, 97), r, 0, 180));

    // An ellipse: the y distance is scaled by rx/ry.
    const Orv2dRect e(0, 0, 100, 50);
    EXPECT_TRUE(OrvPointInArc(Orv2dPoint(50, 0), e, 0, 360));
    EXPECT_FALSE(OrvPointInArc(Orv2dPoint(50, 8), e, 0, 360));  // 16 in x units

    OrvSetDeltaLine(1);
    EXPECT_FALSE(OrvPointInArc(Orv2dPoint(50, 3), r, 0, 360));
}

TEST_F(Curve, PointInFilledArc) {
    const Orv2dRect r(0, 0, 100, 100);
    EXPECT_TRUE(OrvPointInFilledArc(Orv2dPoint(60, 40), r, 0, 90, OrvArcPieSlice));
    EXPECT_FALSE(OrvPointInFilledArc(Orv2dPoint(40, 40), r, 0, 90, OrvArcPieSlice));
    // Next to the centre, outside the chord: a chord answers like a pie.
    EXPECT_TRUE(OrvPointInFilledArc(Orv2dPoint(55, 45), r, 0, 90, OrvArcChord));
    EXPECT_TRUE(OrvPointInFilledArc(Orv2dPoint(55, 45), r, 0, 90, OrvArcPieSlice));
    EXPECT_TRUE(OrvPointInFilledArc(Orv2dPoint(50, 60), r, 0, 360, OrvArcPieSlice));
    EXPECT_FALSE(OrvPointInFilledArc(Orv2dPoint(50, 60), r, 0, 90, OrvArcPieSlice));
    EXPECT_FALSE(OrvPointInFilledArc(Orv2dPoint(101, 50), r, 0, 360, OrvArcPieSlice));

    // The ellipse test with the delta added to both half axes.
    OrvSetDeltaLine(0);
    EXPECT_TRUE(
        OrvPointInFilledArc(Orv2dPoint(85, 15), r, 0, 360, OrvArcPieSlice));  // 35² + 35² = 2450
    EXPECT_FALSE(
        OrvPointInFilledArc(Orv2dPoint(86, 15), r, 0, 360, OrvArcPieSlice));  // 36² + 35² = 2521
    EXPECT_TRUE(OrvPointInFilledArc(Orv2dPoint(100, 50), r, 0, 360, OrvArcPieSlice));
    OrvSetDeltaLine(8);
    EXPECT_TRUE(OrvPointInFilledArc(Orv2dPoint(90, 10), r, 0, 360, OrvArcPieSlice));  // 3200 ≤ 3364
    EXPECT_FALSE(OrvPointInFilledArc(Orv2dPoint(92, 8), r, 0, 360, OrvArcPieSlice));  // 3528
}
