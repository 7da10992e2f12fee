// Cameras: where a scene looks from and how it projects. A scene keeps its
// own copies; a camera that belongs to a scene tells it of every change.
#ifndef ORV_CAMERA_H
#define ORV_CAMERA_H

#include "orv/geometry.h"
#include "orv/canvas.h"

class OrvScene;

// Further positions for OrvCamera::lookAt(OrvPosition, margin) only.
enum {
    OrvFront = 128,
    OrvBack = 256
};

class OrvCamera {
public:
    unsigned long perspective_;  // 1 perspective, 0 orthographic
    unsigned long ratio_;        // keep the viewport square
    Orv3dPoint position_;        // the eye; stale while orientationChanged
    Orv3dVector lookAt_;         // direction of view
    Orv3dVector lookUp_;
    Orv3dRect viewport_;  // view volume on the near plane (or in view units)
    float nearDistance_, farDistance_;
    OrvScene* scene;           // not owned; null for a free camera
    Orv3dMatrix orientation_;  // world to view
    Orv3dMatrix mapping_;      // view to normalised device coordinates
    unsigned long orientationChanged;

    // A free camera in the state that defaultCamera() gives.
    OrvCamera();
    // Copies every field, the scene too: OrvScene::add then sets it.
    OrvCamera(const OrvCamera& source);
    OrvCamera& operator=(const OrvCamera&) = delete;
    virtual ~OrvCamera();

    // Resets to eye (0,0,1) looking at the origin, orthographic 2x2, near -10,
    // far 10, ratio kept; one redraw when the camera is in a scene.
    virtual void defaultCamera();
    virtual void lookAt(const Orv3dPoint& eye, const Orv3dPoint& at, const Orv3dVector& up);
    // Polar view: distance, then three angles in degrees.
    virtual void lookAt(const float& distance, const double& first, const double& second,
                        const double& third);
    // Looks at the theater's contents from a side (OrvLeft, OrvRight, OrvTop,
    // OrvBottom, OrvFront, OrvBack); 0 and a message for another position.
    virtual unsigned long lookAt(OrvPosition position, const float margin);
    virtual void orientation(const Orv3dMatrix& matrix);
    // 1 applied, 0 after the message (the camera keeps its state).
    virtual unsigned long perspective(const double& fovy, const float& aspect, const float& near,
                                      const float& far);
    virtual unsigned long perspective(const Orv3dRect& rect, const float& near, const float& far);
    virtual unsigned long orthographic(const Orv3dRect& rect, const float near, const float far);
    // Sets the projection matrix alone: perspective, viewport and distances stay.
    virtual void mapping(const Orv3dMatrix& matrix);
    // Frames the theater's contents with a margin.
    virtual void viewAll(const float margin);
    virtual void keepRatio(unsigned long on);
    // Scales the rectangle about its centre; a factor giving no size does nothing.
    virtual void zoom(const float& factor);
    // Moves the camera in its own frame.
    virtual void translate(const float& x, const float& y, const float& z);

    Orv3dPoint position() const;
    Orv3dVector lookAt() const;
    Orv3dVector lookUp() const;
    const Orv3dMatrix& orientation() const { return orientation_; }
    const Orv3dMatrix& mapping() const { return mapping_; }
    const Orv3dRect& viewport() const { return viewport_; }
    float nearDistance() const { return nearDistance_; }
    float farDistance() const { return farDistance_; }
    unsigned long isPerspective() const { return perspective_; }
    unsigned long keepRatio() const { return ratio_; }

    // Brings position, lookAt and lookUp up to date with the orientation.
    void decomposeOrientation();
    // The ray under a window pixel of the scene (invariant: in invariant space).
    void spawnRay(long x, long y, Orv3dPoint& origin, Orv3dVector& direction,
                  unsigned long invariant) const;
    void print() const;
};

// The full angle, in degrees, under which `size` is seen from `distance`.
double OrvCalculateAngle(const float& size, const float& distance);

class OrvOStream;
class OrvIStream;
OrvOStream& operator<<(OrvOStream& out, const OrvCamera& camera);
// Rebuilds the camera through lookAt, then perspective or orthographic, then the ratio.
OrvIStream& operator>>(OrvIStream& in, OrvCamera& camera);

#endif
