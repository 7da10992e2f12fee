// Series and triangle strip sets: faces implied by a kind, their normals and
// the smoothing of vertex normals over them.
#include "orv/vertex.h"

#include <cstring>
#include <vector>

#include "../stream/line.h"
#include "../stream/scan.h"
#include "crease.h"
#include "vertex_io.h"

// ---------------------------------------------------------------------------
// Series
// ---------------------------------------------------------------------------

OrvSeries::OrvSeries(OrvSeriesType k, unsigned d1, unsigned d2)
    : kind(k), data1(d1), data2(d2), faceNormals(nullptr) {}

OrvSeries::OrvSeries(const OrvSeries& source)
    : OrvPolygon(source), kind(source.kind), data1(source.data1), data2(source.data2),
      faceNormals(source.faceNormals) {
    if (faceNormals) faceNormals->lock();
}

OrvSeries::~OrvSeries() {
    dropPickTree();
    if (faceNormals) faceNormals->unLock();
}

const char* OrvSeries::className() const {
    return "OrvSeries";
}

OrvPolygon* OrvSeries::copy() const {
    return new OrvSeries(*this);
}

void OrvSeries::normals(OrvShare* n) {
    if (n == faceNormals) return;
    if (n && n->kind != OrvShareNormals) {
        OrvError("OrvSeries::normals : Bad arguments.\n");
        return;
    }
    if (n) n->lock();
    if (faceNormals) faceNormals->unLock();
    faceNormals = n;
}

unsigned OrvSeries::vertexPerFace() const {
    switch (kind) {
        case OrvQuadMesh:
            return 4;
        case OrvTriStrip:
        case OrvRowsTriStrip:
        case OrvTriFan:
            return 3;
        case OrvFaces:
            return data1;
    }
    return 0;
}

unsigned OrvSeries::faceCardinal() const {
    unsigned n = vertexCardinal();
    switch (kind) {
        case OrvQuadMesh:
            return data1 * data2;
        case OrvTriStrip:
        case OrvTriFan:
            return n > 2 ? n - 2 : 0;
        case OrvRowsTriStrip:
            return n > 2 * rows() ? n - 2 * rows() : 0;
        case OrvFaces:
            return data1 ? n / data1 : 0;
    }
    return 0;
}

unsigned OrvSeries::rows() const {
    return kind == OrvQuadMesh ? data1 : kind == OrvRowsTriStrip ? data2 : 0;
}

unsigned OrvSeries::vertexInTriangleStrip(unsigned i) const {
    // rows() is 0 for a single strip, so the bound turns every question on
    // one away before its own answer below.
    if (i >= rows()) {
        OrvError("OrvSeries::vertexInTriangleStrip : Argument outbounds %d-%d.\n", (int)i,
                 (int)rows());
        return 0;
    }
    if (kind == OrvTriStrip) return vertexCardinal();
    if (kind == OrvRowsTriStrip) return vertexCardinal() / rows();
    return 0;
}

unsigned OrvSeries::stripStart(unsigned i) const {
    unsigned start = 0;
    for (unsigned r = 0; r < i; r++) start += vertexInTriangleStrip(r);
    return start;
}

unsigned OrvSeries::subFaceVertexCardinal(unsigned face) const {
    return face < faceCardinal() ? vertexPerFace() : 0;
}

// The vertices of face `face` of a strip that starts at vertex `start`.
static unsigned stripVertex(unsigned start, unsigned face, unsigned nth) {
    static const unsigned even[3] = {0, 1, 2}, odd[3] = {1, 0, 2};
    return start + face + ((face & 1) ? odd[nth] : even[nth]);
}

