// The writer: header, numbering of the objects, object blocks, end lines and
// the typed items.
#include "orv/stream.h"
#include "orv/canvas.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "actor_calls.h"
#include "line.h"

static const char* const tabs = "\t\t\t\t\t\t\t\t\t\t";

OrvOStream::OrvOStream(std::ostream& out)
    : stream(out), makeUpTable(nullptr), makeUpCounter(0), textureTable(nullptr), textureCounter(0),
      indentation(0), defaultSize() {}

OrvOStream::~OrvOStream() {
    clean();
}

const char* OrvOStream::className() const {
    return "OrvStream";
}

void OrvOStream::clean() {
    delete makeUpTable;
    makeUpTable = nullptr;
    delete textureTable;
    textureTable = nullptr;
    makeUpCounter = 0;
    textureCounter = 0;
    indentation = 0;
}

const char* OrvOStream::indent() const {
    int level = indentation < 0 ? 0 : (indentation > 10 ? 10 : indentation);
    return tabs + 10 - level;
}

std::ostream& OrvOStream::key(const char* name) {
    _OrvLine_(stream).add(indent()).add(name).add(strlen(name) < 8 ? "\t\t" : "\t");
    return stream;
}

void OrvOStream::writeComments(const char* text, unsigned long line) {
    if (line)
        _OrvLine_(stream).add(indent()).add("% ").add(text).add('\n');
    else
        _OrvLine_(stream).add("\t% ").add(text);
}

void OrvOStream::header(unsigned long is2d) {
    stream << "% Orvis 1 " << OrvDate() << '\n';
    stream << (is2d ? "OrvStream 2d" : "OrvStream 3d") << '\n';
}

void OrvOStream::eof() {
    stream << '\n'
           << "% Do not modify or delete the last line (Orvis plugins)." << '\n'
           << "% EOF" << '\n';
}

// The numbered actors of the current write, in numbering order.
static OrvActor** numbered = nullptr;
static unsigned numberedCount = 0;
static unsigned numberedCapacity = 0;
static OrvKey* numberKey = nullptr;

static void numberActor(OrvActor* actor, void*) {
    if (!actor || OrvActorCalls.hasUserProperty(actor, numberKey)) return;
    // What the actor refers to is numbered first, so that a reader finds every
    // reference already read.
    OrvActorCalls.mapReferences(actor, numberActor, nullptr);
    if (numberedCount == numberedCapacity) {
        unsigned capacity = numberedCapacity ? numberedCapacity * 2 : 64;
        OrvActor** grown = (OrvActor**)realloc(numbered, capacity * sizeof(OrvActor*));
        if (!grown) return;
        numbered = grown;
        numberedCapacity = capacity;
    }
    numbered[numberedCount++] = actor;
    OrvActorCalls.setUserProperty(actor, numberKey, (void*)(uintptr_t)numberedCount);
}

void OrvOStream::write(unsigned n, const OrvActor* const* actors, unsigned long is2d) {
    clean();
    makeUpTable = new OrvHashTable(1000);
    textureTable = new OrvHashTable(1000);
    header(is2d);
    if (is2d) stream << "defaultSize = " << defaultSize << '\n';
    numberKey = OrvGetKey("P_num", 1);
    numberedCount = 0;
    for (unsigned i = 0; i < n; i++) numberActor(const_cast<OrvActor*>(actors[i]), nullptr);
    stream << "cardinal = " << n << '\n';
    for (unsigned i = 0; i < numberedCount; i++) write(numbered[i]);
    for (unsigned i = 0; i < numberedCount; i++)
        OrvActorCalls.removeUserProperty(numbered[i], numberKey);
    numberedCount = 0;
    clean();
}

void OrvOStream::write(const OrvActor* actor) {
    const char* name = OrvActorCalls.className(actor);
    _OrvLine_(stream).add(indent()).add(name ? name : "").add(' ');
    writeIndex(actor);
    _OrvLine_(stream).add(" {\n");
    indentation++;
    OrvActorCalls.write(actor, *this);
    indentation--;
    _OrvLine_(stream).add(indent()).add("}\n");
}

void OrvOStream::writeIndex(const OrvActor* actor) {
    uintptr_t number = 0;
    if (actor && numberKey)
        number = (uintptr_t)OrvActorCalls.getUserProperty(const_cast<OrvActor*>(actor), numberKey);
    _OrvLine_(stream).add(' ').add((unsigned long)number).add(' ');
}

static unsigned long findIn(OrvHashTable*& table, unsigned& counter, unsigned& number,
                            const void* object) {
    if (!table) table = new OrvHashTable(1000);
    void* known = table->get(const_cast<void*>(object));
    if (known) {
        number = (unsigned)(uintptr_t)known;
        return 1;
    }
    number = ++counter;
    table->put(const_cast<void*>(object), (void*)(uintptr_t)number);
    return 0;
}

