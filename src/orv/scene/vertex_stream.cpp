// Vertex data in the text format: arrays in the vertex form and the shared
// form, index blocks, the vertex items, face colours, and the writer's and
// reader's tables of shares and polygons.
#include "orv/stream.h"
#include "orv/vertex.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "../stream/line.h"
#include "../stream/scan.h"
#include "../stream/vertex_tables.h"
#include "vertex_io.h"

// The stream holds shares and polygons opaquely; it lets go of them here.
static struct _OrvRegisterVertexCalls_ {
    _OrvRegisterVertexCalls_() {
        OrvVertexCalls.unLock = [](OrvShare* share) { share->unLock(); };
        OrvVertexCalls.destroy = [](OrvPolygon* polygon) { delete polygon; };
    }
} registerVertexCalls;

// ---------------------------------------------------------------------------
// Elements
// ---------------------------------------------------------------------------

// The text of an element, written at p, which has room for elementRoom
// bytes; the end is returned.
const size_t elementRoom = 4 * 32 + 3;

static char* put(char* p, const float* values, unsigned count) {
    for (unsigned k = 0; k < count; k++) {
        if (k) *p++ = ' ';
        p += OrvFormatG((double)values[k], p);
    }
    return p;
}
static char* put(char* p, const Orv3dPoint& v) {
    const float values[3] = {v.x, v.y, v.z};
    return put(p, values, 3);
}
static char* put(char* p, const Orv4dPoint& v) {
    const float values[4] = {v.x, v.y, v.z, v.w};
    return put(p, values, 4);
}
static char* put(char* p, const OrvRGB& c) {
    const float values[3] = {c.red, c.green, c.blue};
    return put(p, values, 3);
}
static char* put(char* p, const Orv3dVector& v) {
    const float values[3] = {v.x, v.y, v.z};
    return put(p, values, 3);
}
static char* put(char* p, const OrvTextureUV& t) {
    const float values[2] = {t.u, t.v};
    return put(p, values, 2);
}
// An edge is its byte: the values 0 and 1 stand in the file as such.
static char* put(char* p, const OrvEdge& e) {
    *p++ = (char)e;
    return p;
}

static bool take(OrvScanner& in, Orv3dPoint& p) {
    return in.number(p.x) && in.number(p.y) && in.number(p.z);
}
static bool take(OrvScanner& in, Orv4dPoint& p) {
    return in.number(p.x) && in.number(p.y) && in.number(p.z) && in.number(p.w);
}
static bool take(OrvScanner& in, OrvRGB& c) {
    return in.number(c.red) && in.number(c.green) && in.number(c.blue);
}
static bool take(OrvScanner& in, Orv3dVector& v) {
    return in.number(v.x) && in.number(v.y) && in.number(v.z);
}
static bool take(OrvScanner& in, OrvTextureUV& t) {
    return in.number(t.u) && in.number(t.v);
}
static bool take(OrvScanner& in, unsigned& v) {
    return in.number(v);
}
// Read by character extraction, which skips blanks: a zero byte is a value.
static bool take(OrvScanner& in, OrvEdge& e) {
    char c;
    if (!in.take(c)) return false;
    e = (OrvEdge)c;
    return true;
}

// An element of plain numbers and its comma at once, as the scanner can
// take them most of the time; false leaves both to take.
template <unsigned width, class T>
static bool quickFloats(OrvScanner& in, T& value) {
    static_assert(sizeof(T) == width * sizeof(float), "the element is its floats, in order");
    float f[width];
    if (!in.quick(f, width, ',')) return false;
    memcpy(&value, f, sizeof value);
    return true;
}
static bool quick(OrvScanner& in, Orv3dPoint& p) {
    return quickFloats<3>(in, p);
}
static bool quick(OrvScanner& in, Orv4dPoint& p) {
    return quickFloats<4>(in, p);
}
static bool quick(OrvScanner& in, OrvRGB& c) {
    return quickFloats<3>(in, c);
}
static bool quick(OrvScanner& in, Orv3dVector& v) {
    return quickFloats<3>(in, v);
}
static bool quick(OrvScanner& in, OrvTextureUV& t) {
    return quickFloats<2>(in, t);
}
static bool quick(OrvScanner& in, unsigned& v) {
    return in.quick(v, ',');
}
static bool quick(OrvScanner&, OrvEdge&) {
    return false;
}

