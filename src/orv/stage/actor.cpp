// The actor: flags, user properties, identity, the change protocol, copying,
// destruction and its persistent form.
#include <cstdlib>
#include <cstring>

#include "orv/actor.h"
#include "orv/canvas.h"
#include "orv/engine.h"
#include "orv/director.h"
#include "orv/role.h"
#include "orv/stage.h"
#include "orv/theater.h"
#include "orv/undo.h"
#include "orv/stream.h"

#include "orv/stream/actor_calls.h"
#include "orv/stream/line.h"
#include "orv/stream/scan.h"

// The root class registers by hand: its guard also hands the stream the calls
// by which the reader and the writer reach actors that they hold opaquely.
// Every file that uses an actor runs this guard before its own statics.
int orvinitOrvActor::_counter = 0;
OrvClassInfo* OrvActor::_classInfo = nullptr;
orvinitOrvActor::orvinitOrvActor() {
    if (_counter++ != 0) return;
    OrvActor::_classInfo =
        OrvInsertNewType("OrvActor", new OrvClassInfo("OrvActor", "Root", OrvActor::read));
    OrvActorCalls.className = [](const OrvActor* a) { return a->className(); };
    OrvActorCalls.write = [](const OrvActor* a, OrvOStream& out) { a->write(out); };
    OrvActorCalls.mapReferences = [](OrvActor* a, void (*f)(OrvActor*, void*), void* data) {
        a->mapReferences(f, data);
    };
    OrvActorCalls.destroy = [](OrvActor* a) { delete a; };
    OrvActorCalls.hasUserProperty = [](OrvActor* a, const OrvKey* k) {
        return a->hasUserProperty(k);
    };
    OrvActorCalls.getUserProperty = [](OrvActor* a, const OrvKey* k) {
        return a->getUserProperty(k);
    };
    OrvActorCalls.setUserProperty = [](OrvActor* a, const OrvKey* k, void* v) {
        a->setUserProperty(k, v);
    };
    OrvActorCalls.removeUserProperty = [](OrvActor* a, const OrvKey* k) {
        return a->removeUserProperty(k);
    };
}

OrvKey* OrvActor::_inVirtualStage = nullptr;
Orv2dDragger OrvActor::_default2dDragger;

OrvKey* callbackA = nullptr;
OrvKey* secondaryCallbackA = nullptr;
OrvKey* callbackNameA = nullptr;
OrvKey* secondaryCallbackNameA = nullptr;
OrvKey* nameA = nullptr;
OrvKey* roleA = nullptr;
OrvKey* engineA = nullptr;

static unsigned long _forgetUpdateDrawing = 0;

unsigned long OrvForgetUpdateDrawing() {
    return _forgetUpdateDrawing;
}
void OrvForgetUpdateDrawing(unsigned long on) {
    _forgetUpdateDrawing = on;
}

OrvKey* OrvStageKey() {
    static OrvKey* key = OrvGetKey("P_layer", 1);
    return key;
}

OrvKey* OrvTheaterKey() {
    static OrvKey* key = OrvGetKey("T_layer", 1);
    return key;
}

OrvKey* OrvBalloonKey() {
    static OrvKey* key = OrvGetKey("BalloonKey", 1);
    return key;
}

// The keys of names, roles, engines and callbacks are made together, by the
// first operation that needs one of them.
static void makeIdentityKeys() {
    if (nameA) return;
    callbackA = OrvGetKey("P_callback", 1);
    secondaryCallbackA = OrvGetKey("SP_callback", 1);
    callbackNameA = OrvGetKey("P_cname", 1);
    secondaryCallbackNameA = OrvGetKey("SP_cname", 1);
    nameA = OrvGetKey("P_name", 1);
    roleA = OrvGetKey("P_baheviour", 1);  // misspelt; kept as it is for file compatibility
    engineA = OrvGetKey("P_engine", 1);
}

// ---------------------------------------------------------------------------
// Construction, copying, destruction
// ---------------------------------------------------------------------------

OrvActor::OrvActor(OrvDirector* director, OrvMakeUp* look)
    : userProperties(nullptr), flags(ORV_ACTOR_DEFAULT_FLAGS), layer(0), makeUp(look) {
    if (!_inVirtualStage) _inVirtualStage = OrvGetKey("ActorInVirtualStage", 1);
    if (!makeUp && director) makeUp = director->defaultMakeUp;
    OrvCount(makeUp);
}

