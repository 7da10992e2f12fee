#include "orv/base.h"
#include "orv/base/scratch.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// The growth rule shared by points, indices and floats: first n + 2, then
// doubling while below n. `call` returns the buffer for n elements.
template <typename Call>
void checkDoublingBelowN(OrvScratchKind kind, Call call) {
    unsigned start = OrvScratchCapacity(kind);
    int32_t* data = (int32_t*)call(5);
    ASSERT_NE(data, nullptr);
    if (start == 0) {
        EXPECT_EQ(OrvScratchCapacity(kind), 7u);  // first size n + 2
    }
    unsigned cap = OrvScratchCapacity(kind);
    ASSERT_GE(cap, 5u);
    // Fill the whole capacity (as 32-bit words; points hold two).
    unsigned words = cap * (kind <= OrvScratchLinkPoints ? 2 : 1);
    for (unsigned i = 0; i < words; i++) data[i] = (int32_t)(i * 7 + 1);
    // Asking for no more than the capacity changes nothing.
    EXPECT_EQ((int32_t*)call(cap), data);
    EXPECT_EQ(OrvScratchCapacity(kind), cap);
    EXPECT_EQ((int32_t*)call(1), data);
    // One more: doubled once. Far more: doubled until it holds n.
    data = (int32_t*)call(cap + 1);
    EXPECT_EQ(OrvScratchCapacity(kind), 2 * cap);
    data = (int32_t*)call(8 * cap);
    EXPECT_EQ(OrvScratchCapacity(kind), 8 * cap);  // reaching n exactly is enough
    data = (int32_t*)call(8 * cap + 1);
    EXPECT_EQ(OrvScratchCapacity(kind), 16 * cap);
    for (unsigned i = 0; i < words; i++)
        ASSERT_EQ(data[i], (int32_t)(i * 7 + 1)) << "content lost at word " << i;
    // The whole new capacity is usable (checked by the sanitizers).
    unsigned all = OrvScratchCapacity(kind) * (kind <= OrvScratchLinkPoints ? 2 : 1);
    data[all - 1] = 42;
}

unsigned char byteAt(const char* data, int i) {
    return (unsigned char)data[i];
}

std::string tempDir() {
    char pattern[] = "/tmp/orv-util-XXXXXX";
    const char* dir = mkdtemp(pattern);
    return dir ? dir : "";
}

}  // namespace

TEST(OrvScratch, PointsIndexFloatGrowByDoubling) {
    checkDoublingBelowN(OrvScratchPoints, [](unsigned n) { return (void*)OrvAllocPoints(n); });
    checkDoublingBelowN(OrvScratchLinkPoints,
                        [](unsigned n) { return (void*)OrvAllocLinkPoints(n); });
    checkDoublingBelowN(OrvScratchIndex, [](unsigned n) { return (void*)OrvAllocIndex(n); });
    checkDoublingBelowN(OrvScratchFloat, [](unsigned n) { return (void*)OrvAllocFloat(n); });
}

TEST(OrvScratch, EachAllocatorHasOneBufferOfItsOwn) {
    Orv2dPoint* a = OrvAllocPoints(10);
    EXPECT_EQ(OrvAllocPoints(3), a);
    EXPECT_NE((void*)a, (void*)OrvAllocLinkPoints(10));
    EXPECT_NE((void*)OrvAllocIndex(3), (void*)OrvAllocFloat(3));
}

TEST(OrvScratch, InternalPointersGrowPastN) {
    OrvScratchKind kind = OrvScratchInternalPointers;
    unsigned start = OrvScratchCapacity(kind);
    void** data = OrvAllocInternalPointers(5);
    ASSERT_NE(data, nullptr);
    if (start == 0) {
        EXPECT_EQ(OrvScratchCapacity(kind), 6u);  // first size n + 1
    }
    unsigned cap = OrvScratchCapacity(kind);
    for (unsigned i = 0; i < cap; i++) data[i] = (void*)(uintptr_t)(i + 100);
    // A capacity equal to n is enough.
    EXPECT_EQ(OrvAllocInternalPointers(cap), data);
    EXPECT_EQ(OrvScratchCapacity(kind), cap);
    // Below n it doubles while at most n: to 2n when doubling lands on n.
    data = OrvAllocInternalPointers(2 * cap);
    EXPECT_EQ(OrvScratchCapacity(kind), 4 * cap);
    data = OrvAllocInternalPointers(4 * cap + 1);
    EXPECT_EQ(OrvScratchCapacity(kind), 8 * cap);
    for (unsigned i = 0; i < cap; i++)
        ASSERT_EQ(data[i], (void*)(uintptr_t)(i + 100)) << "content lost at " << i;
    data[8 * cap - 1] = data;
}

