// Value gadgets without input: ranges and clamps of scroll bars, sliders and
// thumb wheels, the layout of a bar, the value under a point, and what each
// draws, read back on both screens.
#include "orv/value.h"
#include "orv_fixtures.h"

namespace {

struct Range {
    long min, max, value, size;
};

Range rangeOf(const OrvScrollBar& b) {
    return Range{b.min, b.max, b.value, b.sliderSize};
}

bool operator==(const Range& a, const Range& b) {
    return a.min == b.min && a.max == b.max && a.value == b.value && a.size == b.size;
}

std::ostream& operator<<(std::ostream& o, const Range& r) {
    return o << r.min << " " << r.max << " " << r.value << " " << r.size;
}

}  // namespace

TEST(ScrollBarValues, SetValuesOrdersAndClamps) {
    struct Row {
        Range given, stored;
    } rows[] = {
        {{10, 5, 7, 3}, {5, 10, 7, 3}},       // the bounds are swapped
        {{5, 5, 5, 1}, {5, 6, 5, 1}},         // an empty range grows by one
        {{0, 100, 50, 0}, {0, 100, 50, 1}},   // a slider size of 0 becomes 1
        {{0, 100, 50, -4}, {0, 100, 50, 1}},  // and so does one below
        {{0, 100, 200, 30}, {0, 100, 70, 30}}, {{0, 100, -5, 30}, {0, 100, 0, 30}},
        {{0, 10, 5, 50}, {0, 10, 0, 10}},  // the thumb fills the range
        {{-50, 50, 0, 20}, {-50, 50, 0, 20}},
    };
    for (const Row& row : rows) {
        OrvScrollBar bar(nullptr, Orv2dRect(0, 0, 200, 20), OrvHorizontal, 2);
        bar.setValues(row.given.min, row.given.max, row.given.value, row.given.size);
        EXPECT_EQ(rangeOf(bar), row.stored) << row.given;
    }
}

TEST(ScrollBarValues, DefaultsStepsAndEnds) {
    OrvScrollBar bar(nullptr, Orv2dRect(0, 0, 200, 20), OrvHorizontal, 2);
    EXPECT_EQ(rangeOf(bar), (Range{0, 100, 25, 50}));
    EXPECT_EQ(bar.increment, 1);
    EXPECT_EQ(bar.pageIncrement, 50);
    EXPECT_EQ(bar.lastDrawn, 65535u);
    EXPECT_STREQ(bar.defaultRole(), "ScrollBar");
    EXPECT_FALSE(bar.isThumbWheel());
    struct Row {
        long set, got;
    } rows[] = {{80, 50}, {-1, 0}, {50, 50}, {12, 12}};
    for (const Row& row : rows) {
        bar.setValue(row.set);
        EXPECT_EQ(bar.value, row.got) << row.set;
    }
    bar.setPageIncrement(500);
    EXPECT_EQ(bar.pageIncrement, 100);
    bar.setPageIncrement(0);
    EXPECT_EQ(bar.pageIncrement, 1);
    bar.setIncrement(-3);
    EXPECT_EQ(bar.increment, 1);
    bar.setValue(0);
    EXPECT_TRUE(bar.atEnd(1));
    EXPECT_FALSE(bar.atEnd(2));
    bar.setValue(50);
    EXPECT_FALSE(bar.atEnd(1));
    EXPECT_TRUE(bar.atEnd(2));
}

