// The quadtree: split rule, the 6-pixel floor, child boxes, growth, messages, the optimize mode,
// and queries checked against a brute-force walk.
#include <random>
#include <set>

#include "orv_fixtures.h"

struct Owned {
    std::vector<TestBox*> boxes;
    ~Owned() {
        for (TestBox* b : boxes) delete b;
    }
    TestBox* make(int x, int y, unsigned w, unsigned h) {
        boxes.push_back(new TestBox(nullptr, nullptr, Orv2dRect(x, y, w, h)));
        return boxes.back();
    }
};

static void collect(OrvActor* a, void* data) {
    ((std::vector<OrvActor*>*)data)->push_back(a);
}

static std::set<OrvActor*> all(OrvQuadtree& t) {
    std::vector<OrvActor*> v;
    t.apply(collect, &v);
    return std::set<OrvActor*>(v.begin(), v.end());
}

static unsigned listLength(const OrvQuadtree* t) {
    unsigned n = 0;
    for (OrvLink* l = t->head; l; l = l->next) n++;
    return n;
}

static OrvActor* at(OrvQuadtree& t, int x, int y) {
    return t.contains(Orv2dPoint(x, y), Orv2dPoint(x, y), nullptr);
}

TEST(Quadtree, DefaultsAndChildBoxes) {
    EXPECT_TRUE(OrvDefaultQuadtreeMax == 40u && !OrvGetOptimizeMode());
    EXPECT_EQ(OrvQuadtree(10, nullptr).box, Orv2dRect(-100000, -100000, 200000, 200000));
    // The right and bottom children take the odd pixel.
    Orv2dRect odd(10, 20, 7, 9);
    OrvQuadtree o(4, &odd);
    EXPECT_EQ(
        std::vector<Orv2dRect>({{10, 20, 3, 4}, {13, 20, 4, 4}, {10, 24, 3, 5}, {13, 24, 4, 5}}),
        std::vector<Orv2dRect>({o.childBox(OrvQuadTopLeft), o.childBox(OrvQuadTopRight),
                                o.childBox(OrvQuadBottomLeft), o.childBox(OrvQuadBottomRight)}));
    // Positions about mx = 13, my = 24: ending on a centre line is left or top, starting on it
    // right or bottom, and a height 0 on my is bottom.
    const struct {
        Orv2dRect r;
        unsigned pos;
    } rects[] = {{{13, 20, 2, 2}, 5}, {{10, 20, 3, 2}, 6},  {{12, 20, 3, 2}, 65535},
                 {{10, 22, 2, 2}, 6}, {{10, 24, 2, 0}, 10}, {{14, 23, 2, 2}, 65535},
                 {{14, 25, 2, 2}, 9}};
    for (const auto& c : rects) EXPECT_EQ(o.findPos(c.r), c.pos) << c.r.x << "," << c.r.y;
    // Under 6 on the short side: everything stays.
    Orv2dRect thin(0, 0, 5, 100);
    EXPECT_EQ(OrvQuadtree(4, &thin).findPos(Orv2dRect(0, 0, 1, 1)), 65535u);
}

