// Input in a theater by XTest on a scene's window: selection and focus by clicks, Tab,
// highlight with enter and leave, grabs, the press's nest, balloons, the two orders of
// roleProducerAcc, and the producers of the scenes.
#include "orv/balloon.h"

#include "input_support.h"

namespace {

class LogAccelerator : public OrvAccelerator {
public:
    Log* log;
    LogAccelerator(Log* l, unsigned short k) : OrvAccelerator(OrvKeyDown, k, 0), log(l) {}
    int input3d(OrvTheater*, OrvScene*, const OrvEvent&) override {
        log->push_back("accelerator:key");
        return 1;
    }
};

class LogProducer : public OrvProducer {
public:
    Log* log;
    int answer = 0;
    LogProducer(OrvScene* s, Log* l) : OrvProducer(s), log(l) {}
    int input3d(const OrvEvent& e) override {
        if (e.type == OrvKeyDown) log->push_back("producer:key");
        return answer;
    }
    const char* className() const override { return "Log"; }
};

class ProducerHook : public OrvTheaterHook {
public:
    Log* log;
    explicit ProducerHook(Log* l) : log(l) {}
    void producer(OrvProducer* o, OrvProducer* n) override {
        log->push_back(std::string(o ? o->className() : "0") + ">" + (n ? n->className() : "0"));
    }
};

}  // namespace

// Three 0.4 squares on the x axis, at A, B and C.
class TheaterInputTest : public InputTest {
protected:
    const float A = -0.6f, B = 0, C = 0.6f;
    Square* on(float x, const char* name, OrvRole* role = nullptr) {
        return square(Orv3dVolume(x - 0.2f, -0.2f, 0, 0.4f, 0.4f, 0), name, role);
    }
    Orv2dPoint pt(float x, float y = 0) { return at(Orv3dPoint(x, y, 0)); }
};

// The select producer: a click selects, shift adds, a click on a selected actor or on
// empty space deselects.
TEST_F(TheaterInputTest, ClicksSelect) {
    Square *a = on(A, "A"), *b = on(B, "B");
    theater->setProducer(new OrvSelectProducer(scene));
    const struct {
        float x, y;
        bool shift;
        std::set<OrvActor*> after;
    } steps[] = {{A, 0, 0, {a}}, {B, 0, 0, {b}}, {A, 0, 1, {a, b}},
                 {B, 0, 0, {}},  {A, 0, 0, {a}}, {A, 0.8f, 0, {}}};
    for (const auto& s : steps) {
        if (s.shift) OrvTestKey(dpy, XK_Shift_L, true);
        click(pt(s.x, s.y));
        if (s.shift) OrvTestKey(dpy, XK_Shift_L, false);
        EXPECT_EQ(s.after, selected()) << s.x << "," << s.y;
    }
}

// A click moves the focus only while an actor has it; Tab and Shift-Tab walk it; motion
// highlights what is under the pointer.
TEST_F(TheaterInputTest, FocusAndHighlightFollowThePointer) {
    LogRole* r = logRole();
    Square *a = on(A, "A", r), *b = on(B, "B", r), *c = on(C, "C", r);
    const struct {
        Square* set;
        float x, y;
        Square* focus;
    } clicks[] = {{nullptr, B, 0, nullptr}, {a, B, 0, b}, {nullptr, B, 0.8f, nullptr}};
    for (const auto& k : clicks) {
        if (k.set) theater->setFocus(k.set);
        click(pt(k.x, k.y));
        EXPECT_EQ(k.focus, theater->getFocus()) << k.x << "," << k.y;
    }
    // Shift-Tab stays Tab with shift on this server's keymap (no ISO_Left_Tab).
    KeySym tabs[2] = {XK_Tab, XK_Tab};
    XMappingEvent remap{
        MappingNotify, 0, False, dpy, 0, MappingKeyboard, XKeysymToKeycode(dpy, XK_Tab), 1};
    XChangeKeyboardMapping(dpy, remap.first_keycode, 2, tabs, 1);
    XRefreshKeyboardMapping(&remap);
    theater->setFocus(a);
    OrvTestKey(dpy, XK_Tab, true);  // the focus moves on the release
    settle();
    EXPECT_EQ(a, theater->getFocus());
    OrvTestKey(dpy, XK_Tab, false);
    settle();  // the release walks the focus before it is set again
    EXPECT_EQ(b, theater->getFocus());
    theater->setFocus(a);
    for (auto [shift, next] : {std::pair(0ul, b), {0ul, c}, {0ul, a}, {XK_Shift_L, c}}) {
        type(XK_Tab, shift);
        EXPECT_EQ(next, theater->getFocus()) << next->name;
    }
    for (auto [x, s] : {std::pair(A, a), {C, c}}) {
        moveTo(pt(x).x, pt(x).y);
        EXPECT_EQ(s, theater->getHighlighted());
    }
}