OrvActor::OrvActor(const OrvActor& source)
    : userProperties(nullptr), flags(ORV_ACTOR_DEFAULT_FLAGS), layer(source.layer),
      makeUp(source.makeUp) {
    // Only the look and the permissions travel: a copy starts unselected,
    // without focus, name, role, callbacks or properties, outside any container.
    static const unsigned char copied[] = {
        OrvSelectableBit, OrvVisibleBit, OrvSensitiveBit, OrvInvertedBit, OrvMoveableBit,
        OrvResizeableBit, OrvZBufferBit, OrvLightBit,     OrvTextureBit,  OrvHighlightAllowedBit};
    for (unsigned char bit : copied) setBit(bit, source.getProperty(bit));
    OrvCount(makeUp);
}

OrvActor::~OrvActor() {
    // A pick record must not name an actor that is gone.
    for (OrvLink* l = OrvGetAllDirectors() ? OrvGetAllDirectors()->first : nullptr; l;
         l = l->next) {
        OrvDirector* director = (OrvDirector*)l->value;
        if (director->pick3dRecord().actor == this) director->clearPick3dRecord();
    }
    // Leaving the container first redraws the actor's place and drops its links,
    // so no container needs to hear of the actor's end.
    OrvTheater* theater = getTheater();
    OrvStage* stage = theater ? nullptr : getStage();
    if (theater) theater->remove(this, 0);
    if (stage) {
        // Deleted in its stage, outside the recorded edits: a step might name it.
        if (stage->undoStack) stage->undoStack->forget(stage);
        stage->remove(this, 0);
    }
    OrvRelease(makeUp);
    makeUp = nullptr;
    if (callbackA) {
        setCallback(nullptr);
        setSecondaryCallback(nullptr);
    }
    if (userProperties) setBalloonData(nullptr, nullptr, 2, 2);
    if (getProperty(OrvHasNameBit)) setName(nullptr);
    if (getProperty(OrvHasEngineBit)) delete getEngine();
    delete userProperties;
    userProperties = nullptr;
}

OrvActor* OrvActor::copy() const {
    return new OrvActor(*this);
}

OrvClassInfo* OrvActor::classInfo() const {
    return _classInfo;
}

const char* OrvActor::className() const {
    OrvClassInfo* info = classInfo();
    return info ? info->name : nullptr;
}

unsigned long OrvActor::isSubtypeOf(const char* name) const {
    OrvClassInfo* current = classInfo();
    OrvClassInfo* requested = OrvGetClassInfo(name);
    if (!requested) return OrvError("Unknown requested type %s in isSubtypeOf", name);
    if (!current) return OrvError("Unknown proposed type %s in isSubtypeOf", className());
    for (;;) {
        if (current == requested) return 1;
        if (!current->parentName) return 0;
        current = OrvGetClassInfo(current->parentName);
        if (!current) return 0;  // "Root" is not registered, which ends the climb
    }
}

// ---------------------------------------------------------------------------
// User properties
// ---------------------------------------------------------------------------

void OrvActor::setUserProperty(const OrvKey* key, void* value) {
    if (!userProperties) userProperties = new OrvAList;
    if (!userProperties->replace(key, value)) userProperties->insert(key, value);
}

void* OrvActor::getUserProperty(const OrvKey* key) {
    if (!userProperties) userProperties = new OrvAList;
    return userProperties->get(key);
}

int OrvActor::removeUserProperty(const OrvKey* key) {
    if (!userProperties) userProperties = new OrvAList;
    return userProperties->remove(key);
}

int OrvActor::hasUserProperty(const OrvKey* key) {
    if (!userProperties) userProperties = new OrvAList;
    return userProperties->find(key);
}

// ---------------------------------------------------------------------------
// Container
// ---------------------------------------------------------------------------

void OrvActor::setStage(OrvStage* stage) {
    if (stage)
        setUserProperty(OrvStageKey(), stage);
    else if (userProperties)
        userProperties->remove(OrvStageKey());
}

OrvStage* OrvActor::getStage() const {
    return userProperties ? (OrvStage*)userProperties->get(OrvStageKey()) : nullptr;
}

void OrvActor::setTheater(OrvTheater* theater) {
    if (theater)
        setUserProperty(OrvTheaterKey(), theater);
    else if (userProperties)
        userProperties->remove(OrvTheaterKey());
}

OrvTheater* OrvActor::getTheater() const {
    return userProperties ? (OrvTheater*)userProperties->get(OrvTheaterKey()) : nullptr;
}

