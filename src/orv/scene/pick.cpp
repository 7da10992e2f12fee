// Picking faces and lines in a scene's window. A face is tested in 2D, its
// vertices projected by the scene's matrix and the actor's, in the style its
// side is drawn with; the 3D point of a hit is where the camera's ray through
// the pixel meets the face's plane. Series and face sets keep the hit nearest
// the eye, and past a few dozen faces they ask their hierarchy which faces
// to test instead of testing all: the answer is the same.
#include <algorithm>
#include <climits>
#include <cmath>
#include <typeinfo>
#include <unordered_set>
#include <vector>

#include "orv/actor3d.h"
#include "orv/camera.h"
#include "orv/director.h"
#include "orv/makeup.h"
#include "orv/pick.h"
#include "orv/region.h"
#include "orv/scene.h"
#include "orv/vertex.h"

#include "pick_tree.h"

namespace {

// What a pick knows before it meets the faces.
struct Pick {
    const OrvScene* scene;
    const OrvActor* actor;
    OrvDirector* director;
    unsigned long invariant;
    const Orv3dMatrix* toScene;  // the scene's matrix of the actor's space
    const Orv3dMatrix* matrix;   // the actor's; null is the identity
    Orv3dMatrix full;            // toScene times matrix
    bool divide;                 // whether full is projective
    OrvCullingMode cull;
    OrvFaceStyle front, back;
    Orv2dPoint point;

    // Orv3dMatrix::apply through full, step for step, without the call.
    void project(Orv3dPoint& p) const {
        const float* m = full.m;
        float x = p.x, y = p.y, z = p.z;
        float nx = m[0] * x + m[1] * y + m[2] * z + m[3];
        float ny = m[4] * x + m[5] * y + m[6] * z + m[7];
        float nz = m[8] * x + m[9] * y + m[10] * z + m[11];
        if (divide) {
            float w = m[12] * x + m[13] * y + m[14] * z + m[15];
            if (std::fabs((double)w) < 1e-6) return;
            nx /= w;
            ny /= w;
            nz /= w;
        }
        p = Orv3dPoint(nx, ny, nz);
    }
};

struct Hit {
    Orv3dPoint point;  // world (or invariant) coordinates
    long vertex, edge;
    float z;  // depth in the window: smaller is nearer
};

// Faces of a mesh below this many are walked: a hierarchy would not pay.
const unsigned TreeFaces = 64;

}  // namespace

static OrvDirector* directorOf(const OrvScene* scene) {
    return scene->makeUp ? scene->makeUp->director : nullptr;
}

// The pixel that holds a window coordinate; far values are held where an int holds them.
static int32_t pixelOf(float v) {
    const float limit = 1 << 30;
    if (!(v > -limit)) return -(1 << 30);
    if (v > limit) return 1 << 30;
    // The floor by truncation, without a call: every face asks it thrice.
    int32_t i = (int32_t)v;
    return (float)i > v ? i - 1 : i;
}

static Orv2dPoint pixelOf(const Orv3dPoint& p) {
    return Orv2dPoint(pixelOf(p.x), pixelOf(p.y));
}

// Step one of every pick: the matrices of the actor's space; the record is
// cleared. False without a scene.
static bool begin(Pick& p, const Orv2dPoint& point, const OrvScene* scene, const OrvActor* actor,
                  const Orv3dMatrix* matrix, OrvCullingMode cull, OrvFaceStyle front,
                  OrvFaceStyle back) {
    if (!scene) return false;
    p.scene = scene;
    p.actor = actor;
    p.director = directorOf(scene);
    p.invariant = actor && actor->isInvariant() ? 1 : 0;
    p.toScene = p.invariant ? &scene->invariantToScene : &scene->worldToScene;
    p.matrix = matrix;
    p.full = matrix ? *p.toScene * *matrix : *p.toScene;
    const float* m = p.full.m;
    p.divide = std::fabs((double)m[12]) >= 1e-6 || std::fabs((double)m[13]) >= 1e-6 ||
               std::fabs((double)m[14]) >= 1e-6 || std::fabs((double)m[15] - 1) >= 1e-6;
    p.cull = cull;
    p.front = front;
    p.back = back;
    p.point = point;
    if (p.director) p.director->clearPick3dRecord();
    return true;
}

