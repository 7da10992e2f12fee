// A scene on a top-level stage of its own: the stage is made with the scene,
// filled by it, and goes with it.
#include "orv/scene.h"

#include "orv/role.h"
#include "orv/stage.h"

namespace {

// The stage's window was closed: the scene's callback hears it.
void quitCall(OrvView*, void* data) {
    OrvTopScene* scene = (OrvTopScene*)data;
    if (scene->quitCallback) scene->quitCallback->activate(scene);
}

Orv2dRect atOrigin(const Orv2dRect& rect) {
    return Orv2dRect(0, 0, rect.w, rect.h);
}

}  // namespace

OrvTopScene::OrvTopScene(OrvDirector* director, const Orv2dRect& placement, const char* title,
                         unsigned long flag)
    : OrvScene(director, atOrigin(placement), 1, nullptr), stage(nullptr), quitCallback(nullptr) {
    stage = new OrvStage(director, placement, title, 0, flag);
    setDefaultAttachments(0);
    stage->append(this, 0);
}

OrvTopScene::OrvTopScene(OrvDirector* director, void* window, const Orv2dRect& placement,
                         unsigned long flag)
    : OrvScene(director, atOrigin(placement), 1, nullptr), stage(nullptr), quitCallback(nullptr) {
    stage = new OrvStage(director, window, placement, flag);
    setDefaultAttachments(0);
    stage->append(this, 0);
}

OrvTopScene::OrvTopScene(OrvDirector* director, void* window)
    : OrvScene(director, Orv2dRect(0, 0, 100, 100), 1, nullptr), stage(nullptr),
      quitCallback(nullptr) {
    stage = new OrvStage(director, window);
    setDefaultAttachments(0);
    // Scaled about its own origin so that the frame fills the window it was given.
    Orv2dRect box = bbox2d(nullptr);
    float sx = (float)stage->width / (float)box.w, sy = (float)stage->height / (float)box.h;
    apply2d(Orv2dMatrix(sx, 0, 0, sy, (1 - sx) * (float)box.x, (1 - sy) * (float)box.y));
    stage->append(this, 0);
}

OrvTopScene::OrvTopScene(const OrvScene& source)
    : OrvScene(source), stage(nullptr), quitCallback(nullptr) {
    Orv2dRect box = bbox2d(nullptr);
    apply2d(Orv2dMatrix(Orv2dPoint(-box.x, -box.y)));
    stage = new OrvStage(makeUp->director, Orv2dRect(0, 0, box.w, box.h), "NoName", 0, 1);
    setDefaultAttachments(0);
    stage->append(this, 0);
}

OrvTopScene::~OrvTopScene() {
    endRendering();
    OrvTheater* theater = getTheater();
    if (theater) theater->disconnect(this);
    OrvRelease(quitCallback);
    quitCallback = nullptr;
    OrvStage* own = stage;
    stage = nullptr;
    if (!own) return;
    if (getStage() == own) own->remove(this, 0);
    // While the stage goes away it is deleting this scene: it goes on alone.
    if (!own->destroying) delete own;
}

void OrvTopScene::show() {
    if (stage) stage->show();
}

void OrvTopScene::hide() {
    if (stage) stage->hide();
}

void OrvTopScene::onQuit(OrvCallback* callback) {
    if (!stage || callback == quitCallback) return;
    OrvCount(callback);
    OrvRelease(quitCallback);
    quitCallback = callback;
    stage->removeQuit(quitCall);
    if (callback) stage->onQuit(quitCall, this);
}

void OrvTopScene::onExit(OrvExitCallback* callback) {
    if (stage) stage->onExit(callback);
}
