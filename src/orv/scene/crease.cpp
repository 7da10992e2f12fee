// Crease-angle smoothing of vertex normals, the table of distinct normals,
// and the rebuilding of vertex layouts with new normals or textures.
#include "crease.h"

#include <cmath>
#include <cstring>

int _OrvNormalTableLinearSearch_ = 0;

// ---------------------------------------------------------------------------
// The table of distinct normals
// ---------------------------------------------------------------------------

// Cells of 1/65536 in each axis: wider than twice the tolerance, so that a
// vector within 1e-6 of another lies in the same cell or the next, and all
// candidates are found in at most two cells an axis.
static const double cellScale = 65536.0;
// Beyond this the floats are too far apart to be within 1e-6 unless equal,
// and the cell numbers would not fit; such vectors are searched in a list.
static const double cellLimit = 33554432.0;

static inline bool near(const Orv3dVector& a, const Orv3dVector& b) {
    return std::fabs((double)a.x - b.x) <= 1e-6 && std::fabs((double)a.y - b.y) <= 1e-6 &&
           std::fabs((double)a.z - b.z) <= 1e-6;
}

static inline bool gridded(const Orv3dVector& v) {
    return std::fabs(v.x) < cellLimit && std::fabs(v.y) < cellLimit && std::fabs(v.z) < cellLimit;
}

static inline uint64_t cellKey(int64_t x, int64_t y, int64_t z) {
    return (uint64_t)x * 0x9E3779B97F4A7C15ull ^ (uint64_t)y * 0xC2B2AE3D27D4EB4Full ^
           (uint64_t)z * 0x165667B19E3779F9ull;
}

static const unsigned none = ~0u;

_OrvNormalTable_::_OrvNormalTable_() : linear(_OrvNormalTableLinearSearch_ != 0) {}

unsigned _OrvNormalTable_::find(const Orv3dVector& v) {
    unsigned found = none;
    if (linear || !gridded(v)) {
        for (unsigned i = 0; i < vectors.size(); i++)
            if (near(vectors[i], v)) {
                found = i;
                break;
            }
    } else {
        int64_t lo[3], hi[3];
        const float c[3] = {v.x, v.y, v.z};
        for (int k = 0; k < 3; k++) {
            lo[k] = (int64_t)std::floor(((double)c[k] - 1e-6) * cellScale);
            hi[k] = (int64_t)std::floor(((double)c[k] + 1e-6) * cellScale);
        }
        for (int64_t x = lo[0]; x <= hi[0]; x++)
            for (int64_t y = lo[1]; y <= hi[1]; y++)
                for (int64_t z = lo[2]; z <= hi[2]; z++) {
                    auto cell = head.find(cellKey(x, y, z));
                    if (cell == head.end()) continue;
                    for (unsigned i = cell->second; i != none; i = next[i])
                        if (i < found && near(vectors[i], v)) found = i;
                }
    }
    if (found != none) return found;
    unsigned place = (unsigned)vectors.size();
    vectors.push_back(v);
    next.push_back(none);
    if (!linear && gridded(v)) {
        uint64_t key = cellKey((int64_t)std::floor((double)v.x * cellScale),
                               (int64_t)std::floor((double)v.y * cellScale),
                               (int64_t)std::floor((double)v.z * cellScale));
        auto inserted = head.emplace(key, place);
        if (!inserted.second) {
            next[place] = inserted.first->second;
            inserted.first->second = place;
        }
    }
    return place;
}

// ---------------------------------------------------------------------------
// Smoothing
// ---------------------------------------------------------------------------

