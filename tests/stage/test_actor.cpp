// Actors: flags, user properties, identity, the change protocol with and without a stage,
// copying, destruction, and the 2D geometry of handles and focus.
#include "orv_fixtures.h"

TEST(Actor, DefaultFlagsBitsUserPropertiesNamesAndCallbacks) {
    OrvActor a(nullptr);
    EXPECT_EQ(a.flags, 0x0318007Au);
    EXPECT_EQ(std::vector<unsigned long>({1, 0, 1, 1, 1, 1, 0, 1, 1, 1, 1, 0}),
              std::vector<unsigned long>(
                  {a.isVisible(), a.isSelected(), a.isSelectable(), a.isMoveable(),
                   a.isResizeable(), a.isSensitive(), a.isFocus(), a.hasZBuffer(), a.isLightOn(),
                   a.is3dFastFaceRendering(), a.isTextureOn(), a.isHighlightAllowed()}));
    // Bit numbers are taken modulo 32.
    a.setProperty(32);
    EXPECT_EQ(a.flags & 1u, 1u);
    a.removeProperty(32 + 3);
    EXPECT_FALSE(a.isSelectable());
    a.setProperty(7);
    EXPECT_EQ(a.getProperty(39), 1u);
    OrvKey *k1 = OrvGetKey("test_actor_k1", 1), *k2 = OrvGetKey("test_actor_k2", 1);
    EXPECT_EQ(a.getUserProperty(k1), nullptr);
    EXPECT_NE(a.userProperties, nullptr);  // a read makes the table
    int v1 = 1, v2 = 2;
    a.setUserProperty(k1, &v1);
    a.setUserProperty(k1, &v2);  // replaced, not added
    EXPECT_EQ(a.userProperties->length(), 1u);
    // A null value and an absent key read alike; hasUserProperty tells them apart.
    a.setUserProperty(k2, nullptr);
    EXPECT_TRUE(a.hasUserProperty(k2));
    EXPECT_EQ(a.removeUserProperty(k2) + a.removeUserProperty(k2), 1);
    // Names are user properties under fixed keys, with a flag bit.
    a.setName("first");
    a.setName("second");
    EXPECT_TRUE(a.getProperty(9) && !strcmp(a.getName(), "second"));
    a.setName(nullptr);
    EXPECT_FALSE(a.getProperty(9) || a.hasUserProperty(nameA));
    // Callbacks are counted by their holders.
    struct Counted : OrvCallback {
        int* deaths;
        explicit Counted(int* d) : deaths(d) {}
        ~Counted() override { (*deaths)++; }
    };
    int deaths = 0;
    Counted *c1 = new Counted(&deaths), *c2 = new Counted(&deaths);
    a.setCallback(c1);
    a.setCallback(c2);  // the first is let go and dies
    EXPECT_EQ(deaths, 1);
    a.setSecondaryCallback(c2);
    EXPECT_EQ(c2->count, 2);
    a.setCallback(nullptr);
    {
        OrvActor b(nullptr);
        b.setSecondaryCallback(c2);
    }  // the destructor lets go of its callbacks
    EXPECT_EQ(c2->count, 1);
    a.setSecondaryCallback(nullptr);
    EXPECT_EQ(deaths, 2);
    a.setCallbackName(OrvGetKey("test_actor_callback", 1));
    a.setSecondaryCallbackName(a.getCallbackName());
    EXPECT_TRUE(a.getProperty(11) && a.getProperty(12));
    a.setCallbackName(nullptr);
    EXPECT_FALSE(a.getProperty(11));
}

TEST(Actor, ChangeProtocolOffStage) {
    Log log;
    TestBox a(nullptr, nullptr, Orv2dRect(10, 10, 20, 20));
    a.log = &log;
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
    EXPECT_TRUE(!a.isVisible() && a.isSelected() && a.isFocus() && !a.isTextureOn() &&
                a.layer == 3);
    // Not selectable: the protocol runs, the bit stays clear.
    log.clear();
    a.setSelected(0);
    a.setSelectable(0);
    a.setSelected(1);
    EXPECT_FALSE(a.isSelected());
    // Highlight: only where allowed, with the protocol only when redrawing.
    log.clear();
    EXPECT_EQ(a.setHighlighted(1, Orv2dPoint(), 1), 0u);
    a.allowHighlight(1);
    EXPECT_EQ(a.setHighlighted(1, Orv2dPoint(), 0), 1u);
    EXPECT_EQ(a.setHighlighted(1, Orv2dPoint(), 1), 0u);
    EXPECT_EQ(a.setHighlighted(0, Orv2dPoint(), 1), 1u);
    EXPECT_TRUE(log == (Log{"begin 0", "flush 0"}) && !a.isHighlighted());
    // While repaints are forgotten the state still changes.
    EXPECT_EQ(OrvForgetUpdateDrawing(), 0u);
    OrvForgetUpdateDrawing(1);
    a.setVisible(1);
    OrvForgetUpdateDrawing(0);
    EXPECT_TRUE(a.isVisible());
}

