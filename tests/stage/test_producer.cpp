// Producers driven end to end with XTest: selection by click, shift-click and rubber band, moves
// with their ghost, reshapes by each handle, rectangles, the producer stack and the ghosts that
// must not stay on the window.
#include "orv_fixtures.h"

class ProducerTest : public RouteTest {
protected:
    OrvSelectProducer* select = nullptr;
    void SetUp() override {
        RouteTest::SetUp();
        if (!stage) return;
        select = new OrvSelectProducer(stage);
        stage->setProducer(select);
    }
};

TEST_F(ProducerTest, SelectByClickShiftClickAndRubberBand) {
    TestBox* a = box(20, 20, 60, 40);
    TestBox* b = box(150, 20, 60, 40, blue);
    TestBox* c = box(100, 120, 60, 40);
    std::vector<unsigned long> clean = snapshot(stage);
    click(50, 40);
    EXPECT_TRUE(a->isSelected() && !b->isSelected());
    EXPECT_NE(background, rgb(17, 17));  // the top-left handle's square, at 16..23
    click(180, 40);
    EXPECT_TRUE(!a->isSelected() && b->isSelected());
    // Shift adds to the selection and starts no drag.
    moveTo(50, 40);
    shift(true);
    press(50, 40);
    moveTo(90, 80);
    release();
    shift(false);
    EXPECT_TRUE(stage->selectionList.length() == 2u && a->box.x == 20);
    // A plain click on a selected actor, without motion, deselects all; so does empty space.
    click(50, 40);
    EXPECT_EQ(0u, stage->selectionList.length());
    click(50, 40);
    click(250, 150);
    EXPECT_EQ(0u, stage->selectionList.length());
    EXPECT_TRUE(sameAsRepaint());
    // A band selects what lies wholly inside, its outline drawn by exclusive or meanwhile.
    press(10, 10);
    moveTo(120, 70);
    moveTo(230, 80);
    EXPECT_NE(background, rgb(10, 75));
    EXPECT_EQ(background, rgb(240, 75));
    release();
    EXPECT_TRUE(a->isSelected() && b->isSelected() && !c->isSelected());
    EXPECT_EQ(background, rgb(10, 75));
    EXPECT_TRUE(sameAsRepaint());
    // A band that holds nothing whole selects nothing and leaves nothing.
    drag(90, 110, 130, 150);
    EXPECT_EQ(0u, stage->selectionList.length());
    EXPECT_EQ(clean, snapshot(stage));
}

TEST_F(ProducerTest, MoveShowsTheGhostThroughRepaintsAndLandsToThePixel) {
    TestBox* a = box(20, 20, 60, 40);
    TestBox* b = box(150, 100, 60, 40, blue);
    click(50, 40);
    press(50, 40);
    moveTo(80, 60);
    moveTo(103, 77);
    // The ghost is the box of the selections (handles included), moved by the delta; it survives
    // a repaint during the drag, whole or in part.
    const int gx = 20 - 4 + 53, gy = 20 - 4 + 37;
    EXPECT_EQ(20, a->box.x);
    EXPECT_NE(background, rgb(gx, gy + 24));
    Orv2dRegion part(Orv2dRect(gx - 10, gy, 30, 40));
    for (Orv2dRegion* r : {(Orv2dRegion*)nullptr, &part}) {
        stage->drawAll(r, 1);
        EXPECT_NE(background, rgb(gx, gy + 24));
    }
    release();
    EXPECT_TRUE(a->box == Orv2dRect(73, 57, 60, 40) && a->isSelected());
    expectPixels({78, 62, 0xff0000, 30, 30, background});
    EXPECT_TRUE(sameAsRepaint());
    // Both selected move together.
    moveTo(180, 120);
    shift(true);
    click(180, 120);
    shift(false);
    drag(100, 75, 110, 70);
    EXPECT_EQ(Orv2dPoint(83, 52), Orv2dPoint(a->box.x, a->box.y));
    EXPECT_EQ(Orv2dPoint(160, 95), Orv2dPoint(b->box.x, b->box.y));
    // A press on an actor that is not moveable selects it and starts no drag.
    stage->deSelect();
    b->setMoveable(0);
    drag(180, 110, 220, 150);
    EXPECT_TRUE(b->isSelected() && b->box.x == 160);
    EXPECT_TRUE(sameAsRepaint());
}

TEST_F(ProducerTest, MoveProducerAloneDeclinesTheReleaseAndIgnoresZeroDelta) {
    TestBox* a = box(20, 20, 60, 40);
    OrvMoveProducer* move = new OrvMoveProducer(stage);
    stage->setProducer(move);
    OfferLog ups, downs;
    stage->add(new RecordingAccelerator(&ups, OrvButtonUp, 1, OrvAnyModifiers));
    stage->add(new RecordingAccelerator(&downs, OrvButtonDown, 1, OrvAnyModifiers));
    // A press on empty space deselects and is declined.
    a->setSelected(1);
    click(250, 150);
    EXPECT_TRUE(!a->isSelected() && downs.size() == 1u);
    ups.clear();
    press(40, 30);
    EXPECT_TRUE(move->active == 1ul && a->isSelected());
    release();
    EXPECT_TRUE(move->active == 0ul && a->box.x == 20);
    // The release is declined, the press taken.
    EXPECT_EQ(std::vector<size_t>({1, 1}), std::vector<size_t>({ups.size(), downs.size()}));
    drag(40, 30, 60, 45);
    EXPECT_EQ(Orv2dPoint(40, 35), Orv2dPoint(a->box.x, a->box.y));
    EXPECT_EQ(2u, ups.size());
    EXPECT_TRUE(sameAsRepaint());
    // Abort stops a drag without erasing: the next repaint cleans up.
    press(50, 40);
    moveTo(80, 60);
    stage->setProducer(nullptr);
    EXPECT_EQ(0ul, move->active);
    release();
    EXPECT_EQ(40, a->box.x);
}

