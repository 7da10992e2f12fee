// The scene: a frame on a stage whose interior is a GL child window. It holds
// the cameras and the matrices between world, device and window, the
// rendering settings, and what waits to be redrawn; the theater draws through it.
#include "orv/scene.h"

#include <cmath>
#include <cstdint>

#include "orv/director.h"
#include "orv/event.h"
#include "orv/makeup.h"
#include "orv/resource.h"
#include "orv/role.h"
#include "orv/producer.h"
#include "orv/stage.h"
#include "orv/view.h"

namespace {

// The frame's make-up in white and dotted lines, on a background when one is given.
OrvMakeUp* dottedLook(const OrvMakeUp* base, const char* background) {
    OrvDirector* director = base->director;
    OrvMakeUp* look = director->makeUpForeground(base, director->color("white"));
    if (background) look = director->makeUpBackground(look, director->color(background));
    return director->makeUpLineStyle(look, director->lineStyle("dot"));
}

// The same make-up as the director interns it from all of its attributes.
OrvMakeUp* internAll(const OrvMakeUp* m) {
    return m->director->makeUp(m->background(), m->foreground(), m->lineStyle(), m->lineWidth(),
                               m->pattern(), m->font(), m->colorPattern(), m->fillStyle(),
                               m->arcMode(), m->fillRule(), m->vfont(), m->distinguish(),
                               m->smooth(), m->cull(), m->frontStyle(), m->backStyle(),
                               m->markerType(), m->markerScale(), m->texture());
}

void replaceCounted(OrvMakeUp*& field, OrvMakeUp* value) {
    if (value == field) return;
    OrvCount(value);
    OrvMakeUp* old = field;
    field = value;
    OrvRelease(old);
}

// The keys under which an actor keeps its attachments: kind, then distance.
struct AttachmentKeys {
    OrvPosition side;
    const char* kind;
    const char* distance;
};
const AttachmentKeys attachmentKeys[6] = {{1, "Left", "dLeft"},   {2, "Right", "dRight"},
                                          {4, "Top", "dTop"},     {8, "Bottom", "dBottom"},
                                          {32, "Width", nullptr}, {64, "Height", nullptr}};

void attach(OrvActor* actor, const AttachmentKeys& keys, uintptr_t kind, uintptr_t distance) {
    actor->setUserProperty(OrvGetKey(keys.kind, 1), (void*)kind);
    if (keys.distance && (kind == 1 || kind == 3))
        actor->setUserProperty(OrvGetKey(keys.distance, 1), (void*)distance);
}

// The view went first (its stage was destroyed): the context goes with it.
void sceneViewDestroyed(OrvView* view, void* data) {
    OrvScene* scene = (OrvScene*)data;
    if (scene->interior != view) return;
    scene->endRendering();
    scene->interior = nullptr;
}

}  // namespace

// ---------------------------------------------------------------------------
// The hook that keeps the scroll bars in step
// ---------------------------------------------------------------------------

OrvFrameTheaterHook::OrvFrameTheaterHook(OrvFrame* owner) : frame(owner), x(0), y(0) {}

void OrvFrameTheaterHook::contents() {
    if (frame) frame->adjustScrollBars();
}

void OrvFrameTheaterHook::orientation(const OrvCamera* camera) {
    if (frame && camera && camera->scene == frame) frame->adjustScrollBars();
}

void OrvFrameTheaterHook::mapping(const OrvCamera* camera) {
    if (frame && camera && camera->scene == frame) frame->adjustScrollBars();
}

unsigned long OrvFrameTheaterHook::deletedByTheater() {
    return 0;
}

// ---------------------------------------------------------------------------
// Construction
// ---------------------------------------------------------------------------

