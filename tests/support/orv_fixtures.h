// The fixtures of the suite and its one test actor, TestBox. Each fixture in a line:
// PrivateXServer: an Xvfb of the test's own, so no other window covers it or moves its pointer.
// OrvScreenTest: a director on each test screen (24-bit, 8-bit), white sheets and pixel reads.
// XTest: a director on a private server (on the suite's one when Xvfb is missing).
// StageTest: XTest plus a mapped 200x150 TestStage, red and blue make-ups and boxes.
// RouteTest: StageTest at 300x200 with XTest gestures and a log of what was offered.
// StreamTest: XTest plus saving and reading actors and stages through string streams.
// ViewTest: XTest plus a mapped top-level view that logs its callbacks, and a raw connection.
#ifndef ORV_TEST_FIXTURES_H
#define ORV_TEST_FIXTURES_H

#include <gtest/gtest.h>

#include <sys/types.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

// The library's headers come before Xlib's, whose macros they must not meet.
#include "orv/actor.h"
#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/layer.h"
#include "orv/makeup.h"
#include "orv/producer.h"
#include "orv/resource.h"
#include "orv/role.h"
#include "orv/shapes.h"
#include "orv/stage.h"
#include "orv/stream.h"
#include "orv/view.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>

#include "orv_xtest.h"

typedef std::vector<std::string> Log;

// What a call printed on standard output.
inline std::string OrvTestOutput(const std::function<void()>& call) {
    testing::internal::CaptureStdout();
    call();
    return testing::internal::GetCapturedStdout();
}

// Reads every prefix of a saved stage into s: only the objects whose block closed come back, and
// a cut inside a block ends with the message that names the object it spoils.
inline void OrvTestEveryCut(OrvStage* s, const std::string& text, size_t objects) {
    std::vector<size_t> ends;  // where each object's block closes
    for (size_t i = 0; i < text.size(); i++)
        if (text[i] == '}' && (i == 0 || text[i - 1] == '\n')) ends.push_back(i);
    ASSERT_EQ(ends.size(), objects);
    size_t cardinalEnd = text.find('\n', text.find("cardinal = ")) + 1;
    for (size_t k = 0; k <= text.size(); k++) {
        std::istringstream in(text.substr(0, k));
        Orv2dRect size;
        unsigned long ok = 0;
        std::string messages = OrvTestOutput([&] { ok = s->read(in, size, -1); });
        size_t complete = 0;
        while (complete < ends.size() && ends[complete] < k) complete++;
        ASSERT_EQ(std::make_pair((size_t)s->cardinal(), ok),
                  std::make_pair(complete, complete ? 1ul : 0ul))
            << "offset " << k;
        std::string last =
            "## OrvIStream : Bad format in object " + std::to_string(complete) + "\n";
        if (complete < ends.size() && k >= cardinalEnd) {
            EXPECT_EQ(messages.substr(messages.size() - std::min(messages.size(), last.size())),
                      last)
                << "offset " << k;
        }
        s->empty(1);
    }
}

// A filled box in its make-up's foreground: counts its draws, logs the change protocol when asked,
// moves through beginDrawing/flushDrawing, copies, and has a persistent form.
class TestBox : public OrvActor {
public:
    Orv2dRect box;
    int draws = 0;
    const OrvCanvas* lastCanvas = nullptr;
    std::vector<const OrvCanvas*>* canvases = nullptr;  // every canvas drawn on, when set
    Log* log = nullptr;                                 // the protocol's steps, when set

