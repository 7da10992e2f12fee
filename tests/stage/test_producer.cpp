// Producers driven end to end with XTest: selection by click, shift-click and
// rubber band, moves with their ghost, reshapes by each handle, rectangles,
// the producer stack and the ghosts that must not stay on the window.
#include "test_route_support.h"

class ProducerTest : public RouteTest {
protected:
    OrvSelectProducer* select = nullptr;
    void SetUp() override {
        RouteTest::SetUp();
        if (!stage) return;
        select = new OrvSelectProducer(stage);
        stage->setProducer(select);
    }
    unsigned selected() {
        unsigned n = 0;
        OrvActor** s = stage->selections(n);
        delete[] s;
        return n;
    }
};

TEST_F(ProducerTest, SelectByClickAndShiftClick) {
    RouteBox* a = box(20, 20, 60, 40);
    RouteBox* b = box(150, 20, 60, 40, blue);
    click(50, 40);
    EXPECT_TRUE(a->isSelected());
    EXPECT_FALSE(b->isSelected());
    EXPECT_EQ(1u, selected());
    // The handles show: the top-left handle's square is painted at 16..23.
    EXPECT_NE(background, rgb(17, 17));

    click(180, 40);
    EXPECT_FALSE(a->isSelected());
    EXPECT_TRUE(b->isSelected());

    // Shift adds to the selection and starts no drag.
    moveTo(50, 40);
    OrvTestKey(dpy, XK_Shift_L, true);
    settle();
    OrvTestButton(dpy, 1, true);
    settle();
    moveTo(90, 80);
    OrvTestButton(dpy, 1, false);
    OrvTestKey(dpy, XK_Shift_L, false);
    settle();
    EXPECT_TRUE(a->isSelected());
    EXPECT_TRUE(b->isSelected());
    EXPECT_EQ(20, a->box.x);
    EXPECT_EQ(2u, selected());

    // A plain click on a selected actor, without motion, deselects all.
    click(50, 40);
    EXPECT_EQ(0u, selected());

    // A click on empty space deselects.
    click(50, 40);
    EXPECT_EQ(1u, selected());
    click(250, 150);
    EXPECT_EQ(0u, selected());
    EXPECT_TRUE(sameAsRepaint());
}

TEST_F(ProducerTest, RubberBandSelectsWhatLiesInsideAndLeavesNoGhost) {
    RouteBox* a = box(20, 20, 60, 40);
    RouteBox* b = box(150, 20, 60, 40, blue);
    RouteBox* c = box(100, 120, 60, 40);
    std::vector<unsigned long> clean = snapshot();

    press(10, 10);
    moveTo(120, 70);
    moveTo(230, 80);
    // The band's outline is on the window, by exclusive or.
    EXPECT_NE(background, rgb(10, 75));
    EXPECT_NE(background, rgb(200, 10));
    EXPECT_EQ(background, rgb(240, 75));
    release();
    EXPECT_TRUE(a->isSelected());
    EXPECT_TRUE(b->isSelected());
    EXPECT_FALSE(c->isSelected());
    EXPECT_EQ(background, rgb(10, 75));
    EXPECT_EQ(background, rgb(200, 10));
    EXPECT_TRUE(sameAsRepaint());

    // A band that holds nothing whole selects nothing.
    drag(90, 110, 130, 150);
    EXPECT_EQ(0u, selected());
    EXPECT_EQ(clean, snapshot());
    EXPECT_TRUE(sameAsRepaint());
}

TEST_F(ProducerTest, MoveShowsTheGhostAndLandsToThePixel) {
    RouteBox* a = box(20, 20, 60, 40);
    RouteBox* b = box(150, 100, 60, 40, blue);
    click(50, 40);
    ASSERT_TRUE(a->isSelected());

    press(50, 40);
    moveTo(80, 60);
    moveTo(103, 77);
    // The ghost is the box of the selections (handles included), moved by the delta.
    EXPECT_EQ(20, a->box.x);
    EXPECT_NE(background, rgb(20 - 4 + 53, 40 + 37));
    EXPECT_NE(background, rgb(50 + 53, 20 - 4 + 37));
    release();
    EXPECT_EQ(73, a->box.x);
    EXPECT_EQ(57, a->box.y);
    EXPECT_EQ(60u, a->box.w);
    EXPECT_EQ(40u, a->box.h);
    EXPECT_EQ(150, b->box.x);
    EXPECT_TRUE(a->isSelected());
    EXPECT_EQ(0xff0000ul, rgb(73 + 5, 57 + 5));
    EXPECT_EQ(background, rgb(30, 30));
    EXPECT_TRUE(sameAsRepaint());

    // Both selected move together.
    moveTo(180, 120);
    OrvTestKey(dpy, XK_Shift_L, true);
    settle();
    click(180, 120);
    OrvTestKey(dpy, XK_Shift_L, false);
    settle();
    ASSERT_EQ(2u, selected());
    drag(100, 75, 110, 70);
    EXPECT_EQ(83, a->box.x);
    EXPECT_EQ(52, a->box.y);
    EXPECT_EQ(160, b->box.x);
    EXPECT_EQ(95, b->box.y);
    EXPECT_TRUE(sameAsRepaint());

    // A press on an actor that is not moveable selects it and starts no drag.
    stage->deSelect();
    b->setMoveable(0);
    drag(180, 110, 220, 150);
    EXPECT_TRUE(b->isSelected());
    EXPECT_EQ(160, b->box.x);
    EXPECT_TRUE(sameAsRepaint());
}

