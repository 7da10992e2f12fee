// The theater: the 3D container. It holds its actors in layers, shows them in
// every scene connected to it, collects what changed in each scene and
// redraws it, whole or scissored, in the order the transparency type asks.
#include "orv/theater.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "orv/role.h"
#include "orv/actor.h"
#include "orv/director.h"
#include "orv/producer.h"
#include "orv/scene.h"
#include "orv/stage.h"
#include "orv/view.h"
#include "theater_internal.h"

#include "pick_tree.h"

namespace {

// The view callbacks: the theater is their data.
void exposeCall(OrvView* view, const Orv2dRegion* region, void* theater) {
    ((OrvTheater*)theater)->handleExpose(view, region);
}
void resizeCall(OrvView* view, const Orv2dRect& oldRect, const Orv2dRect& newRect, void* theater) {
    ((OrvTheater*)theater)->handleResize(view, oldRect, newRect);
}
void inputCall(OrvView* view, const OrvEvent& event, void* theater) {
    ((OrvTheater*)theater)->handleInput(view, event);
}

// An actor to sort by its depth in the window, farthest first.
struct Depth {
    OrvActor* actor;
    float depth;
};

// Never negative: 1 puts the first after the second when it is no deeper. So the
// deepest come first, and equal depths fall as qsort leaves them.
int deeperFirst(const void* a, const void* b) {
    return ((const Depth*)a)->depth <= ((const Depth*)b)->depth ? 1 : 0;
}

// A scratch array that grows by doubling and is kept.
Depth* depthArray(unsigned n) {
    static Depth* array = nullptr;
    static unsigned capacity = 0;
    if (n > capacity) {
        unsigned larger = capacity ? capacity : 16;
        while (larger < n) larger *= 2;
        array = (Depth*)realloc(array, larger * sizeof(Depth));
        capacity = larger;
    }
    return array;
}

const Orv3dMatrix* matrixFor(const OrvActor* actor, const OrvScene* scene) {
    return actor->isInvariant() ? &scene->invariantToScene : &scene->worldToScene;
}

}  // namespace

// ---------------------------------------------------------------------------
// Hooks
// ---------------------------------------------------------------------------

OrvTheaterHook::OrvTheaterHook() : theater(nullptr) {}

OrvTheaterHook::~OrvTheaterHook() {
    if (theater) theater->remove(this);
}

void OrvTheaterHook::beforeDraw(const OrvScene*, const Orv2dRegion*) {}
void OrvTheaterHook::afterDraw(const OrvScene*, const Orv2dRegion*) {}
void OrvTheaterHook::producer(OrvProducer*, OrvProducer*) {}
void OrvTheaterHook::contents() {}
void OrvTheaterHook::orientation(const OrvCamera*) {}
void OrvTheaterHook::mapping(const OrvCamera*) {}
unsigned long OrvTheaterHook::doNotOptimizeSceneReDraws(const OrvScene*) {
    return 0;
}
void OrvTheaterHook::afterCopy(const OrvScene*, const Orv2dRegion*) {}
unsigned long OrvTheaterHook::deletedByTheater() {
    return 1;
}

void OrvTheater::install(OrvTheaterHook* hook) {
    if (!hook || hook->theater == this) return;
    if (hook->theater) hook->theater->remove(hook);
    hook->theater = this;
    hooks.append(hook);
}

void OrvTheater::remove(OrvTheaterHook* hook) {
    if (!hook || !hooks.find(hook)) return;
    hook->theater = nullptr;
    hooks.remove(hook);
}

// Each takes the next link before the call, so that a hook may leave while it is told.
#define ORV_EACH_THEATER_HOOK(call)                                                                \
    if (!OrvAllowHooksUpdated) return;                                                             \
    for (OrvLink* l = hooks.first, *next; l; l = next) {                                           \
        next = l->next;                                                                            \
        ((OrvTheaterHook*)l->value)->call;                                                         \
    }