void OrvScene::initScene() {
    OrvDirector* director = makeUp->director;
    currentCameraIndex = 0;
    worldToScene = sceneToWorld = viewportInverse = Orv3dMatrix();
    invariantToScene = sceneToInvariant = Orv3dMatrix();
    porthole_ = Orv3dRect(0, 0, 1, 1);
    portholeChanged = 1;
    buffersEqual = 1;
    currentScissor = Orv3dRect();
    mappingValid = 1;
    invalidRegion = Orv2dRegion(Orv2dRegion::EmbeddedCount);
    drawingDepth = 0;
    centre = Orv3dPoint(0, 0, 1);
    centreCopy = Orv3dPoint(0, 0, 0);
    zBuffer = 1;
    lastMakeUp = nullptr;
    lastMakeUpLines = 0;
    immediateDrawing = 0;
    contextActive = 0;
    environment_ = nullptr;
    lightAllowed = 1;
    textureAllowed = 1;
    dithering = 1;
    transparencyType = OrvTransparencyNone;
    useScissor = 0;
    repaintThreshold = director->doNotOptimize ? 0.0f : 0.1f;
    focusMakeUp_ = highlightMakeUp_ = highlightRender = nullptr;
    focusMakeUp(dottedLook(makeUp, nullptr));
    highlightMakeUp(dottedLook(makeUp, "lightgrey"));
    shadowMakeUp = nullptr;
    textureOn_ = 0;
    interactiveMode = OrvInteractiveFull | OrvInteractiveNoDepth;
    roleProducerAcc = 0;
    renderInvariant = 0;
    renderMatrix = nullptr;
    renderFaceFlag = 1;
    cullValid = 0;
    cullSource = nullptr;
    cullInvariant = 0;
    destroying = 0;
    for (OrvRGB& c : material) c = OrvRGB();
    frontShininess = backShininess = frontAlpha = backAlpha = 0;
    materialTwoSided = colorInMaterial = emissiveSet = 0;
    meterStarted = 0;
    meterFrames = meterTriangles = 0;
    meterStartTime = 0;
    meterCounting = 0;
    theaterHook = nullptr;
}

OrvScene::OrvScene(OrvDirector* director, const Orv2dRect& box, unsigned long flag, OrvMakeUp* look)
    : OrvFrame(director, box, flag, look) {
    initScene();
    OrvCamera camera;
    add(camera);
}

OrvScene::OrvScene(const OrvScene& source) : OrvFrame(source) {
    initScene();
    porthole_ = source.porthole_;
    zBuffer = source.zBuffer;
    lightAllowed = source.lightAllowed;
    textureAllowed = source.textureAllowed;
    dithering = source.dithering;
    transparencyType = source.transparencyType;
    interactiveMode = source.interactiveMode;
    roleProducerAcc = source.roleProducerAcc;
    repaintThreshold = source.repaintThreshold;
    focusMakeUp(source.focusMakeUp_);
    highlightMakeUp(source.highlightMakeUp_);
    environment_ = source.environment_;
    OrvCount(environment_);
    for (OrvLink* l = source.lights.first; l; l = l->next)
        if (l->value) lights.append(((OrvLight*)l->value)->copy());
    // Holes stay where they are, so that the indices of the copy are the source's.
    for (OrvLink* l = source.cameras.first; l; l = l->next) {
        OrvCamera* camera = nullptr;
        if (l->value) {
            camera = new OrvCamera(*(OrvCamera*)l->value);
            camera->scene = this;
        }
        cameras.append(camera);
    }
    currentCameraIndex = source.currentCameraIndex;
}

OrvScene::~OrvScene() {
    destroying = 1;
    OrvDirector* director = makeUp->director;
    director->suspendBalloonTimer();
    endRendering();
    // Without its window the scene can no longer end rendering by the rules.
    if (director->currentScene == this) director->currentScene = nullptr;
    for (OrvLink* l = producers.first; l; l = l->next) delete (OrvProducer*)l->value;
    while (producers.first) producers.remove(producers.first->value);
    OrvTheater* theater = getTheater();
    if (theater) theater->disconnect(this);
    installTheaterHook(nullptr);
    if (interior) interior->removeDestroy(sceneViewDestroyed);
    OrvRelease(environment_);
    environment_ = nullptr;
    replaceCounted(focusMakeUp_, nullptr);
    replaceCounted(highlightMakeUp_, nullptr);
    replaceCounted(highlightRender, nullptr);
    for (OrvLink* l = lights.first; l; l = l->next) delete (OrvLight*)l->value;
    for (OrvLink* l = cameras.first; l; l = l->next) delete (OrvCamera*)l->value;
}

// ---------------------------------------------------------------------------
// Cameras
// ---------------------------------------------------------------------------

unsigned OrvScene::add(const OrvCamera& camera) {
    OrvCamera* copy = new OrvCamera(camera);
    copy->scene = this;
    unsigned index = 0;
    for (OrvLink* l = cameras.first; l; l = l->next, index++) {
        if (!l->value) {
            l->value = copy;
            return index;
        }
    }
    cameras.append(copy);
    return index;
}

