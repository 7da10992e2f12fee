// Placeholder bodies so that the drawing operations can be linked and tried
// while the scene, the theater and the director's 3D defaults are written
// elsewhere. The file goes at integration; no test relies on what it does.
#include "orv/director.h"
#include "orv/scene.h"
#include "orv/stage.h"
#include "orv/theater.h"
#include "orv/view.h"

#include <GL/gl.h>
#include <GL/glx.h>

static const OrvRGB ambient0(0.2f, 0.2f, 0.2f), diffuse0(0.8f, 0.8f, 0.8f), black0(0, 0, 0);
const OrvRGB& OrvDirector::defaultAmbientColor() const {
    return ambient0;
}
const OrvRGB& OrvDirector::defaultDiffuseColor() const {
    return diffuse0;
}
const OrvRGB& OrvDirector::defaultSpecularColor() const {
    return black0;
}
const OrvRGB& OrvDirector::defaultEmissiveColor() const {
    return black0;
}

OrvScene::OrvScene(OrvDirector* d, const Orv2dRect& box, unsigned long flag, OrvMakeUp* look)
    : OrvFrame(d, box, flag, look), invalidRegion(25) {
    currentCameraIndex = 0;
    portholeChanged = 1;
    buffersEqual = 1;
    mappingValid = 1;
    drawingDepth = 0;
    zBuffer = 1;
    lastMakeUp = nullptr;
    lastMakeUpLines = 0;
    immediateDrawing = 0;
    contextActive = 0;
    environment_ = nullptr;
    lightAllowed = 1;
    textureAllowed = 1;
    dithering = 1;
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
    frontShininess = backShininess = frontAlpha = backAlpha = 0;
    materialTwoSided = colorInMaterial = emissiveSet = 0;
    meterStarted = meterFrames = meterTriangles = 0;
    meterStartTime = 0;
    meterCounting = 0;
    theaterHook = nullptr;
}
OrvScene::~OrvScene() {
    endRendering();
}
OrvActor* OrvScene::copy() const {
    return nullptr;
}
OrvClassInfo* OrvScene::_classInfo = nullptr;
OrvClassInfo* OrvScene::classInfo() const {
    return OrvFrame::classInfo();
}
void OrvScene::write(OrvOStream& out) const {
    OrvFrame::write(out);
}
void OrvScene::setInteractiveMode(OrvInteractiveMode mode) {
    interactiveMode = mode;
}
unsigned long OrvScene::bitblit(const Orv2dRegion&, unsigned long) {
    return 0;
}
void OrvScene::installTheaterHook(OrvTheater*) {}
void OrvScene::show() {}
void OrvScene::hide() {}
void OrvScene::onQuit(OrvCallback*) {}
void OrvScene::beginRendering(const Orv2dRegion*) {
    if (!drawingCanvas() || !getTheater()) return;
    Display* dpy = (Display*)makeUp->director->display;
    glXMakeCurrent(dpy, (GLXDrawable)drawingCanvas(), (GLXContext)context());
    makeUp->director->currentScene = this;
    lastMakeUp = nullptr;
    lastMakeUpLines = 0;
    contextActive = 1;
    glDrawBuffer(GL_BACK);
    glEnable(GL_NORMALIZE);
    glDisable(GL_DEPTH_TEST);
    glPointSize(3);
    computeWorldScene();
}
void OrvScene::flushRendering() {
    glFlush();
}
void OrvScene::endRendering() {
    if (makeUp && makeUp->director->currentScene == this) makeUp->director->currentScene = nullptr;
    contextActive = 0;
}
void OrvScene::computeWorldScene() {
    if (!interior) return;
    float w = (float)interior->width, h = (float)interior->height, s = w < h ? w : h;
    Orv3dRect r((w - s) / 2, (h - s) / 2, s, s);
    Orv3dMatrix viewport(s / 2, 0, 0, r.x + s / 2, 0, -s / 2, 0, h - r.y - s / 2, 0, 0, 0.5f, 0.5f,
                         0, 0, 0, 1);
    Orv3dMatrix projection(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -0.1f, 0, 0, 0, 0, 1);
    Orv3dMatrix orientation(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, -1, 0, 0, 0, 1);
    worldToScene = viewport * (projection * orientation);
    worldToScene.inverse(sceneToWorld);
    invariantToScene = viewport * _invariantProjection;
    invariantToScene.inverse(sceneToInvariant);
    glViewport((int)r.x, (int)r.y, (int)s, (int)s);
}
void OrvScene::renderProjectionMatrix(const Orv2dRegion*) {
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(-1, 1, -1, 1, -10, 10);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslatef(0, 0, -1);
    if (lightAllowed)
        glEnable(GL_LIGHTING);
    else
        glDisable(GL_LIGHTING);
}
void OrvScene::renderClear(const Orv2dRegion*) {
    glClearColor(1, 1, 1, 0);
    glClear(GL_COLOR_BUFFER_BIT);
}
void* OrvScene::context() const {
    return interior ? interior->glContext : nullptr;
}
unsigned long OrvScene::drawingCanvas() const {
    return interior ? interior->window() : 0;
}
unsigned long OrvScene::renderTextureCoordinate(const OrvMakeUp*) const {
    return 0;
}
unsigned long OrvScene::renderTexture() const {
    return textureAllowed && textureOn_;
}
OrvView* OrvScene::buildStage(OrvStage* stage, const Orv2dRect& box) const {
    return new OrvView(stage, box, OrvViewGL, 1);
}
void OrvScene::make(OrvStage* stage, const Orv2dMatrix* matrix) {
    OrvFrame::make(stage, matrix);
}
OrvStage* OrvScene::getInteriorStage() const {
    return nullptr;
}
void OrvScene::useDoubleBuffer(unsigned long on) {
    doubleBuffer = on;
}
void OrvScene::adjust() {}
void OrvScene::adjustScrollBars() {}
void OrvScene::setBackground(OrvColor* color) {
    OrvFrame::setBackground(color);
}
void OrvScene::setDefaultAttachments(long flag) {
    OrvFrame::setDefaultAttachments(flag);
}
void OrvScene::beginDrawing(unsigned long links) {
    OrvFrame::beginDrawing(links);
}
void OrvScene::flushDrawing(unsigned long links) {
    OrvFrame::flushDrawing(links);
}
void OrvScene::setTheater(OrvTheater* theater) {
    OrvActor::setTheater(theater);
}
void OrvScene::startPerformanceMeter() {
    meterStarted = meterCounting = 1;
    meterTriangles = meterFrames = 0;
}
void OrvScene::stopPerformanceMeter() {
    meterStarted = meterCounting = 0;
    OrvPrint("--->>>>> Triangles : %d \n", (int)meterTriangles);
}
unsigned long OrvScene::trianglesPerFrame() const {
    return OrvError("## OrvScene::trianglesPerFrame: Not implemented yet.\n");
}
unsigned long OrvScene::framesPerSecond() const {
    return OrvError("## OrvScene::trianglesPerFrame: Not implemented yet.\n");
}
unsigned long OrvScene::trianglesPerSecond() const {
    return OrvError("## OrvScene::trianglesPerSecond: Not implemented yet.\n");
}

OrvTheater::OrvTheater(OrvDirector* d) : director(d) {}
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
    scene->setTheater(this);
}
