// Layers: array order, pop's exchange, push doing nothing, growth; the stage's membership: layer
// creation, makeLayer, hit order against paint order, selections and counts.
#include "orv_fixtures.h"

static std::vector<OrvActor*> order(const OrvStageLayer& l) {
    return std::vector<OrvActor*>(l.actors, l.actors + l.count);
}

// Order, growth, insert and pop against a model are walked by the random test below; here the
// first numbers of a layer and emptying with deletion.
TEST(StageLayer, NewLayerAndEmptyWithDeletion) {
    OrvStageLayer l(nullptr, 7);
    EXPECT_EQ(std::vector<unsigned long>({7, 4, 1, 1}),
              std::vector<unsigned long>({l.number, l.capacity, l.visible, l.enabled}));
    for (int i = 0; i < 4; i++) l.append(new OrvActor(nullptr));
    l.empty(1);
    EXPECT_EQ(Orv2dPoint(0, 4), Orv2dPoint(l.count, l.capacity));
}

// Random appends, inserts, removals and pops against a plain model of the array, whose capacity
// grows only when an addition finds count + 1 equal to it. Removals near the bottom move the start
// of the array up, so this walks every path through that bookkeeping and the growth around it.
TEST(StageLayer, RandomEditsKeepOrderAndCapacity) {
    srand(4242);
    std::vector<OrvActor*> pool;
    for (int i = 0; i < 64; i++) pool.push_back(new OrvActor(nullptr));
    for (int round = 0; round < 20; round++) {
        OrvStageLayer l(nullptr, 0);
        std::vector<OrvActor*> model;
        uint32_t capacity = 4;
        for (int step = 0; step < 400; step++) {
            OrvActor* a = pool[rand() % pool.size()];
            bool present = std::find(model.begin(), model.end(), a) != model.end();
            int op = rand() % 4;
            if ((op == 0 || op == 1) && !present) {
                if (capacity == model.size() + 1) capacity *= 2;
                if (op == 0) {
                    l.append(a);
                    model.push_back(a);
                } else {
                    l.insert(a);
                    model.insert(model.begin(), a);
                }
            } else if (op == 2 || op == 0) {
                ASSERT_EQ(l.remove(a), present ? 1 : 0);
                if (present) model.erase(std::find(model.begin(), model.end(), a));
            } else {
                int at = l.position(a);
                int expected = present && a != model.back() ? 1 : 0;
                ASSERT_EQ(l.pop(a), expected);
                ASSERT_EQ(l.push(a), 0);  // push changes nothing
                if (expected) std::swap(model[(size_t)at], model.back());
            }
            ASSERT_EQ(order(l), model) << "round " << round << " step " << step;
            ASSERT_EQ(l.capacity, capacity);
            for (size_t k = 0; k < model.size(); k++) ASSERT_EQ(l.position(model[k]), (int)k);
        }
        l.empty(0);
    }
    for (OrvActor* a : pool) delete a;
}

TEST(StageLayer, HitOrderIsReversePaintOrderWithSkips) {
    OrvStageLayer l(nullptr, 0);
    OrvRectangle* back = new OrvFilledRectangle(nullptr, Orv2dRect(0, 0, 100, 100));
    OrvRectangle* front = new OrvFilledRectangle(nullptr, Orv2dRect(50, 50, 100, 100));
    OrvLine* line = new OrvLine(nullptr, Orv2dPoint(0, 60), Orv2dPoint(200, 60));
    l.append(back);
    l.append(front);
    auto hit = [&](int x, int y, unsigned long role = 0, const char* type = nullptr) {
        return l.contains(Orv2dPoint(x, y), nullptr, role, type);
    };
    EXPECT_TRUE(hit(60, 60) == front && hit(10, 10) == back);
    // Skips: not selectable, not visible, wrong type, no role, hidden layer.
    front->setSelectable(0);
    EXPECT_EQ(hit(60, 60), back);
    front->setSelectable(1);
    front->setVisible(0);
    EXPECT_EQ(hit(60, 60), back);
    front->setVisible(1);
    l.append(line);
    EXPECT_EQ(hit(60, 60), line);
    EXPECT_TRUE(hit(60, 60, 0, "OrvRectangle") == front && !hit(60, 60, 1));
    l.visible = 0;
    EXPECT_EQ(hit(60, 60), nullptr);
    l.visible = 1;
    // Handles: only selected actors, and only on their squares; where two meet, the later wins.
    auto handle = [&](int x, int y) {
        return l.containsDragger(Orv2dPoint(x, y), nullptr, 0, nullptr);
    };
    EXPECT_EQ(handle(50, 50), nullptr);
    back->setSelected(1);
    EXPECT_TRUE(!handle(60, 60) && handle(100, 50) == back);
    front->setSelected(1);
    EXPECT_TRUE(handle(100, 50) == front && handle(100, 100) == back);
}