OrvStage* OrvActor::drawingStage() {
    OrvStage* stage = getStage();
    if (!stage && userProperties && userProperties->find(_inVirtualStage))
        stage = (OrvStage*)userProperties->get(_inVirtualStage);
    return stage;
}

void OrvActor::setDefaultAttachments(long) {}

// ---------------------------------------------------------------------------
// Change protocol
// ---------------------------------------------------------------------------

// The stage and the theater are told independently: an actor may stand in both.
void OrvActor::beginDrawing(unsigned long withLinks) {
    if (OrvForgetUpdateDrawing()) return;
    OrvStage* stage = getStage();
    if (stage) {
        stage->beginDrawing();
        stage->invalidate(this, withLinks);
    }
    OrvTheater* theater = getTheater();
    if (theater) {
        theater->beginDrawing();
        theater->invalidate(this, withLinks);
    }
}

void OrvActor::flushDrawing(unsigned long withLinks) {
    if (OrvForgetUpdateDrawing()) return;
    OrvStage* stage = getStage();
    if (stage) {
        stage->invalidate(this, withLinks);
        stage->flushDrawing(1);
    }
    OrvTheater* theater = getTheater();
    if (theater) {
        theater->invalidate(this, withLinks);
        theater->flushDrawing(1);
    }
}

void OrvActor::changeFlag(unsigned char n, unsigned long on, unsigned long withLinks) {
    if (getProperty(n) == (on ? 1ul : 0ul)) return;
    beginDrawing(withLinks);
    setBit(n, on);
    flushDrawing(withLinks);
}

void OrvActor::setSelected(unsigned long on) {
    if (isSelected() == (on ? 1ul : 0ul)) return;
    beginDrawing(0);
    setBit(OrvSelectedBit, on && isSelectable());
    flushDrawing(0);
    // Told even when the flag stayed clear, so that the containers' lists are right.
    OrvStage* stage = getStage();
    if (stage) stage->makeSelected(this);
    OrvTheater* theater = getTheater();
    if (theater) theater->makeSelected(this);
}

void OrvActor::setLayer(unsigned short l) {
    if (l == layer) return;
    beginDrawing(0);
    // The containers find the actor by its old number, so they move it first.
    OrvStage* stage = getStage();
    if (stage) stage->makeLayer(this, l);
    OrvTheater* theater = getTheater();
    if (theater) theater->makeLayer(this, l);
    layer = l;
    flushDrawing(0);
}

void OrvActor::setVisible(unsigned long on) {
    if (isVisible() == (on ? 1ul : 0ul)) return;
    beginDrawing(1);
    setBit(OrvVisibleBit, on);
    flushDrawing(1);
    OrvStage* stage = getStage();
    if (stage) stage->contentsChanged();
    OrvTheater* theater = getTheater();
    if (theater) theater->contentsChanged();
}

void OrvActor::setFocus(unsigned long on) {
    changeFlag(OrvFocusBit, on, 0);
}
void OrvActor::setSensitive(unsigned long on) {
    changeFlag(OrvSensitiveBit, on, 0);
}
void OrvActor::setInverted(unsigned long on) {
    changeFlag(OrvInvertedBit, on, 0);
}
void OrvActor::setZBuffer(unsigned long on) {
    changeFlag(OrvZBufferBit, on, 0);
}
void OrvActor::lightOn(unsigned long on) {
    changeFlag(OrvLightBit, on, 0);
}
void OrvActor::setInvariant(unsigned long on) {
    changeFlag(OrvInvariantBit, on, 1);
}
// Only a selected actor shows the track ball's handles, so only then is there
// anything to redraw.
void OrvActor::trackBallSelection(unsigned long on) {
    if (isSelected())
        changeFlag(OrvTrackBallBit, on, 0);
    else
        setBit(OrvTrackBallBit, on);
}

void OrvActor::textureOn(unsigned long on) {
    if (isTextureOn() == (on ? 1ul : 0ul)) return;
    beginDrawing(0);
    setBit(OrvTextureBit, on);
    takeAPicture();
    flushDrawing(0);
}

void OrvActor::immediate(unsigned long on) {
    setBit(OrvImmediateBit, on);
}
void OrvActor::set3dFastFaceRendering(unsigned long on) {
    setBit(OrvFastFaceBit, on);
}
void OrvActor::allowHighlight(unsigned long on) {
    setBit(OrvHighlightAllowedBit, on);
}
void OrvActor::takeAPicture() {}
void OrvActor::notifyOn3dMatrixChanged() {}

