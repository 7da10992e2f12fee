// The canvas primitives on real drawables of both test screens, checked pixel by pixel.
#include <gtest/gtest.h>

#include <type_traits>
#include <cmath>
#include <cstring>

#include <string>

#include "orv/view.h"
#include "orv_pixels.h"
#include "orv_xtest.h"

namespace {

class Canvas : public OrvScreenTest {};
ORV_ON_BOTH_SCREENS(Canvas);

TEST_P(Canvas, LinesWidthsStylesAndMatrix) {
    OrvBitmap* b = sheet();
    OrvMakeUp* red = paint("red");
    unsigned long R = px("red"), W = px("white");
    ASSERT_NE(R, W);
    b->line(red, Orv2dPoint(10, 10), Orv2dPoint(50, 10));
    EXPECT_EQ(pixel(b, 10, 10), R);
    EXPECT_EQ(pixel(b, 30, 10), R);
    EXPECT_EQ(pixel(b, 50, 10), R);
    EXPECT_EQ(pixel(b, 30, 11), W);
    EXPECT_EQ(pixel(b, 51, 10), W);

    // A matrix maps the points before anything reaches X.
    Orv2dMatrix shift(Orv2dPoint(5, 20));
    b->line(red, Orv2dPoint(10, 10), Orv2dPoint(50, 10), &shift);
    EXPECT_EQ(pixel(b, 15, 30), R);
    EXPECT_EQ(pixel(b, 55, 30), R);
    EXPECT_EQ(pixel(b, 14, 30), W);

    // Width 5 covers two rows above and below.
    OrvMakeUp* wide = d->makeUpLineWidth(red, 5);
    b->line(wide, Orv2dPoint(10, 50), Orv2dPoint(80, 50));
    EXPECT_EQ(pixel(b, 40, 48), R);
    EXPECT_EQ(pixel(b, 40, 52), R);
    EXPECT_EQ(pixel(b, 40, 54), W);

    // "dash": eight on, eight off, from the first point.
    OrvMakeUp* dashed = d->makeUpLineStyle(red, d->lineStyle("dash"));
    b->line(dashed, Orv2dPoint(10, 70), Orv2dPoint(90, 70));
    EXPECT_EQ(pixel(b, 12, 70), R);
    EXPECT_EQ(pixel(b, 17, 70), R);
    EXPECT_EQ(pixel(b, 20, 70), W);
    EXPECT_EQ(pixel(b, 29, 70), R);
    // A polyline of points that are all equal draws nothing.
    Orv2dPoint same[3] = {Orv2dPoint(5, 90), Orv2dPoint(5, 90), Orv2dPoint(5, 90)};
    b->polyLine(red, 3, same, 0);
    b->polyLine(red, 3, same, 1);
    EXPECT_EQ(pixel(b, 5, 90), W);
    delete b;
}

TEST_P(Canvas, RectanglesOutlineInsideAndFilled) {
    OrvBitmap* b = sheet();
    OrvMakeUp* blue = paint("blue");
    unsigned long B = px("blue"), W = px("white");
    b->rectangle(blue, Orv2dRect(10, 10, 20, 10), 0);
    EXPECT_EQ(pixel(b, 10, 10), B);
    EXPECT_EQ(pixel(b, 29, 10), B) << "the outline stays inside";
    EXPECT_EQ(pixel(b, 30, 10), W);
    EXPECT_EQ(pixel(b, 10, 19), B);
    EXPECT_EQ(pixel(b, 10, 20), W);
    EXPECT_EQ(pixel(b, 20, 15), W) << "not filled";
    b->rectangle(blue, Orv2dRect(40, 10, 20, 10), 1);
    EXPECT_EQ(pixel(b, 50, 15), B);
    EXPECT_EQ(pixel(b, 59, 19), B);
    EXPECT_EQ(pixel(b, 60, 19), W);
    EXPECT_EQ(pixel(b, 59, 20), W);
    // Scaled by two about the origin.
    Orv2dMatrix twice(2.0f, 2.0f);
    b->rectangle(blue, Orv2dRect(10, 30, 5, 5), 1, &twice);
    EXPECT_EQ(pixel(b, 20, 60), B);
    EXPECT_EQ(pixel(b, 29, 69), B);
    EXPECT_EQ(pixel(b, 30, 69), W);
    delete b;
}

TEST_P(Canvas, ArcsEndAngleAndArcModes) {
    OrvBitmap* b = sheet(200, 100);
    OrvMakeUp* green = paint("green");
    unsigned long G = px("green"), W = px("white");
    // From 90 to 180 degrees is the upper-left quarter: the second angle is an end.
    b->arc(green, Orv2dRect(10, 10, 40, 40), 90, 180, 1);
    EXPECT_EQ(pixel(b, 20, 20), G);
    EXPECT_EQ(pixel(b, 40, 20), W);
    EXPECT_EQ(pixel(b, 20, 40), W);
    // A pie includes the centre's corner, a chord only the part beyond the chord.
    OrvMakeUp* chord = d->makeUpArcMode(green, OrvArcChord);
    b->arc(green, Orv2dRect(60, 10, 40, 40), 0, 90, 1);
    b->arc(chord, Orv2dRect(110, 10, 40, 40), 0, 90, 1);
    EXPECT_EQ(pixel(b, 60 + 22, 10 + 16), G);
    EXPECT_EQ(pixel(b, 110 + 22, 10 + 16), W);
    EXPECT_EQ(pixel(b, 60 + 35, 10 + 8), G);
    EXPECT_EQ(pixel(b, 110 + 35, 10 + 8), G);
    // An outline arc: the rightmost point of a full circle.
    b->arc(green, Orv2dRect(150, 50, 40, 40), 0, 360, 0);
    EXPECT_EQ(pixel(b, 190, 70), G);
    EXPECT_EQ(pixel(b, 170, 70), W);
    delete b;
}

TEST_P(Canvas, PolygonFillRules) {
    OrvBitmap* b = sheet(200, 100);
    OrvMakeUp* red = paint("red");
    unsigned long R = px("red"), W = px("white");
    // A five-pointed star: its centre is wound twice.
    Orv2dPoint star[5];
    for (int i = 0; i < 5; i++) {
        double a = (-90 + 144 * i) * M_PI / 180;
        star[i] = Orv2dPoint(50 + (int)lround(40 * cos(a)), 50 + (int)lround(40 * sin(a)));
    }
    b->polyLine(red, 5, star, 1);
    EXPECT_EQ(pixel(b, 50, 50), W) << "even-odd leaves the centre";
    EXPECT_EQ(pixel(b, 50, 20), R) << "a point of the star";
    Orv2dMatrix right(Orv2dPoint(100, 0));
    b->polyLine(d->makeUpFillRule(red, OrvWindingRule), 5, star, 1, &right);
    EXPECT_EQ(pixel(b, 150, 50), R) << "winding fills the centre";
    // Unfilled polyline.
    Orv2dPoint open[3] = {Orv2dPoint(10, 95), Orv2dPoint(40, 95), Orv2dPoint(40, 85)};
    b->polyLine(red, 3, open, 0);
    EXPECT_EQ(pixel(b, 25, 95), R);
    EXPECT_EQ(pixel(b, 40, 90), R);
    EXPECT_EQ(pixel(b, 25, 90), W);
    delete b;
}

TEST_P(Canvas, BezierCurves) {
    OrvBitmap* b = sheet();
    OrvMakeUp* red = paint("red");
    unsigned long R = px("red"), W = px("white");
    Orv2dPoint c[4] = {Orv2dPoint(10, 90), Orv2dPoint(10, 10), Orv2dPoint(90, 10),
                       Orv2dPoint(90, 90)};
    b->bezier(red, 4, c, 0);
    // The curve passes through (50, 30) at t = 1/2, far from the control polygon.
    int near = countPixels(b, Orv2dRect(49, 29, 3, 3), R);
    EXPECT_GT(near, 0);
    EXPECT_EQ(pixel(b, 10, 50), W) << "not the control polygon";
    EXPECT_EQ(pixel(b, 10, 90), R);
    EXPECT_EQ(pixel(b, 90, 90), R);
    // Filled: closed from the last point back to the first.
    OrvBitmap* f = sheet();
    f->bezier(red, 4, c, 1);
    EXPECT_EQ(pixel(f, 50, 60), R);
    EXPECT_EQ(pixel(f, 50, 95), W);
    // Two points make a straight line.
    f->bezier(red, 2, c, 0);
    EXPECT_EQ(pixel(f, 10, 50), R);
    delete f;
    delete b;
}

TEST_P(Canvas, DrawModesCombinePixels) {
    OrvBitmap* b = sheet(100, 20);
    unsigned long m = mask();
    OrvMakeUp* mu = paint("red", "blue");
    unsigned long s0 = px("red"), bg = px("blue"), dst = px("yellow");
    for (unsigned long mode = 0; mode <= 8; mode++) {
        int x = (int)mode * 10;
        b->rectangle(paint("yellow"), Orv2dRect(x, 0, 10, 20), 1);
        mu->setMode(mode);
        b->rectangle(mu, Orv2dRect(x, 0, 10, 20), 1);
        mu->setMode(OrvCopyMode);
        // The exclusive modes draw the foreground xor the background, so that drawing on the
        // background shows the foreground.
        unsigned long s = (mode == 3 || mode == 8) ? (s0 ^ bg) : s0;
        unsigned long expected = 0;
        switch (mode) {
            case 1:
                expected = s | dst;
                break;
            case 2:
                expected = s & dst;
                break;
            case 3:
                expected = s ^ dst;
                break;
            case 4:
                expected = ~dst;
                break;
            case 5:
                expected = ~s;
                break;
            case 6:
                expected = ~s | dst;
                break;
            case 7:
                expected = ~s & dst;
                break;
            case 8:
                expected = ~s ^ dst;
                break;
            default:
                expected = s;
                break;
        }
        EXPECT_EQ(pixel(b, x + 5, 10), expected & m) << "mode " << mode;
    }
    // Exclusive or on the background gives the foreground, twice gives it back.
    b->rectangle(paint("blue"), Orv2dRect(0, 0, 10, 20), 1);
    mu->setMode(OrvXorMode);
    b->rectangle(mu, Orv2dRect(0, 0, 10, 20), 1);
    EXPECT_EQ(pixel(b, 5, 5), s0);
    b->rectangle(mu, Orv2dRect(0, 0, 10, 20), 1);
    EXPECT_EQ(pixel(b, 5, 5), bg);
    mu->setMode(OrvCopyMode);
    delete b;
}

TEST_P(Canvas, FillStylesPatternsAndTiles) {
    OrvBitmap* b = sheet(64, 40);
    OrvMakeUp* mu = paint("red", "blue");
    unsigned long R = px("red"), B = px("blue"), W = px("white");
    // "gray" shows its first row 0xAAAA: ones (foreground) at even x.
    OrvMakeUp* opaque = d->makeUpPattern(mu, d->pattern("gray"));
    b->rectangle(opaque, Orv2dRect(0, 0, 32, 10), 1);
    EXPECT_EQ(pixel(b, 0, 3), R);
    EXPECT_EQ(pixel(b, 1, 3), B) << "opaque stipple paints the background";
    EXPECT_EQ(pixel(b, 16, 7), R);
    EXPECT_EQ(pixel(b, 17, 7), B);
    OrvMakeUp* stippled = d->makeUpFillStyle(opaque, OrvFillStippled);
    b->rectangle(stippled, Orv2dRect(0, 10, 32, 10), 1);
    EXPECT_EQ(pixel(b, 2, 15), R);
    EXPECT_EQ(pixel(b, 3, 15), W) << "a stipple leaves the zeros";
    // "vert" (0x5555): ones at odd x.
    b->rectangle(d->makeUpPattern(mu, d->pattern("vert")), Orv2dRect(32, 0, 32, 10), 1);
    EXPECT_EQ(pixel(b, 33, 5), R);
    EXPECT_EQ(pixel(b, 32, 5), B);
    // The solid pattern fills solid.
    b->rectangle(d->makeUpPattern(mu, d->solidPattern), Orv2dRect(32, 10, 32, 10), 1);
    EXPECT_EQ(pixel(b, 33, 15), R);
    EXPECT_EQ(pixel(b, 34, 15), R);
    // A tile of two colours.
    OrvBitmap* tile = new OrvBitmap(d->rootCanvas, 4, 4, d->depth);
    tile->setClip(nullptr);
    tile->rectangle(paint("green"), Orv2dRect(0, 0, 4, 4), 1);
    tile->rectangle(paint("yellow"), Orv2dRect(0, 0, 2, 4), 1);
    b->setClip(nullptr);
    OrvMakeUp* tiled = d->makeUpFillStyle(d->makeUpColorPattern(mu, tile), OrvFillTiled);
    b->rectangle(tiled, Orv2dRect(0, 20, 16, 8), 1);
    EXPECT_EQ(pixel(b, 0, 22), px("yellow"));
    EXPECT_EQ(pixel(b, 2, 22), px("green"));
    EXPECT_EQ(pixel(b, 9, 25), px("yellow"));
    EXPECT_EQ(pixel(b, 11, 25), px("green"));
    EXPECT_EQ(tile->lockCount, 2u) << "each make-up that holds the colour pattern locks it";
    delete b;
}

TEST_P(Canvas, ClipRegionAndItsCaching) {
    OrvBitmap* b = sheet();
    OrvMakeUp* red = paint("red");
    unsigned long R = px("red"), W = px("white");
    Orv2dRegion region(Orv2dRect(0, 0, 20, 20));
    region.extendBy(Orv2dRect(60, 60, 20, 20));
    b->setClip(&region);
    EXPECT_EQ(red->clipValid, 0);
    ASSERT_NE(b->getClip(), nullptr);
    b->rectangle(red, Orv2dRect(0, 0, 100, 100), 1);
    EXPECT_EQ(red->clipValid, 1);
    EXPECT_EQ(pixel(b, 10, 10), R);
    EXPECT_EQ(pixel(b, 70, 70), R);
    EXPECT_EQ(pixel(b, 40, 40), W);
    EXPECT_EQ(pixel(b, 25, 10), W);
    // The clip is sent again only when the flag is clear: changing the region behind
    // setClip's back leaves the context as it was.
    b->clip = Orv2dRegion(25);
    b->rectangle(red, Orv2dRect(30, 30, 10, 10), 1);
    EXPECT_EQ(pixel(b, 35, 35), W);
    b->setClip(nullptr);
    EXPECT_EQ(b->getClip(), nullptr);
    b->rectangle(red, Orv2dRect(30, 30, 10, 10), 1);
    EXPECT_EQ(pixel(b, 35, 35), R);
    // An empty or zero-sized region clears the clip.
    Orv2dRegion flat(Orv2dRect(5, 5, 0, 10));
    b->setClip(&flat);
    EXPECT_EQ(b->getClip(), nullptr);
    delete b;
}

TEST_P(Canvas, PrepareAndEndReport) {
    OrvBitmap* b = sheet();
    Orv2dRegion region(Orv2dRect(0, 0, 10, 10));
    testing::internal::CaptureStdout();
    b->prepare(&region);
    b->prepare(&region);
    std::string twice = testing::internal::GetCapturedStdout();
    EXPECT_EQ(twice, " OrvCanvas::prepare must call ::end after ::before\n");
    EXPECT_EQ(b->preparing, 1);
    testing::internal::CaptureStdout();
    b->end();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(b->preparing, 0);
    b->setClip(&region);
    testing::internal::CaptureStdout();
    b->end();
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "OrvCanvas::end must call ::before before ::end \n");
    EXPECT_EQ(b->getClip(), nullptr) << "end clears the clip all the same";
    delete b;
}

