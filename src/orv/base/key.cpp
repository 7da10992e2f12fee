// Interned keys: one OrvKey per name, found through a process-wide table.
#include "orv/base.h"

#include <cstring>

// 1000 buckets: the byte-sum hash spreads an application's names over a few
// hundred values, so a smaller table would make long buckets.
static OrvStringHashTable* orvKeyTable = nullptr;

static OrvStringHashTable* orvGetKeyTable() {
    if (!orvKeyTable) orvKeyTable = new OrvStringHashTable(1000);
    return orvKeyTable;
}

OrvKey::OrvKey(const char* n) : name(new char[strlen(n) + 1]) {
    strcpy(name, n);
}

OrvKey::~OrvKey() {
    orvGetKeyTable()->remove(name);
    delete[] name;
}

OrvKey* OrvGetKey(const char* name, unsigned long create) {
    if (!name) return nullptr;
    OrvStringHashTable* table = orvGetKeyTable();
    OrvKey* key = (OrvKey*)table->get(name);
    if (key || !create) return key;
    key = new OrvKey(name);
    // Entered under the key's own copy, which lives as long as the key.
    table->put(key->name, key);
    return key;
}
