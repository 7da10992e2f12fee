// The director's 3D defaults: the environments it makes and the default
// colours of materials.
#include "orv/director.h"
#include "orv/light.h"

OrvEnvironment* OrvDirector::environment(const OrvRGB& ambient, float intensity, float constant,
                                         float linear, float quadratic, unsigned long infinite,
                                         unsigned long backAndFront) {
    // Never shared by content: each call makes one, which the list keeps
    // until its last holder lets go or the director closes.
    OrvEnvironment* made = new OrvEnvironment(this, ambient, intensity, constant, linear, quadratic,
                                              infinite, backAndFront);
    if (environments) environments->append(made);
    return made;
}

const OrvRGB& OrvDirector::defaultAmbientColor() const {
    static const OrvRGB ambient(0.2f, 0.2f, 0.2f);
    return ambient;
}

const OrvRGB& OrvDirector::defaultDiffuseColor() const {
    static const OrvRGB diffuse(0.8f, 0.8f, 0.8f);
    return diffuse;
}

const OrvRGB& OrvDirector::defaultSpecularColor() const {
    static const OrvRGB specular(0, 0, 0);
    return specular;
}

const OrvRGB& OrvDirector::defaultEmissiveColor() const {
    static const OrvRGB emissive(0, 0, 0);
    return emissive;
}