// Both sides culled, or the only side left hidden: nothing can be hit.
static bool nothingShows(const Pick& p) {
    return p.cull == OrvCullBoth || (p.cull == OrvCullBack && p.front == OrvFaceHidden) ||
           (p.cull == OrvCullFront && p.back == OrvFaceHidden);
}

static float depthOf(const Pick& p, Orv3dPoint q) {
    p.toScene->apply(q);
    return q.z;
}

// Where the camera's ray through the pointer meets the plane of the three
// points; for a plane seen edge on, the ray's point nearest the first.
static Orv3dPoint onPlane(const Pick& p, const Orv3dPoint w[3]) {
    Orv3dPoint o;
    Orv3dVector d;
    p.scene->currentCamera()->spawnRay(p.point.x, p.point.y, o, d, p.invariant);
    Orv3dVector n;
    OrvVertexData::computeNormal(3, w, nullptr, nullptr, n);
    double nx = n.x, ny = n.y, nz = n.z, dx = d.x, dy = d.y, dz = d.z;
    double ex = (double)w[0].x - o.x, ey = (double)w[0].y - o.y, ez = (double)w[0].z - o.z;
    double nd = nx * dx + ny * dy + nz * dz, dd = dx * dx + dy * dy + dz * dz;
    double scale = std::sqrt((nx * nx + ny * ny + nz * nz) * dd);
    double t = 0;
    if (scale > 0 && std::fabs(nd) > 1e-9 * scale)
        t = (nx * ex + ny * ey + nz * ez) / nd;
    else if (dd > 0)
        t = (dx * ex + dy * ey + dz * ez) / dd;
    return Orv3dPoint((float)(o.x + t * dx), (float)(o.y + t * dy), (float)(o.z + t * dz));
}

// The vertices of one face. Polygons and faces of the library's own classes
// are read straight from their arrays, as subFaceVertex would read them.
namespace {
struct Vertices {
    const OrvPolygon* polygon;
    unsigned face;
    bool direct, indexed;
    const Orv3dPoint* p3;
    const Orv4dPoint* p4;
    const unsigned* index;
    unsigned count, limit;

    // count: the polygon's vertexCardinal() when face is 0.
    Vertices(const OrvPolygon* polygon0, unsigned face0, unsigned count0)
        : polygon(polygon0), face(face0), direct(false), indexed(false), p3(nullptr), p4(nullptr),
          index(nullptr), count(count0), limit(0) {
        if (!face) readLayout();
    }
    // A whole polygon, its vertices counted here.
    explicit Vertices(const OrvPolygon* polygon0)
        : polygon(polygon0), face(0), direct(false), indexed(false), p3(nullptr), p4(nullptr),
          index(nullptr), count(0), limit(0) {
        if (!readLayout()) count = polygon->vertexCardinal();
    }

private:
    // The arrays of a polygon or face of the library's own classes, read in
    // two calls rather than one a field: walks ask it of every face. Every
    // layout derives from _OrvVertexP_, and the indexed ones from
    // _OrvVertexIP_. The count is the layout's cardinal().
    bool readLayout() {
        if (!polygon->vertex) return false;
        const std::type_info& kind = typeid(*polygon);
        direct = kind == typeid(OrvFace) || kind == typeid(OrvPolygon);
        if (!direct) return false;
        const _OrvVertexType_* v = polygon->vertex;
        const OrvShare* points = static_cast<const _OrvVertexP_*>(v)->pointShare;
        indexed = v->isIndexed() != 0;
        if (points) {
            p4 = points->points4d();
            p3 = points->points();
            limit = points->cardinal;
        }
        if (!indexed) {
            count = limit;
            return true;
        }
        const OrvShare* all = static_cast<const _OrvVertexIP_*>(v)->indexShare;
        index = all ? all->index() : nullptr;
        unsigned blocks = index ? v->dataNumber() : 0;
        count = blocks ? all->cardinal / blocks : 0;
        return true;
    }

public:
    // The vertex number, or -1.
    long read(unsigned nth, Orv3dPoint& out) const {
        if (!direct || nth >= count) return polygon->subFaceVertex(out, face, nth);
        unsigned k = indexed ? (index ? index[nth] : ~0u) : nth;
        if (k >= limit) return -1;
        if (p4)
            out = p4[k].to3dPoint();
        else if (p3)
            out = p3[k];
        else
            return -1;
        return nth;
    }
};
}  // namespace

