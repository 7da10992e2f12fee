// OrvStage: construction, the nest of beginDrawing/flushDrawing, invalidation
// and the single repaint routine drawAll.
#include "orv/stage.h"
#include "orv/undo.h"

#include "orv/actor.h"
#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/layer.h"
#include "orv/makeup.h"
#include "orv/producer.h"

unsigned int OrvAllowCallContentsChanged = 1;
unsigned int OrvAllowHooksUpdated = 1;

// Past this many rectangles the invalidated region collapses to its box, so
// that many small changes cost one larger repaint and not a long clip list.
static const short _OrvInvalidateLimit = 32;

// Made at start and destroyed at exit, and used by nothing: the name is kept as it is for
// behaviour compatibility, for programs that link to it.
Orv2dRegion _invalidates(25);

// Frees the nodes of a list of borrowed pointers.
static void _OrvFreeList_(OrvList& list) {
    delete list.first;
    list.first = nullptr;
    list.last = nullptr;
}

static unsigned long _OrvListHas_(const OrvList& list, const void* value) {
    return list.first && list.first->find(value);
}

OrvStage::OrvStage(OrvDirector* d, const Orv2dRect& rect, const char* title, unsigned int viewStyle,
                   unsigned long shown)
    : OrvView(d, rect, title, viewStyle, shown), invalidated(25) {
    init();
}

OrvStage::OrvStage(OrvView* parentView, const Orv2dRect& rect, unsigned long shown)
    : OrvView(parentView, rect, 0, shown), invalidated(25) {
    init();
}

OrvStage::OrvStage(OrvDirector* d, void* parentWindow, const Orv2dRect& rect, unsigned long shown)
    : OrvView(d, parentWindow, rect, 0, shown), invalidated(25) {
    init();
}

OrvStage::OrvStage(OrvDirector* d, void* window) : OrvView(d, window), invalidated(25) {
    init();
}

void OrvStage::init() {
    nesting = 0;
    transformer = nullptr;
    producer = nullptr;
    pressedActor = nullptr;
    fromKey = OrvGetKey("P_from", 1);
    toKey = OrvGetKey("P_to", 1);
    pointerActor = nullptr;
    focusActor = nullptr;
    highlightedActor = nullptr;
    focusEnabled = 1;
    highlightEnabled = 1;
    grabActor = nullptr;
    resizeContents = 1;
    grid = nullptr;
    destroying = 0;
    undoStack = nullptr;
    exitCallback = nullptr;
    layer(0, 1);
}

const char* OrvStage::className() const {
    return "OrvStage";
}

OrvActor* OrvStage::getFocus() const {
    return focusActor;
}

void OrvStage::beginDrawing() {
    // The box is left as it was: extendBy on an empty region starts it anew.
    if (nesting++ == 0) invalidated.count = 0;
}

void OrvStage::flushDrawing(unsigned long erase) {
    // The text, its grammar and its missing blank are kept as they are for behaviour compatibility.
    if (nesting == 0)
        OrvError("OrvStage::flushDrawing : 'beginDrawing' must be call before'flushDrawing'.\n");
    else
        nesting--;
    if (nesting == 0 && invalidated.count != 0 && invalidated.bbox.w != 0 &&
        invalidated.bbox.h != 0)
        drawAll(&invalidated, erase);
}

void OrvStage::abortDrawing() {
    invalidated.count = 0;
    nesting = 0;
}

void OrvStage::collapseInvalidated() {
    if (invalidated.count > _OrvInvalidateLimit) {
        Orv2dRect box = invalidated.bbox;
        invalidated.count = 0;
        invalidated.extendBy(box);
    }
}

void OrvStage::invalidate(const OrvActor* actor, unsigned long withLinks) {
    if (!isVisible(actor)) return;
    OrvActor* a = const_cast<OrvActor*>(actor);
    Orv2dRect box = a->bbox2dToStage(transformer);
    if (box.intersects(bboxVisible())) {
        invalidated.extendBy(box);
        collapseInvalidated();
    }
    if (withLinks) {
        for (OrvLink* l = (OrvLink*)a->getUserProperty(fromKey); l; l = l->next)
            invalidate((const OrvActor*)l->value, 1);
        for (OrvLink* l = (OrvLink*)a->getUserProperty(toKey); l; l = l->next)
            invalidate((const OrvActor*)l->value, 1);
    }
    invalidateActorCall(actor);
}

void OrvStage::invalidate(const Orv2dRect& rect) {
    if (!rect.intersects(bboxVisible())) return;
    invalidated.extendBy(rect);
    collapseInvalidated();
}

void OrvStage::invalidate(const Orv2dRegion& region) {
    for (unsigned short i = 0; i < region.count; i++)
        invalidate(const_cast<Orv2dRegion&>(region).rectangle(i));
}

void OrvStage::draw(OrvActor* actor, unsigned long erase) {
    if (nesting != 0) {
        invalidate(actor, 1);
        return;
    }
    Orv2dRegion region(actor->bbox2dToStage(transformer), 25);
    drawAll(&region, erase);
}

