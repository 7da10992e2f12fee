// The class registry: one record per persistent class, found by the name that
// a stream gives. The reader makes an object through its class's record.
#ifndef ORV_CLASSINFO_H
#define ORV_CLASSINFO_H

#include "orv/base.h"

class OrvActor;
class OrvIStream;

// Makes an actor of a class from the stream that names it.
typedef OrvActor* (*OrvReadFunction)(OrvIStream&);

// The run-time record of one class: its name, its parent's name and its reader.
class OrvClassInfo {
public:
    char* name;        // owned copy
    char* parentName;  // owned copy, null when shorter than 3 characters
    OrvReadFunction readFunction;
    unsigned index;  // serial number, in order of creation

    OrvClassInfo(const char* className, const char* parentClassName, OrvReadFunction reader);
    OrvClassInfo(const OrvClassInfo&) = delete;
    OrvClassInfo& operator=(const OrvClassInfo&) = delete;
    ~OrvClassInfo();

    // How many records have been made so far.
    static unsigned _counter;
};

// Enters the record under the name (the table of 1000 buckets is made on first
// use) and returns it.
OrvClassInfo* OrvInsertNewType(const char* name, OrvClassInfo* info);
// The record of that name, or null.
OrvClassInfo* OrvGetClassInfo(const char* name);
// The table itself, null before the first class is registered.
OrvStringHashTable* OrvGetHashTypes();

#endif
