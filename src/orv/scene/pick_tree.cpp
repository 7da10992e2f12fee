// The bounding-volume hierarchies behind picking. A pick asks a hierarchy
// for the faces or actors that may lie under a pixel; the walk's own test
// then decides each of them, so the hierarchy only has to be sure never to
// leave one out. Boxes are met by the pixel's frustum widened by every
// tolerance of the tests (the floor of projected coordinates, the 3 pixels of
// points and lines, the 2 pixels of a projected box), with room for float
// rounding, and any box that reaches the eye's plane is always met.
#include "pick_tree.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <typeinfo>

#include "orv/actor3d.h"
#include "orv/pick.h"
#include "orv/theater.h"
#include "orv/vertex.h"

// ---------------------------------------------------------------------------
// Boxes and the frustum
// ---------------------------------------------------------------------------

void _OrvPickBox_::add(const Orv3dPoint& p) {
    const float v[3] = {p.x, p.y, p.z};
    bool first = isEmpty();
    for (int k = 0; k < 3; k++) {
        if (first || v[k] < lo[k]) lo[k] = v[k];
        if (first || v[k] > hi[k]) hi[k] = v[k];
    }
}

void _OrvPickBox_::add(const _OrvPickBox_& b) {
    if (b.isEmpty()) return;
    if (isEmpty()) {
        *this = b;
        return;
    }
    for (int k = 0; k < 3; k++) {
        lo[k] = std::min(lo[k], b.lo[k]);
        hi[k] = std::max(hi[k], b.hi[k]);
    }
}

_OrvPickBox_ _OrvPickBox_::mapped(const Orv3dMatrix& m) const {
    _OrvPickBox_ out;
    if (isEmpty()) return out;
    for (int i = 0; i < 8; i++) {
        Orv3dPoint p(i & 1 ? hi[0] : lo[0], i & 2 ? hi[1] : lo[1], i & 4 ? hi[2] : lo[2]);
        m.apply(p);
        out.add(p);
    }
    return out;
}

void _OrvPickProduct_(const Orv3dMatrix& scene, const Orv3dMatrix* space, double out[16]) {
    for (int r = 0; r < 4; r++)
        for (int c = 0; c < 4; c++) {
            if (!space) {
                out[r * 4 + c] = scene.m[r * 4 + c];
                continue;
            }
            double sum = 0;
            for (int k = 0; k < 4; k++) sum += (double)scene.m[r * 4 + k] * space->m[k * 4 + c];
            out[r * 4 + c] = sum;
        }
}

void _OrvPickFrustum_::make(const double m[16], double x0, double x1, double y0, double y1) {
    for (int k = 0; k < 4; k++) {
        w[k] = m[12 + k];
        plane[0][k] = m[k] - x0 * m[12 + k];
        plane[1][k] = x1 * m[12 + k] - m[k];
        plane[2][k] = m[4 + k] - y0 * m[12 + k];
        plane[3][k] = y1 * m[12 + k] - m[4 + k];
    }
}

// The walk works in floats: a value is trusted only when it is clear of 0 by
// more than float rounding of the terms that make it.
bool _OrvPickFrustum_::meets(const float lo[3], const float hi[3]) const {
    double big[3];
    for (int k = 0; k < 3; k++)
        big[k] = std::max(std::fabs((double)lo[k]), std::fabs((double)hi[k]));
    double least = w[3], scale = std::fabs(w[3]);
    for (int k = 0; k < 3; k++) {
        least += w[k] * (w[k] > 0 ? lo[k] : hi[k]);
        scale += std::fabs(w[k]) * big[k];
    }
    if (!(least > 1e-5 + 1e-5 * scale)) return true;
    for (const double* p : plane) {
        double most = p[3], size = std::fabs(p[3]);
        for (int k = 0; k < 3; k++) {
            most += p[k] * (p[k] > 0 ? hi[k] : lo[k]);
            size += std::fabs(p[k]) * big[k];
        }
        if (most < -1e-5 * size) return false;
    }
    return true;
}

