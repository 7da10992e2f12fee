// The drawing cycle on a real X server: what a change repaints and only that, nests, hooks, the
// grid, exposure, resizing, transformers, double buffering and the buffered repaint.
#include "orv_fixtures.h"

static const unsigned long R = 0xff0000, B = 0x0000ff;

// Runs each change with the window painted directly and through the bitmap.
class StageChangeTest : public StageTest, public testing::WithParamInterface<bool> {
protected:
    std::vector<const OrvCanvas*> canvases;
    void SetUp() override {
        StageTest::SetUp();
        if (GetParam() && stage) stage->useDoubleBuffer(1);
    }
    // One repaint since the last check, these draws, and with the bitmap every draw there and no
    // erasure of the window; then the colour at (at, at) when asked.
    void expectDraws(const std::vector<TestBox*>& boxes, const std::vector<int>& draws, int at = -1,
                     unsigned long colour = 0) {
        EXPECT_TRUE(at < 0 || rgb(at, at) == colour) << "the colour at " << at;
        EXPECT_EQ(1, stage->drawAlls);
        for (size_t i = 0; i < boxes.size(); i++) EXPECT_EQ(draws[i], boxes[i]->draws) << i;
        for (const OrvCanvas* c : canvases)
            EXPECT_EQ(GetParam() ? (const OrvCanvas*)stage->hasDoubleBuffer() : stage, c);
        EXPECT_EQ(0, GetParam() ? stage->windowErases : 0);
        canvases.clear();
        resetCounts(boxes);
    }
};
INSTANTIATE_TEST_SUITE_P(Buffering, StageChangeTest, testing::Values(false, true),
                         [](const testing::TestParamInfo<bool>& p) {
                             return std::string(p.param ? "DoubleBuffered" : "Direct");
                         });

// A move repaints the union of the old and new boxes: actors there are drawn again, actors
// elsewhere are not, and the pixels follow.
TEST_P(StageChangeTest, MoveHideShowRaiseRemoveRepaintTheirBoxesOnly) {
    TestBox* mover = box(10, 10, 20, 20);
    TestBox* neighbour = box(70, 15, 20, 20, blue);
    TestBox* far = box(150, 100, 20, 20, blue);
    for (TestBox* b : {mover, neighbour, far}) b->canvases = &canvases;
    resetCounts({mover, neighbour, far});
    mover->moveTo(60, 10);
    expectDraws({mover, neighbour, far}, {1, 1, 0});
    expectPixels({15, 15, background, 65, 15, R, 75, 20, B});  // the neighbour stays on top
    EXPECT_EQ(2, stage->invalidated.count);
    // Hide, show, raise and remove.
    TestBox* a = box(10, 10, 40, 40);
    TestBox* b = box(30, 30, 40, 40, blue);
    for (TestBox* x : {a, b}) x->canvases = &canvases;
    resetCounts({a, b, far});
    a->setVisible(0);
    expectDraws({a, b, far}, {0, 1, 0}, 15, background);
    a->setVisible(1);
    expectDraws({a, b, far}, {1, 1, 0}, 40, B);
    EXPECT_EQ(1ul, stage->pop(a));
    expectDraws({a, b, far}, {1, 1, 0}, 40, R);
    EXPECT_EQ(1ul, stage->clean(a, 1));
    expectDraws({b, far}, {1, 0}, 40, B);
    stage->remove(b, 1);
    expectDraws({far}, {0}, 40, background);
}

