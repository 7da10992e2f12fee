// Character-level reading of the text format from a stream's buffer.
#include "scan.h"

#include <cerrno>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <streambuf>

typedef std::char_traits<char> Traits;

static bool isBlank(int c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
}
static bool isDigit(int c) {
    return c >= '0' && c <= '9';
}

// The sentry's test: a stream that is not good fails the extraction.
static bool ready(std::istream& in) {
    if (in.good()) return true;
    in.setstate(std::ios::failbit);
    return false;
}

int OrvScanPeek(std::istream& in) {
    if (!ready(in)) return Traits::eof();
    int c = in.rdbuf()->sgetc();
    if (c == Traits::eof()) in.setstate(std::ios::eofbit);
    return c;
}

int OrvScanGet(std::istream& in) {
    if (!ready(in)) return Traits::eof();
    int c = in.rdbuf()->sbumpc();
    if (c == Traits::eof()) in.setstate(std::ios::eofbit | std::ios::failbit);
    return c;
}

bool OrvScanSkip(std::istream& in) {
    if (!ready(in)) return false;
    std::streambuf* buffer = in.rdbuf();
    int c = buffer->sgetc();
    while (isBlank(c)) c = buffer->snextc();
    if (c == Traits::eof()) {
        in.setstate(std::ios::eofbit | std::ios::failbit);
        return false;
    }
    return true;
}

bool OrvScanChar(std::istream& in, char& c) {
    if (!OrvScanSkip(in)) return false;
    c = (char)in.rdbuf()->sbumpc();
    return true;
}

bool OrvScanWord(std::istream& in, char* buffer, size_t size) {
    buffer[0] = 0;
    if (!OrvScanSkip(in)) return false;
    std::streambuf* source = in.rdbuf();
    size_t n = 0;
    int c = source->sgetc();
    while (n + 1 < size && c != Traits::eof() && !isBlank(c)) {
        buffer[n++] = (char)c;
        c = source->snextc();
    }
    buffer[n] = 0;
    if (c == Traits::eof()) in.setstate(std::ios::eofbit);
    return true;
}

// The value of a decimal number as its digits read it: up to 19 significant
// digits as an integer, and the power of ten that scales them. Numbers with
// more digits, or exponents too long to hold, are left to the C library.
struct Decimal {
    unsigned long long digits = 0;
    int significant = 0;  // digits counted, leading zeros left out
    long scale = 0;       // the power of ten
    bool negative = false;
    bool exact = true;  // digits and scale hold the value

    void digit(int c, bool afterPoint) {
        if (significant == 0 && c == '0') {
            if (afterPoint) scale--;
            return;
        }
        if (significant == 19) {
            exact = false;
            return;
        }
        digits = digits * 10 + (unsigned)(c - '0');
        significant++;
        if (afterPoint) scale--;
    }
};

// Takes the characters of a decimal number into text: an optional sign and
// digits, and for a float a fraction and an exponent. False without digits.
static bool takeNumber(std::istream& in, char* text, size_t size, bool fraction,
                       Decimal* value = nullptr) {
    text[0] = 0;
    if (!OrvScanSkip(in)) return false;
    std::streambuf* source = in.rdbuf();
    size_t n = 0;
    bool digits = false;
    Decimal ignored;
    Decimal& d = value ? *value : ignored;
    int c = source->sgetc();
    auto take = [&]() {
        if (n + 1 < size) text[n++] = (char)c;
        c = source->snextc();
    };
    if (c == '+' || c == '-') {
        d.negative = c == '-';
        take();
    }
    while (isDigit(c)) {
        digits = true;
        d.digit(c, false);
        take();
    }
    if (fraction) {
        if (c == '.') {
            take();
            while (isDigit(c)) {
                digits = true;
                d.digit(c, true);
                take();
            }
        }
        if (digits && (c == 'e' || c == 'E')) {
            take();
            bool minus = c == '-';
            if (c == '+' || c == '-') take();
            bool exponent = false;
            long e = 0;
            while (isDigit(c)) {
                exponent = true;
                if (e < 100000) e = e * 10 + (c - '0');
                take();
            }
            if (e >= 100000) d.exact = false;
            d.scale += minus ? -e : e;
            if (!exponent) digits = false;
        }
    }
    text[n] = 0;
    if (c == Traits::eof()) in.setstate(std::ios::eofbit);
    if (!digits || n + 1 >= size) {
        in.setstate(std::ios::failbit);
        return false;
    }
    return true;
}

