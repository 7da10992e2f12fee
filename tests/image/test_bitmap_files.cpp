// Bitmaps from GIF, DIB and XPM2 files that netpbm and ImageMagick write: decoded exactly
// (every LZW code width, interlaced or not, global and local colour maps), drawn on a real
// window on the 24-bit and the 8-bit screen and compared by pixels; XPM2 written back and read
// by ImageMagick; every failure with its message, cut files at every offset and absurd sizes
// giving null.
#include "image_support.h"

#include "orv/bitmapfile.h"

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

Picture makePicture(const std::string& file, unsigned w, unsigned h, unsigned colors,
                    bool noisy = false) {
    Picture p{w, h, std::vector<unsigned char>((size_t)w * h * 3)};
    unsigned seed = 12345;
    for (unsigned i = 0; i < w * h; i++) {
        if (noisy) seed = seed * 1103515245 + 12345;
        unsigned k = i < colors ? i
                     : noisy    ? (seed >> 16) % colors
                                : (i % w / 3 + i / w / 2 * 3) % colors;
        paletteColor(k, &p.rgb[i * 3]);
    }
    std::string ppm = "P6\n" + std::to_string(w) + " " + std::to_string(h) + "\n255\n";
    writeFile(file, ppm.append((const char*)p.rgb.data(), p.rgb.size()));
    return p;
}

