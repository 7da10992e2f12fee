// Colour values and the counted shares of arrays: kinds, guarded access, the
// overlap warnings and who frees what when.
#include "vertex_samples.h"

#include <random>

namespace {

const std::string warning1 =
    "# OrvShare warning : Two shared objects defined with the same data array (1).\n";
const std::string warning2 =
    "# OrvShare warning : Two shared objects defined with the same data array (2).\n";

bool isListed(const OrvShare* share) {
    return OrvShare::sharedData && OrvShare::sharedData->find(share);
}

}  // namespace

TEST(VertexValues, ColourModelsAndPrint) {
    // The conversions are the colour code's: here each way gets its arguments in order.
    OrvRGB c;
    c.setHSV(240, 1, 0.5f);
    EXPECT_EQ(c, OrvRGB(0, 0, 0.5f));
    float h, s, v, l;
    c.getHSV(h, s, v);
    EXPECT_EQ(std::vector<float>({h, s, v}), std::vector<float>({240, 1, 0.5f}));
    c.setHLS(1.0f / 3.0f, 0.25f, 1);
    EXPECT_NEAR(c.green, 0.5f, 1e-6);
    EXPECT_NEAR(c.red + c.blue, 0, 1e-6);
    OrvRGB(0, 0, 1).getHLS(h, l, s);
    EXPECT_EQ(std::vector<float>({h, l, s}), std::vector<float>({240.0f / 360.0f, 0.5f, 1}));
    EXPECT_EQ(OrvTestOutput([] { OrvRGB(1, 0.5f, 0.25f).print(); }),
              "<1.000000, 0.500000, 0.250000>\n");
    EXPECT_NE(OrvTextureUV(0.5f, 2), OrvTextureUV(0.5f, 0));
}

TEST(VertexShares, KindsAndGuardedAccess) {
    SampleArrays a;
    OrvShare* shares[7] = {
        a.points, a.points4d, a.colors, a.normals, a.edges, a.textures, a.make<unsigned>({0, 1})};
    for (int kind = 0; kind < 7; kind++) {
        OrvShare* s = shares[kind];
        EXPECT_EQ(s->kind, kind);
        // Exactly one getter and one writer answer, the one of the kind; read
        // only, no writer does.
        for (unsigned long readOnly : {0, 1}) {
            s->setFlags(readOnly, 1);
            EXPECT_EQ(s->flags, readOnly ? OrvShareReadOnly | OrvShareOwned : OrvShareOwned);
            const void* got[] = {s->points(), s->points4d(), s->colors(), s->normals(),
                                 s->edges(),  s->textures(), s->index()};
            void* changed[] = {s->pointsToBeChanged(), s->points4dToBeChanged(),
                               s->colorsToBeChanged(), s->normalsToBeChanged(),
                               s->edgesToBeChanged(),  s->texturesToBeChanged(),
                               s->indexToBeChanged()};
            for (int k = 0; k < 7; k++) {
                EXPECT_EQ(got[k], k == kind ? s->data : nullptr) << kind << " " << k;
                EXPECT_EQ(changed[k], k == kind && !readOnly ? s->data : nullptr)
                    << kind << " " << k << " read only " << readOnly;
            }
        }
    }
}

