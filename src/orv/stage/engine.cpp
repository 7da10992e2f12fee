// Engines and their registry, with their saved forms.
#include "orv/engine.h"
#include "orv/actor.h"
#include "orv/director.h"
#include "orv/makeup.h"
#include "orv/stage.h"
#include "orv/stream.h"

#include <cmath>
#include <cstring>

static OrvDirector* directorOf(const OrvActor* actor) {
    return actor && actor->makeUp ? actor->makeUp->director : nullptr;
}

// Repaints the target's box through the stage's buffer, so blinking does not flicker.
static void bufferedRepaint(OrvActor* target) {
    OrvStage* stage = target->getStage();
    if (stage) stage->bufferedDraw(target->bbox2dToStage(stage->transformer));
}

// ----- OrvEngine ------------------------------------------------------------

OrvEngine::OrvEngine(OrvActor* actor) : OrvTimer(directorOf(actor), 1, 0), target(actor) {
    oneShot = 0;
}

OrvEngine::OrvEngine(OrvIStream& in) : OrvTimer(in.director, 1, 0), target(nullptr) {
    oneShot = 0;
    unsigned long value = period;
    in >> value;
    period = value;
}

OrvEngine::~OrvEngine() {}

void OrvEngine::activate() {
    activate2d();
    activate3d();
}

void OrvEngine::setTarget(OrvActor* actor) {
    target = actor;
    if (actor) setDirector(directorOf(actor));
}

const char* OrvEngine::className() const {
    return "Engine";
}

void OrvEngine::write(OrvOStream& out) const {
    out << period;
}

void OrvEngine::activate2d() {}
void OrvEngine::activate3d() {}

// ----- OrvSetOfEngine ----------------------------------------------------------

OrvSetOfEngine::OrvSetOfEngine(OrvActor* actor) : OrvEngine(actor) {}

OrvSetOfEngine::OrvSetOfEngine(OrvIStream& in) : OrvEngine(in) {
    unsigned short count = 0;
    in >> count;
    char name[1024];
    for (unsigned i = 0; i < count && in.stream; i++) {
        in.word(name);
        OrvEngine* engine = OrvGetEngine(name);
        if (engine)
            engines.append(engine);
        else
            OrvError("Engine (%s) not found ...\n", name);
    }
}

OrvSetOfEngine::~OrvSetOfEngine() {
    for (OrvLink* l = engines.first; l; l = l->next) delete (OrvEngine*)l->value;
}

void OrvSetOfEngine::run(int seconds, int milliseconds) {
    for (OrvLink* l = engines.first; l; l = l->next)
        ((OrvEngine*)l->value)->run(seconds, milliseconds);
}

void OrvSetOfEngine::suspend() {
    for (OrvLink* l = engines.first; l; l = l->next) ((OrvEngine*)l->value)->suspend();
}

// The set's own target stays unset: only its engines act.
void OrvSetOfEngine::setTarget(OrvActor* actor) {
    for (OrvLink* l = engines.first; l; l = l->next) ((OrvEngine*)l->value)->setTarget(actor);
}

const char* OrvSetOfEngine::className() const {
    return "SetOfEngine";
}

void OrvSetOfEngine::write(OrvOStream& out) const {
    OrvEngine::write(out);
    out << (unsigned short)engines.length();
    for (OrvLink* l = engines.first; l; l = l->next) {
        OrvEngine* engine = (OrvEngine*)l->value;
        out.stream << out.indent() << engine->className() << '\n';
        engine->write(out);
    }
}

void OrvSetOfEngine::activate2d() {}
void OrvSetOfEngine::activate3d() {}

void OrvSetOfEngine::add(OrvEngine* engine) {
    if (engine) engines.append(engine);
}

// ----- the three acting engines ----------------------------------------------

OrvInverterEngine::OrvInverterEngine(OrvActor* actor) : OrvEngine(actor) {}
OrvInverterEngine::OrvInverterEngine(OrvIStream& in) : OrvEngine(in) {}

const char* OrvInverterEngine::className() const {
    return "Inverter";
}

void OrvInverterEngine::activate2d() {
    if (!target) return;
    target->invert();
    bufferedRepaint(target);
}

OrvVisibleEngine::OrvVisibleEngine(OrvActor* actor) : OrvEngine(actor) {}
OrvVisibleEngine::OrvVisibleEngine(OrvIStream& in) : OrvEngine(in) {}

const char* OrvVisibleEngine::className() const {
    return "Visible";
}

void OrvVisibleEngine::activate2d() {
    if (!target) return;
    target->setVisible(!target->isVisible());
    bufferedRepaint(target);
}

OrvRotateEngine::OrvRotateEngine(OrvActor* actor, double degrees)
    : OrvEngine(actor), angle(degrees) {}

OrvRotateEngine::OrvRotateEngine(OrvIStream& in) : OrvEngine(in), angle(0.0) {
    in >> angle;
}

const char* OrvRotateEngine::className() const {
    return "Rotate";
}

void OrvRotateEngine::write(OrvOStream& out) const {
    OrvEngine::write(out);
    out << angle;
}

// The target's apply2d repaints; the literal 3.14 is the turning's own.
void OrvRotateEngine::activate2d() {
    if (!target || !target->getStage()) return;
    double radians = angle * 3.14 / 180.0;
    float c = (float)cos(radians), s = (float)sin(radians);
    Orv2dRect box = target->bbox2d(nullptr);
    float cx = box.x + box.w / 2.0f, cy = box.y + box.h / 2.0f;
    Orv2dMatrix m(c, -s, s, c, cx * (1 - c) + s * cy, cy * (1 - c) - s * cx);
    target->apply2d(m);
}

// ----- registry ----------------------------------------------------------------

struct OrvEngineFactory {
    char* name;
    OrvEngine* (*make)();
};

static OrvStringHashTable* engineFactories = nullptr;

void OrvRegisterEngine(const char* name, OrvEngine* (*factory)()) {
    if (!name || !factory) return;
    if (!engineFactories) engineFactories = new OrvStringHashTable(1000);
    OrvEngineFactory* entry = (OrvEngineFactory*)engineFactories->get(name);
    if (entry) {
        entry->make = factory;
        return;
    }
    // The table keeps the key's pointer, so the entry owns a copy of the name.
    entry = new OrvEngineFactory{strdup(name), factory};
    engineFactories->put(entry->name, entry);
}

OrvEngine* OrvGetEngine(const char* name) {
    if (!name || !engineFactories) return nullptr;
    OrvEngineFactory* entry = (OrvEngineFactory*)engineFactories->get(name);
    return entry ? entry->make() : nullptr;
}
