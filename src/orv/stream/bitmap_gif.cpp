// GIF files (87a and 89a): the blocks, the colour maps, the LZW decoder and the
// interlace order, then the bitmap of the first image.
#include "orv/bitmapfile.h"
#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/resource.h"

#include "bitmap_build.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

OrvGifFile::OrvGifFile(std::istream& in)
    : screenWidth(0), screenHeight(0), width(0), height(0), colorMapSize(0), data(nullptr),
      transparent(-1), interlaced(0), failed(0), stream(in), block(nullptr), blockSize(0),
      blockRead(0), bitBuffer(0), bitCount(0) {
    memset(colorMap, 0, sizeof colorMap);
    unsigned char head[13];
    if (!in.read((char*)head, 13) ||
        (memcmp(head, "GIF87a", 6) != 0 && memcmp(head, "GIF89a", 6) != 0)) {
        error("not a GIF file");
        return;
    }
    screenWidth = head[6] | head[7] << 8;
    screenHeight = head[8] | head[9] << 8;
    unsigned char global[256][3];
    unsigned globalSize = 0;
    if (head[10] & 0x80) {
        globalSize = 2u << (head[10] & 7);
        if (!readColorMap(globalSize, global)) return;
    }
    for (;;) {
        int kind = in.get();
        if (kind == ';' || kind == EOF) {
            error("no image data found in GIF file");
            return;
        }
        if (kind == '!') {
            int label = in.get();
            if (label == EOF) {
                error("no image data found in GIF file");
                return;
            }
            if (label == 0xF9) {
                // Graphic control: the transparent colour of the image that follows.
                int size = in.get();
                unsigned char gce[4];
                if (size != 4 || !in.read((char*)gce, 4)) {
                    error("bad graphic control extension");
                    return;
                }
                transparent = (gce[0] & 1) ? gce[3] : -1;
            }
            if (!readBlocks(0)) return;
            continue;
        }
        if (kind != ',') {
            error("Unknown block type found in file.");
            return;
        }
        if (!readImage()) return;
        if (colorMapSize == 0) {
            if (!globalSize) {
                error("no colour map for the image");
                return;
            }
            memcpy(colorMap, global, sizeof global);
            colorMapSize = globalSize;
        }
        return;
    }
}

OrvGifFile::~OrvGifFile() {
    free(data);
    free(block);
}

int OrvGifFile::error(const char* text) {
    OrvPrint("OrvGifFile() - %s\n", text);
    failed = 1;
    return 0;
}

int OrvGifFile::readColorMap(unsigned count, unsigned char map[256][3]) {
    if (count > 256) return error("colour map too large");
    if (!stream.read((char*)map, (std::streamsize)count * 3))
        return error("unexpected end of file in a colour map");
    return 1;
}

// The data sub-blocks up to the empty one; with `keep`, joined into `block`.
int OrvGifFile::readBlocks(int keep) {
    for (;;) {
        int size = stream.get();
        if (size == EOF) return error("unexpected end of file in a data block");
        if (size == 0) return 1;
        if (!keep) {
            if (!stream.ignore(size) || stream.gcount() != size)
                return error("unexpected end of file in a data block");
            continue;
        }
        // Grown from what the stream really holds, never from what a header claims.
        if (blockRead + size > blockSize) {
            unsigned long grown = blockSize ? blockSize * 2 : 4096;
            unsigned char* bigger = (unsigned char*)realloc(block, grown);
            if (!bigger) {
                OrvPrint("## Orvis : Out of memory.\n");
                failed = 1;
                return 0;
            }
            block = bigger;
            blockSize = grown;
        }
        if (!stream.read((char*)block + blockRead, size))
            return error("unexpected end of file in a data block");
        blockRead += size;
    }
}

int OrvGifFile::readImage() {
    unsigned char d[9];
    if (!stream.read((char*)d, 9)) return error("unexpected end of file in an image descriptor");
    width = d[4] | d[5] << 8;
    height = d[6] | d[7] << 8;
    interlaced = (d[8] & 0x40) != 0;
    if (!width || !height) return error("image of no size");
    if (width > OrvBitmapMaxSide || height > OrvBitmapMaxSide) return error("image too large");
    if (d[8] & 0x80) {
        colorMapSize = 2u << (d[8] & 7);
        if (!readColorMap(colorMapSize, colorMap)) return 0;
    }
    int codeSize = stream.get();
    if (codeSize == EOF) return error("unexpected end of file before the image data");
    if (codeSize < 1 || codeSize > 8) return error("bad code size of the image data");
    blockRead = 0;
    if (!readBlocks(1)) return 0;
    bitBuffer = 0;
    bitCount = 0;
    // `block` now holds all the compressed data: the position restarts for readCode.
    blockSize = blockRead;
    blockRead = 0;
    if (!decode((unsigned)codeSize)) return 0;
    if (interlaced && !doInterlace()) return 0;
    return 1;
}

int OrvGifFile::readCode(unsigned bits) {
    while (bitCount < bits) {
        if (blockRead >= blockSize) return -1;
        bitBuffer |= (unsigned long)block[blockRead++] << bitCount;
        bitCount += 8;
    }
    int code = (int)(bitBuffer & ((1UL << bits) - 1));
    bitBuffer >>= bits;
    bitCount -= bits;
    return code;
}

