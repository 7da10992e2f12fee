// Regions of rectangles: storage, copying and whole-region transformations.
#include "orv/region.h"

#include <cstring>

Orv2dRegion::Orv2dRegion(short cap) : capacity(cap), count(0), heap(nullptr) {
    if (usesHeap()) heap = new Orv2dRect[capacity];
}

Orv2dRegion::Orv2dRegion(const Orv2dRect& rect, short cap)
    : bbox(rect), capacity(cap), count(1), heap(nullptr) {
    if (usesHeap()) heap = new Orv2dRect[capacity];
    rectangles()[0] = rect;
}

Orv2dRegion::Orv2dRegion(const Orv2dRegion& other)
    : bbox(other.bbox), capacity(other.capacity), count(other.count), heap(nullptr) {
    if (usesHeap()) heap = new Orv2dRect[capacity];
    std::memcpy(rectangles(), other.rectangles(), count * sizeof(Orv2dRect));
}

// The copy is sized to the other's count, not to its capacity.
Orv2dRegion& Orv2dRegion::operator=(const Orv2dRegion& other) {
    if (this == &other) return *this;
    if (usesHeap()) delete[] heap;
    heap = nullptr;
    bbox = other.bbox;
    count = other.count;
    capacity = count <= EmbeddedCount ? (int16_t)EmbeddedCount : (int16_t)count;
    if (usesHeap()) heap = new Orv2dRect[capacity];
    std::memcpy(rectangles(), other.rectangles(), count * sizeof(Orv2dRect));
    return *this;
}

// Exactly one more slot; from 25 to 26 the members move to the heap and the
// embedded array is left behind.
Orv2dRect* Orv2dRegion::growByOne() {
    int16_t next = (int16_t)(capacity + 1);
    if (next > EmbeddedCount) {
        Orv2dRect* grown = new Orv2dRect[next];
        std::memcpy(grown, rectangles(), count * sizeof(Orv2dRect));
        if (usesHeap()) delete[] heap;
        heap = grown;
    }
    capacity = next;
    return rectangles();
}

void Orv2dRegion::intersection(const Orv2dRect& rect) {
    Orv2dRect* r = rectangles();
    for (unsigned i = 0; i < count; i++) r[i].intersection(rect);
    bbox.intersection(rect);
}

void Orv2dRegion::apply(const Orv2dMatrix& m) {
    Orv2dRect* r = rectangles();
    for (unsigned i = 0; i < count; i++) m.apply(r[i]);
    m.apply(bbox);
}

void Orv2dRegion::inverse(const Orv2dMatrix& m) {
    Orv2dRect* r = rectangles();
    for (unsigned i = 0; i < count; i++) m.inverse(r[i]);
    m.inverse(bbox);
}

void Orv2dRegion::translate(const long dx, const long dy) {
    Orv2dRect* r = rectangles();
    for (unsigned i = 0; i < count; i++) {
        r[i].x = (int32_t)(r[i].x + dx);
        r[i].y = (int32_t)(r[i].y + dy);
    }
    bbox.x = (int32_t)(bbox.x + dx);
    bbox.y = (int32_t)(bbox.y + dy);
}

void Orv2dRegion::grow(const long dw, const long dh) {
    Orv2dRect* r = rectangles();
    for (unsigned i = 0; i < count; i++) {
        r[i].w = (uint32_t)(r[i].w + dw);
        r[i].h = (uint32_t)(r[i].h + dh);
    }
    bbox.w = (uint32_t)(bbox.w + dw);
    bbox.h = (uint32_t)(bbox.h + dh);
}
