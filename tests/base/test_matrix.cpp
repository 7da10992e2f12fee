// The 2D matrix of stages and the 4x4 matrix of the 3D side.
#include "orv/geometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace {

// The diagonal and unit flags, as "du" with a dash for a flag not set.
std::string flags(const Orv2dMatrix& m) {
    return std::string(m.diagonal ? "d" : "-") + (m.unit ? "u" : "-");
}

Orv2dPoint applied(const Orv2dMatrix& m, int x, int y) {
    Orv2dPoint p(x, y);
    m.apply(p);
    return p;
}

Orv3dPoint applied(const Orv3dMatrix& m, float x, float y, float z) {
    Orv3dPoint p(x, y, z);
    m.apply(p);
    return p;
}

void expectNear(const Orv3dPoint& a, const Orv3dPoint& b, float tol = 1e-5f) {
    EXPECT_NEAR(a.x, b.x, tol);
    EXPECT_NEAR(a.y, b.y, tol);
    EXPECT_NEAR(a.z, b.z, tol);
}

void expectNear(const Orv3dMatrix& a, const Orv3dMatrix& b, float tol) {
    for (int i = 0; i < 16; i++) EXPECT_NEAR(a.m[i], b.m[i], tol) << "element " << i;
}

}  // namespace

TEST(Matrix2d, FlagsFollowTheFloats) {
    Orv2dMatrix id;
    EXPECT_EQ(std::make_tuple(flags(id), id.isIdentity(), id.isBad(), id.det),
              std::make_tuple(std::string("du"), true, false, 1.0));
    // Off-diagonal terms must be below 1e-12; the diagonal may be 0.0001 from 1.
    Orv2dMatrix m(1.00005f, 0, 0, 0.99995f, 0, 0);
    EXPECT_EQ(flags(m), "du");
    Orv2dPoint size(20000, 20000);
    m.deltaApply(size);  // unit: nothing at all
    EXPECT_EQ(size, Orv2dPoint(20000, 20000));
    EXPECT_EQ(applied(m, 20000, 20000), Orv2dPoint(20001, 19999));  // apply still multiplies
    m.setValues(1.0002f, 0, 0, 1);
    EXPECT_EQ(flags(m), "d-");
    m.setValues(1, 1e-13f, 0, 1);
    EXPECT_EQ(flags(m), "du");
    m.setValues(1, 0, 1e-11f, 1);
    EXPECT_EQ(flags(m), "--");
    // det is the single-precision a·d − b·c, widened.
    m.setValues(0.1f, 0, 0, 0.3f);
    EXPECT_EQ(m.det, (double)(0.1f * 0.3f));
    // A unit matrix may hold a translation; the identity may not.
    Orv2dMatrix t(Orv2dPoint(5, 0));
    EXPECT_EQ(std::make_pair(flags(t), t.isIdentity()), std::make_pair(std::string("du"), false));
    t.setValues(1e-13f, -1e-13f);
    EXPECT_TRUE(t.isIdentity());
}

TEST(Matrix2d, ApplyRoundsHalfAwayFromZero) {
    const Orv2dMatrix half(0.5f, 0.5f), fifth(0.2f, 0.2f), shear(0.5f, 0.25f, 0, 0.5f, 0, 0);
    EXPECT_FALSE(shear.diagonal);
    const struct {
        const Orv2dMatrix* m;
        int x, y, ex, ey;
    } cases[] = {{&half, 1, -1, 1, -1},    {&half, 3, -3, 2, -2}, {&fifth, -2, 2, 0, 0},
                 {&shear, -1, -2, -1, -1}, {&shear, 1, 2, 1, 1},  {&shear, -3, 0, -2, 0}};
    for (const auto& c : cases)
        EXPECT_EQ(applied(*c.m, c.x, c.y), Orv2dPoint(c.ex, c.ey)) << c.x << "," << c.y;
    Orv2dPoint s(-3, 5);  // deltaApply ignores the translation
    Orv2dMatrix(0.5f, 0, 0, 0.5f, 100, 100).deltaApply(s);
    EXPECT_EQ(s, Orv2dPoint(-2, 3));
}