TEST_F(StageTest, NestedSettersRepaintOnceUnnestedFlushReportsAndRegionsCollapse) {
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
    EXPECT_EQ(0, stage->drawAlls + a->draws);
    stage->flushDrawing(1);
    EXPECT_EQ(std::vector<int>({1, 1, 1, 0}),
              std::vector<int>({stage->drawAlls, a->draws, b->draws, far->draws}));
    expectPixels({45, 65, R, 15, 65, background});
    // A redraw inside a nest only invalidates.
    resetCounts({a, b, far});
    stage->beginDrawing();
    stage->draw(far, 1);
    EXPECT_EQ(0, far->draws);
    stage->flushDrawing(1);
    EXPECT_EQ(Orv2dPoint(1, 0), Orv2dPoint(far->draws, a->draws));
    // A flush without a nest reports, and an abort forgets.
    const std::string unnested =
        "OrvStage::flushDrawing : 'beginDrawing' must be call before'flushDrawing'.\n";
    stage->beginDrawing();
    stage->invalidate(Orv2dRect(35, 5, 10, 10));
    stage->flushDrawing(1);
    resetCounts({a, far});
    EXPECT_EQ(unnested, OrvTestOutput([&] { stage->flushDrawing(1); }));
    // What the region still held is painted again.
    EXPECT_EQ(std::vector<int>({1, 1, 0}),
              std::vector<int>({stage->drawAlls, a->draws, far->draws}));
    resetCounts({a, far});
    for (int i = 0; i < 3; i++) stage->beginDrawing();
    a->moveTo(100, 100);
    stage->abortDrawing();
    // Nothing painted: the old picture stays.
    EXPECT_TRUE(!stage->nesting && !stage->invalidated.count && rgb(45, 15) == R);
    EXPECT_EQ(unnested + unnested, OrvTestOutput([&] {
                  stage->flushDrawing(1);
                  stage->flushDrawing(1);
              }));
    EXPECT_EQ(0, stage->drawAlls);
    // The region collapses at thirty-three rectangles.
    stage->beginDrawing();
    for (int i = 0; i < 32; i++) stage->invalidate(Orv2dRect(i * 5, 2, 2, 2));
    EXPECT_EQ(32, stage->invalidated.count);
    stage->invalidate(Orv2dRect(170, 40, 2, 2));
    EXPECT_TRUE(stage->invalidated.count == 1 &&
                stage->invalidated.bbox == Orv2dRect(0, 2, 172, 40));
    stage->invalidate(Orv2dRect(180, 100, 3, 3));
    stage->invalidate(Orv2dRect(500, 500, 3, 3));  // wholly outside the window: nothing
    EXPECT_EQ(2, stage->invalidated.count);
    stage->abortDrawing();
    // A region whose box has no width paints nothing, although it counts.
    stage->drawAlls = 0;
    stage->beginDrawing();
    stage->invalidate(Orv2dRect(10, 10, 0, 5));
    stage->flushDrawing(1);
    EXPECT_EQ(0, stage->drawAlls);
}

TEST_F(StageTest, HooksSeeTheCycleAndOutliveTheStageUnlessOwned) {
    RecordingHook* hook = installHook();
    EXPECT_EQ("", OrvTestOutput([&] { stage->install(hook); }));  // silent: already here
    TestBox* a = box(10, 10, 20, 20);
    TestBox* outside = box(400, 400, 20, 20);
    hook->before = hook->after = hook->invalidations = 0;
    a->moveTo(20, 20);
    EXPECT_EQ(std::vector<int>({1, 1, 0, 2}),
              std::vector<int>({hook->before, hook->after, hook->copies, hook->invalidations}));
    // The painted region grows by one on every side.
    EXPECT_EQ(Orv2dPoint(9, 9), Orv2dPoint(hook->lastRegion.bbox.x, hook->lastRegion.bbox.y));
    // Outside the window: the hooks are told, nothing is painted; hidden: no hook is told.
    hook->invalidations = stage->drawAlls = 0;
    outside->moveTo(410, 400);
    EXPECT_EQ(std::vector<int>({2, 0}), std::vector<int>({hook->invalidations, stage->drawAlls}));
    outside->setVisible(0);
    hook->invalidations = 0;
    stage->beginDrawing();
    stage->invalidate(outside, 1);
    stage->flushDrawing(1);
    EXPECT_EQ(0, hook->invalidations);
    OrvStage other(director, Orv2dRect(0, 0, 50, 50), "other", 0, 0);
    EXPECT_EQ("OrvStage::install : Can't connect the same hook object twice.\n",
              OrvTestOutput([&] { other.install(hook); }));
    delete hook;  // unlinks itself
    EXPECT_EQ(nullptr, stage->hooks.first);
    // A hook the stage does not own outlives it, told by its cleared stage; an owned one dies
    // with it (the sanitizers watch that). Nothing paints while the stage goes.
    RecordingHook kept;
    kept.owned = false;
    stage->install(&kept);
    stage->install(new RecordingHook);
    // Contents changes are told only while both switches are on.
    kept.contentsCalls = kept.before = 0;
    OrvAllowCallContentsChanged = 0;
    stage->contentsChanged();
    OrvAllowCallContentsChanged = 1;
    EXPECT_EQ(0, kept.contentsCalls);
    stage->contentsChanged();
    EXPECT_EQ(1, kept.contentsCalls);
    delete stage;
    stage = nullptr;
    EXPECT_TRUE(!kept.stage && !kept.before);
}

