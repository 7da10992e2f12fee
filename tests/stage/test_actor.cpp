// Actors: flags, user properties, identity, the change protocol with and
// without a stage, copying, destruction, and the 2D geometry of handles and
// focus.
#include <string>
#include <vector>

#include "orv/role.h"
#include "test_stage_support.h"

namespace {

// Writes down each step of the change protocol, with the stage's nesting.
class LoggingActor : public OrvActor {
public:
    std::vector<std::string>* log;
    Orv2dRect box;
    LoggingActor(OrvDirector* d, std::vector<std::string>* log,
                 const Orv2dRect& box = Orv2dRect(10, 10, 20, 20), OrvMakeUp* m = nullptr)
        : OrvActor(d, m), log(log), box(box) {}
    Orv2dRect bbox2d(const Orv2dMatrix* matrix) const override {
        Orv2dRect r = box;
        if (matrix) matrix->apply(r);
        return r;
    }
    void beginDrawing(unsigned long withLinks) override {
        log->push_back("begin " + std::to_string(withLinks));
        OrvActor::beginDrawing(withLinks);
    }
    void flushDrawing(unsigned long withLinks) override {
        log->push_back("flush " + std::to_string(withLinks));
        OrvActor::flushDrawing(withLinks);
    }
    void draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) override {
        canvas->rectangle(makeUp, box, 1, matrix);
    }
    void notifyOnMakeUpChanged() override { log->push_back("notify"); }
    void takeAPicture() override { log->push_back("picture"); }
};

class LoggingHook : public OrvStageHook {
public:
    std::vector<std::string>* log;
    explicit LoggingHook(std::vector<std::string>* log) : log(log) {}
    void invalidateActorCall(const OrvActor*) override { log->push_back("invalidate"); }
    void contents() override { log->push_back("contents"); }
    void beforeDraw(const OrvCanvas*, const Orv2dMatrix*, const Orv2dRegion*) override {
        log->push_back("drawAll");
    }
    unsigned long deletedByStage() const override { return 1; }
};

typedef std::vector<std::string> Log;

}  // namespace

TEST(Actor, DefaultFlagsAndTheBitVocabulary) {
    OrvActor a(nullptr);
    EXPECT_EQ(a.flags, 0x0318007Au);
    EXPECT_EQ(a.layer, 0);
    EXPECT_EQ(a.userProperties, nullptr);
    EXPECT_EQ(a.makeUp, nullptr);
    EXPECT_TRUE(a.isVisible());
    EXPECT_FALSE(a.isSelected());
    EXPECT_TRUE(a.isSelectable());
    EXPECT_TRUE(a.isMoveable());
    EXPECT_TRUE(a.isResizeable());
    EXPECT_TRUE(a.isSensitive());
    EXPECT_FALSE(a.isFocus());
    EXPECT_TRUE(a.hasZBuffer());
    EXPECT_TRUE(a.isLightOn());
    EXPECT_TRUE(a.is3dFastFaceRendering());
    EXPECT_TRUE(a.isTextureOn());
    EXPECT_FALSE(a.isHighlightAllowed());
    EXPECT_EQ(a.getProperty(0), 0u);
    // Bit numbers are taken modulo 32.
    a.setProperty(33);
    EXPECT_EQ(a.flags & 0x2u, 0x2u);
    a.setProperty(32);
    EXPECT_EQ(a.flags & 1u, 1u);
    a.removeProperty(32 + 3);
    EXPECT_FALSE(a.isSelectable());
    EXPECT_EQ(a.getProperty(7), 0u);
    a.setProperty(7);
    EXPECT_EQ(a.getProperty(39), 1u);
    // Flag-only setters.
    a.setMoveable(0);
    a.setResizeable(0);
    a.allowHighlight(1);
    a.immediate(1);
    a.set3dFastFaceRendering(0);
    EXPECT_FALSE(a.isMoveable());
    EXPECT_FALSE(a.isResizeable());
    EXPECT_TRUE(a.isHighlightAllowed());
    EXPECT_TRUE(a.isImmediate());
    EXPECT_FALSE(a.is3dFastFaceRendering());
}

