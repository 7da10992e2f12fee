// The director on a real X server: construction, start-up message, search path, X resources,
// close, the list of directors, pointer and clipboard.
#include <X11/Xatom.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "orv_fixtures.h"

namespace {

#define REQUIRE_X()                                                                                \
    if (!getenv("DISPLAY")) GTEST_SKIP() << "no DISPLAY"

// Adds resource lines to the server's RESOURCE_MANAGER for the time it takes to open a connection
// (Xlib reads the property at open time), then puts the old text back.
struct ServerResources {
    Display* raw;
    std::string old;
    bool had = false;
    explicit ServerResources(const char* lines) : raw(OrvTestOpenDisplay()) {
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
        set(old + lines);
    }
    void set(const std::string& text) {
        XChangeProperty(raw, DefaultRootWindow(raw), XA_RESOURCE_MANAGER, XA_STRING, 8,
                        PropModeReplace, (const unsigned char*)text.data(), (int)text.size());
        XSync(raw, False);
    }
    ~ServerResources() {
        if (had)
            set(old);
        else
            XDeleteProperty(raw, DefaultRootWindow(raw), XA_RESOURCE_MANAGER);
        XCloseDisplay(raw);
    }
};

bool inList(OrvList* l, void* v) {
    return l && l->find(v);
}

}  // namespace

class DirectorTest : public XTest {};

TEST(Director, OpensDisplayWithBothConstructors) {
    REQUIRE_X();
    OrvDirector* d = new OrvDirector("dirapp", nullptr, 0, nullptr);
    ASSERT_TRUE(d->display && !strcmp(d->name, "dirapp"));
    EXPECT_EQ(std::vector<long>({1, 0, 1280, 1024, 200, 24, 10}),
              std::vector<long>({d->ownsDisplay, d->closed, d->screenWidth, d->screenHeight,
                                 d->doubleClickPeriod, d->depth, d->glVersion}));
    EXPECT_STREQ(d->systemName(), "x11");
    EXPECT_EQ(d->rootCanvas->drawable, DefaultRootWindow((Display*)d->display));
    EXPECT_NE(d->rootContext, nullptr) << "the GLX root context";
    // An empty display name is the default display too; a null name is "Orv".
    OrvDirector* e = new OrvDirector(nullptr, "", 0, nullptr);
    EXPECT_STREQ(e->name, "Orv");
    EXPECT_EQ(OrvGetAllDirectors()->first->value, e) << "newest first";
    EXPECT_TRUE(inList(OrvGetAllDirectors(), d));
    delete e;
    delete d;
    EXPECT_FALSE(inList(OrvGetAllDirectors(), e) || inList(OrvGetAllDirectors(), d));
    // A handed connection stays the caller's, and works after close.
    Display* raw = OrvTestOpenDisplay();
    OrvDirector* h = new OrvDirector(raw, "handed");
    EXPECT_TRUE(h->ownsDisplay == 0 && h->display == raw);
    h->close();
    Window w = XCreateSimpleWindow(raw, DefaultRootWindow(raw), 0, 0, 10, 10, 0, 0, 0);
    XWindowAttributes a;
    EXPECT_TRUE(XGetWindowAttributes(raw, w, &a));
    delete h;
    XDestroyWindow(raw, w);
    XCloseDisplay(raw);
}

