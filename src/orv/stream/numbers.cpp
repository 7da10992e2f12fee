// Numbers as the format writes them: printf's "%g" without printf, for the
// common case of a number that rounds plainly to six digits, and unsigned
// integers. Vertex arrays are millions of these, so digits go two at a time.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "line.h"

// "00" to "99".
static const char pairs[] = "00010203040506070809101112131415161718192021222324252627282930313233"
                            "34353637383940414243444546474849505152535455565758596061626364656667"
                            "6869707172737475767778798081828384858687888990919293949596979899";

// Powers of ten that doubles hold exactly.
static const double powers[23] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                  1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                  1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// 10^n for n from -16 to 27, the nearest doubles.
static const double tens[44] = {
    1e-16, 1e-15, 1e-14, 1e-13, 1e-12, 1e-11, 1e-10, 1e-9, 1e-8, 1e-7, 1e-6, 1e-5, 1e-4, 1e-3, 1e-2,
    1e-1,  1e0,   1e1,   1e2,   1e3,   1e4,   1e5,   1e6,  1e7,  1e8,  1e9,  1e10, 1e11, 1e12, 1e13,
    1e14,  1e15,  1e16,  1e17,  1e18,  1e19,  1e20,  1e21, 1e22, 1e23, 1e24, 1e25, 1e26, 1e27};

// 10^n for n from 0 to 19: the lengths of unsigned numbers.
static const uint64_t decimalPowers[20] = {1u,
                                           10u,
                                           100u,
                                           1000u,
                                           10000u,
                                           100000u,
                                           1000000u,
                                           10000000u,
                                           100000000u,
                                           1000000000u,
                                           10000000000u,
                                           100000000000u,
                                           1000000000000u,
                                           10000000000000u,
                                           100000000000000u,
                                           1000000000000000u,
                                           10000000000000000u,
                                           100000000000000000u,
                                           1000000000000000000u,
                                           10000000000000000000u};

int OrvFormatUnsigned(unsigned long v, char* out) {
    int n = 1;
    while (n < 20 && v >= decimalPowers[n]) n++;
    char* p = out + n;
    for (; v >= 100; v /= 100) {
        p -= 2;
        memcpy(p, pairs + 2 * (v % 100), 2);
    }
    if (v >= 10)
        memcpy(p - 2, pairs + 2 * v, 2);
    else
        p[-1] = (char)('0' + v);
    return n;
}

// The six digits of r, below 10^6, leading zeros included.
static void putSix(char* out, unsigned r) {
    memcpy(out, pairs + 2 * (r / 10000), 2);
    memcpy(out + 2, pairs + 2 * (r / 100 % 100), 2);
    memcpy(out + 4, pairs + 2 * (r % 100), 2);
}

static int byPrintf(double v, char* out) {
    return snprintf(out, 32, "%g", v);
}

int OrvFormatG(double v, char* out) {
    if (!std::isfinite(v)) return byPrintf(v, out);
    char* p = out;
    if (std::signbit(v)) *p++ = '-';
    double a = std::fabs(v);
    // Whole numbers below a million are their own digits, zero included.
    if (a < 1e6 && a == (double)(uint32_t)a)
        return (int)(p - out) + OrvFormatUnsigned((uint32_t)a, p);

    // The exponent x of the first digit. The estimate from the binary
    // exponent is floor(log10(a)) or one less; a comparison settles which.
    uint64_t bits;
    memcpy(&bits, &a, sizeof bits);
    int binary = (int)(bits >> 52) - 1022;  // as frexp gives it, for normal doubles
    if (binary == -1022) return byPrintf(v, out);
    // floor((binary - 1) * log10(2)), in integers: 78913 / 2^18 ~ log10(2).
    int x = ((binary - 1) * 78913) >> 18;
    // After the comparison below x lies in [-17, 27], where the powers
    // scale by one operation.
    if (x < -17 || x > 26) return byPrintf(v, out);
    // Where the nearest double to 10^(x+1) lies below the power itself, a
    // equal to it comes out as 99999.99... below; it rounds to 100000 at the
    // same exponent, which is what printf writes for it too.
    x += a >= tens[x + 1 + 16];
    // Six digits r: a ~ r * 10^(x - 5). One rounding of a double at most,
    // far below 1e-9 of a unit of the sixth digit.
    int k = 5 - x;
    double scaled = k >= 0 ? a * powers[k] : a / powers[-k];
    double fraction = scaled - (double)(long)scaled;  // scaled is positive
    // Near a tie the exact value decides, which printf knows. Away from
    // ties, the rounding of the sum below cannot cross an integer.
    if (std::fabs(fraction - 0.5) < 1e-9) return byPrintf(v, out);
    unsigned r = (unsigned)(scaled + 0.5);
    if (r == 1000000) {
        r = 100000;
        x++;
    }
    int last = 5;  // the place of the last digit kept: trailing zeros go
    for (unsigned t = r; t % 10 == 0; t /= 10) last--;
    // The digits go straight where most of them stay, and single bytes make
    // room for the point: a copy of the digits through a buffer costs more
    // than the rest, as wide loads cannot take bytes just stored narrowly.
    if (x < -4 || x >= 6) {
        putSix(p + 1, r);
        p[0] = p[1];
        p[1] = '.';
        p += last > 0 ? last + 2 : 1;
        *p++ = 'e';
        *p++ = x < 0 ? '-' : '+';
        memcpy(p, pairs + 2 * (x < 0 ? -x : x), 2);  // two digits in the range above
        p += 2;
    } else if (x >= 0) {
        // The whole part is the first x + 1 digits; after the point come
        // the digits of r below 10^(5 - x), moved up to the front.
        putSix(p, r);
        p[x + 1] = '.';
        unsigned below = (unsigned)decimalPowers[5 - x];
        putSix(p + x + 2, r % below * (unsigned)decimalPowers[x + 1]);
        p += last > x ? last + 2 : x + 1;
    } else {
        // "0." and -x - 1 zeros before the digits.
        memcpy(p, "0.0000", 6);
        putSix(p + 1 - x, r);
        p += 2 - x + last;
    }
    return (int)(p - out);
}
