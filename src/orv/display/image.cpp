// Images in memory: the resource, the director's list and default image, and the
// box filter that scales them.
#include "orv/image.h"
#include "orv/director.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

// ---------------------------------------------------------------- OrvImage

OrvImage::OrvImage(OrvDirector* d, const char* imageName, OrvImageType imageType, unsigned long w,
                   unsigned long h, unsigned char* data, unsigned long mip)
    : OrvResource(d, imageName), pixels(data), width((unsigned)w), height((unsigned)h),
      type(imageType), mipmap(mip ? 1 : 0), fileFormat(0) {
    if (d) d->addImage(this);
}

OrvImage::~OrvImage() {
    // Its GL list lives in the share group of the root context and goes with it.
    if (director) {
        if (director->images) director->images->remove(this);
        if (director->defaultImageObject == this) director->defaultImageObject = nullptr;
    }
    free(pixels);
}

unsigned long OrvImage::isPacked() const {
    switch (fileFormat) {
        case ('P' << 8) | '1':
        case ('P' << 8) | '4':
        case ('V' << 8) | '1':
        case ('V' << 8) | '4':
        case ('V' << 8) | '2':
        case ('V' << 8) | '5':
            return 1;
        default:
            return 0;
    }
}

unsigned long OrvImage::rowBytes() const {
    if (!isPacked()) return (unsigned long)width * type;
    unsigned long plane = ((width + 31UL) / 32) * 4;
    return type == OrvImageLuminanceAlpha ? 2 * plane : plane;
}

void OrvImage::pixel(unsigned long x, unsigned long y, unsigned char channels[4]) const {
    channels[0] = channels[1] = channels[2] = channels[3] = 0;
    if (!pixels || x >= width || y >= height) return;
    const unsigned char* row = pixels + y * rowBytes();
    if (!isPacked()) {
        memcpy(channels, row + x * type, type);
        return;
    }
    unsigned char bit = (unsigned char)(0x80 >> (x & 7));
    channels[0] = (row[x >> 3] & bit) ? 0 : 255;
    if (type == OrvImageLuminanceAlpha) {
        unsigned long plane = ((width + 31UL) / 32) * 4;
        channels[1] = (row[plane + (x >> 3)] & bit) ? 255 : 0;
    }
}

// ---------------------------------------------------------------- the director's images

void OrvDirector::addImage(OrvImage* image) {
    if (image && images && !images->find(image)) images->append(image);
}

OrvImage* OrvDirector::findImage(const char* imageName) const {
    if (!imageName || !images) return nullptr;
    for (OrvLink* l = images->first; l; l = l->next) {
        OrvImage* i = (OrvImage*)l->value;
        if (i->name && strcmp(i->name, imageName) == 0) return i;
    }
    return nullptr;
}

OrvImage* OrvDirector::defaultImage() {
    if (defaultImageObject) return defaultImageObject;
    // A magenta and grey checker with a white corner at the top left, so that a missing
    // texture is known at once and its orientation shows.
    static const char* const picture[16] = {
        "WWWWMMMMGGGGMMMM", "WWWWMMMMGGGGMMMM", "WWWWMMMMGGGGMMMM", "WWWWMMMMGGGGMMMM",
        "MMMMGGGGMMMMGGGG", "MMMMGGGGMMMMGGGG", "MMMMGGGGMMMMGGGG", "MMMMGGGGMMMMGGGG",
        "GGGGMMMMGGGGMMMM", "GGGGMMMMGGGGMMMM", "GGGGMMMMGGGGMMMM", "GGGGMMMMGGGGMMMM",
        "MMMMGGGGMMMMGGGG", "MMMMGGGGMMMMGGGG", "MMMMGGGGMMMMGGGG", "MMMMGGGGMMMMGGGG"};
    static unsigned char table[768];
    static int filled = 0;
    if (!filled) {
        for (int y = 0; y < 16; y++)
            for (int x = 0; x < 16; x++) {
                unsigned char* p = table + (y * 16 + x) * 3;
                char c = picture[y][x];
                p[0] = c == 'G' ? 0x40 : 0xFF;
                p[1] = c == 'W' ? 0xFF : c == 'G' ? 0x40 : 0x00;
                p[2] = c == 'G' ? 0x40 : 0xFF;
            }
        filled = 1;
    }
    unsigned char* data = (unsigned char*)malloc(sizeof table);
    if (!data) return nullptr;
    // The table is drawn top row first; images keep the bottom row first.
    for (int y = 0; y < 16; y++) memcpy(data + (15 - y) * 48, table + y * 48, 48);
    defaultImageObject = new OrvImage(this, "defaultOrvisImage", OrvImageRGB, 16, 16, data, 0);
    OrvCount(defaultImageObject);
    return defaultImageObject;
}

