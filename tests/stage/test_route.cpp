// The order of offers of a stage's input: callbacks, producer, accelerators,
// grabbing actor, focus, role under the pointer; enter and leave, highlight
// and focus, all driven by XTest through the library's loop.
#include "test_route_support.h"

static void RecordInput(OrvView*, const OrvEvent& e, void* data) {
    OfferLog* log = (OfferLog*)data;
    log->push_back(Offer{"callback", e.type, nullptr, e.x, e.y, e.key, e.modifiers});
}

TEST_F(RouteTest, CallbacksFirstThenRoleUnderPointerAndTheFirstTrueAnswerEnds) {
    RecordingRole role(&log, "role");
    RouteBox* a = box(20, 20, 60, 40);
    a->setRole(&role);
    stage->onInput(RecordInput, &log);
    RecordingAccelerator* acc = new RecordingAccelerator(&log, OrvButtonDown, 1, OrvAnyModifiers);
    stage->add(acc);

    log.clear();
    press(40, 30);
    // The callback comes before the role; the role's true answer keeps the accelerator out.
    ASSERT_GE(log.size(), 2u);
    int callbackAt = -1, roleAt = -1;
    for (size_t i = 0; i < log.size(); i++) {
        if (log[i].type != OrvButtonDown) continue;
        if (log[i].who == "callback" && callbackAt < 0) callbackAt = (int)i;
        if (log[i].who == "role" && roleAt < 0) roleAt = (int)i;
    }
    ASSERT_GE(callbackAt, 0);
    ASSERT_GE(roleAt, 0);
    EXPECT_LT(callbackAt, roleAt);
    EXPECT_EQ(a, log[roleAt].actor);
    EXPECT_EQ(40, log[roleAt].x);
    EXPECT_EQ(30, log[roleAt].y);
    EXPECT_EQ(1, log[roleAt].key);
    EXPECT_EQ(0, count(OrvButtonDown, "accelerator"));
    release();

    // A role that declines lets the accelerators see the event.
    role.answer = 0;
    log.clear();
    press(50, 35);
    EXPECT_EQ(1, count(OrvButtonDown, "role"));
    EXPECT_EQ(1, count(OrvButtonDown, "accelerator"));
    release();

    // A press on empty space reaches no role, and the accelerator gets it.
    log.clear();
    press(200, 150);
    EXPECT_EQ(0, count(OrvButtonDown, "role"));
    EXPECT_EQ(1, count(OrvButtonDown, "accelerator"));
    EXPECT_EQ(1, count(OrvButtonDown, "callback"));
    release();
    stage->removeInput(RecordInput);
}

TEST_F(RouteTest, ProducerTakesEverythingActorsSeeNothingAcceleratorsOnlyWhenDeclined) {
    RecordingRole role(&log, "role");
    RouteBox* a = box(20, 20, 60, 40);
    a->setRole(&role);
    stage->add(new RecordingAccelerator(&log, OrvKeyDown, 'q', 0));
    stage->add(new RecordingAccelerator(&log, OrvButtonDown, 1, OrvAnyModifiers));
    RecordingProducer* p = new RecordingProducer(stage, &log);
    stage->setProducer(p);
    EXPECT_EQ(1, p->inits);
    EXPECT_EQ(p, stage->getProducer());

    log.clear();
    press(40, 30);
    release();
    type(XK_q);
    EXPECT_EQ(0, count(OrvButtonDown, "role"));
    EXPECT_EQ(1, count(OrvButtonDown, "producer"));
    EXPECT_EQ(1, count(OrvKeyDown, "producer"));
    EXPECT_EQ(0, count(OrvKeyDown, "accelerator"));
    EXPECT_EQ(0, count(OrvButtonDown, "accelerator"));

    p->answer = 0;
    log.clear();
    press(40, 30);
    release();
    type(XK_q);
    EXPECT_EQ(0, count(OrvButtonDown, "role"));
    EXPECT_EQ(1, count(OrvKeyDown, "accelerator"));
    EXPECT_EQ(1, count(OrvButtonDown, "accelerator"));

    stage->setProducer(nullptr);
    EXPECT_EQ(1, p->aborts);
    log.clear();
    press(40, 30);
    release();
    EXPECT_EQ(1, count(OrvButtonDown, "role"));
}