TEST(Quadtree, SplitsWhenTheCountReachesMaxAndAboveTheSixPixelFloor) {
    Owned own;
    Orv2dRect area(0, 0, 1000, 1000);
    OrvQuadtree t(OrvDefaultQuadtreeMax, &area);
    for (unsigned i = 0; i < OrvDefaultQuadtreeMax - 1; i++) t.add(own.make(10 + (int)i, 10, 1, 1));
    EXPECT_TRUE(t.internal == 0u && listLength(&t) == 39u);
    // The 40th brings the count to max: the leaf splits and spreads its list.
    TestBox* straddler = own.make(499, 499, 2, 2);
    t.add(straddler);
    ASSERT_TRUE(t.internal == 1u && t.topLeft);
    EXPECT_TRUE(t.topLeft->count == 39u && t.topLeft->box == Orv2dRect(0, 0, 500, 500));
    // The one across the centre stays at the root and is found there first.
    EXPECT_TRUE(listLength(&t) == 1u && t.head->value == straddler && at(t, 500, 500) == straddler);
    // Later actors go down by position.
    TestBox* br = own.make(700, 700, 5, 5);
    t.add(br);
    ASSERT_NE(t.bottomRight, nullptr);
    EXPECT_EQ(at(t, 702, 702), br);
    // Removal empties children, destroys them and turns the node back into a leaf.
    EXPECT_TRUE(t.remove(br) == 1 && !t.bottomRight);
    for (unsigned i = 0; i < 39; i++) EXPECT_EQ(t.remove(own.boxes[i]), 1);
    // A node back to leaf may keep a list.
    EXPECT_TRUE(!t.topLeft && t.internal == 0u && listLength(&t) == 1u);
    // Under 6 pixels on the short side a leaf never splits.
    Orv2dRect narrow(0, 0, 5, 1000);
    OrvQuadtree n(4, &narrow);
    for (int i = 0; i < 50; i++) n.add(own.make(1, i * 10, 2, 2));
    EXPECT_TRUE(n.internal == 0u && listLength(&n) == 50u);
    // A deep pile on one point stops splitting when boxes get under 6: 1024 halves to 4 in 8
    // steps, so 9 levels at most.
    Orv2dRect square(0, 0, 1024, 1024);
    OrvQuadtree p(4, &square);
    for (int i = 0; i < 100; i++) p.add(own.make(1, 1, 1, 1));
    const OrvQuadtree* leaf = &p;
    unsigned levels = 1;
    for (; leaf->topLeft; levels++) leaf = leaf->topLeft;
    EXPECT_LE(levels, 9u);
    EXPECT_LT(std::min(leaf->box.w, leaf->box.h), 6u);
    EXPECT_EQ(all(p).size(), 100u);
}

TEST(Quadtree, GrowthMessagesAndOptimizeMode) {
    Owned own;
    Orv2dRect area(0, 0, 100, 100);
    OrvQuadtree leaf(4, &area);
    leaf.add(own.make(10, 10, 5, 5));
    leaf.add(own.make(150, 20, 10, 10));  // outside a leaf root: the box widens
    EXPECT_EQ(leaf.box, Orv2dRect(0, 0, 160, 100));
    // growToPoint doubles towards the point; the old root becomes the child on the side away
    // from it and keeps the list.
    OrvQuadtree g(4, &area);
    TestBox* kept = own.make(10, 10, 5, 5);
    g.add(kept);
    g.growToPoint(Orv2dPoint(-50, 150));  // left and below
    g.growToPoint(Orv2dPoint(0, 0));      // inside: nothing
    EXPECT_EQ(g.box, Orv2dRect(-100, 0, 200, 200));
    ASSERT_TRUE(g.topRight && g.topRight->head->value == kept);
    g.growToPoint(Orv2dPoint(700, -10));  // right and above, several doublings at once
    EXPECT_EQ(g.box, Orv2dRect(-100, -600, 800, 800));
    ASSERT_TRUE(g.bottomLeft && g.bottomLeft->box == Orv2dRect(-100, -200, 400, 400));
    EXPECT_TRUE(g.insideP(kept) && at(g, 12, 12) == kept);
    // growToRect is the two corners; an internal root grows by doubling in add.
    OrvQuadtree r(4, &area);
    r.growToRect(Orv2dRect(-10, -10, 220, 5));
    EXPECT_EQ(r.box, Orv2dRect(-100, -100, 400, 400));
    TestBox* far = own.make(1000, 1000, 10, 10);
    r.add(far);
    EXPECT_TRUE(r.box == Orv2dRect(-100, -100, 1600, 1600) && r.insideP(far));
    // Messages for a double add and an unknown removal.
    OrvQuadtree t(4, &area);
    TestBox* b = own.make(1, 2, 3, 4);
    TestBox* stranger = own.make(5, 6, 7, 8);
    EXPECT_EQ(t.add(b), 1);
    EXPECT_EQ(
        "Quadtree::add: TestBox [1 2 3 4] Already in quadtree\n"
        "Quadtree::remove: Object TestBox [5 6 7 8] not in quadtree \n",
        OrvTestOutput([&] { EXPECT_TRUE(!t.add(b) && !t.remove(stranger) && t.count == 1u); }));
    // With the mode set the tests are left out: a double add goes in twice.
    OrvSetOptimizeMode(1);
    EXPECT_EQ(OrvGetOptimizeMode(), 1);
    EXPECT_EQ("", OrvTestOutput([&] { EXPECT_TRUE(t.add(b) == 1 && t.remove(stranger) == 1); }));
    EXPECT_EQ(t.count, 1u);  // 2 after the add, 1 after the unfound removal
    OrvSetOptimizeMode(0);
}