// One face: 1 hit (filled in), 0 missed, -1 a vertex that could not be read
// (reported with `first` for one of the first three, else `other`).
static int pickFace(const Pick& p, const Vertices& vertices, const char* first, const char* other,
                    Hit& hit) {
    unsigned count = vertices.count;
    static std::vector<Orv3dPoint> raw, window;
    static std::vector<Orv2dPoint> flat;
    static std::vector<long> number;
    // Room for the first three even when a face has fewer, and for closing a loop.
    size_t room = std::max(count, 3u) + 1;
    if (raw.size() < room) {
        raw.resize(room);
        window.resize(room);
        flat.resize(room);
        number.resize(room);
    }
    int32_t x0 = INT32_MAX, x1 = INT32_MIN, y0 = INT32_MAX, y1 = INT32_MIN;
    // The tests below read the line tolerance, which is 3 pixels for them
    // and given back as it was.
    float saved = 0;
    auto tolerance = [&](bool on) {
        if (on) {
            saved = OrvGetDeltaLine();
            OrvSetDeltaLine(3.0f);
        } else {
            OrvSetDeltaLine(saved);
        }
    };
    auto fail = [&](unsigned nth) {
        OrvError(nth < 3 ? first : other);
        return -1;
    };
    auto load = [&](unsigned nth) {
        long k = vertices.read(nth, raw[nth]);
        if (k < 0) return false;
        number[nth] = k;
        window[nth] = raw[nth];
        p.project(window[nth]);
        Orv2dPoint f = flat[nth] = pixelOf(window[nth]);
        x0 = std::min(x0, f.x);
        x1 = std::max(x1, f.x);
        y0 = std::min(y0, f.y);
        y1 = std::max(y1, f.y);
        return true;
    };
    auto inWorld = [&](unsigned nth) {
        Orv3dPoint w = raw[nth];
        if (p.matrix) p.matrix->apply(w);
        return w;
    };
    // Whether the pointer is within `reach` pixels of the projected vertices'
    // box: no test below can hit farther away.
    auto near = [&](int32_t reach) {
        const Orv2dPoint& q = p.point;
        return (int64_t)q.x >= (int64_t)x0 - reach && (int64_t)q.x <= (int64_t)x1 + reach &&
               (int64_t)q.y >= (int64_t)y0 - reach && (int64_t)q.y <= (int64_t)y1 + reach;
    };

    // Faces shown as points on both sides: only the vertices, 3 pixels round.
    if (p.cull == OrvCullNone && p.front == OrvFacePoints && p.back == OrvFacePoints) {
        for (unsigned nth = 0; nth < count; nth++) {
            if (!load(nth)) return fail(nth);
            if (!near(3)) continue;
            tolerance(true);
            bool on = OrvPointInLine(p.point, flat[nth], flat[nth]);
            tolerance(false);
            if (on) {
                hit.point = inWorld(nth);
                hit.vertex = number[nth];
                hit.edge = -1;
                hit.z = depthOf(p, hit.point);
                return 1;
            }
        }
        return 0;
    }

    for (unsigned nth = 0; nth < 3; nth++)
        if (!load(nth)) return fail(nth);
    // A triangle far from the pointer for every style it may be drawn in is
    // missed whichever side it shows: most are, and their orientation is as
    // good as random to the branch predictor.
    if (count == 3) {
        auto reach = [](OrvFaceStyle style) {
            return style == OrvFaceFilled                            ? 0
                   : style == OrvFaceLines || style == OrvFacePoints ? 3
                                                                     : -1;
        };
        int32_t most = std::max(p.cull == OrvCullFront ? -1 : reach(p.front),
                                p.cull == OrvCullBack ? -1 : reach(p.back));
        if (most < 0 || !near(most)) return 0;
    }
    // The orientation the drawing's own cull test takes.
    const Orv3dPoint* q = window.data();
    float s = q[0].x * q[1].y - q[1].x * q[0].y + q[1].x * q[2].y - q[2].x * q[1].y +
              q[2].x * q[0].y - q[0].x * q[2].y;
    if ((p.cull == OrvCullBack && s >= 0) || (p.cull == OrvCullFront && s <= 0)) return 0;
    OrvFaceStyle style = p.cull == OrvCullBack    ? p.front
                         : p.cull == OrvCullFront ? p.back
                         : s <= 0                 ? p.front
                                                  : p.back;
    for (unsigned nth = 3; nth < count; nth++)
        if (!load(nth)) return fail(nth);

    long vertex = -1, edge = -1;
    bool found = false;
    if (style == OrvFaceFilled && near(0)) {
        found = OrvPointInPolygon(p.point, count, flat.data()) >= 0;
    } else if (style == OrvFaceLines && near(3)) {
        flat[count] = flat[0];
        tolerance(true);
        int segment = OrvPointInPolyline(p.point, count + 1, flat.data());
        tolerance(false);
        if (segment >= 0) {
            found = true;
            edge = number[segment];
        }
    } else if (style == OrvFacePoints && near(3)) {
        tolerance(true);
        for (unsigned nth = 0; nth < count && !found; nth++)
            if (OrvPointInLine(p.point, flat[nth], flat[nth])) {
                found = true;
                vertex = number[nth];
            }
        tolerance(false);
    }
    if (!found) return 0;
    const Orv3dPoint world[3] = {inWorld(0), inWorld(1), inWorld(2)};
    hit.point = onPlane(p, world);
    hit.vertex = vertex;
    hit.edge = edge;
    hit.z = depthOf(p, hit.point);
    return 1;
}

