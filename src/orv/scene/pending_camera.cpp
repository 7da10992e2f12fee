// Placeholder bodies of the scene and theater members that the camera,
// light and scene-file work calls, so that the library and its tests link
// while those classes are written elsewhere. The file goes at integration;
// no test that must pass relies on what these do.
#include "orv/scene.h"
#include "orv/stage.h"
#include "orv/theater.h"

OrvScene::OrvScene(OrvDirector* director, const Orv2dRect& box, unsigned long flag, OrvMakeUp* look)
    : OrvFrame(director, box, flag, look), theaterHook(nullptr) {
    initScene();
    add(OrvCamera());
}

OrvScene::OrvScene(const OrvScene& source) : OrvFrame(source), theaterHook(nullptr) {
    initScene();
    for (OrvLink* l = source.cameras.first; l; l = l->next)
        if (l->value) add(*(const OrvCamera*)l->value);
}

OrvScene::~OrvScene() {
    for (OrvLink* l = cameras.first; l; l = l->next) delete (OrvCamera*)l->value;
    for (OrvLink* l = lights.first; l; l = l->next) delete (OrvLight*)l->value;
    OrvRelease(environment_);
    OrvRelease(focusMakeUp_);
    OrvRelease(highlightMakeUp_);
}

void OrvScene::initScene() {
    currentCameraIndex = 0;
    porthole_ = Orv3dRect(0, 0, 1, 1);
    portholeChanged = buffersEqual = mappingValid = 1;
    drawingDepth = 0;
    zBuffer = 1;
    lastMakeUp = nullptr;
    lastMakeUpLines = immediateDrawing = contextActive = 0;
    environment_ = nullptr;
    lightAllowed = textureAllowed = dithering = 1;
    transparencyType = 0;
    useScissor = 0;
    repaintThreshold = 0.1f;
    focusMakeUp_ = highlightMakeUp_ = highlightRender = nullptr;
    shadowMakeUp = nullptr;
    textureOn_ = 0;
    interactiveMode = 3;
    roleProducerAcc = 0;
    renderInvariant = 0;
    renderMatrix = nullptr;
    renderFaceFlag = 1;
    destroying = 0;
    meterStarted = meterFrames = meterTriangles = meterCounting = 0;
    meterStartTime = 0;
}