// Unsigned values accept a minus sign and wrap, as the standard reading does;
// a magnitude beyond the type fails.
static bool scanUnsigned(std::istream& in, unsigned long long max, unsigned long long& value) {
    char text[64];
    Decimal d;
    if (!takeNumber(in, text, sizeof text, false, &d)) return false;
    unsigned long long magnitude;
    errno = 0;
    if (d.exact) {
        magnitude = d.digits;
    } else {
        const char* digits = text + (text[0] == '-' || text[0] == '+');
        magnitude = strtoull(digits, nullptr, 10);
    }
    if (errno == ERANGE || magnitude > max) {
        in.setstate(std::ios::failbit);
        return false;
    }
    value = text[0] == '-' ? (0 - magnitude) & max : magnitude;
    return true;
}

static bool scanSigned(std::istream& in, long long min, long long max, long long& value) {
    char text[64];
    if (!takeNumber(in, text, sizeof text, false)) return false;
    errno = 0;
    long long v = strtoll(text, nullptr, 10);
    if (errno == ERANGE || v < min || v > max) {
        in.setstate(std::ios::failbit);
        return false;
    }
    value = v;
    return true;
}

bool OrvScanNumber(std::istream& in, unsigned short& value) {
    unsigned long long v;
    if (!scanUnsigned(in, USHRT_MAX, v)) return false;
    value = (unsigned short)v;
    return true;
}
bool OrvScanNumber(std::istream& in, unsigned int& value) {
    unsigned long long v;
    if (!scanUnsigned(in, UINT_MAX, v)) return false;
    value = (unsigned int)v;
    return true;
}
bool OrvScanNumber(std::istream& in, unsigned long& value) {
    unsigned long long v;
    if (!scanUnsigned(in, ULONG_MAX, v)) return false;
    value = (unsigned long)v;
    return true;
}
bool OrvScanNumber(std::istream& in, short& value) {
    long long v;
    if (!scanSigned(in, SHRT_MIN, SHRT_MAX, v)) return false;
    value = (short)v;
    return true;
}
bool OrvScanNumber(std::istream& in, int& value) {
    long long v;
    if (!scanSigned(in, INT_MIN, INT_MAX, v)) return false;
    value = (int)v;
    return true;
}
bool OrvScanNumber(std::istream& in, long& value) {
    long long v;
    if (!scanSigned(in, LONG_MIN, LONG_MAX, v)) return false;
    value = (long)v;
    return true;
}

// Clinger's fast path: digits and a power of ten that a double holds
// exactly give the correctly rounded double in one operation.
static const double exactPowers[23] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                       1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                       1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

static bool quickDouble(const Decimal& d, double& v) {
    if (!d.exact || d.digits > (1ull << 53) || d.scale > 22 || d.scale < -22) return false;
    v = d.scale >= 0 ? (double)d.digits * exactPowers[d.scale]
                     : (double)d.digits / exactPowers[-d.scale];
    if (d.negative) v = -v;
    return true;
}

bool OrvScanNumber(std::istream& in, double& value) {
    char text[128];
    Decimal d;
    if (!takeNumber(in, text, sizeof text, true, &d)) return false;
    double quick;
    if (quickDouble(d, quick)) {
        value = quick;
        return true;
    }
    errno = 0;
    double v = strtod(text, nullptr);
    if (errno == ERANGE && (v > 1 || v < -1)) {
        in.setstate(std::ios::failbit);
        return false;
    }
    value = v;
    return true;
}

// The double of the fast path rounded to a float is the float of the text,
// unless the double lies within a unit of its last place of a point halfway
// between two floats; such numbers, and those outside the normal floats, go
// to the C library.
static bool quickFloat(const Decimal& d, float& f) {
    double v;
    if (!quickDouble(d, v)) return false;
    double a = std::fabs(v);
    if (a != 0 && (a < 2 * (double)FLT_MIN || a > (double)FLT_MAX)) return false;
    uint64_t bits;
    memcpy(&bits, &v, sizeof bits);
    uint64_t low = bits & ((1ull << 29) - 1);  // the bits a float drops
    if (low >= (1ull << 28) - 1 && low <= (1ull << 28) + 1) return false;
    f = (float)v;
    return true;
}

bool OrvScanNumber(std::istream& in, float& value) {
    char text[128];
    Decimal d;
    if (!takeNumber(in, text, sizeof text, true, &d)) return false;
    float quick;
    if (quickFloat(d, quick)) {
        value = quick;
        return true;
    }
    errno = 0;
    float v = strtof(text, nullptr);
    if (errno == ERANGE && (v > 1 || v < -1)) {
        in.setstate(std::ios::failbit);
        return false;
    }
    value = v;
    return true;
}
