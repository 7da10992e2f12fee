// Bitmaps: locks and masks, bits in and out, and copies onto canvases, straight and transformed.
#include <gtest/gtest.h>
#include <cstring>

#include <string>

#include "orv_pixels.h"

namespace {

class Bitmaps : public OrvScreenTest {};
ORV_ON_BOTH_SCREENS(Bitmaps);

TEST_P(Bitmaps, LocksMasksAndDeletion) {
    OrvBitmap* b = new OrvBitmap(d->rootCanvas, 8, 8, d->depth);
    EXPECT_EQ(b->lockCount, 0u);
    EXPECT_EQ(b->isABitmap(), 1u);
    EXPECT_EQ(b->isPrintDevice(), 0u);
    EXPECT_STREQ(b->className(), "OrvBitmap");
    EXPECT_STREQ(d->rootCanvas->className(), "OrvCanvas");
    EXPECT_NE(d->bitmaps->find(b), nullptr) << "registered with the director";
    OrvBitmap* m = new OrvBitmap(d->rootCanvas, 8, 8, 1);
    b->lock();
    b->lock();
    b->setMask(m);
    EXPECT_EQ(b->mask, m);
    EXPECT_EQ(m->lockCount, 2u) << "the mask takes the bitmap's locks";
    b->setMask(m);
    b->setMask(b);
    EXPECT_EQ(m->lockCount, 2u);
    OrvBitmap* other = new OrvBitmap(d->rootCanvas, 8, 8, 1);
    testing::internal::CaptureStdout();
    b->setMask(other);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "OrvBitmap::setMask : Can't initialize transparent mask twice. \n");
    delete other;
    b->unLock();
    EXPECT_EQ(b->lockCount, 1u);
    EXPECT_EQ(m->lockCount, 1u);
    EXPECT_NE(d->bitmaps->find(m), nullptr);
    b->unLock();  // the last lock: the bitmap goes, and its mask with it
    EXPECT_EQ(d->bitmaps->find(b), nullptr);
    EXPECT_EQ(d->bitmaps->find(m), nullptr);
    // Colours used by the pixels are counted until the bitmap goes.
    OrvBitmap* c = new OrvBitmap(d->rootCanvas, 2, 2, d->depth);
    OrvColor* teal = d->color("teal");
    int count = teal->count;
    c->useColor(teal);
    c->useColor(teal);
    EXPECT_EQ(teal->count, count + 1);
    OrvCount(teal);
    delete c;
    EXPECT_EQ(teal->count, count + 1);
    OrvRelease(teal);
}

TEST_P(Bitmaps, BitsInAndOut) {
    OrvBitmap* one = new OrvBitmap(d->rootCanvas, 16, 2, 1);
    unsigned char rows[4] = {0x80, 0x01, 0xFF, 0x00};
    one->setBits(Orv2dRect(0, 0, 16, 2), rows, 4, 8, 0);
    EXPECT_EQ(OrvBitmapPixelForTest(d, one, 0, 0), 1u) << "most significant bit leftmost";
    EXPECT_EQ(OrvBitmapPixelForTest(d, one, 1, 0), 0u);
    EXPECT_EQ(OrvBitmapPixelForTest(d, one, 15, 0), 1u);
    EXPECT_EQ(OrvBitmapPixelForTest(d, one, 7, 1), 1u);
    EXPECT_EQ(OrvBitmapPixelForTest(d, one, 8, 1), 0u);
    one->setBits(Orv2dRect(0, 0, 16, 2), rows, 4, 8, 1);
    EXPECT_EQ(OrvBitmapPixelForTest(d, one, 7, 0), 1u) << "least significant bit first";
    EXPECT_EQ(OrvBitmapPixelForTest(d, one, 0, 0), 0u);
    EXPECT_EQ(OrvBitmapPixelForTest(d, one, 8, 0), 1u);
    unsigned long size = 0;
    unsigned char* bits = one->getBits(size, Orv2dRect(0, 0, 16, 2));
    ASSERT_NE(bits, nullptr);
    EXPECT_GE(size, 4u);
    delete[] bits;
    // Deeper pixels go most significant byte first: one byte each at depth 8, four above.
    OrvBitmap* pic = new OrvBitmap(d->rootCanvas, 2, 1, d->depth);
    unsigned long red = px("red"), blue = px("blue");
    unsigned char data[8];
    unsigned long rowBytes = 2;
    if (d->depth == 8) {
        data[0] = (unsigned char)red;
        data[1] = (unsigned char)blue;
    } else {
        for (int i = 0; i < 4; i++) {
            data[i] = (unsigned char)(red >> (24 - 8 * i));
            data[4 + i] = (unsigned char)(blue >> (24 - 8 * i));
        }
        rowBytes = 8;
    }
    pic->setBits(Orv2dRect(0, 0, 2, 1), data, rowBytes, 32, 0);
    EXPECT_EQ(pixel(pic, 0, 0), red);
    EXPECT_EQ(pixel(pic, 1, 0), blue);
    // And come back through getBits in the server's own layout.
    bits = pic->getBits(size, Orv2dRect(0, 0, 2, 1));
    ASSERT_NE(bits, nullptr);
    EXPECT_GE(size, d->depth == 8 ? 2u : 8u);
    delete[] bits;
    delete pic;
    delete one;
}