TEST(Actor, CopyTakesLookAndPermissionsOnly) {
    OrvActor a(nullptr);
    a.layer = 4;
    a.setSelected(1);
    a.setSelectable(0);
    a.setSensitive(0);
    a.setInverted(1);
    a.setMoveable(0);
    a.setZBuffer(0);
    a.lightOn(0);
    a.allowHighlight(1);
    a.immediate(1);
    a.setInvariant(1);
    a.setFocus(1);
    a.setName("original");
    a.setUserProperty(OrvGetKey("test_actor_copy", 1), &a);
    OrvActor* c = a.copy();
    EXPECT_TRUE(c->layer == 4 && c->isInverted() && c->isHighlightAllowed());
    EXPECT_FALSE(c->isSelectable() || c->isSensitive() || c->isMoveable() || c->hasZBuffer() ||
                 c->isLightOn());
    // Not copied: selection, immediate, invariant, focus, name, properties.
    EXPECT_FALSE(c->isSelected() || c->isImmediate() || c->isInvariant() || c->isFocus());
    EXPECT_TRUE(a.isSelected() && !c->getName() && !c->userProperties);
    EXPECT_STREQ(c->className(), "OrvActor");
    delete c;
}

TEST(ActorGeometry, HandlesDraggerFocusRingAndRegionTests) {
    TestBox a(nullptr, nullptr, Orv2dRect(10, 20, 31, 41));
    unsigned int count = 0;
    Orv2dPoint* h = a.draggerVertex2d(count, nullptr);
    // Half sizes by shift: odd sizes round down.
    const std::vector<Orv2dPoint> expected = {{10, 20}, {10, 61}, {41, 20}, {41, 61},
                                              {10, 40}, {41, 40}, {25, 20}, {25, 61}};
    EXPECT_EQ(expected, std::vector<Orv2dPoint>(h, h + count));
    // Not selected: no handle, and the box alone is hit.
    EXPECT_EQ(a.dragger2d(Orv2dPoint(10, 20), nullptr), nullptr);
    EXPECT_FALSE(a.contains2d(Orv2dPoint(7, 17), nullptr));
    a.setSelected(1);
    const OrvPosition positions[8] = {5, 9, 6, 10, 1, 2, 4, 8};
    for (int i = 0; i < 8; i++) {
        Orv2dDragger* d = a.dragger2d(Orv2dPoint(expected[i].x + 4, expected[i].y - 4), nullptr);
        ASSERT_EQ(d, &OrvActor::_default2dDragger) << i;
        EXPECT_TRUE(d->position == positions[i] && d->index == i && d->point == expected[i]) << i;
    }
    // Squares are 8 pixels a side, centred: 5 away is outside.
    EXPECT_EQ(a.dragger2d(Orv2dPoint(5, 20), nullptr), nullptr);
    // Handles stick out of the shape for hit tests, the edge's span does not.
    EXPECT_TRUE(a.contains2d(Orv2dPoint(7, 17), nullptr) &&
                !a.contains2d(Orv2dPoint(7, 30), nullptr));
    // The repaint box grows by 4 on each side when selected.
    EXPECT_EQ(a.bbox2dToStage(nullptr), Orv2dRect(6, 16, 39, 49));
    // A selected empty actor has eight handles on one point: the corner first.
    TestBox z(nullptr, nullptr, Orv2dRect(0, 0, 0, 0));
    z.setSelected(1);
    Orv2dDragger* d = z.dragger2d(Orv2dPoint(1, 1), nullptr);
    ASSERT_NE(d, nullptr);
    EXPECT_TRUE(d->position == 5u && d->index == 0);
    // The matrix is kept, and handles follow the mapped box.
    Orv2dMatrix scale(2, 2);
    d = a.dragger2d(Orv2dPoint(82, 122), &scale);
    ASSERT_NE(d, nullptr);
    EXPECT_TRUE(d->index == 3 && d->matrix == &scale);
    // Regions of the handles: count reset, one square each.
    Orv2dRegion region(Orv2dRect(500, 500, 5, 5));
    a.draggerRegions2d(region, nullptr);
    EXPECT_EQ(region.bbox, Orv2dRect(6, 16, 39, 49));
    // The focus ring, and the region tests.
    TestBox f(nullptr, nullptr, Orv2dRect(10, 20, 30, 8));
    Orv2dRegion focus(25);
    f.computeFocusRegion2d(focus, nullptr);
    ASSERT_EQ(focus.count, 4);
    const Orv2dRect ring[4] = {{9, 19, 32, 2}, {9, 28, 32, 2}, {9, 22, 2, 5}, {40, 22, 2, 5}};
    for (int i = 0; i < 4; i++) EXPECT_EQ(focus.rectangle(i), ring[i]) << i;
    // Below a height of 8 the box alone, without the outer ring.
    TestBox low(nullptr, nullptr, Orv2dRect(10, 20, 30, 7));
    Orv2dRegion whole(25);
    low.computeFocusRegion2d(whole, nullptr);
    EXPECT_TRUE(whole.count == 1 && whole.rectangle(0) == Orv2dRect(10, 20, 30, 7));
    // intersects2d and inside2d use the enlarged box of a selected actor.
    Orv2dRegion near(Orv2dRect(0, 0, 8, 100)), around(Orv2dRect(7, 17, 36, 14));
    EXPECT_TRUE(!f.intersects2d(near, nullptr) && f.inside2d(around, nullptr));
    f.setSelected(1);
    EXPECT_TRUE(f.intersects2d(near, nullptr) && !f.inside2d(around, nullptr));
}

