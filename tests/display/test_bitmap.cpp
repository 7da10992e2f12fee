// Bitmaps: locks and masks, bits in and out, and copies onto canvases, straight and transformed.
#include "orv_fixtures.h"

namespace {

class Bitmaps : public OrvScreenTest {
protected:
    // The bits of a row of a depth-1 bitmap as 0 and 1 characters.
    std::string row(const OrvBitmap* b, int y, int w) {
        std::string s;
        for (int x = 0; x < w; x++) s += OrvTestPixel(dpy, b->drawable, x, y) ? '1' : '0';
        return s;
    }
};
ORV_ON_BOTH_SCREENS(Bitmaps);

TEST_P(Bitmaps, LocksMasksAndDeletion) {
    OrvBitmap* b = new OrvBitmap(d->rootCanvas, 8, 8, d->depth);
    // A bitmap, not a print device, registered with the director.
    EXPECT_TRUE(b->isABitmap() && !b->isPrintDevice() && d->bitmaps->find(b));
    OrvBitmap* m = new OrvBitmap(d->rootCanvas, 8, 8, 1);
    b->lock();
    b->lock();
    b->setMask(m);
    b->setMask(m);
    b->setMask(b);
    EXPECT_TRUE(b->mask == m && m->lockCount == 2u) << "the mask takes the bitmap's locks";
    OrvBitmap* other = new OrvBitmap(d->rootCanvas, 8, 8, 1);
    EXPECT_EQ("OrvBitmap::setMask : Can't initialize transparent mask twice. \n",
              OrvTestOutput([&] { b->setMask(other); }));
    delete other;
    b->unLock();
    EXPECT_EQ(Orv2dPoint(1, 1), Orv2dPoint(b->lockCount, m->lockCount));
    b->unLock();  // the last lock: the bitmap goes, and its mask with it
    EXPECT_TRUE(!d->bitmaps->find(b) && !d->bitmaps->find(m));
    // Colours used by the pixels are counted until the bitmap goes.
    OrvBitmap* c = new OrvBitmap(d->rootCanvas, 2, 2, d->depth);
    OrvColor* teal = d->color("teal");
    OrvCount(teal);
    int count = teal->count;
    c->useColor(teal);
    c->useColor(teal);
    EXPECT_EQ(teal->count, count + 1);
    delete c;
    EXPECT_EQ(teal->count, count);
    OrvRelease(teal);
}

TEST_P(Bitmaps, BitsIn) {
    OrvBitmap* one = new OrvBitmap(d->rootCanvas, 16, 2, 1);
    unsigned char rows[4] = {0x80, 0x01, 0xFF, 0x00};
    one->setBits(Orv2dRect(0, 0, 16, 2), rows, 4, 8, 0);  // most significant bit leftmost
    EXPECT_EQ("1000000000000001 1111111100000000", row(one, 0, 16) + " " + row(one, 1, 16));
    one->setBits(Orv2dRect(0, 0, 16, 2), rows, 4, 8, 1);  // least significant bit first
    EXPECT_EQ("0000000110000000", row(one, 0, 16));
    // Deeper pixels go most significant byte first: one byte each at depth 8, four above.
    OrvBitmap* pic = new OrvBitmap(d->rootCanvas, 2, 1, d->depth);
    unsigned long red = px("red"), blue = px("blue");
    unsigned char data[8];
    unsigned long rowBytes = d->depth == 8 ? 2 : 8;
    for (int i = 0; i < (int)rowBytes / 2; i++) {
        int shift = d->depth == 8 ? 0 : 24 - 8 * i;
        data[i] = (unsigned char)(red >> shift);
        data[rowBytes / 2 + i] = (unsigned char)(blue >> shift);
    }
    pic->setBits(Orv2dRect(0, 0, 2, 1), data, rowBytes, 32, 0);
    EXPECT_EQ(Orv2dPoint(red, blue), Orv2dPoint(pixel(pic, 0, 0), pixel(pic, 1, 0)));
    delete pic;
    delete one;
}

TEST_P(Bitmaps, StraightCopies) {
    OrvBitmap* dst = sheet(60, 40);
    OrvBitmap* src = sheet(10, 10);
    src->rectangle(paint("blue"), Orv2dRect(0, 0, 5, 10), 1);
    OrvMakeUp* red = paint("red", "yellow");
    dst->bitblit(red, src, Orv2dRect(0, 0, 10, 10), Orv2dPoint(20, 20));
    // A part, at a point moved by the matrix.
    Orv2dMatrix shift(Orv2dPoint(10, 0));
    dst->bitblit(red, src, Orv2dRect(3, 0, 4, 10), Orv2dPoint(30, 0), 0, &shift);
    expectPixels(dst, "blue: 21,25 40,5 41,5 white: 27,25 30,25 42,5 44,5 45,5");
    // A one-bit source paints the foreground where it has ones, and leaves the rest.
    OrvBitmap* bits = new OrvBitmap(d->rootCanvas, 8, 1, 1);
    unsigned char row1[1] = {0xA0};
    bits->setBits(Orv2dRect(0, 0, 8, 1), row1, 1, 8, 0);
    dst->bitblit(red, bits, Orv2dRect(0, 0, 8, 1), Orv2dPoint(0, 35));
    expectPixels(dst, "red: 0,35 2,35 white: 1,35 3,35");
    // A picture with a one-bit mask shows only where the mask has ones; the mask cleared the
    // picture where it has zeros.
    OrvBitmap* pic = sheet(4, 1);
    pic->rectangle(paint("green"), Orv2dRect(0, 0, 4, 1), 1);
    OrvBitmap* mask = new OrvBitmap(d->rootCanvas, 4, 1, 1);
    unsigned char mrow[1] = {0x60};
    mask->setBits(Orv2dRect(0, 0, 4, 1), mrow, 1, 8, 0);
    pic->setMask(mask);
    dst->bitblit(red, pic, Orv2dRect(0, 0, 4, 1), Orv2dPoint(10, 37));
    expectPixels(dst, "white: 10,37 13,37 green: 11,37 12,37");
    EXPECT_EQ(pixel(pic, 0, 0), 0u);
    // Errors: a deeper source, and a rectangle outside the source.
    EXPECT_EQ("## Error can't copy pixmap's with different depth.\n", OrvTestOutput([&] {
                  bits->bitblit(red, src, Orv2dRect(0, 0, 2, 1), Orv2dPoint(0, 0));
              }));
    std::string outside =
        OrvTestOutput([&] { dst->bitblit(red, src, Orv2dRect(20, 20, 5, 5), Orv2dPoint(0, 0)); });
    EXPECT_TRUE(outside.find("## Region outside size of the pixmap.") == 0u &&
                outside.find("<20, 20, 5, 5>") != std::string::npos)
        << outside;
    for (OrvBitmap* b : {pic, bits, src, dst}) delete b;
}

TEST_P(Bitmaps, TransformedCopy) {
    OrvBitmap* dst = sheet(80, 60);
    OrvBitmap* src = sheet(10, 10);
    src->rectangle(paint("red"), Orv2dRect(2, 3, 1, 1), 1);
    OrvMakeUp* mu = paint("black");
    Orv2dMatrix m(2.0f, 2.0f);
    m.setValues(20, 10);
    dst->bitblit(mu, m, src, 0, nullptr);
    // Each target pixel takes the source pixel of its inverse image.
    expectPixels(dst, "red: 24,16 white: 22,16 38,28 15,5");
    // A one-bit source through a matrix with its mask: foreground on the ones only.
    OrvBitmap* bits = new OrvBitmap(d->rootCanvas, 8, 2, 1);
    unsigned char rows[2] = {0xF0, 0x0F};
    bits->setBits(Orv2dRect(0, 0, 8, 2), rows, 2, 8, 0);
    dst->rectangle(paint("yellow"), Orv2dRect(40, 40, 40, 20), 1);
    Orv2dMatrix at(Orv2dPoint(50, 45));
    dst->bitblit(mu, at, bits, 1, nullptr);
    expectPixels(dst, "black: 50,45 55,46 yellow: 55,45 50,46");
    // A clip region limits the target.
    Orv2dRegion clip(Orv2dRect(0, 0, 10, 10));
    Orv2dMatrix far(Orv2dPoint(30, 30));
    dst->rectangle(paint("white"), Orv2dRect(0, 0, 80, 60), 1);
    dst->bitblit(mu, far, src, 0, &clip);
    expectPixels(dst, "white: 32,33");
    for (OrvBitmap* b : {bits, src, dst}) delete b;
}

}  // namespace
