// The order of offers of a stage's input: callbacks, producer, accelerators, grabbing actor, focus,
// role under the pointer; enter and leave, highlight and focus, all driven by XTest through the
// library's loop; the stage's callbacks and exit.
#include "orv_fixtures.h"

static void RecordInput(OrvView*, const OrvEvent& e, void* data) {
    OrvTestNote((OfferLog*)data, "callback", e);
}

TEST_F(RouteTest, DoubleClickCallbacksFirstThenProducerOrRoleAndTheFirstTrueAnswerEnds) {
    RecordingRole role(&log, "role");
    TestBox* a = actor(20, 20, &role);
    // A double click goes to the role under the pointer.
    director->setDoubleClickPeriod(400);
    moveTo(30, 30);
    for (int i = 0; i < 2; i++) {
        OrvTestButton(dpy, 1, true, 10);
        OrvTestButton(dpy, 1, false, 10);
    }
    settle(100);
    EXPECT_EQ("role:down role:double", offered({OrvButtonDown, OrvDoubleClick}));
    director->setDoubleClickPeriod(0);
    stage->onInput(RecordInput, &log);
    stage->add(new RecordingAccelerator(&log, OrvButtonDown, 1, OrvAnyModifiers));
    log.clear();
    press(40, 30);
    // The callback comes before the role; the role's true answer keeps the accelerator out.
    EXPECT_TRUE(log.back().actor == a && log.back().x == 40 && log.back().y == 30 &&
                log.back().key == 1);
    EXPECT_EQ("callback:down role:down", offered({OrvButtonDown}));
    release();
    // A role that declines lets the accelerators see the event; on empty space no role is asked.
    role.answer = 0;
    press(50, 35);
    EXPECT_EQ("callback:down role:down accelerator:down", offered({OrvButtonDown}));
    release();
    press(200, 150);
    EXPECT_EQ("callback:down accelerator:down", offered({OrvButtonDown}));
    release();
    stage->removeInput(RecordInput);
    // A producer takes everything, the actors see nothing, the accelerators only what it declines.
    role.answer = 1;
    stage->add(new RecordingAccelerator(&log, OrvKeyDown, 'q', 0));
    RecordingProducer* p = new RecordingProducer(stage, &log);
    stage->setProducer(p);
    EXPECT_EQ(1, p->inits);
    log.clear();
    click(40, 30);
    type(XK_q);
    EXPECT_EQ("producer:down producer:key", offered({OrvButtonDown, OrvKeyDown}));
    p->answer = 0;
    click(40, 30);
    type(XK_q);
    EXPECT_EQ("producer:down accelerator:down producer:key accelerator:key",
              offered({OrvButtonDown, OrvKeyDown}));
    stage->setProducer(nullptr);
    EXPECT_EQ(1, p->aborts);
    click(40, 30);
    EXPECT_EQ("role:down", offered({OrvButtonDown}));
}

TEST_F(RouteTest, EnterLeaveAndHighlightComeFromPointerMotion) {
    RecordingRole ra(&log, "a"), rb(&log, "b");
    rb.answer = 0;
    TestBox *a = actor(20, 20, &ra), *b = actor(150, 20, &rb);
    moveTo(5, 150);
    log.clear();
    moveTo(30, 30);
    EXPECT_TRUE(offered() == "a:enter" && stage->pointerActor == a);
    // Motion inside the same actor is not offered unless the role asks for it.
    moveTo(35, 32);
    EXPECT_EQ("", offered());
    ra.pointerMoves = 1;
    moveTo(38, 33);
    EXPECT_EQ("a:move", offered());
    moveTo(160, 30);
    EXPECT_TRUE(offered() == "a:leave b:enter" && stage->pointerActor == b);
    moveTo(250, 150);
    EXPECT_TRUE(offered() == "b:leave" && !stage->pointerActor);
    // An actor that is not sensitive is not entered.
    a->setSensitive(0);
    moveTo(30, 30);
    EXPECT_TRUE(offered().empty() && !stage->pointerActor);
    // Highlight follows the pointer and leaves with the window.
    a->setSensitive(1);
    TestBox* plain = box(150, 100, 60, 40);  // no role: not hit by the role test
    a->allowHighlight(1);
    plain->allowHighlight(1);
    moveTo(5, 150);
    moveTo(30, 30);
    EXPECT_TRUE(a->isHighlighted() && stage->getHighlighted() == a);
    moveTo(160, 110);
    EXPECT_FALSE(a->isHighlighted() || plain->isHighlighted() || stage->getHighlighted());
    // Under a producer, highlight counts all actors, with or without a role.
    stage->setProducer(new RecordingProducer(stage, &log));
    moveTo(165, 115);
    EXPECT_TRUE(plain->isHighlighted());
    // Leaving the window clears it.
    OrvTestMoveRoot(dpy, 1000, 900);
    settle();
    EXPECT_FALSE(plain->isHighlighted() || stage->getHighlighted());
    // A stage with highlight off highlights nothing.
    stage->highlightEnabled = 0;
    moveTo(165, 115);
    EXPECT_FALSE(plain->isHighlighted());
}

