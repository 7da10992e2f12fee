// Vertex arrays and what is built on them: colours, texture coordinates and
// edge flags as values, counted shares of arrays that many objects use at
// once, vertex data with one layout class per combination of arrays, and the
// surfaces made of it (polygons, series, strip sets, faces and face sets).
// Nothing here draws: this is the data the 3D side draws, picks and saves.
#ifndef ORV_VERTEX_H
#define ORV_VERTEX_H

#include "orv/base.h"
#include "orv/geometry.h"

class OrvOStream;
class OrvIStream;
class OrvScene;
class OrvActor;
struct _OrvPickTree_;  // the hierarchy of a mesh's faces, made by its first pick

// The make-up's culling mode and face styles (orv/makeup.h), for picking.
typedef unsigned long OrvCullingMode;
typedef unsigned long OrvFaceStyle;

// ---------------------------------------------------------------------------
// Small values
// ---------------------------------------------------------------------------

// A colour of three floats from 0 to 1.
struct OrvRGB {
    float red, green, blue;

    OrvRGB() : red(0), green(0), blue(0) {}
    OrvRGB(float red0, float green0, float blue0) : red(red0), green(green0), blue(blue0) {}

    bool operator==(const OrvRGB& c) const {
        return red == c.red && green == c.green && blue == c.blue;
    }
    bool operator!=(const OrvRGB& c) const { return !(*this == c); }

    // Hue in degrees (0 to 360), saturation and value from 0 to 1.
    void setHSV(float h, float s, float v);
    void getHSV(float& h, float& s, float& v) const;
    // Hue, lightness and saturation, all from 0 to 1.
    void setHLS(float h, float l, float s);
    void getHLS(float& h, float& l, float& s) const;
    // "<r, g, b>" and a newline through OrvPrint.
    void print() const;
};

struct OrvTextureUV {
    float u, v;

    OrvTextureUV() : u(0), v(0) {}
    OrvTextureUV(float u0, float v0) : u(u0), v(v0) {}

    bool operator==(const OrvTextureUV& t) const { return u == t.u && v == t.v; }
    bool operator!=(const OrvTextureUV& t) const { return !(*this == t); }
};

// 1 when the edge that starts at this vertex is drawn in line mode.
typedef unsigned char OrvEdge;

// ---------------------------------------------------------------------------
// Shares: one array, counted by its users
// ---------------------------------------------------------------------------

enum OrvShareKind {
    OrvShare3dPoints = 0,
    OrvShare4dPoints = 1,
    OrvShareColors = 2,
    OrvShareNormals = 3,
    OrvShareEdges = 4,
    OrvShareTextures = 5,
    OrvShareIndex = 6
};

enum {
    OrvShareOwned = 2,     // the share frees the array with itself
    OrvShareReadOnly = 4,  // nobody may write through the share
};

// Owns or borrows one array and counts its users: each user locks it, and
// the last unLock deletes it (and an owned array with it). A new share
// belongs to nobody until its first lock. A share is never copied.
class OrvShare {
public:
    int kind;           // OrvShareKind
    void* data;         // the array
    int lockCount;      // users; 0 at creation
    unsigned flags;     // OrvShareOwned, OrvShareReadOnly
    unsigned cardinal;  // elements in the array

    // Every share that passed check, for the overlap test only; made by the
    // first share.
    static OrvList* sharedData;

    // The arguments are stored and check is run. An owned array must come
    // from new[] of its element type.
    OrvShare(unsigned count, Orv3dPoint* array, unsigned long readOnly, unsigned long owned);
    OrvShare(unsigned count, Orv4dPoint* array, unsigned long readOnly, unsigned long owned);
    OrvShare(unsigned count, OrvRGB* array, unsigned long readOnly, unsigned long owned);
    OrvShare(unsigned count, Orv3dVector* array, unsigned long readOnly, unsigned long owned);
    OrvShare(unsigned count, OrvEdge* array, unsigned long readOnly, unsigned long owned);
    OrvShare(unsigned count, OrvTextureUV* array, unsigned long readOnly, unsigned long owned);
    OrvShare(unsigned count, unsigned* array, unsigned long readOnly, unsigned long owned);
    OrvShare(const OrvShare&) = delete;
    OrvShare& operator=(const OrvShare&) = delete;
    // Leaves sharedData and frees an owned array. Users go through unLock.
    ~OrvShare();

    // Compares the array's bytes with those of every share of the same kind
    // in sharedData and warns on an overlap; 1, and an entry in sharedData,
    // only when nothing overlapped.
    unsigned long check();
    void lock() { lockCount++; }
    // Deletes the share when no user is left.
    void unLock();
    void setFlags(unsigned long readOnly, unsigned long owned);
    unsigned long isReadOnly() const { return (flags & OrvShareReadOnly) != 0; }
    unsigned long isOwned() const { return (flags & OrvShareOwned) != 0; }
    // Bytes of one element of a kind; 0 for an unknown kind.
    static unsigned elementSize(int kind);

    // The array when the kind matches, else null.
    const Orv3dPoint* points() const { return as<Orv3dPoint>(OrvShare3dPoints); }
    const Orv4dPoint* points4d() const { return as<Orv4dPoint>(OrvShare4dPoints); }
    const OrvRGB* colors() const { return as<OrvRGB>(OrvShareColors); }
    const Orv3dVector* normals() const { return as<Orv3dVector>(OrvShareNormals); }
    const OrvEdge* edges() const { return as<OrvEdge>(OrvShareEdges); }
    const OrvTextureUV* textures() const { return as<OrvTextureUV>(OrvShareTextures); }
    const unsigned* index() const { return as<unsigned>(OrvShareIndex); }

