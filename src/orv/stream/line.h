// One line of the text format, built in place and handed to the stream in a
// single call: writing item by item through the formatted insertion costs
// more than the text itself. Numbers come out as the standard insertion
// writes them (floats at six significant digits).
#ifndef ORV_STREAM_LINE_H
#define ORV_STREAM_LINE_H

#include <cstdio>
#include <cstring>
#include <ostream>

// v as printf's "%g" writes it (six significant digits), in out, which has
// room for 32 bytes; the length is returned. Faster than printf, with the
// same text: cases where a quick rounding could differ go to printf.
int OrvFormatG(double v, char* out);

class _OrvLine_ {
public:
    explicit _OrvLine_(std::ostream& stream) : out(stream), n(0) {}
    ~_OrvLine_() { flush(); }

    _OrvLine_& add(const char* s) {
        for (size_t k = strlen(s); k;) {
            if (n == sizeof text) flush();
            size_t part = k < sizeof text - n ? k : sizeof text - n;
            memcpy(text + n, s, part);
            n += part;
            s += part;
            k -= part;
        }
        return *this;
    }
    _OrvLine_& add(char c) {
        if (n == sizeof text) flush();
        text[n++] = c;
        return *this;
    }
    _OrvLine_& add(unsigned long v) {
        char digits[24];
        int k = 0;
        do {
            digits[k++] = (char)('0' + v % 10);
            v /= 10;
        } while (v);
        while (k) add(digits[--k]);
        return *this;
    }
    _OrvLine_& add(long v) {
        if (v < 0) {
            add('-');
            return add(0ul - (unsigned long)v);
        }
        return add((unsigned long)v);
    }
    _OrvLine_& add(double v) {
        char digits[32];
        int k = OrvFormatG(v, digits);
        for (int i = 0; i < k; i++) add(digits[i]);
        return *this;
    }
    // The text so far goes to the stream; a short write marks it bad.
    void flush() {
        if (n && out.rdbuf()->sputn(text, (std::streamsize)n) != (std::streamsize)n)
            out.setstate(std::ios::badbit);
        n = 0;
    }

private:
    std::ostream& out;
    char text[480];
    size_t n;
};

#endif
