// Colour values, texture coordinates and the counted shares of arrays: kinds,
// guarded access, the overlap warnings and who frees what when.
#include "orv/vertex.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

const char* const warning1 =
    "# OrvShare warning : Two shared objects defined with the same data array (1).\n";
const char* const warning2 =
    "# OrvShare warning : Two shared objects defined with the same data array (2).\n";

unsigned listed() {
    return OrvShare::sharedData ? OrvShare::sharedData->length() : 0;
}

bool isListed(const OrvShare* share) {
    return OrvShare::sharedData && OrvShare::sharedData->find(share);
}

// Locks a new share for the test and lets go of it at the end.
struct Held {
    OrvShare* share;
    explicit Held(OrvShare* s) : share(s) { share->lock(); }
    ~Held() { share->unLock(); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
};

}  // namespace

TEST(VertexValues, RGBAndTexture) {
    OrvRGB black;
    EXPECT_EQ(black, OrvRGB(0, 0, 0));
    OrvRGB c(1, 0.5f, 0.25f);
    EXPECT_EQ(c.red, 1);
    EXPECT_EQ(c.green, 0.5f);
    EXPECT_EQ(c.blue, 0.25f);
    EXPECT_NE(c, black);

    // HSV: hue in degrees; HLS: hue from 0 to 1.
    struct {
        float h, s, v;
        OrvRGB rgb;
    } hsv[] = {{0, 1, 1, OrvRGB(1, 0, 0)},
               {120, 1, 1, OrvRGB(0, 1, 0)},
               {240, 1, 0.5f, OrvRGB(0, 0, 0.5f)},
               {-30, 2, 1, OrvRGB(1, 0, 0.5f)},  // wraps to 330, s clamps to 1
               {0, 0, 0.25f, OrvRGB(0.25f, 0.25f, 0.25f)}};
    for (const auto& row : hsv) {
        OrvRGB x;
        x.setHSV(row.h, row.s, row.v);
        EXPECT_NEAR(x.red, row.rgb.red, 1e-6) << row.h;
        EXPECT_NEAR(x.green, row.rgb.green, 1e-6) << row.h;
        EXPECT_NEAR(x.blue, row.rgb.blue, 1e-6) << row.h;
    }
    float h, s, v;
    OrvRGB(0, 0, 1).getHSV(h, s, v);
    EXPECT_FLOAT_EQ(h, 240);
    EXPECT_FLOAT_EQ(s, 1);
    EXPECT_FLOAT_EQ(v, 1);

    float l;
    OrvRGB(0, 0, 1).getHLS(h, l, s);
    EXPECT_FLOAT_EQ(h, 240.0f / 360.0f);
    EXPECT_FLOAT_EQ(l, 0.5f);
    EXPECT_FLOAT_EQ(s, 1);
    OrvRGB(0.3f, 0.3f, 0.3f).getHLS(h, l, s);  // a grey
    EXPECT_EQ(h, 0);
    EXPECT_EQ(s, 0);
    EXPECT_FLOAT_EQ(l, 0.3f);
    OrvRGB y;
    y.setHLS(1.0f / 3.0f, 0.5f, 1);
    EXPECT_NEAR(y.red, 0, 1e-6);
    EXPECT_NEAR(y.green, 1, 1e-6);
    EXPECT_NEAR(y.blue, 0, 1e-6);

    CaptureStdout();
    OrvRGB(1, 0.5f, 0.25f).print();
    EXPECT_EQ(GetCapturedStdout(), "<1.000000, 0.500000, 0.250000>\n");

    OrvTextureUV t, u(0.5f, 2);
    EXPECT_EQ(t, OrvTextureUV(0, 0));
    EXPECT_EQ(u.u, 0.5f);
    EXPECT_EQ(u.v, 2);
    EXPECT_NE(t, u);
    EXPECT_EQ(sizeof(OrvEdge), 1u);
}