TEST_F(RouteTest, EnterAndLeaveActorComeFromPointerMotion) {
    RecordingRole ra(&log, "a"), rb(&log, "b");
    RouteBox* a = box(20, 20, 60, 40);
    RouteBox* b = box(150, 20, 60, 40);
    a->setRole(&ra);
    rb.answer = 0;
    b->setRole(&rb);
    moveTo(5, 150);
    log.clear();

    moveTo(30, 30);
    ASSERT_EQ(1u, log.size());
    EXPECT_EQ(OrvEnterActor, log[0].type);
    EXPECT_EQ("a", log[0].who);
    EXPECT_EQ(a, stage->pointerActor);

    // Motion inside the same actor is not offered unless the role asks for it.
    log.clear();
    moveTo(35, 32);
    EXPECT_EQ(0u, log.size());
    ra.pointerMoves = 1;
    moveTo(38, 33);
    ASSERT_EQ(1u, log.size());
    EXPECT_EQ(OrvPointerMoved, log[0].type);

    log.clear();
    moveTo(160, 30);
    ASSERT_EQ(2u, log.size());
    EXPECT_EQ(OrvLeaveActor, log[0].type);
    EXPECT_EQ("a", log[0].who);
    EXPECT_EQ(OrvEnterActor, log[1].type);
    EXPECT_EQ("b", log[1].who);
    EXPECT_EQ(b, stage->pointerActor);

    log.clear();
    moveTo(250, 150);
    ASSERT_EQ(1u, log.size());
    EXPECT_EQ(OrvLeaveActor, log[0].type);
    EXPECT_EQ("b", log[0].who);
    EXPECT_EQ(nullptr, stage->pointerActor);

    // An actor that is not sensitive is not entered.
    a->setSensitive(0);
    log.clear();
    moveTo(30, 30);
    EXPECT_EQ(0u, log.size());
    EXPECT_EQ(nullptr, stage->pointerActor);
}

TEST_F(RouteTest, HighlightFollowsThePointerAndLeavesWithTheWindow) {
    RecordingRole ra(&log, "a");
    RouteBox* a = box(20, 20, 60, 40);
    RouteBox* plain = box(150, 20, 60, 40);  // no role: not hit by the role test
    a->setRole(&ra);
    a->allowHighlight(1);
    plain->allowHighlight(1);
    moveTo(5, 150);
    moveTo(30, 30);
    EXPECT_TRUE(a->isHighlighted());
    EXPECT_EQ(a, stage->getHighlighted());
    moveTo(160, 30);
    EXPECT_FALSE(a->isHighlighted());
    EXPECT_FALSE(plain->isHighlighted());
    EXPECT_EQ(nullptr, stage->getHighlighted());

    // Under a producer, highlight counts all actors, with or without a role.
    RecordingProducer* p = new RecordingProducer(stage, &log);
    stage->setProducer(p);
    moveTo(165, 35);
    EXPECT_TRUE(plain->isHighlighted());
    // Leaving the window clears it.
    OrvTestMoveRoot(dpy, 1000, 900);
    settle();
    EXPECT_FALSE(plain->isHighlighted());
    EXPECT_EQ(nullptr, stage->getHighlighted());

    // A stage with highlight off highlights nothing.
    stage->highlightEnabled = 0;
    moveTo(165, 35);
    EXPECT_FALSE(plain->isHighlighted());
}

