// Cameras: orientation (world to view) and mapping (view to normalised
// device coordinates), the ways of setting them, the ray under a pixel and
// the camera's record in the text format. A camera that belongs to a scene
// tells it of every change, and the scene recomputes and redraws.
#include "orv/camera.h"

#include <cmath>
#include <cstring>

#include "orv/base.h"
#include "orv/scene.h"
#include "orv/stream.h"
#include "orv/theater.h"
#include "record_io.h"

static const double pi = 3.14159265358979323846;

double OrvCalculateAngle(const float& size, const float& distance) {
    return 2.0 * atan2(size / 2.0, (double)distance) * 57.295779513082323;
}

OrvCamera::OrvCamera()
    : perspective_(0), ratio_(1), position_(), lookAt_(), lookUp_(), viewport_(), nearDistance_(0),
      farDistance_(0), scene(nullptr), orientation_(), mapping_(), orientationChanged(0) {
    // Free: nothing to tell, so this runs the base reset alone.
    OrvCamera::defaultCamera();
}

OrvCamera::OrvCamera(const OrvCamera& source)
    : perspective_(source.perspective_), ratio_(source.ratio_), position_(source.position_),
      lookAt_(source.lookAt_), lookUp_(source.lookUp_), viewport_(source.viewport_),
      nearDistance_(source.nearDistance_), farDistance_(source.farDistance_), scene(source.scene),
      orientation_(source.orientation_), mapping_(source.mapping_),
      orientationChanged(source.orientationChanged) {}

OrvCamera::~OrvCamera() {}

void OrvCamera::defaultCamera() {
    // The two changes below would each redraw; one bracket makes them one frame.
    OrvTheater* theater = scene ? scene->getTheater() : nullptr;
    bool bracket = theater && !scene->isInvalidatingTheater();
    if (bracket) scene->beginDrawingTheater();
    ratio_ = 1;
    lookAt(Orv3dPoint(0, 0, 1), Orv3dPoint(0, 0, 0), Orv3dVector(0, 1, 0));
    orthographic(Orv3dRect(-1, -1, 2, 2), -10, 10);
    if (bracket) scene->flushDrawingTheater(theater, 1);
}

void OrvCamera::lookAt(const Orv3dPoint& eye, const Orv3dPoint& at, const Orv3dVector& up) {
    Orv3dVector n(at, eye);
    n.normalize();
    Orv3dVector u = up.cross(n);
    u.normalize();
    Orv3dVector v = n.cross(u);
    v.normalize();
    Orv3dMatrix translation;
    translation.translate(-eye.x, -eye.y, -eye.z);
    Orv3dMatrix rotation(u.x, u.y, u.z, 0, v.x, v.y, v.z, 0, n.x, n.y, n.z, 0, 0, 0, 0, 1);
    orientation_ = rotation * translation;
    orientationChanged = 1;
    if (scene) scene->updateSceneOrientation(this);
}

void OrvCamera::lookAt(const float& distance, const double& first, const double& second,
                       const double& third) {
    orientation_.rotateZ(-first);
    orientation_.rotateX(-second, 1);
    orientation_.rotateZ(-third, 1);
    orientation_.translate(0, 0, -distance, 1);
    orientationChanged = 1;
    if (scene) scene->updateSceneOrientation(this);
}

// The box that the camera frames: the theater's contents, or the cube of side
// 2 about the origin when there is nothing to look at.
static Orv3dVolume framedVolume(const OrvScene* scene) {
    OrvTheater* theater = scene ? scene->getTheater() : nullptr;
    if (theater) return theater->contentsBBox(0);
    return Orv3dVolume(-1, -1, -1, 2, 2, 2);
}

