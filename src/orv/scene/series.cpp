// Series and triangle strip sets: faces implied by a kind, their normals and
// the smoothing of vertex normals over them.
#include "orv/vertex.h"

#include <vector>

#include "crease.h"

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
    _OrvNormalTable_ table;
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