// One element a line at one more level, a comma after each but the last.
template <class T>
static void writeElements(OrvOStream& out, const T* values, unsigned count) {
    out.indentation++;
    const char* indent = out.indent();
    out.indentation--;
    size_t indentLength = strlen(indent);
    _OrvLine_ line(out.stream, count > 16 ? _OrvLine_::bulkSize : _OrvLine_::lineSize);
    for (unsigned i = 0; i < count; i++) {
        char* p = line.room(indentLength + elementRoom + 2);
        memcpy(p, indent, indentLength);
        p = put(p + indentLength, values[i]);
        if (i + 1 < count) *p++ = ',';
        *p++ = '\n';
        line.commit(p);
    }
}

void _OrvWriteValues_(OrvOStream& out, const unsigned* values, unsigned count) {
    out.indentation++;
    const char* indent = out.indent();
    out.indentation--;
    size_t indentLength = strlen(indent);
    _OrvLine_ line(out.stream, count > 16 ? _OrvLine_::bulkSize : _OrvLine_::lineSize);
    for (unsigned i = 0; i < count; i++) {
        char* p = line.room(indentLength + 20 + 2);
        if (i % 10 == 0) {
            memcpy(p, indent, indentLength);
            p += indentLength;
        }
        p += OrvFormatUnsigned(values[i], p);
        if (i + 1 == count) {
            *p++ = '\n';
        } else {
            *p++ = ',';
            *p++ = i % 10 == 9 ? '\n' : ' ';
        }
        line.commit(p);
    }
}

static int listFault(OrvIStream& in, const char* format, const _OrvListMessages_& m) {
    return in.fault(format, m.name);
}

template <class T>
static bool readElements(OrvIStream& in, unsigned count, std::vector<T>& values,
                         const _OrvListMessages_& m, bool upTo = false) {
    // The list is read ahead of the stream; what is left goes back before
    // the stream is used again (messages do not read).
    OrvScanner s(in.stream, true);
    char c = 0;
    s.nextItem();
    if (!s.take(c) || c != '[') return listFault(in, m.begin, m);
    values.clear();
    if (upTo) {
        if (s.skip() && s.peek() == ']') {
            s.get();
            return true;
        }
        for (;;) {
            T v{};
            if (values.size() == count || !take(s, v)) return listFault(in, m.end, m);
            values.push_back(v);
            if (!s.take(c)) return listFault(in, m.end, m);
            if (c == ']') return true;
            if (c != ',') return listFault(in, m.comma, m);
        }
    }
    // Room for what the file holds, not for what it claims.
    values.reserve(count < 65536 ? count : 65536);
    for (unsigned i = 0; i < count; i++) {
        T v{};
        if (i + 1 < count && quick(s, v)) {
            values.push_back(v);
            continue;
        }
        if (!take(s, v)) return listFault(in, i + 1 < count ? m.comma : m.end, m);
        values.push_back(v);
        if (i + 1 < count && (!s.take(c) || c != ',')) return listFault(in, m.comma, m);
    }
    if (!s.take(c) || c != ']') return listFault(in, m.end, m);
    return true;
}

bool _OrvReadValues_(OrvIStream& in, unsigned count, bool upTo, std::vector<unsigned>& values,
                     const _OrvListMessages_& m) {
    return readElements(in, count, values, m, upTo);
}

bool _OrvReadVectors_(OrvIStream& in, std::vector<Orv3dVector>& values,
                      const _OrvListMessages_& m) {
    return readElements(in, ~0u, values, m, true);
}

void _OrvWriteVectors_(OrvOStream& out, const Orv3dVector* values, unsigned count) {
    writeElements(out, values, count);
}

bool _OrvReadClosing_(OrvIStream& in) {
    char c = 0;
    in.nextItem();
    return OrvScanChar(in.stream, c) && c == '}';
}

bool _OrvNumber_(const char* word, unsigned& number) {
    if (!word[0] || strlen(word) > 9) return false;
    for (const char* c = word; *c; c++)
        if (*c < '0' || *c > '9') return false;
    number = (unsigned)strtoul(word, nullptr, 10);
    return true;
}

bool _OrvReadKey_(OrvIStream& in, const char* key, const char* badKey) {
    char word[1024];
    in.nextItem();
    in.word(word);
    if (strcmp(word, key)) return in.fault(badKey, key, word);
    return true;
}

bool _OrvReadYesNo_(OrvIStream& in, const char* key, unsigned long& value, const char* badKey,
                    const char* badWord) {
    if (!_OrvReadKey_(in, key, badKey)) return false;
    char word[1024];
    in.word(word);
    if (!strcmp(word, "yes"))
        value = 1;
    else if (!strcmp(word, "no"))
        value = 0;
    else
        return in.fault(badWord, key, word);
    return true;
}

