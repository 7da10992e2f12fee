// A theater edited through its API: the focus walk and its events, the highlight shared by a
// director's theaters, the selection lists, clean, callbacks, the link tables, and cut and paste
// between theaters of two directors on one display.
#include "../theater/theater_support.h"

#include "orv/actor3d.h"
#include "orv/link.h"

#include "../scene/vertex_samples.h"

namespace {

// Logs "name type" for what a GLBox's role is given in 3D, with "?" when no scene came.
class Role3d : public OrvRole {
public:
    Log log;
    int input3d(OrvActor* a, const OrvEvent& e, OrvTheater*, OrvScene* s) override {
        log.push_back(((GLBox*)a)->name + " " + std::to_string(e.type) + (s ? "" : "?"));
        return 1;
    }
    const char* className() const override { return "Role3d"; }
};

// A link that counts the times its box is asked for, and its deletion.
class CountedLink : public OrvLinkImage {
public:
    int* gone;
    mutable int asked = 0;
    CountedLink(OrvDirector* d, OrvActor* f, OrvActor* t, int* g)
        : OrvLinkImage(d, f, t), gone(g) {}
    ~CountedLink() override { ++*gone; }
    Orv3dVolume bbox3d(unsigned long) const override {
        asked++;
        return Orv3dVolume(0, 0, 0, 0.1f, 0.1f, 0);
    }
};

struct GoneCallback : CountingCallback {
    int* gone;
    GoneCallback(int* counter, int* g) : CountingCallback(counter), gone(g) {}
    ~GoneCallback() override { ++*gone; }
};

struct ContentsHook : OrvTheaterHook {
    int calls = 0;
    void contents() override { calls++; }
};

}  // namespace

class TheaterEditTest : public TheaterTest {
protected:
    Role3d role;
    // Black boxes 0.2 wide with the role, named a, b, c... by their corners.
    std::vector<GLBox*> place(std::vector<std::pair<float, float>> corners) {
        std::vector<GLBox*> made;
        for (auto& c : corners) {
            std::string n(1, (char)('a' + made.size()));
            made.push_back(box(Orv3dVolume(c.first, c.second, 0, 0.2f, 0.2f, 0), 0, n.c_str()));
            made.back()->setRole(&role);
        }
        return made;
    }
    // The names of the selections, in order.
    std::string selected() {
        unsigned n = 0;
        OrvActor** list = theater->selections(n);
        std::string s;
        for (unsigned i = 0; i < n; i++) s += (i ? " " : "") + ((GLBox*)list[i])->name;
        delete[] list;
        return s;
    }
    // Pixels that are not black around a window point.
    int lit(int x, int y) {
        int n = 0;
        for (int dy = -2; dy <= 2; dy++)
            for (int dx = -2; dx <= 2; dx++) n += pixel(scene, x + dx, y + dy) != 0;
        return n;
    }
};

// Tab order is by world y, then x; the walk wraps, skips what is not sensitive, and sends
// focus out and in through the scene that shows the actor; the focus box is drawn and erased.
TEST_F(TheaterEditTest, FocusWalksInReadingOrderAndTellsTheRoles) {
    if (!director) return;
    std::vector<GLBox*> g =
        place({{0.2f, 0.3f}, {-0.5f, -0.5f}, {0.5f, -0.5f}, {-0.5f, 0.3f}, {0, 0}});
    g[4]->setSensitive(0);
    const struct {
        int step;  // 1 after, -1 before, 0 none
        const char* focus;
    } walk[] = {{1, "b"}, {1, "c"}, {1, "d"}, {1, "a"}, {1, "b"}, {-1, "a"}, {-1, "d"}};
    for (const auto& w : walk) {
        w.step > 0 ? theater->moveFocusAfter() : theater->moveFocusBefore();
        EXPECT_EQ(w.focus, ((GLBox*)theater->getFocus())->name);
    }
    EXPECT_EQ((Log{"b 11", "b 12", "c 11", "c 12", "d 11", "d 12", "a 11", "a 12", "b 11", "b 12",
                   "a 11", "a 12", "d 11"}),
              role.log);
    GLBox outside(director, Orv3dVolume(), 0);
    for (OrvActor* refused : {(OrvActor*)g[4], (OrvActor*)&outside}) theater->setFocus(refused);
    EXPECT_EQ(g[3], theater->getFocus());
    settle();
    Orv3dPoint edge = toWindow(scene, Orv3dPoint(-0.5f, 0.4f, 0));
    EXPECT_GT(lit((int)edge.x, (int)edge.y), 0);
    theater->setFocus(nullptr);
    settle();
    EXPECT_EQ(0, lit((int)edge.x, (int)edge.y));
    EXPECT_EQ("d 12", role.log.back());
    theater->setFocus(g[0]);
    theater->remove(g[0]);
    EXPECT_EQ(nullptr, theater->getFocus());
    delete g[0];
}

