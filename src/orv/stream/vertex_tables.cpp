// Numbers of shared vertex arrays and polygons, for writing each once and
// referring to it afterwards, and for finding it again when reading.
#include "orv/stream.h"

#include <cstdint>

#include "vertex_tables.h"

_OrvVertexCalls_ OrvVertexCalls = {nullptr, nullptr};

unsigned long OrvOStream::find(unsigned& number, const OrvShare* share) {
    if (!tables) tables = new _OrvWriterTables_;
    auto known = tables->shareNumbers.find(share);
    if (known != tables->shareNumbers.end()) {
        number = known->second;
        return 1;
    }
    if (!shareTable) shareTable = new OrvHashTable(1000);
    number = ++shareCounter;
    tables->shareNumbers[share] = number;
    shareTable->put((void*)(uintptr_t)number, const_cast<OrvShare*>(share));
    return 0;
}

OrvPolygon* OrvIStream::findPolygon(unsigned number, const OrvPolygon* polygon) {
    if (!tables) tables = new _OrvReaderTables_;
    if (!polygon) {
        auto known = tables->polygons.find(number);
        return known == tables->polygons.end() ? nullptr : known->second;
    }
    // A number given twice (only a hand-made file does that) names the
    // later polygon; the earlier one stays in the list until the end.
    polygons.insert((void*)(uintptr_t)number, const_cast<OrvPolygon*>(polygon));
    tables->polygons[number] = const_cast<OrvPolygon*>(polygon);
    return nullptr;
}

OrvShare* OrvIStream::findShared(unsigned number, OrvShare* share) {
    if (!tables) tables = new _OrvReaderTables_;
    if (!share) {
        auto known = tables->shares.find(number);
        return known == tables->shares.end() ? nullptr : known->second;
    }
    shares.insert((void*)(uintptr_t)number, share);
    tables->shares[number] = share;
    return nullptr;
}
