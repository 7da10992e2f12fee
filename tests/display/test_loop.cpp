// The wait step on a real X server: timers, work procedures, other descriptors, sleeping and the
// clock, grabs, and the X error handler.
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>

#include "orv_fixtures.h"

namespace {

long nowMs() {
    struct timeval tv;
    gettimeofday(&tv, nullptr);
    return tv.tv_sec * 1000L + tv.tv_usec / 1000;
}

std::vector<int> fired;

struct RecordTimer : OrvTimer {
    int mark, times = 0;
    RecordTimer(OrvDirector* d, int ms, int m, int repeating = 0) : OrvTimer(d, 0, ms), mark(m) {
        oneShot = repeating ? 0 : 1;
    }
    void activate() override {
        times++;
        fired.push_back(mark);
    }
};

struct Busy : OrvWorkProcedure {
    int calls = 0, answer;
    explicit Busy(int a) : answer(a) {}
    int doWork(OrvDirector*) override {
        calls++;
        return answer;
    }
};

struct InputLog {
    std::vector<int> inputs, closes;
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

// Waiting steps until `done` or `ms` pass.
bool waitSteps(const OrvDirector* d, const std::function<bool()>& done, int ms = 2000) {
    long end = nowMs() + ms;
    while (!done()) {
        if (nowMs() > end) return false;
        d->waitAndDispatchEvents();
    }
    return true;
}

}  // namespace

class Loop : public XTest {};

TEST_F(Loop, TimersFireInOrderFromTheWaitStep) {
    fired.clear();
    RecordTimer late(director, 60, 3), early(director, 10, 1), middle(director, 30, 2);
    RecordTimer never(director, 5, 9);  // never given run: never fires
    EXPECT_EQ(director->timers->length(), 4u);
    long start = nowMs();
    late.run();
    early.run();
    middle.run();
    EXPECT_TRUE(waitSteps(director, [&] { return fired.size() >= 3; }));
    EXPECT_GE(nowMs() - start, 59);
    ASSERT_EQ(fired, (std::vector<int>{1, 2, 3}));
    EXPECT_FALSE(early.isRunning() || late.isRunning());  // one-shot timers end suspended
    OrvTestRunFor(40);  // nothing runs: a waiting step would block
    EXPECT_EQ(fired.size(), 3u);
    // A repeating timer is scheduled again after each activation, until suspended.
    RecordTimer tick(director, 10, 7, 1);
    tick.run();
    EXPECT_TRUE(waitSteps(director, [&] { return tick.times >= 4; }) && tick.isRunning());
    tick.suspend();
    int seen = tick.times;
    OrvTestRunFor(40);
    EXPECT_EQ(tick.times, seen);
    // A zero period suspends.
    middle.period = 0;
    middle.run();
    EXPECT_FALSE(middle.isRunning());
    // A deleted timer leaves the director.
    RecordTimer* gone = new RecordTimer(director, 10, 5);
    gone->run();
    delete gone;
    OrvTestRunFor(30);
    EXPECT_EQ(std::count(fired.begin(), fired.end(), 5) + never.times, 0);
}

TEST_F(Loop, WorkProcedures) {
    Busy* busy = new Busy(1);
    Busy idle(0), off(1);
    off.enabled = 0;
    idle.count = off.count = 1;
    director->add(busy);
    director->add(&idle);
    director->add(&off);
    director->add(busy);
    EXPECT_TRUE(busy->count == 1 && director->workProcedures->length() == 3u);
    // A busy procedure keeps select from blocking: these steps return at once.
    long start = nowMs();
    for (int i = 0; i < 5; i++) director->waitAndDispatchEvents();
    EXPECT_LT(nowMs() - start, 500);
    EXPECT_EQ(std::vector<int>({5, 5, 0}), std::vector<int>({busy->calls, idle.calls, off.calls}));
    OrvDispatchToWorkProcs();
    OrvDispatchToTimers();
    EXPECT_EQ(std::vector<int>({7, 0}), std::vector<int>({busy->calls, off.calls}));
    busy->count++;  // a second holder keeps it alive through remove
    director->remove(busy);
    EXPECT_EQ(busy->count, 1);
    OrvDispatchToTimers();
    EXPECT_EQ(std::vector<int>({7, 8}), std::vector<int>({busy->calls, idle.calls}));
    delete busy;
    director->remove(&idle);
    director->remove(&off);
}

TEST_F(Loop, OtherDescriptorsAndClosedOnes) {
    int p[2], q[2];
    ASSERT_EQ(pipe(p), 0);
    ASSERT_EQ(pipe(q), 0);
    InputLog log;
    OrvRegisterInput(p[0], onPipeInput, &log, onPipeClose);
    // With neither timers nor work, one waiting step blocks until input comes.
    long start = nowMs();
    pid_t writer = fork();
    if (writer == 0) {
        usleep(150000);
        _exit(write(p[1], "abc", 3) == 3 ? 0 : 1);
    }
    director->waitAndDispatchEvents();
    EXPECT_GE(nowMs() - start, 140);
    waitpid(writer, nullptr, 0);
    EXPECT_TRUE(log.inputs == std::vector<int>({p[0]}) && log.text == "abc");
    // A descriptor closed behind the loop's back: select fails with EBADF, the owner hears of it
    // once through onClose, and it is dropped from the table.
    int doomed = dup(q[0]);
    ASSERT_LT(doomed, 20);
    OrvRegisterInput(doomed, onPipeInput, &log, onPipeClose);
    close(doomed);
    director->waitAndDispatchEvents();
    ASSERT_EQ(log.closes, std::vector<int>{doomed});
    ASSERT_EQ(write(p[1], "de", 2), 2);
    EXPECT_TRUE(waitSteps(director, [&] { return log.text == "abcde"; }) && log.closes.size() == 1);
    OrvUnRegisterInput(p[0]);
    ASSERT_EQ(write(p[1], "f", 1), 1);
    Busy busy(1);  // keeps the steps from blocking on the silent pipe
    busy.count = 1;
    director->add(&busy);
    for (int i = 0; i < 3; i++) director->waitAndDispatchEvents();
    EXPECT_EQ(log.text, "abcde");
    director->remove(&busy);
    for (int fd : {p[0], p[1], q[0], q[1]}) close(fd);
}

// Standard input is replaced by a pipe holding a byte: it ends the sleep at once.
TEST_F(Loop, SleepEndsOnInputOnStandardInput) {
    int p[2];
    ASSERT_EQ(pipe(p), 0);
    int saved = dup(0);
    dup2(p[0], 0);
    ASSERT_EQ(write(p[1], "x", 1), 1);
    long start = nowMs();
    OrvUSleep(2000000);
    EXPECT_LT(nowMs() - start, 500);
    dup2(saved, 0);
    for (int fd : {saved, p[0], p[1]}) close(fd);
}

TEST(LoopAlone, NoDirectorReportsAndReturns) {
    if (OrvGetAllDirectors() && OrvGetAllDirectors()->first) GTEST_SKIP() << "a director is open";
    EXPECT_EQ("WaitForEvents: No opened display...", OrvTestOutput(OrvDispatchToTimers));
}

TEST_F(Loop, DirectorGrabsStack) {
    OrvView* a = new OrvView(director, Orv2dRect(40, 40, 100, 80), "a");
    OrvView* b = new OrvView(director, Orv2dRect(300, 40, 100, 80), "b");
    OrvView* c = new OrvView(director, Orv2dRect(600, 40, 100, 80), "c");
    EXPECT_EQ(director->grabView(), nullptr);
    director->grab(a);
    director->grab(b);
    EXPECT_TRUE(director->grabView() == b && director->isGrabbed(a) && !director->isGrabbed(c));
    director->unGrab(b);
    EXPECT_EQ(director->grabView(), a);
    // Input for c goes to the grabbing view, coordinates as c saw them.
    std::vector<std::pair<OrvView*, OrvEvent>> got;
    auto record = [](OrvView* v, const OrvEvent& e, void* data) {
        ((std::vector<std::pair<OrvView*, OrvEvent>>*)data)->push_back({v, e});
    };
    a->onInput(record, &got);
    c->onInput(record, &got);
    ASSERT_TRUE(OrvTestWaitViewable(dpy, c->window()));
    OrvTestMoveIn(dpy, c->window(), 10, 12);
    OrvTestClick(dpy, 1);
    ASSERT_TRUE(
        OrvTestRunUntil([&] { return !got.empty() && got.back().second.type == OrvButtonUp; }));
    for (auto& g : got) {
        EXPECT_EQ(g.first, a);
        if (g.second.type != OrvButtonDown) continue;
        EXPECT_TRUE(g.second.x == 10 && g.second.y == 12 && g.second.window == c->window());
    }
    director->unGrab(a);
    got.clear();
    OrvTestClick(dpy, 1);
    ASSERT_TRUE(OrvTestRunUntil([&] { return got.size() >= 2; }));
    EXPECT_EQ(got[0].first, c);
    // The X pointer grab of a view.
    EXPECT_EQ(b->grab() + b->grabbed, 2);
    b->unGrab();
    EXPECT_EQ(b->grabbed, 0);
    // A deleted view leaves the grab stack.
    director->grab(c);
    delete c;
    EXPECT_EQ(director->grabView(), nullptr);
}

TEST_F(Loop, XErrorsAreReportedAndSurvived) {
    std::string out = OrvTestOutput([&] {
        XMapWindow(dpy, 0x1234567);
        XSync(dpy, False);
    });
    EXPECT_TRUE(
        out.rfind("X error [", 0) == 0 &&
        out.find("] X_MapWindow (0) BadWindow (invalid Window parameter) (291 . 17767)\n") !=
            std::string::npos)
        << out;
    XWindowAttributes a;  // the connection goes on
    EXPECT_TRUE(XGetWindowAttributes(dpy, DefaultRootWindow(dpy), &a));
}
