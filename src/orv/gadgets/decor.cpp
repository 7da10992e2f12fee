// The decor: window furniture drawn by one actor around an interior
// rectangle. itemsSize lays it out; the plates, the title bar and the bars are
// sub-actors that draw on the decor's stage; its persistent form.
#include "orv/frame.h"

#include <cstdlib>
#include <cstring>

#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/makeup.h"
#include "orv/resource.h"
#include "orv/stream.h"
#include "orv/stream/scan.h"

ORV_DEFINE_CLASS_INIT(OrvDecor, "OrvActor", OrvDecor::read)

OrvKey* OrvDecor::_inDecor = nullptr;

namespace {

// A rectangle shrunk by d on every side; empty when nothing is left.
Orv2dRect inset(const Orv2dRect& r, uint32_t d) {
    uint32_t w = r.w > 2 * d ? r.w - 2 * d : 0, h = r.h > 2 * d ? r.h - 2 * d : 0;
    return Orv2dRect(r.x + (int32_t)d, r.y + (int32_t)d, w, h);
}

// Every step of an arrow held down on one of a decor's bars brings the decor's
// interior in step, as the end of a press does.
class _OrvDecorBarOwner_ : public OrvCallback {
public:
    void activate(OrvActor* bar) override {
        OrvDecor* decor = bar ? (OrvDecor*)bar->getUserProperty(OrvDecor::_inDecor) : nullptr;
        if (decor) decor->adjust();
    }
};

OrvCallback* barOwner() {
    static _OrvDecorBarOwner_ owner;
    return &owner;
}

void placePart(OrvReliefRectangle* part, const Orv2dRect& r) {
    if (!part || part->rect == r) return;
    part->rect = r;
    // A moved bar repaints its trough in full the next time.
    if (OrvScrollBar* bar = dynamic_cast<OrvScrollBar*>(part)) bar->lastDrawn = 65535;
}

}  // namespace

// ---------------------------------------------------------------------------
// Construction
// ---------------------------------------------------------------------------

OrvDecor::OrvDecor(OrvDirector* director, const Orv2dRect& box, OrvMakeUp* look)
    : OrvActor(director, look), rect(box), scratch(), vScrollBar(nullptr), vBarOnRight(1),
      hScrollBar(nullptr), hBarAtBottom(1), scrollBarWidth(16), borderWidth(7),
      innerBorder(nullptr), outerBorder(nullptr), cornerLength(26), titleHeight(22),
      titleBar(nullptr), iconActor(nullptr), iconified(0), transformer() {
    if (!_inDecor) _inDecor = OrvGetKey("ScrollBarInDecor", 1);
    allowHighlight(1);
}

OrvDecor::OrvDecor(const OrvDecor& source)
    : OrvActor(source), rect(source.rect), scratch(), vScrollBar(nullptr), vBarOnRight(1),
      hScrollBar(nullptr), hBarAtBottom(1), scrollBarWidth(source.scrollBarWidth),
      borderWidth(source.borderWidth), innerBorder(nullptr), outerBorder(nullptr),
      cornerLength(source.cornerLength), titleHeight(source.titleHeight), titleBar(nullptr),
      iconActor(nullptr), iconified(0), transformer(source.transformer) {
    if (!_inDecor) _inDecor = OrvGetKey("ScrollBarInDecor", 1);
    allowHighlight(1);
    copyFurniture(source);
}

void OrvDecor::copyFurniture(const OrvDecor& source) {
    // The title first: new plates take their background from it.
    if (source.titleBar) showTitleBar(source.titleBar->getLabel(), source.titleHeight);
    if (source.outerBorder || source.innerBorder) showDecoration(source.borderWidth);
    if (source.hScrollBar || source.vScrollBar)
        showScrollBars(source.hScrollBar != nullptr, source.vScrollBar != nullptr,
                       source.hBarAtBottom ? OrvBottom : OrvTop,
                       source.vBarOnRight ? OrvLeft : OrvRight, source.scrollBarWidth);
    if (source.iconActor) icon(source.iconActor->copy());
    iconified = source.iconified && iconActor ? 1 : 0;
}

OrvDecor::~OrvDecor() {
    // Off the stage while the furniture still stands: leaving repaints the place.
    OrvStage* stage = getStage();
    if (stage) stage->remove(this, 0);
    delete vScrollBar;
    delete hScrollBar;
    delete innerBorder;
    delete outerBorder;
    delete titleBar;
    delete iconActor;
    vScrollBar = hScrollBar = nullptr;
    innerBorder = outerBorder = nullptr;
    titleBar = nullptr;
    iconActor = nullptr;
}

