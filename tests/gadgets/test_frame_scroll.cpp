// A frame's scroll bars and its interior stage, under real input: the bars
// range over the interior's contents and window; an arrow, the trough, the
// thumb and an arrow held down scroll the interior by what the value moved;
// contents, size and transformer of the interior move the bars; fitting the
// frame to its contents.
#include "orv/shapes.h"
#include "frame_support.h"

namespace {

class FrameScroll : public FrameTest {
protected:
    OrvActor* origin = nullptr;

    // A frame at 20, 20 of 300 by 220 with both bars: an interior of 270 by 168
    // at 27, 49; a mark at the origin, a green box in view, a red one far right and below.
    void SetUp() override {
        FrameTest::SetUp();
        if (!stage) return;
        frame = new OrvFrame(director, Orv2dRect(20, 20, 300, 220), 1, look("black", "white"));
        frame->showTitleBar("Scrolled", 22);
        frame->showDecoration(7);
        frame->showScrollBars(1, 1, OrvBottom, OrvLeft, 16);  // 1 puts the bar on the right
        stage->append(frame);
        settle();
        inside = frame->getInteriorStage();
        ASSERT_NE(inside, nullptr);
        origin = new OrvFilledRectangle(director, Orv2dRect(0, 0, 5, 5), look("gray", "gray"));
        inside->append(origin);
        inside->append(
            new OrvFilledRectangle(director, Orv2dRect(200, 50, 20, 20), look("green", "green")));
        inside->append(
            new OrvFilledRectangle(director, Orv2dRect(400, 300, 40, 30), look("red", "red")));
        settle();
    }
    long tx() const { return inside->transformer ? (long)inside->transformer->tx : 0; }
    long ty() const { return inside->transformer ? (long)inside->transformer->ty : 0; }
    void expectBar(const OrvScrollBar* bar, long max, long value, long slider, const char* what) {
        EXPECT_EQ(std::vector<long>({bar->min, bar->max, bar->value, bar->sliderSize}),
                  std::vector<long>({0, max, value, slider}))
            << what;
    }
};

}  // namespace

TEST_F(FrameScroll, TheBarsRangeOverContentsAndWindow) {
    EXPECT_EQ(std::make_pair(inside->width, inside->height), std::make_pair(270ul, 168ul));
    expectBar(frame->hScrollBar, 440, 0, 270, "horizontal");
    expectBar(frame->vScrollBar, 330, 0, 168, "vertical");
    // More contents: a longer range.
    inside->append(
        new OrvFilledRectangle(director, Orv2dRect(600, 20, 40, 10), look("blue", "blue")));
    expectBar(frame->hScrollBar, 640, 0, 270, "after a new actor");
    // A wider interior: a longer thumb.
    frame->fitToSize(Orv2dRect(20, 20, 340, 220));
    settle();
    expectBar(frame->hScrollBar, 640, 0, 310, "after a resize");
    // The interior's own transformer, moved by other means, moves the bars too.
    inside->translate(-50, -20);
    expectBar(frame->hScrollBar, 640, 50, 310, "after a translation");
    expectBar(frame->vScrollBar, 330, 20, 168, "after a translation");
}

TEST_F(FrameScroll, ArrowsTroughAndThumbScrollTheInterior) {
    unsigned long green = rgbOf("green");
    ASSERT_EQ(rgbIn(inside, 205, 55), green);
    struct Row {
        const char* gesture;
        bool horizontal;
        int x0, y0, x1, y1;  // press, then release (a drag when they differ)
        long value;
    } rows[] = {
        // The second arrow of the horizontal bar steps by the increment.
        {"right arrow", true, 289, 225, 289, 225, 1},
        {"left arrow", true, 33, 225, 33, 225, 0},
        // The trough sets the value under the pointer: 59 of 238 pixels of a range of 440.
        // Right of the thumb (which covers 146 of them), as far as the thumb may go.
        {"trough", true, 102 + 100, 225, 102 + 100, 225, 170},
        // The thumb follows the pointer: 30 pixels are 55 units.
        {"thumb", true, 200, 225, 170, 225, 115},
        {"trough, left of the thumb", true, 102, 225, 102, 225, 109},
        {"down arrow", false, 305, 209, 305, 209, 1},
        // Below the thumb: as far as it may go.
        {"vertical trough", false, 305, 170, 305, 170, 162},
    };
    for (const Row& row : rows) {
        if (row.x0 == row.x1 && row.y0 == row.y1)
            click(row.x0, row.y0);
        else
            drag(row.x0, row.y0, row.x1, row.y1, 3);
        const OrvScrollBar* bar = row.horizontal ? frame->hScrollBar : frame->vScrollBar;
        EXPECT_EQ(bar->value, row.value) << row.gesture;
        // The interior moved by exactly what the value moved.
        EXPECT_EQ(row.horizontal ? -tx() : -ty(), row.value) << row.gesture;
        long gx = 205 + tx(), gy = 55 + ty();
        if (gx >= 0 && gx < 270 && gy >= 0 && gy < 168) {
            EXPECT_EQ(rgbIn(inside, (int)gx, (int)gy), green) << row.gesture;
        }
    }
    // The red box at 400, 300 comes into view when both bars are at their ends.
    frame->hScrollBar->setValue(170);
    frame->vScrollBar->setValue(162);
    frame->adjust();
    settle();
    EXPECT_EQ(std::make_pair(tx(), ty()), std::make_pair(-170l, -162l));
    EXPECT_EQ(rgbIn(inside, 400 - 170 + 5, 300 - 162 + 5), rgbOf("red"));
}

TEST_F(FrameScroll, AnArrowHeldDownScrollsAtEachStep) {
    press(289, 225);
    OrvTestRunFor(700);
    // Each repeat of the arrow has moved the interior with it.
    long during = frame->hScrollBar->value;
    EXPECT_GT(during, 3);
    EXPECT_EQ(-tx(), during);
    release();
    EXPECT_EQ(-tx(), frame->hScrollBar->value);
}

TEST_F(FrameScroll, FittedToItsContents) {
    frame->fitToContents();
    settle();
    // The interior shows all: 440 by 330, the furniture around it.
    EXPECT_EQ(std::make_pair(inside->width, inside->height), std::make_pair(440ul, 330ul));
    EXPECT_EQ(str(frame->bbox2d(nullptr)),
              str(Orv2dRect(20, 20, 440 + 7 + 7 + 16, 330 + 7 + 7 + 22 + 16)));
    expectBar(frame->hScrollBar, 440, 0, 440, "horizontal");
    expectBar(frame->vScrollBar, 330, 0, 330, "vertical");
}

// The range is the union of the contents and the window, both where they stand
// now: an empty margin left of the contents, once scrolled past, leaves the
// range, and the bar starts again from 0 there. The interior still moved by
// what the value moved.
TEST_F(FrameScroll, AMarginScrolledPastLeavesTheRange) {
    inside->remove(origin, 1);
    expectBar(frame->hScrollBar, 440, 0, 270, "without the mark at the origin");
    click(289, 225);
    EXPECT_EQ(tx(), -1);
    expectBar(frame->hScrollBar, 439, 0, 270, "one step right");
}
