// The drawing cycle on the real X server: what a change repaints, and only that.
#include "test_stage_support.h"

#include <initializer_list>
#include <string>

// Runs each change with the window painted directly and through the bitmap.
class StageChangeTest : public StageTest, public ::testing::WithParamInterface<bool> {
protected:
    std::vector<const OrvCanvas*> canvases;
    void SetUp() override {
        StageTest::SetUp();
        if (GetParam() && stage) stage->useDoubleBuffer(1);
    }
    void track(std::initializer_list<TestBox*> boxes) {
        for (TestBox* b : boxes) b->canvases = &canvases;
    }
    // With the bitmap, every draw went there and the window was never erased.
    void checkTargets() {
        if (!GetParam()) return;
        EXPECT_EQ(0, stage->windowErases);
        for (const OrvCanvas* c : canvases)
            EXPECT_EQ((const OrvCanvas*)stage->hasDoubleBuffer(), c);
        canvases.clear();
    }
};

INSTANTIATE_TEST_SUITE_P(Buffering, StageChangeTest, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& info) {
                             return std::string(info.param ? "DoubleBuffered" : "Direct");
                         });

// Moving an actor repaints the union of its old and new boxes: actors there
// are drawn again, actors elsewhere are not, and the pixels follow.
TEST_P(StageChangeTest, MoveRepaintsOldAndNewBoxesOnly) {
    TestBox* mover = box(10, 10, 20, 20);
    TestBox* neighbour = box(70, 15, 20, 20, blue);
    TestBox* far = box(150, 100, 20, 20, blue);
    track({mover, neighbour, far});
    resetCounts({mover, neighbour, far});
    mover->moveTo(60, 10);
    EXPECT_EQ(1, stage->drawAlls);
    EXPECT_EQ(1, mover->draws);
    EXPECT_EQ(1, neighbour->draws);  // lies under the new place
    EXPECT_EQ(0, far->draws);
    checkTargets();
    EXPECT_EQ(background, rgb(15, 15));  // old place erased
    EXPECT_EQ(0xff0000ul, rgb(65, 15));  // new place red
    EXPECT_EQ(0x0000fful, rgb(75, 20));  // the neighbour, appended later, stays on top
    EXPECT_EQ(0xff0000ul, rgb(75, 12));  // the mover where the neighbour is not
    EXPECT_EQ(0x0000fful, rgb(155, 105));
    // The repainted region was the two boxes.
    EXPECT_EQ(0u, stage->nesting);
    EXPECT_EQ(2, stage->invalidated.count);
}

TEST_P(StageChangeTest, HideShowRaiseRemove) {
    TestBox* a = box(10, 10, 40, 40);
    TestBox* b = box(30, 30, 40, 40, blue);
    TestBox* far = box(150, 100, 20, 20, blue);
    track({a, b, far});
    resetCounts({a, b, far});
    EXPECT_EQ(0x0000fful, rgb(40, 40));  // b is above a

    a->setVisible(0);
    EXPECT_EQ(1, stage->drawAlls);
    EXPECT_EQ(0, a->draws);
    EXPECT_EQ(1, b->draws);
    EXPECT_EQ(0, far->draws);
    EXPECT_EQ(background, rgb(15, 15));
    EXPECT_EQ(0x0000fful, rgb(40, 40));

    resetCounts({a, b, far});
    a->setVisible(1);
    EXPECT_EQ(1, stage->drawAlls);
    EXPECT_EQ(1, a->draws);
    EXPECT_EQ(1, b->draws);
    EXPECT_EQ(0, far->draws);
    EXPECT_EQ(0xff0000ul, rgb(15, 15));
    EXPECT_EQ(0x0000fful, rgb(40, 40));

    resetCounts({a, b, far});
    EXPECT_EQ(1ul, (unsigned long)stage->pop(a));
    EXPECT_EQ(1, stage->drawAlls);
    EXPECT_EQ(1, a->draws);
    EXPECT_EQ(1, b->draws);
    EXPECT_EQ(0, far->draws);
    EXPECT_EQ(0xff0000ul, rgb(40, 40));  // a is on top now
    checkTargets();

    resetCounts({a, b, far});
    a->canvases = nullptr;
    EXPECT_EQ(1ul, stage->clean(a, 1));
    EXPECT_EQ(1, stage->drawAlls);
    EXPECT_EQ(1, b->draws);
    EXPECT_EQ(0, far->draws);
    EXPECT_EQ(0x0000fful, rgb(40, 40));
    EXPECT_EQ(background, rgb(15, 15));

    // Removing through the stage repaints the same way.
    resetCounts({b, far});
    stage->remove(b, 1);
    EXPECT_EQ(1, stage->drawAlls);
    EXPECT_EQ(0, far->draws);
    EXPECT_EQ(background, rgb(40, 40));
    checkTargets();
}