unsigned OrvScene::add(const OrvCamera& camera) {
    OrvCamera* copy = new OrvCamera(camera);
    copy->scene = this;
    unsigned index = cameras.length();
    cameras.append(copy);
    return index;
}
unsigned OrvScene::cameraCardinal() const {
    return cameras.length();
}
OrvCamera* OrvScene::getCamera(unsigned index) const {
    OrvLink* l = cameras.first;
    for (unsigned i = 0; l && i < index; i++) l = l->next;
    return l && l->value ? (OrvCamera*)l->value : currentCamera();
}
OrvCamera* OrvScene::currentCamera() const {
    OrvLink* l = cameras.first;
    for (unsigned i = 0; l && i < currentCameraIndex; i++) l = l->next;
    return l ? (OrvCamera*)l->value : nullptr;
}
void OrvScene::useCamera(unsigned index) {
    currentCameraIndex = index;
}
void OrvScene::removeCamera(unsigned index) {
    OrvLink* l = cameras.first;
    for (unsigned i = 0; l && i < index; i++) l = l->next;
    if (!l || !l->value) return;
    delete (OrvCamera*)l->value;
    l->value = nullptr;
    if (index != currentCameraIndex) return;
    unsigned i = 0;
    for (l = cameras.first; l && !l->value; l = l->next) i++;
    currentCameraIndex = l ? i : 0;
}
void OrvScene::removeAllCameras() {}
void OrvScene::updateSceneOrientation(const OrvCamera*) {}
void OrvScene::updateSceneMapping(const OrvCamera*) {}
void OrvScene::updateSceneRatio(const OrvCamera*) {}
void OrvScene::useZBuffer(unsigned long on) {
    zBuffer = on;
}
void OrvScene::allowLighting(unsigned long on) {
    lightAllowed = on;
}
void OrvScene::allowTexture(unsigned long on) {
    textureAllowed = on;
}
void OrvScene::dither(unsigned long on) {
    dithering = on;
}
void OrvScene::setTransparencyType(OrvTransparencyType type) {
    transparencyType = type;
}
void OrvScene::add(OrvLight* light) {
    if (!lights.find(light)) lights.append(light);
}
void OrvScene::remove(OrvLight* light) {
    lights.remove(light);
}
void OrvScene::removeLights(unsigned long) {}
OrvLight* OrvScene::getLight(unsigned short index) const {
    OrvLink* l = lights.first;
    for (unsigned i = 0; l && i < index; i++) l = l->next;
    return l ? (OrvLight*)l->value : nullptr;
}
void OrvScene::environment(OrvEnvironment* value) {
    OrvCount(value);
    OrvRelease(environment_);
    environment_ = value;
}
void OrvScene::focusMakeUp(OrvMakeUp* m) {
    OrvCount(m);
    OrvRelease(focusMakeUp_);
    focusMakeUp_ = m;
}
void OrvScene::highlightMakeUp(OrvMakeUp* m) {
    OrvCount(m);
    OrvRelease(highlightMakeUp_);
    highlightMakeUp_ = m;
}
unsigned long OrvScene::porthole(const Orv2dRect&) {
    return 0;
}
void OrvScene::computeWorldScene() {}
void OrvScene::startPerformanceMeter() {}
void OrvScene::stopPerformanceMeter() {}
void OrvScene::startToCountOffPerformanceMeter() {}
unsigned long OrvScene::trianglesPerFrame() const {
    return 0;
}
unsigned long OrvScene::framesPerSecond() const {
    return 0;
}
unsigned long OrvScene::trianglesPerSecond() const {
    return 0;
}
void OrvScene::beginDrawingTheater() {}
void OrvScene::abortDrawingTheater() {}
void OrvScene::invalidateTheater(const OrvActor*) {}
void OrvScene::invalidateTheater(const Orv2dRect&) {}
void OrvScene::invalidateTheater(const Orv2dRegion&) {}
void OrvScene::flushDrawingTheater(OrvTheater*, unsigned long) {}
void OrvScene::wait() const {}
void OrvScene::points(const OrvMakeUp*, unsigned, const Orv3dPoint*, const unsigned*) const {}
void OrvScene::markers(const OrvMakeUp*, unsigned, const Orv3dPoint*, const unsigned*) const {}
void OrvScene::line(const OrvMakeUp*, const Orv3dPoint&, const Orv3dPoint&) const {}
void OrvScene::polyLine(const OrvMakeUp*, unsigned, const Orv3dPoint*, unsigned,
                        const unsigned*) const {}
void OrvScene::box(const OrvMakeUp*, const Orv3dVolume&) const {}
void OrvScene::rectangle(const OrvMakeUp*, const Orv3dPoint&, const Orv3dPoint&, const Orv3dPoint&,
                         const Orv3dPoint&, unsigned long) const {}
void OrvScene::polygon(const OrvMakeUp*, const OrvPolygon*, const OrvRGB*, const Orv3dVector*,
                       unsigned long) const {}
void OrvScene::polygon(const OrvMakeUp*, const OrvFaceSet*, unsigned long) const {}
void OrvScene::series(const OrvMakeUp*, const OrvSeries*, const OrvRGB*,
                      const OrvColor* const*) const {}
void OrvScene::bitblit(const OrvMakeUp*, const OrvCanvas*, const Orv2dRect&,
                       const Orv2dPoint&) const {}
void OrvScene::shadow(const OrvMakeUp*, const OrvActor*, const Orv3dPlane&,
                      const Orv3dVector&) const {}
