#include "orv/base.h"
#include "orv/base/scratch.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
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

TEST(OrvScratch, TwoPointAllocatorsAreDistinct) {
    Orv2dPoint* a = OrvAllocPoints(10);
    Orv2dPoint* b = OrvAllocLinkPoints(10);
    ASSERT_NE(a, nullptr);
    EXPECT_NE((void*)a, (void*)b);
    // The same function hands the same buffer to every caller.
    EXPECT_EQ(OrvAllocPoints(3), a);
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

TEST(MakeData, FourByFourTile) {
    const char* d = MakeData((unsigned short)0x1234);
    // Row A: (0x1234 >> 12 & 15) | (0x1234 & 0xF0) = 0x31; row B: 2 | 0x40 = 0x42.
    for (int row = 0; row < 16; row++) {
        unsigned char expected = row % 2 ? 0x42 : 0x31;
        EXPECT_EQ(byteAt(d, 2 * row), expected) << "row " << row;
        EXPECT_EQ(byteAt(d, 2 * row + 1), expected) << "row " << row;
    }
    d = MakeData((unsigned short)0xF00F);
    EXPECT_EQ(byteAt(d, 0), 0x0F);
    EXPECT_EQ(byteAt(d, 2), 0xF0);
}

TEST(MakeData, TwoSixteenBitRows) {
    const char* d = MakeData(0xABCD1234u);
    for (int row = 0; row < 16; row++) {
        // The upper row loses its top nibble: 0xABCD becomes 0x0BCD.
        unsigned expected = row % 2 ? 0x1234 : 0x0BCD;
        unsigned got = (byteAt(d, 2 * row) << 8) | byteAt(d, 2 * row + 1);
        EXPECT_EQ(got, expected) << "row " << row;
    }
}

TEST(MakeData, EightByteRows) {
    const char* d = MakeData(0x01020304u, 0x0506A0FFu);
    const unsigned char bytes[8] = {0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0xA0, 0xFF};
    for (int row = 0; row < 16; row++) {
        EXPECT_EQ(byteAt(d, 2 * row), bytes[row % 8]) << "row " << row;
        EXPECT_EQ(byteAt(d, 2 * row + 1), bytes[row % 8]) << "row " << row;
    }
}

TEST(MakeData, FourRowsAndSeparateBuffers) {
    const char* d = MakeData((unsigned short)0x1122, (unsigned short)0x3344, (unsigned short)0x8001,
                             (unsigned short)0xFFFE);
    const unsigned rows[4] = {0x1122, 0x3344, 0x8001, 0xFFFE};
    for (int row = 0; row < 16; row++) {
        unsigned got = (byteAt(d, 2 * row) << 8) | byteAt(d, 2 * row + 1);
        EXPECT_EQ(got, rows[row % 4]) << "row " << row;
    }
    // Most significant bit leftmost: the high byte leads the row.
    const char* dark = MakeData((unsigned short)0xFAAA, 0x57D5, 1, 0x8000);
    EXPECT_EQ(byteAt(dark, 0), 0xFA);
    EXPECT_EQ(byteAt(dark, 1), 0xAA);
    EXPECT_EQ(byteAt(dark, 6), 0x80);
    d = MakeData((unsigned short)0x1122, (unsigned short)0x3344, (unsigned short)0x8001,
                 (unsigned short)0xFFFE);
    // Each overload owns its buffer: a call of one does not spoil another.
    const char* tile = MakeData((unsigned short)0x1234);
    const char* pair = MakeData(0u, 0u);
    EXPECT_NE(tile, d);
    EXPECT_NE(pair, d);
    EXPECT_NE(pair, tile);
    EXPECT_NE((const char*)MakeData(0u), tile);
    EXPECT_EQ(byteAt(d, 2), 0x33);
}

TEST(OrvDiagnostics, PrintAndErrorWriteToStdout) {
    testing::internal::CaptureStdout();
    OrvPrint("value %d of %s\n", 42, "answer");
    int result = OrvError("## OrvThing::act failed on %s \n", "x");
    OrvPrint("no newline");
    std::string out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(result, 0);
    EXPECT_EQ(out, "value 42 of answer\n## OrvThing::act failed on x \nno newline");
}

TEST(OrvDiagnostics, DateIsCtimeWithoutNewline) {
    time_t before = time(nullptr);
    std::string date = OrvDate();
    time_t after = time(nullptr);
    ASSERT_EQ(date.size(), 24u);
    EXPECT_TRUE(date == std::string(ctime(&before), 24) || date == std::string(ctime(&after), 24))
        << date;
    EXPECT_EQ(date.find('\n'), std::string::npos);
}

TEST(OrvFiles, ExistsMeansReadable) {
    std::string dir = tempDir();
    ASSERT_FALSE(dir.empty());
    std::string path = dir + "/present";
    FILE* f = fopen(path.c_str(), "w");
    ASSERT_NE(f, nullptr);
    fputs("x", f);
    fclose(f);
    EXPECT_TRUE(OrvFileExists(path.c_str()));
    EXPECT_FALSE(OrvFileExists((dir + "/absent").c_str()));
    chmod(path.c_str(), 0);
    if (geteuid() != 0) {  // root reads anything
        EXPECT_FALSE(OrvFileExists(path.c_str()));
    }
    EXPECT_EQ(OrvFileExists(path.c_str()), access(path.c_str(), R_OK) == 0);
    unlink(path.c_str());
    rmdir(dir.c_str());
}

TEST(OrvFiles, WritableCreatesAndReports) {
    std::string dir = tempDir();
    ASSERT_FALSE(dir.empty());
    std::string path = dir + "/created";
    struct stat st;
    ASSERT_NE(stat(path.c_str(), &st), 0);
    testing::internal::CaptureStdout();
    EXPECT_TRUE(OrvIsFileWritable(path.c_str(), 1));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    // The test created an empty file.
    ASSERT_EQ(stat(path.c_str(), &st), 0);
    EXPECT_EQ(st.st_size, 0);

    // An existing file keeps its content: append mode.
    FILE* f = fopen(path.c_str(), "w");
    fputs("keep", f);
    fclose(f);
    EXPECT_TRUE(OrvIsFileWritable(path.c_str(), 0));
    ASSERT_EQ(stat(path.c_str(), &st), 0);
    EXPECT_EQ(st.st_size, 4);

    std::string bad = dir + "/missing/file";
    testing::internal::CaptureStdout();
    EXPECT_FALSE(OrvIsFileWritable(bad.c_str(), 1));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "## Cannot open " + bad + " for writing");
    testing::internal::CaptureStdout();
    EXPECT_FALSE(OrvIsFileWritable(bad.c_str(), 0));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");

    unlink(path.c_str());
    rmdir(dir.c_str());
}