    // The only way to write: the array when the kind matches and the share
    // is not read only, else null.
    Orv3dPoint* pointsToBeChanged() { return changed<Orv3dPoint>(OrvShare3dPoints); }
    Orv4dPoint* points4dToBeChanged() { return changed<Orv4dPoint>(OrvShare4dPoints); }
    OrvRGB* colorsToBeChanged() { return changed<OrvRGB>(OrvShareColors); }
    Orv3dVector* normalsToBeChanged() { return changed<Orv3dVector>(OrvShareNormals); }
    OrvEdge* edgesToBeChanged() { return changed<OrvEdge>(OrvShareEdges); }
    OrvTextureUV* texturesToBeChanged() { return changed<OrvTextureUV>(OrvShareTextures); }
    unsigned* indexToBeChanged() { return changed<unsigned>(OrvShareIndex); }

private:
    // Where the share stands in sharedData: the link before its own (null
    // for the first), so that it leaves the list at once.
    bool listed;
    OrvLink* before;
    friend void _OrvForgetShare_(OrvShare*);

    void init(int kind, void* array, unsigned count, unsigned long readOnly, unsigned long owned);
    template <class T>
    const T* as(int k) const {
        return kind == k ? (const T*)data : nullptr;
    }
    template <class T>
    T* changed(int k) {
        return kind == k && !isReadOnly() ? (T*)data : nullptr;
    }
};

// ---------------------------------------------------------------------------
// Vertex layouts: one class per combination of arrays
// ---------------------------------------------------------------------------

// The base of the layouts: every accessor answers 0 or null here, and each
// class overrides what it has, so that an object holds exactly the shares
// it uses. Classes are named by letters in a fixed order: I (indexed), P
// (points, always), C (colours), N (normals), E (edges), T (textures); each
// derives from the one with its last letter removed, _OrvVertexIP_ from
// _OrvVertexP_. Each constructor locks the shares it is given and the
// destructor unlocks them.
//
// An indexed layout has one index share of dataNumber blocks of cardinal
// values, in the order point, colour, normal, edge, texture, leaving out
// what the layout does not have.
//
// Every layout of the library derives from _OrvVertexP_, and the indexed
// ones from _OrvVertexIP_: walks over many faces read their shares there.
class _OrvVertexType_ {
public:
    _OrvVertexType_() {}
    _OrvVertexType_& operator=(const _OrvVertexType_&) = delete;

    // Installs a ready index share (indexed layouts); ignored by the others.
    virtual void setIndex(OrvShare* index);
    virtual ~_OrvVertexType_() {}
    // Whether the layout goes through an index.
    virtual unsigned long isIndexed() const { return 0; }
    // Arrays in use, points included: the number of blocks of an index.
    virtual unsigned dataNumber() const { return 0; }
    // Elements of each array.
    virtual unsigned pointsCardinal() const { return 0; }
    virtual unsigned colorsCardinal() const { return 0; }
    virtual unsigned normalsCardinal() const { return 0; }
    virtual unsigned edgesCardinal() const { return 0; }
    virtual unsigned texturesCardinal() const { return 0; }
    // Vertices: the points, or the values of one index block.
    virtual unsigned cardinal() const { return 0; }
    // The arrays; points for 3D points only, points4d for rational ones.
    virtual const Orv3dPoint* points() const { return nullptr; }
    virtual const Orv4dPoint* points4d() const { return nullptr; }
    virtual const OrvRGB* colors() const { return nullptr; }
    virtual const Orv3dVector* normals() const { return nullptr; }
    virtual const OrvEdge* edges() const { return nullptr; }
    virtual const OrvTextureUV* textures() const { return nullptr; }
    // The whole index, then the start of each block.
    virtual const unsigned* index() const { return nullptr; }
    virtual const unsigned* pointsIndex() const { return nullptr; }
    virtual const unsigned* colorsIndex() const { return nullptr; }
    virtual const unsigned* normalsIndex() const { return nullptr; }
    virtual const unsigned* edgesIndex() const { return nullptr; }
    virtual const unsigned* texturesIndex() const { return nullptr; }
    // Whether the points are homogeneous (Orv4dPoint).
    virtual unsigned long isRationalPoint() const { return 0; }
    // The shares behind the arrays.
    virtual OrvShare* sharedPoints() const { return nullptr; }
    virtual OrvShare* sharedPoints4d() const { return nullptr; }
    virtual OrvShare* sharedColors() const { return nullptr; }
    virtual OrvShare* sharedNormals() const { return nullptr; }
    virtual OrvShare* sharedEdges() const { return nullptr; }
    virtual OrvShare* sharedTextures() const { return nullptr; }
    virtual OrvShare* sharedIndex() const { return nullptr; }
    // An object of the same class that locks the same shares.
    virtual _OrvVertexType_* copy() const = 0;

protected:
    _OrvVertexType_(const _OrvVertexType_&) {}
};

// Points of either kind; all arrays of a layout without index are parallel.
class _OrvVertexP_ : public _OrvVertexType_ {
public:
    OrvShare* pointShare;

