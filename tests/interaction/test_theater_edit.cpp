// A theater edited through its API: the focus walk, the highlight shared by a director's
// theaters, selections and clean, callbacks, link tables, and cut and paste across directors.
#include "../theater/theater_support.h"

#include "orv/actor3d.h"
#include "orv/link.h"

#include "../scene/vertex_samples.h"

namespace {

// Logs "name type" for each event a GLBox's role gets in 3D, "?" when no scene came with it.
struct Role3d : OrvRole {
    Log log;
    int input3d(OrvActor* a, const OrvEvent& e, OrvTheater*, OrvScene* s) override {
        log.push_back(((GLBox*)a)->name + " " + std::to_string(e.type) + (s ? "" : "?"));
        return 1;
    }
    const char* className() const override { return "Role3d"; }
};

// Counts the times its box is asked for, and its deletion.
struct CountedLink : OrvLinkImage {
    int* gone;
    mutable int asked = 0;
    CountedLink(OrvDirector* d, OrvActor* f, OrvActor* t, int* g)
        : OrvLinkImage(d, f, t), gone(g) {}
    ~CountedLink() override { ++*gone; }
    Orv3dVolume bbox3d(unsigned long) const override { return asked++, Orv3dVolume(); }
};

struct GoneCallback : CountingCallback {
    int* gone;
    GoneCallback(int* counter, int* g) : CountingCallback(counter), gone(g) {}
    ~GoneCallback() override { ++*gone; }
};

}  // namespace

class TheaterEditTest : public TheaterTest {
protected:
    Role3d role;
    // Black 0.2 boxes with the role, named a, b, c... at these corners.
    std::vector<GLBox*> place(std::vector<std::pair<float, float>> corners) {
        std::vector<GLBox*> made;
        for (auto& c : corners) {
            std::string n(1, (char)('a' + made.size()));
            made.push_back(box(Orv3dVolume(c.first, c.second, 0, 0.2f, 0.2f, 0), 0, n.c_str()));
            made.back()->setRole(&role);
        }
        return made;
    }
    std::string selected() {
        unsigned n = 0;
        OrvActor** list = theater->selections(n);
        std::string s;
        for (unsigned i = 0; i < n; i++) s += (i ? " " : "") + ((GLBox*)list[i])->name;
        delete[] list;
        return s;
    }
};

// Tab order goes by world y, then x, wraps, skips what is not sensitive, and sends focus out
// and in through the scene that shows the actor; the focus box comes and goes.
TEST_F(TheaterEditTest, FocusWalksInReadingOrderAndTellsTheRoles) {
    std::vector<GLBox*> g =
        place({{0.2f, 0.3f}, {-0.5f, -0.5f}, {0.5f, -0.5f}, {-0.5f, 0.3f}, {0, 0}});
    g[4]->setSensitive(0);
    for (const char* want : {"b", "c", "d", "a", "b", "<a", "<d"}) {
        want[0] == '<' ? theater->moveFocusBefore() : theater->moveFocusAfter();
        EXPECT_EQ(want + (want[0] == '<'), ((GLBox*)theater->getFocus())->name);
    }
    EXPECT_EQ((Log{"b 11", "b 12", "c 11", "c 12", "d 11", "d 12", "a 11", "a 12", "b 11", "b 12",
                   "a 11", "a 12", "d 11"}),
              role.log);
    GLBox outside(director, Orv3dVolume(), 0);
    theater->setFocus(g[4]), theater->setFocus(&outside);
    EXPECT_EQ(g[3], theater->getFocus());
    Orv3dPoint edge = toWindow(scene, Orv3dPoint(-0.5f, 0.4f, 0));  // d's left side
    for (OrvActor* f : {(OrvActor*)g[3], (OrvActor*)nullptr}) {
        theater->setFocus(f);
        settle();
        int lit = 0;
        for (int d = 0; d < 25; d++)
            lit += pixel(scene, (int)edge.x + d % 5 - 2, (int)edge.y + d / 5 - 2) != 0;
        EXPECT_EQ(f != nullptr, lit > 0);
    }
    EXPECT_EQ("d 12", role.log.back());
    theater->setFocus(g[0]);
    theater->remove(g[0]);
    EXPECT_EQ(nullptr, theater->getFocus());
    delete g[0];
}

