// Roles: the shared registry, buttons and toggles pressed, released inside
// and outside, by keys; the move and reshape roles dragging one actor.
#include "test_route_support.h"

TEST(RoleRegistry, SharedInstancesByClassName) {
    OrvRole* button = OrvGetRole("Button");
    ASSERT_NE(nullptr, button);
    EXPECT_STREQ("Button", button->className());
    EXPECT_EQ(1, button->mask);
    ASSERT_NE(nullptr, OrvGetRole("Toggle"));
    EXPECT_STREQ("Toggle", OrvGetRole("Toggle")->className());
    ASSERT_NE(nullptr, OrvGetRole("Move"));
    EXPECT_STREQ("Move", OrvGetRole("Move")->className());
    ASSERT_NE(nullptr, OrvGetRole("Reshape"));
    EXPECT_STREQ("Reshape", OrvGetRole("Reshape")->className());
    EXPECT_EQ(nullptr, OrvGetRole("NoSuchRole"));
    EXPECT_EQ(nullptr, OrvGetRole(nullptr));
    EXPECT_EQ(0, button->allowPointerMoved());

    class Custom : public OrvRole {
    public:
        const char* className() const override { return "CustomRoleForTest"; }
    };
    Custom* c = new Custom;
    OrvRegisterRoleInstance(c);
    EXPECT_EQ(c, OrvGetRole("CustomRoleForTest"));
    OrvEvent e;
    memset((void*)&e, 0, sizeof e);
    EXPECT_EQ(0, c->input2d(nullptr, e, nullptr));
    EXPECT_EQ(0, c->input3d(nullptr, e, nullptr, nullptr));
    delete c;
    EXPECT_EQ(nullptr, OrvGetRole("CustomRoleForTest"));
}

// A button whose validate is counted apart from the callback it calls.
class CountingButton : public OrvButtonRole {
public:
    int validates = 0;
    void validate(OrvActor* a, OrvStage* s) override {
        validates++;
        OrvButtonRole::validate(a, s);
    }
};

class CountingToggle : public OrvToggleRole {
public:
    int validates = 0;
    void validate(OrvActor* a, OrvStage* s) override {
        validates++;
        OrvToggleRole::validate(a, s);
    }
};

TEST_F(RouteTest, ButtonPressReleaseInsideValidatesOnce) {
    CountingButton role;
    int calls = 0;
    RouteBox* a = box(20, 20, 80, 40);
    a->setRole(&role);
    a->setCallback(new CountingCallback(&calls));
    EXPECT_EQ(0xff0000ul, rgb(40, 30));

    press(40, 30);
    EXPECT_TRUE(a->isInverted());
    EXPECT_EQ(1ul, role.pressed);
    EXPECT_NE(0xff0000ul, rgb(40, 30));  // the look is inverted on the window
    release();
    EXPECT_FALSE(a->isInverted());
    EXPECT_EQ(0xff0000ul, rgb(40, 30));
    EXPECT_EQ(1, role.validates);
    EXPECT_EQ(1, calls);

    // Dragged out and released outside: the look comes back, nothing is validated.
    press(40, 30);
    moveTo(200, 150);
    EXPECT_FALSE(a->isInverted());
    EXPECT_EQ(0ul, role.pressed);
    // Back in: pressed again.
    moveTo(50, 35);
    EXPECT_TRUE(a->isInverted());
    moveTo(220, 160);
    release();
    EXPECT_FALSE(a->isInverted());
    EXPECT_EQ(1, role.validates);
    EXPECT_EQ(1, calls);

    // Button 3 is not in the mask: the role declines and nothing changes.
    press(40, 30, 3);
    EXPECT_FALSE(a->isInverted());
    release(3);
    EXPECT_EQ(1, calls);
}

