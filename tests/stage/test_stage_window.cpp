// The drawing cycle meets the window: exposure, resizing, transformers,
// double buffering without flicker and the buffered repaint.
#include "test_stage_support.h"

TEST_F(StageTest, ExposeOfDoubleBufferedStageCopiesOnly) {
    TestBox* a = box(10, 10, 40, 40);
    TestBox* b = box(100, 50, 40, 40, blue);
    stage->useDoubleBuffer(1);
    RecordingHook* hook = new RecordingHook;
    stage->install(hook);
    resetCounts({a, b});
    // The server clears the area and sends an Expose for it.
    XClearArea(dpy, stage->window(), 0, 0, 120, 100, True);
    XFlush(dpy);
    ASSERT_TRUE(OrvTestRunUntil([&] { return hook->copies > 0; }));
    EXPECT_EQ(0, a->draws);
    EXPECT_EQ(0, b->draws);
    EXPECT_EQ(0, stage->drawAlls);
    EXPECT_EQ(0, hook->before);
    EXPECT_EQ(stage->hasDoubleBuffer(), hook->copyCanvas);
    EXPECT_EQ(0xff0000ul, rgb(20, 20));
    EXPECT_EQ(0x0000fful, rgb(110, 60));
}

TEST_F(StageTest, ExposeWithoutBufferRepaintsTheExposedPartOnly) {
    TestBox* a = box(10, 10, 40, 40);
    TestBox* b = box(120, 80, 40, 40, blue);
    resetCounts({a, b});
    XClearArea(dpy, stage->window(), 0, 0, 60, 60, True);
    XFlush(dpy);
    ASSERT_TRUE(OrvTestRunUntil([&] { return a->draws > 0; }));
    OrvTestRunFor(20);
    EXPECT_EQ(0, b->draws);
    EXPECT_EQ(0xff0000ul, rgb(20, 20));
}

// No flicker: while the bitmap is painted, the window still shows the old
// picture; the new one arrives by copy alone.
class WindowWatch : public OrvStageHook {
public:
    Display* dpy;
    unsigned long window;
    unsigned long atDraw = 0, atCopy = 0;
    const OrvCanvas* target = nullptr;
    WindowWatch(Display* d, unsigned long w) : dpy(d), window(w) {}
    unsigned long deletedByStage() const override { return 1; }
    void afterDraw(const OrvCanvas* c, const Orv2dMatrix*, const Orv2dRegion*) override {
        target = c;
        XSync(dpy, False);
        atDraw = OrvTestRGB(dpy, window, 15, 15);
    }
    void afterCopy(const OrvCanvas*, const Orv2dMatrix*, const Orv2dRegion*) override {
        XSync(dpy, False);
        atCopy = OrvTestRGB(dpy, window, 15, 15);
    }
};

TEST_F(StageTest, DoubleBufferedRepaintReachesTheWindowOnlyAsCopies) {
    TestBox* a = box(10, 10, 20, 20);
    std::vector<const OrvCanvas*> canvases;
    a->canvases = &canvases;
    stage->useDoubleBuffer(1);
    WindowWatch* watch = new WindowWatch(dpy, stage->window());
    stage->install(watch);
    resetCounts({a});
    canvases.clear();
    a->moveTo(60, 60);
    EXPECT_EQ(stage->hasDoubleBuffer(), watch->target);
    EXPECT_EQ(0xff0000ul, watch->atDraw);  // not yet erased on the window
    EXPECT_EQ(background, watch->atCopy);  // erased by the copy
    EXPECT_EQ(0, stage->windowErases);
    ASSERT_EQ(1u, canvases.size());
    EXPECT_EQ(stage->hasDoubleBuffer(), canvases[0]);
}