// ---------------------------------------------------------------------------
// Arrays in the vertex form
// ---------------------------------------------------------------------------

static const char* const badKey = "OrvPolygon : OrvIStream : Bad key (%s %s).\n";

// Key, number and list; or key, ".USE" and the number of a share written
// before.
template <class T>
static void writeArray(OrvOStream& out, const char* key, const OrvShare* share) {
    if (!share) return;
    unsigned number;
    if (out.find(number, share)) {
        _OrvLine_(out.stream)
            .add(out.indent())
            .add(key)
            .add("\t.USE ")
            .add((unsigned long)number)
            .add('\n');
        return;
    }
    _OrvLine_(out.stream)
        .add(out.indent())
        .add(key)
        .add(' ')
        .add((unsigned long)number)
        .add(" [\n");
    writeElements(out, (const T*)share->data, share->cardinal);
    _OrvLine_(out.stream).add(out.indent()).add("]\n");
}

void OrvVertexData::writePoints(OrvOStream& out, const OrvShare* share) {
    writeArray<Orv3dPoint>(out, "point", share);
}
void OrvVertexData::writePoints4d(OrvOStream& out, const OrvShare* share) {
    writeArray<Orv4dPoint>(out, "point", share);
}
void OrvVertexData::writeColors(OrvOStream& out, const OrvShare* share) {
    writeArray<OrvRGB>(out, "color", share);
}
void OrvVertexData::writeNormals(OrvOStream& out, const OrvShare* share) {
    writeArray<Orv3dVector>(out, "normal", share);
}
void OrvVertexData::writeTextures(OrvOStream& out, const OrvShare* share) {
    writeArray<OrvTextureUV>(out, "texture", share);
}
void OrvVertexData::writeEdges(OrvOStream& out, const OrvShare* share) {
    writeArray<OrvEdge>(out, "edge", share);
}

template <class T>
static OrvShare* readArray(OrvIStream& in, const char* function, const char* key, int kind,
                           unsigned count, unsigned long readOnly) {
    char word[1024];
    if (!_OrvReadKey_(in, key, badKey)) return nullptr;
    in.word(word);
    unsigned number = 0;
    if (!strcmp(word, ".USE")) {
        OrvShare* share = nullptr;
        if (OrvScanNumber(in.stream, number)) share = in.findShared(number, nullptr);
        if (!share || share->kind != kind) {
            in.fault("OrvVertexData::%s : Can't find shared index.\n", function);
            return nullptr;
        }
        return share;
    }
    _OrvListMessages_ m = {"OrvVertexData::%s : Bad data begin separator. \n",
                           "OrvVertexData::%s : Bad comma separator.\n",
                           "OrvVertexData::%s : Bad data end separator.\n", function};
    if (!_OrvNumber_(word, number)) {
        in.fault(m.begin, function);
        return nullptr;
    }
    std::vector<T> values;
    if (!readElements(in, count, values, m)) return nullptr;
    T* array = new T[count ? count : 1];
    for (unsigned i = 0; i < count; i++) array[i] = values[i];
    OrvShare* share = new OrvShare(count, array, readOnly, 1);
    in.findShared(number, share);
    share->lock();  // the list's
    return share;
}

OrvShare* OrvVertexData::readPoints(OrvIStream& in, unsigned count, unsigned long readOnly) {
    return readArray<Orv3dPoint>(in, "readPoints", "point", OrvShare3dPoints, count, readOnly);
}
OrvShare* OrvVertexData::readPoints4d(OrvIStream& in, unsigned count, unsigned long readOnly) {
    return readArray<Orv4dPoint>(in, "readPoints4d", "point", OrvShare4dPoints, count, readOnly);
}
OrvShare* OrvVertexData::readColors(OrvIStream& in, unsigned count, unsigned long readOnly) {
    return readArray<OrvRGB>(in, "readColors", "color", OrvShareColors, count, readOnly);
}
OrvShare* OrvVertexData::readNormals(OrvIStream& in, unsigned count, unsigned long readOnly) {
    return readArray<Orv3dVector>(in, "readNormals", "normal", OrvShareNormals, count, readOnly);
}
OrvShare* OrvVertexData::readTextures(OrvIStream& in, unsigned count, unsigned long readOnly) {
    return readArray<OrvTextureUV>(in, "readTextures", "texture", OrvShareTextures, count,
                                   readOnly);
}
OrvShare* OrvVertexData::readEdges(OrvIStream& in, unsigned count, unsigned long readOnly) {
    return readArray<OrvEdge>(in, "readEdges", "edge", OrvShareEdges, count, readOnly);
}