TEST(Matrix2d, RotationScaleAndTranslationConstructors) {
    // Angles go through 3.14, not pi: a half turn is a little short.
    Orv2dMatrix half(Orv2dPoint(0, 0), 180);
    EXPECT_EQ(std::make_pair(half.a, half.c),
              std::make_pair((float)std::cos(3.14), (float)std::sin(3.14)));
    EXPECT_EQ(applied(half, 1000, 0), Orv2dPoint(-1000, 2));
    Orv2dMatrix quarter(Orv2dPoint(10, 10), 90);
    EXPECT_FLOAT_EQ(quarter.tx, 19.992035f);
    EXPECT_EQ(std::make_pair(applied(quarter, 10, 10), applied(quarter, 20, 10)),
              std::make_pair(Orv2dPoint(10, 10), Orv2dPoint(10, 20)));
    // Only the two corners of a rectangle are mapped: not the true box under rotation.
    Orv2dRect r(0, 0, 10, 10);
    Orv2dMatrix(Orv2dPoint(0, 0), 45).apply(r);
    EXPECT_EQ(r, Orv2dRect(0, 0, 0, 14));
    // Scaling about a centre keeps it; a mirror swaps the corners back into order.
    Orv2dPoint c(10, 20);
    Orv2dMatrix s(2, 3, &c);
    EXPECT_EQ(Orv2dPoint(-10, -40), Orv2dPoint(s.tx, s.ty));
    EXPECT_EQ(applied(s, 10, 20), c);
    Orv2dRect m(1, 1, 2, 2);
    Orv2dMatrix(-1, 1).apply(m);
    EXPECT_EQ(m, Orv2dRect(-3, 1, 2, 2));
}

TEST(Matrix2d, ComposeAppliesTheArgumentAfter) {
    Orv2dMatrix m(Orv2dPoint(5, 0));
    m.compose(Orv2dMatrix(2, 2));
    // 2·(1 + 5), not 2·1 + 5.
    EXPECT_EQ(std::make_tuple(applied(m, 1, 1), flags(m), m.det),
              std::make_tuple(Orv2dPoint(12, 2), std::string("d-"), 4.0));
    Orv2dMatrix sh(1, 0.5f, 0, 1, 0, 0);
    sh.compose(Orv2dMatrix(1, -0.5f, 0, 1, 0, 0));
    // The flags are recomputed from the product.
    EXPECT_EQ(std::make_pair(flags(sh), sh.isIdentity()), std::make_pair(std::string("du"), true));
}

TEST(Matrix2d, Inverses) {
    Orv2dMatrix out;
    ASSERT_TRUE(Orv2dMatrix(2, 0, 0, 4, 10, 20).computeInverse(out));
    EXPECT_EQ(std::vector<float>({0.5f, 0.25f, -5, -5}),
              std::vector<float>({out.a, out.d, out.tx, out.ty}));
    EXPECT_EQ(std::make_pair(out.det, flags(out)), std::make_pair(0.125, std::string("d-")));
    ASSERT_TRUE(Orv2dMatrix(1.00005f, 0, 0, 1, 3, 0).computeInverse(out));
    EXPECT_EQ(flags(out), "du");
    Orv2dMatrix rot(Orv2dPoint(3, 4), 30);
    ASSERT_TRUE(rot.computeInverse(out));
    EXPECT_EQ(out.det, 1 / rot.det);  // not recomputed from the new floats
    // Points and rectangles: 0.5 goes to 1, -0.5 to -1.
    Orv2dMatrix two(2, 0, 0, 2, 1, 1);
    Orv2dPoint p(2, 0), q(3, 2);
    Orv2dRect r(2, 4, 6, 8);
    EXPECT_EQ(std::make_tuple(two.inverse(p), two.inverse(r),
                              Orv2dMatrix(1, 0.5f, 0, 1, 0, 0).inverse(q)),
              std::make_tuple(true, true, true));
    EXPECT_EQ(std::make_tuple(p, r, q),
              std::make_tuple(Orv2dPoint(1, -1), Orv2dRect(1, 2, 3, 4), Orv2dPoint(2, 2)));
}

TEST(Matrix2d, InverseOfABadMatrixReportsAndKeepsItsArgument) {
    Orv2dMatrix bad(1e-7f, 0, 0, 1e-6f, 0, 0);  // det 1e-13
    EXPECT_TRUE(bad.isBad());
    Orv2dMatrix kept(1, 2, 3, 4, 5, 6);
    EXPECT_FALSE(bad.computeInverse(kept));
    EXPECT_EQ(std::vector<float>({1, 6}), std::vector<float>({kept.a, kept.ty}));
    char expected[128];
    Orv2dPoint p(3, 4);
    Orv2dRect r(1, 2, 3, 4);
    for (const char* form : {"Orv2dPoint", "Orv2dRect"}) {
        std::snprintf(expected, sizeof expected, "Orv2dMatrix::inverse(%s&): bad transformer %x",
                      form, (unsigned)(uintptr_t)&bad);
        testing::internal::CaptureStdout();
        EXPECT_FALSE(form[5] == 'P' ? bad.inverse(p) : bad.inverse(r));
        EXPECT_EQ(testing::internal::GetCapturedStdout(), expected);
    }
    EXPECT_EQ(std::make_pair(p, r), std::make_pair(Orv2dPoint(3, 4), Orv2dRect(1, 2, 3, 4)));
}

