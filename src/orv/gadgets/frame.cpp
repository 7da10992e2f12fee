// The frame: a decor whose interior is a child window of the stage it stands
// on, a stage of its own by default. The interior is made at the first
// drawing on a stage, follows the frame's moves and sizes, and is scrolled by
// the frame's bars through a hook on the interior stage.
#include "orv/frame.h"

#include <cstdlib>
#include <cstring>
#include <string>

#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/makeup.h"
#include "orv/resource.h"
#include "orv/stream.h"
#include "orv/view.h"
#include "orv/stage/embedded_views.h"

ORV_DEFINE_CLASS_INIT(OrvFrame, "OrvDecor", OrvFrame::read)

namespace {

char* copyName(const char* name) {
    if (!name || !*name) return nullptr;
    size_t n = strlen(name) + 1;
    char* copy = (char*)malloc(n);
    memcpy(copy, name, n);
    return copy;
}

unsigned long isFrame(OrvActor* actor) {
    return actor && actor->isSubtypeOf("OrvFrame");
}

// A scene is a frame too, but its interior is GL and it saves itself.
unsigned long isScene(OrvActor* actor) {
    return OrvGetClassInfo("OrvScene") && actor->isSubtypeOf("OrvScene");
}

void followView(OrvActor* actor) {
    if (!isFrame(actor)) return;
    OrvFrame* frame = static_cast<OrvFrame*>(actor);
    if (frame->interior) frame->placeInterior(frame->interiorRect());
}

void saveInterior(OrvActor* actor) {
    if (!isFrame(actor) || isScene(actor)) return;
    OrvFrame* frame = static_cast<OrvFrame*>(actor);
    OrvStage* inside = frame->interior ? frame->getInteriorStage() : nullptr;
    if (inside && frame->fileName) inside->save(frame->fileName);
}

// The stage reaches frames through these, since it cannot know them.
struct _OrvFrameCallsInstaller_ {
    _OrvFrameCallsInstaller_() {
        OrvEmbeddedViews.follow = followView;
        OrvEmbeddedViews.saveInterior = saveInterior;
    }
} _orvFrameCallsInstaller;

// The stage of the director whose double-buffer bitmap `canvas` is.
OrvStage* stageOfBitmap(const OrvCanvas* canvas) {
    OrvHashTable* views = canvas->director ? canvas->director->views : nullptr;
    if (!views) return nullptr;
    for (unsigned i = 0; i < views->size; i++) {
        if (!views->buckets[i]) continue;
        for (OrvAListItem* item = views->buckets[i]->first; item; item = item->next) {
            OrvView* view = (OrvView*)item->value;
            if (view && view->bitmap == canvas && !strcmp(view->className(), "OrvStage"))
                return dynamic_cast<OrvStage*>(view);
        }
    }
    return nullptr;
}

// The contents of the stage, with its window, in window coordinates: what the bars range over.
Orv2dRect scrolledArea(OrvStage* stage) {
    Orv2dRect area = stage->contentsBBox(stage->transformer);
    area.extendBy(Orv2dRect(0, 0, (uint32_t)stage->width, (uint32_t)stage->height));
    return area;
}

}  // namespace

// ---------------------------------------------------------------------------
// The hook on the interior stage
// ---------------------------------------------------------------------------

void OrvFrameStageHook::contents() {
    if (frame) frame->adjustScrollBars();
}
void OrvFrameStageHook::stageResized() {
    if (frame) frame->adjustScrollBars();
}
void OrvFrameStageHook::transformer(const Orv2dMatrix*, const Orv2dMatrix*) {
    if (frame) frame->adjustScrollBars();
}
unsigned long OrvFrameStageHook::deletedByStage() const {
    return 0;
}

// ---------------------------------------------------------------------------
// Construction
// ---------------------------------------------------------------------------

OrvFrame::OrvFrame(OrvDirector* director, const Orv2dRect& box, unsigned long visibleInterior,
                   OrvMakeUp* look)
    : OrvDecor(director, box, look), interior(nullptr), interiorVisible(visibleInterior ? 1 : 0),
      outlined_(0), fileName(nullptr), doubleBuffer(0), stageHook(nullptr) {}

OrvFrame::OrvFrame(const OrvFrame& source)
    : OrvDecor(source), interior(nullptr), interiorVisible(source.interiorVisible),
      outlined_(source.outlined_), fileName(copyName(source.fileName)),
      doubleBuffer(source.doubleBuffer), stageHook(nullptr) {}

