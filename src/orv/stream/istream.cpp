// The reader: header, object table, object blocks and the typed items.
#include "orv/stream.h"
#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/makeup.h"
#include "orv/resource.h"

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "actor_calls.h"
#include "scan.h"
#include "vertex_tables.h"

OrvIStream::OrvIStream(OrvDirector* d, std::istream& in)
    : director(d), stream(in), makeUps(), textures(), polygons(), shares(), polygonCounter(0),
      objects(nullptr), objectCount(0), defaultSize(), faults(0), tables(nullptr),
      objectCapacity(0) {
    clean();
}

OrvIStream::~OrvIStream() {
    clean();
    delete[] objects;
}

// Values as the typed items hold them: members separated by blanks.
template <class T>
static bool scanValue(std::istream& in, T& value) {
    return OrvScanNumber(in, value);
}
static bool scanValue(std::istream& in, Orv2dRect& r) {
    int x, y;
    unsigned w, h;
    if (!OrvScanNumber(in, x) || !OrvScanNumber(in, y) || !OrvScanNumber(in, w) ||
        !OrvScanNumber(in, h))
        return false;
    r = Orv2dRect(x, y, w, h);
    return true;
}
static bool scanValue(std::istream& in, Orv2dPoint& p) {
    int x, y;
    if (!OrvScanNumber(in, x) || !OrvScanNumber(in, y)) return false;
    p = Orv2dPoint(x, y);
    return true;
}
static bool scanValue(std::istream& in, Orv3dRect& r) {
    return OrvScanNumber(in, r.x) && OrvScanNumber(in, r.y) && OrvScanNumber(in, r.w) &&
           OrvScanNumber(in, r.h);
}
static bool scanValue(std::istream& in, Orv3dPoint& p) {
    return OrvScanNumber(in, p.x) && OrvScanNumber(in, p.y) && OrvScanNumber(in, p.z);
}
static bool scanValue(std::istream& in, Orv3dVector& v) {
    return OrvScanNumber(in, v.x) && OrvScanNumber(in, v.y) && OrvScanNumber(in, v.z);
}
static bool scanValue(std::istream& in, Orv4dPoint& p) {
    return OrvScanNumber(in, p.x) && OrvScanNumber(in, p.y) && OrvScanNumber(in, p.z) &&
           OrvScanNumber(in, p.w);
}
static bool scanValue(std::istream& in, Orv3dVolume& v) {
    return OrvScanNumber(in, v.x) && OrvScanNumber(in, v.y) && OrvScanNumber(in, v.z) &&
           OrvScanNumber(in, v.w) && OrvScanNumber(in, v.h) && OrvScanNumber(in, v.d);
}

// Empties an association list: deleting the first item deletes the rest.
static void emptyList(OrvAList& list) {
    delete list.first;
    list.first = nullptr;
}

void OrvIStream::clean() {
    // The list held one count on each make-up read.
    for (OrvAListItem* item = makeUps.first; item; item = item->next)
        OrvRelease((OrvMakeUp*)item->value);
    emptyList(makeUps);
    emptyList(textures);
    // The lists own a copy of each polygon and a lock on each share, so that
    // what the reading made and nobody kept goes with it.
    for (OrvAListItem* item = polygons.first; item; item = item->next)
        OrvVertexCalls.destroy((OrvPolygon*)item->value);
    emptyList(polygons);
    for (OrvAListItem* item = shares.first; item; item = item->next)
        OrvVertexCalls.unLock((OrvShare*)item->value);
    emptyList(shares);
    polygonCounter = 0;
    delete tables;
    tables = nullptr;
}

int OrvIStream::fault(const char* format, ...) {
    char text[2048];
    va_list args;
    va_start(args, format);
    vsnprintf(text, sizeof text, format, args);
    va_end(args);
    faults++;
    return OrvError("%s", text);
}

void OrvIStream::nextItem() {
    OrvScanNextItem(stream);
}

void OrvIStream::word(char* buffer) {
    OrvScanWord(stream, buffer, 1024);
}

