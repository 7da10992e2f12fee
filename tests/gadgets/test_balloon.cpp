// Balloons under real input: the data an actor keeps; a balloon appears when
// the pointer has rested on the actor for the delay, below the pointer, in
// its make-up; it goes when the pointer moves off, at a key, after the hide
// delay, and with its stage; a press before the delay starts the wait again;
// near the screen's corner it is moved whole onto the screen.
#include <fstream>

#include "orv/balloon.h"
#include "orv/shapes.h"
#include "frame_support.h"

namespace {

class Balloons : public FrameTest {
protected:
    OrvActor* box = nullptr;

    void SetUp() override {
        FrameTest::SetUp();
        if (!stage) return;
        box = new OrvFilledRectangle(director, Orv2dRect(40, 40, 80, 60), look("red", "red"));
        box->setBalloonData("Hello balloon", nullptr, 2, 0);
        stage->append(box);
        settle();
    }
    bool balloonUp() { return director->balloonStage && viewable(director->balloonStage); }
    Orv2dRect balloonBox() { return serverBox(director->balloonStage); }
    // Rests the pointer at a point of the stage and waits for the balloon.
    long restUntilShown(int x, int y, int timeoutMs = 3000) {
        move(x, y);
        long t0 = frameNowMs();
        if (!OrvTestRunUntil([&] { return balloonUp(); }, timeoutMs)) return -1;
        return frameNowMs() - t0;
    }
};

}  // namespace

TEST_F(Balloons, TheActorKeepsItsData) {
    OrvActor* a = new OrvFilledRectangle(director, Orv2dRect(0, 0, 5, 5));
    EXPECT_EQ(std::make_pair(a->getBalloonData(), a->getBalloonLabel()),
              std::make_pair((const OrvBalloonData*)nullptr, (const char*)nullptr));
    OrvBitmap* picture = new OrvBitmap(stage, 8, 8, director->depth);
    picture->lock();
    a->setBalloonData("Tip", picture, OrvTop, 3);
    EXPECT_EQ(
        std::make_tuple(std::string(a->getBalloonLabel()), a->getBalloonBitmap(),
                        a->getBalloonLabelBitmapPosition(), a->getBalloonLabelBitmapSpace(),
                        picture->lockCount),
        std::make_tuple(std::string("Tip"), picture, (OrvPosition)OrvTop, (unsigned short)3, 2ul));
    a->setBalloonData("Other", nullptr, 2, 0);
    EXPECT_EQ(std::make_pair(std::string(a->getBalloonLabel()), picture->lockCount),
              std::make_pair(std::string("Other"), 1ul));
    // A copy starts without a balloon.
    OrvActor* copy = a->copy();
    EXPECT_EQ(copy->getBalloonData(), nullptr);
    delete copy;
    a->setBalloonData(nullptr, nullptr, 2, 2);
    EXPECT_EQ(a->getBalloonData(), nullptr);
    a->setBalloonData(nullptr, picture, 2, 2);
    EXPECT_EQ(picture->lockCount, 2u);
    // The actor's end lets go of the bitmap.
    delete a;
    EXPECT_EQ(picture->lockCount, 1u);
    picture->unLock();
}

TEST_F(Balloons, AppearsAfterTheDelayBelowThePointer) {
    long t0 = frameNowMs();
    move(60, 60);
    OrvTestRunFor(800);
    EXPECT_FALSE(balloonUp());
    ASSERT_TRUE(OrvTestRunUntil([&] { return balloonUp(); }, 2000));
    long waited = frameNowMs() - t0;
    EXPECT_GE(waited, 950);
    EXPECT_LE(waited, 1600);
    settle();
    ASSERT_TRUE(balloonUp());
    Orv2dRect r = balloonBox();
    Orv2dRect stageBox = stage->globalBBox();
    Orv2dRect text = OrvLabelBitmapSizes(director->balloonMakeUp, "Hello balloon", nullptr, 2, 0);
    EXPECT_EQ(str(r),
              str(Orv2dRect(stageBox.x + 60, stageBox.y + 60 + 20, text.w + 8, text.h + 8)));
    // In the balloon's make-up: mostly wheat, with the text in black.
    unsigned long wheat = rgbOf("wheat"), black = rgbOf("black");
    int wheats = 0, blacks = 0;
    for (unsigned long p : snapshot(director->balloonStage)) {
        wheats += p == wheat;
        blacks += p == black;
    }
    EXPECT_GT(wheats, (int)(r.w * r.h / 2));
    EXPECT_GT(blacks, 10);
    EXPECT_TRUE(director->balloonStage->isAMenu());
    // The screen, balloon and stage together, through the root canvas (not a view).
    std::string path = "/tmp/orv-balloon-screen-" + std::to_string(getpid()) + ".ppm";
    ASSERT_EQ(OrvSaveViewPPM(director->rootCanvas, path.c_str()), 1);
    std::string magic, depth;
    int w = 0, h = 0;
    std::ifstream(path) >> magic >> w >> h >> depth;
    std::remove(path.c_str());
    EXPECT_EQ(std::make_tuple(magic, w, h),
              std::make_tuple(std::string("P6"), director->screenWidth, director->screenHeight));
}

