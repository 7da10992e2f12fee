// The small-block pool behind lists, association lists and their nodes.
#include "orv/base.h"

#include <cstdio>
#include <cstdlib>

// Checked in every build type: a pool that carves from nowhere or from a
// misaligned remainder would hand out corrupt memory silently.
#define ORV_MLK_ASSERT(expr)                                                                       \
    ((expr) ? (void)0 : orvMlkAssertFailed(#expr, __FILE__, __LINE__, __func__))

static void orvMlkAssertFailed(const char* expr, const char* file, int line, const char* function) {
    fflush(stdout);
    fprintf(stderr, "%s:%d: %s: Assertion `%s' failed.\n", file, line, function, expr);
    abort();
}

OrvMemoryManager* OrvGlobalMemoryManager = nullptr;

OrvMemoryManager* OrvGetMemoryManager() {
    if (!OrvGlobalMemoryManager) OrvGlobalMemoryManager = new OrvMemoryManager;
    return OrvGlobalMemoryManager;
}

OrvMemoryManager::OrvMemoryManager() : location(nullptr), end(nullptr), chunkSize(FirstChunkSize) {
    for (int i = 0; i < NumClasses; i++) freeList[i] = nullptr;
    location = (char*)malloc(chunkSize);
    end = location ? location + chunkSize : nullptr;
}

static inline int orvMlkClass(unsigned size) {
    return (int)((size + ORV_MLK_ALIGNMENT - 1) / ORV_MLK_ALIGNMENT) - 1;
}

void* OrvMemoryManager::alloc(unsigned size) {
    if (size > MaxPooledSize) return malloc(size);
    int index = orvMlkClass(size);
    if (freeList[index]) {
        void* block = freeList[index];
        freeList[index] = *(void**)block;
        return block;
    }
    unsigned rounded = (unsigned)(index + 1) * ORV_MLK_ALIGNMENT;
    ORV_MLK_ASSERT((int)(long)location);
    if (location + rounded <= end) {
        void* block = location;
        location += rounded;
        return block;
    }
    // The rest of the chunk is too small: keep it as a free block of its own
    // class, then start a chunk twice as large.
    unsigned left = (unsigned)(end - location);
    // The assertion prints this expression as written, so its spacing is part of the message.
    // clang-format off
    ORV_MLK_ASSERT(!(left%ORV_MLK_ALIGNMENT));
    // clang-format on
    if (left) {
        void** rest = (void**)location;
        int restIndex = orvMlkClass(left);
        *rest = freeList[restIndex];
        freeList[restIndex] = rest;
    }
    chunkSize *= 2;
    location = (char*)malloc(chunkSize);
    if (!location) {
        end = nullptr;
        return nullptr;
    }
    end = location + chunkSize;
    void* block = location;
    location += rounded;
    return block;
}

void OrvMemoryManager::release(void* block, unsigned size) {
    if (!block) return;
    if (size > MaxPooledSize) {
        free(block);
        return;
    }
    int index = orvMlkClass(size);
    *(void**)block = freeList[index];
    freeList[index] = block;
}