TEST_F(StageTest, NestedSettersRepaintOnce) {
    TestBox* a = box(10, 10, 20, 20);
    TestBox* b = box(10, 60, 20, 20);
    TestBox* far = box(150, 100, 20, 20, blue);
    resetCounts({a, b, far});
    stage->beginDrawing();
    a->moveTo(40, 10);
    stage->beginDrawing();
    b->moveTo(40, 60);
    b->setVisible(0);
    b->setVisible(1);
    stage->flushDrawing(1);
    EXPECT_EQ(0, stage->drawAlls);
    EXPECT_EQ(0, a->draws);
    stage->flushDrawing(1);
    EXPECT_EQ(1, stage->drawAlls);
    EXPECT_EQ(1, a->draws);
    EXPECT_EQ(1, b->draws);
    EXPECT_EQ(0, far->draws);
    EXPECT_EQ(0xff0000ul, rgb(45, 65));
    EXPECT_EQ(background, rgb(15, 65));

    // A redraw inside a nest only invalidates.
    resetCounts({a, b, far});
    stage->beginDrawing();
    stage->draw(far, 1);
    EXPECT_EQ(0, far->draws);
    EXPECT_EQ(1, stage->invalidated.count);
    stage->flushDrawing(1);
    EXPECT_EQ(1, far->draws);
    EXPECT_EQ(0, a->draws);
}

TEST_F(StageTest, FlushWithoutNestReportsAndAbortForgets) {
    TestBox* a = box(10, 10, 20, 20);
    TestBox* far = box(150, 100, 20, 20, blue);
    stage->beginDrawing();
    stage->invalidate(Orv2dRect(5, 5, 10, 10));
    stage->flushDrawing(1);
    resetCounts({a, far});
    testing::internal::CaptureStdout();
    stage->flushDrawing(1);
    EXPECT_EQ("OrvStage::flushDrawing : 'beginDrawing' must be call before'flushDrawing'.\n",
              testing::internal::GetCapturedStdout());
    // What the region still held is painted again.
    EXPECT_EQ(1, stage->drawAlls);
    EXPECT_EQ(1, a->draws);
    EXPECT_EQ(0, far->draws);

    resetCounts({a, far});
    stage->beginDrawing();
    stage->beginDrawing();
    stage->beginDrawing();
    a->moveTo(100, 100);
    stage->abortDrawing();
    EXPECT_EQ(0u, stage->nesting);
    EXPECT_EQ(0, stage->invalidated.count);
    EXPECT_EQ(0, stage->drawAlls);
    EXPECT_EQ(0xff0000ul, rgb(15, 15));  // nothing painted: the old picture stays
    testing::internal::CaptureStdout();
    stage->flushDrawing(1);
    stage->flushDrawing(1);
    EXPECT_EQ("OrvStage::flushDrawing : 'beginDrawing' must be call before'flushDrawing'.\n"
              "OrvStage::flushDrawing : 'beginDrawing' must be call before'flushDrawing'.\n",
              testing::internal::GetCapturedStdout());
    EXPECT_EQ(0, stage->drawAlls);
}

