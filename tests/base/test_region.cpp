// Regions of rectangles to redraw.
#include "orv/region.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// n disjoint squares in a row, 10 wide with gaps of 10.
void addDisjoint(Orv2dRegion& r, int n, int y = 0) {
    for (int i = 0; i < n; i++) r.extendBy(Orv2dRect(i * 20, y, 10, 10));
}

std::vector<Orv2dRect> members(const Orv2dRegion& r) {
    std::vector<Orv2dRect> v;
    for (unsigned short i = 0; i < r.count; i++) v.push_back(r.rectangle(i));
    return v;
}

}  // namespace

TEST(Region, EmptySingleAndStorage) {
    Orv2dRegion r;
    EXPECT_EQ(std::vector<int>({25, 0, 0}), std::vector<int>({r.capacity, r.count, r.usesHeap()}));
    EXPECT_FALSE(r.contains(Orv2dPoint(0, 0)));  // even at the default box's origin
    Orv2dRegion big(30), small(3);
    EXPECT_EQ(std::make_pair(big.rectangles(), small.rectangles()),
              std::make_pair(big.heap, (Orv2dRect*)small.embedded));
}

TEST(Region, ExtendByAppendsOrExtendsTheFirstOverlap) {
    Orv2dRegion r;
    r.extendBy(Orv2dRect(0, 0, 10, 10));
    r.extendBy(Orv2dRect(20, 0, 10, 10));
    // Overlaps both; the first member takes it and no merging follows.
    r.extendBy(Orv2dRect(5, 0, 20, 5));
    // Touching is not intersecting: appended; inside the box but in no member: appended.
    r.extendBy(Orv2dRect(30, 0, 5, 5));
    r.extendBy(Orv2dRect(31, 7, 2, 2));
    EXPECT_EQ(members(r), std::vector<Orv2dRect>(
                              {{0, 0, 25, 10}, {20, 0, 10, 10}, {30, 0, 5, 5}, {31, 7, 2, 2}}));
    EXPECT_EQ(r.bbox, Orv2dRect(0, 0, 35, 10));
}

TEST(Region, TwentySixthRectangleMovesToTheHeapAndGrowthIsByOne) {
    Orv2dRegion r;
    addDisjoint(r, 25);
    EXPECT_EQ(r.heap, nullptr);
    r.extendBy(Orv2dRect(25 * 20, 0, 10, 10));
    EXPECT_EQ(std::vector<int>({26, 26, 1}), std::vector<int>({r.count, r.capacity, r.usesHeap()}));
    for (int i = 0; i < 26; i++)
        EXPECT_EQ(r.rectangle((unsigned short)i), Orv2dRect(i * 20, 0, 10, 10));
    r.extendBy(Orv2dRect(26 * 20, 0, 10, 10));
    r.extendBy(Orv2dRect(5, 5, 1, 1));  // overlapping: no growth
    EXPECT_EQ(std::vector<int>({27, 27}), std::vector<int>({r.count, r.capacity}));
    // The pattern of the redraw code: past 32 members, restart from the box. Everything after the
    // collapse falls into the box, gaps included.
    Orv2dRegion c;
    for (int i = 0; i < 40; i++) {
        c.extendBy(Orv2dRect((i % 8) * 20, (i / 8) * 20, 10, 10));
        if (c.count > 32) {
            Orv2dRect box = c.bbox;
            c.count = 0;
            c.extendBy(box);
        }
    }
    EXPECT_EQ(std::make_tuple(c.capacity, members(c), c.contains(Orv2dPoint(15, 15))),
              std::make_tuple((int16_t)33, std::vector<Orv2dRect>({{0, 0, 150, 90}}), true));
}

TEST(Region, ContainsAndIntersectsTestOneMemberAtATime) {
    Orv2dRegion r;
    r.extendBy(Orv2dRect(0, 0, 10, 10));
    r.extendBy(Orv2dRect(10, 0, 10, 10));  // touches: a second member
    r.extendBy(Orv2dRect(40, 40, 10, 10));
    // Covered, but by two members; in the box, in no member; touching the corner only.
    EXPECT_EQ(
        std::vector<bool>({r.contains(Orv2dRect(2, 2, 5, 5)), r.contains(Orv2dRect(5, 0, 10, 5)),
                           r.contains(Orv2dPoint(10, 10)), r.contains(Orv2dPoint(30, 30)),
                           r.intersects(Orv2dRect(45, 45, 100, 100)),
                           r.intersects(Orv2dRect(25, 25, 10, 10)),
                           r.intersects(Orv2dRect(50, 50, 10, 10))}),
        std::vector<bool>({true, false, true, false, true, false, false}));
    // An intersection keeps empty members.
    r.intersection(Orv2dRect(5, 5, 10, 10));
    EXPECT_EQ(members(r), std::vector<Orv2dRect>({{5, 5, 5, 5}, {10, 5, 5, 5}, {40, 40, 0, 0}}));
}

TEST(Region, CopyAndAssign) {
    Orv2dRegion big;
    addDisjoint(big, 27);
    Orv2dRegion copy(big);
    copy.rectangle(0).x = 99;  // a copy of its own
    EXPECT_EQ(big.rectangle(0).x, 0);
    EXPECT_EQ(std::vector<int>({27, 27}), std::vector<int>({copy.capacity, copy.count}));
    Orv2dRegion small;
    addDisjoint(small, 3, 100);
    Orv2dRegion a(40);
    a = small;  // frees the old heap array, back to 25
    EXPECT_EQ(std::vector<int>({25, 0, 3}), std::vector<int>({a.capacity, a.usesHeap(), a.count}));
    EXPECT_EQ(members(a), members(small));
    Orv2dRegion sized(60);
    addDisjoint(sized, 30);
    a = sized;  // exactly the count, not the other's capacity
    EXPECT_EQ(std::make_pair(a.capacity, a.rectangle(29)),
              std::make_pair((int16_t)30, Orv2dRect(580, 0, 10, 10)));
    a.extendBy(Orv2dRect(0, 500, 1, 1));
    a = a;
    EXPECT_EQ(std::vector<int>({31, 31}), std::vector<int>({a.capacity, a.count}));
}

TEST(Region, TranslateGrowAndMatrices) {
    Orv2dRegion r;
    r.extendBy(Orv2dRect(0, 0, 10, 10));
    r.extendBy(Orv2dRect(20, 0, 10, 10));
    r.translate(-5, 7);
    r.grow(2, -3);
    EXPECT_EQ(members(r), std::vector<Orv2dRect>({{-5, 7, 12, 7}, {15, 7, 12, 7}}));
    EXPECT_EQ(r.bbox, Orv2dRect(-5, 7, 32, 7));
    Orv2dMatrix twice(2, 2);
    r.apply(twice);
    EXPECT_EQ(std::make_pair(r.rectangle(1), r.bbox),
              std::make_pair(Orv2dRect(30, 14, 24, 14), Orv2dRect(-10, 14, 64, 14)));
    r.inverse(twice);
    EXPECT_EQ(r.bbox, Orv2dRect(-5, 7, 32, 7));
    testing::internal::CaptureStdout();
    r.inverse(Orv2dMatrix(0, 0, 0, 0, 0, 0));
    EXPECT_NE(testing::internal::GetCapturedStdout().find(
                  "Orv2dMatrix::inverse(Orv2dRect&): bad transformer "),
              std::string::npos);
    EXPECT_EQ(r.bbox, Orv2dRect(-5, 7, 32, 7));  // left as it was
}
