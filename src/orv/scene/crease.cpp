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

_OrvNormalTable_::_OrvNormalTable_(size_t expected)
    : entries(64, Entry{0, none}), cells(0), linear(_OrvNormalTableLinearSearch_ != 0) {
    size_t room = 64;
    while (room < 2 * expected && room < ((size_t)1 << 24)) room *= 2;
    entries.assign(room, Entry{0, none});
    vectors.reserve(expected);
    next.reserve(expected);
}

// The head of a cell, or null when it has none and make is false.
unsigned* _OrvNormalTable_::cell(uint64_t key, bool make) {
    // The short key is also where the entry goes: a table twice the size
    // places the entries again from it alone.
    uint32_t short_ = (uint32_t)((key * 0x9E3779B97F4A7C15ull) >> 32);
    size_t mask = entries.size() - 1;
    for (size_t i = short_ & mask;; i = (i + 1) & mask) {
        Entry& e = entries[i];
        if (e.head == none) {
            if (!make) return nullptr;
            if (2 * (cells + 1) <= entries.size()) {
                e.key = short_;
                cells++;
                return &e.head;
            }
            // Half full at most: twice the room.
            std::vector<Entry> old(entries.size() * 2, Entry{0, none});
            old.swap(entries);
            mask = entries.size() - 1;
            for (const Entry& o : old) {
                if (o.head == none) continue;
                size_t k = o.key & mask;
                while (entries[k].head != none) k = (k + 1) & mask;
                entries[k] = o;
            }
            return cell(key, true);
        }
        if (e.key == short_) return &e.head;
    }
}

