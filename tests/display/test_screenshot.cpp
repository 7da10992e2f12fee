// The screenshot writer: the exact PPM it writes of a known window on both screens and of a
// depth-1 bitmap, and the messages of the calls that cannot write.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <unistd.h>

#include <string>

#include "orv/view.h"

#include "orv_pixels.h"
#include "orv_xtest.h"

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

// The pixel at x, y of a P6 file of that width whose header is `headerLength` bytes.
std::string rgbAt(const std::string& ppm, size_t headerLength, unsigned width, unsigned x,
                  unsigned y) {
    size_t at = headerLength + 3 * (y * width + x);
    if (at + 3 > ppm.size()) return "outside";
    char text[16];
    snprintf(text, sizeof text, "%u,%u,%u", (unsigned char)ppm[at], (unsigned char)ppm[at + 1],
             (unsigned char)ppm[at + 2]);
    return text;
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
    std::string path = tempPath("window");
    ASSERT_EQ(OrvSaveViewPPM(v, path.c_str()), 1);
    std::string ppm = readFile(path);
    unlink(path.c_str());
    const char header[] = "P6\n40 30\n255\n";
    const size_t headerLength = sizeof header - 1;
    ASSERT_EQ(ppm.size(), headerLength + 40 * 30 * 3);
    EXPECT_EQ(ppm.substr(0, headerLength), header);
    struct {
        unsigned x, y;
        const char* rgb;
    } cases[] = {
        {0, 0, "255,255,255"},   {4, 4, "255,255,255"},   {5, 5, "255,0,0"},
        {14, 14, "255,0,0"},     {15, 14, "255,255,255"}, {20, 20, "0,0,255"},
        {39, 24, "0,0,255"},     {39, 25, "255,255,255"}, {19, 22, "255,255,255"},
        {39, 29, "255,255,255"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(rgbAt(ppm, headerLength, 40, c.x, c.y), c.rgb) << "at " << c.x << "," << c.y;
    delete v;
}

ORV_ON_BOTH_SCREENS(Screenshot);

TEST(ScreenshotBitmap, ASetBitIsBlack) {
    if (!getenv("DISPLAY")) GTEST_SKIP() << "no DISPLAY";
    OrvDirector* d = new OrvDirector("shottest", nullptr, 0, nullptr);
    OrvBitmap* b = new OrvBitmap(d->rootCanvas, 8, 2, 1);
    const unsigned char rows[2] = {0x81, 0x00};  // the first row: its two end bits
    b->setBits(Orv2dRect(0, 0, 8, 2), rows, 2, 8, 0);
    std::string path = tempPath("bitmap");
    ASSERT_EQ(OrvSaveViewPPM(b, path.c_str()), 1);
    std::string ppm = readFile(path);
    unlink(path.c_str());
    const char header[] = "P6\n8 2\n255\n";
    ASSERT_EQ(ppm.size(), sizeof header - 1 + 8 * 2 * 3);
    EXPECT_EQ(ppm.substr(0, sizeof header - 1), header);
    EXPECT_EQ(rgbAt(ppm, sizeof header - 1, 8, 0, 0), "0,0,0");
    EXPECT_EQ(rgbAt(ppm, sizeof header - 1, 8, 7, 0), "0,0,0");
    EXPECT_EQ(rgbAt(ppm, sizeof header - 1, 8, 3, 0), "255,255,255");
    EXPECT_EQ(rgbAt(ppm, sizeof header - 1, 8, 0, 1), "255,255,255");
    delete b;
    delete d;
}

TEST(ScreenshotFailures, ReportAndReturnZero) {
    if (!getenv("DISPLAY")) GTEST_SKIP() << "no DISPLAY";
    OrvDirector* d = new OrvDirector("shottest", nullptr, 0, nullptr);
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
    for (const auto& c : cases) {
        testing::internal::CaptureStdout();
        int result = OrvSaveViewPPM(c.canvas, c.file);
        std::string printed = testing::internal::GetCapturedStdout();
        EXPECT_EQ(result, 0) << c.message;
        EXPECT_EQ(printed, c.message);
    }
    EXPECT_NE(access(fine.c_str(), F_OK), 0) << "no file is left behind";
    delete hidden;
    delete b;
    delete d;
}

}  // namespace