unsigned OrvScene::cameraCardinal() const {
    return cameras.length();
}

OrvCamera* OrvScene::getCamera(unsigned index) const {
    OrvCamera* camera = cameras.first ? (OrvCamera*)(*cameras.first)[index] : nullptr;
    return camera ? camera : currentCamera();
}

OrvCamera* OrvScene::currentCamera() const {
    return cameras.first ? (OrvCamera*)(*cameras.first)[currentCameraIndex] : nullptr;
}

// A new current camera: new matrices, the hooks told, and a full frame.
void OrvScene::cameraSwitched() {
    computeWorldScene();
    OrvTheater* theater = getTheater();
    if (!theater) return;
    OrvCamera* camera = currentCamera();
    theater->orientationChanged(camera);
    theater->mappingChanged(camera);
    theater->drawAll(this, nullptr, 1);
}

void OrvScene::useCamera(unsigned index) {
    if (index == currentCameraIndex || !cameras.first || !(*cameras.first)[index]) return;
    currentCameraIndex = index;
    cameraSwitched();
}

void OrvScene::removeCamera(unsigned index) {
    OrvCamera* camera = cameras.first ? (OrvCamera*)(*cameras.first)[index] : nullptr;
    if (!camera) return;
    delete camera;
    cameras.first->setValue(index, nullptr);
    if (index != currentCameraIndex) return;
    unsigned i = 0;
    for (OrvLink* l = cameras.first; l; l = l->next, i++) {
        if (l->value) return useCamera(i);
    }
    removeAllCameras();
}

void OrvScene::removeAllCameras() {
    for (OrvLink* l = cameras.first; l; l = l->next) delete (OrvCamera*)l->value;
    while (cameras.first) cameras.remove(cameras.first->value);
    OrvCamera camera;
    add(camera);
    currentCameraIndex = 0;
    cameraSwitched();
}

void OrvScene::updateSceneOrientation(const OrvCamera* camera) {
    if (!camera || camera != currentCamera()) return;
    computeWorldScene();
    OrvTheater* theater = getTheater();
    if (!theater) return;
    theater->orientationChanged(camera);
    theater->drawAll(this, nullptr, 1);
}

void OrvScene::updateSceneMapping(const OrvCamera* camera) {
    if (!camera || camera != currentCamera()) return;
    computeWorldScene();
    OrvTheater* theater = getTheater();
    if (!theater) return;
    theater->mappingChanged(camera);
    theater->drawAll(this, nullptr, 1);
}

void OrvScene::updateSceneRatio(const OrvCamera* camera) {
    updateSceneMapping(camera);
}

// ---------------------------------------------------------------------------
// Settings: the next frame applies them, so rendering ends at once
// ---------------------------------------------------------------------------

void OrvScene::redrawAll() {
    OrvTheater* theater = getTheater();
    if (theater) theater->drawAll(this, nullptr, 1);
}

void OrvScene::useZBuffer(unsigned long on) {
    on = on ? 1 : 0;
    if (on == zBuffer) return;
    zBuffer = on;
    endRendering();
}

void OrvScene::allowLighting(unsigned long on) {
    on = on ? 1 : 0;
    if (on == lightAllowed) return;
    lightAllowed = on;
    endRendering();
    redrawAll();
}

void OrvScene::allowTexture(unsigned long on) {
    on = on ? 1 : 0;
    if (on == textureAllowed) return;
    textureAllowed = on;
    endRendering();
    redrawAll();
}

void OrvScene::dither(unsigned long on) {
    on = on ? 1 : 0;
    if (on == dithering) return;
    dithering = on;
    endRendering();
    redrawAll();
}

void OrvScene::setTransparencyType(OrvTransparencyType type) {
    if (type == transparencyType) return;
    transparencyType = type;
    endRendering();
    redrawAll();
}

void OrvScene::setInteractiveMode(OrvInteractiveMode mode) {
    interactiveMode = mode;
}

void OrvScene::useDoubleBuffer(unsigned long on) {
    swapForGhost();
    doubleBuffer = on ? 1 : 0;
    endRendering();
}

void OrvScene::add(OrvLight* light) {
    if (!light || lights.find(light)) return;
    lights.append(light);
    endRendering();
    redrawAll();
}

void OrvScene::remove(OrvLight* light) {
    if (!light || !lights.find(light)) return;
    lights.remove(light);
    endRendering();
    redrawAll();
}

