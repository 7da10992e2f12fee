// The persistent form of OrvActor: make-up, layer, the flags as a string of
// digits, then name, role and callback names as the flags announce them.
#include "orv/actor.h"
#include "orv/director.h"
#include "orv/engine.h"
#include "orv/role.h"
#include "orv/stream.h"

#include <cstring>

#include "line.h"
#include "scan.h"

OrvActor* OrvActor::read(OrvIStream& stream) {
    return new OrvActor(stream);
}

void OrvActor::write(OrvOStream& out) const {
    out.writeComments("OrvActor class", 1);
    out << makeUp;
    out.key("layer");
    _OrvLine_(out.stream).add((unsigned long)layer).add('\n');
    // The written flags: never selected; the announcements of attachments and
    // balloons are set only where such data follows, which is never here.
    uint32_t written = flags;
    written &= ~((uint32_t)1 << OrvSelectedBit);
    written &= ~((uint32_t)1 << OrvAttachmentsFollowBit);
    written &= ~((uint32_t)1 << OrvBalloonFollowsBit);
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
        // The bit stays as read, engine or not.
        if (!expectKey(in, buffer, "engine")) return;
        valueOnLine(in, buffer);
        if (!buffer[0]) return;
        OrvEngine* engine = OrvGetEngine(buffer);
        if (!engine) {
            OrvError("Engine (%s) not found ...\n", buffer);
            return;
        }
        engine->setTarget(this);
        setEngine(engine);
        engine->run(0, 0);
    }
}