OrvActor* OrvDecor::copy() const {
    return new OrvDecor(*this);
}
OrvClassInfo* OrvDecor::classInfo() const {
    return _classInfo;
}
const char* OrvDecor::defaultRole() const {
    return "Decor";
}

// ---------------------------------------------------------------------------
// Sub-actors
// ---------------------------------------------------------------------------

void OrvDecor::adopt(OrvActor* part) {
    part->setUserProperty(_inDecor, this);
    part->setUserProperty(OrvActor::_inVirtualStage, getStage());
}

static void lendStage(OrvActor* part, void* stage) {
    part->setUserProperty(OrvActor::_inVirtualStage, stage);
}

void OrvDecor::setStage(OrvStage* stage) {
    OrvActor::setStage(stage);
    map(lendStage, stage);
}

void OrvDecor::map(void (*function)(OrvActor*, void*), void* data) {
    OrvActor* parts[] = {outerBorder, innerBorder, titleBar, vScrollBar, hScrollBar, iconActor};
    for (OrvActor* part : parts)
        if (part) function(part, data);
}

OrvScrollBar* OrvDecor::makeBar(OrvPosition direction) {
    OrvScrollBar* bar = new OrvScrollBar(makeUp->director, Orv2dRect(), direction, 2, nullptr);
    bar->border(0);
    adopt(bar);
    const char* role = bar->defaultRole();
    if (role) bar->setRole(OrvGetRole(role));
    bar->setUserProperty(OrvScrollBarOwnerKey(), barOwner());
    return bar;
}

unsigned long OrvDecor::showScrollBars(unsigned long horizontal, unsigned long vertical,
                                       OrvPosition hPosition, OrvPosition vPosition,
                                       unsigned short width) {
    // 1 names the right side here, unlike everywhere else: that is how the decor stands.
    unsigned long right = vPosition == 1 ? 1 : 0, bottom = hPosition == 8 ? 1 : 0;
    bool sameBars =
        (hScrollBar != nullptr) == (horizontal != 0) && (vScrollBar != nullptr) == (vertical != 0);
    if (sameBars && width == scrollBarWidth && right == vBarOnRight && bottom == hBarAtBottom)
        return 0;
    scrollBarWidth = width;
    vBarOnRight = right;
    hBarAtBottom = bottom;
    if (!horizontal && hScrollBar) {
        delete hScrollBar;
        hScrollBar = nullptr;
    }
    if (!vertical && vScrollBar) {
        delete vScrollBar;
        vScrollBar = nullptr;
    }
    if (horizontal && !hScrollBar) hScrollBar = makeBar(OrvHorizontal);
    if (vertical && !vScrollBar) vScrollBar = makeBar(OrvVertical);
    beginDrawing(1);
    internalUpdate();
    adjust();
    flushDrawing(1);
    return 1;
}

void OrvDecor::hideScrollBars() {
    showScrollBars(0, 0, hBarAtBottom ? OrvBottom : OrvTop, vBarOnRight ? OrvLeft : OrvRight,
                   scrollBarWidth);
}

void OrvDecor::showDecoration(unsigned short width) {
    if (innerBorder && outerBorder && width == borderWidth) return;
    borderWidth = width;
    OrvReliefRectangle** plates[2] = {&outerBorder, &innerBorder};
    for (OrvReliefRectangle** plate : plates) {
        if (*plate) continue;
        OrvReliefRectangle* p = new OrvReliefRectangle(makeUp->director, Orv2dRect(), 2, makeUp);
        p->border(0);
        if (titleBar && titleBar->makeUp->background())
            p->setBackground(titleBar->makeUp->background());
        p->allowHighlight(1);
        if (plate == &innerBorder) p->invert();
        adopt(p);
        *plate = p;
    }
    beginDrawing(1);
    internalUpdate();
    adjust();
    flushDrawing(1);
}

void OrvDecor::hideDecoration() {
    if (!innerBorder && !outerBorder) return;
    beginDrawing(1);
    delete innerBorder;
    delete outerBorder;
    innerBorder = outerBorder = nullptr;
    internalUpdate();
    adjust();
    flushDrawing(1);
}