// ---------------------------------------------------------------------------
// The tree
// ---------------------------------------------------------------------------

namespace {
const uint32_t LeafSize = 4;

struct Entry {
    float c[3];  // twice the centre
    uint32_t item;
};

struct Builder {
    const std::vector<_OrvPickBox_>& boxes;
    std::vector<Entry>& entries;
    _OrvBoxTree_& tree;

    uint32_t make(uint32_t begin, uint32_t end, uint32_t up) {
        uint32_t at = (uint32_t)tree.nodes.size();
        tree.nodes.push_back(_OrvBoxTree_::Node());
        if (!tree.leafOf.empty()) tree.parent.push_back(up);
        if (end - begin <= LeafSize) {
            _OrvPickBox_ b;
            for (uint32_t i = begin; i < end; i++) {
                b.add(boxes[entries[i].item]);
                tree.items[i] = entries[i].item;
                if (!tree.leafOf.empty()) tree.leafOf[entries[i].item] = at;
            }
            _OrvBoxTree_::Node& n = tree.nodes[at];
            std::memcpy(n.lo, b.lo, sizeof n.lo);
            std::memcpy(n.hi, b.hi, sizeof n.hi);
            n.second = begin;
            n.count = end - begin;
            return at;
        }
        // Halves along the longest side of the centres' box.
        float lo[3], hi[3];
        for (int k = 0; k < 3; k++) lo[k] = hi[k] = entries[begin].c[k];
        for (uint32_t i = begin + 1; i < end; i++)
            for (int k = 0; k < 3; k++) {
                lo[k] = std::min(lo[k], entries[i].c[k]);
                hi[k] = std::max(hi[k], entries[i].c[k]);
            }
        int axis = 0;
        for (int k = 1; k < 3; k++)
            if (hi[k] - lo[k] > hi[axis] - lo[axis]) axis = k;
        uint32_t middle = begin + (end - begin) / 2;
        std::nth_element(entries.begin() + begin, entries.begin() + middle, entries.begin() + end,
                         [axis](const Entry& a, const Entry& b) { return a.c[axis] < b.c[axis]; });
        make(begin, middle, at);
        uint32_t second = make(middle, end, at);
        _OrvBoxTree_::Node& n = tree.nodes[at];
        const _OrvBoxTree_::Node &a = tree.nodes[at + 1], &b = tree.nodes[second];
        for (int k = 0; k < 3; k++) {
            n.lo[k] = std::min(a.lo[k], b.lo[k]);
            n.hi[k] = std::max(a.hi[k], b.hi[k]);
        }
        n.second = second;
        n.count = 0;
        return at;
    }
};
}  // namespace

void _OrvBoxTree_::clear() {
    std::vector<Node>().swap(nodes);
    std::vector<uint32_t>().swap(items);
    std::vector<uint32_t>().swap(parent);
    std::vector<uint32_t>().swap(leafOf);
}

void _OrvBoxTree_::build(const std::vector<_OrvPickBox_>& boxes, const std::vector<uint32_t>* use,
                         bool refit) {
    clear();
    std::vector<Entry> entries;
    entries.reserve(use ? use->size() : boxes.size());
    auto take = [&](uint32_t item) {
        const _OrvPickBox_& b = boxes[item];
        if (b.isEmpty()) return;
        entries.push_back(Entry{{b.lo[0] + b.hi[0], b.lo[1] + b.hi[1], b.lo[2] + b.hi[2]}, item});
    };
    if (use)
        for (uint32_t item : *use) take(item);
    else
        for (uint32_t item = 0; item < boxes.size(); item++) take(item);
    if (entries.empty()) return;
    items.resize(entries.size());
    nodes.reserve(2 * (entries.size() / LeafSize + 1));
    if (refit) {
        leafOf.assign(boxes.size(), UINT32_MAX);
        parent.reserve(nodes.capacity());
    }
    Builder builder{boxes, entries, *this};
    builder.make(0, (uint32_t)entries.size(), UINT32_MAX);
    // The guess above may have doubled: keep what the tree holds.
    nodes.shrink_to_fit();
    parent.shrink_to_fit();
}