unsigned _OrvNormalTable_::find(const Orv3dVector& v) {
    unsigned found = none;
    bool grid = !linear && gridded(v);
    int64_t lo[3], hi[3];
    if (grid) {
        const float c[3] = {v.x, v.y, v.z};
        int64_t home[3];
        bool alone = true;
        for (int k = 0; k < 3; k++) {
            home[k] = (int64_t)std::floor((double)c[k] * cellScale);
            lo[k] = (int64_t)std::floor(((double)c[k] - 1e-6) * cellScale);
            hi[k] = (int64_t)std::floor(((double)c[k] + 1e-6) * cellScale);
            alone = alone && lo[k] == hi[k];
        }
        if (alone) {
            // All candidates are in the vector's own cell, the usual case:
            // one visit finds them and makes room for the vector if it is new.
            unsigned* head = cell(cellKey(home[0], home[1], home[2]), true);
            for (unsigned i = *head; i != none; i = next[i])
                if (i < found && near(vectors[i], v)) found = i;
            if (found != none) return found;
            unsigned place = (unsigned)vectors.size();
            vectors.push_back(v);
            next.push_back(*head);
            *head = place;
            return place;
        }
        for (int64_t x = lo[0]; x <= hi[0]; x++)
            for (int64_t y = lo[1]; y <= hi[1]; y++)
                for (int64_t z = lo[2]; z <= hi[2]; z++) {
                    unsigned* head = cell(cellKey(x, y, z), false);
                    for (unsigned i = head ? *head : none; i != none; i = next[i])
                        if (i < found && near(vectors[i], v)) found = i;
                }
    } else {
        for (unsigned i = 0; i < vectors.size(); i++)
            if (near(vectors[i], v)) {
                found = i;
                break;
            }
    }
    if (found != none) return found;
    unsigned place = (unsigned)vectors.size();
    vectors.push_back(v);
    next.push_back(none);
    if (grid) {
        unsigned* head = cell(cellKey((int64_t)std::floor((double)v.x * cellScale),
                                      (int64_t)std::floor((double)v.y * cellScale),
                                      (int64_t)std::floor((double)v.z * cellScale)),
                              true);
        next[place] = *head;
        *head = place;
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
    // The faces round each point, in face order, with the slot each has
    // there.
    std::vector<unsigned> start(mesh.pointCount + 1, 0);
    for (unsigned s : mesh.faceSlots) start[mesh.slotPoint[s] + 1]++;
    for (unsigned p = 0; p < mesh.pointCount; p++) start[p + 1] += start[p];
    std::vector<unsigned> round(mesh.faceSlots.size()), roundSlot(mesh.faceSlots.size());
    std::vector<unsigned> fill(start.begin(), start.end() - 1);
    for (unsigned f = 0; f < faces; f++)
        for (unsigned k = mesh.faceStart[f]; k < mesh.faceStart[f + 1]; k++) {
            unsigned slot = mesh.faceSlots[k];
            unsigned at = fill[mesh.slotPoint[slot]]++;
            round[at] = f;
            roundSlot[at] = slot;
        }

    double limit = std::cos(creaseAngle * M_PI / 180.0);
    std::vector<unsigned> within;  // the faces round the point within the crease
    for (unsigned f = 0; f < faces; f++) {
        const Orv3dVector& n = mesh.faceNormal[f];
        for (unsigned k = mesh.faceStart[f]; k < mesh.faceStart[f + 1]; k++) {
            unsigned slot = mesh.faceSlots[k];
            if (result[slot] != none) continue;
            unsigned p = mesh.slotPoint[slot];
            Orv3dVector sum;
            within.clear();
            for (unsigned r = start[p]; r < start[p + 1]; r++) {
                const Orv3dVector& other = mesh.faceNormal[round[r]];
                if ((double)n.x * other.x + (double)n.y * other.y + (double)n.z * other.z < limit)
                    continue;
                sum.x += other.x;
                sum.y += other.y;
                sum.z += other.z;
                within.push_back(r);
            }
            Orv3dVector v = n;
            if (unsigned count = (unsigned)within.size()) {
                v = Orv3dVector(sum.x / count, sum.y / count, sum.z / count);
                v.normalize();
            }
            unsigned place = table.find(v);
            result[slot] = place;
            // The faces round the point that are within the crease of this
            // one take the same normal there, so each is computed once.
            for (unsigned r : within)
                if (result[roundSlot[r]] == none) result[roundSlot[r]] = place;
        }
    }
}

// ---------------------------------------------------------------------------
// Rebuilding
// ---------------------------------------------------------------------------

// The index of a rebuilt vertex: its blocks as they are (an identity for an
// attribute of an object without index), with the block at `place` (2 the
// normals, 4 the textures) present and taken from `with`, or from the point
// block when `with` is null.
static unsigned* rebuiltIndex(const OrvVertexData& data, unsigned place, const unsigned* with,
                              unsigned& total) {
    unsigned n = data.vertexCardinal();
    bool indexed = data.isIndexed() != 0;
    bool present[5] = {true, data.vertexSharedColors() != nullptr,
                       data.vertexSharedNormals() != nullptr, data.vertexSharedEdges() != nullptr,
                       data.vertexSharedTextures() != nullptr};
    const unsigned* from[5] = {nullptr, nullptr, nullptr, nullptr, nullptr};
    if (indexed) {
        from[0] = data.vertexPointsIndex();
        from[1] = data.vertexColorsIndex();
        from[2] = data.vertexNormalsIndex();
        from[3] = data.vertexEdgesIndex();
        from[4] = data.vertexTexturesIndex();
    }
    present[place] = true;
    from[place] = with ? with : from[0];
    unsigned used = 0;
    for (bool p : present) used += p;
    total = used * n;
    unsigned* all = new unsigned[(size_t)total + 1];
    unsigned* at = all;
    for (int k = 0; k < 5; k++) {
        if (!present[k]) continue;
        if (from[k])
            memcpy(at, from[k], n * sizeof(unsigned));
        else
            for (unsigned i = 0; i < n; i++) at[i] = i;
        at += n;
    }
    return all;
}

// Makes the indexed layout for the arrays and installs the index. The
// points do not move, so the cached volume stays as it is.
static unsigned long rebuild(OrvVertexData& data, OrvShare* normals, OrvShare* textures,
                             unsigned place, const unsigned* with) {
    OrvShare* points = data.vertexSharedAnyPoints();
    OrvShare* old = data.vertexSharedIndex();
    unsigned long readOnly = old ? old->isReadOnly() : 0;
    unsigned total;
    unsigned* all = rebuiltIndex(data, place, with, total);
    _OrvVertexType_* before = data.vertex;
    data.createIndexedVertex(points, data.vertexSharedColors(), normals, textures,
                             data.vertexSharedEdges());
    if (data.vertex == before) {
        delete[] all;
        return 0;
    }
    data.vertex->setIndex(new OrvShare(total, all, readOnly, 1));
    return 1;
}

unsigned long _OrvRebuildWithNormals_(OrvVertexData& data, OrvShare* normals,
                                      const unsigned* normalIndex) {
    if (!data.vertexSharedAnyPoints() || !normals || !normalIndex) return 0;
    return rebuild(data, normals, data.vertexSharedTextures(), 2, normalIndex);
}

unsigned long _OrvRebuildWithTextures_(OrvVertexData& data, OrvShare* textures) {
    OrvShare* points = data.vertexSharedAnyPoints();
    if (!points || !textures) return 0;
    if (!data.isIndexed()) {
        _OrvVertexType_* before = data.vertex;
        data.createNonIndexedVertex(points, data.vertexSharedColors(), data.vertexSharedNormals(),
                                    textures, data.vertexSharedEdges());
        return data.vertex != before;
    }
    return rebuild(data, data.vertexSharedNormals(), textures, 4, nullptr);
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