void OrvDecor::createTitle(const char* title) {
    if (titleBar) {
        titleBar->setLabel(title);
        return;
    }
    titleBar = new OrvDecorTitleBar(makeUp->director, Orv2dRect(), title, makeUp);
    adopt(titleBar);
    titleBar->setRole(OrvGetRole(titleBar->defaultRole()));
}

void OrvDecor::showTitleBar(const char* title, unsigned short height) {
    if (!title) title = "";
    if (titleBar && height == titleHeight && !strcmp(titleBar->getLabel(), title)) return;
    beginDrawing(1);
    titleHeight = height;
    createTitle(title);
    internalUpdate();
    adjust();
    flushDrawing(1);
}

void OrvDecor::hideTitleBar() {
    if (!titleBar) return;
    beginDrawing(1);
    delete titleBar;
    titleBar = nullptr;
    internalUpdate();
    adjust();
    flushDrawing(1);
}

const char* OrvDecor::getTitle() const {
    return titleBar ? titleBar->getLabel() : nullptr;
}

void OrvDecor::setDecorationColor(OrvColor* color) {
    beginDrawing(0);
    OrvActor* parts[] = {outerBorder, innerBorder, titleBar};
    for (OrvActor* part : parts)
        if (part) part->setBackground(color);
    flushDrawing(0);
}

void OrvDecor::createDefaultIcon() {
    if (iconActor) return;
    Orv2dRect p = placed();
    OrvReliefLabel* label = new OrvReliefLabel(makeUp->director, Orv2dRect(p.x, p.y, 48, 24),
                                               titleBar ? titleBar->getLabel() : "", 2, makeUp);
    label->fitToContents();
    // Big enough to take with the pointer, whatever the title.
    if (label->rect.w < 48) label->rect.w = 48;
    if (label->rect.h < 24) label->rect.h = 24;
    adopt(label);
    iconActor = label;
}

void OrvDecor::icon(OrvActor* actor) {
    if (actor == iconActor) return;
    if (iconified) beginDrawing(1);
    delete iconActor;
    iconActor = actor;
    if (actor) adopt(actor);
    if (iconified) {
        if (!iconActor) createDefaultIcon();
        flushDrawing(1);
    }
}

void OrvDecor::iconify(unsigned long on) {
    on = on ? 1 : 0;
    if (on == iconified) return;
    beginDrawing(1);
    if (on && !iconActor) createDefaultIcon();
    iconified = on;
    flushDrawing(1);
    OrvStage* stage = getStage();
    if (stage) stage->contentsChanged();
}

// A plain decor has no interior to bring in step.
void OrvDecor::adjust() {}
void OrvDecor::adjustScrollBars() {}

// ---------------------------------------------------------------------------
// Layout
// ---------------------------------------------------------------------------

Orv2dRect OrvDecor::placed() const {
    Orv2dRect r = rect;
    transformer.apply(r);
    return r;
}

Orv2dRect OrvDecor::itemsSize(Orv2dRect& interior, Orv2dRect& hBar, Orv2dRect& vBar,
                              Orv2dRect& inner, Orv2dRect& outer, Orv2dRect& title) const {
    OrvStage* stage = getStage();
    const Orv2dMatrix* toWindow = stage ? stage->transformer : nullptr;
    Orv2dRect whole = placed();
    if (toWindow) toWindow->apply(whole);
    inner = outer = whole;
    Orv2dRect work = whole;
    uint32_t bw = borderWidth;
    // A border too wide for the decor is not taken away; the test is strict both ways.
    if (innerBorder && bw > 2 && 2 * bw < whole.w && 2 * bw < whole.h) {
        inner = inset(whole, bw - 2);
        work = inset(whole, bw);
    }
    title = Orv2dRect(work.x, work.y, work.w, 0);
    if (titleBar) {
        uint32_t th = work.h > titleHeight ? titleHeight : 0;
        title.h = th;
        work.y += (int32_t)th;
        work.h -= th;
    }
    uint32_t vw = vScrollBar ? (scrollBarWidth < work.w ? scrollBarWidth : work.w) : 0;
    uint32_t hh = hScrollBar ? (scrollBarWidth < work.h ? scrollBarWidth : work.h) : 0;
    interior = Orv2dRect(vBarOnRight ? work.x : work.x + (int32_t)vw,
                         hBarAtBottom ? work.y : work.y + (int32_t)hh, work.w - vw, work.h - hh);
    int32_t vx = vBarOnRight ? (int32_t)(work.right() - vw) : work.x;
    int32_t hy = hBarAtBottom ? (int32_t)(work.bottom() - hh) : work.y;
    vBar = Orv2dRect(vx, interior.y, vw, vw ? interior.h : 0);
    hBar = Orv2dRect(interior.x, hy, hh ? interior.w : 0, hh);
    if (toWindow) {
        // The sub-actors live in the stage's space; the interior stays in the window's.
        Orv2dRect* back[] = {&hBar, &vBar, &inner, &outer, &title};
        for (Orv2dRect* r : back) toWindow->inverse(*r);
    }
    return whole;
}