TEST(Director, MissingDisplayPrintsAndExitsWithZero) {
    int fds[2];
    ASSERT_EQ(pipe(fds), 0);
    fflush(stdout);
    pid_t pid = fork();
    if (pid == 0) {
        dup2(fds[1], 1);
        new OrvDirector("nodisplay", ":1987.0", 0, nullptr);
        fflush(stdout);
        _exit(77);
    }
    close(fds[1]);
    std::string out;
    char buf[256];
    for (ssize_t n; (n = read(fds[0], buf, sizeof buf)) > 0;) out.append(buf, n);
    close(fds[0]);
    int status = 0;
    waitpid(pid, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    EXPECT_EQ(out, "## Orvis : Can't open display.\n##         (Check your DISPLAY variable)\n");
}

TEST_F(DirectorTest, CloseTwiceDoesTheWorkOnce) {
    static int deleted = 0;
    struct CountingProc : OrvWorkProcedure {
        int doWork(OrvDirector*) override { return 0; }
        ~CountingProc() override { deleted++; }
    };
    CountingProc* p = new CountingProc;
    director->add(p);
    struct NullTimer : OrvTimer {
        explicit NullTimer(OrvDirector* d) : OrvTimer(d, 10, 0) {}
        void activate() override {}
    };
    (new NullTimer(director))->run();
    OrvView* v = new OrvView(director, Orv2dRect(10, 10, 50, 40), "closing");
    int destroyed = 0;
    v->onDestroy([](OrvView*, void* n) { ++*(int*)n; }, &destroyed);
    for (int i = 0; i < 2; i++) {
        director->close();
        EXPECT_EQ(std::vector<int>({1, 1, 1}),
                  std::vector<int>({director->closed, deleted, destroyed}));
        EXPECT_FALSE(director->display || director->rootCanvas) << "an owned display is closed";
    }
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
    delete d;
    unsetenv("ORVPATH");
    unsetenv("ORVHOME");
    {
        ServerResources res("Orv.OrvPath: /class/dir\n");
        d = new OrvDirector("otherapp", nullptr, 0, nullptr);
    }
    EXPECT_STREQ(d->path, "/class/dir:.");
    delete d;
    d = new OrvDirector("plainapp", nullptr, 0, nullptr);
    EXPECT_STREQ(d->path, ".");
    delete d;
}

TEST_F(DirectorTest, PathEditingAndFindInPath) {
    char dirA[] = "/tmp/orvfindA.XXXXXX", dirB[] = "/tmp/orvfindB.XXXXXX";
    ASSERT_TRUE(mkdtemp(dirA) && mkdtemp(dirB));
    std::string fileA = std::string(dirA) + "/both.orv", fileB = std::string(dirB) + "/both.orv",
                onlyB = std::string(dirB) + "/only.orv";
    for (const std::string& f : {fileA, fileB, onlyB}) fclose(fopen(f.c_str(), "w"));
    director->setPath("/nonexistent");
    director->appendToPath(dirB);
    director->prependToPath((std::string(dirA) + "/").c_str());
    EXPECT_EQ(std::string(director->path), std::string(dirA) + "/:/nonexistent:" + dirB);
    // The first readable element wins; a trailing slash gives no double slash.
    EXPECT_EQ(std::string(director->findInPath("both.orv")), fileA);
    EXPECT_EQ(std::string(director->findInPath("only.orv")), onlyB);
    for (const char* none : {"absent.orv", "", (const char*)nullptr})
        EXPECT_EQ(director->findInPath(none), nullptr);
    // An absolute name ignores the path and comes back as given.
    EXPECT_EQ(director->findInPath(onlyB.c_str()), onlyB.c_str());
    // An empty element stands for the root.
    director->setPath(":/nowhere");
    EXPECT_EQ(std::string(director->findInPath((std::string(dirA + 1) + "/both.orv").c_str())),
              fileA);
    // Without a path, a relative name is taken as it stands.
    director->setPath(nullptr);
    ASSERT_EQ(chdir(dirB), 0);
    const char* plain = "only.orv";
    EXPECT_TRUE(director->findInPath(plain) == plain && !director->findInPath("both2.orv"));
    director->appendToPath("a");
    EXPECT_STREQ(director->path, "a");
    ASSERT_EQ(chdir("/"), 0);
    for (const std::string& f : {fileA, fileB, onlyB}) unlink(f.c_str());
    rmdir(dirA);
    rmdir(dirB);
}

TEST_F(DirectorTest, ClipboardPointerAndBell) {
    director->setClipboard("hello orvis");
    director->flush();
    int length = -1;
    EXPECT_TRUE(!strcmp(director->getClipboard(length), "hello orvis") && length == 11);
    // Another client sees it: it lives in the server's cut buffer.
    Display* raw = OrvTestOpenDisplay();
    int n = 0;
    char* bytes = XFetchBytes(raw, &n);
    EXPECT_EQ(std::string(bytes, n), "hello orvis");
    XFree(bytes);
    XStoreBytes(raw, "from outside", 12);
    XSync(raw, False);
    EXPECT_STREQ(director->getClipboard(length), "from outside");
    director->setClipboard("abcdef", 3);  // an explicit length takes only that much
    EXPECT_TRUE(!strcmp(director->getClipboard(length), "abc") && length == 3);
    // The pointer: warped, moved by a delta, and queried with its modifiers.
    director->movePointer(Orv2dPoint(300, 200));
    director->translatePointer(5, -3);
    long x = 0, y = 0;
    unsigned short mods = 0xFFFF;
    EXPECT_TRUE(director->queryPointer(x, y, mods));
    EXPECT_EQ(std::vector<long>({305, 197, 0}), std::vector<long>({x, y, mods}));
    OrvTestKey(raw, XK_Shift_L, true);
    OrvTestButton(raw, 1, true);
    XSync(raw, False);
    director->queryPointer(x, y, mods);
    EXPECT_EQ(mods, OrvButton1Modifier | OrvShiftModifier);
    OrvTestButton(raw, 1, false);
    OrvTestKey(raw, XK_Shift_L, false);
    XCloseDisplay(raw);
}

TEST(Director, EightBitScreenWithoutGLStaysUsable) {
    const char* name8 = getenv("ORV_TEST_DISPLAY8");
    if (!name8) GTEST_SKIP() << "no 8-bit screen";
    OrvDirector* d = nullptr;
    std::string out = OrvTestOutput([&] { d = new OrvDirector("eight", name8, 0, nullptr); });
    EXPECT_NE(out.find("OrvDirector::initContext : Can't find a visual.\n"), std::string::npos)
        << out;
    EXPECT_TRUE(!d->rootContext && d->depth == 8);
    // 2D windows still work on it.
    Display* raw = OrvTestOpenDisplay(name8);
    EXPECT_TRUE(
        OrvTestWaitViewable(raw, (new OrvView(d, Orv2dRect(20, 30, 64, 48), "8"))->window()));
    delete d;
    XCloseDisplay(raw);
}

TEST_F(DirectorTest, ViewsByNameAndByPoint) {
    OrvView* a = new OrvView(director, Orv2dRect(820, 560, 200, 150), "A");
    OrvView* b = new OrvView(director, Orv2dRect(300, 760, 200, 150), "B");
    OrvView* child = new OrvView(a, Orv2dRect(20, 30, 50, 40));
    ASSERT_TRUE(OrvTestWaitViewable(dpy, child->window()));
    EXPECT_EQ(director->view(child->name), child);
    // Window borders: the child is at 820+1+20, 560+1+30 on the root.
    EXPECT_EQ(std::vector<OrvView*>({a, child, b, nullptr}),
              std::vector<OrvView*>(
                  {director->view(Orv2dPoint(850, 700)), director->view(Orv2dPoint(845, 595)),
                   director->view(Orv2dPoint(350, 780)), director->view(Orv2dPoint(1270, 1020))}));
    director->removeView(b);
    EXPECT_EQ(director->findView(b->window()), nullptr);
    director->addView(b);
    EXPECT_EQ(director->findView(b->window()), b);
    delete a;
    XSync(dpy, False);
    EXPECT_EQ(director->view(Orv2dPoint(850, 700)), nullptr);
}