TEST_F(ProducerTest, MoveProducerAloneDeclinesTheReleaseAndIgnoresZeroDelta) {
    RouteBox* a = box(20, 20, 60, 40);
    OrvMoveProducer* move = new OrvMoveProducer(stage);
    stage->setProducer(move);
    OfferLog acc, down;
    stage->add(new RecordingAccelerator(&acc, OrvButtonUp, 1, OrvAnyModifiers));
    stage->add(new RecordingAccelerator(&down, OrvButtonDown, 1, OrvAnyModifiers));
    // A press on empty space deselects and is declined.
    a->setSelected(1);
    click(250, 150);
    EXPECT_FALSE(a->isSelected());
    EXPECT_EQ(1u, down.size());
    acc.clear();
    press(40, 30);
    EXPECT_EQ(1u, down.size());
    EXPECT_EQ(1ul, move->active);
    EXPECT_TRUE(a->isSelected());
    release();
    EXPECT_EQ(0ul, move->active);
    EXPECT_EQ(20, a->box.x);
    // The release is declined, so the accelerator saw it.
    EXPECT_EQ(1u, acc.size());
    drag(40, 30, 60, 45);
    EXPECT_EQ(40, a->box.x);
    EXPECT_EQ(35, a->box.y);
    EXPECT_EQ(2u, acc.size());
    EXPECT_EQ(std::string("Move"), move->className());
    EXPECT_TRUE(sameAsRepaint());
    // Abort stops a drag without erasing: the next repaint cleans up.
    press(50, 40);
    moveTo(80, 60);
    stage->setProducer(nullptr);
    EXPECT_EQ(0ul, move->active);
    release();
    EXPECT_EQ(40, a->box.x);
}

// Each of the eight handles of a 60 by 40 box at 100, 60, dragged by 15, 10.
TEST_F(ProducerTest, ReshapeByEachOfTheEightHandles) {
    struct Case {
        int hx, hy;
        OrvPosition position;
    } cases[] = {{100, 60, 5}, {100, 100, 9}, {160, 60, 6}, {160, 100, 10},
                 {100, 80, 1}, {160, 80, 2},  {130, 60, 4}, {130, 100, 8}};
    for (const Case& c : cases) {
        RouteBox* a = box(100, 60, 60, 40);
        stage->deSelect();
        a->setSelected(1);
        Orv2dRect expected = OrvReshapeProducer::computeBox(
            Orv2dRect(100, 60, 60, 40), Orv2dPoint(c.hx + 15, c.hy + 10), c.position);
        press(c.hx, c.hy);
        EXPECT_EQ(select->reshape, select->inUse) << "handle " << c.position;
        EXPECT_EQ(c.position, select->reshape->position);
        moveTo(c.hx + 8, c.hy + 5);
        moveTo(c.hx + 15, c.hy + 10);
        release();
        EXPECT_EQ(expected.x, a->box.x) << "handle " << c.position;
        EXPECT_EQ(expected.y, a->box.y) << "handle " << c.position;
        EXPECT_EQ(expected.w, a->box.w) << "handle " << c.position;
        EXPECT_EQ(expected.h, a->box.h) << "handle " << c.position;
        EXPECT_TRUE(sameAsRepaint()) << "handle " << c.position;
        stage->remove(a, 1);
    }
    // The table itself, for the right-bottom and the top handles.
    Orv2dRect r =
        OrvReshapeProducer::computeBox(Orv2dRect(100, 60, 60, 40), Orv2dPoint(175, 110), 10);
    EXPECT_EQ(100, r.x);
    EXPECT_EQ(60, r.y);
    EXPECT_EQ(75u, r.w);
    EXPECT_EQ(50u, r.h);
    r = OrvReshapeProducer::computeBox(Orv2dRect(100, 60, 60, 40), Orv2dPoint(999, 50), 4);
    EXPECT_EQ(100, r.x);
    EXPECT_EQ(50, r.y);
    EXPECT_EQ(60u, r.w);
    EXPECT_EQ(50u, r.h);
}

