// Engines acting on actors of a real stage: inverting, showing and hiding,
// turning, sets that forward, ownership by the actor, and the timer's firing.
#include "orv_fixtures.h"

#include "orv/engine.h"

// A box that turns: its apply2d maps the box under the change protocol.
class TurningBox : public TestBox {
public:
    using TestBox::TestBox;
    void apply2d(const Orv2dMatrix& m) override {
        beginDrawing(1);
        m.apply(box);
        flushDrawing(1);
    }
};

// Counts its expiries, and its deletion through a flag the test keeps.
class CountingEngine : public OrvEngine {
public:
    int* deleted;
    int activations2d = 0, activations3d = 0;
    CountingEngine(OrvActor* actor, int* flag) : OrvEngine(actor), deleted(flag) {}
    ~CountingEngine() override { ++*deleted; }
    void activate2d() override { activations2d++; }
    void activate3d() override { activations3d++; }
};

TEST_F(StageTest, EnginesInvertShowTurnForwardAndBelongToTheirTarget) {
    TestBox* b = box(20, 20, 40, 30);
    unsigned long shown = rgb(30, 30);
    OrvInverterEngine inverter(b);
    inverter.activate();
    EXPECT_NE(rgb(30, 30), shown);
    inverter.activate();
    EXPECT_EQ(rgb(30, 30), shown) << "two expiries bring the colours back";

    OrvVisibleEngine visible(b);
    visible.activate();
    EXPECT_TRUE(!b->isVisible() && rgb(30, 30) == background);
    visible.activate();
    EXPECT_EQ(rgb(30, 30), shown);

    // An engine with no target does nothing at its expiries.
    OrvInverterEngine idle;
    OrvRotateEngine idleTurn(nullptr, 90);
    idle.activate();
    idleTurn.activate();
    EXPECT_EQ(idle.director, nullptr);

    // A quarter turn about the box's centre, with the engine's own 3.14.
    TurningBox* t = new TurningBox(director, blue, Orv2dRect(100, 40, 40, 20));
    stage->append(t, 0);
    OrvRotateEngine turn(t, 90);
    turn.activate();
    const long want[4] = {110, 30, 20, 40},
               got[4] = {t->box.x, t->box.y, (long)t->box.w, (long)t->box.h};
    for (int i = 0; i < 4; i++) EXPECT_NEAR(got[i], want[i], 1) << i;
    EXPECT_EQ(rgb(120, 32), 0x0000fful) << "repainted by the target's apply2d";

    // Sets forward to their engines, and the actor owns its engine.
    TestBox* owner = box(20, 80, 40, 30);
    int deletedA = 0, deletedB = 0;
    OrvSetOfEngine* set = new OrvSetOfEngine();
    CountingEngine* a = new CountingEngine(nullptr, &deletedA);
    CountingEngine* c = new CountingEngine(nullptr, &deletedB);
    set->add(a);
    set->add(c);
    set->setTarget(owner);
    EXPECT_TRUE(!set->target && a->target == owner) << "the set's own target stays unset";
    EXPECT_EQ(c->director, director) << "the timer moves to the target's director";
    set->run(0, 40);
    EXPECT_TRUE(a->isRunning() && c->isRunning());
    set->activate();
    EXPECT_EQ(a->activations2d, 0);
    ASSERT_TRUE(OrvTestRunUntil([&] { return a->activations2d >= 2; }));
    EXPECT_EQ(a->activations3d, a->activations2d) << "each expiry runs both halves";
    set->suspend();
    EXPECT_FALSE(a->isRunning() || c->isRunning());

    // The actor owns its engine; a copy takes none.
    owner->setEngine(set);
    OrvActor* copy = owner->copy();
    EXPECT_EQ(copy->getEngine(), nullptr);
    delete copy;
    delete owner;
    EXPECT_EQ(Orv2dPoint(1, 1), Orv2dPoint(deletedA, deletedB));
}

TEST(EngineRegistry, FactoriesByName) {
    EXPECT_TRUE(!OrvGetEngine("NoSuchEngine") && !OrvGetEngine(nullptr));
    OrvRegisterEngine("Turn", [] { return (OrvEngine*)new OrvRotateEngine(nullptr, 15); });
    OrvEngine* first = OrvGetEngine("Turn");
    OrvEngine* second = OrvGetEngine("Turn");
    ASSERT_NE(first, nullptr);
    EXPECT_NE(first, second) << "a new engine each time";
    EXPECT_TRUE(!strcmp(first->className(), "Rotate") && ((OrvRotateEngine*)first)->angle == 15);
    delete first;
    delete second;
    OrvRegisterEngine("Turn", [] { return (OrvEngine*)new OrvVisibleEngine(); });
    OrvEngine* replaced = OrvGetEngine("Turn");
    EXPECT_STREQ(replaced->className(), "Visible");
    delete replaced;
}
