// The wait step on a real X server: timers, work procedures, other
// descriptors, sleeping and the clock, grabs, and the X error handler.
#include <gtest/gtest.h>

#include "orv/director.h"
#include "orv/view.h"

#include <X11/Xlib.h>
#include <cerrno>
#include <fcntl.h>
#include <cstdlib>
#include <cstring>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "orv_xtest.h"

namespace {

#define REQUIRE_X()                                                                                \
    if (!getenv("DISPLAY")) GTEST_SKIP() << "no DISPLAY"

long nowMs() {
    struct timeval tv;
    gettimeofday(&tv, nullptr);
    return tv.tv_sec * 1000L + tv.tv_usec / 1000;
}

std::vector<int> fired;

struct RecordTimer : OrvTimer {
    int id;
    int times = 0;
    RecordTimer(OrvDirector* d, int ms, int id, int repeating = 0) : OrvTimer(d, 0, ms), id(id) {
        oneShot = repeating ? 0 : 1;
    }
    void activate() override {
        times++;
        fired.push_back(id);
    }
};

struct Busy : OrvWorkProcedure {
    int calls = 0;
    int result;
    explicit Busy(int result) : result(result) {}
    int doWork(OrvDirector*) override {
        calls++;
        return result;
    }
};

struct InputLog {
    std::vector<int> inputs;
    std::vector<int> closes;
    std::string text;
};

void onPipeInput(int fd, void* data) {
    InputLog* log = (InputLog*)data;
    log->inputs.push_back(fd);
    char buf[64];
    ssize_t n = read(fd, buf, sizeof buf);
    if (n > 0) log->text.append(buf, n);
}

void onPipeClose(int fd, void* data) {
    ((InputLog*)data)->closes.push_back(fd);
}

// Wait steps (waiting on) until `done` or `ms` pass.
template <class F>
bool waitSteps(const OrvDirector& d, F done, int ms) {
    long end = nowMs() + ms;
    while (!done()) {
        if (nowMs() > end) return false;
        d.waitAndDispatchEvents();
    }
    return true;
}

}  // namespace

TEST(Loop, TimersFireInOrderFromTheWaitStep) {
    REQUIRE_X();
    OrvDirector d("timers", nullptr, 0, nullptr);
    fired.clear();
    RecordTimer late(&d, 60, 3), early(&d, 10, 1), middle(&d, 30, 2);
    RecordTimer never(&d, 5, 9);  // never given run: never fires
    EXPECT_EQ(d.timers->length(), 4u);
    long start = nowMs();
    late.run();
    early.run();
    middle.run();
    EXPECT_TRUE(late.isRunning());
    EXPECT_TRUE(waitSteps(
        d, [&] { return fired.size() >= 3; }, 2000));
    EXPECT_GE(nowMs() - start, 59);
    ASSERT_EQ(fired, (std::vector<int>{1, 2, 3}));
    // One-shot timers end suspended.
    EXPECT_FALSE(early.isRunning());
    EXPECT_FALSE(late.isRunning());
    OrvTestRunFor(40);  // nothing runs: a waiting step would block
    EXPECT_EQ(fired.size(), 3u);
    EXPECT_EQ(never.times, 0);

    // A repeating timer is scheduled again after each activation, until suspended.
    fired.clear();
    RecordTimer tick(&d, 10, 7, 1);
    tick.run();
    EXPECT_TRUE(waitSteps(
        d, [&] { return tick.times >= 4; }, 2000));
    EXPECT_TRUE(tick.isRunning());
    tick.suspend();
    int seen = tick.times;
    OrvTestRunFor(40);  // nothing runs: a waiting step would block
    EXPECT_EQ(tick.times, seen);

    // The non-waiting step fires due timers as well.
    early.run();
    usleep(15000);
    OrvDispatchToTimers();
    EXPECT_EQ(early.times, 2);

    // run with arguments sets the period; a zero period suspends.
    middle.run(1, 500);
    EXPECT_EQ(middle.period, 1500u);
    struct timeval now;
    gettimeofday(&now, nullptr);
    long expiry = middle.record->expirySeconds * 1000 + middle.record->expiryMicroseconds / 1000;
    long expected = now.tv_sec * 1000 + now.tv_usec / 1000 + 1500;
    EXPECT_NEAR((double)expiry, (double)expected, 20.0);
    EXPECT_LE(middle.record->expiryMicroseconds, 1000000);
    middle.period = 0;
    middle.run();
    EXPECT_FALSE(middle.isRunning());

    // A deleted timer leaves the director.
    RecordTimer* gone = new RecordTimer(&d, 10, 5);
    gone->run();
    unsigned n = d.timers->length();
    delete gone;
    EXPECT_EQ(d.timers->length(), n - 1);
    OrvTestRunFor(30);  // nothing runs: a waiting step would block
    EXPECT_EQ(std::count(fired.begin(), fired.end(), 5), 0);
}