TEST(ScrollBarValues, LayoutOfTheParts) {
    struct Row {
        Orv2dRect box;
        OrvPosition position;
        Orv2dRect first, second, trough, thumb;
    } rows[] = {
        {Orv2dRect(10, 20, 200, 20), OrvHorizontal, Orv2dRect(12, 22, 16, 16),
         Orv2dRect(192, 22, 16, 16), Orv2dRect(30, 22, 160, 16), Orv2dRect(70, 22, 80, 16)},
        {Orv2dRect(10, 20, 20, 200), OrvVertical, Orv2dRect(12, 22, 16, 16),
         Orv2dRect(12, 202, 16, 16), Orv2dRect(12, 40, 16, 160), Orv2dRect(12, 80, 16, 80)},
        // Not more than twice as long as it is wide: one box for all.
        {Orv2dRect(0, 0, 40, 20), OrvHorizontal, Orv2dRect(0, 0, 40, 20), Orv2dRect(0, 0, 40, 20),
         Orv2dRect(0, 0, 40, 20), Orv2dRect(0, 0, 40, 20)},
        {Orv2dRect(0, 0, 20, 40), OrvVertical, Orv2dRect(0, 0, 20, 40), Orv2dRect(0, 0, 20, 40),
         Orv2dRect(0, 0, 20, 40), Orv2dRect(0, 0, 20, 40)},
    };
    for (const Row& row : rows) {
        OrvScrollBar bar(nullptr, row.box, row.position, 2);
        Orv2dRect first, second, trough, thumb;
        EXPECT_EQ(bar.computeBBox(first, second, trough, thumb, nullptr), row.box);
        EXPECT_EQ(first, row.first);
        EXPECT_EQ(second, row.second);
        EXPECT_EQ(trough, row.trough);
        EXPECT_EQ(thumb, row.thumb);
    }
    // Through a matrix, the parts are mapped.
    OrvScrollBar bar(nullptr, Orv2dRect(10, 20, 200, 20), OrvHorizontal, 2);
    Orv2dMatrix twice(2, 2);
    Orv2dRect first, second, trough, thumb;
    EXPECT_EQ(bar.computeBBox(first, second, trough, thumb, &twice), Orv2dRect(20, 40, 400, 40));
    EXPECT_EQ(trough, Orv2dRect(60, 42, 320, 36));
}

TEST(ScrollBarValues, ValueUnderAPoint) {
    OrvScrollBar bar(nullptr, Orv2dRect(10, 20, 200, 20), OrvHorizontal, 2);
    struct Row {
        long min, max;
        int x;
        long value;
    } rows[] = {
        {0, 100, 110, 50},  {0, 100, 30, 0},   {0, 100, 29, 0},  // -0.6 truncates to 0
        {0, 100, 190, 100}, {10, 110, 30, 10}, {0, 100, 25, -3},
    };
    for (const Row& row : rows) {
        bar.setValues(row.min, row.max, row.min, 1);
        EXPECT_EQ(bar.positionToValue(Orv2dPoint(row.x, 30), nullptr), row.value) << row.x;
    }
    OrvScrollBar vertical(nullptr, Orv2dRect(10, 20, 20, 200), OrvVertical, 2);
    EXPECT_EQ(vertical.positionToValue(Orv2dPoint(0, 120), nullptr), 50);
}

TEST(SliderValues, ClampsWithoutTheThumb) {
    OrvSlider slider(nullptr, Orv2dRect(10, 10, 200, 30), OrvHorizontal, 2);
    int lo, hi, v;
    unsigned long thumb;
    slider.getValues(lo, hi, v, thumb);
    EXPECT_EQ(lo, 0);
    EXPECT_EQ(hi, 100);
    EXPECT_EQ(v, 0);
    EXPECT_EQ(thumb, 10u);
    EXPECT_STREQ(slider.defaultRole(), "Slider");
    struct Row {
        int min, max, value;
        unsigned long thumb;
        int gotMin, gotMax, gotValue;
        unsigned long gotThumb;
    } rows[] = {
        {100, 0, 150, 20, 0, 100, 100, 20},
        {0, 5, 3, 10, 0, 5, 3, 5},  // a thumb longer than the range is cut to it
        {0, 0, 0, 10, 0, 0, 0, 1},
        {-10, 10, -20, 4, -10, 10, -10, 4},
    };
    for (const Row& row : rows) {
        slider.setValues(row.min, row.max, row.value, row.thumb);
        slider.getValues(lo, hi, v, thumb);
        EXPECT_EQ(lo, row.gotMin);
        EXPECT_EQ(hi, row.gotMax);
        EXPECT_EQ(v, row.gotValue);
        EXPECT_EQ(thumb, row.gotThumb);
    }
    slider.setValues(0, 100, 0, 10);
    slider.setValue(100);
    EXPECT_EQ(slider.value, 100);  // up to max itself
    slider.setValue(-3);
    EXPECT_EQ(slider.value, 0);
    // The run of the thumb's centre: 17 to 203.
    struct Point {
        int x, value;
    } points[] = {{17, 0}, {110, 50}, {203, 100}, {0, 0}, {300, 100}, {18, 1}};
    for (const Point& p : points)
        EXPECT_EQ(slider.positionToValue(Orv2dPoint(p.x, 20), nullptr), p.value) << p.x;
    slider.setValue(50);
    EXPECT_EQ(slider.thumbBox(nullptr), Orv2dRect(105, 12, 10, 26));
}