TEST_F(Balloons, GoesWhenThePointerMovesOffAtAKeyAndAfterItsTime) {
    director->setBalloonDelays(200, 700);
    const char* ends[] = {"pointer moved off", "pointer left the window", "key pressed",
                          "hide delay over"};
    for (int end = 0; end < 4; end++) {
        move(200, 200);
        ASSERT_GE(restUntilShown(70, 70), 0) << ends[end];
        if (end == 0) move(300, 250);
        if (end == 1) OrvTestMoveRoot(dpy, 600, 450);
        if (end == 2) {
            OrvTestKey(dpy, 'a', true);
            OrvTestKey(dpy, 'a', false);
        }
        if (end == 3) OrvTestRunFor(800);
        settle(60);
        EXPECT_FALSE(balloonUp()) << ends[end];
    }
    // Off, nothing appears; on again, it does.
    director->showBalloon(0);
    move(200, 200);
    EXPECT_LT(restUntilShown(70, 70, 600), 0);
    director->showBalloon(1);
    move(200, 200);
    EXPECT_GE(restUntilShown(70, 70), 0);
}

TEST_F(Balloons, APressBeforeTheDelayStartsTheWaitAgain) {
    director->setBalloonDelays(500, 5000);
    move(70, 70);
    OrvTestRunFor(350);
    OrvTestButton(dpy, 1, true);
    OrvTestButton(dpy, 1, false);
    long t0 = frameNowMs();
    ASSERT_TRUE(OrvTestRunUntil([&] { return balloonUp(); }, 2000));
    EXPECT_GE(frameNowMs() - t0, 420);
}

TEST_F(Balloons, NeverOutlivesItsStage) {
    director->setBalloonDelays(200, 5000);
    // The stage left under the pointer has nothing to show.
    box->setBalloonData(nullptr, nullptr, 2, 0);
    OrvStage* other = new OrvStage(director, Orv2dRect(0, 0, 200, 150), "other", 0, 1);
    ASSERT_TRUE(OrvTestWaitViewable(dpy, other->window()));
    OrvActor* a =
        new OrvFilledRectangle(director, Orv2dRect(10, 10, 100, 80), look("blue", "blue"));
    a->setBalloonData("Going", nullptr, 2, 0);
    other->append(a);
    settle();
    OrvTestMoveIn(dpy, other->window(), 50, 50);
    ASSERT_TRUE(OrvTestRunUntil([&] { return balloonUp(); }, 2000));
    EXPECT_EQ(director->balloonStage->owner, other);
    delete other;
    EXPECT_FALSE(balloonUp());
    EXPECT_EQ(
        std::make_pair((OrvStage*)director->balloonStage->owner, director->balloonTimer->stage),
        std::make_pair((OrvStage*)nullptr, (OrvStage*)nullptr));
    // Nothing is left waiting on the stage that went.
    OrvTestRunFor(400);
    EXPECT_FALSE(balloonUp());
}

TEST_F(Balloons, MovedWholeOntoTheScreen) {
    struct Row {
        Orv2dPoint at;
        bool left, up;
    } rows[] = {{Orv2dPoint(director->screenWidth - 5, director->screenHeight - 5), true, true},
                {Orv2dPoint(10, director->screenHeight - 5), false, true},
                {Orv2dPoint(director->screenWidth - 5, 10), true, false},
                {Orv2dPoint(100, 100), false, false}};
    for (const Row& row : rows) {
        ASSERT_EQ(director->mapBalloon(box, row.at), 1u);
        settle();
        ASSERT_TRUE(balloonUp());
        Orv2dRect r = balloonBox();
        EXPECT_EQ(std::make_pair(r.x, r.y),
                  std::make_pair(row.left ? director->screenWidth - (int)r.w : row.at.x,
                                 row.up ? director->screenHeight - (int)r.h : row.at.y));
    }
    // An actor without a balloon maps none.
    OrvActor* plain = new OrvFilledRectangle(director, Orv2dRect(0, 0, 5, 5));
    EXPECT_EQ(director->mapBalloon(plain, Orv2dPoint(10, 10)), 0u);
    delete plain;
}

TEST_F(Balloons, ItsEventsGoToTheOwnersStageAndAPressHidesIt) {
    ASSERT_EQ(director->mapBalloon(box, Orv2dPoint(100, 150)), 1u);
    director->balloonStage->owner = stage;
    settle();
    ASSERT_TRUE(balloonUp());
    std::vector<OrvEvent> seen;
    stage->onInput([](OrvView*, const OrvEvent& e,
                      void* data) { ((std::vector<OrvEvent>*)data)->push_back(e); },
                   &seen);
    OrvEvent press;
    memset(&press, 0, sizeof press);
    press.type = OrvButtonDown;
    press.button = 1;
    press.x = 5;
    press.y = 6;
    director->balloonStage->handleInput(press);
    ASSERT_EQ(seen.size(), 1u);
    Orv2dRect stageBox = stage->globalBBox();
    EXPECT_EQ(std::make_pair(seen[0].x, seen[0].y),
              std::make_pair(100l + 5 - stageBox.x, 150l + 6 - stageBox.y));
    EXPECT_FALSE(balloonUp());
}