TEST_F(ProducerTest, ReshapePastTheOppositeEdgeGivesAPositiveSize) {
    RouteBox* a = box(100, 60, 60, 40);
    a->setSelected(1);
    press(160, 100);
    moveTo(120, 80);
    moveTo(80, 40);
    release();
    EXPECT_EQ(80, a->box.x);
    EXPECT_EQ(40, a->box.y);
    EXPECT_EQ(20u, a->box.w);
    EXPECT_EQ(20u, a->box.h);
    EXPECT_TRUE(sameAsRepaint());
    // An actor that is not resizeable keeps its size when its handle is dragged.
    a->setResizeable(0);
    drag(100, 60, 110, 70);
    EXPECT_EQ(20u, a->box.w);
}

// Remembers the rectangles it is given.
class RecordingRectangle : public OrvRectangleProducer {
public:
    std::vector<Orv2dRect> rects;
    explicit RecordingRectangle(OrvStage* s) : OrvRectangleProducer(s) {}
    void activate2d(const Orv2dRect& r) override { rects.push_back(r); }
};

TEST_F(ProducerTest, RectangleProducerDragsOutARectangle) {
    RecordingRectangle* p = new RecordingRectangle(stage);
    stage->setProducer(p);
    EXPECT_EQ(std::string("DragRectangle"), p->className());
    press(120, 90);
    moveTo(80, 60);
    moveTo(50, 40);
    EXPECT_NE(background, rgb(50, 60));
    EXPECT_NE(background, rgb(100, 40));
    release();
    ASSERT_EQ(1u, p->rects.size());
    EXPECT_EQ(50, p->rects[0].x);
    EXPECT_EQ(40, p->rects[0].y);
    EXPECT_EQ(70u, p->rects[0].w);
    EXPECT_EQ(50u, p->rects[0].h);
    EXPECT_EQ(background, rgb(50, 60));
    EXPECT_TRUE(sameAsRepaint());

    // Shift during the drag forces a square.
    press(50, 40);
    OrvTestKey(dpy, XK_Shift_L, true);
    settle();
    moveTo(90, 60);
    moveTo(120, 70);
    OrvTestButton(dpy, 1, false);
    settle();
    OrvTestKey(dpy, XK_Shift_L, false);
    settle();
    ASSERT_EQ(2u, p->rects.size());
    EXPECT_EQ(50, p->rects[1].x);
    EXPECT_EQ(40, p->rects[1].y);
    EXPECT_EQ(30u, p->rects[1].w);
    EXPECT_EQ(30u, p->rects[1].h);
    EXPECT_TRUE(sameAsRepaint());

    // A click delivers a rectangle of zero size.
    click(200, 150);
    ASSERT_EQ(3u, p->rects.size());
    EXPECT_EQ(0u, p->rects[2].w);
    // A press with shift held from the start is declined.
    moveTo(10, 10);
    OrvTestKey(dpy, XK_Shift_L, true);
    settle();
    OrvTestButton(dpy, 1, true);
    settle();
    moveTo(40, 40);
    OrvTestButton(dpy, 1, false);
    OrvTestKey(dpy, XK_Shift_L, false);
    settle();
    EXPECT_EQ(3u, p->rects.size());
}

class ProducerHook : public OrvStageHook {
public:
    int changes = 0;
    OrvProducer* last = nullptr;
    void producer(OrvProducer* p, OrvProducer*) override {
        changes++;
        last = p;
    }
    unsigned long deletedByStage() const override { return 1; }
};

static int presses(const OfferLog& log) {
    int n = 0;
    for (const Offer& o : log) n += o.type == OrvButtonDown;
    return n;
}

