// Layers: array order, pop's exchange, push doing nothing, growth; the
// stage's membership: layer creation, makeLayer, hit order against paint
// order, selections and counts.
#include <algorithm>
#include <cstdlib>

#include "orv/shapes.h"
#include "test_stage_support.h"

namespace {

std::vector<OrvActor*> order(const OrvStageLayer& l) {
    return std::vector<OrvActor*>(l.actors, l.actors + l.count);
}

}  // namespace

TEST(StageLayer, OrderGrowthPopAndPush) {
    OrvStageLayer l(nullptr, 7);
    EXPECT_EQ(l.number, 7);
    EXPECT_EQ(l.capacity, 4u);
    EXPECT_EQ(l.count, 0u);
    EXPECT_EQ(l.visible, 1u);
    EXPECT_EQ(l.enabled, 1u);
    OrvActor* a = new OrvActor(nullptr);
    OrvActor* b = new OrvActor(nullptr);
    OrvActor* c = new OrvActor(nullptr);
    OrvActor* d = new OrvActor(nullptr);
    EXPECT_EQ(l.pop(a), 0);
    l.append(a);
    l.append(b);
    l.append(c);
    // One slot always stays free: the append of index 3 finds count + 1 = 4
    // and grows first.
    EXPECT_EQ(l.capacity, 4u);
    EXPECT_EQ(order(l), (std::vector<OrvActor*>{a, b, c}));
    OrvActor* e = new OrvActor(nullptr);
    l.append(e);
    EXPECT_EQ(l.capacity, 8u);
    EXPECT_EQ(l.remove(e), 1);
    delete e;
    EXPECT_EQ(l.position(c), 2);
    EXPECT_EQ(l.position(d), -1);

    // pop of the first of three: an exchange with the last, not a rotation.
    EXPECT_EQ(l.pop(a), 1);
    EXPECT_EQ(order(l), (std::vector<OrvActor*>{c, b, a}));
    // Already on top, or absent: nothing.
    EXPECT_EQ(l.pop(a), 0);
    EXPECT_EQ(l.pop(d), 0);
    // push never does anything.
    EXPECT_EQ(l.push(a), 0);
    EXPECT_EQ(l.push(b), 0);
    EXPECT_EQ(l.push(d), 0);
    EXPECT_EQ(order(l), (std::vector<OrvActor*>{c, b, a}));

    l.insert(d);
    EXPECT_EQ(order(l), (std::vector<OrvActor*>{d, c, b, a}));
    EXPECT_EQ(l.remove(c), 1);
    EXPECT_EQ(l.remove(c), 0);
    EXPECT_EQ(order(l), (std::vector<OrvActor*>{d, b, a}));

    std::vector<OrvActor*> seen;
    l.apply([](OrvActor* x, void* data) { ((std::vector<OrvActor*>*)data)->push_back(x); }, &seen);
    EXPECT_EQ(seen, order(l));
    delete c;
    // Emptying with deletion frees the actors and starts a fresh array.
    l.empty(1);
    EXPECT_EQ(l.count, 0u);
    EXPECT_EQ(l.capacity, 4u);
    EXPECT_NE(l.actors, nullptr);
    // Without deletion the array is only dropped.
    OrvActor keep(nullptr);
    l.append(&keep);
    l.empty(0);
    EXPECT_EQ(l.count, 0u);
    EXPECT_EQ(l.position(&keep), -1);
}

// Random appends, inserts, removals and pops against a plain model of the
// array, whose capacity grows only when an addition finds count + 1 equal to
// it. Removals near the bottom move the start of the array up, so this walks
// every path through that bookkeeping and the growth around it.
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
    EXPECT_EQ(l.contains(Orv2dPoint(60, 60), nullptr, 0, nullptr), front);
    EXPECT_EQ(l.contains(Orv2dPoint(10, 10), nullptr, 0, nullptr), back);
    EXPECT_EQ(l.contains(Orv2dPoint(300, 300), nullptr, 0, nullptr), nullptr);
    // Skips: not selectable, not visible, wrong type, no role.
    front->setSelectable(0);
    EXPECT_EQ(l.contains(Orv2dPoint(60, 60), nullptr, 0, nullptr), back);
    front->setSelectable(1);
    front->setVisible(0);
    EXPECT_EQ(l.contains(Orv2dPoint(60, 60), nullptr, 0, nullptr), back);
    front->setVisible(1);
    l.append(line);
    EXPECT_EQ(l.contains(Orv2dPoint(60, 60), nullptr, 0, nullptr), line);
    EXPECT_EQ(l.contains(Orv2dPoint(60, 60), nullptr, 0, "OrvRectangle"), front);
    EXPECT_EQ(l.contains(Orv2dPoint(60, 60), nullptr, 1, nullptr), nullptr);
    // A hidden layer is not hit.
    l.visible = 0;
    EXPECT_EQ(l.contains(Orv2dPoint(60, 60), nullptr, 0, nullptr), nullptr);
    l.visible = 1;

    // Handles: only selected actors, and only on their squares.
    EXPECT_EQ(l.containsDragger(Orv2dPoint(50, 50), nullptr, 0, nullptr), nullptr);
    back->setSelected(1);
    EXPECT_EQ(l.containsDragger(Orv2dPoint(100, 100), nullptr, 0, nullptr), back);
    EXPECT_EQ(l.containsDragger(Orv2dPoint(60, 60), nullptr, 0, nullptr), nullptr);
    EXPECT_EQ(l.containsDragger(Orv2dPoint(100, 50), nullptr, 0, nullptr), back);
    // Where the handles of two selections meet, the later actor's win.
    front->setSelected(1);
    EXPECT_EQ(l.containsDragger(Orv2dPoint(100, 50), nullptr, 0, nullptr), front);
    EXPECT_EQ(l.containsDragger(Orv2dPoint(100, 100), nullptr, 0, nullptr), back);
}