// The 16 rows of two bytes of a pattern, as 16-bit words, low byte first.
std::vector<unsigned> rows(const char* d) {
    std::vector<unsigned> v;
    for (int row = 0; row < 16; row++)
        v.push_back(byteAt(d, 2 * row) | byteAt(d, 2 * row + 1) << 8);
    return v;
}

// Row i of the expected pattern is words[i % n].
std::vector<unsigned> repeat(std::initializer_list<unsigned> words) {
    std::vector<unsigned> v;
    for (int row = 0; row < 16; row++) v.push_back(words.begin()[row % words.size()]);
    return v;
}

TEST(MakeData, TilesAndRowsOfEveryOverload) {
    // A 4 by 4 tile: row A is (0x1234 >> 12 & 15) | (0x1234 & 0xF0) = 0x31, row B 2 | 0x40.
    EXPECT_EQ(rows(MakeData((unsigned short)0x1234)), repeat({0x3131, 0x4242}));
    EXPECT_EQ(rows(MakeData((unsigned short)0xF00F)), repeat({0x0F0F, 0xF0F0}));
    // Two 16-bit rows: the upper loses its top nibble.
    EXPECT_EQ(rows(MakeData(0xABCD1234u)), repeat({0x0BCD, 0x1234}));
    // Eight byte rows, each byte doubled.
    EXPECT_EQ(rows(MakeData(0x01020304u, 0x0506A0FFu)),
              repeat({0x0101, 0x0202, 0x0303, 0x0404, 0x0505, 0x0606, 0xA0A0, 0xFFFF}));
    const char* d = MakeData((unsigned short)0x1122, (unsigned short)0x3344, (unsigned short)0x8001,
                             (unsigned short)0xFFFE);
    EXPECT_EQ(rows(d), repeat({0x1122, 0x3344, 0x8001, 0xFFFE}));
    // Each overload owns its buffer: a call of one does not spoil another.
    const char* tile = MakeData((unsigned short)0x1234);
    const char* pair = MakeData(0u, 0u);
    EXPECT_TRUE(tile != d && pair != d && pair != tile && (const char*)MakeData(0u) != tile);
    EXPECT_EQ(byteAt(d, 2), 0x44);
}

TEST(OrvDiagnostics, PrintErrorAndDate) {
    testing::internal::CaptureStdout();
    OrvPrint("value %d of %s\n", 42, "answer");
    int result = OrvError("## OrvThing::act failed on %s \n", "x");
    OrvPrint("no newline");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "value 42 of answer\n## OrvThing::act failed on x \nno newline");
    EXPECT_EQ(result, 0);
    // The date is ctime's without its newline.
    time_t before = time(nullptr);
    std::string date = OrvDate();
    time_t after = time(nullptr);
    EXPECT_TRUE(date == std::string(ctime(&before), 24) || date == std::string(ctime(&after), 24))
        << date;
}

TEST(OrvFiles, ExistsMeansReadableAndWritableCreates) {
    std::string dir = tempDir();
    ASSERT_FALSE(dir.empty());
    std::string path = dir + "/created";
    struct stat st;
    EXPECT_FALSE(OrvFileExists(path.c_str()));
    testing::internal::CaptureStdout();
    EXPECT_TRUE(OrvIsFileWritable(path.c_str(), 1));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    ASSERT_EQ(stat(path.c_str(), &st), 0);  // an empty file was made
    EXPECT_EQ(st.st_size, 0);
    EXPECT_TRUE(OrvFileExists(path.c_str()));
    // An existing file keeps its content: append mode.
    FILE* f = fopen(path.c_str(), "w");
    fputs("keep", f);
    fclose(f);
    EXPECT_TRUE(OrvIsFileWritable(path.c_str(), 0));
    ASSERT_EQ(stat(path.c_str(), &st), 0);
    EXPECT_EQ(st.st_size, 4);
    chmod(path.c_str(), 0);  // root reads anything
    EXPECT_EQ(OrvFileExists(path.c_str()), access(path.c_str(), R_OK) == 0);
    // Failures report only when asked to.
    std::string bad = dir + "/missing/file";
    testing::internal::CaptureStdout();
    EXPECT_FALSE(OrvIsFileWritable(bad.c_str(), 1));
    EXPECT_FALSE(OrvIsFileWritable(bad.c_str(), 0));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "## Cannot open " + bad + " for writing");
    unlink(path.c_str());
    rmdir(dir.c_str());
}