long OrvSeries::faceVertex(unsigned face, unsigned nth) const {
    if (face >= faceCardinal()) {
        OrvError("OrvSeries::subFaceVertex : Argument outbounds [index].\n");
        return -1;
    }
    if (nth >= vertexPerFace()) {
        OrvError("OrvSeries::subFaceVertex : Argument outbounds [nth].\n");
        return -1;
    }
    unsigned v = 0;
    switch (kind) {
        case OrvQuadMesh: {
            unsigned c = data2, a = face / c * (c + 1) + face % c;
            const unsigned cell[4] = {a, a + 1, a + c + 2, a + c + 1};
            v = cell[nth];
            break;
        }
        case OrvTriStrip:
            v = stripVertex(0, face, nth);
            break;
        case OrvRowsTriStrip: {
            unsigned start = 0, r = 0, n = rows();
            for (; r < n; r++) {
                unsigned length = vertexInTriangleStrip(r);
                unsigned faces = length > 2 ? length - 2 : 0;
                if (face < faces) break;
                face -= faces;
                start += length;
            }
            if (r == n) {
                OrvError("OrvSeries::subFaceVertex : Argument outbounds [index].\n");
                return -1;
            }
            v = stripVertex(start, face, nth);
            break;
        }
        case OrvTriFan:
            v = nth ? face + nth : 0;
            break;
        case OrvFaces:
            v = face * data1 + nth;
            break;
    }
    if (v >= vertexCardinal()) {
        OrvError("OrvSeries::subFaceVertex : Argument outbounds [index].\n");
        return -1;
    }
    return v;
}

// All faces with their vertices, in face order; false when a face would use
// a vertex that does not exist.
static bool allFaces(const OrvSeries& s, std::vector<unsigned>& start,
                     std::vector<unsigned>& vertices) {
    unsigned faces = s.faceCardinal(), per = s.vertexPerFace(), n = s.vertexCardinal();
    start.assign(1, 0);
    vertices.clear();
    vertices.reserve((size_t)faces * per);
    auto face = [&](const unsigned* v) {
        for (unsigned k = 0; k < per; k++) {
            if (v[k] >= n) return false;
            vertices.push_back(v[k]);
        }
        start.push_back((unsigned)vertices.size());
        return true;
    };
    switch (s.kind) {
        case OrvQuadMesh:
            for (unsigned f = 0; f < faces; f++) {
                unsigned c = s.data2, a = f / c * (c + 1) + f % c;
                const unsigned cell[4] = {a, a + 1, a + c + 2, a + c + 1};
                if (!face(cell)) return false;
            }
            return true;
        case OrvTriStrip:
        case OrvRowsTriStrip: {
            unsigned strips = s.kind == OrvTriStrip ? 1 : s.rows(), begin = 0;
            for (unsigned r = 0; r < strips && start.size() <= faces; r++) {
                unsigned length = s.kind == OrvTriStrip ? n : s.vertexInTriangleStrip(r);
                for (unsigned f = 0; f + 2 < length; f++) {
                    const unsigned v[3] = {stripVertex(begin, f, 0), stripVertex(begin, f, 1),
                                           stripVertex(begin, f, 2)};
                    if (!face(v)) return false;
                }
                begin += length;
            }
            return start.size() == faces + 1;
        }
        case OrvTriFan:
            for (unsigned f = 0; f < faces; f++) {
                const unsigned v[3] = {0, f + 1, f + 2};
                if (!face(v)) return false;
            }
            return true;
        case OrvFaces: {
            std::vector<unsigned> v(per);
            for (unsigned f = 0; f < faces; f++) {
                for (unsigned k = 0; k < per; k++) v[k] = f * per + k;
                if (!face(v.data())) return false;
            }
            return true;
        }
    }
    return false;
}

