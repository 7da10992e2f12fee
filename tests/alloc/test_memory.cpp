#include "orv/base.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace {

// Pools of our own, so that each test sees a fresh chunk. They are kept for
// the life of the process, as the pool never returns its chunks.
// A plain array: it has no destructor, so the pools stay reachable at exit.
OrvMemoryManager* pools[32];
int poolCount = 0;

OrvMemoryManager* freshPool() {
    return pools[poolCount++] = new OrvMemoryManager;
}

bool inChunk(const void* block, const char* start, const char* end) {
    return (const char*)block >= start && (const char*)block < end;
}

}  // namespace

TEST(OrvMemoryManager, OneChunkOf4096SixtyFourPooledSixtyFiveMalloced) {
    OrvMemoryManager* pool = freshPool();
    char* start = pool->location;
    ASSERT_NE(start, nullptr);
    EXPECT_EQ(pool->chunkSize, 4096u);
    EXPECT_EQ(pool->end - start, 4096);
    char* end = pool->end;
    void* a = pool->alloc(64);
    EXPECT_EQ(a, (void*)start);
    EXPECT_EQ(pool->location, start + 64);
    void* b = pool->alloc(65);
    ASSERT_NE(b, nullptr);
    EXPECT_FALSE(inChunk(b, start, end));
    EXPECT_EQ(pool->location, start + 64);  // the chunk is untouched
    pool->release(b, 65);                   // goes to free: the sanitizers check it was malloc's
    pool->release(a, 64);
    EXPECT_EQ(pool->freeList[7], a);
    // Class 7 holds sizes 57 to 64.
    EXPECT_EQ(pool->alloc(57), a);
    for (int i = 0; i < OrvMemoryManager::NumClasses; i++) EXPECT_EQ(pool->freeList[i], nullptr);
    pool->release(a, 57);
}

TEST(OrvMemoryManager, ClassesRoundUpToEight) {
    OrvMemoryManager* pool = freshPool();
    char* cursor = pool->location;
    std::vector<std::pair<void*, unsigned>> blocks;
    for (unsigned size = 1; size <= 64; size++) {
        void* block = pool->alloc(size);
        EXPECT_EQ(block, (void*)cursor) << "size " << size;
        cursor += (size + 7) / 8 * 8;
        blocks.push_back({block, size});
    }
    // Each release lands on the list of its class: 1-8 class 0, ..., 57-64 class 7.
    for (auto& b : blocks) {
        pool->release(b.first, b.second);
        EXPECT_EQ(pool->freeList[(b.second + 7) / 8 - 1], b.first) << "size " << b.second;
    }
    // Free lists are last in, first out, and serve every size of their class.
    EXPECT_EQ(pool->alloc(1), blocks[7].first);  // size 8, released last in class 0
    EXPECT_EQ(pool->alloc(9), blocks[15].first);
    pool->release(blocks[7].first, 8);
    pool->release(blocks[15].first, 16);
    void* head = pool->freeList[0];
    pool->release(nullptr, 8);  // null is ignored
    EXPECT_EQ(pool->freeList[0], head);
}

TEST(OrvMemoryManager, RemainderOfSixteenGoesToClassOne) {
    OrvMemoryManager* pool = freshPool();
    char* start = pool->location;
    std::vector<void*> blocks;
    for (int i = 0; i < 63; i++) blocks.push_back(pool->alloc(64));
    void* last = pool->alloc(48);
    ASSERT_EQ(pool->end - pool->location, 16);
    char* rest = pool->location;

    void* block = pool->alloc(24);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(pool->freeList[1], (void*)rest);
    EXPECT_EQ(*(void**)rest, nullptr);
    EXPECT_EQ(pool->chunkSize, 8192u);
    EXPECT_FALSE(inChunk(block, start, start + 4096));
    EXPECT_EQ(pool->end, (char*)block + 8192);
    // The remainder serves the next request of its class.
    EXPECT_EQ(pool->alloc(16), (void*)rest);
    EXPECT_EQ(pool->alloc(16), (void*)((char*)block + 24));

    for (void* b : blocks) pool->release(b, 64);
    pool->release(last, 48);
    pool->release(rest, 16);
}

TEST(OrvMemoryManager, AssertsOnNullCursorAndMisalignedRemainder) {
    OrvMemoryManager* pool = freshPool();
    // The free list is tried first: a pooled block is served even so.
    void* block = pool->alloc(8);
    pool->release(block, 8);
    char* saved = pool->location;
    pool->location = nullptr;
    EXPECT_EQ(pool->alloc(8), block);
    EXPECT_DEATH(pool->alloc(8), "Assertion `\\(int\\)\\(long\\)location' failed");
    void* big = pool->alloc(100);  // large requests never look at the chunk
    EXPECT_NE(big, nullptr);
    pool->release(big, 100);
    pool->release(block, 8);
    pool->location = saved;
    char* end = pool->end;
    pool->end = pool->location + 12;
    EXPECT_DEATH(pool->alloc(16), "Assertion `!\\(left%ORV_MLK_ALIGNMENT\\)' failed");
    pool->end = end;
}

TEST(OrvMemoryManager, GlobalPoolIsMadeOnce) {
    OrvMemoryManager* pool = OrvGetMemoryManager();
    EXPECT_TRUE(pool && pool == OrvGlobalMemoryManager && OrvGetMemoryManager() == pool);
}