unsigned long OrvActor::setHighlighted(unsigned long on, const Orv2dPoint&, unsigned long redraw) {
    if (!isHighlightAllowed() || isHighlighted() == (on ? 1ul : 0ul)) return 0;
    if (redraw) beginDrawing(0);
    setBit(OrvHighlightedBit, on);
    if (redraw) flushDrawing(0);
    return 1;
}

void OrvActor::notifyOnMakeUpChanged() {}
void OrvActor::map(void (*)(OrvActor*, void*), void*) {}
void OrvActor::mapReferences(void (*)(OrvActor*, void*), void*) {}
const char* OrvActor::defaultRole() const {
    return nullptr;
}
Orv2dPoint OrvActor::beforeMappingBalloon(const Orv2dPoint&) {
    // Below the pointer's arrow: a balloon under the pointer would take its events.
    return Orv2dPoint(0, 20);
}

// ---------------------------------------------------------------------------
// Balloon data
// ---------------------------------------------------------------------------

void OrvActor::setBalloonData(const char* label, OrvBitmap* bitmap, OrvPosition position,
                              unsigned short space) {
    OrvBalloonData* old = (OrvBalloonData*)getUserProperty(OrvBalloonKey());
    OrvBalloonData* data = nullptr;
    if (label || bitmap) {
        data = new OrvBalloonData;
        data->label = nullptr;
        if (label) {
            size_t n = strlen(label) + 1;
            data->label = (char*)malloc(n);
            memcpy(data->label, label, n);
        }
        data->bitmap = bitmap;
        if (bitmap) bitmap->lock();
        data->position = position;
        data->space = space;
        setUserProperty(OrvBalloonKey(), data);
    } else {
        removeUserProperty(OrvBalloonKey());
    }
    // The new record is in place before the old one lets go of a shared bitmap.
    if (old) {
        if (old->bitmap) old->bitmap->unLock();
        free(old->label);
        delete old;
    }
}

const OrvBalloonData* OrvActor::getBalloonData() const {
    return userProperties ? (const OrvBalloonData*)userProperties->get(OrvBalloonKey()) : nullptr;
}

const char* OrvActor::getBalloonLabel() const {
    const OrvBalloonData* data = getBalloonData();
    return data ? data->label : nullptr;
}

OrvBitmap* OrvActor::getBalloonBitmap() const {
    const OrvBalloonData* data = getBalloonData();
    return data ? data->bitmap : nullptr;
}

OrvPosition OrvActor::getBalloonLabelBitmapPosition() const {
    const OrvBalloonData* data = getBalloonData();
    return data ? data->position : 0;
}

unsigned short OrvActor::getBalloonLabelBitmapSpace() const {
    const OrvBalloonData* data = getBalloonData();
    return data ? data->space : 0;
}

// ---------------------------------------------------------------------------
// Names, roles, engines, callbacks
// ---------------------------------------------------------------------------

void OrvActor::setName(const char* name) {
    makeIdentityKeys();
    free(getUserProperty(nameA));
    if (name) {
        size_t n = strlen(name) + 1;
        char* copy = (char*)malloc(n);
        memcpy(copy, name, n);
        setUserProperty(nameA, copy);
        setProperty(OrvHasNameBit);
    } else {
        removeUserProperty(nameA);
        removeProperty(OrvHasNameBit);
    }
}

const char* OrvActor::getName() const {
    if (!nameA || !userProperties) return nullptr;
    return (const char*)userProperties->get(nameA);
}

void OrvActor::setRole(OrvRole* role) {
    makeIdentityKeys();
    OrvRole* old = (OrvRole*)getUserProperty(roleA);
    if (old && makeUp) makeUp->director->remove(old);
    if (role) {
        if (makeUp) makeUp->director->add(role);
        setUserProperty(roleA, role);
        setProperty(OrvHasRoleBit);
    } else {
        removeUserProperty(roleA);
        removeProperty(OrvHasRoleBit);
    }
}

void OrvActor::setRole(const char* name) {
    if (!name || !*name)
        setRole((OrvRole*)nullptr);
    else
        setRole(OrvGetRole(name));
}

OrvRole* OrvActor::getRole() const {
    if (!roleA || !userProperties) return nullptr;
    return (OrvRole*)userProperties->get(roleA);
}

void OrvActor::setEngine(OrvEngine* engine) {
    makeIdentityKeys();
    if (engine)
        setUserProperty(engineA, engine);
    else
        removeUserProperty(engineA);
    // Set in both cases: an actor that once had an engine keeps the mark.
    setProperty(OrvHasEngineBit);
}