    explicit _OrvVertexP_(OrvShare* points) : pointShare(points) {
        if (pointShare) pointShare->lock();
    }
    ~_OrvVertexP_() override {
        if (pointShare) pointShare->unLock();
    }
    unsigned dataNumber() const override { return 1; }
    unsigned pointsCardinal() const override { return pointShare ? pointShare->cardinal : 0; }
    unsigned cardinal() const override { return pointsCardinal(); }
    const Orv3dPoint* points() const override {
        return pointShare ? pointShare->points() : nullptr;
    }
    const Orv4dPoint* points4d() const override {
        return pointShare ? pointShare->points4d() : nullptr;
    }
    unsigned long isRationalPoint() const override {
        return pointShare && pointShare->kind == OrvShare4dPoints;
    }
    OrvShare* sharedPoints() const override { return isRationalPoint() ? nullptr : pointShare; }
    OrvShare* sharedPoints4d() const override { return isRationalPoint() ? pointShare : nullptr; }
    _OrvVertexType_* copy() const override { return new _OrvVertexP_(*this); }

protected:
    _OrvVertexP_(const _OrvVertexP_& source)
        : _OrvVertexType_(source), pointShare(source.pointShare) {
        if (pointShare) pointShare->lock();
    }
};

// Points through an index share, which may be missing until setIndex.
class _OrvVertexIP_ : public _OrvVertexP_ {
public:
    OrvShare* indexShare;

    _OrvVertexIP_(OrvShare* points, OrvShare* index) : _OrvVertexP_(points), indexShare(index) {
        if (indexShare) indexShare->lock();
    }
    ~_OrvVertexIP_() override {
        if (indexShare) indexShare->unLock();
    }
    void setIndex(OrvShare* index) override;
    // Builds an owned index share from one array per block and installs it;
    // a count of 0 without point index removes the index.
    void setIndex(unsigned long readOnly, unsigned count, const unsigned* points,
                  const unsigned* colors, const unsigned* normals, const unsigned* edges,
                  const unsigned* textures);
    unsigned long isIndexed() const override { return 1; }
    unsigned cardinal() const override;
    const unsigned* index() const override { return indexShare ? indexShare->index() : nullptr; }
    const unsigned* pointsIndex() const override { return index(); }
    const unsigned* colorsIndex() const override;
    const unsigned* normalsIndex() const override;
    const unsigned* edgesIndex() const override;
    const unsigned* texturesIndex() const override;
    OrvShare* sharedIndex() const override { return indexShare; }
    _OrvVertexType_* copy() const override { return new _OrvVertexIP_(*this); }

protected:
    _OrvVertexIP_(const _OrvVertexIP_& source)
        : _OrvVertexP_(source), indexShare(source.indexShare) {
        if (indexShare) indexShare->lock();
    }
    // The block of the attribute at that place in the fixed order, or null.
    const unsigned* block(unsigned place) const;
};

// One layout class: the base plus one share of an attribute. Params is the
// parameter list in letter order (index last), BaseArgs what the base takes.
#define ORV_VERTEX_LAYOUT(Name, Base, Params, BaseArgs, arg, field, Type, accessor, shared, count) \
    class Name : public Base {                                                                     \
    public:                                                                                        \
        OrvShare* field;                                                                           \
        Name Params : Base BaseArgs, field(arg) {                                                  \
            if (field) field->lock();                                                              \
        }                                                                                          \
        ~Name() override {                                                                         \
            if (field) field->unLock();                                                            \
        }                                                                                          \
        unsigned dataNumber() const override { return Base::dataNumber() + 1; }                    \
        unsigned count() const override { return field ? field->cardinal : 0; }                    \
        const Type* accessor() const override { return field ? field->accessor() : nullptr; }      \
        OrvShare* shared() const override { return field; }                                        \
        _OrvVertexType_* copy() const override { return new Name(*this); }                         \
                                                                                                   \
    protected:                                                                                     \
        Name(const Name& source) : Base(source), field(source.field) {                             \
            if (field) field->lock();                                                              \
        }                                                                                          \
    };

#define ORV_VERTEX_C(Name, Base, Params, BaseArgs)                                                 \
    ORV_VERTEX_LAYOUT(Name, Base, Params, BaseArgs, c, colorShare, OrvRGB, colors, sharedColors,   \
                      colorsCardinal)
#define ORV_VERTEX_N(Name, Base, Params, BaseArgs)                                                 \
    ORV_VERTEX_LAYOUT(Name, Base, Params, BaseArgs, n, normalShare, Orv3dVector, normals,          \
                      sharedNormals, normalsCardinal)
#define ORV_VERTEX_E(Name, Base, Params, BaseArgs)                                                 \
    ORV_VERTEX_LAYOUT(Name, Base, Params, BaseArgs, e, edgeShare, OrvEdge, edges, sharedEdges,     \
                      edgesCardinal)
#define ORV_VERTEX_T(Name, Base, Params, BaseArgs)                                                 \
    ORV_VERTEX_LAYOUT(Name, Base, Params, BaseArgs, t, textureShare, OrvTextureUV, textures,       \
                      sharedTextures, texturesCardinal)

