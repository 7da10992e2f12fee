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

#endif
