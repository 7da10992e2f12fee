// The roles of the value gadgets and the repeat timers of their arrows. One
// press is under way in the application at a time: its state is kept here.
#include "orv/value.h"

#include "orv/director.h"
#include "orv/stage.h"
#include "value_press.h"

int orvinitOrvValueRoles::_counter = 0;

orvinitOrvValueRoles::orvinitOrvValueRoles() {
    if (_counter++) return;
    OrvRegisterRoleInstance(new OrvSBRole());
    OrvRegisterRoleInstance(new OrvSliderRole());
    OrvRegisterRoleInstance(new OrvThumbWheelRole());
}

namespace {

// The press under way: on which gadget and part, where and at which value it
// began, and the repeat timer of an arrow.
struct Press {
    OrvActor* gadget = nullptr;
    OrvStage* stage = nullptr;
    int part = -1;
    Orv2dPoint point;
    long value = 0;
    long offset = 0;  // of the pointer from a slider's thumb centre
    OrvTimer* timer = nullptr;
};

Press press;

void endPress() {
    delete press.timer;
    press = Press();
}

void beginPress(OrvActor* gadget, OrvStage* stage, int part, const Orv2dPoint& p, long value) {
    endPress();
    press.gadget = gadget;
    press.stage = stage;
    press.part = part;
    press.point = p;
    press.value = value;
}

bool hits(const Orv2dRect& r, const Orv2dPoint& p) {
    return r.w && r.h && r.contains(p);
}

// A second press soon after the first arrives as a double click, which the
// stage hands to the actor under the pointer without making it the focus. It
// counts as a press where its release will come back to the same gadget.
bool releaseReturns(OrvStage* stage, OrvActor* gadget) {
    if (stage->focusActor == gadget) return true;
    return !stage->focusEnabled && stage->pressedActor == gadget;
}

// The press machine of bars and wheels. The hit areas are tried in the order
// first arrow, second arrow, thumb; the rest of the bar is the trough.
template <class Role, class Bar, class Timer>
int barInput(Role* role, Bar* bar, const OrvEvent& event, OrvStage* stage) {
    if (!bar || !(event.key & role->mask)) return 0;
    Orv2dPoint p((int32_t)event.x, (int32_t)event.y);
    const Orv2dMatrix* m = stage->transformer;
    switch (event.type) {
        case OrvDoubleClick:
            if (!releaseReturns(stage, bar)) return 0;
            [[fallthrough]];
        case OrvButtonDown: {
            endPress();
            Orv2dRect first, second, trough, thumb;
            bar->computeBBox(first, second, trough, thumb, m);
            int part = hits(first, p)    ? OrvBarFirstArrow
                       : hits(second, p) ? OrvBarSecondArrow
                       : hits(thumb, p)  ? OrvBarThumb
                                         : OrvBarTrough;
            if (part == OrvBarFirstArrow || part == OrvBarSecondArrow) {
                unsigned long direction = (unsigned long)part;  // 1 down, 2 up
                if (bar->atEnd(direction)) return 1;
                beginPress(bar, stage, part, p, bar->value);
                bar->setValue(bar->value + (direction == 2 ? bar->increment : -bar->increment));
                role->drag(stage, bar);
                press.timer = new Timer(role, stage, bar, direction);
                bar->bufferedDraw(2);  // the arrow shows pressed
                return 1;
            }
            beginPress(bar, stage, part, p, bar->value);
            if (part == OrvBarTrough) {
                bar->setValue(bar->positionToValue(p, m));
                role->drag(stage, bar);
            }
            return 1;
        }
        case OrvButtonDragged: {
            if (press.gadget != bar) return 0;
            if (press.part != OrvBarThumb) return 1;
            Orv2dRect first, second, trough, thumb;
            bar->computeBBox(first, second, trough, thumb, m);
            long length = bar->isVertical() ? (long)trough.h : (long)trough.w;
            if (length <= 0) return 1;
            long delta = bar->isVertical() ? p.y - press.point.y : p.x - press.point.x;
            // A bar's thumb follows the pointer; a wheel turns once for a
            // pointer run as long as its circumference.
            double span = bar->isThumbWheel() ? 3.141592653589793 * (double)length : (double)length;
            bar->setValue(press.value +
                          (long)((double)delta * (double)(bar->max - bar->min) / span));
            role->drag(stage, bar);
            return 1;
        }
        case OrvButtonUp: {
            if (press.gadget != bar) return 0;
            bool arrowHeld = press.part == OrvBarFirstArrow || press.part == OrvBarSecondArrow;
            endPress();
            if (arrowHeld) bar->bufferedDraw(2);
            role->valueChanged(stage, bar);
            return 1;
        }
        default:
            return 0;
    }
}

// One step of an arrow held down.
template <class Timer>
void repeatStep(Timer* timer) {
    auto* bar = timer->bar;
    bar->setValue(bar->value + (timer->direction == 2 ? bar->increment : -bar->increment));
    timer->role->drag(timer->stage, bar);
    if (bar->atEnd(timer->direction)) {
        // The loop runs a timer again only while it is not one-shot.
        timer->oneShot = 1;
        timer->suspend();
    }
    OrvCallback* owner = (OrvCallback*)bar->getUserProperty(OrvScrollBarOwnerKey());
    if (owner) owner->activate(bar);
    if (!(timer->period < 11)) timer->period -= 10;
}

void runCallback(OrvActor* actor) {
    OrvCallback* c = actor->getSecondaryCallback();
    if (c) c->activate(actor);
}

}  // namespace