// Grid, visible layers and focus on one canvas; shared by drawAll and the
// buffered forms so that all three paint the same picture.
void OrvStage::paintLayers(OrvCanvas* target, const Orv2dMatrix* matrix,
                           const Orv2dRegion* region) {
    if (grid) grid->draw(target, matrix, *region);
    for (OrvLink* l = layers.first; l; l = l->next) {
        OrvStageLayer* layer = (OrvStageLayer*)l->value;
        if (layer->visible) layer->draw(target, matrix, region);
    }
    drawFocus(target, matrix);
}

void OrvStage::drawAll(const Orv2dRegion* region, unsigned long doErase) {
    if (destroying) return;
    Orv2dRect whole = bitmap ? Orv2dRect(0, 0, width, height) : bboxVisible();
    if (region && !region->intersects(whole)) return;
    if (nesting != 0) {
        // Repaints cannot run inside a nest: they wait for its flush.
        if (region)
            invalidate(*region);
        else
            invalidate(whole);
        return;
    }
    // A frame's interior repaints inside its stage's repaint: the guard is
    // given back as it was found, so that the outer repaint keeps it.
    unsigned long outerGuard = OrvForgetUpdateDrawing();
    OrvForgetUpdateDrawing(1);

    Orv2dRegion painted(whole, 25);
    const Orv2dRegion* paintClip = nullptr;
    if (region) {
        // One pixel more on every side, so lines on a box's edge are not cut.
        painted = *region;
        painted.translate(-1, -1);
        painted.grow(2, 2);
        painted.intersection(whole);
        if (!region->contains(whole)) paintClip = &painted;
    }

    if (doErase) {
        if (bitmap) {
            bitmap->prepare(nullptr);
            if (region) {
                for (unsigned short i = 0; i < painted.count; i++)
                    bitmap->rectangle(backgroundMakeUp, painted.rectangle(i), 1, nullptr);
            } else {
                bitmap->rectangle(backgroundMakeUp, Orv2dRect(0, 0, bitmap->width, bitmap->height),
                                  1, nullptr);
            }
            bitmap->end();
        } else if (region) {
            this->erase(&painted, 0);
        } else {
            this->erase(0);
        }
    }

    OrvCanvas* target = bitmap ? (OrvCanvas*)bitmap : (OrvCanvas*)this;
    beforeDraw(target, transformer, &painted);
    target->prepare(paintClip);
    paintLayers(target, transformer, &painted);
    target->end();
    afterDraw(target, transformer, &painted);

    if (bitmap) {
        // The window sees only copies from the bitmap: no erase, no flicker.
        prepare(nullptr);
        for (unsigned short i = 0; i < painted.count; i++) {
            const Orv2dRect& r = painted.rectangle(i);
            if (r.w == 0 || r.h == 0) continue;
            bitblit(backgroundMakeUp, bitmap, r, Orv2dPoint(r.x, r.y), 0, nullptr);
        }
        end();
        afterCopy(bitmap, transformer, &painted);
    }

    if (producer) {
        // The ghost goes on the window only, so the next copy removes it.
        prepare(paintClip);
        producer->expose2d(paintClip);
        end();
    }
    OrvForgetUpdateDrawing(outerGuard);
}

void OrvStage::drawFocus(OrvCanvas* canvas, const Orv2dMatrix* matrix) {
    if (focusActor && !producer) focusActor->drawFocus2d(canvas, director->defaultMakeUp, matrix);
}

void OrvStage::useDoubleBuffer(unsigned long on) {
    OrvView::useBitmap(on);
    beginDrawing();
    invalidate(Orv2dRect(0, 0, width, height));
    flushDrawing(1);
}

OrvBitmap* OrvStage::hasDoubleBuffer() const {
    return bitmap;
}

void OrvStage::handleExpose(const Orv2dRegion* region) {
    OrvView::callExpose(region);
    if (!bitmap) {
        drawAll(region, 1);
        return;
    }
    // Expose of a double-buffered stage is a copy only: nothing is redrawn.
    Orv2dRect whole(0, 0, width, height);
    prepare(region);
    if (region) {
        for (unsigned short i = 0; i < region->count; i++) {
            Orv2dRect r = const_cast<Orv2dRegion*>(region)->rectangle(i);
            r.intersection(whole);
            if (r.w == 0 || r.h == 0) continue;
            bitblit(backgroundMakeUp, bitmap, r, Orv2dPoint(r.x, r.y), 0, nullptr);
        }
    } else {
        bitblit(backgroundMakeUp, bitmap, whole, Orv2dPoint(0, 0), 0, nullptr);
    }
    end();
    afterCopy(bitmap, transformer, region);
}

