// The director on a real X server: construction, start-up message, search
// path, X resources, close, the list of directors, pointer and clipboard.
#include <gtest/gtest.h>

#include "orv/director.h"
#include "orv/view.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/keysym.h>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "orv_xtest.h"

namespace {

bool haveDisplay() {
    return getenv("DISPLAY") != nullptr;
}

#define REQUIRE_X()                                                                                \
    if (!haveDisplay()) GTEST_SKIP() << "no DISPLAY"

// Runs `body` in a child whose standard output is captured; returns the
// output and sets the exit status.
std::string runChild(void (*body)(), int& status) {
    int fds[2];
    if (pipe(fds) != 0) return "";
    fflush(stdout);
    pid_t pid = fork();
    if (pid == 0) {
        close(fds[0]);
        dup2(fds[1], 1);
        body();
        fflush(stdout);
        _exit(77);
    }
    close(fds[1]);
    std::string out;
    char buf[256];
    ssize_t n;
    while ((n = read(fds[0], buf, sizeof buf)) > 0) out.append(buf, n);
    close(fds[0]);
    waitpid(pid, &status, 0);
    return out;
}

void openMissingDisplay() {
    new OrvDirector("nodisplay", ":1987.0", 0, nullptr);
}

// Adds resource lines to the server's RESOURCE_MANAGER for the time it
// takes to open a connection (Xlib reads the property at open time), then
// puts the old text back.
struct ServerResources {
    Display* raw;
    std::string old;
    bool had;
    explicit ServerResources(const char* lines) : raw(OrvTestOpenDisplay()), had(false) {
        Atom type;
        int format;
        unsigned long n, after;
        unsigned char* data = nullptr;
        Window root = DefaultRootWindow(raw);
        if (XGetWindowProperty(raw, root, XA_RESOURCE_MANAGER, 0, 1 << 20, False, XA_STRING, &type,
                               &format, &n, &after, &data) == Success &&
            data) {
            had = true;
            old.assign((char*)data, n);
            XFree(data);
        }
        std::string text = old + lines;
        XChangeProperty(raw, root, XA_RESOURCE_MANAGER, XA_STRING, 8, PropModeReplace,
                        (const unsigned char*)text.data(), (int)text.size());
        XSync(raw, False);
    }
    ~ServerResources() {
        Window root = DefaultRootWindow(raw);
        if (had)
            XChangeProperty(raw, root, XA_RESOURCE_MANAGER, XA_STRING, 8, PropModeReplace,
                            (const unsigned char*)old.data(), (int)old.size());
        else
            XDeleteProperty(raw, root, XA_RESOURCE_MANAGER);
        XCloseDisplay(raw);
    }
};

struct CountingProc : OrvWorkProcedure {
    static int deleted;
    int doWork(OrvDirector*) override { return 0; }
    ~CountingProc() override { deleted++; }
};
int CountingProc::deleted = 0;

struct NullTimer : OrvTimer {
    NullTimer(OrvDirector* d) : OrvTimer(d, 10, 0) {}
    void activate() override {}
};

bool inList(OrvList* l, void* v) {
    for (OrvLink* k = l ? l->first : nullptr; k; k = k->next)
        if (k->value == v) return true;
    return false;
}

}  // namespace

TEST(Director, OpensDisplayWithBothConstructors) {
    REQUIRE_X();
    OrvDirector* d = new OrvDirector("dirapp", nullptr, 0, nullptr);
    ASSERT_NE(d->display, nullptr);
    EXPECT_EQ(d->ownsDisplay, 1);
    EXPECT_STREQ(d->name, "dirapp");
    EXPECT_EQ(d->closed, 0);
    EXPECT_EQ(d->screenWidth, 1280);
    EXPECT_EQ(d->screenHeight, 1024);
    EXPECT_EQ(d->connectionNumber, ConnectionNumber((Display*)d->display));
    EXPECT_STREQ(d->systemName(), "x11");
    EXPECT_EQ(d->doubleClickPeriod, 200);
    EXPECT_EQ(d->lastEvent().type, OrvIgnored);
    EXPECT_EQ(d->depth, 24);
    ASSERT_NE(d->rootCanvas, nullptr);
    EXPECT_EQ(d->rootCanvas->drawable, DefaultRootWindow((Display*)d->display));
    EXPECT_EQ(d->rootCanvas->width, 1280u);
    EXPECT_NE(d->rootContext, nullptr) << "the GLX root context";
    EXPECT_EQ(d->glVersion, 10);
    EXPECT_NE(d->grabbedViews, nullptr);

    // An empty display name is the default display too; a null name is "Orv".
    OrvDirector* e = new OrvDirector(nullptr, "", 0, nullptr);
    EXPECT_STREQ(e->name, "Orv");
    ASSERT_NE(OrvGetAllDirectors(), nullptr);
    EXPECT_EQ(OrvGetAllDirectors()->first->value, e) << "newest first";
    EXPECT_TRUE(inList(OrvGetAllDirectors(), d));
    delete e;
    EXPECT_FALSE(inList(OrvGetAllDirectors(), e));
    delete d;
    EXPECT_FALSE(inList(OrvGetAllDirectors(), d));

    Display* raw = OrvTestOpenDisplay();
    ASSERT_NE(raw, nullptr);
    OrvDirector* h = new OrvDirector(raw, "handed");
    EXPECT_EQ(h->ownsDisplay, 0);
    EXPECT_EQ(h->display, raw);
    EXPECT_STREQ(h->name, "handed");
    h->close();
    // The connection is still the caller's and still works.
    Window root = DefaultRootWindow(raw);
    XWindowAttributes a;
    EXPECT_TRUE(XGetWindowAttributes(raw, root, &a));
    Window w = XCreateSimpleWindow(raw, root, 0, 0, 10, 10, 0, 0, 0);
    XSync(raw, False);
    EXPECT_TRUE(XGetWindowAttributes(raw, w, &a));
    delete h;
    XDestroyWindow(raw, w);
    XCloseDisplay(raw);
}