static void record(const Pick& p, const OrvPolygon* polygon, const Hit& hit) {
    if (p.director)
        p.director->setPick3dRecord(p.scene, OrvPickFace, const_cast<OrvActor*>(p.actor), polygon,
                                    &hit.point, hit.vertex, hit.edge);
}

// ---------------------------------------------------------------------------
// The hierarchies of meshes
// ---------------------------------------------------------------------------

// The faces that may be hit, in the walk's order.
static void candidates(const Pick& p, const _OrvPickTree_* tree, std::vector<uint32_t>& out) {
    auto thin = [](OrvFaceStyle s) { return s == OrvFacePoints || s == OrvFaceLines; };
    bool wide =
        (p.cull != OrvCullFront && thin(p.front)) || (p.cull != OrvCullBack && thin(p.back));
    // The floor of projected vertices moves a face by up to a pixel; points and
    // lines reach 3 more; half a pixel is left for rounding.
    double m = wide ? 3.5 : 0.5;
    double product[16];
    _OrvPickProduct_(*p.toScene, p.matrix, product);
    _OrvPickFrustum_ f;
    f.make(product, p.point.x - m, p.point.x + 1 + m, p.point.y - m, p.point.y + 1 + m);
    out.clear();
    tree->tree.query(f, out);
    std::sort(out.begin(), out.end());
}

// The box of a face's vertices; false when one cannot be read.
static bool faceBox(const OrvPolygon* polygon, unsigned face, unsigned count, _OrvPickBox_& box) {
    for (unsigned nth = 0; nth < count; nth++) {
        Orv3dPoint v;
        if (polygon->subFaceVertex(v, face, nth) < 0) return false;
        box.add(v);
    }
    return true;
}

static _OrvPickTree_* treeOf(const OrvFaceSet& set) {
    _OrvPickTree_*& t = set.pickTree;
    const void* first = set.faces.first ? set.faces.first->value : nullptr;
    const void* last = set.faces.last ? set.faces.last->value : nullptr;
    if (t && (t->firstFace != first || t->lastFace != last || !_OrvPickTreeCurrent_(t)))
        set.dropPickTree();
    if (!t) {
        unsigned n = 0;
        for (OrvLink* l = set.faces.first; l && n < TreeFaces; l = l->next) n++;
        if (n < TreeFaces) return nullptr;
        t = new _OrvPickTree_;
        t->firstFace = first;
        t->lastFace = last;
        std::vector<_OrvPickBox_> boxes;
        std::unordered_set<const OrvShare*> shares;
        t->usable = true;
        for (OrvLink* l = set.faces.first; l; l = l->next) {
            const OrvPolygon* face = (const OrvPolygon*)l->value;
            unsigned count = face->vertexCardinal();
            boxes.emplace_back();
            t->faces.push_back(face);
            if (!count) continue;  // never hit
            // A face the walk would report is left to the walk.
            if (count < 3 || !faceBox(face, 0, count, boxes.back())) t->usable = false;
            shares.insert(face->vertexSharedAnyPoints());
        }
        t->faces.shrink_to_fit();
        t->faceCount = (unsigned)t->faces.size();
        t->shares.assign(shares.begin(), shares.end());
        if (t->usable) t->tree.build(boxes, nullptr, false);
        _OrvPickTreeBuilt_(t);
    }
    return t->usable ? t : nullptr;
}