unsigned long OrvSeries::computeFacesNormals() {
    unsigned faces = faceCardinal();
    std::vector<unsigned> start, vertices;
    if (!faces || !_OrvPointsReadable_(*this) || !allFaces(*this, start, vertices)) return 0;
    const Orv3dPoint* p = vertexPoints();
    const Orv4dPoint* p4 = vertexPoints4d();
    const unsigned* index = isIndexed() ? vertexPointsIndex() : nullptr;
    unsigned n = vertexCardinal();
    Orv3dVector* out = new Orv3dVector[faces];
    unsigned written = 0;
    switch (kind) {
        case OrvQuadMesh:
            written = computeQuadrilateralMeshNormals(data2, data1, p, p4, index, faces, out);
            break;
        case OrvTriStrip:
        case OrvTriFan:
            written = computeTriangleNormals(n, p, p4, index, faces, out, kind == OrvTriFan);
            break;
        case OrvRowsTriStrip:
            for (unsigned r = 0, begin = 0, strips = rows(); r < strips; r++) {
                unsigned length = vertexInTriangleStrip(r);
                if (length < 3) {
                    begin += length;
                    continue;
                }
                // The strip's own stretch of the points, or of the index.
                written += computeTriangleNormals(
                    length, index || !p ? p : p + begin, index || !p4 ? p4 : p4 + begin,
                    index ? index + begin : nullptr, faces - written, out + written, 0);
                begin += length;
            }
            break;
        case OrvFaces:
            for (unsigned f = 0; f < faces; f++) {
                unsigned begin = f * data1;
                OrvVertexData::computeNormal(data1, index || !p ? p : p + begin,
                                             index || !p4 ? p4 : p4 + begin,
                                             index ? index + begin : nullptr, out[f]);
                written++;
            }
            break;
    }
    if (written != faces) {
        delete[] out;
        return 0;
    }
    normals(new OrvShare(faces, out, 0, 1));
    return 1;
}

unsigned long OrvSeries::computeVerticeNormals(const double creaseAngle) {
    if (vertexSharedNormals())
        return OrvError("OrvSeries::computeVerticeNormals: Internal error (1).\n");
    if (!faceNormals && !computeFacesNormals())
        return OrvError("OrvSeries::computeVerticeNormals : Can't compute faces normals.\n");
    unsigned faces = faceCardinal();
    if (!faceNormals->normals() || faceNormals->cardinal < faces)
        return OrvError("OrvSeries::computeVerticeNormals: Internal error. (1)\n");
    _OrvCreaseMesh_ mesh;
    unsigned n = vertexCardinal();
    if (!_OrvPointsReadable_(*this) || !allFaces(*this, mesh.faceStart, mesh.faceSlots))
        return OrvError("OrvSeries::computeVerticeNormals: Internal error. (2)\n");
    // The slots are the vertices themselves: faces that meet at a vertex
    // share its one normal.
    mesh.slotPoint.resize(n);
    for (unsigned v = 0; v < n; v++) point(v, mesh.slotPoint[v]);
    mesh.pointCount = vertexPointsCardinal();
    mesh.faceNormal.assign(faceNormals->normals(), faceNormals->normals() + faces);
    std::vector<unsigned> result;
    _OrvNormalTable_ table(mesh.pointCount);
    _OrvCreaseNormals_(mesh, creaseAngle, result, table);

    OrvShare* points = vertexSharedAnyPoints();
    OrvShare* made;
    unsigned long done;
    if (kind == OrvFaces) {
        // Faces keep a table of distinct normals, through the index.
        unsigned count = (unsigned)table.vectors.size();
        Orv3dVector* values = new Orv3dVector[count ? count : 1];
        for (unsigned i = 0; i < count; i++) values[i] = table.vectors[i];
        for (unsigned& r : result)
            if (r == ~0u) r = 0;  // a vertex of no face
        made = new OrvShare(count, values, points->isReadOnly(), 1);
        made->lock();
        done = _OrvRebuildWithNormals_(*this, made, result.data());
    } else {
        // One normal a vertex, parallel to the vertices.
        Orv3dVector* values = new Orv3dVector[n ? n : 1];
        for (unsigned v = 0; v < n; v++)
            if (result[v] != ~0u) values[v] = table.vectors[result[v]];
        made = new OrvShare(n, values, points->isReadOnly(), 1);
        made->lock();
        if (isIndexed()) {
            std::vector<unsigned> same(n);
            for (unsigned v = 0; v < n; v++) same[v] = v;
            done = _OrvRebuildWithNormals_(*this, made, same.data());
        } else {
            _OrvVertexType_* before = vertex;
            createNonIndexedVertex(points, vertexSharedColors(), made, vertexSharedTextures(),
                                   vertexSharedEdges());
            done = vertex != before;
        }
    }
    made->unLock();
    if (!done) return OrvError("OrvPolygon::computeVerticeNormals : Internal error (2).\n");
    computeBBox();
    return 1;
}

