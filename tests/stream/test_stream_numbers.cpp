// Numbers in the text of the stream (vertex arrays above all): the quick
// writer gives printf's "%g" text and the quick reader the C library's value,
// on every kind of float, ties and boundaries included.
#include "orv/stream/line.h"
#include "orv/stream/scan.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

namespace {

std::string quick(double v) {
    char out[32];
    return std::string(out, (size_t)OrvFormatG(v, out));
}

std::string printed(double v) {
    char out[64];
    snprintf(out, sizeof out, "%g", v);
    return out;
}

// Read alone, and through a scanner that reads ahead: the same value, state
// and place in the stream.
template <class T>
T scanned(const std::string& text, bool* ok = nullptr) {
    std::istringstream in(text), again(text);
    T v = -12345, w = -12345;
    bool done = OrvScanNumber(in, v), doneAhead;
    {
        OrvScanner ahead(again, true);
        doneAhead = ahead.number(w);
    }
    EXPECT_EQ(
        std::make_tuple(done, in.rdstate(), in.rdbuf()->pubseekoff(0, std::ios::cur)),
        std::make_tuple(doneAhead, again.rdstate(), again.rdbuf()->pubseekoff(0, std::ios::cur)))
        << text;
    EXPECT_EQ(memcmp(&v, &w, sizeof v), 0) << text;
    if (ok) *ok = done;
    return v;
}

bool sameBits(float a, float b) {
    return memcmp(&a, &b, sizeof a) == 0;
}

// Any bit pattern of a float or a double, NaNs and infinities included.
template <class T>
T randomBits(std::mt19937& random) {
    uint64_t bits = (uint64_t)random() << 32 | random();
    T v;
    memcpy(&v, &bits, sizeof v);
    return v;
}

}  // namespace

TEST(StreamNumbers, WrittenAsPrintfWrites) {
    // 0.001953125 is a tie at six digits: even wins.
    std::vector<double> fixed = {
        (double)FLT_MAX, (double)FLT_MIN, (double)FLT_TRUE_MIN, NAN,
        INFINITY,        -INFINITY,       (double)0.1f,         (double)(1 / 3.0f)};
    std::istringstream plain(
        "0.0 -0.0 1 -1 0.5 1e-5 0.0001 0.00012345678 100000 999999 999999.5 999999.4 9999995 1e6 "
        "123456789 0.001953125 1234565 2.5e-7 1e100 1e-300 4.89859e-17 9.999995e-5 "
        "9.9999949e-5 999999.49999 1.0000051388151001e+28 9.99999e26 5e-324 "
        "2.2250738585072014e-308");
    for (double v; plain >> v;) fixed.push_back(v);
    // Every power of two a float has; powers of ten and the doubles beside them.
    for (int e = -149; e <= 127; e++) fixed.push_back(std::ldexp(1.0, e));
    for (int e = -30; e <= 30; e++) {
        double p = std::pow(10.0, e);
        for (double v : {std::nextafter(p, 0.0), p, std::nextafter(p, INFINITY)})
            fixed.insert(fixed.end(), {v, (double)(float)v});
    }
    for (double v : fixed) EXPECT_EQ(quick(v), printed(v)) << v;
    // Random floats and doubles, and values of the kind meshes have.
    std::mt19937 random(20);
    std::uniform_real_distribution<float> near(-10, 10);
    for (int i = 0; i < 600000; i++) {
        double v = i % 3 == 0   ? randomBits<float>(random)
                   : i % 3 == 1 ? near(random)
                                : randomBits<double>(random);
        ASSERT_EQ(quick(v), printed(v)) << v;
    }
}

TEST(StreamNumbers, ReadAsTheCLibraryReads) {
    std::istringstream texts("0 -0 1 0.5 1e-05 3.40282e+38 3.40283e+38 1.17549e-38 1e-45 1.4e-45 "
                             "7e-46 123456789 0.1 16777217 16777219 1.00000006 9.99999944e-1 "
                             "12345678901234567890123 1e400 -2.5 +7 .5 5. 1e+2");
    for (std::string t; texts >> t;) {
        bool ok = false;
        float f = scanned<float>(t, &ok);
        errno = 0;
        float c = strtof(t.c_str(), nullptr);
        bool overflow = errno == ERANGE && (c > 1 || c < -1);
        EXPECT_EQ(ok, !overflow) << t;
        EXPECT_TRUE(!ok || sameBits(f, c)) << t << " " << f << " " << c;
        EXPECT_TRUE(overflow || scanned<double>(t) == strtod(t.c_str(), nullptr)) << t;
    }
    // Whatever the writer writes, seven or eight significant digits near the
    // halfway points of floats, and plain decimals of up to 22 digits, come
    // back as the C library reads them: one by one, and as one long list read
    // ahead by scanners that stop every so often, where the next goes on.
    std::mt19937 random(21);
    std::vector<std::string> all;
    for (int i = 0; i < 600000; i++) {
        char t[40];
        float f = randomBits<float>(random);
        double d = std::ldexp((double)random(), -(int)(random() % 60));
        if (i % 3 == 0 && (std::isnan(f) || std::isinf(f))) continue;
        if (i % 3 == 0)
            snprintf(t, sizeof t, "%g", f);
        else if (i % 3 == 1)
            snprintf(t, sizeof t, "%.*e", 6 + i % 3, d);
        else
            snprintf(t, sizeof t, "%s%.*f", i % 4 ? "" : "-", (int)(random() % 16), d);
        if (i % 10 == 0) {
            ASSERT_TRUE(sameBits(scanned<float>(t), strtof(t, nullptr))) << t;
        }
        all.push_back(t);
    }
    std::string joined;
    for (size_t i = 0; i < all.size(); i++) joined += all[i] + (i % 7 ? " " : "\n\t");
    std::istringstream list(joined);
    for (size_t i = 0; i < all.size();) {
        OrvScanner ahead(list, true);
        for (size_t stop = i + random() % 2000; i < all.size() && i <= stop; i++) {
            float f = 0;
            ASSERT_TRUE(ahead.number(f)) << all[i];
            ASSERT_TRUE(sameBits(f, strtof(all[i].c_str(), nullptr))) << all[i];
        }
    }
    // Integers: more digits than the type holds fail; a minus sign wraps.
    bool ok;
    EXPECT_EQ(scanned<unsigned long>("18446744073709551615"), 18446744073709551615ul);
    scanned<unsigned long>("18446744073709551616", &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(scanned<unsigned>("4294967295"), 4294967295u);
    scanned<unsigned>("4294967296", &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(scanned<unsigned>("-1", &ok), 4294967295u);
    EXPECT_TRUE(ok);
}