// ---------------------------------------------------------------------------
// Index blocks
// ---------------------------------------------------------------------------

// The blocks in the order of the file, with their places in a share
// (point 0, colour 1, normal 2, edge 3, texture 4).
static const struct {
    const char* key;
    unsigned place;
} fileBlocks[5] = {{"pointIndex", 0},
                   {"colorIndex", 1},
                   {"normalIndex", 2},
                   {"textureIndex", 4},
                   {"edgeIndex", 3}};

// Which blocks a vertex data has, by place.
static void presentBlocks(const OrvVertexData& data, bool present[5]) {
    present[0] = true;
    present[1] = data.vertexSharedColors() != nullptr;
    present[2] = data.vertexSharedNormals() != nullptr;
    present[3] = data.vertexSharedEdges() != nullptr;
    present[4] = data.vertexSharedTextures() != nullptr;
}

void OrvVertexData::writeIndex(OrvOStream& out, const OrvVertexData* data) {
    const OrvShare* index = data ? data->vertexSharedIndex() : nullptr;
    if (!index || !index->index()) return;
    unsigned number;
    if (out.similarIndex(number, data) || out.find(number, index)) {
        _OrvLine_(out.stream)
            .add(out.indent())
            .add("pointIndex\t.USE ")
            .add((unsigned long)number)
            .add('\n');
        return;
    }
    bool present[5];
    presentBlocks(*data, present);
    unsigned blocks = 0;
    for (bool p : present) blocks += p;
    unsigned n = index->cardinal / blocks;
    unsigned offset[5], at = 0;
    for (unsigned place = 0; place < 5; place++)
        if (present[place]) offset[place] = at++ * n;
    for (const auto& b : fileBlocks) {
        if (!present[b.place]) continue;
        _OrvLine_(out.stream)
            .add(out.indent())
            .add(b.key)
            .add(' ')
            .add((unsigned long)number)
            .add(" [\n");
        _OrvWriteValues_(out, index->index() + offset[b.place], n);
        _OrvLine_(out.stream).add(out.indent()).add("]\n");
    }
}

// Reads the blocks of an index of count values. With `expected` the blocks
// are those (by place); without, the first block's length and the keys
// that follow tell them.
static OrvShare* readIndexBlocks(OrvIStream& in, unsigned count, unsigned long readOnly,
                                 const bool* expected) {
    const _OrvListMessages_ m = {"OrvVertexData::readIndex : Bad begin separator (index).\n",
                                 "OrvVertexData::readIndex : Bad comma separator.\n",
                                 "OrvVertexData::readIndex : Bad end separator (index).\n", ""};
    char word[1024];
    if (!_OrvReadKey_(in, "pointIndex", badKey)) return nullptr;
    in.word(word);
    unsigned number = 0;
    if (!strcmp(word, ".USE")) {
        OrvShare* share = nullptr;
        if (OrvScanNumber(in.stream, number)) share = in.findShared(number, nullptr);
        if (!share || share->kind != OrvShareIndex) {
            in.fault("OrvVertexData::%s : Can't find shared index.\n", "readIndex");
            return nullptr;
        }
        return share;
    }
    if (!_OrvNumber_(word, number)) {
        in.fault("%s", m.begin);
        return nullptr;
    }
    std::vector<unsigned> block[5];
    unsigned n;
    if (expected) {
        unsigned blocks = 0;
        for (int k = 0; k < 5; k++) blocks += expected[k];
        if (count % blocks) {
            in.fault("OrvPolygon::OrvPolygon : Internal error (idx).\n");
            return nullptr;
        }
        n = count / blocks;
        if (!_OrvReadValues_(in, n, false, block[0], m)) return nullptr;
    } else {
        if (!_OrvReadValues_(in, count, true, block[0], m)) return nullptr;
        n = (unsigned)block[0].size();
        if (n ? count % n : count) {
            in.fault("%s", m.end);
            return nullptr;
        }
    }
    bool present[5] = {true, false, false, false, false};
    unsigned got = n, next = 1;
    while (expected ? next < 5 : got < count) {
        if (expected) {
            if (!expected[fileBlocks[next].place]) {
                next++;
                continue;
            }
            if (!_OrvReadKey_(in, fileBlocks[next].key, badKey)) return nullptr;
        } else {
            // The next key must be one of the blocks still to come, in order.
            in.nextItem();
            in.word(word);
            while (next < 5 && strcmp(word, fileBlocks[next].key)) next++;
            if (next == 5) {
                in.fault(badKey, "colorIndex", word);
                return nullptr;
            }
        }
        in.word(word);  // the number again
        if (!_OrvNumber_(word, number)) {
            in.fault("%s", m.begin);
            return nullptr;
        }
        unsigned place = fileBlocks[next].place;
        if (!_OrvReadValues_(in, n, false, block[place], m)) return nullptr;
        present[place] = true;
        got += n;
        next++;
    }
    unsigned* all = new unsigned[count ? count : 1];
    unsigned at = 0;
    for (int place = 0; place < 5; place++) {
        if (!present[place]) continue;
        if (n) memcpy(all + at, block[place].data(), n * sizeof(unsigned));
        at += n;
    }
    OrvShare* share = new OrvShare(count, all, readOnly, 1);
    in.findShared(number, share);
    share->lock();  // the list's
    return share;
}

