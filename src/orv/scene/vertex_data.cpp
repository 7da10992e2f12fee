// Vertex data: the choice of layout for a combination of arrays, the index
// of the indexed layouts, vertex access and printing.
#include "orv/vertex.h"

#include <cstring>

// ---------------------------------------------------------------------------
// Layouts
// ---------------------------------------------------------------------------

void _OrvVertexType_::setIndex(OrvShare*) {}

void _OrvVertexIP_::setIndex(OrvShare* index) {
    if (index == indexShare) return;
    if (index && index->kind != OrvShareIndex) {
        OrvError("OrvVertex::setIndex: Not an index share.\n");
        return;
    }
    if (index) index->lock();
    if (indexShare) indexShare->unLock();
    indexShare = index;
}

unsigned _OrvVertexIP_::cardinal() const {
    if (!index()) return 0;
    // Divisions by a known constant: walks ask this of every face.
    unsigned all = indexShare->cardinal;
    switch (dataNumber()) {
        case 1:
            return all;
        case 2:
            return all / 2;
        case 3:
            return all / 3;
        case 4:
            return all / 4;
        case 5:
            return all / 5;
    }
    return 0;
}

// Places in the fixed order: 1 colour, 2 normal, 3 edge, 4 texture.
const unsigned* _OrvVertexIP_::block(unsigned place) const {
    const unsigned* all = index();
    if (!all) return nullptr;
    bool present[5] = {true, sharedColors() != nullptr, sharedNormals() != nullptr,
                       sharedEdges() != nullptr, sharedTextures() != nullptr};
    if (!present[place]) return nullptr;
    unsigned offset = 0;
    for (unsigned k = 0; k < place; k++) offset += present[k];
    return all + offset * cardinal();
}

const unsigned* _OrvVertexIP_::colorsIndex() const {
    return block(1);
}
const unsigned* _OrvVertexIP_::normalsIndex() const {
    return block(2);
}
const unsigned* _OrvVertexIP_::edgesIndex() const {
    return block(3);
}
const unsigned* _OrvVertexIP_::texturesIndex() const {
    return block(4);
}

void _OrvVertexIP_::setIndex(unsigned long readOnly, unsigned count, const unsigned* points,
                             const unsigned* colors, const unsigned* normals, const unsigned* edges,
                             const unsigned* textures) {
    if (!points) {
        if (count) {
            OrvError("OrvVertex::setIndex: Vertex (point) index is empty.\n");
            return;
        }
        setIndex((OrvShare*)nullptr);
        return;
    }
    // The blocks in the fixed order, with the array each one indexes.
    struct Block {
        const unsigned* values;
        OrvShare* array;
        const char* missing;
        const char* name;
    } blocks[5] = {
        {points, pointShare, nullptr, "point"},
        {colors, sharedColors(), "OrvVertex::setIndex: Need vertex color index.\n", "color"},
        {normals, sharedNormals(), "OrvVertex::setIndex: Need vertex normal index.\n", "normal"},
        {edges, sharedEdges(), "OrvVertex::setIndex: Need vertex edge index.\n", "edge"},
        {textures, sharedTextures(), "OrvVertex::setIndex: Need vertex texture index.\n",
         "texture"},
    };
    unsigned used = 0;
    for (const Block& b : blocks) {
        if (!b.array) continue;
        if (!b.values) {
            OrvError("%s", b.missing);
            return;
        }
        used++;
    }
    unsigned long total = (unsigned long)used * count;
    unsigned* all = new unsigned[total ? total : 1];
    unsigned at = 0;
    for (const Block& b : blocks) {
        if (!b.array) continue;
        memcpy(all + at, b.values, (size_t)count * sizeof(unsigned));
        // Reported once a block; the index is kept, and vertex access
        // checks each value before it reads the array.
        for (unsigned k = 0; k < count; k++)
            if (b.values[k] >= b.array->cardinal) {
                OrvError("OrvVertex::setIndex: Some %s index exceed max. of array.\n", b.name);
                break;
            }
        at += count;
    }
    OrvShare* share = new OrvShare((unsigned)total, all, readOnly, 1);
    setIndex(share);
}

