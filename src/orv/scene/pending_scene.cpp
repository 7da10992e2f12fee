// Placeholder bodies of what the scene and theater need from the other pieces
// of this work (camera, drawing operations, stacks, the 3D half of the actor,
// the scene's saved form), so that the scene links and can be tried alone.
// The file goes at integration.
#include <GL/gl.h>

#include <cmath>

#include "orv/actor.h"
#include "orv/camera.h"
#include "orv/light.h"
#include "orv/scene.h"
#include "orv/stream.h"

// ----- the 3D half of the actor, reduced to what a frame needs ---------------

void OrvActor::render3d(const OrvScene* scene) {
    drawImmediate(scene);
}

void OrvActor::drawImmediate(const OrvScene* scene) {
    const Orv3dMatrix* m = to3dWorld();
    glPushMatrix();
    if (m) {
        float columns[16];
        m->transpose(columns);
        glMultMatrixf(columns);
    }
    draw3d(scene);
    glPopMatrix();
}

void OrvActor::bboxToScene(Orv2dRegion& region, const Orv3dMatrix* matrix,
                           unsigned long grow) const {
    Orv3dPoint corners[8];
    bbox3d(1).getVertex(corners, Orv3dMatrix());
    float x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    for (int i = 0; i < 8; i++) {
        Orv4dPoint p = corners[i].to4dPoint();
        if (matrix) matrix->apply(p);
        if (p.w <= 1e-6f) {
            region.extendBy(Orv2dRect(-100000, -100000, 200000, 200000));
            return;
        }
        float x = p.x / p.w, y = p.y / p.w;
        if (i == 0 || x < x0) x0 = x;
        if (i == 0 || x > x1) x1 = x;
        if (i == 0 || y < y0) y0 = y;
        if (i == 0 || y > y1) y1 = y;
    }
    int32_t g = grow ? 2 : 0;
    int32_t l = (int32_t)std::floor(x0) - g, t = (int32_t)std::floor(y0) - g;
    int32_t r = (int32_t)std::ceil(x1) + g, b = (int32_t)std::ceil(y1) + g;
    region.extendBy(Orv2dRect(l, t, (uint32_t)(r - l), (uint32_t)(b - t)));
}

// ----- stacks and switches ------------------------------------------------------

static unsigned long forceImmediate = 0;
void OrvForceImmediateMode(unsigned long on) {
    forceImmediate = on;
}
unsigned long OrvForceImmediateMode() {
    return forceImmediate;
}
unsigned long OrvAllowSwapForGhost = 1;
unsigned long OrvPushProjection() {
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glMatrixMode(GL_MODELVIEW);
    return 1;
}
unsigned long OrvPopProjection() {
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    return 1;
}
Orv3dMatrix OrvScene::_invariantProjection(1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);

// ----- drawing operations -------------------------------------------------------

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
unsigned long OrvScene::renderFace(OrvCullingMode, const Orv3dPoint*, const Orv4dPoint*,
                                   const unsigned*, unsigned) const {
    return 1;
}
void OrvScene::restoreCurrentMaterial() const {}
void OrvScene::restoreCurrentEmissiveMaterial() const {}

// ----- the saved form -------------------------------------------------------------

ORV_DEFINE_CLASS_INIT(OrvScene, "OrvFrame", OrvScene::read)
OrvScene::OrvScene(OrvIStream& in) : OrvFrame(in) {
    initScene();
    OrvCamera camera;
    add(camera);
}
void OrvScene::write(OrvOStream& out) const {
    OrvFrame::write(out);
}
OrvActor* OrvScene::read(OrvIStream& in) {
    return new OrvScene(in);
}

// ----- the camera: enough to place and project ----------------------------------------

OrvCamera::OrvCamera()
    : perspective_(0), ratio_(1), nearDistance_(0), farDistance_(0), scene(nullptr),
      orientationChanged(0) {
    defaultCamera();
}

OrvCamera::OrvCamera(const OrvCamera& s)
    : perspective_(s.perspective_), ratio_(s.ratio_), position_(s.position_), lookAt_(s.lookAt_),
      lookUp_(s.lookUp_), viewport_(s.viewport_), nearDistance_(s.nearDistance_),
      farDistance_(s.farDistance_), scene(s.scene), orientation_(s.orientation_),
      mapping_(s.mapping_), orientationChanged(s.orientationChanged) {}

