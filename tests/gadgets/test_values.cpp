// Value gadgets without a display: ranges and clamps of scroll bars, sliders and thumb wheels,
// the layout of a bar and the value under a point.
#include "orv/value.h"
#include "orv_fixtures.h"

namespace {

// Minimum, maximum, value and slider size.
typedef std::vector<long> Range;

Range rangeOf(const OrvScrollBar& b) {
    return {b.min, b.max, b.value, b.sliderSize};
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
        bar.setValues(row.given[0], row.given[1], row.given[2], row.given[3]);
        EXPECT_EQ(rangeOf(bar), row.stored);
    }
    OrvScrollBar bar(nullptr, Orv2dRect(0, 0, 200, 20), OrvHorizontal, 2);
    EXPECT_EQ(rangeOf(bar), (Range{0, 100, 25, 50})) << "the defaults";
    for (auto [set, got] : {std::pair<long, long>{80, 50}, {-1, 0}, {50, 50}, {12, 12}}) {
        bar.setValue(set);
        EXPECT_EQ(bar.value, got) << set;
    }
    bar.setPageIncrement(500);
    long large = bar.pageIncrement;
    bar.setPageIncrement(0);
    bar.setIncrement(-3);
    EXPECT_EQ(Range({large, bar.pageIncrement, bar.increment}), Range({100, 1, 1}));
    bar.setValue(0);
    EXPECT_EQ(std::make_pair(bar.atEnd(1), bar.atEnd(2)), std::make_pair(1ul, 0ul));
    bar.setValue(50);
    EXPECT_EQ(std::make_pair(bar.atEnd(1), bar.atEnd(2)), std::make_pair(0ul, 1ul));
}

TEST(ScrollBarValues, LayoutOfThePartsAndTheValueUnderAPoint) {
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
    Orv2dRect first, second, trough, thumb;
    for (const Row& row : rows) {
        OrvScrollBar bar(nullptr, row.box, row.position, 2);
        EXPECT_EQ(bar.computeBBox(first, second, trough, thumb, nullptr), row.box);
        EXPECT_EQ(std::vector<Orv2dRect>({first, second, trough, thumb}),
                  std::vector<Orv2dRect>({row.first, row.second, row.trough, row.thumb}));
    }
    // Through a matrix, the parts are mapped.
    OrvScrollBar bar(nullptr, Orv2dRect(10, 20, 200, 20), OrvHorizontal, 2);
    Orv2dMatrix twice(2, 2);
    EXPECT_EQ(bar.computeBBox(first, second, trough, thumb, &twice), Orv2dRect(20, 40, 400, 40));
    EXPECT_EQ(trough, Orv2dRect(60, 42, 320, 36));
    struct Point {
        long min, max;
        int x;
        long value;
    } points[] = {
        {0, 100, 110, 50},  {0, 100, 30, 0},   {0, 100, 29, 0},  // -0.6 truncates to 0
        {0, 100, 190, 100}, {10, 110, 30, 10}, {0, 100, 25, -3},
    };
    for (const Point& p : points) {
        bar.setValues(p.min, p.max, p.min, 1);
        EXPECT_EQ(bar.positionToValue(Orv2dPoint(p.x, 30), nullptr), p.value) << p.x;
    }
    OrvScrollBar vertical(nullptr, Orv2dRect(10, 20, 20, 200), OrvVertical, 2);
    EXPECT_EQ(vertical.positionToValue(Orv2dPoint(0, 120), nullptr), 50);
}

TEST(SliderValues, ClampsWithoutTheThumb) {
    OrvSlider slider(nullptr, Orv2dRect(10, 10, 200, 30), OrvHorizontal, 2);
    // Minimum, maximum, value and thumb given, and as stored.
    const Range rows[][2] = {
        {{100, 0, 150, 20}, {0, 100, 100, 20}},
        {{0, 5, 3, 10}, {0, 5, 3, 5}},  // a thumb longer than the range is cut to it
        {{0, 0, 0, 10}, {0, 0, 0, 1}},
        {{-10, 10, -20, 4}, {-10, 10, -10, 4}},
    };
    int lo, hi, v;
    unsigned long thumb;
    for (const auto& row : rows) {
        slider.setValues((int)row[0][0], (int)row[0][1], (int)row[0][2], row[0][3]);
        slider.getValues(lo, hi, v, thumb);
        EXPECT_EQ(Range({lo, hi, v, (long)thumb}), row[1]);
    }
    slider.setValues(0, 100, 0, 10);
    slider.setValue(100);  // up to max itself
    long top = slider.value;
    slider.setValue(-3);
    EXPECT_EQ(Range({top, slider.value}), Range({100, 0}));
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
        EXPECT_EQ(wheel.atEnd(2), !row.wrap && row.got == 360) << row.wrap << " " << row.set;
    }
    // The scroll bar's clamps do not apply.
    wheel.setValues(10, 5, 99, 300);
    EXPECT_EQ(rangeOf(wheel), (Range{10, 5, 99, 300}));
    wheel.setPageIncrement(5000);
    EXPECT_EQ(wheel.pageIncrement, 5000);
    wheel.setValues(100, 200, 150, 10);
    EXPECT_FLOAT_EQ(wheel.angle(), 180.0f) << "a turn is the whole range";
}
