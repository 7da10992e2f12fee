// The stage's default accelerators, each with its key typed through XTest,
// and the clipboard's behaviour on an empty cut buffer.
#include "orv_fixtures.h"

TEST_F(RouteTest, CountPasteSelectAllDeselectDeleteAndDuplicateByKeys) {
    stage->installAccelerators(0);
    EXPECT_EQ(17u, stage->accelerators.length());
    TestBox* a = box(20, 20, 40, 30);
    TestBox* b = box(150, 100, 40, 30, blue);
    moveTo(250, 180);
    // Control-N reports the actors first.
    std::string out = OrvTestOutput([&] { type(XK_n, XK_Control_L); });
    EXPECT_EQ(0u, out.find("Found 2 objects in stage ...\nMakeUp's hash table report : ")) << out;
    EXPECT_NE(std::string::npos, out.find("Number of color entries : "));
    EXPECT_NE(std::string::npos, out.find("   Equivalent colors array : \n"));
    // Paste with an empty clipboard does nothing and paints nothing.
    XStoreBytes(dpy, "", 0);
    XSync(dpy, False);
    RecordingHook* hook = installHook();
    type(XK_v, XK_Control_L);
    stage->paste(Orv2dPoint(10, 10), 1);
    EXPECT_TRUE(stage->cardinal() == 2u && hook->before == 0);
    // Copy and cut without a selection leave the cut buffer alone.
    XStoreBytes(dpy, "keep", 4);
    XSync(dpy, False);
    stage->copy();
    stage->cut();
    int n = 0;
    char* bytes = XFetchBytes(dpy, &n);
    EXPECT_EQ("keep", std::string(bytes, n));
    XFree(bytes);

    type(XK_a, XK_Control_L);
    EXPECT_TRUE(a->isSelected() && b->isSelected());
    type(XK_b, XK_Control_L);
    EXPECT_FALSE(a->isSelected() || b->isSelected());

    // Control-D: copies at 10, 10 further, selected, the sources deselected.
    a->setSelected(1);
    type(XK_d, XK_Control_L);
    ASSERT_EQ(3u, stage->cardinal());
    TestBox* copy = (TestBox*)stage->selection(0);
    ASSERT_TRUE(copy && copy != a && !a->isSelected());
    EXPECT_TRUE(copy->box == Orv2dRect(30, 30, 40, 30) && rgb(65, 55) == 0xff0000ul);

    // Delete removes and deletes the selections.
    type(XK_Delete);
    EXPECT_TRUE(stage->cardinal() == 2u && !stage->selectionList.length());
    EXPECT_EQ(background, rgb(65, 55));
}

TEST_F(RouteTest, ReadOnlyStageKeepsItsActors) {
    stage->installAccelerators(1);
    box(20, 20, 40, 30)->setSelected(1);
    moveTo(250, 180);
    type(XK_Delete);
    type(XK_x, XK_Control_L);
    EXPECT_EQ(1u, stage->cardinal());
}

TEST_F(RouteTest, ViewAcceleratorsMoveZoomRotateAndResetTheTransformer) {
    stage->installAccelerators(0);
    box(20, 20, 40, 30);
    moveTo(250, 180);
    // Right: the picture goes right by a width / 8 of 300, that is 37.
    type(XK_Right);
    ASSERT_NE(nullptr, stage->transformer);
    expectPixels({58, 25, 0xff0000, 25, 25, background});
    type(XK_Down);  // 200 / 8
    EXPECT_EQ(Orv2dPoint(37, 25), Orv2dPoint(stage->transformer->tx, stage->transformer->ty));
    type(XK_Left);
    type(XK_Up);
    EXPECT_EQ(Orv2dPoint(0, 0), Orv2dPoint(stage->transformer->tx, stage->transformer->ty));

    // Control-Z zooms by 2 about the centre 150, 100.
    type(XK_z, XK_Control_L);
    EXPECT_TRUE(stage->transformer->a == 2.0f && stage->transformer->tx == -150.0f);
    type(XK_u, XK_Control_L);
    EXPECT_FLOAT_EQ(1.0f, stage->transformer->a);
    // Control-R: a quarter turn about the centre.
    type(XK_r, XK_Control_L);
    EXPECT_EQ(
        std::vector<float>({0, 1, -1}),
        std::vector<float>({stage->transformer->a, stage->transformer->b, stage->transformer->c}));
    // Control-O: back to no transformer.
    type(XK_o, XK_Control_L);
    EXPECT_TRUE(!stage->transformer && rgb(25, 25) == 0xff0000ul);
    // Control-F fits the contents to the window.
    type(XK_f, XK_Control_L);
    EXPECT_TRUE(stage->transformer && rgb(150, 100) == 0xff0000ul);
}

// Control-C in one stage, control-V in another of the same director and in a
// stage of a second director on the same display: the actors travel as
// persistent text through the server's cut buffer and land at the pointer.
TEST_F(RouteTest, CopyAndPasteAcrossStagesAndDirectorsThroughTheCutBuffer) {
    stage->installAccelerators(0);
    OrvActor* r = new OrvFilledRectangle(director, Orv2dRect(20, 30, 40, 20), red);
    stage->append(r, 0);
    r->setSelected(1);
    moveTo(250, 180);
    type(XK_c, XK_Control_L);

    OrvStage* other = newStage(Orv2dRect(320, 0, 200, 150));
    other->installAccelerators(0);
    moveTo(100, 70, other);
    type(XK_v, XK_Control_L, other);
    unsigned count = 0;
    OrvActor** all = other->objects(count);
    ASSERT_EQ(1u, count);
    EXPECT_EQ(Orv2dRect(100, 70, 40, 20), all[0]->bbox2d(nullptr));
    delete[] all;
    EXPECT_TRUE(rgb(110, 75, other) == 0xff0000ul && stage->cardinal() == 1u);

    // A second director on the same display reads the same cut buffer.
    OrvDirector* second = new OrvDirector("testroute2", nullptr, 0, nullptr);
    OrvStage* far = newStage(Orv2dRect(540, 0, 200, 150), second);
    far->installAccelerators(0);
    far->paste(Orv2dPoint(10, 20), 1);
    ASSERT_TRUE(far->selection(0) &&
                far->selection(0)->bbox2d(nullptr) == Orv2dRect(10, 20, 40, 20));

    // Control-X: the actor leaves (the cut buffer's text is the stream tests' matter).
    moveTo(150, 100, other);
    other->apply([](OrvActor* a, void*) { a->setSelected(1); }, nullptr);
    type(XK_x, XK_Control_L, other);
    EXPECT_EQ(0u, other->cardinal());
    delete far;
    delete second;
    delete other;
}