// Shares in letter order: p points, c colours, n normals, e edges,
// t textures, and i the index last for the indexed layouts.
ORV_VERTEX_C(_OrvVertexPC_, _OrvVertexP_, (OrvShare * p, OrvShare* c), (p))
ORV_VERTEX_N(_OrvVertexPN_, _OrvVertexP_, (OrvShare * p, OrvShare* n), (p))
ORV_VERTEX_E(_OrvVertexPE_, _OrvVertexP_, (OrvShare * p, OrvShare* e), (p))
ORV_VERTEX_T(_OrvVertexPT_, _OrvVertexP_, (OrvShare * p, OrvShare* t), (p))
ORV_VERTEX_N(_OrvVertexPCN_, _OrvVertexPC_, (OrvShare * p, OrvShare* c, OrvShare* n), (p, c))
ORV_VERTEX_E(_OrvVertexPCE_, _OrvVertexPC_, (OrvShare * p, OrvShare* c, OrvShare* e), (p, c))
ORV_VERTEX_T(_OrvVertexPCT_, _OrvVertexPC_, (OrvShare * p, OrvShare* c, OrvShare* t), (p, c))
ORV_VERTEX_E(_OrvVertexPNE_, _OrvVertexPN_, (OrvShare * p, OrvShare* n, OrvShare* e), (p, n))
ORV_VERTEX_T(_OrvVertexPNT_, _OrvVertexPN_, (OrvShare * p, OrvShare* n, OrvShare* t), (p, n))
ORV_VERTEX_T(_OrvVertexPET_, _OrvVertexPE_, (OrvShare * p, OrvShare* e, OrvShare* t), (p, e))
ORV_VERTEX_E(_OrvVertexPCNE_, _OrvVertexPCN_, (OrvShare * p, OrvShare* c, OrvShare* n, OrvShare* e),
             (p, c, n))
ORV_VERTEX_T(_OrvVertexPCNT_, _OrvVertexPCN_, (OrvShare * p, OrvShare* c, OrvShare* n, OrvShare* t),
             (p, c, n))
ORV_VERTEX_T(_OrvVertexPCET_, _OrvVertexPCE_, (OrvShare * p, OrvShare* c, OrvShare* e, OrvShare* t),
             (p, c, e))
ORV_VERTEX_T(_OrvVertexPNET_, _OrvVertexPNE_, (OrvShare * p, OrvShare* n, OrvShare* e, OrvShare* t),
             (p, n, e))
ORV_VERTEX_T(_OrvVertexPCNET_, _OrvVertexPCNE_,
             (OrvShare * p, OrvShare* c, OrvShare* n, OrvShare* e, OrvShare* t), (p, c, n, e))

ORV_VERTEX_C(_OrvVertexIPC_, _OrvVertexIP_, (OrvShare * p, OrvShare* c, OrvShare* i), (p, i))
ORV_VERTEX_N(_OrvVertexIPN_, _OrvVertexIP_, (OrvShare * p, OrvShare* n, OrvShare* i), (p, i))
ORV_VERTEX_E(_OrvVertexIPE_, _OrvVertexIP_, (OrvShare * p, OrvShare* e, OrvShare* i), (p, i))
ORV_VERTEX_T(_OrvVertexIPT_, _OrvVertexIP_, (OrvShare * p, OrvShare* t, OrvShare* i), (p, i))
ORV_VERTEX_N(_OrvVertexIPCN_, _OrvVertexIPC_, (OrvShare * p, OrvShare* c, OrvShare* n, OrvShare* i),
             (p, c, i))
ORV_VERTEX_E(_OrvVertexIPCE_, _OrvVertexIPC_, (OrvShare * p, OrvShare* c, OrvShare* e, OrvShare* i),
             (p, c, i))
ORV_VERTEX_T(_OrvVertexIPCT_, _OrvVertexIPC_, (OrvShare * p, OrvShare* c, OrvShare* t, OrvShare* i),
             (p, c, i))
ORV_VERTEX_E(_OrvVertexIPNE_, _OrvVertexIPN_, (OrvShare * p, OrvShare* n, OrvShare* e, OrvShare* i),
             (p, n, i))
ORV_VERTEX_T(_OrvVertexIPNT_, _OrvVertexIPN_, (OrvShare * p, OrvShare* n, OrvShare* t, OrvShare* i),
             (p, n, i))
ORV_VERTEX_T(_OrvVertexIPET_, _OrvVertexIPE_, (OrvShare * p, OrvShare* e, OrvShare* t, OrvShare* i),
             (p, e, i))
ORV_VERTEX_E(_OrvVertexIPCNE_, _OrvVertexIPCN_,
             (OrvShare * p, OrvShare* c, OrvShare* n, OrvShare* e, OrvShare* i), (p, c, n, i))
ORV_VERTEX_T(_OrvVertexIPCNT_, _OrvVertexIPCN_,
             (OrvShare * p, OrvShare* c, OrvShare* n, OrvShare* t, OrvShare* i), (p, c, n, i))
ORV_VERTEX_T(_OrvVertexIPCET_, _OrvVertexIPCE_,
             (OrvShare * p, OrvShare* c, OrvShare* e, OrvShare* t, OrvShare* i), (p, c, e, i))
ORV_VERTEX_T(_OrvVertexIPNET_, _OrvVertexIPNE_,
             (OrvShare * p, OrvShare* n, OrvShare* e, OrvShare* t, OrvShare* i), (p, n, e, i))
ORV_VERTEX_T(_OrvVertexIPCNET_, _OrvVertexIPCNE_,
             (OrvShare * p, OrvShare* c, OrvShare* n, OrvShare* e, OrvShare* t, OrvShare* i),
             (p, c, n, e, i))

#undef ORV_VERTEX_C
#undef ORV_VERTEX_N
#undef ORV_VERTEX_E
#undef ORV_VERTEX_T
#undef ORV_VERTEX_LAYOUT

// ---------------------------------------------------------------------------
// Vertex data
// ---------------------------------------------------------------------------

// The base of every object with vertices. It holds one layout, chosen by
// the arrays in use, or none until a create call.
class OrvVertexData {
public:
    _OrvVertexType_* vertex;  // may be null

