// Polygons and faces: arrays and indices installed with their checks, the
// normal, uniform access to face vertices, point changes and textures.
#include "orv/vertex.h"

#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "../stream/line.h"
#include "../stream/scan.h"
#include "crease.h"
#include "pick_tree.h"
#include "vertex_io.h"

// ---------------------------------------------------------------------------
// Polygon
// ---------------------------------------------------------------------------

OrvPolygon::OrvPolygon() : bbox() {}

OrvPolygon::OrvPolygon(const OrvPolygon& source) : OrvVertexData(source), bbox(source.bbox) {}

const char* OrvPolygon::className() const {
    return "OrvPolygon";
}

OrvPolygon* OrvPolygon::copy() const {
    return new OrvPolygon(*this);
}

OrvPolygon::OrvPolygon(OrvIStream& in) : bbox() {
    char word[1024];
    if (!_OrvReadKey_(in, "polygon", "OrvPolygon : OrvIStream : Bad key (%s %s).\n")) return;
    in.word(word);
    if (!strcmp(word, ".USE")) {
        // The arrays of a polygon read before, shared.
        unsigned number = 0;
        OrvPolygon* known = nullptr;
        if (OrvScanNumber(in.stream, number)) known = in.findPolygon(number, nullptr);
        if (!known) {
            in.fault("OrvPolygon::OrvPolygon : Can't find points array.\n");
            return;
        }
        vertex = known->copyVertex();
        bbox = known->bbox;
        return;
    }
    if (strcmp(word, "{")) {
        in.fault("OrvPolygon::OrvPolygon : Bad begin separator.\n");
        return;
    }
    // Blocks in full are numbered by their place, as the writer numbered them.
    unsigned number = ++in.polygonCounter;
    unsigned long before = in.faults;
    if (!readVertex(in)) return;
    if (!_OrvReadClosing_(in)) {
        in.fault("OrvPolygon::OrvPolygon : Bad end separator.\n");
        delete vertex;
        vertex = nullptr;
        return;
    }
    computeBBox();
    if (in.faults == before) in.findPolygon(number, copy());
}

void OrvPolygon::write(OrvOStream& out) const {
    unsigned number;
    if (out.similarVertex(number, this)) {
        _OrvLine_(out.stream)
            .add(out.indent())
            .add("polygon\t.USE ")
            .add((unsigned long)number)
            .add('\n');
        return;
    }
    _OrvLine_(out.stream).add(out.indent()).add("polygon {\n");
    out.indentation++;
    writeVertex(out);
    out.indentation--;
    _OrvLine_(out.stream).add(out.indent()).add("}\n");
}

OrvPolygon* OrvPolygon::read(OrvIStream& in) {
    return _OrvReadOrNull_<OrvPolygon>(in);
}

void OrvPolygon::computeBBox() {
    bbox = OrvVertexData::bbox3d();
}

// Points of either kind, and the other shares of their own kinds; without
// index each array must reach as far as the points, since all are parallel.
static bool goodArrays(OrvShare* points, OrvShare* colors, OrvShare* normals, OrvShare* textures,
                       OrvShare* edges, bool indexed) {
    if (!points || (points->kind != OrvShare3dPoints && points->kind != OrvShare4dPoints))
        return false;
    struct {
        OrvShare* share;
        int kind;
    } others[4] = {{colors, OrvShareColors},
                   {normals, OrvShareNormals},
                   {textures, OrvShareTextures},
                   {edges, OrvShareEdges}};
    for (const auto& o : others) {
        if (!o.share) continue;
        if (o.share->kind != o.kind) return false;
        if (!indexed && o.share->cardinal < points->cardinal) return false;
    }
    return true;
}

unsigned long OrvPolygon::setNonIndexed(OrvShare* points, OrvShare* colors, OrvShare* normals,
                                        OrvShare* textures, OrvShare* edges) {
    if (!goodArrays(points, colors, normals, textures, edges, false))
        return OrvError("OrvPolygon::setNonIndexed : Bad arguments.\n");
    createNonIndexedVertex(points, colors, normals, textures, edges);
    computeBBox();
    return 1;
}

