// Crease-angle smoothing of vertex normals, the table of distinct normals,
// and the rebuilding of vertex layouts with new normals or textures.
#include "crease.h"

#include <cmath>
#include <cstring>

int _OrvNormalTableLinearSearch_ = 0;
size_t _OrvNormalTableSortFrom_ = (size_t)1 << 17;

// ---------------------------------------------------------------------------
// The table of distinct normals
// ---------------------------------------------------------------------------

// Cells of 1/4096 in each axis: far wider than twice the tolerance, so that
// a vector within 1e-6 of another lies in the same cell or the next, and a
// vector seldom lies near enough a border for the next cells to matter.
static const double cellScale = 4096.0;
// A vector at least this far (in cells) from each border of its cell has
// every vector within 1e-6 of it in the same cell.
static const double cellMargin = 1e-6 * cellScale * 1.01;
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

// floor for the cell numbers, which lie well inside 64 bits; the library's
// floor is a call on machines without a rounding instruction.
static inline int64_t floorOf(double x) {
    int64_t t = (int64_t)x;
    return t - (x < (double)t);
}

// Where a cell's entry is sought first, and the short key it is known by:
// the short key alone places the entries again when the table grows.
static inline uint32_t shortKey(uint64_t key) {
    return (uint32_t)((key * 0x9E3779B97F4A7C15ull) >> 32);
}

static inline uint64_t homeKey(const Orv3dVector& v) {
    return cellKey(floorOf((double)v.x * cellScale), floorOf((double)v.y * cellScale),
                   floorOf((double)v.z * cellScale));
}

// The cell of a gridded vector, and whether it is alone there: far enough
// from each border that every vector within 1e-6 of it is in the same cell.
// Two vectors near each other in different cells are thus never alone.
static inline bool homeCell(const Orv3dVector& v, int64_t home[3]) {
    const float c[3] = {v.x, v.y, v.z};
    bool alone = true;
    for (int k = 0; k < 3; k++) {
        double t = (double)c[k] * cellScale;  // exact: the scale is a power of two
        home[k] = floorOf(t);
        alone = alone && t - (double)home[k] > cellMargin && t - (double)home[k] < 1 - cellMargin;
    }
    return alone;
}

_OrvNormalTable_::_OrvNormalTable_(size_t expected)
    : entries(64, Entry{0, none}), cells(0), linear(_OrvNormalTableLinearSearch_ != 0),
      stale(false) {
    size_t room = 64;
    while (room < 2 * expected && room < ((size_t)1 << 24)) room *= 2;
    entries.assign(room, Entry{0, none});
    vectors.reserve(expected);
    next.reserve(expected);
}

