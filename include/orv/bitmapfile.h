// Bitmaps from picture files: XPM2 (read and written), Windows device-independent
// bitmaps with a palette, and GIF (87a and 89a, interlaced or not). Each reader makes
// a new OrvBitmap of the canvas's depth whose colours come from the canvas's director
// and stay counted while it lives; it reports and returns null on a file it cannot
// read, so that OrvDirector::readBitmap can try the next format.
#ifndef ORV_BITMAPFILE_H
#define ORV_BITMAPFILE_H

#include <istream>

class OrvCanvas;
class OrvBitmap;

// XPM2: "! XPM2" (or a "/*" comment) on the first line, a header of width, height,
// number of colours and characters a pixel, a line a colour, a line a row. "None"
// is transparent: the bitmap then gets a mask.
OrvBitmap* OrvReadXPM2Bitmap(OrvCanvas* canvas, const char* file);
// Writes a bitmap as XPM2, one character a pixel; 1 on success, 0 after a report.
int OrvSaveXPM2Bitmap(OrvBitmap* bitmap, const char* file);

// A device-independent bitmap of 1, 4 or 8 bits a pixel, uncompressed.
OrvBitmap* OrvReadDIBBitmap(OrvCanvas* canvas, const char* file);

// The first image of a GIF file or stream. A transparent colour gives a mask.
OrvBitmap* OrvReadGIFBitmap(OrvCanvas* canvas, const char* file);
OrvBitmap* OrvReadGIFBitmap(OrvCanvas* canvas, std::istream& in);

// A GIF decoded in memory by its constructor: the first image's colour indices and
// the colour map that applies to them. `failed` is set after a report.
class OrvGifFile {
public:
    OrvGifFile(const OrvGifFile&) = delete;
    OrvGifFile& operator=(const OrvGifFile&) = delete;
    unsigned int screenWidth, screenHeight;  // of the logical screen
    unsigned int width, height;              // of the image
    unsigned int colorMapSize;               // entries in colorMap
    unsigned char colorMap[256][3];          // the local map, or else the global one
    unsigned char* data;                     // width * height indices, top row first (malloc)
    int transparent;                         // the transparent index, or -1
    int interlaced;
    int failed;

    explicit OrvGifFile(std::istream& in);
    ~OrvGifFile();

    // Reads `count` entries of three bytes into `map`; 0 at the end of the stream.
    int readColorMap(unsigned count, unsigned char map[256][3]);
    // The next code of `bits` bits from the image's data, least significant first; -1 when
    // the data ends.
    int readCode(unsigned bits);
    // Puts the rows, decoded in the four passes of the interlace order, in their places.
    int doInterlace();
    // Reports "OrvGifFile() - " and the text, sets `failed` and returns 0.
    int error(const char* text);

private:
    std::istream& stream;
    unsigned char* block;  // the image's data sub-blocks, joined
    unsigned long blockSize, blockRead;
    unsigned long bitBuffer;
    unsigned bitCount;
    int readImage();
    int readBlocks(int keep);
    int decode(unsigned codeSize);
};

#endif