void OrvTheater::beforeDraw(const OrvScene* scene, const Orv2dRegion* region) {
    ORV_EACH_THEATER_HOOK(beforeDraw(scene, region));
}
void OrvTheater::afterDraw(const OrvScene* scene, const Orv2dRegion* region) {
    ORV_EACH_THEATER_HOOK(afterDraw(scene, region));
}
void OrvTheater::producerChanged(OrvProducer* oldProducer, OrvProducer* newProducer) {
    ORV_EACH_THEATER_HOOK(producer(oldProducer, newProducer));
}
void OrvTheater::afterCopy(const OrvScene* scene, const Orv2dRegion* region) {
    ORV_EACH_THEATER_HOOK(afterCopy(scene, region));
}
void OrvTheater::orientationChanged(const OrvCamera* camera) {
    ORV_EACH_THEATER_HOOK(orientation(camera));
}
void OrvTheater::mappingChanged(const OrvCamera* camera) {
    ORV_EACH_THEATER_HOOK(mapping(camera));
}
void OrvTheater::contentsChanged() {
    if (!OrvAllowCallContentsChanged) return;
    ORV_EACH_THEATER_HOOK(contents());
}

#undef ORV_EACH_THEATER_HOOK

unsigned long OrvTheater::doNotOptimizeSceneReDraws(const OrvScene* scene) const {
    unsigned long any = 0;
    for (OrvLink* l = hooks.first; l; l = l->next)
        if (((OrvTheaterHook*)l->value)->doNotOptimizeSceneReDraws(scene)) any = 1;
    return any;
}

// ---------------------------------------------------------------------------
// Construction
// ---------------------------------------------------------------------------

OrvTheater::OrvTheater(OrvDirector* owner)
    : director(owner), pressed(nullptr), lastMoved(nullptr), grabbed(nullptr), focus(nullptr),
      anyFocus(0), selectionOwner(0), beginDrawingDepth(0), lockedFlush(0), destroying(0) {
    director->add(this);
    init();
}

void OrvTheater::init() {
    layer(0, 1);
    OrvTheaterFromKey();
    OrvTheaterToKey();
}

OrvTheater::~OrvTheater() {
    destroying = 1;
    while (scenes.first) disconnect((OrvScene*)scenes.first->value);
    releaseInput();
    deleteLinks();
    while (layers.first) {
        OrvTheaterLayer* l = (OrvTheaterLayer*)layers.first->value;
        l->empty(1);
        layers.remove(l);
        delete l;
    }
    // Each accelerator leaves every theater as it goes.
    removeAccelerators(1);
    while (hooks.first) {
        OrvTheaterHook* hook = (OrvTheaterHook*)hooks.first->value;
        remove(hook);
        if (hook->deletedByTheater()) delete hook;
    }
    director->remove(this);
}

const char* OrvTheater::className() const {
    return "OrvTheater";
}

unsigned long OrvTheater::initContext(OrvScene*) {
    return 1;
}

void OrvTheater::closeContext(OrvScene*) {}

// ---------------------------------------------------------------------------
// Contents
// ---------------------------------------------------------------------------

OrvTheaterLayer* OrvTheater::layer(unsigned number, unsigned long create) {
    unsigned i = 0;
    for (OrvLink* l = layers.first; l; l = l->next, i++)
        if (i == number) return (OrvTheaterLayer*)l->value;
    if (!create) return nullptr;
    OrvTheaterLayer* last = nullptr;
    for (; i <= number; i++) {
        last = new OrvTheaterLayer(this, (unsigned short)i);
        // A new layer shows in every scene, as the first ones did when the scene came.
        for (OrvLink* s = scenes.first; s; s = s->next) last->append((const OrvScene*)s->value, 3);
        layers.append(last);
    }
    return last;
}