TEST(VertexShares, KindsAndGuardedAccess) {
    Orv3dPoint p[2];
    Orv4dPoint q[2];
    OrvRGB c[2];
    Orv3dVector n[2];
    OrvEdge e[2] = {0, 1};
    OrvTextureUV t[2];
    unsigned ix[2] = {0, 1};
    Held sp(new OrvShare(2, p, 0, 0)), sq(new OrvShare(2, q, 0, 0)), sc(new OrvShare(2, c, 0, 0)),
        sn(new OrvShare(2, n, 0, 0)), se(new OrvShare(2, e, 0, 0)), st(new OrvShare(2, t, 0, 0)),
        si(new OrvShare(2, ix, 0, 0));
    struct {
        OrvShare* share;
        int kind;
        void* array;
    } rows[] = {{sp.share, OrvShare3dPoints, p}, {sq.share, OrvShare4dPoints, q},
                {sc.share, OrvShareColors, c},   {sn.share, OrvShareNormals, n},
                {se.share, OrvShareEdges, e},    {st.share, OrvShareTextures, t},
                {si.share, OrvShareIndex, ix}};
    for (const auto& r : rows) {
        OrvShare* s = r.share;
        EXPECT_EQ(s->kind, r.kind);
        EXPECT_EQ(s->data, r.array);
        EXPECT_EQ(s->cardinal, 2u);
        EXPECT_EQ(s->lockCount, 1);
        EXPECT_EQ(s->flags, 0u);
        // Exactly one getter and one writer answer: the one of the kind.
        const void* got[] = {s->points(), s->points4d(), s->colors(), s->normals(),
                             s->edges(),  s->textures(), s->index()};
        void* changed[] = {s->pointsToBeChanged(), s->points4dToBeChanged(),
                           s->colorsToBeChanged(), s->normalsToBeChanged(),
                           s->edgesToBeChanged(),  s->texturesToBeChanged(),
                           s->indexToBeChanged()};
        for (int k = 0; k < 7; k++) {
            EXPECT_EQ(got[k], k == r.kind ? r.array : nullptr) << r.kind << " " << k;
            EXPECT_EQ(changed[k], k == r.kind ? r.array : nullptr) << r.kind << " " << k;
        }
        // Read only: still readable, never writable.
        s->setFlags(1, 0);
        EXPECT_EQ(s->flags, (unsigned)OrvShareReadOnly);
        EXPECT_EQ(got[r.kind], r.array);
        EXPECT_EQ(s->normalsToBeChanged(), nullptr);
        EXPECT_EQ(s->pointsToBeChanged(), nullptr);
        EXPECT_EQ(s->indexToBeChanged(), nullptr);
        s->setFlags(0, 0);
    }
    EXPECT_EQ(OrvShare::elementSize(OrvShare3dPoints), 12u);
    EXPECT_EQ(OrvShare::elementSize(OrvShare4dPoints), 16u);
    EXPECT_EQ(OrvShare::elementSize(OrvShareColors), 12u);
    EXPECT_EQ(OrvShare::elementSize(OrvShareNormals), 12u);
    EXPECT_EQ(OrvShare::elementSize(OrvShareEdges), 1u);
    EXPECT_EQ(OrvShare::elementSize(OrvShareTextures), 8u);
    EXPECT_EQ(OrvShare::elementSize(OrvShareIndex), 4u);
}

