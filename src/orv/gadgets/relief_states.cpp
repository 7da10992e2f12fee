// Relief gadgets with a state: icons that change with it, check and radio
// boxes, and the radio group that keeps one box of a set checked.
#include "orv/relief.h"

#include <cstdlib>

#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/makeup.h"
#include "orv/resource.h"
#include "orv/stage.h"
#include "orv/stream.h"

ORV_DEFINE_CLASS_INIT(OrvIconStates, "OrvReliefLabel", OrvIconStates::read)
ORV_DEFINE_CLASS_INIT(OrvToggle, "OrvReliefLabel", OrvToggle::read)

// ---------------------------------------------------------------------------
// Icon states
// ---------------------------------------------------------------------------

OrvIconStates::OrvIconStates(OrvDirector* director, const Orv2dRect& box, OrvBitmap* first,
                             OrvBitmap* second, unsigned short width, OrvMakeUp* look)
    : OrvReliefLabel(director, box, "", width, look), bitmaps{first, second, second, first},
      state1(0), state2(0) {
    for (OrvBitmap* b : bitmaps)
        if (b) b->lock();
    useBitmap(shownBitmap());
}

OrvIconStates::OrvIconStates(const OrvIconStates& source)
    : OrvReliefLabel(source), bitmaps{source.bitmaps[0], source.bitmaps[1], source.bitmaps[2],
                                      source.bitmaps[3]},
      state1(source.state1), state2(source.state2) {
    for (OrvBitmap* b : bitmaps)
        if (b) b->lock();
    useBitmap(shownBitmap());
}

OrvIconStates::~OrvIconStates() {
    OrvStage* stage = getStage();
    if (stage) stage->remove(this, 0);
    useBitmap(nullptr);
    for (OrvBitmap*& b : bitmaps) {
        if (b) b->unLock();
        b = nullptr;
    }
}

OrvActor* OrvIconStates::copy() const {
    return new OrvIconStates(*this);
}
OrvClassInfo* OrvIconStates::classInfo() const {
    return _classInfo;
}
const char* OrvIconStates::defaultRole() const {
    return "Toggle";
}

// Persistent form: the label's, then the two state values and the four bitmaps.

OrvActor* OrvIconStates::read(OrvIStream& in) {
    return new OrvIconStates(in);
}

void OrvIconStates::write(OrvOStream& out) const {
    OrvReliefLabel::write(out);
    out.writeComments("OrvIconStates class ...", 1);
    out << state1;
    out << state2;
    for (const OrvBitmap* b : bitmaps) out << b;
}

OrvIconStates::OrvIconStates(OrvIStream& in)
    : OrvReliefLabel(in), bitmaps{nullptr, nullptr, nullptr, nullptr}, state1(0), state2(0) {
    unsigned long before = in.faults;
    auto good = [&]() { return in.faults == before && in.stream; };
    if (good()) in >> state1;
    if (good()) in >> state2;
    for (OrvBitmap*& b : bitmaps) {
        if (!good()) break;
        OrvBitmap* read = nullptr;
        in >> read;
        if (!good()) break;
        b = read;
        if (b) b->lock();
    }
    useBitmap(shownBitmap());
}

void OrvIconStates::setState(unsigned long first, unsigned long second) {
    state1 = first;
    state2 = second;
}

void OrvIconStates::invert() {
    beginDrawing(0);
    setBit(OrvInvertedBit, !isInverted());
    useBitmap(shownBitmap());
    flushDrawing(0);
}

void OrvIconStates::invertBitmaps() {
    unsigned i = isInverted() ? 2 : 0;
    beginDrawing(0);
    OrvBitmap* b = bitmaps[i];
    bitmaps[i] = bitmaps[i + 1];
    bitmaps[i + 1] = b;
    useBitmap(shownBitmap());
    flushDrawing(0);
}

void OrvIconStates::setBitmap(OrvBitmap*) {
    OrvError("OrvIconStates::setBitmap : Not implemented. \n");
}

// ---------------------------------------------------------------------------
// Toggle
// ---------------------------------------------------------------------------