void OrvScene::removeLights(unsigned long deleteThem) {
    if (deleteThem)
        for (OrvLink* l = lights.first; l; l = l->next) delete (OrvLight*)l->value;
    while (lights.first) lights.remove(lights.first->value);
    endRendering();
    redrawAll();
}

OrvLight* OrvScene::getLight(unsigned short index) const {
    return lights.first ? (OrvLight*)(*lights.first)[index] : nullptr;
}

void OrvScene::environment(OrvEnvironment* environment) {
    if (environment != environment_) {
        OrvCount(environment);
        OrvEnvironment* old = environment_;
        environment_ = environment;
        OrvRelease(old);
    }
    endRendering();
    redrawAll();
}

void OrvScene::focusMakeUp(OrvMakeUp* look) {
    replaceCounted(focusMakeUp_, look);
}

void OrvScene::highlightMakeUp(OrvMakeUp* look) {
    replaceCounted(highlightMakeUp_, look);
    replaceCounted(highlightRender, look ? internAll(look) : nullptr);
}

void OrvScene::setBackground(OrvColor* color) {
    // The frame's share without its erasure: a GL window is repainted by the theater.
    OrvActor::setBackground(color);
    if (interior) interior->setBackground(color);
    OrvTheater* theater = getTheater();
    if (theater && !theater->beginDrawingDepth) theater->drawAll(this, nullptr, 1);
}

void OrvScene::setDefaultAttachments(long flag) {
    for (const AttachmentKeys& keys : attachmentKeys)
        attach(this, keys, keys.side >= 32 ? 2 : 1, keys.side >= 32 ? 0 : (uintptr_t)flag);
}

void OrvScene::setTheater(OrvTheater* theater) {
    OrvActor::setTheater(theater);
}

// ---------------------------------------------------------------------------
// Viewport and matrices
// ---------------------------------------------------------------------------

void OrvScene::windowSize(float& w, float& h) const {
    if (isOffScreenRenderer()) {
        Orv2dRect box = bbox2d(nullptr);
        w = (float)box.w;
        h = (float)box.h;
    } else {
        w = interior ? (float)interior->width : 0;
        h = interior ? (float)interior->height : 0;
    }
}

Orv3dRect OrvScene::viewportRect(unsigned long squared) const {
    float w, h;
    windowSize(w, h);
    Orv3dRect r(porthole_.x * w, porthole_.y * h, porthole_.w * w, porthole_.h * h);
    OrvCamera* camera = currentCamera();
    if (squared && camera && camera->keepRatio()) r.square(1);
    return r;
}

void OrvScene::computeWorldScene() {
    OrvCamera* camera = currentCamera();
    if (!drawingCanvas() || !camera) return;
    cullValid = 0;
    float W, H;
    windowSize(W, H);
    Orv3dRect v = viewportRect(1);
    if (v.w <= 0 || v.h <= 0) {
        OrvError("OrvScene::computeWorldScene : Bad viewport.\n");
        return;
    }
    float hw = v.w / 2, hh = v.h / 2, z = 0;
    // square() leaves no uneven sides; a rectangle it did leave is ruled by its smaller side.
    if (camera->keepRatio() && std::fabs(hw - hh) >= 1e-6) {
        hw = hh = hw < hh ? hw : hh;
        z = 1;
    }
    Orv3dMatrix viewport(hw, 0, 0, v.x + hw, 0, -hh, 0, H - v.y - hh, 0, 0, 0.5f, z + 0.5f, 0, 0, 0,
                         1);
    Orv3dMatrix projected = camera->mapping() * camera->orientation();
    worldToScene = viewport * projected;
    invariantToScene = viewport * _invariantProjection;
    if (!worldToScene.inverse(sceneToWorld))
        OrvPrint("OrvScene::computeWorldScene: Internal warning (inverse).\n");
    if (!invariantToScene.inverse(sceneToInvariant))
        OrvPrint("OrvScene::computeWorldScene: Internal warning (inverse I).\n");
    viewport.inverse(viewportInverse);
    centre = centreCopy = Orv3dPoint(W / 2, H / 2, 0);
    sceneToWorld.apply(centre);
    mappingValid = 1;
}

