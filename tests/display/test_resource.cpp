// Named resources of the director: colours, fonts, patterns, line styles, cursors, bitmaps.
#include <gtest/gtest.h>
#include <fcntl.h>
#include <signal.h>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "orv_pixels.h"

namespace {

class Resources : public OrvScreenTest {};
ORV_ON_BOTH_SCREENS(Resources);

TEST_P(Resources, ReliefColoursAreShadesOfTheBase) {
    // A light base: the lit edge loses saturation and gains value, capped at 1.
    OrvColor* base = d->color(0.8f, 0.4f, 0.4f);
    OrvColor *lit = nullptr, *shaded = nullptr, *pressed = nullptr;
    OrvComputeReliefColors(base, lit, shaded, pressed);
    ASSERT_TRUE(lit && shaded && pressed);
    float h, s, v;
    OrvRGBToHSV(lit->red, lit->green, lit->blue, h, s, v);
    EXPECT_NEAR(v, 1.0f, 1e-4);
    EXPECT_NEAR(s, 0.5f * 0.7f, 1e-3);
    EXPECT_NEAR(h, 0.0f, 1e-3);
    OrvRGBToHSV(shaded->red, shaded->green, shaded->blue, h, s, v);
    EXPECT_NEAR(v, 0.8f * 0.7142857f, 1e-3);
    EXPECT_NEAR(s, 0.5f, 1e-3);
    OrvRGBToHSV(pressed->red, pressed->green, pressed->blue, h, s, v);
    EXPECT_NEAR(v, 0.8f * 0.8695652f, 1e-3);
    // A dark base brightens the lit edge by 1.6 and saturates the shaded one.
    OrvColor* dark = d->color(0.0f, 0.2f, 0.4f);
    OrvComputeReliefColors(dark, lit, shaded, pressed);
    OrvRGBToHSV(lit->red, lit->green, lit->blue, h, s, v);
    EXPECT_NEAR(v, 0.64f, 1e-3);
    EXPECT_NEAR(s, 1.0f, 1e-3);
    OrvRGBToHSV(shaded->red, shaded->green, shaded->blue, h, s, v);
    EXPECT_NEAR(v, 0.25f, 1e-3);
    EXPECT_NEAR(s, 1.0f, 1e-3) << "saturation times 1.42 is capped at 1";
    EXPECT_EQ(d->color(lit->red, lit->green, lit->blue), lit)
        << "shades come from the colour table";
}

TEST_P(Resources, ColoursByNameValueAndAlias) {
    OrvColor* red = d->color("red");
    ASSERT_NE(red, nullptr);
    EXPECT_EQ(d->color("red"), red) << "a second request returns the same object";
    EXPECT_STREQ(red->name, "#FFFF00000000");
    EXPECT_FLOAT_EQ(red->red, 1.0f);
    EXPECT_FLOAT_EQ(red->green, 0.0f);
    EXPECT_EQ(d->color("#FF0000"), red);
    EXPECT_EQ(d->color(1.0f, 0.0f, 0.0f), red);
    EXPECT_EQ(d->color("#FFFF00000000"), red);
    EXPECT_EQ(d->color(0.99995f, 0.00004f, 0.0f), red) << "within 0.0001 is the same colour";
    // A long name is its own key; its value comes from four hexadecimal digits per channel.
    OrvColor* c = d->color("#800040000000");
    EXPECT_FLOAT_EQ(c->red, 0x8000 / 65535.0f);
    EXPECT_FLOAT_EQ(c->green, 0x4000 / 65535.0f);
    // 0x8000 / 65535 in single precision lies just below the value: its floor names the colour,
    // and the name asked for becomes an alias.
    EXPECT_STREQ(c->name, "#7FFF3FFF0000");
    EXPECT_EQ(d->colors->get("#800040000000"), c);
    OrvColor* v = d->color(0.5f, 0.25f, 1.0f);
    EXPECT_STREQ(v->name, "#7FFF3FFFFFFF");
    // Three digits are taken as they stand.
    OrvColor* f00 = d->color("#F00");
    EXPECT_FLOAT_EQ(f00->red, 15.0f);
    EXPECT_EQ(d->color("#F00"), f00);
    int aliased = 0;
    for (OrvAListItem* i = d->colorNames.first; i; i = i->next)
        if (strcmp((const char*)i->key, "#F00") == 0) aliased = i->value == f00;
    EXPECT_TRUE(aliased);
    // HSV has degrees, HLS a hue from 0 to 1.
    EXPECT_EQ(d->colorHSV(120, 1, 1), d->color(0.0f, 1.0f, 0.0f));
    EXPECT_EQ(d->colorHLS(0, 0.5f, 1), red);
    EXPECT_EQ(d->colorHSV(240, 1, 1), d->color("blue"));
    float h, s, l;
    d->color("blue")->getHSV(h, s, l);
    EXPECT_FLOAT_EQ(h, 240.0f);
    // The defaults of start-up: grey on black.
    EXPECT_EQ(d->color("grey"), d->defaultBackground);
    EXPECT_EQ(d->color("black"), d->defaultForeground);
    EXPECT_GE(d->defaultBackground->count, 1);
    EXPECT_NE(d->defaultBackground->index(d->rootCanvas),
              d->defaultForeground->index(d->rootCanvas));
}

TEST_P(Resources, ColourPixelsOnEachVisual) {
    OrvColor* red = d->color("red");
    unsigned long p = red->index(d->rootCanvas);
    if (d->depth == 24) {
        EXPECT_EQ(p & 0xFFFFFF, 0xFF0000u);
    } else {
        EXPECT_EQ(d->depth, 8);
        EXPECT_LT(p, 256u) << "an index of the colormap";
        float r, g, b;
        d->indexToRGB((unsigned)p, r, g, b);
        EXPECT_FLOAT_EQ(r, 1.0f);
        EXPECT_FLOAT_EQ(g, 0.0f);
        unsigned short tr[256], tg[256], tb[256];
        d->colorTable(tr, tg, tb, nullptr);
        EXPECT_EQ(tr[p], 255);
        EXPECT_EQ(tg[p], 0);
    }
    // The realisation is shared by the canvases that share the root's resources.
    OrvBitmap* b = sheet(4, 4);
    EXPECT_EQ(red->index(b), p);
    EXPECT_EQ(red->internals.length(), 1u);
    delete b;
    unsigned distance = 1;
    EXPECT_EQ(d->nearestColor(0xFFFF, 0, 0, &distance), red);
    EXPECT_EQ(distance, 0u);
}

TEST_P(Resources, ColourCountingAndBadNames) {
    unsigned long before = d->numberOfColors();
    OrvColor* c = d->color(0.1f, 0.2f, 0.3f);
    EXPECT_EQ(d->numberOfColors(), before + 1);
    EXPECT_EQ(c->count, 0);
    OrvCount(c);
    OrvCount(c);
    OrvRelease(c);
    EXPECT_EQ(d->color(0.1f, 0.2f, 0.3f), c) << "still held";
    std::string key = c->name;
    OrvRelease(c);  // below one: deleted, and out of the table
    EXPECT_EQ(d->colors->get(key.c_str()), nullptr);
    EXPECT_EQ(d->numberOfColors(), before);
    // Unknown names give the default foreground and make nothing.
    EXPECT_EQ(d->color("no such colour"), d->defaultForeground);
    EXPECT_EQ(d->color("#12"), d->defaultForeground);
    EXPECT_EQ(d->numberOfColors(), before);
    // An alias goes with its colour.
    OrvColor* a = d->color("#0A0B0C");
    EXPECT_EQ(d->colors->get("#0A0B0C"), a);
    OrvCount(a);
    OrvRelease(a);
    EXPECT_EQ(d->colors->get("#0A0B0C"), nullptr);
}

TEST_P(Resources, FullColormapReportsAndTriesAgain) {
    if (d->depth != 8) GTEST_SKIP() << "only a colormap can run out";
    // A private colormap, so that other tests on the server keep theirs.
    unsigned long shared = d->rootCanvas->colormap;
    Colormap own =
        XCreateColormap(dpy, DefaultRootWindow(dpy), (Visual*)d->rootCanvas->visual, AllocNone);
    d->rootCanvas->colormap = own;
    int failures = 0;
    OrvColor* last = nullptr;
    testing::internal::CaptureStdout();
    for (int i = 0; i < 300; i++) {
        OrvColor* c = d->color(i / 300.0f, 0.5f, (i % 7) / 7.0f);
        if (!c->index(d->rootCanvas)) {
            failures++;
            last = c;
        }
    }
    std::string out = testing::internal::GetCapturedStdout();
    ASSERT_GT(failures, 0);
    std::string expected = std::string("OrvCanvas::make2dColor : Can't create color ") +
                           last->name + " \n (too many colors allocated) \n";
    EXPECT_NE(out.find(expected), std::string::npos);
    // Nothing was stored: the next use asks X again and reports again.
    testing::internal::CaptureStdout();
    EXPECT_EQ(last->index(d->rootCanvas), 0u);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), expected);
    // Give the colours back while the private colormap is still there.
    OrvList all;
    for (unsigned i = 0; i < d->colors->size; i++)
        if (d->colors->buckets[i])
            for (OrvAListItem* it = d->colors->buckets[i]->first; it; it = it->next)
                all.append(it->value);
    for (OrvLink* l = all.first; l; l = l->next) ((OrvColor*)l->value)->remove(d->rootCanvas);
    d->rootCanvas->colormap = shared;
    XFreeColormap(dpy, own);
}

