// The order of offers of a stage's input: callbacks, producer, accelerators, grabbing actor, focus,
// role under the pointer; enter and leave, highlight and focus, all driven by XTest through the
// library's loop; the stage's callbacks and exit.
#include "orv_fixtures.h"

static void RecordInput(OrvView*, const OrvEvent& e, void* data) {
    ((OfferLog*)data)->push_back(Offer{"callback", e.type, nullptr, e.x, e.y, e.key, e.modifiers});
}

TEST_F(RouteTest, CallbacksFirstThenRoleUnderPointerAndTheFirstTrueAnswerEnds) {
    RecordingRole role(&log, "role");
    TestBox* a = box(20, 20, 60, 40);
    a->setRole(&role);
    stage->onInput(RecordInput, &log);
    stage->add(new RecordingAccelerator(&log, OrvButtonDown, 1, OrvAnyModifiers));
    log.clear();
    press(40, 30);
    // The callback comes before the role; the role's true answer keeps the accelerator out.
    std::vector<std::string> downs;
    const Offer* offered = nullptr;
    for (const Offer& o : log)
        if (o.type == OrvButtonDown) {
            downs.push_back(o.who);
            offered = &o;
        }
    EXPECT_EQ(downs, (std::vector<std::string>{"callback", "role"}));
    ASSERT_NE(offered, nullptr);
    EXPECT_EQ(a, offered->actor);
    EXPECT_EQ(std::vector<long>({40, 30, 1}),
              std::vector<long>({offered->x, offered->y, offered->key}));
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
    box(20, 20, 60, 40)->setRole(&role);
    stage->add(new RecordingAccelerator(&log, OrvKeyDown, 'q', 0));
    stage->add(new RecordingAccelerator(&log, OrvButtonDown, 1, OrvAnyModifiers));
    RecordingProducer* p = new RecordingProducer(stage, &log);
    stage->setProducer(p);
    EXPECT_EQ(1, p->inits);
    EXPECT_EQ(p, stage->getProducer());
    for (int answer = 1; answer >= 0; answer--) {
        p->answer = answer;
        log.clear();
        click(40, 30);
        type(XK_q);
        EXPECT_EQ(0, count(OrvButtonDown, "role"));
        EXPECT_EQ(1, count(OrvButtonDown, "producer"));
        EXPECT_EQ(1, count(OrvKeyDown, "producer"));
        EXPECT_EQ(1 - answer, count(OrvKeyDown, "accelerator"));
        EXPECT_EQ(1 - answer, count(OrvButtonDown, "accelerator"));
    }
    stage->setProducer(nullptr);
    EXPECT_EQ(1, p->aborts);
    log.clear();
    click(40, 30);
    EXPECT_EQ(1, count(OrvButtonDown, "role"));
}

TEST_F(RouteTest, EnterAndLeaveActorComeFromPointerMotion) {
    RecordingRole ra(&log, "a"), rb(&log, "b");
    TestBox* a = box(20, 20, 60, 40);
    TestBox* b = box(150, 20, 60, 40);
    a->setRole(&ra);
    rb.answer = 0;
    b->setRole(&rb);
    auto offers = [&] {
        std::vector<std::pair<OrvEventType, std::string>> v;
        for (const Offer& o : log) v.push_back({o.type, o.who});
        log.clear();
        return v;
    };
    typedef std::vector<std::pair<OrvEventType, std::string>> Offers;
    moveTo(5, 150);
    log.clear();
    moveTo(30, 30);
    EXPECT_EQ(offers(), (Offers{{OrvEnterActor, "a"}}));
    EXPECT_EQ(a, stage->pointerActor);
    // Motion inside the same actor is not offered unless the role asks for it.
    moveTo(35, 32);
    EXPECT_EQ(offers(), Offers());
    ra.pointerMoves = 1;
    moveTo(38, 33);
    EXPECT_EQ(offers(), (Offers{{OrvPointerMoved, "a"}}));
    moveTo(160, 30);
    EXPECT_EQ(offers(), (Offers{{OrvLeaveActor, "a"}, {OrvEnterActor, "b"}}));
    EXPECT_EQ(b, stage->pointerActor);
    moveTo(250, 150);
    EXPECT_EQ(offers(), (Offers{{OrvLeaveActor, "b"}}));
    EXPECT_EQ(nullptr, stage->pointerActor);
    // An actor that is not sensitive is not entered.
    a->setSensitive(0);
    moveTo(30, 30);
    EXPECT_EQ(offers(), Offers());
    EXPECT_EQ(nullptr, stage->pointerActor);
}