OrvToggle::OrvToggle(OrvDirector* director, const Orv2dRect& box, const char* text,
                     unsigned short width, OrvMakeUp* look)
    : OrvReliefLabel(director, box, text, width, look), diamond(0), checkSize(16),
      margin_(4), markMakeUp{nullptr, nullptr} {
    OrvRasterFont* font = makeUp ? makeUp->font() : nullptr;
    uint32_t fontHeight = font ? font->box.h : 0;
    rect.h = checkSize > fontHeight ? (uint32_t)checkSize : fontHeight;
    computeToggleMakeUps();
}

OrvToggle::OrvToggle(const OrvToggle& source)
    : OrvReliefLabel(source), diamond(source.diamond), checkSize(source.checkSize),
      margin_(source.margin_), markMakeUp{source.markMakeUp[0], source.markMakeUp[1]} {
    OrvCount(markMakeUp[0]);
    OrvCount(markMakeUp[1]);
}

OrvToggle::~OrvToggle() {
    OrvStage* stage = getStage();
    if (stage) stage->remove(this, 0);
    releaseMarks();
}

OrvActor* OrvToggle::copy() const {
    return new OrvToggle(*this);
}
OrvClassInfo* OrvToggle::classInfo() const {
    return _classInfo;
}
const char* OrvToggle::defaultRole() const {
    return "Toggle";
}

void OrvToggle::releaseMarks() {
    for (OrvMakeUp*& m : markMakeUp) {
        OrvRelease(m);
        m = nullptr;
    }
}

void OrvToggle::computeToggleMakeUps() {
    if (!makeUp) return;
    OrvDirector* d = makeUp->director;
    static const char* const names[2] = {"red", "blue"};
    OrvMakeUp* made[2];
    for (int i = 0; i < 2; i++) {
        OrvColor* c = d->depth > 1 ? d->color(names[i]) : nullptr;
        made[i] = c ? d->makeUpForeground(makeUp, c) : makeUp;
        OrvCount(made[i]);
    }
    releaseMarks();
    markMakeUp[0] = made[0];
    markMakeUp[1] = made[1];
}

void OrvToggle::notifyOnMakeUpChanged() {
    OrvReliefLabel::notifyOnMakeUpChanged();
    computeToggleMakeUps();
}

// Persistent form: the label's, then diamond, check size, margin and the
// make-ups of the two marks.

OrvActor* OrvToggle::read(OrvIStream& in) {
    return new OrvToggle(in);
}

void OrvToggle::write(OrvOStream& out) const {
    OrvReliefLabel::write(out);
    out.writeComments("OrvToggle class", 1);
    out << diamond;
    out << checkSize;
    out << margin_;
    out << (const OrvMakeUp*)markMakeUp[0];
    out << (const OrvMakeUp*)markMakeUp[1];
}

OrvToggle::OrvToggle(OrvIStream& in)
    : OrvReliefLabel(in), diamond(0), checkSize(16), margin_(4), markMakeUp{nullptr, nullptr} {
    computeToggleMakeUps();
    unsigned long before = in.faults;
    auto good = [&]() { return in.faults == before && in.stream; };
    if (good()) in >> diamond;
    if (good()) in >> checkSize;
    if (good()) in >> margin_;
    for (OrvMakeUp*& m : markMakeUp) {
        if (!good()) break;
        OrvMakeUp* read = nullptr;
        in >> read;
        if (!good() || !read) break;
        OrvCount(read);
        OrvRelease(m);
        m = read;
    }
}

void OrvToggle::setCheckSize(unsigned long size) {
    if (size == checkSize) return;
    beginDrawing(1);
    checkSize = size;
    flushDrawing(1);
}

void OrvToggle::useDiamond(unsigned long on) {
    on = on ? 1 : 0;
    if (on == diamond) return;
    beginDrawing(1);
    diamond = on;
    flushDrawing(1);
}

void OrvToggle::margin(unsigned short pixels) {
    if (pixels == margin_) return;
    beginDrawing(1);
    margin_ = pixels;
    flushDrawing(1);
}

void OrvToggle::setChecked(unsigned long on) {
    if (isChecked() != (on ? 1ul : 0ul)) invert();
}

void OrvToggle::fitToContents() {
    Orv2dRect contents = getLabelBitmapSizes(makeUp);
    uint32_t margin = 4u * thickness;
    uint32_t w = contents.w + margin + (uint32_t)checkSize + margin_;
    uint32_t h = contents.h + margin;
    if ((uint32_t)checkSize > h) h = (uint32_t)checkSize;
    setRect(Orv2dRect(rect.x, rect.y, w, h));
}