// Queries against brute force over many random sets. Actors have even coordinates and sizes,
// points are odd, and the root box is a power of two at an even origin, so that no point ever
// lies on a node's centre line, where the walk takes one side only.
TEST(QuadtreeProperty, QueriesAgreeWithBruteForce) {
    std::mt19937 rng(20261123);
    for (int round = 0; round < 60; round++) {
        Owned own;
        unsigned max = 2 + rng() % 40;
        unsigned n = 1 + rng() % 600;
        int span = 1 << (8 + rng() % 6);
        Orv2dRect root(-span, -span, 2 * span, 2 * span);
        OrvQuadtree t(max, &root);
        // Until the root has split, actors stay inside it (a leaf root would widen to an odd size
        // instead of doubling); later ones may lie outside and make it grow.
        unsigned outsideFrom = n > max ? max : n;
        for (unsigned i = 0; i < n; i++) {
            unsigned w = 2 + 2 * (rng() % (span / 16 + 1)), h = 2 + 2 * (rng() % (span / 16 + 1));
            int reach = i >= outsideFrom && rng() % 4 == 0 ? 3 * span : span;
            int x = ((int)(rng() % (2 * reach - w)) - reach) & ~1;
            int y = ((int)(rng() % (2 * reach - h)) - reach) & ~1;
            ASSERT_EQ(t.add(own.make(x, y, w, h)), 1);
        }
        ASSERT_TRUE(t.count == n && all(t).size() == n);
        for (TestBox* b : own.boxes) ASSERT_TRUE(t.insideP(b));
        auto randomPoint = [&] {
            return Orv2dPoint(((int)(rng() % (8 * span)) - 4 * span) | 1,
                              ((int)(rng() % (8 * span)) - 4 * span) | 1);
        };
        auto checkPoints = [&](size_t from, int queries) {
            for (int q = 0; q < queries; q++) {
                Orv2dPoint p = randomPoint();
                OrvActor* found = t.contains(p, p, nullptr);
                bool any = false;
                for (size_t i = from; i < own.boxes.size(); i++)
                    any = any || own.boxes[i]->box.contains(p);
                ASSERT_EQ(found != nullptr, any) << "round " << round << " " << p.x << "," << p.y;
                ASSERT_TRUE(!found || ((TestBox*)found)->box.contains(p));
            }
        };
        checkPoints(0, 200);
        for (int q = 0; q < 40; q++) {
            Orv2dRect window(((int)(rng() % (6 * span)) - 3 * span),
                             ((int)(rng() % (6 * span)) - 3 * span), 1 + rng() % span,
                             1 + rng() % span);
            Orv2dRegion region(window);
            if (q % 3 == 0)
                region.extendBy(Orv2dRect(window.x + 5 * span / 2, window.y, 1 + rng() % span, 9));
            std::vector<OrvActor*> got;
            t.applyIntersect(region, region, collect, &got, nullptr);
            std::set<OrvActor*> gotSet(got.begin(), got.end()), want;
            ASSERT_EQ(gotSet.size(), got.size()) << "an actor was called twice";
            for (TestBox* b : own.boxes)
                if (b->intersects2d(region, nullptr)) want.insert(b);
            ASSERT_EQ(gotSet, want) << "round " << round << " window " << q;
        }
        // Remove a random half and check again.
        std::shuffle(own.boxes.begin(), own.boxes.end(), rng);
        size_t half = own.boxes.size() / 2;
        for (size_t i = 0; i < half; i++) ASSERT_EQ(t.remove(own.boxes[i]), 1);
        ASSERT_EQ(t.count, n - half);
        ASSERT_EQ(all(t), std::set<OrvActor*>(own.boxes.begin() + half, own.boxes.end()));
        checkPoints(half, 100);
    }
}