// Reads the window at 15, 15 after drawing and after copying.
class WindowWatch : public RecordingHook {
public:
    std::vector<unsigned long> seen;  // after drawing, after copying
    void afterDraw(const OrvCanvas*, const Orv2dMatrix*, const Orv2dRegion*) override { look(); }
    void afterCopy(const OrvCanvas*, const Orv2dMatrix*, const Orv2dRegion*) override { look(); }
    void look() {
        Display* dpy = (Display*)stage->director->display;
        XSync(dpy, False);
        seen.push_back(OrvTestRGB(dpy, stage->window(), 15, 15));
    }
};

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

// No flicker: while the bitmap is painted, the window still shows the old picture; the new one
// arrives by copy alone. A ghost stays on the window after such a repaint.
TEST_F(StageTest, DoubleBufferedRepaintReachesTheWindowOnlyAsCopiesAndKeepsTheGhost) {
    TestBox* a = box(10, 10, 20, 20);
    TestBox* g = box(90, 10, 60, 60);
    stage->useDoubleBuffer(1);
    WindowWatch* watch = new WindowWatch;
    stage->install(watch);
    a->moveTo(60, 60);
    EXPECT_EQ(std::vector<unsigned long>({R, background}), watch->seen);
    GhostProducer ghost(stage);
    stage->producer = &ghost;
    g->moveTo(92, 10);
    EXPECT_TRUE(ghost.exposes == 1 && rgb(110, 30) != R);  // the ghost is on the window
    stage->producer = nullptr;  // but not in the bitmap, so a copy takes it away
    stage->handleExpose(nullptr);
    EXPECT_EQ(R, rgb(110, 30));
}

TEST_F(StageTest, GridDotsUnderTheLayers) {
    box(40, 40, 30, 30);
    stage->setGrid(new OrvStageGrid(blue, Orv2dPoint(5, 5), 10, 10, 1, 1, 1, 1));
    // A grid point, a place between points, and the actor covering its points.
    expectPixels({105, 85, B, 16, 15, background, 45, 45, R});
    // Snapping rounds to the nearest point, through the transformer.
    EXPECT_EQ(Orv2dPoint(25, 25), stage->snapToGrid(Orv2dPoint(21, 29)));
    stage->zoom(Orv2dPoint(0, 0), 2.0f, 2.0f);
    EXPECT_EQ(Orv2dPoint(50, 70), stage->snapToGrid(Orv2dPoint(41, 59)));
    EXPECT_EQ(B, rgb(10, 10));  // (5, 5) drawn here
    // A grid denser than 4 pixels on screen is not drawn; every second point of it is.
    stage->toStage(nullptr);
    stage->setGrid(new OrvStageGrid(blue, Orv2dPoint(0, 0), 3, 3, 0, 1, 1, 1));
    EXPECT_EQ(background, rgb(12, 12));
    stage->setGrid(new OrvStageGrid(blue, Orv2dPoint(0, 0), 3, 3, 0, 1, 2, 2));
    expectPixels({12, 12, B, 15, 15, background});
    EXPECT_EQ(13, stage->snapToGrid(Orv2dPoint(13, 14)).x);  // snapping off
}