TEST_P(Canvas, StringsPositionsAndMnemonic) {
    OrvBitmap* b = sheet(200, 120);
    OrvMakeUp* black = paint("black");
    unsigned long K = px("black");
    OrvRasterFont* font = black->font();
    ASSERT_NE(font, nullptr);
    Orv2dRect box = font->bbox("Hello", 0, 0);
    ASSERT_GT(box.w, 10u);
    // Left: the text starts at the point; the point's y is the baseline.
    b->string(black, Orv2dPoint(100, 30), "Hello", 0, OrvLeft);
    EXPECT_GT(countPixels(b, Orv2dRect(100, 30 + box.y, box.w, -box.y), K), 10);
    EXPECT_EQ(countPixels(b, Orv2dRect(80, 10, 20, 25), K), 0);
    // Right: it ends at the point.
    b->string(black, Orv2dPoint(100, 60), "Hello", 0, OrvRight);
    EXPECT_GT(countPixels(b, Orv2dRect(100 - box.w, 60 + box.y, box.w, -box.y), K), 10);
    EXPECT_EQ(countPixels(b, Orv2dRect(101, 40, 60, 22), K), 0);
    // Centre: around the point.
    b->string(black, Orv2dPoint(100, 90), "Hello", 0, OrvCenter);
    EXPECT_GT(countPixels(b, Orv2dRect(100 - box.w / 2, 90 + box.y, box.w / 2, -box.y), K), 3);
    EXPECT_GT(countPixels(b, Orv2dRect(100, 90 + box.y, box.w / 2 + 1, -box.y), K), 3);
    EXPECT_EQ(countPixels(b, Orv2dRect(100 + box.w / 2 + 2, 70, 40, 22), K), 0);

    // A mnemonic underlines its character one pixel below the baseline.
    OrvBitmap* m = sheet(100, 40);
    m->string(black, Orv2dPoint(10, 20), "abc", 0, OrvLeft, 2);
    int w1 = (int)font->bbox("a", 0, 0).w, w2 = (int)font->bbox("ab", 0, 0).w;
    int descent = font->box.y + (int)font->box.h;
    EXPECT_EQ(countPixels(m, Orv2dRect(10 + w1, 21, w2 - w1, 1), K), w2 - w1);
    EXPECT_EQ(pixel(m, 10 + w1 - 1, 21), px("white")) << "only under the second character";
    if (descent >= 2) {
        EXPECT_EQ(countPixels(m, Orv2dRect(10 + w1, 22, w2 - w1, 1), K), (w2 - w1) / 2);
    }
    // With a matrix, the point moves.
    OrvBitmap* t = sheet(100, 40);
    Orv2dMatrix down(Orv2dPoint(0, 10));
    t->string(black, Orv2dPoint(10, 10), "Hi", 0, OrvLeft, 0, &down);
    EXPECT_GT(countPixels(t, Orv2dRect(10, 20 + box.y, 30, -box.y), K), 3);
    EXPECT_EQ(countPixels(t, Orv2dRect(0, 0, 100, 20 + box.y), K), 0);
    delete t;
    delete m;
    delete b;
}