TEST(Matrix2d, Compute2dMatrix) {
    Orv2dMatrix m = OrvCompute2dMatrix(Orv2dRect(10, 10, 100, 50), Orv2dRect(0, 0, 200, 200));
    EXPECT_EQ(std::vector<float>({2, 4, -20, -40}), std::vector<float>({m.a, m.d, m.tx, m.ty}));
    Orv2dMatrix z = OrvCompute2dMatrix(Orv2dRect(5, 5, 0, 10), Orv2dRect(7, 0, 30, 20));
    EXPECT_EQ(std::vector<float>({1, 2, 2, -10}), std::vector<float>({z.a, z.d, z.tx, z.ty}))
        << "a zero source width scales by 1";
    Orv2dMatrix huge = OrvCompute2dMatrix(Orv2dRect(0, 0, 1, 1), Orv2dRect(0, 0, 3000000000u, 1));
    EXPECT_EQ(huge.a, 3e9f);  // widths are unsigned
}

TEST(Matrix3d, ConstructionIsRowMajor) {
    Orv3dMatrix zero(0ul);
    float v[16];
    for (int i = 0; i < 16; i++) v[i] = (float)i;
    zero.copy(v);
    EXPECT_EQ(zero(1, 2), 6.0f);
    EXPECT_EQ(Orv3dMatrix(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15), Orv3dMatrix(v));
}

TEST(Matrix3d, RotationsAndAccumulation) {
    const float s = (float)std::sin(90 * 0.017453292519943295);
    Orv3dMatrix m;
    m.rotateZ(90);
    EXPECT_EQ(std::vector<float>({m(0, 1), m(1, 0)}), std::vector<float>({-s, s}));
    expectNear(applied(m, 1, 0, 0), Orv3dPoint(0, 1, 0));
    m.rotateX(90);  // replaced, not accumulated
    expectNear(applied(m, 0, 1, 0), Orv3dPoint(0, 0, 1));
    // Accumulating puts the step after: translated first, then turned.
    m.translate(1, 0, 0);
    m.rotateZ(90, 1);
    expectNear(applied(m, 0, 0, 0), Orv3dPoint(0, 1, 0));
    Orv3dMatrix t;
    t.scale(2, 2, 2);
    t.translate(5, 6, 7, 1);
    EXPECT_EQ(t, Orv3dMatrix(2, 0, 0, 5, 0, 2, 0, 6, 0, 0, 2, 7, 0, 0, 0, 1));
    // About an axis: its direction only, the rotation passes through the origin.
    Orv3dMatrix a;
    a.rotate(Orv3dPoint(5, 5, 0), Orv3dPoint(5, 5, 3), 90);
    Orv3dMatrix z;
    z.rotateZ(90);
    expectNear(a, z, 1e-6f);
    Orv3dMatrix kept = t;
    testing::internal::CaptureStdout();
    kept.rotate(Orv3dPoint(1, 2, 3), Orv3dPoint(1, 2, 3), 45);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Orv3dMatrix::rotate : Bad axis.");
    EXPECT_EQ(kept, t);
}