unsigned long OrvCamera::lookAt(OrvPosition position, const float margin) {
    Orv3dVolume box = framedVolume(scene);
    Orv3dPoint c = box.center();
    Orv3dPoint eye;
    Orv3dVector up(0, 1, 0);
    switch (position) {
        case OrvFront:
            eye = Orv3dPoint(c.x, c.y, box.z + box.d + margin);
            break;
        case OrvBack:
            eye = Orv3dPoint(c.x, c.y, box.z - margin);
            break;
        case OrvTop:
            eye = Orv3dPoint(c.x, box.y + box.h + margin, c.z);
            up = Orv3dVector(0, 0, 1);
            break;
        case OrvBottom:
            eye = Orv3dPoint(c.x, box.y - margin, c.z);
            up = Orv3dVector(0, 0, 1);
            break;
        case OrvLeft:
            eye = Orv3dPoint(box.x - margin, c.y, c.z);
            break;
        case OrvRight:
            eye = Orv3dPoint(box.x + box.w + margin, c.y, c.z);
            break;
        default:
            return OrvError("OrvCamera::lookAt : Bad position argument.\n");
    }
    lookAt(eye, c, up);
    return 1;
}

void OrvCamera::orientation(const Orv3dMatrix& matrix) {
    orientation_ = matrix;
    orientationChanged = 1;
    if (scene) scene->updateSceneOrientation(this);
}

unsigned long OrvCamera::perspective(const double& fovy, const float& aspect, const float& near,
                                     const float& far) {
    if (fovy < 0.0 || fovy > 180.0)
        return OrvError("OrvCamera::perspective : Fovy value outbounds [0.0, 180.0]\n");
    float top = (float)(tan(fovy * pi / 360.0) * near);
    return perspective(Orv3dRect(-top * aspect, -top, 2 * top * aspect, 2 * top), near, far);
}

// The checks that both projections share; 0 after the message.
static unsigned long checkVolume(const char* name, const Orv3dRect& rect, float near, float far) {
    if (fabs(rect.w) < 1e-6) return OrvError("OrvCamera::%s : Rectangle width equals 0.\n", name);
    if (fabs(rect.h) < 1e-6) return OrvError("OrvCamera::%s : Rectangle height equals 0.\n", name);
    if (fabs(far - near) < 1e-6) return OrvError("OrvCamera::%s : Near equals far.\n", name);
    return 1;
}

unsigned long OrvCamera::perspective(const Orv3dRect& rect, const float& near, const float& far) {
    if (near <= 0 || far <= 0)
        return OrvError("OrvCamera::perspective: Near and far must be positive (>).\n");
    if (!checkVolume("perspective", rect, near, far)) return 0;
    nearDistance_ = near;
    farDistance_ = far;
    viewport_ = rect;
    perspective_ = 1;
    float l = rect.x, r = rect.x + rect.w, b = rect.y, t = rect.y + rect.h;
    float n = near, f = far;
    mapping_ = Orv3dMatrix(2 * n / (r - l), 0, (r + l) / (r - l), 0,  //
                           0, 2 * n / (t - b), (t + b) / (t - b), 0,  //
                           0, 0, -(f + n) / (f - n), -2 * f * n / (f - n), 0, 0, -1, 0);
    if (scene) scene->updateSceneMapping(this);
    return 1;
}

unsigned long OrvCamera::orthographic(const Orv3dRect& rect, const float near, const float far) {
    if (!checkVolume("orthographic", rect, near, far)) return 0;
    nearDistance_ = near;
    farDistance_ = far;
    viewport_ = rect;
    perspective_ = 0;
    float l = rect.x, r = rect.x + rect.w, b = rect.y, t = rect.y + rect.h;
    float n = near, f = far;
    mapping_ = Orv3dMatrix(2 / (r - l), 0, 0, -(r + l) / (r - l),  //
                           0, 2 / (t - b), 0, -(t + b) / (t - b),  //
                           0, 0, -2 / (f - n), -(f + n) / (f - n), 0, 0, 0, 1);
    if (scene) scene->updateSceneMapping(this);
    return 1;
}

void OrvCamera::mapping(const Orv3dMatrix& matrix) {
    mapping_ = matrix;
    if (scene) scene->updateSceneMapping(this);
}