TEST(ThumbWheelValues, WrapsRound) {
    OrvThumbWheel wheel(nullptr, Orv2dRect(0, 0, 200, 20), OrvHorizontal, 2);
    EXPECT_EQ(rangeOf(wheel), (Range{0, 360, 0, 10}));
    EXPECT_EQ(wheel.increment, 3);
    EXPECT_EQ(wheel.pageIncrement, 10);
    EXPECT_EQ(wheel.wrap, 1u);
    EXPECT_TRUE(wheel.isThumbWheel());
    EXPECT_STREQ(wheel.defaultRole(), "ThumbWheel");
    struct Row {
        unsigned long wrap;
        long set, got;
    } rows[] = {
        {1, 361, 1},  {1, 720, 360},  {1, 360, 360}, {1, -3, 357}, {1, -360, 0},
        {1, 3601, 1}, {1, -721, 359}, {0, 400, 360}, {0, -3, 0},   {0, 355, 355},
    };
    for (const Row& row : rows) {
        wheel.setWrap(row.wrap);
        wheel.setValue(7);
        wheel.setValue(row.set);
        EXPECT_EQ(wheel.value, row.got) << row.wrap << " " << row.set;
    }
    wheel.setWrap(1);
    EXPECT_FALSE(wheel.atEnd(1));
    wheel.setWrap(0);
    wheel.setValue(360);
    EXPECT_TRUE(wheel.atEnd(2));
    // The scroll bar's clamps do not apply.
    wheel.setValues(10, 5, 99, 300);
    EXPECT_EQ(rangeOf(wheel), (Range{10, 5, 99, 300}));
    wheel.setPageIncrement(5000);
    EXPECT_EQ(wheel.pageIncrement, 5000);
    struct Angle {
        long min, max, value;
        float degrees;
    } angles[] = {
        {0, 360, 90, 90.0f}, {0, 180, 45, 90.0f}, {100, 200, 150, 180.0f}, {5, 5, 5, 0.0f}};
    for (const Angle& a : angles) {
        wheel.setValues(a.min, a.max, a.value, 10);
        EXPECT_FLOAT_EQ(wheel.angle(), a.degrees);
    }
}

namespace {

class Values : public OrvScreenTest {
protected:
    OrvMakeUp* look = nullptr;
    void SetUp() override {
        OrvScreenTest::SetUp();
        if (!d) return;
        look = paint("black", "gray75");
        OrvCount(look);
    }
    void TearDown() override {
        if (look) OrvRelease(look);
        OrvScreenTest::TearDown();
    }
    unsigned long fg(const OrvMakeUp* m) { return m->foreground()->index(d->rootCanvas) & mask(); }
};
ORV_ON_BOTH_SCREENS(Values);

}  // namespace

TEST_P(Values, ScrollBarPixels) {
    OrvBitmap* b = sheet(240, 240);
    OrvScrollBar bar(d, Orv2dRect(10, 20, 200, 20), OrvHorizontal, 2, look);
    bar.draw2d(b, nullptr);
    // Thumb from 70 to 150 on a trough from 30 to 190.
    EXPECT_EQ(pixel(b, 110, 30), fg(bar.faceMakeUp));
    EXPECT_EQ(pixel(b, 110, 23), fg(bar.litMakeUp));
    EXPECT_EQ(pixel(b, 110, 36), fg(bar.shadedMakeUp));
    EXPECT_EQ(pixel(b, 110, 37), px("black"));  // the thumb's outline, inside its box
    EXPECT_EQ(pixel(b, 50, 30), fg(bar.pressedMakeUp));
    EXPECT_EQ(pixel(b, 170, 30), fg(bar.pressedMakeUp));
    EXPECT_EQ(pixel(b, 20, 30), fg(bar.faceMakeUp));   // inside the left arrow
    EXPECT_EQ(pixel(b, 200, 30), fg(bar.faceMakeUp));  // and the right one
    EXPECT_EQ(pixel(b, 10, 30), px("black"));
    EXPECT_EQ(bar.lastDrawn, (40ul << 16) | 80ul);
    // Vertical: the thumb lies lower for a larger value.
    OrvScrollBar vertical(d, Orv2dRect(215, 10, 20, 200), OrvVertical, 2, look);
    vertical.setValues(0, 100, 50, 10);
    vertical.draw2d(b, nullptr);
    // Trough from 30 to 190, thumb from 110 to 126.
    EXPECT_EQ(pixel(b, 225, 118), fg(vertical.faceMakeUp));
    EXPECT_EQ(pixel(b, 225, 100), fg(vertical.pressedMakeUp));
    EXPECT_EQ(pixel(b, 225, 135), fg(vertical.pressedMakeUp));
    delete b;
}