TEST(Matrix3d, ApplyDividesByWAndTransposes) {
    Orv3dMatrix persp(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 1, 0);
    // w = 0: unchanged.
    EXPECT_EQ(std::make_pair(applied(persp, 2, 4, 2), applied(persp, 1, 1, 0)),
              std::make_pair(Orv3dPoint(1, 2, 1), Orv3dPoint(1, 1, 0)));
    Orv4dPoint h(1, 2, 2, 1);
    persp.apply(h);  // no division
    EXPECT_EQ(h, Orv4dPoint(1, 2, 2, 2));
    // |m33 − 1| below 1e-6: affine, no division.
    Orv3dMatrix almost, beyond;
    almost(3, 3) = 1.0000005f;
    beyond(3, 3) = 1.000002f;
    EXPECT_EQ(applied(almost, 1e6f, 0, 0).x, 1e6f);
    EXPECT_LT(applied(beyond, 1e6f, 0, 0).x, 999999.0f);
    Orv3dMatrix m(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    m.transpose(m);  // in place
    EXPECT_EQ(m, Orv3dMatrix(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15));
}

TEST(Matrix3d, InverseMultiplyAndDeterminants) {
    Orv3dMatrix m(2, 1, 0, 3, 1, 3, 2, 0, 0, 1, 4, 1, 5, 0, 1, 2), inv;
    ASSERT_TRUE(m.inverse(inv));
    expectNear(m * inv, Orv3dMatrix(), 1e-5f);
    EXPECT_EQ(std::vector<float>({-136, 16}), std::vector<float>({m.det4(), m.det3()}));
    // A zero first entry needs a row swap; no tolerance: a tiny pivot goes on to large values.
    Orv3dMatrix swap(0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);
    ASSERT_TRUE(swap.inverse(inv));
    EXPECT_EQ(inv, swap);
    ASSERT_TRUE(Orv3dMatrix(1e-20f, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1).inverse(inv));
    EXPECT_FLOAT_EQ(inv(0, 0), 1e20f);
    Orv3dMatrix singular(1, 2, 3, 4, 2, 4, 6, 8, 0, 0, 1, 0, 0, 0, 0, 1), kept(0ul);
    EXPECT_FALSE(singular.inverse(kept));
    EXPECT_EQ(kept, Orv3dMatrix(0ul));
    Orv3dMatrix t, s;
    t.translate(1, 0, 0);
    s.scale(2, 2, 2);
    EXPECT_EQ(applied(t * s, 1, 1, 1), Orv3dPoint(3, 2, 2));  // scaled first, then translated
    s *= t;
    EXPECT_EQ(applied(s, 1, 1, 1), Orv3dPoint(4, 2, 2));
}

TEST(Matrix3d, BuildDecomposeAndCompute) {
    const Orv3dPoint c(1, 2, 3);
    const Orv3dVector t(10, -4, 6), s(2, 0.5f, 3);
    Orv3dMatrix built, steps;
    built.build(c, t, 25, -40, 110, s);
    steps.translate(-c.x, -c.y, -c.z);
    steps.scale(s.x, s.y, s.z, 1);
    steps.rotateX(25, 1);
    steps.rotateY(-40, 1);
    steps.rotateZ(110, 1);
    steps.translate(t.x + c.x, t.y + c.y, t.z + c.z, 1);
    expectNear(built, steps, 1e-4f);
    // Decompose gives the steps back, also from a scaled copy (it divides by m33 first); a
    // perspective row is handed back through the inverse; a flat matrix does not decompose.
    Orv3dMatrix m, flat, proj;
    m.build(Orv3dPoint(0, 0, 0), Orv3dVector(5, 6, 7), 10, 20, 30, Orv3dVector(2, 3, 4));
    for (float& e : m.m) e *= 2;
    Orv3dVector scale, shear;
    double rx, ry, rz;
    Orv3dPoint tr;
    Orv4dPoint persp(9, 9, 9, 9);
    ASSERT_EQ(m.decompose(scale, shear, rx, ry, rz, tr, persp), 1);
    expectNear(Orv3dPoint(scale.x, scale.y, scale.z), Orv3dPoint(2, 3, 4));
    expectNear(Orv3dPoint(rx, ry, rz), Orv3dPoint(10, 20, 30), 1e-3f);
    EXPECT_EQ(std::make_pair(tr, persp),
              std::make_pair(Orv3dPoint(5, 6, 7), Orv4dPoint(0, 0, 0, 0)));
    proj(3, 2) = 0.5f;
    ASSERT_EQ(proj.decompose(scale, shear, rx, ry, rz, tr, persp), 1);
    EXPECT_EQ(persp, Orv4dPoint(0, 0, 0.5f, 1));
    flat.scale(1, 0, 1);
    EXPECT_EQ(flat.decompose(scale, shear, rx, ry, rz, tr, persp), 0);
    // The matrix between two volumes maps centre to centre; a zero extent scales by 1.
    Orv3dVolume from(0, 0, 0, 2, 2, 2), to(10, 10, 10, 4, 6, 8);
    Orv3dMatrix fit = OrvCompute3dMatrix(from, to, 0, 0, 0);
    EXPECT_EQ(applied(fit, 1, 1, 1), to.center());
    EXPECT_EQ(std::vector<float>({2, 3, 4}), std::vector<float>({fit(0, 0), fit(1, 1), fit(2, 2)}));
    EXPECT_EQ(OrvCompute3dMatrix(Orv3dVolume(0, 0, 0, 0, 2, 2), to, 0, 0, 0)(0, 0), 1);
    expectNear(applied(OrvCompute3dMatrix(from, from, 0, 0, 90), 2, 1, 1), Orv3dPoint(1, 2, 1));
}