OrvTheaterLayer* OrvTheater::getLayer(const OrvActor* actor) const {
    // An actor in this theater knows it, and stands in the layer of its number.
    if (actor->getTheater() != this) return nullptr;
    unsigned i = 0;
    for (OrvLink* l = layers.first; l; l = l->next, i++)
        if (i == actor->layer) return (OrvTheaterLayer*)l->value;
    return nullptr;
}

unsigned long OrvTheater::isLink(const OrvActor* actor) const {
    return actor->getProperty(OrvLinkBit);
}

unsigned long OrvTheater::isVisible(const OrvActor* actor) const {
    return actor && actor->isVisible() && getLayer(actor) ? 1 : 0;
}

void OrvTheater::append(OrvActor* actor, unsigned number) {
    if (!actor) return;
    beginDrawing();
    actor->setTheater(this);
    layer(number, 1)->append(actor);
    actor->layer = (unsigned short)number;
    welcome(actor);
    invalidate(actor, 1);
    flushDrawing(1);
    contentsChanged();
}

void OrvTheater::insert(OrvActor* actor, unsigned number) {
    if (!actor) return;
    beginDrawing();
    actor->setTheater(this);
    layer(number, 1)->insert(actor);
    actor->layer = (unsigned short)number;
    welcome(actor);
    invalidate(actor, 1);
    flushDrawing(1);
    contentsChanged();
}

void OrvTheater::remove(OrvActor* actor, unsigned long redraw) {
    OrvTheaterLayer* l = actor ? getLayer(actor) : nullptr;
    if (!l) return;
    if (redraw) {
        beginDrawing();
        invalidate(actor, 1);
    }
    // A link leaves its ends' tables, and the links joined to the actor leave with it.
    forget(actor);
    removeLinks(actor, 0);
    l->remove(actor);
    actor->setTheater(nullptr);
    if (redraw) flushDrawing(1);
    if (!destroying) contentsChanged();
}

void OrvTheater::remove(OrvActor** list, unsigned count, unsigned long redraw) {
    unsigned int allow = OrvAllowCallContentsChanged;
    OrvAllowCallContentsChanged = 0;
    if (redraw) beginDrawing();
    for (unsigned i = 0; i < count; i++)
        if (list[i]) remove(list[i], redraw);
    if (redraw) flushDrawing(1);
    OrvAllowCallContentsChanged = allow;
    contentsChanged();
}

void OrvTheater::push(OrvActor* actor) {
    OrvTheaterLayer* l = actor ? getLayer(actor) : nullptr;
    if (!l) return;
    l->push(actor);
    draw(actor, 1);
}

void OrvTheater::pop(OrvActor* actor) {
    OrvTheaterLayer* l = actor ? getLayer(actor) : nullptr;
    if (!l) return;
    l->pop(actor);
    draw(actor, 1);
}

unsigned OrvTheater::cardinal() const {
    unsigned n = 0;
    for (OrvLink* l = layers.first; l; l = l->next) n += ((OrvTheaterLayer*)l->value)->count;
    return n;
}

OrvActor** OrvTheater::objects(unsigned& count) const {
    count = cardinal();
    if (!count) return nullptr;
    OrvActor** all = new OrvActor*[count + 1];
    unsigned n = 0;
    for (OrvLink* l = layers.first; l; l = l->next) {
        OrvTheaterLayer* layer = (OrvTheaterLayer*)l->value;
        for (unsigned i = 0; i < layer->count; i++) all[n++] = layer->actors[i];
    }
    all[n] = nullptr;
    return all;
}

OrvActor* OrvTheater::object(const char* name) const {
    if (!name) return nullptr;
    for (OrvLink* l = layers.first; l; l = l->next) {
        OrvTheaterLayer* layer = (OrvTheaterLayer*)l->value;
        for (unsigned i = 0; i < layer->count; i++) {
            const char* own = layer->actors[i]->getName();
            if (own && !strcmp(own, name)) return layer->actors[i];
        }
    }
    return nullptr;
}

