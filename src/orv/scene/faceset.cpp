// Face sets: owned faces with one bounding volume, their normals smoothed by
// crease angle over shared points, and textures from one box for all.
#include "orv/vertex.h"

#include <cstdarg>
#include <cstring>
#include <unordered_map>
#include <vector>

#include "../stream/line.h"
#include "../stream/scan.h"
#include "crease.h"
#include "pick_tree.h"
#include "vertex_io.h"

OrvFaceSet::OrvFaceSet(unsigned count, ...) : bbox() {
    va_list args;
    va_start(args, count);
    for (unsigned i = 0; i < count; i++) add(va_arg(args, OrvFace*));
    va_end(args);
}

OrvFaceSet::OrvFaceSet(const OrvFaceSet& source) : bbox(source.bbox) {
    for (OrvLink* l = source.faces.first; l; l = l->next)
        faces.append(((OrvFace*)l->value)->copy());
}

OrvFaceSet::~OrvFaceSet() {
    dropPickTree();
    for (OrvLink* l = faces.first; l; l = l->next) delete (OrvFace*)l->value;
}

const char* OrvFaceSet::className() const {
    return "OrvFaceSet";
}

OrvFaceSet* OrvFaceSet::copy() const {
    return new OrvFaceSet(*this);
}

void OrvFaceSet::insert(OrvFace* face) {
    if (!face) return;
    dropPickTree();
    _OrvPickGeometryChanged_();
    bool first = !faces.first;
    faces.insert(face);
    if (first)
        bbox = face->bbox3d();
    else
        bbox.extendBy(face->bbox3d());
}

void OrvFaceSet::add(OrvFace* face) {
    if (!face) return;
    dropPickTree();
    _OrvPickGeometryChanged_();
    bool first = !faces.first;
    faces.append(face);
    if (first)
        bbox = face->bbox3d();
    else
        bbox.extendBy(face->bbox3d());
}

void OrvFaceSet::computeBBox() {
    // Points moved: the pick hierarchies take the faces again.
    dropPickTree();
    _OrvPickGeometryChanged_();
    bool first = true;
    for (OrvLink* l = faces.first; l; l = l->next) {
        OrvFace* face = (OrvFace*)l->value;
        face->computeBBox();
        if (first)
            bbox = face->bbox3d();
        else
            bbox.extendBy(face->bbox3d());
        first = false;
    }
    if (first) bbox = Orv3dVolume();
}

unsigned long OrvFaceSet::computeFacesNormals() {
    for (OrvLink* l = faces.first; l; l = l->next) ((OrvFace*)l->value)->computeNormal();
    return 1;
}

unsigned long OrvFaceSet::computeVerticeNormals(const double creaseAngle) {
    std::vector<OrvFace*> all;
    for (OrvLink* l = faces.first; l; l = l->next) all.push_back((OrvFace*)l->value);
    for (OrvFace* face : all)
        if (face->vertexNormals())
            return OrvError("OrvFaceSet::computeVerticeNormals : Vertice normals\n"
                            "   are already computed (for at least one face).\n");
    // A point is known by its array and its place there, so that faces on
    // different arrays never meet.
    _OrvCreaseMesh_ mesh;
    std::unordered_map<const OrvShare*, unsigned> base;
    mesh.faceStart.reserve(all.size() + 1);
    mesh.faceStart.push_back(0);
    mesh.faceNormal.reserve(all.size());
    for (OrvFace* face : all) {
        if (!face->normal() || !_OrvPointsReadable_(*face))
            return OrvError("OrvFaceSet::computeVerticeNormals: Internal error.\n");
        const OrvShare* points = face->vertexSharedAnyPoints();
        auto known = base.emplace(points, mesh.pointCount);
        if (known.second) mesh.pointCount += points->cardinal;
        // Readable: every index is inside the points.
        unsigned offset = known.first->second, n = face->vertexCardinal();
        const unsigned* index = face->isIndexed() ? face->vertexPointsIndex() : nullptr;
        for (unsigned k = 0; k < n; k++) {
            mesh.faceSlots.push_back((unsigned)mesh.slotPoint.size());
            mesh.slotPoint.push_back(offset + (index ? index[k] : k));
        }
        mesh.faceStart.push_back((unsigned)mesh.faceSlots.size());
        mesh.faceNormal.push_back(*face->normal());
    }
    if (all.empty()) return 1;
    std::vector<unsigned> result;
    _OrvNormalTable_ table(mesh.pointCount);
    _OrvCreaseNormals_(mesh, creaseAngle, result, table);

    // One share of the table for all faces, read only as the points are.
    unsigned count = (unsigned)table.vectors.size();
    Orv3dVector* values = new Orv3dVector[count ? count : 1];
    for (unsigned i = 0; i < count; i++) values[i] = table.vectors[i];
    OrvShare* normals =
        new OrvShare(count, values, all[0]->vertexSharedAnyPoints()->isReadOnly(), 1);
    normals->lock();
    unsigned long done = 1;
    for (unsigned f = 0; f < all.size(); f++)
        if (!_OrvRebuildWithNormals_(*all[f], normals, result.data() + mesh.faceStart[f])) done = 0;
    normals->unLock();
    if (!done) return OrvError("OrvFaceSet::computeVerticeNormals : Internal error (2).\n");
    return 1;
}