unsigned long OrvIStream::header(unsigned long is2d) {
    char c = 0;
    OrvScanChar(stream, c);
    if (c != '%') OrvError("OrvIStream : header error\n");
    char text[1024];
    word(text);
    unsigned version = 0;
    OrvScanNumber(stream, version);
    // The rest of the first line: the date, which nobody reads.
    for (int i = 0; i < 1024; i++) {
        int n = OrvScanPeek(stream);
        if (n == '\n' || n == std::char_traits<char>::eof()) break;
        OrvScanGet(stream);
    }
    for (int n = OrvScanPeek(stream); n == ' ' || n == '\n'; n = OrvScanPeek(stream))
        OrvScanGet(stream);
    word(text);
    nextItem();
    char dimension[1024];
    word(dimension);
    const char* expected = is2d ? "2d" : "3d";
    if (strcmp(dimension, expected)) {
        OrvError("%s (%s %s)\n", "## OrvIStream : Bad file definition.", expected, dimension);
        OrvError("  ## %s file expected ...\n", expected);
        return 0;
    }
    return !stream.eof();
}

void OrvIStream::keep(OrvActor* actor) {
    if (objectCount + 1 >= objectCapacity) {
        unsigned capacity = objectCapacity ? objectCapacity * 2 : 256;
        OrvActor** grown = new OrvActor*[capacity]();
        for (unsigned i = 0; i < objectCount; i++) grown[i] = objects[i];
        delete[] objects;
        objects = grown;
        objectCapacity = capacity;
    }
    objects[objectCount++] = actor;
}

OrvActor** OrvIStream::read(unsigned& count, unsigned long is2d) {
    count = 0;
    clean();
    if (!header(is2d)) return nullptr;
    char text[1024];
    char c = 0;
    if (is2d) {
        nextItem();
        word(text);
        OrvScanChar(stream, c);
        Orv2dRect size;
        scanValue(stream, size);
        if (c != '=') {
            OrvError("## OrvIStream : size error\n");
            return nullptr;
        }
        if (strcmp(text, "defaultSize")) {
            OrvError("%s (%s %s)\n", "## OrvIStream : size error", "defaultSize", text);
            return nullptr;
        }
        defaultSize = size;
    }
    nextItem();
    word(text);
    c = 0;
    OrvScanChar(stream, c);
    unsigned n = 0;
    OrvScanNumber(stream, n);
    if (c != '=') {
        OrvError("## OrvIStream : cardinal error\n");
        return nullptr;
    }
    if (strcmp(text, "cardinal")) {
        OrvError("%s (%s %s)\n", "## OrvIStream : cardinal error", "cardinal", text);
        return nullptr;
    }
    count = n;
    // The table grows with what is actually read rather than with what the
    // file announces, so a huge cardinal costs nothing until objects come.
    delete[] objects;
    objectCapacity = 256;
    objects = new OrvActor*[objectCapacity]();
    objectCount = 0;
    for (unsigned i = 0; i < n; i++) {
        OrvActor* actor = read();
        if (!actor) {
            OrvError("## OrvIStream : Bad format in object %d\n", (int)i);
            break;
        }
        keep(actor);
    }
    OrvActor** result = objects;
    objects = nullptr;
    objectCount = 0;
    objectCapacity = 0;
    return result;
}

OrvActor* OrvIStream::read() {
    char name[1024];
    nextItem();
    word(name);
    unsigned number = 0;
    OrvScanNumber(stream, number);  // objects are known by their position, not by this
    OrvClassInfo* info = OrvGetClassInfo(name);
    if (!info) fault("OrvIStream : Class %s not found ...\n", name);
    nextItem();
    char c = 0;
    OrvScanChar(stream, c);
    if (c != '{') {
        fault("## OrvIStream: Bad separator.\n");
        return nullptr;
    }
    if (!info || !info->readFunction) return nullptr;
    unsigned long before = faults;
    OrvActor* actor = info->readFunction(*this);
    if (!actor) return nullptr;
    nextItem();
    c = 0;
    OrvScanChar(stream, c);
    if (c != '}') {
        fault("OrvIStream : bad separator.\n");
        OrvActorCalls.destroy(actor);
        return nullptr;
    }
    // A fault inside the block means the object was not read in full: it is
    // dropped rather than handed over half built.
    if (faults != before || stream.fail()) {
        OrvActorCalls.destroy(actor);
        return nullptr;
    }
    return actor;
}

