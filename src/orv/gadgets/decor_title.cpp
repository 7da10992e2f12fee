// The title bar of a decor: the menu box, the title, the iconify box and a
// third box, each drawn raised or pressed by its press flag.
#include "orv/frame.h"

#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/makeup.h"
#include "orv/stream.h"

ORV_DEFINE_CLASS_INIT(OrvDecorTitleBar, "OrvReliefLabel", OrvDecorTitleBar::read)

OrvDecorTitleBar::OrvDecorTitleBar(OrvDirector* director, const Orv2dRect& box, const char* title,
                                   OrvMakeUp* look)
    : OrvReliefLabel(director, box, title, 1, look), pressed{0, 0, 0, 0}, dragging(0) {
    // The face outline of the decor runs right above: a line of its own would double it.
    border_ = 0;
}

OrvDecorTitleBar::OrvDecorTitleBar(const OrvDecorTitleBar& source)
    : OrvReliefLabel(source), pressed{0, 0, 0, 0}, dragging(0) {}

OrvActor* OrvDecorTitleBar::copy() const {
    return new OrvDecorTitleBar(*this);
}
OrvClassInfo* OrvDecorTitleBar::classInfo() const {
    return _classInfo;
}
const char* OrvDecorTitleBar::defaultRole() const {
    return "DecorTitleBar";
}

// Persistent form: the label's; the press flags are the state of a gesture.

OrvActor* OrvDecorTitleBar::read(OrvIStream& in) {
    return new OrvDecorTitleBar(in);
}

void OrvDecorTitleBar::write(OrvOStream& out) const {
    OrvReliefLabel::write(out);
    out.writeComments("OrvDecorTitleBar class", 1);
}

OrvDecorTitleBar::OrvDecorTitleBar(OrvIStream& in)
    : OrvReliefLabel(in), pressed{0, 0, 0, 0}, dragging(0) {}

void OrvDecorTitleBar::release() {
    for (unsigned long& p : pressed) p = 0;
    dragging = 0;
}

// ---------------------------------------------------------------------------
// Layout: square boxes of the bar's height, one at the left and two at the
// right; a bar too short for them gives each a quarter of its width.
// ---------------------------------------------------------------------------

void OrvDecorTitleBar::itemsSize(Orv2dRect& first, Orv2dRect& second, Orv2dRect& third,
                                 Orv2dRect& fourth, const Orv2dMatrix* matrix) const {
    Orv2dRect r = mapped(matrix);
    uint32_t side = r.h;
    if (4 * (uint64_t)side > r.w) side = r.w / 4;
    int32_t s = (int32_t)side;
    first = Orv2dRect(r.x, r.y, side, r.h);
    third = Orv2dRect((int32_t)(r.right() - s), r.y, side, r.h);
    second = Orv2dRect((int32_t)(r.right() - 2 * s), r.y, side, r.h);
    fourth = Orv2dRect(r.x + s, r.y, r.w - 3 * side, r.h);
}

int OrvDecorTitleBar::boxAt(const Orv2dPoint& p, const Orv2dMatrix* matrix) const {
    Orv2dRect boxes[4];
    itemsSize(boxes[0], boxes[1], boxes[2], boxes[3], matrix);
    for (int i = 0; i < 4; i++)
        if (boxes[i].w && boxes[i].h && boxes[i].contains(p)) return i + 1;
    return 0;
}

// ---------------------------------------------------------------------------
// Drawing
// ---------------------------------------------------------------------------

// A rectangle of w by h centred in `box`.
static Orv2dRect centred(const Orv2dRect& box, uint32_t w, uint32_t h) {
    if (w > box.w) w = box.w;
    if (h > box.h) h = box.h;
    return Orv2dRect(box.x + (int32_t)((box.w - w) / 2), box.y + (int32_t)((box.h - h) / 2), w, h);
}

void OrvDecorTitleBar::drawBox(OrvCanvas* canvas, const Orv2dRect& box, int which,
                               unsigned long down) {
    if (box.w < 2 || box.h < 2) return;
    unsigned long t = box.w >= 12 && box.h >= 12 ? 2 : 1;
    canvas->reliefRectangle(makeUp, down ? pressedMakeUp : faceMakeUp,
                            down ? shadedMakeUp : litMakeUp, down ? litMakeUp : shadedMakeUp, box,
                            t, 0);
    // The marks stay raised: the menu's bar, the iconify box's dot, the third box's square.
    uint32_t inner = box.w < box.h ? box.w : box.h;
    Orv2dRect mark;
    if (which == 0)
        mark = centred(box, inner / 2, 4);
    else if (which == 1)
        mark = centred(box, 4, 4);
    else
        mark = centred(box, inner / 2, inner / 2);
    if (mark.w > 2 && mark.h > 2)
        canvas->reliefRectangle(makeUp, faceMakeUp, litMakeUp, shadedMakeUp, mark, 1, 0);
}

void OrvDecorTitleBar::draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) {
    Orv2dRect r = mapped(matrix);
    if (r.w == 0 || r.h == 0) return;
    const OrvMakeUp *face, *top, *bottom;
    stateMakeUps(face, top, bottom);
    canvas->reliefRectangle(makeUp, face, top, bottom, r, thickness, border_);
    Orv2dRect boxes[4];
    itemsSize(boxes[0], boxes[1], boxes[2], boxes[3], matrix);
    for (int i = 0; i < 3; i++) drawBox(canvas, boxes[i], i, pressed[i]);
    Orv2dRect& title = boxes[3];
    uint32_t t = thickness;
    if (title.w > 2 * t && title.h > 2 * t) {
        Orv2dRect inside(title.x + (int32_t)t, title.y + (int32_t)t, title.w - 2 * t,
                         title.h - 2 * t);
        const OrvMakeUp* ink = isSensitive() ? makeUp : disabledMakeUp;
        canvas->clipString(ink, inside, OrvGetMessage(makeUp->director, label), 0, OrvCenter, 0);
    }
}