// One highlighted actor among a director's theaters; a stage's event clears it; an actor that
// leaves is forgotten (its flag stays, as a stage's clean leaves it), and so is a theater.
TEST_F(TheaterEditTest, HighlightMovesBetweenTheatersAndStageEventsClearIt) {
    OrvTheater* other = new OrvTheater(director);
    std::vector<GLBox*> g = place({{0, 0}, {0.5f, 0.5f}});
    GLBox *b = new GLBox(director, Orv3dVolume(), 0, "b"),
          *dull = new GLBox(director, Orv3dVolume(), 0);
    other->append(b), other->append(dull);
    for (GLBox* x : {g[0], b, dull}) x->allowHighlight(1);
    dull->setSensitive(0);
    OrvEvent motion;
    memset((void*)&motion, 0, sizeof motion);
    motion.type = OrvPointerMoved;
    Orv2dPoint p(5, 5);
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
        EXPECT_EQ(std::make_tuple(r.here, r.there, r.aLit, r.bLit),
                  std::make_tuple(theater->getHighlighted(), other->getHighlighted(),
                                  g[0]->isHighlighted() != 0, b->isHighlighted() != 0))
            << &r - rows;
    }
    other->setHighlighted(p, b);
    delete other;
    stage->handleInput(motion);  // the record names no theater that went
    delete g[0], delete g[1];
}

// The lists follow setSelected in order, refuse what cannot be selected, survive a change of
// layer and lose what leaves; clean clears every field that names the actor.
TEST_F(TheaterEditTest, SelectionListsAndClean) {
    std::vector<GLBox*> g = place({{0, 0}, {0.5f, 0.5f}, {-0.5f, 0}, {0, -0.5f}});
    GLBox *a = g[0], *b = g[1], *c = g[2], *d = g[3];
    d->setSelectable(0);
    Log visited;
    auto visit = [](OrvActor* x, void* l) { ((Log*)l)->push_back(((GLBox*)x)->name); };
    const struct {
        std::function<void()> act;
        const char* want;
    } steps[] = {
        {[&] { a->setSelected(1), c->setSelected(1), b->setSelected(1), d->setSelected(1); },
         "a c b"},
        {[&] { c->setSelected(0); }, "a b"},
        {[&] { theater->deSelect(); }, ""},
        {[&] { c->setSelected(1), a->setSelected(1), a->setLayer(2); }, "c a"},
        {[&] { theater->applyToSelections(visit, &visited); }, "c a"},
        {[&] { theater->remove(c); }, "a"},
    };
    for (const auto& s : steps) {
        s.act();
        EXPECT_EQ(std::make_tuple(std::string(s.want), theater->selectionList.length()),
                  std::make_tuple(selected(), theater->selections_.length()));
        for (unsigned i = 0; theater->selection(i); i++)
            EXPECT_TRUE(theater->selection(i)->isSelected());
    }
    EXPECT_EQ((Log{"c", "a"}), visited);
    EXPECT_EQ(0, theater->layer(2, 0)->position(a));
    EXPECT_EQ(1ul, theater->makeLayer(b, 1));
    EXPECT_EQ(theater->layer(1, 0), theater->getLayer(b));
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
    int calls[3] = {0, 0, 0}, gone = 0;
    std::vector<GLBox*> g = place({{0, 0}, {0.5f, 0.5f}});
    GoneCallback *first = new GoneCallback(&calls[0], &gone),
                 *second = new GoneCallback(&calls[1], &gone);
    g[0]->setCallbackName(OrvGetKey("go", 1));
    g[1]->setCallback(new GoneCallback(&calls[2], &gone));
    theater->registerCallback("go", first);
    theater->callCallback(g[0], scene);
    theater->registerCallback("go", second);
    theater->callCallback(g[0], scene), theater->callCallback(g[1], scene);
    EXPECT_EQ(
        std::make_tuple((OrvCallback*)second, (OrvCallback*)nullptr),
        std::make_tuple(theater->getCallback("go"), theater->getCallback("never registered")));
    theater->removeCallback("go");
    EXPECT_EQ(std::make_tuple(1, (OrvCallback*)first),
              std::make_tuple(gone, theater->getCallback("go")));
    EXPECT_EQ((std::vector<int>{1, 1, 1}), std::vector<int>(calls, calls + 3));
    delete theater;
    theater = nullptr;
    EXPECT_EQ(3, gone);
}