TEST_F(StageTest, BufferedDrawPaintsThroughTheScreenBuffer) {
    TestBox* a = box(10, 10, 20, 20);
    TestBox* far = box(150, 100, 20, 20, blue);
    RecordingHook* hook = new RecordingHook;
    stage->install(hook);
    resetCounts({a, far});
    XClearArea(dpy, stage->window(), 0, 0, 200, 150, False);  // no expose
    EXPECT_EQ(background, rgb(15, 15));
    stage->bufferedDraw(Orv2dRect(5, 5, 30, 30));
    EXPECT_EQ(1, a->draws);
    EXPECT_EQ(0, far->draws);
    EXPECT_EQ(0, stage->windowErases);
    EXPECT_EQ(0, stage->drawAlls);
    EXPECT_EQ((const OrvCanvas*)director->screenBufferBitmap, a->lastCanvas);
    EXPECT_EQ(hook->drawCanvas, a->lastCanvas);
    EXPECT_EQ(hook->copyCanvas, a->lastCanvas);
    EXPECT_EQ(0xff0000ul, rgb(15, 15));
    EXPECT_EQ(0xff0000ul, rgb(29, 29));
    EXPECT_EQ(background, rgb(155, 105));  // not in the rectangle: left alone

    // The bitmap form paints into a given bitmap.
    OrvBitmap target(stage, 30, 30, stage->depth);
    stage->bufferedDraw(&target, Orv2dPoint(0, 0));
    XSync(dpy, False);
    EXPECT_EQ(0xff0000ul, OrvTestRGB(dpy, target.drawable, 15, 15));
    EXPECT_EQ(background, OrvTestRGB(dpy, target.drawable, 5, 5));
}

TEST_F(StageTest, TransformerMapsPicturesAndHits) {
    TestBox* a = box(10, 10, 20, 20);
    TestBox* far = box(150, 100, 20, 20, blue);
    RecordingHook* hook = new RecordingHook;
    stage->install(hook);
    resetCounts({a, far});
    stage->zoom(Orv2dPoint(0, 0), 2.0f, 2.0f);
    ASSERT_NE(nullptr, stage->toStage());
    EXPECT_EQ(1, hook->transformers);
    EXPECT_EQ(1, stage->drawAlls);
    EXPECT_EQ(0xff0000ul, rgb(25, 25));
    EXPECT_EQ(0xff0000ul, rgb(55, 55));
    EXPECT_EQ(background, rgb(65, 65));
    EXPECT_TRUE(a->contains2d(Orv2dPoint(55, 55), stage->toStage()));
    EXPECT_FALSE(a->contains2d(Orv2dPoint(65, 65), stage->toStage()));
    // The stage's own hit test goes through the transformer too.
    EXPECT_EQ(a, stage->contains(Orv2dPoint(55, 55)));
    EXPECT_EQ(nullptr, stage->contains(Orv2dPoint(65, 65)));
    EXPECT_EQ(nullptr, stage->contains(Orv2dPoint(160, 110)));  // far's own place, now elsewhere
    EXPECT_EQ(far, stage->contains(Orv2dPoint(310, 210)));

    stage->translate(10, 5);
    EXPECT_EQ(2, hook->transformers);
    EXPECT_EQ(0xff0000ul, rgb(65, 60));
    EXPECT_EQ(background, rgb(25, 20));
    EXPECT_TRUE(a->contains2d(Orv2dPoint(65, 60), stage->toStage()));

    // A move under the transformer repaints the mapped boxes.
    resetCounts({a, far});
    a->moveTo(40, 10);
    EXPECT_EQ(0xff0000ul, rgb(95, 30));
    EXPECT_EQ(background, rgb(35, 30));
    EXPECT_EQ(0, far->draws);

    // Setting the same mapping again tells no hook.
    Orv2dMatrix same = *stage->toStage();
    stage->toStage(&same);
    EXPECT_EQ(2, hook->transformers);
    stage->translate(0, 0);
    EXPECT_EQ(2, hook->transformers);

    // A factor 0 on a stage with a transformer is refused.
    testing::internal::CaptureStdout();
    stage->zoom(Orv2dPoint(0, 0), 0.0f, 1.0f);
    EXPECT_EQ("OrvStage::zoom: invalid transformer.\n", testing::internal::GetCapturedStdout());
    EXPECT_EQ(2, hook->transformers);
    stage->toStage(nullptr);
    EXPECT_EQ(3, hook->transformers);
    EXPECT_EQ(0xff0000ul, rgb(95, 30));  // nothing repaints until the caller asks
    stage->beginDrawing();
    stage->invalidate(Orv2dRect(0, 0, 200, 150));
    stage->flushDrawing(1);
    EXPECT_EQ(0xff0000ul, rgb(45, 15));
    // Without a transformer a factor 0 goes through.
    testing::internal::CaptureStdout();
    stage->zoom(Orv2dPoint(0, 0), 0.0f, 1.0f);
    EXPECT_EQ("", testing::internal::GetCapturedStdout());
    ASSERT_NE(nullptr, stage->toStage());
    EXPECT_TRUE(stage->toStage()->isBad());
}

