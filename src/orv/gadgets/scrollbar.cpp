// The scroll bar: range, value and thumb, its layout of arrows, trough and
// thumb, its drawing, and its persistent form.
#include "orv/value.h"

#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/makeup.h"
#include "orv/stage.h"
#include "orv/stream.h"
#include "value_press.h"

ORV_DEFINE_CLASS_INIT(OrvScrollBar, "OrvReliefRectangle", OrvScrollBar::read)

static const unsigned long kNotDrawn = 65535;

OrvKey* OrvScrollBarOwnerKey() {
    static OrvKey* key = OrvGetKey("ScrollBarOwner", 1);
    return key;
}

OrvScrollBar::OrvScrollBar(OrvDirector* director, const Orv2dRect& box, OrvPosition direction,
                           unsigned short width, OrvMakeUp* look)
    : OrvReliefRectangle(director, box, width, look), min(0), max(100), value(25), sliderSize(50),
      increment(1), pageIncrement(50), position(direction), lastDrawn(kNotDrawn) {}

OrvScrollBar::OrvScrollBar(const OrvScrollBar& source)
    : OrvReliefRectangle(source), min(source.min), max(source.max), value(source.value),
      sliderSize(source.sliderSize), increment(source.increment),
      pageIncrement(source.pageIncrement), position(source.position), lastDrawn(kNotDrawn) {}

OrvScrollBar::~OrvScrollBar() {
    OrvValueForget(this);
    OrvStage* stage = getStage();
    if (stage) stage->remove(this, 0);
}

OrvActor* OrvScrollBar::copy() const {
    return new OrvScrollBar(*this);
}
OrvClassInfo* OrvScrollBar::classInfo() const {
    return _classInfo;
}
const char* OrvScrollBar::defaultRole() const {
    return "ScrollBar";
}
unsigned long OrvScrollBar::isThumbWheel() const {
    return 0;
}

// Persistent form: the six numbers of the range, then the position. They are
// taken as written: a thumb wheel's value may lie where a bar's may not.

OrvActor* OrvScrollBar::read(OrvIStream& in) {
    return new OrvScrollBar(in);
}

void OrvScrollBar::write(OrvOStream& out) const {
    OrvReliefRectangle::write(out);
    out.writeComments("OrvScrollBar class", 1);
    out << min;
    out << max;
    out << value;
    out << sliderSize;
    out << increment;
    out << pageIncrement;
    out.writePosition(position);
}

OrvScrollBar::OrvScrollBar(OrvIStream& in)
    : OrvReliefRectangle(in), min(0), max(100), value(25), sliderSize(50), increment(1),
      pageIncrement(50), position(OrvHorizontal), lastDrawn(kNotDrawn) {
    unsigned long before = in.faults;
    long* numbers[] = {&min, &max, &value, &sliderSize, &increment, &pageIncrement};
    for (long* n : numbers) {
        if (in.faults != before || !in.stream) return;
        in >> *n;
    }
    if (in.faults != before || !in.stream) return;
    in.readPosition(position);
}

// ---------------------------------------------------------------------------
// Values
// ---------------------------------------------------------------------------

void OrvScrollBar::setValues(long lo, long hi, long v, long size) {
    if (lo > hi) {
        long swap = lo;
        lo = hi;
        hi = swap;
    }
    if (hi == lo) hi = lo + 1;
    min = lo;
    max = hi;
    sliderSize = size < max - min ? size : max - min;
    if (sliderSize < 2) sliderSize = 1;
    long top = isThumbWheel() ? max : max - sliderSize;
    if (v > top) v = top;
    if (v < min) v = min;
    value = v;
    bufferedDraw(2);
}

void OrvScrollBar::setValue(long v) {
    long top = max - sliderSize;
    if (v > top) v = top;
    if (v < min) v = min;
    if (v == value) return;
    value = v;
    // A step moves only the thumb.
    bufferedDraw(0);
}

void OrvScrollBar::setIncrement(long step) {
    increment = step < 1 ? 1 : step;
}

void OrvScrollBar::setPageIncrement(long step) {
    if (step > max - min) step = max - min;
    pageIncrement = step < 1 ? 1 : step;
}

void OrvScrollBar::setPosition(OrvPosition p) {
    if (p == position) return;
    beginDrawing(1);
    position = p;
    lastDrawn = kNotDrawn;
    flushDrawing(1);
}