TEST(Director, MissingDisplayPrintsAndExitsWithZero) {
    int status = 0;
    std::string out = runChild(openMissingDisplay, status);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_EQ(out, "## Orvis : Can't open display.\n##         (Check your DISPLAY variable)\n");
}

TEST(Director, CloseTwiceDoesTheWorkOnce) {
    REQUIRE_X();
    OrvDirector* d = new OrvDirector("closer", nullptr, 0, nullptr);
    CountingProc::deleted = 0;
    CountingProc* p = new CountingProc;
    d->add(p);
    d->add(p);
    EXPECT_EQ(p->count, 1) << "added once only";
    NullTimer* t = new NullTimer(d);
    t->run();
    EXPECT_TRUE(t->isRunning());
    OrvView* v = new OrvView(d, Orv2dRect(10, 10, 50, 40), "closing");
    int destroyed = 0;
    v->onDestroy([](OrvView*, void* n) { ++*(int*)n; }, &destroyed);
    d->close();
    EXPECT_EQ(d->closed, 1);
    EXPECT_EQ(CountingProc::deleted, 1);
    EXPECT_EQ(destroyed, 1);
    EXPECT_EQ(d->display, nullptr) << "an owned display is closed";
    EXPECT_EQ(d->rootCanvas, nullptr);
    d->close();
    EXPECT_EQ(CountingProc::deleted, 1);
    EXPECT_EQ(destroyed, 1);
    delete d;
    EXPECT_EQ(CountingProc::deleted, 1);
}

TEST(Director, SearchPathFromEnvironmentAndResources) {
    REQUIRE_X();
    setenv("ORVPATH", "/env/one:/env/two", 1);
    setenv("ORVHOME", "/home/orv", 1);
    OrvDirector* d;
    {
        ServerResources res("pathapp.OrvPath:\t/res/dir   \nOrv.orvTestKey: general\n"
                            "pathapp.orvTestKey: specific\nOrv.orvTestEmpty:   \n");
        d = new OrvDirector("pathapp", nullptr, 0, nullptr);
    }
    EXPECT_STREQ(d->path, "/home/orv/data/zedtorv:/home/orv/data/texture:/home/orv/data/material:"
                          "/home/orv/data/vfont:/home/orv/data/icons:/home/orv/data/orv:/res/dir:"
                          "/env/one:/env/two:.");
    // The application's name first, then the class "Orv"; blanks at the end cut.
    EXPECT_STREQ(d->resource("OrvPath", "x"), "/res/dir");
    EXPECT_STREQ(d->resource("orvTestKey", "x"), "specific");
    EXPECT_STREQ(d->resource("orvTestEmpty", "dflt"), "dflt");
    EXPECT_STREQ(d->resource("orvTestAbsent", "dflt"), "dflt");
    EXPECT_EQ(d->resource("orvTestAbsent", nullptr), nullptr);
    delete d;

    {
        ServerResources res("Orv.OrvPath: /class/dir\n");
        unsetenv("ORVPATH");
        unsetenv("ORVHOME");
        d = new OrvDirector("otherapp", nullptr, 0, nullptr);
    }
    EXPECT_STREQ(d->path, "/class/dir:.");
    EXPECT_STREQ(d->resource("OrvPath", nullptr), "/class/dir");
    delete d;

    d = new OrvDirector("plainapp", nullptr, 0, nullptr);
    EXPECT_STREQ(d->path, ".");
    EXPECT_EQ(d->doNotOptimize, 0);
    delete d;
    setenv("ORVDONOTOPTIMIZE", "", 1);
    d = new OrvDirector("plainapp", nullptr, 0, nullptr);
    EXPECT_EQ(d->doNotOptimize, 1);
    delete d;
    unsetenv("ORVDONOTOPTIMIZE");
}