TEST(VertexShares, OverlapWarnings) {
    Orv3dVector normals[8];
    unsigned before = listed();
    struct Case {
        const char* name;
        unsigned long readOnly1, owned1;  // the first share, on normals[2..5]
        unsigned long readOnly2, owned2;  // the second one
        unsigned offset, count;           // of the second one
        const char* message;
        bool entered;  // the second one, into the list
    } cases[] = {
        {"both read only, borrowed", 1, 0, 1, 0, 2, 4, "", false},
        {"one read-write", 1, 0, 0, 0, 2, 4, warning2, false},
        {"both read-write", 0, 0, 0, 0, 3, 1, warning2, false},
        {"starts before, ends inside", 0, 0, 0, 0, 0, 3, warning2, false},
        {"starts before, ends past", 1, 0, 0, 0, 0, 8, warning2, false},
        {"starts after the end", 0, 0, 0, 0, 6, 2, "", true},
        {"ends just before", 0, 0, 0, 0, 0, 2, "", true},
    };
    for (const Case& k : cases) {
        Held first(new OrvShare(4, normals + 2, k.readOnly1, k.owned1));
        EXPECT_TRUE(isListed(first.share));
        CaptureStdout();
        OrvShare* second = new OrvShare(k.count, normals + k.offset, k.readOnly2, k.owned2);
        EXPECT_EQ(GetCapturedStdout(), k.message) << k.name;
        // Only a share that overlapped nothing enters the list.
        EXPECT_EQ(isListed(second), k.entered) << k.name;
        second->lock();
        second->unLock();
    }
    EXPECT_EQ(listed(), before);

    // Either one owned gives the first message, whatever the flags.
    Orv3dVector* mine = new Orv3dVector[3];
    {
        Held owner(new OrvShare(3, mine, 1, 1));
        CaptureStdout();
        Held borrower(new OrvShare(3, mine, 1, 0));
        EXPECT_EQ(GetCapturedStdout(), warning1);
        EXPECT_FALSE(isListed(borrower.share));
        CaptureStdout();
        EXPECT_EQ(borrower.share->check(), 0u);  // the test can be run again
        EXPECT_EQ(GetCapturedStdout(), warning1);
    }
    // A different kind on the same bytes is not compared.
    unsigned raw[6];
    Held asIndex(new OrvShare(6, raw, 0, 0));
    CaptureStdout();
    Held asEdges(new OrvShare(24, (OrvEdge*)raw, 0, 0));
    EXPECT_EQ(GetCapturedStdout(), "");
    EXPECT_TRUE(isListed(asEdges.share));

    // A new share that covers two listed ones warns once for each.
    unsigned wide[10];
    Held left(new OrvShare(3, wide, 0, 0)), right(new OrvShare(3, wide + 5, 1, 0));
    CaptureStdout();
    Held over(new OrvShare(10, wide, 0, 0));
    EXPECT_EQ(GetCapturedStdout(), std::string(warning2) + warning2);
}

TEST(VertexShares, LockingAndFreeing) {
    // Two users: the share outlives the first, and goes with the second.
    Orv3dPoint* points = new Orv3dPoint[2];
    points[1] = Orv3dPoint(1, 2, 3);
    OrvShare* share = new OrvShare(2, points, 0, 1);
    EXPECT_EQ(share->lockCount, 0);
    EXPECT_EQ(share->flags, (unsigned)OrvShareOwned);
    EXPECT_TRUE(isListed(share));
    share->lock();
    share->lock();
    share->unLock();
    EXPECT_EQ(share->lockCount, 1);
    EXPECT_EQ(share->points()[1], Orv3dPoint(1, 2, 3));
    EXPECT_TRUE(isListed(share));
    unsigned count = listed();
    share->unLock();  // deletes the share and its owned array (LSan checks the array)
    EXPECT_EQ(listed(), count - 1);

    // A borrowed array stays with its owner.
    OrvEdge edges[3] = {1, 0, 1};
    OrvShare* borrowed = new OrvShare(3, edges, 1, 0);
    borrowed->lock();
    borrowed->unLock();
    edges[0] = 0;
    EXPECT_EQ(edges[2], 1);
}

#if defined(__SANITIZE_ADDRESS__)
TEST(VertexSharesDeathTest, LastUnlockFreesTheOwnedArray) {
    // The freed array is seen by the address sanitizer.
    EXPECT_DEATH(
        {
            unsigned* index = new unsigned[4]();
            OrvShare* share = new OrvShare(4, index, 0, 1);
            share->lock();
            share->unLock();
            volatile unsigned read = index[2];
            (void)read;
        },
        "heap-use-after-free");
}
#endif
