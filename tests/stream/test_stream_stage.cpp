// Stages saved and read: round trips of every actor class, the exact text of
// a small file, truncated and damaged files, and the clipboard.
#include "orv/actor.h"
#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/layer.h"
#include "orv/makeup.h"
#include "orv/resource.h"
#include "orv/shapes.h"
#include "orv/stage.h"
#include "orv/stream.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include "orv_xtest.h"

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

// The X server resets when its last client leaves, and a connection asked
// for during the reset is refused: one connection is held for the whole run.
class HoldDisplay : public ::testing::Environment {
public:
    Display* held = nullptr;
    void SetUp() override {
        if (getenv("DISPLAY")) held = XOpenDisplay(nullptr);
    }
    void TearDown() override {
        if (held) XCloseDisplay(held);
    }
};
::testing::Environment* const holdDisplay = ::testing::AddGlobalTestEnvironment(new HoldDisplay);

std::string dataFile(const char* name) {
    const char* dir = getenv("ORV_TEST_DATA");
    return std::string(dir ? dir : "tests/data") + "/stream/" + name;
}

std::string afterFirstLine(const std::string& text) {
    return text.substr(text.find('\n') + 1);
}

class StreamStage : public ::testing::Test {
protected:
    OrvDirector* director = nullptr;
    Display* dpy = nullptr;
    std::vector<OrvStage*> stages;
    std::vector<OrvMakeUp*> counted;

    void SetUp() override {
        if (!getenv("DISPLAY")) GTEST_SKIP() << "no DISPLAY";
        director = new OrvDirector("teststreamstage", nullptr, 0, nullptr);
        dpy = (Display*)director->display;
        // Bitmaps are named as found along the path, so files stay portable.
        std::string data = dataFile("");
        director->prependToPath(data.substr(0, data.size() - 1).c_str());
    }
    void TearDown() override {
        for (OrvStage* s : stages) delete s;
        for (OrvMakeUp* m : counted) OrvRelease(m);
        delete director;
    }
    OrvStage* newStage(int x = 0) {
        OrvStage* s = new OrvStage(director, Orv2dRect(x, 0, 240, 180), "stream", 0, 1);
        stages.push_back(s);
        EXPECT_TRUE(OrvTestWaitViewable(dpy, s->window()));
        OrvTestRunFor(20);
        return s;
    }
    OrvMakeUp* makeUp(const char* foreground, unsigned short width = 0) {
        OrvMakeUp* m =
            director->makeUpForeground(director->defaultMakeUp, director->color(foreground));
        if (width) m = director->makeUpLineWidth(m, width);
        OrvCount(m);
        counted.push_back(m);
        return m;
    }
    std::string save(OrvStage* s) {
        std::ostringstream out;
        s->save(out);
        return out.str();
    }
    std::vector<unsigned char> pixels(OrvStage* s) {
        s->drawAll(nullptr, 1);
        XSync(dpy, False);
        XImage* image = XGetImage(dpy, s->window(), 0, 0, 240, 180, AllPlanes, ZPixmap);
        std::vector<unsigned char> result;
        if (!image) return result;
        for (int y = 0; y < 180; y++)
            for (int x = 0; x < 240; x++) {
                unsigned long p = XGetPixel(image, x, y);
                result.push_back((unsigned char)(p >> 16));
                result.push_back((unsigned char)(p >> 8));
                result.push_back((unsigned char)p);
            }
        XDestroyImage(image);
        return result;
    }
    // A stage with one actor of every class, in three layers, with names,
    // user-visible states and make-ups shared between several actors.
    void populate(OrvStage* s) {
        OrvMakeUp* red = makeUp("red");
        OrvMakeUp* blue = makeUp("blue", 3);
        OrvMakeUp* green = makeUp("green");
        OrvActor* plain = new OrvActor(director, red);
        plain->setName("plain actor");
        s->append(plain, 0);
        OrvFilledRectangle* filled =
            new OrvFilledRectangle(director, Orv2dRect(10, 10, 60, 40), red, 6);
        filled->setName("filled \"box\"\n2nd line");
        s->append(filled, 0);
        s->append(new OrvRectangle(director, Orv2dRect(80, 10, 50, 30), blue), 0);
        s->append(new OrvLine(director, Orv2dPoint(10, 60), Orv2dPoint(120, 70), blue), 0);
        s->append(new OrvArrowLine(director, Orv2dPoint(10, 80), Orv2dPoint(120, 90), green,
                                   OrvArrowAtEnd | OrvArrowAtStart),
                  0);
        Orv2dPoint zig[] = {Orv2dPoint(140, 10), Orv2dPoint(160, 40), Orv2dPoint(180, 10),
                            Orv2dPoint(200, 40)};
        s->append(new Orv2dPolyline(director, 4, zig, blue), 1);
        Orv2dPoint tri[] = {Orv2dPoint(140, 60), Orv2dPoint(200, 60), Orv2dPoint(170, 100)};
        Orv2dPolygon* polygon = new Orv2dPolygon(director, 3, tri, 1, green);
        polygon->setSensitive(0);
        s->append(polygon, 1);
        s->append(new OrvEllipse(director, Orv2dRect(10, 100, 50, 30), red), 1);
        s->append(new OrvFilledEllipse(director, Orv2dRect(70, 100, 40, 40), green), 1);
        s->append(new OrvArc(director, Orv2dRect(120, 110, 40, 40), 30.5f, 200, 1, blue), 1);
        OrvLabel* label =
            new OrvLabel(director, "Label\twith tab", Orv2dPoint(10, 160), OrvLeft, red);
        label->setInverted(1);
        s->append(label, 2);
        OrvBitmap* mark = director->readBitmap(director->rootCanvas, "mark.xbm");
        s->append(new OrvIcon(director, mark, Orv2dPoint(200, 140), red), 2);
        OrvIndexedSet* set = new OrvIndexedSet(director, 0, green);
        set->quadtree->add(new OrvFilledRectangle(director, Orv2dRect(170, 120, 10, 10), blue));
        set->quadtree->add(new OrvFilledRectangle(director, Orv2dRect(185, 120, 10, 10), red));
        set->invalidateBox();
        s->append(set, 2);
        OrvRectangle* hidden = new OrvRectangle(director, Orv2dRect(0, 0, 5, 5), red);
        hidden->setVisible(0);
        hidden->setSelectable(0);
        s->append(hidden, 2);
    }
};

}  // namespace