OrvShare* OrvVertexData::readIndex(OrvIStream& in, unsigned count, unsigned long readOnly) {
    return readIndexBlocks(in, count, readOnly, nullptr);
}

// ---------------------------------------------------------------------------
// Vertex data
// ---------------------------------------------------------------------------

static const char* flagWord(const OrvShare* share) {
    return share && share->isReadOnly() ? "readOnly" : "readWrite";
}

void _OrvWriteArrays_(OrvOStream& out, const OrvVertexData& data) {
    out.key("rational") << (data.isRationalPoint() ? "yes" : "no") << '\n';
    const OrvShare* shares[5] = {data.vertexSharedAnyPoints(), data.vertexSharedColors(),
                                 data.vertexSharedNormals(), data.vertexSharedTextures(),
                                 data.vertexSharedEdges()};
    const char* keys[5] = {"pointCardinal", "colorCardinal", "normalCardinal", "textureCardinal",
                           "edgeCardinal"};
    for (int k = 0; k < 5; k++)
        out.key(keys[k]) << (shares[k] ? shares[k]->cardinal : 0) << '\t' << flagWord(shares[k])
                         << '\n';
    if (data.isRationalPoint())
        OrvVertexData::writePoints4d(out, shares[0]);
    else
        OrvVertexData::writePoints(out, shares[0]);
    OrvVertexData::writeColors(out, shares[1]);
    OrvVertexData::writeNormals(out, shares[2]);
    OrvVertexData::writeTextures(out, shares[3]);
    OrvVertexData::writeEdges(out, shares[4]);
}

unsigned long OrvVertexData::writeNonIndexed(OrvOStream& out) const {
    if (!checkValidity())
        return OrvError("OrvVertexData::writeNonIndexed : Invalid vertex data.\n");
    out.key("indexed") << "no\n";
    _OrvWriteArrays_(out, *this);
    return 1;
}

unsigned long OrvVertexData::writeIndexed(OrvOStream& out) const {
    if (!checkValidity()) return OrvError("OrvVertexData::writeIndexed : Invalid vertex data.\n");
    if (!isIndexed()) return OrvError("OrvVertexData::writeIndexed : Non indexed vertex data.\n");
    const OrvShare* index = vertexSharedIndex();
    out.key("indexed") << "yes\n";
    out.key("indexCardinal") << index->cardinal << '\t' << flagWord(index) << '\n';
    _OrvWriteArrays_(out, *this);
    writeIndex(out, this);
    return 1;
}

unsigned long OrvVertexData::writeVertex(OrvOStream& out) const {
    return isIndexed() ? writeIndexed(out) : writeNonIndexed(out);
}

// A cardinal line: key, count, and the read-only flag.
static bool readCardinal(OrvIStream& in, const char* key, unsigned& count,
                         unsigned long& readOnly) {
    if (!_OrvReadKey_(in, key, badKey)) return false;
    if (!OrvScanNumber(in.stream, count))
        return in.fault("OrvVertexData: Read : Bad file definition.\n");
    char word[1024];
    in.word(word);
    if (!strcmp(word, "readOnly"))
        readOnly = 1;
    else if (!strcmp(word, "readWrite"))
        readOnly = 0;
    else
        return in.fault("OrvPolygon::OrvPolygon : Bad flag (%s or %s - %s)\n", "readOnly",
                        "readWrite", word);
    return true;
}