    OrvVertexData();
    // Shares the arrays: the layout is copied, never the arrays.
    OrvVertexData(const OrvVertexData& source);
    OrvVertexData& operator=(const OrvVertexData&) = delete;
    // Deletes the layout, which lets go of its shares.
    virtual ~OrvVertexData();
    // The layout and the size of each array, on the standard output.
    virtual void print() const;
    // The name of the class, for messages and printing.
    virtual const char* className() const;
    // The volume of the points.
    virtual Orv3dVolume bbox3d() const;
    // Brings a cached volume up to date; the base caches nothing.
    virtual void computeBBox();

    // A new layout of the same class on the same shares, or null.
    _OrvVertexType_* copyVertex() const { return vertex ? vertex->copy() : nullptr; }

    // The layout's answers; 0 or null without a layout.
    unsigned vertexCardinal() const { return vertex ? vertex->cardinal() : 0; }
    unsigned vertexPointsCardinal() const { return vertex ? vertex->pointsCardinal() : 0; }
    unsigned vertexColorsCardinal() const { return vertex ? vertex->colorsCardinal() : 0; }
    unsigned vertexNormalsCardinal() const { return vertex ? vertex->normalsCardinal() : 0; }
    unsigned vertexEdgesCardinal() const { return vertex ? vertex->edgesCardinal() : 0; }
    unsigned vertexTexturesCardinal() const { return vertex ? vertex->texturesCardinal() : 0; }
    const Orv3dPoint* vertexPoints() const { return vertex ? vertex->points() : nullptr; }
    const Orv4dPoint* vertexPoints4d() const { return vertex ? vertex->points4d() : nullptr; }
    const OrvRGB* vertexColors() const { return vertex ? vertex->colors() : nullptr; }
    const Orv3dVector* vertexNormals() const { return vertex ? vertex->normals() : nullptr; }
    const OrvEdge* vertexEdges() const { return vertex ? vertex->edges() : nullptr; }
    const OrvTextureUV* vertexTextures() const { return vertex ? vertex->textures() : nullptr; }
    OrvShare* vertexSharedPoints() const { return vertex ? vertex->sharedPoints() : nullptr; }
    OrvShare* vertexSharedPoints4d() const { return vertex ? vertex->sharedPoints4d() : nullptr; }
    OrvShare* vertexSharedColors() const { return vertex ? vertex->sharedColors() : nullptr; }
    OrvShare* vertexSharedNormals() const { return vertex ? vertex->sharedNormals() : nullptr; }
    OrvShare* vertexSharedEdges() const { return vertex ? vertex->sharedEdges() : nullptr; }
    OrvShare* vertexSharedTextures() const { return vertex ? vertex->sharedTextures() : nullptr; }
    const unsigned* vertexPointsIndex() const { return vertex ? vertex->pointsIndex() : nullptr; }
    const unsigned* vertexColorsIndex() const { return vertex ? vertex->colorsIndex() : nullptr; }
    const unsigned* vertexNormalsIndex() const { return vertex ? vertex->normalsIndex() : nullptr; }
    const unsigned* vertexEdgesIndex() const { return vertex ? vertex->edgesIndex() : nullptr; }
    const unsigned* vertexTexturesIndex() const {
        return vertex ? vertex->texturesIndex() : nullptr;
    }
    const unsigned* vertexIndex() const { return vertex ? vertex->index() : nullptr; }
    OrvShare* vertexSharedIndex() const { return vertex ? vertex->sharedIndex() : nullptr; }
    unsigned long isIndexed() const { return vertex ? vertex->isIndexed() : 0; }
    unsigned long isRationalPoint() const { return vertex ? vertex->isRationalPoint() : 0; }
    unsigned dataNumber() const { return vertex ? vertex->dataNumber() : 0; }
    // The points share of either kind.
    OrvShare* vertexSharedAnyPoints() const {
        return vertex
                   ? (vertex->isRationalPoint() ? vertex->sharedPoints4d() : vertex->sharedPoints())
                   : nullptr;
    }

    // The i-th vertex, through the index when there is one; 0 when i is at
    // or past vertexCardinal, or when the index points past the points.
    unsigned long point(unsigned i, Orv3dPoint& result) const;
    unsigned long point(unsigned i, Orv4dPoint& result) const;
    // The place of the i-th vertex in the points array.
    unsigned long point(unsigned i, unsigned& result) const;

    // Replace the layout by the one for the arrays given (null for absent
    // ones) and lock them; the old layout goes. Without points, or with a
    // share of the wrong kind, a message and the layout stays.
    void createNonIndexedVertex(OrvShare* points, OrvShare* colors, OrvShare* normals,
                                OrvShare* textures, OrvShare* edges);
    void createIndexedVertex(OrvShare* points, OrvShare* colors, OrvShare* normals,
                             OrvShare* textures, OrvShare* edges);
    // Builds the index from one array per block (see _OrvVertexIP_::setIndex).
    void setVertexIndex(unsigned long readOnly, unsigned count, const unsigned* points,
                        const unsigned* colors, const unsigned* normals, const unsigned* edges,
                        const unsigned* textures);
    void setVertexIndex(OrvShare* index);
    void cleanIndex();
    // 0 without a layout; an indexed layout also needs its index.
    unsigned long checkValidity() const;
    // Whether every index value lies inside its array.
    unsigned long checkIndex() const;