TEST_F(StreamStage, RoundTripIsByteIdenticalAndDrawsTheSame) {
    // The two stages stand at the same place, one after the other, so that the
    // saved size and the window contents can be compared.
    OrvStage* first = newStage(0);
    populate(first);
    std::string a = save(first);
    // This is how tests/data/stream/sample.orv was made.
    if (getenv("ORV_STREAM_SAMPLE_OUT")) std::ofstream(getenv("ORV_STREAM_SAMPLE_OUT")) << a;
    std::vector<unsigned char> p1 = pixels(first);
    unsigned n1 = 0;
    delete[] first->objects(n1);
    delete first;
    stages.clear();
    OrvStage* second = newStage(0);
    std::istringstream in(a);
    Orv2dRect size;
    CaptureStdout();
    EXPECT_EQ(second->read(in, size, -1), 1u);
    EXPECT_EQ(GetCapturedStdout(), "");
    EXPECT_EQ(size.w, 240u);
    EXPECT_EQ(size.h, 180u);
    unsigned n2 = 0;
    delete[] second->objects(n2);
    EXPECT_EQ(n1, n2);
    EXPECT_EQ(n2, 14u);
    std::string b = save(second);
    EXPECT_EQ(afterFirstLine(a), afterFirstLine(b));
    // Every class appears, with its layer and the shared make-ups by reference.
    const char* classes[] = {"OrvActor  ",     "OrvFilledRectangle  ", "OrvRectangle  ",
                             "OrvLine  ",      "OrvArrowLine  ",       "Orv2dPolyline  ",
                             "Orv2dPolygon  ", "OrvEllipse  ",         "OrvFilledEllipse  ",
                             "OrvArc  ",       "OrvLabel  ",           "OrvIcon  ",
                             "OrvIndexedSet  "};
    for (const char* c : classes) EXPECT_NE(a.find(std::string("\n") + c), std::string::npos) << c;
    EXPECT_NE(a.find("\tmakeUp\t\t.USE 1\n"), std::string::npos);
    EXPECT_NE(a.find("\tlayer\t\t2\n"), std::string::npos);
    // The read stage draws the same pixels.
    std::vector<unsigned char> p2 = pixels(second);
    ASSERT_EQ(p1.size(), (size_t)240 * 180 * 3);
    EXPECT_TRUE(p1 == p2);
    // And something was drawn at all: the filled rectangle's red.
    EXPECT_EQ(p2[(20 * 240 + 30) * 3], 0xFF);
    EXPECT_EQ(p2[(20 * 240 + 30) * 3 + 1], 0x00);
}