OrvActor* OrvIStream::readIndex() {
    unsigned number = 0;
    OrvScanNumber(stream, number);
    if (!objects || number == 0 || number > objectCount) return nullptr;
    return objects[number - 1];
}

// Key and value readers.

int _OrvReadItem_(OrvIStream& in, char* buffer, const char* key) {
    in.nextItem();
    in.word(buffer);
    if (strcmp(buffer, key))
        return in.fault("%s (%s %s)\n", "OrvIStream: Definition error", key, buffer);
    return 1;
}

int _OrvReadItem_(OrvIStream& in, char* buffer, const char* key, char* value) {
    if (!_OrvReadItem_(in, buffer, key)) return 0;
    in.word(value);
    if (!strcmp(value, "None")) value[0] = 0;
    return 1;
}

int _OrvReadItem_(OrvIStream& in, char* buffer, const char* key, unsigned long& value) {
    in.nextItem();
    in.word(buffer);
    if (strcmp(buffer, key))
        return in.fault("%s (%s %s)\n", "OrvIStream: Definition error.", key, buffer);
    unsigned long v = 0;
    if (!OrvScanNumber(in.stream, v)) return 0;
    value = v;
    return 1;
}

int _OrvReadItem_(OrvIStream& in, char* buffer, const char* key, long& value) {
    in.nextItem();
    in.word(buffer);
    if (strcmp(buffer, key))
        return in.fault("%s (%s %s)\n", "OrvIStream: Definition error.", key, buffer);
    long v = 0;
    if (!OrvScanNumber(in.stream, v)) return 0;
    value = v;
    return 1;
}

int _OrvReadItemBoolean_(OrvIStream& in, char* buffer, const char* key, unsigned long& value) {
    if (!_OrvReadItem_(in, buffer, key)) return 0;
    char answer[1024];
    in.word(answer);
    if (!strcmp(answer, "yes"))
        value = 1;
    else if (!strcmp(answer, "no"))
        value = 0;
    else
        return in.fault("## OrvIStream: Definition error (bool).\n");
    return 1;
}

// Typed items: the key, then the value; a different key is reported, and
// the value is left as it was.

template <class T>
static OrvIStream& readTyped(OrvIStream& in, const char* key, const char* message, T& value) {
    char text[1024];
    in.nextItem();
    in.word(text);
    if (strcmp(text, key)) {
        in.fault("%s\n", message);
        return in;
    }
    T v{};
    if (scanValue(in.stream, v)) value = v;
    return in;
}

