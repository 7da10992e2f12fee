// One line of the text format, built in place and handed to the stream in a
// single call: writing item by item through the formatted insertion costs
// more than the text itself. Numbers come out as the standard insertion
// writes them (floats at six significant digits). Arrays of many lines go
// through one larger buffer, which the file stream writes out directly in
// fewer and larger writes.
#ifndef ORV_STREAM_LINE_H
#define ORV_STREAM_LINE_H

#include <cstdio>
#include <cstring>
#include <memory>
#include <ostream>

// v as printf's "%g" writes it (six significant digits), in out, which has
// room for 32 bytes; the length is returned. Faster than printf, with the
// same text: cases where a quick rounding could differ go to printf.
int OrvFormatG(double v, char* out);
// The decimal digits of v in out, which has room for 20 bytes; the length is
// returned.
int OrvFormatUnsigned(unsigned long v, char* out);

class _OrvLine_ {
public:
    static const size_t lineSize = 480;
    static const size_t bulkSize = 65536;

    explicit _OrvLine_(std::ostream& stream, size_t capacity = lineSize)
        : out(stream), heap(capacity > lineSize ? new char[capacity] : nullptr),
          text(heap ? heap.get() : inlineText), size(heap ? capacity : lineSize), n(0) {}
    ~_OrvLine_() { flush(); }
    _OrvLine_(const _OrvLine_&) = delete;
    _OrvLine_& operator=(const _OrvLine_&) = delete;

    _OrvLine_& add(const char* s) {
        for (size_t k = strlen(s); k;) {
            if (n == size) flush();
            size_t part = k < size - n ? k : size - n;
            memcpy(text + n, s, part);
            n += part;
            s += part;
            k -= part;
        }
        return *this;
    }
    _OrvLine_& add(char c) {
        if (n == size) flush();
        text[n++] = c;
        return *this;
    }
    _OrvLine_& add(unsigned long v) {
        n += (size_t)OrvFormatUnsigned(v, room(20));
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

    // Where k more bytes (at most the whole buffer) can be written straight;
    // commit then takes what was written there, up to end.
    char* room(size_t k) {
        if (n + k > size) flush();
        return text + n;
    }
    void commit(const char* end) { n = (size_t)(end - text); }

private:
    std::ostream& out;
    char inlineText[lineSize];
    std::unique_ptr<char[]> heap;
    char* text;
    size_t size;
    size_t n;
};

#endif
