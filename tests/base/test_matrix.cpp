// The 2D matrix of stages and the 4×4 matrix of the 3D side.
#include "orv/geometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>

static std::string badTransformer(const char* form, const Orv2dMatrix& m) {
    char buf[128];
    std::snprintf(buf, sizeof buf, "Orv2dMatrix::inverse(%s&): bad transformer %x", form,
                  (unsigned)(uintptr_t)&m);
    return buf;
}

TEST(Matrix2d, DefaultIsIdentityWithBothFlags) {
    Orv2dMatrix m;
    EXPECT_EQ(m.det, 1.0);
    EXPECT_TRUE(m.unit);
    EXPECT_TRUE(m.diagonal);
    EXPECT_TRUE(m.isIdentity());
    EXPECT_FALSE(m.isBad());
    Orv2dPoint p(-7, 9);
    m.apply(p);
    EXPECT_EQ(p, Orv2dPoint(-7, 9));
}

TEST(Matrix2d, FlagsFollowTheFloats) {
    // Off-diagonal terms must be below 1e-12; the diagonal may be 0.0001 from 1.
    Orv2dMatrix m(1.00005f, 0, 0, 0.99995f, 0, 0);
    EXPECT_TRUE(m.diagonal);
    EXPECT_TRUE(m.unit);
    Orv2dPoint size(20000, 20000);
    m.deltaApply(size);  // unit: nothing at all
    EXPECT_EQ(size, Orv2dPoint(20000, 20000));
    Orv2dPoint p(20000, 20000);
    m.apply(p);  // apply still multiplies
    EXPECT_EQ(p, Orv2dPoint(20001, 19999));

    m.setValues(1.0002f, 0, 0, 1);
    EXPECT_TRUE(m.diagonal);
    EXPECT_FALSE(m.unit);
    m.setValues(1, 1e-13f, 0, 1);
    EXPECT_TRUE(m.diagonal);
    EXPECT_TRUE(m.unit);
    m.setValues(1, 0, 1e-11f, 1);
    EXPECT_FALSE(m.diagonal);
    EXPECT_FALSE(m.unit);

    // det is the single-precision a·d − b·c, widened.
    m.setValues(3, 2, 1.5f, 4);
    EXPECT_EQ(m.det, 9.0);
    m.setValues(0.1f, 0, 0, 0.3f);
    EXPECT_EQ(m.det, (double)(0.1f * 0.3f));

    // A unit matrix may hold a translation; the identity may not.
    Orv2dMatrix t(Orv2dPoint(5, 0));
    EXPECT_TRUE(t.unit);
    EXPECT_FALSE(t.isIdentity());
    t.setValues(1e-13f, -1e-13f);
    EXPECT_TRUE(t.isIdentity());
    float a, b, c, d, tx, ty;
    t.getValues(a, b, c, d, tx, ty);
    EXPECT_EQ(a, 1);
    EXPECT_EQ(tx, 1e-13f);
    EXPECT_EQ(ty, -1e-13f);

    // The four-value form leaves the translation alone.
    Orv2dMatrix k(1, 0, 0, 1, 7, 8);
    k.setValues(2, 0, 0, 2);
    k.getValues(tx, ty);
    EXPECT_EQ(tx, 7);
    EXPECT_EQ(ty, 8);
    EXPECT_FALSE(k.unit);
}

