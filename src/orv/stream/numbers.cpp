// Numbers as the format writes them: printf's "%g" without printf, for the
// common case of a number that rounds plainly to six digits.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "line.h"

// Powers of ten that doubles hold exactly.
static const double powers[23] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                  1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                  1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

static int byPrintf(double v, char* out) {
    return snprintf(out, 32, "%g", v);
}

int OrvFormatG(double v, char* out) {
    if (std::isnan(v) || std::isinf(v)) return byPrintf(v, out);
    char* p = out;
    if (std::signbit(v)) *p++ = '-';
    double a = std::fabs(v);
    if (a == 0) {
        *p++ = '0';
        return (int)(p - out);
    }
    // Six digits r and the exponent x of the first: a ~ r * 10^(x - 5). The
    // estimate of x from the binary exponent is at most one too small.
    uint64_t bits;
    memcpy(&bits, &a, sizeof bits);
    int binary = (int)(bits >> 52) - 1022;  // as frexp gives it, for normal doubles
    if (binary == -1022) return byPrintf(v, out);
    // floor((binary - 1) * log10(2)), in integers: 78913 / 2^18 ~ log10(2).
    int x = ((binary - 1) * 78913) >> 18;
    long r = 0;
    for (int attempt = 0;; attempt++) {
        int k = 5 - x;
        if (attempt > 2 || k > 22 || k < -22) return byPrintf(v, out);
        // One rounding of a double at most: the error is far below 1e-9 of
        // a unit of the sixth digit.
        double scaled = k >= 0 ? a * powers[k] : a / powers[-k];
        double whole = (double)(long)scaled;  // scaled is positive
        if (whole >= 1e6) {
            x++;
            continue;
        }
        if (whole < 1e5) {
            x--;
            continue;
        }
        double fraction = scaled - whole;
        // Near a tie the exact value decides, which printf knows.
        if (std::fabs(fraction - 0.5) < 1e-9) return byPrintf(v, out);
        r = (long)whole + (fraction > 0.5);
        if (r == 1000000) {
            r = 100000;
            x++;
        }
        break;
    }
    char d[6];
    for (int i = 5; i >= 0; i--, r /= 10) d[i] = (char)('0' + r % 10);
    int last = 5;  // the last digit kept: trailing zeros go
    while (last > 0 && d[last] == '0') last--;
    if (x < -4 || x >= 6) {
        *p++ = d[0];
        if (last > 0) {
            *p++ = '.';
            for (int i = 1; i <= last; i++) *p++ = d[i];
        }
        *p++ = 'e';
        *p++ = x < 0 ? '-' : '+';
        int e = x < 0 ? -x : x;
        if (e >= 100) *p++ = (char)('0' + e / 100);
        *p++ = (char)('0' + e / 10 % 10);
        *p++ = (char)('0' + e % 10);
    } else if (x >= 0) {
        for (int i = 0; i <= x; i++) *p++ = d[i];
        if (last > x) {
            *p++ = '.';
            for (int i = x + 1; i <= last; i++) *p++ = d[i];
        }
    } else {
        *p++ = '0';
        *p++ = '.';
        for (int i = -1; i > x; i--) *p++ = '0';
        for (int i = 0; i <= last; i++) *p++ = d[i];
    }
    return (int)(p - out);
}