Orv2dRect OrvDecor::placeItems() {
    Orv2dRect interior, hBar, vBar, inner, outer, title;
    itemsSize(interior, hBar, vBar, inner, outer, title);
    placePart(vScrollBar, vBar);
    placePart(hScrollBar, hBar);
    placePart(innerBorder, inner);
    placePart(outerBorder, outer);
    placePart(titleBar, title);
    return interior;
}

void OrvDecor::internalUpdate() {
    placeItems();
}

void OrvDecor::fitToSize(const Orv2dRect& box) {
    if (iconified || box.w == 0 || box.h == 0) return;
    beginDrawing(1);
    if (!outerBorder && !innerBorder && !titleBar) {
        apply2d(OrvCompute2dMatrix(bbox2d(nullptr), box));
    } else {
        // The furniture keeps its sizes in pixels: only the rectangle changes.
        Orv2dRect r = box;
        transformer.inverse(r);
        rect = r;
        internalUpdate();
    }
    flushDrawing(1);
}

void OrvDecor::fitToContents() {
    if (!titleBar || iconified) return;
    internalUpdate();
    Orv2dRect first, second, third, fourth;
    titleBar->itemsSize(first, second, third, fourth, nullptr);
    Orv2dRect text =
        OrvLabelBitmapSizes(titleBar->makeUp, titleBar->getLabel(), nullptr, OrvLeft, 0);
    long need = (long)text.w + 2 * (long)titleBar->getThickness() + 8;
    Orv2dRect b = bbox2d(nullptr);
    long w = (long)b.w + need - (long)fourth.w;
    if (w < 1) return;
    fitToSize(Orv2dRect(b.x, b.y, (uint32_t)w, b.h));
}

// ---------------------------------------------------------------------------
// Geometry and hits
// ---------------------------------------------------------------------------

Orv2dRect OrvDecor::bbox2d(const Orv2dMatrix* matrix) const {
    if (iconified && iconActor) return iconActor->bbox2d(matrix);
    Orv2dRect r = placed();
    if (matrix) matrix->apply(r);
    return r;
}

unsigned long OrvDecor::contains2d(const Orv2dPoint& point, const Orv2dMatrix* matrix) {
    if (iconified && iconActor) return iconActor->contains2d(point, matrix);
    return OrvActor::contains2d(point, matrix);
}

void OrvDecor::apply2d(const Orv2dMatrix& matrix) {
    transformer.compose(matrix);
    if (iconActor) iconActor->apply2d(matrix);
    internalUpdate();
}

Orv2dDragger* OrvDecor::dragger2d(const Orv2dPoint& p, const Orv2dMatrix* matrix) {
    if (iconified) return nullptr;
    // A selected decor is reshaped by its selection handles first.
    Orv2dDragger* handle = OrvActor::dragger2d(p, matrix);
    if (handle || !outerBorder) return handle;
    Orv2dRect w = bbox2d(matrix);
    uint32_t bw = borderWidth;
    if (2 * bw >= w.w || 2 * bw >= w.h || !w.contains(p)) return nullptr;
    Orv2dRect work = inset(w, bw);
    bool left = p.x < work.x, right = p.x >= work.right();
    bool top = p.y < work.y, bottom = p.y >= work.bottom();
    if (!left && !right && !top && !bottom) return nullptr;
    // Within cornerLength of a corner the grip takes both sides.
    int64_t cl = cornerLength;
    if (left || right) {
        if (p.y < w.y + cl) top = true;
        if (p.y >= w.bottom() - cl) bottom = true;
    }
    if (top || bottom) {
        if (p.x < w.x + cl) left = true;
        if (p.x >= w.right() - cl) right = true;
    }
    // A decor smaller than two corners: the nearer side of each pair wins.
    if (left && right) (p.x - w.x < w.right() - p.x ? right : left) = false;
    if (top && bottom) (p.y - w.y < w.bottom() - p.y ? bottom : top) = false;
    Orv2dDragger& d = _default2dDragger;
    d.position = (left ? OrvLeft : 0) | (right ? OrvRight : 0) | (top ? OrvTop : 0) |
                 (bottom ? OrvBottom : 0);
    d.index = -1;
    d.point = p;
    d.matrix = matrix;
    return &d;
}

