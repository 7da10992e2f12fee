// The relief rectangle: a bevelled plate drawn in five make-ups derived from
// the actor's own, and its persistent form.
#include "orv/relief.h"

#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/makeup.h"
#include "orv/resource.h"
#include "orv/stage.h"
#include "orv/stream.h"

ORV_DEFINE_CLASS_INIT(OrvReliefRectangle, "OrvActor", OrvReliefRectangle::read)

// ---------------------------------------------------------------------------
// Derived make-ups
// ---------------------------------------------------------------------------

// The base make-up with other colours and pattern, through the director's
// table, so that equal looks are one make-up.
static OrvMakeUp* derive(const OrvMakeUp* m, OrvColor* foreground, OrvColor* background,
                         OrvPattern* pattern) {
    return m->director->makeUp(background, foreground, m->lineStyle(), m->lineWidth(), pattern,
                               m->font(), m->colorPattern(), m->fillStyle(), m->arcMode(),
                               m->fillRule(), m->vfont(), m->distinguish(), m->smooth(), m->cull(),
                               m->frontStyle(), m->backStyle(), m->markerType(), m->markerScale(),
                               m->texture());
}

// A stipple by name; the director names its own by density, so the names a
// gadget asks for first may be supplied by the application.
static OrvPattern* stipple(OrvDirector* d, const char* name, const char* standIn) {
    OrvPattern* p = d->pattern(name);
    return p ? p : d->pattern(standIn);
}

void OrvComputeReliefMakeUps(const OrvMakeUp* base, unsigned short depth,
                             OrvMakeUp* out[OrvReliefMakeUpCount]) {
    OrvDirector* d = base->director;
    OrvColor* fg = base->foreground();
    OrvColor* bg = base->background();
    if (!bg) bg = d->defaultBackground;
    if (!fg) fg = d->defaultForeground;
    OrvPattern* solid = d->solidPattern;
    OrvPattern* gray = d->pattern("gray");
    // Fills paint in the foreground: the face is the background colour.
    out[OrvReliefFace] = derive(base, bg, fg, solid);
    if (depth > 1) {
        OrvColor *lit = nullptr, *shaded = nullptr, *pressed = nullptr;
        OrvComputeReliefColors(bg, lit, shaded, pressed);
        out[OrvReliefLit] = derive(base, lit, bg, solid);
        out[OrvReliefShaded] = derive(base, shaded, bg, solid);
        out[OrvReliefPressed] = derive(base, pressed, bg, solid);
    } else {
        out[OrvReliefLit] = derive(base, fg, bg, stipple(d, "light", "light3"));
        out[OrvReliefShaded] = derive(base, fg, bg, stipple(d, "dark", "dark3"));
        out[OrvReliefPressed] = derive(base, fg, bg, gray);
    }
    out[OrvReliefDisabled] = derive(base, fg, bg, gray);
    for (int i = 0; i < OrvReliefMakeUpCount; i++) OrvCount(out[i]);
}

// ---------------------------------------------------------------------------
// Construction
// ---------------------------------------------------------------------------

OrvReliefRectangle::OrvReliefRectangle(OrvDirector* director, const Orv2dRect& box,
                                       unsigned short width, OrvMakeUp* look)
    : OrvActor(director, look), rect(box), thickness(width), faceMakeUp(nullptr),
      litMakeUp(nullptr), shadedMakeUp(nullptr), pressedMakeUp(nullptr), disabledMakeUp(nullptr),
      border_(1) {
    computeMakeUps();
}

OrvReliefRectangle::OrvReliefRectangle(const OrvReliefRectangle& source)
    : OrvActor(source), rect(source.rect), thickness(source.thickness), faceMakeUp(nullptr),
      litMakeUp(nullptr), shadedMakeUp(nullptr), pressedMakeUp(nullptr), disabledMakeUp(nullptr),
      border_(source.border_) {
    computeMakeUps();
}

OrvReliefRectangle::~OrvReliefRectangle() {
    // Off the stage first: leaving it repaints the place, which still needs the make-ups.
    OrvStage* stage = getStage();
    if (stage) stage->remove(this, 0);
    releaseMakeUps();
}

OrvActor* OrvReliefRectangle::copy() const {
    return new OrvReliefRectangle(*this);
}
OrvClassInfo* OrvReliefRectangle::classInfo() const {
    return _classInfo;
}

void OrvReliefRectangle::releaseMakeUps() {
    OrvMakeUp** all[OrvReliefMakeUpCount] = {&faceMakeUp, &litMakeUp, &shadedMakeUp, &pressedMakeUp,
                                             &disabledMakeUp};
    for (OrvMakeUp** m : all) {
        OrvRelease(*m);
        *m = nullptr;
    }
}

void OrvReliefRectangle::computeMakeUps() {
    if (!makeUp) return;
    OrvMakeUp* made[OrvReliefMakeUpCount];
    OrvComputeReliefMakeUps(makeUp, makeUp->director->depth, made);
    // The new ones are counted before the old ones go, so a shared one survives.
    releaseMakeUps();
    faceMakeUp = made[OrvReliefFace];
    litMakeUp = made[OrvReliefLit];
    shadedMakeUp = made[OrvReliefShaded];
    pressedMakeUp = made[OrvReliefPressed];
    disabledMakeUp = made[OrvReliefDisabled];
    // A shared make-up keeps the mode last set on it: the derived ones follow the actor's.
    OrvMakeUp* derived[] = {faceMakeUp, litMakeUp, shadedMakeUp, pressedMakeUp, disabledMakeUp};
    for (OrvMakeUp* m : derived) {
        if (m->mode != makeUp->mode) m->setMode(makeUp->mode);
        if (m->overwrite != makeUp->overwrite) m->setOverwrite(makeUp->overwrite);
    }
}