void OrvScene::levelOfDetail(const OrvActor*, float& onScreen, float& visible) const {
    onScreen = visible = 0;
}
void OrvScene::setInteractiveMode(OrvInteractiveMode mode) {
    interactiveMode = mode;
}
unsigned long OrvScene::bitblit(const Orv2dRegion&, unsigned long) {
    return 0;
}
void OrvScene::installTheaterHook(OrvTheater*) {}
unsigned long OrvScene::renderFace(OrvCullingMode, const Orv3dPoint*, const Orv4dPoint*,
                                   const unsigned*, unsigned) const {
    return 1;
}
void OrvScene::show() {}
void OrvScene::hide() {}
void OrvScene::onQuit(OrvCallback*) {}
void OrvScene::beginRendering(const Orv2dRegion*) {}
void OrvScene::flushRendering() {}
void OrvScene::endRendering() {}
void OrvScene::renderProjectionMatrix(const Orv2dRegion*) {}
void OrvScene::renderClear(const Orv2dRegion*) {}
void* OrvScene::context() const {
    return nullptr;
}
unsigned long OrvScene::drawingCanvas() const {
    return 0;
}
unsigned long OrvScene::renderTextureCoordinate(const OrvMakeUp*) const {
    return 0;
}
unsigned long OrvScene::renderTexture() const {
    return 0;
}
void OrvScene::swapForGhost() {}
void OrvScene::restoreCurrentMaterial() const {}
void OrvScene::restoreCurrentEmissiveMaterial() const {}
OrvView* OrvScene::buildStage(OrvStage* stage, const Orv2dRect& box) const {
    return OrvFrame::buildStage(stage, box);
}
void OrvScene::make(OrvStage* stage, const Orv2dMatrix* matrix) {
    OrvFrame::make(stage, matrix);
}
OrvStage* OrvScene::getInteriorStage() const {
    return OrvFrame::getInteriorStage();
}
void OrvScene::useDoubleBuffer(unsigned long on) {
    OrvFrame::useDoubleBuffer(on);
}
void OrvScene::adjust() {
    OrvFrame::adjust();
}
void OrvScene::adjustScrollBars() {
    OrvFrame::adjustScrollBars();
}
void OrvScene::setBackground(OrvColor* color) {
    OrvFrame::setBackground(color);
}
void OrvScene::setDefaultAttachments(long flag) {
    OrvFrame::setDefaultAttachments(flag);
}
void OrvScene::beginDrawing(unsigned long withLinks) {
    OrvFrame::beginDrawing(withLinks);
}
void OrvScene::flushDrawing(unsigned long withLinks) {
    OrvFrame::flushDrawing(withLinks);
}
void OrvScene::setTheater(OrvTheater* theater) {
    OrvFrame::setTheater(theater);
}
Orv3dRect OrvScene::viewportRect(unsigned long) const {
    return Orv3dRect();
}

Orv3dVolume OrvTheater::contentsBBox(unsigned long) const {
    return Orv3dVolume();
}
OrvTheater::OrvTheater(OrvDirector* d)
    : director(d), pressed(nullptr), lastMoved(nullptr), grabbed(nullptr), focus(nullptr),
      anyFocus(0), selectionOwner(0), beginDrawingDepth(0), lockedFlush(0), destroying(0) {}
OrvTheater::~OrvTheater() {}
const char* OrvTheater::className() const {
    return "OrvTheater";
}
void OrvTheater::drawAll(OrvScene*, const Orv2dRegion*, unsigned long) {}
void OrvTheater::drawAll(const Orv2dRegion*, unsigned long) {}
void OrvTheater::draw(OrvActor*, unsigned long) {}
void OrvTheater::drawFocus(OrvScene*) {}
OrvActor* OrvTheater::getFocus() const {
    return nullptr;
}
void OrvTheater::orientationChanged(const OrvCamera*) {}
void OrvTheater::mappingChanged(const OrvCamera*) {}
void OrvTheater::handleExpose(OrvView*, const Orv2dRegion*) {}
void OrvTheater::handleResize(OrvView*, const Orv2dRect&, const Orv2dRect&) {}
void OrvTheater::connect(OrvScene* scene, OrvStage* stage, unsigned layer) {
    stage->append(scene, layer);
}