OrvCamera::~OrvCamera() {}

void OrvCamera::defaultCamera() {
    ratio_ = 1;
    lookAt(Orv3dPoint(0, 0, 1), Orv3dPoint(0, 0, 0), Orv3dVector(0, 1, 0));
    orthographic(Orv3dRect(-1, -1, 2, 2), -10, 10);
}

void OrvCamera::lookAt(const Orv3dPoint& eye, const Orv3dPoint& at, const Orv3dVector& up) {
    Orv3dVector n(at, eye);
    n.normalize();
    Orv3dVector u = up.cross(n);
    u.normalize();
    Orv3dVector v = n.cross(u);
    v.normalize();
    Orv3dMatrix r(u.x, u.y, u.z, 0, v.x, v.y, v.z, 0, n.x, n.y, n.z, 0, 0, 0, 0, 1);
    Orv3dMatrix t;
    t.translate(-eye.x, -eye.y, -eye.z);
    orientation_ = r * t;
    orientationChanged = 1;
    if (scene) scene->updateSceneOrientation(this);
}

void OrvCamera::lookAt(const float&, const double&, const double&, const double&) {}
unsigned long OrvCamera::lookAt(OrvPosition, const float) {
    return 0;
}

void OrvCamera::orientation(const Orv3dMatrix& m) {
    orientation_ = m;
    orientationChanged = 1;
    if (scene) scene->updateSceneOrientation(this);
}

unsigned long OrvCamera::perspective(const double& fovy, const float& aspect, const float& near,
                                     const float& far) {
    float top = (float)(std::tan(fovy * M_PI / 360) * near);
    return perspective(Orv3dRect(-top * aspect, -top, 2 * top * aspect, 2 * top), near, far);
}

unsigned long OrvCamera::perspective(const Orv3dRect& rect, const float& n, const float& f) {
    float l = rect.x, r = rect.x + rect.w, b = rect.y, t = rect.y + rect.h;
    viewport_ = rect;
    nearDistance_ = n;
    farDistance_ = f;
    perspective_ = 1;
    mapping_ =
        Orv3dMatrix(2 * n / (r - l), 0, (r + l) / (r - l), 0, 0, 2 * n / (t - b), (t + b) / (t - b),
                    0, 0, 0, -(f + n) / (f - n), -2 * f * n / (f - n), 0, 0, -1, 0);
    if (scene) scene->updateSceneMapping(this);
    return 1;
}

unsigned long OrvCamera::orthographic(const Orv3dRect& rect, const float n, const float f) {
    float l = rect.x, r = rect.x + rect.w, b = rect.y, t = rect.y + rect.h;
    viewport_ = rect;
    nearDistance_ = n;
    farDistance_ = f;
    perspective_ = 0;
    mapping_ = Orv3dMatrix(2 / (r - l), 0, 0, -(r + l) / (r - l), 0, 2 / (t - b), 0,
                           -(t + b) / (t - b), 0, 0, -2 / (f - n), -(f + n) / (f - n), 0, 0, 0, 1);
    if (scene) scene->updateSceneMapping(this);
    return 1;
}

void OrvCamera::mapping(const Orv3dMatrix& m) {
    mapping_ = m;
    if (scene) scene->updateSceneMapping(this);
}
void OrvCamera::viewAll(const float) {}
void OrvCamera::keepRatio(unsigned long on) {
    on = on ? 1 : 0;
    if (on == ratio_) return;
    ratio_ = on;
    if (scene) scene->updateSceneRatio(this);
}
void OrvCamera::zoom(const float&) {}
void OrvCamera::translate(const float&, const float&, const float&) {}