TEST(Director, PathEditingAndFindInPath) {
    REQUIRE_X();
    unsetenv("ORVPATH");
    unsetenv("ORVHOME");
    OrvDirector d("findapp", nullptr, 0, nullptr);
    char dirA[] = "/tmp/orvfindA.XXXXXX";
    char dirB[] = "/tmp/orvfindB.XXXXXX";
    ASSERT_NE(mkdtemp(dirA), nullptr);
    ASSERT_NE(mkdtemp(dirB), nullptr);
    std::string fileA = std::string(dirA) + "/both.orv";
    std::string fileB = std::string(dirB) + "/both.orv";
    std::string onlyB = std::string(dirB) + "/only.orv";
    for (const std::string& f : {fileA, fileB, onlyB}) {
        FILE* fp = fopen(f.c_str(), "w");
        ASSERT_NE(fp, nullptr);
        fclose(fp);
    }

    d.setPath("/nonexistent");
    d.appendToPath(dirB);
    d.prependToPath((std::string(dirA) + "/").c_str());
    EXPECT_EQ(std::string(d.path), std::string(dirA) + "/:/nonexistent:" + dirB);
    // The first readable element wins; a trailing slash gives no double slash.
    EXPECT_EQ(std::string(d.findInPath("both.orv")), fileA);
    EXPECT_EQ(std::string(d.findInPath("only.orv")), onlyB);
    EXPECT_EQ(d.findInPath("absent.orv"), nullptr);
    EXPECT_EQ(d.findInPath(""), nullptr);
    EXPECT_EQ(d.findInPath(nullptr), nullptr);
    // An absolute name ignores the path and comes back as given.
    const char* abs = onlyB.c_str();
    EXPECT_EQ(d.findInPath(abs), abs);
    EXPECT_EQ(d.findInPath("/nonexistent/only.orv"), nullptr);
    // An empty element stands for the root.
    d.setPath(":/nowhere");
    std::string rel = std::string(dirA + 1) + "/both.orv";  // without the leading slash
    EXPECT_EQ(std::string(d.findInPath(rel.c_str())), fileA);

    // Without a path, a relative name is taken as it stands.
    d.setPath(nullptr);
    EXPECT_EQ(d.path, nullptr);
    ASSERT_EQ(chdir(dirB), 0);
    const char* plain = "only.orv";
    EXPECT_EQ(d.findInPath(plain), plain);
    EXPECT_EQ(d.findInPath("both2.orv"), nullptr);
    d.appendToPath("a");
    EXPECT_STREQ(d.path, "a");
    d.setPath(nullptr);
    d.prependToPath("b");
    EXPECT_STREQ(d.path, "b");
    ASSERT_EQ(chdir("/"), 0);

    // A long file name grows the shared buffer.
    std::string longName(600, 'n');
    d.setPath(dirA);
    EXPECT_EQ(d.findInPath(longName.c_str()), nullptr);
    EXPECT_EQ(std::string(d.findInPath("both.orv")), fileA);

    for (const std::string& f : {fileA, fileB, onlyB}) unlink(f.c_str());
    rmdir(dirA);
    rmdir(dirB);
}

TEST(Director, ClipboardRoundTripThroughTheServer) {
    REQUIRE_X();
    OrvDirector d("clip", nullptr, 0, nullptr);
    d.setClipboard("hello orvis");
    d.flush();
    int length = -1;
    char* text = d.getClipboard(length);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(length, 11);
    EXPECT_STREQ(text, "hello orvis");

    // Another client sees it: it lives in the server's cut buffer.
    Display* raw = OrvTestOpenDisplay();
    int n = 0;
    char* bytes = XFetchBytes(raw, &n);
    ASSERT_NE(bytes, nullptr);
    EXPECT_EQ(std::string(bytes, n), "hello orvis");
    XFree(bytes);
    XStoreBytes(raw, "from outside", 12);
    XSync(raw, False);
    text = d.getClipboard(length);
    EXPECT_STREQ(text, "from outside");
    EXPECT_EQ(length, 12);

    // An explicit length takes only that much.
    d.setClipboard("abcdef", 3);
    text = d.getClipboard(length);
    EXPECT_STREQ(text, "abc");
    EXPECT_EQ(length, 3);
    XCloseDisplay(raw);
}