TEST_P(Resources, PatternsOfStartUp) {
    struct Expect {
        const char* name;
        unsigned long w, h;
        unsigned char b0, b1, b2, b3;
    };
    static const Expect table[] = {
        {"solid", 16, 1, 0xFF, 0xFF, 0xFF, 0xFF},     {"clear", 16, 1, 0, 0, 0, 0},
        {"dark4", 16, 1, 0x7F, 0x7F, 0xFF, 0xFF},     {"light4", 16, 1, 0x80, 0x80, 0, 0},
        {"dark3", 16, 1, 0x77, 0x77, 0xFF, 0xFF},     {"light3", 16, 1, 0x88, 0x88, 0, 0},
        {"dark2", 16, 1, 0xAA, 0xAA, 0xFF, 0xFF},     {"light2", 16, 1, 0x55, 0x55, 0, 0},
        {"dark1", 16, 1, 0xFA, 0xAA, 0x57, 0xD5},     {"light1", 16, 1, 0x05, 0x55, 0xA8, 0x2A},
        {"gray", 16, 1, 0xAA, 0xAA, 0x55, 0x55},      {"diaglr", 16, 1, 0x88, 0x88, 0x44, 0x44},
        {"diagrl", 16, 1, 0x11, 0x11, 0x22, 0x22},    {"horiz", 16, 1, 0xFF, 0xFF, 0, 0},
        {"vert", 16, 1, 0x55, 0x55, 0x55, 0x55},      {"cross", 16, 1, 0xFF, 0xFF, 0x88, 0x88},
        {"3d_grey1", 8, 16, 0xAA, 0xAA, 0xAA, 0xAA},  {"3d_grey2", 8, 16, 0x33, 0x33, 0x33, 0x33},
        {"3d_light1", 8, 16, 0x88, 0x88, 0x88, 0x88}, {"3d_light2", 8, 16, 0x80, 0x80, 0x80, 0x80},
    };
    for (const Expect& e : table) {
        OrvPattern* p = d->pattern(e.name);
        ASSERT_NE(p, nullptr) << e.name;
        EXPECT_EQ(p->width, e.w) << e.name;
        EXPECT_EQ(p->height, e.h) << e.name;
        EXPECT_EQ(p->data[0], e.b0) << e.name;
        EXPECT_EQ(p->data[1], e.b1) << e.name;
        EXPECT_EQ(p->data[2], e.b2) << e.name;
        EXPECT_EQ(p->data[3], e.b3) << e.name;
        EXPECT_EQ(p->count, 1) << e.name;
        OrvBitmap* bits = p->bitmap(d->rootCanvas);
        ASSERT_NE(bits, nullptr);
        EXPECT_EQ(bits->depth, 1);
        EXPECT_EQ(bits->width, e.w);
    }
    EXPECT_EQ(d->pattern("solid"), d->solidPattern);
    // The second 32-bit row of a polygon stipple, and the last row of dark1.
    EXPECT_EQ(d->pattern("3d_grey1")->data[4], 0x55);
    EXPECT_EQ(d->pattern("3d_light2")->data[127], 0x08);
    EXPECT_EQ(d->pattern("dark1")->data[14], 0x5F) << "the eighth row is kept, 0x5F55";
    EXPECT_EQ(d->pattern("dark4")->data[8], 0xF7) << "row 4";
    // The X bitmap shows the first row: "dark1" is 0xFAAA.
    unsigned long size = 0;
    unsigned char* bits =
        d->pattern("dark1")->bitmap(d->rootCanvas)->getBits(size, Orv2dRect(0, 0, 16, 1));
    ASSERT_NE(bits, nullptr);
    unsigned v = 0;
    for (int x = 0; x < 16; x++)
        v = (v << 1) |
            (OrvBitmapPixelForTest(d, d->pattern("dark1")->bitmap(d->rootCanvas), x) ? 1 : 0);
    EXPECT_EQ(v, 0xFAAAu);
    delete[] bits;
    EXPECT_EQ(d->pattern("no such pattern"), nullptr);
    // A new pattern goes to the head of the list with a count of 1.
    unsigned char data[16] = {0xF0, 0x0F};  // a pattern keeps width times height bytes
    OrvPattern* mine = d->pattern("mine", 16, 1, data);
    EXPECT_EQ(d->patterns->first->value, mine);
    EXPECT_EQ(d->pattern("mine"), mine);
    EXPECT_EQ(mine->count, 1);
}

