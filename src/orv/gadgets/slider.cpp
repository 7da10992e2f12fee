// The slider: a thumb of a fixed length in pixels that slides along a groove,
// its value clamped to the range without the thumb, and its persistent form.
#include "orv/value.h"

#include "orv/canvas.h"
#include "orv/makeup.h"
#include "orv/stage.h"
#include "orv/stream.h"
#include "value_press.h"

ORV_DEFINE_CLASS_INIT(OrvSlider, "OrvReliefRectangle", OrvSlider::read)

OrvSlider::OrvSlider(OrvDirector* director, const Orv2dRect& box, OrvPosition direction,
                     unsigned short width, OrvMakeUp* look)
    : OrvReliefRectangle(director, box, width, look), min(0), max(100), value(0), thumb(10),
      position(direction) {}

OrvSlider::OrvSlider(const OrvSlider& source)
    : OrvReliefRectangle(source), min(source.min), max(source.max), value(source.value),
      thumb(source.thumb), position(source.position) {}

OrvSlider::~OrvSlider() {
    OrvValueForget(this);
    OrvStage* stage = getStage();
    if (stage) stage->remove(this, 0);
}

OrvActor* OrvSlider::copy() const {
    return new OrvSlider(*this);
}
OrvClassInfo* OrvSlider::classInfo() const {
    return _classInfo;
}
const char* OrvSlider::defaultRole() const {
    return "Slider";
}

// Persistent form: min, max and value, the thumb's length, the position.

OrvActor* OrvSlider::read(OrvIStream& in) {
    return new OrvSlider(in);
}

void OrvSlider::write(OrvOStream& out) const {
    OrvReliefRectangle::write(out);
    out.writeComments("OrvSlider class", 1);
    out << min;
    out << max;
    out << value;
    out << thumb;
    out.writePosition(position);
}

OrvSlider::OrvSlider(OrvIStream& in)
    : OrvReliefRectangle(in), min(0), max(100), value(0), thumb(10), position(OrvHorizontal) {
    unsigned long before = in.faults;
    auto good = [&]() { return in.faults == before && in.stream; };
    int* numbers[] = {&min, &max, &value};
    for (int* n : numbers) {
        if (!good()) return;
        in >> *n;
    }
    if (good()) in >> thumb;
    if (good()) in.readPosition(position);
}

// ---------------------------------------------------------------------------
// Values
// ---------------------------------------------------------------------------

void OrvSlider::setValues(int lo, int hi, int v, unsigned long length) {
    if (lo > hi) {
        int swap = lo;
        lo = hi;
        hi = swap;
    }
    min = lo;
    max = hi;
    unsigned long range = (unsigned long)((long)hi - (long)lo);
    thumb = length < range ? length : range;
    if (thumb < 1) thumb = 1;
    if (v < min) v = min;
    if (v > max) v = max;
    value = v;
    bufferedDraw(0);
}

void OrvSlider::setValue(int v) {
    if (v < min) v = min;
    if (v > max) v = max;
    if (v == value) return;
    value = v;
    bufferedDraw(0);
}

void OrvSlider::getValues(int& lo, int& hi, int& v, unsigned long& length) const {
    lo = min;
    hi = max;
    v = value;
    length = thumb;
}

void OrvSlider::setPosition(OrvPosition p) {
    if (p == position) return;
    beginDrawing(1);
    position = p;
    flushDrawing(1);
}

void OrvSlider::bufferedDraw(unsigned long) {
    OrvStage* stage = drawingStage();
    if (!stage) return;
    repaintNow(bbox2d(stage->transformer));
}

// ---------------------------------------------------------------------------
// Geometry and drawing
// ---------------------------------------------------------------------------

void OrvSlider::track(const Orv2dRect& r, long& start, long& length) const {
    long along = isVertical() ? (long)r.h : (long)r.w;
    long origin = isVertical() ? r.y : r.x;
    long half = (long)thumb / 2;
    start = origin + thickness + half;
    length = along - 2 * (long)thickness - 2 * half;
    if (length < 0) length = 0;
}

Orv2dRect OrvSlider::thumbBox(const Orv2dMatrix* matrix) const {
    Orv2dRect r = mapped(matrix);
    long start = 0, length = 0;
    track(r, start, length);
    long centre = start;
    if (max > min) centre += (long)((double)length * (double)(value - min) / (double)(max - min));
    long across = (isVertical() ? (long)r.w : (long)r.h) - 2 * (long)thickness;
    if (across < 0) across = 0;
    long from = centre - (long)thumb / 2;
    if (isVertical())
        return Orv2dRect(r.x + thickness, (int32_t)from, (uint32_t)across, (uint32_t)thumb);
    return Orv2dRect((int32_t)from, r.y + thickness, (uint32_t)thumb, (uint32_t)across);
}

int OrvSlider::positionToValue(const Orv2dPoint& p, const Orv2dMatrix* matrix) const {
    long start = 0, length = 0;
    track(mapped(matrix), start, length);
    if (length <= 0 || max <= min) return min;
    long at = isVertical() ? p.y : p.x;
    // To the nearest value, so that the thumb's own centre gives its value back.
    long v = min + OrvRound((double)(at - start) * (double)(max - min) / (double)length);
    if (v < min) v = min;
    if (v > max) v = max;
    return (int)v;
}

void OrvSlider::draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) {
    Orv2dRect r = mapped(matrix);
    canvas->reliefRectangle(makeUp, faceMakeUp, litMakeUp, shadedMakeUp, r, thickness, border_,
                            nullptr);
    long start = 0, length = 0;
    track(r, start, length);
    // A sunken groove of four pixels along the run of the thumb's centre.
    Orv2dRect groove =
        isVertical() ? Orv2dRect(r.x + (int32_t)r.w / 2 - 2, (int32_t)start, 4, (uint32_t)length)
                     : Orv2dRect((int32_t)start, r.y + (int32_t)r.h / 2 - 2, (uint32_t)length, 4);
    if (length > 0)
        canvas->reliefRectangle(makeUp, pressedMakeUp, shadedMakeUp, litMakeUp, groove, 1, 0,
                                nullptr);
    const OrvMakeUp *face, *top, *bottom;
    stateMakeUps(face, top, bottom);
    Orv2dRect knob = thumbBox(matrix);
    if (knob.w && knob.h)
        canvas->reliefRectangle(makeUp, face, top, bottom, knob, thickness ? thickness : 1, border_,
                                nullptr);
}