    TestBox(OrvDirector* d, OrvMakeUp* m, const Orv2dRect& r) : OrvActor(d, m), box(r) {}
    TestBox(const TestBox& o) : OrvActor(o), box(o.box) {}
    explicit TestBox(OrvIStream& in) : OrvActor(in) { in >> box; }
    OrvActor* copy() const override { return new TestBox(*this); }
    Orv2dRect bbox2d(const Orv2dMatrix* m) const override {
        Orv2dRect r = box;
        if (m) m->apply(r);
        return r;
    }
    void draw2d(OrvCanvas* canvas, const Orv2dMatrix* m) override {
        draws++;
        lastCanvas = canvas;
        if (canvases) canvases->push_back(canvas);
        canvas->rectangle(makeUp, box, 1, m);
    }
    void apply2d(const Orv2dMatrix& m) override { m.apply(box); }
    void moveTo(long x, long y) {
        beginDrawing(1);
        box.x = x;
        box.y = y;
        flushDrawing(1);
    }
    void beginDrawing(unsigned long links) override {
        note("begin " + std::to_string(links));
        OrvActor::beginDrawing(links);
    }
    void flushDrawing(unsigned long links) override {
        note("flush " + std::to_string(links));
        OrvActor::flushDrawing(links);
    }
    void notifyOnMakeUpChanged() override { note("notify"); }
    void takeAPicture() override { note("picture"); }
    OrvClassInfo* classInfo() const override { return _classInfo; }
    void write(OrvOStream& out) const override {
        OrvActor::write(out);
        out.writeComments("TestBox class", 1);
        out << box;
    }
    static OrvActor* read(OrvIStream& in) { return new TestBox(in); }
    static OrvClassInfo* _classInfo;

private:
    void note(const std::string& s) {
        if (log) log->push_back(s);
    }
};
ORV_DECLARE_CLASS_INIT(TestBox)

// Counts the repaints and the erasures of the window itself.
class TestStage : public OrvStage {
public:
    int drawAlls = 0, windowErases = 0;
    TestStage(OrvDirector* d, const Orv2dRect& r) : OrvStage(d, r, "test", 0, 1) {}
    void drawAll(const Orv2dRegion* region, unsigned long erase) override {
        drawAlls++;
        OrvStage::drawAll(region, erase);
    }
    void erase(const Orv2dRect& r, int exposures) override {
        windowErases++;
        OrvStage::erase(r, exposures);
    }
    void erase(const Orv2dRegion* r, int exposures) override {
        windowErases++;
        OrvStage::erase(r, exposures);
    }
    void erase(int exposures) override {
        windowErases++;
        OrvStage::erase(exposures);
    }
};

// Counts what the hooks are told; logs "invalidate", "contents" and "drawAll" when asked.
class RecordingHook : public OrvStageHook {
public:
    int before = 0, after = 0, copies = 0, invalidations = 0, contentsCalls = 0, resized = 0,
        transformers = 0, producers = 0;
    const OrvCanvas* copyCanvas = nullptr;
    OrvProducer* lastProducer = nullptr;
    Orv2dRegion lastRegion;
    Log* log = nullptr;
    bool owned = true;  // deleted by the stage

    void beforeDraw(const OrvCanvas*, const Orv2dMatrix*, const Orv2dRegion* r) override {
        before++;
        if (r) lastRegion = *r;
        if (log) log->push_back("drawAll");
    }
    void afterDraw(const OrvCanvas*, const Orv2dMatrix*, const Orv2dRegion*) override { after++; }
    void afterCopy(const OrvCanvas* c, const Orv2dMatrix*, const Orv2dRegion*) override {
        copies++;
        copyCanvas = c;
    }
    void invalidateActorCall(const OrvActor*) override {
        invalidations++;
        if (log) log->push_back("invalidate");
    }
    void contents() override {
        contentsCalls++;
        if (log) log->push_back("contents");
    }
    void stageResized() override { resized++; }
    void transformer(const Orv2dMatrix*, const Orv2dMatrix*) override { transformers++; }
    void producer(OrvProducer* p, OrvProducer*) override {
        producers++;
        lastProducer = p;
    }
    unsigned long deletedByStage() const override { return owned ? 1 : 0; }
};

// One offer of an event as a role, an accelerator or a producer saw it.
struct Offer {
    std::string who;
    OrvEventType type;
    OrvActor* actor;
    long x, y;
    unsigned short key, modifiers;
};
typedef std::vector<Offer> OfferLog;
inline void OrvTestNote(OfferLog* log, const char* who, const OrvEvent& e, OrvActor* a = nullptr) {
    log->push_back(Offer{who, e.type, a, e.x, e.y, e.key, e.modifiers});
}