TEST(Actor, UserProperties) {
    OrvActor a(nullptr);
    OrvKey* k1 = OrvGetKey("test_actor_k1", 1);
    OrvKey* k2 = OrvGetKey("test_actor_k2", 1);
    // A read makes the table.
    EXPECT_EQ(a.getUserProperty(k1), nullptr);
    EXPECT_NE(a.userProperties, nullptr);
    EXPECT_FALSE(a.hasUserProperty(k1));
    int v1 = 1, v2 = 2;
    a.setUserProperty(k1, &v1);
    EXPECT_EQ(a.getUserProperty(k1), &v1);
    a.setUserProperty(k1, &v2);  // replaced, not added
    EXPECT_EQ(a.getUserProperty(k1), &v2);
    EXPECT_EQ(a.userProperties->length(), 1u);
    // A null value and an absent key read alike; hasUserProperty tells them apart.
    a.setUserProperty(k2, nullptr);
    EXPECT_EQ(a.getUserProperty(k2), nullptr);
    EXPECT_TRUE(a.hasUserProperty(k2));
    EXPECT_EQ(a.removeUserProperty(k2), 1);
    EXPECT_FALSE(a.hasUserProperty(k2));
    EXPECT_EQ(a.removeUserProperty(k2), 0);
    OrvActor b(nullptr);
    EXPECT_EQ(b.removeUserProperty(k1), 0);
    EXPECT_NE(b.userProperties, nullptr);
}

TEST(Actor, NamesCallbacksEnginesAndKeys) {
    OrvActor a(nullptr);
    EXPECT_EQ(a.getName(), nullptr);
    a.setName("first");
    EXPECT_STREQ(a.getName(), "first");
    EXPECT_TRUE(a.getProperty(9));
    EXPECT_EQ(OrvGetKey("P_name", 0), nameA);
    EXPECT_EQ(OrvGetKey("P_baheviour", 0), roleA);
    EXPECT_EQ(OrvGetKey("SP_cname", 0), secondaryCallbackNameA);
    a.setName("second");
    EXPECT_STREQ(a.getName(), "second");
    a.setName(nullptr);
    EXPECT_EQ(a.getName(), nullptr);
    EXPECT_FALSE(a.getProperty(9));
    EXPECT_FALSE(a.hasUserProperty(nameA));

    // The engine bit stays once set, even when the engine goes.
    a.setEngine((OrvEngine*)&a);
    EXPECT_EQ(a.getEngine(), (OrvEngine*)&a);
    a.setEngine(nullptr);
    EXPECT_EQ(a.getEngine(), nullptr);
    EXPECT_TRUE(a.getProperty(13));

    struct Counted : OrvCallback {
        int* deaths;
        explicit Counted(int* d) : deaths(d) {}
        ~Counted() override { (*deaths)++; }
    };
    int deaths = 0;
    Counted* c1 = new Counted(&deaths);
    Counted* c2 = new Counted(&deaths);
    a.setCallback(c1);
    EXPECT_EQ(c1->count, 1);
    EXPECT_EQ(a.getCallback(), c1);
    a.setCallback(c2);  // the first is let go and dies
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(a.getCallback(), c2);
    a.setSecondaryCallback(c2);
    EXPECT_EQ(c2->count, 2);
    EXPECT_EQ(a.getSecondaryCallback(), c2);
    a.setCallback(nullptr);
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(a.getCallback(), nullptr);

    OrvKey* cname = OrvGetKey("test_actor_callback", 1);
    a.setCallbackName(cname);
    EXPECT_EQ(a.getCallbackName(), cname);
    EXPECT_TRUE(a.getProperty(11));
    a.setSecondaryCallbackName(cname);
    EXPECT_TRUE(a.getProperty(12));
    a.setCallbackName(nullptr);
    EXPECT_FALSE(a.getProperty(11));
    EXPECT_EQ(a.getCallbackName(), nullptr);
    {
        OrvActor b(nullptr);
        b.setSecondaryCallback(c2);
        EXPECT_EQ(c2->count, 2);
    }  // the destructor lets go of its callbacks
    EXPECT_EQ(c2->count, 1);
    a.setSecondaryCallback(nullptr);
    EXPECT_EQ(deaths, 2);
}