TEST_F(StageTest, FitToContentsSelectionsAndEmptying) {
    TestBox* a = box(20, 10, 30, 20);
    TestBox* b = box(100, 60, 50, 40, blue, 2);
    stage->fitTransformerToContents();
    EXPECT_TRUE(stage->toStage() && rgb(198, 148) == B);  // b now reaches the far corner
    stage->toStage(nullptr);
    // The window grows to what lies right and below of the origin; the stage
    // takes the size when the configure event comes back.
    stage->fitToContents();
    XSync(dpy, False);
    EXPECT_TRUE(OrvTestRunUntil([&] { return stage->width == 150ul; }) && stage->height == 100ul);
    // Selected actors: their boxes with the handles' margin.
    a->setSelected(1);
    b->setSelected(1);
    EXPECT_EQ(Orv2dRect(16, 6, 138, 98), stage->bboxSelections(nullptr));
    // The contents' box spans the layers and follows the transformer; emptying tells the hooks.
    stage->deSelect();
    EXPECT_EQ(Orv2dRect(20, 10, 130, 90), stage->contentsBBox(nullptr));
    stage->zoom(Orv2dPoint(0, 0), 0.5f, 0.5f);
    EXPECT_EQ(Orv2dRect(10, 5, 65, 45), stage->contentsBBox(stage->toStage()));
    RecordingHook* hook = installHook();
    stage->empty(1);
    EXPECT_EQ(3, hook->contentsCalls);  // each actor's removal, then the emptied stage once more
    EXPECT_TRUE(rgb(55, 30) == background && !stage->contentsBBox(nullptr).w);
}

// A hook that asks for a buffered repaint while one is under way.
class ReentrantHook : public RecordingHook {
public:
    void beforeDraw(const OrvCanvas*, const Orv2dMatrix*, const Orv2dRegion*) override {
        if (before++) return;
        stage->bufferedDraw(Orv2dRect(0, 0, 10, 10));
        OrvBitmap target(stage, 5, 5, stage->depth);
        stage->bufferedDraw(&target, Orv2dPoint(0, 0));
    }
};

TEST_F(StageTest, BufferedDrawRefusesToNestAndPaintsThroughTheScreenBuffer) {
    TestBox* a = box(10, 10, 20, 20);
    TestBox* far = box(150, 100, 20, 20, blue);
    stage->install(new ReentrantHook);
    EXPECT_EQ("OrvStage::bufferedDraw : Internal error (1).\n"
              "OrvStage::bufferedDraw : Internal error (2).\n",
              OrvTestOutput([&] { stage->bufferedDraw(Orv2dRect(0, 0, 50, 50)); }));
    EXPECT_EQ("", OrvTestOutput([&] { stage->bufferedDraw(Orv2dRect(500, 500, 50, 50)); }));
    // The flag was cleared: a later call paints, through the screen buffer.
    resetCounts({a, far});
    XClearArea(dpy, stage->window(), 0, 0, 200, 150, False);  // no expose
    stage->bufferedDraw(Orv2dRect(5, 5, 30, 30));
    EXPECT_EQ(std::vector<int>({1, 0, 0, 0}),
              std::vector<int>({a->draws, far->draws, stage->windowErases, stage->drawAlls}));
    EXPECT_EQ((const OrvCanvas*)director->screenBufferBitmap, a->lastCanvas);
    expectPixels({29, 29, R, 155, 105, background});  // outside the rectangle: left alone
    OrvBitmap target(stage, 30, 30, stage->depth);
    stage->bufferedDraw(&target, Orv2dPoint(0, 0));
    EXPECT_TRUE(rgbOf(target.drawable, 15, 15) == R && rgbOf(target.drawable, 5, 5) == background);
}