unsigned long OrvPolygon::setIndexed(OrvShare* points, OrvShare* colors, OrvShare* normals,
                                     OrvShare* textures, OrvShare* edges) {
    // The message names setNonIndexed for both.
    if (!goodArrays(points, colors, normals, textures, edges, true))
        return OrvError("OrvPolygon::setNonIndexed : Bad arguments.\n");
    createIndexedVertex(points, colors, normals, textures, edges);
    computeBBox();
    return 1;
}

unsigned long OrvPolygon::setIndex(unsigned long readOnly, unsigned count, const unsigned* points,
                                   const unsigned* colors, const unsigned* normals,
                                   const unsigned* edges, const unsigned* textures) {
    if (!isIndexed()) return OrvError("OrvPolygon::setIndex : Not indexed.\n");
    OrvShare* before = vertexSharedIndex();
    setVertexIndex(readOnly, count, points, colors, normals, edges, textures);
    // A refused index leaves the old share in place.
    return points ? vertexSharedIndex() != before : 1;
}

unsigned long OrvPolygon::setIndex(OrvShare* index) {
    if (!isIndexed()) return OrvError("OrvPolygon::setIndex : Not indexed.\n");
    if (index && index->kind != OrvShareIndex)
        return OrvError("OrvVertex::setIndex: Not an index share.\n");
    setVertexIndex(index);
    return 1;
}

unsigned long OrvPolygon::setIndex(unsigned long readOnly, unsigned count, ...) {
    if (!isIndexed()) return OrvError("OrvPolygon::setIndex : Non indexed face.\n");
    // The arguments come colour, normal, texture, edge for each vertex; the
    // blocks of the share are point, colour, normal, edge, texture.
    bool has[4] = {vertexSharedColors() != nullptr, vertexSharedNormals() != nullptr,
                   vertexSharedTextures() != nullptr, vertexSharedEdges() != nullptr};
    std::vector<unsigned> point(count), block[4];
    for (int k = 0; k < 4; k++)
        if (has[k]) block[k].resize(count);
    va_list args;
    va_start(args, count);
    for (unsigned i = 0; i < count; i++) {
        point[i] = va_arg(args, unsigned);
        for (int k = 0; k < 4; k++)
            if (has[k]) block[k][i] = va_arg(args, unsigned);
    }
    va_end(args);
    auto at = [&](int k) { return has[k] ? block[k].data() : nullptr; };
    return setIndex(readOnly, count, point.data(), at(0), at(1), at(3), at(2));
}

bool _OrvPointsReadable_(const OrvVertexData& data) {
    if (!data.vertex || (!data.vertexPoints() && !data.vertexPoints4d())) return false;
    if (!data.isIndexed()) return true;
    const unsigned* index = data.vertexPointsIndex();
    if (!index) return false;
    unsigned n = data.vertexCardinal(), limit = data.vertexPointsCardinal();
    for (unsigned i = 0; i < n; i++)
        if (index[i] >= limit) return false;
    return true;
}

unsigned long OrvPolygon::computeNormal(Orv3dVector& result) const {
    if (!_OrvPointsReadable_(*this)) return 0;
    return OrvVertexData::computeNormal(vertexCardinal(), vertexPoints(), vertexPoints4d(),
                                        isIndexed() ? vertexPointsIndex() : nullptr, result);
}

unsigned OrvPolygon::subFaceVertexCardinal(unsigned face) const {
    return face == 0 ? vertexCardinal() : 0;
}

long OrvPolygon::faceVertex(unsigned face, unsigned nth) const {
    if (face != 0) {
        OrvError("OrvPolygon::subFaceVertex : Argument outbounds [index].\n");
        return -1;
    }
    if (nth >= vertexCardinal()) {
        OrvError("OrvPolygon::subFaceVertex : Argument outbounds [nth].\n");
        return -1;
    }
    return nth;
}

long OrvPolygon::subFaceVertex(Orv3dPoint& result, unsigned face, unsigned nth) const {
    long v = faceVertex(face, nth);
    if (v < 0 || !point((unsigned)v, result)) return -1;
    return v;
}