int OrvValuePressedPart(const OrvActor* gadget) {
    return gadget && press.gadget == gadget ? press.part : -1;
}

void OrvValueForget(const OrvActor* gadget) {
    if (gadget && press.gadget == gadget) endPress();
}

// ---------------------------------------------------------------------------
// Scroll bar
// ---------------------------------------------------------------------------

int OrvSBRole::input2d(OrvActor* actor, const OrvEvent& event, OrvStage* stage) {
    return barInput<OrvSBRole, OrvScrollBar, OrvCSBTimer>(this, dynamic_cast<OrvScrollBar*>(actor),
                                                          event, stage);
}

void OrvSBRole::drag(OrvStage*, OrvScrollBar* bar) {
    runCallback(bar);
}

void OrvSBRole::valueChanged(OrvStage* stage, OrvScrollBar* bar) {
    if (stage) stage->callCallback(bar);
}

OrvCSBTimer::OrvCSBTimer(OrvSBRole* owner, OrvStage* on, OrvScrollBar* scrollBar,
                         unsigned long towards)
    : OrvTimer(on->director, 0, 200), role(owner), stage(on), bar(scrollBar), direction(towards) {
    if (on->transformer) transformer = *on->transformer;
    oneShot = 0;
    run();
}

void OrvCSBTimer::activate() {
    repeatStep(this);
}

// ---------------------------------------------------------------------------
// Thumb wheel
// ---------------------------------------------------------------------------

int OrvThumbWheelRole::input2d(OrvActor* actor, const OrvEvent& event, OrvStage* stage) {
    return barInput<OrvThumbWheelRole, OrvThumbWheel, OrvThumbWheelTimer>(
        this, dynamic_cast<OrvThumbWheel*>(actor), event, stage);
}

void OrvThumbWheelRole::drag(OrvStage*, OrvThumbWheel* wheel) {
    runCallback(wheel);
}

void OrvThumbWheelRole::valueChanged(OrvStage* stage, OrvThumbWheel* wheel) {
    if (stage) stage->callCallback(wheel);
}

OrvThumbWheelTimer::OrvThumbWheelTimer(OrvThumbWheelRole* owner, OrvStage* on, OrvThumbWheel* wheel,
                                       unsigned long towards)
    : OrvTimer(on->director, 0, 200), role(owner), stage(on), bar(wheel), direction(towards) {
    if (on->transformer) transformer = *on->transformer;
    oneShot = 0;
    run();
}

void OrvThumbWheelTimer::activate() {
    repeatStep(this);
}

// ---------------------------------------------------------------------------
// Slider: a press off the thumb sets the value there; the thumb then follows
// the pointer, keeping the offset at which it was taken
// ---------------------------------------------------------------------------

int OrvSliderRole::input2d(OrvActor* actor, const OrvEvent& event, OrvStage* stage) {
    OrvSlider* slider = dynamic_cast<OrvSlider*>(actor);
    if (!slider || !(event.key & mask)) return 0;
    Orv2dPoint p((int32_t)event.x, (int32_t)event.y);
    const Orv2dMatrix* m = stage->transformer;
    unsigned long vertical = slider->isVertical();
    switch (event.type) {
        case OrvDoubleClick:
            if (!releaseReturns(stage, slider)) return 0;
            [[fallthrough]];
        case OrvButtonDown: {
            Orv2dRect thumb = slider->thumbBox(m);
            bool onThumb = hits(thumb, p);
            beginPress(slider, stage, onThumb ? OrvBarThumb : OrvBarTrough, p, slider->value);
            if (onThumb) {
                long centre = vertical ? thumb.y + (long)thumb.h / 2 : thumb.x + (long)thumb.w / 2;
                press.offset = (vertical ? p.y : p.x) - centre;
            } else {
                slider->setValue(slider->positionToValue(p, m));
                drag(stage, slider);
            }
            return 1;
        }
        case OrvButtonDragged: {
            if (press.gadget != slider) return 0;
            Orv2dPoint q = p;
            if (vertical)
                q.y -= (int32_t)press.offset;
            else
                q.x -= (int32_t)press.offset;
            slider->setValue(slider->positionToValue(q, m));
            drag(stage, slider);
            return 1;
        }
        case OrvButtonUp:
            if (press.gadget != slider) return 0;
            endPress();
            valueChanged(stage, slider);
            return 1;
        default:
            return 0;
    }
}

void OrvSliderRole::drag(OrvStage*, OrvSlider* slider) {
    runCallback(slider);
}

void OrvSliderRole::valueChanged(OrvStage* stage, OrvSlider* slider) {
    if (stage) stage->callCallback(slider);
}
