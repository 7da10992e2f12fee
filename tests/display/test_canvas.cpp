// The canvas primitives on real drawables of both test screens, checked pixel by pixel.
#include <type_traits>
#include <cmath>

#include "orv_fixtures.h"

namespace {

class Canvas : public OrvScreenTest {};
ORV_ON_BOTH_SCREENS(Canvas);

TEST_P(Canvas, LinesWidthsStylesAndMatrix) {
    OrvBitmap* b = sheet();
    OrvMakeUp* red = paint("red");
    ASSERT_NE(px("red"), px("white"));
    b->line(red, Orv2dPoint(10, 10), Orv2dPoint(50, 10));
    // A matrix maps the points before anything reaches X.
    Orv2dMatrix shift(Orv2dPoint(5, 20));
    b->line(red, Orv2dPoint(10, 10), Orv2dPoint(50, 10), &shift);
    // Width 5 covers two rows above and below; "dash" is eight on, eight off from the first point.
    b->line(d->makeUpLineWidth(red, 5), Orv2dPoint(10, 50), Orv2dPoint(80, 50));
    b->line(d->makeUpLineStyle(red, d->lineStyle("dash")), Orv2dPoint(10, 70), Orv2dPoint(90, 70));
    expectPixels(b, "red: 10,10 50,10 15,30 55,30 40,48 40,52 12,70 17,70 29,70 "
                    "white: 30,11 51,10 14,30 40,54 20,70");
    // A polyline of points that are all equal draws nothing, filled or not.
    Orv2dPoint same[3] = {{5, 90}, {5, 90}, {5, 90}};
    b->polyLine(red, 3, same, 0);
    b->polyLine(red, 3, same, 1);
    expectPixels(b, "white: 5,90");
    delete b;
}

TEST_P(Canvas, RectanglesArcsPolygonsAndBeziers) {
    OrvBitmap* b = sheet(200, 100);
    OrvMakeUp *blue = paint("blue"), *green = paint("green"), *red = paint("red");
    // The outline stays inside the rectangle; scaled by two about the origin.
    b->rectangle(blue, Orv2dRect(10, 10, 20, 10), 0);
    b->rectangle(blue, Orv2dRect(40, 10, 20, 10), 1);
    Orv2dMatrix twice(2.0f, 2.0f);
    b->rectangle(blue, Orv2dRect(5, 25, 5, 5), 1, &twice);
    expectPixels(b, "blue: 10,10 29,10 10,19 50,15 59,19 10,50 19,59 "
                    "white: 30,10 10,20 20,15 60,19 59,20 20,59");
    // From 90 to 180 degrees is the upper-left quarter: the second angle is an end. A pie
    // includes the centre's corner, a chord only the part beyond the chord.
    b->arc(green, Orv2dRect(70, 10, 40, 40), 90, 180, 1);
    b->arc(green, Orv2dRect(110, 10, 40, 40), 0, 90, 1);
    b->arc(d->makeUpArcMode(green, OrvArcChord), Orv2dRect(150, 10, 40, 40), 0, 90, 1);
    b->arc(green, Orv2dRect(110, 55, 40, 40), 0, 360, 0);
    expectPixels(b, "green: 80,20 132,26 145,18 185,18 150,75 "
                    "white: 100,20 80,40 172,26 130,75");
    delete b;
    // A five-pointed star: its centre is wound twice, so even-odd leaves it out and winding
    // fills it.
    OrvBitmap* s = sheet(200, 100);
    Orv2dPoint star[5];
    for (int i = 0; i < 5; i++) {
        double a = (-90 + 144 * i) * M_PI / 180;
        star[i] = Orv2dPoint(50 + (int)lround(40 * cos(a)), 50 + (int)lround(40 * sin(a)));
    }
    s->polyLine(red, 5, star, 1);
    Orv2dMatrix right(Orv2dPoint(100, 0));
    s->polyLine(d->makeUpFillRule(red, OrvWindingRule), 5, star, 1, &right);
    Orv2dPoint open[3] = {{10, 95}, {40, 95}, {40, 85}};
    s->polyLine(red, 3, open, 0);
    expectPixels(s, "red: 50,20 150,50 25,95 40,90 white: 50,50 25,90");
    delete s;
    // A Bezier curve passes through (50, 30) at t = 1/2, far from its control polygon; filled, it
    // is closed from the last point to the first; two points make a straight line.
    OrvBitmap* c = sheet();
    Orv2dPoint ctl[4] = {{10, 90}, {10, 10}, {90, 10}, {90, 90}};
    c->bezier(red, 4, ctl, 0);
    EXPECT_GT(countPixels(c, Orv2dRect(49, 29, 3, 3), px("red")), 0);
    expectPixels(c, "red: 10,90 90,90 white: 10,50");
    OrvBitmap* f = sheet();
    f->bezier(red, 4, ctl, 1);
    expectPixels(f, "red: 50,60 white: 50,95 10,50");
    f->bezier(red, 2, ctl, 0);
    expectPixels(f, "red: 10,50");
    delete f;
    delete c;
}

TEST_P(Canvas, DrawModesCombinePixels) {
    OrvBitmap* b = sheet(100, 20);
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
        const unsigned long expected[9] = {s,  s | dst,  s & dst,  s ^ dst, ~dst,
                                           ~s, ~s | dst, ~s & dst, ~s ^ dst};
        EXPECT_EQ(pixel(b, x + 5, 10), expected[mode] & mask()) << "mode " << mode;
    }
    delete b;
}