// One highlighted actor for all the theaters of a director: a stage's event clears it, and a
// theater that goes, or an actor that leaves, leaves no record behind.
TEST_F(TheaterEditTest, HighlightMovesBetweenTheatersAndStageEventsClearIt) {
    if (!director) return;
    OrvTheater* other = new OrvTheater(director);
    other->connect(new OrvScene(director, Orv2dRect(330, 30, 150, 200), 1, black), stage, 0);
    std::vector<GLBox*> g = place({{0, 0}, {0.5f, 0.5f}});
    GLBox* b = new GLBox(director, Orv3dVolume(0, 0, 0, 1, 1, 0), 0xff, "b");
    GLBox* dull = new GLBox(director, Orv3dVolume(0, 0, 0, 1, 1, 0), 0xff, "dull");
    other->append(b), other->append(dull);
    for (GLBox* x : {g[0], b, dull}) x->allowHighlight(1);
    dull->setSensitive(0);
    OrvEvent motion;
    memset((void*)&motion, 0, sizeof motion);
    motion.type = OrvPointerMoved;
    Orv2dPoint p(5, 5);
    // Leaving the theater forgets the highlight without turning it off, as a stage's clean does.
    const struct {
        std::function<void()> act;
        OrvActor *here, *there;
        bool aLit, bLit;
    } rows[] = {
        {[&] { theater->setHighlighted(p, g[0]); }, g[0], nullptr, true, false},
        {[&] { other->setHighlighted(p, b); }, nullptr, b, false, true},
        {[&] { other->setHighlighted(p, dull); }, nullptr, b, false, true},
        {[&] { stage->handleInput(motion); }, nullptr, nullptr, false, false},
        {[&] { theater->setHighlighted(p, g[0]); }, g[0], nullptr, true, false},
        {[&] { theater->remove(g[1]), theater->remove(g[0]); }, nullptr, nullptr, true, false},
    };
    for (const auto& r : rows) {
        r.act();
        EXPECT_EQ(r.here, theater->getHighlighted());
        EXPECT_EQ(r.there, other->getHighlighted());
        EXPECT_EQ(r.aLit, g[0]->isHighlighted() != 0);
        EXPECT_EQ(r.bLit, b->isHighlighted() != 0);
    }
    other->setHighlighted(p, b);
    delete other;
    stage->handleInput(motion);  // the record names no theater that went
    delete g[0], delete g[1];
}

// The lists follow setSelected in order, refuse what cannot be selected, survive a change of
// layer, and lose what leaves; clean clears every field that names the actor.
TEST_F(TheaterEditTest, SelectionListsAndClean) {
    if (!director) return;
    std::vector<GLBox*> g = place({{0, 0}, {0.5f, 0.5f}, {-0.5f, 0}, {0, -0.5f}});
    GLBox *a = g[0], *b = g[1], *c = g[2], *d = g[3];
    d->setSelectable(0);
    Log visited;
    const struct {
        std::function<void()> act;
        const char* want;
    } steps[] = {
        {[&] { a->setSelected(1), c->setSelected(1), b->setSelected(1), d->setSelected(1); },
         "a c b"},
        {[&] { c->setSelected(0); }, "a b"},
        {[&] { theater->deSelect(); }, ""},
        {[&] { c->setSelected(1), a->setSelected(1), a->setLayer(2); }, "c a"},
        {[&] {
             theater->applyToSelections(
                 [](OrvActor* x, void* l) { ((Log*)l)->push_back(((GLBox*)x)->name); }, &visited);
         },
         "c a"},
        {[&] { theater->remove(c); }, "a"},
    };
    for (const auto& s : steps) {
        s.act();
        EXPECT_EQ(s.want, selected());
        unsigned n = theater->selectionList.length();
        EXPECT_EQ(n, theater->selections_.length());
        for (unsigned i = 0; i < n; i++) EXPECT_TRUE(theater->selection(i)->isSelected());
    }
    EXPECT_EQ((Log{"c", "a"}), visited);
    EXPECT_EQ(theater->layer(2, 0), theater->getLayer(a));
    EXPECT_EQ(0, theater->layer(2, 0)->position(a));
    EXPECT_EQ(1ul, theater->makeLayer(b, 1));
    EXPECT_EQ(1u, b->layer);
    b->setSelected(1);
    Orv2dRegion both;
    for (GLBox* x : {a, b}) x->bboxToScene(both, &scene->worldToScene, 0);
    EXPECT_EQ(both.bbox, theater->bboxSelections(scene));
    d->allowHighlight(1);
    theater->setFocus(d), theater->setHighlighted(Orv2dPoint(), d);
    theater->pressed = theater->lastMoved = theater->grabbed = d;
    EXPECT_EQ(1ul, theater->clean(d, 0));
    EXPECT_EQ(0ul, theater->clean(d, 0));
    for (OrvActor* f : {theater->pressed, theater->lastMoved, theater->grabbed, theater->focus,
                        theater->getHighlighted()})
        EXPECT_EQ(nullptr, f);
    EXPECT_EQ(1ul, theater->clean(a, 1));
    EXPECT_EQ("b", selected());
    delete c, delete d;
}

