// Roles: the shared registry, buttons and toggles pressed, released inside and outside, by keys;
// the move and reshape roles dragging one actor.
#include "orv_fixtures.h"

TEST(RoleRegistry, SharedInstancesByClassName) {
    for (const char* name : {"Button", "Toggle", "Move", "Reshape"}) {
        ASSERT_NE(nullptr, OrvGetRole(name)) << name;
        EXPECT_STREQ(name, OrvGetRole(name)->className());
    }
    EXPECT_TRUE(OrvGetRole("Button")->mask == 1 && !OrvGetRole("Button")->allowPointerMoved());
    EXPECT_TRUE(!OrvGetRole("NoSuchRole") && !OrvGetRole(nullptr));
    // A role registered by hand is found until it goes.
    RecordingRole* c = new RecordingRole(nullptr, "custom");
    OrvRegisterRoleInstance(c);
    EXPECT_EQ(c, OrvGetRole("RecordingRole"));
    delete c;
    EXPECT_EQ(nullptr, OrvGetRole("RecordingRole"));
}

// A button or toggle whose validate is counted apart from the callback it calls.
template <class Base>
class Counting : public Base {
public:
    int validates = 0;
    void validate(OrvActor* a, OrvStage* s) override {
        validates++;
        Base::validate(a, s);
    }
};

class RoleTest : public RouteTest {
protected:
    int calls = 0;
    // An 80x40 red box at 20, 20 playing the role, its own callback counted in calls.
    TestBox* pressable(OrvRole* role) {
        TestBox* a = box(20, 20, 80, 40);
        a->setRole(role);
        a->setCallback(new CountingCallback(&calls));
        return a;
    }
};

TEST_F(RoleTest, ButtonByPressReleaseAndKeysValidatesOnceThroughTheSharedMaskAndNamedCallback) {
    Counting<OrvButtonRole> role;
    TestBox* a = pressable(&role);
    press(40, 30);
    EXPECT_TRUE(a->isInverted() && role.pressed == 1ul);
    EXPECT_NE(0xff0000ul, rgb(40, 30));  // the look is inverted on the window
    release();
    EXPECT_TRUE(!a->isInverted() && rgb(40, 30) == 0xff0000ul);
    EXPECT_EQ(std::vector<int>({1, 1}), std::vector<int>({role.validates, calls}));
    // Dragged out, back in, out again and released outside: the look follows, nothing is
    // validated.
    press(40, 30);
    moveTo(200, 150);
    EXPECT_TRUE(!a->isInverted() && role.pressed == 0ul);
    moveTo(50, 35);
    EXPECT_TRUE(a->isInverted());
    moveTo(220, 160);
    release();
    EXPECT_FALSE(a->isInverted());
    // Buttons 2 and 3 are not in the mask: the role declines and nothing changes.
    for (unsigned button : {2u, 3u}) {
        press(40, 30, button);
        EXPECT_FALSE(a->isInverted()) << button;
        release(button);
    }
    EXPECT_EQ(std::vector<int>({1, 1}), std::vector<int>({role.validates, calls}));
    // By keys: Return (13 & 1) passes the mask: press inverts, release validates.
    stage->setFocus(a);
    moveTo(250, 180);
    key(XK_Return, true);
    EXPECT_TRUE(a->isInverted());
    key(XK_Return, false);
    EXPECT_FALSE(a->isInverted());
    EXPECT_EQ(std::vector<int>({2, 2}), std::vector<int>({role.validates, calls}));
    // Space (32 & 1 is 0) fails the mask test, unless the mask lets 32 through; other keys never
    // pass.
    type(XK_space);
    EXPECT_EQ(2, calls);
    role.mask = 33;
    type(XK_space);
    type(XK_a);
    EXPECT_EQ(3, calls);
    // A callback name calls the stage's callback of that name instead of the actor's own.
    int named = 0;
    OrvActor* who = nullptr;
    a->setCallbackName(OrvGetKey("ok", 1));
    stage->registerCallback("ok", new CountingCallback(&named, &who));
    click(40, 30);
    EXPECT_TRUE(named == 1 && calls == 3 && who == a);
}