OrvIStream& OrvIStream::operator>>(Orv2dRect& r) {
    return readTyped(*this, "rect2d", "OrvIStream : Not a 2dRect object.", r);
}
OrvIStream& OrvIStream::operator>>(Orv2dPoint& p) {
    return readTyped(*this, "point2d", "OrvIStream : Not a 2dPoint object.", p);
}
// "usData", the key of every unsigned short, is kept as it is for file compatibility.
OrvIStream& OrvIStream::operator>>(unsigned short& v) {
    return readTyped(*this, "usData", "OrvIStream : Bad data.", v);
}
OrvIStream& OrvIStream::operator>>(short& v) {
    return readTyped(*this, "sData", "OrvIStream : Bad data.", v);
}
OrvIStream& OrvIStream::operator>>(unsigned int& v) {
    return readTyped(*this, "uiData", "OrvIStream : Bad data.", v);
}
OrvIStream& OrvIStream::operator>>(int& v) {
    return readTyped(*this, "iData", "OrvIStream : Bad data.", v);
}
OrvIStream& OrvIStream::operator>>(unsigned long& v) {
    return readTyped(*this, "ulData", "OrvIStream : Bad data.", v);
}
OrvIStream& OrvIStream::operator>>(long& v) {
    return readTyped(*this, "lData", "OrvIStream : Bad data.", v);
}
OrvIStream& OrvIStream::operator>>(float& v) {
    return readTyped(*this, "fData", "OrvIStream : Bad data.", v);
}
OrvIStream& OrvIStream::operator>>(double& v) {
    return readTyped(*this, "dData", "OrvIStream : Bad data.", v);
}
OrvIStream& OrvIStream::operator>>(Orv3dRect& r) {
    return readTyped(*this, "rect3d", "OrvIStream : Bad data.", r);
}
OrvIStream& OrvIStream::operator>>(Orv3dPoint& p) {
    return readTyped(*this, "point3d", "OrvIStream : Bad data.", p);
}
OrvIStream& OrvIStream::operator>>(Orv3dVector& v) {
    return readTyped(*this, "vector3d", "OrvIStream : Bad data.", v);
}
OrvIStream& OrvIStream::operator>>(Orv4dPoint& p) {
    return readTyped(*this, "point4d", "OrvIStream : Bad data.", p);
}
OrvIStream& OrvIStream::operator>>(Orv3dVolume& v) {
    return readTyped(*this, "volume3d", "OrvIStream : Bad data.", v);
}

OrvIStream& OrvIStream::operator>>(Orv3dMatrix& m) {
    char text[1024];
    nextItem();
    word(text);
    if (strcmp(text, "matrix3d")) {
        fault("OrvIStream : Bad data.\n");
        return *this;
    }
    float values[16];
    for (int i = 0; i < 16; i++)
        if (!OrvScanNumber(stream, values[i])) return *this;
    for (int i = 0; i < 16; i++) m.m[i] = values[i];
    return *this;
}

OrvIStream& OrvIStream::operator>>(char*& label) {
    char text[1024];
    nextItem();
    word(text);
    if (strcmp(text, "label")) {
        fault("OrvIStream : Bad label value.\n");
        return *this;
    }
    const char* value = OrvReadString(stream);
    if (!stream) {
        fault("OrvIStream : Bad label value.\n");
        return *this;
    }
    char* copy = new char[strlen(value) + 1];
    strcpy(copy, value);
    label = copy;
    return *this;
}

void OrvIStream::readPosition(unsigned long& position) {
    char text[1024];
    nextItem();
    word(text);
    if (strcmp(text, "position")) {
        fault("OrvIStream : Bad position data.\n");
        return;
    }
    unsigned long v = 0;
    if (OrvScanNumber(stream, v)) position = v;
}

// A bitmap by name: the director's own first, else loaded along the path.
static OrvBitmap* findBitmap(OrvDirector* director, const char* name) {
    if (!director) return nullptr;
    OrvBitmap* found = director->bitmap(name);
    if (!found) found = director->readBitmap(director->rootCanvas, name);
    return found;
}

OrvIStream& OrvIStream::operator>>(OrvBitmap*& bitmap) {
    char key[1024];
    nextItem();
    word(key);
    if (strcmp(key, "bitmap")) {
        fault("OrvIStream : Bad bitmap value.\n");
        return *this;
    }
    const char* read = OrvReadString(stream);
    if (!stream) {
        fault("OrvIStream : Bad bitmap value.\n");
        return *this;
    }
    // The string buffer is shared: the name is copied before the next read.
    char* name = (char*)malloc(strlen(read) + 1);
    strcpy(name, read);
    nextItem();
    word(key);
    const char* maskName = strcmp(key, "mask") ? nullptr : OrvReadString(stream);
    if (!maskName || !stream) {
        free(name);
        fault("OrvIStream : Bad bitmap mask value.\n");
        return *this;
    }
    if (name[0]) {
        OrvBitmap* found = findBitmap(director, name);
        if (found) {
            bitmap = found;
            if (maskName[0]) {
                OrvBitmap* mask = findBitmap(director, maskName);
                if (mask && mask != found) found->setMask(mask);
            }
        }
    }
    free(name);
    return *this;
}
