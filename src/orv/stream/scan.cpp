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
#include <limits>
#include <sstream>
#include <streambuf>
#include <type_traits>
#include <typeinfo>

typedef std::char_traits<char> Traits;

static bool isBlank(int c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
}
static bool isDigit(int c) {
    return c >= '0' && c <= '9';
}

// ---------------------------------------------------------------------------
// Sources of characters
// ---------------------------------------------------------------------------

// Each reading below is written once for either source: the stream's buffer
// a character at a time, or a scanner that reads ahead. Sources are small
// handles passed by value, so that the compiler keeps the buffer's pointer
// in a register: through memory, every character stored would make it
// reload it.
struct BufferSource {
    std::istream& stream;
    std::streambuf* buffer;

    explicit BufferSource(std::istream& in) : stream(in), buffer(in.rdbuf()) {}
    bool ready() {
        if (stream.good()) return true;
        stream.setstate(std::ios::failbit);
        return false;
    }
    int current() { return buffer->sgetc(); }
    int advance() { return buffer->snextc(); }
    void bump() { buffer->sbumpc(); }
};

struct AheadSource {
    OrvScanner* scanner;
    std::istream& stream;

    explicit AheadSource(OrvScanner& s) : scanner(&s), stream(s.stream) {}
    bool ready() { return scanner->ready(); }
    int current() { return scanner->current(); }
    int advance() { return scanner->advance(); }
    void bump() { scanner->bump(); }
};

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
    if (!text || c == Traits::eof()) return c;
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

// Runs inside the piece read ahead are walked from a local cursor, which
// the copying of characters cannot make the compiler reload; the buffer has
// no such runs.
static void blankRun(BufferSource) {}
static void blankRun(AheadSource s) {
    OrvScanner& in = *s.scanner;
    const char* p = in.at;
    while (p < in.end && isBlank((unsigned char)*p)) p++;
    in.at = p;
}
static size_t wordRun(BufferSource, char*, size_t n, size_t) {
    return n;
}
static size_t wordRun(AheadSource s, char* out, size_t n, size_t size) {
    OrvScanner& in = *s.scanner;
    const char* p = in.at;
    while (n + 1 < size && p < in.end && !isBlank((unsigned char)*p)) out[n++] = *p++;
    in.at = p;
    return n;
}

// ---------------------------------------------------------------------------
// Characters and words
// ---------------------------------------------------------------------------

template <class Source>
static int peekIn(Source s) {
    if (!s.ready()) return Traits::eof();
    int c = s.current();
    if (c == Traits::eof()) s.stream.setstate(std::ios::eofbit);
    return c;
}

template <class Source>
static int getIn(Source s) {
    if (!s.ready()) return Traits::eof();
    int c = s.current();
    if (c == Traits::eof()) {
        s.stream.setstate(std::ios::eofbit | std::ios::failbit);
        return c;
    }
    s.bump();
    return c;
}

template <class Source>
static bool skipIn(Source s) {
    if (!s.ready()) return false;
    blankRun(s);
    int c = s.current();
    while (isBlank(c)) c = s.advance();
    if (c == Traits::eof()) {
        s.stream.setstate(std::ios::eofbit | std::ios::failbit);
        return false;
    }
    return true;
}

template <class Source>
static void nextItemIn(Source s) {
    // Comments and separators may alternate any number of times; a loop
    // keeps a long run of them from deepening the stack.
    if (peekIn(s) == Traits::eof()) return;
    const int eof = Traits::eof();
    int c = s.current();
    for (;;) {
        while (c == '%')
            while (c != '\n' && c != eof) c = s.advance();
        if (c != ' ' && c != '\t' && c != '\n') break;
        while (c == ' ' || c == '\t' || c == '\n') c = s.advance();
        if (c != '%') break;
    }
    if (c == eof) s.stream.setstate(std::ios::eofbit);
}

template <class Source>
static bool takeIn(Source s, char& c) {
    if (!skipIn(s)) return false;
    c = (char)s.current();
    s.bump();
    return true;
}