TEST_P(Canvas, FillStylesPatternsAndTiles) {
    OrvBitmap* b = sheet(64, 40);
    OrvMakeUp* mu = paint("red", "blue");
    // "gray" shows its first row 0xAAAA: ones (foreground) at even x; opaque, the zeros take the
    // background, stippled they are left. "vert" (0x5555) has its ones at odd x.
    OrvMakeUp* opaque = d->makeUpPattern(mu, d->pattern("gray"));
    b->rectangle(opaque, Orv2dRect(0, 0, 32, 10), 1);
    b->rectangle(d->makeUpFillStyle(opaque, OrvFillStippled), Orv2dRect(0, 10, 32, 10), 1);
    b->rectangle(d->makeUpPattern(mu, d->pattern("vert")), Orv2dRect(32, 0, 32, 10), 1);
    b->rectangle(d->makeUpPattern(mu, d->solidPattern), Orv2dRect(32, 10, 32, 10), 1);
    expectPixels(b, "red: 0,3 16,7 2,15 33,5 33,15 34,15 blue: 1,3 17,7 32,5 white: 3,15");
    // A tile of two colours.
    OrvBitmap* tile = new OrvBitmap(d->rootCanvas, 4, 4, d->depth);
    tile->setClip(nullptr);
    tile->rectangle(paint("green"), Orv2dRect(0, 0, 4, 4), 1);
    tile->rectangle(paint("yellow"), Orv2dRect(0, 0, 2, 4), 1);
    OrvMakeUp* tiled = d->makeUpFillStyle(d->makeUpColorPattern(mu, tile), OrvFillTiled);
    b->rectangle(tiled, Orv2dRect(0, 20, 16, 8), 1);
    expectPixels(b, "yellow: 0,22 9,25 green: 2,22 11,25");
    EXPECT_EQ(tile->lockCount, 2u) << "each make-up that holds the colour pattern locks it";
    delete b;
}

TEST_P(Canvas, ClipRegionItsCachingAndTheBeforeEndPair) {
    OrvBitmap* b = sheet();
    OrvMakeUp* red = paint("red");
    Orv2dRegion region(Orv2dRect(0, 0, 20, 20));
    region.extendBy(Orv2dRect(60, 60, 20, 20));
    b->setClip(&region);
    EXPECT_EQ(red->clipValid, 0);
    b->rectangle(red, Orv2dRect(0, 0, 100, 100), 1);
    EXPECT_EQ(red->clipValid, 1);
    expectPixels(b, "red: 10,10 70,70 white: 40,40 25,10");
    // The clip is sent again only when the flag is clear: changing the region behind setClip's
    // back leaves the context as it was.
    b->clip = Orv2dRegion(25);
    b->rectangle(red, Orv2dRect(30, 30, 10, 10), 1);
    expectPixels(b, "white: 35,35");
    b->setClip(nullptr);
    EXPECT_EQ(b->getClip(), nullptr);
    b->rectangle(red, Orv2dRect(30, 30, 10, 10), 1);
    expectPixels(b, "red: 35,35");
    // An empty or zero-sized region clears the clip.
    Orv2dRegion flat(Orv2dRect(5, 5, 0, 10));
    b->setClip(&flat);
    EXPECT_EQ(b->getClip(), nullptr);
    // prepare twice and end without prepare report; end clears the clip all the same.
    EXPECT_EQ(" OrvCanvas::prepare must call ::end after ::before\n", OrvTestOutput([&] {
                  b->prepare(&region);
                  b->prepare(&region);
              }));
    EXPECT_EQ(b->preparing, 1);
    EXPECT_TRUE(OrvTestOutput([&] { b->end(); }).empty() && !b->preparing);
    b->setClip(&region);
    EXPECT_EQ("OrvCanvas::end must call ::before before ::end \n",
              OrvTestOutput([&] { b->end(); }));
    EXPECT_EQ(b->getClip(), nullptr);
    delete b;
}