TEST(Matrix2d, ApplyRoundsHalfAwayFromZero) {
    Orv2dMatrix half(0.5f, 0.5f);
    Orv2dPoint p(1, -1);
    half.apply(p);
    EXPECT_EQ(p, Orv2dPoint(1, -1));
    p = Orv2dPoint(3, -3);
    half.apply(p);
    EXPECT_EQ(p, Orv2dPoint(2, -2));
    Orv2dMatrix fifth(0.2f, 0.2f);
    p = Orv2dPoint(-2, 2);  // -0.4 goes to 0, not to -1
    fifth.apply(p);
    EXPECT_EQ(p, Orv2dPoint(0, 0));

    // The same through the non-diagonal branch.
    Orv2dMatrix shear(0.5f, 0.25f, 0, 0.5f, 0, 0);
    EXPECT_FALSE(shear.diagonal);
    p = Orv2dPoint(-1, -2);  // x: -0.5 - 0.5 = -1, y: -1
    shear.apply(p);
    EXPECT_EQ(p, Orv2dPoint(-1, -1));
    p = Orv2dPoint(1, 2);
    shear.apply(p);
    EXPECT_EQ(p, Orv2dPoint(1, 1));
    p = Orv2dPoint(-3, 0);  // -1.5 and 0
    shear.apply(p);
    EXPECT_EQ(p, Orv2dPoint(-2, 0));

    Orv2dPoint s(-3, 5);  // deltaApply ignores the translation
    Orv2dMatrix st(0.5f, 0, 0, 0.5f, 100, 100);
    st.deltaApply(s);
    EXPECT_EQ(s, Orv2dPoint(-2, 3));
}

TEST(Matrix2d, RotationUsesThreePointOneFour) {
    Orv2dMatrix half(Orv2dPoint(0, 0), 180);
    const float cs = (float)std::cos(180 * 3.14 / 180), sn = (float)std::sin(180 * 3.14 / 180);
    EXPECT_EQ(half.a, cs);
    EXPECT_EQ(half.b, -sn);
    EXPECT_EQ(half.c, sn);
    EXPECT_EQ(half.d, cs);
    EXPECT_NE(half.a, -1.0f);  // a little short of a true half turn
    EXPECT_FALSE(half.diagonal);
    Orv2dPoint p(1000, 0);
    half.apply(p);
    EXPECT_EQ(p, Orv2dPoint(-1000, 2));  // a true pi would give y 0

    Orv2dPoint c(10, 10);
    Orv2dMatrix quarter(c, 90);
    EXPECT_FLOAT_EQ(quarter.tx, 19.992035f);
    EXPECT_FLOAT_EQ(quarter.ty, -0.0079603195f);
    Orv2dPoint centre = c;
    quarter.apply(centre);
    EXPECT_EQ(centre, c);
    Orv2dPoint q(20, 10);
    quarter.apply(q);
    EXPECT_EQ(q, Orv2dPoint(10, 20));  // counter-clockwise in y-down terms is x toward y

    // Only the two corners are mapped: not the true box under rotation.
    Orv2dMatrix eighth(Orv2dPoint(0, 0), 45);
    Orv2dRect r(0, 0, 10, 10);
    eighth.apply(r);
    EXPECT_EQ(r, Orv2dRect(0, 0, 0, 14));
}

TEST(Matrix2d, ScaleAndTranslationConstructors) {
    Orv2dPoint c(10, 20);
    Orv2dMatrix s(2, 3, &c);
    EXPECT_EQ(s.tx, -10);
    EXPECT_EQ(s.ty, -40);
    Orv2dPoint p = c;
    s.apply(p);
    EXPECT_EQ(p, c);
    Orv2dMatrix plain(2, 3);
    EXPECT_EQ(plain.tx, 0);
    EXPECT_EQ(plain.ty, 0);
    EXPECT_EQ(plain.det, 6.0);
    Orv2dMatrix t(Orv2dPoint(-4, 6));
    Orv2dRect r(1, 1, 2, 2);
    t.apply(r);
    EXPECT_EQ(r, Orv2dRect(-3, 7, 2, 2));
    Orv2dRect m(1, 1, 2, 2);  // a mirror swaps the corners back into order
    Orv2dMatrix(-1, 1).apply(m);
    EXPECT_EQ(m, Orv2dRect(-3, 1, 2, 2));
}