int OrvGifFile::decode(unsigned codeSize) {
    const unsigned clear = 1u << codeSize, end = clear + 1;
    unsigned short prefix[4096];
    unsigned char suffix[4096];
    unsigned char stack[4097];
    for (unsigned i = 0; i < clear; i++) suffix[i] = (unsigned char)i;
    unsigned long total = (unsigned long)width * height, done = 0, capacity = 0;
    unsigned next = clear + 2, bits = codeSize + 1;
    int old = -1;
    unsigned char first = 0;
    while (done < total) {
        int code = readCode(bits);
        if (code < 0) return error("image data ends before the image");
        if ((unsigned)code == clear) {
            next = clear + 2;
            bits = codeSize + 1;
            old = -1;
            continue;
        }
        if ((unsigned)code == end) break;
        unsigned depth = 0;
        if (old < 0) {
            if ((unsigned)code >= clear) return error("LZW code out of range");
            first = (unsigned char)code;
            stack[depth++] = first;
        } else {
            if ((unsigned)code > next || ((unsigned)code == next && next >= 4096))
                return error("LZW code out of range");
            unsigned c = (unsigned)code;
            if (c == next) {
                stack[depth++] = first;
                c = (unsigned)old;
            }
            while (c >= clear) {
                stack[depth++] = suffix[c];
                c = prefix[c];
            }
            first = (unsigned char)c;
            stack[depth++] = first;
            if (next < 4096) {
                prefix[next] = (unsigned short)old;
                suffix[next] = first;
                next++;
                if (next == (1u << bits) && bits < 12) bits++;
            }
        }
        old = code;
        // The output grows with what the data yields, up to the image's size.
        if (done + depth > capacity && capacity < total) {
            unsigned long grown = capacity ? capacity * 2 : 65536;
            while (grown < done + depth) grown *= 2;
            if (grown > total) grown = total;
            unsigned char* bigger = (unsigned char*)realloc(data, grown);
            if (!bigger) return error("not enough memory for 'data'");
            data = bigger;
            capacity = grown;
        }
        while (depth > 0 && done < total) data[done++] = stack[--depth];
    }
    if (done < total) return error("image data ends before the image");
    return 1;
}

int OrvGifFile::doInterlace() {
    unsigned long rowBytes = width;
    unsigned char* placed = (unsigned char*)malloc((size_t)rowBytes * height);
    if (!placed) return error("not enough memory for 'data'");
    // Pass 1 takes every eighth row from 0, pass 2 every eighth from 4, pass 3 every
    // fourth from 2, pass 4 every second from 1.
    static const unsigned start[4] = {0, 4, 2, 1}, step[4] = {8, 8, 4, 2};
    unsigned long from = 0;
    for (int pass = 0; pass < 4; pass++)
        for (unsigned long y = start[pass]; y < height; y += step[pass])
            memcpy(placed + y * rowBytes, data + (from++) * rowBytes, rowBytes);
    free(data);
    data = placed;
    return 1;
}

OrvBitmap* OrvReadGIFBitmap(OrvCanvas* canvas, std::istream& in) {
    if (!canvas) return nullptr;
    OrvGifFile gif(in);
    if (gif.failed) return nullptr;
    unsigned long count = (unsigned long)gif.width * gif.height;
    for (unsigned long i = 0; i < count; i++)
        if (gif.data[i] >= gif.colorMapSize && gif.data[i] != gif.transparent) {
            gif.error("colour index out of the colour map");
            return nullptr;
        }
    OrvColor* colors[256];
    memset(colors, 0, sizeof colors);
    unsigned char used[256];
    memset(used, 0, sizeof used);
    for (unsigned long i = 0; i < count; i++) used[gif.data[i]] = 1;
    OrvDirector* d = canvas->director;
    for (unsigned c = 0; c < gif.colorMapSize; c++)
        if (used[c] && (int)c != gif.transparent)
            colors[c] = d->color(gif.colorMap[c][0] / 255.0f, gif.colorMap[c][1] / 255.0f,
                                 gif.colorMap[c][2] / 255.0f);
    OrvIndexedPicture picture = {gif.width, gif.height, gif.data, nullptr, colors, gif.transparent};
    return OrvBuildIndexedBitmap(canvas, picture, nullptr);
}

OrvBitmap* OrvReadGIFBitmap(OrvCanvas* canvas, const char* file) {
    if (!canvas || !file) return nullptr;
    const char* found = canvas->director->findInPath(file);
    std::ifstream in;
    if (found) in.open(found, std::ios::binary);
    if (!found || !in) {
        OrvPrint("OrvGifFile() - couldn't open %s\n", file);
        return nullptr;
    }
    OrvBitmap* bitmap = OrvReadGIFBitmap(canvas, in);
    if (bitmap) {
        free(bitmap->name);
        bitmap->name = (char*)malloc(strlen(file) + 1);
        if (bitmap->name) strcpy(bitmap->name, file);
    }
    return bitmap;
}
