// Bézier flattening, hit tests, arrow heads and arcs.
#include "orv/region.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

// Points from a flat list of coordinates.
std::vector<Orv2dPoint> P(std::initializer_list<int> xy) {
    std::vector<Orv2dPoint> v;
    for (const int* p = xy.begin(); p + 1 < xy.end(); p += 2) v.push_back(Orv2dPoint(p[0], p[1]));
    return v;
}

// The flattened curve of these control points, open or closed.
std::vector<Orv2dPoint> flat(std::initializer_list<int> xy, bool closed) {
    std::vector<Orv2dPoint> controls = P(xy);
    unsigned n = 0;
    Orv2dPoint* p = (closed ? OrvCreateClosedBezier
                            : OrvCreateOpenBezier)((unsigned)controls.size(), controls.data(), n);
    return std::vector<Orv2dPoint>(p, p + n);
}
std::vector<Orv2dPoint> open(std::initializer_list<int> xy) {
    return flat(xy, false);
}
std::vector<Orv2dPoint> closed(std::initializer_list<int> xy) {
    return flat(xy, true);
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

// Before any test changes them (and the fixture puts them back).
TEST(CurveDefaults, LineToleranceAndArrowHead) {
    EXPECT_EQ(std::make_tuple(OrvGetDeltaLine(), Orvarrow_deltax, Orvarrow_deltay),
              std::make_tuple(8.0f, 8, 4));
}

TEST_F(Curve, OpenBezierShortInputs) {
    EXPECT_EQ(std::make_tuple(open({}).size(), open({5, 5}).size(), open({1, 2, 30, 40})),
              std::make_tuple((size_t)0, (size_t)0, P({1, 2, 30, 40})));
    // Three points: one cubic with the middle point doubled. Only the control
    // point next to each end is tested for flatness, hence the asymmetry.
    EXPECT_EQ(open({0, 0, 50, 100, 100, 0}),
              P({0, 0, 17, 33, 30, 56, 40, 70, 45, 74, 50, 75, 55, 74, 60, 70, 70, 56, 100, 0}));
    // A straight cubic is flat at once: P0, the midpoint, P3.
    EXPECT_EQ(open({0, 0, 10, 0, 20, 0, 30, 0}), P({0, 0, 15, 0, 30, 0}));
}

TEST_F(Curve, OpenBezierCubics) {
    EXPECT_EQ(open({0, 0, 0, 100, 100, 100, 100, 0}),
              P({0,  0,  1,  18, 4,  33, 9,  46, 16, 56, 23, 64, 32, 70, 41, 74,  50,
                 75, 59, 74, 68, 70, 77, 64, 84, 56, 91, 46, 96, 33, 99, 18, 100, 0}));

    // Counted from the last start point, two points remain: a straight
    // segment, the shared point stored once.
    EXPECT_EQ(open({0, 0, 10, 0, 20, 0, 30, 0, 99, 99}), P({0, 0, 15, 0, 30, 0, 99, 99}));
    // Three remain: a cubic with a doubled middle point.
    EXPECT_EQ(open({0, 0, 10, 0, 20, 0, 30, 0, 40, 0, 50, 0}),
              P({0, 0, 15, 0, 30, 0, 40, 0, 50, 0}));
    // One remains: nothing more.
    EXPECT_EQ(open({0, 0, 10, 0, 20, 0, 30, 0, 40, 0, 50, 0, 60, 0}),
              P({0, 0, 15, 0, 30, 0, 45, 0, 60, 0}));
}

TEST_F(Curve, ClosedBezier) {
    EXPECT_EQ(std::make_pair(closed({5, 5}).size(), closed({1, 1, 9, 9})),
              std::make_pair((size_t)0, P({1, 1, 9, 9})));
    // One cubic, then the straight closing edge from the last point to the first.
    std::vector<Orv2dPoint> four = closed({0, 0, 0, 100, 100, 100, 100, 0});
    ASSERT_EQ(four.size(), 18u);
    EXPECT_EQ(std::vector<Orv2dPoint>(four.begin() + 16, four.end()), P({100, 0, 0, 0}));
    EXPECT_EQ(closed({0, 0, 40, 0, 40, 40, 0, 40, -20, 20}),
              P({0,  0,  13, 2,  23,  6,  28,  13, 30,  20, 28,  27, 23, 34,
                 13, 38, 0,  40, -11, 28, -14, 24, -15, 20, -11, 12, 0,  0}));
    // Three points: a cubic back to the start.
    EXPECT_EQ(closed({0, 0, 60, 0, 60, 60}),
              P({0, 0, 20, 2, 34, 8, 42, 16, 45, 23, 44, 25, 42, 26, 34, 25, 20, 17, 0, 0}));
}

TEST_F(Curve, SharedBufferGrows) {
    std::vector<Orv2dPoint> controls;
    for (int i = 0; i < 301; i++) controls.push_back(Orv2dPoint(i * 10, (i % 2) ? 400 : -400));
    unsigned n1 = 0, n2 = 0;
    Orv2dPoint* p1 = OrvCreateOpenBezier((unsigned)controls.size(), controls.data(), n1);
    EXPECT_EQ(p1[n1 - 1], controls.back());
    EXPECT_EQ(OrvCreateOpenBezier(2, controls.data(), n2), p1);  // the same storage, overwritten
}

// Hit tests answer as a string of 1 and 0, one character per point asked.
template <class Hit>
std::string hits(std::initializer_list<int> xy, Hit hit) {
    std::string s;
    for (const int* p = xy.begin(); p + 1 < xy.end(); p += 2)
        s += hit(Orv2dPoint(p[0], p[1])) ? '1' : '0';
    return s;
}

TEST_F(Curve, PointInLineTolerance) {
    auto flat = [](const Orv2dPoint& p) {
        return OrvPointInLine(p, Orv2dPoint(0, 0), Orv2dPoint(100, 0));
    };
    auto diagonal = [](const Orv2dPoint& p) {
        return OrvPointInLine(p, Orv2dPoint(0, 0), Orv2dPoint(100, 100));
    };
    auto dot = [](const Orv2dPoint& p) {
        return OrvPointInLine(p, Orv2dPoint(5, 5), Orv2dPoint(5, 5));
    };
    // f² ≤ 8·|ab|²: 2 pixels off is in, 3 out; the box is grown by 8 along the line.
    EXPECT_EQ("1101010", hits({50, 2, 50, -2, 50, 3, -8, 0, -9, 0, 108, 0, 109, 0}, flat));
    // A diagonal: distance 2.12 in, 2.83 on the edge in, 3.54 out.
    EXPECT_EQ("110", hits({52, 49, 52, 48, 53, 48}, diagonal));
    EXPECT_EQ("10", hits({13, 13, 14, 5}, dot));  // zero length: every point of the box
    OrvSetDeltaLine(0);
    EXPECT_EQ("100", hits({50, 0, 50, 1, 101, 0}, flat));
    OrvSetDeltaLine(32.5f);  // the box grows by the truncation, 32
    EXPECT_EQ("10", hits({132, 0, 133, 0}, flat));
    EXPECT_EQ(OrvGetDeltaLine(), 32.5f);
}

TEST_F(Curve, PolylineBezierAndPolygonHits) {
    // The index of the first segment hit, or -1.
    Orv2dPoint pts[] = {{0, 0}, {10, 0}, {10, 10}};
    EXPECT_EQ(std::vector<int>({0, 1, 0, -1}),
              std::vector<int>({OrvPointInPolyline(Orv2dPoint(5, 0), 3, pts),
                                OrvPointInPolyline(Orv2dPoint(10, 5), 3, pts),
                                OrvPointInPolyline(Orv2dPoint(10, 0), 3, pts),
                                OrvPointInPolyline(Orv2dPoint(0, 0), 1, pts)}));
    // Bezier indexes are those of flattened segments: (0,0) (15,0) (30,0) for a straight one.
    Orv2dPoint line[] = {{0, 0}, {10, 0}, {20, 0}, {30, 0}};
    Orv2dPoint arch[] = {{0, 0}, {0, 100}, {100, 100}, {100, 0}};
    EXPECT_EQ(std::vector<int>({-1, 0, 0, 1, -1, 7, -1}),
              std::vector<int>({OrvPointInBezier(Orv2dPoint(0, 0), 1, pts),
                                OrvPointInBezier(Orv2dPoint(5, 1), 2, pts),
                                OrvPointInBezier(Orv2dPoint(20, 0), 4, line),
                                OrvPointInBezier(Orv2dPoint(25, 0), 4, line),
                                OrvPointInBezier(Orv2dPoint(25, 9), 4, line),
                                OrvPointInBezier(Orv2dPoint(50, 75), 4, arch),
                                OrvPointInBezier(Orv2dPoint(50, 50), 4, arch)}));
    // A polygon answers the edge a point is on, n inside, -1 outside; the application's delta is
    // ignored and restored; a vertex is on an edge.
    Orv2dPoint sq[] = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
    auto in = [&](int x, int y) { return OrvPointInPolygon(Orv2dPoint(x, y), 4, sq); };
    OrvSetDeltaLine(5.5f);
    EXPECT_EQ(std::vector<int>({4, -1, -1, -1, 3, 1, 2, 3, 1}),
              std::vector<int>({in(5, 5), in(15, 5), in(-1, 5), in(11, 5), in(0, 5), in(5, 0),
                                in(10, 5), in(0, 0), in(10, 0)}));
    EXPECT_EQ(OrvGetDeltaLine(), 5.5f);
    // A concave polygon: the notch is outside. A ray through a vertex counts once.
    Orv2dPoint u[] = {{0, 0}, {30, 0}, {30, 30}, {20, 30}, {20, 10}, {10, 10}, {10, 30}, {0, 30}};
    Orv2dPoint diamond[] = {{10, 0}, {20, 10}, {10, 20}, {0, 10}};
    EXPECT_EQ(std::vector<int>({-1, 8, 8, 4, -1, -1}),
              std::vector<int>({OrvPointInPolygon(Orv2dPoint(15, 20), 8, u),
                                OrvPointInPolygon(Orv2dPoint(5, 20), 8, u),
                                OrvPointInPolygon(Orv2dPoint(15, 5), 8, u),
                                OrvPointInPolygon(Orv2dPoint(5, 10), 4, diamond),
                                OrvPointInPolygon(Orv2dPoint(-5, 10), 4, diamond),
                                OrvPointInPolygon(Orv2dPoint(0, 0), 4, diamond)}));
    // A filled Bezier: two points make a degenerate polygon; 17 is the closing edge.
    Orv2dPoint blob[] = {{0, 0}, {0, 100}, {100, 100}, {100, 0}};
    EXPECT_EQ(std::vector<int>({-1, 1, 18, -1, 17}),
              std::vector<int>({OrvPointInFilledBezier(Orv2dPoint(5, 5), 2, sq),
                                OrvPointInFilledBezier(Orv2dPoint(5, 0), 2, sq),
                                OrvPointInFilledBezier(Orv2dPoint(50, 40), 4, blob),
                                OrvPointInFilledBezier(Orv2dPoint(50, 80), 4, blob),
                                OrvPointInFilledBezier(Orv2dPoint(50, 0), 4, blob)}));
}

TEST_F(Curve, IntersectHorizontalIsHalfOpen) {
    const Orv2dPoint a(10, 0), b(10, 10);
    auto down = [&](const Orv2dPoint& p) { return OrvIntersectHorizontal(p, a, b); };
    auto up = [&](const Orv2dPoint& p) { return OrvIntersectHorizontal(p, b, a); };
    auto slant = [](const Orv2dPoint& p) {
        return OrvIntersectHorizontal(p, Orv2dPoint(0, 0), Orv2dPoint(10, 10));
    };
    EXPECT_EQ("1010", hits({5, 5, 15, 5, 5, 0, 5, 10}, down));
    EXPECT_EQ("1010", hits({5, 5, 15, 5, 5, 0, 5, 10}, up));
    EXPECT_EQ("10", hits({4, 5, 6, 5}, slant));  // the side of the point decides
    EXPECT_FALSE(OrvIntersectHorizontal(Orv2dPoint(0, 3), Orv2dPoint(5, 3), Orv2dPoint(9, 3)));
}

TEST_F(Curve, ArrowHeads) {
    const struct {
        int fx, fy, tx, ty;
        float size;
        std::vector<Orv2dPoint> head;
    } cases[] = {
        {0, 0, 100, 0, 1, P({100, 0, 92, -4, 92, 4})},
        {0, 0, 100, 0, 0.5f, P({50, 0, 46, -4, 46, 4})},  // the head shrinks too
        {100, 0, 0, 0, 1, P({0, 0, 8, -4, 8, 4})},
        {0, 0, -5, 0, 0.5f, P({-3, 0, 2, -4, 2, 4})},  // -2.5 goes to -3, 1.5 to 2
        {0, 0, 0, 100, 1, P({0, 100, 4, 92, -4, 92})},
        {3, 50, 3, 0, 1, P({3, 0, 7, 8, -1, 8})},
        {0, 0, 30, 40, 1, P({30, 40, 22, 36, 28, 32})},  // base (25.2, 33.6) ∓ (3, 2)
        {10, 10, -20, -30, 0.5f, P({-5, -10, 0, -9, -6, -5})},
    };
    Orv2dPoint out[3];
    for (const auto& c : cases) {
        OrvComputeArrow(Orv2dPoint(c.fx, c.fy), Orv2dPoint(c.tx, c.ty), c.size, out);
        EXPECT_EQ(c.head, std::vector<Orv2dPoint>(out, out + 3)) << c.tx << "," << c.ty;
    }
    OrvSetArrowDelta(20, 10);
    OrvComputeArrow(Orv2dPoint(0, 0), Orv2dPoint(100, 0), 1, out);
    EXPECT_EQ(P({100, 0, 80, -10, 80, 10}), std::vector<Orv2dPoint>(out, out + 3));
}

TEST_F(Curve, ArcBoundingBox) {
    const struct {
        Orv2dRect r;
        float from, to;
        Orv2dRect box;
    } cases[] = {
        {{0, 0, 100, 50}, 0, 360, {0, 0, 100, 50}},  {{0, 0, 100, 50}, 0, 90, {50, 0, 50, 25}},
        {{0, 0, 100, 50}, 90, 180, {0, 0, 50, 25}},  {{0, 0, 100, 50}, 180, 270, {0, 25, 50, 25}},
        {{0, 0, 100, 100}, 0, 45, {85, 15, 15, 35}},  // (100,50) and (85,15)
        {{7, 9, 0, 0}, 45, 45, {7, 9, 1, 1}},         // a point: 1 by 1
        {{0, 0, 100, 50}, 0, 0, {100, 25, 1, 1}},     // a horizontal nothing
    };
    Orv2dRect out;
    for (const auto& c : cases) {
        OrvComputeArcBBox(c.r, c.from, c.to, out);
        EXPECT_EQ(out, c.box) << c.from << ".." << c.to;
    }
    OrvComputeArcBBox(Orv2dRect(0, 0, 100, 100), 300, 420, out);  // passes 360
    // 90 is not within 300..420: the top is the end point's.
    EXPECT_EQ(std::make_pair(out.x + (int)out.w, out.y), std::make_pair(100, 7));
    OrvComputeArcBBox(Orv2dRect(0, 0, 100, 100), 300, 460, out);  // end > 450
    EXPECT_EQ(out.y, 0);
}

TEST_F(Curve, PointInArc) {
    const Orv2dRect r(0, 0, 100, 100);
    auto arc = [&](float from, float to) {
        return [&r, from, to](const Orv2dPoint& p) { return OrvPointInArc(p, r, from, to); };
    };
    // On the ring within 8, not in the middle, not outside the rectangle.
    EXPECT_EQ("110100", hits({100, 50, 50, 3, 50, 50, 92, 50, 91, 50, 101, 50}, arc(0, 360)));
    EXPECT_FALSE(OrvPointInArc(Orv2dPoint(0, 0), Orv2dRect(0, 0, 10, 0), 0, 360));
    // A quarter, counter-clockwise on the screen from 3 o'clock to 12; three quarters (the
    // branch of 180 or more); (3, 67) lies at about 200 degrees.
    EXPECT_EQ("1000", hits({85, 15, 15, 15, 85, 85, 3, 67}, arc(0, 90)));
    EXPECT_EQ("1101", hits({15, 15, 3, 67, 85, 85, 3, 50}, arc(0, 270)));
    EXPECT_EQ("0", hits({3, 67}, arc(180, 190)));
    EXPECT_EQ("1", hits({3, 67}, arc(190, 210)));
    // A half turn takes the branch of 180 or more: both ends are in.
    EXPECT_EQ("1110", hits({3, 50, 97, 50, 50, 3, 50, 97}, arc(0, 180)));
    // An ellipse: the y distance is scaled by rx/ry, so 8 is 16 in x units.
    EXPECT_TRUE(OrvPointInArc(Orv2dPoint(50, 0), Orv2dRect(0, 0, 100, 50), 0, 360));
    EXPECT_FALSE(OrvPointInArc(Orv2dPoint(50, 8), Orv2dRect(0, 0, 100, 50), 0, 360));
    OrvSetDeltaLine(1);
    EXPECT_FALSE(OrvPointInArc(Orv2dPoint(50, 3), r, 0, 360));
}

TEST_F(Curve, PointInFilledArc) {
    const Orv2dRect r(0, 0, 100, 100);
    auto pie = [&](float to) {
        return [&r, to](const Orv2dPoint& p) {
            return OrvPointInFilledArc(p, r, 0, to, OrvArcPieSlice);
        };
    };
    // Next to the centre, outside the chord, a chord answers like a pie.
    EXPECT_EQ("1010", hits({60, 40, 40, 40, 55, 45, 50, 60}, pie(90)));
    EXPECT_TRUE(OrvPointInFilledArc(Orv2dPoint(55, 45), r, 0, 90, OrvArcChord));
    EXPECT_EQ("10", hits({50, 60, 101, 50}, pie(360)));
    // The ellipse test with the delta added to both half axes: 35² + 35² = 2450 is in, 2521 out;
    // with 8, 3200 ≤ 3364 is in and 3528 out.
    OrvSetDeltaLine(0);
    EXPECT_EQ("101", hits({85, 15, 86, 15, 100, 50}, pie(360)));
    OrvSetDeltaLine(8);
    EXPECT_EQ("10", hits({90, 10, 92, 8}, pie(360)));
}