TEST_F(RouteTest, HighlightFollowsThePointerAndLeavesWithTheWindow) {
    RecordingRole ra(&log, "a");
    TestBox* a = box(20, 20, 60, 40);
    TestBox* plain = box(150, 20, 60, 40);  // no role: not hit by the role test
    a->setRole(&ra);
    a->allowHighlight(1);
    plain->allowHighlight(1);
    moveTo(5, 150);
    moveTo(30, 30);
    EXPECT_TRUE(a->isHighlighted());
    EXPECT_EQ(a, stage->getHighlighted());
    moveTo(160, 30);
    EXPECT_FALSE(a->isHighlighted() || plain->isHighlighted());
    EXPECT_EQ(nullptr, stage->getHighlighted());
    // Under a producer, highlight counts all actors, with or without a role.
    stage->setProducer(new RecordingProducer(stage, &log));
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
    TestBox* a = box(20, 20, 60, 40);
    TestBox* b = box(150, 20, 60, 40);
    box(20, 120, 60, 40);  // no role
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
    EXPECT_EQ(0, count(OrvButtonDragged, "b") + count(OrvButtonUp, "b"));
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
    // Focus handling off: setFocus does nothing.
    stage->setFocus(nullptr);
    stage->focusEnabled = 0;
    stage->setFocus(b);
    EXPECT_EQ(nullptr, stage->getFocus());
}

TEST_F(RouteTest, FocusChangeRepaintsTheRing) {
    RecordingRole role(&log, "r");
    TestBox* a = box(40, 40, 60, 40, blue);
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
    EXPECT_EQ(0x0000fful, rgb(60, 60));  // inside is untouched
}

TEST_F(RouteTest, GrabbingActorTakesEveryEvent) {
    RecordingRole ra(&log, "a"), rb(&log, "b");
    TestBox* a = box(20, 20, 60, 40);
    a->setRole(&ra);
    ra.answer = 0;  // declined, yet nothing else sees the event
    box(150, 20, 60, 40)->setRole(&rb);
    stage->add(new RecordingAccelerator(&log, OrvButtonDown, 1, OrvAnyModifiers));
    stage->grabActor = a;
    log.clear();
    click(160, 30);
    type(XK_z);
    EXPECT_EQ(1, count(OrvButtonDown, "a"));
    EXPECT_EQ(1, count(OrvKeyDown, "a"));
    EXPECT_EQ(0, count(OrvButtonDown, "b") + count(OrvButtonDown, "accelerator"));
    EXPECT_EQ(nullptr, stage->getFocus());
    stage->grabActor = nullptr;
}

TEST_F(RouteTest, WithoutFocusHandlingPressesGoToThePressedActor) {
    RecordingRole ra(&log, "a");
    TestBox* a = box(20, 20, 60, 40);
    TestBox* plain = box(150, 20, 60, 40);
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
    box(20, 20, 60, 40)->setRole(&ra);
    director->setDoubleClickPeriod(400);
    moveTo(30, 30);
    log.clear();
    for (int i = 0; i < 2; i++) {
        OrvTestButton(dpy, 1, true, 10);
        OrvTestButton(dpy, 1, false, 10);
    }
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
    EXPECT_TRUE(none.match(e) && any.match(e));
    EXPECT_FALSE(ctrl.match(e));
    e.modifiers = 0x200;
    EXPECT_FALSE(none.match(e));
    EXPECT_TRUE(any.match(e) && ctrl.match(e));
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
    EXPECT_EQ(0, count(OrvKeyDown, "accelerator"));
    type(XK_k);
    EXPECT_EQ(1, count(OrvKeyDown, "accelerator"));
}

TEST_F(RouteTest, StageCallbacksShadowAndCallCallbackPrefersTheNamedOne) {
    int stageCalls = 0, ownCalls = 0, laterCalls = 0;
    OrvActor* last = nullptr;
    TestBox* a = box(20, 20, 60, 40);
    a->setCallback(new CountingCallback(&ownCalls));
    stage->callCallback(a);
    EXPECT_EQ(1, ownCalls);
    CountingCallback* named = new CountingCallback(&stageCalls, &last);
    stage->registerCallback("pressed", named);
    EXPECT_EQ(1, named->count);
    EXPECT_EQ(named, stage->getCallback("pressed"));
    a->setCallbackName(OrvGetKey("pressed", 1));
    stage->callCallback(a);
    EXPECT_EQ(std::vector<int>({1, 1}), std::vector<int>({stageCalls, ownCalls}));
    EXPECT_EQ(a, last);
    CountingCallback* later = new CountingCallback(&laterCalls);
    stage->registerCallback("pressed", later);
    EXPECT_EQ(later, stage->getCallback("pressed"));
    stage->callCallback(a);
    EXPECT_EQ(std::vector<int>({1, 1}), std::vector<int>({laterCalls, stageCalls}));
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