void _OrvBoxTree_::query(const _OrvPickFrustum_& frustum, std::vector<uint32_t>& out) const {
    if (nodes.empty()) return;
    uint32_t stack[128];
    unsigned top = 0;
    stack[top++] = 0;
    while (top) {
        const Node& n = nodes[stack[--top]];
        if (!frustum.meets(n.lo, n.hi)) continue;
        if (n.count) {
            out.insert(out.end(), items.begin() + n.second, items.begin() + n.second + n.count);
            continue;
        }
        uint32_t self = (uint32_t)(&n - nodes.data());
        // A tree of halves is never deeper than 64 levels here.
        stack[top++] = n.second;
        stack[top++] = self + 1;
    }
}

void _OrvBoxTree_::refit(uint32_t item, const std::vector<_OrvPickBox_>& boxes) {
    if (item >= leafOf.size() || leafOf[item] == UINT32_MAX) return;
    uint32_t at = leafOf[item];
    Node& leaf = nodes[at];
    _OrvPickBox_ b;
    for (uint32_t i = leaf.second; i < leaf.second + leaf.count; i++) b.add(boxes[items[i]]);
    std::memcpy(leaf.lo, b.lo, sizeof leaf.lo);
    std::memcpy(leaf.hi, b.hi, sizeof leaf.hi);
    for (uint32_t up = parent[at]; up != UINT32_MAX; up = parent[up]) {
        Node& n = nodes[up];
        const Node &l = nodes[up + 1], &r = nodes[n.second];
        for (int k = 0; k < 3; k++) {
            n.lo[k] = std::min(l.lo[k], r.lo[k]);
            n.hi[k] = std::max(l.hi[k], r.hi[k]);
        }
    }
}

size_t _OrvBoxTree_::bytes() const {
    return nodes.capacity() * sizeof(Node) +
           (items.capacity() + parent.capacity() + leafOf.capacity()) * sizeof(uint32_t);
}

// ---------------------------------------------------------------------------
// Switch, figures and the record of changed points
// ---------------------------------------------------------------------------

static unsigned long useHierarchy = 1;
static OrvPickHierarchyStats stats = {0, 0, 0, 0, 0, 0};
static uint64_t pointsEpoch = 0, geometryEpoch = 0;

// The last change of each array of points that changePoint touched.
static std::unordered_map<const OrvShare*, uint64_t>& changedAt() {
    static auto* map = new std::unordered_map<const OrvShare*, uint64_t>;
    return *map;
}

void OrvUsePickHierarchy(unsigned long on) {
    useHierarchy = on ? 1 : 0;
}

unsigned long OrvUsePickHierarchy() {
    return useHierarchy;
}

OrvPickHierarchyStats OrvGetPickHierarchyStats() {
    return stats;
}

static size_t meshBytes(const _OrvPickTree_* t) {
    return sizeof(*t) + t->tree.bytes() + t->faces.capacity() * sizeof(void*) +
           t->shares.capacity() * sizeof(void*);
}

void _OrvPickTreeBuilt_(_OrvPickTree_* tree) {
    tree->epoch = pointsEpoch;
    stats.meshBuilds++;
    stats.meshFaces += tree->faceCount;
    stats.meshBytes += meshBytes(tree);
}

void _OrvFreePickTree_(_OrvPickTree_* tree) {
    if (!tree) return;
    stats.meshFaces -= tree->faceCount;
    stats.meshBytes -= meshBytes(tree);
    delete tree;
}

bool _OrvPickTreeCurrent_(_OrvPickTree_* tree) {
    if (tree->epoch == pointsEpoch) return true;
    auto& map = changedAt();
    for (const OrvShare* s : tree->shares) {
        auto i = map.find(s);
        if (i != map.end() && i->second > tree->epoch) return false;
    }
    tree->epoch = pointsEpoch;
    return true;
}