unsigned long OrvScene::porthole(const Orv2dRect& size) {
    if (!drawingCanvas()) return 0;
    endRendering();
    float W, H;
    windowSize(W, H);
    // Only the size counts: the viewport hangs from the top of the window.
    float x = 0;
    float w = W != 0 ? (float)size.w / W : 1;
    float y = H != 0 ? (H - (float)size.h) / H : 0;
    float h = H != 0 ? 1 - y : 1;
    auto outside = [](float v) { return v < 0 || v > 1; };
    if (outside(x) || outside(y) || outside(x + w) || outside(y + h)) {
        OrvError("OrvScene::porthole : Porthole outbound [0..1] ");
        OrvError(" (x=%f, y=%f, w=%f, h=%f) \n", x, y, w, h);
        return 0;
    }
    porthole_ = Orv3dRect(x, y, w, h);
    portholeChanged = 1;
    computeWorldScene();
    return 1;
}

// ---------------------------------------------------------------------------
// Collecting what to redraw
// ---------------------------------------------------------------------------

void OrvScene::beginDrawingTheater() {
    if (drawingDepth == 0) invalidRegion = Orv2dRegion(Orv2dRegion::EmbeddedCount);
    drawingDepth++;
}

void OrvScene::abortDrawingTheater() {
    invalidRegion = Orv2dRegion(Orv2dRegion::EmbeddedCount);
    drawingDepth = 0;
}

void OrvScene::invalidateTheater(const OrvActor* actor) {
    if (!drawingCanvas() || !actor) return;
    Orv2dRegion region(Orv2dRegion::EmbeddedCount);
    actor->bboxToScene(region, actor->isInvariant() ? &invariantToScene : &worldToScene, 1);
    if (!region.isEmpty()) invalidateTheater(region.bbox);
}

void OrvScene::invalidateTheater(const Orv2dRect& box) {
    if (!drawingCanvas() || !box.intersects(bboxVisible())) return;
    invalidRegion.extendBy(box);
    // Past 32 rectangles one box costs less than the list.
    if (invalidRegion.count > 32) invalidRegion = Orv2dRegion(invalidRegion.bbox);
}

void OrvScene::invalidateTheater(const Orv2dRegion& region) {
    for (unsigned short i = 0; i < region.count; i++) invalidateTheater(region.rectangle(i));
}

void OrvScene::flushDrawingTheater(OrvTheater* theater, unsigned long) {
    if (drawingDepth == 0)
        OrvError("OrvScene::flushDrawing : 'beginDrawing' must be call before'flushDrawing'.\n");
    else
        drawingDepth--;
    if (drawingDepth == 0 && theater && invalidRegion.count && invalidRegion.bbox.w &&
        invalidRegion.bbox.h)
        theater->drawAll(this, &invalidRegion, 1);
}

// ---------------------------------------------------------------------------
// The frame on its stage
// ---------------------------------------------------------------------------

OrvView* OrvScene::buildStage(OrvStage* stage, const Orv2dRect& box) const {
    unsigned long shown = interiorVisible && isVisible() && !iconified;
    return new OrvView(stage, box, OrvViewGL, shown);
}

void OrvScene::make(OrvStage* stage, const Orv2dMatrix*) {
    if (interior || !stage) return;
    Orv2dRect box = placeItems();
    // A window has at least one pixel each way.
    if (box.w < 1) box.w = 1;
    if (box.h < 1) box.h = 1;
    OrvView* view = buildStage(stage, box);
    if (!view) return;
    interior = view;
    view->onDestroy(sceneViewDestroyed, this);
    porthole(box);
    OrvColor* background = makeUp->background();
    if (background) view->setBackground(background);
    useDoubleBuffer(doubleBuffer);
    showInterior();
    OrvTheater* theater = getTheater();
    if (theater) theater->listen(this);
    // Outside a repaint this paints the frame; within one it is being painted.
    beginDrawing(0);
    flushDrawing(0);
}

OrvStage* OrvScene::getInteriorStage() const {
    OrvStage* stage = getStage();
    if (!interior && stage) const_cast<OrvScene*>(this)->make(stage, stage->transformer);
    return nullptr;
}

Orv2dRect OrvScene::bboxVisible() const {
    return interior ? interior->bboxVisible() : Orv2dRect();
}

void OrvScene::beginDrawing(unsigned long withLinks) {
    if (OrvForgetUpdateDrawing()) return;
    OrvStage* stage = getStage();
    if (!stage) return;
    stage->beginDrawing();
    stage->invalidate(this, withLinks);
}

