// Regions of rectangles to redraw.
#include "orv/region.h"

#include <gtest/gtest.h>

#include <string>

// n disjoint squares in a row, 10 wide with gaps of 10.
static void addDisjoint(Orv2dRegion& r, int n, int y = 0) {
    for (int i = 0; i < n; i++) r.extendBy(Orv2dRect(i * 20, y, 10, 10));
}

TEST(Region, EmptyAndSingle) {
    Orv2dRegion r;
    EXPECT_EQ(r.capacity, 25);
    EXPECT_EQ(r.count, 0);
    EXPECT_FALSE(r.usesHeap());
    EXPECT_FALSE(r.contains(Orv2dPoint(0, 0)));  // even at the default bbox origin
    EXPECT_FALSE(r.contains(Orv2dRect(0, 0, 0, 0)));
    EXPECT_FALSE(r.intersects(Orv2dRect(-5, -5, 10, 10)));

    Orv2dRegion one(Orv2dRect(1, 2, 3, 4), 25);
    EXPECT_EQ(one.count, 1);
    EXPECT_EQ(one.bbox, Orv2dRect(1, 2, 3, 4));
    EXPECT_EQ(one.rectangle(0), Orv2dRect(1, 2, 3, 4));
    EXPECT_TRUE(one.contains(Orv2dPoint(4, 6)));

    Orv2dRegion big(30);
    EXPECT_TRUE(big.usesHeap());
    EXPECT_NE(big.heap, nullptr);
    EXPECT_EQ(big.rectangles(), big.heap);
    Orv2dRegion small(3);
    EXPECT_EQ(small.rectangles(), small.embedded);
}

TEST(Region, ExtendByAppendsOrExtendsTheFirstOverlap) {
    Orv2dRegion r;
    r.extendBy(Orv2dRect(0, 0, 10, 10));
    EXPECT_EQ(r.bbox, Orv2dRect(0, 0, 10, 10));
    r.extendBy(Orv2dRect(20, 0, 10, 10));
    EXPECT_EQ(r.count, 2);
    EXPECT_EQ(r.bbox, Orv2dRect(0, 0, 30, 10));

    // Overlaps both; the first member takes it and no merging follows.
    r.extendBy(Orv2dRect(5, 0, 20, 5));
    EXPECT_EQ(r.count, 2);
    EXPECT_EQ(r.rectangle(0), Orv2dRect(0, 0, 25, 10));
    EXPECT_EQ(r.rectangle(1), Orv2dRect(20, 0, 10, 10));

    // Touching is not intersecting: appended.
    r.extendBy(Orv2dRect(30, 0, 5, 5));
    EXPECT_EQ(r.count, 3);
    EXPECT_EQ(r.bbox, Orv2dRect(0, 0, 35, 10));

    // Inside the box but in no member: appended.
    Orv2dRegion g;
    g.extendBy(Orv2dRect(0, 0, 10, 10));
    g.extendBy(Orv2dRect(50, 50, 10, 10));
    g.extendBy(Orv2dRect(30, 30, 5, 5));
    EXPECT_EQ(g.count, 3);
    EXPECT_EQ(g.rectangle(2), Orv2dRect(30, 30, 5, 5));
}

TEST(Region, TwentySixthRectangleMovesToTheHeap) {
    Orv2dRegion r;
    addDisjoint(r, 25);
    EXPECT_EQ(r.count, 25);
    EXPECT_EQ(r.capacity, 25);
    EXPECT_FALSE(r.usesHeap());
    EXPECT_EQ(r.heap, nullptr);

    r.extendBy(Orv2dRect(25 * 20, 0, 10, 10));
    EXPECT_EQ(r.count, 26);
    EXPECT_EQ(r.capacity, 26);
    EXPECT_TRUE(r.usesHeap());
    ASSERT_NE(r.heap, nullptr);
    for (int i = 0; i < 26; i++)
        EXPECT_EQ(r.rectangle((unsigned short)i), Orv2dRect(i * 20, 0, 10, 10));

    r.extendBy(Orv2dRect(26 * 20, 0, 10, 10));
    EXPECT_EQ(r.capacity, 27);          // one at a time
    r.extendBy(Orv2dRect(5, 5, 1, 1));  // overlapping: no growth
    EXPECT_EQ(r.capacity, 27);
    EXPECT_EQ(r.count, 27);
    EXPECT_EQ(r.bbox, Orv2dRect(0, 0, 530, 10));

    Orv2dRegion small(2);  // below 25 the embedded array serves, capacity still counts
    addDisjoint(small, 4);
    EXPECT_EQ(small.capacity, 4);
    EXPECT_FALSE(small.usesHeap());
    EXPECT_EQ(small.rectangle(3), Orv2dRect(60, 0, 10, 10));
}

TEST(Region, CollapseToTheBoundingBoxAtTheLimit) {
    // The pattern of the redraw code: past 32 members, restart from the box.
    Orv2dRegion r;
    const int limit = 32;
    for (int i = 0; i < 40; i++) {
        r.extendBy(Orv2dRect((i % 8) * 20, (i / 8) * 20, 10, 10));
        if (r.count > limit) {
            Orv2dRect box = r.bbox;
            r.count = 0;
            r.extendBy(box);
        }
    }
    EXPECT_EQ(r.capacity, 33);  // reached 33 once, never more
    EXPECT_EQ(r.count, 1);      // everything after the collapse fell into the box
    EXPECT_EQ(r.rectangle(0), Orv2dRect(0, 0, 150, 90));
    EXPECT_EQ(r.bbox, Orv2dRect(0, 0, 150, 90));
    EXPECT_TRUE(r.contains(Orv2dPoint(15, 15)));  // a gap of the old members
}