// ---------------------------------------------------------------------------
// Highlight and drawing
// ---------------------------------------------------------------------------

void OrvDecor::repaintWindowRegion(const Orv2dRegion& region) {
    if (OrvForgetUpdateDrawing()) return;
    OrvStage* stage = getStage();
    if (!stage || !stage->isVisible(this)) return;
    if (stage->nesting)
        stage->invalidate(region);
    else
        stage->bufferedDraw(region);
}

void OrvDecor::redrawPart(const OrvActor* part) {
    OrvStage* stage = getStage();
    if (!part || !stage || iconified) return;
    repaintWindowRegion(Orv2dRegion(part->bbox2d(stage->transformer)));
}

unsigned long OrvDecor::setHighlighted(unsigned long on, const Orv2dPoint& point,
                                       unsigned long redraw) {
    on = on ? 1 : 0;
    if (!isHighlightAllowed() || isHighlighted() == on) return 0;
    setBit(OrvHighlightedBit, on);
    if (outerBorder) outerBorder->setHighlighted(on, point, 0);
    if (innerBorder) innerBorder->setHighlighted(on, point, 0);
    if (!redraw || iconified || !outerBorder) return 1;
    Orv2dRect interior, hBar, vBar, inner, outer, title;
    Orv2dRect w = itemsSize(interior, hBar, vBar, inner, outer, title);
    uint32_t bw = borderWidth;
    Orv2dRegion region(25);
    if (2 * bw < w.w && 2 * bw < w.h) {
        // The four bands of the border, and nothing inside them.
        region.extendBy(Orv2dRect(w.x, w.y, w.w, bw));
        region.extendBy(Orv2dRect(w.x, (int32_t)(w.bottom() - bw), w.w, bw));
        region.extendBy(Orv2dRect(w.x, w.y + (int32_t)bw, bw, w.h - 2 * bw));
        region.extendBy(Orv2dRect((int32_t)(w.right() - bw), w.y + (int32_t)bw, bw, w.h - 2 * bw));
    } else {
        region.extendBy(w);
    }
    repaintWindowRegion(region);
    return 1;
}

unsigned long OrvDecor::ghostMode() const {
    return makeUp->mode == OrvXorMode || makeUp->mode == OrvEquivMode;
}

void OrvDecor::drawGrips(OrvCanvas* canvas, const Orv2dMatrix* matrix) {
    Orv2dRect w = bbox2d(matrix);
    unsigned long plate = innerBorder ? innerBorder->getThickness() : 0;
    if (borderWidth <= plate) return;
    uint32_t len = (uint32_t)(borderWidth - plate);
    int32_t cl = cornerLength, x0 = w.x, y0 = w.y;
    int32_t x1 = (int32_t)w.right(), y1 = (int32_t)w.bottom(), l = (int32_t)len;
    // Two ticks at each corner, across the border, cornerLength from the corner.
    Orv2dRect ticks[8] = {
        Orv2dRect(x0 + cl - 1, y0, 3, len),     Orv2dRect(x1 - cl - 2, y0, 3, len),
        Orv2dRect(x0 + cl - 1, y1 - l, 3, len), Orv2dRect(x1 - cl - 2, y1 - l, 3, len),
        Orv2dRect(x0, y0 + cl - 1, len, 3),     Orv2dRect(x0, y1 - cl - 2, len, 3),
        Orv2dRect(x1 - l, y0 + cl - 1, len, 3), Orv2dRect(x1 - l, y1 - cl - 2, len, 3)};
    bool down = outerBorder->isHighlighted();
    const OrvReliefRectangle* o = outerBorder;
    for (const Orv2dRect& t : ticks) {
        if (!w.contains(t)) continue;
        canvas->reliefRectangle(o->makeUp, down ? o->pressedMakeUp : o->faceMakeUp,
                                down ? o->shadedMakeUp : o->litMakeUp,
                                down ? o->litMakeUp : o->shadedMakeUp, t, 1, 0);
    }
}