TEST_P(Resources, LineStylesOfStartUp) {
    struct Expect {
        const char* name;
        unsigned short count;
        unsigned char dashes[5];
        unsigned short pattern;
    };
    static const Expect table[] = {
        {"solid", 2, {4, 4}, 0xFFFF},
        {"dot", 2, {4, 4}, 0xAAAA},
        {"dash", 2, {8, 8}, 0xCCCC},
        {"dashdot", 4, {8, 4, 4, 4}, 0xACAC},
        {"dashdoubledot", 5, {8, 4, 4, 4, 4}, 0xACCA},
        {"alternate", 2, {1, 1}, 0x9999},
        {"doubledot", 4, {4, 4, 4, 12}, 0x5555},
        {"longdash", 2, {12, 4}, 0x7777},
    };
    for (const Expect& e : table) {
        OrvLineStyle* s = d->lineStyle(e.name);
        ASSERT_NE(s, nullptr);
        EXPECT_STREQ(s->name, e.name);
        EXPECT_EQ(s->dashCount, e.count) << e.name;
        EXPECT_EQ(memcmp(s->dashes, e.dashes, e.count), 0) << e.name;
        EXPECT_EQ(s->pattern, e.pattern) << e.name;
        // Counted once at start-up; the solid one also by every make-up.
        if (s == d->solidLineStyle)
            EXPECT_GE(s->count, 2) << e.name;
        else
            EXPECT_EQ(s->count, 1) << e.name;
    }
    EXPECT_EQ(d->lineStyle("solid"), d->solidLineStyle);
    EXPECT_EQ(d->lineStyle("no such style"), d->solidLineStyle);
    unsigned char dashes[2] = {3, 1};
    OrvLineStyle* s = d->lineStyle(2, dashes, 1, 0xF0F0);
    EXPECT_EQ(s->offset, 1);
    EXPECT_EQ(d->lineStyles->find(s), nullptr) << "not entered in a list";
    delete s;
}