TEST_F(StageTest, LayersAreMadeOnDemandAndMovedBetween) {
    EXPECT_EQ(stage->layer(1), nullptr);
    OrvStageLayer* fifth = stage->layer(5, 1);
    EXPECT_EQ(stage->layers.length(), 6u);  // and the ones below it
    for (unsigned n = 0; n < 6; n++) EXPECT_EQ(stage->layer(n)->number, n);
    EXPECT_EQ(stage->layer(5, 1), fifth);
    TestBox* a = box(10, 10, 40, 40);
    TestBox* b = box(30, 30, 40, 40);
    // makeLayer: from the layer of the old number to the top of the new one.
    TestBox* c = box(100, 100, 10, 10, nullptr, 3);
    EXPECT_EQ(stage->makeLayer(a, 3), 1u);
    EXPECT_EQ(order(*stage->layer(3)), (std::vector<OrvActor*>{c, a}));
    EXPECT_EQ(stage->layer(0)->position(a), -1);
    // The number did not change: the actor is no longer where it says, so a second move fails;
    // so does one of an actor whose layer is missing.
    EXPECT_EQ(a->layer, 0);
    EXPECT_EQ(stage->makeLayer(a, 1), 0u);
    a->layer = 3;
    OrvActor stray(nullptr);
    stray.layer = 40;
    EXPECT_EQ(stage->makeLayer(&stray, 0), 0u);
    unsigned int n = 0;
    OrvActor** all = stage->objects(n);
    EXPECT_EQ(std::vector<OrvActor*>(all, all + n + 1), (std::vector<OrvActor*>{b, c, a, nullptr}));
    delete[] all;
    // isVisible needs the layer, the layer's flag and the actor's.
    EXPECT_TRUE(stage->isVisible(a));
    stage->layer(3)->visible = 0;
    EXPECT_FALSE(stage->isVisible(a));
    stage->layer(3)->visible = 1;
    EXPECT_FALSE(stage->isVisible(&stray));
    a->setName("named");
    EXPECT_EQ(stage->object("named"), a);
}

TEST_F(StageTest, PaintOrderAgainstHitOrderAndPop) {
    TestBox* bottom = box(20, 20, 60, 60, red);
    TestBox* top = box(50, 50, 60, 60, blue);
    // The later actor is painted on top and hit first.
    EXPECT_EQ(rgb(60, 60), 0x0000FFu);
    EXPECT_TRUE(stage->contains(Orv2dPoint(60, 60)) == top &&
                stage->contains(Orv2dPoint(30, 30)) == bottom);
    // A higher layer is hit before a lower one, whatever the order in each.
    TestBox* high = box(55, 55, 10, 10, red, 2);
    EXPECT_TRUE(stage->contains(Orv2dPoint(60, 60)) == high && rgb(60, 60) == 0xFF0000u);
    stage->remove(high, 1);
    EXPECT_EQ(rgb(60, 60), 0x0000FFu);
    // pop brings the bottom one up (its repaint is the drawing cycle's matter); pop of the top
    // actor and push of anything paint nothing.
    EXPECT_TRUE(stage->pop(bottom) == 1u && stage->contains(Orv2dPoint(60, 60)) == bottom);
    resetCounts({bottom, top});
    EXPECT_EQ(stage->pop(bottom) + stage->push(bottom) + stage->push(top) + stage->drawAlls, 0u);
    EXPECT_EQ(order(*stage->layer(0)), (std::vector<OrvActor*>{top, bottom}));
    // insert puts an actor at the back.
    TestBox* under = box(0, 0, 1, 1);
    stage->remove(under, 0);
    stage->insert(under, 0);
    EXPECT_TRUE(stage->layer(0)->position(under) == 0 && stage->cardinal() == 3u);
    delete under;
    EXPECT_EQ(stage->cardinal(), 2u);
}