long OrvPolygon::subFaceVertex(Orv4dPoint& result, unsigned face, unsigned nth) const {
    long v = faceVertex(face, nth);
    if (v < 0 || !point((unsigned)v, result)) return -1;
    return v;
}

// The place of vertex i in an array through its index block, checked.
static bool placeOf(const OrvVertexData& data, const unsigned* block, unsigned i, unsigned cardinal,
                    unsigned& k) {
    k = data.isIndexed() ? (block ? block[i] : ~0u) : i;
    return k < cardinal;
}

// Writes the point (converted to the kind of the array) and the colour.
static unsigned long change(OrvPolygon& polygon, unsigned i, const Orv3dPoint* p3,
                            const Orv4dPoint* p4, const OrvRGB* color) {
    if (i >= polygon.vertexCardinal()) return 0;
    OrvShare* points = polygon.vertexSharedAnyPoints();
    if (!points || points->isReadOnly()) return 0;
    unsigned k;
    if (!placeOf(polygon, polygon.vertexPointsIndex(), i, points->cardinal, k)) return 0;
    if (Orv3dPoint* to = points->pointsToBeChanged())
        to[k] = p3 ? *p3 : p4->to3dPoint();
    else if (Orv4dPoint* to4 = points->points4dToBeChanged())
        to4[k] = p4 ? *p4 : p3->to4dPoint();
    OrvShare* colors = polygon.vertexSharedColors();
    if (color && colors && colors->colorsToBeChanged() &&
        placeOf(polygon, polygon.vertexColorsIndex(), i, colors->cardinal, k))
        colors->colorsToBeChanged()[k] = *color;
    // Normals, textures and edges are left as they are, and it is said so
    // each time, given or not.
    OrvPrint("To be done ...... \n");
    polygon.computeBBox();
    _OrvPickPointsChanged_(points);
    return 1;
}

unsigned long OrvPolygon::changePoint(unsigned i, const Orv3dPoint& p, const OrvRGB* color,
                                      const Orv3dVector*, const OrvTextureUV*, const OrvEdge*) {
    return change(*this, i, &p, nullptr, color);
}

unsigned long OrvPolygon::changePoint(unsigned i, const Orv4dPoint& p, const OrvRGB* color,
                                      const Orv3dVector*, const OrvTextureUV*, const OrvEdge*) {
    return change(*this, i, nullptr, &p, color);
}

void OrvPolygon::computeVerticeTextures(const Orv3dVolume* box) {
    OrvShare* points = vertexSharedAnyPoints();
    if (!points || vertexSharedTextures()) return;
    unsigned n = points->cardinal;
    OrvTextureUV* uv = new OrvTextureUV[n ? n : 1];
    if (!_OrvBoxTextures_(box ? *box : bbox, n, points->points(), points->points4d(), uv)) {
        delete[] uv;
        OrvError("OrvPolygon::computeVerticeTextures : Internal error (1).\n");
        return;
    }
    OrvShare* textures = new OrvShare(n, uv, points->isReadOnly(), 1);
    textures->lock();
    if (!_OrvRebuildWithTextures_(*this, textures))
        OrvError("OrvPolygon::computeVerticeTextures : Internal error (2).\n");
    textures->unLock();
}

// ---------------------------------------------------------------------------
// Face
// ---------------------------------------------------------------------------

OrvFace::OrvFace() : normal_(nullptr), color_(nullptr) {}

OrvFace::OrvFace(const OrvFace& source)
    : OrvPolygon(source), normal_(source.normal_ ? new Orv3dVector(*source.normal_) : nullptr),
      color_(source.color_ ? new OrvRGB(*source.color_) : nullptr) {}

OrvFace::~OrvFace() {
    delete normal_;
    delete color_;
}

const char* OrvFace::className() const {
    return "OrvFace";
}

OrvPolygon* OrvFace::copy() const {
    return new OrvFace(*this);
}

void OrvFace::color(const OrvRGB* c) {
    if (!c) {
        delete color_;
        color_ = nullptr;
        return;
    }
    if (!color_) color_ = new OrvRGB;
    *color_ = *c;
}