TEST(Matrix2d, ComposeAppliesTheArgumentAfter) {
    Orv2dMatrix m(Orv2dPoint(5, 0));
    m.compose(Orv2dMatrix(2, 2));
    Orv2dPoint p(1, 1);
    m.apply(p);
    EXPECT_EQ(p, Orv2dPoint(12, 2));  // 2·(1 + 5), not 2·1 + 5
    EXPECT_FALSE(m.unit);
    EXPECT_TRUE(m.diagonal);
    EXPECT_EQ(m.det, 4.0);

    Orv2dMatrix r(Orv2dPoint(0, 0), 30);
    m.compose(r);
    EXPECT_FALSE(m.diagonal);
    Orv2dMatrix sh(1, 0.5f, 0, 1, 0, 0);
    EXPECT_FALSE(sh.diagonal);
    sh.compose(Orv2dMatrix(1, -0.5f, 0, 1, 0, 0));
    EXPECT_TRUE(sh.diagonal);  // flags recomputed from the product
    EXPECT_TRUE(sh.unit);
    EXPECT_TRUE(sh.isIdentity());
}

TEST(Matrix2d, ComputeInverse) {
    Orv2dMatrix m(2, 0, 0, 4, 10, 20);
    Orv2dMatrix out;
    ASSERT_TRUE(m.computeInverse(out));
    EXPECT_EQ(out.a, 0.5f);
    EXPECT_EQ(out.d, 0.25f);
    EXPECT_EQ(out.tx, -5);
    EXPECT_EQ(out.ty, -5);
    EXPECT_EQ(out.det, 0.125);
    EXPECT_TRUE(out.diagonal);
    EXPECT_FALSE(out.unit);

    Orv2dMatrix near(1.00005f, 0, 0, 1, 3, 0);
    ASSERT_TRUE(near.computeInverse(out));
    EXPECT_TRUE(out.unit);

    Orv2dMatrix rot(Orv2dPoint(3, 4), 30);
    ASSERT_TRUE(rot.computeInverse(out));
    EXPECT_FALSE(out.diagonal);
    EXPECT_EQ(out.det, 1 / rot.det);  // not recomputed from the new floats
    EXPECT_EQ(out.a, (float)(rot.d / rot.det));
    EXPECT_EQ(out.b, (float)(-rot.b / rot.det));
    EXPECT_EQ(out.tx, (float)((rot.b * rot.ty - rot.d * rot.tx) / rot.det));

    Orv2dMatrix bad(1e-7f, 0, 0, 1e-6f, 0, 0);
    EXPECT_TRUE(bad.isBad());
    Orv2dMatrix kept(1, 2, 3, 4, 5, 6);
    EXPECT_FALSE(bad.computeInverse(kept));
    EXPECT_EQ(kept.a, 1);
    EXPECT_EQ(kept.ty, 6);
}

TEST(Matrix2d, InverseOfPointsAndRects) {
    Orv2dMatrix s(3, 3);
    Orv2dPoint p(7, -5);
    s.apply(p);
    EXPECT_EQ(p, Orv2dPoint(21, -15));
    EXPECT_TRUE(s.inverse(p));
    EXPECT_EQ(p, Orv2dPoint(7, -5));

    Orv2dMatrix two(2, 0, 0, 2, 1, 1);
    p = Orv2dPoint(2, 0);  // (1, -1)/2: 0.5 → 1, -0.5 → -1
    EXPECT_TRUE(two.inverse(p));
    EXPECT_EQ(p, Orv2dPoint(1, -1));

    Orv2dMatrix rot(Orv2dPoint(50, 50), 37);
    for (int x = -40; x <= 140; x += 45) {
        for (int y = -40; y <= 140; y += 45) {
            Orv2dPoint q(x, y);
            rot.apply(q);
            rot.inverse(q);
            EXPECT_LE(std::abs(q.x - x), 1);
            EXPECT_LE(std::abs(q.y - y), 1);
        }
    }
    Orv2dMatrix shear(1, 0.5f, 0, 1, 0, 0);
    p = Orv2dPoint(3, 2);  // x' = 3 - 0.5·2
    EXPECT_TRUE(shear.inverse(p));
    EXPECT_EQ(p, Orv2dPoint(2, 2));

    Orv2dRect r(2, 4, 6, 8);
    EXPECT_TRUE(two.inverse(r));
    EXPECT_EQ(r, Orv2dRect(1, 2, 3, 4));  // (0.5, 1.5)–(3.5, 5.5) rounded away from zero
}