void _OrvCreaseNormals_(const _OrvCreaseMesh_& mesh, double creaseAngle,
                        std::vector<unsigned>& result, _OrvNormalTable_& table) {
    unsigned faces = (unsigned)mesh.faceNormal.size();
    result.assign(mesh.slotPoint.size(), none);
    // The faces round each point, in face order.
    std::vector<unsigned> start(mesh.pointCount + 1, 0);
    for (unsigned s : mesh.faceSlots) start[mesh.slotPoint[s] + 1]++;
    for (unsigned p = 0; p < mesh.pointCount; p++) start[p + 1] += start[p];
    std::vector<unsigned> round(mesh.faceSlots.size());
    std::vector<unsigned> fill(start.begin(), start.end() - 1);
    for (unsigned f = 0; f < faces; f++)
        for (unsigned k = mesh.faceStart[f]; k < mesh.faceStart[f + 1]; k++)
            round[fill[mesh.slotPoint[mesh.faceSlots[k]]]++] = f;

    double limit = std::cos(creaseAngle * M_PI / 180.0);
    for (unsigned f = 0; f < faces; f++) {
        const Orv3dVector& n = mesh.faceNormal[f];
        for (unsigned k = mesh.faceStart[f]; k < mesh.faceStart[f + 1]; k++) {
            unsigned slot = mesh.faceSlots[k];
            if (result[slot] != none) continue;
            unsigned p = mesh.slotPoint[slot];
            Orv3dVector sum;
            unsigned count = 0;
            for (unsigned r = start[p]; r < start[p + 1]; r++) {
                const Orv3dVector& other = mesh.faceNormal[round[r]];
                if ((double)n.x * other.x + (double)n.y * other.y + (double)n.z * other.z < limit)
                    continue;
                sum.x += other.x;
                sum.y += other.y;
                sum.z += other.z;
                count++;
            }
            Orv3dVector v = n;
            if (count) {
                v = Orv3dVector(sum.x / count, sum.y / count, sum.z / count);
                v.normalize();
            }
            unsigned place = table.find(v);
            result[slot] = place;
            // The faces round the point that are within the crease of this
            // one take the same normal there, so each is computed once.
            for (unsigned r = start[p]; r < start[p + 1]; r++) {
                unsigned g = round[r];
                const Orv3dVector& other = mesh.faceNormal[g];
                if ((double)n.x * other.x + (double)n.y * other.y + (double)n.z * other.z < limit)
                    continue;
                for (unsigned j = mesh.faceStart[g]; j < mesh.faceStart[g + 1]; j++) {
                    unsigned s = mesh.faceSlots[j];
                    if (mesh.slotPoint[s] == p && result[s] == none) result[s] = place;
                }
            }
        }
    }
}

// ---------------------------------------------------------------------------
// Rebuilding
// ---------------------------------------------------------------------------

static void identity(std::vector<unsigned>& block, unsigned n) {
    block.resize(n);
    for (unsigned i = 0; i < n; i++) block[i] = i;
}

static void copyOrIdentity(std::vector<unsigned>& block, const unsigned* from, bool present,
                           unsigned n) {
    block.clear();
    if (!present) return;
    if (from)
        block.assign(from, from + n);
    else
        identity(block, n);
}

void _OrvGetIndexBlocks_(const OrvVertexData& data, _OrvIndexBlocks_& b) {
    unsigned n = data.vertexCardinal();
    bool indexed = data.isIndexed() != 0;
    copyOrIdentity(b.point, indexed ? data.vertexPointsIndex() : nullptr, true, n);
    copyOrIdentity(b.color, indexed ? data.vertexColorsIndex() : nullptr,
                   data.vertexSharedColors() != nullptr, n);
    copyOrIdentity(b.normal, indexed ? data.vertexNormalsIndex() : nullptr,
                   data.vertexSharedNormals() != nullptr, n);
    copyOrIdentity(b.edge, indexed ? data.vertexEdgesIndex() : nullptr,
                   data.vertexSharedEdges() != nullptr, n);
    copyOrIdentity(b.texture, indexed ? data.vertexTexturesIndex() : nullptr,
                   data.vertexSharedTextures() != nullptr, n);
    b.present[1] = data.vertexSharedColors() != nullptr;
    b.present[2] = data.vertexSharedNormals() != nullptr;
    b.present[3] = data.vertexSharedEdges() != nullptr;
    b.present[4] = data.vertexSharedTextures() != nullptr;
    OrvShare* index = data.vertexSharedIndex();
    b.readOnly = index ? index->isReadOnly() : 0;
}