TEST(VertexShares, OverlapWarnings) {
    Orv3dVector normals[8];
    unsigned before = listed();
    struct Case {
        const char* name;
        unsigned long readOnly1;  // the first share, on normals[2..5], borrowed
        unsigned long readOnly2;  // the second one, borrowed
        unsigned offset, count;   // of the second one
        const std::string message;
        bool entered;  // the second one, into the list
    } cases[] = {
        {"both read only", 1, 1, 2, 4, "", false},
        {"one read-write", 1, 0, 2, 4, warning2, false},
        {"both read-write", 0, 0, 3, 1, warning2, false},
        {"starts before, ends inside", 0, 0, 0, 3, warning2, false},
        {"starts before, ends past", 1, 0, 0, 8, warning2, false},
        {"starts after the end", 0, 0, 6, 2, "", true},
        {"ends just before", 0, 0, 0, 2, "", true},
    };
    for (const Case& k : cases) {
        Shares held;
        EXPECT_TRUE(isListed(held.hold(new OrvShare(4, normals + 2, k.readOnly1, 0))));
        OrvShare* second = nullptr;
        EXPECT_EQ(OrvTestOutput(
                      [&] { second = new OrvShare(k.count, normals + k.offset, k.readOnly2, 0); }),
                  k.message)
            << k.name;
        // Only a share that overlapped nothing enters the list.
        EXPECT_EQ(isListed(held.hold(second)), k.entered) << k.name;
    }
    EXPECT_EQ(listed(), before);

    // Either one owned gives the first message, whatever the flags, each time it is checked.
    Shares held;
    Orv3dVector* mine = new Orv3dVector[3];
    held.hold(new OrvShare(3, mine, 1, 1));
    OrvShare* borrower = nullptr;
    EXPECT_EQ(OrvTestOutput([&] { borrower = held.hold(new OrvShare(3, mine, 1, 0)); }), warning1);
    EXPECT_FALSE(isListed(borrower));
    EXPECT_EQ(OrvTestOutput([&] { EXPECT_EQ(borrower->check(), 0u); }), warning1);
    // A different kind on the same bytes is not compared; a share over two
    // listed ones warns for each.
    unsigned raw[10];
    held.hold(new OrvShare(3, raw, 0, 0));
    held.hold(new OrvShare(3, raw + 5, 1, 0));
    OrvShare* edges = nullptr;
    EXPECT_EQ(OrvTestOutput([&] { edges = held.hold(new OrvShare(12, (OrvEdge*)raw, 0, 0)); }), "");
    EXPECT_TRUE(isListed(edges));
    EXPECT_EQ(OrvTestOutput([&] { held.hold(new OrvShare(10, raw, 0, 0)); }), warning2 + warning2);
}

// Ranges of every size over a buffer of three megabytes, made and dropped
// at random: each new one warns once for each listed range it meets and
// enters the list only when it meets none, as a walk over the list finds.
TEST(VertexShares, OverlapsOfAnySizeAgreeWithTheListWalk) {
    std::vector<OrvEdge> bytes(3 << 20);
    std::mt19937 random(20);
    std::vector<std::pair<size_t, size_t>> alive;  // first and last byte, of listed ones
    std::vector<OrvShare*> shares;
    for (int step = 0; step < 4000; step++) {
        if (!shares.empty() && random() % 2 == 0) {
            size_t k = random() % shares.size();
            shares[k]->unLock();
            shares.erase(shares.begin() + (long)k);
            alive.erase(alive.begin() + (long)k);
            continue;
        }
        const size_t sizes[] = {1, 17, 255, 256, 257, 1000, 4000, 300000, 1500000};
        size_t size = sizes[random() % 9], first = random() % (bytes.size() - size);
        // Half of them crowd round the start of a megabyte of addresses.
        size_t edge = ((((uintptr_t)bytes.data() >> 20) + 1) << 20) - (uintptr_t)bytes.data();
        if (size < 4000 && random() % 2) first = edge - 2048 + random() % 4096;
        unsigned meets = 0;
        for (const auto& r : alive) meets += first <= r.second && first + size - 1 >= r.first;
        OrvShare* share = nullptr;
        std::string said = OrvTestOutput(
            [&] { share = new OrvShare((unsigned)size, bytes.data() + first, 0, 0); });
        std::string want;
        for (unsigned m = 0; m < meets; m++) want += warning2;
        ASSERT_EQ(said, want) << step;
        ASSERT_EQ(isListed(share), meets == 0) << step;
        share->lock();
        if (meets) {
            share->unLock();
            continue;
        }
        shares.push_back(share);
        alive.emplace_back(first, first + size - 1);
    }
    for (OrvShare* s : shares) s->unLock();
}

TEST(VertexShares, LockingAndFreeing) {
    // Two users: the share outlives the first, and goes with the second.
    Orv3dPoint* points = new Orv3dPoint[2];
    points[1] = Orv3dPoint(1, 2, 3);
    OrvShare* share = new OrvShare(2, points, 0, 1);
    EXPECT_EQ(share->lockCount, 0);
    EXPECT_EQ(share->flags, (unsigned)OrvShareOwned);
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