TEST_P(Resources, CursorsByName) {
    ASSERT_NE(d->defaultCursor, nullptr);
    EXPECT_EQ(d->cursor("default"), d->defaultCursor);
    OrvCursor* wait = d->cursor("wait");
    ASSERT_NE(wait, nullptr) << "the clock under its new name";
    EXPECT_NE(wait->internal(d->rootCanvas), 0u);
    EXPECT_EQ(wait->count, 1);
    // A canvas with resources of its own makes the wait cursor under that name too.
    OrvCanvas* own = new OrvCanvas(d, 10, 10, (void*)d->rootCanvas->drawable);
    own->sharesRootResources = 0;
    EXPECT_NE(wait->internal(own), 0u);
    EXPECT_EQ(wait->internals.length(), 2u);
    delete own;
    EXPECT_EQ(wait->internals.length(), 1u);
    OrvCursor* hand = d->cursor("hand2");
    ASSERT_NE(hand, nullptr);
    EXPECT_EQ(d->cursor("hand2"), hand);
    EXPECT_EQ(d->cursors->first->value, hand) << "new cursors go to the head";
    EXPECT_STREQ(d->positionToCursor(5)->name, "top_left_corner");
    EXPECT_STREQ(d->positionToCursor(10)->name, "bottom_right_corner");
    EXPECT_STREQ(d->positionToCursor(2048)->name, "dotbox");
    EXPECT_EQ(d->positionToCursor(3), d->defaultCursor);
    testing::internal::CaptureStdout();
    EXPECT_EQ(d->cursor("no_such_cursor"), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "OrvCanvas::makeCursor : Can't create cursor no_such_cursor\n");
}