// A role that records every offer and answers as told.
class RecordingRole : public OrvRole {
public:
    OfferLog* log;
    std::string name;
    int answer = 1, pointerMoves = 0;
    RecordingRole(OfferLog* l, const char* n) : log(l), name(n) {}
    int input2d(OrvActor* a, const OrvEvent& e, OrvStage*) override {
        OrvTestNote(log, name.c_str(), e, a);
        return answer;
    }
    const char* className() const override { return "RecordingRole"; }
    int allowPointerMoved() const override { return pointerMoves; }
};

class RecordingAccelerator : public OrvAccelerator {
public:
    OfferLog* log;
    RecordingAccelerator(OfferLog* l, OrvEventType t, unsigned short k, unsigned short m)
        : OrvAccelerator(t, k, m), log(l) {}
    int input2d(OrvStage*, const OrvEvent& e) override {
        OrvTestNote(log, "accelerator", e);
        return 1;
    }
};

class RecordingProducer : public OrvProducer {
public:
    OfferLog* log;
    int answer = 1, inits = 0, aborts = 0;
    RecordingProducer(OrvStage* s, OfferLog* l) : OrvProducer(s), log(l) {}
    int input2d(const OrvEvent& e) override {
        OrvTestNote(log, "producer", e);
        return answer;
    }
    void init() override { inits++; }
    void abort() override { aborts++; }
    const char* className() const override { return "Recording"; }
};

class CountingCallback : public OrvCallback {
public:
    int* calls;
    OrvActor** last;
    explicit CountingCallback(int* c, OrvActor** l = nullptr) : calls(c), last(l) {}
    void activate(OrvActor* a) override {
        (*calls)++;
        if (last) *last = a;
    }
};

// An X server of the test's own, 1280x1024x24, stopped by the destructor.
class PrivateXServer {
public:
    pid_t pid = -1;
    std::string name;
    bool start();
    void stop();
    ~PrivateXServer() { stop(); }
};

// Runs each test on the 24-bit TrueColor screen (DISPLAY) and on the 8-bit PseudoColor screen
// (ORV_TEST_DISPLAY8), where pixels read back as colormap indices.
class OrvScreenTest : public testing::TestWithParam<const char*> {
protected:
    OrvDirector* d = nullptr;
    Display* dpy = nullptr;
    void SetUp() override {
        const char* name = getenv(GetParam());
        if (!name || !*name) GTEST_SKIP() << GetParam() << " is not set";
        // One connection stays open for the whole process: when its last client goes, the
        // server resets and refuses the next connection for a moment.
        static Display* keeper = XOpenDisplay(name);
        (void)keeper;
        d = new OrvDirector("drawtest", name, 0, nullptr);
        dpy = (Display*)d->display;
    }
    void TearDown() override { delete d; }
    unsigned long mask() const { return d->depth >= 32 ? ~0UL : (1UL << d->depth) - 1; }
    // The pixel at x, y of a canvas (an index on the 8-bit screen).
    unsigned long pixel(const OrvCanvas* c, int x, int y) const {
        return OrvTestPixel(dpy, c->drawable, x, y) & mask();
    }
    // Pixels of a canvas by colour name: "red: 10,10 30,10 white: 30,11".
    void expectPixels(const OrvCanvas* c, const std::string& wanted) {
        std::istringstream in(wanted);
        unsigned long want = 0;
        for (std::string word; in >> word;) {
            if (word.back() == ':') {
                want = px(word.substr(0, word.size() - 1).c_str());
                continue;
            }
            int x = 0, y = 0;
            sscanf(word.c_str(), "%d,%d", &x, &y);
            EXPECT_EQ(want, pixel(c, x, y)) << "pixel " << word << " of \"" << wanted << "\"";
        }
    }
    // How many pixels of a rectangle of the canvas have that value.
    int countPixels(const OrvCanvas* c, const Orv2dRect& r, unsigned long value) const {
        XImage* im = XGetImage(dpy, c->drawable, r.x, r.y, r.w, r.h, AllPlanes, ZPixmap);
        int n = 0;
        for (unsigned y = 0; im && y < r.h; y++)
            for (unsigned x = 0; x < r.w; x++) n += (XGetPixel(im, x, y) & mask()) == value;
        if (im) XDestroyImage(im);
        return n;
    }
    unsigned long px(const char* colorName) {
        return d->color(colorName)->index(d->rootCanvas) & mask();
    }
    // The default make-up in these colours.
    OrvMakeUp* paint(const char* fg, const char* bg = "white") {
        return d->makeUpBackground(d->makeUpForeground(d->defaultMakeUp, d->color(fg)),
                                   d->color(bg));
    }
    // A white bitmap of the director's depth, without clip.
    OrvBitmap* sheet(unsigned long w = 100, unsigned long h = 100) {
        OrvBitmap* b = new OrvBitmap(d->rootCanvas, w, h, d->depth);
        b->setClip(nullptr);
        b->rectangle(paint("white"), Orv2dRect(0, 0, w, h), 1);
        return b;
    }
};
#define ORV_ON_BOTH_SCREENS(suite)                                                                 \
    INSTANTIATE_TEST_SUITE_P(Screens, suite, testing::Values("DISPLAY", "ORV_TEST_DISPLAY8"))