OrvEngine* OrvActor::getEngine() const {
    if (!engineA || !userProperties) return nullptr;
    return (OrvEngine*)userProperties->get(engineA);
}

static void replaceCallback(OrvActor* actor, OrvKey* key, OrvCallback* callback) {
    OrvCallback* old = (OrvCallback*)actor->getUserProperty(key);
    if (callback) {
        OrvCount(callback);
        actor->setUserProperty(key, callback);
    } else {
        actor->removeUserProperty(key);
    }
    OrvRelease(old);
}

void OrvActor::setCallback(OrvCallback* callback) {
    makeIdentityKeys();
    replaceCallback(this, callbackA, callback);
}

OrvCallback* OrvActor::getCallback() const {
    makeIdentityKeys();
    return userProperties ? (OrvCallback*)userProperties->get(callbackA) : nullptr;
}

void OrvActor::setSecondaryCallback(OrvCallback* callback) {
    makeIdentityKeys();
    replaceCallback(this, secondaryCallbackA, callback);
}

OrvCallback* OrvActor::getSecondaryCallback() const {
    // The one reader that makes no keys.
    if (!secondaryCallbackA || !userProperties) return nullptr;
    return (OrvCallback*)userProperties->get(secondaryCallbackA);
}

void OrvActor::setCallbackName(OrvKey* name) {
    makeIdentityKeys();
    if (name) {
        setUserProperty(callbackNameA, name);
        setProperty(OrvHasCallbackNameBit);
    } else {
        removeUserProperty(callbackNameA);
        removeProperty(OrvHasCallbackNameBit);
    }
}

OrvKey* OrvActor::getCallbackName() const {
    makeIdentityKeys();
    return userProperties ? (OrvKey*)userProperties->get(callbackNameA) : nullptr;
}

void OrvActor::setSecondaryCallbackName(OrvKey* name) {
    makeIdentityKeys();
    if (name) {
        setUserProperty(secondaryCallbackNameA, name);
        setProperty(OrvHasSecondaryCallbackNameBit);
    } else {
        removeUserProperty(secondaryCallbackNameA);
        removeProperty(OrvHasSecondaryCallbackNameBit);
    }
}

OrvKey* OrvActor::getSecondaryCallbackName() const {
    makeIdentityKeys();
    return userProperties ? (OrvKey*)userProperties->get(secondaryCallbackNameA) : nullptr;
}

// ---------------------------------------------------------------------------
// Persistent form: make-up, layer, the flags as a string of digits, then name,
// role and callback names as the flags announce them
// ---------------------------------------------------------------------------

OrvActor* OrvActor::read(OrvIStream& stream) {
    return new OrvActor(stream);
}

void OrvActor::write(OrvOStream& out) const {
    out.writeComments("OrvActor class", 1);
    out << makeUp;
    out.key("layer");
    _OrvLine_(out.stream).add((unsigned long)layer).add('\n');
    // The written flags: never selected; the announcements of attachments and
    // balloons are set only where such data follows (attachments never, here).
    const OrvBalloonData* balloon = getBalloonData();
    uint32_t written = flags;
    written &= ~((uint32_t)1 << OrvSelectedBit);
    written &= ~((uint32_t)1 << OrvAttachmentsFollowBit);
    written &= ~((uint32_t)1 << OrvBalloonFollowsBit);
    if (balloon) written |= (uint32_t)1 << OrvBalloonFollowsBit;
    char digits[32];
    for (int i = 0; i < 31; i++) digits[i] = (written >> (i + 1)) & 1 ? '1' : '0';
    digits[31] = '\n';
    out.key("properties");
    out.stream.rdbuf()->sputn(digits, 32);
    if (getProperty(OrvHasNameBit)) {
        out.key("name");
        OrvWriteString(out.stream, getName());
        out.stream << '\n';
    }
    if (getProperty(OrvHasRoleBit)) {
        OrvRole* role = getRole();
        out.key("role") << (role ? role->className() : "") << '\n';
    }
    if (getProperty(OrvHasCallbackNameBit)) {
        OrvKey* name = getCallbackName();
        out.key("callback") << (name ? name->name : "") << '\n';
    }
    if (getProperty(OrvHasSecondaryCallbackNameBit)) {
        OrvKey* name = getSecondaryCallbackName();
        out.key("sCallback") << (name ? name->name : "") << '\n';
    }
    if (getProperty(OrvHasEngineBit)) {
        // An actor whose engine was removed keeps the bit: the key then stands alone.
        OrvEngine* engine = getEngine();
        out.key("engine") << (engine ? engine->className() : "") << '\n';
    }
    if (balloon) {
        out << (const char*)(balloon->label ? balloon->label : "");
        out << (const OrvBitmap*)balloon->bitmap;
        out.writePosition(balloon->position);
        out << balloon->space;
    }
}