static _OrvPickTree_* treeOf(const OrvSeries& series) {
    _OrvPickTree_*& t = series.pickTree;
    if (t && (t->faceCount != series.faceCardinal() || !_OrvPickTreeCurrent_(t)))
        series.dropPickTree();
    if (!t) {
        unsigned faces = series.faceCardinal();
        if (faces < TreeFaces) return nullptr;
        t = new _OrvPickTree_;
        t->faceCount = faces;
        t->shares.push_back(series.vertexSharedAnyPoints());
        // A mesh of quadrilaterals short of vertices would be reported face by
        // face; the walk does that.
        t->usable =
            series.kind != OrvQuadMesh ||
            (unsigned long)(series.data1 + 1) * (series.data2 + 1) <= series.vertexCardinal();
        std::vector<_OrvPickBox_> boxes(t->usable ? faces : 0);
        for (unsigned f = 0; f < faces && t->usable; f++) {
            unsigned count = series.subFaceVertexCardinal(f);
            if (count < 3 || !faceBox(&series, f, count, boxes[f])) t->usable = false;
        }
        if (t->usable) t->tree.build(boxes, nullptr, false);
        _OrvPickTreeBuilt_(t);
    }
    return t->usable ? t : nullptr;
}

// ---------------------------------------------------------------------------
// Polygons, series, face sets
// ---------------------------------------------------------------------------

// The make-up's culling and styles; without an actor, both sides filled.
static void styleOf(const OrvActor* actor, OrvCullingMode& cull, OrvFaceStyle& front,
                    OrvFaceStyle& back) {
    const OrvMakeUp* m = actor ? actor->makeUp : nullptr;
    cull = m ? m->cull() : (OrvCullingMode)OrvCullNone;
    front = m ? m->frontStyle() : (OrvFaceStyle)OrvFaceFilled;
    back = m ? m->backStyle() : (OrvFaceStyle)OrvFaceFilled;
}

// A shape picked in its actor's make-up and under its actor's matrix.
template <class Shape>
static unsigned long pickAsDrawn(const Shape& shape, const Orv2dPoint& point, const OrvScene* scene,
                                 const OrvActor* actor) {
    OrvCullingMode cull;
    OrvFaceStyle front, back;
    styleOf(actor, cull, front, back);
    return shape.pick2(point, scene, actor, actor ? actor->to3dWorld() : nullptr, cull, front,
                       back);
}

unsigned long OrvPolygon::pick(const Orv2dPoint& point, const OrvScene* scene,
                               const OrvActor* actor) const {
    return pickAsDrawn(*this, point, scene, actor);
}

unsigned long OrvPolygon::pick2(const Orv2dPoint& point, const OrvScene* scene,
                                const OrvActor* actor, const Orv3dMatrix* matrix,
                                OrvCullingMode cull, OrvFaceStyle front, OrvFaceStyle back) const {
    Pick p;
    if (!begin(p, point, scene, actor, matrix, cull, front, back)) return 0;
    unsigned count = vertexCardinal();
    if (!count || nothingShows(p)) return 0;
    Hit hit;
    if (pickFace(p, Vertices(this, 0, count), "Picking error. (3)\n", "Picking error. (4)\n",
                 hit) != 1)
        return 0;
    record(p, this, hit);
    return 1;
}

