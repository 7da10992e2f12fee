// Character-level reading of the text format from a stream's buffer.
#include "scan.h"

#include <cerrno>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <streambuf>
#include <typeinfo>

typedef std::char_traits<char> Traits;

static bool isBlank(int c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
}
static bool isDigit(int c) {
    return c >= '0' && c <= '9';
}

// ---------------------------------------------------------------------------
// The scanner
// ---------------------------------------------------------------------------

// Pieces read ahead start small, so that a short list costs little to give
// back, and grow to this.
static const size_t firstPiece = 64;
static const size_t largestPiece = 16384;

OrvScanner::OrvScanner(std::istream& in, bool ahead)
    : stream(in), at(nullptr), end(nullptr), state(in), buffer(in.rdbuf()), piece(firstPiece) {
    // Only these buffers are known to hold in their get area what in_avail
    // counts, which is what makes giving back safe.
    if (ahead && buffer &&
        (typeid(*buffer) == typeid(std::filebuf) || typeid(*buffer) == typeid(std::stringbuf)))
        text.reset(new char[largestPiece]);
}

OrvScanner::~OrvScanner() {
    // The characters of the last piece are still in the buffer's get area,
    // just behind its cursor, so each goes back in place.
    while (end > at) buffer->sputbackc(*--end);
}

int OrvScanner::fill() {
    int c = buffer->sgetc();
    if (c == Traits::eof()) return c;
    // After sgetc the get area holds at least one character, and in_avail
    // counts those there.
    std::streamsize n = buffer->in_avail();
    if (n > (std::streamsize)piece) n = (std::streamsize)piece;
    if (n > 0) n = buffer->sgetn(text.get(), n);
    if (n <= 0) return c;
    at = text.get();
    end = at + n;
    if (piece < largestPiece) piece *= 2;
    return (unsigned char)*at;
}

int OrvScanner::peek() {
    if (!ready()) return Traits::eof();
    int c = current();
    if (c == Traits::eof()) state.setstate(std::ios::eofbit);
    return c;
}

int OrvScanner::get() {
    if (!ready()) return Traits::eof();
    int c = current();
    if (c == Traits::eof()) {
        state.setstate(std::ios::eofbit | std::ios::failbit);
        return c;
    }
    bump();
    return c;
}

// What skip does, where the numbers can have it inline.
static bool skipBlanks(OrvScanner& in) {
    if (!in.ready()) return false;
    const char* p = in.at;
    while (p < in.end && isBlank((unsigned char)*p)) p++;
    in.at = p;
    int c = in.current();
    while (isBlank(c)) c = in.advance();
    if (c == Traits::eof()) {
        in.stream.setstate(std::ios::eofbit | std::ios::failbit);
        return false;
    }
    return true;
}

bool OrvScanner::skip() {
    return skipBlanks(*this);
}

void OrvScanner::nextItem() {
    // Comments and separators may alternate any number of times; a loop
    // keeps a long run of them from deepening the stack.
    if (peek() == Traits::eof()) return;
    const int eof = Traits::eof();
    int c = current();
    for (;;) {
        while (c == '%')
            while (c != '\n' && c != eof) c = advance();
        if (c != ' ' && c != '\t' && c != '\n') break;
        while (c == ' ' || c == '\t' || c == '\n') c = advance();
        if (c != '%') break;
    }
    if (c == eof) state.setstate(std::ios::eofbit);
}

bool OrvScanner::take(char& c) {
    if (!skipBlanks(*this)) return false;
    c = (char)current();
    bump();
    return true;
}

bool OrvScanner::word(char* out, size_t size) {
    out[0] = 0;
    if (!skipBlanks(*this)) return false;
    size_t n = 0;
    const char* p = at;
    while (n + 1 < size && p < end && !isBlank((unsigned char)*p)) out[n++] = *p++;
    at = p;
    int c = current();
    while (n + 1 < size && c != Traits::eof() && !isBlank(c)) {
        out[n++] = (char)c;
        c = advance();
    }
    out[n] = 0;
    if (c == Traits::eof()) state.setstate(std::ios::eofbit);
    return true;
}

// ---------------------------------------------------------------------------
// Numbers
// ---------------------------------------------------------------------------

// The value of a decimal number as its digits read it: up to 19 significant
// digits as an integer, and the power of ten that scales them. Numbers with
// more digits, or exponents too long to hold, are left to the C library.
struct Decimal {
    unsigned long long digits = 0;  // leading zeros leave it at 0
    long scale = 0;                 // the power of ten
    bool negative = false;
    bool exact = true;  // digits and scale hold the value

    void digit(int c, bool afterPoint) {
        // Below 10^18 the digits so far are at most 18 significant ones.
        if (digits >= 1000000000000000000ull) {
            exact = false;
            return;
        }
        digits = digits * 10 + (unsigned)(c - '0');
        scale -= afterPoint;
    }
};