// ---------------------------------------------------------------------------
// Saved form of a series
// ---------------------------------------------------------------------------

static const char* const badItem = "OrvSeries::OrvSeries : Bad item (%s %s)\n";

void OrvSeries::write(OrvOStream& out) const {
    out.writeComments("... OrvSeries description", 1);
    _OrvLine_(out.stream).add(out.indent()).add("series {\n");
    out.indentation++;
    out.writeComments("... (0 : QuadMesh, 1 : TriStrip, 2 : RowsTriStrip, ", 1);
    out.writeComments("     3 : TriFan, 4 : Faces)", 1);
    out << (unsigned long)kind;
    out.key("seriesData1") << data1 << '\n';
    out.key("seriesData2") << data2 << '\n';
    writeVertex(out);
    unsigned number;
    if (!faceNormals || !faceNormals->normals()) {
        _OrvLine_(out.stream).add(out.indent()).add("faceNormal\tNone\n");
    } else if (out.find(number, faceNormals)) {
        _OrvLine_(out.stream)
            .add(out.indent())
            .add("faceNormal\t.USE ")
            .add((unsigned long)number)
            .add('\n');
    } else {
        _OrvLine_(out.stream)
            .add(out.indent())
            .add("faceNormal ")
            .add((unsigned long)number)
            .add(" [\n");
        _OrvWriteVectors_(out, faceNormals->normals(), faceNormals->cardinal);
        _OrvLine_(out.stream).add(out.indent()).add("]\n");
    }
    out.indentation--;
    _OrvLine_(out.stream).add(out.indent()).add("}\n");
}

// "faceNormal" and "None", ".USE" and a number, or a number and a list.
static bool readFaceNormals(OrvIStream& in, OrvSeries& series) {
    char word[1024];
    if (!_OrvReadKey_(in, "faceNormal", badItem)) return false;
    in.word(word);
    if (!strcmp(word, "None")) return true;
    const char* badSeparator = "OrvSeries::OrvSeries : Bad data separator (normals).\n";
    unsigned number = 0;
    if (!strcmp(word, ".USE")) {
        OrvShare* known = nullptr;
        if (OrvScanNumber(in.stream, number)) known = in.findShared(number, nullptr);
        if (!known || known->kind != OrvShareNormals) return in.fault("%s", badSeparator);
        series.normals(known);
        return true;
    }
    const _OrvListMessages_ m = {badSeparator,
                                 "OrvSeries::OrvSeries : Bad data end separator (1).\n",
                                 "OrvSeries::OrvSeries : Bad data end separator (2).\n", ""};
    std::vector<Orv3dVector> values;
    if (!_OrvNumber_(word, number)) return in.fault("%s", badSeparator);
    if (!_OrvReadVectors_(in, values, m)) return false;
    unsigned n = (unsigned)values.size();
    Orv3dVector* array = new Orv3dVector[n ? n : 1];
    for (unsigned i = 0; i < n; i++) array[i] = values[i];
    OrvShare* share = new OrvShare(n, array, 0, 1);
    in.findShared(number, share);
    share->lock();  // the list's
    series.normals(share);
    return true;
}

OrvSeries::OrvSeries(OrvIStream& in) : kind(OrvQuadMesh), data1(0), data2(0), faceNormals(nullptr) {
    // A strip set whose own key was wrong has said so already.
    if (!in.stream) return;
    if (!_OrvReadKey_(in, "series", badItem)) return;
    char word[1024];
    in.word(word);
    if (strcmp(word, "{")) {
        in.fault("OrvSeries::OrvSeries : Bad begin separator.\n");
        return;
    }
    unsigned long before = in.faults, k = ~0ul;
    in >> k;
    if (in.faults != before) return;
    if (k > OrvFaces) {
        in.fault(badItem, "ulData", "");
        return;
    }
    kind = (OrvSeriesType)k;
    if (!_OrvReadKey_(in, "seriesData1", badItem) || !OrvScanNumber(in.stream, data1) ||
        !_OrvReadKey_(in, "seriesData2", badItem) || !OrvScanNumber(in.stream, data2)) {
        if (in.faults == before) in.fault(badItem, "seriesData", "");
        return;
    }
    if (!readVertex(in)) return;
    bool good = readFaceNormals(in, *this);
    if (good && !_OrvReadClosing_(in))
        good = in.fault("OrvSeries::OrvSeries : Bad end separator.\n");
    if (!good) {
        delete vertex;
        vertex = nullptr;
        return;
    }
    computeBBox();
}

