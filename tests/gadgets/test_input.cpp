// Gadgets driven by real input (XTest): buttons and toggles pressed and released inside and
// outside, radio groups, the cluster's open interior, highlight, and the arrows, trough and thumb
// of scroll bars, sliders and thumb wheels with their callbacks in order.
#include "orv/relief.h"
#include "orv/value.h"
#include "orv_fixtures.h"

namespace {

// Writes its tag and the gadget's value (or checked state) into the log.
class LogCallback : public OrvCallback {
public:
    Log* log;
    std::string tag;
    LogCallback(Log* into, const char* name) : log(into), tag(name) {}
    void activate(OrvActor* a) override {
        OrvScrollBar* bar = dynamic_cast<OrvScrollBar*>(a);
        OrvSlider* slider = dynamic_cast<OrvSlider*>(a);
        long v = bar ? bar->value : slider ? slider->value : (long)a->isInverted();
        log->push_back(tag + " " + std::to_string(v));
    }
};

// Writes the member that the group left checked.
class LogRadioGroup : public OrvRadioGroup {
public:
    Log* log;
    explicit LogRadioGroup(Log* into) : log(into) {}
    void changed(OrvToggle* selected) override {
        log->push_back(std::string("radio ") + selected->getLabel());
    }
};

class Gadgets : public RouteTest {
protected:
    Log seen;
    // The gadget on the stage, both callbacks writing into the log: the secondary one is the
    // drag of value gadgets, the primary one their valueChanged.
    template <class T>
    T* watch(T* a, const char* primary = "changed", const char* secondary = "drag") {
        if (!a->getStage()) stage->append(a);
        a->setCallback(new LogCallback(&seen, primary));
        a->setSecondaryCallback(new LogCallback(&seen, secondary));
        return a;
    }
    // The log so far, and forgets it.
    std::string said() {
        std::string s;
        for (const std::string& e : seen) s += (s.empty() ? "" : ", ") + e;
        seen.clear();
        return s;
    }
    unsigned long rgbOf(OrvMakeUp* m) { return m->foreground()->index(stage) & 0xFFFFFF; }
    // A bar from x 20 to 260 at y 100: arrows at 22 and 242, trough 40 to 240.
    OrvScrollBar* bar(long value = 10) {
        OrvScrollBar* b =
            watch(new OrvScrollBar(director, Orv2dRect(20, 100, 240, 20), OrvHorizontal, 2));
        b->setValues(0, 20, value, 5);
        return b;
    }
};

}  // namespace

TEST_F(Gadgets, ButtonPressedAndReleasedInsideAndOutside) {
    OrvReliefLabel* button =
        watch(new OrvReliefLabel(director, Orv2dRect(20, 20, 100, 30), "Press", 2));
    ASSERT_STREQ(button->getRole()->className(), "Button");
    unsigned long face = rgbOf(button->faceMakeUp), pressed = rgbOf(button->pressedMakeUp);
    struct Row {
        const char* gesture;
        std::vector<Orv2dPoint> path;  // press at the first point, release at the last
        const char* callbacks;
    } rows[] = {
        {"inside", {{60, 35}}, "changed 0"},
        {"out and release", {{60, 35}, {200, 120}}, ""},
        {"out and back", {{60, 35}, {200, 120}, {70, 40}}, "changed 0"},
        {"pressed outside, released inside", {{200, 120}, {60, 35}}, ""},
    };
    for (const Row& row : rows) {
        bool began = button->contains2d(row.path[0], nullptr);
        press(row.path[0].x, row.path[0].y);
        for (size_t i = 0; i < row.path.size(); i++) {
            if (i) moveTo(row.path[i].x, row.path[i].y);
            // The look follows the pointer only for a press that began on the button.
            bool in = began && button->contains2d(row.path[i], nullptr);
            EXPECT_EQ(rgb(100, 35), in ? pressed : face) << row.gesture << " " << i;
        }
        release();
        EXPECT_EQ(said(), row.callbacks) << row.gesture;
        EXPECT_EQ(rgb(100, 35), face) << row.gesture;
        EXPECT_FALSE(button->isInverted());
    }
}