void OrvTheater::apply(void (*function)(OrvActor*, void*), void* data) {
    for (OrvLink* l = layers.first; l; l = l->next)
        ((OrvTheaterLayer*)l->value)->apply(function, data);
}

void OrvTheater::empty(unsigned long deleteThem) {
    beginDrawing();
    for (OrvLink* l = layers.first; l; l = l->next) {
        OrvTheaterLayer* layer = (OrvTheaterLayer*)l->value;
        for (unsigned i = 0; i < layer->count; i++) invalidate(layer->actors[i], 0);
    }
    forgetAll();
    if (deleteThem) deleteLinks();
    for (OrvLink* l = layers.first; l; l = l->next) ((OrvTheaterLayer*)l->value)->empty(deleteThem);
    flushDrawing(1);
    contentsChanged();
}

Orv3dVolume OrvTheater::contentsBBox(unsigned long world) const {
    Orv3dVolume box;
    bool first = true;
    for (OrvLink* l = layers.first; l; l = l->next) {
        OrvTheaterLayer* layer = (OrvTheaterLayer*)l->value;
        for (unsigned i = 0; i < layer->count; i++) {
            Orv3dVolume v = layer->actors[i]->bbox3d(world);
            if (first)
                box = v;
            else
                box.extendBy(v);
            first = false;
        }
    }
    return box;
}

Orv2dRect OrvTheater::contentsBBoxMapped(const OrvScene* scene) const {
    if (!scene || !cardinal()) return Orv2dRect();
    Orv3dPoint corners[8];
    contentsBBox(1).getVertex(corners, Orv3dMatrix());
    float x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    for (int i = 0; i < 8; i++) {
        Orv4dPoint p = corners[i].to4dPoint();
        scene->worldToScene.apply(p);
        // A corner behind the eye: the contents may be anywhere in the window.
        if (p.w <= 1e-6f)
            return Orv2dRect(0, 0, scene->interior ? scene->interior->width : 0,
                             scene->interior ? scene->interior->height : 0);
        float x = p.x / p.w, y = p.y / p.w;
        if (i == 0 || x < x0) x0 = x;
        if (i == 0 || x > x1) x1 = x;
        if (i == 0 || y < y0) y0 = y;
        if (i == 0 || y > y1) y1 = y;
    }
    int32_t left = OrvRound(x0), top = OrvRound(y0);
    return Orv2dRect(left, top, (uint32_t)(OrvRound(x1) - left), (uint32_t)(OrvRound(y1) - top));
}

// ---------------------------------------------------------------------------
// Scenes
// ---------------------------------------------------------------------------

OrvScene* OrvTheater::sceneOfView(const void* view) const {
    for (OrvLink* l = scenes.first; l; l = l->next) {
        OrvScene* scene = (OrvScene*)l->value;
        if (view && (const void*)scene->interior == view && !scene->destroying) return scene;
    }
    return nullptr;
}

void OrvTheater::listen(OrvScene* scene) {
    OrvView* view = scene ? scene->interior : nullptr;
    if (!view || view->exposeCallbacks.find((void*)exposeCall)) return;
    view->onExpose(exposeCall, this);
    view->onResize(resizeCall, this);
    view->onInput(inputCall, this);
}

void OrvTheater::stopListening(OrvScene* scene) {
    OrvView* view = scene ? scene->interior : nullptr;
    if (!view) return;
    view->removeExpose(exposeCall);
    view->removeResize(resizeCall);
    view->removeInput(inputCall);
}

// Steps shared by both forms of connect, once the scene may be connected.
static void join(OrvTheater* theater, OrvScene* scene) {
    scene->setTheater(theater);
    theater->scenes.append(scene);
    theater->initContext(scene);
    for (OrvLink* l = theater->layers.first; l; l = l->next)
        ((OrvTheaterLayer*)l->value)->append(scene, 3);
    if (!scene->isOffScreenRenderer()) {
        // The window must exist to be heard; it is made on the stage on demand.
        scene->getInteriorStage();
        theater->listen(scene);
    }
    scene->installTheaterHook(theater);
    theater->drawAll(scene, nullptr, 1);
}