// A value of an index block that points past its array.
static bool indexInside(OrvIStream& in, const OrvVertexData& data) {
    if (!data.isIndexed()) return true;
    unsigned n = data.vertexCardinal();
    struct {
        const unsigned* index;
        OrvShare* array;
        const char* name;
    } blocks[5] = {{data.vertexPointsIndex(), data.vertexSharedAnyPoints(), "point"},
                   {data.vertexColorsIndex(), data.vertexSharedColors(), "color"},
                   {data.vertexNormalsIndex(), data.vertexSharedNormals(), "normal"},
                   {data.vertexEdgesIndex(), data.vertexSharedEdges(), "edge"},
                   {data.vertexTexturesIndex(), data.vertexSharedTextures(), "texture"}};
    bool inside = true;
    for (const auto& b : blocks) {
        if (!b.array) continue;
        for (unsigned k = 0; k < n; k++)
            if (b.index[k] >= b.array->cardinal) {
                in.fault("OrvVertex::setIndex: Some %s index exceed max. of array.\n", b.name);
                inside = false;
                break;
            }
    }
    return inside;
}

static const char* const badWord = "OrvVertexData: Read : Bad file definition.\n";

bool _OrvReadArrays_(OrvIStream& in, OrvShare* s[5], const char* noPoints) {
    unsigned long rational = 0;
    if (!_OrvReadYesNo_(in, "rational", rational, badKey, badWord)) return false;
    // Point, colour, normal, texture, edge: the order of the file.
    const char* keys[5] = {"pointCardinal", "colorCardinal", "normalCardinal", "textureCardinal",
                           "edgeCardinal"};
    unsigned counts[5];
    unsigned long flags[5];
    for (int k = 0; k < 5; k++) {
        s[k] = nullptr;
        if (!readCardinal(in, keys[k], counts[k], flags[k])) return false;
    }
    if (!counts[0]) return in.fault("%s", noPoints);
    // What is read belongs to the stream's list until a layout locks it.
    typedef OrvShare* (*Reader)(OrvIStream&, unsigned, unsigned long);
    const Reader readers[5] = {rational ? OrvVertexData::readPoints4d : OrvVertexData::readPoints,
                               OrvVertexData::readColors, OrvVertexData::readNormals,
                               OrvVertexData::readTextures, OrvVertexData::readEdges};
    for (int k = 0; k < 5; k++)
        if (counts[k] && !(s[k] = readers[k](in, counts[k], flags[k]))) return false;
    // A ".USE" may name an array of another size than the file announced.
    for (int k = 0; k < 5; k++)
        if (s[k] && s[k]->cardinal != counts[k])
            return in.fault("OrvPolygon::OrvPolygon : Internal error.\n");
    return true;
}

unsigned long OrvVertexData::readVertex(OrvIStream& in) {
    unsigned long indexed = 0, indexReadOnly = 0;
    unsigned indexCount = 0;
    if (!_OrvReadYesNo_(in, "indexed", indexed, badKey, badWord)) return 0;
    if (indexed && !readCardinal(in, "indexCardinal", indexCount, indexReadOnly)) return 0;
    OrvShare* s[5];
    if (!_OrvReadArrays_(in, s, "OrvPolygon::OrvPolygon : Can't find points array.\n")) return 0;
    unsigned pointCount = s[0]->cardinal;
    OrvShare* index = nullptr;
    if (indexed) {
        const bool expected[5] = {true, s[1] != nullptr, s[2] != nullptr, s[4] != nullptr,
                                  s[3] != nullptr};
        index = readIndexBlocks(in, indexCount, indexReadOnly, expected);
        if (!index) return 0;
    }
    _OrvVertexType_* before = vertex;
    if (indexed)
        createIndexedVertex(s[0], s[1], s[2], s[3], s[4]);
    else
        createNonIndexedVertex(s[0], s[1], s[2], s[3], s[4]);
    if (vertex == before) return in.fault("OrvPolygon::OrvPolygon : Internal error.\n");
    bool good = true;
    if (indexed) {
        if (index->cardinal != indexCount || index->cardinal % dataNumber())
            good = in.fault("OrvPolygon::OrvPolygon : Internal error (idx).\n");
        else
            vertex->setIndex(index);
        good = good && indexInside(in, *this);
    } else {
        for (int k = 1; k < 5; k++)
            if (s[k] && s[k]->cardinal < pointCount)
                good = in.fault("OrvPolygon::OrvPolygon : Internal error.\n");
    }
    if (!good) {
        delete vertex;
        vertex = nullptr;
        return 0;
    }
    return 1;
}