// Named callbacks shadow, are counted, and go with the theater; an actor's own is the fallback.
TEST_F(TheaterEditTest, CallbacksByName) {
    if (!director) return;
    int calls[3] = {0, 0, 0}, gone = 0;
    std::vector<GLBox*> g = place({{0, 0}, {0.5f, 0.5f}});
    GoneCallback *first = new GoneCallback(&calls[0], &gone),
                 *second = new GoneCallback(&calls[1], &gone);
    g[0]->setCallbackName(OrvGetKey("go", 1));
    g[1]->setCallback(new GoneCallback(&calls[2], &gone));
    theater->registerCallback("go", first);
    theater->callCallback(g[0], scene);
    theater->registerCallback("go", second);
    theater->callCallback(g[0], scene);
    theater->callCallback(g[1], scene);
    EXPECT_EQ(second, theater->getCallback("go"));
    EXPECT_EQ(nullptr, theater->getCallback("never registered"));
    theater->removeCallback("go");
    EXPECT_EQ(1, gone);
    EXPECT_EQ(first, theater->getCallback("go"));
    EXPECT_EQ((std::vector<int>{1, 1, 1}), std::vector<int>(calls, calls + 3));
    delete theater;
    theater = nullptr;
    EXPECT_EQ(3, gone);  // the theater's and the actor's own
}

// Links between 3D actors: the tables under their keys, invalidation through links of links,
// and every way of leaving (clean with deletion, deletion, removal of an end, empty) leaves
// no link behind that names an end that went.
TEST_F(TheaterEditTest, LinkTablesFollowTheirEnds) {
    if (!director) return;
    int gone = 0;
    std::vector<GLBox*> g = place({{0, 0}, {0.5f, 0.5f}, {-0.5f, 0}});
    GLBox *a = g[0], *b = g[1], *c = g[2];
    for (GLBox* x : g) x->setLayer(1);
    auto link = [&](OrvActor* f, OrvActor* t) {
        CountedLink* l = new CountedLink(director, f, t, &gone);
        theater->append(l, 0);
        return l;
    };
    CountedLink *ab = link(a, b), *bb = link(b, b), *onLink = link(ab, c);
    EXPECT_EQ(
        (std::vector<unsigned>{1, 0, 1, 2, 0, 1, 1, 0}),
        (std::vector<unsigned>{theater->fromLinksCardinal(a), theater->toLinksCardinal(a),
                               theater->fromLinksCardinal(b), theater->toLinksCardinal(b),
                               theater->fromLinksCardinal(c), theater->toLinksCardinal(c),
                               theater->fromLinksCardinal(ab), theater->toLinksCardinal(ab)}));
    EXPECT_EQ(bb, theater->linkTo(b, 0));
    EXPECT_EQ(ab, theater->linkTo(b, 1));
    EXPECT_TRUE(a->hasUserProperty(OrvGetKey("T_from", 0)));
    ab->asked = onLink->asked = 0;
    theater->beginDrawing();
    theater->invalidate(a, 1);
    theater->flushDrawing(1);
    EXPECT_GT(ab->asked, 0);
    EXPECT_GT(onLink->asked, 0);
    EXPECT_EQ(1ul, theater->clean(b, 1));  // b, its self link, ab and the link on ab
    EXPECT_EQ(3, gone);
    EXPECT_EQ(2u, theater->cardinal());
    EXPECT_EQ(0u, theater->fromLinksCardinal(a) + theater->toLinksCardinal(c));
    delete link(a, c);  // deleted while in the theater
    EXPECT_EQ(0u, theater->fromLinksCardinal(a));
    CountedLink* ca = link(c, a);
    theater->remove(c);
    EXPECT_EQ(nullptr, ca->getTheater());
    EXPECT_EQ(0u, theater->toLinksCardinal(a));
    delete ca, delete c;
    link(a, a), link(a, a);
    theater->empty(1);
    EXPECT_EQ(7, gone);
    EXPECT_EQ(0u, theater->cardinal());
}

