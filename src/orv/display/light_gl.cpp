// Lights and the environment on GL: each light becomes GL_LIGHT0 plus its
// index, and the environment sets the light model.
#include "orv/director.h"
#include "orv/light.h"
#include "orv/makeup.h"
#include "orv/scene.h"

#include <GL/gl.h>

// GL's own limit on lights is the library's.
static const unsigned short maxLights = 8;

unsigned long OrvLight::render3d(const unsigned short& index, const OrvScene* scene) {
    if (index >= maxLights)
        return OrvError("OrvLight::render3d : Number of lights can't exceed %d \n", maxLights);
    GLenum light = GL_LIGHT0 + index;
    // The intensity travels as the alpha of the light's colour.
    OrvRGB c = color();
    GLfloat colour[4] = {c.red, c.green, c.blue, intensity()};
    glLightfv(light, GL_DIFFUSE, colour);
    glLightfv(light, GL_SPECULAR, colour);
    // A scene without an environment of its own uses the director's.
    const OrvEnvironment* environment = nullptr;
    if (scene) environment = scene->environment_;
    if (!environment && scene && scene->makeUp && scene->makeUp->director)
        environment = scene->makeUp->director->defaultEnvironment;
    if (environment) {
        glLightf(light, GL_CONSTANT_ATTENUATION, environment->constantAttenuation);
        glLightf(light, GL_LINEAR_ATTENUATION, environment->linearAttenuation);
        glLightf(light, GL_QUADRATIC_ATTENUATION, environment->quadraticAttenuation);
    }
    // Sent for every light: a plain light's values make it shine without a cone.
    Orv3dVector d = direction();
    GLfloat spot[3] = {d.x, d.y, d.z};
    glLightfv(light, GL_SPOT_DIRECTION, spot);
    glLightf(light, GL_SPOT_CUTOFF, (GLfloat)cutOff());
    glLightf(light, GL_SPOT_EXPONENT, concentration());
    glEnable(light);
    return 1;
}

// A light at a place: w 1.
static void placeAt(unsigned short index, const Orv3dPoint& p) {
    GLfloat position[4] = {p.x, p.y, p.z, 1};
    glLightfv(GL_LIGHT0 + index, GL_POSITION, position);
}

unsigned long OrvPointLight::render3d(const unsigned short& index, const OrvScene* scene) {
    if (!OrvLight::render3d(index, scene)) return 0;
    placeAt(index, position());
    return 1;
}

unsigned long OrvSpotLight::render3d(const unsigned short& index, const OrvScene* scene) {
    if (!OrvLight::render3d(index, scene)) return 0;
    placeAt(index, position());
    return 1;
}

unsigned long OrvDirectionalLight::render3d(const unsigned short& index, const OrvScene* scene) {
    if (!OrvLight::render3d(index, scene)) return 0;
    // A light at infinity in that direction: w 0.
    Orv3dVector d = direction();
    GLfloat position[4] = {d.x, d.y, d.z, 0};
    glLightfv(GL_LIGHT0 + index, GL_POSITION, position);
    return 1;
}

void OrvEnvironment::render3d(const OrvScene*) {
    GLfloat ambient[4] = {ambientColor.red, ambientColor.green, ambientColor.blue, intensity};
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, ambient);
    // The flag named `infinite` goes to GL as the local-viewer flag, as it is.
    glLightModeli(GL_LIGHT_MODEL_LOCAL_VIEWER, (GLint)infinite);
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, (GLint)backAndFront);
}
