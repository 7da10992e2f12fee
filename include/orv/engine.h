// Engines: timers that act on one actor (blink, hide, turn) with no
// application code, and the registry by which saved files name them.
#ifndef ORV_ENGINE_H
#define ORV_ENGINE_H

#include "orv/base.h"
#include "orv/event.h"

class OrvActor;
class OrvIStream;
class OrvOStream;

// A repeating timer bound to a target actor. Each expiry calls activate2d()
// and then activate3d(). The period is the engine's saved value.
class OrvEngine : public OrvTimer {
public:
    OrvActor* target;  // not owned; the actor owns its engine

    // A one-second timer on the target's director (none for a null target).
    explicit OrvEngine(OrvActor* target = nullptr);
    // Reads the period written by write().
    explicit OrvEngine(OrvIStream&);
    ~OrvEngine() override;

    // activate2d(), then activate3d(), at every expiry.
    void activate() override;
    // Stores the target and moves the timer to the target's director.
    virtual void setTarget(OrvActor* target);
    // The name under which files and OrvGetEngine know the class.
    virtual const char* className() const;
    // The period, as an unsigned integer item.
    virtual void write(OrvOStream&) const;
    // The 2D and 3D halves of one expiry; both do nothing here.
    virtual void activate2d();
    virtual void activate3d();
};

// Forwards run, suspend and setTarget to the engines it owns; does nothing
// itself at an expiry, since each engine has a timer of its own.
class OrvSetOfEngine : public OrvEngine {
public:
    OrvList engines;  // OrvEngine*, owned

    explicit OrvSetOfEngine(OrvActor* target = nullptr);
    // Reads a count and that many class names, each made by OrvGetEngine;
    // the engines' own written data is not read back.
    explicit OrvSetOfEngine(OrvIStream&);
    ~OrvSetOfEngine() override;

    void run(int seconds = 0, int milliseconds = 0) override;
    void suspend() override;
    void setTarget(OrvActor* target) override;
    const char* className() const override;
    // The period, the count, then each engine's class name and write().
    void write(OrvOStream&) const override;
    void activate2d() override;
    void activate3d() override;
    void add(OrvEngine* engine);
};

// Inverts its target at each expiry; two expiries bring the colours back.
class OrvInverterEngine : public OrvEngine {
public:
    explicit OrvInverterEngine(OrvActor* target = nullptr);
    explicit OrvInverterEngine(OrvIStream&);
    const char* className() const override;
    void activate2d() override;
};

// Shows and hides its target in turn.
class OrvVisibleEngine : public OrvEngine {
public:
    explicit OrvVisibleEngine(OrvActor* target = nullptr);
    explicit OrvVisibleEngine(OrvIStream&);
    const char* className() const override;
    void activate2d() override;
};

// Turns its target about the centre of its box by angle degrees at each expiry.
class OrvRotateEngine : public OrvEngine {
public:
    double angle;

    explicit OrvRotateEngine(OrvActor* target = nullptr, double angle = 0.0);
    explicit OrvRotateEngine(OrvIStream&);
    const char* className() const override;
    // The period, then the angle.
    void write(OrvOStream&) const override;
    void activate2d() override;
};

// Puts a factory under a name; the library registers none itself: an
// application registers the engines its files name.
void OrvRegisterEngine(const char* name, OrvEngine* (*factory)());
// A new engine from the factory of that name, or null when none is known.
OrvEngine* OrvGetEngine(const char* name);

#endif