TEST_F(StageTest, SelectionsFollowTheFlags) {
    TestBox* a = box(10, 10, 20, 20);
    TestBox* b = box(40, 10, 20, 20);
    TestBox* c = box(70, 10, 20, 20);
    unsigned int n = 99;
    EXPECT_TRUE(!stage->selections(n) && n == 0u);
    c->setSelected(1);
    a->setSelected(1);
    OrvActor** s = stage->selections(n);
    EXPECT_EQ(std::vector<OrvActor*>(s, s + n + 1), (std::vector<OrvActor*>{c, a, nullptr}));
    delete[] s;
    // A selected actor appended goes to the list at once.
    TestBox* d = new TestBox(director, red, Orv2dRect(100, 10, 20, 20));
    d->setSelected(1);
    stage->append(d, 0);
    EXPECT_EQ(stage->selection(2), d);
    // Not selectable: setSelected(1) leaves it out of the list.
    b->setSelectable(0);
    b->setSelected(1);
    EXPECT_FALSE(b->isSelected());
    delete[] stage->selections(n);
    EXPECT_TRUE(n == 3u && stage->containsDragger(Orv2dPoint(10, 10)) == a);

    // Removing leaves the list, the flag stays.
    stage->remove(d, 0);
    EXPECT_TRUE(d->isSelected() && !stage->selection(2));
    delete d;
    stage->deSelect();
    EXPECT_FALSE(a->isSelected() || c->isSelected());
    EXPECT_EQ(rgb(6, 6), background);  // the handles are gone
    // Array removal: all of them in one nest, one repaint.
    resetCounts({a, b, c});
    OrvActor* list[3] = {a, b, c};
    stage->remove(list, 3, 1);
    EXPECT_TRUE(stage->cardinal() == 0u && stage->drawAlls == 1 && rgb(20, 20) == background);
}

TEST_F(StageTest, IndexedSetPaintsOnlyWhatMeetsTheClip) {
    OrvIndexedSet* set = new OrvIndexedSet(director, 4, red);
    std::vector<TestBox*> boxes;
    for (int y = 0; y < 7; y++)
        for (int x = 0; x < 10; x++) {
            boxes.push_back(new TestBox(director, red, Orv2dRect(x * 20, y * 20, 8, 8)));
            set->quadtree->add(boxes.back());
        }
    set->invalidateBox();
    stage->append(set, 0);
    EXPECT_EQ(set->bbox2d(nullptr), Orv2dRect(0, 0, 188, 128));
    expectPixels({2, 2, 0xFF0000, 184, 124, 0xFF0000, 12, 2, background});
    auto total = [&] {
        int t = 0;
        for (TestBox* b : boxes) t += b->draws;
        return t;
    };
    EXPECT_EQ(total(), 70);
    // A small repaint asks only the tree's actors near it.
    resetCounts(boxes);
    stage->beginDrawing();
    stage->invalidate(Orv2dRect(42, 42, 4, 4));
    stage->flushDrawing(1);
    EXPECT_TRUE(stage->drawAlls == 1 && total() == 1 && boxes[22]->draws == 1);
    EXPECT_TRUE(stage->contains(Orv2dPoint(43, 43)) == set && !stage->contains(Orv2dPoint(52, 43)));
    EXPECT_EQ(set->whichContains(Orv2dPoint(43, 43), nullptr), boxes[22]);
}
