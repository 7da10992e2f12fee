// The thumb wheel: a scroll bar whose value is an angle, shown as a ridged
// cylinder seen from the side with a red mark, and which may go round.
#include "orv/value.h"

#include <cmath>

#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/makeup.h"
#include "orv/stage.h"
#include "orv/stream.h"
#include "value_press.h"

ORV_DEFINE_CLASS_INIT(OrvThumbWheel, "OrvScrollBar", OrvThumbWheel::read)

static const unsigned long kNotDrawn = 65535;

OrvThumbWheel::OrvThumbWheel(OrvDirector* director, const Orv2dRect& box, OrvPosition direction,
                             unsigned short width, OrvMakeUp* look)
    : OrvScrollBar(director, box, direction, width, look), markMakeUp(nullptr), wrap(1),
      arrows_(0) {
    min = 0;
    max = 360;
    value = 0;
    sliderSize = 10;
    increment = 3;
    pageIncrement = 10;
    makeMark();
}

OrvThumbWheel::OrvThumbWheel(const OrvThumbWheel& source)
    : OrvScrollBar(source), markMakeUp(source.markMakeUp), wrap(source.wrap),
      arrows_(source.arrows_) {
    OrvCount(markMakeUp);
}

OrvThumbWheel::~OrvThumbWheel() {
    OrvValueForget(this);
    OrvStage* stage = getStage();
    if (stage) stage->remove(this, 0);
    OrvRelease(markMakeUp);
    markMakeUp = nullptr;
}

OrvActor* OrvThumbWheel::copy() const {
    return new OrvThumbWheel(*this);
}
OrvClassInfo* OrvThumbWheel::classInfo() const {
    return _classInfo;
}
const char* OrvThumbWheel::defaultRole() const {
    return "ThumbWheel";
}
unsigned long OrvThumbWheel::isThumbWheel() const {
    return 1;
}

void OrvThumbWheel::makeMark() {
    if (!makeUp) return;
    OrvColor* red = makeUp->director->color("red");
    OrvMakeUp* m = red ? makeUp->director->makeUpForeground(makeUp, red) : makeUp;
    OrvCount(m);
    OrvRelease(markMakeUp);
    markMakeUp = m;
}

void OrvThumbWheel::notifyOnMakeUpChanged() {
    OrvScrollBar::notifyOnMakeUpChanged();
    makeMark();
}

// Persistent form: the scroll bar's, then wrap and arrows, then the mark's make-up.

OrvActor* OrvThumbWheel::read(OrvIStream& in) {
    return new OrvThumbWheel(in);
}

void OrvThumbWheel::write(OrvOStream& out) const {
    OrvScrollBar::write(out);
    out.writeComments("OrvThumbWheel class", 1);
    out << wrap;
    out << arrows_;
    out << (const OrvMakeUp*)markMakeUp;
}

OrvThumbWheel::OrvThumbWheel(OrvIStream& in)
    : OrvScrollBar(in), markMakeUp(nullptr), wrap(1), arrows_(0) {
    makeMark();
    unsigned long before = in.faults;
    auto good = [&]() { return in.faults == before && in.stream; };
    if (good()) in >> wrap;
    if (good()) in >> arrows_;
    if (!good()) return;
    OrvMakeUp* m = nullptr;
    in >> m;
    if (good() && m) {
        OrvCount(m);
        OrvRelease(markMakeUp);
        markMakeUp = m;
    }
}

// ---------------------------------------------------------------------------
// Values
// ---------------------------------------------------------------------------

void OrvThumbWheel::setValue(long v) {
    if (wrap && max > min) {
        // As many whole turns as bring it in, at once rather than turn by turn.
        long range = max - min;
        if (v > max) v -= ((v - max + range - 1) / range) * range;
        if (v < min) v += ((min - v + range - 1) / range) * range;
    } else {
        if (v > max) v = max;
        if (v < min) v = min;
    }
    if (v == value) return;
    value = v;
    bufferedDraw(0);
}

void OrvThumbWheel::setValues(long lo, long hi, long v, long size) {
    min = lo;
    max = hi;
    value = v;
    sliderSize = size;
    bufferedDraw(2);
}

void OrvThumbWheel::setPageIncrement(long step) {
    pageIncrement = step;
}

void OrvThumbWheel::arrows(unsigned long on) {
    on = on ? 1 : 0;
    if (on == arrows_) return;
    beginDrawing(1);
    arrows_ = on;
    flushDrawing(1);
}