// The strings of the XPM3 file that a tool writes, unquoted: the body of an XPM2 file.
const std::string unquoted = "sed -n 's/^\"\\(.*\\)\",\\{0,1\\}$/\\1/p'";

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
TEST(GifDecoder, EveryCodeWidthInterlacedOrNotFromTwoToolsAndLocalColourMaps) {
    TempDir dir;
    struct Tool {
        const char* command;  // from src.ppm to out.gif
        bool interlaced;
        const char* version;
    } tools[] = {
        {"pamtogif src.ppm > out.gif", false, "GIF87a"},
        {"pamtogif -interlace src.ppm > out.gif", true, "GIF87a"},
        {"convert src.ppm GIF87:out.gif", false, "GIF87a"},
        {"convert src.ppm -interlace GIF GIF87:out.gif", true, "GIF87a"},
        {"convert src.ppm out.gif", false, "GIF89a"},
    };
    // Minimum code sizes 2 to 8; the noisy pictures fill the table up to twelve-bit codes.
    for (unsigned colors : {2u, 3u, 4u, 8u, 16u, 32u, 64u, 128u, 256u})
        for (bool noisy : {false, true}) {
            Picture p =
                makePicture(dir / "src.ppm", noisy ? 150 : 13, noisy ? 101 : 9, colors, noisy);
            for (const Tool& t : tools) {
                ASSERT_TRUE(run("cd '" + dir.path + "' && " + t.command));
                std::string bytes = readFile(dir / "out.gif");
                EXPECT_EQ(bytes.substr(0, 6), t.version) << t.command;
                std::istringstream in(bytes);
                OrvGifFile* gif = nullptr;
                EXPECT_EQ(OrvTestOutput([&] { gif = new OrvGifFile(in); }), "") << t.command;
                EXPECT_EQ(gif->interlaced, t.interlaced ? 1 : 0) << t.command;
                EXPECT_EQ(decodeMismatch(*gif, p), "")
                    << t.command << ", " << colors << " colours, " << p.width << "x" << p.height;
                delete gif;
            }
        }
    // Local colour maps: the tool's global map moved into the image descriptor, and a wrong global
    // map left in place that the local one must override.
    Picture p = makePicture(dir / "src.ppm", 21, 17, 12);
    ASSERT_TRUE(run("cd '" + dir.path + "' && pamtogif src.ppm > g.gif"));
    std::string g = readFile(dir / "g.gif");
    unsigned char packed = (unsigned char)g[10];
    ASSERT_TRUE(packed & 0x80);
    size_t mapBytes = 3u << ((packed & 7) + 1);
    std::string map = g.substr(13, mapBytes), rest = g.substr(13 + mapBytes), wrong = map;
    size_t image = rest.find(',');
    ASSERT_NE(image, std::string::npos);
    std::string withLocal =
        rest.substr(0, image + 9) + (char)(0x80 | (packed & 7)) + map + rest.substr(image + 10);
    for (char& c : wrong) c = (char)~c;
    for (const std::string& bytes :
         {g.substr(0, 10) + (char)(packed & 0x7F) + g.substr(11, 2), g.substr(0, 13) + wrong}) {
        std::istringstream in(bytes + withLocal);
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
    // A file of the directory, read by the reader of its extension; nothing may be printed.
    OrvBitmap* read(const std::string& name) {
        std::string file = dir / name;
        OrvBitmap* b = nullptr;
        EXPECT_EQ(OrvTestOutput([&] { b = readAny(file); }), "") << name;
        return b;
    }
    OrvBitmap* readAny(const std::string& file) {
        std::string ext = file.substr(file.rfind('.') + 1);
        if (ext == "gif") return OrvReadGIFBitmap(d->rootCanvas, file.c_str());
        if (ext == "bmp") return OrvReadDIBBitmap(d->rootCanvas, file.c_str());
        return OrvReadXPM2Bitmap(d->rootCanvas, file.c_str());
    }
    unsigned long expected(const unsigned char rgb[3]) {
        return d->color(rgb[0] / 255.0f, rgb[1] / 255.0f, rgb[2] / 255.0f)->index(d->rootCanvas) &
               mask();
    }
    // Draws the bitmap on a window over white, compares every pixel with the picture and
    // deletes the bitmap unless told to keep it; where `hole` matches a pixel's colour, white
    // must show through.
    void expectDrawn(OrvBitmap* b, const Picture& p, const std::string& what,
                     const unsigned char* hole = nullptr, bool keep = false) {
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
        int wrong = 0;
        for (unsigned y = 0; y < p.height; y++)
            for (unsigned x = 0; x < p.width; x++) {
                unsigned long want =
                    hole && !memcmp(hole, p.at(x, y), 3) ? px("white") : expected(p.at(x, y));
                unsigned long got = XGetPixel(im, x, y) & mask();
                if (got != want && wrong++ < 3)
                    ADD_FAILURE() << what << ": pixel " << x << "," << y << " is " << std::hex
                                  << got << ", not " << want;
            }
        XDestroyImage(im);
        EXPECT_EQ(wrong, 0) << what;
        if (!keep) delete b;  // after the comparison: on 8 bits its colours go with it
    }
    bool tool(const std::string& command) { return run("cd '" + dir.path + "' && " + command); }
};
ORV_ON_BOTH_SCREENS(BitmapFiles);

TEST_P(BitmapFiles, DibDrawnOnAWindowBottomUpAndTopDown) {
    struct Case {
        unsigned colors;
        const char* command;
    } cases[] = {
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
        Picture p = makePicture(dir / "src.ppm", 19, 7, c.colors);
        ASSERT_TRUE(tool(c.command));
        OrvBitmap* b = read("a.bmp");
        EXPECT_EQ(std::string(b ? b->name : ""), dir / "a.bmp");
        expectDrawn(b, p, c.command);
        // The same rows top-down: a negative height, the rows in the other order.
        std::string bytes = readFile(dir / "a.bmp"), flipped = bytes;
        if ((unsigned char)bytes[14] < 40) continue;  // OS/2 headers have no sign
        unsigned offset = (unsigned char)bytes[10] | (unsigned char)bytes[11] << 8;
        unsigned rowBytes = ((19 * (unsigned char)bytes[28] + 31) / 32) * 4;
        int negative = -7;
        memcpy(&flipped[22], &negative, 4);
        for (unsigned r = 0; r < 7; r++)
            flipped.replace(offset + r * rowBytes, rowBytes,
                            bytes.substr(offset + (6 - r) * rowBytes, rowBytes));
        writeFile(dir / "down.bmp", flipped);
        expectDrawn(read("down.bmp"), p, std::string("top-down ") + c.command);
    }
}

TEST_P(BitmapFiles, Xpm2DrawnOnAWindow) {
    // XPM3 from the tools, turned into XPM2 line by line, in both comment styles; the colours
    // come as X names (ppmtoxpm) or as hexadecimal, one or two characters a pixel.
    struct Case {
        unsigned colors;
        const char *make, *first;
    } cases[] = {
        {9, "ppmtoxpm src.ppm > a.xpm", "! XPM2"},
        {9, "convert src.ppm xpm:a.xpm", "/* XPM2 */"},
        // ImageMagick's characters include "!": only the other style can hold them.
        {120, "convert src.ppm xpm:a.xpm", "/* XPM2 */"},
        {120, "ppmtoxpm -hexonly src.ppm > a.xpm", "! XPM2"},
    };
    for (const Case& c : cases) {
        if (d->depth == 8 && c.colors > 40) continue;  // the colormap would run out
        Picture p = makePicture(dir / "src.ppm", 17, 11, c.colors);
        ASSERT_TRUE(tool(std::string(c.make) + " && { echo '" + c.first +
                         "'; echo '! a comment line'; " + unquoted + " a.xpm; } > a.xpm2"));
        std::string text = readFile(dir / "a.xpm2");
        if (c.first[0] == '/') {
            // "!" is no comment in this style; a "/*" one spanning two lines is.
            size_t second = text.find('\n') + 1;
            text.replace(second, text.find('\n', second) + 1 - second,
                         "/* a comment\n over two */\n");
        }
        writeFile(dir / "a.xpm2", text);
        OrvBitmap* b = read("a.xpm2");
        EXPECT_EQ(std::string(b ? b->name : ""), dir / "a.xpm2");
        expectDrawn(b, p, std::string(c.make) + " " + c.first);
    }
    // "None" is transparent; a colour may be named with blanks; several keys on a line.
    writeFile(dir / "hand.xpm2", "! XPM2\n3 2 4 1\na c #0D65C8 m black\nb s mark c #50FCE5\nc c "
                                 "None\nr c light goldenrod yellow\nabc\nrcc\n");
    unsigned char hole[3] = {1, 2, 3};
    Picture hand{3, 2, {13, 101, 200, 80, 252, 229, 1, 2, 3, 250, 250, 210, 1, 2, 3, 1, 2, 3}};
    OrvBitmap* b = read("hand.xpm2");
    EXPECT_NE(b ? b->mask : nullptr, nullptr);
    expectDrawn(b, hand, "written by hand", hole);
}

TEST_P(BitmapFiles, ReadBitmapTriesEachFormatAndAGifMayHaveAHole) {
    Picture p = makePicture(dir / "src.ppm", 10, 6, 5);
    // A transparent colour gives a mask: the window's white shows there.
    unsigned char hole[3];
    paletteColor(2, hole);
    char command[64];
    snprintf(command, sizeof command, "convert src.ppm -transparent '#%02X%02X%02X' a.gif", hole[0],
             hole[1], hole[2]);
    ASSERT_TRUE(tool(command + (" && ppmtobmp -bpp 8 src.ppm > a.bmp && { echo '! XPM2'; convert "
                                "src.ppm xpm:- | " +
                                unquoted + "; } > a.xpm2")));
    d->prependToPath(dir.path.c_str());
    struct Case {
        const char* file;
        std::string said;  // what the readers before the right one report
    } cases[] = {
        {"a.bmp", ""},
        {"a.gif", "DIB: Not a DIB file (a.gif).\n"},
        {"a.xpm2", "DIB: Not a DIB file (a.xpm2).\nOrvGifFile() - not a GIF file\n"},
    };
    for (const Case& c : cases) {
        OrvBitmap* b = nullptr;
        EXPECT_EQ(OrvTestOutput([&] { b = d->readBitmap(d->rootCanvas, c.file); }), c.said);
        ASSERT_NE(b, nullptr) << c.file;
        EXPECT_STREQ(b->name, c.file);
        EXPECT_EQ(d->readBitmap(d->rootCanvas, c.file), b) << "found by its name the next time";
        bool gif = c.file[2] == 'g';
        EXPECT_EQ(b->mask && b->mask->depth == 1, gif) << c.file;
        expectDrawn(b, p, c.file, gif ? hole : nullptr, true);  // the director's to delete
    }
    std::istringstream in(readFile(dir / "a.gif"));
    OrvBitmap* b = OrvReadGIFBitmap(d->rootCanvas, in);
    EXPECT_EQ(b ? b->name : (char*)"none", nullptr) << "from a stream, unnamed";
    expectDrawn(b, p, "a GIF from a stream", hole);
    // Nothing reads a missing file: each reader says so, and the built-in picture stands in.
    OrvBitmap* unknown = nullptr;
    EXPECT_EQ(OrvTestOutput([&] { unknown = d->readBitmap(d->rootCanvas, "missing.gif"); }),
              "DIB: couldn't open missing.gif.\nOrvGifFile() - couldn't open missing.gif\n"
              "XPM: couldn't open missing.gif.\n");
    ASSERT_NE(unknown, nullptr);
    EXPECT_STREQ(unknown->name, "OrvUnknownBitmap");
}

TEST_P(BitmapFiles, Xpm2WrittenAndReadBackByImageMagick) {
    Picture p = makePicture(dir / "src.ppm", 14, 6, 6);
    ASSERT_TRUE(tool("pamtogif src.ppm > a.gif"));
    OrvBitmap* b = read("a.gif");
    ASSERT_NE(b, nullptr);
    std::string out = dir / "out.xpm2";
    EXPECT_EQ(OrvTestOutput([&] { EXPECT_EQ(OrvSaveXPM2Bitmap(b, out.c_str()), 1); }), "");
    delete b;
    std::string text = readFile(out);
    EXPECT_EQ(text.substr(0, 19), "! XPM2  \n14 6 6 1\n#");
    // Each colour line holds the sixteen-bit channels: the first colour is 13, 101, 200.
    EXPECT_NE(text.find("# c #0D0D6565C8C8\n"), std::string::npos) << text;
    // ImageMagick reads it as XPM3, and the library reads its own file to the same picture.
    ASSERT_TRUE(tool("{ echo '/* XPM */'; echo 'static char *x[] = {'; tail -n +2 out.xpm2 | sed "
                     "'s/.*/\"&\",/'; echo '};'; } > back.xpm && convert back.xpm -depth 8 "
                     "back.ppm"));
    EXPECT_EQ(parsePlain(dir / "back.ppm").samples,
              std::vector<unsigned>(p.rgb.begin(), p.rgb.end()));
    expectDrawn(read("out.xpm2"), p, "written and read");
    // A one-bit bitmap: its ones are black.
    OrvBitmap* one = new OrvBitmap(d->rootCanvas, 3, 1, 1);
    const unsigned char bits[4] = {0xA0, 0, 0, 0};
    one->setBits(Orv2dRect(0, 0, 3, 1), bits, 4, 32, 0);
    ASSERT_EQ(OrvSaveXPM2Bitmap(one, out.c_str()), 1);
    EXPECT_EQ(readFile(out), "! XPM2  \n3 1 2 1\n# c #000000000000\n$ c #FFFFFFFFFFFF\n#$#\n");
    delete one;
    if (d->depth == 8) return;
    // More colours than characters: a report, and the nearest colour kept stands in.
    makePicture(dir / "many.ppm", 20, 10, 120);
    ASSERT_TRUE(tool("pamtogif many.ppm > many.gif"));
    OrvBitmap* m = read("many.gif");
    ASSERT_NE(m, nullptr);
    const std::string tooMany =
        "XPM: Too many colors for ascii format\n##   Truncating to 92 different colors.\n";
    EXPECT_EQ(OrvTestOutput([&] { EXPECT_EQ(OrvSaveXPM2Bitmap(m, out.c_str()), 1); }), tooMany);
    EXPECT_EQ(readFile(out).substr(0, 20), "! XPM2  \n20 10 92 1\n");
    EXPECT_EQ(OrvTestOutput([&] { EXPECT_EQ(OrvSaveXPM2Bitmap(m, "/nonexistent-dir/x"), 0); }),
              tooMany + "XPM: couldn't open /nonexistent-dir/x.\n");
    delete m;
}

TEST_P(BitmapFiles, FailuresWithTheirMessagesAndEveryCut) {
    makePicture(dir / "src.ppm", 6, 3, 4);
    ASSERT_TRUE(tool("ppmtobmp -bpp 8 src.ppm > p8.bmp && ppmtobmp -bpp 24 src.ppm > t24.bmp && "
                     "convert src.ppm -type Palette -compress RLE BMP3:rle.bmp"));
    const std::string dib = readFile(dir / "p8.bmp");
    auto with = [&dib](size_t at, const std::string& bytes) {
        return std::string(dib).replace(at, bytes.size(), bytes);
    };
    const std::string head = bytesOf("GIF87a\x02\x00\x01\x00\x80\x00\x00\x00\x00\x00\xFF\xFF\xFF");
    const std::string image = bytesOf("\x2C\x00\x00\x00\x00\x02\x00\x01\x00\x00\x02");
    const std::string gif = "OrvGifFile() - ", badDib = "DIB: Bad header (%s).\n",
                      badHeader = "XPM: Bad image description header.\n",
                      badPixels = "XPM: Bad image pixels (%s).\n";
    struct Case {
        const char* file;
        std::string bytes;  // empty: the file made by the tool
        std::string message;
    } cases[] = {
        {"png.gif", "\x89PNG\r\n\x1a\n........", gif + "not a GIF file"},
        {"gif88.gif", "GIF88a.......", gif + "not a GIF file"},
        {"short.gif", "GIF8", gif + "not a GIF file"},
        {"trailer.gif", head + ";", gif + "no image data found in GIF file"},
        {"header.gif", head, gif + "no image data found in GIF file"},
        {"comment.gif", head + bytesOf("!\xFE\3abc\0;"), gif + "no image data found in GIF file"},
        {"block.gif", head + "\x7F", gif + "Unknown block type found in file."},
        // Clear, then code 7 where only 6 could come next.
        {"range.gif", head + image + bytesOf("\x02\xC4\x01\x00;"), gif + "LZW code out of range"},
        // The first code after a clear must be a colour.
        {"first.gif", head + image + bytesOf("\x01\x34\x00;"), gif + "LZW code out of range"},
        // Clear, 3, 3: colours past a map of two.
        {"past.gif", head + image + bytesOf("\x02\xDC\x0A\x00;"),
         gif + "colour index out of the colour map"},
        {"early.gif", head + image + bytesOf("\x01\x1C\x00;"),
         gif + "image data ends before the image"},
        {"code9.gif", head + bytesOf("\x2C\x00\x00\x00\x00\x02\x00\x01\x00\x00\x09\x00;"),
         gif + "bad code size of the image data"},
        {"nomap.gif",
         bytesOf("GIF87a\x02\x00\x01\x00\x00\x00\x00") + image + bytesOf("\x02\x44\x0A\x00;"),
         gif + "no colour map for the image"},
        {"absurd.gif", head + bytesOf("\x2C\x00\x00\x00\x00\xFF\xFF\xFF\xFF\x00\x02\x01\x04\x00;"),
         gif + "image too large"},
        // 30000 by 30000 claimed, four pixels of data: nothing of that size is allocated.
        {"claims.gif", head + bytesOf("\x2C\x00\x00\x00\x00\x30\x75\x30\x75\x00\x02\x01\x1C\x00;"),
         gif + "image data ends before the image"},
        {"nosize.gif", head + bytesOf("\x2C\x00\x00\x00\x00\x00\x00\x01\x00\x00\x02\x00;"),
         gif + "image of no size"},
        {"t24.bmp", "", "DIB: Format not implemented (16, 24, 32).\n"},
        {"rle.bmp", "", "DIB: Format not implemented (BI_RLE4, BI_RLE8).\n"},
        {"gif.bmp", "GIF87a", "DIB: Not a DIB file (%s).\n"},
        {"header.bmp", with(14, bytesOf("\x20\x00\x00\x00")), badDib},
        {"zero.bmp", with(18, bytesOf("\x00\x00\x00\x00")), badDib},
        {"huge.bmp", with(18, bytesOf("\x00\xCA\x9A\x3B")), badDib},
        {"bits3.bmp", with(28, bytesOf("\x03\x00")), badDib},
        {"palette.bmp", with(46, bytesOf("\x00\x01\x01\x00")), badDib},
        {"index.bmp", with(46, bytesOf("\x01\x00\x00\x00")),
         "DIB: Colour index out of the palette (%s).\n"},
        {"tall.bmp", with(22, bytesOf("\x00\x7F\x00\x00")), "DIB: Truncated file (%s).\n"},
        {"offset.bmp", with(10, bytesOf("\x00\x00\x01\x00")), "DIB: Truncated file (%s).\n"},
        {"x3.xpm", "/* XPM */\nstatic char *x[] = {\n\"1 1 1 1\",\n", badHeader},
        {"plain.xpm", "1 1 1 1\na c red\na\n", "XPM: Not a XPM format (%s).\n"},
        {"nocomment.xpm", "XPM2\n1 1 1 1\na c red\na\n", "XPM: Not a XPM format (%s).\n"},
        {"header3.xpm", "! XPM2\n1 1 1\na c red\na\n", badHeader},
        {"header0.xpm", "! XPM2\n0 1 1 1\na c red\na\n", badHeader},
        {"colors.xpm", "! XPM2\n1 1 100000000 1\na c red\na\n", badHeader},
        {"absurd.xpm", "! XPM2\n1000000000 1000000000 1 1\na c red\na\n", badHeader},
        {"big.xpm", "! XPM2\n30000 30000 1 1\na c red\na\n", badPixels},
        {"key.xpm", "! XPM2\n1 1 1 1\na q red\na\n",
         "XPM: Bad image colors description. ( q red)\n"},
        {"nokey.xpm", "! XPM2\n1 1 1 1\na\na\n", "XPM: Bad image colors description. ()\n"},
        {"novalue.xpm", "! XPM2\n1 1 1 1\na c\na\n", "XPM: Bad image colors description. ( c)\n"},
        {"symbol.xpm", "! XPM2\n1 1 1 1\na s mark\na\n",
         "XPM: Bad image colors description. ( s mark)\n"},
        {"pixel.xpm", "! XPM2\n2 1 1 1\na c red\nab\n", badPixels},
        {"short.xpm", "! XPM2\n3 1 1 1\na c red\naa\n", badPixels},
        {"rows.xpm", "! XPM2\n1 2 1 1\na c red\na\n", badPixels},
        {"cpp2.xpm", "! XPM2\n2 1 2 2\naa c red\nab c blue\naaac\n", badPixels},
        {"missing.xpm", "", "XPM: couldn't open %s.\n"},
    };
    for (const Case& c : cases) {
        std::string file = dir / c.file, message = c.message;
        if (!c.bytes.empty()) writeFile(file, c.bytes);
        if (message.find("%s") != std::string::npos) message.replace(message.find("%s"), 2, file);
        if (message.back() != '\n') message += "\n";
        OrvBitmap* b = nullptr;
        EXPECT_EQ(OrvTestOutput([&] { b = readAny(file); }), message) << c.file;
        EXPECT_EQ(b, nullptr) << c.file;
    }
    // The smallest good file, for contrast: clear, 0, 1, end.
    writeFile(dir / "good.gif", head + image + bytesOf("\x02\x44\x0A\x00;"));
    delete read("good.gif");
    // Every cut of a good file fails, with the message of its reader.
    makePicture(dir / "src.ppm", 11, 5, 6);
    ASSERT_TRUE(tool("convert src.ppm -interlace GIF a.gif && ppmtobmp -bpp 4 src.ppm > a.bmp && "
                     "{ echo '! XPM2'; convert src.ppm xpm:- | " +
                     unquoted + "; } > a.xpm2"));
    for (const char* form : {"a.gif", "a.bmp", "a.xpm2"}) {
        std::string whole = readFile(dir / form), cut = dir / (std::string("cut") + (form + 1));
        std::string prefix = form[2] == 'g'   ? "OrvGifFile() - "
                             : form[2] == 'b' ? "DIB: "
                                              : "XPM: ";
        // Only the GIF trailer and the XPM2 file's last newline may go without loss.
        size_t needed = whole.size() - (form[2] == 'b' ? 0 : 1);
        for (size_t n = 0; n < whole.size(); n++) {
            writeFile(cut, whole.substr(0, n));
            OrvBitmap* b = nullptr;
            std::string said = OrvTestOutput([&] { b = readAny(cut); });
            EXPECT_EQ(b != nullptr, n >= needed) << form << " cut at " << n;
            EXPECT_TRUE(n >= needed || said.rfind(prefix, 0) == 0) << form << " " << n << said;
            delete b;
        }
    }
}

}  // namespace