TEST(Actor, ChangeProtocolOffStage) {
    Log log;
    LoggingActor a(nullptr, &log);
    a.setVisible(0);
    a.setVisible(0);  // no change, no call
    a.setSelected(1);
    a.setFocus(1);
    a.setInvariant(1);
    a.setLayer(3);
    a.setLayer(3);
    a.textureOn(0);
    EXPECT_EQ(log, (Log{"begin 1", "flush 1", "begin 0", "flush 0", "begin 0", "flush 0", "begin 1",
                        "flush 1", "begin 0", "flush 0", "begin 0", "picture", "flush 0"}));
    EXPECT_FALSE(a.isVisible());
    EXPECT_TRUE(a.isSelected());
    EXPECT_TRUE(a.isFocus());
    EXPECT_EQ(a.layer, 3);
    EXPECT_FALSE(a.isTextureOn());

    // Not selectable: the protocol runs, the bit stays clear.
    log.clear();
    LoggingActor b(nullptr, &log);
    b.setSelectable(0);
    b.setSelected(1);
    EXPECT_EQ(log, (Log{"begin 0", "flush 0"}));
    EXPECT_FALSE(b.isSelected());

    // Highlight: only where allowed, with the protocol only when redrawing.
    log.clear();
    EXPECT_EQ(b.setHighlighted(1, Orv2dPoint(), 1), 0u);
    b.allowHighlight(1);
    EXPECT_EQ(b.setHighlighted(1, Orv2dPoint(), 0), 1u);
    EXPECT_EQ(b.setHighlighted(1, Orv2dPoint(), 1), 0u);
    EXPECT_EQ(b.setHighlighted(0, Orv2dPoint(), 1), 1u);
    EXPECT_EQ(log, (Log{"begin 0", "flush 0"}));
    EXPECT_FALSE(b.isHighlighted());
}

TEST(Actor, CopyTakesLookAndPermissionsOnly) {
    OrvActor a(nullptr);
    a.layer = 4;
    a.setSelectable(0);
    a.setVisible(0);
    a.setSensitive(0);
    a.setInverted(1);
    a.setMoveable(0);
    a.setResizeable(0);
    a.setZBuffer(0);
    a.lightOn(0);
    a.textureOn(0);
    a.allowHighlight(1);
    a.immediate(1);
    a.setInvariant(1);
    a.setFocus(1);
    a.setName("original");
    OrvKey* k = OrvGetKey("test_actor_copy", 1);
    a.setUserProperty(k, &a);
    OrvActor* c = a.copy();
    EXPECT_EQ(c->layer, 4);
    EXPECT_FALSE(c->isSelectable());
    EXPECT_FALSE(c->isVisible());
    EXPECT_FALSE(c->isSensitive());
    EXPECT_TRUE(c->isInverted());
    EXPECT_FALSE(c->isMoveable());
    EXPECT_FALSE(c->isResizeable());
    EXPECT_FALSE(c->hasZBuffer());
    EXPECT_FALSE(c->isLightOn());
    EXPECT_FALSE(c->isTextureOn());
    EXPECT_TRUE(c->isHighlightAllowed());
    // Not copied: immediate, invariant, focus, name, properties.
    EXPECT_FALSE(c->isImmediate());
    EXPECT_FALSE(c->isInvariant());
    EXPECT_FALSE(c->isFocus());
    EXPECT_EQ(c->getName(), nullptr);
    EXPECT_FALSE(c->getProperty(9));
    EXPECT_EQ(c->userProperties, nullptr);
    EXPECT_STREQ(c->className(), "OrvActor");
    delete c;

    // The selected state does not travel.
    OrvActor s(nullptr);
    s.setSelected(1);
    OrvActor* sc = s.copy();
    EXPECT_TRUE(s.isSelected());
    EXPECT_FALSE(sc->isSelected());
    delete sc;
}

