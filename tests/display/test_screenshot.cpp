// The screenshot writer: the exact PPM it writes of a known window on both screens and of a
// depth-1 bitmap, and the messages of the calls that cannot write.
#include <unistd.h>

#include "orv_fixtures.h"

namespace {

std::string readFile(const std::string& path) {
    std::string bytes;
    FILE* f = fopen(path.c_str(), "rb");
    if (!f) return bytes;
    char buffer[4096];
    size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, f)) > 0) bytes.append(buffer, n);
    fclose(f);
    return bytes;
}

std::string tempPath(const char* name) {
    return std::string("/tmp/orv-shot-") + std::to_string(getpid()) + "-" + name + ".ppm";
}

// The bytes of the screenshot of a canvas, through a file that is removed.
std::string shoot(const OrvCanvas* c) {
    std::string path = tempPath("shot");
    EXPECT_EQ(OrvSaveViewPPM(c, path.c_str()), 1);
    std::string ppm = readFile(path);
    unlink(path.c_str());
    return ppm;
}

class Screenshot : public OrvScreenTest {};

// A 40 by 30 window: white, a red square at 5..14 by 5..14, a blue band at 20..39 by 20..24.
TEST_P(Screenshot, WritesTheHeaderAndTheColoursOfAWindow) {
    OrvView* v = new OrvView(d, Orv2dRect(50, 50, 40, 30), "shot");
    ASSERT_TRUE(OrvTestWaitViewable(dpy, v->window()));
    OrvTestRunFor(30);
    v->setClip(nullptr);
    v->rectangle(paint("white"), Orv2dRect(0, 0, 40, 30), 1);
    v->rectangle(paint("red"), Orv2dRect(5, 5, 10, 10), 1);
    v->rectangle(paint("blue"), Orv2dRect(20, 20, 20, 5), 1);
    // Every byte: the header, then the pixels row by row.
    std::string want = "P6\n40 30\n255\n";
    for (int y = 0; y < 30; y++)
        for (int x = 0; x < 40; x++) {
            bool r = x >= 5 && x < 15 && y >= 5 && y < 15, b = x >= 20 && y >= 20 && y < 25;
            want += {r || !b ? '\xff' : '\0', r || b ? '\0' : '\xff', r ? '\0' : '\xff'};
        }
    EXPECT_EQ(want, shoot(v));
    delete v;
}

ORV_ON_BOTH_SCREENS(Screenshot);

class ScreenshotX : public XTest {};

TEST_F(ScreenshotX, ASetBitIsBlack) {
    OrvBitmap* b = new OrvBitmap(director->rootCanvas, 8, 2, 1);
    const unsigned char rows[2] = {0x81, 0x00};  // the first row: its two end bits
    b->setBits(Orv2dRect(0, 0, 8, 2), rows, 2, 8, 0);
    std::string want = "P6\n8 2\n255\n";
    for (int i = 0; i < 16; i++) want += std::string(3, i == 0 || i == 7 ? '\0' : '\xff');
    EXPECT_EQ(want, shoot(b));
    delete b;
}

TEST_F(ScreenshotX, FailuresReportAndReturnZero) {
    OrvDirector* d = director;
    OrvBitmap* b = new OrvBitmap(d->rootCanvas, 4, 4, d->depth);
    OrvView* hidden = new OrvView(d, Orv2dRect(0, 0, 20, 20), "hidden", 0, 0);
    std::string fine = tempPath("never");
    struct {
        const OrvCanvas* canvas;
        const char* file;
        std::string message;
    } cases[] = {
        {b, "/nonexistent-orv-dir/shot.ppm",
         "## OrvSaveViewPPM : cannot open '/nonexistent-orv-dir/shot.ppm' for writing.\n"},
        {hidden, fine.c_str(),
         std::string("## OrvSaveViewPPM : the window of ") + hidden->name + " is not viewable.\n"},
        {nullptr, fine.c_str(), "## OrvSaveViewPPM : no canvas to read.\n"},
        {b, nullptr, "## OrvSaveViewPPM : no file name.\n"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.message,
                  OrvTestOutput([&] { EXPECT_EQ(0, OrvSaveViewPPM(c.canvas, c.file)); }));
    EXPECT_NE(access(fine.c_str(), F_OK), 0) << "no file is left behind";
    delete hidden;
    delete b;
}

}  // namespace