OrvFrame::~OrvFrame() {
    OrvStage* stage = getStage();
    if (stage) stage->remove(this, 0);
    if (interior) {
        OrvView* view = interior;
        view->removeDestroy(interiorDestroyed);
        interior = nullptr;
        delete view;
    }
    delete stageHook;
    stageHook = nullptr;
    free(fileName);
    fileName = nullptr;
}

OrvActor* OrvFrame::copy() const {
    return new OrvFrame(*this);
}
OrvClassInfo* OrvFrame::classInfo() const {
    return _classInfo;
}

void OrvFrame::interiorDestroyed(OrvView* view, void* data) {
    // The parent stage went first and took its children with it.
    OrvFrame* frame = (OrvFrame*)data;
    if (frame->interior == view) frame->interior = nullptr;
}

// ---------------------------------------------------------------------------
// The interior
// ---------------------------------------------------------------------------

OrvStage* OrvFrame::interiorAsStage() const {
    if (!interior || strcmp(interior->className(), "OrvStage")) return nullptr;
    return dynamic_cast<OrvStage*>(interior);
}

OrvStage* OrvFrame::getInteriorStage() const {
    if (!interior) {
        OrvStage* stage = getStage();
        // Made on demand, which a reader of the frame may ask for before any drawing.
        if (stage) const_cast<OrvFrame*>(this)->make(stage, stage->transformer);
    }
    return interiorAsStage();
}

OrvView* OrvFrame::getView() {
    return interior;
}

OrvView* OrvFrame::buildStage(OrvStage* stage, const Orv2dRect& box) const {
    return new OrvStage(stage, box, interiorVisible);
}

Orv2dRect OrvFrame::interiorRect() const {
    Orv2dRect inside, hBar, vBar, inner, outer, title;
    itemsSize(inside, hBar, vBar, inner, outer, title);
    return inside;
}

void OrvFrame::make(OrvStage* stage, const Orv2dMatrix*) {
    if (interior || !stage) return;
    Orv2dRect box = placeItems();
    // A window has at least one pixel each way.
    if (box.w < 1) box.w = 1;
    if (box.h < 1) box.h = 1;
    OrvView* view = buildStage(stage, box);
    if (!view) return;
    interior = view;
    view->onDestroy(interiorDestroyed, this);
    OrvStage* inside = interiorAsStage();
    if (inside && doubleBuffer) inside->useDoubleBuffer(1);
    OrvColor* background = makeUp->background();
    if (background) view->setBackground(background);
    if (hScrollBar || vScrollBar) makeStageHook();
    showInterior();
    loadFile();
    // Outside a repaint this paints the frame; within one it is being painted.
    beginDrawing(0);
    flushDrawing(0);
}

void OrvFrame::placeInterior(const Orv2dRect& r) {
    if (!interior) return;
    Orv2dRect box = r;
    if (box.w < 1) box.w = 1;
    if (box.h < 1) box.h = 1;
    Orv2dRect old = interior->bbox();
    if (old == box) return;
    interior->moveResize(box);
    if (old.w == box.w && old.h == box.h) return;
    // The window's contents do not change: no contents hook hears of it.
    unsigned int allow = OrvAllowCallContentsChanged;
    OrvAllowCallContentsChanged = 0;
    interior->handleResize(old, box);
    OrvAllowCallContentsChanged = allow;
}

void OrvFrame::internalUpdate() {
    Orv2dRect box = placeItems();
    placeInterior(box);
}

void OrvFrame::showInterior() {
    if (!interior) return;
    bool wanted = interiorVisible && isVisible() && !iconified && getStage() &&
                  interior->parent == (OrvView*)getStage();
    if (wanted && !interior->visible)
        interior->show();
    else if (!wanted && interior->visible)
        interior->hide();
}

void OrvFrame::show() {
    if (interiorVisible) return showInterior();
    beginDrawing(1);
    interiorVisible = 1;
    showInterior();
    flushDrawing(1);
}

void OrvFrame::hide() {
    if (!interiorVisible) return;
    beginDrawing(1);
    interiorVisible = 0;
    showInterior();
    flushDrawing(1);
}

void OrvFrame::setVisible(unsigned long on) {
    if (isVisible() == (on ? 1ul : 0ul)) return;
    beginDrawing(1);
    setBit(OrvVisibleBit, on);
    showInterior();
    flushDrawing(1);
    OrvStage* stage = getStage();
    if (stage) stage->contentsChanged();
}