unsigned long OrvOStream::find(unsigned& number, const OrvMakeUp* makeUp) {
    return findIn(makeUpTable, makeUpCounter, number, makeUp);
}

unsigned long OrvOStream::find(unsigned& number, const OrvTexture* texture) {
    return findIn(textureTable, textureCounter, number, texture);
}

// Typed items.

// Indentation, key, a tab: the start of every typed item.
static _OrvLine_& start(_OrvLine_& line, const OrvOStream& out, const char* key) {
    return line.add(out.indent()).add(key).add('\t');
}

OrvOStream& OrvOStream::operator<<(const Orv2dRect& r) {
    _OrvLine_ line(stream);
    start(line, *this, "rect2d")
        .add((long)r.x)
        .add(' ')
        .add((long)r.y)
        .add(' ')
        .add((unsigned long)r.w);
    line.add(' ').add((unsigned long)r.h).add('\n');
    return *this;
}
OrvOStream& OrvOStream::operator<<(const Orv2dPoint& p) {
    _OrvLine_ line(stream);
    start(line, *this, "point2d").add((long)p.x).add(' ').add((long)p.y).add('\n');
    return *this;
}
// Every unsigned short, whatever it means, goes under the key "usData": the key is kept as it is
// for file compatibility.
OrvOStream& OrvOStream::operator<<(unsigned short v) {
    _OrvLine_ line(stream);
    start(line, *this, "usData").add((unsigned long)v).add('\n');
    return *this;
}
OrvOStream& OrvOStream::operator<<(short v) {
    _OrvLine_ line(stream);
    start(line, *this, "sData").add((long)v).add('\n');
    return *this;
}
OrvOStream& OrvOStream::operator<<(unsigned int v) {
    _OrvLine_ line(stream);
    start(line, *this, "uiData").add((unsigned long)v).add('\n');
    return *this;
}
OrvOStream& OrvOStream::operator<<(int v) {
    _OrvLine_ line(stream);
    start(line, *this, "iData").add((long)v).add('\n');
    return *this;
}
OrvOStream& OrvOStream::operator<<(unsigned long v) {
    _OrvLine_ line(stream);
    start(line, *this, "ulData").add(v).add('\n');
    return *this;
}
OrvOStream& OrvOStream::operator<<(long v) {
    _OrvLine_ line(stream);
    start(line, *this, "lData").add(v).add('\n');
    return *this;
}
OrvOStream& OrvOStream::operator<<(float v) {
    _OrvLine_ line(stream);
    start(line, *this, "fData").add((double)v).add('\n');
    return *this;
}
OrvOStream& OrvOStream::operator<<(double v) {
    _OrvLine_ line(stream);
    start(line, *this, "dData").add(v).add('\n');
    return *this;
}
OrvOStream& OrvOStream::operator<<(const char* label) {
    _OrvLine_(stream).add(indent()).add("label\t");
    OrvWriteString(stream, label);
    _OrvLine_(stream).add('\n');
    return *this;
}
void OrvOStream::writePosition(unsigned long position) {
    _OrvLine_(stream).add(indent()).add("position ").add(position).add('\n');
}
OrvOStream& OrvOStream::operator<<(const Orv3dRect& r) {
    stream << indent() << "rect3d\t" << r << '\n';
    return *this;
}
OrvOStream& OrvOStream::operator<<(const Orv3dMatrix& m) {
    stream << indent() << "matrix3d " << '\n';
    for (int row = 0; row < 4; row++) {
        stream << indent();
        for (int col = 0; col < 4; col++) stream << (col ? " " : "") << m.m[row * 4 + col];
        stream << '\n';
    }
    return *this;
}
OrvOStream& OrvOStream::operator<<(const Orv3dPoint& p) {
    stream << indent() << "point3d\t" << p << '\n';
    return *this;
}
OrvOStream& OrvOStream::operator<<(const Orv3dVector& v) {
    stream << indent() << "vector3d\t" << v << '\n';
    return *this;
}
OrvOStream& OrvOStream::operator<<(const Orv4dPoint& p) {
    stream << indent() << "point4d\t" << p << '\n';
    return *this;
}
OrvOStream& OrvOStream::operator<<(const Orv3dVolume& v) {
    stream << indent() << "volume3d\t" << v << '\n';
    return *this;
}

// The bitmap item: the name and the mask's name, each quoted.

OrvOStream& OrvOStream::operator<<(const OrvBitmap* bitmap) {
    stream << indent() << "bitmap\t";
    OrvWriteString(stream, bitmap ? bitmap->name : nullptr);
    stream << '\n' << indent() << "mask\t";
    OrvWriteString(stream, bitmap && bitmap->mask ? bitmap->mask->name : nullptr);
    stream << '\n';
    return *this;
}