TEST_F(StageTest, ResizeRepaintsWhatItMust) {
    TestBox* a = box(10, 10, 20, 20);
    TestBox* right = box(230, 20, 30, 30, blue);
    RecordingHook* hook = new RecordingHook;
    stage->install(hook);
    resetCounts({a, right});
    XResizeWindow(dpy, stage->window(), 300, 200);
    XFlush(dpy);
    ASSERT_TRUE(OrvTestRunUntil([&] { return stage->width == 300 && right->draws > 0; }));
    OrvTestRunFor(20);
    EXPECT_EQ(1, hook->resized);
    EXPECT_EQ(0x0000fful, rgb(240, 30));
    EXPECT_EQ(0xff0000ul, rgb(15, 15));

    // A double-buffered stage gets a new bitmap and one full repaint.
    stage->useDoubleBuffer(1);
    resetCounts({a, right});
    XResizeWindow(dpy, stage->window(), 320, 220);
    XFlush(dpy);
    ASSERT_TRUE(OrvTestRunUntil([&] { return stage->width == 320; }));
    OrvTestRunFor(20);
    ASSERT_NE(nullptr, stage->hasDoubleBuffer());
    EXPECT_EQ(320ul, stage->hasDoubleBuffer()->width);
    EXPECT_EQ(220ul, stage->hasDoubleBuffer()->height);
    EXPECT_GE(a->draws, 1);
    EXPECT_EQ(0x0000fful, rgb(240, 30));
    EXPECT_EQ(0xff0000ul, rgb(15, 15));

    // Same size, new place: nothing at all.
    hook->resized = 0;
    resetCounts({a, right});
    stage->handleResize(Orv2dRect(0, 0, 320, 220), Orv2dRect(5, 5, 320, 220));
    EXPECT_EQ(0, hook->resized);
    EXPECT_EQ(0, stage->drawAlls);
    EXPECT_EQ(0, stage->x);
}

TEST_F(StageTest, EmptyAndContentsBoxes) {
    TestBox* a = box(10, 10, 20, 20);
    TestBox* b = box(100, 50, 40, 30, blue, 2);
    Orv2dRect all = stage->contentsBBox(nullptr);
    EXPECT_EQ(10, all.x);
    EXPECT_EQ(10, all.y);
    EXPECT_EQ(130u, all.w);
    EXPECT_EQ(70u, all.h);
    stage->zoom(Orv2dPoint(0, 0), 0.5f, 0.5f);
    all = stage->contentsBBox(stage->toStage());
    EXPECT_EQ(5, all.x);
    EXPECT_EQ(65u, all.w);
    (void)a;
    (void)b;
    RecordingHook* hook = new RecordingHook;
    stage->install(hook);
    stage->empty(1);
    // Each actor's removal tells the hooks, then the emptied stage once more.
    EXPECT_EQ(3, hook->contentsCalls);
    EXPECT_EQ(background, rgb(55, 30));
    Orv2dRect none = stage->contentsBBox(nullptr);
    EXPECT_EQ(0u, none.w);
}