unsigned long OrvScrollBar::atEnd(unsigned long direction) const {
    return direction == 1 ? value <= min : value >= max - sliderSize;
}

// ---------------------------------------------------------------------------
// Layout
// ---------------------------------------------------------------------------

// A rectangle given along and across the bar's axis, back in x and y.
static Orv2dRect onAxis(const Orv2dRect& r, unsigned long vertical, int64_t along, int64_t across,
                        int64_t length, int64_t depth) {
    if (length < 0) length = 0;
    if (depth < 0) depth = 0;
    if (vertical)
        return Orv2dRect(r.x + (int32_t)across, r.y + (int32_t)along, (uint32_t)depth,
                         (uint32_t)length);
    return Orv2dRect(r.x + (int32_t)along, r.y + (int32_t)across, (uint32_t)length,
                     (uint32_t)depth);
}

Orv2dRect OrvScrollBar::computeBBox(Orv2dRect& first, Orv2dRect& second, Orv2dRect& trough,
                                    Orv2dRect& thumb, const Orv2dMatrix* matrix) const {
    Orv2dRect r = mapped(matrix);
    unsigned long vertical = isVertical();
    int64_t along = vertical ? r.h : r.w, across = vertical ? r.w : r.h, t = thickness;
    if (2 * across >= along) {
        first = second = trough = thumb = r;
        return r;
    }
    int64_t side = across - 2 * t;
    first = onAxis(r, vertical, t, t, side, side);
    second = onAxis(r, vertical, along - across + t, t, side, side);
    int64_t length = along - 2 * across;
    trough = onAxis(r, vertical, across, t, length, side);
    int64_t range = max - min, start = 0, size = length;
    if (range > 0) {
        start = (int64_t)((double)length * (double)(value - min) / (double)range);
        size = (int64_t)((double)length * (double)sliderSize / (double)range);
    }
    if (start < 0) start = 0;
    if (start > length) start = length;
    if (start + size > length) size = length - start;
    thumb = onAxis(r, vertical, across + start, t, size, side);
    return r;
}

long OrvScrollBar::positionToValue(const Orv2dPoint& p, const Orv2dMatrix* matrix) const {
    Orv2dRect first, second, trough, thumb;
    computeBBox(first, second, trough, thumb, matrix);
    long start = isVertical() ? trough.y : trough.x;
    long length = isVertical() ? (long)trough.h : (long)trough.w;
    if (length <= 0) return min;
    long at = isVertical() ? p.y : p.x;
    return (long)((double)(at - start) / (double)length * (double)(max - min)) + min;
}

unsigned long OrvScrollBar::thumbKey(const Orv2dRect& trough, const Orv2dRect& thumb) const {
    unsigned long offset =
        isVertical() ? (unsigned long)(thumb.y - trough.y) : (unsigned long)(thumb.x - trough.x);
    unsigned long length = isVertical() ? thumb.h : thumb.w;
    return (offset << 16) | (length & 0xFFFF);
}

// ---------------------------------------------------------------------------
// Repaint
// ---------------------------------------------------------------------------

void OrvScrollBar::bufferedDraw(unsigned long whole) {
    OrvStage* stage = drawingStage();
    if (!stage) return;
    Orv2dRect first, second, trough, thumb;
    Orv2dRect all = computeBBox(first, second, trough, thumb, stage->transformer);
    Orv2dRect box = all;
    if (!whole) {
        if (thumbKey(trough, thumb) == lastDrawn) return;
        box = trough;
    }
    repaintNow(box);
}

unsigned long OrvScrollBar::setHighlighted(unsigned long on, const Orv2dPoint&,
                                           unsigned long redraw) {
    on = on ? 1 : 0;
    if (!isHighlightAllowed() || isHighlighted() == on) return 0;
    setBit(OrvHighlightedBit, on);
    if (redraw) bufferedDraw(2);
    return 1;
}

void OrvScrollBar::invert() {
    setBit(OrvInvertedBit, !isInverted());
    bufferedDraw(2);
}

// ---------------------------------------------------------------------------
// Drawing
// ---------------------------------------------------------------------------