OrvSeries* OrvSeries::read(OrvIStream& in) {
    return _OrvReadOrNull_<OrvSeries>(in);
}

// ---------------------------------------------------------------------------
// Triangle strip set
// ---------------------------------------------------------------------------

static OrvShare* lengthsOrNull(OrvShare* lengths) {
    if (lengths && lengths->kind == OrvShareIndex) return lengths;
    if (lengths) OrvError("OrvTriangleStripSet::OrvTriangleStripSet : Bad arguments.\n");
    return nullptr;
}

OrvTriangleStripSet::OrvTriangleStripSet(OrvShare* lengths)
    : OrvSeries(OrvRowsTriStrip, 3, 0), stripLengths(lengthsOrNull(lengths)) {
    if (stripLengths) {
        stripLengths->lock();
        data2 = stripLengths->cardinal;
    }
}

OrvTriangleStripSet::OrvTriangleStripSet(const OrvTriangleStripSet& source)
    : OrvSeries(source), stripLengths(source.stripLengths) {
    if (stripLengths) stripLengths->lock();
}

OrvTriangleStripSet::~OrvTriangleStripSet() {
    if (stripLengths) stripLengths->unLock();
}

const char* OrvTriangleStripSet::className() const {
    return "OrvTriangleStripSet";
}

OrvPolygon* OrvTriangleStripSet::copy() const {
    return new OrvTriangleStripSet(*this);
}

// The strip set's key before the series; a wrong one stops the reading.
static OrvIStream& stripSetKey(OrvIStream& in) {
    if (!_OrvReadKey_(in, "triangleStripSet", badItem)) in.stream.setstate(std::ios::failbit);
    return in;
}

OrvTriangleStripSet::OrvTriangleStripSet(OrvIStream& in)
    : OrvSeries(stripSetKey(in)), stripLengths(nullptr) {
    if (!vertex) return;
    unsigned long before = in.faults;
    OrvShare* lengths = nullptr;
    in >> lengths;
    bool good = in.faults == before && lengths;
    if (good) {
        // As many lengths as strips, covering the vertices exactly.
        unsigned long sum = 0;
        for (unsigned i = 0; lengths->index() && i < lengths->cardinal; i++)
            sum += lengths->index()[i];
        good = kind == OrvRowsTriStrip && lengths->kind == OrvShareIndex &&
               lengths->cardinal == data2 && sum == vertexCardinal();
        if (!good)
            in.fault("OrvTriangleStripSet::vertexInTriangleStrip: Bad strip set definition.\n");
    }
    if (!good) {
        delete vertex;
        vertex = nullptr;
        return;
    }
    stripLengths = lengths;
    stripLengths->lock();
}

void OrvTriangleStripSet::write(OrvOStream& out) const {
    out.writeComments("... OrvTriangleStripSet description", 1);
    _OrvLine_(out.stream).add(out.indent()).add("triangleStripSet\n");
    OrvSeries::write(out);
    out << (const OrvShare*)stripLengths;
}

OrvTriangleStripSet* OrvTriangleStripSet::read(OrvIStream& in) {
    return _OrvReadOrNull_<OrvTriangleStripSet>(in);
}

unsigned OrvTriangleStripSet::vertexInTriangleStrip(unsigned i) const {
    if (i >= rows()) {
        OrvError("OrvTriangleStripSet::vertexInTriangleStrip: Argument outbounds %d-%d.\n", (int)i,
                 (int)rows());
        return 0;
    }
    if (!stripLengths || i >= stripLengths->cardinal) {
        OrvError("OrvTriangleStripSet::vertexInTriangleStrip: Bad strip set definition.\n");
        return 0;
    }
    return stripLengths->index()[i];
}