void OrvFrame::iconify(unsigned long on) {
    OrvDecor::iconify(on);
    showInterior();
}

void OrvFrame::setStage(OrvStage* stage) {
    OrvDecor::setStage(stage);
    // Off its stage the window is hidden; it belongs to the stage it was made on.
    showInterior();
}

void OrvFrame::file(const char* name) {
    char* copy = copyName(name);
    free(fileName);
    fileName = copy;
    loadFile();
}

void OrvFrame::loadFile() {
    OrvStage* inside = interiorAsStage();
    if (!inside || !fileName) return;
    inside->empty(1);
    Orv2dRect size;
    inside->read(fileName, size, -1);
    inside->drawAll(nullptr, 1);
    adjustScrollBars();
}

// ---------------------------------------------------------------------------
// What the frame hands on to its interior
// ---------------------------------------------------------------------------

void OrvFrame::setCursor(OrvCursor* cursor) {
    if (interior) interior->setCursor(cursor);
}

OrvCursor* OrvFrame::getCursor() const {
    return interior ? interior->cursor : nullptr;
}

void OrvFrame::outlined(unsigned long on) {
    on = on ? 1 : 0;
    if (on == outlined_) return;
    beginDrawing(1);
    outlined_ = on;
    flushDrawing(1);
}

void OrvFrame::setBackground(OrvColor* color) {
    OrvActor::setBackground(color);
    if (!interior) return;
    interior->setBackground(color);
    OrvStage* inside = interiorAsStage();
    if (inside)
        inside->drawAll(nullptr, 1);
    else
        interior->erase(1);
}

void OrvFrame::useDoubleBuffer(unsigned long on) {
    on = on ? 1 : 0;
    if (on == doubleBuffer) return;
    doubleBuffer = on;
    OrvStage* inside = interiorAsStage();
    if (inside) inside->useDoubleBuffer(on);
}

Orv2dRect OrvFrame::bboxVisible() const {
    return interior ? interior->bbox() : Orv2dRect();
}

// ---------------------------------------------------------------------------
// Scroll bars and the interior
// ---------------------------------------------------------------------------

void OrvFrame::makeStageHook() {
    OrvStage* inside = interiorAsStage();
    if (!inside) return;
    if (!stageHook) stageHook = new OrvFrameStageHook(this);
    if (stageHook->stage != inside) {
        if (stageHook->stage) stageHook->stage->remove(stageHook);
        inside->install(stageHook);
    }
    adjustScrollBars(inside);
}

unsigned long OrvFrame::showScrollBars(unsigned long horizontal, unsigned long vertical,
                                       OrvPosition hPosition, OrvPosition vPosition,
                                       unsigned short width) {
    unsigned long changed =
        OrvDecor::showScrollBars(horizontal, vertical, hPosition, vPosition, width);
    if (changed && (hScrollBar || vScrollBar)) makeStageHook();
    return changed;
}

void OrvFrame::adjust() {
    OrvStage* inside = interiorAsStage();
    if (inside && stageHook && (hScrollBar || vScrollBar)) adjustStage(inside);
}

void OrvFrame::adjustScrollBars() {
    OrvStage* inside = interiorAsStage();
    if (inside && stageHook && (hScrollBar || vScrollBar)) adjustScrollBars(inside);
}

void OrvFrame::adjustStage(OrvStage* inside) {
    if (!stageHook || (!hScrollBar && !vScrollBar)) return;
    long dx = hScrollBar ? hScrollBar->value - stageHook->x : 0;
    long dy = vScrollBar ? vScrollBar->value - stageHook->y : 0;
    inside->translate(-dx, -dy);
    Orv2dRect area = scrolledArea(inside);
    stageHook->x = -(long)area.x;
    stageHook->y = -(long)area.y;
}

void OrvFrame::adjustScrollBars(OrvStage* inside) {
    if (!stageHook || (!hScrollBar && !vScrollBar)) return;
    Orv2dRect area = scrolledArea(inside);
    // Value at the visible origin, thumb as long as the visible part.
    if (hScrollBar) hScrollBar->setValues(0, (long)area.w, -(long)area.x, (long)inside->width);
    if (vScrollBar) vScrollBar->setValues(0, (long)area.h, -(long)area.y, (long)inside->height);
    stageHook->x = -(long)area.x;
    stageHook->y = -(long)area.y;
}