TEST(Loop, WorkProcedures) {
    REQUIRE_X();
    OrvDirector d("work", nullptr, 0, nullptr);
    Busy* busy = new Busy(1);
    Busy* idle = new Busy(0);
    Busy* off = new Busy(1);
    off->enabled = 0;
    d.add(busy);
    d.add(idle);
    d.add(off);
    d.add(busy);
    EXPECT_EQ(busy->count, 1);
    EXPECT_EQ(d.workProcedures->length(), 3u);
    // A busy procedure keeps select from blocking: these steps return at once.
    long start = nowMs();
    for (int i = 0; i < 5; i++) d.waitAndDispatchEvents();
    EXPECT_LT(nowMs() - start, 500);
    EXPECT_EQ(busy->calls, 5);
    EXPECT_EQ(idle->calls, 5);
    EXPECT_EQ(off->calls, 0);
    OrvDispatchToWorkProcs();
    EXPECT_EQ(busy->calls, 6);
    EXPECT_EQ(off->calls, 0);
    OrvDispatchToTimers();
    EXPECT_EQ(busy->calls, 7);
    busy->count++;  // a second holder keeps it alive through remove
    d.remove(busy);
    EXPECT_EQ(busy->count, 1);
    EXPECT_EQ(d.workProcedures->length(), 2u);
    OrvDispatchToTimers();
    EXPECT_EQ(busy->calls, 7);
    EXPECT_EQ(idle->calls, 8);
    delete busy;
}

TEST(Loop, OtherDescriptorsAndClosedOnes) {
    REQUIRE_X();
    OrvDirector d("pipes", nullptr, 0, nullptr);
    int p[2], q[2];
    ASSERT_EQ(pipe(p), 0);
    ASSERT_EQ(pipe(q), 0);
    ASSERT_LT(q[1], 20);
    InputLog log;
    OrvRegisterInput(p[0], onPipeInput, &log, onPipeClose);
    // With neither timers nor work, one waiting step blocks until input comes.
    long start = nowMs();
    pid_t writer = fork();
    if (writer == 0) {
        usleep(150000);
        if (write(p[1], "abc", 3) != 3) _exit(1);
        _exit(0);
    }
    d.waitAndDispatchEvents();
    EXPECT_GE(nowMs() - start, 140);
    waitpid(writer, nullptr, 0);
    ASSERT_EQ(log.inputs.size(), 1u);
    EXPECT_EQ(log.inputs[0], p[0]);
    EXPECT_EQ(log.text, "abc");

    // A descriptor closed behind the loop's back: select fails with EBADF, the
    // owner hears of it once through onClose, and it is dropped from the table.
    int doomed = dup(q[0]);
    ASSERT_LT(doomed, 20);
    OrvRegisterInput(doomed, onPipeInput, &log, onPipeClose);
    close(doomed);
    d.waitAndDispatchEvents();
    ASSERT_EQ(log.closes, std::vector<int>{doomed});
    ASSERT_EQ(write(p[1], "de", 2), 2);
    EXPECT_TRUE(waitSteps(
        d, [&] { return log.text == "abcde"; }, 2000));
    EXPECT_EQ(log.closes.size(), 1u);

    OrvUnRegisterInput(p[0]);
    ASSERT_EQ(write(p[1], "f", 1), 1);
    Busy busy(1);  // keeps the steps from blocking on the silent pipe
    busy.count = 1;
    d.add(&busy);
    for (int i = 0; i < 3; i++) d.waitAndDispatchEvents();
    EXPECT_EQ(log.text, "abcde");
    d.remove(&busy);
    // Descriptors past the table are not served.
    OrvRegisterInput(25, onPipeInput, &log, onPipeClose);
    OrvUnRegisterInput(25);
    close(p[0]);
    close(p[1]);
    close(q[0]);
    close(q[1]);
}