TEST_P(Values, ShortBarDrawsAsARelief) {
    OrvBitmap* a = sheet(50, 30);
    OrvBitmap* b = sheet(50, 30);
    OrvScrollBar bar(d, Orv2dRect(2, 2, 40, 20), OrvHorizontal, 3, look);
    OrvReliefRectangle plate(d, Orv2dRect(2, 2, 40, 20), 3, look);
    bar.draw2d(a, nullptr);
    plate.draw2d(b, nullptr);
    int differ = 0;
    for (int y = 0; y < 30; y++)
        for (int x = 0; x < 50; x++) differ += pixel(a, x, y) != pixel(b, x, y);
    EXPECT_EQ(differ, 0);
    EXPECT_EQ(pixel(a, 20, 12), fg(bar.faceMakeUp));
    delete a;
    delete b;
}

TEST_P(Values, SliderPixels) {
    OrvBitmap* b = sheet(220, 50);
    OrvSlider slider(d, Orv2dRect(10, 10, 200, 30), OrvHorizontal, 2, look);
    slider.setValue(50);
    slider.draw2d(b, nullptr);
    // The thumb (105 to 115) stands on the plate with its own bevel.
    EXPECT_EQ(pixel(b, 110, 13), fg(slider.litMakeUp));
    EXPECT_EQ(pixel(b, 60, 13), fg(slider.faceMakeUp));
    EXPECT_EQ(pixel(b, 110, 25), fg(slider.faceMakeUp));
    // The groove, sunken, on either side of it.
    EXPECT_EQ(pixel(b, 60, 24), fg(slider.pressedMakeUp));
    EXPECT_EQ(pixel(b, 160, 24), fg(slider.pressedMakeUp));
    delete b;
}

TEST_P(Values, ThumbWheelMark) {
    OrvBitmap* b = sheet(220, 40);
    OrvThumbWheel wheel(d, Orv2dRect(10, 10, 200, 20), OrvHorizontal, 2, look);
    EXPECT_EQ(wheel.markMakeUp->foreground(), d->color("red"));
    struct Row {
        long value;
        int markX;  // 110 + 98 sin(angle)
    } rows[] = {{0, 110}, {30, 159}, {330, 61}};
    for (const Row& row : rows) {
        wheel.setValue(row.value);
        b->rectangle(paint("white"), Orv2dRect(0, 0, 220, 40), 1);
        wheel.draw2d(b, nullptr);
        EXPECT_EQ(pixel(b, row.markX, 20), px("red")) << row.value;
        EXPECT_EQ(countPixels(b, Orv2dRect(12, 12, 196, 1), px("red")), 3) << row.value;
    }
    // Turned away from the viewer, the mark is not drawn.
    wheel.setValue(180);
    b->rectangle(paint("white"), Orv2dRect(0, 0, 220, 40), 1);
    wheel.draw2d(b, nullptr);
    EXPECT_EQ(countPixels(b, Orv2dRect(0, 0, 220, 40), px("red")), 0);
    // With arrows, the wheel lies between them.
    wheel.arrows(1);
    wheel.setValue(0);
    Orv2dRect first, second, trough, thumb;
    wheel.computeBBox(first, second, trough, thumb, nullptr);
    EXPECT_EQ(trough, Orv2dRect(30, 12, 160, 16));
    EXPECT_EQ(thumb, trough);
    b->rectangle(paint("white"), Orv2dRect(0, 0, 220, 40), 1);
    wheel.draw2d(b, nullptr);
    EXPECT_EQ(pixel(b, 110, 20), px("red"));
    EXPECT_EQ(pixel(b, 20, 20), fg(wheel.faceMakeUp));  // the left arrow
    delete b;
}