class XTest : public testing::Test {
protected:
    PrivateXServer server;
    OrvDirector* director = nullptr;
    Display* dpy = nullptr;
    // The suite's server, named in DISPLAY while no test has its own.
    static const std::string& suite() {
        static const std::string name = getenv("DISPLAY") ? getenv("DISPLAY") : "";
        return name;
    }
    void SetUp() override {
        if (suite().empty()) GTEST_SKIP() << "no DISPLAY";
        setenv("DISPLAY", server.start() ? server.name.c_str() : suite().c_str(), 1);
        director = new OrvDirector("test", nullptr, 0, nullptr);
        dpy = (Display*)director->display;
    }
    void TearDown() override {
        delete director;
        if (!suite().empty()) setenv("DISPLAY", suite().c_str(), 1);
    }
    // Every pixel of a view's window as 0xRRGGBB, row by row.
    std::vector<unsigned long> snapshot(const OrvView* v) {
        XSync(dpy, False);
        XImage* im = XGetImage(dpy, v->window(), 0, 0, v->width, v->height, AllPlanes, ZPixmap);
        std::vector<unsigned long> pixels;
        for (unsigned long y = 0; y < v->height; y++)
            for (unsigned long x = 0; x < v->width; x++)
                pixels.push_back(XGetPixel(im, x, y) & 0xffffff);
        XDestroyImage(im);
        return pixels;
    }
    // The pixel of a window or pixmap as 0xRRGGBB, after the requests so far.
    unsigned long rgbOf(unsigned long drawable, int x, int y) {
        XSync(dpy, False);
        return OrvTestRGB(dpy, drawable, x, y);
    }
};

class StageTest : public XTest {
protected:
    Orv2dRect stageRect = Orv2dRect(0, 0, 200, 150);
    TestStage* stage = nullptr;
    OrvMakeUp *red = nullptr, *blue = nullptr;
    unsigned long background = 0;
    void SetUp() override {
        XTest::SetUp();
        if (!director) return;
        red = director->makeUpForeground(director->defaultMakeUp, director->color("red"));
        blue = director->makeUpForeground(director->defaultMakeUp, director->color("blue"));
        OrvCount(red);
        OrvCount(blue);
        stage = newStage(stageRect);
        background = rgb(stageRect.w - 1, stageRect.h - 1);
    }
    void TearDown() override {
        delete stage;
        if (director) {
            OrvRelease(red);
            OrvRelease(blue);
        }
        XTest::TearDown();
    }
    TestStage* newStage(const Orv2dRect& r, OrvDirector* d = nullptr) {
        TestStage* s = new TestStage(d ? d : director, r);
        EXPECT_TRUE(OrvTestWaitViewable((Display*)s->director->display, s->window()));
        OrvTestRunFor(30);
        return s;
    }
    unsigned long rgb(int x, int y, OrvStage* s = nullptr) {
        return rgbOf((s ? s : stage)->window(), x, y);
    }
    // Pixels of the stage given as x, y, 0xRRGGBB.
    void expectPixels(std::initializer_list<unsigned long> v) {
        for (const unsigned long* p = v.begin(); p + 2 < v.end(); p += 3)
            EXPECT_EQ(p[2], rgb((int)p[0], (int)p[1])) << "pixel " << p[0] << "," << p[1];
    }
    TestBox* box(long x, long y, unsigned long w, unsigned long h, OrvMakeUp* m = nullptr,
                 unsigned layer = 0, OrvStage* s = nullptr) {
        TestBox* b = new TestBox(director, m ? m : red, Orv2dRect(x, y, w, h));
        (s ? s : stage)->append(b, layer);
        return b;
    }
    // A recording hook, installed on the stage, which owns it.
    RecordingHook* installHook() {
        RecordingHook* h = new RecordingHook;
        stage->install(h);
        return h;
    }
    // Forgets what the setup drew, so that a test counts only its own repaints.
    void resetCounts(const std::vector<TestBox*>& boxes) {
        for (TestBox* b : boxes) b->draws = 0;
        stage->drawAlls = stage->windowErases = 0;
    }
};