TEST_F(RoleTest, ToggleFlipsOnEachClickValidatesOnceAndAnswersDragsThatChangeTheLook) {
    Counting<OrvToggleRole> role;
    TestBox* a = pressable(&role);
    click(40, 30);
    EXPECT_TRUE(a->isInverted() && rgb(40, 30) != 0xff0000ul);
    click(40, 30);
    EXPECT_TRUE(!a->isInverted() && rgb(40, 30) == 0xff0000ul);
    EXPECT_EQ(std::vector<int>({2, 2}), std::vector<int>({role.validates, calls}));
    // Dragged out and released outside: the look is restored by the invert on leaving, and it
    // does not toggle back by itself.
    press(40, 30);
    EXPECT_TRUE(a->isInverted());
    moveTo(200, 150);
    release();
    EXPECT_FALSE(a->isInverted());
    EXPECT_EQ(std::vector<int>({2, 2}), std::vector<int>({role.validates, calls}));
    // By key: Return flips and validates on the press.
    stage->setFocus(a);
    moveTo(250, 180);
    key(XK_Return, true);
    EXPECT_TRUE(a->isInverted() && calls == 3);
    key(XK_Return, false);
    EXPECT_TRUE(a->isInverted() && calls == 3);
    // Offered directly, a drag is answered only when the look changes.
    Counting<OrvToggleRole> direct;
    OrvEvent e{};
    e.button = 1;
    const struct {
        OrvEventType type;
        long x;
        int answer;
    } steps[] = {{OrvButtonDown, 30, 1},
                 {OrvButtonDragged, 35, 0},  // still inside: no change
                 {OrvButtonDragged, 250, 1},
                 {OrvButtonUp, 250, 0}};  // released outside: declined
    for (const auto& step : steps) {
        e.type = step.type;
        e.x = step.x;
        e.y = 30;
        EXPECT_EQ(step.answer, direct.input2d(a, e, stage)) << step.type << " at " << step.x;
    }
    e.type = OrvButtonDown;
    e.button = 2;
    EXPECT_TRUE(direct.input2d(a, e, stage) == 0 && direct.validates == 0);
}

TEST_F(RouteTest, MoveAndReshapeRolesDragOneActorToTheExactPixel) {
    TestBox* a = box(20, 20, 40, 30);
    TestBox* b = box(150, 100, 40, 30, blue);
    a->setRole(OrvGetRole("Move"));
    OrvMoveRole* role = (OrvMoveRole*)OrvGetRole("Move");
    ASSERT_EQ(0ul, role->immediate);
    stage->focusEnabled = 0;  // no focus ring among the pixels
    press(30, 30);
    EXPECT_EQ(1ul, role->active);
    moveTo(60, 50);
    // The ghost is the actor drawn by exclusive or at the new place; the actor has not moved.
    EXPECT_TRUE(a->box.x == 20 && rgb(72, 45) != background);
    moveTo(83, 67);
    release();
    EXPECT_TRUE(role->active == 0ul && a->box == Orv2dRect(73, 57, 40, 30));
    expectPixels({73, 57, 0xff0000ul, 112, 86, 0xff0000ul, 72, 57, background});
    // No ghost remains anywhere outside the two boxes.
    EXPECT_TRUE(foreignPixels() == 40 * 30 + 40 * 30 && b->box.x == 150);
    // A role on an actor that is not moveable takes the event and moves nothing.
    a->setMoveable(0);
    drag(80, 60, 120, 90);
    EXPECT_EQ(73, a->box.x);
    // Immediate: the actor follows each motion.
    a->setMoveable(1);
    role->immediate = 1;
    press(80, 60);
    moveTo(90, 65);
    EXPECT_EQ(Orv2dPoint(83, 62), Orv2dPoint(a->box.x, a->box.y));
    moveTo(100, 70);
    release();
    role->immediate = 0;
    EXPECT_EQ(Orv2dPoint(93, 67), Orv2dPoint(a->box.x, a->box.y));
    EXPECT_EQ(40 * 30 + 40 * 30, foreignPixels());
    // The reshape role resizes about the centre.
    TestBox* r = box(200, 20, 40, 30);  // centre 220, 35
    r->setRole(OrvGetRole("Reshape"));
    EXPECT_EQ(Orv2dRect(90, 50, 60, 50),
              OrvReshapeRole::symmetricBox(Orv2dRect(100, 60, 40, 30), Orv2dPoint(90, 50)));
    press(230, 40);
    moveTo(240, 45);
    moveTo(250, 55);
    EXPECT_NE(background, rgb(190, 30));  // the ghost: an outline by exclusive or
    release();
    EXPECT_TRUE(r->box == Orv2dRect(190, 15, 60, 40) && rgb(191, 16) == 0xff0000ul);
    EXPECT_EQ(40 * 30 + 40 * 30 + 60 * 40, foreignPixels());
}

TEST_F(RouteTest, DeletedRoleLeavesEveryActorThatUsedIt) {
    OfferLog unused;
    RecordingRole* role = new RecordingRole(&unused, "gone");
    TestBox* a = box(20, 20, 40, 30);
    TestBox* b = box(120, 20, 40, 30);
    TestStage* other = newStage(Orv2dRect(320, 0, 200, 150));
    TestBox* c = box(10, 10, 40, 30, nullptr, 0, other);
    a->setRole(role);
    c->setRole(role);
    b->setRole(OrvGetRole("Button"));
    EXPECT_TRUE(a->getProperty(10));
    delete role;
    EXPECT_TRUE(!a->getRole() && !c->getRole() && !a->getProperty(10));
    EXPECT_EQ(OrvGetRole("Button"), b->getRole());
    click(30, 30);  // nothing answers a press any more
    EXPECT_EQ(0u, unused.size());
    delete other;
}
