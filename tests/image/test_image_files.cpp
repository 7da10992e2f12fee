// Images from and to portable-map files: every magic of the reader, text and
// raw, checked pixel by pixel against what netpbm makes of the same file;
// writeImage's exact header and its files read back by netpbm; the failures
// (unknown magic, bad header, values out of range, cut files, absurd sizes)
// giving the default image with their message; the default image, scaling and
// the mip-level files.
#include "image_support.h"

#include <algorithm>
#include <cctype>
#include <sys/resource.h>

#include "orv/director.h"
#include "orv/image.h"

#include <X11/Xlib.h>

namespace {

// Bytes of a literal, zeros included.
template <size_t N>
std::string bytesOf(const char (&literal)[N]) {
    return std::string(literal, N - 1);
}

class ImageFiles : public testing::Test {
protected:
    OrvDirector* d = nullptr;
    TempDir dir;

    void SetUp() override {
        const char* name = getenv("DISPLAY");
        if (!name || !*name) GTEST_SKIP() << "no DISPLAY";
        static Display* keeper = XOpenDisplay(name);
        (void)keeper;
        d = new OrvDirector("imagetest", name, 0, nullptr);
        d->prependToPath(dir.path.c_str());
        // The source picture of every variant: 7 by 5, no two neighbours alike.
        std::string ppm = "P6\n7 5\n255\n";
        for (unsigned y = 0; y < 5; y++)
            for (unsigned x = 0; x < 7; x++) {
                ppm += (char)((x * 37 + y * 61) & 255);
                ppm += (char)((x * 91 + y * 13 + 40) & 255);
                ppm += (char)((255 - x * 29 - y * 47) & 255);
            }
        writeFile(dir / "src.ppm", ppm);
    }
    void TearDown() override { delete d; }

    // Reads a file that must not fail: nothing printed, not the default image.
    OrvImage* load(const std::string& name, unsigned long mipmap = 0) {
        OrvImage* image = nullptr;
        std::string said = captured([&] { image = d->image(name.c_str(), mipmap); });
        EXPECT_EQ(said, "") << name;
        EXPECT_NE(image, d->defaultImage()) << name;
        return image;
    }

    // Every pixel of the image against the netpbm reading of the same file. P files
    // are held bottom row first, V files as they stand.
    void expectSame(const OrvImage* image, const PlainMap& map, bool reversed,
                    const std::string& what) {
        ASSERT_EQ(image->width, map.width) << what;
        ASSERT_EQ(image->height, map.height) << what;
        for (unsigned y = 0; y < map.height; y++)
            for (unsigned x = 0; x < map.width; x++) {
                unsigned char c[4];
                image->pixel(x, reversed ? map.height - 1 - y : y, c);
                if (map.kind == 1) {
                    ASSERT_EQ(c[0], map.at(x, y) ? 0 : 255) << what << " at " << x << "," << y;
                    continue;
                }
                for (unsigned k = 0; k < 3; k++) {
                    unsigned v = map.at(x, y, map.kind == 3 ? k : 0);
                    unsigned expected = (v * 255 + map.maximum / 2) / map.maximum;
                    ASSERT_EQ(c[k], expected)
                        << what << " at " << x << "," << y << " channel " << k;
                }
            }
    }