TEST_F(StageTest, RegionCollapsesAtThirtyThree) {
    stage->beginDrawing();
    for (int i = 0; i < 32; i++) stage->invalidate(Orv2dRect(i * 5, 2, 2, 2));
    EXPECT_EQ(32, stage->invalidated.count);
    stage->invalidate(Orv2dRect(170, 40, 2, 2));
    EXPECT_EQ(1, stage->invalidated.count);
    EXPECT_EQ(0, stage->invalidated.bbox.x);
    EXPECT_EQ(2, stage->invalidated.bbox.y);
    EXPECT_EQ(172u, stage->invalidated.bbox.w);
    EXPECT_EQ(40u, stage->invalidated.bbox.h);
    stage->invalidate(Orv2dRect(180, 100, 3, 3));
    EXPECT_EQ(2, stage->invalidated.count);
    // Rectangles wholly outside the window add nothing.
    stage->invalidate(Orv2dRect(500, 500, 3, 3));
    EXPECT_EQ(2, stage->invalidated.count);
    stage->abortDrawing();

    // A region whose box has no width paints nothing, although it counts.
    stage->drawAlls = 0;
    stage->beginDrawing();
    stage->invalidate(Orv2dRect(10, 10, 0, 5));
    stage->flushDrawing(1);
    EXPECT_EQ(0, stage->drawAlls);
}

TEST_F(StageTest, HooksSeeTheCycle) {
    RecordingHook* hook = new RecordingHook;
    stage->install(hook);
    testing::internal::CaptureStdout();
    stage->install(hook);  // silent: already here
    EXPECT_EQ("", testing::internal::GetCapturedStdout());
    TestBox* a = box(10, 10, 20, 20);
    TestBox* outside = box(400, 400, 20, 20);
    hook->before = hook->after = hook->copies = hook->invalidations = 0;

    a->moveTo(20, 20);
    EXPECT_EQ(1, hook->before);
    EXPECT_EQ(1, hook->after);
    EXPECT_EQ(0, hook->copies);
    EXPECT_EQ(2, hook->invalidations);
    EXPECT_EQ(stage, hook->drawCanvas);
    // The painted region is widened by one pixel on every side.
    EXPECT_EQ(9, hook->lastRegion.bbox.x);
    EXPECT_EQ(9, hook->lastRegion.bbox.y);

    // Outside the window: the hooks are told, nothing is painted.
    hook->invalidations = 0;
    stage->drawAlls = 0;
    outside->moveTo(410, 400);
    EXPECT_EQ(2, hook->invalidations);
    EXPECT_EQ(0, stage->drawAlls);

    // Hidden: no hook is told.
    outside->setVisible(0);
    hook->invalidations = 0;
    stage->beginDrawing();
    stage->invalidate(outside, 1);
    stage->flushDrawing(1);
    EXPECT_EQ(0, hook->invalidations);

    OrvAllowHooksUpdated = 0;
    a->moveTo(30, 30);
    OrvAllowHooksUpdated = 1;
    EXPECT_EQ(1, hook->before);
    a->moveTo(40, 30);
    EXPECT_EQ(2, hook->before);

    OrvStage other(director, Orv2dRect(0, 0, 50, 50), "other", 0, 0);
    testing::internal::CaptureStdout();
    other.install(hook);
    EXPECT_EQ("OrvStage::install : Can't connect the same hook object twice.\n",
              testing::internal::GetCapturedStdout());
    delete hook;  // unlinks itself
    EXPECT_EQ(nullptr, stage->hooks.first);
}

// A producer whose ghost is a rectangle drawn by exclusive or.
class GhostProducer : public OrvProducer {
public:
    int exposes = 0;
    explicit GhostProducer(OrvStage* s) : OrvProducer(s, nullptr) {}
    const char* className() const override { return "TestGhost"; }
    void expose2d(const Orv2dRegion*) override {
        exposes++;
        stage->rectangle((OrvMakeUp*)stage->ghostMakeUp, Orv2dRect(100, 20, 30, 30), 1, nullptr);
    }
};

TEST_F(StageTest, GhostStaysOnTheWindowAfterADoubleBufferedRepaint) {
    TestBox* a = box(90, 10, 60, 60);
    stage->useDoubleBuffer(1);
    unsigned long plain = rgb(110, 30);
    EXPECT_EQ(0xff0000ul, plain);
    GhostProducer* ghost = new GhostProducer(stage);
    stage->producer = ghost;
    a->moveTo(92, 10);
    EXPECT_EQ(1, ghost->exposes);
    EXPECT_NE(plain, rgb(110, 30));  // the ghost is on the window
    // but not in the bitmap, so a copy takes it away.
    stage->producer = nullptr;
    stage->handleExpose(nullptr);
    EXPECT_EQ(plain, rgb(110, 30));
    delete ghost;
}