// The head of a cell, or null when it has none and make is false.
unsigned* _OrvNormalTable_::cell(uint64_t key, bool make) {
    uint32_t short_ = shortKey(key);
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
    if (stale) remakeCells();
    unsigned found = none;
    bool grid = !linear && gridded(v);
    int64_t lo[3], hi[3];
    if (grid) {
        const float c[3] = {v.x, v.y, v.z};
        int64_t home[3];
        if (homeCell(v, home)) {
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
        for (int k = 0; k < 3; k++) {
            lo[k] = floorOf(((double)c[k] - 1e-6) * cellScale);
            hi[k] = floorOf(((double)c[k] + 1e-6) * cellScale);
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
        unsigned* head = cell(homeKey(v), true);
        next[place] = *head;
        *head = place;
    }
    return place;
}

void _OrvNormalTable_::remakeCells() {
    stale = false;
    size_t room = 64;
    while (room < 2 * vectors.size()) room *= 2;
    entries.assign(room, Entry{0, none});
    cells = 0;
    next.assign(vectors.size(), none);
    for (unsigned p = 0; p < vectors.size(); p++) {
        if (!gridded(vectors[p])) continue;
        unsigned* head = cell(homeKey(vectors[p]), true);
        next[p] = *head;
        *head = p;
    }
}

void _OrvNormalTable_::findAll(const std::vector<Orv3dVector>& sought,
                               std::vector<unsigned>& places) {
    size_t m = sought.size();
    places.resize(m);
    const uint64_t roughBit = (uint64_t)1 << 31, indexBits = roughBit - 1;
    // Fewer vectors keep their cells in the cache, where a visit each is
    // cheaper than the sort.
    if (linear || !vectors.empty() || m < _OrvNormalTableSortFrom_ || m > indexBits) {
        for (size_t i = 0; i < m; i++) places[i] = find(sought[i]);
        return;
    }
    // Each vector as the short key of its home cell, whether it may meet
    // vectors of other cells (not alone, or off the grid), and its place in
    // the list; sorted by key, in list order within a key (three stable
    // passes over 11, 11 and 10 bits).
    std::vector<uint64_t> order(m), spare(m);
    for (size_t i = 0; i < m; i++) {
        int64_t home[3];
        uint64_t key = 0, rough = roughBit;
        if (gridded(sought[i])) {
            if (homeCell(sought[i], home)) rough = 0;
            key = shortKey(cellKey(home[0], home[1], home[2]));
        }
        order[i] = key << 32 | rough | i;
    }
    std::vector<size_t> count(3 * 2048, 0);
    for (uint64_t o : order)
        for (int pass = 0; pass < 3; pass++)
            count[pass * 2048 + ((o >> (32 + 11 * pass)) & 2047)]++;
    for (int pass = 0; pass < 3; pass++) {
        size_t* start = &count[pass * 2048];
        size_t sum = 0;
        for (int b = 0; b < 2048; b++) {
            size_t here = start[b];
            start[b] = sum;
            sum += here;
        }
        int shift = 32 + 11 * pass;
        for (uint64_t o : order) spare[start[(o >> shift) & 2047]++] = o;
        order.swap(spare);
    }

    // Until the end, places holds the vector each one takes the place of:
    // itself when it is new. Within a key whose vectors are all alone, only
    // vectors of the same key can be near; a key with one that is not goes,
    // whole, the way of find below.
    std::vector<unsigned>& match = places;
    for (size_t i = 0; i < m; i++) match[i] = (unsigned)i;
    std::vector<unsigned> firsts;
    // The vectors of keys held by more than one are read: they lie all over
    // the list, so each is asked for some way ahead.
    auto shared = [&](size_t k) {
        return (k + 1 < m && order[k + 1] >> 32 == order[k] >> 32) ||
               (k > 0 && order[k - 1] >> 32 == order[k] >> 32);
    };
    size_t asked = 0;
    for (size_t a = 0; a < m;) {
        for (; asked < m && asked < a + 32; asked++)
            if (shared(asked)) __builtin_prefetch(&sought[order[asked] & indexBits]);
        size_t b = a + 1;
        uint64_t rough = order[a] & roughBit;
        for (; b < m && order[b] >> 32 == order[a] >> 32; b++) rough |= order[b] & roughBit;
        if (rough) {
            for (size_t k = a; k < b; k++) match[order[k] & indexBits] = none;
        } else if (b - a > 1) {
            firsts.clear();
            for (size_t k = a; k < b; k++) {
                unsigned i = (unsigned)(order[k] & indexBits);
                bool met = false;
                for (unsigned f : firsts)
                    if (near(sought[f], sought[i])) {
                        match[i] = f;
                        met = true;
                        break;
                    }
                if (!met) firsts.push_back(i);
            }
        }
        a = b;
    }
    // Vectors that may meet other cells only meet each other there, or
    // vectors of their own key: they are found in list order in a table of
    // their own.
    _OrvNormalTable_ own;
    firsts.clear();
    for (unsigned i = 0; i < m; i++) {
        if (match[i] != none) continue;
        unsigned p = own.find(sought[i]);
        if (p == firsts.size()) firsts.push_back(i);
        match[i] = firsts[p];
    }

    // An earlier vector already holds its place.
    vectors.reserve(m);
    for (size_t i = 0; i < m; i++) {
        if (match[i] != i) {
            places[i] = places[match[i]];
            continue;
        }
        places[i] = (unsigned)vectors.size();
        vectors.push_back(sought[i]);
    }
    stale = true;
}

// ---------------------------------------------------------------------------
// Smoothing
// ---------------------------------------------------------------------------

// sum / count, normalised, as float arithmetic gives it. Each quotient is
// taken in double and rounded once, which gives the same float, and keeps
// the compiler from dividing whole registers whose unused lanes may hold
// values that are slow to divide.
static inline Orv3dVector averageOf(const Orv3dVector& sum, unsigned count) {
    double c = count;
    float x = (float)(sum.x / c), y = (float)(sum.y / c), z = (float)(sum.z / c);
    double l = (float)std::sqrt((double)(x * x + y * y + z * z));
    if (l == 0) return Orv3dVector(x, y, z);
    return Orv3dVector((float)(x / l), (float)(y / l), (float)(z / l));
}

// What the walk knows of a point: the first face to reach it, in face order,
// and the sum and number of the normals of all the faces round it. While
// every one of those is within the crease of the first face, the point is
// smooth: its first slot takes the average of them all, and so, by the
// sharing of a normal within the crease, do all its other slots.
struct _OrvCreasePoint_ {
    Orv3dVector sum;
    unsigned count = 0;
    unsigned first = none;  // face
    unsigned which = none;  // the normal sought for a smooth point
    bool rough = false;
};

static inline bool within(const Orv3dVector& n, const Orv3dVector& other, double limit) {
    return !((double)n.x * other.x + (double)n.y * other.y + (double)n.z * other.z < limit);
}

void _OrvCreaseNormals_(const _OrvCreaseMesh_& mesh, double creaseAngle,
                        std::vector<unsigned>& result, _OrvNormalTable_& table) {
    unsigned faces = (unsigned)mesh.faceNormal.size();
    double limit = std::cos(creaseAngle * M_PI / 180.0);
    result.assign(mesh.slotPoint.size(), none);

    // One pass in face order, as the floor of the arithmetic: sums round the
    // points, and which points are not smooth.
    std::vector<_OrvCreasePoint_> at(mesh.pointCount);
    // The tests walk every point the long way, to compare the two.
    const bool everyPoint = _OrvNormalTableLinearSearch_ != 0;
    bool anyRough = false;
    for (unsigned f = 0; f < faces; f++) {
        const Orv3dVector& n = mesh.faceNormal[f];
        for (unsigned k = mesh.faceStart[f]; k < mesh.faceStart[f + 1]; k++) {
            _OrvCreasePoint_& a = at[mesh.slotPoint[mesh.faceSlots[k]]];
            if (a.first == none) a.first = f;
            if (everyPoint || !within(mesh.faceNormal[a.first], n, limit))
                anyRough = a.rough = true;
            a.sum.x += n.x;
            a.sum.y += n.y;
            a.sum.z += n.z;
            a.count++;
        }
    }

    // The faces round each point that is not smooth, in face order, with the
    // slot each has there.
    std::vector<unsigned> start, round, roundSlot;
    if (anyRough) {
        start.assign(mesh.pointCount + 1, 0);
        for (unsigned p = 0; p < mesh.pointCount; p++)
            start[p + 1] = start[p] + (at[p].rough ? at[p].count : 0);
        round.resize(start.back());
        roundSlot.resize(start.back());
        std::vector<unsigned> fill(start.begin(), start.end() - 1);
        for (unsigned f = 0; f < faces; f++)
            for (unsigned k = mesh.faceStart[f]; k < mesh.faceStart[f + 1]; k++) {
                unsigned slot = mesh.faceSlots[k], p = mesh.slotPoint[slot];
                if (!at[p].rough) continue;
                unsigned r = fill[p]++;
                round[r] = f;
                roundSlot[r] = slot;
            }
    }

    // The normals in the order the table is to meet them; each slot first
    // notes which of them it takes.
    std::vector<Orv3dVector> sought;
    sought.reserve(mesh.pointCount);
    std::vector<unsigned> inside;  // the faces round the point within the crease
    for (unsigned f = 0; f < faces; f++) {
        const Orv3dVector& n = mesh.faceNormal[f];
        for (unsigned k = mesh.faceStart[f]; k < mesh.faceStart[f + 1]; k++) {
            unsigned slot = mesh.faceSlots[k];
            if (result[slot] != none) continue;
            unsigned p = mesh.slotPoint[slot];
            _OrvCreasePoint_& a = at[p];
            if (!a.rough) {
                if (a.which == none) {
                    a.which = (unsigned)sought.size();
                    sought.push_back(averageOf(a.sum, a.count));
                }
                result[slot] = a.which;
                continue;
            }
            Orv3dVector sum;
            inside.clear();
            for (unsigned r = start[p]; r < start[p + 1]; r++) {
                const Orv3dVector& other = mesh.faceNormal[round[r]];
                if (!within(n, other, limit)) continue;
                sum.x += other.x;
                sum.y += other.y;
                sum.z += other.z;
                inside.push_back(r);
            }
            unsigned which = (unsigned)sought.size();
            sought.push_back(inside.empty() ? n : averageOf(sum, (unsigned)inside.size()));
            result[slot] = which;
            // The faces round the point that are within the crease of this
            // one take the same normal there, so each is computed once.
            for (unsigned r : inside)
                if (result[roundSlot[r]] == none) result[roundSlot[r]] = which;
        }
    }

    // The table, in that order.
    std::vector<unsigned> place;
    table.findAll(sought, place);
    for (unsigned& r : result)
        if (r != none) r = place[r];
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
