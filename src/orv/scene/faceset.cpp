// Face sets: owned faces with one bounding volume, their normals smoothed by
// crease angle over shared points, and textures from one box for all.
#include "orv/vertex.h"

#include <cstdarg>
#include <unordered_map>
#include <vector>

#include "crease.h"

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
    bool first = !faces.first;
    faces.insert(face);
    if (first)
        bbox = face->bbox3d();
    else
        bbox.extendBy(face->bbox3d());
}

void OrvFaceSet::add(OrvFace* face) {
    if (!face) return;
    bool first = !faces.first;
    faces.append(face);
    if (first)
        bbox = face->bbox3d();
    else
        bbox.extendBy(face->bbox3d());
}

void OrvFaceSet::computeBBox() {
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
        unsigned offset = known.first->second, n = face->vertexCardinal();
        for (unsigned k = 0; k < n; k++) {
            unsigned place;
            face->point(k, place);
            mesh.faceSlots.push_back((unsigned)mesh.slotPoint.size());
            mesh.slotPoint.push_back(offset + place);
        }
        mesh.faceStart.push_back((unsigned)mesh.faceSlots.size());
        mesh.faceNormal.push_back(*face->normal());
    }
    if (all.empty()) return 1;
    std::vector<unsigned> result;
    _OrvNormalTable_ table;
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