TEST_F(StageTest, LayersAreMadeOnDemandAndMovedBetween) {
    EXPECT_EQ(stage->layers.length(), 1u);
    EXPECT_EQ(stage->layer(1), nullptr);
    OrvStageLayer* fifth = stage->layer(5, 1);
    ASSERT_NE(fifth, nullptr);
    EXPECT_EQ(stage->layers.length(), 6u);
    for (unsigned n = 0; n < 6; n++) EXPECT_EQ(stage->layer(n)->number, n);
    EXPECT_EQ(fifth->number, 5);
    EXPECT_EQ(stage->layer(5, 1), fifth);

    TestBox* a = box(10, 10, 40, 40);
    TestBox* b = box(30, 30, 40, 40);
    EXPECT_EQ(stage->cardinal(), 2u);
    EXPECT_EQ(stage->getLayer(a), stage->layer(0));
    EXPECT_EQ(a->getStage(), stage);
    // makeLayer: from the layer of the old number to the top of the new one.
    TestBox* c = box(100, 100, 10, 10, nullptr, 3);
    EXPECT_EQ(c->layer, 3);
    EXPECT_EQ(stage->makeLayer(a, 3), 1u);
    EXPECT_EQ(order(*stage->layer(3)), (std::vector<OrvActor*>{c, a}));
    EXPECT_EQ(stage->layer(0)->position(a), -1);
    // The number did not change: the actor is no longer where it says.
    EXPECT_EQ(a->layer, 0);
    EXPECT_EQ(stage->makeLayer(a, 1), 0u);
    a->layer = 3;
    // Not in its layer, or the layer missing: 0.
    OrvActor stray(nullptr);
    stray.layer = 40;
    EXPECT_EQ(stage->makeLayer(&stray, 0), 0u);
    EXPECT_EQ(stage->cardinal(), 3u);

    unsigned int n = 0;
    OrvActor** all = stage->objects(n);
    ASSERT_EQ(n, 3u);
    EXPECT_EQ(all[0], b);
    EXPECT_EQ(all[1], c);
    EXPECT_EQ(all[2], a);
    EXPECT_EQ(all[3], nullptr);
    delete[] all;

    // isVisible needs the layer, the layer's flag and the actor's.
    EXPECT_TRUE(stage->isVisible(a));
    stage->layer(3)->visible = 0;
    EXPECT_FALSE(stage->isVisible(a));
    stage->layer(3)->visible = 1;
    EXPECT_FALSE(stage->isVisible(&stray));

    a->setName("named");
    EXPECT_EQ(stage->object("named"), a);
    EXPECT_EQ(stage->object("nobody"), nullptr);
}