TEST(Director, PointerWarpAndQuery) {
    REQUIRE_X();
    OrvTestInputLock lock;
    OrvDirector d("pointer", nullptr, 0, nullptr);
    d.movePointer(Orv2dPoint(300, 200));
    long x = 0, y = 0;
    unsigned short mods = 0xFFFF;
    EXPECT_TRUE(d.queryPointer(x, y, mods));
    EXPECT_EQ(x, 300);
    EXPECT_EQ(y, 200);
    EXPECT_EQ(mods, 0);
    d.translatePointer(5, -3);
    d.queryPointer(x, y, mods);
    EXPECT_EQ(x, 305);
    EXPECT_EQ(y, 197);
    Display* raw = OrvTestOpenDisplay();
    OrvTestKey(raw, XK_Shift_L, true);
    OrvTestButton(raw, 1, true);
    XSync(raw, False);
    d.queryPointer(x, y, mods);
    EXPECT_EQ(mods, OrvButton1Modifier | OrvShiftModifier);
    OrvTestButton(raw, 1, false);
    OrvTestKey(raw, XK_Shift_L, false);
    XSync(raw, False);
    d.queryPointer(x, y, mods);
    EXPECT_EQ(mods, 0);
    d.bell(500);  // clamped, must not raise an X error
    d.bell(-500);
    XSync((Display*)d.display, False);
    XCloseDisplay(raw);
}

TEST(Director, EightBitScreenWithoutGLStaysUsable) {
    const char* name8 = getenv("ORV_TEST_DISPLAY8");
    if (!name8) GTEST_SKIP() << "no 8-bit screen";
    testing::internal::CaptureStdout();
    OrvDirector* d = new OrvDirector("eight", name8, 0, nullptr);
    std::string out = testing::internal::GetCapturedStdout();
    EXPECT_NE(out.find("OrvDirector::initContext : Can't find a visual.\n"), std::string::npos)
        << out;
    EXPECT_EQ(d->rootContext, nullptr);
    EXPECT_EQ(d->depth, 8);
    // 2D windows still work on it.
    OrvView* v = new OrvView(d, Orv2dRect(20, 30, 64, 48), "eight-bit");
    Display* raw = OrvTestOpenDisplay(name8);
    ASSERT_NE(raw, nullptr);
    EXPECT_TRUE(OrvTestWaitViewable(raw, v->window()));
    char* title = nullptr;
    ASSERT_TRUE(XFetchName(raw, v->window(), &title));
    EXPECT_STREQ(title, "eight-bit");
    XFree(title);
    XWindowAttributes a;
    XGetWindowAttributes(raw, v->window(), &a);
    EXPECT_EQ(a.depth, 8);
    delete v;
    delete d;
    XCloseDisplay(raw);
}

TEST(Director, ViewsByNameAndByPoint) {
    REQUIRE_X();
    OrvTestInputLock lock;  // windows of other tests could stand over these
    OrvDirector d("finder", nullptr, 0, nullptr);
    OrvView* a = new OrvView(&d, Orv2dRect(820, 560, 200, 150), "A");
    OrvView* b = new OrvView(&d, Orv2dRect(300, 760, 200, 150), "B");
    OrvView* child = new OrvView(a, Orv2dRect(20, 30, 50, 40));
    Display* raw = OrvTestOpenDisplay();
    ASSERT_TRUE(OrvTestWaitViewable(raw, child->window()));
    EXPECT_EQ(d.view(a->name), a);
    EXPECT_EQ(d.view(b->name), b);
    EXPECT_EQ(d.view(child->name), child);
    EXPECT_EQ(d.view("nosuchview"), nullptr);
    EXPECT_EQ(d.findView(b->window()), b);
    // Window borders: the child is at 820+1+20, 560+1+30 on the root.
    EXPECT_EQ(d.view(Orv2dPoint(850, 700)), a);
    EXPECT_EQ(d.view(Orv2dPoint(845, 595)), child);
    EXPECT_EQ(d.view(Orv2dPoint(350, 780)), b);
    EXPECT_EQ(d.view(Orv2dPoint(1270, 1020)), nullptr);
    d.removeView(b);
    EXPECT_EQ(d.findView(b->window()), nullptr);
    d.addView(b);
    EXPECT_EQ(d.findView(b->window()), b);
    delete a;
    XSync((Display*)d.display, False);
    EXPECT_EQ(d.view(Orv2dPoint(850, 700)), nullptr);
    delete b;
    XCloseDisplay(raw);
}