TEST(Actor, ForgetUpdateDrawingKeepsStateAndSkipsInvalidation) {
    EXPECT_EQ(OrvForgetUpdateDrawing(), 0u);
    OrvForgetUpdateDrawing(1);
    EXPECT_EQ(OrvForgetUpdateDrawing(), 1u);
    Log log;
    LoggingActor a(nullptr, &log);
    a.setVisible(0);
    EXPECT_FALSE(a.isVisible());
    OrvForgetUpdateDrawing(0);
}

TEST(ActorGeometry, HandlesAndDragger) {
    Log log;
    LoggingActor a(nullptr, &log, Orv2dRect(10, 20, 31, 41));
    unsigned int count = 0;
    Orv2dPoint* h = a.draggerVertex2d(count, nullptr);
    ASSERT_EQ(count, 8u);
    // Half sizes by shift: odd sizes round down.
    Orv2dPoint expected[8] = {Orv2dPoint(10, 20), Orv2dPoint(10, 61), Orv2dPoint(41, 20),
                              Orv2dPoint(41, 61), Orv2dPoint(10, 40), Orv2dPoint(41, 40),
                              Orv2dPoint(25, 20), Orv2dPoint(25, 61)};
    for (int i = 0; i < 8; i++) EXPECT_EQ(h[i], expected[i]) << i;

    // Not selected: no handle, and the box alone is hit.
    EXPECT_EQ(a.dragger2d(Orv2dPoint(10, 20), nullptr), nullptr);
    EXPECT_FALSE(a.contains2d(Orv2dPoint(7, 17), nullptr));

    a.setSelected(1);
    const OrvPosition positions[8] = {5, 9, 6, 10, 1, 2, 4, 8};
    for (int i = 0; i < 8; i++) {
        Orv2dDragger* d = a.dragger2d(Orv2dPoint(expected[i].x + 4, expected[i].y - 4), nullptr);
        ASSERT_NE(d, nullptr) << i;
        EXPECT_EQ(d, &OrvActor::_default2dDragger);
        EXPECT_EQ(d->position, positions[i]);
        EXPECT_EQ(d->index, i);
        EXPECT_EQ(d->point, expected[i]);
        EXPECT_EQ(d->matrix, nullptr);
    }
    // Squares are 8 pixels a side, centred: 5 away is outside.
    EXPECT_EQ(a.dragger2d(Orv2dPoint(5, 20), nullptr), nullptr);
    // Handles stick out of the shape for hit tests, the edge's span does not.
    EXPECT_TRUE(a.contains2d(Orv2dPoint(7, 17), nullptr));
    EXPECT_FALSE(a.contains2d(Orv2dPoint(7, 30), nullptr));
    EXPECT_TRUE(a.contains2d(Orv2dPoint(7, 40), nullptr));

    // The repaint box grows by 4 on each side when selected.
    EXPECT_EQ(a.bbox2dToStage(nullptr), Orv2dRect(6, 16, 39, 49));
    a.setSelected(0);
    EXPECT_EQ(a.bbox2dToStage(nullptr), Orv2dRect(10, 20, 31, 41));

    // A selected empty actor has eight handles on one point: the corner first.
    LoggingActor z(nullptr, &log, Orv2dRect(0, 0, 0, 0));
    z.setSelected(1);
    Orv2dDragger* d = z.dragger2d(Orv2dPoint(1, 1), nullptr);
    ASSERT_NE(d, nullptr);
    EXPECT_EQ(d->index, 0);
    EXPECT_EQ(d->position, 5u);

    // The matrix is kept, and handles follow the mapped box.
    Orv2dMatrix scale(2, 2);
    a.setSelected(1);
    d = a.dragger2d(Orv2dPoint(82, 122), &scale);
    ASSERT_NE(d, nullptr);
    EXPECT_EQ(d->index, 3);
    EXPECT_EQ(d->matrix, &scale);
    // A second search overwrites the shared record.
    Orv2dDragger* again = a.dragger2d(Orv2dPoint(10, 20), nullptr);
    EXPECT_EQ(again, d);
    EXPECT_EQ(d->index, 0);

    // Regions of the handles: count reset, one square each.
    Orv2dRegion region(25);
    region.extendBy(Orv2dRect(500, 500, 5, 5));
    a.draggerRegions2d(region, nullptr);
    EXPECT_EQ(region.count, 8);
    EXPECT_EQ(region.rectangle(0), Orv2dRect(6, 16, 8, 8));
    EXPECT_FALSE(region.contains(Orv2dPoint(502, 502)));

    // Default dragger operations.
    Orv2dDragger& dr = OrvActor::_default2dDragger;
    EXPECT_STREQ(dr.className(), "default2dDragger");
    EXPECT_EQ(dr.onButtonDown(Orv2dPoint(1, 1), nullptr), 1u);
    EXPECT_EQ(dr.dragging, 1u);
    Orv2dPoint out;
    EXPECT_EQ(dr.onButtonDragged(Orv2dPoint(7, 9), out), 1u);
    EXPECT_EQ(out, Orv2dPoint(7, 9));
    EXPECT_EQ(dr.onButtonUp(), 0u);
    EXPECT_EQ(dr.dragging, 0u);
    EXPECT_EQ(dr.onButtonDragged(Orv2dPoint(3, 3), out), 0u);
}

