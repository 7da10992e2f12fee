// The stage's default accelerators, each with its key typed through XTest,
// and the clipboard's behaviour on an empty cut buffer.
#include "test_route_support.h"

#include <typeinfo>

class CountingHook : public OrvStageHook {
public:
    int draws = 0;
    void beforeDraw(const OrvCanvas*, const Orv2dMatrix*, const Orv2dRegion*) override { draws++; }
    unsigned long deletedByStage() const override { return 1; }
};

TEST_F(RouteTest, DefaultAcceleratorsAreInstalledInOrderWithTheirKeys) {
    stage->installAccelerators(0);
    struct Row {
        unsigned short key;
        const char* cls;
    } rows[] = {{26, "OrvZoomAccelerator"},          {21, "OrvZoomAccelerator"},
                {551, "OrvTranslateAccelerator"},    {550, "OrvTranslateAccelerator"},
                {553, "OrvTranslateAccelerator"},    {552, "OrvTranslateAccelerator"},
                {15, "OrvIdentityAccelerator"},      {4, "OrvDuplicateAccelerator"},
                {6, "OrvFitTransformerAccelerator"}, {18, "OrvRotateAccelerator"},
                {1, "OrvSelectAccelerator"},         {2, "OrvSelectAccelerator"},
                {127, "OrvDeleteAccelerator"},       {24, "OrvCutAccelerator"},
                {3, "OrvCopyAccelerator"},           {22, "OrvPasteAccelerator"},
                {14, "OrvCountAccelerator"}};
    ASSERT_EQ(17u, stage->accelerators.length());
    OrvLink* l = stage->accelerators.first;
    for (const Row& r : rows) {
        OrvAccelerator* a = (OrvAccelerator*)l->value;
        EXPECT_EQ(OrvKeyDown, a->type);
        EXPECT_EQ(r.key, a->key);
        EXPECT_EQ(0, a->modifiers);
        EXPECT_NE(nullptr, strstr(typeid(*a).name(), r.cls)) << r.cls;
        l = l->next;
    }
    OrvZoomAccelerator* in = (OrvZoomAccelerator*)stage->accelerators.first->value;
    EXPECT_EQ(1ul, in->in);
    EXPECT_FLOAT_EQ(2.0f, in->factor);
    OrvTranslateAccelerator* left =
        (OrvTranslateAccelerator*)stage->accelerators.first->next->next->value;
    EXPECT_EQ(1ul, left->direction);
    EXPECT_FLOAT_EQ(8.0f, left->divisor);
}

TEST_F(RouteTest, SelectAllDeselectDeleteAndDuplicateByKeys) {
    stage->installAccelerators(0);
    RouteBox* a = box(20, 20, 40, 30);
    RouteBox* b = box(150, 100, 40, 30, blue);
    moveTo(250, 180);
    type(XK_a, XK_Control_L);
    EXPECT_TRUE(a->isSelected());
    EXPECT_TRUE(b->isSelected());
    type(XK_b, XK_Control_L);
    EXPECT_FALSE(a->isSelected());
    EXPECT_FALSE(b->isSelected());

    // Control-D: copies at 10, 10 further, selected, the sources deselected.
    a->setSelected(1);
    type(XK_d, XK_Control_L);
    ASSERT_EQ(3u, stage->cardinal());
    EXPECT_FALSE(a->isSelected());
    RouteBox* copy = (RouteBox*)stage->selection(0);
    ASSERT_NE(nullptr, copy);
    EXPECT_NE(a, copy);
    EXPECT_EQ(30, copy->box.x);
    EXPECT_EQ(30, copy->box.y);
    EXPECT_EQ(40u, copy->box.w);
    EXPECT_EQ(0xff0000ul, rgb(65, 55));

    // Delete removes and deletes the selections.
    type(XK_Delete);
    EXPECT_EQ(2u, stage->cardinal());
    EXPECT_EQ(background, rgb(65, 55));
    EXPECT_EQ(0u, stage->selectionList.length());
}

TEST_F(RouteTest, ReadOnlyStageKeepsItsActors) {
    stage->installAccelerators(1);
    RouteBox* a = box(20, 20, 40, 30);
    a->setSelected(1);
    moveTo(250, 180);
    type(XK_Delete);
    type(XK_x, XK_Control_L);
    EXPECT_EQ(1u, stage->cardinal());
}

TEST_F(RouteTest, ViewAcceleratorsMoveZoomRotateAndResetTheTransformer) {
    stage->installAccelerators(0);
    RouteBox* a = box(20, 20, 40, 30);
    moveTo(250, 180);
    // Right: the picture goes right by a width / 8 of 300, that is 37.
    type(XK_Right);
    ASSERT_NE(nullptr, stage->transformer);
    EXPECT_FLOAT_EQ(37.0f, stage->transformer->tx);
    EXPECT_EQ(0xff0000ul, rgb(58, 25));
    EXPECT_EQ(background, rgb(25, 25));
    type(XK_Down);  // 200 / 8
    EXPECT_FLOAT_EQ(25.0f, stage->transformer->ty);
    type(XK_Left);
    type(XK_Up);
    EXPECT_FLOAT_EQ(0.0f, stage->transformer->tx);
    EXPECT_FLOAT_EQ(0.0f, stage->transformer->ty);
    EXPECT_EQ(0xff0000ul, rgb(25, 25));

    // Control-Z zooms by 2 about the centre 150, 100.
    type(XK_z, XK_Control_L);
    EXPECT_FLOAT_EQ(2.0f, stage->transformer->a);
    EXPECT_FLOAT_EQ(-150.0f, stage->transformer->tx);
    type(XK_u, XK_Control_L);
    EXPECT_FLOAT_EQ(1.0f, stage->transformer->a);
    // Control-R: a quarter turn about the centre.
    type(XK_r, XK_Control_L);
    EXPECT_FLOAT_EQ(0.0f, stage->transformer->a);
    EXPECT_FLOAT_EQ(1.0f, stage->transformer->b);
    EXPECT_FLOAT_EQ(-1.0f, stage->transformer->c);
    // Control-O: back to no transformer.
    type(XK_o, XK_Control_L);
    EXPECT_EQ(nullptr, stage->transformer);
    EXPECT_EQ(0xff0000ul, rgb(25, 25));
    // Control-F fits the contents to the window.
    type(XK_f, XK_Control_L);
    ASSERT_NE(nullptr, stage->transformer);
    EXPECT_EQ(0xff0000ul, rgb(150, 100));
    (void)a;
}