TEST(Matrix2d, InverseOfABadMatrixReports) {
    Orv2dMatrix bad(1e-7f, 0, 0, 1e-6f, 0, 0);  // det 1e-13
    Orv2dPoint p(3, 4);
    testing::internal::CaptureStdout();
    EXPECT_FALSE(bad.inverse(p));
    std::string out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(out, badTransformer("Orv2dPoint", bad));
    EXPECT_EQ(p, Orv2dPoint(3, 4));

    Orv2dRect r(1, 2, 3, 4);
    testing::internal::CaptureStdout();
    EXPECT_FALSE(bad.inverse(r));
    out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(out, badTransformer("Orv2dRect", bad));
    EXPECT_EQ(r, Orv2dRect(1, 2, 3, 4));
}

TEST(Matrix2d, Compute2dMatrix) {
    Orv2dMatrix m = OrvCompute2dMatrix(Orv2dRect(10, 10, 100, 50), Orv2dRect(0, 0, 200, 200));
    EXPECT_EQ(m.a, 2);
    EXPECT_EQ(m.d, 4);
    EXPECT_EQ(m.tx, -20);
    EXPECT_EQ(m.ty, -40);
    Orv2dRect r(10, 10, 100, 50);
    m.apply(r);
    EXPECT_EQ(r, Orv2dRect(0, 0, 200, 200));

    Orv2dMatrix z = OrvCompute2dMatrix(Orv2dRect(5, 5, 0, 10), Orv2dRect(7, 0, 30, 20));
    EXPECT_EQ(z.a, 1);  // zero source width scales by 1
    EXPECT_EQ(z.d, 2);
    EXPECT_EQ(z.tx, 2);
    EXPECT_EQ(z.ty, -10);

    Orv2dMatrix huge = OrvCompute2dMatrix(Orv2dRect(0, 0, 1, 1), Orv2dRect(0, 0, 3000000000u, 1));
    EXPECT_EQ(huge.a, 3e9f);  // widths are unsigned
}

// ---------------------------------------------------------------------------

static void expectNear(const Orv3dMatrix& a, const Orv3dMatrix& b, float tol) {
    for (int i = 0; i < 16; i++) EXPECT_NEAR(a.m[i], b.m[i], tol) << "element " << i;
}

TEST(Matrix3d, ConstructionCopyAndPrint) {
    Orv3dMatrix id;
    Orv3dMatrix zero(0ul);
    EXPECT_EQ(Orv3dMatrix(0), zero);
    EXPECT_EQ(Orv3dMatrix(7), id);
    for (int i = 0; i < 16; i++) {
        EXPECT_EQ(id.m[i], i % 5 == 0 ? 1.0f : 0.0f);
        EXPECT_EQ(zero.m[i], 0.0f);
    }
    float v[16];
    for (int i = 0; i < 16; i++) v[i] = (float)i;
    Orv3dMatrix fromArray(v);
    EXPECT_EQ(fromArray(1, 2), 6.0f);  // row-major
    EXPECT_EQ(fromArray(0, 3), 3.0f);
    Orv3dMatrix listed(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    EXPECT_EQ(listed, fromArray);
    zero.copy(v);
    EXPECT_EQ(zero, fromArray);
    zero.copy(zero.m);
    EXPECT_EQ(zero, fromArray);

    Orv3dMatrix p(1, 2, 3, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1.5f);
    testing::internal::CaptureStdout();
    p.print();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "1.000000 2.000000 3.000000 4.000000 \n"
                                                      "0.000000 0.000000 0.000000 0.000000 \n"
                                                      "0.000000 0.000000 0.000000 0.000000 \n"
                                                      "0.000000 0.000000 0.000000 1.500000 \n\n");
}

