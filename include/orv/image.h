// Images: blocks of pixels in memory for textures, kept by the director by name,
// read from and written to the portable-map files (P1 to P6) and the library's
// own "V" relatives (V1 to V8), scaled, and sent to GL as display lists.
#ifndef ORV_IMAGE_H
#define ORV_IMAGE_H

#include "orv/base.h"
#include "orv/resource.h"

class OrvDirector;
class OrvCanvas;

// The number of channels: 1 luminance, 2 luminance and alpha, 3 RGB, 4 RGBA.
typedef unsigned long OrvImageType;
enum {
    OrvImageLuminance = 1,
    OrvImageLuminanceAlpha = 2,
    OrvImageRGB = 3,
    OrvImageRGBA = 4
};

// The file a file-backed image was read from, by its two magic characters.
inline unsigned long OrvImageMagic(char a, char b) {
    return ((unsigned long)(unsigned char)a << 8) | (unsigned char)b;
}

class OrvImage : public OrvResource {
public:
    // Rows bottom first, as GL takes them. Made in memory, an image holds `type`
    // bytes a pixel. Read from a one-bit file ("P1", "P4", "V1", "V4") it holds
    // one bit a pixel, most significant first, each row padded to 32 pixels; from
    // a two-bit file ("V2", "V5") each row is a luminance and then an alpha plane
    // of such bits. Owned (malloc).
    unsigned char* pixels;
    unsigned int width, height;
    OrvImageType type;
    unsigned int mipmap;  // GL gets every mip level
    // 0 for an image made in memory; for one read from a file, the file's magic
    // (OrvImageMagic), which also tells how its pixels are laid out.
    unsigned long fileFormat;

    // Takes over `pixels` (from malloc) and enters the director's images.
    OrvImage(OrvDirector* director, const char* name, OrvImageType type, unsigned long width,
             unsigned long height, unsigned char* pixels, unsigned long mipmap);
    ~OrvImage() override;

    // The GL display list that loads the image as the current texture, made at the
    // first use on a GL canvas and shared by all of them; 0 elsewhere. With a null
    // canvas and a scene rendering, the image goes to GL at once and 0 is returned.
    unsigned long internal(const OrvCanvas* canvas) const override;
    // Sends the image to GL, compiled into `list` unless it is 0.
    void createInternalImage(unsigned long list) const;

    unsigned long isFileBacked() const { return fileFormat != 0; }
    // Whether the pixels are packed bits (read from a one-bit or two-bit file).
    unsigned long isPacked() const;
    // Bytes of one stored row.
    unsigned long rowBytes() const;
    // The channels of a pixel as bytes, whatever the layout: a set bit of a packed
    // image is black (0) as in the portable bitmap, a clear one white (255); alpha
    // is 255 where the alpha bit is set. Rows count from the bottom.
    void pixel(unsigned long x, unsigned long y, unsigned char channels[4]) const;
};

// Scales pixels of `channels` bytes by a box filter, in the manner of the GL
// utility library: bytes to floats, each destination pixel the area-weighted
// mean of the source pixels under it, then rounded back. 1 on success; 0 (after
// a report) for a bad type or size, or when memory runs out.
int OrvScaleImage(OrvImageType type, unsigned long channels, unsigned long newWidth,
                  unsigned long newHeight, unsigned char* newPixels, unsigned long width,
                  unsigned long height, const unsigned char* pixels);

// Writes every mip level of an RGB image, halving with OrvScaleImage down to 1
// by 1, as text "P3" files named "%s%1d.ppm" (from level 10 on "%s%2d.ppm").
// 1 on success, 0 after a report.
int OrvWriteMipmapsPPM(const OrvImage* image, const char* prefix);

#endif