unsigned long OrvSeries::pick2(const Orv2dPoint& point, const OrvScene* scene,
                               const OrvActor* actor, const Orv3dMatrix* matrix,
                               OrvCullingMode cull, OrvFaceStyle front, OrvFaceStyle back) const {
    Pick p;
    if (!begin(p, point, scene, actor, matrix, cull, front, back)) return 0;
    if (!vertexCardinal() || nothingShows(p)) return 0;
    Hit best, hit;
    bool found = false;
    // False after a face that could not be read: the series fails as a whole.
    auto tryFace = [&](unsigned f) {
        int r = pickFace(p, Vertices(this, f, subFaceVertexCardinal(f)), "Picking error. (1)\n",
                         "Picking error. (2)\n", hit);
        if (r < 0) return false;
        if (r == 1 && (!found || hit.z < best.z)) {
            best = hit;
            found = true;
        }
        return true;
    };
    const _OrvPickTree_* tree = OrvUsePickHierarchy() ? treeOf(*this) : nullptr;
    if (tree) {
        static std::vector<uint32_t> list;
        candidates(p, tree, list);
        for (uint32_t f : list)
            if (!tryFace(f)) return 0;
    } else {
        unsigned n = faceCardinal();
        for (unsigned f = 0; f < n; f++)
            if (!tryFace(f)) return 0;
    }
    if (!found) return 0;
    record(p, this, best);
    return 1;
}

void OrvSeries::computeBBox() {
    OrvPolygon::computeBBox();
    dropPickTree();
    _OrvPickGeometryChanged_();
}

void OrvSeries::dropPickTree() const {
    _OrvFreePickTree_(pickTree);
    pickTree = nullptr;
}

unsigned long OrvFaceSet::pick(const Orv2dPoint& point, const OrvScene* scene,
                               const OrvActor* actor) const {
    return pickAsDrawn(*this, point, scene, actor);
}

unsigned long OrvFaceSet::pick2(const Orv2dPoint& point, const OrvScene* scene,
                                const OrvActor* actor, const Orv3dMatrix* matrix,
                                OrvCullingMode cull, OrvFaceStyle front, OrvFaceStyle back) const {
    Pick p;
    if (!begin(p, point, scene, actor, matrix, cull, front, back)) return 0;
    if (nothingShows(p)) return 0;
    Hit best, hit;
    const OrvPolygon* bestFace = nullptr;
    // Each face as its own pick would take it; one that cannot be read is
    // reported and counts as missed.
    auto tryFace = [&](const OrvPolygon* face) {
        Vertices vertices(face);
        if (!vertices.count) return;
        if (pickFace(p, vertices, "Picking error. (3)\n", "Picking error. (4)\n", hit) != 1) return;
        if (!bestFace || hit.z < best.z) {
            best = hit;
            bestFace = face;
        }
    };
    const _OrvPickTree_* tree = OrvUsePickHierarchy() ? treeOf(*this) : nullptr;
    if (tree) {
        static std::vector<uint32_t> list;
        candidates(p, tree, list);
        for (uint32_t f : list) tryFace(tree->faces[f]);
    } else {
        // The points of a small mesh are asked for at once: its faces read
        // them through their index, in no order memory foresees.
        if (this->faces.first) {
            Vertices first((const OrvPolygon*)this->faces.first->value);
            const char* at = first.p4 ? (const char*)first.p4 : (const char*)first.p3;
            size_t bytes =
                (size_t)first.limit * (first.p4 ? sizeof(Orv4dPoint) : sizeof(Orv3dPoint));
            if (at && bytes <= 4096)
                for (size_t k = 0; k < bytes; k += 64) __builtin_prefetch(at + k);
        }
        // Faces and their layouts lie wherever they were made: the face two
        // ahead and the layout of the next are asked for before they are read.
        OrvLink* next = this->faces.first ? this->faces.first->next : nullptr;
        OrvLink* after = next ? next->next : nullptr;
        for (OrvLink* l = this->faces.first; l; l = l->next) {
            if (after) {
                __builtin_prefetch(after->value);
                after = after->next;
            }
            if (next) {
                __builtin_prefetch(((const OrvPolygon*)next->value)->vertex);
                next = next->next;
            }
            tryFace((const OrvPolygon*)l->value);
        }
    }
    if (!bestFace) return 0;
    record(p, bestFace, best);
    return 1;
}

void OrvFaceSet::dropPickTree() const {
    _OrvFreePickTree_(pickTree);
    pickTree = nullptr;
}

// ---------------------------------------------------------------------------
// Lines
// ---------------------------------------------------------------------------