TEST_F(RouteTest, ButtonByKeysAndTheSharedMaskField) {
    CountingButton role;
    int calls = 0;
    RouteBox* a = box(20, 20, 80, 40);
    a->setRole(&role);
    a->setCallback(new CountingCallback(&calls));
    stage->setFocus(a);
    moveTo(250, 180);
    // Return (13 & 1) passes the mask: press inverts, release validates.
    OrvTestFocus(dpy, stage->window());
    OrvTestKey(dpy, XK_Return, true);
    settle();
    EXPECT_TRUE(a->isInverted());
    OrvTestKey(dpy, XK_Return, false);
    settle();
    EXPECT_FALSE(a->isInverted());
    EXPECT_EQ(1, calls);
    EXPECT_EQ(1, role.validates);
    // Space (32 & 1 is 0) fails the mask test and does nothing.
    type(XK_space);
    EXPECT_FALSE(a->isInverted());
    EXPECT_EQ(1, calls);
    // A role with a mask that lets 32 through answers to space.
    role.mask = 33;
    type(XK_space);
    EXPECT_EQ(2, calls);
    // Other keys are declined.
    type(XK_a);
    EXPECT_EQ(2, calls);
}

TEST_F(RouteTest, ButtonCallsTheStagesNamedCallback) {
    CountingButton role;
    int own = 0, named = 0;
    OrvActor* who = nullptr;
    RouteBox* a = box(20, 20, 80, 40);
    a->setRole(&role);
    a->setCallback(new CountingCallback(&own));
    a->setCallbackName(OrvGetKey("ok", 1));
    stage->registerCallback("ok", new CountingCallback(&named, &who));
    click(40, 30);
    EXPECT_EQ(1, named);
    EXPECT_EQ(0, own);
    EXPECT_EQ(a, who);
}

TEST_F(RouteTest, ToggleFlipsOnEachClickAndValidatesOnce) {
    CountingToggle role;
    int calls = 0;
    RouteBox* a = box(20, 20, 80, 40);
    a->setRole(&role);
    a->setCallback(new CountingCallback(&calls));

    click(40, 30);
    EXPECT_TRUE(a->isInverted());
    EXPECT_NE(0xff0000ul, rgb(40, 30));
    EXPECT_EQ(1, role.validates);
    EXPECT_EQ(1, calls);
    click(40, 30);
    EXPECT_FALSE(a->isInverted());
    EXPECT_EQ(0xff0000ul, rgb(40, 30));
    EXPECT_EQ(2, calls);

    // Dragged out and released outside: the look is restored by the invert on
    // leaving, and it does not toggle back by itself.
    press(40, 30);
    EXPECT_TRUE(a->isInverted());
    moveTo(200, 150);
    EXPECT_FALSE(a->isInverted());
    release();
    EXPECT_FALSE(a->isInverted());
    EXPECT_EQ(2, calls);
    EXPECT_EQ(2, role.validates);

    // By key: Return flips and validates on the press.
    stage->setFocus(a);
    moveTo(250, 180);
    OrvTestFocus(dpy, stage->window());
    OrvTestKey(dpy, XK_Return, true);
    settle();
    EXPECT_TRUE(a->isInverted());
    EXPECT_EQ(3, calls);
    OrvTestKey(dpy, XK_Return, false);
    settle();
    EXPECT_TRUE(a->isInverted());
    EXPECT_EQ(3, calls);
}

TEST_F(RouteTest, ToggleDragAnswersOnlyWhenTheLookChanges) {
    CountingToggle role;
    RouteBox* a = box(20, 20, 80, 40);
    OrvEvent e;
    memset((void*)&e, 0, sizeof e);
    e.button = 1;
    e.type = OrvButtonDown;
    e.x = 30;
    e.y = 30;
    EXPECT_EQ(1, role.input2d(a, e, stage));
    e.type = OrvButtonDragged;
    e.x = 35;
    EXPECT_EQ(0, role.input2d(a, e, stage));  // still inside: no change
    e.x = 250;
    EXPECT_EQ(1, role.input2d(a, e, stage));  // out: the look changed
    e.type = OrvButtonUp;
    EXPECT_EQ(0, role.input2d(a, e, stage));  // released outside: declined
    e.type = OrvButtonDown;
    e.button = 2;
    EXPECT_EQ(0, role.input2d(a, e, stage));
    EXPECT_EQ(0, role.validates);
}

