// Lights, owned by a scene, and the environment (the global light model),
// a resource of the director.
#ifndef ORV_LIGHT_H
#define ORV_LIGHT_H

#include "orv/resource.h"
#include "orv/vertex.h"

class OrvScene;
class OrvOStream;
class OrvIStream;

class OrvLight {
public:
    float intensity_;  // goes to GL as the alpha of the light's colour
    OrvRGB color_;
    unsigned long fixed_;  // 1: stays with the viewer; 0: placed in the world

    OrvLight(const OrvRGB& color, float intensity);
    OrvLight(const OrvLight& source);
    OrvLight& operator=(const OrvLight&) = delete;
    virtual ~OrvLight();

    virtual OrvRGB color() const;
    virtual float intensity() const;
    // A plain light answers (0,0,1), (0,0,-1), 0 and 180, and ignores the setters.
    virtual Orv3dPoint position() const;
    virtual Orv3dVector direction() const;
    virtual float concentration() const;
    virtual double cutOff() const;
    virtual unsigned long fixed() const;
    virtual void color(const OrvRGB& color);
    virtual void intensity(const float& value);
    virtual void position(const Orv3dPoint& point);
    virtual void direction(const Orv3dVector& vector);
    virtual void concentration(const float& value);
    virtual void cutOff(const double& degrees);
    virtual void fixed(unsigned long on);
    // "Light", "PointLight", "DirectionalLight", "SpotLight".
    virtual const char* className() const;
    // A light of the same class.
    virtual OrvLight* copy() const;
    // Sends the light as GL_LIGHT0 + index; 0 after the message for index 8 or more.
    virtual unsigned long render3d(const unsigned short& index, const OrvScene* scene);
};

class OrvPointLight : public OrvLight {
public:
    Orv3dPoint location;

    OrvPointLight(const OrvRGB& color, float intensity, const Orv3dPoint& location);
    OrvPointLight(const OrvPointLight& source);
    Orv3dPoint position() const override;
    void position(const Orv3dPoint& point) override;
    const char* className() const override;
    OrvLight* copy() const override;
    unsigned long render3d(const unsigned short& index, const OrvScene* scene) override;
};

class OrvDirectionalLight : public OrvLight {
public:
    Orv3dVector lightDirection;

    OrvDirectionalLight(const OrvRGB& color, float intensity, const Orv3dVector& direction);
    OrvDirectionalLight(const OrvDirectionalLight& source);
    Orv3dVector direction() const override;
    void direction(const Orv3dVector& vector) override;
    const char* className() const override;
    OrvLight* copy() const override;
    unsigned long render3d(const unsigned short& index, const OrvScene* scene) override;
};

class OrvSpotLight : public OrvLight {
public:
    Orv3dPoint location;
    Orv3dVector lightDirection;
    float dropOffRate;
    double cutOffAngle;

    OrvSpotLight(const OrvRGB& color, float intensity, const Orv3dPoint& location,
                 const Orv3dVector& direction, float dropOffRate, double cutOffAngle);
    OrvSpotLight(const OrvSpotLight& source);
    Orv3dPoint position() const override;
    Orv3dVector direction() const override;
    float concentration() const override;
    double cutOff() const override;
    void position(const Orv3dPoint& point) override;
    void direction(const Orv3dVector& vector) override;
    void concentration(const float& value) override;
    void cutOff(const double& degrees) override;
    const char* className() const override;
    OrvLight* copy() const override;
    unsigned long render3d(const unsigned short& index, const OrvScene* scene) override;
};

// The global light model. Made by OrvDirector::environment, which appends it
// to the director's list; counted like every resource, never shared by content.
class OrvEnvironment : public OrvResource {
public:
    OrvRGB ambientColor;
    float intensity;
    float constantAttenuation, linearAttenuation, quadraticAttenuation;
    unsigned long infinite;  // sent as it is as GL's local-viewer flag
    unsigned long backAndFront;

    OrvEnvironment(OrvDirector* director, const OrvRGB& ambient, float intensity, float constant,
                   float linear, float quadratic, unsigned long infinite,
                   unsigned long backAndFront);
    ~OrvEnvironment() override;
    unsigned long internal(const OrvCanvas* canvas) const override;  // 0
    // Ambient colour, local viewer and two-side lighting.
    virtual void render3d(const OrvScene* scene);
};

OrvOStream& operator<<(OrvOStream& out, const OrvLight* light);
// A new light of the class the key names; null after a message.
OrvIStream& operator>>(OrvIStream& in, OrvLight*& light);
OrvOStream& operator<<(OrvOStream& out, const OrvEnvironment* environment);
// Through the director's environment(); null for "no" or after a message.
OrvIStream& operator>>(OrvIStream& in, OrvEnvironment*& environment);

#endif