TEST_F(Gadgets, ToggleFlipsOncePerCompletedClickAndRadioKeepsOne) {
    OrvToggle* toggle = watch(new OrvToggle(director, Orv2dRect(20, 150, 120, 20), "Option", 2));
    ASSERT_STREQ(toggle->getRole()->className(), "Toggle");
    Orv2dRect box = toggle->checkBox(nullptr);
    int mx = box.x + 4 * (int)box.w / 16, my = box.y + 10 * (int)box.h / 16;
    click(60, 158);
    EXPECT_EQ(rgb(mx, my), 0xFF0000ul) << "the mark";
    click(60, 158);
    EXPECT_NE(rgb(mx, my), 0xFF0000ul);
    EXPECT_EQ(said(), "changed 1, changed 0");
    // Dragged out and released outside: back as it was, no callback.
    press(60, 158);
    unsigned long held = toggle->isChecked();
    moveTo(250, 190);
    unsigned long left = toggle->isChecked();
    release();
    EXPECT_EQ(std::make_tuple(held, left, toggle->isChecked(), said()),
              std::make_tuple(1ul, 0ul, 0ul, std::string()));

    LogRadioGroup* radio = new LogRadioGroup(&seen);
    const char* names[] = {"Small", "Medium", "Large"};
    OrvToggle* boxes[3];
    for (int i = 0; i < 3; i++) {
        boxes[i] = new OrvToggle(director, Orv2dRect(30, 35 + 25 * i, 120, 20), names[i], 2);
        boxes[i]->useDiamond(1);
        radio->add(boxes[i]);
        stage->append(boxes[i]);
    }
    boxes[0]->setChecked(1);
    for (int pick : {1, 2, 2, 0}) {
        click(70, 45 + 25 * pick);
        for (int i = 0; i < 3; i++) EXPECT_EQ(boxes[i]->isChecked(), i == pick ? 1u : 0u) << pick;
        EXPECT_EQ(said(), std::string("radio ") + names[pick]);
        EXPECT_EQ(radio->selected(stage), boxes[pick]);
    }
    // A press dragged away changes nothing.
    press(70, 70);
    moveTo(280, 190);
    release();
    EXPECT_EQ(std::make_tuple(boxes[0]->isChecked(), boxes[1]->isChecked(), said()),
              std::make_tuple(1ul, 0ul, std::string()));
}

TEST_F(Gadgets, ClusterInteriorLetsThePointerThroughAndHighlightFollows) {
    // The button lies under the cluster: appended first, hit last.
    OrvReliefLabel* button =
        watch(new OrvReliefLabel(director, Orv2dRect(60, 60, 80, 30), "In", 2), "button");
    OrvCluster* group =
        watch(new OrvCluster(director, Orv2dRect(20, 20, 200, 120), "Group", 2), "cluster");
    EXPECT_EQ(stage->contains(Orv2dPoint(100, 75), nullptr, 1), button);
    EXPECT_EQ(stage->contains(Orv2dPoint(21, 80), nullptr, 1), group);
    click(100, 75);
    click(21, 80);
    EXPECT_EQ(said(), "button 0, cluster 0");
    EXPECT_EQ(rgb(100, 61), rgbOf(button->litMakeUp)) << "the interior is not painted over";

    button->allowHighlight(1);
    for (bool over : {false, true, false}) {
        moveTo(over ? 100 : 250, over ? 80 : 180);
        EXPECT_EQ(std::make_pair((bool)button->isHighlighted(), rgb(100, 80)),
                  std::make_pair(over, rgbOf(over ? button->litMakeUp : button->faceMakeUp)));
    }
}

TEST_F(Gadgets, SameThicknessTwiceInvalidatesNothing) {
    OrvReliefRectangle* plate = new OrvReliefRectangle(director, Orv2dRect(10, 10, 50, 50), 2);
    stage->append(plate);
    RecordingHook* hook = installHook();
    plate->setThickness(2);
    plate->border(1);
    plate->setRect(Orv2dRect(10, 10, 50, 50));
    EXPECT_EQ(hook->invalidations, 0);
    plate->setThickness(4);
    plate->setThickness(4);
    EXPECT_EQ(hook->invalidations, 2) << "the old box and the new, once";
}