TEST_F(RouteTest, CountReportsTheActorsFirst) {
    stage->installAccelerators(0);
    box(20, 20, 40, 30);
    box(120, 20, 40, 30);
    moveTo(250, 180);
    OrvTestFocus(dpy, stage->window());
    XSync(dpy, False);
    testing::internal::CaptureStdout();
    OrvTestType(dpy, XK_n, XK_Control_L);
    settle();
    std::string out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(0u, out.find("Found 2 objects in stage ...\nMakeUp's hash table report : ")) << out;
    EXPECT_NE(std::string::npos, out.find("Number of color entries : "));
    EXPECT_NE(std::string::npos, out.find("   Equivalent colors array : \n"));
}

TEST_F(RouteTest, PasteWithAnEmptyClipboardDoesNothingAndPaintsNothing) {
    stage->installAccelerators(0);
    box(20, 20, 40, 30);
    XStoreBytes(dpy, "", 0);
    XSync(dpy, False);
    CountingHook* hook = new CountingHook;
    stage->install(hook);
    moveTo(200, 150);
    type(XK_v, XK_Control_L);
    EXPECT_EQ(1u, stage->cardinal());
    EXPECT_EQ(0, hook->draws);
    stage->paste(Orv2dPoint(10, 10), 1);
    EXPECT_EQ(1u, stage->cardinal());
    EXPECT_EQ(0, hook->draws);
    // Copy and cut without a selection leave the cut buffer alone.
    XStoreBytes(dpy, "keep", 4);
    XSync(dpy, False);
    stage->copy();
    stage->cut();
    int n = 0;
    char* bytes = XFetchBytes(dpy, &n);
    ASSERT_EQ(4, n);
    EXPECT_EQ(0, memcmp(bytes, "keep", 4));
    XFree(bytes);
}

#if __has_include("orv/stream.h")
#include "orv/shapes.h"

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
    int n = 0;
    char* bytes = XFetchBytes(dpy, &n);
    ASSERT_NE(nullptr, bytes);
    std::string text(bytes, n);
    XFree(bytes);
    EXPECT_NE(std::string::npos, text.find("OrvFilledRectangle")) << text;

    OrvStage* other = newStage(Orv2dRect(320, 0, 200, 150));
    other->installAccelerators(0);
    moveTo(100, 70, other);
    type(XK_v, XK_Control_L, other);
    ASSERT_EQ(1u, other->cardinal());
    OrvActor* pasted = other->selection(0) ? other->selection(0) : nullptr;
    unsigned count = 0;
    OrvActor** all = other->objects(count);
    ASSERT_EQ(1u, count);
    Orv2dRect box = all[0]->bbox2d(nullptr);
    delete[] all;
    EXPECT_EQ(100, box.x);
    EXPECT_EQ(70, box.y);
    EXPECT_EQ(40u, box.w);
    EXPECT_EQ(20u, box.h);
    EXPECT_EQ(nullptr, pasted);  // the paste key does not select
    EXPECT_EQ(0xff0000ul, rgb(110, 75, other));
    EXPECT_EQ(1u, stage->cardinal());

    // A second director on the same display reads the same cut buffer.
    OrvDirector* second = new OrvDirector("testroute2", nullptr, 0, nullptr);
    OrvStage* far = newStage(Orv2dRect(540, 0, 200, 150), second);
    far->installAccelerators(0);
    far->paste(Orv2dPoint(10, 20), 1);
    ASSERT_EQ(1u, far->cardinal());
    ASSERT_NE(nullptr, far->selection(0));
    Orv2dRect fbox = far->selection(0)->bbox2d(nullptr);
    EXPECT_EQ(10, fbox.x);
    EXPECT_EQ(20, fbox.y);
    EXPECT_EQ(40u, fbox.w);

    // Cut: the actor leaves and the cut buffer holds it.
    XStoreBytes(dpy, "", 0);
    XSync(dpy, False);
    moveTo(150, 100, other);
    other->apply([](OrvActor* a, void*) { a->setSelected(1); }, nullptr);
    type(XK_x, XK_Control_L, other);
    EXPECT_EQ(0u, other->cardinal());
    bytes = XFetchBytes(dpy, &n);
    ASSERT_NE(nullptr, bytes);
    EXPECT_NE(std::string::npos, std::string(bytes, n).find("OrvFilledRectangle"));
    XFree(bytes);
    delete far;
    delete second;
    delete other;
}
#endif