TEST_F(RouteTest, MoveRoleDragsOneActorToTheExactPixel) {
    RouteBox* a = box(20, 20, 40, 30);
    RouteBox* b = box(150, 100, 40, 30, blue);
    a->setRole(OrvGetRole("Move"));
    OrvMoveRole* role = (OrvMoveRole*)OrvGetRole("Move");
    ASSERT_EQ(0ul, role->immediate);
    stage->focusEnabled = 0;  // no focus ring among the pixels

    press(30, 30);
    EXPECT_EQ(1ul, role->active);
    moveTo(60, 50);
    // The ghost is the actor drawn by exclusive or at the new place; the actor has not moved.
    EXPECT_EQ(20, a->box.x);
    EXPECT_NE(background, rgb(72, 45));
    moveTo(83, 67);
    release();
    EXPECT_EQ(0ul, role->active);
    EXPECT_EQ(73, a->box.x);
    EXPECT_EQ(57, a->box.y);
    EXPECT_EQ(40u, a->box.w);
    EXPECT_EQ(0xff0000ul, rgb(73, 57));
    EXPECT_EQ(0xff0000ul, rgb(112, 86));
    EXPECT_EQ(background, rgb(72, 57));
    EXPECT_EQ(background, rgb(25, 25));
    // No ghost remains anywhere outside the two boxes.
    EXPECT_EQ(40 * 30 + 40 * 30, foreignPixels(0, 0, 300, 200));
    EXPECT_EQ(150, b->box.x);

    // A role on an actor that is not moveable takes the event and moves nothing.
    a->setMoveable(0);
    drag(80, 60, 120, 90);
    EXPECT_EQ(73, a->box.x);
    // Immediate: the actor follows each motion.
    a->setMoveable(1);
    role->immediate = 1;
    press(80, 60);
    moveTo(90, 65);
    EXPECT_EQ(83, a->box.x);
    EXPECT_EQ(62, a->box.y);
    moveTo(100, 70);
    release();
    EXPECT_EQ(93, a->box.x);
    EXPECT_EQ(67, a->box.y);
    role->immediate = 0;
    EXPECT_EQ(40 * 30 + 40 * 30, foreignPixels(0, 0, 300, 200));
}

TEST_F(RouteTest, ReshapeRoleResizesAboutTheCentre) {
    RouteBox* a = box(100, 60, 40, 30);  // centre 120, 75
    a->setRole(OrvGetRole("Reshape"));
    Orv2dRect r = OrvReshapeRole::symmetricBox(a->box, Orv2dPoint(90, 50));
    EXPECT_EQ(90, r.x);
    EXPECT_EQ(50, r.y);
    EXPECT_EQ(60u, r.w);
    EXPECT_EQ(50u, r.h);
    r = OrvReshapeRole::symmetricBox(a->box, Orv2dPoint(150, 95));
    EXPECT_EQ(90, r.x);
    EXPECT_EQ(55, r.y);
    EXPECT_EQ(60u, r.w);
    EXPECT_EQ(40u, r.h);

    stage->focusEnabled = 0;  // no focus ring among the pixels
    EXPECT_EQ(background, rgb(90, 70));
    press(130, 80);
    moveTo(140, 85);
    moveTo(150, 95);
    // The ghost: an outline by exclusive or, outside the actor here.
    EXPECT_NE(background, rgb(90, 70));
    release();
    EXPECT_EQ(90, a->box.x);
    EXPECT_EQ(55, a->box.y);
    EXPECT_EQ(60u, a->box.w);
    EXPECT_EQ(40u, a->box.h);
    EXPECT_EQ(0xff0000ul, rgb(91, 56));
    EXPECT_EQ(60 * 40, foreignPixels(0, 0, 300, 200));
}

TEST_F(RouteTest, DeletedRoleLeavesEveryActorThatUsedIt) {
    OfferLog unused;
    RecordingRole* role = new RecordingRole(&unused, "gone");
    RouteBox* a = box(20, 20, 40, 30);
    RouteBox* b = box(120, 20, 40, 30);
    OrvStage* other = newStage(Orv2dRect(320, 0, 200, 150));
    RouteBox* c = box(10, 10, 40, 30, nullptr, other);
    a->setRole(role);
    c->setRole(role);
    b->setRole(OrvGetRole("Button"));
    EXPECT_TRUE(a->getProperty(10));
    delete role;
    EXPECT_EQ(nullptr, a->getRole());
    EXPECT_EQ(nullptr, c->getRole());
    EXPECT_FALSE(a->getProperty(10));
    EXPECT_EQ(OrvGetRole("Button"), b->getRole());
    // Nothing answers a press any more.
    click(30, 30);
    EXPECT_EQ(0u, unused.size());
    delete other;
}