// Each of the eight handles of a 60 by 40 box at 100, 60, dragged by 15, 10: the opposite side or
// corner stays where it was.
TEST_F(ProducerTest, ReshapeByEachOfTheEightHandlesAndTheirCursors) {
    const struct {
        int hx, hy;
        OrvPosition position;
        Orv2dRect after;
    } cases[] = {{100, 60, 5, {115, 70, 45, 30}}, {100, 100, 9, {115, 60, 45, 50}},
                 {160, 60, 6, {100, 70, 75, 30}}, {160, 100, 10, {100, 60, 75, 50}},
                 {100, 80, 1, {115, 60, 45, 40}}, {160, 80, 2, {100, 60, 75, 40}},
                 {130, 60, 4, {100, 70, 60, 30}}, {130, 100, 8, {100, 60, 60, 50}}};
    for (const auto& c : cases) {
        TestBox* a = box(100, 60, 60, 40);
        a->setSelected(1);
        press(c.hx, c.hy);
        EXPECT_TRUE(select->reshape == select->inUse && c.position == select->reshape->position)
            << "handle " << c.position;
        moveTo(c.hx + 8, c.hy + 5);
        moveTo(c.hx + 15, c.hy + 10);
        release();
        EXPECT_EQ(c.after, a->box) << "handle " << c.position;
        EXPECT_TRUE(sameAsRepaint()) << "handle " << c.position;
        stage->remove(a, 1);
    }
    // Past the opposite edge the size stays positive; without permission nothing changes.
    TestBox* a = box(100, 60, 60, 40);
    a->setSelected(1);
    drag(160, 100, 80, 40, 2);
    EXPECT_EQ(Orv2dRect(80, 40, 20, 20), a->box);
    EXPECT_TRUE(sameAsRepaint());
    a->setResizeable(0);
    drag(80, 40, 90, 50);
    EXPECT_EQ(20u, a->box.w);
    // The cursor follows the handles without a press.
    stage->remove(a, 1);
    box(100, 60, 60, 40)->setSelected(1);
    moveTo(30, 170);
    EXPECT_EQ(nullptr, stage->cursor);
    moveTo(100, 60);  // left-top handle
    EXPECT_EQ(director->positionToCursor(5), stage->cursor);
    moveTo(160, 80);  // right handle
    EXPECT_EQ(director->positionToCursor(2), stage->cursor);
    moveTo(130, 80);  // inside, off the handles
    EXPECT_EQ(nullptr, stage->cursor);
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
    EXPECT_STREQ("DragRectangle", p->className());
    press(120, 90);
    moveTo(80, 60);
    moveTo(50, 40);
    EXPECT_NE(background, rgb(50, 60));
    release();
    EXPECT_TRUE(sameAsRepaint());
    // Shift during the drag forces a square; a click gives a rectangle of zero size.
    press(50, 40);
    shift(true);
    moveTo(90, 60);
    moveTo(120, 70);
    release();
    shift(false);
    click(200, 150);
    EXPECT_EQ((std::vector<Orv2dRect>{{50, 40, 70, 50}, {50, 40, 30, 30}, {200, 150, 0, 0}}),
              p->rects);
    EXPECT_TRUE(sameAsRepaint());
    // A press with shift held from the start is declined.
    moveTo(10, 10);
    shift(true);
    drag(10, 10, 40, 40);
    shift(false);
    EXPECT_EQ(3u, p->rects.size());
}

TEST_F(ProducerTest, ProducerStackPushAndPop) {
    OfferLog l1, l2;
    RecordingHook* hook = installHook();
    RecordingProducer* p1 = new RecordingProducer(stage, &l1);
    RecordingProducer* p2 = new RecordingProducer(stage, &l2);
    stage->setProducer(p1);
    EXPECT_EQ(1, hook->producers);
    // Pushing aborts the current one, with no init and no word to the hooks.
    stage->pushProducer(p2);
    EXPECT_EQ(p1, p2->previous);
    EXPECT_EQ(std::vector<int>({1, 1, 0, 1}),
              std::vector<int>({p1->inits, p1->aborts, p2->inits, hook->producers}));
    auto presses = [](const OfferLog& l) {
        return (int)std::count_if(l.begin(), l.end(),
                                  [](const Offer& o) { return o.type == OrvButtonDown; });
    };
    click(40, 40);
    EXPECT_EQ(Orv2dPoint(0, 1), Orv2dPoint(presses(l1), presses(l2)));
    p2->callPrevious();
    EXPECT_EQ(std::vector<int>({1, 2, 2}),
              std::vector<int>({p2->aborts, p1->inits, hook->producers}));
    EXPECT_EQ(p1, hook->lastProducer);
    // remove clears only the current one; deleting the current one clears it too.
    stage->remove(p2);
    EXPECT_EQ(p1, stage->getProducer());
    stage->setProducer(p2);
    delete p2;
    EXPECT_EQ(nullptr, stage->getProducer());
    EXPECT_EQ("OrvProducer::theater : Must be a scene producer.\n",
              OrvTestOutput([&] { p1->setTheater(nullptr); }));
    // Setting a producer drops the focus.
    RecordingRole role(&l1, "r");
    TestBox* a = box(20, 20, 40, 40);
    a->setRole(&role);
    stage->setFocus(a);
    stage->setProducer(p1);
    EXPECT_EQ(nullptr, stage->getFocus());
    stage->setProducer(nullptr);
}