TEST_F(RouteTest, PressMovesTheFocusAndLaterDragsAndReleaseGoToIt) {
    RecordingRole ra(&log, "a"), rb(&log, "b");
    RouteBox* a = box(20, 20, 60, 40);
    RouteBox* b = box(150, 20, 60, 40);
    RouteBox* plain = box(20, 120, 60, 40);
    a->setRole(&ra);
    b->setRole(&rb);

    moveTo(30, 30);
    log.clear();
    OrvTestButton(dpy, 1, true);
    settle();
    EXPECT_EQ(a, stage->getFocus());
    ASSERT_GE(log.size(), 2u);
    EXPECT_EQ(OrvFocusIn, log[0].type);
    EXPECT_EQ(a, log[0].actor);
    EXPECT_EQ(OrvButtonDown, log[1].type);
    // The drag goes to the focus actor even over the other one: a press captures the pointer.
    log.clear();
    moveTo(160, 30);
    release();
    EXPECT_GE(count(OrvButtonDragged, "a"), 1);
    EXPECT_EQ(1, count(OrvButtonUp, "a"));
    EXPECT_EQ(0, count(OrvButtonDragged, "b"));
    EXPECT_EQ(0, count(OrvButtonUp, "b"));

    // A press on the other actor moves the focus to it.
    log.clear();
    click(160, 30);
    EXPECT_EQ(b, stage->getFocus());
    EXPECT_EQ(1, count(OrvFocusOut, "a"));
    EXPECT_EQ(1, count(OrvFocusIn, "b"));

    // Keys go to the focus actor, wherever the pointer is.
    log.clear();
    moveTo(250, 180);
    type(XK_x);
    EXPECT_EQ(1, count(OrvKeyDown, "b"));
    EXPECT_EQ(1, count(OrvKeyUp, "b"));
    EXPECT_EQ('x', log.back().key);

    // A press on an actor without a role, or on empty space, clears the focus.
    log.clear();
    click(30, 130);
    EXPECT_EQ(nullptr, stage->getFocus());
    EXPECT_EQ(1, count(OrvFocusOut, "b"));
    (void)plain;
    click(30, 30);
    EXPECT_EQ(a, stage->getFocus());
    click(250, 180);
    EXPECT_EQ(nullptr, stage->getFocus());

    // A press on an actor that is not sensitive gives nothing and clears the focus.
    click(30, 30);
    a->setSensitive(0);
    log.clear();
    click(30, 30);
    EXPECT_EQ(nullptr, stage->getFocus());
    EXPECT_EQ(0, count(OrvButtonDown, "a"));
}

TEST_F(RouteTest, TabOnReleaseWalksTheFocusInReadingOrder) {
    RecordingRole role(&log, "r");
    // Reading order: by y, then x: c (y 10), a (y 50, x 10), b (y 50, x 200).
    RouteBox* a = box(10, 50, 30, 30);
    RouteBox* b = box(200, 50, 30, 30);
    RouteBox* c = box(100, 10, 30, 30);
    RouteBox* noRole = box(50, 5, 10, 10);
    for (RouteBox* x : {a, b, c}) x->setRole(&role);
    moveTo(280, 190);

    type(XK_Tab);
    EXPECT_EQ(c, stage->getFocus());
    type(XK_Tab);
    EXPECT_EQ(a, stage->getFocus());
    type(XK_Tab);
    EXPECT_EQ(b, stage->getFocus());
    // Past the last, it wraps to the first.
    type(XK_Tab);
    EXPECT_EQ(c, stage->getFocus());
    // Backwards, the same order reversed, wrapping to the last. (Shift-Tab
    // reaches the stage as a Tab with shift only where the keymap has no
    // ISO_Left_Tab, so the walk is asked for directly.)
    stage->moveFocusBefore();
    EXPECT_EQ(b, stage->getFocus());
    stage->moveFocusBefore();
    EXPECT_EQ(a, stage->getFocus());
    stage->moveFocusBefore();
    EXPECT_EQ(c, stage->getFocus());
    stage->moveFocusAfter();
    EXPECT_EQ(a, stage->getFocus());

    // The press of Tab alone does nothing: the focus moves on the release.
    OrvTestFocus(dpy, stage->window());
    OrvTestKey(dpy, XK_Tab, true);
    settle();
    EXPECT_EQ(a, stage->getFocus());
    OrvTestKey(dpy, XK_Tab, false);
    settle();
    EXPECT_EQ(b, stage->getFocus());

    // With one eligible actor left, Tab keeps the focus where it is.
    a->setSensitive(0);
    c->setVisible(0);
    type(XK_Tab);
    EXPECT_EQ(b, stage->getFocus());
    (void)noRole;

    // Focus handling off: setFocus does nothing.
    stage->setFocus(nullptr);
    EXPECT_EQ(nullptr, stage->getFocus());
    stage->focusEnabled = 0;
    stage->setFocus(b);
    EXPECT_EQ(nullptr, stage->getFocus());
}

TEST_F(RouteTest, FocusChangeRepaintsTheRing) {
    RecordingRole role(&log, "r");
    RouteBox* a = box(40, 40, 60, 40, blue);
    a->setRole(&role);
    // The ring is two pixels wide: on the box's edge and one pixel outside it.
    EXPECT_EQ(background, rgb(39, 60));
    EXPECT_EQ(0x0000fful, rgb(40, 60));
    stage->setFocus(a);
    EXPECT_NE(background, rgb(39, 60));
    EXPECT_NE(0x0000fful, rgb(40, 60));
    EXPECT_EQ(background, rgb(38, 60));
    EXPECT_NE(background, rgb(70, 39));
    stage->setFocus(nullptr);
    EXPECT_EQ(background, rgb(39, 60));
    EXPECT_EQ(0x0000fful, rgb(40, 60));
    EXPECT_EQ(background, rgb(70, 39));
    // Inside is untouched.
    EXPECT_EQ(0x0000fful, rgb(60, 60));
}

