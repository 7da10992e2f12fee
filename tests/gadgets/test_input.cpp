// Gadgets driven by real input (XTest) on a server of the test's own:
// buttons and toggles pressed and released inside and outside, radio groups,
// the cluster's open interior, highlight, and the arrows, trough and thumb of
// scroll bars, sliders and thumb wheels with their callbacks in order.
#include "gadget_support.h"

namespace {

// Counts what the stage is asked to repaint for one actor.
class InvalidationHook : public OrvStageHook {
public:
    int calls = 0;
    void invalidateActorCall(const OrvActor*) override { calls++; }
    unsigned long deletedByStage() const override { return 1; }
};

// Writes the member that the group left checked.
class LogRadioGroup : public OrvRadioGroup {
public:
    GadgetLog* log;
    explicit LogRadioGroup(GadgetLog* into) : log(into) {}
    void changed(OrvToggle* selected) override {
        log->push_back(std::string("radio ") + selected->getLabel());
    }
};

}  // namespace

TEST_F(GadgetStage, ButtonPressedAndReleasedInsideAndOutside) {
    OrvReliefLabel* button = new OrvReliefLabel(director, Orv2dRect(20, 20, 100, 30), "Press", 2);
    stage->append(button);
    ASSERT_STREQ(button->getRole()->className(), "Button");
    watch(button);
    unsigned long face = rgbOf(button->faceMakeUp), pressed = rgbOf(button->pressedMakeUp);
    EXPECT_EQ(rgb(100, 35), face);

    struct Row {
        const char* gesture;
        std::vector<std::pair<int, int>> path;  // press at the first point, release at the last
        int callbacks;
    } rows[] = {
        {"inside", {{60, 35}}, 1},
        {"out and release", {{60, 35}, {200, 120}}, 0},
        {"out and back", {{60, 35}, {200, 120}, {70, 40}}, 1},
        {"pressed outside, released inside", {{200, 120}, {60, 35}}, 0},
    };
    for (const Row& row : rows) {
        log.clear();
        press(row.path[0].first, row.path[0].second);
        bool inside =
            button->contains2d(Orv2dPoint(row.path[0].first, row.path[0].second), nullptr);
        EXPECT_EQ(rgb(100, 35), inside ? pressed : face) << row.gesture;
        for (size_t i = 1; i < row.path.size(); i++) {
            move(row.path[i].first, row.path[i].second);
            bool in =
                button->contains2d(Orv2dPoint(row.path[i].first, row.path[i].second), nullptr);
            // The look follows the pointer only for a press that began on the button.
            EXPECT_EQ(rgb(100, 35), in && inside ? pressed : face) << row.gesture << " " << i;
        }
        release();
        EXPECT_EQ((int)log.size(), row.callbacks) << row.gesture << ": " << joined();
        if (row.callbacks) {
            EXPECT_EQ(log[0], "changed 0") << row.gesture;
        }
        EXPECT_EQ(rgb(100, 35), face) << row.gesture;
        EXPECT_FALSE(button->isInverted());
    }
}

TEST_F(GadgetStage, ToggleFlipsOncePerCompletedClick) {
    OrvToggle* toggle = new OrvToggle(director, Orv2dRect(20, 20, 120, 20), "Option", 2);
    stage->append(toggle);
    ASSERT_STREQ(toggle->getRole()->className(), "Toggle");
    watch(toggle);
    Orv2dRect box = toggle->checkBox(nullptr);
    int mx = box.x + 4 * (int)box.w / 16, my = box.y + 10 * (int)box.h / 16;
    unsigned long red = director->color("red")->index(stage) & 0xFFFFFF;
    click(60, 28);
    EXPECT_TRUE(toggle->isChecked());
    EXPECT_EQ(rgb(mx, my), red);
    click(60, 28);
    EXPECT_FALSE(toggle->isChecked());
    EXPECT_NE(rgb(mx, my), red);
    EXPECT_EQ(joined(), "changed 1, changed 0");
    // Dragged out and released outside: back as it was, no callback.
    log.clear();
    press(60, 28);
    EXPECT_TRUE(toggle->isChecked());
    move(250, 200);
    EXPECT_FALSE(toggle->isChecked());
    release();
    EXPECT_FALSE(toggle->isChecked());
    EXPECT_TRUE(log.empty()) << joined();
}