void OrvCamera::decomposeOrientation() {
    if (!orientationChanged) return;
    const Orv3dMatrix& o = orientation_;
    lookUp_ = Orv3dVector(o(1, 0), o(1, 1), o(1, 2));
    lookAt_ = Orv3dVector(-o(2, 0), -o(2, 1), -o(2, 2));
    Orv3dMatrix r(o(0, 0), o(0, 1), o(0, 2), 0, o(1, 0), o(1, 1), o(1, 2), 0, o(2, 0), o(2, 1),
                  o(2, 2), 0, 0, 0, 0, 1);
    Orv3dMatrix inverse;
    Orv3dPoint p(o(0, 3), o(1, 3), o(2, 3));
    if (r.inverse(inverse)) inverse.apply(p);
    position_ = Orv3dPoint(-p.x, -p.y, -p.z);
    orientationChanged = 0;
}

Orv3dPoint OrvCamera::position() const {
    const_cast<OrvCamera*>(this)->decomposeOrientation();
    return position_;
}
Orv3dVector OrvCamera::lookAt() const {
    const_cast<OrvCamera*>(this)->decomposeOrientation();
    return lookAt_;
}
Orv3dVector OrvCamera::lookUp() const {
    const_cast<OrvCamera*>(this)->decomposeOrientation();
    return lookUp_;
}

void OrvCamera::spawnRay(long x, long y, Orv3dPoint& origin, Orv3dVector& direction,
                         unsigned long invariant) const {
    if (!scene) return;
    Orv3dPoint p((float)x, (float)y, 0);
    scene->viewportInverse.apply(p);
    float s = (p.x + 1) / 2, t = (p.y + 1) / 2;
    Orv3dVector up(0, 1, 0);
    float w = 2, h = 2;
    unsigned long persp = 0;
    if (invariant) {
        origin = Orv3dPoint();
        direction = Orv3dVector(0, 0, -1);
        t = 1 - t;
    } else {
        origin = position();
        direction = lookAt();
        up = lookUp();
        w = viewport_.w;
        h = viewport_.h;
        persp = perspective_;
    }
    Orv3dVector side = direction.cross(up), up2 = side.cross(direction);
    float ks = w * (s - 0.5f) / side.length(), ku = h * (t - 0.5f) / up2.length();
    Orv3dVector offset(side.x * ks + up2.x * ku, side.y * ks + up2.y * ku,
                       side.z * ks + up2.z * ku);
    if (!persp) {
        origin = Orv3dPoint(origin.x + offset.x, origin.y + offset.y, origin.z + offset.z);
        return;
    }
    float l = direction.length();
    direction = Orv3dVector(direction.x / l + offset.x, direction.y / l + offset.y,
                            direction.z / l + offset.z);
}

void OrvCamera::print() const {}

// ----- lights and the environment: their class records, for checked builds ------------------

OrvLight::OrvLight(const OrvRGB& c, float i) : intensity_(i), color_(c), fixed_(1) {}
OrvLight::OrvLight(const OrvLight& s)
    : intensity_(s.intensity_), color_(s.color_), fixed_(s.fixed_) {}
OrvLight::~OrvLight() {}
OrvRGB OrvLight::color() const {
    return color_;
}
float OrvLight::intensity() const {
    return intensity_;
}
Orv3dPoint OrvLight::position() const {
    return Orv3dPoint(0, 0, 1);
}
Orv3dVector OrvLight::direction() const {
    return Orv3dVector(0, 0, -1);
}
float OrvLight::concentration() const {
    return 0;
}
double OrvLight::cutOff() const {
    return 180;
}
unsigned long OrvLight::fixed() const {
    return fixed_;
}
void OrvLight::color(const OrvRGB& c) {
    color_ = c;
}
void OrvLight::intensity(const float& i) {
    intensity_ = i;
}
void OrvLight::position(const Orv3dPoint&) {}
void OrvLight::direction(const Orv3dVector&) {}
void OrvLight::concentration(const float&) {}
void OrvLight::cutOff(const double&) {}
void OrvLight::fixed(unsigned long on) {
    fixed_ = on;
}
const char* OrvLight::className() const {
    return "Light";
}
OrvLight* OrvLight::copy() const {
    return new OrvLight(*this);
}
unsigned long OrvLight::render3d(const unsigned short&, const OrvScene*) {
    return 1;
}
OrvEnvironment::~OrvEnvironment() {}
unsigned long OrvEnvironment::internal(const OrvCanvas*) const {
    return 0;
}
void OrvEnvironment::render3d(const OrvScene*) {}
