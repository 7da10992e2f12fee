// Numbers in the text of vertex arrays: the quick writer gives printf's "%g"
// text and the quick reader the C library's value, on every kind of float,
// ties and boundaries included.
#include "orv/stream/line.h"
#include "orv/stream/scan.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::string quick(double v) {
    char out[32];
    int n = OrvFormatG(v, out);
    return std::string(out, (size_t)n);
}

std::string printed(double v) {
    char out[64];
    snprintf(out, sizeof out, "%g", v);
    return out;
}

float readFloat(const std::string& text, bool* ok = nullptr) {
    std::istringstream in(text);
    float f = -12345;
    bool done = OrvScanNumber(in, f);
    if (ok) *ok = done;
    return f;
}

double readDouble(const std::string& text) {
    std::istringstream in(text);
    double d = -12345;
    OrvScanNumber(in, d);
    return d;
}

bool sameBits(float a, float b) {
    return memcmp(&a, &b, sizeof a) == 0;
}

}  // namespace

TEST(VertexNumbers, WrittenAsPrintfWrites) {
    // 0.001953125 is a tie at six digits: even wins.
    std::vector<double> fixed = {
        (double)FLT_MAX, (double)FLT_MIN, (double)FLT_TRUE_MIN, NAN,
        INFINITY,        -INFINITY,       (double)0.1f,         (double)(1 / 3.0f)};
    std::istringstream plain(
        "0.0 -0.0 1 -1 0.5 1e-5 0.0001 0.00012345678 100000 999999 999999.5 999999.4 9999995 1e6 "
        "123456789 0.001953125 1234565 2.5e-7 1e100 1e-300 4.89859e-17");
    for (double v; plain >> v;) fixed.push_back(v);
    for (double v : fixed) EXPECT_EQ(quick(v), printed(v)) << v;
    // Every power of two a float has, and a spread of random floats.
    for (int e = -149; e <= 127; e++) {
        double v = std::ldexp(1.0, e);
        EXPECT_EQ(quick(v), printed(v)) << v;
    }
    std::mt19937 random(20);
    for (int i = 0; i < 300000; i++) {
        uint32_t bits = (uint32_t)random();
        float f;
        memcpy(&f, &bits, sizeof f);
        ASSERT_EQ(quick(f), printed(f)) << bits;
    }
    // Values of the kind meshes have.
    std::uniform_real_distribution<float> near(-10, 10);
    for (int i = 0; i < 300000; i++) {
        float f = near(random);
        ASSERT_EQ(quick(f), printed(f)) << f;
    }
}

TEST(VertexNumbers, ReadAsTheCLibraryReads) {
    std::istringstream texts("0 -0 1 0.5 1e-05 3.40282e+38 3.40283e+38 1.17549e-38 1e-45 1.4e-45 "
                             "7e-46 123456789 0.1 16777217 16777219 1.00000006 9.99999944e-1 "
                             "12345678901234567890123 1e400 -2.5 +7 .5 5. 1e+2");
    for (std::string text; texts >> text;) {
        const char* t = text.c_str();
        bool ok = false;
        float f = readFloat(t, &ok);
        errno = 0;
        float c = strtof(t, nullptr);
        bool overflow = errno == ERANGE && (c > 1 || c < -1);
        EXPECT_EQ(ok, !overflow) << t;
        if (ok) {
            EXPECT_TRUE(sameBits(f, c)) << t << " " << f << " " << c;
        }
        EXPECT_EQ(readDouble(t), overflow ? readDouble(t) : strtod(t, nullptr)) << t;
    }
    // Whatever the writer writes comes back as the C library reads it.
    std::mt19937 random(21);
    for (int i = 0; i < 300000; i++) {
        uint32_t bits = (uint32_t)random();
        float f;
        memcpy(&f, &bits, sizeof f);
        if (std::isnan(f) || std::isinf(f)) continue;
        std::string t = printed(f);
        float back = readFloat(t);
        ASSERT_TRUE(sameBits(back, strtof(t.c_str(), nullptr))) << t;
    }
    // Seven and eight significant digits, near the halfway points of floats.
    for (int i = 0; i < 300000; i++) {
        char t[40];
        snprintf(t, sizeof t, "%.*e", 6 + i % 3,
                 std::ldexp((double)random(), -(int)(random() % 60)));
        ASSERT_TRUE(sameBits(readFloat(t), strtof(t, nullptr))) << t;
    }
    // Integers: more digits than a long long holds still fail as before.
    std::istringstream in("18446744073709551615 18446744073709551616 4294967295 4294967296 -1");
    unsigned long l;
    EXPECT_TRUE(OrvScanNumber(in, l));
    EXPECT_EQ(l, 18446744073709551615ul);
    EXPECT_FALSE(OrvScanNumber(in, l));
    in.clear();
    unsigned u;
    EXPECT_TRUE(OrvScanNumber(in, u));
    EXPECT_EQ(u, 4294967295u);
    EXPECT_FALSE(OrvScanNumber(in, u));
    in.clear();
    EXPECT_TRUE(OrvScanNumber(in, u));
    EXPECT_EQ(u, 4294967295u);  // a minus sign wraps
}