TEST_P(Canvas, StringUnderAGeneralMatrix) {
    OrvBitmap* b = sheet(200, 100);
    OrvMakeUp* black = paint("black");
    unsigned long K = px("black");
    Orv2dRect box = black->font()->bbox("HH", 0, 0);
    Orv2dMatrix scale(3.0f, 3.0f);
    scale.setValues(20, 10);
    b->string(black, scale, "HH", 0, nullptr);
    // Three times as wide, drawn from (20, 10) in the foreground only.
    EXPECT_GT(countPixels(b, Orv2dRect(20 + 2 * box.w, 10, box.w, 3 * box.h), K), 10);
    EXPECT_EQ(countPixels(b, Orv2dRect(0, 0, 20, 100), K), 0);
    EXPECT_EQ(countPixels(b, Orv2dRect(21 + 3 * box.w, 0, 200 - 21 - 3 * box.w, 100), K), 0);
    EXPECT_GT(countPixels(b, Orv2dRect(20, 10, 3 * box.w, 3 * box.h), px("white")), 10)
        << "zeros stay";
    delete b;
}

TEST_P(Canvas, ClipStringPlacesAndClips) {
    OrvBitmap* a = sheet(120, 40);
    OrvBitmap* c = sheet(120, 40);
    OrvMakeUp* black = paint("black");
    unsigned long K = px("black");
    Orv2dRect r(10, 5, 100, 30);
    a->clipString(black, r, "Centre", 0, OrvCenter);
    c->clipString(black, r, "Centre", 0, OrvBottom);  // not 1, 2 or 16: centred
    for (int x = 0; x < 120; x += 3)
        for (int y = 0; y < 40; y += 2) ASSERT_EQ(pixel(a, x, y), pixel(c, x, y)) << x << "," << y;
    EXPECT_GT(countPixels(a, r, K), 10);
    EXPECT_EQ(a->preparing, 0) << "prepare and end around the call";
    // A text larger than the rectangle is clipped to it.
    OrvBitmap* n = sheet(120, 40);
    n->clipString(black, Orv2dRect(20, 10, 12, 20), "Wide text here", 0, OrvLeft);
    EXPECT_GT(countPixels(n, Orv2dRect(20, 10, 12, 20), K), 3);
    EXPECT_EQ(countPixels(n, Orv2dRect(32, 0, 88, 40), K), 0);
    // Several lines, one font height apart.
    OrvBitmap* l = sheet(120, 60);
    l->clipString(black, Orv2dRect(0, 0, 120, 60), "one\ntwo", 0, OrvLeft);
    unsigned h = black->font()->box.h;
    EXPECT_GT(countPixels(l, Orv2dRect(0, 30 - h, 60, h), K), 3);
    EXPECT_GT(countPixels(l, Orv2dRect(0, 30, 60, h), K), 3);
    delete l;
    delete n;
    delete c;
    delete a;
}