TEST_F(RouteTest, GrabbingActorTakesEveryEvent) {
    RecordingRole ra(&log, "a"), rb(&log, "b");
    RouteBox* a = box(20, 20, 60, 40);
    RouteBox* b = box(150, 20, 60, 40);
    a->setRole(&ra);
    ra.answer = 0;  // declined, yet nothing else sees the event
    b->setRole(&rb);
    stage->add(new RecordingAccelerator(&log, OrvButtonDown, 1, OrvAnyModifiers));
    stage->grabActor = a;
    log.clear();
    click(160, 30);
    type(XK_z);
    EXPECT_EQ(1, count(OrvButtonDown, "a"));
    EXPECT_EQ(1, count(OrvKeyDown, "a"));
    EXPECT_EQ(0, count(OrvButtonDown, "b"));
    EXPECT_EQ(0, count(OrvButtonDown, "accelerator"));
    EXPECT_EQ(nullptr, stage->getFocus());
    stage->grabActor = nullptr;
}

TEST_F(RouteTest, WithoutFocusHandlingPressesGoToThePressedActor) {
    RecordingRole ra(&log, "a");
    RouteBox* a = box(20, 20, 60, 40);
    RouteBox* plain = box(150, 20, 60, 40);
    a->setRole(&ra);
    stage->focusEnabled = 0;

    // No role: the press gives 0 and still sets the pressed actor.
    stage->add(new RecordingAccelerator(&log, OrvButtonDown, 1, OrvAnyModifiers));
    log.clear();
    press(160, 30);
    EXPECT_EQ(plain, stage->pressedActor);
    EXPECT_EQ(1, count(OrvButtonDown, "accelerator"));
    release();

    log.clear();
    press(30, 30);
    EXPECT_EQ(a, stage->pressedActor);
    moveTo(170, 35);
    release();
    EXPECT_EQ(1, count(OrvButtonDown, "a"));
    EXPECT_GE(count(OrvButtonDragged, "a"), 1);
    EXPECT_EQ(1, count(OrvButtonUp, "a"));
    EXPECT_EQ(0, count(OrvButtonDown, "accelerator"));
    EXPECT_EQ(nullptr, stage->getFocus());
}

TEST_F(RouteTest, DoubleClickGoesToTheRoleUnderThePointer) {
    RecordingRole ra(&log, "a");
    RouteBox* a = box(20, 20, 60, 40);
    a->setRole(&ra);
    director->setDoubleClickPeriod(400);
    moveTo(30, 30);
    log.clear();
    OrvTestButton(dpy, 1, true, 10);
    OrvTestButton(dpy, 1, false, 10);
    OrvTestButton(dpy, 1, true, 10);
    OrvTestButton(dpy, 1, false, 10);
    settle(100);
    EXPECT_EQ(1, count(OrvButtonDown, "a"));
    EXPECT_EQ(1, count(OrvDoubleClick, "a"));
}

