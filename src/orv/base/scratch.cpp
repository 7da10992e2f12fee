// Shared growing arrays and the expansion of compact pattern tiles.
#include "orv/base.h"
#include "orv/base/scratch.h"

#include <cstdlib>
#include <cstring>

namespace {

// One buffer per allocator; callers share it until the next call.
struct _OrvScratch_ {
    void* data;
    unsigned capacity;
};

_OrvScratch_ orvScratch[OrvScratchInternalPointers + 1];

// Points are two signed 32-bit coordinates.
const size_t orvPointSize = 8;

// First size n + 2, then doubling until the capacity reaches n.
void* orvScratchGrow(_OrvScratch_& s, unsigned n, size_t elementSize) {
    if (!s.data) {
        void* data = malloc((size_t)(n + 2) * elementSize);
        if (!data) return nullptr;
        s.data = data;
        s.capacity = n + 2;
        return s.data;
    }
    if (s.capacity >= n) return s.data;
    unsigned capacity = s.capacity;
    while (capacity < n) capacity *= 2;
    void* data = realloc(s.data, (size_t)capacity * elementSize);
    if (!data) return nullptr;
    s.data = data;
    s.capacity = capacity;
    return s.data;
}

}  // namespace

unsigned OrvScratchCapacity(OrvScratchKind kind) {
    return orvScratch[kind].capacity;
}

Orv2dPoint* OrvAllocPoints(unsigned n) {
    return (Orv2dPoint*)orvScratchGrow(orvScratch[OrvScratchPoints], n, orvPointSize);
}

Orv2dPoint* OrvAllocLinkPoints(unsigned n) {
    return (Orv2dPoint*)orvScratchGrow(orvScratch[OrvScratchLinkPoints], n, orvPointSize);
}

unsigned int* OrvAllocIndex(unsigned n) {
    return (unsigned int*)orvScratchGrow(orvScratch[OrvScratchIndex], n, sizeof(unsigned int));
}

float* OrvAllocFloat(unsigned n) {
    return (float*)orvScratchGrow(orvScratch[OrvScratchFloat], n, sizeof(float));
}

// Unlike the others: first size n + 1, and once growing it doubles past n.
void** OrvAllocInternalPointers(unsigned n) {
    _OrvScratch_& s = orvScratch[OrvScratchInternalPointers];
    if (!s.data) {
        void* data = malloc((size_t)(n + 1) * sizeof(void*));
        if (!data) return nullptr;
        s.data = data;
        s.capacity = n + 1;
        return (void**)s.data;
    }
    if (s.capacity < n) {
        unsigned capacity = s.capacity;
        while (capacity <= n) capacity *= 2;
        void* data = realloc(s.data, (size_t)capacity * sizeof(void*));
        if (!data) return nullptr;
        s.data = data;
        s.capacity = capacity;
    }
    return (void**)s.data;
}

// ---------------------------------------------------------------------------
// Pattern tiles. A row is two bytes, the first holding the left eight pixels;
// a sixteen-bit row value puts its low byte first.

// A sixteen-bit row, most significant bit leftmost: the high byte comes first.
static void orvPutRow(char* data, int row, unsigned bits) {
    data[2 * row] = (char)((bits >> 8) & 0xFF);
    data[2 * row + 1] = (char)(bits & 0xFF);
}

char* MakeData(unsigned short v) {
    static char data[32];
    unsigned a = ((v >> 12) & 15) | (v & 0xF0);
    unsigned b = ((v >> 8) & 15) | ((v & 15) << 4);
    for (int row = 0; row < 16; row++) {
        unsigned byte = row % 2 ? b : a;
        orvPutRow(data, row, byte | (byte << 8));
    }
    return data;
}

char* MakeData(unsigned int v) {
    static char data[32];
    // The mask drops the top nibble of the upper row; patterns are defined so.
    unsigned a = (v & 0x0FFFF000) >> 16;
    unsigned b = v & 0xFFFF;
    for (int row = 0; row < 16; row++) orvPutRow(data, row, row % 2 ? b : a);
    return data;
}

char* MakeData(unsigned int a, unsigned int b) {
    static char data[32];
    unsigned bytes[8] = {(a >> 24) & 0xFF, (a >> 16) & 0xFF, (a >> 8) & 0xFF, a & 0xFF,
                         (b >> 24) & 0xFF, (b >> 16) & 0xFF, (b >> 8) & 0xFF, b & 0xFF};
    for (int row = 0; row < 16; row++) {
        unsigned byte = bytes[row % 8];
        orvPutRow(data, row, byte | (byte << 8));
    }
    return data;
}

char* MakeData(unsigned short a, unsigned short b, unsigned short c, unsigned short d) {
    static char data[32];
    unsigned rows[4] = {a, b, c, d};
    for (int row = 0; row < 16; row++) orvPutRow(data, row, rows[row % 4]);
    return data;
}