TEST_P(Canvas, ClipBitmapAndTextWithBitmap) {
    OrvBitmap* b = sheet(120, 60);
    OrvMakeUp* red = paint("red");
    OrvBitmap* icon = new OrvBitmap(d->rootCanvas, 8, 8, 1);
    unsigned char ones[8] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
    icon->setBits(Orv2dRect(0, 0, 8, 8), ones, 8, 8, 0);
    // Centred in 10..49 by 10..29: the icon covers 26..33 by 16..23.
    b->clipBitmap(red, Orv2dRect(10, 10, 40, 20), icon, OrvCenter, 1);
    EXPECT_EQ(pixel(b, 26, 16), px("red"));
    EXPECT_EQ(pixel(b, 33, 23), px("red"));
    EXPECT_EQ(pixel(b, 25, 16), px("white"));
    EXPECT_EQ(pixel(b, 34, 23), px("white"));
    b->clipBitmap(red, Orv2dRect(60, 10, 40, 20), icon, OrvRight, 1);
    EXPECT_EQ(pixel(b, 99, 20), px("red")) << "right-aligned";
    EXPECT_EQ(pixel(b, 91, 20), px("white"));
    // A text with its icon on the left: the icon first, then the text.
    OrvBitmap* t = sheet(120, 40);
    OrvMakeUp* black = paint("black");
    t->clipStringBitmap(black, Orv2dRect(0, 0, 120, 40), "Ok", icon, 0, 0, OrvLeft, OrvLeft);
    EXPECT_EQ(pixel(t, 0, 16), px("black")) << "the icon at the left edge";
    Orv2dRect box = black->font()->bbox("Ok", 0, 0);
    EXPECT_GT(countPixels(t, Orv2dRect(8, 0, box.w + 1, 40), px("black")), 5)
        << "the text after it";
    EXPECT_EQ(countPixels(t, Orv2dRect(9 + box.w + 1, 0, 120 - 10 - box.w, 40), px("black")), 0);
    // Labels split at newlines; a last line without one counts.
    static_assert(
        std::is_same<decltype(&OrvTextToLabels), char** (*)(const char*, unsigned&)>::value,
        "the count of lines is an unsigned");
    unsigned count = 0;
    char** labels = OrvTextToLabels("a\nbc\n\nd", count);
    ASSERT_EQ(count, 4u);
    EXPECT_STREQ(labels[1], "bc");
    EXPECT_STREQ(labels[2], "");
    EXPECT_STREQ(labels[3], "d");
    delete t;
    delete icon;
    delete b;
}