template <class Source>
static bool wordIn(Source s, char* out, size_t size) {
    out[0] = 0;
    if (!skipIn(s)) return false;
    size_t n = wordRun(s, out, 0, size);
    int c = s.current();
    while (n + 1 < size && c != Traits::eof() && !isBlank(c)) {
        out[n++] = (char)c;
        c = s.advance();
    }
    out[n] = 0;
    if (c == Traits::eof()) s.stream.setstate(std::ios::eofbit);
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
static int takeDecimal(Source source, size_t size, bool fraction, NumberText& t) {
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

// A number after blanks; false without digits, or with more characters than
// size allows.
template <class Source>
static bool takeNumber(Source s, size_t size, bool fraction, NumberText& t) {
    if (!skipIn(s)) return false;
    if (takeDecimal(s, size, fraction, t) == Traits::eof()) s.stream.setstate(std::ios::eofbit);
    if (!t.digits || t.length + 1 >= size) {
        s.stream.setstate(std::ios::failbit);
        return false;
    }
    return true;
}

// Unsigned values accept a minus sign and wrap, as the standard reading does;
// a magnitude beyond the type fails.
template <class Source>
static bool takeUnsigned(Source s, unsigned long long max, unsigned long long& value) {
    NumberText t;
    if (!takeNumber(s, 64, false, t)) return false;
    unsigned long long magnitude = t.value.digits;
    bool range = false;
    if (!t.value.exact) {
        const char* digits = t.text + (t.text[0] == '-' || t.text[0] == '+');
        errno = 0;
        magnitude = strtoull(digits, nullptr, 10);
        range = errno == ERANGE;
    }
    if (range || magnitude > max) {
        s.stream.setstate(std::ios::failbit);
        return false;
    }
    value = t.text[0] == '-' ? (0 - magnitude) & max : magnitude;
    return true;
}

template <class Source>
static bool takeSigned(Source s, long long min, long long max, long long& value) {
    NumberText t;
    if (!takeNumber(s, 64, false, t)) return false;
    errno = 0;
    long long v = strtoll(t.text, nullptr, 10);
    if (errno == ERANGE || v < min || v > max) {
        s.stream.setstate(std::ios::failbit);
        return false;
    }
    value = v;
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

template <class Source>
static bool takeDouble(Source s, double& value) {
    NumberText t;
    if (!takeNumber(s, 128, true, t)) return false;
    double quick;
    if (quickDouble(t.value, quick)) {
        value = quick;
        return true;
    }
    errno = 0;
    double v = strtod(t.text, nullptr);
    if (errno == ERANGE && (v > 1 || v < -1)) {
        s.stream.setstate(std::ios::failbit);
        return false;
    }
    value = v;
    return true;
}

// Digits and a power of ten that a float holds exactly give the correctly
// rounded float in one float operation, where floats are computed as floats.
// Otherwise the double of the fast path rounded to a float is the float of
// the text, unless the double lies within a unit of its last place of a
// point halfway between two floats; such numbers, and those outside the
// normal floats, go to the C library.
static const float floatPowers[11] = {1e0f, 1e1f, 1e2f, 1e3f, 1e4f, 1e5f,
                                      1e6f, 1e7f, 1e8f, 1e9f, 1e10f};

static bool quickFloat(const Decimal& d, float& f) {
#if FLT_EVAL_METHOD == 0
    if (d.exact && d.digits <= (1u << 24) && d.scale >= -10 && d.scale <= 10) {
        float v = d.scale >= 0 ? (float)d.digits * floatPowers[d.scale]
                               : (float)d.digits / floatPowers[-d.scale];
        f = d.negative ? -v : v;
        return true;
    }
#endif
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

template <class Source>
static bool takeFloat(Source s, float& value) {
    NumberText t;
    if (!takeNumber(s, 128, true, t)) return false;
    float quick;
    if (quickFloat(t.value, quick)) {
        value = quick;
        return true;
    }
    errno = 0;
    float v = strtof(t.text, nullptr);
    if (errno == ERANGE && (v > 1 || v < -1)) {
        s.stream.setstate(std::ios::failbit);
        return false;
    }
    value = v;
    return true;
}

// Values of the smaller types, read as the largest.
template <class Source, class T>
static bool takeWhole(Source s, T& value) {
    if constexpr (std::is_unsigned<T>::value) {
        unsigned long long v;
        if (!takeUnsigned(s, std::numeric_limits<T>::max(), v)) return false;
        value = (T)v;
    } else {
        long long v;
        if (!takeSigned(s, std::numeric_limits<T>::min(), std::numeric_limits<T>::max(), v))
            return false;
        value = (T)v;
    }
    return true;
}

// The bulk of vertex lists: a number of plain digits (for a float, with a
// sign, a point and more digits) after blanks, from p on and whole before
// end, is read at once into d and its end returned. Anything else
// (exponents, more than 18 digits, the end of the piece) gives null and is
// left to takeNumber.
static inline const char* plainNumber(const char* p, const char* end, bool fraction, Decimal& d) {
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

// ---------------------------------------------------------------------------
// The scanner's readings
// ---------------------------------------------------------------------------

// A plain scanner reads through the buffer, as the calls alone do; one
// that reads ahead, through itself.
template <class Read>
static auto readWith(OrvScanner& scanner, Read read) {
    if (scanner.readsAhead()) return read(AheadSource(scanner));
    return read(BufferSource(scanner.stream));
}

int OrvScanner::peek() {
    return readWith(*this, [](auto s) { return peekIn(s); });
}
int OrvScanner::get() {
    return readWith(*this, [](auto s) { return getIn(s); });
}
bool OrvScanner::skip() {
    return readWith(*this, [](auto s) { return skipIn(s); });
}
void OrvScanner::nextItem() {
    readWith(*this, [](auto s) { nextItemIn(s); });
}
bool OrvScanner::take(char& c) {
    return readWith(*this, [&](auto s) { return takeIn(s, c); });
}
bool OrvScanner::word(char* out, size_t size) {
    return readWith(*this, [&](auto s) { return wordIn(s, out, size); });
}
bool OrvScanner::number(unsigned short& value) {
    return readWith(*this, [&](auto s) { return takeWhole(s, value); });
}
bool OrvScanner::number(short& value) {
    return readWith(*this, [&](auto s) { return takeWhole(s, value); });
}
bool OrvScanner::number(int& value) {
    return readWith(*this, [&](auto s) { return takeWhole(s, value); });
}
bool OrvScanner::number(unsigned long& value) {
    return readWith(*this, [&](auto s) { return takeWhole(s, value); });
}
bool OrvScanner::number(long& value) {
    return readWith(*this, [&](auto s) { return takeWhole(s, value); });
}
bool OrvScanner::number(double& value) {
    return readWith(*this, [&](auto s) { return takeDouble(s, value); });
}

// Index values and floats, the bulk of vertex lists, try the plain number
// in the piece first.
bool OrvScanner::number(unsigned int& value) {
    Decimal d;
    const char* after = ready() ? plainNumber(at, end, false, d) : nullptr;
    if (after && d.digits <= UINT_MAX) {
        at = after;
        value = (unsigned)d.digits;
        return true;
    }
    return readWith(*this, [&](auto s) { return takeWhole(s, value); });
}
bool OrvScanner::number(float& value) {
    Decimal d;
    const char* after = ready() ? plainNumber(at, end, true, d) : nullptr;
    float f;
    if (after && quickFloat(d, f)) {
        at = after;
        value = f;
        return true;
    }
    return readWith(*this, [&](auto s) { return takeFloat(s, value); });
}

bool OrvScanner::quick(unsigned& value, char separator) {
    Decimal d;
    const char* p = state.good() ? plainNumber(at, end, false, d) : nullptr;
    if (!p || d.digits > UINT_MAX) return false;
    while (p < end && isBlank((unsigned char)*p)) p++;
    if (p == end || *p != separator) return false;
    at = p + 1;
    value = (unsigned)d.digits;
    return true;
}

bool OrvScanner::quick(float* values, unsigned count, char separator) {
    const char* p = state.good() ? at : nullptr;
    for (unsigned k = 0; p && k < count; k++) {
        Decimal d;
        p = plainNumber(p, end, true, d);
        if (p && !quickFloat(d, values[k])) p = nullptr;
    }
    if (!p) return false;
    while (p < end && isBlank((unsigned char)*p)) p++;
    if (p == end || *p != separator) return false;
    at = p + 1;
    return true;
}

bool OrvParseFloat(const char* word, float& value) {
    // A plain decimal number that is the whole word has the quick value;
    // the rest (exponents, hexadecimal, infinities) is the C library's. The
    // word's terminating zero is what ends the number.
    const char* last = word + strlen(word);
    Decimal d;
    float quick;
    if (plainNumber(word, last + 1, true, d) == last && quickFloat(d, quick)) {
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
    BufferSource s(in);
    return peekIn(s);
}
int OrvScanGet(std::istream& in) {
    BufferSource s(in);
    return getIn(s);
}
bool OrvScanSkip(std::istream& in) {
    BufferSource s(in);
    return skipIn(s);
}
bool OrvScanChar(std::istream& in, char& c) {
    BufferSource s(in);
    return takeIn(s, c);
}
bool OrvScanWord(std::istream& in, char* buffer, size_t size) {
    BufferSource s(in);
    return wordIn(s, buffer, size);
}
void OrvScanNextItem(std::istream& in) {
    BufferSource s(in);
    nextItemIn(s);
}
bool OrvScanNumber(std::istream& in, unsigned short& value) {
    BufferSource s(in);
    return takeWhole(s, value);
}
bool OrvScanNumber(std::istream& in, short& value) {
    BufferSource s(in);
    return takeWhole(s, value);
}
bool OrvScanNumber(std::istream& in, unsigned int& value) {
    BufferSource s(in);
    return takeWhole(s, value);
}
bool OrvScanNumber(std::istream& in, int& value) {
    BufferSource s(in);
    return takeWhole(s, value);
}
bool OrvScanNumber(std::istream& in, unsigned long& value) {
    BufferSource s(in);
    return takeWhole(s, value);
}
bool OrvScanNumber(std::istream& in, long& value) {
    BufferSource s(in);
    return takeWhole(s, value);
}
bool OrvScanNumber(std::istream& in, float& value) {
    BufferSource s(in);
    return takeFloat(s, value);
}
bool OrvScanNumber(std::istream& in, double& value) {
    BufferSource s(in);
    return takeDouble(s, value);
}