class RouteTest : public StageTest {
protected:
    OfferLog log;
    void SetUp() override {
        stageRect = Orv2dRect(0, 0, 300, 200);
        StageTest::SetUp();
        // Tests click faster than a person: quick presses must stay single clicks.
        if (director) director->setDoubleClickPeriod(0);
    }
    // The library's loop, for a while, so that what XTest sent is handled.
    void settle(int ms = 60) {
        XSync(dpy, False);
        OrvTestRunFor(ms);
    }
    void moveTo(int x, int y, OrvStage* s = nullptr) {
        OrvTestMoveIn(dpy, (s ? s : stage)->window(), x, y);
        settle(30);
    }
    void press(int x, int y, unsigned button = 1) {
        moveTo(x, y);
        OrvTestButton(dpy, button, true);
        settle(30);
    }
    void release(unsigned button = 1) {
        OrvTestButton(dpy, button, false);
        settle(30);
    }
    void click(int x, int y, unsigned button = 1) {
        press(x, y, button);
        release(button);
    }
    // A press, motions in steps, and the release at the end.
    void drag(int x0, int y0, int x1, int y1, int steps = 4) {
        press(x0, y0);
        for (int i = 1; i <= steps; i++)
            moveTo(x0 + (x1 - x0) * i / steps, y0 + (y1 - y0) * i / steps);
        release();
    }
    void shift(bool down) {
        OrvTestKey(dpy, XK_Shift_L, down);
        settle();
    }
    // A key pressed or released on the stage.
    void key(unsigned long keysym, bool down) {
        OrvTestFocus(dpy, stage->window());
        OrvTestKey(dpy, keysym, down);
        settle();
    }
    // A 60x40 red box at x, y playing that role.
    TestBox* actor(long x, long y, OrvRole* role) {
        TestBox* b = box(x, y, 60, 40);
        b->setRole(role);
        return b;
    }
    // A key typed on the stage, with an optional modifier held.
    void type(unsigned long keysym, unsigned long modifier = 0, OrvStage* s = nullptr) {
        OrvTestFocus(dpy, (s ? s : stage)->window());
        OrvTestType(dpy, keysym, modifier);
        settle(40);
    }
    // The offers so far as "who:type", of the types asked (all when none), and forgets them.
    std::string offered(std::initializer_list<OrvEventType> types = {}) {
        static const char* names[] = {
            "",        "keyup",  "key",    "down",      "up",     "enterwindow", "leavewindow",
            "move",    "drag",   "expose", "configure", "in",     "out",         "destroyed",
            "message", "double", "enter",  "leave",     "mapped", "unmapped",    "visibility",
            "quit",    ""};
        std::string s;
        for (const Offer& o : log)
            if (!types.size() || std::find(types.begin(), types.end(), o.type) != types.end())
                s += (s.empty() ? "" : " ") + o.who + ":" + names[o.type];
        log.clear();
        return s;
    }
    // Whether the window holds exactly what a fresh repaint paints: no ghost left.
    bool sameAsRepaint() {
        std::vector<unsigned long> before = snapshot(stage);
        stage->drawAll(nullptr, 1);
        return before == snapshot(stage);
    }
    // How many pixels of the window differ from the background.
    int foreignPixels() {
        int n = 0;
        for (unsigned long p : snapshot(stage)) n += p != background;
        return n;
    }
};