TEST_P(Canvas, ReliefRectangleAndDiamond) {
    OrvBitmap* b = sheet(100, 60);
    OrvMakeUp* frame = paint("black");
    OrvMakeUp* surface = paint("grey");
    OrvMakeUp* light = paint("white");
    OrvMakeUp* dark = paint("blue");
    b->rectangle(paint("red"), Orv2dRect(0, 0, 100, 60), 1);
    b->reliefRectangle(frame, surface, light, dark, Orv2dRect(10, 10, 40, 30), 4, 1);
    EXPECT_EQ(pixel(b, 30, 12), px("white")) << "upper band";
    EXPECT_EQ(pixel(b, 12, 25), px("white")) << "left band";
    EXPECT_EQ(pixel(b, 47, 25), px("blue")) << "right band";
    EXPECT_EQ(pixel(b, 30, 37), px("blue")) << "lower band";
    EXPECT_EQ(pixel(b, 30, 25), px("grey")) << "surface";
    EXPECT_EQ(pixel(b, 10, 25), px("black")) << "frame";
    EXPECT_EQ(pixel(b, 5, 5), px("red"));
    // Too thick: only the surface.
    b->reliefRectangle(frame, surface, light, dark, Orv2dRect(60, 10, 10, 10), 5, 0);
    EXPECT_EQ(pixel(b, 61, 11), px("grey"));
    b->reliefDiamond(frame, surface, light, dark, Orv2dRect(60, 25, 30, 30), 4, 1);
    EXPECT_EQ(pixel(b, 75, 42), px("grey")) << "inner diamond";
    EXPECT_EQ(pixel(b, 75, 27), px("white")) << "upper half";
    EXPECT_EQ(pixel(b, 75, 53), px("blue")) << "lower half";
    delete b;
}