// Installs an owned index share built from the blocks, in the fixed order.
static void installIndex(OrvVertexData& data, const _OrvIndexBlocks_& b, unsigned n) {
    const std::vector<unsigned>* order[5] = {&b.point, &b.color, &b.normal, &b.edge, &b.texture};
    unsigned used = 0;
    for (bool p : b.present) used += p;
    unsigned* all = new unsigned[(size_t)used * n + 1];
    unsigned at = 0;
    for (int k = 0; k < 5; k++) {
        if (!b.present[k]) continue;
        if (n) memcpy(all + at, order[k]->data(), n * sizeof(unsigned));
        at += n;
    }
    data.setVertexIndex(new OrvShare(used * n, all, b.readOnly, 1));
}

unsigned long _OrvRebuildWithNormals_(OrvVertexData& data, OrvShare* normals,
                                      const unsigned* normalIndex) {
    OrvShare* points = data.vertexSharedAnyPoints();
    if (!points || !normals) return 0;
    unsigned n = data.vertexCardinal();
    _OrvIndexBlocks_ b;
    _OrvGetIndexBlocks_(data, b);
    b.normal.assign(normalIndex, normalIndex + n);
    b.present[2] = true;
    _OrvVertexType_* before = data.vertex;
    data.createIndexedVertex(points, data.vertexSharedColors(), normals,
                             data.vertexSharedTextures(), data.vertexSharedEdges());
    if (data.vertex == before) return 0;
    installIndex(data, b, n);
    return 1;
}

unsigned long _OrvRebuildWithTextures_(OrvVertexData& data, OrvShare* textures) {
    OrvShare* points = data.vertexSharedAnyPoints();
    if (!points || !textures) return 0;
    _OrvVertexType_* before = data.vertex;
    if (!data.isIndexed()) {
        data.createNonIndexedVertex(points, data.vertexSharedColors(), data.vertexSharedNormals(),
                                    textures, data.vertexSharedEdges());
        return data.vertex != before;
    }
    unsigned n = data.vertexCardinal();
    _OrvIndexBlocks_ b;
    _OrvGetIndexBlocks_(data, b);
    b.texture = b.point;
    b.present[4] = true;
    data.createIndexedVertex(points, data.vertexSharedColors(), data.vertexSharedNormals(),
                             textures, data.vertexSharedEdges());
    if (data.vertex == before) return 0;
    installIndex(data, b, n);
    return 1;
}

unsigned long _OrvBoxTextures_(const Orv3dVolume& box, unsigned n, const Orv3dPoint* points,
                               const Orv4dPoint* points4d, OrvTextureUV* out) {
    // Axes 0 x, 1 y, 2 z; s along the longest side, with x, y, z preferred
    // in that order, and t along the longest of the other two likewise.
    const float side[3] = {box.w, box.h, box.d};
    const float low[3] = {box.x, box.y, box.z};
    int s;
    if (side[0] >= side[1] && side[0] >= side[2])
        s = 0;
    else if (side[1] >= side[0] && side[1] >= side[2])
        s = 1;
    else if (side[2] >= side[0] && side[2] >= side[1])
        s = 2;
    else
        return 0;
    int a = s == 0 ? 1 : 0, b = s == 2 ? 1 : 2;
    int t = side[a] >= side[b] ? a : b;
    double longest = side[s];
    for (unsigned i = 0; i < n; i++) {
        Orv3dPoint p = points4d ? points4d[i].to3dPoint() : points[i];
        const float c[3] = {p.x, p.y, p.z};
        // t is (c - low) / side * (side / longest): it is worked out as one
        // division by the longest side, so that a flat box never divides by
        // its zero side.
        if (longest > 0)
            out[i] = OrvTextureUV((float)((c[s] - low[s]) / longest),
                                  (float)((c[t] - low[t]) / longest));
        else
            out[i] = OrvTextureUV(0, 0);
    }
    return 1;
}