TEST_F(StreamStage, ExactTextOfASmallStage) {
    OrvStage* s = newStage();
    OrvMakeUp* red = makeUp("red");
    s->append(new OrvFilledRectangle(director, Orv2dRect(10, 20, 30, 40), red), 0);
    s->append(new OrvLabel(director, "hi \"you\"", Orv2dPoint(5, 6), OrvLeft, red), 1);
    std::string text = save(s);
    std::istringstream lines(text);
    std::vector<std::string> got;
    for (std::string line; std::getline(lines, line);) got.push_back(line);
    ASSERT_GE(got.size(), 3u);
    EXPECT_EQ(got[0].substr(0, 10), "% Orvis 1 ");
    EXPECT_EQ(got[0].size(), 34u);
    // The colour and font names are those the director holds.
    OrvColor* background = red->background();
    std::string backgroundLine;
    {
        std::ostringstream out;
        OrvOStream s2(out);
        s2.indentation = 2;
        s2 << background;
        backgroundLine = out.str();
        backgroundLine.pop_back();
    }
    std::string font = red->font()->name;
    std::string lineStyle = red->lineStyle()->name ? red->lineStyle()->name : "None";
    std::vector<std::string> expected = {
        got[0],
        "OrvStream 2d",
        "defaultSize = 0 0 240 180",
        "cardinal = 2",
        "OrvFilledRectangle  1  {",
        "\t% OrvActor class",
        "\tmakeUp 1 {",
        "\t\t% foreground",
        "\t\tcolorName\t\"red\"",
        "\t\t% background",
        backgroundLine,
        "\t\tpattern\t\tNone",
        "\t\tlineStyle\t" + lineStyle,
        "\t\tlineWidth\t0",
        "\t\trasterFont\t" + font,
        "\t\tcolorPattern\tNone",
        "\t\tfillStyle\t0",
        "\t\tarcMode\t\t0",
        "\t\tfillRule\t0",
        "\t\tsmooth\t\tyes",
        "\t\tdistinguish\tno",
        "\t\tcull\t\t1",
        "\t\tfrontStyle\t4",
        "\t\tbackStyle\t4",
        "\t\tmarkerType\t1",
        "\t\tmarkerScale\t2",
        "\t\tpointSize\t3",
        "\t\tvfont\t\tNone",
        "\t\ttexture\tNone",
        "\t}",
        "\tlayer\t\t0",
        "\tproperties\t1011110000000000001100011000000",
        "\t% OrvRectangle class",
        "\trect2d\t10 20 30 40",
        "\tusData\t0",
        "\t% OrvFilledRectangle class",
        "}",
        "OrvLabel  2  {",
        "\t% OrvActor class",
        "\tmakeUp\t\t.USE 1",
        "\tlayer\t\t1",
        "\tproperties\t1011110000000000001100011000000",
        "\t% OrvLabel class",
        "\tlabel\t\"hi \\\"you\\\"\"",
        "\tpoint2d\t5 6",
        "\tposition 1",
        "}",
        "",
        "% Do not modify or delete the last line (Orvis plugins).",
        "% EOF",
    };
    ASSERT_EQ(got.size(), expected.size()) << text;
    for (size_t i = 0; i < expected.size(); i++) EXPECT_EQ(got[i], expected[i]) << "line " << i + 1;
    EXPECT_EQ(text.back(), '\n');
}

TEST_F(StreamStage, EmptyStageSavesAndReadsAsNothing) {
    OrvStage* s = newStage();
    std::string text = save(s);
    EXPECT_NE(text.find("\ncardinal = 0\n"), std::string::npos);
    OrvStage* t = newStage(260);
    std::istringstream in(text);
    Orv2dRect size;
    EXPECT_EQ(t->read(in, size, -1), 0u);
    EXPECT_EQ(size.w, 240u);
    EXPECT_EQ(t->cardinal(), 0u);
}