// ---------------------------------------------------------------------------
// Vertex data
// ---------------------------------------------------------------------------

OrvVertexData::OrvVertexData() : vertex(nullptr) {}

OrvVertexData::OrvVertexData(const OrvVertexData& source) : vertex(source.copyVertex()) {}

OrvVertexData::~OrvVertexData() {
    delete vertex;
}

const char* OrvVertexData::className() const {
    return "OrvVertexData";
}

void OrvVertexData::computeBBox() {}

Orv3dVolume OrvVertexData::bbox3d() const {
    Orv3dVolume box;
    if (!vertex) return box;
    // The points as point(i) reads them, the arrays taken once: every face
    // of a mesh asks this when it is made or read.
    unsigned n = vertex->cardinal(), limit = vertex->pointsCardinal();
    bool indexed = vertex->isIndexed() != 0;
    const unsigned* index = indexed ? vertex->pointsIndex() : nullptr;
    const Orv4dPoint* p4 = vertex->points4d();
    const Orv3dPoint* p3 = p4 ? nullptr : vertex->points();
    if (!p4 && !p3) return box;
    bool first = true;
    for (unsigned i = 0; i < n; i++) {
        unsigned k = indexed ? (index ? index[i] : ~0u) : i;
        if (k >= limit) continue;
        Orv3dPoint p = p4 ? p4[k].to3dPoint() : p3[k];
        if (first)
            box = Orv3dVolume(p);
        else
            box.extendBy(p);
        first = false;
    }
    return box;
}

// The place of vertex i in the points array, checked against the array.
static bool pointPlace(const _OrvVertexType_* vertex, unsigned i, unsigned& k) {
    if (!vertex || i >= vertex->cardinal()) return false;
    const unsigned* index = vertex->pointsIndex();
    k = vertex->isIndexed() ? (index ? index[i] : ~0u) : i;
    return k < vertex->pointsCardinal();
}

unsigned long OrvVertexData::point(unsigned i, Orv3dPoint& result) const {
    unsigned k;
    if (!pointPlace(vertex, i, k)) return 0;
    if (const Orv4dPoint* p4 = vertex->points4d())
        result = p4[k].to3dPoint();
    else if (const Orv3dPoint* p3 = vertex->points())
        result = p3[k];
    else
        return 0;
    return 1;
}

unsigned long OrvVertexData::point(unsigned i, Orv4dPoint& result) const {
    unsigned k;
    if (!pointPlace(vertex, i, k)) return 0;
    if (const Orv4dPoint* p4 = vertex->points4d())
        result = p4[k];
    else if (const Orv3dPoint* p3 = vertex->points())
        result = p3[k].to4dPoint();
    else
        return 0;
    return 1;
}

unsigned long OrvVertexData::point(unsigned i, unsigned& result) const {
    if (!vertex || i >= vertex->cardinal()) return 0;
    if (!vertex->isIndexed()) {
        result = i;
        return 1;
    }
    const unsigned* index = vertex->pointsIndex();
    if (!index) return 0;
    result = index[i];
    return 1;
}