TEST_F(RouteTest, PressMovesTheFocusLaterDragsAndReleaseGoToItAndItsRingIsRepainted) {
    RecordingRole ra(&log, "a"), rb(&log, "b");
    TestBox *a = actor(20, 20, &ra), *b = actor(150, 20, &rb);
    box(20, 120, 60, 40);  // no role
    moveTo(30, 30);
    log.clear();
    // The focus comes first; the drag and the release go to the focus actor even over the other
    // one: a press captures the pointer.
    press(30, 30);
    EXPECT_TRUE(stage->getFocus() == a && log.front().actor == a);
    moveTo(160, 30);
    release();
    EXPECT_EQ("a:in a:down a:drag a:up",
              offered({OrvFocusIn, OrvButtonDown, OrvButtonDragged, OrvButtonUp}));
    // A press on the other actor moves the focus to it.
    click(160, 30);
    EXPECT_EQ(b, stage->getFocus());
    EXPECT_EQ("a:out b:in", offered({OrvFocusIn, OrvFocusOut}));
    // Keys go to the focus actor, wherever the pointer is.
    moveTo(250, 180);
    type(XK_x);
    EXPECT_EQ('x', log.back().key);
    EXPECT_EQ("b:key b:keyup", offered({OrvKeyDown, OrvKeyUp}));
    // A press on an actor without a role, or on empty space, clears the focus.
    click(30, 130);
    EXPECT_TRUE(!stage->getFocus() && offered({OrvFocusOut}) == "b:out");
    click(30, 30);
    EXPECT_EQ(a, stage->getFocus());
    click(250, 180);
    EXPECT_EQ(nullptr, stage->getFocus());
    // A press on an actor that is not sensitive gives nothing and clears the focus.
    click(30, 30);
    a->setSensitive(0);
    log.clear();
    click(30, 30);
    EXPECT_TRUE(!stage->getFocus() && offered({OrvButtonDown}).empty());
    // The focus ring is two pixels wide: on the box's edge and one pixel outside it; inside is
    // untouched.
    stage->setFocus(b);
    EXPECT_NE(background, rgb(149, 40));
    EXPECT_NE(0xff0000ul, rgb(150, 40));
    EXPECT_NE(background, rgb(180, 19));
    expectPixels({148, 40, background, 170, 40, 0xff0000});
    stage->setFocus(nullptr);
    expectPixels({149, 40, background, 150, 40, 0xff0000, 180, 19, background});
}

TEST_F(RouteTest, TabOnReleaseWalksTheFocusInReadingOrder) {
    RecordingRole role(&log, "r");
    // Reading order: by y, then x: c (y 10), a (y 50, x 10), b (y 50, x 200).
    TestBox* a = box(10, 50, 30, 30);
    TestBox* b = box(200, 50, 30, 30);
    TestBox* c = box(100, 10, 30, 30);
    box(50, 5, 10, 10);  // no role
    for (TestBox* x : {a, b, c}) x->setRole(&role);
    moveTo(280, 190);
    // Past the last, it wraps to the first.
    for (TestBox* next : {c, a, b, c}) {
        type(XK_Tab);
        EXPECT_EQ(next, stage->getFocus());
    }
    // Backwards, the same order reversed, wrapping to the last. (Shift-Tab reaches the stage as a
    // Tab with shift only where the keymap has no ISO_Left_Tab, so the walk is asked for directly.)
    for (TestBox* previous : {b, a, c}) {
        stage->moveFocusBefore();
        EXPECT_EQ(previous, stage->getFocus());
    }
    stage->moveFocusAfter();
    EXPECT_EQ(a, stage->getFocus());
    // The press of Tab alone does nothing: the focus moves on the release.
    key(XK_Tab, true);
    EXPECT_EQ(a, stage->getFocus());
    key(XK_Tab, false);
    EXPECT_EQ(b, stage->getFocus());
    // With one eligible actor left, Tab keeps the focus where it is.
    a->setSensitive(0);
    c->setVisible(0);
    type(XK_Tab);
    EXPECT_EQ(b, stage->getFocus());
    // Focus handling off: setFocus does nothing.
    stage->setFocus(nullptr);
    stage->focusEnabled = 0;
    stage->setFocus(b);
    EXPECT_EQ(nullptr, stage->getFocus());
}

