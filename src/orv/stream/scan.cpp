// Character-level reading of the text format from a stream's buffer.
#include "scan.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
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

// Takes the characters of a decimal number into text: an optional sign and
// digits, and for a float a fraction and an exponent. False without digits.
static bool takeNumber(std::istream& in, char* text, size_t size, bool fraction) {
    text[0] = 0;
    if (!OrvScanSkip(in)) return false;
    std::streambuf* source = in.rdbuf();
    size_t n = 0;
    bool digits = false;
    int c = source->sgetc();
    auto take = [&]() {
        if (n + 1 < size) text[n++] = (char)c;
        c = source->snextc();
    };
    if (c == '+' || c == '-') take();
    while (isDigit(c)) {
        digits = true;
        take();
    }
    if (fraction) {
        if (c == '.') {
            take();
            while (isDigit(c)) {
                digits = true;
                take();
            }
        }
        if (digits && (c == 'e' || c == 'E')) {
            take();
            if (c == '+' || c == '-') take();
            bool exponent = false;
            while (isDigit(c)) {
                exponent = true;
                take();
            }
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
    if (!takeNumber(in, text, sizeof text, false)) return false;
    const char* digits = text + (text[0] == '-' || text[0] == '+');
    errno = 0;
    unsigned long long magnitude = strtoull(digits, nullptr, 10);
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

bool OrvScanNumber(std::istream& in, double& value) {
    char text[128];
    if (!takeNumber(in, text, sizeof text, true)) return false;
    errno = 0;
    double v = strtod(text, nullptr);
    if (errno == ERANGE && (v > 1 || v < -1)) {
        in.setstate(std::ios::failbit);
        return false;
    }
    value = v;
    return true;
}

bool OrvScanNumber(std::istream& in, float& value) {
    char text[128];
    if (!takeNumber(in, text, sizeof text, true)) return false;
    errno = 0;
    float v = strtof(text, nullptr);
    if (errno == ERANGE && (v > 1 || v < -1)) {
        in.setstate(std::ios::failbit);
        return false;
    }
    value = v;
    return true;
}
