// The grid under the layers, the fitting of contents, and the guard of the
// shared screen buffer.
#include "test_stage_support.h"

TEST_F(StageTest, GridDotsUnderTheLayers) {
    TestBox* a = box(40, 40, 30, 30);
    stage->setGrid(new OrvStageGrid(blue, Orv2dPoint(5, 5), 10, 10, 1, 1, 1, 1));
    EXPECT_EQ(0x0000fful, rgb(15, 15));  // a grid point
    EXPECT_EQ(0x0000fful, rgb(105, 85));
    EXPECT_EQ(background, rgb(16, 15));  // between points
    EXPECT_EQ(background, rgb(10, 10));
    EXPECT_EQ(0xff0000ul, rgb(45, 45));  // the actor covers its points
    (void)a;

    // Snapping rounds to the nearest point, through the transformer.
    EXPECT_EQ(25, stage->snapToGrid(Orv2dPoint(21, 29)).x);
    EXPECT_EQ(25, stage->snapToGrid(Orv2dPoint(21, 29)).y);
    stage->zoom(Orv2dPoint(0, 0), 2.0f, 2.0f);
    Orv2dPoint s = stage->snapToGrid(Orv2dPoint(41, 59));  // 20.5, 29.5 on the stage
    EXPECT_EQ(50, s.x);
    EXPECT_EQ(70, s.y);
    EXPECT_EQ(0x0000fful, rgb(10, 10));  // (5, 5) drawn at (10, 10)
    EXPECT_EQ(background, rgb(20, 10));

    // A grid denser than 4 pixels on screen is not drawn.
    stage->toStage(nullptr);
    stage->setGrid(new OrvStageGrid(blue, Orv2dPoint(0, 0), 3, 3, 0, 1, 1, 1));
    EXPECT_EQ(background, rgb(15, 15));
    EXPECT_EQ(background, rgb(12, 12));
    // Every second point of a 3-pixel grid is 6 apart: drawn.
    stage->setGrid(new OrvStageGrid(blue, Orv2dPoint(0, 0), 3, 3, 0, 1, 2, 2));
    EXPECT_EQ(0x0000fful, rgb(12, 12));
    EXPECT_EQ(background, rgb(15, 15));
    // Snapping off leaves points alone.
    EXPECT_EQ(13, stage->snapToGrid(Orv2dPoint(13, 14)).x);
    stage->setGrid(nullptr);
    EXPECT_EQ(background, rgb(12, 12));
}

TEST_F(StageTest, FitToContentsAndSelections) {
    TestBox* a = box(20, 10, 30, 20);
    TestBox* b = box(100, 60, 50, 40, blue);
    // The transformer that fits the contents to the view's box.
    stage->fitTransformerToContents();
    ASSERT_NE(nullptr, stage->toStage());
    Orv2dRect fitted = stage->contentsBBox(stage->toStage());
    Orv2dRect view = stage->bbox();
    EXPECT_NEAR(view.x, fitted.x, 1);
    EXPECT_NEAR(view.y, fitted.y, 1);
    EXPECT_NEAR((double)view.w, (double)fitted.w, 1);
    EXPECT_NEAR((double)view.h, (double)fitted.h, 1);
    EXPECT_EQ(0x0000fful, rgb(198, 148));  // b now reaches the far corner
    stage->toStage(nullptr);

    // The window grows to what lies right and below of the origin; the stage
    // takes the size when the configure event comes back.
    stage->fitToContents();
    XSync(dpy, False);
    EXPECT_TRUE(OrvTestRunUntil([&] { return stage->width == 150ul; }));
    EXPECT_EQ(100ul, stage->height);

    // Selected actors: their boxes with the handles' margin.
    EXPECT_EQ(0u, stage->bboxSelections(nullptr).w);
    a->setSelected(1);
    b->setSelected(1);
    Orv2dRect sel = stage->bboxSelections(nullptr);
    EXPECT_EQ(16, sel.x);
    EXPECT_EQ(6, sel.y);
    EXPECT_EQ(138u, sel.w);
    EXPECT_EQ(98u, sel.h);
}

// A hook that asks for a buffered repaint while one is under way.
class ReentrantHook : public OrvStageHook {
public:
    int calls = 0;
    void beforeDraw(const OrvCanvas*, const Orv2dMatrix*, const Orv2dRegion*) override {
        if (calls++) return;
        stage->bufferedDraw(Orv2dRect(0, 0, 10, 10));
        OrvBitmap target(stage, 5, 5, stage->depth);
        stage->bufferedDraw(&target, Orv2dPoint(0, 0));
    }
    unsigned long deletedByStage() const override { return 1; }
};

TEST_F(StageTest, BufferedDrawRefusesToNest) {
    box(10, 10, 20, 20);
    ReentrantHook* hook = new ReentrantHook;
    stage->install(hook);
    testing::internal::CaptureStdout();
    stage->bufferedDraw(Orv2dRect(0, 0, 50, 50));
    EXPECT_EQ("OrvStage::bufferedDraw : Internal error (1).\n"
              "OrvStage::bufferedDraw : Internal error (2).\n",
              testing::internal::GetCapturedStdout());
    EXPECT_EQ(0xff0000ul, rgb(15, 15));
    // Outside the window there is nothing to do, and no message.
    testing::internal::CaptureStdout();
    stage->bufferedDraw(Orv2dRect(500, 500, 50, 50));
    EXPECT_EQ("", testing::internal::GetCapturedStdout());
    // The flag was cleared: a later call paints.
    XClearArea(dpy, stage->window(), 0, 0, 200, 150, False);
    stage->bufferedDraw(Orv2dRect(0, 0, 50, 50));
    EXPECT_EQ(0xff0000ul, rgb(15, 15));
}

// A hook the stage does not own outlives it, told by its cleared stage; an
// owned one dies with it. Nothing paints while the stage goes.
class KeptHook : public OrvStageHook {
public:
    int draws = 0;
    int contentsCalls = 0;
    void beforeDraw(const OrvCanvas*, const Orv2dMatrix*, const Orv2dRegion*) override { draws++; }
    void contents() override { contentsCalls++; }
};

TEST_F(StageTest, DestructorLetsHooksGoAndPaintsNothing) {
    KeptHook kept;
    RecordingHook* owned = new RecordingHook;
    stage->install(&kept);
    stage->install(owned);
    box(10, 10, 20, 20);
    box(50, 50, 20, 20, blue);
    // Contents changes are told only while both switches are on.
    kept.contentsCalls = 0;
    OrvAllowCallContentsChanged = 0;
    stage->contentsChanged();
    EXPECT_EQ(0, kept.contentsCalls);
    OrvAllowCallContentsChanged = 1;
    stage->contentsChanged();
    EXPECT_EQ(1, kept.contentsCalls);
    kept.draws = 0;
    stage->drawAlls = 0;
    delete stage;  // the owned hook goes with it (the sanitizer build sees a leak otherwise)
    stage = nullptr;
    EXPECT_EQ(nullptr, kept.stage);
    EXPECT_EQ(0, kept.draws);
}