void OrvReliefRectangle::notifyOnMakeUpChanged() {
    computeMakeUps();
    OrvActor::notifyOnMakeUpChanged();
}

// ---------------------------------------------------------------------------
// Persistent form: the rectangle, the thickness and the border; the derived
// make-ups are made again rather than read
// ---------------------------------------------------------------------------

OrvActor* OrvReliefRectangle::read(OrvIStream& in) {
    return new OrvReliefRectangle(in);
}

void OrvReliefRectangle::write(OrvOStream& out) const {
    OrvActor::write(out);
    out.writeComments("OrvReliefRectangle class", 1);
    out << rect;
    out << thickness;
    out << border_;
}

OrvReliefRectangle::OrvReliefRectangle(OrvIStream& in)
    : OrvActor(in), rect(), thickness(0), faceMakeUp(nullptr), litMakeUp(nullptr),
      shadedMakeUp(nullptr), pressedMakeUp(nullptr), disabledMakeUp(nullptr), border_(1) {
    computeMakeUps();
    unsigned long before = in.faults;
    in >> rect;
    if (in.faults != before || !in.stream) return;
    in >> thickness;
    if (in.faults != before || !in.stream) return;
    in >> border_;
}

// ---------------------------------------------------------------------------
// Setters
// ---------------------------------------------------------------------------

void OrvReliefRectangle::setThickness(unsigned short t) {
    if (t == thickness) return;
    beginDrawing(1);
    thickness = t;
    flushDrawing(1);
}

void OrvReliefRectangle::border(unsigned long on) {
    on = on ? 1 : 0;
    if (on == border_) return;
    beginDrawing(1);
    border_ = on;
    flushDrawing(1);
}

void OrvReliefRectangle::setRect(const Orv2dRect& r) {
    if (r == rect) return;
    beginDrawing(1);
    rect = r;
    flushDrawing(1);
}

void OrvReliefRectangle::invert() {
    changeFlag(OrvInvertedBit, !isInverted(), 0);
}

void OrvReliefRectangle::setMode(OrvDrawMode mode) {
    OrvMakeUp* all[] = {makeUp, faceMakeUp, litMakeUp, shadedMakeUp, pressedMakeUp, disabledMakeUp};
    for (OrvMakeUp* m : all)
        if (m) m->setMode(mode);
}

void OrvReliefRectangle::setOverwrite(unsigned long on) {
    OrvMakeUp* all[] = {makeUp, faceMakeUp, litMakeUp, shadedMakeUp, pressedMakeUp, disabledMakeUp};
    for (OrvMakeUp* m : all)
        if (m) m->setOverwrite(on);
}

void OrvReliefRectangle::repaintNow(const Orv2dRect& box) {
    if (OrvForgetUpdateDrawing()) return;
    OrvStage* stage = drawingStage();
    if (!stage || !stage->isVisible(this)) return;
    if (stage->nesting)
        stage->invalidate(box);
    else
        stage->bufferedDraw(box);
}

unsigned long OrvReliefRectangle::setHighlighted(unsigned long on, const Orv2dPoint&,
                                                 unsigned long redraw) {
    on = on ? 1 : 0;
    if (!isHighlightAllowed() || isHighlighted() == on) return 0;
    setBit(OrvHighlightedBit, on);
    if (redraw) {
        OrvStage* stage = drawingStage();
        if (stage) repaintNow(bbox2d(stage->transformer));
    }
    return 1;
}

// ---------------------------------------------------------------------------
// Geometry and drawing
// ---------------------------------------------------------------------------

Orv2dRect OrvReliefRectangle::mapped(const Orv2dMatrix* matrix) const {
    Orv2dRect r = rect;
    if (matrix) matrix->apply(r);
    return r;
}

Orv2dRect OrvReliefRectangle::bbox2d(const Orv2dMatrix* matrix) const {
    return mapped(matrix);
}

void OrvReliefRectangle::apply2d(const Orv2dMatrix& matrix) {
    matrix.apply(rect);
}

void OrvReliefRectangle::stateMakeUps(const OrvMakeUp*& face, const OrvMakeUp*& top,
                                      const OrvMakeUp*& bottom) const {
    if (isInverted()) {
        face = isHighlighted() ? shadedMakeUp : pressedMakeUp;
        top = shadedMakeUp;
        bottom = litMakeUp;
    } else {
        face = isHighlighted() ? litMakeUp : faceMakeUp;
        top = litMakeUp;
        bottom = shadedMakeUp;
    }
}

void OrvReliefRectangle::draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) {
    const OrvMakeUp *face, *top, *bottom;
    stateMakeUps(face, top, bottom);
    canvas->reliefRectangle(makeUp, face, top, bottom, mapped(matrix), thickness, border_, nullptr);
}