    // Normal arithmetic on raw arrays: exactly one of points and points4d is
    // given, and index, when given, maps vertex numbers to points.
    // Newell's normal; 1 when it could be normalised, 0 otherwise (with the
    // sum left as it is).
    static unsigned long computeNormal(unsigned count, const Orv3dPoint* points,
                                       const Orv4dPoint* points4d, const unsigned* index,
                                       Orv3dVector& result);
    // One normal a triangle of a strip, or of a fan when fan is not 0, all
    // facing one way; returns the number written.
    static unsigned computeTriangleNormals(unsigned count, const Orv3dPoint* points,
                                           const Orv4dPoint* points4d, const unsigned* index,
                                           unsigned normalCount, Orv3dVector* normals,
                                           unsigned long fan);
    // One normal a cell of a grid of (columns + 1) * (rows + 1) vertices,
    // row after row; returns the number written.
    static unsigned computeQuadrilateralMeshNormals(unsigned columns, unsigned rows,
                                                    const Orv3dPoint* points,
                                                    const Orv4dPoint* points4d,
                                                    const unsigned* index, unsigned normalCount,
                                                    Orv3dVector* normals);
    // Whether the turns round the polygon all go one way.
    static unsigned long isConvex(unsigned count, const Orv3dPoint* points,
                                  const Orv4dPoint* points4d, const unsigned* index);

    // The saved form: "indexed", with an index "indexCardinal", "rational",
    // the cardinal of each array with its read-only flag, the arrays, and
    // the index blocks. An array or index that the stream has written before
    // is written by number. 1 written, 0 after the message.
    unsigned long writeNonIndexed(OrvOStream& out) const;
    unsigned long writeIndexed(OrvOStream& out) const;
    // The arrays: key, number, and a bracketed list of one element a line;
    // a share written before is the key, ".USE" and its number.
    static void writePoints(OrvOStream& out, const OrvShare* share);
    static void writePoints4d(OrvOStream& out, const OrvShare* share);
    static void writeColors(OrvOStream& out, const OrvShare* share);
    static void writeNormals(OrvOStream& out, const OrvShare* share);
    static void writeTextures(OrvOStream& out, const OrvShare* share);
    static void writeEdges(OrvOStream& out, const OrvShare* share);
    // The index blocks under "pointIndex", "colorIndex", "normalIndex",
    // "textureIndex", "edgeIndex", ten values a line.
    static void writeIndex(OrvOStream& out, const OrvVertexData* data);
    // Each reads its key and an array of count elements, or a ".USE" of an
    // earlier one; the share is the stream's until someone locks it. Null
    // after the message.
    static OrvShare* readPoints(OrvIStream& in, unsigned count, unsigned long readOnly);
    static OrvShare* readPoints4d(OrvIStream& in, unsigned count, unsigned long readOnly);
    static OrvShare* readColors(OrvIStream& in, unsigned count, unsigned long readOnly);
    static OrvShare* readNormals(OrvIStream& in, unsigned count, unsigned long readOnly);
    static OrvShare* readTextures(OrvIStream& in, unsigned count, unsigned long readOnly);
    static OrvShare* readEdges(OrvIStream& in, unsigned count, unsigned long readOnly);
    // All index blocks, count values in all; the blocks present are told by
    // their keys and the length of the first.
    static OrvShare* readIndex(OrvIStream& in, unsigned count, unsigned long readOnly);

protected:
    // Reads what writeNonIndexed or writeIndexed wrote and makes the layout;
    // 0 after the message, with no layout.
    unsigned long readVertex(OrvIStream& in);
    // Whichever of the two writers fits.
    unsigned long writeVertex(OrvOStream& out) const;
};

// ---------------------------------------------------------------------------
// Polygons
// ---------------------------------------------------------------------------

// One face with a cached bounding volume.
class OrvPolygon : public OrvVertexData {
public:
    Orv3dVolume bbox;

    OrvPolygon();
    // Shares the arrays through copyVertex.
    OrvPolygon(const OrvPolygon& source);
    // Reads a "polygon" block, or a ".USE" of an earlier one, whose arrays
    // it then shares. A failure leaves no layout.
    explicit OrvPolygon(OrvIStream& in);
    ~OrvPolygon() override {}

    const char* className() const override;
    Orv3dVolume bbox3d() const override { return bbox; }
    void computeBBox() override;
    // A new object of the same class sharing the arrays.
    virtual OrvPolygon* copy() const;
    // The saved form: "polygon" and the vertex data in braces, or, for a
    // polygon with the same arrays as one written before, a ".USE" of it.
    virtual void write(OrvOStream& out) const;
    // A new polygon, or null after the message.
    static OrvPolygon* read(OrvIStream& in);

    // Installs arrays without (or with) an index; points must be 3D or 4D
    // points, and without index each other array must reach as far as the
    // points. 1 done, 0 after the message.
    unsigned long setNonIndexed(OrvShare* points, OrvShare* colors, OrvShare* normals,
                                OrvShare* textures, OrvShare* edges);
    unsigned long setIndexed(OrvShare* points, OrvShare* colors, OrvShare* normals,
                             OrvShare* textures, OrvShare* edges);
    // The index of an indexed polygon, one array per block.
    unsigned long setIndex(unsigned long readOnly, unsigned count, const unsigned* points,
                           const unsigned* colors, const unsigned* normals, const unsigned* edges,
                           const unsigned* textures);
    unsigned long setIndex(OrvShare* index);
    // For hand-written tables: count vertices, each given as its point index
    // followed by its colour, normal, texture and edge index for the arrays
    // that exist (in that order), all as unsigned values. Beware that seven
    // arguments all written 0 choose the form above.
    unsigned long setIndex(unsigned long readOnly, unsigned count, ...);