TEST(Matrix3d, ElementaryRotations) {
    const float rad = (float)(90 * 0.017453292519943295);
    const float s = (float)std::sin(rad), c = (float)std::cos(rad);
    Orv3dMatrix m;
    m.rotateZ(90);
    EXPECT_EQ(m(0, 0), c);
    EXPECT_EQ(m(0, 1), -s);
    EXPECT_EQ(m(1, 0), s);
    EXPECT_EQ(m(1, 1), c);
    Orv3dPoint p(1, 0, 0);
    m.apply(p);
    EXPECT_NEAR(p.x, 0, 1e-6);
    EXPECT_NEAR(p.y, 1, 1e-6);

    m.rotateX(90);
    EXPECT_EQ(m(0, 1), 0.0f);  // replaced, not accumulated
    EXPECT_EQ(m(1, 2), -s);
    EXPECT_EQ(m(2, 1), s);
    p = Orv3dPoint(0, 1, 0);
    m.apply(p);
    EXPECT_NEAR(p.z, 1, 1e-6);

    m.rotateY(90);
    EXPECT_EQ(m(0, 2), s);
    EXPECT_EQ(m(2, 0), -s);
    p = Orv3dPoint(0, 0, 1);
    m.apply(p);
    EXPECT_NEAR(p.x, 1, 1e-6);
    EXPECT_NEAR(p.z, 0, 1e-6);
}

TEST(Matrix3d, AccumulatePutsTheStepAfter) {
    Orv3dMatrix m;
    m.translate(1, 0, 0);
    m.rotateZ(90, 1);
    Orv3dPoint p(0, 0, 0);
    m.apply(p);  // translated first, then turned
    EXPECT_NEAR(p.x, 0, 1e-6);
    EXPECT_NEAR(p.y, 1, 1e-6);

    m.scale(2, 3, 4, 1);
    p = Orv3dPoint(0, 0, 0);
    m.apply(p);
    EXPECT_NEAR(p.y, 3, 1e-6);

    m.rotateZ(90);  // without accumulate: replaced
    p = Orv3dPoint(0, 0, 0);
    m.apply(p);
    EXPECT_EQ(p, Orv3dPoint(0, 0, 0));

    Orv3dMatrix t;
    t.scale(2, 2, 2);
    t.translate(5, 6, 7, 1);
    EXPECT_EQ(t, Orv3dMatrix(2, 0, 0, 5, 0, 2, 0, 6, 0, 0, 2, 7, 0, 0, 0, 1));
}

TEST(Matrix3d, RotateAboutAnAxis) {
    Orv3dMatrix m;
    // The axis direction only: the rotation passes through the origin.
    m.rotate(Orv3dPoint(5, 5, 0), Orv3dPoint(5, 5, 3), 90);
    EXPECT_EQ(m(0, 3), 0.0f);
    EXPECT_EQ(m(1, 3), 0.0f);
    Orv3dPoint p(1, 0, 0);
    m.apply(p);
    EXPECT_NEAR(p.x, 0, 1e-6);
    EXPECT_NEAR(p.y, 1, 1e-6);
    Orv3dMatrix z;
    z.rotateZ(90);
    expectNear(m, z, 1e-6f);

    Orv3dMatrix diag;
    diag.rotate(Orv3dPoint(0, 0, 0), Orv3dPoint(1, 1, 1), 120);
    p = Orv3dPoint(1, 0, 0);
    diag.apply(p);  // a third of a turn about the diagonal cycles the axes
    EXPECT_NEAR(p.x, 0, 1e-5);
    EXPECT_NEAR(p.y, 1, 1e-5);
    EXPECT_NEAR(p.z, 0, 1e-5);

    Orv3dMatrix before(2, 0, 0, 1, 0, 2, 0, 1, 0, 0, 2, 1, 0, 0, 0, 1);
    Orv3dMatrix kept = before;
    testing::internal::CaptureStdout();
    kept.rotate(Orv3dPoint(1, 2, 3), Orv3dPoint(1, 2, 3), 45);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Orv3dMatrix::rotate : Bad axis.");
    EXPECT_EQ(kept, before);
}