TEST_P(Canvas, StringsPositionsAndMnemonic) {
    OrvBitmap* b = sheet(200, 120);
    OrvMakeUp* black = paint("black");
    unsigned long K = px("black");
    OrvRasterFont* font = black->font();
    Orv2dRect box = font->bbox("Hello", 0, 0);
    ASSERT_GT(box.w, 10u);
    // Left: the text starts at the point, whose y is the baseline; right: it ends there; centre:
    // around it.
    b->string(black, Orv2dPoint(100, 30), "Hello", 0, OrvLeft);
    b->string(black, Orv2dPoint(100, 60), "Hello", 0, OrvRight);
    b->string(black, Orv2dPoint(100, 90), "Hello", 0, OrvCenter);
    EXPECT_GT(countPixels(b, Orv2dRect(100, 30 + box.y, box.w, -box.y), K), 10);
    EXPECT_EQ(countPixels(b, Orv2dRect(80, 10, 20, 25), K), 0);
    EXPECT_GT(countPixels(b, Orv2dRect(100 - box.w, 60 + box.y, box.w, -box.y), K), 10);
    EXPECT_EQ(countPixels(b, Orv2dRect(101, 40, 60, 22), K), 0);
    EXPECT_GT(countPixels(b, Orv2dRect(100 - box.w / 2, 90 + box.y, box.w / 2, -box.y), K), 3);
    EXPECT_EQ(countPixels(b, Orv2dRect(100 + box.w / 2 + 2, 70, 40, 22), K), 0);
    // A mnemonic underlines its character one pixel below the baseline.
    OrvBitmap* m = sheet(100, 40);
    m->string(black, Orv2dPoint(10, 20), "abc", 0, OrvLeft, 2);
    int w1 = (int)font->bbox("a", 0, 0).w, w2 = (int)font->bbox("ab", 0, 0).w;
    EXPECT_EQ(countPixels(m, Orv2dRect(10 + w1, 21, w2 - w1, 1), K), w2 - w1);
    EXPECT_EQ(pixel(m, 10 + w1 - 1, 21), px("white")) << "only under the second character";
    // With a matrix, the point moves.
    OrvBitmap* t = sheet(100, 40);
    Orv2dMatrix down(Orv2dPoint(0, 10));
    t->string(black, Orv2dPoint(10, 10), "Hi", 0, OrvLeft, 0, &down);
    EXPECT_GT(countPixels(t, Orv2dRect(10, 20 + box.y, 30, -box.y), K), 3);
    EXPECT_EQ(countPixels(t, Orv2dRect(0, 0, 100, 20 + box.y), K), 0);
    // Under a general matrix: three times as wide, from (20, 10), the foreground only.
    OrvBitmap* g = sheet(200, 100);
    Orv2dRect hh = font->bbox("HH", 0, 0);
    Orv2dMatrix scale(3.0f, 3.0f);
    scale.setValues(20, 10);
    g->string(black, scale, "HH", 0, nullptr);
    EXPECT_GT(countPixels(g, Orv2dRect(20 + 2 * hh.w, 10, hh.w, 3 * hh.h), K), 10);
    EXPECT_EQ(countPixels(g, Orv2dRect(0, 0, 20, 100), K), 0);
    EXPECT_GT(countPixels(g, Orv2dRect(20, 10, 3 * hh.w, 3 * hh.h), px("white")), 10);
    for (OrvBitmap* x : {b, m, t, g}) delete x;
}

