// Icons: a bitmap at a point, painted through its mask when it has one.
#include <cstdlib>
#include <cstring>

#include "orv/canvas.h"
#include "orv/makeup.h"
#include "orv/shapes.h"
#include "orv/stream.h"
#include "shapes_geometry.h"

ORV_DEFINE_CLASS_INIT(OrvIcon, "OrvActor", OrvIcon::read)

// The bit order in which the server hands out one-bit images, found once by
// writing a known pixel and reading it back: 1 for least significant first.
static int serverLsbFirst(OrvBitmap* probeSource) {
    static int known = -1;
    if (known >= 0) return known;
    OrvBitmap probe(probeSource, 8, 1, 1);
    const unsigned char leftmost = 0x80;  // x = 0 set, written most significant first
    probe.setBits(Orv2dRect(0, 0, 8, 1), &leftmost, 1, 8, 0);
    unsigned long size = 0;
    unsigned char* bits = probe.getBits(size, Orv2dRect(0, 0, 8, 1));
    known = bits && size && bits[0] == 0x01 ? 1 : 0;
    delete[] bits;
    return known;
}

OrvIcon::OrvIcon(OrvDirector* director, OrvBitmap* image, const Orv2dPoint& at, OrvMakeUp* look)
    : OrvActor(director, look), bitmap(image), point(at), maskBits(nullptr), maskBytesPerLine(0) {
    if (image) image->lock();
    readMask();
}

OrvIcon::OrvIcon(const OrvIcon& source)
    : OrvActor(source), bitmap(source.bitmap), point(source.point), maskBits(nullptr),
      maskBytesPerLine(0) {
    if (bitmap) bitmap->lock();
    readMask();
}

OrvIcon::~OrvIcon() {
    delete[] maskBits;
    if (bitmap) bitmap->unLock();
}

OrvActor* OrvIcon::copy() const {
    return new OrvIcon(*this);
}
OrvClassInfo* OrvIcon::classInfo() const {
    return _classInfo;
}

// Persistent form: the point, then the bitmap by name with its mask.

OrvActor* OrvIcon::read(OrvIStream& in) {
    return new OrvIcon(in);
}

void OrvIcon::write(OrvOStream& out) const {
    OrvActor::write(out);
    out.writeComments("OrvIcon class", 1);
    out << point;
    out << (const OrvBitmap*)bitmap;
}

OrvIcon::OrvIcon(OrvIStream& in)
    : OrvActor(in), bitmap(nullptr), point(), maskBits(nullptr), maskBytesPerLine(0) {
    in >> point;
    OrvBitmap* b = nullptr;
    in >> b;
    bitmap = b;
    if (bitmap) bitmap->lock();
    readMask();
}

void OrvIcon::readMask() {
    delete[] maskBits;
    maskBits = nullptr;
    maskBytesPerLine = 0;
    if (!bitmap || !bitmap->mask || bitmap->mask->depth != 1) return;
    OrvBitmap* mask = bitmap->mask;
    unsigned long size = 0;
    maskBits = mask->getBits(size, Orv2dRect(0, 0, (uint32_t)mask->width, (uint32_t)mask->height));
    if (!maskBits) return;
    maskBytesPerLine = size / mask->height;
    // Keep the bits in one order, most significant first, whatever the server's.
    if (serverLsbFirst(bitmap)) {
        for (unsigned long i = 0; i < size; i++) {
            unsigned char b = maskBits[i], r = 0;
            for (int k = 0; k < 8; k++)
                if (b & (1 << k)) r |= (unsigned char)(0x80 >> k);
            maskBits[i] = r;
        }
    }
}

Orv2dRect OrvIcon::bbox2d(const Orv2dMatrix* matrix) const {
    if (!bitmap) return Orv2dRect();
    Orv2dPoint origin = OrvMapPoint(point, matrix);
    return Orv2dRect(origin.x, origin.y, (uint32_t)bitmap->width, (uint32_t)bitmap->height);
}

void OrvIcon::draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) {
    if (!bitmap) return;
    Orv2dPoint origin = OrvMapPoint(point, matrix);
    canvas->bitblit(makeUp, bitmap,
                    Orv2dRect(0, 0, (uint32_t)bitmap->width, (uint32_t)bitmap->height), origin,
                    bitmap->mask ? 1 : 0);
}

void OrvIcon::apply2d(const Orv2dMatrix& matrix) {
    matrix.apply(point);
}

unsigned long OrvIcon::contains2d(const Orv2dPoint& p, const Orv2dMatrix* matrix) {
    if (isSelected() && dragger2d(p, matrix)) return 1;
    Orv2dRect box = bbox2d(matrix);
    if (!box.w || !box.contains(p)) return 0;
    if (!maskBits) return 1;
    // The box's far edges belong to the last pixel.
    uint32_t x = (uint32_t)(p.x - box.x), y = (uint32_t)(p.y - box.y);
    if (x >= box.w) x = box.w - 1;
    if (y >= box.h) y = box.h - 1;
    if (x >= bitmap->mask->width || y >= bitmap->mask->height) return 0;
    return (maskBits[y * maskBytesPerLine + x / 8] >> (7 - x % 8)) & 1;
}

void OrvIcon::setBitmap(OrvBitmap* b) {
    if (b == bitmap) return;
    beginDrawing(1);
    if (b) b->lock();
    if (bitmap) bitmap->unLock();
    bitmap = b;
    readMask();
    flushDrawing(1);
}

unsigned long OrvIcon::copyGeometry(const OrvActor& source) {
    if (source.classInfo() != classInfo()) return 0;
    const OrvIcon& s = (const OrvIcon&)source;
    point = s.point;
    return 1;
}