// Motion sends leave to the actor left and enter to the one entered.
TEST_F(TheaterInputTest, MotionEntersAndLeaves) {
    LogRole* r = logRole();
    r->answer = 0;
    on(A, "A", r);
    on(B, "B", r);
    for (auto [x, y, what] : {std::tuple(A, 0.f, "A:enter"),
                              {A + 0.1f, 0.1f, ""},
                              {B, 0.f, "A:leave B:enter"},
                              {B, 0.8f, "B:leave"}}) {
        moveTo(pt(x, y).x, pt(x, y).y);
        EXPECT_EQ(what, taken());
    }
}

// A role that grabs gets the drags, keys and release wherever the pointer goes.
TEST_F(TheaterInputTest, GrabTakesThePointerUntilRelease) {
    LogRole* grabbing = logRole();
    grabbing->grabs = true;
    on(A, "A", grabbing);
    on(B, "B", logRole());
    drag(
        pt(A), pt(B), [&] { taken(); }, [&] { type('x'); });
    EXPECT_EQ("A:drag A:key A:keyup A:up", taken());
    EXPECT_EQ(nullptr, theater->grabbed);
    type('x');
    EXPECT_EQ("B:key B:keyup", taken());
}

// The button and the toggle: inverted on the press, restored when dragged out and again
// when back, validated on the release; the toggle keeps its look.
TEST_F(TheaterInputTest, ButtonAndToggleInAScene) {
    for (auto [name, kept] : {std::pair("Button", 0ul), {"Toggle", 1ul}}) {
        Square* a = on(A, "A", OrvGetRole(name));
        int calls = 0;
        a->setCallback(new CountingCallback(&calls));
        std::vector<unsigned long> inverted;
        auto note = [&] { inverted.push_back(a->isInverted()); };
        drag(pt(A), pt(A), [&] {
            note();
            moveTo(pt(C).x, pt(C).y);
            note();
            moveTo(pt(A).x, pt(A).y);
            note();
        });
        note();
        EXPECT_EQ((std::vector<unsigned long>{1, 0, 1, kept}), inverted) << name;
        EXPECT_EQ(1, calls) << name;
        theater->remove(a, 1);
        delete a;
    }
}

// A press that takes the focus path runs inside beginDrawing: its changes show when
// dispatchToActors closes the nest, unless the role cleared lockedFlush to close it itself.
TEST_F(TheaterInputTest, PressInsideBeginDrawingClosedByLockedFlush) {
    LogRole* r = logRole();
    Square* a = on(A, "A", r);
    for (unsigned long keep : {0ul, 1ul}) {
        unsigned depth = 0;
        unsigned long during = 1;
        r->onPress = [&](OrvTheater* t) {
            depth = t->beginDrawingDepth;
            a->translate(0.6f, 0, 0, 1);
            during = pixel(scene, at(a->bbox3d(1).center()).x, at(a->bbox3d(1).center()).y);
            if (keep) t->lockedFlush = 0;
        };
        theater->grabbed = a;
        click(at(a->bbox3d(1).center()));
        theater->grabbed = nullptr;
        Orv2dPoint now = at(a->bbox3d(1).center());
        EXPECT_EQ(std::make_tuple(1u, 0ul, keep, keep ? 0ul : 0xff0000ul),
                  std::make_tuple(depth, during, (unsigned long)theater->beginDrawingDepth,
                                  pixel(scene, now.x, now.y)))
            << keep;
        if (keep) theater->flushDrawing(1);
        EXPECT_EQ(0xff0000ul, pixel(scene, now.x, now.y));
    }
}

