#include "orv/base.h"
#include "orv/base/scratch.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>
#include <sys/stat.h>
#include <unistd.h>

// The shared growing buffers: one per kind, the same for every caller while a request fits, then a
// larger one that keeps the content. (By how much they grow is the code's business.)
TEST(OrvScratch, BuffersAreSharedGrowAndKeepTheirContent) {
    const struct {
        OrvScratchKind kind;
        std::function<void*(unsigned)> call;
        unsigned bytes;
    } kinds[] = {{OrvScratchPoints, [](unsigned n) { return (void*)OrvAllocPoints(n); }, 8},
                 {OrvScratchLinkPoints, [](unsigned n) { return (void*)OrvAllocLinkPoints(n); }, 8},
                 {OrvScratchIndex, [](unsigned n) { return (void*)OrvAllocIndex(n); }, 4},
                 {OrvScratchFloat, [](unsigned n) { return (void*)OrvAllocFloat(n); }, 4},
                 {OrvScratchInternalPointers,
                  [](unsigned n) { return (void*)OrvAllocInternalPointers(n); }, sizeof(void*)}};
    for (const auto& k : kinds) {
        char* data = (char*)k.call(5);
        unsigned cap = OrvScratchCapacity(k.kind);
        ASSERT_GE(cap, 5u) << k.kind;
        for (unsigned i = 0; i < cap * k.bytes; i++) data[i] = (char)(i * 7 + 1);
        EXPECT_EQ(k.call(cap), data);  // a request that fits changes nothing
        data = (char*)k.call(4 * cap + 1);
        ASSERT_GE(OrvScratchCapacity(k.kind), 4 * cap + 1) << k.kind;
        for (unsigned i = 0; i < cap * k.bytes; i++)
            ASSERT_EQ(data[i], (char)(i * 7 + 1)) << "content lost at byte " << i;
        data[(4 * cap + 1) * k.bytes - 1] = 42;  // the new size is usable (for the sanitizers)
    }
    EXPECT_NE((void*)OrvAllocPoints(3), (void*)OrvAllocLinkPoints(3));
    EXPECT_NE((void*)OrvAllocIndex(3), (void*)OrvAllocFloat(3));
}

namespace {

// The 16 rows of two bytes of a pattern, as 16-bit words, low byte first.
std::vector<unsigned> rows(const char* d) {
    std::vector<unsigned> v;
    for (int row = 0; row < 16; row++)
        v.push_back((unsigned char)d[2 * row] << 8 | (unsigned char)d[2 * row + 1]);
    return v;
}

// Row i of the expected pattern is words[i % n].
std::vector<unsigned> repeat(std::initializer_list<unsigned> words) {
    std::vector<unsigned> v;
    for (int row = 0; row < 16; row++) v.push_back(words.begin()[row % words.size()]);
    return v;
}

}  // namespace

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
    MakeData((unsigned short)0x1234);
    MakeData(0u, 0u);
    MakeData(0u);
    EXPECT_EQ(rows(d), repeat({0x1122, 0x3344, 0x8001, 0xFFFE}));
    // Most significant bit leftmost: the high byte leads the row.
    EXPECT_EQ((unsigned char)MakeData((unsigned short)0xFAAA, 0x57D5, 1, 0x8000)[0], 0xFA);
}

TEST(OrvFiles, ExistsMeansReadableAndWritableCreates) {
    char pattern[] = "/tmp/orv-util-XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    std::string dir = pattern, path = dir + "/created", bad = dir + "/missing/file";
    struct stat st;
    EXPECT_FALSE(OrvFileExists(path.c_str()));
    testing::internal::CaptureStdout();
    EXPECT_TRUE(OrvIsFileWritable(path.c_str(), 1));  // an empty file is made
    EXPECT_TRUE(OrvFileExists(path.c_str()));
    // An existing file keeps its content: append mode.
    FILE* f = fopen(path.c_str(), "w");
    fputs("keep", f);
    fclose(f);
    EXPECT_TRUE(OrvIsFileWritable(path.c_str(), 0));
    ASSERT_EQ(stat(path.c_str(), &st), 0);
    EXPECT_EQ(st.st_size, 4);
    // Failures report only when asked to.
    EXPECT_FALSE(OrvIsFileWritable(bad.c_str(), 1));
    EXPECT_FALSE(OrvIsFileWritable(bad.c_str(), 0));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "## Cannot open " + bad + " for writing");
    unlink(path.c_str());
    rmdir(dir.c_str());
}