long OrvCloseTo(Orv3dPoint& result, const Orv2dPoint& point, const Orv3dPoint& from,
                const Orv3dPoint& to, const OrvScene* scene, const Orv3dMatrix* matrix,
                const OrvFaceStyle& style, const unsigned long& invariant) {
    if (style == OrvFaceHidden || !scene) return -1;
    const Orv3dMatrix& toScene = invariant ? scene->invariantToScene : scene->worldToScene;
    const Orv3dMatrix& back = invariant ? scene->sceneToInvariant : scene->sceneToWorld;
    Orv3dPoint ends[2] = {from, to};
    if (matrix)
        for (Orv3dPoint& e : ends) matrix->apply(e);
    Orv3dPoint a = ends[0], b = ends[1];
    toScene.apply(a);
    toScene.apply(b);
    if (!OrvPointInLine(point, pixelOf(a), pixelOf(b))) return -1;
    // The point of the projected segment nearest the pixel's centre, at its
    // depth in the window (linear along a projected segment), taken back.
    double dx = (double)b.x - a.x, dy = (double)b.y - a.y, length = dx * dx + dy * dy;
    double t = 0;
    if (length > 0) t = ((point.x + 0.5 - a.x) * dx + (point.y + 0.5 - a.y) * dy) / length;
    t = std::min(1.0, std::max(0.0, t));
    result = Orv3dPoint((float)(a.x + t * dx), (float)(a.y + t * dy),
                        (float)(a.z + t * ((double)b.z - a.z)));
    back.apply(result);
    auto distance = [&](const Orv3dPoint& e) {
        double x = (double)e.x - result.x, y = (double)e.y - result.y, z = (double)e.z - result.z;
        return x * x + y * y + z * z;
    };
    return distance(ends[0]) <= distance(ends[1]) ? 0 : 1;
}

unsigned long OrvPick3dLine(const Orv2dPoint& point, const Orv3dPoint& from, const Orv3dPoint& to,
                            const OrvScene* scene, const OrvActor* actor) {
    if (!scene) return 0;
    unsigned long invariant = actor && actor->isInvariant() ? 1 : 0;
    const Orv3dMatrix* matrix = actor ? actor->to3dWorld() : nullptr;
    OrvFaceStyle style = OrvFaceFilled;  // without an actor
    if (actor && actor->makeUp)
        style = actor->makeUp->distinguish() == 1 ? actor->makeUp->frontStyle()
                                                  : actor->makeUp->backStyle();
    Orv3dPoint hit;
    long end = OrvCloseTo(hit, point, from, to, scene, matrix, style, invariant);
    OrvDirector* director = directorOf(scene);
    if (!director) return 0;
    if (end < 0) {
        director->clearPick3dRecord();
        return 0;
    }
    director->setPick3dRecord(scene, OrvPickLine, const_cast<OrvActor*>(actor), nullptr, &hit, -1,
                              end);
    return 1;
}

// ---------------------------------------------------------------------------
// The actors that hold meshes
// ---------------------------------------------------------------------------

unsigned long Orv3dActorFaceSet::contains3d(const Orv2dPoint& point, const OrvScene* scene) const {
    return faces ? faces->pick(point, scene, this) : 0;
}

void Orv3dActorFaceSet::takeAPicture() {
    if (faces) faces->dropPickTree();
    _OrvPickActorChanged_(getTheater(), this);
    Orv3dActor::takeAPicture();
}

// A new look is no new geometry: the pick hierarchy stays.
void Orv3dActorFaceSet::notifyOnMakeUpChanged() {
    if (OrvUpdateDisplayListOnMakeUpChanged()) Orv3dActor::takeAPicture();
}

unsigned long Orv3dShape::contains3d(const Orv2dPoint& point, const OrvScene* scene) const {
    return series_ ? series_->pick(point, scene, this) : 0;
}

void Orv3dShape::takeAPicture() {
    if (series_) series_->dropPickTree();
    _OrvPickActorChanged_(getTheater(), this);
    Orv3dActor::takeAPicture();
}

void Orv3dShape::notifyOnMakeUpChanged() {
    if (OrvUpdateDisplayListOnMakeUpChanged()) Orv3dActor::takeAPicture();
}