TEST_F(GadgetStage, RadioGroupKeepsOneChecked) {
    OrvCluster* group = new OrvCluster(director, Orv2dRect(10, 10, 200, 110), "Size", 2);
    stage->append(group);
    LogRadioGroup* radio = new LogRadioGroup(&log);
    const char* names[] = {"Small", "Medium", "Large"};
    OrvToggle* boxes[3];
    for (int i = 0; i < 3; i++) {
        boxes[i] = new OrvToggle(director, Orv2dRect(30, 35 + 25 * i, 120, 20), names[i], 2);
        boxes[i]->useDiamond(1);
        radio->add(boxes[i]);
        stage->append(boxes[i]);
    }
    boxes[0]->setChecked(1);
    struct Row {
        int click;
        int checked;
    } rows[] = {{1, 1}, {2, 2}, {2, 2}, {0, 0}};
    for (const Row& row : rows) {
        log.clear();
        Orv2dRect r = boxes[row.click]->rect;
        click(r.x + 40, r.y + 10);
        for (int i = 0; i < 3; i++)
            EXPECT_EQ(boxes[i]->isChecked(), i == row.checked ? 1u : 0u)
                << "after " << row.click << ", box " << i;
        EXPECT_EQ(joined(), std::string("radio ") + names[row.checked]);
        EXPECT_EQ(radio->selected(stage), boxes[row.checked]);
    }
    // A press dragged away changes nothing.
    log.clear();
    press(70, 45);
    move(280, 220);
    release();
    EXPECT_TRUE(boxes[0]->isChecked());
    EXPECT_FALSE(boxes[1]->isChecked());
    EXPECT_TRUE(log.empty()) << joined();
}

TEST_F(GadgetStage, ClusterInteriorLetsThePointerThrough) {
    // The button lies under the cluster: appended first, hit last.
    OrvReliefLabel* button = new OrvReliefLabel(director, Orv2dRect(60, 60, 80, 30), "In", 2);
    stage->append(button);
    OrvCluster* group = new OrvCluster(director, Orv2dRect(20, 20, 200, 120), "Group", 2);
    stage->append(group);
    watch(button, "button");
    watch(group, "cluster");
    EXPECT_EQ(stage->contains(Orv2dPoint(100, 75), nullptr, 1), button);
    EXPECT_EQ(stage->contains(Orv2dPoint(21, 80), nullptr, 1), group);
    click(100, 75);
    EXPECT_EQ(joined(), "button 0");
    log.clear();
    click(21, 80);
    EXPECT_EQ(joined(), "cluster 0");
    // The interior is not painted over the button.
    EXPECT_EQ(rgb(100, 61), rgbOf(button->litMakeUp));
}

TEST_F(GadgetStage, HighlightFollowsThePointer) {
    OrvReliefLabel* button = new OrvReliefLabel(director, Orv2dRect(20, 20, 100, 30), "Hover", 2);
    button->allowHighlight(1);
    stage->append(button);
    move(250, 200);
    EXPECT_EQ(rgb(100, 40), rgbOf(button->faceMakeUp));
    move(100, 40);
    EXPECT_TRUE(button->isHighlighted());
    EXPECT_EQ(rgb(100, 40), rgbOf(button->litMakeUp));
    move(250, 200);
    EXPECT_FALSE(button->isHighlighted());
    EXPECT_EQ(rgb(100, 40), rgbOf(button->faceMakeUp));
}

TEST_F(GadgetStage, SameThicknessTwiceInvalidatesNothing) {
    OrvReliefRectangle* plate = new OrvReliefRectangle(director, Orv2dRect(10, 10, 50, 50), 2);
    stage->append(plate);
    InvalidationHook* hook = new InvalidationHook;
    stage->install(hook);
    plate->setThickness(2);
    plate->border(1);
    plate->setRect(Orv2dRect(10, 10, 50, 50));
    EXPECT_EQ(hook->calls, 0);
    plate->setThickness(4);
    EXPECT_EQ(hook->calls, 2);  // the old box and the new
    plate->setThickness(4);
    EXPECT_EQ(hook->calls, 2);
}

// ---------------------------------------------------------------------------
// Scroll bars
// ---------------------------------------------------------------------------

namespace {

// A bar from x 20 to 260 at y 100: arrows at 22 and 242, trough 40 to 240.
OrvScrollBar* makeBar(OrvDirector* d, OrvStage* s) {
    OrvScrollBar* bar = new OrvScrollBar(d, Orv2dRect(20, 100, 240, 20), OrvHorizontal, 2);
    s->append(bar);
    bar->setValues(0, 20, 10, 5);
    return bar;
}

}  // namespace

TEST_F(GadgetStage, ScrollBarArrowsStepOnce) {
    OrvScrollBar* bar = makeBar(director, stage);
    ASSERT_STREQ(bar->getRole()->className(), "ScrollBar");
    watch(bar);
    click(250, 110);  // the second arrow
    EXPECT_EQ(bar->value, 11);
    click(30, 110);  // the first
    click(30, 110);
    EXPECT_EQ(bar->value, 9);
    EXPECT_EQ(joined(), "drag 11, changed 11, drag 10, changed 10, drag 9, changed 9");
    // Two quick clicks are a click and a double click: both step.
    log.clear();
    click(250, 110);
    click(250, 110, true);
    EXPECT_EQ(bar->value, 11);
    EXPECT_EQ(joined(), "drag 10, changed 10, drag 11, changed 11");
}

