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
        int k = 24;
        do {
            digits[--k] = (char)('0' + v % 10);
            v /= 10;
        } while (v);
        memcpy(room(24), digits + k, (size_t)(24 - k));
        n += (size_t)(24 - k);
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
        n += (size_t)OrvFormatG(v, room(32));
        return *this;
    }
    // The text so far goes to the stream; a short write marks it bad.
    void flush() {
        if (n && out.rdbuf()->sputn(text, (std::streamsize)n) != (std::streamsize)n)
            out.setstate(std::ios::badbit);
        n = 0;
    }

private:
    // Where k more bytes (at most the whole buffer) can be written.
    char* room(size_t k) {
        if (n + k > sizeof text) flush();
        return text + n;
    }

    std::ostream& out;
    char text[480];
    size_t n;
};

#endif