void OrvCamera::viewAll(const float margin) {
    if (scene && !scene->getTheater()) return;
    Orv3dVolume box = framedVolume(scene);
    Orv3dPoint c = box.center();
    float r = Orv3dVector(Orv3dPoint(box.x, box.y, box.z), c).length();
    Orv3dPoint eye(c.x, c.y, c.z + r + margin);
    lookAt(eye, c, Orv3dVector(0, 1, 0));
    if (!perspective_)
        orthographic(Orv3dRect(-r, -r, 2 * r, 2 * r), margin, margin + 2 * r);
    else
        // The angle is taken from the eye's z, not from its distance to the
        // centre, and the near plane lies at the margin, as files and callers expect.
        perspective(OrvCalculateAngle(box.h, eye.z), 1.0f, margin, eye.z + margin + 2 * r);
}

void OrvCamera::keepRatio(unsigned long on) {
    if (on == ratio_) return;
    ratio_ = on;
    if (scene) scene->updateSceneRatio(this);
}

void OrvCamera::zoom(const float& factor) {
    float w = viewport_.w * factor, h = viewport_.h * factor;
    if (fabs(w) < 1e-6 || fabs(h) < 1e-6) return;
    float cx = viewport_.x + viewport_.w / 2, cy = viewport_.y + viewport_.h / 2;
    Orv3dRect rect(cx - w / 2, cy - h / 2, w, h);
    if (perspective_)
        perspective(rect, nearDistance_, farDistance_);
    else
        orthographic(rect, nearDistance_, farDistance_);
}

void OrvCamera::translate(const float& x, const float& y, const float& z) {
    Orv3dMatrix moved = orientation_;
    moved.translate(x, y, z, 1);
    orientation(moved);
}

void OrvCamera::decomposeOrientation() {
    if (!orientationChanged) return;
    const Orv3dMatrix& o = orientation_;
    lookUp_ = Orv3dVector(o(1, 0), o(1, 1), o(1, 2));
    // Adding 0 turns the negated zeros into plain ones, which print and save as "0".
    lookAt_ = Orv3dVector(-o(2, 0) + 0.0f, -o(2, 1) + 0.0f, -o(2, 2) + 0.0f);
    position_ = Orv3dPoint(o(0, 3), o(1, 3), o(2, 3));
    Orv3dMatrix rotation(o(0, 0), o(0, 1), o(0, 2), 0, o(1, 0), o(1, 1), o(1, 2), 0, o(2, 0),
                         o(2, 1), o(2, 2), 0, 0, 0, 0, 1);
    if (!rotation.inverse(position_))
        OrvError("## Camera orientation: singular matrix (can't be inversed).\n");
    position_ = Orv3dPoint(-position_.x + 0.0f, -position_.y + 0.0f, -position_.z + 0.0f);
    orientationChanged = 0;
}

// The getters bring the cached eye and axes up to date first: they are
// derived lazily, so reading them is logically const.
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
    if (!scene) {
        OrvError("OrvCamera::spawnRay: The camera must be connected to a scene.\n");
        return;
    }
    Orv3dPoint p((float)x, (float)y, 0);
    scene->viewportInverse.apply(p);
    float s = (p.x + 1) / 2, t = (p.y + 1) / 2;
    Orv3dPoint from;
    Orv3dVector towards, up;
    float width, height;
    unsigned long projective;
    if (!invariant) {
        from = position();
        towards = lookAt();
        up = lookUp();
        width = viewport_.w;
        height = viewport_.h;
        projective = perspective_;
    } else {
        // Invariant space has y downward, the other way from device coordinates.
        from = Orv3dPoint(0, 0, 0);
        towards = Orv3dVector(0, 0, -1);
        up = Orv3dVector(0, 1, 0);
        width = height = 2;
        projective = 0;
        t = 1 - t;
    }
    // The camera's right and its up, square to the view.
    Orv3dVector side = towards.cross(up);
    Orv3dVector up2 = side.cross(towards);
    float sx = width * (s - 0.5f) / side.length(), sy = height * (t - 0.5f) / up2.length();
    Orv3dVector offset(side.x * sx + up2.x * sy, side.y * sx + up2.y * sy,
                       side.z * sx + up2.z * sy);
    if (!projective) {
        origin = Orv3dPoint(from.x + offset.x, from.y + offset.y, from.z + offset.z);
        direction = towards;
        return;
    }
    // A point on the plane at distance 1 from the eye, with the near plane's
    // sizes: the pick tests use the same rule.
    float l = towards.length();
    Orv3dPoint c(from.x + towards.x / l, from.y + towards.y / l, from.z + towards.z / l);
    origin = from;
    direction =
        Orv3dVector(c.x + offset.x - from.x, c.y + offset.y - from.y, c.z + offset.z - from.z);
}