void OrvThumbWheel::setWrap(unsigned long on) {
    wrap = on ? 1 : 0;
}

float OrvThumbWheel::angle() const {
    if (max == min) return 0.0f;
    return 360.0f * (float)(value - min) / (float)(max - min);
}

unsigned long OrvThumbWheel::atEnd(unsigned long direction) const {
    if (wrap) return 0;
    return direction == 1 ? value <= min : value >= max;
}

void OrvThumbWheel::setMode(OrvDrawMode mode) {
    OrvScrollBar::setMode(mode);
    if (markMakeUp) markMakeUp->setMode(mode);
}

void OrvThumbWheel::setOverwrite(unsigned long on) {
    OrvScrollBar::setOverwrite(on);
    if (markMakeUp) markMakeUp->setOverwrite(on);
}

// ---------------------------------------------------------------------------
// Layout and drawing
// ---------------------------------------------------------------------------

Orv2dRect OrvThumbWheel::computeBBox(Orv2dRect& first, Orv2dRect& second, Orv2dRect& trough,
                                     Orv2dRect& thumb, const Orv2dMatrix* matrix) const {
    if (arrows_) {
        Orv2dRect r = OrvScrollBar::computeBBox(first, second, trough, thumb, matrix);
        thumb = trough;  // the whole wheel is the grip
        return r;
    }
    Orv2dRect r = mapped(matrix);
    first = second = Orv2dRect(r.x, r.y, 0, 0);
    uint32_t t = thickness;
    if (2 * t < r.w && 2 * t < r.h)
        trough = Orv2dRect(r.x + (int32_t)t, r.y + (int32_t)t, r.w - 2 * t, r.h - 2 * t);
    else
        trough = r;
    thumb = trough;
    return r;
}

// An angle brought into -180 to 180 degrees.
static double facing(double degrees) {
    double a = std::fmod(degrees, 360.0);
    if (a > 180.0) a -= 360.0;
    if (a <= -180.0) a += 360.0;
    return a;
}

void OrvThumbWheel::draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) {
    Orv2dRect first, second, wheel, thumb;
    Orv2dRect r = computeBBox(first, second, wheel, thumb, matrix);
    unsigned long vertical = isVertical();
    if (arrows_ && wheel != r)
        drawFrameAndArrows(canvas, r, first, second, vertical);
    else
        canvas->reliefRectangle(makeUp, pressedMakeUp, shadedMakeUp, litMakeUp, r, 1, border_,
                                nullptr);
    lastDrawn = kNotDrawn;  // every step turns the wheel: no step is skipped
    if (wheel.w == 0 || wheel.h == 0) return;
    const OrvMakeUp *face, *top, *bottom;
    stateMakeUps(face, top, bottom);
    canvas->rectangle(face, wheel, 1, nullptr);
    double along = vertical ? wheel.h : wheel.w;
    double origin = vertical ? wheel.y : wheel.x;
    double radius = along / 2.0, centre = origin + along / 2.0;
    double turned = angle();
    long end = (long)(origin + along);
    // A line across the wheel at a place along it.
    auto across = [&](long at, const OrvMakeUp* m) {
        if (at < (long)origin || at >= end) return;
        if (vertical)
            canvas->line(m, Orv2dPoint(wheel.x, (int32_t)at),
                         Orv2dPoint(wheel.x + (int32_t)wheel.w - 1, (int32_t)at), nullptr);
        else
            canvas->line(m, Orv2dPoint((int32_t)at, wheel.y),
                         Orv2dPoint((int32_t)at, wheel.y + (int32_t)wheel.h - 1), nullptr);
    };
    // Ridges every 15 degrees on the half that faces the viewer.
    for (int k = 0; k < 24; k++) {
        double a = facing(turned + 15.0 * k);
        if (std::fabs(a) >= 85.0) continue;
        long at = OrvRound(centre + radius * std::sin(a * ORV_DEG_TO_RAD));
        across(at, shadedMakeUp);
        across(at + 1, litMakeUp);
    }
    // The mark stands where the angle 0 has turned to.
    double a = facing(turned);
    if (std::fabs(a) < 85.0) {
        long at = OrvRound(centre + radius * std::sin(a * ORV_DEG_TO_RAD));
        for (long i = at - 1; i <= at + 1; i++) across(i, markMakeUp);
    }
}