// ---------------------------------------------------------------------------
// Shared arrays in the record form
// ---------------------------------------------------------------------------

static const struct {
    const char* key;
    const char* tag;
} sharedKinds[7] = {{"sharedPoints", "readSharedPoints"}, {"sharedPoints4d", "readSharedPoints4d"},
                    {"sharedColors", "readSharedColors"}, {"sharedVectors", "readSharedVectors"},
                    {"sharedEdges", "readSharedEdges"},   {"sharedTextures", "readSharedTextures"},
                    {"sharedIndex", "readSharedIndex"}};

OrvOStream& OrvOStream::operator<<(const OrvShare* share) {
    if (!share || share->kind < 0 || share->kind > OrvShareIndex ||
        (!share->data && share->cardinal)) {
        OrvError("OrvOStream::writeSharedData : Bad arguments. \n");
        return *this;
    }
    const char* key = sharedKinds[share->kind].key;
    unsigned number;
    if (find(number, share)) {
        _OrvLine_(stream)
            .add(indent())
            .add(key)
            .add("\t.USE ")
            .add((unsigned long)number)
            .add('\n');
        return *this;
    }
    writeComments("Shared data ...", 1);
    this->key("cardinal") << share->cardinal << '\t' << flagWord(share) << '\n';
    _OrvLine_(stream).add(indent()).add(key).add(' ').add((unsigned long)number).add(" [\n");
    unsigned n = share->cardinal;
    switch (share->kind) {
        case OrvShare3dPoints:
            writeElements(*this, share->points(), n);
            break;
        case OrvShare4dPoints:
            writeElements(*this, share->points4d(), n);
            break;
        case OrvShareColors:
            writeElements(*this, share->colors(), n);
            break;
        case OrvShareNormals:
            writeElements(*this, share->normals(), n);
            break;
        case OrvShareEdges:
            writeElements(*this, share->edges(), n);
            break;
        case OrvShareTextures:
            writeElements(*this, share->textures(), n);
            break;
        case OrvShareIndex:
            _OrvWriteValues_(*this, share->index(), n);
            break;
    }
    _OrvLine_(stream).add(indent()).add("]\n");
    return *this;
}

template <class T>
static OrvShare* readShared(OrvIStream& in, unsigned count, unsigned long readOnly,
                            const _OrvListMessages_& m) {
    std::vector<T> values;
    if (!readElements(in, count, values, m)) return nullptr;
    T* array = new T[count ? count : 1];
    for (unsigned i = 0; i < count; i++) array[i] = values[i];
    return new OrvShare(count, array, readOnly, 1);
}

static int kindOfKey(const char* word) {
    for (int k = 0; k < 7; k++)
        if (!strcmp(word, sharedKinds[k].key)) return k;
    return -1;
}

OrvIStream& OrvIStream::operator>>(OrvShare*& share) {
    char word[1024];
    nextItem();
    word[0] = 0;
    this->word(word);
    if (strcmp(word, "cardinal")) {
        // A later occurrence: key, ".USE" and the number.
        int kind = kindOfKey(word);
        if (kind < 0) {
            fault("OrvIStream : OrvShare : Bad key (%s).\n", word);
            return *this;
        }
        char use[1024];
        this->word(use);
        unsigned number = 0;
        OrvShare* found = nullptr;
        if (!strcmp(use, ".USE") && OrvScanNumber(stream, number))
            found = findShared(number, nullptr);
        if (!found || found->kind != kind) {
            fault("OrvIStream : %s : Can't find shared index.\n", sharedKinds[kind].tag);
            return *this;
        }
        share = found;
        return *this;
    }
    unsigned count = 0;
    if (!OrvScanNumber(stream, count)) {
        fault("OrvIStream : OrvShare : Bad key (%s).\n", word);
        return *this;
    }
    this->word(word);
    unsigned long readOnly;
    if (!strcmp(word, "readOnly"))
        readOnly = 1;
    else if (!strcmp(word, "readWrite"))
        readOnly = 0;
    else {
        fault("OrvIStream: OrvShare : Bad flag (%s or %s - %s)\n", "readOnly", "readWrite", word);
        return *this;
    }
    nextItem();
    this->word(word);
    int kind = kindOfKey(word);
    if (kind < 0) {
        fault("OrvIStream : OrvShare : Bad key (%s).\n", word);
        return *this;
    }
    _OrvListMessages_ m = {"OrvIStream : %s : Bad data begin separator. \n",
                           "OrvIStream : %s : Bad comma separator.\n",
                           "OrvIStream : %s : Bad data end separator.\n", sharedKinds[kind].tag};
    this->word(word);
    unsigned number;
    if (!_OrvNumber_(word, number)) {
        fault(m.begin, m.name);
        return *this;
    }
    OrvShare* made = nullptr;
    switch (kind) {
        case OrvShare3dPoints:
            made = readShared<Orv3dPoint>(*this, count, readOnly, m);
            break;
        case OrvShare4dPoints:
            made = readShared<Orv4dPoint>(*this, count, readOnly, m);
            break;
        case OrvShareColors:
            made = readShared<OrvRGB>(*this, count, readOnly, m);
            break;
        case OrvShareNormals:
            made = readShared<Orv3dVector>(*this, count, readOnly, m);
            break;
        case OrvShareEdges:
            made = readShared<OrvEdge>(*this, count, readOnly, m);
            break;
        case OrvShareTextures:
            made = readShared<OrvTextureUV>(*this, count, readOnly, m);
            break;
        case OrvShareIndex: {
            std::vector<unsigned> values;
            if (_OrvReadValues_(*this, count, false, values, m)) {
                unsigned* array = new unsigned[count ? count : 1];
                if (count) memcpy(array, values.data(), count * sizeof(unsigned));
                made = new OrvShare(count, array, readOnly, 1);
            }
            break;
        }
    }
    if (!made) return *this;
    findShared(number, made);
    made->lock();  // the list's
    share = made;
    return *this;
}

