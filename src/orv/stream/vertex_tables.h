// The stream's tables of shared vertex arrays and polygons. The stream holds
// shares and polygons as opaque pointers; the vertex classes, which know
// them, fill in the two calls below when the library loads, so the format
// needs no header of theirs.
#ifndef ORV_STREAM_VERTEX_TABLES_H
#define ORV_STREAM_VERTEX_TABLES_H

#include <unordered_map>
#include <vector>

class OrvShare;
class OrvPolygon;
class OrvVertexData;

struct _OrvVertexCalls_ {
    void (*unLock)(OrvShare*);
    // Deletes through the virtual destructor.
    void (*destroy)(OrvPolygon*);
};

// All null until the vertex classes are loaded, which is before any exists.
extern _OrvVertexCalls_ OrvVertexCalls;

// Beside the specified tables, which map numbers to objects, the writer
// finds a share's number, and the reader a number's object, without a walk.
struct _OrvWriterTables_ {
    std::unordered_map<const OrvShare*, unsigned> shareNumbers;
    std::vector<const OrvPolygon*> polygons;  // number - 1 -> polygon written in full
};

struct _OrvReaderTables_ {
    std::unordered_map<unsigned, OrvShare*> shares;
    std::unordered_map<unsigned, OrvPolygon*> polygons;
};

#endif