class StreamTest : public XTest {
protected:
    std::vector<OrvActor*> owned;
    std::vector<OrvStage*> stages;
    std::vector<OrvMakeUp*> counted;
    void TearDown() override {
        for (OrvActor* a : owned) delete a;
        for (OrvStage* s : stages) delete s;
        for (OrvMakeUp* m : counted) OrvRelease(m);
        XTest::TearDown();
    }
    template <class T>
    T* keep(T* actor) {
        owned.push_back(actor);
        return actor;
    }
    // A counted make-up of that foreground and line width.
    OrvMakeUp* makeUp(const char* foreground, unsigned short width = 0) {
        OrvMakeUp* m =
            director->makeUpForeground(director->defaultMakeUp, director->color(foreground));
        if (width) m = director->makeUpLineWidth(m, width);
        OrvCount(m);
        counted.push_back(m);
        return m;
    }
    // The text of a 2D file of these actors, 100x80.
    std::string save(std::vector<OrvActor*> actors) {
        std::ostringstream out;
        OrvOStream writer(out);
        writer.defaultSize = Orv2dRect(0, 0, 100, 80);
        writer.write((unsigned)actors.size(), actors.data(), 1);
        writer.eof();
        return out.str();
    }
    std::string save(OrvStage* s) {
        std::ostringstream out;
        s->save(out);
        return out.str();
    }
    // Reads and keeps every object; returns them up to the first null.
    std::vector<OrvActor*> load(const std::string& text) {
        std::istringstream in(text);
        OrvIStream reader(director, in);
        unsigned n = 0;
        OrvActor** actors = reader.read(n, 1);
        std::vector<OrvActor*> result;
        for (unsigned i = 0; actors && i < n && actors[i]; i++) result.push_back(keep(actors[i]));
        delete[] actors;
        return result;
    }
    // A mapped 240x180 stage at x, deleted by the fixture.
    OrvStage* newStage(int x = 0) {
        stages.push_back(new OrvStage(director, Orv2dRect(x, 0, 240, 180), "stream", 0, 1));
        EXPECT_TRUE(OrvTestWaitViewable(dpy, stages.back()->window()));
        OrvTestRunFor(20);
        return stages.back();
    }
};

// What the callbacks of a view heard.
struct ViewLog {
    std::vector<OrvEvent> input;
    std::vector<std::vector<Orv2dRect>> exposes;
    std::vector<std::pair<Orv2dRect, Orv2dRect>> resizes;
    int quits = 0, destroys = 0;
    int count(OrvEventType t) const {
        int n = 0;
        for (const OrvEvent& e : input) n += e.type == t;
        return n;
    }
    const OrvEvent* last(OrvEventType t) const {
        for (auto i = input.rbegin(); i != input.rend(); ++i)
            if (i->type == t) return &*i;
        return nullptr;
    }
    // Installs every callback of the view, reporting here.
    void listen(OrvView* v);
};

class ViewTest : public XTest {
protected:
    OrvView* v = nullptr;
    Display* raw = nullptr;
    ViewLog log;
    void SetUp() override {
        XTest::SetUp();
        if (director) raw = OrvTestOpenDisplay();
    }
    void TearDown() override {
        if (raw) XCloseDisplay(raw);
        XTest::TearDown();
    }
    // Maps a top-level view that logs everything and forgets its first expose.
    void open(const char* title, const Orv2dRect& r) {
        v = new OrvView(director, r, title);
        log.listen(v);
        OrvTestWaitViewable(raw, v->window());
        OrvTestRunFor(30);
        log = ViewLog();
    }
    bool runUntil(const std::function<bool()>& f, int ms = 3000) {
        XSync(raw, False);
        return OrvTestRunUntil(f, ms);
    }
};

#endif
