// Image files: the portable maps "P1" to "P6" and the library's own "V1" to "V8",
// read into OrvImage by the director, written back by writeImage, and the mip
// levels of an image written as text maps.
#include "orv/director.h"
#include "orv/image.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>

namespace {

// How a magic lays out its pixels.
struct MapKind {
    OrvImageType type;
    int raw;
    int packed;        // bits, one plane (or two for the two-bit type)
    int hasMaximum;    // the header has a maximum value
    int samples;       // numbers a pixel in the file (unpacked kinds)
    int multiChannel;  // out-of-range values say "bad values."
    int reverse;       // rows are turned over after loading
};

int kindOf(char a, char b, MapKind& k) {
    memset(&k, 0, sizeof k);
    // The portable maps and the "V" forms differ only in 2/5 (grey against luminance and
    // alpha) and in 7/8, which only the "V" forms have.
    bool portable = a == 'P';
    k.reverse = portable;
    k.raw = b == '4' || b == '5' || b == '6' || b == '8';
    switch (b) {
        case '1':
        case '4':
            k.type = OrvImageLuminance, k.packed = 1;
            return 1;
        case '2':
        case '5':
            if (portable)
                k.type = OrvImageRGB, k.hasMaximum = 1, k.samples = 1;
            else
                k.type = OrvImageLuminanceAlpha, k.packed = 1;
            return 1;
        case '3':
        case '6':
            k.type = OrvImageRGB, k.hasMaximum = 1, k.samples = 3, k.multiChannel = 1;
            return 1;
        case '7':
        case '8':
            if (portable) return 0;
            k.type = OrvImageRGBA, k.hasMaximum = 1, k.samples = 4, k.multiChannel = 1;
            return 1;
        default:
            return 0;
    }
}

int isBlank(int c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
}

// Skips blanks and "#" comments up to the next character, which stays unread.
int skipBlanks(FILE* f) {
    int c;
    while ((c = getc(f)) != EOF) {
        if (c == '#') {
            while ((c = getc(f)) != EOF && c != '\n') {}
            if (c == EOF) return EOF;
            continue;
        }
        if (!isBlank(c)) break;
    }
    if (c != EOF) ungetc(c, f);
    return c;
}

// A decimal number after blanks and comments: 1 read, 0 not a number, -1 the end.
int readNumber(FILE* f, unsigned long& value) {
    int c = skipBlanks(f);
    if (c == EOF) return -1;
    if (c < '0' || c > '9') return 0;
    value = 0;
    while ((c = getc(f)) >= '0' && c <= '9') {
        value = value * 10 + (unsigned long)(c - '0');
        // Nothing of this size can be in a file: stop before the arithmetic wraps.
        if (value > 0xFFFFFFFFUL) return 0;
    }
    if (c != EOF) ungetc(c, f);
    return 1;
}

// One pixel bit of the text forms: a single "0" or "1", blanks allowed between.
int readBit(FILE* f, int& bit) {
    int c = skipBlanks(f);
    if (c == EOF) return -1;
    getc(f);
    if (c != '0' && c != '1') return 0;
    bit = c - '0';
    return 1;
}

// a * b * c, or 0 when that exceeds `limit`.
unsigned long boundedProduct(unsigned long a, unsigned long b, unsigned long c,
                             unsigned long limit) {
    if (!a || !b || !c) return 0;
    if (a > limit || b > limit / a) return 0;
    unsigned long ab = a * b;
    if (c > limit / ab) return 0;
    return ab * c;
}

// Turns the rows over, top first to bottom first.
void reverseRows(unsigned char* data, unsigned long rowBytes, unsigned long rows) {
    unsigned char* tmp = (unsigned char*)malloc(rowBytes);
    if (!tmp) return;
    for (unsigned long i = 0, j = rows - 1; i < j; i++, j--) {
        memcpy(tmp, data + i * rowBytes, rowBytes);
        memcpy(data + i * rowBytes, data + j * rowBytes, rowBytes);
        memcpy(data + j * rowBytes, tmp, rowBytes);
    }
    free(tmp);
}

// Clears the bits past the width in the last byte of a plane row.
void clearTail(unsigned char* plane, unsigned long width) {
    if (width & 7) plane[width >> 3] &= (unsigned char)(0xFF00 >> (width & 7));
}

enum Outcome {
    Done,
    BadFormat,
    BadValue
};

Outcome readPacked(FILE* f, const MapKind& k, unsigned long w, unsigned long h, unsigned char* data,
                   unsigned long stride) {
    int planes = k.type == OrvImageLuminanceAlpha ? 2 : 1;
    unsigned long fileRow = (w + 7) / 8;
    for (unsigned long y = 0; y < h; y++) {
        unsigned char* row = data + y * stride * planes;
        if (k.raw) {
            for (int p = 0; p < planes; p++) {
                if (fread(row + p * stride, 1, fileRow, f) != fileRow) return BadFormat;
                clearTail(row + p * stride, w);
            }
            continue;
        }
        // The text form gives each pixel's bits together: luminance, then alpha.
        for (unsigned long x = 0; x < w; x++)
            for (int p = 0; p < planes; p++) {
                int bit = 0, r = readBit(f, bit);
                if (r < 0) return BadFormat;
                if (r == 0) return BadValue;
                if (bit) row[p * stride + (x >> 3)] |= (unsigned char)(0x80 >> (x & 7));
            }
    }
    return Done;
}

Outcome readSamples(FILE* f, const MapKind& k, unsigned long w, unsigned long h,
                    unsigned long maximum, unsigned char* data) {
    unsigned long perRow = w * k.samples;
    int wide = k.raw && maximum > 255;
    unsigned char* line = nullptr;
    if (k.raw) {
        line = (unsigned char*)malloc(perRow * (wide ? 2 : 1));
        if (!line) return BadFormat;
    }
    Outcome result = Done;
    // Binary bytes of the full range are the pixels themselves: straight into the rows.
    if (k.raw && !wide && maximum == 255 && (unsigned long)k.samples == k.type) {
        free(line);
        for (unsigned long y = 0; y < h; y++)
            if (fread(data + y * perRow, 1, perRow, f) != perRow) return BadFormat;
        return Done;
    }
    for (unsigned long y = 0; y < h && result == Done; y++) {
        if (k.raw && fread(line, wide ? 2 : 1, perRow, f) != perRow) {
            result = BadFormat;
            break;
        }
        unsigned char* out = data + y * w * k.type;
        for (unsigned long i = 0; i < perRow; i++) {
            unsigned long v = 0;
            if (!k.raw) {
                int r = readNumber(f, v);
                if (r < 0) {
                    result = BadFormat;
                    break;
                }
                if (r == 0) {
                    result = BadValue;
                    break;
                }
            } else {
                v = wide ? (unsigned long)line[2 * i] << 8 | line[2 * i + 1] : line[i];
            }
            if (v > maximum) {
                result = BadValue;
                break;
            }
            unsigned char byte = maximum == 255
                                     ? (unsigned char)v
                                     : (unsigned char)((v * 255 + maximum / 2) / maximum);
            if (k.samples == 1) {
                out[3 * i] = out[3 * i + 1] = out[3 * i + 2] = byte;
            } else {
                out[i] = byte;
            }
        }
    }
    free(line);
    return result;
}

OrvImage* imageFailure(OrvDirector* d, const char* message) {
    OrvPrint("%s", message);
    return d->defaultImage();
}

// Writes numbers as text, a blank between them, lines of at most 70 characters.
struct TextLine {
    FILE* f;
    int column = 0;
    void put(unsigned value) {
        char text[16];
        int n = snprintf(text, sizeof text, "%u", value);
        if (column && column + 1 + n > 70) {
            fputc('\n', f);
            column = 0;
        }
        if (column) fputc(' ', f), column++;
        fputs(text, f);
        column += n;
    }
    void end() {
        if (column) fputc('\n', f);
        column = 0;
    }
};

// The portable map of an image: the digit chooses the kind, raw or not.
int writeMap(FILE* f, const OrvImage* image, int digit, unsigned long bottomUp) {
    unsigned long w = image->width, h = image->height;
    fprintf(f, "P%d\n# Generated by MavrelOrvis\n%lu %lu\n", digit, w, h);
    int kind = digit > 3 ? digit - 3 : digit;
    int raw = digit > 3;
    if (kind != 1) fputs("255\n", f);
    unsigned long rowBytes = image->rowBytes();
    int samples = kind == 3 ? 3 : 1;
    unsigned long fileRow = kind == 1 ? (w + 7) / 8 : w * samples;
    unsigned char* line = (unsigned char*)malloc(fileRow ? fileRow : 1);
    if (!line) return 0;
    TextLine text{f};
    for (unsigned long r = 0; r < h; r++) {
        unsigned long y = bottomUp ? h - 1 - r : r;
        const unsigned char* row = image->pixels + y * rowBytes;
        if (kind == 1) {
            if (raw) {
                memcpy(line, row, fileRow);
                fwrite(line, 1, fileRow, f);
            } else {
                for (unsigned long x = 0; x < w; x++) text.put((row[x >> 3] >> (7 - (x & 7))) & 1);
                text.end();
            }
            continue;
        }
        for (unsigned long x = 0; x < w; x++) {
            unsigned char c[4];
            image->pixel(x, y, c);
            for (int k = 0; k < samples; k++) {
                if (raw)
                    line[x * samples + k] = c[k];
                else
                    text.put(c[k]);
            }
        }
        if (raw)
            fwrite(line, 1, fileRow, f);
        else
            text.end();
    }
    free(line);
    return 1;
}

}  // namespace