void OrvFace::normal(const Orv3dVector* n) {
    if (!n) {
        delete normal_;
        normal_ = nullptr;
        return;
    }
    if (!normal_) normal_ = new Orv3dVector;
    *normal_ = *n;
}

unsigned long OrvFace::computeNormal() {
    // A degenerate face keeps what Newell's sum gave, so that it has a
    // normal like the others.
    Orv3dVector n;
    unsigned long done = OrvPolygon::computeNormal(n);
    normal(&n);
    return done;
}

// "None" or three floats, the first a word that strtof reads whole.
static bool readTriple(OrvScanner& in, bool& none, float v[3]) {
    char word[1024];
    in.word(word, sizeof word);
    none = !strcmp(word, "None");
    if (none) return true;
    return OrvParseFloat(word, v[0]) && in.number(v[1]) && in.number(v[2]);
}

void _OrvWriteFaceItems_(OrvOStream& out, const OrvFace& face) {
    _OrvWriteFaceItems_(out, face.color(), face.normal());
}

void _OrvWriteFaceItems_(OrvOStream& out, const OrvRGB* color, const Orv3dVector* normal) {
    _OrvLine_ line(out.stream);
    _OrvWriteFaceItems_(line, out.indent(), color, normal);
}

void _OrvWriteFaceItems_(_OrvLine_& line, const char* indent, const OrvRGB* color,
                         const Orv3dVector* normal) {
    line.add(indent).add("faceColor\t");
    if (const OrvRGB* c = color)
        line.add((double)c->red).add(' ').add((double)c->green).add(' ').add((double)c->blue);
    else
        line.add("None");
    line.add('\n').add(indent).add("faceNormal\t");
    if (const Orv3dVector* n = normal)
        line.add((double)n->x).add(' ').add((double)n->y).add(' ').add((double)n->z);
    else
        line.add("None");
    line.add('\n');
}

bool _OrvReadFaceItems_(OrvIStream& in, OrvScanner& scanner, OrvFace& face) {
    char word[1024];
    bool none;
    float v[3];
    scanner.nextItem();
    scanner.word(word, sizeof word);
    if (strcmp(word, "faceColor") || !readTriple(scanner, none, v))
        return in.fault("OrvFace::OrvFace : Not a face color item\n");
    if (!none) {
        OrvRGB c(v[0], v[1], v[2]);
        face.color(&c);
    }
    scanner.nextItem();
    scanner.word(word, sizeof word);
    if (strcmp(word, "faceNormal") || !readTriple(scanner, none, v))
        return in.fault("OrvFace::OrvFace : Not a face normal item\n");
    if (!none) {
        Orv3dVector n(v[0], v[1], v[2]);
        face.normal(&n);
    }
    return true;
}

OrvFace::OrvFace(OrvIStream& in) : normal_(nullptr), color_(nullptr) {
    if (!_OrvReadKey_(in, "face", "OrvFace::OrvFace : Bad item (%s %s)\n")) return;
    char word[1024];
    in.word(word);
    if (strcmp(word, "{")) {
        in.fault("OrvFace::OrvFace : Bad begin separator.\n");
        return;
    }
    if (!readVertex(in)) return;
    OrvScanner scanner(in.stream);
    bool good = _OrvReadFaceItems_(in, scanner, *this);
    if (good && !_OrvReadClosing_(in)) good = in.fault("OrvFace::OrvFace : Bad end separator.\n");
    if (!good) {
        delete vertex;
        vertex = nullptr;
        return;
    }
    computeBBox();
}

void OrvFace::write(OrvOStream& out) const {
    out.writeComments("... OrvFace description", 1);
    _OrvLine_(out.stream).add(out.indent()).add("face {\n");
    out.indentation++;
    writeVertex(out);
    _OrvWriteFaceItems_(out, *this);
    out.indentation--;
    _OrvLine_(out.stream).add(out.indent()).add("}\n");
}

OrvFace* OrvFace::read(OrvIStream& in) {
    return _OrvReadOrNull_<OrvFace>(in);
}

unsigned long OrvFace::computeNormal(Orv3dVector& result) const {
    if (!normal_) return 0;
    result = *normal_;
    return 1;
}