TEST_F(StageTest, ChangeProtocolAndMakeUpSettersOnStage) {
    Log log;
    RecordingHook* hook = installHook();
    hook->log = &log;
    TestBox* a = box(10, 10, 20, 20);
    a->log = &log;
    log.clear();
    // The old place is invalidated inside the nest, the hidden actor adds nothing after, and the
    // flush of the outermost nest repaints once.
    a->setVisible(0);
    EXPECT_EQ(log, (Log{"begin 1", "invalidate", "flush 1", "drawAll", "contents"}));
    log.clear();
    a->setVisible(1);
    EXPECT_EQ(log, (Log{"begin 1", "flush 1", "invalidate", "drawAll", "contents"}));
    log.clear();
    // A nest around several setters repaints once.
    stage->beginDrawing();
    a->setSelected(1);
    a->setInverted(1);
    stage->flushDrawing(1);
    EXPECT_EQ(log, (Log{"begin 0", "invalidate", "flush 0", "invalidate", "begin 0", "invalidate",
                        "flush 0", "invalidate", "drawAll"}));
    EXPECT_EQ(stage->selection(0), a);
    log.clear();
    // During a repaint the state changes and nothing is invalidated.
    OrvForgetUpdateDrawing(1);
    a->setInverted(0);
    OrvForgetUpdateDrawing(0);
    EXPECT_EQ(log, (Log{"begin 0", "flush 0"}));
    log.clear();
    // setLayer moves the actor through the stage before the number changes.
    a->setLayer(2);
    a->setLayer(2);
    EXPECT_EQ(log, (Log{"begin 0", "invalidate", "flush 0", "invalidate", "drawAll"}));
    EXPECT_TRUE(stage->layer(0)->position(a) == -1 && stage->getLayer(a) == stage->layer(2));
    hook->log = nullptr;

    // Make-up setters swap shared make-ups.
    log.clear();
    int redCount = red->count;
    a->setForeground(director->color("blue"));
    a->setForeground(director->color("blue"));  // no change, no call
    EXPECT_TRUE(a->makeUp == blue && red->count == redCount - 1);
    EXPECT_TRUE(log == (Log{"begin 0", "notify", "flush 0"}) && rgb(20, 20) == 0x0000FFu);
    a->setLineWidth(3);
    EXPECT_EQ(a->makeUp, director->makeUpLineWidth(blue, 3));
    log.clear();
    a->setMakeUp(red);
    EXPECT_TRUE(log == (Log{"begin 1", "notify", "flush 1"}) && rgb(20, 20) == 0xFF0000u);
    log.clear();
    // In place, for all who share it, without redraw.
    a->setPlaneMask(0xFFu);
    EXPECT_EQ(red->planeMask, 0xFFu);
    a->setPlaneMask(0xFFFFFFFFu);
    EXPECT_EQ(log, (Log{"notify", "notify"}));
    // invert swaps the colours and sets the flag.
    a->invert();
    EXPECT_TRUE(a->isInverted() && a->makeUp->foreground() == red->background() &&
                a->makeUp->background() == red->foreground());
    a->log = nullptr;
    // Deleting the actor removes it from the stage and its selections.
    delete a;
    EXPECT_TRUE(stage->cardinal() == 0u && !stage->selection(0));
}