TEST_F(StreamStage, ReadFromFileOnThePathAndIntoOneLayer) {
    OrvStage* s = newStage();
    populate(s);
    std::string path =
        std::string(getenv("TMPDIR") ? getenv("TMPDIR") : "/tmp") + "/orv_stream_test.orv";
    s->save(path.c_str());
    OrvStage* t = newStage(260);
    Orv2dRect size;
    EXPECT_EQ(t->read(path.c_str(), size, 4), 1u);
    EXPECT_EQ(t->cardinal(), 14u);
    unsigned n = 0;
    OrvActor** all = t->objects(n);
    for (unsigned i = 0; i < n; i++) EXPECT_EQ(all[i]->layer, 4);
    delete[] all;
    // A bare name is found along the search path.
    director->prependToPath(path.substr(0, path.rfind('/')).c_str());
    OrvStage* u = newStage(520);
    EXPECT_EQ(u->read("orv_stream_test.orv", size, -1), 1u);
    EXPECT_EQ(u->cardinal(), 14u);
    CaptureStdout();
    EXPECT_EQ(u->read("no_such_file_anywhere.orv", size, -1), 0u);
    EXPECT_EQ(GetCapturedStdout(), "## OrvStage::read : Can't open no_such_file_anywhere.orv\n");
    remove(path.c_str());
}

TEST_F(StreamStage, TruncatedAtEveryOffset) {
    std::ifstream file(dataFile("sample.orv"));
    ASSERT_TRUE(file.good());
    std::stringstream whole;
    whole << file.rdbuf();
    std::string text = whole.str();
    ASSERT_GT(text.size(), 500u);
    // Where each top-level block ends: an object counts as read only when its
    // closing brace is in the prefix.
    std::vector<size_t> ends;
    for (size_t i = 0; i < text.size(); i++)
        if (text[i] == '}' && (i == 0 || text[i - 1] == '\n')) ends.push_back(i);
    size_t cardinalEnd = text.find('\n', text.find("cardinal = ")) + 1;
    OrvStage* s = newStage();
    for (size_t k = 0; k <= text.size(); k++) {
        std::string prefix = text.substr(0, k);
        std::istringstream in(prefix);
        Orv2dRect size;
        CaptureStdout();
        unsigned long ok = s->read(in, size, -1);
        std::string messages = GetCapturedStdout();
        size_t complete = 0;
        while (complete < ends.size() && ends[complete] < k) complete++;
        unsigned n = s->cardinal();
        ASSERT_EQ(n, complete) << "offset " << k;
        EXPECT_EQ(ok, complete ? 1u : 0u) << "offset " << k;
        if (complete < ends.size() && k >= cardinalEnd) {
            std::string last =
                "## OrvIStream : Bad format in object " + std::to_string(complete) + "\n";
            ASSERT_GE(messages.size(), last.size()) << "offset " << k;
            EXPECT_EQ(messages.substr(messages.size() - last.size()), last) << "offset " << k;
        }
        s->empty(1);
    }
}

TEST_F(StreamStage, HugeCountsAndBadNumbers) {
    std::string head =
        "% Orvis 1 Mon Nov 23 08:00:00 2026\nOrvStream 2d\ndefaultSize = 0 0 10 10\ncardinal = 1\n";
    OrvStage* s = newStage();
    struct Case {
        const char* body;
        const char* message;
    };
    const Case cases[] = {
        {"Orv2dPolyline  1  {\n\tmakeUp\t\t.USE "
         "1\n\tlayer\t\t0\n\tproperties\t1\n\tuiData\t4000000000\n\tpoint2d\t1 2\n}\n",
         "OrvIStream : MakeUp not found (.USE 1)\nOrvIStream : Not a 2dPoint object.\n"
         "OrvIStream : bad separator.\n## OrvIStream : Bad format in object 0\n"},
        {"OrvIndexedSet  1  {\n\tmakeUp\t\t.USE "
         "1\n\tlayer\t\t0\n\tproperties\t1\n\tuiData\t4294967295\n}\n",
         "OrvIStream : MakeUp not found (.USE 1)\nOrvIStream : Class } not found ...\n"
         "## OrvIStream: Bad separator.\nOrvIStream : bad separator.\n## OrvIStream : Bad format "
         "in object 0\n"},
        {"OrvRectangle  1  {\n\tmakeUp\t\t.USE 1\n\tlayer\t\t0\n\tproperties\t1\n\trect2d\t1 2 -3x "
         "4\n\tusData\t0\n}\n",
         "OrvIStream : MakeUp not found (.USE 1)\nOrvIStream : Bad data.\n"
         "OrvIStream : bad separator.\n## OrvIStream : Bad format in object 0\n"},
        {"OrvLabel  1  {\n\tmakeUp\t\t.USE 1\n\tlayer\t\t0\n\tproperties\t1\n\tlabel\t\"cut in the "
         "mid",
         "OrvIStream : MakeUp not found (.USE 1)\nOrvIStream : Bad label value.\nOrvIStream : Not "
         "a 2dPoint object.\n"
         "OrvIStream : Bad position data.\nOrvIStream : bad separator.\n## OrvIStream : Bad format "
         "in object 0\n"},
    };
    for (const Case& c : cases) {
        std::istringstream in(head + c.body);
        Orv2dRect size;
        CaptureStdout();
        EXPECT_EQ(s->read(in, size, -1), 0u) << c.body;
        EXPECT_EQ(GetCapturedStdout(), c.message) << c.body;
        EXPECT_EQ(s->cardinal(), 0u);
    }
}