TEST_P(Bitmaps, StraightCopies) {
    OrvBitmap* dst = sheet(60, 40);
    OrvBitmap* src = sheet(10, 10);
    src->rectangle(paint("blue"), Orv2dRect(0, 0, 5, 10), 1);
    OrvMakeUp* red = paint("red", "yellow");
    dst->setClip(nullptr);
    dst->bitblit(red, src, Orv2dRect(0, 0, 10, 10), Orv2dPoint(20, 20));
    EXPECT_EQ(pixel(dst, 21, 25), px("blue"));
    EXPECT_EQ(pixel(dst, 27, 25), px("white"));
    EXPECT_EQ(pixel(dst, 30, 25), px("white")) << "only the rectangle";
    // A part, at a point moved by the matrix.
    Orv2dMatrix shift(Orv2dPoint(10, 0));
    dst->bitblit(red, src, Orv2dRect(3, 0, 4, 10), Orv2dPoint(30, 0), 0, &shift);
    EXPECT_EQ(pixel(dst, 40, 5), px("blue"));
    EXPECT_EQ(pixel(dst, 41, 5), px("blue"));
    EXPECT_EQ(pixel(dst, 42, 5), px("white"));
    EXPECT_EQ(pixel(dst, 44, 5), px("white"));
    EXPECT_EQ(pixel(dst, 45, 5), px("white")) << "four pixels wide";
    // A one-bit source paints the foreground where it has ones, and leaves the rest.
    OrvBitmap* bits = new OrvBitmap(d->rootCanvas, 8, 1, 1);
    unsigned char row[1] = {0xA0};
    bits->setBits(Orv2dRect(0, 0, 8, 1), row, 1, 8, 0);
    dst->bitblit(red, bits, Orv2dRect(0, 0, 8, 1), Orv2dPoint(0, 35));
    EXPECT_EQ(pixel(dst, 0, 35), px("red"));
    EXPECT_EQ(pixel(dst, 1, 35), px("white"));
    EXPECT_EQ(pixel(dst, 2, 35), px("red"));
    EXPECT_EQ(pixel(dst, 3, 35), px("white"));
    // A picture with a one-bit mask shows only where the mask has ones.
    OrvBitmap* pic = sheet(4, 1);
    pic->rectangle(paint("green"), Orv2dRect(0, 0, 4, 1), 1);
    OrvBitmap* mask = new OrvBitmap(d->rootCanvas, 4, 1, 1);
    unsigned char mrow[1] = {0x60};
    mask->setBits(Orv2dRect(0, 0, 4, 1), mrow, 1, 8, 0);
    pic->setMask(mask);
    dst->bitblit(red, pic, Orv2dRect(0, 0, 4, 1), Orv2dPoint(10, 37));
    EXPECT_EQ(pixel(dst, 10, 37), px("white"));
    EXPECT_EQ(pixel(dst, 11, 37), px("green"));
    EXPECT_EQ(pixel(dst, 12, 37), px("green"));
    EXPECT_EQ(pixel(dst, 13, 37), px("white"));
    EXPECT_EQ(pixel(pic, 0, 0), 0u) << "the mask cleared the picture where it has zeros";
    // Errors: a deeper source, and a rectangle outside the source.
    testing::internal::CaptureStdout();
    bits->bitblit(red, src, Orv2dRect(0, 0, 2, 1), Orv2dPoint(0, 0));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "## Error can't copy pixmap's with different depth.\n");
    testing::internal::CaptureStdout();
    dst->bitblit(red, src, Orv2dRect(20, 20, 5, 5), Orv2dPoint(0, 0));
    std::string outside = testing::internal::GetCapturedStdout();
    EXPECT_EQ(outside.find("## Region outside size of the pixmap."), 0u);
    EXPECT_NE(outside.find("<20, 20, 5, 5>"), std::string::npos) << outside;
    delete pic;
    delete bits;
    delete src;
    delete dst;
}

TEST_P(Bitmaps, TransformedCopy) {
    OrvBitmap* dst = sheet(80, 60);
    OrvBitmap* src = sheet(10, 10);
    src->rectangle(paint("red"), Orv2dRect(2, 3, 1, 1), 1);
    OrvMakeUp* mu = paint("black");
    dst->setClip(nullptr);
    Orv2dMatrix m(2.0f, 2.0f);
    m.setValues(20, 10);
    dst->bitblit(mu, m, src, 0, nullptr);
    // Each target pixel takes the source pixel of its inverse image.
    EXPECT_EQ(pixel(dst, 24, 16), px("red"));
    EXPECT_EQ(pixel(dst, 22, 16), px("white"));
    EXPECT_EQ(pixel(dst, 38, 28), px("white"));
    EXPECT_EQ(pixel(dst, 15, 5), px("white")) << "outside the target";
    // A one-bit source through a matrix with its mask: foreground on the ones only.
    OrvBitmap* bits = new OrvBitmap(d->rootCanvas, 8, 2, 1);
    unsigned char rows[2] = {0xF0, 0x0F};
    bits->setBits(Orv2dRect(0, 0, 8, 2), rows, 2, 8, 0);
    dst->rectangle(paint("yellow"), Orv2dRect(40, 40, 40, 20), 1);
    Orv2dMatrix at(Orv2dPoint(50, 45));
    dst->bitblit(mu, at, bits, 1, nullptr);
    EXPECT_EQ(pixel(dst, 50, 45), px("black"));
    EXPECT_EQ(pixel(dst, 55, 45), px("yellow"));
    EXPECT_EQ(pixel(dst, 55, 46), px("black"));
    EXPECT_EQ(pixel(dst, 50, 46), px("yellow"));
    // A clip region limits the target.
    Orv2dRegion clip(Orv2dRect(0, 0, 10, 10));
    Orv2dMatrix far(Orv2dPoint(30, 30));
    dst->rectangle(paint("white"), Orv2dRect(0, 0, 80, 60), 1);
    dst->bitblit(mu, far, src, 0, &clip);
    EXPECT_EQ(pixel(dst, 32, 33), px("white"));
    delete bits;
    delete src;
    delete dst;
}

}  // namespace