TEST_F(ProducerTest, ProducerStackPushAndPop) {
    OfferLog l1, l2;
    ProducerHook* hook = new ProducerHook;
    stage->install(hook);
    RecordingProducer* p1 = new RecordingProducer(stage, &l1);
    RecordingProducer* p2 = new RecordingProducer(stage, &l2);
    stage->setProducer(p1);
    EXPECT_EQ(1, hook->changes);
    EXPECT_EQ(1, p1->inits);

    stage->pushProducer(p2);
    EXPECT_EQ(p2, stage->getProducer());
    EXPECT_EQ(p1, p2->previous);
    EXPECT_EQ(1, p1->aborts);
    EXPECT_EQ(0, p2->inits);      // no init
    EXPECT_EQ(1, hook->changes);  // and no word to the hooks
    click(40, 40);
    EXPECT_EQ(0u, l1.size());
    EXPECT_EQ(1, presses(l2));

    p2->callPrevious();
    EXPECT_EQ(p1, stage->getProducer());
    EXPECT_EQ(1, p2->aborts);
    EXPECT_EQ(2, p1->inits);
    EXPECT_EQ(2, hook->changes);
    EXPECT_EQ(p1, hook->last);
    click(40, 40);
    EXPECT_EQ(1, presses(l1));
    EXPECT_EQ(1, presses(l2));

    // remove clears only the current one; deleting the current one clears it too.
    stage->remove(p2);
    EXPECT_EQ(p1, stage->getProducer());
    stage->remove(p1);
    EXPECT_EQ(nullptr, stage->getProducer());
    stage->setProducer(p2);
    delete p2;
    EXPECT_EQ(nullptr, stage->getProducer());
    EXPECT_EQ(director, p1->director());
    EXPECT_EQ(nullptr, p1->toStage());

    // A producer with a previous one and no stage asks the previous for the director.
    RecordingProducer orphan(nullptr, &l1);
    orphan.previous = p1;
    EXPECT_EQ(director, orphan.director());

    // A stage producer is not for a theater.
    testing::internal::CaptureStdout();
    p1->setTheater(nullptr);
    EXPECT_EQ("OrvProducer::theater : Must be a scene producer.\n",
              testing::internal::GetCapturedStdout());

    // Setting a producer drops the focus.
    RecordingRole role(&l1, "r");
    RouteBox* a = box(20, 20, 40, 40);
    a->setRole(&role);
    stage->setFocus(a);
    ASSERT_EQ(a, stage->getFocus());
    stage->setProducer(p1);
    EXPECT_EQ(nullptr, stage->getFocus());
    stage->setProducer(nullptr);
}

TEST_F(ProducerTest, EntryPointsForScenesArePresent) {
    OrvEvent e;
    memset((void*)&e, 0, sizeof e);
    e.type = OrvButtonDown;
    e.button = 1;
    EXPECT_EQ(0, select->input3d(e));
    select->expose3d(nullptr);
    OrvRotateProducer* rotate = new OrvRotateProducer(stage);
    EXPECT_EQ(std::string("Rotate"), rotate->className());
    EXPECT_EQ(0, rotate->input3d(e));
    EXPECT_EQ(0, rotate->input2d(e));
    rotate->activate3d(Orv3dPoint(), Orv3dPoint());
    select->move->activate3d(Orv3dPoint(), Orv3dPoint());
    EXPECT_EQ(std::string("Select"), select->className());
    EXPECT_EQ(std::string("Reshape"), select->reshape->className());
    EXPECT_EQ(std::string("DragSelectRectangle"), select->selectRectangle->className());
    // Sub-producers belong to the select producer, not to the stage's list.
    EXPECT_EQ(nullptr, stage->producers.find(select->move));
    EXPECT_NE(nullptr, stage->producers.find(select));
}

TEST_F(ProducerTest, CursorFollowsTheHandlesWithoutAPress) {
    RouteBox* a = box(100, 60, 60, 40);
    a->setSelected(1);
    moveTo(30, 170);
    EXPECT_EQ(nullptr, stage->cursor);
    moveTo(100, 60);  // left-top handle
    ASSERT_NE(nullptr, stage->cursor);
    EXPECT_EQ(director->positionToCursor(5), stage->cursor);
    moveTo(160, 80);  // right handle
    EXPECT_EQ(director->positionToCursor(2), stage->cursor);
    moveTo(130, 80);  // inside, off the handles
    EXPECT_EQ(nullptr, stage->cursor);
}

TEST_F(ProducerTest, GhostSurvivesARepaintDuringTheDragAndGoesAfter) {
    RouteBox* a = box(20, 20, 60, 40);
    click(50, 40);
    press(50, 40);
    moveTo(90, 70);
    moveTo(110, 90);
    // Ghost: the selections' box (grown by 4 for the handles) moved by 60, 50.
    const int gx = 20 - 4 + 60, gy = 20 - 4 + 50;
    EXPECT_NE(background, rgb(gx, gy + 10));
    stage->drawAll(nullptr, 1);
    EXPECT_NE(background, rgb(gx, gy + 10));
    Orv2dRegion part(25);
    part.extendBy(Orv2dRect(gx - 10, gy, 30, 40));
    stage->drawAll(&part, 1);
    EXPECT_NE(background, rgb(gx, gy + 10));
    release();
    EXPECT_EQ(80, a->box.x);
    EXPECT_EQ(70, a->box.y);
    EXPECT_EQ(background, rgb(gx, gy + 10));
    EXPECT_TRUE(sameAsRepaint());
}