TEST_P(Canvas, DrawsOnAViewToo) {
    OrvView* v = new OrvView(d, Orv2dRect(30, 30, 120, 80), "canvas");
    ASSERT_TRUE(OrvTestWaitViewable(dpy, v->window()));
    v->setClip(nullptr);
    OrvMakeUp* red = paint("red");
    v->rectangle(paint("white"), Orv2dRect(0, 0, 120, 80), 1);
    v->rectangle(red, Orv2dRect(10, 10, 30, 20), 1);
    v->line(red, Orv2dPoint(50, 50), Orv2dPoint(110, 50));
    Orv2dRegion clip(Orv2dRect(60, 0, 60, 80));
    v->setClip(&clip);
    v->rectangle(red, Orv2dRect(50, 60, 40, 10), 1);
    v->setClip(nullptr);
    XSync(dpy, False);
    ASSERT_NE(v->ghostMakeUp, nullptr);
    v->ghostMakeUp->clipValid = 1;
    v->setClip(&clip);
    EXPECT_EQ(v->ghostMakeUp->clipValid, 0) << "a new clip reaches the ghost too";
    v->setClip(nullptr);
    EXPECT_EQ(pixel(v, 20, 20), px("red"));
    EXPECT_EQ(pixel(v, 45, 20), px("white"));
    EXPECT_EQ(pixel(v, 80, 50), px("red"));
    EXPECT_EQ(pixel(v, 55, 65), px("white")) << "clipped";
    EXPECT_EQ(pixel(v, 65, 65), px("red"));
    delete v;
}

}  // namespace

