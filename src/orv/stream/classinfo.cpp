// The class registry: one record per actor class, found by name.
#include <cstdlib>
#include <cstring>

#include "orv/classinfo.h"

#include "actor_calls.h"

unsigned OrvClassInfo::_counter = 0;

_OrvActorCalls_ OrvActorCalls = {};

static OrvStringHashTable* _types = nullptr;

static char* copyName(const char* s) {
    size_t n = strlen(s) + 1;
    char* copy = (char*)malloc(n);
    memcpy(copy, s, n);
    return copy;
}

OrvClassInfo::OrvClassInfo(const char* className, const char* parentClassName,
                           OrvReadFunction reader)
    : name(copyName(className)),
      // A parent name of fewer than 3 characters ("" for one) means none, so
      // that isSubtypeOf stops at this class.
      parentName(parentClassName && strlen(parentClassName) >= 3 ? copyName(parentClassName)
                                                                 : nullptr),
      readFunction(reader), index(_counter++) {}

OrvClassInfo::~OrvClassInfo() {
    free(name);
    free(parentName);
}

OrvClassInfo* OrvInsertNewType(const char* name, OrvClassInfo* info) {
    if (!_types) _types = new OrvStringHashTable(1000);
    // The table keeps the key pointer: the record's own copy lives as long.
    _types->put(info && info->name && strcmp(info->name, name) == 0 ? info->name : name, info);
    return info;
}

OrvClassInfo* OrvGetClassInfo(const char* name) {
    if (!_types || !name) return nullptr;
    return (OrvClassInfo*)_types->get(name);
}

OrvStringHashTable* OrvGetHashTypes() {
    return _types;
}