void OrvTheater::connect(OrvScene* scene, OrvStage* stage, unsigned number) {
    if (!scene) return;
    if (scene->isOffScreenRenderer()) {
        OrvError("OrvTheater::connect : Can't use this function with an off-screen renderer "
                 "scene.\nn");
        return;
    }
    if (scene->getStage()) {
        OrvError("OrvTheater::connect : Bad stage argument.\n");
        return;
    }
    if (!stage) return;
    stage->append(scene, number);
    if (scene->getTheater()) {
        OrvError("OrvTheater::connect: Scene already connected to a theater.\n");
        return;
    }
    join(this, scene);
}

void OrvTheater::connect(OrvScene* scene) {
    if (!scene) return;
    if (!scene->isOffScreenRenderer() && !scene->getStage()) {
        OrvError("OrvTheater::connect : Scene must be in a stage.\n");
        return;
    }
    if (scene->getTheater()) {
        OrvError("OrvTheater::connect: Scene already connected to a theater.\n");
        return;
    }
    join(this, scene);
}

void OrvTheater::disconnect(OrvScene* scene) {
    if (!scene || !scenes.find(scene)) return;
    scene->endRendering();
    for (OrvLink* l = layers.first; l; l = l->next) ((OrvTheaterLayer*)l->value)->remove(scene);
    scenes.remove(scene);
    scene->setTheater(nullptr);
    scene->installTheaterHook(nullptr);
    stopListening(scene);
    // The scene's producer is no longer current, and none of its producers serves here.
    remove(getProducer(scene));
    for (OrvLink* l = scene->producers.first; l; l = l->next)
        if (((OrvProducer*)l->value)->theater == this)
            ((OrvProducer*)l->value)->setTheater(nullptr);
}

void OrvTheater::setVisible(OrvScene* scene, unsigned long on) {
    if (!scene || !scenes.find(scene)) return;
    for (OrvLink* l = layers.first; l; l = l->next)
        ((OrvTheaterLayer*)l->value)->setVisible(scene, on);
    drawAll(scene, nullptr, 1);
}

unsigned long OrvTheater::isVisible(const OrvScene* scene) const {
    OrvTheaterLayer* first = layers.first ? (OrvTheaterLayer*)layers.first->value : nullptr;
    return first ? first->isVisible(scene) : 0;
}

void OrvTheater::setSelectable(OrvScene* scene, unsigned long on) {
    for (OrvLink* l = layers.first; l; l = l->next)
        ((OrvTheaterLayer*)l->value)->setSelectable(scene, on);
}

unsigned long OrvTheater::isSelectable(const OrvScene* scene) const {
    OrvTheaterLayer* first = layers.first ? (OrvTheaterLayer*)layers.first->value : nullptr;
    return first ? first->isSelectable(scene) : 0;
}

void OrvTheater::handleExpose(OrvView* view, const Orv2dRegion* region) {
    if (destroying) return;
    for (OrvLink *l = scenes.first, *next; l; l = next) {
        next = l->next;
        OrvScene* scene = (OrvScene*)l->value;
        if (scene->interior == view) drawAll(scene, region, 1);
    }
}

void OrvTheater::handleResize(OrvView* view, const Orv2dRect& oldRect, const Orv2dRect& newRect) {
    if (destroying || (oldRect.w == newRect.w && oldRect.h == newRect.h)) return;
    OrvScene* scene = sceneOfView(view);
    if (!scene) return;
    scene->porthole(newRect);
    scene->adjustScrollBars();
    drawAll(scene, nullptr, 1);
}

// ---------------------------------------------------------------------------
// Collecting changes
// ---------------------------------------------------------------------------

