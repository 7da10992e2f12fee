// Named resources of the director: colours, fonts, patterns, line styles, cursors, bitmaps.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "orv_fixtures.h"

namespace {

class Resources : public OrvScreenTest {};
ORV_ON_BOTH_SCREENS(Resources);

TEST_P(Resources, ReliefColoursComeFromTheColourTable) {
    OrvColor *lit = nullptr, *shaded = nullptr, *pressed = nullptr;
    OrvComputeReliefColors(d->color(0.8f, 0.4f, 0.4f), lit, shaded, pressed);
    ASSERT_TRUE(lit && shaded && pressed);
    EXPECT_TRUE(d->color(shaded->red, shaded->green, shaded->blue) == shaded &&
                d->color(lit->red, lit->green, lit->blue) == lit);
}

TEST_P(Resources, ColoursByNameValueAndAlias) {
    OrvColor* red = d->color("red");
    ASSERT_STREQ(red->name, "#FFFF00000000");
    EXPECT_EQ(std::vector<OrvColor*>({red, red, red, red, red}),
              std::vector<OrvColor*>({d->color("red"), d->color("#FF0000"), d->color(1.0f, 0, 0),
                                      d->color("#FFFF00000000"), d->color(0.99995f, 0.00004f, 0)}))
        << "one object, within 0.0001 the same colour";
    // A long name is its own key, four hexadecimal digits per channel. 0x8000 / 65535 in single
    // precision lies just below the value: its floor names the colour, the name asked for
    // becomes an alias.
    OrvColor* c = d->color("#800040000000");
    EXPECT_FLOAT_EQ(c->red, 0x8000 / 65535.0f);
    EXPECT_TRUE(!strcmp(c->name, "#7FFF3FFF0000") && d->colors->get("#800040000000") == c);
    EXPECT_STREQ(d->color(0.5f, 0.25f, 1.0f)->name, "#7FFF3FFFFFFF");
    // Three digits are taken as they stand.
    OrvColor* f00 = d->color("#F00");
    EXPECT_TRUE(f00->red == 15.0f && d->color("#F00") == f00);
    // HSV has degrees, HLS a hue from 0 to 1.
    EXPECT_TRUE(d->colorHSV(240, 1, 1) == d->color("blue") && d->colorHLS(0, 0.5f, 1) == red);
    // The defaults of start-up: grey on black.
    EXPECT_TRUE(d->color("grey") == d->defaultBackground &&
                d->color("black") == d->defaultForeground);
}

TEST_P(Resources, ColourPixelsOnEachVisual) {
    OrvColor* red = d->color("red");
    unsigned long p = red->index(d->rootCanvas);
    if (d->depth == 24) {
        EXPECT_EQ(p & 0xFFFFFF, 0xFF0000u);
    } else {
        ASSERT_EQ(d->depth, 8);
        ASSERT_LT(p, 256u) << "an index of the colormap";
        unsigned short tr[256], tg[256], tb[256];
        d->colorTable(tr, tg, tb, nullptr);
        EXPECT_EQ(std::vector<int>({255, 0}), std::vector<int>({tr[p], tg[p]}));
        // The cell holds the floor of each value times 65535: one half is 0x7FFF, below 0.5.
        float r, g, b;
        d->indexToRGB((unsigned)d->color(0.5f, 0.5f, 0.5f)->index(d->rootCanvas), r, g, b);
        EXPECT_TRUE(r < 0.5f && r > 0.49f) << r;
    }
    // The realisation is shared by the canvases that share the root's resources.
    OrvBitmap* b = sheet(4, 4);
    EXPECT_TRUE(red->index(b) == p && red->internals.length() == 1u);
    delete b;
    unsigned distance = 1;
    EXPECT_TRUE(d->nearestColor(0xFFFF, 0, 0, &distance) == red && distance == 0u);
}

TEST_P(Resources, ColourCountingAndBadNames) {
    unsigned long before = d->numberOfColors();
    OrvColor* c = d->color(0.1f, 0.2f, 0.3f);
    EXPECT_TRUE(d->numberOfColors() == before + 1 && c->count == 0);
    OrvCount(c);
    OrvCount(c);
    OrvRelease(c);
    EXPECT_EQ(d->color(0.1f, 0.2f, 0.3f), c) << "still held";
    std::string key = c->name;
    OrvRelease(c);  // below one: deleted, and out of the table
    EXPECT_EQ(d->colors->get(key.c_str()), nullptr);
    // Unknown names give the default foreground and make nothing.
    EXPECT_TRUE(d->color("no such colour") == d->defaultForeground &&
                d->color("#12") == d->defaultForeground && d->numberOfColors() == before);
    // An alias goes with its colour.
    OrvColor* a = d->color("#0A0B0C");
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
    OrvColor* last = nullptr;
    std::string out = OrvTestOutput([&] {
        for (int i = 0; i < 300; i++) {
            OrvColor* c = d->color(i / 300.0f, 0.5f, (i % 7) / 7.0f);
            if (!c->index(d->rootCanvas)) last = c;
        }
    });
    ASSERT_NE(last, nullptr);
    std::string expected = std::string("OrvCanvas::make2dColor : Can't create color ") +
                           last->name + " \n (too many colors allocated) \n";
    EXPECT_NE(out.find(expected), std::string::npos);
    // Nothing was stored: the next use asks X again and reports again.
    EXPECT_EQ(expected, OrvTestOutput([&] { EXPECT_EQ(last->index(d->rootCanvas), 0u); }));
    // Give the colours back while the private colormap is still there.
    OrvList all;
    for (unsigned i = 0; i < d->colors->size; i++)
        for (OrvAListItem* it = d->colors->buckets[i] ? d->colors->buckets[i]->first : nullptr; it;
             it = it->next)
            all.append(it->value);
    for (OrvLink* l = all.first; l; l = l->next) ((OrvColor*)l->value)->remove(d->rootCanvas);
    d->rootCanvas->colormap = shared;
    XFreeColormap(dpy, own);
}

TEST_P(Resources, PatternsAndLineStyles) {
    // Spot checks of the start-up set: a 16-wide stipple, an 8 by 16 polygon stipple.
    OrvPattern* gray = d->pattern("gray");
    ASSERT_NE(gray, nullptr);
    EXPECT_EQ(std::vector<unsigned long>({16, 1, 0xAA, 0x55, 1}),
              std::vector<unsigned long>({gray->width, gray->height, gray->data[0], gray->data[2],
                                          (unsigned long)gray->count}));
    EXPECT_TRUE(d->pattern("3d_grey1")->height == 16u && d->pattern("solid") == d->solidPattern &&
                !d->pattern("no such pattern"));
    // The X bitmap of a pattern shows its first row: "dark1" is 0xFAAA.
    OrvBitmap* bits = d->pattern("dark1")->bitmap(d->rootCanvas);
    ASSERT_EQ(bits->depth, 1);
    unsigned v = 0;
    for (int x = 0; x < 16; x++) v = (v << 1) | (OrvTestPixel(dpy, bits->drawable, x, 0) ? 1 : 0);
    EXPECT_EQ(v, 0xFAAAu);
    // A new pattern goes to the head of the list with a count of 1.
    unsigned char data[16] = {0xF0, 0x0F};
    OrvPattern* mine = d->pattern("mine", 16, 1, data);
    EXPECT_TRUE(d->patterns->first->value == mine && d->pattern("mine") == mine &&
                mine->count == 1);
    // Line styles: dashes and the 16-bit pattern of GL; unknown names give the solid one.
    OrvLineStyle* dashdot = d->lineStyle("dashdot");
    ASSERT_NE(dashdot, nullptr);
    EXPECT_EQ(std::vector<int>({4, 8, 4, 4, 4, 0xACAC, 1}),
              std::vector<int>({dashdot->dashCount, dashdot->dashes[0], dashdot->dashes[1],
                                dashdot->dashes[2], dashdot->dashes[3], dashdot->pattern,
                                dashdot->count}));
    EXPECT_GE(d->solidLineStyle->count, 2) << "held by every make-up too";
    EXPECT_EQ(d->lineStyle("no such style"), d->solidLineStyle);
}

TEST_P(Resources, CursorsByName) {
    EXPECT_EQ(d->cursor("default"), d->defaultCursor);
    OrvCursor* wait = d->cursor("wait");
    ASSERT_NE(wait, nullptr) << "the clock under its new name";
    EXPECT_TRUE(wait->internal(d->rootCanvas) && wait->count == 1);
    OrvCursor* hand = d->cursor("hand2");
    EXPECT_EQ(d->cursors->first->value, hand) << "new cursors go to the head";
    EXPECT_EQ(std::string(d->positionToCursor(5)->name) + " " + d->positionToCursor(2048)->name,
              "top_left_corner dotbox");
    EXPECT_EQ(d->positionToCursor(3), d->defaultCursor);
    EXPECT_EQ("OrvCanvas::makeCursor : Can't create cursor no_such_cursor\n",
              OrvTestOutput([&] { EXPECT_EQ(d->cursor("no_such_cursor"), nullptr); }));
}

TEST_P(Resources, RasterFonts) {
    OrvRasterFont* def = d->font("default");
    ASSERT_EQ(def, d->defaultFont);
    // On a stock Debian server the default is Courier 12 from the 75 dpi fonts.
    EXPECT_TRUE(strstr(def->systemName, "courier") && strstr(def->systemName, "-12-"))
        << def->systemName;
    OrvRasterFont* h10 = d->font("%helvetica-10-");
    ASSERT_TRUE(h10 && h10 != def);
    EXPECT_NE(strstr(h10->systemName, "helvetica-medium-r"), nullptr) << h10->systemName;
    EXPECT_TRUE(d->font("%helvetica-10-") == h10 && !strcmp(h10->family(), "helvetica") &&
                !h10->foundary());
    EXPECT_EQ(d->font("times", 12, 5, nullptr), d->font("%times-12-BI"));
    OrvRasterFont* adobe = d->font("%helvetica-12-B-adobe");
    EXPECT_STREQ(adobe->foundary(), "adobe");
    EXPECT_NE(strstr(adobe->systemName, "-adobe-helvetica-bold-"), nullptr) << adobe->systemName;
    for (const char* bad : {"%helvetica-0-", "%helvetica-201-", "%helvetica"})
        EXPECT_EQ(d->font(bad), nullptr) << bad;
    EXPECT_EQ(d->font("fixed")->family(), nullptr);  // an X name is a system font
    // Unknown fonts give the default font; an empty X name is refused like any unknown one.
    EXPECT_EQ(d->font("%nosuchfamily-12-"), def);
    EXPECT_EQ("Creating Font: Invalid Font no-such-x-font \n",
              OrvTestOutput([&] { EXPECT_EQ(d->font("no-such-x-font"), def); }));
    EXPECT_EQ(d->fonts->get("no-such-x-font"), nullptr);
    EXPECT_EQ("Creating Font: Invalid Font  \n",
              OrvTestOutput([&] { EXPECT_EQ(d->font(""), def); }));
    // Text extents, with the mnemonic mark taken out.
    Orv2dRect hi = h10->bbox("Hi", 0, 0);
    EXPECT_TRUE(hi.w == h10->bbox("H\027i", 0, 1).w && hi.y < 0) << "above the baseline";
    EXPECT_EQ(h10->mnemonicPosition("ab\027c\027d", 0) + h10->mnemonicPosition("abc", 0), 2);
    EXPECT_STREQ(h10->mnemonicString("ab\027c\027d", 0), "abc\027d");
}

TEST_P(Resources, ScreenBufferAndBitmaps) {
    OrvBitmap* a = d->screenBuffer(50, 40);
    EXPECT_EQ(d->screenBuffer(30, 40), a) << "a request that fits";
    OrvBitmap* b = d->screenBuffer(60, 10);
    EXPECT_EQ(Orv2dPoint(60, 10), Orv2dPoint(b->width, b->height)) << "exactly the requested size";
    // Bitmaps by name, and the built-in picture for what cannot be read.
    OrvBitmap* unknown = d->readBitmap(d->rootCanvas, "no-such-file.xbm");
    ASSERT_NE(unknown, nullptr);
    EXPECT_STREQ(unknown->name, "OrvUnknownBitmap");
    EXPECT_EQ(std::vector<long>({20, 1}),
              std::vector<long>({(long)unknown->width, unknown->depth}));
    EXPECT_TRUE(d->readBitmap(d->rootCanvas, "other-missing.xbm") == unknown &&
                d->bitmap("OrvUnknownBitmap") == unknown);
    // Its first row is blank; row 1 is FF 3F 00, least significant bit first.
    EXPECT_EQ(std::vector<unsigned long>({0, 1, 1, 0}),
              std::vector<unsigned long>({OrvTestPixel(dpy, unknown->drawable, 0, 0),
                                          OrvTestPixel(dpy, unknown->drawable, 0, 1),
                                          OrvTestPixel(dpy, unknown->drawable, 13, 1),
                                          OrvTestPixel(dpy, unknown->drawable, 14, 1)}));
    // An X bitmap file: least significant bit first, so 0x02 of the second byte sets x 9.
    char path[] = "/tmp/orv_xbm_XXXXXX";
    int fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    const std::string text = "#define t_width 10\n#define t_height 2\nstatic unsigned char "
                             "t_bits[] = {\n   0x01, 0x02, 0xff, 0x03};\n";
    ASSERT_EQ(write(fd, text.data(), text.size()), (ssize_t)text.size());
    close(fd);
    OrvBitmap* x = d->readBitmap(d->rootCanvas, path);
    ASSERT_NE(x, nullptr);
    EXPECT_STREQ(x->name, path);
    EXPECT_TRUE(x->width == 10u && x->height == 2u && d->bitmap(path) == x);
    EXPECT_EQ(std::vector<unsigned long>({1, 0, 0, 1}),
              std::vector<unsigned long>(
                  {OrvTestPixel(dpy, x->drawable, 0, 0), OrvTestPixel(dpy, x->drawable, 1, 0),
                   OrvTestPixel(dpy, x->drawable, 8, 0), OrvTestPixel(dpy, x->drawable, 9, 0)}));
    unlink(path);
}

TEST_P(Resources, CloseReleasesWhatIsLeft) {
    // Everything here is left held on purpose; closing gives it all back (the leak checker of
    // the sanitized build watches this).
    OrvColor* c = d->color("orchid");
    OrvCount(c);
    OrvMakeUp* m =
        d->makeUpFont(d->makeUpBackground(d->defaultMakeUp, c), d->font("%helvetica-12-B"));
    OrvCount(m);
    OrvCount(d->makeUpColorPattern(m, new OrvBitmap(d->rootCanvas, 4, 4, d->depth)));
    unsigned char data[16] = {0};
    d->pattern("left behind", 16, 1, data);
    OrvCount(d->cursor("pirate"));
    d->screenBuffer(30, 30);
    OrvBitmap* masked = new OrvBitmap(d->rootCanvas, 4, 4, d->depth);
    masked->setMask(new OrvBitmap(d->rootCanvas, 4, 4, 1));
    d->close();
    EXPECT_EQ(std::vector<void*>(7, nullptr),
              std::vector<void*>({d->colors, d->makeUps, d->fonts, d->patterns, d->cursors,
                                  d->bitmaps, d->defaultMakeUp}));
    EXPECT_EQ(d->colorNames.first, nullptr) << "aliases go with their colours";
}

TEST(ResourcesExit, NoDefaultFontEndsTheProcess) {
    PrivateXServer server;
    if (!server.start()) GTEST_SKIP() << "no Xvfb";
    // An empty directory as the whole font path: not even "fixed" remains.
    char dir[] = "/tmp/orv_nofonts_XXXXXX";
    ASSERT_NE(mkdtemp(dir), nullptr);
    std::string fontsDir = std::string(dir) + "/fonts.dir";
    FILE* f = fopen(fontsDir.c_str(), "w");
    fputs("0\n", f);
    fclose(f);
    Display* raw = XOpenDisplay(server.name.c_str());
    ASSERT_NE(raw, nullptr);
    char* path[1] = {dir};
    XSetFontPath(raw, path, 1);
    XSync(raw, False);
    int out[2];
    ASSERT_EQ(pipe(out), 0);
    pid_t child = fork();
    if (child == 0) {
        dup2(out[1], 1);
        new OrvDirector("nofont", server.name.c_str(), 0, nullptr);
        _exit(3);  // not reached when the director ends the process
    }
    close(out[1]);
    std::string text;
    char buf[256];
    for (ssize_t r; (r = read(out[0], buf, sizeof buf)) > 0;) text.append(buf, r);
    close(out[0]);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    EXPECT_NE(text.find("## Can't find a default found !.\n"), std::string::npos) << text;
    XCloseDisplay(raw);
    unlink(fontsDir.c_str());
    rmdir(dir);
}

}  // namespace