TEST_F(RouteTest, AcceleratorMatchingAndTheStagesList) {
    OrvEvent e;
    memset((void*)&e, 0, sizeof e);
    e.type = OrvKeyDown;
    e.key = 'a';
    OrvAccelerator none(OrvKeyDown, 'a', 0), any(OrvKeyDown, 'a', OrvAnyModifiers),
        ctrl(OrvKeyDown, 'a', 0x200);
    EXPECT_TRUE(none.match(e));
    EXPECT_TRUE(any.match(e));
    EXPECT_FALSE(ctrl.match(e));
    e.modifiers = 0x200;
    EXPECT_FALSE(none.match(e));
    EXPECT_TRUE(any.match(e));
    EXPECT_TRUE(ctrl.match(e));
    e.type = OrvKeyUp;
    EXPECT_FALSE(any.match(e));
    EXPECT_EQ(0, none.input2d(stage, e));

    // The earliest added wins between two with the same key.
    RecordingAccelerator* first = new RecordingAccelerator(&log, OrvKeyDown, 'k', 0);
    RecordingAccelerator* second = new RecordingAccelerator(&log, OrvKeyDown, 'k', 0);
    stage->add(first);
    stage->add(second);
    e.type = OrvKeyDown;
    e.key = 'k';
    e.modifiers = 0;
    log.clear();
    EXPECT_EQ(1, stage->dispatchToAccelerators(e));
    EXPECT_EQ(1u, log.size());
    e.key = 'j';
    EXPECT_EQ(0, stage->dispatchToAccelerators(e));

    EXPECT_EQ(1ul, stage->remove(first));
    EXPECT_EQ(0ul, stage->remove(first));
    delete first;
    // A destructor unlinks the accelerator from the stage.
    delete second;
    EXPECT_EQ(0u, stage->accelerators.length());

    stage->add(new RecordingAccelerator(&log, OrvKeyDown, 'k', 0));
    stage->add(new RecordingAccelerator(&log, OrvKeyDown, 'm', 0x200));
    stage->add(new RecordingAccelerator(&log, OrvKeyUp, 'k', 0));
    stage->deleteAccelerators(OrvKeyDown, 0, 0);
    EXPECT_EQ(1u, stage->accelerators.length());
    stage->removeAccelerators(1);
    EXPECT_EQ(0u, stage->accelerators.length());

    // Through the window: modifiers 0 do not fire with control held.
    stage->add(new RecordingAccelerator(&log, OrvKeyDown, 'k', 0));
    log.clear();
    type(XK_k, XK_Control_L);
    EXPECT_EQ(0, count(OrvKeyDown, "accelerator"));
    type(XK_k);
    EXPECT_EQ(1, count(OrvKeyDown, "accelerator"));
}

TEST_F(RouteTest, StageCallbacksShadowAndCallCallbackPrefersTheNamedOne) {
    int stageCalls = 0, ownCalls = 0, laterCalls = 0;
    OrvActor* last = nullptr;
    RouteBox* a = box(20, 20, 60, 40);
    CountingCallback* own = new CountingCallback(&ownCalls);
    a->setCallback(own);
    stage->callCallback(a);
    EXPECT_EQ(1, ownCalls);

    CountingCallback* named = new CountingCallback(&stageCalls, &last);
    stage->registerCallback("pressed", named);
    EXPECT_EQ(1, named->count);
    EXPECT_EQ(named, stage->getCallback("pressed"));
    a->setCallbackName(OrvGetKey("pressed", 1));
    stage->callCallback(a);
    EXPECT_EQ(1, stageCalls);
    EXPECT_EQ(1, ownCalls);
    EXPECT_EQ(a, last);

    CountingCallback* later = new CountingCallback(&laterCalls);
    stage->registerCallback("pressed", later);
    EXPECT_EQ(later, stage->getCallback("pressed"));
    stage->callCallback(a);
    EXPECT_EQ(1, laterCalls);
    EXPECT_EQ(1, stageCalls);

    stage->removeCallback("pressed");
    EXPECT_EQ(named, stage->getCallback("pressed"));
    EXPECT_EQ(nullptr, stage->getCallback("never registered"));
    // A callback name with nothing behind it falls back on the actor's own.
    a->setCallbackName(OrvGetKey("elsewhere", 1));
    stage->callCallback(a);
    EXPECT_EQ(2, ownCalls);
}

class CountingExit : public OrvExitCallback {
public:
    int* calls;
    explicit CountingExit(int* c) : calls(c) {}
    void exit(OrvStage*) override { (*calls)++; }
};

TEST_F(RouteTest, QuitRunsTheExitCallback) {
    int exits = 0;
    CountingExit* e = new CountingExit(&exits);
    stage->onExit(e);
    EXPECT_EQ(1, e->count);
    stage->handleQuit();
    EXPECT_EQ(1, exits);
    // From the window manager's protocol message, through the loop.
    XEvent ev;
    memset(&ev, 0, sizeof ev);
    ev.xclient.type = ClientMessage;
    ev.xclient.window = stage->window();
    ev.xclient.message_type = XInternAtom(dpy, "WM_PROTOCOLS", False);
    ev.xclient.format = 32;
    ev.xclient.data.l[0] = (long)XInternAtom(dpy, "WM_DELETE_WINDOW", False);
    XSendEvent(dpy, stage->window(), False, 0, &ev);
    settle();
    EXPECT_EQ(2, exits);
    stage->onExit(nullptr);
}