void _OrvPickPointsChanged_(const OrvShare* points) {
    changedAt()[points] = ++pointsEpoch;
    geometryEpoch++;
}

void _OrvPickGeometryChanged_() {
    geometryEpoch++;
}

// ---------------------------------------------------------------------------
// Layers
// ---------------------------------------------------------------------------

struct _OrvLayerPickTree_ {
    std::vector<OrvActor*> actors;     // the layer as it stood at the build
    std::vector<_OrvPickBox_> boxes;   // world boxes of the actors in the tree
    std::vector<unsigned char> boxed;  // 1: in the tree; 0: always tried
    std::vector<uint32_t> always;      // the others' numbers, increasing
    std::unordered_map<const OrvActor*, uint32_t> number;
    std::vector<const OrvActor*> dirty;
    bool refitAll = false;
    uint64_t epoch = 0;
    _OrvBoxTree_ tree;
    size_t counted = 0;  // bytes in the figures
};

static size_t layerBytes(const _OrvLayerPickTree_* t) {
    return sizeof(*t) + t->tree.bytes() + t->actors.capacity() * sizeof(void*) +
           t->boxes.capacity() * sizeof(_OrvPickBox_) + t->boxed.capacity() +
           t->always.capacity() * sizeof(uint32_t) +
           t->number.size() * (sizeof(void*) + 2 * sizeof(uint32_t) + sizeof(void*)) +
           t->dirty.capacity() * sizeof(void*);
}

static void recount(_OrvLayerPickTree_* t, bool gone) {
    stats.layerBytes -= t->counted;
    stats.layerActors -= t->actors.size();
    if (gone) return;
    t->counted = layerBytes(t);
    stats.layerBytes += t->counted;
    stats.layerActors += t->actors.size();
}

void _OrvFreeLayerPickTree_(_OrvLayerPickTree_* tree) {
    if (!tree) return;
    recount(tree, true);
    delete tree;
}

// Whether an affine matrix: a projective one might fold a box over.
static bool affine(const Orv3dMatrix* m) {
    return !m || (m->m[12] == 0 && m->m[13] == 0 && m->m[14] == 0 && m->m[15] == 1);
}

// The world box of an actor whose hits are known to stay within the
// projection of its box (with the tolerances the frustum adds); false for an
// actor that must always be tried: an invariant one, one of a class of its
// own, since its contains3d may answer anywhere, and one whose matrix is not
// affine. An actor that can never be hit gets an empty box.
static bool worldBox(const OrvActor* actor, _OrvPickBox_& box) {
    box = _OrvPickBox_();
    if (actor->isInvariant() || !affine(actor->to3dWorld())) return false;
    const std::type_info& kind = typeid(*actor);
    const Orv3dMatrix* m = actor->to3dWorld();
    if (kind == typeid(Orv3dActorFaceSet)) {
        // The faces' own boxes, which changePoint keeps, rather than the set's.
        const OrvFaceSet* set = ((const Orv3dActorFaceSet*)actor)->faces;
        for (OrvLink* l = set ? set->faces.first : nullptr; l; l = l->next) {
            const OrvPolygon* face = (const OrvPolygon*)l->value;
            if (!face->vertexCardinal()) continue;
            Orv3dVolume v = face->bbox3d();
            box.add(Orv3dPoint(v.x, v.y, v.z));
            box.add(Orv3dPoint(v.x + v.w, v.y + v.h, v.z + v.d));
        }
    } else if (kind == typeid(Orv3dShape)) {
        const OrvSeries* series = ((const Orv3dShape*)actor)->series_;
        if (series && series->faceCardinal()) {
            Orv3dVolume v = series->bbox3d();
            box.add(Orv3dPoint(v.x, v.y, v.z));
            box.add(Orv3dPoint(v.x + v.w, v.y + v.h, v.z + v.d));
        }
    } else if (kind == typeid(Orv3dActor)) {
        // The default pick: the projection of bbox3d(1), which is already in the world.
        Orv3dVolume v = actor->bbox3d(1);
        box.add(Orv3dPoint(v.x, v.y, v.z));
        box.add(Orv3dPoint(v.x + v.w, v.y + v.h, v.z + v.d));
        return true;
    } else {
        return false;
    }
    if (m) box = box.mapped(*m);
    return true;
}