TEST_P(Resources, RasterFonts) {
    OrvRasterFont* def = d->font("default");
    ASSERT_NE(def, nullptr);
    EXPECT_EQ(def, d->defaultFont);
    ASSERT_NE(def->systemName, nullptr);
    // On a stock Debian server the default is Courier 12 from the 75 dpi fonts.
    EXPECT_NE(strstr(def->systemName, "courier"), nullptr) << def->systemName;
    EXPECT_NE(strstr(def->systemName, "-12-"), nullptr) << def->systemName;
    EXPECT_GT(def->box.h, 8u);
    OrvRasterFont* h10 = d->font("%helvetica-10-");
    ASSERT_NE(h10, nullptr);
    EXPECT_NE(h10, def);
    EXPECT_STREQ(h10->name, "%helvetica-10-");
    EXPECT_NE(strstr(h10->systemName, "helvetica-medium-r"), nullptr) << h10->systemName;
    EXPECT_EQ(d->font("%helvetica-10-"), h10);
    EXPECT_STREQ(h10->family(), "helvetica");
    EXPECT_EQ(h10->foundary(), nullptr);
    OrvRasterFont* bi = d->font("%times-12-BI");
    ASSERT_NE(bi, nullptr);
    EXPECT_EQ(d->font("times", 12, 5, nullptr), bi);
    EXPECT_EQ(bi->style, 5u);
    OrvRasterFont* adobe = d->font("%helvetica-12-B-adobe");
    EXPECT_STREQ(adobe->foundary(), "adobe");
    EXPECT_NE(strstr(adobe->systemName, "-adobe-helvetica-bold-"), nullptr) << adobe->systemName;
    EXPECT_EQ(d->font("%helvetica-0-"), nullptr);
    EXPECT_EQ(d->font("%helvetica-201-"), nullptr);
    EXPECT_EQ(d->font("%helvetica"), nullptr);
    // An X name is a system font.
    OrvRasterFont* fixed = d->font("fixed");
    ASSERT_NE(fixed, nullptr);
    EXPECT_EQ(fixed->family(), nullptr);
    EXPECT_EQ(d->font("fixed"), fixed);
    // Unknown fonts give the default font.
    EXPECT_EQ(d->font("%nosuchfamily-12-"), def);
    testing::internal::CaptureStdout();
    EXPECT_EQ(d->font("no-such-x-font"), def);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Creating Font: Invalid Font no-such-x-font \n");
    EXPECT_EQ(d->fonts->get("no-such-x-font"), nullptr);
    // An empty X name is refused like any unknown one (X itself mishandles it).
    testing::internal::CaptureStdout();
    EXPECT_EQ(d->font(""), def);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Creating Font: Invalid Font  \n");
    // Text extents, with the mnemonic mark taken out.
    Orv2dRect hi = h10->bbox("Hi", 0, 0);
    Orv2dRect marked = h10->bbox("H\027i", 0, 1);
    EXPECT_EQ(hi.w, marked.w);
    EXPECT_LT(hi.y, 0) << "the box starts above the baseline";
    EXPECT_EQ(h10->mnemonicPosition("ab\027c\027d", 0), 3);
    EXPECT_EQ(h10->mnemonicPosition("abc", 0), -1);
    EXPECT_STREQ(h10->mnemonicString("ab\027c\027d", 0), "abc\027d");
    int count = 0;
    const int* sizes = d->fontSizes("helvetica", 0, count);
    ASSERT_GT(count, 2);
    bool has10 = false, has12 = false;
    for (int i = 0; i < count; i++) {
        has10 |= sizes[i] == 10;
        has12 |= sizes[i] == 12;
        if (i) {
            EXPECT_LT(sizes[i - 1], sizes[i]);
        }
    }
    EXPECT_TRUE(has10 && has12);
}