// ---------------------------------------------------------------------------
// Face colours
// ---------------------------------------------------------------------------

OrvOStream& OrvOStream::operator<<(const OrvRGB& color) {
    _OrvLine_ line(stream);
    line.add(indent()).add("faceColor\t");
    char* p = put(line.room(elementRoom + 1), color);
    *p++ = '\n';
    line.commit(p);
    return *this;
}

OrvIStream& OrvIStream::operator>>(OrvRGB& color) {
    char word[1024];
    nextItem();
    this->word(word);
    if (strcmp(word, "faceColor")) {
        fault("OrvIStream : Bad data.\n");
        return *this;
    }
    OrvRGB c;
    OrvScanner scanner(stream);
    if (take(scanner, c)) color = c;
    return *this;
}

// ---------------------------------------------------------------------------
// The writer's tables
// ---------------------------------------------------------------------------

unsigned long OrvOStream::similarIndex(unsigned& number, const OrvVertexData* data) {
    const OrvShare* mine = data ? data->vertexSharedIndex() : nullptr;
    if (!tables || !mine || !mine->index()) return 0;
    bool present[5];
    presentBlocks(*data, present);
    for (const OrvPolygon* other : tables->polygons) {
        if (other == data) continue;
        const OrvShare* theirs = other->vertexSharedIndex();
        if (!theirs || !theirs->index() || theirs->cardinal != mine->cardinal ||
            other->vertexCardinal() != data->vertexCardinal())
            continue;
        bool same[5];
        presentBlocks(*other, same);
        if (memcmp(same, present, sizeof same)) continue;
        if (mine->cardinal &&
            memcmp(theirs->index(), mine->index(), mine->cardinal * sizeof(unsigned)))
            continue;
        return find(number, theirs);
    }
    return 0;
}

unsigned long OrvOStream::similarVertex(unsigned& number, const OrvPolygon* polygon) {
    if (!tables) tables = new _OrvWriterTables_;
    for (unsigned i = 0; i < tables->polygons.size(); i++) {
        const OrvPolygon* other = tables->polygons[i];
        if (other->vertexSharedAnyPoints() == polygon->vertexSharedAnyPoints() &&
            other->vertexSharedColors() == polygon->vertexSharedColors() &&
            other->vertexSharedNormals() == polygon->vertexSharedNormals() &&
            other->vertexSharedEdges() == polygon->vertexSharedEdges() &&
            other->vertexSharedTextures() == polygon->vertexSharedTextures() &&
            other->vertexSharedIndex() == polygon->vertexSharedIndex()) {
            number = i + 1;
            return 1;
        }
    }
    if (!polygonTable) polygonTable = new OrvHashTable(1000);
    number = ++polygonCounter;
    polygonTable->put((void*)(uintptr_t)number, const_cast<OrvPolygon*>(polygon));
    tables->polygons.push_back(polygon);
    return 0;
}
