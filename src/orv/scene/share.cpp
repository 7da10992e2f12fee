// Colour values and the counted shares of vertex arrays, with the test that
// warns when two shares claim the same bytes.
#include "orv/vertex.h"
#include "orv/region.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <unordered_map>
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
// they also sit where the ones that meet a new range are found at once: the
// small ranges (most are: the index arrays of faces) by the 256-byte grain
// their first byte lies in, in tables of a megabyte of addresses, which
// shares made one after the other fill side by side; the large ones in a map
// ordered by address. The serial puts the warnings back in list order.
namespace {
const unsigned grainShift = 8;
const uintptr_t smallBytes = (uintptr_t)1 << grainShift;  // a small range has at most these
const unsigned regionShift = 20;
const uintptr_t grainsPerRegion = (uintptr_t)1 << (regionShift - grainShift);
const uint32_t none = ~0u;

struct Range {
    OrvShare* share;
    uintptr_t start, end;  // first and last byte
    unsigned long serial;
    uint32_t next;  // the next small range of the same grain
};

struct Region {
    uint32_t head[grainsPerRegion];
    unsigned used = 0;
    Region() {
        for (uint32_t& h : head) h = none;
    }
};

struct Kind {
    std::map<uintptr_t, Range> large;
    std::unordered_map<uintptr_t, Region*> regions;
    // The region asked last: shares made one after the other ask the same.
    uintptr_t lastNumber = ~(uintptr_t)0;
    Region* last = nullptr;
};

struct Ranges {
    Kind kinds[7];
    std::vector<Range> small;  // the small ranges' nodes, and the free ones
    std::vector<uint32_t> freed;
    unsigned long serial = 0;

    // The chain of a grain; null when its region has none and make is false.
    uint32_t* head(Kind& kind, uintptr_t grain, bool make, Region** region = nullptr) {
        uintptr_t number = grain / grainsPerRegion;
        if (number != kind.lastNumber) {
            auto i = kind.regions.find(number);
            if (i == kind.regions.end()) {
                if (!make) return nullptr;
                i = kind.regions.emplace(number, new Region).first;
            }
            kind.lastNumber = number;
            kind.last = i->second;
        }
        if (region) *region = kind.last;
        return &kind.last->head[grain % grainsPerRegion];
    }
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
    Kind& mine = all.kinds[kind];
    uintptr_t start = (uintptr_t)data;
    uintptr_t bytes = (uintptr_t)cardinal * elementSize(kind);
    uintptr_t end = start + (bytes ? bytes - 1 : 0);
    std::vector<std::pair<unsigned long, OrvShare*>> met;  // serial, share
    // Large ranges are disjoint, so those that meet [start, end] are the
    // run that ends with the last one starting at or before end.
    for (auto i = mine.large.upper_bound(end); i != mine.large.begin();) {
        --i;
        if (i->second.end < start) break;
        met.emplace_back(i->second.serial, i->second.share);
    }
    // A small range that meets [start, end] starts in it or less than a
    // grain before it. Regions without ranges are passed over whole.
    uintptr_t last = end >> grainShift;
    for (uintptr_t g = (start < smallBytes ? 0 : start - (smallBytes - 1)) >> grainShift;
         g <= last;) {
        const uint32_t* h = all.head(mine, g, false);
        if (!h) {
            g = (g / grainsPerRegion + 1) * grainsPerRegion;
            continue;
        }
        for (uint32_t n = *h; n != none; n = all.small[n].next) {
            const Range& r = all.small[n];
            if (r.start <= end && r.end >= start) met.emplace_back(r.serial, r.share);
        }
        g++;
    }
    if (!met.empty()) {
        std::sort(met.begin(), met.end());
        for (const auto& other : met) {
            if (isOwned() || other.second->isOwned())
                OrvPrint("# OrvShare warning : Two shared objects defined with the same data "
                         "array (1).\n");
            else if (!(isReadOnly() && other.second->isReadOnly()))
                OrvPrint("# OrvShare warning : Two shared objects defined with the same data "
                         "array (2).\n");
        }
        return 0;
    }
    if (!sharedData) sharedData = new OrvList;
    before = sharedData->last;
    listed = true;
    sharedData->append(this);
    Range entry{this, start, end, ++all.serial, none};
    if (end - start >= smallBytes) {
        mine.large[start] = entry;
        return 1;
    }
    uint32_t place;
    if (!all.freed.empty()) {
        place = all.freed.back();
        all.freed.pop_back();
    } else {
        place = (uint32_t)all.small.size();
        all.small.emplace_back();
    }
    Region* region;
    uint32_t* h = all.head(mine, start >> grainShift, true, &region);
    entry.next = *h;
    all.small[place] = entry;
    *h = place;
    region->used++;
    return 1;
}

// Takes the share out of sharedData and of the ranges, if it is there.
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
    Ranges& all = ranges();
    Kind& mine = all.kinds[share->kind];
    uintptr_t start = (uintptr_t)share->data;
    Region* region = nullptr;
    uint32_t* h = all.head(mine, start >> grainShift, false, &region);
    for (uint32_t* at = h; at && *at != none; at = &all.small[*at].next) {
        if (all.small[*at].share != share) continue;
        uint32_t place = *at;
        *at = all.small[place].next;
        all.freed.push_back(place);
        if (--region->used == 0) {
            mine.regions.erase(start >> regionShift);
            if (mine.last == region) mine.lastNumber = ~(uintptr_t)0;
            delete region;
        }
        return;
    }
    mine.large.erase(start);
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