void OrvFrame::fitToContents() {
    OrvStage* inside = interiorAsStage();
    if (!inside || iconified) return;
    Orv2dRect contents = inside->contentsBBox(inside->transformer);
    if (contents.w == 0 || contents.h == 0) return;
    // What lies right of and below the interior's origin, as a stage fits itself.
    long w = (long)contents.w + (contents.x > 0 ? contents.x : 0);
    long h = (long)contents.h + (contents.y > 0 ? contents.y : 0);
    OrvStage* stage = getStage();
    const Orv2dMatrix* toWindow = stage ? stage->transformer : nullptr;
    Orv2dRect whole = bbox2d(toWindow);
    Orv2dRect now = interiorRect();
    long nw = (long)whole.w + w - (long)now.w, nh = (long)whole.h + h - (long)now.h;
    if (nw < 1 || nh < 1) return;
    // The furniture keeps its pixels: the whole grows by what the interior needs.
    Orv2dRect target(whole.x, whole.y, (uint32_t)nw, (uint32_t)nh);
    if (toWindow) toWindow->inverse(target);
    fitToSize(target);
    adjustScrollBars();
}

// ---------------------------------------------------------------------------
// Drawing
// ---------------------------------------------------------------------------

void OrvFrame::draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) {
    OrvDecor::draw2d(canvas, matrix);
    if (ghostMode() || iconified) return;
    Orv2dRect box = interiorRect();
    if (!interior && !canvas->isPrintDevice()) {
        if (!canvas->isABitmap()) {
            if (!strcmp(canvas->className(), "OrvStage"))
                make(dynamic_cast<OrvStage*>(canvas), matrix);
        } else {
            // A double-buffered stage paints its bitmap before it is shown.
            OrvStage* owner = stageOfBitmap(canvas);
            if (owner) make(owner, matrix);
        }
    }
    // The interior's rectangle as this canvas sees it.
    OrvStage* stage = getStage();
    if (stage && stage->transformer) stage->transformer->inverse(box);
    if (matrix) matrix->apply(box);
    if (!interiorVisible) {
        // An empty picture: the rectangle and its diagonals.
        canvas->rectangle(makeUp, box, 0);
        canvas->line(makeUp, Orv2dPoint(box.x, box.y),
                     Orv2dPoint((int32_t)box.right(), (int32_t)box.bottom()));
        canvas->line(makeUp, Orv2dPoint(box.x, (int32_t)box.bottom()),
                     Orv2dPoint((int32_t)box.right(), box.y));
    }
    if (interior && outlined_ && !innerBorder)
        canvas->rectangle(makeUp, Orv2dRect(box.x - 1, box.y - 1, box.w + 2, box.h + 2), 0);
}

// ---------------------------------------------------------------------------
// Persistent form: after the decor's, the two flags, the file and double buffering
// ---------------------------------------------------------------------------

OrvActor* OrvFrame::read(OrvIStream& in) {
    return new OrvFrame(in);
}

void OrvFrame::write(OrvOStream& out) const {
    OrvDecor::write(out);
    out.writeComments("OrvFrame class ...", 1);
    out << interiorVisible;
    out << outlined_;
    out.key("file");
    OrvWriteString(out.stream, fileName ? fileName : "");
    out.stream << '\n';
    out.key("doubleBuffer") << (doubleBuffer ? "yes\n" : "no\n");
}

OrvFrame::OrvFrame(OrvIStream& in)
    : OrvDecor(in), interior(nullptr), interiorVisible(1), outlined_(0), fileName(nullptr),
      doubleBuffer(0), stageHook(nullptr) {
    unsigned long before = in.faults;
    auto good = [&]() { return in.faults == before && in.stream; };
    if (!good()) return;
    unsigned long visibleInterior = 1, outline = 0;
    in >> visibleInterior;
    if (!good()) return;
    in >> outline;
    if (!good()) return;
    interiorVisible = visibleInterior ? 1 : 0;
    outlined_ = outline ? 1 : 0;
    char buffer[1024];
    in.nextItem();
    in.word(buffer);
    if (strcmp(buffer, "file")) {
        in.fault("OrvFrame : OrvIStream bad key (%s %s)\n", buffer, "file");
        return;
    }
    const char* text = OrvReadString(in.stream);
    if (!in.stream) return;
    std::string name = text;
    unsigned long buffered = 0;
    if (!_OrvReadItemBoolean_(in, buffer, "doubleBuffer", buffered)) return;
    doubleBuffer = buffered;
    if (!name.empty()) file(name.c_str());
}