    // Newell's normal of the polygon's own vertices.
    virtual unsigned long computeNormal(Orv3dVector& result) const;
    // Uniform access to the vertices of the faces of any of the surface
    // classes: the vertices of a face, and the nth of them, whose vertex
    // number is returned (-1 after a message).
    virtual unsigned subFaceVertexCardinal(unsigned face) const;
    virtual long subFaceVertex(Orv3dPoint& result, unsigned face, unsigned nth) const;
    virtual long subFaceVertex(Orv4dPoint& result, unsigned face, unsigned nth) const;
    // Moves vertex i, and recolours it when a colour is given and the colours
    // are writable; 0 when i is out of range or the points are read only.
    // The other attributes are not changed, which is said on every success.
    unsigned long changePoint(unsigned i, const Orv3dPoint& point, const OrvRGB* color,
                              const Orv3dVector* normal, const OrvTextureUV* texture,
                              const OrvEdge* edge);
    unsigned long changePoint(unsigned i, const Orv4dPoint& point, const OrvRGB* color,
                              const Orv3dVector* normal, const OrvTextureUV* texture,
                              const OrvEdge* edge);
    // Texture coordinates from the position in a box (the polygon's own box
    // by default): s along its longest side, t along the next in proportion.
    // Nothing happens without points or when there are textures already.
    virtual void computeVerticeTextures(const Orv3dVolume* box = nullptr);

    // Whether the window point of the scene falls on the polygon, placed by
    // the actor's matrix and drawn with its make-up's culling and face styles
    // (all faces filled without an actor). A hit fills the director's pick
    // record: type OrvPickFace, the actor, this polygon, where the camera's
    // ray meets the face's plane, and the vertex (points) or edge (lines)
    // number; 1 then, 0 otherwise.
    unsigned long pick(const Orv2dPoint& point, const OrvScene* scene, const OrvActor* actor) const;
    // The same with the matrix, culling and styles given. Faces drawn as
    // points or lines are hit within 3 pixels.
    virtual unsigned long pick2(const Orv2dPoint& point, const OrvScene* scene,
                                const OrvActor* actor, const Orv3dMatrix* matrix,
                                OrvCullingMode cull, OrvFaceStyle front, OrvFaceStyle back) const;

protected:
    // The number of the nth vertex of a face, or -1 after the message.
    virtual long faceVertex(unsigned face, unsigned nth) const;
};

// ---------------------------------------------------------------------------
// Series: a vertex set and a rule that makes faces of it
// ---------------------------------------------------------------------------

enum OrvSeriesType {
    OrvQuadMesh = 0,      // data1 rows, data2 columns; (rows + 1) * (columns + 1) vertices
    OrvTriStrip = 1,      // one strip
    OrvRowsTriStrip = 2,  // data2 strips of equal length, one after the other
    OrvTriFan = 3,        // one fan round the first vertex
    OrvFaces = 4          // faces of data1 vertices each
};

// Face numbering follows the drawn primitive. QuadMesh face r * columns + c
// has, with a = r * (columns + 1) + c, the vertices a, a + 1, a + columns + 2,
// a + columns + 1. TriStrip face i has i, i + 1, i + 2 for even i and i + 1,
// i, i + 2 for odd i; RowsTriStrip the same within each row, rows one after
// the other. TriFan face i has 0, i + 1, i + 2. Faces face i has i * data1 to
// i * data1 + data1 - 1.
class OrvSeries : public OrvPolygon {
public:
    OrvSeriesType kind;
    unsigned data1, data2;
    OrvShare* faceNormals;  // one normal a face, locked; may be null

    OrvSeries(OrvSeriesType kind, unsigned data1, unsigned data2);
    OrvSeries(const OrvSeries& source);
    // Reads a "series" block; a failure leaves no layout.
    explicit OrvSeries(OrvIStream& in);
    ~OrvSeries() override;

    const char* className() const override;
    OrvPolygon* copy() const override;
    // The saved form: the kind, data1, data2, the vertex data and the face
    // normals, in braces under "series".
    void write(OrvOStream& out) const override;
    static OrvSeries* read(OrvIStream& in);

    // Locks a share of face normals in place of the old one.
    void normals(OrvShare* faceNormals);
    unsigned vertexPerFace() const;
    unsigned faceCardinal() const;
    // data1 for a QuadMesh, data2 for RowsTriStrip, else 0.
    unsigned rows() const;
    unsigned columns() const { return data2; }
    unsigned long isQuadrilateral() const { return vertexPerFace() == 4; }
    unsigned long isTriangle() const { return vertexPerFace() == 3; }
    // The vertices of strip i.
    virtual unsigned vertexInTriangleStrip(unsigned i) const;

    unsigned subFaceVertexCardinal(unsigned face) const override;
    // One normal a face, from the kind's own rule, into an owned share.
    virtual unsigned long computeFacesNormals();
    // Smooth vertex normals: at each vertex the average of the normals of
    // the faces round its point that lie within creaseAngle degrees of its
    // face. Kinds 0 to 3 get one normal a vertex; Faces get a table of
    // distinct normals through the index.
    virtual unsigned long computeVerticeNormals(const double creaseAngle);

    // The face nearest the eye among those under the point; the record's
    // vertex and edge numbers count the series' vertices.
    unsigned long pick2(const Orv2dPoint& point, const OrvScene* scene, const OrvActor* actor,
                        const Orv3dMatrix* matrix, OrvCullingMode cull, OrvFaceStyle front,
                        OrvFaceStyle back) const override;
    // Also forgets the pick hierarchy, since the points moved.
    void computeBBox() override;
    // Forgets the pick hierarchy: the next pick builds it again.
    void dropPickTree() const;

    mutable _OrvPickTree_* pickTree = nullptr;  // owned; made by the first pick

protected:
    long faceVertex(unsigned face, unsigned nth) const override;
    // The first vertex of strip i.
    unsigned stripStart(unsigned i) const;
};