TEST_P(Canvas, ClipStringClipBitmapAndLabels) {
    OrvBitmap *a = sheet(120, 40), *c = sheet(120, 40);
    OrvMakeUp* black = paint("black");
    unsigned long K = px("black");
    Orv2dRect r(10, 5, 100, 30);
    a->clipString(black, r, "Centre", 0, OrvCenter);
    c->clipString(black, r, "Centre", 0, OrvBottom);  // not 1, 2 or 16: centred
    for (int x = 0; x < 120; x += 3)
        for (int y = 0; y < 40; y += 2) ASSERT_EQ(pixel(a, x, y), pixel(c, x, y)) << x << "," << y;
    EXPECT_EQ(a->preparing, 0) << "prepare and end around the call";
    // A text larger than the rectangle is clipped to it; lines are one font height apart.
    OrvBitmap* n = sheet(120, 60);
    n->clipString(black, Orv2dRect(20, 10, 12, 20), "Wide text here", 0, OrvLeft);
    EXPECT_EQ(countPixels(n, Orv2dRect(32, 0, 88, 40), K), 0);
    OrvBitmap* l = sheet(120, 60);
    l->clipString(black, Orv2dRect(0, 0, 120, 60), "one\ntwo", 0, OrvLeft);
    unsigned h = black->font()->box.h;
    EXPECT_GT(countPixels(l, Orv2dRect(0, 30 - h, 60, h), K), 3);
    EXPECT_GT(countPixels(l, Orv2dRect(0, 30, 60, h), K), 3);
    // An icon centred in 10..49 by 10..29 covers 26..33 by 16..23; right-aligned it ends at 99.
    OrvBitmap* b = sheet(120, 60);
    OrvBitmap* icon = new OrvBitmap(d->rootCanvas, 8, 8, 1);
    unsigned char ones[8] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
    icon->setBits(Orv2dRect(0, 0, 8, 8), ones, 8, 8, 0);
    b->clipBitmap(paint("red"), Orv2dRect(10, 10, 40, 20), icon, OrvCenter, 1);
    b->clipBitmap(paint("red"), Orv2dRect(60, 10, 40, 20), icon, OrvRight, 1);
    expectPixels(b, "red: 26,16 33,23 99,20 white: 25,16 34,23 91,20");
    // A text with its icon on the left: the icon first, then the text.
    OrvBitmap* t = sheet(120, 40);
    t->clipStringBitmap(black, Orv2dRect(0, 0, 120, 40), "Ok", icon, 0, 0, OrvLeft, OrvLeft);
    expectPixels(t, "black: 0,16");
    Orv2dRect box = black->font()->bbox("Ok", 0, 0);
    EXPECT_GT(countPixels(t, Orv2dRect(8, 0, box.w + 1, 40), K), 5) << "the text after it";
    EXPECT_EQ(countPixels(t, Orv2dRect(9 + box.w + 1, 0, 120 - 10 - box.w, 40), K), 0);
    // Labels split at newlines; a last line without one counts.
    static_assert(
        std::is_same<decltype(&OrvTextToLabels), char** (*)(const char*, unsigned&)>::value,
        "the count of lines is an unsigned");
    unsigned count = 0;
    char** labels = OrvTextToLabels("a\nbc\n\nd", count);
    EXPECT_EQ(std::vector<std::string>({"a", "bc", "", "d"}),
              std::vector<std::string>(labels, labels + count));
    for (OrvBitmap* x : {a, c, n, l, b, t, icon}) delete x;
}

TEST_P(Canvas, ReliefRectangleAndDiamond) {
    OrvBitmap* b = sheet(100, 60);
    OrvMakeUp *frame = paint("black"), *surface = paint("grey"), *light = paint("white"),
              *dark = paint("blue");
    b->rectangle(paint("red"), Orv2dRect(0, 0, 100, 60), 1);
    b->reliefRectangle(frame, surface, light, dark, Orv2dRect(10, 10, 40, 30), 4, 1);
    // Upper and left bands lit, right and lower dark, the surface, the frame, outside untouched.
    expectPixels(b, "white: 30,12 12,25 blue: 47,25 30,37 grey: 30,25 black: 10,25 red: 5,5");
    // Too thick: only the surface.
    b->reliefRectangle(frame, surface, light, dark, Orv2dRect(60, 10, 10, 10), 5, 0);
    b->reliefDiamond(frame, surface, light, dark, Orv2dRect(60, 25, 30, 30), 4, 1);
    expectPixels(b, "grey: 61,11 75,42 white: 75,27 blue: 75,53");
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
    v->ghostMakeUp->clipValid = 1;
    v->setClip(&clip);
    EXPECT_EQ(v->ghostMakeUp->clipValid, 0) << "a new clip reaches the ghost too";
    v->rectangle(red, Orv2dRect(50, 60, 40, 10), 1);
    v->setClip(nullptr);
    XSync(dpy, False);
    expectPixels(v, "red: 20,20 80,50 65,65 white: 45,20 55,65");
    delete v;
}

}  // namespace

// GL after the library headers.
#include <GL/gl.h>
#include <GL/glx.h>

class CanvasGL : public XTest {};

TEST_F(CanvasGL, CopiesBetweenBackAndFrontBuffers) {
    ASSERT_NE(director->rootContext, nullptr);
    OrvView* v = new OrvView(director, Orv2dRect(10, 10, 80, 60), "gl", OrvViewGL);
    ASSERT_NE(v->glContext, nullptr);
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
    // Window rows count from the top: the copied square lies at 10..29 in both directions.
    EXPECT_EQ(std::vector<unsigned long>({0xFF0000, 0xFF0000, 0x0000FF, 0x0000FF}),
              std::vector<unsigned long>({rgbOf(v->window(), 15, 15), rgbOf(v->window(), 28, 28),
                                          rgbOf(v->window(), 50, 40), rgbOf(v->window(), 15, 32)}));
    glXMakeCurrent(dpy, None, nullptr);
    delete v;
}
