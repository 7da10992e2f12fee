// Bitmaps from GIF, DIB and XPM2 files that netpbm and ImageMagick write: decoded
// exactly (every LZW code width, interlaced or not, global and local colour maps),
// drawn on a real window on the 24-bit and the 8-bit screen and compared by pixels;
// XPM2 written back and read by ImageMagick; every failure with its message, cut
// files at every offset and absurd sizes giving null.
#include "image_support.h"
#include "orv_fixtures.h"
#include "orv_xtest.h"

#include "orv/bitmapfile.h"
#include "orv/view.h"

namespace {

// Distinct colours: the red channel alone tells them apart.
void paletteColor(unsigned k, unsigned char c[3]) {
    c[0] = (unsigned char)(k * 67 + 13);
    c[1] = (unsigned char)(k * 151 + 101);
    c[2] = (unsigned char)(k * 29 + 200);
}

// A picture of `colors` colours, all of them used, written as a binary PPM.
struct Picture {
    unsigned width = 0, height = 0;
    std::vector<unsigned char> rgb;  // rows top first
    const unsigned char* at(unsigned x, unsigned y) const { return &rgb[(y * width + x) * 3]; }
};

Picture makePicture(const std::string& file, unsigned w, unsigned h, unsigned colors, bool noisy) {
    Picture p;
    p.width = w;
    p.height = h;
    p.rgb.resize((size_t)w * h * 3);
    unsigned seed = 12345;
    for (unsigned i = 0; i < w * h; i++) {
        unsigned k;
        if (i < colors) {
            k = i;
        } else if (noisy) {
            seed = seed * 1103515245 + 12345;
            k = (seed >> 16) % colors;
        } else {
            unsigned x = i % w, y = i / w;
            k = (x / 3 + y / 2 * 3) % colors;
        }
        paletteColor(k, &p.rgb[i * 3]);
    }
    std::string ppm = "P6\n" + std::to_string(w) + " " + std::to_string(h) + "\n255\n";
    ppm.append((const char*)p.rgb.data(), p.rgb.size());
    writeFile(file, ppm);
    return p;
}

// Bytes of a literal, zeros included.
template <size_t N>
std::string bytesOf(const char (&literal)[N]) {
    return std::string(literal, N - 1);
}

std::string decodeMismatch(const OrvGifFile& gif, const Picture& p) {
    if (gif.failed) return "failed";
    if (gif.width != p.width || gif.height != p.height) return "size";
    for (unsigned y = 0; y < p.height; y++)
        for (unsigned x = 0; x < p.width; x++) {
            unsigned i = gif.data[y * p.width + x];
            if (i >= gif.colorMapSize) return "index past the map";
            if (memcmp(gif.colorMap[i], p.at(x, y), 3))
                return "pixel " + std::to_string(x) + "," + std::to_string(y);
        }
    return "";
}

// The GIF decoder on its own: every code width, as two tools write it.
TEST(GifDecoder, EveryCodeWidthInterlacedOrNotFromTwoTools) {
    TempDir dir;
    struct Tool {
        const char* name;
        const char* command;  // %s: the source; writes out.gif
        bool interlaced;
        const char* version;
    };
    const Tool tools[] = {
        {"pamtogif", "pamtogif src.ppm > out.gif", false, "GIF87a"},
        {"pamtogif -interlace", "pamtogif -interlace src.ppm > out.gif", true, "GIF87a"},
        {"convert GIF87", "convert src.ppm GIF87:out.gif", false, "GIF87a"},
        {"convert -interlace", "convert src.ppm -interlace GIF GIF87:out.gif", true, "GIF87a"},
        {"convert 89a", "convert src.ppm out.gif", false, "GIF89a"},
    };
    // Minimum code sizes 2 to 8; the noisy pictures fill the table up to twelve-bit codes.
    for (unsigned colors : {2u, 3u, 4u, 8u, 16u, 32u, 64u, 128u, 256u}) {
        for (bool noisy : {false, true}) {
            unsigned w = noisy ? 150 : 13, h = noisy ? 101 : 9;
            Picture p = makePicture(dir / "src.ppm", w, h, colors, noisy);
            for (const Tool& t : tools) {
                ASSERT_TRUE(run("cd '" + dir.path + "' && " + t.command));
                std::string bytes = readFile(dir / "out.gif");
                EXPECT_EQ(bytes.substr(0, 6), t.version) << t.name;
                std::istringstream in(bytes);
                std::string said;
                OrvGifFile* gif = nullptr;
                said = captured([&] { gif = new OrvGifFile(in); });
                EXPECT_EQ(said, "") << t.name << " " << colors;
                EXPECT_EQ(gif->interlaced, t.interlaced ? 1 : 0) << t.name;
                EXPECT_EQ(decodeMismatch(*gif, p), "")
                    << t.name << ", " << colors << " colours, " << w << "x" << h;
                delete gif;
            }
        }
    }
}

// Local colour maps: the tool's global map moved into the image descriptor, and a
// wrong global map left in place that the local one must override.
TEST(GifDecoder, LocalColourMapsTakePrecedence) {
    TempDir dir;
    Picture p = makePicture(dir / "src.ppm", 21, 17, 12, false);
    ASSERT_TRUE(run("cd '" + dir.path + "' && pamtogif src.ppm > g.gif"));
    std::string g = readFile(dir / "g.gif");
    unsigned char packed = (unsigned char)g[10];
    ASSERT_TRUE(packed & 0x80);
    size_t mapBytes = 3u << ((packed & 7) + 1);
    std::string map = g.substr(13, mapBytes);
    std::string rest = g.substr(13 + mapBytes);
    size_t image = rest.find(',');
    ASSERT_NE(image, std::string::npos);
    // Only a local map.
    std::string local = g.substr(0, 10) + (char)(packed & 0x7F) + g.substr(11, 2) +
                        rest.substr(0, image + 9) + (char)(0x80 | (packed & 7)) + map +
                        rest.substr(image + 10);
    // A global map of other colours, and the right one local.
    std::string wrong = map;
    for (char& c : wrong) c = (char)~c;
    std::string both = g.substr(0, 13) + wrong + rest.substr(0, image + 9) +
                       (char)(0x80 | (packed & 7)) + map + rest.substr(image + 10);
    for (const std::string& bytes : {local, both}) {
        std::istringstream in(bytes);
        OrvGifFile gif(in);
        EXPECT_EQ(decodeMismatch(gif, p), "");
    }
}

class BitmapFiles : public OrvScreenTest {
protected:
    TempDir dir;
    OrvView* view = nullptr;