    // The file with its magic's first letter changed to "V".
    void asV(const std::string& from, const std::string& to) {
        std::string bytes = readFile(dir / from);
        bytes[0] = 'V';
        writeFile(dir / to, bytes);
    }
};

TEST_F(ImageFiles, EveryPortableMapAsNetpbmWritesIt) {
    struct Variant {
        const char* file;
        const char* command;  // in the directory, from src.ppm
        const char* magic;
        OrvImageType type;
    };
    const Variant variants[] = {
        {"p6.ppm", "cp src.ppm p6.ppm", "P6", OrvImageRGB},
        {"p3.ppm", "pnmtoplainpnm src.ppm > p3.ppm", "P3", OrvImageRGB},
        {"p5.pgm", "ppmtopgm src.ppm > p5.pgm", "P5", OrvImageRGB},
        {"p2.pgm", "ppmtopgm src.ppm | pnmtoplainpnm > p2.pgm", "P2", OrvImageRGB},
        {"p4.pbm", "ppmtopgm src.ppm | pgmtopbm -threshold > p4.pbm", "P4", OrvImageLuminance},
        {"p1.pbm", "ppmtopgm src.ppm | pgmtopbm -threshold | pnmtoplainpnm > p1.pbm", "P1",
         OrvImageLuminance},
        {"max15.ppm", "pnmdepth 15 src.ppm > max15.ppm", "P6", OrvImageRGB},
        {"max15p3.ppm", "pnmdepth 15 src.ppm | pnmtoplainpnm > max15p3.ppm", "P3", OrvImageRGB},
        {"max1000.ppm", "pnmdepth 1000 src.ppm > max1000.ppm", "P6", OrvImageRGB},
        {"wide.pgm", "ppmtopgm src.ppm | pnmdepth 65535 > wide.pgm", "P5", OrvImageRGB},
        {"comments.ppm",
         "pnmtoplainpnm src.ppm | sed -e '1a # first comment' -e '2a #second\\n  # third' > "
         "comments.ppm",
         "P3", OrvImageRGB},
        {"w33.pbm", "pbmmake -gray 33 3 > w33.pbm", "P4", OrvImageLuminance},
        {"w33p1.pbm", "pbmmake -gray 33 3 | pnmtoplainpnm > w33p1.pbm", "P1", OrvImageLuminance},
        {"row1.ppm", "pamcut -top 2 -height 1 src.ppm > row1.ppm", "P6", OrvImageRGB},
        {"row3.ppm", "pamcut -top 1 -height 3 src.ppm > row3.ppm", "P6", OrvImageRGB},
        {"col1.pgm", "pamcut -left 3 -width 1 src.ppm | ppmtopgm > col1.pgm", "P5", OrvImageRGB},
    };
    for (const Variant& v : variants) {
        ASSERT_TRUE(run("cd '" + dir.path + "' && " + v.command));
        EXPECT_EQ(readFile(dir / v.file).substr(0, 2), v.magic) << v.file;
        PlainMap map = parsePlain(dir / v.file);
        OrvImage* image = load(v.file, 1);
        ASSERT_NE(image, nullptr);
        EXPECT_STREQ(image->name, v.file);
        EXPECT_EQ(image->type, v.type) << v.file;
        EXPECT_EQ(image->mipmap, 1u);
        EXPECT_EQ(image->fileFormat, OrvImageMagic(v.magic[0], v.magic[1])) << v.file;
        EXPECT_TRUE(image->isFileBacked());
        expectSame(image, map, true, v.file);
        EXPECT_EQ(d->image(v.file), image) << "known by its name";
        // The same bytes under "V" are kept as they stand.
        if (v.magic[1] != '2' && v.magic[1] != '5') {
            std::string vName = std::string("v-") + v.file;
            asV(v.file, vName);
            OrvImage* kept = load(vName);
            ASSERT_NE(kept, nullptr);
            EXPECT_EQ(kept->type, v.type) << vName;
            expectSame(kept, map, false, vName);
        }
    }
    // Bitmap rows are padded to 32 pixels: width 33 takes eight bytes a row.
    OrvImage* w33 = d->image("w33.pbm");
    EXPECT_EQ(w33->rowBytes(), 8u);
    EXPECT_EQ(w33->isPacked(), 1u);
    OrvImage* seven = d->image("p4.pbm");
    EXPECT_EQ(seven->rowBytes(), 4u);
    // One row is left as it is; of three, the middle one stays in the middle.
    OrvImage* src = d->image("src.ppm");
    OrvImage* one = d->image("row1.ppm");
    OrvImage* three = d->image("row3.ppm");
    EXPECT_EQ(memcmp(one->pixels, src->pixels + 2 * 21, 21), 0);
    EXPECT_EQ(memcmp(three->pixels + 21, src->pixels + 2 * 21, 21), 0);
    EXPECT_EQ(memcmp(three->pixels, src->pixels + 1 * 21, 21), 0);
}

TEST_F(ImageFiles, TheLibrarysOwnTwoAndFourChannelForms) {
    // Two bits a pixel: luminance then alpha, in the text form pair by pair, in the raw
    // form a plane of each a row.
    writeFile(dir / "a.v2", "V2\n# two by two\n3 2\n1 1  0 1  1 0\n0 0  1 1  0 0\n");
    writeFile(dir / "a.v5",
              std::string("V5\n3 2\n") + (char)0xA0 + (char)0x60 + (char)0x40 + (char)0x40);
    for (const char* f : {"a.v2", "a.v5"}) {
        OrvImage* im = load(f);
        ASSERT_NE(im, nullptr);
        EXPECT_EQ(im->type, OrvImageLuminanceAlpha);
        EXPECT_EQ(im->rowBytes(), 8u) << "two planes of 32 pixels";
        const int expect[2][3][2] = {{{0, 255}, {255, 255}, {0, 0}},
                                     {{255, 0}, {0, 255}, {255, 0}}};
        for (unsigned y = 0; y < 2; y++)
            for (unsigned x = 0; x < 3; x++) {
                unsigned char c[4];
                im->pixel(x, y, c);
                if (!strcmp(f, "a.v5") && y == 0) {
                    // Raw rows: luminance 101, alpha 011.
                    const int raw[3][2] = {{0, 0}, {255, 255}, {0, 255}};
                    EXPECT_EQ(c[0], raw[x][0]) << f << x;
                    EXPECT_EQ(c[1], raw[x][1]) << f << x;
                    continue;
                }
                if (!strcmp(f, "a.v5")) {
                    const int raw[3][2] = {{255, 0}, {0, 255}, {255, 0}};
                    EXPECT_EQ(c[0], raw[x][0]) << f << x;
                    EXPECT_EQ(c[1], raw[x][1]) << f << x;
                    continue;
                }
                EXPECT_EQ(c[0], expect[y][x][0]) << f << " " << x << "," << y;
                EXPECT_EQ(c[1], expect[y][x][1]) << f << " " << x << "," << y;
            }
    }
    // Four channels with a maximum.
    writeFile(dir / "a.v7", "V7\n2 1\n15\n15 0 0 15  0 15 0 5\n");
    writeFile(dir / "a.v8", bytesOf("V8\n2 1\n255\n\xFF\x00\x00\xFF\x00\xFF\x00\x55"));
    for (const char* f : {"a.v7", "a.v8"}) {
        OrvImage* im = load(f);
        ASSERT_NE(im, nullptr);
        EXPECT_EQ(im->type, OrvImageRGBA);
        const unsigned char expect[8] = {255, 0, 0, 255, 0, 255, 0, 85};
        EXPECT_EQ(memcmp(im->pixels, expect, 8), 0) << f;
    }
}

TEST_F(ImageFiles, FailuresGiveTheDefaultImageWithTheirMessage) {
    const std::string fmt = "OrvDirector::image : bad format.\n";
    const std::string val = "OrvDirector::image : bad value.\n";
    const std::string vals = "OrvDirector::image : bad values.\n";
    struct Case {
        const char* file;
        std::string bytes;
        std::string message;
    };
    const Case cases[] = {
        {"x1", "X1\n1 1\n", "OrvDirector::image : Unknown bitmap format. (1)\n"},
        {"empty", "", "OrvDirector::image : Unknown bitmap format. (1)\n"},
        {"p7", "P7\nWIDTH 1\n", "OrvDirector::image : Unknown bitmap format. (2)\n"},
        {"p0", "P0\n1 1\n", "OrvDirector::image : Unknown bitmap format. (2)\n"},
        {"v9", "V9\n1 1\n", "OrvDirector::image : Unknown bitmap format. (2)\n"},
        {"zero-width", "P3\n0 2\n255\n", fmt},
        {"zero-max", "P3\n1 1\n0\n0 0 0\n", fmt},
        {"no-height", "P2\n4\n", fmt},
        {"letters", "P2\nfour two\n255\n", fmt},
        {"raw-no-blank", "P5\n1 1\n255X", fmt},
        {"raw-max", bytesOf("P5\n1 1\n70000\n\0\0\0"), fmt},
        {"absurd-raw", "P6\n1000000000 1000000000\n255\n\1\2\3", fmt},
        {"absurd-text", "P3\n1000000000 1000000000\n255\n1 2 3\n", fmt},
        {"absurd-bits", "P4\n4000000000 4000000000\n\xFF", fmt},
        {"huge-number", "P2\n99999999999999999999 1\n255\n1\n", fmt},
        {"short-raw", "P5\n2 2\n255\n\1\2\3", fmt},
        {"short-text", "P2\n2 2\n255\n1 2 3\n", fmt},
        {"grey-over", "P2\n2 1\n255\n1 256\n", val},
        {"grey-raw-over", "P5\n2 1\n15\n\x0F\x10", val},
        {"rgb-over", "P3\n1 1\n15\n1 2 16\n", vals},
        {"rgb-raw-over", "P6\n1 1\n100\n\x01\x65\x02", vals},
        {"rgba-over", "V7\n1 1\n10\n1 2 3 11\n", vals},
        {"bit-two", "P1\n2 1\n0 2\n", val},
        {"bit-letter", "P1\n2 1\n0 x\n", val},
        {"two-bit-over", "V2\n1 1\n1 2\n", val},
        {"grey-word", "P2\n2 1\n255\n1 x\n", val},
    };
    OrvImage* fallback = d->defaultImage();
    for (const Case& c : cases) {
        writeFile(dir / c.file, c.bytes);
        OrvImage* im = nullptr;
        std::string said = captured([&] { im = d->image(c.file); });
        EXPECT_EQ(said, c.message) << c.file;
        EXPECT_EQ(im, fallback) << c.file;
        EXPECT_EQ(d->findImage(c.file), nullptr) << "nothing half-added: " << c.file;
    }
    // A missing file is no error: the default image, silently.
    EXPECT_EQ(captured([&] { EXPECT_EQ(d->image("no-such-file.ppm"), fallback); }), "");
    EXPECT_EQ(d->image(nullptr), fallback);
    EXPECT_EQ(d->image(""), fallback);
    EXPECT_EQ(d->image("defaultOrvisImage"), fallback);

    // A file that the search path finds and fopen refuses: no descriptor left.
    writeFile(dir / "fine.ppm", readFile(dir / "src.ppm"));
    int probe = dup(0);
    ASSERT_GE(probe, 0);
    close(probe);
    rlimit old;
    getrlimit(RLIMIT_NOFILE, &old);
    rlimit tight = old;
    tight.rlim_cur = (rlim_t)probe;
    OrvImage* im = nullptr;
    std::string said = captured([&] {
        // The capture holds its descriptors already; none can be opened while tight.
        setrlimit(RLIMIT_NOFILE, &tight);
        im = d->image("fine.ppm");
        setrlimit(RLIMIT_NOFILE, &old);
    });
    EXPECT_EQ(said, "OrvDirector::image : Couldn't open file " + dir.path + "/fine.ppm.\n");
    EXPECT_EQ(im, fallback);
}

TEST_F(ImageFiles, EveryCutOfEveryFormGivesTheDefaultImage) {
    ASSERT_TRUE(run("cd '" + dir.path +
                    "' && pnmtoplainpnm src.ppm > p3 && ppmtopgm src.ppm > p5 && "
                    "ppmtopgm src.ppm | pnmtoplainpnm > p2 && ppmtopgm src.ppm | pgmtopbm "
                    "-threshold > p4 && pnmtoplainpnm p4 > p1 && cp src.ppm p6 && "
                    "ppmtopgm src.ppm | pnmdepth 65535 > p5w"));
    asV("p3", "v3");
    asV("p6", "v6");
    asV("p1", "v1");
    asV("p4", "v4");
    writeFile(dir / "v2", "V2\n3 2\n1 1 0 1 1 0\n0 0 1 1 0 0\n");
    writeFile(dir / "v5", std::string("V5\n3 2\n") + "\xA0\x60\x40\x40");
    writeFile(dir / "v7", "V7\n2 1\n15\n15 0 0 15 0 15 0 5\n");
    writeFile(dir / "v8", bytesOf("V8\n2 1\n255\n\xFF\x00\x00\xFF\x00\xFF\x00\x55"));
    OrvImage* fallback = d->defaultImage();
    for (const char* form : {"p1", "p2", "p3", "p4", "p5", "p6", "p5w", "v1", "v2", "v3", "v4",
                             "v5", "v6", "v7", "v8"}) {
        std::string whole = readFile(dir / form);
        bool text = strchr("123", form[1]) || form[1] == '7';
        // A text form may lose its last digits and still read: the cut then lies in or
        // after its last number.
        size_t lastNumber = whole.find_last_of("0123456789");
        while (text && lastNumber > 0 && isdigit((unsigned char)whole[lastNumber - 1]))
            lastNumber--;
        for (size_t cut = 0; cut < whole.size(); cut++) {
            std::string name = std::string("cut-") + form + "-" + std::to_string(cut);
            writeFile(dir / name, whole.substr(0, cut));
            OrvImage* im = nullptr;
            std::string said = captured([&] { im = d->image(name.c_str()); });
            if (text && cut > lastNumber) {
                unlink((dir / name).c_str());
                continue;
            }
            EXPECT_EQ(im, fallback) << name;
            EXPECT_NE(said, "") << name;
            EXPECT_EQ(said.rfind("OrvDirector::image : ", 0), 0u) << name << ": " << said;
            unlink((dir / name).c_str());
        }
        EXPECT_NE(load(form), nullptr) << form << " whole";
    }
}

TEST_F(ImageFiles, WriteImageHeadersAndRowsReadBackByNetpbm) {
    ASSERT_TRUE(run("cd '" + dir.path +
                    "' && ppmtopgm src.ppm > grey.pgm && ppmtopgm src.ppm | pgmtopbm "
                    "-threshold > bits.pbm && pbmmake -gray 33 3 > w33.pbm && "
                    "pnmdepth 15 src.ppm > max15.ppm"));
    struct Case {
        const char* source;
        unsigned long raw;
        const char* header;
    };
    const Case cases[] = {
        {"src.ppm", 1, "P6\n# Generated by MavrelOrvis\n7 5\n255\n"},
        {"src.ppm", 0, "P3\n# Generated by MavrelOrvis\n7 5\n255\n"},
        {"grey.pgm", 1, "P5\n# Generated by MavrelOrvis\n7 5\n255\n"},
        {"grey.pgm", 0, "P2\n# Generated by MavrelOrvis\n7 5\n255\n"},
        {"bits.pbm", 1, "P4\n# Generated by MavrelOrvis\n7 5\n"},
        {"bits.pbm", 0, "P1\n# Generated by MavrelOrvis\n7 5\n"},
        {"w33.pbm", 1, "P4\n# Generated by MavrelOrvis\n33 3\n"},
        {"w33.pbm", 0, "P1\n# Generated by MavrelOrvis\n33 3\n"},
        {"max15.ppm", 1, "P6\n# Generated by MavrelOrvis\n7 5\n255\n"},
    };
    for (const Case& c : cases) {
        OrvImage* im = load(c.source);
        ASSERT_NE(im, nullptr);
        std::string out = dir / (std::string("out-") + std::to_string(c.raw) + "-" + c.source);
        EXPECT_EQ(d->writeImage(out.c_str(), im, c.raw), 1u);
        std::string bytes = readFile(out);
        EXPECT_EQ(bytes.substr(0, strlen(c.header)), c.header) << out;
        // netpbm reads the same picture, scaled to 0..255.
        PlainMap original = parsePlain(dir / c.source), written = parsePlain(out);
        ASSERT_EQ(written.samples.size(), original.samples.size()) << out;
        for (size_t i = 0; i < original.samples.size(); i++) {
            unsigned s = original.samples[i];
            unsigned expected =
                original.kind == 1 ? s : (s * 255 + original.maximum / 2) / original.maximum;
            ASSERT_EQ(written.samples[i], expected) << out << " sample " << i;
        }
        if (c.raw && original.kind == 1) {
            EXPECT_EQ(bytes.size(),
                      strlen(c.header) + original.height * ((original.width + 7) / 8));
        }
        // And the library reads its own file back to the same pixels.
        OrvImage* back = load(out);
        ASSERT_NE(back, nullptr);
        ASSERT_EQ(back->rowBytes(), im->rowBytes());
        EXPECT_EQ(memcmp(back->pixels, im->pixels, im->rowBytes() * im->height), 0) << out;
    }
    // Images made in memory: luminance goes out grey, alpha is lost, rows come out top first
    // unless told that they are already.
    struct Memory {
        OrvImageType type;
        const char* header;
        std::vector<unsigned> samples;  // as netpbm reads the file, top row first
    };
    const unsigned char bytes[4][8] = {
        {10, 20}, {10, 99, 20, 98}, {1, 2, 3, 4, 5, 6}, {1, 2, 3, 77, 4, 5, 6, 78}};
    const Memory memory[] = {
        {OrvImageLuminance, "P5\n# Generated by MavrelOrvis\n1 2\n255\n", {20, 10}},
        {OrvImageLuminanceAlpha, "P5\n# Generated by MavrelOrvis\n1 2\n255\n", {20, 10}},
        {OrvImageRGB, "P6\n# Generated by MavrelOrvis\n1 2\n255\n", {4, 5, 6, 1, 2, 3}},
        {OrvImageRGBA, "P6\n# Generated by MavrelOrvis\n1 2\n255\n", {4, 5, 6, 1, 2, 3}},
    };
    for (const Memory& m : memory) {
        unsigned char* px = (unsigned char*)malloc(8);
        memcpy(px, bytes[m.type - 1], 8);
        OrvImage* im = new OrvImage(d, "memory", m.type, 1, 2, px, 0);
        EXPECT_EQ(d->findImage("memory"), im);
        EXPECT_EQ(im->fileFormat, 0u);
        std::string out = dir / ("mem" + std::to_string(m.type));
        EXPECT_EQ(d->writeImage(out.c_str(), im), 1u);
        EXPECT_EQ(readFile(out).substr(0, strlen(m.header)), m.header);
        EXPECT_EQ(parsePlain(out).samples, m.samples) << m.type;
        EXPECT_EQ(d->writeImage(out.c_str(), im, 0, 0), 1u);
        std::vector<unsigned> asStored = m.samples;
        size_t half = asStored.size() / 2;
        std::rotate(asStored.begin(), asStored.begin() + half, asStored.end());
        EXPECT_EQ(parsePlain(out).samples, asStored) << "bottomUp 0: " << m.type;
        delete im;
        EXPECT_EQ(d->findImage("memory"), nullptr);
    }
    EXPECT_EQ(captured([&] {
                  EXPECT_EQ(d->writeImage("/nonexistent-dir/a.ppm", d->defaultImage()), 0u);
              }),
              "OrvDirector::writeImage : Couldn't open file /nonexistent-dir/a.ppm.\n");
    EXPECT_EQ(captured([&] { EXPECT_EQ(d->writeImage("x", nullptr), 0u); }),
              "OrvDirector::writeImage : No image.\n");
}

TEST_F(ImageFiles, TheDefaultImage) {
    OrvImage* im = d->defaultImage();
    ASSERT_NE(im, nullptr);
    EXPECT_EQ(d->defaultImage(), im) << "made once";
    EXPECT_STREQ(im->name, "defaultOrvisImage");
    EXPECT_EQ(im->width, 16u);
    EXPECT_EQ(im->height, 16u);
    EXPECT_EQ(im->type, OrvImageRGB);
    EXPECT_EQ(im->count, 1) << "counted by the director";
    EXPECT_EQ(d->findImage("defaultOrvisImage"), im);
    // Its table is drawn top first: the white corner ends in the last rows.
    unsigned char c[4];
    im->pixel(0, 15, c);
    EXPECT_EQ(c[0] + c[1] + c[2], 3 * 255);
    im->pixel(0, 0, c);
    EXPECT_NE(c[0] + c[1] + c[2], 3 * 255);
    // Written as a portable map, netpbm sees the white corner at the top left.
    std::string out = dir / "default.ppm";
    ASSERT_EQ(d->writeImage(out.c_str(), im), 1u);
    PlainMap map = parsePlain(out);
    EXPECT_EQ(map.at(0, 0, 0) + map.at(0, 0, 1) + map.at(0, 0, 2), 3u * 255);
    EXPECT_EQ(map.at(15, 15, 1), 0x40u);
}

TEST(ImageScale, BoxFilterInTheMannerOfTheUtilityLibrary) {
    // Halving averages each square of four, rounded.
    const unsigned char four[16] = {0,   10,  20, 30, 1,   11,  21,  31,
                                    100, 100, 0,  0,  101, 100, 255, 254};
    unsigned char two[4];
    ASSERT_EQ(OrvScaleImage(OrvImageLuminance, 1, 2, 2, two, 4, 4, four), 1);
    const unsigned char halved[4] = {6, 26, 100, 127};
    EXPECT_EQ(memcmp(two, halved, 4), 0)
        << (int)two[0] << " " << (int)two[1] << " " << (int)two[2] << " " << (int)two[3];
    // The same size is the same picture; channels stay apart.
    const unsigned char rgb[6] = {1, 2, 3, 250, 251, 252};
    unsigned char same[6];
    ASSERT_EQ(OrvScaleImage(OrvImageRGB, 3, 2, 1, same, 2, 1, rgb), 1);
    EXPECT_EQ(memcmp(same, rgb, 6), 0);
    unsigned char one[3];
    ASSERT_EQ(OrvScaleImage(OrvImageRGB, 3, 1, 1, one, 2, 1, rgb), 1);
    EXPECT_EQ(one[0], 126);
    EXPECT_EQ(one[1], 127);
    EXPECT_EQ(one[2], 128);
    // Enlarging: a box of one source pixel around each centre, cut at the edges.
    const unsigned char ramp[2] = {0, 200};
    unsigned char wide[4];
    ASSERT_EQ(OrvScaleImage(OrvImageLuminance, 1, 4, 1, wide, 2, 1, ramp), 1);
    const unsigned char enlarged[4] = {0, 50, 150, 200};
    EXPECT_EQ(memcmp(wide, enlarged, 4), 0)
        << (int)wide[0] << " " << (int)wide[1] << " " << (int)wide[2] << " " << (int)wide[3];
    // Three to two: each output covers one and a half inputs.
    const unsigned char three[3] = {0, 90, 180};
    unsigned char out2[2];
    ASSERT_EQ(OrvScaleImage(OrvImageLuminance, 1, 2, 1, out2, 3, 1, three), 1);
    EXPECT_EQ(out2[0], 30);
    EXPECT_EQ(out2[1], 150);
    EXPECT_EQ(captured([&] { EXPECT_EQ(OrvScaleImage(5, 5, 1, 1, out2, 1, 1, three), 0); }),
              "OrvScaleImage : Bad image type (5, 5 channels).\n");
    EXPECT_EQ(captured([&] { EXPECT_EQ(OrvScaleImage(1, 1, 0, 1, out2, 1, 1, three), 0); }),
              "OrvScaleImage : Bad image size.\n");
}

TEST_F(ImageFiles, MipLevelFilesDownToOnePixel) {
    OrvImage* src = load("src.ppm");
    ASSERT_NE(src, nullptr);
    std::string prefix = dir / "mip";
    ASSERT_EQ(OrvWriteMipmapsPPM(src, prefix.c_str()), 1);
    const unsigned sizes[3][2] = {{7, 5}, {3, 2}, {1, 1}};
    for (int n = 0; n < 3; n++) {
        std::string f = prefix + std::to_string(n) + ".ppm";
        EXPECT_EQ(readFile(f).substr(0, 3), "P3\n") << f;
        PlainMap m = parsePlain(f);
        EXPECT_EQ(m.width, sizes[n][0]) << f;
        EXPECT_EQ(m.height, sizes[n][1]) << f;
    }
    EXPECT_FALSE(OrvFileExists((prefix + "3.ppm").c_str()));
    // Level 0 is the picture itself, top row first.
    PlainMap level0 = parsePlain(prefix + "0.ppm"), original = parsePlain(dir / "src.ppm");
    EXPECT_EQ(level0.samples, original.samples);
    // Level 2 is the mean of level 1.
    PlainMap level1 = parsePlain(prefix + "1.ppm"), level2 = parsePlain(prefix + "2.ppm");
    for (unsigned k = 0; k < 3; k++) {
        unsigned sum = 0;
        for (unsigned y = 0; y < 2; y++)
            for (unsigned x = 0; x < 3; x++) sum += level1.at(x, y, k);
        EXPECT_NEAR(level2.at(0, 0, k), sum / 6.0, 0.51);
    }
    // From level 10 on, two digits.
    unsigned char* line = (unsigned char*)calloc(1024 * 3, 1);
    OrvImage* wide = new OrvImage(d, "wide", OrvImageRGB, 1024, 1, line, 0);
    std::string p2 = dir / "w";
    ASSERT_EQ(OrvWriteMipmapsPPM(wide, p2.c_str()), 1);
    EXPECT_TRUE(OrvFileExists((p2 + "9.ppm").c_str()));
    EXPECT_TRUE(OrvFileExists((p2 + "10.ppm").c_str()));
    EXPECT_FALSE(OrvFileExists((p2 + "11.ppm").c_str()));
    // Only RGB.
    writeFile(dir / "bits.pbm", "P1\n2 1\n0 1\n");
    unsigned char* lum = (unsigned char*)calloc(4, 1);
    OrvImage* grey = new OrvImage(d, "grey", OrvImageLuminance, 2, 2, lum, 0);
    EXPECT_EQ(captured([&] { EXPECT_EQ(OrvWriteMipmapsPPM(grey, p2.c_str()), 0); }),
              "OrvWriteMipmapsPPM : Sorry, not implemented. (just RGB)\n");
    EXPECT_EQ(captured([&] { EXPECT_EQ(OrvWriteMipmapsPPM(d->image("bits.pbm"), p2.c_str()), 0); }),
              "OrvWriteMipmapsPPM : Sorry, not implemented. (just RGB)\n");
    std::string bad = "/nonexistent-dir/m";
    EXPECT_EQ(captured([&] { EXPECT_EQ(OrvWriteMipmapsPPM(src, bad.c_str()), 0); }),
              "OrvWriteMipmapsPPM : Internal error.\n");
    EXPECT_EQ(captured([&] { EXPECT_EQ(OrvWriteMipmapsPPM(nullptr, bad.c_str()), 0); }),
              "OrvWriteMipmapsPPM : Internal error.\n");
}

}  // namespace
