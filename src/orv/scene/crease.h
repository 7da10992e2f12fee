// The smoothing of vertex normals by crease angle, shared by face sets and
// series, and the rebuilding of a vertex with new normals or textures.
#ifndef ORV_SCENE_CREASE_H
#define ORV_SCENE_CREASE_H

#include "orv/vertex.h"

#include <cstdint>
#include <vector>

// Distinct vectors, each stored once: find gives the place of the first one
// equal to the vector within 1e-6 in x, y and z, appending it when there is
// none. The places are those of a search from the start of the table; a
// grid of cells finds them without the search.
class _OrvNormalTable_ {
public:
    std::vector<Orv3dVector> vectors;

    // Room made at once for about that many vectors.
    explicit _OrvNormalTable_(size_t expected = 0);
    unsigned find(const Orv3dVector& v);
    // The places of many vectors, as find gives them one after the other.
    // On an empty table the vectors are sorted by cell instead, so that a
    // million of them do not each wait on memory for a cell of their own.
    void findAll(const std::vector<Orv3dVector>& sought, std::vector<unsigned>& places);

private:
    // An open-addressed table of cells: 32 bits of the cell's key and the
    // last place stored there (~0u for a free entry); each place links to
    // the one stored before it. Cells whose keys agree in those bits share a
    // chain, which costs a comparison and never a wrong answer.
    struct Entry {
        uint32_t key;
        uint32_t head;
    };
    std::vector<Entry> entries;
    std::vector<unsigned> next;
    size_t cells;  // in use
    bool linear;
    bool stale;  // the cells are made again from the vectors before the next find

    unsigned* cell(uint64_t key, bool make);
    void remakeCells();
};

// Non-zero makes every table search from its start, and the smoothing walk
// the faces round every point, as the tests do to compare the two ways.
extern int _OrvNormalTableLinearSearch_;
// findAll sorts from this many vectors on; the tests lower it.
extern size_t _OrvNormalTableSortFrom_;

// Faces over slots over points. A slot is where a vertex normal goes: one a
// face vertex for face sets, one a vertex for series, where faces share them.
struct _OrvCreaseMesh_ {
    std::vector<unsigned> faceStart;  // faces + 1 offsets into faceSlots
    std::vector<unsigned> faceSlots;  // the slot of each face vertex
    std::vector<unsigned> slotPoint;  // the point of each slot
    std::vector<Orv3dVector> faceNormal;
    unsigned pointCount = 0;
};

// The result of each slot is a place in the table, or unset (~0u) for a slot
// that no face uses.
void _OrvCreaseNormals_(const _OrvCreaseMesh_& mesh, double creaseAngle,
                        std::vector<unsigned>& result, _OrvNormalTable_& table);

// Rebuilds the vertex as indexed with these normals and normal block, every
// other array and block kept; 0 when the vertex could not be made.
unsigned long _OrvRebuildWithNormals_(OrvVertexData& data, OrvShare* normals,
                                      const unsigned* normalIndex);
// Rebuilds the vertex with these textures, one a point: without index they
// are parallel to the points, with one the texture block is the point block.
unsigned long _OrvRebuildWithTextures_(OrvVertexData& data, OrvShare* textures);

// Whether the points of every vertex can be read: there are points, and
// every point index lies inside them.
bool _OrvPointsReadable_(const OrvVertexData& data);

// Texture coordinates of n points in a box: s along its longest side and t
// along the next, in proportion. 0 when no side is the longest (a box with
// sizes that are not numbers).
unsigned long _OrvBoxTextures_(const Orv3dVolume& box, unsigned n, const Orv3dPoint* points,
                               const Orv4dPoint* points4d, OrvTextureUV* out);

#endif
