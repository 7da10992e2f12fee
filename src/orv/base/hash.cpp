// Hash tables with a fixed number of buckets, each a lazily made OrvAList.
#include "orv/base.h"

#include <cstdint>
#include <cstring>

static OrvAList** orvNewBuckets(unsigned size) {
    OrvAList** buckets = new OrvAList*[size];
    for (unsigned i = 0; i < size; i++) buckets[i] = nullptr;
    return buckets;
}

static void orvDeleteBuckets(OrvAList** buckets, unsigned size) {
    for (unsigned i = 0; i < size; i++) delete buckets[i];
    delete[] buckets;
}

// Destroys the items but keeps the bucket lists for the next insertions.
static void orvEmptyBuckets(OrvAList** buckets, unsigned size) {
    for (unsigned i = 0; i < size; i++) {
        if (!buckets[i]) continue;
        delete buckets[i]->first;
        buckets[i]->first = nullptr;
    }
}

// ---------------------------------------------------------------------------
// OrvHashTable

OrvHashTable::OrvHashTable(unsigned bucketCount)
    : size(bucketCount), cardinal(0), buckets(orvNewBuckets(bucketCount)) {}

OrvHashTable::~OrvHashTable() {
    orvDeleteBuckets(buckets, size);
}

static inline unsigned orvPointerBucket(const void* key, unsigned size) {
    return (unsigned)((uintptr_t)key % size);
}

int OrvHashTable::put(void* key, void* value) {
    OrvAList*& bucket = buckets[orvPointerBucket(key, size)];
    if (!bucket && !(bucket = new OrvAList)) return 0;
    bucket->append(key, value);
    cardinal++;
    return 1;
}

void* OrvHashTable::get(void* key) {
    OrvAList* bucket = buckets[orvPointerBucket(key, size)];
    return bucket ? bucket->get(key) : nullptr;
}

int OrvHashTable::remove(void* key) {
    OrvAList* bucket = buckets[orvPointerBucket(key, size)];
    if (!bucket) return 0;
    unsigned before = bucket->length();
    bucket->remove(key);
    cardinal -= before - bucket->length();
    return 1;
}

void OrvHashTable::empty() {
    orvEmptyBuckets(buckets, size);
    cardinal = 0;
}

// ---------------------------------------------------------------------------
// OrvStringHashTable

OrvStringHashTable::OrvStringHashTable(unsigned bucketCount)
    : size(bucketCount), cardinal(0), buckets(orvNewBuckets(bucketCount)) {}

OrvStringHashTable::~OrvStringHashTable() {
    orvDeleteBuckets(buckets, size);
}

unsigned OrvStringHashTable::makeKey(const char* string) {
    unsigned sum = 0;
    for (const unsigned char* p = (const unsigned char*)string; *p; p++) sum += *p;
    return sum;
}

int OrvStringHashTable::put(const char* key, void* value) {
    OrvAList*& bucket = buckets[makeKey(key) % size];
    if (!bucket && !(bucket = new OrvAList)) return 0;
    for (OrvAListItem* item = bucket->first; item; item = item->next) {
        if (!strcmp((const char*)item->key, key)) {
            item->value = value;
            return 1;
        }
    }
    bucket->append(key, value);
    cardinal++;
    return 1;
}

void* OrvStringHashTable::get(const char* key) {
    OrvAList* bucket = buckets[makeKey(key) % size];
    if (!bucket) return nullptr;
    for (OrvAListItem* item = bucket->first; item; item = item->next)
        if (!strcmp((const char*)item->key, key)) return item->value;
    return nullptr;
}

int OrvStringHashTable::remove(const char* key) {
    OrvAList* bucket = buckets[makeKey(key) % size];
    if (!bucket) return 0;
    // The stored keys may be other pointers than the one given: collect
    // them first, then remove each by its own address.
    OrvList equal;
    for (OrvAListItem* item = bucket->first; item; item = item->next)
        if (!strcmp((const char*)item->key, key)) equal.append(item->key);
    unsigned removed = 0;
    for (OrvLink* l = equal.first; l; l = l->next) {
        bucket->remove(l->value);
        removed++;
    }
    cardinal -= removed;
    return 1;
}

int OrvStringHashTable::remove(const char* key, void* value) {
    OrvAList*& bucket = buckets[makeKey(key) % size];
    if (!bucket) return 0;
    OrvAList* kept = new OrvAList;
    if (!kept) return 0;
    OrvAListItem* tail = nullptr;
    unsigned keptCount = 0;
    for (OrvAListItem* item = bucket->first; item; item = item->next) {
        if (item->value == value && !strcmp((const char*)item->key, key)) continue;
        OrvAListItem* copy = new OrvAListItem(item->key, item->value);
        if (tail)
            tail->next = copy;
        else
            kept->first = copy;
        tail = copy;
        keptCount++;
    }
    if (!keptCount) {
        delete kept;
        return 1;
    }
    delete bucket;
    bucket = kept;
    cardinal -= keptCount;
    return 1;
}

void OrvStringHashTable::empty() {
    orvEmptyBuckets(buckets, size);
    cardinal = 0;
}
