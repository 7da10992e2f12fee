// The bitmap of a picture given as colour indices, for the XPM2, DIB and GIF readers.
#include "bitmap_build.h"

#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/resource.h"

#include <cstdlib>
#include <cstring>

// Rows of one-bit pixels, most significant first, padded to 32 bits.
static unsigned char* bitRows(const OrvIndexedPicture& p, unsigned long& rowBytes,
                              int (*set)(const OrvIndexedPicture&, unsigned long, const void*),
                              const void* data) {
    rowBytes = ((p.width + 31) / 32) * 4;
    unsigned char* bits = (unsigned char*)calloc(rowBytes * p.height, 1);
    if (!bits) return nullptr;
    for (unsigned long y = 0; y < p.height; y++)
        for (unsigned long x = 0; x < p.width; x++)
            if (set(p, y * p.width + x, data))
                bits[y * rowBytes + (x >> 3)] |= (unsigned char)(0x80 >> (x & 7));
    return bits;
}

static int pixelBit(const OrvIndexedPicture& p, unsigned long i, const void* data) {
    return (int)(((const unsigned long*)data)[p.index(i)] & 1);
}

static int opaqueBit(const OrvIndexedPicture& p, unsigned long i, const void*) {
    return (long)p.index(i) != p.transparent;
}

OrvBitmap* OrvBuildIndexedBitmap(OrvCanvas* canvas, const OrvIndexedPicture& p, const char* name) {
    unsigned long count = p.width * p.height;
    // Only the colours in use are realised: a large map on a pseudo-colour screen
    // would otherwise fill the colormap.
    unsigned long highest = 0;
    for (unsigned long i = 0; i < count; i++)
        if (p.index(i) > highest) highest = p.index(i);
    unsigned long* pixels = (unsigned long*)calloc(highest + 1, sizeof(unsigned long));
    unsigned char* used = (unsigned char*)calloc(highest + 1, 1);
    if (!pixels || !used) {
        free(pixels);
        free(used);
        OrvError("## Orvis : Out of memory.\n");
        return nullptr;
    }
    int anyTransparent = 0;
    for (unsigned long i = 0; i < count; i++) used[p.index(i)] = 1;
    for (unsigned long c = 0; c <= highest; c++) {
        if (!used[c]) continue;
        if ((long)c == p.transparent || !p.colors[c])
            anyTransparent |= (long)c == p.transparent;
        else
            pixels[c] = p.colors[c]->index(canvas);
    }
    unsigned short depth = canvas->depth;
    unsigned long rowBytes = 0;
    unsigned char* data = nullptr;
    if (depth == 1) {
        data = bitRows(p, rowBytes, pixelBit, pixels);
    } else {
        unsigned long bytesPerPixel = depth <= 8 ? 1 : 4;
        rowBytes = (p.width * bytesPerPixel + 3) & ~3UL;
        data = (unsigned char*)calloc(rowBytes * p.height, 1);
        if (data) {
            for (unsigned long y = 0; y < p.height; y++) {
                unsigned char* row = data + y * rowBytes;
                for (unsigned long x = 0; x < p.width; x++) {
                    unsigned long v = pixels[p.index(y * p.width + x)];
                    if (bytesPerPixel == 1) {
                        row[x] = (unsigned char)v;
                    } else {
                        // Most significant byte first, as setBits states the order.
                        row[4 * x] = (unsigned char)(v >> 24);
                        row[4 * x + 1] = (unsigned char)(v >> 16);
                        row[4 * x + 2] = (unsigned char)(v >> 8);
                        row[4 * x + 3] = (unsigned char)v;
                    }
                }
            }
        }
    }
    if (!data) {
        free(pixels);
        free(used);
        OrvError("## Orvis : Out of memory.\n");
        return nullptr;
    }
    OrvBitmap* bitmap = new OrvBitmap(canvas, p.width, p.height, depth);
    bitmap->setBits(Orv2dRect(0, 0, p.width, p.height), data, rowBytes * p.height, 32, 0);
    free(data);
    for (unsigned long c = 0; c <= highest; c++)
        if (used[c] && (long)c != p.transparent && p.colors[c]) bitmap->useColor(p.colors[c]);
    free(pixels);
    free(used);
    if (anyTransparent) {
        unsigned long maskBytes = 0;
        unsigned char* bits = bitRows(p, maskBytes, opaqueBit, nullptr);
        if (bits) {
            OrvBitmap* mask = new OrvBitmap(canvas, p.width, p.height, 1);
            mask->setBits(Orv2dRect(0, 0, p.width, p.height), bits, maskBytes * p.height, 32, 0);
            free(bits);
            bitmap->setMask(mask);
        }
    }
    if (name) {
        free(bitmap->name);
        bitmap->name = (char*)malloc(strlen(name) + 1);
        if (bitmap->name) strcpy(bitmap->name, name);
    }
    return bitmap;
}