OrvImage* OrvDirector::image(const char* imageName, unsigned long mip) {
    if (!imageName || !*imageName) return defaultImage();
    OrvImage* known = findImage(imageName);
    if (known) return known;
    const char* found = findInPath(imageName);
    if (!found) return defaultImage();
    FILE* f = fopen(found, "rb");
    if (!f) {
        OrvPrint("OrvDirector::image : Couldn't open file %s.\n", found);
        return defaultImage();
    }
    struct stat st;
    unsigned long fileSize = fstat(fileno(f), &st) == 0 ? (unsigned long)st.st_size : 0;
    int a = getc(f), b = getc(f);
    MapKind k;
    if (a != 'P' && a != 'V') {
        fclose(f);
        return imageFailure(this, "OrvDirector::image : Unknown bitmap format. (1)\n");
    }
    if (!kindOf((char)a, (char)b, k)) {
        fclose(f);
        return imageFailure(this, "OrvDirector::image : Unknown bitmap format. (2)\n");
    }
    const char* badFormat = "OrvDirector::image : bad format.\n";
    unsigned long w = 0, h = 0, maximum = 1;
    if (readNumber(f, w) != 1 || readNumber(f, h) != 1 ||
        (k.hasMaximum && readNumber(f, maximum) != 1) || w < 1 || h < 1 || maximum < 1 ||
        w > 0x7FFFFFFFUL || h > 0x7FFFFFFFUL || (k.raw && maximum > 65535)) {
        fclose(f);
        return imageFailure(this, badFormat);
    }
    // The binary data begins after a single blank.
    if (k.raw && !isBlank(getc(f))) {
        fclose(f);
        return imageFailure(this, badFormat);
    }
    // What the file holds bounds what is allocated: a header that claims more pixels
    // than the rest of the file can describe is refused before any allocation.
    long at = ftell(f);
    unsigned long left = at >= 0 && (unsigned long)at <= fileSize ? fileSize - at : 0;
    unsigned long stride = 0, size = 0, needed = 0;
    if (k.packed) {
        int planes = k.type == OrvImageLuminanceAlpha ? 2 : 1;
        stride = ((w + 31) / 32) * 4;
        needed = k.raw ? boundedProduct((w + 7) / 8, h, planes, left)
                       : boundedProduct(w, h, planes, left);
        size = needed ? stride * h * planes : 0;
    } else {
        unsigned long sampleBytes = k.raw && maximum > 255 ? 2 : 1;
        needed = boundedProduct(w, h, k.samples * sampleBytes, left);
        size = needed ? w * h * k.type : 0;
    }
    if (!needed) {
        fclose(f);
        return imageFailure(this, badFormat);
    }
    unsigned char* data = (unsigned char*)calloc(size, 1);
    if (!data) {
        fclose(f);
        return imageFailure(this, "## Orvis : Out of memory.\n");
    }
    Outcome outcome =
        k.packed ? readPacked(f, k, w, h, data, stride) : readSamples(f, k, w, h, maximum, data);
    fclose(f);
    if (outcome != Done) {
        free(data);
        if (outcome == BadFormat) return imageFailure(this, badFormat);
        return imageFailure(this, k.multiChannel ? "OrvDirector::image : bad values.\n"
                                                 : "OrvDirector::image : bad value.\n");
    }
    if (k.reverse && h >= 2) reverseRows(data, size / h, h);
    OrvImage* result = new OrvImage(this, imageName, k.type, w, h, data, mip);
    result->fileFormat = OrvImageMagic((char)a, (char)b);
    return result;
}