// The layout for a combination: colours 1, normals 2, edges 4, textures 8.
static _OrvVertexType_* makeLayout(bool indexed, OrvShare* p, OrvShare* c, OrvShare* n, OrvShare* e,
                                   OrvShare* t) {
    unsigned mask = (c ? 1 : 0) | (n ? 2 : 0) | (e ? 4 : 0) | (t ? 8 : 0);
    if (!indexed) switch (mask) {
            case 0:
                return new _OrvVertexP_(p);
            case 1:
                return new _OrvVertexPC_(p, c);
            case 2:
                return new _OrvVertexPN_(p, n);
            case 3:
                return new _OrvVertexPCN_(p, c, n);
            case 4:
                return new _OrvVertexPE_(p, e);
            case 5:
                return new _OrvVertexPCE_(p, c, e);
            case 6:
                return new _OrvVertexPNE_(p, n, e);
            case 7:
                return new _OrvVertexPCNE_(p, c, n, e);
            case 8:
                return new _OrvVertexPT_(p, t);
            case 9:
                return new _OrvVertexPCT_(p, c, t);
            case 10:
                return new _OrvVertexPNT_(p, n, t);
            case 11:
                return new _OrvVertexPCNT_(p, c, n, t);
            case 12:
                return new _OrvVertexPET_(p, e, t);
            case 13:
                return new _OrvVertexPCET_(p, c, e, t);
            case 14:
                return new _OrvVertexPNET_(p, n, e, t);
            default:
                return new _OrvVertexPCNET_(p, c, n, e, t);
        }
    switch (mask) {
        case 0:
            return new _OrvVertexIP_(p, nullptr);
        case 1:
            return new _OrvVertexIPC_(p, c, nullptr);
        case 2:
            return new _OrvVertexIPN_(p, n, nullptr);
        case 3:
            return new _OrvVertexIPCN_(p, c, n, nullptr);
        case 4:
            return new _OrvVertexIPE_(p, e, nullptr);
        case 5:
            return new _OrvVertexIPCE_(p, c, e, nullptr);
        case 6:
            return new _OrvVertexIPNE_(p, n, e, nullptr);
        case 7:
            return new _OrvVertexIPCNE_(p, c, n, e, nullptr);
        case 8:
            return new _OrvVertexIPT_(p, t, nullptr);
        case 9:
            return new _OrvVertexIPCT_(p, c, t, nullptr);
        case 10:
            return new _OrvVertexIPNT_(p, n, t, nullptr);
        case 11:
            return new _OrvVertexIPCNT_(p, c, n, t, nullptr);
        case 12:
            return new _OrvVertexIPET_(p, e, t, nullptr);
        case 13:
            return new _OrvVertexIPCET_(p, c, e, t, nullptr);
        case 14:
            return new _OrvVertexIPNET_(p, n, e, t, nullptr);
        default:
            return new _OrvVertexIPCNET_(p, c, n, e, t, nullptr);
    }
}

// Points of either kind, and each other share of its own kind or absent.
static bool goodShares(OrvShare* p, OrvShare* c, OrvShare* n, OrvShare* t, OrvShare* e) {
    if (!p || (p->kind != OrvShare3dPoints && p->kind != OrvShare4dPoints)) return false;
    return (!c || c->kind == OrvShareColors) && (!n || n->kind == OrvShareNormals) &&
           (!t || t->kind == OrvShareTextures) && (!e || e->kind == OrvShareEdges);
}

void OrvVertexData::createNonIndexedVertex(OrvShare* points, OrvShare* colors, OrvShare* normals,
                                           OrvShare* textures, OrvShare* edges) {
    if (!goodShares(points, colors, normals, textures, edges)) {
        OrvError("OrvVertexData::OrvVertexData : Bad arguments.\n");
        return;
    }
    // The new layout locks first, so that shares kept from the old one live on.
    _OrvVertexType_* made = makeLayout(false, points, colors, normals, edges, textures);
    delete vertex;
    vertex = made;
}

void OrvVertexData::createIndexedVertex(OrvShare* points, OrvShare* colors, OrvShare* normals,
                                        OrvShare* textures, OrvShare* edges) {
    if (!goodShares(points, colors, normals, textures, edges)) {
        OrvError("OrvVertexData::OrvVertexData : Bad arguments (I).\n");
        return;
    }
    _OrvVertexType_* made = makeLayout(true, points, colors, normals, edges, textures);
    delete vertex;
    vertex = made;
}