void OrvScene::flushDrawing(unsigned long withLinks) {
    if (OrvForgetUpdateDrawing()) return;
    OrvStage* stage = getStage();
    if (!stage) return;
    stage->invalidate(this, withLinks);
    stage->flushDrawing(1);
}

void OrvScene::show() {}
void OrvScene::hide() {}
void OrvScene::onQuit(OrvCallback*) {}

// ---------------------------------------------------------------------------
// Scroll bars: the camera pans under the bars
// ---------------------------------------------------------------------------

unsigned long OrvScene::showScrollBars(unsigned long horizontal, unsigned long vertical,
                                       OrvPosition hPosition, OrvPosition vPosition,
                                       unsigned short width) {
    unsigned long changed =
        OrvFrame::showScrollBars(horizontal, vertical, hPosition, vPosition, width);
    OrvTheater* theater = getTheater();
    if (changed && theater) installTheaterHook(theater);
    return changed;
}

void OrvScene::installTheaterHook(OrvTheater* theater) {
    if (!theater) {
        delete theaterHook;
        theaterHook = nullptr;
        return;
    }
    if (theaterHook || (!hScrollBar && !vScrollBar)) return;
    theaterHook = new OrvFrameTheaterHook(this);
    theater->install(theaterHook);
    adjustScrollBars();
}

// The contents mapped into the window, with the window: what the bars range over.
Orv2dRect OrvScene::scrolledArea() const {
    float w, h;
    windowSize(w, h);
    OrvTheater* theater = getTheater();
    Orv2dRect area = theater ? theater->contentsBBoxMapped(this) : Orv2dRect();
    area.extendBy(Orv2dRect(0, 0, (uint32_t)w, (uint32_t)h));
    return area;
}

void OrvScene::adjustScrollBars() {
    if (!theaterHook || (!hScrollBar && !vScrollBar) || !interior || !getTheater()) return;
    Orv2dRect area = scrolledArea();
    // Value at the visible origin, thumb as long as the visible part.
    if (hScrollBar) hScrollBar->setValues(0, (long)area.w, -(long)area.x, (long)interior->width);
    if (vScrollBar) vScrollBar->setValues(0, (long)area.h, -(long)area.y, (long)interior->height);
    theaterHook->x = -(long)area.x;
    theaterHook->y = -(long)area.y;
}

void OrvScene::adjust() {
    OrvTheater* theater = getTheater();
    OrvCamera* camera = currentCamera();
    if (!theaterHook || (!hScrollBar && !vScrollBar) || !interior || !theater || !camera) return;
    long dx = hScrollBar ? hScrollBar->value - theaterHook->x : 0;
    long dy = vScrollBar ? vScrollBar->value - theaterHook->y : 0;
    if (!dx && !dy) return;
    // The pixels moved, as a step in the view plane at the depth of the contents' centre.
    Orv3dPoint centreOfContents = theater->contentsBBox(1).center();
    Orv3dPoint onScreen = centreOfContents;
    worldToScene.apply(onScreen);
    Orv3dPoint moved(onScreen.x + (float)dx, onScreen.y + (float)dy, onScreen.z);
    sceneToWorld.apply(moved);
    Orv3dVector step(centreOfContents, moved);
    Orv3dMatrix back;
    back.translate(-step.x, -step.y, -step.z);
    Orv3dMatrix turned = camera->orientation() * back;
    camera->orientation(turned);
    adjustScrollBars();
}

// ---------------------------------------------------------------------------
// Performance meter
// ---------------------------------------------------------------------------

void OrvScene::startPerformanceMeter() {
    meterStarted = 1;
    meterStartTime = OrvGetTime();
    meterFrames = meterTriangles = 0;
    meterCounting = 1;
}

void OrvScene::stopPerformanceMeter() {
    meterStarted = 0;
    meterCounting = 0;
    OrvError("--->>>>> Triangles : %d \n", (int)meterTriangles);
}

void OrvScene::startToCountOffPerformanceMeter() {
    meterCounting = 0;
}

unsigned long OrvScene::trianglesPerFrame() const {
    return OrvError("## OrvScene::trianglesPerFrame: Not implemented yet.\n");
}

// The message names trianglesPerFrame: it is the text the callers know.
unsigned long OrvScene::framesPerSecond() const {
    return OrvError("## OrvScene::trianglesPerFrame: Not implemented yet.\n");
}

unsigned long OrvScene::trianglesPerSecond() const {
    return OrvError("## OrvScene::trianglesPerSecond: Not implemented yet.\n");
}