TEST_F(RouteTest, GrabbingActorTakesEveryEventAndWithoutFocusThePressedOneDoes) {
    RecordingRole ra(&log, "a"), rb(&log, "b");
    ra.answer = 0;  // declined, yet nothing else sees the event
    TestBox* a = actor(20, 20, &ra);
    actor(150, 20, &rb);
    stage->add(new RecordingAccelerator(&log, OrvButtonDown, 1, OrvAnyModifiers));
    stage->grabActor = a;
    log.clear();
    click(160, 30);
    type(XK_z);
    EXPECT_EQ("a:down a:key", offered({OrvButtonDown, OrvKeyDown}));
    EXPECT_EQ(nullptr, stage->getFocus());
    stage->grabActor = nullptr;
    // Without focus handling presses go to the pressed actor. No role: the press gives 0 and
    // still sets the pressed actor.
    ra.answer = 1;
    TestBox* plain = box(150, 100, 60, 40);
    stage->focusEnabled = 0;
    log.clear();
    press(160, 110);
    EXPECT_EQ(plain, stage->pressedActor);
    release();
    EXPECT_EQ("accelerator:down", offered({OrvButtonDown}));
    press(30, 30);
    EXPECT_EQ(a, stage->pressedActor);
    moveTo(170, 115);
    release();
    EXPECT_EQ("a:down a:drag a:up", offered({OrvButtonDown, OrvButtonDragged, OrvButtonUp}));
    EXPECT_EQ(nullptr, stage->getFocus());
}

TEST_F(RouteTest, AcceleratorMatchingAndTheStagesList) {
    OrvEvent e{};
    e.type = OrvKeyDown;
    e.key = 'a';
    OrvAccelerator none(OrvKeyDown, 'a', 0), any(OrvKeyDown, 'a', OrvAnyModifiers),
        ctrl(OrvKeyDown, 'a', 0x200);
    EXPECT_TRUE(none.match(e) && any.match(e) && !ctrl.match(e));
    e.modifiers = 0x200;
    EXPECT_TRUE(!none.match(e) && any.match(e) && ctrl.match(e));
    e.type = OrvKeyUp;
    EXPECT_FALSE(any.match(e));
    // The earliest added wins between two with the same key.
    RecordingAccelerator* first = new RecordingAccelerator(&log, OrvKeyDown, 'k', 0);
    RecordingAccelerator* second = new RecordingAccelerator(&log, OrvKeyDown, 'k', 0);
    stage->add(first);
    stage->add(second);
    e.type = OrvKeyDown;
    e.key = 'k';
    e.modifiers = 0;
    log.clear();
    EXPECT_TRUE(stage->dispatchToAccelerators(e) == 1 && log.size() == 1u);
    e.key = 'j';
    EXPECT_EQ(0, stage->dispatchToAccelerators(e));
    EXPECT_EQ(1ul, stage->remove(first) + stage->remove(first));
    delete first;
    delete second;  // a destructor unlinks the accelerator from the stage
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
    EXPECT_EQ("", offered());
    type(XK_k);
    EXPECT_EQ("accelerator:key", offered());
}

TEST_F(RouteTest, StageCallbacksShadowCallCallbackPrefersTheNamedOneAndQuitRunsTheExit) {
    int stageCalls = 0, ownCalls = 0, laterCalls = 0;
    OrvActor* last = nullptr;
    TestBox* a = box(20, 20, 60, 40);
    a->setCallback(new CountingCallback(&ownCalls));
    stage->callCallback(a);
    CountingCallback* named = new CountingCallback(&stageCalls, &last);
    stage->registerCallback("pressed", named);
    EXPECT_EQ(Orv2dPoint(1, 1), Orv2dPoint(ownCalls, named->count));
    a->setCallbackName(OrvGetKey("pressed", 1));
    stage->callCallback(a);
    EXPECT_TRUE(stageCalls == 1 && ownCalls == 1 && last == a);
    CountingCallback* later = new CountingCallback(&laterCalls);
    stage->registerCallback("pressed", later);
    stage->callCallback(a);
    EXPECT_EQ(std::vector<int>({1, 1}), std::vector<int>({laterCalls, stageCalls}));
    stage->removeCallback("pressed");
    EXPECT_EQ(named, stage->getCallback("pressed"));
    // A callback name with nothing behind it falls back on the actor's own.
    a->setCallbackName(OrvGetKey("elsewhere", 1));
    stage->callCallback(a);
    EXPECT_EQ(2, ownCalls);
    // Quit runs the exit callback.
    struct CountingExit : OrvExitCallback {
        int calls = 0;
        void exit(OrvStage*) override { calls++; }
    };
    CountingExit* e = new CountingExit;
    stage->onExit(e);
    stage->handleQuit();
    EXPECT_EQ(Orv2dPoint(1, 1), Orv2dPoint(e->count, e->calls));
    // From the window manager's protocol message, through the loop.
    XEvent ev{};
    ev.xclient.type = ClientMessage;
    ev.xclient.window = stage->window();
    ev.xclient.message_type = XInternAtom(dpy, "WM_PROTOCOLS", False);
    ev.xclient.format = 32;
    ev.xclient.data.l[0] = (long)XInternAtom(dpy, "WM_DELETE_WINDOW", False);
    XSendEvent(dpy, stage->window(), False, 0, &ev);
    settle();
    EXPECT_EQ(2, e->calls);
    stage->onExit(nullptr);
}