// GL after the library headers.
#include <GL/gl.h>
#include <GL/glx.h>

namespace {

TEST(CanvasGL, CopiesBetweenBackAndFrontBuffers) {
    const char* name = getenv("DISPLAY");
    if (!name || !*name) GTEST_SKIP() << "no DISPLAY";
    static Display* keeper = XOpenDisplay(name);
    (void)keeper;
    OrvDirector* d = new OrvDirector("gltest", name, 0, nullptr);
    Display* dpy = (Display*)d->display;
    OrvView* v =
        d->rootContext ? new OrvView(d, Orv2dRect(10, 10, 80, 60), "gl", OrvViewGL) : nullptr;
    if (!v || !v->glContext) {
        delete v;
        delete d;
        GTEST_SKIP() << "no GL on this screen";
    }
    ASSERT_TRUE(OrvTestWaitViewable(dpy, v->window()));
    glXMakeCurrent(dpy, (GLXDrawable)v->window(), (GLXContext)v->glContext);
    glDrawBuffer(GL_FRONT);
    glClearColor(0, 0, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glDrawBuffer(GL_BACK);
    glClearColor(1, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    EXPECT_EQ(_OrvBitBlit_(v, Orv2dRect(10, 10, 20, 20), 1, 0), 1u);
    EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST)) << "restored";
    EXPECT_EQ(_OrvBitBlit_(v, Orv2dRect(200, 200, 5, 5), 1, 0), 0u) << "outside the view";
    glFinish();
    XSync(dpy, False);
    // Window rows count from the top: the copied square lies at 10..29 in both directions.
    EXPECT_EQ(OrvTestRGB(dpy, v->window(), 15, 15), 0xFF0000u);
    EXPECT_EQ(OrvTestRGB(dpy, v->window(), 28, 28), 0xFF0000u);
    EXPECT_EQ(OrvTestRGB(dpy, v->window(), 50, 40), 0x0000FFu);
    EXPECT_EQ(OrvTestRGB(dpy, v->window(), 15, 32), 0x0000FFu);
    glXMakeCurrent(dpy, None, nullptr);
    delete v;
    delete d;
}

}  // namespace
