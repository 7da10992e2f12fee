// Placeholder bodies of the scene, theater and rendering members that the 3D
// actors and their tests call, so that they link while those are written.
// The file goes at integration.
#include "orv/scene.h"

void OrvForceImmediateMode(unsigned long) {}
unsigned long OrvForceImmediateMode() {
    return 0;
}
unsigned long OrvPushModelView() {
    return 1;
}
unsigned long OrvPopModelView() {
    return 1;
}
unsigned long OrvPushProjection() {
    return 1;
}
unsigned long OrvPopProjection() {
    return 1;
}
unsigned long OrvPushRenderFace(const OrvScene*) {
    return 1;
}
unsigned long OrvPopRenderFace(const OrvScene*) {
    return 1;
}
Orv3dMatrix OrvScene::_invariantProjection;

// Theater
OrvTheaterHook::OrvTheaterHook() : theater(nullptr) {}
OrvTheaterHook::~OrvTheaterHook() {}
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
void OrvTheater::beginDrawing() {}
void OrvTheater::flushDrawing(unsigned long) {}
void OrvTheater::invalidate(const OrvActor*, unsigned long) {}
void OrvTheater::append(OrvActor*, unsigned) {}
void OrvTheater::remove(OrvActor*, unsigned long) {}
unsigned OrvTheater::cardinal() const {
    return 0;
}
void OrvTheater::contentsChanged() {}
void OrvTheater::connect(OrvScene*, OrvStage*, unsigned) {}
void OrvTheater::install(OrvTheaterHook*) {}

// Scene
OrvScene::OrvScene(OrvDirector* d, const Orv2dRect& box, unsigned long flag, OrvMakeUp* look)
    : OrvFrame(d, box, flag, look) {}
OrvScene::~OrvScene() {}
OrvScene::OrvScene(OrvIStream& in) : OrvFrame(in) {}
OrvActor* OrvScene::copy() const {
    return nullptr;
}
OrvClassInfo* OrvScene::classInfo() const {
    return nullptr;
}
void OrvScene::write(OrvOStream&) const {}
OrvCamera* OrvScene::currentCamera() const {
    return nullptr;
}
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
void OrvScene::levelOfDetail(const OrvActor*, float&, float&) const {}
void OrvScene::setInteractiveMode(OrvInteractiveMode) {}
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
OrvView* OrvScene::buildStage(OrvStage*, const Orv2dRect&) const {
    return nullptr;
}
void OrvScene::make(OrvStage*, const Orv2dMatrix*) {}
OrvStage* OrvScene::getInteriorStage() const {
    return nullptr;
}
void OrvScene::useDoubleBuffer(unsigned long) {}
void OrvScene::adjust() {}
void OrvScene::adjustScrollBars() {}
void OrvScene::setBackground(OrvColor*) {}
void OrvScene::setDefaultAttachments(long) {}
void OrvScene::beginDrawing(unsigned long) {}
void OrvScene::flushDrawing(unsigned long) {}
void OrvScene::setTheater(OrvTheater*) {}

// Camera
OrvCamera::~OrvCamera() {}
void OrvCamera::defaultCamera() {}
void OrvCamera::lookAt(const Orv3dPoint&, const Orv3dPoint&, const Orv3dVector&) {}
void OrvCamera::lookAt(const float&, const double&, const double&, const double&) {}
unsigned long OrvCamera::lookAt(OrvPosition, const float) {
    return 0;
}
void OrvCamera::orientation(const Orv3dMatrix&) {}
unsigned long OrvCamera::perspective(const double&, const float&, const float&, const float&) {
    return 0;
}
unsigned long OrvCamera::perspective(const Orv3dRect&, const float&, const float&) {
    return 0;
}
unsigned long OrvCamera::orthographic(const Orv3dRect&, const float, const float) {
    return 0;
}
void OrvCamera::mapping(const Orv3dMatrix&) {}
void OrvCamera::viewAll(const float) {}
void OrvCamera::keepRatio(unsigned long) {}
void OrvCamera::zoom(const float&) {}
void OrvCamera::translate(const float&, const float&, const float&) {}