void OrvFaceSet::computeVerticeTextures(const Orv3dVolume* box) {
    // Faces on one array of points share one array of coordinates.
    std::unordered_map<const OrvShare*, OrvShare*> made;
    const Orv3dVolume& frame = box ? *box : bbox;
    for (OrvLink* l = faces.first; l; l = l->next) {
        OrvFace* face = (OrvFace*)l->value;
        OrvShare* points = face->vertexSharedAnyPoints();
        if (!points || face->vertexSharedTextures()) continue;
        OrvShare*& textures = made[points];
        if (!textures) {
            unsigned n = points->cardinal;
            OrvTextureUV* uv = new OrvTextureUV[n ? n : 1];
            if (!_OrvBoxTextures_(frame, n, points->points(), points->points4d(), uv)) {
                delete[] uv;
                OrvError("OrvPolygon::computeVerticeTextures : Internal error (1).\n");
                break;
            }
            textures = new OrvShare(n, uv, points->isReadOnly(), 1);
            textures->lock();
        }
        if (!_OrvRebuildWithTextures_(*face, textures))
            OrvError("OrvPolygon::computeVerticeTextures : Internal error (2).\n");
    }
    for (auto& m : made)
        if (m.second) m.second->unLock();
}

// ---------------------------------------------------------------------------
// Saved form
// ---------------------------------------------------------------------------

// The index blocks of the compact form, in the order of the file, with their
// places in an index share (point 0, colour 1, normal 2, edge 3, texture 4).
static const struct {
    const char* present;  // "pointIndex" and so on, with yes or no
    const char* values;   // "pointFIndex" and so on, with every face's values
    unsigned place;
} compactBlocks[5] = {{"pointIndex", "pointFIndex", 0},
                      {"colorIndex", "colorFIndex", 1},
                      {"normalIndex", "normalFIndex", 2},
                      {"textureIndex", "textureFIndex", 4},
                      {"edgeIndex", "edgeFIndex", 3}};

// The counts that open the saved form.
static void writeCounts(OrvOStream& out, unsigned faceCount, unsigned long optimized,
                        unsigned long indexCount) {
    out.key("faceCardinal") << faceCount << '\n';
    out.key("optimized") << (optimized ? "yes" : "no") << '\n';
    if (optimized) out.key("indexCardinal") << indexCount << '\n';
}

void OrvFaceSet::writeData(OrvOStream& out, unsigned long optimized) const {
    unsigned long sum = 0;
    if (optimized)
        for (OrvLink* l = faces.first; l; l = l->next)
            sum += ((OrvFace*)l->value)->vertexCardinal();
    writeCounts(out, faceCardinal(), optimized, sum);
}