// Links between 3D actors: their tables, invalidation through links of links, and every way of
// leaving (clean with deletion, deletion, removal of an end, empty) keeps no link on a lost end.
TEST_F(TheaterEditTest, LinkTablesFollowTheirEnds) {
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
    auto tables = [&](std::vector<OrvActor*> of) {
        std::vector<unsigned> n;
        for (OrvActor* x : of)
            n.push_back(theater->fromLinksCardinal(x)), n.push_back(theater->toLinksCardinal(x));
        return n;
    };
    EXPECT_EQ((std::vector<unsigned>{1, 0, 1, 2, 0, 1, 1, 0}), tables({a, b, c, ab}));
    EXPECT_EQ((std::vector<OrvLinkImage*>{bb, ab}),
              (std::vector<OrvLinkImage*>{theater->linkTo(b, 0), theater->linkTo(b, 1)}));
    EXPECT_TRUE(a->hasUserProperty(OrvGetKey("T_from", 0)));
    ab->asked = onLink->asked = 0;
    theater->beginDrawing();
    theater->invalidate(a, 1);
    theater->flushDrawing(1);
    EXPECT_TRUE(ab->asked && onLink->asked);
    EXPECT_EQ(std::make_tuple(1ul, 3),
              std::make_tuple(theater->clean(b, 1), gone));  // b's links too
    EXPECT_EQ((std::vector<unsigned>{0, 0, 0, 0}), tables({a, c}));
    delete link(a, c);  // deleted while in the theater
    EXPECT_EQ(0u, theater->fromLinksCardinal(a));
    CountedLink* ca = link(c, a);
    theater->remove(c);
    EXPECT_EQ(std::make_tuple((OrvTheater*)nullptr, 0u),
              std::make_tuple(ca->getTheater(), theater->toLinksCardinal(a)));
    delete ca, delete c;
    link(a, a), link(a, a);
    theater->empty(1);
    EXPECT_EQ(7, gone);
}

// Cut here, paste in a theater of another director on the display: the same actors, their box
// centred on the point, in layer 0, alone selected.
TEST_F(TheaterEditTest, CutHerePasteInAnotherDirectorsTheater) {
    SampleArrays arrays;
    Orv3dActor *faces = new Orv3dActorFaceSet(director, compactSample(arrays)),
               *plain = new Orv3dActor(director);
    faces->translate(0.25f, -0.5f, 0, 0), faces->setName("faces");
    plain->rotateZ(90, 0), plain->setRole(OrvGetRole("Button"));
    auto text = [](OrvTheater* t, bool onlySelected) {
        unsigned n = 0;
        OrvActor** list = onlySelected ? t->selections(n) : t->objects(n);
        std::string saved = saved3d(std::vector<OrvActor*>(list, list + n));
        delete[] list;
        return saved;
    };
    for (Orv3dActor* x : {faces, plain}) theater->append(x), x->setSelected(1);
    Orv3dVolume box = faces->bbox3d(1);
    box.extendBy(plain->bbox3d(1));  // a plain actor's box stays at the origin
    std::string copied = text(theater, true);
    theater->cut();
    settle();
    EXPECT_EQ(0u, theater->cardinal());
    OrvDirector* second = new OrvDirector("second", nullptr, 0, nullptr);
    OrvTheater* there = new OrvTheater(second);
    there->paste(box.center(), 1);
    EXPECT_EQ(copied, text(there, true));
    EXPECT_EQ(copied, text(there, false));
    there->paste(Orv3dPoint(1, 2, 3), 1);
    unsigned n = 0;
    OrvActor** all = there->objects(n);
    ASSERT_EQ(4u, n);
    std::string selections;
    for (unsigned i = 0; i < n; i++) selections += all[i]->isSelected() ? '1' : '0';
    EXPECT_EQ("0011", selections);
    Orv3dPoint once = all[0]->bbox3d(1).center(), again = all[2]->bbox3d(1).center(),
               c = box.center();
    delete[] all;
    EXPECT_LT(fabs(once.x + 1 - c.x - again.x) + fabs(once.y + 2 - c.y - again.y) +
                  fabs(once.z + 3 - c.z - again.z),
              3e-5);
    delete there;
    delete second;
}