void OrvStage::handleResize(const Orv2dRect& oldRect, const Orv2dRect& newRect) {
    if (oldRect.w == newRect.w && oldRect.h == newRect.h) return;
    x = newRect.x;
    y = newRect.y;
    width = newRect.w ? newRect.w : 1;
    height = newRect.h ? newRect.h : 1;
    unsigned long remade = 0;
    if (bitmap && (bitmap->width != width || bitmap->height != height)) {
        OrvView::useBitmap(0);
        OrvView::useBitmap(1);
        remade = 1;
    }
    if (resizeContents) {
        beginDrawing();
        applyResize(oldRect.w ? (float)newRect.w / (float)oldRect.w : 1.0f,
                    oldRect.h ? (float)newRect.h / (float)oldRect.h : 1.0f);
        if (remade)
            abortDrawing();  // all will be painted below
        else
            flushDrawing(1);
        contentsChanged();
    }
    OrvView::callResize(oldRect, newRect);
    stageResized();
    if (remade) drawAll(nullptr, 1);
}

void OrvStage::empty(unsigned long deleteActors) {
    beginDrawing();
    if (deleteActors) {
        if (undoStack) undoStack->forget(this);
        deleteLinks();
    }
    for (OrvLink* l = layers.first; l; l = l->next) ((OrvStageLayer*)l->value)->empty(deleteActors);
    pressedActor = nullptr;
    pointerActor = nullptr;
    focusActor = nullptr;
    _OrvFreeList_(selectionList);
    invalidate(Orv2dRect(0, 0, width, height));
    flushDrawing(1);
    contentsChanged();
}

unsigned long OrvStage::clean(OrvActor* actor, unsigned long deleteIt) {
    OrvStageLayer* layer = getLayer(actor);
    if (!layer) return 0;
    beginDrawing();
    if (layer->remove(actor)) actor->setStage(nullptr);
    if (pressedActor == actor) pressedActor = nullptr;
    if (pointerActor == actor) pointerActor = nullptr;
    if (focusActor == actor) focusActor = nullptr;
    if (highlightedActor == actor) highlightedActor = nullptr;
    // The box is taken after the actor left its layer: isVisible goes by the
    // layer number, which still answers.
    if (!destroying) invalidate(actor, 1);
    if (deleteIt && actor) {
        // A step of the history might still name it.
        if (undoStack && !undoStack->isReplaying()) undoStack->forget(this);
        delete actor;
    }
    flushDrawing(1);
    return 1;
}

Orv2dRect OrvStage::contentsBBox(const Orv2dMatrix* matrix) const {
    Orv2dRect box;
    OrvStageLayer* first = layers.first ? (OrvStageLayer*)layers.first->value : nullptr;
    if (first && first->count) box = first->actors[0]->bbox2dToStage(matrix);
    for (OrvLink* l = layers.first; l; l = l->next) {
        OrvStageLayer* layer = (OrvStageLayer*)l->value;
        for (unsigned int i = 0; i < layer->count; i++)
            box.extendBy(layer->actors[i]->bbox2dToStage(matrix));
    }
    return box;
}

Orv2dRect OrvStage::bboxSelections(const Orv2dMatrix* matrix) const {
    if (!matrix) matrix = transformer;
    Orv2dRect box;
    for (OrvLink* l = selectionList.first; l; l = l->next)
        box.extendBy(((OrvActor*)l->value)->bbox2dToStage(matrix));
    return box;
}

void OrvStage::fitToContents() {
    Orv2dRect box = contentsBBox(transformer);
    if (box.w == 0 || box.h == 0) return;
    unsigned long w = box.w + (box.x > 0 ? box.x : 0);
    unsigned long h = box.h + (box.y > 0 ? box.y : 0);
    resize(w, h);
}

// Actors follow the window only through their attachments; a stage without
// them keeps its actors where they are.
void OrvStage::applyResize(float, float) {}

OrvStage::~OrvStage() {
    destroying = 1;
    // No balloon outlives the stage whose actor it shows, nor waits on it.
    director->suspendBalloonTimer();
    // The history goes first: its steps hold actors that left this stage.
    setUndoStack(nullptr);
    releaseInput();
    // Layers go first, with their actors, so no actor outlives its stage. A
    // layer is emptied while it is still listed, so that each actor finds it.
    deleteLinks();
    while (layers.first) {
        OrvStageLayer* layer = (OrvStageLayer*)layers.first->value;
        layer->empty(1);
        layers.remove(layer);
        delete layer;
    }
    OrvList copy;
    for (OrvLink* l = producers.first; l; l = l->next) copy.append(l->value);
    producer = nullptr;
    for (OrvLink* l = copy.first; l; l = l->next)
        if (_OrvListHas_(producers, l->value)) delete (OrvProducer*)l->value;
    _OrvFreeList_(copy);
    for (OrvLink* l = hooks.first; l; l = l->next) copy.append(l->value);
    for (OrvLink* l = copy.first; l; l = l->next) {
        OrvStageHook* hook = (OrvStageHook*)l->value;
        hooks.remove(hook);
        hook->stage = nullptr;
        if (hook->deletedByStage()) delete hook;
    }
    _OrvFreeList_(copy);
    delete transformer;
    transformer = nullptr;
    delete grid;
    grid = nullptr;
}