// A triangle in the square `box` pointing toward `towards`, filled in `face`,
// with the edges that face up or left in `lit` and the others in `shaded`.
static void arrow(OrvCanvas* canvas, const Orv2dRect& box, OrvPosition towards,
                  const OrvMakeUp* face, const OrvMakeUp* lit, const OrvMakeUp* shaded) {
    int x = box.x, y = box.y, s = (int)(box.w < box.h ? box.w : box.h);
    if (s < 3) return;
    int m = s / 5, c = s / 2;
    Orv2dPoint p[3];
    // Tip first; then the base, in the order that makes the lit edges come first.
    switch (towards) {
        case OrvLeft:
            p[0] = Orv2dPoint(x + m, y + c);
            p[1] = Orv2dPoint(x + s - m, y + m);
            p[2] = Orv2dPoint(x + s - m, y + s - m);
            break;
        case OrvRight:
            p[0] = Orv2dPoint(x + s - m, y + c);
            p[1] = Orv2dPoint(x + m, y + m);
            p[2] = Orv2dPoint(x + m, y + s - m);
            break;
        case OrvTop:
            p[0] = Orv2dPoint(x + c, y + m);
            p[1] = Orv2dPoint(x + m, y + s - m);
            p[2] = Orv2dPoint(x + s - m, y + s - m);
            break;
        default:
            p[0] = Orv2dPoint(x + c, y + s - m);
            p[1] = Orv2dPoint(x + m, y + m);
            p[2] = Orv2dPoint(x + s - m, y + m);
            break;
    }
    canvas->polyLine(face, 3, p, 1, nullptr);
    // The tip's first edge always faces up or left; so does the base of the
    // right and down arrows.
    unsigned litEdges = (towards == OrvRight || towards == OrvBottom) ? 2 : 1;
    for (unsigned e = 0; e < 3; e++)
        canvas->line(e < litEdges ? lit : shaded, p[e], p[(e + 1) % 3], nullptr);
}

void OrvScrollBar::drawFrameAndArrows(OrvCanvas* canvas, const Orv2dRect& whole,
                                      const Orv2dRect& first, const Orv2dRect& second,
                                      unsigned long vertical) {
    // A sunken frame of one pixel around a trough-coloured ground.
    canvas->reliefRectangle(makeUp, pressedMakeUp, shadedMakeUp, litMakeUp, whole, 1, border_,
                            nullptr);
    int held = OrvValuePressedPart(this);
    const Orv2dRect* boxes[2] = {&first, &second};
    OrvPosition towards[2] = {vertical ? (OrvPosition)OrvTop : (OrvPosition)OrvLeft,
                              vertical ? (OrvPosition)OrvBottom : (OrvPosition)OrvRight};
    for (int i = 0; i < 2; i++) {
        const Orv2dRect& b = *boxes[i];
        if (b.w == 0 || b.h == 0) continue;
        // A held arrow shows pressed: its edges change places.
        bool down = held == i + 1;
        arrow(canvas, b, towards[i], down ? pressedMakeUp : faceMakeUp,
              down ? shadedMakeUp : litMakeUp, down ? litMakeUp : shadedMakeUp);
    }
}

void OrvScrollBar::drawBar(OrvCanvas* canvas, const Orv2dMatrix* matrix, unsigned long vertical) {
    Orv2dRect first, second, trough, thumb;
    Orv2dRect r = computeBBox(first, second, trough, thumb, matrix);
    drawFrameAndArrows(canvas, r, first, second, vertical);
    canvas->rectangle(pressedMakeUp, trough, 1, nullptr);
    const OrvMakeUp *face, *top, *bottom;
    stateMakeUps(face, top, bottom);
    if (thumb.w && thumb.h)
        canvas->reliefRectangle(makeUp, face, top, bottom, thumb, thickness, border_, nullptr);
    lastDrawn = thumbKey(trough, thumb);
}

void OrvScrollBar::drawH(OrvCanvas* canvas, const Orv2dMatrix* matrix) {
    drawBar(canvas, matrix, 0);
}

void OrvScrollBar::drawV(OrvCanvas* canvas, const Orv2dMatrix* matrix) {
    drawBar(canvas, matrix, 1);
}

void OrvScrollBar::draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) {
    Orv2dRect first, second, trough, thumb;
    Orv2dRect r = computeBBox(first, second, trough, thumb, matrix);
    if (trough == r) {
        // No room for the arrows: a plain relief.
        OrvReliefRectangle::draw2d(canvas, matrix);
        lastDrawn = thumbKey(trough, thumb);
        return;
    }
    if (isVertical())
        drawV(canvas, matrix);
    else
        drawH(canvas, matrix);
}