void OrvCamera::print() const {
    Orv3dPoint eye = position();
    Orv3dVector at = lookAt(), up = lookUp();
    OrvPrint("Camera : \n");
    OrvPrint("\t- %s\n", perspective_ ? "perspective" : "orthographic");
    OrvPrint("\t- ratio    : %s\n", ratio_ ? "yes" : "no");
    OrvPrint("\t- eye      : ");
    OrvPrint("<%f, %f, %f>\n", eye.x, eye.y, eye.z);
    OrvPrint("\t- lookat   : ");
    OrvPrint("<%f, %f, %f>\n", at.x, at.y, at.z);
    OrvPrint("\t- lookup   : ");
    OrvPrint("<%f, %f, %f>\n", up.x, up.y, up.z);
    OrvPrint("\t- viewport : ");
    OrvPrint("<%f, %f, %f, %f>\n", viewport_.x, viewport_.y, viewport_.w, viewport_.h);
    OrvPrint("\t- Near     : %f\n", nearDistance_);
    OrvPrint("\t- Far      : %f\n", farDistance_);
}

// ---------------------------------------------------------------------------
// The record: "camera {", eight keys, "}"
// ---------------------------------------------------------------------------

OrvOStream& operator<<(OrvOStream& out, const OrvCamera& camera) {
    out.stream << out.indent() << "camera {\n";
    out.indentation++;
    out.key("perspective") << (camera.isPerspective() ? "yes" : "no") << '\n';
    out.key("ratio") << (camera.keepRatio() ? "yes" : "no") << '\n';
    out.key("position") << camera.position() << '\n';
    out.key("lookAt") << camera.lookAt() << '\n';
    out.key("lookUp") << camera.lookUp() << '\n';
    out.key("viewport") << camera.viewport() << '\n';
    out.key("nearDistance") << camera.nearDistance() << '\n';
    out.key("farDistance") << camera.farDistance() << '\n';
    out.indentation--;
    out.stream << out.indent() << "}\n";
    return out;
}

OrvIStream& operator>>(OrvIStream& in, OrvCamera& camera) {
    char word[1024];
    in.nextItem();
    in.word(word);
    if (strcmp(word, "camera")) {
        in.fault("OrvIStream : Not a camera object.\n");
        return in;
    }
    if (!_OrvReadRecordBegin_(in, "OrvIStream : Camera, bad begin separator.\n")) return in;
    unsigned long perspective = 0, ratio = 0;
    Orv3dPoint position;
    Orv3dVector lookAt, lookUp;
    Orv3dRect viewport;
    float nearDistance = 0, farDistance = 0;
    if (!_OrvReadRecordFlag_(in, "perspective", perspective) ||
        !_OrvReadRecordFlag_(in, "ratio", ratio) ||
        !_OrvReadRecordValue_(in, "position", position) ||
        !_OrvReadRecordValue_(in, "lookAt", lookAt) ||
        !_OrvReadRecordValue_(in, "lookUp", lookUp) ||
        !_OrvReadRecordValue_(in, "viewport", viewport) ||
        !_OrvReadRecordValue_(in, "nearDistance", nearDistance) ||
        !_OrvReadRecordValue_(in, "farDistance", farDistance) ||
        !_OrvReadRecordEnd_(in, "## OrvIStream: Bad end separator (OrvCamera).\n"))
        return in;
    Orv3dPoint at(position.x + lookAt.x, position.y + lookAt.y, position.z + lookAt.z);
    camera.lookAt(position, at, lookUp);
    if (perspective)
        camera.perspective(viewport, nearDistance, farDistance);
    else
        camera.orthographic(viewport, nearDistance, farDistance);
    camera.keepRatio(ratio);
    return in;
}