void OrvVertexData::setVertexIndex(unsigned long readOnly, unsigned count, const unsigned* points,
                                   const unsigned* colors, const unsigned* normals,
                                   const unsigned* edges, const unsigned* textures) {
    if (!vertex || !vertex->isIndexed()) {
        OrvError("OrvVertexData::setVertexIndex : Not indexed.\n");
        return;
    }
    ((_OrvVertexIP_*)vertex)->setIndex(readOnly, count, points, colors, normals, edges, textures);
    computeBBox();
}

void OrvVertexData::setVertexIndex(OrvShare* index) {
    if (!vertex || !vertex->isIndexed()) {
        OrvError("OrvVertexData::setVertexIndex : Not indexed.\n");
        return;
    }
    vertex->setIndex(index);
    computeBBox();
}

void OrvVertexData::cleanIndex() {
    if (!vertex || !vertex->isIndexed()) {
        OrvError("OrvVertexData::cleanIndex : Not indexed.\n");
        return;
    }
    vertex->setIndex((OrvShare*)nullptr);
    computeBBox();
}

unsigned long OrvVertexData::checkValidity() const {
    if (!vertex) return 0;
    if (!vertex->isIndexed()) return 1;
    return vertex->index() != nullptr;
}

unsigned long OrvVertexData::checkIndex() const {
    if (!checkValidity()) return 0;
    unsigned n = vertex->cardinal();
    struct {
        const unsigned* index;
        OrvShare* array;
    } blocks[5] = {{vertex->pointsIndex(), vertexSharedAnyPoints()},
                   {vertex->colorsIndex(), vertex->sharedColors()},
                   {vertex->normalsIndex(), vertex->sharedNormals()},
                   {vertex->edgesIndex(), vertex->sharedEdges()},
                   {vertex->texturesIndex(), vertex->sharedTextures()}};
    for (const auto& b : blocks) {
        if (!b.array) continue;
        if (!vertex->isIndexed()) {
            // Parallel arrays: each must reach as far as the points.
            if (b.array->cardinal < n) return 0;
            continue;
        }
        for (unsigned k = 0; k < n; k++)
            if (b.index[k] >= b.array->cardinal) return 0;
    }
    return 1;
}

void OrvVertexData::print() const {
    OrvPrint(" Begin OrvVertexData :\n");
    if (vertex) {
        OrvPrint("  Vertex configuration :\n");
        OrvPrint("%s", vertex->isIndexed() ? " indexed " : " non indexed ");
        char letters[8] = "P";
        if (vertex->sharedColors()) strcat(letters, "C");
        if (vertex->sharedNormals()) strcat(letters, "N");
        if (vertex->sharedEdges()) strcat(letters, "E");
        if (vertex->sharedTextures()) strcat(letters, "T");
        OrvPrint("     %s : \n", letters);
        const char* yes = " True";
        const char* no = " False";
        OrvPrint("       - color   : %s\n", vertex->sharedColors() ? yes : no);
        OrvPrint("       - normal  : %s\n", vertex->sharedNormals() ? yes : no);
        OrvPrint("       - edge    : %s\n", vertex->sharedEdges() ? yes : no);
        OrvPrint("       - texture : %s\n\n", vertex->sharedTextures() ? yes : no);
        struct {
            const char* name;
            OrvShare* share;
        } arrays[] = {{"points", vertex->sharedPoints()}, {"points4d", vertex->sharedPoints4d()},
                      {"colors", vertex->sharedColors()}, {"normals", vertex->sharedNormals()},
                      {"edges", vertex->sharedEdges()},   {"textures", vertex->sharedTextures()},
                      {"index", vertex->sharedIndex()}};
        for (const auto& a : arrays)
            if (a.share) OrvPrint("    --> %s (count = %d) : \n", a.name, (int)a.share->cardinal);
    }
    OrvPrint(" End OrvVertexData.\n");
}
