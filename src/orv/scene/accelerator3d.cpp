// The 3D half of the accelerators: what each default key does in the scene of
// a theater where it was pressed. The cameras' keys act on the scene's current
// camera, the editing keys on the theater's selections.
#include "orv/role.h"

#include "orv/actor.h"
#include "orv/camera.h"
#include "orv/director.h"
#include "orv/scene.h"
#include "orv/theater.h"
#include "../stage/accelerator_shared.h"

static OrvCamera* cameraOf(OrvScene* scene) {
    return scene ? scene->currentCamera() : nullptr;
}

int OrvZoomAccelerator::input3d(OrvTheater*, OrvScene* scene, const OrvEvent&) {
    // A factor of 2 halves the camera's rectangle: things show twice as large.
    OrvCamera* camera = cameraOf(scene);
    if (camera && factor != 0.0f) camera->zoom(1.0f / factor);
    return 1;
}

int OrvTranslateAccelerator::input3d(OrvTheater*, OrvScene* scene, const OrvEvent&) {
    OrvCamera* camera = cameraOf(scene);
    if (!camera) return 1;
    long div = (long)divisor;
    if (div == 0) div = 8;
    float dx = camera->viewport().w / (float)div, dy = camera->viewport().h / (float)div;
    switch (direction) {
        case OrvLeft:
            camera->translate(-dx, 0, 0);
            break;
        case OrvRight:
            camera->translate(dx, 0, 0);
            break;
        case OrvTop:
            camera->translate(0, dy, 0);
            break;
        case OrvBottom:
            camera->translate(0, -dy, 0);
            break;
        default:
            break;
    }
    return 1;
}

int OrvIdentityAccelerator::input3d(OrvTheater*, OrvScene* scene, const OrvEvent&) {
    OrvCamera* camera = cameraOf(scene);
    if (camera) camera->defaultCamera();
    return 1;
}

int OrvDuplicateAccelerator::input3d(OrvTheater* theater, OrvScene*, const OrvEvent&) {
    unsigned count = 0;
    OrvActor** selected = theater->selections(count);
    if (!selected) return 1;
    Orv3dVolume box = selected[0]->bbox3d(1);
    for (unsigned i = 1; i < count; i++) box.extendBy(selected[i]->bbox3d(1));
    float dx = box.w / 10, dy = box.h / 10;
    theater->beginDrawing();
    for (unsigned i = 0; i < count; i++) {
        OrvActor* copy = selected[i]->copy();
        if (!copy) continue;
        copy->translate(dx, dy, 0, 1);
        // Layer 0 whatever the source's layer, as on a stage.
        theater->append(copy, 0);
        copy->setSelected(1);
        selected[i]->setSelected(0);
    }
    theater->flushDrawing(1);
    delete[] selected;
    return 1;
}

int OrvFitTransformerAccelerator::input3d(OrvTheater* theater, OrvScene* scene, const OrvEvent&) {
    OrvCamera* camera = cameraOf(scene);
    if (!camera || !theater->cardinal()) return 1;
    // The camera frames the same box; a margin of half its radius keeps the near
    // plane of a perspective camera in front of the eye.
    Orv3dVolume box = theater->contentsBBox(0);
    float r = Orv3dVector(Orv3dPoint(box.x, box.y, box.z), box.center()).length();
    if (r > 0) camera->viewAll(r / 2);
    return 1;
}

int OrvRotateAccelerator::input3d(OrvTheater*, OrvScene* scene, const OrvEvent&) {
    OrvCamera* camera = cameraOf(scene);
    if (!camera) return 1;
    // A quarter turn in the view plane, written out so that it is exact: the
    // picture turns counter-clockwise, as the stage's does.
    const Orv3dMatrix turn(0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);
    Orv3dMatrix turned = turn * camera->orientation();
    camera->orientation(turned);
    return 1;
}

int OrvSelectAccelerator::input3d(OrvTheater* theater, OrvScene*, const OrvEvent&) {
    if (!select) {
        theater->deSelect();
        return 1;
    }
    unsigned count = 0;
    OrvActor** all = theater->objects(count);
    theater->beginDrawing();
    for (unsigned i = 0; i < count; i++)
        if (!all[i]->isSelected()) all[i]->setSelected(1);
    theater->flushDrawing(1);
    delete[] all;
    return 1;
}

int OrvDeleteAccelerator::input3d(OrvTheater* theater, OrvScene*, const OrvEvent&) {
    if (readOnly) return 1;
    unsigned count = 0;
    OrvActor** selected = theater->selections(count);
    if (!selected) return 1;
    theater->remove(selected, count, 1);
    for (unsigned i = 0; i < count; i++) delete selected[i];
    delete[] selected;
    return 1;
}

int OrvCutAccelerator::input3d(OrvTheater* theater, OrvScene*, const OrvEvent&) {
    if (!readOnly) theater->cut();
    return 1;
}

int OrvCopyAccelerator::input3d(OrvTheater* theater, OrvScene*, const OrvEvent&) {
    theater->copy();
    return 1;
}

// The world point under a window pixel, at the depth of the contents' centre
// (of the origin in an empty theater), so that a paste lands under the pointer.
static Orv3dPoint pointUnder(OrvTheater* theater, OrvScene* scene, long x, long y) {
    if (!scene) return Orv3dPoint(0, 0, 0);
    Orv3dPoint centre(0, 0, 0);
    if (theater->cardinal()) centre = theater->contentsBBox(1).center();
    Orv4dPoint p = centre.to4dPoint();
    scene->worldToScene.apply(p);
    float depth = p.w > 1e-6f ? p.z / p.w : 0.5f;
    Orv3dPoint where((float)x, (float)y, depth);
    scene->sceneToWorld.apply(where);
    return where;
}

int OrvPasteAccelerator::input3d(OrvTheater* theater, OrvScene* scene, const OrvEvent& event) {
    theater->paste(pointUnder(theater, scene, event.x, event.y), 0);
    return 1;
}

int OrvCountAccelerator::input3d(OrvTheater* theater, OrvScene*, const OrvEvent&) {
    OrvPrint("Found %d objects in theater ...\n", (int)theater->cardinal());
    OrvReportTables(theater->director);
    return 1;
}

int OrvUseDoubleBufferingAccelerator::input3d(OrvTheater* theater, OrvScene* scene,
                                              const OrvEvent&) {
    if (!scene) return 1;
    scene->useDoubleBuffer(scene->doubleBuffer ? 0 : 1);
    // The picture goes on in the buffer now drawn.
    theater->drawAll(scene, nullptr, 1);
    return 1;
}

int OrvLooakAtAccelerator::input3d(OrvTheater* theater, OrvScene* scene, const OrvEvent&) {
    OrvCamera* camera = cameraOf(scene);
    if (!camera) return 1;
    float m = margin;
    if (m == 0.0f) {
        Orv3dVolume box = theater->contentsBBox(0);
        m = box.w > box.h ? box.w : box.h;
        if (box.d > m) m = box.d;
    }
    camera->lookAt(position, m);
    return 1;
}

int OrvTrackBallAccelerator::input3d(OrvTheater* theater, OrvScene*, const OrvEvent&) {
    unsigned count = 0;
    OrvActor** selected = theater->selections(count);
    for (unsigned i = 0; i < count; i++)
        selected[i]->trackBallSelection(selected[i]->trackBallSelection() ? 0 : 1);
    delete[] selected;
    return 1;
}

int OrvSelectableAccelerator::input3d(OrvTheater* theater, OrvScene* scene, const OrvEvent&) {
    if (scene) theater->setSelectable(scene, theater->isSelectable(scene) ? 0 : 1);
    return 1;
}