TEST_F(StreamStage, CutCopyPasteThroughTheCutBuffer) {
    OrvStage* s = newStage();
    OrvMakeUp* red = makeUp("red");
    OrvFilledRectangle* a = new OrvFilledRectangle(director, Orv2dRect(10, 10, 20, 20), red);
    OrvEllipse* b = new OrvEllipse(director, Orv2dRect(40, 10, 20, 20), red);
    OrvLine* c = new OrvLine(director, Orv2dPoint(0, 100), Orv2dPoint(50, 120), red);
    s->append(a, 0);
    s->append(b, 1);
    s->append(c, 0);
    a->setSelected(1);
    b->setSelected(1);
    s->copy();
    // The cut buffer holds the text of the two selected actors.
    Display* other = XOpenDisplay(DisplayString(dpy));
    ASSERT_NE(other, nullptr);
    XSync(dpy, False);
    int length = 0;
    char* bytes = XFetchBytes(other, &length);
    ASSERT_NE(bytes, nullptr);
    std::string clip(bytes, (size_t)length);
    XFree(bytes);
    EXPECT_NE(clip.find("\ncardinal = 2\n"), std::string::npos) << clip;
    EXPECT_NE(clip.find("\nOrvFilledRectangle  1  {\n"), std::string::npos);
    EXPECT_NE(clip.find("\nOrvEllipse  2  {\n"), std::string::npos);
    EXPECT_EQ(clip.find("OrvLine"), std::string::npos);

    OrvStage* t = newStage(260);
    t->paste(Orv2dPoint(100, 50), 1);
    ASSERT_EQ(t->cardinal(), 2u);
    unsigned n = 0;
    OrvActor** pasted = t->objects(n);
    ASSERT_EQ(n, 2u);
    OrvFilledRectangle* a2 = dynamic_cast<OrvFilledRectangle*>(pasted[0]);
    OrvEllipse* b2 = dynamic_cast<OrvEllipse*>(pasted[1]);
    delete[] pasted;
    ASSERT_TRUE(a2 && b2);
    EXPECT_EQ(a2->rect.x, 100);
    EXPECT_EQ(a2->rect.y, 50);
    EXPECT_EQ(b2->rect.x, 130);
    EXPECT_EQ(b2->layer, 1);
    EXPECT_TRUE(a2->isSelected());

    // Cut takes them away and leaves the text in the cut buffer.
    s->cut();
    EXPECT_EQ(s->cardinal(), 1u);
    XSync(dpy, False);
    bytes = XFetchBytes(other, &length);
    ASSERT_NE(bytes, nullptr);
    EXPECT_EQ(afterFirstLine(std::string(bytes, (size_t)length)), afterFirstLine(clip));
    XFree(bytes);

    // Text from elsewhere: a damaged second object leaves only the first.
    std::string damaged = clip;
    damaged.replace(damaged.find("OrvEllipse  2  {"), 16, "OrvEllipse  2  [");
    XStoreBytes(other, damaged.data(), (int)damaged.size());
    XSync(other, False);
    OrvStage* u = newStage(520);
    CaptureStdout();
    u->paste(Orv2dPoint(0, 0), 0);
    EXPECT_EQ(GetCapturedStdout(),
              "## OrvIStream: Bad separator.\n## OrvIStream : Bad format in object 1\n");
    EXPECT_EQ(u->cardinal(), 1u);
    // Text that is no stage at all pastes nothing.
    const char junk[] = "not an orv text at all";
    XStoreBytes(other, junk, (int)strlen(junk));
    XSync(other, False);
    CaptureStdout();
    u->paste(Orv2dPoint(0, 0), 0);
    GetCapturedStdout();
    EXPECT_EQ(u->cardinal(), 1u);
    XCloseDisplay(other);
}
