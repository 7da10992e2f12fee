// Windows device-independent bitmaps with a palette: 1, 4 or 8 bits a pixel,
// uncompressed, bottom-up or top-down, with the OS/2 or any Windows header.
#include "orv/bitmapfile.h"
#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/resource.h"

#include "bitmap_build.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>

static unsigned long le16(const unsigned char* p) {
    return p[0] | (unsigned long)p[1] << 8;
}

static unsigned long le32(const unsigned char* p) {
    return le16(p) | le16(p + 2) << 16;
}

// The whole file in memory (malloc), or null.
static unsigned char* wholeFile(FILE* f, unsigned long& size) {
    struct stat st;
    if (fstat(fileno(f), &st) != 0 || st.st_size < 0) return nullptr;
    size = (unsigned long)st.st_size;
    unsigned char* bytes = (unsigned char*)malloc(size ? size : 1);
    if (bytes && fread(bytes, 1, size, f) != size) {
        free(bytes);
        return nullptr;
    }
    return bytes;
}

static OrvBitmap* dibFailure(const char* format, const char* file, unsigned char* bytes) {
    free(bytes);
    OrvPrint(format, file);
    return nullptr;
}

OrvBitmap* OrvReadDIBBitmap(OrvCanvas* canvas, const char* file) {
    if (!canvas || !file) return nullptr;
    const char* found = canvas->director->findInPath(file);
    FILE* f = found ? fopen(found, "rb") : nullptr;
    if (!f) return dibFailure("DIB: couldn't open %s.\n", file, nullptr);
    unsigned long size = 0;
    unsigned char* b = wholeFile(f, size);
    fclose(f);
    if (!b) return dibFailure("DIB: couldn't open %s.\n", file, nullptr);
    if (size < 26 || b[0] != 'B' || b[1] != 'M')
        return dibFailure("DIB: Not a DIB file (%s).\n", file, b);
    unsigned long offset = le32(b + 10), header = le32(b + 14);
    long width, height;
    unsigned long depth, compression = 0, used = 0, entry;
    if (header == 12) {
        // The OS/2 header: sizes of 16 bits, palette entries of three bytes.
        width = (long)le16(b + 18);
        height = (long)(short)le16(b + 20);
        depth = le16(b + 24);
        entry = 3;
    } else if (header >= 40 && 14 + header <= size) {
        width = (long)(int)le32(b + 18);
        height = (long)(int)le32(b + 22);
        depth = le16(b + 28);
        compression = le32(b + 30);
        used = le32(b + 46);
        entry = 4;
    } else {
        return dibFailure("DIB: Bad header (%s).\n", file, b);
    }
    if (depth == 16 || depth == 24 || depth == 32) {
        free(b);
        OrvPrint("DIB: Format not implemented (16, 24, 32).\n");
        return nullptr;
    }
    if (compression == 1 || compression == 2) {
        free(b);
        OrvPrint("DIB: Format not implemented (BI_RLE4, BI_RLE8).\n");
        return nullptr;
    }
    int topDown = height < 0;
    unsigned long w = (unsigned long)width, h = (unsigned long)(topDown ? -height : height);
    if (compression != 0 || (depth != 1 && depth != 4 && depth != 8) || width <= 0 || height == 0 ||
        w > OrvBitmapMaxSide || h > OrvBitmapMaxSide)
        return dibFailure("DIB: Bad header (%s).\n", file, b);
    unsigned long colors = used ? used : 1UL << depth;
    if (colors > (1UL << depth)) return dibFailure("DIB: Bad header (%s).\n", file, b);
    unsigned long palette = 14 + header;
    unsigned long rowBytes = ((w * depth + 31) / 32) * 4;
    if (palette + colors * entry > size || offset > size || rowBytes * h > size - offset)
        return dibFailure("DIB: Truncated file (%s).\n", file, b);
    unsigned char* indices = (unsigned char*)malloc(w * h);
    if (!indices) {
        free(b);
        OrvError("## Orvis : Out of memory.\n");
        return nullptr;
    }
    unsigned long mask = (1UL << depth) - 1;
    for (unsigned long r = 0; r < h; r++) {
        const unsigned char* row = b + offset + r * rowBytes;
        unsigned long y = topDown ? r : h - 1 - r;
        for (unsigned long x = 0; x < w; x++) {
            unsigned long bit = x * depth;
            unsigned long v = (row[bit >> 3] >> (8 - depth - (bit & 7))) & mask;
            if (v >= colors) {
                free(indices);
                return dibFailure("DIB: Colour index out of the palette (%s).\n", file, b);
            }
            indices[y * w + x] = (unsigned char)v;
        }
    }
    OrvColor* map[256];
    memset(map, 0, sizeof map);
    unsigned char inUse[256];
    memset(inUse, 0, sizeof inUse);
    for (unsigned long i = 0; i < w * h; i++) inUse[indices[i]] = 1;
    for (unsigned long c = 0; c < colors; c++) {
        if (!inUse[c]) continue;
        const unsigned char* p = b + palette + c * entry;  // blue, green, red
        map[c] = canvas->director->color(p[2] / 255.0f, p[1] / 255.0f, p[0] / 255.0f);
    }
    free(b);
    OrvIndexedPicture picture = {w, h, indices, nullptr, map, -1};
    OrvBitmap* bitmap = OrvBuildIndexedBitmap(canvas, picture, file);
    free(indices);
    return bitmap;
}