// A number as read: its characters, for the C library, and its value.
struct NumberText {
    char text[128];
    size_t length = 0;
    bool digits = false;  // enough for a number
    Decimal value;
};

// The characters of a decimal number as a source gives them: an optional
// sign and digits, and for a float a fraction and an exponent. They go into
// t, at most size - 1 of them; the character after them is returned.
template <class Source>
static int takeDecimal(Source& source, size_t size, bool fraction, NumberText& t) {
    // Kept in locals while the characters go into the text, which the
    // compiler must otherwise assume they could overwrite.
    Decimal d;
    size_t n = 0;
    bool digits = false;
    int c = source.current();
    auto take = [&]() {
        if (n + 1 < size) t.text[n++] = (char)c;
        c = source.advance();
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
    t.text[n] = 0;
    t.length = n;
    t.digits = digits;
    t.value = d;
    return c;
}

// The characters of the piece read ahead, for takeDecimal: the end of the
// piece stops a number as any other character would.
static const int pieceEnd = -2;  // neither a character nor eof

struct PieceSource {
    const char* p;
    const char* end;
    int current() const { return p < end ? (unsigned char)*p : pieceEnd; }
    int advance() {
        p++;
        return current();
    }
};

// A number after blanks; false without digits, or with more characters than
// size allows.
static bool takeNumber(OrvScanner& in, size_t size, bool fraction, NumberText& t) {
    if (!in.ready()) return false;
    // Most numbers lie whole in the piece read ahead, blanks before them
    // included, and are read there from a cursor of their own; one that
    // meets the end of the piece is taken a character at a time.
    const char* p = in.at;
    while (p < in.end && isBlank((unsigned char)*p)) p++;
    int c = pieceEnd;
    if (p < in.end) {
        PieceSource piece{p, in.end};
        c = takeDecimal(piece, size, fraction, t);
        if (c != pieceEnd) in.at = piece.p;
    }
    if (c == pieceEnd) {
        if (!skipBlanks(in)) return false;
        c = takeDecimal(in, size, fraction, t);
    }
    if (c == Traits::eof()) in.stream.setstate(std::ios::eofbit);
    if (!t.digits || t.length + 1 >= size) {
        in.stream.setstate(std::ios::failbit);
        return false;
    }
    return true;
}

// The bulk of vertex lists: a number of plain digits (for a float, with a
// sign, a point and more digits), after blanks and whole inside the piece
// read ahead, is read there at once into d, and its end returned; it is the
// caller's to move the cursor there. Anything else (exponents, more than 18
// digits, the piece's end) gives null and is left to takeNumber.
static const char* quickNumber(const OrvScanner& in, bool fraction, Decimal& d) {
    const char* p = in.at;
    const char* end = in.end;
    while (p < end && isBlank((unsigned char)*p)) p++;
    bool negative = false;
    if (fraction && p < end && (*p == '-' || *p == '+')) negative = *p++ == '-';
    unsigned long long digits = 0;  // in locals, not through d, to stay in registers
    long scale = 0;
    int count = 0;
    for (; p < end && isDigit(*p); p++, count++) digits = digits * 10 + (unsigned)(*p - '0');
    if (fraction && p < end && *p == '.')
        for (p++; p < end && isDigit(*p); p++, count++, scale--)
            digits = digits * 10 + (unsigned)(*p - '0');
    if (count == 0 || count > 18 || p == end || *p == 'e' || *p == 'E') return nullptr;
    d.digits = digits;
    d.scale = scale;
    d.negative = negative;
    return p;
}

// Unsigned values accept a minus sign and wrap, as the standard reading does;
// a magnitude beyond the type fails.
static bool takeUnsigned(OrvScanner& in, unsigned long long max, unsigned long long& value) {
    Decimal quick;
    const char* after = in.ready() ? quickNumber(in, false, quick) : nullptr;
    if (after && quick.digits <= max) {
        in.at = after;
        value = quick.digits;
        return true;
    }
    NumberText t;
    if (!takeNumber(in, 64, false, t)) return false;
    unsigned long long magnitude = t.value.digits;
    bool range = false;
    if (!t.value.exact) {
        const char* digits = t.text + (t.text[0] == '-' || t.text[0] == '+');
        errno = 0;
        magnitude = strtoull(digits, nullptr, 10);
        range = errno == ERANGE;
    }
    if (range || magnitude > max) {
        in.stream.setstate(std::ios::failbit);
        return false;
    }
    value = t.text[0] == '-' ? (0 - magnitude) & max : magnitude;
    return true;
}

static bool takeSigned(OrvScanner& in, long long min, long long max, long long& value) {
    NumberText t;
    if (!takeNumber(in, 64, false, t)) return false;
    errno = 0;
    long long v = strtoll(t.text, nullptr, 10);
    if (errno == ERANGE || v < min || v > max) {
        in.stream.setstate(std::ios::failbit);
        return false;
    }
    value = v;
    return true;
}

bool OrvScanner::number(unsigned short& value) {
    unsigned long long v;
    if (!takeUnsigned(*this, USHRT_MAX, v)) return false;
    value = (unsigned short)v;
    return true;
}
bool OrvScanner::number(unsigned int& value) {
    unsigned long long v;
    if (!takeUnsigned(*this, UINT_MAX, v)) return false;
    value = (unsigned int)v;
    return true;
}
bool OrvScanner::number(unsigned long& value) {
    unsigned long long v;
    if (!takeUnsigned(*this, ULONG_MAX, v)) return false;
    value = (unsigned long)v;
    return true;
}
bool OrvScanner::number(short& value) {
    long long v;
    if (!takeSigned(*this, SHRT_MIN, SHRT_MAX, v)) return false;
    value = (short)v;
    return true;
}
bool OrvScanner::number(int& value) {
    long long v;
    if (!takeSigned(*this, INT_MIN, INT_MAX, v)) return false;
    value = (int)v;
    return true;
}
bool OrvScanner::number(long& value) {
    long long v;
    if (!takeSigned(*this, LONG_MIN, LONG_MAX, v)) return false;
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

bool OrvScanner::number(double& value) {
    NumberText t;
    if (!takeNumber(*this, 128, true, t)) return false;
    double quick;
    if (quickDouble(t.value, quick)) {
        value = quick;
        return true;
    }
    errno = 0;
    double v = strtod(t.text, nullptr);
    if (errno == ERANGE && (v > 1 || v < -1)) {
        state.setstate(std::ios::failbit);
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

bool OrvScanner::number(float& value) {
    Decimal d;
    const char* after = ready() ? quickNumber(*this, true, d) : nullptr;
    float f;
    if (after && quickFloat(d, f)) {
        at = after;
        value = f;
        return true;
    }
    NumberText t;
    if (!takeNumber(*this, 128, true, t)) return false;
    float quick;
    if (quickFloat(t.value, quick)) {
        value = quick;
        return true;
    }
    errno = 0;
    float v = strtof(t.text, nullptr);
    if (errno == ERANGE && (v > 1 || v < -1)) {
        state.setstate(std::ios::failbit);
        return false;
    }
    value = v;
    return true;
}

// The characters of a word, for takeDecimal.
struct WordSource {
    const char* p;
    int current() const { return *p ? (unsigned char)*p : Traits::eof(); }
    int advance() {
        if (*p) p++;
        return current();
    }
};

bool OrvParseFloat(const char* word, float& value) {
    // A plain decimal number that is the whole word has the quick value;
    // the rest (hexadecimal, infinities, ranges) is the C library's.
    WordSource source{word};
    NumberText t;
    float quick;
    if (takeDecimal(source, sizeof t.text, true, t) == Traits::eof() && t.digits &&
        t.length + 1 < sizeof t.text && quickFloat(t.value, quick)) {
        value = quick;
        return true;
    }
    char* end = nullptr;
    value = strtof(word, &end);
    return word[0] && !*end;
}

// ---------------------------------------------------------------------------
// Each call alone
// ---------------------------------------------------------------------------

int OrvScanPeek(std::istream& in) {
    return OrvScanner(in).peek();
}
int OrvScanGet(std::istream& in) {
    return OrvScanner(in).get();
}
bool OrvScanSkip(std::istream& in) {
    return OrvScanner(in).skip();
}
bool OrvScanChar(std::istream& in, char& c) {
    return OrvScanner(in).take(c);
}
bool OrvScanWord(std::istream& in, char* buffer, size_t size) {
    return OrvScanner(in).word(buffer, size);
}
bool OrvScanNumber(std::istream& in, unsigned short& value) {
    return OrvScanner(in).number(value);
}
bool OrvScanNumber(std::istream& in, short& value) {
    return OrvScanner(in).number(value);
}
bool OrvScanNumber(std::istream& in, unsigned int& value) {
    return OrvScanner(in).number(value);
}
bool OrvScanNumber(std::istream& in, int& value) {
    return OrvScanner(in).number(value);
}
bool OrvScanNumber(std::istream& in, unsigned long& value) {
    return OrvScanner(in).number(value);
}
bool OrvScanNumber(std::istream& in, long& value) {
    return OrvScanner(in).number(value);
}
bool OrvScanNumber(std::istream& in, float& value) {
    return OrvScanner(in).number(value);
}
bool OrvScanNumber(std::istream& in, double& value) {
    return OrvScanner(in).number(value);
}
