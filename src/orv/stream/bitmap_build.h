// Shared by the bitmap file readers: the bitmap of a picture given as colour indices.
#ifndef ORV_STREAM_BITMAP_BUILD_H
#define ORV_STREAM_BITMAP_BUILD_H

class OrvCanvas;
class OrvBitmap;
class OrvColor;

// The largest side of a bitmap: X coordinates are signed 16-bit numbers.
const unsigned long OrvBitmapMaxSide = 32767;

// Colour indices, one byte or two a pixel (whichever pointer is given), rows top first.
struct OrvIndexedPicture {
    unsigned long width, height;
    const unsigned char* bytes;
    const unsigned short* shorts;
    OrvColor* const* colors;  // by index; only those of indices in use are read
    long transparent;         // the index that shows nothing, or -1
    unsigned long index(unsigned long i) const { return bytes ? bytes[i] : shorts[i]; }
};

// A new bitmap of the canvas's depth holding the picture, its colours in use attached
// with useColor, a depth-1 mask when the transparent index is used, and `name` when not
// null. Null after a report when memory runs out.
OrvBitmap* OrvBuildIndexedBitmap(OrvCanvas* canvas, const OrvIndexedPicture& picture,
                                 const char* name);

#endif