// Strips of uneven length: kind RowsTriStrip with one length a strip.
class OrvTriangleStripSet : public OrvSeries {
public:
    OrvShare* stripLengths;  // unsigned values, locked

    explicit OrvTriangleStripSet(OrvShare* lengths);
    OrvTriangleStripSet(const OrvTriangleStripSet& source);
    explicit OrvTriangleStripSet(OrvIStream& in);
    ~OrvTriangleStripSet() override;

    const char* className() const override;
    OrvPolygon* copy() const override;
    // "triangleStripSet", the series, then the lengths as a shared array.
    void write(OrvOStream& out) const override;
    static OrvTriangleStripSet* read(OrvIStream& in);
    unsigned vertexInTriangleStrip(unsigned i) const override;
};

// ---------------------------------------------------------------------------
// Faces and face sets
// ---------------------------------------------------------------------------

// A polygon with a colour and a normal of its own.
class OrvFace : public OrvPolygon {
public:
    Orv3dVector* normal_;  // owned; null when unset
    OrvRGB* color_;        // owned; null when unset

    OrvFace();
    OrvFace(const OrvFace& source);
    // Reads a "face" block; a failure leaves no layout.
    explicit OrvFace(OrvIStream& in);
    ~OrvFace() override;

    const char* className() const override;
    OrvPolygon* copy() const override;
    // "face", and in braces the vertex data, "faceColor" and "faceNormal".
    void write(OrvOStream& out) const override;
    static OrvFace* read(OrvIStream& in);

    // Copies the value in, or with null forgets it.
    void color(const OrvRGB* color);
    void normal(const Orv3dVector* normal);
    const OrvRGB* color() const { return color_; }
    const Orv3dVector* normal() const { return normal_; }
    // Computes the polygon's normal and keeps it.
    unsigned long computeNormal();
    // The kept normal; 0 when there is none.
    unsigned long computeNormal(Orv3dVector& result) const override;
};

// A list of faces that usually share their arrays.
class OrvFaceSet {
public:
    OrvList faces;  // OrvFace*, owned
    Orv3dVolume bbox;

    // count faces follow, each an OrvFace* that the set takes.
    OrvFaceSet(unsigned count, ...);
    // Copies the faces, which share their arrays with the originals.
    OrvFaceSet(const OrvFaceSet& source);
    // Reads a "faceSet" block; a failure leaves no faces.
    explicit OrvFaceSet(OrvIStream& in);
    OrvFaceSet& operator=(const OrvFaceSet&) = delete;
    // Deletes the faces, which let go of their arrays.
    virtual ~OrvFaceSet();

    // The name of the class.
    virtual const char* className() const;
    // A new set sharing the arrays.
    virtual OrvFaceSet* copy() const;
    // "faceSet" and in braces either the compact form, when all faces are
    // indexed into the same arrays, or each face in full.
    virtual void write(OrvOStream& out) const;
    // A new set, or null after the message.
    static OrvFaceSet* read(OrvIStream& in);
    // Writes the compact form and returns 1 when the faces allow it; 0 and
    // nothing written otherwise.
    unsigned long writeOptimizeIndex(OrvOStream& out) const;
    // "faceCardinal", "optimized" and, when optimized, "indexCardinal".
    void writeData(OrvOStream& out, unsigned long optimized) const;
    Orv3dVolume bbox3d() const { return bbox; }
    // The volume of all faces again, after their points moved.
    void computeBBox();

    // Take the face, at the front or at the end.
    void insert(OrvFace* face);
    void add(OrvFace* face);
    unsigned faceCardinal() const { return faces.length(); }

    // Each face's own normal.
    unsigned long computeFacesNormals();
    // Smooth vertex normals by crease angle over faces that share points;
    // every face becomes indexed into one table of distinct normals.
    unsigned long computeVerticeNormals(const double creaseAngle);
    // Texture coordinates from one box for all faces (the set's by default),
    // so that the texture runs on from face to face.
    void computeVerticeTextures(const Orv3dVolume* box = nullptr);

    // The face nearest the eye among those under the point, as
    // OrvPolygon::pick tells it for each face; the record names the face.
    unsigned long pick(const Orv2dPoint& point, const OrvScene* scene, const OrvActor* actor) const;
    virtual unsigned long pick2(const Orv2dPoint& point, const OrvScene* scene,
                                const OrvActor* actor, const Orv3dMatrix* matrix,
                                OrvCullingMode cull, OrvFaceStyle front, OrvFaceStyle back) const;
    // Forgets the pick hierarchy: the next pick builds it again. Adding
    // faces and computeBBox do it; so must whoever changes faces otherwise.
    void dropPickTree() const;

    mutable _OrvPickTree_* pickTree = nullptr;  // owned; made by the first pick
};

// ---------------------------------------------------------------------------
// Mesh files
// ---------------------------------------------------------------------------

// Reads a mesh file (Wavefront OBJ, PLY, STL, glTF 2.0 and the other formats
// assimp knows) into a new face set: every mesh of the file, placed by its
// nodes' transforms, becomes faces indexed into one array of points, with
// the file's normals, texture coordinates and vertex colours when every
// mesh has them. Without normals in the file they are smoothed at
// creaseAngle degrees, or left out for a negative angle. Faces get their own
// normals. A file that cannot be read gives a message naming it and the
// reason, and null. A library built without assimp says so and gives null.
OrvFaceSet* OrvImportMesh(const char* file, double creaseAngle);

// OrvSetOptimizeMode and OrvGetOptimizeMode, the flag for applications that
// nothing here reads, stand in orv/layer.h.

#endif