unsigned long OrvFaceSet::writeOptimizeIndex(OrvOStream& out) const {
    if (!faces.first) return 0;
    const OrvFace* first = (const OrvFace*)faces.first->value;
    if (!first->isIndexed()) return 0;
    const unsigned* (OrvVertexData::*block[5])()
        const = {&OrvVertexData::vertexPointsIndex, &OrvVertexData::vertexColorsIndex,
                 &OrvVertexData::vertexNormalsIndex, &OrvVertexData::vertexEdgesIndex,
                 &OrvVertexData::vertexTexturesIndex};
    std::vector<unsigned> used;  // the present blocks, as rows of compactBlocks
    for (unsigned k = 0; k < 5; k++)
        if ((first->*block[compactBlocks[k].place])()) used.push_back(k);
    // An index holds its blocks in the order of their places, each as long
    // as the face has vertices, for the arrays its layout has.
    const _OrvVertexType_* layout = first->vertex;
    OrvShare* const shares[6] = {layout->sharedPoints(), layout->sharedPoints4d(),
                                 layout->sharedColors(), layout->sharedNormals(),
                                 layout->sharedEdges(),  layout->sharedTextures()};
    const bool present[5] = {true, shares[2] != nullptr, shares[3] != nullptr, shares[4] != nullptr,
                             shares[5] != nullptr};
    unsigned rank[5], blocks = 0;
    for (unsigned place = 0; place < 5; place++) rank[place] = present[place] ? blocks++ : 0;
    // One pass over the faces gathers what the blocks and items below need:
    // faces lie all over memory, and a pass each would find each again. A
    // face on the first one's shares has its blocks where the ranks put
    // them; one on other shares of the same arrays is asked for each block.
    std::vector<unsigned> counts;
    std::vector<std::vector<unsigned>> values(used.size());  // each block of every face
    std::vector<OrvRGB> colors;
    std::vector<Orv3dVector> normals;
    std::vector<unsigned char> has;  // 1 a colour, 2 a normal
    unsigned long sum = 0;
    for (OrvLink* l = faces.first; l; l = l->next) {
        const OrvFace* f = (const OrvFace*)l->value;
        const _OrvVertexType_* v = f->vertex;
        const unsigned* index = v ? v->index() : nullptr;
        if (!index || !v->isIndexed() || !v->sharedIndex()) return 0;
        bool sameShares = v->sharedPoints() == shares[0] && v->sharedPoints4d() == shares[1] &&
                          v->sharedColors() == shares[2] && v->sharedNormals() == shares[3] &&
                          v->sharedEdges() == shares[4] && v->sharedTextures() == shares[5];
        if (!sameShares &&
            (v->points() != first->vertexPoints() || v->points4d() != first->vertexPoints4d() ||
             v->colors() != first->vertexColors() || v->normals() != first->vertexNormals() ||
             v->textures() != first->vertexTextures() || v->edges() != first->vertexEdges()))
            return 0;
        unsigned n = v->cardinal();
        counts.push_back(n);
        sum += n;
        for (size_t j = 0; j < used.size(); j++) {
            unsigned place = compactBlocks[used[j]].place;
            const unsigned* b = sameShares ? index + rank[place] * n : (f->*block[place])();
            for (unsigned k = 0; k < n; k++) values[j].push_back(b[k]);
        }
        has.push_back((unsigned char)((f->color() ? 1 : 0) | (f->normal() ? 2 : 0)));
        colors.push_back(f->color() ? *f->color() : OrvRGB());
        normals.push_back(f->normal() ? *f->normal() : Orv3dVector());
    }
    // Same arrays with an index each: the same blocks are present.
    writeCounts(out, (unsigned)counts.size(), 1, sum);
    _OrvWriteArrays_(out, *first);
    for (const auto& b : compactBlocks)
        out.key(b.present) << ((first->*block[b.place])() ? "yes" : "no") << '\n';
    _OrvLine_(out.stream).add(out.indent()).add("faceVertices [\n");
    _OrvWriteValues_(out, counts.data(), (unsigned)counts.size());
    _OrvLine_(out.stream).add(out.indent()).add("]\n");
    for (size_t j = 0; j < used.size(); j++) {
        _OrvLine_(out.stream).add(out.indent()).add(compactBlocks[used[j]].values).add(" [\n");
        _OrvWriteValues_(out, values[j].data(), (unsigned)values[j].size());
        _OrvLine_(out.stream).add(out.indent()).add("]\n");
    }
    _OrvLine_ line(out.stream, _OrvLine_::bulkSize);
    const char* indent = out.indent();
    for (size_t f = 0; f < counts.size(); f++)
        _OrvWriteFaceItems_(line, indent, has[f] & 1 ? &colors[f] : nullptr,
                            has[f] & 2 ? &normals[f] : nullptr);
    return 1;
}

void OrvFaceSet::write(OrvOStream& out) const {
    _OrvLine_(out.stream).add(out.indent()).add("faceSet {\n");
    out.indentation++;
    if (!writeOptimizeIndex(out)) {
        writeData(out, 0);
        for (OrvLink* l = faces.first; l; l = l->next) ((const OrvFace*)l->value)->write(out);
    }
    out.indentation--;
    _OrvLine_(out.stream).add(out.indent()).add("}\n");
}

static const char* const badItem = "OrvFaceSet::OrvFaceSet : Bad item (%s %s)\n";