TEST(Loop, SleepAndClock) {
    // Standard input is replaced by a pipe so that its state is known.
    int p[2];
    ASSERT_EQ(pipe(p), 0);
    int saved = dup(0);
    dup2(p[0], 0);
    long start = nowMs();
    OrvUSleep(30000);
    long slept = nowMs() - start;
    EXPECT_GE(slept, 29);
    EXPECT_LT(slept, 300);
    // Input on descriptor 0 ends the sleep early.
    ASSERT_EQ(write(p[1], "x", 1), 1);
    start = nowMs();
    OrvUSleep(2000000);
    EXPECT_LT(nowMs() - start, 500);
    dup2(saved, 0);
    close(saved);
    close(p[0]);
    close(p[1]);

    struct timeval tv;
    gettimeofday(&tv, nullptr);
    unsigned int expected = ((unsigned int)tv.tv_sec * 1000000u + (unsigned int)tv.tv_usec) / 1000;
    unsigned int t = OrvGetTime();
    EXPECT_LT(t - expected, 5u);
    usleep(20000);
    unsigned int t2 = OrvGetTime();
    EXPECT_GE(t2 - t, 19u);
    EXPECT_LT(t2 - t, 300u);
}

TEST(Loop, NoDirectorReportsAndReturns) {
    if (OrvGetAllDirectors() && OrvGetAllDirectors()->first) GTEST_SKIP() << "a director is open";
    testing::internal::CaptureStdout();
    OrvDispatchToTimers();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "WaitForEvents: No opened display...");
}

TEST(Loop, DirectorGrabsStack) {
    REQUIRE_X();
    OrvTestInputLock lock;
    OrvDirector d("grabs", nullptr, 0, nullptr);
    OrvView* a = new OrvView(&d, Orv2dRect(40, 40, 100, 80), "a");
    OrvView* b = new OrvView(&d, Orv2dRect(300, 40, 100, 80), "b");
    OrvView* c = new OrvView(&d, Orv2dRect(600, 40, 100, 80), "c");
    EXPECT_EQ(d.grabView(), nullptr);
    d.grab(a);
    d.grab(b);
    EXPECT_EQ(d.grabView(), b);
    EXPECT_TRUE(d.isGrabbed(a));
    EXPECT_TRUE(d.isGrabbed(b));
    EXPECT_FALSE(d.isGrabbed(c));
    d.unGrab(b);
    EXPECT_EQ(d.grabView(), a);

    // Input for c goes to the grabbing view, coordinates as c saw them.
    std::vector<std::pair<OrvView*, OrvEvent>> got;
    auto record = [](OrvView* v, const OrvEvent& e, void* data) {
        ((std::vector<std::pair<OrvView*, OrvEvent>>*)data)->push_back({v, e});
    };
    a->onInput(record, &got);
    c->onInput(record, &got);
    Display* raw = OrvTestOpenDisplay();
    ASSERT_TRUE(OrvTestWaitViewable(raw, c->window()));
    OrvTestMoveIn(raw, c->window(), 10, 12);
    OrvTestClick(raw, 1);
    XSync(raw, False);
    ASSERT_TRUE(OrvTestRunUntil([&] {
        for (auto& g : got)
            if (g.second.type == OrvButtonUp) return true;
        return false;
    }));
    for (auto& g : got) {
        EXPECT_EQ(g.first, a);
        if (g.second.type == OrvButtonDown) {
            EXPECT_EQ(g.second.x, 10);
            EXPECT_EQ(g.second.y, 12);
            EXPECT_EQ(g.second.window, c->window());
        }
    }
    d.unGrab(a);
    got.clear();
    OrvTestClick(raw, 1);
    XSync(raw, False);
    ASSERT_TRUE(OrvTestRunUntil([&] { return got.size() >= 2; }));
    EXPECT_EQ(got[0].first, c);

    // The X pointer grab of a view.
    EXPECT_EQ(b->grab(), 1);
    EXPECT_EQ(b->grabbed, 1);
    b->unGrab();
    EXPECT_EQ(b->grabbed, 0);
    // A deleted view leaves the grab stack.
    d.grab(c);
    delete c;
    EXPECT_EQ(d.grabView(), nullptr);
    delete a;
    delete b;
    XCloseDisplay(raw);
}

TEST(Loop, XErrorsAreReportedAndSurvived) {
    REQUIRE_X();
    OrvDirector d("xerror", nullptr, 0, nullptr);
    Display* dpy = (Display*)d.display;
    testing::internal::CaptureStdout();
    XMapWindow(dpy, 0x1234567);
    XSync(dpy, False);
    std::string out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(out.rfind("X error [", 0), 0u) << out;
    EXPECT_NE(out.find("] X_MapWindow (0) BadWindow (invalid Window parameter) (291 . 17767)\n"),
              std::string::npos)
        << out;
    // The connection goes on.
    XWindowAttributes a;
    EXPECT_TRUE(XGetWindowAttributes(dpy, DefaultRootWindow(dpy), &a));
}
