// The bounding-volume hierarchies behind picking: a tree of boxes, the
// pixel's frustum that walks it, the hierarchy of a mesh's faces and the one
// of a theater layer's actors, and the calls by which the rest of the library
// tells them that geometry changed.
#ifndef ORV_SCENE_PICK_TREE_H
#define ORV_SCENE_PICK_TREE_H

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "orv/geometry.h"

class OrvActor;
class OrvPolygon;
class OrvShare;
class OrvTheater;
class OrvTheaterLayer;

struct _OrvPickBox_ {
    float lo[3], hi[3];

    _OrvPickBox_() : lo{1, 1, 1}, hi{0, 0, 0} {}  // empty until the first point
    bool isEmpty() const { return lo[0] > hi[0]; }
    void add(const Orv3dPoint& p);
    void add(const _OrvPickBox_& b);
    // The box of the eight corners through m, exactly as the walk would map
    // them (no division: m is affine).
    _OrvPickBox_ mapped(const Orv3dMatrix& m) const;
};

// The points of a space whose image through a projective matrix falls in
// a window rectangle, as four planes and the matrix's w row. A box that
// reaches where w is (almost) 0 or negative is always met, since there the
// division that the walk does folds the picture over.
struct _OrvPickFrustum_ {
    double plane[4][4];  // a, b, c, d of x >= x0, x <= x1, y >= y0, y <= y1
    double w[4];

    // m is the row-major product of the scene's matrix and the space's own.
    void make(const double m[16], double x0, double x1, double y0, double y1);
    bool meets(const float lo[3], const float hi[3]) const;
};

// Row-major double product of a scene matrix and an optional space matrix.
void _OrvPickProduct_(const Orv3dMatrix& scene, const Orv3dMatrix* space, double out[16]);

// A binary tree over boxes, leaves of a few items, children of node i at
// i + 1 and at `second`.
class _OrvBoxTree_ {
public:
    struct Node {
        float lo[3], hi[3];
        uint32_t second;  // inner nodes: the second child; leaves: the first item's place
        uint32_t count;   // items of a leaf; 0 for an inner node
    };
    std::vector<Node> nodes;
    std::vector<uint32_t> items;   // item numbers, leaf by leaf
    std::vector<uint32_t> parent;  // with refit only
    std::vector<uint32_t> leafOf;  // item number -> its leaf, with refit only

    // Items are numbered by their place in boxes; only those listed in
    // `use` (all when null) go in. Empty boxes stay out.
    void build(const std::vector<_OrvPickBox_>& boxes, const std::vector<uint32_t>* use,
               bool refit);
    // Every item whose leaf box meets the frustum, in no particular order.
    void query(const _OrvPickFrustum_& frustum, std::vector<uint32_t>& out) const;
    // The item's box changed: its leaf and the nodes above it take it in.
    void refit(uint32_t item, const std::vector<_OrvPickBox_>& boxes);
    size_t bytes() const;
    void clear();
};

// The hierarchy of a face set's or a series' faces, in the mesh's own
// coordinates. Faces are numbered in the mesh's order.
struct _OrvPickTree_ {
    _OrvBoxTree_ tree;
    std::vector<const OrvPolygon*> faces;  // a face set's faces; empty for a series
    std::vector<const OrvShare*> shares;   // the point arrays it was built from
    const void* firstFace = nullptr;       // a face set's first and last faces then
    const void* lastFace = nullptr;
    unsigned faceCount = 0;
    uint64_t epoch = 0;   // the point changes it has seen
    bool usable = false;  // false: a face could not be read; the walk answers
};

void _OrvFreePickTree_(_OrvPickTree_* tree);
// Whether the tree still stands for what it was built from (changePoint may
// have moved one of its points since).
bool _OrvPickTreeCurrent_(_OrvPickTree_* tree);
// Counts a tree just built in the figures.
void _OrvPickTreeBuilt_(_OrvPickTree_* tree);

// Told by changePoint: the points of this array moved.
void _OrvPickPointsChanged_(const OrvShare* points);
// Told by anything that changes faces in place: every layer hierarchy takes
// its actors' boxes again at its next pick.
void _OrvPickGeometryChanged_();

// The hierarchy over a layer's actors, in world coordinates.
struct _OrvLayerPickTree_;
void _OrvFreeLayerPickTree_(_OrvLayerPickTree_* tree);
// Told by the theater when an actor goes through the change protocol.
void _OrvPickActorChanged_(const OrvTheater* theater, const OrvActor* actor);
// The numbers of the layer's actors that may be hit at the point of the
// scene, in decreasing order (the walk's), or false when the layer is to be
// walked in full (hierarchies off).
bool _OrvLayerPickCandidates_(const OrvTheaterLayer* layer, const Orv2dPoint& point,
                              const Orv3dMatrix& worldToScene, std::vector<uint32_t>& out);

#endif