// The balloon of the actor under the pointer comes after a rest, at the pointer's screen
// position (20 pixels below), and goes when the pointer leaves the scene.
TEST_F(TheaterInputTest, BalloonsAfterRestGoOnLeave) {
    on(A, "A")->setBalloonData("a square", nullptr, 2, 0);
    director->setBalloonDelays(150, 5000);
    moveTo(pt(A).x, pt(A).y);
    auto shown = [&] { return director->balloonStage && director->balloonStage->visible; };
    EXPECT_FALSE(shown());
    EXPECT_TRUE(OrvTestRunUntil(shown, 2000));
    Orv2dRect window = scene->interior->globalBBox(),
              balloon = director->balloonStage->globalBBox();
    EXPECT_EQ(Orv2dPoint(window.x + pt(A).x, window.y + pt(A).y + 20),
              Orv2dPoint(balloon.x, balloon.y));
    OrvTestMoveIn(dpy, stage->window(), 5, 5);
    EXPECT_TRUE(OrvTestRunUntil([&] { return !shown(); }, 2000));
}

// roleProducerAcc off: a producer first (the actors if it declines), else the accelerators
// (the actors if none takes it); on: the accelerators first and the actors after them
// whatever they said, and a producer only when no accelerator took the event.
TEST_F(TheaterInputTest, RoleProducerAccGivesTheTwoOrders) {
    on(A, "A", logRole());
    theater->add(new LogAccelerator(&log, 'a'));
    LogProducer* producer = new LogProducer(scene, &log);
    moveTo(pt(A).x, pt(A).y);
    const struct {
        unsigned long on;
        int producer;  // -1 none, else its answer
        char key;
        const char* log;
    } rows[] = {{0, 0, 'a', "producer:key A:key"},    {0, 1, 'a', "producer:key"},
                {0, -1, 'a', "accelerator:key"},      {0, -1, 'b', "A:key"},
                {1, 1, 'a', "accelerator:key A:key"}, {1, 1, 'b', "producer:key"},
                {1, 0, 'b', "producer:key A:key"},    {1, -1, 'b', "A:key"}};
    for (const auto& r : rows) {
        scene->roleProducerAcc = r.on;
        producer->answer = r.producer;
        theater->setProducer(r.producer < 0 ? nullptr : producer);
        log.clear();
        type(r.key);
        log.erase(std::remove(log.begin(), log.end(), "A:keyup"), log.end());
        EXPECT_EQ(r.log, taken()) << r.on << " " << r.producer << " " << r.key;
    }
}

// One current producer a scene: setProducer tells the hooks, pushProducer does not, remove
// takes only the current one; a stage producer or a scene of no theater is refused.
TEST_F(TheaterInputTest, ProducersOfTheScenes) {
    theater->install(new ProducerHook(&log));
    OrvProducer *select = new OrvSelectProducer(scene), *move = new OrvMoveProducer(scene);
    theater->setProducer(select);
    theater->pushProducer(move);
    EXPECT_EQ(select, move->previous);
    theater->remove(select);
    EXPECT_EQ(std::make_tuple(move, &scene->sceneToInvariant),
              std::make_tuple(theater->getProducer(scene), move->toWorld(1)));
    theater->remove(move);
    EXPECT_EQ(std::make_tuple((OrvProducer*)nullptr, std::string("0>Select Move>0")),
              std::make_tuple(theater->getProducer(scene), taken()));
    OrvScene* loose = new OrvScene(director, Orv2dRect(0, 0, 50, 50), 1, black);
    for (auto [p, message] :
         {std::pair<OrvProducer*, const char*>(new OrvMoveProducer(stage),
                                               "OrvTheater::setProducer : Must be a scene "
                                               "producer.\n"),
          {new OrvMoveProducer(loose),
           "OrvProducer::theater : Producer scene isn't connected to theater.\n"}}) {
        EXPECT_EQ(message, OrvTestOutput([&, p = p] { theater->setProducer(p); }));
        EXPECT_EQ(nullptr, theater->getProducer(p->scene));
    }
    EXPECT_EQ("", taken());
    delete loose;
}