// ---------------------------------------------------------------- scaling

// One axis of the box filter: the source span [low, high) of a destination pixel.
static void span(unsigned long i, unsigned long in, unsigned long out, double& low, double& high) {
    double scale = (double)in / (double)out;
    double centre = scale * (i + 0.5);
    double half = in > out ? scale / 2 : 0.5;
    low = centre - half;
    high = centre + half;
    // Enlarging, the box may reach past the edges: it is cut there.
    if (low < 0) low = 0;
    if (high > (double)in) high = (double)in;
}

int OrvScaleImage(OrvImageType type, unsigned long channels, unsigned long newWidth,
                  unsigned long newHeight, unsigned char* newPixels, unsigned long width,
                  unsigned long height, const unsigned char* pixels) {
    if (type < 1 || type > 4 || channels < 1 || channels > 4)
        return OrvError("OrvScaleImage : Bad image type (%lu, %lu channels).\n", type, channels);
    if (!newPixels || !pixels || !width || !height || !newWidth || !newHeight)
        return OrvError("OrvScaleImage : Bad image size.\n");
    size_t inCount = (size_t)width * height * channels;
    size_t outCount = (size_t)newWidth * newHeight * channels;
    if (inCount / channels / height != width || outCount / channels / newHeight != newWidth)
        return OrvError("OrvScaleImage : Bad image size.\n");
    if (width == 2 * newWidth && height == 2 * newHeight) {
        // Exact halving, the case of every mip level: each box is a square of four
        // pixels of equal weight, whose rounded mean integers give exactly.
        const unsigned long row = width * channels;
        for (unsigned long j = 0; j < newHeight; j++)
            for (unsigned long i = 0; i < newWidth; i++)
                for (unsigned long k = 0; k < channels; k++) {
                    const unsigned char* p = pixels + 2 * j * row + 2 * i * channels + k;
                    unsigned sum = p[0] + p[channels] + p[row] + p[row + channels];
                    newPixels[(j * newWidth + i) * channels + k] = (unsigned char)((sum + 2) / 4);
                }
        return 1;
    }
    float* in = (float*)malloc(inCount * sizeof(float));
    float* out = (float*)malloc(outCount * sizeof(float));
    if (!in || !out) {
        free(in);
        free(out);
        return OrvError("## Orvis : Out of memory.\n");
    }
    for (size_t i = 0; i < inCount; i++) in[i] = pixels[i];
    for (unsigned long j = 0; j < newHeight; j++) {
        double lowY, highY;
        span(j, height, newHeight, lowY, highY);
        for (unsigned long i = 0; i < newWidth; i++) {
            double lowX, highX;
            span(i, width, newWidth, lowX, highX);
            double total[4] = {0, 0, 0, 0}, area = 0;
            for (unsigned long y = (unsigned long)lowY; (double)y < highY && y < height; y++) {
                double wy = std::fmin(highY, (double)(y + 1)) - std::fmax(lowY, (double)y);
                if (wy <= 0) continue;
                for (unsigned long x = (unsigned long)lowX; (double)x < highX && x < width; x++) {
                    double wx = std::fmin(highX, (double)(x + 1)) - std::fmax(lowX, (double)x);
                    if (wx <= 0) continue;
                    const float* p = in + (y * width + x) * channels;
                    for (unsigned long k = 0; k < channels; k++) total[k] += p[k] * wx * wy;
                    area += wx * wy;
                }
            }
            float* q = out + (j * newWidth + i) * channels;
            for (unsigned long k = 0; k < channels; k++) q[k] = area > 0 ? total[k] / area : 0;
        }
    }
    for (size_t i = 0; i < outCount; i++) {
        double v = std::floor(out[i] + 0.5);
        newPixels[i] = (unsigned char)(v < 0 ? 0 : v > 255 ? 255 : v);
    }
    free(in);
    free(out);
    return 1;
}