TEST(Matrix3d, ApplyProjectiveTest) {
    Orv3dMatrix persp(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 1, 0);
    Orv3dPoint p(2, 4, 2);
    persp.apply(p);
    EXPECT_EQ(p, Orv3dPoint(1, 2, 1));
    Orv3dPoint stay(1, 1, 0);  // w = 0: unchanged
    persp.apply(stay);
    EXPECT_EQ(stay, Orv3dPoint(1, 1, 0));

    Orv3dMatrix almost;  // |m33 − 1| below 1e-6: affine, no division
    almost(3, 3) = 1.0000005f;
    Orv3dPoint big(1e6f, 0, 0);
    almost.apply(big);
    EXPECT_EQ(big.x, 1e6f);
    Orv3dMatrix beyond;
    beyond(3, 3) = 1.000002f;
    big = Orv3dPoint(1e6f, 0, 0);
    beyond.apply(big);
    EXPECT_LT(big.x, 999999.0f);

    Orv3dMatrix t;
    t.translate(1, 2, 3);
    Orv3dVector v(1, 1, 1);  // vectors are translated like points
    t.apply(v);
    EXPECT_EQ(v, Orv3dVector(2, 3, 4));
    float x = 0, y = 0, z = 0;
    t.apply(x, y, z);
    EXPECT_EQ(x, 1);
    EXPECT_EQ(z, 3);

    Orv4dPoint h(1, 2, 2, 1);
    persp.apply(h);  // no division
    EXPECT_EQ(h, Orv4dPoint(1, 2, 2, 2));
}