TEST_F(GadgetStage, ScrollBarArrowAtTheEndDoesNothing) {
    OrvScrollBar* bar = makeBar(director, stage);
    watch(bar);
    bar->setValue(0);
    press(30, 110);
    OrvTestRunFor(450);
    release();
    EXPECT_EQ(bar->value, 0);
    EXPECT_TRUE(log.empty()) << joined();
    bar->setValue(15);
    click(250, 110);
    EXPECT_EQ(bar->value, 15);
    EXPECT_TRUE(log.empty()) << joined();
}

TEST_F(GadgetStage, HeldArrowRepeatsAndStopsAtTheEnd) {
    OrvScrollBar* bar = makeBar(director, stage);
    watch(bar);
    unsigned long trough = rgbOf(bar->pressedMakeUp), face = rgbOf(bar->faceMakeUp);
    press(250, 110);
    // Steps after 200, 390 and 570 ms (each period 10 ms shorter), 15 at 740 ms.
    OrvTestRunUntil([&] { return bar->value == 15; }, 2000);
    EXPECT_EQ(bar->value, 15);
    OrvTestRunFor(600);  // stopped: no further steps
    release();
    EXPECT_EQ(joined(), "drag 11, drag 12, drag 13, drag 14, drag 15, changed 15");
    // The thumb was repainted where the value put it: trough 40..240, thumb 190..240.
    EXPECT_EQ(rgb(215, 110), face);
    EXPECT_EQ(rgb(185, 110), trough);
    // And back down, held: the first arrow runs to the other end.
    log.clear();
    press(30, 110);
    OrvTestRunUntil([&] { return bar->value == 0; }, 6000);
    release();
    EXPECT_EQ(bar->value, 0);
    ASSERT_EQ(log.size(), 16u) << joined();
    EXPECT_EQ(log.front(), "drag 14");
    EXPECT_EQ(log[14], "drag 0");
    EXPECT_EQ(log.back(), "changed 0");
}

TEST_F(GadgetStage, RepeatPeriodShortensToTenMilliseconds) {
    OrvScrollBar* bar = makeBar(director, stage);
    bar->setValues(0, 1000, 0, 1);
    OrvCallback* owner = new LogCallback(&log, "owner");
    bar->setUserProperty(OrvScrollBarOwnerKey(), owner);
    OrvSBRole* role = (OrvSBRole*)OrvGetRole("ScrollBar");
    ASSERT_NE(role, nullptr);
    OrvCSBTimer timer(role, stage, bar, 2);
    EXPECT_EQ(timer.period, 200u);
    EXPECT_TRUE(timer.isRunning());
    timer.suspend();
    std::vector<unsigned long> periods;
    for (int i = 0; i < 22; i++) {
        timer.activate();
        periods.push_back(timer.period);
    }
    EXPECT_EQ(bar->value, 22);
    EXPECT_EQ(periods[0], 190u);
    EXPECT_EQ(periods[17], 20u);
    EXPECT_EQ(periods[18], 10u);
    EXPECT_EQ(periods[21], 10u);
    EXPECT_EQ(log.size(), 22u);
    EXPECT_EQ(log.back(), "owner 22");
    EXPECT_FALSE(timer.oneShot);
    // At the end the timer stops itself.
    bar->setValue(998);
    timer.activate();
    EXPECT_EQ(bar->value, 999);
    EXPECT_TRUE(timer.oneShot);
    EXPECT_FALSE(timer.isRunning());
    bar->removeUserProperty(OrvScrollBarOwnerKey());
    delete owner;
}

TEST_F(GadgetStage, ScrollBarTroughAndThumb) {
    OrvScrollBar* bar = makeBar(director, stage);
    watch(bar);
    // A press in the trough puts the value under the pointer: (200-40)/200*20 = 16, clamped to 15.
    click(200, 110);
    EXPECT_EQ(bar->value, 15);
    click(80, 110);  // (80-40)/200*20 = 4
    EXPECT_EQ(bar->value, 4);
    EXPECT_EQ(joined(), "drag 15, changed 15, drag 4, changed 4");
    // The thumb (80..130) follows the pointer: 30 pixels are 3 values.
    log.clear();
    press(100, 110);
    move(115, 113);
    move(130, 140);  // off the bar, still held
    EXPECT_EQ(bar->value, 7);
    move(20, 110);  // past the start
    EXPECT_EQ(bar->value, 0);
    release();
    ASSERT_GE(log.size(), 4u) << joined();
    EXPECT_EQ(log[log.size() - 2], "drag 0");
    EXPECT_EQ(log.back(), "changed 0");
    for (size_t i = 0; i + 1 < log.size(); i++) EXPECT_EQ(log[i].rfind("drag ", 0), 0u) << i;
    // A press on the thumb without motion changes nothing but still ends with valueChanged.
    log.clear();
    click(45, 110);
    EXPECT_EQ(bar->value, 0);
    EXPECT_EQ(joined(), "changed 0");
}