TEST(ActorGeometry, FocusRegionAndRegionTests) {
    Log log;
    LoggingActor a(nullptr, &log, Orv2dRect(10, 20, 30, 8));
    Orv2dRegion region(25);
    a.computeFocusRegion2d(region, nullptr);
    ASSERT_EQ(region.count, 4);
    EXPECT_EQ(region.rectangle(0), Orv2dRect(9, 19, 32, 2));
    EXPECT_EQ(region.rectangle(1), Orv2dRect(9, 28, 32, 2));
    EXPECT_EQ(region.rectangle(2), Orv2dRect(9, 22, 2, 5));
    EXPECT_EQ(region.rectangle(3), Orv2dRect(40, 22, 2, 5));
    // Below a height of 8 the box alone, without the outer ring.
    LoggingActor low(nullptr, &log, Orv2dRect(10, 20, 30, 7));
    Orv2dRegion r2(25);
    low.computeFocusRegion2d(r2, nullptr);
    ASSERT_EQ(r2.count, 1);
    EXPECT_EQ(r2.rectangle(0), Orv2dRect(10, 20, 30, 7));

    // intersects2d and inside2d use the enlarged box of a selected actor.
    Orv2dRegion near(Orv2dRect(0, 0, 8, 100));
    EXPECT_FALSE(a.intersects2d(near, nullptr));
    a.setSelected(1);
    EXPECT_TRUE(a.intersects2d(near, nullptr));
    Orv2dRegion around(Orv2dRect(7, 17, 36, 14));
    EXPECT_FALSE(a.inside2d(around, nullptr));
    a.setSelected(0);
    EXPECT_TRUE(a.inside2d(around, nullptr));
}

// ---------------------------------------------------------------------------
// On a stage
// ---------------------------------------------------------------------------