TEST(Region, ContainsAndIntersectsTestOneMemberAtATime) {
    Orv2dRegion r;
    r.extendBy(Orv2dRect(0, 0, 10, 10));
    r.extendBy(Orv2dRect(10, 0, 10, 10));  // touches: a second member
    r.extendBy(Orv2dRect(40, 40, 10, 10));
    ASSERT_EQ(r.count, 3);
    EXPECT_TRUE(r.contains(Orv2dRect(2, 2, 5, 5)));
    EXPECT_FALSE(r.contains(Orv2dRect(5, 0, 10, 5)));  // covered, but by two members
    EXPECT_TRUE(r.contains(Orv2dPoint(10, 10)));
    EXPECT_FALSE(r.contains(Orv2dPoint(30, 30)));  // in the box, in no member
    EXPECT_FALSE(r.contains(Orv2dPoint(51, 0)));   // outside the box
    EXPECT_TRUE(r.intersects(Orv2dRect(45, 45, 100, 100)));
    EXPECT_FALSE(r.intersects(Orv2dRect(25, 25, 10, 10)));
    EXPECT_FALSE(r.intersects(Orv2dRect(50, 50, 10, 10)));  // touches the corner only
}

TEST(Region, IntersectionKeepsEmptyMembers) {
    Orv2dRegion r;
    r.extendBy(Orv2dRect(0, 0, 10, 10));
    r.extendBy(Orv2dRect(20, 0, 10, 10));
    r.intersection(Orv2dRect(5, 5, 10, 10));
    EXPECT_EQ(r.count, 2);
    EXPECT_EQ(r.rectangle(0), Orv2dRect(5, 5, 5, 5));
    EXPECT_EQ(r.rectangle(1).w, 0u);
    EXPECT_EQ(r.bbox, Orv2dRect(5, 5, 10, 5));
}

TEST(Region, CopyAndAssign) {
    Orv2dRegion big;
    addDisjoint(big, 27);
    Orv2dRegion copy(big);
    EXPECT_EQ(copy.capacity, 27);
    EXPECT_EQ(copy.count, 27);
    EXPECT_NE(copy.heap, big.heap);
    copy.rectangle(0).x = 99;
    EXPECT_EQ(big.rectangle(0).x, 0);
    EXPECT_EQ(copy.rectangle(26), Orv2dRect(520, 0, 10, 10));

    Orv2dRegion small;
    addDisjoint(small, 3, 100);
    Orv2dRegion a(40);
    a = small;  // frees the old heap array, back to 25
    EXPECT_EQ(a.capacity, 25);
    EXPECT_FALSE(a.usesHeap());
    EXPECT_EQ(a.count, 3);
    EXPECT_EQ(a.bbox, small.bbox);
    EXPECT_EQ(a.rectangle(2), Orv2dRect(40, 100, 10, 10));

    Orv2dRegion sized(60);
    addDisjoint(sized, 30);
    a = sized;  // exactly the count, not the other's capacity
    EXPECT_EQ(a.capacity, 30);
    EXPECT_TRUE(a.usesHeap());
    EXPECT_EQ(a.rectangle(29), Orv2dRect(580, 0, 10, 10));
    a.extendBy(Orv2dRect(0, 500, 1, 1));
    EXPECT_EQ(a.capacity, 31);
    a = a;
    EXPECT_EQ(a.count, 31);

    Orv2dRegion e;
    e = Orv2dRegion();
    EXPECT_EQ(e.count, 0);
}

TEST(Region, TranslateGrowAndMatrices) {
    Orv2dRegion r;
    r.extendBy(Orv2dRect(0, 0, 10, 10));
    r.extendBy(Orv2dRect(20, 0, 10, 10));
    r.translate(-5, 7);
    EXPECT_EQ(r.rectangle(1), Orv2dRect(15, 7, 10, 10));
    EXPECT_EQ(r.bbox, Orv2dRect(-5, 7, 30, 10));
    r.grow(2, -3);
    EXPECT_EQ(r.rectangle(0), Orv2dRect(-5, 7, 12, 7));
    EXPECT_EQ(r.bbox, Orv2dRect(-5, 7, 32, 7));

    Orv2dMatrix twice(2, 2);
    r.apply(twice);
    EXPECT_EQ(r.rectangle(1), Orv2dRect(30, 14, 24, 14));
    EXPECT_EQ(r.bbox, Orv2dRect(-10, 14, 64, 14));
    r.inverse(twice);
    EXPECT_EQ(r.rectangle(1), Orv2dRect(15, 7, 12, 7));
    EXPECT_EQ(r.bbox, Orv2dRect(-5, 7, 32, 7));

    Orv2dMatrix bad(0, 0, 0, 0, 0, 0);
    testing::internal::CaptureStdout();
    r.inverse(bad);
    std::string out = testing::internal::GetCapturedStdout();
    EXPECT_NE(out.find("Orv2dMatrix::inverse(Orv2dRect&): bad transformer "), std::string::npos);
    EXPECT_EQ(r.bbox, Orv2dRect(-5, 7, 32, 7));  // left as it was
}