// Every box is taken again: an actor deleted since may have left its
// address to a new one.
static void build(_OrvLayerPickTree_* t, const OrvTheaterLayer* layer) {
    t->actors.assign(layer->actors, layer->actors + layer->count);
    t->boxes.assign(layer->count, _OrvPickBox_());
    t->boxed.assign(layer->count, 0);
    t->always.clear();
    t->number.clear();
    std::vector<uint32_t> inTree;
    for (uint32_t i = 0; i < layer->count; i++) {
        const OrvActor* a = t->actors[i];
        t->number[a] = i;
        t->boxed[i] = worldBox(a, t->boxes[i]) ? 1 : 0;
        if (t->boxed[i])
            inTree.push_back(i);
        else
            t->always.push_back(i);
    }
    t->tree.build(t->boxes, &inTree, true);
    t->dirty.clear();
    t->refitAll = false;
    t->epoch = geometryEpoch;
    stats.layerBuilds++;
    recount(t, false);
}

void _OrvPickActorChanged_(const OrvTheater* theater, const OrvActor* actor) {
    if (!theater || !actor) return;
    OrvTheaterLayer* layer = theater->getLayer(actor);
    _OrvLayerPickTree_* t = layer ? layer->pickTree : nullptr;
    if (!t || t->refitAll) return;
    // A long list costs more than taking every box again.
    if (t->dirty.size() > 64 + t->actors.size() / 8) {
        t->dirty.clear();
        t->refitAll = true;
        return;
    }
    t->dirty.push_back(actor);
}

// Boxes of the actors told of since the last pick; false when one of them
// moved between the tree and the list of those always tried.
static bool refit(_OrvLayerPickTree_* t) {
    if (t->refitAll || t->epoch != geometryEpoch) return false;
    for (const OrvActor* a : t->dirty) {
        auto at = t->number.find(a);
        if (at == t->number.end()) continue;
        uint32_t i = at->second;
        _OrvPickBox_ box;
        bool boxed = worldBox(a, box);
        if (boxed != (t->boxed[i] != 0)) return false;
        if (!boxed) continue;
        // An empty box has no leaf; a box that becomes or stops being empty rebuilds.
        if (box.isEmpty() != t->boxes[i].isEmpty()) return false;
        t->boxes[i] = box;
        t->tree.refit(i, t->boxes);
    }
    t->dirty.clear();
    return true;
}

bool _OrvLayerPickCandidates_(const OrvTheaterLayer* layer, const Orv2dPoint& point,
                              const Orv3dMatrix& worldToScene, std::vector<uint32_t>& out) {
    out.clear();
    if (!useHierarchy) return false;
    _OrvLayerPickTree_* t = layer->pickTree;
    if (!t) t = layer->pickTree = new _OrvLayerPickTree_;
    bool same = t->actors.size() == layer->count &&
                (!layer->count ||
                 !std::memcmp(t->actors.data(), layer->actors, layer->count * sizeof(OrvActor*)));
    if (!same || !refit(t)) build(t, layer);
    double m[16];
    _OrvPickProduct_(worldToScene, nullptr, m);
    // The default pick reaches 3 pixels round the projected box, the faces' 3
    // pixels round a line and one more for the floor of their vertices.
    _OrvPickFrustum_ f;
    f.make(m, point.x - 3.5, point.x + 4.5, point.y - 3.5, point.y + 4.5);
    t->tree.query(f, out);
    out.insert(out.end(), t->always.begin(), t->always.end());
    std::sort(out.begin(), out.end(), [](uint32_t a, uint32_t b) { return a > b; });
    return true;
}