TEST(Matrix3d, ApplyVolumeAndTranspose) {
    Orv3dMatrix r;
    r.rotateZ(90);
    Orv3dVolume v(0, 0, 0, 2, 1, 1);
    r.apply(v);
    EXPECT_NEAR(v.x, -1, 1e-6);
    EXPECT_NEAR(v.y, 0, 1e-6);
    EXPECT_NEAR(v.z, 0, 1e-6);
    EXPECT_NEAR(v.w, 1, 1e-6);
    EXPECT_NEAR(v.h, 2, 1e-6);
    EXPECT_NEAR(v.d, 1, 1e-6);

    Orv3dMatrix m(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    Orv3dMatrix t;
    m.transpose(t);
    EXPECT_EQ(t(0, 1), 4.0f);
    EXPECT_EQ(t(3, 0), 3.0f);
    float gl[16];
    m.transpose(gl);
    for (int i = 0; i < 16; i++) EXPECT_EQ(gl[i], t.m[i]);
    m.transpose(m);  // in place
    EXPECT_EQ(m, t);
}

TEST(Matrix3d, InverseByGaussJordan) {
    Orv3dMatrix m(2, 1, 0, 3, 1, 3, 2, 0, 0, 1, 4, 1, 5, 0, 1, 2);
    Orv3dMatrix inv;
    ASSERT_TRUE(m.inverse(inv));
    expectNear(m * inv, Orv3dMatrix(), 1e-5f);

    // A zero first entry needs a row swap.
    Orv3dMatrix swap(0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);
    ASSERT_TRUE(swap.inverse(inv));
    EXPECT_EQ(inv, swap);

    Orv3dMatrix singular(1, 2, 3, 4, 2, 4, 6, 8, 0, 0, 1, 0, 0, 0, 0, 1);
    Orv3dMatrix kept(0ul);
    EXPECT_FALSE(singular.inverse(kept));
    EXPECT_EQ(kept, Orv3dMatrix(0ul));

    // No tolerance: a tiny pivot goes on to large values.
    Orv3dMatrix tiny(1e-20f, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);
    ASSERT_TRUE(tiny.inverse(inv));
    EXPECT_FLOAT_EQ(inv(0, 0), 1e20f);

    Orv3dMatrix t;
    t.translate(1, 2, 3);
    t.scale(2, 2, 2, 1);
    Orv3dPoint p(4, 6, 8);
    EXPECT_TRUE(t.inverse(p));
    EXPECT_EQ(p, Orv3dPoint(1, 1, 1));
    Orv4dPoint h(4, 6, 8, 1);
    EXPECT_TRUE(t.inverse(h));
    EXPECT_EQ(h, Orv4dPoint(1, 1, 1, 1));
    Orv3dPoint q(1, 2, 3);
    EXPECT_FALSE(singular.inverse(q));
    EXPECT_EQ(q, Orv3dPoint(1, 2, 3));
}

TEST(Matrix3d, MultiplyAndDeterminants) {
    Orv3dMatrix t, s;
    t.translate(1, 0, 0);
    s.scale(2, 2, 2);
    const Orv3dMatrix& r1 = t.multiply(s);
    const Orv3dMatrix& r2 = s.multiply(t);
    EXPECT_EQ(&r1, &r2);  // one shared static
    Orv3dMatrix ts = t * s;
    Orv3dPoint p(1, 1, 1);
    ts.apply(p);  // scaled first, then translated
    EXPECT_EQ(p, Orv3dPoint(3, 2, 2));
    Orv3dMatrix st = s;
    st *= t;
    p = Orv3dPoint(1, 1, 1);
    st.apply(p);
    EXPECT_EQ(p, Orv3dPoint(4, 2, 2));

    Orv3dMatrix m(2, 1, 0, 3, 1, 3, 2, 0, 0, 1, 4, 1, 5, 0, 1, 2);
    EXPECT_EQ(m.det4(), -136.0f);
    EXPECT_EQ(m.det3(), 16.0f);
    Orv3dMatrix d(2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4, 0, 0, 0, 0, 5);
    EXPECT_EQ(d.det4(), 120.0f);
    EXPECT_EQ(d.det3(), 24.0f);
}

TEST(Matrix3d, BuildIsTheProductOfItsSteps) {
    const Orv3dPoint c(1, 2, 3);
    const Orv3dVector t(10, -4, 6);
    const Orv3dVector s(2, 0.5f, 3);
    Orv3dMatrix built;
    built.build(c, t, 25, -40, 110, s);

    Orv3dMatrix steps;
    steps.translate(-c.x, -c.y, -c.z);
    steps.scale(s.x, s.y, s.z, 1);
    steps.rotateX(25, 1);
    steps.rotateY(-40, 1);
    steps.rotateZ(110, 1);
    steps.translate(t.x + c.x, t.y + c.y, t.z + c.z, 1);
    expectNear(built, steps, 1e-4f);
    EXPECT_EQ(built(3, 0), 0.0f);
    EXPECT_EQ(built(3, 3), 1.0f);

    Orv3dMatrix plain;  // the centre maps to centre plus translation
    plain.build(c, t, 0, 0, 0, Orv3dVector(2, 2, 2));
    Orv3dPoint p = c;
    plain.apply(p);
    EXPECT_EQ(p, Orv3dPoint(11, -2, 9));
    p = Orv3dPoint(2, 2, 3);
    plain.apply(p);
    EXPECT_EQ(p, Orv3dPoint(13, -2, 9));
}

TEST(Matrix3d, DecomposeInvertsBuild) {
    Orv3dMatrix m;
    m.build(Orv3dPoint(0, 0, 0), Orv3dVector(5, 6, 7), 10, 20, 30, Orv3dVector(2, 3, 4));
    Orv3dVector scale, shear;
    double rx, ry, rz;
    Orv3dPoint tr;
    Orv4dPoint persp(9, 9, 9, 9);
    ASSERT_EQ(m.decompose(scale, shear, rx, ry, rz, tr, persp), 1);
    EXPECT_NEAR(scale.x, 2, 1e-5);
    EXPECT_NEAR(scale.y, 3, 1e-5);
    EXPECT_NEAR(scale.z, 4, 1e-5);
    EXPECT_NEAR(shear.x, 0, 1e-5);
    EXPECT_NEAR(shear.y, 0, 1e-5);
    EXPECT_NEAR(shear.z, 0, 1e-5);
    EXPECT_NEAR(rx, 10, 1e-3);
    EXPECT_NEAR(ry, 20, 1e-3);
    EXPECT_NEAR(rz, 30, 1e-3);
    EXPECT_EQ(tr, Orv3dPoint(5, 6, 7));
    EXPECT_EQ(persp, Orv4dPoint(0, 0, 0, 0));

    // Dividing by m33 first: a scaled copy decomposes the same.
    Orv3dMatrix twice = m;
    for (float& e : twice.m) e *= 2;
    ASSERT_EQ(twice.decompose(scale, shear, rx, ry, rz, tr, persp), 1);
    EXPECT_NEAR(scale.y, 3, 1e-5);
    EXPECT_NEAR(rz, 30, 1e-3);

    // A mirror turns up as a negated scale.
    Orv3dMatrix mirror;
    mirror.scale(-1, 1, 1);
    ASSERT_EQ(mirror.decompose(scale, shear, rx, ry, rz, tr, persp), 1);
    EXPECT_LT(scale.x * scale.y * scale.z, 0);

    Orv3dMatrix noW = m;
    noW(3, 3) = 0;
    EXPECT_EQ(noW.decompose(scale, shear, rx, ry, rz, tr, persp), 0);
    Orv3dMatrix flat;
    flat.scale(1, 0, 1);
    EXPECT_EQ(flat.decompose(scale, shear, rx, ry, rz, tr, persp), 0);

    Orv3dMatrix proj;  // a perspective row is handed back through the inverse
    proj(3, 2) = 0.5f;
    ASSERT_EQ(proj.decompose(scale, shear, rx, ry, rz, tr, persp), 1);
    EXPECT_EQ(persp, Orv4dPoint(0, 0, 0.5f, 1));
    EXPECT_NEAR(scale.x, 1, 1e-6);
}

TEST(Matrix3d, Compute3dMatrix) {
    Orv3dVolume from(0, 0, 0, 2, 2, 2), to(10, 10, 10, 4, 6, 8);
    Orv3dMatrix m = OrvCompute3dMatrix(from, to, 0, 0, 0);
    Orv3dPoint p = from.center();
    m.apply(p);
    EXPECT_EQ(p, to.center());
    p = Orv3dPoint(0, 0, 0);
    m.apply(p);
    EXPECT_EQ(p, Orv3dPoint(10, 10, 10));
    EXPECT_EQ(m(0, 0), 2);
    EXPECT_EQ(m(1, 1), 3);
    EXPECT_EQ(m(2, 2), 4);

    Orv3dMatrix flat = OrvCompute3dMatrix(Orv3dVolume(0, 0, 0, 0, 2, 2), to, 0, 0, 0);
    EXPECT_EQ(flat(0, 0), 1);  // zero extent scales by 1

    Orv3dMatrix turned = OrvCompute3dMatrix(from, from, 0, 0, 90);
    p = Orv3dPoint(2, 1, 1);  // turned about the centre
    turned.apply(p);
    EXPECT_NEAR(p.x, 1, 1e-6);
    EXPECT_NEAR(p.y, 2, 1e-6);
}