    void TearDown() override {
        delete view;
        OrvScreenTest::TearDown();
    }

    unsigned long expected(const unsigned char rgb[3]) {
        return d->color(rgb[0] / 255.0f, rgb[1] / 255.0f, rgb[2] / 255.0f)->index(d->rootCanvas) &
               mask();
    }

    // Draws the bitmap on a window over white and compares every pixel with the picture;
    // where `hole` matches a pixel's colour, white must show through.
    void expectDrawn(OrvBitmap* b, const Picture& p, const std::string& what,
                     const unsigned char* hole = nullptr) {
        ASSERT_NE(b, nullptr) << what;
        ASSERT_EQ(b->width, p.width) << what;
        ASSERT_EQ(b->height, p.height) << what;
        EXPECT_EQ(b->depth, d->rootCanvas->depth) << what;
        if (!view) {
            view = new OrvView(d, Orv2dRect(20, 20, 64, 64), "bitmap files");
            ASSERT_TRUE(OrvTestWaitViewable(dpy, view->window()));
        }
        view->setClip(nullptr);
        view->rectangle(paint("white"), Orv2dRect(0, 0, 64, 64), 1);
        view->bitblit(paint("black"), b, Orv2dRect(0, 0, p.width, p.height), Orv2dPoint(3, 2));
        XSync(dpy, False);
        XImage* im = XGetImage(dpy, view->window(), 3, 2, p.width, p.height, AllPlanes, ZPixmap);
        ASSERT_NE(im, nullptr);
        unsigned long white = px("white");
        int wrong = 0;
        for (unsigned y = 0; y < p.height; y++)
            for (unsigned x = 0; x < p.width; x++) {
                unsigned long want =
                    hole && !memcmp(hole, p.at(x, y), 3) ? white : expected(p.at(x, y));
                unsigned long got = XGetPixel(im, x, y) & mask();
                if (got != want && wrong++ < 3)
                    ADD_FAILURE() << what << ": pixel " << x << "," << y << " is " << std::hex
                                  << got << ", not " << want;
            }
        XDestroyImage(im);
        EXPECT_EQ(wrong, 0) << what;
    }