void OrvDecor::draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) {
    if (iconified) {
        if (iconActor) iconActor->draw2d(canvas, matrix);
        return;
    }
    internalUpdate();
    Orv2dRect whole = placed();
    if (matrix) matrix->apply(whole);
    if (ghostMode()) {
        canvas->rectangle(makeUp, whole, 0);
        return;
    }
    if (outerBorder) outerBorder->draw2d(canvas, matrix);
    if (innerBorder) innerBorder->draw2d(canvas, matrix);
    Orv2dRect face = whole;
    if (innerBorder) {
        unsigned long t = innerBorder->getThickness();
        face = inset(innerBorder->bbox2d(matrix), t ? (uint32_t)(t - 1) : 0);
    }
    if (whole.contains(face)) {
        if (hScrollBar && vScrollBar) canvas->rectangle(hScrollBar->pressedMakeUp, face, 1);
        if (titleBar) titleBar->draw2d(canvas, matrix);
        canvas->rectangle(makeUp->director->defaultMakeUp, face, 0);
    }
    if (borderWidth >= 4 && outerBorder) drawGrips(canvas, matrix);
    if (vScrollBar) vScrollBar->draw2d(canvas, matrix);
    if (hScrollBar) hScrollBar->draw2d(canvas, matrix);
}

// ---------------------------------------------------------------------------
// Persistent form: the placed rectangle, which furniture is shown, the title
// and the icon in a block of its own
// ---------------------------------------------------------------------------

OrvActor* OrvDecor::read(OrvIStream& in) {
    return new OrvDecor(in);
}

static const char* yesNo(bool on) {
    return on ? "yes\n" : "no\n";
}

void OrvDecor::write(OrvOStream& out) const {
    OrvActor::write(out);
    out.writeComments("OrvDecor class ...", 1);
    out << placed();
    out.key("hScrollBar") << yesNo(hScrollBar);
    out.key("vScrollBar") << yesNo(vScrollBar);
    out.key("decorBorder") << yesNo(outerBorder || innerBorder);
    out.key("decorTitle") << yesNo(titleBar);
    if (titleBar) {
        out.key("decorTitleLabel");
        OrvWriteString(out.stream, titleBar->getLabel());
        out.stream << '\n';
    }
    out.key("decorIcon");
    if (!iconActor) {
        out.stream << "no\n";
        return;
    }
    out.stream << "{\n";
    out.indentation++;
    out.write(iconActor);
    out.indentation--;
    out.stream << out.indent() << "}\n";
}

OrvDecor::OrvDecor(OrvIStream& in)
    : OrvActor(in), rect(), scratch(), vScrollBar(nullptr), vBarOnRight(1), hScrollBar(nullptr),
      hBarAtBottom(1), scrollBarWidth(16), borderWidth(7), innerBorder(nullptr),
      outerBorder(nullptr), cornerLength(26), titleHeight(22), titleBar(nullptr),
      iconActor(nullptr), iconified(0), transformer() {
    if (!_inDecor) _inDecor = OrvGetKey("ScrollBarInDecor", 1);
    unsigned long before = in.faults;
    auto good = [&]() { return in.faults == before && in.stream; };
    if (!good()) return;
    in >> rect;
    char buffer[1024];
    unsigned long h = 0, v = 0, border = 0, title = 0;
    if (!good() || !_OrvReadItemBoolean_(in, buffer, "hScrollBar", h)) return;
    if (!_OrvReadItemBoolean_(in, buffer, "vScrollBar", v)) return;
    if (!_OrvReadItemBoolean_(in, buffer, "decorBorder", border)) return;
    if (!_OrvReadItemBoolean_(in, buffer, "decorTitle", title)) return;
    if (title) {
        if (!_OrvReadItem_(in, buffer, "decorTitleLabel")) return;
        const char* text = OrvReadString(in.stream);
        if (!in.stream) return;
        showTitleBar(text, titleHeight);
    }
    if (border) showDecoration(borderWidth);
    if (h || v) showScrollBars(h, v, OrvBottom, OrvLeft, scrollBarWidth);
    if (!_OrvReadItem_(in, buffer, "decorIcon")) return;
    in.nextItem();
    if (OrvScanPeek(in.stream) != '{') {
        in.word(buffer);
        if (strcmp(buffer, "no")) in.fault("OrvDecor :Bad begin separator (%s %c) \n", buffer, '{');
        return;
    }
    OrvScanGet(in.stream);
    OrvActor* read = in.read();
    if (!read) return;
    icon(read);
    in.nextItem();
    char c = 0;
    OrvScanChar(in.stream, c);
    if (c != '}') in.fault("OrvDecor :Bad end separator (%c %c)\n", c ? c : ' ', '}');
}