TEST_F(StageTest, ChangeProtocolOnStage) {
    Log log;
    LoggingHook* hook = new LoggingHook(&log);
    stage->install(hook);
    LoggingActor* a = new LoggingActor(director, &log, Orv2dRect(10, 10, 20, 20), red);
    stage->append(a, 0);
    EXPECT_EQ(a->getStage(), stage);
    log.clear();

    a->setVisible(0);
    // The old place is invalidated inside the nest, the hidden actor adds
    // nothing after, and the flush of the outermost nest repaints once.
    EXPECT_EQ(log, (Log{"begin 1", "invalidate", "flush 1", "drawAll", "contents"}));
    EXPECT_EQ(stage->nesting, 0u);
    log.clear();
    a->setVisible(1);
    EXPECT_EQ(log, (Log{"begin 1", "flush 1", "invalidate", "drawAll", "contents"}));
    log.clear();

    a->setSelected(1);
    EXPECT_EQ(log, (Log{"begin 0", "invalidate", "flush 0", "invalidate", "drawAll"}));
    EXPECT_EQ(stage->selection(0), a);
    log.clear();

    // A nest around several setters repaints once.
    stage->beginDrawing();
    a->setFocus(1);
    a->setInverted(1);
    a->setSensitive(0);
    stage->flushDrawing(1);
    EXPECT_EQ(log, (Log{"begin 0", "invalidate", "flush 0", "invalidate", "begin 0", "invalidate",
                        "flush 0", "invalidate", "begin 0", "invalidate", "flush 0", "invalidate",
                        "drawAll"}));
    log.clear();

    // During a repaint the state changes and nothing is invalidated.
    OrvForgetUpdateDrawing(1);
    a->setInverted(0);
    OrvForgetUpdateDrawing(0);
    EXPECT_EQ(log, (Log{"begin 0", "flush 0"}));
    EXPECT_FALSE(a->isInverted());
    log.clear();

    // setLayer moves the actor through the stage before the number changes.
    a->setLayer(2);
    EXPECT_EQ(log, (Log{"begin 0", "invalidate", "flush 0", "invalidate", "drawAll"}));
    EXPECT_EQ(a->layer, 2);
    EXPECT_EQ(stage->layer(0)->position(a), -1);
    EXPECT_EQ(stage->layer(2)->position(a), 0);
    EXPECT_EQ(stage->getLayer(a), stage->layer(2));
    log.clear();
    a->setLayer(2);
    EXPECT_TRUE(log.empty());

    // Deleting the actor removes it from the stage and its selections.
    delete a;
    EXPECT_EQ(stage->cardinal(), 0u);
    EXPECT_EQ(stage->selection(0), nullptr);
    stage->remove(hook);
    delete hook;
}

TEST_F(StageTest, MakeUpSettersSwapSharedMakeUps) {
    Log log;
    LoggingActor* a = new LoggingActor(director, &log, Orv2dRect(10, 10, 20, 20), red);
    stage->append(a, 0);
    int redCount = red->count;
    log.clear();
    a->setForeground(director->color("blue"));
    EXPECT_EQ(a->makeUp, blue);
    EXPECT_EQ(red->count, redCount - 1);
    EXPECT_EQ(log, (Log{"begin 0", "notify", "flush 0"}));
    EXPECT_EQ(rgb(20, 20), 0x0000FFu);
    log.clear();
    a->setForeground(director->color("blue"));
    EXPECT_TRUE(log.empty());
    a->setLineWidth(3);
    EXPECT_EQ(a->makeUp->lineWidth(), 3);
    EXPECT_EQ(a->makeUp, director->makeUpLineWidth(blue, 3));
    log.clear();
    a->setMakeUp(red);
    EXPECT_EQ(a->makeUp, red);
    EXPECT_EQ(log, (Log{"begin 1", "notify", "flush 1"}));
    EXPECT_EQ(rgb(20, 20), 0xFF0000u);
    log.clear();
    // In place, for all who share it, without redraw.
    a->setPlaneMask(0xFFu);
    EXPECT_EQ(red->planeMask, 0xFFu);
    a->setPlaneMask(0xFFFFFFFFu);
    EXPECT_EQ(log, (Log{"notify", "notify"}));
    log.clear();
    // invert swaps the colours and sets the flag.
    a->invert();
    EXPECT_TRUE(a->isInverted());
    EXPECT_EQ(a->makeUp->foreground(), red->background());
    EXPECT_EQ(a->makeUp->background(), red->foreground());
    EXPECT_EQ(log.front(), "begin 0");
    EXPECT_EQ(log.back(), "flush 0");
}