Orv2dRect OrvToggle::checkBox(const Orv2dMatrix* matrix) const {
    Orv2dRect r = mapped(matrix);
    uint32_t side = (uint32_t)checkSize;
    int32_t y = r.y + (r.h > side ? (int32_t)((r.h - side) / 2) : 0);
    return Orv2dRect(r.x, y, side, side);
}

// The outlines of the marks, in sixteenths of the box's side.
static const int checkMark[6][2] = {{3, 8}, {6, 11}, {12, 3}, {14, 5}, {6, 14}, {2, 10}};
static const int radioMark[4][2] = {{8, 4}, {12, 8}, {8, 12}, {4, 8}};

static void fillMark(OrvCanvas* canvas, const OrvMakeUp* m, const Orv2dRect& box,
                     const int (*table)[2], unsigned n) {
    Orv2dPoint points[6];
    for (unsigned i = 0; i < n; i++)
        points[i] = Orv2dPoint(box.x + (int32_t)(table[i][0] * box.w / 16),
                               box.y + (int32_t)(table[i][1] * box.h / 16));
    canvas->polyLine(m, n, points, 1, nullptr);
}

void OrvToggle::drawCheckBox(OrvCanvas* canvas, const Orv2dRect& box) {
    unsigned long t = thickness ? thickness : 1;
    canvas->reliefRectangle(makeUp, isHighlighted() ? litMakeUp : faceMakeUp, shadedMakeUp,
                            litMakeUp, box, t, 1, nullptr);
    if (isInverted()) fillMark(canvas, markMakeUp[0], box, checkMark, 6);
}

void OrvToggle::drawRadioBox(OrvCanvas* canvas, const Orv2dRect& box) {
    unsigned long t = thickness ? thickness : 1;
    canvas->reliefDiamond(makeUp, isHighlighted() ? litMakeUp : faceMakeUp, shadedMakeUp, litMakeUp,
                          box, t, 1, nullptr);
    if (isInverted()) fillMark(canvas, markMakeUp[1], box, radioMark, 4);
}

void OrvToggle::draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) {
    Orv2dRect r = mapped(matrix);
    if (backShown)
        canvas->rectangle(faceMakeUp, r, 1, nullptr);
    else if (isSelected())
        canvas->rectangle(makeUp, r, 0, nullptr);
    Orv2dRect box = checkBox(matrix);
    if (diamond)
        drawRadioBox(canvas, box);
    else
        drawCheckBox(canvas, box);
    uint32_t skip = (uint32_t)checkSize + margin_;
    if (r.w > skip) drawContents(canvas, Orv2dRect(r.x + (int32_t)skip, r.y, r.w - skip, r.h));
}

// ---------------------------------------------------------------------------
// Radio group
// ---------------------------------------------------------------------------

void OrvRadioGroup::add(OrvToggle* toggle) {
    if (toggle) toggle->setCallback(this);
}

OrvToggle* OrvRadioGroup::selected(OrvStage* stage) const {
    if (!stage) return nullptr;
    unsigned n = 0;
    OrvActor** all = stage->objects(n);
    OrvToggle* found = nullptr;
    for (unsigned i = 0; i < n && !found; i++) {
        OrvToggle* t = dynamic_cast<OrvToggle*>(all[i]);
        if (t && t->getCallback() == this && t->isChecked()) found = t;
    }
    delete[] all;
    return found;
}

void OrvRadioGroup::activate(OrvActor* actor) {
    OrvToggle* chosen = dynamic_cast<OrvToggle*>(actor);
    if (!chosen) return;
    // A click on the checked member leaves it checked.
    chosen->setChecked(1);
    OrvStage* stage = chosen->getStage();
    if (stage) {
        unsigned n = 0;
        OrvActor** all = stage->objects(n);
        stage->beginDrawing();
        for (unsigned i = 0; i < n; i++) {
            OrvToggle* t = dynamic_cast<OrvToggle*>(all[i]);
            if (t && t != chosen && t->getCallback() == this) t->setChecked(0);
        }
        stage->flushDrawing(1);
        delete[] all;
    }
    changed(chosen);
}

void OrvRadioGroup::changed(OrvToggle*) {}