// The compact form after "optimized yes": the faces, all on one set of
// arrays, each with its own index from the lists of the whole set.
static bool readCompact(OrvIStream& in, OrvFaceSet& set, unsigned long faceCount) {
    unsigned long total = 0;
    if (!_OrvReadKey_(in, "indexCardinal", badItem)) return false;
    if (!OrvScanNumber(in.stream, total) || total > ~0u)
        return in.fault(badItem, "indexCardinal", "");
    OrvShare* s[5];  // point, colour, normal, texture, edge
    if (!_OrvReadArrays_(in, s, "OrvFaceSet::OrvFaceSet : Points array is not defined.\n"))
        return false;
    // Which blocks each face has: they must be those of the arrays.
    const bool arrays[5] = {true, s[1] != nullptr, s[2] != nullptr, s[4] != nullptr,
                            s[3] != nullptr};
    bool present[5];
    for (const auto& b : compactBlocks) {
        unsigned long yes;
        if (!_OrvReadYesNo_(in, b.present, yes, badItem, badItem)) return false;
        present[b.place] = yes;
    }
    if (!present[0]) return in.fault("OrvFaceSet::OrvFaceSet : Index array is not defined.\n");
    if (memcmp(present, arrays, sizeof present))
        return in.fault("OrvFaceSet::OrvFaceSet : Index array is not defined.\n");
    const _OrvListMessages_ m = {"OrvFaceSet::OrvFaceSet : Bad data begin separator.\n",
                                 "OrvFaceSet::OrvFaceSet : Bad data end separator.\n",
                                 "OrvFaceSet::OrvFaceSet : Bad data end separator.\n", ""};
    std::vector<unsigned> sizes;
    if (!_OrvReadKey_(in, "faceVertices", badItem)) return false;
    if (!_OrvReadValues_(in, (unsigned)(faceCount > ~0u ? ~0u : faceCount), false, sizes, m))
        return false;
    unsigned long sum = 0;
    for (unsigned n : sizes) sum += n;
    if (sum != total) return in.fault("OrvFaceSet::OrvFaceSet: Index size not equal.\n");
    std::vector<unsigned> block[5];
    for (const auto& b : compactBlocks) {
        if (!present[b.place]) continue;
        if (!_OrvReadKey_(in, b.values, badItem)) return false;
        if (!_OrvReadValues_(in, (unsigned)total, false, block[b.place], m)) return false;
    }
    unsigned used = 0;
    for (bool p : present) used += p;
    const OrvShare* limits[5] = {s[0], s[1], s[2], s[4], s[3]};
    const char* names[5] = {"point", "color", "normal", "edge", "texture"};
    unsigned long at = 0;
    // The faces' items are read ahead of the stream, which is not used
    // otherwise until the scanner goes.
    OrvScanner scanner(in.stream, true);
    for (unsigned n : sizes) {
        // The face joins the set once its box is known, as add takes it.
        OrvFace* face = new OrvFace;
        face->createIndexedVertex(s[0], s[1], s[2], s[3], s[4]);
        unsigned* index = new unsigned[(size_t)used * n + 1];
        unsigned k = 0;
        for (unsigned place = 0; place < 5; place++) {
            if (!present[place]) continue;
            for (unsigned i = 0; i < n; i++) {
                unsigned v = block[place][at + i];
                // Never used to read outside an array.
                if (v >= limits[place]->cardinal) {
                    delete[] index;
                    delete face;
                    return in.fault("OrvVertex::setIndex: Some %s index exceed max. of array.\n",
                                    names[place]);
                }
                index[k++] = v;
            }
        }
        face->setVertexIndex(new OrvShare(used * n, index, 0, 1));
        set.add(face);
        at += n;
        if (!_OrvReadFaceItems_(in, scanner, *face)) return false;
    }
    return true;
}

OrvFaceSet::OrvFaceSet(OrvIStream& in) : bbox() {
    if (!_OrvReadKey_(in, "faceSet", "OrvFaceSet : OrvIStream : Bad key (%s %s).\n")) return;
    char word[1024];
    in.word(word);
    if (strcmp(word, "{")) {
        in.fault("OrvFaceSet::OrvFaceSet : Bad begin separator.\n");
        return;
    }
    unsigned long count = 0, optimized = 0;
    bool good = _OrvReadKey_(in, "faceCardinal", badItem);
    if (good && !OrvScanNumber(in.stream, count)) good = in.fault(badItem, "faceCardinal", "");
    good = good && _OrvReadYesNo_(in, "optimized", optimized, badItem, badItem);
    if (good && optimized) {
        good = readCompact(in, *this, count);
    } else if (good) {
        // Each face in full; the count is what the file claims, so faces are
        // made only as they are read.
        for (unsigned long i = 0; good && i < count; i++) {
            OrvFace* face = OrvFace::read(in);
            if (face)
                add(face);
            else
                good = false;
        }
    }
    if (good && !_OrvReadClosing_(in))
        good = in.fault("OrvFaceSet::OrvFaceSet : Bad end separator.\n");
    if (good) return;
    for (OrvLink* l = faces.first; l; l = l->next) delete (OrvFace*)l->value;
    delete faces.first;
    faces.first = faces.last = nullptr;
    bbox = Orv3dVolume();
}

OrvFaceSet* OrvFaceSet::read(OrvIStream& in) {
    unsigned long before = in.faults;
    OrvFaceSet* set = new OrvFaceSet(in);
    if (in.faults != before) {
        delete set;
        return nullptr;
    }
    return set;
}