void OrvTheater::beginDrawing() {
    beginDrawingDepth++;
    for (OrvLink* l = scenes.first; l; l = l->next) ((OrvScene*)l->value)->beginDrawingTheater();
}

void OrvTheater::flushDrawing(unsigned long clear) {
    if (beginDrawingDepth == 0)
        OrvError("OrvTheater::flushDrawing : 'beginDrawing' must be call before 'flushDrawing'.");
    else
        beginDrawingDepth--;
    for (OrvLink *l = scenes.first, *next; l; l = next) {
        next = l->next;
        ((OrvScene*)l->value)->flushDrawingTheater(this, clear);
    }
}

void OrvTheater::abortDrawing() {
    beginDrawingDepth = 0;
    for (OrvLink* l = scenes.first; l; l = l->next) ((OrvScene*)l->value)->abortDrawingTheater();
}

void OrvTheater::invalidate(const OrvActor* actor, unsigned long links) {
    // Every change of an actor comes through here: its layer's pick
    // hierarchy takes its box again.
    _OrvPickActorChanged_(this, actor);
    OrvTheaterLayer* l = actor && actor->isVisible() ? getLayer(actor) : nullptr;
    if (!l) return;
    for (OrvLink* s = scenes.first; s; s = s->next) {
        OrvScene* scene = (OrvScene*)s->value;
        if (l->isVisible(scene)) scene->invalidateTheater(actor);
    }
    if (!links) return;
    OrvActor* a = const_cast<OrvActor*>(actor);
    for (OrvLink* k = (OrvLink*)a->getUserProperty(OrvTheaterFromKey()); k; k = k->next)
        invalidate((const OrvActor*)k->value, 1);
    for (OrvLink* k = (OrvLink*)a->getUserProperty(OrvTheaterToKey()); k; k = k->next)
        invalidate((const OrvActor*)k->value, 1);
}

void OrvTheater::invalidate(const Orv2dRect& rect) {
    for (OrvLink* l = scenes.first; l; l = l->next) ((OrvScene*)l->value)->invalidateTheater(rect);
}

void OrvTheater::invalidate(const Orv2dRegion& region) {
    for (OrvLink* l = scenes.first; l; l = l->next)
        ((OrvScene*)l->value)->invalidateTheater(region);
}

void OrvTheater::setZBuffer(unsigned long on) {
    for (OrvLink* l = scenes.first; l; l = l->next) ((OrvScene*)l->value)->useZBuffer(on);
    drawAll(nullptr, 1);
}

// ---------------------------------------------------------------------------
// Drawing
// ---------------------------------------------------------------------------

OrvActor* OrvTheater::getFocus() const {
    return focus;
}