TEST_F(StageTest, PaintOrderAgainstHitOrderAndPop) {
    TestBox* bottom = box(20, 20, 60, 60, red);
    TestBox* top = box(50, 50, 60, 60, blue);
    // The later actor is painted on top and hit first.
    EXPECT_EQ(rgb(60, 60), 0x0000FFu);
    EXPECT_EQ(stage->contains(Orv2dPoint(60, 60)), top);
    EXPECT_EQ(stage->contains(Orv2dPoint(30, 30)), bottom);
    // A higher layer is hit before a lower one, whatever the order in each.
    TestBox* high = box(55, 55, 10, 10, red, 2);
    EXPECT_EQ(stage->contains(Orv2dPoint(60, 60)), high);
    EXPECT_EQ(rgb(60, 60), 0xFF0000u);
    stage->remove(high, 1);
    EXPECT_EQ(rgb(60, 60), 0x0000FFu);

    // pop brings the bottom one up, by exchange, and repaints it.
    resetCounts({bottom, top});
    EXPECT_EQ(stage->pop(bottom), 1u);
    EXPECT_EQ(order(*stage->layer(0)), (std::vector<OrvActor*>{top, bottom}));
    EXPECT_EQ(rgb(60, 60), 0xFF0000u);
    EXPECT_EQ(stage->contains(Orv2dPoint(60, 60)), bottom);
    EXPECT_EQ(stage->drawAlls, 1);
    // pop of the top actor and push of anything paint nothing.
    EXPECT_EQ(stage->pop(bottom), 0u);
    EXPECT_EQ(stage->push(bottom), 0u);
    EXPECT_EQ(stage->push(top), 0u);
    EXPECT_EQ(stage->drawAlls, 1);
    EXPECT_EQ(order(*stage->layer(0)), (std::vector<OrvActor*>{top, bottom}));

    // insert puts an actor at the back.
    TestBox* under = box(0, 0, 1, 1);
    stage->remove(under, 0);
    stage->insert(under, 0);
    EXPECT_EQ(stage->layer(0)->position(under), 0);
    EXPECT_EQ(stage->cardinal(), 3u);
    delete under;
    EXPECT_EQ(stage->cardinal(), 2u);
}

TEST_F(StageTest, SelectionsFollowTheFlags) {
    TestBox* a = box(10, 10, 20, 20);
    TestBox* b = box(40, 10, 20, 20);
    TestBox* c = box(70, 10, 20, 20);
    unsigned int n = 99;
    EXPECT_EQ(stage->selections(n), nullptr);
    EXPECT_EQ(n, 0u);
    c->setSelected(1);
    a->setSelected(1);
    EXPECT_EQ(stage->selection(0), c);
    EXPECT_EQ(stage->selection(1), a);
    EXPECT_EQ(stage->selection(2), nullptr);
    OrvActor** s = stage->selections(n);
    ASSERT_EQ(n, 2u);
    EXPECT_EQ(s[0], c);
    EXPECT_EQ(s[1], a);
    EXPECT_EQ(s[2], nullptr);
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
    EXPECT_EQ(n, 3u);
    // Handles of selections are hit through containsDragger.
    EXPECT_EQ(stage->containsDragger(Orv2dPoint(10, 10)), a);
    EXPECT_EQ(stage->containsDragger(Orv2dPoint(40, 10)), nullptr);
    int calls = 0;
    stage->applyToSelections([](OrvActor*, void* data) { (*(int*)data)++; }, &calls);
    EXPECT_EQ(calls, 3);
    // Removing leaves the list, the flag stays.
    stage->remove(d, 0);
    EXPECT_TRUE(d->isSelected());
    EXPECT_EQ(stage->selection(2), nullptr);
    delete d;
    stage->deSelect();
    EXPECT_FALSE(a->isSelected());
    EXPECT_FALSE(c->isSelected());
    EXPECT_EQ(stage->selection(0), nullptr);
    EXPECT_EQ(rgb(6, 6), background);
    // Array removal: all of them in one nest, one repaint.
    resetCounts({a, b, c});
    OrvActor* list[3] = {a, b, c};
    stage->remove(list, 3, 1);
    EXPECT_EQ(stage->cardinal(), 0u);
    EXPECT_EQ(stage->drawAlls, 1);
    EXPECT_EQ(rgb(20, 20), background);
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
    EXPECT_EQ(rgb(2, 2), 0xFF0000u);
    EXPECT_EQ(rgb(184, 124), 0xFF0000u);
    EXPECT_EQ(rgb(12, 2), background);
    int total = 0;
    for (TestBox* b : boxes) total += b->draws;
    EXPECT_EQ(total, 70);
    // A small repaint asks only the tree's actors near it.
    resetCounts(boxes);
    stage->beginDrawing();
    stage->invalidate(Orv2dRect(42, 42, 4, 4));
    stage->flushDrawing(1);
    EXPECT_EQ(stage->drawAlls, 1);
    total = 0;
    for (TestBox* b : boxes) total += b->draws;
    EXPECT_EQ(total, 1);
    EXPECT_EQ(boxes[2 * 10 + 2]->draws, 1);
    EXPECT_EQ(stage->contains(Orv2dPoint(43, 43)), set);
    EXPECT_EQ(set->whichContains(Orv2dPoint(43, 43), nullptr), boxes[22]);
    EXPECT_EQ(stage->contains(Orv2dPoint(52, 43)), nullptr);
}