TEST_F(StageTest, TransformerMapsPicturesAndHits) {
    TestBox* a = box(10, 10, 20, 20);
    TestBox* far = box(150, 100, 20, 20, blue);
    RecordingHook* hook = installHook();
    stage->zoom(Orv2dPoint(0, 0), 2.0f, 2.0f);
    EXPECT_EQ(1, hook->transformers);
    expectPixels({55, 55, R, 65, 65, background});
    // Far's own place is now elsewhere.
    EXPECT_TRUE(!stage->contains(Orv2dPoint(160, 110)) &&
                stage->contains(Orv2dPoint(310, 210)) == far);
    stage->translate(10, 5);
    // A move under the transformer repaints the mapped boxes.
    resetCounts({a, far});
    a->moveTo(40, 10);
    expectPixels({95, 30, R, 35, 30, background});
    EXPECT_EQ(0, far->draws);
    // Setting the same mapping again tells no hook; a factor 0 is refused while one is set.
    Orv2dMatrix same = *stage->toStage();
    stage->toStage(&same);
    stage->translate(0, 0);
    EXPECT_EQ("OrvStage::zoom: invalid transformer.\n",
              OrvTestOutput([&] { stage->zoom(Orv2dPoint(0, 0), 0.0f, 1.0f); }));
    EXPECT_EQ(2, hook->transformers);
    stage->toStage(nullptr);
    EXPECT_TRUE(hook->transformers == 3 && rgb(95, 30) == R);  // no repaint until asked
    // Without a transformer a factor 0 goes through.
    EXPECT_EQ("", OrvTestOutput([&] { stage->zoom(Orv2dPoint(0, 0), 0.0f, 1.0f); }));
    EXPECT_TRUE(stage->toStage() && stage->toStage()->isBad());
}

TEST_F(StageTest, ExposeAndResizeRepaintWhatTheyMust) {
    TestBox* a = box(10, 10, 20, 20);
    TestBox* b = box(120, 80, 40, 40, blue);
    TestBox* right = box(230, 20, 30, 30, blue);
    RecordingHook* hook = installHook();
    XResizeWindow(dpy, stage->window(), 300, 200);
    ASSERT_TRUE(OrvTestRunUntil([&] { return stage->width == 300 && right->draws > 0; }));
    OrvTestRunFor(20);
    EXPECT_TRUE(hook->resized == 1 && rgb(240, 30) == B);
    // An expose repaints the exposed part.
    resetCounts({a, b});
    XClearArea(dpy, stage->window(), 0, 0, 60, 60, True);  // cleared, with an Expose
    ASSERT_TRUE(OrvTestRunUntil([&] { return a->draws > 0; }));
    OrvTestRunFor(20);
    EXPECT_TRUE(b->draws == 0 && rgb(20, 20) == R);
    // Double buffered: a copy alone.
    stage->useDoubleBuffer(1);
    resetCounts({a, b});
    hook->before = hook->copies = 0;
    XClearArea(dpy, stage->window(), 0, 0, 160, 140, True);
    ASSERT_TRUE(OrvTestRunUntil([&] { return hook->copies > 0; }));
    EXPECT_EQ(std::vector<int>({0, 0, 0, 0}),
              std::vector<int>({a->draws, b->draws, stage->drawAlls, hook->before}));
    EXPECT_TRUE(hook->copyCanvas == stage->hasDoubleBuffer() && rgb(130, 90) == B);
    // A double-buffered stage gets a new bitmap and one full repaint on a resize.
    resetCounts({a, right});
    XResizeWindow(dpy, stage->window(), 320, 220);
    ASSERT_TRUE(OrvTestRunUntil([&] { return stage->width == 320; }));
    OrvTestRunFor(20);
    ASSERT_NE(nullptr, stage->hasDoubleBuffer());
    EXPECT_EQ(Orv2dPoint(320, 220),
              Orv2dPoint(stage->hasDoubleBuffer()->width, stage->hasDoubleBuffer()->height));
    EXPECT_TRUE(a->draws >= 1 && rgb(15, 15) == R);
    // Same size, new place: nothing at all.
    hook->resized = stage->drawAlls = 0;
    stage->handleResize(Orv2dRect(0, 0, 320, 220), Orv2dRect(5, 5, 320, 220));
    EXPECT_EQ(0, hook->resized + stage->drawAlls + stage->x);
}
