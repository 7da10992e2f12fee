// Foundation of the library: pooled lists and association lists, hash tables,
// interned keys, the small-block pool, shared scratch arrays and diagnostics.
#ifndef ORV_BASE_H
#define ORV_BASE_H

#include <cstddef>

struct Orv2dPoint;

// ---------------------------------------------------------------------------
// The pool of small blocks
// ---------------------------------------------------------------------------

// Blocks handed out by the pool are multiples of this and aligned to it.
#define ORV_MLK_ALIGNMENT 8

// Size classes of 8, 16, ... 64 bytes, carved from chunks that double in size.
// Requests of 65 bytes and more go to malloc. Memory is never given back to
// the system: freed blocks wait on the free list of their class.
class OrvMemoryManager {
public:
    enum {
        NumClasses = 8,
        MaxPooledSize = 64,
        FirstChunkSize = 4096
    };

    void* freeList[NumClasses];  // heads; a free block holds the next in its first word
    char* location;              // chunk cursor: the next block to carve
    char* end;                   // end of the current chunk
    unsigned chunkSize;          // size of the current chunk

    OrvMemoryManager();
    OrvMemoryManager(const OrvMemoryManager&) = delete;
    OrvMemoryManager& operator=(const OrvMemoryManager&) = delete;

    // Null only when malloc fails. No caller passes 0.
    void* alloc(unsigned size);
    // The size must be the one given to alloc. Null is ignored.
    void release(void* block, unsigned size);
};

extern OrvMemoryManager* OrvGlobalMemoryManager;
OrvMemoryManager* OrvGetMemoryManager();

// Gives a class pool-backed new/delete. The sized delete is what lets the
// pool find the block's class without a header.
struct OrvPooled {
    static void* operator new(std::size_t size) noexcept {
        return OrvGetMemoryManager()->alloc((unsigned)size);
    }
    static void operator delete(void* block, std::size_t size) {
        OrvGetMemoryManager()->release(block, (unsigned)size);
    }
};

// ---------------------------------------------------------------------------
// Lists of untyped pointers
// ---------------------------------------------------------------------------

class OrvLink : public OrvPooled {
public:
    void* value;
    OrvLink* next;

    OrvLink(void* linkValue = nullptr, OrvLink* following = nullptr)
        : value(linkValue), next(following) {}
    OrvLink(const OrvLink&) = delete;
    OrvLink& operator=(const OrvLink&) = delete;
    // Deletes every node that follows, one by one.
    ~OrvLink();

    OrvLink* last();
    // Value at that position, null past the end.
    void* operator[](unsigned index);
    void setValue(unsigned index, void* value);
    unsigned length() const;
    OrvLink* find(const void* value);
    // Removes and deletes the first node holding the value; returns the new head.
    OrvLink* remove(void* value);
};

class OrvList : public OrvPooled {
public:
    OrvLink* first;
    OrvLink* last;

    OrvList() : first(nullptr), last(nullptr) {}
    OrvList(const OrvList&) = delete;
    OrvList& operator=(const OrvList&) = delete;
    ~OrvList();

    OrvLink* insert(void* value);
    OrvLink* append(void* value);
    OrvLink* insert(OrvLink* link);
    OrvLink* append(OrvLink* link);
    int remove(void* value);
    OrvLink* removeLink(void* value);
    void swap(void* a, void* b);
    void push(void* value);
    void pop(void* value);

    unsigned length() const { return first ? first->length() : 0; }
    OrvLink* find(const void* value) const { return first ? first->find(value) : nullptr; }
};

// ---------------------------------------------------------------------------
// Association lists
// ---------------------------------------------------------------------------

class OrvAListItem : public OrvPooled {
public:
    void* key;
    void* value;
    OrvAListItem* next;

    OrvAListItem(const void* itemKey, void* itemValue, OrvAListItem* following = nullptr)
        : key(const_cast<void*>(itemKey)), value(itemValue), next(following) {}
    OrvAListItem(const OrvAListItem&) = delete;
    OrvAListItem& operator=(const OrvAListItem&) = delete;
    // Deletes every item that follows, one by one.
    ~OrvAListItem();