TEST_P(Resources, ScreenBufferAndBitmaps) {
    OrvBitmap* a = d->screenBuffer(50, 40);
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a->width, 50u);
    EXPECT_EQ(a->depth, d->depth);
    EXPECT_EQ(d->screenBuffer(30, 40), a) << "a request that fits";
    EXPECT_EQ(d->screenBuffer(50, 40), a);
    OrvBitmap* b = d->screenBuffer(60, 10);
    EXPECT_EQ(b->width, 60u) << "exactly the requested size";
    EXPECT_EQ(b->height, 10u);
    EXPECT_EQ(d->bitmaps->find(b) != nullptr, true);
    // Bitmaps by name, and the built-in picture for what cannot be read.
    OrvBitmap* unknown = d->readBitmap(d->rootCanvas, "no-such-file.xbm");
    ASSERT_NE(unknown, nullptr);
    EXPECT_STREQ(unknown->name, "OrvUnknownBitmap");
    EXPECT_EQ(unknown->width, 20u);
    EXPECT_EQ(unknown->depth, 1);
    EXPECT_EQ(d->readBitmap(d->rootCanvas, "other-missing.xbm"), unknown);
    EXPECT_EQ(d->bitmap("OrvUnknownBitmap"), unknown);
    // Its first row is 00 00 00: blank; row 1 is FF 3F 00, least significant bit first.
    EXPECT_EQ(OrvBitmapPixelForTest(d, unknown, 0), 0u);
    EXPECT_EQ(OrvBitmapPixelForTest(d, unknown, 0, 1), 1u);
    EXPECT_EQ(OrvBitmapPixelForTest(d, unknown, 13, 1), 1u);
    EXPECT_EQ(OrvBitmapPixelForTest(d, unknown, 14, 1), 0u);
}

TEST_P(Resources, CloseReleasesWhatIsLeft) {
    // Everything here is left held on purpose; closing gives it all back (the leak checker of
    // the sanitized build watches this).
    OrvColor* c = d->color("orchid");
    OrvCount(c);
    OrvCount(c);
    OrvMakeUp* m =
        d->makeUpFont(d->makeUpBackground(d->defaultMakeUp, c), d->font("%helvetica-12-B"));
    OrvCount(m);
    OrvBitmap* tile = new OrvBitmap(d->rootCanvas, 4, 4, d->depth);
    OrvCount(d->makeUpColorPattern(m, tile));
    unsigned char data[16] = {0};
    d->pattern("left behind", 16, 1, data);
    OrvCount(d->cursor("pirate"));
    d->screenBuffer(30, 30);
    OrvBitmap* masked = new OrvBitmap(d->rootCanvas, 4, 4, d->depth);
    masked->setMask(new OrvBitmap(d->rootCanvas, 4, 4, 1));
    d->close();
    EXPECT_EQ(d->colors, nullptr);
    EXPECT_EQ(d->makeUps, nullptr);
    EXPECT_EQ(d->fonts, nullptr);
    EXPECT_EQ(d->patterns, nullptr);
    EXPECT_EQ(d->cursors, nullptr);
    EXPECT_EQ(d->bitmaps, nullptr);
    EXPECT_EQ(d->defaultMakeUp, nullptr);
    EXPECT_EQ(d->colorNames.first, nullptr) << "aliases go with their colours";
}