// Cut in one theater, paste in a theater of another director on the same display: the same
// actors, centred on the point, in layer 0 and selected; the wrong dimension is refused.
TEST_F(TheaterEditTest, CutHerePasteInAnotherDirectorsTheater) {
    if (!director) return;
    SampleArrays arrays;
    Orv3dActorFaceSet* faces = new Orv3dActorFaceSet(director, compactSample(arrays));
    Orv3dActor* plain = new Orv3dActor(director);
    faces->translate(0.25f, -0.5f, 0, 0), faces->setName("faces");
    plain->rotateZ(90, 0), plain->setRole(OrvGetRole("Button"));
    ContentsHook* hook = new ContentsHook;
    theater->install(hook);
    auto text = [](OrvTheater* t, bool onlySelected) {
        unsigned n = 0;
        OrvActor** list = onlySelected ? t->selections(n) : t->objects(n);
        std::ostringstream out;
        OrvOStream(out).write(n, list, 0);
        delete[] list;
        return out.str().substr(out.str().find('\n'));
    };
    for (Orv3dActor* x : {(Orv3dActor*)faces, plain}) theater->append(x), x->setSelected(1);
    Orv3dVolume box = faces->bbox3d(1);
    box.extendBy(plain->bbox3d(1));
    std::string copied = text(theater, true);
    hook->calls = 0;
    theater->cut();
    settle();
    EXPECT_EQ(0u, theater->cardinal());
    EXPECT_EQ(1, hook->calls);
    OrvDirector* second = new OrvDirector("second", nullptr, 0, nullptr);
    OrvTheater* there = new OrvTheater(second);
    there->paste(box.center(), 1);
    EXPECT_EQ(copied, text(there, true));
    EXPECT_EQ(copied, text(there, false));
    // Again elsewhere: the box of what is pasted (a plain actor's box stays at the origin)
    // is centred on the point, and the pasted actors alone are selected.
    there->paste(Orv3dPoint(1, 2, 3), 1);
    unsigned n = 0;
    OrvActor** all = there->objects(n);
    ASSERT_EQ(4u, n);
    EXPECT_EQ((std::vector<unsigned long>{0, 0, 1, 1}),
              (std::vector<unsigned long>{all[0]->isSelected(), all[1]->isSelected(),
                                          all[2]->isSelected(), all[3]->isSelected()}));
    Orv3dVolume first = all[0]->bbox3d(1), again = all[2]->bbox3d(1);
    delete[] all;
    Orv3dPoint c = box.center();
    EXPECT_NEAR(first.x + 1 - c.x, again.x, 1e-5);
    EXPECT_NEAR(first.y + 2 - c.y, again.y, 1e-5);
    EXPECT_NEAR(first.z + 3 - c.z, again.z, 1e-5);
    // The stage's 2D text and the theater's 3D text are refused by each other's reader.
    TestBox* flat = new TestBox(director, director->defaultMakeUp, Orv2dRect(1, 1, 5, 5));
    stage->append(flat);
    flat->setSelected(1);
    stage->copy();
    settle();
    EXPECT_EQ("## OrvIStream : Bad file definition. (3d 2d)\n  ## 3d file expected ...\n",
              OrvTestOutput([&] { theater->paste(Orv3dPoint(), 1); }));
    EXPECT_EQ(0u, theater->cardinal());
    there->copy();
    XSync((Display*)second->display, False);
    EXPECT_EQ("## OrvIStream : Bad file definition. (2d 3d)\n  ## 2d file expected ...\n",
              OrvTestOutput([&] { stage->paste(Orv2dPoint(), 1); }));
    delete there;
    delete second;
}