TEST_F(GadgetStage, ShortBarHitsItsFirstArrowEverywhere) {
    OrvScrollBar* bar = new OrvScrollBar(director, Orv2dRect(20, 20, 40, 20), OrvHorizontal, 2);
    stage->append(bar);
    bar->setValues(0, 20, 10, 5);
    watch(bar);
    click(55, 30);  // where the second arrow would be
    EXPECT_EQ(bar->value, 9);
    EXPECT_EQ(joined(), "drag 9, changed 9");
}

TEST_F(GadgetStage, VerticalBarSteps) {
    OrvScrollBar* bar = new OrvScrollBar(director, Orv2dRect(280, 10, 20, 220), OrvVertical, 2);
    stage->append(bar);
    bar->setValues(0, 100, 50, 10);
    bar->setIncrement(5);
    watch(bar);
    click(290, 220);  // the lower arrow raises the value
    click(290, 20);
    click(290, 20);
    EXPECT_EQ(joined(), "drag 55, changed 55, drag 50, changed 50, drag 45, changed 45");
}

// ---------------------------------------------------------------------------
// Sliders and thumb wheels
// ---------------------------------------------------------------------------

TEST_F(GadgetStage, SliderJumpsThenFollows) {
    // The thumb's centre runs from 27 to 213 for values 0 to 100.
    OrvSlider* slider = new OrvSlider(director, Orv2dRect(20, 150, 200, 30), OrvHorizontal, 2);
    stage->append(slider);
    ASSERT_STREQ(slider->getRole()->className(), "Slider");
    watch(slider);
    click(120, 165);
    EXPECT_EQ(slider->value, 50);
    EXPECT_EQ(joined(), "drag 50, changed 50");
    // Taken by its thumb 3 pixels right of the centre, it keeps that offset.
    log.clear();
    press(123, 165);
    EXPECT_TRUE(log.empty()) << joined();
    move(160, 170);  // the centre to 157: round(130*100/186) = 70
    EXPECT_EQ(slider->value, 70);
    move(400, 170);
    EXPECT_EQ(slider->value, 100);
    release();
    EXPECT_EQ(log.back(), "changed 100");
    EXPECT_EQ(log[log.size() - 2], "drag 100");
    // The thumb is drawn where the value puts it.
    Orv2dRect knob = slider->thumbBox(nullptr);
    EXPECT_EQ(knob.x, 208);
    EXPECT_EQ(rgb(213, 153), rgbOf(slider->litMakeUp));
}

TEST_F(GadgetStage, ThumbWheelWrapsOnItsArrows) {
    OrvThumbWheel* wheel =
        new OrvThumbWheel(director, Orv2dRect(20, 60, 240, 20), OrvHorizontal, 2);
    wheel->arrows(1);
    stage->append(wheel);
    ASSERT_STREQ(wheel->getRole()->className(), "ThumbWheel");
    watch(wheel);
    wheel->setValue(357);
    click(250, 70);  // 360 is within the range
    click(250, 70);  // 363 goes round to 3
    click(30, 70);
    click(30, 70);  // -3 goes round to 357
    EXPECT_EQ(joined(),
              "drag 360, changed 360, drag 3, changed 3, drag 0, changed 0, drag 357, changed 357");
    // Held, it never reaches an end: it keeps turning.
    log.clear();
    press(250, 70);
    OrvTestRunFor(1300);
    release();
    EXPECT_GE(log.size(), 7u) << joined();
    EXPECT_EQ(log.back(), "changed " + std::to_string(wheel->value));
    EXPECT_LT(wheel->value, 357);  // it went round
}

TEST_F(GadgetStage, ThumbWheelTurnsWithThePointer) {
    // No arrows: the wheel is 236 pixels long, one turn is 236 pi pixels.
    OrvThumbWheel* wheel =
        new OrvThumbWheel(director, Orv2dRect(20, 60, 240, 20), OrvHorizontal, 2);
    stage->append(wheel);
    watch(wheel);
    press(140, 70);
    EXPECT_TRUE(log.empty());
    move(200, 70);  // 60 * 360 / (236 pi) = 29.1
    EXPECT_EQ(wheel->value, 29);
    move(20, 70);  // -120 pixels: -58.3, truncated to -58, round to 302
    EXPECT_EQ(wheel->value, 302);
    release();
    EXPECT_EQ(log.back(), "changed 302");
    EXPECT_FLOAT_EQ(wheel->angle(), 302.0f);
}
