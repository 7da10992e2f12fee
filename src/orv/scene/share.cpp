// Colour values and the counted shares of vertex arrays, with the test that
// warns when two shares claim the same bytes.
#include "orv/vertex.h"
#include "orv/region.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <vector>

void OrvRGB::setHSV(float h, float s, float v) {
    OrvHSVToRGB(h, s, v, red, green, blue);
}

void OrvRGB::getHSV(float& h, float& s, float& v) const {
    OrvRGBToHSV(red, green, blue, h, s, v);
}

void OrvRGB::setHLS(float h, float l, float s) {
    OrvHLSToRGB(h, l, s, red, green, blue);
}

void OrvRGB::getHLS(float& h, float& l, float& s) const {
    OrvRGBToHLS(red, green, blue, h, l, s);
}

void OrvRGB::print() const {
    OrvPrint("<%f, %f, %f>\n", red, green, blue);
}

// ---------------------------------------------------------------------------
// The overlap test
// ---------------------------------------------------------------------------

OrvList* OrvShare::sharedData = nullptr;

// The list is walked in full by the definition of the test, which makes the
// making of many shares quadratic. The shares in the list never overlap one
// another (only a share that overlapped nothing enters), so for each kind
// they also sit in a map ordered by address, where the ones that meet a new
// range are found at once; the serial puts the warnings back in list order.
namespace {
struct Range {
    OrvShare* share;
    uintptr_t end;  // last byte
    unsigned long serial;
};
struct Ranges {
    std::map<uintptr_t, Range> byStart[7];
    unsigned long serial = 0;
};
}  // namespace

static Ranges& ranges() {
    static Ranges* r = new Ranges;  // outlives every share, even static ones
    return *r;
}

unsigned OrvShare::elementSize(int k) {
    switch (k) {
        case OrvShare3dPoints:
            return sizeof(Orv3dPoint);
        case OrvShare4dPoints:
            return sizeof(Orv4dPoint);
        case OrvShareColors:
            return sizeof(OrvRGB);
        case OrvShareNormals:
            return sizeof(Orv3dVector);
        case OrvShareEdges:
            return sizeof(OrvEdge);
        case OrvShareTextures:
            return sizeof(OrvTextureUV);
        case OrvShareIndex:
            return sizeof(unsigned);
    }
    return 0;
}

unsigned long OrvShare::check() {
    if (!data || kind < 0 || kind > OrvShareIndex) return 0;
    if (listed) return 1;
    Ranges& all = ranges();
    uintptr_t start = (uintptr_t)data;
    uintptr_t bytes = (uintptr_t)cardinal * elementSize(kind);
    uintptr_t end = start + (bytes ? bytes - 1 : 0);
    std::map<uintptr_t, Range>& map = all.byStart[kind];
    // Listed ranges are disjoint, so those that meet [start, end] are the run
    // that ends with the last one starting at or before end.
    std::vector<const Range*> met;
    for (auto i = map.upper_bound(end); i != map.begin();) {
        --i;
        if (i->second.end < start) break;
        met.push_back(&i->second);
    }
    if (!met.empty()) {
        std::sort(met.begin(), met.end(),
                  [](const Range* a, const Range* b) { return a->serial < b->serial; });
        for (const Range* other : met) {
            if (isOwned() || other->share->isOwned())
                OrvPrint("# OrvShare warning : Two shared objects defined with the same data "
                         "array (1).\n");
            else if (!(isReadOnly() && other->share->isReadOnly()))
                OrvPrint("# OrvShare warning : Two shared objects defined with the same data "
                         "array (2).\n");
        }
        return 0;
    }
    if (!sharedData) sharedData = new OrvList;
    before = sharedData->last;
    listed = true;
    sharedData->append(this);
    map[start] = Range{this, end, ++all.serial};
    return 1;
}

// Takes the share out of sharedData and of the map, if it is there.
void _OrvForgetShare_(OrvShare* share) {
    if (!share->listed) return;
    share->listed = false;
    OrvList* list = OrvShare::sharedData;
    OrvLink* before = share->before;
    OrvLink* link = before ? before->next : list->first;
    if (!link || link->value != share) {
        // The list was changed from outside: fall back on a search.
        list->remove(share);
    } else {
        OrvLink* after = link->next;
        if (before)
            before->next = after;
        else
            list->first = after;
        if (list->last == link) list->last = before;
        if (after) ((OrvShare*)after->value)->before = before;
        link->next = nullptr;
        delete link;
    }
    ranges().byStart[share->kind].erase((uintptr_t)share->data);
}

// ---------------------------------------------------------------------------
// Shares
// ---------------------------------------------------------------------------

void OrvShare::init(int k, void* array, unsigned count, unsigned long readOnly,
                    unsigned long owned) {
    listed = false;
    before = nullptr;
    kind = k;
    data = array;
    lockCount = 0;
    flags = 0;
    cardinal = count;
    setFlags(readOnly, owned);
    check();
}

OrvShare::OrvShare(unsigned count, Orv3dPoint* array, unsigned long readOnly, unsigned long owned) {
    init(OrvShare3dPoints, array, count, readOnly, owned);
}
OrvShare::OrvShare(unsigned count, Orv4dPoint* array, unsigned long readOnly, unsigned long owned) {
    init(OrvShare4dPoints, array, count, readOnly, owned);
}
OrvShare::OrvShare(unsigned count, OrvRGB* array, unsigned long readOnly, unsigned long owned) {
    init(OrvShareColors, array, count, readOnly, owned);
}
OrvShare::OrvShare(unsigned count, Orv3dVector* array, unsigned long readOnly,
                   unsigned long owned) {
    init(OrvShareNormals, array, count, readOnly, owned);
}
OrvShare::OrvShare(unsigned count, OrvEdge* array, unsigned long readOnly, unsigned long owned) {
    init(OrvShareEdges, array, count, readOnly, owned);
}
OrvShare::OrvShare(unsigned count, OrvTextureUV* array, unsigned long readOnly,
                   unsigned long owned) {
    init(OrvShareTextures, array, count, readOnly, owned);
}
OrvShare::OrvShare(unsigned count, unsigned* array, unsigned long readOnly, unsigned long owned) {
    init(OrvShareIndex, array, count, readOnly, owned);
}

OrvShare::~OrvShare() {
    _OrvForgetShare_(this);
    if (!isOwned()) return;
    // Freed as the array of its element type that it was made as.
    switch (kind) {
        case OrvShare3dPoints:
            delete[](Orv3dPoint*) data;
            break;
        case OrvShare4dPoints:
            delete[](Orv4dPoint*) data;
            break;
        case OrvShareColors:
            delete[](OrvRGB*) data;
            break;
        case OrvShareNormals:
            delete[](Orv3dVector*) data;
            break;
        case OrvShareEdges:
            delete[](OrvEdge*) data;
            break;
        case OrvShareTextures:
            delete[](OrvTextureUV*) data;
            break;
        case OrvShareIndex:
            delete[](unsigned*) data;
            break;
    }
}

void OrvShare::unLock() {
    if (--lockCount <= 0) delete this;
}

void OrvShare::setFlags(unsigned long readOnly, unsigned long owned) {
    flags = (readOnly ? OrvShareReadOnly : 0) | (owned ? OrvShareOwned : 0);
}