    OrvBitmap* quietly(const std::function<OrvBitmap*()>& read, const std::string& what) {
        OrvBitmap* b = nullptr;
        EXPECT_EQ(captured([&] { b = read(); }), "") << what;
        return b;
    }
};
ORV_ON_BOTH_SCREENS(BitmapFiles);

TEST_P(BitmapFiles, GifDrawnOnAWindow) {
    Picture p = makePicture(dir / "src.ppm", 13, 9, 7, false);
    const char* commands[] = {"pamtogif src.ppm > a.gif",
                              "convert src.ppm -interlace GIF GIF87:a.gif",
                              "convert src.ppm GIF89:a.gif"};
    for (const char* c : commands) {
        ASSERT_TRUE(run("cd '" + dir.path + "' && " + c));
        std::string file = dir / "a.gif";
        OrvBitmap* b = quietly([&] { return OrvReadGIFBitmap(d->rootCanvas, file.c_str()); }, c);
        expectDrawn(b, p, c);
        if (!b) continue;
        EXPECT_STREQ(b->name, file.c_str());
        EXPECT_EQ(b->mask, nullptr);
        delete b;
        // From a stream too, unnamed.
        std::istringstream in(readFile(file));
        b = OrvReadGIFBitmap(d->rootCanvas, in);
        expectDrawn(b, p, std::string(c) + " (stream)");
        if (!b) continue;
        EXPECT_EQ(b->name, nullptr);
        delete b;
    }
    // A transparent colour gives a mask: the window's white shows there.
    unsigned char hole[3];
    paletteColor(2, hole);
    char name[16];
    snprintf(name, sizeof name, "#%02X%02X%02X", hole[0], hole[1], hole[2]);
    ASSERT_TRUE(run("cd '" + dir.path + "' && convert src.ppm -transparent '" + name + "' t.gif"));
    std::string file = dir / "t.gif";
    OrvBitmap* b = quietly([&] { return OrvReadGIFBitmap(d->rootCanvas, file.c_str()); }, "t.gif");
    ASSERT_NE(b, nullptr);
    ASSERT_NE(b->mask, nullptr);
    EXPECT_EQ(b->mask->depth, 1);
    expectDrawn(b, p, "transparent", hole);
    delete b;
}

TEST_P(BitmapFiles, DibDrawnOnAWindow) {
    struct Case {
        unsigned colors;
        const char* command;
    };
    const Case cases[] = {
        {2, "ppmtobmp -bpp 1 src.ppm > a.bmp"},
        {2, "ppmtobmp -bpp 4 src.ppm > a.bmp"},
        {9, "ppmtobmp -bpp 4 src.ppm > a.bmp"},
        {9, "ppmtobmp -bpp 8 src.ppm > a.bmp"},
        {9, "ppmtobmp -os2 -bpp 8 src.ppm > a.bmp"},
        {2, "ppmtobmp -os2 -bpp 1 src.ppm > a.bmp"},
        {9, "convert src.ppm -type Palette -compress none BMP3:a.bmp"},
        {14, "convert src.ppm -type Palette -compress none BMP2:a.bmp"},
        {14, "convert src.ppm -type Palette -compress none BMP:a.bmp"},
    };
    for (const Case& c : cases) {
        Picture p = makePicture(dir / "src.ppm", 19, 7, c.colors, false);
        ASSERT_TRUE(run("cd '" + dir.path + "' && " + c.command));
        std::string file = dir / "a.bmp";
        OrvBitmap* b =
            quietly([&] { return OrvReadDIBBitmap(d->rootCanvas, file.c_str()); }, c.command);
        expectDrawn(b, p, c.command);
        if (!b) continue;
        EXPECT_STREQ(b->name, file.c_str());
        delete b;
        // The same rows top-down: a negative height, the rows in the other order.
        std::string bytes = readFile(file);
        unsigned header = (unsigned char)bytes[14];
        if (header < 40) continue;
        unsigned offset = (unsigned char)bytes[10] | (unsigned char)bytes[11] << 8;
        unsigned depth = (unsigned char)bytes[28];
        unsigned rowBytes = ((19 * depth + 31) / 32) * 4;
        std::string flipped = bytes;
        int negative = -7;
        memcpy(&flipped[22], &negative, 4);
        for (unsigned r = 0; r < 7; r++)
            flipped.replace(offset + r * rowBytes, rowBytes,
                            bytes.substr(offset + (6 - r) * rowBytes, rowBytes));
        writeFile(dir / "down.bmp", flipped);
        std::string down = dir / "down.bmp";
        b = quietly([&] { return OrvReadDIBBitmap(d->rootCanvas, down.c_str()); }, "top-down");
        expectDrawn(b, p, std::string("top-down ") + c.command);
        delete b;
    }
}

TEST_P(BitmapFiles, Xpm2DrawnOnAWindow) {
    // XPM3 from the tools, turned into XPM2 line by line, in both comment styles; the
    // colours come as X names (ppmtoxpm) or as hexadecimal, one or two characters a pixel.
    struct Case {
        unsigned colors;
        const char* make;
        const char* first;
    };
    const Case cases[] = {
        {9, "ppmtoxpm src.ppm > a.xpm", "! XPM2"},
        {9, "convert src.ppm xpm:a.xpm", "/* XPM2 */"},
        // ImageMagick's characters include "!": only the other style can hold them.
        {120, "convert src.ppm xpm:a.xpm", "/* XPM2 */"},
        {120, "ppmtoxpm -hexonly src.ppm > a.xpm", "! XPM2"},
    };
    for (const Case& c : cases) {
        if (d->depth == 8 && c.colors > 40) continue;  // the colormap would run out
        Picture p = makePicture(dir / "src.ppm", 17, 11, c.colors, false);
        ASSERT_TRUE(run("cd '" + dir.path + "' && " + c.make + " && { echo '" + c.first +
                        "'; echo '! a comment line'; sed -n 's/^\"\\(.*\\)\",\\{0,1\\}$/\\1/p' "
                        "a.xpm; } > a.xpm2"));
        std::string text = readFile(dir / "a.xpm2");
        if (c.first[0] == '/') {
            // "!" is no comment in this style; a "/*" one spanning two lines is.
            size_t second = text.find('\n') + 1;
            text.replace(second, text.find('\n', second) + 1 - second,
                         "/* a comment\n over two */\n");
        }
        writeFile(dir / "a.xpm2", text);
        std::string file = dir / "a.xpm2";
        OrvBitmap* b =
            quietly([&] { return OrvReadXPM2Bitmap(d->rootCanvas, file.c_str()); }, c.make);
        expectDrawn(b, p, std::string(c.make) + " " + c.first);
        if (!b) continue;
        EXPECT_STREQ(b->name, file.c_str());
        delete b;
    }
    // "None" is transparent; a colour may be named with blanks; several keys on a line.
    Picture p = makePicture(dir / "src.ppm", 3, 2, 3, false);
    unsigned char c0[3], c1[3];
    paletteColor(0, c0);
    paletteColor(1, c1);
    char text[256];
    snprintf(text, sizeof text,
             "! XPM2\n3 2 3 1\na c #%02X%02X%02X m black\nb s mark c #%02X%02X%02X\nc c None\n"
             "abc\nccc\n",
             c0[0], c0[1], c0[2], c1[0], c1[1], c1[2]);
    writeFile(dir / "none.xpm2", text);
    std::string file = dir / "none.xpm2";
    OrvBitmap* b = quietly([&] { return OrvReadXPM2Bitmap(d->rootCanvas, file.c_str()); }, "none");
    ASSERT_NE(b, nullptr);
    ASSERT_NE(b->mask, nullptr);
    Picture q = p;
    unsigned char hole[3] = {1, 2, 3};
    for (unsigned i = 2; i < 6; i++) memcpy(&q.rgb[i * 3], hole, 3);
    expectDrawn(b, q, "None", hole);
    delete b;
    writeFile(dir / "named.xpm2", "! XPM2\n2 1 2 1\nr c light goldenrod yellow\ng c red\nrg\n");
    file = dir / "named.xpm2";
    b = quietly([&] { return OrvReadXPM2Bitmap(d->rootCanvas, file.c_str()); }, "named");
    ASSERT_NE(b, nullptr);
    Picture named;
    named.width = 2;
    named.height = 1;
    named.rgb = {0xFA, 0xFA, 0xD2, 0xFF, 0, 0};
    expectDrawn(b, named, "a name with blanks");
    delete b;
}

TEST_P(BitmapFiles, ReadBitmapTriesEachFormat) {
    Picture p = makePicture(dir / "src.ppm", 10, 6, 5, false);
    ASSERT_TRUE(run("cd '" + dir.path +
                    "' && pamtogif src.ppm > a.gif && ppmtobmp -bpp 8 src.ppm > a.bmp && "
                    "convert src.ppm xpm:- | sed -n 's/^\"\\(.*\\)\",\\{0,1\\}$/\\1/p' > body && "
                    "{ echo '! XPM2'; cat body; } > a.xpm2"));
    d->prependToPath(dir.path.c_str());
    struct Case {
        const char* file;
        std::string said;  // what the readers before the right one report
    };
    const Case cases[] = {
        {"a.bmp", ""},
        {"a.gif", "DIB: Not a DIB file (a.gif).\n"},
        {"a.xpm2", "DIB: Not a DIB file (a.xpm2).\nOrvGifFile() - not a GIF file\n"},
    };
    for (const Case& c : cases) {
        OrvBitmap* b = nullptr;
        EXPECT_EQ(captured([&] { b = d->readBitmap(d->rootCanvas, c.file); }), c.said) << c.file;
        expectDrawn(b, p, c.file);
        if (!b) continue;
        EXPECT_STREQ(b->name, c.file);
        EXPECT_EQ(d->readBitmap(d->rootCanvas, c.file), b) << "found by its name the next time";
    }
    // Nothing reads a missing file: each reader says so, and the built-in picture stands in.
    OrvBitmap* unknown = nullptr;
    EXPECT_EQ(captured([&] { unknown = d->readBitmap(d->rootCanvas, "missing.gif"); }),
              "DIB: couldn't open missing.gif.\nOrvGifFile() - couldn't open missing.gif\n"
              "XPM: couldn't open missing.gif.\n");
    ASSERT_NE(unknown, nullptr);
    EXPECT_STREQ(unknown->name, "OrvUnknownBitmap");
}

TEST_P(BitmapFiles, Xpm2WrittenAndReadBackByImageMagick) {
    Picture p = makePicture(dir / "src.ppm", 14, 6, 6, false);
    ASSERT_TRUE(run("cd '" + dir.path + "' && pamtogif src.ppm > a.gif"));
    OrvBitmap* b = OrvReadGIFBitmap(d->rootCanvas, (dir / "a.gif").c_str());
    ASSERT_NE(b, nullptr);
    std::string out = dir / "out.xpm2";
    EXPECT_EQ(quietly([&] { return OrvSaveXPM2Bitmap(b, out.c_str()) ? b : nullptr; }, "save"), b);
    std::string text = readFile(out);
    EXPECT_EQ(text.substr(0, 19), "! XPM2  \n14 6 6 1\n#");
    // Each colour line holds the sixteen-bit channels.
    unsigned char c0[3];
    paletteColor(0, c0);
    char line[64];
    snprintf(line, sizeof line, "# c #%02X%02X%02X%02X%02X%02X\n", c0[0], c0[0], c0[1], c0[1],
             c0[2], c0[2]);
    EXPECT_NE(text.find(line), std::string::npos) << text;
    // ImageMagick reads it as XPM3.
    ASSERT_TRUE(run("cd '" + dir.path +
                    "' && { echo '/* XPM */'; echo 'static char *x[] = {'; "
                    "tail -n +2 out.xpm2 | sed 's/.*/\"&\",/'; echo '};'; } > back.xpm && "
                    "convert back.xpm -depth 8 back.ppm"));
    PlainMap back = parsePlain(dir / "back.ppm");
    ASSERT_EQ(back.width, 14u);
    for (unsigned y = 0; y < 6; y++)
        for (unsigned x = 0; x < 14; x++)
            for (unsigned k = 0; k < 3; k++)
                ASSERT_EQ(back.at(x, y, k), p.at(x, y)[k]) << x << "," << y;
    // And the library reads its own file to the same picture.
    OrvBitmap* again =
        quietly([&] { return OrvReadXPM2Bitmap(d->rootCanvas, out.c_str()); }, "own");
    expectDrawn(again, p, "written and read");
    delete again;
    delete b;
    // A one-bit bitmap: its ones are black.
    OrvBitmap* one = new OrvBitmap(d->rootCanvas, 3, 1, 1);
    const unsigned char bits[4] = {0xA0, 0, 0, 0};
    one->setBits(Orv2dRect(0, 0, 3, 1), bits, 4, 32, 0);
    std::string oneOut = dir / "one.xpm2";
    ASSERT_EQ(OrvSaveXPM2Bitmap(one, oneOut.c_str()), 1);
    EXPECT_EQ(readFile(oneOut), "! XPM2  \n3 1 2 1\n# c #000000000000\n$ c #FFFFFFFFFFFF\n#$#\n");
    delete one;
    if (d->depth == 8) return;
    // More colours than characters: a report, and the nearest colour kept stands in.
    Picture many = makePicture(dir / "many.ppm", 20, 10, 120, false);
    ASSERT_TRUE(run("cd '" + dir.path + "' && pamtogif many.ppm > many.gif"));
    OrvBitmap* m = OrvReadGIFBitmap(d->rootCanvas, (dir / "many.gif").c_str());
    ASSERT_NE(m, nullptr);
    std::string manyOut = dir / "many.xpm2";
    EXPECT_EQ(captured([&] { EXPECT_EQ(OrvSaveXPM2Bitmap(m, manyOut.c_str()), 1); }),
              "XPM: Too many colors for ascii format\n##   Truncating to 92 different colors.\n");
    EXPECT_EQ(readFile(manyOut).substr(0, 20), "! XPM2  \n20 10 92 1\n");
    EXPECT_EQ(captured([&] { EXPECT_EQ(OrvSaveXPM2Bitmap(m, "/nonexistent-dir/x.xpm2"), 0); }),
              "XPM: Too many colors for ascii format\n##   Truncating to 92 different colors.\n"
              "XPM: couldn't open /nonexistent-dir/x.xpm2.\n");
    delete m;
}

// ---------------------------------------------------------------- failures

TEST_P(BitmapFiles, GifFailures) {
    const std::string head = bytesOf("GIF87a\x02\x00\x01\x00\x80\x00\x00\x00\x00\x00\xFF\xFF\xFF");
    const std::string image = bytesOf("\x2C\x00\x00\x00\x00\x02\x00\x01\x00\x00\x02");
    struct Case {
        const char* what;
        std::string bytes;
        const char* message;
    };
    const Case cases[] = {
        {"png", "\x89PNG\r\n\x1a\n........", "not a GIF file"},
        {"gif88", "GIF88a.......", "not a GIF file"},
        {"short", "GIF8", "not a GIF file"},
        {"trailer only", head + ";", "no image data found in GIF file"},
        {"ends after the header", head, "no image data found in GIF file"},
        {"comment only",
         head + bytesOf("!\xFE\x03"
                        "abc\x00;"),
         "no image data found in GIF file"},
        {"unknown block", head + "\x7F", "Unknown block type found in file."},
        // Clear, then code 7 where only 6 could come next.
        {"code out of range", head + image + bytesOf("\x02\xC4\x01\x00;"), "LZW code out of range"},
        // The first code after a clear must be a colour.
        {"first code not a colour", head + image + bytesOf("\x01\x34\x00;"),
         "LZW code out of range"},
        // Clear, 3, 3: colours past a map of two.
        {"colour past the map", head + image + bytesOf("\x02\xDC\x0A\x00;"),
         "colour index out of the colour map"},
        {"data ends early", head + image + bytesOf("\x01\x1C\x00;"),
         "image data ends before the image"},
        {"code size 9", head + bytesOf("\x2C\x00\x00\x00\x00\x02\x00\x01\x00\x00\x09\x00;"),
         "bad code size of the image data"},
        {"no colour map",
         bytesOf("GIF87a\x02\x00\x01\x00\x00\x00\x00") + image + bytesOf("\x02\x44\x0A\x00;"),
         "no colour map for the image"},
        {"absurd size", head + bytesOf("\x2C\x00\x00\x00\x00\xFF\xFF\xFF\xFF\x00\x02\x01\x04\x00;"),
         "image too large"},
        // 30000 by 30000 claimed, four pixels of data: nothing of that size is allocated.
        {"claims more than its data",
         head + bytesOf("\x2C\x00\x00\x00\x00\x30\x75\x30\x75\x00\x02\x01\x1C\x00;"),
         "image data ends before the image"},
        {"no size", head + bytesOf("\x2C\x00\x00\x00\x00\x00\x00\x01\x00\x00\x02\x00;"),
         "image of no size"},
    };
    for (const Case& c : cases) {
        std::istringstream in(c.bytes);
        OrvBitmap* b = nullptr;
        EXPECT_EQ(captured([&] { b = OrvReadGIFBitmap(d->rootCanvas, in); }),
                  std::string("OrvGifFile() - ") + c.message + "\n")
            << c.what;
        EXPECT_EQ(b, nullptr) << c.what;
    }
    // The smallest good file, for contrast: clear, 0, 1, end.
    std::istringstream good(head + image + bytesOf("\x02\x44\x0A\x00;"));
    OrvBitmap* b = OrvReadGIFBitmap(d->rootCanvas, good);
    ASSERT_NE(b, nullptr);
    delete b;
}

TEST_P(BitmapFiles, EveryCutOfAGifOrDibOrXpm2Fails) {
    makePicture(dir / "src.ppm", 11, 5, 6, false);
    ASSERT_TRUE(run("cd '" + dir.path +
                    "' && convert src.ppm -interlace GIF a.gif && ppmtobmp -bpp 4 src.ppm > "
                    "a.bmp && { echo '! XPM2'; convert src.ppm xpm:- | sed -n "
                    "'s/^\"\\(.*\\)\",\\{0,1\\}$/\\1/p'; } > a.xpm2"));
    struct Form {
        const char* file;
        const char* prefix;
        std::function<OrvBitmap*(const char*)> read;
    };
    OrvCanvas* on = d->rootCanvas;
    const Form forms[] = {
        {"a.gif", "OrvGifFile() - ", [on](const char* f) { return OrvReadGIFBitmap(on, f); }},
        {"a.bmp", "DIB: ", [on](const char* f) { return OrvReadDIBBitmap(on, f); }},
        {"a.xpm2", "XPM: ", [on](const char* f) { return OrvReadXPM2Bitmap(on, f); }},
    };
    for (const Form& form : forms) {
        std::string whole = readFile(dir / form.file);
        // Only the GIF trailer and the XPM2 file's last newline may go without loss.
        size_t needed = whole.size() - (form.file[2] == 'b' ? 0 : 1);
        std::string cut = dir / "cut";
        for (size_t n = 0; n < whole.size(); n++) {
            writeFile(cut, whole.substr(0, n));
            OrvBitmap* b = nullptr;
            std::string said = captured([&] { b = form.read(cut.c_str()); });
            if (n >= needed) {
                EXPECT_NE(b, nullptr) << form.file << " cut at " << n;
                delete b;
                continue;
            }
            EXPECT_EQ(b, nullptr) << form.file << " cut at " << n;
            EXPECT_EQ(said.rfind(form.prefix, 0), 0u)
                << form.file << " cut at " << n << ": " << said;
            delete b;
        }
    }
}

TEST_P(BitmapFiles, DibFailures) {
    makePicture(dir / "src.ppm", 6, 3, 4, false);
    ASSERT_TRUE(run("cd '" + dir.path +
                    "' && ppmtobmp -bpp 8 src.ppm > p8.bmp && ppmtobmp -bpp 24 src.ppm > "
                    "t24.bmp && convert src.ppm -type Palette -compress RLE BMP3:rle.bmp"));
    const std::string good = readFile(dir / "p8.bmp");
    auto with = [&good](size_t at, const std::string& bytes) {
        std::string b = good;
        b.replace(at, bytes.size(), bytes);
        return b;
    };
    unsigned offset = (unsigned char)good[10] | (unsigned char)good[11] << 8;
    struct Case {
        const char* file;
        std::string bytes;  // empty: the file made by the tool
        std::string message;
    };
    const Case cases[] = {
        {"t24.bmp", "", "DIB: Format not implemented (16, 24, 32).\n"},
        {"rle.bmp", "", "DIB: Format not implemented (BI_RLE4, BI_RLE8).\n"},
        {"gif.bmp", "GIF87a", "DIB: Not a DIB file (%s).\n"},
        {"header.bmp", with(14, bytesOf("\x20\x00\x00\x00")), "DIB: Bad header (%s).\n"},
        {"zero.bmp", with(18, bytesOf("\x00\x00\x00\x00")), "DIB: Bad header (%s).\n"},
        {"huge.bmp", with(18, bytesOf("\x00\xCA\x9A\x3B")), "DIB: Bad header (%s).\n"},
        {"bits3.bmp", with(28, bytesOf("\x03\x00")), "DIB: Bad header (%s).\n"},
        {"palette.bmp", with(46, bytesOf("\x00\x01\x01\x00")), "DIB: Bad header (%s).\n"},
        {"index.bmp", with(46, bytesOf("\x01\x00\x00\x00")),
         "DIB: Colour index out of the palette (%s).\n"},
        {"tall.bmp", with(22, bytesOf("\x00\x7F\x00\x00")), "DIB: Truncated file (%s).\n"},
        {"offset.bmp", with(10, bytesOf("\x00\x00\x01\x00")), "DIB: Truncated file (%s).\n"},
    };
    (void)offset;
    for (const Case& c : cases) {
        std::string file = dir / c.file;
        if (!c.bytes.empty()) writeFile(file, c.bytes);
        std::string message = c.message;
        size_t at = message.find("%s");
        if (at != std::string::npos) message.replace(at, 2, file);
        OrvBitmap* b = nullptr;
        EXPECT_EQ(captured([&] { b = OrvReadDIBBitmap(d->rootCanvas, file.c_str()); }), message)
            << c.file;
        EXPECT_EQ(b, nullptr) << c.file;
    }
}

TEST_P(BitmapFiles, Xpm2Failures) {
    struct Case {
        const char* file;
        const char* text;
        const char* message;
    };
    const Case cases[] = {
        {"x3.xpm", "/* XPM */\nstatic char *x[] = {\n\"1 1 1 1\",\n",
         "XPM: Bad image description header.\n"},
        {"plain.xpm", "1 1 1 1\na c red\na\n", "XPM: Not a XPM format (%s).\n"},
        {"nocomment.xpm", "XPM2\n1 1 1 1\na c red\na\n", "XPM: Not a XPM format (%s).\n"},
        {"header3.xpm", "! XPM2\n1 1 1\na c red\na\n", "XPM: Bad image description header.\n"},
        {"header0.xpm", "! XPM2\n0 1 1 1\na c red\na\n", "XPM: Bad image description header.\n"},
        {"colors.xpm", "! XPM2\n1 1 100000000 1\na c red\na\n",
         "XPM: Bad image description header.\n"},
        {"absurd.xpm", "! XPM2\n1000000000 1000000000 1 1\na c red\na\n",
         "XPM: Bad image description header.\n"},
        {"big.xpm", "! XPM2\n30000 30000 1 1\na c red\na\n", "XPM: Bad image pixels (%s).\n"},
        {"key.xpm", "! XPM2\n1 1 1 1\na q red\na\n",
         "XPM: Bad image colors description. ( q red)\n"},
        {"nokey.xpm", "! XPM2\n1 1 1 1\na\na\n", "XPM: Bad image colors description. ()\n"},
        {"novalue.xpm", "! XPM2\n1 1 1 1\na c\na\n", "XPM: Bad image colors description. ( c)\n"},
        {"symbol.xpm", "! XPM2\n1 1 1 1\na s mark\na\n",
         "XPM: Bad image colors description. ( s mark)\n"},
        {"pixel.xpm", "! XPM2\n2 1 1 1\na c red\nab\n", "XPM: Bad image pixels (%s).\n"},
        {"short.xpm", "! XPM2\n3 1 1 1\na c red\naa\n", "XPM: Bad image pixels (%s).\n"},
        {"rows.xpm", "! XPM2\n1 2 1 1\na c red\na\n", "XPM: Bad image pixels (%s).\n"},
        {"cpp2.xpm", "! XPM2\n2 1 2 2\naa c red\nab c blue\naaac\n",
         "XPM: Bad image pixels (%s).\n"},
    };
    for (const Case& c : cases) {
        std::string file = dir / c.file;
        writeFile(file, c.text);
        std::string message = c.message;
        size_t at = message.find("%s");
        if (at != std::string::npos) message.replace(at, 2, file);
        OrvBitmap* b = nullptr;
        EXPECT_EQ(captured([&] { b = OrvReadXPM2Bitmap(d->rootCanvas, file.c_str()); }), message)
            << c.file;
        EXPECT_EQ(b, nullptr) << c.file;
    }
    EXPECT_EQ(
        captured([&] { EXPECT_EQ(OrvReadXPM2Bitmap(d->rootCanvas, "/no/such.xpm"), nullptr); }),
        "XPM: couldn't open /no/such.xpm.\n");
}

}  // namespace