TEST_P(Resources, AsciiBitmapFile) {
    char path[] = "/tmp/orv_xbm_XXXXXX";
    int fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    const char* text = "#define t_width 10\n#define t_height 2\nstatic unsigned char t_bits[] = {\n"
                       "   0x01, 0x02, 0xff, 0x03};\n";
    ASSERT_EQ(write(fd, text, strlen(text)), (ssize_t)strlen(text));
    close(fd);
    OrvBitmap* b = d->readBitmap(d->rootCanvas, path);
    ASSERT_NE(b, nullptr);
    EXPECT_STREQ(b->name, path);
    EXPECT_EQ(b->width, 10u);
    EXPECT_EQ(b->height, 2u);
    EXPECT_EQ(d->bitmap(path), b);
    // Least significant bit first: 0x01 sets x 0, 0x02 sets x 9 (bit 1 of the second byte).
    unsigned long size = 0;
    unsigned char* row = b->getBits(size, Orv2dRect(0, 0, 10, 2));
    ASSERT_NE(row, nullptr);
    delete[] row;
    EXPECT_EQ(OrvBitmapPixelForTest(d, b, 0), 1u);
    EXPECT_EQ(OrvBitmapPixelForTest(d, b, 1), 0u);
    EXPECT_EQ(OrvBitmapPixelForTest(d, b, 9), 1u);
    EXPECT_EQ(OrvBitmapPixelForTest(d, b, 8), 0u);
    unlink(path);
}

// Starts an Xvfb of our own (the caller then empties its font path); its number arrives
// through -displayfd in a file.
pid_t startBareServer(std::string& display) {
    char numberFile[] = "/tmp/orv_bare_XXXXXX";
    int fd = mkstemp(numberFile);
    if (fd < 0) return -1;
    close(fd);
    std::string cmd = std::string("Xvfb -displayfd 3 -screen 0 320x240x24 -nolisten tcp 3>") +
                      numberFile + " >/dev/null 2>&1 & echo $!";
    FILE* p = popen(cmd.c_str(), "r");
    if (!p) return -1;
    int pid = -1;
    if (fscanf(p, "%d", &pid) != 1) pid = -1;
    pclose(p);
    for (int i = 0; i < 200 && pid > 0; i++) {
        FILE* f = fopen(numberFile, "r");
        int number = -1;
        if (f) {
            if (fscanf(f, "%d", &number) != 1) number = -1;
            fclose(f);
        }
        if (number >= 0) {
            display = ":" + std::to_string(number);
            unlink(numberFile);
            return pid;
        }
        usleep(50000);
    }
    unlink(numberFile);
    return -1;
}

TEST(ResourcesExit, NoDefaultFontEndsTheProcess) {
    std::string name;
    pid_t server = startBareServer(name);
    if (server < 0) GTEST_SKIP() << "no Xvfb";
    // An empty directory as the whole font path: not even "fixed" remains.
    char dir[] = "/tmp/orv_nofonts_XXXXXX";
    ASSERT_NE(mkdtemp(dir), nullptr);
    std::string fontsDir = std::string(dir) + "/fonts.dir";
    FILE* f = fopen(fontsDir.c_str(), "w");
    fputs("0\n", f);
    fclose(f);
    Display* raw = XOpenDisplay(name.c_str());
    ASSERT_NE(raw, nullptr);
    char* path[1] = {dir};
    XSetFontPath(raw, path, 1);
    XSync(raw, False);
    int n = 0;
    char** names = XListFonts(raw, "fixed", 1, &n);
    EXPECT_EQ(n, 0);
    if (names) XFreeFontNames(names);

    int out[2];
    ASSERT_EQ(pipe(out), 0);
    pid_t child = fork();
    if (child == 0) {
        close(out[0]);
        dup2(out[1], 1);
        new OrvDirector("nofont", name.c_str(), 0, nullptr);
        _exit(3);  // not reached when the director ends the process
    }
    close(out[1]);
    std::string text;
    char buf[256];
    ssize_t r;
    while ((r = read(out[0], buf, sizeof buf)) > 0) text.append(buf, r);
    close(out[0]);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_NE(text.find("## Can't find a default found !.\n"), std::string::npos) << text;
    XCloseDisplay(raw);
    kill(server, SIGTERM);
    waitpid(server, nullptr, 0);
    unlink(fontsDir.c_str());
    rmdir(dir);
}

}  // namespace
