// Lights, which a scene owns, and the environment, a resource of the
// director; with their records in the text format. Their GL side is in
// display/light_gl.cpp.
#include "orv/light.h"

#include <cstring>

#include "orv/director.h"
#include "orv/stream.h"
#include "record_io.h"

// ---------------------------------------------------------------------------
// The plain light: colour and intensity; the place and the cone are those
// of a light at (0, 0, 1) shining down -z with no cone.
// ---------------------------------------------------------------------------

OrvLight::OrvLight(const OrvRGB& color, float intensity)
    : intensity_(intensity), color_(color), fixed_(1) {}

OrvLight::OrvLight(const OrvLight& source)
    : intensity_(source.intensity_), color_(source.color_), fixed_(source.fixed_) {}

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
void OrvLight::color(const OrvRGB& color) {
    color_ = color;
}
void OrvLight::intensity(const float& value) {
    intensity_ = value;
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

// ---------------------------------------------------------------------------
// Point, directional and spot lights
// ---------------------------------------------------------------------------

OrvPointLight::OrvPointLight(const OrvRGB& color, float intensity, const Orv3dPoint& where)
    : OrvLight(color, intensity), location(where) {}
OrvPointLight::OrvPointLight(const OrvPointLight& source)
    : OrvLight(source), location(source.location) {}
Orv3dPoint OrvPointLight::position() const {
    return location;
}
void OrvPointLight::position(const Orv3dPoint& point) {
    location = point;
}
const char* OrvPointLight::className() const {
    return "PointLight";
}
OrvLight* OrvPointLight::copy() const {
    return new OrvPointLight(*this);
}

OrvDirectionalLight::OrvDirectionalLight(const OrvRGB& color, float intensity,
                                         const Orv3dVector& towards)
    : OrvLight(color, intensity), lightDirection(towards) {}
OrvDirectionalLight::OrvDirectionalLight(const OrvDirectionalLight& source)
    : OrvLight(source), lightDirection(source.lightDirection) {}
Orv3dVector OrvDirectionalLight::direction() const {
    return lightDirection;
}
void OrvDirectionalLight::direction(const Orv3dVector& vector) {
    lightDirection = vector;
}
const char* OrvDirectionalLight::className() const {
    return "DirectionalLight";
}
OrvLight* OrvDirectionalLight::copy() const {
    return new OrvDirectionalLight(*this);
}

OrvSpotLight::OrvSpotLight(const OrvRGB& color, float intensity, const Orv3dPoint& where,
                           const Orv3dVector& towards, float rate, double angle)
    : OrvLight(color, intensity), location(where), lightDirection(towards), dropOffRate(rate),
      cutOffAngle(angle) {}
OrvSpotLight::OrvSpotLight(const OrvSpotLight& source)
    : OrvLight(source), location(source.location), lightDirection(source.lightDirection),
      dropOffRate(source.dropOffRate), cutOffAngle(source.cutOffAngle) {}
Orv3dPoint OrvSpotLight::position() const {
    return location;
}
Orv3dVector OrvSpotLight::direction() const {
    return lightDirection;
}
float OrvSpotLight::concentration() const {
    return dropOffRate;
}
double OrvSpotLight::cutOff() const {
    return cutOffAngle;
}
void OrvSpotLight::position(const Orv3dPoint& point) {
    location = point;
}
void OrvSpotLight::direction(const Orv3dVector& vector) {
    lightDirection = vector;
}
void OrvSpotLight::concentration(const float& value) {
    dropOffRate = value;
}
void OrvSpotLight::cutOff(const double& degrees) {
    cutOffAngle = degrees;
}
const char* OrvSpotLight::className() const {
    return "SpotLight";
}
OrvLight* OrvSpotLight::copy() const {
    return new OrvSpotLight(*this);
}

// ---------------------------------------------------------------------------
// The environment
// ---------------------------------------------------------------------------

OrvEnvironment::OrvEnvironment(OrvDirector* d, const OrvRGB& ambient, float value, float constant,
                               float linear, float quadratic, unsigned long localViewer,
                               unsigned long twoSided)
    : OrvResource(d), ambientColor(ambient), intensity(value), constantAttenuation(constant),
      linearAttenuation(linear), quadraticAttenuation(quadratic), infinite(localViewer),
      backAndFront(twoSided) {}

OrvEnvironment::~OrvEnvironment() {
    if (!director) return;
    if (director->environments) director->environments->remove(this);
    if (director->defaultEnvironment == this) director->defaultEnvironment = nullptr;
}

unsigned long OrvEnvironment::internal(const OrvCanvas*) const {
    return 0;
}

// ---------------------------------------------------------------------------
// Records
// ---------------------------------------------------------------------------

static const char* yesNo(unsigned long flag) {
    return flag ? "yes" : "no";
}

static void openRecord(OrvOStream& out, const char* key) {
    out.stream << out.indent() << key << " {\n";
    out.indentation++;
}

static void closeRecord(OrvOStream& out) {
    out.indentation--;
    out.stream << out.indent() << "}\n";
}

OrvOStream& operator<<(OrvOStream& out, const OrvLight* light) {
    if (!light) return out;
    // By the type's name: a light class of one's own is saved as a spot light,
    // the form that holds every value a light answers.
    const char* type = light->className();
    bool point = !strcmp(type, "PointLight"), directional = !strcmp(type, "DirectionalLight");
    openRecord(out, point ? "pointLight" : directional ? "directionalLight" : "spotLight");
    out.key("intensity") << light->intensity() << '\n';
    _OrvWriteRecordRGB_(out, "color", light->color());
    if (!directional) out.key("location") << light->position() << '\n';
    if (!point) out.key("direction") << light->direction() << '\n';
    if (!point && !directional) {
        out.key("dropOffRate") << light->concentration() << '\n';
        out.key("cutOffAngle") << light->cutOff() << '\n';
    }
    out.key("fixed") << yesNo(light->fixed()) << '\n';
    closeRecord(out);
    return out;
}

OrvIStream& operator>>(OrvIStream& in, OrvLight*& light) {
    enum {
        Point,
        Directional,
        Spot
    } kind;
    light = nullptr;
    char word[1024];
    in.nextItem();
    in.word(word);
    if (!strcmp(word, "pointLight"))
        kind = Point;
    else if (!strcmp(word, "directionalLight"))
        kind = Directional;
    else if (!strcmp(word, "spotLight"))
        kind = Spot;
    else {
        in.fault("OrvIStream: Definition error (Light %s)\n", word);
        return in;
    }
    static const char* const begins[] = {"OrvIStream : OrvPointLight, bad begin separator.\n",
                                         "OrvIStream: OrvDirectionalLight, bad begin separator.\n",
                                         "OrvIStream : OrvSpotLight, bad begin separator.\n"};
    static const char* const ends[] = {"OrvIStream : OrvPointLight, bad end separator.\n",
                                       "OrvIStream : OrvDirectionalLight, bad end separator.\n",
                                       "OrvIStream : OrvSpotLight, bad end separator.\n"};
    if (!_OrvReadRecordBegin_(in, begins[kind])) return in;
    float intensity = 0, dropOffRate = 0;
    double cutOffAngle = 0;
    OrvRGB color;
    Orv3dPoint location;
    Orv3dVector direction;
    unsigned long fixed = 1;
    if (!_OrvReadRecordValue_(in, "intensity", intensity) ||
        !_OrvReadRecordRGB_(in, "color", color))
        return in;
    if (kind != Directional && !_OrvReadRecordValue_(in, "location", location)) return in;
    if (kind != Point && !_OrvReadRecordValue_(in, "direction", direction)) return in;
    if (kind == Spot && (!_OrvReadRecordValue_(in, "dropOffRate", dropOffRate) ||
                         !_OrvReadRecordValue_(in, "cutOffAngle", cutOffAngle)))
        return in;
    if (!_OrvReadRecordFlag_(in, "fixed", fixed) || !_OrvReadRecordEnd_(in, ends[kind])) return in;
    if (kind == Point)
        light = new OrvPointLight(color, intensity, location);
    else if (kind == Directional)
        light = new OrvDirectionalLight(color, intensity, direction);
    else
        light = new OrvSpotLight(color, intensity, location, direction, dropOffRate, cutOffAngle);
    light->fixed(fixed);
    return in;
}

OrvOStream& operator<<(OrvOStream& out, const OrvEnvironment* environment) {
    if (!environment) {
        out.stream << out.indent() << "environment\tno\n";
        return out;
    }
    openRecord(out, "environment");
    _OrvWriteRecordRGB_(out, "ambientColor", environment->ambientColor);
    out.key("intensity") << environment->intensity << '\n';
    out.key("constantAttenuation") << environment->constantAttenuation << '\n';
    out.key("linearAttenuation") << environment->linearAttenuation << '\n';
    out.key("quadraticAttenuation") << environment->quadraticAttenuation << '\n';
    out.key("infinite") << yesNo(environment->infinite) << '\n';
    out.key("backAndFront") << yesNo(environment->backAndFront) << '\n';
    closeRecord(out);
    return out;
}

OrvIStream& operator>>(OrvIStream& in, OrvEnvironment*& environment) {
    environment = nullptr;
    char word[1024];
    in.nextItem();
    in.word(word);
    if (strcmp(word, "environment")) {
        in.fault("OrvIStream: Definition error (Environment %s)\n", word);
        return in;
    }
    in.nextItem();
    in.word(word);
    if (!strcmp(word, "no")) return in;
    if (strcmp(word, "{")) {
        in.fault("OrvIStream : OrvEnvironment, bad begin separator.\n");
        return in;
    }
    OrvRGB ambient;
    float intensity = 0, constant = 0, linear = 0, quadratic = 0;
    unsigned long infinite = 0, backAndFront = 0;
    if (!_OrvReadRecordRGB_(in, "ambientColor", ambient) ||
        !_OrvReadRecordValue_(in, "intensity", intensity) ||
        !_OrvReadRecordValue_(in, "constantAttenuation", constant) ||
        !_OrvReadRecordValue_(in, "linearAttenuation", linear) ||
        !_OrvReadRecordValue_(in, "quadraticAttenuation", quadratic) ||
        !_OrvReadRecordFlag_(in, "infinite", infinite) ||
        !_OrvReadRecordFlag_(in, "backAndFront", backAndFront) ||
        !_OrvReadRecordEnd_(in, "OrvIStream : OrvEnvironment, bad end separator.\n"))
        return in;
    if (in.director)
        environment = in.director->environment(ambient, intensity, constant, linear, quadratic,
                                               infinite, backAndFront);
    return in;
}