void OrvTheater::drawAll(OrvScene* scene, const Orv2dRegion* region, unsigned long clear) {
    if (destroying || !scene || !scene->getTheater() || !scene->contextOk()) return;
    Orv2dRect rect;
    if (!scene->isOffScreenRenderer()) {
        OrvStage* stage = scene->getStage();
        OrvView* view = scene->interior;
        if (!stage || !stage->isVisible(scene) || !view || !view->visible || scene->isIconified())
            return;
        rect = Orv2dRect(0, 0, (uint32_t)view->width, (uint32_t)view->height);
    } else {
        rect = scene->bbox2d(nullptr);
    }
    if (region && !region->intersects(rect)) return;
    if (scene->isInvalidatingTheater()) {
        // Inside a nest only the place is noted: the last flush draws it.
        if (region)
            scene->invalidateTheater(*region);
        else
            scene->invalidateTheater(scene->bboxVisible());
        return;
    }
    Orv2dRegion redraw(rect);
    scene->useScissor = 0;
    if (region && !doNotOptimizeSceneReDraws(scene)) {
        Orv2dRegion cut(*region);
        cut.intersection(rect);
        if (!cut.contains(rect)) {
            float whole = (float)rect.w * (float)rect.h;
            float ratio = whole < 1e-6f ? 1.0f : (float)cut.bbox.w * (float)cut.bbox.h / whole;
            // A small part is scissored and copied; anything larger repaints all.
            if (ratio <= scene->repaintThreshold) {
                redraw = cut;
                scene->useScissor = 1;
            }
        }
    }
    unsigned long forget = OrvForgetUpdateDrawing();
    OrvForgetUpdateDrawing(1);
    unsigned long counting = scene->startToCountPerformanceMeter();
    unsigned long immediate = OrvForceImmediateMode();
    if (counting) OrvForceImmediateMode(1);
    scene->beginRendering(&redraw);
    scene->renderProjectionMatrix(&redraw);
    if (clear) scene->renderClear(&redraw);
    beforeDraw(scene, &redraw);
    drawAllInternal(scene, &redraw);
    drawFocus(scene);
    afterDraw(scene, &redraw);
    if (scene->doubleBuffer) {
        scene->bitblit(redraw, 1);
        afterCopy(scene, &redraw);
    }
    scene->flushRendering();
    if (counting) {
        OrvForceImmediateMode(immediate);
        scene->startToCountOffPerformanceMeter();
    }
    // A producer's ghost goes back over what was repainted.
    OrvProducer* producer = getProducer(scene);
    if (producer) producer->expose3d(scene->useScissor ? &redraw : nullptr);
    OrvForgetUpdateDrawing(forget);
}

void OrvTheater::drawAll(const Orv2dRegion* region, unsigned long clear) {
    for (OrvLink *l = scenes.first, *next; l; l = next) {
        next = l->next;
        drawAll((OrvScene*)l->value, region, clear);
    }
}

void OrvTheater::draw(OrvActor* actor, unsigned long clear) {
    if (!actor) return;
    for (OrvLink *l = scenes.first, *next; l; l = next) {
        next = l->next;
        OrvScene* scene = (OrvScene*)l->value;
        if (scene->isInvalidatingTheater()) {
            scene->invalidateTheater(actor);
            continue;
        }
        Orv2dRegion region(Orv2dRegion::EmbeddedCount);
        actor->bboxToScene(region, matrixFor(actor, scene), 1);
        drawAll(scene, &region, clear);
    }
}

void OrvTheater::drawAllInternal(OrvScene* scene, const Orv2dRegion* region) {
    if (scene->transparencyType != OrvTransparencySorted) {
        for (OrvLink* l = layers.first; l; l = l->next) {
            OrvTheaterLayer* layer = (OrvTheaterLayer*)l->value;
            if (!layer->isVisible(scene)) continue;
            if (scene->transparencyType != OrvTransparencyLayers) {
                layer->draw(scene, region);
            } else {
                layer->drawTransparency(scene, region, 1, nullptr);
                layer->drawTransparency(scene, region, 0, nullptr);
            }
        }
        return;
    }
    // Opaque actors at once; the others after all layers, farthest first.
    OrvList later;
    for (OrvLink* l = layers.first; l; l = l->next) {
        OrvTheaterLayer* layer = (OrvTheaterLayer*)l->value;
        if (layer->isVisible(scene)) layer->drawTransparency(scene, region, 1, &later);
    }
    unsigned n = later.length();
    if (n == 1) ((OrvActor*)later.first->value)->render3d(scene);
    if (n < 2) return;
    Depth* sorted = depthArray(n);
    unsigned i = 0;
    for (OrvLink* l = later.first; l; l = l->next, i++) {
        OrvActor* actor = (OrvActor*)l->value;
        Orv3dPoint middle = actor->bbox3d(1).center();
        scene->worldToScene.apply(middle);
        sorted[i].actor = actor;
        sorted[i].depth = middle.z;
    }
    qsort(sorted, n, sizeof(Depth), deeperFirst);
    for (i = 0; i < n; i++) sorted[i].actor->render3d(scene);
}