// Reads the next key and checks it; a different one ends the reading.
static int expectKey(OrvIStream& in, char* buffer, const char* key) {
    in.nextItem();
    in.word(buffer);
    if (strcmp(buffer, key))
        return in.fault("OrvActor::OrvActor : Bad key (%s %s).\n", buffer, key);
    return 1;
}

// The rest of the key's line as one word: "" when the value was written empty,
// so that the next line is not taken for it.
static void valueOnLine(OrvIStream& in, char* buffer) {
    buffer[0] = 0;
    int c = OrvScanPeek(in.stream);
    while (c == ' ' || c == '\t') {
        OrvScanGet(in.stream);
        c = OrvScanPeek(in.stream);
    }
    if (c != '\n' && c != std::char_traits<char>::eof()) in.word(buffer);
}

OrvActor::OrvActor(OrvIStream& in)
    : userProperties(nullptr), flags(ORV_ACTOR_DEFAULT_FLAGS), layer(0), makeUp(nullptr) {
    if (!_inVirtualStage) _inVirtualStage = OrvGetKey("ActorInVirtualStage", 1);
    OrvMakeUp* m = nullptr;
    in >> m;
    if (!m && in.director) m = in.director->defaultMakeUp;
    makeUp = m;
    OrvCount(makeUp);

    char buffer[1024];
    unsigned long number = 0;
    if (!_OrvReadItem_(in, buffer, "layer", number)) return;
    layer = (unsigned short)number;
    char digits[1024];
    if (!_OrvReadItem_(in, buffer, "properties", digits)) return;
    flags = 0;
    for (unsigned i = 0; digits[i]; i++)
        if (digits[i] == '1') setProperty((unsigned char)((i + 1) % 32));
    // Cleared on sight: they announce what follows, they are no state.
    bool balloon = getProperty(OrvBalloonFollowsBit);
    removeProperty(OrvAttachmentsFollowBit);
    removeProperty(OrvBalloonFollowsBit);

    if (getProperty(OrvHasNameBit)) {
        // The bit is set again by setName once the name is there.
        removeProperty(OrvHasNameBit);
        if (!expectKey(in, buffer, "name")) return;
        const char* name = OrvReadString(in.stream);
        if (!in.stream) return;
        setName(name);
    }
    if (getProperty(OrvHasRoleBit)) {
        removeProperty(OrvHasRoleBit);
        if (!expectKey(in, buffer, "role")) return;
        in.word(buffer);
        setRole(buffer);
    }
    if (getProperty(OrvHasCallbackNameBit)) {
        removeProperty(OrvHasCallbackNameBit);
        if (!expectKey(in, buffer, "callback")) return;
        in.word(buffer);
        setCallbackName(OrvGetKey(buffer, 1));
    }
    if (getProperty(OrvHasSecondaryCallbackNameBit)) {
        removeProperty(OrvHasSecondaryCallbackNameBit);
        if (!expectKey(in, buffer, "sCallback")) return;
        in.word(buffer);
        setSecondaryCallbackName(OrvGetKey(buffer, 1));
    }
    if (getProperty(OrvHasEngineBit)) {
        // The bit stays as read, engine or not; reading goes on without one.
        if (!expectKey(in, buffer, "engine")) return;
        valueOnLine(in, buffer);
        OrvEngine* engine = buffer[0] ? OrvGetEngine(buffer) : nullptr;
        if (buffer[0] && !engine) OrvError("Engine (%s) not found ...\n", buffer);
        if (engine) {
            engine->setTarget(this);
            setEngine(engine);
            engine->run(0, 0);
        }
    }
    if (balloon) readBalloon(in);
}

void OrvActor::readBalloon(OrvIStream& in) {
    unsigned long before = in.faults;
    auto good = [&]() { return in.faults == before && in.stream; };
    char* label = nullptr;
    OrvBitmap* bitmap = nullptr;
    unsigned long position = 2;
    unsigned short space = 0;
    in >> label;
    if (good()) in >> bitmap;
    if (good()) in.readPosition(position);
    if (good()) in >> space;
    // A balloon is taken whole or not at all.
    if (good()) setBalloonData(label && *label ? label : nullptr, bitmap, position, space);
    delete[] label;
}