    // The first item from this one on with that key, or null.
    OrvAListItem* find(const void* key);
};

class OrvAList : public OrvPooled {
public:
    OrvAListItem* first;

    OrvAList() : first(nullptr) {}
    OrvAList(const OrvAList&) = delete;
    OrvAList& operator=(const OrvAList&) = delete;
    ~OrvAList();

    void insert(const void* key, void* value);
    void append(const void* key, void* value);
    int replace(const void* key, void* value);
    int remove(const void* key);
    void* get(const void* key);
    int find(const void* key);
    unsigned length() const;
};

// ---------------------------------------------------------------------------
// Hash tables: fixed arrays of lazily made association lists
// ---------------------------------------------------------------------------

// Keyed by the pointer's own value. Equal keys accumulate.
class OrvHashTable {
public:
    unsigned size;       // bucket count, fixed
    unsigned cardinal;   // number of entries
    OrvAList** buckets;  // null until the bucket's first insertion

    explicit OrvHashTable(unsigned bucketCount);
    OrvHashTable(const OrvHashTable&) = delete;
    OrvHashTable& operator=(const OrvHashTable&) = delete;
    ~OrvHashTable();

    int put(void* key, void* value);
    void* get(void* key);
    int remove(void* key);
    void empty();
};

// Keyed by C strings compared with strcmp. The caller keeps the keys alive.
class OrvStringHashTable {
public:
    unsigned size;
    unsigned cardinal;
    OrvAList** buckets;

    explicit OrvStringHashTable(unsigned bucketCount);
    OrvStringHashTable(const OrvStringHashTable&) = delete;
    OrvStringHashTable& operator=(const OrvStringHashTable&) = delete;
    ~OrvStringHashTable();

    // Sum of the bytes: anagrams share a bucket.
    static unsigned makeKey(const char* string);

    int put(const char* key, void* value);
    void* get(const char* key);
    int remove(const char* key);
    // Keeps the historical accounting: the cardinal drops by the entries kept,
    // and a bucket that would become empty is left as it is.
    int remove(const char* key, void* value);
    void empty();
};

// ---------------------------------------------------------------------------
// Interned keys: one object per name, compared by address
// ---------------------------------------------------------------------------

class OrvKey {
public:
    char* name;

    OrvKey(const OrvKey&) = delete;
    OrvKey& operator=(const OrvKey&) = delete;
    // Forgets the name in the key table.
    ~OrvKey();

private:
    explicit OrvKey(const char* name);
    friend OrvKey* OrvGetKey(const char* name, unsigned long create);
};

// The key of that name; an unknown name gives null unless create is set.
OrvKey* OrvGetKey(const char* name, unsigned long create);

// ---------------------------------------------------------------------------
// Scratch arrays: one growing buffer per function, valid until its next call
// ---------------------------------------------------------------------------

Orv2dPoint* OrvAllocPoints(unsigned n);
Orv2dPoint* OrvAllocLinkPoints(unsigned n);
unsigned int* OrvAllocIndex(unsigned n);
float* OrvAllocFloat(unsigned n);
void** OrvAllocInternalPointers(unsigned n);

// 16x16 one-bit patterns (sixteen rows of two bytes) expanded from compact
// tiles, each in a static buffer of its own overload. The name, without the prefix, is kept as
// it is for behaviour compatibility.
char* MakeData(unsigned short tile4x4);
char* MakeData(unsigned int twoRows);
char* MakeData(unsigned int a, unsigned int b);
char* MakeData(unsigned short a, unsigned short b, unsigned short c, unsigned short d);

// ---------------------------------------------------------------------------
// Diagnostics and files
// ---------------------------------------------------------------------------

void OrvPrint(const char* format, ...) __attribute__((format(printf, 1, 2)));
// Prints like OrvPrint and returns 0, so that a caller reports and fails in one step.
int OrvError(const char* format, ...) __attribute__((format(printf, 1, 2)));
// The current time as ctime writes it, without the newline; static buffer.
const char* OrvDate();
int OrvFileExists(const char* path);
// Creates an absent file as a side effect of the test.
int OrvIsFileWritable(const char* path, unsigned long report);

#endif