TEST_F(Gadgets, ScrollBarArrowsStepOnceAndNotPastTheEnd) {
    // Clicks at x,y in turn on a bar of 0 to 20 (a vertical one: 0 to 100 by steps of 5).
    struct Row {
        Orv2dRect box;
        long value;
        const char *clicks, *said;
    } rows[] = {
        {Orv2dRect(20, 100, 240, 20), 10, "250,110 30,110 30,110",
         "drag 11, changed 11, drag 10, changed 10, drag 9, changed 9"},
        {Orv2dRect(20, 100, 240, 20), 0, "30,110", ""},                 // at the start
        {Orv2dRect(20, 100, 240, 20), 15, "250,110", ""},               // at the end
        {Orv2dRect(20, 20, 40, 20), 10, "55,30", "drag 9, changed 9"},  // too short: one box
        {Orv2dRect(270, 10, 20, 180), 50, "280,180 280,20 280,20",      // the lower arrow raises
         "drag 55, changed 55, drag 50, changed 50, drag 45, changed 45"},
    };
    for (const Row& row : rows) {
        bool vertical = row.box.h > row.box.w;
        OrvScrollBar* b = watch(
            new OrvScrollBar(director, row.box,
                             vertical ? (OrvPosition)OrvVertical : (OrvPosition)OrvHorizontal, 2));
        ASSERT_STREQ(b->getRole()->className(), "ScrollBar");
        b->setValues(0, vertical ? 100 : 20, row.value, 5);
        b->setIncrement(vertical ? 5 : 1);
        std::istringstream in(row.clicks);
        for (int x, y; in >> x && in.ignore() >> y;) click(x, y);
        EXPECT_EQ(said(), row.said) << row.clicks;
        delete b;
    }
    // Two quick clicks are a click and a double click: both step.
    director->setDoubleClickPeriod(250);
    OrvTestRunFor(300);
    bar();
    click(250, 110);
    click(250, 110);
    EXPECT_EQ(said(), "drag 11, changed 11, drag 12, changed 12");
}

TEST_F(Gadgets, HeldArrowRepeatsAndStopsAtTheEnd) {
    OrvScrollBar* b = bar();
    press(250, 110);
    // Steps after 200, 390 and 570 ms (each period 10 ms shorter), 15 at 740 ms.
    EXPECT_TRUE(OrvTestRunUntil([&] { return b->value == 15; }, 2000));
    OrvTestRunFor(600);  // stopped: no further steps
    release();
    EXPECT_EQ(said(), "drag 11, drag 12, drag 13, drag 14, drag 15, changed 15");
    // The thumb was repainted where the value put it: trough 40..240, thumb 190..240.
    EXPECT_EQ(std::make_pair(rgb(215, 110), rgb(185, 110)),
              std::make_pair(rgbOf(b->faceMakeUp), rgbOf(b->pressedMakeUp)));
    b->setValue(3);
    press(30, 110);
    EXPECT_TRUE(OrvTestRunUntil([&] { return b->value == 0; }, 2000));
    OrvTestRunFor(300);
    release();
    EXPECT_EQ(said(), "drag 2, drag 1, drag 0, changed 0");
}

TEST_F(Gadgets, RepeatPeriodShortensToTenMilliseconds) {
    OrvScrollBar* b = bar();
    b->setValues(0, 1000, 0, 1);
    LogCallback owner(&seen, "owner");
    b->setUserProperty(OrvScrollBarOwnerKey(), &owner);
    OrvCSBTimer timer((OrvSBRole*)OrvGetRole("ScrollBar"), stage, b, 2);
    EXPECT_EQ(std::make_pair(timer.period, (bool)timer.isRunning()), std::make_pair(200ul, true));
    timer.suspend();
    std::vector<unsigned long> periods;
    for (int i = 0; i < 22; i++) {
        timer.activate();
        periods.push_back(timer.period);
    }
    EXPECT_EQ(std::vector<unsigned long>({periods[0], periods[17], periods[18], periods[21]}),
              std::vector<unsigned long>({190, 20, 10, 10}));
    // Drag and owner at each step.
    EXPECT_EQ(std::make_tuple(b->value, seen.size(), seen.back(), timer.oneShot),
              std::make_tuple(22l, (size_t)44, std::string("owner 22"), 0));
    // At the end the timer stops itself.
    b->setValue(998);
    timer.activate();
    EXPECT_EQ(std::make_tuple(b->value, timer.oneShot, (bool)timer.isRunning()),
              std::make_tuple(999l, 1, false));
    b->removeUserProperty(OrvScrollBarOwnerKey());
}