unsigned long OrvDirector::writeImage(const char* file, const OrvImage* image, unsigned long raw,
                                      unsigned long bottomUp) {
    if (!image || !image->pixels) return OrvError("OrvDirector::writeImage : No image.\n");
    int digit = 3;
    if (image->isPacked())
        digit = 1;
    else if (image->type == OrvImageLuminance || image->type == OrvImageLuminanceAlpha ||
             image->fileFormat == OrvImageMagic('P', '2') ||
             image->fileFormat == OrvImageMagic('P', '5'))
        digit = 2;
    if (raw) digit += 3;
    FILE* f = file ? fopen(file, "wb") : nullptr;
    if (!f) return OrvError("OrvDirector::writeImage : Couldn't open file %s.\n", file ? file : "");
    int ok = writeMap(f, image, digit, bottomUp);
    if (ferror(f)) ok = 0;
    if (fclose(f) != 0) ok = 0;
    if (!ok) return OrvError("OrvDirector::writeImage : Couldn't write file %s.\n", file);
    return 1;
}

int OrvWriteMipmapsPPM(const OrvImage* image, const char* prefix) {
    if (!image || !image->pixels || !prefix)
        return OrvError("OrvWriteMipmapsPPM : Internal error.\n");
    if (image->type != OrvImageRGB || image->isPacked())
        return OrvError("OrvWriteMipmapsPPM : Sorry, not implemented. (just RGB)\n");
    unsigned long w = image->width, h = image->height;
    size_t bytes = (size_t)w * h * 3;
    unsigned char* level = (unsigned char*)malloc(bytes);
    if (!level) return OrvError("OrvWriteMipmapsPPM : Internal error.\n");
    memcpy(level, image->pixels, bytes);
    char name[4096];
    for (int n = 0;; n++) {
        snprintf(name, sizeof name, n < 10 ? "%s%1d.ppm" : "%s%2d.ppm", prefix, n);
        // A level is written as an image of its own, outside any director.
        OrvImage mip(nullptr, nullptr, OrvImageRGB, w, h, level, 0);
        FILE* f = fopen(name, "wb");
        int ok = f && writeMap(f, &mip, 3, 1);
        if (f && (ferror(f) | fclose(f))) ok = 0;
        mip.pixels = nullptr;
        if (!ok || (w == 1 && h == 1)) {
            free(level);
            return ok ? 1 : OrvError("OrvWriteMipmapsPPM : Internal error.\n");
        }
        unsigned long nw = w > 1 ? w / 2 : 1, nh = h > 1 ? h / 2 : 1;
        unsigned char* half = (unsigned char*)malloc((size_t)nw * nh * 3);
        if (!half || !OrvScaleImage(OrvImageRGB, 3, nw, nh, half, w, h, level)) {
            free(half);
            free(level);
            return OrvError("OrvWriteMipmapsPPM : Internal error.\n");
        }
        free(level);
        level = half;
        w = nw;
        h = nh;
    }
}
