// The 3D half of every actor that needs no GL: its box projected into a
// scene's window, the default hit tests, and the defaults of the matrix
// members, which a plain actor does not have.
#include <cmath>

#include "orv/actor.h"
#include "orv/director.h"
#include "orv/scene.h"
#include "orv/theater.h"

const Orv3dMatrix* OrvActor::to3dWorld() const {
    return nullptr;
}
void OrvActor::to3dWorld(const Orv3dMatrix*) {}
void OrvActor::rotateX(const double&, unsigned long) {}
void OrvActor::rotateY(const double&, unsigned long) {}
void OrvActor::rotateZ(const double&, unsigned long) {}
void OrvActor::rotate(const Orv3dPoint&, const Orv3dPoint&, const double&, unsigned long) {}
void OrvActor::translate(const float&, const float&, const float&, unsigned long) {}
void OrvActor::scale(const float&, const float&, const float&, unsigned long) {}
void OrvActor::build3dMatrix(const Orv3dPoint&, const Orv3dVector&, const double&, const double&,
                             const double&, const Orv3dVector&, unsigned long) {}
void OrvActor::draw3d(const OrvScene*) const {}
void OrvActor::draggerRegions3d(Orv2dRegion&, const Orv3dMatrix*) const {}

// A plain actor has no volume: an empty one at the origin.
Orv3dVolume OrvActor::bbox3d(unsigned long) const {
    return Orv3dVolume();
}

// The window of the scene whose matrix this is: the scenes of the actor's
// theater, and the one being drawn. A matrix of no known scene (a copy, or
// an actor outside any theater) gets the largest window X can make.
static Orv2dRect windowOf(const OrvActor* actor, const Orv3dMatrix* matrix) {
    const OrvScene* found = nullptr;
    OrvTheater* theater = actor->getTheater();
    for (OrvLink* l = theater ? theater->scenes.first : nullptr; l && !found; l = l->next) {
        const OrvScene* scene = (const OrvScene*)l->value;
        if (&scene->worldToScene == matrix || &scene->invariantToScene == matrix) found = scene;
    }
    const OrvScene* current = actor->makeUp ? actor->makeUp->director->currentScene : nullptr;
    if (!found && current &&
        (&current->worldToScene == matrix || &current->invariantToScene == matrix))
        found = current;
    Orv2dRect box = found ? found->bboxVisible() : Orv2dRect();
    if (box.w == 0 || box.h == 0) return Orv2dRect(0, 0, 32767, 32767);
    return Orv2dRect(0, 0, box.w, box.h);
}

// Pixel coordinates far beyond any window are held where an int holds them.
static int32_t pixelFloor(double v) {
    const double limit = 1 << 30;
    if (!(v > -limit)) return -(1 << 30);
    if (v > limit) return 1 << 30;
    return (int32_t)std::floor(v);
}

void OrvActor::bboxToScene(Orv2dRegion& region, const Orv3dMatrix* matrix,
                           unsigned long grow) const {
    Orv3dVolume v = bbox3d(1);
    const Orv3dPoint corners[8] = {Orv3dPoint(v.x, v.y, v.z),
                                   Orv3dPoint(v.x + v.w, v.y, v.z),
                                   Orv3dPoint(v.x, v.y + v.h, v.z),
                                   Orv3dPoint(v.x + v.w, v.y + v.h, v.z),
                                   Orv3dPoint(v.x, v.y, v.z + v.d),
                                   Orv3dPoint(v.x + v.w, v.y, v.z + v.d),
                                   Orv3dPoint(v.x, v.y + v.h, v.z + v.d),
                                   Orv3dPoint(v.x + v.w, v.y + v.h, v.z + v.d)};
    double minX = 0, minY = 0, maxX = 0, maxY = 0;
    for (int i = 0; i < 8; i++) {
        Orv4dPoint p(corners[i].x, corners[i].y, corners[i].z, 1);
        if (matrix) matrix->apply(p);
        // Behind the eye the projection folds over: nothing smaller than the
        // window is sure to hold what the actor covers.
        if (p.w <= 1e-6) {
            region.extendBy(windowOf(this, matrix));
            return;
        }
        double x = p.x / p.w, y = p.y / p.w;
        if (i == 0 || x < minX) minX = x;
        if (i == 0 || x > maxX) maxX = x;
        if (i == 0 || y < minY) minY = y;
        if (i == 0 || y > maxY) maxY = y;
    }
    // Every pixel that the projection touches; points are drawn 3 pixels
    // wide, so with grow their overhang is added on each side.
    int64_t x0 = pixelFloor(minX), y0 = pixelFloor(minY);
    int64_t x1 = (int64_t)pixelFloor(maxX) + 1, y1 = (int64_t)pixelFloor(maxY) + 1;
    if (grow == 1) {
        x0 -= 2;
        y0 -= 2;
        x1 += 2;
        y1 += 2;
    }
    region.extendBy(Orv2dRect((int32_t)x0, (int32_t)y0, (uint32_t)(x1 - x0), (uint32_t)(y1 - y0)));
}

// The default pick: anywhere in the projected box, through the matrix of the
// actor's space in that scene (none without a scene). A hit is recorded as a
// box hit at the box's centre.
unsigned long OrvActor::contains3d(const Orv2dPoint& point, const OrvScene* scene) const {
    const Orv3dMatrix* matrix = nullptr;
    if (scene) matrix = isInvariant() ? &scene->invariantToScene : &scene->worldToScene;
    Orv2dRegion region;
    bboxToScene(region, matrix, 1);
    if (!region.contains(point)) return 0;
    const OrvMakeUp* look = scene && scene->makeUp ? scene->makeUp : makeUp;
    OrvDirector* director = look ? look->director : nullptr;
    Orv3dPoint centre = bbox3d(1).center();
    if (director)
        director->setPick3dRecord(scene, OrvPickBox, const_cast<OrvActor*>(this), nullptr, &centre,
                                  -1, -1);
    return 1;
}

unsigned long OrvActor::intersects3d(const Orv2dRegion& region, const Orv3dMatrix* matrix) const {
    Orv2dRegion own;
    bboxToScene(own, matrix, 0);
    return region.intersects(own.bbox) ? 1 : 0;
}

unsigned long OrvActor::inside3d(const Orv2dRegion& region, const Orv3dMatrix* matrix) const {
    Orv2dRegion own;
    bboxToScene(own, matrix, 0);
    return region.contains(own.bbox) ? 1 : 0;
}