TEST_F(Gadgets, ScrollBarTroughAndThumb) {
    OrvScrollBar* b = bar();
    // A press in the trough puts the value under the pointer: (200-40)/200*20 = 16, clamped.
    click(200, 110);
    click(80, 110);  // (80-40)/200*20 = 4
    EXPECT_EQ(said(), "drag 15, changed 15, drag 4, changed 4");
    // The thumb (80..130) follows the pointer: 30 pixels are 3 values, held off the bar too.
    press(100, 110);
    moveTo(115, 113);
    moveTo(130, 140);
    EXPECT_EQ(b->value, 7);
    moveTo(20, 110);  // past the start
    release();
    ASSERT_GE(seen.size(), 4u);
    for (size_t i = 0; i + 2 < seen.size(); i++) EXPECT_EQ(seen[i].rfind("drag ", 0), 0u) << i;
    EXPECT_EQ(seen[seen.size() - 2] + ", " + seen.back(), "drag 0, changed 0");
    seen.clear();
    // A press on the thumb without motion changes nothing but still ends with valueChanged.
    click(45, 110);
    EXPECT_EQ(said(), "changed 0");
}

TEST_F(Gadgets, SliderJumpsThenFollows) {
    // The thumb's centre runs from 27 to 213 for values 0 to 100.
    OrvSlider* slider =
        watch(new OrvSlider(director, Orv2dRect(20, 150, 200, 30), OrvHorizontal, 2));
    ASSERT_STREQ(slider->getRole()->className(), "Slider");
    click(120, 165);
    EXPECT_EQ(said(), "drag 50, changed 50");
    // Taken by its thumb 3 pixels right of the centre, it keeps that offset.
    press(123, 165);
    EXPECT_EQ(said(), "");
    moveTo(160, 170);  // the centre to 157: round(130*100/186) = 70
    EXPECT_EQ(slider->value, 70);
    moveTo(400, 170);
    release();
    EXPECT_EQ(said(), "drag 70, drag 100, changed 100");
    // Drawn where the value puts it.
    EXPECT_EQ(std::make_pair(slider->thumbBox(nullptr).x, rgb(213, 153)),
              std::make_pair(208, rgbOf(slider->litMakeUp)));
}

TEST_F(Gadgets, ThumbWheelWrapsOnItsArrowsAndTurnsWithThePointer) {
    OrvThumbWheel* wheel =
        watch(new OrvThumbWheel(director, Orv2dRect(20, 60, 240, 20), OrvHorizontal, 2));
    ASSERT_STREQ(wheel->getRole()->className(), "ThumbWheel");
    // No arrows: the wheel is 236 pixels long, one turn is 236 pi pixels.
    press(140, 70);
    moveTo(200, 70);  // 60 * 360 / (236 pi) = 29.1
    EXPECT_EQ(wheel->value, 29);
    moveTo(20, 70);  // -120 pixels: -58.3, truncated to -58, round to 302
    release();
    EXPECT_EQ(said(), "drag 29, drag 302, changed 302");

    wheel->arrows(1);
    wheel->setValue(357);
    click(250, 70);  // 360 is within the range
    click(250, 70);  // 363 goes round to 3
    click(30, 70);
    click(30, 70);  // -3 goes round to 357
    EXPECT_EQ(said(),
              "drag 360, changed 360, drag 3, changed 3, drag 0, changed 0, drag 357, changed 357");
    // Held, it never reaches an end: it keeps turning.
    press(250, 70);
    OrvTestRunFor(1300);
    release();
    EXPECT_GE(seen.size(), 7u);
    EXPECT_EQ(seen.back(), "changed " + std::to_string(wheel->value));
    EXPECT_LT(wheel->value, 357) << "it went round";
}
